// The deep BGR formats: plain forms, band tasks, MultiThread forms.

#include <tqipl/deep.h>

#include "color/deep_bgr_kernels.h"
#include "color/deep_bgr_tasks.h"
#include "color/plane_arrays.h"
#include "frame/band.h"
#include "frame/isa.h"
#include "frame/rows.h"

namespace {

using tq::PlaneArray;
using tq::StrideArray;

constexpr const tq::DeepBgrKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(deepBgrKernels);

using PackedRow = void (*)(const uint8_t* src, uint8_t* dst, ptrdiff_t count);
using ToBgra16Row = void (*)(const uint8_t* src, uint8_t* samples, uint8_t* luminance,
                             ptrdiff_t count);

void ConvertRows(PackedRow row, int width, int height, int srcStride, const unsigned char* src,
                 int dstStride, unsigned char* dst) {
    if (width < 1) return;
    tq::ForEachRow(height, srcStride, src, dstStride, dst,
                   [&](const unsigned char* from, unsigned char* to) { row(from, to, width); });
}

// With one plane pointer the luminance goes into the plane of the samples. Then pixels are written
// one by one, the luminance of each last: what is written last stands.
template <int kSrcBytes>
void ConvertRowToBgra16(ToBgra16Row row, const unsigned char* src, unsigned char* samples,
                        unsigned char* luminance, int width) {
    if (!tq::Overlap(samples, ptrdiff_t{8} * width, luminance, ptrdiff_t{2} * width)) {
        row(src, samples, luminance, width);
        return;
    }
    for (ptrdiff_t x = 0; x < width; ++x)
        row(src + kSrcBytes * x, samples + 8 * x, luminance + 2 * x, 1);
}

template <int kSrcBytes>
void ConvertRowsToBgra16(ToBgra16Row row, int width, int height, int srcStride,
                         const unsigned char* src, StrideArray& strides, PlaneArray& planes) {
    if (height < 1) return;
    unsigned char *samples = planes.GetAt(0), *luminance = planes.GetAt(1);
    const int sampleStride = strides.GetAt(0), luminanceStride = strides.GetAt(1);
    if (width < 1) return;
    for (int y = 0; y < height; ++y) {
        ConvertRowToBgra16<kSrcBytes>(row, src, samples, luminance, width);
        if (y + 1 < height) {
            src += srcStride;
            samples += sampleStride;
            luminance += luminanceStride;
        }
    }
}

void ConvertRowsFromBgra16(PackedRow row, int width, int height, StrideArray& strides,
                           PlaneArray& planes, int dstStride, unsigned char* dst) {
    if (height < 1) return;
    ConvertRows(row, width, height, strides.GetAt(0), planes.GetAt(0), dstStride, dst);
}

}  // namespace

void IPL_BGRTQ10b_To_BGRA(int width, int height, int srcStride, unsigned char* src, int dstStride,
                          unsigned char* dst) {
    ConvertRows(tq::SelectKernels(kKernels).tq10ToBgra, width, height, srcStride, src, dstStride,
                dst);
}

void IPL_BGRTQ10b_To_BGRTQ16b(int width, int height, int srcStride, unsigned char* src,
                              int dstStride, unsigned char* dst) {
    ConvertRows(tq::SelectKernels(kKernels).tq10ToTq16, width, height, srcStride, src, dstStride,
                dst);
}

void IPL_BGRTQ16b_To_BGRA(int width, int height, int srcStride, unsigned char* src, int dstStride,
                          unsigned char* dst) {
    ConvertRows(tq::SelectKernels(kKernels).tq16ToBgra, width, height, srcStride, src, dstStride,
                dst);
}

void IPL_BGRTQ16b_To_BGRTQ10b(int width, int height, int srcStride, unsigned char* src,
                              int dstStride, unsigned char* dst) {
    ConvertRows(tq::SelectKernels(kKernels).tq16ToTq10, width, height, srcStride, src, dstStride,
                dst);
}

void IPL_BGR10b_To_BGRA16b(int width, int height, int srcStride, unsigned char* src,
                           CTQArray<int, int>& strides,
                           CTQArray<unsigned char*, unsigned char*>& planes) {
    ConvertRowsToBgra16<4>(tq::SelectKernels(kKernels).bgr10ToBgra16, width, height, srcStride, src,
                           strides, planes);
}

void IPL_BGR16b_To_BGRA16b(int width, int height, int srcStride, unsigned char* src,
                           CTQArray<int, int>& strides,
                           CTQArray<unsigned char*, unsigned char*>& planes) {
    ConvertRowsToBgra16<6>(tq::SelectKernels(kKernels).bgr16ToBgra16, width, height, srcStride, src,
                           strides, planes);
}

void IPL_BGRA16b_To_BGR10b(int width, int height, CTQArray<int, int>& strides,
                           CTQArray<unsigned char*, unsigned char*>& planes, int dstStride,
                           unsigned char* dst) {
    ConvertRowsFromBgra16(tq::SelectKernels(kKernels).bgra16ToBgr10, width, height, strides, planes,
                          dstStride, dst);
}

void IPL_BGRA16b_To_BGR16b(int width, int height, CTQArray<int, int>& strides,
                           CTQArray<unsigned char*, unsigned char*>& planes, int dstStride,
                           unsigned char* dst) {
    ConvertRowsFromBgra16(tq::SelectKernels(kKernels).bgra16ToBgr16, width, height, strides, planes,
                          dstStride, dst);
}

