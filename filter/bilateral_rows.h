#pragma once

// What the bilateral filters share: sums over a window, and rows laid out for the kernels.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "filter/bilateral_kernels.h"
#include "filter/wrapped_quotient.h"
#include "frame/isa.h"

namespace tq {

// The kernels of the level in force, or null if the plain form is the faster.
const BilateralKernels* FastBilateralKernels();

// `table` as kernels read it. It falls with the difference.
BilateralRange MakeBilateralRange(const int (&table)[256]);

// Weights and weighted values of a window, as 32-bit sums that wrap.
class WindowSums {
public:
    void Add(int value, int weight) {
        m_weights += static_cast<uint32_t>(weight);
        m_values += static_cast<uint32_t>(value) * static_cast<uint32_t>(weight);
    }
    int Mean() const { return WrappedQuotient(m_values, static_cast<int>(m_weights)); }
    // An empty window gives 0.
    int RoundedMean() const {
        const int weights = static_cast<int>(m_weights);
        const int divisor = weights < 1 ? 1 : weights;
        return WrappedQuotient(m_values + static_cast<uint32_t>(divisor >> 1), divisor);
    }

private:
    uint32_t m_weights = 0;
    uint32_t m_values = 0;
};

// The last `rows` rows of an image, of `width` bytes each, with readable margins. Rows are found by
// their number in the image.
class RowRing {
public:
    static int64_t RowBytes(int64_t width, int64_t margin) {
        return margin + width + margin + kBilateralSlack;
    }
    // In rows * RowBytes(width, margin) bytes of memory, which are zeroed.
    RowRing(unsigned char* memory, int rows, ptrdiff_t width, ptrdiff_t margin)
        : m_first(memory + margin),
          m_rows(rows),
          m_stride(static_cast<ptrdiff_t>(RowBytes(width, margin))) {
        std::memset(memory, 0, static_cast<size_t>(m_rows * m_stride));
    }
    uint8_t* Row(int y) const { return m_first + y % m_rows * m_stride; }

private:
    uint8_t* m_first;
    int m_rows;
    ptrdiff_t m_stride;
};

}  // namespace tq
