// tqipl convert: a PNG file to a raw frame file, or back.

#include <iostream>

#include "commands.h"
#include "file_access.h"
#include "host_error.h"
#include "machine.h"
#include "png_file.h"
#include "raw_formats.h"
#include "stopwatch.h"
#include "text.h"

namespace tqipl {

namespace {

void Report(const ConvertOptions& options, Size size, const std::string& way, double taken) {
    std::cout << options.output << ": " << ToText(size) << ", " << way << ", "
              << Milliseconds(taken) << " (" << MachineSummary() << ")\n";
}

void PngToRaw(const ConvertOptions& options) {
    const RawFormat& format = FindRawFormat(options.to);
    const RawConversion& conversion = FindToRaw(format, options.range, options.matrix);
    Picture picture = ReadPng(options.input);
    if (conversion.channels != Channels::kGrey)
        picture = ToColour(picture);
    else if (!picture.IsGrey())
        throw HostError(options.input + ": " + format.name +
                        " takes a grey PNG file; for the luminance of a colour one write lum");
    const Size size = picture.size;
    CheckWidth(format, size);

    std::vector<uint8_t> frame(FrameBytes(format, size));
    const double taken = TimeOf([&] {
        conversion.convert(size.width, size.height, picture.Stride(), picture.Source(),
                           size.width * format.pixelBytes, frame.data());
    });
    WriteWhole(options.output, frame);
    Report(options, size,
           "to " + Describe(format, conversion) + ", " + std::to_string(frame.size()) + " bytes",
           taken);
}

void RawToPng(const ConvertOptions& options) {
    const RawFormat& format = FindRawFormat(options.from);
    const RawConversion& conversion = FindFromRaw(format, options.range, options.matrix);
    const Size size = ParseSize(options.size);
    CheckWidth(format, size);

    Picture picture(size, conversion.channels);
    std::vector<uint8_t> frame = ReadExactly(options.input, FrameBytes(format, size),
                                             "a frame of " + ToText(size) + " in " + format.name);
    const double taken = TimeOf([&] {
        conversion.convert(size.width, size.height, size.width * format.pixelBytes, frame.data(),
                           picture.Stride(), picture.bytes.data());
    });
    WritePng(options.output, picture);
    Report(options, size, "from " + Describe(format, conversion), taken);
}

}  // namespace

void RunConvert(const ConvertOptions& options) {
    if (options.to.empty() == options.from.empty())
        throw UsageError("convert takes one of --to FORMAT and --from FORMAT");
    if (!options.from.empty() && options.size.empty())
        throw UsageError("--from needs --size WIDTHxHEIGHT: a raw file does not hold its size");
    if (!options.to.empty() && !options.size.empty())
        throw UsageError("--size belongs to --from; a PNG file holds its size");
    options.to.empty() ? RawToPng(options) : PngToRaw(options);
}

}  // namespace tqipl
