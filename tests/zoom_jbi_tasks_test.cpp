// JBI zoom: the task of the variance map and the task of the interpolation, run by hand.

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <climits>
#include <cstring>
#include <type_traits>
#include <utility>
#include <vector>

#include "reference/zoom_jbi_reference.h"
#include "support/guarded_buffer.h"
#include "support/settings.h"
#include "support/task_fields.h"
#include "support/zoom_check.h"
#include "zoom/zoom_tasks.h"

namespace {

using tqtest::Content;
using tqtest::GuardedBuffer;
using tqtest::GuardedImage;
using tqtest::ZoomSizes;

bool SameBits(float a, float b) { return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b); }

// ---- The task of the variance map ---------------------------------------------------------------

TEST(JbiSigmaTask, FieldsStandInOrder) {
    using Task = CZJBISigmaTask;
    static_assert(std::is_base_of_v<CTQIPLTaskBase, Task>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcWidth), int>);
    static_assert(std::is_same_v<decltype(Task::m_nRows), int>);
    static_assert(std::is_same_v<decltype(Task::m_nStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pRows), unsigned char*>);
    static_assert(std::is_same_v<decltype(Task::m_nMapStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pMap), float*>);
    const Task task;
    const void* const fields[] = {&task,         &task.m_nSrcWidth,  &task.m_nRows, &task.m_nStride,
                                  &task.m_pRows, &task.m_nMapStride, &task.m_pMap};
    tqtest::ExpectAddressesRise(fields);
}

constexpr float kUntouched = -123.0f;

// A plane of as many rows as the windows need and no more, and a map of as many.
void ExpectSigmaTask(int width, int windows, tqtest::ImageLayout layout, int mapPadding) {
    const int rows = windows + 4, mapStride = width + mapPadding;
    GuardedImage plane(width, rows, layout);
    tqtest::Fill(plane.Memory(), plane.Size(),
                 windows % 2 == 0 ? Content::kNoise : Content::kHostile,
                 static_cast<uint32_t>(width * 31 + windows));
    const size_t count = static_cast<size_t>(mapStride) * (rows - 1) + width;
    GuardedBuffer map(count * sizeof(float));
    float* const floats = reinterpret_cast<float*>(map.data());
    std::fill(floats, floats + count, kUntouched);
    std::vector<float> expected(floats, floats + count);
    const tqref::ZoomSource source{width, rows, plane.Stride(), plane.First()};
    const std::vector<float> packed = tqref::JbiMap(source);
    for (int r = 2; r < rows - 2; ++r)
        for (int c = 2; c < width - 2; ++c) expected[r * mapStride + c] = packed[r * width + c];
    CZJBISigmaTask task;
    task.m_nSrcWidth = width;
    task.m_nRows = windows;
    task.m_nStride = plane.Stride();
    task.m_pRows = plane.First();
    task.m_nMapStride = mapStride;
    task.m_pMap = floats;
    CTQIPLTaskBase& base = task;
    ASSERT_EQ(base.Run(), 1);
    for (size_t i = 0; i < count; ++i)
        ASSERT_TRUE(SameBits(floats[i], expected[i]))
            << width << " columns, " << windows << " windows, entry " << i << ": " << floats[i]
            << ", not " << expected[i];
}

TEST(JbiSigmaTask, WritesOneValueForEachWindow) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (int width = 1; width <= 40; ++width)
            for (int windows : {1, 2, 3, 8}) {
                ASSERT_NO_FATAL_FAILURE(ExpectSigmaTask(width, windows, {}, 0));
                ASSERT_NO_FATAL_FAILURE(
                    ExpectSigmaTask(width, windows, {GuardedBuffer::kEnd, 3, true}, 5));
                ASSERT_NO_FATAL_FAILURE(
                    ExpectSigmaTask(width, windows, {GuardedBuffer::kStart, 2}, 1));
            }
        ASSERT_NO_FATAL_FAILURE(ExpectSigmaTask(1000, 100, {}, 0));
    }
}

// Not even the first five rows may be read.
TEST(JbiSigmaTask, NoWindowsDoNothingAndReturn1) {
    tqtest::Forbidden forbidden;
    for (int windows : {0, -1, -4, INT_MIN}) {
        CZJBISigmaTask task;
        task.m_nSrcWidth = 9;
        task.m_nRows = windows;
        task.m_nStride = 9;
        task.m_pRows = forbidden.Pointer();
        task.m_nMapStride = 9;
        task.m_pMap = reinterpret_cast<float*>(forbidden.Pointer());
        EXPECT_EQ(task.Run(), 1) << windows;
        task.m_nRows = 3;
        task.m_nSrcWidth = windows;
        EXPECT_EQ(task.Run(), 1) << windows;
    }
}

// ---- The task of the interpolation --------------------------------------------------------------

