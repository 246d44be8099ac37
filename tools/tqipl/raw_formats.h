#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "picture.h"

// Raw frame files: dense rows, no header.

namespace tqipl {

using PackedConversion = void (*)(int width, int height, int srcStride, unsigned char* src,
                                  int dstStride, unsigned char* dst);

// One way from or to a format. Its signal is its range and matrix; formats without one have "".
struct RawConversion {
    const char* range;   // "studio", "full" or ""
    const char* matrix;  // "601", "709" or ""
    Channels channels;   // of the picture's side
    PackedConversion convert;
};

struct RawFormat {
    const char* name;
    const char* layout;
    int pixelBytes;
    bool pairsOfPixels;                    // 4:2:2: the width must be even
    std::span<const RawConversion> toRaw;  // the first is taken where the user leaves it open
    std::span<const RawConversion> fromRaw;
};

std::span<const RawFormat> RawFormats();

// Throws UsageError, which lists the known names.
const RawFormat& FindRawFormat(const std::string& name);

// The conversion with that range and matrix, where empty texts leave it open. Throws UsageError,
// which lists what the format has.
const RawConversion& FindToRaw(const RawFormat& format, const std::string& range,
                               const std::string& matrix);
const RawConversion& FindFromRaw(const RawFormat& format, const std::string& range,
                                 const std::string& matrix);

// Throws HostError for an odd width in a 4:2:2 format.
void CheckWidth(const RawFormat& format, Size size);

size_t FrameBytes(const RawFormat& format, Size size);

// "yuyv" or "yuyv (studio 601)".
std::string Describe(const RawFormat& format, const RawConversion& conversion);

}  // namespace tqipl
