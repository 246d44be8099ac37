// Cubic zoom: weights and pixels known by hand, bad arguments, the reference at every level, bands,
// and the one call whose plain and MultiThread forms differ.

#include <gtest/gtest.h>
#include <tqipl/zoom.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
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

const ZoomForm kPlainC1 = {"IPL_ZoomCubic_8u_C1R", IPL_ZoomCubic_8u_C1R, tqref::ZoomCubicPlainC1,
                           1};
const ZoomForm kPlainC4 = {"IPL_ZoomCubic_8u_C4R", IPL_ZoomCubic_8u_C4R, tqref::ZoomCubicC4, 4};
const ZoomForm kThreadedC1 = {"IPL_ZoomCubicMultiThread_8u_C1R", IPL_ZoomCubicMultiThread_8u_C1R,
                              tqref::ZoomCubicC1, 1};
const ZoomForm kThreadedC4 = {"IPL_ZoomCubicMultiThread_8u_C4R", IPL_ZoomCubicMultiThread_8u_C4R,
                              tqref::ZoomCubicC4, 4};
const std::vector<ZoomForm> kForms = {kPlainC1, kPlainC4, kThreadedC1, kThreadedC4};
const std::vector<ZoomForm> kThreadedForms = {kThreadedC1, kThreadedC4};

// The plain one-channel form reads on from the first byte where the widths are equal. There is
// nothing to read behind an image that is stored upside down.
bool ReadsInsideTheImage(const ZoomSizes& sizes, const tqtest::ZoomLayout& layout) {
    return !layout.src.bottomUp || sizes.srcWidth != sizes.dstWidth;
}

tqtest::ZoomSweep SweepOf(const ZoomForm& form) {
    const bool packed = form.function == IPL_ZoomCubic_8u_C1R;
    return tqtest::ZoomSweep(form, packed ? ReadsInsideTheImage : nullptr);
}

// Known by hand, so at every level.
void ExpectCubic(const ZoomSizes& sizes, const std::vector<int>& source,
                 const std::vector<int>& expected) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        SCOPED_TRACE(tq::IsaLevelName(level));
        settings.Use(level);
        tqtest::ExpectZoom(kForms, sizes, source, expected);
    }
}

// ---- Weights ------------------------------------------------------------------------------------

std::vector<int> CubicWeights(int srcLength, int dstLength) {
    const std::unique_ptr<int[]> table(tq::IPL_CubicWeightTable(srcLength, dstLength));
    const size_t size = tqref::PackTapRecords(tqref::CubicRecords(srcLength, dstLength)).size();
    return {table.get(), table.get() + size};
}

TEST(CubicWeights, TheKernelIs1At0And0AtWholeDistances) {
    EXPECT_EQ(tq::IPL_CubicKernel(0.0f), 1.0f);
    for (float t : {1.0f, 2.0f, 3.0f, -1.0f, -2.0f, -3.0f, 3.25f, 4.0f, -100.0f, 1e30f})
        EXPECT_EQ(tq::IPL_CubicKernel(t), 0.0f) << t;
    // (5 - 11 / 4 + 6 / 8) / 5, (14 - 81 / 2 + 36 - 81 / 8) / 5, (105 / 2 - 18 - 50 + 125 / 8) / 5
    for (float sign : {1.0f, -1.0f}) {
        EXPECT_EQ(tq::IPL_CubicKernel(sign * 0.5f), 0.6f);
        EXPECT_EQ(tq::IPL_CubicKernel(sign * 1.5f), -0.125f);
        EXPECT_EQ(tq::IPL_CubicKernel(sign * 2.5f), 0.025f);
    }
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(tq::IPL_CubicKernel(infinity), 0.0f);
    EXPECT_EQ(tq::IPL_CubicKernel(std::nanf("")), 0.0f);
}

