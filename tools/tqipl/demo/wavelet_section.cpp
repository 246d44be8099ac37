// The 5/3 wavelet, and frames that are made into fields and back.

#include <TQIPLBaseLibU.h>

#include <algorithm>
#include <cstring>

#include "demo/round_trip.h"
#include "demo/sections.h"
#include "luminance.h"

namespace tqipl {

namespace {

Size EvenSize(Size size) { return {size.width & ~1, size.height & ~1}; }

// The luminance without the last column and row of odd sizes.
Picture EvenLuminance(const Picture& source) {
    const Picture luminance = LuminanceOf(source);
    Picture even(EvenSize(source.size), Channels::kGrey);
    IPL_Memcpy_C1R(even.size.width, even.size.height, luminance.Stride(), luminance.Source(),
                   even.Stride(), even.bytes.data());
    return even;
}

std::vector<int> ToInts(const std::vector<uint8_t>& bytes) {
    std::vector<int> values(bytes.size() / sizeof(int));
    std::memcpy(values.data(), bytes.data(), values.size() * sizeof(int));
    return values;
}

// The low band in grey levels, the others amplified around mid-grey.
uint8_t Visible(int value, bool low) {
    return static_cast<uint8_t>(std::clamp(low ? value / 64 : 128 + value / 8, 0, 255));
}

Shown ShowQuadrants(const Picture& source) {
    Shown shown{EvenLuminance(source), {}, {}};
    Picture& picture = shown.picture;
    const auto [width, height] = picture.size;
    const Measured measured =
        Measure(picture.bytes.size() * sizeof(int),
                [&](unsigned char* result) {
                    return TimeOf([&] {
                        IPL_FwdWavelet_53_C1(picture.size.width, picture.size.height,
                                             picture.Stride(), picture.Source(), picture.size.width,
                                             reinterpret_cast<int*>(result));
                    });
                },
                {});
    const std::vector<int> bands = ToInts(measured.bytes);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const size_t i =
                static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
            picture.bytes[i] = Visible(bands[i], x < width / 2 && y < height / 2);
        }
    shown.timing = measured.timing;
    return shown;
}

Shown ShowBack(const Picture& source) {
    const Picture even = EvenLuminance(source);
    std::vector<int> bands(PixelCount(even.size));
    IPL_FwdWavelet_53_C1(even.size.width, even.size.height, even.Stride(), even.Source(),
                         even.size.width, bands.data());
    Shown shown = MeasurePicture(even.size, Channels::kGrey,
                                 [&](unsigned char* result) {
                                     return TimeOf([&] {
                                         IPL_InvWavelet_53_C1(even.size.width, even.size.height,
                                                              even.size.width, bands.data(),
                                                              even.size.width, result);
                                     });
                                 },
                                 {});
    shown.remark = shown.picture.bytes == even.bytes ? "Every byte came back."
                                                     : "Some bytes did NOT come back.";
    return shown;
}

Shown ShowLowBand(const Picture& source) {
    const Picture luminance = LuminanceOf(source);
    const auto width = static_cast<unsigned int>(luminance.size.width);
    const auto height = static_cast<unsigned int>(luminance.size.height);
    const auto form = [&](decltype(&IPL_WaveletLL_53_C1) lowBand) -> TimedForm {
        return [&, lowBand](unsigned char* result) {
            return TimeOf([&] {
                lowBand(width, height, width, luminance.Source(), width / 2, result, 0, 255);
            });
        };
    };
    return MeasurePicture({luminance.size.width / 2, luminance.size.height / 2}, Channels::kGrey,
                          form(IPL_WaveletLL_53_C1), form(IPL_WaveletLL_53_C1_MultiThread));
}

Shown ShowLowPass(const Picture& source) {
    const Picture luminance = LuminanceOf(source);
    return MeasurePicture(luminance.size, Channels::kGrey,
                          [&](unsigned char* result) {
                              std::copy(luminance.bytes.begin(), luminance.bytes.end(), result);
                              const auto width = static_cast<unsigned int>(luminance.size.width);
                              return TimeOf([&] {
                                  IPL_WaveletFilter_53_C1(
                                      width, static_cast<unsigned int>(luminance.size.height),
                                      width, result);
                              });
                          },
                          {});
}

Shown ShowFrame(const Picture& source) {
    const auto form = [&](decltype(&IPL_P2I_Wavelet53_C4R) soften) -> TimedForm {
        return [&, soften](unsigned char* result) {
            const auto stride = static_cast<unsigned int>(source.Stride());
            return TimeOf([&] {
                soften(static_cast<unsigned int>(source.size.width),
                       static_cast<unsigned int>(source.size.height), stride, source.Source(),
                       stride, result, EVXR_P2I_FRAME);
            });
        };
    };
    return MeasurePicture(source.size, source.channels, form(IPL_P2I_Wavelet53_C4R),
                          form(IPL_P2I_Wavelet53_MultiThread_C4R));
}

Shown ShowField(const Picture& frame, EVXR_P2I_MODE mode) {
    const auto width = static_cast<unsigned int>(frame.size.width);
    const auto form = [&](decltype(&IPL_P2I_Wavelet53_C1R) toField) -> TimedForm {
        return [&, toField](unsigned char* result) {
            return TimeOf([&] {
                toField(width, static_cast<unsigned int>(frame.size.height), width, frame.Source(),
                        width, result, mode);
            });
        };
    };
    return MeasurePicture({frame.size.width, frame.size.height / 2}, Channels::kGrey,
                          form(IPL_P2I_Wavelet53_C1R), form(IPL_P2I_Wavelet53_MultiThread_C1R));
}

Shown ShowTopField(const Picture& source) {
    return ShowField(EvenLuminance(source), EVXR_P2I_TOP_FIELD);
}

Shown ShowBottomField(const Picture& source) {
    return ShowField(EvenLuminance(source), EVXR_P2I_BOTTOM_FIELD);
}

Picture FieldOf(const Picture& frame, EVXR_P2I_MODE mode) {
    Picture field({frame.size.width, frame.size.height / 2}, Channels::kGrey);
    const auto width = static_cast<unsigned int>(frame.size.width);
    IPL_P2I_Wavelet53_C1R(width, static_cast<unsigned int>(frame.size.height), width,
                          frame.Source(), width, field.bytes.data(), mode);
    return field;
}

// One of the two frames that the deinterlacer makes of both fields.
Shown ShowDeinterlaced(const Picture& source, bool second) {
    const Picture frame = EvenLuminance(source);
    const Picture top = FieldOf(frame, EVXR_P2I_TOP_FIELD);
    const Picture bottom = FieldOf(frame, EVXR_P2I_BOTTOM_FIELD);
    const int width = frame.size.width;
    Measured measured =
        Measure(2 * frame.bytes.size(),
                [&](unsigned char* result) {
                    return TimeOf([&] {
                        IPL_Deinterlace_8u_C1R(width, top.size.height, width, top.Source(), width,
                                               bottom.Source(), width, result, width,
                                               result + frame.bytes.size());
                    });
                },
                {});
    Shown shown{Picture(frame.size, Channels::kGrey), measured.timing, {}};
    std::copy_n(measured.bytes.data() + (second ? frame.bytes.size() : 0), frame.bytes.size(),
                shown.picture.bytes.data());
    shown.remark = Decibels(Psnr(frame, shown.picture)) + " against the frame.";
    return shown;
}

Shown ShowFromTop(const Picture& source) { return ShowDeinterlaced(source, false); }

Shown ShowFromBottom(const Picture& source) { return ShowDeinterlaced(source, true); }

struct WaveletExhibit {
    const char* id;
    const char* title;
    const char* caption;
    const char* routine;
    View view;
    Size smallest;
    Shown (*show)(const Picture& source);
};

constexpr WaveletExhibit kExhibits[] = {
    {"wavelet",
     "Four bands",
     "The low band at the top left; beside and below it, around mid-grey, what changes along the "
     "rows and the columns; in the corner what changes along both.",
     "IPL_FwdWavelet_53_C1",
     View::kWhole,
     {2, 2},
     ShowQuadrants},
    {"wavelet-back",
     "And back",
     "The four bands put together again.",
     "IPL_InvWavelet_53_C1",
     View::kWhole,
     {2, 2},
     ShowBack},
    {"wavelet-low",
     "Low band",
     "An image of half the size, without a transform of the whole.",
     "IPL_WaveletLL_53_C1[_MultiThread]",
     View::kDetail,
     {2, 2},
     ShowLowBand},
    {"wavelet-filter",
     "Low-pass",
     "The same taps at full size. Below 16 is 0, and 235 is the most.",
     "IPL_WaveletFilter_53_C1",
     View::kDetail,
     {4, 5},
     ShowLowPass},
    {"p2i-frame",
     "Softened frame",
     "Rows mixed with their neighbours above and below, columns not.",
     "IPL_P2I_Wavelet53[_MultiThread]_C4R",
     View::kDetail,
     {1, 3},
     ShowFrame},
    {"field-top",
     "Top field",
     "The even rows, each with its neighbours mixed in.",
     "IPL_P2I_Wavelet53[_MultiThread]_C1R",
     View::kDetail,
     {2, 4},
     ShowTopField},
    {"field-bottom",
     "Bottom field",
     "The odd rows, likewise.",
     "IPL_P2I_Wavelet53[_MultiThread]_C1R",
     View::kDetail,
     {2, 4},
     ShowBottomField},
    {"deinterlaced-top",
     "Frame of the top field",
     "The rows between are means of its rows.",
     "IPL_Deinterlace_8u_C1R",
     View::kDetail,
     {2, 4},
     ShowFromTop},
    {"deinterlaced-bottom",
     "Frame of the bottom field",
     "The other one that the same call makes.",
     "IPL_Deinterlace_8u_C1R",
     View::kDetail,
     {2, 4},
     ShowFromBottom},
};

}  // namespace

std::vector<Exhibit> WaveletExhibits(const Sample& sample) {
    const Picture& source = sample.colour;
    std::vector<Exhibit> exhibits;
    for (const WaveletExhibit& each : kExhibits) {
        if (source.size.width < each.smallest.width || source.size.height < each.smallest.height)
            continue;
        Exhibit exhibit;
        exhibit.id = each.id;
        exhibit.title = each.title;
        exhibit.caption = each.caption;
        exhibit.routine = each.routine;
        exhibit.view = each.view;
        exhibit.make = [&source, &each] { return each.show(source); };
        exhibits.push_back(exhibit);
    }
    return exhibits;
}

}  // namespace tqipl
