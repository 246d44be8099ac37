// Clearing, filling and flipping of images in place, and of rectangles in them.

#include <tqipl/buffer.h>
#include <tqipl/image_memory.h>

#include <cstring>

#include "frame/rows.h"
#include "memory/formats.h"

namespace {

// `count` little-endian words.
void FillWords(unsigned char* dst, size_t count, uint32_t word) {
    uint32_t block[16];
    for (uint32_t& each : block) each = word;
    for (; count >= 16; count -= 16, dst += sizeof block) std::memcpy(dst, block, sizeof block);
    std::memcpy(dst, block, count * sizeof word);
}

// `words` words in each row. No row is joined to the next.
void FillWordRows(int words, int height, int stride, unsigned char* dst, uint32_t word) {
    if (words < 1 || height < 1) return;
    tq::ForEachRow(height, 0, dst, stride, dst, [=](const unsigned char*, unsigned char* row) {
        FillWords(row, static_cast<size_t>(words), word);
    });
}

// width * pixelBytes equal bytes in each row, as one block where the image is dense.
void FillByteRows(int width, int pixelBytes, int height, int stride, unsigned char* dst,
                  unsigned char value) {
    if (width < 1 || height < 1) return;
    const int64_t rowBytes = int64_t{width} * pixelBytes;
    if (stride == rowBytes) {
        std::memset(dst, value, static_cast<size_t>(rowBytes) * static_cast<size_t>(height));
        return;
    }
    tq::ForEachRow(height, 0, dst, stride, dst, [=](const unsigned char*, unsigned char* row) {
        std::memset(row, value, static_cast<size_t>(rowBytes));
    });
}

// Applies fill(width, height, first row) to the inside of rect, which comes back normalised.
template <class Fill>
void FillInside(int width, int height, int stride, unsigned char* dst, int ratio, TQ_RECT& rect,
                Fill fill) {
    tq::NormaliseRect(width, height, rect);
    if (tq::IsEmpty(rect)) return;
    fill(rect.right - rect.left, rect.bottom - rect.top, tq::StartOf(rect, ratio, stride, dst));
}

// The same for the four strips around it.
template <class Fill>
void FillOutside(int width, int height, int stride, unsigned char* dst, int ratio, TQ_RECT& rect,
                 Fill fill) {
    tq::NormaliseRect(width, height, rect);
    if (tq::CoversImage(width, height, rect)) return;
    tq::ForEachStripAround(width, height, rect, [=](const TQ_RECT& strip) {
        fill(strip.right - strip.left, strip.bottom - strip.top,
             tq::StartOf(strip, ratio, stride, dst));
    });
}

// Exchanges row i with row height - 1 - i.
void FlipRows(int rowBytes, int height, int stride, unsigned char* data) {
    if (rowBytes < 1 || height < 2) return;
    const size_t bytes = static_cast<size_t>(rowBytes);
    CTQIPLMemoryAuto row(rowBytes, nullptr);
    unsigned char* held = row.Data();
    unsigned char* upper = data;
    unsigned char* lower = data + tq::Mul32(height - 1, stride);
    for (int i = 0; i < height / 2; ++i, upper += stride, lower -= stride) {
        std::memcpy(held, upper, bytes);
        std::memcpy(upper, lower, bytes);
        std::memcpy(lower, held, bytes);
    }
}

}  // namespace

void IPL_ZeroMemory(unsigned char* dst, int size) {
    if (size > 0) std::memset(dst, 0, static_cast<size_t>(size));
}

void IPL_ZeroMemory_C1R(int width, int height, int stride, unsigned char* dst) {
    FillByteRows(width, 1, height, stride, dst, 0);
}

void IPL_ZeroMemory_C4R(int width, int height, int stride, unsigned char* dst) {
    FillByteRows(width, 4, height, stride, dst, 0);
}

void IPL_ZeroMemory(TQ_COLOR_FORMAT format, unsigned char* dst, int size) {
    switch (format) {
        case TQ_COLOR_AYUV:
            FillWordRows(size / 4, 1, 0, dst, tq::kEmptyAyuv);
            break;
        case TQ_COLOR_YUYV:
            FillWordRows(size / 4, 1, 0, dst, tq::kEmptyYuyv);
            break;
        case TQ_COLOR_UYVY:
            FillWordRows(size / 4, 1, 0, dst, tq::kEmptyUyvy);
            break;
        default:
            IPL_ZeroMemory(dst, size);
            break;
    }
}

void IPL_ZeroMemory(TQ_COLOR_FORMAT format, int width, int height, int stride, unsigned char* dst) {
    switch (format) {
        case TQ_COLOR_ARGB:
            IPL_ZeroMemory_C4R(width, height, stride, dst);
            break;
        case TQ_COLOR_AYUV:
            FillWordRows(width, height, stride, dst, tq::kEmptyAyuv);
            break;
        case TQ_COLOR_YUYV:
            FillWordRows(width / 2, height, stride, dst, tq::kEmptyYuyv);
            break;
        case TQ_COLOR_UYVY:
            FillWordRows(width / 2, height, stride, dst, tq::kEmptyUyvy);
            break;
        default:  // one byte a pixel whatever the format's size: kept on purpose
            IPL_ZeroMemory_C1R(width, height, stride, dst);
            break;
    }
}

