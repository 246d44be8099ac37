// The change of colour matrix between 601, 709 and 2020: plain forms, band tasks, MultiThread
// forms.

#include <tqipl/planes.h>

#include "color/matrix_kernels.h"
#include "color/matrix_tasks.h"
#include "frame/band.h"
#include "frame/isa.h"
#include "frame/rows.h"
#include "frame/tables.h"

namespace {

using tq::MatrixKernels;
using Matrix = MatrixKernels::Matrix;

constexpr const MatrixKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(matrixKernels);

void ChangeRows(Matrix matrix, MatrixKernels::Row* row, int count, int height, int srcStride,
                const unsigned char* src, int dstStride, unsigned char* dst) {
    if (row == nullptr || count < 1) return;
    tq::ForEachRow(
        height, srcStride, src, dstStride, dst,
        [&](const unsigned char* from, unsigned char* to) { row(matrix, from, to, count); });
}

void ChangeInPlace(Matrix matrix, TQ_COLOR_FORMAT format, int width, int height, int stride,
                   unsigned char* image) {
    const MatrixKernels& kernels = tq::SelectKernels(kKernels);
    if (format == TQ_COLOR_AYUV && width > 0)
        tq::ForEachRow(height, 0, image, stride, image,
                       [&](const unsigned char*, unsigned char* pixels) {
                           kernels.ayuv(matrix, pixels, width);
                       });
    MatrixKernels::Row* row = nullptr;
    if (format == TQ_COLOR_YUYV) row = kernels.yuyvToYuyv;
    if (format == TQ_COLOR_UYVY) row = kernels.uyvyToUyvy;
    ChangeRows(matrix, row, width / 2, height, stride, image, stride, image);
}

// The rows of the two-image forms; null for formats that they do not handle. Those from YUYV to
// 4:2:2 are not those of the in-place forms: kept on purpose, since hosts depend on it.
MatrixKernels::Row* RowBetween(TQ_COLOR_FORMAT srcFormat, TQ_COLOR_FORMAT dstFormat) {
    const MatrixKernels& kernels = tq::SelectKernels(kKernels);
    const auto choose = [dstFormat](MatrixKernels::Row* ayuv, MatrixKernels::Row* yuyv,
                                    MatrixKernels::Row* uyvy) -> MatrixKernels::Row* {
        if (dstFormat == TQ_COLOR_AYUV) return ayuv;
        if (dstFormat == TQ_COLOR_YUYV) return yuyv;
        return dstFormat == TQ_COLOR_UYVY ? uyvy : nullptr;
    };
    if (srcFormat == TQ_COLOR_AYUV)
        return choose(kernels.ayuvToAyuv, kernels.ayuvToYuyv, kernels.ayuvToUyvy);
    if (srcFormat == TQ_COLOR_YUYV)
        return choose(kernels.yuyvToAyuv, kernels.darkYuyvToYuyv, kernels.darkYuyvToUyvy);
    if (srcFormat == TQ_COLOR_UYVY)
        return choose(kernels.uyvyToAyuv, kernels.uyvyToYuyv, kernels.uyvyToUyvy);
    return nullptr;
}

void ChangeBetween(Matrix matrix, int width, int height, TQ_COLOR_FORMAT srcFormat, int srcStride,
                   const unsigned char* src, TQ_COLOR_FORMAT dstFormat, int dstStride,
                   unsigned char* dst) {
    const bool pixels = srcFormat == TQ_COLOR_AYUV && dstFormat == TQ_COLOR_AYUV;
    ChangeRows(matrix, RowBetween(srcFormat, dstFormat), pixels ? width : width / 2, height,
               srcStride, src, dstStride, dst);
}

void ChangePlanes(Matrix matrix, int width, int height, int strideY, unsigned char* y, int strideU,
                  unsigned char* u, int strideV, unsigned char* v) {
    const int pairs = width / 2;
    if (pairs < 1) return;
    const auto row = tq::SelectKernels(kKernels).planes;
    for (int r = 0; r < height; ++r) {
        row(matrix, y, u, v, pairs);
        if (r + 1 < height) {
            y += strideY;
            u += strideU;
            v += strideV;
        }
    }
}

// The MultiThread forms.
template <class Task>
void ChangeInBands(TQ_COLOR_FORMAT format, int width, int height, int stride,
                   unsigned char* image) {
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormC, height);
    tq::TaskSet<Task> tasks;
    for (int i = 0; i < plan.count; ++i) {
        Task& task = tasks.Add();
        task.m_nFormat = format;
        task.m_nWidth = width;
        task.m_nHeight = plan.Length(i);
        task.m_nStride = stride;
        task.m_pImage = image;
        if (i + 1 < plan.count) image = tq::AfterRows(image, task.m_nHeight, stride);
    }
    tasks.Run();
}

