#pragma once

// ARGB to packed 4:2:2 written a second time, one pair at a time and sharing nothing with color/.
// Each float operation is a statement of its own, so that each rounds once, in order.

#include <bit>
#include <cstdint>

namespace tqref {

// U and V from green, red and blue are magnitudes: they are subtracted.
struct RgbToYuvSet {
    float redToY, greenToY, blueToY;
    float redToU, greenToU, chromaMain, greenToV, blueToV;
};

inline constexpr RgbToYuvSet k601FromRgb = {0.256788f, 0.504129f, 0.097906f, 0.148223f,
                                            0.290993f, 0.439216f, 0.367788f, 0.071427f};
inline constexpr RgbToYuvSet k709FromRgb = {0.1825f, 0.6144f, 0.0619f, 0.1006f,
                                            0.3386f, 0.4392f, 0.399f,  0.0402f};

constexpr bool HasBits(const RgbToYuvSet& set, uint32_t redToY, uint32_t greenToY, uint32_t blueToY,
                       uint32_t redToU, uint32_t greenToU, uint32_t chromaMain, uint32_t greenToV,
                       uint32_t blueToV) {
    return std::bit_cast<uint32_t>(set.redToY) == redToY &&
           std::bit_cast<uint32_t>(set.greenToY) == greenToY &&
           std::bit_cast<uint32_t>(set.blueToY) == blueToY &&
           std::bit_cast<uint32_t>(set.redToU) == redToU &&
           std::bit_cast<uint32_t>(set.greenToU) == greenToU &&
           std::bit_cast<uint32_t>(set.chromaMain) == chromaMain &&
           std::bit_cast<uint32_t>(set.greenToV) == greenToV &&
           std::bit_cast<uint32_t>(set.blueToV) == blueToV;
}
static_assert(HasBits(k601FromRgb, 0x3E8379B7, 0x3F010E99, 0x3DC882F1, 0x3E17C7C5, 0x3E94FD09,
                      0x3EE0E0EB, 0x3EBC4EB5, 0x3D924852));
static_assert(HasBits(k709FromRgb, 0x3E3AE148, 0x3F1D4952, 0x3D7D8ADB, 0x3DCE075F, 0x3EAD5CFB,
                      0x3EE0DED3, 0x3ECC49BA, 0x3D24A8C1));

// Toward zero, low eight bits.
inline int TruncatedByte(float x) { return static_cast<int>(x) & 255; }

inline int LumaOf(const RgbToYuvSet& set, const uint8_t* argb) {
    const float blue = argb[0], green = argb[1], red = argb[2];
    const float fromRed = red * set.redToY;
    const float fromGreen = green * set.greenToY;
    const float fromBlue = blue * set.blueToY;
    const float redGreen = fromRed + fromGreen;
    const float sum = redGreen + fromBlue;
    const float half = sum + 0.5f;
    return TruncatedByte(half + 16.0f);
}

inline int UOf(const RgbToYuvSet& set, const uint8_t* argb) {
    const float blue = argb[0], green = argb[1], red = argb[2];
    const float fromBlue = blue * set.chromaMain;
    const float fromGreen = green * set.greenToU;
    const float fromRed = red * set.redToU;
    const float greenRed = fromGreen + fromRed;
    const float sum = fromBlue - greenRed;
    const float half = sum + 0.5f;
    return TruncatedByte(half + 128.0f);
}

inline int VOf(const RgbToYuvSet& set, const uint8_t* argb) {
    const float blue = argb[0], green = argb[1], red = argb[2];
    const float fromRed = red * set.chromaMain;
    const float fromGreen = green * set.greenToV;
    const float fromBlue = blue * set.blueToV;
    const float redGreen = fromRed - fromGreen;
    const float sum = redGreen - fromBlue;
    const float half = sum + 0.5f;
    return TruncatedByte(half + 128.0f);
}

struct YuvPair {
    uint8_t y0, u, y1, v;
};

// The bytes of the two pixels are averaged, not their floats; a tie goes up.
inline YuvPair PairOf(const RgbToYuvSet& set, const uint8_t* argb) {
    const uint8_t *left = argb, *right = argb + 4;
    return {static_cast<uint8_t>(LumaOf(set, left)),
            static_cast<uint8_t>((UOf(set, left) + UOf(set, right) + 1) >> 1),
            static_cast<uint8_t>(LumaOf(set, right)),
            static_cast<uint8_t>((VOf(set, left) + VOf(set, right) + 1) >> 1)};
}

inline void StoreYuyv(YuvPair pair, uint8_t* out) {
    out[0] = pair.y0;
    out[1] = pair.u;
    out[2] = pair.y1;
    out[3] = pair.v;
}

inline void StoreUyvy(YuvPair pair, uint8_t* out) {
    out[0] = pair.u;
    out[1] = pair.y0;
    out[2] = pair.v;
    out[3] = pair.y1;
}

// V goes over Y0, and byte 2 keeps what it held: the contract, not a slip.
inline void StoreUyvyOf601(YuvPair pair, uint8_t* out) {
    out[0] = pair.u;
    out[1] = pair.y0;
    out[3] = pair.y1;
    out[1] = pair.v;
}

inline void ArgbTo422(const RgbToYuvSet& set, void (*store)(YuvPair, uint8_t*), int width,
                      int height, int srcStride, const uint8_t* src, int dstStride, uint8_t* dst) {
    if (width == 0 || height <= 0 || src == nullptr || dst == nullptr) return;
    for (int64_t row = 0; row < height; ++row)
        for (int64_t pair = 0; pair < width >> 1; ++pair)
            store(PairOf(set, src + row * srcStride + 8 * pair), dst + row * dstStride + 4 * pair);
}

inline void Argb2Yuyv601(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                         uint8_t* dst) {
    ArgbTo422(k601FromRgb, StoreYuyv, width, height, srcStride, src, dstStride, dst);
}

inline void Argb2Yuyv709(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                         uint8_t* dst) {
    ArgbTo422(k709FromRgb, StoreYuyv, width, height, srcStride, src, dstStride, dst);
}

inline void Argb2Uyvy601(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                         uint8_t* dst) {
    ArgbTo422(k601FromRgb, StoreUyvyOf601, width, height, srcStride, src, dstStride, dst);
}

inline void Argb2Uyvy709(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                         uint8_t* dst) {
    ArgbTo422(k709FromRgb, StoreUyvy, width, height, srcStride, src, dstStride, dst);
}

}  // namespace tqref
