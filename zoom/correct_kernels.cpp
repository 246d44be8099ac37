// Row kernels of the corrected zooms. Compiled once per instruction-set level, with TQ_ISA naming
// the level's namespace.
//
// Loops take whole vectors. What they make past the end of an array's numbers is never used.

#include "zoom/correct_kernels.h"

#include "frame/simd.h"

namespace {

using tq::CorrectColumns;
using tq::CorrectPlaces;
using tq::CorrectRow;

inline int Distance(uint8_t a, uint8_t b) { return a > b ? a - b : b - a; }
inline I32v Distance(I32v a, I32v b) {
    const I32v d = a - b;
    return d > 0 ? d : -d;
}

// fraction * 255, bent by the trend: the two products in single, the rest in double precision.
inline F32v Position(F32v fraction, F32v trend) {
    const F32v whole = fraction * 255.0f;
    const F32v bend = trend * fraction;
    return Narrow(WidenLow(whole) - WidenLow(bend) * (WidenLow(fraction) - 1.0),
                  WidenHigh(whole) - WidenHigh(bend) * (WidenHigh(fraction) - 1.0));
}

// The fraction of a side at a position, from the weights of the steps behind its second pixel and
// before its first one (or, down the cell, the other way round).
inline F32v SideFraction(F32v position, F32v weight, F32v otherWeight) {
    const F32v part = position * weight;
    return part / ((255.0f - position) * otherWeight + part);
}

// Weights of the steps from `from` to `to`.
void Weigh(const uint8_t* from, const uint8_t* to, ptrdiff_t count, const float* softWeights,
           float* weights) {
    ptrdiff_t x = 0;
    if (kHasGather)
        for (; x + kLanes32 <= count; x += kLanes32)
            Store(weights + x, Gather(softWeights, LoadWidened(to + x) - LoadWidened(from + x)));
    for (; x < count; ++x) weights[x] = softWeights[to[x] - from[x]];
}

// By how much the step from a to c is larger than that from b to d.
void Trends(const uint8_t* a, const uint8_t* b, const uint8_t* c, const uint8_t* d, ptrdiff_t count,
            float* trends) {
    ptrdiff_t x = 0;
    for (; x + kLanes32 <= count; x += kLanes32)
        Store(trends + x, ToFloat(Distance(LoadWidened(c + x), LoadWidened(a + x)) -
                                  Distance(LoadWidened(d + x), LoadWidened(b + x))));
    for (; x < count; ++x)
        trends[x] = static_cast<float>(Distance(c[x], a[x]) - Distance(d[x], b[x]));
}

void Along(const CorrectColumns& columns, const uint8_t* row, const float* softWeights,
           float* weights, float* trends, const CorrectRow& result) {
    Weigh(row, row + 1, columns.sourceCount - 1, softWeights, weights);
    Trends(row, row + 1, row + 2, row + 3, columns.sourceCount - 3, trends + 1);

    const int32_t* half = columns.half;
    const float* fraction = columns.fraction;
    const ptrdiff_t count = columns.count;
    const CorrectRow to = result;
    for (ptrdiff_t i = 0; i < count; i += kLanes32) {
        const ptrdiff_t cell = half[i] >> 1;
        const I32v order = (Load<I32v>(half + i) >> 1) - static_cast<int32_t>(cell);
        const F32v q = Position(Load<F32v>(fraction + i), PickLanes(trends + cell, order));
        const F32v behind = PickLanes(weights + cell + 1, order);
        const F32v before = PickLanes(weights + cell - 1, order);
        Store(to.position + i, q);
        Store(to.behind + i, behind);
        Store(to.before + i, before);
        Store(to.fraction + i, SideFraction(q, behind, before));
    }
}

void TrendsAcross(const uint8_t* const* rows, ptrdiff_t sourceCount, float* trends) {
    Trends(rows[0], rows[1], rows[2], rows[3], sourceCount, trends);
}

void Mix(const CorrectRow& row, const CorrectRow& other, ptrdiff_t count, float* fractions) {
    for (ptrdiff_t i = 0; i < count; i += kLanes32)
        Store(fractions + i,
              SideFraction(Load<F32v>(row.position + i), Load<F32v>(other.behind + i),
                           Load<F32v>(other.before + i)));
}

void Halves(const float* above, const float* below, const float* trends, ptrdiff_t sourceCount,
            float fraction, float* positions, float* fractions, float* left, float* right) {
    for (ptrdiff_t x = 0; x < sourceCount; x += kLanes32) {
        const F32v q = Position(F32v{} + fraction, Load<F32v>(trends + x));
        Store(positions + x, q);
        Store(fractions + x, SideFraction(q, Load<F32v>(above + x), Load<F32v>(below + x)));
    }
    // The left half takes the position of its left column for both sides, the right half that of
    // its right column.
    for (ptrdiff_t x = 0; x + 1 < sourceCount; x += kLanes32) {
        const F32v leftOfRight = SideFraction(Load<F32v>(positions + x + 1), Load<F32v>(above + x),
                                              Load<F32v>(below + x));
        const F32v rightOfLeft = SideFraction(Load<F32v>(positions + x), Load<F32v>(above + x + 1),
                                              Load<F32v>(below + x + 1));
        StoreEvenOdd(left + 2 * x, Load<U32v>(fractions + x), (U32v)leftOfRight);
        StoreEvenOdd(right + 2 * x, (U32v)rightOfLeft, Load<U32v>(fractions + x + 1));
    }
}

void Cross(const CorrectColumns& columns, const float* top, const float* bottom, const float* left,
           const float* right, float* xs, float* ys) {
    const int32_t* half = columns.half;
    const ptrdiff_t count = columns.count;
    for (ptrdiff_t i = 0; i < count; i += kLanes32) {
        const ptrdiff_t first = half[i];
        const I32v order = Load<I32v>(half + i) - static_cast<int32_t>(first);
        const F32v w1 = Load<F32v>(top + i);
        const F32v w2 = PickLanes(left + first, order);
        const F32v dx = Load<F32v>(bottom + i) - w1;
        const F32v dy = PickLanes(right + first, order) - w2;
        const F32v inverse = 1.0f / (1.0f - dy * dx);
        Store(xs + i, (dx * w2 + w1) * inverse);
        Store(ys + i, (dy * w1 + w2) * inverse);
    }
}

// Numbers of the columns that the kLanes16 elements from `element` on belong to, in the places of
// WidenLowFours and WidenHighFours.
template <int kChannels> struct OfElements {
    F32v low, high;
    OfElements(const float* ofColumns, ptrdiff_t element) {
        const float* f = ofColumns + element / kChannels;
        if constexpr (kChannels == 1) {
            low = LoadFours(f, f + 8);
            high = LoadFours(f + 4, f + 12);
        } else {
            low = SplatFirstAndThird(f);
            high = SplatSecondAndFourth(f);
        }
    }
};

// The values of four or eight elements that rows in the same cells share.
struct Cell {
    F32v a, ba, ca, k;

