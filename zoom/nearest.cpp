// Zoom by the nearest neighbour.

#include <tqipl/zoom.h>

#include <cstring>
#include <vector>

#include "frame/exact_math.h"
#include "zoom/geometry.h"

namespace {

// Unlike the other methods there is no copy shortcut, and a cleared destination may be written
// over: a source without columns or rows still gives its first one. Kept on purpose.
template <int kPixelBytes> void ZoomNearest(const tq::ZoomImages& images) {
    if (images.src == nullptr || images.dst == nullptr) return;
    if (images.srcWidth < 1 || images.srcHeight < 1) tq::ClearDestination(images, kPixelBytes);
    if (images.srcWidth < 0 || images.srcHeight < 0) return;
    if (images.dstWidth < 1 || images.dstHeight < 1) return;

    const double scaleX =
        static_cast<double>(images.srcWidth) / static_cast<double>(images.dstWidth);
    const double scaleY =
        static_cast<double>(images.srcHeight) / static_cast<double>(images.dstHeight);
    // An index times its scale stays below the source's length, which is an int.
    const size_t columnCount = static_cast<size_t>(images.dstWidth);
    std::vector<int> columns(columnCount);
    for (int i = 0; i < images.dstWidth; ++i)
        columns[static_cast<size_t>(i)] = static_cast<int>(static_cast<double>(i) * scaleX);

    const unsigned char* previousRow = nullptr;
    unsigned char* previousOut = nullptr;
    for (int j = 0; j < images.dstHeight; ++j) {
        const int y = static_cast<int>(static_cast<double>(j) * scaleY);
        const unsigned char* row = images.src + tq::Mul32(y, images.srcStride);
        unsigned char* out = images.dst + tq::Mul32(j, images.dstStride);
        if (row == previousRow) {
            std::memmove(out, previousOut, columnCount * kPixelBytes);
        } else {
#pragma GCC unroll 4
            for (size_t i = 0; i < columnCount; ++i)
                std::memcpy(out + i * kPixelBytes, row + ptrdiff_t{kPixelBytes} * columns[i],
                            kPixelBytes);
        }
        previousRow = row;
        previousOut = out;
    }
}

}  // namespace

void IPL_ZoomNN_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src, int dstWidth,
                       int dstHeight, int dstStride, unsigned char* dst) {
    ZoomNearest<1>({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst});
}

void IPL_ZoomNN_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src, int dstWidth,
                       int dstHeight, int dstStride, unsigned char* dst) {
    ZoomNearest<4>({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst});
}
