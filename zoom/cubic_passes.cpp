// The passes of the cubic zooms over rows and columns.

#include "zoom/cubic_passes.h"

#include <tqipl/buffer.h>

#include <algorithm>

#include "frame/exact_math.h"
#include "zoom/cubic_kernels.h"

namespace {

using tq::kCubicTaps;

constexpr const tq::CubicKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(cubicKernels);

// Elements of a row that are worked on at once: what is kept of some rows stays in the cache.
constexpr ptrdiff_t kRunElements = 4096;

struct Record {
    int first, last;
    const int* weights;

    explicit Record(const int* packed) : first(packed[0]), last(packed[1]), weights(packed + 2) {}
    ptrdiff_t Taps() const { return last < first ? 0 : ptrdiff_t{last} - first + 1; }
    const int* Next() const { return weights + Taps(); }
};

constexpr ptrdiff_t Padded(ptrdiff_t count) {
    return (count + tq::kCubicPadding - 1) / tq::kCubicPadding * tq::kCubicPadding;
}

// A run of destination columns as the kernels want it. Each column reads a window of pixels, which
// never ends behind the last tap of the run.
class ColumnRun {
public:
    // Moves `records` behind the run.
    ColumnRun(const int*& records, ptrdiff_t count, int channels)
        : m_channels(channels),
          m_memory(static_cast<int>((1 + kArrays) * Padded(count) * 4), nullptr) {
        const int* run = records;
        ptrdiff_t taps = 0;
        for (ptrdiff_t i = 0; i < count; ++i) {
            const Record record(records);
            taps = std::max(taps, record.Taps());
            m_end = std::max(m_end, ptrdiff_t{record.last} + 1);
            records = record.Next();
        }
        m_six = taps > 4;
        const ptrdiff_t window = !m_six ? 4 : channels == 1 ? kCubicTaps : 6;
        m_tiny = m_end < window;

        auto* begin = reinterpret_cast<int32_t*>(m_memory.Data());
        auto* weights = reinterpret_cast<uint32_t*>(m_memory.Data()) + Padded(count);
        std::fill_n(begin, Padded(count), 0);
        std::fill_n(weights, kArrays * Padded(count), 0u);
        for (ptrdiff_t i = 0; i < count; ++i) {
            const Record record(run);
            if (record.Taps() > 0) {
                const ptrdiff_t start =
                    m_tiny ? 0 : std::min(ptrdiff_t{record.first}, m_end - window);
                begin[i] = static_cast<int32_t>(start);
                SetWeights(record, record.first - start, weights + i, Padded(count));
            }
            run = record.Next();
        }
        m_columns = {count, begin, {}};
        for (ptrdiff_t k = 0; k < kArrays; ++k) m_columns.weights[k] = weights + k * Padded(count);
    }

    ptrdiff_t Elements() const { return m_columns.count * m_channels; }

    void Sum(const tq::CubicKernels& kernels, const unsigned char* row, int32_t* sums) const {
        unsigned char padded[kCubicTaps * 4] = {};
        if (m_tiny) row = std::copy_n(row, m_end * m_channels, padded) - m_end * m_channels;
        (m_channels == 1 ? kernels.sumRow1 : kernels.sumRow4)[m_six](m_columns, row, sums);
    }

private:
    static constexpr ptrdiff_t kArrays = 4;

    // Weights of a window, whose tap `offset` is the record's first.
    void SetWeights(const Record& record, ptrdiff_t offset, uint32_t* weights,
                    ptrdiff_t arrayLength) const {
        for (ptrdiff_t k = 0; k < record.Taps(); ++k) {
            const ptrdiff_t tap = offset + k;
            const ptrdiff_t array = m_channels == 1 ? tap / 4 * 2 + tap % 2 : tap / 2;
            const bool upper = m_channels == 1 ? tap % 4 / 2 != 0 : tap % 2 != 0;
            const uint32_t weight = static_cast<uint32_t>(record.weights[k]) & 0xFFFF;
            weights[array * arrayLength] |= upper ? weight << 16 : weight;
        }
    }

    int m_channels;
    CTQIPLMemoryAuto m_memory;
    tq::CubicColumns m_columns{};
    ptrdiff_t m_end = 0;  // pixels that the run may read of a row
    bool m_six = false;
    bool m_tiny = false;
};

// Calls work(first column, run of columns) for runs of all columns.
template <class Work> void ForColumnRuns(int columns, int channels, const int* records, Work work) {
    const ptrdiff_t runColumns = kRunElements / channels;
    for (ptrdiff_t first = 0; first < columns; first += runColumns)
        work(first, ColumnRun(records, std::min(runColumns, columns - first), channels));
}

// The same for runs of `elements`, which lie beside each other.
template <class Work> void ForElementRuns(ptrdiff_t begin, ptrdiff_t end, Work work) {
    for (ptrdiff_t first = begin; first < end; first += kRunElements)
        work(first, std::min(kRunElements, end - first));
}

// The weights of a record without those of 0 at its ends, and where the first is.
struct Trimmed {
    ptrdiff_t first, taps;
    const int* weights;

