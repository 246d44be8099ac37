// Progressive to interlaced: plain forms, the stripe task, MultiThread forms.

#include <tqipl/wavelet.h>

#include <algorithm>
#include <cstring>

#include "frame/band.h"
#include "wavelet/mirror.h"
#include "wavelet/p2i_kernels.h"
#include "wavelet/p2i_tasks.h"

namespace {

constexpr const tq::P2iKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(p2iKernels);

constexpr unsigned int kMostTasks = 12;

// A kind of pixel. The limits hold for filtered rows.
struct Kind {
    size_t samples, sampleBytes;
    int low, high;
    void (*plain)(unsigned int, unsigned int, unsigned int, unsigned char*, unsigned int,
                  unsigned char*, EVXR_P2I_MODE);
    size_t PixelBytes() const { return samples * sampleBytes; }
};
constexpr Kind kKinds[] = {
    {1, 1, 16, 235, IPL_P2I_Wavelet53_C1R},
    {1, 2, 4096, 60160, IPL_P2I_Wavelet53_C1R_16u},
    {4, 1, 0, 255, IPL_P2I_Wavelet53_C4R},
    {3, 2, 0, 65535, IPL_P2I_Wavelet53_C3R_16u},
};
constexpr unsigned int kKindCount = sizeof kKinds / sizeof kKinds[0];

struct Images {
    size_t width, height, srcStride;
    const unsigned char* src;
    size_t dstStride;
    unsigned char* dst;
};

// Makes single rows of the output.
class RowMaker {
public:
    RowMaker(const Kind& kind, const Images& images, int rounding)
        : m_images(images),
          m_filter(kind.sampleBytes == 1 ? tq::SelectKernels(kKernels).bytes
                                         : tq::SelectKernels(kKernels).words),
          m_range{rounding, kind.low, kind.high},
          m_samples(images.width * kind.samples),
          m_bytes(images.width * kind.PixelBytes()) {}

    void Copy(size_t y, size_t line) const { std::memcpy(Line(line), Row(y), m_bytes); }

    // Around row y, rows mirrored. There are at least 3.
    void Filter(size_t y, size_t line) const {
        const uint8_t* rows[5];
        for (ptrdiff_t i = 0; i < 5; ++i)
            rows[i] = Row(static_cast<size_t>(tq::Mirrored(
                static_cast<ptrdiff_t>(y) + i - 2, static_cast<ptrdiff_t>(m_images.height))));
        m_filter(rows, static_cast<ptrdiff_t>(m_samples), m_range, Line(line));
    }

private:
    const unsigned char* Row(size_t y) const { return m_images.src + y * m_images.srcStride; }
    unsigned char* Line(size_t line) const { return m_images.dst + line * m_images.dstStride; }

    const Images& m_images;
    tq::P2iFilter m_filter;
    tq::P2iRange m_range;
    size_t m_samples, m_bytes;
};

// The field of rows first, first + 2 ...: `first` is 0 or 1, and below the height. The last of them
// is copied even where it is the first again, in a bottom field of three rows: kept on purpose.
void MakeField(const Kind& kind, const Images& images, size_t first) {
    const RowMaker make(kind, images, 4);
    const size_t height = images.height;
    make.Copy(first, 0);
    const size_t filtered = height >= first + 5 ? ((height - (first + 5)) >> 1) + 1 : 0;
    for (size_t line = 1; line <= filtered; ++line) make.Filter(2 * line + first, line);
    if (height >= 3) make.Copy(height - 1 - ((height - 1 - first) & 1), filtered + 1);
}

void MakeFrame(const Kind& kind, const Images& images) {
    const RowMaker make(kind, images, 0);
    for (size_t y = 0; y < images.height; ++y) make.Filter(y, y);
}

void MakePlain(const Kind& kind, const Images& images, EVXR_P2I_MODE mode) {
    if (images.width == 0 || images.height == 0 || !images.src || !images.dst) return;
    if (mode == EVXR_P2I_TOP_FIELD)
        MakeField(kind, images, 0);
    else if (mode == EVXR_P2I_BOTTOM_FIELD && images.height >= 2)
        MakeField(kind, images, 1);
    else if (mode == EVXR_P2I_FRAME && images.height >= 3)
        MakeFrame(kind, images);
}

void MakeMultiThread(unsigned int kind, unsigned int width, unsigned int height,
                     unsigned int srcStride, unsigned char* src, unsigned int dstStride,
                     unsigned char* dst, EVXR_P2I_MODE mode) {
    if (width == 0 || height == 0 || !src || !dst) return;
    const tq::Stripes stripes(width, std::min(g_IPLProcessorCount, kMostTasks));
    tq::TaskSet<CZP2I_Task> tasks;
    for (unsigned int i = 0; i < stripes.count; ++i) {
        const size_t offset = stripes.First(i) * kKinds[kind].PixelBytes();
        CZP2I_Task& task = tasks.Add();
        task.m_nWidth = stripes.Length(i);
        task.m_nHeight = height;
        task.m_nSrcStride = srcStride;
        task.m_pSrc = src + offset;
        task.m_nDstStride = dstStride;
        task.m_pDst = dst + offset;
        task.m_nMode = mode;
        task.m_nKind = kind;
    }
    tasks.Run();
}

}  // namespace

