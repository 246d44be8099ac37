#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// One row of each form. `count` is in pixels, 1 or more. Rows need no alignment and do not overlap.
// Nothing is read past the last source pixel or written past the last result, and no alpha byte of
// BGRA is written. Where a pixel has a luminance, that is written after its samples.
struct DeepBgrKernels {
    void (*tq10ToBgra)(const uint8_t* src, uint8_t* dst, ptrdiff_t count);
    void (*tq10ToTq16)(const uint8_t* src, uint8_t* dst, ptrdiff_t count);
    void (*tq16ToBgra)(const uint8_t* src, uint8_t* dst, ptrdiff_t count);
    void (*tq16ToTq10)(const uint8_t* src, uint8_t* dst, ptrdiff_t count);
    void (*bgr10ToBgra16)(const uint8_t* src, uint8_t* samples, uint8_t* luminance,
                          ptrdiff_t count);
    void (*bgr16ToBgra16)(const uint8_t* src, uint8_t* samples, uint8_t* luminance,
                          ptrdiff_t count);
    void (*bgra16ToBgr10)(const uint8_t* samples, uint8_t* dst, ptrdiff_t count);
    void (*bgra16ToBgr16)(const uint8_t* samples, uint8_t* dst, ptrdiff_t count);
};

TQ_DECLARE_KERNELS(DeepBgrKernels, deepBgrKernels)

}  // namespace tq
