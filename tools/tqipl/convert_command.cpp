// tqipl convert: a PNG file to a raw frame file, back, or from one raw format to another.

#include <iostream>

#include "commands.h"
#include "file_access.h"
#include "host_error.h"
#include "machine.h"
#include "matrix_change.h"
#include "png_file.h"
#include "raw_formats.h"
#include "raw_repackings.h"
#include "stopwatch.h"
#include "text.h"

namespace tqipl {

namespace {

void Report(const ConvertOptions& options, Size size, const std::string& way, double taken) {
    std::cout << options.output << ": " << ToText(size) << ", " << way << ", "
              << Milliseconds(taken) << " (" << MachineSummary() << ")\n";
}

std::string Then(const Route& route) { return route.empty() ? "" : ", then " + Describe(route); }

// A frame of the format, with the spare byte behind it.
std::vector<uint8_t> ReadFrame(const ConvertOptions& options, const RawFormat& format, Size size) {
    std::vector<uint8_t> frame = ReadExactly(options.input, FrameBytes(format, size),
                                             "a frame of " + ToText(size) + " in " + format.name);
    frame.push_back(0);
    return frame;
}

void WriteFrame(const ConvertOptions& options, const RawFormat& format, Size size,
                std::span<const uint8_t> frame) {
    WriteWhole(options.output, frame.first(FrameBytes(format, size)));
}

void PngToRaw(const ConvertOptions& options) {
    const RawFormat& format = FindRawFormat(options.to);
    const RawFormat& first = PictureSideTo(format);
    const RawConversion& conversion = FindToRaw(first, options.range, options.matrix);
    const Route route = FindRoute(first, format);
    Picture picture = ReadPng(options.input);
    if (conversion.channels != Channels::kGrey)
        picture = ToColour(picture);
    else if (!picture.IsGrey())
        throw HostError(options.input + ": " + format.name +
                        " takes a grey PNG file; for the luminance of a colour one write lum");
    const Size size = picture.size;
    CheckWidth(format, size);
    CheckWidth(first, size);
    CheckRoute(route, size);

    std::vector<uint8_t> frame = NewFrame(first, size);
    double taken = TimeOf([&] { conversion.convert(size, picture.Source(), frame.data()); });
    taken += RunRoute(route, size, frame);
    WriteFrame(options, format, size, frame);
    Report(options, size,
           "to " + Describe(first, conversion) + Then(route) + ", " +
               std::to_string(FrameBytes(format, size)) + " bytes",
           taken);
}

void RawToPng(const ConvertOptions& options) {
    const RawFormat& format = FindRawFormat(options.from);
    const RawFormat& last = PictureSideFrom(format);
    const RawConversion& conversion = FindFromRaw(last, options.range, options.matrix);
    const Route route = FindRoute(format, last);
    const Size size = ParseSize(options.size);
    CheckWidth(format, size);
    CheckRoute(route, size);

    std::vector<uint8_t> frame = ReadFrame(options, format, size);
    double taken = RunRoute(route, size, frame);
    Picture picture(size, conversion.channels);
    taken += TimeOf([&] { conversion.convert(size, frame.data(), picture.bytes.data()); });
    WritePng(options.output, picture);
    const std::string way = route.empty() ? "" : Describe(route) + ", then ";
    Report(options, size, way + "from " + Describe(last, conversion), taken);
}

void RawToRaw(const ConvertOptions& options) {
    if (!options.matrix.empty() || !options.range.empty())
        throw UsageError(
            "--matrix and --range are for PNG files; from one raw format to another "
            "--matrix-from and --matrix-to change the matrix");
    if (options.matrixFrom.empty() != options.matrixTo.empty())
        throw UsageError("--matrix-from and --matrix-to belong together");
    const RawFormat& from = FindRawFormat(options.from);
    const RawFormat& to = FindRawFormat(options.to);
    const Route route = FindRoute(from, to);
    const MatrixChange* change = options.matrixFrom.empty()
                                     ? nullptr
                                     : &FindMatrixChange(options.matrixFrom, options.matrixTo);
    if (change != nullptr && !CanChangeMatrix(from) && !CanChangeMatrix(to))
        throw UsageError("the matrix changes in these formats only: " + MatrixFormatNames());
    if (change == nullptr && route.empty())
        throw UsageError("--from and --to are the same format: there is nothing to convert");
    const Size size = ParseSize(options.size);
    CheckWidth(from, size);
    CheckRoute(route, size);

    std::vector<uint8_t> frame = ReadFrame(options, from, size);
    double taken = 0;
    std::string way = Describe(route);
    if (change != nullptr) {
        const bool before = CanChangeMatrix(from);
        const RawFormat& format = before ? from : to;
        const auto apply = [&] { ChangeMatrix(*change, format, size, frame.data()); };
        if (before) taken += TimeOf(apply);
        taken += RunRoute(route, size, frame);
        if (!before) taken += TimeOf(apply);
        way += (way.empty() ? "" : ", ") + std::string(change->from) + " to " + change->to +
               " in " + format.name;
    } else {
        taken = RunRoute(route, size, frame);
    }
    WriteFrame(options, to, size, frame);
    Report(options, size, way + ", " + std::to_string(FrameBytes(to, size)) + " bytes", taken);
}

}  // namespace

void RunConvert(const ConvertOptions& options) {
    if (options.to.empty() && options.from.empty())
        throw UsageError("convert takes --to FORMAT, --from FORMAT, or both");
    if (!options.from.empty() && options.size.empty())
        throw UsageError("--from needs --size WIDTHxHEIGHT: a raw file does not hold its size");
    if (options.from.empty() && !options.size.empty())
        throw UsageError("--size belongs to --from; a PNG file holds its size");
    if (!options.from.empty() && !options.to.empty()) return RawToRaw(options);
    if (!options.matrixFrom.empty() || !options.matrixTo.empty())
        throw UsageError("--matrix-from and --matrix-to need both --from and --to");
    options.to.empty() ? RawToPng(options) : PngToRaw(options);
}

}  // namespace tqipl
