// The low band of the 5/3 wavelet: plain forms, the task of both passes, MultiThread forms.

#include <tqipl/wavelet.h>

#include <algorithm>

#include "frame/band.h"
#include "wavelet/mirror.h"
#include "wavelet/scratch_lines.h"
#include "wavelet/wavelet_ll_kernels.h"
#include "wavelet/wavelet_ll_tasks.h"

namespace {

constexpr const tq::WaveletLlKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(waveletLlKernels);

const tq::LowBandForm& Bytes() { return tq::SelectKernels(kKernels).bytes; }
const tq::LowBandForm& Words() { return tq::SelectKernels(kKernels).words; }

struct Images {
    unsigned int width, height, srcStride;
    unsigned char* src;
    unsigned int dstStride;
    unsigned char* dst;
    bool HasLowBand() const { return width > 1 && height > 1; }
};

struct Limits {
    int low, high;
};

// All rows of results, `count` in each, from `height` rows of values, 2 or more. rowOf(y) is row y
// of the values; it is asked for 4 rows back at most.
template <class RowOf>
void PassColumns(const tq::LowBandForm& form, ptrdiff_t count, ptrdiff_t height, Limits limits,
                 size_t dstStride, unsigned char* dst, RowOf rowOf) {
    const ptrdiff_t lines = height >> 1;
    for (ptrdiff_t line = 0; line < lines; ++line) {
        const ptrdiff_t centre = line > 0 && line == lines - 1 ? height - 2 : 2 * line;
        const void* rows[5];
        for (ptrdiff_t i = 0; i < 5; ++i) rows[i] = rowOf(tq::Mirrored(centre + i - 2, height));
        form.columnPass(rows, count, limits.low, limits.high,
                        dst + static_cast<size_t>(line) * dstStride);
    }
}

// The row results last made. They are made in order, each once.
class RowWindow {
public:
    RowWindow(const tq::LowBandForm& form, ptrdiff_t width, const tq::StableSource& source)
        : m_form(form),
          m_width(width),
          m_source(source),
          m_lines(kRows, int64_t{width >> 1} * form.valueBytes) {}

    const void* Row(ptrdiff_t y) {
        for (; m_made <= y; ++m_made) m_form.rowPass(m_source.Row(m_made), m_width, Line(m_made));
        return Line(y);
    }

private:
    static constexpr ptrdiff_t kRows = 8;

    void* Line(ptrdiff_t y) { return m_lines.Line<unsigned char>(y % kRows); }

