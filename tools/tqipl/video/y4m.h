#pragma once

#include <string>
#include <vector>

#include "video/stream.h"

// The text of Y4M streams: one header line, and a line before each frame.

namespace tqipl {

inline constexpr size_t kLongestY4mLine = 4096;

struct Y4mHeader {
    std::string line;
    std::vector<std::string> fields;  // behind the magic word
    Stream stream;
};

// `name` is the file's, for error lines. Throws HostError for what is no header of a format that
// the host has.
Y4mHeader ParseY4mHeader(const std::string& name, const std::string& line);

// The line that says what `stream` is. Fields of `input`, which may be null, that are still true
// stay as they are.
std::string Y4mHeaderLine(const Stream& stream, const Y4mHeader* input);

}  // namespace tqipl
