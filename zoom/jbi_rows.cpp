// Destination rows of the JBI zoom: what windows they are made of.

#include "zoom/jbi_rows.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "frame/exact_math.h"
#include "frame/tables.h"

namespace tq {

namespace {

constexpr const JbiKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(jbiKernels);

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr int kReach = kJbiWindow / 2;

float RuntimeExponential(float e) { return static_cast<float>(std::exp(static_cast<double>(e))); }

// The scale that the kernels count squared distances in follows the width that a window has within
// the image, on both axes.
float DistanceScale(int64_t firstColumn, int64_t lastColumn) {
    const int64_t width = lastColumn - firstColumn + 2;
    return 4.0f / static_cast<float>(width * width) * 0x1p17f;
}

float Square(float v) { return v * v; }

}  // namespace

const JbiExponential kJbiExponential = {IPL_ExpCoarse, RuntimeExponential};

const JbiKernels& JbiKernelsInForce() { return SelectKernels(kKernels); }

// Where lengths are beyond what a float counts, positions may round to behind the image.
int64_t JbiAxis::Centre(float position) const {
    const int64_t centre = TruncateToInt32(position + 0.5f);
    const int64_t behind = int64_t{m_length} + kReach;
    return centre < 0 ? behind : std::min(centre, behind);
}

JbiTile::JbiTile(const CZJBITask& task, int first, JbiScratch& scratch)
    : m_task(task),
      m_scratch(scratch),
      m_kernels(JbiKernelsInForce()),
      m_xAxis(task.m_nSrcWidth, task.m_nDstWidth),
      m_yAxis(task.m_nSrcHeight, task.m_nDstHeight),
      m_channels(task.m_nChannelMode == 0 ? 1 : 4),
      m_first(first) {
    std::memset(scratch.samples, 0, sizeof scratch.samples);
    TakeColumns();
    Pad();
    m_columns.index = scratch.index;
    for (int c = 0; c < kJbiWindow; ++c) m_columns.distance[c] = scratch.distance[c];
    m_columns.scale = scratch.scale;
}

void JbiTile::TakeColumns() {
    const ptrdiff_t most = std::min(kJbiTileColumns, ptrdiff_t{m_task.m_nDstWidth} - 1 - m_first);
    m_firstSource = m_xAxis.Centre(m_xAxis.Position(m_first)) - kReach;
    ptrdiff_t& count = m_columns.count;
    for (; count < most; ++count) {
        const float position = m_xAxis.Position(m_first + static_cast<int>(count));
        const int64_t centre = m_xAxis.Centre(position);
        if (centre + kReach - m_firstSource >= kJbiTileSourceColumns) break;
        SetColumn(count, position, centre);
    }
}

void JbiTile::SetColumn(ptrdiff_t i, float position, int64_t centre) {
    const int64_t last = m_xAxis.Length() - 1;
    const int64_t first = centre - kReach;
    m_scratch.index[i] = static_cast<int32_t>(first - m_firstSource);
    m_scratch.centre[i] = static_cast<int32_t>(std::min(centre, last));
    for (int c = 0; c < kJbiWindow; ++c) {
        const int64_t column = first + c;
        m_scratch.distance[c][i] =
            column < 0 || column > last ? kInfinity : Square(position - static_cast<float>(column));
    }
    m_scratch.scale[i] =
        DistanceScale(std::max(first, int64_t{0}), std::min(centre + kReach, last));
}

void JbiTile::Pad() {
    const ptrdiff_t last = m_columns.count - 1;
    for (ptrdiff_t i = last + 1; i % kJbiPadding != 0; ++i) {
        m_scratch.index[i] = m_scratch.index[last];
        for (auto& distance : m_scratch.distance) distance[i] = distance[last];
        m_scratch.scale[i] = m_scratch.scale[last];
        m_scratch.guide[i] = 0.0f;
        m_scratch.factor[i] = m_scratch.divisor[i] = 1.0f;
    }
}

// An infinite divisor leaves nothing of the term that a variance of 0 drops. True if some variance
// is negative or not a number, as the map never holds them.
bool JbiTile::SetDivisors(int64_t centre) {
    const float* map = m_task.m_pMap + centre * m_task.m_nMapStride;
    bool odd = false;
    for (ptrdiff_t i = 0; i < m_columns.count; ++i) {
        const float variance = map[m_scratch.centre[i]];
        odd |= !(variance >= 0.0f);
        m_scratch.divisor[i] = variance == 0.0f ? kInfinity : variance;
    }
    return odd;
}

int JbiTile::SourceRow(int64_t y) {
    const int slot = static_cast<int>(y % kJbiWindow);
    if (m_sourceRow[slot] == y) return slot;
    m_sourceRow[slot] = y;
    auto& planes = m_scratch.samples[slot];
    const int row = static_cast<int>(y);
    const int64_t end = m_firstSource + m_scratch.index[m_columns.count - 1] + kJbiWindow;
    const int64_t begin = std::max(m_firstSource, int64_t{0});
    const ptrdiff_t count = std::min(end, m_xAxis.Length()) - begin;
    if (count < 1) return slot;
    const ptrdiff_t place = begin - m_firstSource;
    const unsigned char* source =
        m_task.m_pSrc + Mul32(row, m_task.m_nSrcStride) + m_channels * begin;
    if (m_channels == 1) {
        std::memcpy(planes[0] + place, source, static_cast<size_t>(count));
    } else {
        const unsigned char* luminance = m_task.m_pLum + Mul32(row, m_task.m_nLumStride) + begin;
        std::memcpy(planes[0] + place, luminance, static_cast<size_t>(count));
        uint8_t* const channels[] = {planes[1] + place, planes[2] + place, planes[3] + place,
                                     planes[4] + place};
        m_kernels.split(source, count, channels);
    }
    return slot;
}

void JbiTile::Row(int y) {
    const unsigned char* guide = m_task.m_pGuide + Mul32(y, m_task.m_nGuideStride) + m_first;
    m_kernels.prepare(guide - m_task.m_nGuideStride, guide, guide + m_task.m_nGuideStride,
                      m_columns.count, m_scratch.guide, m_scratch.factor);

    const float position = m_yAxis.Position(y);
    const int64_t centre = m_yAxis.Centre(position);
    const int64_t last = m_yAxis.Length() - 1;
    JbiRow row{m_scratch.guide,
               m_scratch.factor,
               m_scratch.divisor,
               SetDivisors(std::min(centre, last)),
               0,
               {},
               {}};
    for (int64_t sourceRow = std::max(centre - kReach, int64_t{0});
         sourceRow <= std::min(centre + kReach, last); ++sourceRow, ++row.rows) {
        row.distance[row.rows] = Square(position - static_cast<float>(sourceRow));
        const auto& planes = m_scratch.samples[SourceRow(sourceRow)];
        for (int k = 0; k < 5; ++k) row.samples[row.rows][k] = planes[k];
    }
    unsigned char* dst =
        m_task.m_pDst + Mul32(y, m_task.m_nDstStride) + ptrdiff_t{m_channels} * m_first;
    (m_channels == 1 ? m_kernels.row1 : m_kernels.row4)(m_columns, row, kJbiExponential, dst);
}

}  // namespace tq
