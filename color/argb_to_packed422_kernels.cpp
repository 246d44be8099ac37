// Row kernels of ARGB to packed 4:2:2. Compiled once per instruction-set level, with TQ_ISA naming
// the level's namespace.

#include "color/argb_to_packed422_kernels.h"

#include "color/coefficients.h"
#include "frame/simd.h"

namespace {

using tq::BgrToStudio;

// Luma of kLanes32 pixels, and their U in the low and V in the high half of uv.
struct Studio {
    U32v y, uv;
};
template <const BgrToStudio& kSet> inline Studio ToStudio(U32v pixels) {
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

// A layout: a pair in a 32-bit word, from chroma with U in the low and V in the high half; and how
// `count` words are written.
struct Yuyv {
    static U32v Words(U32v y0, U32v y1, U32v uv) { return y0 | y1 << 16 | uv << 8; }
    static void Write(uint8_t* dst, U32v words, ptrdiff_t count) {
        std::memcpy(dst, &words, static_cast<size_t>(4 * count));
    }
};
struct Uyvy : Yuyv {
    static U32v Words(U32v y0, U32v y1, U32v uv) { return y0 << 8 | y1 << 24 | uv; }
};
// U, V, a byte that is never written, Y1: not a standard layout, and kept on purpose, since hosts
// depend on it. Y0 is lost.
struct UvSkipY {
    static U32v Words(U32v, U32v y1, U32v uv) { return uv | uv >> 8 | y1 << 24; }
    static void Write(uint8_t* dst, U32v words, ptrdiff_t count) {
        uint32_t word[kLanes32];
        Store(word, words);
        for (ptrdiff_t i = 0; i < count; ++i) {
            Store(dst + 4 * i, static_cast<uint16_t>(word[i]));
            Store(dst + 4 * i + 3, static_cast<uint8_t>(word[i] >> 24));
        }
    }
};

template <class Layout, const BgrToStudio& kSet> inline U32v Words(const uint8_t* src) {
    U32v left, right;
    LoadEvenOdd(src, left, right);
    const Studio l = ToStudio<kSet>(left), r = ToStudio<kSet>(right);
    // The mean of the chroma bytes, a tie upwards.
    const U32v uv = (U32v)(((U16v)l.uv + (U16v)r.uv + 1) >> 1);
    return Layout::Words(l.y, r.y, uv);
}

template <class Layout, const BgrToStudio& kSet>
void ToPairs(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs) {
    ptrdiff_t i = 0;
    for (; i + kLanes32 <= pairs; i += kLanes32)
        Layout::Write(dst + 4 * i, Words<Layout, kSet>(src + 8 * i), kLanes32);
    if (i >= pairs) return;
    uint8_t last[8 * kLanes32] = {};
    std::memcpy(last, src + 8 * i, static_cast<size_t>(8 * (pairs - i)));
    Layout::Write(dst + 4 * i, Words<Layout, kSet>(last), pairs - i);
}

}  // namespace

namespace tq::TQ_ISA {
const ArgbToPacked422Kernels argbToPacked422Kernels = {
    ToPairs<Yuyv, tq::kBgrToStudio601>,
    ToPairs<Yuyv, tq::kBgrToStudio709>,
    ToPairs<UvSkipY, tq::kBgrToStudio601>,
    ToPairs<Uyvy, tq::kBgrToStudio709>,
};
}  // namespace tq::TQ_ISA
