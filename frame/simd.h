#pragma once

// Vectors for kernel files. Included by *_kernels.cpp only, which are compiled once per
// instruction-set level: everything here has internal linkage, so that no function compiled for
// one level can be linked into another.
//
// Arithmetic, comparison and shifts are the compiler's own vector operators. The named functions
// below are what the operators lack or GCC 12 compiles badly.

#include <cstddef>
#include <cstdint>
#include <cstring>
#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace {

#if defined(__AVX2__)
constexpr ptrdiff_t kVectorBytes = 32;
#else
constexpr ptrdiff_t kVectorBytes = 16;
#endif
constexpr ptrdiff_t kLanes32 = kVectorBytes / 4;
constexpr ptrdiff_t kLanes16 = kVectorBytes / 2;

using U8v = uint8_t __attribute__((vector_size(kVectorBytes)));
using U16v = uint16_t __attribute__((vector_size(kVectorBytes)));
using U32v = uint32_t __attribute__((vector_size(kVectorBytes)));
using I32v = int32_t __attribute__((vector_size(kVectorBytes)));
using F32v = float __attribute__((vector_size(kVectorBytes)));

// Vectors of 16 bytes at every level.
using U8x16 = uint8_t __attribute__((vector_size(16)));
using U16x8 = uint16_t __attribute__((vector_size(16)));
using U32x4 = uint32_t __attribute__((vector_size(16)));

template <class V> inline V Load(const void* from) {
    V v;
    std::memcpy(&v, from, sizeof v);
    return v;
}

template <class V> inline void Store(void* to, V v) { std::memcpy(to, &v, sizeof v); }

// A row of `count` elements by step(src, dst), which takes kStep of them, kIn bytes each, and gives
// kOut bytes for each. An incomplete last step runs on copies: nothing past the row is read or
// written. Each element is taken once, and read before a later result is written.
template <ptrdiff_t kStep, ptrdiff_t kIn, ptrdiff_t kOut, class Step>
inline void InSteps(const uint8_t* src, uint8_t* dst, ptrdiff_t count, Step step) {
    ptrdiff_t i = 0;
    for (; i + kStep <= count; i += kStep) step(src + kIn * i, dst + kOut * i);
    if (i >= count) return;
    uint8_t in[kStep * kIn] = {};
    uint8_t out[kStep * kOut];
    std::memcpy(in, src + kIn * i, static_cast<size_t>(kIn * (count - i)));
    step(in, out);
    std::memcpy(dst + kOut * i, out, static_cast<size_t>(kOut * (count - i)));
}

// Integers as floats, exact up to 2^24; and floats toward zero, all of which an int can hold.
inline F32v ToFloat(I32v v) { return __builtin_convertvector(v, F32v); }
inline I32v Truncate(F32v v) { return __builtin_convertvector(v, I32v); }

// Of 2 * kLanes32 words in memory, those at even and those at odd places.
inline void LoadEvenOdd(const void* from, U32v& even, U32v& odd) {
    const char* p = static_cast<const char*>(from);
#if defined(__AVX2__)
    const __m128i* q = reinterpret_cast<const __m128i*>(p);
    const __m256i a = _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(q)),
                                              _mm_loadu_si128(q + 2), 1);
    const __m256i b = _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(q + 1)),
                                              _mm_loadu_si128(q + 3), 1);
    even = (U32v)_mm256_shuffle_ps((__m256)a, (__m256)b, 0x88);
    odd = (U32v)_mm256_shuffle_ps((__m256)a, (__m256)b, 0xDD);
#else
    const U32v a = Load<U32v>(p);
    const U32v b = Load<U32v>(p + kVectorBytes);
    even = __builtin_shufflevector(a, b, 0, 2, 4, 6);
    odd = __builtin_shufflevector(a, b, 1, 3, 5, 7);
#endif
}

// The inverse: the lanes of even and of odd alternate in memory.
inline void StoreEvenOdd(void* to, U32v even, U32v odd) {
    char* p = static_cast<char*>(to);
#if defined(__AVX2__)
    const __m256i low = _mm256_unpacklo_epi32((__m256i)even, (__m256i)odd);
    const __m256i high = _mm256_unpackhi_epi32((__m256i)even, (__m256i)odd);
    Store(p, _mm256_permute2x128_si256(low, high, 0x20));
    Store(p + kVectorBytes, _mm256_permute2x128_si256(low, high, 0x31));
#else
    Store(p, __builtin_shufflevector(even, odd, 0, 4, 1, 5));
    Store(p + kVectorBytes, __builtin_shufflevector(even, odd, 2, 6, 3, 7));
#endif
}

