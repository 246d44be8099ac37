#pragma once

#include <tqipl/export.h>
#include <tqipl/types.h>

// Hue, saturation and value of RGB and packed 4:2:2 pixels, in floats and in bytes. The groups
// below do not share a formula, on purpose: results of one are not inputs of another unless it says
// so.
//
// Widths and heights are in pixels. Strides of byte images are in bytes; strides of float images
// and float planes are in floats. Source and destination must not overlap. With an odd width the
// last pixel of a 4:2:2 row is neither read nor written. A height below 1 does nothing. Pointers
// are checked only where it is said. Arithmetic is in single precision, one rounding for each
// operation in a fixed order; values that do not fit a byte (NaN included) give the low eight bits
// of their truncation to 32 bits, which is 0 for what 32 bits cannot hold.
//
// Each _MultiThread form gives the bytes of its plain form, at any number of processors.

// One pixel. r, g, b are on the 0 to 255 scale; h comes in degrees from 0 to 360, s and v from 0 to
// 1. On a tie for the largest channel red goes before green before blue. Grey has h and s 0.
TQIPL_API void IPL_RGB2HSV_32f_32f(float r, float g, float b, float& h, float& s, float& v);
TQIPL_API void IPL_RGB2HSV_8u_32f(unsigned char r, unsigned char g, unsigned char b, float& h,
                                  float& s, float& v);

// One pixel back. The sector is h / 60 truncated; outside 0 to 5 (360 degrees, for one) nothing is
// stored. The largest channel is v * 255 truncated, without a limit; the others have 0.01 added and
// are limited to 255.
TQIPL_API void IPL_HSV2RGB_32f_8u(float h, float s, float v, unsigned char& r, unsigned char& g,
                                  unsigned char& b);

// The same for images of four bytes a pixel (blue, green, red, alpha) and three float planes. Null
// pointers do nothing. Alpha is not read.
TQIPL_API void IPL_BGRA2HSV(int width, int height, int srcStride, unsigned char* src, int hStride,
                            float* h, int sStride, float* s, int vStride, float* v);
TQIPL_API void IPL_BGRA2HSV_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                        int hStride, float* h, int sStride, float* s, int vStride,
                                        float* v);

// The inverse. With an alpha plane (0 to 1) byte 3 of every pixel is alpha * 255 rounded and
// limited to 0 to 255 (0 for NaN and for what 32 bits cannot hold), also where no colour is stored;
// without one byte 3 is not written. The plain forms do not check pointers; the _MultiThread forms
// do nothing when one is null, alpha included.
TQIPL_API void IPL_HSV2BGRA(int width, int height, int hStride, float* h, int sStride, float* s,
                            int vStride, float* v, int alphaStride, float* alpha, int dstStride,
                            unsigned char* dst);
TQIPL_API void IPL_HSV2BGRA_MultiThread(int width, int height, int hStride, float* h, int sStride,
                                        float* s, int vStride, float* v, int alphaStride,
                                        float* alpha, int dstStride, unsigned char* dst);
TQIPL_API void IPL_HSV2BGRA(int width, int height, int hStride, float* h, int sStride, float* s,
                            int vStride, float* v, int dstStride, unsigned char* dst);
TQIPL_API void IPL_HSV2BGRA_MultiThread(int width, int height, int hStride, float* h, int sStride,
                                        float* s, int vStride, float* v, int dstStride,
                                        unsigned char* dst);

// Another inverse: the sector is floor(h / 60), every sector outside 0 to 4 counts as the last, and
// results are limited to 0 to 255 before they are truncated. Byte 3 is not written. Pointers are
// not checked. There is no _MultiThread form.
TQIPL_API void IPL_HSV_To_BGRA(int width, int height, int hStride, float* h, int sStride, float* s,
                               int vStride, float* v, int dstStride, unsigned char* dst);

// Studio-range YUYV to hue in degrees, saturation, and value on the 0 to 255 scale. The RGB between
// is not limited, so value may lie outside 0 to 255 and saturation outside 0 to 1. The HSV forms
// write three floats a pixel, the HSVP forms three planes of width * height floats behind one
// pointer. Pointers are not checked.
TQIPL_API void IPL_YUYV2HSV_601(int width, int height, int srcStride, unsigned char* src,
                                int dstStride, float* dst);
TQIPL_API void IPL_YUYV2HSV_601_MultiThread(int width, int height, int srcStride,
                                            unsigned char* src, int dstStride, float* dst);
TQIPL_API void IPL_YUYV2HSV_709(int width, int height, int srcStride, unsigned char* src,
                                int dstStride, float* dst);
TQIPL_API void IPL_YUYV2HSV_709_MultiThread(int width, int height, int srcStride,
                                            unsigned char* src, int dstStride, float* dst);
