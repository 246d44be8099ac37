#pragma once

// What the tests of the wavelet family share.

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "support/settings.h"

namespace tqtest {

// Values known by hand hold at every instruction-set level.
template <class Work> void AtEveryLevel(Work work) {
    Settings settings;
    for (tq::IsaLevel level : RunnableIsaLevels()) {
        SCOPED_TRACE(tq::IsaLevelName(level));
        settings.Use(level);
        work();
    }
}

// The same bytes for the same seed anywhere.
inline std::vector<uint8_t> Noise(int64_t bytes, uint32_t seed) {
    std::vector<uint8_t> image(bytes);
    uint32_t state = seed * 2654435761u + 77;
    for (uint8_t& byte : image) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<uint8_t>(state >> 24);
    }
    return image;
}

template <class Sample>
std::vector<Sample> Transposed(int width, int height, const std::vector<Sample>& image) {
    std::vector<Sample> result(image.size());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) result[x * height + y] = image[y * width + x];
    return result;
}

}  // namespace tqtest
