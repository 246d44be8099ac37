// Kernels of the TFI zoom. Compiled once per instruction-set level, with TQ_ISA naming the level's
// namespace.

#include "zoom/tfi_kernels.h"

#include "frame/simd.h"

namespace {

using tq::TFIBlend;
using tq::TFIColumns;
using tq::TFIRow;
using tq::TFISamples;
using tq::TFIWindows;

constexpr float kLog2E = 1.44269504f;

inline F32v Larger(F32v a, F32v b) { return a > b ? a : b; }

// 2 to the power of t within 2^-22 of it, for t from -120 to 0.
inline F32v PowerOfTwo(F32v t) {
    const I32v whole = Truncate(t - 0.5f);
    const F32v part = t - ToFloat(whole);
    F32v power = part * 0.00132764725f + 0.00967554096f;
    power = power * part + 0.0555071309f;
    power = power * part + 0.240221202f;
    power = power * part + 0.693146944f;
    power = power * part + 1.00000012f;
    return (F32v)((U32v)power + ((U32v)whole << 23));
}

// Lanes as signed numbers.
inline U16v Absolute(U16v v) {
    using I16v = int16_t __attribute__((vector_size(kVectorBytes)));
    const U16v sign = (U16v)((I16v)v >> 15);
    return (v ^ sign) - sign;
}

// The sums of the absolute gradients, and of the absolute curvatures, of kLanes16 samples: at most
// 4080 and 2040.
struct Differences {
    U16v first, second;

    Differences(const uint8_t* above, const uint8_t* own, const uint8_t* below) {
        const U16v a = LoadWidened16(above - 1), b = LoadWidened16(above),
                   c = LoadWidened16(above + 1);
        const U16v d = LoadWidened16(own - 1), e = LoadWidened16(own), f = LoadWidened16(own + 1);
        const U16v g = LoadWidened16(below - 1), h = LoadWidened16(below),
                   i = LoadWidened16(below + 1);
        const U16v across = f - d, down = h - b, fall = i - a, rise = c - g;
        first = Absolute(2 * across + (c - a) + (i - g)) + Absolute(2 * down + (g - a) + (i - c)) +
                Absolute(2 * fall + down + across) + Absolute(2 * rise - down + across);
        const U16v twice = 2 * e;
        second = Absolute(d + f - twice) + Absolute(b + h - twice) + Absolute(a + i - twice) +
                 Absolute(c + g - twice);
    }
};

inline void StoreSamples(I32v value, I32v first, I32v second, float* values, float* activities,
                         float* weights) {
    const F32v activity = (ToFloat(first) * 0.4f + ToFloat(second) * 0.6f) / 255.0f;
    Store(values, ToFloat(value));
    Store(activities, activity);
    Store(weights, PowerOfTwo(activity * (-0.6f * kLog2E)));
}

inline void SampleVector(const uint8_t* above, const uint8_t* own, const uint8_t* below,
                         float* value, float* activity, float* weight) {
    const Differences differences(above, own, below);
    I32v values[2], firsts[2], seconds[2];
    WidenSigned(LoadWidened16(own), values[0], values[1]);
    WidenSigned(differences.first, firsts[0], firsts[1]);
    WidenSigned(differences.second, seconds[0], seconds[1]);
    for (int k = 0; k < 2; ++k)
        StoreSamples(values[k], firsts[k], seconds[k], value + k * kLanes32,
                     activity + k * kLanes32, weight + k * kLanes32);
}

void Sample(const uint8_t* above, const uint8_t* own, const uint8_t* below, ptrdiff_t count,
            float* value, float* activity, float* weight) {
    ptrdiff_t i = 0;
    for (; i + kLanes16 <= count; i += kLanes16)
        SampleVector(above + i, own + i, below + i, value + i, activity + i, weight + i);
    if (i >= count) return;
    uint8_t rows[3][kLanes16 + 2] = {};
    const size_t bytes = static_cast<size_t>(count - i + 2);
    std::memcpy(rows[0], above + i - 1, bytes);
    std::memcpy(rows[1], own + i - 1, bytes);
    std::memcpy(rows[2], below + i - 1, bytes);
    float results[3][kLanes16];
    SampleVector(rows[0] + 1, rows[1] + 1, rows[2] + 1, results[0], results[1], results[2]);
    const size_t left = static_cast<size_t>(count - i) * sizeof(float);
    std::memcpy(value + i, results[0], left);
    std::memcpy(activity + i, results[1], left);
    std::memcpy(weight + i, results[2], left);
}

constexpr ptrdiff_t Padded(ptrdiff_t count) {
    return (count + tq::kTFIPadding - 1) / tq::kTFIPadding * tq::kTFIPadding;
}

// Both samples of kLanes32 columns out of an array.
class Picker {
public:
    explicit Picker(const int32_t* index)
        : m_index(index),
          m_first(index[0]),
          m_order((Load<I32v>(index) - index[0]) & (kLanes32 - 1)),
          m_isInSecond(Load<I32v>(index) - index[0] >= kLanes32),
          m_vectors((index[kLanes32 - 1] - index[0]) / kLanes32 + 1) {}

