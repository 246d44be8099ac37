// Row kernels of the JBI zoom. Compiled once per instruction-set level, with TQ_ISA naming the
// level's namespace.

#include "zoom/jbi_kernels.h"

#include "frame/simd.h"

namespace {

using tq::JbiColumns;
using tq::JbiExponential;
using tq::JbiRow;
using tq::kJbiWindow;

// Exponents are counted downwards in 131072ths here: a power of two, which moves no rounding.
constexpr float kUnit = 131072.0f;
constexpr float kTableEnd = 4097.0f * 2048.0f;
constexpr float kZero = 104.0f * kUnit;  // exp(-104) is 0 in single precision

// From kTableEnd on a weight is below 1.6e-28. Added to sums as large as these it is lost; the sum
// of a channel takes 255 times as much.
constexpr float kSettledWeights = 1e-20f;
constexpr float kSettledSum = 1e-17f;

inline F32v Splat(float value) { return F32v{} + value; }
inline F32v Masked(F32v v, I32v mask) { return (F32v)((I32v)v & mask); }
inline bool Any(I32v mask) { return TopBits((U8v)mask) != 0; }

using Pairs = uint64_t __attribute__((vector_size(kVectorBytes)));

// Two indices at a time leave the vector.
inline F32v Pick(const float* table, U32v index) {
    const Pairs pairs = (Pairs)index;
    const auto low = [&](int i) { return table[static_cast<uint32_t>(pairs[i])]; };
    const auto high = [&](int i) { return table[pairs[i] >> 32]; };
#if defined(__AVX2__)
    return F32v{low(0), high(0), low(1), high(1), low(2), high(2), low(3), high(3)};
#else
    return F32v{low(0), high(0), low(1), high(1)};
#endif
}

// exp(-(j + 0.5) / 131072) for the low 11 bits j of n, rounded to nearest: a polynomial in x whose
// roundings give the right float for each of the 2048. 1 - x is put together from its bits.
inline F32v Fine(I32v n) {
    const F32v a = (F32v)(((n << 7) & 0x3FF80) ^ 0x3F7FFFC0);
    const F32v x = 1.0f - a;
    return a + (x * x) * (0x1.fffee4p-2f - x * 0x1.5390c6p-3f);
}

// Weights of exponents within the tables.
inline F32v TableWeights(F32v t, const float* coarse) {
    const I32v n = Truncate(t);
    return Fine(n) * Pick(coarse, (U32v)n >> 11);
}

// exp(-t / 131072) from kTableEnd to kZero, by powers of two and a series for what is left, a
// half of ln 2 at most.
inline F64v FarExponential(F64v t) {
    constexpr double kRound = 0x1.8p52;
    constexpr double kLn2High = 0x1.62e42fefa3p-1, kLn2Low = 0x1.3de6bp-42;
    const F64v shifted = t * 0x1.71547652b82fep-17 + kRound;
    const F64v powers = shifted - kRound;
    const F64v f = (powers * kLn2High - t * 0x1p-17) + powers * kLn2Low;
    const F64v g = f * f;
    const F64v h = g * g;
    const F64v low = (1.0 + f) + g * (1.0 / 2 + f * (1.0 / 6));
    const F64v middle = (1.0 / 24 + f * (1.0 / 120)) + g * (1.0 / 720 + f * (1.0 / 5040));
    const F64v high = (1.0 / 40320 + f * (1.0 / 362880)) + g * (1.0 / 3628800);
    return (low + h * (middle + h * high)) * (F64v)((0x3FF - (Pairs)shifted) << 52);
}

// Rounded to single precision, these are the runtime's exponentials for every float t in that
// range.
inline F32v FarWeights(F32v t) {
    return Narrow(FarExponential(WidenLow(t)), FarExponential(WidenHigh(t)));
}

// One by one, for exponents that only variances no picture has lead to.
inline F32v RuntimeWeights(F32v t, F32v weights, I32v lanes, const JbiExponential& exponential) {
    for (int i = 0; i < kLanes32; ++i)
        if (lanes[i]) weights[i] = exponential.runtime(t[i] * (-1.0f / kUnit));
    return weights;
}

// Samples of the windows of kLanes32 columns, as floats.
struct Windows {
    const int32_t* index;
    U8v order[kJbiWindow];  // within 16 bytes that begin at the first window

    explicit Windows(const int32_t* indices) : index(indices) {
        // Top bits set: bytes of 0.
        for (int c = 0; c < kJbiWindow; ++c)
            order[c] = (U8v)((U32v)(Load<I32v>(index) - *index + c) | 0x80808000u);
    }
    // Whether the windows of all columns fit 16 bytes.
    bool Fit() const { return kHasByteShuffle && index[kLanes32 - 1] - *index <= 16 - kJbiWindow; }

