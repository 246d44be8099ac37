// Kernels of the mean of a square. Compiled once per instruction-set level, with TQ_ISA naming the
// level's namespace.

#include "filter/average_kernels.h"

#include "frame/simd.h"

namespace {

template <class Sum> void Gain(Sum* columns, const uint8_t* gained, ptrdiff_t count) {
    for (ptrdiff_t i = 0; i < count; ++i) columns[i] = static_cast<Sum>(columns[i] + gained[i]);
}

template <class Sum>
void Move(Sum* columns, const uint8_t* gained, const uint8_t* lost, ptrdiff_t count) {
    for (ptrdiff_t i = 0; i < count; ++i)
        columns[i] = static_cast<Sum>(columns[i] + gained[i] - lost[i]);
}

// sum / kArea for sums of kArea bytes, by a multiplication. With 2^k the largest power of two that
// leaves the factor 16 bits and factor = 2^k / kArea rounded up, factor * kArea exceeds 2^k by an
// excess e. The quotient is exact if sum * e < 2^k for every sum.
template <uint32_t kArea> struct Reciprocal {
    static constexpr int Shift() {
        int k = 16;
        while ((uint32_t{1} << (k + 1)) / kArea < 0xFFFF) ++k;
        return k;
    }
    static constexpr int kShift = Shift();
    static constexpr uint32_t kFactor = ((uint32_t{1} << kShift) + kArea - 1) / kArea;
    static constexpr uint32_t kExcess = kFactor * kArea - (uint32_t{1} << kShift);
    static_assert(kShift >= 16 && kFactor <= 0xFFFF);
    static_assert(255 * kArea <= 0xFFFF && uint64_t{255} * kArea * kExcess < uint64_t{1} << kShift);
};

template <int kRadius>
void Narrow(const uint16_t* columns, uint32_t*, int, uint8_t* dst, ptrdiff_t count) {
    constexpr int kSide = 2 * kRadius + 1;
    using R = Reciprocal<kSide * kSide>;
    for (ptrdiff_t i = 0; i < count; ++i) {
        uint16_t sum = 0;
        for (int k = 0; k < kSide; ++k) sum = static_cast<uint16_t>(sum + columns[i + k]);
        const auto high = static_cast<uint16_t>(sum * R::kFactor >> 16);
        dst[i] = static_cast<uint8_t>(high >> (R::kShift - 16));
    }
}

// Columns at even and at odd places, kLanes32 of each.
struct EvenOdd {
    U32v even, odd;
};
inline EvenOdd LoadColumns(const uint16_t* columns) {
    const U32v pairs = Load<U32v>(columns);
    return {pairs & 0xFFFF, pairs >> 16};
}
inline EvenOdd LoadColumns(const uint32_t* columns) {
    EvenOdd result;
    LoadEvenOdd(columns, result.even, result.odd);
    return result;
}

// At each lane the sum of the lanes up to it.
inline U32v RunningSums(U32v v) {
    const U32v zero = {};
#if defined(__AVX2__)
    v += __builtin_shufflevector(zero, v, 0, 8, 9, 10, 11, 12, 13, 14);
    v += __builtin_shufflevector(zero, v, 0, 0, 8, 9, 10, 11, 12, 13);
    v += __builtin_shufflevector(zero, v, 0, 0, 0, 0, 8, 9, 10, 11);
#else
    v += __builtin_shufflevector(zero, v, 0, 4, 5, 6);
    v += __builtin_shufflevector(zero, v, 0, 0, 4, 5);
#endif
    return v;
}
inline U32v SplatLast(U32v v) {
#if defined(__AVX2__)
    return __builtin_shufflevector(v, v, 7, 7, 7, 7, 7, 7, 7, 7);
#else
    return __builtin_shufflevector(v, v, 3, 3, 3, 3);
#endif
}

// Sums of the first columns of a row: of none, of two, and so on at `even`, of one, of three, and
// so on at `odd`. The sum of a window is the difference of two of them, wrapping or not.
template <class Sum> class Prefix {
public:
    Prefix(const Sum* columns, uint32_t* prefix, ptrdiff_t count)
        : m_even(prefix), m_odd(prefix + count / 2 + tq::kAveragePadding / 2) {
        U32v total = {};
        for (ptrdiff_t i = 0; 2 * i <= count; i += kLanes32) {
            const EvenOdd values = LoadColumns(columns + 2 * i);
            const U32v pairs = values.even + values.odd;
            const U32v sums = RunningSums(pairs) + total;
            Store(m_even + i, sums - pairs);
            Store(m_odd + i, sums - values.odd);
            total = SplatLast(sums);
        }
    }

    // Of 2 * kLanes32 windows from 2 * i on.
    EvenOdd Windows(ptrdiff_t i, int radius) const {
        return {Load<U32v>(m_odd + i + radius) - Load<U32v>(m_even + i),
                Load<U32v>(m_even + i + radius + 1) - Load<U32v>(m_odd + i)};
    }

private:
    uint32_t* m_even;
    uint32_t* m_odd;
};

// quotient(sums) gives the quotients of kLanes32 windows.
template <class Sum, class Quotient>
inline void Divide(const Sum* columns, uint32_t* prefix, int radius, uint8_t* dst, ptrdiff_t count,
                   Quotient quotient) {
    const Prefix<Sum> sums(columns, prefix, count + ptrdiff_t{2} * radius);
    const auto pairs = [&](ptrdiff_t i) {
        const EvenOdd windows = sums.Windows(i, radius);
        return (quotient(windows.even) & 0xFF) | quotient(windows.odd) << 8;
    };
    for (ptrdiff_t x = 0; x < count; x += kVectorBytes) {
        const auto bytes = (U8v)LowHalves(pairs(x / 2), pairs(x / 2 + kLanes32));
        if (x + kVectorBytes <= count)
            Store(dst + x, bytes);
        else
            std::memcpy(dst + x, &bytes, static_cast<size_t>(count - x));
    }
}

// Areas are at most 127 * 127. A sum and a half fit a float exactly, and their quotient by the area
// lies 1 / 32258 or more from any integer: more than the two roundings, which stay below
// 256 * 2^-23.
void ByFloat(const uint16_t* columns, uint32_t* prefix, int radius, uint8_t* dst, ptrdiff_t count) {
    const int side = 2 * radius + 1;
    const float factor = 1.0f / static_cast<float>(side * side);
    Divide(columns, prefix, radius, dst, count,
           [factor](U32v sums) { return (U32v)Truncate((ToFloat((I32v)sums) + 0.5f) * factor); });
}

// The quotient of two ints, if it is not whole, lies further from the next integer than a double
// rounds. Areas are odd squares and so neither 0 nor -1, wrapping or not: quotients fit an int.
void ByDouble(const uint32_t* columns, uint32_t* prefix, int radius, uint8_t* dst,
              ptrdiff_t count) {
    const uint32_t side = 2 * static_cast<uint32_t>(radius) + 1;
    const auto area = static_cast<double>(static_cast<int32_t>(side * side));
    Divide(columns, prefix, radius, dst, count, [area](U32v sums) {
        int32_t lanes[kLanes32];
        Store(lanes, sums);
        for (int32_t& lane : lanes) lane = static_cast<int32_t>(static_cast<double>(lane) / area);
        return Load<U32v>(lanes);
    });
}

}  // namespace

namespace tq::TQ_ISA {
const AverageKernels averageKernels = {
    {Gain<uint16_t>, Move<uint16_t>},
    {Gain<uint32_t>, Move<uint32_t>},
    {Narrow<1>, Narrow<2>, Narrow<3>, Narrow<4>, Narrow<5>, Narrow<6>, Narrow<7>},
    ByFloat,
    ByDouble,
};
}  // namespace tq::TQ_ISA
