// TFI zoom: plain forms, band tasks, MultiThread forms.

#include <tqipl/planes.h>
#include <tqipl/zoom.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <utility>

#include "frame/band.h"
#include "frame/scratch.h"
#include "zoom/geometry.h"
#include "zoom/tfi_kernels.h"
#include "zoom/tfi_steps.h"
#include "zoom/zoom_tasks.h"

namespace tq {

// A source row as a tile needs it. `runtimeWeight` holds those activity weights of the runtime's
// that somebody has asked for; the others are 0.
struct TFITileRow {
    int y;
    TFISamples samples;
    float runtimeWeight[kTFISamples];
    TFIRow placed;

    float RuntimeWeight(int i) {
        float& weight = runtimeWeight[i];
        if (weight == 0.0f) weight = TFIActivityWeight(samples.activity[i]);
        return weight;
    }
};

// The memory of one thread.
struct TFIScratch {
    TFIColumns columns;
    TFITileRow rows[2];
    TFIWindows windows;
    int32_t unsure[kTFIColumns];
};

}  // namespace tq

namespace {

constexpr const tq::TFIKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(tfiKernels);

// Some neighbouring columns of some destination rows.
class Tile {
public:
    // Of the columns from `begin` on as many as the arrays take, all for the kernels or none.
    Tile(const tq::ZoomImages& images, tq::TFISpread spread, tq::TFIScratch& scratch, int begin)
        : m_images(images),
          m_source(images),
          m_kernels(tq::SelectKernels(kKernels)),
          m_spread(spread),
          m_scratch(scratch),
          m_upper(&scratch.rows[0]),
          m_lower(&scratch.rows[1]),
          m_begin(begin) {
        m_upper->y = m_lower->y = INT_MIN;
        SetColumns();
    }

    int End() const { return m_begin + static_cast<int>(m_scratch.columns.count); }

    void Zoom(int begin, int end) {
        const tq::TFIAxis axis(m_images.srcHeight, m_images.dstHeight);
        for (int y = begin; y < end; ++y) {
            unsigned char* dst = m_images.dst + tq::Mul32(y, m_images.dstStride) + m_begin;
            const tq::TFIPosition position = axis.At(y);
            Hold(position.first);
            if (m_suitsKernels && HasNoNegative(position))
                Blend(position, dst);
            else
                for (int x = 0; x < m_scratch.columns.count; ++x) dst[x] = Byte(position, x);
        }
    }

private:
    // The kernels' bound needs weights of 0 or more, as all are between the samples of the image.
    static bool HasNoNegative(const tq::TFIPosition& position) {
        return position.firstWeight >= 0.0f && position.secondWeight >= 0.0f;
    }
    void SetColumns() {
        const tq::TFIAxis axis(m_images.srcWidth, m_images.dstWidth);
        tq::TFIColumns& columns = m_scratch.columns;
        m_firstSample = axis.At(m_begin).first;
        const int most =
            static_cast<int>(std::min(tq::kTFIColumns, ptrdiff_t{m_images.dstWidth} - m_begin));
        int count = 0;
        for (; count < most; ++count) {
            const tq::TFIPosition position = axis.At(m_begin + count);
            const int index = position.first - m_firstSample;
            const bool suitsKernels = HasNoNegative(position);
            if (count == 0) m_suitsKernels = suitsKernels;
            if (index + 1 >= tq::kTFISamples || suitsKernels != m_suitsKernels) break;
            columns.index[count] = index;
            columns.leftPosition[count] = position.firstWeight;
            columns.rightPosition[count] = position.secondWeight;
        }
        columns.count = count;
        m_sampleCount = columns.index[count - 1] + 2;
        std::fill_n(columns.index + count, tq::kTFIPadding, columns.index[count - 1]);
        std::fill_n(columns.leftPosition + count, tq::kTFIPadding, 0.0f);
        std::fill_n(columns.rightPosition + count, tq::kTFIPadding, 0.0f);
    }