void IPL_BlackMemory(TQ_COLOR_FORMAT format, int width, int height, int stride,
                     unsigned char* dst) {
    switch (format) {
        case TQ_COLOR_ARGB:
            IPL_ZeroMemory_C4R(width, height, stride, dst);
            break;
        case TQ_COLOR_AYUV:  // a quarter of the row, unlike IPL_ZeroMemory: kept on purpose
            FillWordRows(width / 4, height, stride, dst, tq::kEmptyAyuv);
            break;
        case TQ_COLOR_YUYV:
            FillWordRows(width / 2, height, stride, dst, tq::kEmptyYuyv);
            break;
        case TQ_COLOR_UYVY:
            FillWordRows(width / 2, height, stride, dst, tq::kEmptyUyvy);
            break;
        default:  // four bytes a pixel whatever the format's size: kept on purpose
            FillWordRows(width, height, stride, dst, tq::kOpaqueBlack);
            break;
    }
}

void IPL_ZeroMemoryIn(TQ_COLOR_FORMAT format, int width, int height, int stride, unsigned char* dst,
                      TQ_RECT& rect) {
    FillInside(
        width, height, stride, dst, IPL_PixelRatio(format), rect,
        [=](int w, int h, unsigned char* first) { IPL_ZeroMemory(format, w, h, stride, first); });
}

void IPL_ZeroMemoryOut(TQ_COLOR_FORMAT format, int width, int height, int stride,
                       unsigned char* dst, TQ_RECT& rect) {
    FillOutside(
        width, height, stride, dst, IPL_PixelRatio(format), rect,
        [=](int w, int h, unsigned char* first) { IPL_ZeroMemory(format, w, h, stride, first); });
}

void IPL_BlackMemoryIn(TQ_COLOR_FORMAT format, int width, int height, int stride,
                       unsigned char* dst, TQ_RECT& rect) {
    FillInside(
        width, height, stride, dst, IPL_PixelRatio(format), rect,
        [=](int w, int h, unsigned char* first) { IPL_BlackMemory(format, w, h, stride, first); });
}

void IPL_BlackMemoryOut(TQ_COLOR_FORMAT format, int width, int height, int stride,
                        unsigned char* dst, TQ_RECT& rect) {
    FillOutside(
        width, height, stride, dst, IPL_PixelRatio(format), rect,
        [=](int w, int h, unsigned char* first) { IPL_BlackMemory(format, w, h, stride, first); });
}

void IPL_FillMemory_C1R(int width, int height, int stride, unsigned char* dst,
                        unsigned char value) {
    FillByteRows(width, 1, height, stride, dst, value);
}

void IPL_FillMemory_C4R(int width, int height, int stride, unsigned char* dst,
                        unsigned long value) {
    FillWordRows(width, height, stride, dst, static_cast<uint32_t>(value));
}

void IPL_FillMemoryIn_C1R(int width, int height, int stride, unsigned char* dst, TQ_RECT& rect,
                          unsigned char value) {
    FillInside(width, height, stride, dst, 1, rect, [=](int w, int h, unsigned char* first) {
        IPL_FillMemory_C1R(w, h, stride, first, value);
    });
}

void IPL_FillMemoryOut_C1R(int width, int height, int stride, unsigned char* dst, TQ_RECT& rect,
                           unsigned char value) {
    FillOutside(width, height, stride, dst, 1, rect, [=](int w, int h, unsigned char* first) {
        IPL_FillMemory_C1R(w, h, stride, first, value);
    });
}

void IPL_FillMemoryIn_C4R(int width, int height, int stride, unsigned char* dst, TQ_RECT& rect,
                          unsigned long value) {
    FillInside(width, height, stride, dst, 4, rect, [=](int w, int h, unsigned char* first) {
        IPL_FillMemory_C4R(w, h, stride, first, value);
    });
}

void IPL_FillMemoryOut_C4R(int width, int height, int stride, unsigned char* dst, TQ_RECT& rect,
                           unsigned long value) {
    FillOutside(width, height, stride, dst, 4, rect, [=](int w, int h, unsigned char* first) {
        IPL_FillMemory_C4R(w, h, stride, first, value);
    });
}

void IPL_InvertImage_C1R(int width, int height, int stride, unsigned char* data) {
    FlipRows(width, height, stride, data);
}

void IPL_InvertImage_C4R(int width, int height, int stride, unsigned char* data) {
    if (width > 0) FlipRows(tq::Mul32(width, 4), height, stride, data);
}
