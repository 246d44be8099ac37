// Kernels of the 5/3 transform and of the filter of its taps. Compiled once per instruction-set
// level, with TQ_ISA naming the level's namespace.

#include "wavelet/wavelet53_kernels.h"

#include "wavelet/wavelet_formulas.h"

namespace {

using tq::SplitLine;

// The forward transform of bytes, both directions, stays within 16 bits: a low value of a low line
// is at most 26520, and everything else is nearer to 0.
using Bytes = ByteSamples;
using BytePairs = Pairs<Bytes>;

inline uint32_t Byte(const uint8_t* row, ptrdiff_t i) { return SampleAt<Bytes>(row, i); }

inline void StoreSplit(const SplitLine& line, ptrdiff_t i, const BytePairs& v) {
    Store(line.even + i, v.even);
    Store(line.odd + i, v.odd);
}

void ForwardColumns(const uint8_t* const* rows, ptrdiff_t pairs, const SplitLine& low,
                    const SplitLine& high) {
    const uint8_t *const a = rows[0], *const b = rows[1], *const c = rows[2], *const d = rows[3],
                         *const e = rows[4];
    ForEachPlace<kLanes16>(
        pairs,
        [&](ptrdiff_t i) {
            const BytePairs va = LoadPairs<Bytes>(a + 2 * i), vb = LoadPairs<Bytes>(b + 2 * i),
                            vc = LoadPairs<Bytes>(c + 2 * i), vd = LoadPairs<Bytes>(d + 2 * i),
                            ve = LoadPairs<Bytes>(e + 2 * i);
            StoreSplit(low, i,
                       {LowPass(va.even, vb.even, vc.even, vd.even, ve.even),
                        LowPass(va.odd, vb.odd, vc.odd, vd.odd, ve.odd)});
            StoreSplit(high, i,
                       {HighPass(vc.even, vd.even, ve.even), HighPass(vc.odd, vd.odd, ve.odd)});
        },
        [&](ptrdiff_t i) {
            const auto store = [&](int16_t* lows, int16_t* highs, ptrdiff_t k) {
                lows[i] = static_cast<int16_t>(
                    LowPass(Byte(a, k), Byte(b, k), Byte(c, k), Byte(d, k), Byte(e, k)));
                highs[i] = static_cast<int16_t>(HighPass(Byte(c, k), Byte(d, k), Byte(e, k)));
            };
            store(low.even, high.even, 2 * i);
            store(low.odd, high.odd, 2 * i + 1);
        });
}

void Split(const uint8_t* row, ptrdiff_t pairs, const SplitLine& line) {
    ForEachPlace<kLanes16>(
        pairs, [&](ptrdiff_t i) { StoreSplit(line, i, LoadPairs<Bytes>(row + 2 * i)); },
        [&](ptrdiff_t i) {
            line.even[i] = row[2 * i];
            line.odd[i] = row[2 * i + 1];
        });
}

// Lanes as signed 32-bit numbers, in order.
inline void StoreWide(int* to, U16v v) {
    I32v low, high;
    WidenSigned(v, low, high);
    Store(to, low);
    Store(to + kLanes32, high);
}

void ForwardLine(const SplitLine& line, ptrdiff_t pairs, int* halves) {
    int16_t *const even = line.even, *const odd = line.odd;
    even[-1] = even[pairs - 1];
    odd[-1] = odd[pairs - 1];
    even[pairs] = even[0];
    int *const low = halves, *const high = halves + pairs;
    ForEachPlace<kLanes16>(
        pairs,
        [&](ptrdiff_t i) {
            const U16v own = Load<U16v>(even + i), after = Load<U16v>(even + i + 1);
            const U16v middle = Load<U16v>(odd + i);
            StoreWide(low + i, LowPass(Load<U16v>(even + i - 1), Load<U16v>(odd + i - 1), own,
                                       middle, after));
            StoreWide(high + i, HighPass(own, middle, after));
        },
        [&](ptrdiff_t i) {
            const auto number = [](int16_t v) { return static_cast<uint32_t>(v); };
            const uint32_t own = number(even[i]), after = number(even[i + 1]);
            const uint32_t middle = number(odd[i]);
            low[i] = static_cast<int>(
                LowPass(number(even[i - 1]), number(odd[i - 1]), own, middle, after));
            high[i] = static_cast<int>(HighPass(own, middle, after));
        });
}

// The even value of a place from its low value and the high values before and behind it; the odd
// one from the low values and the high values around it.
template <class V> inline V InverseEven(V low, V highBefore, V high) {
    return low * 8 - (highBefore + high) * 2;
}
template <class V> inline V InverseOdd(V low, V lowAfter, V highBefore, V high, V highAfter) {
    const V twice = high + high;
    return (low + lowAfter + high) * 4 + twice - highBefore - highAfter;
}

void InverseColumns(const int* const* low, const int* const* high, ptrdiff_t count, int* even,
                    int* odd) {
    const int *const l = low[0], *const lAfter = low[1];
    const int *const hBefore = high[0], *const h = high[1], *const hAfter = high[2];
    ForEachPlace<kLanes32>(
        count,
        [&](ptrdiff_t i) {
            const U32v vl = Load<U32v>(l + i), vh = Load<U32v>(h + i);
            const U32v before = Load<U32v>(hBefore + i);
            Store(even + i, InverseEven(vl, before, vh));
            Store(odd + i,
                  InverseOdd(vl, Load<U32v>(lAfter + i), before, vh, Load<U32v>(hAfter + i)));
        },
        [&](ptrdiff_t i) {
            const auto at = [i](const int* row) { return static_cast<uint32_t>(row[i]); };
            even[i] = static_cast<int>(InverseEven(at(l), at(hBefore), at(h)));
            odd[i] =
                static_cast<int>(InverseOdd(at(l), at(lAfter), at(hBefore), at(h), at(hAfter)));
        });
}

// Rounded 4096ths of a wrapping sum. Those below 0 become 0 in the end, so they may be taken down
// as well as toward zero.
template <class I, class V> inline I Rounded4096ths(V v) { return (I)(v + 2048) >> 12; }

void InverseLine(int* low, int* high, ptrdiff_t pairs, uint8_t* dst) {
    low[pairs] = low[0];
    high[-1] = high[pairs - 1];
    high[pairs] = high[0];
    ForEachPlace<kLanes16>(
        pairs,
        [&](ptrdiff_t i) {
            I32v even[2], odd[2];
            for (int k = 0; k < 2; ++k) {
                const ptrdiff_t at = i + k * kLanes32;
                const U32v l = Load<U32v>(low + at), lAfter = Load<U32v>(low + at + 1);
                const U32v h = Load<U32v>(high + at), hBefore = Load<U32v>(high + at - 1),
                           hAfter = Load<U32v>(high + at + 1);
                even[k] = Rounded4096ths<I32v>(InverseEven(l, hBefore, h));
                odd[k] = Rounded4096ths<I32v>(InverseOdd(l, lAfter, hBefore, h, hAfter));
            }
            const auto bytes = [](const I32v* v) {
                return (U16v)Limit((I16v)PackSigned(v[0], v[1]), I16v{}, I16v{} + 255);
            };
            StorePairs<Bytes>(dst + 2 * i, {bytes(even), bytes(odd)});
        },
        [&](ptrdiff_t i) {
            const auto at = [](const int* from) { return static_cast<uint32_t>(*from); };
            const uint32_t l = at(low + i), lAfter = at(low + i + 1);
            const uint32_t h = at(high + i), hBefore = at(high + i - 1), hAfter = at(high + i + 1);
            const auto byte = [](uint32_t v) {
                return static_cast<uint8_t>(Limit(Rounded4096ths<int>(v), 0, 255));
            };
            dst[2 * i] = byte(InverseEven(l, hBefore, h));
            dst[2 * i + 1] = byte(InverseOdd(l, lAfter, hBefore, h, hAfter));
        });
}

// The low-pass of one place, wherever it is.
inline void FilterPlace(const uint8_t* row, ptrdiff_t count, ptrdiff_t centre,
                        const SplitLine& line) {
    const auto at = [&](ptrdiff_t i) { return Byte(row, tq::Mirrored(i, count)); };
    const uint32_t sum =
        LowPass(at(centre - 2), at(centre - 1), at(centre), at(centre + 1), at(centre + 2));
    int16_t* const half = centre % 2 == 0 ? line.even : line.odd;
    half[centre / 2] = static_cast<int16_t>(sum);
}

void FilterLine(const uint8_t* row, ptrdiff_t count, const SplitLine& line) {
    const auto make = [&](ptrdiff_t i) { FilterPlace(row, count, i, line); };
    // Pairs that have a whole pair on either side, and what is before and behind them.
    const ptrdiff_t inner = count / 2 - 2;
    make(0);
    make(1);
    for (ptrdiff_t i = 2 * (inner + 1); i < count; ++i) make(i);
    ForEachPlace<kLanes16>(
        inner,
        [&](ptrdiff_t i) {
            const uint8_t* const from = row + 2 * i;
            const BytePairs before = LoadPairs<Bytes>(from), own = LoadPairs<Bytes>(from + 2),
                            after = LoadPairs<Bytes>(from + 4);
            StoreSplit(line, i + 1,
                       {LowPass(before.even, before.odd, own.even, own.odd, after.even),
                        LowPass(before.odd, own.even, own.odd, after.even, after.odd)});
        },
        [&](ptrdiff_t i) {
            make(2 * i + 2);
            make(2 * i + 3);
        });
}

// The rounded mean of 64 weights. A low one becomes 0, not 16: kept on purpose. So it does not
// matter which way a negative quotient is cut.
template <class I, class V> inline I FilterResult(V sum) {
    const I v = (I)(sum + 32) >> 6;
    return v < 16 ? I{} : v > 235 ? I{} + 235 : v;
}

// The same half of five lines.
struct FilterHalf {
    const int16_t *a, *b, *c, *d, *e;

