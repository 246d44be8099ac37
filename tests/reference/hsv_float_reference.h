#pragma once

// HSV in floats written a second time, one pixel or pair at a time and sharing nothing with color/.
// Each operation is a statement of its own, so that each rounds once, in order.

#include <bit>
#include <cmath>
#include <cstdint>

namespace tqref {

// Toward zero; NaN and what 32 bits cannot hold become the most negative int.
inline int32_t HsvTruncated(double x) {
    if (x > -2147483649.0 && x < 2147483648.0) return static_cast<int32_t>(x);
    return INT32_MIN;
}
inline uint8_t HsvLowByte(double x) { return static_cast<uint8_t>(HsvTruncated(x)); }

struct HsvPixel {
    float h, s, v;
};

struct RgbBytes {
    uint8_t r, g, b;
};

// Degrees, saturation and value from 0 to 1.

inline HsvPixel RgbToHsv(float r, float g, float b) {
    HsvPixel out;
    const float most = r >= g && r >= b ? r : g >= b ? g : b;
    const float least = r <= g && r <= b ? r : g <= b ? g : b;
    const double value = static_cast<double>(most) / 255.0;
    out.v = static_cast<float>(value);
    const float d = most - least;
    if (static_cast<double>(d) < 1e-6) {
        out.s = 0.0f;
        out.h = 0.0f;
        return out;
    }
    const float inverse = 1.0f / d;
    float t;
    if (r == most) {
        const float difference = g - b;
        t = difference * inverse;
    } else if (g == most) {
        const float difference = b - r;
        const float scaled = difference * inverse;
        t = scaled + 2.0f;
    } else {
        const float difference = r - g;
        const float scaled = difference * inverse;
        t = scaled + 4.0f;
    }
    out.h = t * 60.0f;
    if (0.0f > out.h) out.h = out.h + 360.0f;
    out.s = d / most;
    return out;
}

// With bytes all differences are integers, which a float holds exactly.
inline HsvPixel RgbToHsv(int r, int g, int b) {
    HsvPixel out;
    int most = r, least = r;
    if (g > most) most = g;
    if (b > most) most = b;
    if (g < least) least = g;
    if (b < least) least = b;
    const double value = static_cast<double>(most) / 255.0;
    out.v = static_cast<float>(value);
    const int d = most - least;
    if (static_cast<double>(d) < 1e-6) {
        out.s = 0.0f;
        out.h = 0.0f;
        return out;
    }
    const float inverse = 1.0f / static_cast<float>(d);
    float t;
    if (r == most) {
        t = static_cast<float>(g - b) * inverse;
    } else if (g == most) {
        const float scaled = static_cast<float>(b - r) * inverse;
        t = scaled + 2.0f;
    } else {
        const float scaled = static_cast<float>(r - g) * inverse;
        t = scaled + 4.0f;
    }
    out.h = t * 60.0f;
    if (0.0f > out.h) out.h = out.h + 360.0f;
    out.s = static_cast<float>(d) / static_cast<float>(most);
    return out;
}

// The largest channel gets neither the hundredth nor the limit. False where nothing is stored.
inline bool HsvToRgb(float h, float s, float v, RgbBytes* out) {
    const float w = v * 255.0f;
    const double saturation = s;
    if (-1e-10 <= saturation && saturation <= 1e-10) {
        const double grey = static_cast<double>(w) + 0.01;
        const uint8_t byte = HsvLowByte(grey);
        *out = {byte, byte, byte};
        return true;
    }
    const float x = h / 60.0f;
    const int32_t i = HsvTruncated(x);
    const float f = x - static_cast<float>(i);
    const auto raised = [](float channel) {
        const double sum = static_cast<double>(channel) + 0.01;
        const float narrowed = static_cast<float>(sum);
        return narrowed > 255.0f ? 255.0f : narrowed;
    };
    const float withoutS = 1.0f - s;
    const float pRaw = withoutS * w;
    const float fs = f * s;
    const float withoutFs = 1.0f - fs;
    const float qRaw = withoutFs * w;
    const float rest = 1.0f - f;
    const float restS = rest * s;
    const float withoutRestS = 1.0f - restS;
    const float tRaw = withoutRestS * w;
    const uint8_t largest = HsvLowByte(w);
    const uint8_t p = HsvLowByte(raised(pRaw));
    const uint8_t q = HsvLowByte(raised(qRaw));
    const uint8_t t = HsvLowByte(raised(tRaw));
    switch (static_cast<uint32_t>(i)) {
        case 0:
            *out = {largest, t, p};
            return true;
        case 1:
            *out = {q, largest, p};
            return true;
        case 2:
            *out = {p, largest, t};
            return true;
        case 3:
            *out = {p, q, largest};
            return true;
        case 4:
            *out = {t, p, largest};
            return true;
        case 5:
            *out = {largest, p, q};
            return true;
        default:
            return false;
    }
}

// Limits come after the truncation: what 32 bits cannot hold is negative.
inline uint8_t AlphaByte(float alpha) {
    const float scaled = alpha * 255.0f;
    const float rounded = scaled + 0.5f;
    const int32_t a = HsvTruncated(rounded);
    if (a < 0) return 0;
    if (a >= 256) return 255;
    return static_cast<uint8_t>(a);
}

inline void Bgra2Hsv(int width, int height, int srcStride, const uint8_t* src, int hStride,
                     float* h, int sStride, float* s, int vStride, float* v) {
    if (src == nullptr || h == nullptr || s == nullptr || v == nullptr) return;
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < width; ++x) {
            const uint8_t* in = src + row * srcStride + 4 * x;
            const HsvPixel hsv = RgbToHsv(int{in[2]}, int{in[1]}, int{in[0]});
            h[row * hStride + x] = hsv.h;
            s[row * sStride + x] = hsv.s;
            v[row * vStride + x] = hsv.v;
        }
}

