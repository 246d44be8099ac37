#pragma once

// What lets the bands of an image be worked on in place at the same time: copies of the rows that
// the windows of a band reach in its neighbours.

#include <cstring>

#include "frame/band.h"
#include "frame/scratch.h"

namespace tq {

// The radiusY rows above and below each seam between two bands of an image, dense.
class SeamRows {
public:
    // Whether the copies are possible, and fewer rows than half the image.
    static bool Pay(const BandPlan& plan, int width, int stride, int radiusY) {
        return radiusY >= 0 && int64_t{4} * radiusY <= plan.length && plan.length > 0 &&
               !RowsOverlap(width, stride);
    }

    SeamRows(const BandPlan& plan, int width, int stride, const unsigned char* image, int radiusY)
        : m_width(width),
          m_radiusY(radiusY),
          m_memory(int64_t{2} * radiusY * (plan.count - 1) * width) {
        unsigned char* copy = m_memory.Data();
        for (int seam = 1; seam < plan.count; ++seam) {
            const ptrdiff_t first = ptrdiff_t{seam} * plan.length - radiusY;
            for (int i = 0; i < 2 * radiusY; ++i, copy += width)
                std::memcpy(copy, image + (first + i) * stride, static_cast<size_t>(width));
        }
    }

    // The first row below the seam after `bands` bands, 1 or more and not all; radiusY - 1 more
    // follow it, and radiusY precede it.
    const unsigned char* BelowSeam(int bands) {
        return m_memory.Data() + (int64_t{2} * bands - 1) * m_radiusY * m_width;
    }

private:
    const ptrdiff_t m_width;
    const int64_t m_radiusY;
    Scratch m_memory;
};

}  // namespace tq
