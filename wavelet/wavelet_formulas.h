#pragma once

// The taps of the 5/3 wavelet, on numbers and on vectors alike, and samples as the kernels take
// them. Included by *_kernels.cpp only; everything has internal linkage, as in frame/simd.h.

#include "frame/simd.h"
#include "wavelet/mirror.h"

namespace {

using I16v = int16_t __attribute__((vector_size(kVectorBytes)));

// Both on unsigned numbers: sums wrap.
template <class V> inline V LowPass(V a, V b, V c, V d, V e) {
    const V half = c + c + c + b + d;
    return half + half - a - e;
}
template <class V> inline V HighPass(V a, V b, V c) { return (b + b - a - c) * 4; }

template <class V> inline V Limit(V v, V low, V high) {
    return v < low ? low : v > high ? high : v;
}

// Samples of an image, two in each lane of a vector. All sums of two passes over them fit a lane,
// taken as signed.
struct ByteSamples {
    using Sample = uint8_t;
    using Value = int16_t;
    using Lanes = U16v;
    using SignedLanes = I16v;
    static constexpr ptrdiff_t kLanes = kLanes16;
};
struct WordSamples {
    using Sample = uint16_t;
    using Value = int32_t;
    using Lanes = U32v;
    using SignedLanes = I32v;
    static constexpr ptrdiff_t kLanes = kLanes32;
};
template <class Samples> constexpr ptrdiff_t kSampleBytes = sizeof(typename Samples::Sample);

template <class Samples> inline uint32_t SampleAt(const uint8_t* line, ptrdiff_t i) {
    return Load<typename Samples::Sample>(line + kSampleBytes<Samples> * i);
}

// Pairs of samples taken apart.
template <class Samples> struct Pairs { typename Samples::Lanes even, odd; };
template <class Samples> inline Pairs<Samples> LoadPairs(const uint8_t* from) {
    using Lanes = typename Samples::Lanes;
    constexpr int kBits = 8 * static_cast<int>(kSampleBytes<Samples>);
    const Lanes v = Load<Lanes>(from);
    return {v & ((1 << kBits) - 1), v >> kBits};
}
// And put together: lanes hold what a sample can.
template <class Samples> inline void StorePairs(uint8_t* to, const Pairs<Samples>& v) {
    constexpr int kBits = 8 * static_cast<int>(kSampleBytes<Samples>);
    Store(to, v.even | v.odd << kBits);
}

// Places 0 to count - 1 by step(i), which takes kStep of them from i on, or, where there are fewer,
// by one(i). The last steps may take a place twice: results must not be read again.
template <ptrdiff_t kStep, class Step, class One>
inline void ForEachPlace(ptrdiff_t count, Step step, One one) {
    if (count < kStep) {
        for (ptrdiff_t i = 0; i < count; ++i) one(i);
        return;
    }
    ptrdiff_t i = 0;
    for (; i + kStep <= count; i += kStep) step(i);
    if (i < count) step(count - kStep);
}

}  // namespace
