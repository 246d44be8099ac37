// The cleaning of a mask by a guide: confirmation of its regions, and growth from their runs.

#include <tqipl/labelling.h>

#include <algorithm>
#include <atomic>
#include <vector>

#include "morph/labelling_bands.h"
#include "morph/labelling_tasks.h"
#include "morph/runs.h"
#include "morph/zero_regions.h"

namespace {

bool HasPixels(unsigned int width, unsigned int height, const unsigned char* guide,
               const unsigned char* mask) {
    return tq::HasIntSize(width, height) && guide != nullptr && mask != nullptr;
}

void LabelZeros(unsigned int width, unsigned int height, unsigned int stride,
                const unsigned char* mask, tq::RunVector& runs) {
    tq::LabelRows({mask, static_cast<int>(width), stride, 0, static_cast<int>(height)},
                  tq::RunPixels::kZero, runs);
}

bool Precedes(const FCC_RUN& run, const FCC_RUN& other) {
    return run.nRow != other.nRow ? run.nRow < other.nRow : run.nStart < other.nStart;
}

// Takes bHead from the roots of the regions that the guide confirms. Both vectors are in the order
// of rows and columns, so that one walk along the mask's runs serves all roots of the guide.
void ConfirmRegions(tq::RunVector& guideRuns, unsigned int threshold, tq::RunVector& maskRuns) {
    tq::RunVector::Iterator begin = maskRuns.begin();
    for (const FCC_RUN& guide : guideRuns) {
        if (guide.bHead == 0 || guide.nArea <= threshold) continue;
        while (begin != maskRuns.end() &&
               (begin->nRow < guide.nRow ||
                (begin->nRow == guide.nRow && tq::EndsLeftOf(*begin, guide))))
            ++begin;
        FCC_RUN* confirmed = nullptr;
        for (tq::RunVector::Iterator run = begin;
             run != maskRuns.end() && run->nRow == guide.nRow && !tq::EndsLeftOf(guide, *run);
             ++run) {
            FCC_RUN* root = IPL_FCCFindRoot(&*run);
            if (root->bHead != 0 && (confirmed == nullptr || Precedes(*root, *confirmed)))
                confirmed = root;
        }
        if (confirmed != nullptr) confirmed->bHead = 0;
    }
}

// One task's growth. Others may grow the same mask: its bytes are read and written atomically. Of
// several that paint a pixel each spreads from it, which at worst is work done twice; none is left
// out, since whoever finds a pixel painted leaves it to the one that painted it.
class Growth {
public:
    explicit Growth(const CZSeedGrowth_Task& task) : m_task(task) {}

    void SpreadFrom(tq::Seed seed) {
        const auto [x, y] = seed;
        if (!IsInside(x, m_task.m_nWidth) || !IsInside(y, m_task.m_nHeight)) return;
        PaintRow(y - 1, x - 1, x + 1);
        PaintRow(y, x - 1, x - 1);
        PaintRow(y, x + 1, x + 1);
        PaintRow(y + 1, x - 1, x + 1);
        while (!m_spans.empty()) {
            const Span span = m_spans.back();
            m_spans.pop_back();
            PaintRow(span.row - 1, span.first - 1, span.last + 1);
            PaintRow(span.row + 1, span.first - 1, span.last + 1);
        }
    }

private:
    // Painted pixels side by side that have yet to spread to the rows above and below.
    struct Span {
        int row;
        int first;
        int last;
    };

    // Not on the border.
    static bool IsInside(int position, int size) {
        return position >= 1 && position < int64_t{size} - 1;
    }

