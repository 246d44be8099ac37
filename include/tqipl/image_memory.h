#pragma once

#include <tqipl/export.h>
#include <tqipl/types.h>

// Copying, clearing, filling and flipping of images and of rectangles in them, by storage and
// without regard to what a pixel means. "Invert" is a vertical flip here, never a negative.
//
// Widths and heights are in pixels, strides in bytes between the starts of rows. Rows are written
// exactly as far as each routine says and nothing behind them is touched. A width or a height
// below 1 does nothing. Source and destination must not overlap unless they are the same image.
// Null pointers are checked only where it is said.
//
// Rectangles are normalised before use: left and right are clamped into 0 to width, top and bottom
// into 0 to height; a right below left becomes left, a bottom below top becomes top. "Inside" is
// the normalised rectangle; "outside" is the four strips around it: left and right of it over the
// whole height, then above and below it.

// Bytes a pixel as the rectangle routines count them: 2 for TQ_COLOR_YUYV and TQ_COLOR_UYVY and 4
// for every other value, whatever the format's real size. Kept so on purpose: x offsets in
// TQ_COLOR_GRAY8 or TQ_COLOR_BGR16B rectangles are four bytes a pixel, and hosts depend on it.
TQIPL_API int IPL_PixelRatio(TQ_COLOR_FORMAT format);
TQIPL_API int IPL_PixelRatio(unsigned long format);
// The same; the argument is not changed.
TQIPL_API int IPL_PixelRatioEx(TQ_COLOR_FORMAT& format);
TQIPL_API int IPL_PixelRatioEx(unsigned long& format);

// One block of `size` bytes. A size below 1 copies nothing.
TQIPL_API void IPL_Memcpy(unsigned char* dst, unsigned char* src, int size);

// Rows of width, 2 * width and 4 * width bytes. Dense images are copied as one block. The
// MultiThread forms give the same bytes.
TQIPL_API void IPL_Memcpy_C1R(int width, int height, int srcStride, unsigned char* src,
                              int dstStride, unsigned char* dst);
TQIPL_API void IPL_Memcpy_C1R_16u(int width, int height, int srcStride, unsigned char* src,
                                  int dstStride, unsigned char* dst);
TQIPL_API void IPL_Memcpy_C4R(int width, int height, int srcStride, unsigned char* src,
                              int dstStride, unsigned char* dst);
TQIPL_API void IPL_MemcpyMultiThread_C1R(int width, int height, int srcStride, unsigned char* src,
                                         int dstStride, unsigned char* dst);
TQIPL_API void IPL_MemcpyMultiThread_C1R_16u(int width, int height, int srcStride,
                                             unsigned char* src, int dstStride, unsigned char* dst);
TQIPL_API void IPL_MemcpyMultiThread_C4R(int width, int height, int srcStride, unsigned char* src,
                                         int dstStride, unsigned char* dst);

// Rows of width and 4 * width bytes, the last source row first. Not in place.
TQIPL_API void IPL_MemcpyInvert_CR1(int width, int height, int srcStride, unsigned char* src,
                                    int dstStride, unsigned char* dst);
TQIPL_API void IPL_MemcpyInvert_CR4(int width, int height, int srcStride, unsigned char* src,
                                    int dstStride, unsigned char* dst);

// A whole image by its format: rows of 4 * width bytes for ARGB, AYUV, PACKED32, BGR10B and V216,
// (width / 2) * 4 for YUYV and UYVY (an odd last column is not copied), ((width + 47) / 48) * 128
// for V210, 6 * width for BGR16B, width for GRAY8. For YUVP_422 one block of width * height * 2
// bytes, and the strides play no part. Any other format, and a null src or dst, does nothing. The
// MultiThread form gives the same bytes.
TQIPL_API void IPL_Memcpy(TQ_COLOR_FORMAT format, int width, int height, int srcStride,
                          unsigned char* src, int dstStride, unsigned char* dst);
TQIPL_API void IPL_MemcpyMultiThread(TQ_COLOR_FORMAT format, int width, int height, int srcStride,
                                     unsigned char* src, int dstStride, unsigned char* dst);

// A vertical flip by format: rows of 4 * width bytes for ARGB, AYUV and PACKED32, (width / 2) * 4
// for YUYV, UYVY and YUVP_422 (which is taken as packed rows), width for GRAY8. Any other format
// does nothing. Pointers are not checked.
TQIPL_API void IPL_MemcpyInvert(TQ_COLOR_FORMAT format, int width, int height, int srcStride,
                                unsigned char* src, int dstStride, unsigned char* dst);

// Copies the inside of rect to the same place in dst; with clearRest not 0 the outside in dst is
// first cleared as IPL_ZeroMemory by format does. If rect covers the image this is IPL_Memcpy by
// format. Without a format: TQ_COLOR_ARGB. An odd left or width in a 4:2:2 format is taken at face
// value and may cut a chroma pair.
TQIPL_API void IPL_MemcpyIn(TQ_COLOR_FORMAT format, int width, int height, int srcStride,
                            unsigned char* src, int dstStride, unsigned char* dst, TQ_RECT rect,
                            int clearRest);
TQIPL_API void IPL_MemcpyIn(int width, int height, int srcStride, unsigned char* src, int dstStride,
                            unsigned char* dst, TQ_RECT rect, int clearRest);

