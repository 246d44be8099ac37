#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// The nonzero ones among some bytes. Indexes are those of bytes; without any, both are -1.
struct NonzeroBytes {
    uint32_t count;
    ptrdiff_t first;
    ptrdiff_t last;
};

// Nothing is read past the last of `count` bytes, which need no alignment.
struct RunsKernels {
    // Writes the columns where a run begins, and those behind the end of one, in rising order, and
    // returns how many; there is room for `count`. The first byte is that of `column`. A byte is in
    // a run if it is nonzero, or with `zeros` if it is zero. inRun: the byte before the first is.
    // A run that reaches the last byte has no end here.
    ptrdiff_t (*findEdges)(const uint8_t* bytes, ptrdiff_t count, int column, bool zeros,
                           bool inRun, int* edges);
    NonzeroBytes (*measure)(const uint8_t* bytes, ptrdiff_t count);
};

TQ_DECLARE_KERNELS(RunsKernels, runsKernels)

}  // namespace tq
