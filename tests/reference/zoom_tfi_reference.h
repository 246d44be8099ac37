#pragma once

// The TFI zoom written a second time, one pixel at a time from its formulas and sharing nothing
// with zoom/. Production must equal it, byte for byte, at every level. One statement for each float
// operation: compile with -ffp-contract=off. The runtime's expf and sqrtf are those that production
// calls.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "reference/zoom_reference.h"

namespace tqref {

// The bytes of a window in order, row by row.
using TfiBytes = std::span<const int>;

inline float TfiVariance(const TfiBytes& bytes) {
    int sum = 0;
    for (int byte : bytes) sum += byte;
    const float inv = 1.0f / static_cast<float>(bytes.size());
    const float mean = static_cast<float>(sum) * inv;
    float acc = 0.0f;
    for (int byte : bytes) {
        const float difference = static_cast<float>(byte) - mean;
        const float square = difference * difference;
        acc = acc + square;
    }
    return acc * inv;
}

// In whole numbers, cut toward zero, but for the root.
inline float TfiDeviation(const TfiBytes& bytes) {
    const int count = static_cast<int>(bytes.size());
    int sum = 0;
    for (int byte : bytes) sum += byte;
    const int mean = sum / count;
    int ss = 0;
    for (int byte : bytes) ss += (byte - mean) * (byte - mean);
    const int var = ss / count;
    return std::sqrt(static_cast<float>(var));
}

using TfiSpread = float (*)(const TfiBytes&);

// One channel of an image. A row or a column that the image does not have is the nearest that it
// has.
struct TfiPlane {
    const ZoomSource& src;
    int channels, channel;
    int At(int row, int column) const {
        return src.Sample(std::clamp(row, 0, src.height - 1), std::clamp(column, 0, src.width - 1),
                          channels, channel);
    }
};

struct TfiDifferences {
    int first, second;
};

// Of a sample that has neighbours on all sides.
inline TfiDifferences TfiInnerDifferences(const TfiPlane& plane, int sx, int sy) {
    const int a = plane.At(sy - 1, sx - 1), b = plane.At(sy - 1, sx), c = plane.At(sy - 1, sx + 1);
    const int d = plane.At(sy, sx - 1), e = plane.At(sy, sx), f = plane.At(sy, sx + 1);
    const int g = plane.At(sy + 1, sx - 1), h = plane.At(sy + 1, sx), i = plane.At(sy + 1, sx + 1);
    const int horizontal = 2 * (f - d) + (c - a) + (i - g);
    const int vertical = 2 * (h - b) + (g - a) + (i - c);
    const int mainDiagonal = 2 * (i - a) + (h - b) + (f - d);
    const int antiDiagonal = 2 * (c - g) + (b - h) + (f - d);
    const int first =
        std::abs(horizontal) + std::abs(vertical) + std::abs(mainDiagonal) + std::abs(antiDiagonal);
    const int second = std::abs(d - 2 * e + f) + std::abs(b - 2 * e + h) + std::abs(a - 2 * e + i) +
                       std::abs(c - 2 * e + g);
    return {first, second};
}

// Of a sample in the outermost rows and columns: by the 2 x 2 block inside the image.
inline TfiDifferences TfiBorderDifferences(const TfiPlane& plane, int sx, int sy) {
    const int beside = sx == plane.src.width - 1 ? sx - 1 : sx + 1;
    const int below = sy == plane.src.height - 1 ? sy - 1 : sy + 1;
    const int e = plane.At(sy, sx), u = plane.At(sy, beside);
    const int v = plane.At(below, sx), t = plane.At(below, beside);
    const int first = 2 * std::abs(t + u - v - e) + 2 * std::abs(t + v - u - e) +
                      4 * std::abs(u - v) + 4 * std::abs(t - e);
    const int second = std::abs(u - e) + std::abs(v - e) + std::abs(u - v) + std::abs(t - e);
    return {first, second};
}

inline float TfiActivity(const TfiPlane& plane, int sx, int sy) {
    const bool border =
        sx == 0 || sx == plane.src.width - 1 || sy == 0 || sy == plane.src.height - 1;
    const TfiDifferences sums =
        border ? TfiBorderDifferences(plane, sx, sy) : TfiInnerDifferences(plane, sx, sy);
    const float first = static_cast<float>(sums.first) * 0.4f;
    const float second = static_cast<float>(sums.second) * 0.6f;
    const float sum = first + second;
    return sum / 255.0f;
}

inline float TfiRatio(int srcLength, int dstLength) {
    if (srcLength >= 2 && dstLength >= 2)
        return static_cast<float>(dstLength - 1) / static_cast<float>(srcLength - 1);
    return static_cast<float>(dstLength) / static_cast<float>(srcLength);
}

// The position on one axis, and the two samples around it.
struct TfiPosition {
    float position;
    int samples[2];

