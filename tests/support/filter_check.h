#pragma once

// Runs a filter and its reference on equal memory at every instruction-set level, with the images
// standing against pages that fault, and compares all of that memory.

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <vector>

#include "reference/image_memory_reference.h"
#include "support/block_stage.h"
#include "support/settings.h"

namespace tqtest {

// Around the lengths of vectors, and one of several.
inline constexpr int kFilterWidths[] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 15,
                                        16, 17, 18, 31, 32, 33, 34, 47, 63, 64, 65, 66, 100};

// Noise in which every difference of two pixels is as frequent as any other, more or less.
inline std::vector<uint8_t> ContrastNoise(size_t bytes, uint32_t seed) {
    std::vector<uint8_t> image(bytes);
    uint32_t state = seed;
    for (uint8_t& pixel : image) {
        state = state * 1664525u + 1013904223u;
        const uint32_t kind = state >> 30;
        pixel = static_cast<uint8_t>(kind == 0 ? 0 : kind == 1 ? 255 : state >> 16);
    }
    return image;
}

// Two images of one size.
struct PlanePair {
    int width, height, srcStride, dstStride;
};
inline std::ostream& operator<<(std::ostream& out, const PlanePair& pair) {
    return out << pair.width << " x " << pair.height << ", strides " << pair.srcStride << " and "
               << pair.dstStride;
}

// Dense, padded on either side or both.
inline std::vector<PlanePair> PlanePairs(int width, int height) {
    return {{width, height, width, width},
            {width, height, width + 5, width + 3},
            {width, height, width, width + 7},
            {width, height, width + 1, width}};
}

// The same, and upside down on either side or both.
inline std::vector<PlanePair> PlanePairsBothWays(int width, int height) {
    std::vector<PlanePair> pairs = PlanePairs(width, height);
    pairs.push_back({width, height, -width - 5, width + 3});
    pairs.push_back({width, height, width + 1, -width - 2});
    pairs.push_back({width, height, -width, -width});
    return pairs;
}

// form(uint8_t* const* images) against what the stage has for its model, at every level.
template <class Form> testing::AssertionResult CheckAtEveryLevel(BlockStage& stage, Form form) {
    Settings settings;
    for (tq::IsaLevel level : RunnableIsaLevels()) {
        settings.Use(level);
        const testing::AssertionResult result = stage.Check(form);
        if (!result)
            return testing::AssertionFailure()
                   << "level " << tq::IsaLevelName(level) << ", " << result.message();
    }
    return testing::AssertionSuccess();
}

// Block 0 is the source, block 1 the destination.
template <class Reference, class Form, class... Parameters>
testing::AssertionResult FilterEqualsReference(BlockStage& stage, const PlanePair& pair,
                                               Reference reference, Form form,
                                               Parameters... parameters) {
    stage.Model([&](tqref::Bytes* images) {
        reference(pair.width, pair.height, pair.srcStride, images[0], pair.dstStride, images[1],
                  parameters...);
    });
    return CheckAtEveryLevel(stage, [&](uint8_t* const* images) {
        form(pair.width, pair.height, pair.srcStride, images[0], pair.dstStride, images[1],
             parameters...);
    });
}

// An overload that filters into a buffer and copies that back, `width` bytes a row. A pixel for
// which defined(x, y) is false may hold anything then.
template <class Reference, class Form, class Defined, class... Parameters>
testing::AssertionResult InPlaceEqualsReference(BlockStage& stage, int width, int height,
                                                int stride, Reference reference, Form form,
                                                Defined defined, Parameters... parameters) {
    stage.Model([&](tqref::Bytes* images) {
        std::vector<uint8_t> memory(int64_t{width} * height + 1);
        tqref::Bytes buffer(memory.data());
        reference(width, height, stride, images[0], width, buffer, parameters...);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const uint8_t filtered = buffer[int64_t{y} * width + x];
                images[0][int64_t{y} * stride + x] = defined(x, y) ? filtered : 0;
            }
    });
    return CheckAtEveryLevel(stage, [&](uint8_t* const* images) {
        form(width, height, stride, images[0], parameters...);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if (!defined(x, y)) images[0][int64_t{y} * stride + x] = 0;
    });
}

// A reference for filters that read the source and give one value everywhere.
inline void FillPixels(int width, int height, int srcStride, tqref::Bytes& src, int dstStride,
                       tqref::Bytes& dst, uint8_t value) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x) {
            static_cast<void>(src[y * srcStride + x]);
            dst[y * dstStride + x] = value;
        }
}

}  // namespace tqtest