// alpha may be null: byte 3 is then not written.
inline void Hsv2Bgra(int width, int height, int hStride, const float* h, int sStride,
                     const float* s, int vStride, const float* v, int alphaStride,
                     const float* alpha, int dstStride, uint8_t* dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < width; ++x) {
            uint8_t* out = dst + row * dstStride + 4 * x;
            RgbBytes rgb;
            if (HsvToRgb(h[row * hStride + x], s[row * sStride + x], v[row * vStride + x], &rgb)) {
                out[2] = rgb.r;
                out[1] = rgb.g;
                out[0] = rgb.b;
            }
            if (alpha != nullptr) out[3] = AlphaByte(alpha[row * alphaStride + x]);
        }
}

// The other inverse: floor, and limits on both sides.

inline RgbBytes HsvToRgbByFloor(float h, float s, float v) {
    float r, g, b;
    if (s == 0.0f) {
        r = g = b = v;
    } else {
        const float x = h / 60.0f;
        const float floored = std::floor(x);
        const int32_t i = HsvTruncated(floored);
        const float c = s * v;
        const float f = x - static_cast<float>(i);
        const float e = f * c;
        const float low = v - c;
        const float rising = e + low;
        const float falling = v - e;
        switch (i) {
            case 0:
                r = v, g = rising, b = low;
                break;
            case 1:
                r = falling, g = v, b = low;
                break;
            case 2:
                r = low, g = v, b = rising;
                break;
            case 3:
                r = low, g = falling, b = v;
                break;
            case 4:
                r = rising, g = low, b = v;
                break;
            default:
                r = v, g = low, b = falling;
                break;
        }
    }
    const auto limited = [](float channel) {
        float scaled = channel * 255.0f;
        if (0.0f > scaled) scaled = 0.0f;
        if (scaled > 255.0f) scaled = 255.0f;
        return HsvLowByte(scaled);
    };
    return {limited(r), limited(g), limited(b)};
}

inline void HsvToBgraByFloor(int width, int height, int hStride, const float* h, int sStride,
                             const float* s, int vStride, const float* v, int dstStride,
                             uint8_t* dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < width; ++x) {
            uint8_t* out = dst + row * dstStride + 4 * x;
            const RgbBytes rgb =
                HsvToRgbByFloor(h[row * hStride + x], s[row * sStride + x], v[row * vStride + x]);
            out[0] = rgb.b;
            out[1] = rgb.g;
            out[2] = rgb.r;
        }
}

// Studio-range YUYV: value from 0 to 255, nothing limited between.

struct HsvYuvSet {
    float yScale, uToBlue, uToGreen, vToGreen, vToRed;
    float redToY, greenToY, blueToY;
    float redToU, greenToU, chromaMain, greenToV, blueToV;
};

inline constexpr HsvYuvSet kHsv601 = {1.164383f, 2.017232f, 0.391762f, 0.812968f, 1.596027f,
                                      0.256788f, 0.504129f, 0.097906f, 0.148223f, 0.290993f,
                                      0.439216f, 0.367788f, 0.071427f};