TEST(CubicWeights, TheKernelEqualsTheReferenceToTheLastBit) {
    for (int i = -70000; i <= 70000; ++i) {
        const float t = static_cast<float>(i) / 21001.0f;
        ASSERT_EQ(tq::IPL_CubicKernel(t), tqref::CubicKernel(t)) << t;
    }
    for (float t : {1.0f, 2.0f, 3.0f}) {
        const float below = std::nextafterf(t, 0.0f), above = std::nextafterf(t, 4.0f);
        EXPECT_EQ(tq::IPL_CubicKernel(below), tqref::CubicKernel(below)) << t;
        EXPECT_EQ(tq::IPL_CubicKernel(above), tqref::CubicKernel(above)) << t;
    }
}

// Positions -0.25, 0.25, 0.75, 1.25 and so on. The first lies left of sample 0 and is cut to 0.
TEST(CubicWeights, FourToEight) {
    EXPECT_EQ(CubicWeights(4, 8), (std::vector<int>{0, 2, 1145, -158, 36,          //
                                                    0, 2, 832,  253,  -61,         //
                                                    0, 2, 267,  877,  -121,        //
                                                    0, 3, -129, 937,  285,  -69,   //
                                                    0, 3, -69,  285,  937,  -129,  //
                                                    1, 3, -121, 877,  267,         //
                                                    1, 3, -61,  253,  832,         //
                                                    2, 3, -164, 1188}));
}

TEST(CubicWeights, TwoToThreeHaveTheMiddleHalfway) {
    EXPECT_EQ(CubicWeights(2, 3), (std::vector<int>{0, 1, 1141, -117,  //
                                                    0, 1, 512, 512,    //
                                                    0, 1, -117, 1141}));
}

TEST(CubicWeights, EightToFourKeepFourTaps) {
    EXPECT_EQ(CubicWeights(8, 4), (std::vector<int>{0, 2, 571,  571, -119,        //
                                                    1, 4, -134, 646, 646,  -134,  //
                                                    3, 6, -134, 646, 646,  -134,  //
                                                    5, 7, -119, 571, 571}));
}

TEST(CubicWeights, OneSampleWeighs1024Everywhere) {
    EXPECT_EQ(CubicWeights(1, 3), (std::vector<int>{0, 0, 1024, 0, 0, 1024, 0, 0, 1024}));
}

TEST(CubicWeights, EveryTableEqualsTheReference) {
    for (int srcLength = 1; srcLength <= 70; ++srcLength)
        for (int dstLength = 1; dstLength <= 70; ++dstLength)
            ASSERT_EQ(CubicWeights(srcLength, dstLength),
                      tqref::PackTapRecords(tqref::CubicRecords(srcLength, dstLength)))
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
        ASSERT_EQ(CubicWeights(srcLength, dstLength),
                  tqref::PackTapRecords(tqref::CubicRecords(srcLength, dstLength)))
            << srcLength << " to " << dstLength;
}

// ---- Values known by hand -----------------------------------------------------------------------

// Each weight stands alone: 128 of 1024ths of it, rounded, below 0 held at 0.
TEST(ZoomCubic, FourColumnsToEightFollowTheWeights) {
    ExpectCubic({4, 1, 8, 1}, {128, 0, 0, 0}, {143, 104, 33, 0, 0, 0, 0, 0});
    ExpectCubic({4, 1, 8, 1}, {0, 128, 0, 0}, {0, 32, 110, 117, 36, 0, 0, 0});
    ExpectCubic({4, 1, 8, 1}, {0, 0, 128, 0}, {5, 0, 0, 36, 117, 110, 32, 0});
    ExpectCubic({4, 1, 8, 1}, {0, 0, 0, 128}, {0, 0, 0, 0, 0, 33, 104, 149});
}

TEST(ZoomCubic, FourRowsToEightFollowTheWeights) {
    ExpectCubic({1, 4, 1, 8}, {128, 0, 0, 0}, {143, 104, 33, 0, 0, 0, 0, 0});
    ExpectCubic({1, 4, 1, 8}, {0, 0, 0, 128}, {0, 0, 0, 0, 0, 33, 104, 149});
}

TEST(ZoomCubic, HalvesAreRoundedUp) {
    ExpectCubic({2, 1, 1, 1}, {10, 11}, {11});
    ExpectCubic({1, 2, 1, 1}, {10, 11}, {11});
    ExpectCubic({2, 2, 1, 1}, {10, 11, 10, 11}, {11});
    ExpectCubic({2, 2, 1, 1}, {10, 10, 10, 11}, {10});
}

