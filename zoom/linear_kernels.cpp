// Row kernels of the linear zoom. Compiled once per instruction-set level, with TQ_ISA naming the
// level's namespace.

#include "zoom/linear_kernels.h"

#include "frame/simd.h"

namespace {

using tq::LinearColumns;
using tq::LinearRow;

// A pixel and its right neighbour as they stand: the pixel in the low byte.
struct Pairs {
    static U16x8 Of(U8x16 pairs, const uint8_t*, ptrdiff_t) { return (U16x8)pairs; }
    static uint16_t Of(uint8_t a, uint8_t b, const uint8_t*, ptrdiff_t) {
        return static_cast<uint16_t>(a | b << 8);
    }
};

// Their weighted sum in sixteenths, at most 16 * 255.
struct Sums {
    static U16x8 Of(U8x16 pairs, const uint8_t* weights, ptrdiff_t element) {
        return WeighPairs(pairs, Load<U8x16>(weights + 2 * element));
    }
    static uint16_t Of(uint8_t a, uint8_t b, const uint8_t* weights, ptrdiff_t element) {
        return static_cast<uint16_t>(a * weights[2 * element] + b * weights[2 * element + 1]);
    }
};

template <class Result>
void Gather1(const LinearColumns& columns, const uint8_t* row, uint16_t* elements) {
    const ptrdiff_t count = columns.count;
    const ptrdiff_t inner = columns.inner;
    const int32_t* index = columns.index;
    const uint8_t* weights = columns.weights;
    if (kHasByteShuffle && columns.windows != nullptr) {
        const int32_t* windows = columns.windows;
        const uint8_t* orders = columns.orders;
        for (ptrdiff_t i = 0; i < count; i += 8) {
            const U8x16 window = Load<U8x16>(row + windows[i / 8]);
            const U8x16 pairs = ShuffleBytes(window, Load<U8x16>(orders + 2 * i));
            Store(elements + i, Result::Of(pairs, weights, i));
        }
        return;
    }
    ptrdiff_t i = 0;
    for (; i + 8 <= inner; i += 8) {
        U16x8 pairs = {};
        for (int k = 0; k < 8; ++k) pairs[k] = Load<uint16_t>(row + index[i + k]);
        Store(elements + i, Result::Of((U8x16)pairs, weights, i));
    }
    // A neighbour that does not exist has no weight: any value stands for it.
    for (; i < count; ++i) {
        const uint8_t* pixel = row + index[i];
        elements[i] = Result::Of(pixel[0], i < inner ? pixel[1] : uint8_t{0}, weights, i);
    }
}

template <class Result>
void Gather4(const LinearColumns& columns, const uint8_t* row, uint16_t* elements) {
    const ptrdiff_t count = columns.count;
    const ptrdiff_t inner = columns.inner;
    const int32_t* index = columns.index;
    const uint8_t* weights = columns.weights;
    ptrdiff_t i = 0;
    for (; i + 2 <= inner; i += 2) {
        const U8x16 pixels =
            LoadTwoEights(row + ptrdiff_t{4} * index[i], row + ptrdiff_t{4} * index[i + 1]);
        Store(elements + 4 * i, Result::Of(InterleaveFours(pixels), weights, 4 * i));
    }
    for (; i < count; ++i) {
        const uint8_t* pixel = row + ptrdiff_t{4} * index[i];
        for (int channel = 0; channel < 4; ++channel)
            elements[4 * i + channel] =
                Result::Of(pixel[channel], i < inner ? pixel[4 + channel] : uint8_t{0}, weights,
                           4 * i + channel);
    }
}

// The fractions of the kLanes16 elements from `element` on, in the places of LowFours, HighFours.
template <int kChannels> struct Fractions {
    F32v low, high;
    Fractions(const float* fraction, ptrdiff_t element) {
        const float* f = fraction + element / kChannels;
        if constexpr (kChannels == 1) {
            low = LoadFours(f, f + 8);
            high = LoadFours(f + 4, f + 12);
        } else {
            low = SplatFirstAndThird(f);
            high = SplatSecondAndFourth(f);
        }
    }
};

// The values of four or eight elements that rows between the same two source rows share. Integers
// and the fraction they meet first carry a factor of 65536 and its inverse, which changes no
// rounding: 2^-16 times the product of two fractions is far from the smallest normal float.
struct Cell {
    F32v a;    // the upper left pixel
    F32v bax;  // (right - left) * fx, above
    F32v ca;   // lower - upper, left; times 65536
    F32v k;    // the mixed difference, times 65536
    F32v fx;   // times 2^-16

