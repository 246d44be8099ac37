// V210, V216 and deep BGR.

#include <tqipl/deep.h>

#include <string>

#include "bench/families.h"
#include "bench/support/frame_form.h"
#include "bench/support/plane_arrays.h"
#include "reference/deep_bgr_reference.h"
#include "reference/v210_v216_reference.h"

namespace tqbench {

namespace {

int V210RowBytes(int width) { return (width + 47) / 48 * 128; }

// Bytes a row by bytes a pixel, where 0 is V210.
int RowBytes(int pixelBytes, int width) {
    return pixelBytes != 0 ? pixelBytes * width : V210RowBytes(width);
}

template <class Dst>
void AddPacked(const std::string& name, const std::string& multiThreadName,
               void (*plain)(int, int, int, unsigned char*, int, Dst*),
               void (*multiThread)(int, int, int, unsigned char*, int, Dst*),
               void (*reference)(int, int, int, const uint8_t*, int, Dst*), int srcPixelBytes,
               int dstPixelElements) {
    for (const Size size : kSizes) {
        const int row = RowBytes(srcPixelBytes, size.width);
        const auto on = [=](auto form) {
            return [=](uint8_t* src, uint8_t* dst) {
                form(size.width, size.height, row, src, size.width * dstPixelElements,
                     reinterpret_cast<Dst*>(dst));
            };
        };
        AddFrameForm(name, multiThreadName, size, int64_t{row} * size.height,
                     size.Pixels() * dstPixelElements * int64_t{sizeof(Dst)}, on(plain),
                     multiThread != nullptr ? on(multiThread) : Call(), on(reference));
    }
}

template <class Dst>
void AddPacked(const std::string& name, void (*plain)(int, int, int, unsigned char*, int, Dst*),
               void (*multiThread)(int, int, int, unsigned char*, int, Dst*),
               void (*reference)(int, int, int, const uint8_t*, int, Dst*), int srcPixelBytes,
               int dstPixelElements) {
    AddPacked(name, name + "MultiThread", plain, multiThread, reference, srcPixelBytes,
              dstPixelElements);
}

enum class Layout { kYuvp216, kBgra16 };

PlaneArrays PlanesOf(Layout layout, uint8_t* block, Size size) {
    if (layout == Layout::kYuvp216)
        return {block, size.height, {2 * size.width, size.width, size.width}};
    return {block, size.height, {8 * size.width, 2 * size.width}};
}

int64_t PlaneBytes(Layout layout, Size size) {
    return size.Pixels() * (layout == Layout::kYuvp216 ? 4 : 10);
}

template <class Reference>
void AddToPlanes(const std::string& name, decltype(&IPL_V210_To_YUVP216) plain,
                 decltype(&IPL_V210_To_YUVP216) multiThread, Reference reference, int srcPixelBytes,
                 Layout layout) {
    for (const Size size : kSizes) {
        const int row = RowBytes(srcPixelBytes, size.width);
        const auto on = [=](auto form) {
            return [=](uint8_t* src, uint8_t* dst) {
                PlaneArrays to = PlanesOf(layout, dst, size);
                form(size.width, size.height, row, src, to.strides, to.planes);
            };
        };
        AddFrameForm(name, name + "MultiThread", size, int64_t{row} * size.height,
                     PlaneBytes(layout, size), on(plain), on(multiThread),
                     [=](uint8_t* src, uint8_t* dst) {
                         const PlaneArrays to = PlanesOf(layout, dst, size);
                         reference(size.width, size.height, row, src, to.strideList, to.planeList);
                     });
    }
}

// Of a frame in 16-bit BGRA only the first plane is read.
template <class Reference>
void AddFromPlanes(const std::string& name, decltype(&IPL_YUVP216_To_V210) plain,
                   decltype(&IPL_YUVP216_To_V210) multiThread, Reference reference,
                   int dstPixelBytes, Layout layout) {
    for (const Size size : kSizes) {
        const int row = RowBytes(dstPixelBytes, size.width);
        const auto on = [=](auto form) {
            return [=](uint8_t* src, uint8_t* dst) {
                PlaneArrays from = PlanesOf(layout, src, size);
                form(size.width, size.height, from.strides, from.planes, row, dst);
            };
        };
        AddFrameForm(name, name + "MultiThread", size,
                     layout == Layout::kBgra16 ? 8 * size.Pixels() : PlaneBytes(layout, size),
                     int64_t{row} * size.height, on(plain), on(multiThread),
                     [=](uint8_t* src, uint8_t* dst) {
                         const PlaneArrays from = PlanesOf(layout, src, size);
                         reference(size.width, size.height, from.strideList, from.planeList, row,
                                   dst);
                     });
    }
}

}  // namespace

void AddDeep() {
    AddPacked<uint8_t>("IPL_V210_To_UYVY", "", IPL_V210_To_UYVY, nullptr, tqref::V210ToUyvy, 0, 2);
    AddPacked<uint8_t>("IPL_V210_To_YUYV", "", IPL_V210_To_YUYV, nullptr, tqref::V210ToYuyv, 0, 2);
    // The destination's stride plays no part; two bytes a pixel are what is written.
    AddPacked<uint8_t>("IPL_V210_To_YUVP422", "", IPL_V210_To_YUVP422, nullptr,
                       tqref::V210ToYuvp422, 0, 2);
    AddPacked("IPL_V210_To_BGRA_601", IPL_V210_To_BGRA_601, IPL_V210_To_BGRA_601MultiThread,
              tqref::V210ToBgra601, 0, 4);
    AddPacked("IPL_V210_To_BGRA_709", IPL_V210_To_BGRA_709, IPL_V210_To_BGRA_709MultiThread,
              tqref::V210ToBgra709, 0, 4);
    AddToPlanes("IPL_V210_To_YUVP216", IPL_V210_To_YUVP216, IPL_V210_To_YUVP216MultiThread,
                tqref::V210ToYuvp216, 0, Layout::kYuvp216);
    AddFromPlanes("IPL_YUVP216_To_V210", IPL_YUVP216_To_V210, IPL_YUVP216_To_V210MultiThread,
                  tqref::Yuvp216ToV210, 0, Layout::kYuvp216);
    AddPacked("IPL_V210_To_Lum32", IPL_V210_To_Lum32, IPL_V210_To_Lum32MultiThread,
              tqref::V210ToLum32, 0, 1);

    AddPacked("IPL_V216_To_BGRA_601", IPL_V216_To_BGRA_601, IPL_V216_To_BGRA_601MultiThread,
              tqref::V216ToBgra601, 4, 4);
    AddPacked("IPL_V216_To_BGRA_709", IPL_V216_To_BGRA_709, IPL_V216_To_BGRA_709MultiThread,
              tqref::V216ToBgra709, 4, 4);
    AddToPlanes("IPL_V216_To_YUVP216", IPL_V216_To_YUVP216, IPL_V216_To_YUVP216MultiThread,
                tqref::V216ToYuvp216, 4, Layout::kYuvp216);
    AddFromPlanes("IPL_YUVP216_To_V216", IPL_YUVP216_To_V216, IPL_YUVP216_To_V216MultiThread,
                  tqref::Yuvp216ToV216, 4, Layout::kYuvp216);
    AddPacked("IPL_V216_To_Lum32", IPL_V216_To_Lum32, IPL_V216_To_Lum32MultiThread,
              tqref::V216ToLum32, 4, 1);

    AddPacked("IPL_BGRTQ10b_To_BGRA", IPL_BGRTQ10b_To_BGRA, IPL_BGRTQ10b_To_BGRAMultiThread,
              tqref::BgrTq10ToBgra, 4, 4);
    AddPacked("IPL_BGRTQ10b_To_BGRTQ16b", IPL_BGRTQ10b_To_BGRTQ16b,
              IPL_BGRTQ10b_To_BGRTQ16bMultiThread, tqref::BgrTq10ToBgrTq16, 4, 6);
    AddPacked("IPL_BGRTQ16b_To_BGRA", IPL_BGRTQ16b_To_BGRA, IPL_BGRTQ16b_To_BGRAMultiThread,
              tqref::BgrTq16ToBgra, 6, 4);
    AddPacked("IPL_BGRTQ16b_To_BGRTQ10b", IPL_BGRTQ16b_To_BGRTQ10b,
              IPL_BGRTQ16b_To_BGRTQ10bMultiThread, tqref::BgrTq16ToBgrTq10, 6, 4);
    AddToPlanes("IPL_BGR10b_To_BGRA16b", IPL_BGR10b_To_BGRA16b, IPL_BGR10b_To_BGRA16bMultiThread,
                tqref::Bgr10ToBgra16, 4, Layout::kBgra16);
    AddToPlanes("IPL_BGR16b_To_BGRA16b", IPL_BGR16b_To_BGRA16b, IPL_BGR16b_To_BGRA16bMultiThread,
                tqref::Bgr16ToBgra16, 6, Layout::kBgra16);
    AddFromPlanes("IPL_BGRA16b_To_BGR10b", IPL_BGRA16b_To_BGR10b, IPL_BGRA16b_To_BGR10bMultiThread,
                  tqref::Bgra16ToBgr10, 4, Layout::kBgra16);
    AddFromPlanes("IPL_BGRA16b_To_BGR16b", IPL_BGRA16b_To_BGR16b, IPL_BGRA16b_To_BGR16bMultiThread,
                  tqref::Bgra16ToBgr16, 6, Layout::kBgra16);
}

}  // namespace tqbench
