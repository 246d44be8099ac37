// The 3x3 Gaussian.

#include <tqipl/filter.h>
#include <tqipl/image_memory.h>

#include "filter/filter_tables.h"
#include "filter/gauss3x3_kernels.h"
#include "filter/in_place.h"
#include "frame/isa.h"

namespace {

constexpr const tq::Gauss3x3Kernels* kKernels[] = TQ_KERNELS_BY_LEVEL(gauss3x3Kernels);

}  // namespace

void IPL_Gauss3x3_8u_C1R(int width, int height, int srcStride, unsigned char* src, int dstStride,
                         unsigned char* dst) {
    CZFilterTables::MakeSure();
    if (width < 4 || height < 4) {
        // The source is what is written, unlike in any other filter: kept on purpose.
        IPL_Memcpy_C1R(width, height, dstStride, dst, srcStride, src);
        return;
    }
    const tq::Gauss3x3Kernels& kernels = tq::SelectKernels(kKernels);
    const ptrdiff_t below = srcStride;
    const ptrdiff_t last = ptrdiff_t{height} - 1;
    IPL_Memcpy_C1R(width, 1, srcStride, src, dstStride, dst);
    for (ptrdiff_t y = 1; y < last; ++y) {
        const unsigned char* from = src + y * srcStride;
        unsigned char* to = dst + y * dstStride;
        to[0] = from[0];
        kernels.row(from - below, from, from + below, to + 1, width - 2);
        to[width - 1] = from[width - 1];
    }
    IPL_Memcpy_C1R(width, 1, srcStride, src + last * srcStride, dstStride, dst + last * dstStride);
}

void IPL_Gauss3x3_8u_C1R(int width, int height, int stride, unsigned char* image) {
    tq::FilterInPlace(width, height, stride, image, [=](unsigned char* buffer) {
        IPL_Gauss3x3_8u_C1R(width, height, stride, image, width, buffer);
    });
}