    template <bool kFit> F32v At(const uint8_t* row, int column) const {
        if constexpr (kFit) {
            return ToFloat((I32v)LookUp(LoadSixteen(row + *index), order[column]));
        } else {
            const auto byte = [&](int i) { return static_cast<uint32_t>(row[index[i] + column]); };
            const auto pair = [&](int i) { return byte(i) | uint64_t{byte(i + 1)} << 32; };
            Pairs bytes = {};
            for (int i = 0; i < kLanes32 / 2; ++i) bytes[i] = pair(2 * i);
            return ToFloat((I32v)bytes);
        }
    }
};

// What a group of columns has in common in all rows of its windows.
struct Group {
    F32v guide, factor, divisor, scale;
};

template <int kChannels> struct Sums {
    F32v weights = {};
    F32v channels[kChannels] = {};

    // Whether weights beyond the tables are lost in all sums.
    bool Settled() const {
        I32v open = ~(channels[0] > kSettledSum);
        for (int k = 1; k < kChannels; ++k) open |= ~(channels[k] > kSettledSum);
        return !Any(open);
    }

    // Lanes in which they are not lost.
    I32v Open(const F32v* values) const {
        I32v open = ~(weights > kSettledWeights);
        for (int k = 0; k < kChannels; ++k)
            open |= ~(channels[k] > kSettledSum) & (values[k] != 0.0f);
        return open;
    }

    void Add(const F32v* values, F32v w) {
        weights += w;
        for (int k = 0; k < kChannels; ++k) channels[k] += values[k] * w;
    }
};

// One row of the windows.
template <int kChannels, bool kFit> struct WindowRow {
    const JbiColumns& columns;
    ptrdiff_t first;
    const Windows& windows;
    const Group& group;
    const uint8_t* const* samples;
    float rowDistance;

    // The exponent of a sample of each window, and its channels.
    F32v Exponent(int c, F32v* values) const {
        const F32v distance = Load<F32v>(columns.distance[c] + first) + rowDistance;
        const F32v sample = windows.template At<kFit>(samples[0], c);
        values[0] = sample;
        if constexpr (kChannels > 1)
            for (int k = 0; k < kChannels; ++k)
                values[k] = windows.template At<kFit>(samples[1 + k], c);
        const F32v d = group.guide - sample;
        return (d * d) * group.factor / group.divisor + distance * group.scale;
    }

    // For settled sums: any weight as small will do for those beyond the tables.
    void AddTable(const JbiExponential& exponential, Sums<kChannels>& sums) const {
        const F32v last = Splat(kTableEnd - 1.0f);
        for (int c = 0; c < kJbiWindow; ++c) {
            F32v values[kChannels];
            const F32v t = Smaller(Exponent(c, values), last);
            sums.Add(values, TableWeights(t, exponential.coarse));
        }
    }

    // For any sums and, if kOdd, any exponents.
    template <bool kOdd>
    void AddAll(const JbiExponential& exponential, Sums<kChannels>& sums) const {
        for (int c = 0; c < kJbiWindow; ++c) {
            F32v values[kChannels];
            const F32v t = Exponent(c, values);
            I32v inside = t < kTableEnd;
            if constexpr (kOdd) inside &= t > -1.0f;
            F32v weights = Masked(TableWeights(Masked(t, inside), exponential.coarse), inside);
            if constexpr (kOdd) {
                weights = RuntimeWeights(t, weights, ~inside, exponential);
            } else {
                const I32v open = ~inside & (t < kZero) & sums.Open(values);
                if (Any(open)) weights = (F32v)((I32v)weights | ((I32v)FarWeights(t) & open));
            }
            sums.Add(values, weights);
        }
    }
};

// The quotients as bytes, 0 where they are not numbers.
inline I32v Bytes(F32v sum, F32v weights) {
    const F32v v = sum / weights;
    const F32v number = Masked(v, v == v);
    return Truncate(number > 255.0f ? Splat(255.0f) : number);
}

template <int kChannels, bool kFit>
inline void AddPixels(const JbiColumns& columns, ptrdiff_t first, const JbiRow& row,
                      const Windows& windows, const JbiExponential& exponential, uint8_t* to) {
    const Group group = {Load<F32v>(row.guide + first), Load<F32v>(row.factor + first),
                         Load<F32v>(row.divisor + first), Load<F32v>(columns.scale + first)};
    Sums<kChannels> sums;
    for (int r = 0; r < row.rows; ++r) {
        const WindowRow<kChannels, kFit> windowRow = {columns, first,          windows,
                                                      group,   row.samples[r], row.distance[r]};
        if (row.odd)
            windowRow.template AddAll<true>(exponential, sums);
        else if (sums.Settled())
            windowRow.AddTable(exponential, sums);
        else
            windowRow.template AddAll<false>(exponential, sums);
    }
    I32v pixels = Bytes(sums.channels[0], sums.weights);
    for (int k = 1; k < kChannels; ++k) pixels |= Bytes(sums.channels[k], sums.weights) << (8 * k);
    if constexpr (kChannels == 4) {
        Store(to, pixels);
    } else {
        const U32v words = (U32v)pixels;
        const U8v bytes = PackBytes(words, words, words, words);
        std::memcpy(to, &bytes, kLanes32);
    }
}

template <int kChannels>
void Row(const JbiColumns& columns, const JbiRow& row, const JbiExponential& exponential,
         uint8_t* dst) {
    for (ptrdiff_t i = 0; i < columns.count; i += kLanes32) {
        uint8_t pixels[kLanes32 * kChannels];
        const Windows windows(columns.index + i);
        if (windows.Fit())
            AddPixels<kChannels, kHasByteShuffle>(columns, i, row, windows, exponential, pixels);
        else
            AddPixels<kChannels, false>(columns, i, row, windows, exponential, pixels);
        const ptrdiff_t left = columns.count - i;
        if (left >= kLanes32)
            std::memcpy(dst + kChannels * i, pixels, sizeof pixels);
        else
            std::memcpy(dst + kChannels * i, pixels, static_cast<size_t>(kChannels * left));
    }
}

void Prepare(const uint8_t* above, const uint8_t* row, const uint8_t* below, ptrdiff_t count,
             float* guide, float* factor) {
    const auto difference = [](int a, int b) { return a > b ? a - b : b - a; };
    for (ptrdiff_t i = 0; i < count; ++i) {
        const int gradient = difference(below[i], above[i]) + difference(row[i + 1], row[i - 1]);
        guide[i] = row[i];
        factor[i] = gradient <= 50 ? 10.0f * kUnit : kUnit;
    }
}

void Split(const uint8_t* pixels, ptrdiff_t count, uint8_t* const channels[4]) {
    uint8_t* const b = channels[0];
    uint8_t* const g = channels[1];
    uint8_t* const r = channels[2];
    uint8_t* const a = channels[3];
    for (ptrdiff_t i = 0; i < count; ++i) {
        b[i] = pixels[4 * i];
        g[i] = pixels[4 * i + 1];
        r[i] = pixels[4 * i + 2];
        a[i] = pixels[4 * i + 3];
    }
}

void WindowSums(const uint8_t* const rows[kJbiWindow], ptrdiff_t count, int32_t* sums) {
    for (ptrdiff_t i = 0; i < count; ++i) {
        int32_t sum = 0;
        for (int r = 0; r < kJbiWindow; ++r)
            for (int c = 0; c < kJbiWindow; ++c) sum += rows[r][i + c];
        sums[i] = sum;
    }
}

// In the order of the window's columns, and of the rows within each.
inline F32v Variances(const uint8_t* const rows[kJbiWindow], I32v sums) {
    const F32v mean = ToFloat(sums) * 0.04f;
    F32v variance = {};
    for (int c = 0; c < kJbiWindow; ++c)
        for (int r = 0; r < kJbiWindow; ++r) {
            const F32v t = ToFloat(LoadWidened(rows[r] + c)) - mean;
            variance += t * t;
        }
    return variance * 0.02f;
}

void VarianceRow(const uint8_t* const rows[kJbiWindow], const int32_t* sums, ptrdiff_t count,
                 float* variances) {
    ptrdiff_t i = 0;
    for (; i + kLanes32 <= count; i += kLanes32) {
        const uint8_t* at[kJbiWindow];
        for (int r = 0; r < kJbiWindow; ++r) at[r] = rows[r] + i;
        Store(variances + i, Variances(at, Load<I32v>(sums + i)));
    }
    if (i == count) return;
    const size_t left = static_cast<size_t>(count - i);
    uint8_t bytes[kJbiWindow][kLanes32 + kJbiWindow - 1] = {};
    const uint8_t* at[kJbiWindow];
    for (int r = 0; r < kJbiWindow; ++r) {
        std::memcpy(bytes[r], rows[r] + i, left + kJbiWindow - 1);
        at[r] = bytes[r];
    }
    I32v lastSums = {};
    std::memcpy(&lastSums, sums + i, 4 * left);
    const F32v lastVariances = Variances(at, lastSums);
    std::memcpy(variances + i, &lastVariances, 4 * left);
}

float Weight(float e, const JbiExponential& exponential) {
    const float t = e * -kUnit;
    if (t > -1.0f && t < kTableEnd) return TableWeights(Splat(t), exponential.coarse)[0];
    if (t >= kTableEnd && t < kZero) return FarWeights(Splat(t))[0];
    return exponential.runtime(e);
}

}  // namespace

namespace tq::TQ_ISA {
const JbiKernels jbiKernels = {Row<1>, Row<4>, Prepare, Split, WindowSums, VarianceRow, Weight};
}  // namespace tq::TQ_ISA
