#pragma once

// The luminance family written a second time, one pixel at a time and sharing nothing with color/.
// Production must equal it, byte for byte, at every level.

#include <cstdint>

namespace tqref {

struct BgrChannels {
    int blue, green, red;
};

// The weights sum to 1024.
inline int LuminanceSum(BgrChannels c) { return 117 * c.blue + 601 * c.green + 306 * c.red; }
inline uint8_t LuminanceByte(BgrChannels c) {
    return static_cast<uint8_t>((LuminanceSum(c) + 512) >> 10);
}

inline BgrChannels BgraChannels(const uint8_t* pixel) { return {pixel[0], pixel[1], pixel[2]}; }

inline uint32_t LittleWord(const uint8_t* pixel) {
    return pixel[0] | uint32_t{pixel[1]} << 8 | uint32_t{pixel[2]} << 16 | uint32_t{pixel[3]} << 24;
}
// Red in bits 31 to 22, green in 21 to 12, blue in 11 to 2.
inline BgrChannels Bgr10Channels(const uint8_t* pixel) {
    const uint32_t word = LittleWord(pixel);
    return {static_cast<int>(word >> 2 & 1023), static_cast<int>(word >> 12 & 1023),
            static_cast<int>(word >> 22 & 1023)};
}
// Bits 31 to 24, 21 to 14 and 11 to 4.
inline BgrChannels Bgr10UpperEight(const uint8_t* pixel) {
    const uint32_t word = LittleWord(pixel);
    return {static_cast<int>(word >> 4 & 255), static_cast<int>(word >> 14 & 255),
            static_cast<int>(word >> 24 & 255)};
}

inline BgrChannels Bgr16Channels(const uint8_t* pixel) {
    return {pixel[0] + 256 * pixel[1], pixel[2] + 256 * pixel[3], pixel[4] + 256 * pixel[5]};
}
inline BgrChannels Bgr16HighBytes(const uint8_t* pixel) { return {pixel[1], pixel[3], pixel[5]}; }

inline void Argb2Lum(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                     uint8_t* dst) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x)
            dst[y * dstStride + x] = LuminanceByte(BgraChannels(src + y * srcStride + 4 * x));
}

inline void Bgr10ToLum(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                       uint8_t* dst) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x)
            dst[y * dstStride + x] = LuminanceByte(Bgr10UpperEight(src + y * srcStride + 4 * x));
}

inline void Bgr16ToLum(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                       uint8_t* dst) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x)
            dst[y * dstStride + x] = LuminanceByte(Bgr16HighBytes(src + y * srcStride + 6 * x));
}

// In the sums' planes the stride counts ints.

inline void BgraToLum32(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                        int* dst) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x)
            dst[y * dstStride + x] = LuminanceSum(BgraChannels(src + y * srcStride + 4 * x));
}

inline void Bgr10ToLum32(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                         int* dst) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x)
            dst[y * dstStride + x] = LuminanceSum(Bgr10Channels(src + y * srcStride + 4 * x));
}

inline void Bgr16ToLum32(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                         int* dst) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x)
            dst[y * dstStride + x] = LuminanceSum(Bgr16Channels(src + y * srcStride + 6 * x));
}

}  // namespace tqref