TEST(JbiTask, FieldsStandInOrder) {
    using Task = CZJBITask;
    static_assert(std::is_base_of_v<CTQIPLTaskBase, Task>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcWidth), int>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcHeight), int>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pSrc), unsigned char*>);
    static_assert(std::is_same_v<decltype(Task::m_nLumStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pLum), unsigned char*>);
    static_assert(std::is_same_v<decltype(Task::m_nMapStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pMap), float*>);
    static_assert(std::is_same_v<decltype(Task::m_nDstWidth), int>);
    static_assert(std::is_same_v<decltype(Task::m_nDstHeight), int>);
    static_assert(std::is_same_v<decltype(Task::m_nDstStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pDst), unsigned char*>);
    static_assert(std::is_same_v<decltype(Task::m_nGuideStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pGuide), unsigned char*>);
    static_assert(std::is_same_v<decltype(Task::m_nRowBegin), int>);
    static_assert(std::is_same_v<decltype(Task::m_nRowEnd), int>);
    static_assert(sizeof(Task::m_nChannelMode) == 4);
    const Task task;
    const void* const fields[] = {
        &task,           &task.m_nSrcWidth,    &task.m_nSrcHeight, &task.m_nSrcStride,
        &task.m_pSrc,    &task.m_nLumStride,   &task.m_pLum,       &task.m_nMapStride,
        &task.m_pMap,    &task.m_nDstWidth,    &task.m_nDstHeight, &task.m_nDstStride,
        &task.m_pDst,    &task.m_nGuideStride, &task.m_pGuide,     &task.m_nRowBegin,
        &task.m_nRowEnd, &task.m_nChannelMode};
    tqtest::ExpectAddressesRise(fields);
}

// A task with a guide, a plane and a map of the test's own making, each with padding of its own.
class TaskStage {
public:
    TaskStage(int channels, const ZoomSizes& s)
        : m_channels(channels),
          m_sizes(s),
          m_src(s.srcWidth * channels, s.srcHeight, {GuardedBuffer::kEnd, 1}),
          m_lum(s.srcWidth, s.srcHeight, {GuardedBuffer::kEnd, 2}),
          m_guide(s.dstWidth, s.dstHeight, {GuardedBuffer::kEnd, 3}),
          m_dst(s.dstWidth * channels, s.dstHeight, {GuardedBuffer::kEnd, 5}),
          m_mapStride(s.srcWidth + 3),
          m_map(static_cast<size_t>(m_mapStride * (s.srcHeight - 1) + s.srcWidth) * sizeof(float)) {
        Set(Content::kNoise, 1, 0.0f);
    }
    void Set(Content content, uint32_t seed, float sigma) {
        tqtest::Fill(m_src.Memory(), m_src.Size(), content, seed);
        tqtest::Fill(m_lum.Memory(), m_lum.Size(), content, seed + 1);
        tqtest::Fill(m_guide.Memory(), m_guide.Size(), content, seed + 2);
        tqtest::Fill(m_dst.Memory(), m_dst.Size(), Content::kNoise, seed + 3);
        SetMap(sigma);
    }
    void SetMap(float sigma) { std::fill(Map(), Map() + m_map.size() / sizeof(float), sigma); }
    float* Map() { return reinterpret_cast<float*>(m_map.data()); }
    size_t MapSize() const { return m_map.size() / sizeof(float); }
    GuardedImage& Source() { return m_src; }
    GuardedImage& Guide() { return m_guide; }
    // The plane that is compared with the guide.
    GuardedImage& Plane() { return m_channels == 1 ? m_src : m_lum; }
    int Pixel(int x, int y, int channel = 0) { return m_dst.Row(y)[x * m_channels + channel]; }

