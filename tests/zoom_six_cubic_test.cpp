// Six-tap cubic zoom: weights and pixels known by hand, bad arguments, the reference at every
// level, bands.

#include <gtest/gtest.h>
#include <tqipl/zoom.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "reference/zoom_cubic_reference.h"
#include "support/guarded_buffer.h"
#include "support/settings.h"
#include "support/zoom_preamble.h"
#include "support/zoom_threads.h"
#include "zoom/weights.h"

namespace {

using tqtest::Content;
using tqtest::GuardedBuffer;
using tqtest::GuardedImage;
using tqtest::ZoomForm;
using tqtest::ZoomPreamble;
using tqtest::ZoomSizes;

const ZoomForm kPlainC1 = {"IPL_Zoom6Cubic_8u_C1R", IPL_Zoom6Cubic_8u_C1R, tqref::ZoomSixCubicC1,
                           1};
const ZoomForm kPlainC4 = {"IPL_Zoom6Cubic_8u_C4R", IPL_Zoom6Cubic_8u_C4R, tqref::ZoomSixCubicC4,
                           4};
const ZoomForm kThreadedC1 = {"IPL_Zoom6CubicMultiThread_8u_C1R", IPL_Zoom6CubicMultiThread_8u_C1R,
                              tqref::ZoomSixCubicC1, 1};
const ZoomForm kThreadedC4 = {"IPL_Zoom6CubicMultiThread_8u_C4R", IPL_Zoom6CubicMultiThread_8u_C4R,
                              tqref::ZoomSixCubicC4, 4};
const std::vector<ZoomForm> kForms = {kPlainC1, kPlainC4, kThreadedC1, kThreadedC4};

// Known by hand, so at every level.
void ExpectSixCubic(const ZoomSizes& sizes, const std::vector<int>& source,
                    const std::vector<int>& expected) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        SCOPED_TRACE(tq::IsaLevelName(level));
        settings.Use(level);
        tqtest::ExpectZoom(kForms, sizes, source, expected);
    }
}

// ---- Weights ------------------------------------------------------------------------------------

std::vector<int> SixTapWeights(int srcLength, int dstLength) {
    const CZ6CubicTable table(srcLength, dstLength);
    const size_t size = tqref::PackTapRecords(tqref::SixTapRecords(srcLength, dstLength)).size();
    return {table.m_pWeightData, table.m_pWeightData + size};
}

TEST(SixTapWeights, TheKernelIs1At0And0AtWholeDistances) {
    EXPECT_EQ(tq::IPL_SixTapKernel(0.0f), 1.0f);
    for (float t : {1.0f, 2.0f, 3.0f, -1.0f, -2.0f, -3.0f, 3.25f, 4.0f, -100.0f, 1e30f})
        EXPECT_EQ(tq::IPL_SixTapKernel(t), 0.0f) << t;
    for (float sign : {1.0f, -1.0f}) {
        EXPECT_EQ(tq::IPL_SixTapKernel(sign * 0.5f), 0.6f);
        EXPECT_EQ(tq::IPL_SixTapKernel(sign * 1.5f), -0.125f);
        EXPECT_EQ(tq::IPL_SixTapKernel(sign * 2.5f), 0.025f);
    }
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(tq::IPL_SixTapKernel(infinity), 0.0f);
    EXPECT_EQ(tq::IPL_SixTapKernel(std::nanf("")), 0.0f);
}

TEST(SixTapWeights, TheKernelEqualsTheReferenceToTheLastBit) {
    for (int i = -70000; i <= 70000; ++i) {
        const float t = static_cast<float>(i) / 21001.0f;
        ASSERT_EQ(tq::IPL_SixTapKernel(t), tqref::SixTapKernel(t)) << t;
    }
    for (float t : {1.0f, 2.0f, 3.0f}) {
        const float below = std::nextafterf(t, 0.0f), above = std::nextafterf(t, 4.0f);
        EXPECT_EQ(tq::IPL_SixTapKernel(below), tqref::SixTapKernel(below)) << t;
        EXPECT_EQ(tq::IPL_SixTapKernel(above), tqref::SixTapKernel(above)) << t;
    }
}

// Mixed precision rounds less often. Were one kernel to serve both zooms, these would be equal.
TEST(SixTapWeights, TheKernelIsNotThatOfTheCubicZoomToTheLastBit) {
    int differences = 0;
    for (int i = 0; i < 3000; ++i) {
        const float t = static_cast<float>(i) / 1000.0f;
        differences += tq::IPL_SixTapKernel(t) != tq::IPL_CubicKernel(t) ? 1 : 0;
    }
    EXPECT_GT(differences, 300);
}

