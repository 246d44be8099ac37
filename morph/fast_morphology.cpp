// Erosion and dilation with clipped windows, and what is put together from them.

#include <tqipl/image_memory.h>
#include <tqipl/morph.h>

#include <algorithm>

#include "frame/band.h"
#include "frame/scratch.h"
#include "morph/morph_tasks.h"
#include "morph/seam_rows.h"
#include "morph/window_pass.h"

namespace {

using tq::ClippedMorphologyTask;

// An operation: its rule, and what a window without pixels gives.
struct Erosion {
    static constexpr auto kRule = &tq::MorphologyKernels::erosion;
    static constexpr unsigned char kEmptyWindow = 255;
    using Task = CZFErosion_Task;
};
struct Dilation {
    static constexpr auto kRule = &tq::MorphologyKernels::dilation;
    static constexpr unsigned char kEmptyWindow = 0;
    using Task = CZFDilation_Task;
};

// A band of radiusY rows or fewer leaves out the rows behind it up to first + radiusY: the
// contract.
tq::RowRange LeftOut(int64_t firstRow, int64_t rows, int64_t radiusY) {
    if (rows > radiusY) return {0, 0};
    return {firstRow + rows, firstRow + radiusY + 1};
}

template <class Operation> void WriteBand(const ClippedMorphologyTask& task) {
    if (task.m_nWidth < 1 || task.m_nHeight < 1 || task.m_nRows < 1) return;
    if (task.m_nRadiusY < 0 || task.m_nRadiusX < 0) {
        IPL_FillMemory_C1R(task.m_nWidth, task.m_nRows, task.m_nDstStride, task.m_pDst,
                           Operation::kEmptyWindow);
        return;
    }
    tq::WindowPass pass{};
    pass.rule = Operation::kRule;
    pass.radiusY = std::min(task.m_nRadiusY, task.m_nHeight - 1);
    pass.radiusX = std::min(task.m_nRadiusX, task.m_nWidth - 1);
    pass.src = task.m_pSrc;
    pass.srcStride = task.m_nSrcStride;
    pass.srcColumns = task.m_nWidth;
    pass.outside = pass.radiusX;
    pass.rows = {0, task.m_nHeight};
    pass.leftOut = LeftOut(task.m_nFirstRow, task.m_nRows, task.m_nRadiusY);
    pass.band = {task.m_nFirstRow, int64_t{task.m_nFirstRow} + task.m_nRows};
    pass.above = task.m_pSeamAbove;
    pass.below = task.m_pSeamBelow;
    pass.dstRows = pass.band;
    pass.dst = task.m_pDst;
    pass.dstStride = task.m_nDstStride;
    pass.dstColumns = task.m_nWidth;
    tq::RunWindowPass(pass);
}

template <class Operation>
void RunPlain(int width, int height, int stride, unsigned char* image, int radiusY, int radiusX) {
    typename Operation::Task task;
    task.m_nWidth = width;
    task.m_nHeight = height;
    task.m_nSrcStride = stride;
    task.m_pSrc = image;
    task.m_nDstStride = stride;
    task.m_pDst = image;
    task.m_nRows = height;
    task.m_nRadiusY = radiusY;
    task.m_nRadiusX = radiusX;
    task.Run();
}

template <class Operation>
void RunBands(const tq::BandPlan& plan, int width, int srcStride, unsigned char* src, int dstStride,
              unsigned char* dst, int radiusY, int radiusX, tq::SeamRows* seams = nullptr) {
    tq::TaskSet<typename Operation::Task> tasks;
    int firstRow = 0;
    for (int i = 0; i < plan.count; ++i) {
        ClippedMorphologyTask& task = tasks.Add();
        task.m_nWidth = width;
        task.m_nHeight = plan.total;
        task.m_nSrcStride = srcStride;
        task.m_pSrc = src;
        task.m_nDstStride = dstStride;
        task.m_pDst = dst + ptrdiff_t{firstRow} * dstStride;
        task.m_nFirstRow = firstRow;
        task.m_nRows = plan.Length(i);
        task.m_nRadiusY = radiusY;
        task.m_nRadiusX = radiusX;
        if (seams != nullptr && i > 0) task.m_pSeamAbove = seams->BelowSeam(i);
        if (seams != nullptr && i + 1 < plan.count) task.m_pSeamBelow = seams->BelowSeam(i + 1);
        firstRow += task.m_nRows;
    }
    tasks.RunOnRows(width, dstStride);
}

template <class Operation>
void RunInPlace(int width, int height, int stride, unsigned char* image, int radiusY, int radiusX) {
    if (width < 1 || height < 1) return;
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormC, height);
    if (plan.Length(plan.count - 1) == height && !tq::RowsOverlap(width, stride)) {
        // One band has all rows and may work in place.
        RunBands<Operation>(plan, width, stride, image, stride, image, radiusY, radiusX);
        return;
    }
    if (tq::SeamRows::Pay(plan, width, stride, radiusY)) {
        tq::SeamRows seams(plan, width, stride, image, radiusY);
        RunBands<Operation>(plan, width, stride, image, stride, image, radiusY, radiusX, &seams);
        return;
    }
    tq::Scratch scratch(int64_t{width} * height);
    IPL_Memcpy_C1R(width, height, stride, image, width, scratch.Data());
    RunBands<Operation>(plan, width, width, scratch.Data(), stride, image, radiusY, radiusX);
}

