// The table of frame formats and where their planes lie.

#include "video/frame_format.h"

#include "host_error.h"
#include "raw_formats.h"

namespace tqipl {

namespace {

constexpr FrameKind kKinds[] = {
    {FrameFormat::kUyvy, "uyvy", "", "packed 4:2:2, U Y0 V Y1", nullptr, true, 2, 1},
    {FrameFormat::kYuyv, "yuyv", "", "packed 4:2:2, Y0 U Y1 V", nullptr, true, 2, 1},
    {FrameFormat::kYuvp422, "yuvp422", "yuv422p", "planar 4:2:2", "422", true, 1, 3},
    {FrameFormat::kYuvp444, "yuvp444", "yuv444p", "planar 4:4:4", "444", false, 1, 3},
    {FrameFormat::kGray8, "gray8", "mono", "luma alone", "mono", false, 1, 1},
    {FrameFormat::kArgb, "argb", "bgra", "blue, green, red, alpha", nullptr, false, 4, 1},
    {FrameFormat::kYuvp210, "yuvp210", "yuv422p10",
     "planar 4:2:2, ten bits in the lower part of sixteen", "422p10", true, 2, 3},
    {FrameFormat::kYuvp216, "yuvp216", "yuv422p16", "planar 4:2:2 of sixteen bits", "422p16", true,
     2, 3},
    {FrameFormat::kV210, "v210", "",
     "10-bit 4:2:2, six pixels in four words, rows of a multiple of 128 bytes", nullptr, true, 0,
     1},
    {FrameFormat::kV216, "v216", "y216", "16-bit 4:2:2, U Y0 V Y1", nullptr, true, 4, 1},
};

}  // namespace

std::span<const FrameKind> FrameKinds() { return kKinds; }

const FrameKind& KindOf(FrameFormat format) { return kKinds[static_cast<size_t>(format)]; }

const FrameKind* FindFrameKind(const std::string& name) {
    for (const FrameKind& kind : kKinds)
        if (name == kind.name || (!name.empty() && name == kind.alias)) return &kind;
    return nullptr;
}

std::string FrameKindNames() {
    std::string names;
    for (const FrameKind& kind : kKinds)
        names += (names.empty() ? "" : ", ") + std::string(kind.name);
    return names;
}

std::vector<PlaneShape> PlanesOf(FrameFormat format, Size size) {
    const FrameKind& kind = KindOf(format);
    std::vector<PlaneShape> planes;
    size_t offset = 0;
    for (int i = 0; i < kind.planes; ++i) {
        const int width = i > 0 && kind.sharesChroma ? size.width / 2 : size.width;
        const int rowBytes =
            format == FrameFormat::kV210 ? V210RowBytes(width) : width * kind.pixelBytes;
        planes.push_back({width, size.height, rowBytes, offset});
        offset += static_cast<size_t>(rowBytes) * static_cast<size_t>(size.height);
    }
    return planes;
}

size_t FrameBytes(FrameFormat format, Size size) {
    const PlaneShape last = PlanesOf(format, size).back();
    return last.offset + static_cast<size_t>(last.rowBytes) * static_cast<size_t>(last.height);
}

void CheckFrameWidth(FrameFormat format, Size size) {
    const FrameKind& kind = KindOf(format);
    if (kind.sharesChroma && size.width % 2 != 0)
        throw HostError(std::string(kind.name) +
                        " is 4:2:2, two pixels share their chroma: the width must be even, not " +
                        std::to_string(size.width));
}

}  // namespace tqipl
