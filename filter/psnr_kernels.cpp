// Row kernels of the sums of squared differences. Compiled once per instruction-set level, with
// TQ_ISA naming the level's namespace.
//
// Each float addition rounds to a multiple of 2^exponent, halves to even. As long as the sum stays
// in its binade that is integer arithmetic on the mantissa, in which an addend counts the same
// whatever the mantissa is, except one that ends in exactly a half: it is rounded so that the
// mantissa becomes even. A block of addends is therefore their truncated or rounded counts, summed
// in any order, plus one for each half that met an odd mantissa.

#include "filter/psnr_kernels.h"

#include "frame/simd.h"

namespace {

using tq::FloatSum;

constexpr uint32_t kMantissaEnd = 1 << 24;
constexpr ptrdiff_t kBlock = 64;

// Squares are below 2^16. From here on each is less than half a unit.
constexpr int kLastExponent = 16;

// Bit i: the exclusive or of bits 0 to i.
inline uint64_t PrefixParity(uint64_t bits) {
    for (int shift = 1; shift < 64; shift *= 2) bits ^= bits << shift;
    return bits;
}

// At each place the bit of `values` at the nearest set bit of `places` below it; `first` where
// there is none.
inline uint64_t ValueBelow(uint64_t values, uint64_t places, uint64_t first) {
    uint64_t result = (values & places) << 1 | first;
    uint64_t known = places << 1 | 1;
    for (int shift = 1; shift < 64; shift *= 2) {
        result |= (result << shift) & ~known;
        known |= known << shift;
    }
    return result;
}

inline uint32_t CountBits(uint64_t bits) {
    bits -= bits >> 1 & 0x5555555555555555;
    bits = (bits & 0x3333333333333333) + (bits >> 2 & 0x3333333333333333);
    bits = (bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0F;
    return static_cast<uint32_t>(bits * 0x0101010101010101 >> 56);
}

// The literal form: one addition after the other.
void AddOneByOne(const uint8_t* differences, FloatSum& sum) {
    float value = static_cast<float>(sum.mantissa) * static_cast<float>(1 << sum.exponent);
    for (ptrdiff_t i = 0; i < kBlock; ++i) {
        const int difference = differences[i];
        value += static_cast<float>(difference * difference);
    }
    if (value < static_cast<float>(kMantissaEnd)) {
        sum = {static_cast<uint32_t>(value), 0};
        return;
    }
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    sum = {(bits & 0x7FFFFF) | 0x800000, static_cast<int>(bits >> 23) - 150};
}

inline uint32_t SumOfLanes(U32v v) {
    uint32_t lanes[kLanes32];
    Store(lanes, v);
    uint32_t sum = 0;
    for (ptrdiff_t i = 0; i < kLanes32; ++i) sum += lanes[i];
    return sum;
}

inline U32v AddHalves(U32v total, U16v v) { return total + ((U32v)v & 0xFFFF) + ((U32v)v >> 16); }

struct Squares {
    U16v even, odd;
    explicit Squares(U8v differences) {
        const U16v pairs = (U16v)differences;
        even = (pairs & 0xFF) * (pairs & 0xFF);
        odd = (pairs >> 8) * (pairs >> 8);
    }
};

// The mantissa behind a block without halves.
inline uint32_t AddWhole(const uint8_t* differences, uint32_t mantissa) {
    U32v total = {};
    for (ptrdiff_t i = 0; i < kBlock; i += kVectorBytes) {
        const Squares squares(Load<U8v>(differences + i));
        total = AddHalves(AddHalves(total, squares.even), squares.odd);
    }
    return mantissa + SumOfLanes(total);
}

// Squares in units of 2^exponent, halves truncated.
struct Counts {
    U16v count;
    U16v half;  // all ones where there was a half
    Counts(U16v squares, int exponent) {
        const auto one = static_cast<uint16_t>(1u << (exponent - 1));
        const auto mask = static_cast<uint16_t>((2u << (exponent - 1)) - 1);
        half = (U16v)((squares & mask) == one);
        count = (((squares >> (exponent - 1)) + 1) >> 1) + half;
    }
};

// The same at an exponent of 1 to kLastExponent.
inline uint32_t AddRounded(const uint8_t* differences, uint32_t start, int exponent) {
    U32v total = {};
    uint64_t odd = 0, half = 0;
    for (ptrdiff_t i = 0; i < kBlock; i += kVectorBytes) {
        const Squares squares(Load<U8v>(differences + i));
        const Counts a(squares.even, exponent), b(squares.odd, exponent);
        total = AddHalves(AddHalves(total, a.count), b.count);
        const U16v halves = (a.half >> 8) | (b.half << 8);
        const U16v lowest = ((a.count << 7) & 0x80) | (b.count << 15);
        half |= static_cast<uint64_t>(TopBits((U8v)halves)) << i;
        odd |= static_cast<uint64_t>(TopBits((U8v)lowest)) << i;
    }
    const uint32_t mantissa = start + SumOfLanes(total);
    if (half == 0) return mantissa;
    // A half goes up if the counts since the half before it, which left an even mantissa, come to
    // an odd number; the first one, if they do together with the mantissa.
    const uint64_t parity = PrefixParity(odd);
    return mantissa + CountBits((parity ^ ValueBelow(parity, half, start & 1)) & half);
}

inline void AddBlock(const uint8_t* differences, FloatSum& sum) {
    if (sum.exponent > kLastExponent) return;
    const uint32_t mantissa = sum.exponent == 0
                                  ? AddWhole(differences, sum.mantissa)
                                  : AddRounded(differences, sum.mantissa, sum.exponent);
    // Sums never fall: one that ends in its binade has not left it.
    if (mantissa < kMantissaEnd)
        sum.mantissa = mantissa;
    else
        AddOneByOne(differences, sum);
}

// Calls block(a, b) for each kBytes of two rows, the last ones filled up with equal bytes, which
// add nothing.
template <ptrdiff_t kBytes, class Block>
inline void InBlocks(const uint8_t* a, const uint8_t* b, ptrdiff_t bytes, Block block) {
    ptrdiff_t i = 0;
    for (; i + kBytes <= bytes; i += kBytes) block(a + i, b + i);
    if (i >= bytes) return;
    uint8_t lastA[kBytes] = {}, lastB[kBytes] = {};
    std::memcpy(lastA, a + i, static_cast<size_t>(bytes - i));
    std::memcpy(lastB, b + i, static_cast<size_t>(bytes - i));
    block(lastA, lastB);
}

void Plane(const uint8_t* a, const uint8_t* b, ptrdiff_t count, FloatSum& sum) {
    FloatSum total = sum;
    InBlocks<kBlock>(a, b, count, [&total](const uint8_t* blockA, const uint8_t* blockB) {
        uint8_t differences[kBlock];
        for (ptrdiff_t i = 0; i < kBlock; i += kVectorBytes)
            Store(differences + i,
                  AbsoluteDifference(Load<U8v>(blockA + i), Load<U8v>(blockB + i)));
        AddBlock(differences, total);
    });
    sum = total;
}

void Yuyv(const uint8_t* a, const uint8_t* b, ptrdiff_t pairs, FloatSum (&sums)[3]) {
    FloatSum sumY = sums[0], sumU = sums[1], sumV = sums[2];
    InBlocks<4 * kBlock>(a, b, 4 * pairs, [&](const uint8_t* blockA, const uint8_t* blockB) {
        uint8_t y[2 * kBlock], u[kBlock], v[kBlock];
        for (ptrdiff_t i = 0; i < kBlock; i += kVectorBytes) {
            U16v words[4];
            for (ptrdiff_t k = 0; k < 4; ++k) {
                const ptrdiff_t at = 4 * i + k * kVectorBytes;
                words[k] = (U16v)AbsoluteDifference(Load<U8v>(blockA + at), Load<U8v>(blockB + at));
            }
            Store(y + 2 * i, PackBytes(words[0] & 0xFF, words[1] & 0xFF));
            Store(y + 2 * i + kVectorBytes, PackBytes(words[2] & 0xFF, words[3] & 0xFF));
            const U16v first = (U16v)PackBytes(words[0] >> 8, words[1] >> 8);
            const U16v second = (U16v)PackBytes(words[2] >> 8, words[3] >> 8);
            Store(u + i, PackBytes(first & 0xFF, second & 0xFF));
            Store(v + i, PackBytes(first >> 8, second >> 8));
        }
        AddBlock(y, sumY);
        AddBlock(y + kBlock, sumY);
        AddBlock(u, sumU);
        AddBlock(v, sumV);
    });
    sums[0] = sumY;
    sums[1] = sumU;
    sums[2] = sumV;
}

}  // namespace

namespace tq::TQ_ISA {
const PsnrKernels psnrKernels = {Plane, Yuyv};
}  // namespace tq::TQ_ISA
