// Row kernels of erosion and dilation. Compiled once per instruction-set level, with TQ_ISA naming
// the level's namespace.

#include "morph/morphology_kernels.h"

#include "frame/simd.h"

namespace {

constexpr ptrdiff_t kWordBits = 64;
constexpr uint64_t kAllBits = ~uint64_t{0};

using U64v = uint64_t __attribute__((vector_size(kVectorBytes)));
constexpr ptrdiff_t kLanes64 = kVectorBytes / 8;
static_assert(tq::kMaskWords % kLanes64 == 0);

// Which bytes get a bit: 255 in a byte of the result.
struct Zero {
    static U8v Of(U8v v) { return (U8v)(v == 0); }
};
struct NotZero {
    static U8v Of(U8v v) { return (U8v)(v != 0); }
};
struct Full {
    static U8v Of(U8v v) { return (U8v)(v == 255); }
};

template <class Test> inline uint64_t PackWord(const uint8_t* src) {
    uint64_t word = 0;
    for (ptrdiff_t i = 0; i < kWordBits; i += kVectorBytes)
        word |= static_cast<uint64_t>(TopBits(Test::Of(Load<U8v>(src + i)))) << i;
    return word;
}

template <class Test> void Pack(const uint8_t* src, ptrdiff_t count, int shift, uint64_t* bits) {
    uint64_t carry = 0;
    const auto put = [&](uint64_t word) {
        *bits++ = word << shift | carry;
        carry = word >> 1 >> (kWordBits - 1 - shift);
    };
    ptrdiff_t i = 0;
    for (; i + kWordBits <= count; i += kWordBits) put(PackWord<Test>(src + i));
    const ptrdiff_t left = count - i;
    if (left > 0) {
        uint8_t last[kWordBits] = {};
        std::memcpy(last, src + i, static_cast<size_t>(left));
        put(PackWord<Test>(last) & kAllBits >> (kWordBits - left));
    }
    const ptrdiff_t carried = left > 0 ? left + shift - kWordBits : shift;
    if (carried > 0) *bits = carry;
}

// Some of the bits of a word, from bit `first` on, as a vector of bytes: 255 where a bit is set.
inline U8v BytesOfBits(uint64_t word, ptrdiff_t first) {
#if defined(__AVX2__)
    const U8v four = (U8v)(U32v{} + static_cast<uint32_t>(word >> first));
    const U8v bytes =
        __builtin_shufflevector(four, four, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 18, 18,
                                18, 18, 18, 18, 18, 18, 19, 19, 19, 19, 19, 19, 19, 19);
#else
    // Each byte is doubled three times.
    const U8v two = (U8v)U32v{static_cast<uint32_t>(word >> first)};
    const U16v pairs = (U16v)__builtin_shufflevector(two, two, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5,
                                                     21, 6, 22, 7, 23);
    const U32v fours = (U32v)__builtin_shufflevector(pairs, pairs, 0, 8, 1, 9, 2, 10, 3, 11);
    const U8v bytes = (U8v)__builtin_shufflevector(fours, fours, 0, 0, 1, 1);
#endif
    const U8v bit = (U8v)(U64v{} + 0x8040201008040201);
    return (U8v)((bytes & bit) == bit);
}

// kUnset is 255 where the operation gives 255 to windows without a bit, else 0.
template <uint8_t kUnset>
void Unpack(const uint64_t* a, const uint64_t* b, uint8_t* dst, ptrdiff_t count) {
    const auto write = [](uint64_t word, uint8_t* to) {
        for (ptrdiff_t i = 0; i < kWordBits; i += kVectorBytes)
            Store(to + i, BytesOfBits(word, i) ^ kUnset);
    };
    for (; count >= kWordBits; count -= kWordBits, dst += kWordBits) write(*a++ | *b++, dst);
    if (count < 1) return;
    uint8_t last[kWordBits];
    write(*a | *b, last);
    std::memcpy(dst, last, static_cast<size_t>(count));
}

// A window of less than a word, which reaches at most one word on: unions of 1, 2, 4 and so on bits
// by shifting, in the word and the next.
void SpreadInWord(const uint64_t* in, ptrdiff_t words, int window, uint64_t* out) {
    int shifts[6];
    int count = 0;
    for (int covered = 1; covered < window; ++count) {
        shifts[count] = 2 * covered <= window ? covered : window - covered;
        covered += shifts[count];
    }
    for (ptrdiff_t k = 0; k < words; k += kLanes64) {
        U64v word = Load<U64v>(in + k);
        U64v next = Load<U64v>(in + k + 1);
        for (int i = 0; i < count; ++i) {
            word |= word >> shifts[i] | next << (kWordBits - shifts[i]);
            next |= next >> shifts[i];
        }
        Store(out + k, word);
    }
}

// All bits up to the highest that is set, from the lowest on, and all if any is.
inline U64v FillDown(U64v word) {
    for (int shift = 1; shift < kWordBits; shift *= 2) word |= word >> shift;
    return word;
}
inline U64v FillUp(U64v word) { return word | (0 - word); }
inline U64v FillAll(U64v word) { return (U64v)(word != 0); }

// A longer window: the end of the word that it begins in, whole words, and the beginning of the
// word or two that it ends in. The cost does not depend on how many words are between.
void SpreadOverWords(const uint64_t* in, ptrdiff_t words, ptrdiff_t window, uint64_t* out) {
    const ptrdiff_t reach = (window - 1) / kWordBits;  // 1 or more
    const int shift = static_cast<int>((window - 1) % kWordBits);
    ptrdiff_t lastSet = 0;  // of the whole words
    for (ptrdiff_t k = 1; k < reach; ++k)
        if (in[k] != 0) lastSet = k;
    for (ptrdiff_t k = 0; k < words; ++k) {
        if (in[k + reach - 1] != 0) lastSet = k + reach - 1;
        out[k] = lastSet > k ? kAllBits : 0;
    }
    for (ptrdiff_t k = 0; k < words; k += kLanes64) {
        const U64v end = Load<U64v>(in + k + reach);
        const U64v next = FillUp(Load<U64v>(in + k + reach + 1)) | FillAll(end);
        Store(out + k, Load<U64v>(out + k) | FillDown(Load<U64v>(in + k)) | FillUp(end) >> shift |
                           next << 1 << (kWordBits - 1 - shift));
    }
}

void Spread(const uint64_t* in, ptrdiff_t words, ptrdiff_t window, uint64_t* out) {
    if (window < kWordBits)
        SpreadInWord(in, words, static_cast<int>(window), out);
    else
        SpreadOverWords(in, words, window, out);
}

void Unite(uint64_t* to, const uint64_t* from, ptrdiff_t words) {
    for (ptrdiff_t k = 0; k < words; k += kLanes64)
        Store(to + k, Load<U64v>(to + k) | Load<U64v>(from + k));
}

}  // namespace

namespace tq::TQ_ISA {
const MorphologyKernels morphologyKernels = {
    {Pack<Zero>, Unpack<255>}, {Pack<NotZero>, Unpack<0>}, {Pack<Full>, Unpack<0>}, Spread, Unite,
};
}  // namespace tq::TQ_ISA
