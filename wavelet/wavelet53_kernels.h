#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// A line of values that fit 16 bits, its even and its odd places apart. The memory in front of and
// behind either may be written, as much as a vector.
struct SplitLine {
    int16_t* even;
    int16_t* odd;
};

struct Wavelet53Kernels {
    // Of `pairs` pairs of columns the low and the high values of one place, from the five rows of
    // samples around its low one.
    void (*forwardColumns)(const uint8_t* const* rows, ptrdiff_t pairs, const SplitLine& low,
                           const SplitLine& high);
    // The samples of a row as they are.
    void (*split)(const uint8_t* row, ptrdiff_t pairs, const SplitLine& line);
    // The low and the high half of a line, `pairs` values each, behind one another.
    void (*forwardLine)(const SplitLine& line, ptrdiff_t pairs, int* halves);

    // Of `count` columns the even and the odd value of one place k, in 64ths, from the low values
    // k and k + 1 and the high values k - 1, k and k + 1.
    void (*inverseColumns)(const int* const* low, const int* const* high, ptrdiff_t count,
                           int* even, int* odd);
    // 2 * pairs bytes of an image, in 64ths of those 64ths, from both halves of a line. The memory
    // around either half may be written, as much as a vector.
    void (*inverseLine)(int* low, int* high, ptrdiff_t pairs, uint8_t* dst);

    // The low-pass of a row at every place, mirrored. `count` is 4 or more.
    void (*filterLine)(const uint8_t* row, ptrdiff_t count, const SplitLine& line);
    // `count` bytes of the filtered image from the five lines around their own.
    void (*filterColumns)(const SplitLine* const* lines, ptrdiff_t count, uint8_t* dst);
};

TQ_DECLARE_KERNELS(Wavelet53Kernels, wavelet53Kernels)

}  // namespace tq
