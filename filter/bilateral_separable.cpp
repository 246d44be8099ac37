// The separable bilateral filter: both passes, their band tasks, the plain and the MultiThread
// form.

#include <tqipl/filter.h>
#include <tqipl/image_memory.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

#include "filter/bilateral_rows.h"
#include "filter/bilateral_tasks.h"
#include "filter/filter_tables.h"
#include "filter/in_place.h"
#include "frame/band.h"
#include "frame/scratch.h"

namespace {

// The kernels, if they serve tables of this radius.
const tq::BilateralKernels* KernelsFor(const CZFilterTables& tables) {
    return tables.m_nRadius1D <= tq::kBilateralSeparableRadius ? tq::FastBilateralKernels()
                                                               : nullptr;
}

// A tap's part in both sums. What differs by 255 or more weighs alike: values may be any number
// where nothing wrote them.
class TapSums {
public:
    TapSums(const CZFilterTables& tables, int centre)
        : m_space(tables.IPL_BilateralSpaceTable1D.get()),
          m_range(tables.IPL_BilateralRangeTable1024),
          m_centre(centre) {}
    void Add(int value, ptrdiff_t distance) {
        const unsigned a = static_cast<unsigned>(value), b = static_cast<unsigned>(m_centre);
        const unsigned difference = std::min(value > m_centre ? a - b : b - a, 255u);
        // Weights of at most 90 and 1024: the product does not wrap.
        m_sums.Add(value, m_space[distance] * m_range[difference]);
    }
    int Mean() const { return m_sums.RoundedMean(); }

private:
    const int* m_space;
    const int* m_range;
    int m_centre;
    tq::WindowSums m_sums;
};

constexpr int kLowest = 16, kHighest = 235;
unsigned char Limited(int value) {
    return static_cast<unsigned char>(std::clamp(value, kLowest, kHighest));
}

// The vertical pass by rows of a kernel: the result for row `centre` of a window whose rows are
// `top` to `bottom`.
class VerticalRows {
public:
    VerticalRows(const tq::BilateralKernels& kernels, const CZFilterTables& tables)
        : m_kernels(kernels),
          m_space(tables.IPL_BilateralSpaceTable1D.get()),
          m_radius(tables.m_nRadius1D),
          m_range(tq::MakeBilateralRange(tables.IPL_BilateralRangeTable1024)) {}

    void Filter(const tq::RowRing& rows, int top, int centre, int bottom, ptrdiff_t width,
                unsigned char* dst) const {
        const uint8_t* middle = rows.Row(centre);
        tq::BilateralPair pairs[tq::kBilateralSeparableRadius];
        int count = 0;
        int centreWeight = m_space[0];
        for (int k = 1; k <= m_radius; ++k) {
            const bool above = centre - top >= k, below = bottom - centre >= k;
            if (!above && !below) break;
            if (!above || !below) centreWeight -= m_space[k];
            pairs[count++] = {above ? rows.Row(centre - k) : middle,
                              below ? rows.Row(centre + k) : middle, m_space[k], 0};
        }
        m_kernels.separableLimited(
            {middle, centreWeight, pairs, count, &m_range, 0, width, nullptr, nullptr, width}, dst);
    }

private:
    const tq::BilateralKernels& m_kernels;
    const int* m_space;
    int m_radius;
    tq::BilateralRange m_range;
};

// The horizontal pass by rows of a kernel: of `row`, which has `radius` readable bytes on both
// sides. Windows are full from fullBegin to fullEnd - 1, and elsewhere as firstTap and lastTap say.
class HorizontalRows {
public:
    HorizontalRows(const tq::BilateralKernels& kernels, const CZFilterTables& tables)
        : m_kernels(kernels),
          m_centreWeight(tables.IPL_BilateralSpaceTable1D[0]),
          m_radius(tables.m_nRadius1D),
          m_range(tq::MakeBilateralRange(tables.IPL_BilateralRangeTable1024)) {
        for (int k = 1; k <= m_radius; ++k)
            m_pairs[k - 1] = {nullptr, nullptr, tables.IPL_BilateralSpaceTable1D[k], k};
    }

