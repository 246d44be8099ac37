#pragma once

#include <span>
#include <string>

namespace tqipl {

using ZoomForm = void (*)(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                          int dstWidth, int dstHeight, int dstStride, unsigned char* dst);

// One zoom method of the library. MultiThread forms that do not exist are null.
struct ZoomMethod {
    const char* name;   // on the command line
    const char* title;  // for people
    const char* character;
    const char* routine;  // the C4R forms
    ZoomForm greyPlain;
    ZoomForm greyMultiThread;
    ZoomForm colourPlain;
    ZoomForm colourMultiThread;
};

std::span<const ZoomMethod> ZoomMethods();
std::string ZoomMethodNames();  // "nn, linear"

// Throws UsageError, which lists the known names.
const ZoomMethod& FindZoomMethod(const std::string& name);

}  // namespace tqipl
