#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// A row of a window, with a row above and a row below it that have the same weights, as one row of
// their sums, from its column 0; and the weights from the middle outwards, an even number of them,
// the last one 0 if need be.
struct GaussRow {
    const uint16_t* sums;
    const int16_t* weights;
};

// `count` is 1 or more. All rows but src and bytes are readable and writable to kGaussStep - 1
// columns past it. Nothing else is written.
inline constexpr ptrdiff_t kGaussStep = 16;
struct GaussKernels {
    // The sums of two rows, either of which may be null for a row of zeros.
    void (*addRows)(const uint8_t* first, const uint8_t* second, uint16_t* sums, ptrdiff_t count);
    // The weighted sums of the windows, modulo 2^32, whose rows reach weightCount - 1 columns past
    // both ends.
    void (*weigh)(const GaussRow* rows, ptrdiff_t rowCount, ptrdiff_t weightCount, uint32_t* sums,
                  ptrdiff_t count);
    // Quotients of sums below 2^31 and below 256 * divisor by a divisor above 0.
    void (*divide)(const uint32_t* sums, int divisor, uint8_t* dst, ptrdiff_t count);
};

TQ_DECLARE_KERNELS(GaussKernels, gaussKernels)

}  // namespace tq