    void Filter(const uint8_t* row, ptrdiff_t width, ptrdiff_t fullBegin, ptrdiff_t fullEnd,
                const int8_t* firstTap, const int8_t* lastTap, uint8_t* dst) {
        for (int k = 1; k <= m_radius; ++k) {
            m_pairs[k - 1].first = row - k;
            m_pairs[k - 1].second = row + k;
        }
        m_kernels.separable({row, m_centreWeight, m_pairs, m_radius, &m_range, fullBegin, fullEnd,
                             firstTap, lastTap, width},
                            dst);
    }

private:
    const tq::BilateralKernels& m_kernels;
    int m_centreWeight;
    int m_radius;
    tq::BilateralRange m_range;
    tq::BilateralPair m_pairs[tq::kBilateralSeparableRadius];
};

// The plain form's image, with the windows that its right border has.
struct PlainImages {
    int width, height;
    int srcStride;
    const unsigned char* src;
    int dstStride;
    unsigned char* dst;
    int radius;

    const unsigned char* SrcRow(int y) const { return src + ptrdiff_t{y} * srcStride; }
    unsigned char* DstRow(int y) const { return dst + ptrdiff_t{y} * dstStride; }

    // Bytes from the start of a row to the end of the image's memory.
    ptrdiff_t Readable(int y) const {
        const ptrdiff_t rows = srcStride > 0 ? height - y : y + 1;
        return rows * std::abs(ptrdiff_t{srcStride});
    }
    // Distance of a column's first and last tap. The last one near the right border is no clipping:
    // it grows with x, leaves the centre out at first, and goes past the row's end. Kept so on
    // purpose.
    ptrdiff_t FirstTap(ptrdiff_t x) const { return -std::min<ptrdiff_t>(x, radius); }
    ptrdiff_t LastTap(ptrdiff_t x) const {
        return x + radius < width ? radius : x + radius - width - 1;
    }
    // Bytes of a row that a window may hold, in the image's memory.
    ptrdiff_t Needed(int y) const {
        const ptrdiff_t reached = ptrdiff_t{width} + std::max(radius - 2, 0);
        return std::min(reached, Readable(y));
    }
};

// Both passes in the plain form's windows, pixel by pixel.
void FilterPixels(const PlainImages& images, const CZFilterTables& tables) {
    const tq::Scratch memory(images.height, int64_t{images.width} * int64_t{sizeof(int)});
    int* const passed = reinterpret_cast<int*>(memory.Data());
    const ptrdiff_t width = images.width;
    for (int y = 0; y < images.height; ++y) {
        const unsigned char* row = images.SrcRow(y);
        const ptrdiff_t readable = images.Readable(y);
        for (ptrdiff_t x = 0; x < width; ++x) {
            TapSums sums(tables, row[x]);
            const ptrdiff_t last = std::min(images.LastTap(x), readable - 1 - x);
            for (ptrdiff_t dx = images.FirstTap(x); dx <= last; ++dx)
                sums.Add(row[x + dx], std::abs(dx));
            passed[y * width + x] = sums.Mean();
        }
    }
    for (int y = 0; y < images.height; ++y)
        for (ptrdiff_t x = 0; x < width; ++x) {
            TapSums sums(tables, passed[y * width + x]);
            const ptrdiff_t top = y - std::min(y, images.radius);
            const ptrdiff_t bottom = y + std::min(images.height - 1 - y, images.radius);
            for (ptrdiff_t i = top; i <= bottom; ++i)
                sums.Add(passed[i * width + x], std::abs(i - y));
            images.DstRow(y)[x] = Limited(sums.Mean());
        }
}

// The same by rows of the kernels. The first pass runs ahead of the second by the radius: with src
// and dst the same image, no row is read that has been written.
class PlainFilter {
public:
    PlainFilter(const tq::BilateralKernels& kernels, const PlainImages& images,
                const CZFilterTables& tables)
        : m_images(images),
          m_reach(std::min(images.radius, images.height - 1)),
          m_horizontal(kernels, tables),
          m_vertical(kernels, tables),
          m_sourceMemory(1, tq::RowRing::RowBytes(images.width, images.radius)),
          m_source(m_sourceMemory.Data(), 1, images.width, images.radius),
          m_passedMemory(2 * int64_t{m_reach} + 1, tq::RowRing::RowBytes(images.width, 0)),
          m_passed(m_passedMemory.Data(), 2 * m_reach + 1, images.width, 0),
          m_firstTap(static_cast<size_t>(images.width) + tq::kBilateralSlack),
          m_lastTap(m_firstTap.size(), -1),
          m_lastTapAtEnd(m_lastTap) {
        for (ptrdiff_t x = 0; x < images.width; ++x) {
            m_firstTap[static_cast<size_t>(x)] = static_cast<int8_t>(images.FirstTap(x));
            m_lastTap[static_cast<size_t>(x)] = static_cast<int8_t>(images.LastTap(x));
        }
    }

