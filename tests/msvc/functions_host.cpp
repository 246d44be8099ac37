// A host of Microsoft's compiler calls functions of every family, overloads among them, and
// compares with what their declarations promise.
#include "functions_host.h"

namespace host {

Byte g_picture[kPixels * 4], g_left[kPixels * 24], g_right[kPixels * 24];

void MakePicture() {
    unsigned int state = 7;
    for (Byte& value : g_picture) {
        state = state * 1664525u + 1013904223u;
        value = static_cast<Byte>(state >> 24);
    }
    std::memset(g_left, 1, sizeof g_left);
    std::memset(g_right, 1, sizeof g_right);
}

void Version() {
    Check(std::memcmp(TQ_GetVersion(), TQIPL_VERSION_STRING, sizeof TQIPL_VERSION_STRING) == 0,
          "TQ_GetVersion");
}

namespace {

struct Family {
    const char* name;
    void (*run)();
};
const Family kFamilies[] = {
    {"buffers", Buffers},
    {"image memory", ImageMemory},
    {"luminance", Luminance},
    {"packed 4:2:2", Packed422},
    {"planar 4:2:2", Planar422},
    {"HSV", Hsv},
    {"deep formats", Deep},
    {"planes", Planes},
    {"matrices", Matrices},
    {"zooms", Zooms},
    {"morphology", Morphology},
    {"labelling", Labelling},
    {"growth", Growth},
    {"filters", Filters},
    {"PSNR", Psnr},
    {"wavelets", Wavelets},
    {"progressive to interlaced", ProgressiveToInterlaced},
    {"version", Version},
};

}  // namespace
}  // namespace host

using namespace host;

int HostMain() {
    for (const Family& family : kFamilies) {
        const int failures = FailureCount();
        family.run();
        Print(FailureCount() == failures ? "good: " : "BAD: ");
        Print(family.name);
        Print("\n");
    }
    return FailureCount() == 0 ? 0 : 1;
}
