// The table of raw formats and the routines that convert them from and to pictures.

#include "raw_formats.h"

#include <TQIPLBaseLibU.h>

#include <algorithm>
#include <cstring>

#include "host_error.h"
#include "packed422_swap.h"
#include "raw_repackings.h"

namespace tqipl {

namespace {

template <auto convert, int srcBytes, int dstBytes>
void Pixels(Size size, unsigned char* src, unsigned char* dst) {
    convert(size.width, size.height, size.width * srcBytes, src, size.width * dstBytes, dst);
}

template <TQ_COLOR_FORMAT format, int pixelBytes>
void Copy(Size size, unsigned char* src, unsigned char* dst) {
    const int stride = size.width * pixelBytes;
    IPL_MemcpyMultiThread(format, size.width, size.height, stride, src, stride, dst);
}

// IPL_ARGB2UYVY_601 writes U, V, nothing, Y1: the first luma of each pair is lost. A true UYVY
// frame is the YUYV frame with the bytes of each 16-bit word swapped.
void ColourToUyvy601(Size size, unsigned char* src, unsigned char* dst) {
    Pixels<IPL_ARGB2YUYV_601_MultiThread, 4, 2>(size, src, dst);
    SwapLumaAndChroma(dst, static_cast<size_t>(size.width) * 2 * static_cast<size_t>(size.height));
}

// Lum32 counts the destination's stride in ints.
template <auto convert, int srcBytes>
void ToSums(Size size, unsigned char* src, unsigned char* dst) {
    convert(size.width, size.height, size.width * srcBytes, src, size.width,
            reinterpret_cast<int*>(dst));
}

template <auto convert> void ToPlanar(Size size, unsigned char* src, unsigned char* dst) {
    convert(size.width, size.height, size.width * 4, src, dst);
}

template <auto convert> void FromPlanar(Size size, unsigned char* src, unsigned char* dst) {
    convert(size.width, size.height, src, size.width * 4, dst);
}

template <auto convert> void FromV210(Size size, unsigned char* src, unsigned char* dst) {
    convert(size.width, size.height, V210RowBytes(size.width), src, size.width * 4, dst);
}

size_t PixelCount(Size size) {
    return static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
}

// The library has no routine that makes 8-bit samples wider. As everywhere in it, the bits that
// are not there are zero.
void ColourToBgr16(Size size, unsigned char* src, unsigned char* dst) {
    for (size_t i = 0; i < PixelCount(size); ++i)
        for (size_t channel = 0; channel < 3; ++channel) {
            dst[i * 6 + channel * 2] = 0;
            dst[i * 6 + channel * 2 + 1] = src[i * 4 + channel];
        }
}

void Hsv8ToColour(Size size, unsigned char* src, unsigned char* dst) {
    std::vector<uint8_t> alpha(static_cast<size_t>(size.width), 255);  // one row for all
    IPL_HSV2BGRA_8u_C3R_MultiThread(size.width, size.height, size.width * 3, src, 0, alpha.data(),
                                    size.width * 4, dst);
}

// The interleaved float forms work on YUYV frames, in studio range.
template <auto toYuyv, auto toHsv>
void ColourToHsvf(Size size, unsigned char* src, unsigned char* dst) {
    std::vector<uint8_t> yuyv(PixelCount(size) * 2);
    toYuyv(size.width, size.height, size.width * 4, src, size.width * 2, yuyv.data());
    toHsv(size.width, size.height, size.width * 2, yuyv.data(), size.width * 3,
          reinterpret_cast<float*>(dst));
}

template <auto toYuyv, auto toColour>
void HsvfToColour(Size size, unsigned char* src, unsigned char* dst) {
    std::vector<uint8_t> yuyv(PixelCount(size) * 2);
    toYuyv(size.width, size.height, size.width * 3, reinterpret_cast<float*>(src), size.width * 2,
           yuyv.data());
    toColour(size.width, size.height, size.width * 2, yuyv.data(), size.width * 4, dst);
}

void ColourToHsvp(Size size, unsigned char* src, unsigned char* dst) {
    auto* h = reinterpret_cast<float*>(dst);
    float* s = h + PixelCount(size);
    float* v = s + PixelCount(size);
    IPL_BGRA2HSV_MultiThread(size.width, size.height, size.width * 4, src, size.width, h,
                             size.width, s, size.width, v);
}

void HsvpToColour(Size size, unsigned char* src, unsigned char* dst) {
    auto* h = reinterpret_cast<float*>(src);
    float* s = h + PixelCount(size);
    float* v = s + PixelCount(size);
    IPL_HSV2BGRA_MultiThread(size.width, size.height, size.width, h, size.width, s, size.width, v,
                             size.width * 4, dst);
}

constexpr Channels kColour = Channels::kColour;

constexpr RawConversion kArgb[] = {{"", "", Channels::kColourAlpha, Copy<TQ_COLOR_ARGB, 4>}};
constexpr RawConversion kToRgb[] = {{"", "", kColour, Pixels<IPL_BGRA2RGB_MultiThread, 4, 3>}};
constexpr RawConversion kFromRgb[] = {{"", "", kColour, Pixels<IPL_RGB2BGRA_MultiThread, 3, 4>}};
constexpr RawConversion kGray8[] = {{"", "", Channels::kGrey, Copy<TQ_COLOR_GRAY8, 1>}};
constexpr RawConversion kToLum[] = {{"", "", kColour, Pixels<IPL_ARGB2LUM_MultiThread, 4, 1>}};
constexpr RawConversion kToLum32[] = {{"", "", kColour, ToSums<IPL_BGRA_To_Lum32_MultiThread, 4>}};
constexpr RawConversion kToYuyv[] = {
    {"studio", "601", kColour, Pixels<IPL_ARGB2YUYV_601_MultiThread, 4, 2>},
    {"studio", "709", kColour, Pixels<IPL_ARGB2YUYV_709_MultiThread, 4, 2>},
};
constexpr RawConversion kToUyvy[] = {
    {"studio", "601", kColour, ColourToUyvy601},
    {"studio", "709", kColour, Pixels<IPL_ARGB2UYVY_709_MultiThread, 4, 2>},
};
constexpr RawConversion kFromYuyv[] = {
    {"studio", "601", kColour, Pixels<IPL_YUYV2ARGB_601_MultiThread, 2, 4>},
    {"studio", "709", kColour, Pixels<IPL_YUYV2ARGB_709_MultiThread, 2, 4>},
    {"full", "601", kColour, Pixels<IPL_YUYV422_To_ARGB444_MultiThread, 2, 4>},
};
constexpr RawConversion kFromUyvy[] = {
    {"studio", "601", kColour, Pixels<IPL_UYVY2ARGB_601_MultiThread, 2, 4>},
    {"studio", "709", kColour, Pixels<IPL_UYVY2ARGB_709_MultiThread, 2, 4>},
    {"full", "601", kColour, Pixels<IPL_UYVY422_To_ARGB444_MultiThread, 2, 4>},
};
constexpr RawConversion kFromVuyt[] = {
    {"full", "601", kColour, Pixels<IPL_VUYT444_To_ARGB444_MultiThread, 4, 4>},
};
constexpr RawConversion kToYuvp422[] = {
    {"studio", "601", kColour, ToPlanar<IPL_ARGB_To_YUVP422_601_MultiThread>},
    {"studio", "709", kColour, ToPlanar<IPL_ARGB_To_YUVP422_709_MultiThread>},
};
constexpr RawConversion kFromYuvp422[] = {
    {"studio", "601", kColour, FromPlanar<IPL_YUVP422_To_ARGB_601_MultiThread>},
    {"studio", "709", kColour, FromPlanar<IPL_YUVP422_To_ARGB_709_MultiThread>},
    {"full", "601", kColour, FromPlanar<IPL_YUVP_422_To_ARGB444_MultiThread>},
};
constexpr RawConversion kFromV210[] = {
    {"studio", "601", kColour, FromV210<IPL_V210_To_BGRA_601MultiThread>},
    {"studio", "709", kColour, FromV210<IPL_V210_To_BGRA_709MultiThread>},
};
constexpr RawConversion kFromV216[] = {
    {"studio", "601", kColour, Pixels<IPL_V216_To_BGRA_601MultiThread, 4, 4>},
    {"studio", "709", kColour, Pixels<IPL_V216_To_BGRA_709MultiThread, 4, 4>},
};
constexpr RawConversion kFromBgrtq10[] = {
    {"", "", kColour, Pixels<IPL_BGRTQ10b_To_BGRAMultiThread, 4, 4>},
};
constexpr RawConversion kToBgr16[] = {{"", "", kColour, ColourToBgr16}};
constexpr RawConversion kFromBgr16[] = {
    {"", "", kColour, Pixels<IPL_BGRTQ16b_To_BGRAMultiThread, 6, 4>},
};
constexpr RawConversion kToHsv8[] = {
    {"", "", kColour, Pixels<IPL_BGRA2HSV_8u_C3R_MultiThread, 4, 3>},
};
constexpr RawConversion kFromHsv8[] = {{"", "", kColour, Hsv8ToColour}};
constexpr RawConversion kToHsvf[] = {
    {"studio", "601", kColour,
     ColourToHsvf<IPL_ARGB2YUYV_601_MultiThread, IPL_YUYV2HSV_601_MultiThread>},
    {"studio", "709", kColour,
     ColourToHsvf<IPL_ARGB2YUYV_709_MultiThread, IPL_YUYV2HSV_709_MultiThread>},
};
constexpr RawConversion kFromHsvf[] = {
    {"studio", "601", kColour,
     HsvfToColour<IPL_HSV2YUYV_601_MultiThread, IPL_YUYV2ARGB_601_MultiThread>},
    {"studio", "709", kColour,
     HsvfToColour<IPL_HSV2YUYV_709_MultiThread, IPL_YUYV2ARGB_709_MultiThread>},
};
constexpr RawConversion kToHsvp[] = {{"", "", kColour, ColourToHsvp}};
constexpr RawConversion kFromHsvp[] = {{"", "", kColour, HsvpToColour}};

constexpr RawFormat kFormats[] = {
    {"argb", "", "blue, green, red, alpha", 4, 1, kArgb, kArgb, {}, {}},
    {"rgb", "", "red, green, blue", 3, 1, kToRgb, kFromRgb, {}, {}},
    {"yuyv", "", "packed 4:2:2, Y0 U Y1 V", 2, 2, kToYuyv, kFromYuyv, {}, {}},
    {"uyvy", "", "packed 4:2:2, U Y0 V Y1", 2, 2, kToUyvy, kFromUyvy, {}, {}},
    {"vuyt", "", "packed 4:4:4, V U Y and an unused byte", 4, 1, {}, kFromVuyt, {}, {}},
    {"yuvp422",
     "yuv422p",
     "planar 4:2:2, Y, then U, then V",
     2,
     2,
     kToYuvp422,
     kFromYuvp422,
     {},
     {}},
    {"v210",
     "",
     "10-bit 4:2:2, six pixels in four words, rows of a multiple of 128 bytes",
     0,
     6,
     {},
     kFromV210,
     "yuvp422",
     {}},
    {"v216", "y216", "16-bit 4:2:2, U Y0 V Y1", 4, 2, {}, kFromV216, "yuvp422", {}},
    {"yuvp216",
     "yuv422p16",
     "16-bit planar 4:2:2, Y, then U, then V",
     4,
     2,
     {},
     {},
     "yuvp422",
     "v216"},
    {"bgrtq10",
     "",
     "32-bit words, red in bits 31-22, green 21-12, blue 11-2",
     4,
     1,
     {},
     kFromBgrtq10,
     "bgr16",
     {}},
    {"bgr10",
     "",
     "32-bit words, blue in bits 29-20, green 19-10, red 9-0",
     4,
     1,
     {},
     {},
     "bgr16",
     "bgr16"},
    {"bgr16", "", "16-bit blue, green, red", 6, 1, kToBgr16, kFromBgr16, {}, {}},
    {"bgra16",
     "",
     "16-bit blue, green, red, alpha; alpha is 255 from bgr16, 0x3FC0 from bgr10",
     8,
     1,
     {},
     {},
     "bgr16",
     "bgr16"},
    {"hsv8",
     "",
     "hue, saturation, value in a byte each, hue 0 to 254",
     3,
     1,
     kToHsv8,
     kFromHsv8,
     {},
     {}},
    {"hsvf",
     "",
     "floats, hue in degrees, saturation to 1, value to 255; made of yuyv",
     12,
     2,
     kToHsvf,
     kFromHsvf,
     {},
     {}},
    {"hsvp",
     "",
     "planes of floats, hue in degrees, saturation to 1, value to 1",
     12,
     1,
     kToHsvp,
     kFromHsvp,
     {},
     {}},
    {"lum", "", "luminance, one byte", 1, 1, kToLum, {}, {}, {}},
    {"lum32", "", "luminance in 1024ths, 32 bits", 4, 1, kToLum32, {}, {}, {}},
    {"luma32", "", "the luma samples of v210 or v216, 32 bits", 4, 1, {}, {}, {}, {}},
    {"gray8", "", "grey, one byte", 1, 1, kGray8, kGray8, {}, {}},
};

std::string Signal(const RawConversion& conversion) {
    return std::string(conversion.range) + (*conversion.range ? " " : "") + conversion.matrix;
}

const RawConversion& Find(const RawFormat& format, const char* direction,
                          std::span<const RawConversion> conversions, const std::string& range,
                          const std::string& matrix) {
    if (conversions.empty())
        throw UsageError(direction == std::string("to")
                             ? std::string("a PNG file cannot be converted to ") + format.name
                             : std::string(format.name) + " cannot be converted to a PNG file");
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
        if (name == format.name || (!name.empty() && name == format.alias)) return format;
        known += (known.empty() ? "" : ", ") + std::string(format.name);
    }
    throw UsageError("unknown format '" + name + "'; known are: " + known);
}

const RawFormat& PictureSideTo(const RawFormat& format) {
    return format.toRawBy == nullptr ? format : FindRawFormat(format.toRawBy);
}

const RawFormat& PictureSideFrom(const RawFormat& format) {
    return format.fromRawBy == nullptr ? format : FindRawFormat(format.fromRawBy);
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
    if (size.width % format.groupPixels == 0) return;
    if (format.groupPixels == 2)
        throw HostError(std::string(format.name) +
                        " is 4:2:2, two pixels share their chroma: the width must be even, not " +
                        std::to_string(size.width));
    throw HostError(
        std::string(format.name) + " holds groups of " + std::to_string(format.groupPixels) +
        " pixels, and a part of one is not converted: the width must be a multiple of " +
        std::to_string(format.groupPixels) + ", not " + std::to_string(size.width));
}

int V210RowBytes(int width) { return (width + 47) / 48 * 128; }

size_t FrameBytes(const RawFormat& format, Size size) {
    if (format.pixelBytes != 0) return PixelCount(size) * static_cast<size_t>(format.pixelBytes);
    return static_cast<size_t>(V210RowBytes(size.width)) * static_cast<size_t>(size.height);
}

std::vector<uint8_t> NewFrame(const RawFormat& format, Size size) {
    return std::vector<uint8_t>(FrameBytes(format, size) + 1);
}

std::string Describe(const RawFormat& format, const RawConversion& conversion) {
    const std::string signal = Signal(conversion);
    return format.name + (signal.empty() ? "" : " (" + signal + ")");
}

}  // namespace tqipl
