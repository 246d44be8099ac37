#pragma once

// The JBI zoom written a second time, one pixel at a time from its formulas and sharing nothing
// with zoom/. Production must equal it, byte for byte, at every level. One statement for each float
// operation: compile with -ffp-contract=off. The runtime's exp is the one that production calls.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "reference/luminance_reference.h"
#include "reference/zoom_correct_reference.h"
#include "reference/zoom_reference.h"

namespace tqref {

inline float ExpFineEntry(int j) {
    const double argument = -(static_cast<double>(j) + 0.5) / 131072.0;
    return static_cast<float>(std::exp(argument));
}

inline float ExpCoarseEntry(int k) {
    const double argument = -static_cast<double>(k) / 64.0;
    return static_cast<float>(std::exp(argument));
}

struct ExpTables {
    std::vector<float> fine, coarse;
    ExpTables() {
        for (int j = 0; j < 2048; ++j) fine.push_back(ExpFineEntry(j));
        for (int k = 0; k < 4097; ++k) coarse.push_back(ExpCoarseEntry(k));
    }
};

// A conversion that fails gives the most negative integer.
inline int32_t JbiTruncated(double value) {
    if (std::isnan(value) || value >= 2147483648.0 || value <= -2147483649.0) return INT32_MIN;
    return static_cast<int32_t>(value);
}

inline float JbiExponential(float e) {
    static const ExpTables tables;
    const double t = static_cast<double>(e) * -131072.0;
    const int32_t n = JbiTruncated(t);
    const int32_t hi = n >> 11, lo = n & 2047;
    if (static_cast<uint32_t>(hi) <= 4096) return tables.fine[lo] * tables.coarse[hi];
    return static_cast<float>(std::exp(static_cast<double>(e)));
}

// The 5 x 5 samples whose first is at row `top` and column `left`, column by column.
inline float JbiSigma(const ZoomSource& plane, int top, int left) {
    int sum = 0;
    for (int r = 0; r < 5; ++r)
        for (int c = 0; c < 5; ++c) sum += plane.Sample(top + r, left + c, 1, 0);
    const float mean = static_cast<float>(sum) * 0.04f;
    float acc = 0.0f;
    for (int c = 0; c < 5; ++c)
        for (int r = 0; r < 5; ++r) {
            const float t = static_cast<float>(plane.Sample(top + r, left + c, 1, 0)) - mean;
            const float square = t * t;
            acc = acc + square;
        }
    return acc * 0.02f;
}

// A row for each row of the plane, zero where no window exists, and one more.
inline std::vector<float> JbiMap(const ZoomSource& plane) {
    std::vector<float> map((static_cast<size_t>(plane.height) + 1) * plane.width, 0.0f);
    for (int r = 2; r <= plane.height - 3; ++r)
        for (int c = 2; c <= plane.width - 3; ++c)
            map[static_cast<size_t>(r) * plane.width + c] = JbiSigma(plane, r - 2, c - 2);
    return map;
}

// The source samples that count on one axis, around a position that is not clamped.
struct JbiWindow {
    float position;
    int centre, first, last;

