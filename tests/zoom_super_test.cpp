// Super zoom: pixels known by hand, bad arguments, the reference at every level, bands, what it
// hands over to the six-tap zoom, and the row in which the four-channel forms differ.

#include <gtest/gtest.h>
#include <tqipl/zoom.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "reference/zoom_super_reference.h"
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

const ZoomForm kPlainC1 = {"IPL_ZoomSuper_8u_C1R", IPL_ZoomSuper_8u_C1R, tqref::ZoomSuperC1, 1};
const ZoomForm kPlainC4 = {"IPL_ZoomSuper_8u_C4R", IPL_ZoomSuper_8u_C4R, tqref::ZoomSuperPlainC4,
                           4};
const ZoomForm kThreadedC1 = {"IPL_ZoomSuperMultiThread_8u_C1R", IPL_ZoomSuperMultiThread_8u_C1R,
                              tqref::ZoomSuperC1, 1};
const ZoomForm kThreadedC4 = {"IPL_ZoomSuperMultiThread_8u_C4R", IPL_ZoomSuperMultiThread_8u_C4R,
                              tqref::ZoomSuperThreadedC4, 4};
const std::vector<ZoomForm> kPlainForms = {kPlainC1, kPlainC4};
const std::vector<ZoomForm> kThreadedForms = {kThreadedC1, kThreadedC4};
const std::vector<ZoomForm> kForms = {kPlainC1, kPlainC4, kThreadedC1, kThreadedC4};

// Known by hand, so at every level.
void ExpectSuper(const ZoomSizes& sizes, const std::vector<int>& source,
                 const std::vector<int>& expected, const std::vector<ZoomForm>& forms = kForms) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        SCOPED_TRACE(tq::IsaLevelName(level));
        settings.Use(level);
        tqtest::ExpectZoom(forms, sizes, source, expected);
    }
}

std::vector<int> Repeated(const std::vector<int>& row, int rows) {
    std::vector<int> image;
    for (int i = 0; i < rows; ++i) image.insert(image.end(), row.begin(), row.end());
    return image;
}

// ---- Values known by hand -----------------------------------------------------------------------

TEST(ZoomSuper, HalfTheSizeIsTheMeanOfEachBlockCutOff) {
    ExpectSuper({4, 4, 2, 2}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16},
                {3, 5, 11, 13});
    ExpectSuper({4, 4, 2, 2}, {0, 0, 1, 1, 0, 3, 1, 0, 255, 255, 0, 0, 255, 254, 0, 0},
                {0, 0, 254, 0});
}

// Scale 2.5: half of the middle pixel goes to each side.
TEST(ZoomSuper, FiveToTwoSplitTheMiddle) {
    const std::vector<int> row = {10, 20, 30, 40, 50};
    ExpectSuper({5, 5, 2, 2}, Repeated(row, 5), {18, 42, 18, 42});
    ExpectSuper({5, 4, 2, 2}, Repeated(row, 4), {18, 42, 18, 42});
    ExpectSuper({4, 5, 2, 2},
                {10, 10, 10, 10, 20, 20, 20, 20, 30, 30, 30, 30, 40, 40, 40, 40, 50, 50, 50, 50},
                {18, 18, 42, 42});
    // (4 * 20 + 2 * 10 + 2 * 40 + 30) / 6.25 is 33.6; 30 alone weighs a quarter.
    ExpectSuper({5, 5, 2, 2}, {20, 20, 10, 20, 20, 20, 20, 10, 20, 20, 40, 40, 30,
                               40, 40, 20, 20, 10, 20, 20, 20, 20, 10, 20, 20},
                {22, 22, 22, 22});
}

TEST(ZoomSuper, OnePixelIsTheMeanOfAll) {
    std::vector<int> source(21);
    for (int i = 0; i < 21; ++i) source[i] = i + 1;
    ExpectSuper({7, 3, 1, 1}, source, {11});
    source[20] = 40;  // 250 of 21
    ExpectSuper({7, 3, 1, 1}, source, {11});
    source[20] = 42;  // 252 of 21
    ExpectSuper({7, 3, 1, 1}, source, {12});
}

