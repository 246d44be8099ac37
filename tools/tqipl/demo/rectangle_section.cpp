// Copies, fills and flips by rectangle.

#include <TQIPLBaseLibU.h>

#include <algorithm>

#include "demo/sections.h"
#include "luminance.h"

namespace tqipl {

namespace {

constexpr unsigned long kFillColour = 0xFF2F6F9F;  // opaque; alpha, red, green, blue

// The middle half of both sides, on whole 4:2:2 pairs.
TQ_RECT MiddleRect(Size size) {
    return {size.width / 8 * 2, size.height / 4, size.width / 8 * 6, size.height * 3 / 4};
}

Shown ShowCopyInside(const Picture& source) {
    return MeasurePicture(source.size, Channels::kColourAlpha,
                          [&source](unsigned char* result) {
                              return TimeOf([&] {
                                  IPL_MemcpyIn(TQ_COLOR_ARGB, source.size.width, source.size.height,
                                               source.Stride(), source.Source(), source.Stride(),
                                               result, MiddleRect(source.size), 1);
                              });
                          },
                          {});
}

Shown ShowCopyOutside(const Picture& source) {
    const Picture grey = ToColour(LuminanceOf(source));
    return MeasurePicture(
        source.size, source.channels,
        [&](unsigned char* result) {
            std::copy(grey.bytes.begin(), grey.bytes.end(), result);
            return TimeOf([&] {
                IPL_MemcpyOut(TQ_COLOR_ARGB, source.size.width, source.size.height, source.Stride(),
                              source.Source(), source.Stride(), result, MiddleRect(source.size), 0);
            });
        },
        {});
}

Shown ShowFillOutside(const Picture& source) {
    return MeasurePicture(source.size, source.channels,
                          [&source](unsigned char* result) {
                              std::copy(source.bytes.begin(), source.bytes.end(), result);
                              TQ_RECT rect = MiddleRect(source.size);
                              return TimeOf([&] {
                                  IPL_FillMemoryOut_C4R(source.size.width, source.size.height,
                                                        source.Stride(), result, rect, kFillColour);
                              });
                          },
                          {});
}

Shown ShowBlackInside(const Picture& source) {
    const Size size{source.size.width & ~1, source.size.height};
    const int stride = size.width * 2;
    std::vector<uint8_t> frame(static_cast<size_t>(stride) * static_cast<size_t>(size.height));
    IPL_ARGB2YUYV_601(size.width, size.height, source.Stride(), source.Source(), stride,
                      frame.data());
    Measured measured = Measure(frame.size(),
                                [&](unsigned char* result) {
                                    std::copy(frame.begin(), frame.end(), result);
                                    TQ_RECT rect = MiddleRect(size);
                                    return TimeOf([&] {
                                        IPL_BlackMemoryIn(TQ_COLOR_YUYV, size.width, size.height,
                                                          stride, result, rect);
                                    });
                                },
                                {});
    Shown shown{Picture(size, Channels::kColour), measured.timing, {}};
    IPL_YUYV2ARGB_601(size.width, size.height, stride, measured.bytes.data(),
                      shown.picture.Stride(), shown.picture.bytes.data());
    return shown;
}

Size PaddedSize(Size size) {
    return {size.width + size.width / 8 * 2, size.height + size.height / 8 * 2};
}

Shown ShowPad(const Picture& source) {
    const Picture plane = LuminanceOf(source);
    const auto width = static_cast<unsigned int>(plane.size.width);
    const auto height = static_cast<unsigned int>(plane.size.height);
    const Size padded = PaddedSize(plane.size);
    const auto form = [&](decltype(&IPL_MemcpyAndPad_C1R) copyAndPad) -> TimedForm {
        return [&, copyAndPad](unsigned char* result) {
            return TimeOf([&] {
                copyAndPad(width, height, width, plane.Source(),
                           static_cast<unsigned int>(padded.width), result, width / 8, height / 8,
                           width / 8, height / 8);
            });
        };
    };
    return MeasurePicture(padded, Channels::kGrey, form(IPL_MemcpyAndPad_C1R),
                          form(IPL_MemcpyAndPadMultiThread_C1R));
}

Shown ShowFlip(const Picture& source) {
    return MeasurePicture(source.size, source.channels,
                          [&source](unsigned char* result) {
                              return TimeOf([&] {
                                  IPL_MemcpyInvert_CR4(source.size.width, source.size.height,
                                                       source.Stride(), source.Source(),
                                                       source.Stride(), result);
                              });
                          },
                          {});
}

Exhibit Make(const Picture& source, const char* id, const char* title, const char* caption,
             const char* routine, Shown (*show)(const Picture&)) {
    Exhibit exhibit;
    exhibit.id = id;
    exhibit.title = title;
    exhibit.caption = caption;
    exhibit.routine = routine;
    exhibit.make = [&source, show] { return show(source); };
    return exhibit;
}

}  // namespace

std::vector<Exhibit> RectangleExhibits(const Sample& sample) {
    const Picture& source = sample.colour;
    std::vector<Exhibit> exhibits{
        Make(source, "copy-inside", "Copy the inside", "The rest is cleared to transparent.",
             "IPL_MemcpyIn", ShowCopyInside),
        Make(source, "copy-outside", "Copy the outside", "Over a grey copy of the photograph.",
             "IPL_MemcpyOut", ShowCopyOutside),
        Make(source, "fill-outside", "Fill the outside", "One 32-bit word for every pixel.",
             "IPL_FillMemoryOut_C4R", ShowFillOutside),
        Make(source, "flip", "Vertical flip", "The last row first.", "IPL_MemcpyInvert_CR4",
             ShowFlip),
    };
    if (source.size.width > 1)
        exhibits.push_back(Make(source, "black-inside", "Black the inside",
                                "Video black in a YUYV frame, read back with the 601 matrix.",
                                "IPL_BlackMemoryIn", ShowBlackInside));
    if (!IsTooLarge(PaddedSize(source.size)))
        exhibits.push_back(Make(source, "copy-and-pad", "Copy and pad",
                                "The luminance plane with an eighth of its edge pixels around.",
                                "IPL_MemcpyAndPad[MultiThread]_C1R", ShowPad));
    return exhibits;
}

}  // namespace tqipl
