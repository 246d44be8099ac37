// Direct and fast morphology, labelling, denoise and growth.

#include <tqipl/array.h>
#include <tqipl/labelling.h>
#include <tqipl/morph.h>
#include <tqipl/types.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "fuzz_check.h"
#include "reference/labelling_reference.h"
#include "reference/morphology_reference.h"
#include "reference/seed_growth_reference.h"

namespace {

using tqfuzz::Image;
using tqfuzz::Input;
using tqfuzz::Stage;
using tqref::MorphStep;

constexpr MorphStep kErosion = MorphStep::kErosion, kDilation = MorphStep::kDilation;

struct Size {
    int width, height;
};
struct Radii {
    int y, x;
};

// Any bytes, zeros and 255s in halves, rare zeros, rare other values.
void MakeMask(Input& input, Image& image) {
    const uint8_t kind = input.Byte() % 5;
    image.Map([kind](uint8_t byte) -> uint8_t {
        switch (kind) {
            case 0:
                return byte;
            case 1:
                return byte % 2 == 0 ? 0 : 255;
            case 2:
                return byte > 20 && byte < 40 ? 0 : 255;
            case 3:
                return byte > 20 && byte < 40 ? byte : 0;
            default:
                return byte > 20 && byte < 60 ? 255 : 0;
        }
    });
}

// ---- Morphology ---------------------------------------------------------------------------------

using InPlace = void (*)(int, int, int, unsigned char*, int, int);
struct DirectForm {
    const char* name;
    InPlace plain, multiThread;
    std::vector<MorphStep> steps;
};
const DirectForm kDirectForms[] = {
    {"IPL_Erosion", IPL_Erosion, IPL_Erosion_MultiThread, {kErosion}},
    {"IPL_Dilation", IPL_Dilation, IPL_Dilation_MultiThread, {kDilation}},
    {"IPL_Opening", IPL_Opening, IPL_Opening_MultiThread, {kErosion, kDilation}},
    {"IPL_Closing", IPL_Closing, IPL_Closing_MultiThread, {kDilation, kErosion}},
    {"IPL_DeNoise",
     IPL_DeNoise,
     IPL_DeNoise_MultiThread,
     {kErosion, kDilation, kDilation, kErosion}}};

void CheckDirect(Input& input, const DirectForm& form) {
    const Size size = {input.Int(-2, 70), input.Int(-2, 24)};
    const Radii radii = {input.WildInt(-2, 12), input.WildInt(-2, 20)};
    Stage stage(input);
    Image& image = stage.Add(size.width, size.height);
    MakeMask(input, image);
    stage.Expect([&] {
        for (MorphStep step : form.steps)
            tqref::DirectMorph(step, size.width, size.height, image.Stride(), image.Model(),
                               radii.y, radii.x);
    });
    for (InPlace function : {form.plain, form.multiThread})
        stage.Check(form.name, size.width, size.height, [&] {
            function(size.width, size.height, image.Stride(), image.Data(), radii.y, radii.x);
        });
}

// The fast forms with the radii of both steps, of which most have one.
struct FastForm {
    const char* name;
    void (*plain)(Size, int, uint8_t*, Radii, Radii);
    void (*multiThread)(Size, int, uint8_t*, Radii, Radii);
    void (*twoImages)(Size, int, uint8_t*, int, uint8_t*, Radii, Radii);  // or null
    std::vector<MorphStep> steps;
    bool secondRadii;
};
template <InPlace form> void OneRadius(Size s, int stride, uint8_t* image, Radii r, Radii) {
    form(s.width, s.height, stride, image, r.y, r.x);
}
template <void (*form)(int, int, int, unsigned char*, int, int, int, int)>
void TwoRadii(Size s, int stride, uint8_t* image, Radii r, Radii second) {
    form(s.width, s.height, stride, image, r.y, r.x, second.y, second.x);
}
template <void (*form)(int, int, int, unsigned char*, int, unsigned char*, int, int)>
void Between(Size s, int srcStride, uint8_t* src, int dstStride, uint8_t* dst, Radii r, Radii) {
    form(s.width, s.height, srcStride, src, dstStride, dst, r.y, r.x);
}
template <void (*form)(int, int, int, unsigned char*, int, unsigned char*, int, int, int, int)>
void BetweenTwoRadii(Size s, int srcStride, uint8_t* src, int dstStride, uint8_t* dst, Radii r,
                     Radii second) {
    form(s.width, s.height, srcStride, src, dstStride, dst, r.y, r.x, second.y, second.x);
}
const FastForm kFastForms[] = {{"IPL_FErosion",
                                OneRadius<IPL_FErosion>,
                                OneRadius<IPL_FErosion_MultiThread>,
                                Between<IPL_FErosion_MultiThread>,
                                {kErosion},
                                false},
                               {"IPL_FDilation",
                                OneRadius<IPL_FDilation>,
                                OneRadius<IPL_FDilation_MultiThread>,
                                Between<IPL_FDilation_MultiThread>,
                                {kDilation},
                                false},
                               {"IPL_FOpening",
                                TwoRadii<IPL_FOpening>,
                                TwoRadii<IPL_FOpening_MultiThread>,
                                BetweenTwoRadii<IPL_FOpening_MultiThread>,
                                {kErosion, kDilation},
                                true},
                               {"IPL_FClosing",
                                TwoRadii<IPL_FClosing>,
                                TwoRadii<IPL_FClosing_MultiThread>,
                                BetweenTwoRadii<IPL_FClosing_MultiThread>,
                                {kDilation, kErosion},
                                true},
                               {"IPL_FDeNoise",
                                OneRadius<IPL_FDeNoise>,
                                OneRadius<IPL_FDeNoise_MultiThread>,
                                nullptr,
                                {kErosion, kDilation, kDilation, kErosion},
                                false}};

void CheckFast(Input& input, const FastForm& form) {
    const Size size = {input.Int(-2, 70), input.Int(-2, 40)};
    const Radii first = {input.WildInt(-2, 12), input.WildInt(-2, 20)};
    const Radii second = {input.WildInt(-2, 12), input.WildInt(-2, 20)};
    const bool between = input.Flag() && form.twoImages != nullptr;
    Stage stage(input);
    Image& src = stage.Add(size.width, size.height);
    Image& dst = between ? stage.Add(size.width, size.height) : src;
    MakeMask(input, src);
    const auto expect = [&](int processors) {
        stage.Expect([&] {
            if (size.width < 1 || size.height < 1) return;
            for (size_t i = 0; i < form.steps.size(); ++i) {
                const Radii r = i == 1 && form.secondRadii ? second : first;
                if (i == 0 && between)
                    tqref::FastMorph(form.steps[i], processors, size.width, size.height,
                                     src.Stride(), src.Model(), dst.Stride(), dst.Model(), r.y,
                                     r.x);
                else
                    tqref::FastMorphInPlace(form.steps[i], processors, size.width, size.height,
                                            dst.Stride(), dst.Model(), r.y, r.x);
            }
        });
    };
    expect(static_cast<int>(g_IPLProcessorCount));
    stage.Check(form.name, size.width, size.height, [&] {
        if (between)
            form.twoImages(size, src.Stride(), src.Data(), dst.Stride(), dst.Data(), first, second);
        else
            form.multiThread(size, src.Stride(), src.Data(), first, second);
    });
    if (between) return;
    expect(1);
    stage.Check(form.name, size.width, size.height,
                [&] { form.plain(size, src.Stride(), src.Data(), first, second); });
}

// ---- Labelling ----------------------------------------------------------------------------------

using RectArray = CTQArray<TQ_RECT, TQ_RECT&>;

void RequireRects(RectArray& actual, const std::vector<TQ_RECT>& expected) {
    tqfuzz::Require(actual.GetSize() == static_cast<int64_t>(expected.size()) &&
                        (expected.empty() || std::memcmp(actual.m_pData, expected.data(),
                                                         expected.size() * sizeof(TQ_RECT)) == 0),
                    "other rectangles are listed");
}

tqref::Mask View(Size size, Image& image) {
    return {size.width, size.height, image.Stride(), image.Model()};
}

void CheckLabelling(Input& input) {
    const Size size = {input.Int(-2, 40), input.Int(-2, 40)};
    const int minimum = input.WildInt(-2, 40);
    const int processors = static_cast<int>(g_IPLProcessorCount);
    Stage stage(input);
    Image& image = stage.Add(size.width, size.height);
    MakeMask(input, image);
    // A stride of 0 lists nothing either.
    const bool empty = size.width < 1 || size.height < 1 || image.Stride() == 0;
    std::vector<TQ_RECT> expected;
    const auto check = [&](const char* name, auto form) {
        stage.Check(name, size.width, size.height, [&] {
            RectArray rects;
            form(size.width, size.height, image.Stride(), image.Data(), &rects, minimum);
            RequireRects(rects, expected);
        });
    };
    stage.Expect([&] {
        if (!empty) expected = tqref::Label(View(size, image), minimum);
    });
    check("IPL_FCCLabeling", IPL_FCCLabeling);
    check("IPL_FCCLabeling2", IPL_FCCLabeling2);
    stage.Expect([&] {
        expected.clear();
        if (!empty && processors > 1)
            expected = tqref::LabelInBands(View(size, image), minimum, processors);
    });
    check("IPL_FCCLabeling_MultiThread", IPL_FCCLabeling_MultiThread);
}

// The rows of connect lie width bytes apart.
void CheckLabellingEx(Input& input) {
    const Size size = {input.Int(1, 40), input.Int(1, 24)};
    const int minimum = input.WildInt(-2, 40);
    Stage stage(input);
    Image& image = stage.Add(size.width, size.height);
    Image& connect = stage.Add(size.width * size.height, 1);
    MakeMask(input, image);
    MakeMask(input, connect);
    std::vector<TQ_RECT> expected;
    stage.Expect([&] {
        expected = tqref::LabelUnder(
            View(size, image), {size.width, size.height, size.width, connect.Model()}, minimum);
    });
    stage.Check("IPL_FCCLabelingEx", size.width, size.height, [&] {
        RectArray rects;
        IPL_FCCLabelingEx(size.width, size.height, image.Stride(), image.Data(), connect.Data(),
                          &rects, minimum);
        RequireRects(rects, expected);
    });
}

void CheckDenoise(Input& input) {
    const Size size = {input.Int(0, 40), input.Int(0, 40)};
    const auto threshold = static_cast<unsigned>(input.WildInt(0, 60));
    const auto width = static_cast<unsigned>(size.width),
               height = static_cast<unsigned>(size.height);
    Stage stage(input);
    Image& image = stage.Add(size.width, size.height, {.bottomUp = false});
    MakeMask(input, image);
    const auto stride = static_cast<unsigned>(image.Stride());
    stage.Expect([&] {
        const auto signedThreshold = static_cast<int>(threshold);
        if (signedThreshold > 0)
            tqref::FloodFillSmall(View(size, image), tqref::RegionsOf::kNonzero, signedThreshold,
                                  0);
    });
    stage.Check("IPL_FCCLabelingDeNoise", size.width, size.height, [&] {
        IPL_FCCLabelingDeNoise(size.width, size.height, image.Stride(), image.Data(),
                               static_cast<int>(threshold));
    });
    const auto expect = [&](bool changes) {
        stage.Expect([&] {
            if (changes)
                tqref::FloodFillSmall(View(size, image), tqref::RegionsOf::kZero, threshold, 255);
        });
    };
    const auto check = [&](const char* name, auto form) {
        stage.Check(name, size.width, size.height,
                    [&] { form(width, height, stride, image.Data(), threshold); });
    };
    expect(true);
    check("IPL_FCCLabelingDeNoiseEx", IPL_FCCLabelingDeNoiseEx);
    check("IPL_FCCLabelingDeNoiseEx2", IPL_FCCLabelingDeNoiseEx2);
    expect(g_IPLProcessorCount > 1);
    check("IPL_FCCLabelingDeNoiseEx_MultiThread", IPL_FCCLabelingDeNoiseEx_MultiThread);
    check("IPL_FCCLabelingDeNoiseEx2_MultiThread", IPL_FCCLabelingDeNoiseEx2_MultiThread);
}

void CheckGrowth(Input& input) {
    const Size size = {input.Int(0, 40), input.Int(0, 40)};
    const auto threshold = static_cast<unsigned>(input.WildInt(0, 60));
    Stage stage(input);
    Image& guide = stage.Add(size.width, size.height, {.bottomUp = false});
    Image& mask = stage.Add(size.width, size.height, {.bottomUp = false});
    MakeMask(input, guide);
    MakeMask(input, mask);
    const auto check = [&](const char* name, auto form, auto reference, bool changes) {
        stage.Expect([&] {
            if (changes) reference(View(size, guide), View(size, mask), threshold);
        });
        stage.Check(name, size.width, size.height, [&] {
            form(size.width, size.height, guide.Stride(), guide.Data(), mask.Stride(), mask.Data(),
                 threshold);
        });
    };
    check("IPL_FCCDeNoiseAndGrowth", IPL_FCCDeNoiseAndGrowth, tqref::KeepConfirmed, true);
    check("IPL_FCCDeNoiseAndGrowth2", IPL_FCCDeNoiseAndGrowth2, tqref::FillSmallAndGrow, true);
    check("IPL_FCCDeNoiseAndGrowth2_MultiThread", IPL_FCCDeNoiseAndGrowth2_MultiThread,
          tqref::FillSmallAndGrow, g_IPLProcessorCount > 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    tqfuzz::UseMachine(input);
    switch (input.Byte() % 6) {
        case 0:
            CheckDirect(input, input.Pick(kDirectForms));
            break;
        case 1:
            CheckFast(input, input.Pick(kFastForms));
            break;
        case 2:
            CheckLabelling(input);
            break;
        case 3:
            CheckLabellingEx(input);
            break;
        case 4:
            CheckDenoise(input);
            break;
        default:
            CheckGrowth(input);
    }
    return 0;
}
