// Calls of the morphology and of the labelling.

#include <TQIPLBaseLibU.h>

#include "support/calls/pixel_makers.h"

namespace tqtest {

namespace {

using Maker = std::function<Call(CallFrame&)>;

using OneMask = void(int, int, int, unsigned char*, int, int);
Maker Change(OneMask* form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height(), y = f.Below(4), x = f.Below(6);
        const auto mask = f.Image(w, h);
        return [=] { form(w, h, mask.stride, mask.first, y, x); };
    };
}

using TwoMasks = void(int, int, int, unsigned char*, int, unsigned char*, int, int);
Maker ChangeToOther(TwoMasks* form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height(), y = f.Below(4), x = f.Below(6);
        const auto src = f.Image(w, h), dst = f.Image(w, h);
        return [=] { form(w, h, src.stride, src.first, dst.stride, dst.first, y, x); };
    };
}

using OneMaskTwice = void(int, int, int, unsigned char*, int, int, int, int);
Maker ChangeTwice(OneMaskTwice* form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const int y = f.Below(4), x = f.Below(6), thenY = f.Below(4), thenX = f.Below(6);
        const auto mask = f.Image(w, h);
        return [=] { form(w, h, mask.stride, mask.first, y, x, thenY, thenX); };
    };
}

using TwoMasksTwice = void(int, int, int, unsigned char*, int, unsigned char*, int, int, int, int);
Maker ChangeToOtherTwice(TwoMasksTwice* form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height();
        const int y = f.Below(4), x = f.Below(6), thenY = f.Below(4), thenX = f.Below(6);
        const auto src = f.Image(w, h), dst = f.Image(w, h);
        return
            [=] { form(w, h, src.stride, src.first, dst.stride, dst.first, y, x, thenY, thenX); };
    };
}

Maker Label(decltype(&IPL_FCCLabeling) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height(), least = f.Below(9);
        const auto mask = f.Image(w, h);
        return [=, &f] { form(w, h, mask.stride, mask.first, &f.Rects(), least); };
    };
}

Maker LabelConnected(decltype(&IPL_FCCLabelingEx) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height(), least = f.Below(9);
        const auto image = f.Image(w, h);
        uint8_t* connect = f.Block(int64_t{w} * h);
        return [=, &f] { form(w, h, image.stride, image.first, connect, &f.Rects(), least); };
    };
}

Maker CleanSigned(decltype(&IPL_FCCLabelingDeNoise) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height(), threshold = 1 + f.Below(20);
        const auto mask = f.TopDown(w, h);
        return [=] { form(w, h, mask.stride, mask.first, threshold); };
    };
}

Maker Clean(decltype(&IPL_FCCLabelingDeNoiseEx) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height(), threshold = f.Below(20);
        const auto mask = f.TopDown(w, h);
        return [=] { form(w, h, mask.stride, mask.first, threshold); };
    };
}

Maker Grow(decltype(&IPL_FCCDeNoiseAndGrowth) form) {
    return [form](CallFrame& f) -> Call {
        const int w = f.Width(), h = f.Height(), threshold = f.Below(20);
        const auto guide = f.TopDown(w, h), mask = f.TopDown(w, h);
        return [=] { form(w, h, guide.stride, guide.first, mask.stride, mask.first, threshold); };
    };
}

}  // namespace

FormCalls MorphCalls() {
    FormCalls table;
    TQ_PAIR(table, IPL_Erosion, _MultiThread, Change);
    TQ_PAIR(table, IPL_Dilation, _MultiThread, Change);
    TQ_PAIR(table, IPL_Opening, _MultiThread, Change);
    TQ_PAIR(table, IPL_Closing, _MultiThread, Change);
    TQ_PAIR(table, IPL_DeNoise, _MultiThread, Change);
    // Short bands of these see less than the plain forms do.
    TQ_CALL(table, IPL_FErosion, Change);
    TQ_CALL(table, IPL_FDilation, Change);
    TQ_CALL(table, IPL_FDeNoise, Change);
    TQ_CALL(table, IPL_FDeNoise_MultiThread, Change);
    TQ_CALL_OF(table, OneMask, IPL_FErosion_MultiThread, Change);
    TQ_CALL_OF(table, TwoMasks, IPL_FErosion_MultiThread, ChangeToOther);
    TQ_CALL_OF(table, OneMask, IPL_FDilation_MultiThread, Change);
    TQ_CALL_OF(table, TwoMasks, IPL_FDilation_MultiThread, ChangeToOther);
    TQ_CALL(table, IPL_FOpening, ChangeTwice);
    TQ_CALL_OF(table, OneMaskTwice, IPL_FOpening_MultiThread, ChangeTwice);
    TQ_CALL_OF(table, TwoMasksTwice, IPL_FOpening_MultiThread, ChangeToOtherTwice);
    TQ_CALL(table, IPL_FClosing, ChangeTwice);
    TQ_CALL_OF(table, OneMaskTwice, IPL_FClosing_MultiThread, ChangeTwice);
    TQ_CALL_OF(table, TwoMasksTwice, IPL_FClosing_MultiThread, ChangeToOtherTwice);
    return table;
}

// The MultiThread forms do nothing on one processor, and order rectangles by bands.
FormCalls LabellingCalls() {
    FormCalls table;
    TQ_CALL(table, IPL_FCCLabeling, Label);
    TQ_CALL(table, IPL_FCCLabeling2, Label);
    TQ_CALL(table, IPL_FCCLabeling_MultiThread, Label);
    TQ_CALL(table, IPL_FCCLabelingEx, LabelConnected);
    TQ_CALL(table, IPL_FCCLabelingDeNoise, CleanSigned);
    TQ_CALL(table, IPL_FCCLabelingDeNoiseEx, Clean);
    TQ_CALL(table, IPL_FCCLabelingDeNoiseEx2, Clean);
    TQ_CALL(table, IPL_FCCLabelingDeNoiseEx_MultiThread, Clean);
    TQ_CALL(table, IPL_FCCLabelingDeNoiseEx2_MultiThread, Clean);
    TQ_CALL(table, IPL_FCCDeNoiseAndGrowth, Grow);
    TQ_CALL(table, IPL_FCCDeNoiseAndGrowth2, Grow);
    TQ_CALL(table, IPL_FCCDeNoiseAndGrowth2_MultiThread, Grow);
    return table;
}

}  // namespace tqtest
