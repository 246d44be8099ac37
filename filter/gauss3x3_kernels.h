#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

struct Gauss3x3Kernels {
    // `count` pixels, 1 or more, from three rows of source that begin a column to the left of the
    // first: weights 1 2 1, 2 4 2, 1 2 1, in sixteenths, rounded to nearest.
    void (*row)(const uint8_t* above, const uint8_t* middle, const uint8_t* below, uint8_t* dst,
                ptrdiff_t count);
};

TQ_DECLARE_KERNELS(Gauss3x3Kernels, gauss3x3Kernels)

}  // namespace tq
