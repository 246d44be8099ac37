// Linear zoom: plain forms, band tasks, MultiThread forms.

#include <tqipl/buffer.h>
#include <tqipl/zoom.h>

#include <algorithm>
#include <utility>

#include "frame/band.h"
#include "zoom/geometry.h"
#include "zoom/linear_kernels.h"
#include "zoom/zoom_tasks.h"

namespace {

constexpr const tq::LinearKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(linearKernels);

// Columns are handled in runs of so many, which bounds the memory that any image takes.
constexpr ptrdiff_t kRunColumns = 0x4000;

// Rows blended at once at most, all from the same two source rows.
constexpr ptrdiff_t kGroupRows = 16;

constexpr ptrdiff_t kWindowBytes = 16;
constexpr ptrdiff_t kWindowColumns = 8;

template <int kChannels> const tq::LinearForm& Form() {
    const tq::LinearKernels& kernels = tq::SelectKernels(kKernels);
    return kChannels == 1 ? kernels.oneChannel : kernels.fourChannels;
}

// Whether a fraction is a whole number of sixteenths, and how many.
bool InSixteenths(float fraction, int& sixteenths) {
    const float scaled = fraction * 16.0f;
    sixteenths = static_cast<int>(scaled);
    return static_cast<float>(sixteenths) == scaled;
}

constexpr ptrdiff_t Padded(ptrdiff_t count) {
    return (count + tq::kLinearPadding - 1) / tq::kLinearPadding * tq::kLinearPadding;
}

// Bytes for two gathered rows of a run, or of the columns that fit it.
template <int kChannels> constexpr ptrdiff_t ScratchBytes(ptrdiff_t count) {
    return 4 * kChannels * Padded(count);
}

// A run of destination columns with its tables, and with scratch memory for each of `bands`
// threads that work on it: all that a call takes.
template <int kChannels> class ColumnRun {
public:
    ColumnRun(const tq::ZoomImages& images, ptrdiff_t first, int bands)
        : ColumnRun(images, first, std::min(kRunColumns, images.dstWidth - first), bands) {}

    const tq::LinearColumns& Columns() const { return m_columns; }
    unsigned char* Scratch(int band) const {
        return m_scratch + band * ScratchBytes<kChannels>(m_columns.count);
    }

private:
    ColumnRun(const tq::ZoomImages& images, ptrdiff_t first, ptrdiff_t count, int bands)
        : m_memory(static_cast<int>(TableBytes(count) + bands * ScratchBytes<kChannels>(count)),
                   nullptr) {
        const ptrdiff_t padded = Padded(count);
        unsigned char* free = m_memory.Data();
        const auto take = [&free](ptrdiff_t bytes) {
            unsigned char* taken = free;
            free += bytes;
            return taken;
        };
        auto* index = reinterpret_cast<int32_t*>(take(4 * padded));
        auto* fraction = reinterpret_cast<float*>(take(4 * padded));
        auto* windows = reinterpret_cast<int32_t*>(take(4 * padded / kWindowColumns));
        uint8_t* weights = take(2 * kChannels * padded);
        uint8_t* orders = take(2 * padded);
        m_scratch = free;

        const tq::LinearAxis axis(images.srcWidth, images.dstWidth);
        const int last = axis.Last();
        ptrdiff_t inner = 0;
        bool whole = true;
        for (ptrdiff_t i = 0; i < count; ++i) {
            const tq::LinearSample sample = axis.At(static_cast<int>(first + i));
            int sixteenths = 0;
            whole = InSixteenths(sample.fraction, sixteenths) && whole;
            index[i] = sample.index;
            fraction[i] = sample.fraction * 0x1p-16f;
            SetWeights(weights, i, 16 - sixteenths, sixteenths);
            if (sample.index < last) inner = i + 1;
        }
        for (ptrdiff_t i = count; i < padded; ++i) {
            index[i] = index[count - 1];
            fraction[i] = 0.0f;
            SetWeights(weights, i, 0, 0);
        }
        const bool fits =
            kChannels == 1 && MakeWindows(index, padded, images.srcWidth, windows, orders);
        m_columns = {first,
                     count,
                     inner,
                     index,
                     fraction,
                     whole ? weights : nullptr,
                     fits ? windows : nullptr,
                     orders};
    }

    static constexpr ptrdiff_t TableBytes(ptrdiff_t count) {
        return (4 + 4 + 2 * kChannels + 2) * Padded(count) + 4 * Padded(count) / kWindowColumns;
    }

    static void SetWeights(uint8_t* weights, ptrdiff_t column, int pixel, int neighbour) {
        for (ptrdiff_t element = kChannels * column; element < kChannels * (column + 1);
             ++element) {
            weights[2 * element] = static_cast<uint8_t>(pixel);
            weights[2 * element + 1] = static_cast<uint8_t>(neighbour);
        }
    }

    // False if a row is shorter than a window or eight columns reach further than one.
    static bool MakeWindows(const int32_t* index, ptrdiff_t padded, int srcWidth, int32_t* windows,
                            uint8_t* orders) {
        if (srcWidth < kWindowBytes) return false;
        const int last = srcWidth - 1;
        for (ptrdiff_t i = 0; i < padded; i += kWindowColumns) {
            const int begin = std::min(index[i], srcWidth - static_cast<int>(kWindowBytes));
            windows[i / kWindowColumns] = begin;
            for (ptrdiff_t k = i; k < i + kWindowColumns; ++k) {
                const int right = std::min(index[k], last - 1) + 1 - begin;
                if (right >= kWindowBytes) return false;
                orders[2 * k] = static_cast<uint8_t>(index[k] - begin);
                orders[2 * k + 1] = static_cast<uint8_t>(right);
            }
        }
        return true;
    }

    CTQIPLMemoryAuto m_memory;
    tq::LinearColumns m_columns{};
    unsigned char* m_scratch = nullptr;
};

// The two source rows last gathered.
class GatheredRows {
public:
    GatheredRows(const tq::ZoomImages& images, const tq::LinearColumns& columns, int channels,
                 tq::LinearGather gather, unsigned char* scratch)
        : m_images(images), m_columns(columns), m_gather(gather) {
        m_elements[0] = reinterpret_cast<uint16_t*>(scratch);
        m_elements[1] = m_elements[0] + channels * Padded(columns.count);
    }

