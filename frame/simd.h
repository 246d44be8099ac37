#pragma once

// Vectors for kernel files. Included by *_kernels.cpp only, which are compiled once per
// instruction-set level: everything here has internal linkage, so that no function compiled for
// one level can be linked into another.
//
// Arithmetic, comparison and shifts are the compiler's own vector operators. The named functions
// of the headers below are what the operators lack or GCC 12 compiles badly.

#include "frame/simd_bytes.h"
#include "frame/simd_lanes.h"
#include "frame/simd_words.h"
