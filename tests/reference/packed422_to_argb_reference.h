#pragma once

// Packed 4:2:2 and VUYT to ARGB written a second time, one group at a time and sharing nothing
// with color/. Each float operation is a statement of its own, so that each rounds once, in order.

#include <bit>
#include <cstdint>

namespace tqref {

struct YuvToRgbSet {
    float yScale;
    float uToBlue, uToGreen, vToGreen, vToRed;
};

inline constexpr YuvToRgbSet kFullRangeToRgb = {1.0f, 1.772f, 0.34413f, 0.71414f, 1.402f};
inline constexpr YuvToRgbSet k601ToRgb = {1.164383f, 2.017232f, 0.391762f, 0.812968f, 1.596027f};
inline constexpr YuvToRgbSet k709ToRgb = {1.1644f, 2.1126f, 0.2129f, 0.5325f, 1.793f};

constexpr bool HasBits(const YuvToRgbSet& set, uint32_t yScale, uint32_t uToBlue, uint32_t uToGreen,
                       uint32_t vToGreen, uint32_t vToRed) {
    return std::bit_cast<uint32_t>(set.yScale) == yScale &&
           std::bit_cast<uint32_t>(set.uToBlue) == uToBlue &&
           std::bit_cast<uint32_t>(set.uToGreen) == uToGreen &&
           std::bit_cast<uint32_t>(set.vToGreen) == vToGreen &&
           std::bit_cast<uint32_t>(set.vToRed) == vToRed;
}
static_assert(HasBits(kFullRangeToRgb, 0x3F800000, 0x3FE2D0E5, 0x3EB031CF, 0x3F36D1E1, 0x3FB374BC));
static_assert(HasBits(k601ToRgb, 0x3F950A81, 0x40011A54, 0x3EC89507, 0x3F501EAC, 0x3FCC4A9D));
static_assert(HasBits(k709ToRgb, 0x3F950B0F, 0x400734D7, 0x3E5A0275, 0x3F0851EC, 0x3FE58106));

inline uint8_t ClampedByte(float x) {
    if (0.0f > x) return 0;
    if (x > 255.0f) return 255;
    return static_cast<uint8_t>(x);
}

// Full range: luma as it stands, results truncated.
inline void FullRangePixel(int y, int u, int v, uint8_t* argb) {
    const YuvToRgbSet& set = kFullRangeToRgb;
    const float luma = static_cast<float>(y);
    const float uCentred = static_cast<float>(u - 128);
    const float vCentred = static_cast<float>(v - 128);
    const float uBlue = uCentred * set.uToBlue;
    const float vRed = vCentred * set.vToRed;
    const float vGreen = vCentred * set.vToGreen;
    const float uGreen = uCentred * set.uToGreen;
    const float green = vGreen + uGreen;
    argb[0] = ClampedByte(luma + uBlue);
    argb[1] = ClampedByte(luma - green);
    argb[2] = ClampedByte(luma + vRed);
    argb[3] = 255;
}

// Studio range: luma from 16, results rounded by adding a half last.
inline void StudioRangePixel(const YuvToRgbSet& set, int y, int u, int v, uint8_t* argb) {
    const float luma = static_cast<float>(y - 16) * set.yScale;
    const float uCentred = static_cast<float>(u - 128);
    const float vCentred = static_cast<float>(v - 128);
    const float uBlue = uCentred * set.uToBlue;
    const float vRed = vCentred * set.vToRed;
    const float vGreen = vCentred * set.vToGreen;
    const float uGreen = uCentred * set.uToGreen;
    const float green = vGreen + uGreen;
    const float blueSum = uBlue + luma;
    const float greenSum = luma - green;
    const float redSum = vRed + luma;
    argb[0] = ClampedByte(blueSum + 0.5f);
    argb[1] = ClampedByte(greenSum + 0.5f);
    argb[2] = ClampedByte(redSum + 0.5f);
    argb[3] = 255;
}

// Where the four bytes of a group stand.
struct Packed422Order {
    int y0, u, y1, v;
};
inline constexpr Packed422Order kYuyvOrder = {0, 1, 2, 3};
inline constexpr Packed422Order kUyvyOrder = {1, 0, 3, 2};

// An odd last pixel is left alone.
inline void FullRange422(Packed422Order order, int width, int height, int srcStride,
                         const uint8_t* src, int dstStride, uint8_t* dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t group = 0; group < width / 2; ++group) {
            const uint8_t* in = src + row * srcStride + 4 * group;
            uint8_t* out = dst + row * dstStride + 8 * group;
            FullRangePixel(in[order.y0], in[order.u], in[order.v], out);
            FullRangePixel(in[order.y1], in[order.u], in[order.v], out + 4);
        }
}

inline void StudioRange422(const YuvToRgbSet& set, Packed422Order order, int width, int height,
                           int srcStride, const uint8_t* src, int dstStride, uint8_t* dst) {
    if (width == 0 || height == 0 || src == nullptr || dst == nullptr) return;
    for (int64_t row = 0; row < height; ++row)
        for (int64_t group = 0; group < width / 2; ++group) {
            const uint8_t* in = src + row * srcStride + 4 * group;
            uint8_t* out = dst + row * dstStride + 8 * group;
            StudioRangePixel(set, in[order.y0], in[order.u], in[order.v], out);
            StudioRangePixel(set, in[order.y1], in[order.u], in[order.v], out + 4);
        }
}

inline void Yuyv422ToArgb(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                          uint8_t* dst) {
    FullRange422(kYuyvOrder, width, height, srcStride, src, dstStride, dst);
}

inline void Uyvy422ToArgb(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                          uint8_t* dst) {
    FullRange422(kUyvyOrder, width, height, srcStride, src, dstStride, dst);
}

inline void Vuyt444ToArgb(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                          uint8_t* dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < width; ++x) {
            const uint8_t* in = src + row * srcStride + 4 * x;
            FullRangePixel(in[2], in[1], in[0], dst + row * dstStride + 4 * x);
        }
}

inline void Yuyv2Argb601(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                         uint8_t* dst) {
    StudioRange422(k601ToRgb, kYuyvOrder, width, height, srcStride, src, dstStride, dst);
}

inline void Uyvy2Argb601(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                         uint8_t* dst) {
    StudioRange422(k601ToRgb, kUyvyOrder, width, height, srcStride, src, dstStride, dst);
}

inline void Yuyv2Argb709(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                         uint8_t* dst) {
    StudioRange422(k709ToRgb, kYuyvOrder, width, height, srcStride, src, dstStride, dst);
}

inline void Uyvy2Argb709(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                         uint8_t* dst) {
    StudioRange422(k709ToRgb, kUyvyOrder, width, height, srcStride, src, dstStride, dst);
}

}  // namespace tqref