TEST(ZoomCubic, ASourceOfOnePixelFillsTheDestination) {
    ExpectCubic({1, 1, 3, 2}, {77}, {77, 77, 77, 77, 77, 77});
    ExpectCubic({1, 2, 3, 2}, {77, 5}, {77, 77, 77, 5, 5, 5});
    ExpectCubic({2, 1, 2, 3}, {77, 5}, {77, 5, 77, 5, 77, 5});
}

TEST(ZoomCubic, SharpEdgesAreHeldIn0To255) {
    ExpectCubic({4, 1, 8, 1}, {0, 0, 255, 255}, {9, 0, 0, 54, 201, 255, 255, 255});
    ExpectCubic({1, 4, 1, 8}, {0, 0, 255, 255}, {9, 0, 0, 54, 201, 255, 255, 255});
}

// Column 0 of row 1 is -158 * 255 after the first pass, or (1145 + 36) * 255: neither is held in
// the range of a byte, or rounded, before the second pass takes -158 1024ths of it away.
TEST(ZoomCubic, OvershootOfTheFirstPassReachesTheSecond) {
    for (const ZoomForm& form : kForms) {
        std::vector<int> source = {100, 100, 100, 100, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
        auto corner = [&] {
            const bool four = form.channels == 4;
            return tqtest::ZoomBytes(form, {4, 4, 8, 8},
                                     four ? tqtest::InFourChannels(source) : source)[0];
        };
        EXPECT_EQ(corner(), 118) << form.name;
        source[4] = source[6] = 255;
        source[5] = 0;
        EXPECT_EQ(corner(), 66) << form.name;
    }
}

// Weights add up to 1023 in many records.
TEST(ZoomCubic, AConstantImageStaysConstantAtEverySize) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (int value : {0, 1, 127, 254, 255})
            for (const ZoomSizes& sizes : {ZoomSizes{4, 4, 8, 8},
                                           {4, 1, 8, 1},
                                           {1, 4, 1, 8},
                                           {3, 2, 37, 5},
                                           {37, 5, 3, 2},
                                           {64, 3, 65, 7}}) {
                const std::vector<int> source(sizes.srcWidth * sizes.srcHeight, value);
                const std::vector<int> expected(sizes.dstWidth * sizes.dstHeight, value);
                tqtest::ExpectZoom(kForms, sizes, source, expected);
            }
    }
}

// Positions 32.8, 99.5 and 166.2: everything but twelve of the 200 samples may be anything.
TEST(ZoomCubic, AStrongReductionSkipsPixels) {
    for (int other : {0, 255}) {
        std::vector<int> source(200, other);
        for (int column : {31, 32, 33, 34, 98, 99, 100, 101, 165, 166, 167, 168})
            source[column] = 40 + column / 60;
        ExpectCubic({200, 1, 3, 1}, source, {40, 41, 42});
        ExpectCubic({1, 200, 1, 3}, source, {40, 41, 42});
    }
}

TEST(ZoomCubic, FourChannelsAreScaledAlikeAndApart) {
    const std::vector<int> source = {0, 10, 200, 30, 100, 110, 20, 31};
    for (const ZoomForm& form : {kPlainC4, kThreadedC4}) {
        EXPECT_EQ(tqtest::ZoomBytes(form, {2, 1, 1, 1}, source),
                  (std::vector<int>{50, 60, 110, 31}))
            << form.name;
        EXPECT_EQ(tqtest::ZoomBytes(form, {1, 2, 1, 1}, source),
                  (std::vector<int>{50, 60, 110, 31}))
            << form.name;
        EXPECT_EQ(tqtest::ZoomBytes(form, {2, 1, 3, 1}, source),
                  (std::vector<int>{0, 0, 221, 30, 50, 60, 110, 31, 111, 121, 0, 31}))
            << form.name;
    }
}

// ---- Equal widths -------------------------------------------------------------------------------

