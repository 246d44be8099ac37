#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// Arrays that hold something for each column or each element are readable up to a multiple of so
// many columns.
inline constexpr ptrdiff_t kLinearPadding = 32;

// A run of destination columns as the kernels want them. An element is one channel of one pixel.
struct LinearColumns {
    ptrdiff_t first;         // the run's place in the row
    ptrdiff_t count;         // 1 or more
    ptrdiff_t inner;         // the leading ones whose source pixel has a right neighbour
    const int32_t* index;    // source pixel of each; never falls
    const float* fraction;   // of each, times 2^-16; 0 behind the inner ones
    const uint8_t* weights;  // for each element that of the pixel and that of its neighbour, in
                             // sixteenths; null unless all fractions are whole sixteenths
    const int32_t* windows;  // for each eight columns where the 16 source bytes begin that hold
                             // their pixels and neighbours; one channel only, and null if not all
                             // eight have such a window
    const uint8_t* orders;   // for each column the places of its two bytes in its window
};

// A destination row with the fraction of its source position, also times 2^-16 and, where the
// kernel weighs, in sixteenths.
struct LinearRow {
    uint8_t* dst;
    float fraction;
    float scaledFraction;
    uint16_t sixteenths;
};

// One source row resampled to `elements`, two bytes for each destination element.
using LinearGather = void (*)(const LinearColumns& columns, const uint8_t* row, uint16_t* elements);

// Destination rows, from the run's first pixel on, from the gathered upper and lower source row.
// Exactly `count` pixels of each are written.
using LinearBlend = void (*)(const LinearColumns& columns, const uint16_t* upper,
                             const uint16_t* lower, const LinearRow* rows, ptrdiff_t rowCount);

// With fractions of any kind, `pair` puts a pixel and its right neighbour side by side and
// `blendPairs` takes the single-precision steps. If all fractions of the columns and of the rows
// are whole sixteenths, every one of those steps is exact, and `weigh` and `blendWeighed` come to
// the same bytes in integers.
struct LinearForm {
    LinearGather pair;
    LinearBlend blendPairs;
    LinearGather weigh;
    LinearBlend blendWeighed;
};

struct LinearKernels {
    LinearForm oneChannel;
    LinearForm fourChannels;
};

TQ_DECLARE_KERNELS(LinearKernels, linearKernels)

}  // namespace tq
