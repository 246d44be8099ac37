// Row kernels of planar 4:2:2 and ARGB. Compiled once per instruction-set level, with TQ_ISA naming
// the level's namespace.

#include "color/planar422_kernels.h"

#include "color/packed422_formulas.h"
#include "frame/simd.h"

namespace {

template <class Range>
inline void StepFromPlanes(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst) {
    const PairWords words = LoadPairs<Yuyv>(y, u, v);
    for (ptrdiff_t k = 0; k < kPairVectors; ++k)
        PairsToArgb<Yuyv, Range>(words.w[k], dst + 2 * kVectorBytes * k);
}

template <class Range>
void FromPlanes(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst,
                ptrdiff_t pairs) {
    ptrdiff_t i = 0;
    for (; i + kPairStep <= pairs; i += kPairStep)
        StepFromPlanes<Range>(y + 2 * i, u + i, v + i, dst + 8 * i);
    if (i >= pairs) return;
    const size_t left = static_cast<size_t>(pairs - i);
    uint8_t lastY[2 * kPairStep] = {}, lastU[kPairStep] = {}, lastV[kPairStep] = {};
    uint8_t last[8 * kPairStep];
    std::memcpy(lastY, y + 2 * i, 2 * left);
    std::memcpy(lastU, u + i, left);
    std::memcpy(lastV, v + i, left);
    StepFromPlanes<Range>(lastY, lastU, lastV, last);
    std::memcpy(dst + 8 * i, last, 8 * left);
}

template <const tq::BgrToStudio& kSet>
inline void StepToPlanes(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v) {
    PairWords words;
    for (ptrdiff_t k = 0; k < kPairVectors; ++k)
        words.w[k] = ArgbToPairs<Yuyv, kSet>(src + 2 * kVectorBytes * k);
    StorePairs<Yuyv>(words, y, u, v);
}

template <const tq::BgrToStudio& kSet>
void ToPlanes(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, ptrdiff_t pairs) {
    ptrdiff_t i = 0;
    for (; i + kPairStep <= pairs; i += kPairStep)
        StepToPlanes<kSet>(src + 8 * i, y + 2 * i, u + i, v + i);
    if (i >= pairs) return;
    const size_t left = static_cast<size_t>(pairs - i);
    uint8_t last[8 * kPairStep] = {};
    uint8_t lastY[2 * kPairStep], lastU[kPairStep], lastV[kPairStep];
    std::memcpy(last, src + 8 * i, 8 * left);
    StepToPlanes<kSet>(last, lastY, lastU, lastV);
    std::memcpy(y + 2 * i, lastY, 2 * left);
    std::memcpy(u + i, lastU, left);
    std::memcpy(v + i, lastV, left);
}

}  // namespace

namespace tq::TQ_ISA {
const Planar422Kernels planar422Kernels = {
    FromPlanes<FullRange>,         FromPlanes<Studio601>,         FromPlanes<Studio709>,
    ToPlanes<tq::kBgrToStudio601>, ToPlanes<tq::kBgrToStudio709>,
};
}  // namespace tq::TQ_ISA
