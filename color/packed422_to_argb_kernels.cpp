// Row kernels of packed 4:2:2 to ARGB. Compiled once per instruction-set level, with TQ_ISA naming
// the level's namespace.

#include "color/packed422_to_argb_kernels.h"

#include "color/coefficients.h"
#include "frame/simd.h"

namespace {

using tq::ChromaToBgr;
using tq::StudioToBgr;

// Where a layout has its bytes in a 32-bit word.
struct Yuyv {
    static U32v Y0(U32v w) { return w & 0xFF; }
    static U32v U(U32v w) { return (w >> 8) & 0xFF; }
    static U32v Y1(U32v w) { return (w >> 16) & 0xFF; }
    static U32v V(U32v w) { return w >> 24; }
};
struct Uyvy {
    static U32v U(U32v w) { return w & 0xFF; }
    static U32v Y0(U32v w) { return (w >> 8) & 0xFF; }
    static U32v V(U32v w) { return (w >> 16) & 0xFF; }
    static U32v Y1(U32v w) { return w >> 24; }
};
struct Vuyt {
    static U32v V(U32v w) { return w & 0xFF; }
    static U32v U(U32v w) { return (w >> 8) & 0xFF; }
    static U32v Y(U32v w) { return (w >> 16) & 0xFF; }
};

// Bytes less an offset, as floats.
inline F32v Less(U32v byte, uint32_t offset) { return ToFloat((I32v)(byte - offset)); }

// A range: what luma, and the sums of luma and chroma, undergo.
struct FullRange {
    static constexpr const ChromaToBgr& kChroma = tq::kFullRangeToBgr;
    static F32v Luma(U32v y) { return ToFloat((I32v)y); }
    static F32v Round(F32v sum) { return sum; }  // truncation alone, kept on purpose
};
template <const StudioToBgr& kSet> struct StudioRange {
    static constexpr const ChromaToBgr& kChroma = kSet.chroma;
    static F32v Luma(U32v y) { return Less(y, 16) * kSet.lumaScale; }
    static F32v Round(F32v sum) { return sum + 0.5f; }
};
using Studio601 = StudioRange<tq::kStudio601ToBgr>;
using Studio709 = StudioRange<tq::kStudio709ToBgr>;

// What chroma adds to blue and red and takes from green.
struct Chroma {
    F32v blue, green, red;
};
template <class Range> inline Chroma ChromaOf(U32v uByte, U32v vByte) {
    constexpr const ChromaToBgr& set = Range::kChroma;
    const F32v u = Less(uByte, 128), v = Less(vByte, 128);
    return {u * set.uToBlue, v * set.vToGreen + u * set.uToGreen, v * set.vToRed};
}

// The sums lie within 1000 of 0, so an int holds them; and limiting the truncated integer to a
// byte gives what limiting the float before truncation does.
template <class Range> inline BgrLanes Channels(const Chroma& chroma, U32v yByte) {
    const F32v luma = Range::Luma(yByte);
    return {Truncate(Range::Round(chroma.blue + luma)), Truncate(Range::Round(luma - chroma.green)),
            Truncate(Range::Round(chroma.red + luma))};
}

template <class Layout, class Range>
void FromPairs(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs) {
    InSteps<kLanes32, 4, 8>(src, dst, pairs, [](const uint8_t* from, uint8_t* to) {
        const U32v w = Load<U32v>(from);
        const Chroma chroma = ChromaOf<Range>(Layout::U(w), Layout::V(w));
        U32v left, right;
        PackBgra(Channels<Range>(chroma, Layout::Y0(w)), Channels<Range>(chroma, Layout::Y1(w)),
                 left, right);
        StoreEvenOdd(to, left, right);
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
