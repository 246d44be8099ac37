// Linear correct, cubic correct, JBI and TFI zooms.

#include <tqipl/zoom.h>

#include "fuzz_check.h"
#include "reference/zoom_correct_reference.h"
#include "reference/zoom_cubic_reference.h"
#include "reference/zoom_jbi_reference.h"
#include "reference/zoom_super_reference.h"
#include "reference/zoom_tfi_reference.h"
#include "zoom_form.h"

namespace {

using tqfuzz::Input;
using tqfuzz::ZoomForm;
using tqfuzz::ZoomSizes;

void CubicCorrect(int channels, const tqref::ZoomSource& src, const tqref::ZoomTarget& dst) {
    if (!tqref::ZoomCubicCorrect(channels, src, dst)) tqref::ZoomSixCubic(channels, src, dst);
}

void SixTapPlane(const tqref::ZoomSource& src, const tqref::ZoomTarget& dst) {
    tqref::ZoomSixCubic(1, src, dst);
}
template <void (*super)(int, const tqref::ZoomSource&, const tqref::ZoomTarget&)>
void Jbi(int channels, const tqref::ZoomSource& src, const tqref::ZoomTarget& dst) {
    if (!tqref::ZoomJbi(channels, src, dst, SixTapPlane)) super(channels, src, dst);
}

constexpr ZoomForm kForms[] = {
    {"IPL_ZoomLinearCorrect_8u_C1R", IPL_ZoomLinearCorrect_8u_C1R, tqref::ZoomLinearCorrectC1, 1},
    {"IPL_ZoomLinearCorrect_8u_C4R", IPL_ZoomLinearCorrect_8u_C4R, tqref::ZoomLinearCorrectC4, 4},
    {"IPL_ZoomLinearCorrectMultiThread_8u_C1R", IPL_ZoomLinearCorrectMultiThread_8u_C1R,
     tqref::ZoomLinearCorrectC1, 1},
    {"IPL_ZoomLinearCorrectMultiThread_8u_C4R", IPL_ZoomLinearCorrectMultiThread_8u_C4R,
     tqref::ZoomLinearCorrectC4, 4},
    {"IPL_ZoomCubicCorrect_8u_C1R", IPL_ZoomCubicCorrect_8u_C1R, tqref::ZoomForm<CubicCorrect, 1>,
     1},
    {"IPL_ZoomCubicCorrect_8u_C4R", IPL_ZoomCubicCorrect_8u_C4R, tqref::ZoomForm<CubicCorrect, 4>,
     4},
    {"IPL_ZoomCubicCorrectMultiThread_8u_C1R", IPL_ZoomCubicCorrectMultiThread_8u_C1R,
     tqref::ZoomForm<CubicCorrect, 1>, 1},
    {"IPL_ZoomCubicCorrectMultiThread_8u_C4R", IPL_ZoomCubicCorrectMultiThread_8u_C4R,
     tqref::ZoomForm<CubicCorrect, 4>, 4},
    {"IPL_ZoomJBI_8u_C1R", IPL_ZoomJBI_8u_C1R, tqref::ZoomForm<Jbi<tqref::ZoomSuper>, 1>, 1},
    {"IPL_ZoomJBI_8u_C4R", IPL_ZoomJBI_8u_C4R, tqref::ZoomForm<Jbi<tqref::ZoomSuperNextIndex>, 4>,
     4},
    {"IPL_ZoomJBIMultiThread_8u_C1R", IPL_ZoomJBIMultiThread_8u_C1R,
     tqref::ZoomForm<Jbi<tqref::ZoomSuper>, 1>, 1},
    {"IPL_ZoomJBIMultiThread_8u_C4R", IPL_ZoomJBIMultiThread_8u_C4R,
     tqref::ZoomForm<Jbi<tqref::ZoomSuper>, 4>, 4},
    {"IPL_ZoomTFI_8u_C1R", IPL_ZoomTFI_8u_C1R, tqref::ZoomTfiPlainC1, 1},
    {"IPL_ZoomTFI_8u_C4R", IPL_ZoomTFI_8u_C4R, tqref::ZoomTfiPlainC4, 4},
    {"IPL_ZoomTFIMultiThread_8u_C1R", IPL_ZoomTFIMultiThread_8u_C1R, tqref::ZoomTfiThreadedC1, 1},
    {"IPL_ZoomTFIMultiThread_8u_C4R", IPL_ZoomTFIMultiThread_8u_C4R, tqref::ZoomTfiThreadedC4, 4}};

// Mostly enlarged on both axes, by two and more too: what these methods are for.
ZoomSizes Enlarged(Input& input) {
    const int width = input.Int(1, 24), height = input.Int(1, 12);
    return {width, height, width + input.Int(0, 2 * width + 20),
            height + input.Int(0, height + 12)};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    tqfuzz::UseMachine(input);
    const ZoomForm& form = input.Pick(kForms);
    if (input.Byte() % 8 == 0)
        tqfuzz::CheckZoom(input, form, tqfuzz::SizesAtRandom(input));
    else
        tqfuzz::CheckZoom(input, form, Enlarged(input));
    return 0;
}
