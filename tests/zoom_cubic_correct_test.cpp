// Cubic correct zoom: known values, the calls that are the six-tap zoom, the reference at every
// level, bands and band tasks.

#include <gtest/gtest.h>
#include <tqipl/zoom.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "frame/tables.h"
#include "reference/zoom_correct_reference.h"
#include "support/correct_check.h"
#include "support/guarded_buffer.h"
#include "support/settings.h"
#include "support/zoom_preamble.h"
#include "support/zoom_threads.h"
#include "zoom/zoom_tasks.h"

namespace {

using tqtest::Content;
using tqtest::GuardedBuffer;
using tqtest::ZoomForm;
using tqtest::ZoomPreamble;
using tqtest::ZoomSizes;

// What is left to the six-tap zoom is left to the library's own, which has tests of its own.
template <int channels, tqtest::ZoomFunction sixTap>
void Reference(int srcWidth, int srcHeight, int srcStride, const uint8_t* src, int dstWidth,
               int dstHeight, int dstStride, uint8_t* dst) {
    if (!tqref::ZoomCubicCorrect(channels, {srcWidth, srcHeight, srcStride, src},
                                 {dstWidth, dstHeight, dstStride, dst}))
        sixTap(srcWidth, srcHeight, srcStride, const_cast<uint8_t*>(src), dstWidth, dstHeight,
               dstStride, dst);
}

const ZoomForm kPlainC1 = {"IPL_ZoomCubicCorrect_8u_C1R", IPL_ZoomCubicCorrect_8u_C1R,
                           Reference<1, IPL_Zoom6Cubic_8u_C1R>, 1};
const ZoomForm kPlainC4 = {"IPL_ZoomCubicCorrect_8u_C4R", IPL_ZoomCubicCorrect_8u_C4R,
                           Reference<4, IPL_Zoom6Cubic_8u_C4R>, 4};
const ZoomForm kThreadedC1 = {"IPL_ZoomCubicCorrectMultiThread_8u_C1R",
                              IPL_ZoomCubicCorrectMultiThread_8u_C1R,
                              Reference<1, IPL_Zoom6CubicMultiThread_8u_C1R>, 1};
const ZoomForm kThreadedC4 = {"IPL_ZoomCubicCorrectMultiThread_8u_C4R",
                              IPL_ZoomCubicCorrectMultiThread_8u_C4R,
                              Reference<4, IPL_Zoom6CubicMultiThread_8u_C4R>, 4};
const std::vector<ZoomForm> kPlainForms = {kPlainC1, kPlainC4};
const std::vector<ZoomForm> kThreadedForms = {kThreadedC1, kThreadedC4};
const std::vector<ZoomForm> kForms = {kPlainC1, kPlainC4, kThreadedC1, kThreadedC4};

void ExpectCubicCorrect(const ZoomSizes& sizes, const std::vector<int>& source,
                        const std::vector<int>& expected) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        SCOPED_TRACE(tq::IsaLevelName(level));
        settings.Use(level);
        tqtest::ExpectZoom(kForms, sizes, source, expected);
    }
}

std::vector<int> Repeated(const std::vector<int>& row, int count) {
    std::vector<int> rows;
    for (int i = 0; i < count; ++i) rows.insert(rows.end(), row.begin(), row.end());
    return rows;
}

// A row of the destination from a source whose rows are all alike.
std::vector<int> MiddleRow(const ZoomForm& form, const std::vector<int>& row, int dstWidth) {
    const int width = static_cast<int>(row.size());
    const std::vector<int> result =
        tqtest::ZoomBytes(form, {width, 8, dstWidth, 16}, Repeated(row, 8));
    return {result.begin() + 7 * dstWidth, result.begin() + 8 * dstWidth};
}

// ---- Values known by hand -----------------------------------------------------------------------

TEST(ZoomCubicCorrect, AConstantImageStaysConstant) {
    for (int value : {0, 1, 2, 127, 128, 254, 255})
        for (const ZoomSizes& s :
             {ZoomSizes{1, 1, 9, 9}, {5, 5, 10, 10}, {9, 7, 31, 23}, {40, 6, 80, 12}})
            ExpectCubicCorrect(s, std::vector<int>(s.srcWidth * s.srcHeight, value),
                               std::vector<int>(s.dstWidth * s.dstHeight, value));
}

