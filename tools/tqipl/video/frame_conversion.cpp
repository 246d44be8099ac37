// The table of conversions between frame formats and the ways through it.

#include "video/frame_conversion.h"

#include <TQIPLBaseLibU.h>

#include <algorithm>
#include <cstring>
#include <optional>

#include "host_error.h"
#include "planes.h"
#include "raw_repackings.h"

namespace tqipl {

namespace {

size_t PixelCount(Size size) {
    return static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
}

void CopyLuma(Size size, unsigned char* src, unsigned char* dst) {
    IPL_MemcpyMultiThread_C1R(size.width, size.height, size.width, src, size.width, dst);
}

// Both pixels of a pair get its chroma.
void Yuvp422ToYuvp444(Size size, unsigned char* src, unsigned char* dst) {
    CopyLuma(size, src, dst);
    const size_t pixels = PixelCount(size);
    for (size_t plane = 0; plane < 2; ++plane)
        IPL_ZoomNN_8u_C1R(size.width / 2, size.height, size.width / 2,
                          src + pixels + plane * (pixels / 2), size.width, size.height, size.width,
                          dst + pixels * (plane + 1));
}

// A pair gets the mean of its chroma, truncated: half way between two samples is where the linear
// zoom to half the width takes its own.
void Yuvp444ToYuvp422(Size size, unsigned char* src, unsigned char* dst) {
    CopyLuma(size, src, dst);
    const size_t pixels = PixelCount(size);
    for (size_t plane = 0; plane < 2; ++plane)
        IPL_ZoomLinearMultiThread_8u_C1R(size.width, size.height, size.width,
                                         src + pixels * (plane + 1), size.width / 2, size.height,
                                         size.width / 2, dst + pixels + plane * (pixels / 2));
}

template <FrameFormat format> void AddNeutral(Size size, unsigned char* src, unsigned char* dst) {
    CopyLuma(size, src, dst);
    for (const PlaneShape& plane : PlanesOf(format, size))
        if (plane.offset != 0)
            IPL_FillMemory_C1R(plane.width, plane.height, plane.rowBytes, dst + plane.offset, 128);
}

// The library has no routines that move samples within their sixteen bits.
template <class Change>
void Shift(Size size, const unsigned char* src, unsigned char* dst, Change change) {
    for (size_t i = 0; i < PixelCount(size) * 2; ++i) {
        const auto sample = static_cast<unsigned int>(src[2 * i] | src[2 * i + 1] << 8);
        const unsigned int shifted = change(sample);
        dst[2 * i] = static_cast<unsigned char>(shifted);
        dst[2 * i + 1] = static_cast<unsigned char>(shifted >> 8);
    }
}

void Yuvp210ToYuvp216(Size size, unsigned char* src, unsigned char* dst) {
    Shift(size, src, dst, [](unsigned int sample) { return sample << 6; });
}

void Yuvp216ToYuvp210(Size size, unsigned char* src, unsigned char* dst) {
    Shift(size, src, dst, [](unsigned int sample) { return sample >> 6; });
}

// The upper eight bits, as of V210 in the library.
void Yuvp216ToYuvp422(Size size, unsigned char* src, unsigned char* dst) {
    for (size_t i = 0; i < PixelCount(size) * 2; ++i) dst[i] = src[2 * i + 1];
}

// V210 is converted in whole groups of six pixels. A row has room for the whole of its last group;
// planes of other widths get a copy with such rows.
class WidePlanes {
public:
    explicit WidePlanes(Size size)
        : m_size(size),
          m_wide{(size.width + 5) / 6 * 6, size.height},
          m_bytes(FrameBytes(FrameFormat::kYuvp216, m_wide)) {
        m_planes.AddPlanar422(m_wide, m_bytes.data(), 2);
    }

    Size Wide() const { return m_wide; }
    Planes& Arrays() { return m_planes; }

