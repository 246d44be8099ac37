// Row kernels of ARGB to packed 4:2:2. Compiled once per instruction-set level, with TQ_ISA naming
// the level's namespace.

#include "color/argb_to_packed422_kernels.h"

#include "color/packed422_formulas.h"
#include "frame/simd.h"

namespace {

// A destination: a pair in a 32-bit word, from chroma with U in the low and V in the high half; and
// how `count` words are written.
template <class Layout> struct Whole : Layout {
    static void Write(uint8_t* dst, U32v words, ptrdiff_t count) {
        std::memcpy(dst, &words, static_cast<size_t>(4 * count));
    }
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

template <class Layout, const tq::BgrToStudio& kSet>
void ToPairs(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs) {
    ptrdiff_t i = 0;
    for (; i + kLanes32 <= pairs; i += kLanes32)
        Layout::Write(dst + 4 * i, ArgbToPairs<Layout, kSet>(src + 8 * i), kLanes32);
    if (i >= pairs) return;
    uint8_t last[8 * kLanes32] = {};
    std::memcpy(last, src + 8 * i, static_cast<size_t>(8 * (pairs - i)));
    Layout::Write(dst + 4 * i, ArgbToPairs<Layout, kSet>(last), pairs - i);
}

}  // namespace

namespace tq::TQ_ISA {
const ArgbToPacked422Kernels argbToPacked422Kernels = {
    ToPairs<Whole<Yuyv>, tq::kBgrToStudio601>,
    ToPairs<Whole<Yuyv>, tq::kBgrToStudio709>,
    ToPairs<UvSkipY, tq::kBgrToStudio601>,
    ToPairs<Whole<Uyvy>, tq::kBgrToStudio709>,
};
}  // namespace tq::TQ_ISA
