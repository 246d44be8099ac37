// Row kernel of the deinterlacer. Compiled once per instruction-set level, with TQ_ISA naming the
// level's namespace.

#include "filter/deinterlace_kernels.h"

namespace {

void Mean(const uint8_t* a, const uint8_t* b, uint8_t* dst, ptrdiff_t count) {
    for (ptrdiff_t i = 0; i < count; ++i) dst[i] = static_cast<uint8_t>((a[i] + b[i] + 1) >> 1);
}

}  // namespace

namespace tq::TQ_ISA {
const DeinterlaceKernels deinterlaceKernels = {Mean};
}  // namespace tq::TQ_ISA