int CZP2I_Task::Run() {
    if (m_nKind < kKindCount)
        kKinds[m_nKind].plain(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst,
                              m_nMode);
    return 1;
}

void IPL_P2I_Wavelet53_C1R(unsigned int width, unsigned int height, unsigned int srcStride,
                           unsigned char* src, unsigned int dstStride, unsigned char* dst,
                           EVXR_P2I_MODE mode) {
    MakePlain(kKinds[0], {width, height, srcStride, src, dstStride, dst}, mode);
}

void IPL_P2I_Wavelet53_C1R_16u(unsigned int width, unsigned int height, unsigned int srcStride,
                               unsigned char* src, unsigned int dstStride, unsigned char* dst,
                               EVXR_P2I_MODE mode) {
    MakePlain(kKinds[1], {width, height, srcStride, src, dstStride, dst}, mode);
}

void IPL_P2I_Wavelet53_C4R(unsigned int width, unsigned int height, unsigned int srcStride,
                           unsigned char* src, unsigned int dstStride, unsigned char* dst,
                           EVXR_P2I_MODE mode) {
    MakePlain(kKinds[2], {width, height, srcStride, src, dstStride, dst}, mode);
}

void IPL_P2I_Wavelet53_C3R_16u(unsigned int width, unsigned int height, unsigned int srcStride,
                               unsigned char* src, unsigned int dstStride, unsigned char* dst,
                               EVXR_P2I_MODE mode) {
    MakePlain(kKinds[3], {width, height, srcStride, src, dstStride, dst}, mode);
}

void IPL_P2I_Wavelet53_MultiThread_C1R(unsigned int width, unsigned int height,
                                       unsigned int srcStride, unsigned char* src,
                                       unsigned int dstStride, unsigned char* dst,
                                       EVXR_P2I_MODE mode) {
    MakeMultiThread(0, width, height, srcStride, src, dstStride, dst, mode);
}

void IPL_P2I_Wavelet53_MultiThread_C1R_16u(unsigned int width, unsigned int height,
                                           unsigned int srcStride, unsigned char* src,
                                           unsigned int dstStride, unsigned char* dst,
                                           EVXR_P2I_MODE mode) {
    MakeMultiThread(1, width, height, srcStride, src, dstStride, dst, mode);
}

void IPL_P2I_Wavelet53_MultiThread_C4R(unsigned int width, unsigned int height,
                                       unsigned int srcStride, unsigned char* src,
                                       unsigned int dstStride, unsigned char* dst,
                                       EVXR_P2I_MODE mode) {
    MakeMultiThread(2, width, height, srcStride, src, dstStride, dst, mode);
}

void IPL_P2I_Wavelet53_MultiThread_C3R_16u(unsigned int width, unsigned int height,
                                           unsigned int srcStride, unsigned char* src,
                                           unsigned int dstStride, unsigned char* dst,
                                           EVXR_P2I_MODE mode) {
    MakeMultiThread(3, width, height, srcStride, src, dstStride, dst, mode);
}
