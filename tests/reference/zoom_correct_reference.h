#pragma once

// The corrected zooms written a second time, one pixel at a time from their formulas and sharing
// nothing with zoom/. Production must equal them, byte for byte, at every level. One statement for
// each float operation: compile with -ffp-contract=off.

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "reference/luminance_reference.h"
#include "reference/tables_reference.h"
#include "reference/zoom_reference.h"

namespace tqref {

// Both corrected methods are for enlargement by two or more on both axes.
inline bool CorrectDelegates(const ZoomSource& src, const ZoomTarget& dst) {
    return src.width * 2 > dst.width || src.height * 2 > dst.height;
}

// Rows 0 to 3 and columns 0 to 3; the cell is between rows 1 and 2, columns 1 and 2.
struct CorrectBlock {
    int p[4][4];
};

struct CorrectPlace {
    float x, y;
};

// A fraction on the scale of 0 to 255, moved by what the steps before and behind the cell differ.
inline float AdaptedPosition(float fraction, int difference) {
    const float scaled = fraction * 255.0f;
    const float product = static_cast<float>(difference) * fraction;
    const double fromOne = static_cast<double>(fraction) - 1.0;
    const double moved = static_cast<double>(product) * fromOne;
    const double position = static_cast<double>(scaled) - moved;
    return static_cast<float>(position);
}

// Where a side of the cell is cut. `step` weighs the position, `otherStep` the rest of the scale.
inline float SideWeight(float position, int step, int otherStep) {
    const float numerator = position * SoftWeightEntry(step);
    const float rest = 255.0f - position;
    const float other = rest * SoftWeightEntry(otherStep);
    const float denominator = other + numerator;
    return numerator / denominator;
}

inline CorrectPlace CorrectWeights(const CorrectBlock& block, float fx, float fy) {
    const auto& p = block.p;
    const int col = fx <= 0.5f ? 1 : 2;
    const int dV = std::abs(p[2][col] - p[0][col]) - std::abs(p[3][col] - p[1][col]);
    const int row = fy <= 0.5f ? 1 : 2;
    const int dH = std::abs(p[row][2] - p[row][0]) - std::abs(p[row][3] - p[row][1]);
    const float qy = AdaptedPosition(fy, dV);
    const float qx = AdaptedPosition(fx, dH);
    const float w1 = SideWeight(qx, p[1][3] - p[1][2], p[1][1] - p[1][0]);  // top
    const float w3 = SideWeight(qx, p[2][3] - p[2][2], p[2][1] - p[2][0]);  // bottom
    const float w2 = SideWeight(qy, p[1][1] - p[0][1], p[3][1] - p[2][1]);  // left
    const float w4 = SideWeight(qy, p[1][2] - p[0][2], p[3][2] - p[2][2]);  // right
    const float dX = w3 - w1;
    const float dY = w4 - w2;
    const float product = dY * dX;
    const float difference = 1.0f - product;
    const float inv = 1.0f / difference;
    const float xProduct = dX * w2;
    const float xSum = xProduct + w1;
    const float yProduct = dY * w1;
    const float ySum = yProduct + w2;
    return {xSum * inv, ySum * inv};
}

inline uint8_t BlendedByte(int a, int b, int c, int d, float x, float y) {
    const int v = static_cast<int>(LinearValue(a, b, c, d, x, y));
    return static_cast<uint8_t>(v & 255);
}

inline uint8_t CorrectPixel(const CorrectBlock& block, float fx, float fy) {
    const CorrectPlace place = CorrectWeights(block, fx, fy);
    const auto& p = block.p;
    return BlendedByte(p[1][1], p[1][2], p[2][1], p[2][2], place.x, place.y);
}

// The block around the cell of column ix and row iy.
inline CorrectBlock CorrectBlockAt(const ZoomSource& plane, int ix, int iy) {
    CorrectBlock block;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) block.p[r][c] = plane.Sample(iy - 1 + r, ix - 1 + c, 1, 0);
    return block;
}

// A pixel of the linear zoom.
inline void BilinearPixel(int channels, const ZoomSource& src, const ZoomTarget& dst, int j, int i,
                          int iy, float fy, int ix, float fx) {
    const int below = iy >= src.height - 1 ? iy : iy + 1;
    const int right = ix >= src.width - 1 ? ix : ix + 1;
    for (int channel = 0; channel < channels; ++channel)
        dst.Sample(j, i, channels, channel) = BlendedByte(
            src.Sample(iy, ix, channels, channel), src.Sample(iy, right, channels, channel),
            src.Sample(below, ix, channels, channel), src.Sample(below, right, channels, channel),
            fx, fy);
}

