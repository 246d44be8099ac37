// Linear zoom: known values, bad arguments, the reference at every level, bands and band tasks.

#include <gtest/gtest.h>
#include <tqipl/zoom.h>

#include <cstring>
#include <utility>
#include <vector>

#include "reference/zoom_reference.h"
#include "support/guarded_buffer.h"
#include "support/settings.h"
#include "support/zoom_preamble.h"
#include "support/zoom_threads.h"
#include "zoom/zoom_tasks.h"

namespace {

using tqtest::Content;
using tqtest::GuardedBuffer;
using tqtest::GuardedImage;
using tqtest::ZoomForm;
using tqtest::ZoomPreamble;
using tqtest::ZoomSizes;

const ZoomForm kPlainC1 = {"IPL_ZoomLinear_8u_C1R", IPL_ZoomLinear_8u_C1R, tqref::ZoomLinearC1, 1};
const ZoomForm kPlainC4 = {"IPL_ZoomLinear_8u_C4R", IPL_ZoomLinear_8u_C4R, tqref::ZoomLinearC4, 4};
const ZoomForm kThreadedC1 = {"IPL_ZoomLinearMultiThread_8u_C1R", IPL_ZoomLinearMultiThread_8u_C1R,
                              tqref::ZoomLinearC1, 1};
const ZoomForm kThreadedC4 = {"IPL_ZoomLinearMultiThread_8u_C4R", IPL_ZoomLinearMultiThread_8u_C4R,
                              tqref::ZoomLinearC4, 4};
const std::vector<ZoomForm> kPlainForms = {kPlainC1, kPlainC4};
const std::vector<ZoomForm> kThreadedForms = {kThreadedC1, kThreadedC4};
const std::vector<ZoomForm> kForms = {kPlainC1, kPlainC4, kThreadedC1, kThreadedC4};

// Known by hand, so at every level.
void ExpectLinear(const ZoomSizes& sizes, const std::vector<int>& source,
                  const std::vector<int>& expected) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        SCOPED_TRACE(tq::IsaLevelName(level));
        settings.Use(level);
        tqtest::ExpectZoom(kForms, sizes, source, expected);
    }
}

// One pixel of a destination that is made from a 2 x 2 source.
void ExpectLinearPixel(int dstWidth, int dstHeight, int column, int row,
                       const std::vector<int>& source, int expected) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (const ZoomForm& form : kForms) {
            const bool four = form.channels == 4;
            const std::vector<int> result = tqtest::ZoomBytes(
                form, {2, 2, dstWidth, dstHeight}, four ? tqtest::InFourChannels(source) : source);
            for (int channel = 0; channel < form.channels; ++channel)
                EXPECT_EQ(result[(row * dstWidth + column) * form.channels + channel], expected)
                    << form.name << ", level " << tq::IsaLevelName(level);
        }
    }
}

// ---- Values known by hand -----------------------------------------------------------------------

// Positions -0.25, 0.25, 0.75 and 1.25, the first and the last clamped to the source.
TEST(ZoomLinear, TwoColumnsToFourGive0And25And75And100) {
    ExpectLinear({2, 1, 4, 1}, {0, 100}, {0, 25, 75, 100});
}

TEST(ZoomLinear, TwoRowsToFourGive0And25And75And100) {
    ExpectLinear({1, 2, 1, 4}, {0, 100}, {0, 25, 75, 100});
}

TEST(ZoomLinear, FiveColumnsToOneSampleColumn2) {
    ExpectLinear({5, 1, 1, 1}, {1, 2, 99, 4, 5}, {99});
}

TEST(ZoomLinear, FiveRowsToOneSampleRow2) { ExpectLinear({1, 5, 1, 1}, {1, 2, 99, 4, 5}, {99}); }

TEST(ZoomLinear, HalfwayBetween10And11Is10) {
    ExpectLinear({2, 1, 1, 1}, {10, 11}, {10});
    ExpectLinear({2, 1, 1, 1}, {11, 10}, {10});
    ExpectLinear({1, 2, 1, 1}, {10, 11}, {10});
    ExpectLinear({2, 2, 1, 1}, {10, 11, 10, 11}, {10});
    ExpectLinear({2, 2, 1, 1}, {10, 11, 11, 11}, {10});
}

