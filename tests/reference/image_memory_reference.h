#pragma once

// Image copies, clears, fills, flips and copy-and-pad written a second time, one byte at a time and
// sharing nothing with memory/. Production must equal it, byte for byte.
//
// A routine is a list of areas of the image, in order, and a rule that says what stands in byte x
// of an area's row y.

#include <tqipl/types.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace tqref {

// An image as its bytes, counted from the first byte of its first row. It remembers how far it was
// reached, so that a test can put memory that faults right behind.
class Bytes {
public:
    explicit Bytes(uint8_t* first) : m_first(first) {}
    uint8_t& operator[](int64_t offset) {
        m_begin = std::min(m_begin, offset);
        m_end = std::max(m_end, offset + 1);
        return m_first[offset];
    }
    int64_t Begin() const { return m_begin; }
    int64_t End() const { return m_end; }

private:
    uint8_t* m_first;
    int64_t m_begin = 0;
    int64_t m_end = 0;
};

// Columns and rows of an image, in pixels.
struct Area {
    int64_t x, y, width, height;
    bool Empty() const { return width < 1 || height < 1; }
};

// A rectangle brought into its image, what is inside it, and the strips around it: left and right
// over all rows, then above and below.
struct Cut {
    TQ_RECT rect;
    Area inside;
    Area around[4];
};

inline Cut CutImage(int width, int height, TQ_RECT rect) {
    auto within = [](int value, int limit) {
        return value < 0 ? 0 : value > limit ? limit : value;
    };
    const int left = within(rect.left, width), top = within(rect.top, height);
    const int right = std::max(left, within(rect.right, width));
    const int bottom = std::max(top, within(rect.bottom, height));
    const Area whole{0, 0, width, height};
    auto columns = [](Area area, int from, int to) {
        return Area{from, area.y, to - from, area.height};
    };
    auto rows = [](Area area, int from, int to) {
        return Area{area.x, from, area.width, to - from};
    };
    const Area middle = columns(whole, left, right);
    return {{left, top, right, bottom},
            rows(middle, top, bottom),
            {columns(whole, 0, left), columns(whole, right, width), rows(middle, 0, top),
             rows(middle, bottom, height)}};
}

inline int PixelRatio(TQ_COLOR_FORMAT format) {
    return format == TQ_COLOR_YUYV || format == TQ_COLOR_UYVY ? 2 : 4;
}

// ---- Copies --------------------------------------------------------------------------------

inline void Memcpy(Bytes& dst, Bytes& src, int size) {
    for (int64_t i = 0; i < size; ++i) dst[i] = src[i];
}

inline void MemcpyRows(int64_t rowBytes, int height, int srcStride, Bytes& src, int dstStride,
                       Bytes& dst) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < rowBytes; ++x) dst[y * dstStride + x] = src[y * srcStride + x];
}

inline void MemcpyRowsInverted(int64_t rowBytes, int height, int srcStride, Bytes& src,
                               int dstStride, Bytes& dst) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < rowBytes; ++x)
            dst[y * dstStride + x] = src[(height - 1 - y) * srcStride + x];
}

// Bytes of a row that a copy by format moves. TQ_COLOR_YUVP_422 has no rows.
inline int64_t CopiedRowBytes(TQ_COLOR_FORMAT format, int64_t width) {
    switch (format) {
        case TQ_COLOR_ARGB:
        case TQ_COLOR_AYUV:
        case TQ_COLOR_PACKED32:
        case TQ_COLOR_BGR10B:
        case TQ_COLOR_V216:
            return width * 4;
        case TQ_COLOR_YUYV:
        case TQ_COLOR_UYVY:
            return width / 2 * 4;
        case TQ_COLOR_V210:
            return (width + 47) / 48 * 128;
        case TQ_COLOR_BGR16B:
            return width * 6;
        case TQ_COLOR_GRAY8:
            return width;
        default:
            return 0;
    }
}

// Copies an area to the same place in dst.
inline void CopyArea(TQ_COLOR_FORMAT format, Area area, int srcStride, Bytes& src, int dstStride,
                     Bytes& dst) {
    if (area.Empty()) return;
    const int64_t from = area.y * srcStride + PixelRatio(format) * area.x;
    const int64_t to = area.y * dstStride + PixelRatio(format) * area.x;
    if (format == TQ_COLOR_YUVP_422) {
        for (int64_t i = 0; i < 2 * area.width * area.height; ++i) dst[to + i] = src[from + i];
        return;
    }
    for (int64_t y = 0; y < area.height; ++y)
        for (int64_t x = 0; x < CopiedRowBytes(format, area.width); ++x)
            dst[to + y * dstStride + x] = src[from + y * srcStride + x];
}

