// Row kernels of the progressive-to-interlaced family. Compiled once per instruction-set level,
// with TQ_ISA naming the level's namespace.

#include "wavelet/p2i_kernels.h"

#include "wavelet/wavelet_formulas.h"

namespace {

template <class Samples>
void Filter(const uint8_t* const* rows, ptrdiff_t count, const tq::P2iRange& range, uint8_t* dst) {
    using Value = typename Samples::Value;
    using Lanes = typename Samples::Lanes;
    using Signed = typename Samples::SignedLanes;
    constexpr ptrdiff_t kBytes = kSampleBytes<Samples>;
    const uint8_t *const a = rows[0], *const b = rows[1], *const c = rows[2], *const d = rows[3],
                         *const e = rows[4];
    const Signed rounding = Signed{} + static_cast<Value>(range.rounding);
    const Signed low = Signed{} + static_cast<Value>(range.low);
    const Signed high = Signed{} + static_cast<Value>(range.high);
    const auto finish = [&](Lanes sum) {
        return (Lanes)Limit(((Signed)sum + rounding) >> 3, low, high);
    };
    ForEachPlace<2 * Samples::kLanes>(
        count,
        [&](ptrdiff_t i) {
            const ptrdiff_t at = kBytes * i;
            const Pairs<Samples> va = LoadPairs<Samples>(a + at), vb = LoadPairs<Samples>(b + at),
                                 vc = LoadPairs<Samples>(c + at), vd = LoadPairs<Samples>(d + at),
                                 ve = LoadPairs<Samples>(e + at);
            StorePairs<Samples>(dst + at,
                                {finish(LowPass(va.even, vb.even, vc.even, vd.even, ve.even)),
                                 finish(LowPass(va.odd, vb.odd, vc.odd, vd.odd, ve.odd))});
        },
        [&](ptrdiff_t i) {
            const uint32_t sum =
                LowPass(SampleAt<Samples>(a, i), SampleAt<Samples>(b, i), SampleAt<Samples>(c, i),
                        SampleAt<Samples>(d, i), SampleAt<Samples>(e, i));
            const int v = (static_cast<int>(sum) + range.rounding) >> 3;
            Store(dst + kBytes * i,
                  static_cast<typename Samples::Sample>(Limit(v, range.low, range.high)));
        });
}

}  // namespace

namespace tq::TQ_ISA {
const P2iKernels p2iKernels = {Filter<ByteSamples>, Filter<WordSamples>};
}  // namespace tq::TQ_ISA