// Position -0.25: the last tap stands at 3.25, outside the kernel. Position 0.25: all four weigh.
TEST(SixTapWeights, EightToSixteenBegin) {
    const std::vector<int> weights = SixTapWeights(8, 16);
    const std::vector<int> begin = {0, 3, 1145, -158, 36, 0, 0, 3, 825, 251, -61, 8};
    ASSERT_GE(weights.size(), begin.size());
    EXPECT_EQ(std::vector<int>(weights.begin(), weights.begin() + 12), begin);
}

TEST(SixTapWeights, EightToFour) {
    EXPECT_EQ(SixTapWeights(8, 4), (std::vector<int>{0, 3, 558, 558,  -116, 23,             //
                                                     0, 5, 25,  -128, 614,  614, -128, 25,  //
                                                     2, 7, 25,  -128, 614,  614, -128, 25,  //
                                                     4, 7, 23,  -116, 558,  558}));
}

// Each position is a sample's own: five taps at most, of which one weighs.
TEST(SixTapWeights, EqualLengthsTakeTheSampleItself) {
    EXPECT_EQ(SixTapWeights(4, 4), (std::vector<int>{0, 2, 1024, 0,    0,        //
                                                     0, 3, 0,    1024, 0,    0,  //
                                                     0, 3, 0,    0,    1024, 0,  //
                                                     1, 3, 0,    0,    1024}));
    EXPECT_EQ(SixTapWeights(5, 1), (std::vector<int>{0, 4, 0, 0, 1024, 0, 0}));
}

TEST(SixTapWeights, OneAndTwoSamples) {
    EXPECT_EQ(SixTapWeights(1, 3), (std::vector<int>{0, 0, 1024, 0, 0, 1024, 0, 0, 1024}));
    EXPECT_EQ(SixTapWeights(2, 3), (std::vector<int>{0, 1, 1141, -117,  //
                                                     0, 1, 512, 512,    //
                                                     0, 1, -117, 1141}));
}

TEST(SixTapWeights, EveryTableEqualsTheReference) {
    for (int srcLength = 1; srcLength <= 70; ++srcLength)
        for (int dstLength = 1; dstLength <= 70; ++dstLength)
            ASSERT_EQ(SixTapWeights(srcLength, dstLength),
                      tqref::PackTapRecords(tqref::SixTapRecords(srcLength, dstLength)))
                << srcLength << " to " << dstLength;
    for (auto [srcLength, dstLength] : {std::pair{720, 1920},
                                        {486, 1080},
                                        {1920, 1280},
                                        {1080, 720},
                                        {1, 5000},
                                        {5000, 1},
                                        {4999, 5003},
                                        {70000, 100000},
                                        {100000, 70000}})
        ASSERT_EQ(SixTapWeights(srcLength, dstLength),
                  tqref::PackTapRecords(tqref::SixTapRecords(srcLength, dstLength)))
            << srcLength << " to " << dstLength;
}

// ---- Values known by hand -----------------------------------------------------------------------