    int Run(int rowBegin, int rowEnd) {
        CZJBITask task;
        task.m_nSrcWidth = m_sizes.srcWidth;
        task.m_nSrcHeight = m_sizes.srcHeight;
        task.m_nSrcStride = m_src.Stride();
        task.m_pSrc = m_src.First();
        task.m_nLumStride = m_channels == 1 ? 0 : m_lum.Stride();
        task.m_pLum = m_channels == 1 ? nullptr : m_lum.First();
        task.m_nMapStride = m_mapStride;
        task.m_pMap = Map();
        task.m_nDstWidth = m_sizes.dstWidth;
        task.m_nDstHeight = m_sizes.dstHeight;
        task.m_nDstStride = m_dst.Stride();
        task.m_pDst = m_dst.First();
        task.m_nGuideStride = m_guide.Stride();
        task.m_pGuide = m_guide.First();
        task.m_nRowBegin = rowBegin;
        task.m_nRowEnd = rowEnd;
        task.m_nChannelMode = m_channels == 1 ? 0 : 1;
        CTQIPLTaskBase& base = task;
        return base.Run();
    }
    void ExpectEqualsReference(int rowBegin, int rowEnd) {
        std::vector<uint8_t> expected = m_dst.Copy();
        const tqref::ZoomSource src{m_sizes.srcWidth, m_sizes.srcHeight, m_src.Stride(),
                                    m_src.First()};
        const tqref::ZoomSource lum{m_sizes.srcWidth, m_sizes.srcHeight, m_lum.Stride(),
                                    m_lum.First()};
        const tqref::ZoomSource guide{m_sizes.dstWidth, m_sizes.dstHeight, m_guide.Stride(),
                                      m_guide.First()};
        tqref::JbiRows(m_channels, {src, m_channels == 1 ? src : lum, m_mapStride, Map(), guide},
                       {m_sizes.dstWidth, m_sizes.dstHeight, m_dst.Stride(), expected.data()},
                       rowBegin, rowEnd);
        ASSERT_EQ(Run(rowBegin, rowEnd), 1);
        ASSERT_EQ(std::memcmp(m_dst.Memory(), expected.data(), expected.size()), 0)
            << m_channels << " channels, " << m_sizes.srcWidth << " x " << m_sizes.srcHeight
            << " to " << m_sizes.dstWidth << " x " << m_sizes.dstHeight << ", rows " << rowBegin
            << " to " << rowEnd << ", level " << tq::IsaLevelName(tq::CurrentIsaLevel()) << ": "
            << tqtest::FirstDifference(m_dst.Memory(), expected, m_dst.FirstOffset(),
                                       m_dst.Stride());
    }

private:
    int m_channels;
    ZoomSizes m_sizes;
    GuardedImage m_src, m_lum, m_guide, m_dst;
    int m_mapStride;
    GuardedBuffer m_map;
};

TEST(JbiTask, WritesItsRowsAndReturns1) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (int channels : {1, 4})
            for (const ZoomSizes& s : {ZoomSizes{9, 6, 13, 9},
                                       {3, 9, 8, 12},
                                       {1, 1, 2, 4},
                                       {2, 2, 3, 3},
                                       {30, 5, 37, 6}})
                for (int begin = 1; begin <= s.dstHeight - 1; ++begin)
                    for (int end = begin; end <= s.dstHeight - 1; ++end) {
                        TaskStage stage(channels, s);
                        stage.Set(Content::kNoise, static_cast<uint32_t>(begin * 20 + end), 0.0f);
                        for (size_t i = 0; i < stage.MapSize(); ++i)
                            stage.Map()[i] = static_cast<float>(i % 7) * 150.0f;
                        ASSERT_NO_FATAL_FAILURE(stage.ExpectEqualsReference(begin, end));
                    }
    }
}

// From variances that let nothing through but the guide's own value to those that let all through.
TEST(JbiTask, AnyVarianceEqualsTheReference) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (int channels : {1, 4}) {
            TaskStage stage(channels, {23, 7, 41, 11});
            uint32_t seed = 0;
            for (float sigma : {0.0f, -0.0f, 1e-38f, 1e-42f, 1e-6f, 0.02f, 0.5f, 3.0f, 20.0f, 63.0f,
                                64.0f, 200.0f, 1000.0f, 3000.0f, 8127.0f, 1e6f})
                for (Content content : {Content::kNoise, Content::kHostile}) {
                    stage.Set(content, ++seed, sigma);
                    ASSERT_NO_FATAL_FAILURE(stage.ExpectEqualsReference(1, 10)) << sigma;
                }
        }
    }
}

// The differences from the guide are 100 to 131 and the exponents -64 to -108 or so: weights on
// both sides of the tables' end and down to the denormals, some of which are lost beside others.
// Black channels among them.
TEST(JbiTask, WeightsOfAnySizeAddUpInOrder) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (int channels : {1, 4}) {
            TaskStage stage(channels, {23, 7, 41, 11});
            uint32_t seed = 0;
            for (float sigma = 850.0f; sigma < 2800.0f; sigma += 53.0f) {
                stage.Set(Content::kNoise, ++seed, sigma);
                std::memset(stage.Guide().Memory(), 0, stage.Guide().Size());
                if (channels == 4)
                    for (size_t i = 0; i < stage.Source().Size(); ++i)
                        if (uint8_t& byte = stage.Source().Memory()[i]; byte < 128) byte &= 1;
                for (size_t i = 0; i < stage.Plane().Size(); ++i) {
                    uint8_t& byte = stage.Plane().Memory()[i];
                    byte = static_cast<uint8_t>(100 + byte % 32);
                    if (seed % 4 == 0 && i % 5 != 0) byte = 250;
                }
                ASSERT_NO_FATAL_FAILURE(stage.ExpectEqualsReference(1, 10)) << sigma;
            }
        }
    }
}

