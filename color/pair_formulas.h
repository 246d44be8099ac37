#pragma once

// Where layouts have their bytes in a 32-bit word, and such words made of planes and taken apart
// again. Included by *_kernels.cpp only; everything has internal linkage, as in frame/simd.h.

#include "frame/simd.h"

namespace {

struct Yuyv {
    static constexpr bool kLumaFirst = true;
    static U32v Y0(U32v w) { return w & 0xFF; }
    static U32v U(U32v w) { return (w >> 8) & 0xFF; }
    static U32v Y1(U32v w) { return (w >> 16) & 0xFF; }
    static U32v V(U32v w) { return w >> 24; }
    // A pair, from chroma with U in the low and V in the high half.
    static U32v Words(U32v y0, U32v y1, U32v uv) { return y0 | y1 << 16 | uv << 8; }
};
struct Uyvy {
    static constexpr bool kLumaFirst = false;
    static U32v U(U32v w) { return w & 0xFF; }
    static U32v Y0(U32v w) { return (w >> 8) & 0xFF; }
    static U32v V(U32v w) { return (w >> 16) & 0xFF; }
    static U32v Y1(U32v w) { return w >> 24; }
    static U32v Words(U32v y0, U32v y1, U32v uv) { return y0 << 8 | y1 << 24 | uv; }
};
struct Vuyt {
    static U32v V(U32v w) { return w & 0xFF; }
    static U32v U(U32v w) { return (w >> 8) & 0xFF; }
    static U32v Y(U32v w) { return (w >> 16) & 0xFF; }
    static U32v T(U32v w) { return w & 0xFF000000; }  // where it stands
    static U32v Words(U32v y, U32v u, U32v v) { return v | u << 8 | y << 16; }
};

// The bytes of a and b in turn, of their first halves and of their second.
inline U8x16 AlternateFirst(U8x16 a, U8x16 b) {
    return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}
inline U8x16 AlternateSecond(U8x16 a, U8x16 b) {
    return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15,
                                   31);
}

// Of two vectors of 16-bit lanes in memory order, the bytes at even and those at odd places.
inline U8v EvenBytes(U16v a, U16v b) { return PackBytes(a & 0xFF, b & 0xFF); }
inline U8v OddBytes(U16v a, U16v b) { return PackBytes(a >> 8, b >> 8); }

// Sixteen bytes at a time as words; first and second are neighbours in memory.
template <class Words> inline Words JoinWords(U8x16 first, [[maybe_unused]] U8x16 second) {
    if constexpr (sizeof(Words) == sizeof first)
        return (Words)first;
    else
        return (Words)__builtin_shufflevector(first, second, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11,
                                              12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24,
                                              25, 26, 27, 28, 29, 30, 31);
}

// kPairStep pairs as words, kPairVectors vectors of them.
constexpr ptrdiff_t kPairStep = 16;
constexpr ptrdiff_t kPairVectors = kPairStep / kLanes32;
struct PairWords {
    U32v w[kPairVectors];
};

template <class Layout>
inline PairWords LoadPairs(const uint8_t* y, const uint8_t* u, const uint8_t* v) {
    const U8x16 us = Load<U8x16>(u), vs = Load<U8x16>(v);
    const U8x16 chroma[2] = {AlternateFirst(us, vs), AlternateSecond(us, vs)};
    U8x16 fours[5] = {};
    for (int k = 0; k < 2; ++k) {
        const U8x16 luma = Load<U8x16>(y + 16 * k);
        const U8x16 even = Layout::kLumaFirst ? luma : chroma[k];
        const U8x16 odd = Layout::kLumaFirst ? chroma[k] : luma;
        fours[2 * k] = AlternateFirst(even, odd);
        fours[2 * k + 1] = AlternateSecond(even, odd);
    }
    PairWords words;
    for (ptrdiff_t k = 0; k < kPairVectors; ++k) {
        const ptrdiff_t at = k * (kVectorBytes / 16);
        words.w[k] = JoinWords<U32v>(fours[at], fours[at + 1]);
    }
    return words;
}

template <class Layout>
inline void StorePairs(const PairWords& words, uint8_t* y, uint8_t* u, uint8_t* v) {
    for (ptrdiff_t k = 0; k < kPairVectors; k += 2) {
        const U16v a = (U16v)words.w[k], b = (U16v)words.w[k + 1];
        const U8v even = EvenBytes(a, b), odd = OddBytes(a, b);
        const U16v chroma = (U16v)(Layout::kLumaFirst ? odd : even);
        Store(y + kLanes32 * 2 * k, Layout::kLumaFirst ? even : odd);
        StoreLowBytes(u + kLanes32 * k, chroma & 0xFF);
        StoreLowBytes(v + kLanes32 * k, chroma >> 8);
    }
}

}  // namespace
