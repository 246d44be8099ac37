#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// One row of each layout, taken apart or put together. `count` is in pixels (in pairs for YUYV and
// UYVY), 1 or more. Rows need no alignment. Nothing is read past the last source byte or written
// past the last result. Rows may overlap: every byte is as if written pixel by pixel, in the order
// of the planes.
struct PlanesKernels {
    using Split = void(const uint8_t* src, uint8_t* const (&planes)[4], ptrdiff_t count);
    using Build = void(const uint8_t* const (&planes)[4], uint8_t* dst, ptrdiff_t count);
    struct Layout {
        Split* split;
        Build* build;
    };
    Layout argb3, argb4, bgr24, ayuv3, ayuv4, yuyv, uyvy;
};

TQ_DECLARE_KERNELS(PlanesKernels, planesKernels)

}  // namespace tq
