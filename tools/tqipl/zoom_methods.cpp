// The table of the library's zoom methods.

#include "zoom_methods.h"

#include <TQIPLBaseLibU.h>

#include "host_error.h"

namespace tqipl {

namespace {

constexpr ZoomMethod kMethods[] = {
    {"nn", "Nearest neighbour", "whole pixels, none mixed", MadeFor::kAllSizes, nullptr,
     "IPL_ZoomNN_8u_C4R", IPL_ZoomNN_8u_C1R, nullptr, IPL_ZoomNN_8u_C4R, nullptr, nullptr},
    {"linear", "Linear", "mixed between pixel centres", MadeFor::kAllSizes, nullptr,
     "IPL_ZoomLinear[MultiThread]_8u_C4R", IPL_ZoomLinear_8u_C1R, IPL_ZoomLinearMultiThread_8u_C1R,
     IPL_ZoomLinear_8u_C4R, IPL_ZoomLinearMultiThread_8u_C4R, nullptr},
    {"linear-correct", "Linear correct", "linear, with every step kept on its side",
     MadeFor::kEnlarging, "linear below twice the size",
     "IPL_ZoomLinearCorrect[MultiThread]_8u_C4R", IPL_ZoomLinearCorrect_8u_C1R,
     IPL_ZoomLinearCorrectMultiThread_8u_C1R, IPL_ZoomLinearCorrect_8u_C4R,
     IPL_ZoomLinearCorrectMultiThread_8u_C4R, nullptr},
    {"cubic", "Cubic", "four taps an axis", MadeFor::kAllSizes, nullptr,
     "IPL_ZoomCubic[MultiThread]_8u_C4R", IPL_ZoomCubic_8u_C1R, IPL_ZoomCubicMultiThread_8u_C1R,
     IPL_ZoomCubic_8u_C4R, IPL_ZoomCubicMultiThread_8u_C4R, nullptr},
    {"six-cubic", "Six-tap cubic", "six taps an axis", MadeFor::kAllSizes, nullptr,
     "IPL_Zoom6Cubic[MultiThread]_8u_C4R", IPL_Zoom6Cubic_8u_C1R, IPL_Zoom6CubicMultiThread_8u_C1R,
     IPL_Zoom6Cubic_8u_C4R, IPL_Zoom6CubicMultiThread_8u_C4R, nullptr},
    {"cubic-correct", "Cubic correct", "five taps an axis, with every step kept on its side",
     MadeFor::kEnlarging, "six-cubic below twice the size",
     "IPL_ZoomCubicCorrect[MultiThread]_8u_C4R", IPL_ZoomCubicCorrect_8u_C1R,
     IPL_ZoomCubicCorrectMultiThread_8u_C1R, IPL_ZoomCubicCorrect_8u_C4R,
     IPL_ZoomCubicCorrectMultiThread_8u_C4R, nullptr},
    {"super", "Super", "the mean of the area that a pixel covers", MadeFor::kReducing,
     "six-cubic where an axis grows", "IPL_ZoomSuper[MultiThread]_8u_C4R", IPL_ZoomSuper_8u_C1R,
     IPL_ZoomSuperMultiThread_8u_C1R, IPL_ZoomSuper_8u_C4R, IPL_ZoomSuperMultiThread_8u_C4R,
     "MultiThread forms lower edges in another way"},
    {"jbi", "Joint bilateral", "25 pixels, weighed by their likeness to a first estimate",
     MadeFor::kEnlarging, "super unless both axes grow", "IPL_ZoomJBI[MultiThread]_8u_C4R",
     IPL_ZoomJBI_8u_C1R, IPL_ZoomJBIMultiThread_8u_C1R, IPL_ZoomJBI_8u_C4R,
     IPL_ZoomJBIMultiThread_8u_C4R, "MultiThread super forms lower edges in another way"},
    {"tfi", "TFI", "the four pixels around, weighed by how busy the picture is", MadeFor::kAllSizes,
     nullptr, "IPL_ZoomTFI[MultiThread]_8u_C4R", IPL_ZoomTFI_8u_C1R, IPL_ZoomTFIMultiThread_8u_C1R,
     IPL_ZoomTFI_8u_C4R, IPL_ZoomTFIMultiThread_8u_C4R,
     "MultiThread measures spread in whole numbers"},
};

}  // namespace

std::span<const ZoomMethod> ZoomMethods() { return kMethods; }

std::string ZoomMethodNames() {
    std::string names;
    for (const ZoomMethod& method : kMethods)
        names += (names.empty() ? "" : ", ") + std::string(method.name);
    return names;
}

std::string ZoomMethodList() {
    std::string list = "Methods:";
    for (const ZoomMethod& method : kMethods) {
        list += "\n  " + std::string(method.name) + ": " + method.character;
        if (method.elsewhere != nullptr) list += std::string("; ") + method.elsewhere;
    }
    return list;
}

const ZoomMethod& FindZoomMethod(const std::string& name) {
    for (const ZoomMethod& method : kMethods)
        if (name == method.name) return method;
    throw UsageError("unknown zoom method '" + name + "'; known are: " + ZoomMethodNames());
}

}  // namespace tqipl
