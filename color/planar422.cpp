// Planar 4:2:2 and ARGB: plain forms, band tasks, MultiThread forms.

#include <tqipl/color.h>

#include "color/planar422_kernels.h"
#include "color/planar422_tasks.h"
#include "frame/band.h"
#include "frame/isa.h"
#include "frame/rows.h"

namespace {

using tq::Planar422Kernels;

constexpr const Planar422Kernels* kKernels[] = TQ_KERNELS_BY_LEVEL(planar422Kernels);

bool IsNull(const unsigned char* src, const unsigned char* dst) {
    return src == nullptr || dst == nullptr;
}

struct Planes {
    unsigned char *y, *u, *v;
    int yStride, uStride, vStride;

    void NextRow() {
        y += yStride;
        u += uStride;
        v += vStride;
    }
    void AdvanceRows(int rows) {
        y = tq::AfterRows(y, rows, yStride);
        u = tq::AfterRows(u, rows, uStride);
        v = tq::AfterRows(v, rows, vStride);
    }
};

// The planes behind one pointer. The two rules part at odd widths, on purpose: hosts have images of
// both kinds.
Planes PlanesOfWholeRows(int width, int height, unsigned char* first) {
    unsigned char* u = first + tq::Mul32(width, height);
    return {first, u, u + tq::Mul32(width / 2, height), width, width / 2, width / 2};
}
Planes PlanesOfWholePairs(int width, int height, unsigned char* first) {
    const int pixels = tq::Mul32(width, height);
    unsigned char* u = first + pixels;
    return {first, u, u + pixels / 2, 2 * (width >> 1), width >> 1, width >> 1};
}

// The row loops of all forms and tasks. The pointers are never moved past the last row.
void ConvertRows(Planar422Kernels::FromPlanes* row, int pairs, int height, Planes src,
                 int dstStride, unsigned char* dst) {
    if (pairs < 1) return;
    for (int r = 0; r < height; ++r) {
        row(src.y, src.u, src.v, dst, pairs);
        if (r + 1 < height) {
            src.NextRow();
            dst += dstStride;
        }
    }
}
void ConvertRows(Planar422Kernels::ToPlanes* row, int pairs, int height, int srcStride,
                 const unsigned char* src, Planes dst) {
    if (pairs < 1) return;
    for (int r = 0; r < height; ++r) {
        row(src, dst.y, dst.u, dst.v, pairs);
        if (r + 1 < height) {
            src += srcStride;
            dst.NextRow();
        }
    }
}

void ToArgb(Planar422Kernels::FromPlanes* row, int width, int height, unsigned char* src,
            int dstStride, unsigned char* dst) {
    if (width < 2 || height < 1 || IsNull(src, dst)) return;
    ConvertRows(row, width >> 1, height, PlanesOfWholePairs(width, height, src), dstStride, dst);
}

void FromArgb(Planar422Kernels::ToPlanes* row, int width, int height, int srcStride,
              unsigned char* src, unsigned char* dst) {
    if (width < 2 || height < 1 || IsNull(src, dst)) return;
    ConvertRows(row, width >> 1, height, srcStride, src, PlanesOfWholePairs(width, height, dst));
}

template <class Task> void SetPlanes(Task& task, const Planes& planes) {
    task.m_nYStride = planes.yStride;
    task.m_pY = planes.y;
    task.m_nUStride = planes.uStride;
    task.m_pU = planes.u;
    task.m_nVStride = planes.vStride;
    task.m_pV = planes.v;
}

template <class Task> Planes PlanesOf(const Task& task) {
    return {task.m_pY, task.m_pU, task.m_pV, task.m_nYStride, task.m_nUStride, task.m_nVStride};
}

template <class Task> bool HasNull(const Task& task, const unsigned char* pixels) {
    return task.m_pY == nullptr || task.m_pU == nullptr || task.m_pV == nullptr ||
           pixels == nullptr;
}

// The MultiThread forms; `finish` sets the fields that the task has beyond the geometry.
template <class Task, class Finish>
void ToArgbInBands(int width, int height, unsigned char* src, int dstStride, unsigned char* dst,
                   Finish finish) {
    if (width < 2 || height < 1 || IsNull(src, dst)) return;
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormC, height);
    Planes planes = PlanesOfWholeRows(width, height, src);
    tq::TaskSet<Task> tasks;
    for (int i = 0; i < plan.count; ++i) {
        Task& task = tasks.Add();
        task.m_nWidth = width;
        task.m_nHeight = plan.Length(i);
        SetPlanes(task, planes);
        task.m_nDstStride = dstStride;
        task.m_pDst = dst;
        finish(task);
        if (i + 1 < plan.count) {
            planes.AdvanceRows(task.m_nHeight);
            dst = tq::AfterRows(dst, task.m_nHeight, dstStride);
        }
    }
    tasks.Run();
}

