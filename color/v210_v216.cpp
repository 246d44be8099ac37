// V210 and V216: plain forms, band tasks, MultiThread forms.

#include <tqipl/deep.h>

#include "color/packed422_to_argb_kernels.h"
#include "color/plane_arrays.h"
#include "color/v210_v216_kernels.h"
#include "color/v210_v216_tasks.h"
#include "frame/band.h"
#include "frame/isa.h"
#include "frame/rows.h"

namespace {

using tq::PlaneArray;
using tq::StrideArray;

constexpr const tq::V210V216Kernels* kKernels[] = TQ_KERNELS_BY_LEVEL(v210V216Kernels);
constexpr const tq::Packed422ToArgbKernels* kArgbKernels[] =
    TQ_KERNELS_BY_LEVEL(packed422ToArgbKernels);

// The row loop of the forms with one source and one destination. dstStride counts elements of Dst,
// `count` is what the row kernel takes.
template <class Dst>
void ConvertRows(void (*row)(const uint8_t*, Dst*, ptrdiff_t), int count, int height, int srcStride,
                 const unsigned char* src, int dstStride, Dst* dst) {
    if (count < 1) return;
    tq::ForEachRow(height, srcStride, src, dstStride, dst,
                   [&](const unsigned char* from, Dst* to) { row(from, to, count); });
}

using ByteRow = void (*)(const uint8_t* src, uint8_t* dst, ptrdiff_t count);

// What is converted together: a group of V210 or a pair of V216.
struct Unit {
    int pairs, bytes;
};
constexpr Unit kGroup = {3, 16}, kPair = {1, 8};

// To BGRA in two steps, block by block: toUyvy gives the upper eight bits as UYVY, and the row
// kernel of packed 4:2:2 takes them on, so that the arithmetic stands in one place.
template <const Unit& kUnit>
void ConvertRowsToBgra(ByteRow toUyvy, ByteRow toBgra, int units, int height, int srcStride,
                       const unsigned char* src, int dstStride, unsigned char* dst) {
    constexpr int kBlock = 256 / kUnit.pairs;
    if (units < 1) return;
    tq::ForEachRow(height, srcStride, src, dstStride, dst,
                   [&](const unsigned char* from, unsigned char* to) {
                       uint8_t uyvy[4 * kUnit.pairs * kBlock];
                       for (int left = units; left > 0; left -= kBlock) {
                           const int count = left < kBlock ? left : kBlock;
                           toUyvy(from, uyvy, count);
                           toBgra(uyvy, to, kUnit.pairs * count);
                           if (left > kBlock) {
                               from += kUnit.bytes * kBlock;
                               to += 8 * kUnit.pairs * kBlock;
                           }
                       }
                   });
}

// A row of the planes of YUVP216, and the way to the next.
struct PlaneRows {
    unsigned char* at[3];
    int strides[3];

