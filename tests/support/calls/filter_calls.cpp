// Calls of the filters and of the wavelets.

#include <TQIPLBaseLibU.h>

#include "support/calls/pixel_makers.h"

namespace tqtest {

namespace {

using Maker = std::function<Call(CallFrame&)>;

// The filters copy small images in ways of their own; these have room for every radius drawn here.
int Radius(CallFrame& f) { return 1 + f.Below(3); }

// Which part of a result is no more than what memory held.
enum class Unwritten { kNothing, kLastRows, kEdges };

void IgnoreUnwritten(CallFrame& f, Unwritten what, CallImage<uint8_t> image, int radius) {
    const int w = f.Width(), h = f.Height();
    const auto row = [&](int y) { return image.first + int64_t{y} * image.stride; };
    if (what == Unwritten::kLastRows)
        for (int y = h - 2 * radius; y < h; ++y) f.Ignore(row(y), w);
    if (what != Unwritten::kEdges) return;
    for (int y = radius; y < h - radius - 1; ++y) {
        f.Ignore(row(y), radius);
        f.Ignore(row(y) + w - radius - 1, radius + 1);
    }
    f.Ignore(row(h - 1), w);
}

using SmoothTwo = void(int, int, int, unsigned char*, int, unsigned char*, int);
using SmoothOne = void(int, int, int, unsigned char*, int);
using BilateralTwo = void(int, int, int, unsigned char*, int, unsigned char*, int, int);
using BilateralOne = void(int, int, int, unsigned char*, int, int);
using ThreeTwo = void(int, int, int, unsigned char*, int, unsigned char*);
using ThreeOne = void(int, int, int, unsigned char*);

Maker Smooth(SmoothTwo* form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height(), radius = Radius(f);
        const auto src = f.TopDown(w, h), dst = f.TopDown(w, h);
        return [=] { form(w, h, src.stride, src.first, dst.stride, dst.first, radius); };
    };
}

auto SmoothInPlace(Unwritten unwritten) {
    return [=](SmoothOne* form) -> Maker {
        return [=](CallFrame& f) -> Call {
            const int w = f.Width(), h = f.Height(), radius = Radius(f);
            const auto image = f.TopDown(w, h);
            IgnoreUnwritten(f, unwritten, image, radius);
            return [=] { form(w, h, image.stride, image.first, radius); };
        };
    };
}

// The separable form reads its source to the end of the last row's padding.
auto Bilateral(Unwritten unwritten) {
    return [=](BilateralTwo* form) -> Maker {
        return [=](CallFrame& f) -> Call {
            const int w = f.Width(), h = f.Height(), radius = Radius(f), sigma = 5 + f.Below(60);
            const auto src = f.WholeRows(w, h), dst = f.TopDown(w, h);
            IgnoreUnwritten(f, unwritten, dst, radius);
            return [=] { form(w, h, src.stride, src.first, dst.stride, dst.first, radius, sigma); };
        };
    };
}

auto BilateralInPlace(Unwritten unwritten) {
    return [=](BilateralOne* form) -> Maker {
        return [=](CallFrame& f) -> Call {
            const int w = f.Width(), h = f.Height(), radius = Radius(f), sigma = 5 + f.Below(60);
            const auto image = f.WholeRows(w, h);
            IgnoreUnwritten(f, unwritten, image, radius);
            return [=] { form(w, h, image.stride, image.first, radius, sigma); };
        };
    };
}

Maker ThreeInPlace(ThreeOne* form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto image = f.TopDown(w, h);
        return [=] { form(w, h, image.stride, image.first); };
    };
}

Maker Deinterlace(decltype(&IPL_Deinterlace_8u_C1R) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto field0 = f.TopDown(w, h), field1 = f.TopDown(w, h);
        const auto frame0 = f.TopDown(w, 2 * h), frame1 = f.TopDown(w, 2 * h);
        return [=] {
            form(w, h, field0.stride, field0.first, field1.stride, field1.first, frame0.stride,
                 frame0.first, frame1.stride, frame1.first);
        };
    };
}

Maker Psnr(decltype(&IPL_GetPSNR_8u_C1R) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto first = f.TopDown(w, h), second = f.TopDown(w, h);
        float* value = f.Values();
        return [=] { *value = form(w, h, first.stride, first.first, second.stride, second.first); };
    };
}

Maker PsnrOfThree(decltype(&IPL_GetPSNR_YUYV) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto first = f.TopDown(2 * w, h), second = f.TopDown(2 * w, h);
        float* values = f.Values();
        return [=] {
            form(w, h, first.stride, first.first, second.stride, second.first, values[0], values[1],
                 values[2]);
        };
    };
}

// Images of ints are larger than what they come from; both have room for every element.
Maker Forward(decltype(&IPL_FwdWavelet_53_C1) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto src = f.TopDown(w, h);
        const auto dst = f.TopDown<int>(w, h);
        return [=] { form(w, h, src.stride, src.first, dst.stride, dst.first); };
    };
}

Maker Inverse(decltype(&IPL_InvWavelet_53_C1) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto src = f.TopDown<int>(w, h);
        const auto dst = f.TopDown(w, h);
        return [=] { form(w, h, src.stride, src.first, dst.stride, dst.first); };
    };
}

