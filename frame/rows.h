#pragma once

// Walking the rows of an image.

#include <cstddef>

#include "frame/exact_math.h"

namespace tq {

// The first row of what follows `rows` rows, at a distance formed in 32 bits. Null stays null, and
// a band without rows moves nothing.
template <class T> T* AfterRows(T* first, int rows, int stride) {
    if (first == nullptr || rows < 1) return first;
    return first + Mul32(rows, stride);
}

// Calls row(src row, dst row) for each of `height` rows. Strides count elements. The pointers are
// never moved past the last row.
template <class Src, class Dst, class Row>
void ForEachRow(int height, int srcStride, Src* src, int dstStride, Dst* dst, Row row) {
    for (int y = 0; y < height; ++y) {
        row(src, dst);
        if (y + 1 < height) {
            src += srcStride;
            dst += dstStride;
        }
    }
}

}  // namespace tq