TEST(ZoomLinear, TheMiddleOfFourPixelsIsTheirTruncatedMean) {
    ExpectLinear({2, 2, 1, 1}, {0, 255, 255, 0}, {127});
    ExpectLinear({2, 2, 1, 1}, {255, 255, 255, 254}, {254});
    ExpectLinear({2, 2, 1, 1}, {0, 0, 0, 4}, {1});
}

TEST(ZoomLinear, TwoByTwoToFourByFourBlendsBothAxes) {
    ExpectLinear({2, 2, 4, 4}, {0, 64, 128, 192},
                 {0, 16, 48, 64,      //
                  32, 48, 80, 96,     //
                  96, 112, 144, 160,  //
                  128, 144, 176, 192});
}

TEST(ZoomLinear, AConstantImageStaysConstantAtEverySize) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (int value : {0, 1, 127, 128, 254, 255})
            for (const ZoomSizes& sizes : {ZoomSizes{1, 1, 9, 9},
                                           {3, 2, 37, 5},
                                           {37, 5, 3, 2},
                                           {7, 7, 13, 11},
                                           {64, 3, 65, 7},
                                           {100, 3, 33, 2}}) {
                const std::vector<int> source(sizes.srcWidth * sizes.srcHeight, value);
                const std::vector<int> expected(sizes.dstWidth * sizes.dstHeight, value);
                tqtest::ExpectZoom(kForms, sizes, source, expected);
            }
    }
}

TEST(ZoomLinear, ASourceOfOneColumnIsConstantAlongEachRow) {
    ExpectLinear({1, 2, 5, 4}, {0, 100}, {0,   0,   0,   0,   0,   //
                                          25,  25,  25,  25,  25,  //
                                          75,  75,  75,  75,  75,  //
                                          100, 100, 100, 100, 100});
}

TEST(ZoomLinear, ASourceOfOneRowIsConstantDownEachColumn) {
    ExpectLinear({2, 1, 4, 3}, {0, 100}, {0, 25, 75, 100, 0, 25, 75, 100, 0, 25, 75, 100});
}

TEST(ZoomLinear, OneEqualAxisIsTakenAsItStands) {
    ExpectLinear({3, 2, 3, 1}, {10, 20, 30, 11, 40, 30}, {10, 30, 30});
    ExpectLinear({2, 3, 1, 3}, {10, 11, 20, 40, 30, 30}, {10, 30, 30});
}

TEST(ZoomLinear, FourChannelsAreScaledAlikeAndApart) {
    const std::vector<int> source = {0, 10, 200, 30, 100, 110, 20, 31};
    for (const ZoomForm& form : {kPlainC4, kThreadedC4}) {
        EXPECT_EQ(tqtest::ZoomBytes(form, {2, 1, 1, 1}, source),
                  (std::vector<int>{50, 60, 110, 30}))
            << form.name;
        EXPECT_EQ(tqtest::ZoomBytes(form, {2, 1, 4, 1}, source),
                  (std::vector<int>{0, 10, 200, 30,   //
                                    25, 35, 155, 30,  //
                                    75, 85, 65, 30,   //
                                    100, 110, 20, 31}))
            << form.name;
    }
}

// Positions 32.8, 99.5 and 166.2: everything but six of the 200 columns may be anything.
TEST(ZoomLinear, AStrongReductionSkipsPixels) {
    for (int other : {0, 255}) {
        std::vector<int> source(200, other);
        for (int column : {32, 33, 99, 100, 166, 167}) source[column] = 40 + column / 10;
        ExpectLinear({200, 1, 3, 1}, source, {43, 49, 56});
    }
}

// Fractions 0.5 or 0.75 across, 0.1 or 0.9 down. The exact results are 31, 128, 43, 64, 27 and 28:
// single precision misses the last two by a bit, and other orders of the sum miss the others.
TEST(ZoomLinear, EachStepOfTheSumIsRoundedInItsOrder) {
    ExpectLinearPixel(3, 5, 1, 1, {1, 54, 78, 47}, 31);
    ExpectLinearPixel(3, 5, 1, 1, {51, 211, 150, 52}, 128);
    ExpectLinearPixel(4, 5, 2, 3, {34, 139, 132, 3}, 43);
    ExpectLinearPixel(3, 5, 1, 3, {218, 54, 65, 47}, 64);
    ExpectLinearPixel(3, 5, 1, 1, {18, 4, 183, 159}, 26);
    ExpectLinearPixel(3, 5, 1, 1, {5, 19, 115, 229}, 27);
}

