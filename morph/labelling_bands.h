#pragma once

// The bands of the MultiThread forms of labelling, denoising and growth.

#include <cstdint>

#include "frame/band.h"
#include "frame/module.h"
#include "morph/runs.h"

namespace tq {

// The first run of a task that labels.
template <class Task> void LabelBand(Task& task, const MaskRows& rows, RunPixels pixels) {
    const EdgeRowCounts counts = LabelRows(rows, pixels, task.m_runs);
    task.m_nTopCount = counts.top;
    task.m_nBottomCount = counts.bottom;
}

// One band is never finished: it has no seam, whose merge would turn its task to finishing. That is
// the contract of the forms on one processor, so nothing needs to be done there.
inline bool BandsAreFinished() { return g_IPLProcessorCount > 1; }

// Makes a task for each band of `height` rows, of which fill(task, firstRow, rows) sets the fields,
// and labels the bands as one image.
template <class Task, class Fill> void LabelBands(TaskSet<Task>& tasks, int height, Fill fill) {
    const BandPlan plan = PlanBands(kBandFormC, height);
    int firstRow = 0;
    for (int i = 0; i < plan.count; ++i) {
        fill(tasks.Add(), firstRow, plan.Length(i));
        firstRow += plan.Length(i);
    }
    tasks.Run();
    for (int i = 1; i < tasks.Count(); ++i) IPL_FCCSeamMerge(tasks.At(i - 1), tasks.At(i));
}

// The image's first row. A region may reach above the band of its root, so that rows are counted
// from there.
inline unsigned char* FirstRow(unsigned char* band, int firstRow, int64_t stride) {
    return band - firstRow * stride;
}

}  // namespace tq
