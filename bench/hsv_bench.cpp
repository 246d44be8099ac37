// Hue, saturation and value, in floats and in bytes. Sources of the ways back are made from the
// frame by the ways there, so that they hold what such images hold.

#include <tqipl/hsv.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "bench/families.h"
#include "bench/support/frame_form.h"
#include "reference/hsv_byte_reference.h"
#include "reference/hsv_float_reference.h"

namespace tqbench {

namespace {

// Made at the first call for a frame and kept: no time of a row's.
template <class Make> float* Prepared(int kind, const uint8_t* frame, Size size, Make make) {
    static std::map<std::pair<std::pair<int, int>, const uint8_t*>, std::vector<float>> kept;
    std::vector<float>& floats = kept[{{kind, size.width}, frame}];
    if (floats.empty()) {
        floats.resize(static_cast<size_t>(size.Pixels()) * 4);
        make(floats.data());
    }
    return floats.data();
}

// Planes of hue, saturation, value and alpha.
float* PlanesOf(uint8_t* frame, Size size) {
    const int w = size.width;
    const int64_t n = size.Pixels();
    return Prepared(0, frame, size, [&](float* out) {
        IPL_BGRA2HSV(w, size.height, 4 * w, frame, w, out, w, out + n, w, out + 2 * n);
        for (int64_t i = 0; i < n; ++i) out[3 * n + i] = frame[4 * i + 3] / 255.0f;
    });
}

float* Hsv601Of(uint8_t* frame, Size size) {
    return Prepared(1, frame, size, [&](float* out) {
        IPL_YUYV2HSV_601(size.width, size.height, 2 * size.width, frame, 3 * size.width, out);
    });
}

float* Hsv601PlanesOf(uint8_t* frame, Size size) {
    return Prepared(2, frame, size, [&](float* out) {
        IPL_YUYV2HSVP_601(size.width, size.height, 2 * size.width, frame, out);
    });
}

float* Floats(uint8_t* dst) { return reinterpret_cast<float*>(dst); }

void AddBgraFloats(Size size) {
    const int w = size.width, h = size.height;
    const int64_t n = size.Pixels();
    const auto there = [=](auto form) {
        return [=](uint8_t* src, uint8_t* dst) {
            form(w, h, 4 * w, src, w, Floats(dst), w, Floats(dst) + n, w, Floats(dst) + 2 * n);
        };
    };
    AddFrameForm("IPL_BGRA2HSV", "IPL_BGRA2HSV_MultiThread", size, 4 * n, 12 * n,
                 there(IPL_BGRA2HSV), there(IPL_BGRA2HSV_MultiThread), there(tqref::Bgra2Hsv));

    using Back = void (*)(int, int, int, float*, int, float*, int, float*, int, unsigned char*);
    const auto back = [=](Back form) {
        return [=](uint8_t* src, uint8_t* dst) {
            float* in = PlanesOf(src, size);
            form(w, h, w, in, w, in + n, w, in + 2 * n, 4 * w, dst);
        };
    };
    // The reference takes a null alpha for the form without one.
    AddFrameForm("IPL_HSV2BGRA", "IPL_HSV2BGRA_MultiThread", size, 12 * n, 4 * n,
                 back(IPL_HSV2BGRA), back(IPL_HSV2BGRA_MultiThread),
                 [=](uint8_t* src, uint8_t* dst) {
                     float* in = PlanesOf(src, size);
                     tqref::Hsv2Bgra(w, h, w, in, w, in + n, w, in + 2 * n, 0, nullptr, 4 * w, dst);
                 });
    AddFrameForm("IPL_HSV_To_BGRA", "", size, 12 * n, 4 * n, back(IPL_HSV_To_BGRA), Call(),
                 [=](uint8_t* src, uint8_t* dst) {
                     float* in = PlanesOf(src, size);
                     tqref::HsvToBgraByFloor(w, h, w, in, w, in + n, w, in + 2 * n, 4 * w, dst);
                 });

    using BackWithAlpha =
        void (*)(int, int, int, float*, int, float*, int, float*, int, float*, int, unsigned char*);
    const auto backWithAlpha = [=](BackWithAlpha form) {
        return [=](uint8_t* src, uint8_t* dst) {
            float* in = PlanesOf(src, size);
            form(w, h, w, in, w, in + n, w, in + 2 * n, w, in + 3 * n, 4 * w, dst);
        };
    };
    AddFrameForm("IPL_HSV2BGRA:alpha", "IPL_HSV2BGRA_MultiThread:alpha", size, 16 * n, 4 * n,
                 backWithAlpha(IPL_HSV2BGRA), backWithAlpha(IPL_HSV2BGRA_MultiThread),
                 [=](uint8_t* src, uint8_t* dst) {
                     float* in = PlanesOf(src, size);
                     tqref::Hsv2Bgra(w, h, w, in, w, in + n, w, in + 2 * n, w, in + 3 * n, 4 * w,
                                     dst);
                 });
}

void AddYuyvFloats(const std::string& suffix, const tqref::HsvYuvSet& set,
                   decltype(&IPL_YUYV2HSV_601) toPlain, decltype(&IPL_YUYV2HSV_601) toMultiThread,
                   decltype(&IPL_YUYV2HSVP_601) toPlanesPlain,
                   decltype(&IPL_YUYV2HSVP_601) toPlanesMultiThread,
                   decltype(&IPL_HSV2YUYV_601) backPlain,
                   decltype(&IPL_HSV2YUYV_601) backMultiThread,
                   decltype(&IPL_HSVP2YUYV_601) backFromPlanesPlain,
                   decltype(&IPL_HSVP2YUYV_601) backFromPlanesMultiThread, Size size) {
    const int w = size.width, h = size.height;
    const int64_t n = size.Pixels();
    const auto add = [&](const std::string& stem, int64_t srcBytes, int64_t dstBytes, Call plain,
                         Call multiThread, Call reference) {
        const std::string name = stem + suffix;
        AddFrameForm(name, name + "_MultiThread", size, srcBytes * n, dstBytes * n,
                     std::move(plain), std::move(multiThread), std::move(reference));
    };

    const auto there = [=](auto form) {
        return [=](uint8_t* src, uint8_t* dst) { form(w, h, 2 * w, src, 3 * w, Floats(dst)); };
    };
    add("IPL_YUYV2HSV", 2, 12, there(toPlain), there(toMultiThread),
        [=, &set](uint8_t* src, uint8_t* dst) {
            tqref::Yuyv2Hsv(set, w, h, 2 * w, src, 3 * w, Floats(dst));
        });
    const auto thereToPlanes = [=](auto form) {
        return [=](uint8_t* src, uint8_t* dst) { form(w, h, 2 * w, src, Floats(dst)); };
    };
    add("IPL_YUYV2HSVP", 2, 12, thereToPlanes(toPlanesPlain), thereToPlanes(toPlanesMultiThread),
        [=, &set](uint8_t* src, uint8_t* dst) {
            tqref::Yuyv2HsvP(set, w, h, 2 * w, src, Floats(dst));
        });
    const auto back = [=](auto form) {
        return
            [=](uint8_t* src, uint8_t* dst) { form(w, h, 3 * w, Hsv601Of(src, size), 2 * w, dst); };
    };
    add("IPL_HSV2YUYV", 12, 2, back(backPlain), back(backMultiThread),
        [=, &set](uint8_t* src, uint8_t* dst) {
            tqref::Hsv2Yuyv(set, w, h, 3 * w, Hsv601Of(src, size), 2 * w, dst);
        });
    const auto backFromPlanes = [=](auto form) {
        return
            [=](uint8_t* src, uint8_t* dst) { form(w, h, Hsv601PlanesOf(src, size), 2 * w, dst); };
    };
    add("IPL_HSVP2YUYV", 12, 2, backFromPlanes(backFromPlanesPlain),
        backFromPlanes(backFromPlanesMultiThread), [=, &set](uint8_t* src, uint8_t* dst) {
            tqref::HsvP2Yuyv(set, w, h, Hsv601PlanesOf(src, size), 2 * w, dst);
        });
}

// Tables and integers, without kernels: one row for each form.
void AddBytes(Size size) {
    const int w = size.width, h = size.height;
    const auto add = [=](const std::string& name, auto plain, auto multiThread, auto reference,
                         int srcBytes, int dstBytes) {
        const auto on = [=](auto form) {
            return [=](uint8_t* src, uint8_t* dst) {
                form(w, h, srcBytes * w, src, dstBytes * w, dst);
            };
        };
        AddFrameForm(name, name + "_MultiThread", size, srcBytes * size.Pixels(),
                     dstBytes * size.Pixels(), on(plain), on(multiThread), on(reference), false);
    };
    const auto fixedMatrix = [](auto form) {
        return [form](int width, int height, int srcStride, unsigned char* src, int dstStride,
                      unsigned char* dst) {
            form(width, height, srcStride, src, dstStride, dst, TQ_COLOR_MATRIX_709);
        };
    };
    add("IPL_BGRA2HSV_8u_C3R", IPL_BGRA2HSV_8u_C3R, IPL_BGRA2HSV_8u_C3R_MultiThread,
        tqref::Bgra2HsvBytes, 4, 3);
    add("IPL_YUYV2HSV_8u_709", IPL_YUYV2HSV_8u_709, IPL_YUYV2HSV_8u_709_MultiThread,
        tqref::Yuyv2HsvBytes, 2, 3);
    add("IPL_HSV2YUYV_8u_709", IPL_HSV2YUYV_8u_709, IPL_HSV2YUYV_8u_709_MultiThread,
        tqref::HsvBytes2Yuyv, 3, 2);
    add("IPL_UYVY2HSV_8u", fixedMatrix(IPL_UYVY2HSV_8u), fixedMatrix(IPL_UYVY2HSV_8u_MultiThread),
        tqref::Uyvy2HsvBytes, 2, 3);
    add("IPL_HSV2UYVY_8u", fixedMatrix(IPL_HSV2UYVY_8u), fixedMatrix(IPL_HSV2UYVY_8u_MultiThread),
        tqref::HsvBytes2Uyvy, 3, 2);

    // The alpha plane lies behind the pixels.
    const auto back = [=](auto form) {
        return [=](uint8_t* src, uint8_t* dst) {
            form(w, h, 3 * w, src, w, src + 3 * size.Pixels(), 4 * w, dst);
        };
    };
    AddFrameForm("IPL_HSV2BGRA_8u_C3R", "IPL_HSV2BGRA_8u_C3R_MultiThread", size, 4 * size.Pixels(),
                 4 * size.Pixels(), back(IPL_HSV2BGRA_8u_C3R),
                 back(IPL_HSV2BGRA_8u_C3R_MultiThread), back(tqref::HsvBytes2Bgra), false);
}

}  // namespace

void AddHsv() {
    for (const Size size : kSizes) {
        AddBgraFloats(size);
        AddYuyvFloats("_601", tqref::kHsv601, IPL_YUYV2HSV_601, IPL_YUYV2HSV_601_MultiThread,
                      IPL_YUYV2HSVP_601, IPL_YUYV2HSVP_601_MultiThread, IPL_HSV2YUYV_601,
                      IPL_HSV2YUYV_601_MultiThread, IPL_HSVP2YUYV_601,
                      IPL_HSVP2YUYV_601_MultiThread, size);
        AddYuyvFloats("_709", tqref::kHsv709, IPL_YUYV2HSV_709, IPL_YUYV2HSV_709_MultiThread,
                      IPL_YUYV2HSVP_709, IPL_YUYV2HSVP_709_MultiThread, IPL_HSV2YUYV_709,
                      IPL_HSV2YUYV_709_MultiThread, IPL_HSVP2YUYV_709,
                      IPL_HSVP2YUYV_709_MultiThread, size);
        AddBytes(size);
    }
}

}  // namespace tqbench
