#pragma once

// What the tests of HSV conversions share: a form with any number of images, its reference, and
// their comparison over sizes, placements, instruction-set levels and processor counts. Always the
// whole memory around every image is compared, byte by byte, sources included.

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "support/guarded_buffer.h"
#include "support/settings.h"

namespace tqtest {

// A float and the numbers of floats: neighbours differ by one. NaN has none.
inline int64_t FloatKey(float x) {
    const auto bits = std::bit_cast<int32_t>(x);
    return bits >= 0 ? int64_t{bits} : -int64_t{bits & 0x7FFFFFFF} - 1;
}
inline float FloatOfKey(int64_t key) {
    return key >= 0 ? std::bit_cast<float>(static_cast<int32_t>(key))
                    : -std::bit_cast<float>(static_cast<int32_t>(-key - 1));
}
// `steps` floats further up.
inline float Neighbour(float x, int steps) { return FloatOfKey(FloatKey(x) + steps); }

inline std::vector<float> SpecialFloats() {
    using Limits = std::numeric_limits<float>;
    std::vector<float> values = {0.0f,
                                 -0.0f,
                                 Limits::quiet_NaN(),
                                 -Limits::quiet_NaN(),
                                 Limits::infinity(),
                                 -Limits::infinity(),
                                 Limits::denorm_min(),
                                 -Limits::denorm_min(),
                                 Limits::min() / 2,
                                 Limits::min(),
                                 -Limits::min(),
                                 Limits::max(),
                                 -Limits::max(),
                                 Limits::epsilon(),
                                 1e-10f,
                                 -1e-10f,
                                 1e-6f,
                                 1e10f,
                                 -1e10f,
                                 2147483520.0f,
                                 2147483648.0f,
                                 -2147483648.0f,
                                 -2147483904.0f,
                                 4294967296.0f,
                                 4294967300.0f * 60,
                                 8421504.0f,
                                 16777216.0f,
                                 359.99997f,
                                 0.01f,
                                 0.2f,
                                 0.5f,
                                 1.0f,
                                 255.0f,
                                 256.0f,
                                 300.0f / 255};
    for (int sector = -3; sector <= 9; ++sector)
        for (int steps = -3; steps <= 3; ++steps)
            values.push_back(Neighbour(60.0f * static_cast<float>(sector), steps));
    for (float base : {1.0f, 1e-10f, -1e-10f, 1.0f / 255})
        for (int steps : {-2, -1, 1, 2}) values.push_back(Neighbour(base, steps));
    return values;
}

// What stands in an image: the floats of a source are drawn accordingly.
enum class HsvContent {
    kBytes,
    kHue,
    kSaturation,
    kValue,  // 0 to 1
    kAlpha,
    kHsv255,  // hue, saturation, and value from 0 to 255, interleaved
    kPlaneSet255,
    kFloats,  // a destination
};

// Plausible values, values beyond their range, corners, and any bits at all.
class HsvFloats {
public:
    explicit HsvFloats(uint32_t seed) : m_state(seed * 2654435761u + 77) {}

    float Draw(HsvContent content, int64_t index, int64_t planeLength) {
        if (content == HsvContent::kHsv255)
            return index % 3 == 0 ? Hue() : index % 3 == 1 ? Ratio() : 255 * Ratio();
        if (content == HsvContent::kPlaneSet255)
            return index < planeLength ? Hue() : index < 2 * planeLength ? Ratio() : 255 * Ratio();
        return content == HsvContent::kHue ? Hue() : Ratio();
    }

private:
    uint32_t Next() {
        m_state = m_state * 1664525u + 1013904223u;
        return m_state >> 8;
    }
    float Unit() { return static_cast<float>(Next()) / 16777216.0f; }
    float Special() {
        static const std::vector<float> specials = SpecialFloats();
        return specials[Next() % specials.size()];
    }
    float AnyBits() { return std::bit_cast<float>(Next() << 16 ^ Next()); }
    float Hue() {
        switch (Next() % 16) {
            case 0:
                return Special();
            case 1:
                return AnyBits();
            case 2:
                return Unit() * 600 - 120;
            case 3:
                return static_cast<float>(Next() % 7) * 60;
            case 4:
                return static_cast<float>(Next() % 361);
            default:
                return Unit() * 360;
        }
    }
    float Ratio() {
        switch (Next() % 16) {
            case 0:
                return Special();
            case 1:
                return AnyBits();
            case 2:
                return Unit() * 3 - 1;
            case 3:
                return 0;
            case 4:
                return 1;
            case 5:
                return static_cast<float>(Next() % 256) / 255;
            case 6:
                return (static_cast<float>(Next() % 256) + 0.5f) / 255;
            default:
                return Unit();
        }
    }

    uint32_t m_state;
};

// One image of a form. group is the elements of a group of pixels.
struct HsvImageKind {
    HsvContent content;
    int group;
    bool written;
    int tail = 0;  // elements written behind a row

