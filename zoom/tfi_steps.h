#pragma once

// The TFI zoom by its steps, a pixel at a time.

#include <algorithm>
#include <cmath>

#include "frame/exact_math.h"
#include "zoom/geometry.h"

namespace tq {

// The plain form measures the spread of four samples by their variance, tasks by their deviation:
// kept on purpose.
enum class TFISpread { kVariance, kDeviation };

// A destination position: the sample before it, which a source of one sample does not have (-1),
// and the position weights of that one and the next.
struct TFIPosition {
    int first;
    float firstWeight;
    float secondWeight;
};

// One axis, with the first and the last sample of source and destination in the same place where
// both have two.
class TFIAxis {
public:
    // Lengths of 1 or more.
    TFIAxis(int srcLength, int dstLength)
        : m_ratio(srcLength >= 2 && dstLength >= 2
                      ? static_cast<float>(dstLength - 1) / static_cast<float>(srcLength - 1)
                      : static_cast<float>(dstLength) / static_cast<float>(srcLength)),
          m_last(srcLength - 1) {}

    // A position on the last sample or past it lies behind the last two. The only sample of its
    // axis stands for the missing one as well.
    TFIPosition At(int i) const {
        const float position = static_cast<float>(i) / m_ratio;
        const int first = position < static_cast<float>(m_last)
                              ? std::min(static_cast<int>(position), m_last - 1)
                              : m_last - 1;
        return {first, Weight(position, std::max(first, 0)), Weight(position, first + 1)};
    }

private:
    static float Weight(float position, int sample) {
        return 1.0f - std::fabs(position - static_cast<float>(sample));
    }

    float m_ratio;
    int m_last;
};

// The source, read at the nearest sample of the image.
class TFISource {
public:
    // An image with pixels.
    explicit TFISource(const ZoomImages& images)
        : m_images(images), m_lastX(images.srcWidth - 1), m_lastY(images.srcHeight - 1) {}

    const unsigned char* Row(int y) const {
        return m_images.src + Mul32(std::clamp(y, 0, m_lastY), m_images.srcStride);
    }
    int At(int x, int y) const { return Row(y)[std::clamp(x, 0, m_lastX)]; }

    bool IsInnerRow(int y) const { return y > 0 && y < m_lastY; }
    int LastX() const { return m_lastX; }

    // How busy the picture is around a sample.
    float Activity(int x, int y) const;

private:
    // Sums of absolute first and second differences.
    struct Differences {
        int first;
        int second;
    };
    Differences InnerDifferences(int x, int y) const;
    Differences BorderDifferences(int x, int y) const;

    const ZoomImages& m_images;
    int m_lastX;
    int m_lastY;
};

// The weight that a sample has by its activity.
float TFIActivityWeight(float activity);

// The four samples around a position, row by row.
struct TFIWindow {
    float value[4];
    float activity[4];
    float activityWeight[4];
    float position[4];

    unsigned char Byte(TFISpread how) const;

private:
    float HalfSpread(TFISpread how) const;
    float Likeness(int k, float estimate, float spread) const;
};

}  // namespace tq
