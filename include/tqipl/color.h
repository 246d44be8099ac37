#pragma once

#include <tqipl/export.h>

// Conversions between 8-bit pixel formats.
//
// Widths and heights are in pixels, strides in bytes between the starts of rows (negative ones walk
// upwards). Source and destination must not overlap. No alignment is needed. In 4:2:2 formats a
// pair of pixels shares its chroma; with an odd width the last pixel is neither read nor written,
// but by the luma forms. All arithmetic is in single precision, one rounding for each operation in
// a fixed order, so the bytes are the same everywhere.
//
// Layouts in rising address order: ARGB is blue, green, red, alpha; YUYV is Y0, U, Y1, V; UYVY is
// U, Y0, V, Y1; VUYT is V, U, Y and a byte that is not read.
//
// Each _MultiThread form gives the bytes of its plain form, at any number of processors, unless it
// says otherwise.

// Full-range 4:2:2 and 4:4:4 to ARGB with the matrix of ITU-R BT.601 as JFIF uses it (1.772,
// 0.34413, 0.71414, 1.402). Results are truncated, not rounded, and limited to 0 to 255; alpha is
// 255. A height below 1 does nothing. Pointers are not checked.
TQIPL_API void IPL_YUYV422_To_ARGB444(int width, int height, int srcStride, unsigned char* src,
                                      int dstStride, unsigned char* dst);
TQIPL_API void IPL_YUYV422_To_ARGB444_MultiThread(int width, int height, int srcStride,
                                                  unsigned char* src, int dstStride,
                                                  unsigned char* dst);
TQIPL_API void IPL_UYVY422_To_ARGB444(int width, int height, int srcStride, unsigned char* src,
                                      int dstStride, unsigned char* dst);
TQIPL_API void IPL_UYVY422_To_ARGB444_MultiThread(int width, int height, int srcStride,
                                                  unsigned char* src, int dstStride,
                                                  unsigned char* dst);
TQIPL_API void IPL_VUYT444_To_ARGB444(int width, int height, int srcStride, unsigned char* src,
                                      int dstStride, unsigned char* dst);
TQIPL_API void IPL_VUYT444_To_ARGB444_MultiThread(int width, int height, int srcStride,
                                                  unsigned char* src, int dstStride,
                                                  unsigned char* dst);

// Studio-range 4:2:2 (luma 16 to 235, chroma 16 to 240 around 128) to ARGB, rounded to nearest and
// limited to 0 to 255; alpha is 255. The 601 forms have the matrix of ITU-R BT.601 to six
// decimals. The 709 forms have this library's own four-digit matrix (1.1644; 2.1126, 0.2129,
// 0.5325, 1.793), which differs from ITU-R BT.709 in the last digits. A null pointer or a width or
// height of 0 or below does nothing.
TQIPL_API void IPL_YUYV2ARGB_601(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, unsigned char* dst);
TQIPL_API void IPL_YUYV2ARGB_601_MultiThread(int width, int height, int srcStride,
                                             unsigned char* src, int dstStride, unsigned char* dst);
TQIPL_API void IPL_UYVY2ARGB_601(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, unsigned char* dst);
TQIPL_API void IPL_UYVY2ARGB_601_MultiThread(int width, int height, int srcStride,
                                             unsigned char* src, int dstStride, unsigned char* dst);
TQIPL_API void IPL_YUYV2ARGB_709(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, unsigned char* dst);
TQIPL_API void IPL_YUYV2ARGB_709_MultiThread(int width, int height, int srcStride,
                                             unsigned char* src, int dstStride, unsigned char* dst);
TQIPL_API void IPL_UYVY2ARGB_709(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, unsigned char* dst);
TQIPL_API void IPL_UYVY2ARGB_709_MultiThread(int width, int height, int srcStride,
                                             unsigned char* src, int dstStride, unsigned char* dst);

// ARGB to studio-range 4:2:2, the inverse matrices: ITU-R BT.601 to six decimals and the library's
// own four-digit BT.709. Luma and chroma of each pixel are rounded to bytes; the chroma bytes of a
// pair are then averaged, a tie upwards. Alpha is not read. A null pointer or a width or height of
// 0 or below does nothing.
//
// IPL_ARGB2UYVY_601 has a store order of its own, which hosts depend on: it writes U, V, nothing,
// Y1. The third byte of each four keeps what the destination held, and Y0 is lost. Use the YUYV
// form where that is not wanted. IPL_ARGB2UYVY_709 writes U, Y0, V, Y1.
TQIPL_API void IPL_ARGB2YUYV_601(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, unsigned char* dst);
TQIPL_API void IPL_ARGB2YUYV_601_MultiThread(int width, int height, int srcStride,
                                             unsigned char* src, int dstStride, unsigned char* dst);