// Per 32-bit lane: low half of v times low, plus high half times high. Halves and weights below
// 0x8000.
inline U32v WeightedHalves(U32v v, uint32_t low, uint32_t high) {
#if defined(__AVX2__)
    return (U32v)_mm256_madd_epi16((__m256i)v, _mm256_set1_epi32((int)(high << 16 | low)));
#elif defined(__SSE2__)
    return (U32v)_mm_madd_epi16((__m128i)v, _mm_set1_epi32((int)(high << 16 | low)));
#else
    return (v & 0xFFFF) * low + (v >> 16) * high;
#endif
}

// The low bytes of four vectors of 32-bit lanes, in order. Every lane is below 256.
inline U8v PackBytes(U32v a, U32v b, U32v c, U32v d) {
#if defined(__AVX2__)
    const __m256i ab = _mm256_packus_epi32((__m256i)a, (__m256i)b);
    const __m256i cd = _mm256_packus_epi32((__m256i)c, (__m256i)d);
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    return (U8v)_mm256_permutevar8x32_epi32(_mm256_packus_epi16(ab, cd), order);
#elif defined(__SSE2__)
    const __m128i ab = _mm_packs_epi32((__m128i)a, (__m128i)b);
    return (U8v)_mm_packus_epi16(ab, _mm_packs_epi32((__m128i)c, (__m128i)d));
#else
    const U16v ab = __builtin_shufflevector((U16v)a, (U16v)b, 0, 2, 4, 6, 8, 10, 12, 14);
    const U16v cd = __builtin_shufflevector((U16v)c, (U16v)d, 0, 2, 4, 6, 8, 10, 12, 14);
    return __builtin_shufflevector((U8v)ab, (U8v)cd, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24,
                                   26, 28, 30);
#endif
}

// Channels of kLanes32 pixels, before they are limited to bytes.
struct BgrLanes {
    I32v b, g, r;
};

// Lane by lane the bytes b, g, r and 255 in rising order, each of the three limited to 0 to 255.
inline void PackBgra(const BgrLanes& first, const BgrLanes& second, U32v& firstWords,
                     U32v& secondWords) {
#if defined(__AVX2__)
    const __m256i b = _mm256_packs_epi32((__m256i)first.b, (__m256i)second.b);
    const __m256i g = _mm256_packs_epi32((__m256i)first.g, (__m256i)second.g);
    const __m256i r = _mm256_packs_epi32((__m256i)first.r, (__m256i)second.r);
    const __m256i br = _mm256_packus_epi16(b, r);
    const __m256i ga = _mm256_packus_epi16(g, _mm256_set1_epi16(255));
    const __m256i bg = _mm256_unpacklo_epi8(br, ga);
    const __m256i ra = _mm256_unpackhi_epi8(br, ga);
    firstWords = (U32v)_mm256_unpacklo_epi16(bg, ra);
    secondWords = (U32v)_mm256_unpackhi_epi16(bg, ra);
#elif defined(__SSE2__)
    const __m128i b = _mm_packs_epi32((__m128i)first.b, (__m128i)second.b);
    const __m128i g = _mm_packs_epi32((__m128i)first.g, (__m128i)second.g);
    const __m128i r = _mm_packs_epi32((__m128i)first.r, (__m128i)second.r);
    const __m128i br = _mm_packus_epi16(b, r);
    const __m128i ga = _mm_packus_epi16(g, _mm_set1_epi16(255));
    const __m128i bg = _mm_unpacklo_epi8(br, ga);
    const __m128i ra = _mm_unpackhi_epi8(br, ga);
    firstWords = (U32v)_mm_unpacklo_epi16(bg, ra);
    secondWords = (U32v)_mm_unpackhi_epi16(bg, ra);
#else
    const auto limit = [](I32v v) {
        const I32v positive = v > 0 ? v : I32v{};
        return (U32v)(positive < 255 ? positive : I32v{} + 255);
    };
    firstWords = limit(first.b) | limit(first.g) << 8 | limit(first.r) << 16 | 0xFF000000;
    secondWords = limit(second.b) | limit(second.g) << 8 | limit(second.r) << 16 | 0xFF000000;
#endif
}

// kLanes32 pixels of three 16-bit words each, as WeightedTriples takes them. Exactly the bytes of
// these pixels are read.
struct Triples {
    U16v a, b;
};
inline Triples LoadTriples(const void* from) {
    const char* p = static_cast<const char*>(from);
#if defined(__AVX2__)
    const auto load = [](const char* low, const char* high) {
        return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128((const __m128i*)low)),
                                       _mm_loadu_si128((const __m128i*)high), 1);
    };
    const __m256i first = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 1, 2, 3, 4, 5, -1, -1, 6, 7, 8, 9, 10, 11, -1, -1));
    const __m256i last = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(4, 5, 6, 7, 8, 9, -1, -1, 10, 11, 12, 13, 14, 15, -1, -1));
    return {(U16v)_mm256_shuffle_epi8(load(p, p + 24), first),
            (U16v)_mm256_shuffle_epi8(load(p + 8, p + 32), last)};
