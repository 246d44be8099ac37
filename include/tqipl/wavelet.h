#pragma once

#include <tqipl/export.h>

// The 5/3 wavelet: a one-level transform and its inverse, a low-pass filter, the low band as a
// half-size image, and fields of progressive frames.
//
// Widths and heights count pixels of one channel unless it says otherwise. All routines use
// integers only; sums wrap in 32 bits. 16-bit images are passed as bytes, their samples in the
// processor's order and of any alignment. No byte outside the images is read or written. Pointers
// are checked only where it is said. Scratch memory comes from the shared manager, or from the heap
// if it is more than that gives: std::bad_alloc may leave any routine.

// One level of the transform of bytes to ints, low half before high half in each direction: low
// band at rows 0 to height / 2 - 1 and columns 0 to width / 2 - 1, high bands behind and below. A
// line is periodic. Its low values are the taps -1, 2, 6, 2, -1 around the even samples, its high
// values the taps -4, 8, -4 around the odd ones. Nothing is shifted: a constant image of value c
// has 64 * c in the low band and 0 elsewhere.
//
// srcStride is in bytes, dstStride in ints. Of an odd width the last column takes no part, and the
// last element of each row of dst is not written. Of an odd height the last row takes no part in
// the columns and is transformed along the row only. A width below 2 or a height below 1 does
// nothing. Images must not overlap.
TQIPL_API void IPL_FwdWavelet_53_C1(int width, int height, int srcStride, unsigned char* src,
                                    int dstStride, int* dst);

// The inverse. The gain of both, 4096, is divided out at the end, rounded, and the result limited
// to 0 to 255: after the forward transform of even sizes the image comes back exactly. srcStride is
// in ints, dstStride in bytes. Of odd sizes the last column or row of src is not read and that of
// dst not written. A width or a height below 2 does nothing. Images may overlap.
TQIPL_API void IPL_InvWavelet_53_C1(int width, int height, int srcStride, int* src, int dstStride,
                                    unsigned char* dst);

// The low-pass taps in both directions at full size, in place, lines mirrored at their ends.
// Results below 16 become 0, not 16, and those above 235 become 235: kept on purpose. The first two
// and the last two rows stay as they are, unfiltered. The stride is in bytes; rows must not
// overlap. A width below 4 or a height below 5 does nothing.
TQIPL_API void IPL_WaveletFilter_53_C1(unsigned int width, unsigned int height, unsigned int stride,
                                       unsigned char* image);

// Reserved. Does nothing.
TQIPL_API void IPL_Wavelet_BSpline_C1(unsigned int width, unsigned int height, unsigned int stride,
                                      unsigned char* image);

// The low band as an image of width >> 1 by height >> 1 pixels: the low-pass taps around the even
// samples in both directions, lines mirrored at their ends, rounded once. Of an odd length from 5
// on the last value is taken around the last sample but one; of three samples the one value is
// taken around the first. A result below low becomes low, one that is not but is above high becomes
// high. Strides are in bytes. A width or a height below 2 does nothing. Images may overlap. Each
// MultiThread form gives the bytes of its plain form, at any number of processors.
TQIPL_API void IPL_WaveletLL_53_C1(unsigned int width, unsigned int height, unsigned int srcStride,
                                   unsigned char* src, unsigned int dstStride, unsigned char* dst,
                                   unsigned char low, unsigned char high);
TQIPL_API void IPL_WaveletLL_53_C1_MultiThread(unsigned int width, unsigned int height,
                                               unsigned int srcStride, unsigned char* src,
                                               unsigned int dstStride, unsigned char* dst,
                                               unsigned char low, unsigned char high);

// The same of 16-bit samples.
TQIPL_API void IPL_WaveletLL_53_C1_16u(unsigned int width, unsigned int height,
                                       unsigned int srcStride, unsigned char* src,
                                       unsigned int dstStride, unsigned char* dst,
                                       unsigned short low, unsigned short high);
