// Luminance planes, and how far two of them are apart.

#include "luminance.h"

#include <TQIPLBaseLibU.h>

#include <cstdio>

namespace tqipl {

Picture LuminanceOf(const Picture& picture) {
    if (picture.IsGrey()) return picture;
    Picture luminance(picture.size, Channels::kGrey);
    IPL_ARGB2LUM(picture.size.width, picture.size.height, picture.Stride(), picture.Source(),
                 luminance.Stride(), luminance.bytes.data());
    return luminance;
}

float Psnr(const Picture& first, const Picture& second) {
    return IPL_GetPSNR_8u_C1R(first.size.width, first.size.height, first.Stride(), first.Source(),
                              second.Stride(), second.Source());
}

std::string Decibels(float psnr) {
    char text[40];
    std::snprintf(text, sizeof text, "%.2f dB", double{psnr});
    return text;
}

}  // namespace tqipl
