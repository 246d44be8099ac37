// Changes of the colour matrix inside a frame, and how much is at stake.

#include <TQIPLBaseLibU.h>

#include <algorithm>

#include "demo/difference.h"
#include "demo/round_trip.h"
#include "demo/sections.h"

namespace tqipl {

namespace {

using Change = void (*)(TQ_COLOR_FORMAT format, int width, int height, int stride,
                        unsigned char* image);

using PackedConversion = void (*)(int width, int height, int srcStride, unsigned char* src,
                                  int dstStride, unsigned char* dst);

struct MatrixStep {
    Change plain;
    Change multiThread;
};

constexpr MatrixStep k601x709{IPL_YUV601x709, IPL_YUV601x709MultiThread};
constexpr MatrixStep k709x601{IPL_YUV709x601, IPL_YUV709x601MultiThread};
constexpr MatrixStep k2020x709{IPL_YUV2020x709, IPL_YUV2020x709MultiThread};
constexpr MatrixStep k709x2020{IPL_YUV709x2020, IPL_YUV709x2020MultiThread};

// A photograph as a YUYV frame that goes through one or two matrix changes and is read as if
// nothing had happened to it.
struct MatrixExhibit {
    const char* id;
    const char* title;
    const char* caption;
    const char* routine;
    PackedConversion toFrame;
    PackedConversion fromFrame;
    MatrixStep first;
    MatrixStep second;  // or none
};

constexpr MatrixExhibit kExhibits[] = {
    {"matrix-601-709",
     "601 against 709",
     "A 601 frame changed to 709 and still read as 601: what the wrong matrix costs.",
     "IPL_YUV601x709[MultiThread]",
     IPL_ARGB2YUYV_601,
     IPL_YUYV2ARGB_601,
     k601x709,
     {}},
    {"matrix-709-601",
     "709 against 601",
     "A 709 frame changed to 601 and still read as 709.",
     "IPL_YUV709x601[MultiThread]",
     IPL_ARGB2YUYV_709,
     IPL_YUYV2ARGB_709,
     k709x601,
     {}},
    {"matrix-709-2020",
     "709 against 2020",
     "A 709 frame changed to 2020 and still read as 709.",
     "IPL_YUV709x2020[MultiThread]",
     IPL_ARGB2YUYV_709,
     IPL_YUYV2ARGB_709,
     k709x2020,
     {}},
    {"matrix-2020-709",
     "2020 against 709",
     "A frame taken for 2020, changed to 709 and still read as it was.",
     "IPL_YUV2020x709[MultiThread]",
     IPL_ARGB2YUYV_709,
     IPL_YUYV2ARGB_709,
     k2020x709,
     {}},
    {"matrix-601-2020", "601 against 2020",
     "A 601 frame changed to 709, then to 2020, and still read as 601.",
     "IPL_YUV601x709[MultiThread], IPL_YUV709x2020[MultiThread]", IPL_ARGB2YUYV_601,
     IPL_YUYV2ARGB_601, k601x709, k709x2020},
    {"matrix-601-709-601", "601 to 709 and back", "What two roundings leave behind.",
     "IPL_YUV601x709[MultiThread], IPL_YUV709x601[MultiThread]", IPL_ARGB2YUYV_601,
     IPL_YUYV2ARGB_601, k601x709, k709x601},
    {"matrix-709-2020-709", "709 to 2020 and back",
     "The two matrices are no inverses of each other.",
     "IPL_YUV709x2020[MultiThread], IPL_YUV2020x709[MultiThread]", IPL_ARGB2YUYV_709,
     IPL_YUYV2ARGB_709, k709x2020, k2020x709},
};

Shown ShowMatrix(const Picture& source, const MatrixExhibit& exhibit) {
    const Size size = WholeGroups(source.size, 2);
    const int stride = size.width * 2;
    std::vector<uint8_t> frame(PixelCount(size) * 2);
    exhibit.toFrame(size.width, size.height, source.Stride(), source.Source(), stride,
                    frame.data());
    const auto form = [&](Change MatrixStep::*which) -> TimedForm {
        return [&, which](unsigned char* result) {
            std::copy(frame.begin(), frame.end(), result);
            return TimeOf([&] {
                for (const MatrixStep& step : {exhibit.first, exhibit.second})
                    if (step.*which != nullptr)
                        (step.*which)(TQ_COLOR_YUYV, size.width, size.height, stride, result);
            });
        };
    };
    Measured measured =
        Measure(frame.size(), form(&MatrixStep::plain), form(&MatrixStep::multiThread));

    Picture before(size, Channels::kColour);
    exhibit.fromFrame(size.width, size.height, stride, frame.data(), before.Stride(),
                      before.bytes.data());
    Picture after(size, Channels::kColour);
    exhibit.fromFrame(size.width, size.height, stride, measured.bytes.data(), after.Stride(),
                      after.bytes.data());
    Shown shown = ShowDifference(before, std::move(after));
    shown.timing = measured.timing;
    return shown;
}

}  // namespace

std::vector<Exhibit> MatrixExhibits(const Sample& sample) {
    const Picture& source = sample.colour;
    if (source.size.width < 2) return {};
    std::vector<Exhibit> exhibits;
    for (const MatrixExhibit& row : kExhibits) {
        Exhibit exhibit;
        exhibit.id = row.id;
        exhibit.title = row.title;
        exhibit.caption = row.caption +
                          std::string(
                              " The difference to the frame before, "
                              "amplified ") +
                          std::to_string(kAmplification) + " times.";
        exhibit.routine = row.routine;
        exhibit.make = [&source, &row] { return ShowMatrix(source, row); };
        exhibits.push_back(exhibit);
    }
    return exhibits;
}

}  // namespace tqipl
