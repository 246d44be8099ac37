// Copies of images, flips on the way, and rectangles, by storage.

#include <tqipl/image_memory.h>

#include <cstring>

#include "frame/rows.h"
#include "memory/formats.h"

namespace {

// The C library's block move, which lets an image be copied onto itself.
void CopyBytes(unsigned char* dst, const unsigned char* src, size_t bytes) {
    std::memmove(dst, src, bytes);
}

// Rows of width * pixelBytes bytes, as one block where both images are dense.
void CopyRows(int width, int pixelBytes, int height, int srcStride, const unsigned char* src,
              int dstStride, unsigned char* dst) {
    if (width < 1 || height < 1) return;
    const int64_t rowBytes = int64_t{width} * pixelBytes;
    if (srcStride == rowBytes && dstStride == rowBytes) {
        CopyBytes(dst, src, static_cast<size_t>(rowBytes) * static_cast<size_t>(height));
        return;
    }
    tq::ForEachRow(height, srcStride, src, dstStride, dst,
                   [rowBytes](const unsigned char* from, unsigned char* to) {
                       CopyBytes(to, from, static_cast<size_t>(rowBytes));
                   });
}

// The same rows, the last source row first.
void CopyRowsReversed(int width, int pixelBytes, int height, int srcStride,
                      const unsigned char* src, int dstStride, unsigned char* dst) {
    if (width < 1 || height < 1) return;
    const size_t rowBytes = static_cast<size_t>(width) * static_cast<size_t>(pixelBytes);
    src += tq::Mul32(height - 1, srcStride);
    for (int y = 0; y < height; ++y) {
        CopyBytes(dst, src, rowBytes);
        if (y + 1 < height) {
            src -= srcStride;
            dst += dstStride;
        }
    }
}

// The part of an image that lies in rect.
void CopyRect(TQ_COLOR_FORMAT format, const TQ_RECT& rect, int srcStride, unsigned char* src,
              int dstStride, unsigned char* dst) {
    const int ratio = IPL_PixelRatio(format);
    IPL_Memcpy(format, rect.right - rect.left, rect.bottom - rect.top, srcStride,
               tq::StartOf(rect, ratio, srcStride, src), dstStride,
               tq::StartOf(rect, ratio, dstStride, dst));
}

void ClearRect(TQ_COLOR_FORMAT format, const TQ_RECT& rect, int stride, unsigned char* dst) {
    IPL_ZeroMemory(format, rect.right - rect.left, rect.bottom - rect.top, stride,
                   tq::StartOf(rect, IPL_PixelRatio(format), stride, dst));
}

}  // namespace

int IPL_PixelRatio(TQ_COLOR_FORMAT format) {
    return format == TQ_COLOR_YUYV || format == TQ_COLOR_UYVY ? 2 : 4;
}

int IPL_PixelRatio(unsigned long format) {
    return format == TQ_COLOR_YUYV || format == TQ_COLOR_UYVY ? 2 : 4;
}

int IPL_PixelRatioEx(TQ_COLOR_FORMAT& format) { return IPL_PixelRatio(format); }

int IPL_PixelRatioEx(unsigned long& format) { return IPL_PixelRatio(format); }

void IPL_Memcpy(unsigned char* dst, unsigned char* src, int size) {
    if (size > 0) CopyBytes(dst, src, static_cast<size_t>(size));
}

void IPL_Memcpy_C1R(int width, int height, int srcStride, unsigned char* src, int dstStride,
                    unsigned char* dst) {
    CopyRows(width, 1, height, srcStride, src, dstStride, dst);
}

void IPL_Memcpy_C1R_16u(int width, int height, int srcStride, unsigned char* src, int dstStride,
                        unsigned char* dst) {
    CopyRows(width, 2, height, srcStride, src, dstStride, dst);
}

void IPL_Memcpy_C4R(int width, int height, int srcStride, unsigned char* src, int dstStride,
                    unsigned char* dst) {
    CopyRows(width, 4, height, srcStride, src, dstStride, dst);
}

void IPL_MemcpyInvert_CR1(int width, int height, int srcStride, unsigned char* src, int dstStride,
                          unsigned char* dst) {
    CopyRowsReversed(width, 1, height, srcStride, src, dstStride, dst);
}

