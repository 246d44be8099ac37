#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// One row of each form. `pairs` is in pairs of pixels, 1 or more: two bytes of Y and one each of U
// and V stand for eight of ARGB. Rows need no alignment and do not overlap. Nothing is read past
// the last source byte or written past the last result.
struct Planar422Kernels {
    using FromPlanes = void(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst,
                            ptrdiff_t pairs);
    using ToPlanes = void(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, ptrdiff_t pairs);
    FromPlanes* fullRangeToArgb;
    FromPlanes* studio601ToArgb;
    FromPlanes* studio709ToArgb;
    ToPlanes* argbTo601;
    ToPlanes* argbTo709;
};

TQ_DECLARE_KERNELS(Planar422Kernels, planar422Kernels)

}  // namespace tq
