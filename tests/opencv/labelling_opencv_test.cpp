// The rectangles of labelling, and what it leaves of the mask, against OpenCV's connected
// components. Their order is another matter.

#include <gtest/gtest.h>
#include <tqipl/labelling.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "support/settings.h"

namespace {

using tqtest::Settings;

using Bytes = std::vector<uint8_t>;
using Rect = std::array<int, 4>;  // left, top, right, bottom, all inclusive

struct Form {
    const char* name;
    void (*function)(int, int, int, unsigned char*, CTQArray<TQ_RECT, TQ_RECT&>*, int);
    std::vector<unsigned> processorCounts;
};

// With one processor the third finishes nothing.
const Form kForms[] = {
    {"IPL_FCCLabeling", IPL_FCCLabeling, {1, 4}},
    {"IPL_FCCLabeling2", IPL_FCCLabeling2, {1, 4}},
    {"IPL_FCCLabeling_MultiThread", IPL_FCCLabeling_MultiThread, {2, 3, 5, 8, 16}},
};

struct Labelled {
    std::vector<Rect> rects;  // sorted
    Bytes mask;               // without the small regions
};

// The mask's rows lie stride bytes apart.
class Peer {
public:
    Peer(int width, int height, int stride, const Bytes& mask)
        : m_width(width), m_height(height), m_stride(stride) {
        cv::setNumThreads(1);
        const cv::Mat bytes(height, width, CV_8U, const_cast<uint8_t*>(mask.data()),
                            static_cast<size_t>(stride));
        cv::Mat centroids;
        m_count = cv::connectedComponentsWithStats(bytes != 0, m_labels, m_stats, centroids, 8);
    }
    Labelled Keep(Bytes mask, int minimumSize) const {
        Labelled result;
        for (int label = 1; label < m_count; ++label) {
            if (Stat(label, cv::CC_STAT_AREA) <= minimumSize) continue;
            const int left = Stat(label, cv::CC_STAT_LEFT), top = Stat(label, cv::CC_STAT_TOP);
            result.rects.push_back({left, top, left + Stat(label, cv::CC_STAT_WIDTH) - 1,
                                    top + Stat(label, cv::CC_STAT_HEIGHT) - 1});
        }
        std::sort(result.rects.begin(), result.rects.end());
        for (int y = 0; y < m_height; ++y)
            for (int x = 0; x < m_width; ++x) {
                const int label = m_labels.at<int>(y, x);
                if (label != 0 && Stat(label, cv::CC_STAT_AREA) <= minimumSize)
                    mask[static_cast<size_t>(y) * m_stride + x] = 0;
            }
        result.mask = std::move(mask);
        return result;
    }

private:
    int Stat(int label, int column) const { return m_stats.at<int>(label, column); }