    FilterHalf(const SplitLine* const* lines, int16_t* SplitLine::*half)
        : a(lines[0]->*half),
          b(lines[1]->*half),
          c(lines[2]->*half),
          d(lines[3]->*half),
          e(lines[4]->*half) {}
    U16v Lanes(ptrdiff_t i) const {
        return (U16v)FilterResult<I16v>(LowPass(Load<U16v>(a + i), Load<U16v>(b + i),
                                                Load<U16v>(c + i), Load<U16v>(d + i),
                                                Load<U16v>(e + i)));
    }
    uint8_t One(ptrdiff_t i) const {
        const auto number = [](int16_t v) { return static_cast<uint32_t>(v); };
        return static_cast<uint8_t>(FilterResult<int>(
            LowPass(number(a[i]), number(b[i]), number(c[i]), number(d[i]), number(e[i]))));
    }
};

void FilterColumns(const SplitLine* const* lines, ptrdiff_t count, uint8_t* dst) {
    const FilterHalf even(lines, &SplitLine::even), odd(lines, &SplitLine::odd);
    if (count % 2 != 0) dst[count - 1] = even.One(count / 2);
    ForEachPlace<kLanes16>(
        count / 2,
        [&](ptrdiff_t i) {
            StorePairs<Bytes>(dst + 2 * i, {even.Lanes(i), odd.Lanes(i)});
        },
        [&](ptrdiff_t i) {
            dst[2 * i] = even.One(i);
            dst[2 * i + 1] = odd.One(i);
        });
}

}  // namespace

namespace tq::TQ_ISA {
const Wavelet53Kernels wavelet53Kernels = {
    ForwardColumns, Split, ForwardLine, InverseColumns, InverseLine, FilterLine, FilterColumns,
};
}  // namespace tq::TQ_ISA
