#pragma once

// Bytes and 16-bit lanes. See frame/simd.h.

#include "frame/simd_lanes.h"

namespace {

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

// kLanes16 bytes in memory, each in a 16-bit lane of its own.
inline U16v LoadWidened16(const void* from) {
#if defined(__AVX2__)
    return (U16v)_mm256_cvtepu8_epi16(_mm_loadu_si128(static_cast<const __m128i*>(from)));
#elif defined(__SSE2__)
    const __m128i bytes = _mm_loadl_epi64(static_cast<const __m128i*>(from));
    return (U16v)_mm_unpacklo_epi8(bytes, _mm_setzero_si128());
#else
    const uint8_t* bytes = static_cast<const uint8_t*>(from);
    U16v lanes{};
    for (int i = 0; i < kLanes16; ++i) lanes[i] = bytes[i];
    return lanes;
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
inline U8v Larger(U8v a, U8v b) {
#if defined(__AVX2__)
    return (U8v)_mm256_max_epu8((__m256i)a, (__m256i)b);
#elif defined(__SSE2__)
    return (U8v)_mm_max_epu8((__m128i)a, (__m128i)b);
#else
    return a > b ? a : b;
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

// Sums of products of neighbouring lanes, of bytes with signed bytes: each sum within 16 signed
// bits.
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

// The same of signed 16-bit lanes, also where they are taken as halves of 32-bit ones. Sums wrap.
template <class V> inline V SumProducts(V a, V b) {
    static_assert(sizeof a[0] == 4);
#if defined(__AVX2__)
    if constexpr (sizeof(V) == 32) return (V)_mm256_madd_epi16((__m256i)a, (__m256i)b);
#endif
#if defined(__SSE2__)
    if constexpr (sizeof(V) == 16) return (V)_mm_madd_epi16((__m128i)a, (__m128i)b);
#else
    const auto low = [](V v) { return (V)((I32v)(v << 16) >> 16); };
    const auto high = [](V v) { return (V)((I32v)v >> 16); };
    return low(a) * low(b) + high(a) * high(b);
#endif
}
inline U32v SumProducts(U16v a, U16v b) { return SumProducts((U32v)a, (U32v)b); }

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

}  // namespace
