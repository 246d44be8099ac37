// The two fields of a plane as two frames of full height.

#include <tqipl/filter.h>
#include <tqipl/image_memory.h>

#include "filter/deinterlace_kernels.h"
#include "frame/isa.h"

namespace {

constexpr const tq::DeinterlaceKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(deinterlaceKernels);

}  // namespace

void IPL_Deinterlace_8u_C1R(int width, int height, int stride0, unsigned char* field0, int stride1,
                            unsigned char* field1, int strideOut0, unsigned char* frame0,
                            int strideOut1, unsigned char* frame1) {
    if (width < 1 || height < 1) return;
    const tq::DeinterlaceKernels& kernels = tq::SelectKernels(kKernels);
    const auto copy = [width](unsigned char* from, unsigned char* to) {
        IPL_Memcpy(to, from, width);
    };
    const ptrdiff_t rows = height;
    for (ptrdiff_t i = 0; i < rows; ++i) {
        unsigned char* a = field0 + i * stride0;
        unsigned char* even = frame0 + 2 * i * strideOut0;
        copy(a, even);
        if (i + 1 < rows)
            kernels.mean(a, a + stride0, even + strideOut0, width);
        else
            copy(a, even + strideOut0);

        unsigned char* b = field1 + i * stride1;
        even = frame1 + 2 * i * strideOut1;
        if (i > 0)
            kernels.mean(b, b - stride1, even, width);
        else
            copy(b, even);
        copy(b, even + strideOut1);
    }
}
