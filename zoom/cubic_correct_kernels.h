#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// So many source columns past those that a filter needs are readable.
inline constexpr ptrdiff_t kFiveTapPadding = 8;

// The five taps of 256 places between two samples, in 1024ths, with zeros behind them: for the
// columns and for the rows.
struct FiveTaps {
    int32_t along[256][8];
    int16_t down[256][8];
};

// Places in the cells of `count` destination columns, and what is around them. A cell is `half`
// divided by 2, and leftmost[k] + channels * (cell - 1) is the first of its five columns in rows
// 2 * k and 2 * k + 1, counted from the uppermost of five. A column of each channel has two source
// rows' bytes as 16-bit halves, the upper row's in the lower half; the sixth row is of no account.
struct FiveTapRow {
    ptrdiff_t count;
    const int32_t* half;
    const float *x, *y;
    const uint32_t* leftmost[3];
};

// weave: rows as a filter takes them.
//
// filter: exactly `count` pixels, rounded to nearest and held in 0 to 255, of one or four channels.
struct CubicCorrectKernels {
    void (*weave)(const uint8_t* upper, const uint8_t* lower, ptrdiff_t count, uint32_t* woven);
    void (*filterOneChannel)(const FiveTaps& taps, const FiveTapRow& row, uint8_t* dst);
    void (*filterFourChannels)(const FiveTaps& taps, const FiveTapRow& row, uint8_t* dst);
};

TQ_DECLARE_KERNELS(CubicCorrectKernels, cubicCorrectKernels)

}  // namespace tq
