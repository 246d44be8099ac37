#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// One row of each form. `pairs` is in pairs of pixels, `count` in pixels, 1 or more: four bytes
// become eight, or four become four. Rows need no alignment and do not overlap. Nothing is read
// past the last source byte or written past the last result.
struct Packed422ToArgbKernels {
    void (*fullRangeYuyv)(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs);
    void (*fullRangeUyvy)(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs);
    void (*fullRangeVuyt)(const uint8_t* src, uint8_t* dst, ptrdiff_t count);
    void (*studio601Yuyv)(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs);
    void (*studio601Uyvy)(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs);
    void (*studio709Yuyv)(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs);
    void (*studio709Uyvy)(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs);
};

TQ_DECLARE_KERNELS(Packed422ToArgbKernels, packed422ToArgbKernels)

}  // namespace tq
