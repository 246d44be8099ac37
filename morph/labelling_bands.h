#pragma once

// The bands of the MultiThread forms of labelling, denoising and growth.

#include <cstdint>
#include <new>

#include "frame/band.h"
#include "frame/module.h"
#include "morph/runs.h"

namespace tq {

// Runs Task::Run's body; memory that runs out in it is reported by the task, which must not throw.
template <class Task, class Body> int RunInTask(Task& task, Body body) {
    try {
        body();
    } catch (const std::bad_alloc&) {
        task.m_bOutOfMemory = true;
    }
    return 1;
}

// The first run of a task that labels.
template <class Task> void LabelBand(Task& task, const MaskRows& rows, RunPixels pixels) {
    const EdgeRowCounts counts = LabelRows(rows, pixels, task.m_runs);
    task.m_nTopCount = counts.top;
    task.m_nBottomCount = counts.bottom;
}

// One band is never finished: it has no seam, whose merge would turn its task to finishing. That is
// the contract of the forms on one processor, so nothing needs to be done there.
inline bool BandsAreFinished() { return g_IPLProcessorCount > 1; }

// The tasks of one call, each of which runs once or more.
template <class Task> class RepeatedTasks {
public:
    int Count() const { return m_count; }
    Task& At(int i) { return m_tasks.At(i); }
    Task& Add() {
        Task& task = m_tasks.Add();
        ++m_count;
        return task;
    }

    // Runs all tasks, and throws std::bad_alloc if one of them had no memory.
    void Run() {
        m_tasks.Run();
        ThrowIfOutOfMemory();
    }

    // The same one after the other, for tasks that write where others do.
    void RunInTurn() {
        for (int i = 0; i < m_count; ++i) At(i).Run();
        ThrowIfOutOfMemory();
    }

private:
    void ThrowIfOutOfMemory() {
        for (int i = 0; i < m_count; ++i)
            if (At(i).m_bOutOfMemory) throw std::bad_alloc();
    }

    TaskSet<Task> m_tasks;
    int m_count = 0;
};

// Makes a task for each band of `height` rows, of which fill(task, firstRow, rows) sets the fields,
// and labels the bands as one image.
template <class Task, class Fill>
void LabelBands(RepeatedTasks<Task>& tasks, int height, Fill fill) {
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

// Finishes the regions of labelled bands. Regions share no pixel, but rows that overlap in memory
// share bytes.
template <class Task> void FinishBands(RepeatedTasks<Task>& tasks, int width, int64_t stride) {
    if (stride < width && -stride < width)
        tasks.RunInTurn();
    else
        tasks.Run();
}

}  // namespace tq
