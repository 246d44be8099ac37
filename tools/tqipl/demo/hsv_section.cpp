// Round trips through hue, saturation and value, in floats and in bytes.

#include <TQIPLBaseLibU.h>

#include <algorithm>

#include "demo/round_trip.h"
#include "demo/sections.h"

namespace tqipl {

namespace {

// Hue, saturation and value, one plane behind the other.
struct FloatPlanes {
    FloatPlanes(Size size, unsigned char* frame)
        : h(reinterpret_cast<float*>(frame)), s(h + PixelCount(size)), v(s + PixelCount(size)) {}
    float* h;
    float* s;
    float* v;
};

using HsvToBgra = void (*)(int, int, int, float*, int, float*, int, float*, int, unsigned char*);
constexpr HsvToBgra kHsvToBgra = IPL_HSV2BGRA;
constexpr HsvToBgra kHsvToBgraMultiThread = IPL_HSV2BGRA_MultiThread;

double ToPlanes(const Picture& source, Size size, bool multiThread, const FloatPlanes& planes) {
    return TimeEither(multiThread, IPL_BGRA2HSV, IPL_BGRA2HSV_MultiThread, size.width, size.height,
                      source.Stride(), source.Source(), size.width, planes.h, size.width, planes.s,
                      size.width, planes.v);
}

double FromPlanes(Size size, bool multiThread, const FloatPlanes& planes, unsigned char* picture) {
    std::fill_n(picture, PixelCount(size) * 4, uint8_t{255});  // alpha is not written
    return TimeEither(multiThread, kHsvToBgra, kHsvToBgraMultiThread, size.width, size.height,
                      size.width, planes.h, size.width, planes.s, size.width, planes.v,
                      size.width * 4, picture);
}

double RunFloat(const Picture& source, Size size, bool multiThread, unsigned char* frame,
                unsigned char* picture) {
    const FloatPlanes planes(size, frame);
    return ToPlanes(source, size, multiThread, planes) +
           FromPlanes(size, multiThread, planes, picture);
}

double RunByte(const Picture& source, Size size, bool multiThread, unsigned char* frame,
               unsigned char* picture) {
    std::vector<uint8_t> alpha(static_cast<size_t>(size.width), 255);  // one row for all
    double ms =
        TimeEither(multiThread, IPL_BGRA2HSV_8u_C3R, IPL_BGRA2HSV_8u_C3R_MultiThread, size.width,
                   size.height, source.Stride(), source.Source(), size.width * 3, frame);
    ms += TimeEither(multiThread, IPL_HSV2BGRA_8u_C3R, IPL_HSV2BGRA_8u_C3R_MultiThread, size.width,
                     size.height, size.width * 3, frame, 0, alpha.data(), size.width * 4, picture);
    return ms;
}

double ToYuyv(const Picture& source, Size size, bool multiThread, std::vector<uint8_t>& yuyv) {
    yuyv.resize(PixelCount(size) * 2);
    return TimeEither(multiThread, IPL_ARGB2YUYV_709, IPL_ARGB2YUYV_709_MultiThread, size.width,
                      size.height, source.Stride(), source.Source(), size.width * 2, yuyv.data());
}

double FromYuyv(Size size, bool multiThread, std::vector<uint8_t>& yuyv, unsigned char* picture) {
    return TimeEither(multiThread, IPL_YUYV2ARGB_709, IPL_YUYV2ARGB_709_MultiThread, size.width,
                      size.height, size.width * 2, yuyv.data(), size.width * 4, picture);
}

double RunYuyvFloat(const Picture& source, Size size, bool multiThread, unsigned char* frame,
                    unsigned char* picture) {
    std::vector<uint8_t> yuyv;
    auto* hsv = reinterpret_cast<float*>(frame);
    double ms = ToYuyv(source, size, multiThread, yuyv);
    ms += TimeEither(multiThread, IPL_YUYV2HSV_709, IPL_YUYV2HSV_709_MultiThread, size.width,
                     size.height, size.width * 2, yuyv.data(), size.width * 3, hsv);
    ms += TimeEither(multiThread, IPL_HSV2YUYV_709, IPL_HSV2YUYV_709_MultiThread, size.width,
                     size.height, size.width * 3, hsv, size.width * 2, yuyv.data());
    return ms + FromYuyv(size, multiThread, yuyv, picture);
}

double RunYuyvPlanes(const Picture& source, Size size, bool multiThread, unsigned char* frame,
                     unsigned char* picture) {
    std::vector<uint8_t> yuyv;
    auto* planes = reinterpret_cast<float*>(frame);
    double ms = ToYuyv(source, size, multiThread, yuyv);
    ms += TimeEither(multiThread, IPL_YUYV2HSVP_709, IPL_YUYV2HSVP_709_MultiThread, size.width,
                     size.height, size.width * 2, yuyv.data(), planes);
    ms += TimeEither(multiThread, IPL_HSVP2YUYV_709, IPL_HSVP2YUYV_709_MultiThread, size.width,
                     size.height, planes, size.width * 2, yuyv.data());
    return ms + FromYuyv(size, multiThread, yuyv, picture);
}

double RunYuyvByte(const Picture& source, Size size, bool multiThread, unsigned char* frame,
                   unsigned char* picture) {
    std::vector<uint8_t> yuyv;
    double ms = ToYuyv(source, size, multiThread, yuyv);
    ms += TimeEither(multiThread, IPL_YUYV2HSV_8u_709, IPL_YUYV2HSV_8u_709_MultiThread, size.width,
                     size.height, size.width * 2, yuyv.data(), size.width * 3, frame);
    ms += TimeEither(multiThread, IPL_HSV2YUYV_8u_709, IPL_HSV2YUYV_8u_709_MultiThread, size.width,
                     size.height, size.width * 3, frame, size.width * 2, yuyv.data());
    return ms + FromYuyv(size, multiThread, yuyv, picture);
}

constexpr char kByYuyv[] = "By way of a YUYV frame, whose two conversions are counted.";

constexpr RoundTrip kRoundTrips[] = {
    {"hsv-float", "HSV in floats", "", "IPL_BGRA2HSV, IPL_HSV2BGRA", 1, DenseBytes<12>, RunFloat},
    // One byte more: the zero behind the last row.
    {"hsv-byte", "HSV in bytes", "", "IPL_BGRA2HSV_8u_C3R, IPL_HSV2BGRA_8u_C3R", 1,
     [](Size size) { return PixelCount(size) * 3 + 1; }, RunByte},
    {"hsv-yuyv-float", "HSV in floats, of YUYV", kByYuyv, "IPL_YUYV2HSV_709, IPL_HSV2YUYV_709", 2,
     DenseBytes<12>, RunYuyvFloat},
    {"hsv-yuyv-planes", "HSV in planes of floats, of YUYV", kByYuyv,
     "IPL_YUYV2HSVP_709, IPL_HSVP2YUYV_709", 2, DenseBytes<12>, RunYuyvPlanes},
    {"hsv-yuyv-byte", "HSV in bytes, of YUYV", kByYuyv, "IPL_YUYV2HSV_8u_709, IPL_HSV2YUYV_8u_709",
     2, DenseBytes<3>, RunYuyvByte},
};

// Every pixel's hue at full saturation and value; grey has hue 0, which is red.
Shown ShowHue(const Picture& source) {
    std::vector<uint8_t> room(PixelCount(source.size) * 12);
    const FloatPlanes planes(source.size, room.data());
    ToPlanes(source, source.size, false, planes);
    std::fill_n(planes.s, PixelCount(source.size) * 2, 1.0f);
    const auto form = [&](bool multiThread) -> TimedForm {
        return [&, multiThread](unsigned char* result) {
            return FromPlanes(source.size, multiThread, planes, result);
        };
    };
    return MeasurePicture(source.size, Channels::kColour, form(false), form(true));
}

}  // namespace

std::vector<Exhibit> HsvExhibits(const Sample& sample) {
    const Picture& source = sample.colour;
    Exhibit hue;
    hue.id = "hue";
    hue.title = "Hue alone";
    hue.caption = "Saturation and value at their largest. Grey pixels have the hue of red.";
    hue.routine = "IPL_HSV2BGRA[_MultiThread]";
    hue.make = [&source] { return ShowHue(source); };

    std::vector<Exhibit> exhibits{hue};
    for (Exhibit& exhibit : RoundTripExhibits(source, kRoundTrips)) exhibits.push_back(exhibit);
    return exhibits;
}

}  // namespace tqipl
