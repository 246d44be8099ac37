#pragma once

#include <tqipl/export.h>

// Luminance planes of BGR images: 117 * blue + 601 * green + 306 * red, in 1024ths. These are the
// luma weights of ITU-R BT.601 (0.114, 0.587, 0.299) in ten bits.
//
// Sizes are in pixels. srcStride is in bytes. dstStride is in bytes for the byte planes and in
// ints, not bytes, for the Lum32 planes. A height or a width below 1 writes nothing. Pointers
// are not checked. No alignment is needed. Source and destination must not overlap, except that
// an image may be converted in place (the same address, the same row distance in bytes).
//
// Each _MultiThread form gives the bytes of its plain form, at any number of processors.

// Four bytes a pixel (blue, green, red, alpha) to one byte, rounded to nearest.
TQIPL_API void IPL_ARGB2LUM(int width, int height, int srcStride, unsigned char* src, int dstStride,
                            unsigned char* dst);
TQIPL_API void IPL_ARGB2LUM_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                        int dstStride, unsigned char* dst);

// 32-bit little-endian words (red in bits 31 to 22, green in 21 to 12, blue in 11 to 2) to one
// byte, from the upper eight bits of each channel.
TQIPL_API void IPL_BGR10b_To_Lum(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, unsigned char* dst);
TQIPL_API void IPL_BGR10b_To_Lum_MultiThread(int width, int height, int srcStride,
                                             unsigned char* src, int dstStride, unsigned char* dst);

// Six bytes a pixel (16-bit little-endian blue, green, red) to one byte, from the high byte of
// each channel.
TQIPL_API void IPL_BGR16b_To_Lum(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, unsigned char* dst);
TQIPL_API void IPL_BGR16b_To_Lum_MultiThread(int width, int height, int srcStride,
                                             unsigned char* src, int dstStride, unsigned char* dst);

// Four bytes a pixel to the unrounded sum, at most 255 * 1024.
TQIPL_API void IPL_BGRA_To_Lum32(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, int* dst);
TQIPL_API void IPL_BGRA_To_Lum32_MultiThread(int width, int height, int srcStride,
                                             unsigned char* src, int dstStride, int* dst);

// 10-bit words to the unrounded sum of the whole ten bits, at most 1023 * 1024.
TQIPL_API void IPL_BGR10b_To_Lum32(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, int* dst);
TQIPL_API void IPL_BGR10b_To_Lum32_MultiThread(int width, int height, int srcStride,
                                               unsigned char* src, int dstStride, int* dst);

// Six bytes a pixel to the unrounded sum of the whole sixteen bits, at most 65535 * 1024.
TQIPL_API void IPL_BGR16b_To_Lum32(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, int* dst);
TQIPL_API void IPL_BGR16b_To_Lum32_MultiThread(int width, int height, int srcStride,
                                               unsigned char* src, int dstStride, int* dst);
