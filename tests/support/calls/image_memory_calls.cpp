// Calls of copying, clearing, filling and flipping.

#include <TQIPLBaseLibU.h>

#include "support/calls/pixel_makers.h"

namespace tqtest {

namespace {

using Maker = std::function<Call(CallFrame&)>;

TQ_COLOR_FORMAT PackedFormat(CallFrame& f) {
    return f.OneOf({TQ_COLOR_ARGB, TQ_COLOR_AYUV, TQ_COLOR_YUYV, TQ_COLOR_UYVY, TQ_COLOR_PACKED32});
}
TQ_RECT AnyRect(CallFrame& f) {
    const int left = f.Below(f.Width()) - 2, top = f.Below(f.Height()) - 2;
    return {left, top, left + f.Below(f.Width() + 3), top + f.Below(f.Height() + 3)};
}

using CopyBytes = void(unsigned char*, unsigned char*, int);
Maker CopyBlock(CopyBytes* form) {
    return [form](CallFrame& f) -> Call {
        const int bytes = f.Width() * f.Height();
        uint8_t *dst = f.Block(bytes), *src = f.Block(bytes);
        return [=] { form(dst, src, bytes); };
    };
}

using CopyFormat = void(TQ_COLOR_FORMAT, int, int, int, unsigned char*, int, unsigned char*);
Maker Copy(CopyFormat* form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const TQ_COLOR_FORMAT format = PackedFormat(f);
        const auto src = f.Image(w * 4, h), dst = f.Image(w * 4, h);
        return [=] { form(format, w, h, src.stride, src.first, dst.stride, dst.first); };
    };
}

using CopyFormatIn = void(TQ_COLOR_FORMAT, int, int, int, unsigned char*, int, unsigned char*,
                          TQ_RECT, int);
Maker CopyInFormat(CopyFormatIn* form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height(), clear = f.Below(2);
        const TQ_COLOR_FORMAT format = PackedFormat(f);
        const TQ_RECT rect = AnyRect(f);
        const auto src = f.Image(w * 4, h), dst = f.Image(w * 4, h);
        return
            [=] { form(format, w, h, src.stride, src.first, dst.stride, dst.first, rect, clear); };
    };
}

using CopyArgbIn = void(int, int, int, unsigned char*, int, unsigned char*, TQ_RECT, int);
Maker CopyIn(CopyArgbIn* form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height(), clear = f.Below(2);
        const TQ_RECT rect = AnyRect(f);
        const auto src = f.Image(w * 4, h), dst = f.Image(w * 4, h);
        return [=] { form(w, h, src.stride, src.first, dst.stride, dst.first, rect, clear); };
    };
}

using ClearBytes = void(unsigned char*, int);
Maker ClearBlock(ClearBytes* form) {
    return [form](CallFrame& f) -> Call {
        const int bytes = f.Width() * f.Height();
        uint8_t* dst = f.Block(bytes);
        return [=] { form(dst, bytes); };
    };
}

using ClearFormatBytes = void(TQ_COLOR_FORMAT, unsigned char*, int);
Maker ClearBlockOfFormat(ClearFormatBytes* form) {
    return [form](CallFrame& f) -> Call {
        const int bytes = f.Width() * f.Height() * 4;
        const TQ_COLOR_FORMAT format = PackedFormat(f);
        uint8_t* dst = f.Block(bytes);
        return [=] { form(format, dst, bytes); };
    };
}

using ClearFormat = void(TQ_COLOR_FORMAT, int, int, int, unsigned char*);
Maker ClearOfFormat(ClearFormat* form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const TQ_COLOR_FORMAT format = PackedFormat(f);
        const auto dst = f.Image(w * 4, h);
        return [=] { form(format, w, h, dst.stride, dst.first); };
    };
}

Maker ClearInRect(decltype(&IPL_ZeroMemoryIn) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const TQ_COLOR_FORMAT format = PackedFormat(f);
        const TQ_RECT rect = AnyRect(f);
        const auto dst = f.Image(w * 4, h);
        return [=] {
            TQ_RECT normalised = rect;
            form(format, w, h, dst.stride, dst.first, normalised);
        };
    };
}

auto InPlaceMaker(int pixelBytes) {
    return [=](decltype(&IPL_ZeroMemory_C1R) form) -> Maker {
        return [=](CallFrame& f) -> Call {
            const int w = f.Width(), h = f.Height();
            const auto dst = f.Image(w * pixelBytes, h);
            return [=] { form(w, h, dst.stride, dst.first); };
        };
    };
}

auto FillMaker(int pixelBytes) {
    return [=]<class Value>(void (*form)(int, int, int, unsigned char*, Value)) -> Maker {
        return [=](CallFrame& f) -> Call {
            const int w = f.Width(), h = f.Height();
            const auto value = static_cast<Value>(f.Below(0x7FFFFFFF));
            const auto dst = f.Image(w * pixelBytes, h);
            return [=] { form(w, h, dst.stride, dst.first, value); };
        };
    };
}

