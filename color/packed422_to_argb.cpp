// Packed 4:2:2 to ARGB: plain forms, band tasks, MultiThread forms.

#include <tqipl/color.h>

#include "color/packed422_to_argb_kernels.h"
#include "color/packed422_to_argb_tasks.h"
#include "frame/band.h"
#include "frame/isa.h"
#include "frame/rows.h"

namespace {

constexpr const tq::Packed422ToArgbKernels* kKernels[] =
    TQ_KERNELS_BY_LEVEL(packed422ToArgbKernels);

// The row loop of every plain form. `count` is what the row kernel takes.
void ConvertRows(void (*row)(const uint8_t*, uint8_t*, ptrdiff_t), int count, int height,
                 int srcStride, const unsigned char* src, int dstStride, unsigned char* dst) {
    if (count < 1) return;
    tq::ForEachRow(height, srcStride, src, dstStride, dst,
                   [&](const unsigned char* from, unsigned char* to) { row(from, to, count); });
}

// The studio-range forms look at all their arguments, and their MultiThread forms at the pointers;
// the full-range forms look at the height only.
bool IsNull(const unsigned char* src, const unsigned char* dst) {
    return src == nullptr || dst == nullptr;
}

}  // namespace

void IPL_YUYV422_To_ARGB444(int width, int height, int srcStride, unsigned char* src, int dstStride,
                            unsigned char* dst) {
    if (height < 1) return;
    ConvertRows(tq::SelectKernels(kKernels).fullRangeYuyv, width / 2, height, srcStride, src,
                dstStride, dst);
}

void IPL_UYVY422_To_ARGB444(int width, int height, int srcStride, unsigned char* src, int dstStride,
                            unsigned char* dst) {
    if (height < 1) return;
    ConvertRows(tq::SelectKernels(kKernels).fullRangeUyvy, width / 2, height, srcStride, src,
                dstStride, dst);
}

void IPL_VUYT444_To_ARGB444(int width, int height, int srcStride, unsigned char* src, int dstStride,
                            unsigned char* dst) {
    if (height < 1) return;
    ConvertRows(tq::SelectKernels(kKernels).fullRangeVuyt, width, height, srcStride, src, dstStride,
                dst);
}

void IPL_YUYV2ARGB_601(int width, int height, int srcStride, unsigned char* src, int dstStride,
                       unsigned char* dst) {
    if (width == 0 || height < 1 || IsNull(src, dst)) return;
    ConvertRows(tq::SelectKernels(kKernels).studio601Yuyv, width / 2, height, srcStride, src,
                dstStride, dst);
}

void IPL_UYVY2ARGB_601(int width, int height, int srcStride, unsigned char* src, int dstStride,
                       unsigned char* dst) {
    if (width == 0 || height < 1 || IsNull(src, dst)) return;
    ConvertRows(tq::SelectKernels(kKernels).studio601Uyvy, width / 2, height, srcStride, src,
                dstStride, dst);
}

void IPL_YUYV2ARGB_709(int width, int height, int srcStride, unsigned char* src, int dstStride,
                       unsigned char* dst) {
    if (width == 0 || height < 1 || IsNull(src, dst)) return;
    ConvertRows(tq::SelectKernels(kKernels).studio709Yuyv, width / 2, height, srcStride, src,
                dstStride, dst);
}

void IPL_UYVY2ARGB_709(int width, int height, int srcStride, unsigned char* src, int dstStride,
                       unsigned char* dst) {
    if (width == 0 || height < 1 || IsNull(src, dst)) return;
    ConvertRows(tq::SelectKernels(kKernels).studio709Uyvy, width / 2, height, srcStride, src,
                dstStride, dst);
}

int CYUYV2ARGBTask::Run() {
    IPL_YUYV422_To_ARGB444(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CUYVY2ARGBTask::Run() {
    IPL_UYVY422_To_ARGB444(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CVUYT2ARGBTask::Run() {
    IPL_VUYT444_To_ARGB444(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZYUYV2ARGBTask_601::Run() {
    IPL_YUYV2ARGB_601(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZUYVY2ARGBTask_601::Run() {
    IPL_UYVY2ARGB_601(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZYUYV2ARGBTask_709::Run() {
    IPL_YUYV2ARGB_709(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZUYVY2ARGBTask_709::Run() {
    IPL_UYVY2ARGB_709(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

void IPL_YUYV422_To_ARGB444_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                        int dstStride, unsigned char* dst) {
    tq::RunPixelBands<CYUYV2ARGBTask>(tq::kBandFormC, IPL_YUYV422_To_ARGB444, width, height,
                                      srcStride, src, dstStride, dst);
}

void IPL_UYVY422_To_ARGB444_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                        int dstStride, unsigned char* dst) {
    tq::RunPixelBands<CUYVY2ARGBTask>(tq::kBandFormC, IPL_UYVY422_To_ARGB444, width, height,
                                      srcStride, src, dstStride, dst);
}

void IPL_VUYT444_To_ARGB444_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                        int dstStride, unsigned char* dst) {
    tq::RunPixelBands<CVUYT2ARGBTask>(tq::kBandFormC, IPL_VUYT444_To_ARGB444, width, height,
                                      srcStride, src, dstStride, dst);
}

void IPL_YUYV2ARGB_601_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst) {
    if (IsNull(src, dst)) return;
    tq::RunPixelBands<CZYUYV2ARGBTask_601>(tq::kBandFormC, IPL_YUYV2ARGB_601, width, height,
                                           srcStride, src, dstStride, dst);
}

void IPL_UYVY2ARGB_601_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst) {
    if (IsNull(src, dst)) return;
    tq::RunPixelBands<CZUYVY2ARGBTask_601>(tq::kBandFormC, IPL_UYVY2ARGB_601, width, height,
                                           srcStride, src, dstStride, dst);
}

void IPL_YUYV2ARGB_709_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst) {
    if (IsNull(src, dst)) return;
    tq::RunPixelBands<CZYUYV2ARGBTask_709>(tq::kBandFormC, IPL_YUYV2ARGB_709, width, height,
                                           srcStride, src, dstStride, dst);
}

void IPL_UYVY2ARGB_709_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst) {
    if (IsNull(src, dst)) return;
    tq::RunPixelBands<CZUYVY2ARGBTask_709>(tq::kBandFormC, IPL_UYVY2ARGB_709, width, height,
                                           srcStride, src, dstStride, dst);
}
