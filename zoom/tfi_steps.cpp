// The TFI zoom by its steps. The results are those of the C runtime's expf.

#include "zoom/tfi_steps.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "frame/exact_math.h"
#include "zoom/tfi.h"

namespace {

// The weighted sum of four samples and the sum of their weights, by the steps.
struct Mean {
    float weights = 0.0f;
    float sum = 0.0f;

    void Add(float sample, float weight) {
        weights += weight;
        sum += sample * weight;
    }
    // Not a number stays that.
    float Limited() const {
        float mean = sum / weights;
        if (mean > 255.0f) mean = 255.0f;
        if (mean < 0.0f) mean = 0.0f;
        return mean;
    }
};

}  // namespace

namespace tq {

float IPL_TFIVariance(int width, int height, int stride, const unsigned char* window) {
    if (width < 1 || height < 1) return 0.0f;
    int64_t sum = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) sum += window[Mul32(y, stride) + ptrdiff_t{x}];
    const float inverse = 1.0f / static_cast<float>(int64_t{width} * height);
    const float mean = static_cast<float>(sum) * inverse;
    float squares = 0.0f;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const float n = static_cast<float>(window[Mul32(y, stride) + ptrdiff_t{x}]) - mean;
            squares += n * n;
        }
    return squares * inverse;
}

float IPL_TFIDeviation(int width, int height, int stride, const unsigned char* window) {
    if (width < 1 || height < 1) return 0.0f;
    const int64_t count = int64_t{width} * height;
    int64_t sum = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) sum += window[Mul32(y, stride) + ptrdiff_t{x}];
    const int64_t mean = sum / count;
    int64_t squares = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int64_t n = window[Mul32(y, stride) + ptrdiff_t{x}] - mean;
            squares += n * n;
        }
    return std::sqrt(static_cast<float>(squares / count));
}

float TFISource::Activity(int x, int y) const {
    x = std::max(x, 0);
    y = std::max(y, 0);
    const bool isOnBorder = x == 0 || x == m_lastX || y == 0 || y == m_lastY;
    const Differences sums = isOnBorder ? BorderDifferences(x, y) : InnerDifferences(x, y);
    return (static_cast<float>(sums.first) * 0.4f + static_cast<float>(sums.second) * 0.6f) /
           255.0f;
}

TFISource::Differences TFISource::InnerDifferences(int x, int y) const {
    const int a = At(x - 1, y - 1), b = At(x, y - 1), c = At(x + 1, y - 1);
    const int d = At(x - 1, y), e = At(x, y), f = At(x + 1, y);
    const int g = At(x - 1, y + 1), h = At(x, y + 1), i = At(x + 1, y + 1);
    return {std::abs(2 * (f - d) + (c - a) + (i - g)) + std::abs(2 * (h - b) + (g - a) + (i - c)) +
                std::abs(2 * (i - a) + (h - b) + (f - d)) +
                std::abs(2 * (c - g) + (b - h) + (f - d)),
            std::abs(d - 2 * e + f) + std::abs(b - 2 * e + h) + std::abs(a - 2 * e + i) +
                std::abs(c - 2 * e + g)};
}

// Of the two by two samples that stay on the image.
TFISource::Differences TFISource::BorderDifferences(int x, int y) const {
    const int besideX = x == m_lastX ? x - 1 : x + 1;
    const int besideY = y == m_lastY ? y - 1 : y + 1;
    const int e = At(x, y), u = At(besideX, y), v = At(x, besideY), t = At(besideX, besideY);
    return {2 * std::abs(t + u - v - e) + 2 * std::abs(t + v - u - e) + 4 * std::abs(u - v) +
                4 * std::abs(t - e),
            std::abs(u - e) + std::abs(v - e) + std::abs(u - v) + std::abs(t - e)};
}

float TFIActivityWeight(float activity) { return std::exp(activity * -0.6f); }

unsigned char TFIWindow::Byte(TFISpread how) const {
    Mean first;
    for (int k = 0; k < 4; ++k) first.Add(value[k], activityWeight[k] * position[k]);
    const float estimate = first.Limited();
    const float spread = HalfSpread(how);
    Mean second;
    for (int k = 0; k < 4; ++k) {
        const float likeness = spread != 0.0f ? Likeness(k, estimate, spread) : 1.0f;
        second.Add(value[k], activityWeight[k] * position[k] * likeness);
    }
    return TruncateToByte(second.Limited());
}

float TFIWindow::HalfSpread(TFISpread how) const {
    unsigned char bytes[4];
    for (int k = 0; k < 4; ++k) bytes[k] = static_cast<unsigned char>(value[k]);
    const auto measure = how == TFISpread::kVariance ? IPL_TFIVariance : IPL_TFIDeviation;
    return measure(2, 2, 2, bytes) * 0.5f;
}

float TFIWindow::Likeness(int k, float estimate, float spread) const {
    const float n = value[k] - estimate;
    const float num = n * activity[k] * n;
    const float den = spread * 30.0f * spread;
    return std::exp(-(num / den));
}

}  // namespace tq
