// Row kernels of the bilateral filters. Compiled once per instruction-set level, with TQ_ISA naming
// the level's namespace.

#include "filter/bilateral_kernels.h"

#include "frame/simd.h"

namespace {

using tq::BilateralPair;
using tq::BilateralRow;

using I8v = int8_t __attribute__((vector_size(kVectorBytes)));

constexpr ptrdiff_t kStep = kVectorBytes;  // columns at a time
constexpr int kFours = 4;                  // vectors of 32-bit lanes for them
static_assert(kStep <= tq::kBilateralSlack);

// 32-bit sums of kStep columns, in the order of AlternateLow and AlternateHigh.
struct Sums {
    U32v weights[kFours];
    U32v values[kFours];
};

// Weights by difference in `kChunks` chunks, one plane of bytes of them or both.
template <int kChunks> struct Range {
    static constexpr int kRun = kChunks < 8 ? kChunks : 8;

    explicit Range(const tq::BilateralRange& range) : m_low(range.low), m_high(range.high) {}

    U8v Low(U8v difference) const { return One(m_low, difference); }
    void Both(U8v difference, U8v& low, U8v& high) const {
        low = One(m_low, difference);
        high = One(m_high, difference);
    }

private:
    // A place before a chunk has its top bit set there and gives 0; one behind it goes on giving
    // what the chunk has, which the next chunk takes away again.
    static U8v Run(const uint8_t (*chunks)[16], U8v place) {
        U8v weight = LookUp(LoadSixteen(chunks[0]), place);
        for (int i = 1; i < kRun; ++i) {
            place -= 16;
            weight ^= LookUp(LoadSixteen(chunks[i]), place);
        }
        return weight;
    }
    static U8v One(const uint8_t (*chunks)[16], U8v difference) {
        if constexpr (kChunks <= 8) {
            constexpr uint8_t kLast = 16 * kChunks - 1;
            return Run(chunks, Smaller(difference, U8v{} + kLast));
        } else {
            const U8v place = difference & 0x7F;
            const U8v upper = (U8v)((I8v)difference < 0);
            return (Run(chunks, place) & ~upper) | (Run(chunks + 8, place) & upper);
        }
    }

    const uint8_t (*m_low)[16];
    const uint8_t (*m_high)[16];
};

// Weights of taps at a distance in columns, kept where the window holds such a tap.
struct FullWindows {
    FullWindows(const BilateralRow&, ptrdiff_t) {}
    U8v Keep(U8v weights, int) const { return weights; }
};
struct ClippedWindows {
    ClippedWindows(const BilateralRow& row, ptrdiff_t x)
        : first(Load<I8v>(row.firstTap + x)), last(Load<I8v>(row.lastTap + x)) {}
    U8v Keep(U8v weights, int column) const {
        const I8v distance = I8v{} + static_cast<int8_t>(column);
        return weights & (U8v)(first <= distance) & (U8v)(distance <= last);
    }
    I8v first, last;
};

// To bytes in order, from lanes of 0 to 255.
inline U8v Join(const I32v (&lanes)[kFours]) {
    return JoinEights(JoinFours(lanes[0], lanes[1]), JoinFours(lanes[2], lanes[3]));
}

// The centre's bytes as 32-bit lanes in the order of the sums.
inline void Widen(U8v bytes, I32v (&lanes)[kFours]) {
    const U16v low = (U16v)AlternateLow(bytes, U8v{});
    const U16v high = (U16v)AlternateHigh(bytes, U8v{});
    lanes[0] = WidenLowFours(low);
    lanes[1] = WidenHighFours(low);
    lanes[2] = WidenLowFours(high);
    lanes[3] = WidenHighFours(high);
}

// The direct form. Values are taken less 128, so that the products of two taps with their weights,
// at most 100, stay within 16 signed bits; 128 times the weights is put back at the end.
struct PairSums {
    U16v weightsLow, weightsHigh, valuesLow, valuesHigh;
};

template <class Windows, class Range>
inline PairSums SumPair(const BilateralPair& pair, ptrdiff_t x, U8v centre, const Range& range,
                        const Windows& windows) {
    const U8v first = Load<U8v>(pair.first + x), second = Load<U8v>(pair.second + x);
    const U8v firstWeight =
        windows.Keep(range.Low(AbsoluteDifference(first, centre)), -pair.column);
    const U8v secondWeight =
        windows.Keep(range.Low(AbsoluteDifference(second, centre)), pair.column);
    const U8v low = AlternateLow(firstWeight, secondWeight);
    const U8v high = AlternateHigh(firstWeight, secondWeight);
    const U8v firstValue = first ^ 0x80, secondValue = second ^ 0x80;
    const U8v ones = U8v{} + 1;
    return {SumProducts(low, ones), SumProducts(high, ones),
            SumProducts(low, AlternateLow(firstValue, secondValue)),
            SumProducts(high, AlternateHigh(firstValue, secondValue))};
}

template <class Windows, class Range>
inline U8v DirectStep(const BilateralRow& row, ptrdiff_t x, const Range& range) {
    const Windows windows(row, x);
    const U8v centre = Load<U8v>(row.centre + x);
    Sums sums = {};
    for (int i = 0; i < row.pairCount; i += 2) {
        const BilateralPair &first = row.pairs[i], &second = row.pairs[i + 1];
        const PairSums a = SumPair(first, x, centre, range, windows);
        const PairSums b = SumPair(second, x, centre, range, windows);
        const U16v space =
            (U16v)(U32v{} + static_cast<uint32_t>(second.weight << 16 | first.weight));
        sums.weights[0] += SumProducts(AlternateLow(a.weightsLow, b.weightsLow), space);
        sums.weights[1] += SumProducts(AlternateHigh(a.weightsLow, b.weightsLow), space);
        sums.weights[2] += SumProducts(AlternateLow(a.weightsHigh, b.weightsHigh), space);
        sums.weights[3] += SumProducts(AlternateHigh(a.weightsHigh, b.weightsHigh), space);
        sums.values[0] += SumProducts(AlternateLow(a.valuesLow, b.valuesLow), space);
        sums.values[1] += SumProducts(AlternateHigh(a.valuesLow, b.valuesLow), space);
        sums.values[2] += SumProducts(AlternateLow(a.valuesHigh, b.valuesHigh), space);
        sums.values[3] += SumProducts(AlternateHigh(a.valuesHigh, b.valuesHigh), space);
    }
    const uint32_t centreWeight = static_cast<uint32_t>(row.centreWeight * row.range->atZero);
    I32v values[kFours];
    Widen(centre, values);
    for (int i = 0; i < kFours; ++i) {
        const U32v sum = sums.values[i] + 128 * sums.weights[i] + (U32v)values[i] * centreWeight;
        const I32v weight = (I32v)(sums.weights[i] + centreWeight);
        // The sum may have wrapped to a negative one, whose quotient goes by its low eight bits.
        const I32v quotient = Quotients((I32v)sum, weight > 1 ? weight : I32v{} + 1);
        values[i] = (quotient > 255 ? I32v{} + 255 : quotient) & 0xFF;
    }
    return Join(values);
}

// The separable form. Weights by distance of all but the centre are 7 at most, so that their
// products with weights by difference stay within 16 signed bits.
template <class Windows, class Range>
inline void AddPair(const BilateralPair& pair, ptrdiff_t x, U8v centre, const Range& range,
                    const Windows& windows, Sums& sums) {
    const U16v space = U16v{} + static_cast<uint16_t>(pair.weight);
    U16v weightsLow[2], weightsHigh[2];
    const auto weigh = [&](int tap, U8v value, int column) {
        U8v low, high;
        range.Both(AbsoluteDifference(value, centre), low, high);
        low = windows.Keep(low, column);
        high = windows.Keep(high, column);
        weightsLow[tap] = (U16v)AlternateLow(low, high) * space;
        weightsHigh[tap] = (U16v)AlternateHigh(low, high) * space;
    };
    const auto add = [&](int at, U16v weights, U8v values) {
        sums.weights[at] += SumProducts(weights, U16v{} + 1);
        sums.values[at] += SumProducts(weights, (U16v)values);
    };
    const U8v first = Load<U8v>(pair.first + x), second = Load<U8v>(pair.second + x);
    weigh(0, first, -pair.column);
    weigh(1, second, pair.column);
    const U8v low = AlternateLow(first, second), high = AlternateHigh(first, second);
    add(0, AlternateLow(weightsLow[0], weightsLow[1]), AlternateLow(low, U8v{}));
    add(1, AlternateHigh(weightsLow[0], weightsLow[1]), AlternateHigh(low, U8v{}));
    add(2, AlternateLow(weightsHigh[0], weightsHigh[1]), AlternateLow(high, U8v{}));
    add(3, AlternateHigh(weightsHigh[0], weightsHigh[1]), AlternateHigh(high, U8v{}));
}

template <class Windows, class Range>
inline U8v SeparableStep(const BilateralRow& row, ptrdiff_t x, const Range& range) {
    const Windows windows(row, x);
    const U8v centre = Load<U8v>(row.centre + x);
    const U32v centreWeight = U32v{} + static_cast<uint32_t>(row.centreWeight * row.range->atZero);
    I32v values[kFours], held[kFours];
    Widen(centre, values);
    Widen(windows.Keep(~U8v{}, 0), held);
    Sums sums;
    for (int i = 0; i < kFours; ++i) {
        sums.weights[i] = (U32v)(held[i] != 0) & centreWeight;
        sums.values[i] = (U32v)values[i] * sums.weights[i];
    }
    for (int i = 0; i < row.pairCount; ++i) AddPair(row.pairs[i], x, centre, range, windows, sums);
    for (int i = 0; i < kFours; ++i) {
        const I32v sum = (I32v)(sums.values[i] + (sums.weights[i] >> 1));
        const I32v weight = (I32v)sums.weights[i];
        values[i] = Quotients(sum, weight > 1 ? weight : I32v{} + 1);
    }
    return Join(values);
}

[[maybe_unused]] inline U8v Limited(U8v v) { return Larger(Smaller(v, U8v{} + 235), U8v{} + 16); }

// The columns of a row by full(x) where windows are full and by clipped(x) elsewhere.
template <class Full, class Clipped>
inline void InColumnSteps(const BilateralRow& row, uint8_t* dst, Full full, Clipped clipped) {
    for (ptrdiff_t x = 0; x < row.width; x += kStep) {
        const ptrdiff_t end = x + kStep < row.width ? x + kStep : row.width;
        const U8v result = x >= row.fullBegin && end <= row.fullEnd ? full(x) : clipped(x);
        if (end - x == kStep)
            Store(dst + x, result);
        else
            std::memcpy(dst + x, &result, static_cast<size_t>(end - x));
    }
}

template <int kChunks> void Direct(const BilateralRow& row, uint8_t* dst) {
    const Range<kChunks> range(*row.range);
    InColumnSteps(
        row, dst, [&](ptrdiff_t x) { return DirectStep<FullWindows>(row, x, range); },
        [&](ptrdiff_t x) { return DirectStep<ClippedWindows>(row, x, range); });
}

template <int kChunks, bool kLimited> void Separable(const BilateralRow& row, uint8_t* dst) {
    const Range<kChunks> range(*row.range);
    const auto limit = [](U8v v) { return kLimited ? Limited(v) : v; };
    InColumnSteps(
        row, dst, [&](ptrdiff_t x) { return limit(SeparableStep<FullWindows>(row, x, range)); },
        [&](ptrdiff_t x) { return limit(SeparableStep<ClippedWindows>(row, x, range)); });
}

// form(Chunks<n>), with n the least that is compiled and enough.
template <int kChunks> struct Chunks { static constexpr int kCount = kChunks; };
template <class Form> inline void ByChunks(int chunks, Form form) {
    switch (chunks) {
        case 1:
            return form(Chunks<1>());
        case 2:
            return form(Chunks<2>());
        case 3:
            return form(Chunks<3>());
        case 4:
            return form(Chunks<4>());
        case 5:
            return form(Chunks<5>());
        case 6:
            return form(Chunks<6>());
        case 7:
            return form(Chunks<7>());
        case 8:
            return form(Chunks<8>());
        default:
            return form(Chunks<16>());
    }
}

[[maybe_unused]] void DirectRow(const BilateralRow& row, uint8_t* dst) {
    ByChunks(row.range->chunks, [&](auto chunks) { Direct<decltype(chunks)::kCount>(row, dst); });
}

template <bool kLimited> void SeparableRow(const BilateralRow& row, uint8_t* dst) {
    ByChunks(row.range->chunks,
             [&](auto chunks) { Separable<decltype(chunks)::kCount, kLimited>(row, dst); });
}

template <bool kGains> constexpr tq::BilateralKernels MakeKernels() {
    if constexpr (kGains)
        return {DirectRow, SeparableRow<false>, SeparableRow<true>};
    else
        return {nullptr, nullptr, nullptr};
}

}  // namespace

namespace tq::TQ_ISA {
const BilateralKernels bilateralKernels = MakeKernels<kHasByteShuffle>();
}  // namespace tq::TQ_ISA
