#pragma once

#include <span>
#include <string>
#include <vector>

#include "raw_formats.h"
#include "video/operation.h"
#include "video/stream.h"

// From one frame format to another.

namespace tqipl {

// Repacks frames to the first of `formats` that they can be brought to without loss, and says so in
// the stream. Null if they have one of them already. Throws UsageError, which names `operation`, if
// there is none.
OperationPointer RepackFor(const std::string& operation, std::span<const FrameFormat> formats,
                           Stream& stream);

// To a format by any way. Null if the frames have it already.
OperationPointer ConvertTo(FrameFormat format, Stream& stream);

// The three planes of 4:4:4 frames to packed V, U, Y, alpha, and back. Rows are dense.
void PackVuyt(Size size, unsigned char* planes, unsigned char* packed);
void UnpackVuyt(Size size, unsigned char* packed, unsigned char* planes);

// Throws UsageError if `what`, which computes with a matrix, cannot be done with these frames.
// Gives the matrix that they have: 601 where nobody has said it.
std::string MatrixFor(const std::string& what, const Stream& stream);
void CheckStudioRange(const std::string& what, const Stream& stream);

}  // namespace tqipl
