// Row kernels of packed 4:2:2 to ARGB. Compiled once per instruction-set level, with TQ_ISA naming
// the level's namespace.

#include "color/packed422_to_argb_kernels.h"

#include "color/packed422_formulas.h"
#include "frame/simd.h"

namespace {

template <class Layout, class Range>
void FromPairs(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs) {
    InSteps<kLanes32, 4, 8>(src, dst, pairs, [](const uint8_t* from, uint8_t* to) {
        PairsToArgb<Layout, Range>(Load<U32v>(from), to);
    });
}

template <class Layout, class Range>
void FromPixels(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    InSteps<2 * kLanes32, 4, 4>(src, dst, count, [](const uint8_t* from, uint8_t* to) {
        const auto channels = [](U32v w) {
            return Channels<Range>(ChromaOf<Range>(Layout::U(w), Layout::V(w)), Layout::Y(w));
        };
        U32v first, second;
        PackBgra(channels(Load<U32v>(from)), channels(Load<U32v>(from + kVectorBytes)), first,
                 second);
        Store(to, first);
        Store(to + kVectorBytes, second);
    });
}

}  // namespace

namespace tq::TQ_ISA {
const Packed422ToArgbKernels packed422ToArgbKernels = {
    FromPairs<Yuyv, FullRange>, FromPairs<Uyvy, FullRange>, FromPixels<Vuyt, FullRange>,
    FromPairs<Yuyv, Studio601>, FromPairs<Uyvy, Studio601>, FromPairs<Yuyv, Studio709>,
    FromPairs<Uyvy, Studio709>,
};
}  // namespace tq::TQ_ISA
