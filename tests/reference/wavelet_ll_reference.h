#pragma once

// The low band as a half-size image written a second time, one line at a time and sharing nothing
// with wavelet/. Production must equal it, byte for byte, at every level and processor count.

#include <cstdint>
#include <cstring>
#include <vector>

#include "reference/image_memory_reference.h"

namespace tqref {

// Samples of 8 and of 16 bits, the latter in the processor's order at any address.
struct Samples8 {
    static constexpr int64_t kBytes = 1;
    using Sample = uint8_t;
    static int Load(Bytes& image, int64_t offset) { return image[offset]; }
    static void Store(Bytes& image, int64_t offset, int value) {
        image[offset] = static_cast<uint8_t>(value);
    }
};
struct Samples16 {
    static constexpr int64_t kBytes = 2;
    using Sample = uint16_t;
    static int Load(Bytes& image, int64_t offset) {
        const uint8_t bytes[2] = {image[offset], image[offset + 1]};
        uint16_t value;
        std::memcpy(&value, bytes, 2);
        return value;
    }
    static void Store(Bytes& image, int64_t offset, int value) {
        const uint16_t sample = static_cast<uint16_t>(value);
        uint8_t bytes[2];
        std::memcpy(bytes, &sample, 2);
        image[offset] = bytes[0];
        image[offset + 1] = bytes[1];
    }
};

// Lines of two and three samples have one value, around the first: the step of the last value would
// read in front of the line. A third sample that is not there is the first, mirrored.
inline int ShortLowPass(const std::vector<int>& s) {
    const int third = s.size() == 2 ? s[0] : s[2];
    return (2 * s[1] - third + 3 * s[0]) * 2;
}

inline std::vector<int> LowBandRow(const std::vector<int>& s) {
    const int64_t n = static_cast<int64_t>(s.size()), m = (n >> 1) - 1;
    if (n < 2) return {};
    if (n < 4) return {ShortLowPass(s)};
    std::vector<int> low(m + 1);
    low[0] = (2 * s[1] - s[2] + 3 * s[0]) * 2;
    for (int64_t k = 1; k <= m - 1; ++k)
        low[k] = (3 * s[2 * k] + s[2 * k - 1] + s[2 * k + 1]) * 2 - s[2 * k - 2] - s[2 * k + 2];
    low[m] = (s[n - 3] + s[n - 1]) * 2 - s[n - 4] + 5 * s[n - 2];
    return low;
}

inline std::vector<int> LowBandColumn(const std::vector<int>& c) {
    const int64_t n = static_cast<int64_t>(c.size()), m = (n >> 1) - 1;
    if (n < 2) return {};
    if (n < 4) return {(ShortLowPass(c) + 32) >> 6};
    std::vector<int> out(m + 1);
    out[0] = ((2 * c[1] + 16 - c[2] + 3 * c[0]) * 2) >> 6;
    for (int64_t k = 1; k <= m - 1; ++k) {
        const int sum = (3 * c[2 * k] + c[2 * k - 1] + c[2 * k + 1]) * 2 + 32;
        out[k] = (sum - c[2 * k - 2] - c[2 * k + 2]) >> 6;
    }
    out[m] = ((c[n - 3] + c[n - 1]) * 2 + 32 - c[n - 4] + 5 * c[n - 2]) >> 6;
    return out;
}

// The first of the two limits that a value breaks is what it becomes.
inline int Limited(int value, int low, int high) {
    if (value < low) return low;
    if (value > high) return high;
    return value;
}

template <class Samples>
void WaveletLl(unsigned width, unsigned height, unsigned srcStride, Bytes& src, unsigned dstStride,
               Bytes& dst, typename Samples::Sample low, typename Samples::Sample high) {
    if (width < 2 || height < 2) return;
    std::vector<std::vector<int>> rows;
    for (int64_t y = 0; y < height; ++y) {
        std::vector<int> row(width);
        for (int64_t x = 0; x < width; ++x)
            row[x] = Samples::Load(src, y * srcStride + x * Samples::kBytes);
        rows.push_back(LowBandRow(row));
    }
    for (int64_t x = 0; x < width >> 1; ++x) {
        std::vector<int> column(height);
        for (int64_t y = 0; y < height; ++y) column[y] = rows[y][x];
        const std::vector<int> out = LowBandColumn(column);
        for (int64_t y = 0; y < height >> 1; ++y)
            Samples::Store(dst, y * dstStride + x * Samples::kBytes, Limited(out[y], low, high));
    }
}

}  // namespace tqref
