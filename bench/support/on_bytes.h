#pragma once

// References that take images as tqref::Bytes.

#include "bench/support/rows.h"
#include "reference/image_memory_reference.h"

namespace tqbench {

// reference(src, dst)
template <class Reference> Call OnBytes(Reference reference) {
    return [=](uint8_t* src, uint8_t* dst) {
        tqref::Bytes from(src), to(dst);
        reference(from, to);
    };
}

}  // namespace tqbench
