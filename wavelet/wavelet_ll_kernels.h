#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// The two passes of the low band over one kind of sample. Values are int16_t for bytes and int32_t
// for 16-bit samples.
struct LowBandForm {
    ptrdiff_t sampleBytes, valueBytes;

    // The samples >> 1 values of a row of 2 samples or more. Nothing behind them is written.
    void (*rowPass)(const uint8_t* src, ptrdiff_t samples, void* values);

    // One row of `count` results, 1 or more, limited from low to high, from the five rows of values
    // around its own, upmost first.
    void (*columnPass)(const void* const* rows, ptrdiff_t count, int low, int high, uint8_t* dst);
};

struct WaveletLlKernels {
    LowBandForm bytes;
    LowBandForm words;
};

TQ_DECLARE_KERNELS(WaveletLlKernels, waveletLlKernels)

}  // namespace tq
