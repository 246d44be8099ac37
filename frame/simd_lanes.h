#pragma once

// The vectors of a level, and how they come from memory and go there. See frame/simd.h.

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

}  // namespace