    // In this order. The sum lies in 0 to 255, give or take a rounding, if x and y lie in 0 to 1;
    // its low eight bits are the result.
    I32v At(F32v x, F32v y) const { return Truncate(((k * (x * y) + ca * y) + ba * x) + a) & 0xFF; }
};

template <int kChannels, int kRows>
void BlendRows(const uint16_t* upper, const uint16_t* lower, ptrdiff_t columns,
               const CorrectPlaces* rows) {
    const ptrdiff_t count = kChannels * columns;
    CorrectPlaces row[kRows];
    for (int r = 0; r < kRows; ++r) row[r] = rows[r];
    // store(first byte, bytes in the lanes of a vector) for kLanes16 elements of each row.
    const auto blend = [&](ptrdiff_t i, auto store) {
        const U16v ab = Load<U16v>(upper + i);
        const U16v cd = Load<U16v>(lower + i);
        const U16v a = ab & 0xFF;
        const U16v c = cd & 0xFF;
        const U16v ba = (ab >> 8) - a;
        const U16v ca = c - a;
        const U16v k = (cd >> 8) - c - ba;
        const Cell low = {ToFloat(WidenLowFours(a)), ToFloat(RaiseLowFours(ba) >> 16),
                          ToFloat(RaiseLowFours(ca) >> 16), ToFloat(RaiseLowFours(k) >> 16)};
        const Cell high = {ToFloat(WidenHighFours(a)), ToFloat(RaiseHighFours(ba) >> 16),
                           ToFloat(RaiseHighFours(ca) >> 16), ToFloat(RaiseHighFours(k) >> 16)};
        for (int r = 0; r < kRows; ++r) {
            const OfElements<kChannels> x(row[r].x, i), y(row[r].y, i);
            store(row[r].dst + i, JoinFours(low.At(x.low, y.low), high.At(x.high, y.high)));
        }
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

template <int kChannels>
void Blend(const uint16_t* upper, const uint16_t* lower, ptrdiff_t columns,
           const CorrectPlaces* rows, ptrdiff_t rowCount) {
    for (; rowCount >= 2; rowCount -= 2, rows += 2)
        BlendRows<kChannels, 2>(upper, lower, columns, rows);
    if (rowCount == 1) BlendRows<kChannels, 1>(upper, lower, columns, rows);
}

}  // namespace

namespace tq::TQ_ISA {
const CorrectKernels correctKernels = {Along,  Weigh, TrendsAcross, Mix,
                                       Halves, Cross, Blend<1>,     Blend<4>};
}  // namespace tq::TQ_ISA
