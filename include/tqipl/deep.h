#pragma once

#include <tqipl/array.h>
#include <tqipl/export.h>

// Formats with more than eight bits a sample, all little-endian. Apart from the conversions to BGRA
// and one luminance, samples are moved and shifted and nothing is rounded.
//
// Widths and heights are in pixels, strides in bytes (in ints for Lum32). Source and destination
// must not overlap. A height below 1 does nothing. Pointers are not checked.
//
// Formats that lie in several planes come as an array of strides and an array of plane pointers,
// which are read through CTQArray::GetAt: an array that is too short repeats its last element, and
// an empty one grows to one element. The MultiThread forms do not change the caller's arrays.
//
// Each MultiThread form gives the bytes of its plain form, at any number of processors, unless one
// plane comes with several strides: planes move from band to band by the stride of their own index.

// V210: six pixels in four 32-bit words, each of three 10-bit samples from bit 0 up: U0 Y0 V0,
// Y1 U1 Y2, V1 Y3 U2, Y4 V2 Y5 (the v210 layout of SMPTE 4:2:2 video files). Bits 30 and 31 are
// zero when written and ignored when read. The last width % 6 pixels are neither read nor written.

// To 8-bit packed 4:2:2 and to planar 4:2:2 in one block (Y rows of width bytes; U at
// width * height, V half of that further on, both with row r at (r * width) / 2; `ignored` plays no
// part): the upper eight bits of each sample.
TQIPL_API void IPL_V210_To_UYVY(int width, int height, int srcStride, unsigned char* src,
                                int dstStride, unsigned char* dst);
TQIPL_API void IPL_V210_To_YUYV(int width, int height, int srcStride, unsigned char* src,
                                int dstStride, unsigned char* dst);
TQIPL_API void IPL_V210_To_YUVP422(int width, int height, int srcStride, unsigned char* src,
                                   int ignored, unsigned char* dst);

// To BGRA from the upper eight bits, studio range, as IPL_UYVY2ARGB_601 and _709 do; alpha is 255.
TQIPL_API void IPL_V210_To_BGRA_601(int width, int height, int srcStride, unsigned char* src,
                                    int dstStride, unsigned char* dst);
TQIPL_API void IPL_V210_To_BGRA_601MultiThread(int width, int height, int srcStride,
                                               unsigned char* src, int dstStride,
                                               unsigned char* dst);
TQIPL_API void IPL_V210_To_BGRA_709(int width, int height, int srcStride, unsigned char* src,
                                    int dstStride, unsigned char* dst);
TQIPL_API void IPL_V210_To_BGRA_709MultiThread(int width, int height, int srcStride,
                                               unsigned char* src, int dstStride,
                                               unsigned char* dst);

// To and from YUVP216: 16-bit planes, 0 for Y, 1 for U, 2 for V (one sample a pixel, and one a
// pair). Ten bits stand in the upper bits of sixteen; the low six are zero, or dropped.
TQIPL_API void IPL_V210_To_YUVP216(int width, int height, int srcStride, unsigned char* src,
                                   CTQArray<int, int>& strides,
                                   CTQArray<unsigned char*, unsigned char*>& planes);
TQIPL_API void IPL_V210_To_YUVP216MultiThread(int width, int height, int srcStride,
                                              unsigned char* src, CTQArray<int, int>& strides,
                                              CTQArray<unsigned char*, unsigned char*>& planes);
TQIPL_API void IPL_YUVP216_To_V210(int width, int height, CTQArray<int, int>& strides,
                                   CTQArray<unsigned char*, unsigned char*>& planes, int dstStride,
                                   unsigned char* dst);
TQIPL_API void IPL_YUVP216_To_V210MultiThread(int width, int height, CTQArray<int, int>& strides,
                                              CTQArray<unsigned char*, unsigned char*>& planes,
                                              int dstStride, unsigned char* dst);

// The luma samples as they are, 0 to 1023, in ints.
TQIPL_API void IPL_V210_To_Lum32(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, int* dst);
TQIPL_API void IPL_V210_To_Lum32MultiThread(int width, int height, int srcStride,
                                            unsigned char* src, int dstStride, int* dst);

// V216: 16-bit samples U, Y0, V, Y1 for two pixels. With an odd width the last pixel is neither
// read nor written, but for IPL_V216_To_Lum32, which takes every luma.

// To BGRA from the high bytes, as from V210; to and from the 16-bit planes of YUVP216, and to ints,
// with the samples as they are.
TQIPL_API void IPL_V216_To_BGRA_601(int width, int height, int srcStride, unsigned char* src,
                                    int dstStride, unsigned char* dst);
TQIPL_API void IPL_V216_To_BGRA_601MultiThread(int width, int height, int srcStride,
                                               unsigned char* src, int dstStride,
                                               unsigned char* dst);
TQIPL_API void IPL_V216_To_BGRA_709(int width, int height, int srcStride, unsigned char* src,
                                    int dstStride, unsigned char* dst);
TQIPL_API void IPL_V216_To_BGRA_709MultiThread(int width, int height, int srcStride,
                                               unsigned char* src, int dstStride,
                                               unsigned char* dst);
TQIPL_API void IPL_V216_To_YUVP216(int width, int height, int srcStride, unsigned char* src,
                                   CTQArray<int, int>& strides,
                                   CTQArray<unsigned char*, unsigned char*>& planes);
