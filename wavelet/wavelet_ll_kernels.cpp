// Kernels of the low band. Compiled once per instruction-set level, with TQ_ISA naming the level's
// namespace.

#include "wavelet/wavelet_ll_kernels.h"

#include "wavelet/wavelet_formulas.h"

namespace {

constexpr int kRounding = 32, kShift = 6;

// Two vectors of lanes that hold what a sample can, as one of samples.
inline U8v Pack(U16v a, U16v b) { return PackBytes(a, b); }
inline U16v Pack(U32v a, U32v b) { return LowHalves(a, b); }

template <class Samples> void RowPass(const uint8_t* src, ptrdiff_t samples, void* values) {
    using Value = typename Samples::Value;
    constexpr ptrdiff_t kPair = 2 * kSampleBytes<Samples>;
    Value* const to = static_cast<Value*>(values);
    const auto around = [&](ptrdiff_t centre) {
        const auto at = [&](ptrdiff_t i) {
            return SampleAt<Samples>(src, tq::Mirrored(centre + i, samples));
        };
        return static_cast<Value>(LowPass(at(-2), at(-1), at(0), at(1), at(2)));
    };
    const ptrdiff_t count = samples >> 1;
    to[0] = around(0);
    if (count == 1) return;
    to[count - 1] = around(samples - 2);
    ForEachPlace<Samples::kLanes>(
        count - 2,
        [&](ptrdiff_t i) {
            const uint8_t* const from = src + kPair * i;
            const Pairs<Samples> before = LoadPairs<Samples>(from),
                                 own = LoadPairs<Samples>(from + kPair);
            const auto after = LoadPairs<Samples>(from + 2 * kPair).even;
            Store(to + i + 1, LowPass(before.even, before.odd, own.even, own.odd, after));
        },
        [&](ptrdiff_t i) { to[i + 1] = around(2 * (i + 1)); });
}

template <class Samples>
void ColumnPass(const void* const* rows, ptrdiff_t count, int low, int high, uint8_t* dst) {
    using Sample = typename Samples::Sample;
    using Value = typename Samples::Value;
    using Lanes = typename Samples::Lanes;
    using Signed = typename Samples::SignedLanes;
    const auto row = [&](int i) { return static_cast<const Value*>(rows[i]); };
    const Value *const a = row(0), *const b = row(1), *const c = row(2), *const d = row(3),
                       *const e = row(4);
    const Signed lows = Signed{} + static_cast<Value>(low);
    const Signed highs = Signed{} + static_cast<Value>(high);
    const auto lanes = [&](ptrdiff_t i) {
        const Lanes sum = LowPass(Load<Lanes>(a + i), Load<Lanes>(b + i), Load<Lanes>(c + i),
                                  Load<Lanes>(d + i), Load<Lanes>(e + i));
        return (Lanes)Limit((Signed)(sum + kRounding) >> kShift, lows, highs);
    };
    ForEachPlace<2 * Samples::kLanes>(
        count,
        [&](ptrdiff_t i) {
            Store(dst + kSampleBytes<Samples> * i, Pack(lanes(i), lanes(i + Samples::kLanes)));
        },
        [&](ptrdiff_t i) {
            const auto number = [](Value v) { return static_cast<uint32_t>(v); };
            const uint32_t sum =
                LowPass(number(a[i]), number(b[i]), number(c[i]), number(d[i]), number(e[i]));
            const int v = static_cast<int>(sum + kRounding) >> kShift;
            Store(dst + kSampleBytes<Samples> * i, static_cast<Sample>(Limit(v, low, high)));
        });
}

template <class Samples>
constexpr tq::LowBandForm kForm = {kSampleBytes<Samples>, sizeof(typename Samples::Value),
                                   RowPass<Samples>, ColumnPass<Samples>};

}  // namespace

namespace tq::TQ_ISA {
const WaveletLlKernels waveletLlKernels = {kForm<ByteSamples>, kForm<WordSamples>};
}  // namespace tq::TQ_ISA
