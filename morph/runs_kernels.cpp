// Kernels that find runs in mask rows. Compiled once per instruction-set level, with TQ_ISA naming
// the level's namespace.

#include "morph/runs_kernels.h"

#include "frame/simd.h"

namespace {

constexpr ptrdiff_t kGroup = 64;

// A bit for each byte of a group, the first one's lowest: set where the byte is 0.
inline uint64_t ZeroBits(const uint8_t* bytes) {
    uint64_t bits = 0;
    for (ptrdiff_t i = 0; i < kGroup; i += kVectorBytes)
        bits |= uint64_t{TopBits((U8v)(Load<U8v>(bytes + i) == 0))} << i;
    return bits;
}

// Calls step(bits, size, index) for each group of bytes: a set bit stands for a zero byte. The last
// group may be smaller; its upper bits are clear.
template <class Step> inline void ForEachGroup(const uint8_t* bytes, ptrdiff_t count, Step step) {
    ptrdiff_t i = 0;
    for (; i + kGroup <= count; i += kGroup) step(ZeroBits(bytes + i), kGroup, i);
    if (i >= count) return;
    uint8_t last[kGroup];
    std::memset(last, 1, sizeof last);
    std::memcpy(last, bytes + i, static_cast<size_t>(count - i));
    step(ZeroBits(last), count - i, i);
}

inline uint64_t LowBits(ptrdiff_t size) { return ~uint64_t{0} >> (kGroup - size); }

ptrdiff_t FindEdges(const uint8_t* bytes, ptrdiff_t count, int column, bool zeros, bool inRun,
                    int* edges) {
    const uint64_t flip = zeros ? 0 : ~uint64_t{0};
    uint64_t before = inRun;
    int* next = edges;
    ForEachGroup(bytes, count, [&](uint64_t zeroBits, ptrdiff_t size, ptrdiff_t index) {
        const uint64_t bits = zeroBits ^ flip;
        uint64_t changes = (bits ^ (bits << 1 | before)) & LowBits(size);
        before = bits >> (size - 1) & 1;
        for (; changes != 0; changes &= changes - 1)
            *next++ = column + static_cast<int>(index) + __builtin_ctzll(changes);
    });
    return next - edges;
}

// Not __builtin_popcountll, which is a call where the processor may lack the instruction.
inline uint32_t CountBits(uint64_t bits) {
    bits -= bits >> 1 & 0x5555555555555555;
    bits = (bits & 0x3333333333333333) + (bits >> 2 & 0x3333333333333333);
    bits = (bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0F;
    return static_cast<uint32_t>(bits * 0x0101010101010101 >> 56);
}

tq::NonzeroBytes Measure(const uint8_t* bytes, ptrdiff_t count) {
    tq::NonzeroBytes found{0, -1, -1};
    ForEachGroup(bytes, count, [&](uint64_t zeroBits, ptrdiff_t size, ptrdiff_t index) {
        const uint64_t bits = ~zeroBits & LowBits(size);
        if (bits == 0) return;
        found.count += CountBits(bits);
        if (found.first < 0) found.first = index + __builtin_ctzll(bits);
        found.last = index + kGroup - 1 - __builtin_clzll(bits);
    });
    return found;
}

}  // namespace

namespace tq::TQ_ISA {
const RunsKernels runsKernels = {FindEdges, Measure};
}  // namespace tq::TQ_ISA
