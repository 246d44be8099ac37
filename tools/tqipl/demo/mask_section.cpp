// Masks: a photograph in black and white, smoothed, cleaned, labelled and grown.

#include <TQIPLBaseLibU.h>

#include <algorithm>
#include <array>

#include "demo/round_trip.h"
#include "demo/sections.h"
#include "luminance.h"
#include "machine.h"
#include "text.h"

namespace tqipl {

namespace {

constexpr int kRadius = 2;

// The grey level that parts dark from bright with the largest variance between the two.
int OtsuLevel(const Picture& luminance) {
    std::array<int64_t, 256> counts{};
    for (const uint8_t value : luminance.bytes) ++counts[value];
    int64_t pixels = 0;
    int64_t sum = 0;
    for (int64_t value = 0; value < 256; ++value) {
        pixels += counts[static_cast<size_t>(value)];
        sum += value * counts[static_cast<size_t>(value)];
    }
    int64_t darkPixels = 0;
    int64_t darkSum = 0;
    int best = 0;
    double largest = -1;
    for (int value = 0; value < 256; ++value) {
        darkPixels += counts[static_cast<size_t>(value)];
        darkSum += value * counts[static_cast<size_t>(value)];
        const int64_t brightPixels = pixels - darkPixels;
        if (darkPixels == 0 || brightPixels == 0) continue;
        const double distance =
            static_cast<double>(sum - darkSum) / static_cast<double>(brightPixels) -
            static_cast<double>(darkSum) / static_cast<double>(darkPixels);
        const double variance = static_cast<double>(darkPixels) *
                                static_cast<double>(brightPixels) * distance * distance;
        if (variance > largest) {
            largest = variance;
            best = value;
        }
    }
    return best;
}

// 255 where the luminance is above the level, else 0.
Picture Threshold(Picture luminance, int level) {
    for (uint8_t& value : luminance.bytes) value = value > level ? 255 : 0;
    return luminance;
}

Picture MaskOf(const Picture& source) {
    const Picture luminance = LuminanceOf(source);
    return Threshold(luminance, OtsuLevel(luminance));
}

std::string Percent(size_t part, size_t whole) {
    const size_t thousandths = part * 1000 / std::max<size_t>(whole, 1);
    return std::to_string(thousandths / 10) + "." + std::to_string(thousandths % 10) + " %";
}

Shown ShowMask(const Picture& source) {
    Shown shown;
    shown.timing.byHost = true;
    int level = 0;
    shown.timing.plainMs = TimeOf([&] {
        const Picture luminance = LuminanceOf(source);
        level = OtsuLevel(luminance);
        shown.picture = Threshold(luminance, level);
    });
    const std::vector<uint8_t>& mask = shown.picture.bytes;
    const auto set = static_cast<size_t>(std::count(mask.begin(), mask.end(), 255));
    shown.remark = "The level is " + std::to_string(level) + "; " + Percent(set, mask.size()) +
                   " of the pixels are white.";
    return shown;
}

// change(mask) works in place.
template <class Change> TimedForm InPlace(const Picture& mask, Change change) {
    return [&mask, change](unsigned char* result) {
        std::copy(mask.bytes.begin(), mask.bytes.end(), result);
        return TimeOf([&] { change(mask.size, result); });
    };
}

// Runs the second form only where the contract says that it gives the bytes of the first.
template <class Plain, class MultiThread>
Shown ShowInPlace(const Picture& mask, Plain plain, MultiThread multiThread,
                  const char* notCompared) {
    Shown shown = MeasurePicture(mask.size, Channels::kGrey, InPlace(mask, plain),
                                 notCompared == nullptr ? InPlace(mask, multiThread) : TimedForm());
    shown.timing.notCompared = notCompared;
    return shown;
}

// Bands of few rows see less than the plain form.
const char* WhyMorphologyDiffers(Size size) {
    const int rows = size.height / static_cast<int>(Processors());
    return rows > 0 && rows <= kRadius ? "MultiThread bands are too thin here" : nullptr;
}

const char* WhyLabellingDiffers() {
    return Processors() < 2 ? "MultiThread needs two processors" : nullptr;
}

using TwoSteps = void (*)(int width, int height, int stride, unsigned char* image, int radiusY1,
                          int radiusX1, int radiusY2, int radiusX2);

Shown ShowTwoSteps(const Picture& source, TwoSteps plain, TwoSteps multiThread) {
    const Picture mask = MaskOf(source);
    const auto on = [](TwoSteps form) {
        return [form](Size size, unsigned char* image) {
            form(size.width, size.height, size.width, image, kRadius, kRadius, kRadius, kRadius);
        };
    };
    return ShowInPlace(mask, on(plain), on(multiThread), WhyMorphologyDiffers(mask.size));
}

Shown ShowOpened(const Picture& source) {
    return ShowTwoSteps(source, IPL_FOpening, IPL_FOpening_MultiThread);
}

Shown ShowClosed(const Picture& source) {
    return ShowTwoSteps(source, IPL_FClosing, IPL_FClosing_MultiThread);
}

Shown ShowDirect(const Picture& source) {
    const auto on = [](auto form) {
        return [form](Size size, unsigned char* image) {
            form(size.width, size.height, size.width, image, kRadius, kRadius);
        };
    };
    return ShowInPlace(MaskOf(source), on(IPL_DeNoise), on(IPL_DeNoise_MultiThread), nullptr);
}

// What counts as small.
int SmallRegion(Size size) { return std::max(static_cast<int>(PixelCount(size) / 2000), 1); }

Shown ShowWithoutSpecks(const Picture& source) {
    const Picture mask = MaskOf(source);
    Shown shown =
        MeasurePicture(mask.size, Channels::kGrey,
                       InPlace(mask,
                               [](Size size, unsigned char* image) {
                                   IPL_FCCLabelingDeNoise(size.width, size.height, size.width,
                                                          image, SmallRegion(size));
                               }),
                       {});
    shown.remark = "Up to " +
                   Count(static_cast<size_t>(SmallRegion(mask.size)), "pixel", "pixels") +
                   " are small.";
    return shown;
}

Shown ShowWithoutHoles(const Picture& source) {
    const Picture mask = MaskOf(source);
    const auto on = [](auto form) {
        return [form](Size size, unsigned char* image) {
            const auto width = static_cast<unsigned int>(size.width);
            form(width, static_cast<unsigned int>(size.height), width, image,
                 static_cast<unsigned int>(SmallRegion(size)));
        };
    };
    return ShowInPlace(mask, on(IPL_FCCLabelingDeNoiseEx2),
                       on(IPL_FCCLabelingDeNoiseEx2_MultiThread), WhyLabellingDiffers());
}

// The outline of a rectangle whose last column and row belong to it.
void Outline(Size size, unsigned char* picture, const TQ_RECT& box) {
    constexpr unsigned long kColour = 0xFFFF2F9A;  // alpha, red, green, blue
    const int line = std::max(std::max(size.width, size.height) / 250, 1);
    const int right = box.right + 1;
    const int bottom = box.bottom + 1;
    TQ_RECT sides[] = {{box.left, box.top, right, box.top + line},
                       {box.left, bottom - line, right, bottom},
                       {box.left, box.top, box.left + line, bottom},
                       {right - line, box.top, right, bottom}};
    for (TQ_RECT& side : sides)
        IPL_FillMemoryIn_C4R(size.width, size.height, size.width * 4, picture, side, kColour);
}

// The result is the photograph with the rectangles, and behind it the mask without small regions.
TimedForm LabelForm(const Picture& source, const Picture& mask, decltype(&IPL_FCCLabeling) label,
                    int64_t* regions) {
    return [&source, &mask, label, regions](unsigned char* result) {
        const Size size = mask.size;
        std::copy(source.bytes.begin(), source.bytes.end(), result);
        unsigned char* cleaned = result + source.bytes.size();
        std::copy(mask.bytes.begin(), mask.bytes.end(), cleaned);
        CTQArray<TQ_RECT, TQ_RECT&> boxes;
        const double ms = TimeOf([&] {
            label(size.width, size.height, size.width, cleaned, &boxes, SmallRegion(size));
        });
        *regions = boxes.GetSize();
        for (int64_t i = 0; i < boxes.GetSize(); ++i) Outline(size, result, boxes.GetAt(i));
        return ms;
    };
}

Shown ShowRegions(const Picture& source) {
    const Picture mask = MaskOf(source);
    int64_t regions = 0;
    Measured measured = Measure(source.bytes.size() + mask.bytes.size(),
                                LabelForm(source, mask, IPL_FCCLabeling, &regions),
                                WhyLabellingDiffers() == nullptr
                                    ? LabelForm(source, mask, IPL_FCCLabeling_MultiThread, &regions)
                                    : TimedForm());
    measured.bytes.resize(source.bytes.size());
    Shown shown{source, measured.timing, {}};
    shown.picture.bytes = std::move(measured.bytes);
    shown.timing.notCompared = WhyLabellingDiffers();
    shown.remark = Count(static_cast<size_t>(regions), "region.", "regions.");
    return shown;
}

struct GrownColour {
    uint8_t blue, green, red;
};
constexpr GrownColour kSeedColour = {40, 32, 28};
constexpr GrownColour kGrownColour = {104, 122, 31};
constexpr GrownColour kNotReached = {205, 205, 205};
constexpr GrownColour kOutsideGuide = {255, 255, 255};

// Zero bytes are what matters in the mask and in the guide: the darkest parts, and the dark ones.
Shown ShowGrown(const Picture& source) {
    const Picture luminance = LuminanceOf(source);
    const int level = OtsuLevel(luminance);
    const Picture guide = Threshold(luminance, level);
    const Picture seeds = Threshold(luminance, level / 3);
    const auto on = [&guide](auto form) {
        return [&guide, form](Size size, unsigned char* image) {
            const auto width = static_cast<unsigned int>(size.width);
            form(width, static_cast<unsigned int>(size.height), width, guide.Source(), width, image,
                 static_cast<unsigned int>(SmallRegion(size)));
        };
    };
    Shown shown = ShowInPlace(seeds, on(IPL_FCCDeNoiseAndGrowth2),
                              on(IPL_FCCDeNoiseAndGrowth2_MultiThread), WhyLabellingDiffers());
    const Picture grown = std::move(shown.picture);
    shown.picture = Picture(source.size, Channels::kColour);
    for (size_t i = 0; i < grown.bytes.size(); ++i) {
        const GrownColour& colour = grown.bytes[i] == 0
                                        ? seeds.bytes[i] == 0 ? kSeedColour : kGrownColour
                                    : guide.bytes[i] == 0 ? kNotReached
                                                          : kOutsideGuide;
        uint8_t* pixel = &shown.picture.bytes[i * 4];
        pixel[0] = colour.blue;
        pixel[1] = colour.green;
        pixel[2] = colour.red;
        pixel[3] = 255;
    }
    return shown;
}

struct MaskExhibit {
    const char* id;
    const char* title;
    const char* caption;
    const char* routine;
    Shown (*show)(const Picture& source);
};

constexpr MaskExhibit kExhibits[] = {
    {"mask", "Threshold", "White is what is brighter than the level that Otsu's method finds.", "",
     ShowMask},
    {"mask-opened", "Opened",
     "Eroded and dilated by two pixels: white lines and specks go, the rest keeps its shape.",
     "IPL_FOpening[_MultiThread]", ShowOpened},
    {"mask-closed", "Closed", "Dilated and eroded: black lines and specks go.",
     "IPL_FClosing[_MultiThread]", ShowClosed},
    {"mask-denoised", "Opened and closed, direct forms",
     "The direct forms clear a margin of two pixels around the image at each step.",
     "IPL_DeNoise[_MultiThread]", ShowDirect},
    {"mask-no-specks", "Without specks", "Small white regions turned black.",
     "IPL_FCCLabelingDeNoise", ShowWithoutSpecks},
    {"mask-no-holes", "Without holes", "Black regions as small turned white.",
     "IPL_FCCLabelingDeNoiseEx2[_MultiThread]", ShowWithoutHoles},
    {"mask-regions", "Regions", "The boxes of the white regions that are not small.",
     "IPL_FCCLabeling[_MultiThread]", ShowRegions},
    {"mask-grown", "Grown under a guide",
     "Black: the darkest parts, without small ones. Green: what they grew to within everything "
     "below the level. Grey: below the level, but not connected.",
     "IPL_FCCDeNoiseAndGrowth2[_MultiThread]", ShowGrown},
};

}  // namespace

std::vector<Exhibit> MaskExhibits(const Sample& sample) {
    std::vector<Exhibit> exhibits;
    for (const MaskExhibit& each : kExhibits) {
        Exhibit exhibit;
        exhibit.id = each.id;
        exhibit.title = each.title;
        exhibit.caption = each.caption;
        exhibit.routine = each.routine;
        exhibit.make = [&source = sample.colour, &each] { return each.show(source); };
        exhibits.push_back(exhibit);
    }
    return exhibits;
}

}  // namespace tqipl