    template <bool toWide> void Copy(unsigned char* planes) {
        const std::vector<PlaneShape> narrow = PlanesOf(FrameFormat::kYuvp216, m_size);
        const std::vector<PlaneShape> wide = PlanesOf(FrameFormat::kYuvp216, m_wide);
        for (size_t i = 0; i < narrow.size(); ++i) {
            unsigned char* ours = m_bytes.data() + wide[i].offset;
            unsigned char* theirs = planes + narrow[i].offset;
            IPL_MemcpyMultiThread_C1R_16u(
                narrow[i].width, narrow[i].height, toWide ? narrow[i].rowBytes : wide[i].rowBytes,
                toWide ? theirs : ours, toWide ? wide[i].rowBytes : narrow[i].rowBytes,
                toWide ? ours : theirs);
        }
    }

private:
    Size m_size;
    Size m_wide;
    std::vector<uint8_t> m_bytes;
    Planes m_planes;
};

void V210ToYuvp216(Size size, unsigned char* src, unsigned char* dst) {
    const auto convert = [&](int width, Planes& planes) {
        IPL_V210_To_YUVP216MultiThread(width, size.height, V210RowBytes(size.width), src,
                                       planes.strides, planes.pointers);
    };
    if (size.width % 6 == 0) {
        Planes planes;
        planes.AddPlanar422(size, dst, 2);
        return convert(size.width, planes);
    }
    WidePlanes wide(size);
    convert(wide.Wide().width, wide.Arrays());
    wide.Copy<false>(dst);
}

void Yuvp216ToV210(Size size, unsigned char* src, unsigned char* dst) {
    // What is behind the last group of a row is not written by the conversion.
    if (size.width % 48 != 0) std::memset(dst, 0, FrameBytes(FrameFormat::kV210, size));
    const auto convert = [&](int width, Planes& planes) {
        IPL_YUVP216_To_V210MultiThread(width, size.height, planes.strides, planes.pointers,
                                       V210RowBytes(size.width), dst);
    };
    if (size.width % 6 == 0) {
        Planes planes;
        planes.AddPlanar422(size, src, 2);
        return convert(size.width, planes);
    }
    WidePlanes wide(size);
    wide.Copy<true>(src);
    convert(wide.Wide().width, wide.Arrays());
}

// `convert` is null for a repacking of raw files, and for what computes with a matrix.
struct Way {
    FrameFormat from;
    FrameFormat to;
    bool keepsAll;
    FrameConversion convert;
};

constexpr Way kWays[] = {
    {FrameFormat::kUyvy, FrameFormat::kYuvp422, true, nullptr},
    {FrameFormat::kYuyv, FrameFormat::kYuvp422, true, nullptr},
    {FrameFormat::kYuvp422, FrameFormat::kUyvy, true, nullptr},
    {FrameFormat::kYuvp422, FrameFormat::kYuyv, true, nullptr},
    {FrameFormat::kYuvp422, FrameFormat::kYuvp444, false, Yuvp422ToYuvp444},
    {FrameFormat::kYuvp422, FrameFormat::kGray8, false, CopyLuma},
    {FrameFormat::kYuvp422, FrameFormat::kArgb, false, nullptr},
    {FrameFormat::kYuvp422, FrameFormat::kYuvp216, false, nullptr},
    {FrameFormat::kYuvp444, FrameFormat::kYuvp422, false, Yuvp444ToYuvp422},
    {FrameFormat::kYuvp444, FrameFormat::kGray8, false, CopyLuma},
    {FrameFormat::kGray8, FrameFormat::kYuvp422, false, AddNeutral<FrameFormat::kYuvp422>},
    {FrameFormat::kGray8, FrameFormat::kYuvp444, false, AddNeutral<FrameFormat::kYuvp444>},
    {FrameFormat::kArgb, FrameFormat::kYuvp422, false, nullptr},
    {FrameFormat::kYuvp210, FrameFormat::kYuvp216, true, Yuvp210ToYuvp216},
    {FrameFormat::kYuvp216, FrameFormat::kYuvp210, false, Yuvp216ToYuvp210},
    {FrameFormat::kYuvp216, FrameFormat::kYuvp422, false, Yuvp216ToYuvp422},
    {FrameFormat::kYuvp216, FrameFormat::kV210, false, Yuvp216ToV210},
    {FrameFormat::kYuvp216, FrameFormat::kV216, true, nullptr},
    {FrameFormat::kV210, FrameFormat::kYuvp216, true, V210ToYuvp216},
    {FrameFormat::kV216, FrameFormat::kYuvp216, true, nullptr},
};

using Ways = std::vector<const Way*>;

// The shortest way to the format, if there is one.
std::optional<Ways> FindWays(FrameFormat from, FrameFormat to, bool keepsAll) {
    std::vector<Ways> found{{}};
    std::vector<FrameFormat> reached{from};
    for (size_t i = 0; i < found.size(); ++i) {
        if (reached[i] == to) return found[i];
        for (const Way& way : kWays) {
            if (way.from != reached[i] || (keepsAll && !way.keepsAll) ||
                std::ranges::count(reached, way.to) != 0)
                continue;
            Ways longer = found[i];
            longer.push_back(&way);
            found.push_back(longer);
            reached.push_back(way.to);
        }
    }
    return std::nullopt;
}

FrameConversion ConversionOf(const Way& way, const Stream& stream) {
    if (way.convert != nullptr) return way.convert;
    const std::string from = KindOf(way.from).name;
    const std::string to = KindOf(way.to).name;
    const bool fromArgb = way.from == FrameFormat::kArgb;
    if (fromArgb || way.to == FrameFormat::kArgb) {
        const std::string matrix = MatrixFor("the conversion from " + from + " to " + to, stream);
        return fromArgb ? FindToRaw(FindRawFormat(to), "studio", matrix).convert
                        : FindFromRaw(FindRawFormat(from), "studio", matrix).convert;
    }
    for (const Repacking& repacking : Repackings())
        if (from == repacking.from && to == repacking.to) return repacking.convert;
    throw HostError("there is no conversion from " + from + " to " + to);
}

class Conversion : public Operation {
public:
    Conversion(Size size, const Ways& ways, Stream& stream) : m_size(size) {
        for (const Way* way : ways) {
            CheckFrameWidth(way->to, size);
            m_steps.push_back({ConversionOf(*way, stream), way->to});
        }
        stream.format = ways.back()->to;
    }

