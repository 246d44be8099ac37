#pragma once

// The passes that the cubic zooms share. Weights are records as in weights.h, one for each
// destination column or row.

#include <cstddef>
#include <cstdint>

#include "zoom/geometry.h"

namespace tq {

// The one pass of images of equal heights, or of equal widths.
void ZoomCubicX(const ZoomImages& images, int channels, const int* columnRecords);
void ZoomCubicY(const ZoomImages& images, int channels, const int* rowRecords);

// Both passes at once, with no more memory than a few rows.
void ZoomCubicXY(const ZoomImages& images, int channels, const int* columnRecords,
                 const int* rowRecords);

// What follows so many records.
const int* AfterCubicRecords(const int* records, int count);

// The weighted sums of source rows, unrounded or as bytes. `sumStride` counts 32-bit values.
struct CubicRows {
    int srcStride;
    const unsigned char* src;
    int columns;
    int channels;
    const int* records;
    int begin, end;
};
void SumCubicRows(const CubicRows& rows, int sumStride, int32_t* sums);
void FinishCubicRows(const CubicRows& rows, int dstStride, unsigned char* dst);

// Destination rows of the columns `begin` to `end` - 1, from sums or from bytes.
struct CubicColumnBand {
    int begin, end;
    int channels;
    const int* records;
    int dstHeight;
    int dstStride;
    unsigned char* dst;
};
void BlendCubicSums(const CubicColumnBand& band, int sumStride, const int32_t* sums);
void BlendCubicBytes(const CubicColumnBand& band, int srcStride, const unsigned char* src);

}  // namespace tq
