#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// A sum of squared differences as it comes out when each is added to a single-precision float, in
// order: mantissa * 2^exponent. The mantissa is below 2^24, and 2^23 or more unless the exponent is
// 0.
struct FloatSum {
    uint32_t mantissa = 0;
    int exponent = 0;
};

struct PsnrKernels {
    // Adds the `count` squared differences of two rows.
    void (*plane)(const uint8_t* a, const uint8_t* b, ptrdiff_t count, FloatSum& sum);
    // Of rows of `pairs` times four bytes Y U Y V: one sum each for Y, U and V.
    void (*yuyv)(const uint8_t* a, const uint8_t* b, ptrdiff_t pairs, FloatSum (&sums)[3]);
};

TQ_DECLARE_KERNELS(PsnrKernels, psnrKernels)

}  // namespace tq
