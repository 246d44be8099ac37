// Round trips through BGR with more than eight bits a channel.

#include <TQIPLBaseLibU.h>

#include <algorithm>

#include "demo/round_trip.h"
#include "demo/sections.h"
#include "planes.h"

namespace tqipl {

namespace {

// The photograph in 16-bit blue, green and red, made wider by the host.
std::vector<uint8_t> MakeWide(const Picture& source, Size size) {
    std::vector<uint8_t> wide(PixelCount(size) * 6);
    for (size_t i = 0; i < PixelCount(size); ++i)
        for (size_t channel = 0; channel < 3; ++channel)
            wide[i * 6 + channel * 2 + 1] = source.bytes[i * 4 + channel];
    return wide;
}

double ToPicture(Size size, bool multiThread, unsigned char* wide, unsigned char* picture) {
    std::fill_n(picture, PixelCount(size) * 4, uint8_t{255});  // alpha is not written
    return TimeEither(multiThread, IPL_BGRTQ16b_To_BGRA, IPL_BGRTQ16b_To_BGRAMultiThread,
                      size.width, size.height, size.width * 6, wide, size.width * 4, picture);
}

double RunHigh(const Picture& source, Size size, bool multiThread, unsigned char* frame,
               unsigned char* picture) {
    std::vector<uint8_t> wide = MakeWide(source, size);
    double ms =
        TimeEither(multiThread, IPL_BGRTQ16b_To_BGRTQ10b, IPL_BGRTQ16b_To_BGRTQ10bMultiThread,
                   size.width, size.height, size.width * 6, wide.data(), size.width * 4, frame);
    std::fill_n(picture, PixelCount(size) * 4, uint8_t{255});  // alpha is not written
    ms += TimeEither(multiThread, IPL_BGRTQ10b_To_BGRA, IPL_BGRTQ10b_To_BGRAMultiThread, size.width,
                     size.height, size.width * 4, frame, size.width * 4, picture);
    return ms;
}

double RunLow(const Picture& source, Size size, bool multiThread, unsigned char* frame,
              unsigned char* picture) {
    std::vector<uint8_t> wide = MakeWide(source, size);
    std::vector<uint8_t> deep(PixelCount(size) * 8);
    std::vector<uint8_t> luminance(PixelCount(size) * 2);
    Planes planes;
    planes.Add(deep.data(), size.width * 8, size.height);
    planes.Add(luminance.data(), size.width * 2, size.height);
    double ms =
        TimeEither(multiThread, IPL_BGR16b_To_BGRA16b, IPL_BGR16b_To_BGRA16bMultiThread, size.width,
                   size.height, size.width * 6, wide.data(), planes.strides, planes.pointers);
    ms +=
        TimeEither(multiThread, IPL_BGRA16b_To_BGR10b, IPL_BGRA16b_To_BGR10bMultiThread, size.width,
                   size.height, planes.strides, planes.pointers, size.width * 4, frame);
    ms +=
        TimeEither(multiThread, IPL_BGR10b_To_BGRA16b, IPL_BGR10b_To_BGRA16bMultiThread, size.width,
                   size.height, size.width * 4, frame, planes.strides, planes.pointers);
    ms +=
        TimeEither(multiThread, IPL_BGRA16b_To_BGR16b, IPL_BGRA16b_To_BGR16bMultiThread, size.width,
                   size.height, planes.strides, planes.pointers, size.width * 6, wide.data());
    return ms + ToPicture(size, multiThread, wide.data(), picture);
}

constexpr RoundTrip kRoundTrips[] = {
    {"bgrtq10", "Ten bits, red on top", "Nothing is lost: eight bits fit into ten.",
     "IPL_BGRTQ16b_To_BGRTQ10b, IPL_BGRTQ10b_To_BGRA", 1, DenseBytes<4>, RunHigh},
    {"bgr10", "Ten bits, red at the bottom",
     "By way of 16-bit BGRA, there and back. Nothing is lost.",
     "IPL_BGR16b_To_BGRA16b, IPL_BGRA16b_To_BGR10b, IPL_BGR10b_To_BGRA16b, IPL_BGRA16b_To_BGR16b, "
     "IPL_BGRTQ16b_To_BGRA",
     1, DenseBytes<4>, RunLow},
};

}  // namespace

std::vector<Exhibit> DeepExhibits(const Sample& sample) {
    return RoundTripExhibits(sample.colour, kRoundTrips);
}

}  // namespace tqipl
