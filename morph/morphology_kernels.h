#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// Masks with a bit for each pixel: pixel i is bit i % 64 of word i / 64. Word counts are multiples
// of this.
inline constexpr ptrdiff_t kMaskWords = 4;

// How one operation goes from bytes to bits and back. `pack` sets a bit for each byte that decides
// a window alone: one is enough to clear it in an erosion, and to set it in a dilation. `unpack`
// makes the bytes of windows with and without such a bit.
struct MaskRule {
    // Writes as many words as `shift`, 0 to 63, and `count` bits need. The bits before and behind
    // those of the pixels are 0.
    void (*pack)(const uint8_t* src, ptrdiff_t count, int shift, uint64_t* bits);
    // From the union of a and b. Exactly `count` bytes are written.
    void (*unpack)(const uint64_t* a, const uint64_t* b, uint8_t* dst, ptrdiff_t count);
};

struct MorphologyKernels {
    MaskRule erosion;         // not 0 is set
    MaskRule dilation;        // not 0 is set
    MaskRule dilationOfFull;  // 255 is set

    // Bit i of out is set if any of the bits i to i + window - 1 of in is. The window is odd. in
    // has words + window / 64 + kMaskWords words.
    void (*spread)(const uint64_t* in, ptrdiff_t words, ptrdiff_t window, uint64_t* out);

    // to |= from.
    void (*unite)(uint64_t* to, const uint64_t* from, ptrdiff_t words);
};

TQ_DECLARE_KERNELS(MorphologyKernels, morphologyKernels)

}  // namespace tq