    const tq::LowBandForm& m_form;
    ptrdiff_t m_width;
    const tq::StableSource& m_source;
    tq::ScratchLines m_lines;
    ptrdiff_t m_made = 0;
};

void MakeLowBand(const tq::LowBandForm& form, const Images& images, Limits limits) {
    if (!images.HasLowBand()) return;
    const auto sampleBytes = static_cast<size_t>(form.sampleBytes);
    const tq::StableSource source({images.src, static_cast<ptrdiff_t>(images.srcStride),
                                   images.width * sampleBytes, images.height},
                                  {images.dst, static_cast<ptrdiff_t>(images.dstStride),
                                   (images.width >> 1) * sampleBytes, images.height >> 1});
    RowWindow window(form, static_cast<ptrdiff_t>(images.width), source);
    PassColumns(form, images.width >> 1, images.height, limits, images.dstStride, images.dst,
                [&](ptrdiff_t y) { return window.Row(y); });
}

// The modes of CZDWT53_LL for one kind of sample.
struct Passes {
    int rows, columns;
};
constexpr Passes kBytePasses = {1, 2}, kWordPasses = {3, 4};

// setLimits gives a column task its limits.
template <class SetLimits>
void MakeMultiThread(const tq::LowBandForm& form, Passes passes, const Images& images,
                     SetLimits setLimits) {
    if (!images.HasLowBand()) return;
    const size_t columns = images.width >> 1;
    const size_t rowBytes = columns * static_cast<size_t>(form.valueBytes);
    const tq::Scratch memory(images.height, static_cast<int64_t>(rowBytes));
    unsigned char* const values = memory.Data();

    const tq::Stripes bands(images.height, g_IPLProcessorCount);
    tq::TaskSet<CZDWT53_LL> rowTasks;
    for (unsigned int i = 0; i < bands.count; ++i) {
        const size_t first = bands.First(i);
        CZDWT53_LL& task = rowTasks.Add();
        task.m_nWidth = images.width;
        task.m_nHeight = bands.Length(i);
        task.m_nSrcStride = images.srcStride;
        task.m_pSrc = images.src + first * images.srcStride;
        task.m_pRows = values + first * rowBytes;
        task.m_nMode = passes.rows;
    }
    rowTasks.Run();

    const tq::Stripes stripes(images.width >> 1, bands.count);
    tq::TaskSet<CZDWT53_LL> columnTasks;
    for (unsigned int i = 0; i < stripes.count; ++i) {
        const size_t first = stripes.First(i);
        CZDWT53_LL& task = columnTasks.Add();
        task.m_nWidth = stripes.Length(i);
        task.m_nHeight = images.height;
        task.m_nSrcStride = images.width >> 1;
        task.m_nDstStride = images.dstStride;
        task.m_pCols = values + first * static_cast<size_t>(form.valueBytes);
        task.m_pDst = images.dst + first * static_cast<size_t>(form.sampleBytes);
        task.m_nMode = passes.columns;
        setLimits(task);
    }
    columnTasks.Run();
}

void RunRows(const tq::LowBandForm& form, const CZDWT53_LL& task) {
    if (task.m_nWidth < 2) return;
    const size_t rowBytes = (task.m_nWidth >> 1) * static_cast<size_t>(form.valueBytes);
    for (size_t y = 0; y < task.m_nHeight; ++y)
        form.rowPass(task.m_pSrc + y * task.m_nSrcStride, static_cast<ptrdiff_t>(task.m_nWidth),
                     static_cast<unsigned char*>(task.m_pRows) + y * rowBytes);
}

void RunColumns(const tq::LowBandForm& form, const CZDWT53_LL& task, Limits limits) {
    if (task.m_nWidth == 0 || task.m_nHeight < 2) return;
    const ptrdiff_t stride = static_cast<ptrdiff_t>(task.m_nSrcStride) * form.valueBytes;
    PassColumns(form, task.m_nWidth, task.m_nHeight, limits, task.m_nDstStride, task.m_pDst,
                [&](ptrdiff_t y) -> const void* {
                    return static_cast<const unsigned char*>(task.m_pCols) + y * stride;
                });
}

}  // namespace

int CZDWT53_LL::Run() {
    if (m_nMode == kBytePasses.rows)
        RunRows(Bytes(), *this);
    else if (m_nMode == kBytePasses.columns)
        RunColumns(Bytes(), *this, {m_nLow8, m_nHigh8});
    else if (m_nMode == kWordPasses.rows)
        RunRows(Words(), *this);
    else if (m_nMode == kWordPasses.columns)
        RunColumns(Words(), *this, {m_nLow16, m_nHigh16});
    return 1;
}

void IPL_WaveletLL_53_C1(unsigned int width, unsigned int height, unsigned int srcStride,
                         unsigned char* src, unsigned int dstStride, unsigned char* dst,
                         unsigned char low, unsigned char high) {
    MakeLowBand(Bytes(), {width, height, srcStride, src, dstStride, dst}, {low, high});
}

void IPL_WaveletLL_53_C1_MultiThread(unsigned int width, unsigned int height,
                                     unsigned int srcStride, unsigned char* src,
                                     unsigned int dstStride, unsigned char* dst, unsigned char low,
                                     unsigned char high) {
    MakeMultiThread(Bytes(), kBytePasses, {width, height, srcStride, src, dstStride, dst},
                    [=](CZDWT53_LL& task) {
                        task.m_nLow8 = low;
                        task.m_nHigh8 = high;
                    });
}

void IPL_WaveletLL_53_C1_16u(unsigned int width, unsigned int height, unsigned int srcStride,
                             unsigned char* src, unsigned int dstStride, unsigned char* dst,
                             unsigned short low, unsigned short high) {
    MakeLowBand(Words(), {width, height, srcStride, src, dstStride, dst}, {low, high});
}

void IPL_WaveletLL_53_C1_16u_MultiThread(unsigned int width, unsigned int height,
                                         unsigned int srcStride, unsigned char* src,
                                         unsigned int dstStride, unsigned char* dst,
                                         unsigned short low, unsigned short high) {
    MakeMultiThread(Words(), kWordPasses, {width, height, srcStride, src, dstStride, dst},
                    [=](CZDWT53_LL& task) {
                        task.m_nLow16 = low;
                        task.m_nHigh16 = high;
                    });
}