    PlaneRows(StrideArray& strideArray, PlaneArray& planeArray) {
        for (int k = 0; k < 3; ++k) {
            at[k] = planeArray.GetAt(k);
            strides[k] = strideArray.GetAt(k);
        }
    }
    void Next() {
        for (int k = 0; k < 3; ++k) at[k] += strides[k];
    }
};

using ToPlanesRow = void (*)(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v,
                             ptrdiff_t units);
using FromPlanesRow = void (*)(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst,
                               ptrdiff_t units);

// Fewer than three plane pointers name one plane twice or thrice. Then units are written one by
// one, the luma of each first, then U, then V: what is written last stands.
template <const Unit& kUnit>
void ConvertRowToPlanes(ToPlanesRow row, const unsigned char* src, const PlaneRows& planes,
                        int units) {
    const ptrdiff_t chroma = ptrdiff_t{2} * kUnit.pairs * units, luma = 2 * chroma;
    unsigned char *y = planes.at[0], *u = planes.at[1], *v = planes.at[2];
    if (!tq::Overlap(y, luma, u, chroma) && !tq::Overlap(y, luma, v, chroma) &&
        !tq::Overlap(u, chroma, v, chroma)) {
        row(src, y, u, v, units);
        return;
    }
    for (ptrdiff_t i = 0; i < units; ++i) {
        const ptrdiff_t at = 2 * kUnit.pairs * i;
        row(src + kUnit.bytes * i, y + 2 * at, u + at, v + at, 1);
    }
}

template <const Unit& kUnit>
void ConvertRowsToPlanes(ToPlanesRow row, int units, int height, int srcStride,
                         const unsigned char* src, StrideArray& strides, PlaneArray& planes) {
    if (height < 1) return;
    PlaneRows rows(strides, planes);
    if (units < 1) return;
    for (int y = 0; y < height; ++y) {
        ConvertRowToPlanes<kUnit>(row, src, rows, units);
        if (y + 1 < height) {
            src += srcStride;
            rows.Next();
        }
    }
}

void ConvertRowsFromPlanes(FromPlanesRow row, int units, int height, StrideArray& strides,
                           PlaneArray& planes, int dstStride, unsigned char* dst) {
    if (height < 1) return;
    PlaneRows rows(strides, planes);
    if (units < 1) return;
    for (int y = 0; y < height; ++y) {
        row(rows.at[0], rows.at[1], rows.at[2], dst, units);
        if (y + 1 < height) {
            rows.Next();
            dst += dstStride;
        }
    }
}

}  // namespace

void IPL_V210_To_UYVY(int width, int height, int srcStride, unsigned char* src, int dstStride,
                      unsigned char* dst) {
    ConvertRows(tq::SelectKernels(kKernels).v210ToUyvy, width / 6, height, srcStride, src,
                dstStride, dst);
}

void IPL_V210_To_YUYV(int width, int height, int srcStride, unsigned char* src, int dstStride,
                      unsigned char* dst) {
    ConvertRows(tq::SelectKernels(kKernels).v210ToYuyv, width / 6, height, srcStride, src,
                dstStride, dst);
}

void IPL_V210_To_YUVP422(int width, int height, int srcStride, unsigned char* src, int,
                         unsigned char* dst) {
    const int groups = width / 6;
    if (height < 1 || groups < 1) return;
    const auto row = tq::SelectKernels(kKernels).v210ToPlanes8;
    const int size = tq::Mul32(width, height);
    unsigned char* u = dst + size;
    unsigned char* v = u + size / 2;
    for (int y = 0; y < height; ++y) {
        // The product is halved, not the width: rows of an odd width begin unevenly, and stay so.
        const int chroma = tq::Mul32(y, width) / 2;
        row(src, dst + tq::Mul32(y, width), u + chroma, v + chroma, groups);
        if (y + 1 < height) src += srcStride;
    }
}

void IPL_V210_To_BGRA_601(int width, int height, int srcStride, unsigned char* src, int dstStride,
                          unsigned char* dst) {
    ConvertRowsToBgra<kGroup>(tq::SelectKernels(kKernels).v210ToUyvy,
                              tq::SelectKernels(kArgbKernels).studio601Uyvy, width / 6, height,
                              srcStride, src, dstStride, dst);
}

void IPL_V210_To_BGRA_709(int width, int height, int srcStride, unsigned char* src, int dstStride,
                          unsigned char* dst) {
    ConvertRowsToBgra<kGroup>(tq::SelectKernels(kKernels).v210ToUyvy,
                              tq::SelectKernels(kArgbKernels).studio709Uyvy, width / 6, height,
                              srcStride, src, dstStride, dst);
}

void IPL_V210_To_YUVP216(int width, int height, int srcStride, unsigned char* src,
                         CTQArray<int, int>& strides,
                         CTQArray<unsigned char*, unsigned char*>& planes) {
    ConvertRowsToPlanes<kGroup>(tq::SelectKernels(kKernels).v210ToPlanes16, width / 6, height,
                                srcStride, src, strides, planes);
}

