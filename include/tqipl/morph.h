#pragma once

#include <tqipl/export.h>

// Erosion and dilation of masks with a rectangle of 2 * radiusY + 1 rows by 2 * radiusX + 1 columns
// around each pixel, and what is put together from the two. A mask has one byte a pixel; results
// are 0 or 255. Strides are in bytes and signed; nothing behind a row's width is touched. Rows must
// not overlap in memory. A width or height below 1 does nothing. Pointers are not checked. If
// memory runs out std::bad_alloc leaves, with nothing leaked; the image may then be changed in
// part.
//
// There are two families with rules of their own:
//                            IPL_Erosion and its like          IPL_FErosion and its like
//   set is, in erosion       not 0                             not 0
//   set is, in dilation      255; values 1 to 254 do not       not 0
//                            spread
//   at the image's edge      a margin of radiusY rows and      the window is clipped: what lies
//                            radiusX columns comes out 0,      outside takes no part
//                            whatever it held
// In both the time for a pixel does not depend on the radii.

// IPL_Erosion gives 255 where every byte of the window is set, IPL_Dilation where any byte is; all
// else becomes 0. In place. A dilation clears the margin too, so it shrinks the usable image as
// much as an erosion does. Radii that leave no inner pixel clear the image.
//
// A negative radius has no margin, and its window holds no pixel: then IPL_Erosion makes every set
// byte inside the other radius's margin 255, and IPL_Dilation clears the image.
//
// The MultiThread forms give the same bytes, whatever the height and the number of processors.
TQIPL_API void IPL_Erosion(int width, int height, int stride, unsigned char* image, int radiusY,
                           int radiusX);
TQIPL_API void IPL_Erosion_MultiThread(int width, int height, int stride, unsigned char* image,
                                       int radiusY, int radiusX);
TQIPL_API void IPL_Dilation(int width, int height, int stride, unsigned char* image, int radiusY,
                            int radiusX);
TQIPL_API void IPL_Dilation_MultiThread(int width, int height, int stride, unsigned char* image,
                                        int radiusY, int radiusX);

// IPL_Opening is IPL_Erosion, then IPL_Dilation; IPL_Closing is IPL_Dilation, then IPL_Erosion;
// IPL_DeNoise, against specks and holes, is IPL_Erosion, IPL_Dilation, IPL_Dilation, IPL_Erosion.
// Each step has the same radii and clears the margin.
TQIPL_API void IPL_Opening(int width, int height, int stride, unsigned char* image, int radiusY,
                           int radiusX);
TQIPL_API void IPL_Opening_MultiThread(int width, int height, int stride, unsigned char* image,
                                       int radiusY, int radiusX);
TQIPL_API void IPL_Closing(int width, int height, int stride, unsigned char* image, int radiusY,
                           int radiusX);
TQIPL_API void IPL_Closing_MultiThread(int width, int height, int stride, unsigned char* image,
                                       int radiusY, int radiusX);
TQIPL_API void IPL_DeNoise(int width, int height, int stride, unsigned char* image, int radiusY,
                           int radiusX);
TQIPL_API void IPL_DeNoise_MultiThread(int width, int height, int stride, unsigned char* image,
                                       int radiusY, int radiusX);

// IPL_FErosion gives 255 where every pixel of the clipped window is set, IPL_FDilation where any
// is; all else becomes 0. A radius of the image's side or more takes in the whole side. A negative
// radius leaves a window without pixels: IPL_FErosion then sets the image to 255, IPL_FDilation to
// 0.
//
// The MultiThread forms cut the image in as many bands as there are processors, each of
// height / processors rows, with the rest in the last. They give the bytes of the plain forms with
// one processor, with more processors than rows, and wherever each band has more than radiusY rows.
// A band of radiusY rows or fewer, other than the last, leaves out of its windows the rows behind
// it up to and including first + radiusY, where first is the band's first row: kept on purpose.
//
// With two images src is not changed, unless dst is the same image (the same first byte and
// stride), which is then worked on in place. dst must not overlap src in any other way.
TQIPL_API void IPL_FErosion(int width, int height, int stride, unsigned char* image, int radiusY,
                            int radiusX);
TQIPL_API void IPL_FErosion_MultiThread(int width, int height, int stride, unsigned char* image,
                                        int radiusY, int radiusX);
TQIPL_API void IPL_FErosion_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                        int dstStride, unsigned char* dst, int radiusY,
                                        int radiusX);
TQIPL_API void IPL_FDilation(int width, int height, int stride, unsigned char* image, int radiusY,
                             int radiusX);
TQIPL_API void IPL_FDilation_MultiThread(int width, int height, int stride, unsigned char* image,
                                         int radiusY, int radiusX);
TQIPL_API void IPL_FDilation_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                         int dstStride, unsigned char* dst, int radiusY,
                                         int radiusX);

// IPL_FOpening is IPL_FErosion with the first radii, then IPL_FDilation with the second;
// IPL_FClosing is IPL_FDilation with the first, then IPL_FErosion with the second. In the
// MultiThread forms each step follows the rule on bands above with its own radiusY, and two images
// the rule above on theirs.
TQIPL_API void IPL_FOpening(int width, int height, int stride, unsigned char* image, int radiusY1,
                            int radiusX1, int radiusY2, int radiusX2);
TQIPL_API void IPL_FOpening_MultiThread(int width, int height, int stride, unsigned char* image,
                                        int radiusY1, int radiusX1, int radiusY2, int radiusX2);
TQIPL_API void IPL_FOpening_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                        int dstStride, unsigned char* dst, int radiusY1,
                                        int radiusX1, int radiusY2, int radiusX2);
TQIPL_API void IPL_FClosing(int width, int height, int stride, unsigned char* image, int radiusY1,
                            int radiusX1, int radiusY2, int radiusX2);
TQIPL_API void IPL_FClosing_MultiThread(int width, int height, int stride, unsigned char* image,
                                        int radiusY1, int radiusX1, int radiusY2, int radiusX2);
TQIPL_API void IPL_FClosing_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                        int dstStride, unsigned char* dst, int radiusY1,
                                        int radiusX1, int radiusY2, int radiusX2);

// IPL_FErosion, IPL_FDilation, IPL_FDilation, IPL_FErosion, with the same radii. In place.
TQIPL_API void IPL_FDeNoise(int width, int height, int stride, unsigned char* image, int radiusY,
                            int radiusX);
TQIPL_API void IPL_FDeNoise_MultiThread(int width, int height, int stride, unsigned char* image,
                                        int radiusY, int radiusX);
