// Calls of splitting, building and the change of matrix.

#include <TQIPLBaseLibU.h>

#include "support/calls/pixel_makers.h"

namespace tqtest {

namespace {

using Maker = std::function<Call(CallFrame&)>;

struct Layout {
    TQ_COLOR_FORMAT format;
    int planes;
};
Layout AnyLayout(CallFrame& f) {
    return f.OneOf<Layout>({{TQ_COLOR_ARGB, 3},
                            {TQ_COLOR_ARGB, 4},
                            {TQ_COLOR_BGR24, 3},
                            {TQ_COLOR_AYUV, 3},
                            {TQ_COLOR_AYUV, 4},
                            {TQ_COLOR_YUYV, 3},
                            {TQ_COLOR_UYVY, 3}});
}

Maker Split(decltype(&IPL_SplitColor) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const Layout layout = AnyLayout(f);
        const auto src = f.Image(w * 4, h);
        for (int i = 0; i < layout.planes; ++i) f.AddPlane(f.Image(w, h));
        return
            [=, &f] { form(layout.format, w, h, src.stride, src.first, f.Strides(), f.Planes()); };
    };
}

Maker Build(decltype(&IPL_BuildColor) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const Layout layout = AnyLayout(f);
        for (int i = 0; i < layout.planes; ++i) f.AddPlane(f.Image(w, h));
        const auto dst = f.Image(w * 4, h);
        return
            [=, &f] { form(layout.format, w, h, f.Strides(), f.Planes(), dst.stride, dst.first); };
    };
}

TQ_COLOR_FORMAT YuvFormat(CallFrame& f) {
    return f.OneOf({TQ_COLOR_AYUV, TQ_COLOR_YUYV, TQ_COLOR_UYVY});
}

using InPlace = void(TQ_COLOR_FORMAT, int, int, int, unsigned char*);
Maker Change(InPlace* form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const TQ_COLOR_FORMAT format = YuvFormat(f);
        const auto image = f.Image(w * 4, h);
        return [=] { form(format, w, h, image.stride, image.first); };
    };
}

using Between = void(int, int, TQ_COLOR_FORMAT, int, unsigned char*, TQ_COLOR_FORMAT, int,
                     unsigned char*);
Maker ChangeBetween(Between* form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const TQ_COLOR_FORMAT from = YuvFormat(f), to = YuvFormat(f);
        const auto src = f.Image(w * 4, h), dst = f.Image(w * 4, h);
        return [=] { form(w, h, from, src.stride, src.first, to, dst.stride, dst.first); };
    };
}

Maker ChangePlanes(decltype(&IPL_YUVP_422_601x709) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const auto y = f.Image(w, h), u = f.Image(w / 2, h), v = f.Image(w / 2, h);
        return [=] { form(w, h, y.stride, y.first, u.stride, u.first, v.stride, v.first); };
    };
}

}  // namespace

FormCalls PlaneCalls() {
    FormCalls table;
    TQ_PAIR(table, IPL_SplitColor, MultiThread, Split);
    TQ_PAIR(table, IPL_BuildColor, MultiThread, Build);
#define TQ_MATRIX(way)                                                              \
    table.AddPair("IPL_YUV" #way, static_cast<InPlace*>(IPL_YUV##way),              \
                  "IPL_YUV" #way "MultiThread", IPL_YUV##way##MultiThread, Change); \
    TQ_PAIR(table, IPL_YUVP_422_##way, MultiThread, ChangePlanes)
    TQ_MATRIX(601x709);
    TQ_MATRIX(709x601);
    TQ_MATRIX(2020x709);
    TQ_MATRIX(709x2020);
#undef TQ_MATRIX
    TQ_CALL_OF(table, Between, IPL_YUV601x709, ChangeBetween);
    TQ_CALL_OF(table, Between, IPL_YUV709x601, ChangeBetween);
    return table;
}

}  // namespace tqtest
