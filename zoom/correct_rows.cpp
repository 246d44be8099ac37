// Destination rows of the corrected zooms: what is made of source rows, and when.

#include "zoom/correct_rows.h"

#include <algorithm>

#include "frame/exact_math.h"
#include "frame/tables.h"

namespace tq {

namespace {

constexpr const CorrectKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(correctKernels);
constexpr const LinearKernels* kLinearKernels[] = TQ_KERNELS_BY_LEVEL(linearKernels);

constexpr const float* kSoftWeights = IPL_TabSoftWeight + kTableCentre;

constexpr int kWindowBytes = 16;
constexpr ptrdiff_t kWindowColumns = 8;

LinearGather PairKernel(int channels) {
    const LinearKernels& kernels = SelectKernels(kLinearKernels);
    return channels == 1 ? kernels.oneChannel.pair : kernels.fourChannels.pair;
}

// Twice the cell, plus 1 in its second half; a fraction of exactly one half is in the first.
int64_t HalfOf(const LinearSample& sample) {
    return int64_t{2} * sample.index + !(sample.fraction <= 0.5f);
}

}  // namespace

CorrectImages::CorrectImages(const CorrectTask& task, int firstCorrectedCell)
    : images{task.m_nSrcWidth, task.m_nSrcHeight, task.m_nSrcStride, task.m_pSrc,
             task.m_nDstWidth, task.m_nDstHeight, task.m_nDstStride, task.m_pDst},
      channels(task.m_nChannelMode == 0 ? 1 : 4),
      guide(channels == 1 ? task.m_pSrc : task.m_pLum),
      guideStride(channels == 1 ? task.m_nSrcStride : task.m_nLumStride),
      firstCell(firstCorrectedCell) {}

CorrectTile::CorrectTile(const CorrectImages& images, int first, CorrectScratch& scratch)
    : m_images(images),
      m_scratch(scratch),
      m_kernels(SelectKernels(kKernels)),
      m_pair(PairKernel(images.channels)) {
    const ptrdiff_t count = TakeColumns(first);
    Pad(count);
    m_columns.count = m_pairColumns.count = count;
    m_columns.half = scratch.half;
    m_columns.fraction = scratch.fraction;
    m_pairColumns.index = scratch.index;
    if (images.channels == 1 && MakeWindows(count)) {
        m_pairColumns.windows = scratch.windows;
        m_pairColumns.orders = scratch.orders;
    }
}

// Columns whose halves are further apart than one, as no enlargement by 2 has them, are tiles of
// their own.
ptrdiff_t CorrectTile::TakeColumns(int first) {
    const LinearAxis axis(m_images.images.srcWidth, m_images.images.dstWidth);
    const int last = axis.Last();
    const LinearSample begin = axis.At(first);
    m_corrected = m_images.CorrectsColumn(begin.index);
    m_firstSource = m_corrected ? begin.index - 1 : 0;
    const ptrdiff_t most =
        std::min(kTileColumns, static_cast<ptrdiff_t>(m_images.images.dstWidth) - first);
    int64_t before = HalfOf(begin);
    ptrdiff_t count = 0;
    for (; count < most; ++count) {
        const LinearSample sample = axis.At(first + static_cast<int>(count));
        const int64_t half = HalfOf(sample);
        if (m_images.CorrectsColumn(sample.index) != m_corrected) break;
        if (m_corrected && half - before > 1) break;
        before = half;
        m_scratch.index[count] = sample.index;
        m_scratch.fraction[count] = sample.fraction;
        m_scratch.half[count] =
            m_corrected ? static_cast<int32_t>(half - int64_t{2} * m_firstSource) : 0;
        if (sample.index < last) m_pairColumns.inner = count + 1;
    }
    m_columns.sourceCount = m_corrected ? m_scratch.index[count - 1] - m_firstSource + 3 : 0;
    return count;
}

void CorrectTile::Pad(ptrdiff_t count) {
    for (ptrdiff_t i = count; i < count + kCorrectPadding; ++i) {
        m_scratch.index[i] = m_scratch.index[count - 1];
        m_scratch.fraction[i] = m_scratch.fraction[count - 1];
        m_scratch.half[i] = m_scratch.half[count - 1];
    }
}

// False if a row is shorter than a window or eight columns reach further than one.
bool CorrectTile::MakeWindows(ptrdiff_t count) {
    const int srcWidth = m_images.images.srcWidth;
    if (srcWidth < kWindowBytes) return false;
    for (ptrdiff_t i = 0; i < count; i += kWindowColumns) {
        const int begin = std::min(m_scratch.index[i], srcWidth - kWindowBytes);
        m_scratch.windows[i / kWindowColumns] = begin;
        for (ptrdiff_t k = i; k < i + kWindowColumns; ++k) {
            const int right = std::min(m_scratch.index[k], srcWidth - 2) + 1 - begin;
            if (right >= kWindowBytes) return false;
            m_scratch.orders[2 * k] = static_cast<uint8_t>(m_scratch.index[k] - begin);
            m_scratch.orders[2 * k + 1] = static_cast<uint8_t>(right);
        }
    }
    return true;
}

const unsigned char* CorrectTile::GuideRow(int y) const {
    return m_images.guide + Mul32(y, m_images.guideStride) + m_firstSource;
}

CorrectRow CorrectTile::Along(int y) {
    auto& slot = m_scratch.along[y & 1];
    const CorrectRow row = {slot[0], slot[1], slot[2], slot[3]};
    if (m_alongRow[y & 1] != y) {
        m_alongRow[y & 1] = y;
        m_kernels.along(m_columns, GuideRow(y), kSoftWeights, m_scratch.weights, m_scratch.trends,
                        row);
    }
    return row;
}

const float* CorrectTile::Across(int y) {
    float* weights = m_scratch.across[y & 3];
    if (m_acrossRow[y & 3] != y) {
        m_acrossRow[y & 3] = y;
        m_kernels.across(GuideRow(y), GuideRow(y + 1), m_columns.sourceCount, kSoftWeights,
                         weights);
    }
    return weights;
}

const float* CorrectTile::Trends(int y) {
    if (m_trendsRow != y) {
        m_trendsRow = y;
        const unsigned char* const rows[] = {GuideRow(y - 1), GuideRow(y), GuideRow(y + 1),
                                             GuideRow(y + 2)};
        m_kernels.trends(rows, m_columns.sourceCount, m_scratch.acrossTrends);
    }
    return m_scratch.acrossTrends;
}

const float* CorrectTile::Mixed(int64_t half, const CorrectRow& row, const CorrectRow& other) {
    if (m_mixedHalf != half) {
        m_mixedHalf = half;
        m_kernels.mix(row, other, m_columns.count, m_scratch.mixed);
    }
    return m_scratch.mixed;
}

// A half of the cells takes the positions of its own row for the sides above and below.
void CorrectTile::Correct(const LinearSample& row, float* xs, float* ys) {
    const int y = row.index;
    const int64_t half = HalfOf(row);
    const bool lowerHalf = half % 2 != 0;
    const CorrectRow upper = Along(y);
    const CorrectRow lower = Along(y + 1);
    const float* top = lowerHalf ? Mixed(half, lower, upper) : upper.fraction;
    const float* bottom = lowerHalf ? lower.fraction : Mixed(half, upper, lower);
    m_kernels.halves(Across(y - 1), Across(y + 1), Trends(y), m_columns.sourceCount, row.fraction,
                     m_scratch.positions, m_scratch.fractions, m_scratch.left, m_scratch.right);
    m_kernels.cross(m_columns, top, bottom, m_scratch.left, m_scratch.right, xs, ys);
}

void CorrectTile::Place(const LinearSample& row, int slot) {
    float* y = m_scratch.y[slot];
    if (Corrects(row.index)) {
        m_x[slot] = m_scratch.x[slot];
        Correct(row, m_scratch.x[slot], y);
    } else {
        m_x[slot] = m_scratch.fraction;
        std::fill_n(y, m_columns.count + kCorrectPadding, row.fraction);
    }
}

const uint16_t* CorrectTile::Pairs(int y) {
    uint16_t* pairs = m_scratch.pairs[y & 1];
    if (m_pairsRow[y & 1] != y) {
        m_pairsRow[y & 1] = y;
        m_pair(m_pairColumns, m_images.images.src + Mul32(y, m_images.images.srcStride), pairs);
    }
    return pairs;
}

void CorrectTile::Blend(int y, unsigned char* const* dst, int rows) {
    const CorrectBlend blend =
        m_images.channels == 1 ? m_kernels.blendOneChannel : m_kernels.blendFourChannels;
    const uint16_t* upper = Pairs(y);
    const uint16_t* lower = y + 1 < m_images.images.srcHeight ? Pairs(y + 1) : upper;
    CorrectPlaces places[kRowsAtOnce];
    for (int r = 0; r < rows; ++r) places[r] = {X(r), Y(r), dst[r]};
    blend(upper, lower, m_columns.count, places, rows);
}

}  // namespace tq