    int ElementSize() const { return content == HsvContent::kBytes ? 1 : 4; }
    bool IsPlaneSet() const { return content == HsvContent::kPlaneSet255; }
};

// A form's argument: the stride counts elements.
struct HsvImage {
    int stride;
    uint8_t* first;

    unsigned char* Bytes() const { return first; }
    float* Floats() const { return reinterpret_cast<float*>(first); }
};

struct HsvForm {
    using Function = void (*)(int width, int height, const HsvImage* images);
    using Task = int (*)(int width, int height, const HsvImage* images);

    const char* name;
    int groupPixels;
    std::vector<HsvImageKind> images;
    Function plain;
    Function multiThread;  // null where there is none
    Task runTask;          // null where there is none
    Function reference;

    // Elements of a row. Of a source only whole groups are there to be read.
    int Row(const HsvImageKind& kind, int width, int height) const {
        if (kind.IsPlaneSet()) return height < 1 ? 0 : 3 * width * height;
        const int groups = (width + (kind.written ? groupPixels - 1 : 0)) / groupPixels;
        return groups * kind.group;
    }
};

// The memory of a form's images, twice: what the form works on, against guards, and a model of it.
class HsvStage {
public:
    HsvStage(const HsvForm& form, GuardedBuffer::Side side, int maxWidth, int maxHeight)
        : m_form(form), m_side(side) {
        for (const HsvImageKind& kind : form.images) {
            const int row = form.Row(kind, maxWidth, kind.IsPlaneSet() ? maxHeight : 1);
            const int rows = kind.IsPlaneSet() ? 1 : maxHeight;
            const int elements = (row + kMaxPadding) * rows + kMaxGap + kind.tail;
            m_buffers.push_back(
                std::make_unique<GuardedBuffer>(elements * kind.ElementSize(), side));
            m_before.emplace_back(m_buffers.back()->size());
        }
        m_places.resize(form.images.size());
    }

    // Lays the images out and fills all memory. With padding < 0 each image has its own.
    void Place(int width, int height, int placement, int padding, bool bottomUp, uint32_t seed) {
        constexpr int kGaps[8] = {0, 1, 2, 3, 5, 7, 11, 13};
        constexpr int kPaddings[8] = {0, 5, 1, 3, 0, 2, 7, 4};
        static_assert(kMaxGap >= 13 && kMaxPadding >= 7);
        for (size_t i = 0; i < m_form.images.size(); ++i) {
            const HsvImageKind& kind = m_form.images[i];
            const int row = m_form.Row(kind, width, height);
            const int rows = kind.IsPlaneSet() || height < 1 ? 1 : height;
            const int gap = kGaps[(placement + 3 * i) % 8];
            const int stride = row + (padding < 0 ? kPaddings[(placement + 5 * i) % 8] : padding);
            const int length = stride * (rows - 1) + row + kind.tail;
            const int count = static_cast<int>(m_buffers[i]->size()) / kind.ElementSize();
            const int begin = m_side == GuardedBuffer::kStart ? gap : count - gap - length;
            const bool down = !bottomUp || kind.IsPlaneSet() || (placement + i) % 4 == 3;
            const Spot place = {down ? begin : begin + stride * (rows - 1),
                                down ? stride : -stride};
            m_places[i] = place;
            FillHostile(m_before[i].data(), m_before[i].size(), seed + 100 * i);
            if (kind.ElementSize() == 4 && !kind.written) {
                HsvFloats floats(seed + i);
                for (int y = 0; y < rows; ++y)
                    for (int x = 0; x < row; ++x) {
                        const float value = floats.Draw(kind.content, x, width * height);
                        std::memcpy(m_before[i].data() + 4 * (place.first + y * place.stride + x),
                                    &value, 4);
                    }
            }
        }
    }

    // What the reference leaves.
    void Expect(int width, int height) {
        m_expected = m_before;
        std::vector<HsvImage> images;
        for (size_t i = 0; i < m_places.size(); ++i)
            images.push_back(ImageIn(m_expected[i].data(), i));
        m_form.reference(width, height, images.data());
    }

    // Runs a function on fresh memory and compares all of it.
    template <class Function>
    testing::AssertionResult Matches(Function function, int width, int height) {
        const std::vector<HsvImage> images = Fresh();
        function(width, height, images.data());
        for (size_t i = 0; i < m_buffers.size(); ++i) {
            const uint8_t *actual = m_buffers[i]->data(), *expected = m_expected[i].data();
            const size_t size = m_buffers[i]->size();
            if (std::memcmp(actual, expected, size) == 0) continue;
            int64_t at = 0;
            while (actual[at] == expected[at]) ++at;
            const int64_t element = m_form.images[i].ElementSize();
            return testing::AssertionFailure()
                   << m_form.name << ", " << width << " x " << height << ", image " << i
                   << ", stride " << images[i].stride << ": byte "
                   << at - m_places[i].first * element << " from its first is " << int{actual[at]}
                   << ", not " << int{expected[at]};
        }
        return testing::AssertionSuccess();
    }