#elif defined(__SSSE3__)
    const __m128i first = _mm_setr_epi8(0, 1, 2, 3, 4, 5, -1, -1, 6, 7, 8, 9, 10, 11, -1, -1);
    const __m128i last = _mm_setr_epi8(4, 5, 6, 7, 8, 9, -1, -1, 10, 11, 12, 13, 14, 15, -1, -1);
    return {(U16v)_mm_shuffle_epi8(_mm_loadu_si128((const __m128i*)p), first),
            (U16v)_mm_shuffle_epi8(_mm_loadu_si128((const __m128i*)(p + 8)), last)};
#elif defined(__SSE2__)
    const __m128i a = _mm_loadu_si128((const __m128i*)p);
    const __m128i b = _mm_loadu_si128((const __m128i*)(p + 8));
    return {(U16v)_mm_unpacklo_epi64(a, _mm_srli_si128(a, 6)),
            (U16v)_mm_unpacklo_epi64(_mm_srli_si128(b, 4), _mm_srli_si128(b, 10))};
#else
    const U16v a = Load<U16v>(p);
    const U16v b = Load<U16v>(p + 8);
    return {__builtin_shufflevector(a, a, 0, 1, 2, 2, 3, 4, 5, 5),
            __builtin_shufflevector(b, b, 2, 3, 4, 4, 5, 6, 7, 7)};
#endif
}

// Per pixel, first * words[0] + second * words[1] + third * words[2], the words taken as signed.
inline I32v WeightedTriples(Triples t, int16_t first, int16_t second, int16_t third) {
#if defined(__AVX2__)
    const __m256i weights = _mm256_broadcastsi128_si256(
        _mm_setr_epi16(first, second, third, 0, first, second, third, 0));
    const __m256 a = (__m256)_mm256_madd_epi16((__m256i)t.a, weights);
    const __m256 b = (__m256)_mm256_madd_epi16((__m256i)t.b, weights);
    return (I32v)_mm256_shuffle_ps(a, b, 0x88) + (I32v)_mm256_shuffle_ps(a, b, 0xDD);
#elif defined(__SSE2__)
    const __m128i weights = _mm_setr_epi16(first, second, third, 0, first, second, third, 0);
    const __m128 a = (__m128)_mm_madd_epi16((__m128i)t.a, weights);
    const __m128 b = (__m128)_mm_madd_epi16((__m128i)t.b, weights);
    return (I32v)_mm_shuffle_ps(a, b, 0x88) + (I32v)_mm_shuffle_ps(a, b, 0xDD);
#else
    const auto sum = [&](U16v v, int i) {
        return (int16_t)v[i] * first + (int16_t)v[i + 1] * second + (int16_t)v[i + 2] * third;
    };
    return I32v{sum(t.a, 0), sum(t.a, 4), sum(t.b, 0), sum(t.b, 4)};
#endif
}

// 16-bit lanes taken apart for 32-bit arithmetic: of each 16 bytes of v the lower four lanes, or
// the upper four. Widen keeps their values, Raise multiplies what they are as signed by 65536.
// JoinFours puts lanes of 0 to 255 in order again.
inline I32v WidenLowFours(U16v v) {
#if defined(__AVX2__)
    return (I32v)_mm256_unpacklo_epi16((__m256i)v, _mm256_setzero_si256());
#else
    return (I32v)__builtin_shufflevector(v, v - v, 0, 8, 1, 9, 2, 10, 3, 11);
#endif
}
inline I32v WidenHighFours(U16v v) {
#if defined(__AVX2__)
    return (I32v)_mm256_unpackhi_epi16((__m256i)v, _mm256_setzero_si256());
#else
    return (I32v)__builtin_shufflevector(v, v - v, 4, 12, 5, 13, 6, 14, 7, 15);
#endif
}
inline I32v RaiseLowFours(U16v v) {
#if defined(__AVX2__)
    return (I32v)_mm256_unpacklo_epi16(_mm256_setzero_si256(), (__m256i)v);
#else
    return (I32v)__builtin_shufflevector(v - v, v, 0, 8, 1, 9, 2, 10, 3, 11);
#endif
}
inline I32v RaiseHighFours(U16v v) {
#if defined(__AVX2__)
    return (I32v)_mm256_unpackhi_epi16(_mm256_setzero_si256(), (__m256i)v);
#else
    return (I32v)__builtin_shufflevector(v - v, v, 4, 12, 5, 13, 6, 14, 7, 15);
#endif
}
inline U16v JoinFours(I32v low, I32v high) {
#if defined(__AVX2__)
    return (U16v)_mm256_packs_epi32((__m256i)low, (__m256i)high);
#elif defined(__SSE2__)
    return (U16v)_mm_packs_epi32((__m128i)low, (__m128i)high);
#else
    return __builtin_shufflevector((U16v)low, (U16v)high, 0, 2, 4, 6, 8, 10, 12, 14);
#endif
}

