#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// One row of each form. `count` is in source pixels (in pairs for the half forms), 1 or more. Rows
// need no alignment. Nothing is read past the last source pixel or pair or written past the last
// result: dropAlpha writes three bytes a pixel and no zero behind them.
struct LumaAndRepackKernels {
    using Row = void(const uint8_t* src, uint8_t* dst, ptrdiff_t count);
    Row* yuyvToY;
    Row* uyvyToY;
    Row* yuyvToHalfY;
    Row* uyvyToHalfY;
    Row* addZeroAlpha;  // red, green, blue to blue, green, red, 0
    Row* dropAlpha;     // blue, green, red, alpha to red, green, blue
};

TQ_DECLARE_KERNELS(LumaAndRepackKernels, lumaAndRepackKernels)

}  // namespace tq
