#pragma once

// Weights of the cubic zooms: one packed record for each destination index of an axis, in order and
// without gaps. A record is the first and the last source index and the weight of each index from
// first to last, in 1024ths; it has no weights if first is greater than last.

#include <tqipl/array.h>

#include "frame/platform.h"

namespace tq {

// The four-tap kernel, in single precision throughout.
float IPL_CubicKernel(float t);

// The same function in mixed precision; the weights that come of it differ in single units.
float IPL_SixTapKernel(float t);

// A new table of four-tap records, which the caller frees with delete[]. Lengths of 1 or more.
int* IPL_CubicWeightTable(int srcLength, int dstLength);

}  // namespace tq

// One axis's six-tap records. A record takes 8 integers at most.
class CZ6CubicTable {
public:
    CZ6CubicTable(int srcLength, int dstLength);
    virtual ~CZ6CubicTable();
    CZ6CubicTable(const CZ6CubicTable&) = delete;
    CZ6CubicTable& operator=(const CZ6CubicTable&) = delete;

    int* m_pWeightData = nullptr;
    int m_nRefCount = 0;      // users at this time; changed under the pool's lock only
    int m_bVirtualAlloc = 0;  // 1: the weights are in pages of the system; 0: from new[]
    int m_nSrcLength;
    int m_nDstLength;
};

// The six-tap tables of the process, by their lengths.
class CZ6CubicTablePool {
public:
    CZ6CubicTablePool() = default;
    virtual ~CZ6CubicTablePool();
    CZ6CubicTablePool(const CZ6CubicTablePool&) = delete;
    CZ6CubicTablePool& operator=(const CZ6CubicTablePool&) = delete;

    // The table of these lengths, made if there is none, with one more user. If none is there and
    // the pool holds more than 300, the oldest one without users goes first.
    CZ6CubicTable* Acquire(int srcLength, int dstLength);

    // One user less. The table stays.
    void Release(CZ6CubicTable* table);

    // Deletes all tables, also those in use.
    void Clear();

    CTQArray<CZ6CubicTable*, CZ6CubicTable*> m_arrTables;  // in the order of their making
    tq::CriticalSection m_cs;
};

extern CZ6CubicTablePool g_IPL6CubicTablePool;

// The plain one-channel six-tap zoom. Each step takes its own table for as long as it runs.
class CZ6CubicResize {
public:
    virtual ~CZ6CubicResize() = default;

    // Sizes of 1 or more, of which at least one differs.
    void Resize(int srcWidth, int srcHeight, int srcStride, unsigned char* src, int dstWidth,
                int dstHeight, int dstStride, unsigned char* dst);

    void ResizeX(int srcWidth, int dstWidth, int height, int srcStride, unsigned char* src,
                 int dstStride, unsigned char* dst);
    void ResizeY(int srcHeight, int dstHeight, int width, int srcStride, unsigned char* src,
                 int dstStride, unsigned char* dst);

    // To and from unrounded sums; their stride counts 32-bit values.
    void ResizeXToIntermediate(int srcWidth, int srcStride, unsigned char* src, int dstWidth,
                               int height, int intermediateStride, int* intermediate);
    void ResizeYFromIntermediate(int srcHeight, int width, int* intermediate,
                                 int intermediateStride, int dstHeight, int dstStride,
                                 unsigned char* dst);
};
