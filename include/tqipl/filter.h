#pragma once

#include <tqipl/export.h>

// Smoothing of one 8-bit channel, fields to frames, and a measure of difference.
//
// Widths and heights are in pixels of one byte, strides in bytes between the starts of rows. Unless
// it is said otherwise, pointers, sizes and strides are not checked, a width or a height below 1
// does nothing, and source and destination must not overlap. Any thread may call at any time, with
// any parameters. Every routine but the measures may throw std::bad_alloc when memory is exhausted,
// the in-place forms too. The borders differ from routine to routine on purpose: hosts depend on
// each.
//
// The overloads with one image work in place. They take a buffer of width * height bytes, call the
// form with two images with the buffer as its destination, and copy width bytes a row of it back:
// all of them, also those that the form leaves unwritten, where the image then gets whatever the
// buffer held.

// The bilateral filter: each pixel becomes the mean of its neighbourhood, in which a neighbour
// weighs less with its distance and with the difference of its value from the centre's. radius is
// in pixels and fixes the weights by distance, sigma is in grey levels and fixes the weights by
// difference. Weights are whole numbers, and so are the sums and the truncated quotients of all
// forms; sums wrap in 32 bits. Throws std::bad_alloc for a radius whose table of weights takes 2^31
// bytes or more: from 11585 on in the direct form, from 2^28 on in the separable ones. The names
// are the interface, odd as some are: hosts link against them as they stand.

// The direct form, over a square of 2 * radius + 1 pixels clipped to the image. The weight by
// distance is exp(-(dx * dx + dy * dy) / (2 * radius * radius)) in 1024ths, the one by difference
// exp(-(d * d) / (2 * sigma * sigma)) in hundredths, both rounded. A quotient above 255 is stored
// as 255, any other by its low eight bits: in bright flat images the sum wraps from radius 5 on,
// and the negative quotient is stored so too. With a radius or sigma of 0 the image is copied. A
// negative sigma acts as its magnitude; a negative radius makes empty windows, which give 0.
TQIPL_API void IPL_Bilteral_8u_C1R(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst, int radius, int sigma);
TQIPL_API void IPL_Bilteral_8u_C1R(int width, int height, int stride, unsigned char* image,
                                   int radius, int sigma);

// The separable form: a horizontal pass, and a vertical one over its rounded results. The weight by
// distance k is the whole part of exp((2 * radius + 1 - k)^2 / (2 * radius * radius)), the one by
// difference that of the direct form in 1024ths. The result is limited to 16 to 235, whatever the
// image. The windows are clipped at the left, at the top and at the bottom. Not so at the right: in
// the last radius columns the horizontal window ends at dx = x + radius - width - 1, which leaves
// the centre out in the first of them, and from a radius of 3 on reads past the end of the row in
// the last ones. It reads there what the image's memory holds: the row's spare bytes, and then the
// rows that follow it in memory, which are those below it, or with a negative stride those above
// it. The memory is taken as height rows of |srcStride| bytes each: the row that is last in memory
// must be there to its whole stride, and what would lie beyond that does not take part. An empty
// window gives 0. This holds for a radius above the width too; a uniform image is then not always
// kept.
//
// If width, height, a stride, a pointer, radius or sigma is 0 nothing is written, and the in-place
// form copies its unwritten buffer to the image. A negative sigma acts as its magnitude; a negative
// radius makes empty windows. src and dst may be the same image.
TQIPL_API void IPL_BilteralEx_8u_C1R(int width, int height, int srcStride, unsigned char* src,
                                     int dstStride, unsigned char* dst, int radius, int sigma);
TQIPL_API void IPL_BilteralEx_8u_C1R(int width, int height, int stride, unsigned char* image,
                                     int radius, int sigma);

// The separable form on several threads, with other edges: another filter, not a faster one. No
// window is clipped; the image is continued on the left by its first radius columns in the same
// order, on the right by a reflection, at the top by a reflection. With a radius above the width
// its last column goes on at the left, and its first one, with which the reflection ends, at the
// right. At the bottom the vertical pass goes on into memory that nothing wrote: the last 2 *
// radius rows of the result depend on what a buffer of the memory manager held, the last radius of
// them altogether. All other rows are the same at any number of processors. The result is limited
// to 16 to 235. Throws std::bad_alloc also if width or height plus 2 * radius is above INT_MAX.
//
// If a pointer or a stride is 0, or if width, height, radius or sigma is below 1, nothing is
// written, and the in-place form copies its unwritten buffer to the image. src and dst may be the
// same image.
TQIPL_API void IPL_BilteralExMutiThread_8u_C1R(int width, int height, int srcStride,
                                               unsigned char* src, int dstStride,
                                               unsigned char* dst, int radius, int sigma);
TQIPL_API void IPL_BilteralExMutiThread_8u_C1R(int width, int height, int stride,
                                               unsigned char* image, int radius, int sigma);

