// Super zoom: plain forms, band tasks, MultiThread forms.

#include <tqipl/zoom.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <utility>

#include "frame/band.h"
#include "frame/scratch.h"
#include "zoom/geometry.h"
#include "zoom/super_kernels.h"
#include "zoom/zoom_tasks.h"

namespace {

constexpr const tq::SuperKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(superKernels);

// Columns are handled in runs of so many, which bounds the memory that any image takes.
constexpr ptrdiff_t kRunColumns = 0x2000;

constexpr ptrdiff_t kWindowBytes = 16;
constexpr ptrdiff_t kWindowColumns = 4;

// Weights at the end of a column are kept for so many taps at most. The spans of columns differ by
// one, and by two or three where rounding has its way.
constexpr ptrdiff_t kMostEdges = 4;

// How the end of an area is found: as the begin of the next one, or from its own begin. The two may
// differ in the last bit. Columns take the first way, rows the second but for IPL_ZoomSuper_8u_C4R:
// kept on purpose.
enum class AreaEnd { kNextBegin, kBeginPlusScale };

// The source samples that a destination sample covers, and the parts of the first and the last.
struct Cover {
    int first;
    int last;
    float firstFraction;
    float lastFraction;
};

// One axis: the area of destination sample i begins at i * scale.
class SuperAxis {
public:
    // Lengths of 1 or more.
    SuperAxis(int srcLength, int dstLength)
        : m_scale(static_cast<float>(srcLength) / static_cast<float>(dstLength)),
          m_last(srcLength - 1) {}

    float Scale() const { return m_scale; }

    // The last source sample counts in full; other fractions are those before the samples are held
    // in the image.
    Cover At(int i, AreaEnd how) const {
        const float begin = static_cast<float>(i) * m_scale;
        const float end =
            how == AreaEnd::kNextBegin ? static_cast<float>(i + 1) * m_scale : begin + m_scale;
        const int first = Truncated(begin);
        const int last = Truncated(end);
        const float skipped = begin - static_cast<float>(first);
        return {std::min(first, m_last), std::min(last, m_last),
                static_cast<float>(1.0 - static_cast<double>(skipped)),
                last >= m_last ? 1.0f : end - static_cast<float>(last)};
    }

private:
    // Positions are not negative; the end of the longest axes is beyond what an int holds.
    static int Truncated(float position) {
        return position < 0x1p31f ? static_cast<int>(position) : INT_MAX;
    }

    float m_scale;
    int m_last;
};

constexpr ptrdiff_t RoundedUp(ptrdiff_t value, ptrdiff_t unit) {
    return (value + unit - 1) / unit * unit;
}

// The length of an array that holds something for each column or each element.
constexpr ptrdiff_t Padded(ptrdiff_t count) {
    return RoundedUp(count + tq::kSuperPadding, tq::kSuperPadding);
}

// Sums that a band works with: of two source rows, and of the rows between them, old and new.
constexpr ptrdiff_t kSumRows = 4;

// A run of destination columns with its tables, and with scratch memory for each of `bands`
// threads that work on it: all that a call takes.
class ColumnRun {
public:
    ColumnRun(const tq::ZoomImages& images, int channels, ptrdiff_t first, int bands)
        : ColumnRun(images, channels, first, std::min(kRunColumns, images.dstWidth - first),
                    bands) {}

    const tq::SuperColumns& Columns() const { return m_columns; }
    float* Scratch(int band) const { return m_scratch + band * m_scratchLength; }

private:
    ColumnRun(const tq::ZoomImages& images, int channels, ptrdiff_t first, ptrdiff_t count,
              int bands)
        : m_scratchLength(kSumRows * Padded(channels * count)),
          m_memory(TableBytes(count) + 4 * bands * m_scratchLength) {
        const ptrdiff_t padded = Padded(count);
        unsigned char* free = m_memory.Data();
        const auto take = [&free](ptrdiff_t bytes) {
            unsigned char* taken = free;
            free += bytes;
            return taken;
        };
        auto* begin = reinterpret_cast<int32_t*>(take(4 * padded));
        auto* end = reinterpret_cast<int32_t*>(take(4 * padded));
        auto* beginFraction = reinterpret_cast<float*>(take(4 * padded));
        auto* endFraction = reinterpret_cast<float*>(take(4 * padded));
        auto* edges = reinterpret_cast<float*>(take(kMostEdges * 4 * padded));
        auto* singles = reinterpret_cast<int32_t*>(take(4 * padded));
        auto* windows = reinterpret_cast<int32_t*>(take(4 * padded / kWindowColumns));
        unsigned char* orders = take(4 * padded);
        m_scratch = reinterpret_cast<float*>(free);

        const SuperAxis axis(images.srcWidth, images.dstWidth);
        for (ptrdiff_t i = 0; i < count; ++i) {
            const Cover cover = axis.At(static_cast<int>(first + i), AreaEnd::kNextBegin);
            begin[i] = cover.first;
            end[i] = cover.last;
            beginFraction[i] = cover.firstFraction;
            endFraction[i] = cover.lastFraction;
        }
        m_columns = {first, count,         0,           0,     0,       padded,  0,     begin,
                     end,   beginFraction, endFraction, edges, singles, nullptr, orders};
        SetTaps(images.srcWidth);
        SetEdges(edges, singles);
        if (channels == 1 && SetWindows(images.srcWidth, windows, orders))
            m_columns.windows = windows;
    }

