// Calls of the conversions between pixels and hue, saturation and value.

#include <TQIPLBaseLibU.h>

#include "support/calls/pixel_makers.h"

namespace tqtest {

namespace {

using Maker = std::function<Call(CallFrame&)>;

Maker ToThreePlanes(decltype(&IPL_BGRA2HSV) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto src = f.Image(w * 4, h);
        const auto hue = f.Image<float>(w, h), saturation = f.Image<float>(w, h);
        const auto value = f.Image<float>(w, h);
        return [=] {
            form(w, h, src.stride, src.first, hue.stride, hue.first, saturation.stride,
                 saturation.first, value.stride, value.first);
        };
    };
}

Maker FromThreePlanes(decltype(&IPL_HSV_To_BGRA) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto hue = f.Image<float>(w, h), saturation = f.Image<float>(w, h);
        const auto value = f.Image<float>(w, h);
        const auto dst = f.Image(w * 4, h);
        return [=] {
            form(w, h, hue.stride, hue.first, saturation.stride, saturation.first, value.stride,
                 value.first, dst.stride, dst.first);
        };
    };
}

using FromFour = void(int, int, int, float*, int, float*, int, float*, int, float*, int,
                      unsigned char*);
using FromThree = void(int, int, int, float*, int, float*, int, float*, int, unsigned char*);

Maker FromFourPlanes(FromFour* form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto hue = f.Image<float>(w, h), saturation = f.Image<float>(w, h);
        const auto value = f.Image<float>(w, h), alpha = f.Image<float>(w, h);
        const auto dst = f.Image(w * 4, h);
        return [=] {
            form(w, h, hue.stride, hue.first, saturation.stride, saturation.first, value.stride,
                 value.first, alpha.stride, alpha.first, dst.stride, dst.first);
        };
    };
}

Maker ToDensePlanes(decltype(&IPL_YUYV2HSVP_601) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto src = f.Image(w * 2, h);
        float* dst = f.Block<float>(int64_t{w} * h * 3);
        return [=] { form(w, h, src.stride, src.first, dst); };
    };
}

Maker FromDensePlanes(decltype(&IPL_HSVP2YUYV_601) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        float* src = f.Block<float>(int64_t{w} * h * 3);
        const auto dst = f.Image(w * 2, h);
        return [=] { form(w, h, src, dst.stride, dst.first); };
    };
}

Maker FromFloats(decltype(&IPL_HSV2YUYV_601) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto src = f.Image<float>(w * 3, h);
        const auto dst = f.Image(w * 2, h);
        return [=] { form(w, h, src.stride, src.first, dst.stride, dst.first); };
    };
}

Maker WithAlpha(decltype(&IPL_HSV2BGRA_8u_C3R) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto src = f.Image(w * 3, h), alpha = f.Image(w, h), dst = f.Image(w * 4, h);
        return [=] {
            form(w, h, src.stride, src.first, alpha.stride, alpha.first, dst.stride, dst.first);
        };
    };
}

auto WithMatrix(int srcBytes, int dstBytes) {
    return [=](decltype(&IPL_UYVY2HSV_8u) form) -> Maker {
        return [=](CallFrame& f) -> Call {
            const int w = f.Width(), h = f.Height();
            const auto src = f.Image(w * srcBytes, h), dst = f.Image(w * dstBytes, h);
            return [=] {
                form(w, h, src.stride, src.first, dst.stride, dst.first, TQ_COLOR_MATRIX_709);
            };
        };
    };
}

}  // namespace

FormCalls HsvCalls() {
    FormCalls table;
    TQ_PAIR(table, IPL_BGRA2HSV, _MultiThread, ToThreePlanes);
    table.AddPair("IPL_HSV2BGRA", static_cast<FromThree*>(IPL_HSV2BGRA), "IPL_HSV2BGRA_MultiThread",
                  static_cast<FromThree*>(IPL_HSV2BGRA_MultiThread), FromThreePlanes);
    table.AddPair("IPL_HSV2BGRA", static_cast<FromFour*>(IPL_HSV2BGRA), "IPL_HSV2BGRA_MultiThread",
                  static_cast<FromFour*>(IPL_HSV2BGRA_MultiThread), FromFourPlanes);
    TQ_CALL(table, IPL_HSV_To_BGRA, FromThreePlanes);
    TQ_PAIR(table, IPL_YUYV2HSV_601, _MultiThread, PixelMaker(2, 3));
    TQ_PAIR(table, IPL_YUYV2HSV_709, _MultiThread, PixelMaker(2, 3));
    TQ_PAIR(table, IPL_YUYV2HSVP_601, _MultiThread, ToDensePlanes);
    TQ_PAIR(table, IPL_YUYV2HSVP_709, _MultiThread, ToDensePlanes);
    TQ_PAIR(table, IPL_HSV2YUYV_601, _MultiThread, FromFloats);
    TQ_PAIR(table, IPL_HSV2YUYV_709, _MultiThread, FromFloats);
    TQ_PAIR(table, IPL_HSVP2YUYV_601, _MultiThread, FromDensePlanes);
    TQ_PAIR(table, IPL_HSVP2YUYV_709, _MultiThread, FromDensePlanes);
    TQ_PAIR(table, IPL_BGRA2HSV_8u_C3R, _MultiThread, PixelMaker(4, 3, 1));
    TQ_PAIR(table, IPL_YUYV2HSV_8u_709, _MultiThread, PixelMaker(2, 3));
    TQ_PAIR(table, IPL_HSV2YUYV_8u_709, _MultiThread, PixelMaker(3, 2));
    TQ_PAIR(table, IPL_HSV2BGRA_8u_C3R, _MultiThread, WithAlpha);
    TQ_PAIR(table, IPL_UYVY2HSV_8u, _MultiThread, WithMatrix(2, 3));
    TQ_PAIR(table, IPL_HSV2UYVY_8u, _MultiThread, WithMatrix(3, 2));
    return table;
}

}  // namespace tqtest