void IPL_YUVP216_To_V210(int width, int height, CTQArray<int, int>& strides,
                         CTQArray<unsigned char*, unsigned char*>& planes, int dstStride,
                         unsigned char* dst) {
    ConvertRowsFromPlanes(tq::SelectKernels(kKernels).v210FromPlanes16, width / 6, height, strides,
                          planes, dstStride, dst);
}

void IPL_V210_To_Lum32(int width, int height, int srcStride, unsigned char* src, int dstStride,
                       int* dst) {
    ConvertRows(tq::SelectKernels(kKernels).v210ToLum32, width / 6, height, srcStride, src,
                dstStride, dst);
}

void IPL_V216_To_BGRA_601(int width, int height, int srcStride, unsigned char* src, int dstStride,
                          unsigned char* dst) {
    ConvertRowsToBgra<kPair>(tq::SelectKernels(kKernels).v216ToUyvy,
                             tq::SelectKernels(kArgbKernels).studio601Uyvy, width / 2, height,
                             srcStride, src, dstStride, dst);
}

void IPL_V216_To_BGRA_709(int width, int height, int srcStride, unsigned char* src, int dstStride,
                          unsigned char* dst) {
    ConvertRowsToBgra<kPair>(tq::SelectKernels(kKernels).v216ToUyvy,
                             tq::SelectKernels(kArgbKernels).studio709Uyvy, width / 2, height,
                             srcStride, src, dstStride, dst);
}

void IPL_V216_To_YUVP216(int width, int height, int srcStride, unsigned char* src,
                         CTQArray<int, int>& strides,
                         CTQArray<unsigned char*, unsigned char*>& planes) {
    ConvertRowsToPlanes<kPair>(tq::SelectKernels(kKernels).v216ToPlanes16, width / 2, height,
                               srcStride, src, strides, planes);
}

void IPL_YUVP216_To_V216(int width, int height, CTQArray<int, int>& strides,
                         CTQArray<unsigned char*, unsigned char*>& planes, int dstStride,
                         unsigned char* dst) {
    ConvertRowsFromPlanes(tq::SelectKernels(kKernels).v216FromPlanes16, width / 2, height, strides,
                          planes, dstStride, dst);
}

// Counts pixels, not pairs: every luma is taken.
void IPL_V216_To_Lum32(int width, int height, int srcStride, unsigned char* src, int dstStride,
                       int* dst) {
    ConvertRows(tq::SelectKernels(kKernels).v216ToLum32, width, height, srcStride, src, dstStride,
                dst);
}

