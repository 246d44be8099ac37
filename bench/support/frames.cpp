// The benchmarks' memory and what it holds.

#include "bench/support/frames.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "support/guarded_buffer.h"

namespace tqbench {

namespace {

uint8_t* NewFrame() {
    auto* frame = static_cast<uint8_t*>(::operator new (kFrameRoom, std::align_val_t{4096}));
    std::memset(frame, 0, kFrameRoom);
    return frame;
}

// Smooth in any format's rows: up and down between 0 and 255, the four bytes of a group apart from
// each other.
void FillPicture(uint8_t* data) {
    uint32_t state = 1;
    for (int64_t i = 0; i < kFrameRoom; ++i) {
        const int ramp = static_cast<int>(i >> 11 & 511);
        const int level = ramp < 256 ? ramp : 511 - ramp;
        state = state * 1664525u + 1013904223u;
        const int noise = static_cast<int>(state >> 28);
        data[i] = static_cast<uint8_t>(
            std::clamp(level + 20 * static_cast<int>(i & 3) - 30 + noise, 0, 255));
    }
}

Frames NewFrames() {
    const Frames frames{NewFrame(), NewFrame(), NewFrame(), NewFrame(), NewFrame()};
    FillPicture(frames.picture);
    tqtest::FillHostile(frames.hostile, kFrameRoom, 1);
    tqtest::FillHostile(frames.ground, kFrameRoom, 2);
    return frames;
}

}  // namespace

const Frames& GetFrames() {
    static const Frames frames = NewFrames();
    return frames;
}

}  // namespace tqbench