// Here the sum is -2^-16. It is cut toward zero and does not become 255.
TEST(ZoomLinear, AValueThatRoundingPushesBelowZeroIsStoredAsZero) {
    ExpectLinearPixel(97, 122, 72, 91, {172, 0, 0, 0}, 0);
    ExpectLinearPixel(82, 225, 61, 166, {159, 0, 0, 0}, 0);
}

// The position of index 99990 is 69992.85, but single precision holds it as 69992 and 109/128
// there: 217 in place of 216.
TEST(ZoomLinear, PositionsAreRoundedToSinglePrecision) {
    std::vector<int> source(70000);
    for (int i = 69993; i < 70000; ++i) source[i] = 255;
    for (const ZoomForm& form : {kPlainC1, kThreadedC1}) {
        EXPECT_EQ(tqtest::ZoomBytes(form, {70000, 1, 100000, 1}, source)[99990], 217) << form.name;
        EXPECT_EQ(tqtest::ZoomBytes(form, {1, 70000, 1, 100000}, source)[99990], 217) << form.name;
    }
}

// ---- What comes before the method ---------------------------------------------------------------

INSTANTIATE_TEST_SUITE_P(ZoomLinear, ZoomPreamble, testing::ValuesIn(kForms), tqtest::ZoomFormName);

// ---- The reference at every level ---------------------------------------------------------------

TEST(ZoomLinear, AllSmallWidthsEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (int srcWidth = 1; srcWidth <= 24; ++srcWidth)
            for (int dstWidth = 1; dstWidth <= 24; ++dstWidth) {
                for (auto [srcHeight, dstHeight] :
                     {std::pair{1, 1}, {1, 3}, {2, 5}, {3, 2}, {4, 4}})
                    ASSERT_TRUE(
                        equals({srcWidth, srcHeight, dstWidth, dstHeight}, Content::kNoise));
                if ((srcWidth + dstWidth) % 3 != 0) continue;
                ASSERT_TRUE(equals.InEveryLayout({srcWidth, 2, dstWidth, 3}, Content::kHostile));
            }
    }
}

TEST(ZoomLinear, WidthsOfEveryTailEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (int dstWidth = 1; dstWidth <= 70; ++dstWidth)
            for (int srcWidth : {1, 2, 3, 5, 7, 16, 31, 33, 35, 64, 97, 140, 141}) {
                ASSERT_TRUE(equals({srcWidth, 3, dstWidth, 4}, Content::kHostile));
                ASSERT_TRUE(equals({srcWidth, 2, dstWidth, 3}, Content::kNoise));
            }
    }
}

TEST(ZoomLinear, AllSmallHeightsEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (int srcHeight = 1; srcHeight <= 9; ++srcHeight)
            for (int dstHeight = 1; dstHeight <= 13; ++dstHeight)
                for (auto [srcWidth, dstWidth] : {std::pair{5, 11}, {19, 9}})
                    ASSERT_TRUE(
                        equals({srcWidth, srcHeight, dstWidth, dstHeight}, Content::kNoise));
    }
}

// Fractions that are whole eighths or sixteenths, along one axis or along both.
TEST(ZoomLinear, RatiosOfPowersOfTwoEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (int width = 1; width <= 40; ++width)
            for (auto [srcWidth, dstWidth] : {std::pair{width, 2 * width},
                                              {2 * width, width},
                                              {width, 4 * width},
                                              {4 * width, width},
                                              {width, 8 * width},
                                              {width, 16 * width},
                                              {width, width}})
                for (auto [srcHeight, dstHeight] : {std::pair{3, 6}, {6, 3}, {2, 16}, {3, 5}})
                    ASSERT_TRUE(
                        equals({srcWidth, srcHeight, dstWidth, dstHeight}, Content::kNoise));
    }
}

// Many rows between the same two of the source.
TEST(ZoomLinear, TallEnlargementsEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (int srcHeight : {1, 2, 3, 5})
            for (int dstHeight = 14; dstHeight <= 230; dstHeight += 9)
                for (auto [srcWidth, dstWidth] : {std::pair{5, 9}, {20, 40}, {33, 20}})
                    ASSERT_TRUE(
                        equals({srcWidth, srcHeight, dstWidth, dstHeight}, Content::kNoise));
    }
}

