#pragma once

// Luma of packed 4:2:2, and RGB to BGRA and back, written a second time: one pixel at a time and
// sharing nothing with color/. An image is anything that [] indexes by bytes from its first one.
// Whole pixels count as read, and whole pairs where only one luma of a pair is taken.

#include <cstdint>

namespace tqref {

inline constexpr int kYuyvLuma = 0, kUyvyLuma = 1;  // the byte of a pixel that is luma

// Full size: every luma. Half: the first luma of every pair.
template <class Src, class Dst>
void LumaRows(int lumaByte, bool half, int width, int height, int64_t srcStride, Src& src,
              int64_t dstStride, Dst& dst) {
    const int64_t step = half ? 4 : 2, count = half ? width >> 1 : width;
    for (int64_t row = 0; row < height; ++row)
        for (int64_t i = 0; i < count; ++i) {
            uint8_t group[4];
            for (int64_t k = 0; k < step; ++k) group[k] = src[row * srcStride + step * i + k];
            dst[row * dstStride + i] = group[lumaByte];
        }
}

// The whole form. One processor gives half the width whatever `half` says.
template <int lumaByte, class Src, class Dst>
void LumaOfPacked422(unsigned processors, int width, int height, int srcStride, Src& src,
                     int dstStride, Dst& dst, int half) {
    int64_t stride = srcStride;
    if (half != 0) {
        height >>= 1;
        stride *= 2;
    }
    LumaRows(lumaByte, half != 0 || processors < 2, width, height, stride, src, dstStride, dst);
}

template <class Src, class Dst>
void RgbToBgra(int width, int height, int64_t srcStride, Src& src, int64_t dstStride, Dst& dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < width; ++x) {
            const int64_t from = row * srcStride + 3 * x, to = row * dstStride + 4 * x;
            const uint8_t red = src[from], green = src[from + 1], blue = src[from + 2];
            dst[to] = blue;
            dst[to + 1] = green;
            dst[to + 2] = red;
            dst[to + 3] = 0;
        }
}

// Each pixel with the zero behind it, which the next one overwrites: behind the last pixel of a row
// it stays, unless a later row stands there. With dense rows that go down the next row's pixel
// stands; with dense rows that go up the zero falls on the row before.
template <class Src, class Dst>
void BgraToRgb(int width, int height, int64_t srcStride, Src& src, int64_t dstStride, Dst& dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < width; ++x) {
            const int64_t from = row * srcStride + 4 * x, to = row * dstStride + 3 * x;
            const uint8_t blue = src[from], green = src[from + 1], red = src[from + 2];
            static_cast<void>(src[from + 3]);
            dst[to] = red;
            dst[to + 1] = green;
            dst[to + 2] = blue;
            dst[to + 3] = 0;
        }
}

}  // namespace tqref
