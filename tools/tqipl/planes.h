#pragma once

#include <TQIPLBaseLibU.h>

#include <cstddef>

#include "picture.h"

namespace tqipl {

// Plane pointers and strides as the library takes them.
struct Planes {
    CTQArray<int, int> strides;
    CTQArray<unsigned char*, unsigned char*> pointers;

    // A plane of `rowBytes` bytes a row at `data`. Returns where the next one begins.
    unsigned char* Add(unsigned char* data, int rowBytes, int height) {
        strides.Add(rowBytes);
        pointers.Add(data);
        return data + static_cast<size_t>(rowBytes) * static_cast<size_t>(height);
    }

    // Y, U and V of a planar 4:2:2 frame, one behind the other.
    void AddPlanar422(Size size, unsigned char* frame, int sampleBytes) {
        unsigned char* u = Add(frame, size.width * sampleBytes, size.height);
        unsigned char* v = Add(u, size.width / 2 * sampleBytes, size.height);
        Add(v, size.width / 2 * sampleBytes, size.height);
    }
};

}  // namespace tqipl
