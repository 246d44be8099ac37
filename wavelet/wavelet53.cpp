// The 5/3 transform of images, its inverse, and the filter of its low-pass taps.

#include "wavelet/wavelet53.h"

#include <tqipl/wavelet.h>

#include "wavelet/scratch_lines.h"
#include "wavelet/wavelet53_kernels.h"

namespace {

constexpr const tq::Wavelet53Kernels* kKernels[] = TQ_KERNELS_BY_LEVEL(wavelet53Kernels);

// Two lines of `values` values each, as scratch memory holds one.
tq::SplitLine SplitLineAt(tq::ScratchLines& lines, ptrdiff_t i) {
    return {lines.Line<int16_t>(2 * i), lines.Line<int16_t>(2 * i + 1)};
}

// A place of a periodic line of n; i is at most n outside.
ptrdiff_t Periodic(ptrdiff_t i, ptrdiff_t n) { return i < 0 ? i + n : i < n ? i : i - n; }

// The ring of the filter's lines.
constexpr ptrdiff_t kRingLines = 8;

}  // namespace

void CZDWT53::ForwardImage(int width, int height, int srcStride, const unsigned char* src,
                           int dstStride, int* dst) const {
    if (width < 2 || height < 1) return;
    const tq::Wavelet53Kernels& kernels = tq::SelectKernels(kKernels);
    const ptrdiff_t pairs = width >> 1, rowPairs = height >> 1;
    const auto row = [&](ptrdiff_t y) { return src + y * srcStride; };
    const auto result = [&](ptrdiff_t y) { return dst + y * dstStride; };
    tq::ScratchLines lines(4, int64_t{sizeof(int16_t)} * pairs);
    const tq::SplitLine low = SplitLineAt(lines, 0), high = SplitLineAt(lines, 1);

    for (ptrdiff_t k = 0; k < rowPairs; ++k) {
        const uint8_t* rows[5];
        for (ptrdiff_t i = 0; i < 5; ++i) rows[i] = row(Periodic(2 * k + i - 2, 2 * rowPairs));
        kernels.forwardColumns(rows, pairs, low, high);
        kernels.forwardLine(low, pairs, result(k));
        kernels.forwardLine(high, pairs, result(rowPairs + k));
    }
    if (height % 2 != 0) {
        kernels.split(row(height - 1), pairs, low);
        kernels.forwardLine(low, pairs, result(height - 1));
    }
}

void CZDWT53::InverseImage(int width, int height, int srcStride, const int* src, int dstStride,
                           unsigned char* dst) const {
    if (width < 2 || height < 2) return;
    const tq::Wavelet53Kernels& kernels = tq::SelectKernels(kKernels);
    const ptrdiff_t pairs = width >> 1, rowPairs = height >> 1;
    const size_t places = 2 * static_cast<size_t>(pairs), rows = 2 * static_cast<size_t>(rowPairs);
    const tq::StableSource source(
        {reinterpret_cast<const unsigned char*>(src),
         static_cast<ptrdiff_t>(sizeof(int)) * srcStride, sizeof(int) * places, rows},
        {dst, dstStride, places, rows});
    const auto row = [&](ptrdiff_t y) { return reinterpret_cast<const int*>(source.Row(y)); };
    tq::ScratchLines lines(4, int64_t{sizeof(int)} * pairs);
    int* const evenLow = lines.Line<int>(0);
    int* const evenHigh = lines.Line<int>(1);
    int* const oddLow = lines.Line<int>(2);
    int* const oddHigh = lines.Line<int>(3);

    for (ptrdiff_t k = 0; k < rowPairs; ++k) {
        const ptrdiff_t before = Periodic(k - 1, rowPairs), after = Periodic(k + 1, rowPairs);
        const int* const low[] = {row(k), row(after)};
        const int* const high[] = {row(rowPairs + before), row(rowPairs + k),
                                   row(rowPairs + after)};
        const int* const lowBehind[] = {low[0] + pairs, low[1] + pairs};
        const int* const highBehind[] = {high[0] + pairs, high[1] + pairs, high[2] + pairs};
        kernels.inverseColumns(low, high, pairs, evenLow, oddLow);
        kernels.inverseColumns(lowBehind, highBehind, pairs, evenHigh, oddHigh);
        kernels.inverseLine(evenLow, evenHigh, pairs, dst + 2 * k * dstStride);
        kernels.inverseLine(oddLow, oddHigh, pairs, dst + (2 * k + 1) * dstStride);
    }
}

void IPL_FwdWavelet_53_C1(int width, int height, int srcStride, unsigned char* src, int dstStride,
                          int* dst) {
    CZDWT53().ForwardImage(width, height, srcStride, src, dstStride, dst);
}

void IPL_InvWavelet_53_C1(int width, int height, int srcStride, int* src, int dstStride,
                          unsigned char* dst) {
    CZDWT53().InverseImage(width, height, srcStride, src, dstStride, dst);
}

void IPL_WaveletFilter_53_C1(unsigned int width, unsigned int height, unsigned int stride,
                             unsigned char* image) {
    if (width < 4 || height < 5) return;
    const tq::Wavelet53Kernels& kernels = tq::SelectKernels(kKernels);
    const auto row = [&](ptrdiff_t y) { return image + y * static_cast<ptrdiff_t>(stride); };
    tq::ScratchLines memory(2 * kRingLines, int64_t{sizeof(int16_t)} * ((int64_t{width} + 1) / 2));
    tq::SplitLine ring[kRingLines];
    for (ptrdiff_t i = 0; i < kRingLines; ++i) ring[i] = SplitLineAt(memory, i);

    // A row is written when the lines of the two rows below it have been made.
    for (ptrdiff_t y = 0; y < static_cast<ptrdiff_t>(height); ++y) {
        kernels.filterLine(row(y), width, ring[y % kRingLines]);
        if (y < 4) continue;
        const tq::SplitLine* lines[5];
        for (ptrdiff_t i = 0; i < 5; ++i) lines[i] = &ring[(y - 4 + i) % kRingLines];
        kernels.filterColumns(lines, width, row(y - 2));
    }
}

void IPL_Wavelet_BSpline_C1(unsigned int, unsigned int, unsigned int, unsigned char*) {}
