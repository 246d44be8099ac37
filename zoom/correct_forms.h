#pragma once

// Plain and MultiThread forms and tasks of the corrected zooms, which differ in their tasks only.

#include <tqipl/luminance.h>

#include "frame/band.h"
#include "frame/exact_math.h"
#include "frame/scratch.h"
#include "zoom/correct_rows.h"

namespace tq {

// Whether both axes are enlarged by 2 or more. The products are of 32 bits.
inline bool EnlargesByTwo(const ZoomImages& images) {
    return Mul32(images.srcWidth, 2) <= images.dstWidth &&
           Mul32(images.srcHeight, 2) <= images.dstHeight;
}

// The luminance of a source of four channels; nothing for one channel, which needs none.
class LuminancePlane {
public:
    template <class Luminance>
    LuminancePlane(const ZoomImages& images, int channels, Luminance luminance)
        : m_memory(channels == 1 ? Scratch() : Scratch(images.srcHeight, images.srcWidth)) {
        if (channels == 1) return;
        luminance(images.srcWidth, images.srcHeight, images.srcStride, images.src, images.srcWidth,
                  m_memory.Data());
    }
    unsigned char* Data() const { return m_memory.Data(); }

private:
    Scratch m_memory;
};

inline void SetCorrectTask(CorrectTask& task, const ZoomImages& images, int channels,
                           unsigned char* luminance, int rowBegin, int rowEnd) {
    task.m_nSrcWidth = images.srcWidth;
    task.m_nSrcHeight = images.srcHeight;
    task.m_nSrcStride = images.srcStride;
    task.m_pSrc = images.src;
    task.m_nLumStride = channels == 1 ? 0 : images.srcWidth;
    task.m_pLum = luminance;
    task.m_nDstWidth = images.dstWidth;
    task.m_nDstHeight = images.dstHeight;
    task.m_nDstStride = images.dstStride;
    task.m_pDst = images.dst;
    task.m_nRowBegin = rowBegin;
    task.m_nRowEnd = rowEnd;
    task.m_nChannelMode = channels == 1 ? 0 : 1;
}

template <class Task> void ZoomCorrectPlain(const ZoomImages& images, int channels) {
    LuminancePlane luminance(images, channels, IPL_ARGB2LUM);
    Task task;
    SetCorrectTask(task, images, channels, luminance.Data(), 0, images.dstHeight);
    task.Run();
}

// All memory is taken here: the tasks take none.
template <class Task, class BandScratch>
void ZoomCorrectMultiThread(const ZoomImages& images, int channels) {
    LuminancePlane luminance(images, channels, IPL_ARGB2LUM_MultiThread);
    const BandPlan plan = PlanBands(kBandFormB, images.dstHeight);
    const Scratch scratch(plan.count, sizeof(BandScratch));
    TaskSet<Task> tasks;
    int row = 0;
    for (int i = 0; i < plan.count; ++i) {
        Task& task = tasks.Add();
        SetCorrectTask(task, images, channels, luminance.Data(), row, row + plan.Length(i));
        task.m_pScratch = scratch.Data() + i * sizeof(BandScratch);
        row += plan.Length(i);
    }
    tasks.RunOnRows(int64_t{images.dstWidth} * channels, images.dstStride);
}

// The body of a task: calls rows(images, scratch) if there is anything to do.
template <class BandScratch, class Rows>
int RunCorrectTask(const CorrectTask& task, int firstCell, Rows rows) {
    if (task.m_nChannelMode != 0 && task.m_nChannelMode != 1) return 1;
    if (task.m_nSrcWidth < 1 || task.m_nSrcHeight < 1 || task.m_nDstWidth < 1) return 1;
    const Scratch own = task.m_pScratch ? Scratch() : Scratch(sizeof(BandScratch));
    unsigned char* scratch = task.m_pScratch ? task.m_pScratch : own.Data();
    rows(CorrectImages(task, firstCell), *reinterpret_cast<BandScratch*>(scratch));
    return 1;
}

}  // namespace tq
