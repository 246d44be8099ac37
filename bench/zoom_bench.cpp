// The zoom methods, from 1920 x 1080 up and down.

#include <tqipl/zoom.h>

#include "bench/families.h"
#include "bench/support/rows.h"
#include "reference/zoom_correct_reference.h"
#include "reference/zoom_cubic_reference.h"
#include "reference/zoom_jbi_reference.h"
#include "reference/zoom_reference.h"
#include "reference/zoom_super_reference.h"
#include "reference/zoom_tfi_reference.h"

namespace tqbench {

namespace {

using ZoomFunction = void (*)(int, int, int, unsigned char*, int, int, int, unsigned char*);
using ZoomReference = void (*)(int, int, int, const uint8_t*, int, int, int, uint8_t*);

constexpr Size kSource = {1920, 1080};
constexpr Size kTargets[] = {{3840, 2160}, {1280, 720}};

struct Method {
    const char* name;
    const char* multiThreadName;
    ZoomFunction plain, multiThread;
    ZoomReference reference;
    int channels;
    bool hasKernels;
    ZoomReference multiThreadReference = nullptr;  // where the forms' bytes differ
};

// The references of methods that leave some sizes to other methods.
void CubicCorrect(int channels, const tqref::ZoomSource& src, const tqref::ZoomTarget& dst) {
    if (!tqref::ZoomCubicCorrect(channels, src, dst)) tqref::ZoomSixCubic(channels, src, dst);
}

void SixCubicOfPlane(const tqref::ZoomSource& src, const tqref::ZoomTarget& dst) {
    tqref::ZoomSixCubic(1, src, dst);
}

template <void (*super)(int, const tqref::ZoomSource&, const tqref::ZoomTarget&)>
void Jbi(int channels, const tqref::ZoomSource& src, const tqref::ZoomTarget& dst) {
    if (!tqref::ZoomJbi(channels, src, dst, SixCubicOfPlane)) super(channels, src, dst);
}

constexpr ZoomReference kCubicCorrectC1 = tqref::ZoomForm<CubicCorrect, 1>;
constexpr ZoomReference kCubicCorrectC4 = tqref::ZoomForm<CubicCorrect, 4>;
constexpr ZoomReference kJbiC1 = tqref::ZoomForm<Jbi<tqref::ZoomSuper>, 1>;
constexpr ZoomReference kJbiPlainC4 = tqref::ZoomForm<Jbi<tqref::ZoomSuperNextIndex>, 4>;
constexpr ZoomReference kJbiThreadedC4 = tqref::ZoomForm<Jbi<tqref::ZoomSuper>, 4>;

void AddMethod(const Method& method, Size target) {
    auto on = [=, channels = method.channels](auto function) {
        return [=](uint8_t* src, uint8_t* dst) {
            function(kSource.width, kSource.height, kSource.width * channels, src, target.width,
                     target.height, target.width * channels, dst);
        };
    };
    AddForm({.name = method.name,
             .multiThreadName = method.multiThreadName,
             .size = ToString(kSource) + "-" + ToString(target),
             .srcSize = kSource,
             .dstSize = target,
             .srcBytes = kSource.Pixels() * method.channels,
             .dstBytes = target.Pixels() * method.channels,
             .hasKernels = method.hasKernels,
             .plain = on(method.plain),
             .multiThread = on(method.multiThread),
             .reference = on(method.reference),
             .multiThreadReference = method.multiThreadReference == nullptr
                                         ? Call()
                                         : on(method.multiThreadReference)});
}

}  // namespace

void AddZoom() {
    const Method methods[] = {
        {"IPL_ZoomNN_8u_C1R", "", IPL_ZoomNN_8u_C1R, nullptr, tqref::ZoomNearestC1, 1, false},
        {"IPL_ZoomNN_8u_C4R", "", IPL_ZoomNN_8u_C4R, nullptr, tqref::ZoomNearestC4, 4, false},
        {"IPL_ZoomLinear_8u_C1R", "IPL_ZoomLinearMultiThread_8u_C1R", IPL_ZoomLinear_8u_C1R,
         IPL_ZoomLinearMultiThread_8u_C1R, tqref::ZoomLinearC1, 1, true},
        {"IPL_ZoomLinear_8u_C4R", "IPL_ZoomLinearMultiThread_8u_C4R", IPL_ZoomLinear_8u_C4R,
         IPL_ZoomLinearMultiThread_8u_C4R, tqref::ZoomLinearC4, 4, true},
        {"IPL_ZoomLinearCorrect_8u_C1R", "IPL_ZoomLinearCorrectMultiThread_8u_C1R",
         IPL_ZoomLinearCorrect_8u_C1R, IPL_ZoomLinearCorrectMultiThread_8u_C1R,
         tqref::ZoomLinearCorrectC1, 1, true},
        {"IPL_ZoomLinearCorrect_8u_C4R", "IPL_ZoomLinearCorrectMultiThread_8u_C4R",
         IPL_ZoomLinearCorrect_8u_C4R, IPL_ZoomLinearCorrectMultiThread_8u_C4R,
         tqref::ZoomLinearCorrectC4, 4, true},
        {"IPL_ZoomCubic_8u_C1R", "IPL_ZoomCubicMultiThread_8u_C1R", IPL_ZoomCubic_8u_C1R,
         IPL_ZoomCubicMultiThread_8u_C1R, tqref::ZoomCubicPlainC1, 1, true},
        {"IPL_ZoomCubic_8u_C4R", "IPL_ZoomCubicMultiThread_8u_C4R", IPL_ZoomCubic_8u_C4R,
         IPL_ZoomCubicMultiThread_8u_C4R, tqref::ZoomCubicC4, 4, true},
        {"IPL_Zoom6Cubic_8u_C1R", "IPL_Zoom6CubicMultiThread_8u_C1R", IPL_Zoom6Cubic_8u_C1R,
         IPL_Zoom6CubicMultiThread_8u_C1R, tqref::ZoomSixCubicC1, 1, true},
        {"IPL_Zoom6Cubic_8u_C4R", "IPL_Zoom6CubicMultiThread_8u_C4R", IPL_Zoom6Cubic_8u_C4R,
         IPL_Zoom6CubicMultiThread_8u_C4R, tqref::ZoomSixCubicC4, 4, true},
        {"IPL_ZoomCubicCorrect_8u_C1R", "IPL_ZoomCubicCorrectMultiThread_8u_C1R",
         IPL_ZoomCubicCorrect_8u_C1R, IPL_ZoomCubicCorrectMultiThread_8u_C1R, kCubicCorrectC1, 1,
         true},
        {"IPL_ZoomCubicCorrect_8u_C4R", "IPL_ZoomCubicCorrectMultiThread_8u_C4R",
         IPL_ZoomCubicCorrect_8u_C4R, IPL_ZoomCubicCorrectMultiThread_8u_C4R, kCubicCorrectC4, 4,
         true},
        {"IPL_ZoomSuper_8u_C1R", "IPL_ZoomSuperMultiThread_8u_C1R", IPL_ZoomSuper_8u_C1R,
         IPL_ZoomSuperMultiThread_8u_C1R, tqref::ZoomSuperC1, 1, true},
        {"IPL_ZoomSuper_8u_C4R", "IPL_ZoomSuperMultiThread_8u_C4R", IPL_ZoomSuper_8u_C4R,
         IPL_ZoomSuperMultiThread_8u_C4R, tqref::ZoomSuperPlainC4, 4, true,
         tqref::ZoomSuperThreadedC4},
        {"IPL_ZoomJBI_8u_C1R", "IPL_ZoomJBIMultiThread_8u_C1R", IPL_ZoomJBI_8u_C1R,
         IPL_ZoomJBIMultiThread_8u_C1R, kJbiC1, 1, true},
        {"IPL_ZoomJBI_8u_C4R", "IPL_ZoomJBIMultiThread_8u_C4R", IPL_ZoomJBI_8u_C4R,
         IPL_ZoomJBIMultiThread_8u_C4R, kJbiPlainC4, 4, true, kJbiThreadedC4},
        {"IPL_ZoomTFI_8u_C1R", "IPL_ZoomTFIMultiThread_8u_C1R", IPL_ZoomTFI_8u_C1R,
         IPL_ZoomTFIMultiThread_8u_C1R, tqref::ZoomTfiPlainC1, 1, true, tqref::ZoomTfiThreadedC1},
        {"IPL_ZoomTFI_8u_C4R", "IPL_ZoomTFIMultiThread_8u_C4R", IPL_ZoomTFI_8u_C4R,
         IPL_ZoomTFIMultiThread_8u_C4R, tqref::ZoomTfiPlainC4, 4, true, tqref::ZoomTfiThreadedC4},
    };
    for (const Method& method : methods)
        for (const Size target : kTargets) AddMethod(method, target);
}

}  // namespace tqbench
