// Operations on colours and formats.

#include <TQIPLBaseLibU.h>

#include <algorithm>
#include <cmath>

#include "host_error.h"
#include "matrix_change.h"
#include "video/frame_conversion.h"
#include "video/operations.h"

namespace tqipl {

namespace {

constexpr FrameFormat kYuvOfBytes[] = {FrameFormat::kYuvp422, FrameFormat::kYuyv,
                                       FrameFormat::kUyvy, FrameFormat::kYuvp444};
constexpr FrameFormat kWithLuma[] = {FrameFormat::kYuvp422, FrameFormat::kYuvp444,
                                     FrameFormat::kGray8};
constexpr FrameFormat kYuyvOrArgb[] = {FrameFormat::kYuyv, FrameFormat::kArgb};

OperationPointer MakeFormat(Arguments& arguments, Stream& stream) {
    const std::string name = arguments.Text("the format");
    const FrameKind* kind = FindFrameKind(name);
    if (kind == nullptr)
        throw UsageError("format: unknown format '" + name + "'; known are: " + FrameKindNames());
    return ConvertTo(kind->format, stream);
}

OperationPointer MakeMatrix(Arguments& arguments, Stream& stream) {
    const std::string text = arguments.Text("the change");
    const size_t dash = text.find('-');
    if (dash == std::string::npos) arguments.Fail("'" + text + "' is no change of matrix");
    const MatrixChange& change = FindMatrixChange(text.substr(0, dash), text.substr(dash + 1));
    if (!stream.matrix.empty() && stream.matrix != change.from)
        throw UsageError("matrix=" + text + ": the frames have the matrix " + stream.matrix +
                         " here");
    CheckStudioRange("matrix", stream);
    stream.matrix = change.to;
    const Size size = stream.size;
    if (stream.format == FrameFormat::kYuvp444)
        return ForEachFrame([&change, size, packed = Frame()](Frame& frame) mutable {
            packed.Fit(FrameFormat::kArgb, size);
            PackVuyt(size, frame.bytes.data(), packed.bytes.data());
            ChangeMatrix(change, FindRawFormat("vuyt"), size, packed.bytes.data());
            UnpackVuyt(size, packed.bytes.data(), frame.bytes.data());
        });
    return ForEachFrame([&change, size, &raw = FindRawFormat(NameOf(stream))](Frame& frame) {
        ChangeMatrix(change, raw, size, frame.bytes.data());
    });
}

OperationPointer MakeLuma(Arguments&, Stream& stream) {
    return ConvertTo(FrameFormat::kGray8, stream);
}

OperationPointer MakeGrey(Arguments&, Stream& stream) {
    return ForEachFrame([planes = PlanesOf(stream.format, stream.size)](Frame& frame) {
        for (const PlaneShape& plane : planes)
            if (plane.offset != 0)
                IPL_FillMemory_C1R(plane.width, plane.height, plane.rowBytes,
                                   frame.bytes.data() + plane.offset, 128);
    });
}

struct HsvChange {
    float hue;  // in degrees, added
    float saturation;
    float value;

    float Hue(float h) const {
        const float turned = std::fmod(h + hue, 360.0f);
        const float positive = turned < 0 ? turned + 360.0f : turned;
        return positive < 360.0f ? positive : 0.0f;
    }
    float Saturation(float s) const { return std::clamp(s * saturation, 0.0f, 1.0f); }
    float Value(float v, float most) const { return std::clamp(v * value, 0.0f, most); }
};

// Three planes of floats, of which value goes up to `most`.
void ChangeHsv(const HsvChange& change, float most, size_t pixels, float* planes) {
    for (size_t i = 0; i < pixels; ++i) {
        planes[i] = change.Hue(planes[i]);
        planes[pixels + i] = change.Saturation(planes[pixels + i]);
        planes[2 * pixels + i] = change.Value(planes[2 * pixels + i], most);
    }
}

OperationPointer MakeHsv(Arguments& arguments, Stream& stream) {
    HsvChange change{};
    change.hue = static_cast<float>(arguments.Real("the hue", -360, 360));
    change.saturation = static_cast<float>(arguments.Real("the saturation", 0, 16));
    change.value = static_cast<float>(arguments.Real("the value", 0, 16));
    const Size size = stream.size;
    const size_t pixels = static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
    if (stream.format == FrameFormat::kArgb)
        return ForEachFrame([=, planes = std::vector<float>(pixels * 3)](Frame& frame) mutable {
            float* h = planes.data();
            float* s = h + pixels;
            float* v = s + pixels;
            IPL_BGRA2HSV_MultiThread(size.width, size.height, size.width * 4, frame.bytes.data(),
                                     size.width, h, size.width, s, size.width, v);
            ChangeHsv(change, 1, pixels, h);
            IPL_HSV2BGRA_MultiThread(size.width, size.height, size.width, h, size.width, s,
                                     size.width, v, size.width * 4, frame.bytes.data());
        });
    const bool is601 = MatrixFor("hsv", stream) == "601";
    const auto toHsv = is601 ? IPL_YUYV2HSVP_601_MultiThread : IPL_YUYV2HSVP_709_MultiThread;
    const auto fromHsv = is601 ? IPL_HSVP2YUYV_601_MultiThread : IPL_HSVP2YUYV_709_MultiThread;
    return ForEachFrame([=, planes = std::vector<float>(pixels * 3)](Frame& frame) mutable {
        toHsv(size.width, size.height, size.width * 2, frame.bytes.data(), planes.data());
        ChangeHsv(change, 255, pixels, planes.data());
        fromHsv(size.width, size.height, planes.data(), size.width * 2, frame.bytes.data());
    });
}

constexpr OperationKind kOperations[] = {
    {"format=NAME", "to another format, also with loss", MaskRule::kLeaves, {}, MakeFormat},
    {"matrix=FROM-TO", "another colour matrix: 601-709, 709-601, 2020-709 or 709-2020",
     MaskRule::kLeaves, kYuvOfBytes, MakeMatrix},
    {"luma", "luma alone, as gray8", MaskRule::kLeaves, {}, MakeLuma},
    {"grey", "neutral chroma, the format stays", MaskRule::kLeaves, kWithLuma, MakeGrey},
    {"hsv=HUE:SATURATION:VALUE",
     "hue turned by so many degrees, saturation and value times a factor", MaskRule::kLeaves,
     kYuyvOrArgb, MakeHsv},
};

}  // namespace

std::span<const OperationKind> ColourOperations() { return kOperations; }

}  // namespace tqipl