    static constexpr ptrdiff_t TableBytes(ptrdiff_t count) {
        return (4 * 4 + kMostEdges * 4 + 4 + 4 / kWindowColumns + 4) * Padded(count);
    }

    ptrdiff_t Span(ptrdiff_t i) const { return m_columns.end[i] - m_columns.begin[i]; }

    // How many taps the columns have, and how many columns have so many to read.
    void SetTaps(int srcWidth) {
        tq::SuperColumns& columns = m_columns;
        ptrdiff_t most = 0;
        for (ptrdiff_t i = 0; i < columns.count; ++i) most = std::max(most, Span(i));
        bool counts = false;
        for (ptrdiff_t i = 0; i < columns.count; ++i)
            counts |= Span(i) == most && columns.endFraction[i] != 0.0f;
        columns.taps = counts ? most + 1 : std::max(most, ptrdiff_t{1});
        const ptrdiff_t reach = RoundedUp(columns.taps, tq::kSuperWindow);
        while (columns.inner < columns.count && columns.begin[columns.inner] + reach <= srcWidth)
            ++columns.inner;
        columns.plain = 1;
        if (columns.taps <= tq::kSuperWindow) return;
        ptrdiff_t least = most;
        for (ptrdiff_t i = 0; i < columns.inner; ++i) least = std::min(least, Span(i));
        columns.plain = std::max({ptrdiff_t{1}, least, columns.taps - kMostEdges});
    }

    void SetEdges(float* edges, int32_t* singles) {
        tq::SuperColumns& columns = m_columns;
        for (ptrdiff_t i = 0; i < columns.inner; ++i) {
            const ptrdiff_t span = Span(i);
            if (span < columns.plain) singles[columns.singleCount++] = static_cast<int32_t>(i);
            for (ptrdiff_t t = columns.plain; t < columns.taps; ++t)
                edges[(t - columns.plain) * columns.edgeStride + i] = t < span ? 1.0f
                                                                      : t == span
                                                                          ? columns.endFraction[i]
                                                                          : 0.0f;
        }
    }

    // False if a row is shorter than a window or four columns reach further than one.
    bool SetWindows(int srcWidth, int32_t* windows, uint8_t* orders) const {
        const tq::SuperColumns& columns = m_columns;
        if (columns.taps > tq::kSuperWindow || srcWidth < kWindowBytes) return false;
        for (ptrdiff_t i = 0; i < columns.inner; ++i) {
            int32_t& window = windows[i / kWindowColumns];
            if (i % kWindowColumns == 0)
                window = std::min(columns.begin[i], srcWidth - static_cast<int>(kWindowBytes));
            const ptrdiff_t place = columns.begin[i] - window;
            if (place + tq::kSuperWindow > kWindowBytes) return false;
            for (ptrdiff_t t = 0; t < tq::kSuperWindow; ++t)
                orders[tq::kSuperWindow * i + t] = static_cast<uint8_t>(place + t);
        }
        return true;
    }

    tq::SuperColumns m_columns{};
    ptrdiff_t m_scratchLength;
    tq::Scratch m_memory;
    float* m_scratch = nullptr;
};

// Sums of source rows: those of the two last asked for are kept.
class SummedRows {
public:
    SummedRows(const tq::ZoomImages& images, const tq::SuperColumns& columns, int channels,
               float* scratch)
        : m_images(images),
          m_columns(columns),
          m_sum(channels == 1 ? tq::SelectKernels(kKernels).sumOneChannel
                              : tq::SelectKernels(kKernels).sumFourChannels) {
        const ptrdiff_t length = Padded(channels * columns.count);
        for (ptrdiff_t k = 0; k < 2; ++k) {
            m_rows[k].sums = scratch + k * length;
            m_totals[k] = scratch + (2 + k) * length;
        }
    }

