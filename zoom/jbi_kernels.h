#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// A window is so many samples wide and high.
inline constexpr int kJbiWindow = 5;

// Arrays that hold something for each destination column are readable up to a multiple of so many
// columns, sample rows so many bytes past their last sample.
inline constexpr ptrdiff_t kJbiPadding = 16;

// What the weights come from: exp(-k / 64) by k up to 4096, and the runtime's exponential, in
// double precision and rounded to single, for arguments beyond that.
struct JbiExponential {
    const float* coarse;
    float (*runtime)(float e);
};

// Destination columns of a tile.
struct JbiColumns {
    ptrdiff_t count;
    const int32_t* index;  // of the window's first sample in the sample rows; never falls
    // Squared horizontal distance to each column of the window, infinite outside the image.
    const float* distance[kJbiWindow];
    const float* scale;  // of the squared distance, times 2^17
};

// One destination row of a tile.
struct JbiRow {
    const float* guide;
    const float* factor;   // of the squared difference, times 2^17
    const float* divisor;  // the variance, infinite where it is 0
    bool odd;              // some divisor is negative or not a number

    // The window's rows within the image, their squared distances, and per channel their bytes. The
    // plane that the weights follow is the only channel of one, and comes before the four.
    int rows;
    float distance[kJbiWindow];
    const uint8_t* samples[kJbiWindow][5];
};

struct JbiKernels {
    // Exactly the bytes of the tile's pixels are written.
    void (*row1)(const JbiColumns& columns, const JbiRow& row, const JbiExponential& exponential,
                 uint8_t* dst);
    void (*row4)(const JbiColumns& columns, const JbiRow& row, const JbiExponential& exponential,
                 uint8_t* dst);

    // The guide as floats, and the factors. Reads one pixel to the left and one to the right.
    void (*prepare)(const uint8_t* above, const uint8_t* row, const uint8_t* below, ptrdiff_t count,
                    float* guide, float* factor);

    // Four-byte pixels to a row of each channel.
    void (*split)(const uint8_t* pixels, ptrdiff_t count, uint8_t* const channels[4]);

    // Sums of the windows, each one column right of the one before, that begin at `rows`, and half
    // their variances about the means of these sums. Reads count + 4 bytes of each row.
    void (*sums)(const uint8_t* const rows[kJbiWindow], ptrdiff_t count, int32_t* sums);
    void (*variances)(const uint8_t* const rows[kJbiWindow], const int32_t* sums, ptrdiff_t count,
                      float* variances);

    // The weight that an exponent stands for.
    float (*weight)(float e, const JbiExponential& exponential);
};

TQ_DECLARE_KERNELS(JbiKernels, jbiKernels)

}  // namespace tq
