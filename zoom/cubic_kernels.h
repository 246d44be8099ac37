#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// Arrays that hold something for each column are readable up to a multiple of so many.
inline constexpr ptrdiff_t kCubicPadding = 8;

// Taps that a column has room for at most.
inline constexpr ptrdiff_t kCubicTaps = 8;

// A run of destination columns. Each reads a window of source pixels from its begin on: four for
// four taps; for six taps eight of one channel or six of four. Pixels that are no taps weigh 0.
struct CubicColumns {
    ptrdiff_t count;
    const int32_t* begin;  // source pixel of each column's first tap
    // For each column two 16-bit weights, the first in the low half: of taps 0 and 2, 1 and 3, 4
    // and 6, 5 and 7 for one channel; of taps 0 and 1, 2 and 3, 4 and 5 for four.
    const uint32_t* weights[4];
};

// The unrounded weighted sums of a source row, for exactly `count` columns.
using CubicSumRow = void (*)(const CubicColumns& columns, const uint8_t* row, int32_t* sums);

// Weights are below 2048 in magnitude, so are all weights of a column or row together.
struct CubicKernels {
    CubicSumRow sumRow1[2];  // one channel: four taps, six taps
    CubicSumRow sumRow4[2];  // four channels: the same

    // Sums of weight 1024 to bytes.
    void (*finish)(const int32_t* sums, ptrdiff_t count, uint8_t* dst);

    // One destination row from `taps` rows of sums, of weight 1024 * 1024, or of bytes, of weight
    // 1024.
    void (*blendSums)(const int32_t* const* rows, const int32_t* weights, ptrdiff_t taps,
                      ptrdiff_t count, uint8_t* dst);
    void (*blendBytes)(const uint8_t* const* rows, const int32_t* weights, ptrdiff_t taps,
                       ptrdiff_t count, uint8_t* dst);
};

TQ_DECLARE_KERNELS(CubicKernels, cubicKernels)

}  // namespace tq
