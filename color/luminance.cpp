// The luminance family: plain forms, band tasks, MultiThread forms.

#include <tqipl/luminance.h>

#include "color/luminance_kernels.h"
#include "color/luminance_tasks.h"
#include "frame/band.h"
#include "frame/isa.h"
#include "frame/rows.h"

namespace {

constexpr const tq::LuminanceKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(luminanceKernels);

// The row loop of every plain form. dstStride counts elements of Dst.
template <class Dst>
void ConvertRows(void (*row)(const uint8_t*, Dst*, ptrdiff_t), int width, int height, int srcStride,
                 const unsigned char* src, int dstStride, Dst* dst) {
    if (width < 1) return;
    tq::ForEachRow(height, srcStride, src, dstStride, dst,
                   [&](const unsigned char* from, Dst* to) { row(from, to, width); });
}

}  // namespace

void IPL_ARGB2LUM(int width, int height, int srcStride, unsigned char* src, int dstStride,
                  unsigned char* dst) {
    ConvertRows(tq::SelectKernels(kKernels).bgraToByte, width, height, srcStride, src, dstStride,
                dst);
}

void IPL_BGR10b_To_Lum(int width, int height, int srcStride, unsigned char* src, int dstStride,
                       unsigned char* dst) {
    ConvertRows(tq::SelectKernels(kKernels).bgr10ToByte, width, height, srcStride, src, dstStride,
                dst);
}

void IPL_BGR16b_To_Lum(int width, int height, int srcStride, unsigned char* src, int dstStride,
                       unsigned char* dst) {
    ConvertRows(tq::SelectKernels(kKernels).bgr16ToByte, width, height, srcStride, src, dstStride,
                dst);
}

void IPL_BGRA_To_Lum32(int width, int height, int srcStride, unsigned char* src, int dstStride,
                       int* dst) {
    ConvertRows(tq::SelectKernels(kKernels).bgraToSum, width, height, srcStride, src, dstStride,
                dst);
}

void IPL_BGR10b_To_Lum32(int width, int height, int srcStride, unsigned char* src, int dstStride,
                         int* dst) {
    ConvertRows(tq::SelectKernels(kKernels).bgr10ToSum, width, height, srcStride, src, dstStride,
                dst);
}

void IPL_BGR16b_To_Lum32(int width, int height, int srcStride, unsigned char* src, int dstStride,
                         int* dst) {
    ConvertRows(tq::SelectKernels(kKernels).bgr16ToSum, width, height, srcStride, src, dstStride,
                dst);
}

int CZARGB2LUMTask::Run() {
    IPL_ARGB2LUM(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZBGR2LUMTask::Run() {
    if (m_nMode == 0)
        IPL_BGR10b_To_Lum(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    else if (m_nMode == 1)
        IPL_BGR16b_To_Lum(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZBGRA2Lum32::Run() {
    IPL_BGRA_To_Lum32(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZBGR2LUM32::Run() {
    if (m_nMode == 0)
        IPL_BGR10b_To_Lum32(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    else if (m_nMode == 1)
        IPL_BGR16b_To_Lum32(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

void IPL_ARGB2LUM_MultiThread(int width, int height, int srcStride, unsigned char* src,
                              int dstStride, unsigned char* dst) {
    tq::RunPixelBands<CZARGB2LUMTask>(tq::kBandFormA, IPL_ARGB2LUM, width, height, srcStride, src,
                                      dstStride, dst);
}

void IPL_BGR10b_To_Lum_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst) {
    tq::RunPixelBands<CZBGR2LUMTask>(tq::kBandFormA, IPL_BGR10b_To_Lum, width, height, srcStride,
                                     src, dstStride, dst,
                                     [](CZBGR2LUMTask& task) { task.m_nMode = 0; });
}

void IPL_BGR16b_To_Lum_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst) {
    tq::RunPixelBands<CZBGR2LUMTask>(tq::kBandFormA, IPL_BGR16b_To_Lum, width, height, srcStride,
                                     src, dstStride, dst,
                                     [](CZBGR2LUMTask& task) { task.m_nMode = 1; });
}

void IPL_BGRA_To_Lum32_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, int* dst) {
    tq::RunPixelBands<CZBGRA2Lum32>(tq::kBandFormA, IPL_BGRA_To_Lum32, width, height, srcStride,
                                    src, dstStride, dst);
}

void IPL_BGR10b_To_Lum32_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                     int dstStride, int* dst) {
    tq::RunPixelBands<CZBGR2LUM32>(tq::kBandFormA, IPL_BGR10b_To_Lum32, width, height, srcStride,
                                   src, dstStride, dst,
                                   [](CZBGR2LUM32& task) { task.m_nMode = 0; });
}

void IPL_BGR16b_To_Lum32_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                     int dstStride, int* dst) {
    tq::RunPixelBands<CZBGR2LUM32>(tq::kBandFormA, IPL_BGR16b_To_Lum32, width, height, srcStride,
                                   src, dstStride, dst,
                                   [](CZBGR2LUM32& task) { task.m_nMode = 1; });
}
