#pragma once

// What the references of the formats with more than eight bits share: little-endian samples in
// bytes, and lists that repeat their last element.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tqref {

inline int Sample16(const uint8_t* bytes) { return bytes[0] + 256 * bytes[1]; }

inline void PutSample16(uint8_t* bytes, int sample) {
    bytes[0] = static_cast<uint8_t>(sample % 256);
    bytes[1] = static_cast<uint8_t>(sample / 256);
}

inline uint32_t Word32(const uint8_t* bytes) {
    return bytes[0] | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16 | uint32_t{bytes[3]} << 24;
}

inline void PutWord32(uint8_t* bytes, uint32_t word) {
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<uint8_t>(word >> 8 * i);
}

// The ten bits from `shift` up.
inline int TenBits(uint32_t word, int shift) { return static_cast<int>(word >> shift & 1023); }

using StrideList = std::vector<int>;
using PlaneList = std::vector<uint8_t*>;

// Zero from an empty list.
template <class T> T ClampedAt(const std::vector<T>& list, size_t index) {
    if (list.empty()) return T{};
    return index < list.size() ? list[index] : list.back();
}

// The first byte of a row of one of the planes.
inline uint8_t* PlaneRow(const StrideList& strides, const PlaneList& planes, size_t plane,
                         int64_t row) {
    uint8_t* first = ClampedAt(planes, plane);
    return row == 0 ? first : first + row * ClampedAt(strides, plane);
}

}  // namespace tqref
