// Calls of the conversions with more than eight bits a sample.

#include <TQIPLBaseLibU.h>

#include "support/calls/pixel_makers.h"

namespace tqtest {

namespace {

using Strides = CTQArray<int, int>&;
using Planes = CTQArray<unsigned char*, unsigned char*>&;
using ToPlanes = void (*)(int, int, int, unsigned char*, Strides, Planes);
using FromPlanes = void (*)(int, int, Strides, Planes, int, unsigned char*);

void AddPlanes(CallFrame& f, const std::vector<int>& rowBytes) {
    for (int bytes : rowBytes) f.AddPlane(f.Image(bytes, f.Height()));
}
std::vector<int> Yuv216(int width) { return {width * 2, (width + 1) / 2 * 2, (width + 1) / 2 * 2}; }
std::vector<int> Bgra16(int width) { return {width * 8, width * 2}; }

auto ToPlanesMaker(int srcBytes, std::vector<int> (*rows)(int)) {
    return [=](ToPlanes form) {
        return [=](CallFrame& f) -> Call {
            const int w = f.Width(), h = f.Height();
            const auto src = f.Image(RowOf(w, srcBytes), h);
            AddPlanes(f, rows(w));
            return [=, &f] { form(w, h, src.stride, src.first, f.Strides(), f.Planes()); };
        };
    };
}

auto FromPlanesMaker(int dstBytes, std::vector<int> (*rows)(int)) {
    return [=](FromPlanes form) {
        return [=](CallFrame& f) -> Call {
            const int w = f.Width(), h = f.Height();
            AddPlanes(f, rows(w));
            const auto dst = f.Image(RowOf(w, dstBytes), h);
            return [=, &f] { form(w, h, f.Strides(), f.Planes(), dst.stride, dst.first); };
        };
    };
}

std::function<Call(CallFrame&)> V210ToBlock(decltype(&IPL_V210_To_YUVP422) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto src = f.Image(RowOf(w, kV210), h);
        uint8_t* dst = f.Block(int64_t{w} * h * 2);
        return [=] { form(w, h, src.stride, src.first, w, dst); };
    };
}

}  // namespace

FormCalls DeepCalls() {
    FormCalls table;
    TQ_CALL(table, IPL_V210_To_UYVY, PixelMaker(kV210, 2));
    TQ_CALL(table, IPL_V210_To_YUYV, PixelMaker(kV210, 2));
    TQ_CALL(table, IPL_V210_To_YUVP422, V210ToBlock);
    TQ_PAIR(table, IPL_V210_To_BGRA_601, MultiThread, PixelMaker(kV210, 4));
    TQ_PAIR(table, IPL_V210_To_BGRA_709, MultiThread, PixelMaker(kV210, 4));
    TQ_PAIR(table, IPL_V210_To_Lum32, MultiThread, PixelMaker(kV210, 1));
    TQ_PAIR(table, IPL_V216_To_BGRA_601, MultiThread, PixelMaker(4, 4));
    TQ_PAIR(table, IPL_V216_To_BGRA_709, MultiThread, PixelMaker(4, 4));
    TQ_PAIR(table, IPL_V216_To_Lum32, MultiThread, PixelMaker(4, 1));
    TQ_PAIR(table, IPL_BGRTQ10b_To_BGRA, MultiThread, PixelMaker(4, 4));
    TQ_PAIR(table, IPL_BGRTQ10b_To_BGRTQ16b, MultiThread, PixelMaker(4, 6));
    TQ_PAIR(table, IPL_BGRTQ16b_To_BGRA, MultiThread, PixelMaker(6, 4));
    TQ_PAIR(table, IPL_BGRTQ16b_To_BGRTQ10b, MultiThread, PixelMaker(6, 4));
    TQ_PAIR(table, IPL_V210_To_YUVP216, MultiThread, ToPlanesMaker(kV210, Yuv216));
    TQ_PAIR(table, IPL_V216_To_YUVP216, MultiThread, ToPlanesMaker(4, Yuv216));
    TQ_PAIR(table, IPL_YUVP216_To_V210, MultiThread, FromPlanesMaker(kV210, Yuv216));
    TQ_PAIR(table, IPL_YUVP216_To_V216, MultiThread, FromPlanesMaker(4, Yuv216));
    TQ_PAIR(table, IPL_BGR10b_To_BGRA16b, MultiThread, ToPlanesMaker(4, Bgra16));
    TQ_PAIR(table, IPL_BGR16b_To_BGRA16b, MultiThread, ToPlanesMaker(6, Bgra16));
    TQ_PAIR(table, IPL_BGRA16b_To_BGR10b, MultiThread, FromPlanesMaker(4, Bgra16));
    TQ_PAIR(table, IPL_BGRA16b_To_BGR16b, MultiThread, FromPlanesMaker(6, Bgra16));
    return table;
}

}  // namespace tqtest
