// The table of repackings and the ways through it.

#include "raw_repackings.h"

#include <TQIPLBaseLibU.h>

#include <algorithm>
#include <string_view>

#include "host_error.h"
#include "planes.h"
#include "stopwatch.h"

namespace tqipl {

namespace {

template <auto convert, int srcBytes, int dstBytes>
void Pixels(Size size, unsigned char* src, unsigned char* dst) {
    convert(size.width, size.height, size.width * srcBytes, src, size.width * dstBytes, dst);
}

// Lum32 counts the destination's stride in ints. srcBytes is 0 for V210.
template <auto convert, int srcBytes> void Sums(Size size, unsigned char* src, unsigned char* dst) {
    convert(size.width, size.height,
            srcBytes != 0 ? size.width * srcBytes : V210RowBytes(size.width), src, size.width,
            reinterpret_cast<int*>(dst));
}

template <TQ_COLOR_FORMAT format> void Split(Size size, unsigned char* src, unsigned char* dst) {
    Planes planes;
    planes.AddPlanar422(size, dst, 1);
    IPL_SplitColorMultiThread(format, size.width, size.height, size.width * 2, src, planes.strides,
                              planes.pointers);
}

template <TQ_COLOR_FORMAT format> void Build(Size size, unsigned char* src, unsigned char* dst) {
    Planes planes;
    planes.AddPlanar422(size, src, 1);
    IPL_BuildColorMultiThread(format, size.width, size.height, planes.strides, planes.pointers,
                              size.width * 2, dst);
}

template <auto convert> void V210ToPacked(Size size, unsigned char* src, unsigned char* dst) {
    convert(size.width, size.height, V210RowBytes(size.width), src, size.width * 2, dst);
}

void V210ToYuvp422(Size size, unsigned char* src, unsigned char* dst) {
    IPL_V210_To_YUVP422(size.width, size.height, V210RowBytes(size.width), src, size.width, dst);
}

void V210ToYuvp216(Size size, unsigned char* src, unsigned char* dst) {
    Planes planes;
    planes.AddPlanar422(size, dst, 2);
    IPL_V210_To_YUVP216MultiThread(size.width, size.height, V210RowBytes(size.width), src,
                                   planes.strides, planes.pointers);
}

void Yuvp216ToV210(Size size, unsigned char* src, unsigned char* dst) {
    Planes planes;
    planes.AddPlanar422(size, src, 2);
    IPL_YUVP216_To_V210MultiThread(size.width, size.height, planes.strides, planes.pointers,
                                   V210RowBytes(size.width), dst);
}

void V216ToYuvp216(Size size, unsigned char* src, unsigned char* dst) {
    Planes planes;
    planes.AddPlanar422(size, dst, 2);
    IPL_V216_To_YUVP216MultiThread(size.width, size.height, size.width * 4, src, planes.strides,
                                   planes.pointers);
}

void Yuvp216ToV216(Size size, unsigned char* src, unsigned char* dst) {
    Planes planes;
    planes.AddPlanar422(size, src, 2);
    IPL_YUVP216_To_V216MultiThread(size.width, size.height, planes.strides, planes.pointers,
                                   size.width * 4, dst);
}

// The library has no routine that makes 8-bit samples wider. As everywhere in it, the bits that
// are not there are zero.
void Yuvp422ToYuvp216(Size size, unsigned char* src, unsigned char* dst) {
    const size_t samples = static_cast<size_t>(size.width) * static_cast<size_t>(size.height) * 2;
    for (size_t i = 0; i < samples; ++i) {
        dst[2 * i] = 0;
        dst[2 * i + 1] = src[i];
    }
}

// The second plane of BGRA16b, a luminance limited to 255, is not part of the file.
template <auto convert, int srcBytes>
void ToBgra16(Size size, unsigned char* src, unsigned char* dst) {
    std::vector<uint8_t> luminance(static_cast<size_t>(size.width) *
                                   static_cast<size_t>(size.height) * 2);
    Planes planes;
    planes.Add(dst, size.width * 8, size.height);
    planes.Add(luminance.data(), size.width * 2, size.height);
    convert(size.width, size.height, size.width * srcBytes, src, planes.strides, planes.pointers);
}

template <auto convert, int dstBytes>
void FromBgra16(Size size, unsigned char* src, unsigned char* dst) {
    Planes planes;
    planes.Add(src, size.width * 8, size.height);
    convert(size.width, size.height, planes.strides, planes.pointers, size.width * dstBytes, dst);
}

constexpr Repacking kRepackings[] = {
    {"yuyv", "yuvp422", Split<TQ_COLOR_YUYV>, "IPL_SplitColor"},
    {"uyvy", "yuvp422", Split<TQ_COLOR_UYVY>, "IPL_SplitColor"},
    {"yuvp422", "yuyv", Build<TQ_COLOR_YUYV>, "IPL_BuildColor"},
    {"yuvp422", "uyvy", Build<TQ_COLOR_UYVY>, "IPL_BuildColor"},
    {"yuvp422", "yuvp216", Yuvp422ToYuvp216, "the host; the low eight bits are zero"},
    {"v210", "uyvy", V210ToPacked<IPL_V210_To_UYVY>, "IPL_V210_To_UYVY"},
    {"v210", "yuyv", V210ToPacked<IPL_V210_To_YUYV>, "IPL_V210_To_YUYV"},
    {"v210", "yuvp422", V210ToYuvp422, "IPL_V210_To_YUVP422"},
    {"v210", "yuvp216", V210ToYuvp216, "IPL_V210_To_YUVP216"},
    {"v210", "luma32", Sums<IPL_V210_To_Lum32MultiThread, 0>, "IPL_V210_To_Lum32"},
    {"yuvp216", "v210", Yuvp216ToV210, "IPL_YUVP216_To_V210"},
    {"yuvp216", "v216", Yuvp216ToV216, "IPL_YUVP216_To_V216"},
    {"v216", "yuvp216", V216ToYuvp216, "IPL_V216_To_YUVP216"},
    {"v216", "luma32", Sums<IPL_V216_To_Lum32MultiThread, 4>, "IPL_V216_To_Lum32"},
    {"bgrtq10", "bgr16", Pixels<IPL_BGRTQ10b_To_BGRTQ16bMultiThread, 4, 6>,
     "IPL_BGRTQ10b_To_BGRTQ16b"},
    {"bgr16", "bgrtq10", Pixels<IPL_BGRTQ16b_To_BGRTQ10bMultiThread, 6, 4>,
     "IPL_BGRTQ16b_To_BGRTQ10b"},
    {"bgr10", "bgra16", ToBgra16<IPL_BGR10b_To_BGRA16bMultiThread, 4>, "IPL_BGR10b_To_BGRA16b"},
    {"bgr16", "bgra16", ToBgra16<IPL_BGR16b_To_BGRA16bMultiThread, 6>, "IPL_BGR16b_To_BGRA16b"},
    {"bgra16", "bgr10", FromBgra16<IPL_BGRA16b_To_BGR10bMultiThread, 4>, "IPL_BGRA16b_To_BGR10b"},
    {"bgra16", "bgr16", FromBgra16<IPL_BGRA16b_To_BGR16bMultiThread, 6>, "IPL_BGRA16b_To_BGR16b"},
    {"argb", "rgb", Pixels<IPL_BGRA2RGB_MultiThread, 4, 3>, "IPL_BGRA2RGB"},
};

// The ways from one format to every format that can be reached, shortest first.
std::vector<Route> RoutesFrom(std::string_view from) {
    std::vector<Route> routes{{}};
    std::vector<std::string_view> reached{from};
    for (size_t i = 0; i < routes.size(); ++i)
        for (const Repacking& step : kRepackings) {
            if (step.from != reached[i] || std::ranges::count(reached, step.to) != 0) continue;
            Route route = routes[i];
            route.push_back(&step);
            routes.push_back(route);
            reached.push_back(step.to);
        }
    return routes;
}

}  // namespace

std::span<const Repacking> Repackings() { return kRepackings; }

Route FindRoute(const RawFormat& from, const RawFormat& to) {
    std::string known;
    for (const Route& route : RoutesFrom(from.name)) {
        const std::string end = route.empty() ? from.name : route.back()->to;
        if (end == to.name) return route;
        if (!route.empty()) known += (known.empty() ? "" : ", ") + end;
    }
    throw UsageError(std::string(from.name) + " cannot be repacked to " + to.name +
                     (known.empty() ? "" : "; it can to: " + known));
}

void CheckRoute(const Route& route, Size size) {
    for (const Repacking* step : route) {
        CheckWidth(FindRawFormat(step->from), size);
        CheckWidth(FindRawFormat(step->to), size);
    }
}

double RunRoute(const Route& route, Size size, std::vector<uint8_t>& frame) {
    double taken = 0;
    for (const Repacking* step : route) {
        std::vector<uint8_t> next = NewFrame(FindRawFormat(step->to), size);
        taken += TimeOf([&] { step->convert(size, frame.data(), next.data()); });
        frame = std::move(next);
    }
    return taken;
}

std::string Describe(const Route& route) {
    std::string text;
    for (const Repacking* step : route) {
        if (text.empty()) text = step->from;
        text += std::string(" to ") + step->to;
    }
    return text;
}

}  // namespace tqipl