// In the places of those fours: four floats at `first` and, where a vector has room, four at
// `second`; or, of four floats in memory, the first one repeated and, with room, the third, or the
// second and the fourth.
inline F32v LoadFours(const float* first, [[maybe_unused]] const float* second) {
#if defined(__AVX2__)
    return (F32v)_mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(first)),
                                      _mm_loadu_ps(second), 1);
#else
    return Load<F32v>(first);
#endif
}
inline F32v SplatFirstAndThird(const float* from) {
#if defined(__AVX2__)
    const __m256 fours = _mm256_broadcast_ps(reinterpret_cast<const __m128*>(from));
    return (F32v)_mm256_permutevar_ps(fours, _mm256_setr_epi32(0, 0, 0, 0, 2, 2, 2, 2));
#else
    return F32v{*from, *from, *from, *from};
#endif
}
inline F32v SplatSecondAndFourth(const float* from) {
#if defined(__AVX2__)
    const __m256 fours = _mm256_broadcast_ps(reinterpret_cast<const __m128*>(from));
    return (F32v)_mm256_permutevar_ps(fours, _mm256_setr_epi32(1, 1, 1, 1, 3, 3, 3, 3));
#else
    return F32v{from[1], from[1], from[1], from[1]};
#endif
}

// The low bytes of 16-bit lanes below 256, in order: kLanes16 bytes.
inline void StoreLowBytes(void* to, U16v v) {
#if defined(__AVX2__)
    Store(to, _mm_packus_epi16(_mm256_castsi256_si128((__m256i)v),
                               _mm256_extracti128_si256((__m256i)v, 1)));
#elif defined(__SSE2__)
    _mm_storel_epi64(static_cast<__m128i*>(to), _mm_packus_epi16((__m128i)v, (__m128i)v));
#else
    const U8v bytes = (U8v)v;
    const U8v low =
        __builtin_shufflevector(bytes, bytes, 0, 2, 4, 6, 8, 10, 12, 14, 0, 2, 4, 6, 8, 10, 12, 14);
    std::memcpy(to, &low, kLanes16);
#endif
}

// Those of two vectors.
inline U8v PackBytes(U16v a, U16v b) {
#if defined(__AVX2__)
    const __m256i packed = _mm256_packus_epi16((__m256i)a, (__m256i)b);
    return (U8v)_mm256_permute4x64_epi64(packed, 0xD8);
#elif defined(__SSE2__)
    return (U8v)_mm_packus_epi16((__m128i)a, (__m128i)b);
#else
    return __builtin_shufflevector((U8v)a, (U8v)b, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24,
                                   26, 28, 30);
#endif
}

// Eight bytes at each of two places.
inline U8x16 LoadTwoEights(const void* first, const void* second) {
    uint64_t halves
        __attribute__((vector_size(16))) = {Load<uint64_t>(first), Load<uint64_t>(second)};
    return (U8x16)halves;
}

// Of each eight bytes, the first four alternating with the last four.
inline U8x16 InterleaveFours(U8x16 v) {
#if defined(__SSE2__) && !defined(__SSSE3__)
    const __m128i fours = _mm_shuffle_epi32((__m128i)v, _MM_SHUFFLE(3, 1, 2, 0));
    return (U8x16)_mm_unpacklo_epi8(fours, _mm_unpackhi_epi64(fours, fours));
#else
    return __builtin_shufflevector(v, v, 0, 4, 1, 5, 2, 6, 3, 7, 8, 12, 9, 13, 10, 14, 11, 15);
#endif
}

// The bytes of v at the places that order names, and 0 where it has 0x80. Places are below 16.
#if defined(__SSSE3__)
constexpr bool kHasByteShuffle = true;
inline U8x16 ShuffleBytes(U8x16 v, U8x16 order) {
    return (U8x16)_mm_shuffle_epi8((__m128i)v, (__m128i)order);
}
#else
constexpr bool kHasByteShuffle = false;
inline U8x16 ShuffleBytes(U8x16 v, U8x16 order) {
    U8x16 result = v;
    for (int i = 0; i < 16; ++i) result[i] = order[i] < 16 ? v[order[i]] : 0;
    return result;
}
#endif

