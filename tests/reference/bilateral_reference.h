#pragma once

// The three bilateral filters written a second time, one tap at a time and sharing nothing with
// filter/. Production must equal them, byte for byte.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "reference/image_memory_reference.h"

namespace tqref {

// ---- Weights: single precision, cut to integers ---------------------------------------------

inline int SpaceWeight2D(int dx, int dy, int radius) {
    const auto r = static_cast<float>(radius);
    const auto distance = static_cast<float>(dx * dx + dy * dy);
    return static_cast<int>(std::exp(-distance / (2 * r * r)) * 1024 + 0.5f);
}

// The exponent is positive, and distance 0 has the largest.
inline int SpaceWeight1D(int distance, int radius) {
    const auto r = static_cast<float>(radius);
    const float place = 2 * r + 1 - static_cast<float>(distance);
    return static_cast<int>(std::exp(place * place / (2 * r * r)));
}

// In parts of `whole`.
inline int RangeWeight(int difference, int sigma, int whole) {
    const auto s = static_cast<float>(sigma);
    const auto square = static_cast<float>(difference * difference);
    return static_cast<int>(std::exp(-square / (2 * s * s)) * static_cast<float>(whole) + 0.5f);
}

inline std::vector<int> RangeWeights(int sigma, int whole) {
    std::vector<int> weights;
    for (int difference = 0; difference < 256; ++difference)
        weights.push_back(RangeWeight(difference, sigma, whole));
    return weights;
}

// (2 * radius + 1) squared, row by row.
inline std::vector<int> SpaceWeights2D(int radius) {
    std::vector<int> weights;
    for (int dy = -radius; dy <= radius; ++dy)
        for (int dx = -radius; dx <= radius; ++dx) weights.push_back(SpaceWeight2D(dx, dy, radius));
    return weights;
}

// By distance, from 0 to the radius.
inline std::vector<int> SpaceWeights1D(int radius) {
    std::vector<int> weights;
    for (int distance = 0; distance <= radius; ++distance)
        weights.push_back(SpaceWeight1D(distance, radius));
    return weights;
}

// ---- What the forms have in common ----------------------------------------------------------

// What 32 bits hold of a sum.
inline int Wrapped(int64_t sum) { return static_cast<int>(static_cast<uint32_t>(sum)); }

// Above 255 is 255, below 0 are the low eight bits.
inline uint8_t StoredQuotient(int quotient) {
    return quotient > 255 ? 255 : static_cast<uint8_t>(quotient & 255);
}

// An image as numbers.
class Numbers {
public:
    Numbers(int width, int height) : m_width(width), m_values(int64_t{width} * height) {}
    Numbers(int width, int height, int stride, Bytes& image) : Numbers(width, height) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) (*this)(x, y) = image[int64_t{y} * stride + x];
    }
    int& operator()(int x, int y) { return m_values[int64_t{y} * m_width + x]; }

private:
    int m_width;
    std::vector<int> m_values;
};

// The weighted mean of the separable forms, rounded.
class Mean1D {
public:
    Mean1D(int radius, int sigma)
        : m_space(SpaceWeights1D(radius)), m_range(RangeWeights(sigma, 1024)) {}
    void Start(int centre) {
        m_centre = centre;
        m_weights = m_sum = 0;
    }
    void Tap(int distance, int value) {
        const int64_t weight =
            m_space[std::abs(distance)] * m_range[std::min(std::abs(value - m_centre), 255)];
        m_weights += weight;
        m_sum += weight * value;
    }
    int Result() const {
        const int weights = std::max(Wrapped(m_weights), 1);
        return Wrapped(m_sum + (weights >> 1)) / weights;
    }
    uint8_t VideoResult() const { return static_cast<uint8_t>(std::clamp(Result(), 16, 235)); }

private:
    std::vector<int> m_space, m_range;
    int m_centre = 0;
    int64_t m_weights = 0, m_sum = 0;
};

// ---- The forms ------------------------------------------------------------------------------

// One pixel of the direct form. The weights are those of SpaceWeights2D and RangeWeights.
inline uint8_t BilateralPixel(int x, int y, int width, int height, Numbers& image, int radius,
                              const std::vector<int>& space, const std::vector<int>& range) {
    int64_t weights = 0, sum = 0;
    for (int dy = -std::min(y, radius); dy <= std::min(height - 1 - y, radius); ++dy)
        for (int dx = -std::min(x, radius); dx <= std::min(width - 1 - x, radius); ++dx) {
            const int tap = image(x + dx, y + dy);
            const int64_t place = int64_t{dy + radius} * (2 * int64_t{radius} + 1) + dx + radius;
            const int64_t weight = int64_t{space[place]} * range[std::abs(tap - image(x, y))];
            weights += weight;
            sum += weight * tap;
        }
    return StoredQuotient(Wrapped(sum) / Wrapped(weights));
}

