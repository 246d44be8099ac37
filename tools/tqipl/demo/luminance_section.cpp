// Luminance planes.

#include <TQIPLBaseLibU.h>

#include <cstring>

#include "demo/sections.h"

namespace tqipl {

namespace {

using Lum = decltype(&IPL_ARGB2LUM);
using Lum32 = decltype(&IPL_BGRA_To_Lum32);

TimedForm ByteForm(const Picture& source, Lum convert) {
    return [&source, convert](unsigned char* result) {
        return TimeOf([&] {
            convert(source.size.width, source.size.height, source.Stride(), source.Source(),
                    source.size.width, result);
        });
    };
}

TimedForm SumForm(const Picture& source, Lum32 convert) {
    return [&source, convert](unsigned char* result) {
        return TimeOf([&] {
            convert(source.size.width, source.size.height, source.Stride(), source.Source(),
                    source.size.width, reinterpret_cast<int*>(result));
        });
    };
}

Shown ShowSums(const Picture& source) {
    Shown shown{Picture(source.size, Channels::kGrey), {}, {}};
    std::vector<uint8_t>& luminance = shown.picture.bytes;
    const Measured measured =
        Measure(luminance.size() * sizeof(int), SumForm(source, IPL_BGRA_To_Lum32),
                SumForm(source, IPL_BGRA_To_Lum32_MultiThread));
    for (size_t i = 0; i < luminance.size(); ++i) {
        int sum;
        std::memcpy(&sum, &measured.bytes[i * sizeof sum], sizeof sum);
        luminance[i] = static_cast<uint8_t>(sum >> 10);
    }
    shown.timing = measured.timing;
    return shown;
}

}  // namespace

std::vector<Exhibit> LuminanceExhibits(const Sample& sample) {
    const Picture& source = sample.colour;
    Exhibit bytes;
    bytes.id = "luminance";
    bytes.title = "Luminance in bytes";
    bytes.caption = "Rounded to nearest.";
    bytes.routine = "IPL_ARGB2LUM[_MultiThread]";
    bytes.make = [&source] {
        return MeasurePicture(source.size, Channels::kGrey, ByteForm(source, IPL_ARGB2LUM),
                              ByteForm(source, IPL_ARGB2LUM_MultiThread));
    };

    Exhibit sums;
    sums.id = "luminance-sums";
    sums.title = "Luminance in 1024ths";
    sums.caption = "Unrounded 32-bit sums, of which the picture shows the whole part.";
    sums.routine = "IPL_BGRA_To_Lum32[_MultiThread]";
    sums.make = [&source] { return ShowSums(source); };
    return {bytes, sums};
}

}  // namespace tqipl
