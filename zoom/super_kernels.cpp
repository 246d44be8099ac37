// Row kernels of the super zoom. Compiled once per instruction-set level, with TQ_ISA naming the
// level's namespace.

#include "zoom/super_kernels.h"

#include "frame/simd.h"

namespace {

using tq::kSuperWindow;
using tq::SuperBlocks;
using tq::SuperColumns;
using tq::SuperRow;

// Sixteen bytes at `first` and, where a vector has room, sixteen at `second`.
inline U8v LoadSixteens(const uint8_t* first, const uint8_t* second) {
    return (U8v)LoadFours(reinterpret_cast<const float*>(first),
                          reinterpret_cast<const float*>(second));
}

// The formats say how a vector holds the elements of kColumns columns from column i on, and how
// four taps of them, from tap t on, come out of a row.
struct OneChannel {
    static constexpr ptrdiff_t kChannels = 1;
    static constexpr ptrdiff_t kColumns = kLanes32;

    OneChannel(const SuperColumns& columns, const uint8_t* row, ptrdiff_t i, ptrdiff_t t) {
        row += t;
        for (ptrdiff_t lane = 0; lane < kLanes32; ++lane)
            m_taps[lane] = Load<uint32_t>(row + columns.begin[i + lane]);
    }
    template <int k> F32v Tap() const { return ToFloat((I32v)(m_taps >> 8 * k & 0xFF)); }

    static F32v Weights(const float* from) { return Load<F32v>(from); }

protected:
    explicit OneChannel(U32v taps) : m_taps(taps) {}

private:
    U32v m_taps = {};
};

// For the first four taps, and i a multiple of four.
struct OneChannelInWindows : OneChannel {
    OneChannelInWindows(const SuperColumns& columns, const uint8_t* row, ptrdiff_t i, ptrdiff_t)
        : OneChannel((U32v)LookUp(Windows(columns, row, i), Load<U8v>(columns.orders + 4 * i))) {}

private:
    static U8v Windows(const SuperColumns& columns, const uint8_t* row, ptrdiff_t i) {
        const int32_t* windows = columns.windows + i / 4;
        return LoadSixteens(row + windows[0], row + windows[kLanes32 / 4 - 1]);
    }
};

struct FourChannels {
    static constexpr ptrdiff_t kChannels = 4;
    static constexpr ptrdiff_t kColumns = kLanes32 / 4;

    FourChannels(const SuperColumns& columns, const uint8_t* row, ptrdiff_t i, ptrdiff_t t) {
        const uint8_t* first = row + 4 * (columns.begin[i] + t);
        m_pixels = LoadSixteens(first, row + 4 * (columns.begin[i + kColumns - 1] + t));
    }
    template <int k> F32v Tap() const {
        if constexpr (kHasByteShuffle) {
            constexpr uint8_t z = 0x80, b = 4 * k;
            alignas(32) static constexpr uint8_t kOrder[32] = {
                b, z, z, z, b + 1, z, z, z, b + 2, z, z, z, b + 3, z, z, z,
                b, z, z, z, b + 1, z, z, z, b + 2, z, z, z, b + 3, z, z, z};
            return ToFloat((I32v)LookUp(m_pixels, Load<U8v>(kOrder)));
        } else {
            const U16v pairs =
                (U16v)(k < 2 ? AlternateLow(m_pixels, U8v{}) : AlternateHigh(m_pixels, U8v{}));
            return ToFloat(k % 2 == 0 ? WidenLowFours(pairs) : WidenHighFours(pairs));
        }
    }