inline constexpr HsvYuvSet kHsv709 = {1.1644f, 2.1126f, 0.2129f, 0.5325f, 1.793f, 0.1825f, 0.6144f,
                                      0.0619f, 0.1006f, 0.3386f, 0.4392f, 0.399f, 0.0402f};

constexpr bool HasBits(const HsvYuvSet& set, const uint32_t (&bits)[13]) {
    const float values[13] = {set.yScale, set.uToBlue,  set.uToGreen,   set.vToGreen,
                              set.vToRed, set.redToY,   set.greenToY,   set.blueToY,
                              set.redToU, set.greenToU, set.chromaMain, set.greenToV,
                              set.blueToV};
    for (int i = 0; i < 13; ++i)
        if (std::bit_cast<uint32_t>(values[i]) != bits[i]) return false;
    return true;
}
static_assert(HasBits(kHsv601, {0x3F950A81, 0x40011A54, 0x3EC89507, 0x3F501EAC, 0x3FCC4A9D,
                                0x3E8379B7, 0x3F010E99, 0x3DC882F1, 0x3E17C7C5, 0x3E94FD09,
                                0x3EE0E0EB, 0x3EBC4EB5, 0x3D924852}));
static_assert(HasBits(kHsv709, {0x3F950B0F, 0x400734D7, 0x3E5A0275, 0x3F0851EC, 0x3FE58106,
                                0x3E3AE148, 0x3F1D4952, 0x3D7D8ADB, 0x3DCE075F, 0x3EAD5CFB,
                                0x3EE0DED3, 0x3ECC49BA, 0x3D24A8C1}));

inline HsvPixel YuvToHsv(const HsvYuvSet& set, int y, int u, int v) {
    const float luma = static_cast<float>(y - 16) * set.yScale;
    const float uCentred = static_cast<float>(u - 128);
    const float vCentred = static_cast<float>(v - 128);
    const float uBlue = uCentred * set.uToBlue;
    const float vRed = vCentred * set.vToRed;
    const float vGreen = vCentred * set.vToGreen;
    const float uGreen = uCentred * set.uToGreen;
    const float green = vGreen + uGreen;
    const float b = uBlue + luma;
    const float g = luma - green;
    const float r = vRed + luma;

    float most, least;
    if (r > g)
        most = r > b ? r : b;
    else
        most = g > b ? g : b;
    if (g > r)
        least = b > r ? r : b;
    else
        least = b > g ? g : b;

    HsvPixel out;
    const float d = most - least;
    if (most == least) {
        out.h = 0.0f;
    } else if (most == r) {
        const float difference = g - b;
        const float scaled = difference * 60.0f;
        out.h = scaled / d;
        if (g < b) out.h = out.h + 360.0f;
    } else if (most == g) {
        const float difference = b - r;
        const float scaled = difference * 60.0f;
        const float angle = scaled / d;
        out.h = angle + 120.0f;
    } else {
        const float difference = r - g;
        const float scaled = difference * 60.0f;
        const float angle = scaled / d;
        out.h = angle + 240.0f;
    }
    if (most != 0.0f) {
        const float ratio = least / most;
        out.s = 1.0f - ratio;
    } else {
        out.s = 0.0f;
    }
    out.v = most;
    return out;
}

struct YuvBytes {
    uint8_t y, u, v;
};

inline YuvBytes HsvToYuv(const HsvYuvSet& set, float h, float s, float v) {
    const float x = h / 60.0f;
    const int32_t i = HsvTruncated(x);
    const float c = v * s;
    const float low = v - c;
    const float f = x - static_cast<float>(i);
    const float e = f * c;
    const float q = v - e;
    const float t = low + e;
    float r, g, b;
    switch (static_cast<uint32_t>(i)) {
        case 0:
            r = v, g = t, b = low;
            break;
        case 1:
            r = q, g = v, b = low;
            break;
        case 2:
            r = low, g = v, b = t;
            break;
        case 3:
            r = low, g = q, b = v;
            break;
        case 4:
            r = t, g = low, b = v;
            break;
        case 5:
            r = v, g = low, b = q;
            break;
        default:
            r = g = b = 0.0f;
            break;
    }

    const float yRed = r * set.redToY;
    const float yGreen = g * set.greenToY;
    const float yBlue = b * set.blueToY;
    const float yRedGreen = yRed + yGreen;
    const float ySum = yRedGreen + yBlue;
    const float yHalf = ySum + 0.5f;
    const float luma = yHalf + 16.0f;

    const float uBlue = b * set.chromaMain;
    const float uGreen = g * set.greenToU;
    const float uRed = r * set.redToU;
    const float uGreenRed = uGreen + uRed;
    const float uSum = uBlue - uGreenRed;
    const float uHalf = uSum + 0.5f;
    const float cb = uHalf + 128.0f;

    const float vRed = r * set.chromaMain;
    const float vGreen = g * set.greenToV;
    const float vBlue = b * set.blueToV;
    const float vRedGreen = vRed - vGreen;
    const float vSum = vRedGreen - vBlue;
    const float vHalf = vSum + 0.5f;
    const float cr = vHalf + 128.0f;

    // NaN passes both limits and has low eight bits of 0.
    const auto limited = [](float value, float most) {
        if (value < 16.0f) return uint8_t{16};
        if (value > most) return static_cast<uint8_t>(most);
        return HsvLowByte(value);
    };
    return {limited(luma, 235.0f), limited(cb, 240.0f), limited(cr, 240.0f)};
}