TEST(ZoomSuper, OneColumnIsTheMeanOfEachRow) {
    ExpectSuper({4, 4, 1, 2}, {1, 2, 3, 4, 1, 2, 3, 4, 100, 200, 50, 51, 100, 200, 50, 51},
                {2, 100});
}

// With scale 1 the last column but one takes the last one too, and the last one counts twice.
TEST(ZoomSuper, EqualWidthsGiveTwoBrightColumns) {
    ExpectSuper({4, 2, 4, 1}, {10, 20, 30, 40, 10, 20, 30, 40}, {10, 20, 70, 80});
    ExpectSuper({3, 2, 3, 1}, {200, 200, 200, 200, 200, 200}, {200, 255, 255});
    ExpectSuper({2, 2, 2, 1}, {30, 50, 30, 50}, {80, 100});
    ExpectSuper({1, 2, 1, 1}, {30, 50}, {80});
}

TEST(ZoomSuper, EqualHeightsGiveTwoBrightRows) {
    ExpectSuper({2, 4, 1, 4}, {10, 10, 20, 20, 30, 30, 40, 40}, {10, 20, 70, 80});
    ExpectSuper({2, 3, 1, 3}, {200, 200, 200, 200, 200, 200}, {200, 255, 255});
    ExpectSuper({2, 1, 1, 1}, {30, 50}, {80});
}

// 3 x 8 to 2 x 7. Rounding makes it 99 in the lower rows. The lower edge of row 5 comes out
// otherwise as the next index's position than as a sum.
TEST(ZoomSuper, AConstantImageMayLose1AndTheFourChannelFormsDifferInRow5) {
    const std::vector<int> source(24, 100);
    const std::vector<int> sums = {100, 100, 100, 100, 100, 100, 99, 99, 99, 99, 99, 99, 99, 99};
    std::vector<int> positions = sums;
    positions[10] = positions[11] = 100;
    ExpectSuper({3, 8, 2, 7}, source, sums, {kPlainC1, kThreadedC1, kThreadedC4});
    ExpectSuper({3, 8, 2, 7}, source, positions, {kPlainC4});
}

// 3226 * 3228 / 3227 is rounded up to 3227. The last column begins there, on the last pixel, which
// counts twice, and the one before it ends there and takes that pixel in full: nearly 4 * 50 / 2.
// As a sum, the lower edge of the last row but one stays below 3227.
TEST(ZoomSuper, OnLongAxesTheLastPixelMayCountTwice) {
    for (const ZoomForm& form : kForms) {
        SCOPED_TRACE(form.name);
        const std::vector<int> source(3228 * 2 * form.channels, 50);
        const std::vector<int> wide = tqtest::ZoomBytes(form, {3228, 2, 3227, 1}, source);
        const std::vector<int> tall = tqtest::ZoomBytes(form, {2, 3228, 1, 3227}, source);
        for (int channel = 0; channel < form.channels; ++channel) {
            EXPECT_EQ(wide[3224 * form.channels + channel], 49);
            EXPECT_EQ(wide[3225 * form.channels + channel], 99);
            EXPECT_EQ(wide[3226 * form.channels + channel], 99);
            EXPECT_EQ(tall[3224 * form.channels + channel], 49);
            EXPECT_EQ(tall[3225 * form.channels + channel],
                      form.function == IPL_ZoomSuper_8u_C4R ? 99 : 49);
            EXPECT_EQ(tall[3226 * form.channels + channel], 99);
        }
    }
}

TEST(ZoomSuper, FourChannelsAreScaledAlikeAndApart) {
    for (const ZoomForm& form : {kPlainC4, kThreadedC4})
        EXPECT_EQ(
            tqtest::ZoomBytes(form, {2, 2, 1, 1},
                              {0, 10, 200, 255, 100, 10, 0, 255, 0, 11, 0, 255, 0, 11, 1, 254}),
            (std::vector<int>{25, 10, 50, 254}))
            << form.name;
}