    explicit Trimmed(const Record& record)
        : first(record.first), taps(record.Taps()), weights(record.weights) {
        while (taps > 0 && weights[taps - 1] == 0) --taps;
        while (taps > 0 && weights[0] == 0) ++first, ++weights, --taps;
    }
};

// Each destination row of a run of elements by `blend`, from rows of T that row(y) gives.
template <class T, class Row>
void BlendRows(const int* records, int dstHeight, int dstStride, unsigned char* dst,
               void (*blend)(const T* const*, const int32_t*, ptrdiff_t, ptrdiff_t, uint8_t*),
               ptrdiff_t count, Row row) {
    for (int j = 0; j < dstHeight; ++j) {
        const Record record(records);
        records = record.Next();
        const Trimmed trimmed(record);
        const T* rows[kCubicTaps] = {};
        for (ptrdiff_t k = 0; k < trimmed.taps; ++k) rows[k] = row(trimmed.first + k);
        blend(rows, trimmed.weights, trimmed.taps, count, dst + tq::Mul32(j, dstStride));
    }
}

// The sums of the source rows last asked for, which never lie kCubicTaps or more apart and of
// which each is below the one before, or one of those.
class RecentSums {
public:
    RecentSums(const tq::ZoomImages& images, const ColumnRun& run, const tq::CubicKernels& kernels)
        : m_images(images),
          m_run(run),
          m_kernels(kernels),
          m_memory(static_cast<int>(kCubicTaps * run.Elements() * 4), nullptr),
          m_sums(reinterpret_cast<int32_t*>(m_memory.Data())) {
        std::fill_n(m_rows, kCubicTaps, ptrdiff_t{-1});
    }

    const int32_t* operator()(ptrdiff_t y) {
        const ptrdiff_t slot = y % kCubicTaps;
        int32_t* sums = m_sums + slot * m_run.Elements();
        if (m_rows[slot] != y) {
            m_run.Sum(m_kernels, m_images.src + tq::Mul32(static_cast<int>(y), m_images.srcStride),
                      sums);
            m_rows[slot] = y;
        }
        return sums;
    }

private:
    const tq::ZoomImages& m_images;
    const ColumnRun& m_run;
    const tq::CubicKernels& m_kernels;
    CTQIPLMemoryAuto m_memory;
    int32_t* m_sums;
    ptrdiff_t m_rows[kCubicTaps];
};

}  // namespace

namespace tq {

void ZoomCubicX(const ZoomImages& images, int channels, const int* columnRecords) {
    FinishCubicRows({images.srcStride, images.src, images.dstWidth, channels, columnRecords, 0,
                     images.dstHeight},
                    images.dstStride, images.dst);
}

void ZoomCubicY(const ZoomImages& images, int channels, const int* rowRecords) {
    BlendCubicBytes(
        {0, images.dstWidth, channels, rowRecords, images.dstHeight, images.dstStride, images.dst},
        images.srcStride, images.src);
}

void ZoomCubicXY(const ZoomImages& images, int channels, const int* columnRecords,
                 const int* rowRecords) {
    const CubicKernels& kernels = SelectKernels(kKernels);
    ForColumnRuns(images.dstWidth, channels, columnRecords,
                  [&](ptrdiff_t first, const ColumnRun& run) {
                      RecentSums sums(images, run, kernels);
                      BlendRows<int32_t>(rowRecords, images.dstHeight, images.dstStride,
                                         images.dst + first * channels, kernels.blendSums,
                                         run.Elements(), [&sums](ptrdiff_t y) { return sums(y); });
                  });
}

const int* AfterCubicRecords(const int* records, int count) {
    for (int i = 0; i < count; ++i) records = Record(records).Next();
    return records;
}

void SumCubicRows(const CubicRows& rows, int sumStride, int32_t* sums) {
    const CubicKernels& kernels = SelectKernels(kKernels);
    ForColumnRuns(rows.columns, rows.channels, rows.records,
                  [&](ptrdiff_t first, const ColumnRun& run) {
                      for (int y = rows.begin; y < rows.end; ++y)
                          run.Sum(kernels, rows.src + Mul32(y, rows.srcStride),
                                  sums + ptrdiff_t{y} * sumStride + first * rows.channels);
                  });
}

void FinishCubicRows(const CubicRows& rows, int dstStride, unsigned char* dst) {
    const CubicKernels& kernels = SelectKernels(kKernels);
    ForColumnRuns(rows.columns, rows.channels, rows.records,
                  [&](ptrdiff_t first, const ColumnRun& run) {
                      CTQIPLMemoryAuto memory(static_cast<int>(run.Elements() * 4), nullptr);
                      auto* sums = reinterpret_cast<int32_t*>(memory.Data());
                      for (int y = rows.begin; y < rows.end; ++y) {
                          run.Sum(kernels, rows.src + Mul32(y, rows.srcStride), sums);
                          kernels.finish(sums, run.Elements(),
                                         dst + Mul32(y, dstStride) + first * rows.channels);
                      }
                  });
}

void BlendCubicSums(const CubicColumnBand& band, int sumStride, const int32_t* sums) {
    const CubicKernels& kernels = SelectKernels(kKernels);
    ForElementRuns(ptrdiff_t{band.begin} * band.channels, ptrdiff_t{band.end} * band.channels,
                   [&](ptrdiff_t first, ptrdiff_t count) {
                       BlendRows<int32_t>(
                           band.records, band.dstHeight, band.dstStride, band.dst + first,
                           kernels.blendSums, count,
                           [&](ptrdiff_t y) { return sums + y * sumStride + first; });
                   });
}

void BlendCubicBytes(const CubicColumnBand& band, int srcStride, const unsigned char* src) {
    const CubicKernels& kernels = SelectKernels(kKernels);
    ForElementRuns(ptrdiff_t{band.begin} * band.channels, ptrdiff_t{band.end} * band.channels,
                   [&](ptrdiff_t first, ptrdiff_t count) {
                       BlendRows<uint8_t>(
                           band.records, band.dstHeight, band.dstStride, band.dst + first,
                           kernels.blendBytes, count, [&](ptrdiff_t y) {
                               return src + Mul32(static_cast<int>(y), srcStride) + first;
                           });
                   });
}

}  // namespace tq
