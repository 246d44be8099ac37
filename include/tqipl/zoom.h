#pragma once

#include <tqipl/export.h>

// Scaling of 8-bit images from srcWidth x srcHeight to dstWidth x dstHeight pixels. The C1R forms
// take one byte a pixel, the C4R forms four, which are scaled alike. Strides are in bytes. Source
// and destination must not overlap.
//
// All methods but nearest neighbour begin alike. A null pointer does nothing. Equal sizes are
// copied. If the source has a width or height below 1, the destination is set to zero bytes, alpha
// included; a destination width or height below 1 writes nothing.
//
// Each MultiThread form gives the bytes of its plain form, at any number of processors.

// Nearest neighbour: the pixel at the truncated position index * src / dst. A null pointer does
// nothing. A source width or height of 0 takes the first column or row all the same, and a negative
// one leaves the destination at zero. There is no MultiThread form.
TQIPL_API void IPL_ZoomNN_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                 int dstWidth, int dstHeight, int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomNN_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                 int dstWidth, int dstHeight, int dstStride, unsigned char* dst);

// Linear: between the four pixels around the position, pixel centres aligned, in single precision
// and truncated. Enlarging and reducing alike: a strong reduction skips pixels.
TQIPL_API void IPL_ZoomLinear_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                     int dstWidth, int dstHeight, int dstStride,
                                     unsigned char* dst);
TQIPL_API void IPL_ZoomLinearMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride,
                                                unsigned char* src, int dstWidth, int dstHeight,
                                                int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomLinear_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                     int dstWidth, int dstHeight, int dstStride,
                                     unsigned char* dst);
TQIPL_API void IPL_ZoomLinearMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride,
                                                unsigned char* src, int dstWidth, int dstHeight,
                                                int dstStride, unsigned char* dst);
