#pragma once

// In-place forms: a filter into a buffer, and the buffer back over the image.

#include <tqipl/image_memory.h>

#include "frame/scratch.h"

namespace tq {

// Calls filter(buffer), which takes the buffer for a dense image of width bytes a row. Every byte
// goes back, also those that the filter left as they were in the buffer.
template <class Filter>
void FilterInPlace(int width, int height, int stride, unsigned char* image, Filter filter) {
    if (width < 1 || height < 1 || image == nullptr) return;
    const Scratch buffer(height, width);
    filter(buffer.Data());
    IPL_Memcpy_C1R(width, height, width, buffer.Data(), stride, image);
}

}  // namespace tq
