// The steps that the zoom methods begin with.

#include "zoom/geometry.h"

#include <cstring>

#include "frame/rows.h"

namespace tq {

bool BeginZoom(const ZoomImages& images, int pixelBytes) {
    if (images.src == nullptr || images.dst == nullptr) return false;
    if (images.srcWidth == images.dstWidth && images.srcHeight == images.dstHeight) {
        if (images.dstWidth < 1 || images.dstHeight < 1) return false;
        const size_t rowBytes =
            static_cast<size_t>(images.dstWidth) * static_cast<size_t>(pixelBytes);
        // An image may be zoomed onto itself here.
        ForEachRow(images.dstHeight, images.srcStride, images.src, images.dstStride, images.dst,
                   [rowBytes](const unsigned char* from, unsigned char* to) {
                       std::memmove(to, from, rowBytes);
                   });
        return false;
    }
    if (images.srcWidth < 1 || images.srcHeight < 1) {
        ClearDestination(images, pixelBytes);
        return false;
    }
    return images.dstWidth > 0 && images.dstHeight > 0;
}

void ClearDestination(const ZoomImages& images, int pixelBytes) {
    if (images.dstWidth < 1 || images.dstHeight < 1) return;
    const size_t rowBytes = static_cast<size_t>(images.dstWidth) * static_cast<size_t>(pixelBytes);
    ForEachRow(
        images.dstHeight, 0, images.dst, images.dstStride, images.dst,
        [rowBytes](const unsigned char*, unsigned char* row) { std::memset(row, 0, rowBytes); });
}

}  // namespace tq
