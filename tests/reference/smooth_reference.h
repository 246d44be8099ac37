#pragma once

// The Gauss, average and median filters written a second time, one pixel at a time and sharing
// nothing with filter/. Production must equal them, byte for byte.

#include <algorithm>
#include <cstdint>
#include <vector>

#include "reference/bilateral_reference.h"
#include "reference/image_memory_reference.h"

namespace tqref {

inline void CopyPixel(int64_t x, int64_t y, int srcStride, Bytes& src, int dstStride, Bytes& dst) {
    dst[y * dstStride + x] = src[y * srcStride + x];
}

// Below 4 in either direction, dst goes to src.
inline void Gauss3x3(int width, int height, int srcStride, Bytes& src, int dstStride, Bytes& dst) {
    if (width < 4 || height < 4) {
        for (int64_t y = 0; y < height; ++y)
            for (int64_t x = 0; x < width; ++x) src[y * srcStride + x] = dst[y * dstStride + x];
        return;
    }
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x) {
            if (x == 0 || y == 0 || x == width - 1 || y == height - 1) {
                CopyPixel(x, y, srcStride, src, dstStride, dst);
                continue;
            }
            auto at = [&](int dx, int dy) { return int{src[(y + dy) * srcStride + x + dx]}; };
            const int sides = at(0, -1) + at(0, 1) + at(-1, 0) + at(1, 0);
            const int corners = at(-1, -1) + at(1, -1) + at(-1, 1) + at(1, 1);
            dst[y * dstStride + x] =
                static_cast<uint8_t>((4 * at(0, 0) + 2 * sides + corners + 8) >> 4);
        }
}

// Of a whole window, in 32 bits. The weights are those of SpaceWeights2D.
inline int GaussDivisor(const std::vector<int>& space) {
    int64_t sum = 0;
    for (int weight : space) sum += weight;
    return Wrapped(sum);
}

inline void FlatCopy(int width, int height, Bytes& src, Bytes& dst) {
    if (width < 1 || height < 1) return;
    for (int64_t i = 0; i < int64_t{width} * height; ++i) dst[i] = src[i];
}

inline void Gauss(int width, int height, int srcStride, Bytes& src, int dstStride, Bytes& dst,
                  int radius) {
    if (radius == 0) {
        FlatCopy(width, height, src, dst);
        return;
    }
    if (width < 1 || height < 1) return;
    Numbers image(width, height, srcStride, src);
    const std::vector<int> space = SpaceWeights2D(radius);
    const int divisor = GaussDivisor(space);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            int64_t sum = 0;
            for (int dy = -std::min(y, radius); dy <= std::min(height - 1 - y, radius); ++dy)
                for (int dx = -std::min(x, radius); dx <= std::min(width - 1 - x, radius); ++dx) {
                    const int64_t place =
                        int64_t{dy + radius} * (2 * int64_t{radius} + 1) + dx + radius;
                    sum += int64_t{space[place]} * image(x + dx, y + dy);
                }
            dst[int64_t{y} * dstStride + x] = static_cast<uint8_t>(Wrapped(sum) / divisor);
        }
}

// What stands in a pixel after the average and the median.
enum SmoothPixel { kKept, kCopied, kFiltered };

inline SmoothPixel SmoothPixelAt(int64_t x, int64_t y, int64_t width, int64_t height,
                                 int64_t radius) {
    if (y < radius || (y >= height - radius - 1 && y <= height - 2)) return kCopied;
    if (y <= height - radius - 2 && x >= radius && x <= width - radius - 2) return kFiltered;
    return kKept;
}

// The window of a pixel in row order.
inline std::vector<uint8_t> Window(int64_t x, int64_t y, int stride, Bytes& image, int radius) {
    std::vector<uint8_t> window;
    for (int dy = -radius; dy <= radius; ++dy)
        for (int dx = -radius; dx <= radius; ++dx)
            window.push_back(image[(y + dy) * stride + x + dx]);
    return window;
}

// filter(window) gives the pixel.
template <class Filter>
void FilterInside(int width, int height, int srcStride, Bytes& src, int dstStride, Bytes& dst,
                  int radius, Filter filter) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x) {
            const SmoothPixel pixel = SmoothPixelAt(x, y, width, height, radius);
            if (pixel == kCopied) CopyPixel(x, y, srcStride, src, dstStride, dst);
            if (pixel == kFiltered)
                dst[y * dstStride + x] = filter(Window(x, y, srcStride, src, radius));
        }
}

inline void Average(int width, int height, int srcStride, Bytes& src, int dstStride, Bytes& dst,
                    int radius) {
    if (width < 1 || height < 1 || srcStride < 1 || dstStride < 1 || radius < 0) return;
    if (radius == 0) {
        FlatCopy(width, height, src, dst);
        return;
    }
    FilterInside(width, height, srcStride, src, dstStride, dst, radius,
                 [](const std::vector<uint8_t>& window) {
                     int64_t sum = 0;
                     for (uint8_t value : window) sum += value;
                     return static_cast<uint8_t>(sum / static_cast<int64_t>(window.size()));
                 });
}

inline void Median(int width, int height, int srcStride, Bytes& src, int dstStride, Bytes& dst,
                   int radius) {
    if (width < 1 || height < 1 || srcStride < 1 || dstStride < 1 || radius < 0) return;
    if (radius == 0) {
        MemcpyRows(width, height, srcStride, src, dstStride, dst);
        return;
    }
    FilterInside(width, height, srcStride, src, dstStride, dst, radius,
                 [](std::vector<uint8_t> window) {
                     std::sort(window.begin(), window.end());
                     return window[window.size() / 2];
                 });
}

// The border columns end two rows above the image's end, the last row apart.
inline void Median3x3(int width, int height, int srcStride, Bytes& src, int dstStride, Bytes& dst) {
    if (width == 0 || height == 0 || srcStride == 0 || dstStride == 0) return;
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x) {
            const bool borderRow = y == 0 || y == height - 1;
            const bool borderColumn = x == 0 || x == width - 1;
            if (borderRow || (borderColumn && y <= height - 3))
                CopyPixel(x, y, srcStride, src, dstStride, dst);
            if (borderRow || borderColumn) continue;
            std::vector<uint8_t> window = Window(x, y, srcStride, src, 1);
            std::sort(window.begin(), window.end());
            dst[y * dstStride + x] = window[4];
        }
}

}  // namespace tqref