inline void Memcpy(TQ_COLOR_FORMAT format, int width, int height, int srcStride, Bytes& src,
                   int dstStride, Bytes& dst) {
    CopyArea(format, {0, 0, width, height}, srcStride, src, dstStride, dst);
}

inline void MemcpyInvert(TQ_COLOR_FORMAT format, int width, int height, int srcStride, Bytes& src,
                         int dstStride, Bytes& dst) {
    int64_t rowBytes = 0;
    if (format == TQ_COLOR_ARGB || format == TQ_COLOR_AYUV || format == TQ_COLOR_PACKED32)
        rowBytes = int64_t{width} * 4;
    if (format == TQ_COLOR_YUYV || format == TQ_COLOR_UYVY || format == TQ_COLOR_YUVP_422)
        rowBytes = int64_t{width} / 2 * 4;
    if (format == TQ_COLOR_GRAY8) rowBytes = width;
    MemcpyRowsInverted(rowBytes, height, srcStride, src, dstStride, dst);
}

// ---- Clears and fills ----------------------------------------------------------------------

// What a clear writes in a row: the first rowBytes bytes, four bytes over and over.
struct Paint {
    int64_t rowBytes;
    uint8_t bytes[4];
};

inline Paint ZeroPaint(TQ_COLOR_FORMAT format, int64_t width) {
    switch (format) {
        case TQ_COLOR_ARGB:
            return {width * 4, {0, 0, 0, 0}};
        case TQ_COLOR_AYUV:
            return {width * 4, {128, 128, 16, 0}};
        case TQ_COLOR_YUYV:
            return {width / 2 * 4, {16, 128, 16, 128}};
        case TQ_COLOR_UYVY:
            return {width / 2 * 4, {128, 16, 128, 16}};
        default:
            return {width, {0, 0, 0, 0}};
    }
}

inline Paint BlackPaint(TQ_COLOR_FORMAT format, int64_t width) {
    switch (format) {
        case TQ_COLOR_ARGB:
        case TQ_COLOR_YUYV:
        case TQ_COLOR_UYVY:
            return ZeroPaint(format, width);
        case TQ_COLOR_AYUV:
            return {width / 4 * 4, {128, 128, 16, 0}};
        default:
            return {width * 4, {0, 0, 0, 255}};
    }
}

// Writes an area of the given row paint, `ratio` bytes a pixel from the left edge.
inline void PaintArea(Area area, int ratio, Paint paint, int stride, Bytes& dst) {
    if (area.Empty()) return;
    for (int64_t y = 0; y < area.height; ++y)
        for (int64_t x = 0; x < paint.rowBytes; ++x)
            dst[(area.y + y) * stride + ratio * area.x + x] = paint.bytes[x % 4];
}

using PaintRule = Paint (*)(TQ_COLOR_FORMAT format, int64_t width);

inline void PaintArea(PaintRule rule, TQ_COLOR_FORMAT format, Area area, int stride, Bytes& dst) {
    PaintArea(area, PixelRatio(format), rule(format, area.width), stride, dst);
}

inline void ZeroMemory(Bytes& dst, int size) {
    for (int64_t i = 0; i < size; ++i) dst[i] = 0;
}

inline void ZeroMemory(TQ_COLOR_FORMAT format, Bytes& dst, int size) {
    const bool words =
        format == TQ_COLOR_AYUV || format == TQ_COLOR_YUYV || format == TQ_COLOR_UYVY;
    const Paint paint = ZeroPaint(format, 0);
    for (int64_t i = 0; i < (words ? size / 4 * 4 : size); ++i) dst[i] = paint.bytes[i % 4];
}

inline void ZeroMemoryRows(int64_t rowBytes, int height, int stride, Bytes& dst) {
    PaintArea({0, 0, 1, height}, 0, {rowBytes, {}}, stride, dst);
}

// The whole image, the inside of a rectangle and its outside, by ZeroPaint or BlackPaint. The
// rectangle comes back normalised.
inline void Clear(PaintRule rule, TQ_COLOR_FORMAT format, int width, int height, int stride,
                  Bytes& dst) {
    PaintArea(rule, format, {0, 0, width, height}, stride, dst);
}