TQIPL_API void IPL_V216_To_YUVP216MultiThread(int width, int height, int srcStride,
                                              unsigned char* src, CTQArray<int, int>& strides,
                                              CTQArray<unsigned char*, unsigned char*>& planes);
TQIPL_API void IPL_YUVP216_To_V216(int width, int height, CTQArray<int, int>& strides,
                                   CTQArray<unsigned char*, unsigned char*>& planes, int dstStride,
                                   unsigned char* dst);
TQIPL_API void IPL_YUVP216_To_V216MultiThread(int width, int height, CTQArray<int, int>& strides,
                                              CTQArray<unsigned char*, unsigned char*>& planes,
                                              int dstStride, unsigned char* dst);
TQIPL_API void IPL_V216_To_Lum32(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, int* dst);
TQIPL_API void IPL_V216_To_Lum32MultiThread(int width, int height, int srcStride,
                                            unsigned char* src, int dstStride, int* dst);

// Deep BGR: BGRTQ10b is a 32-bit word of red in bits 31 to 22, green in 21 to 12, blue in 11 to 2;
// BGR10b one of blue in bits 29 to 20, green in 19 to 10, red in 9 to 0; the two other bits are
// zero when written and ignored when read. (IPL_BGR10b_To_Lum and IPL_BGR10b_To_Lum32 read the
// BGRTQ10b word, in spite of their names.) BGRTQ16b and BGR16b are 16-bit blue, green, red.

// From one to another. Bits are dropped or filled with zero, never rounded or repeated. The BGRA
// forms do not write alpha.
TQIPL_API void IPL_BGRTQ10b_To_BGRA(int width, int height, int srcStride, unsigned char* src,
                                    int dstStride, unsigned char* dst);
TQIPL_API void IPL_BGRTQ10b_To_BGRAMultiThread(int width, int height, int srcStride,
                                               unsigned char* src, int dstStride,
                                               unsigned char* dst);
TQIPL_API void IPL_BGRTQ10b_To_BGRTQ16b(int width, int height, int srcStride, unsigned char* src,
                                        int dstStride, unsigned char* dst);
TQIPL_API void IPL_BGRTQ10b_To_BGRTQ16bMultiThread(int width, int height, int srcStride,
                                                   unsigned char* src, int dstStride,
                                                   unsigned char* dst);
TQIPL_API void IPL_BGRTQ16b_To_BGRA(int width, int height, int srcStride, unsigned char* src,
                                    int dstStride, unsigned char* dst);
TQIPL_API void IPL_BGRTQ16b_To_BGRAMultiThread(int width, int height, int srcStride,
                                               unsigned char* src, int dstStride,
                                               unsigned char* dst);
TQIPL_API void IPL_BGRTQ16b_To_BGRTQ10b(int width, int height, int srcStride, unsigned char* src,
                                        int dstStride, unsigned char* dst);
TQIPL_API void IPL_BGRTQ16b_To_BGRTQ10bMultiThread(int width, int height, int srcStride,
                                                   unsigned char* src, int dstStride,
                                                   unsigned char* dst);

// BGRA16b: plane 0 of 16-bit blue, green, red, alpha, and plane 1 of one 16-bit value a pixel, the
// luminance (117 * blue + 601 * green + 306 * red + 512) >> 10 of the 16-bit samples, limited to
// 255. Alpha is 0x3FC0 from BGR10b and 255 from BGR16b. Back, only plane 0 is read, without alpha.
TQIPL_API void IPL_BGR10b_To_BGRA16b(int width, int height, int srcStride, unsigned char* src,
                                     CTQArray<int, int>& strides,
                                     CTQArray<unsigned char*, unsigned char*>& planes);
TQIPL_API void IPL_BGR10b_To_BGRA16bMultiThread(int width, int height, int srcStride,
                                                unsigned char* src, CTQArray<int, int>& strides,
                                                CTQArray<unsigned char*, unsigned char*>& planes);
TQIPL_API void IPL_BGR16b_To_BGRA16b(int width, int height, int srcStride, unsigned char* src,
                                     CTQArray<int, int>& strides,
                                     CTQArray<unsigned char*, unsigned char*>& planes);
TQIPL_API void IPL_BGR16b_To_BGRA16bMultiThread(int width, int height, int srcStride,
                                                unsigned char* src, CTQArray<int, int>& strides,
                                                CTQArray<unsigned char*, unsigned char*>& planes);
TQIPL_API void IPL_BGRA16b_To_BGR10b(int width, int height, CTQArray<int, int>& strides,
                                     CTQArray<unsigned char*, unsigned char*>& planes,
                                     int dstStride, unsigned char* dst);
TQIPL_API void IPL_BGRA16b_To_BGR10bMultiThread(int width, int height, CTQArray<int, int>& strides,
                                                CTQArray<unsigned char*, unsigned char*>& planes,
                                                int dstStride, unsigned char* dst);
TQIPL_API void IPL_BGRA16b_To_BGR16b(int width, int height, CTQArray<int, int>& strides,
                                     CTQArray<unsigned char*, unsigned char*>& planes,
                                     int dstStride, unsigned char* dst);
TQIPL_API void IPL_BGRA16b_To_BGR16bMultiThread(int width, int height, CTQArray<int, int>& strides,
                                                CTQArray<unsigned char*, unsigned char*>& planes,
                                                int dstStride, unsigned char* dst);