    void Run() {
        int passed = 0;
        for (int y = 0; y < m_images.height; ++y) {
            const int top = y - std::min(y, m_reach);
            const int bottom = y + std::min(m_images.height - 1 - y, m_reach);
            while (passed <= bottom) FilterHorizontally(passed++);
            m_vertical.Filter(m_passed, top, y, bottom, m_images.width, m_images.DstRow(y));
        }
    }

private:
    void FilterHorizontally(int y) {
        const ptrdiff_t width = m_images.width, radius = m_images.radius;
        const ptrdiff_t needed = m_images.Needed(y);
        std::memcpy(m_source.Row(0), m_images.SrcRow(y),
                    static_cast<size_t>(std::max(needed, width)));
        const std::vector<int8_t>& lastTap = needed < width + std::max<ptrdiff_t>(radius - 2, 0)
                                                 ? LastTapsWithin(needed)
                                                 : m_lastTap;
        m_horizontal.Filter(m_source.Row(0), width, radius, std::min(width, needed) - radius,
                            m_firstTap.data(), lastTap.data(), m_passed.Row(y));
    }

    const std::vector<int8_t>& LastTapsWithin(ptrdiff_t readable) {
        for (ptrdiff_t x = 0; x < m_images.width; ++x)
            m_lastTapAtEnd[static_cast<size_t>(x)] = static_cast<int8_t>(
                std::max<ptrdiff_t>(std::min(m_images.LastTap(x), readable - 1 - x), INT8_MIN));
        return m_lastTapAtEnd;
    }

    const PlainImages& m_images;
    const int m_reach;
    HorizontalRows m_horizontal;
    const VerticalRows m_vertical;
    const tq::Scratch m_sourceMemory;
    const tq::RowRing m_source;
    const tq::Scratch m_passedMemory;
    const tq::RowRing m_passed;
    // Places past the last column have no tap at all.
    std::vector<int8_t> m_firstTap, m_lastTap, m_lastTapAtEnd;
};

// The first `height` rows of the image continued by the radius on all sides: on the left by its
// first columns in the same order, elsewhere by reflection. The left differs on purpose. Where the
// image is too small for that, its last column or row goes on.
void Pad(int width, int height, int srcStride, const unsigned char* src, int radius, int stride,
         unsigned char* padded) {
    for (ptrdiff_t y = 0; y < height; ++y) {
        const ptrdiff_t image = y < radius ? radius - 1 - y : y - radius;
        const unsigned char* from = src + std::min<ptrdiff_t>(image, height - 1) * srcStride;
        unsigned char* to = padded + y * stride + radius;
        std::memcpy(to, from, static_cast<size_t>(width));
        for (ptrdiff_t k = 0; k < radius; ++k) {
            to[k - radius] = from[std::min<ptrdiff_t>(k, width - 1)];
            to[width + k] = from[std::max<ptrdiff_t>(width - 1 - k, 0)];
        }
    }
}

// Puts the bytes of a row of whole numbers in dst; false if one is no byte.
bool ToBytes(const int* src, int count, uint8_t* dst) {
    unsigned bits = 0;
    for (int x = 0; x < count; ++x) {
        bits |= static_cast<unsigned>(src[x]);
        dst[x] = static_cast<uint8_t>(src[x]);
    }
    return bits < 256;
}

void FilterColumn(const CDoBilateralFilterVTask& task, int x, int y) {
    const ptrdiff_t radius = task.m_pTables->m_nRadius1D;
    const int* middle = task.m_pSrc + (y + radius) * task.m_nSrcStride + x;
    TapSums sums(*task.m_pTables, *middle);
    for (ptrdiff_t dy = -radius; dy <= radius; ++dy)
        sums.Add(middle[dy * task.m_nSrcStride], std::abs(dy));
    task.m_pDst[ptrdiff_t{y} * task.m_nDstStride + x] = Limited(sums.Mean());
}

}  // namespace

