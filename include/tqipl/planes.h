#pragma once

#include <tqipl/array.h>
#include <tqipl/export.h>
#include <tqipl/types.h>

// Packed images to planes and back, and the change of colour matrix of YUV images.
//
// Widths and heights are in pixels, strides in bytes. A height below 1 does nothing. In 4:2:2
// formats the last column of an odd width is neither read nor written. Pointers are not checked.
// Each MultiThread form gives the bytes of its plain form, at any number of processors, but for
// planes with several strides, as told below.

// One byte a sample: ARGB and BGR24 give blue, green, red (and alpha); AYUV gives Y, U, V (and
// alpha); YUYV and UYVY give Y with width samples a row, U and V with width / 2. The number of
// strides, 3 or 4, says whether alpha is among the planes of ARGB and AYUV, which do nothing for
// any other number. Built from three planes, their alpha is 255. Any other format does nothing.
// Arrays are read through CTQArray::GetAt: one that is too short repeats its last element. The
// MultiThread forms do not change the caller's arrays; they move each plane from band to band by
// the stride of its own index, so one plane with several strides comes out otherwise than in the
// plain form.
TQIPL_API void IPL_SplitColor(TQ_COLOR_FORMAT format, int width, int height, int stride,
                              unsigned char* image, CTQArray<int, int>& strides,
                              CTQArray<unsigned char*, unsigned char*>& planes);
TQIPL_API void IPL_SplitColorMultiThread(TQ_COLOR_FORMAT format, int width, int height, int stride,
                                         unsigned char* image, CTQArray<int, int>& strides,
                                         CTQArray<unsigned char*, unsigned char*>& planes);
TQIPL_API void IPL_BuildColor(TQ_COLOR_FORMAT format, int width, int height,
                              CTQArray<int, int>& strides,
                              CTQArray<unsigned char*, unsigned char*>& planes, int stride,
                              unsigned char* image);
TQIPL_API void IPL_BuildColorMultiThread(TQ_COLOR_FORMAT format, int width, int height,
                                         CTQArray<int, int>& strides,
                                         CTQArray<unsigned char*, unsigned char*>& planes,
                                         int stride, unsigned char* image);

// From one matrix to another, in place, for AYUV, YUYV and UYVY in studio range: ITU-R BT.601,
// BT.709 and BT.2020 in 4096ths, rounded. Luma comes out limited to 16 to 235, chroma to 16 to 240.
// The chroma of a pair is made with the mean of its lumas. Alpha stays. Any other format does
// nothing. The matrix from 709 to 2020 is not the inverse of the one from 2020 to 709.
TQIPL_API void IPL_YUV601x709(TQ_COLOR_FORMAT format, int width, int height, int stride,
                              unsigned char* image);
TQIPL_API void IPL_YUV601x709MultiThread(TQ_COLOR_FORMAT format, int width, int height, int stride,
                                         unsigned char* image);
TQIPL_API void IPL_YUV709x601(TQ_COLOR_FORMAT format, int width, int height, int stride,
                              unsigned char* image);
TQIPL_API void IPL_YUV709x601MultiThread(TQ_COLOR_FORMAT format, int width, int height, int stride,
                                         unsigned char* image);
TQIPL_API void IPL_YUV2020x709(TQ_COLOR_FORMAT format, int width, int height, int stride,
                               unsigned char* image);
TQIPL_API void IPL_YUV2020x709MultiThread(TQ_COLOR_FORMAT format, int width, int height, int stride,
                                          unsigned char* image);
TQIPL_API void IPL_YUV709x2020(TQ_COLOR_FORMAT format, int width, int height, int stride,
                               unsigned char* image);
TQIPL_API void IPL_YUV709x2020MultiThread(TQ_COLOR_FORMAT format, int width, int height, int stride,
                                          unsigned char* image);

// The same from one image to another, which may have another of the three formats. From AYUV to
// 4:2:2 the chroma of two pixels is averaged; from 4:2:2 to AYUV each pixel's chroma is made with
// its own luma, and alpha is 255. From YUYV to YUYV or UYVY the first luma of each pair is taken
// less 128 instead of less 16: kept on purpose. src and dst may be the same image if the formats
// are equal.
TQIPL_API void IPL_YUV601x709(int width, int height, TQ_COLOR_FORMAT srcFormat, int srcStride,
                              unsigned char* src, TQ_COLOR_FORMAT dstFormat, int dstStride,
                              unsigned char* dst);
TQIPL_API void IPL_YUV709x601(int width, int height, TQ_COLOR_FORMAT srcFormat, int srcStride,
                              unsigned char* src, TQ_COLOR_FORMAT dstFormat, int dstStride,
                              unsigned char* dst);

// The same in place for planar 4:2:2, Y with one byte a pixel, U and V with one for two pixels.
TQIPL_API void IPL_YUVP_422_601x709(int width, int height, int strideY, unsigned char* y,
                                    int strideU, unsigned char* u, int strideV, unsigned char* v);
TQIPL_API void IPL_YUVP_422_601x709MultiThread(int width, int height, int strideY, unsigned char* y,
                                               int strideU, unsigned char* u, int strideV,
                                               unsigned char* v);
TQIPL_API void IPL_YUVP_422_709x601(int width, int height, int strideY, unsigned char* y,
                                    int strideU, unsigned char* u, int strideV, unsigned char* v);
TQIPL_API void IPL_YUVP_422_709x601MultiThread(int width, int height, int strideY, unsigned char* y,
                                               int strideU, unsigned char* u, int strideV,
                                               unsigned char* v);
TQIPL_API void IPL_YUVP_422_2020x709(int width, int height, int strideY, unsigned char* y,
                                     int strideU, unsigned char* u, int strideV, unsigned char* v);
TQIPL_API void IPL_YUVP_422_2020x709MultiThread(int width, int height, int strideY,
                                                unsigned char* y, int strideU, unsigned char* u,
                                                int strideV, unsigned char* v);
TQIPL_API void IPL_YUVP_422_709x2020(int width, int height, int strideY, unsigned char* y,
                                     int strideU, unsigned char* u, int strideV, unsigned char* v);
TQIPL_API void IPL_YUVP_422_709x2020MultiThread(int width, int height, int strideY,
                                                unsigned char* y, int strideU, unsigned char* u,
                                                int strideV, unsigned char* v);
