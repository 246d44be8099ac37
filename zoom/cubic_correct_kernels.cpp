// Row kernels of the cubic correct zoom. Compiled once per instruction-set level, with TQ_ISA
// naming the level's namespace.

#include "zoom/cubic_correct_kernels.h"

#include "frame/simd.h"

namespace {

using tq::FiveTapRow;
using tq::FiveTaps;

void Weave(const uint8_t* upper, const uint8_t* lower, ptrdiff_t count, uint32_t* woven) {
    for (ptrdiff_t i = 0; i < count; ++i)
        woven[i] = upper[i] | static_cast<uint32_t>(lower[i]) << 16;
}

// Where pixels find their taps and their columns. Made some pixels ahead, so that each takes a load
// a piece: taking them out of a vector costs more than the filter.
struct Sources {
    static constexpr ptrdiff_t kCount = 64;
    uint32_t along[kCount], down[kCount], column[kCount];

    // Of `count` pixels, and of the first one again as often as the last vector of results has
    // room. 1 itself, which rounding may bring about, has the last row of taps.
    template <int kChannels> void Set(const FiveTapRow& row, ptrdiff_t first, ptrdiff_t count) {
        constexpr uint32_t kAlongBytes = 8 * sizeof(int32_t), kDownBytes = 8 * sizeof(int16_t);
        ptrdiff_t i = 0;
        for (; i < count; i += kLanes32) {
            Store(along + i, Index(row.x + first + i) * kAlongBytes);
            Store(down + i, Index(row.y + first + i) * kDownBytes);
            const I32v cell = Load<I32v>(row.half + first + i) >> 1;
            Store(column + i, (U32v)(cell - 1) * uint32_t{kChannels * sizeof(uint32_t)});
        }
        for (; i % (kVectorBytes / kChannels) != 0; ++i) {
            along[i] = along[0];
            down[i] = down[0];
            column[i] = column[0];
        }
    }

private:
    static U32v Index(const float* place) {
        const I32v i = Truncate(Load<F32v>(place) * 256.0f);
        return (U32v)(i < 255 ? i : I32v{} + 255);
    }
};

template <class T> inline const T* At(const T* base, uint32_t bytes) {
    return reinterpret_cast<const T*>(reinterpret_cast<const char*>(base) + bytes);
}

// Sums down columns of five rows. With what follows they stay within 32 bits, since the sizes of a
// row's taps add up to less than 1600.
struct Down {
    const uint32_t *first, *second, *third;
    U16v firstTaps, secondTaps, thirdTaps;
    Down(const FiveTapRow& row, uint32_t column, const int16_t* taps)
        : first(At(row.leftmost[0], column)),
          second(At(row.leftmost[1], column)),
          third(At(row.leftmost[2], column)),
          firstTaps((U16v)(U32v{} + Load<uint32_t>(taps))),
          secondTaps((U16v)(U32v{} + Load<uint32_t>(taps + 2))),
          thirdTaps((U16v)(U32v{} + Load<uint32_t>(taps + 4))) {}