    // Runs a function and takes what it leaves for the model.
    void ExpectResultOf(HsvForm::Function function, int width, int height) {
        const std::vector<HsvImage> images = Fresh();
        function(width, height, images.data());
        m_expected.clear();
        for (const auto& buffer : m_buffers)
            m_expected.emplace_back(buffer->data(), buffer->data() + buffer->size());
    }

private:
    static constexpr int kMaxGap = 13, kMaxPadding = 7;
    struct Spot {
        int first, stride;
    };

    HsvImage ImageIn(uint8_t* data, size_t i) const {
        return {m_places[i].stride, data + m_places[i].first * m_form.images[i].ElementSize()};
    }
    std::vector<HsvImage> Fresh() {
        std::vector<HsvImage> images;
        for (size_t i = 0; i < m_buffers.size(); ++i) {
            std::memcpy(m_buffers[i]->data(), m_before[i].data(), m_before[i].size());
            images.push_back(ImageIn(m_buffers[i]->data(), i));
        }
        return images;
    }

    const HsvForm& m_form;
    GuardedBuffer::Side m_side;
    std::vector<std::unique_ptr<GuardedBuffer>> m_buffers;
    std::vector<std::vector<uint8_t>> m_before, m_expected;
    std::vector<Spot> m_places;
};

// Every level, widths 1 to 40, heights 1 to 4; images right behind and right before a guard and up
// to 13 elements from it; dense and padded rows; top-down and bottom-up.
inline void ExpectEqualsReference(const HsvForm& form) {
    Settings settings;
    for (auto side : {GuardedBuffer::kEnd, GuardedBuffer::kStart}) {
        HsvStage stage(form, side, 40, 4);
        for (int width = 1; width <= 40; ++width)
            for (int height = 1; height <= 4; ++height)
                for (int placement = 0; placement < 8; ++placement) {
                    stage.Place(width, height, placement, placement == 5 ? 0 : -1,
                                placement % 2 == 1, width * 64 + height * 8 + placement);
                    stage.Expect(width, height);
                    for (tq::IsaLevel level : RunnableIsaLevels()) {
                        settings.Use(level);
                        ASSERT_TRUE(stage.Matches(form.plain, width, height))
                            << "side " << side << ", placement " << placement << ", level "
                            << tq::IsaLevelName(level);
                    }
                }
    }
}

// Every processor count from 1 to 16, heights around them and below 1, dense and padded rows,
// top-down and bottom-up.
inline void ExpectMultiThreadEqualsPlain(const HsvForm& form) {
    Settings settings;
    for (auto [width, side] : {std::pair{1, GuardedBuffer::kEnd},
                               {5, GuardedBuffer::kStart},
                               {34, GuardedBuffer::kEnd}}) {
        HsvStage stage(form, side, width, 33);
        for (int height : {-3, 0, 1, 2, 7, 8, 9, 16, 17, 33})
            for (int placement : {0, 1, 2, 3}) {
                stage.Place(width, height, placement, placement < 2 ? 0 : -1, placement % 2,
                            width * 100 + height + placement);
                stage.ExpectResultOf(form.plain, width, height);
                for (unsigned processors = 1; processors <= 16; ++processors) {
                    settings.UseProcessors(processors);
                    ASSERT_TRUE(stage.Matches(form.multiThread, width, height))
                        << "placement " << placement << ", " << processors << " processors";
                }
            }
    }
}

// A task with its fields set does the plain form's work, and Run returns 1.
inline void ExpectTaskEqualsReference(const HsvForm& form) {
    HsvStage stage(form, GuardedBuffer::kEnd, 21, 3);
    for (int placement = 0; placement < 8; ++placement) {
        stage.Place(21, 3, placement, -1, placement % 2 == 1, placement);
        stage.Expect(21, 3);
        EXPECT_TRUE(stage.Matches(
            [&](int width, int height, const HsvImage* images) {
                EXPECT_EQ(form.runTask(width, height, images), 1) << form.name;
            },
            21, 3));
    }
}

// Sizes without a whole group, plain and MultiThread: nothing is written.
inline void ExpectEmptySizesWriteNothing(const HsvForm& form) {
    Settings settings;
    std::vector<std::pair<int, int>> sizes = {{0, 1}, {0, 3},  {-1, 1}, {-2, 3}, {-70, 2},
                                              {2, 0}, {2, -1}, {2, -9}, {0, 0},  {-5, -5}};
    if (form.groupPixels == 2) sizes.insert(sizes.end(), {{1, 1}, {1, 3}});
    HsvStage stage(form, GuardedBuffer::kEnd, 4, 4);
    stage.Place(4, 4, 0, -1, false, 1);
    stage.ExpectResultOf([](int, int, const HsvImage*) {}, 4, 4);
    for (auto [width, height] : sizes) {
        EXPECT_TRUE(stage.Matches(form.plain, width, height));
        for (unsigned processors : {1u, 2u, 8u}) {
            settings.UseProcessors(processors);
            if (form.multiThread != nullptr) {
                EXPECT_TRUE(stage.Matches(form.multiThread, width, height))
                    << processors << " processors";
            }
        }
    }
}

}  // namespace tqtest
