// Prints the version of the headers and that of the module, and converts two pixels.

#include <TQIPLBaseLibU.h>

#include "runtime.h"

int HostMain() {
    host::Print(TQIPL_VERSION_STRING);
    host::Print(" ");
    host::Print(TQ_GetVersion());
    host::Print("\n");

    unsigned char yuyv[4] = {180, 128, 16, 128};
    unsigned char argb[8] = {};
    IPL_YUYV2ARGB_709(2, 1, 4, yuyv, 8, argb);
    host::CheckEqual(argb[0], 191, "the grey pixel");
    host::CheckEqual(argb[3], 255, "its alpha");
    host::CheckEqual(argb[4], 0, "the black pixel");
    return host::FailureCount();
}