int CZV210toBGRA_Task::Run() {
    if (m_nMode == 0)
        IPL_V210_To_BGRA_601(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    else if (m_nMode == 1)
        IPL_V210_To_BGRA_709(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZV216toBGRA_Task::Run() {
    if (m_nMode == 0)
        IPL_V216_To_BGRA_601(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    else if (m_nMode == 1)
        IPL_V216_To_BGRA_709(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZV210toLum32_Task::Run() {
    IPL_V210_To_Lum32(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZV216toLum32_Task::Run() {
    IPL_V216_To_Lum32(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZV210toYUVP216_Task::Run() {
    IPL_V210_To_YUVP216(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_strides, m_planes);
    return 1;
}

int CZV216toYUVP216_Task::Run() {
    IPL_V216_To_YUVP216(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_strides, m_planes);
    return 1;
}

int CZYUVP216toV210_Task::Run() {
    IPL_YUVP216_To_V210(m_nWidth, m_nHeight, m_strides, m_planes, m_nDstStride, m_pDst);
    return 1;
}

int CZYUVP216toV216_Task::Run() {
    IPL_YUVP216_To_V216(m_nWidth, m_nHeight, m_strides, m_planes, m_nDstStride, m_pDst);
    return 1;
}

void IPL_V210_To_BGRA_601MultiThread(int width, int height, int srcStride, unsigned char* src,
                                     int dstStride, unsigned char* dst) {
    tq::RunPixelBands<CZV210toBGRA_Task>(tq::kBandFormA, IPL_V210_To_BGRA_601, width, height,
                                         srcStride, src, dstStride, dst,
                                         [](CZV210toBGRA_Task& task) { task.m_nMode = 0; });
}

void IPL_V210_To_BGRA_709MultiThread(int width, int height, int srcStride, unsigned char* src,
                                     int dstStride, unsigned char* dst) {
    tq::RunPixelBands<CZV210toBGRA_Task>(tq::kBandFormA, IPL_V210_To_BGRA_709, width, height,
                                         srcStride, src, dstStride, dst,
                                         [](CZV210toBGRA_Task& task) { task.m_nMode = 1; });
}

void IPL_V210_To_YUVP216MultiThread(int width, int height, int srcStride, unsigned char* src,
                                    CTQArray<int, int>& strides,
                                    CTQArray<unsigned char*, unsigned char*>& planes) {
    tq::RunPackedToPlanesBands<CZV210toYUVP216_Task>(tq::kBandFormA, IPL_V210_To_YUVP216, width,
                                                     height, srcStride, src, strides, planes);
}

void IPL_YUVP216_To_V210MultiThread(int width, int height, CTQArray<int, int>& strides,
                                    CTQArray<unsigned char*, unsigned char*>& planes, int dstStride,
                                    unsigned char* dst) {
    tq::RunPlanesToPackedBands<CZYUVP216toV210_Task>(tq::kBandFormA, IPL_YUVP216_To_V210, width,
                                                     height, strides, planes, dstStride, dst);
}

void IPL_V210_To_Lum32MultiThread(int width, int height, int srcStride, unsigned char* src,
                                  int dstStride, int* dst) {
    tq::RunPixelBands<CZV210toLum32_Task>(tq::kBandFormA, IPL_V210_To_Lum32, width, height,
                                          srcStride, src, dstStride, dst);
}

void IPL_V216_To_BGRA_601MultiThread(int width, int height, int srcStride, unsigned char* src,
                                     int dstStride, unsigned char* dst) {
    tq::RunPixelBands<CZV216toBGRA_Task>(tq::kBandFormA, IPL_V216_To_BGRA_601, width, height,
                                         srcStride, src, dstStride, dst,
                                         [](CZV216toBGRA_Task& task) { task.m_nMode = 0; });
}

void IPL_V216_To_BGRA_709MultiThread(int width, int height, int srcStride, unsigned char* src,
                                     int dstStride, unsigned char* dst) {
    tq::RunPixelBands<CZV216toBGRA_Task>(tq::kBandFormA, IPL_V216_To_BGRA_709, width, height,
                                         srcStride, src, dstStride, dst,
                                         [](CZV216toBGRA_Task& task) { task.m_nMode = 1; });
}

void IPL_V216_To_YUVP216MultiThread(int width, int height, int srcStride, unsigned char* src,
                                    CTQArray<int, int>& strides,
                                    CTQArray<unsigned char*, unsigned char*>& planes) {
    tq::RunPackedToPlanesBands<CZV216toYUVP216_Task>(tq::kBandFormA, IPL_V216_To_YUVP216, width,
                                                     height, srcStride, src, strides, planes);
}

void IPL_YUVP216_To_V216MultiThread(int width, int height, CTQArray<int, int>& strides,
                                    CTQArray<unsigned char*, unsigned char*>& planes, int dstStride,
                                    unsigned char* dst) {
    tq::RunPlanesToPackedBands<CZYUVP216toV216_Task>(tq::kBandFormA, IPL_YUVP216_To_V216, width,
                                                     height, strides, planes, dstStride, dst);
}

void IPL_V216_To_Lum32MultiThread(int width, int height, int srcStride, unsigned char* src,
                                  int dstStride, int* dst) {
    tq::RunPixelBands<CZV216toLum32_Task>(tq::kBandFormA, IPL_V216_To_Lum32, width, height,
                                          srcStride, src, dstStride, dst);
}
