// The MultiThread copies, and copy-and-pad in both forms.

#include <tqipl/image_memory.h>

#include <cstring>

#include "memory/copy_tasks.h"
#include "memory/formats.h"

namespace {

void RunCopyBands(int mode, void (*plain)(int, int, int, unsigned char*, int, unsigned char*),
                  int width, int height, int srcStride, unsigned char* src, int dstStride,
                  unsigned char* dst) {
    tq::RunPixelBands<CZMemoryTask>(tq::kBandFormBUnsigned, plain, width, height, srcStride, src,
                                    dstStride, dst,
                                    [mode](CZMemoryTask& task) { task.m_nMode = mode; });
}

// An 8-bit image inside its frame. Offsets are formed in unsigned 32 bits.
struct PaddedFrame {
    unsigned int width, height, stride;
    unsigned char* data;
    unsigned int padLeft, padTop, padRight, padBottom;

    unsigned char* Row(unsigned int y) const { return data + y * stride; }
    unsigned char* ImageRow(unsigned int y) const {
        return data + ((padTop + y) * stride + padLeft);
    }

    // Fills the border around the image, which has been copied to its place from src.
    void FillBorder(unsigned int srcStride, const unsigned char* src) const {
        if (RowBytes() == 0) return;
        for (unsigned int y = 0; y < height; ++y) {
            const unsigned char* from = width > 0 ? src + y * srcStride : nullptr;
            std::memset(Row(padTop + y), from != nullptr ? from[0] : 0, padLeft);
            std::memset(ImageRow(y) + width, from != nullptr ? from[width - 1] : 0, padRight);
        }
        if (height > 0) {
            RepeatRow(padTop, 0, padTop);
            RepeatRow(padTop + height - 1, padTop + height, padBottom);
        } else if (padBottom > 0) {
            RepeatRow(padTop, 0, padTop + padBottom);
        } else if (padTop > 0) {
            RepeatRow(padTop - 1, 0, padTop);
        }
    }

private:
    unsigned int RowBytes() const { return padLeft + width + padRight; }

    // Copies row `from` over its whole padded width to `count` rows from `first` on.
    void RepeatRow(unsigned int from, unsigned int first, unsigned int count) const {
        for (unsigned int y = first; y != first + count; ++y)
            if (y != from) std::memcpy(Row(y), Row(from), RowBytes());
    }
};

}  // namespace

int CZMemoryTask::Run() {
    switch (m_nMode) {
        case 0:
            IPL_Memcpy_C1R(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
            break;
        case 1:
            IPL_Memcpy_C4R(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
            break;
        case 2:
            IPL_Memcpy_C1R_16u(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
            break;
        default:
            break;
    }
    return 1;
}

void IPL_MemcpyMultiThread_C1R(int width, int height, int srcStride, unsigned char* src,
                               int dstStride, unsigned char* dst) {
    RunCopyBands(0, IPL_Memcpy_C1R, width, height, srcStride, src, dstStride, dst);
}

void IPL_MemcpyMultiThread_C1R_16u(int width, int height, int srcStride, unsigned char* src,
                                   int dstStride, unsigned char* dst) {
    RunCopyBands(2, IPL_Memcpy_C1R_16u, width, height, srcStride, src, dstStride, dst);
}

void IPL_MemcpyMultiThread_C4R(int width, int height, int srcStride, unsigned char* src,
                               int dstStride, unsigned char* dst) {
    RunCopyBands(1, IPL_Memcpy_C4R, width, height, srcStride, src, dstStride, dst);
}

void IPL_MemcpyMultiThread(TQ_COLOR_FORMAT format, int width, int height, int srcStride,
                           unsigned char* src, int dstStride, unsigned char* dst) {
    if (src == nullptr || dst == nullptr) return;
    const tq::RowLayout row = tq::RowLayoutOf(format, width);
    switch (row.unit) {
        case tq::RowUnit::kByte:
            IPL_MemcpyMultiThread_C1R(row.count, height, srcStride, src, dstStride, dst);
            break;
        case tq::RowUnit::kWord:
            IPL_MemcpyMultiThread_C4R(row.count, height, srcStride, src, dstStride, dst);
            break;
        case tq::RowUnit::kBlock:  // cut as dense rows of width bytes
            if (height > 0)
                IPL_MemcpyMultiThread_C1R(width, tq::Mul32(height, 2), width, src, width, dst);
            break;
        case tq::RowUnit::kNone:
            break;
    }
}

void IPL_MemcpyAndPad_C1R(unsigned int width, unsigned int height, unsigned int srcStride,
                          unsigned char* src, unsigned int dstStride, unsigned char* dst,
                          unsigned int padLeft, unsigned int padTop, unsigned int padRight,
                          unsigned int padBottom) {
    const PaddedFrame frame{width, height, dstStride, dst, padLeft, padTop, padRight, padBottom};
    if (width > 0)
        for (unsigned int y = 0; y < height; ++y)
            std::memcpy(frame.ImageRow(y), src + y * srcStride, width);
    frame.FillBorder(srcStride, src);
}

void IPL_MemcpyAndPadMultiThread_C1R(unsigned int width, unsigned int height,
                                     unsigned int srcStride, unsigned char* src,
                                     unsigned int dstStride, unsigned char* dst,
                                     unsigned int padLeft, unsigned int padTop,
                                     unsigned int padRight, unsigned int padBottom) {
    const PaddedFrame frame{width, height, dstStride, dst, padLeft, padTop, padRight, padBottom};
    if (width > 0 && height > 0)
        IPL_MemcpyMultiThread_C1R(static_cast<int>(width), static_cast<int>(height),
                                  static_cast<int>(srcStride), src, static_cast<int>(dstStride),
                                  frame.ImageRow(0));
    frame.FillBorder(srcStride, src);
}