    void Take(Frame& frame, const Emit& emit) override {
        for (const Step& step : m_steps) {
            m_next.Fit(step.to, m_size);
            step.convert(m_size, frame.bytes.data(), m_next.bytes.data());
            std::swap(frame.bytes, m_next.bytes);
        }
        emit(frame);
    }

private:
    struct Step {
        FrameConversion convert;
        FrameFormat to;
    };
    Size m_size;
    std::vector<Step> m_steps;
    Frame m_next;
};

}  // namespace

OperationPointer RepackFor(const std::string& operation, std::span<const FrameFormat> formats,
                           Stream& stream) {
    if (std::ranges::count(formats, stream.format) != 0) return nullptr;
    std::string names;
    for (const FrameFormat format : formats) {
        if (const auto ways = FindWays(stream.format, format, true))
            return std::make_unique<Conversion>(stream.size, *ways, stream);
        names += (names.empty() ? "" : ", ") + std::string(KindOf(format).name);
    }
    throw UsageError(operation + " takes " + names + ", and " + NameOf(stream) +
                     " cannot become one of these without loss; put --op format=NAME before it");
}

OperationPointer ConvertTo(FrameFormat format, Stream& stream) {
    if (stream.format == format) return nullptr;
    const auto ways = FindWays(stream.format, format, false);
    if (!ways)
        throw UsageError(std::string("there is no conversion from ") + NameOf(stream) + " to " +
                         KindOf(format).name);
    return std::make_unique<Conversion>(stream.size, *ways, stream);
}

void PackVuyt(Size size, unsigned char* planes, unsigned char* packed) {
    Planes arrays;
    unsigned char* next = planes;
    for (int i = 0; i < 3; ++i) next = arrays.Add(next, size.width, size.height);
    IPL_BuildColorMultiThread(TQ_COLOR_AYUV, size.width, size.height, arrays.strides,
                              arrays.pointers, size.width * 4, packed);
}

void UnpackVuyt(Size size, unsigned char* packed, unsigned char* planes) {
    Planes arrays;
    unsigned char* next = planes;
    for (int i = 0; i < 3; ++i) next = arrays.Add(next, size.width, size.height);
    IPL_SplitColorMultiThread(TQ_COLOR_AYUV, size.width, size.height, size.width * 4, packed,
                              arrays.strides, arrays.pointers);
}

void CheckStudioRange(const std::string& what, const Stream& stream) {
    if (stream.fullRange)
        throw UsageError(what + " is for studio range, and the header says XCOLORRANGE=FULL");
}

std::string MatrixFor(const std::string& what, const Stream& stream) {
    CheckStudioRange(what, stream);
    if (stream.matrix == "2020")
        throw UsageError(what +
                         " has the matrices 601 and 709, and the frames have 2020; put "
                         "--op matrix=2020-709 before it");
    return stream.matrix.empty() ? "601" : stream.matrix;
}

}  // namespace tqipl
