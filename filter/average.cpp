// The mean of a square of pixels.

#include <tqipl/filter.h>

#include <cstring>
#include <vector>

#include "filter/average_kernels.h"
#include "filter/filter_tables.h"
#include "filter/in_place.h"
#include "filter/windowed.h"
#include "frame/isa.h"

namespace {

constexpr const tq::AverageKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(averageKernels);

// All filtered rows, from running sums of the columns.
template <class Sum>
void FilterRows(const tq::WindowedImages& images, const tq::AverageColumns<Sum>& columns,
                tq::AverageRow<Sum> row) {
    const ptrdiff_t side = ptrdiff_t{2} * images.radius + 1;
    const ptrdiff_t rows = images.FilteredRows();
    const ptrdiff_t filtered = images.FilteredColumns();
    const ptrdiff_t summed = filtered + side - 1;
    const auto padded = static_cast<size_t>(summed + tq::kAveragePadding);
    std::vector<Sum> sums(padded);
    std::vector<uint32_t> prefix(padded);
    for (ptrdiff_t y = 0; y < side; ++y) columns.gain(sums.data(), images.SrcRow(y), summed);
    for (ptrdiff_t y = 0; y < rows; ++y) {
        if (y > 0)
            columns.move(sums.data(), images.SrcRow(y + side - 1), images.SrcRow(y - 1), summed);
        row(sums.data(), prefix.data(), images.radius,
            images.DstRow(images.radius + y) + images.radius, filtered);
    }
}

}  // namespace

void IPL_Average_8u_C1R(int width, int height, int srcStride, unsigned char* src, int dstStride,
                        unsigned char* dst, int radius) {
    CZFilterTables::MakeSure();
    const tq::WindowedImages images = {width, height, srcStride, src, dstStride, dst, radius};
    if (!images.Usable()) return;
    if (radius == 0) {
        std::memmove(dst, src, static_cast<size_t>(width) * static_cast<size_t>(height));
        return;
    }
    tq::CopyBorderRows(images);
    if (images.FilteredRows() < 1 || images.FilteredColumns() < 1) return;
    const tq::AverageKernels& kernels = tq::SelectKernels(kKernels);
    if (radius <= tq::kNarrowAverageRadius)
        FilterRows(images, kernels.columns16, kernels.narrow[radius - 1]);
    else if (radius <= tq::kFloatAverageRadius)
        FilterRows(images, kernels.columns16, kernels.byFloat);
    else
        FilterRows(images, kernels.columns32, kernels.byDouble);
}

void IPL_Average_8u_C1R(int width, int height, int stride, unsigned char* image, int radius) {
    tq::FilterInPlace(width, height, stride, image, [=](unsigned char* buffer) {
        IPL_Average_8u_C1R(width, height, stride, image, width, buffer, radius);
    });
}
