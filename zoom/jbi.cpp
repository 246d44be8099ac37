// JBI zoom: plain forms, band tasks, MultiThread forms.

#include "zoom/jbi.h"

#include <tqipl/luminance.h>
#include <tqipl/zoom.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/band.h"
#include "frame/scratch.h"
#include "zoom/correct_forms.h"
#include "zoom/geometry.h"
#include "zoom/jbi_rows.h"
#include "zoom/zoom_tasks.h"

namespace {

using tq::JbiScratch;
using tq::kJbiWindow;

// The map holds this many rows and columns less than the plane has.
constexpr int kFrame = kJbiWindow - 1;

// A plane whose variances are mapped, and the map: a row of floats for each of the plane and one
// more.
struct Plane {
    int width, height, stride;
    unsigned char* samples;
};

struct Map {
    explicit Map(const Plane& plane)
        : memory(int64_t{plane.height} + 1, plane.width * int64_t{sizeof(float)}),
          values(reinterpret_cast<float*>(memory.Data())) {
        const size_t rows = static_cast<size_t>(plane.height) + 1;
        std::memset(memory.Data(), 0, rows * static_cast<size_t>(plane.width) * sizeof(float));
    }

    tq::Scratch memory;
    float* values;
};

// The functions that the plain and the MultiThread forms differ in.
struct Stages {
    decltype(&IPL_ZoomSuper_8u_C1R) superOneChannel, superFourChannels;
    decltype(&IPL_ARGB2LUM) luminance;
    decltype(&IPL_ZoomCubicCorrect_8u_C1R) cubicCorrect;
    void (*fillMap)(const Plane& plane, float* map);
    void (*interpolate)(const CZJBITask& whole);
};

void SetSigmaTask(CZJBISigmaTask& task, const Plane& plane, float* map, int firstRow, int rows) {
    task.m_nSrcWidth = plane.width;
    task.m_nRows = rows;
    task.m_nStride = plane.stride;
    task.m_pRows = tq::AfterRows(plane.samples, firstRow, plane.stride);
    task.m_nMapStride = plane.width;
    task.m_pMap = map + ptrdiff_t{firstRow} * plane.width;
}

void FillMapPlain(const Plane& plane, float* map) {
    CZJBISigmaTask task;
    SetSigmaTask(task, plane, map, 0, plane.height - kFrame);
    task.Run();
}

void FillMapMultiThread(const Plane& plane, float* map) {
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormB, plane.height - kFrame);
    tq::TaskSet<CZJBISigmaTask> tasks;
    for (int i = 0; i < plan.count; ++i)
        SetSigmaTask(tasks.Add(), plane, map, i * plan.length, plan.Length(i));
    tasks.Run();
}

void InterpolatePlain(const CZJBITask& whole) {
    CZJBITask task = whole;
    task.Run();
}

// All memory is taken here: the tasks take none.
void InterpolateMultiThread(const CZJBITask& whole) {
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormB, whole.m_nRowEnd - whole.m_nRowBegin);
    tq::TaskSet<CZJBITask> tasks;
    const tq::Scratch memory(plan.count, sizeof(JbiScratch));
    int row = whole.m_nRowBegin;
    for (int i = 0; i < plan.count; ++i) {
        CZJBITask& task = tasks.Add();
        task = whole;
        task.m_nRowBegin = row;
        task.m_nRowEnd = row += plan.Length(i);
        task.m_pScratch = memory.Data() + i * sizeof(JbiScratch);
    }
    const int channels = whole.m_nChannelMode == 0 ? 1 : 4;
    tasks.RunOnRows(int64_t{whole.m_nDstWidth} * channels, whole.m_nDstStride);
}

constexpr Stages kPlain = {IPL_ZoomSuper_8u_C1R,        IPL_ZoomSuper_8u_C4R, IPL_ARGB2LUM,
                           IPL_ZoomCubicCorrect_8u_C1R, FillMapPlain,         InterpolatePlain};
constexpr Stages kMultiThread = {IPL_ZoomSuperMultiThread_8u_C1R,
                                 IPL_ZoomSuperMultiThread_8u_C4R,
                                 IPL_ARGB2LUM_MultiThread,
                                 IPL_ZoomCubicCorrectMultiThread_8u_C1R,
                                 FillMapMultiThread,
                                 InterpolateMultiThread};

// The outermost pixels of one channel: the columns come with the inner rows.
void CopyFrame(const tq::ZoomImages& images, const unsigned char* guide) {
    const size_t rowBytes = static_cast<size_t>(images.dstWidth);
    const int last = images.dstHeight - 1;
    std::memcpy(images.dst, guide, rowBytes);
    std::memcpy(images.dst + tq::Mul32(last, images.dstStride),
                guide + ptrdiff_t{last} * images.dstWidth, rowBytes);
}

// Those of four: each side of the source by itself. The corners are those of the columns.
void ZoomFrame(const tq::ZoomImages& images) {
    const auto& [srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst] = images;
    IPL_ZoomLinear_8u_C4R(srcWidth, 1, srcStride, src, dstWidth, 1, dstStride, dst);
    IPL_ZoomLinear_8u_C4R(srcWidth, 1, srcStride, src + tq::Mul32(srcHeight - 1, srcStride),
                          dstWidth, 1, dstStride, dst + tq::Mul32(dstHeight - 1, dstStride));
    IPL_ZoomLinear_8u_C4R(1, srcHeight, srcStride, src, 1, dstHeight, dstStride, dst);
    IPL_ZoomLinear_8u_C4R(1, srcHeight, srcStride, src + 4 * (ptrdiff_t{srcWidth} - 1), 1,
                          dstHeight, dstStride, dst + 4 * (ptrdiff_t{dstWidth} - 1));
}

