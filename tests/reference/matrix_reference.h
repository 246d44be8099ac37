#pragma once

// The change of colour matrix written a second time: one pixel or pair at a time and sharing
// nothing with color/ or the start-up tables. An image or a plane is anything that [] indexes by
// bytes from its first one.

#include <tqipl/types.h>

#include <cstdint>

namespace tqref {

// In 4096ths: rows give Y, U, V from the columns Y, U, V.
struct YuvMatrix {
    int m[3][3];
};
inline constexpr YuvMatrix k601x709 = {{{4096, -484, -872}, {-4, 4173, 470}, {0, 303, 4198}}};
inline constexpr YuvMatrix k709x601 = {{{4096, 417, 804}, {4, 4053, -453}, {0, -292, 4028}}};
inline constexpr YuvMatrix k2020x709 = {{{4096, 72, -380}, {0, 4112, 208}, {0, -46, 4082}}};
inline constexpr YuvMatrix k709x2020 = {{{4096, -68, 0}, {0, 4076, 0}, {0, 46, 4096}}};

// One component from offsets of Y, U and V: to the nearest, then moved and limited.
inline uint8_t MatrixComponent(const int (&row)[3], int y, int u, int v, int middle, int most) {
    const int sum = row[0] * y + row[1] * u + row[2] * v + 2048;
    int quotient = sum / 4096;
    if (sum % 4096 < 0) --quotient;
    const int value = quotient + middle;
    return static_cast<uint8_t>(value < 16 ? 16 : value > most ? most : value);
}
inline uint8_t MatrixLuma(const YuvMatrix& matrix, int y, int u, int v) {
    return MatrixComponent(matrix.m[0], y, u, v, 16, 235);
}
inline uint8_t MatrixU(const YuvMatrix& matrix, int y, int u, int v) {
    return MatrixComponent(matrix.m[1], y, u, v, 128, 240);
}
inline uint8_t MatrixV(const YuvMatrix& matrix, int y, int u, int v) {
    return MatrixComponent(matrix.m[2], y, u, v, 128, 240);
}

struct MatrixPair {
    uint8_t y0, y1, u, v;
};

// From offsets. Chroma sees the mean of the lumas, truncated towards zero.
inline MatrixPair ChangePair(const YuvMatrix& matrix, int y0, int y1, int u, int v) {
    const int mean = (y0 + y1) / 2;
    return {MatrixLuma(matrix, y0, u, v), MatrixLuma(matrix, y1, u, v), MatrixU(matrix, mean, u, v),
            MatrixV(matrix, mean, u, v)};
}

// Where the bytes of a pair stand.
struct MatrixPairOrder {
    int y0, u, y1, v;
};
inline MatrixPairOrder OrderOf(TQ_COLOR_FORMAT format) {
    if (format == TQ_COLOR_YUYV) return {0, 1, 2, 3};
    return {1, 0, 3, 2};
}

inline bool IsMatrixFormat(TQ_COLOR_FORMAT format) {
    return format == TQ_COLOR_AYUV || format == TQ_COLOR_YUYV || format == TQ_COLOR_UYVY;
}

// Two pixels or one pair, whichever layouts stand on the two sides.
template <class Src, class Dst>
void ChangeTwoPixels(const YuvMatrix& matrix, TQ_COLOR_FORMAT srcFormat, int64_t from, Src& src,
                     TQ_COLOR_FORMAT dstFormat, int64_t to, Dst& dst, int firstLumaOffset) {
    int y0, y1, u, v;
    if (srcFormat == TQ_COLOR_AYUV) {
        uint8_t in[8];
        for (int64_t i = 0; i < 8; ++i) in[i] = src[from + i];
        y0 = in[2] - 16;
        y1 = in[6] - 16;
        u = (in[1] + in[5] - 256) / 2;
        v = (in[0] + in[4] - 256) / 2;
    } else {
        uint8_t in[4];
        for (int64_t i = 0; i < 4; ++i) in[i] = src[from + i];
        const MatrixPairOrder order = OrderOf(srcFormat);
        y0 = in[order.y0] - firstLumaOffset;
        y1 = in[order.y1] - 16;
        u = in[order.u] - 128;
        v = in[order.v] - 128;
    }
    if (dstFormat == TQ_COLOR_AYUV) {
        const uint8_t out[8] = {MatrixV(matrix, y0, u, v),    MatrixU(matrix, y0, u, v),
                                MatrixLuma(matrix, y0, u, v), 255,
                                MatrixV(matrix, y1, u, v),    MatrixU(matrix, y1, u, v),
                                MatrixLuma(matrix, y1, u, v), 255};
        for (int64_t i = 0; i < 8; ++i) dst[to + i] = out[i];
    } else {
        const MatrixPair pair = ChangePair(matrix, y0, y1, u, v);
        const MatrixPairOrder order = OrderOf(dstFormat);
        dst[to + order.y0] = pair.y0;
        dst[to + order.y1] = pair.y1;
        dst[to + order.u] = pair.u;
        dst[to + order.v] = pair.v;
    }
}

// One AYUV pixel to another, with the alpha.
template <class Src, class Dst>
void ChangePixel(const YuvMatrix& matrix, int64_t from, Src& src, int64_t to, Dst& dst) {
    const int v = src[from] - 128, u = src[from + 1] - 128, y = src[from + 2] - 16;
    const uint8_t alpha = src[from + 3];
    dst[to] = MatrixV(matrix, y, u, v);
    dst[to + 1] = MatrixU(matrix, y, u, v);
    dst[to + 2] = MatrixLuma(matrix, y, u, v);
    dst[to + 3] = alpha;
}

template <class Image>
void ChangeInPlace(const YuvMatrix& matrix, TQ_COLOR_FORMAT format, int width, int height,
                   int64_t stride, Image& image) {
    if (!IsMatrixFormat(format)) return;
    for (int64_t row = 0; row < height; ++row) {
        const int64_t at = row * stride;
        if (format == TQ_COLOR_AYUV)
            for (int64_t x = 0; x < width; ++x)
                ChangePixel(matrix, at + 4 * x, image, at + 4 * x, image);
        else
            for (int64_t pair = 0; pair < width / 2; ++pair)
                ChangeTwoPixels(matrix, format, at + 4 * pair, image, format, at + 4 * pair, image,
                                16);
    }
}

// From YUYV to 4:2:2 the first luma of a pair loses 128 and not 16: the contract, not a slip.
template <class Src, class Dst>
void ChangeBetween(const YuvMatrix& matrix, int width, int height, TQ_COLOR_FORMAT srcFormat,
                   int64_t srcStride, Src& src, TQ_COLOR_FORMAT dstFormat, int64_t dstStride,
                   Dst& dst) {
    if (!IsMatrixFormat(srcFormat) || !IsMatrixFormat(dstFormat)) return;
    const bool fromYuyvTo422 = srcFormat == TQ_COLOR_YUYV && dstFormat != TQ_COLOR_AYUV;
    const int srcPair = srcFormat == TQ_COLOR_AYUV ? 8 : 4;
    const int dstPair = dstFormat == TQ_COLOR_AYUV ? 8 : 4;
    for (int64_t row = 0; row < height; ++row) {
        const int64_t from = row * srcStride, to = row * dstStride;
        if (srcFormat == TQ_COLOR_AYUV && dstFormat == TQ_COLOR_AYUV)
            for (int64_t x = 0; x < width; ++x)
                ChangePixel(matrix, from + 4 * x, src, to + 4 * x, dst);
        else
            for (int64_t pair = 0; pair < width / 2; ++pair)
                ChangeTwoPixels(matrix, srcFormat, from + srcPair * pair, src, dstFormat,
                                to + dstPair * pair, dst, fromYuyvTo422 ? 128 : 16);
    }
}

template <class Y, class U, class V>
void ChangePlanes(const YuvMatrix& matrix, int width, int height, int64_t strideY, Y& y,
                  int64_t strideU, U& u, int64_t strideV, V& v) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t pair = 0; pair < width / 2; ++pair) {
            const int64_t luma = row * strideY + 2 * pair;
            const int64_t atU = row * strideU + pair, atV = row * strideV + pair;
            const MatrixPair out =
                ChangePair(matrix, y[luma] - 16, y[luma + 1] - 16, u[atU] - 128, v[atV] - 128);
            y[luma] = out.y0;
            y[luma + 1] = out.y1;
            u[atU] = out.u;
            v[atV] = out.v;
        }
}

}  // namespace tqref
