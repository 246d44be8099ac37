#pragma once

#include <string>

// The commands of tqipl, each with what its command line gave. They throw HostError.

namespace tqipl {

void RunInfo();

struct ZoomOptions {
    std::string input;
    std::string output;
    std::string size;
    std::string method;
    bool single = false;
};
void RunZoom(const ZoomOptions& options);

struct ConvertOptions {
    std::string input;
    std::string output;
    std::string to;    // one of `to` and `from` is given
    std::string from;  // with a size
    std::string size;
    std::string matrix;  // may be empty
    std::string range;   // may be empty
};
void RunConvert(const ConvertOptions& options);

struct DemoOptions {
    std::string folder;
    std::string samples;  // empty: the samples folder of the source tree, or ./samples
};
void RunDemo(const DemoOptions& options);

}  // namespace tqipl
