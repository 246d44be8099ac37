#pragma once

#include <tqipl/export.h>

// Scaling of 8-bit images from srcWidth x srcHeight to dstWidth x dstHeight pixels. The C1R forms
// take one byte a pixel, the C4R forms four, which are scaled alike; where a method weighs by
// luminance, the four are B, G, R, A. Strides are in bytes and may be negative; row offsets are
// formed in 32 bits, so that an image must lie within 2^31 bytes. Source and destination must not
// overlap, but for a copy onto itself at equal sizes, and rows of the destination must not overlap
// either. Throws std::bad_alloc when memory is exhausted; the destination may then be written in
// part.
//
// All methods but nearest neighbour begin alike. A null pointer does nothing. Equal sizes are
// copied. If the source has a width or height below 1, the destination is set to zero bytes, alpha
// included; a destination width or height below 1 writes nothing.
//
// Each MultiThread form gives the bytes of its plain form, at any number of processors, but for
// the cubic, super and TFI forms that say otherwise, and for calls that are handed to these.

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

// Linear correct: linear with adapted fractions, which keep a step of the picture on the side of
// the position that it belongs to. The fractions follow from the 4 x 4 pixels around the position,
// in the four-channel forms from their luminance (IPL_ARGB2LUM), and serve all channels. Where
// these pixels would leave the image, one cell at the left and top and two at the right and bottom,
// it is the linear zoom. For enlargement by 2 or more on both axes: any other call is
// IPL_ZoomLinear.
TQIPL_API void IPL_ZoomLinearCorrect_8u_C1R(int srcWidth, int srcHeight, int srcStride,
                                            unsigned char* src, int dstWidth, int dstHeight,
                                            int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomLinearCorrectMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride,
                                                       unsigned char* src, int dstWidth,
                                                       int dstHeight, int dstStride,
                                                       unsigned char* dst);
TQIPL_API void IPL_ZoomLinearCorrect_8u_C4R(int srcWidth, int srcHeight, int srcStride,
                                            unsigned char* src, int dstWidth, int dstHeight,
                                            int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomLinearCorrectMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride,
                                                       unsigned char* src, int dstWidth,
                                                       int dstHeight, int dstStride,
                                                       unsigned char* dst);

// Cubic: four taps an axis, in 1024ths, first along the rows and then, unrounded, along the
// columns; pixel centres aligned. Taps outside the image are left out and the others weigh more.
// Results are rounded to nearest and held in 0 to 255. Enlarging and reducing alike: a strong
// reduction skips pixels.
//
// IPL_ZoomCubic_8u_C1R with equal widths steps down the source by dstWidth bytes, whatever
// srcStride is: right for rows without padding only. The other three forms honour srcStride there,
// so that the MultiThread form differs from the plain one for such calls.
TQIPL_API void IPL_ZoomCubic_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                    int dstWidth, int dstHeight, int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomCubicMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride,
                                               unsigned char* src, int dstWidth, int dstHeight,
                                               int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomCubic_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                    int dstWidth, int dstHeight, int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomCubicMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride,
                                               unsigned char* src, int dstWidth, int dstHeight,
                                               int dstStride, unsigned char* dst);

// Six-tap cubic: as IPL_ZoomCubic with all six taps of the kernel, and every form honours
// srcStride. The weights of a pair of lengths are kept for later calls; beyond some 300 pairs, the
// ones made first that are not in use go.
TQIPL_API void IPL_Zoom6Cubic_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                     int dstWidth, int dstHeight, int dstStride,
                                     unsigned char* dst);
TQIPL_API void IPL_Zoom6CubicMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride,
                                                unsigned char* src, int dstWidth, int dstHeight,
                                                int dstStride, unsigned char* dst);
TQIPL_API void IPL_Zoom6Cubic_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                     int dstWidth, int dstHeight, int dstStride,
                                     unsigned char* dst);
TQIPL_API void IPL_Zoom6CubicMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride,
                                                unsigned char* src, int dstWidth, int dstHeight,
                                                int dstStride, unsigned char* dst);