// Of the 32-bit lanes of two vectors, in order, the low and the high halves.
inline U16v HighHalves(U32v a, U32v b) {
#if defined(__AVX2__)
    const __m256i packed =
        _mm256_packs_epi32(_mm256_srai_epi32((__m256i)a, 16), _mm256_srai_epi32((__m256i)b, 16));
    return (U16v)_mm256_permute4x64_epi64(packed, 0xD8);
#elif defined(__SSE2__)
    return (U16v)_mm_packs_epi32(_mm_srai_epi32((__m128i)a, 16), _mm_srai_epi32((__m128i)b, 16));
#else
    return __builtin_shufflevector((U16v)a, (U16v)b, 1, 3, 5, 7, 9, 11, 13, 15);
#endif
}
inline U16v LowHalves(U32v a, U32v b) { return HighHalves(a << 16, b << 16); }

// The lanes of a and of b alternating, in order.
struct Alternated {
    U16v first, second;
};
inline Alternated Alternate(U16v a, U16v b) {
#if defined(__AVX2__)
    const __m256i low = _mm256_unpacklo_epi16((__m256i)a, (__m256i)b);
    const __m256i high = _mm256_unpackhi_epi16((__m256i)a, (__m256i)b);
    return {(U16v)_mm256_permute2x128_si256(low, high, 0x20),
            (U16v)_mm256_permute2x128_si256(low, high, 0x31)};
#else
    return {__builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11),
            __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15)};
#endif
}

// Per 32-bit lane, one of kLanes32 pixels of three 16-bit words: the first word in the low and the
// second in the high half of firstTwo, the third in the low half of third. WordsOf leaves the high
// half of third 0; StoreTriples takes no notice of it, and writes exactly the bytes of the pixels.
struct TripleWords {
    U32v firstTwo, third;
};
inline TripleWords WordsOf(Triples t) {
#if defined(__AVX2__)
    const __m256 a = (__m256)t.a, b = (__m256)t.b;
    return {(U32v)_mm256_shuffle_ps(a, b, 0x88), (U32v)_mm256_shuffle_ps(a, b, 0xDD) & 0xFFFF};
#else
    const U32v a = (U32v)t.a, b = (U32v)t.b;
    return {__builtin_shufflevector(a, b, 0, 2, 4, 6),
            __builtin_shufflevector(a, b, 1, 3, 5, 7) & 0xFFFF};
#endif
}
inline void StoreTriples(void* to, TripleWords words) {
    char* p = static_cast<char*>(to);
#if defined(__AVX2__)
    const __m256i order = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -1, -1, -1, -1));
    const __m256i first = (__m256i)words.firstTwo, third = (__m256i)words.third;
    const __m256i low = _mm256_shuffle_epi8(_mm256_unpacklo_epi32(first, third), order);
    const __m256i high = _mm256_shuffle_epi8(_mm256_unpackhi_epi32(first, third), order);
    const __m256i begin = _mm256_or_si256(low, _mm256_slli_si256(high, 12));
    const __m256i end = _mm256_srli_si256(high, 4);
    Store(p, _mm256_castsi256_si128(begin));
    _mm_storel_epi64((__m128i*)(p + 16), _mm256_castsi256_si128(end));
    Store(p + 24, _mm256_extracti128_si256(begin, 1));
    _mm_storel_epi64((__m128i*)(p + 40), _mm256_extracti128_si256(end, 1));
#elif defined(__SSSE3__)
    const __m128i order = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -1, -1, -1, -1);
    const __m128i first = (__m128i)words.firstTwo, third = (__m128i)words.third;
    const __m128i low = _mm_shuffle_epi8(_mm_unpacklo_epi32(first, third), order);
    const __m128i high = _mm_shuffle_epi8(_mm_unpackhi_epi32(first, third), order);
    Store(p, _mm_or_si128(low, _mm_slli_si128(high, 12)));
    _mm_storel_epi64((__m128i*)(p + 16), _mm_srli_si128(high, 4));
#else
    for (int i = 0; i < kLanes32; ++i) {
        Store(p + 6 * i, static_cast<uint32_t>(words.firstTwo[i]));
        Store(p + 6 * i + 4, static_cast<uint16_t>(words.third[i]));
    }
#endif
}

// Per pair of bytes the sum of their products with a pair of weights, which stay below 128. The
// sum stays below 32768.
inline U16x8 WeighPairs(U8x16 pairs, U8x16 weights) {
#if defined(__SSSE3__)
    return (U16x8)_mm_maddubs_epi16((__m128i)pairs, (__m128i)weights);
#else
    const U16x8 p = (U16x8)pairs, w = (U16x8)weights;
    return (p & 0xFF) * (w & 0xFF) + (p >> 8) * (w >> 8);
#endif
}

// The top bit of each byte of v, byte i's in bit i.
inline uint32_t TopBits(U8v v) {
#if defined(__AVX2__)
    return static_cast<uint32_t>(_mm256_movemask_epi8((__m256i)v));
#elif defined(__SSE2__)
    return static_cast<uint32_t>(_mm_movemask_epi8((__m128i)v));
#else
    uint32_t bits = 0;
    for (int i = 0; i < kVectorBytes; ++i) bits |= static_cast<uint32_t>(v[i] >> 7) << i;
    return bits;
#endif
}