Maker InPlace(decltype(&IPL_WaveletFilter_53_C1) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto image = f.TopDown(w, h);
        return [=] { form(w, h, image.stride, image.first); };
    };
}

template <class Sample>
Maker LowBand(void (*form)(unsigned, unsigned, unsigned, unsigned char*, unsigned, unsigned char*,
                           Sample, Sample)) {
    return [form](CallFrame& f) -> Call {
        constexpr int kBytes = sizeof(Sample), kShift = 8 * (kBytes - 1);
        const int w = f.Width(), h = f.Height();
        const auto src = f.TopDown(w * kBytes, h), dst = f.TopDown(w / 2 * kBytes, h / 2);
        return [=] {
            form(w, h, src.stride, src.first, dst.stride, dst.first, 16 << kShift, 235 << kShift);
        };
    };
}

auto ToFields(int pixelBytes) {
    return [=](decltype(&IPL_P2I_Wavelet53_C1R) form) -> Maker {
        return [=](CallFrame& f) -> Call {
            const int w = f.Width(), h = f.Height();
            const auto mode = static_cast<EVXR_P2I_MODE>(f.Below(3));
            const auto src = f.TopDown(w * pixelBytes, h), dst = f.TopDown(w * pixelBytes, h);
            return [=] { form(w, h, src.stride, src.first, dst.stride, dst.first, mode); };
        };
    };
}

}  // namespace

FormCalls FilterCalls() {
    FormCalls table;
    TQ_CALL_OF(table, BilateralTwo, IPL_Bilteral_8u_C1R, Bilateral(Unwritten::kNothing));
    TQ_CALL_OF(table, BilateralOne, IPL_Bilteral_8u_C1R, BilateralInPlace(Unwritten::kNothing));
    TQ_CALL_OF(table, BilateralTwo, IPL_BilteralEx_8u_C1R, Bilateral(Unwritten::kNothing));
    TQ_CALL_OF(table, BilateralOne, IPL_BilteralEx_8u_C1R, BilateralInPlace(Unwritten::kNothing));
    TQ_CALL_OF(table, BilateralTwo, IPL_BilteralExMutiThread_8u_C1R,
               Bilateral(Unwritten::kLastRows));
    TQ_CALL_OF(table, BilateralOne, IPL_BilteralExMutiThread_8u_C1R,
               BilateralInPlace(Unwritten::kLastRows));
    TQ_CALL_OF(table, ThreeTwo, IPL_Gauss3x3_8u_C1R, PixelMaker(1, 1));
    TQ_CALL_OF(table, ThreeOne, IPL_Gauss3x3_8u_C1R, ThreeInPlace);
    TQ_CALL_OF(table, SmoothTwo, IPL_Gauss_8u_C1R, Smooth);
    TQ_CALL_OF(table, SmoothOne, IPL_Gauss_8u_C1R, SmoothInPlace(Unwritten::kNothing));
    TQ_CALL_OF(table, SmoothTwo, IPL_Average_8u_C1R, Smooth);
    TQ_CALL_OF(table, SmoothOne, IPL_Average_8u_C1R, SmoothInPlace(Unwritten::kEdges));
    TQ_CALL_OF(table, SmoothTwo, IPL_Median_8u_C1R, Smooth);
    TQ_CALL_OF(table, SmoothOne, IPL_Median_8u_C1R, SmoothInPlace(Unwritten::kEdges));
    TQ_CALL(table, IPL_Median3x3_8u_C1R, PixelMaker(1, 1));
    TQ_CALL(table, IPL_Deinterlace_8u_C1R, Deinterlace);
    TQ_CALL(table, IPL_GetPSNR_8u_C1R, Psnr);
    TQ_CALL(table, IPL_GetPSNR_YUYV, PsnrOfThree);
    return table;
}

FormCalls WaveletCalls() {
    FormCalls table;
    TQ_CALL(table, IPL_FwdWavelet_53_C1, Forward);
    TQ_CALL(table, IPL_InvWavelet_53_C1, Inverse);
    TQ_CALL(table, IPL_WaveletFilter_53_C1, InPlace);
    TQ_CALL(table, IPL_Wavelet_BSpline_C1, InPlace);
    TQ_PAIR(table, IPL_WaveletLL_53_C1, _MultiThread, LowBand<unsigned char>);
    TQ_PAIR(table, IPL_WaveletLL_53_C1_16u, _MultiThread, LowBand<unsigned short>);
#define TQ_FIELDS(kind, bytes)                                                                  \
    table.AddPair("IPL_P2I_Wavelet53_" #kind, IPL_P2I_Wavelet53_##kind,                         \
                  "IPL_P2I_Wavelet53_MultiThread_" #kind, IPL_P2I_Wavelet53_MultiThread_##kind, \
                  ToFields(bytes))
    TQ_FIELDS(C1R, 1);
    TQ_FIELDS(C1R_16u, 2);
    TQ_FIELDS(C4R, 4);
    TQ_FIELDS(C3R_16u, 6);
#undef TQ_FIELDS
    return table;
}

}  // namespace tqtest
