// Round trips and their difference pictures.

#include "demo/round_trip.h"

#include <algorithm>
#include <cstddef>

#include "demo/difference.h"

namespace tqipl {

namespace {

size_t PictureBytes(Size size) { return PixelCount(size) * 4; }

Size SizeOf(const Picture& source, const RoundTrip& trip) {
    return WholeGroups(source.size, trip.groupPixels);
}

size_t ResultBytes(Size size, const RoundTrip& trip) {
    return trip.frameBytes(size) + PictureBytes(size);
}

// The result is the frame and behind it the picture that comes back.
TimedForm Form(const Picture& source, const RoundTrip& trip, bool multiThread) {
    return [&source, &trip, multiThread](unsigned char* result) {
        const Size size = SizeOf(source, trip);
        return trip.run(source, size, multiThread, result, result + trip.frameBytes(size));
    };
}

Picture TakePicture(Size size, const std::vector<uint8_t>& result) {
    Picture picture(size, Channels::kColour);
    std::copy(result.end() - static_cast<std::ptrdiff_t>(PictureBytes(size)), result.end(),
              picture.bytes.begin());
    return picture;
}

Shown ShowTrip(const Picture& source, const RoundTrip& trip) {
    const Size size = SizeOf(source, trip);
    const Measured measured =
        Measure(ResultBytes(size, trip), Form(source, trip, false), Form(source, trip, true));
    return {TakePicture(size, measured.bytes), measured.timing, {}};
}

Shown ShowTripDifference(const Picture& source, const RoundTrip& trip) {
    const Size size = SizeOf(source, trip);
    std::vector<uint8_t> result(ResultBytes(size, trip));
    Form(source, trip, false)(result.data());
    return ShowDifference(source, TakePicture(size, result));
}

}  // namespace

std::vector<Exhibit> RoundTripExhibits(const Picture& source, std::span<const RoundTrip> trips) {
    std::vector<Exhibit> exhibits;
    for (const RoundTrip& trip : trips) {
        if (SizeOf(source, trip).width == 0) continue;
        Exhibit there;
        there.id = trip.id;
        there.title = trip.title;
        there.caption = "There and back; the time is that of both ways.";
        if (*trip.remark != 0) there.caption += std::string(" ") + trip.remark;
        there.routine = trip.routine;
        there.make = [&source, &trip] { return ShowTrip(source, trip); };
        exhibits.push_back(there);

        Exhibit difference;
        difference.id = std::string(trip.id) + "-difference";
        difference.title = std::string(trip.title) + ": difference";
        difference.caption =
            "Distance to the original, amplified " + std::to_string(kAmplification) + " times.";
        difference.make = [&source, &trip] { return ShowTripDifference(source, trip); };
        exhibits.push_back(difference);
    }
    return exhibits;
}

}  // namespace tqipl
