#pragma once

#include <string>
#include <vector>

// The commands of tqipl, each with what its command line gave. They throw HostError.

namespace tqipl {

void RunInfo();

struct ZoomOptions {
    std::string input;
    std::string output;
    std::string size;
    std::string method;
    std::string compare;  // may be empty
    bool single = false;
};
void RunZoom(const ZoomOptions& options);

struct ConvertOptions {
    std::string input;
    std::string output;
    std::string to;      // without it a PNG file is written
    std::string from;    // without it a PNG file is read
    std::string size;    // with `from`
    std::string matrix;  // may be empty, as all below
    std::string range;
    std::string matrixFrom;  // with `from` and `to`
    std::string matrixTo;
};
void RunConvert(const ConvertOptions& options);

struct VideoOptions {
    std::string input;   // "-" for the standard input
    std::string output;  // "-" for the standard output
    std::string from = "y4m";
    std::string to;    // empty: as from
    std::string size;  // of raw frames, as the three below; may be empty
    std::string rate;
    std::string aspect;
    std::string interlace;
    std::string matrix;  // of the frames that are read; may be empty
    std::vector<std::string> operations;
    bool quiet = false;
};
void RunVideo(const VideoOptions& options);
std::string VideoFormatList();
std::string VideoOperationList();

struct DemoOptions {
    std::string folder;
    std::string samples;  // empty: the samples folder of the source tree, or ./samples
    std::vector<std::string> pictures;  // only these files, in the size of the sheet
};
void RunDemo(const DemoOptions& options);

}  // namespace tqipl
