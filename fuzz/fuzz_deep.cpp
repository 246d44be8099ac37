// V210, V216 and deep BGR, luminance planes.

#include <tqipl/deep.h>
#include <tqipl/luminance.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "fuzz_check.h"
#include "pixel_form.h"
#include "reference/deep_bgr_reference.h"
#include "reference/luminance_reference.h"
#include "reference/v210_v216_reference.h"

namespace {

using tqfuzz::Image;
using tqfuzz::Input;
using tqfuzz::Stage;

constexpr tqfuzz::PixelForm<uint8_t> kByteForms[] = {
    {"IPL_V210_To_UYVY", IPL_V210_To_UYVY, nullptr, tqref::V210ToUyvy, 6, 16, 12},
    {"IPL_V210_To_YUYV", IPL_V210_To_YUYV, nullptr, tqref::V210ToYuyv, 6, 16, 12},
    {"IPL_V210_To_BGRA_601", IPL_V210_To_BGRA_601, IPL_V210_To_BGRA_601MultiThread,
     tqref::V210ToBgra601, 6, 16, 24},
    {"IPL_V210_To_BGRA_709", IPL_V210_To_BGRA_709, IPL_V210_To_BGRA_709MultiThread,
     tqref::V210ToBgra709, 6, 16, 24},
    {"IPL_V216_To_BGRA_601", IPL_V216_To_BGRA_601, IPL_V216_To_BGRA_601MultiThread,
     tqref::V216ToBgra601, 2, 8, 8},
    {"IPL_V216_To_BGRA_709", IPL_V216_To_BGRA_709, IPL_V216_To_BGRA_709MultiThread,
     tqref::V216ToBgra709, 2, 8, 8},
    {"IPL_BGRTQ10b_To_BGRA", IPL_BGRTQ10b_To_BGRA, IPL_BGRTQ10b_To_BGRAMultiThread,
     tqref::BgrTq10ToBgra, 1, 4, 4},
    {"IPL_BGRTQ10b_To_BGRTQ16b", IPL_BGRTQ10b_To_BGRTQ16b, IPL_BGRTQ10b_To_BGRTQ16bMultiThread,
     tqref::BgrTq10ToBgrTq16, 1, 4, 6},
    {"IPL_BGRTQ16b_To_BGRA", IPL_BGRTQ16b_To_BGRA, IPL_BGRTQ16b_To_BGRAMultiThread,
     tqref::BgrTq16ToBgra, 1, 6, 4},
    {"IPL_BGRTQ16b_To_BGRTQ10b", IPL_BGRTQ16b_To_BGRTQ10b, IPL_BGRTQ16b_To_BGRTQ10bMultiThread,
     tqref::BgrTq16ToBgrTq10, 1, 6, 4},
    {"IPL_ARGB2LUM", IPL_ARGB2LUM, IPL_ARGB2LUM_MultiThread, tqref::Argb2Lum, 1, 4, 1},
    {"IPL_BGR10b_To_Lum", IPL_BGR10b_To_Lum, IPL_BGR10b_To_Lum_MultiThread, tqref::Bgr10ToLum, 1, 4,
     1},
    {"IPL_BGR16b_To_Lum", IPL_BGR16b_To_Lum, IPL_BGR16b_To_Lum_MultiThread, tqref::Bgr16ToLum, 1, 6,
     1}};

constexpr tqfuzz::PixelForm<int> kSumForms[] = {
    {"IPL_V210_To_Lum32", IPL_V210_To_Lum32, IPL_V210_To_Lum32MultiThread, tqref::V210ToLum32, 6,
     16, 6},
    {"IPL_V216_To_Lum32", IPL_V216_To_Lum32, IPL_V216_To_Lum32MultiThread, tqref::V216ToLum32, 1, 4,
     1},
    {"IPL_BGRA_To_Lum32", IPL_BGRA_To_Lum32, IPL_BGRA_To_Lum32_MultiThread, tqref::BgraToLum32, 1,
     4, 1},
    {"IPL_BGR10b_To_Lum32", IPL_BGR10b_To_Lum32, IPL_BGR10b_To_Lum32_MultiThread,
     tqref::Bgr10ToLum32, 1, 4, 1},
    {"IPL_BGR16b_To_Lum32", IPL_BGR16b_To_Lum32, IPL_BGR16b_To_Lum32_MultiThread,
     tqref::Bgr16ToLum32, 1, 6, 1}};

using Strides = CTQArray<int, int>;
using Planes = CTQArray<unsigned char*, unsigned char*>;

// A packed image and planes, in the argument order of the forms that write planes.
struct PlaneForm {
    const char* name;
    void (*plain)(int, int, int, unsigned char*, Strides&, Planes&);
    void (*multiThread)(int, int, int, unsigned char*, Strides&, Planes&);
    void (*reference)(int, int, int, uint8_t*, const tqref::StrideList&, const tqref::PlaneList&);
    int groupPixels;
    std::vector<int> groupBytes;  // of the packed image, then of each plane
};
template <void (*form)(int, int, Strides&, Planes&, int, unsigned char*)>
void FromPlanes(int width, int height, int stride, unsigned char* packed, Strides& strides,
                Planes& planes) {
    form(width, height, strides, planes, stride, packed);
}
template <void (*form)(int, int, int, const uint8_t*, const tqref::StrideList&,
                       const tqref::PlaneList&)>
void ReferenceToPlanes(int width, int height, int stride, uint8_t* packed,
                       const tqref::StrideList& strides, const tqref::PlaneList& planes) {
    form(width, height, stride, packed, strides, planes);
}
template <void (*form)(int, int, const tqref::StrideList&, const tqref::PlaneList&, int, uint8_t*)>
void ReferenceFromPlanes(int width, int height, int stride, uint8_t* packed,
                         const tqref::StrideList& strides, const tqref::PlaneList& planes) {
    form(width, height, strides, planes, stride, packed);
}
const PlaneForm kPlaneForms[] = {{"IPL_V210_To_YUVP216",
                                  IPL_V210_To_YUVP216,
                                  IPL_V210_To_YUVP216MultiThread,
                                  ReferenceToPlanes<tqref::V210ToYuvp216>,
                                  6,
                                  {16, 12, 6, 6}},
                                 {"IPL_YUVP216_To_V210",
                                  FromPlanes<IPL_YUVP216_To_V210>,
                                  FromPlanes<IPL_YUVP216_To_V210MultiThread>,
                                  ReferenceFromPlanes<tqref::Yuvp216ToV210>,
                                  6,
                                  {16, 12, 6, 6}},
                                 {"IPL_V216_To_YUVP216",
                                  IPL_V216_To_YUVP216,
                                  IPL_V216_To_YUVP216MultiThread,
                                  ReferenceToPlanes<tqref::V216ToYuvp216>,
                                  2,
                                  {8, 4, 2, 2}},
                                 {"IPL_YUVP216_To_V216",
                                  FromPlanes<IPL_YUVP216_To_V216>,
                                  FromPlanes<IPL_YUVP216_To_V216MultiThread>,
                                  ReferenceFromPlanes<tqref::Yuvp216ToV216>,
                                  2,
                                  {8, 4, 2, 2}},
                                 {"IPL_BGR10b_To_BGRA16b",
                                  IPL_BGR10b_To_BGRA16b,
                                  IPL_BGR10b_To_BGRA16bMultiThread,
                                  ReferenceToPlanes<tqref::Bgr10ToBgra16>,
                                  1,
                                  {4, 8, 2}},
                                 {"IPL_BGR16b_To_BGRA16b",
                                  IPL_BGR16b_To_BGRA16b,
                                  IPL_BGR16b_To_BGRA16bMultiThread,
                                  ReferenceToPlanes<tqref::Bgr16ToBgra16>,
                                  1,
                                  {6, 8, 2}},
                                 {"IPL_BGRA16b_To_BGR10b",
                                  FromPlanes<IPL_BGRA16b_To_BGR10b>,
                                  FromPlanes<IPL_BGRA16b_To_BGR10bMultiThread>,
                                  ReferenceFromPlanes<tqref::Bgra16ToBgr10>,
                                  1,
                                  {4, 8}},
                                 {"IPL_BGRA16b_To_BGR16b",
                                  FromPlanes<IPL_BGRA16b_To_BGR16b>,
                                  FromPlanes<IPL_BGRA16b_To_BGR16bMultiThread>,
                                  ReferenceFromPlanes<tqref::Bgra16ToBgr16>,
                                  1,
                                  {6, 8}}};

void CheckPlaneForm(Input& input, const PlaneForm& form) {
    const int width = input.Int(-2, 60), height = input.Int(-2, 34);
    const int groups = width / form.groupPixels;
    Stage stage(input);
    Image& packed = stage.Add(groups * form.groupBytes[0], height);
    std::vector<Image*> planes;
    tqref::StrideList strides;
    for (size_t i = 1; i < form.groupBytes.size(); ++i) {
        planes.push_back(&stage.Add(groups * form.groupBytes[i], height));
        strides.push_back(planes.back()->Stride());
    }
    stage.Expect([&] {
        tqref::PlaneList pointers;
        for (Image* plane : planes) pointers.push_back(plane->Model());
        form.reference(width, height, packed.Stride(), packed.Model(), strides, pointers);
    });
    for (auto function : {form.plain, form.multiThread})
        stage.Check(form.name, width, height, [&] {
            Strides strideArray;
            Planes planeArray;
            for (int stride : strides) strideArray.Add(stride);
            for (Image* plane : planes) planeArray.Add(plane->Data());
            function(width, height, packed.Stride(), packed.Data(), strideArray, planeArray);
            tqfuzz::Require(std::equal(strides.begin(), strides.end(), strideArray.m_pData),
                            "a caller's array has changed");
        });
}

void CheckYuvp422(Input& input) {
    const int width = input.Int(-2, 60), height = input.Int(-2, 34), ignored = input.WildInt(0, 9);
    Stage stage(input);
    Image& src = stage.Add(width / 6 * 16, height);
    Image& dst = stage.Add(width > 0 && height > 0 ? 2 * width * height : 0, 1);
    stage.Expect([&] {
        tqref::V210ToYuvp422(width, height, src.Stride(), src.Model(), ignored, dst.Model());
    });
    stage.Check("IPL_V210_To_YUVP422", width, height, [&] {
        IPL_V210_To_YUVP422(width, height, src.Stride(), src.Data(), ignored, dst.Data());
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    tqfuzz::UseMachine(input);
    switch (input.Byte() % 8) {
        case 0:
            CheckYuvp422(input);
            break;
        case 1:
        case 2:
            CheckPlaneForm(input, input.Pick(kPlaneForms));
            break;
        case 3:
        case 4:
            tqfuzz::CheckPixelForm(input, input.Pick(kSumForms));
            break;
        default:
            tqfuzz::CheckPixelForm(input, input.Pick(kByteForms));
    }
    return 0;
}
