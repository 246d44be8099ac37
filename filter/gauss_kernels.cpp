// Row kernels of Gauss of any radius. Compiled once per instruction-set level, with TQ_ISA naming
// the level's namespace.

#include "filter/gauss_kernels.h"

#include "frame/simd.h"

namespace {

using tq::GaussRow;

constexpr ptrdiff_t kStep = tq::kGaussStep;
static_assert(kStep % kLanes16 == 0);

void AddRows(const uint8_t* first, const uint8_t* second, uint16_t* sums, ptrdiff_t count) {
    if (first == nullptr || second == nullptr) {
        const uint8_t* only = first ? first : second;
        for (ptrdiff_t x = 0; x < count; ++x) sums[x] = only ? only[x] : 0;
        return;
    }
    for (ptrdiff_t x = 0; x < count; ++x) sums[x] = static_cast<uint16_t>(first[x] + second[x]);
}

// In the order of AlternateLow and AlternateHigh.
struct Sums {
    U32v low, high;
};

// Two weights at once: those of the columns at distances k and k + 1. Four pixels at most are in a
// sum, and weights are 1024 at most, so no product leaves 32 bits.
inline void AddColumns(U16v inner, U16v outer, const int16_t* weights, Sums& sums) {
    const U16v pair = (U16v)(U32v{} + Load<uint32_t>(weights));
    sums.low += SumProducts(AlternateLow(inner, outer), pair);
    sums.high += SumProducts(AlternateHigh(inner, outer), pair);
}

inline U16v Both(const uint16_t* middle, ptrdiff_t k) {
    return Load<U16v>(middle - k) + Load<U16v>(middle + k);
}

// The four lanes that AlternateLow and AlternateHigh took from each 16 bytes, back in order.
inline void StoreSums(uint32_t* to, Sums sums) {
#if defined(__AVX2__)
    Store(to, _mm256_permute2x128_si256((__m256i)sums.low, (__m256i)sums.high, 0x20));
    Store(to + kLanes32, _mm256_permute2x128_si256((__m256i)sums.low, (__m256i)sums.high, 0x31));
#else
    Store(to, sums.low);
    Store(to + kLanes32, sums.high);
#endif
}

void Weigh(const GaussRow* rows, ptrdiff_t rowCount, ptrdiff_t weightCount, uint32_t* sums,
           ptrdiff_t count) {
    constexpr int kParts = kStep / kLanes16;
    for (ptrdiff_t x = 0; x < count; x += kStep) {
        Sums parts[kParts] = {};
        for (ptrdiff_t i = 0; i < rowCount; ++i) {
            const int16_t* weights = rows[i].weights;
            const uint16_t* at = rows[i].sums + x;
            for (int p = 0; p < kParts; ++p) {
                const uint16_t* middle = at + p * kLanes16;
                AddColumns(Load<U16v>(middle), Both(middle, 1), weights, parts[p]);
                for (ptrdiff_t k = 2; k < weightCount; k += 2)
                    AddColumns(Both(middle, k), Both(middle, k + 1), weights + k, parts[p]);
            }
        }
        for (int p = 0; p < kParts; ++p) StoreSums(sums + x + p * kLanes16, parts[p]);
    }
}

void Divide(const uint32_t* sums, int divisor, uint8_t* dst, ptrdiff_t count) {
    const I32v divisors = I32v{} + divisor;
    InSteps<kVectorBytes, 4, 1>(
        reinterpret_cast<const uint8_t*>(sums), dst, count, [&](const uint8_t* from, uint8_t* to) {
            U32v quotients[4];
            for (int i = 0; i < 4; ++i)
                quotients[i] = (U32v)Quotients(Load<I32v>(from + i * kVectorBytes), divisors);
            Store(to, PackBytes(quotients[0], quotients[1], quotients[2], quotients[3]));
        });
}

}  // namespace

namespace tq::TQ_ISA {
const GaussKernels gaussKernels = {AddRows, Weigh, Divide};
}  // namespace tq::TQ_ISA