auto FillRectMaker(int pixelBytes) {
    return [=]<class Value>(void (*form)(int, int, int, unsigned char*, TQ_RECT&, Value)) -> Maker {
        return [=](CallFrame& f) -> Call {
            const int w = f.Width(), h = f.Height();
            const auto value = static_cast<Value>(f.Below(0x7FFFFFFF));
            const TQ_RECT rect = AnyRect(f);
            const auto dst = f.Image(w * pixelBytes, h);
            return [=] {
                TQ_RECT normalised = rect;
                form(w, h, dst.stride, dst.first, normalised, value);
            };
        };
    };
}

Maker Pad(decltype(&IPL_MemcpyAndPad_C1R) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const int left = f.Below(9), top = f.Below(9), right = f.Below(9), bottom = f.Below(9);
        const auto src = f.TopDown(w, h), dst = f.TopDown(left + w + right, top + h + bottom);
        return [=] {
            form(w, h, src.stride, src.first, dst.stride, dst.first, left, top, right, bottom);
        };
    };
}

}  // namespace

FormCalls ImageMemoryCalls() {
    FormCalls table;
#define TQ_COPY(kind, bytes)                                                              \
    table.AddPair("IPL_Memcpy_" #kind, IPL_Memcpy_##kind, "IPL_MemcpyMultiThread_" #kind, \
                  IPL_MemcpyMultiThread_##kind, PixelMaker(bytes, bytes))
    TQ_COPY(C1R, 1);
    TQ_COPY(C1R_16u, 2);
    TQ_COPY(C4R, 4);
#undef TQ_COPY
    table.AddPair("IPL_Memcpy", static_cast<CopyFormat*>(IPL_Memcpy), "IPL_MemcpyMultiThread",
                  IPL_MemcpyMultiThread, Copy);
    table.AddPair("IPL_MemcpyAndPad_C1R", IPL_MemcpyAndPad_C1R, "IPL_MemcpyAndPadMultiThread_C1R",
                  IPL_MemcpyAndPadMultiThread_C1R, Pad);
    TQ_CALL_OF(table, CopyBytes, IPL_Memcpy, CopyBlock);
    TQ_CALL(table, IPL_MemcpyInvert, Copy);
    TQ_CALL(table, IPL_MemcpyInvert_CR1, PixelMaker(1, 1));
    TQ_CALL(table, IPL_MemcpyInvert_CR4, PixelMaker(4, 4));
    TQ_CALL_OF(table, CopyFormatIn, IPL_MemcpyIn, CopyInFormat);
    TQ_CALL_OF(table, CopyFormatIn, IPL_MemcpyOut, CopyInFormat);
    TQ_CALL_OF(table, CopyArgbIn, IPL_MemcpyIn, CopyIn);
    TQ_CALL_OF(table, CopyArgbIn, IPL_MemcpyOut, CopyIn);
    TQ_CALL_OF(table, ClearBytes, IPL_ZeroMemory, ClearBlock);
    TQ_CALL_OF(table, ClearFormatBytes, IPL_ZeroMemory, ClearBlockOfFormat);
    TQ_CALL_OF(table, ClearFormat, IPL_ZeroMemory, ClearOfFormat);
    TQ_CALL(table, IPL_BlackMemory, ClearOfFormat);
    TQ_CALL(table, IPL_ZeroMemoryIn, ClearInRect);
    TQ_CALL(table, IPL_ZeroMemoryOut, ClearInRect);
    TQ_CALL(table, IPL_BlackMemoryIn, ClearInRect);
    TQ_CALL(table, IPL_BlackMemoryOut, ClearInRect);
    TQ_CALL(table, IPL_ZeroMemory_C1R, InPlaceMaker(1));
    TQ_CALL(table, IPL_ZeroMemory_C4R, InPlaceMaker(4));
    TQ_CALL(table, IPL_InvertImage_C1R, InPlaceMaker(1));
    TQ_CALL(table, IPL_InvertImage_C4R, InPlaceMaker(4));
    TQ_CALL(table, IPL_FillMemory_C1R, FillMaker(1));
    TQ_CALL(table, IPL_FillMemory_C4R, FillMaker(4));
    TQ_CALL(table, IPL_FillMemoryIn_C1R, FillRectMaker(1));
    TQ_CALL(table, IPL_FillMemoryOut_C1R, FillRectMaker(1));
    TQ_CALL(table, IPL_FillMemoryIn_C4R, FillRectMaker(4));
    TQ_CALL(table, IPL_FillMemoryOut_C4R, FillRectMaker(4));
    return table;
}

}  // namespace tqtest
