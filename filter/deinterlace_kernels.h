#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

struct DeinterlaceKernels {
    // Means of the bytes of two rows, halves rounded up.
    void (*mean)(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count);
};

TQ_DECLARE_KERNELS(DeinterlaceKernels, deinterlaceKernels)

}  // namespace tq
