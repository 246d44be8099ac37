// HSV in floats and in bytes.

#include <tqipl/hsv.h>
#include <tqipl/types.h>

#include <bit>
#include <cstdint>
#include <vector>

#include "fuzz_check.h"
#include "reference/hsv_byte_reference.h"
#include "reference/hsv_float_reference.h"

namespace {

using tqfuzz::FloatKind;
using tqfuzz::Image;
using tqfuzz::Input;
using tqfuzz::Stage;

// What stands in an image: bytes, or floats of which a source is made.
enum Content { kBytes, kHue, kRatio, kInterleaved, kPlanesBehindOneAnother };

struct ImageOf {
    Content content;
    int groupElements;
    int tail = 0;  // bytes written behind a row
};

// An image as a form takes it: the stride counts elements.
struct Argument {
    int stride;
    uint8_t* first;
    float* Floats() const { return reinterpret_cast<float*>(first); }
};

struct Form {
    const char* name;
    int groupPixels;
    std::vector<ImageOf> images;
    void (*plain)(int, int, const Argument*);
    void (*multiThread)(int, int, const Argument*);  // or null
    void (*reference)(int, int, const Argument*);
};

void Check(Input& input, const Form& form) {
    const int width = input.Int(-2, 60), height = input.Int(-2, 24);
    const int groups = width / form.groupPixels;
    Stage stage(input);
    std::vector<Image*> images;
    for (const ImageOf& of : form.images) {
        const int unit = of.content == kBytes ? 1 : 4;
        const bool planes = of.content == kPlanesBehindOneAnother;
        const int all = width > 0 && height > 0 ? 3 * width * height : 0;
        Image& image = stage.Add(planes ? 4 * all : unit * groups * of.groupElements + of.tail,
                                 planes ? 1 : height, {.unit = unit});
        // Hue, saturation and value from 0 to 255 where one image has all three.
        constexpr FloatKind kInOrder[] = {FloatKind::kHue, FloatKind::kRatio, FloatKind::kByte};
        if (unit == 4)
            image.MakeFloats([&](int64_t element) {
                if (of.content == kHue) return FloatKind::kHue;
                if (of.content == kRatio || element < 0) return FloatKind::kRatio;
                return kInOrder[(planes ? element / (all / 3 + 1) : element) % 3];
            });
        images.push_back(&image);
    }
    const auto arguments = [&](bool model) {
        std::vector<Argument> list;
        for (size_t i = 0; i < images.size(); ++i)
            list.push_back({images[i]->Stride(form.images[i].content == kBytes ? 1 : 4),
                            model ? images[i]->Model() : images[i]->Data()});
        return list;
    };
    stage.Expect([&] { form.reference(width, height, arguments(true).data()); });
    for (auto function : {form.plain, form.multiThread})
        if (function != nullptr)
            stage.Check(form.name, width, height,
                        [&] { function(width, height, arguments(false).data()); });
}

// From bytes to three planes of floats, and back without and with a plane of alpha.
using ToPlanes = void(int, int, int, unsigned char*, int, float*, int, float*, int, float*);
template <ToPlanes* form> void CallToPlanes(int width, int height, const Argument* i) {
    form(width, height, i[0].stride, i[0].first, i[1].stride, i[1].Floats(), i[2].stride,
         i[2].Floats(), i[3].stride, i[3].Floats());
}
using FromPlanes = void(int, int, int, float*, int, float*, int, float*, int, unsigned char*);
template <FromPlanes* form> void CallFromPlanes(int width, int height, const Argument* i) {
    form(width, height, i[0].stride, i[0].Floats(), i[1].stride, i[1].Floats(), i[2].stride,
         i[2].Floats(), i[3].stride, i[3].first);
}
using FromFour = void(int, int, int, float*, int, float*, int, float*, int, float*, int,
                      unsigned char*);
template <FromFour* form> void CallFromFour(int width, int height, const Argument* i) {
    form(width, height, i[0].stride, i[0].Floats(), i[1].stride, i[1].Floats(), i[2].stride,
         i[2].Floats(), i[3].stride, i[3].Floats(), i[4].stride, i[4].first);
}

// Between YUYV and floats, interleaved and as planes behind one another.
template <auto form> void ToFloats(int width, int height, const Argument* i) {
    form(width, height, i[0].stride, i[0].first, i[1].stride, i[1].Floats());
}
template <auto form> void ToPlaneSet(int width, int height, const Argument* i) {
    form(width, height, i[0].stride, i[0].first, i[1].Floats());
}
template <auto form> void FromFloats(int width, int height, const Argument* i) {
    form(width, height, i[0].stride, i[0].Floats(), i[1].stride, i[1].first);
}
template <auto form> void FromPlaneSet(int width, int height, const Argument* i) {
    form(width, height, i[0].Floats(), i[1].stride, i[1].first);
}
template <const tqref::HsvYuvSet& set>
void ReferenceToFloats(int width, int height, const Argument* i) {
    tqref::Yuyv2Hsv(set, width, height, i[0].stride, i[0].first, i[1].stride, i[1].Floats());
}
template <const tqref::HsvYuvSet& set>
void ReferenceToPlaneSet(int width, int height, const Argument* i) {
    tqref::Yuyv2HsvP(set, width, height, i[0].stride, i[0].first, i[1].Floats());
}
template <const tqref::HsvYuvSet& set>
void ReferenceFromFloats(int width, int height, const Argument* i) {
    tqref::Hsv2Yuyv(set, width, height, i[0].stride, i[0].Floats(), i[1].stride, i[1].first);
}
template <const tqref::HsvYuvSet& set>
void ReferenceFromPlaneSet(int width, int height, const Argument* i) {
    tqref::HsvP2Yuyv(set, width, height, i[0].Floats(), i[1].stride, i[1].first);
}

// Between two images of bytes.
template <auto form> void BytesToBytes(int width, int height, const Argument* i) {
    form(width, height, i[0].stride, i[0].first, i[1].stride, i[1].first);
}
template <auto form, TQ_COLOR_MATRIX matrix>
void WithMatrix(int width, int height, const Argument* i) {
    form(width, height, i[0].stride, i[0].first, i[1].stride, i[1].first, matrix);
}
template <auto form> void WithAlpha(int width, int height, const Argument* i) {
    form(width, height, i[0].stride, i[0].first, i[1].stride, i[1].first, i[2].stride, i[2].first);
}

constexpr FromPlanes *kHsv2Bgra = IPL_HSV2BGRA, *kHsv2BgraMultiThread = IPL_HSV2BGRA_MultiThread;
constexpr FromFour *kHsv2BgraAlpha = IPL_HSV2BGRA,
                   *kHsv2BgraAlphaMultiThread = IPL_HSV2BGRA_MultiThread;
void ReferenceHsv2Bgra(int width, int height, const Argument* i) {
    tqref::Hsv2Bgra(width, height, i[0].stride, i[0].Floats(), i[1].stride, i[1].Floats(),
                    i[2].stride, i[2].Floats(), 0, nullptr, i[3].stride, i[3].first);
}
void ReferenceHsv2BgraAlpha(int width, int height, const Argument* i) {
    tqref::Hsv2Bgra(width, height, i[0].stride, i[0].Floats(), i[1].stride, i[1].Floats(),
                    i[2].stride, i[2].Floats(), i[3].stride, i[3].Floats(), i[4].stride,
                    i[4].first);
}
void ReferenceBgra2Hsv(int width, int height, const Argument* i) {
    tqref::Bgra2Hsv(width, height, i[0].stride, i[0].first, i[1].stride, i[1].Floats(), i[2].stride,
                    i[2].Floats(), i[3].stride, i[3].Floats());
}
void ReferenceByFloor(int width, int height, const Argument* i) {
    tqref::HsvToBgraByFloor(width, height, i[0].stride, i[0].Floats(), i[1].stride, i[1].Floats(),
                            i[2].stride, i[2].Floats(), i[3].stride, i[3].first);
}

const Form kForms[] = {{"IPL_BGRA2HSV",
                        1,
                        {{kBytes, 4}, {kRatio, 1}, {kRatio, 1}, {kRatio, 1}},
                        CallToPlanes<IPL_BGRA2HSV>,
                        CallToPlanes<IPL_BGRA2HSV_MultiThread>,
                        ReferenceBgra2Hsv},
                       {"IPL_HSV2BGRA",
                        1,
                        {{kHue, 1}, {kRatio, 1}, {kRatio, 1}, {kBytes, 4}},
                        CallFromPlanes<kHsv2Bgra>,
                        CallFromPlanes<kHsv2BgraMultiThread>,
                        ReferenceHsv2Bgra},
                       {"IPL_HSV2BGRA with alpha",
                        1,
                        {{kHue, 1}, {kRatio, 1}, {kRatio, 1}, {kRatio, 1}, {kBytes, 4}},
                        CallFromFour<kHsv2BgraAlpha>,
                        CallFromFour<kHsv2BgraAlphaMultiThread>,
                        ReferenceHsv2BgraAlpha},
                       {"IPL_HSV_To_BGRA",
                        1,
                        {{kHue, 1}, {kRatio, 1}, {kRatio, 1}, {kBytes, 4}},
                        CallFromPlanes<IPL_HSV_To_BGRA>,
                        nullptr,
                        ReferenceByFloor},
                       {"IPL_YUYV2HSV_601",
                        2,
                        {{kBytes, 4}, {kRatio, 6}},
                        ToFloats<IPL_YUYV2HSV_601>,
                        ToFloats<IPL_YUYV2HSV_601_MultiThread>,
                        ReferenceToFloats<tqref::kHsv601>},
                       {"IPL_YUYV2HSV_709",
                        2,
                        {{kBytes, 4}, {kRatio, 6}},
                        ToFloats<IPL_YUYV2HSV_709>,
                        ToFloats<IPL_YUYV2HSV_709_MultiThread>,
                        ReferenceToFloats<tqref::kHsv709>},
                       {"IPL_YUYV2HSVP_601",
                        2,
                        {{kBytes, 4}, {kPlanesBehindOneAnother, 0}},
                        ToPlaneSet<IPL_YUYV2HSVP_601>,
                        ToPlaneSet<IPL_YUYV2HSVP_601_MultiThread>,
                        ReferenceToPlaneSet<tqref::kHsv601>},
                       {"IPL_YUYV2HSVP_709",
                        2,
                        {{kBytes, 4}, {kPlanesBehindOneAnother, 0}},
                        ToPlaneSet<IPL_YUYV2HSVP_709>,
                        ToPlaneSet<IPL_YUYV2HSVP_709_MultiThread>,
                        ReferenceToPlaneSet<tqref::kHsv709>},
                       {"IPL_HSV2YUYV_601",
                        2,
                        {{kInterleaved, 6}, {kBytes, 4}},
                        FromFloats<IPL_HSV2YUYV_601>,
                        FromFloats<IPL_HSV2YUYV_601_MultiThread>,
                        ReferenceFromFloats<tqref::kHsv601>},
                       {"IPL_HSV2YUYV_709",
                        2,
                        {{kInterleaved, 6}, {kBytes, 4}},
                        FromFloats<IPL_HSV2YUYV_709>,
                        FromFloats<IPL_HSV2YUYV_709_MultiThread>,
                        ReferenceFromFloats<tqref::kHsv709>},
                       {"IPL_HSVP2YUYV_601",
                        2,
                        {{kPlanesBehindOneAnother, 0}, {kBytes, 4}},
                        FromPlaneSet<IPL_HSVP2YUYV_601>,
                        FromPlaneSet<IPL_HSVP2YUYV_601_MultiThread>,
                        ReferenceFromPlaneSet<tqref::kHsv601>},
                       {"IPL_HSVP2YUYV_709",
                        2,
                        {{kPlanesBehindOneAnother, 0}, {kBytes, 4}},
                        FromPlaneSet<IPL_HSVP2YUYV_709>,
                        FromPlaneSet<IPL_HSVP2YUYV_709_MultiThread>,
                        ReferenceFromPlaneSet<tqref::kHsv709>},
                       {"IPL_BGRA2HSV_8u_C3R",
                        1,
                        {{kBytes, 4}, {kBytes, 3, 1}},
                        BytesToBytes<IPL_BGRA2HSV_8u_C3R>,
                        BytesToBytes<IPL_BGRA2HSV_8u_C3R_MultiThread>,
                        BytesToBytes<tqref::Bgra2HsvBytes>},
                       {"IPL_HSV2BGRA_8u_C3R",
                        1,
                        {{kBytes, 3}, {kBytes, 1}, {kBytes, 4}},
                        WithAlpha<IPL_HSV2BGRA_8u_C3R>,
                        WithAlpha<IPL_HSV2BGRA_8u_C3R_MultiThread>,
                        WithAlpha<tqref::HsvBytes2Bgra>},
                       {"IPL_YUYV2HSV_8u_709",
                        2,
                        {{kBytes, 4}, {kBytes, 6}},
                        BytesToBytes<IPL_YUYV2HSV_8u_709>,
                        BytesToBytes<IPL_YUYV2HSV_8u_709_MultiThread>,
                        BytesToBytes<tqref::Yuyv2HsvBytes>},
                       {"IPL_HSV2YUYV_8u_709",
                        2,
                        {{kBytes, 6}, {kBytes, 4}},
                        BytesToBytes<IPL_HSV2YUYV_8u_709>,
                        BytesToBytes<IPL_HSV2YUYV_8u_709_MultiThread>,
                        BytesToBytes<tqref::HsvBytes2Yuyv>},
                       {"IPL_UYVY2HSV_8u",
                        2,
                        {{kBytes, 4}, {kBytes, 6}},
                        WithMatrix<IPL_UYVY2HSV_8u, TQ_COLOR_MATRIX_601>,
                        WithMatrix<IPL_UYVY2HSV_8u_MultiThread, TQ_COLOR_MATRIX_2020>,
                        BytesToBytes<tqref::Uyvy2HsvBytes>},
                       {"IPL_HSV2UYVY_8u",
                        2,
                        {{kBytes, 6}, {kBytes, 4}},
                        WithMatrix<IPL_HSV2UYVY_8u, TQ_COLOR_MATRIX_2020>,
                        WithMatrix<IPL_HSV2UYVY_8u_MultiThread, TQ_COLOR_MATRIX_601>,
                        BytesToBytes<tqref::HsvBytes2Uyvy>}};

bool SameBits(float a, float b) { return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b); }