int CZBGRTQ10btoBGRA_Task::Run() {
    if (m_nMode == 0)
        IPL_BGRTQ10b_To_BGRA(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    else if (m_nMode == 1)
        IPL_BGRTQ10b_To_BGRTQ16b(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZBGRTQ16btoBGRA_Task::Run() {
    if (m_nMode == 0)
        IPL_BGRTQ16b_To_BGRA(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    else if (m_nMode == 1)
        IPL_BGRTQ16b_To_BGRTQ10b(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZBGR10b_To_BGRA16b_Task::Run() {
    IPL_BGR10b_To_BGRA16b(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_strides, m_planes);
    return 1;
}

int CZBGR16b_To_BGRA16b_Task::Run() {
    IPL_BGR16b_To_BGRA16b(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_strides, m_planes);
    return 1;
}

int CZBGRA16b_To_BGR10b_Task::Run() {
    IPL_BGRA16b_To_BGR10b(m_nWidth, m_nHeight, m_strides, m_planes, m_nDstStride, m_pDst);
    return 1;
}

int CZBGRA16b_To_BGR16b_Task::Run() {
    IPL_BGRA16b_To_BGR16b(m_nWidth, m_nHeight, m_strides, m_planes, m_nDstStride, m_pDst);
    return 1;
}

void IPL_BGRTQ10b_To_BGRAMultiThread(int width, int height, int srcStride, unsigned char* src,
                                     int dstStride, unsigned char* dst) {
    tq::RunPixelBands<CZBGRTQ10btoBGRA_Task>(tq::kBandFormA, IPL_BGRTQ10b_To_BGRA, width, height,
                                             srcStride, src, dstStride, dst,
                                             [](CZBGRTQ10btoBGRA_Task& task) { task.m_nMode = 0; });
}

void IPL_BGRTQ10b_To_BGRTQ16bMultiThread(int width, int height, int srcStride, unsigned char* src,
                                         int dstStride, unsigned char* dst) {
    tq::RunPixelBands<CZBGRTQ10btoBGRA_Task>(tq::kBandFormA, IPL_BGRTQ10b_To_BGRTQ16b, width,
                                             height, srcStride, src, dstStride, dst,
                                             [](CZBGRTQ10btoBGRA_Task& task) { task.m_nMode = 1; });
}

void IPL_BGRTQ16b_To_BGRAMultiThread(int width, int height, int srcStride, unsigned char* src,
                                     int dstStride, unsigned char* dst) {
    tq::RunPixelBands<CZBGRTQ16btoBGRA_Task>(tq::kBandFormA, IPL_BGRTQ16b_To_BGRA, width, height,
                                             srcStride, src, dstStride, dst,
                                             [](CZBGRTQ16btoBGRA_Task& task) { task.m_nMode = 0; });
}

void IPL_BGRTQ16b_To_BGRTQ10bMultiThread(int width, int height, int srcStride, unsigned char* src,
                                         int dstStride, unsigned char* dst) {
    tq::RunPixelBands<CZBGRTQ16btoBGRA_Task>(tq::kBandFormA, IPL_BGRTQ16b_To_BGRTQ10b, width,
                                             height, srcStride, src, dstStride, dst,
                                             [](CZBGRTQ16btoBGRA_Task& task) { task.m_nMode = 1; });
}

void IPL_BGR10b_To_BGRA16bMultiThread(int width, int height, int srcStride, unsigned char* src,
                                      CTQArray<int, int>& strides,
                                      CTQArray<unsigned char*, unsigned char*>& planes) {
    tq::RunPackedToPlanesBands<CZBGR10b_To_BGRA16b_Task>(
        tq::kBandFormA, IPL_BGR10b_To_BGRA16b, width, height, srcStride, src, strides, planes);
}

void IPL_BGR16b_To_BGRA16bMultiThread(int width, int height, int srcStride, unsigned char* src,
                                      CTQArray<int, int>& strides,
                                      CTQArray<unsigned char*, unsigned char*>& planes) {
    tq::RunPackedToPlanesBands<CZBGR16b_To_BGRA16b_Task>(
        tq::kBandFormA, IPL_BGR16b_To_BGRA16b, width, height, srcStride, src, strides, planes);
}

void IPL_BGRA16b_To_BGR10bMultiThread(int width, int height, CTQArray<int, int>& strides,
                                      CTQArray<unsigned char*, unsigned char*>& planes,
                                      int dstStride, unsigned char* dst) {
    tq::RunPlanesToPackedBands<CZBGRA16b_To_BGR10b_Task>(
        tq::kBandFormA, IPL_BGRA16b_To_BGR10b, width, height, strides, planes, dstStride, dst);
}

void IPL_BGRA16b_To_BGR16bMultiThread(int width, int height, CTQArray<int, int>& strides,
                                      CTQArray<unsigned char*, unsigned char*>& planes,
                                      int dstStride, unsigned char* dst) {
    tq::RunPlanesToPackedBands<CZBGRA16b_To_BGR16b_Task>(
        tq::kBandFormA, IPL_BGRA16b_To_BGR16b, width, height, strides, planes, dstStride, dst);
}
