#pragma once

#include <cstddef>

// Included by kernels too: internal linkage.

namespace tq {

// The place in a line of n samples, at least 2, that place i stands for when the line is mirrored
// at its first and its last sample. i is at most 2 outside.
static constexpr ptrdiff_t Mirrored(ptrdiff_t i, ptrdiff_t n) {
    if (i < 0) i = -i;
    return i < n ? i : 2 * (n - 1) - i;
}

}  // namespace tq