    static F32v Weights(const float* from) { return SplatFours(from); }

private:
    U8v m_pixels;
};

inline F32v Start(const float* start, ptrdiff_t element) {
    return start == nullptr ? F32v{} : Load<F32v>(start + element);
}

// A leading 0 changes no sum, nor does a tap with weight 0: there are no negative values.
template <class Format, int kTaps>
inline void SumFew(const SuperColumns& columns, const uint8_t* row, ptrdiff_t i, const float* start,
                   float* sums) {
    const auto edge = [&](ptrdiff_t t) {
        return Format::Weights(columns.edges + (t - 1) * columns.edgeStride + i);
    };
    const Format taps(columns, row, i, 0);
    F32v sum = Start(start, Format::kChannels * i) +
               taps.template Tap<0>() * Format::Weights(columns.beginFraction + i);
    if constexpr (kTaps > 1) sum += taps.template Tap<1>() * edge(1);
    if constexpr (kTaps > 2) sum += taps.template Tap<2>() * edge(2);
    if constexpr (kTaps > 3) sum += taps.template Tap<3>() * edge(3);
    Store(sums + Format::kChannels * i, sum);
}

template <class Format>
inline void SumMany(const SuperColumns& columns, const uint8_t* row, ptrdiff_t i,
                    const float* start, float* sums) {
    F32v sum = Start(start, Format::kChannels * i);
    const auto add = [&](ptrdiff_t t, F32v tap) {
        if (t == 0)
            sum += tap * Format::Weights(columns.beginFraction + i);
        else if (t < columns.plain)
            sum += tap;
        else if (t < columns.taps)
            sum +=
                tap * Format::Weights(columns.edges + (t - columns.plain) * columns.edgeStride + i);
    };
    for (ptrdiff_t t = 0; t < columns.taps; t += kSuperWindow) {
        const Format taps(columns, row, i, t);
        if (t > 0 && t + kSuperWindow <= columns.plain) {
            sum += taps.template Tap<0>();
            sum += taps.template Tap<1>();
            sum += taps.template Tap<2>();
            sum += taps.template Tap<3>();
        } else {
            add(t, taps.template Tap<0>());
            add(t + 1, taps.template Tap<1>());
            add(t + 2, taps.template Tap<2>());
            add(t + 3, taps.template Tap<3>());
        }
    }
    Store(sums + Format::kChannels * i, sum);
}

// One column by the steps.
template <ptrdiff_t kChannels>
void SumOne(const SuperColumns& columns, const uint8_t* row, ptrdiff_t i, const float* start,
            float* sums) {
    const ptrdiff_t begin = columns.begin[i];
    const ptrdiff_t end = columns.end[i];
    for (ptrdiff_t c = 0; c < kChannels; ++c) {
        const ptrdiff_t element = kChannels * i + c;
        const auto pixel = [&](ptrdiff_t x) { return static_cast<float>(row[kChannels * x + c]); };
        float sum = pixel(begin) * columns.beginFraction[i];
        if (start != nullptr) sum = start[element] + sum;
        for (ptrdiff_t x = begin + 1; x < end; ++x) sum += pixel(x);
        sums[element] = pixel(end) * columns.endFraction[i] + sum;
    }
}

// All columns: the inner ones by `step`, the last of them by `lastStep`, which goes back over
// columns that are done.
template <class Format, class Step, class LastStep>
void SumColumns(const SuperColumns& columns, const uint8_t* row, const float* start, float* sums,
                Step step, LastStep lastStep) {
    constexpr ptrdiff_t kColumns = Format::kColumns;
    ptrdiff_t done = 0;
    for (; done + kColumns <= columns.inner; done += kColumns)
        step(columns, row, done, start, sums);
    if (done < columns.inner && columns.inner >= kColumns) {
        done = columns.inner;
        lastStep(columns, row, done - kColumns, start, sums);
    }
    for (ptrdiff_t k = 0; k < columns.singleCount; ++k)
        SumOne<Format::kChannels>(columns, row, columns.singles[k], start, sums);
    for (; done < columns.count; ++done) SumOne<Format::kChannels>(columns, row, done, start, sums);
}

template <class Format, class FirstTaps>
void Sum(const SuperColumns& columns, const uint8_t* row, const float* start, float* sums) {
    const auto few = [&](auto step, auto lastStep) {
        SumColumns<Format>(columns, row, start, sums, step, lastStep);
    };
    if (columns.plain > 1 || columns.taps > 4) return few(SumMany<Format>, SumMany<Format>);
    if (columns.taps == 4) return few(SumFew<FirstTaps, 4>, SumFew<Format, 4>);
    if (columns.taps == 3) return few(SumFew<FirstTaps, 3>, SumFew<Format, 3>);
    if (columns.taps == 2) return few(SumFew<FirstTaps, 2>, SumFew<Format, 2>);
    few(SumFew<FirstTaps, 1>, SumFew<Format, 1>);
}

void SumOneChannel(const SuperColumns& columns, const uint8_t* row, const float* start,
                   float* sums) {
    if (kHasByteShuffle && columns.windows != nullptr)
        Sum<OneChannel, OneChannelInWindows>(columns, row, start, sums);
    else
        Sum<OneChannel, OneChannel>(columns, row, start, sums);
}

void SumFourChannels(const SuperColumns& columns, const uint8_t* row, const float* start,
                     float* sums) {
    Sum<FourChannels, FourChannels>(columns, row, start, sums);
}

template <bool kHasMiddle, bool kHasLower>
void FinishElements(const SuperRow& row, ptrdiff_t count, uint8_t* dst) {
    // At most about 16 * 255: four fractions of 1 where the area has but one pixel.
    const auto value = [&](ptrdiff_t i) {
        F32v sum = Load<F32v>(row.upper + i) * row.topFraction;
        if constexpr (kHasMiddle) sum = Load<F32v>(row.middle + i) + sum;
        if constexpr (kHasLower) sum = Load<F32v>(row.lower + i) * row.bottomFraction + sum;
        return Truncate(sum * row.norm);
    };
    const auto bytes = [&](ptrdiff_t i) {
        return PackHeld(value(i), value(i + kLanes32), value(i + 2 * kLanes32),
                        value(i + 3 * kLanes32));
    };
    ptrdiff_t i = 0;
    for (; i + kVectorBytes <= count; i += kVectorBytes) Store(dst + i, bytes(i));
    if (i < count) {
        const U8v last = bytes(i);
        std::memcpy(dst + i, &last, static_cast<size_t>(count - i));
    }
}

void Finish(const SuperRow& row, ptrdiff_t count, uint8_t* dst) {
    const bool hasMiddle = row.middle != nullptr;
    if (row.lower != nullptr)
        (hasMiddle ? FinishElements<true, true> : FinishElements<false, true>)(row, count, dst);
    else
        (hasMiddle ? FinishElements<true, false> : FinishElements<false, false>)(row, count, dst);
}

// Sums over the height of a block for so many elements at a time.
constexpr ptrdiff_t kBlockElements = 2048;

void AddRows(const uint8_t* src, ptrdiff_t stride, ptrdiff_t rows, ptrdiff_t count,
             uint16_t* sums) {
    const auto add = [&](ptrdiff_t i) {
        U16v sum = LoadWidened16(src + i);
        for (ptrdiff_t r = 1; r < rows; ++r) sum += LoadWidened16(src + r * stride + i);
        Store(sums + i, sum);
    };
    ptrdiff_t i = 0;
    for (; i + kLanes16 <= count; i += kLanes16) add(i);
    if (i < count && count >= kLanes16) return add(count - kLanes16);
    for (; i < count; ++i) {
        sums[i] = 0;
        for (ptrdiff_t r = 0; r < rows; ++r) sums[i] += src[r * stride + i];
    }
}

// Four vectors of sums of blocks.
struct BlockSums {
    I32v a, b, c, d;