// Gauss, mean and median: filters over a window, the same for every pixel.

// Gauss 3 x 3, rounded: weights 4 for the pixel, 2 for its neighbours in row and column, 1 for the
// diagonal ones, in sixteenths. First and last row and column are copied. If width or height is
// below 4, the rows of dst are copied to src: that direction is kept on purpose.
TQIPL_API void IPL_Gauss3x3_8u_C1R(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst);
TQIPL_API void IPL_Gauss3x3_8u_C1R(int width, int height, int stride, unsigned char* image);

// Gauss of any radius, which is also its sigma: the weights by distance of the direct bilateral
// filter, over the window clipped to the image. The sum wraps in 32 bits; its quotient by the sum
// of all weights is truncated and stored by its low eight bits. The divisor is not made smaller
// where the window is, so the image darkens towards its edges. With a radius of 0, width * height
// bytes are copied as one block, whatever the strides. A negative radius makes empty windows, which
// give 0. Throws std::bad_alloc for a radius of 11585 or more.
TQIPL_API void IPL_Gauss_8u_C1R(int width, int height, int srcStride, unsigned char* src,
                                int dstStride, unsigned char* dst, int radius);
TQIPL_API void IPL_Gauss_8u_C1R(int width, int height, int stride, unsigned char* image,
                                int radius);

// Mean (truncated) and median over a square of 2 * radius + 1 pixels. With r the radius, filtered
// are the rows r to height - r - 2, and in them the columns r to width - r - 2. The rows 0 to r - 1
// and height - r - 1 to height - 2 are copied. The last row, unless r reaches the height, and in
// the filtered rows the first r and the last r + 1 columns, keep what dst held. Rows and columns
// outside the image are neither read nor written, whatever the radius. With a radius of 0
// IPL_Average_8u_C1R copies width * height bytes as one block, whatever the strides, and
// IPL_Median_8u_C1R the image.
//
// If width, height or a stride is below 1, a pointer is null, or radius is negative, nothing is
// written.
TQIPL_API void IPL_Average_8u_C1R(int width, int height, int srcStride, unsigned char* src,
                                  int dstStride, unsigned char* dst, int radius);
TQIPL_API void IPL_Average_8u_C1R(int width, int height, int stride, unsigned char* image,
                                  int radius);
TQIPL_API void IPL_Median_8u_C1R(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, unsigned char* dst, int radius);
TQIPL_API void IPL_Median_8u_C1R(int width, int height, int stride, unsigned char* image,
                                 int radius);

// Median over 3 x 3 pixels, of all pixels but those of the first and last row and column. These are
// copied, except the first and the last pixel of row height - 2, which keep what dst held. With a
// height below 3 only the first and last row are copied. If width, height, a stride or a pointer
// is 0, nothing is written. There is no in-place form.
TQIPL_API void IPL_Median3x3_8u_C1R(int width, int height, int srcStride, unsigned char* src,
                                    int dstStride, unsigned char* dst);

// Fields and measures: frames from the fields of an interlaced plane, and differences in decibels.

// The two fields of an interlaced plane to two frames of 2 * height rows; height is that of a
// field. The rows of field0 are the even rows of frame0, those of field1 the odd rows of frame1.
// The rows between are means of the field's two rows around them, rounded up; the last row of
// frame0 and the first of frame1 repeat the nearest row. height must be at least 2.
TQIPL_API void IPL_Deinterlace_8u_C1R(int width, int height, int stride0, unsigned char* field0,
                                      int stride1, unsigned char* field1, int strideOut0,
                                      unsigned char* frame0, int strideOut1, unsigned char* frame1);

// The difference of two planes in decibels, 10 * log10(65025 / (sqrt(S / N) + 0.0000001)), with S
// the sum of the squared differences and N the number of pixels. The root in the denominator makes
// this another measure than the usual one, and is kept on purpose. About 118.13 for equal planes. S
// is added from left to right and from the top in single precision, as is all the rest but the
// logarithm, which is rounded once from the double logarithm: the result is the same to the bit on
// every run and every system. Sizes below 1 are no pixels, with an S of 0; N is their 32-bit
// product nevertheless, and may wrap. With an N of 0 the result is not a number while S is 0, and
// -infinity if it is not; with a negative N it is not a number unless S is 0.
TQIPL_API float IPL_GetPSNR_8u_C1R(int width, int height, int stride1, unsigned char* image1,
                                   int stride2, unsigned char* image2);

// The same for Y, U and V of two TQ_COLOR_YUYV images, over width / 2 pairs a row. N is
// width * height for Y and half of that for U and V: the last column of an odd width is not read,
// and yet counted.
TQIPL_API void IPL_GetPSNR_YUYV(int width, int height, int stride1, unsigned char* image1,
                                int stride2, unsigned char* image2, float& psnrY, float& psnrU,
                                float& psnrV);
