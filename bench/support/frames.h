#pragma once

// The memory that every row works on, page-aligned and touched: the same for the forms, for memcpy
// and for other libraries.

#include <cstddef>
#include <cstdint>
#include <string>

namespace tqbench {

struct Size {
    int width, height;
    int64_t Pixels() const { return int64_t{width} * height; }
};

inline std::string ToString(Size size) {
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

inline constexpr Size kSizes[] = {{1920, 1080}, {720, 576}};

// A frame of 3840 x 2160 pixels of four bytes, and a page behind it.
inline constexpr int64_t kFrameRoom = int64_t{3840} * 2160 * 4 + 4096;

struct Frames {
    uint8_t* picture;   // what is timed: slow ramps with a little noise
    uint8_t* hostile;   // what is checked: runs of extremes, and noise
    uint8_t* dst;       // where a form writes
    uint8_t* expected;  // what it must write
    uint8_t* ground;    // what a destination holds before a check
};

// Made at the first call, and kept.
const Frames& GetFrames();

}  // namespace tqbench
