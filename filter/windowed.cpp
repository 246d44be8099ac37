// The border of the average and of the median of any radius.

#include "filter/windowed.h"

#include <tqipl/image_memory.h>

#include <algorithm>

void tq::CopyBorderRows(const WindowedImages& images) {
    const auto copy = [&images](int begin, int end) {
        for (int y = begin; y < end; ++y)
            IPL_Memcpy_C1R(images.width, 1, images.srcStride,
                           images.src + ptrdiff_t{y} * images.srcStride, images.dstStride,
                           images.DstRow(y));
    };
    copy(0, std::min(images.radius, images.height));
    copy(std::max(images.height - images.radius - 1, 0), images.height - 1);
}