// Primes, exactly twice, just under and just over it, halves, one equal axis, strong reductions.
TEST(ZoomLinear, EveryLayoutEqualsTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (const ZoomSizes& sizes :
             {ZoomSizes{1, 1, 7, 7}, {7, 7, 1, 1},     {2, 2, 53, 3},    {13, 7, 31, 11},
              {31, 11, 13, 7},       {53, 5, 97, 3},   {97, 3, 53, 5},   {20, 20, 40, 40},
              {20, 20, 39, 39},      {20, 20, 41, 41}, {40, 40, 20, 20}, {39, 39, 20, 20},
              {20, 20, 20, 33},      {20, 20, 33, 20}, {20, 20, 20, 20}, {200, 200, 3, 3},
              {200, 1, 1, 1},        {1000, 3, 7, 2},  {3, 3, 200, 2},   {70, 3, 69, 3},
              {69, 3, 70, 3}}) {
            ASSERT_TRUE(equals.InEveryLayout(sizes, Content::kNoise));
            ASSERT_TRUE(equals.InEveryLayout(sizes, Content::kHostile));
        }
    }
}

// At these sizes the fractions come within a few units of the last place of 0 and of 1.
TEST(ZoomLinear, CornersOfExtremesEqualTheReference) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (const ZoomSizes& s : {ZoomSizes{2, 2, 97, 122}, {2, 2, 82, 225}, {2, 2, 230, 199}})
            for (int high : {45, 172, 255})
                for (int corners = 0; corners < 16; ++corners) {
                    uint8_t src[4];
                    for (int i = 0; i < 4; ++i)
                        src[i] = static_cast<uint8_t>(corners >> i & 1 ? high : 0);
                    std::vector<uint8_t> actual(s.dstWidth * s.dstHeight), expected(actual.size());
                    IPL_ZoomLinear_8u_C1R(2, 2, 2, src, s.dstWidth, s.dstHeight, s.dstWidth,
                                          actual.data());
                    tqref::ZoomLinearC1(2, 2, 2, src, s.dstWidth, s.dstHeight, s.dstWidth,
                                        expected.data());
                    ASSERT_EQ(actual, expected)
                        << s.dstWidth << " x " << s.dstHeight << ", corners " << corners << " of "
                        << high << ", level " << tq::IsaLevelName(level);
                }
    }
}

TEST(ZoomLinear, SizesAtRandomEqualTheReference) {
    for (const ZoomForm& form : kPlainForms)
        ASSERT_TRUE(tqtest::ZoomSweep(form).WithSizesAtRandom(1000, 300, 9));
}

TEST(ZoomLinear, VeryWideAndVeryTallImagesEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(2);
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals(form);
        for (const ZoomSizes& sizes : {ZoomSizes{70000, 1, 100000, 1},
                                       {100000, 1, 70000, 1},
                                       {70000, 2, 140000, 4},
                                       {99991, 2, 300007, 3},
                                       {1, 70000, 1, 100000}})
            ASSERT_TRUE(equals(sizes, Content::kNoise));
    }
}

// The last position of 2^24 + 2 samples is rounded to that of the last but one.
TEST(ZoomLinear, PositionsBeyondWhatAFloatCountsStayAtTheSampleTheyAreRoundedTo) {
    constexpr int kSource = 16777218, kDestination = 16777222;
    std::vector<uint8_t> src(kSource), dst(kDestination);
    for (int i = 0; i < kSource; ++i) src[i] = static_cast<uint8_t>(i % 251);
    src[16777216] = 73;
    src[16777217] = 110;
    IPL_ZoomLinear_8u_C1R(kSource, 1, kSource, src.data(), kDestination, 1, kDestination,
                          dst.data());
    for (int i = 16777219; i < kDestination; ++i) EXPECT_EQ(dst[i], 73) << i;
}

TEST(ZoomLinear, VideoSizesEqualTheReference) {
    // Bands of this size run at the same time, not one after the other.
    tqtest::Settings settings;
    settings.UseProcessors(4);
    for (const ZoomForm& form : kForms)
        for (const ZoomSizes& sizes : {ZoomSizes{720, 486, 1920, 1080}, {1920, 1080, 1280, 720}})
            ASSERT_TRUE(tqtest::EqualsReference(form, sizes, tqtest::ZoomLayouts()[1],
                                                Content::kNoise, 1, {tq::DetectIsaLevel()}));
}

