#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "picture.h"

// How a frame of a video lies in memory: rows without padding (V210: rows of a multiple of 128
// bytes), planes one behind the other.

namespace tqipl {

enum class FrameFormat {
    kUyvy,
    kYuyv,
    kYuvp422,
    kYuvp444,
    kGray8,
    kArgb,
    kYuvp210,
    kYuvp216,
    kV210,
    kV216,
};

struct FrameKind {
    FrameFormat format;
    const char* name;   // on the command line, as of raw files where these have the format too
    const char* alias;  // another name for it, or ""
    const char* layout;
    const char* y4m;    // what a Y4M header calls it, or null
    bool sharesChroma;  // by pairs of pixels: the width must be even
    int pixelBytes;     // in the first plane; 0 for V210
    int planes;
};

std::span<const FrameKind> FrameKinds();
const FrameKind& KindOf(FrameFormat format);

// By name or alias; null if there is none.
const FrameKind* FindFrameKind(const std::string& name);
std::string FrameKindNames();  // "uyvy, yuyv, ..."

struct PlaneShape {
    int width;  // in pixels of this plane
    int height;
    int rowBytes;
    size_t offset;  // in the frame
};

std::vector<PlaneShape> PlanesOf(FrameFormat format, Size size);
size_t FrameBytes(FrameFormat format, Size size);

// Throws HostError for a width that cuts a pair of pixels.
void CheckFrameWidth(FrameFormat format, Size size);

struct Frame {
    // FrameBytes, and a spare one behind them, which some conversions write.
    std::vector<uint8_t> bytes;
    std::vector<uint8_t> mask;  // one byte a pixel, where operations have made one
    std::string parameters;     // behind the word FRAME in a Y4M stream

    void Fit(FrameFormat format, Size size) { bytes.resize(FrameBytes(format, size) + 1); }
};

}  // namespace tqipl
