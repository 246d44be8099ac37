// The bytes of the zooms, masks, filters and wavelets.

#include <TQIPLBaseLibU.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "support/golden.h"

namespace tqtest {
const std::map<std::string, uint64_t> kGolden = {
#include "golden/filter.txt"
#include "golden/mask.txt"
#include "golden/wavelet.txt"
#include "golden/zoom.txt"
};
}  // namespace tqtest

namespace {

using tqtest::ExpectGolden;
using tqtest::Hostile;
using tqtest::Size;

using Bytes = std::vector<uint8_t>;

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
#define TQ_ZOOM(method)                                                                           \
    ExpectZoom("IPL_Zoom" #method "_8u_C1R", IPL_Zoom##method##_8u_C1R, 1);                       \
    ExpectZoom("IPL_Zoom" #method "_8u_C4R", IPL_Zoom##method##_8u_C4R, 4);                       \
    ExpectZoom("IPL_Zoom" #method "MultiThread_8u_C1R", IPL_Zoom##method##MultiThread_8u_C1R, 1); \
    ExpectZoom("IPL_Zoom" #method "MultiThread_8u_C4R", IPL_Zoom##method##MultiThread_8u_C4R, 4)
    TQ_ZOOM(Cubic);
    TQ_ZOOM(6Cubic);
    TQ_ZOOM(LinearCorrect);
    TQ_ZOOM(CubicCorrect);
    TQ_ZOOM(Super);
    TQ_ZOOM(JBI);
    TQ_ZOOM(TFI);
#undef TQ_ZOOM
}

// Masks: mostly flat, with runs of every length, and values that are neither 0 nor 255.
Bytes Mask(Size size, int stride, uint32_t seed) {
    Bytes mask(static_cast<size_t>(stride) * size.height);
    uint32_t state = seed;
    int left = 0;
    uint8_t value = 0;
    for (uint8_t& byte : mask) {
        if (left-- == 0) {
            state = state * 1664525u + 1013904223u;
            left = static_cast<int>(state >> 28);
            const uint8_t values[] = {0, 0, 0, 255, 255, 255, 1, 200};
            value = values[state >> 16 & 7];
        }
        byte = value;
    }
    return mask;
}

constexpr Size kMaskSize = {150, 83};
constexpr int kMaskStride = 157;

// A change of a mask of kMaskSize and kMaskStride, in place.
template <class Change>
void ExpectMask(const std::string& name, Change change,
                const std::vector<unsigned>& processorCounts = {1, 3, 8}) {
    ExpectGolden(
        name,
        [&] {
            Bytes mask = Mask(kMaskSize, kMaskStride, 3);
            change(mask);
            return mask;
        },
        processorCounts);
}

TEST(Golden, Morphology) {
    using Form = void (*)(int, int, int, unsigned char*, int, int);
    using FormOfTwo = void (*)(int, int, int, unsigned char*, int, int, int, int);
    const auto expect = [](const char* name, Form form) {
        for (auto [y, x] : {std::pair{1, 1}, {3, 5}, {0, 9}})
            ExpectMask(std::string(name) + " " + std::to_string(y) + " " + std::to_string(x),
                       [form, y = y, x = x](Bytes& mask) {
                           form(kMaskSize.width, kMaskSize.height, kMaskStride, mask.data(), y, x);
                       });
    };
    const auto expectOfTwo = [](const char* name, FormOfTwo form) {
        ExpectMask(name, [form](Bytes& mask) {
            form(kMaskSize.width, kMaskSize.height, kMaskStride, mask.data(), 1, 2, 3, 4);
        });
    };
#define TQ_MASK(form)    \
    expect(#form, form); \
    expect(#form "_MultiThread", form##_MultiThread)
    TQ_MASK(IPL_Erosion);
    TQ_MASK(IPL_Dilation);
    TQ_MASK(IPL_Opening);
    TQ_MASK(IPL_Closing);
    TQ_MASK(IPL_DeNoise);
    TQ_MASK(IPL_FErosion);
    TQ_MASK(IPL_FDilation);
    TQ_MASK(IPL_FDeNoise);
#undef TQ_MASK
    expectOfTwo("IPL_FOpening", IPL_FOpening);
    expectOfTwo("IPL_FOpening_MultiThread", IPL_FOpening_MultiThread);
    expectOfTwo("IPL_FClosing", IPL_FClosing);
    expectOfTwo("IPL_FClosing_MultiThread", IPL_FClosing_MultiThread);
}

void Append(Bytes& bytes, CTQArray<TQ_RECT, TQ_RECT&>& rects) {
    for (int64_t i = 0; i < rects.GetSize(); ++i) {
        const TQ_RECT& rect = rects.GetAt(i);
        const auto* begin = reinterpret_cast<const uint8_t*>(&rect);
        bytes.insert(bytes.end(), begin, begin + sizeof rect);
    }
}

// The order of the rectangles hangs on the bands, and at one processor there are none.
TEST(Golden, Labelling) {
    using Form = decltype(&IPL_FCCLabeling);
    const auto expect = [](const std::string& name, Form form,
                           const std::vector<unsigned>& processorCounts) {
        ExpectMask(
            name,
            [form](Bytes& mask) {
                CTQArray<TQ_RECT, TQ_RECT&> rects;
                form(kMaskSize.width, kMaskSize.height, kMaskStride, mask.data(), &rects, 12);
                Append(mask, rects);
            },
            processorCounts);
    };
    expect("IPL_FCCLabeling", IPL_FCCLabeling, {1, 3, 8});
    expect("IPL_FCCLabeling2", IPL_FCCLabeling2, {1, 3, 8});
    for (unsigned processors : {1, 3, 8})
        expect("IPL_FCCLabeling_MultiThread " + std::to_string(processors),
               IPL_FCCLabeling_MultiThread, {processors});
    ExpectMask("IPL_FCCLabelingEx", [](Bytes& mask) {
        Bytes connect = Mask(kMaskSize, kMaskSize.width, 4);
        CTQArray<TQ_RECT, TQ_RECT&> rects;
        IPL_FCCLabelingEx(kMaskSize.width, kMaskSize.height, kMaskStride, mask.data(),
                          connect.data(), &rects, 5);
        Append(mask, rects);
    });
}

TEST(Golden, LabellingDenoise) {
    using Form = decltype(&IPL_FCCLabelingDeNoiseEx);
    ExpectMask("IPL_FCCLabelingDeNoise", [](Bytes& mask) {
        IPL_FCCLabelingDeNoise(kMaskSize.width, kMaskSize.height, kMaskStride, mask.data(), 20);
    });
    const auto expect = [](const char* name, Form form, std::vector<unsigned> processorCounts) {
        ExpectMask(
            name,
            [form](Bytes& mask) {
                form(kMaskSize.width, kMaskSize.height, kMaskStride, mask.data(), 20);
            },
            processorCounts);
    };
    expect("IPL_FCCLabelingDeNoiseEx", IPL_FCCLabelingDeNoiseEx, {1, 3, 8});
    expect("IPL_FCCLabelingDeNoiseEx2", IPL_FCCLabelingDeNoiseEx2, {1, 3, 8});
    expect("IPL_FCCLabelingDeNoiseEx_MultiThread", IPL_FCCLabelingDeNoiseEx_MultiThread, {3, 8});
    expect("IPL_FCCLabelingDeNoiseEx2_MultiThread", IPL_FCCLabelingDeNoiseEx2_MultiThread, {3, 8});
}

TEST(Golden, SeedGrowth) {
    using Form = decltype(&IPL_FCCDeNoiseAndGrowth);
    const auto expect = [](const char* name, Form form, std::vector<unsigned> processorCounts) {
        ExpectMask(
            name,
            [form](Bytes& mask) {
                Bytes guide = Mask(kMaskSize, kMaskStride + 2, 5);
                form(kMaskSize.width, kMaskSize.height, kMaskStride + 2, guide.data(), kMaskStride,
                     mask.data(), 15);
            },
            processorCounts);
    };
    expect("IPL_FCCDeNoiseAndGrowth", IPL_FCCDeNoiseAndGrowth, {1, 3, 8});
    expect("IPL_FCCDeNoiseAndGrowth2", IPL_FCCDeNoiseAndGrowth2, {1, 3, 8});
    expect("IPL_FCCDeNoiseAndGrowth2_MultiThread", IPL_FCCDeNoiseAndGrowth2_MultiThread, {3, 8});
}

constexpr Size kPlane = {131, 45};
constexpr int kPlaneStride = 136;

// A form with two planes of kPlane and kPlaneStride. The destination begins as noise, which shows
// the bytes that the form leaves alone.
template <class Form>
void ExpectPlane(const std::string& name, Form form, int hashedRows = kPlane.height) {
    ExpectGolden(name, [&] {
        Bytes src = Hostile(kPlaneStride * kPlane.height, 11);
        Bytes dst = Hostile(kPlaneStride * kPlane.height, 12);
        form(src.data(), dst.data());
        dst.resize(kPlaneStride * hashedRows);
        return dst;
    });
}

TEST(Golden, Filters) {
    constexpr auto w = kPlane.width, h = kPlane.height, stride = kPlaneStride;
    for (int radius : {1, 3, 6}) {
        const std::string suffix = " " + std::to_string(radius);
        ExpectPlane("IPL_Bilteral_8u_C1R" + suffix, [=](uint8_t* src, uint8_t* dst) {
            IPL_Bilteral_8u_C1R(w, h, stride, src, stride, dst, radius, 30);
        });
        ExpectPlane("IPL_BilteralEx_8u_C1R" + suffix, [=](uint8_t* src, uint8_t* dst) {
            IPL_BilteralEx_8u_C1R(w, h, stride, src, stride, dst, radius, 30);
        });
        // The rows below draw on memory that nothing wrote.
        ExpectPlane(
            "IPL_BilteralExMutiThread_8u_C1R" + suffix,
            [=](uint8_t* src, uint8_t* dst) {
                IPL_BilteralExMutiThread_8u_C1R(w, h, stride, src, stride, dst, radius, 30);
            },
            h - 2 * radius);
        ExpectPlane("IPL_Gauss_8u_C1R" + suffix, [=](uint8_t* src, uint8_t* dst) {
            IPL_Gauss_8u_C1R(w, h, stride, src, stride, dst, radius);
        });
        ExpectPlane("IPL_Average_8u_C1R" + suffix, [=](uint8_t* src, uint8_t* dst) {
            IPL_Average_8u_C1R(w, h, stride, src, stride, dst, radius);
        });
        ExpectPlane("IPL_Median_8u_C1R" + suffix, [=](uint8_t* src, uint8_t* dst) {
            IPL_Median_8u_C1R(w, h, stride, src, stride, dst, radius);
        });
    }
    ExpectPlane("IPL_Gauss3x3_8u_C1R", [](uint8_t* src, uint8_t* dst) {
        IPL_Gauss3x3_8u_C1R(w, h, stride, src, stride, dst);
    });
    ExpectPlane("IPL_Median3x3_8u_C1R", [](uint8_t* src, uint8_t* dst) {
        IPL_Median3x3_8u_C1R(w, h, stride, src, stride, dst);
    });
    ExpectGolden("IPL_Deinterlace_8u_C1R", [] {
        Bytes fields = Hostile(2 * stride * h, 13);
        Bytes frames = Hostile(4 * stride * h, 14);
        IPL_Deinterlace_8u_C1R(w, h, stride, fields.data(), stride, fields.data() + stride * h,
                               stride, frames.data(), stride, frames.data() + 2 * stride * h);
        return frames;
    });
}

// The bits of the floats.
TEST(Golden, Psnr) {
    constexpr auto w = kPlane.width, h = kPlane.height, stride = kPlaneStride;
    for (int noise : {1, 6, 100}) {
        const std::string suffix = " " + std::to_string(noise);
        Bytes first = Hostile(stride * h, 21), second = first;
        for (size_t i = 0; i < second.size(); ++i)
            second[i] = static_cast<uint8_t>(second[i] + static_cast<int>(i * 7 % noise));
        ExpectGolden("IPL_GetPSNR" + suffix, [&] {
            float values[4];
            values[0] = IPL_GetPSNR_8u_C1R(w, h, stride, first.data(), stride, second.data());
            IPL_GetPSNR_YUYV(w / 2, h, stride, first.data(), stride, second.data(), values[1],
                             values[2], values[3]);
            Bytes bytes(sizeof values);
            std::memcpy(bytes.data(), values, sizeof values);
            return bytes;
        });
    }
}

TEST(Golden, Wavelets) {
    constexpr auto w = kPlane.width, h = kPlane.height, stride = kPlaneStride;
    const auto bytesOf = [](const std::vector<int>& values) {
        Bytes bytes(values.size() * sizeof(int));
        std::memcpy(bytes.data(), values.data(), bytes.size());
        return bytes;
    };
    ExpectGolden("IPL_FwdWavelet_53_C1", [&] {
        Bytes src = Hostile(stride * h, 15);
        std::vector<int> dst(stride * h, 99);
        IPL_FwdWavelet_53_C1(w, h, stride, src.data(), stride, dst.data());
        return bytesOf(dst);
    });
    ExpectGolden("IPL_InvWavelet_53_C1", [] {
        Bytes noise = Hostile(stride * h * sizeof(int), 16), dst(stride * h, 99);
        std::vector<int> src(stride * h);
        std::memcpy(src.data(), noise.data(), noise.size());
        IPL_InvWavelet_53_C1(w, h, stride, src.data(), stride, dst.data());
        return dst;
    });
    ExpectPlane("IPL_WaveletFilter_53_C1", [](uint8_t* src, uint8_t* dst) {
        std::memcpy(dst, src, stride * h);
        IPL_WaveletFilter_53_C1(w, h, stride, dst);
    });
    const auto expectLow = [](const char* name, decltype(&IPL_WaveletLL_53_C1) form) {
        ExpectPlane(name, [form](uint8_t* src, uint8_t* dst) {
            form(w, h, stride, src, stride, dst, 16, 235);
        });
    };
    expectLow("IPL_WaveletLL_53_C1", IPL_WaveletLL_53_C1);
    expectLow("IPL_WaveletLL_53_C1_MultiThread", IPL_WaveletLL_53_C1_MultiThread);
    const auto expectDeepLow = [](const char* name, decltype(&IPL_WaveletLL_53_C1_16u) form) {
        ExpectPlane(name, [form](uint8_t* src, uint8_t* dst) {
            form(w / 2, h, stride, src, stride, dst, 4096, 60160);
        });
    };
    expectDeepLow("IPL_WaveletLL_53_C1_16u", IPL_WaveletLL_53_C1_16u);
    expectDeepLow("IPL_WaveletLL_53_C1_16u_MultiThread", IPL_WaveletLL_53_C1_16u_MultiThread);
}

TEST(Golden, ProgressiveToInterlaced) {
    using Form = decltype(&IPL_P2I_Wavelet53_C1R);
    const auto expect = [](const char* name, Form form, unsigned pixelBytes) {
        for (EVXR_P2I_MODE mode : {EVXR_P2I_TOP_FIELD, EVXR_P2I_BOTTOM_FIELD, EVXR_P2I_FRAME})
            ExpectPlane(std::string(name) + " " + std::to_string(mode),
                        [=](uint8_t* src, uint8_t* dst) {
                            form(kPlane.width / pixelBytes, kPlane.height, kPlaneStride, src,
                                 kPlaneStride, dst, mode);
                        });
    };
    expect("IPL_P2I_Wavelet53_C1R", IPL_P2I_Wavelet53_C1R, 1);
    expect("IPL_P2I_Wavelet53_C1R_16u", IPL_P2I_Wavelet53_C1R_16u, 2);
    expect("IPL_P2I_Wavelet53_C4R", IPL_P2I_Wavelet53_C4R, 4);
    expect("IPL_P2I_Wavelet53_C3R_16u", IPL_P2I_Wavelet53_C3R_16u, 6);
    expect("IPL_P2I_Wavelet53_MultiThread_C1R", IPL_P2I_Wavelet53_MultiThread_C1R, 1);
    expect("IPL_P2I_Wavelet53_MultiThread_C1R_16u", IPL_P2I_Wavelet53_MultiThread_C1R_16u, 2);
    expect("IPL_P2I_Wavelet53_MultiThread_C4R", IPL_P2I_Wavelet53_MultiThread_C4R, 4);
    expect("IPL_P2I_Wavelet53_MultiThread_C3R_16u", IPL_P2I_Wavelet53_MultiThread_C3R_16u, 6);
}

}  // namespace
