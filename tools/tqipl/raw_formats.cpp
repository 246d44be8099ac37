// The table of raw formats and the routines that convert them.

#include "raw_formats.h"

#include <TQIPLBaseLibU.h>

#include <algorithm>

#include "host_error.h"
#include "packed422_swap.h"

namespace tqipl {

namespace {

void CopyColour(int width, int height, int srcStride, unsigned char* src, int dstStride,
                unsigned char* dst) {
    IPL_MemcpyMultiThread(TQ_COLOR_ARGB, width, height, srcStride, src, dstStride, dst);
}

void CopyGrey(int width, int height, int srcStride, unsigned char* src, int dstStride,
              unsigned char* dst) {
    IPL_MemcpyMultiThread(TQ_COLOR_GRAY8, width, height, srcStride, src, dstStride, dst);
}

// IPL_ARGB2UYVY_601 writes U, V, nothing, Y1: the first luma of each pair is lost. A true UYVY
// frame is the YUYV frame with the bytes of each 16-bit word swapped.
void ColourToUyvy601(int width, int height, int srcStride, unsigned char* src, int dstStride,
                     unsigned char* dst) {
    IPL_ARGB2YUYV_601_MultiThread(width, height, srcStride, src, dstStride, dst);
    SwapLumaAndChroma(dst, static_cast<size_t>(dstStride) * static_cast<size_t>(height));
}

// Lum32 counts the destination's stride in ints.
void ColourToLum32(int width, int height, int srcStride, unsigned char* src, int dstStride,
                   unsigned char* dst) {
    IPL_BGRA_To_Lum32_MultiThread(width, height, srcStride, src, dstStride / 4,
                                  reinterpret_cast<int*>(dst));
}

constexpr RawConversion kArgb[] = {{"", "", Channels::kColourAlpha, CopyColour}};
constexpr RawConversion kGray8[] = {{"", "", Channels::kGrey, CopyGrey}};
constexpr RawConversion kToLum[] = {{"", "", Channels::kColour, IPL_ARGB2LUM_MultiThread}};
constexpr RawConversion kToLum32[] = {{"", "", Channels::kColour, ColourToLum32}};
constexpr RawConversion kToYuyv[] = {
    {"studio", "601", Channels::kColour, IPL_ARGB2YUYV_601_MultiThread},
    {"studio", "709", Channels::kColour, IPL_ARGB2YUYV_709_MultiThread},
};
constexpr RawConversion kToUyvy[] = {
    {"studio", "601", Channels::kColour, ColourToUyvy601},
    {"studio", "709", Channels::kColour, IPL_ARGB2UYVY_709_MultiThread},
};
constexpr RawConversion kFromYuyv[] = {
    {"studio", "601", Channels::kColour, IPL_YUYV2ARGB_601_MultiThread},
    {"studio", "709", Channels::kColour, IPL_YUYV2ARGB_709_MultiThread},
    {"full", "601", Channels::kColour, IPL_YUYV422_To_ARGB444_MultiThread},
};
constexpr RawConversion kFromUyvy[] = {
    {"studio", "601", Channels::kColour, IPL_UYVY2ARGB_601_MultiThread},
    {"studio", "709", Channels::kColour, IPL_UYVY2ARGB_709_MultiThread},
    {"full", "601", Channels::kColour, IPL_UYVY422_To_ARGB444_MultiThread},
};
constexpr RawConversion kFromVuyt[] = {
    {"full", "601", Channels::kColour, IPL_VUYT444_To_ARGB444_MultiThread},
};

constexpr RawFormat kFormats[] = {
    {"argb", "blue, green, red, alpha", 4, false, kArgb, kArgb},
    {"yuyv", "packed 4:2:2, Y0 U Y1 V", 2, true, kToYuyv, kFromYuyv},
    {"uyvy", "packed 4:2:2, U Y0 V Y1", 2, true, kToUyvy, kFromUyvy},
    {"vuyt", "packed 4:4:4, V U Y and an unused byte", 4, false, {}, kFromVuyt},
    {"lum", "luminance, one byte", 1, false, kToLum, {}},
    {"lum32", "luminance in 1024ths, 32 bits little-endian", 4, false, kToLum32, {}},
    {"gray8", "grey, one byte", 1, false, kGray8, kGray8},
};

std::string Signal(const RawConversion& conversion) {
    return std::string(conversion.range) + (*conversion.range ? " " : "") + conversion.matrix;
}

const RawConversion& Find(const RawFormat& format, const char* direction,
                          std::span<const RawConversion> conversions, const std::string& range,
                          const std::string& matrix) {
    if (conversions.empty())
        throw UsageError(std::string(format.name) + " cannot be converted " + direction);
    std::string known;
    for (const RawConversion& conversion : conversions) {
        if ((range.empty() || range == conversion.range) &&
            (matrix.empty() || matrix == conversion.matrix))
            return conversion;
        if (const std::string signal = Signal(conversion); !signal.empty())
            known += (known.empty() ? "" : ", ") + signal;
    }
    if (known.empty())
        throw UsageError(std::string(format.name) + " has no range and no matrix to choose");
    throw UsageError("no conversion " + std::string(direction) + " " + format.name + " is " +
                     range + (range.empty() || matrix.empty() ? "" : " ") + matrix +
                     "; there are: " + known);
}

}  // namespace

std::span<const RawFormat> RawFormats() { return kFormats; }

const RawFormat& FindRawFormat(const std::string& name) {
    std::string known;
    for (const RawFormat& format : kFormats) {
        if (name == format.name) return format;
        known += (known.empty() ? "" : ", ") + std::string(format.name);
    }
    throw UsageError("unknown format '" + name + "'; known are: " + known);
}

const RawConversion& FindToRaw(const RawFormat& format, const std::string& range,
                               const std::string& matrix) {
    return Find(format, "to", format.toRaw, range, matrix);
}

const RawConversion& FindFromRaw(const RawFormat& format, const std::string& range,
                                 const std::string& matrix) {
    return Find(format, "from", format.fromRaw, range, matrix);
}

void CheckWidth(const RawFormat& format, Size size) {
    if (format.pairsOfPixels && size.width % 2 != 0)
        throw HostError(std::string(format.name) +
                        " is 4:2:2, two pixels share their chroma: the " +
                        "width must be even, not " + std::to_string(size.width));
}

size_t FrameBytes(const RawFormat& format, Size size) {
    return static_cast<size_t>(size.width) * static_cast<size_t>(size.height) *
           static_cast<size_t>(format.pixelBytes);
}

std::string Describe(const RawFormat& format, const RawConversion& conversion) {
    const std::string signal = Signal(conversion);
    return format.name + (signal.empty() ? "" : " (" + signal + ")");
}

}  // namespace tqipl
