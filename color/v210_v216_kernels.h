#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// One row of each form. `groups` counts groups of six pixels (16 bytes of V210), `pairs` pairs of
// pixels (8 bytes of V216), `count` pixels (4 bytes of V216); each is 1 or more. Rows need no
// alignment and do not overlap. Nothing is read past the last group, pair or pixel, or written past
// the last result; of one group or pair, the luma is written first, then U, then V.
struct V210V216Kernels {
    void (*v210ToUyvy)(const uint8_t* src, uint8_t* dst, ptrdiff_t groups);
    void (*v210ToYuyv)(const uint8_t* src, uint8_t* dst, ptrdiff_t groups);
    void (*v210ToPlanes8)(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, ptrdiff_t groups);
    void (*v210ToPlanes16)(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v,
                           ptrdiff_t groups);
    void (*v210FromPlanes16)(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst,
                             ptrdiff_t groups);
    void (*v210ToLum32)(const uint8_t* src, int* dst, ptrdiff_t groups);
    void (*v216ToUyvy)(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs);
    void (*v216ToPlanes16)(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, ptrdiff_t pairs);
    void (*v216FromPlanes16)(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst,
                             ptrdiff_t pairs);
    void (*v216ToLum32)(const uint8_t* src, int* dst, ptrdiff_t count);
};

TQ_DECLARE_KERNELS(V210V216Kernels, v210V216Kernels)

}  // namespace tq