// The pixel's place in the source is column and row 3 of 7 x 7. The guide is 100 around it, but for
// the pixels below and right of it.
int PixelWithGradient(int channels, int down, int right) {
    TaskStage stage(channels, {7, 7, 21, 21});
    stage.SetMap(10000.0f);
    for (GuardedImage* samples : {&stage.Source(), &stage.Plane()})
        std::memset(samples->Memory(), 200, samples->Size());
    for (int row = 0; row < 7; ++row) {
        std::memset(stage.Source().Row(row) + 3 * channels, 100, static_cast<size_t>(channels));
        stage.Plane().Row(row)[3] = 100;
    }
    std::memset(stage.Guide().Memory(), 100, stage.Guide().Size());
    stage.Guide().Row(11)[10] = static_cast<uint8_t>(100 + down);
    stage.Guide().Row(10)[11] = static_cast<uint8_t>(100 + right);
    EXPECT_EQ(stage.Run(10, 11), 1);
    return stage.Pixel(10, 10, channels - 1);
}

// Twenty samples of 200 against five of 100, at a difference of 10000 in a variance of 10000: they
// weigh e^-10 each at a gradient of 50, and e^-1 at 51.
TEST(JbiTask, AGradientOf50IsFlatAnd51IsNot) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels())
        for (int channels : {1, 4}) {
            settings.Use(level);
            for (auto [down, right] : {std::pair{25, 25}, {50, 0}, {-50, 0}, {0, -50}, {-24, 26}})
                EXPECT_EQ(PixelWithGradient(channels, down, right), 100)
                    << down << ", " << right << ", " << tq::IsaLevelName(level);
            for (auto [down, right] : {std::pair{25, 26}, {26, 25}, {-51, 0}, {0, 51}, {-25, 26}})
                EXPECT_EQ(PixelWithGradient(channels, down, right), 153)
                    << down << ", " << right << ", " << tq::IsaLevelName(level);
        }
}

TEST(JbiTask, AVarianceOf0IgnoresTheGuide) {
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels())
        for (int channels : {1, 4}) {
            tqtest::Settings settings;
            settings.Use(level);
            TaskStage stage(channels, {9, 7, 20, 15});
            std::memset(stage.Source().Memory(), 128, stage.Source().Size());
            std::memset(stage.Guide().Memory(), 0, stage.Guide().Size());
            ASSERT_EQ(stage.Run(1, 14), 1);
            for (int y = 1; y < 14; ++y)
                for (int x = 1; x < 19; ++x) {
                    // A mean that falls short by a rounding is cut.
                    EXPECT_GE(stage.Pixel(x, y), 127);
                    EXPECT_LE(stage.Pixel(x, y), 128);
                }
        }
}

// Every exponent is below -1000000: no sample is left, and zero by zero gives the byte 0.
TEST(JbiTask, WhereAllWeightsVanishTheByteIs0) {
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels())
        for (int channels : {1, 4}) {
            tqtest::Settings settings;
            settings.Use(level);
            TaskStage stage(channels, {9, 7, 20, 15});
            stage.Set(Content::kNoise, 1, 0.001f);
            for (GuardedImage* samples : {&stage.Source(), &stage.Plane()})
                for (size_t i = 0; i < samples->Size(); ++i) samples->Memory()[i] |= 128;
            std::memset(stage.Guide().Memory(), 0, stage.Guide().Size());
            ASSERT_EQ(stage.Run(1, 14), 1);
            for (int y = 1; y < 14; ++y)
                for (int x = 1; x < 19; ++x)
                    for (int channel = 0; channel < channels; ++channel)
                        ASSERT_EQ(stage.Pixel(x, y, channel), 0) << x << ", " << y;
        }
}

// No pointer may be followed.
TEST(JbiTask, AnotherChannelModeDoesNothingAndReturns1) {
    tqtest::Forbidden forbidden;
    for (int mode : {2, 3, -1, INT_MAX, INT_MIN}) {
        CZJBITask task;
        task.m_nSrcWidth = 9;
        task.m_nSrcHeight = 9;
        task.m_nSrcStride = 36;
        task.m_pSrc = forbidden.Pointer();
        task.m_nLumStride = 9;
        task.m_pLum = forbidden.Pointer();
        task.m_nMapStride = 9;
        task.m_pMap = reinterpret_cast<float*>(forbidden.Pointer());
        task.m_nDstWidth = 18;
        task.m_nDstHeight = 18;
        task.m_nDstStride = 72;
        task.m_pDst = forbidden.Pointer();
        task.m_nGuideStride = 18;
        task.m_pGuide = forbidden.Pointer();
        task.m_nRowBegin = 1;
        task.m_nRowEnd = 17;
        task.m_nChannelMode = mode;
        EXPECT_EQ(task.Run(), 1) << mode;
    }
}

}  // namespace
