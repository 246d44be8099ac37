#pragma once

// Forms of any signature, from one frame to another of the same size.

#include <cstdint>
#include <string>
#include <utility>

#include "bench/support/rows.h"

namespace tqbench {

// srcBytes and dstBytes are those of the whole frames. multiThread may be empty, or plain, where
// there is only the one.
inline void AddFrameForm(const std::string& name, const std::string& multiThreadName, Size size,
                         int64_t srcBytes, int64_t dstBytes, Call plain, Call multiThread,
                         Call reference, bool hasKernels = true) {
    AddForm({.name = name,
             .multiThreadName = multiThreadName,
             .size = ToString(size),
             .srcSize = size,
             .dstSize = size,
             .srcBytes = srcBytes,
             .dstBytes = dstBytes,
             .hasKernels = hasKernels,
             .plain = std::move(plain),
             .multiThread = std::move(multiThread),
             .reference = std::move(reference)});
}

}  // namespace tqbench