// Cubic correct: the adapted fractions of IPL_ZoomLinearCorrect choose among 256 rows of five taps
// an axis, in 1024ths; rounded to nearest and held in 0 to 255. The outer two cells on every side
// are the linear zoom. For enlargement by 2 or more on both axes: any other call is IPL_Zoom6Cubic.
TQIPL_API void IPL_ZoomCubicCorrect_8u_C1R(int srcWidth, int srcHeight, int srcStride,
                                           unsigned char* src, int dstWidth, int dstHeight,
                                           int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomCubicCorrectMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride,
                                                      unsigned char* src, int dstWidth,
                                                      int dstHeight, int dstStride,
                                                      unsigned char* dst);
TQIPL_API void IPL_ZoomCubicCorrect_8u_C4R(int srcWidth, int srcHeight, int srcStride,
                                           unsigned char* src, int dstWidth, int dstHeight,
                                           int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomCubicCorrectMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride,
                                                      unsigned char* src, int dstWidth,
                                                      int dstHeight, int dstStride,
                                                      unsigned char* dst);

// Super: each pixel is the mean of the source area that it covers, pixels at the area's edges by
// the part covered, in single precision and truncated. The method for reduction; a call that
// enlarges either axis is IPL_Zoom6Cubic.
//
// On an axis of equal lengths the last two columns, or rows, come out about twice as bright as they
// should, held at 255. IPL_ZoomSuper_8u_C4R forms the lower edge of the area in another way than
// IPL_ZoomSuperMultiThread_8u_C4R, so that the two may differ by a little in single rows.
TQIPL_API void IPL_ZoomSuper_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                    int dstWidth, int dstHeight, int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomSuperMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride,
                                               unsigned char* src, int dstWidth, int dstHeight,
                                               int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomSuper_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                    int dstWidth, int dstHeight, int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomSuperMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride,
                                               unsigned char* src, int dstWidth, int dstHeight,
                                               int dstStride, unsigned char* dst);

// JBI: a mean of the 5 x 5 source pixels around the position, weighed by distance and by the
// difference from a first estimate made by IPL_ZoomCubicCorrect (joint bilateral interpolation).
// The weights for difference follow the variance of the neighbourhood; the four-channel forms weigh
// by luminance (IPL_ARGB2LUM) for all channels. The outermost pixels are those of the estimate, in
// the four-channel forms a linear zoom of the source's own outermost pixels. Single precision,
// truncated. For enlargement of both axes: any other call is IPL_ZoomSuper.
TQIPL_API void IPL_ZoomJBI_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                  int dstWidth, int dstHeight, int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomJBIMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride,
                                             unsigned char* src, int dstWidth, int dstHeight,
                                             int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomJBI_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                  int dstWidth, int dstHeight, int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomJBIMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride,
                                             unsigned char* src, int dstWidth, int dstHeight,
                                             int dstStride, unsigned char* dst);

// TFI: between the four pixels around the position, weighed by distance, by how busy the picture is
// around each of them, and by their difference from a first mean. The corner pixels of source and
// destination coincide. Single precision, truncated; uses the C runtime's expf and sqrtf.
//
// The MultiThread forms measure the spread of the four pixels as a standard deviation in whole
// numbers, the plain ones as a variance: their pictures differ. The four-channel forms zoom each
// channel by itself; both of them split and join the channels on the thread pool. A source of one
// row or one column takes the nearest pixel in place of the missing one.
TQIPL_API void IPL_ZoomTFI_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                  int dstWidth, int dstHeight, int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomTFIMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride,
                                             unsigned char* src, int dstWidth, int dstHeight,
                                             int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomTFI_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                  int dstWidth, int dstHeight, int dstStride, unsigned char* dst);
TQIPL_API void IPL_ZoomTFIMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride,
                                             unsigned char* src, int dstWidth, int dstHeight,
                                             int dstStride, unsigned char* dst);
