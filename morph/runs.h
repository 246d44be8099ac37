#pragma once

// Runs of mask pixels and the regions that they form. A region is a linked list of runs that
// begins at its root; which run is the root, and the order of the list, are part of the results.

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <vector>

// A horizontal run of mask pixels.
struct FCC_RUN {
    int32_t bHead = 1;         // 1 while the run is a root
    int32_t nRow = -1;         // row of the whole image, also in a band
    int32_t nStart = -1;       // first column
    int32_t nEnd = -1;         // last column, inclusive
    FCC_RUN* pRoot = nullptr;  // null for a root; else leads to it, in one or more steps
    FCC_RUN* pNext = nullptr;  // the region's next run, or null
    FCC_RUN* pTail = nullptr;  // on a root: the region's last run; null while the root is alone
    uint32_t nArea = 0;        // pixels of the run; on a root those of the region, modulo 2^32
};

// The root of the region that a run belongs to. Shortens the links on its way.
FCC_RUN* IPL_FCCFindRoot(FCC_RUN* run);

// A run that is alone goes behind all runs of p's region.
void IPL_FCCAttachRun(FCC_RUN* alone, FCC_RUN* p);

// The region of root r goes behind all runs of a's, which is another one.
void IPL_FCCMergeList(FCC_RUN* a, FCC_RUN* r);

// The regions of a and b become one, if they are not: b's goes behind a's, whose root it keeps.
void IPL_FCCUnion(FCC_RUN* a, FCC_RUN* b);

namespace tq {

// The pixels of which runs are made.
enum class RunPixels { kNonzero, kZero };

// Runs in the order of their creation: by row, and in a row from the left. Owns them, in blocks
// that hold whole rows: the runs of a row lie side by side. Where they lie is settled when the next
// row begins, or no more are added.
class RunVector {
    using Block = std::vector<FCC_RUN>;

public:
    class Iterator {
    public:
        explicit Iterator(std::span<Block> blocks) : m_blocks(blocks) { EnterBlock(); }
        FCC_RUN& operator*() const { return *m_run; }
        FCC_RUN* operator->() const { return m_run; }
        Iterator& operator++() {
            if (++m_run == m_blockEnd) EnterBlock();
            return *this;
        }
        bool operator==(std::default_sentinel_t) const { return m_run == nullptr; }

    private:
        void EnterBlock() {
            m_run = nullptr;
            if (m_blocks.empty()) return;
            m_run = m_blocks.front().data();
            m_blockEnd = m_run + m_blocks.front().size();
            m_blocks = m_blocks.subspan(1);
        }

        std::span<Block> m_blocks;  // those to come
        FCC_RUN* m_run;             // null at the end
        FCC_RUN* m_blockEnd = nullptr;
    };

    RunVector() = default;
    RunVector(const RunVector&) = delete;
    RunVector& operator=(const RunVector&) = delete;

    Iterator begin() { return Iterator(m_blocks); }
    std::default_sentinel_t end() const { return {}; }

    void BeginRow() { m_rowSize = 0; }
    void Add(int row, int start, int end) {
        if (m_blocks.empty() || m_blocks.back().size() == m_blocks.back().capacity()) AddBlock();
        m_blocks.back().push_back({.nRow = row,
                                   .nStart = start,
                                   .nEnd = end,
                                   .nArea = static_cast<uint32_t>(end - start + 1)});
        ++m_rowSize;
    }
    void Clear();

    // The runs added since BeginRow.
    std::span<FCC_RUN> Row() { return Last(m_rowSize); }

    // The first and the last `count` runs, all of one row.
    std::span<FCC_RUN> First(size_t count) {
        return count == 0 ? std::span<FCC_RUN>() : std::span(m_blocks.front()).first(count);
    }
    std::span<FCC_RUN> Last(size_t count) {
        return count == 0 ? std::span<FCC_RUN>() : std::span(m_blocks.back()).last(count);
    }

private:
    void AddBlock();

    std::vector<Block> m_blocks;  // none is empty, and none grows beyond its first capacity
    size_t m_rowSize = 0;
};

// Rows firstRow up to but not including endRow of a mask. `first` is the first byte of firstRow.
struct MaskRows {
    const unsigned char* first;
    int width;
    int64_t stride;
    int firstRow;
    int endRow;
};

// The numbers of runs in the first and in the last row.
struct EdgeRowCounts {
    int top = 0;
    int bottom = 0;
};

// Makes the runs of all rows and joins those that touch. `runs` is emptied first.
EdgeRowCounts LabelRows(const MaskRows& rows, RunPixels pixels, RunVector& runs);

// Whether a run ends too far left of another to touch it, in this row or the next: runs touch that
// share a column or a corner.
inline bool EndsLeftOf(const FCC_RUN& run, const FCC_RUN& other) {
    return run.nEnd + 1 < other.nStart;
}

// Calls visit(upper, lower) for each touching pair of two rows of runs: by lower run from the left,
// and for each by upper run from the left.
template <class Visit>
void ForEachTouchingPair(std::span<FCC_RUN> upper, std::span<FCC_RUN> lower, Visit visit) {
    auto first = upper.begin();
    for (FCC_RUN& run : lower) {
        while (first != upper.end() && EndsLeftOf(*first, run)) ++first;
        for (auto touching = first; touching != upper.end() && !EndsLeftOf(run, *touching);
             ++touching)
            visit(&*touching, &run);
    }
}

// Sets all pixels of a region, and no byte beside them, to `value`. `image` is the first byte of
// row 0.
void FillRegion(const FCC_RUN& root, unsigned char* image, int64_t stride, unsigned char value);

}  // namespace tq

// Joins the regions of two neighbouring bands, of which the upper one's keep their roots, and turns
// both tasks to finishing.
template <class Task> void IPL_FCCSeamMerge(Task& upper, Task& lower) {
    upper.m_bLabel = 0;
    lower.m_bLabel = 0;
    tq::ForEachTouchingPair(upper.m_runs.Last(static_cast<size_t>(upper.m_nBottomCount)),
                            lower.m_runs.First(static_cast<size_t>(lower.m_nTopCount)),
                            IPL_FCCUnion);
}
