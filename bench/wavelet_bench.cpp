// The 5/3 wavelet and progressive to interlaced.

#include <tqipl/wavelet.h>

#include <string>

#include "bench/families.h"
#include "bench/support/frame_form.h"
#include "bench/support/on_bytes.h"
#include "reference/p2i_reference.h"
#include "reference/wavelet53_reference.h"
#include "reference/wavelet_ll_reference.h"

namespace tqbench {

namespace {

using tqref::Bytes;

void AddTransforms(Size size) {
    const int w = size.width, h = size.height;
    AddFrameForm(
        "IPL_FwdWavelet_53_C1", "", size, size.Pixels(), size.Pixels() * 4,
        [=](uint8_t* src, uint8_t* dst) {
            IPL_FwdWavelet_53_C1(w, h, w, src, w, reinterpret_cast<int*>(dst));
        },
        {}, OnBytes([=](Bytes& src, Bytes& dst) { tqref::FwdWavelet53(w, h, w, src, w, dst); }));
    AddFrameForm(
        "IPL_InvWavelet_53_C1", "", size, size.Pixels() * 4, size.Pixels(),
        [=](uint8_t* src, uint8_t* dst) {
            IPL_InvWavelet_53_C1(w, h, w, reinterpret_cast<int*>(src), w, dst);
        },
        {}, OnBytes([=](Bytes& src, Bytes& dst) { tqref::InvWavelet53(w, h, w, src, w, dst); }));
    const unsigned width = static_cast<unsigned>(w), height = static_cast<unsigned>(h);
    AddFrameForm(
        "IPL_WaveletFilter_53_C1", "", size, size.Pixels(), size.Pixels(),
        [=](uint8_t*, uint8_t* dst) { IPL_WaveletFilter_53_C1(width, height, width, dst); }, {},
        OnBytes([=](Bytes&, Bytes& dst) { tqref::WaveletFilter53(width, height, width, dst); }));
}

template <class Samples, class Form>
void AddLowBand(const std::string& name, Size size, Form plain, Form multiThread) {
    using Sample = typename Samples::Sample;
    const auto width = static_cast<unsigned>(size.width);
    const auto height = static_cast<unsigned>(size.height);
    const unsigned bytes = sizeof(Sample);
    const Sample low = static_cast<Sample>(16 << 8 * (bytes - 1));
    const Sample high = static_cast<Sample>(235 << 8 * (bytes - 1));
    const auto on = [=](Form form) {
        return [=](uint8_t* src, uint8_t* dst) {
            form(width, height, width * bytes, src, width / 2 * bytes, dst, low, high);
        };
    };
    const Size half{size.width / 2, size.height / 2};
    AddForm({.name = name,
             .multiThreadName = name + "_MultiThread",
             .size = ToString(size),
             .srcSize = size,
             .dstSize = half,
             .srcBytes = size.Pixels() * bytes,
             .dstBytes = half.Pixels() * bytes,
             .hasKernels = true,
             .plain = on(plain),
             .multiThread = on(multiThread),
             .reference = OnBytes([=](Bytes& src, Bytes& dst) {
                 tqref::WaveletLl<Samples>(width, height, width * bytes, src, width / 2 * bytes,
                                           dst, low, high);
             })});
}

using P2i = decltype(&IPL_P2I_Wavelet53_C1R);

struct P2iForm {
    const char* suffix;
    P2i plain, multiThread;
    const tqref::P2iKind& kind;
};

const P2iForm kP2iForms[] = {
    {"_C1R", IPL_P2I_Wavelet53_C1R, IPL_P2I_Wavelet53_MultiThread_C1R, tqref::kP2iKinds[0]},
    {"_C1R_16u", IPL_P2I_Wavelet53_C1R_16u, IPL_P2I_Wavelet53_MultiThread_C1R_16u,
     tqref::kP2iKinds[1]},
    {"_C4R", IPL_P2I_Wavelet53_C4R, IPL_P2I_Wavelet53_MultiThread_C4R, tqref::kP2iKinds[2]},
    {"_C3R_16u", IPL_P2I_Wavelet53_C3R_16u, IPL_P2I_Wavelet53_MultiThread_C3R_16u,
     tqref::kP2iKinds[3]},
};

void AddP2i(const P2iForm& form, Size size, EVXR_P2I_MODE mode) {
    const std::string suffix =
        form.suffix + std::string(mode == EVXR_P2I_FRAME ? ":frame" : ":top");
    const auto width = static_cast<unsigned>(size.width);
    const auto height = static_cast<unsigned>(size.height);
    const auto pixelBytes = static_cast<unsigned>(form.kind.sampleBytes * form.kind.channels);
    const unsigned row = width * pixelBytes;
    const auto on = [=](P2i function) {
        return
            [=](uint8_t* src, uint8_t* dst) { function(width, height, row, src, row, dst, mode); };
    };
    const Size to = mode == EVXR_P2I_FRAME ? size : Size{size.width, (size.height + 1) / 2};
    AddForm({.name = "IPL_P2I_Wavelet53" + suffix,
             .multiThreadName = "IPL_P2I_Wavelet53_MultiThread" + suffix,
             .size = ToString(size),
             .srcSize = size,
             .dstSize = to,
             .srcBytes = size.Pixels() * pixelBytes,
             .dstBytes = to.Pixels() * pixelBytes,
             .hasKernels = true,
             .plain = on(form.plain),
             .multiThread = on(form.multiThread),
             .reference = OnBytes([=, kind = form.kind](Bytes& src, Bytes& dst) {
                 tqref::P2i(kind, width, height, row, src, row, dst, mode);
             })});
}

}  // namespace

void AddWavelet() {
    for (const Size size : kSizes) {
        AddTransforms(size);
        AddLowBand<tqref::Samples8>("IPL_WaveletLL_53_C1", size, IPL_WaveletLL_53_C1,
                                    IPL_WaveletLL_53_C1_MultiThread);
        AddLowBand<tqref::Samples16>("IPL_WaveletLL_53_C1_16u", size, IPL_WaveletLL_53_C1_16u,
                                     IPL_WaveletLL_53_C1_16u_MultiThread);
        for (const P2iForm& form : kP2iForms)
            for (const EVXR_P2I_MODE mode : {EVXR_P2I_TOP_FIELD, EVXR_P2I_FRAME})
                AddP2i(form, size, mode);
    }
}

}  // namespace tqbench
