#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// One row of each form. `pairs` is in pairs of pixels, 1 or more: eight bytes become four. Rows
// need no alignment and do not overlap. Nothing is read past the last source byte or written past
// the last result.
struct ArgbToPacked422Kernels {
    void (*yuyv601)(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs);
    void (*yuyv709)(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs);
    void (*uvSkipY601)(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs);
    void (*uyvy709)(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs);
};

TQ_DECLARE_KERNELS(ArgbToPacked422Kernels, argbToPacked422Kernels)

}  // namespace tq
