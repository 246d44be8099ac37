// Labelling of masks: regions that are large enough are listed, the others cleared.

#include <tqipl/labelling.h>

#include <vector>

#include "morph/boxes.h"
#include "morph/labelling_bands.h"
#include "morph/labelling_tasks.h"
#include "morph/runs.h"

namespace {

bool HasPixels(int width, int height, int stride, const unsigned char* mask) {
    return width > 0 && height > 0 && stride != 0 && mask != nullptr;
}

TQ_RECT BoundingBox(const FCC_RUN& root) {
    TQ_RECT box{root.nStart, root.nRow, root.nEnd, root.nRow};
    for (const FCC_RUN* run = root.pNext; run != nullptr; run = run->pNext)
        tq::Include(box, run->nStart, run->nEnd, run->nRow);
    return box;
}

// The end of every form: the regions whose roots are among the runs. `image` is the first byte of
// row 0.
void ClearOrList(tq::RunVector& runs, unsigned char* image, int stride, int minimumSize,
                 CTQArray<TQ_RECT, TQ_RECT&>& rects) {
    std::vector<TQ_RECT> found;
    for (const FCC_RUN& run : runs) {
        if (run.bHead == 0) continue;
        if (static_cast<int>(run.nArea) <= minimumSize)
            tq::FillRegion(run, image, stride, 0);
        else
            found.push_back(BoundingBox(run));
    }
    tq::Append(rects, found.data(), found.size());
}

void LabelMask(int width, int height, int stride, unsigned char* mask,
               CTQArray<TQ_RECT, TQ_RECT&>* rects, int minimumSize) {
    if (rects == nullptr) return;
    rects->SetSize(0);
    if (!HasPixels(width, height, stride, mask)) return;
    tq::RunVector runs;
    tq::LabelRows({mask, width, stride, 0, height}, tq::RunPixels::kNonzero, runs);
    ClearOrList(runs, mask, stride, minimumSize, *rects);
}

}  // namespace

void IPL_FCCLabeling(int width, int height, int stride, unsigned char* mask,
                     CTQArray<TQ_RECT, TQ_RECT&>* rects, int minimumSize) {
    LabelMask(width, height, stride, mask, rects, minimumSize);
}

void IPL_FCCLabeling2(int width, int height, int stride, unsigned char* mask,
                      CTQArray<TQ_RECT, TQ_RECT&>* rects, int minimumSize) {
    LabelMask(width, height, stride, mask, rects, minimumSize);
}

int CZFCCLabeing_Task::Run() {
    if (m_bLabel != 0) {
        tq::LabelBand(*this, {m_pBand, m_nWidth, m_nStride, m_nFirstRow, m_nEndRow},
                      tq::RunPixels::kNonzero);
    } else {
        ClearOrList(m_runs, tq::FirstRow(m_pBand, m_nFirstRow, m_nStride), m_nStride,
                    m_nMinimumSize, m_rects);
    }
    return 1;
}

void IPL_FCCLabeling_MultiThread(int width, int height, int stride, unsigned char* mask,
                                 CTQArray<TQ_RECT, TQ_RECT&>* rects, int minimumSize) {
    if (rects == nullptr) return;
    rects->SetSize(0);
    if (!HasPixels(width, height, stride, mask) || !tq::BandsAreFinished()) return;
    tq::TaskSet<CZFCCLabeing_Task> tasks;
    tq::LabelBands(tasks, height, [=](CZFCCLabeing_Task& task, int firstRow, int rows) {
        task.m_nWidth = width;
        task.m_nFirstRow = firstRow;
        task.m_nEndRow = firstRow + rows;
        task.m_nStride = stride;
        task.m_pBand = mask + int64_t{firstRow} * stride;
        task.m_nMinimumSize = minimumSize;
    });
    tasks.RunOnRows(width, stride);
    for (int i = 0; i < tasks.Count(); ++i) {
        CTQArray<TQ_RECT, TQ_RECT&>& found = tasks.At(i).m_rects;
        tq::Append(*rects, found.m_pData, static_cast<size_t>(found.GetSize()));
    }
}
