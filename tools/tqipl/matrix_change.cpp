// The table of matrix changes and the formats that take them.

#include "matrix_change.h"

#include <algorithm>
#include <string_view>

#include "host_error.h"
#include "planes.h"

namespace tqipl {

namespace {

constexpr MatrixChange kChanges[] = {
    {"601", "709", IPL_YUV601x709MultiThread, IPL_YUVP_422_601x709MultiThread},
    {"709", "601", IPL_YUV709x601MultiThread, IPL_YUVP_422_709x601MultiThread},
    {"2020", "709", IPL_YUV2020x709MultiThread, IPL_YUVP_422_2020x709MultiThread},
    {"709", "2020", IPL_YUV709x2020MultiThread, IPL_YUVP_422_709x2020MultiThread},
};

struct PackedFormat {
    std::string_view name;
    TQ_COLOR_FORMAT format;
};

constexpr PackedFormat kPacked[] = {
    {"yuyv", TQ_COLOR_YUYV},
    {"uyvy", TQ_COLOR_UYVY},
    {"vuyt", TQ_COLOR_AYUV},
};
constexpr std::string_view kPlanar = "yuvp422";

}  // namespace

const MatrixChange& FindMatrixChange(const std::string& from, const std::string& to) {
    std::string known;
    for (const MatrixChange& change : kChanges) {
        if (from == change.from && to == change.to) return change;
        known += (known.empty() ? "" : ", ") + std::string(change.from) + " to " + change.to;
    }
    throw UsageError("no matrix change from '" + from + "' to '" + to + "'; there are: " + known);
}

bool CanChangeMatrix(const RawFormat& format) {
    return format.name == kPlanar ||
           std::ranges::any_of(kPacked, [&](auto& packed) { return packed.name == format.name; });
}

std::string MatrixFormatNames() {
    std::string names;
    for (const PackedFormat& packed : kPacked) names += std::string(packed.name) + ", ";
    return names + std::string(kPlanar);
}

void ChangeMatrix(const MatrixChange& change, const RawFormat& format, Size size,
                  unsigned char* frame) {
    if (format.name == kPlanar) {
        Planes planes;
        planes.AddPlanar422(size, frame, 1);
        change.planar(size.width, size.height, planes.strides.GetAt(0), planes.pointers.GetAt(0),
                      planes.strides.GetAt(1), planes.pointers.GetAt(1), planes.strides.GetAt(2),
                      planes.pointers.GetAt(2));
        return;
    }
    for (const PackedFormat& packed : kPacked)
        if (packed.name == format.name)
            change.packed(packed.format, size.width, size.height, size.width * format.pixelBytes,
                          frame);
}

}  // namespace tqipl
