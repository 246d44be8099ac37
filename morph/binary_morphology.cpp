// Erosion and dilation with a cleared margin, and what is put together from them.

#include <tqipl/image_memory.h>
#include <tqipl/morph.h>

#include <algorithm>

#include "frame/band.h"
#include "frame/scratch.h"
#include "morph/morph_tasks.h"
#include "morph/seam_rows.h"
#include "morph/window_pass.h"

namespace {

using tq::MarginMorphologyTask;

// An operation: its rule, and whether a set pixel stays set if the window holds none.
struct Erosion {
    static constexpr auto kRule = &tq::MorphologyKernels::erosion;
    static constexpr bool kEmptyWindowKeeps = true;
    using Task = CMorph_ErosionTask;
};
struct Dilation {
    static constexpr auto kRule = &tq::MorphologyKernels::dilationOfFull;
    static constexpr bool kEmptyWindowKeeps = false;
    using Task = CMorph_DilationTask;
};

// Rows of the margin that reach into a band beside which the image has so many rows.
int MarginInBand(int radiusY, int rowsOutside) {
    return std::max(std::max(radiusY, 0) - std::max(rowsOutside, 0), 0);
}

template <class Operation> void WriteInnerPixels(const MarginMorphologyTask& task) {
    const int64_t marginX = std::max(task.m_nRadiusX, 0);
    const int64_t columns = task.m_nWidth - 2 * marginX;
    const tq::RowRange rows = {
        MarginInBand(task.m_nRadiusY, task.m_bFirst ? 0 : task.m_nRowsAbove),
        int64_t{task.m_nHeight} -
            MarginInBand(task.m_nRadiusY, task.m_bLast ? 0 : task.m_nRowsBelow)};
    if (columns < 1 || rows.begin >= rows.end) return;

    unsigned char* dst = task.m_pDst + rows.begin * task.m_nDstStride + marginX;
    const bool emptyWindow = task.m_nRadiusY < 0 || task.m_nRadiusX < 0;
    if (emptyWindow && !Operation::kEmptyWindowKeeps) {
        IPL_ZeroMemory_C1R(static_cast<int>(columns), static_cast<int>(rows.end - rows.begin),
                           task.m_nDstStride, dst);
        return;
    }
    tq::WindowPass pass{};
    pass.rule = Operation::kRule;
    pass.radiusY = emptyWindow ? 0 : task.m_nRadiusY;
    pass.radiusX = emptyWindow ? 0 : task.m_nRadiusX;
    pass.src = task.m_pSrc + (marginX - pass.radiusX);
    pass.srcStride = task.m_nSrcStride;
    pass.srcColumns = columns + 2 * pass.radiusX;
    pass.rows = {rows.begin - pass.radiusY, rows.end + pass.radiusY};
    pass.band = {0, task.m_nHeight};
    pass.above = task.m_pSeamAbove;
    pass.below = task.m_pSeamBelow;
    pass.dstRows = rows;
    pass.dst = dst;
    pass.dstStride = task.m_nDstStride;
    pass.dstColumns = columns;
    tq::RunWindowPass(pass);
}

// An image to change, with the radii.
struct Change {
    int width, height, stride;
    unsigned char* image;
    int radiusY, radiusX;
};

void ClearMargin(const Change& change, int stride, unsigned char* image) {
    const int x = std::clamp(change.radiusX, 0, change.width);
    const int y = std::clamp(change.radiusY, 0, change.height);
    const auto rowAt = [=](int row) { return image + ptrdiff_t{row} * stride; };
    const int bottom = change.height - y;
    IPL_ZeroMemory_C1R(change.width, y, stride, image);
    if (y > 0) IPL_ZeroMemory_C1R(change.width, y, stride, rowAt(bottom));
    if (y >= bottom || x < 1) return;
    IPL_ZeroMemory_C1R(x, bottom - y, stride, rowAt(y));
    IPL_ZeroMemory_C1R(x, bottom - y, stride, rowAt(y) + (change.width - x));
}

// Sets band `i` of the change, from the image to rows at dst, of which it is given the first.
void SetBand(MarginMorphologyTask& task, const Change& change, const tq::BandPlan& plan, int i,
             int dstStride, unsigned char* dst) {
    const int above = i * plan.length;
    task.m_nWidth = change.width;
    task.m_nHeight = plan.Length(i);
    task.m_nSrcStride = change.stride;
    task.m_pSrc = change.image + ptrdiff_t{above} * change.stride;
    task.m_nDstStride = dstStride;
    task.m_pDst = dst + ptrdiff_t{above} * dstStride;
    task.m_bFirst = i == 0;
    task.m_bLast = i + 1 == plan.count;
    task.m_nRadiusY = change.radiusY;
    task.m_nRadiusX = change.radiusX;
    task.m_nRowsAbove = above;
    task.m_nRowsBelow = change.height - above - task.m_nHeight;
}

template <class Operation> void RunWhole(const Change& change, int dstStride, unsigned char* dst) {
    typename Operation::Task task;
    SetBand(task, change, {change.height, 1, change.height}, 0, dstStride, dst);
    task.Run();
    ClearMargin(change, dstStride, dst);
}

template <class Operation> void RunBandsInPlace(const Change& change, const tq::BandPlan& plan) {
    tq::SeamRows seams(plan, change.width, change.stride, change.image, change.radiusY);
    tq::TaskSet<typename Operation::Task> tasks;
    for (int i = 0; i < plan.count; ++i) {
        MarginMorphologyTask& task = tasks.Add();
        SetBand(task, change, plan, i, change.stride, change.image);
        if (i > 0) task.m_pSeamAbove = seams.BelowSeam(i);
        if (i + 1 < plan.count) task.m_pSeamBelow = seams.BelowSeam(i + 1);
    }
    tasks.Run();
    ClearMargin(change, change.stride, change.image);
}

template <class Operation>
void RunBandsThroughScratch(const Change& change, const tq::BandPlan& plan) {
    tq::Scratch scratch(int64_t{change.width} * change.height);
    tq::TaskSet<typename Operation::Task> tasks;
    for (int i = 0; i < plan.count; ++i)
        SetBand(tasks.Add(), change, plan, i, change.width, scratch.Data());
    tasks.Run();
    ClearMargin(change, change.width, scratch.Data());
    IPL_Memcpy_C1R(change.width, change.height, change.width, scratch.Data(), change.stride,
                   change.image);
}

template <class Operation> void RunPlain(const Change& change) {
    if (change.width < 1 || change.height < 1) return;
    if (!tq::RowsOverlap(change.width, change.stride)) {
        RunWhole<Operation>(change, change.stride, change.image);
        return;
    }
    // All rows are to be read before one is written.
    tq::Scratch scratch(int64_t{change.width} * change.height);
    RunWhole<Operation>(change, change.width, scratch.Data());
    IPL_Memcpy_C1R(change.width, change.height, change.width, scratch.Data(), change.stride,
                   change.image);
}

template <class Operation> void RunBands(const Change& change) {
    if (change.width < 1 || change.height < 1) return;
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormC, change.height);
    if (plan.count < 2)
        RunPlain<Operation>(change);
    else if (tq::SeamRows::Pay(plan, change.width, change.stride, change.radiusY))
        RunBandsInPlace<Operation>(change, plan);
    else
        RunBandsThroughScratch<Operation>(change, plan);
}

}  // namespace

