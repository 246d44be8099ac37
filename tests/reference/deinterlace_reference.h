#pragma once

// The deinterlacer written a second time, one byte at a time and sharing nothing with filter/.
// Production must equal it, byte for byte.

#include <cstdint>

#include "reference/image_memory_reference.h"

namespace tqref {

// Row `row` of the first frame from the rows of field 0; of the second frame from those of field 1.
// For fields of two rows or more.
inline uint8_t DeinterlacedByte(int frame, int64_t row, int64_t x, int64_t height, int64_t stride,
                                Bytes& field) {
    auto at = [&](int64_t fieldRow) { return int{field[fieldRow * stride + x]}; };
    const int64_t i = row / 2;
    const bool even = row % 2 == 0;
    if (even == (frame == 0)) return static_cast<uint8_t>(at(i));
    const int64_t other = frame == 0 ? i + 1 : i - 1;
    if (other < 0 || other >= height) return static_cast<uint8_t>(at(i));
    return static_cast<uint8_t>((at(i) + at(other) + 1) >> 1);
}

inline void Deinterlace(int width, int height, int stride0, Bytes& field0, int stride1,
                        Bytes& field1, int strideOut0, Bytes& frame0, int strideOut1,
                        Bytes& frame1) {
    for (int64_t row = 0; row < 2 * int64_t{height}; ++row)
        for (int64_t x = 0; x < width; ++x) {
            frame0[row * strideOut0 + x] = DeinterlacedByte(0, row, x, height, stride0, field0);
            frame1[row * strideOut1 + x] = DeinterlacedByte(1, row, x, height, stride1, field1);
        }
}

}  // namespace tqref
