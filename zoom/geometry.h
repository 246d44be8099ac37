#pragma once

// What the zoom methods share: their arguments, the steps that most of them begin with, and the
// way of the linear methods from a destination index to a source position.

#include <cstddef>
#include <cstdint>

namespace tq {

// The arguments of every zoom, in their order.
struct ZoomImages {
    int srcWidth;
    int srcHeight;
    int srcStride;
    unsigned char* src;
    int dstWidth;
    int dstHeight;
    int dstStride;
    unsigned char* dst;
};

// Whether both images have pixels.
inline bool HasPixels(const ZoomImages& images) {
    return images.srcWidth > 0 && images.srcHeight > 0 && images.dstWidth > 0 &&
           images.dstHeight > 0;
}

// The steps that all methods but nearest neighbour begin with. False when the call ends with them:
// at null pointers, equal sizes, which are copied, and sizes below 1. Otherwise both images have
// pixels.
bool BeginZoom(const ZoomImages& images, int pixelBytes);

// Sets the destination's rows to zero; does nothing if it has no rows or no columns.
void ClearDestination(const ZoomImages& images, int pixelBytes);

// A source position: the sample at or before it, and how far behind that it lies.
struct LinearSample {
    int index;
    float fraction;
};

// One axis of the linear mapping: destination index i lies at i * scale + offset, held between the
// first and the last source sample. All in single precision; the offset is formed in double.
class LinearAxis {
public:
    // Lengths of 1 or more.
    LinearAxis(int srcLength, int dstLength)
        : m_scale(static_cast<float>(srcLength) / static_cast<float>(dstLength)),
          m_offset(static_cast<float>(static_cast<double>(m_scale) * 0.5 - 0.5)),
          m_last(srcLength - 1),
          m_lastPosition(static_cast<float>(srcLength - 1)) {}

    // The index is at most the last one, whose fraction is always 0. Where a length is beyond what
    // a float counts, the last position may be rounded to another sample's.
    LinearSample At(int i) const {
        float position = static_cast<float>(i) * m_scale + m_offset;
        if (0.0f > position) position = 0.0f;
        if (!(position < m_lastPosition)) position = m_lastPosition;
        const auto index = static_cast<int64_t>(position);
        if (index >= m_last) return {m_last, 0.0f};
        return {static_cast<int>(index), position - static_cast<float>(index)};
    }

    int Last() const { return m_last; }

private:
    float m_scale;
    float m_offset;
    int m_last;
    float m_lastPosition;
};

}  // namespace tq