// Every row of taps sums to 1024, so that what is constant down the columns stays so, and a row
// shows the taps across. At 0.25 and 0.75 a step of 0, 0, 255, 255 is not moved: taps 64 and 192.
TEST(ZoomCubicCorrect, AStepInTheMiddleOfTheCellTakesTheTapsOfItsPlace) {
    // Cell of column 3 between 0 and 255: destination columns 7 and 8.
    const std::vector<int> row = MiddleRow(kPlainC1, {0, 0, 0, 0, 255, 255, 255, 255}, 16);
    const auto expected = [](int place) {
        const int* taps = IPL_TabFiveTap[place];
        const int sum = (taps[3] + taps[4]) * 255;
        return sum < 0 ? 0 : (sum + 512) >> 10;
    };
    EXPECT_EQ(row[7], expected(64));
    EXPECT_EQ(row[8], expected(192));
    EXPECT_LT(row[7], 70);
    EXPECT_GT(row[8], 180);
}

// Before they are held, columns 7 and 8 are -0.7 and -18.2, and columns 11 and 12 are 270.7 and
// 255.7.
TEST(ZoomCubicCorrect, OvershootIsHeldAtTheLastStep) {
    for (const ZoomForm& form : {kPlainC1, kThreadedC1}) {
        EXPECT_EQ(MiddleRow(form, {0, 0, 0, 0, 0, 255, 255, 255, 255, 255}, 20),
                  (std::vector<int>{0,   0,   0,   0,   0,   0,   0,   0,   0,   53,
                                    200, 255, 255, 248, 253, 255, 255, 255, 255, 255}))
            << form.name;
        EXPECT_EQ(MiddleRow(form, {255, 255, 255, 255, 255, 0, 0, 0, 0, 0}, 20),
                  (std::vector<int>{255, 255, 255, 255, 255, 255, 255, 255, 255, 202,
                                    55,  0,   0,   7,   2,   0,   0,   0,   0,   0}))
            << form.name;
    }
}

TEST(ZoomCubicCorrect, OvershootWithinTheBytesIsKept) {
    for (const ZoomForm& form : {kPlainC1, kThreadedC1})
        EXPECT_EQ(MiddleRow(form, {100, 100, 100, 100, 100, 200, 200, 200, 200, 200}, 20),
                  (std::vector<int>{100, 100, 100, 100, 100, 100, 100, 98,  87,  121,
                                    178, 210, 202, 197, 199, 200, 200, 200, 200, 200}))
            << form.name;
}

// Nor are the places 0.25 and 0.75 moved where all steps are alike.
TEST(ZoomCubicCorrect, ARampTakesTheTapsOfItsPlace) {
    const std::vector<int> source = {0, 8, 16, 24, 32, 40, 48, 56, 64, 72};
    const std::vector<int> row = MiddleRow(kPlainC1, source, 20);
    const auto expected = [&source](int column, int place) {
        int sum = 512;
        for (int tap = 0; tap < 5; ++tap)
            sum += IPL_TabFiveTap[place][tap] * source[column - 2 + tap];
        return sum >> 10;
    };
    for (int column = 2; column < 8; ++column) {
        EXPECT_EQ(row[2 * column + 1], expected(column, 64)) << column;
        EXPECT_EQ(row[2 * column + 2], expected(column, 192)) << column;
    }
}

// A destination pixel right on a source pixel has the taps of 1/512 and not the sample itself.
TEST(ZoomCubicCorrect, PlaceZeroTakesTheFirstRowOfTaps) {
    // Three times as wide: column 3 * i + 1 is on column i.
    const std::vector<int> source = {10, 200, 30, 180, 50, 160, 70, 140, 90};
    const std::vector<int> row = MiddleRow(kPlainC1, source, 27);
    int sum = 512;
    for (int tap = 0; tap < 5; ++tap) sum += IPL_TabFiveTap[0][tap] * source[2 + tap];
    EXPECT_EQ(row[3 * 4 + 1], sum >> 10);
}