TQIPL_API void IPL_ARGB2YUYV_709(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, unsigned char* dst);
TQIPL_API void IPL_ARGB2YUYV_709_MultiThread(int width, int height, int srcStride,
                                             unsigned char* src, int dstStride, unsigned char* dst);
TQIPL_API void IPL_ARGB2UYVY_601(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, unsigned char* dst);
TQIPL_API void IPL_ARGB2UYVY_601_MultiThread(int width, int height, int srcStride,
                                             unsigned char* src, int dstStride, unsigned char* dst);
TQIPL_API void IPL_ARGB2UYVY_709(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, unsigned char* dst);
TQIPL_API void IPL_ARGB2UYVY_709_MultiThread(int width, int height, int srcStride,
                                             unsigned char* src, int dstStride, unsigned char* dst);

// Planar 4:2:2 behind one pointer: the Y plane, then U, then V, without row padding. For an even
// width: Y rows of width bytes, U at width * height with rows of width / 2, V at one and a half
// times that, and the MultiThread forms give the bytes of the plain forms.
//
// With an odd width the forms read and write different places, and are kept apart on purpose.
// IPL_YUVP_422_To_ARGB444 and all _MultiThread forms: Y rows of width bytes, V (width / 2) * height
// behind U. The four plain 601 and 709 forms: Y rows of width - 1 bytes, V (width * height) / 2
// behind U. U and V rows have width / 2 bytes in all of them.
//
// To ARGB: full range (truncated), or studio range (rounded), as the packed forms above; alpha is
// 255. The full-range form does nothing for a height below 1 and does not check pointers; the
// others, and all _MultiThread forms, do nothing for a null pointer or a width or height of 0 or
// below.
TQIPL_API void IPL_YUVP_422_To_ARGB444(int width, int height, unsigned char* src, int dstStride,
                                       unsigned char* dst);
TQIPL_API void IPL_YUVP_422_To_ARGB444_MultiThread(int width, int height, unsigned char* src,
                                                   int dstStride, unsigned char* dst);
TQIPL_API void IPL_YUVP422_To_ARGB_601(int width, int height, unsigned char* src, int dstStride,
                                       unsigned char* dst);
TQIPL_API void IPL_YUVP422_To_ARGB_601_MultiThread(int width, int height, unsigned char* src,
                                                   int dstStride, unsigned char* dst);
TQIPL_API void IPL_YUVP422_To_ARGB_709(int width, int height, unsigned char* src, int dstStride,
                                       unsigned char* dst);
TQIPL_API void IPL_YUVP422_To_ARGB_709_MultiThread(int width, int height, unsigned char* src,
                                                   int dstStride, unsigned char* dst);

// ARGB to planar 4:2:2, studio range, as the packed forms above, with Y0 and Y1 both written.
TQIPL_API void IPL_ARGB_To_YUVP422_601(int width, int height, int srcStride, unsigned char* src,
                                       unsigned char* dst);
TQIPL_API void IPL_ARGB_To_YUVP422_601_MultiThread(int width, int height, int srcStride,
                                                   unsigned char* src, unsigned char* dst);
TQIPL_API void IPL_ARGB_To_YUVP422_709(int width, int height, int srcStride, unsigned char* src,
                                       unsigned char* dst);
TQIPL_API void IPL_ARGB_To_YUVP422_709_MultiThread(int width, int height, int srcStride,
                                                   unsigned char* src, unsigned char* dst);

// The luma of packed 4:2:2 as a plane of bytes. With half 0: width bytes a row. With half not 0:
// the first luma of every pair of every second row, (width >> 1) by (height >> 1). Pointers are
// not checked.
//
// On one processor the forms take (width >> 1) bytes a row whatever half is (with half 0, of every
// row): kept on purpose.
TQIPL_API void IPL_YUYV_To_YMultiThread(int width, int height, int srcStride, unsigned char* src,
                                        int dstStride, unsigned char* dst, int half);
TQIPL_API void IPL_UYVY_To_YMultiThread(int width, int height, int srcStride, unsigned char* src,
                                        int dstStride, unsigned char* dst, int half);

// Three bytes a pixel (red, green, blue) to four (blue, green, red, 0: not 255), and back without
// the fourth. IPL_BGRA2RGB writes one zero byte behind the last pixel of each row; the destination
// must have room for it. With dense rows the next row's first pixel then stands (from the bottom
// up, at a stride of -3 * width, the zero). Heights below 1 do nothing. The _MultiThread forms do
// nothing for a null pointer; the plain forms do not check.
TQIPL_API void IPL_RGB2BGRA(int width, int height, int srcStride, unsigned char* src, int dstStride,
                            unsigned char* dst);
TQIPL_API void IPL_RGB2BGRA_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                        int dstStride, unsigned char* dst);
TQIPL_API void IPL_BGRA2RGB(int width, int height, int srcStride, unsigned char* src, int dstStride,
                            unsigned char* dst);
TQIPL_API void IPL_BGRA2RGB_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                        int dstStride, unsigned char* dst);
