#pragma once

// 32-bit lanes, whole numbers and floats, and doubles. See frame/simd.h.

#include "frame/simd_bytes.h"

namespace {

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

// Per 32-bit lane: low half of v times low, plus high half times high. Halves and weights below
// 0x8000.
inline U32v WeightedHalves(U32v v, uint32_t low, uint32_t high) {
    return SumProducts(v, U32v{} + (high << 16 | low));
}

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

// In the places of the fours that WidenLowFours takes: four floats at `first` and, where a vector
// has room, four at `second`; or, of four floats in memory, the first one repeated and, with room,
// the third, or the second and the fourth.
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

// A float in memory and, where a vector has room, the next one, each in four neighbouring lanes.
inline F32v SplatFours(const float* from) {
#if defined(__AVX2__)
    const __m128 pair = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from)));
    return (F32v)_mm256_permutevar8x32_ps(_mm256_castps128_ps256(pair),
                                          _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1));
#else
    return F32v{*from, *from, *from, *from};
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

}  // namespace
