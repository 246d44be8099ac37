// Denoising of masks: small regions of nonzero or of zero pixels are overwritten.

#include <tqipl/labelling.h>

#include <climits>

#include "morph/labelling_bands.h"
#include "morph/labelling_tasks.h"
#include "morph/runs.h"
#include "morph/zero_regions.h"

namespace {

bool HasPixels(unsigned int width, unsigned int height, unsigned int stride,
               const unsigned char* mask) {
    return tq::HasIntSize(width, height) && stride != 0 && mask != nullptr;
}

void DenoiseZeros(unsigned int width, unsigned int height, unsigned int stride, unsigned char* mask,
                  unsigned int threshold) {
    if (!HasPixels(width, height, stride, mask)) return;
    tq::RunVector runs;
    tq::LabelRows({mask, static_cast<int>(width), stride, 0, static_cast<int>(height)},
                  tq::RunPixels::kZero, runs);
    tq::FillSmallZeroRegions(runs, mask, stride, threshold);
}

}  // namespace

namespace tq {

bool HasIntSize(unsigned int width, unsigned int height) {
    return width >= 1 && width <= INT_MAX && height >= 1 && height <= INT_MAX;
}

void FillSmallZeroRegions(RunVector& runs, unsigned char* image, unsigned int stride,
                          unsigned int threshold) {
    for (const FCC_RUN& run : runs)
        if (run.bHead != 0 && run.nArea <= threshold) FillRegion(run, image, stride, kBackground);
}

void CollectSeeds(RunVector& runs, const unsigned char* image, unsigned int stride,
                  std::vector<Seed>& seeds) {
    for (const FCC_RUN& run : runs) {
        if (image[int64_t{run.nRow} * stride + run.nStart] != 0) continue;
        seeds.push_back({run.nStart, run.nRow});
        seeds.push_back({run.nEnd, run.nRow});
    }
}

void DenoiseZeroBands(TaskSet<CZFCCDeNoiseEx2_Task>& tasks, int width, int height,
                      unsigned int stride, unsigned char* mask, unsigned int threshold) {
    LabelBands(tasks, height, [=](CZFCCDeNoiseEx2_Task& task, int firstRow, int rows) {
        task.m_nWidth = static_cast<unsigned int>(width);
        task.m_nRows = static_cast<unsigned int>(rows);
        task.m_nFirstRow = static_cast<unsigned int>(firstRow);
        task.m_nStride = stride;
        task.m_pImage = mask;
        task.m_nThreshold = threshold;
    });
    tasks.RunOnRows(width, stride);
}

}  // namespace tq

void IPL_FCCLabelingDeNoise(int width, int height, int stride, unsigned char* mask, int threshold) {
    if (width < 1 || height < 1 || stride == 0 || mask == nullptr || threshold == 0) return;
    tq::RunVector runs;
    tq::LabelRows({mask, width, stride, 0, height}, tq::RunPixels::kNonzero, runs);
    for (const FCC_RUN& run : runs)
        if (run.bHead != 0 && static_cast<int>(run.nArea) <= threshold)
            tq::FillRegion(run, mask, stride, 0);
}

void IPL_FCCLabelingDeNoiseEx(unsigned int width, unsigned int height, unsigned int stride,
                              unsigned char* mask, unsigned int threshold) {
    DenoiseZeros(width, height, stride, mask, threshold);
}

void IPL_FCCLabelingDeNoiseEx2(unsigned int width, unsigned int height, unsigned int stride,
                               unsigned char* mask, unsigned int threshold) {
    DenoiseZeros(width, height, stride, mask, threshold);
}

int CZFCCDeNoiseEx_Task::Run() {
    const int firstRow = static_cast<int>(m_nFirstRow);
    if (m_bLabel != 0) {
        tq::LabelBand(
            *this,
            {m_pBand, static_cast<int>(m_nWidth), m_nStride, firstRow, static_cast<int>(m_nEndRow)},
            tq::RunPixels::kZero);
    } else {
        tq::FillSmallZeroRegions(m_runs, tq::FirstRow(m_pBand, firstRow, m_nStride), m_nStride,
                                 m_nThreshold);
    }
    return 1;
}

void IPL_FCCLabelingDeNoiseEx_MultiThread(unsigned int width, unsigned int height,
                                          unsigned int stride, unsigned char* mask,
                                          unsigned int threshold) {
    if (!HasPixels(width, height, stride, mask) || !tq::BandsAreFinished()) return;
    tq::TaskSet<CZFCCDeNoiseEx_Task> tasks;
    tq::LabelBands(tasks, static_cast<int>(height),
                   [=](CZFCCDeNoiseEx_Task& task, int firstRow, int rows) {
                       task.m_nWidth = width;
                       task.m_nFirstRow = static_cast<unsigned int>(firstRow);
                       task.m_nEndRow = static_cast<unsigned int>(firstRow + rows);
                       task.m_nStride = stride;
                       task.m_pBand = mask + int64_t{firstRow} * stride;
                       task.m_nThreshold = threshold;
                   });
    tasks.RunOnRows(static_cast<int>(width), stride);
}

int CZFCCDeNoiseEx2_Task::Run() {
    if (m_bLabel != 0) {
        const int firstRow = static_cast<int>(m_nFirstRow);
        tq::LabelBand(*this,
                      {m_pImage + int64_t{firstRow} * m_nStride, static_cast<int>(m_nWidth),
                       m_nStride, firstRow, firstRow + static_cast<int>(m_nRows)},
                      tq::RunPixels::kZero);
    } else if (m_nMode == 0) {
        tq::FillSmallZeroRegions(m_runs, m_pImage, m_nStride, m_nThreshold);
    } else {
        tq::CollectSeeds(m_runs, m_pImage, m_nStride, m_seeds);
    }
    return 1;
}

void IPL_FCCLabelingDeNoiseEx2_MultiThread(unsigned int width, unsigned int height,
                                           unsigned int stride, unsigned char* mask,
                                           unsigned int threshold) {
    if (!HasPixels(width, height, stride, mask) || !tq::BandsAreFinished()) return;
    tq::TaskSet<CZFCCDeNoiseEx2_Task> tasks;
    tq::DenoiseZeroBands(tasks, static_cast<int>(width), static_cast<int>(height), stride, mask,
                         threshold);
}