// Copies the outside of rect; with clearRest not 0 the inside in dst is then cleared.
TQIPL_API void IPL_MemcpyOut(TQ_COLOR_FORMAT format, int width, int height, int srcStride,
                             unsigned char* src, int dstStride, unsigned char* dst, TQ_RECT rect,
                             int clearRest);
TQIPL_API void IPL_MemcpyOut(int width, int height, int srcStride, unsigned char* src,
                             int dstStride, unsigned char* dst, TQ_RECT rect, int clearRest);

// Clears `size` bytes. A size below 1 clears nothing.
TQIPL_API void IPL_ZeroMemory(unsigned char* dst, int size);

// Clears rows of width and 4 * width bytes.
TQIPL_API void IPL_ZeroMemory_C1R(int width, int height, int stride, unsigned char* dst);
TQIPL_API void IPL_ZeroMemory_C4R(int width, int height, int stride, unsigned char* dst);

// The format's empty value over `size` bytes: the word 0x00108080 for AYUV, 0x80108010 for YUYV,
// 0x10801080 for UYVY, size / 4 times, with the bytes behind the last whole word left alone; zero
// for any other format.
TQIPL_API void IPL_ZeroMemory(TQ_COLOR_FORMAT format, unsigned char* dst, int size);

// The same by rows: 4 * width zero bytes for ARGB, width words for AYUV, width / 2 words for YUYV
// and UYVY. For any other format width zero bytes a row, whatever the format's real row size.
TQIPL_API void IPL_ZeroMemory(TQ_COLOR_FORMAT format, int width, int height, int stride,
                              unsigned char* dst);

// Black by rows: 4 * width zero bytes for ARGB (transparent black), the word 0x00108080 width / 4
// times for AYUV (a quarter of the row, unlike IPL_ZeroMemory, and kept so), width / 2 words as
// above for YUYV and UYVY. For any other format the word 0xFF000000 width times: four bytes a
// pixel, whatever the format's real size.
TQIPL_API void IPL_BlackMemory(TQ_COLOR_FORMAT format, int width, int height, int stride,
                               unsigned char* dst);

// IPL_ZeroMemory and IPL_BlackMemory by rows for the inside or the outside of rect, which comes
// back normalised. An outside of nothing does nothing.
TQIPL_API void IPL_ZeroMemoryIn(TQ_COLOR_FORMAT format, int width, int height, int stride,
                                unsigned char* dst, TQ_RECT& rect);
TQIPL_API void IPL_ZeroMemoryOut(TQ_COLOR_FORMAT format, int width, int height, int stride,
                                 unsigned char* dst, TQ_RECT& rect);
TQIPL_API void IPL_BlackMemoryIn(TQ_COLOR_FORMAT format, int width, int height, int stride,
                                 unsigned char* dst, TQ_RECT& rect);
TQIPL_API void IPL_BlackMemoryOut(TQ_COLOR_FORMAT format, int width, int height, int stride,
                                  unsigned char* dst, TQ_RECT& rect);

// A constant in each byte of width bytes a row, or in each 32-bit word of width words a row (the
// low 32 bits of value, little-endian).
TQIPL_API void IPL_FillMemory_C1R(int width, int height, int stride, unsigned char* dst,
                                  unsigned char value);
TQIPL_API void IPL_FillMemory_C4R(int width, int height, int stride, unsigned char* dst,
                                  unsigned long value);

// The same for the inside or the outside of rect, which comes back normalised.
TQIPL_API void IPL_FillMemoryIn_C1R(int width, int height, int stride, unsigned char* dst,
                                    TQ_RECT& rect, unsigned char value);
TQIPL_API void IPL_FillMemoryOut_C1R(int width, int height, int stride, unsigned char* dst,
                                     TQ_RECT& rect, unsigned char value);
TQIPL_API void IPL_FillMemoryIn_C4R(int width, int height, int stride, unsigned char* dst,
                                    TQ_RECT& rect, unsigned long value);
TQIPL_API void IPL_FillMemoryOut_C4R(int width, int height, int stride, unsigned char* dst,
                                     TQ_RECT& rect, unsigned long value);

// Flips an image in place; rows of width and 4 * width bytes. The middle row of an odd height
// stays.
TQIPL_API void IPL_InvertImage_C1R(int width, int height, int stride, unsigned char* data);
TQIPL_API void IPL_InvertImage_C4R(int width, int height, int stride, unsigned char* data);

// Copies an 8-bit image into a frame of padLeft + width + padRight by padTop + height + padBottom
// bytes at dst and fills the border with the nearest edge pixel, corners with the corner pixels.
// dst must hold the frame. A width of 0 pads with zero; with a height of 0 nothing of the image
// exists, and the frame's rows get copies of its row padTop as it stands (of row padTop - 1, if
// the frame ends there). The MultiThread form gives the same bytes.
TQIPL_API void IPL_MemcpyAndPad_C1R(unsigned int width, unsigned int height, unsigned int srcStride,
                                    unsigned char* src, unsigned int dstStride, unsigned char* dst,
                                    unsigned int padLeft, unsigned int padTop,
                                    unsigned int padRight, unsigned int padBottom);
TQIPL_API void IPL_MemcpyAndPadMultiThread_C1R(unsigned int width, unsigned int height,
                                               unsigned int srcStride, unsigned char* src,
                                               unsigned int dstStride, unsigned char* dst,
                                               unsigned int padLeft, unsigned int padTop,
                                               unsigned int padRight, unsigned int padBottom);
