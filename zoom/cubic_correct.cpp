// Cubic correct zoom: plain forms, band tasks, MultiThread forms.

#include <tqipl/zoom.h>

#include <algorithm>

#include "frame/tables.h"
#include "zoom/correct_forms.h"
#include "zoom/cubic_correct_kernels.h"

namespace {

constexpr const tq::CubicCorrectKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(cubicCorrectKernels);

constexpr int kFirstCell = 2;
constexpr int kTaps = 5;

struct Scratch {
    tq::CorrectScratch tile;
    tq::FiveTaps taps;
    uint32_t woven[kTaps][4 * (tq::kTileSourceColumns + 1 + tq::kFiveTapPadding)];
};

void SetTaps(tq::FiveTaps& taps) {
    for (int place = 0; place < 256; ++place)
        for (int t = 0; t < 8; ++t) {
            const int tap = t < kTaps ? IPL_TabFiveTap[place][t] : 0;
            taps.along[place][t] = tap;
            taps.down[place][t] = static_cast<int16_t>(tap);
        }
}

// Filters rows of a corrected tile. Each two source rows, one below the other, are woven once.
class TileFilter {
public:
    TileFilter(const tq::CorrectImages& images, const tq::CorrectTile& tile, Scratch& scratch)
        : m_images(images), m_tile(tile), m_scratch(scratch) {}

    void Row(int y, unsigned char* dst) {
        const tq::CubicCorrectKernels& kernels = tq::SelectKernels(kKernels);
        const tq::FiveTapRow row = {m_tile.Columns().count,
                                    m_tile.Columns().half,
                                    m_tile.X(0),
                                    m_tile.Y(0),
                                    {Woven(y - 2), Woven(y), Woven(y + 2)}};
        const auto filter =
            m_images.channels == 1 ? kernels.filterOneChannel : kernels.filterFourChannels;
        filter(m_scratch.taps, row, dst);
    }

private:
    const uint32_t* Woven(int y) {
        uint32_t* woven = m_scratch.woven[y % kTaps];
        if (m_wovenRow[y % kTaps] != y) {
            m_wovenRow[y % kTaps] = y;
            const ptrdiff_t count = m_images.channels * (m_tile.Columns().sourceCount + 1);
            // The sixth row has no weight, and where there is none any row stands for it.
            const int below = std::min(y + 1, m_images.images.srcHeight - 1);
            tq::SelectKernels(kKernels).weave(SourceRow(y), SourceRow(below), count, woven);
            std::fill_n(woven + count, m_images.channels * tq::kFiveTapPadding, 0u);
        }
        return woven;
    }

    // At the first column that the taps reach.
    const unsigned char* SourceRow(int y) const {
        return m_images.images.src + tq::Mul32(y, m_images.images.srcStride) +
               ptrdiff_t{m_images.channels} * (m_tile.FirstSourceColumn() - 1);
    }

    const tq::CorrectImages& m_images;
    const tq::CorrectTile& m_tile;
    Scratch& m_scratch;
    int m_wovenRow[kTaps] = {-1, -1, -1, -1, -1};
};

void ZoomRows(const tq::CorrectImages& correct, Scratch& scratch, int begin, int end) {
    const tq::ZoomImages& images = correct.images;
    const tq::LinearAxis axis(images.srcHeight, images.dstHeight);
    SetTaps(scratch.taps);
    for (int first = 0; first < images.dstWidth;) {
        tq::CorrectTile tile(correct, first, scratch.tile);
        TileFilter filter(correct, tile, scratch);
        unsigned char* dst = images.dst + ptrdiff_t{first} * correct.channels;
        for (int j = begin; j < end; ++j) {
            const tq::LinearSample row = axis.At(j);
            unsigned char* to = dst + tq::Mul32(j, images.dstStride);
            tile.Place(row, 0);
            if (tile.Corrects(row.index))
                filter.Row(row.index, to);
            else
                tile.Blend(row.index, &to, 1);
        }
        first += tile.Count();
    }
}

}  // namespace

int CZCubicCorrectTask::Run() {
    return tq::RunCorrectTask<Scratch>(*this, kFirstCell,
                                       [this](const tq::CorrectImages& images, Scratch& scratch) {
                                           ZoomRows(images, scratch, m_nRowBegin, m_nRowEnd);
                                       });
}

void IPL_ZoomCubicCorrect_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                 int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    const tq::ZoomImages images = {srcWidth, srcHeight, srcStride, src,
                                   dstWidth, dstHeight, dstStride, dst};
    if (!tq::BeginZoom(images, 1)) return;
    if (tq::EnlargesByTwo(images))
        tq::ZoomCorrectPlain<CZCubicCorrectTask>(images, 1);
    else
        IPL_Zoom6Cubic_8u_C1R(srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride,
                              dst);
}

void IPL_ZoomCubicCorrectMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride,
                                            unsigned char* src, int dstWidth, int dstHeight,
                                            int dstStride, unsigned char* dst) {
    const tq::ZoomImages images = {srcWidth, srcHeight, srcStride, src,
                                   dstWidth, dstHeight, dstStride, dst};
    if (!tq::BeginZoom(images, 1)) return;
    if (tq::EnlargesByTwo(images))
        tq::ZoomCorrectMultiThread<CZCubicCorrectTask, Scratch>(images, 1);
    else
        IPL_Zoom6CubicMultiThread_8u_C1R(srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight,
                                         dstStride, dst);
}

void IPL_ZoomCubicCorrect_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                 int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    const tq::ZoomImages images = {srcWidth, srcHeight, srcStride, src,
                                   dstWidth, dstHeight, dstStride, dst};
    if (!tq::BeginZoom(images, 4)) return;
    if (tq::EnlargesByTwo(images))
        tq::ZoomCorrectPlain<CZCubicCorrectTask>(images, 4);
    else
        IPL_Zoom6Cubic_8u_C4R(srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride,
                              dst);
}

void IPL_ZoomCubicCorrectMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride,
                                            unsigned char* src, int dstWidth, int dstHeight,
                                            int dstStride, unsigned char* dst) {
    const tq::ZoomImages images = {srcWidth, srcHeight, srcStride, src,
                                   dstWidth, dstHeight, dstStride, dst};
    if (!tq::BeginZoom(images, 4)) return;
    if (tq::EnlargesByTwo(images))
        tq::ZoomCorrectMultiThread<CZCubicCorrectTask, Scratch>(images, 4);
    else
        IPL_Zoom6CubicMultiThread_8u_C4R(srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight,
                                         dstStride, dst);
}