TEST(ZoomSuper, EveryPixelOfTheSourceCounts) {
    for (int pixel = 0; pixel < 49; ++pixel) {
        std::vector<int> source(49);
        source[pixel] = 255;
        const int x = pixel % 7, y = pixel / 7;
        std::vector<int> expected(9);
        // 7 to 3: pixels 2 and 4 are shared, a third to one side and two to the other.
        const int shares[7][3] = {{3, 0, 0}, {3, 0, 0}, {1, 2, 0}, {0, 3, 0},
                                  {0, 2, 1}, {0, 0, 3}, {0, 0, 3}};
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 3; ++column)
                expected[row * 3 + column] = 255 * shares[x][column] * shares[y][row] / 49;
        ExpectSuper({7, 7, 3, 3}, source, expected);
    }
}

// ---- What goes to the six-tap zoom --------------------------------------------------------------

struct Delegation {
    ZoomForm super;
    tqtest::ZoomFunction sixTap;
};
const Delegation kDelegations[] = {{kPlainC1, IPL_Zoom6Cubic_8u_C1R},
                                   {kPlainC4, IPL_Zoom6Cubic_8u_C4R},
                                   {kThreadedC1, IPL_Zoom6CubicMultiThread_8u_C1R},
                                   {kThreadedC4, IPL_Zoom6CubicMultiThread_8u_C4R}};

// What is left in the pool's tables tells that it was the six-tap zoom.
TEST(ZoomSuper, EnlargementOfEitherAxisIsTheSixTapZoom) {
    tqtest::Settings settings;
    settings.UseProcessors(3);
    for (const Delegation& to : kDelegations)
        for (const ZoomSizes& s : {ZoomSizes{9, 7, 18, 15},
                                   {9, 7, 10, 8},
                                   {9, 20, 10, 7},
                                   {20, 9, 7, 10},
                                   {9, 7, 10, 7},
                                   {9, 7, 9, 8},
                                   {1, 1, 2, 1},
                                   {1, 40, 2, 1}}) {
            const int channels = to.super.channels;
            GuardedImage src(s.srcWidth * channels, s.srcHeight, {GuardedBuffer::kEnd, 5});
            GuardedImage dst(s.dstWidth * channels, s.dstHeight, {GuardedBuffer::kEnd, 3});
            GuardedImage expected(s.dstWidth * channels, s.dstHeight, {GuardedBuffer::kEnd, 3});
            tqtest::Fill(src.Memory(), src.Size(), Content::kNoise, 11);
            to.sixTap(s.srcWidth, s.srcHeight, src.Stride(), src.First(), s.dstWidth, s.dstHeight,
                      expected.Stride(), expected.First());
            g_IPL6CubicTablePool.Clear();
            to.super.function(s.srcWidth, s.srcHeight, src.Stride(), src.First(), s.dstWidth,
                              s.dstHeight, dst.Stride(), dst.First());
            EXPECT_EQ(dst.Copy(), expected.Copy())
                << to.super.name << ", " << s.srcWidth << " x " << s.srcHeight << " to "
                << s.dstWidth << " x " << s.dstHeight;
            EXPECT_GT(g_IPL6CubicTablePool.m_arrTables.GetSize(), 0) << to.super.name;
        }
}

TEST(ZoomSuper, ReductionIsNotTheSixTapZoom) {
    for (const Delegation& to : kDelegations)
        for (const ZoomSizes& s :
             {ZoomSizes{9, 7, 8, 6}, {9, 7, 9, 6}, {9, 7, 8, 7}, {9, 7, 1, 1}, {2, 1, 1, 1}}) {
            g_IPL6CubicTablePool.Clear();
            ASSERT_TRUE(tqtest::EqualsReference(to.super, s, tqtest::ZoomLayouts()[1],
                                                Content::kNoise, 1, {tq::CurrentIsaLevel()}));
            EXPECT_EQ(g_IPL6CubicTablePool.m_arrTables.GetSize(), 0) << to.super.name;
        }
}

