#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

// The TFI zoom's bytes follow from the runtime's expf to the last bit, and calling it up to eight
// times a pixel is nearly all of its time. So the kernels make each pixel nearly, with an
// exponential of their own and sums in any order, beside a bound of how far that may be from the
// value that the steps give. Where no whole number lies within the bound, the truncated byte is
// that of the steps; the few other pixels are unsure, and the caller takes the steps for them.
//
// How the bound is found. u is 2^-24, the largest relative error of one rounding; R is the range of
// the four samples. Position weights are held to be 0 or more, so that both quotients are weighted
// means, and an error e of each weight moves a mean by no more than e * R.
//   The weight of activity: the kernels' is within 2^-19 of the true exponential, and the runtime's
//     within 2^-19 by assumption, 16 units of a float's last place: together below 2^-18.
//   The first mean: 2^-18 * R of the weights, and 12 u and 10 u of 255 for the roundings of the
//     steps and of the kernels: with the differences n from it, below 4e-4 + 4e-6 * R.
//   The exponent n^2 * G / den, where K is the largest G / den and |n| < R + 1: from n, below
//     K * (2 * R + 1) * (4e-4 + 4e-6 * R); from 16 roundings, below K * (R + 1)^2 * 1e-6. Both are
//     below K * (R + 1) * (8e-4 + 9e-6 * (R + 1)).
//     It is at most 43: G is at most 11.2, and n^2 / den at most 3.8, which it is where one sample
//     of four differs by 1.
//   The second mean: 2^-18 for each of the two exponentials and the exponent's error, a fifth more
//     where that is up to 1/4, times R; and 26 u of 255 for roundings, below 4e-4. Where the
//     exponent's error is above 1/4 the bound below is above 1/2, and the pixel is unsure.
// The bound is 1e-3 + R * (1.6e-5 + K * (R + 1) * (2^-9 + 2^-15 * (R + 1))), about twice all that.

namespace tq {

// Source samples and destination columns of a tile at most, and what their arrays have in reserve
// for whole vectors.
inline constexpr ptrdiff_t kTFISamples = 1024;
inline constexpr ptrdiff_t kTFIColumns = 256;
inline constexpr ptrdiff_t kTFIPadding = 32;

// A source row at the tile's samples: its bytes, their activities G by the steps, and their
// activity weights, nearly.
struct TFISamples {
    float value[kTFISamples + kTFIPadding];
    float activity[kTFISamples + kTFIPadding];
    float weight[kTFISamples + kTFIPadding];
};

// The tile's columns: for each the sample left of its position, where the right one follows, and
// the position weights of both. Behind the last, readable up to a multiple of kTFIPadding.
struct TFIColumns {
    ptrdiff_t count;
    int32_t index[kTFIColumns + kTFIPadding];
    float leftPosition[kTFIColumns + kTFIPadding];
    float rightPosition[kTFIColumns + kTFIPadding];
};

// A source row at the tile's columns: both samples, their activities, their weights times the
// position weights, and the sums of these weights and of the weighted samples.
struct TFIRow {
    float left[kTFIColumns + kTFIPadding];
    float right[kTFIColumns + kTFIPadding];
    float leftActivity[kTFIColumns + kTFIPadding];
    float rightActivity[kTFIColumns + kTFIPadding];
    float leftWeight[kTFIColumns + kTFIPadding];
    float rightWeight[kTFIColumns + kTFIPadding];
    float weight[kTFIColumns + kTFIPadding];
    float weighted[kTFIColumns + kTFIPadding];
};

// What a column has of two rows: the factor from n^2 * G to the exponent of 2, and the bound. The
// bound is negative where all four samples are equal and without activity: their weights are 1, and
// the kernels take the steps themselves.
struct TFIWindows {
    float factor[kTFIColumns + kTFIPadding];
    float bound[kTFIColumns + kTFIPadding];
};

struct TFIBlend {
    const TFIColumns* columns;
    const TFIRow* upper;
    const TFIRow* lower;
    const TFIWindows* windows;
    float upperPosition;
    float lowerPosition;
};

struct TFIKernels {
    // `count` samples, from `own` on, none of which is on the image's border. Three whole rows of
    // `count` + 2 bytes are read, from one before the pointers on.
    void (*sample)(const uint8_t* above, const uint8_t* own, const uint8_t* below, ptrdiff_t count,
                   float* value, float* activity, float* weight);
    void (*place)(const TFIColumns& columns, const TFISamples& samples, TFIRow& row);
    // The spread is half the variance, or half the deviation in whole numbers.
    void (*measureVariance)(ptrdiff_t count, const TFIRow& upper, const TFIRow& lower,
                            TFIWindows& windows);
    void (*measureDeviation)(ptrdiff_t count, const TFIRow& upper, const TFIRow& lower,
                             TFIWindows& windows);
    // The bytes of a destination row, `columns->count` of them. The unsure columns are listed in
    // `unsure`, which has room for all, and their number is returned; their bytes mean nothing.
    ptrdiff_t (*blend)(const TFIBlend& blend, uint8_t* dst, int32_t* unsure);
};

TQ_DECLARE_KERNELS(TFIKernels, tfiKernels)

}  // namespace tq
