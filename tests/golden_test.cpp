// The bytes of every form at fixed sizes and contents, as hashes. They are the same for every
// compiler, system, instruction-set level and processor count; a change here is a change of what
// hosts get. Run with TQIPL_PRINT_GOLDEN set to print the tables anew.

#include <TQIPLBaseLibU.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/guarded_buffer.h"
#include "support/settings.h"

namespace {

const std::map<std::string, uint64_t> kGolden = {
#include "golden/color.txt"
#include "golden/image_memory.txt"
#include "golden/luminance.txt"
#include "golden/zoom.txt"
};

uint64_t Hash(const std::vector<uint8_t>& bytes) {  // FNV-1a
    uint64_t hash = 0xCBF29CE484222325;
    for (uint8_t byte : bytes) hash = (hash ^ byte) * 0x100000001B3;
    return hash;
}

std::vector<uint8_t> Hostile(size_t bytes, uint32_t seed) {
    std::vector<uint8_t> data(bytes);
    tqtest::FillHostile(data.data(), bytes, seed);
    return data;
}

// Runs a case at every level and at processor counts with and without bands.
void ExpectGolden(const std::string& name, const std::function<std::vector<uint8_t>()>& run) {
    if (std::getenv("TQIPL_PRINT_GOLDEN")) {
        std::printf("{\"%s\", 0x%016llx},\n", name.c_str(),
                    static_cast<unsigned long long>(Hash(run())));
        return;
    }
    const auto golden = kGolden.find(name);
    ASSERT_NE(golden, kGolden.end()) << name;
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels())
        for (unsigned processors : {1u, 3u, 8u}) {
            settings.Use(level);
            settings.UseProcessors(processors);
            EXPECT_EQ(Hash(run()), golden->second)
                << name << ", " << tq::IsaLevelName(level) << ", " << processors << " processors";
        }
}

struct Size {
    int width, height;
};
constexpr Size kSizes[] = {{64, 8}, {131, 21}};

template <class Dst> using PixelForm = void (*)(int, int, int, unsigned char*, int, Dst*);

// Pixels in, pixels out: rows of a source and a destination that are both padded.
template <class Dst>
void ExpectPixelForm(const std::string& name, PixelForm<Dst> form, int srcBytes, int dstElements) {
    for (Size size : kSizes)
        ExpectGolden(name + " " + std::to_string(size.width) + "x" + std::to_string(size.height),
                     [&] {
                         const int srcStride = size.width * srcBytes + 6;
                         const int dstStride = size.width * dstElements + 3;
                         auto src = Hostile(srcStride * size.height, 1);
                         auto dst = Hostile(dstStride * size.height * sizeof(Dst), 2);
                         form(size.width, size.height, srcStride, src.data(), dstStride,
                              reinterpret_cast<Dst*>(dst.data()));
                         return dst;
                     });
}

