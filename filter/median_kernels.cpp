// Row kernels of the median of a square. Compiled once per instruction-set level, with TQ_ISA
// naming the level's namespace.

#include "filter/median_kernels.h"

#include "filter/median_network_formulas.h"
#include "frame/simd.h"

namespace {

using tq::ColumnHistograms;

// Medians of up to so many pixels of a row are found at a time.
constexpr ptrdiff_t kChunk = 256;

// A list of vectors takes so many bytes for each element: vectors of a chunk and of the columns
// around it begin within the first ones, whole.
constexpr ptrdiff_t kListStride = kChunk + 3 * kVectorBytes;

// The pixels of kColumns columns of a window of radius kRadius, sorted, those ranks left out that
// the median of the window cannot have, whatever the other pixels are. kDropped were left out below
// the first.
template <int kRadius, int kColumnCount, int kDroppedBelow, int kHeld> struct List {
    static constexpr int kColumns = kColumnCount;
    static constexpr int kDropped = kDroppedBelow;
    static constexpr int kCount = kHeld;

    static constexpr int kSide = 2 * kRadius + 1;
    static constexpr int kMedian = kSide * kSide / 2;
    static constexpr int kOthers = kSide * (kSide - kColumns);
};

template <int kRadius> using ColumnList = List<kRadius, 1, 0, 2 * kRadius + 1>;

// Two lists of neighbouring columns as one.
template <int kRadius, class A, class B> struct Merged {
    using Whole =
        List<kRadius, A::kColumns + B::kColumns, A::kDropped + B::kDropped, A::kCount + B::kCount>;
    static constexpr int Limit(int value, int last) {
        return value < 0 ? 0 : value > last ? last : value;
    }
    static constexpr int kFirst =
        Limit(Whole::kMedian - Whole::kOthers - Whole::kDropped, Whole::kCount - 1);
    static constexpr int kLast = Limit(Whole::kMedian - Whole::kDropped, Whole::kCount - 1);
    static constexpr Network kNetwork = MergingNetwork(A::kCount, B::kCount, kFirst, kLast);

    using Result = List<kRadius, Whole::kColumns, Whole::kDropped + kFirst, kLast - kFirst + 1>;
};

template <class Source, int kIndex = 0>
[[gnu::always_inline]] inline void StoreOutputs(const U8v* wires, uint8_t* to) {
    constexpr Network kNetwork = Source::kNetwork;
    if constexpr (kIndex < kNetwork.outputs.count) {
        Store(to + kIndex * kListStride, wires[kNetwork.outputs.at[kIndex]]);
        StoreOutputs<Source, kIndex + 1>(wires, to);
    }
}

template <int kCount> [[gnu::always_inline]] inline void LoadList(const uint8_t* list, U8v* wires) {
#pragma GCC unroll 128
    for (int i = 0; i < kCount; ++i) wires[i] = Load<U8v>(list + i * kListStride);
}

template <int kRadius> struct SortedColumn {
    static constexpr Network kNetwork = SortingNetwork(2 * kRadius + 1);
};

// The list of A at each place and that of B behind it, merged. `places` is rounded up to vectors.
template <int kRadius, class A, class B>
void MergeLists(const uint8_t* a, const uint8_t* b, uint8_t* to, ptrdiff_t places) {
    using M = Merged<kRadius, A, B>;
    for (ptrdiff_t x = 0; x < places; x += kVectorBytes) {
        U8v wires[A::kCount + B::kCount];
        LoadList<A::kCount>(a + x, wires);
        LoadList<B::kCount>(b + x + A::kColumns, wires + A::kCount);
        Run<M, 0, M::kNetwork.count>(wires);
        StoreOutputs<M>(wires, to + x);
    }
}

// Columns of 2 * kRadius + 1 pixels, sorted. Exactly `places` bytes of each row are read.
template <int kRadius>
void SortColumns(const uint8_t* src, ptrdiff_t stride, uint8_t* to, ptrdiff_t places) {
    constexpr int kSide = 2 * kRadius + 1;
    const auto sort = [&](ptrdiff_t x, auto load) {
        U8v wires[kSide];
#pragma GCC unroll 16
        for (int i = 0; i < kSide; ++i) wires[i] = load(i);
        Run<SortedColumn<kRadius>, 0, SortedColumn<kRadius>::kNetwork.count>(wires);
        StoreOutputs<SortedColumn<kRadius>>(wires, to + x);
    };
    ptrdiff_t x = 0;
    for (; x + kVectorBytes <= places; x += kVectorBytes)
        sort(x, [&](int i) { return Load<U8v>(src + i * stride + x); });
    if (x >= places) return;
    sort(x, [&](int i) {
        U8v v = {};
        std::memcpy(&v, src + i * stride + x, static_cast<size_t>(places - x));
        return v;
    });
}

// Element kRank of two sorted lists together: the least of the higher ones of all pairs that have
// kRank elements at or below them besides themselves.
template <int kRank, int kCountA, int kCountB, int kFromA = 0>
[[gnu::always_inline]] inline U8v Select(const U8v* a, const U8v* b) {
    constexpr int kFromB = kRank + 1 - kFromA;
    if constexpr (kFromB > kCountB) {
        return Select<kRank, kCountA, kCountB, kFromA + 1>(a, b);
    } else if constexpr (kFromB == 0) {
        return a[kFromA - 1];
    } else {
        U8v higher = b[kFromB - 1];
        if constexpr (kFromA > 0) higher = Larger(a[kFromA - 1], higher);
        if constexpr (kFromA == kCountA)
            return higher;
        else
            return Smaller(higher, Select<kRank, kCountA, kCountB, kFromA + 1>(a, b));
    }
}

void StoreFirst(uint8_t* to, U8v v, ptrdiff_t count) {
    if (count >= kVectorBytes)
        Store(to, v);
    else
        std::memcpy(to, &v, static_cast<size_t>(count));
}

// The medians of a list at each place and of the column behind it.
template <int kRadius, class A>
void SelectMedians(const uint8_t* list, const uint8_t* columns, uint8_t* dst, ptrdiff_t count) {
    constexpr int kSide = 2 * kRadius + 1;
    static_assert(A::kColumns == kSide - 1);
    for (ptrdiff_t x = 0; x < count; x += kVectorBytes) {
        U8v a[A::kCount], b[kSide];
        LoadList<A::kCount>(list + x, a);
        LoadList<kSide>(columns + x + A::kColumns, b);
        StoreFirst(dst + x, Select<A::kMedian - A::kDropped, A::kCount, kSide>(a, b), count - x);
    }
}

// Sorted columns are shared by the windows side by side, and so are the lists of two, four and
// eight columns that a window is put together from. What the last vectors hold beyond the places
// asked for is never stored in dst.
template <int kRadius>
void NetworkChunk(const uint8_t* src, ptrdiff_t stride, uint8_t* dst, ptrdiff_t count) {
    constexpr int kSide = 2 * kRadius + 1;
    static_assert(kSide > 4 && kSide < 12 && 4 * kSide <= 3 * kVectorBytes);
    using One = ColumnList<kRadius>;
    using Two = typename Merged<kRadius, One, One>::Result;
    using Four = typename Merged<kRadius, Two, Two>::Result;
    using Eight = typename Merged<kRadius, Four, Four>::Result;
    uint8_t one[One::kCount * kListStride];
    uint8_t two[Two::kCount * kListStride];
    uint8_t four[Four::kCount * kListStride];
    SortColumns<kRadius>(src, stride, one, count + kSide - 1);
    MergeLists<kRadius, One, One>(one, one, two, count + kSide - 2);
    MergeLists<kRadius, Two, Two>(two, two, four, count + kSide - 4);
    const auto finish = [&](auto list, const uint8_t* from) {
        using Most = decltype(list);
        if constexpr (Most::kColumns + 1 < kSide) {
            using All = typename Merged<kRadius, Most, Two>::Result;
            uint8_t all[All::kCount * kListStride];
            MergeLists<kRadius, Most, Two>(from, two, all, count);
            SelectMedians<kRadius, All>(all, one, dst, count);
        } else {
            SelectMedians<kRadius, Most>(from, one, dst, count);
        }
    };
    if constexpr (kSide > 8) {
        uint8_t eight[Eight::kCount * kListStride];
        MergeLists<kRadius, Four, Four>(four, four, eight, count);
        finish(Eight{}, eight);
    } else {
        finish(Four{}, four);
    }
}

template <int kRadius>
void NetworkRow(const uint8_t* src, ptrdiff_t stride, uint8_t* dst, ptrdiff_t count) {
    for (ptrdiff_t x = 0; x < count; x += kChunk)
        NetworkChunk<kRadius>(src + x, stride, dst + x, count - x < kChunk ? count - x : kChunk);
}

struct Triple {
    U8v low, middle, high;
};
inline Triple SortTriple(U8v a, U8v b, U8v c) {
    const U8v low = Smaller(a, b), high = Larger(a, b);
    const U8v rest = Larger(low, c);
    return {Smaller(low, c), Smaller(high, rest), Larger(high, rest)};
}
inline U8v MedianOf(U8v a, U8v b, U8v c) { return Larger(Smaller(a, b), Smaller(Larger(a, b), c)); }

// The median of nine is that of the highest of the columns' lowest, the median of their medians,
// and the lowest of their highest.
inline U8v MedianOfColumns(const Triple& a, const Triple& b, const Triple& c) {
    return MedianOf(Larger(Larger(a.low, b.low), c.low), MedianOf(a.middle, b.middle, c.middle),
                    Smaller(Smaller(a.high, b.high), c.high));
}

void Network3x3Row(const uint8_t* src, ptrdiff_t stride, uint8_t* dst, ptrdiff_t count) {
    const auto median = [](auto load) {
        Triple columns[3];
        for (int i = 0; i < 3; ++i) columns[i] = SortTriple(load(0, i), load(1, i), load(2, i));
        return MedianOfColumns(columns[0], columns[1], columns[2]);
    };
    ptrdiff_t x = 0;
    for (; x + kVectorBytes <= count; x += kVectorBytes)
        Store(dst + x,
              median([&](int row, int i) { return Load<U8v>(src + row * stride + x + i); }));
    if (x >= count) return;
    const auto left = static_cast<size_t>(count - x);
    const U8v last = median([&](int row, int i) {
        U8v v = {};
        std::memcpy(&v, src + row * stride + x + i, left);
        return v;
    });
    std::memcpy(dst + x, &last, left);
}

template <class Count>
inline void Change(const ColumnHistograms<Count>& histograms, ptrdiff_t column, uint8_t value,
                   int by) {
    const ptrdiff_t sixteen = value >> 4;
    Count& coarse = histograms.coarse[16 * column + sixteen];
    Count& fine = histograms.fine[16 * (sixteen * histograms.columns + column) + (value & 15)];
    coarse = static_cast<Count>(coarse + static_cast<Count>(by));
    fine = static_cast<Count>(fine + static_cast<Count>(by));
}

template <class Count> void Gain(const ColumnHistograms<Count>& histograms, const uint8_t* gained) {
    for (ptrdiff_t i = 0; i < histograms.columns; ++i) Change(histograms, i, gained[i], 1);
}

template <class Count>
void Move(const ColumnHistograms<Count>& histograms, const uint8_t* gained, const uint8_t* lost) {
    for (ptrdiff_t i = 0; i < histograms.columns; ++i) {
        Change(histograms, i, gained[i], 1);
        Change(histograms, i, lost[i], -1);
    }
}

// Sixteen counts over the columns of a window.
template <class Count> struct Bins {
    Count counts[16] = {};

    template <class Column> void Add(const Column* column) {
        for (int i = 0; i < 16; ++i) counts[i] = static_cast<Count>(counts[i] + column[i]);
    }
    template <class Column> void Move(const Column* gained, const Column* lost) {
        for (int i = 0; i < 16; ++i)
            counts[i] = static_cast<Count>(counts[i] + gained[i] - lost[i]);
    }
    // The bin that holds the element at `rank`, which becomes its place within the bin.
    int Find(Count& rank) const {
        int bin = 0;
        for (; counts[bin] <= rank; ++bin) rank = static_cast<Count>(rank - counts[bin]);
        return bin;
    }
};

// At each lane the sum of the lanes up to it.
inline U16x8 RunningSums(U16x8 v) {
    const U16x8 zero = {};
    v += __builtin_shufflevector(zero, v, 0, 8, 9, 10, 11, 12, 13, 14);
    v += __builtin_shufflevector(zero, v, 0, 0, 8, 9, 10, 11, 12, 13);
    v += __builtin_shufflevector(zero, v, 0, 0, 0, 0, 8, 9, 10, 11);
    return v;
}

template <> struct Bins<uint16_t> {
    U16x8 first = {}, second = {};

    void Add(const uint16_t* column) {
        first += Load<U16x8>(column);
        second += Load<U16x8>(column + 8);
    }
    void Move(const uint16_t* gained, const uint16_t* lost) {
        first += Load<U16x8>(gained) - Load<U16x8>(lost);
        second += Load<U16x8>(gained + 8) - Load<U16x8>(lost + 8);
    }
    int Find(uint16_t& rank) const {
        const U16x8 sums = RunningSums(first);
        const U16x8 more =
            RunningSums(second) + __builtin_shufflevector(sums, sums, 7, 7, 7, 7, 7, 7, 7, 7);
        const int bin = __builtin_ctz(~LaneBits((U16x8)(sums <= rank), (U16x8)(more <= rank)));
        uint16_t below[17];
        below[0] = 0;
        Store(below + 1, sums);
        Store(below + 9, more);
        rank = static_cast<uint16_t>(rank - below[bin]);
        return bin;
    }
};

// Sixteens of which nobody asks are left behind, and brought to the window's place when somebody
// does.
template <class Count, class Column>
void HistogramRow(const ColumnHistograms<Column>& histograms, int radius, uint8_t* dst) {
    const ptrdiff_t side = ptrdiff_t{2} * radius + 1;
    const ptrdiff_t count = histograms.columns - side + 1;
    const auto median =
        static_cast<Count>(static_cast<uint64_t>(side) * static_cast<uint64_t>(side) / 2);
    Bins<Count> coarse;
    Bins<Count> fine[16];
    ptrdiff_t place[16];
    for (ptrdiff_t& at : place) at = -side;
    for (ptrdiff_t i = 0; i < side; ++i) coarse.Add(histograms.coarse + 16 * i);
    for (ptrdiff_t x = 0; x < count; ++x) {
        if (x > 0)
            coarse.Move(histograms.coarse + 16 * (x + side - 1), histograms.coarse + 16 * (x - 1));
        Count rank = median;
        const int sixteen = coarse.Find(rank);
        const Column* columns = histograms.fine + 16 * (sixteen * histograms.columns);
        Bins<Count>& bins = fine[sixteen];
        ptrdiff_t& at = place[sixteen];
        if (2 * (x - at) > side) {
            bins = {};
            for (ptrdiff_t i = x; i < x + side; ++i) bins.Add(columns + 16 * i);
        } else {
            for (; at < x; ++at) bins.Move(columns + 16 * (at + side), columns + 16 * at);
        }
        at = x;
        dst[x] = static_cast<uint8_t>(16 * sixteen + bins.Find(rank));
    }
}

}  // namespace

namespace tq::TQ_ISA {
const MedianKernels medianKernels = {
    {Network3x3Row, NetworkRow<2>, NetworkRow<3>, NetworkRow<4>, NetworkRow<5>},
    {Gain<uint16_t>, Move<uint16_t>, HistogramRow<uint16_t, uint16_t>},
    {Gain<uint16_t>, Move<uint16_t>, HistogramRow<uint32_t, uint16_t>},
    {Gain<uint32_t>, Move<uint32_t>, HistogramRow<uint64_t, uint32_t>},
};
}  // namespace tq::TQ_ISA