inline void ClearIn(PaintRule rule, TQ_COLOR_FORMAT format, int width, int height, int stride,
                    Bytes& dst, TQ_RECT& rect) {
    const Cut cut = CutImage(width, height, rect);
    rect = cut.rect;
    PaintArea(rule, format, cut.inside, stride, dst);
}

inline void ClearOut(PaintRule rule, TQ_COLOR_FORMAT format, int width, int height, int stride,
                     Bytes& dst, TQ_RECT& rect) {
    const Cut cut = CutImage(width, height, rect);
    rect = cut.rect;
    for (const Area& strip : cut.around) PaintArea(rule, format, strip, stride, dst);
}

// `value` in every byte, or, with a ratio of 4, in every little-endian word.
inline void FillArea(Area area, int ratio, uint32_t value, int stride, Bytes& dst) {
    Paint paint{area.width * ratio, {}};
    for (int i = 0; i < 4; ++i)
        paint.bytes[i] = static_cast<uint8_t>(ratio == 1 ? value : value >> (8 * i));
    PaintArea(area, ratio, paint, stride, dst);
}

inline void FillMemory(int ratio, int width, int height, int stride, Bytes& dst, uint32_t value) {
    FillArea({0, 0, width, height}, ratio, value, stride, dst);
}

inline void FillMemoryIn(int ratio, int width, int height, int stride, Bytes& dst, TQ_RECT& rect,
                         uint32_t value) {
    const Cut cut = CutImage(width, height, rect);
    rect = cut.rect;
    FillArea(cut.inside, ratio, value, stride, dst);
}

inline void FillMemoryOut(int ratio, int width, int height, int stride, Bytes& dst, TQ_RECT& rect,
                          uint32_t value) {
    const Cut cut = CutImage(width, height, rect);
    rect = cut.rect;
    for (const Area& strip : cut.around) FillArea(strip, ratio, value, stride, dst);
}

// Every column is reversed by itself.
inline void InvertImage(int64_t rowBytes, int height, int stride, Bytes& data) {
    for (int64_t x = 0; x < rowBytes; ++x)
        for (int64_t top = 0, bottom = height - 1; top < bottom; ++top, --bottom)
            std::swap(data[top * stride + x], data[bottom * stride + x]);
}

// ---- Copies with a rectangle ---------------------------------------------------------------

inline void MemcpyIn(TQ_COLOR_FORMAT format, int width, int height, int srcStride, Bytes& src,
                     int dstStride, Bytes& dst, TQ_RECT rect, int clearRest) {
    const Cut cut = CutImage(width, height, rect);
    if (clearRest != 0)
        for (const Area& strip : cut.around) PaintArea(ZeroPaint, format, strip, dstStride, dst);
    CopyArea(format, cut.inside, srcStride, src, dstStride, dst);
}

inline void MemcpyOut(TQ_COLOR_FORMAT format, int width, int height, int srcStride, Bytes& src,
                      int dstStride, Bytes& dst, TQ_RECT rect, int clearRest) {
    const Cut cut = CutImage(width, height, rect);
    for (const Area& strip : cut.around) CopyArea(format, strip, srcStride, src, dstStride, dst);
    if (clearRest != 0) PaintArea(ZeroPaint, format, cut.inside, dstStride, dst);
}

// ---- Copy and pad --------------------------------------------------------------------------

// Every byte of the frame is the nearest byte of the image; zero where an image row has no byte. An
// image without rows leaves one row of the frame as it stands, padTop or the last one, and every
// other row becomes it.
inline void MemcpyAndPad(int64_t width, int64_t height, int64_t srcStride, Bytes& src,
                         int64_t dstStride, Bytes& dst, int64_t padLeft, int64_t padTop,
                         int64_t padRight, int64_t padBottom) {
    const int64_t rows = padTop + height + padBottom;
    for (int64_t y = 0; y < rows; ++y)
        for (int64_t x = 0; x < padLeft + width + padRight; ++x) {
            uint8_t& to = dst[y * dstStride + x];
            if (height == 0) {
                to = dst[std::min(padTop, rows - 1) * dstStride + x];
            } else if (width == 0) {
                to = 0;
            } else {
                to = src[std::clamp<int64_t>(y - padTop, 0, height - 1) * srcStride +
                         std::clamp<int64_t>(x - padLeft, 0, width - 1)];
            }
        }
}

}  // namespace tqref
