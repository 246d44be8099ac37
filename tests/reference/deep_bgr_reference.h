#pragma once

// The deep BGR formats written a second time, one pixel at a time and sharing nothing with color/.

#include <algorithm>
#include <cstdint>

#include "reference/deep_samples.h"

namespace tqref {

struct DeepBgr {
    int blue, green, red;
};

// Ten bits a channel, red on top, nothing in the two lowest bits.
inline DeepBgr ReadBgrTq10(const uint8_t* bytes) {
    const uint32_t word = Word32(bytes);
    return {TenBits(word, 2), TenBits(word, 12), TenBits(word, 22)};
}

// Ten bits a channel, red below, nothing in the two highest bits.
inline DeepBgr ReadBgr10(const uint8_t* bytes) {
    const uint32_t word = Word32(bytes);
    return {TenBits(word, 20), TenBits(word, 10), TenBits(word, 0)};
}

inline DeepBgr ReadBgr16(const uint8_t* bytes) {
    return {Sample16(bytes), Sample16(bytes + 2), Sample16(bytes + 4)};
}

inline void WriteBgr16(const DeepBgr& pixel, uint8_t* bytes) {
    PutSample16(bytes, pixel.blue);
    PutSample16(bytes + 2, pixel.green);
    PutSample16(bytes + 4, pixel.red);
}

// Calls convert(source pixel, destination pixel) for each.
template <class Convert>
void ForEachDeepPixel(int width, int height, int srcStride, const uint8_t* src, int srcPixel,
                      int dstStride, uint8_t* dst, int dstPixel, Convert convert) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < width; ++x)
            convert(src + row * srcStride + srcPixel * x, dst + row * dstStride + dstPixel * x);
}

// Alpha keeps its contents.
inline void BgrTq10ToBgra(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                          uint8_t* dst) {
    ForEachDeepPixel(width, height, srcStride, src, 4, dstStride, dst, 4,
                     [](const uint8_t* in, uint8_t* out) {
                         const DeepBgr pixel = ReadBgrTq10(in);
                         out[0] = static_cast<uint8_t>(pixel.blue / 4);
                         out[1] = static_cast<uint8_t>(pixel.green / 4);
                         out[2] = static_cast<uint8_t>(pixel.red / 4);
                     });
}

inline void BgrTq10ToBgrTq16(int width, int height, int srcStride, const uint8_t* src,
                             int dstStride, uint8_t* dst) {
    ForEachDeepPixel(width, height, srcStride, src, 4, dstStride, dst, 6,
                     [](const uint8_t* in, uint8_t* out) {
                         const DeepBgr pixel = ReadBgrTq10(in);
                         WriteBgr16({64 * pixel.blue, 64 * pixel.green, 64 * pixel.red}, out);
                     });
}

// Alpha keeps its contents.
inline void BgrTq16ToBgra(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                          uint8_t* dst) {
    ForEachDeepPixel(width, height, srcStride, src, 6, dstStride, dst, 4,
                     [](const uint8_t* in, uint8_t* out) {
                         const DeepBgr pixel = ReadBgr16(in);
                         out[0] = static_cast<uint8_t>(pixel.blue / 256);
                         out[1] = static_cast<uint8_t>(pixel.green / 256);
                         out[2] = static_cast<uint8_t>(pixel.red / 256);
                     });
}

inline void BgrTq16ToBgrTq10(int width, int height, int srcStride, const uint8_t* src,
                             int dstStride, uint8_t* dst) {
    ForEachDeepPixel(width, height, srcStride, src, 6, dstStride, dst, 4,
                     [](const uint8_t* in, uint8_t* out) {
                         const DeepBgr pixel = ReadBgr16(in);
                         const uint32_t blue = pixel.blue / 64, green = pixel.green / 64;
                         const uint32_t red = pixel.red / 64;
                         PutWord32(out, red * 0x400000 + green * 0x1000 + blue * 4);
                     });
}

// Plane 0 of a pixel before plane 1: where both are one plane, the luminance stays.
inline void WriteBgra16(const DeepBgr& pixel, int alpha, uint8_t* samples, uint8_t* luminance) {
    WriteBgr16(pixel, samples);
    PutSample16(samples + 6, alpha);
    const int sum = 117 * pixel.blue + 601 * pixel.green + 306 * pixel.red;
    PutSample16(luminance, std::min((sum + 512) / 1024, 255));
}

inline void Bgr10ToBgra16(int width, int height, int srcStride, const uint8_t* src,
                          const StrideList& strides, const PlaneList& planes) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < width; ++x) {
            const DeepBgr pixel = ReadBgr10(src + row * srcStride + 4 * x);
            WriteBgra16({64 * pixel.blue, 64 * pixel.green, 64 * pixel.red}, 0x3FC0,
                        PlaneRow(strides, planes, 0, row) + 8 * x,
                        PlaneRow(strides, planes, 1, row) + 2 * x);
        }
}

inline void Bgr16ToBgra16(int width, int height, int srcStride, const uint8_t* src,
                          const StrideList& strides, const PlaneList& planes) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < width; ++x)
            WriteBgra16(ReadBgr16(src + row * srcStride + 6 * x), 255,
                        PlaneRow(strides, planes, 0, row) + 8 * x,
                        PlaneRow(strides, planes, 1, row) + 2 * x);
}

inline void Bgra16ToBgr10(int width, int height, const StrideList& strides, const PlaneList& planes,
                          int dstStride, uint8_t* dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < width; ++x) {
            const DeepBgr pixel = ReadBgr16(PlaneRow(strides, planes, 0, row) + 8 * x);
            const uint32_t blue = pixel.blue / 64, green = pixel.green / 64, red = pixel.red / 64;
            PutWord32(dst + row * dstStride + 4 * x, blue * 0x100000 + green * 0x400 + red);
        }
}

inline void Bgra16ToBgr16(int width, int height, const StrideList& strides, const PlaneList& planes,
                          int dstStride, uint8_t* dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < width; ++x)
            WriteBgr16(ReadBgr16(PlaneRow(strides, planes, 0, row) + 8 * x),
                       dst + row * dstStride + 6 * x);
}

}  // namespace tqref
