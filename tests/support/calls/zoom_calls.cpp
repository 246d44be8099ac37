// Calls of the zooms.

#include <TQIPLBaseLibU.h>

#include "support/calls/pixel_makers.h"

namespace tqtest {

namespace {

auto ZoomMaker(int channels) {
    return [=](decltype(&IPL_ZoomNN_8u_C1R) form) {
        return [=](CallFrame& f) -> Call {
            const int w = f.Width(), h = f.Height();
            const int zoomedW = f.Shape().zoomedWidth, zoomedH = f.Shape().zoomedHeight;
            const auto src = f.Image(w * channels, h), dst = f.Image(zoomedW * channels, zoomedH);
            return
                [=] { form(w, h, src.stride, src.first, zoomedW, zoomedH, dst.stride, dst.first); };
        };
    };
}

}  // namespace

FormCalls ZoomCalls() {
    FormCalls table;
    TQ_CALL(table, IPL_ZoomNN_8u_C1R, ZoomMaker(1));
    TQ_CALL(table, IPL_ZoomNN_8u_C4R, ZoomMaker(4));
#define TQ_ZOOM_OF(method, kind, channels)                                       \
    table.AddPair("IPL_Zoom" #method "_8u_" #kind, IPL_Zoom##method##_8u_##kind, \
                  "IPL_Zoom" #method "MultiThread_8u_" #kind,                    \
                  IPL_Zoom##method##MultiThread_8u_##kind, ZoomMaker(channels))
    // The MultiThread forms of these give other bytes, for all calls or for some.
#define TQ_ZOOM_APART_OF(method, kind, channels)                       \
    TQ_CALL(table, IPL_Zoom##method##_8u_##kind, ZoomMaker(channels)); \
    TQ_CALL(table, IPL_Zoom##method##MultiThread_8u_##kind, ZoomMaker(channels))
    TQ_ZOOM_OF(Linear, C1R, 1);
    TQ_ZOOM_OF(Linear, C4R, 4);
    TQ_ZOOM_APART_OF(Cubic, C1R, 1);
    TQ_ZOOM_OF(Cubic, C4R, 4);
    TQ_ZOOM_OF(6Cubic, C1R, 1);
    TQ_ZOOM_OF(6Cubic, C4R, 4);
    TQ_ZOOM_OF(LinearCorrect, C1R, 1);
    TQ_ZOOM_OF(LinearCorrect, C4R, 4);
    TQ_ZOOM_OF(CubicCorrect, C1R, 1);
    TQ_ZOOM_OF(CubicCorrect, C4R, 4);
    TQ_ZOOM_APART_OF(Super, C1R, 1);
    TQ_ZOOM_APART_OF(Super, C4R, 4);
    TQ_ZOOM_APART_OF(JBI, C1R, 1);
    TQ_ZOOM_APART_OF(JBI, C4R, 4);
    TQ_ZOOM_APART_OF(TFI, C1R, 1);
    TQ_ZOOM_APART_OF(TFI, C4R, 4);
#undef TQ_ZOOM_APART_OF
#undef TQ_ZOOM_OF
    return table;
}

}  // namespace tqtest
