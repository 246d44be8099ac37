#pragma once

// The routes of the cubic zooms. Table(srcLength, dstLength) holds an axis's weights while it
// lives, and Records() gives them.

#include <tqipl/buffer.h>

#include <algorithm>

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

// Source rows in bands; to the sums, or to the destination if there are none.
inline void RunCubicXBands(const ZoomImages& images, int channels, const int* records, int* sums) {
    const BandPlan plan = PlanBands(kBandFormB, images.srcHeight);
    TaskSet<CZCubicXTask> tasks;
    int row = 0;
    for (int i = 0; i < plan.count; ++i) {
        CZCubicXTask& task = tasks.Add();
        task.m_nSrcWidth = images.srcWidth;
        task.m_nSrcStride = images.srcStride;
        task.m_pSrc = images.src;
        task.m_nDstWidth = images.dstWidth;
        task.m_nDstStride = sums ? images.dstWidth * channels : images.dstStride;
        task.m_pIntermediate = sums;
        task.m_pDst = sums ? nullptr : images.dst;
        task.m_nRowBegin = row;
        task.m_nRowEnd = row += plan.Length(i);
        task.m_pWeights = records;
        task.m_nChannelMode = channels == 4;
        task.m_bToIntermediate = sums != nullptr;
    }
    if (sums)
        tasks.Run();
    else
        tasks.RunOnRows(int64_t{images.dstWidth} * channels, images.dstStride);
}

// Destination columns in bands; from the sums, or from the source if there are none.
inline void RunCubicYBands(const ZoomImages& images, int channels, const int* records, int* sums) {
    const BandPlan plan = PlanBands(kBandFormB, images.dstWidth);
    TaskSet<CZCubicYTask> tasks;
    int column = 0;
    for (int i = 0; i < plan.count; ++i) {
        CZCubicYTask& task = tasks.Add();
        task.m_nSrcHeight = images.srcHeight;
        task.m_nSrcStride = sums ? images.dstWidth * channels : images.srcStride;
        task.m_pIntermediate = sums;
        task.m_pSrc = sums ? nullptr : images.src;
        task.m_bFromIntermediate = sums != nullptr;
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

// Both passes over groups of destination columns, whose sums stay in the caches. False if a single
// column's sums are more than the manager gives.
inline bool RunCubicGroups(const ZoomImages& images, int channels, const int* columnRecords,
                           const int* rowRecords) {
    constexpr int64_t kBytesPerProcessor = 1 << 21;
    constexpr int64_t kMostBytes = 0x40000000;
    const int64_t columnBytes = int64_t{images.srcHeight} * channels * 4;
    if (columnBytes > kMostBytes) return false;
    const int64_t bytes = std::min(kMostBytes, kBytesPerProcessor * g_IPLProcessorCount);
    const int most =
        static_cast<int>(std::clamp(bytes / columnBytes, int64_t{1}, int64_t{images.dstWidth}));
    CTQIPLMemoryAuto memory(static_cast<int>(most * columnBytes), nullptr);
    int* sums = reinterpret_cast<int*>(memory.Data());
    ZoomImages group = images;
    for (int first = 0; first < images.dstWidth; first += group.dstWidth) {
        group.dstWidth = std::min(most, images.dstWidth - first);
        group.dst = images.dst + ptrdiff_t{first} * channels;
        RunCubicXBands(group, channels, columnRecords, sums);
        RunCubicYBands(group, channels, rowRecords, sums);
        columnRecords = AfterCubicRecords(columnRecords, group.dstWidth);
    }
    return true;
}

template <class Table> void ZoomCubicMultiThread(const ZoomImages& images, int channels) {
    if (images.srcHeight == images.dstHeight) {
        const Table columns(images.srcWidth, images.dstWidth);
        RunCubicXBands(images, channels, columns.Records(), nullptr);
    } else if (images.srcWidth == images.dstWidth) {
        const Table rows(images.srcHeight, images.dstHeight);
        RunCubicYBands(images, channels, rows.Records(), nullptr);
    } else {
        const Table columns(images.srcWidth, images.dstWidth);
        const Table rows(images.srcHeight, images.dstHeight);
        if (!RunCubicGroups(images, channels, columns.Records(), rows.Records()))
            ZoomCubicXY(images, channels, columns.Records(), rows.Records());
    }
}

}  // namespace tq
