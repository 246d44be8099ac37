#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// Radii up to which each way of dividing a window's sum is exact, as average_kernels.cpp proves.
inline constexpr int kNarrowAverageRadius = 7;
inline constexpr int kFloatAverageRadius = 63;

// Columns have so many more of any value behind them.
inline constexpr ptrdiff_t kAveragePadding = 64;

// How `count` pixels of a row, 1 or more, come from the sums of the columns of their windows, which
// begin at `columns` for the first pixel. `prefix` has room for as many sums as there are columns,
// padding included. A sum wraps as a signed 32-bit number does, and so does the number of pixels in
// a window; the quotient of the two is truncated and stored by its low eight bits.
template <class Sum>
using AverageRow = void (*)(const Sum* columns, uint32_t* prefix, int radius, uint8_t* dst,
                            ptrdiff_t count);

// Sums of columns gain a row, or gain one and lose one.
template <class Sum> struct AverageColumns {
    void (*gain)(Sum* columns, const uint8_t* gained, ptrdiff_t count);
    void (*move)(Sum* columns, const uint8_t* gained, const uint8_t* lost, ptrdiff_t count);
};

struct AverageKernels {
    AverageColumns<uint16_t> columns16;                 // radius up to kFloatAverageRadius
    AverageColumns<uint32_t> columns32;                 // any radius
    AverageRow<uint16_t> narrow[kNarrowAverageRadius];  // one for each radius from 1 on
    AverageRow<uint16_t> byFloat;                       // up to kFloatAverageRadius
    AverageRow<uint32_t> byDouble;                      // any radius
};

TQ_DECLARE_KERNELS(AverageKernels, averageKernels)

}  // namespace tq
