// Runs of mask pixels: the scan of rows, and the joining of runs in regions.

#include "morph/runs.h"

#include <algorithm>
#include <cstring>

#include "frame/isa.h"
#include "morph/runs_kernels.h"

FCC_RUN* IPL_FCCFindRoot(FCC_RUN* run) {
    while (FCC_RUN* parent = run->pRoot) {
        if (parent->pRoot != nullptr) run->pRoot = parent->pRoot;
        run = parent;
    }
    return run;
}

void IPL_FCCMergeList(FCC_RUN* a, FCC_RUN* r) {
    FCC_RUN* root = IPL_FCCFindRoot(a);
    FCC_RUN* tail = root->pTail != nullptr ? root->pTail : root;
    tail->pNext = r;
    root->pTail = r->pTail != nullptr ? r->pTail : r;
    root->nArea += r->nArea;
    r->pRoot = root;
    r->bHead = 0;
}

void IPL_FCCAttachRun(FCC_RUN* alone, FCC_RUN* p) { IPL_FCCMergeList(p, alone); }

void IPL_FCCUnion(FCC_RUN* a, FCC_RUN* b) {
    FCC_RUN* rootA = IPL_FCCFindRoot(a);
    FCC_RUN* rootB = IPL_FCCFindRoot(b);
    if (rootA != rootB) IPL_FCCMergeList(rootA, rootB);
}

namespace tq {
namespace {

constexpr const RunsKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(runsKernels);

constexpr int kChunkColumns = 4096;
constexpr size_t kFirstBlockRuns = 64;
constexpr size_t kMostBlockRuns = 16384;

// Appends the runs of one row.
void ScanRow(const RunsKernels& kernels, const unsigned char* row, int width, RunPixels pixels,
             int rowIndex, RunVector& runs) {
    int edges[kChunkColumns];
    int start = -1;  // of the run that is open, or -1
    for (int column = 0, columns; column < width; column += columns) {
        columns = std::min(kChunkColumns, width - column);
        const ptrdiff_t count = kernels.findEdges(row + column, columns, column,
                                                  pixels == RunPixels::kZero, start >= 0, edges);
        for (ptrdiff_t i = 0; i < count; ++i) {
            if (start < 0) {
                start = edges[i];
            } else {
                runs.Add(rowIndex, start, edges[i] - 1);
                start = -1;
            }
        }
    }
    if (start >= 0) runs.Add(rowIndex, start, width - 1);
}

// A run joins the region that it touches first, and every other that it touches joins that one.
void JoinRuns(FCC_RUN* upper, FCC_RUN* lower) {
    if (lower->pRoot == nullptr)
        IPL_FCCAttachRun(lower, upper);
    else
        IPL_FCCUnion(lower, upper);
}

}  // namespace

// The row that is being added moves to the new block, which leaves it as much room again.
void RunVector::AddBlock() {
    const std::span<FCC_RUN> row = Row();
    const size_t larger = m_blocks.empty() ? 0 : m_blocks.back().capacity() * 3 / 2;
    Block block;
    block.reserve(std::max(std::clamp(larger, kFirstBlockRuns, kMostBlockRuns), 2 * row.size()));
    block.assign(row.begin(), row.end());
    if (!m_blocks.empty()) {
        m_blocks.back().resize(m_blocks.back().size() - row.size());
        if (m_blocks.back().empty()) m_blocks.pop_back();
    }
    m_blocks.push_back(std::move(block));
}

void RunVector::Clear() {
    m_blocks.clear();
    m_rowSize = 0;
}

EdgeRowCounts LabelRows(const MaskRows& rows, RunPixels pixels, RunVector& runs) {
    runs.Clear();
    EdgeRowCounts counts;
    if (rows.width < 1) return counts;
    const RunsKernels& kernels = SelectKernels(kKernels);
    std::span<FCC_RUN> upper;
    for (int row = rows.firstRow; row < rows.endRow; ++row) {
        runs.BeginRow();
        const int64_t index = int64_t{row} - rows.firstRow;
        ScanRow(kernels, rows.first + index * rows.stride, rows.width, pixels, row, runs);
        const std::span<FCC_RUN> lower = runs.Row();
        ForEachTouchingPair(upper, lower, JoinRuns);
        counts.bottom = static_cast<int>(lower.size());
        if (row == rows.firstRow) counts.top = counts.bottom;
        upper = lower;
    }
    return counts;
}

void FillRegion(const FCC_RUN& root, unsigned char* image, int64_t stride, unsigned char value) {
    for (const FCC_RUN* run = &root; run != nullptr; run = run->pNext)
        std::memset(image + run->nRow * stride + run->nStart, value,
                    static_cast<size_t>(run->nEnd - run->nStart + 1));
}

}  // namespace tq
