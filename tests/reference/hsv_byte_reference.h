#pragma once

// HSV in bytes written a second time, one pixel or pair at a time and sharing nothing with color/
// or frame/: table entries come from tables_reference.h.

#include <cstdint>
#include <memory>

#include "reference/tables_reference.h"

namespace tqref {

// The entries, kept: computing them for each pixel would take minutes over all colours.
struct HsvTables {
    int hueMid[511][256], hueWrap[511][256], saturation[256][256];
    int valueP[256][256], valueQ[256][256], valueT[256][256];

    HsvTables() {
        for (int d = -255; d <= 255; ++d)
            for (int x = 0; x < 256; ++x) {
                hueMid[d + 255][x] = HueMidEntry(d, x);
                hueWrap[d + 255][x] = HueWrapEntry(d, x);
            }
        for (int a = 0; a < 256; ++a)
            for (int b = 0; b < 256; ++b) {
                saturation[a][b] = SaturationEntry(a, b);
                valueP[a][b] = ValuePEntry(a, b);
                valueQ[a][b] = ValueQEntry(a, b);
                valueT[a][b] = ValueTEntry(a, b);
            }
    }
};

inline const HsvTables& TablesOfHsv() {
    static const std::unique_ptr<const HsvTables> tables = std::make_unique<HsvTables>();
    return *tables;
}

struct ByteHsv {
    uint8_t h, s, v;
};

struct IntRgb {
    int r, g, b;
};

inline ByteHsv RgbToByteHsv(IntRgb rgb) {
    const HsvTables& tables = TablesOfHsv();
    int most = rgb.r, least = rgb.r;
    if (rgb.g > most) most = rgb.g;
    if (rgb.b > most) most = rgb.b;
    if (rgb.g < least) least = rgb.g;
    if (rgb.b < least) least = rgb.b;
    const int d = most - least;
    const auto value = static_cast<uint8_t>(most);
    if (d == 0) return {0, 0, value};
    int hue;
    if (rgb.r == most)
        hue = tables.hueWrap[rgb.g - rgb.b + 255][d];
    else if (rgb.g == most)
        hue = tables.hueMid[rgb.b - rgb.r + 255][d];
    else
        hue = tables.hueMid[rgb.r - rgb.g + 255][d] + 85;
    return {static_cast<uint8_t>(hue), static_cast<uint8_t>(tables.saturation[d][most]), value};
}

inline IntRgb ByteHsvToRgb(const uint8_t* hsv) {
    const HsvTables& tables = TablesOfHsv();
    const int h = hsv[0], s = hsv[1], v = hsv[2];
    if (s == 0) return {v, v, v};
    const int p = tables.valueP[v][s];
    const int q = (tables.valueQ[s][h] * v) >> 10;
    const int t = (tables.valueT[s][h] * v) >> 10;
    switch (2 * h / 85) {
        case 0:
            return {v, t, p};
        case 1:
            return {q, v, p};
        case 2:
            return {p, v, t};
        case 3:
            return {p, q, v};
        case 4:
            return {t, p, v};
        default:
            return {v, p, q};
    }
}

// Four bytes are stored for each pixel and three moved on: one zero byte stays behind each row, or
// is overwritten by the next one, or falls on the one before.
inline void Bgra2HsvBytes(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                          uint8_t* dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < width; ++x) {
            const uint8_t* in = src + row * srcStride + 4 * x;
            uint8_t* out = dst + row * dstStride + 3 * x;
            const ByteHsv hsv = RgbToByteHsv({in[2], in[1], in[0]});
            out[0] = hsv.h;
            out[1] = hsv.s;
            out[2] = hsv.v;
            out[3] = 0;
        }
}

inline void HsvBytes2Bgra(int width, int height, int srcStride, const uint8_t* src, int alphaStride,
                          const uint8_t* alpha, int dstStride, uint8_t* dst) {
    if (src == nullptr || dst == nullptr) return;
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < width; ++x) {
            uint8_t* out = dst + row * dstStride + 4 * x;
            const IntRgb rgb = ByteHsvToRgb(src + row * srcStride + 3 * x);
            out[0] = static_cast<uint8_t>(rgb.b);
            out[1] = static_cast<uint8_t>(rgb.g);
            out[2] = static_cast<uint8_t>(rgb.r);
            out[3] = alpha[row * alphaStride + x];
        }
}

