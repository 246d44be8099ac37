// The median of a square of pixels.

#include <tqipl/filter.h>
#include <tqipl/image_memory.h>

#include <algorithm>
#include <vector>

#include "filter/filter_tables.h"
#include "filter/in_place.h"
#include "filter/median_kernels.h"
#include "filter/windowed.h"
#include "frame/isa.h"

namespace {

constexpr const tq::MedianKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(medianKernels);

// Histograms are kept for the columns of so many pixels of a row at a time.
constexpr ptrdiff_t kStripColumns = 512;

// The filtered pixels of `count` columns, the first one at index radius + x.
template <class Count>
void FilterStrip(const tq::WindowedImages& images, const tq::HistogramKernels<Count>& kernels,
                 ptrdiff_t x, ptrdiff_t count) {
    const ptrdiff_t side = ptrdiff_t{2} * images.radius + 1;
    const ptrdiff_t columns = count + side - 1;
    std::vector<Count> coarse(static_cast<size_t>(columns) * 16);
    std::vector<Count> fine(static_cast<size_t>(columns) * 256);
    const tq::ColumnHistograms<Count> histograms = {columns, coarse.data(), fine.data()};
    for (ptrdiff_t y = 0; y < side; ++y) kernels.gain(histograms, images.SrcRow(y) + x);
    const ptrdiff_t rows = images.FilteredRows();
    for (ptrdiff_t y = 0; y < rows; ++y) {
        if (y > 0)
            kernels.move(histograms, images.SrcRow(y + side - 1) + x, images.SrcRow(y - 1) + x);
        kernels.row(histograms, images.radius,
                    images.DstRow(images.radius + y) + images.radius + x);
    }
}

template <class Count>
void FilterByHistograms(const tq::WindowedImages& images,
                        const tq::HistogramKernels<Count>& kernels) {
    const ptrdiff_t columns = images.FilteredColumns();
    // Of a wide window a narrow strip would be histogrammed for its margins in the main. Rows that
    // overlap are written one after the other, as by any other method.
    const ptrdiff_t strip = images.dstStride < images.width
                                ? columns
                                : std::max(kStripColumns, ptrdiff_t{4} * images.radius);
    for (ptrdiff_t x = 0; x < columns; x += strip)
        FilterStrip(images, kernels, x, std::min(strip, columns - x));
}

}  // namespace

void IPL_Median_8u_C1R(int width, int height, int srcStride, unsigned char* src, int dstStride,
                       unsigned char* dst, int radius) {
    CZFilterTables::MakeSure();
    const tq::WindowedImages images = {width, height, srcStride, src, dstStride, dst, radius};
    if (!images.Usable()) return;
    if (radius == 0) {
        IPL_Memcpy_C1R(width, height, srcStride, src, dstStride, dst);
        return;
    }
    tq::CopyBorderRows(images);
    if (images.FilteredRows() < 1 || images.FilteredColumns() < 1) return;
    const tq::MedianKernels& kernels = tq::SelectKernels(kKernels);
    if (radius <= tq::kMaxNetworkRadius) {
        for (ptrdiff_t y = 0; y < images.FilteredRows(); ++y)
            kernels.network[radius - 1](images.SrcRow(y), srcStride,
                                        images.DstRow(radius + y) + radius,
                                        images.FilteredColumns());
    } else if (radius <= tq::kMaxRadius16) {
        FilterByHistograms(images, kernels.upToRadius16);
    } else if (radius <= tq::kMaxRadius32) {
        FilterByHistograms(images, kernels.upToRadius32);
    } else {
        FilterByHistograms(images, kernels.anyRadius);
    }
}

void IPL_Median_8u_C1R(int width, int height, int stride, unsigned char* image, int radius) {
    tq::FilterInPlace(width, height, stride, image, [=](unsigned char* buffer) {
        IPL_Median_8u_C1R(width, height, stride, image, width, buffer, radius);
    });
}

void IPL_Median3x3_8u_C1R(int width, int height, int srcStride, unsigned char* src, int dstStride,
                          unsigned char* dst) {
    CZFilterTables::MakeSure();
    if (width < 1 || height < 1 || srcStride == 0 || src == nullptr || dstStride == 0 ||
        dst == nullptr)
        return;
    const ptrdiff_t last = ptrdiff_t{height} - 1;
    IPL_Memcpy_C1R(width, 1, srcStride, src, dstStride, dst);
    IPL_Memcpy_C1R(width, 1, srcStride, src + last * srcStride, dstStride, dst + last * dstStride);
    const tq::MedianKernels& kernels = tq::SelectKernels(kKernels);
    for (ptrdiff_t y = 1; y < last; ++y) {
        const unsigned char* from = src + y * srcStride;
        unsigned char* to = dst + y * dstStride;
        // The row above the last one keeps its ends: kept on purpose.
        if (y + 1 < last) {
            to[0] = from[0];
            to[width - 1] = from[width - 1];
        }
        if (width > 2) kernels.network[0](from - srcStride, srcStride, to + 1, width - 2);
    }
}
