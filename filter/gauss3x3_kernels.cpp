// Row kernel of the 3x3 Gaussian. Compiled once per instruction-set level, with TQ_ISA naming the
// level's namespace.

#include "filter/gauss3x3_kernels.h"

#include "frame/simd.h"

namespace {

constexpr ptrdiff_t kChunk = 1024;

// Weighted sums of the columns of a chunk, those at even and those at odd places.
struct Columns {
    uint16_t even[kChunk / 2 + 2 * kLanes16];
    uint16_t odd[kChunk / 2 + 2 * kLanes16];
};

inline void SumColumns(U8v above, U8v middle, U8v below, ptrdiff_t x, Columns& columns) {
    const U16v a = (U16v)above, m = (U16v)middle, b = (U16v)below;
    Store(columns.even + x / 2, (a & 0xFF) + (b & 0xFF) + ((m & 0xFF) << 1));
    Store(columns.odd + x / 2, (a >> 8) + (b >> 8) + ((m >> 8) << 1));
}

inline U8v Weigh(const Columns& columns, ptrdiff_t x) {
    const U16v first = Load<U16v>(columns.even + x / 2);
    const U16v second = Load<U16v>(columns.odd + x / 2);
    const U16v third = Load<U16v>(columns.even + x / 2 + 1);
    const U16v fourth = Load<U16v>(columns.odd + x / 2 + 1);
    const U16v even = (first + third + (second << 1) + 8) >> 4;
    const U16v odd = (second + fourth + (third << 1) + 8) >> 4;
    return (U8v)(even | odd << 8);
}

inline U8v LoadFirst(const uint8_t* from, ptrdiff_t count) {
    U8v v = {};
    std::memcpy(&v, from, static_cast<size_t>(count));
    return v;
}

void Chunk(const uint8_t* above, const uint8_t* middle, const uint8_t* below, uint8_t* dst,
           ptrdiff_t count) {
    Columns columns;
    const ptrdiff_t sums = count + 2;
    ptrdiff_t x = 0;
    for (; x + kVectorBytes <= sums; x += kVectorBytes)
        SumColumns(Load<U8v>(above + x), Load<U8v>(middle + x), Load<U8v>(below + x), x, columns);
    if (x < sums)
        SumColumns(LoadFirst(above + x, sums - x), LoadFirst(middle + x, sums - x),
                   LoadFirst(below + x, sums - x), x, columns);
    for (x = 0; x + kVectorBytes <= count; x += kVectorBytes) Store(dst + x, Weigh(columns, x));
    if (x < count) {
        const U8v last = Weigh(columns, x);
        std::memcpy(dst + x, &last, static_cast<size_t>(count - x));
    }
}

void Row(const uint8_t* above, const uint8_t* middle, const uint8_t* below, uint8_t* dst,
         ptrdiff_t count) {
    for (ptrdiff_t x = 0; x < count; x += kChunk)
        Chunk(above + x, middle + x, below + x, dst + x, count - x < kChunk ? count - x : kChunk);
}

}  // namespace

namespace tq::TQ_ISA {
const Gauss3x3Kernels gauss3x3Kernels = {Row};
}  // namespace tq::TQ_ISA