void Enlarge(const tq::ZoomImages& images, int channels, const Stages& stages) {
    tq::LuminancePlane luminance(images, channels, stages.luminance);
    const bool one = channels == 1;
    const Plane plane = {images.srcWidth, images.srcHeight,
                         one ? images.srcStride : images.srcWidth,
                         one ? images.src : luminance.Data()};

    const tq::Scratch guide(images.dstHeight, images.dstWidth);
    stages.cubicCorrect(plane.width, plane.height, plane.stride, plane.samples, images.dstWidth,
                        images.dstHeight, images.dstWidth, guide.Data());
    if (one)
        CopyFrame(images, guide.Data());
    else
        ZoomFrame(images);

    Map map(plane);
    if (plane.width > kFrame && plane.height > kFrame) stages.fillMap(plane, map.values);

    CZJBITask whole;
    whole.m_nSrcWidth = images.srcWidth;
    whole.m_nSrcHeight = images.srcHeight;
    whole.m_nSrcStride = images.srcStride;
    whole.m_pSrc = images.src;
    whole.m_nLumStride = one ? 0 : plane.stride;
    whole.m_pLum = one ? nullptr : plane.samples;
    whole.m_nMapStride = plane.width;
    whole.m_pMap = map.values;
    whole.m_nDstWidth = images.dstWidth;
    whole.m_nDstHeight = images.dstHeight;
    whole.m_nDstStride = images.dstStride;
    whole.m_pDst = images.dst;
    whole.m_nGuideStride = images.dstWidth;
    whole.m_pGuide = guide.Data();
    whole.m_nRowBegin = 1;
    whole.m_nRowEnd = images.dstHeight - 1;
    whole.m_nChannelMode = one ? 0 : 1;
    stages.interpolate(whole);
}

void Zoom(const tq::ZoomImages& images, int channels, const Stages& stages) {
    if (!tq::BeginZoom(images, channels)) return;
    if (images.srcWidth >= images.dstWidth || images.srcHeight >= images.dstHeight) {
        const auto super = channels == 1 ? stages.superOneChannel : stages.superFourChannels;
        super(images.srcWidth, images.srcHeight, images.srcStride, images.src, images.dstWidth,
              images.dstHeight, images.dstStride, images.dst);
        return;
    }
    Enlarge(images, channels, stages);
}

}  // namespace

namespace tq {

void IPL_JBISigma(const unsigned char* row0, const unsigned char* row1, const unsigned char* row2,
                  const unsigned char* row3, const unsigned char* row4, float* out, int sum) {
    const uint8_t* const rows[kJbiWindow] = {row0, row1, row2, row3, row4};
    const int32_t sums[] = {sum};
    JbiKernelsInForce().variances(rows, sums, 1, out);
}

float FastExponential(float e) { return JbiKernelsInForce().weight(e, kJbiExponential); }

}  // namespace tq

int CZJBISigmaTask::Run() {
    constexpr int kRun = 512;
    if (m_nSrcWidth <= kFrame) return 1;
    const tq::JbiKernels& kernels = tq::JbiKernelsInForce();
    const int windows = m_nSrcWidth - kFrame;
    for (int first = 0; first < windows; first += kRun) {
        const int count = std::min(kRun, windows - first);
        for (int r = 0; r < m_nRows; ++r) {
            const uint8_t* rows[kJbiWindow];
            for (int k = 0; k < kJbiWindow; ++k)
                rows[k] = m_pRows + tq::Mul32(r + k, m_nStride) + first;
            int32_t sums[kRun];
            kernels.sums(rows, count, sums);
            kernels.variances(rows, sums, count,
                              m_pMap + ptrdiff_t{r + 2} * m_nMapStride + first + 2);
        }
    }
    return 1;
}

int CZJBITask::Run() {
    if (m_nChannelMode != 0 && m_nChannelMode != 1) return 1;
    if (m_nSrcWidth < 1 || m_nSrcHeight < 1 || m_nDstWidth < 1) return 1;
    const int begin = std::max(m_nRowBegin, 1);
    const int end = std::min(m_nRowEnd, m_nDstHeight - 1);
    if (begin >= end) return 1;
    if (m_nChannelMode == 0) {
        for (int y = begin; y < end; ++y) {
            const unsigned char* guide = m_pGuide + tq::Mul32(y, m_nGuideStride);
            unsigned char* dst = m_pDst + tq::Mul32(y, m_nDstStride);
            dst[0] = guide[0];
            dst[m_nDstWidth - 1] = guide[m_nDstWidth - 1];
        }
    }
    const tq::Scratch own = m_pScratch ? tq::Scratch() : tq::Scratch(sizeof(JbiScratch));
    unsigned char* scratch = m_pScratch ? m_pScratch : own.Data();
    for (int first = 1; first < m_nDstWidth - 1;) {
        tq::JbiTile tile(*this, first, *reinterpret_cast<JbiScratch*>(scratch));
        for (int y = begin; y < end; ++y) tile.Row(y);
        first += tile.Count();
    }
    return 1;
}

void IPL_ZoomJBI_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                        int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    Zoom({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 1, kPlain);
}

void IPL_ZoomJBIMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                   int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    Zoom({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 1,
         kMultiThread);
}

void IPL_ZoomJBI_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                        int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    Zoom({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 4, kPlain);
}

void IPL_ZoomJBIMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                   int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    Zoom({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 4,
         kMultiThread);
}