template <class Task>
void ChangePlanesInBands(int width, int height, int strideY, unsigned char* y, int strideU,
                         unsigned char* u, int strideV, unsigned char* v) {
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormC, height);
    tq::TaskSet<Task> tasks;
    for (int i = 0; i < plan.count; ++i) {
        Task& task = tasks.Add();
        task.m_nWidth = width;
        task.m_nHeight = plan.Length(i);
        task.m_nYStride = strideY;
        task.m_nUStride = strideU;
        task.m_nVStride = strideV;
        task.m_pY = y;
        task.m_pU = u;
        task.m_pV = v;
        if (i + 1 < plan.count) {
            y = tq::AfterRows(y, task.m_nHeight, strideY);
            u = tq::AfterRows(u, task.m_nHeight, strideU);
            v = tq::AfterRows(v, task.m_nHeight, strideV);
        }
    }
    tasks.Run();
}

}  // namespace

void IPL_YUV601x709(TQ_COLOR_FORMAT format, int width, int height, int stride,
                    unsigned char* image) {
    ChangeInPlace(IPL_MatrixYUV601x709, format, width, height, stride, image);
}

void IPL_YUV709x601(TQ_COLOR_FORMAT format, int width, int height, int stride,
                    unsigned char* image) {
    ChangeInPlace(IPL_MatrixYUV709x601, format, width, height, stride, image);
}

void IPL_YUV2020x709(TQ_COLOR_FORMAT format, int width, int height, int stride,
                     unsigned char* image) {
    ChangeInPlace(IPL_MatrixYUV2020x709, format, width, height, stride, image);
}

void IPL_YUV709x2020(TQ_COLOR_FORMAT format, int width, int height, int stride,
                     unsigned char* image) {
    ChangeInPlace(IPL_MatrixYUV709x2020, format, width, height, stride, image);
}

void IPL_YUV601x709(int width, int height, TQ_COLOR_FORMAT srcFormat, int srcStride,
                    unsigned char* src, TQ_COLOR_FORMAT dstFormat, int dstStride,
                    unsigned char* dst) {
    ChangeBetween(IPL_MatrixYUV601x709, width, height, srcFormat, srcStride, src, dstFormat,
                  dstStride, dst);
}

void IPL_YUV709x601(int width, int height, TQ_COLOR_FORMAT srcFormat, int srcStride,
                    unsigned char* src, TQ_COLOR_FORMAT dstFormat, int dstStride,
                    unsigned char* dst) {
    ChangeBetween(IPL_MatrixYUV709x601, width, height, srcFormat, srcStride, src, dstFormat,
                  dstStride, dst);
}

void IPL_YUVP_422_601x709(int width, int height, int strideY, unsigned char* y, int strideU,
                          unsigned char* u, int strideV, unsigned char* v) {
    ChangePlanes(IPL_MatrixYUV601x709, width, height, strideY, y, strideU, u, strideV, v);
}

void IPL_YUVP_422_709x601(int width, int height, int strideY, unsigned char* y, int strideU,
                          unsigned char* u, int strideV, unsigned char* v) {
    ChangePlanes(IPL_MatrixYUV709x601, width, height, strideY, y, strideU, u, strideV, v);
}

void IPL_YUVP_422_2020x709(int width, int height, int strideY, unsigned char* y, int strideU,
                           unsigned char* u, int strideV, unsigned char* v) {
    ChangePlanes(IPL_MatrixYUV2020x709, width, height, strideY, y, strideU, u, strideV, v);
}

