#pragma once

// What the image memory family knows of a pixel format: how its rows are stored, the bytes a pixel
// that offsets count, its empty value; and the rectangles that cut an image.

#include <tqipl/image_memory.h>

#include <cstdint>

#include "frame/exact_math.h"

namespace tq {

// The 32-bit words, little-endian, that stand for empty or black.
inline constexpr uint32_t kEmptyAyuv = 0x00108080;
inline constexpr uint32_t kEmptyYuyv = 0x80108010;
inline constexpr uint32_t kEmptyUyvy = 0x10801080;
inline constexpr uint32_t kOpaqueBlack = 0xFF000000;

// How a whole image of a format is copied: rows of `count` bytes, rows of `count` four-byte words,
// one block of 2 * count bytes for each row, or not at all.
enum class RowUnit { kNone, kByte, kWord, kBlock };
struct RowLayout {
    RowUnit unit;
    int count;
};

inline RowLayout RowLayoutOf(TQ_COLOR_FORMAT format, int width) {
    if (width < 1) return {RowUnit::kNone, 0};
    switch (format) {
        case TQ_COLOR_ARGB:
        case TQ_COLOR_AYUV:
        case TQ_COLOR_PACKED32:
        case TQ_COLOR_BGR10B:
            return {RowUnit::kWord, width};
        case TQ_COLOR_YUYV:
        case TQ_COLOR_UYVY:
            return {RowUnit::kWord, width / 2};
        case TQ_COLOR_YUVP_422:
            return {RowUnit::kBlock, width};
        case TQ_COLOR_V216:
            return {RowUnit::kByte, Mul32(width, 4)};
        case TQ_COLOR_V210:
            return {RowUnit::kByte, Mul32(static_cast<int>((int64_t{width} + 47) / 48), 128)};
        case TQ_COLOR_BGR16B:
            return {RowUnit::kByte, Mul32(width, 6)};
        case TQ_COLOR_GRAY8:
            return {RowUnit::kByte, width};
        default:
            return {RowUnit::kNone, 0};
    }
}

// Clamps rect to the image. An image without columns or rows gives a rectangle without them.
inline void NormaliseRect(int width, int height, TQ_RECT& rect) {
    const auto clamp = [](int value, int limit) {
        if (value > limit) value = limit;
        return value < 0 ? 0 : value;
    };
    rect.left = clamp(rect.left, width);
    rect.right = clamp(rect.right, width);
    rect.top = clamp(rect.top, height);
    rect.bottom = clamp(rect.bottom, height);
    if (rect.right < rect.left) rect.right = rect.left;
    if (rect.bottom < rect.top) rect.bottom = rect.top;
}

// The functions below take a normalised rectangle.

inline bool CoversImage(int width, int height, const TQ_RECT& rect) {
    return rect.right - rect.left == width && rect.bottom - rect.top == height;
}

inline bool IsEmpty(const TQ_RECT& rect) {
    return rect.right == rect.left || rect.bottom == rect.top;
}

// Calls strip(rectangle) for each part of the image outside rect that is not empty: left and right
// of it over the whole height, then above and below it.
template <class Strip>
void ForEachStripAround(int width, int height, const TQ_RECT& rect, Strip strip) {
    const TQ_RECT strips[] = {{0, 0, rect.left, height},
                              {rect.right, 0, width, height},
                              {rect.left, 0, rect.right, rect.top},
                              {rect.left, rect.bottom, rect.right, height}};
    for (const TQ_RECT& part : strips)
        if (part.left < part.right && part.top < part.bottom) strip(part);
}

// Where a rectangle begins in an image, at pixels of `ratio` bytes. Null stays null.
inline unsigned char* StartOf(const TQ_RECT& rect, int ratio, int stride, unsigned char* image) {
    if (image == nullptr) return nullptr;
    return image + Mul32(rect.top, stride) + Mul32(ratio, rect.left);
}

}  // namespace tq