    // Of the columns from `element` on.
    U32v Sums(ptrdiff_t element) const {
        return SumProducts(Load<U16v>(first + element), firstTaps) +
               SumProducts(Load<U16v>(second + element), secondTaps) +
               SumProducts(Load<U16v>(third + element), thirdTaps);
    }
};

inline I32v Round(U32v sums) { return (I32v)(sums + 524288) >> 20; }

// In each 16 bytes: sums of neighbouring lanes, those of a before those of b.
inline U32v SumPairs(U32v a, U32v b) {
#if defined(__AVX2__)
    return (U32v)_mm256_hadd_epi32((__m256i)a, (__m256i)b);
#else
    return __builtin_shufflevector(a, b, 0, 2, 4, 6) + __builtin_shufflevector(a, b, 1, 3, 5, 7);
#endif
}

// The lower halves of a and b and their upper halves, added up.
[[maybe_unused]] inline U32v SumHalves(U32v a, U32v b) {
#if defined(__AVX2__)
    return (U32v)_mm256_permute2x128_si256((__m256i)a, (__m256i)b, 0x20) +
           (U32v)_mm256_permute2x128_si256((__m256i)a, (__m256i)b, 0x31);
#else
    return __builtin_shufflevector(a, b, 0, 1, 4, 5) + __builtin_shufflevector(a, b, 2, 3, 6, 7);
#endif
}

// A pixel of one channel, as the sum of the lanes.
inline U32v FilterOne(const FiveTaps& taps, const FiveTapRow& row, const Sources& sources,
                      ptrdiff_t i) {
    const Down down(row, sources.column[i], At(taps.down[0], sources.down[i]));
    const int32_t* along = At(taps.along[0], sources.along[i]);
    U32v sums = down.Sums(0) * Load<U32v>(along);
    if constexpr (kLanes32 == 4) sums += down.Sums(4) * Load<U32v>(along + 4);
    return sums;
}

// kLanes32 pixels of one channel.
inline I32v FilterOnes(const FiveTaps& taps, const FiveTapRow& row, const Sources& sources,
                       ptrdiff_t i) {
    const auto fours = [&](ptrdiff_t k) {
        const U32v ab =
            SumPairs(FilterOne(taps, row, sources, k), FilterOne(taps, row, sources, k + 1));
        const U32v cd =
            SumPairs(FilterOne(taps, row, sources, k + 2), FilterOne(taps, row, sources, k + 3));
        return SumPairs(ab, cd);
    };
    if constexpr (kLanes32 == 4)
        return Round(fours(i));
    else
        return Round(SumHalves(fours(i), fours(i + 4)));
}

// The tap of the first four lanes and, where a vector has room, the next one of the others.
template <int kTap> inline U32v Spread(const int32_t* taps) {
#if defined(__AVX2__)
    const U32v t = Load<U32v>(taps);
    return __builtin_shufflevector(t, t, kTap, kTap, kTap, kTap, kTap + 1, kTap + 1, kTap + 1,
                                   kTap + 1);
#else
    return U32v{} + static_cast<uint32_t>(taps[kTap]);
#endif
}

// A pixel of four channels. A vector has those of one column, or of two columns to be added up.
inline U32v FilterFour(const FiveTaps& taps, const FiveTapRow& row, const Sources& sources,
                       ptrdiff_t i) {
    const Down down(row, sources.column[i], At(taps.down[0], sources.down[i]));
    const int32_t* along = At(taps.along[0], sources.along[i]);
    U32v sums = down.Sums(0) * Spread<0>(along);
    if constexpr (kLanes32 == 4) sums += down.Sums(4) * Spread<1>(along);
    sums += down.Sums(8) * Spread<2>(along);
    if constexpr (kLanes32 == 4) sums += down.Sums(12) * Spread<3>(along);
    sums += down.Sums(16) * Spread<4>(along);
    return sums;
}

// kLanes32 / 4 pixels of four channels.
inline I32v FilterFours(const FiveTaps& taps, const FiveTapRow& row, const Sources& sources,
                        ptrdiff_t i) {
    const U32v sums = FilterFour(taps, row, sources, i);
    if constexpr (kLanes32 == 4)
        return Round(sums);
    else
        return Round(SumHalves(sums, FilterFour(taps, row, sources, i + 1)));
}

// A vector of bytes.
template <int kChannels>
inline U8v FilterBytes(const FiveTaps& taps, const FiveTapRow& row, const Sources& sources,
                       ptrdiff_t i) {
    constexpr ptrdiff_t kPixels = kLanes32 / kChannels;
    const auto quarter = [&](ptrdiff_t k) {
        if constexpr (kChannels == 1)
            return FilterOnes(taps, row, sources, i + k * kPixels);
        else
            return FilterFours(taps, row, sources, i + k * kPixels);
    };
    return PackHeld(quarter(0), quarter(1), quarter(2), quarter(3));
}

template <int kChannels> void Filter(const FiveTaps& taps, const FiveTapRow& row, uint8_t* dst) {
    constexpr ptrdiff_t kPixels = kVectorBytes / kChannels;
    const FiveTapRow copy = row;
    Sources sources;
    for (ptrdiff_t first = 0; first < copy.count; first += Sources::kCount) {
        const ptrdiff_t left = copy.count - first;
        const ptrdiff_t count = left < Sources::kCount ? left : Sources::kCount;
        sources.Set<kChannels>(copy, first, count);
        uint8_t* to = dst + kChannels * first;
        ptrdiff_t i = 0;
        for (; i + kPixels <= count; i += kPixels)
            Store(to + kChannels * i, FilterBytes<kChannels>(taps, copy, sources, i));
        if (i < count) {
            uint8_t bytes[kVectorBytes];
            Store(bytes, FilterBytes<kChannels>(taps, copy, sources, i));
            std::memcpy(to + kChannels * i, bytes, static_cast<size_t>(kChannels * (count - i)));
        }
    }
}

}  // namespace

namespace tq::TQ_ISA {
const CubicCorrectKernels cubicCorrectKernels = {Weave, Filter<1>, Filter<4>};
}  // namespace tq::TQ_ISA
