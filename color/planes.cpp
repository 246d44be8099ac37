// Splitting images into planes and building them again: plain forms, band tasks, MultiThread forms.

#include <tqipl/planes.h>

#include "color/plane_arrays.h"
#include "color/planes_kernels.h"
#include "color/planes_tasks.h"
#include "frame/band.h"
#include "frame/isa.h"
#include "frame/rows.h"

namespace {

constexpr const tq::PlanesKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(planesKernels);

// How a format is walked with so many strides; without kernels if nothing is done.
struct Walk {
    const tq::PlanesKernels::Layout* layout;
    int planes;         // read from the arrays
    int pixelsAtATime;  // 1, or 2 for pairs
    int bytesAtATime;   // of the image
};
Walk WalkOf(TQ_COLOR_FORMAT format, int64_t strides) {
    const tq::PlanesKernels& kernels = tq::SelectKernels(kKernels);
    switch (format) {
        case TQ_COLOR_ARGB:
            if (strides == 3) return {&kernels.argb3, 3, 1, 4};
            if (strides == 4) return {&kernels.argb4, 4, 1, 4};
            break;
        case TQ_COLOR_AYUV:
            if (strides == 3) return {&kernels.ayuv3, 3, 1, 4};
            if (strides == 4) return {&kernels.ayuv4, 4, 1, 4};
            break;
        case TQ_COLOR_BGR24:
            return {&kernels.bgr24, 3, 1, 3};
        case TQ_COLOR_YUYV:
            return {&kernels.yuyv, 3, 2, 4};
        case TQ_COLOR_UYVY:
            return {&kernels.uyvy, 3, 2, 4};
        default:
            break;
    }
    return {nullptr, 0, 1, 0};
}

// The row loop of both plain forms: row(kernels, image row, plane rows, count). Row r of a plane is
// r times its stride, in 32 bits, behind its pointer.
template <class Row>
void ForEachRow(TQ_COLOR_FORMAT format, int width, int height, int stride, unsigned char* image,
                tq::StrideArray& strides, tq::PlaneArray& planes, Row row) {
    const Walk walk = WalkOf(format, strides.GetSize());
    if (walk.layout == nullptr || width < walk.pixelsAtATime) return;
    for (int r = 0; r < height; ++r) {
        unsigned char* rows[4] = {};
        for (int i = 0; i < walk.planes; ++i)
            rows[i] = planes.GetAt(i) + tq::Mul32(strides.GetAt(i), r);
        row(*walk.layout, image, rows, width / walk.pixelsAtATime);
        if (r + 1 < height) image += stride;
    }
}

// Whether the rows of an image that is built share bytes.
bool ImageRowsOverlap(TQ_COLOR_FORMAT format, int width, int stride, tq::StrideArray& strides) {
    const Walk walk = WalkOf(format, strides.GetSize());
    const int64_t steps = width / walk.pixelsAtATime;
    return steps > 0 && tq::RowsOverlap(steps * walk.bytesAtATime, stride);
}

// Whether the rows of a plane that is split off do. The first takes each pixel, the others each
// step.
bool PlaneRowsOverlap(TQ_COLOR_FORMAT format, int width, tq::StrideArray& strides) {
    const Walk walk = WalkOf(format, strides.GetSize());
    const int64_t steps = width / walk.pixelsAtATime;
    for (int i = 0; i < walk.planes && steps > 0; ++i)
        if (tq::RowsOverlap(i == 0 ? steps * walk.pixelsAtATime : steps, strides.GetAt(i)))
            return true;
    return false;
}

// The bands of a MultiThread form, which run one after the other if rows of the results overlap;
// `member` is the part of a task that `mode` names. own's planes run down the image.
template <class Member>
void RunBands(int mode, Member CFunImageTask::*member, TQ_COLOR_FORMAT format, int width,
              int height, int stride, unsigned char* image, tq::OwnPlanes& own, bool overlap) {
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormPlanes, height);
    tq::TaskSet<CFunImageTask> tasks;
    for (int i = 0; i < plan.count; ++i) {
        CFunImageTask& task = tasks.Add();
        task.m_nMode = mode;
        Member& band = task.*member;
        band.m_nFormat = format;
        band.m_nWidth = width;
        band.m_nHeight = plan.Length(i);
        band.m_nStride = stride;
        band.m_pImage = image;
        tq::CopyElements(own.strides, band.m_strides);
        tq::CopyElements(own.planes, band.m_planes);
        if (i + 1 < plan.count) {
            image = tq::AfterRows(image, band.m_nHeight, stride);
            tq::AdvancePlanes(band.m_nHeight, own.strides, own.planes);
        }
    }
    tasks.RunOnRows(overlap);
}

}  // namespace

void IPL_SplitColor(TQ_COLOR_FORMAT format, int width, int height, int stride, unsigned char* image,
                    CTQArray<int, int>& strides, CTQArray<unsigned char*, unsigned char*>& planes) {
    ForEachRow(format, width, height, stride, image, strides, planes,
               [](const tq::PlanesKernels::Layout& layout, const unsigned char* from,
                  unsigned char* const(&rows)[4], int count) { layout.split(from, rows, count); });
}

void IPL_BuildColor(TQ_COLOR_FORMAT format, int width, int height, CTQArray<int, int>& strides,
                    CTQArray<unsigned char*, unsigned char*>& planes, int stride,
                    unsigned char* image) {
    ForEachRow(format, width, height, stride, image, strides, planes,
               [](const tq::PlanesKernels::Layout& layout, unsigned char* to,
                  unsigned char* const(&rows)[4], int count) {
                   const unsigned char* const from[4] = {rows[0], rows[1], rows[2], rows[3]};
                   layout.build(from, to, count);
               });
}

int CFunImageTask::Run() {
    if (m_nMode == 0)
        IPL_SplitColor(m_split.m_nFormat, m_split.m_nWidth, m_split.m_nHeight, m_split.m_nStride,
                       m_split.m_pImage, m_split.m_strides, m_split.m_planes);
    else if (m_nMode == 1)
        IPL_BuildColor(m_build.m_nFormat, m_build.m_nWidth, m_build.m_nHeight, m_build.m_strides,
                       m_build.m_planes, m_build.m_nStride, m_build.m_pImage);
    return 1;
}

void IPL_SplitColorMultiThread(TQ_COLOR_FORMAT format, int width, int height, int stride,
                               unsigned char* image, CTQArray<int, int>& strides,
                               CTQArray<unsigned char*, unsigned char*>& planes) {
    tq::OwnPlanes own(strides, planes);
    if (tq::RunsPlain(tq::kBandFormPlanes)) {
        IPL_SplitColor(format, width, height, stride, image, own.strides, own.planes);
        return;
    }
    RunBands(0, &CFunImageTask::m_split, format, width, height, stride, image, own,
             PlaneRowsOverlap(format, width, own.strides));
}

void IPL_BuildColorMultiThread(TQ_COLOR_FORMAT format, int width, int height,
                               CTQArray<int, int>& strides,
                               CTQArray<unsigned char*, unsigned char*>& planes, int stride,
                               unsigned char* image) {
    tq::OwnPlanes own(strides, planes);
    if (tq::RunsPlain(tq::kBandFormPlanes)) {
        IPL_BuildColor(format, width, height, own.strides, own.planes, stride, image);
        return;
    }
    RunBands(1, &CFunImageTask::m_build, format, width, height, stride, image, own,
             ImageRowsOverlap(format, width, stride, own.strides));
}
