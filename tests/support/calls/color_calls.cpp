// Calls of the colour conversions with eight bits a sample, and of the luminances.

#include <TQIPLBaseLibU.h>

#include "support/calls/pixel_makers.h"

namespace tqtest {

namespace {

using ToArgb = void (*)(int, int, unsigned char*, int, unsigned char*);
using FromArgb = void (*)(int, int, int, unsigned char*, unsigned char*);
using ToLuma = void (*)(int, int, int, unsigned char*, int, unsigned char*, int);

// The planes stand in one block. In an odd width the plain forms have another layout.
std::function<Call(CallFrame&)> FromBlock(ToArgb form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.EvenWidth(), h = f.Height();
        uint8_t* src = f.Block(int64_t{w} * h * 2);
        const auto dst = f.Image(w * 4, h);
        return [=] { form(w, h, src, dst.stride, dst.first); };
    };
}

std::function<Call(CallFrame&)> ToBlock(FromArgb form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.EvenWidth(), h = f.Height();
        const auto src = f.Image(w * 4, h);
        uint8_t* dst = f.Block(int64_t{w} * h * 2);
        return [=] { form(w, h, src.stride, src.first, dst); };
    };
}

std::function<Call(CallFrame&)> Luma(ToLuma form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.EvenWidth(), h = f.Height(), half = f.Below(2);
        const auto src = f.Image(w * 2, h), dst = f.Image(w, h);
        return [=] { form(w, h, src.stride, src.first, dst.stride, dst.first, half); };
    };
}

}  // namespace

FormCalls ColorCalls() {
    FormCalls table;
    TQ_PAIR(table, IPL_ARGB2LUM, _MultiThread, PixelMaker(4, 1));
    TQ_PAIR(table, IPL_BGR10b_To_Lum, _MultiThread, PixelMaker(4, 1));
    TQ_PAIR(table, IPL_BGR16b_To_Lum, _MultiThread, PixelMaker(6, 1));
    TQ_PAIR(table, IPL_BGRA_To_Lum32, _MultiThread, PixelMaker(4, 1));
    TQ_PAIR(table, IPL_BGR10b_To_Lum32, _MultiThread, PixelMaker(4, 1));
    TQ_PAIR(table, IPL_BGR16b_To_Lum32, _MultiThread, PixelMaker(6, 1));
    TQ_PAIR(table, IPL_YUYV422_To_ARGB444, _MultiThread, PixelMaker(2, 4));
    TQ_PAIR(table, IPL_UYVY422_To_ARGB444, _MultiThread, PixelMaker(2, 4));
    TQ_PAIR(table, IPL_VUYT444_To_ARGB444, _MultiThread, PixelMaker(4, 4));
    TQ_PAIR(table, IPL_YUYV2ARGB_601, _MultiThread, PixelMaker(2, 4));
    TQ_PAIR(table, IPL_UYVY2ARGB_601, _MultiThread, PixelMaker(2, 4));
    TQ_PAIR(table, IPL_YUYV2ARGB_709, _MultiThread, PixelMaker(2, 4));
    TQ_PAIR(table, IPL_UYVY2ARGB_709, _MultiThread, PixelMaker(2, 4));
    TQ_PAIR(table, IPL_ARGB2YUYV_601, _MultiThread, PixelMaker(4, 2));
    TQ_PAIR(table, IPL_ARGB2YUYV_709, _MultiThread, PixelMaker(4, 2));
    TQ_PAIR(table, IPL_ARGB2UYVY_601, _MultiThread, PixelMaker(4, 2));
    TQ_PAIR(table, IPL_ARGB2UYVY_709, _MultiThread, PixelMaker(4, 2));
    TQ_PAIR(table, IPL_RGB2BGRA, _MultiThread, PixelMaker(3, 4));
    TQ_PAIR(table, IPL_BGRA2RGB, _MultiThread, PixelMaker(4, 3, 1));
    TQ_PAIR(table, IPL_YUVP_422_To_ARGB444, _MultiThread, FromBlock);
    TQ_PAIR(table, IPL_YUVP422_To_ARGB_601, _MultiThread, FromBlock);
    TQ_PAIR(table, IPL_YUVP422_To_ARGB_709, _MultiThread, FromBlock);
    TQ_PAIR(table, IPL_ARGB_To_YUVP422_601, _MultiThread, ToBlock);
    TQ_PAIR(table, IPL_ARGB_To_YUVP422_709, _MultiThread, ToBlock);
    TQ_CALL(table, IPL_YUYV_To_YMultiThread, Luma);
    TQ_CALL(table, IPL_UYVY_To_YMultiThread, Luma);
    return table;
}

const std::vector<FormCall>& AllFormCalls() {
    static const FormCalls all = [] {
        FormCalls table;
        for (const FormCalls& part :
             {ColorCalls(), DeepCalls(), HsvCalls(), PlaneCalls(), ImageMemoryCalls(), ZoomCalls(),
              MorphCalls(), LabellingCalls(), FilterCalls(), WaveletCalls()})
            table.Append(part);
        return table;
    }();
    return all.All();
}

}  // namespace tqtest
