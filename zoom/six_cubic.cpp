// Six-tap cubic zoom.

#include <tqipl/zoom.h>

#include "zoom/cubic_forms.h"
#include "zoom/weights.h"

namespace {

// A table of the pool, held for as long as this lives.
class Table {
public:
    Table(int srcLength, int dstLength)
        : m_table(g_IPL6CubicTablePool.Acquire(srcLength, dstLength)) {}
    ~Table() { g_IPL6CubicTablePool.Release(m_table); }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;
    const int* Records() const { return m_table->m_pWeightData; }

private:
    CZ6CubicTable* m_table;
};

void ZoomPlain(const tq::ZoomImages& images, int channels) {
    if (!tq::BeginZoom(images, channels)) return;
    if (channels == 1)
        CZ6CubicResize().Resize(images.srcWidth, images.srcHeight, images.srcStride, images.src,
                                images.dstWidth, images.dstHeight, images.dstStride, images.dst);
    else
        tq::ZoomCubicPlain<Table>(images, channels);
}

void ZoomMultiThread(const tq::ZoomImages& images, int channels) {
    if (tq::BeginZoom(images, channels)) tq::ZoomCubicMultiThread<Table>(images, channels);
}

}  // namespace

void CZ6CubicResize::Resize(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                            int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    if (srcHeight == dstHeight) {
        ResizeX(srcWidth, dstWidth, srcHeight, srcStride, src, dstStride, dst);
    } else if (srcWidth == dstWidth) {
        ResizeY(srcHeight, dstHeight, srcWidth, srcStride, src, dstStride, dst);
    } else {
        // Both passes at once: the bytes of the two below, without the image of sums between them.
        const Table columns(srcWidth, dstWidth);
        const Table rows(srcHeight, dstHeight);
        tq::ZoomCubicXY({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst},
                        1, columns.Records(), rows.Records());
    }
}

void CZ6CubicResize::ResizeX(int srcWidth, int dstWidth, int height, int srcStride,
                             unsigned char* src, int dstStride, unsigned char* dst) {
    const Table columns(srcWidth, dstWidth);
    tq::FinishCubicRows({srcStride, src, dstWidth, 1, columns.Records(), 0, height}, dstStride,
                        dst);
}

void CZ6CubicResize::ResizeY(int srcHeight, int dstHeight, int width, int srcStride,
                             unsigned char* src, int dstStride, unsigned char* dst) {
    const Table rows(srcHeight, dstHeight);
    tq::BlendCubicBytes({0, width, 1, rows.Records(), dstHeight, dstStride, dst}, srcStride, src);
}

void CZ6CubicResize::ResizeXToIntermediate(int srcWidth, int srcStride, unsigned char* src,
                                           int dstWidth, int height, int intermediateStride,
                                           int* intermediate) {
    const Table columns(srcWidth, dstWidth);
    tq::SumCubicRows({srcStride, src, dstWidth, 1, columns.Records(), 0, height},
                     intermediateStride, intermediate);
}

void CZ6CubicResize::ResizeYFromIntermediate(int srcHeight, int width, int* intermediate,
                                             int intermediateStride, int dstHeight, int dstStride,
                                             unsigned char* dst) {
    const Table rows(srcHeight, dstHeight);
    tq::BlendCubicSums({0, width, 1, rows.Records(), dstHeight, dstStride, dst}, intermediateStride,
                       intermediate);
}

void IPL_Zoom6Cubic_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                           int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    ZoomPlain({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 1);
}

void IPL_Zoom6CubicMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride,
                                      unsigned char* src, int dstWidth, int dstHeight,
                                      int dstStride, unsigned char* dst) {
    ZoomMultiThread({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 1);
}

void IPL_Zoom6Cubic_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                           int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    ZoomPlain({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 4);
}

void IPL_Zoom6CubicMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride,
                                      unsigned char* src, int dstWidth, int dstHeight,
                                      int dstStride, unsigned char* dst) {
    ZoomMultiThread({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 4);
}
