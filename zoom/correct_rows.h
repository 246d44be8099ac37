#pragma once

// Destination rows of the corrected zooms.

#include <cstddef>
#include <cstdint>

#include "zoom/correct_kernels.h"
#include "zoom/geometry.h"
#include "zoom/linear_kernels.h"
#include "zoom/zoom_tasks.h"

namespace tq {

// A tile is a run of destination columns: so many at most, from so many source columns. Its arrays
// stay in the caches from row to row.
inline constexpr ptrdiff_t kTileColumns = 1024;
inline constexpr ptrdiff_t kTileSourceColumns = kTileColumns / 2 + 5;

// Rows that a tile deals with at once, at most; all are in the same cells.
inline constexpr int kRowsAtOnce = 2;

// What a tile works with. It holds nothing between tiles.
struct CorrectScratch {
    static constexpr ptrdiff_t kColumns = kTileColumns + kCorrectPadding;
    static constexpr ptrdiff_t kSourceColumns = kTileSourceColumns + kCorrectPadding;

    int32_t index[kColumns];
    float fraction[kColumns];
    int32_t half[kColumns];
    int32_t windows[kColumns / 8];
    uint8_t orders[2 * kColumns];
    uint16_t pairs[2][4 * kColumns];

    float along[2][4][kColumns];
    float mixed[kColumns];
    float x[kRowsAtOnce][kColumns], y[kRowsAtOnce][kColumns];

    float weights[kSourceColumns], trends[kSourceColumns];
    float across[4][kSourceColumns];
    float acrossTrends[kSourceColumns];
    float positions[kSourceColumns], fractions[kSourceColumns];
    float left[2 * kSourceColumns], right[2 * kSourceColumns];
};

struct CorrectImages {
    ZoomImages images;
    int channels;
    const unsigned char* guide;  // the plane that the fractions follow, as large as the source
    int guideStride;
    int firstCell;  // the cells before this one are linear on both axes, and so are the last two

    explicit CorrectImages(const CorrectTask& task, int firstCorrectedCell);

    bool CorrectsColumn(int x) const { return x >= firstCell && x < images.srcWidth - 2; }
    bool CorrectsRow(int y) const { return y >= firstCell && y < images.srcHeight - 2; }
};

// As many columns from `first` on as are all corrected or all not, and fit a tile. Rows may be
// asked for in any order; work that rows of the same cells share is done once if they follow each
// other.
class CorrectTile {
public:
    CorrectTile(const CorrectImages& images, int first, CorrectScratch& scratch);

    int Count() const { return static_cast<int>(m_columns.count); }
    bool Corrects(int y) const { return m_corrected && m_images.CorrectsRow(y); }

    // The columns' places in their cells of a destination row, which becomes the slot's: corrected,
    // for a row that is, or as they are.
    void Place(const LinearSample& row, int slot);
    const float* X(int slot) const { return m_x[slot]; }
    const float* Y(int slot) const { return m_scratch.y[slot]; }

    // The pixels at the places of the first `rows` slots, between source rows y and y + 1. They go
    // to the tile's columns of as many destination rows.
    void Blend(int y, unsigned char* const* dst, int rows);

    // Of a corrected tile.
    const CorrectColumns& Columns() const { return m_columns; }
    int FirstSourceColumn() const { return m_firstSource; }

private:
    void Correct(const LinearSample& row, float* x, float* y);
    ptrdiff_t TakeColumns(int first);
    void Pad(ptrdiff_t count);
    bool MakeWindows(ptrdiff_t count);
    const unsigned char* GuideRow(int y) const;
    CorrectRow Along(int y);
    const float* Across(int y);
    const float* Trends(int y);
    const float* Mixed(int64_t half, const CorrectRow& row, const CorrectRow& other);
    const uint16_t* Pairs(int y);

    const CorrectImages& m_images;
    CorrectScratch& m_scratch;
    const CorrectKernels& m_kernels;
    LinearGather m_pair;
    bool m_corrected;
    int m_firstSource = 0;
    CorrectColumns m_columns{};
    LinearColumns m_pairColumns{};
    const float* m_x[kRowsAtOnce];

    // The source rows that the slots of the scratch memory hold.
    int m_alongRow[2] = {-1, -1};
    int m_acrossRow[4] = {-1, -1, -1, -1};
    int m_trendsRow = -1;
    int64_t m_mixedHalf = -1;
    int m_pairsRow[2] = {-1, -1};
};

}  // namespace tq