#define TQ_BOTH(form, srcBytes, dstElements)             \
    ExpectPixelForm(#form, form, srcBytes, dstElements); \
    ExpectPixelForm(#form "_MultiThread", form##_MultiThread, srcBytes, dstElements)

TEST(Golden, Luminance) {
    TQ_BOTH(IPL_ARGB2LUM, 4, 1);
    TQ_BOTH(IPL_BGR10b_To_Lum, 4, 1);
    TQ_BOTH(IPL_BGR16b_To_Lum, 6, 1);
    TQ_BOTH(IPL_BGRA_To_Lum32, 4, 1);
    TQ_BOTH(IPL_BGR10b_To_Lum32, 4, 1);
    TQ_BOTH(IPL_BGR16b_To_Lum32, 6, 1);
}

TEST(Golden, Color) {
    TQ_BOTH(IPL_YUYV422_To_ARGB444, 2, 4);
    TQ_BOTH(IPL_UYVY422_To_ARGB444, 2, 4);
    TQ_BOTH(IPL_VUYT444_To_ARGB444, 4, 4);
    TQ_BOTH(IPL_YUYV2ARGB_601, 2, 4);
    TQ_BOTH(IPL_UYVY2ARGB_601, 2, 4);
    TQ_BOTH(IPL_YUYV2ARGB_709, 2, 4);
    TQ_BOTH(IPL_UYVY2ARGB_709, 2, 4);
    TQ_BOTH(IPL_ARGB2YUYV_601, 4, 2);
    TQ_BOTH(IPL_ARGB2YUYV_709, 4, 2);
    TQ_BOTH(IPL_ARGB2UYVY_601, 4, 2);
    TQ_BOTH(IPL_ARGB2UYVY_709, 4, 2);
}

TEST(Golden, ImageMemory) {
    ExpectPixelForm("IPL_Memcpy_C1R", IPL_Memcpy_C1R, 1, 1);
    ExpectPixelForm("IPL_Memcpy_C1R_16u", IPL_Memcpy_C1R_16u, 2, 2);
    ExpectPixelForm("IPL_Memcpy_C4R", IPL_Memcpy_C4R, 4, 4);
    ExpectPixelForm("IPL_MemcpyMultiThread_C1R", IPL_MemcpyMultiThread_C1R, 1, 1);
    ExpectPixelForm("IPL_MemcpyMultiThread_C1R_16u", IPL_MemcpyMultiThread_C1R_16u, 2, 2);
    ExpectPixelForm("IPL_MemcpyMultiThread_C4R", IPL_MemcpyMultiThread_C4R, 4, 4);
    ExpectPixelForm("IPL_MemcpyInvert_CR1", IPL_MemcpyInvert_CR1, 1, 1);
    ExpectPixelForm("IPL_MemcpyInvert_CR4", IPL_MemcpyInvert_CR4, 4, 4);
    const TQ_RECT rect = {7, 3, 40, 6};
    for (TQ_COLOR_FORMAT format :
         {TQ_COLOR_ARGB, TQ_COLOR_AYUV, TQ_COLOR_YUYV, TQ_COLOR_UYVY, TQ_COLOR_PACKED32}) {
        const std::string suffix = " format " + std::to_string(static_cast<int>(format));
        const auto onFrame = [&](auto&& routine) {
            return [format, routine] {
                auto src = Hostile(260 * 9, 3), dst = Hostile(260 * 9, 4);
                routine(format, src.data(), dst.data());
                return dst;
            };
        };
        using Bytes = unsigned char*;
        ExpectGolden("IPL_MemcpyIn" + suffix, onFrame([&](auto f, Bytes src, Bytes dst) {
                         IPL_MemcpyIn(f, 64, 9, 260, src, 260, dst, rect, 1);
                     }));
        ExpectGolden("IPL_MemcpyOut" + suffix, onFrame([&](auto f, Bytes src, Bytes dst) {
                         IPL_MemcpyOut(f, 64, 9, 260, src, 260, dst, rect, 1);
                     }));
        ExpectGolden("IPL_BlackMemoryOut" + suffix, onFrame([&](auto f, Bytes, Bytes dst) {
                         TQ_RECT copy = rect;
                         IPL_BlackMemoryOut(f, 64, 9, 260, dst, copy);
                     }));
        ExpectGolden("IPL_MemcpyInvert" + suffix, onFrame([&](auto f, Bytes src, Bytes dst) {
                         IPL_MemcpyInvert(f, 64, 9, 260, src, 260, dst);
                     }));
    }
    using PadForm = decltype(&IPL_MemcpyAndPad_C1R);
    for (auto [name, form] :
         {std::pair<const char*, PadForm>{"IPL_MemcpyAndPad_C1R", IPL_MemcpyAndPad_C1R},
          {"IPL_MemcpyAndPadMultiThread_C1R", IPL_MemcpyAndPadMultiThread_C1R}})
        ExpectGolden(name, [form = form] {
            auto src = Hostile(50 * 20, 5), dst = Hostile(70 * 40, 6);
            form(47, 20, 50, src.data(), 70, dst.data(), 3, 9, 11, 8);
            return dst;
        });
}

using ZoomForm = void (*)(int, int, int, unsigned char*, int, int, int, unsigned char*);

void ExpectZoom(const std::string& name, ZoomForm form, int pixelBytes) {
    for (auto [from, to] : {std::pair<Size, Size>{{33, 21}, {66, 42}},
                            {{33, 21}, {65, 41}},
                            {{64, 40}, {27, 13}},
                            {{17, 9}, {131, 9}},
                            {{40, 30}, {23, 77}},
                            {{1, 1}, {19, 5}},
                            {{5, 3}, {5, 3}}})
        ExpectGolden(name + " " + std::to_string(from.width) + "x" + std::to_string(from.height) +
                         " to " + std::to_string(to.width) + "x" + std::to_string(to.height),
                     [&, from = from, to = to] {
                         const int srcStride = from.width * pixelBytes + 5;
                         const int dstStride = to.width * pixelBytes + 7;
                         auto src = Hostile(srcStride * from.height, 7);
                         auto dst = Hostile(dstStride * to.height, 8);
                         form(from.width, from.height, srcStride, src.data(), to.width, to.height,
                              dstStride, dst.data());
                         return dst;
                     });
}

TEST(Golden, Zoom) {
    ExpectZoom("IPL_ZoomNN_8u_C1R", IPL_ZoomNN_8u_C1R, 1);
    ExpectZoom("IPL_ZoomNN_8u_C4R", IPL_ZoomNN_8u_C4R, 4);
    ExpectZoom("IPL_ZoomLinear_8u_C1R", IPL_ZoomLinear_8u_C1R, 1);
    ExpectZoom("IPL_ZoomLinear_8u_C4R", IPL_ZoomLinear_8u_C4R, 4);
    ExpectZoom("IPL_ZoomLinearMultiThread_8u_C1R", IPL_ZoomLinearMultiThread_8u_C1R, 1);
    ExpectZoom("IPL_ZoomLinearMultiThread_8u_C4R", IPL_ZoomLinearMultiThread_8u_C4R, 4);
}

}  // namespace