    // The source rows `y` and `y` + 1.
    void Hold(int y) {
        if (m_upper->y == y) return;
        std::swap(m_upper, m_lower);
        if (m_upper->y != y) Read(*m_upper, y);
        Read(*m_lower, y + 1);
        if (!m_suitsKernels) return;
        const auto measure = m_spread == tq::TFISpread::kVariance ? m_kernels.measureVariance
                                                                  : m_kernels.measureDeviation;
        measure(m_scratch.columns.count, m_upper->placed, m_lower->placed, m_scratch.windows);
    }

    void Read(tq::TFITileRow& row, int y) {
        row.y = y;
        std::fill_n(row.runtimeWeight, m_sampleCount, 0.0f);
        int i = 0;
        if (m_source.IsInnerRow(y)) {
            const int begin = std::max(m_firstSample, 1);
            const int end = std::min(m_firstSample + m_sampleCount, m_source.LastX());
            for (; i < begin - m_firstSample && i < m_sampleCount; ++i) ReadOne(row, i);
            if (begin < end) {
                m_kernels.sample(m_source.Row(y - 1) + begin, m_source.Row(y) + begin,
                                 m_source.Row(y + 1) + begin, end - begin, row.samples.value + i,
                                 row.samples.activity + i, row.samples.weight + i);
                i += end - begin;
            }
        }
        for (; i < m_sampleCount; ++i) ReadOne(row, i);
        if (m_suitsKernels) m_kernels.place(m_scratch.columns, row.samples, row.placed);
    }

    void ReadOne(tq::TFITileRow& row, int i) {
        const int x = m_firstSample + i;
        row.samples.value[i] = static_cast<float>(m_source.At(x, row.y));
        row.samples.activity[i] = m_source.Activity(x, row.y);
        row.samples.weight[i] = row.RuntimeWeight(i);
    }

    void Blend(const tq::TFIPosition& position, unsigned char* dst) {
        const ptrdiff_t count =
            m_kernels.blend({&m_scratch.columns, &m_upper->placed, &m_lower->placed,
                             &m_scratch.windows, position.firstWeight, position.secondWeight},
                            dst, m_scratch.unsure);
        for (ptrdiff_t k = 0; k < count; ++k) {
            const int x = m_scratch.unsure[k];
            dst[x] = Byte(position, x);
        }
    }

    // By the steps.
    unsigned char Byte(const tq::TFIPosition& position, int x) {
        const tq::TFIColumns& columns = m_scratch.columns;
        tq::TFIWindow window;
        for (int k = 0; k < 4; ++k) {
            tq::TFITileRow& row = k < 2 ? *m_upper : *m_lower;
            const int i = columns.index[x] + k % 2;
            window.value[k] = row.samples.value[i];
            window.activity[k] = row.samples.activity[i];
            window.activityWeight[k] = row.RuntimeWeight(i);
            window.position[k] = (k % 2 == 0 ? columns.leftPosition : columns.rightPosition)[x] *
                                 (k < 2 ? position.firstWeight : position.secondWeight);
        }
        return window.Byte(m_spread);
    }

    const tq::ZoomImages& m_images;
    tq::TFISource m_source;
    const tq::TFIKernels& m_kernels;
    tq::TFISpread m_spread;
    tq::TFIScratch& m_scratch;
    tq::TFITileRow* m_upper;
    tq::TFITileRow* m_lower;
    int m_begin;
    int m_firstSample = 0;
    int m_sampleCount = 0;
    bool m_suitsKernels = false;
};

// Rows `begin` to `end` - 1.
void ZoomRows(const tq::ZoomImages& images, tq::TFISpread spread, tq::TFIScratch& scratch,
              int begin, int end) {
    if (begin >= end) return;
    for (int x = 0; x < images.dstWidth;) {
        Tile tile(images, spread, scratch, x);
        tile.Zoom(begin, end);
        x = tile.End();
    }
}

// Memory for so many threads.
class ScratchSet {
public:
    explicit ScratchSet(int count) : m_memory(count, sizeof(tq::TFIScratch)) {}
    tq::TFIScratch& At(int i) { return reinterpret_cast<tq::TFIScratch*>(m_memory.Data())[i]; }

private:
    tq::Scratch m_memory;
};

// Four planes in one block of memory.
class Planes {
public:
    // Lengths of 1 or more.
    Planes(int width, int height) : m_memory(height, int64_t{4} * width) {
        for (int k = 0; k < 4; ++k) {
            strides.Add(width);
            planes.Add(m_memory.Data() + int64_t{k} * width * height);
        }
    }

