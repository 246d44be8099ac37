#pragma once

// Destination rows of the JBI zoom.

#include <cstddef>
#include <cstdint>

#include "zoom/jbi_kernels.h"
#include "zoom/zoom_tasks.h"

namespace tq {

extern const JbiExponential kJbiExponential;

const JbiKernels& JbiKernelsInForce();

// A tile is a run of destination columns: so many at most, from so many source columns. Its arrays
// stay in the caches from row to row.
inline constexpr ptrdiff_t kJbiTileColumns = 1024;
inline constexpr ptrdiff_t kJbiTileSourceColumns = kJbiTileColumns + 8;

// What a tile works with. It holds nothing between tiles.
struct JbiScratch {
    int32_t index[kJbiTileColumns];
    int32_t centre[kJbiTileColumns];
    float distance[kJbiWindow][kJbiTileColumns];
    float scale[kJbiTileColumns];
    float guide[kJbiTileColumns], factor[kJbiTileColumns], divisor[kJbiTileColumns];

    // Five source rows: the plane that the weights follow, and the channels if there are four.
    uint8_t samples[kJbiWindow][5][kJbiTileSourceColumns + kJbiPadding];
};
static_assert(kJbiTileColumns % kJbiPadding == 0);

// One axis of the mapping: a destination index lies at index * scale + offset, in single precision.
class JbiAxis {
public:
    JbiAxis(int srcLength, int dstLength)
        : m_scale(static_cast<float>(srcLength) / static_cast<float>(dstLength)),
          m_offset(static_cast<float>(static_cast<double>(m_scale) * 0.5 - 0.5)),
          m_length(srcLength) {}

    float Position(int i) const { return static_cast<float>(i) * m_scale + m_offset; }

    // The source sample nearest to a position; behind the last one, none further than the first
    // whose window is empty.
    int64_t Centre(float position) const;

    int64_t Length() const { return m_length; }

private:
    float m_scale;
    float m_offset;
    int m_length;
};

// As many destination columns from `first` on as fit a tile, all of them inner ones. Rows may be
// asked for in any order; source rows that follow each other are taken once.
class JbiTile {
public:
    JbiTile(const CZJBITask& task, int first, JbiScratch& scratch);

    int Count() const { return static_cast<int>(m_columns.count); }

    // The tile's pixels of an inner row.
    void Row(int y);

private:
    void TakeColumns();
    void SetColumn(ptrdiff_t i, float position, int64_t centre);
    void Pad();
    bool SetDivisors(int64_t centre);
    int SourceRow(int64_t y);

    const CZJBITask& m_task;
    JbiScratch& m_scratch;
    const JbiKernels& m_kernels;
    JbiAxis m_xAxis, m_yAxis;
    int m_channels;
    int m_first;
    int64_t m_firstSource = 0;  // column of the sample rows' first byte
    JbiColumns m_columns{};
    int64_t m_sourceRow[kJbiWindow] = {-1, -1, -1, -1, -1};  // in the slots of the scratch memory
};

}  // namespace tq
