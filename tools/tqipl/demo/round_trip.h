#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "demo/exhibit.h"

namespace tqipl {

// From ARGB to a frame in another format, and back.
struct RoundTrip {
    const char* id;
    const char* title;
    const char* remark;  // behind the caption; may be empty
    const char* routine;
    int groupPixels;             // of which the width must be a multiple
    size_t (*frameBytes)(Size);  // with the byte that may be written behind the last row
    // Writes the frame and the picture that comes back, and returns the milliseconds spent in the
    // library. Both are noise when it is called; it clears what no routine writes.
    double (*run)(const Picture& source, Size size, bool multiThread, unsigned char* frame,
                  unsigned char* picture);
};

// Each round trip, followed by a picture of what it changed. `trips` must outlive the exhibits.
std::vector<Exhibit> RoundTripExhibits(const Picture& source, std::span<const RoundTrip> trips);

inline size_t PixelCount(Size size) {
    return static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
}

// The part of a picture that has whole groups of pixels.
inline Size WholeGroups(Size size, int groupPixels) {
    return {size.width / groupPixels * groupPixels, size.height};
}

template <size_t pixelBytes> size_t DenseBytes(Size size) { return PixelCount(size) * pixelBytes; }

// Either of two forms with the same arguments, timed.
template <class... Parameters, class... Arguments>
double TimeEither(bool multiThread, void (*plain)(Parameters...), void (*multi)(Parameters...),
                  Arguments&&... arguments) {
    return TimeOf([&] { (multiThread ? multi : plain)(arguments...); });
}

}  // namespace tqipl
