// Y extraction and RGB/BGRA repacking: plain forms, band tasks, MultiThread forms.

#include <tqipl/color.h>

#include "color/luma_and_repack_kernels.h"
#include "color/luma_and_repack_tasks.h"
#include "frame/band.h"
#include "frame/isa.h"
#include "frame/rows.h"

namespace {

using tq::LumaAndRepackKernels;

constexpr const LumaAndRepackKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(lumaAndRepackKernels);

// The row loop of all forms but IPL_BGRA2RGB. `count` is what the row kernel takes.
void ConvertRows(LumaAndRepackKernels::Row* row, int count, int height, int srcStride,
                 const unsigned char* src, int dstStride, unsigned char* dst) {
    if (count < 1) return;
    tq::ForEachRow(height, srcStride, src, dstStride, dst,
                   [&](const unsigned char* from, unsigned char* to) { row(from, to, count); });
}

void YuyvToY(int width, int height, int srcStride, unsigned char* src, int dstStride,
             unsigned char* dst) {
    ConvertRows(tq::SelectKernels(kKernels).yuyvToY, width, height, srcStride, src, dstStride, dst);
}

void UyvyToY(int width, int height, int srcStride, unsigned char* src, int dstStride,
             unsigned char* dst) {
    ConvertRows(tq::SelectKernels(kKernels).uyvyToY, width, height, srcStride, src, dstStride, dst);
}

void YuyvToHalfY(int width, int height, int srcStride, unsigned char* src, int dstStride,
                 unsigned char* dst) {
    ConvertRows(tq::SelectKernels(kKernels).yuyvToHalfY, width >> 1, height, srcStride, src,
                dstStride, dst);
}

void UyvyToHalfY(int width, int height, int srcStride, unsigned char* src, int dstStride,
                 unsigned char* dst) {
    ConvertRows(tq::SelectKernels(kKernels).uyvyToHalfY, width >> 1, height, srcStride, src,
                dstStride, dst);
}

// Half size takes every second row, here and nowhere else. One processor takes the half rows
// whatever `half` is, kept on purpose: hosts depend on it.
void ExtractY(int mode, void (*plain)(int, int, int, unsigned char*, int, unsigned char*),
              int width, int height, int srcStride, unsigned char* src, int dstStride,
              unsigned char* dst, int half) {
    if (half != 0) {
        height >>= 1;
        srcStride = tq::Mul32(srcStride, 2);
    }
    tq::RunPixelBands<CZYUV2Y_Task>(tq::kBandFormA, plain, width, height, srcStride, src, dstStride,
                                    dst, [mode, half](CZYUV2Y_Task& task) {
                                        task.m_nMode = mode;
                                        task.m_bHalf = half;
                                    });
}

// The rows of IPL_BGRA2RGB, each with a zero byte behind it. With dense rows that byte is the first
// of another row: downwards of the row after, which then overwrites it, and upwards of the row
// before, which keeps the zero. A byte in another band is left to that band, which gives it the
// same value.
void DropAlphaRows(int width, int height, int srcStride, const unsigned char* src, int dstStride,
                   unsigned char* dst, bool bandBefore, bool bandAfter) {
    if (width < 1) return;
    const auto row = tq::SelectKernels(kKernels).dropAlpha;
    const ptrdiff_t bytes = ptrdiff_t{3} * width;
    const bool down = dstStride == bytes, up = dstStride == -bytes;
    for (int r = 0; r < height; ++r) {
        const bool last = r + 1 == height;
        row(src, dst, width);
        if (!(down && last && bandAfter) && !(up && r == 0 && bandBefore)) dst[bytes] = 0;
        if (up && last && bandAfter) dst[0] = 0;
        if (!last) {
            src += srcStride;
            dst += dstStride;
        }
    }
}

}  // namespace

void IPL_RGB2BGRA(int width, int height, int srcStride, unsigned char* src, int dstStride,
                  unsigned char* dst) {
    ConvertRows(tq::SelectKernels(kKernels).addZeroAlpha, width, height, srcStride, src, dstStride,
                dst);
}

void IPL_BGRA2RGB(int width, int height, int srcStride, unsigned char* src, int dstStride,
                  unsigned char* dst) {
    DropAlphaRows(width, height, srcStride, src, dstStride, dst, false, false);
}

int CZYUV2Y_Task::Run() {
    if (m_nMode == 0)
        (m_bHalf == 0 ? YuyvToY : YuyvToHalfY)(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc,
                                               m_nDstStride, m_pDst);
    else if (m_nMode == 1)
        (m_bHalf == 0 ? UyvyToY : UyvyToHalfY)(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc,
                                               m_nDstStride, m_pDst);
    return 1;
}

int CZBGRA2RGB_Task::Run() {
    if (m_nMode == 0)
        DropAlphaRows(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst,
                      m_bBandBefore, m_bBandAfter);
    else if (m_nMode == 1)
        IPL_RGB2BGRA(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

void IPL_YUYV_To_YMultiThread(int width, int height, int srcStride, unsigned char* src,
                              int dstStride, unsigned char* dst, int half) {
    ExtractY(0, YuyvToHalfY, width, height, srcStride, src, dstStride, dst, half);
}

void IPL_UYVY_To_YMultiThread(int width, int height, int srcStride, unsigned char* src,
                              int dstStride, unsigned char* dst, int half) {
    ExtractY(1, UyvyToHalfY, width, height, srcStride, src, dstStride, dst, half);
}

void IPL_RGB2BGRA_MultiThread(int width, int height, int srcStride, unsigned char* src,
                              int dstStride, unsigned char* dst) {
    if (src == nullptr || dst == nullptr) return;
    tq::RunPixelBands<CZBGRA2RGB_Task>(tq::kBandFormA, IPL_RGB2BGRA, width, height, srcStride, src,
                                       dstStride, dst,
                                       [](CZBGRA2RGB_Task& task) { task.m_nMode = 1; });
}

void IPL_BGRA2RGB_MultiThread(int width, int height, int srcStride, unsigned char* src,
                              int dstStride, unsigned char* dst) {
    if (src == nullptr || dst == nullptr) return;
    const int bands = tq::PlanBands(tq::kBandFormA, height).count;
    int band = 0;
    tq::RunPixelBands<CZBGRA2RGB_Task>(tq::kBandFormA, IPL_BGRA2RGB, width, height, srcStride, src,
                                       dstStride, dst, [&](CZBGRA2RGB_Task& task) {
                                           task.m_nMode = 0;
                                           task.m_bBandBefore = band > 0;
                                           task.m_bBandAfter = ++band < bands;
                                       });
}
