#pragma once

#include <tqipl/array.h>
#include <tqipl/export.h>
#include <tqipl/types.h>

// Connected regions of byte masks: their bounding boxes, the removal of small ones, and growth.
//
// A mask has one byte a pixel. Regions are 8-connected: pixels that touch at a corner belong
// together. The border of the image is like any other place. Widths and heights are in pixels,
// strides in bytes. Past one look at every pixel, time and memory follow the number of horizontal
// runs, also where one region of many runs takes up the whole image.
//
// Rows must not overlap in memory. If memory runs out std::bad_alloc leaves, with nothing leaked;
// a mask may then be changed in part.
//
// With one processor the _MultiThread forms do nothing: the mask stays as it is, and no rectangle
// is listed. Kept on purpose: only the joining of bands turns their tasks from labelling to
// cleaning, and one band has none to join. A host that may run on one processor calls the plain
// form there. With more processors the result is that of the plain form, but for the order of
// rectangles.

// Regions of nonzero bytes. A region of minimumSize pixels or fewer is set to 0 in the mask; of any
// other the bounding box is listed. The box is inclusive, unlike other uses of TQ_RECT: right is
// the last column, bottom the last row. The area is counted in a 32-bit int, the comparison signed:
// minimumSize 0 or less keeps every region.
//
// rects is emptied first (SetSize(0), which keeps the growth step); a null rects does nothing. Then
// a width, height or stride of 0 or a null mask returns with the array empty, and so does a
// negative width or height. A negative stride walks upward in memory.
//
// The order of the rectangles is part of the result: that of each region's root run, by row and in
// a row from the left. A region begins with its first run as root; where regions meet under a run,
// the one that the run touches first from the left keeps its root.
//
// Both give the same mask and the same rectangles in the same order.
TQIPL_API void IPL_FCCLabeling(int width, int height, int stride, unsigned char* mask,
                               CTQArray<TQ_RECT, TQ_RECT&>* rects, int minimumSize);
TQIPL_API void IPL_FCCLabeling2(int width, int height, int stride, unsigned char* mask,
                                CTQArray<TQ_RECT, TQ_RECT&>* rects, int minimumSize);

// The same mask and the same rectangles, in an order that depends on the number of processors:
// bands of rows are labelled by themselves, then joined from the top down, where the region of the
// upper run keeps its root. Rectangles come band by band of their roots. Any mask is handled, also
// one in which two runs of one region touch the same run across a seam. With one processor nothing
// is cleaned and the array stays empty.
TQIPL_API void IPL_FCCLabeling_MultiThread(int width, int height, int stride, unsigned char* mask,
                                           CTQArray<TQ_RECT, TQ_RECT&>* rects, int minimumSize);

// Regions of the nonzero bytes of connect, whose rows lie width bytes apart: stride is that of
// image only, kept on purpose. Under each region the nonzero pixels of image are counted and
// bounded; with more than minimumSize of them (signed) the box counts. A region without any counts
// only if minimumSize is negative, with left and top 0x7FFFFFFF and right and bottom -1. Neither
// image is written.
//
// Boxes within one another are thinned. Each, in the order of the root runs, is compared with the
// later ones: within one of them it is dropped, and the first that lies within it is replaced by it
// and the comparison goes on from there when that one's turn comes. Of two equal ones the later
// stays. So an outer box is listed in the place of the last one that it took.
//
// Arguments are treated as in IPL_FCCLabeling; a null image or connect returns with the array
// empty. There is no _MultiThread form.
TQIPL_API void IPL_FCCLabelingEx(int width, int height, int stride, unsigned char* image,
                                 unsigned char* connect, CTQArray<TQ_RECT, TQ_RECT&>* rects,
                                 int minimumSize);

// Sets regions of nonzero bytes with at most threshold pixels to 0. A width, height, stride or
// threshold of 0 or a null mask does nothing, nor do negative widths, heights and thresholds. There
// is no _MultiThread form.
TQIPL_API void IPL_FCCLabelingDeNoise(int width, int height, int stride, unsigned char* mask,
                                      int threshold);

// Sets regions of zero bytes with at most threshold pixels (unsigned) to 255. A width, height or
// stride of 0 or a null mask does nothing, nor does a width or height that an int cannot hold. All
// four give the same mask, but for the _MultiThread forms with one processor, which leave it
// unchanged.
TQIPL_API void IPL_FCCLabelingDeNoiseEx(unsigned int width, unsigned int height,
                                        unsigned int stride, unsigned char* mask,
                                        unsigned int threshold);
TQIPL_API void IPL_FCCLabelingDeNoiseEx_MultiThread(unsigned int width, unsigned int height,
                                                    unsigned int stride, unsigned char* mask,
                                                    unsigned int threshold);
TQIPL_API void IPL_FCCLabelingDeNoiseEx2(unsigned int width, unsigned int height,
                                         unsigned int stride, unsigned char* mask,
                                         unsigned int threshold);
TQIPL_API void IPL_FCCLabelingDeNoiseEx2_MultiThread(unsigned int width, unsigned int height,
                                                     unsigned int stride, unsigned char* mask,
                                                     unsigned int threshold);

// Cleaning by a guide: the next three clean a mask by a guide of the same size. Zero bytes are the
// pixels of interest in both. The guide is only read, and must not overlap the mask. A width or
// height of 0 or above INT_MAX, or a null guide or mask, does nothing. Strides and the threshold
// are not checked.

// Sets to 255 the zero regions of the mask that the guide does not confirm. A zero region of the
// guide with more than threshold pixels confirms one region of the mask at most: of those that
// touch the guide region's root run in its own row, or lie next to it there, the first by root run
// that is not confirmed yet. The guide region's other runs are not compared. There is no
// _MultiThread form.
TQIPL_API void IPL_FCCDeNoiseAndGrowth(unsigned int width, unsigned int height,
                                       unsigned int guideStride, unsigned char* guide,
                                       unsigned int maskStride, unsigned char* mask,
                                       unsigned int threshold);

// Sets zero regions of the mask with at most threshold pixels to 255; then the others grow. Growth
// starts from the two end pixels of each of their runs, not from the pixels between. From a pixel
// that is not on the image's border it spreads to those of the eight neighbours where the mask is
// 255 and the guide 0, which become 0 and spread in turn. A pixel on the border can be reached, but
// does not spread. Other values of the mask stay. The _MultiThread form gives the same mask, but
// with one processor leaves it unchanged.
TQIPL_API void IPL_FCCDeNoiseAndGrowth2(unsigned int width, unsigned int height,
                                        unsigned int guideStride, unsigned char* guide,
                                        unsigned int maskStride, unsigned char* mask,
                                        unsigned int threshold);
TQIPL_API void IPL_FCCDeNoiseAndGrowth2_MultiThread(unsigned int width, unsigned int height,
                                                    unsigned int guideStride, unsigned char* guide,
                                                    unsigned int maskStride, unsigned char* mask,
                                                    unsigned int threshold);
