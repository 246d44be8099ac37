#pragma once

// The super zoom written a second time, one pixel at a time from its formulas. Each float operation
// stands on its own and is rounded on its own: compile with -ffp-contract=off.

#include <cstdint>

#include "reference/zoom_cubic_reference.h"
#include "reference/zoom_reference.h"

namespace tqref {

// The source samples that one destination index covers, and how much of the first and the last.
struct CoveredSamples {
    int first, last;
    float firstFraction, lastFraction;
};

inline CoveredSamples CoverBetween(float begin, float end, int srcLength) {
    CoveredSamples covered;
    covered.first = static_cast<int>(begin);
    covered.last = static_cast<int>(end);
    const float into = begin - static_cast<float>(covered.first);
    covered.firstFraction = static_cast<float>(1.0 - static_cast<double>(into));
    covered.lastFraction = end - static_cast<float>(covered.last);
    if (covered.last > srcLength - 1) covered.last = srcLength - 1;
    if (covered.last == srcLength - 1) covered.lastFraction = 1.0f;
    return covered;
}

// How the lower end of a row's interval is formed.
enum class SuperBottom { kTopPlusScale, kNextIndexTimesScale };

inline CoveredSamples CoveredRows(int y, float sy, int srcHeight, SuperBottom form) {
    const float top = static_cast<float>(y) * sy;
    const float next = static_cast<float>(y + 1) * sy;
    const float sum = top + sy;
    return CoverBetween(top, form == SuperBottom::kTopPlusScale ? sum : next, srcHeight);
}

inline CoveredSamples CoveredColumns(int x, float sx, int srcWidth) {
    const float left = static_cast<float>(x) * sx;
    const float right = static_cast<float>(x + 1) * sx;
    return CoverBetween(left, right, srcWidth);
}

// acc is the start value and the first product; a row without a start value passes the product.
inline float SuperRowRest(float acc, int channels, const ZoomSource& src, int row,
                          const CoveredSamples& columns, int channel) {
    for (int k = columns.first + 1; k < columns.last; ++k)
        acc = acc + static_cast<float>(src.Sample(row, k, channels, channel));
    const int lastSample = src.Sample(row, columns.last, channels, channel);
    const float lastProduct = static_cast<float>(lastSample) * columns.lastFraction;
    return lastProduct + acc;
}

inline float SuperRow(int channels, const ZoomSource& src, int row, const CoveredSamples& columns,
                      int channel) {
    const int sample = src.Sample(row, columns.first, channels, channel);
    const float product = static_cast<float>(sample) * columns.firstFraction;
    return SuperRowRest(product, channels, src, row, columns, channel);
}

inline float SuperRowFrom(float start, int channels, const ZoomSource& src, int row,
                          const CoveredSamples& columns, int channel) {
    const int sample = src.Sample(row, columns.first, channels, channel);
    const float product = static_cast<float>(sample) * columns.firstFraction;
    const float acc = start + product;
    return SuperRowRest(acc, channels, src, row, columns, channel);
}

inline uint8_t SuperPixel(int channels, const ZoomSource& src, const CoveredSamples& rows,
                          const CoveredSamples& columns, int channel, float norm) {
    const float firstRow = SuperRow(channels, src, rows.first, columns, channel);
    const float t = firstRow * rows.firstFraction;
    float m = 0.0f;
    for (int row = rows.first + 1; row < rows.last; ++row)
        m = SuperRowFrom(m, channels, src, row, columns, channel);
    const float b = SuperRow(channels, src, rows.last, columns, channel);
    const float lower = b * rows.lastFraction;
    const float upper = m + t;
    const float sum = lower + upper;
    float v = sum * norm;
    if (v < 0.0f) v = 0.0f;
    if (v > 255.0f) v = 255.0f;
    return static_cast<uint8_t>(v);
}

// Rows rowBegin to rowEnd - 1, without the preamble and the switch to the six-tap zoom.
inline void ZoomSuperRows(int channels, SuperBottom form, const ZoomSource& src,
                          const ZoomTarget& dst, int rowBegin, int rowEnd) {
    const float sx = static_cast<float>(src.width) / static_cast<float>(dst.width);
    const float sy = static_cast<float>(src.height) / static_cast<float>(dst.height);
    const float area = sy * sx;
    const float norm = 1.0f / area;
    for (int y = rowBegin; y < rowEnd; ++y) {
        const CoveredSamples rows = CoveredRows(y, sy, src.height, form);
        for (int x = 0; x < dst.width; ++x) {
            const CoveredSamples columns = CoveredColumns(x, sx, src.width);
            for (int channel = 0; channel < channels; ++channel)
                dst.Sample(y, x, channels, channel) =
                    SuperPixel(channels, src, rows, columns, channel, norm);
        }
    }
}

inline void ZoomSuperWith(int channels, SuperBottom form, const ZoomSource& src,
                          const ZoomTarget& dst) {
    if (ZoomPreamble(channels, src, dst)) return;
    if (dst.width > src.width || dst.height > src.height)
        ZoomSixCubic(channels, src, dst);
    else
        ZoomSuperRows(channels, form, src, dst, 0, dst.height);
}

// One channel, and the MultiThread forms of both.
inline void ZoomSuper(int channels, const ZoomSource& src, const ZoomTarget& dst) {
    ZoomSuperWith(channels, SuperBottom::kTopPlusScale, src, dst);
}

// The plain four-channel form.
inline void ZoomSuperNextIndex(int channels, const ZoomSource& src, const ZoomTarget& dst) {
    ZoomSuperWith(channels, SuperBottom::kNextIndexTimesScale, src, dst);
}

inline constexpr auto ZoomSuperC1 = ZoomForm<ZoomSuper, 1>;
inline constexpr auto ZoomSuperPlainC4 = ZoomForm<ZoomSuperNextIndex, 4>;
inline constexpr auto ZoomSuperThreadedC4 = ZoomForm<ZoomSuper, 4>;

}  // namespace tqref
