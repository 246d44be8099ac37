// Planar 4:2:2 to ARGB and back, luma extraction, RGB and BGRA repacking.

#include <tqipl/color.h>

#include <string>

#include "bench/families.h"
#include "bench/support/frame_form.h"
#include "frame/module.h"
#include "reference/luma_and_repack_reference.h"
#include "reference/planar422_reference.h"

namespace tqbench {

namespace {

using ToArgb = void (*)(int, int, unsigned char*, int, unsigned char*);
using FromArgb = void (*)(int, int, int, unsigned char*, unsigned char*);
using Packed = void (*)(int, int, int, unsigned char*, int, unsigned char*);
using Luma = void (*)(int, int, int, unsigned char*, int, unsigned char*, int);

template <tqref::YuvToArgbPixel pixel>
void AddToArgb(const std::string& name, ToArgb plain, ToArgb multiThread, Size size) {
    const int w = size.width, h = size.height;
    const auto on = [=](ToArgb form) {
        return [=](uint8_t* src, uint8_t* dst) { form(w, h, src, 4 * w, dst); };
    };
    AddFrameForm(name, name + "_MultiThread", size, 2 * size.Pixels(), 4 * size.Pixels(), on(plain),
                 on(multiThread), [=](uint8_t* src, uint8_t* dst) {
                     tqref::YuvpToArgb<pixel, tqref::RowsApart>(w, h, src, 4 * w, dst);
                 });
}

template <const tqref::RgbToYuvSet& set>
void AddFromArgb(const std::string& name, FromArgb plain, FromArgb multiThread, Size size) {
    const int w = size.width, h = size.height;
    const auto on = [=](FromArgb form) {
        return [=](uint8_t* src, uint8_t* dst) { form(w, h, 4 * w, src, dst); };
    };
    AddFrameForm(name, name + "_MultiThread", size, 4 * size.Pixels(), 2 * size.Pixels(), on(plain),
                 on(multiThread), [=](uint8_t* src, uint8_t* dst) {
                     tqref::ArgbToYuvp<set, tqref::RowsApart>(w, h, 4 * w, src, dst);
                 });
}

// There is no plain form. Half reads every second row, and of it every cache line.
template <int lumaByte> void AddLuma(const std::string& name, Luma form, Size size, int half) {
    const int w = size.width, h = size.height;
    const Call call = [=](uint8_t* src, uint8_t* dst) { form(w, h, 2 * w, src, w, dst, half); };
    AddFrameForm(
        "", name + (half != 0 ? ":half" : ""), size, half != 0 ? size.Pixels() : 2 * size.Pixels(),
        half != 0 ? size.Pixels() / 4 : size.Pixels(), call, call, [=](uint8_t* src, uint8_t* dst) {
            tqref::LumaOfPacked422<lumaByte>(g_IPLProcessorCount, w, h, 2 * w, src, w, dst, half);
        });
}

template <class Reference>
void AddRepacking(const std::string& name, Packed plain, Packed multiThread, int srcBytes,
                  int dstBytes, Size size, Reference reference) {
    const int w = size.width, h = size.height;
    const auto on = [=](Packed form) {
        return
            [=](uint8_t* src, uint8_t* dst) { form(w, h, srcBytes * w, src, dstBytes * w, dst); };
    };
    AddFrameForm(name, name + "_MultiThread", size, srcBytes * size.Pixels(),
                 dstBytes * size.Pixels(), on(plain), on(multiThread), reference);
}

}  // namespace

void AddPlanar422() {
    for (const Size size : kSizes) {
        const int w = size.width, h = size.height;
        AddToArgb<tqref::FullRangePixel>("IPL_YUVP_422_To_ARGB444", IPL_YUVP_422_To_ARGB444,
                                         IPL_YUVP_422_To_ARGB444_MultiThread, size);
        AddToArgb<tqref::Studio601Pixel>("IPL_YUVP422_To_ARGB_601", IPL_YUVP422_To_ARGB_601,
                                         IPL_YUVP422_To_ARGB_601_MultiThread, size);
        AddToArgb<tqref::Studio709Pixel>("IPL_YUVP422_To_ARGB_709", IPL_YUVP422_To_ARGB_709,
                                         IPL_YUVP422_To_ARGB_709_MultiThread, size);
        AddFromArgb<tqref::k601FromRgb>("IPL_ARGB_To_YUVP422_601", IPL_ARGB_To_YUVP422_601,
                                        IPL_ARGB_To_YUVP422_601_MultiThread, size);
        AddFromArgb<tqref::k709FromRgb>("IPL_ARGB_To_YUVP422_709", IPL_ARGB_To_YUVP422_709,
                                        IPL_ARGB_To_YUVP422_709_MultiThread, size);
        for (const int half : {0, 1}) {
            AddLuma<tqref::kYuyvLuma>("IPL_YUYV_To_YMultiThread", IPL_YUYV_To_YMultiThread, size,
                                      half);
            AddLuma<tqref::kUyvyLuma>("IPL_UYVY_To_YMultiThread", IPL_UYVY_To_YMultiThread, size,
                                      half);
        }
        AddRepacking(
            "IPL_RGB2BGRA", IPL_RGB2BGRA, IPL_RGB2BGRA_MultiThread, 3, 4, size,
            [=](uint8_t* src, uint8_t* dst) { tqref::RgbToBgra(w, h, 3 * w, src, 4 * w, dst); });
        AddRepacking(
            "IPL_BGRA2RGB", IPL_BGRA2RGB, IPL_BGRA2RGB_MultiThread, 4, 3, size,
            [=](uint8_t* src, uint8_t* dst) { tqref::BgraToRgb(w, h, 4 * w, src, 3 * w, dst); });
    }
}

}  // namespace tqbench
