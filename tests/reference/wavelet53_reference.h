#pragma once

// The 5/3 transform, its inverse and the low-pass filter written a second time, one line at a time
// and sharing nothing with wavelet/. Production must equal them, byte for byte, at every level.
//
// Images are bytes that remember how far they were reached; ints are reached byte by byte. Sums are
// formed in unsigned ints: they wrap.

#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

#include "reference/image_memory_reference.h"

namespace tqref {

using Line53 = std::vector<uint32_t>;

inline uint32_t LoadInt(Bytes& image, int64_t index) {
    const uint8_t bytes[4] = {image[4 * index], image[4 * index + 1], image[4 * index + 2],
                              image[4 * index + 3]};
    uint32_t value;
    std::memcpy(&value, bytes, 4);
    return value;
}
inline void StoreInt(Bytes& image, int64_t index, uint32_t value) {
    uint8_t bytes[4];
    std::memcpy(bytes, &value, 4);
    for (int i = 0; i < 4; ++i) image[4 * index + i] = bytes[i];
}

// Samples of a line that take part: of an odd length all but the last.
inline int64_t Paired(int64_t n) { return n < 2 ? 0 : n & ~int64_t{1}; }

// The low half of the result, then the high half: Paired(n) places.
inline Line53 ForwardLine53(int64_t n, const Line53& s) {
    Line53 out(Paired(n));
    const int64_t h = n >> 1;
    if (n < 2) return out;
    if (n < 4) {
        // Periodic as well: both neighbours of each sample are the other one.
        out[0] = (3 * s[0] + s[1] + s[1]) * 2 - s[0] - s[0];
        out[1] = (2 * s[1] - s[0] - s[0]) * 4;
        return out;
    }
    const int64_t e = (n & ~int64_t{1}) - 1;
    out[0] = (3 * s[0] + s[1] + s[e]) * 2 - s[e - 1] - s[2];
    for (int64_t k = 1; k <= n / 2 - 2; ++k)
        out[k] = (3 * s[2 * k] + s[2 * k + 1] + s[2 * k - 1]) * 2 - s[2 * k + 2] - s[2 * k - 2];
    const int64_t last = n / 2 - 1;
    out[last] = (3 * s[2 * last] + s[2 * last + 1] + s[2 * last - 1]) * 2 - s[0] - s[2 * last - 2];
    for (int64_t k = 0; k <= h - 2; ++k)
        out[h + k] = (2 * s[2 * k + 1] - s[2 * k + 2] - s[2 * k]) * 4;
    out[h + h - 1] = (2 * s[2 * h - 1] - s[0] - s[2 * h - 2]) * 4;
    return out;
}

// Paired(n) samples from as many places.
inline Line53 InverseLine53(int64_t n, const Line53& s) {
    Line53 o(Paired(n));
    const int64_t h = n >> 1;
    if (n < 2) return o;
    if (n < 4) {
        // As above: of the one low and the one high value each is its own neighbour.
        o[0] = 8 * s[0] - 2 * (s[1] + s[1]);
        o[1] = 4 * (s[0] + s[0]) + 6 * s[1] - s[1] - s[1];
        return o;
    }
    const int64_t e = (n & ~int64_t{1}) - 1;
    const auto low = [&](int64_t k) { return s[k]; };
    const auto high = [&](int64_t k) { return s[h + k]; };
    for (int64_t k = 0; k <= h - 1; ++k) o[2 * k] = 8 * low(k);
    for (int64_t k = 0; k <= e - h - 1; ++k) o[2 * k + 1] = 4 * (low(k + 1) + low(k));
    o[e] = 4 * (low(h - 1) + low(0));
    o[0] -= 2 * (s[e] + s[h]);
    o[1] += 6 * s[h] - s[e] - s[h + 1];
    for (int64_t i = 2; i <= (n & ~int64_t{1}) - 2; ++i) {
        if (i % 2 == 0)
            o[i] -= 2 * (high(i / 2 - 1) + high(i / 2));
        else
            o[i] += 6 * high((i - 1) / 2) - high((i + 1) / 2) - high((i - 3) / 2);
    }
    o[e] += 6 * s[e] - s[e - 1] - s[h];
    return o;
}

// srcStride in bytes, dstStride in ints.
inline void FwdWavelet53(int width, int height, int srcStride, Bytes& src, int dstStride,
                         Bytes& dst) {
    const int64_t columns = Paired(width), rows = Paired(height);
    for (int64_t y = 0; y < height; ++y) {
        Line53 line(columns);
        for (int64_t x = 0; x < columns; ++x) line[x] = src[y * srcStride + x];
        const Line53 result = ForwardLine53(width, line);
        for (int64_t x = 0; x < columns; ++x) StoreInt(dst, y * dstStride + x, result[x]);
    }
    for (int64_t x = 0; x < columns; ++x) {
        Line53 line(rows);
        for (int64_t y = 0; y < rows; ++y) line[y] = LoadInt(dst, y * dstStride + x);
        const Line53 result = ForwardLine53(height, line);
        for (int64_t y = 0; y < rows; ++y) StoreInt(dst, y * dstStride + x, result[y]);
    }
}

// The gain out, in ints that wrap: half of it added, divided towards zero, limited.
inline uint8_t WithoutGain53(uint32_t value) {
    const int32_t quotient = std::bit_cast<int32_t>(value + 2048u) / 4096;
    return static_cast<uint8_t>(quotient < 0 ? 0 : quotient > 255 ? 255 : quotient);
}

// srcStride in ints, dstStride in bytes.
inline void InvWavelet53(int width, int height, int srcStride, Bytes& src, int dstStride,
                         Bytes& dst) {
    const int64_t columns = Paired(width), rows = Paired(height);
    std::vector<Line53> image;
    for (int64_t y = 0; y < rows; ++y) {
        Line53 line(columns);
        for (int64_t x = 0; x < columns; ++x) line[x] = LoadInt(src, y * srcStride + x);
        image.push_back(InverseLine53(width, line));
    }
    for (int64_t x = 0; x < columns; ++x) {
        Line53 line(rows);
        for (int64_t y = 0; y < rows; ++y) line[y] = image[y][x];
        const Line53 result = InverseLine53(height, line);
        for (int64_t y = 0; y < rows; ++y) dst[y * dstStride + x] = WithoutGain53(result[y]);
    }
}

// In place. The columns are made of the rows' values only, never of bytes that were written.
inline void WaveletFilter53(unsigned width, unsigned height, unsigned stride, Bytes& image) {
    if (width < 4) return;
    const int64_t w = width, h = height;
    std::vector<std::vector<int>> rows;
    for (int64_t y = 0; y < h; ++y) {
        std::vector<int> s(w), t(w);
        for (int64_t x = 0; x < w; ++x) s[x] = image[y * stride + x];
        t[0] = (3 * s[0] + 2 * s[1] - s[2]) * 2;
        t[1] = (s[2] + s[0]) * 2 - s[3] + 5 * s[1];
        for (int64_t i = 2; i <= w - 3; ++i)
            t[i] = (s[i + 1] + 3 * s[i] + s[i - 1]) * 2 - s[i + 2] - s[i - 2];
        t[w - 2] = (s[w - 1] + s[w - 3]) * 2 - s[w - 4] + 5 * s[w - 2];
        t[w - 1] = (3 * s[w - 1] + 2 * s[w - 2] - s[w - 3]) * 2;
        rows.push_back(t);
    }
    for (int64_t x = 0; x < w; ++x)
        for (int64_t y = 2; y <= h - 3; ++y) {
            const auto c = [&](int64_t row) { return rows[row][x]; };
            const int sum = (c(y) * 3 + c(y - 1) + c(y + 1)) * 2 + 32 - c(y - 2) - c(y + 2);
            const int r = sum / 64;
            image[y * stride + x] = static_cast<uint8_t>(r < 16 ? 0 : r < 235 ? r : 235);
        }
}

}  // namespace tqref
