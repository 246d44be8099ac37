// Gauss of any radius.

#include <tqipl/filter.h>
#include <tqipl/image_memory.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "filter/filter_tables.h"
#include "filter/gauss_kernels.h"
#include "filter/in_place.h"
#include "filter/wrapped_quotient.h"
#include "frame/isa.h"
#include "frame/scratch.h"

namespace {

constexpr const tq::GaussKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(gaussKernels);

// Weights fall with the distance only, so the rows above and below the middle that have the same
// ones are added first, and then the columns to the left and right: a quarter of the products.
class GaussFilter {
public:
    GaussFilter(const CZFilterTables& tables, int width, int height)
        : m_kernels(tq::SelectKernels(kKernels)),
          m_width(width),
          m_height(height),
          m_reachX(std::min(tables.m_nRadius2D, width - 1)),
          m_reachY(std::min(tables.m_nRadius2D, height - 1)),
          m_weightCount((ptrdiff_t{m_reachX} + 2) / 2 * 2),
          m_stride(2 * m_weightCount + width + tq::kGaussStep),
          m_columnMemory(int64_t{m_reachY} + 1, m_stride * int64_t{sizeof(uint16_t)}),
          m_weightMemory(int64_t{m_reachY} + 1, m_weightCount * int64_t{sizeof(int16_t)}),
          m_sums(static_cast<size_t>(width + tq::kGaussStep)),
          m_rows(static_cast<size_t>(m_reachY) + 1) {
        const ptrdiff_t side = 2 * ptrdiff_t{tables.m_nRadius2D} + 1;
        const int* space = tables.IPL_BilateralSpaceTable2D.get();
        for (ptrdiff_t i = 0; i < side * side; ++i) m_total += space[i];

        auto* columns = reinterpret_cast<uint16_t*>(m_columnMemory.Data());
        auto* weights = reinterpret_cast<int16_t*>(m_weightMemory.Data());
        std::fill_n(columns, (ptrdiff_t{m_reachY} + 1) * m_stride, uint16_t{0});
        for (ptrdiff_t dy = 0; dy <= m_reachY; ++dy) {
            const int* from = space + side * side / 2 + dy * side;
            int16_t* to = weights + dy * m_weightCount;
            for (ptrdiff_t dx = 0; dx < m_weightCount; ++dx)
                to[dx] = static_cast<int16_t>(dx <= m_reachX ? from[dx] : 0);
            m_rows[static_cast<size_t>(dy)] = {columns + dy * m_stride + m_weightCount, to};
        }
    }

    void Run(int srcStride, const unsigned char* src, int dstStride, unsigned char* dst) {
        for (ptrdiff_t y = 0; y < m_height; ++y) {
            const auto row = [&](ptrdiff_t i) {
                return i < 0 || i >= m_height ? nullptr : src + i * srcStride;
            };
            for (ptrdiff_t dy = 0; dy <= m_reachY; ++dy) {
                const tq::GaussRow& sum = m_rows[static_cast<size_t>(dy)];
                m_kernels.addRows(row(y - dy), dy == 0 ? nullptr : row(y + dy),
                                  const_cast<uint16_t*>(sum.sums), m_width);
            }
            m_kernels.weigh(m_rows.data(), m_reachY + 1, m_weightCount, m_sums.data(), m_width);
            Divide(dst + y * dstStride);
        }
    }

private:
    void Divide(unsigned char* dst) const {
        const int divisor = static_cast<int>(static_cast<uint32_t>(m_total));
        if (m_total <= INT32_MAX / 255) {  // no sum wraps, however bright the image
            m_kernels.divide(m_sums.data(), divisor, dst, m_width);
            return;
        }
        for (int x = 0; x < m_width; ++x)
            dst[x] = static_cast<unsigned char>(
                tq::WrappedQuotient(m_sums[static_cast<size_t>(x)], divisor));
    }

    const tq::GaussKernels& m_kernels;
    const int m_width, m_height;
    const int m_reachX, m_reachY;
    const ptrdiff_t m_weightCount;  // even, the last one 0 if need be
    const ptrdiff_t m_stride;
    const tq::Scratch m_columnMemory, m_weightMemory;
    std::vector<uint32_t> m_sums;
    std::vector<tq::GaussRow> m_rows;
    int64_t m_total = 0;  // of all weights
};

}  // namespace

void IPL_Gauss_8u_C1R(int width, int height, int srcStride, unsigned char* src, int dstStride,
                      unsigned char* dst, int radius) {
    CZFilterTables::MakeSure();
    if (width < 1 || height < 1) return;
    if (radius == 0) {
        std::memmove(dst, src, static_cast<size_t>(width) * static_cast<size_t>(height));
        return;
    }
    if (radius < 0) {
        IPL_ZeroMemory_C1R(width, height, dstStride, dst);
        return;
    }
    GaussFilter(CZFilterTables::ForGauss(radius), width, height)
        .Run(srcStride, src, dstStride, dst);
}

void IPL_Gauss_8u_C1R(int width, int height, int stride, unsigned char* image, int radius) {
    tq::FilterInPlace(width, height, stride, image, [=](unsigned char* buffer) {
        IPL_Gauss_8u_C1R(width, height, stride, image, width, buffer, radius);
    });
}