void IPL_YUVP_422_709x2020(int width, int height, int strideY, unsigned char* y, int strideU,
                           unsigned char* u, int strideV, unsigned char* v) {
    ChangePlanes(IPL_MatrixYUV709x2020, width, height, strideY, y, strideU, u, strideV, v);
}

int CYUV601To709Task::Run() {
    IPL_YUV601x709(m_nFormat, m_nWidth, m_nHeight, m_nStride, m_pImage);
    return 1;
}

int CYUV709To601Task::Run() {
    IPL_YUV709x601(m_nFormat, m_nWidth, m_nHeight, m_nStride, m_pImage);
    return 1;
}

int CYUV2020To709Task::Run() {
    IPL_YUV2020x709(m_nFormat, m_nWidth, m_nHeight, m_nStride, m_pImage);
    return 1;
}

int CYUV709To2020Task::Run() {
    IPL_YUV709x2020(m_nFormat, m_nWidth, m_nHeight, m_nStride, m_pImage);
    return 1;
}

int CColor601x709Task_YUVP422::Run() {
    IPL_YUVP_422_601x709(m_nWidth, m_nHeight, m_nYStride, m_pY, m_nUStride, m_pU, m_nVStride, m_pV);
    return 1;
}

int CColor709x601Task_YUVP422::Run() {
    IPL_YUVP_422_709x601(m_nWidth, m_nHeight, m_nYStride, m_pY, m_nUStride, m_pU, m_nVStride, m_pV);
    return 1;
}

int CColor709x2020Task_YUVP422::Run() {
    IPL_YUVP_422_709x2020(m_nWidth, m_nHeight, m_nYStride, m_pY, m_nUStride, m_pU, m_nVStride,
                          m_pV);
    return 1;
}

int CColor2020x709Task_YUVP422::Run() {
    IPL_YUVP_422_2020x709(m_nWidth, m_nHeight, m_nYStride, m_pY, m_nUStride, m_pU, m_nVStride,
                          m_pV);
    return 1;
}

void IPL_YUV601x709MultiThread(TQ_COLOR_FORMAT format, int width, int height, int stride,
                               unsigned char* image) {
    ChangeInBands<CYUV601To709Task>(format, width, height, stride, image);
}

void IPL_YUV709x601MultiThread(TQ_COLOR_FORMAT format, int width, int height, int stride,
                               unsigned char* image) {
    ChangeInBands<CYUV709To601Task>(format, width, height, stride, image);
}

void IPL_YUV2020x709MultiThread(TQ_COLOR_FORMAT format, int width, int height, int stride,
                                unsigned char* image) {
    ChangeInBands<CYUV2020To709Task>(format, width, height, stride, image);
}

void IPL_YUV709x2020MultiThread(TQ_COLOR_FORMAT format, int width, int height, int stride,
                                unsigned char* image) {
    ChangeInBands<CYUV709To2020Task>(format, width, height, stride, image);
}

void IPL_YUVP_422_601x709MultiThread(int width, int height, int strideY, unsigned char* y,
                                     int strideU, unsigned char* u, int strideV, unsigned char* v) {
    ChangePlanesInBands<CColor601x709Task_YUVP422>(width, height, strideY, y, strideU, u, strideV,
                                                   v);
}

void IPL_YUVP_422_709x601MultiThread(int width, int height, int strideY, unsigned char* y,
                                     int strideU, unsigned char* u, int strideV, unsigned char* v) {
    ChangePlanesInBands<CColor709x601Task_YUVP422>(width, height, strideY, y, strideU, u, strideV,
                                                   v);
}

void IPL_YUVP_422_2020x709MultiThread(int width, int height, int strideY, unsigned char* y,
                                      int strideU, unsigned char* u, int strideV,
                                      unsigned char* v) {
    ChangePlanesInBands<CColor2020x709Task_YUVP422>(width, height, strideY, y, strideU, u, strideV,
                                                    v);
}

void IPL_YUVP_422_709x2020MultiThread(int width, int height, int strideY, unsigned char* y,
                                      int strideU, unsigned char* u, int strideV,
                                      unsigned char* v) {
    ChangePlanesInBands<CColor709x2020Task_YUVP422>(width, height, strideY, y, strideU, u, strideV,
                                                    v);
}
