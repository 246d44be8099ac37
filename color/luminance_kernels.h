#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// One row of each luminance form. `count` is in pixels, 1 or more. Rows need no alignment. Nothing
// is read past the last source pixel or written past the last result. A row may be converted in
// place: the pixels that a step takes are read before its results are written, each once.
struct LuminanceKernels {
    void (*bgraToByte)(const uint8_t* src, uint8_t* dst, ptrdiff_t count);
    void (*bgr10ToByte)(const uint8_t* src, uint8_t* dst, ptrdiff_t count);
    void (*bgr16ToByte)(const uint8_t* src, uint8_t* dst, ptrdiff_t count);
    void (*bgraToSum)(const uint8_t* src, int* dst, ptrdiff_t count);
    void (*bgr10ToSum)(const uint8_t* src, int* dst, ptrdiff_t count);
    void (*bgr16ToSum)(const uint8_t* src, int* dst, ptrdiff_t count);
};

TQ_DECLARE_KERNELS(LuminanceKernels, luminanceKernels)

}  // namespace tq