int64_t CDoBilateralFilterHTask::ScratchBytes(int64_t columns, int64_t radius) {
    return tq::RowRing::RowBytes(columns, radius) + tq::RowRing::RowBytes(columns, 0);
}

int CDoBilateralFilterHTask::Run() {
    const int radius = m_pTables->m_nRadius1D;
    const ptrdiff_t width = m_nSrcWidth - ptrdiff_t{2} * radius;
    if (m_nSrcHeight < 1 || width < 1) return 1;
    const tq::BilateralKernels* kernels = KernelsFor(*m_pTables);
    if (kernels == nullptr) {
        tq::ForEachRow(m_nSrcHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst,
                       [&](const unsigned char* from, int* to) {
                           for (ptrdiff_t x = 0; x < width; ++x) {
                               TapSums sums(*m_pTables, from[x + radius]);
                               for (ptrdiff_t dx = -radius; dx <= radius; ++dx)
                                   sums.Add(from[x + radius + dx], std::abs(dx));
                               to[x] = sums.Mean();
                           }
                       });
        return 1;
    }
    const tq::RowRing source(m_pScratch, 1, width, radius);
    const tq::RowRing passed(m_pScratch + tq::RowRing::RowBytes(width, radius), 1, width, 0);
    HorizontalRows horizontal(*kernels, *m_pTables);
    tq::ForEachRow(m_nSrcHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst,
                   [&](const unsigned char* from, int* to) {
                       std::memcpy(source.Row(0) - radius, from, static_cast<size_t>(m_nSrcWidth));
                       horizontal.Filter(source.Row(0), width, 0, width, nullptr, nullptr,
                                         passed.Row(0));
                       const uint8_t* values = passed.Row(0);
                       std::copy(values, values + width, to);
                   });
    return 1;
}

int64_t CDoBilateralFilterVTask::ScratchBytes(int64_t columns, int64_t radius) {
    return (2 * radius + 1) * tq::RowRing::RowBytes(columns, 0);
}

int CDoBilateralFilterVTask::Run() {
    const int radius = m_pTables->m_nRadius1D;
    const int64_t height = m_nSrcHeight - int64_t{2} * radius;
    if (m_nSrcWidth < 1) return 1;
    const tq::BilateralKernels* kernels = KernelsFor(*m_pTables);
    if (kernels == nullptr) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < m_nSrcWidth; ++x) FilterColumn(*this, x, y);
        return 1;
    }
    const tq::RowRing rows(m_pScratch, 2 * radius + 1, m_nSrcWidth, 0);
    const VerticalRows vertical(*kernels, *m_pTables);
    // Rows that nothing wrote may hold more than bytes. They are the last ones: from the first such
    // row on, every window holds it.
    int read = 0;
    bool bytes = true;
    for (int y = 0; y < height; ++y) {
        const int last = y + 2 * radius;
        for (; read <= last && bytes; ++read)
            bytes = ToBytes(m_pSrc + ptrdiff_t{read} * m_nSrcStride, m_nSrcWidth, rows.Row(read));
        if (bytes)
            vertical.Filter(rows, y, y + radius, last, m_nSrcWidth,
                            m_pDst + ptrdiff_t{y} * m_nDstStride);
        else
            for (int x = 0; x < m_nSrcWidth; ++x) FilterColumn(*this, x, y);
    }
    return 1;
}

void IPL_BilteralEx_8u_C1R(int width, int height, int srcStride, unsigned char* src, int dstStride,
                           unsigned char* dst, int radius, int sigma) {
    CZFilterTables::MakeSure();
    if (width == 0 || height == 0 || srcStride == 0 || src == nullptr || dstStride == 0 ||
        dst == nullptr || radius == 0 || sigma == 0)
        return;
    if (width < 0 || height < 0) return;
    if (radius < 0) {
        IPL_FillMemory_C1R(width, height, dstStride, dst, kLowest);
        return;
    }
    const CZFilterTables tables = CZFilterTables::ForSeparableBilateral(radius, sigma);
    const PlainImages images{width, height, srcStride, src, dstStride, dst, radius};
    if (const tq::BilateralKernels* kernels = KernelsFor(tables))
        PlainFilter(*kernels, images, tables).Run();
    else
        FilterPixels(images, tables);
}

