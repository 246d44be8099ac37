#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// Arrays of sums are readable for so many elements behind their last.
inline constexpr ptrdiff_t kSuperPadding = 32;

// Source pixels, from a column's first one on, that the kernels may read at a time.
inline constexpr ptrdiff_t kSuperWindow = 4;

// A run of destination columns. Column i covers the source pixels begin[i] to end[i], the first by
// beginFraction[i] and the last by endFraction[i]; tap t of a column is the pixel begin[i] + t.
//
// In the inner columns, which lead, taps 1 to plain - 1 count in full. Taps plain to taps - 1 weigh
// edges[(t - plain) * edgeStride + i], and taps from there on nothing; taps rounded up to a whole
// number of windows lie within the row. The single ones of them, which end before tap `plain` (so
// that one pixel may count by both fractions), are made otherwise, as are the columns behind.
struct SuperColumns {
    ptrdiff_t first;  // the run's place in the row
    ptrdiff_t count;  // 1 or more
    ptrdiff_t inner;
    ptrdiff_t taps;
    ptrdiff_t plain;
    ptrdiff_t edgeStride;
    ptrdiff_t singleCount;
    const int32_t* begin;
    const int32_t* end;
    const float* beginFraction;
    const float* endFraction;
    const float* edges;
    const int32_t* singles;
    const int32_t* windows;  // for each four columns where the 16 source bytes begin that hold all
                             // their taps; one channel and up to four taps only, null if not all
                             // four have such a window
    const uint8_t* orders;   // for each column the places in its window of four taps
};

// What a destination row is made of: sums of source rows, and how the upper and the lower one
// count. Null: no such row, or one that counts nothing.
struct SuperRow {
    const float* upper;
    const float* middle;
    const float* lower;
    float topFraction;
    float bottomFraction;
    float norm;
};

// For each element of the run the sum of its taps in `row`, added from left to right to `start`, or
// to nothing if that is null. `start` and `sums` are different arrays.
using SuperSum = void (*)(const SuperColumns& columns, const uint8_t* row, const float* start,
                          float* sums);

// The product of the sides of a block at most: sums fit 15 bits.
inline constexpr ptrdiff_t kSuperMostBlock = 128;

// Blocks of source pixels side by side, each of which makes one destination pixel: with a whole
// scale of 2 or more on both axes all fractions are 0 or 1 and all sums whole, in any order.
struct SuperBlocks {
    ptrdiff_t width;
    ptrdiff_t height;
    ptrdiff_t stride;
    float norm;
};

// `count` destination pixels out of as many blocks.
using SuperAverage = void (*)(const SuperBlocks& blocks, const uint8_t* src, ptrdiff_t count,
                              uint8_t* dst);

struct SuperKernels {
    SuperSum sumOneChannel;
    SuperSum sumFourChannels;
    // (lower * bottomFraction + (middle + upper * topFraction)) * norm, held in 0 to 255 and
    // truncated, for `count` elements. Exactly so many bytes are written.
    void (*finish)(const SuperRow& row, ptrdiff_t count, uint8_t* dst);
    SuperAverage averageOneChannel;
    SuperAverage averageFourChannels;
};

TQ_DECLARE_KERNELS(SuperKernels, superKernels)

}  // namespace tq