    TfiPosition(int i, float ratio, int srcLength) {
        position = static_cast<float>(i) / ratio;
        const int cut = static_cast<int>(position);
        int first = std::max(cut, 0);
        const int second = std::min(cut + 1, srcLength - 1);
        if (first == second) first = first - 1;
        // With a single sample there is none before it: it stands for both.
        samples[0] = std::max(first, 0);
        samples[1] = second;
    }
};

// NaN stays.
inline float TfiClamped(float value) {
    if (value > 255.0f) value = 255.0f;
    if (value < 0.0f) value = 0.0f;
    return value;
}

inline uint8_t TfiPixel(const TfiPlane& plane, const TfiPosition& across, const TfiPosition& down,
                        TfiSpread spreadOf) {
    int bytes[4];
    float activity[4], weight[4], place[4];
    float sumW = 0.0f, sum = 0.0f;
    for (int k = 0; k < 4; ++k) {
        const int sy = down.samples[k / 2], sx = across.samples[k % 2];
        bytes[k] = plane.At(sy, sx);
        activity[k] = TfiActivity(plane, sx, sy);
        const float exponent = activity[k] * -0.6f;
        weight[k] = ::expf(exponent);
        const float distanceX = std::fabs(across.position - static_cast<float>(sx));
        const float distanceY = std::fabs(down.position - static_cast<float>(sy));
        const float nearX = 1.0f - distanceX;
        const float nearY = 1.0f - distanceY;
        place[k] = nearX * nearY;
        const float m = weight[k] * place[k];
        const float product = static_cast<float>(bytes[k]) * m;
        sumW = sumW + m;
        sum = sum + product;
    }
    const float est = TfiClamped(sum / sumW);
    const float spread = spreadOf(bytes) * 0.5f;
    sumW = 0.0f;
    sum = 0.0f;
    for (int k = 0; k < 4; ++k) {
        float r = 1.0f;
        if (spread != 0.0f) {
            const float n = static_cast<float>(bytes[k]) - est;
            const float scaled = n * activity[k];
            const float num = scaled * n;
            const float thirty = spread * 30.0f;
            const float den = thirty * spread;
            const float quotient = num / den;
            r = ::expf(-quotient);
        }
        const float m0 = weight[k] * place[k];
        const float m = m0 * r;
        const float product = static_cast<float>(bytes[k]) * m;
        sumW = sumW + m;
        sum = sum + product;
    }
    const float out = TfiClamped(sum / sumW);
    if (std::isnan(out)) return 0;
    return static_cast<uint8_t>(out);
}

// Rows rowBegin to rowEnd - 1, without the preamble. Each channel by itself.
inline void TfiRows(int channels, const ZoomSource& src, const ZoomTarget& dst, TfiSpread spreadOf,
                    int rowBegin, int rowEnd) {
    const float rx = TfiRatio(src.width, dst.width), ry = TfiRatio(src.height, dst.height);
    for (int y = rowBegin; y < rowEnd; ++y) {
        const TfiPosition down(y, ry, src.height);
        for (int x = 0; x < dst.width; ++x) {
            const TfiPosition across(x, rx, src.width);
            for (int channel = 0; channel < channels; ++channel)
                dst.Sample(y, x, channels, channel) =
                    TfiPixel({src, channels, channel}, across, down, spreadOf);
        }
    }
}

inline void ZoomTfiPlain(int channels, const ZoomSource& src, const ZoomTarget& dst) {
    if (ZoomPreamble(channels, src, dst)) return;
    TfiRows(channels, src, dst, TfiVariance, 0, dst.height);
}

inline void ZoomTfiThreaded(int channels, const ZoomSource& src, const ZoomTarget& dst) {
    if (ZoomPreamble(channels, src, dst)) return;
    TfiRows(channels, src, dst, TfiDeviation, 0, dst.height);
}

inline constexpr auto ZoomTfiPlainC1 = ZoomForm<ZoomTfiPlain, 1>;
inline constexpr auto ZoomTfiPlainC4 = ZoomForm<ZoomTfiPlain, 4>;
inline constexpr auto ZoomTfiThreadedC1 = ZoomForm<ZoomTfiThreaded, 1>;
inline constexpr auto ZoomTfiThreadedC4 = ZoomForm<ZoomTfiThreaded, 4>;

}  // namespace tqref