inline void Bilateral(int width, int height, int srcStride, Bytes& src, int dstStride, Bytes& dst,
                      int radius, int sigma) {
    if (radius == 0 || sigma == 0) {
        MemcpyRows(width, height, srcStride, src, dstStride, dst);
        return;
    }
    if (width < 1 || height < 1) return;
    Numbers image(width, height, srcStride, src);
    const std::vector<int> space = SpaceWeights2D(radius), range = RangeWeights(sigma, 100);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            dst[int64_t{y} * dstStride + x] =
                BilateralPixel(x, y, width, height, image, radius, space, range);
}

// The upper end of the separable form's horizontal window. Near the right border it grows with x.
inline int64_t RightEnd(int64_t x, int64_t width, int64_t radius) {
    return x + radius < width ? radius : x + radius - width - 1;
}

// Whether a window of the separable form goes beyond its row.
inline bool ReadsBeyondRows(int width, int radius) {
    for (int x = 0; x < width; ++x)
        if (x + RightEnd(x, width, radius) >= width) return true;
    return false;
}

// For positive radii. The image's memory is height rows of |srcStride| bytes; taps beyond have no
// weight.
inline void BilateralEx(int width, int height, int srcStride, Bytes& src, int dstStride, Bytes& dst,
                        int radius, int sigma) {
    if (width == 0 || height == 0 || srcStride == 0 || dstStride == 0) return;
    if (radius == 0 || sigma == 0) return;
    if (width < 0 || height < 0) return;
    Mean1D mean(radius, sigma);
    Numbers across(width, height);
    // Its end, from the first row: with a negative stride that row is the last one.
    const int64_t memory = srcStride > 0 ? int64_t{height} * srcStride : -int64_t{srcStride};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int64_t centre = int64_t{y} * srcStride + x;
            mean.Start(src[centre]);
            for (int dx = -std::min(x, radius); dx <= RightEnd(x, width, radius); ++dx)
                if (x + dx < width || centre + dx < memory) mean.Tap(dx, src[centre + dx]);
            across(x, y) = mean.Result();
        }
    // All of its memory may be read by whoever reads beyond a row.
    if (ReadsBeyondRows(width, radius)) static_cast<void>(src[memory - 1]);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            mean.Start(across(x, y));
            for (int dy = -std::min(y, radius); dy <= std::min(height - 1 - y, radius); ++dy)
                mean.Tap(dy, across(x, y + dy));
            dst[int64_t{y} * dstStride + x] = mean.VideoResult();
        }
}

// The rows of the MultiThread form whose windows hold no unwritten row.
inline int DefinedRows(int height, int radius) { return std::max(0, height - 2 * radius); }

// The image's column that stands in a column of the padded image: shifted on the left side,
// reflected on the right side, and what ends either side goes on where the image is too narrow.
inline int PaddedColumn(int column, int width, int radius) {
    if (column < radius) return std::min(column, width - 1);
    if (column < radius + width) return column - radius;
    return std::max(width - 1 - (column - radius - width), 0);
}

// Reflected on both sides.
inline int PaddedRow(int row, int height, int radius) {
    if (row < radius) return radius - 1 - row;
    if (row < radius + height) return row - radius;
    return height - 1 - (row - radius - height);
}

// Writes the defined rows. In the others stands a value from 16 to 235; `undefined` here.
inline void BilateralExMultiThread(int width, int height, int srcStride, Bytes& src, int dstStride,
                                   Bytes& dst, int radius, int sigma, uint8_t undefined) {
    if (width < 1 || height < 1 || srcStride == 0 || dstStride == 0) return;
    if (radius < 1 || sigma < 1) return;
    Mean1D mean(radius, sigma);
    Numbers image(width, height, srcStride, src);
    const int definedRows = DefinedRows(height, radius);
    Numbers across(width, height);
    for (int row = 0; row < height && definedRows > 0; ++row)
        for (int x = 0; x < width; ++x) {
            auto padded = [&](int column) {
                return image(PaddedColumn(column, width, radius), PaddedRow(row, height, radius));
            };
            mean.Start(padded(x + radius));
            for (int dx = -radius; dx <= radius; ++dx) mean.Tap(dx, padded(x + radius + dx));
            across(x, row) = mean.Result();
        }
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            uint8_t& to = dst[int64_t{y} * dstStride + x];
            to = undefined;
            if (y >= definedRows) continue;
            mean.Start(across(x, y + radius));
            for (int dy = -radius; dy <= radius; ++dy) mean.Tap(dy, across(x, y + radius + dy));
            to = mean.VideoResult();
        }
}

}  // namespace tqref
