// Labelling by one image and measuring in another.

#include <tqipl/labelling.h>

#include <climits>
#include <vector>

#include "frame/isa.h"
#include "morph/boxes.h"
#include "morph/runs.h"
#include "morph/runs_kernels.h"

namespace {

constexpr const tq::RunsKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(runsKernels);

// The nonzero pixels of an image under a region. Without any, the box is inside out.
struct Measured {
    uint32_t count = 0;
    TQ_RECT box{INT_MAX, INT_MAX, -1, -1};
};

Measured MeasureUnder(const tq::RunsKernels& kernels, const FCC_RUN& root,
                      const unsigned char* image, int stride) {
    Measured measured;
    for (const FCC_RUN* run = &root; run != nullptr; run = run->pNext) {
        const unsigned char* pixels = image + int64_t{run->nRow} * stride + run->nStart;
        const tq::NonzeroBytes found = kernels.measure(pixels, run->nEnd - run->nStart + 1);
        if (found.count == 0) continue;
        measured.count += found.count;
        tq::Include(measured.box, run->nStart + static_cast<int>(found.first),
                    run->nStart + static_cast<int>(found.last), run->nRow);
    }
    return measured;
}

}  // namespace

void IPL_FCCLabelingEx(int width, int height, int stride, unsigned char* image,
                       unsigned char* connect, CTQArray<TQ_RECT, TQ_RECT&>* rects,
                       int minimumSize) {
    if (rects == nullptr) return;
    rects->SetSize(0);
    if (width < 1 || height < 1 || stride == 0 || image == nullptr || connect == nullptr) return;
    std::vector<TQ_RECT> boxes;
    {
        tq::RunVector runs;
        tq::LabelRows({connect, width, width, 0, height}, tq::RunPixels::kNonzero, runs);
        const tq::RunsKernels& kernels = tq::SelectKernels(kKernels);
        for (const FCC_RUN& run : runs) {
            if (run.bHead == 0) continue;
            const Measured measured = MeasureUnder(kernels, run, image, stride);
            if (static_cast<int>(measured.count) > minimumSize) boxes.push_back(measured.box);
        }
    }
    boxes = tq::ThinNestedBoxes(boxes);
    tq::Append(*rects, boxes.data(), boxes.size());
}