// 16-bit lanes as signed 32-bit ones, in order.
inline void WidenSigned(U16v v, I32v& low, I32v& high) {
#if defined(__AVX2__)
    low = (I32v)_mm256_cvtepi16_epi32(_mm256_castsi256_si128((__m256i)v));
    high = (I32v)_mm256_cvtepi16_epi32(_mm256_extracti128_si256((__m256i)v, 1));
#else
    low = (I32v)__builtin_shufflevector(v, v, 0, 0, 1, 1, 2, 2, 3, 3) >> 16;
    high = (I32v)__builtin_shufflevector(v, v, 4, 4, 5, 5, 6, 6, 7, 7) >> 16;
#endif
}

// Bytes, taken as 0 to 255.
inline U8v AbsoluteDifference(U8v a, U8v b) {
#if defined(__AVX2__)
    return (U8v)_mm256_subs_epu8((__m256i)a, (__m256i)b) |
           (U8v)_mm256_subs_epu8((__m256i)b, (__m256i)a);
#elif defined(__SSE2__)
    return (U8v)_mm_subs_epu8((__m128i)a, (__m128i)b) | (U8v)_mm_subs_epu8((__m128i)b, (__m128i)a);
#else
    return a > b ? a - b : b - a;
#endif
}
inline U8v Smaller(U8v a, U8v b) {
#if defined(__AVX2__)
    return (U8v)_mm256_min_epu8((__m256i)a, (__m256i)b);
#elif defined(__SSE2__)
    return (U8v)_mm_min_epu8((__m128i)a, (__m128i)b);
#else
    return a < b ? a : b;
#endif
}
inline U8v Larger(U8v a, U8v b) { return ~Smaller(~a, ~b); }

// Sixteen bytes in memory, as often as a vector has room.
inline U8v LoadSixteen(const void* from) {
#if defined(__AVX2__)
    return (U8v)_mm256_broadcastsi128_si256(_mm_loadu_si128(static_cast<const __m128i*>(from)));
#else
    return Load<U8v>(from);
#endif
}

// In each 16 bytes: the bytes of v at the places that the low four bits of order name, and 0 where
// the top bit of order is set. Fast where kHasByteShuffle.
inline U8v LookUp(U8v v, U8v order) {
#if defined(__AVX2__)
    return (U8v)_mm256_shuffle_epi8((__m256i)v, (__m256i)order);
#elif defined(__SSSE3__)
    return (U8v)_mm_shuffle_epi8((__m128i)v, (__m128i)order);
#else
    U8v result = v;
    for (int i = 0; i < kVectorBytes; ++i) result[i] = order[i] < 0x80 ? v[order[i] & 15] : 0;
    return result;
#endif
}

// In each 16 bytes: the lanes of the lower or of the upper eight bytes of a and b alternating.
inline U8v AlternateLow(U8v a, U8v b) {
#if defined(__AVX2__)
    return (U8v)_mm256_unpacklo_epi8((__m256i)a, (__m256i)b);
#else
    return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
#endif
}
inline U8v AlternateHigh(U8v a, U8v b) {
#if defined(__AVX2__)
    return (U8v)_mm256_unpackhi_epi8((__m256i)a, (__m256i)b);
#else
    return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15,
                                   31);
#endif
}
inline U16v AlternateLow(U16v a, U16v b) {
#if defined(__AVX2__)
    return (U16v)_mm256_unpacklo_epi16((__m256i)a, (__m256i)b);
#else
    return __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
#endif
}
inline U16v AlternateHigh(U16v a, U16v b) {
#if defined(__AVX2__)
    return (U16v)_mm256_unpackhi_epi16((__m256i)a, (__m256i)b);
#else
    return __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
#endif
}

// The inverse of both for 16-bit lanes of 0 to 255: their low bytes, in each 16 bytes those of low
// before those of high.
inline U8v JoinEights(U16v low, U16v high) {
#if defined(__AVX2__)
    return (U8v)_mm256_packus_epi16((__m256i)low, (__m256i)high);
#elif defined(__SSE2__)
    return (U8v)_mm_packus_epi16((__m128i)low, (__m128i)high);
#else
    return __builtin_shufflevector((U8v)low, (U8v)high, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22,
                                   24, 26, 28, 30);
#endif
}