// Also where the six-tap zoom does the work: it is that form of it which is as the call's.
TEST(ZoomSuper, OnlyTheMultiThreadFormsUseThePool) {
    tqtest::Settings settings;
    settings.UseProcessors(4);
    for (const ZoomSizes& sizes : {ZoomSizes{40, 40, 20, 20}, {20, 20, 40, 40}}) {
        for (const ZoomForm& form : kPlainForms)
            EXPECT_EQ(tqtest::WorkersAfter(form, sizes), 0u) << form.name;
        for (const ZoomForm& form : kThreadedForms)
            EXPECT_GT(tqtest::WorkersAfter(form, sizes), 0u) << form.name;
    }
}

// ---- What comes before the method ---------------------------------------------------------------

INSTANTIATE_TEST_SUITE_P(ZoomSuper, ZoomPreamble, testing::ValuesIn(kForms), tqtest::ZoomFormName);

// ---- The reference at every level ---------------------------------------------------------------

TEST(ZoomSuper, AllSizesUpToSixEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(2);
    for (const ZoomForm& form : kForms) ASSERT_TRUE(tqtest::ZoomSweep(form).AllSizesUpTo(6));
}

TEST(ZoomSuper, SizesOfEveryKindEqualTheReference) {
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

TEST(ZoomSuper, AllReductionsOfAxesUpTo40EqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (int from = 1; from <= 40; ++from)
            for (int to = 1; to <= from; ++to) {
                ASSERT_TRUE(equals({from, 5, to, 3}, Content::kNoise));
                ASSERT_TRUE(equals({5, from, 3, to}, Content::kNoise));
                ASSERT_TRUE(equals({from, from, to, to}, Content::kHostile));
            }
    }
}

TEST(ZoomSuper, LongRowsOfEveryScaleEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (int to : {1, 2, 7, 64, 99, 255, 333, 500, 512, 513, 599, 700, 767, 999, 1000, 1001})
            for (int from : {1001, 1024, 2001})
                ASSERT_TRUE(equals({from, 3, std::min(from, to), 2}, Content::kNoise));
    }
}

TEST(ZoomSuper, WholeScalesEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (int across = 2; across <= 9; ++across)
            for (int down = 2; down <= 9; ++down)
                for (int dstWidth : {1, 2, 3, 7, 16, 17, 33, 70})
                    ASSERT_TRUE(equals({across * dstWidth, down * 2, dstWidth, 2},
                                       dstWidth % 2 == 0 ? Content::kNoise : Content::kHostile));
        // Runs of rows that are too long to be handled at once.
        for (const ZoomSizes& sizes : {ZoomSizes{6002, 4, 3001, 2},
                                       {9003, 6, 3001, 2},
                                       {24000, 2, 12000, 1},
                                       {27003, 5, 9001, 1},
                                       {17000, 3, 8500, 2}})
            ASSERT_TRUE(equals.InEveryLayout(sizes, Content::kNoise));
    }
}

// The greatest sums that there are, of areas of every size.
TEST(ZoomSuper, WhiteEqualsTheReferenceAtEveryScale) {
    tqtest::Settings settings;
    const std::vector<uint8_t> white(40000, 255);
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (const ZoomForm& form : kPlainForms)
            for (int across = 1; across <= 70; across += across < 20 ? 1 : 7)
                for (int down = 1; down <= 70; down += down < 20 ? 1 : 7)
                    for (int more : {0, 1}) {
                        const ZoomSizes s = {2 * across + more, down + more, 2, 1};
                        const int dstStride = 2 * form.channels;
                        std::vector<uint8_t> actual(dstStride, 7), expected(dstStride, 7);
                        auto* source = const_cast<uint8_t*>(white.data());
                        form.function(s.srcWidth, s.srcHeight, s.srcWidth * form.channels, source,
                                      s.dstWidth, s.dstHeight, dstStride, actual.data());
                        form.reference(s.srcWidth, s.srcHeight, s.srcWidth * form.channels, source,
                                       s.dstWidth, s.dstHeight, dstStride, expected.data());
                        ASSERT_EQ(actual, expected)
                            << form.name << ", " << s.srcWidth << " x " << s.srcHeight << ", level "
                            << tq::IsaLevelName(level);
                    }
    }
}