// Column 143 of 328 is on 2.9999998, which the step before the cell pulls to a place of exactly 1:
// 256 of 256 taps, lowered to the last.
TEST(ZoomCubicCorrect, PlaceOneTakesTheLastRowOfTaps) {
    const std::vector<int> source = {30, 0, 200, 190, 200, 100, 60, 20};
    tqref::CorrectBlock block;
    for (auto& line : block.p)
        for (int c = 0; c < 4; ++c) line[c] = source[1 + c];
    int ix;
    float fx;
    tqref::LinearAxis(8, 328).Locate(143, ix, fx);
    ASSERT_EQ(ix, 2);
    ASSERT_EQ(tqref::CorrectWeights(block, fx, 0.5f).x, 1.0f);
    int sum = 512;
    for (int tap = 0; tap < 5; ++tap) sum += IPL_TabFiveTap[255][tap] * source[tap];
    const int expected = std::clamp(sum >> 10, 0, 255);
    EXPECT_LT(expected, 255);
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        EXPECT_EQ(MiddleRow(kPlainC1, source, 328)[143], expected) << tq::IsaLevelName(level);
    }
}

// ---- The calls that are the six-tap zoom --------------------------------------------------------

TEST(ZoomCubicCorrect, LessThanTwiceOnAnyAxisIsTheSixTapZoomOfTheSameForm) {
    const auto expect = tqtest::ExpectSameZoomAtEveryLevelAndProcessorCount;
    const std::vector<ZoomSizes>& sizes = tqtest::DelegatedSizes();
    expect(kPlainC1, IPL_Zoom6Cubic_8u_C1R, sizes);
    expect(kPlainC4, IPL_Zoom6Cubic_8u_C4R, sizes);
    expect(kThreadedC1, IPL_Zoom6CubicMultiThread_8u_C1R, sizes);
    expect(kThreadedC4, IPL_Zoom6CubicMultiThread_8u_C4R, sizes);
}

TEST(ZoomCubicCorrect, FourColumnsOrRowsAreTheLinearZoomThroughout) {
    const std::vector<ZoomSizes> sizes = {{4, 4, 8, 8},   {4, 20, 9, 51}, {20, 4, 51, 9},
                                          {3, 9, 6, 18},  {9, 3, 18, 6},  {2, 20, 9, 40},
                                          {20, 2, 40, 9}, {1, 9, 3, 30},  {9, 1, 30, 3},
                                          {1, 1, 5, 5},   {4, 4, 60, 70}};
    for (const ZoomSizes& s : sizes) {
        tqtest::ExpectSameZoom(kPlainC1, IPL_ZoomLinear_8u_C1R, s);
        tqtest::ExpectSameZoom(kPlainC4, IPL_ZoomLinear_8u_C4R, s);
        tqtest::ExpectSameZoom(kThreadedC1, IPL_ZoomLinear_8u_C1R, s);
        tqtest::ExpectSameZoom(kThreadedC4, IPL_ZoomLinear_8u_C4R, s);
    }
}

// Positions below 2 are the ring.
TEST(ZoomCubicCorrect, ExactlyTwiceIsCorrectedInsideARingOfTwoCells) {
    tqtest::ExpectOnlyTheInsideDiffersFromLinear(kForms, 5, 50);
}

// ---- What comes before the method ---------------------------------------------------------------

INSTANTIATE_TEST_SUITE_P(ZoomCubicCorrect, ZoomPreamble, testing::ValuesIn(kForms),
                         tqtest::ZoomFormName);

// ---- The reference at every level ---------------------------------------------------------------

TEST(ZoomCubicCorrect, SmallSizesEqualTheReference) {
    tqtest::ExpectSmallDoubledSizesEqualReference(kPlainForms, 7);
}

TEST(ZoomCubicCorrect, WidthsOfEveryTailEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (int dstWidth = 10; dstWidth <= 80; ++dstWidth)
            for (int srcWidth : {5, 6, 7, 11, 16, 23, 32, 33, 40}) {
                if (2 * srcWidth > dstWidth) continue;
                ASSERT_TRUE(equals({srcWidth, 6, dstWidth, 13}, Content::kNoise));
                ASSERT_TRUE(equals({srcWidth, 5, dstWidth, 10}, Content::kHostile));
            }
    }
}

TEST(ZoomCubicCorrect, EveryLayoutEqualsTheReference) {
    tqtest::ExpectEveryLayoutEqualsReference(kPlainForms);
}