// Where the bytes of a pair stand.
struct HsvPairOrder {
    int y0, u, y1, v;
};
inline constexpr HsvPairOrder kHsvYuyv = {0, 1, 2, 3};
inline constexpr HsvPairOrder kHsvUyvy = {1, 0, 3, 2};

// BT.709 studio range in fixed point; C++20 shifts signed values arithmetically.
inline IntRgb YuvToRgbFixed(int y, int u, int v) {
    const int uCentred = u - 128, vCentred = v - 128;
    const int rv = (459 * vCentred + 128) >> 8;
    const int bu = (541 * uCentred + 128) >> 8;
    const int gc = (-218 * uCentred - 545 * vCentred + 512) >> 10;
    const int luma = (149 * y - 2320) >> 7;
    const auto clamped = [](int x) { return x < 0 ? 0 : x > 255 ? 255 : x; };
    return {clamped(luma + rv), clamped(luma + gc), clamped(luma + bu)};
}

inline void Packed422ToHsvBytes(HsvPairOrder order, int width, int height, int srcStride,
                                const uint8_t* src, int dstStride, uint8_t* dst) {
    if (src == nullptr || dst == nullptr) return;
    for (int64_t row = 0; row < height; ++row)
        for (int64_t pair = 0; pair < width >> 1; ++pair) {
            const uint8_t* in = src + row * srcStride + 4 * pair;
            uint8_t* out = dst + row * dstStride + 6 * pair;
            for (int side : {0, 1}) {
                const int y = in[side == 0 ? order.y0 : order.y1];
                const ByteHsv hsv = RgbToByteHsv(YuvToRgbFixed(y, in[order.u], in[order.v]));
                out[3 * side] = hsv.h;
                out[3 * side + 1] = hsv.s;
                out[3 * side + 2] = hsv.v;
            }
        }
}

inline void HsvBytesToPacked422(HsvPairOrder order, int width, int height, int srcStride,
                                const uint8_t* src, int dstStride, uint8_t* dst) {
    if (src == nullptr || dst == nullptr) return;
    const auto luma = [](IntRgb rgb) {
        return static_cast<uint8_t>(((629 * rgb.g + 187 * rgb.r + 63 * rgb.b + 512) >> 10) + 16);
    };
    for (int64_t row = 0; row < height; ++row)
        for (int64_t pair = 0; pair < width >> 1; ++pair) {
            const uint8_t* in = src + row * srcStride + 6 * pair;
            uint8_t* out = dst + row * dstStride + 4 * pair;
            const IntRgb left = ByteHsvToRgb(in), right = ByteHsvToRgb(in + 3);
            const int rs = left.r + right.r, gs = left.g + right.g, bs = left.b + right.b;
            const int u = ((450 * bs - 347 * gs - 103 * rs + 1024) >> 11) + 128;
            const int v = ((450 * rs - 409 * gs - 41 * bs + 1024) >> 11) + 128;
            out[order.y0] = luma(left);
            out[order.y1] = luma(right);
            out[order.u] = static_cast<uint8_t>(u);
            out[order.v] = static_cast<uint8_t>(v);
        }
}

inline void Yuyv2HsvBytes(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                          uint8_t* dst) {
    Packed422ToHsvBytes(kHsvYuyv, width, height, srcStride, src, dstStride, dst);
}
inline void Uyvy2HsvBytes(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                          uint8_t* dst) {
    Packed422ToHsvBytes(kHsvUyvy, width, height, srcStride, src, dstStride, dst);
}
inline void HsvBytes2Yuyv(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                          uint8_t* dst) {
    HsvBytesToPacked422(kHsvYuyv, width, height, srcStride, src, dstStride, dst);
}
inline void HsvBytes2Uyvy(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                          uint8_t* dst) {
    HsvBytesToPacked422(kHsvUyvy, width, height, srcStride, src, dstStride, dst);
}

}  // namespace tqref
