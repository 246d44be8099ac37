// Linear correct zoom: plain forms, band tasks, MultiThread forms.

#include <tqipl/zoom.h>

#include "zoom/correct_forms.h"

namespace {

constexpr int kFirstCell = 1;

void ZoomRows(const tq::CorrectImages& correct, tq::CorrectScratch& scratch, int begin, int end) {
    const tq::ZoomImages& images = correct.images;
    const tq::LinearAxis axis(images.srcHeight, images.dstHeight);
    for (int first = 0; first < images.dstWidth;) {
        tq::CorrectTile tile(correct, first, scratch);
        unsigned char* dst = images.dst + ptrdiff_t{first} * correct.channels;
        for (int j = begin; j < end;) {
            unsigned char* rows[tq::kRowsAtOnce];
            int count = 0;
            const int y = axis.At(j).index;
            for (; j < end && count < tq::kRowsAtOnce; ++j) {
                const tq::LinearSample row = axis.At(j);
                if (row.index != y) break;
                tile.Place(row, count);
                rows[count++] = dst + tq::Mul32(j, images.dstStride);
            }
            tile.Blend(y, rows, count);
        }
        first += tile.Count();
    }
}

}  // namespace

int CZLinearCorrectTask::Run() {
    return tq::RunCorrectTask<tq::CorrectScratch>(
        *this, kFirstCell, [this](const tq::CorrectImages& images, tq::CorrectScratch& scratch) {
            ZoomRows(images, scratch, m_nRowBegin, m_nRowEnd);
        });
}

void IPL_ZoomLinearCorrect_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                  int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    const tq::ZoomImages images = {srcWidth, srcHeight, srcStride, src,
                                   dstWidth, dstHeight, dstStride, dst};
    if (!tq::BeginZoom(images, 1)) return;
    if (tq::EnlargesByTwo(images))
        tq::ZoomCorrectPlain<CZLinearCorrectTask>(images, 1);
    else
        IPL_ZoomLinear_8u_C1R(srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride,
                              dst);
}

void IPL_ZoomLinearCorrectMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride,
                                             unsigned char* src, int dstWidth, int dstHeight,
                                             int dstStride, unsigned char* dst) {
    const tq::ZoomImages images = {srcWidth, srcHeight, srcStride, src,
                                   dstWidth, dstHeight, dstStride, dst};
    if (!tq::BeginZoom(images, 1)) return;
    if (tq::EnlargesByTwo(images))
        tq::ZoomCorrectMultiThread<CZLinearCorrectTask, tq::CorrectScratch>(images, 1);
    else
        IPL_ZoomLinearMultiThread_8u_C1R(srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight,
                                         dstStride, dst);
}

void IPL_ZoomLinearCorrect_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                  int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    const tq::ZoomImages images = {srcWidth, srcHeight, srcStride, src,
                                   dstWidth, dstHeight, dstStride, dst};
    if (!tq::BeginZoom(images, 4)) return;
    if (tq::EnlargesByTwo(images))
        tq::ZoomCorrectPlain<CZLinearCorrectTask>(images, 4);
    else
        IPL_ZoomLinear_8u_C4R(srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride,
                              dst);
}

void IPL_ZoomLinearCorrectMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride,
                                             unsigned char* src, int dstWidth, int dstHeight,
                                             int dstStride, unsigned char* dst) {
    const tq::ZoomImages images = {srcWidth, srcHeight, srcStride, src,
                                   dstWidth, dstHeight, dstStride, dst};
    if (!tq::BeginZoom(images, 4)) return;
    if (tq::EnlargesByTwo(images))
        tq::ZoomCorrectMultiThread<CZLinearCorrectTask, tq::CorrectScratch>(images, 4);
    else
        IPL_ZoomLinearMultiThread_8u_C4R(srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight,
                                         dstStride, dst);
}
