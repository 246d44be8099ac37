#pragma once

// One erosion or dilation of a run of rows, at a cost for each pixel that does not depend on the
// radii.

#include <cstddef>
#include <cstdint>

#include "morph/morphology_kernels.h"

namespace tq {

// Rows from `begin` up to but not including `end`.
struct RowRange {
    int64_t begin, end;
    bool Has(int64_t row) const { return row >= begin && row < end; }
};

// The windows reach radiusY rows and radiusX columns to each side of a pixel. Only source columns
// from radiusX - outside before the first result on take part, srcColumns of them; and of the rows
// those of `rows` that are not of `leftOut`.
struct WindowPass {
    MaskRule MorphologyKernels::*rule;
    ptrdiff_t radiusY, radiusX;  // 0 or more

    const unsigned char* src;  // of row 0 the first column that takes part
    ptrdiff_t srcStride;
    ptrdiff_t srcColumns;
    ptrdiff_t outside;
    RowRange rows;
    RowRange leftOut;

    // If not null, copies that stand for the rows above `band` and from its end on, at a distance
    // of srcColumns bytes: of the row that `band` begins with, and of the row after its end.
    RowRange band;
    const unsigned char* above;
    const unsigned char* below;

    RowRange dstRows;    // the results, counted as the source rows are
    unsigned char* dst;  // the first of them
    ptrdiff_t dstStride;
    ptrdiff_t dstColumns;
};

// Row y of the source is not read any more when row y - radiusY of the results is written, and no
// result is written before those above it: source and destination may be one image.
void RunWindowPass(const WindowPass& pass);

}  // namespace tq