// Two rows to one is half of each. A byte of padding stands between the rows: 99.
TEST(ZoomCubic, OneChannelWithEqualWidthsTakesTheRowsForPacked) {
    uint8_t source[] = {10, 99, 200}, dst = 0;
    IPL_ZoomCubic_8u_C1R(1, 2, 2, source, 1, 1, 1, &dst);
    EXPECT_EQ(dst, 55);
    IPL_ZoomCubicMultiThread_8u_C1R(1, 2, 2, source, 1, 1, 1, &dst);
    EXPECT_EQ(dst, 105);
}

TEST(ZoomCubic, FourChannelsWithEqualWidthsHonourTheStride) {
    uint8_t source[] = {10, 20, 30, 40, 99, 99, 99, 99, 200, 100, 0, 50}, dst[4];
    for (auto form : {IPL_ZoomCubic_8u_C4R, IPL_ZoomCubicMultiThread_8u_C4R}) {
        std::memset(dst, 0, sizeof dst);
        form(1, 2, 8, source, 1, 1, 4, dst);
        EXPECT_EQ(dst[0], 105);
        EXPECT_EQ(dst[1], 60);
        EXPECT_EQ(dst[2], 15);
        EXPECT_EQ(dst[3], 45);
    }
}

// Whatever stride the caller gives, be it 0 or upwards, the rows read are those below the first.
TEST(ZoomCubic, OneChannelWithEqualWidthsReadsPackedRowsAtEveryStride) {
    constexpr int kWidth = 19, kSrcHeight = 11;
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (int dstHeight : {1, 4, 10, 12, 22, 23})
            for (int stride : {kWidth, kWidth + 1, 1000, 0, 1, -kWidth, -1000}) {
                GuardedBuffer src(kWidth * kSrcHeight);
                tqtest::Fill(src.data(), src.size(), Content::kNoise, dstHeight);
                GuardedImage dst(kWidth, dstHeight, {GuardedBuffer::kEnd, 2});
                GuardedImage expected(kWidth, dstHeight, {GuardedBuffer::kEnd, 2});
                tqref::ZoomCubicC1(kWidth, kSrcHeight, kWidth, src.data(), kWidth, dstHeight,
                                   expected.Stride(), expected.First());
                IPL_ZoomCubic_8u_C1R(kWidth, kSrcHeight, stride, src.data(), kWidth, dstHeight,
                                     dst.Stride(), dst.First());
                ASSERT_EQ(dst.Copy(), expected.Copy())
                    << kSrcHeight << " to " << dstHeight << " rows, stride " << stride << ", level "
                    << tq::IsaLevelName(level);
            }
    }
}

// Of equal heights, and where both axes differ, the stride counts.
TEST(ZoomCubic, OneChannelHonoursTheStrideWhereTheWidthsDiffer) {
    uint8_t source[] = {10, 20, 99, 30, 40}, dst[2];
    for (auto form : {IPL_ZoomCubic_8u_C1R, IPL_ZoomCubicMultiThread_8u_C1R}) {
        form(2, 2, 3, source, 1, 2, 1, dst);
        EXPECT_EQ(dst[0], 15);
        EXPECT_EQ(dst[1], 35);
        form(2, 2, 3, source, 1, 1, 1, dst);
        EXPECT_EQ(dst[0], 25);
    }
}

// ---- What comes before the method ---------------------------------------------------------------

INSTANTIATE_TEST_SUITE_P(ZoomCubic, ZoomPreamble, testing::ValuesIn(kForms), tqtest::ZoomFormName);

// ---- The reference at every level ---------------------------------------------------------------

TEST(ZoomCubic, AllSizesUpToSixEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(2);
    for (const ZoomForm& form : kForms) ASSERT_TRUE(SweepOf(form).AllSizesUpTo(6));
}

TEST(ZoomCubic, SizesOfEveryKindEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(3);
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals = SweepOf(form);
        for (const ZoomSizes& sizes : tqtest::ZoomSizesOfEveryKind()) {
            ASSERT_TRUE(equals.InEveryLayout(sizes, Content::kNoise));
            ASSERT_TRUE(equals(sizes, Content::kHostile));
        }
    }
}

