#pragma once

// Planar 4:2:2 behind one pointer, to ARGB and back, written a second time: one pair at a time and
// sharing nothing with color/. The arithmetic is that of the packed references. An image is
// anything that [] indexes by bytes from its first one.

#include <cstdint>

#include "reference/argb_to_packed422_reference.h"
#include "reference/packed422_to_argb_reference.h"

namespace tqref {

// Where the planes stand, from the first byte of Y.
struct Planar422Layout {
    int64_t yStride, chromaStride, u, v;
};

// Y rows a width apart, V right behind U: the full-range form and all MultiThread forms.
inline Planar422Layout RowsApart(int width, int height) {
    const int64_t u = int64_t{width} * height;
    return {width, width / 2, u, u + int64_t{width / 2} * height};
}

// Y rows of whole pairs that run on, V half an image behind U: the plain studio-range forms.
inline Planar422Layout RowsRunOn(int width, int height) {
    const int64_t u = int64_t{width} * height;
    return {2 * int64_t{width >> 1}, width >> 1, u, u + u / 2};
}

// An image from one of its bytes on.
template <class Image> struct FromByte {
    Image& image;
    int64_t first;
    auto& operator[](int64_t offset) { return image[first + offset]; }
};

using YuvToArgbPixel = void (*)(int y, int u, int v, uint8_t* argb);
inline void Studio601Pixel(int y, int u, int v, uint8_t* argb) {
    StudioRangePixel(k601ToRgb, y, u, v, argb);
}
inline void Studio709Pixel(int y, int u, int v, uint8_t* argb) {
    StudioRangePixel(k709ToRgb, y, u, v, argb);
}

// Three planes with a stride each, as the tasks have them.
template <class Y, class U, class V, class Argb>
void ThreePlanesToArgb(YuvToArgbPixel pixel, int width, int height, int64_t yStride, Y& y,
                       int64_t uStride, U& u, int64_t vStride, V& v, int64_t dstStride, Argb& dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t pair = 0; pair < width / 2; ++pair)
            for (int64_t side : {0, 1}) {
                uint8_t argb[4];
                pixel(y[row * yStride + 2 * pair + side], u[row * uStride + pair],
                      v[row * vStride + pair], argb);
                for (int64_t i = 0; i < 4; ++i)
                    dst[row * dstStride + 8 * pair + 4 * side + i] = argb[i];
            }
}

template <class Y, class U, class V, class Argb>
void ArgbToThreePlanes(const RgbToYuvSet& set, int width, int height, int64_t srcStride, Argb& src,
                       int64_t yStride, Y& y, int64_t uStride, U& u, int64_t vStride, V& v) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t pair = 0; pair < width >> 1; ++pair) {
            uint8_t argb[8];
            for (int64_t i = 0; i < 8; ++i) argb[i] = src[row * srcStride + 8 * pair + i];
            const YuvPair yuv = PairOf(set, argb);
            y[row * yStride + 2 * pair] = yuv.y0;
            y[row * yStride + 2 * pair + 1] = yuv.y1;
            u[row * uStride + pair] = yuv.u;
            v[row * vStride + pair] = yuv.v;
        }
}

template <YuvToArgbPixel pixel, Planar422Layout (*layoutOf)(int, int), class Planar, class Argb>
void YuvpToArgb(int width, int height, Planar& src, int dstStride, Argb& dst) {
    const Planar422Layout layout = layoutOf(width, height);
    FromByte<Planar> u{src, layout.u}, v{src, layout.v};
    ThreePlanesToArgb(pixel, width, height, layout.yStride, src, layout.chromaStride, u,
                      layout.chromaStride, v, dstStride, dst);
}

template <const RgbToYuvSet& set, Planar422Layout (*layoutOf)(int, int), class Planar, class Argb>
void ArgbToYuvp(int width, int height, int srcStride, Argb& src, Planar& dst) {
    const Planar422Layout layout = layoutOf(width, height);
    FromByte<Planar> u{dst, layout.u}, v{dst, layout.v};
    ArgbToThreePlanes(set, width, height, srcStride, src, layout.yStride, dst, layout.chromaStride,
                      u, layout.chromaStride, v);
}

}  // namespace tqref
