#pragma once

// In-place forms: a filter into a buffer, and the buffer back over the image.

#include <tqipl/buffer.h>
#include <tqipl/image_memory.h>

#include <cstdint>
#include <new>

namespace tq {

// Calls filter(buffer), which takes the buffer for a dense image of width bytes a row. Every byte
// goes back, also those that the filter left as they were in the buffer.
template <class Filter>
void FilterInPlace(int width, int height, int stride, unsigned char* image, Filter filter) {
    if (width < 1 || height < 1 || image == nullptr) return;
    const int64_t bytes = int64_t{width} * height;
    if (bytes > INT32_MAX) throw std::bad_alloc();
    CTQIPLMemoryAuto buffer(static_cast<int>(bytes), nullptr);
    filter(buffer.Data());
    IPL_Memcpy_C1R(width, height, width, buffer.Data(), stride, image);
}

}  // namespace tq