// Many destination pixels a cell: all rows of taps, with the places 0 and 1 among them.
TEST(ZoomCubicCorrect, GreatRatiosEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (const ZoomSizes& sizes : {ZoomSizes{7, 7, 7 * 33, 7 * 9},
                                       {6, 6, 6 * 101, 6 * 5},
                                       {6, 6, 6 * 5, 6 * 101},
                                       {8, 6, 8 * 64, 6 * 16}}) {
            ASSERT_TRUE(equals(sizes, Content::kNoise));
            ASSERT_TRUE(equals(sizes, Content::kHostile));
        }
    }
}

TEST(ZoomCubicCorrect, SizesAtRandomEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        ASSERT_TRUE(tqtest::DoubledSizesAtRandom(equals, 400, 50));
    }
}

TEST(ZoomCubicCorrect, VeryWideAndVeryTallImagesEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(2);
    for (const ZoomForm& form : kForms)
        for (const ZoomSizes& sizes : {ZoomSizes{15013, 5, 30029, 10}, {5, 15013, 10, 30029}})
            ASSERT_TRUE(tqtest::EqualsReference(form, sizes, tqtest::ZoomLayouts()[1],
                                                Content::kNoise, 1, {tq::DetectIsaLevel()}));
}

TEST(ZoomCubicCorrect, VideoSizesEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(4);
    for (const ZoomForm& form : {kThreadedC1, kThreadedC4})
        ASSERT_TRUE(tqtest::EqualsReference(form, {480, 270, 960, 540}, tqtest::ZoomLayouts()[1],
                                            Content::kNoise, 1, {tq::DetectIsaLevel()}));
    ASSERT_TRUE(tqtest::EqualsReference(kPlainC4, {720, 486, 1920, 1080}, tqtest::ZoomLayouts()[3],
                                        Content::kNoise, 1, {tq::DetectIsaLevel()}));
    ASSERT_TRUE(tqtest::EqualsReference(kThreadedC1, {720, 486, 1920, 1080},
                                        tqtest::ZoomLayouts()[3], Content::kHostile, 1,
                                        {tq::DetectIsaLevel()}));
}

// ---- Bands --------------------------------------------------------------------------------------

TEST(ZoomCubicCorrect, MultiThreadEqualsPlainAtEveryProcessorCount) {
    for (const ZoomSizes& s : {ZoomSizes{9, 6, 21, 13},
                               {7, 1, 15, 2},
                               {7, 5, 15, 11},
                               {20, 8, 41, 16},
                               {20, 8, 41, 17},
                               {8, 20, 17, 45}}) {
        tqtest::ExpectThreadedEqualsPlain(kPlainC1, kThreadedC1, s);
        tqtest::ExpectThreadedEqualsPlain(kPlainC4, kThreadedC4, s);
    }
}

TEST(ZoomCubicCorrect, MultiThreadEqualsTheReferenceAtEveryProcessorCount) {
    for (const ZoomForm& form : kThreadedForms)
        for (const ZoomSizes& s : {ZoomSizes{11, 7, 25, 15}, {6, 12, 13, 33}})
            tqtest::ExpectReferenceAtEveryProcessorCount(form, s);
}

TEST(ZoomCubicCorrect, TaskFieldsStandInOrder) {
    tqtest::ExpectCorrectTaskFieldsInOrder<CZCubicCorrectTask>();
}

TEST(ZoomCubicCorrect, ATaskOfOneChannelWritesItsRowsAndReturns1) {
    tqtest::ExpectCorrectTaskWritesItsRows<CZCubicCorrectTask>(tqref::CubicCorrectRows, 1);
}

TEST(ZoomCubicCorrect, ATaskOfFourChannelsGoesByItsPlaneAndReturns1) {
    tqtest::ExpectCorrectTaskWritesItsRows<CZCubicCorrectTask>(tqref::CubicCorrectRows, 4);
}

TEST(ZoomCubicCorrect, ATaskOfAnotherChannelModeDoesNothingAndReturns1) {
    tqtest::ExpectBadChannelModesReturn1<CZCubicCorrectTask>();
}

TEST(ZoomCubicCorrect, SeveralThreadsZoomDifferentImagesAtOnce) {
    tqtest::ExpectSeveralThreadsZoomAtOnce(kForms, {13, 9, 30, 23});
}

}  // namespace
