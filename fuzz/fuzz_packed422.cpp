// Packed and planar 4:2:2 to and from ARGB, luma planes and repacking.

#include <tqipl/color.h>

#include "fuzz_check.h"
#include "pixel_form.h"
#include "reference/argb_to_packed422_reference.h"
#include "reference/luma_and_repack_reference.h"
#include "reference/packed422_to_argb_reference.h"
#include "reference/planar422_reference.h"

namespace {

using tqfuzz::Image;
using tqfuzz::Input;
using tqfuzz::Stage;

constexpr tqfuzz::PixelForm<uint8_t> kPackedForms[] = {
    {"IPL_YUYV422_To_ARGB444", IPL_YUYV422_To_ARGB444, IPL_YUYV422_To_ARGB444_MultiThread,
     tqref::Yuyv422ToArgb, 2, 4, 8},
    {"IPL_UYVY422_To_ARGB444", IPL_UYVY422_To_ARGB444, IPL_UYVY422_To_ARGB444_MultiThread,
     tqref::Uyvy422ToArgb, 2, 4, 8},
    {"IPL_VUYT444_To_ARGB444", IPL_VUYT444_To_ARGB444, IPL_VUYT444_To_ARGB444_MultiThread,
     tqref::Vuyt444ToArgb, 1, 4, 4},
    {"IPL_YUYV2ARGB_601", IPL_YUYV2ARGB_601, IPL_YUYV2ARGB_601_MultiThread, tqref::Yuyv2Argb601, 2,
     4, 8},
    {"IPL_UYVY2ARGB_601", IPL_UYVY2ARGB_601, IPL_UYVY2ARGB_601_MultiThread, tqref::Uyvy2Argb601, 2,
     4, 8},
    {"IPL_YUYV2ARGB_709", IPL_YUYV2ARGB_709, IPL_YUYV2ARGB_709_MultiThread, tqref::Yuyv2Argb709, 2,
     4, 8},
    {"IPL_UYVY2ARGB_709", IPL_UYVY2ARGB_709, IPL_UYVY2ARGB_709_MultiThread, tqref::Uyvy2Argb709, 2,
     4, 8},
    {"IPL_ARGB2YUYV_601", IPL_ARGB2YUYV_601, IPL_ARGB2YUYV_601_MultiThread, tqref::Argb2Yuyv601, 2,
     8, 4},
    {"IPL_ARGB2YUYV_709", IPL_ARGB2YUYV_709, IPL_ARGB2YUYV_709_MultiThread, tqref::Argb2Yuyv709, 2,
     8, 4},
    {"IPL_ARGB2UYVY_601", IPL_ARGB2UYVY_601, IPL_ARGB2UYVY_601_MultiThread, tqref::Argb2Uyvy601, 2,
     8, 4},
    {"IPL_ARGB2UYVY_709", IPL_ARGB2UYVY_709, IPL_ARGB2UYVY_709_MultiThread, tqref::Argb2Uyvy709, 2,
     8, 4}};

// Planar forms with their arguments in one order; the stride is ARGB's.
using Planar = void (*)(int width, int height, int stride, uint8_t* planar, uint8_t* argb);
template <auto form>
void FromPlanar(int width, int height, int stride, uint8_t* planar, uint8_t* argb) {
    form(width, height, planar, stride, argb);
}
template <auto form>
void ToPlanar(int width, int height, int stride, uint8_t* planar, uint8_t* argb) {
    form(width, height, stride, argb, planar);
}
using PlanarReference = void (*)(int, int, int, tqref::Bytes& planar, tqref::Bytes& argb);
template <tqref::YuvToArgbPixel pixel, tqref::Planar422Layout (*layoutOf)(int, int)>
void FromReference(int width, int height, int stride, tqref::Bytes& planar, tqref::Bytes& argb) {
    tqref::YuvpToArgb<pixel, layoutOf>(width, height, planar, stride, argb);
}
template <const tqref::RgbToYuvSet& set, tqref::Planar422Layout (*layoutOf)(int, int)>
void ToReference(int width, int height, int stride, tqref::Bytes& planar, tqref::Bytes& argb) {
    tqref::ArgbToYuvp<set, layoutOf>(width, height, stride, argb, planar);
}

// The MultiThread forms lay the planes of odd widths out in their own way.
struct PlanarForm {
    const char* name;
    Planar form;
    PlanarReference reference;
};
constexpr PlanarForm kPlanarForms[] = {
    {"IPL_YUVP_422_To_ARGB444", FromPlanar<IPL_YUVP_422_To_ARGB444>,
     FromReference<tqref::FullRangePixel, tqref::RowsApart>},
    {"IPL_YUVP_422_To_ARGB444_MultiThread", FromPlanar<IPL_YUVP_422_To_ARGB444_MultiThread>,
     FromReference<tqref::FullRangePixel, tqref::RowsApart>},
    {"IPL_YUVP422_To_ARGB_601", FromPlanar<IPL_YUVP422_To_ARGB_601>,
     FromReference<tqref::Studio601Pixel, tqref::RowsRunOn>},
    {"IPL_YUVP422_To_ARGB_601_MultiThread", FromPlanar<IPL_YUVP422_To_ARGB_601_MultiThread>,
     FromReference<tqref::Studio601Pixel, tqref::RowsApart>},
    {"IPL_YUVP422_To_ARGB_709", FromPlanar<IPL_YUVP422_To_ARGB_709>,
     FromReference<tqref::Studio709Pixel, tqref::RowsRunOn>},
    {"IPL_YUVP422_To_ARGB_709_MultiThread", FromPlanar<IPL_YUVP422_To_ARGB_709_MultiThread>,
     FromReference<tqref::Studio709Pixel, tqref::RowsApart>},
    {"IPL_ARGB_To_YUVP422_601", ToPlanar<IPL_ARGB_To_YUVP422_601>,
     ToReference<tqref::k601FromRgb, tqref::RowsRunOn>},
    {"IPL_ARGB_To_YUVP422_601_MultiThread", ToPlanar<IPL_ARGB_To_YUVP422_601_MultiThread>,
     ToReference<tqref::k601FromRgb, tqref::RowsApart>},
    {"IPL_ARGB_To_YUVP422_709", ToPlanar<IPL_ARGB_To_YUVP422_709>,
     ToReference<tqref::k709FromRgb, tqref::RowsRunOn>},
    {"IPL_ARGB_To_YUVP422_709_MultiThread", ToPlanar<IPL_ARGB_To_YUVP422_709_MultiThread>,
     ToReference<tqref::k709FromRgb, tqref::RowsApart>}};

void CheckPlanar(Input& input, const PlanarForm& form) {
    const int width = input.Int(-3, 70), height = input.Int(-2, 34);
    Stage stage(input);
    Image& planar = stage.Add(width > 0 && height > 0 ? 2 * width * height : 0, 1, {.slack = 64});
    Image& argb = stage.Add(4 * width, height, {.slack = 0});
    stage.Expect([&] {
        form.reference(width, height, argb.Stride(), planar.ModelBytes(), argb.ModelBytes());
    });
    stage.Check(form.name, width, height,
                [&] { form.form(width, height, argb.Stride(), planar.Data(), argb.Data()); });
}

struct LumaForm {
    const char* name;
    void (*form)(int, int, int, unsigned char*, int, unsigned char*, int);
    void (*reference)(unsigned, int, int, int, tqref::Bytes&, int, tqref::Bytes&, int);
};
constexpr LumaForm kLumaForms[] = {{"IPL_YUYV_To_YMultiThread", IPL_YUYV_To_YMultiThread,
                                    tqref::LumaOfPacked422<tqref::kYuyvLuma>},
                                   {"IPL_UYVY_To_YMultiThread", IPL_UYVY_To_YMultiThread,
                                    tqref::LumaOfPacked422<tqref::kUyvyLuma>}};

void CheckLuma(Input& input, const LumaForm& form) {
    const int width = input.Int(-3, 100), height = input.Int(-2, 34), half = input.Int(-1, 1);
    Stage stage(input);
    Image& src = stage.Add(2 * width, height, {.slack = 8});
    Image& dst = stage.Add(width, height, {.slack = 0});
    stage.Expect([&] {
        form.reference(g_IPLProcessorCount, width, height, src.Stride(), src.ModelBytes(),
                       dst.Stride(), dst.ModelBytes(), half);
    });
    stage.Check(form.name, width, height, [&] {
        form.form(width, height, src.Stride(), src.Data(), dst.Stride(), dst.Data(), half);
    });
}

struct RepackForm {
    const char* name;
    void (*plain)(int, int, int, unsigned char*, int, unsigned char*);
    void (*multiThread)(int, int, int, unsigned char*, int, unsigned char*);
    void (*reference)(int, int, int64_t, tqref::Bytes&, int64_t, tqref::Bytes&);
    int srcBytes, dstBytes;
};
constexpr RepackForm kRepackForms[] = {
    {"IPL_RGB2BGRA", IPL_RGB2BGRA, IPL_RGB2BGRA_MultiThread, tqref::RgbToBgra, 3, 4},
    {"IPL_BGRA2RGB", IPL_BGRA2RGB, IPL_BGRA2RGB_MultiThread, tqref::BgraToRgb, 4, 3}};

void CheckRepack(Input& input, const RepackForm& form) {
    const int width = input.Int(-3, 100), height = input.Int(-2, 34);
    Stage stage(input);
    Image& src = stage.Add(form.srcBytes * width, height, {.oneRow = true, .slack = 0});
    Image& dst = stage.Add(form.dstBytes * width, height, {.slack = 8});
    stage.Expect([&] {
        form.reference(width, height, src.Stride(), src.ModelBytes(), dst.Stride(),
                       dst.ModelBytes());
    });
    for (auto function : {form.plain, form.multiThread})
        stage.Check(form.name, width, height, [&] {
            function(width, height, src.Stride(), src.Data(), dst.Stride(), dst.Data());
        });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    tqfuzz::UseMachine(input);
    switch (input.Byte() % 5) {
        case 0:
            CheckPlanar(input, input.Pick(kPlanarForms));
            break;
        case 1:
            CheckLuma(input, input.Pick(kLumaForms));
            break;
        case 2:
            CheckRepack(input, input.Pick(kRepackForms));
            break;
        default:
            tqfuzz::CheckPixelForm(input, input.Pick(kPackedForms));
    }
    return 0;
}