// One pixel there, and any three floats back.
void CheckPixel(Input& input) {
    const uint8_t r = input.Byte(), g = input.Byte(), b = input.Byte();
    float h = 7, s = 7, v = 7;
    IPL_RGB2HSV_8u_32f(r, g, b, h, s, v);
    const tqref::HsvPixel hsv = tqref::RgbToHsv(int{r}, int{g}, int{b});
    tqfuzz::Require(SameBits(h, hsv.h) && SameBits(s, hsv.s) && SameBits(v, hsv.v),
                    "IPL_RGB2HSV_8u_32f differs");
    h = tqfuzz::FloatFor(input.Word(), FloatKind::kHue);
    s = tqfuzz::FloatFor(input.Word(), FloatKind::kRatio);
    v = tqfuzz::FloatFor(input.Word(), FloatKind::kRatio);
    tqref::RgbBytes rgb = {1, 2, 3};
    tqref::HsvToRgb(h, s, v, &rgb);
    uint8_t red = 1, green = 2, blue = 3;
    IPL_HSV2RGB_32f_8u(h, s, v, red, green, blue);
    tqfuzz::Require(red == rgb.r && green == rgb.g && blue == rgb.b, "IPL_HSV2RGB_32f_8u differs");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    tqfuzz::UseMachine(input);
    if (input.Byte() % 8 == 0)
        CheckPixel(input);
    else
        Check(input, input.Pick(kForms));
    return 0;
}
