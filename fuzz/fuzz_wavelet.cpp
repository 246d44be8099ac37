// The 5/3 wavelet and its inverse, the low-pass filter, the low band, fields of progressive frames.

#include <tqipl/types.h>
#include <tqipl/wavelet.h>

#include <cstdint>

#include "fuzz_check.h"
#include "reference/p2i_reference.h"
#include "reference/wavelet53_reference.h"
#include "reference/wavelet_ll_reference.h"

namespace {

using tqfuzz::Image;
using tqfuzz::Input;
using tqfuzz::Stage;

void CheckForward(Input& input) {
    const int width = input.Int(-2, 70), height = input.Int(-2, 34);
    Stage stage(input);
    Image& src = stage.Add(width, height, {.slack = 0});
    Image& dst = stage.Add(4 * width, height, {.unit = 4, .slack = 0});
    stage.Expect([&] {
        tqref::FwdWavelet53(width, height, src.Stride(), src.ModelBytes(), dst.Stride(4),
                            dst.ModelBytes());
    });
    stage.Check("IPL_FwdWavelet_53_C1", width, height, [&] {
        IPL_FwdWavelet_53_C1(width, height, src.Stride(), src.Data(), dst.Stride(4),
                             dst.DataAs<int>());
    });
}

void CheckInverse(Input& input) {
    const int width = input.Int(-2, 70), height = input.Int(-2, 34);
    Stage stage(input);
    Image& src = stage.Add(4 * width, height, {.unit = 4, .slack = 0});
    Image& dst = stage.Add(width, height, {.slack = 0});
    // Coefficients of any size, or such as pictures have.
    if (input.Flag()) {
        int place = 0;
        src.Map([&](uint8_t byte) {
            const int at = place++ % 4;
            return at == 0 ? byte : static_cast<uint8_t>(at == 1 ? byte & 31 : 0);
        });
    }
    stage.Expect([&] {
        tqref::InvWavelet53(width, height, src.Stride(4), src.ModelBytes(), dst.Stride(),
                            dst.ModelBytes());
    });
    stage.Check("IPL_InvWavelet_53_C1", width, height, [&] {
        IPL_InvWavelet_53_C1(width, height, src.Stride(4), src.DataAs<int>(), dst.Stride(),
                             dst.Data());
    });
}

void CheckFilter(Input& input) {
    const int width = input.Int(0, 100), height = input.Int(0, 34);
    Stage stage(input);
    Image& image = stage.Add(width, height, {.bottomUp = false, .slack = 0});
    const auto stride = static_cast<unsigned>(image.Stride());
    stage.Expect([&] { tqref::WaveletFilter53(width, height, stride, image.ModelBytes()); });
    stage.Check("IPL_WaveletFilter_53_C1", width, height,
                [&] { IPL_WaveletFilter_53_C1(width, height, stride, image.Data()); });
}

template <class Samples, class Form>
void CheckLowBand(Input& input, const char* name, Form plain, Form multiThread) {
    using Sample = typename Samples::Sample;
    const int bytes = Samples::kBytes;
    const int width = input.Int(0, 90), height = input.Int(0, 40);
    const auto low = static_cast<Sample>(input.Word()), high = static_cast<Sample>(input.Word());
    Stage stage(input);
    Image& src = stage.Add(bytes * width, height, {.bottomUp = false, .slack = 0});
    Image& dst = stage.Add(bytes * (width / 2), height / 2, {.bottomUp = false, .slack = 0});
    stage.Expect([&] {
        tqref::WaveletLl<Samples>(width, height, src.Stride(), src.ModelBytes(), dst.Stride(),
                                  dst.ModelBytes(), low, high);
    });
    for (auto form : {plain, multiThread})
        stage.Check(name, width, height, [&] {
            form(width, height, src.Stride(), src.Data(), dst.Stride(), dst.Data(), low, high);
        });
}

struct P2iForm {
    const char* name;
    int kind;
    void (*plain)(unsigned, unsigned, unsigned, unsigned char*, unsigned, unsigned char*,
                  EVXR_P2I_MODE);
    void (*multiThread)(unsigned, unsigned, unsigned, unsigned char*, unsigned, unsigned char*,
                        EVXR_P2I_MODE);
};
constexpr P2iForm kP2iForms[] = {
    {"IPL_P2I_Wavelet53_C1R", 0, IPL_P2I_Wavelet53_C1R, IPL_P2I_Wavelet53_MultiThread_C1R},
    {"IPL_P2I_Wavelet53_C1R_16u", 1, IPL_P2I_Wavelet53_C1R_16u,
     IPL_P2I_Wavelet53_MultiThread_C1R_16u},
    {"IPL_P2I_Wavelet53_C4R", 2, IPL_P2I_Wavelet53_C4R, IPL_P2I_Wavelet53_MultiThread_C4R},
    {"IPL_P2I_Wavelet53_C3R_16u", 3, IPL_P2I_Wavelet53_C3R_16u,
     IPL_P2I_Wavelet53_MultiThread_C3R_16u}};

void CheckP2i(Input& input, const P2iForm& form) {
    const tqref::P2iKind& kind = tqref::kP2iKinds[form.kind];
    const int bytes = kind.sampleBytes * kind.channels;
    const int width = input.Int(0, 90), height = input.Int(0, 24);
    const int mode = input.WildInt(0, 2);
    Stage stage(input);
    Image& src = stage.Add(bytes * width, height, {.bottomUp = false, .slack = 0});
    Image& dst = stage.Add(bytes * width, height, {.bottomUp = false, .slack = 64});
    stage.Expect([&] {
        tqref::P2i(kind, width, height, src.Stride(), src.ModelBytes(), dst.Stride(),
                   dst.ModelBytes(), mode);
    });
    for (auto function : {form.plain, form.multiThread})
        stage.Check(form.name, width, height, [&] {
            function(width, height, src.Stride(), src.Data(), dst.Stride(), dst.Data(),
                     static_cast<EVXR_P2I_MODE>(mode));
        });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    tqfuzz::UseMachine(input);
    switch (input.Byte() % 6) {
        case 0:
            CheckForward(input);
            break;
        case 1:
            CheckInverse(input);
            break;
        case 2:
            CheckFilter(input);
            break;
        case 3:
            CheckLowBand<tqref::Samples8>(input, "IPL_WaveletLL_53_C1", IPL_WaveletLL_53_C1,
                                          IPL_WaveletLL_53_C1_MultiThread);
            break;
        case 4:
            CheckLowBand<tqref::Samples16>(input, "IPL_WaveletLL_53_C1_16u",
                                           IPL_WaveletLL_53_C1_16u,
                                           IPL_WaveletLL_53_C1_16u_MultiThread);
            break;
        default:
            CheckP2i(input, input.Pick(kP2iForms));
    }
    return 0;
}
