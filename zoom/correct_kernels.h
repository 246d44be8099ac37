#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// Arrays that hold something for each column are readable, and those that kernels fill are
// writable, for so many columns more.
inline constexpr ptrdiff_t kCorrectPadding = 32;

// A run of destination columns. A cell is what lies between two by two source pixels, and is
// numbered by its left column, counted from the run's first source column; this is the one before
// the first cell. Each cell has the 4 x 4 pixels around it.
struct CorrectColumns {
    ptrdiff_t count;        // destination columns, 1 or more
    ptrdiff_t sourceCount;  // source columns; the last cell is the third from the end
    const int32_t* half;    // twice each column's cell, plus 1 in the cell's right half, which is
                            // a fraction above 0.5; rises by 1 at most from column to column
    const float* fraction;  // of each in its cell
};

// What the destination columns make of a source row that bounds their cells above or below.
struct CorrectRow {
    float* position;  // the adapted one in the cell, 0 to 255
    float* behind;    // weights of the steps from the cell's right pixel on to the next,
    float* before;    // and to its left pixel from the last
    float* fraction;  // corrected by position and weights of this row itself
};

// Where the pixels of a destination row lie in their cells, and the first of them.
struct CorrectPlaces {
    const float *x, *y;  // each in 0 to 1
    uint8_t* dst;
};

// Rows in the same cells, blended in a way that ends in a truncation. `upper` and `lower` are
// source rows as LinearForm::pair gathers them. Exactly `count` pixels of each row are written.
using CorrectBlend = void (*)(const uint16_t* upper, const uint16_t* lower, ptrdiff_t count,
                              const CorrectPlaces* rows, ptrdiff_t rowCount);

// `softWeights` is the weight of a step between two pixels, by their signed difference.
//
// along: a source row by itself. `row` is at the run's first source column; `weights` and `trends`
// are room for sourceCount numbers.
//
// across: weights of the steps from one source row to the next one's same columns.
//
// trends: |third - first| - |fourth - second| in each column of four source rows, those around the
// cells.
//
// mix: another row's corrected fractions, with the positions of `row`.
//
// halves: corrected fractions down the left and the right side of a cell, for either half of it,
// from the weights of the steps above and below the cells. `positions` and `fractions` are room
// for sourceCount numbers, and the results are two for each source column.
//
// cross: where the line between the fractions on top and at the bottom meets the line between those
// at the left and right, to x and y.
//
// blend: destination rows, from the pixels around the cells.
struct CorrectKernels {
    void (*along)(const CorrectColumns& columns, const uint8_t* row, const float* softWeights,
                  float* weights, float* trends, const CorrectRow& result);
    void (*across)(const uint8_t* upper, const uint8_t* lower, ptrdiff_t sourceCount,
                   const float* softWeights, float* weights);
    void (*trends)(const uint8_t* const* rows, ptrdiff_t sourceCount, float* trends);
    void (*mix)(const CorrectRow& row, const CorrectRow& other, ptrdiff_t count, float* fractions);
    void (*halves)(const float* above, const float* below, const float* trends,
                   ptrdiff_t sourceCount, float fraction, float* positions, float* fractions,
                   float* left, float* right);
    void (*cross)(const CorrectColumns& columns, const float* top, const float* bottom,
                  const float* left, const float* right, float* x, float* y);
    CorrectBlend blendOneChannel;
    CorrectBlend blendFourChannels;
};

TQ_DECLARE_KERNELS(CorrectKernels, correctKernels)

}  // namespace tq