// Each weight stands alone: 128 of 1024ths of it, rounded, below 0 held at 0.
TEST(ZoomSixCubic, EightColumnsToSixteenFollowTheWeights) {
    ExpectSixCubic({8, 1, 16, 1}, {128, 0, 0, 0, 0, 0, 0, 0},
                   {143, 103, 33, 0, 0, 4, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    ExpectSixCubic({8, 1, 16, 1}, {0, 0, 0, 128, 0, 0, 0, 0},
                   {0, 1, 3, 0, 0, 34, 113, 113, 34, 0, 0, 4, 1, 0, 0, 0});
    ExpectSixCubic({8, 1, 16, 1}, {0, 0, 0, 0, 0, 0, 0, 128},
                   {0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 4, 0, 0, 33, 103, 143});
}

TEST(ZoomSixCubic, EightRowsToSixteenFollowTheWeights) {
    ExpectSixCubic({1, 8, 1, 16}, {0, 0, 0, 128, 0, 0, 0, 0},
                   {0, 1, 3, 0, 0, 34, 113, 113, 34, 0, 0, 4, 1, 0, 0, 0});
}

// Weights of 558 and 614 for the two nearest: 22.5 of the first and 53 of the others are left when
// the outer ones are taken away.
TEST(ZoomSixCubic, EightToFour) {
    const std::vector<int> source = {10, 20, 30, 40, 50, 60, 70, 80}, expected = {14, 35, 55, 76};
    ExpectSixCubic({8, 1, 4, 1}, source, expected);
    ExpectSixCubic({1, 8, 1, 4}, source, expected);
}

TEST(ZoomSixCubic, HalvesAreRoundedUp) {
    ExpectSixCubic({2, 1, 1, 1}, {10, 11}, {11});
    ExpectSixCubic({1, 2, 1, 1}, {10, 11}, {11});
    ExpectSixCubic({2, 2, 1, 1}, {10, 11, 10, 11}, {11});
    ExpectSixCubic({2, 2, 1, 1}, {10, 10, 10, 11}, {10});
}

TEST(ZoomSixCubic, ASourceOfOnePixelFillsTheDestination) {
    ExpectSixCubic({1, 1, 3, 2}, {77}, {77, 77, 77, 77, 77, 77});
    ExpectSixCubic({1, 2, 3, 2}, {77, 5}, {77, 77, 77, 5, 5, 5});
    ExpectSixCubic({2, 1, 2, 3}, {77, 5}, {77, 5, 77, 5, 77, 5});
}

TEST(ZoomSixCubic, SharpEdgesAreHeldIn0To255) {
    const std::vector<int> source = {0, 0, 0, 0, 255, 255, 255, 255};
    const std::vector<int> expected = {0,   0,   0,   2,   7,   0,   0,   54,
                                       201, 255, 255, 248, 253, 255, 255, 255};
    ExpectSixCubic({8, 1, 16, 1}, source, expected);
    ExpectSixCubic({1, 8, 1, 16}, source, expected);
}

// Column 0 of row 1 is -158 * 255 after the first pass, or (1145 + 36) * 255: neither is held in
// the range of a byte, or rounded, before the second pass takes -158 1024ths of it away.
TEST(ZoomSixCubic, OvershootOfTheFirstPassReachesTheSecond) {
    for (const ZoomForm& form : kForms) {
        std::vector<int> source(64);
        for (int i = 0; i < 8; ++i) source[i] = 100;
        auto corner = [&] {
            const bool four = form.channels == 4;
            return tqtest::ZoomBytes(form, {8, 8, 16, 16},
                                     four ? tqtest::InFourChannels(source) : source)[0];
        };
        source[9] = 255;
        EXPECT_EQ(corner(), 118) << form.name;
        source[8] = source[10] = 255;
        source[9] = 0;
        EXPECT_EQ(corner(), 66) << form.name;
    }
}

// Weights that add up to 1022 to 1025 leave 255 as it is.
TEST(ZoomSixCubic, ConstantImagesStayAsTheyAre) {
    for (int value : {0, 1, 127, 254, 255})
        for (const ZoomSizes& sizes :
             {ZoomSizes{8, 8, 16, 16}, {8, 1, 4, 1}, {1, 8, 1, 4}, {3, 2, 12, 5}})
            ExpectSixCubic(sizes, std::vector<int>(sizes.srcWidth * sizes.srcHeight, value),
                           std::vector<int>(sizes.dstWidth * sizes.dstHeight, value));
}

// 27 - 134 + 679 + 546 - 119 + 22 is 1021, on both sides of the middle.
TEST(ZoomSixCubic, WeightsThatAddUpTo1021DarkenAConstantImage) {
    std::vector<int> expected(60, 255);
    expected[29] = expected[30] = 254;
    ExpectSixCubic({6, 1, 60, 1}, std::vector<int>(6, 255), expected);
    ExpectSixCubic({1, 6, 1, 60}, std::vector<int>(6, 255), expected);
}

TEST(ZoomSixCubic, FourChannelsAreScaledAlikeAndApart) {
    const std::vector<int> source = {0, 10, 200, 30, 100, 110, 20, 31};
    for (const ZoomForm& form : {kPlainC4, kThreadedC4}) {
        EXPECT_EQ(tqtest::ZoomBytes(form, {2, 1, 3, 1}, source),
                  (std::vector<int>{0, 0, 221, 30, 50, 60, 110, 31, 111, 121, 0, 31}))
            << form.name;
        EXPECT_EQ(tqtest::ZoomBytes(form, {1, 2, 1, 3}, source),
                  (std::vector<int>{0, 0, 221, 30, 50, 60, 110, 31, 111, 121, 0, 31}))
            << form.name;
    }
}

// A byte of padding stands between the rows: 99.
TEST(ZoomSixCubic, EveryFormHonoursTheStrideWhereTheWidthsAreEqual) {
    for (const ZoomForm& form : {kPlainC1, kThreadedC1}) {
        uint8_t source[] = {10, 99, 200}, dst = 0;
        form.function(1, 2, 2, source, 1, 1, 1, &dst);
        EXPECT_EQ(dst, 105) << form.name;
    }
}

TEST(ZoomSixCubic, ASourceStrideOf0RepeatsOneRowOfEqualWidthToo) {
    for (const ZoomForm& form : kForms) tqtest::ExpectOneRowForAll(form, {5, 4, 5, 3});
}

// ---- What comes before the method ---------------------------------------------------------------

INSTANTIATE_TEST_SUITE_P(ZoomSixCubic, ZoomPreamble, testing::ValuesIn(kForms),
                         tqtest::ZoomFormName);

// ---- The reference at every level ---------------------------------------------------------------

TEST(ZoomSixCubic, AllSizesUpToSixEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(2);
    for (const ZoomForm& form : kForms) ASSERT_TRUE(tqtest::ZoomSweep(form).AllSizesUpTo(6));
}

TEST(ZoomSixCubic, SizesOfEveryKindEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(3);
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals(form);
        for (const ZoomSizes& sizes : tqtest::ZoomSizesOfEveryKind()) {
            ASSERT_TRUE(equals.InEveryLayout(sizes, Content::kNoise));
            ASSERT_TRUE(equals(sizes, Content::kHostile));
        }
    }
}

TEST(ZoomSixCubic, AllSmallWidthsEqualTheReference) {
    for (const ZoomForm& form : {kPlainC1, kPlainC4}) {
        tqtest::ZoomSweep equals(form);
        for (int srcWidth = 1; srcWidth <= 36; ++srcWidth)
            for (int dstWidth = 1; dstWidth <= 36; ++dstWidth)
                ASSERT_TRUE(equals({srcWidth, 1 + dstWidth % 4, dstWidth, 1 + srcWidth % 3},
                                   Content::kHostile));
    }
}

TEST(ZoomSixCubic, SizesAtRandomEqualTheReference) {
    for (const ZoomForm& form : {kPlainC1, kPlainC4})
        ASSERT_TRUE(tqtest::ZoomSweep(form).WithSizesAtRandom(600, 300, 9));
}

TEST(ZoomSixCubic, VeryWideAndVeryTallImagesEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(2);
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals(form);
        for (const ZoomSizes& sizes : {ZoomSizes{70000, 1, 100000, 1},
                                       {70000, 2, 60000, 3},
                                       {70001, 2, 70001, 3},
                                       {1, 70000, 1, 100000},
                                       {2, 40000, 3, 30000},
                                       {9, 120000, 7, 50}})
            ASSERT_TRUE(equals(sizes, Content::kNoise));
    }
}

