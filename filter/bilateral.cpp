// The direct bilateral filter.

#include <tqipl/filter.h>
#include <tqipl/image_memory.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "filter/bilateral_rows.h"
#include "filter/filter_tables.h"
#include "filter/in_place.h"
#include "frame/scratch.h"

namespace {

struct Images {
    int width, height;
    int srcStride;
    const unsigned char* src;
    int dstStride;
    unsigned char* dst;
    const unsigned char* SrcRow(int y) const { return src + ptrdiff_t{y} * srcStride; }
    unsigned char* DstRow(int y) const { return dst + ptrdiff_t{y} * dstStride; }
};

// Weights by distance, from the middle of their table.
class SpaceWeights {
public:
    explicit SpaceWeights(const CZFilterTables& tables)
        : m_side(2 * ptrdiff_t{tables.m_nRadius2D} + 1),
          m_centre(&tables.IPL_BilateralSpaceTable2D[m_side * m_side / 2]) {}
    int At(ptrdiff_t dx, ptrdiff_t dy) const { return m_centre[dy * m_side + dx]; }

private:
    ptrdiff_t m_side;
    const int* m_centre;
};

void FilterPixels(const Images& images, const CZFilterTables& tables) {
    const SpaceWeights space(tables);
    const int radius = tables.m_nRadius2D;
    for (int y = 0; y < images.height; ++y) {
        const int top = -std::min(y, radius);
        const int bottom = std::min(images.height - 1 - y, radius);
        for (int x = 0; x < images.width; ++x) {
            const unsigned char* at = images.SrcRow(y) + x;
            const int left = -std::min(x, radius);
            const int right = std::min(images.width - 1 - x, radius);
            tq::WindowSums sums;
            for (ptrdiff_t dy = top; dy <= bottom; ++dy)
                for (ptrdiff_t dx = left; dx <= right; ++dx) {
                    const int value = at[dy * images.srcStride + dx];
                    // Two weights of at most 1024 and 100: the product does not wrap.
                    sums.Add(value, space.At(dx, dy) *
                                        tables.IPL_BilateralRangeTable100[std::abs(value - *at)]);
                }
            images.DstRow(y)[x] = static_cast<unsigned char>(std::min(sums.Mean(), 255));
        }
    }
}

// The same by rows of a kernel, which reads rows with margins.
class RowFilter {
public:
    RowFilter(const tq::BilateralKernels& kernels, const Images& images,
              const CZFilterTables& tables)
        : m_kernels(kernels),
          m_images(images),
          m_space(tables),
          m_reachX(std::min(tables.m_nRadius2D, images.width - 1)),
          m_reachY(std::min(tables.m_nRadius2D, images.height - 1)),
          m_range(tq::MakeBilateralRange(tables.IPL_BilateralRangeTable100)),
          m_memory(2 * int64_t{m_reachY} + 1, tq::RowRing::RowBytes(images.width, m_reachX)),
          m_rows(m_memory.Data(), 2 * m_reachY + 1, images.width, m_reachX),
          m_firstTap(static_cast<size_t>(images.width) + tq::kBilateralSlack),
          m_lastTap(m_firstTap.size(), -1) {
        for (int x = 0; x < images.width; ++x) {
            m_firstTap[static_cast<size_t>(x)] = static_cast<int8_t>(-std::min(x, m_reachX));
            m_lastTap[static_cast<size_t>(x)] =
                static_cast<int8_t>(std::min(images.width - 1 - x, m_reachX));
        }
    }

    void Run() {
        int read = 0;
        for (int y = 0; y < m_images.height; ++y) {
            for (const int end = std::min(m_images.height - y, m_reachY + 1) + y; read < end;
                 ++read)
                std::memcpy(m_rows.Row(read), m_images.SrcRow(read),
                            static_cast<size_t>(m_images.width));
            FilterRow(y);
        }
    }

private:
    void FilterRow(int y) {
        const uint8_t* centre = m_rows.Row(y);
        int centreWeight = m_space.At(0, 0);
        m_pairs.clear();
        const int top = -std::min(y, m_reachY);
        const int bottom = std::min(m_images.height - 1 - y, m_reachY);
        for (int dy = top; dy <= bottom; ++dy) {
            const uint8_t* row = m_rows.Row(y + dy);
            for (int dx = 1; dx <= m_reachX; ++dx)
                m_pairs.push_back({row - dx, row + dx, m_space.At(dx, dy), dx});
            const bool paired = top <= -dy && -dy <= bottom;
            if (dy == 0 || (paired && dy > 0)) continue;
            const int weight = m_space.At(0, dy);
            if (!paired) centreWeight -= weight;
            m_pairs.push_back({row, paired ? m_rows.Row(y - dy) : centre, weight, 0});
        }
        if (m_pairs.size() % 2 != 0) m_pairs.push_back({centre, centre, 0, 0});
        m_kernels.direct({centre, centreWeight, m_pairs.data(), static_cast<int>(m_pairs.size()),
                          &m_range, m_reachX, m_images.width - m_reachX, m_firstTap.data(),
                          m_lastTap.data(), m_images.width},
                         m_images.DstRow(y));
    }

    const tq::BilateralKernels& m_kernels;
    const Images& m_images;
    const SpaceWeights m_space;
    const int m_reachX, m_reachY;
    const tq::BilateralRange m_range;
    const tq::Scratch m_memory;
    const tq::RowRing m_rows;
    // Places past the last column have no tap at all.
    std::vector<int8_t> m_firstTap, m_lastTap;
    std::vector<tq::BilateralPair> m_pairs;
};

}  // namespace

void IPL_Bilteral_8u_C1R(int width, int height, int srcStride, unsigned char* src, int dstStride,
                         unsigned char* dst, int radius, int sigma) {
    CZFilterTables::MakeSure();
    if (radius == 0 || sigma == 0) {
        IPL_Memcpy_C1R(width, height, srcStride, src, dstStride, dst);
        return;
    }
    if (width < 1 || height < 1) return;
    if (radius < 0) {
        IPL_ZeroMemory_C1R(width, height, dstStride, dst);
        return;
    }
    const CZFilterTables tables = CZFilterTables::ForDirectBilateral(radius, sigma);
    const Images images{width, height, srcStride, src, dstStride, dst};
    const tq::BilateralKernels* kernels = tq::FastBilateralKernels();
    if (kernels && radius <= tq::kBilateralDirectRadius)
        RowFilter(*kernels, images, tables).Run();
    else
        FilterPixels(images, tables);
}

void IPL_Bilteral_8u_C1R(int width, int height, int stride, unsigned char* image, int radius,
                         int sigma) {
    tq::FilterInPlace(width, height, stride, image, [=](unsigned char* buffer) {
        IPL_Bilteral_8u_C1R(width, height, stride, image, width, buffer, radius, sigma);
    });
}
