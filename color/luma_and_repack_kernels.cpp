// Row kernels of Y extraction and of RGB/BGRA repacking. Compiled once per instruction-set level,
// with TQ_ISA naming the level's namespace.

#include "color/luma_and_repack_kernels.h"

#include "frame/simd.h"

namespace {

// Bytes kFirst, kFirst + 2, ... of pixels of two bytes.
template <int kFirst> void EverySecond(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    InSteps<kVectorBytes, 2, 1>(src, dst, count, [](const uint8_t* from, uint8_t* to) {
        const auto byte = [](U16v w) { return kFirst == 0 ? w & 0xFF : w >> 8; };
        Store(to, PackBytes(byte(Load<U16v>(from)), byte(Load<U16v>(from + kVectorBytes))));
    });
}

// Bytes kFirst, kFirst + 4, ... of pairs of four bytes.
template <int kFirst> void EveryFourth(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs) {
    InSteps<kVectorBytes, 4, 1>(src, dst, pairs, [](const uint8_t* from, uint8_t* to) {
        const auto byte = [from](ptrdiff_t k) {
            return (Load<U32v>(from + kVectorBytes * k) >> (8 * kFirst)) & 0xFF;
        };
        Store(to, PackBytes(byte(0), byte(1), byte(2), byte(3)));
    });
}

// Three bytes the other way round, and a zero behind them.
inline uint32_t Reverse(uint32_t pixel) { return __builtin_bswap32(pixel) >> 8; }

constexpr U8x16 kReverseFromThree = {2, 1, 0, 0x80, 5, 4, 3, 0x80, 8, 7, 6, 0x80, 11, 10, 9, 0x80};
constexpr U8x16 kReverseFromFour = {2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, 0, 0, 0, 0};

void AddZeroAlpha(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    ptrdiff_t i = 0;
    if constexpr (kHasByteShuffle) {
        for (; 3 * i + 16 <= 3 * count; i += 4)
            Store(dst + 4 * i, ShuffleBytes(Load<U8x16>(src + 3 * i), kReverseFromThree));
    }
    // A load of four bytes ends within the next pixel.
    for (; i + 1 < count; ++i) Store(dst + 4 * i, Reverse(Load<uint32_t>(src + 3 * i)));
    uint32_t last = 0;
    std::memcpy(&last, src + 3 * i, 3);
    Store(dst + 4 * i, Reverse(last));
}

void DropAlpha(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    ptrdiff_t i = 0;
    // A store of sixteen or of four bytes ends within pixels that are written next.
    if constexpr (kHasByteShuffle) {
        for (; 3 * i + 16 <= 3 * count; i += 4)
            Store(dst + 3 * i, ShuffleBytes(Load<U8x16>(src + 4 * i), kReverseFromFour));
    }
    for (; i + 1 < count; ++i) Store(dst + 3 * i, Reverse(Load<uint32_t>(src + 4 * i)));
    const uint32_t last = Reverse(Load<uint32_t>(src + 4 * i));
    std::memcpy(dst + 3 * i, &last, 3);
}

}  // namespace

namespace tq::TQ_ISA {
const LumaAndRepackKernels lumaAndRepackKernels = {
    EverySecond<0>, EverySecond<1>, EveryFourth<0>, EveryFourth<1>, AddZeroAlpha, DropAlpha,
};
}  // namespace tq::TQ_ISA
