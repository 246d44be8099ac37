// Row kernels of the cubic zooms. Compiled once per instruction-set level, with TQ_ISA naming the
// level's namespace. All sums are of integers, so their order is free.

#include "zoom/cubic_kernels.h"

#include "frame/simd.h"

namespace {

using tq::CubicColumns;

constexpr int32_t kHalf10 = 1 << 9;
constexpr int32_t kHalf20 = 1 << 19;

inline uint8_t Held(int32_t value) {
    return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

inline uint32_t Product(int32_t a, int32_t b) {
    return static_cast<uint32_t>(a) * static_cast<uint32_t>(b);
}

// Four taps of kLanes32 columns from the bytes at row + begin.
inline U32v FourTaps(const uint8_t* row, const int32_t* begin) {
    U32v taps;
    for (int i = 0; i < kLanes32; ++i) taps[i] = Load<uint32_t>(row + begin[i]);
    return taps;
}

inline U32v WeighFour(U32v taps, const uint32_t* evenWeights, const uint32_t* oddWeights) {
    constexpr uint32_t kEven = 0x00FF00FF;
    return SumProducts(taps & kEven, Load<U32v>(evenWeights)) +
           SumProducts(taps >> 8 & kEven, Load<U32v>(oddWeights));
}

template <bool kSix> inline U32v SumsOf1(const CubicColumns& c, const uint8_t* row, ptrdiff_t i) {
    U32v sums = WeighFour(FourTaps(row, c.begin + i), c.weights[0] + i, c.weights[1] + i);
    if constexpr (kSix)
        sums += WeighFour(FourTaps(row + 4, c.begin + i), c.weights[2] + i, c.weights[3] + i);
    return sums;
}

template <bool kSix> void SumRow1(const CubicColumns& columns, const uint8_t* row, int32_t* sums) {
    ptrdiff_t i = 0;
    for (; i + kLanes32 <= columns.count; i += kLanes32)
        Store(sums + i, SumsOf1<kSix>(columns, row, i));
    if (i >= columns.count) return;
    const U32v last = SumsOf1<kSix>(columns, row, i);
    std::memcpy(sums + i, &last, static_cast<size_t>(columns.count - i) * sizeof *sums);
}

// The bytes of two pixels in the low halves of 32-bit lanes, those of the next two in the high.
struct PixelPairs {
    U32x4 first, second;
};
inline PixelPairs PairsOf(U8x16 fourPixels) {
    const U8x16 pairs = InterleaveFours(fourPixels);
    const U8x16 zero = {};
    return {(U32x4)__builtin_shufflevector(pairs, zero, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6,
                                           22, 7, 23),
            (U32x4)__builtin_shufflevector(pairs, zero, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13,
                                           29, 14, 30, 15, 31)};
}

inline U32x4 Splat(uint32_t v) { return U32x4{v, v, v, v}; }

template <bool kSix> void SumRow4(const CubicColumns& columns, const uint8_t* row, int32_t* sums) {
    for (ptrdiff_t i = 0; i < columns.count; ++i) {
        const uint8_t* pixels = row + ptrdiff_t{4} * columns.begin[i];
        const PixelPairs four = PairsOf(Load<U8x16>(pixels));
        U32x4 sum = SumProducts(four.first, Splat(columns.weights[0][i])) +
                    SumProducts(four.second, Splat(columns.weights[1][i]));
        if constexpr (kSix)
            sum += SumProducts(PairsOf(LoadTwoEights(pixels + 16, pixels + 16)).first,
                               Splat(columns.weights[2][i]));
        Store(sums + 4 * i, sum);
    }
}

void Finish(const int32_t* sums, ptrdiff_t count, uint8_t* dst) {
    ptrdiff_t i = 0;
    for (; i + 4 * kLanes32 <= count; i += 4 * kLanes32) {
        I32v v[4];
        for (int k = 0; k < 4; ++k) v[k] = (Load<I32v>(sums + i + k * kLanes32) + kHalf10) >> 10;
        Store(dst + i, PackHeld(v[0], v[1], v[2], v[3]));
    }
    for (; i < count; ++i) dst[i] = Held((sums[i] + kHalf10) >> 10);
}

#if defined(__SSE4_1__) || !defined(__SSE2__)
using Factor = int32_t;
inline Factor FactorOf(int32_t weight) { return weight; }
inline I32v Times(I32v sums, Factor weight) { return sums * weight; }
#else
// There is no product of 32-bit lanes. A sum, which has 20 bits, is 16 times its upper ones plus
// the lower four, and both products of halves are one instruction.
using Factor = U32v;
inline Factor FactorOf(int32_t weight) {
    const uint32_t upper = static_cast<uint32_t>(weight) << 20;
    return U32v{} + (upper | (static_cast<uint32_t>(weight) & 0xFFFF));
}
inline I32v Times(I32v sums, Factor weight) {
    const U32v s = (U32v)sums;
    return (I32v)SumProducts((s << 12 & 0xFFFF0000) | (s & 15), weight);
}
#endif

template <int kTaps>
void BlendTaps(const int32_t* const* rows, const int32_t* weights, ptrdiff_t count, uint8_t* dst) {
    const int32_t* row[kTaps];
    Factor factor[kTaps];
    for (int k = 0; k < kTaps; ++k) {
        row[k] = rows[k];
        factor[k] = FactorOf(weights[k]);
    }
    ptrdiff_t i = 0;
    for (; i + 4 * kLanes32 <= count; i += 4 * kLanes32) {
        I32v v[4];
        for (int part = 0; part < 4; ++part) {
            const ptrdiff_t at = i + part * kLanes32;
            I32v sum = I32v{} + kHalf20;
            for (int k = 0; k < kTaps; ++k) sum += Times(Load<I32v>(row[k] + at), factor[k]);
            v[part] = sum >> 20;
        }
        Store(dst + i, PackHeld(v[0], v[1], v[2], v[3]));
    }
    for (; i < count; ++i) {
        uint32_t sum = kHalf20;
        for (int k = 0; k < kTaps; ++k) sum += Product(row[k][i], weights[k]);
        dst[i] = Held(static_cast<int32_t>(sum) >> 20);
    }
}

void BlendSums(const int32_t* const* rows, const int32_t* weights, ptrdiff_t taps, ptrdiff_t count,
               uint8_t* dst) {
    switch (taps) {
        case 1:
            return BlendTaps<1>(rows, weights, count, dst);
        case 2:
            return BlendTaps<2>(rows, weights, count, dst);
        case 3:
            return BlendTaps<3>(rows, weights, count, dst);
        case 4:
            return BlendTaps<4>(rows, weights, count, dst);
        case 5:
            return BlendTaps<5>(rows, weights, count, dst);
        case 6:
            return BlendTaps<6>(rows, weights, count, dst);
        default:
            std::memset(dst, 0, static_cast<size_t>(count));
    }
}

// kLanes32 bytes of each of two rows, in the low and the high halves.
inline U32v HalvesOf(const uint8_t* low, const uint8_t* high) {
    using Bytes = uint8_t __attribute__((vector_size(kLanes32)));
    return __builtin_convertvector(Load<Bytes>(low), U32v) |
           __builtin_convertvector(Load<Bytes>(high), U32v) << 16;
}

void BlendBytes(const uint8_t* const* rows, const int32_t* weights, ptrdiff_t taps, ptrdiff_t count,
                uint8_t* dst) {
    const ptrdiff_t pairs = taps / 2;
    const bool odd = taps % 2 != 0;
    U32v pairWeights[tq::kCubicTaps / 2 + 1] = {};
    for (ptrdiff_t k = 0; k < taps; ++k)
        pairWeights[k / 2] |= U32v{} + (k % 2 != 0 ? static_cast<uint32_t>(weights[k]) << 16
                                                   : static_cast<uint32_t>(weights[k]) & 0xFFFF);
    const auto sumsAt = [&](ptrdiff_t at) {
        U32v sum = U32v{} + uint32_t{kHalf10};
        for (ptrdiff_t p = 0; p < pairs; ++p)
            sum += SumProducts(HalvesOf(rows[2 * p] + at, rows[2 * p + 1] + at), pairWeights[p]);
        // The row beside an odd one has weight 0.
        if (odd)
            sum +=
                SumProducts(HalvesOf(rows[taps - 1] + at, rows[taps - 1] + at), pairWeights[pairs]);
        return (I32v)sum >> 10;
    };
    ptrdiff_t i = 0;
    for (; i + 4 * kLanes32 <= count; i += 4 * kLanes32)
        Store(dst + i, PackHeld(sumsAt(i), sumsAt(i + kLanes32), sumsAt(i + 2 * kLanes32),
                                sumsAt(i + 3 * kLanes32)));
    for (; i < count; ++i) {
        uint32_t sum = kHalf10;
        for (ptrdiff_t k = 0; k < taps; ++k) sum += Product(rows[k][i], weights[k]);
        dst[i] = Held(static_cast<int32_t>(sum) >> 10);
    }
}

}  // namespace

namespace tq::TQ_ISA {

const CubicKernels cubicKernels = {
    {SumRow1<false>, SumRow1<true>}, {SumRow4<false>, SumRow4<true>}, Finish, BlendSums, BlendBytes,
};

}  // namespace tq::TQ_ISA
