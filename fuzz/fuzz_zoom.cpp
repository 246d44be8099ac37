// Nearest, linear, cubic, six-tap and super zooms.

#include <tqipl/zoom.h>

#include "fuzz_check.h"
#include "reference/zoom_cubic_reference.h"
#include "reference/zoom_reference.h"
#include "reference/zoom_super_reference.h"
#include "zoom_form.h"

namespace {

constexpr tqfuzz::ZoomForm kForms[] = {
    {"IPL_ZoomNN_8u_C1R", IPL_ZoomNN_8u_C1R, tqref::ZoomNearestC1, 1},
    {"IPL_ZoomNN_8u_C4R", IPL_ZoomNN_8u_C4R, tqref::ZoomNearestC4, 4},
    {"IPL_ZoomLinear_8u_C1R", IPL_ZoomLinear_8u_C1R, tqref::ZoomLinearC1, 1},
    {"IPL_ZoomLinear_8u_C4R", IPL_ZoomLinear_8u_C4R, tqref::ZoomLinearC4, 4},
    {"IPL_ZoomLinearMultiThread_8u_C1R", IPL_ZoomLinearMultiThread_8u_C1R, tqref::ZoomLinearC1, 1},
    {"IPL_ZoomLinearMultiThread_8u_C4R", IPL_ZoomLinearMultiThread_8u_C4R, tqref::ZoomLinearC4, 4},
    {"IPL_ZoomCubic_8u_C4R", IPL_ZoomCubic_8u_C4R, tqref::ZoomCubicC4, 4},
    {"IPL_ZoomCubicMultiThread_8u_C1R", IPL_ZoomCubicMultiThread_8u_C1R, tqref::ZoomCubicC1, 1},
    {"IPL_ZoomCubicMultiThread_8u_C4R", IPL_ZoomCubicMultiThread_8u_C4R, tqref::ZoomCubicC4, 4},
    {"IPL_Zoom6Cubic_8u_C1R", IPL_Zoom6Cubic_8u_C1R, tqref::ZoomSixCubicC1, 1},
    {"IPL_Zoom6Cubic_8u_C4R", IPL_Zoom6Cubic_8u_C4R, tqref::ZoomSixCubicC4, 4},
    {"IPL_Zoom6CubicMultiThread_8u_C1R", IPL_Zoom6CubicMultiThread_8u_C1R, tqref::ZoomSixCubicC1,
     1},
    {"IPL_Zoom6CubicMultiThread_8u_C4R", IPL_Zoom6CubicMultiThread_8u_C4R, tqref::ZoomSixCubicC4,
     4},
    {"IPL_ZoomSuper_8u_C1R", IPL_ZoomSuper_8u_C1R, tqref::ZoomSuperC1, 1},
    {"IPL_ZoomSuper_8u_C4R", IPL_ZoomSuper_8u_C4R, tqref::ZoomSuperPlainC4, 4},
    {"IPL_ZoomSuperMultiThread_8u_C1R", IPL_ZoomSuperMultiThread_8u_C1R, tqref::ZoomSuperC1, 1},
    {"IPL_ZoomSuperMultiThread_8u_C4R", IPL_ZoomSuperMultiThread_8u_C4R, tqref::ZoomSuperThreadedC4,
     4}};

// Steps down the rows of equal widths as if they were dense: downward only.
constexpr tqfuzz::ZoomForm kDownward = {"IPL_ZoomCubic_8u_C1R", IPL_ZoomCubic_8u_C1R,
                                        tqref::ZoomCubicPlainC1, 1};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    tqfuzz::Input input(data, size);
    tqfuzz::UseMachine(input);
    if (input.Byte() % 16 == 0)
        tqfuzz::CheckZoom(input, kDownward, tqfuzz::SizesAtRandom(input), {.bottomUp = false});
    else
        tqfuzz::CheckZoom(input, input.Pick(kForms), tqfuzz::SizesAtRandom(input));
    return 0;
}