TQIPL_API void IPL_YUYV2HSVP_601(int width, int height, int srcStride, unsigned char* src,
                                 float* planes);
TQIPL_API void IPL_YUYV2HSVP_601_MultiThread(int width, int height, int srcStride,
                                             unsigned char* src, float* planes);
TQIPL_API void IPL_YUYV2HSVP_709(int width, int height, int srcStride, unsigned char* src,
                                 float* planes);
TQIPL_API void IPL_YUYV2HSVP_709_MultiThread(int width, int height, int srcStride,
                                             unsigned char* src, float* planes);

// The inverse, from the same scales. A sector outside 0 to 5 (360 degrees, for one) gives black.
// Luma is limited to 16 to 235, chroma to 16 to 240; chroma bytes of a pair are averaged, a tie
// upwards.
TQIPL_API void IPL_HSV2YUYV_601(int width, int height, int srcStride, float* src, int dstStride,
                                unsigned char* dst);
TQIPL_API void IPL_HSV2YUYV_601_MultiThread(int width, int height, int srcStride, float* src,
                                            int dstStride, unsigned char* dst);
TQIPL_API void IPL_HSV2YUYV_709(int width, int height, int srcStride, float* src, int dstStride,
                                unsigned char* dst);
TQIPL_API void IPL_HSV2YUYV_709_MultiThread(int width, int height, int srcStride, float* src,
                                            int dstStride, unsigned char* dst);
TQIPL_API void IPL_HSVP2YUYV_601(int width, int height, float* planes, int dstStride,
                                 unsigned char* dst);
TQIPL_API void IPL_HSVP2YUYV_601_MultiThread(int width, int height, float* planes, int dstStride,
                                             unsigned char* dst);
TQIPL_API void IPL_HSVP2YUYV_709(int width, int height, float* planes, int dstStride,
                                 unsigned char* dst);
TQIPL_API void IPL_HSVP2YUYV_709_MultiThread(int width, int height, float* planes, int dstStride,
                                             unsigned char* dst);

// Hue, saturation and value in one byte each, three bytes a pixel; the circle is 255 long, so that
// green is 85 and blue 170. By tables and integers; unrelated to the float forms.
//
// IPL_BGRA2HSV_8u_C3R writes one zero byte behind the last pixel of each row: the destination must
// have room for it. With dense rows the next row's first pixel then stands (from the bottom up, at
// a stride of -3 * width, the zero). It does not check pointers. The other plain forms and all
// _MultiThread forms do nothing for a null src or dst; the alpha plane (one byte a pixel, copied to
// byte 3) is not checked.
TQIPL_API void IPL_BGRA2HSV_8u_C3R(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst);
TQIPL_API void IPL_BGRA2HSV_8u_C3R_MultiThread(int width, int height, int srcStride,
                                               unsigned char* src, int dstStride,
                                               unsigned char* dst);
TQIPL_API void IPL_HSV2BGRA_8u_C3R(int width, int height, int srcStride, unsigned char* src,
                                   int alphaStride, unsigned char* alpha, int dstStride,
                                   unsigned char* dst);
TQIPL_API void IPL_HSV2BGRA_8u_C3R_MultiThread(int width, int height, int srcStride,
                                               unsigned char* src, int alphaStride,
                                               unsigned char* alpha, int dstStride,
                                               unsigned char* dst);

// The same for studio-range 4:2:2, with the matrix of ITU-R BT.709 in fixed point whatever `matrix`
// says. Nothing is written behind a row. Back to 4:2:2, chroma is made of the pair's channel sums.
TQIPL_API void IPL_YUYV2HSV_8u_709(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst);
TQIPL_API void IPL_YUYV2HSV_8u_709_MultiThread(int width, int height, int srcStride,
                                               unsigned char* src, int dstStride,
                                               unsigned char* dst);
TQIPL_API void IPL_HSV2YUYV_8u_709(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst);
TQIPL_API void IPL_HSV2YUYV_8u_709_MultiThread(int width, int height, int srcStride,
                                               unsigned char* src, int dstStride,
                                               unsigned char* dst);
TQIPL_API void IPL_UYVY2HSV_8u(int width, int height, int srcStride, unsigned char* src,
                               int dstStride, unsigned char* dst, TQ_COLOR_MATRIX matrix);
TQIPL_API void IPL_UYVY2HSV_8u_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                           int dstStride, unsigned char* dst,
                                           TQ_COLOR_MATRIX matrix);
TQIPL_API void IPL_HSV2UYVY_8u(int width, int height, int srcStride, unsigned char* src,
                               int dstStride, unsigned char* dst, TQ_COLOR_MATRIX matrix);
TQIPL_API void IPL_HSV2UYVY_8u_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                           int dstStride, unsigned char* dst,
                                           TQ_COLOR_MATRIX matrix);
