#pragma once

// The one place that cuts an image in bands. Families state which rule they follow and fill their
// own task records; nothing else divides an image by the processor count.

#include <tqipl/array.h>
#include <tqipl/thread.h>

#include <cstdint>
#include <memory>

#include "frame/module.h"
#include "frame/rows.h"

namespace tq {

struct BandRule {
    bool plainAtOneProcessor;  // no task at all when there is one processor
    bool collapseWhenShort;    // one task when there are fewer rows than processors
    bool unsignedDivision = false;
};
inline constexpr BandRule kBandFormA{true, true};
inline constexpr BandRule kBandFormB{false, true};
inline constexpr BandRule kBandFormBUnsigned{false, true, true};  // copies
inline constexpr BandRule kBandFormC{false, false};
inline constexpr BandRule kBandFormPlanes{true, false};  // split and build

// Lengths of the bands of `total` rows or columns: `count` bands of `length`, of which the last
// takes all that remain.
struct BandPlan {
    int total, count, length;
    int Length(int i) const { return i + 1 < count ? length : total - (count - 1) * length; }
};

// The signed division gives a negative total bands without work. The unsigned one would give it
// huge bands: such a total is one band, which finds nothing to do either.
inline BandPlan PlanBands(BandRule rule, int total) {
    const int processors = static_cast<int>(g_IPLProcessorCount);
    if (rule.unsignedDivision && total < 0) return {total, 1, 0};
    const int length = total / processors;
    return {total, rule.collapseWhenShort && length == 0 ? 1 : processors, length};
}

// The same of unsigned lengths, in a number of parts that the caller gives: one part where there is
// less than one for each.
struct Stripes {
    Stripes(unsigned int whole, unsigned int parts)
        : total(whole), count(whole / parts == 0 ? 1 : parts), length(whole / parts) {}
    unsigned int First(unsigned int i) const { return i * length; }
    unsigned int Length(unsigned int i) const { return i + 1 < count ? length : total - First(i); }

    unsigned int total, count, length;
};

inline bool RunsPlain(BandRule rule) { return rule.plainAtOneProcessor && g_IPLProcessorCount < 2; }

// Whether the rows of an image share bytes, so that two tasks that write different rows would write
// the same memory. Sizes of 1 or more.
inline bool RowsOverlap(int64_t width, int64_t stride) { return stride < width && -stride < width; }

// The tasks of one MultiThread form: made here, run by the global pool, which only borrows them,
// and deleted in order. Run may be called again for families that work in two passes.
template <class Task> class TaskSet {
public:
    TaskSet() = default;
    ~TaskSet() {
        for (int i = 0; i < Count(); ++i) delete m_tasks.GetAt(i);
    }
    TaskSet(const TaskSet&) = delete;
    TaskSet& operator=(const TaskSet&) = delete;

    Task& Add() {
        auto task = std::make_unique<Task>();
        m_tasks.Add(task.get());
        return *task.release();
    }
    int Count() const { return static_cast<int>(m_tasks.GetSize()); }
    Task& At(int i) { return *static_cast<Task*>(m_tasks.GetAt(i)); }

    // Throws what a task throws, and std::bad_alloc if memory runs out in the pool.
    void Run() { CTQIPLThreadPool::GetInstance()->RunTasks(m_tasks, -1); }

    // The same for tasks that write rows of their own: one after the other where those rows share
    // bytes.
    void RunOnRows(bool overlap) {
        if (!overlap) return Run();
        for (int i = 0; i < Count(); ++i) At(i).Run();
    }
    void RunOnRows(int64_t width, int64_t stride) { RunOnRows(RowsOverlap(width, stride)); }

private:
    CTQArray<CTQIPLTaskBase*, CTQIPLTaskBase*> m_tasks;
};

// The fields that a task with one source and one destination begins with, in this order.
template <class Dst> class PixelBandTask : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nSrcStride = 0;
    unsigned char* m_pSrc = nullptr;
    int m_nDstStride = 0;
    Dst* m_pDst = nullptr;
};

// A whole MultiThread form of such a task. `plain` is the form's plain function; `finish` sets the
// fields that the task has beyond the six. dstStride counts elements of Dst.
template <class Task, class Dst, class Finish>
void RunPixelBands(BandRule rule, void (*plain)(int, int, int, unsigned char*, int, Dst*),
                   int width, int height, int srcStride, unsigned char* src, int dstStride,
                   Dst* dst, Finish finish) {
    if (RunsPlain(rule)) {
        plain(width, height, srcStride, src, dstStride, dst);
        return;
    }
    const BandPlan plan = PlanBands(rule, height);
    TaskSet<Task> tasks;
    for (int i = 0; i < plan.count; ++i) {
        Task& task = tasks.Add();
        task.m_nWidth = width;
        task.m_nHeight = plan.Length(i);
        task.m_nSrcStride = srcStride;
        task.m_pSrc = src;
        task.m_nDstStride = dstStride;
        task.m_pDst = dst;
        finish(task);
        if (i + 1 < plan.count) {
            src = AfterRows(src, task.m_nHeight, srcStride);
            dst = AfterRows(dst, task.m_nHeight, dstStride);
        }
    }
    tasks.Run();
}

template <class Task, class Dst>
void RunPixelBands(BandRule rule, void (*plain)(int, int, int, unsigned char*, int, Dst*),
                   int width, int height, int srcStride, unsigned char* src, int dstStride,
                   Dst* dst) {
    RunPixelBands<Task>(rule, plain, width, height, srcStride, src, dstStride, dst, [](Task&) {});
}

}  // namespace tq
