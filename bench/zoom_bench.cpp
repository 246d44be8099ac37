// The zoom methods, from 1920 x 1080 up and down.

#include <tqipl/zoom.h>

#include "bench/families.h"
#include "bench/support/rows.h"
#include "reference/zoom_reference.h"

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
};

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
             .reference = on(method.reference)});
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
    };
    for (const Method& method : methods)
        for (const Size target : kTargets) AddMethod(method, target);
}

}  // namespace tqbench