    // Rows y and below, of which the second is not below the first one's next.
    void Hold(int y, int below) {
        if (m_row[0] != y) {
            std::swap(m_row[0], m_row[1]);
            std::swap(m_elements[0], m_elements[1]);
            if (m_row[0] != y) Gather(0, y);
        }
        if (below != y && m_row[1] != below) Gather(1, below);
        m_lower = m_elements[below != y];
    }
    const uint16_t* Upper() const { return m_elements[0]; }
    const uint16_t* Lower() const { return m_lower; }

private:
    void Gather(int slot, int y) {
        m_gather(m_columns, m_images.src + tq::Mul32(y, m_images.srcStride), m_elements[slot]);
        m_row[slot] = y;
    }

    const tq::ZoomImages& m_images;
    const tq::LinearColumns& m_columns;
    tq::LinearGather m_gather;
    uint16_t* m_elements[2];
    const uint16_t* m_lower = nullptr;
    int m_row[2] = {-1, -1};
};

bool AllInSixteenths(const tq::LinearAxis& axis, int begin, int end) {
    int sixteenths;
    for (int j = begin; j < end; ++j)
        if (!InSixteenths(axis.At(j).fraction, sixteenths)) return false;
    return true;
}

// Rows `begin` to `end` - 1 of a run of columns.
template <int kChannels>
void ZoomRows(const tq::ZoomImages& images, const tq::LinearColumns& columns,
              unsigned char* scratch, int begin, int end) {
    const tq::LinearForm& form = Form<kChannels>();
    const tq::LinearAxis axis(images.srcHeight, images.dstHeight);
    const bool weighs = columns.weights != nullptr && AllInSixteenths(axis, begin, end);
    const tq::LinearBlend blend = weighs ? form.blendWeighed : form.blendPairs;
    GatheredRows gathered(images, columns, kChannels, weighs ? form.weigh : form.pair, scratch);

    for (int j = begin; j < end;) {
        tq::LinearRow rows[kGroupRows];
        ptrdiff_t count = 0;
        bool needsLower = false;
        const int y = axis.At(j).index;
        for (; j < end && count < kGroupRows; ++j) {
            const tq::LinearSample sample = axis.At(j);
            if (sample.index != y) break;
            int sixteenths = 0;
            InSixteenths(sample.fraction, sixteenths);
            needsLower |= sample.fraction > 0.0f;
            rows[count++] = {
                images.dst + tq::Mul32(j, images.dstStride) + kChannels * columns.first,
                sample.fraction, sample.fraction * 0x1p-16f, static_cast<uint16_t>(sixteenths)};
        }
        // A lower row without weight may be any row.
        gathered.Hold(y, needsLower && y < axis.Last() ? y + 1 : y);
        blend(columns, gathered.Upper(), gathered.Lower(), rows, count);
    }
}

// The same of all columns.
template <int kChannels> void ZoomRows(const tq::ZoomImages& images, int begin, int end) {
    for (ptrdiff_t first = 0; first < images.dstWidth; first += kRunColumns) {
        const ColumnRun<kChannels> run(images, first, 1);
        ZoomRows<kChannels>(images, run.Columns(), run.Scratch(0), begin, end);
    }
}

template <int kChannels> void ZoomPlain(const tq::ZoomImages& images) {
    if (tq::BeginZoom(images, kChannels)) ZoomRows<kChannels>(images, 0, images.dstHeight);
}

template <int kChannels> int RunTask(const tq::LinearTask& task) {
    const tq::ZoomImages images = {task.m_nSrcWidth,  task.m_nSrcHeight, task.m_nSrcStride,
                                   task.m_pSrc,       task.m_nDstWidth,  task.m_nDstHeight,
                                   task.m_nDstStride, task.m_pDst};
    if (task.m_pColumns != nullptr)
        ZoomRows<kChannels>(images, *task.m_pColumns, task.m_pScratch, task.m_nRowBegin,
                            task.m_nRowEnd);
    else
        ZoomRows<kChannels>(images, task.m_nRowBegin, task.m_nRowEnd);
    return 1;
}

// All memory is taken here: the tasks take none.
template <int kChannels, class Task> void ZoomMultiThread(const tq::ZoomImages& images) {
    if (!tq::BeginZoom(images, kChannels)) return;
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormB, images.dstHeight);
    for (ptrdiff_t first = 0; first < images.dstWidth; first += kRunColumns) {
        const ColumnRun<kChannels> run(images, first, plan.count);
        tq::TaskSet<Task> tasks;
        int row = 0;
        for (int i = 0; i < plan.count; ++i) {
            Task& task = tasks.Add();
            task.m_nSrcWidth = images.srcWidth;
            task.m_nSrcHeight = images.srcHeight;
            task.m_nSrcStride = images.srcStride;
            task.m_pSrc = images.src;
            task.m_nDstWidth = images.dstWidth;
            task.m_nDstHeight = images.dstHeight;
            task.m_nDstStride = images.dstStride;
            task.m_pDst = images.dst;
            task.m_nRowBegin = row;
            task.m_nRowEnd = row += plan.Length(i);
            task.m_pColumns = &run.Columns();
            task.m_pScratch = run.Scratch(i);
        }
        tasks.RunOnRows(int64_t{images.dstWidth} * kChannels, images.dstStride);
    }
}

}  // namespace

int CZoomLinearTask_8u_C1R::Run() { return RunTask<1>(*this); }

int CZoomLinearTask_8u_C4R::Run() { return RunTask<4>(*this); }

void IPL_ZoomLinear_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                           int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    ZoomPlain<1>({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst});
}

void IPL_ZoomLinearMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride,
                                      unsigned char* src, int dstWidth, int dstHeight,
                                      int dstStride, unsigned char* dst) {
    ZoomMultiThread<1, CZoomLinearTask_8u_C1R>(
        {srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst});
}

void IPL_ZoomLinear_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                           int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    ZoomPlain<4>({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst});
}

void IPL_ZoomLinearMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride,
                                      unsigned char* src, int dstWidth, int dstHeight,
                                      int dstStride, unsigned char* dst) {
    ZoomMultiThread<4, CZoomLinearTask_8u_C4R>(
        {srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst});
}
