#pragma once

// PSNR written a second time, one pixel at a time and sharing nothing with filter/. Production must
// equal it, bit for bit.

#include <cmath>
#include <cstdint>

#include "reference/image_memory_reference.h"

namespace tqref {

// Every square is added by itself in single precision.
class SquareSum {
public:
    void Add(int a, int b) {
        const int difference = a - b;
        m_sum += static_cast<float>(difference * difference);
    }
    float Psnr(float count) const {
        const float rootOfMean = std::sqrt(m_sum / count);
        const float quotient = 65025.0f / (rootOfMean + 0.0000001f);
        return 10.0f * static_cast<float>(std::log10(static_cast<double>(quotient)));
    }
    float Sum() const { return m_sum; }

private:
    float m_sum = 0;
};

// What 32 bits hold of the product, in single precision.
inline float PixelCount(int width, int height) {
    return static_cast<float>(static_cast<int>(static_cast<uint32_t>(int64_t{width} * height)));
}

inline float Psnr(int width, int height, int stride1, Bytes& image1, int stride2, Bytes& image2) {
    SquareSum sum;
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x)
            sum.Add(image1[y * stride1 + x], image2[y * stride2 + x]);
    return sum.Psnr(PixelCount(width, height));
}

struct YuvPsnr {
    float y, u, v;
};

// An odd last column counts, but is not read.
inline YuvPsnr PsnrYuyv(int width, int height, int stride1, Bytes& image1, int stride2,
                        Bytes& image2) {
    SquareSum sums[4];
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < int64_t{width >> 1} * 4; ++x)
            sums[x % 2 == 0 ? 0 : x % 4].Add(image1[y * stride1 + x], image2[y * stride2 + x]);
    const float count = PixelCount(width, height);
    return {sums[0].Psnr(count), sums[1].Psnr(count * 0.5f), sums[3].Psnr(count * 0.5f)};
}

}  // namespace tqref
