// The command line of tqipl.

#include <CLI/CLI.hpp>
#include <csignal>
#include <exception>
#include <iostream>
#include <new>
#include <string>

#include "commands.h"
#include "host_error.h"
#include "machine.h"
#include "matrix_change.h"
#include "raw_formats.h"
#include "raw_repackings.h"
#include "text.h"
#include "zoom_methods.h"

namespace {

using namespace tqipl;

std::string ByWay(const RawFormat& format) {
    const std::string to = format.toRawBy == nullptr ? "" : format.toRawBy;
    const std::string from = format.fromRawBy == nullptr ? "" : format.fromRawBy;
    const bool reads = !from.empty() || !format.fromRaw.empty();
    const bool writes = !to.empty() || !format.toRaw.empty();
    if (!reads && !writes) return "; of other raw files only";
    if (!reads) return "; PNG to it only";
    if (!writes) return "; it to PNG only";
    if (!to.empty() && to == from) return "; PNG by way of " + to;
    return (to.empty() ? "" : "; from PNG by way of " + to) +
           (from.empty() ? "" : "; to PNG by way of " + from);
}

std::string FormatList() {
    std::string list = "Formats, all little-endian, rows dense:";
    for (const RawFormat& format : RawFormats()) {
        list += "\n  " + std::string(format.name);
        if (*format.alias != 0) list += std::string(" (or ") + format.alias + ")";
        list += std::string(": ") + format.layout + ByWay(format);
    }
    list += "\nFrom one raw format to another, by the routine named, or by several in turn:";
    for (const Repacking& step : Repackings())
        list += std::string("\n  ") + step.from + " to " + step.to + ": " + step.routine;
    list += "\nThe matrix changes in: " + MatrixFormatNames() + ".";
    return list;
}

struct CommandLine {
    CommandLine() : app("Pictures and video frames through the library TQIPLBaseLibU.", "tqipl") {
        app.require_subcommand(1);
        app.set_version_flag("--version", Version());
        AddInfo();
        AddZoom();
        AddConvert();
        AddDemo();
        AddVideo();
    }

    std::string CommandNames() {
        std::string names;
        for (const CLI::App* command : app.get_subcommands({}))
            names += (names.empty() ? "" : ", ") + command->get_name();
        return names;
    }

    void AddInfo() {
        app.add_subcommand("info", "Print version, processor count and instruction-set level")
            ->callback(RunInfo);
    }

    void AddZoom() {
        CLI::App* command = app.add_subcommand("zoom", "Scale a PNG file");
        command->add_option("IN.png", zoom.input, "The picture")->required();
        command->add_option("OUT.png", zoom.output, "The result; grey stays grey")->required();
        command->add_option("--size", zoom.size, "WIDTHxHEIGHT of the result")->required();
        command->add_option("--method", zoom.method, "One of: " + ZoomMethodNames())->required();
        command->add_option("--compare", zoom.compare,
                            "Print the PSNR of the result, scaled to this PNG file's size by the "
                            "same method, against it");
        command->add_flag("--single", zoom.single, "Use the plain form, on one thread");
        command->footer(ZoomMethodList());
        command->callback([this] { RunZoom(zoom); });
    }

    void AddConvert() {
        CLI::App* command = app.add_subcommand(
            "convert", "Convert a PNG file to a raw frame file, back, or raw to raw");
        command->add_option("IN", convert.input, "PNG file, or raw file with --from")->required();
        command->add_option("OUT", convert.output, "PNG file, or raw file with --to")->required();
        command->add_option("--to", convert.to, "Format of the raw file to write");
        command->add_option("--from", convert.from, "Format of the raw file to read");
        command->add_option("--size", convert.size, "WIDTHxHEIGHT of the raw file to read");
        command->add_option("--matrix", convert.matrix, "601 (the default) or 709");
        command->add_option("--range", convert.range,
                            "studio (the default) or full (8-bit 4:2:2 and vuyt to PNG only)");
        command->add_option("--matrix-from", convert.matrixFrom,
                            "Matrix of the raw file to read: 601, 709 or 2020");
        command->add_option("--matrix-to", convert.matrixTo,
                            "Matrix of the raw file to write: 709, or from 709 any other");
        command->footer(FormatList());
        command->callback([this] { RunConvert(convert); });
    }

    void AddVideo() {
        CLI::App* command = app.add_subcommand(
            "video", "Run operations on the frames of a Y4M stream or of raw video");
        command->add_option("IN", video.input, "The file to read; - is the standard input")
            ->required();
        command->add_option("OUT", video.output, "The file to write; - is the standard output")
            ->required();
        command
            ->add_option("--op", video.operations,
                         "An operation, NAME or NAME=ARGUMENTS; may be given again")
            ->allow_extra_args(false);
        command->add_option("--from", video.from, "y4m (the default), or a format of raw frames");
        command->add_option("--to", video.to,
                            "y4m, or a format of raw frames; by default as --from");
        command->add_option("--size", video.size, "WIDTHxHEIGHT of the raw frames to read");
        command->add_option("--rate", video.rate,
                            "Frames a second of raw frames, as 25 (the default) or 30000:1001");
        command->add_option(
            "--aspect", video.aspect,
            "Width to height of a pixel of raw frames, as 1:1; not known by default");
        command->add_option(
            "--interlace", video.interlace,
            "Of raw frames: p progressive, t top field first, b bottom field first, "
            "m mixed; not known by default");
        command->add_option("--matrix", video.matrix,
                            "Matrix of the frames that are read: 601, 709 or 2020; 601 where an "
                            "operation needs one");
        command->add_flag("--quiet", video.quiet, "No progress on the standard error");
        command->footer(VideoOperationList() + "\n" + VideoFormatList() + "\n" + ZoomMethodList());
        command->callback([this] { RunVideo(video); });
    }

    void AddDemo() {
        CLI::App* command = app.add_subcommand(
            "demo", "Run the library's routines on photographs; write PNG files and index.html");
        command->add_option("DIR", demo.folder, "The folder to write to")->required();
        command->add_option("--samples", demo.samples, "The folder of the photographs");
        command->add_option("--pictures", demo.pictures,
                            "Write only the named PNG files, as the contact sheet shows them, and "
                            "no sheet");
        command->callback([this] { RunDemo(demo); });
    }

    CLI::App app;
    ZoomOptions zoom;
    ConvertOptions convert;
    VideoOptions video;
    DemoOptions demo;
};

int Run(int argc, char** argv) {
    CommandLine line;
    try {
        line.app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return line.app.exit(error);  // help and version
        const std::string first = argc > 1 ? argv[1] : "";
        if (!first.empty() && first[0] != '-' && line.app.get_subcommands().empty())
            throw UsageError("unknown command '" + first + "'; known are: " + line.CommandNames());
        throw UsageError(std::string(error.what()) + " (tqipl --help tells more)");
    }
    if (!std::cout.flush()) throw HostError("cannot write to the standard output");
    return 0;
}

int Fail(const std::string& text, int exitCode) {
    std::cout.flush();
    std::cerr << "tqipl: " << OneLine(text) << "\n";
    return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
    // A file that grows beyond the limit then fails to be written like any other.
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        return Run(argc, argv);
    } catch (const HostError& error) {
        return Fail(error.what(), error.ExitCode());
    } catch (const std::bad_alloc&) {
        return Fail("out of memory", kExitFailure);
    } catch (const std::exception& error) {
        return Fail(error.what(), kExitFailure);
    } catch (...) {
        return Fail("an unknown failure", kExitFailure);
    }
}
