#pragma once

// The arithmetic between 4:2:2 pairs and ARGB, for packed and planar rows alike. Included by
// *_kernels.cpp only; everything has internal linkage, as in frame/simd.h.

#include "color/coefficients.h"
#include "color/pair_formulas.h"
#include "frame/simd.h"

namespace {

// Bytes less an offset, as floats.
inline F32v Less(U32v byte, uint32_t offset) { return ToFloat((I32v)(byte - offset)); }

// A range: what luma, and the sums of luma and chroma, undergo.
struct FullRange {
    static constexpr const tq::ChromaToBgr& kChroma = tq::kFullRangeToBgr;
    static F32v Luma(U32v y) { return ToFloat((I32v)y); }
    static F32v Round(F32v sum) { return sum; }  // truncation alone, kept on purpose
};
template <const tq::StudioToBgr& kSet> struct StudioRange {
    static constexpr const tq::ChromaToBgr& kChroma = kSet.chroma;
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
    constexpr const tq::ChromaToBgr& set = Range::kChroma;
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

// kLanes32 pairs to their pixels.
template <class Layout, class Range> inline void PairsToArgb(U32v w, uint8_t* to) {
    const Chroma chroma = ChromaOf<Range>(Layout::U(w), Layout::V(w));
    U32v left, right;
    PackBgra(Channels<Range>(chroma, Layout::Y0(w)), Channels<Range>(chroma, Layout::Y1(w)), left,
             right);
    StoreEvenOdd(to, left, right);
}

// Luma of kLanes32 pixels, and their U in the low and V in the high half of uv.
struct Studio {
    U32v y, uv;
};
template <const tq::BgrToStudio& kSet> inline Studio ToStudio(U32v pixels) {
    const auto byte = [](U32v w) { return ToFloat((I32v)(w & 0xFF)); };
    const F32v b = byte(pixels), g = byte(pixels >> 8), r = byte(pixels >> 16);
    const F32v y = ((r * kSet.yFromRed + g * kSet.yFromGreen) + b * kSet.yFromBlue) + 0.5f + 16.0f;
    const F32v u =
        (b * kSet.chromaMain - (g * kSet.uFromGreen + r * kSet.uFromRed)) + 0.5f + 128.0f;
    const F32v v =
        ((r * kSet.chromaMain - g * kSet.vFromGreen) - b * kSet.vFromBlue) + 0.5f + 128.0f;
    // All three lie between 16 and 241 for every colour.
    return {(U32v)Truncate(y), (U32v)Truncate(u) | (U32v)Truncate(v) << 16};
}

// The words of kLanes32 pairs, from their pixels.
template <class Layout, const tq::BgrToStudio& kSet> inline U32v ArgbToPairs(const uint8_t* src) {
    U32v left, right;
    LoadEvenOdd(src, left, right);
    const Studio l = ToStudio<kSet>(left), r = ToStudio<kSet>(right);
    // The mean of the chroma bytes, a tie upwards.
    const U32v uv = (U32v)(((U16v)l.uv + (U16v)r.uv + 1) >> 1);
    return Layout::Words(l.y, r.y, uv);
}

}  // namespace
