// Packed 4:2:2 and VUYT to ARGB, and ARGB to packed 4:2:2.

#include <tqipl/color.h>

#include "bench/families.h"
#include "bench/support/pixel_form.h"
#include "reference/argb_to_packed422_reference.h"
#include "reference/packed422_to_argb_reference.h"

namespace tqbench {

void AddPacked422() {
    AddPixelForm("IPL_YUYV422_To_ARGB444", IPL_YUYV422_To_ARGB444,
                 IPL_YUYV422_To_ARGB444_MultiThread, tqref::Yuyv422ToArgb, 2, 4);
    AddPixelForm("IPL_UYVY422_To_ARGB444", IPL_UYVY422_To_ARGB444,
                 IPL_UYVY422_To_ARGB444_MultiThread, tqref::Uyvy422ToArgb, 2, 4);
    AddPixelForm("IPL_VUYT444_To_ARGB444", IPL_VUYT444_To_ARGB444,
                 IPL_VUYT444_To_ARGB444_MultiThread, tqref::Vuyt444ToArgb, 4, 4);
    AddPixelForm("IPL_YUYV2ARGB_601", IPL_YUYV2ARGB_601, IPL_YUYV2ARGB_601_MultiThread,
                 tqref::Yuyv2Argb601, 2, 4);
    AddPixelForm("IPL_UYVY2ARGB_601", IPL_UYVY2ARGB_601, IPL_UYVY2ARGB_601_MultiThread,
                 tqref::Uyvy2Argb601, 2, 4);
    AddPixelForm("IPL_YUYV2ARGB_709", IPL_YUYV2ARGB_709, IPL_YUYV2ARGB_709_MultiThread,
                 tqref::Yuyv2Argb709, 2, 4);
    AddPixelForm("IPL_UYVY2ARGB_709", IPL_UYVY2ARGB_709, IPL_UYVY2ARGB_709_MultiThread,
                 tqref::Uyvy2Argb709, 2, 4);
    AddPixelForm("IPL_ARGB2YUYV_601", IPL_ARGB2YUYV_601, IPL_ARGB2YUYV_601_MultiThread,
                 tqref::Argb2Yuyv601, 4, 2);
    AddPixelForm("IPL_ARGB2UYVY_601", IPL_ARGB2UYVY_601, IPL_ARGB2UYVY_601_MultiThread,
                 tqref::Argb2Uyvy601, 4, 2);
    AddPixelForm("IPL_ARGB2YUYV_709", IPL_ARGB2YUYV_709, IPL_ARGB2YUYV_709_MultiThread,
                 tqref::Argb2Yuyv709, 4, 2);
    AddPixelForm("IPL_ARGB2UYVY_709", IPL_ARGB2UYVY_709, IPL_ARGB2UYVY_709_MultiThread,
                 tqref::Argb2Uyvy709, 4, 2);
}

}  // namespace tqbench
