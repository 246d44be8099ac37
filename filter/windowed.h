#pragma once

// What the average and the median of any radius share: which pixels they filter, and the border.

#include <cstddef>
#include <cstdint>

namespace tq {

struct WindowedImages {
    int width, height;
    int srcStride;
    unsigned char* src;
    int dstStride;
    unsigned char* dst;
    int radius;

    bool Usable() const {
        return width > 0 && height > 0 && srcStride > 0 && dstStride > 0 && src != nullptr &&
               dst != nullptr && radius >= 0;
    }
    // Filtered rows and columns; the first of each is at index `radius`. Not above 0: none.
    ptrdiff_t FilteredRows() const { return height - ptrdiff_t{2} * radius - 1; }
    ptrdiff_t FilteredColumns() const { return width - ptrdiff_t{2} * radius - 1; }

    const unsigned char* SrcRow(ptrdiff_t y) const { return src + y * srcStride; }
    unsigned char* DstRow(ptrdiff_t y) const { return dst + y * dstStride; }
};

// Copies the rows above the filtered ones, and as many below them. The last row of the image and
// the columns beside the filtered ones keep what dst held: kept on purpose. Of a radius beyond the
// image only the rows that exist are copied, and all of them if it reaches the height. The radius
// is 1 or more.
void CopyBorderRows(const WindowedImages& images);

}  // namespace tq