void FromArgbInBands(int mode, int width, int height, int srcStride, unsigned char* src,
                     unsigned char* dst) {
    if (width < 2 || height < 1 || IsNull(src, dst)) return;
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormC, height);
    Planes planes = PlanesOfWholeRows(width, height, dst);
    tq::TaskSet<CZARGB_To_YUVP422Task> tasks;
    for (int i = 0; i < plan.count; ++i) {
        CZARGB_To_YUVP422Task& task = tasks.Add();
        task.m_nWidth = width;
        task.m_nHeight = plan.Length(i);
        task.m_nSrcStride = srcStride;
        task.m_pSrc = src;
        SetPlanes(task, planes);
        task.m_nMode = mode;
        if (i + 1 < plan.count) {
            src = tq::AfterRows(src, task.m_nHeight, srcStride);
            planes.AdvanceRows(task.m_nHeight);
        }
    }
    tasks.Run();
}

}  // namespace

void IPL_YUVP_422_To_ARGB444(int width, int height, unsigned char* src, int dstStride,
                             unsigned char* dst) {
    if (width < 2 || height < 1) return;
    ConvertRows(tq::SelectKernels(kKernels).fullRangeToArgb, width / 2, height,
                PlanesOfWholeRows(width, height, src), dstStride, dst);
}

void IPL_YUVP422_To_ARGB_601(int width, int height, unsigned char* src, int dstStride,
                             unsigned char* dst) {
    ToArgb(tq::SelectKernels(kKernels).studio601ToArgb, width, height, src, dstStride, dst);
}

void IPL_YUVP422_To_ARGB_709(int width, int height, unsigned char* src, int dstStride,
                             unsigned char* dst) {
    ToArgb(tq::SelectKernels(kKernels).studio709ToArgb, width, height, src, dstStride, dst);
}

void IPL_ARGB_To_YUVP422_601(int width, int height, int srcStride, unsigned char* src,
                             unsigned char* dst) {
    FromArgb(tq::SelectKernels(kKernels).argbTo601, width, height, srcStride, src, dst);
}

void IPL_ARGB_To_YUVP422_709(int width, int height, int srcStride, unsigned char* src,
                             unsigned char* dst) {
    FromArgb(tq::SelectKernels(kKernels).argbTo709, width, height, srcStride, src, dst);
}

int CYUVP_4222ARGBTask::Run() {
    ConvertRows(tq::SelectKernels(kKernels).fullRangeToArgb, m_nWidth / 2, m_nHeight,
                PlanesOf(*this), m_nDstStride, m_pDst);
    return 1;
}

int CZYUVP422_To_ARGBTask::Run() {
    if ((m_nMode != 0 && m_nMode != 1) || HasNull(*this, m_pDst)) return 1;
    const Planar422Kernels& kernels = tq::SelectKernels(kKernels);
    ConvertRows(m_nMode == 0 ? kernels.studio601ToArgb : kernels.studio709ToArgb, m_nWidth / 2,
                m_nHeight, PlanesOf(*this), m_nDstStride, m_pDst);
    return 1;
}

int CZARGB_To_YUVP422Task::Run() {
    if ((m_nMode != 0 && m_nMode != 1) || HasNull(*this, m_pSrc)) return 1;
    const Planar422Kernels& kernels = tq::SelectKernels(kKernels);
    ConvertRows(m_nMode == 0 ? kernels.argbTo601 : kernels.argbTo709, m_nWidth / 2, m_nHeight,
                m_nSrcStride, m_pSrc, PlanesOf(*this));
    return 1;
}

void IPL_YUVP_422_To_ARGB444_MultiThread(int width, int height, unsigned char* src, int dstStride,
                                         unsigned char* dst) {
    ToArgbInBands<CYUVP_4222ARGBTask>(width, height, src, dstStride, dst,
                                      [](CYUVP_4222ARGBTask&) {});
}

void IPL_YUVP422_To_ARGB_601_MultiThread(int width, int height, unsigned char* src, int dstStride,
                                         unsigned char* dst) {
    ToArgbInBands<CZYUVP422_To_ARGBTask>(width, height, src, dstStride, dst,
                                         [](CZYUVP422_To_ARGBTask& task) { task.m_nMode = 0; });
}

void IPL_YUVP422_To_ARGB_709_MultiThread(int width, int height, unsigned char* src, int dstStride,
                                         unsigned char* dst) {
    ToArgbInBands<CZYUVP422_To_ARGBTask>(width, height, src, dstStride, dst,
                                         [](CZYUVP422_To_ARGBTask& task) { task.m_nMode = 1; });
}

void IPL_ARGB_To_YUVP422_601_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                         unsigned char* dst) {
    FromArgbInBands(0, width, height, srcStride, src, dst);
}

void IPL_ARGB_To_YUVP422_709_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                         unsigned char* dst) {
    FromArgbInBands(1, width, height, srcStride, src, dst);
}