// Every middle row goes into one sum, whose rounding shows beyond 2^24: 255 * 70000 and more.
TEST(ZoomSuper, LongSumsAreRoundedInTheirOrder) {
    tqtest::Settings settings;
    settings.UseProcessors(2);
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals(form);
        for (const ZoomSizes& sizes : {ZoomSizes{70001, 3, 1, 1},
                                       {3, 70001, 1, 1},
                                       {70001, 2, 3, 1},
                                       {600, 500, 1, 1},
                                       {601, 503, 2, 3}})
            for (Content content : {Content::kNoise, Content::kHostile})
                ASSERT_TRUE(equals(sizes, content));
    }
}

TEST(ZoomSuper, SizesAtRandomEqualTheReference) {
    for (const ZoomForm& form : kPlainForms)
        ASSERT_TRUE(tqtest::ZoomSweep(form).WithSizesAtRandom(600, 300, 9));
}

TEST(ZoomSuper, VeryWideAndVeryTallImagesEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(2);
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals(form);
        for (const ZoomSizes& sizes : {ZoomSizes{100000, 2, 70000, 1},
                                       {3228, 2, 3227, 1},
                                       {2, 3228, 1, 3227},
                                       {100000, 1, 99999, 1},
                                       {2, 70000, 1, 60000}})
            ASSERT_TRUE(equals(sizes, Content::kNoise));
    }
}

// Single precision tells only each eighth position apart here: columns begin and end where rounding
// has its way, and some have no pixel between the two.
TEST(ZoomSuper, PositionsBeyond2To26EqualTheReference) {
    tqtest::ZoomSweep equals(kPlainC1);
    ASSERT_TRUE(equals({70000000, 1, 13000000, 1}, Content::kNoise));
}

TEST(ZoomSuper, VideoSizesEqualTheReference) {
    // Bands of this size run at the same time, not one after the other.
    tqtest::Settings settings;
    settings.UseProcessors(4);
    for (const ZoomForm& form : kForms)
        for (const ZoomSizes& sizes : {ZoomSizes{720, 486, 1920, 1080},
                                       {1920, 1080, 1280, 720},
                                       {1920, 1080, 720, 486},
                                       {1920, 1080, 960, 540}})
            ASSERT_TRUE(tqtest::EqualsReference(form, sizes, tqtest::ZoomLayouts()[1],
                                                Content::kNoise, 1, {tq::DetectIsaLevel()}));
}

// ---- Bands --------------------------------------------------------------------------------------

TEST(ZoomSuper, OneChannelMultiThreadEqualsPlainAtEveryProcessorCount) {
    for (const ZoomSizes& sizes : {ZoomSizes{19, 40, 7, 33},
                                   {19, 40, 19, 17},
                                   {33, 33, 32, 33},
                                   {5, 9, 2, 8},
                                   {5, 9, 2, 1},
                                   {9, 9, 20, 20}})
        tqtest::ExpectThreadedEqualsPlain(kPlainC1, kThreadedC1, sizes);
}

TEST(ZoomSuper, FourChannelMultiThreadEqualsItsReferenceAtEveryProcessorCount) {
    for (const ZoomSizes& sizes :
         {ZoomSizes{3, 8, 2, 7}, {19, 40, 7, 33}, {9, 31, 9, 17}, {12, 16, 5, 16}, {5, 9, 2, 1}})
        tqtest::ExpectReferenceAtEveryProcessorCount(kThreadedC4, sizes);
    // What goes to the six-tap zoom is the same in both forms.
    tqtest::ExpectThreadedEqualsPlain(kPlainC4, kThreadedC4, {9, 9, 20, 20});
}

TEST(ZoomSuper, SeveralThreadsZoomDifferentImagesAtOnce) {
    tqtest::ExpectSeveralThreadsZoomAtOnce(kForms, {60, 31, 20, 23});
}

}  // namespace
