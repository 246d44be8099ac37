#pragma once

// Erosion and dilation written a second time, by looking at every pixel of every window and sharing
// nothing with morph/. Production must equal it, byte for byte, at every level and at every number
// of processors.

#include <algorithm>
#include <cstdint>
#include <vector>

namespace tqref {

enum class MorphStep { kErosion, kDilation };

// Rows top to bottom and columns left to right, both included, all inside the image.
struct MorphWindow {
    int64_t top, bottom, left, right;
};

template <class Condition>
bool AnyInWindow(int64_t stride, const uint8_t* image, const MorphWindow& window,
                 Condition condition) {
    for (int64_t y = window.top; y <= window.bottom; ++y)
        for (int64_t x = window.left; x <= window.right; ++x)
            if (condition(y, image[y * stride + x])) return true;
    return false;
}

// ---- The direct forms ---------------------------------------------------------------------------

// Erosion: a set pixel stays set unless there is a 0 in its window. Dilation: only 255 sets.
inline uint8_t DirectPixel(MorphStep step, uint8_t pixel, int64_t stride, const uint8_t* image,
                           const MorphWindow& window) {
    if (step == MorphStep::kErosion) {
        const auto isZero = [](int64_t, uint8_t value) { return value == 0; };
        return pixel == 0 || AnyInWindow(stride, image, window, isZero) ? 0 : 255;
    }
    const auto is255 = [](int64_t, uint8_t value) { return value == 255; };
    return AnyInWindow(stride, image, window, is255) ? 255 : 0;
}

// One band: src and dst are its first rows. The first band leaves out radiusY rows at its top and
// the last one at its bottom, every band radiusX columns on both sides. What is left out stays as
// it is. A negative radius leaves out nothing, and its windows are empty.
inline void DirectBand(MorphStep step, int width, int height, int srcStride, const uint8_t* src,
                       int dstStride, uint8_t* dst, bool first, bool last, int radiusY,
                       int radiusX) {
    const int64_t ry = radiusY, rx = radiusX;
    const int64_t top = first ? std::max<int64_t>(ry, 0) : 0;
    const int64_t bottom = last ? height - std::max<int64_t>(ry, 0) : height;
    const int64_t left = std::max<int64_t>(rx, 0), right = width - left;
    for (int64_t y = top; y < bottom; ++y)
        for (int64_t x = left; x < right; ++x)
            dst[y * dstStride + x] = DirectPixel(step, src[y * srcStride + x], srcStride, src,
                                                 {y - ry, y + ry, x - rx, x + rx});
}

// A whole image in place, plain or in bands: the seams leave no trace.
inline void DirectMorph(MorphStep step, int width, int height, int stride, uint8_t* image,
                        int radiusY, int radiusX) {
    if (width < 1 || height < 1) return;
    std::vector<uint8_t> scratch(static_cast<size_t>(width) * static_cast<size_t>(height), 0);
    DirectBand(step, width, height, stride, image, width, scratch.data(), true, true, radiusY,
               radiusX);
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x) image[y * stride + x] = scratch[y * width + x];
}

// ---- The fast forms -----------------------------------------------------------------------------

// The rows firstRow to firstRow + rows - 1 of the image; dst is the first of them. Pixels outside
// the image take no part. In a band of radiusY rows or fewer the rows behind it, up to and
// including firstRow + radiusY, take no part either.
inline void FastBand(MorphStep step, int width, int height, int srcStride, const uint8_t* src,
                     int dstStride, uint8_t* dst, int firstRow, int rows, int radiusY,
                     int radiusX) {
    const int64_t ry = radiusY, rx = radiusX, end = int64_t{firstRow} + rows;
    const auto takesPart = [&](int64_t row) {
        return rows > ry || row < end || row > firstRow + ry;
    };
    for (int64_t y = firstRow; y < end; ++y)
        for (int64_t x = 0; x < width; ++x) {
            const MorphWindow window = {
                std::max<int64_t>(y - ry, 0), std::min<int64_t>(y + ry, height - 1),
                std::max<int64_t>(x - rx, 0), std::min<int64_t>(x + rx, width - 1)};
            uint8_t* pixel = dst + (y - firstRow) * dstStride + x;
            if (step == MorphStep::kErosion)
                *pixel = AnyInWindow(srcStride, src, window,
                                     [&](int64_t row, uint8_t value) {
                                         return takesPart(row) && value == 0;
                                     })
                             ? 0
                             : 255;
            else
                *pixel = AnyInWindow(srcStride, src, window,
                                     [&](int64_t row, uint8_t value) {
                                         return takesPart(row) && value != 0;
                                     })
                             ? 255
                             : 0;
        }
}

// From src to dst, which do not overlap, in as many bands as processors; the last takes what
// remains. With one band it is the plain form.
inline void FastMorph(MorphStep step, int processors, int width, int height, int srcStride,
                      const uint8_t* src, int dstStride, uint8_t* dst, int radiusY, int radiusX) {
    const int band = height / processors;
    for (int i = 0; i < processors; ++i) {
        const int firstRow = i * band, rows = i + 1 < processors ? band : height - firstRow;
        FastBand(step, width, height, srcStride, src, dstStride,
                 dst + int64_t{firstRow} * dstStride, firstRow, rows, radiusY, radiusX);
    }
}

inline void FastMorphInPlace(MorphStep step, int processors, int width, int height, int stride,
                             uint8_t* image, int radiusY, int radiusX) {
    if (width < 1 || height < 1) return;
    std::vector<uint8_t> copy(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x) copy[y * width + x] = image[y * stride + x];
    FastMorph(step, processors, width, height, width, copy.data(), stride, image, radiusY, radiusX);
}

}  // namespace tqref
