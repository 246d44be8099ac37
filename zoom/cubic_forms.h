#pragma once

// The routes of the cubic zooms. Table(srcLength, dstLength) holds an axis's weights while it
// lives, and Records() gives them.

#include "frame/band.h"
#include "zoom/cubic_passes.h"
#include "zoom/geometry.h"
#include "zoom/zoom_tasks.h"

namespace tq {

template <class Table> void ZoomCubicPlain(const ZoomImages& images, int channels) {
    if (images.srcHeight == images.dstHeight) {
        const Table columns(images.srcWidth, images.dstWidth);
        ZoomCubicX(images, channels, columns.Records());
    } else if (images.srcWidth == images.dstWidth) {
        const Table rows(images.srcHeight, images.dstHeight);
        ZoomCubicY(images, channels, rows.Records());
    } else {
        // Both tables are held at once, since both passes go together.
        const Table columns(images.srcWidth, images.dstWidth);
        const Table rows(images.srcHeight, images.dstHeight);
        ZoomCubicXY(images, channels, columns.Records(), rows.Records());
    }
}

// Rows in bands.
inline void RunCubicXBands(const ZoomImages& images, int channels, const int* records) {
    const BandPlan plan = PlanBands(kBandFormB, images.srcHeight);
    TaskSet<CZCubicXTask> tasks;
    int row = 0;
    for (int i = 0; i < plan.count; ++i) {
        CZCubicXTask& task = tasks.Add();
        task.m_nSrcWidth = images.srcWidth;
        task.m_nSrcStride = images.srcStride;
        task.m_pSrc = images.src;
        task.m_nDstWidth = images.dstWidth;
        task.m_nDstStride = images.dstStride;
        task.m_pDst = images.dst;
        task.m_nRowBegin = row;
        task.m_nRowEnd = row += plan.Length(i);
        task.m_pWeights = records;
        task.m_nChannelMode = channels == 4;
    }
    tasks.RunOnRows(int64_t{images.dstWidth} * channels, images.dstStride);
}

// Columns in bands.
inline void RunCubicYBands(const ZoomImages& images, int channels, const int* records) {
    const BandPlan plan = PlanBands(kBandFormB, images.dstWidth);
    TaskSet<CZCubicYTask> tasks;
    int column = 0;
    for (int i = 0; i < plan.count; ++i) {
        CZCubicYTask& task = tasks.Add();
        task.m_nSrcHeight = images.srcHeight;
        task.m_nSrcStride = images.srcStride;
        task.m_pSrc = images.src;
        task.m_nDstHeight = images.dstHeight;
        task.m_nDstStride = images.dstStride;
        task.m_pDst = images.dst;
        task.m_nColBegin = column;
        task.m_nColEnd = column += plan.Length(i);
        task.m_pWeights = records;
        task.m_nChannelMode = channels == 4;
    }
    tasks.RunOnRows(int64_t{images.dstWidth} * channels, images.dstStride);
}

// Both passes of a band of destination columns.
class CubicBandTask final : public CTQIPLTaskBase {
public:
    int Run() override {
        ZoomCubicXY(m_images, m_channels, m_columnRecords, m_rowRecords);
        return 1;
    }

    ZoomImages m_images{};
    int m_channels = 0;
    const int* m_columnRecords = nullptr;
    const int* m_rowRecords = nullptr;
};

// A band's sums of source rows are of use to no other band, so each takes both passes by itself:
// the bytes of a pass over rows and one over columns, without the image of sums between them.
inline void RunCubicBands(const ZoomImages& images, int channels, const int* columnRecords,
                          const int* rowRecords) {
    const BandPlan plan = PlanBands(kBandFormB, images.dstWidth);
    TaskSet<CubicBandTask> tasks;
    ZoomImages band = images;
    for (int i = 0; i < plan.count; ++i) {
        CubicBandTask& task = tasks.Add();
        band.dstWidth = plan.Length(i);
        task.m_images = band;
        task.m_channels = channels;
        task.m_columnRecords = columnRecords;
        task.m_rowRecords = rowRecords;
        columnRecords = AfterCubicRecords(columnRecords, band.dstWidth);
        band.dst += ptrdiff_t{band.dstWidth} * channels;
    }
    tasks.RunOnRows(int64_t{images.dstWidth} * channels, images.dstStride);
}

template <class Table> void ZoomCubicMultiThread(const ZoomImages& images, int channels) {
    if (images.srcHeight == images.dstHeight) {
        const Table columns(images.srcWidth, images.dstWidth);
        RunCubicXBands(images, channels, columns.Records());
    } else if (images.srcWidth == images.dstWidth) {
        const Table rows(images.srcHeight, images.dstHeight);
        RunCubicYBands(images, channels, rows.Records());
    } else {
        const Table columns(images.srcWidth, images.dstWidth);
        const Table rows(images.srcHeight, images.dstHeight);
        RunCubicBands(images, channels, columns.Records(), rows.Records());
    }
}

}  // namespace tq
