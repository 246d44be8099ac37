// Cubic zoom: plain and MultiThread forms, and the band tasks of both cubic zooms.

#include <tqipl/zoom.h>

#include <memory>

#include "zoom/cubic_forms.h"
#include "zoom/weights.h"

namespace {

class Table {
public:
    Table(int srcLength, int dstLength)
        : m_records(tq::IPL_CubicWeightTable(srcLength, dstLength)) {}
    const int* Records() const { return m_records.get(); }

private:
    std::unique_ptr<int[]> m_records;
};

void ZoomPlain(tq::ZoomImages images, int channels) {
    if (!tq::BeginZoom(images, channels)) return;
    // With equal widths the one-channel form takes the rows as packed, whatever their stride.
    if (channels == 1 && images.srcWidth == images.dstWidth) images.srcStride = images.dstWidth;
    tq::ZoomCubicPlain<Table>(images, channels);
}

void ZoomMultiThread(const tq::ZoomImages& images, int channels) {
    if (tq::BeginZoom(images, channels)) tq::ZoomCubicMultiThread<Table>(images, channels);
}

int ChannelsOf(int channelMode) { return channelMode == 0 ? 1 : channelMode == 1 ? 4 : 0; }

}  // namespace

int CZCubicXTask::Run() {
    const int channels = ChannelsOf(m_nChannelMode);
    if (channels == 0) return 1;
    const tq::CubicRows rows = {m_nSrcStride, m_pSrc,      m_nDstWidth, channels,
                                m_pWeights,   m_nRowBegin, m_nRowEnd};
    if (m_bToIntermediate)
        tq::SumCubicRows(rows, m_nDstStride, m_pIntermediate);
    else
        tq::FinishCubicRows(rows, m_nDstStride, m_pDst);
    return 1;
}

int CZCubicYTask::Run() {
    const int channels = ChannelsOf(m_nChannelMode);
    if (channels == 0) return 1;
    const tq::CubicColumnBand band = {m_nColBegin,  m_nColEnd,    channels, m_pWeights,
                                      m_nDstHeight, m_nDstStride, m_pDst};
    if (m_bFromIntermediate)
        tq::BlendCubicSums(band, m_nSrcStride, m_pIntermediate);
    else
        tq::BlendCubicBytes(band, m_nSrcStride, m_pSrc);
    return 1;
}

void IPL_ZoomCubic_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                          int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    ZoomPlain({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 1);
}

void IPL_ZoomCubicMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                     int dstWidth, int dstHeight, int dstStride,
                                     unsigned char* dst) {
    ZoomMultiThread({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 1);
}

void IPL_ZoomCubic_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                          int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    ZoomPlain({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 4);
}

void IPL_ZoomCubicMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                     int dstWidth, int dstHeight, int dstStride,
                                     unsigned char* dst) {
    ZoomMultiThread({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 4);
}
