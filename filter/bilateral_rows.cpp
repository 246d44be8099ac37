// What the bilateral filters share.

#include "filter/bilateral_rows.h"

namespace {

constexpr const tq::BilateralKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(bilateralKernels);

constexpr int kChunk = 16;
constexpr int kRun = 8;  // chunks whose places a kernel tells apart by their top bit

}  // namespace

const tq::BilateralKernels* tq::FastBilateralKernels() {
    const BilateralKernels& kernels = SelectKernels(kKernels);
    return kernels.direct ? &kernels : nullptr;
}

tq::BilateralRange tq::MakeBilateralRange(const int (&table)[256]) {
    BilateralRange range;
    for (int i = 0; i < 256; ++i) {
        const bool first = i / kChunk % kRun == 0;
        const int weight = first ? table[i] : table[i] ^ table[i - kChunk];
        range.low[i / kChunk][i % kChunk] = static_cast<uint8_t>(weight);
        range.high[i / kChunk][i % kChunk] = static_cast<uint8_t>(weight >> 8);
    }
    range.chunks = 1;
    while (range.chunks <= kRun && table[kChunk * range.chunks - 1] != 0) ++range.chunks;
    if (range.chunks > kRun) range.chunks = 256 / kChunk;
    range.atZero = table[0];
    return range;
}
