#pragma once

#include <tqipl/thread.h>

#include <cstdint>

#include "filter/filter_tables.h"

// Band tasks of the separable bilateral filter: bands of rows for the horizontal pass, bands of
// columns for the vertical one. Source and destination pointers are those of the band; strides
// count elements. Run takes the sizes from the source and the tables' radius, and does not read the
// destination's width and height. Tables and scratch memory are those of the call, which outlives
// its tasks.

// Rows of a padded image to rows of whole numbers. The window of source column x, which is the
// image's column x - radius, starts at source column x - radius: source rows are two radii wider
// than destination rows.
class CDoBilateralFilterHTask final : public CTQIPLTaskBase {
public:
    int m_nSrcWidth = 0;  // of the padded row
    int m_nSrcHeight = 0;
    int m_nSrcStride = 0;
    unsigned char* m_pSrc = nullptr;
    int m_nDstWidth = 0;
    int m_nDstHeight = 0;
    int m_nDstStride = 0;
    int* m_pDst = nullptr;
    const CZFilterTables* m_pTables = nullptr;
    unsigned char* m_pScratch = nullptr;  // ScratchBytes of it, if kernels serve the radius

    // `columns` are those of the destination.
    static int64_t ScratchBytes(int64_t columns, int64_t radius);
    int Run() override;
};

// Columns of whole numbers to columns of bytes. Source columns are two radii longer than
// destination columns.
class CDoBilateralFilterVTask final : public CTQIPLTaskBase {
public:
    int m_nSrcWidth = 0;
    int m_nSrcHeight = 0;
    int m_nSrcStride = 0;
    int* m_pSrc = nullptr;
    int m_nDstWidth = 0;
    int m_nDstHeight = 0;
    int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;
    const CZFilterTables* m_pTables = nullptr;
    unsigned char* m_pScratch = nullptr;  // ScratchBytes of it, if kernels serve the radius

    // `columns` are those of the destination.
    static int64_t ScratchBytes(int64_t columns, int64_t radius);
    int Run() override;
};