    CTQArray<int, int> strides;
    CTQArray<unsigned char*, unsigned char*> planes;

private:
    tq::Scratch m_memory;
};

using ZoomFunction = void (*)(int, int, int, unsigned char*, int, int, int, unsigned char*);

// Channel by channel. The plain form too splits and builds on the thread pool.
void ZoomFourChannels(const tq::ZoomImages& images, ZoomFunction zoomPlane) {
    if (!tq::BeginZoom(images, 4)) return;
    Planes src(images.srcWidth, images.srcHeight);
    IPL_SplitColorMultiThread(TQ_COLOR_ARGB, images.srcWidth, images.srcHeight, images.srcStride,
                              images.src, src.strides, src.planes);
    Planes dst(images.dstWidth, images.dstHeight);
    for (int k = 0; k < 4; ++k)
        zoomPlane(images.srcWidth, images.srcHeight, images.srcWidth, src.planes.GetAt(k),
                  images.dstWidth, images.dstHeight, images.dstWidth, dst.planes.GetAt(k));
    IPL_BuildColorMultiThread(TQ_COLOR_ARGB, images.dstWidth, images.dstHeight, dst.strides,
                              dst.planes, images.dstStride, images.dst);
}

}  // namespace

int CZoomTFITask_8u_C1R::Run() {
    const tq::ZoomImages images = {m_nSrcWidth, m_nSrcHeight, m_nSrcStride, m_pSrc,
                                   m_nDstWidth, m_nDstHeight, m_nDstStride, m_pDst};
    if (!tq::HasPixels(images)) return 1;
    if (m_pScratch != nullptr)
        ZoomRows(images, tq::TFISpread::kDeviation, *m_pScratch, m_nRowBegin, m_nRowEnd);
    else
        ZoomRows(images, tq::TFISpread::kDeviation, ScratchSet(1).At(0), m_nRowBegin, m_nRowEnd);
    return 1;
}

void IPL_ZoomTFI_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                        int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    const tq::ZoomImages images = {srcWidth, srcHeight, srcStride, src,
                                   dstWidth, dstHeight, dstStride, dst};
    if (tq::BeginZoom(images, 1))
        ZoomRows(images, tq::TFISpread::kVariance, ScratchSet(1).At(0), 0, dstHeight);
}

// All memory is taken here: the tasks take none.
void IPL_ZoomTFIMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                   int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    if (!tq::BeginZoom({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst},
                       1))
        return;
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormC, dstHeight);
    ScratchSet scratch(plan.count);
    tq::TaskSet<CZoomTFITask_8u_C1R> tasks;
    int row = 0;
    for (int i = 0; i < plan.count; ++i) {
        CZoomTFITask_8u_C1R& task = tasks.Add();
        task.m_nSrcWidth = srcWidth;
        task.m_nSrcHeight = srcHeight;
        task.m_nSrcStride = srcStride;
        task.m_pSrc = src;
        task.m_nDstWidth = dstWidth;
        task.m_nDstHeight = dstHeight;
        task.m_nDstStride = dstStride;
        task.m_pDst = dst;
        task.m_nRowBegin = row;
        task.m_nRowEnd = row += plan.Length(i);
        task.m_pScratch = &scratch.At(i);
    }
    tasks.RunOnRows(dstWidth, dstStride);
}

void IPL_ZoomTFI_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                        int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    ZoomFourChannels({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst},
                     IPL_ZoomTFI_8u_C1R);
}

void IPL_ZoomTFIMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                   int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    ZoomFourChannels({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst},
                     IPL_ZoomTFIMultiThread_8u_C1R);
}
