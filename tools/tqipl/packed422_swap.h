#pragma once

#include <cstddef>
#include <utility>

namespace tqipl {

// YUYV to UYVY and back, in place: swaps the bytes of each 16-bit word.
inline void SwapLumaAndChroma(unsigned char* frame, size_t bytes) {
    for (size_t i = 0; i + 1 < bytes; i += 2) std::swap(frame[i], frame[i + 1]);
}

}  // namespace tqipl
