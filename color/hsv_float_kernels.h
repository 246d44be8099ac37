#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// One row of each form. `count` is in pixels, `pairs` in pairs of pixels, 1 or more. Rows need no
// more alignment than their elements and do not overlap. Floats may hold anything. Nothing is read
// past the last source element, and nothing is written but the results: toBgr and toLimitedBgr
// leave byte 3 alone, and toBgr and toBgra the colour of a pixel whose hue has no sector.
struct HsvFloatKernels {
    void (*fromBgra)(const uint8_t* src, float* h, float* s, float* v, ptrdiff_t count);
    void (*toBgr)(const float* h, const float* s, const float* v, uint8_t* dst, ptrdiff_t count);
    void (*toBgra)(const float* h, const float* s, const float* v, const float* alpha, uint8_t* dst,
                   ptrdiff_t count);

    // The sector is the floor, every hue has a colour, and channels are limited to bytes.
    void (*toLimitedBgr)(const float* h, const float* s, const float* v, uint8_t* dst,
                         ptrdiff_t count);

    // Three floats a pixel.
    void (*fromYuyv601)(const uint8_t* src, float* dst, ptrdiff_t pairs);
    void (*fromYuyv709)(const uint8_t* src, float* dst, ptrdiff_t pairs);
    void (*toYuyv601)(const float* src, uint8_t* dst, ptrdiff_t pairs);
    void (*toYuyv709)(const float* src, uint8_t* dst, ptrdiff_t pairs);

    // Three planes.
    void (*planesFromYuyv601)(const uint8_t* src, float* h, float* s, float* v, ptrdiff_t pairs);
    void (*planesFromYuyv709)(const uint8_t* src, float* h, float* s, float* v, ptrdiff_t pairs);
    void (*planesToYuyv601)(const float* h, const float* s, const float* v, uint8_t* dst,
                            ptrdiff_t pairs);
    void (*planesToYuyv709)(const float* h, const float* s, const float* v, uint8_t* dst,
                            ptrdiff_t pairs);
};

TQ_DECLARE_KERNELS(HsvFloatKernels, hsvFloatKernels)

}  // namespace tq
