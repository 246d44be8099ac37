// The bytes of the colour, plane and image memory forms.

#include "support/golden.h"

#include <TQIPLBaseLibU.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

namespace tqtest {
const std::map<std::string, uint64_t> kGolden = {
#include "golden/color.txt"
#include "golden/deep.txt"
#include "golden/hsv.txt"
#include "golden/image_memory.txt"
#include "golden/luminance.txt"
#include "golden/planar.txt"
#include "golden/planes.txt"
};
}  // namespace tqtest

namespace {

using tqtest::ExpectGolden;
using tqtest::Hostile;
using tqtest::Size;

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

// Forms of any signature on a frame of room for sixteen bytes a pixel, all of it hashed.
using FrameForm = std::function<void(Size size, uint8_t* src, uint8_t* dst)>;

size_t Room(Size size) { return static_cast<size_t>(size.width + 64) * size.height * 16; }

void ExpectFrameForm(const std::string& name, const FrameForm& form,
                     const std::vector<Size>& sizes = {{64, 8}, {131, 21}},
                     const std::vector<unsigned>& processorCounts = {1, 3, 8},
                     std::vector<uint8_t> (*source)(size_t bytes, uint32_t seed) = Hostile) {
    for (Size size : sizes)
        ExpectGolden(
            name + " " + std::to_string(size.width) + "x" + std::to_string(size.height),
            [&] {
                auto src = source(Room(size), 9);
                auto dst = Hostile(Room(size), 10);
                form(size, src.data(), dst.data());
                return dst;
            },
            processorCounts);
}

// Plane arrays over a block: rows of `rowBytes` bytes and some padding.
struct PlanesIn {
    PlanesIn(uint8_t* block, Size size, const std::vector<int>& rowBytes) {
        for (int bytes : rowBytes) {
            strides.Add(bytes + 5);
            pointers.Add(block);
            block += (bytes + 5) * size.height;
        }
    }
    CTQArray<int, int> strides;
    CTQArray<unsigned char*, unsigned char*> pointers;
};

// In the plain 601 and 709 forms an odd width has another layout than in all others.
const std::vector<Size> kEvenSizes = {{64, 8}, {130, 21}};

TEST(Golden, Planar) {
    using ToArgb = void (*)(int, int, unsigned char*, int, unsigned char*);
    const auto toArgb = [](ToArgb form) {
        return [form](Size size, uint8_t* src, uint8_t* dst) {
            form(size.width, size.height, src, size.width * 4 + 3, dst);
        };
    };
    using FromArgb = void (*)(int, int, int, unsigned char*, unsigned char*);
    const auto fromArgb = [](FromArgb form) {
        return [form](Size size, uint8_t* src, uint8_t* dst) {
            form(size.width, size.height, size.width * 4 + 6, src, dst);
        };
    };
#define TQ_PLANAR(wrap, form)                        \
    ExpectFrameForm(#form, wrap(form), kEvenSizes);  \
    ExpectFrameForm(#form, wrap(form), {{131, 21}}); \
    ExpectFrameForm(#form "_MultiThread", wrap(form##_MultiThread), kEvenSizes)
    TQ_PLANAR(toArgb, IPL_YUVP_422_To_ARGB444);
    TQ_PLANAR(toArgb, IPL_YUVP422_To_ARGB_601);
    TQ_PLANAR(toArgb, IPL_YUVP422_To_ARGB_709);
    TQ_PLANAR(fromArgb, IPL_ARGB_To_YUVP422_601);
    TQ_PLANAR(fromArgb, IPL_ARGB_To_YUVP422_709);

    TQ_BOTH(IPL_RGB2BGRA, 3, 4);
    TQ_BOTH(IPL_BGRA2RGB, 4, 3);
    // On one processor these give other bytes, by contract.
    for (int half : {0, 1}) {
        const auto luma = [half](auto form) {
            return [form, half](Size size, uint8_t* src, uint8_t* dst) {
                form(size.width, size.height, size.width * 2 + 6, src, size.width + 3, dst, half);
            };
        };
        const std::string suffix = half != 0 ? " half" : " full";
        ExpectFrameForm("IPL_YUYV_To_YMultiThread" + suffix, luma(IPL_YUYV_To_YMultiThread),
                        {{64, 8}, {131, 21}}, {3, 8});
        ExpectFrameForm("IPL_UYVY_To_YMultiThread" + suffix, luma(IPL_UYVY_To_YMultiThread),
                        {{64, 8}, {131, 21}}, {3, 8});
    }
}

// Floats that hue, saturation and value could be, pixel by pixel or in planes. The tests named "any
// float" take hostile bytes instead: infinities, NaNs, denormals.
template <int valueRange> std::vector<uint8_t> HsvFloats(size_t bytes, uint32_t seed) {
    std::vector<uint8_t> noise = Hostile(bytes, seed);
    for (size_t i = 0; i + 4 <= bytes; i += 4) {
        const float steps[] = {360.0f / 240, 1.0f / 255, valueRange / 255.0f};
        const float value = noise[i] * steps[i / 4 % 3];
        std::memcpy(&noise[i], &value, sizeof value);
    }
    return noise;
}

template <int valueRange> std::vector<uint8_t> HsvFloatPlanes(size_t bytes, uint32_t seed) {
    std::vector<uint8_t> noise = Hostile(bytes, seed);
    for (size_t i = 0; i + 4 <= bytes; i += 4) {
        // Sixteen bytes a pixel are four planes of floats here.
        const float steps[] = {360.0f / 240, 1.0f / 255, valueRange / 255.0f, 1.0f / 200};
        const float value = noise[i] * steps[i / (bytes / 4) % 4];
        std::memcpy(&noise[i], &value, sizeof value);
    }
    return noise;
}

int PlaneFloats(Size size) { return (size.width + 64) * size.height; }

float* Plane(uint8_t* frame, Size size, int plane) {
    return reinterpret_cast<float*>(frame) + plane * PlaneFloats(size);
}

TEST(Golden, HsvInFloats) {
    ExpectFrameForm("IPL_RGB2HSV_32f_32f", [](Size size, uint8_t* src, uint8_t* dst) {
        for (int i = 0; i < size.width; ++i) {
            float* out = reinterpret_cast<float*>(dst) + 3 * i;
            IPL_RGB2HSV_32f_32f(src[3 * i], src[3 * i + 1] * 0.75f, src[3 * i + 2] * 0.5f, out[0],
                                out[1], out[2]);
        }
    });
    ExpectFrameForm("IPL_RGB2HSV_8u_32f", [](Size size, uint8_t* src, uint8_t* dst) {
        for (int i = 0; i < size.width; ++i) {
            float* out = reinterpret_cast<float*>(dst) + 3 * i;
            IPL_RGB2HSV_8u_32f(src[3 * i], src[3 * i + 1], src[3 * i + 2], out[0], out[1], out[2]);
        }
    });
    const auto pixelBack = [](Size size, uint8_t* src, uint8_t* dst) {
        for (int i = 0; i < size.width; ++i) {
            const float* in = reinterpret_cast<const float*>(src) + 3 * i;
            IPL_HSV2RGB_32f_8u(in[0], in[1], in[2], dst[3 * i], dst[3 * i + 1], dst[3 * i + 2]);
        }
    };
    const std::vector<unsigned> counts = {1, 3, 8};
    const std::vector<Size> sizes = {{64, 8}, {131, 21}};
    ExpectFrameForm("IPL_HSV2RGB_32f_8u", pixelBack, sizes, counts, HsvFloats<1>);
    ExpectFrameForm("IPL_HSV2RGB_32f_8u any float", pixelBack);

    const auto toPlanes = [](auto form) {
        return [form](Size size, uint8_t* src, uint8_t* dst) {
            form(size.width, size.height, size.width * 4 + 6, src, size.width + 1,
                 Plane(dst, size, 0), size.width + 2, Plane(dst, size, 1), size.width + 3,
                 Plane(dst, size, 2));
        };
    };
    ExpectFrameForm("IPL_BGRA2HSV", toPlanes(IPL_BGRA2HSV));
    ExpectFrameForm("IPL_BGRA2HSV_MultiThread", toPlanes(IPL_BGRA2HSV_MultiThread));

    using FromPlanes =
        void (*)(int, int, int, float*, int, float*, int, float*, int, unsigned char*);
    using FromPlanesAndAlpha =
        void (*)(int, int, int, float*, int, float*, int, float*, int, float*, int, unsigned char*);
    const auto fromPlanes = [&](const std::string& name, FromPlanes form) {
        const FrameForm run = [form](Size size, uint8_t* src, uint8_t* dst) {
            form(size.width, size.height, size.width + 1, Plane(src, size, 0), size.width + 2,
                 Plane(src, size, 1), size.width + 3, Plane(src, size, 2), size.width * 4 + 3, dst);
        };
        ExpectFrameForm(name, run, sizes, counts, HsvFloatPlanes<1>);
        ExpectFrameForm(name + " any float", run);
    };
    const auto fromPlanesAndAlpha = [&](const std::string& name, FromPlanesAndAlpha form) {
        const FrameForm run = [form](Size size, uint8_t* src, uint8_t* dst) {
            form(size.width, size.height, size.width + 1, Plane(src, size, 0), size.width + 2,
                 Plane(src, size, 1), size.width + 3, Plane(src, size, 2), size.width + 4,
                 Plane(src, size, 3), size.width * 4 + 3, dst);
        };
        ExpectFrameForm(name, run, sizes, counts, HsvFloatPlanes<1>);
        ExpectFrameForm(name + " any float", run);
    };
    fromPlanes("IPL_HSV2BGRA", IPL_HSV2BGRA);
    fromPlanes("IPL_HSV2BGRA_MultiThread", IPL_HSV2BGRA_MultiThread);
    fromPlanesAndAlpha("IPL_HSV2BGRA alpha", IPL_HSV2BGRA);
    fromPlanesAndAlpha("IPL_HSV2BGRA_MultiThread alpha", IPL_HSV2BGRA_MultiThread);
    fromPlanes("IPL_HSV_To_BGRA", IPL_HSV_To_BGRA);

    using ToHsv = void (*)(int, int, int, unsigned char*, int, float*);
    const auto toHsv = [](ToHsv form) {
        return [form](Size size, uint8_t* src, uint8_t* dst) {
            form(size.width, size.height, size.width * 2 + 6, src, size.width * 3 + 1,
                 reinterpret_cast<float*>(dst));
        };
    };
    using ToHsvp = void (*)(int, int, int, unsigned char*, float*);
    const auto toHsvp = [](ToHsvp form) {
        return [form](Size size, uint8_t* src, uint8_t* dst) {
            form(size.width, size.height, size.width * 2 + 6, src, reinterpret_cast<float*>(dst));
        };
    };
    using FromHsv = void (*)(int, int, int, float*, int, unsigned char*);
    const auto fromHsv = [](FromHsv form) {
        return [form](Size size, uint8_t* src, uint8_t* dst) {
            form(size.width, size.height, size.width * 3 + 3, reinterpret_cast<float*>(src),
                 size.width * 2 + 3, dst);
        };
    };
    using FromHsvp = void (*)(int, int, float*, int, unsigned char*);
    // The planes are dense; those of the source are cut to size here.
    const auto fromHsvp = [](FromHsvp form) {
        return [form](Size size, uint8_t* src, uint8_t* dst) {
            std::vector<float> planes;
            for (int plane = 0; plane < 3; ++plane)
                planes.insert(planes.end(), Plane(src, size, plane),
                              Plane(src, size, plane) + size.width * size.height);
            form(size.width, size.height, planes.data(), size.width * 2 + 3, dst);
        };
    };
#define TQ_HSV_PAIR(wrap, form)         \
    ExpectFrameForm(#form, wrap(form)); \
    ExpectFrameForm(#form "_MultiThread", wrap(form##_MultiThread))
#define TQ_HSV_BACK(wrap, form, source)                                                     \
    ExpectFrameForm(#form, wrap(form), sizes, counts, source);                              \
    ExpectFrameForm(#form " any float", wrap(form));                                        \
    ExpectFrameForm(#form "_MultiThread", wrap(form##_MultiThread), sizes, counts, source); \
    ExpectFrameForm(#form "_MultiThread any float", wrap(form##_MultiThread))
    TQ_HSV_PAIR(toHsv, IPL_YUYV2HSV_601);
    TQ_HSV_PAIR(toHsv, IPL_YUYV2HSV_709);
    TQ_HSV_PAIR(toHsvp, IPL_YUYV2HSVP_601);
    TQ_HSV_PAIR(toHsvp, IPL_YUYV2HSVP_709);
    TQ_HSV_BACK(fromHsv, IPL_HSV2YUYV_601, HsvFloats<255>);
    TQ_HSV_BACK(fromHsv, IPL_HSV2YUYV_709, HsvFloats<255>);
    TQ_HSV_BACK(fromHsvp, IPL_HSVP2YUYV_601, HsvFloatPlanes<255>);
    TQ_HSV_BACK(fromHsvp, IPL_HSVP2YUYV_709, HsvFloatPlanes<255>);
}

TEST(Golden, HsvInBytes) {
    TQ_BOTH(IPL_BGRA2HSV_8u_C3R, 4, 3);
    TQ_BOTH(IPL_YUYV2HSV_8u_709, 2, 3);
    TQ_BOTH(IPL_HSV2YUYV_8u_709, 3, 2);
    const auto back = [](auto form) {
        return [form](Size size, uint8_t* src, uint8_t* dst) {
            form(size.width, size.height, size.width * 3 + 6, src, size.width + 2,
                 src + Room(size) / 2, size.width * 4 + 3, dst);
        };
    };
    TQ_HSV_PAIR(back, IPL_HSV2BGRA_8u_C3R);
    const auto uyvy = [](auto form) {
        return [form](Size size, uint8_t* src, uint8_t* dst) {
            form(size.width, size.height, size.width * 3 + 6, src, size.width * 3 + 3, dst,
                 TQ_COLOR_MATRIX_709);
        };
    };
    TQ_HSV_PAIR(uyvy, IPL_UYVY2HSV_8u);
    TQ_HSV_PAIR(uyvy, IPL_HSV2UYVY_8u);
}

int V210Stride(Size size) { return (size.width + 47) / 48 * 128; }

TEST(Golden, Deep) {
    // Strides of a source and of a destination; 0 bytes a pixel are rows of V210.
    const auto packed = [](auto form, int srcBytes, int dstElements) {
        return [=](Size size, uint8_t* src, uint8_t* dst) {
            using Form = decltype(form);
            const int srcStride = srcBytes != 0 ? size.width * srcBytes + 6 : V210Stride(size);
            const int dstStride = size.width * dstElements + 3;
            if constexpr (std::is_invocable_v<Form, int, int, int, uint8_t*, int, int*>)
                form(size.width, size.height, srcStride, src, dstStride,
                     reinterpret_cast<int*>(dst));
            else
                form(size.width, size.height, srcStride, src, dstStride, dst);
        };
    };
#define TQ_DEEP(form, srcBytes, dstElements)                     \
    ExpectFrameForm(#form, packed(form, srcBytes, dstElements)); \
    ExpectFrameForm(#form "MultiThread", packed(form##MultiThread, srcBytes, dstElements))
    ExpectFrameForm("IPL_V210_To_UYVY", packed(IPL_V210_To_UYVY, 0, 2));
    ExpectFrameForm("IPL_V210_To_YUYV", packed(IPL_V210_To_YUYV, 0, 2));
    ExpectFrameForm("IPL_V210_To_YUVP422", packed(IPL_V210_To_YUVP422, 0, 1));
    TQ_DEEP(IPL_V210_To_BGRA_601, 0, 4);
    TQ_DEEP(IPL_V210_To_BGRA_709, 0, 4);
    TQ_DEEP(IPL_V210_To_Lum32, 0, 1);
    TQ_DEEP(IPL_V216_To_BGRA_601, 4, 4);
    TQ_DEEP(IPL_V216_To_BGRA_709, 4, 4);
    TQ_DEEP(IPL_V216_To_Lum32, 4, 1);
    TQ_DEEP(IPL_BGRTQ10b_To_BGRA, 4, 4);
    TQ_DEEP(IPL_BGRTQ10b_To_BGRTQ16b, 4, 6);
    TQ_DEEP(IPL_BGRTQ16b_To_BGRA, 6, 4);
    TQ_DEEP(IPL_BGRTQ16b_To_BGRTQ10b, 6, 4);

    // To and from planes of `rowBytes(width)` bytes a row.
    using RowBytes = std::vector<int> (*)(int width);
    const RowBytes yuvp216 = [](int width) {
        return std::vector<int>{width * 2, width / 2 * 2, width / 2 * 2};
    };
    const RowBytes bgra16 = [](int width) { return std::vector<int>{width * 8, width * 2}; };
    const auto toPlanes = [](auto form, int srcBytes, RowBytes rows) {
        return [=](Size size, uint8_t* src, uint8_t* dst) {
            PlanesIn planes(dst, size, rows(size.width));
            form(size.width, size.height,
                 srcBytes != 0 ? size.width * srcBytes + 6 : V210Stride(size), src, planes.strides,
                 planes.pointers);
        };
    };
    const auto fromPlanes = [](auto form, int dstBytes, RowBytes rows) {
        return [=](Size size, uint8_t* src, uint8_t* dst) {
            PlanesIn planes(src, size, rows(size.width));
            form(size.width, size.height, planes.strides, planes.pointers,
                 dstBytes != 0 ? size.width * dstBytes + 3 : V210Stride(size), dst);
        };
    };
#define TQ_DEEP_PLANES(wrap, form, bytes, rows)      \
    ExpectFrameForm(#form, wrap(form, bytes, rows)); \
    ExpectFrameForm(#form "MultiThread", wrap(form##MultiThread, bytes, rows))
    TQ_DEEP_PLANES(toPlanes, IPL_V210_To_YUVP216, 0, yuvp216);
    TQ_DEEP_PLANES(toPlanes, IPL_V216_To_YUVP216, 4, yuvp216);
    TQ_DEEP_PLANES(fromPlanes, IPL_YUVP216_To_V210, 0, yuvp216);
    TQ_DEEP_PLANES(fromPlanes, IPL_YUVP216_To_V216, 4, yuvp216);
    TQ_DEEP_PLANES(toPlanes, IPL_BGR10b_To_BGRA16b, 4, bgra16);
    TQ_DEEP_PLANES(toPlanes, IPL_BGR16b_To_BGRA16b, 6, bgra16);
    TQ_DEEP_PLANES(fromPlanes, IPL_BGRA16b_To_BGR10b, 4, bgra16);
    TQ_DEEP_PLANES(fromPlanes, IPL_BGRA16b_To_BGR16b, 6, bgra16);
}

TEST(Golden, Planes) {
    const struct {
        TQ_COLOR_FORMAT format;
        int count;
    } layouts[] = {{TQ_COLOR_ARGB, 3}, {TQ_COLOR_ARGB, 4}, {TQ_COLOR_BGR24, 3}, {TQ_COLOR_AYUV, 3},
                   {TQ_COLOR_AYUV, 4}, {TQ_COLOR_YUYV, 3}, {TQ_COLOR_UYVY, 3}};
    for (const auto [format, count] : layouts) {
        const std::string suffix =
            " format " + std::to_string(static_cast<int>(format)) + " " + std::to_string(count);
        const auto rows = [count = count](int width) {
            return std::vector<int>(static_cast<size_t>(count), width);
        };
        const auto split = [=, format = format](auto form) {
            return [=](Size size, uint8_t* src, uint8_t* dst) {
                PlanesIn planes(dst, size, rows(size.width));
                form(format, size.width, size.height, size.width * 4 + 6, src, planes.strides,
                     planes.pointers);
            };
        };
        const auto build = [=, format = format](auto form) {
            return [=](Size size, uint8_t* src, uint8_t* dst) {
                PlanesIn planes(src, size, rows(size.width));
                form(format, size.width, size.height, planes.strides, planes.pointers,
                     size.width * 4 + 3, dst);
            };
        };
        ExpectFrameForm("IPL_SplitColor" + suffix, split(IPL_SplitColor));
        ExpectFrameForm("IPL_SplitColorMultiThread" + suffix, split(IPL_SplitColorMultiThread));
        ExpectFrameForm("IPL_BuildColor" + suffix, build(IPL_BuildColor));
        ExpectFrameForm("IPL_BuildColorMultiThread" + suffix, build(IPL_BuildColorMultiThread));
    }
}

TEST(Golden, Matrices) {
    const TQ_COLOR_FORMAT formats[] = {TQ_COLOR_AYUV, TQ_COLOR_YUYV, TQ_COLOR_UYVY};
    using InPlace = void (*)(TQ_COLOR_FORMAT, int, int, int, unsigned char*);
    const auto inPlace = [&](const std::string& name, InPlace form) {
        for (TQ_COLOR_FORMAT format : formats)
            ExpectFrameForm(name + " format " + std::to_string(static_cast<int>(format)),
                            [=](Size size, uint8_t*, uint8_t* dst) {
                                form(format, size.width, size.height, size.width * 4 + 3, dst);
                            });
    };
    using Between = void (*)(int, int, TQ_COLOR_FORMAT, int, unsigned char*, TQ_COLOR_FORMAT, int,
                             unsigned char*);
    const auto between = [&](const std::string& name, Between form) {
        for (TQ_COLOR_FORMAT from : formats)
            for (TQ_COLOR_FORMAT to : formats)
                ExpectFrameForm(name + " format " + std::to_string(static_cast<int>(from)) +
                                    " to " + std::to_string(static_cast<int>(to)),
                                [=](Size size, uint8_t* src, uint8_t* dst) {
                                    form(size.width, size.height, from, size.width * 4 + 6, src, to,
                                         size.width * 4 + 3, dst);
                                });
    };
    using Planar =
        void (*)(int, int, int, unsigned char*, int, unsigned char*, int, unsigned char*);
    const auto planar = [](const std::string& name, Planar form) {
        ExpectFrameForm(name, [form](Size size, uint8_t*, uint8_t* dst) {
            PlanesIn planes(dst, size, {size.width, size.width / 2, size.width / 2 + 1});
            form(size.width, size.height, planes.strides.GetAt(0), planes.pointers.GetAt(0),
                 planes.strides.GetAt(1), planes.pointers.GetAt(1), planes.strides.GetAt(2),
                 planes.pointers.GetAt(2));
        });
    };
#define TQ_MATRIX(way)                                                \
    inPlace("IPL_YUV" #way, IPL_YUV##way);                            \
    inPlace("IPL_YUV" #way "MultiThread", IPL_YUV##way##MultiThread); \
    planar("IPL_YUVP_422_" #way, IPL_YUVP_422_##way);                 \
    planar("IPL_YUVP_422_" #way "MultiThread", IPL_YUVP_422_##way##MultiThread)
    TQ_MATRIX(601x709);
    TQ_MATRIX(709x601);
    TQ_MATRIX(2020x709);
    TQ_MATRIX(709x2020);
    between("IPL_YUV601x709", IPL_YUV601x709);
    between("IPL_YUV709x601", IPL_YUV709x601);
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

}  // namespace
