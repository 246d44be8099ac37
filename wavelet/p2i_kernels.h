#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// What a filtered sum of eight weights undergoes: it is added to, shifted and limited.
struct P2iRange {
    int rounding;  // 0 or 4
    int low, high;
};

// One filtered row from the five source rows around its own, upmost first. `count` is in samples,
// 1 or more. dst is none of the rows.
using P2iFilter = void (*)(const uint8_t* const* rows, ptrdiff_t count, const P2iRange& range,
                           uint8_t* dst);

struct P2iKernels {
    P2iFilter bytes;
    P2iFilter words;
};

TQ_DECLARE_KERNELS(P2iKernels, p2iKernels)

}  // namespace tq