// Rows rowBegin to rowEnd - 1, without the preamble. The fractions are corrected by `plane`: the
// source itself where it has one channel, else its luminance.
inline void LinearCorrectRows(int channels, const ZoomSource& src, const ZoomSource& plane,
                              const ZoomTarget& dst, int rowBegin, int rowEnd) {
    const LinearAxis across(src.width, dst.width), along(src.height, dst.height);
    for (int j = rowBegin; j < rowEnd; ++j) {
        int iy;
        float fy;
        along.Locate(j, iy, fy);
        for (int i = 0; i < dst.width; ++i) {
            int ix;
            float fx;
            across.Locate(i, ix, fx);
            if (iy < 1 || iy >= src.height - 2 || ix < 1 || ix >= src.width - 2) {
                BilinearPixel(channels, src, dst, j, i, iy, fy, ix, fx);
                continue;
            }
            const CorrectPlace place = CorrectWeights(CorrectBlockAt(plane, ix, iy), fx, fy);
            BilinearPixel(channels, src, dst, j, i, iy, place.y, ix, place.x);
        }
    }
}

// The sum of 25 samples by five taps an axis, in 1024ths of 1024ths, rounded and held in a byte.
inline uint8_t FiveTapByte(int channels, int channel, const ZoomSource& src, int ix, int iy,
                           const int (&h)[5], const int (&v)[5]) {
    int32_t acc = 0;
    for (int r = 0; r < 5; ++r) {
        int32_t line = 0;
        for (int c = 0; c < 5; ++c)
            line += h[c] * src.Sample(iy - 2 + r, ix - 2 + c, channels, channel);
        acc += v[r] * line;
    }
    const int32_t rounded = (acc + 524288) >> 20;
    if (rounded < 0) return 0;
    if (rounded >= 255) return 255;
    return static_cast<uint8_t>(rounded);
}

inline int FiveTapIndex(float place) {
    const float scaled = place * 256.0f;
    const int index = static_cast<int>(scaled);
    return index > 255 ? 255 : index;
}

inline void CubicCorrectRows(int channels, const ZoomSource& src, const ZoomSource& plane,
                             const ZoomTarget& dst, int rowBegin, int rowEnd) {
    const LinearAxis across(src.width, dst.width), along(src.height, dst.height);
    for (int j = rowBegin; j < rowEnd; ++j) {
        int iy;
        float fy;
        along.Locate(j, iy, fy);
        for (int i = 0; i < dst.width; ++i) {
            int ix;
            float fx;
            across.Locate(i, ix, fx);
            if (iy < 2 || iy >= src.height - 2 || ix < 2 || ix >= src.width - 2) {
                BilinearPixel(channels, src, dst, j, i, iy, fy, ix, fx);
                continue;
            }
            const CorrectPlace place = CorrectWeights(CorrectBlockAt(plane, ix, iy), fx, fy);
            int h[5], v[5];
            FiveTapRow(FiveTapIndex(place.x), h);
            FiveTapRow(FiveTapIndex(place.y), v);
            for (int channel = 0; channel < channels; ++channel)
                dst.Sample(j, i, channels, channel) =
                    FiveTapByte(channels, channel, src, ix, iy, h, v);
        }
    }
}

// A packed luminance plane of a four-channel image.
class LuminancePlane {
public:
    explicit LuminancePlane(const ZoomSource& src)
        : m_bytes(static_cast<size_t>(src.width) * src.height),
          m_width(src.width),
          m_height(src.height) {
        Argb2Lum(src.width, src.height, src.stride, src.first, src.width, m_bytes.data());
    }
    ZoomSource Source() const { return {m_width, m_height, m_width, m_bytes.data()}; }

private:
    std::vector<uint8_t> m_bytes;
    int m_width, m_height;
};

using CorrectRows = void (*)(int, const ZoomSource&, const ZoomSource&, const ZoomTarget&, int,
                             int);

// All rows, after the preamble and where nothing is delegated.
inline void CorrectImage(CorrectRows rows, int channels, const ZoomSource& src,
                         const ZoomTarget& dst) {
    if (channels == 1)
        rows(channels, src, src, dst, 0, dst.height);
    else
        rows(channels, src, LuminancePlane(src).Source(), dst, 0, dst.height);
}

// False, with nothing written, where the method is the six-tap zoom.
inline bool ZoomCubicCorrect(int channels, const ZoomSource& src, const ZoomTarget& dst) {
    if (ZoomPreamble(channels, src, dst)) return true;
    if (CorrectDelegates(src, dst)) return false;
    CorrectImage(CubicCorrectRows, channels, src, dst);
    return true;
}

inline void ZoomLinearCorrect(int channels, const ZoomSource& src, const ZoomTarget& dst) {
    if (ZoomPreamble(channels, src, dst)) return;
    if (CorrectDelegates(src, dst))
        ZoomLinear(channels, src, dst);
    else
        CorrectImage(LinearCorrectRows, channels, src, dst);
}

inline constexpr auto ZoomLinearCorrectC1 = ZoomForm<ZoomLinearCorrect, 1>;
inline constexpr auto ZoomLinearCorrectC4 = ZoomForm<ZoomLinearCorrect, 4>;

}  // namespace tqref
