#pragma once

#include <span>
#include <string>
#include <vector>

#include "raw_formats.h"

// From one raw format to another by moving samples: no matrix, no range, nothing rounded.

namespace tqipl {

struct Repacking {
    const char* from;
    const char* to;
    FrameConversion convert;
    const char* routine;
};

std::span<const Repacking> Repackings();

// The shortest way; none if the formats are the same. Throws UsageError, which lists where a way
// leads, if there is none.
using Route = std::vector<const Repacking*>;
Route FindRoute(const RawFormat& from, const RawFormat& to);

// Throws HostError if a format on the way cannot hold the width.
void CheckRoute(const Route& route, Size size);

// Takes the frame along the route. Returns the milliseconds spent in conversions.
double RunRoute(const Route& route, Size size, std::vector<uint8_t>& frame);

std::string Describe(const Route& route);  // "v210 to yuvp216 to v216", or ""

}  // namespace tqipl