void IPL_BilteralEx_8u_C1R(int width, int height, int stride, unsigned char* image, int radius,
                           int sigma) {
    tq::FilterInPlace(width, height, stride, image, [=](unsigned char* buffer) {
        IPL_BilteralEx_8u_C1R(width, height, stride, image, width, buffer, radius, sigma);
    });
}

void IPL_BilteralExMutiThread_8u_C1R(int width, int height, int srcStride, unsigned char* src,
                                     int dstStride, unsigned char* dst, int radius, int sigma) {
    CZFilterTables::MakeSure();
    if (width < 1 || height < 1 || srcStride == 0 || dstStride == 0 || src == nullptr ||
        dst == nullptr || radius < 1 || sigma < 1)
        return;
    const int64_t paddedWidth = width + 2 * int64_t{radius};
    const int64_t paddedHeight = height + 2 * int64_t{radius};
    if (paddedWidth > INT32_MAX || paddedHeight > INT32_MAX) throw std::bad_alloc();
    const int stride = static_cast<int>(paddedWidth);
    const CZFilterTables tables = CZFilterTables::ForSeparableBilateral(radius, sigma);
    // The horizontal pass stops at the image's height. The vertical one does not, and reads rows
    // that are never written: kept so on purpose.
    const tq::Scratch padded(height, paddedWidth);
    const tq::Scratch passedMemory(paddedHeight, paddedWidth * int64_t{sizeof(int)});
    int* passed = reinterpret_cast<int*>(passedMemory.Data());
    Pad(width, height, srcStride, src, radius, stride, padded.Data());

    const tq::BandPlan rows = tq::PlanBands(tq::kBandFormC, height);
    const tq::BandPlan columns = tq::PlanBands(tq::kBandFormC, width);
    const int widest = columns.Length(columns.count - 1);
    // Of the kernels, where they serve.
    const int64_t scratchBytes =
        KernelsFor(tables) ? std::max(CDoBilateralFilterHTask::ScratchBytes(width, radius),
                                      CDoBilateralFilterVTask::ScratchBytes(widest, radius))
                           : 0;
    const tq::Scratch scratch(rows.count, scratchBytes);

    tq::TaskSet<CDoBilateralFilterHTask> horizontal;
    for (int i = 0; i < rows.count; ++i) {
        const ptrdiff_t first = ptrdiff_t{i} * rows.length;
        CDoBilateralFilterHTask& task = horizontal.Add();
        task.m_nSrcWidth = stride;
        task.m_nSrcHeight = task.m_nDstHeight = rows.Length(i);
        task.m_nSrcStride = task.m_nDstStride = stride;
        task.m_pSrc = padded.Data() + first * stride;
        task.m_nDstWidth = width;
        task.m_pDst = passed + first * stride;
        task.m_pTables = &tables;
        task.m_pScratch = scratch.Data() + i * scratchBytes;
    }
    horizontal.Run();

    tq::TaskSet<CDoBilateralFilterVTask> vertical;
    for (int i = 0; i < columns.count; ++i) {
        const ptrdiff_t first = ptrdiff_t{i} * columns.length;
        CDoBilateralFilterVTask& task = vertical.Add();
        task.m_nSrcWidth = task.m_nDstWidth = columns.Length(i);
        task.m_nSrcHeight = static_cast<int>(paddedHeight);
        task.m_nSrcStride = stride;
        task.m_pSrc = passed + first;
        task.m_nDstHeight = height;
        task.m_nDstStride = dstStride;
        task.m_pDst = dst + first;
        task.m_pTables = &tables;
        task.m_pScratch = scratch.Data() + i * scratchBytes;
    }
    vertical.Run();
}

void IPL_BilteralExMutiThread_8u_C1R(int width, int height, int stride, unsigned char* image,
                                     int radius, int sigma) {
    tq::FilterInPlace(width, height, stride, image, [=](unsigned char* buffer) {
        IPL_BilteralExMutiThread_8u_C1R(width, height, stride, image, width, buffer, radius, sigma);
    });
}