// Sums of products of neighbouring lanes: of bytes with signed bytes, each sum within 16 signed
// bits; and of signed 16-bit lanes.
inline U16v SumProducts(U8v bytes, U8v signedBytes) {
#if defined(__AVX2__)
    return (U16v)_mm256_maddubs_epi16((__m256i)bytes, (__m256i)signedBytes);
#elif defined(__SSSE3__)
    return (U16v)_mm_maddubs_epi16((__m128i)bytes, (__m128i)signedBytes);
#else
    U16v sums = (U16v)bytes;
    for (int i = 0; i < kLanes16; ++i)
        sums[i] =
            static_cast<uint16_t>(bytes[2 * i] * static_cast<int8_t>(signedBytes[2 * i]) +
                                  bytes[2 * i + 1] * static_cast<int8_t>(signedBytes[2 * i + 1]));
    return sums;
#endif
}
inline U32v SumProducts(U16v a, U16v b) {
#if defined(__AVX2__)
    return (U32v)_mm256_madd_epi16((__m256i)a, (__m256i)b);
#elif defined(__SSE2__)
    return (U32v)_mm_madd_epi16((__m128i)a, (__m128i)b);
#else
    const auto product = [&](int i) {
        return static_cast<uint32_t>(static_cast<int16_t>(a[i]) * static_cast<int16_t>(b[i]));
    };
    U32v sums = (U32v)a;
    for (int i = 0; i < kLanes32; ++i) sums[i] = product(2 * i) + product(2 * i + 1);
    return sums;
#endif
}

// Quotients of 32-bit integers, toward zero; divisors are above 0. A double holds both exactly, and
// its quotient is never rounded up to a whole number that the true one does not reach.
inline I32v Quotients(I32v dividend, I32v divisor) {
#if defined(__AVX2__)
    const auto half = [](__m128i a, __m128i b) {
        return _mm256_cvttpd_epi32(_mm256_div_pd(_mm256_cvtepi32_pd(a), _mm256_cvtepi32_pd(b)));
    };
    const __m256i a = (__m256i)dividend, b = (__m256i)divisor;
    const __m128i low = half(_mm256_castsi256_si128(a), _mm256_castsi256_si128(b));
    const __m128i high = half(_mm256_extracti128_si256(a, 1), _mm256_extracti128_si256(b, 1));
    return (I32v)_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
#elif defined(__SSE2__)
    const auto half = [](__m128i a, __m128i b) {
        return _mm_cvttpd_epi32(_mm_div_pd(_mm_cvtepi32_pd(a), _mm_cvtepi32_pd(b)));
    };
    const __m128i a = (__m128i)dividend, b = (__m128i)divisor;
    const __m128i high = half(_mm_unpackhi_epi64(a, a), _mm_unpackhi_epi64(b, b));
    return (I32v)_mm_unpacklo_epi64(half(a, b), high);
#else
    return dividend / divisor;
#endif
}

// Signed 32-bit lanes of two vectors, in order, limited to what signed 16-bit lanes hold.
inline U16v PackSigned(I32v a, I32v b) {
#if defined(__AVX2__)
    const __m256i packed = _mm256_packs_epi32((__m256i)a, (__m256i)b);
    return (U16v)_mm256_permute4x64_epi64(packed, 0xD8);
#elif defined(__SSE2__)
    return (U16v)_mm_packs_epi32((__m128i)a, (__m128i)b);
#else
    const auto limit = [](I32v v) {
        const I32v high = v < 32767 ? v : I32v{} + 32767;
        return (U16v)(high > -32768 ? high : I32v{} - 32768);
    };
    return __builtin_shufflevector(limit(a), limit(b), 0, 2, 4, 6, 8, 10, 12, 14);
#endif
}

// A bit for each of 16 lanes, the first one's lowest. All bits of a lane are equal.
inline uint32_t LaneBits(U16x8 first, U16x8 second) {
#if defined(__SSE2__)
    const __m128i bytes = _mm_packs_epi16((__m128i)first, (__m128i)second);
    return static_cast<uint32_t>(_mm_movemask_epi8(bytes));
#else
    uint32_t bits = 0;
    for (int i = 0; i < 8; ++i)
        bits |= static_cast<uint32_t>(first[i] & 1) << i | static_cast<uint32_t>(second[i] & 1)
                                                               << (8 + i);
    return bits;
#endif
}

// As above with a pair of weights for each lane. Halves and weights are signed 16-bit numbers.
template <class V> inline V WeightedHalves(V v, V weights) {
#if defined(__AVX2__)
    if constexpr (sizeof(V) == 32) return (V)_mm256_madd_epi16((__m256i)v, (__m256i)weights);
#endif
#if defined(__SSE2__)
    if constexpr (sizeof(V) == 16) return (V)_mm_madd_epi16((__m128i)v, (__m128i)weights);
#else
    using Signed = I32v;
    const Signed a = (Signed)v, b = (Signed)weights;
    return (V)((a << 16 >> 16) * (b << 16 >> 16) + (a >> 16) * (b >> 16));
#endif
}

