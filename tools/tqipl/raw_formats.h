#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "picture.h"

// Raw frame files: one frame, dense rows, no header.

namespace tqipl {

// Between dense frames, or a frame and a dense picture. Both have a spare byte at their end.
using FrameConversion = void (*)(Size size, unsigned char* src, unsigned char* dst);

// One way between a picture and a format. Its signal is its range and matrix; formats without one
// have "".
struct RawConversion {
    const char* range;   // "studio", "full" or ""
    const char* matrix;  // "601", "709" or ""
    Channels channels;   // of the picture
    FrameConversion convert;
};

struct RawFormat {
    const char* name;
    const char* alias;  // another name for it, or ""
    const char* layout;
    int pixelBytes;                        // 0 where FrameBytes knows better
    int groupPixels;                       // of which the width must be a multiple
    std::span<const RawConversion> toRaw;  // the first is taken where the user leaves it open
    std::span<const RawConversion> fromRaw;
    // The format that stands between a picture and this one where toRaw or fromRaw is empty and a
    // route of repackings leads on; or null.
    const char* toRawBy;
    const char* fromRawBy;
};

std::span<const RawFormat> RawFormats();

// Throws UsageError, which lists the known names.
const RawFormat& FindRawFormat(const std::string& name);

// The format itself, or the one that a picture goes to or comes from in its place.
const RawFormat& PictureSideTo(const RawFormat& format);
const RawFormat& PictureSideFrom(const RawFormat& format);

// The conversion with that range and matrix, where empty texts leave it open. Throws UsageError,
// which lists what the format has.
const RawConversion& FindToRaw(const RawFormat& format, const std::string& range,
                               const std::string& matrix);
const RawConversion& FindFromRaw(const RawFormat& format, const std::string& range,
                                 const std::string& matrix);

// Throws HostError for a width that cuts the format's groups of pixels.
void CheckWidth(const RawFormat& format, Size size);

int V210RowBytes(int width);
size_t FrameBytes(const RawFormat& format, Size size);

// Zero bytes for a frame, and the spare one behind it.
std::vector<uint8_t> NewFrame(const RawFormat& format, Size size);

// "yuyv" or "yuyv (studio 601)".
std::string Describe(const RawFormat& format, const RawConversion& conversion);

}  // namespace tqipl