    // ((k * (fx * fy) + ca * fy) + bax) + a, in this order. The sum lies in 0 to 255, give or take
    // a rounding.
    I32v At(const LinearRow& row) const {
        const F32v v = (k * (fx * row.fraction) + ca * row.scaledFraction) + bax;
        return Truncate(v + a);
    }
};

template <int kChannels, int kRows>
void BlendPairRows(const LinearColumns& columns, const uint16_t* upper, const uint16_t* lower,
                   const LinearRow* rows) {
    LinearRow row[kRows];
    for (int r = 0; r < kRows; ++r) row[r] = rows[r];
    const float* fraction = columns.fraction;
    const ptrdiff_t count = kChannels * columns.count;
    // store(first byte, bytes in the lanes of a vector) for kLanes16 elements of each row.
    const auto blend = [&](ptrdiff_t i, auto store) {
        const U16v ab = Load<U16v>(upper + i);
        const U16v cd = Load<U16v>(lower + i);
        const U16v a = ab & 0xFF;
        const U16v c = cd & 0xFF;
        const U16v ba = (ab >> 8) - a;
        const U16v ca = c - a;
        const U16v k = (cd >> 8) - c - ba;
        const Fractions<kChannels> fx(fraction, i);
        const Cell low = {ToFloat(WidenLowFours(a)), ToFloat(RaiseLowFours(ba)) * fx.low,
                          ToFloat(RaiseLowFours(ca)), ToFloat(RaiseLowFours(k)), fx.low};
        const Cell high = {ToFloat(WidenHighFours(a)), ToFloat(RaiseHighFours(ba)) * fx.high,
                           ToFloat(RaiseHighFours(ca)), ToFloat(RaiseHighFours(k)), fx.high};
        for (int r = 0; r < kRows; ++r)
            store(row[r].dst + i, JoinFours(low.At(row[r]), high.At(row[r])));
    };
    ptrdiff_t i = 0;
    for (; i + kLanes16 <= count; i += kLanes16) blend(i, StoreLowBytes);
    if (i < count) {
        blend(i, [left = static_cast<size_t>(count - i)](uint8_t* to, U16v v) {
            uint8_t bytes[kLanes16];
            StoreLowBytes(bytes, v);
            std::memcpy(to, bytes, left);
        });
    }
}

// Up to four rows at a time share what a cell costs.
template <int kChannels>
void BlendPairs(const LinearColumns& columns, const uint16_t* upper, const uint16_t* lower,
                const LinearRow* rows, ptrdiff_t rowCount) {
    for (; rowCount >= 4; rowCount -= 4, rows += 4)
        BlendPairRows<kChannels, 4>(columns, upper, lower, rows);
    if (rowCount == 3) BlendPairRows<kChannels, 3>(columns, upper, lower, rows);
    if (rowCount == 2) BlendPairRows<kChannels, 2>(columns, upper, lower, rows);
    if (rowCount == 1) BlendPairRows<kChannels, 1>(columns, upper, lower, rows);
}

// The weighted mean of two sums, in whole units. 256 * 255 fits the lanes.
inline U16v Mean(U16v upper, U16v step, uint16_t sixteenths) {
    return ((upper << 4) + step * sixteenths) >> 8;
}

template <int kChannels>
void BlendSums(const LinearColumns& columns, const uint16_t* upper, const uint16_t* lower,
               const LinearRow* rows, ptrdiff_t rowCount) {
    const ptrdiff_t count = kChannels * columns.count;
    for (ptrdiff_t i = 0; i < count; i += kVectorBytes) {
        const U16v first = Load<U16v>(upper + i);
        const U16v second = Load<U16v>(upper + i + kLanes16);
        const U16v firstStep = Load<U16v>(lower + i) - first;
        const U16v secondStep = Load<U16v>(lower + i + kLanes16) - second;
        const ptrdiff_t left = count - i;
        for (ptrdiff_t r = 0; r < rowCount; ++r) {
            const U8v v = PackBytes(Mean(first, firstStep, rows[r].sixteenths),
                                    Mean(second, secondStep, rows[r].sixteenths));
            if (left >= kVectorBytes) {
                Store(rows[r].dst + i, v);
            } else {
                uint8_t bytes[kVectorBytes];
                Store(bytes, v);
                std::memcpy(rows[r].dst + i, bytes, static_cast<size_t>(left));
            }
        }
    }
}

}  // namespace

namespace tq::TQ_ISA {
const LinearKernels linearKernels = {
    {Gather1<Pairs>, BlendPairs<1>, Gather1<Sums>, BlendSums<1>},
    {Gather4<Pairs>, BlendPairs<4>, Gather4<Sums>, BlendSums<4>},
};
}  // namespace tq::TQ_ISA