    JbiWindow(const LinearAxis& axis, int i) {
        const float product = static_cast<float>(i) * axis.step;
        position = product + axis.offset;
        const float up = position + 0.5f;
        centre = static_cast<int>(up);
        first = std::max(centre - 2, 0);
        last = std::min(centre + 2, axis.last);
    }
};

struct JbiImages {
    ZoomSource src, plane;  // the plane whose samples are compared; the source if it is one channel
    int mapStride;          // in floats
    const float* map;
    ZoomSource guide;
};

inline uint8_t JbiByte(float sum, float sumOfWeights) {
    float v = sum / sumOfWeights;
    if (v > 255.0f) v = 255.0f;
    if (std::isnan(v)) return 0;
    return static_cast<uint8_t>(v);
}

inline void JbiPixel(int channels, const JbiImages& images, const JbiWindow& down,
                     const JbiWindow& across, int x, int y, const ZoomTarget& dst) {
    const auto guide = [&images](int row, int column) {
        return int{images.guide.Sample(row, column, 1, 0)};
    };
    const int g = guide(y, x);
    const int grad =
        std::abs(guide(y + 1, x) - guide(y - 1, x)) + std::abs(guide(y, x + 1) - guide(y, x - 1));
    const int w = across.last - across.first + 2;
    const float spatial = 4.0f / static_cast<float>(w * w);
    const float sigma = images.map[int64_t{down.centre} * images.mapStride + across.centre];
    float sumW = 0.0f;
    float sum[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    for (int sy = down.first; sy <= down.last; ++sy)
        for (int sx = across.first; sx <= across.last; ++sx) {
            const float dy = down.position - static_cast<float>(sy);
            const float dx = across.position - static_cast<float>(sx);
            const float dx2 = dx * dx;
            const float dy2 = dy * dy;
            const float r2 = dx2 + dy2;
            const float distance = r2 * spatial;
            const int p = images.plane.Sample(sy, sx, 1, 0);
            const int d2 = (g - p) * (g - p);
            float e;
            if (sigma != 0.0f) {
                const int range = grad <= 50 ? -10 * d2 : -d2;
                const float quotient = static_cast<float>(range) / sigma;
                e = quotient - distance;
            } else {
                e = -distance;
            }
            const float weight = JbiExponential(e);
            sumW = sumW + weight;
            for (int channel = 0; channel < channels; ++channel) {
                const int sample = images.src.Sample(sy, sx, channels, channel);
                const float product = static_cast<float>(sample) * weight;
                sum[channel] = sum[channel] + product;
            }
        }
    for (int channel = 0; channel < channels; ++channel)
        dst.Sample(y, x, channels, channel) = JbiByte(sum[channel], sumW);
}

// Inner rows rowBegin to rowEnd - 1. One channel: the outer columns are those of the guide. Four:
// they are left alone.
inline void JbiRows(int channels, const JbiImages& images, const ZoomTarget& dst, int rowBegin,
                    int rowEnd) {
    const LinearAxis across(images.src.width, dst.width), along(images.src.height, dst.height);
    for (int y = rowBegin; y < rowEnd; ++y) {
        if (channels == 1)
            for (int x : {0, dst.width - 1})
                dst.Sample(y, x, 1, 0) = static_cast<uint8_t>(images.guide.Sample(y, x, 1, 0));
        const JbiWindow down(along, y);
        for (int x = 1; x <= dst.width - 2; ++x)
            JbiPixel(channels, images, down, JbiWindow(across, x), x, y, dst);
    }
}

// The outermost pixels of a four-channel destination: linear zooms of single rows and columns.
inline void JbiFrame(const ZoomSource& src, const ZoomTarget& dst) {
    const auto row = [&](int from, int to) {
        ZoomLinear(4, {src.width, 1, src.stride, src.first + int64_t{from} * src.stride},
                   {dst.width, 1, dst.stride, dst.first + int64_t{to} * dst.stride});
    };
    const auto column = [&](int from, int to) {
        ZoomLinear(4, {1, src.height, src.stride, src.first + 4 * from},
                   {1, dst.height, dst.stride, dst.first + 4 * to});
    };
    row(0, 0);
    row(src.height - 1, dst.height - 1);
    column(0, 0);
    column(src.width - 1, dst.width - 1);
}

using PlaneZoom = void (*)(const ZoomSource& src, const ZoomTarget& dst);

// The first estimate, packed. The six-tap zoom of one channel makes it where the cubic correct one
// does not.
inline std::vector<uint8_t> JbiGuide(const ZoomSource& plane, const ZoomTarget& dst,
                                     PlaneZoom sixTap) {
    std::vector<uint8_t> guide(static_cast<size_t>(dst.width) * dst.height);
    const ZoomTarget target{dst.width, dst.height, dst.width, guide.data()};
    if (!ZoomCubicCorrect(1, plane, target)) sixTap(plane, target);
    return guide;
}

// False, with nothing written, where the method is the super zoom.
inline bool ZoomJbi(int channels, const ZoomSource& src, const ZoomTarget& dst, PlaneZoom sixTap) {
    if (ZoomPreamble(channels, src, dst)) return true;
    if (src.width >= dst.width || src.height >= dst.height) return false;
    const LuminancePlane luminance(channels == 4 ? src : ZoomSource{0, 0, 0, nullptr});
    const ZoomSource plane = channels == 4 ? luminance.Source() : src;
    const std::vector<uint8_t> bytes = JbiGuide(plane, dst, sixTap);
    const ZoomSource guide{dst.width, dst.height, dst.width, bytes.data()};
    if (channels == 4)
        JbiFrame(src, dst);
    else
        for (int y : {0, dst.height - 1})
            for (int x = 0; x < dst.width; ++x)
                dst.Sample(y, x, 1, 0) = static_cast<uint8_t>(guide.Sample(y, x, 1, 0));
    const std::vector<float> map = JbiMap(plane);
    JbiRows(channels, {src, plane, src.width, map.data(), guide}, dst, 1, dst.height - 1);
    return true;
}

}  // namespace tqref
