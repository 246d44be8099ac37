#pragma once

// Forms that convert pixel by pixel, from one image to one image of the same size.

#include <cstdint>
#include <string>

#include "bench/support/rows.h"

namespace tqbench {

// dstPixelElements and the destination's stride count elements of Dst.
template <class Dst>
void AddPixelForm(const char* name, void (*plain)(int, int, int, unsigned char*, int, Dst*),
                  void (*multiThread)(int, int, int, unsigned char*, int, Dst*),
                  void (*reference)(int, int, int, const uint8_t*, int, Dst*), int srcPixelBytes,
                  int dstPixelElements) {
    for (const Size size : kSizes) {
        auto on = [=](auto function) {
            return [=](uint8_t* src, uint8_t* dst) {
                function(size.width, size.height, size.width * srcPixelBytes, src,
                         size.width * dstPixelElements, reinterpret_cast<Dst*>(dst));
            };
        };
        AddForm({.name = name,
                 .multiThreadName = name + std::string("_MultiThread"),
                 .size = ToString(size),
                 .srcSize = size,
                 .dstSize = size,
                 .srcBytes = size.Pixels() * srcPixelBytes,
                 .dstBytes = size.Pixels() * dstPixelElements * int64_t{sizeof(Dst)},
                 .hasKernels = true,
                 .plain = on(plain),
                 .multiThread = on(multiThread),
                 .reference = on(reference)});
    }
}

}  // namespace tqbench