    void Pick(const float* from, F32v& left, F32v& right) const {
        if (m_vectors <= 2) {
            left = PickNear(from + m_first);
            right = PickNear(from + m_first + 1);
            return;
        }
        for (ptrdiff_t lane = 0; lane < kLanes32; ++lane) {
            left[lane] = from[m_index[lane]];
            right[lane] = from[m_index[lane] + 1];
        }
    }

private:
    F32v PickNear(const float* from) const {
        const F32v first = PickLanes(from, m_order);
        if (m_vectors == 1) return first;
        return m_isInSecond ? PickLanes(from + kLanes32, m_order) : first;
    }

    const int32_t* m_index;
    ptrdiff_t m_first;
    I32v m_order;
    I32v m_isInSecond;
    ptrdiff_t m_vectors;  // of neighbouring samples that hold all left ones
};

void Place(const TFIColumns& columns, const TFISamples& samples, TFIRow& row) {
    for (ptrdiff_t i = 0; i < Padded(columns.count); i += kLanes32) {
        const Picker picker(columns.index + i);
        F32v left{}, right{}, leftActivity{}, rightActivity{}, leftWeight{}, rightWeight{};
        picker.Pick(samples.value, left, right);
        picker.Pick(samples.activity, leftActivity, rightActivity);
        picker.Pick(samples.weight, leftWeight, rightWeight);
        leftWeight *= Load<F32v>(columns.leftPosition + i);
        rightWeight *= Load<F32v>(columns.rightPosition + i);
        Store(row.left + i, left);
        Store(row.right + i, right);
        Store(row.leftActivity + i, leftActivity);
        Store(row.rightActivity + i, rightActivity);
        Store(row.leftWeight + i, leftWeight);
        Store(row.rightWeight + i, rightWeight);
        Store(row.weight + i, leftWeight + rightWeight);
        Store(row.weighted + i, left * leftWeight + right * rightWeight);
    }
}

// 1 / den from the sums of four samples and of their squares; 0 where the spread is. All but the
// quotient and its divisor are whole numbers below 2^24.
struct Variance {
    // 16 times the variance v; den is 30 * (v / 2)^2.
    static F32v InverseDen(F32v sum, F32v squares) {
        const F32v v = squares * 4.0f - sum * sum;
        return v == 0.0f ? F32v{} : 1024.0f / 30.0f / (v * v);
    }
};
struct Deviation {
    // The mean square m is truncated, and den is 30 * m / 4.
    static F32v InverseDen(F32v sum, F32v squares) {
        const F32v mean = ToFloat(Truncate(sum * 0.25f));
        const F32v v = squares - mean * (sum + sum - mean * 4.0f);
        const F32v m = ToFloat(Truncate(v * 0.25f));
        return m == 0.0f ? F32v{} : 1.0f / 7.5f / m;
    }
};

template <class Spread>
void Measure(ptrdiff_t count, const TFIRow& upper, const TFIRow& lower, TFIWindows& windows) {
    for (ptrdiff_t i = 0; i < Padded(count); i += kLanes32) {
        const F32v a = Load<F32v>(upper.left + i), b = Load<F32v>(upper.right + i);
        const F32v c = Load<F32v>(lower.left + i), d = Load<F32v>(lower.right + i);
        const F32v inverse = Spread::InverseDen(a + b + c + d, a * a + b * b + c * c + d * d);
        const F32v range =
            Larger(Larger(a, b), Larger(c, d)) - Smaller(Smaller(a, b), Smaller(c, d));
        const F32v activity =
            Larger(Larger(Load<F32v>(upper.leftActivity + i), Load<F32v>(upper.rightActivity + i)),
                   Larger(Load<F32v>(lower.leftActivity + i), Load<F32v>(lower.rightActivity + i)));
        const F32v k = activity * inverse * (range + 1.0f);
        const F32v bound = range * (k * ((range + 1.0f) * 0x1p-15f + 0x1p-9f) + 1.6e-5f) + 1e-3f;
        Store(windows.factor + i, inverse * -kLog2E);
        const I32v isEven = (range == 0.0f) & (activity == 0.0f);
        Store(windows.bound + i, isEven ? F32v{} - 1.0f : bound);
    }
}

// All that TopBits gives.
constexpr uint32_t kEveryBit = static_cast<uint32_t>((uint64_t{1} << kVectorBytes) - 1);

// A row in the making, kLanes32 columns at a time.
class Blender {
public:
    Blender(const TFIBlend& blend, int32_t* unsure)
        : m_columns(*blend.columns),
          m_upper(*blend.upper),
          m_lower(*blend.lower),
          m_windows(*blend.windows),
          m_upperPosition(blend.upperPosition),
          m_lowerPosition(blend.lowerPosition),
          m_unsure(unsure) {}

