// ARGB to packed 4:2:2: plain forms, band tasks, MultiThread forms.

#include <tqipl/color.h>

#include "color/argb_to_packed422_kernels.h"
#include "color/argb_to_packed422_tasks.h"
#include "frame/band.h"
#include "frame/isa.h"
#include "frame/rows.h"

namespace {

constexpr const tq::ArgbToPacked422Kernels* kKernels[] =
    TQ_KERNELS_BY_LEVEL(argbToPacked422Kernels);

bool IsNull(const unsigned char* src, const unsigned char* dst) {
    return src == nullptr || dst == nullptr;
}

// The row loop of every plain form.
void ConvertRows(void (*row)(const uint8_t*, uint8_t*, ptrdiff_t), int width, int height,
                 int srcStride, const unsigned char* src, int dstStride, unsigned char* dst) {
    const int pairs = width / 2;
    if (pairs < 1) return;
    tq::ForEachRow(height, srcStride, src, dstStride, dst,
                   [&](const unsigned char* from, unsigned char* to) { row(from, to, pairs); });
}

}  // namespace

void IPL_ARGB2YUYV_601(int width, int height, int srcStride, unsigned char* src, int dstStride,
                       unsigned char* dst) {
    if (width == 0 || height < 1 || IsNull(src, dst)) return;
    ConvertRows(tq::SelectKernels(kKernels).yuyv601, width, height, srcStride, src, dstStride, dst);
}

void IPL_ARGB2YUYV_709(int width, int height, int srcStride, unsigned char* src, int dstStride,
                       unsigned char* dst) {
    if (width == 0 || height < 1 || IsNull(src, dst)) return;
    ConvertRows(tq::SelectKernels(kKernels).yuyv709, width, height, srcStride, src, dstStride, dst);
}

void IPL_ARGB2UYVY_601(int width, int height, int srcStride, unsigned char* src, int dstStride,
                       unsigned char* dst) {
    if (width == 0 || height < 1 || IsNull(src, dst)) return;
    ConvertRows(tq::SelectKernels(kKernels).uvSkipY601, width, height, srcStride, src, dstStride,
                dst);
}

void IPL_ARGB2UYVY_709(int width, int height, int srcStride, unsigned char* src, int dstStride,
                       unsigned char* dst) {
    if (width == 0 || height < 1 || IsNull(src, dst)) return;
    ConvertRows(tq::SelectKernels(kKernels).uyvy709, width, height, srcStride, src, dstStride, dst);
}

int CZARGB2YUYVTask_601::Run() {
    IPL_ARGB2YUYV_601(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZARGB2YUYVTask_709::Run() {
    IPL_ARGB2YUYV_709(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZARGB2UYVYTask_601::Run() {
    IPL_ARGB2UYVY_601(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZARGB2UYVYTask_709::Run() {
    IPL_ARGB2UYVY_709(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

void IPL_ARGB2YUYV_601_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst) {
    if (IsNull(src, dst)) return;
    tq::RunPixelBands<CZARGB2YUYVTask_601>(tq::kBandFormC, IPL_ARGB2YUYV_601, width, height,
                                           srcStride, src, dstStride, dst);
}

void IPL_ARGB2YUYV_709_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst) {
    if (IsNull(src, dst)) return;
    tq::RunPixelBands<CZARGB2YUYVTask_709>(tq::kBandFormC, IPL_ARGB2YUYV_709, width, height,
                                           srcStride, src, dstStride, dst);
}

void IPL_ARGB2UYVY_601_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst) {
    if (IsNull(src, dst)) return;
    tq::RunPixelBands<CZARGB2UYVYTask_601>(tq::kBandFormC, IPL_ARGB2UYVY_601, width, height,
                                           srcStride, src, dstStride, dst);
}

void IPL_ARGB2UYVY_709_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst) {
    if (IsNull(src, dst)) return;
    tq::RunPixelBands<CZARGB2UYVYTask_709>(tq::kBandFormC, IPL_ARGB2UYVY_709, width, height,
                                           srcStride, src, dstStride, dst);
}
