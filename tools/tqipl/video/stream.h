#pragma once

#include <cstdint>
#include <string>

#include "video/frame_format.h"

namespace tqipl {

// Of whole numbers; 0:0 where it is not known.
struct Ratio {
    int64_t over = 0;
    int64_t under = 0;

    bool IsKnown() const { return over > 0 && under > 0; }
    bool operator==(const Ratio&) const = default;
};

// In lowest terms. One whose numbers are beyond 31 bits even then is not known.
Ratio Reduced(int64_t over, int64_t under);

// "25", "30000:1001" or "30000/1001"; false for anything else.
bool ParseRatio(const std::string& text, Ratio& ratio);

// What is true of every frame at one point between input and output.
struct Stream {
    FrameFormat format = FrameFormat::kYuvp422;
    Size size;
    Ratio rate;            // frames a second
    Ratio aspect;          // of a pixel, width to height
    char interlace = '?';  // as in Y4M: p progressive, t top field first, b bottom, m mixed
    std::string matrix;    // "601", "709", "2020", or "" where nobody has said it
    bool fullRange = false;
    bool hasMask = false;
};

inline const char* NameOf(const Stream& stream) { return KindOf(stream.format).name; }

}  // namespace tqipl