TEST(ZoomCubic, AllSmallWidthsEqualTheReference) {
    for (const ZoomForm& form : {kPlainC1, kPlainC4}) {
        tqtest::ZoomSweep equals = SweepOf(form);
        for (int srcWidth = 1; srcWidth <= 36; ++srcWidth)
            for (int dstWidth = 1; dstWidth <= 36; ++dstWidth)
                ASSERT_TRUE(equals({srcWidth, 1 + dstWidth % 4, dstWidth, 1 + srcWidth % 3},
                                   Content::kHostile));
    }
}

TEST(ZoomCubic, SizesAtRandomEqualTheReference) {
    for (const ZoomForm& form : {kPlainC1, kPlainC4})
        ASSERT_TRUE(SweepOf(form).WithSizesAtRandom(600, 300, 9));
}

TEST(ZoomCubic, VeryWideAndVeryTallImagesEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(2);
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals = SweepOf(form);
        for (const ZoomSizes& sizes : {ZoomSizes{70000, 1, 100000, 1},
                                       {70000, 2, 60000, 3},
                                       {70001, 2, 70001, 3},
                                       {1, 70000, 1, 100000},
                                       {2, 40000, 3, 30000},
                                       {9, 120000, 7, 50}})
            ASSERT_TRUE(equals(sizes, Content::kNoise));
    }
}

TEST(ZoomCubic, VideoSizesEqualTheReference) {
    // Bands of this size run at the same time, not one after the other.
    tqtest::Settings settings;
    settings.UseProcessors(4);
    for (const ZoomForm& form : kForms)
        for (const ZoomSizes& sizes : {ZoomSizes{720, 486, 1920, 1080}, {1920, 1080, 1280, 720}})
            ASSERT_TRUE(tqtest::EqualsReference(form, sizes, tqtest::ZoomLayouts()[1],
                                                Content::kNoise, 1, {tq::DetectIsaLevel()}));
}

// ---- Bands --------------------------------------------------------------------------------------

TEST(ZoomCubic, MultiThreadEqualsPlainAtEveryProcessorCount) {
    for (const ZoomSizes& sizes : {ZoomSizes{19, 17, 27, 17},
                                   {19, 16, 7, 16},
                                   {19, 23, 33, 40},
                                   {33, 31, 17, 9},
                                   {5, 3, 15, 16},
                                   {2, 1, 1, 3}}) {
        tqtest::ExpectThreadedEqualsPlain(kPlainC1, kThreadedC1, sizes);
        tqtest::ExpectThreadedEqualsPlain(kPlainC4, kThreadedC4, sizes);
    }
    for (const ZoomSizes& sizes : {ZoomSizes{33, 12, 33, 19}, {7, 12, 7, 5}})
        tqtest::ExpectThreadedEqualsPlain(kPlainC4, kThreadedC4, sizes);
}

TEST(ZoomCubic, MultiThreadEqualsTheReferenceAtEveryProcessorCount) {
    for (const ZoomForm& form : kThreadedForms)
        for (const ZoomSizes& sizes :
             {ZoomSizes{33, 12, 33, 19}, {7, 12, 7, 5}, {31, 3, 65, 7}, {9, 35, 4, 35}})
            tqtest::ExpectReferenceAtEveryProcessorCount(form, sizes);
}

TEST(ZoomCubic, OnlyTheMultiThreadFormsUseThePool) {
    tqtest::Settings settings;
    settings.UseProcessors(4);
    for (const ZoomSizes& sizes : {ZoomSizes{20, 20, 40, 40}, {20, 20, 40, 20}, {20, 20, 20, 40}}) {
        for (const ZoomForm& form : {kPlainC1, kPlainC4})
            EXPECT_EQ(tqtest::WorkersAfter(form, sizes), 0u) << form.name;
        for (const ZoomForm& form : kThreadedForms)
            EXPECT_GT(tqtest::WorkersAfter(form, sizes), 0u) << form.name;
    }
}

TEST(ZoomCubic, SeveralThreadsZoomDifferentImagesAtOnce) {
    tqtest::ExpectSeveralThreadsZoomAtOnce(kForms, {31, 17, 20, 23});
}

}  // namespace
