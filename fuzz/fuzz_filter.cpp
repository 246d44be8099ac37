// Bilateral, Gauss, average and median filters, deinterlacing, PSNR.

#include <tqipl/filter.h>

#include <algorithm>
#include <bit>
#include <climits>
#include <cmath>
#include <cstdint>

#include "fuzz_check.h"
#include "reference/bilateral_reference.h"
#include "reference/deinterlace_reference.h"
#include "reference/psnr_reference.h"
#include "reference/smooth_reference.h"

namespace {

using tqfuzz::Image;
using tqfuzz::Input;
using tqfuzz::Stage;

struct Size {
    int width, height;
};
Size AnySize(Input& input) { return {input.Int(-2, 70), input.Int(-2, 24)}; }

// As far as a radius of 0 may copy, whatever the strides, or a window reach beyond its row.
int Slack(Size size) { return std::max(size.width, 0) * std::max(size.height, 0) + 128; }

// A filter between two images: reference(src, dst) and form(srcStride, src, dstStride, dst).
template <class Reference, class Form>
void CheckPair(Input& input, const char* name, Size size, Reference reference, Form form) {
    Stage stage(input);
    const tqfuzz::ImageKind kind = {.slack = Slack(size)};
    Image& src = stage.Add(size.width, size.height, kind);
    Image& dst = stage.Add(size.width, size.height, kind);
    stage.Expect(
        [&] { reference(src.Stride(), src.ModelBytes(), dst.Stride(), dst.ModelBytes()); });
    stage.Check(name, size.width, size.height,
                [&] { form(src.Stride(), src.Data(), dst.Stride(), dst.Data()); });
}

// The same in place, where every pixel is written: the result in dense memory, copied back.
template <class Reference, class Form>
void CheckInPlace(Input& input, const char* name, Size size, Reference reference, Form form) {
    Stage stage(input);
    Image& image = stage.Add(size.width, size.height, {.slack = Slack(size)});
    stage.Expect([&] {
        std::vector<uint8_t> memory(static_cast<size_t>(size.width) * size.height);
        tqref::Bytes filtered(memory.data());
        reference(image.Stride(), image.ModelBytes(), size.width, filtered);
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                image.ModelBytes()[int64_t{y} * image.Stride() + x] =
                    memory[static_cast<size_t>(y) * size.width + x];
    });
    stage.Check(name, size.width, size.height, [&] { form(image.Stride(), image.Data()); });
}

using RadiusSigmaReference = void (*)(int, int, int, tqref::Bytes&, int, tqref::Bytes&, int, int);
using RadiusReference = void (*)(int, int, int, tqref::Bytes&, int, tqref::Bytes&, int);

void CheckBilateral(Input& input, bool separable) {
    const Size size = AnySize(input);
    // The references have no negative radius.
    const int radius = input.Int(0, 9), sigma = input.WildInt(-3, 120);
    const RadiusSigmaReference filter = separable ? tqref::BilateralEx : tqref::Bilateral;
    const auto reference = [&](int srcStride, tqref::Bytes& src, int dstStride, tqref::Bytes& dst) {
        filter(size.width, size.height, srcStride, src, dstStride, dst, radius, sigma);
    };
    const char* name = separable ? "IPL_BilteralEx_8u_C1R" : "IPL_Bilteral_8u_C1R";
    if (input.Byte() % 4 == 0 && size.width > 0 && size.height > 0 && radius > 0 && sigma != 0) {
        CheckInPlace(input, name, size, reference, [&](int stride, uint8_t* image) {
            if (separable)
                IPL_BilteralEx_8u_C1R(size.width, size.height, stride, image, radius, sigma);
            else
                IPL_Bilteral_8u_C1R(size.width, size.height, stride, image, radius, sigma);
        });
        return;
    }
    CheckPair(input, name, size, reference,
              [&](int srcStride, uint8_t* src, int dstStride, uint8_t* dst) {
                  if (separable)
                      IPL_BilteralEx_8u_C1R(size.width, size.height, srcStride, src, dstStride, dst,
                                            radius, sigma);
                  else
                      IPL_Bilteral_8u_C1R(size.width, size.height, srcStride, src, dstStride, dst,
                                          radius, sigma);
              });
}

// The rows that depend on unwritten memory hold some value from 16 to 235.
void CheckBilateralMultiThread(Input& input) {
    const Size size = AnySize(input);
    const int radius = input.Int(-1, 12), sigma = input.WildInt(-3, 120);
    constexpr uint8_t kAnyResult = 0;
    const bool filters = radius > 0 && sigma > 0;
    CheckPair(
        input, "IPL_BilteralExMutiThread_8u_C1R", size,
        [&](int srcStride, tqref::Bytes& src, int dstStride, tqref::Bytes& dst) {
            tqref::BilateralExMultiThread(size.width, size.height, srcStride, src, dstStride, dst,
                                          radius, sigma, kAnyResult);
        },
        [&](int srcStride, uint8_t* src, int dstStride, uint8_t* dst) {
            IPL_BilteralExMutiThread_8u_C1R(size.width, size.height, srcStride, src, dstStride, dst,
                                            radius, sigma);
            if (!filters) return;
            for (int y = tqref::DefinedRows(size.height, radius); y < size.height; ++y)
                for (int x = 0; x < size.width; ++x) {
                    uint8_t& pixel = dst[int64_t{y} * dstStride + x];
                    if (pixel >= 16 && pixel <= 235) pixel = kAnyResult;
                }
        });
}

struct SmoothForm {
    const char* name;
    RadiusReference reference;
    void (*form)(int, int, int, unsigned char*, int, unsigned char*, int);
    int leastRadius;
};
void CallGauss3x3(int width, int height, int srcStride, uint8_t* src, int dstStride, uint8_t* dst,
                  int) {
    IPL_Gauss3x3_8u_C1R(width, height, srcStride, src, dstStride, dst);
}
void Gauss3x3(int width, int height, int srcStride, tqref::Bytes& src, int dstStride,
              tqref::Bytes& dst, int) {
    tqref::Gauss3x3(width, height, srcStride, src, dstStride, dst);
}
void CallMedian3x3(int width, int height, int srcStride, uint8_t* src, int dstStride, uint8_t* dst,
                   int) {
    IPL_Median3x3_8u_C1R(width, height, srcStride, src, dstStride, dst);
}
void Median3x3(int width, int height, int srcStride, tqref::Bytes& src, int dstStride,
               tqref::Bytes& dst, int) {
    tqref::Median3x3(width, height, srcStride, src, dstStride, dst);
}
constexpr SmoothForm kSmoothForms[] = {
    {"IPL_Gauss3x3_8u_C1R", Gauss3x3, CallGauss3x3, 0},
    {"IPL_Gauss_8u_C1R", tqref::Gauss, IPL_Gauss_8u_C1R, 0},
    {"IPL_Average_8u_C1R", tqref::Average, IPL_Average_8u_C1R, -2},
    {"IPL_Median_8u_C1R", tqref::Median, IPL_Median_8u_C1R, -2},
    {"IPL_Median3x3_8u_C1R", Median3x3, CallMedian3x3, 0}};

void CheckSmooth(Input& input, const SmoothForm& form) {
    const Size size = AnySize(input);
    const int radius = input.Int(form.leastRadius, 9);
    CheckPair(
        input, form.name, size,
        [&](int srcStride, tqref::Bytes& src, int dstStride, tqref::Bytes& dst) {
            form.reference(size.width, size.height, srcStride, src, dstStride, dst, radius);
        },
        [&](int srcStride, uint8_t* src, int dstStride, uint8_t* dst) {
            form.form(size.width, size.height, srcStride, src, dstStride, dst, radius);
        });
}

void CheckDeinterlace(Input& input) {
    const int width = input.Int(-2, 100), height = input.Int(2, 16);
    Stage stage(input);
    Image& field0 = stage.Add(width, height, {.slack = 0});
    Image& field1 = stage.Add(width, height, {.slack = 0});
    Image& frame0 = stage.Add(width, 2 * height, {.slack = 0});
    Image& frame1 = stage.Add(width, 2 * height, {.slack = 0});
    stage.Expect([&] {
        tqref::Deinterlace(width, height, field0.Stride(), field0.ModelBytes(), field1.Stride(),
                           field1.ModelBytes(), frame0.Stride(), frame0.ModelBytes(),
                           frame1.Stride(), frame1.ModelBytes());
    });
    stage.Check("IPL_Deinterlace_8u_C1R", width, height, [&] {
        IPL_Deinterlace_8u_C1R(width, height, field0.Stride(), field0.Data(), field1.Stride(),
                               field1.Data(), frame0.Stride(), frame0.Data(), frame1.Stride(),
                               frame1.Data());
    });
}

void RequireSame(float actual, float expected) {
    if (std::isnan(actual) && std::isnan(expected)) return;
    tqfuzz::Require(std::bit_cast<uint32_t>(actual) == std::bit_cast<uint32_t>(expected),
                    "a PSNR differs");
}

void CheckPsnr(Input& input, bool yuyv) {
    const Size size = AnySize(input);
    Stage stage(input);
    Image& image1 = stage.Add((yuyv ? 2 : 1) * size.width, size.height, {.slack = 0});
    Image& image2 = stage.Add((yuyv ? 2 : 1) * size.width, size.height, {.slack = 0});
    tqref::YuvPsnr expected = {}, actual = {};
    stage.Expect([&] {
        if (yuyv)
            expected = tqref::PsnrYuyv(size.width, size.height, image1.Stride(),
                                       image1.ModelBytes(), image2.Stride(), image2.ModelBytes());
        else
            expected.y = tqref::Psnr(size.width, size.height, image1.Stride(), image1.ModelBytes(),
                                     image2.Stride(), image2.ModelBytes());
    });
    stage.Check(yuyv ? "IPL_GetPSNR_YUYV" : "IPL_GetPSNR_8u_C1R", size.width, size.height, [&] {
        if (yuyv)
            IPL_GetPSNR_YUYV(size.width, size.height, image1.Stride(), image1.Data(),
                             image2.Stride(), image2.Data(), actual.y, actual.u, actual.v);
        else
            actual.y = IPL_GetPSNR_8u_C1R(size.width, size.height, image1.Stride(), image1.Data(),
                                          image2.Stride(), image2.Data());
    });
    RequireSame(actual.y, expected.y);
    RequireSame(actual.u, expected.u);
    RequireSame(actual.v, expected.v);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    tqfuzz::UseMachine(input);
    switch (input.Byte() % 8) {
        case 0:
            CheckBilateral(input, false);
            break;
        case 1:
            CheckBilateral(input, true);
            break;
        case 2:
            CheckBilateralMultiThread(input);
            break;
        case 3:
            CheckDeinterlace(input);
            break;
        case 4:
            CheckPsnr(input, input.Flag());
            break;
        default:
            CheckSmooth(input, input.Pick(kSmoothForms));
    }
    return 0;
}
