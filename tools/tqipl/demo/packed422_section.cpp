// Round trips through packed 4:2:2, and what they change.

#include <TQIPLBaseLibU.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "demo/sections.h"
#include "packed422_swap.h"
#include "raw_formats.h"

namespace tqipl {

namespace {

constexpr int kAmplification = 8;

struct RoundTrip {
    const char* id;
    const char* title;
    const char* routine;
    PackedConversion toPlain;
    PackedConversion toMultiThread;
    // IPL_ARGB2UYVY_601 loses the first luma of each pair; the frame is made in YUYV and swapped.
    bool swapToUyvy;
    PackedConversion fromPlain;
    PackedConversion fromMultiThread;
};

constexpr RoundTrip kRoundTrips[] = {
    {"yuyv-601", "YUYV, 601", "IPL_ARGB2YUYV_601, IPL_YUYV2ARGB_601", IPL_ARGB2YUYV_601,
     IPL_ARGB2YUYV_601_MultiThread, false, IPL_YUYV2ARGB_601, IPL_YUYV2ARGB_601_MultiThread},
    {"uyvy-601", "UYVY, 601", "IPL_ARGB2YUYV_601, IPL_UYVY2ARGB_601", IPL_ARGB2YUYV_601,
     IPL_ARGB2YUYV_601_MultiThread, true, IPL_UYVY2ARGB_601, IPL_UYVY2ARGB_601_MultiThread},
    {"yuyv-709", "YUYV, 709", "IPL_ARGB2YUYV_709, IPL_YUYV2ARGB_709", IPL_ARGB2YUYV_709,
     IPL_ARGB2YUYV_709_MultiThread, false, IPL_YUYV2ARGB_709, IPL_YUYV2ARGB_709_MultiThread},
    {"uyvy-709", "UYVY, 709", "IPL_ARGB2UYVY_709, IPL_UYVY2ARGB_709", IPL_ARGB2UYVY_709,
     IPL_ARGB2UYVY_709_MultiThread, false, IPL_UYVY2ARGB_709, IPL_UYVY2ARGB_709_MultiThread},
};

// The part of the photograph that has whole pairs of pixels.
Size PairedSize(const Picture& source) { return {source.size.width & ~1, source.size.height}; }

size_t FrameBytes(Size size) {
    return static_cast<size_t>(size.width) * static_cast<size_t>(size.height) * 2;
}

size_t PictureBytes(Size size) { return FrameBytes(size) * 2; }

// The result is the 4:2:2 frame and behind it the picture that comes back.
TimedForm Form(const Picture& source, const RoundTrip& trip, bool multiThread) {
    return [&source, &trip, multiThread](unsigned char* result) {
        const Size size = PairedSize(source);
        unsigned char* frame = result;
        unsigned char* picture = result + FrameBytes(size);
        double ms = TimeOf([&] {
            (multiThread ? trip.toMultiThread : trip.toPlain)(
                size.width, size.height, source.Stride(), source.Source(), size.width * 2, frame);
        });
        if (trip.swapToUyvy) SwapLumaAndChroma(frame, FrameBytes(size));
        ms += TimeOf([&] {
            (multiThread ? trip.fromMultiThread : trip.fromPlain)(
                size.width, size.height, size.width * 2, frame, size.width * 4, picture);
        });
        return ms;
    };
}

// The picture behind the frame in a result.
Picture TakePicture(Size size, const std::vector<uint8_t>& result) {
    Picture picture(size, Channels::kColour);
    std::copy(result.end() - static_cast<std::ptrdiff_t>(PictureBytes(size)), result.end(),
              picture.bytes.begin());
    return picture;
}

Shown ShowRoundTrip(const Picture& source, const RoundTrip& trip) {
    const Size size = PairedSize(source);
    const Measured measured = Measure(FrameBytes(size) + PictureBytes(size),
                                      Form(source, trip, false), Form(source, trip, true));
    return {TakePicture(size, measured.bytes), measured.timing, {}};
}

Shown ShowDifference(const Picture& source, const RoundTrip& trip) {
    const Size size = PairedSize(source);
    std::vector<uint8_t> result(FrameBytes(size) + PictureBytes(size));
    Form(source, trip, false)(result.data());

    Shown shown{TakePicture(size, result), {}, {}};
    int largest = 0;
    int64_t sum = 0;
    shown.timing.byHost = true;
    shown.timing.plainMs = TimeOf([&] {
        for (int y = 0; y < size.height; ++y) {
            const uint8_t* before =
                source.bytes.data() + static_cast<size_t>(y) * static_cast<size_t>(source.Stride());
            uint8_t* after = shown.picture.bytes.data() +
                             static_cast<size_t>(y) * static_cast<size_t>(size.width) * 4;
            for (int i = 0; i < size.width * 4; ++i) {
                if (i % 4 == 3) continue;  // alpha does not pass through 4:2:2
                const int difference = std::abs(before[i] - after[i]);
                largest = std::max(largest, difference);
                sum += difference;
                after[i] = static_cast<uint8_t>(std::min(difference * kAmplification, 255));
            }
        }
    });
    const double samples = double(size.width) * size.height * 3;
    char remark[100];
    std::snprintf(remark, sizeof remark, "On average %.2f of 255, at most %d.",
                  static_cast<double>(sum) / samples, largest);
    shown.remark = remark;
    return shown;
}

}  // namespace

std::vector<Exhibit> Packed422Exhibits(const Sample& sample) {
    const Picture& source = sample.colour;
    if (PairedSize(source).width == 0) return {};
    std::vector<Exhibit> exhibits;
    for (const RoundTrip& trip : kRoundTrips) {
        Exhibit there;
        there.id = trip.id;
        there.title = trip.title;
        there.caption = "There and back; the time is that of both ways.";
        if (trip.swapToUyvy)
            there.caption +=
                " The 601 frame is made in YUYV and its bytes are swapped by the host, which is "
                "not counted.";
        there.routine = trip.routine;
        there.make = [&source, &trip] { return ShowRoundTrip(source, trip); };
        exhibits.push_back(there);

        Exhibit difference;
        difference.id = std::string(trip.id) + "-difference";
        difference.title = std::string(trip.title) + ": difference";
        difference.caption =
            "Distance to the original, amplified " + std::to_string(kAmplification) + " times.";
        difference.make = [&source, &trip] { return ShowDifference(source, trip); };
        exhibits.push_back(difference);
    }
    return exhibits;
}

}  // namespace tqipl
