// The table of the library's zoom methods.

#include "zoom_methods.h"

#include <TQIPLBaseLibU.h>

#include "host_error.h"

namespace tqipl {

namespace {

constexpr ZoomMethod kMethods[] = {
    {"nn", "Nearest neighbour", "whole pixels, none mixed", "IPL_ZoomNN_8u_C4R", IPL_ZoomNN_8u_C1R,
     nullptr, IPL_ZoomNN_8u_C4R, nullptr},
    {"linear", "Linear", "mixed between pixel centres", "IPL_ZoomLinear[MultiThread]_8u_C4R",
     IPL_ZoomLinear_8u_C1R, IPL_ZoomLinearMultiThread_8u_C1R, IPL_ZoomLinear_8u_C4R,
     IPL_ZoomLinearMultiThread_8u_C4R},
};

}  // namespace

std::span<const ZoomMethod> ZoomMethods() { return kMethods; }

std::string ZoomMethodNames() {
    std::string names;
    for (const ZoomMethod& method : kMethods)
        names += (names.empty() ? "" : ", ") + std::string(method.name);
    return names;
}

const ZoomMethod& FindZoomMethod(const std::string& name) {
    for (const ZoomMethod& method : kMethods)
        if (name == method.name) return method;
    throw UsageError("unknown zoom method '" + name + "'; known are: " + ZoomMethodNames());
}

}  // namespace tqipl
