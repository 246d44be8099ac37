// Round trips through planar 4:2:2, V210 and V216.

#include <TQIPLBaseLibU.h>

#include <algorithm>

#include "demo/round_trip.h"
#include "demo/sections.h"
#include "planes.h"
#include "raw_formats.h"

namespace tqipl {

namespace {

template <auto toPlain, auto toMultiThread, auto fromPlain, auto fromMultiThread>
double RunPlanar(const Picture& source, Size size, bool multiThread, unsigned char* frame,
                 unsigned char* picture) {
    double ms = TimeEither(multiThread, toPlain, toMultiThread, size.width, size.height,
                           source.Stride(), source.Source(), frame);
    ms += TimeEither(multiThread, fromPlain, fromMultiThread, size.width, size.height, frame,
                     size.width * 4, picture);
    return ms;
}

// The photograph in 16-bit planes: the samples of an 8-bit frame, made wider by the host. Returns
// the time of making the frame.
template <auto toPlain, auto toMultiThread>
double MakeWide(const Picture& source, Size size, bool multiThread, std::vector<uint8_t>& wide) {
    const size_t samples = PixelCount(size) * 2;
    std::vector<uint8_t> frame(samples);
    const double ms = TimeEither(multiThread, toPlain, toMultiThread, size.width, size.height,
                                 source.Stride(), source.Source(), frame.data());
    wide.assign(samples * 2, 0);
    for (size_t i = 0; i < samples; ++i) wide[2 * i + 1] = frame[i];
    return ms;
}

size_t V210Bytes(Size size) {
    return static_cast<size_t>(V210RowBytes(size.width)) * static_cast<size_t>(size.height);
}

size_t V216Bytes(Size size) { return PixelCount(size) * 4; }

int V216RowBytes(int width) { return width * 4; }

// To the packed frame, to the planes of the frame again and from there to a second frame, which
// must be the first; then to the picture.
template <auto rowBytes, auto frameBytes, auto makeWide, auto packPlain, auto packMultiThread,
          auto unpackPlain, auto unpackMultiThread, auto fromPlain, auto fromMultiThread>
double RunDeep(const Picture& source, Size size, bool multiThread, unsigned char* frame,
               unsigned char* picture) {
    std::vector<uint8_t> wide;
    double ms = makeWide(source, size, multiThread, wide);
    std::vector<uint8_t> first(frameBytes(size));
    std::vector<uint8_t> again(wide.size());
    std::fill_n(frame, frameBytes(size), uint8_t{0});  // rows of V210 end in padding

    Planes planes;
    planes.AddPlanar422(size, wide.data(), 2);
    Planes planesAgain;
    planesAgain.AddPlanar422(size, again.data(), 2);
    const int stride = rowBytes(size.width);
    ms += TimeEither(multiThread, packPlain, packMultiThread, size.width, size.height,
                     planes.strides, planes.pointers, stride, first.data());
    ms += TimeEither(multiThread, unpackPlain, unpackMultiThread, size.width, size.height, stride,
                     first.data(), planesAgain.strides, planesAgain.pointers);
    ms += TimeEither(multiThread, packPlain, packMultiThread, size.width, size.height,
                     planesAgain.strides, planesAgain.pointers, stride, frame);
    ms += TimeEither(multiThread, fromPlain, fromMultiThread, size.width, size.height, stride,
                     frame, size.width * 4, picture);
    return ms;
}

constexpr auto kWide601 = MakeWide<IPL_ARGB_To_YUVP422_601, IPL_ARGB_To_YUVP422_601_MultiThread>;
constexpr auto kWide709 = MakeWide<IPL_ARGB_To_YUVP422_709, IPL_ARGB_To_YUVP422_709_MultiThread>;

constexpr char kWidened[] =
    "By way of an 8-bit planar frame that the host makes wider, to the packed frame, back to "
    "planes and to the frame again.";

constexpr RoundTrip kRoundTrips[] = {
    {"yuvp422-601", "Planar 4:2:2, 601", "", "IPL_ARGB_To_YUVP422_601, IPL_YUVP422_To_ARGB_601", 2,
     DenseBytes<2>,
     RunPlanar<IPL_ARGB_To_YUVP422_601, IPL_ARGB_To_YUVP422_601_MultiThread,
               IPL_YUVP422_To_ARGB_601, IPL_YUVP422_To_ARGB_601_MultiThread>},
    {"yuvp422-709", "Planar 4:2:2, 709", "", "IPL_ARGB_To_YUVP422_709, IPL_YUVP422_To_ARGB_709", 2,
     DenseBytes<2>,
     RunPlanar<IPL_ARGB_To_YUVP422_709, IPL_ARGB_To_YUVP422_709_MultiThread,
               IPL_YUVP422_To_ARGB_709, IPL_YUVP422_To_ARGB_709_MultiThread>},
    {"v210-601", "V210, 601", kWidened,
     "IPL_YUVP216_To_V210, IPL_V210_To_YUVP216, IPL_V210_To_BGRA_601", 6, V210Bytes,
     RunDeep<V210RowBytes, V210Bytes, kWide601, IPL_YUVP216_To_V210, IPL_YUVP216_To_V210MultiThread,
             IPL_V210_To_YUVP216, IPL_V210_To_YUVP216MultiThread, IPL_V210_To_BGRA_601,
             IPL_V210_To_BGRA_601MultiThread>},
    {"v210-709", "V210, 709", kWidened,
     "IPL_YUVP216_To_V210, IPL_V210_To_YUVP216, IPL_V210_To_BGRA_709", 6, V210Bytes,
     RunDeep<V210RowBytes, V210Bytes, kWide709, IPL_YUVP216_To_V210, IPL_YUVP216_To_V210MultiThread,
             IPL_V210_To_YUVP216, IPL_V210_To_YUVP216MultiThread, IPL_V210_To_BGRA_709,
             IPL_V210_To_BGRA_709MultiThread>},
    {"v216-601", "V216, 601", kWidened,
     "IPL_YUVP216_To_V216, IPL_V216_To_YUVP216, IPL_V216_To_BGRA_601", 2, V216Bytes,
     RunDeep<V216RowBytes, V216Bytes, kWide601, IPL_YUVP216_To_V216, IPL_YUVP216_To_V216MultiThread,
             IPL_V216_To_YUVP216, IPL_V216_To_YUVP216MultiThread, IPL_V216_To_BGRA_601,
             IPL_V216_To_BGRA_601MultiThread>},
    {"v216-709", "V216, 709", kWidened,
     "IPL_YUVP216_To_V216, IPL_V216_To_YUVP216, IPL_V216_To_BGRA_709", 2, V216Bytes,
     RunDeep<V216RowBytes, V216Bytes, kWide709, IPL_YUVP216_To_V216, IPL_YUVP216_To_V216MultiThread,
             IPL_V216_To_YUVP216, IPL_V216_To_YUVP216MultiThread, IPL_V216_To_BGRA_709,
             IPL_V216_To_BGRA_709MultiThread>},
};

}  // namespace

std::vector<Exhibit> PlanarExhibits(const Sample& sample) {
    return RoundTripExhibits(sample.colour, kRoundTrips);
}

}  // namespace tqipl