template <class Operation>
void RunFromTo(int width, int height, int srcStride, unsigned char* src, int dstStride,
               unsigned char* dst, int radiusY, int radiusX) {
    if (width < 1 || height < 1) return;
    if (src == dst && srcStride == dstStride) {
        RunInPlace<Operation>(width, height, srcStride, src, radiusY, radiusX);
        return;
    }
    RunBands<Operation>(tq::PlanBands(tq::kBandFormC, height), width, srcStride, src, dstStride,
                        dst, radiusY, radiusX);
}

// The first operation from src to a dense scratch image, the second from there to dst, which may be
// src.
template <class First, class Second>
void RunTwo(int width, int height, int srcStride, unsigned char* src, int dstStride,
            unsigned char* dst, int radiusY1, int radiusX1, int radiusY2, int radiusX2) {
    if (width < 1 || height < 1) return;
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormC, height);
    tq::Scratch scratch(int64_t{width} * height);
    RunBands<First>(plan, width, srcStride, src, width, scratch.Data(), radiusY1, radiusX1);
    RunBands<Second>(plan, width, width, scratch.Data(), dstStride, dst, radiusY2, radiusX2);
}

template <class First, class Second>
void RunTwoInPlace(int width, int height, int stride, unsigned char* image, int radiusY1,
                   int radiusX1, int radiusY2, int radiusX2) {
    if (tq::RowsOverlap(width, stride)) {
        // The second operation sees what the first one left in the shared bytes.
        RunInPlace<First>(width, height, stride, image, radiusY1, radiusX1);
        RunInPlace<Second>(width, height, stride, image, radiusY2, radiusX2);
        return;
    }
    RunTwo<First, Second>(width, height, stride, image, stride, image, radiusY1, radiusX1, radiusY2,
                          radiusX2);
}

}  // namespace

int CZFErosion_Task::Run() {
    WriteBand<Erosion>(*this);
    return 1;
}

int CZFDilation_Task::Run() {
    WriteBand<Dilation>(*this);
    return 1;
}

void IPL_FErosion(int width, int height, int stride, unsigned char* image, int radiusY,
                  int radiusX) {
    RunPlain<Erosion>(width, height, stride, image, radiusY, radiusX);
}

