// Erosion and dilation of masks, in place. The radius stands behind the name: the time does not
// depend on it.

#include <tqipl/morph.h>

#include <string>
#include <utility>
#include <vector>

#include "bench/families.h"
#include "bench/support/rows.h"
#include "frame/module.h"
#include "reference/morphology_reference.h"

namespace tqbench {

namespace {

using tqref::MorphStep;

using OneStep = void (*)(int, int, int, unsigned char*, int radiusY, int radiusX);
using TwoSteps = void (*)(int, int, int, unsigned char*, int, int, int, int);

// The picture's bright half.
void FillMask(uint8_t* dst) {
    for (int64_t i = 0; i < kFrameRoom; ++i) dst[i] = GetFrames().picture[i] > 127 ? 255 : 0;
}

void Add(const std::string& name, int radius, Size size, Call plain, Call multiThread,
         Call reference, Call multiThreadReference) {
    const std::string suffix = ":r" + std::to_string(radius);
    AddForm({.name = name + suffix,
             .multiThreadName = name + "_MultiThread" + suffix,
             .size = ToString(size),
             .srcSize = size,
             .dstSize = size,
             .srcBytes = size.Pixels(),
             .dstBytes = size.Pixels(),
             .hasKernels = true,
             .plain = std::move(plain),
             .multiThread = std::move(multiThread),
             .reference = std::move(reference),
             .multiThreadReference = std::move(multiThreadReference),
             .fill = FillMask});
}

Call OnOneStep(OneStep form, Size size, int radius) {
    return [=](uint8_t*, uint8_t* dst) {
        form(size.width, size.height, size.width, dst, radius, radius);
    };
}

Call OnTwoSteps(TwoSteps form, Size size, int radius) {
    return [=](uint8_t*, uint8_t* dst) {
        form(size.width, size.height, size.width, dst, radius, radius, radius, radius);
    };
}

// The same for any number of processors, unless bands are too thin for their radius.
Call FastReference(std::vector<MorphStep> steps, Size size, int radius, bool inBands) {
    return [=](uint8_t*, uint8_t* dst) {
        for (const MorphStep step : steps)
            tqref::FastMorphInPlace(step, inBands ? static_cast<int>(g_IPLProcessorCount) : 1,
                                    size.width, size.height, size.width, dst, radius, radius);
    };
}

void AddFast(const char* name, OneStep plain, OneStep multiThread, MorphStep step, Size size,
             int radius) {
    Add(name, radius, size, OnOneStep(plain, size, radius), OnOneStep(multiThread, size, radius),
        FastReference({step}, size, radius, false), FastReference({step}, size, radius, true));
}

void AddFast(const char* name, TwoSteps plain, TwoSteps multiThread, MorphStep first,
             MorphStep second, Size size, int radius) {
    Add(name, radius, size, OnTwoSteps(plain, size, radius), OnTwoSteps(multiThread, size, radius),
        FastReference({first, second}, size, radius, false),
        FastReference({first, second}, size, radius, true));
}

void AddDirect(const char* name, OneStep plain, OneStep multiThread, MorphStep step, Size size,
               int radius) {
    Add(name, radius, size, OnOneStep(plain, size, radius), OnOneStep(multiThread, size, radius),
        [=](uint8_t*, uint8_t* dst) {
            tqref::DirectMorph(step, size.width, size.height, size.width, dst, radius, radius);
        },
        {});
}

}  // namespace

void AddMorph() {
    for (const Size size : kSizes) {
        for (const int radius : {1, 5, 25, 100}) {
            AddFast("IPL_FErosion", IPL_FErosion, IPL_FErosion_MultiThread, MorphStep::kErosion,
                    size, radius);
            AddFast("IPL_FDilation", IPL_FDilation, IPL_FDilation_MultiThread, MorphStep::kDilation,
                    size, radius);
            AddDirect("IPL_Erosion", IPL_Erosion, IPL_Erosion_MultiThread, MorphStep::kErosion,
                      size, radius);
            AddDirect("IPL_Dilation", IPL_Dilation, IPL_Dilation_MultiThread, MorphStep::kDilation,
                      size, radius);
        }
        AddFast("IPL_FOpening", IPL_FOpening, IPL_FOpening_MultiThread, MorphStep::kErosion,
                MorphStep::kDilation, size, 5);
        AddFast("IPL_FClosing", IPL_FClosing, IPL_FClosing_MultiThread, MorphStep::kDilation,
                MorphStep::kErosion, size, 5);
    }
}

}  // namespace tqbench