TEST(ZoomSixCubic, VideoSizesEqualTheReference) {
    // Bands of this size run at the same time, not one after the other.
    tqtest::Settings settings;
    settings.UseProcessors(4);
    for (const ZoomForm& form : kForms)
        for (const ZoomSizes& sizes : {ZoomSizes{720, 486, 1920, 1080}, {1920, 1080, 1280, 720}})
            ASSERT_TRUE(tqtest::EqualsReference(form, sizes, tqtest::ZoomLayouts()[1],
                                                Content::kNoise, 1, {tq::DetectIsaLevel()}));
}

// ---- Bands --------------------------------------------------------------------------------------

TEST(ZoomSixCubic, MultiThreadEqualsPlainAtEveryProcessorCount) {
    for (const ZoomSizes& sizes : {ZoomSizes{19, 17, 27, 17},
                                   {19, 16, 7, 16},
                                   {19, 23, 33, 40},
                                   {33, 31, 17, 9},
                                   {5, 3, 15, 16},
                                   {33, 12, 33, 19},
                                   {7, 12, 7, 5},
                                   {2, 1, 1, 3}}) {
        tqtest::ExpectThreadedEqualsPlain(kPlainC1, kThreadedC1, sizes);
        tqtest::ExpectThreadedEqualsPlain(kPlainC4, kThreadedC4, sizes);
    }
}

TEST(ZoomSixCubic, OnlyTheMultiThreadFormsUseThePool) {
    tqtest::Settings settings;
    settings.UseProcessors(4);
    for (const ZoomForm& form : {kPlainC1, kPlainC4})
        EXPECT_EQ(tqtest::WorkersAfter(form, {20, 20, 40, 40}), 0u) << form.name;
    for (const ZoomForm& form : {kThreadedC1, kThreadedC4})
        EXPECT_GT(tqtest::WorkersAfter(form, {20, 20, 40, 40}), 0u) << form.name;
}

TEST(ZoomSixCubic, SeveralThreadsZoomDifferentImagesAtOnce) {
    tqtest::ExpectSeveralThreadsZoomAtOnce(kForms, {31, 17, 20, 23});
}

}  // namespace