// Four vectors of signed 32-bit lanes as bytes, in order: what is below 0 as 0, what is above 255
// as 255.
inline U8v PackHeld(I32v a, I32v b, I32v c, I32v d) {
#if defined(__AVX2__)
    const __m256i ab = _mm256_packs_epi32((__m256i)a, (__m256i)b);
    const __m256i cd = _mm256_packs_epi32((__m256i)c, (__m256i)d);
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    return (U8v)_mm256_permutevar8x32_epi32(_mm256_packus_epi16(ab, cd), order);
#elif defined(__SSE2__)
    const __m128i ab = _mm_packs_epi32((__m128i)a, (__m128i)b);
    return (U8v)_mm_packus_epi16(ab, _mm_packs_epi32((__m128i)c, (__m128i)d));
#else
    const auto held = [](I32v v) {
        const I32v notNegative = v & (v >= 0);
        return (U32v)(notNegative < 255 ? notNegative : I32v{} + 255);
    };
    return PackBytes(held(a), held(b), held(c), held(d));
#endif
}

// Doubles: the lower and the upper half of a vector of floats as such, and both rounded back.
using F64v = double __attribute__((vector_size(kVectorBytes)));
inline F64v WidenLow(F32v v) {
#if defined(__AVX2__)
    return (F64v)_mm256_cvtps_pd(_mm256_castps256_ps128((__m256)v));
#elif defined(__SSE2__)
    return (F64v)_mm_cvtps_pd((__m128)v);
#else
    return F64v{v[0], v[1]};
#endif
}
inline F64v WidenHigh(F32v v) {
#if defined(__AVX2__)
    return (F64v)_mm256_cvtps_pd(_mm256_extractf128_ps((__m256)v, 1));
#elif defined(__SSE2__)
    return (F64v)_mm_cvtps_pd(_mm_movehl_ps((__m128)v, (__m128)v));
#else
    return F64v{v[2], v[3]};
#endif
}
inline F32v Narrow(F64v low, F64v high) {
#if defined(__AVX2__)
    return (F32v)_mm256_insertf128_ps(_mm256_castps128_ps256(_mm256_cvtpd_ps((__m256d)low)),
                                      _mm256_cvtpd_ps((__m256d)high), 1);
#elif defined(__SSE2__)
    return (F32v)_mm_movelh_ps(_mm_cvtpd_ps((__m128d)low), _mm_cvtpd_ps((__m128d)high));
#else
    return F32v{static_cast<float>(low[0]), static_cast<float>(low[1]), static_cast<float>(high[0]),
                static_cast<float>(high[1])};
#endif
}

// Of kLanes32 floats in memory those at the places that order names, which are below kLanes32.
inline F32v PickLanes(const float* from, I32v order) {
#if defined(__AVX2__)
    return (F32v)_mm256_permutevar8x32_ps(_mm256_loadu_ps(from), (__m256i)order);
#elif defined(__SSSE3__)
    const __m128i first = _mm_setr_epi8(0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12);
    const __m128i bytes = _mm_add_epi8(_mm_slli_epi32(_mm_shuffle_epi8((__m128i)order, first), 2),
                                       _mm_set1_epi32(0x03020100));
    return (F32v)_mm_shuffle_epi8(_mm_castps_si128(_mm_loadu_ps(from)), bytes);
#else
    return F32v{from[order[0]], from[order[1]], from[order[2]], from[order[3]]};
#endif
}

// kLanes32 bytes in memory, each in a lane of its own.
inline I32v LoadWidened(const void* from) {
#if defined(__AVX2__)
    return (I32v)_mm256_cvtepu8_epi32(_mm_loadl_epi64(static_cast<const __m128i*>(from)));
#elif defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const __m128i bytes = _mm_cvtsi32_si128(Load<int32_t>(from));
    return (I32v)_mm_unpacklo_epi16(_mm_unpacklo_epi8(bytes, zero), zero);
#else
    const uint8_t* bytes = static_cast<const uint8_t*>(from);
    return I32v{bytes[0], bytes[1], bytes[2], bytes[3]};
#endif
}

// The floats at these places, which may be negative. Faster than one by one where kHasGather.
#if defined(__AVX2__)
constexpr bool kHasGather = true;
inline F32v Gather(const float* from, I32v places) {
    return (F32v)_mm256_i32gather_ps(from, (__m256i)places, 4);
}
#else
constexpr bool kHasGather = false;
inline F32v Gather(const float* from, I32v places) {
    return F32v{from[places[0]], from[places[1]], from[places[2]], from[places[3]]};
}
#endif

// The smaller of two floats; the second where they do not compare.
inline F32v Smaller(F32v a, F32v b) {
#if defined(__AVX2__)
    return (F32v)_mm256_min_ps((__m256)a, (__m256)b);
#elif defined(__SSE2__)
    return (F32v)_mm_min_ps((__m128)a, (__m128)b);
#else
    return a < b ? a : b;
#endif
}

}  // namespace