void IPL_MemcpyInvert_CR4(int width, int height, int srcStride, unsigned char* src, int dstStride,
                          unsigned char* dst) {
    CopyRowsReversed(width, 4, height, srcStride, src, dstStride, dst);
}

void IPL_Memcpy(TQ_COLOR_FORMAT format, int width, int height, int srcStride, unsigned char* src,
                int dstStride, unsigned char* dst) {
    if (src == nullptr || dst == nullptr) return;
    const tq::RowLayout row = tq::RowLayoutOf(format, width);
    switch (row.unit) {
        case tq::RowUnit::kByte:
            IPL_Memcpy_C1R(row.count, height, srcStride, src, dstStride, dst);
            break;
        case tq::RowUnit::kWord:
            IPL_Memcpy_C4R(row.count, height, srcStride, src, dstStride, dst);
            break;
        case tq::RowUnit::kBlock:
            if (width > 0 && height > 0)
                CopyBytes(dst, src, static_cast<size_t>(width) * static_cast<size_t>(height) * 2);
            break;
        case tq::RowUnit::kNone:
            break;
    }
}

void IPL_MemcpyInvert(TQ_COLOR_FORMAT format, int width, int height, int srcStride,
                      unsigned char* src, int dstStride, unsigned char* dst) {
    switch (format) {
        case TQ_COLOR_ARGB:
        case TQ_COLOR_AYUV:
        case TQ_COLOR_PACKED32:
            IPL_MemcpyInvert_CR4(width, height, srcStride, src, dstStride, dst);
            break;
        case TQ_COLOR_YUYV:
        case TQ_COLOR_UYVY:
        case TQ_COLOR_YUVP_422:  // taken as packed rows, with their strides: kept on purpose
            IPL_MemcpyInvert_CR4(width / 2, height, srcStride, src, dstStride, dst);
            break;
        case TQ_COLOR_GRAY8:
            IPL_MemcpyInvert_CR1(width, height, srcStride, src, dstStride, dst);
            break;
        default:
            break;
    }
}

void IPL_MemcpyIn(TQ_COLOR_FORMAT format, int width, int height, int srcStride, unsigned char* src,
                  int dstStride, unsigned char* dst, TQ_RECT rect, int clearRest) {
    tq::NormaliseRect(width, height, rect);
    if (tq::CoversImage(width, height, rect)) {
        IPL_Memcpy(format, width, height, srcStride, src, dstStride, dst);
        return;
    }
    if (clearRest != 0)
        tq::ForEachStripAround(width, height, rect, [=](const TQ_RECT& strip) {
            ClearRect(format, strip, dstStride, dst);
        });
    if (!tq::IsEmpty(rect)) CopyRect(format, rect, srcStride, src, dstStride, dst);
}

void IPL_MemcpyIn(int width, int height, int srcStride, unsigned char* src, int dstStride,
                  unsigned char* dst, TQ_RECT rect, int clearRest) {
    IPL_MemcpyIn(TQ_COLOR_ARGB, width, height, srcStride, src, dstStride, dst, rect, clearRest);
}

void IPL_MemcpyOut(TQ_COLOR_FORMAT format, int width, int height, int srcStride, unsigned char* src,
                   int dstStride, unsigned char* dst, TQ_RECT rect, int clearRest) {
    tq::NormaliseRect(width, height, rect);
    if (tq::CoversImage(width, height, rect)) {
        if (clearRest != 0) IPL_ZeroMemory(format, width, height, dstStride, dst);
        return;
    }
    tq::ForEachStripAround(width, height, rect, [=](const TQ_RECT& strip) {
        CopyRect(format, strip, srcStride, src, dstStride, dst);
    });
    if (clearRest != 0 && !tq::IsEmpty(rect)) ClearRect(format, rect, dstStride, dst);
}

void IPL_MemcpyOut(int width, int height, int srcStride, unsigned char* src, int dstStride,
                   unsigned char* dst, TQ_RECT rect, int clearRest) {
    IPL_MemcpyOut(TQ_COLOR_ARGB, width, height, srcStride, src, dstStride, dst, rect, clearRest);
}