    const float* Row(int y) {
        if (m_rows[0].y == y) return m_rows[0].sums;
        std::swap(m_rows[0], m_rows[1]);
        if (m_rows[0].y != y) {
            m_sum(m_columns, Source(y), nullptr, m_rows[0].sums);
            m_rows[0].y = y;
        }
        return m_rows[0].sums;
    }

    // Rows `first` to `last`, one or more, added up in one go.
    const float* Total(int first, int last) {
        const float* total = nullptr;
        for (int y = first; y <= last; ++y) {
            std::swap(m_totals[0], m_totals[1]);
            m_sum(m_columns, Source(y), total, m_totals[0]);
            total = m_totals[0];
        }
        return total;
    }

private:
    struct Summed {
        float* sums;
        int y = -1;
    };
    const unsigned char* Source(int y) const {
        return m_images.src + tq::Mul32(y, m_images.srcStride);
    }

    const tq::ZoomImages& m_images;
    const tq::SuperColumns& m_columns;
    tq::SuperSum m_sum;
    Summed m_rows[2];
    float* m_totals[2];
};

// Rows `begin` to `end` - 1 of a run of columns.
void ZoomRows(const tq::ZoomImages& images, int channels, AreaEnd rowEnd,
              const tq::SuperColumns& columns, float* scratch, int begin, int end) {
    const auto finish = tq::SelectKernels(kKernels).finish;
    const SuperAxis axis(images.srcHeight, images.dstHeight);
    const float norm = 1.0f / (axis.Scale() * SuperAxis(images.srcWidth, images.dstWidth).Scale());
    SummedRows rows(images, columns, channels, scratch);
    for (int y = begin; y < end; ++y) {
        const Cover cover = axis.At(y, rowEnd);
        tq::SuperRow row{};
        row.upper = rows.Row(cover.first);
        if (cover.last - cover.first > 1) row.middle = rows.Total(cover.first + 1, cover.last - 1);
        // What counts nothing adds 0, which changes no sum.
        if (cover.lastFraction != 0.0f) row.lower = rows.Row(cover.last);
        row.topFraction = cover.firstFraction;
        row.bottomFraction = cover.lastFraction;
        row.norm = norm;
        finish(row, channels * columns.count,
               images.dst + tq::Mul32(y, images.dstStride) + channels * columns.first);
    }
}

// The scales where both are whole and 2 or more, and areas are blocks; else 0.
struct BlockSize {
    int width = 0;
    int height = 0;

