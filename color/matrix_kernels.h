#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// One row of each layout on both sides. `count` is in pixels from AYUV to AYUV and in pairs
// otherwise, 1 or more. Rows need no alignment. Nothing is read past the last source byte or
// written past the last result. Rows of equal layouts may be the same: what a step takes is read
// before its results are written.
struct MatrixKernels {
    using Matrix = const int (&)[3][3];
    using Row = void(Matrix matrix, const uint8_t* src, uint8_t* dst, ptrdiff_t count);
    Row* ayuvToAyuv;
    Row* ayuvToYuyv;
    Row* ayuvToUyvy;
    Row* yuyvToAyuv;
    Row* uyvyToAyuv;
    Row* yuyvToYuyv;
    Row* uyvyToUyvy;
    Row* uyvyToYuyv;
    // The first luma of each pair less 128 instead of less 16.
    Row* darkYuyvToYuyv;
    Row* darkYuyvToUyvy;
    // In place. Alpha is neither read nor stored.
    void (*ayuv)(Matrix matrix, uint8_t* pixels, ptrdiff_t count);
    void (*planes)(Matrix matrix, uint8_t* y, uint8_t* u, uint8_t* v, ptrdiff_t pairs);
};

TQ_DECLARE_KERNELS(MatrixKernels, matrixKernels)

}  // namespace tq