void IPL_FErosion_MultiThread(int width, int height, int stride, unsigned char* image, int radiusY,
                              int radiusX) {
    RunInPlace<Erosion>(width, height, stride, image, radiusY, radiusX);
}

void IPL_FErosion_MultiThread(int width, int height, int srcStride, unsigned char* src,
                              int dstStride, unsigned char* dst, int radiusY, int radiusX) {
    RunFromTo<Erosion>(width, height, srcStride, src, dstStride, dst, radiusY, radiusX);
}

void IPL_FDilation(int width, int height, int stride, unsigned char* image, int radiusY,
                   int radiusX) {
    RunPlain<Dilation>(width, height, stride, image, radiusY, radiusX);
}

void IPL_FDilation_MultiThread(int width, int height, int stride, unsigned char* image, int radiusY,
                               int radiusX) {
    RunInPlace<Dilation>(width, height, stride, image, radiusY, radiusX);
}

void IPL_FDilation_MultiThread(int width, int height, int srcStride, unsigned char* src,
                               int dstStride, unsigned char* dst, int radiusY, int radiusX) {
    RunFromTo<Dilation>(width, height, srcStride, src, dstStride, dst, radiusY, radiusX);
}

void IPL_FOpening(int width, int height, int stride, unsigned char* image, int radiusY1,
                  int radiusX1, int radiusY2, int radiusX2) {
    IPL_FErosion(width, height, stride, image, radiusY1, radiusX1);
    IPL_FDilation(width, height, stride, image, radiusY2, radiusX2);
}

void IPL_FOpening_MultiThread(int width, int height, int stride, unsigned char* image, int radiusY1,
                              int radiusX1, int radiusY2, int radiusX2) {
    RunTwoInPlace<Erosion, Dilation>(width, height, stride, image, radiusY1, radiusX1, radiusY2,
                                     radiusX2);
}

void IPL_FOpening_MultiThread(int width, int height, int srcStride, unsigned char* src,
                              int dstStride, unsigned char* dst, int radiusY1, int radiusX1,
                              int radiusY2, int radiusX2) {
    RunTwo<Erosion, Dilation>(width, height, srcStride, src, dstStride, dst, radiusY1, radiusX1,
                              radiusY2, radiusX2);
}

void IPL_FClosing(int width, int height, int stride, unsigned char* image, int radiusY1,
                  int radiusX1, int radiusY2, int radiusX2) {
    IPL_FDilation(width, height, stride, image, radiusY1, radiusX1);
    IPL_FErosion(width, height, stride, image, radiusY2, radiusX2);
}

void IPL_FClosing_MultiThread(int width, int height, int stride, unsigned char* image, int radiusY1,
                              int radiusX1, int radiusY2, int radiusX2) {
    RunTwoInPlace<Dilation, Erosion>(width, height, stride, image, radiusY1, radiusX1, radiusY2,
                                     radiusX2);
}

void IPL_FClosing_MultiThread(int width, int height, int srcStride, unsigned char* src,
                              int dstStride, unsigned char* dst, int radiusY1, int radiusX1,
                              int radiusY2, int radiusX2) {
    RunTwo<Dilation, Erosion>(width, height, srcStride, src, dstStride, dst, radiusY1, radiusX1,
                              radiusY2, radiusX2);
}

void IPL_FDeNoise(int width, int height, int stride, unsigned char* image, int radiusY,
                  int radiusX) {
    IPL_FOpening(width, height, stride, image, radiusY, radiusX, radiusY, radiusX);
    IPL_FClosing(width, height, stride, image, radiusY, radiusX, radiusY, radiusX);
}

void IPL_FDeNoise_MultiThread(int width, int height, int stride, unsigned char* image, int radiusY,
                              int radiusX) {
    IPL_FOpening_MultiThread(width, height, stride, image, radiusY, radiusX, radiusY, radiusX);
    IPL_FClosing_MultiThread(width, height, stride, image, radiusY, radiusX, radiusY, radiusX);
}