TEST(ZoomLinear, MultiThreadEqualsTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(3);
    for (const ZoomForm& form : kThreadedForms) {
        tqtest::ZoomSweep equals(form);
        for (int width : {1, 2, 5, 16, 17, 33, 64, 70})
            for (int srcHeight : {1, 2, 7, 10})
                for (int dstHeight : {1, 2, 3, 4, 5, 7, 11})
                    ASSERT_TRUE(equals({width, srcHeight, width + 3, dstHeight}, Content::kNoise));
    }
}

// ---- Bands --------------------------------------------------------------------------------------

TEST(ZoomLinear, MultiThreadEqualsPlainAtEveryProcessorCount) {
    for (int dstHeight : {1, 2, 7, 8, 9, 15, 16, 17, 33})
        for (int srcHeight : {1, 5, 40}) {
            tqtest::ExpectThreadedEqualsPlain(kPlainC1, kThreadedC1,
                                              {19, srcHeight, 27, dstHeight});
            tqtest::ExpectThreadedEqualsPlain(kPlainC4, kThreadedC4,
                                              {23, srcHeight, 14, dstHeight});
        }
    // Rows that are too long to be handled at once.
    tqtest::ExpectThreadedEqualsPlain(kPlainC1, kThreadedC1, {1009, 4, 40009, 18});
    tqtest::ExpectThreadedEqualsPlain(kPlainC4, kThreadedC4, {1009, 4, 20011, 9});
}

template <class Task>
void SetTask(Task& task, const ZoomSizes& sizes, int srcStride, uint8_t* src, int dstStride,
             uint8_t* dst, int rowBegin, int rowEnd) {
    task.m_nSrcWidth = sizes.srcWidth;
    task.m_nSrcHeight = sizes.srcHeight;
    task.m_nSrcStride = srcStride;
    task.m_pSrc = src;
    task.m_nDstWidth = sizes.dstWidth;
    task.m_nDstHeight = sizes.dstHeight;
    task.m_nDstStride = dstStride;
    task.m_pDst = dst;
    task.m_nRowBegin = rowBegin;
    task.m_nRowEnd = rowEnd;
}

// Every band of every destination, with nothing else of the destination touched.
template <class Task> void ExpectTaskWritesItsRows(int channels) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (const ZoomSizes& s :
             {ZoomSizes{9, 4, 21, 7}, {21, 7, 9, 4}, {5, 5, 5, 5}, {1, 1, 3, 2}, {3, 9, 8, 1}})
            for (int begin = 0; begin <= s.dstHeight; ++begin)
                for (int end = begin; end <= s.dstHeight; ++end) {
                    GuardedImage src(s.srcWidth * channels, s.srcHeight, {GuardedBuffer::kEnd, 1});
                    GuardedImage dst(s.dstWidth * channels, s.dstHeight, {GuardedBuffer::kEnd, 3});
                    tqtest::Fill(src.Memory(), src.Size(), Content::kNoise, begin);
                    tqtest::Fill(dst.Memory(), dst.Size(), Content::kNoise, 50 + end);
                    std::vector<uint8_t> expected = dst.Copy();
                    tqref::ZoomLinearRows(
                        channels, {s.srcWidth, s.srcHeight, src.Stride(), src.First()},
                        {s.dstWidth, s.dstHeight, dst.Stride(), expected.data()}, begin, end);
                    Task task;
                    SetTask(task, s, src.Stride(), src.First(), dst.Stride(), dst.First(), begin,
                            end);
                    CTQIPLTaskBase& base = task;
                    ASSERT_EQ(base.Run(), 1);
                    ASSERT_EQ(dst.Copy(), expected)
                        << s.srcWidth << " x " << s.srcHeight << " to " << s.dstWidth << " x "
                        << s.dstHeight << ", rows " << begin << " to " << end << ", level "
                        << tq::IsaLevelName(level);
                }
    }
}

TEST(ZoomLinear, TheOneChannelTaskWritesItsRowsAndReturns1) {
    ExpectTaskWritesItsRows<CZoomLinearTask_8u_C1R>(1);
}

TEST(ZoomLinear, TheFourChannelTaskWritesItsRowsAndReturns1) {
    ExpectTaskWritesItsRows<CZoomLinearTask_8u_C4R>(4);
}

TEST(ZoomLinear, SeveralThreadsZoomDifferentImagesAtOnce) {
    tqtest::ExpectSeveralThreadsZoomAtOnce(kForms, {31, 17, 20, 23});
}

}  // namespace
