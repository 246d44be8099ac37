#pragma once

#include <span>
#include <string>
#include <vector>

#include "video/arguments.h"
#include "video/operation.h"
#include "video/stream.h"

// The operations that the command line knows. One more is a line in the table of its file
// (*_operations.cpp), a row in docs/video.md and a check in tests/tools/video_operations_test.sh.

namespace tqipl {

// What an operation does about a mask that others have made beside the picture.
enum class MaskRule {
    kLeaves,  // it neither needs nor disturbs one
    kNeeds,
    kRefuses,  // the mask would not fit the frames any more
};

struct OperationKind {
    const char* usage;  // "zoom=WIDTHxHEIGHT:METHOD"
    const char* what;
    MaskRule mask;
    // Which it takes; what can be repacked to the first that is possible without loss, is. Empty
    // means all.
    std::span<const FrameFormat> formats;
    // Checks the arguments and the stream, and makes the stream what it is behind the operation.
    // May give null where there is nothing to do.
    OperationPointer (*make)(Arguments& arguments, Stream& stream);
};

std::span<const OperationKind> GeometryOperations();
std::span<const OperationKind> FieldOperations();
std::span<const OperationKind> FilterOperations();
std::span<const OperationKind> MaskOperations();
std::span<const OperationKind> ColourOperations();

std::string OperationList();  // a line for each

// Adds the operation of "name=first:second", and the repacking that it needs before it. Throws
// UsageError for what is not known or does not fit the stream.
void AddOperation(const std::string& text, Stream& stream, std::vector<OperationPointer>& chain);

}  // namespace tqipl
