#pragma once

#include <span>
#include <string>

namespace tqipl {

using ZoomForm = void (*)(int srcWidth, int srcHeight, int srcStride, unsigned char* src,
                          int dstWidth, int dstHeight, int dstStride, unsigned char* dst);

// What a method is not made for, it leaves to another one.
enum class MadeFor { kAllSizes, kEnlarging, kReducing };

// One zoom method of the library. MultiThread forms that do not exist are null.
struct ZoomMethod {
    const char* name;   // on the command line
    const char* title;  // for people
    const char* character;
    MadeFor madeFor;
    const char* elsewhere;  // which method it is otherwise, or null
    const char* routine;    // the C4R forms
    ZoomForm greyPlain;
    ZoomForm greyMultiThread;
    ZoomForm colourPlain;
    ZoomForm colourMultiThread;
    const char* mayDiffer;  // why the C4R forms' bytes may differ; null if they never do
};

std::span<const ZoomMethod> ZoomMethods();
std::string ZoomMethodNames();  // "nn, linear"
std::string ZoomMethodList();   // a line for each, with its character

// Throws UsageError, which lists the known names.
const ZoomMethod& FindZoomMethod(const std::string& name);

}  // namespace tqipl