    U8v Means(float norm) const {
        const auto mean = [norm](I32v sum) { return Truncate(ToFloat(sum) * norm); };
        return PackHeld(mean(a), mean(b), mean(c), mean(d));
    }
};

// `count` elements, whose sums from element i on sumsAt(i) gives. What it gives for more elements
// is of no account.
template <class SumsAt> void StoreMeans(ptrdiff_t count, float norm, uint8_t* dst, SumsAt sumsAt) {
    ptrdiff_t i = 0;
    for (; i + kVectorBytes <= count; i += kVectorBytes) Store(dst + i, sumsAt(i).Means(norm));
    if (i < count) {
        const U8v last = sumsAt(i).Means(norm);
        std::memcpy(dst + i, &last, static_cast<size_t>(count - i));
    }
}

// Of sums below 2^15.
void StoreMeansOfWords(const uint16_t* sums, ptrdiff_t count, float norm, uint8_t* dst) {
    StoreMeans(count, norm, dst, [sums](ptrdiff_t i) {
        BlockSums blocks{};
        WidenSigned(Load<U16v>(sums + i), blocks.a, blocks.b);
        WidenSigned(Load<U16v>(sums + i + kLanes16), blocks.c, blocks.d);
        return blocks;
    });
}

// In place, each `width` neighbouring words, and none of the sums they may hold overflows.
template <class Word, int kWidth> void SumWords(uint16_t* sums, ptrdiff_t width, ptrdiff_t count) {
    constexpr ptrdiff_t kLanes = sizeof(Word) / sizeof(uint16_t);
    const ptrdiff_t w = kWidth == 0 ? width : kWidth;
    for (ptrdiff_t x = 0; x < count; ++x) {
        Word sum = Load<Word>(sums + kLanes * w * x);
        for (ptrdiff_t t = 1; t < w; ++t)
            sum = static_cast<Word>(sum + Load<Word>(sums + kLanes * (w * x + t)));
        Store(sums + kLanes * x, sum);
    }
}
template <class Word> void SumWords(uint16_t* sums, ptrdiff_t width, ptrdiff_t count) {
    if (width == 2) return SumWords<Word, 2>(sums, width, count);
    if (width == 3) return SumWords<Word, 3>(sums, width, count);
    if (width == 4) return SumWords<Word, 4>(sums, width, count);
    SumWords<Word, 0>(sums, width, count);
}

void FinishOneChannel(uint16_t* sums, ptrdiff_t width, ptrdiff_t count, float norm, uint8_t* dst) {
    if (width == 2) {
        return StoreMeans(count, norm, dst, [sums](ptrdiff_t i) {
            const auto pairs = [sums](ptrdiff_t first) {
                const U32v words = Load<U32v>(sums + 2 * first);
                return (I32v)((words & 0xFFFF) + (words >> 16));
            };
            return BlockSums{pairs(i), pairs(i + kLanes32), pairs(i + 2 * kLanes32),
                             pairs(i + 3 * kLanes32)};
        });
    }
    SumWords<uint16_t>(sums, width, count);
    StoreMeansOfWords(sums, count, norm, dst);
}

// The four sums of a pixel lie in one word, where none reaches into the next.
void FinishFourChannels(uint16_t* sums, ptrdiff_t width, ptrdiff_t count, float norm,
                        uint8_t* dst) {
    SumWords<uint64_t>(sums, width, count);
    StoreMeansOfWords(sums, 4 * count, norm, dst);
}

template <ptrdiff_t kChannels>
void AverageBlocks(const SuperBlocks& blocks, const uint8_t* src, ptrdiff_t count, uint8_t* dst) {
    const ptrdiff_t most = kBlockElements / (kChannels * blocks.width);
    for (ptrdiff_t x = 0; x < count; x += most) {
        const ptrdiff_t columns = count - x < most ? count - x : most;
        uint16_t sums[kBlockElements + 2 * kVectorBytes];
        AddRows(src + kChannels * blocks.width * x, blocks.stride, blocks.height,
                kChannels * blocks.width * columns, sums);
        (kChannels == 1 ? FinishOneChannel : FinishFourChannels)(sums, blocks.width, columns,
                                                                 blocks.norm, dst + kChannels * x);
    }
}

}  // namespace

namespace tq::TQ_ISA {
const SuperKernels superKernels = {SumOneChannel, SumFourChannels, Finish, AverageBlocks<1>,
                                   AverageBlocks<4>};
}  // namespace tq::TQ_ISA
