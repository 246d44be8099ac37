#pragma once

#include <TQIPLBaseLibU.h>

#include <string>

#include "raw_formats.h"

// From one colour matrix to another inside a raw 4:2:2 or 4:4:4 frame of bytes in studio range.

namespace tqipl {

struct MatrixChange {
    const char* from;
    const char* to;
    // Packed frames by format; planar frames, which lie as "yuvp422" does.
    void (*packed)(TQ_COLOR_FORMAT format, int width, int height, int stride, unsigned char* image);
    void (*planar)(int width, int height, int strideY, unsigned char* y, int strideU,
                   unsigned char* u, int strideV, unsigned char* v);
};

// Throws UsageError, which lists what there is.
const MatrixChange& FindMatrixChange(const std::string& from, const std::string& to);

bool CanChangeMatrix(const RawFormat& format);
std::string MatrixFormatNames();  // "yuyv, uyvy, ..."

// In place, for a format that can.
void ChangeMatrix(const MatrixChange& change, const RawFormat& format, Size size,
                  unsigned char* frame);

}  // namespace tqipl