// Chroma bytes are averaged after their limits; a tie goes up.
inline void StoreYuyvPair(YuvBytes left, YuvBytes right, uint8_t* out) {
    out[0] = left.y;
    out[1] = static_cast<uint8_t>((left.u + right.u + 1) >> 1);
    out[2] = right.y;
    out[3] = static_cast<uint8_t>((left.v + right.v + 1) >> 1);
}

// Interleaved: three floats a pixel. dstStride counts floats.
inline void Yuyv2Hsv(const HsvYuvSet& set, int width, int height, int srcStride, const uint8_t* src,
                     int dstStride, float* dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t pair = 0; pair < width >> 1; ++pair) {
            const uint8_t* in = src + row * srcStride + 4 * pair;
            float* out = dst + row * dstStride + 6 * pair;
            const HsvPixel left = YuvToHsv(set, in[0], in[1], in[3]);
            const HsvPixel right = YuvToHsv(set, in[2], in[1], in[3]);
            out[0] = left.h, out[1] = left.s, out[2] = left.v;
            out[3] = right.h, out[4] = right.s, out[5] = right.v;
        }
}

inline void Yuyv2HsvPlanes(const HsvYuvSet& set, int width, int height, int srcStride,
                           const uint8_t* src, int hStride, float* h, int sStride, float* s,
                           int vStride, float* v) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < (width >> 1) * 2; ++x) {
            const uint8_t* in = src + row * srcStride + x / 2 * 4;
            const HsvPixel hsv = YuvToHsv(set, in[x % 2 * 2], in[1], in[3]);
            h[row * hStride + x] = hsv.h;
            s[row * sStride + x] = hsv.s;
            v[row * vStride + x] = hsv.v;
        }
}

// Three planes of width * height floats behind one pointer.
inline void Yuyv2HsvP(const HsvYuvSet& set, int width, int height, int srcStride,
                      const uint8_t* src, float* planes) {
    if (width < 1 || height < 1) return;
    const int plane = width * height;
    Yuyv2HsvPlanes(set, width, height, srcStride, src, width, planes, width, planes + plane, width,
                   planes + 2 * plane);
}

inline void Hsv2Yuyv(const HsvYuvSet& set, int width, int height, int srcStride, const float* src,
                     int dstStride, uint8_t* dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t pair = 0; pair < width >> 1; ++pair) {
            const float* in = src + row * srcStride + 6 * pair;
            StoreYuyvPair(HsvToYuv(set, in[0], in[1], in[2]), HsvToYuv(set, in[3], in[4], in[5]),
                          dst + row * dstStride + 4 * pair);
        }
}

inline void HsvPlanes2Yuyv(const HsvYuvSet& set, int width, int height, int hStride, const float* h,
                           int sStride, const float* s, int vStride, const float* v, int dstStride,
                           uint8_t* dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t pair = 0; pair < width >> 1; ++pair) {
            const float* hIn = h + row * hStride + 2 * pair;
            const float* sIn = s + row * sStride + 2 * pair;
            const float* vIn = v + row * vStride + 2 * pair;
            StoreYuyvPair(HsvToYuv(set, hIn[0], sIn[0], vIn[0]),
                          HsvToYuv(set, hIn[1], sIn[1], vIn[1]), dst + row * dstStride + 4 * pair);
        }
}

inline void HsvP2Yuyv(const HsvYuvSet& set, int width, int height, const float* planes,
                      int dstStride, uint8_t* dst) {
    if (width < 1 || height < 1) return;
    const int plane = width * height;
    HsvPlanes2Yuyv(set, width, height, width, planes, width, planes + plane, width,
                   planes + 2 * plane, dstStride, dst);
}

}  // namespace tqref