    // Paints what the growth reaches from columns first to last of a row.
    void PaintRow(int row, int first, int last) {
        unsigned char* mask = m_task.m_pMask + int64_t{row} * m_task.m_nMaskStride;
        unsigned char* guide = m_task.m_pGuide + int64_t{row} * m_task.m_nGuideStride;
        const auto paint = [=](int x) {
            std::atomic_ref pixel(mask[x]);
            const int value = pixel.load(std::memory_order_relaxed);
            const int guideValue = std::atomic_ref(guide[x]).load(std::memory_order_relaxed);
            if (((value ^ tq::kBackground) | guideValue) != 0) return false;
            pixel.store(0, std::memory_order_relaxed);
            return true;
        };
        const bool spreads = IsInside(row, m_task.m_nHeight);
        for (int x = first; x <= last; ++x) {
            if (!paint(x) || !spreads) continue;
            int left = x;
            int right = x;
            while (IsInside(left, m_task.m_nWidth) && paint(left - 1)) --left;
            while (IsInside(right, m_task.m_nWidth) && paint(right + 1)) ++right;
            x = right;
            left = std::max(left, 1);
            right = std::min(right, m_task.m_nWidth - 2);
            if (left <= right) m_spans.push_back({row, left, right});
        }
    }

    const CZSeedGrowth_Task& m_task;
    std::vector<Span> m_spans;
};

// The images of a call, as its arguments name them.
struct GuidedMask {
    unsigned int width;
    unsigned int height;
    unsigned int guideStride;
    unsigned char* guide;
    unsigned int maskStride;
    unsigned char* mask;
};

void Prepare(CZSeedGrowth_Task& task, const GuidedMask& images, std::vector<tq::Seed>& seeds) {
    task.m_nWidth = static_cast<int>(images.width);
    task.m_nHeight = static_cast<int>(images.height);
    task.m_nGuideStride = images.guideStride;
    task.m_pGuide = images.guide;
    task.m_nMaskStride = images.maskStride;
    task.m_pMask = images.mask;
    task.m_pSeeds = &seeds;
}

}  // namespace

void IPL_FCCDeNoiseAndGrowth(unsigned int width, unsigned int height, unsigned int guideStride,
                             unsigned char* guide, unsigned int maskStride, unsigned char* mask,
                             unsigned int threshold) {
    if (!HasPixels(width, height, guide, mask)) return;
    tq::RunVector runs;
    LabelZeros(width, height, maskStride, mask, runs);
    {
        tq::RunVector guideRuns;
        LabelZeros(width, height, guideStride, guide, guideRuns);
        ConfirmRegions(guideRuns, threshold, runs);
    }
    for (const FCC_RUN& run : runs)
        if (run.bHead != 0) tq::FillRegion(run, mask, maskStride, tq::kBackground);
}

int CZSeedGrowth_Task::Run() {
    Growth growth(*this);
    while (!m_pSeeds->empty()) {
        const tq::Seed seed = m_pSeeds->back();
        m_pSeeds->pop_back();
        growth.SpreadFrom(seed);
    }
    return 1;
}

void IPL_FCCDeNoiseAndGrowth2(unsigned int width, unsigned int height, unsigned int guideStride,
                              unsigned char* guide, unsigned int maskStride, unsigned char* mask,
                              unsigned int threshold) {
    if (!HasPixels(width, height, guide, mask)) return;
    std::vector<tq::Seed> seeds;
    {
        tq::RunVector runs;
        LabelZeros(width, height, maskStride, mask, runs);
        tq::FillSmallZeroRegions(runs, mask, maskStride, threshold);
        tq::CollectSeeds(runs, mask, maskStride, seeds);
    }
    CZSeedGrowth_Task task;
    Prepare(task, {width, height, guideStride, guide, maskStride, mask}, seeds);
    task.Run();
}

void IPL_FCCDeNoiseAndGrowth2_MultiThread(unsigned int width, unsigned int height,
                                          unsigned int guideStride, unsigned char* guide,
                                          unsigned int maskStride, unsigned char* mask,
                                          unsigned int threshold) {
    if (!HasPixels(width, height, guide, mask) || !tq::BandsAreFinished()) return;
    tq::TaskSet<CZFCCDeNoiseEx2_Task> bands;
    tq::DenoiseZeroBands(bands, static_cast<int>(width), static_cast<int>(height), maskStride, mask,
                         threshold);
    tq::TaskSet<CZSeedGrowth_Task> growths;
    for (int i = 0; i < bands.Count(); ++i) {
        bands.At(i).m_nMode = 1;
        Prepare(growths.Add(), {width, height, guideStride, guide, maskStride, mask},
                bands.At(i).m_seeds);
    }
    bands.Run();
    growths.Run();
}