TQIPL_API void IPL_WaveletLL_53_C1_16u_MultiThread(unsigned int width, unsigned int height,
                                                   unsigned int srcStride, unsigned char* src,
                                                   unsigned int dstStride, unsigned char* dst,
                                                   unsigned short low, unsigned short high);

// What to make of a progressive frame.
enum EVXR_P2I_MODE : int {
    EVXR_P2I_TOP_FIELD = 0,     // the field of rows 0, 2, 4 ...: (height + 1) / 2 rows
    EVXR_P2I_BOTTOM_FIELD = 1,  // the field of rows 1, 3, 5 ...
    EVXR_P2I_FRAME = 2,         // all rows
};

// Progressive to interlaced: each output row is the low-pass of the source rows around its own,
// with the taps -1, 2, 6, 2, -1 in eighths, so that fine detail does not flicker. Columns do not
// mix.
//
// In the field modes results are rounded; the first and the last row of the field are plain copies,
// not limited. The bottom field of an odd height ends with a copy of row height - 2; of a height of
// 3 it is two rows, both copies of row 1. The top field of a height of 1 or 2, and the bottom field
// of a height of 2, is one row. In the frame mode all rows are filtered, without rounding, the rows
// mirrored at both ends. The bottom field of a height of 1 and the frame of a height below 3 do
// nothing, and nor do any other mode, a width or height of 0 and null pointers.
//
// Strides are in bytes. Source and destination must not overlap. Each MultiThread form, which cuts
// the image in stripes of columns, gives the bytes of its plain form, at any number of processors.

// One byte a pixel, limited to 16 to 235.
TQIPL_API void IPL_P2I_Wavelet53_C1R(unsigned int width, unsigned int height,
                                     unsigned int srcStride, unsigned char* src,
                                     unsigned int dstStride, unsigned char* dst,
                                     EVXR_P2I_MODE mode);
TQIPL_API void IPL_P2I_Wavelet53_MultiThread_C1R(unsigned int width, unsigned int height,
                                                 unsigned int srcStride, unsigned char* src,
                                                 unsigned int dstStride, unsigned char* dst,
                                                 EVXR_P2I_MODE mode);

// One 16-bit sample a pixel, limited to 4096 to 60160.
TQIPL_API void IPL_P2I_Wavelet53_C1R_16u(unsigned int width, unsigned int height,
                                         unsigned int srcStride, unsigned char* src,
                                         unsigned int dstStride, unsigned char* dst,
                                         EVXR_P2I_MODE mode);
TQIPL_API void IPL_P2I_Wavelet53_MultiThread_C1R_16u(unsigned int width, unsigned int height,
                                                     unsigned int srcStride, unsigned char* src,
                                                     unsigned int dstStride, unsigned char* dst,
                                                     EVXR_P2I_MODE mode);

// Four bytes a pixel, all filtered alike, alpha too, and limited to 0 to 255.
TQIPL_API void IPL_P2I_Wavelet53_C4R(unsigned int width, unsigned int height,
                                     unsigned int srcStride, unsigned char* src,
                                     unsigned int dstStride, unsigned char* dst,
                                     EVXR_P2I_MODE mode);
TQIPL_API void IPL_P2I_Wavelet53_MultiThread_C4R(unsigned int width, unsigned int height,
                                                 unsigned int srcStride, unsigned char* src,
                                                 unsigned int dstStride, unsigned char* dst,
                                                 EVXR_P2I_MODE mode);

// Three 16-bit samples a pixel, all filtered alike and limited to 0 to 65535.
TQIPL_API void IPL_P2I_Wavelet53_C3R_16u(unsigned int width, unsigned int height,
                                         unsigned int srcStride, unsigned char* src,
                                         unsigned int dstStride, unsigned char* dst,
                                         EVXR_P2I_MODE mode);
TQIPL_API void IPL_P2I_Wavelet53_MultiThread_C3R_16u(unsigned int width, unsigned int height,
                                                     unsigned int srcStride, unsigned char* src,
                                                     unsigned int dstStride, unsigned char* dst,
                                                     EVXR_P2I_MODE mode);