    int m_width, m_height, m_stride, m_count;
    cv::Mat m_labels, m_stats;
};

void ExpectFormsEqualThePeer(int width, int height, int stride, const Bytes& mask,
                             const std::vector<int>& minimumSizes) {
    const Peer peer(width, height, stride, mask);
    for (int minimumSize : minimumSizes) {
        const Labelled expected = peer.Keep(mask, minimumSize);
        for (const Form& form : kForms)
            for (unsigned processors : form.processorCounts) {
                Settings settings;
                settings.UseProcessors(processors);
                Labelled actual;
                actual.mask = mask;
                CTQArray<TQ_RECT, TQ_RECT&> rects;
                form.function(width, height, stride, actual.mask.data(), &rects, minimumSize);
                for (int64_t i = 0; i < rects.GetSize(); ++i) {
                    const TQ_RECT& r = rects.GetAt(i);
                    actual.rects.push_back({r.left, r.top, r.right, r.bottom});
                }
                std::sort(actual.rects.begin(), actual.rects.end());
                ASSERT_EQ(actual.rects, expected.rects)
                    << form.name << ", " << width << " x " << height << ", minimum " << minimumSize
                    << ", " << processors << " processors";
                ASSERT_EQ(actual.mask, expected.mask)
                    << form.name << ", " << width << " x " << height << ", minimum " << minimumSize
                    << ", " << processors << " processors";
            }
    }
}

class Dice {
public:
    explicit Dice(uint32_t seed) : m_state(seed * 2654435761u + 99) {}
    int Below(int limit) {
        m_state = m_state * 1664525u + 1013904223u;
        return static_cast<int>((uint64_t{m_state} * static_cast<uint32_t>(limit)) >> 32);
    }

private:
    uint32_t m_state;
};

// Each pixel of the rows is set with the chance of `percent`; what lies behind a row is noise.
Bytes Noise(int width, int height, int stride, int percent, uint32_t seed) {
    Dice dice(seed);
    Bytes mask(static_cast<size_t>(stride) * height);
    for (size_t i = 0; i < mask.size(); ++i) {
        const bool inRow = static_cast<int>(i % stride) < width;
        mask[i] =
            static_cast<uint8_t>(!inRow || dice.Below(100) < percent ? 1 + dice.Below(255) : 0);
    }
    return mask;
}

const std::vector<int> kMinimumSizes = {-1, 0, 1, 2, 3, 5, 10, 40, 1000000};

TEST(LabellingAgainstOpenCv, FormsAgreeOnNoiseOfEveryDensity) {
    uint32_t seed = 0;
    for (int percent : {5, 20, 30, 40, 45, 50, 60, 80, 95})
        for (int width : {1, 2, 3, 7, 16, 33, 64})
            for (int height : {1, 2, 3, 5, 9, 17, 40}) {
                ++seed;
                const int stride = width + static_cast<int>(seed % 4);
                ExpectFormsEqualThePeer(width, height, stride,
                                        Noise(width, height, stride, percent, seed), kMinimumSizes);
                if (HasFatalFailure()) return;
            }
}

TEST(LabellingAgainstOpenCv, FormsAgreeOnEmptyAndFullMasks) {
    for (int width : {1, 2, 31})
        for (int height : {1, 2, 19})
            for (int percent : {0, 100}) {
                ExpectFormsEqualThePeer(width, height, width + 1,
                                        Noise(width, height, width + 1, percent, 1),
                                        {-1, 0, 1, width * height - 1, width * height});
                if (HasFatalFailure()) return;
            }
}

// Regions within regions, which meet far below: frames, combs and spirals made of bars.
TEST(LabellingAgainstOpenCv, FormsAgreeOnBarsAndFrames) {
    for (uint32_t seed = 1; seed <= 120; ++seed) {
        Dice dice(seed);
        const int width = 20 + dice.Below(60), height = 16 + dice.Below(50);
        Bytes mask(static_cast<size_t>(width) * height, 0);
        for (int bar = 3 + dice.Below(25); bar > 0; --bar) {
            const int left = dice.Below(width), top = dice.Below(height);
            const int columns = 1 + dice.Below(width - left), rows = 1 + dice.Below(height - top);
            const bool frame = dice.Below(2) == 0, upright = dice.Below(2) == 0;
            for (int y = top; y < top + rows; ++y)
                for (int x = left; x < left + columns; ++x) {
                    const bool edge =
                        y == top || y == top + rows - 1 || x == left || x == left + columns - 1;
                    if (frame ? edge : (upright ? x == left : y == top))
                        mask[static_cast<size_t>(y) * width + x] = static_cast<uint8_t>(seed);
                }
        }
        ExpectFormsEqualThePeer(width, height, width, mask, {0, 4, 30, 90});
        if (HasFatalFailure()) return;
    }
}

TEST(LabellingAgainstOpenCv, FormsAgreeOnCombsOfEveryDirection) {
    constexpr int kWidth = 61, kHeight = 47;
    for (int kind = 0; kind < 4; ++kind)
        for (int gap : {1, 2, 3}) {
            Bytes mask(kWidth * kHeight, 0);
            for (int y = 0; y < kHeight; ++y)
                for (int x = 0; x < kWidth; ++x) {
                    const bool tooth = kind < 2 ? x % (gap + 1) == 0 : y % (gap + 1) == 0;
                    const bool back = kind == 0   ? y == 0
                                      : kind == 1 ? y == kHeight - 1
                                      : kind == 2 ? x == 0
                                                  : x == kWidth - 1;
                    mask[y * kWidth + x] = tooth || back ? 255 : 0;
                }
            ExpectFormsEqualThePeer(kWidth, kHeight, kWidth, mask, {0, 500, 3000});
            if (HasFatalFailure()) return;
        }
}

TEST(LabellingAgainstOpenCv, FormsAgreeOnLargeMasks) {
    for (int percent : {35, 42, 55}) {
        ExpectFormsEqualThePeer(641, 479, 644, Noise(641, 479, 644, percent, 77), {0, 12, 400});
        if (HasFatalFailure()) return;
    }
    for (int percent : {3, 40, 99}) {
        ExpectFormsEqualThePeer(9001, 17, 9001, Noise(9001, 17, 9001, percent, 78), {0, 3, 5000});
        if (HasFatalFailure()) return;
    }
}

}  // namespace
