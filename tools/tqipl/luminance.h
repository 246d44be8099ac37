#pragma once

#include <string>

#include "picture.h"

namespace tqipl {

// The luminance of a picture, one byte a pixel. A grey picture's is itself.
Picture LuminanceOf(const Picture& picture);

// The library's measure of the difference of two grey pictures of the same size, in decibels.
float Psnr(const Picture& first, const Picture& second);

std::string Decibels(float psnr);  // "36.52 dB"

}  // namespace tqipl
