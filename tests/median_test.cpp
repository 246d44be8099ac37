// Medians: pixels known by hand, which bytes are written, copied or left alone, the whole memory
// against the sort of the reference, arguments out of range.

#include <gtest/gtest.h>
#include <tqipl/filter.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <utility>
#include <vector>

#include "reference/smooth_reference.h"
#include "support/deadline.h"
#include "support/filter_check.h"
#include "support/square_window_check.h"

namespace {

using tqtest::BlockStage;
using tqtest::FilterEqualsReference;
using tqtest::InPlaceEqualsReference;
using tqtest::PlanePair;
using tqtest::Settings;
using Image = std::vector<uint8_t>;

constexpr void (*kMedian)(int, int, int, unsigned char*, int, unsigned char*,
                          int) = IPL_Median_8u_C1R;
constexpr void (*kMedianInPlace)(int, int, int, unsigned char*, int) = IPL_Median_8u_C1R;

Image Filtered(int width, int height, Image src, int radius) {
    Image dst(src.size(), 99);
    IPL_Median_8u_C1R(width, height, width, src.data(), width, dst.data(), radius);
    return dst;
}
Image Filtered3x3(int width, int height, Image src) {
    Image dst(src.size(), 99);
    IPL_Median3x3_8u_C1R(width, height, width, src.data(), width, dst.data());
    return dst;
}

// Noise, without the runs of FillHostile.
Image Noise(size_t bytes, uint32_t seed, uint32_t values) {
    Image image(bytes);
    uint32_t state = seed;
    for (uint8_t& pixel : image) {
        state = state * 1664525u + 1013904223u;
        pixel = static_cast<uint8_t>((state >> 16) % values);
    }
    return image;
}

// ---- Known pixels ----------------------------------------------------------------------------

TEST(Median, TheMiddleOfNineIsTheFifth) {
    const Image src = {9, 1, 8, 0,  //
                       2, 7, 3, 0,  //
                       6, 4, 5, 0,  //
                       0, 0, 0, 0};
    EXPECT_EQ(Filtered(4, 4, src, 1)[5], 5);
    EXPECT_EQ(Filtered3x3(4, 4, src)[5], 5);
}

TEST(Median, TheMiddleOfTwentyFiveIsTheThirteenth) {
    Image src(6 * 6, 200);
    for (int i = 0; i < 25; ++i) src[i / 5 * 6 + i % 5] = static_cast<uint8_t>(i * 7 % 25);
    EXPECT_EQ(Filtered(6, 6, src, 2)[2 * 6 + 2], 12);
}

TEST(Median, EveryOrderOfZerosAndOnesInAWindowGivesItsMajority) {
    for (int bits = 0; bits < 512; ++bits) {
        Image src(16, 77);
        int ones = 0;
        for (int i = 0; i < 9; ++i) {
            src[i / 3 * 4 + i % 3] = bits >> i & 1 ? 250 : 3;
            ones += bits >> i & 1;
        }
        EXPECT_EQ(Filtered(4, 4, src, 1)[5], ones >= 5 ? 250 : 3) << bits;
        EXPECT_EQ(Filtered3x3(4, 4, src)[5], ones >= 5 ? 250 : 3) << bits;
    }
}

TEST(Median, GapsInTheBorderKeepWhatTheDestinationHeld) {
    // Radius 1 in 6 x 5: rows 0 and 3 are copied; of rows 1 and 2, columns 1 to 3 filtered.
    EXPECT_EQ(Filtered(6, 5, Image(30, 7), 1), (Image{7,  7,  7,  7,  7,  7,   //
                                                      99, 7,  7,  7,  99, 99,  //
                                                      99, 7,  7,  7,  99, 99,  //
                                                      7,  7,  7,  7,  7,  7,   //
                                                      99, 99, 99, 99, 99, 99}));
}

TEST(Median, WithoutAnInteriorOnlyRowsAreCopied) {
    EXPECT_EQ(Filtered(2, 3, Image(6, 7), 1), (Image{7, 7, 7, 7, 99, 99}));
    EXPECT_EQ(Filtered(2, 1, Image(2, 7), 1), (Image{7, 7}));
    EXPECT_EQ(Filtered(2, 3, Image(6, 7), 3), Image(6, 7));
    // Too narrow, but high enough: rows in the middle stay.
    EXPECT_EQ(Filtered(3, 4, Image(12, 7), 1), (Image{7, 7, 7, 99, 99, 99, 7, 7, 7, 99, 99, 99}));
    EXPECT_EQ(Filtered(2, 5, Image(10, 7), 1), (Image{7, 7, 99, 99, 99, 99, 7, 7, 99, 99}));
}

TEST(Median, ARadiusOfZeroCopiesRowsByTheirStrides) {
    Image src = {1, 2, 3, 4, 5, 6, 7, 8}, dst(10, 99);
    IPL_Median_8u_C1R(3, 2, 4, src.data(), 5, dst.data(), 0);
    EXPECT_EQ(dst, (Image{1, 2, 3, 99, 99, 5, 6, 7, 99, 99}));
    IPL_Median_8u_C1R(3, 2, 4, src.data(), 0);
    EXPECT_EQ(src, (Image{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(Median3x3, TheBorderColumnsEndTwoRowsAboveTheEnd) {
    EXPECT_EQ(Filtered3x3(5, 5, Image(25, 7)), (Image{7,  7, 7, 7, 7,   //
                                                      7,  7, 7, 7, 7,   //
                                                      7,  7, 7, 7, 7,   //
                                                      99, 7, 7, 7, 99,  //
                                                      7,  7, 7, 7, 7}));
    EXPECT_EQ(Filtered3x3(3, 3, Image(9, 7)), (Image{7, 7, 7, 99, 7, 99, 7, 7, 7}));
    EXPECT_EQ(Filtered3x3(1, 5, Image(5, 7)), (Image{7, 7, 7, 99, 7}));
    EXPECT_EQ(Filtered3x3(2, 4, Image(8, 7)), (Image{7, 7, 7, 7, 99, 99, 7, 7}));
}

TEST(Median3x3, BelowAHeightOf3OnlyTheFirstAndTheLastRowAreCopied) {
    EXPECT_EQ(Filtered3x3(3, 2, {1, 2, 3, 4, 5, 6}), (Image{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(Filtered3x3(3, 1, {1, 2, 3}), (Image{1, 2, 3}));
}

TEST(Median3x3, EqualsTheMedianOfRadius1OnThePixelsThatBothFilter) {
    const int width = 37, height = 11;
    const Image src = Noise(width * height, 5, 256);
    const Image any = Filtered(width, height, src, 1), nine = Filtered3x3(width, height, src);
    for (int y = 1; y <= height - 3; ++y)
        for (int x = 1; x <= width - 3; ++x)
            EXPECT_EQ(any[y * width + x], nine[y * width + x]) << x << ", " << y;
    EXPECT_NE(any, nine);
}

// ---- The whole memory ------------------------------------------------------------------------

TEST(Median3x3, EqualsTheReferenceAtAllSizesAndStrides) {
    BlockStage stage(2, 1024, 1);
    for (int width = 1; width <= 70; ++width)
        for (int height : {1, 2, 3, 4, 5, 8})
            for (const PlanePair& pair : tqtest::PlanePairsBothWays(width, height))
                ASSERT_TRUE(
                    FilterEqualsReference(stage, pair, tqref::Median3x3, IPL_Median3x3_8u_C1R))
                    << pair;
}

TEST(Median, EqualsTheReferenceAtAllSizesAndStrides) {
    BlockStage stage(2, 2048, 2);
    for (int width : tqtest::kFilterWidths)
        for (int height : {1, 2, 3, 4, 5, 7, 11})
            for (int radius : {0, 1, 2, 3, 5})
                for (const PlanePair& pair : tqtest::PlanePairs(width, height))
                    ASSERT_TRUE(FilterEqualsReference(stage, pair, tqref::Median, kMedian, radius))
                        << pair << ", radius " << radius;
}

TEST(Median, EqualsTheSortForRadii1To10) {
    Settings settings;
    const int width = 131, height = 37;
    for (int radius = 1; radius <= 10; ++radius)
        for (uint32_t values : {2u, 17u, 256u}) {
            Image src = Noise(width * height, radius * 256 + values, values);
            Image expected(src.size(), 99);
            tqref::Bytes from(src.data()), to(expected.data());
            tqref::Median(width, height, width, from, width, to, radius);
            for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                settings.Use(level);
                EXPECT_TRUE(Filtered(width, height, src, radius) == expected)
                    << radius << ", " << values << " values, level " << tq::IsaLevelName(level);
            }
        }
}

TEST(Median, EqualsTheReferenceWithLargeWindows) {
    BlockStage stage(2, 8192, 3);
    for (int radius : {7, 11, 15, 16, 31})
        for (int width : {2 * radius + 1, 2 * radius + 2, 2 * radius + 3, 2 * radius + 19})
            for (int height : {2 * radius + 1, 2 * radius + 2, 2 * radius + 5})
                ASSERT_TRUE(FilterEqualsReference(stage, PlanePair{width, height, width + 1, width},
                                                  tqref::Median, kMedian, radius))
                    << width << " x " << height << ", radius " << radius;
}

TEST(Median, LongRowsEqualTheSort) {
    Settings settings;
    for (int radius : {1, 6, 9}) {
        const int width = 1100 + radius, height = 2 * radius + 4;
        Image src = Noise(width * height, radius, 256), expected(src.size(), 99);
        tqref::Bytes from(src.data()), to(expected.data());
        tqref::Median(width, height, width, from, width, to, radius);
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
            settings.Use(level);
            EXPECT_TRUE(Filtered(width, height, src, radius) == expected) << radius;
        }
    }
}

TEST(Median, WindowsOfMoreThan65535PixelsCountThemAll) {
    // 255 * 255 = 65025, 257 * 257 = 66049 and 263 * 263 = 69169 pixels.
    for (int radius : {127, 128, 131}) {
        const int window = 2 * radius + 1, side = window + 1, half = window * window / 2;
        for (int whites : {half, half + 1}) {
            Image src(side * side, 0);
            for (int i = 0; i < whites; ++i) src[i / window * side + i % window] = 255;
            EXPECT_EQ(Filtered(side, side, src, radius)[radius * side + radius],
                      whites == half ? 0 : 255)
                << radius;
        }
        EXPECT_EQ(Filtered(side, side, Image(side * side, 200), radius)[radius * side + radius],
                  200);
    }
}

TEST(Median, RadiiAboveTheImageStayInside) {
    tqtest::ExpectRadiiAboveTheImageStayInside(tqref::Median, kMedian, 4);
}

TEST(Median, TheInPlaceFormEqualsTheReference) {
    tqtest::ExpectTheInPlaceFormEqualsTheReference(tqref::Median, kMedianInPlace, 5);
}

// ---- Arguments out of range ------------------------------------------------------------------

TEST(Median, BadArgumentsWriteNothing) {
    tqtest::Deadline deadline;
    BlockStage stage(2, 64, 6);
    stage.Model([](tqref::Bytes*) {});
    EXPECT_TRUE(stage.Check([](uint8_t* const* images) {
        uint8_t *src = images[0], *dst = images[1];
        for (int radius : {0, 1, 2}) {
            for (int bad : {0, -1, -6, INT_MIN}) {
                IPL_Median_8u_C1R(bad, 5, 6, src, 6, dst, radius);
                IPL_Median_8u_C1R(5, bad, 6, src, 6, dst, radius);
                IPL_Median_8u_C1R(5, 5, bad, src, 6, dst, radius);
                IPL_Median_8u_C1R(5, 5, 6, src, bad, dst, radius);
            }
            IPL_Median_8u_C1R(5, 5, 6, nullptr, 6, dst, radius);
            IPL_Median_8u_C1R(5, 5, 6, src, 6, nullptr, radius);
        }
        for (int radius : {-1, -2, INT_MIN}) IPL_Median_8u_C1R(5, 5, 6, src, 6, dst, radius);
    }));
}

TEST(Median, InPlaceBadArgumentsWriteNoMoreThanTheImage) {
    BlockStage stage(1, 256, 7);
    auto nowhere = [](int, int) { return false; };
    for (int radius : {-1, INT_MIN})
        EXPECT_TRUE(InPlaceEqualsReference(stage, 9, 5, 12, tqref::Median, kMedianInPlace, nowhere,
                                           radius));
    for (int radius : {0, 2})
        EXPECT_TRUE(InPlaceEqualsReference(stage, 9, 5, -12, tqref::Median, kMedianInPlace, nowhere,
                                           radius));
    stage.Model([](tqref::Bytes*) {});
    for (const auto& size : {std::pair{0, 5}, {5, 0}, {-1, 5}, {5, -1}, {-5, -5}})
        for (int radius : {0, 1})
            EXPECT_TRUE(stage.Check([&](uint8_t* const* images) {
                IPL_Median_8u_C1R(size.first, size.second, 6, images[0], radius);
            })) << size.first
                << " x " << size.second;
}

TEST(Median3x3, AZeroAmongTheArgumentsOrASizeBelowItWritesNothing) {
    BlockStage stage(2, 64, 8);
    stage.Model([](tqref::Bytes*) {});
    EXPECT_TRUE(stage.Check([](uint8_t* const* images) {
        uint8_t *src = images[0], *dst = images[1];
        for (int bad : {0, -1, -6, -40000, INT_MIN}) {
            IPL_Median3x3_8u_C1R(bad, 5, 6, src, 6, dst);
            IPL_Median3x3_8u_C1R(5, bad, 6, src, 6, dst);
            IPL_Median3x3_8u_C1R(bad, bad, 6, src, 6, dst);
        }
        IPL_Median3x3_8u_C1R(5, 5, 0, src, 6, dst);
        IPL_Median3x3_8u_C1R(5, 5, 6, src, 0, dst);
        IPL_Median3x3_8u_C1R(5, 5, 6, nullptr, 6, dst);
        IPL_Median3x3_8u_C1R(5, 5, 6, src, 6, nullptr);
    }));
}

}  // namespace
