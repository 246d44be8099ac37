// Row kernels of V210 and V216. Compiled once per instruction-set level, with TQ_ISA naming the
// level's namespace.

#include "color/v210_v216_kernels.h"

#include "frame/simd.h"

namespace {

constexpr ptrdiff_t kGroupBytes = 16;  // of V210, six pixels

// A vector with the first kBytes of memory, or to it. Where not exact, the access may reach to the
// vector's end: the row goes on there, and the next group writes those places again.
template <bool kExact, size_t kBytes, class V> inline V LoadFirst(const void* from) {
    V v = {};
    std::memcpy(&v, from, kExact ? kBytes : sizeof v);
    return v;
}
template <bool kExact, size_t kBytes, class V> inline void StoreFirst(void* to, V v) {
    std::memcpy(to, &v, kExact ? kBytes : sizeof v);
}

// Every group of a row by Step::Group<kExact>(g). Only the last is exact: no other access reaches
// more than one group further.
template <class Step> inline void ForEachGroup(ptrdiff_t groups, const Step& step) {
    for (ptrdiff_t g = 0; g + 1 < groups; ++g) step.template Group<false>(g);
    step.template Group<true>(groups - 1);
}

// The twelve samples of a group, in the order of their bits, which is that of UYVY.
struct Samples {
    uint32_t at[12];
};
inline Samples Unpack(const uint8_t* src) {
    Samples samples;
    for (int k = 0; k < 4; ++k) {
        const uint32_t w = Load<uint32_t>(src + 4 * k);
        samples.at[3 * k] = w & 0x3FF;
        samples.at[3 * k + 1] = (w >> 10) & 0x3FF;
        samples.at[3 * k + 2] = (w >> 20) & 0x3FF;
    }
    return samples;
}

// With a byte shuffle: the upper eight bits of the three samples of word k, in bytes 4 * k on.
inline U8x16 UpperBytes(const uint8_t* src) {
    const U32x4 w = Load<U32x4>(src);
    return (U8x16)(((w >> 2) & 0xFF) | ((w >> 4) & 0xFF00) | ((w >> 6) & 0xFF0000));
}

// And samples in the upper ten bits of 16-bit lanes: the two bytes that hold a sample are brought
// into its lane, and a product moves it up, as far as its place in its word demands.
constexpr uint16_t kFirst = 64, kSecond = 16, kThird = 4;
inline U16x8 UpperTen(U8x16 group, U8x16 bytes, U16x8 places) {
    return (U16x8)ShuffleBytes(group, bytes) * places & 0xFFC0;
}
inline U16x8 LumaUpperTen(U8x16 group) {
    const U8x16 bytes = {1, 2, 4, 5, 6, 7, 9, 10, 12, 13, 14, 15, 0x80, 0x80, 0x80, 0x80};
    return UpperTen(group, bytes, U16x8{kSecond, kFirst, kThird, kSecond, kFirst, kThird, 0, 0});
}
// Three of U from lane 0, three of V from lane 4.
inline U16x8 ChromaUpperTen(U8x16 group) {
    const U8x16 bytes = {0, 1, 5, 6, 10, 11, 0x80, 0x80, 2, 3, 8, 9, 13, 14, 0x80, 0x80};
    return UpperTen(group, bytes, U16x8{kFirst, kSecond, kThird, 0, kThird, kFirst, kSecond, 0});
}

struct Uyvy {
    static constexpr U8x16 kBytes = {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14};
    static constexpr int kSamples[12] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
};
struct Yuyv {
    static constexpr U8x16 kBytes = {1, 0, 4, 2, 6, 5, 9, 8, 12, 10, 14, 13};
    static constexpr int kSamples[12] = {1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10};
};

template <class Layout> struct ToPacked8 {
    const uint8_t* src;
    uint8_t* dst;
    template <bool kExact> void Group(ptrdiff_t g) const {
        const uint8_t* from = src + kGroupBytes * g;
        uint8_t* to = dst + 12 * g;
        if (kHasByteShuffle) {
            StoreFirst<kExact, 12>(to, ShuffleBytes(UpperBytes(from), Layout::kBytes));
        } else {
            const Samples samples = Unpack(from);
            for (int i = 0; i < 12; ++i)
                to[i] = static_cast<uint8_t>(samples.at[Layout::kSamples[i]] >> 2);
        }
    }
};

struct ToPlanes8 {
    const uint8_t* src;
    uint8_t *y, *u, *v;
    template <bool kExact> void Group(ptrdiff_t g) const {
        const uint8_t* from = src + kGroupBytes * g;
        if (kHasByteShuffle) {
            const U8x16 order = {1, 4, 6, 9, 12, 14, 0x80, 0x80, 0, 5, 10, 0x80, 2, 8, 13, 0x80};
            const U8x16 bytes = ShuffleBytes(UpperBytes(from), order);
            uint64_t halves[2];
            Store(halves, bytes);
            StoreFirst<kExact, 6>(y + 6 * g, halves[0]);
            StoreFirst<kExact, 3>(u + 3 * g, static_cast<uint32_t>(halves[1]));
            StoreFirst<kExact, 3>(v + 3 * g, static_cast<uint32_t>(halves[1] >> 32));
        } else {
            const Samples samples = Unpack(from);
            const auto byte = [&](int i) { return static_cast<uint8_t>(samples.at[i] >> 2); };
            for (int i = 0; i < 6; ++i) y[6 * g + i] = byte(2 * i + 1);
            for (int i = 0; i < 3; ++i) u[3 * g + i] = byte(4 * i);
            for (int i = 0; i < 3; ++i) v[3 * g + i] = byte(4 * i + 2);
        }
    }
};

struct ToPlanes16 {
    const uint8_t* src;
    uint8_t *y, *u, *v;
    template <bool kExact> void Group(ptrdiff_t g) const {
        const uint8_t* from = src + kGroupBytes * g;
        if (kHasByteShuffle) {
            const U8x16 group = Load<U8x16>(from);
            uint64_t chroma[2];
            Store(chroma, ChromaUpperTen(group));
            StoreFirst<kExact, 12>(y + 12 * g, LumaUpperTen(group));
            StoreFirst<kExact, 6>(u + 6 * g, chroma[0]);
            StoreFirst<kExact, 6>(v + 6 * g, chroma[1]);
        } else {
            const Samples samples = Unpack(from);
            const auto upper = [&](int i) { return static_cast<uint16_t>(samples.at[i] << 6); };
            for (int i = 0; i < 6; ++i) Store(y + 12 * g + 2 * i, upper(2 * i + 1));
            for (int i = 0; i < 3; ++i) Store(u + 6 * g + 2 * i, upper(4 * i));
            for (int i = 0; i < 3; ++i) Store(v + 6 * g + 2 * i, upper(4 * i + 2));
        }
    }
};

struct FromPlanes16 {
    const uint8_t *y, *u, *v;
    uint8_t* dst;
    template <bool kExact> void Group(ptrdiff_t g) const {
        uint8_t* to = dst + kGroupBytes * g;
        if (kHasByteShuffle) {
            const U8x16 luma = LoadFirst<kExact, 12, U8x16>(y + 12 * g);
            const uint64_t halves[2] = {LoadFirst<kExact, 6, uint64_t>(u + 6 * g),
                                        LoadFirst<kExact, 6, uint64_t>(v + 6 * g)};
            const U8x16 chroma = LoadTwoEights(&halves[0], &halves[1]);
            // Lane by lane the first two samples of a word, and in the high half the third.
            const U8x16 luma12 = {0x80, 0x80, 0, 1, 2, 3, 0x80, 0x80,
                                  0x80, 0x80, 6, 7, 8, 9, 0x80, 0x80};
            const U8x16 chroma12 = {0,  1,  0x80, 0x80, 0x80, 0x80, 2,  3,
                                    10, 11, 0x80, 0x80, 0x80, 0x80, 12, 13};
            const U8x16 luma3 = {0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 4,  5,
                                 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 10, 11};
            const U8x16 chroma3 = {0x80, 0x80, 8, 9, 0x80, 0x80, 0x80, 0x80,
                                   0x80, 0x80, 4, 5, 0x80, 0x80, 0x80, 0x80};
            const U32x4 w12 = (U32x4)(ShuffleBytes(luma, luma12) | ShuffleBytes(chroma, chroma12));
            const U32x4 w3 = (U32x4)(ShuffleBytes(luma, luma3) | ShuffleBytes(chroma, chroma3));
            Store(to, ((w12 >> 6) & 0x3FF) | ((w12 >> 12) & 0xFFC00) | ((w3 >> 2) & 0x3FF00000));
        } else {
            const auto upper = [](const uint8_t* plane, ptrdiff_t i) {
                return static_cast<uint32_t>(Load<uint16_t>(plane + 2 * i) >> 6);
            };
            const auto word = [&](int k, uint32_t first, uint32_t second, uint32_t third) {
                Store(to + 4 * k, first | second << 10 | third << 20);
            };
            word(0, upper(u, 3 * g), upper(y, 6 * g), upper(v, 3 * g));
            word(1, upper(y, 6 * g + 1), upper(u, 3 * g + 1), upper(y, 6 * g + 2));
            word(2, upper(v, 3 * g + 1), upper(y, 6 * g + 3), upper(u, 3 * g + 2));
            word(3, upper(y, 6 * g + 4), upper(v, 3 * g + 2), upper(y, 6 * g + 5));
        }
    }
};

template <class Layout> void V210ToPacked8(const uint8_t* src, uint8_t* dst, ptrdiff_t groups) {
    ForEachGroup(groups, ToPacked8<Layout>{src, dst});
}

void V210ToPlanes8(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, ptrdiff_t groups) {
    ForEachGroup(groups, ToPlanes8{src, y, u, v});
}

void V210ToPlanes16(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, ptrdiff_t groups) {
    ForEachGroup(groups, ToPlanes16{src, y, u, v});
}

void V210FromPlanes16(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst,
                      ptrdiff_t groups) {
    ForEachGroup(groups, FromPlanes16{y, u, v, dst});
}

void V210ToLum32(const uint8_t* src, int* dst, ptrdiff_t groups) {
    uint8_t* bytes = reinterpret_cast<uint8_t*>(dst);
    for (ptrdiff_t g = 0; g < groups; ++g) {
        const uint8_t* from = src + kGroupBytes * g;
        uint8_t* to = bytes + 24 * g;
        if (kHasByteShuffle) {
            const U16x8 luma = LumaUpperTen(Load<U8x16>(from)) >> 6;
            const U16x8 zero = {};
            Store(to, __builtin_shufflevector(luma, zero, 0, 8, 1, 9, 2, 10, 3, 11));
            StoreFirst<true, 8>(to + 16,
                                __builtin_shufflevector(luma, zero, 4, 8, 5, 9, 6, 10, 7, 11));
        } else {
            const Samples samples = Unpack(from);
            for (int i = 0; i < 6; ++i) Store(to + 4 * i, samples.at[2 * i + 1]);
        }
    }
}

void V216ToUyvy(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs) {
    InSteps<kLanes32, 8, 4>(src, dst, pairs, [](const uint8_t* from, uint8_t* to) {
        Store(to, PackBytes(Load<U16v>(from) >> 8, Load<U16v>(from + kVectorBytes) >> 8));
    });
}

// kLanes16 pairs.
inline void StepToPlanes16(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v) {
    U32v w[4];  // chroma in the low halves, luma in the high ones
    for (int k = 0; k < 4; ++k) w[k] = Load<U32v>(src + kVectorBytes * k);
    const U32v chroma[2] = {(U32v)LowHalves(w[0], w[1]), (U32v)LowHalves(w[2], w[3])};
    Store(y, HighHalves(w[0], w[1]));
    Store(y + kVectorBytes, HighHalves(w[2], w[3]));
    Store(u, LowHalves(chroma[0], chroma[1]));
    Store(v, HighHalves(chroma[0], chroma[1]));
}

void V216ToPlanes16(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, ptrdiff_t pairs) {
    ptrdiff_t i = 0;
    for (; i + kLanes16 <= pairs; i += kLanes16)
        StepToPlanes16(src + 8 * i, y + 4 * i, u + 2 * i, v + 2 * i);
    for (; i < pairs; ++i) {
        Store(y + 4 * i, Load<uint16_t>(src + 8 * i + 2));
        Store(y + 4 * i + 2, Load<uint16_t>(src + 8 * i + 6));
        Store(u + 2 * i, Load<uint16_t>(src + 8 * i));
        Store(v + 2 * i, Load<uint16_t>(src + 8 * i + 4));
    }
}

void V216FromPlanes16(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst,
                      ptrdiff_t pairs) {
    ptrdiff_t i = 0;
    for (; i + kLanes16 <= pairs; i += kLanes16) {
        const Alternated chroma = Alternate(Load<U16v>(u + 2 * i), Load<U16v>(v + 2 * i));
        const Alternated left = Alternate(chroma.first, Load<U16v>(y + 4 * i));
        const Alternated right = Alternate(chroma.second, Load<U16v>(y + 4 * i + kVectorBytes));
        Store(dst + 8 * i, left.first);
        Store(dst + 8 * i + kVectorBytes, left.second);
        Store(dst + 8 * i + 2 * kVectorBytes, right.first);
        Store(dst + 8 * i + 3 * kVectorBytes, right.second);
    }
    for (; i < pairs; ++i) {
        Store(dst + 8 * i, Load<uint16_t>(u + 2 * i));
        Store(dst + 8 * i + 2, Load<uint16_t>(y + 4 * i));
        Store(dst + 8 * i + 4, Load<uint16_t>(v + 2 * i));
        Store(dst + 8 * i + 6, Load<uint16_t>(y + 4 * i + 2));
    }
}

void V216ToLum32(const uint8_t* src, int* dst, ptrdiff_t count) {
    InSteps<kLanes32, 4, 4>(
        src, reinterpret_cast<uint8_t*>(dst), count,
        [](const uint8_t* from, uint8_t* to) { Store(to, Load<U32v>(from) >> 16); });
}

}  // namespace

namespace tq::TQ_ISA {
const V210V216Kernels v210V216Kernels = {
    V210ToPacked8<Uyvy>, V210ToPacked8<Yuyv>, V210ToPlanes8,  V210ToPlanes16,   V210FromPlanes16,
    V210ToLum32,         V216ToUyvy,          V216ToPlanes16, V216FromPlanes16, V216ToLum32,
};
}  // namespace tq::TQ_ISA