int CMorph_ErosionTask::Run() {
    WriteInnerPixels<Erosion>(*this);
    return 1;
}

int CMorph_DilationTask::Run() {
    WriteInnerPixels<Dilation>(*this);
    return 1;
}

void IPL_Erosion(int width, int height, int stride, unsigned char* image, int radiusY,
                 int radiusX) {
    RunPlain<Erosion>({width, height, stride, image, radiusY, radiusX});
}

void IPL_Erosion_MultiThread(int width, int height, int stride, unsigned char* image, int radiusY,
                             int radiusX) {
    RunBands<Erosion>({width, height, stride, image, radiusY, radiusX});
}

void IPL_Dilation(int width, int height, int stride, unsigned char* image, int radiusY,
                  int radiusX) {
    RunPlain<Dilation>({width, height, stride, image, radiusY, radiusX});
}

void IPL_Dilation_MultiThread(int width, int height, int stride, unsigned char* image, int radiusY,
                              int radiusX) {
    RunBands<Dilation>({width, height, stride, image, radiusY, radiusX});
}

void IPL_Opening(int width, int height, int stride, unsigned char* image, int radiusY,
                 int radiusX) {
    IPL_Erosion(width, height, stride, image, radiusY, radiusX);
    IPL_Dilation(width, height, stride, image, radiusY, radiusX);
}

void IPL_Closing(int width, int height, int stride, unsigned char* image, int radiusY,
                 int radiusX) {
    IPL_Dilation(width, height, stride, image, radiusY, radiusX);
    IPL_Erosion(width, height, stride, image, radiusY, radiusX);
}

void IPL_DeNoise(int width, int height, int stride, unsigned char* image, int radiusY,
                 int radiusX) {
    IPL_Erosion(width, height, stride, image, radiusY, radiusX);
    IPL_Dilation(width, height, stride, image, radiusY, radiusX);
    IPL_Dilation(width, height, stride, image, radiusY, radiusX);
    IPL_Erosion(width, height, stride, image, radiusY, radiusX);
}

void IPL_Opening_MultiThread(int width, int height, int stride, unsigned char* image, int radiusY,
                             int radiusX) {
    IPL_Erosion_MultiThread(width, height, stride, image, radiusY, radiusX);
    IPL_Dilation_MultiThread(width, height, stride, image, radiusY, radiusX);
}

void IPL_Closing_MultiThread(int width, int height, int stride, unsigned char* image, int radiusY,
                             int radiusX) {
    IPL_Dilation_MultiThread(width, height, stride, image, radiusY, radiusX);
    IPL_Erosion_MultiThread(width, height, stride, image, radiusY, radiusX);
}

void IPL_DeNoise_MultiThread(int width, int height, int stride, unsigned char* image, int radiusY,
                             int radiusX) {
    IPL_Erosion_MultiThread(width, height, stride, image, radiusY, radiusX);
    IPL_Dilation_MultiThread(width, height, stride, image, radiusY, radiusX);
    IPL_Dilation_MultiThread(width, height, stride, image, radiusY, radiusX);
    IPL_Erosion_MultiThread(width, height, stride, image, radiusY, radiusX);
}
