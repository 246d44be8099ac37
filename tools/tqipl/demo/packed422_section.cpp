// Round trips through packed 4:2:2, and what they change.

#include <TQIPLBaseLibU.h>

#include "demo/round_trip.h"
#include "demo/sections.h"
#include "packed422_swap.h"

namespace tqipl {

namespace {

enum class Swap { kNo, kToUyvy };

template <auto toPlain, auto toMultiThread, Swap swap, auto fromPlain, auto fromMultiThread>
double Run(const Picture& source, Size size, bool multiThread, unsigned char* frame,
           unsigned char* picture) {
    double ms = TimeEither(multiThread, toPlain, toMultiThread, size.width, size.height,
                           source.Stride(), source.Source(), size.width * 2, frame);
    if (swap == Swap::kToUyvy) SwapLumaAndChroma(frame, PixelCount(size) * 2);
    ms += TimeEither(multiThread, fromPlain, fromMultiThread, size.width, size.height,
                     size.width * 2, frame, size.width * 4, picture);
    return ms;
}

// IPL_ARGB2UYVY_601 loses the first luma of each pair; that frame is made in YUYV and swapped.
constexpr RoundTrip kRoundTrips[] = {
    {"yuyv-601", "YUYV, 601", "", "IPL_ARGB2YUYV_601, IPL_YUYV2ARGB_601", 2, DenseBytes<2>,
     Run<IPL_ARGB2YUYV_601, IPL_ARGB2YUYV_601_MultiThread, Swap::kNo, IPL_YUYV2ARGB_601,
         IPL_YUYV2ARGB_601_MultiThread>},
    {"uyvy-601", "UYVY, 601",
     "The 601 frame is made in YUYV and its bytes are swapped by the host, which is not counted.",
     "IPL_ARGB2YUYV_601, IPL_UYVY2ARGB_601", 2, DenseBytes<2>,
     Run<IPL_ARGB2YUYV_601, IPL_ARGB2YUYV_601_MultiThread, Swap::kToUyvy, IPL_UYVY2ARGB_601,
         IPL_UYVY2ARGB_601_MultiThread>},
    {"yuyv-709", "YUYV, 709", "", "IPL_ARGB2YUYV_709, IPL_YUYV2ARGB_709", 2, DenseBytes<2>,
     Run<IPL_ARGB2YUYV_709, IPL_ARGB2YUYV_709_MultiThread, Swap::kNo, IPL_YUYV2ARGB_709,
         IPL_YUYV2ARGB_709_MultiThread>},
    {"uyvy-709", "UYVY, 709", "", "IPL_ARGB2UYVY_709, IPL_UYVY2ARGB_709", 2, DenseBytes<2>,
     Run<IPL_ARGB2UYVY_709, IPL_ARGB2UYVY_709_MultiThread, Swap::kNo, IPL_UYVY2ARGB_709,
         IPL_UYVY2ARGB_709_MultiThread>},
};

}  // namespace

std::vector<Exhibit> Packed422Exhibits(const Sample& sample) {
    return RoundTripExhibits(sample.colour, kRoundTrips);
}

}  // namespace tqipl
