#pragma once

// Planes one behind the other in a block, as the library and as the references take them.

#include <tqipl/array.h>

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace tqbench {

struct PlaneArrays {
    PlaneArrays(uint8_t* block, int height, std::initializer_list<int> rowBytes) {
        int64_t offset = 0;
        for (const int bytes : rowBytes) {
            strides.Add(bytes);
            planes.Add(block + offset);
            strideList.push_back(bytes);
            planeList.push_back(block + offset);
            offsets.push_back(offset);
            offset += int64_t{bytes} * height;
        }
    }

    CTQArray<int, int> strides;
    CTQArray<unsigned char*, unsigned char*> planes;
    std::vector<int> strideList;
    std::vector<uint8_t*> planeList;
    std::vector<int64_t> offsets;  // of the planes in the block
};

}  // namespace tqbench