    // The results of the columns from i on, truncated. Columns that are not sure are listed.
    I32v Bytes(ptrdiff_t i) {
        const F32v bound = Load<F32v>(m_windows.bound + i);
        const I32v isEven = bound < 0.0f;
        const uint32_t evenBits = TopBits((U8v)isEven);
        F32v mean{};
        if (evenBits != kEveryBit) mean = NearMean(i);
        if (evenBits != 0) mean = isEven ? EvenMean(i) : mean;
        const I32v whole = Truncate(mean);
        // A bound below 0 leaves only what is not a number.
        const F32v part = mean - ToFloat(whole);
        List(i, ~TopBits((U8v)((part >= bound) & (part <= 1.0f - bound))) & kEveryBit);
        return whole;
    }

    ptrdiff_t UnsureCount() const { return m_unsureCount; }

private:
    F32v NearMean(ptrdiff_t i) const {
        const F32v factor = Load<F32v>(m_windows.factor + i);
        const F32v weight = Load<F32v>(m_upper.weight + i) * m_upperPosition +
                            Load<F32v>(m_lower.weight + i) * m_lowerPosition;
        const F32v weighted = Load<F32v>(m_upper.weighted + i) * m_upperPosition +
                              Load<F32v>(m_lower.weighted + i) * m_lowerPosition;
        const F32v first = weighted / weight;
        const auto row = [&](const TFIRow& r, float position, F32v& rowWeight, F32v& rowWeighted) {
            const F32v a = Load<F32v>(r.left + i), b = Load<F32v>(r.right + i);
            const F32v toA = a - first, toB = b - first;
            const F32v weightA = Load<F32v>(r.leftWeight + i) *
                                 PowerOfTwo(toA * toA * (Load<F32v>(r.leftActivity + i) * factor));
            const F32v weightB = Load<F32v>(r.rightWeight + i) *
                                 PowerOfTwo(toB * toB * (Load<F32v>(r.rightActivity + i) * factor));
            rowWeight = (weightA + weightB) * position;
            rowWeighted = (a * weightA + b * weightB) * position;
        };
        F32v upperWeight, upperWeighted, lowerWeight, lowerWeighted;
        row(m_upper, m_upperPosition, upperWeight, upperWeighted);
        row(m_lower, m_lowerPosition, lowerWeight, lowerWeighted);
        return (upperWeighted + lowerWeighted) / (upperWeight + lowerWeight);
    }

    // The steps where all activities are 0 and the samples equal: all weights are positions.
    F32v EvenMean(ptrdiff_t i) const {
        const F32v value = Load<F32v>(m_upper.left + i);
        const F32v left = Load<F32v>(m_columns.leftPosition + i);
        const F32v right = Load<F32v>(m_columns.rightPosition + i);
        const F32v a = left * m_upperPosition, b = right * m_upperPosition;
        const F32v c = left * m_lowerPosition, d = right * m_lowerPosition;
        const F32v mean = (value * a + value * b + value * c + value * d) / (a + b + c + d);
        return mean > 255.0f ? F32v{} + 255.0f : mean;
    }

    // Of the columns from i on those whose four bits are set.
    void List(ptrdiff_t i, uint32_t bits) {
        while (bits != 0) {
            const int bit = __builtin_ctz(bits);
            bits &= ~(0xFu << bit);
            if (i + bit / 4 < m_columns.count)
                m_unsure[m_unsureCount++] = static_cast<int32_t>(i + bit / 4);
        }
    }

    const TFIColumns& m_columns;
    const TFIRow& m_upper;
    const TFIRow& m_lower;
    const TFIWindows& m_windows;
    float m_upperPosition;
    float m_lowerPosition;
    int32_t* m_unsure;
    ptrdiff_t m_unsureCount = 0;
};

ptrdiff_t Blend(const TFIBlend& blend, uint8_t* dst, int32_t* unsure) {
    Blender blender(blend, unsure);
    const ptrdiff_t count = blend.columns->count;
    for (ptrdiff_t i = 0; i < count; i += kVectorBytes) {
        const I32v a = blender.Bytes(i), b = blender.Bytes(i + kLanes32);
        const I32v c = blender.Bytes(i + 2 * kLanes32), d = blender.Bytes(i + 3 * kLanes32);
        const U8v bytes = PackHeld(a, b, c, d);
        const ptrdiff_t left = count - i;
        std::memcpy(dst + i, &bytes,
                    static_cast<size_t>(left < kVectorBytes ? left : kVectorBytes));
    }
    return blender.UnsureCount();
}

}  // namespace

namespace tq::TQ_ISA {
const TFIKernels tfiKernels = {Sample, Place, Measure<Variance>, Measure<Deviation>, Blend};
}  // namespace tq::TQ_ISA