    explicit BlockSize(const tq::ZoomImages& images) {
        constexpr int kExact = 1 << 24;  // positions up to here are whole in floats too
        if (images.srcWidth > kExact || images.srcHeight > kExact) return;
        if (images.srcWidth % images.dstWidth != 0 || images.srcHeight % images.dstHeight != 0)
            return;
        const int64_t w = images.srcWidth / images.dstWidth;
        const int64_t h = images.srcHeight / images.dstHeight;
        if (w < 2 || h < 2 || w * h > tq::kSuperMostBlock) return;
        width = static_cast<int>(w);
        height = static_cast<int>(h);
    }
    bool IsWhole() const { return width != 0; }
};

void AverageRows(const tq::ZoomImages& images, int channels, const BlockSize& size, int begin,
                 int end) {
    const tq::SuperKernels& kernels = tq::SelectKernels(kKernels);
    const auto average = channels == 1 ? kernels.averageOneChannel : kernels.averageFourChannels;
    const tq::SuperBlocks blocks = {size.width, size.height, images.srcStride,
                                    1.0f / static_cast<float>(size.width * size.height)};
    for (int y = begin; y < end; ++y)
        average(blocks, images.src + tq::Mul32(y * size.height, images.srcStride), images.dstWidth,
                images.dst + tq::Mul32(y, images.dstStride));
}

// All columns, without tables that somebody has made.
void ZoomRows(const tq::ZoomImages& images, int channels, AreaEnd rowEnd, int begin, int end) {
    const BlockSize blocks(images);
    if (blocks.IsWhole()) return AverageRows(images, channels, blocks, begin, end);
    for (ptrdiff_t first = 0; first < images.dstWidth; first += kRunColumns) {
        const ColumnRun run(images, channels, first, 1);
        ZoomRows(images, channels, rowEnd, run.Columns(), run.Scratch(0), begin, end);
    }
}

bool Enlarges(const tq::ZoomImages& images) {
    return images.dstWidth > images.srcWidth || images.dstHeight > images.srcHeight;
}

using ZoomFunction = void (*)(int, int, int, unsigned char*, int, int, int, unsigned char*);

// The steps that every form begins with. False when they were the whole call; `enlarge` takes those
// that enlarge an axis.
bool BeginSuper(const tq::ZoomImages& images, int channels, ZoomFunction enlarge) {
    if (!tq::BeginZoom(images, channels)) return false;
    if (!Enlarges(images)) return true;
    enlarge(images.srcWidth, images.srcHeight, images.srcStride, images.src, images.dstWidth,
            images.dstHeight, images.dstStride, images.dst);
    return false;
}

void ZoomPlain(const tq::ZoomImages& images, int channels, AreaEnd rowEnd, ZoomFunction enlarge) {
    if (BeginSuper(images, channels, enlarge))
        ZoomRows(images, channels, rowEnd, 0, images.dstHeight);
}

// Bands of a run of columns, or of all where no run is given.
void RunBands(const tq::ZoomImages& images, int channels, const tq::BandPlan& plan,
              const ColumnRun* run) {
    tq::TaskSet<CZoomSuperTask> tasks;
    int row = 0;
    for (int i = 0; i < plan.count; ++i) {
        CZoomSuperTask& task = tasks.Add();
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
        task.m_nChannelMode = channels == 4;
        if (run == nullptr) continue;
        task.m_pColumns = &run->Columns();
        task.m_pScratch = run->Scratch(i);
    }
    tasks.RunOnRows(int64_t{images.dstWidth} * channels, images.dstStride);
}

// All memory is taken here, if any: the tasks take none.
void ZoomMultiThread(const tq::ZoomImages& images, int channels, ZoomFunction enlarge) {
    if (!BeginSuper(images, channels, enlarge)) return;
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormB, images.dstHeight);
    if (BlockSize(images).IsWhole()) return RunBands(images, channels, plan, nullptr);
    for (ptrdiff_t first = 0; first < images.dstWidth; first += kRunColumns) {
        const ColumnRun run(images, channels, first, plan.count);
        RunBands(images, channels, plan, &run);
    }
}

}  // namespace

int CZoomSuperTask::Run() {
    if (m_nChannelMode != 0 && m_nChannelMode != 1) return 1;
    const int channels = m_nChannelMode == 0 ? 1 : 4;
    const tq::ZoomImages images = {m_nSrcWidth, m_nSrcHeight, m_nSrcStride, m_pSrc,
                                   m_nDstWidth, m_nDstHeight, m_nDstStride, m_pDst};
    if (!tq::HasPixels(images)) return 1;
    if (m_pColumns != nullptr)
        ZoomRows(images, channels, AreaEnd::kBeginPlusScale, *m_pColumns, m_pScratch, m_nRowBegin,
                 m_nRowEnd);
    else
        ZoomRows(images, channels, AreaEnd::kBeginPlusScale, m_nRowBegin, m_nRowEnd);
    return 1;
}

void IPL_ZoomSuper_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                          int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    ZoomPlain({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 1,
              AreaEnd::kBeginPlusScale, IPL_Zoom6Cubic_8u_C1R);
}

void IPL_ZoomSuperMultiThread_8u_C1R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                     int dstWidth, int dstHeight, int dstStride,
                                     unsigned char* dst) {
    ZoomMultiThread({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 1,
                    IPL_Zoom6CubicMultiThread_8u_C1R);
}

void IPL_ZoomSuper_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                          int dstWidth, int dstHeight, int dstStride, unsigned char* dst) {
    ZoomPlain({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 4,
              AreaEnd::kNextBegin, IPL_Zoom6Cubic_8u_C4R);
}

void IPL_ZoomSuperMultiThread_8u_C4R(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                                     int dstWidth, int dstHeight, int dstStride,
                                     unsigned char* dst) {
    ZoomMultiThread({srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride, dst}, 4,
                    IPL_Zoom6CubicMultiThread_8u_C4R);
}
