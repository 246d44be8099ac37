// The difference of two images in decibels.

#include <tqipl/filter.h>

#include <cmath>

#include "filter/psnr_kernels.h"
#include "frame/exact_math.h"
#include "frame/isa.h"

namespace {

constexpr const tq::PsnrKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(psnrKernels);

float ValueOf(const tq::FloatSum& sum) {
    return std::ldexp(static_cast<float>(sum.mantissa), sum.exponent);
}

// The numerator is a square and the denominator a root: kept on purpose.
float Decibels(float sum, float count) {
    const float quotient = 65025.0f / (std::sqrt(sum / count) + 0.0000001f);
    // Rounded from a double, the logarithm is the same float from every C runtime.
    return 10.0f * static_cast<float>(std::log10(static_cast<double>(quotient)));
}

float PixelCount(int width, int height) { return static_cast<float>(tq::Mul32(width, height)); }

}  // namespace

float IPL_GetPSNR_8u_C1R(int width, int height, int stride1, unsigned char* image1, int stride2,
                         unsigned char* image2) {
    const tq::PsnrKernels& kernels = tq::SelectKernels(kKernels);
    tq::FloatSum sum;
    for (ptrdiff_t y = 0; y < height; ++y)
        kernels.plane(image1 + y * stride1, image2 + y * stride2, width, sum);
    return Decibels(ValueOf(sum), PixelCount(width, height));
}

void IPL_GetPSNR_YUYV(int width, int height, int stride1, unsigned char* image1, int stride2,
                      unsigned char* image2, float& psnrY, float& psnrU, float& psnrV) {
    const tq::PsnrKernels& kernels = tq::SelectKernels(kKernels);
    tq::FloatSum sums[3];
    for (ptrdiff_t y = 0; y < height; ++y)
        kernels.yuyv(image1 + y * stride1, image2 + y * stride2, width >> 1, sums);
    const float count = PixelCount(width, height);
    psnrY = Decibels(ValueOf(sums[0]), count);
    psnrU = Decibels(ValueOf(sums[1]), count * 0.5f);
    psnrV = Decibels(ValueOf(sums[2]), count * 0.5f);
}
