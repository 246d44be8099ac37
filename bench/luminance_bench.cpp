// The luminance family.

#include <tqipl/luminance.h>

#include "bench/families.h"
#include "bench/support/pixel_form.h"
#include "reference/luminance_reference.h"

namespace tqbench {

void AddLuminance() {
    AddPixelForm("IPL_ARGB2LUM", IPL_ARGB2LUM, IPL_ARGB2LUM_MultiThread, tqref::Argb2Lum, 4, 1);
    AddPixelForm("IPL_BGR10b_To_Lum", IPL_BGR10b_To_Lum, IPL_BGR10b_To_Lum_MultiThread,
                 tqref::Bgr10ToLum, 4, 1);
    AddPixelForm("IPL_BGR16b_To_Lum", IPL_BGR16b_To_Lum, IPL_BGR16b_To_Lum_MultiThread,
                 tqref::Bgr16ToLum, 6, 1);
    AddPixelForm("IPL_BGRA_To_Lum32", IPL_BGRA_To_Lum32, IPL_BGRA_To_Lum32_MultiThread,
                 tqref::BgraToLum32, 4, 1);
    AddPixelForm("IPL_BGR10b_To_Lum32", IPL_BGR10b_To_Lum32, IPL_BGR10b_To_Lum32_MultiThread,
                 tqref::Bgr10ToLum32, 4, 1);
    AddPixelForm("IPL_BGR16b_To_Lum32", IPL_BGR16b_To_Lum32, IPL_BGR16b_To_Lum32_MultiThread,
                 tqref::Bgr16ToLum32, 6, 1);
}

}  // namespace tqbench
