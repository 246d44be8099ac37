// Gauss and average: pixels known by hand, which bytes are written, copied or left alone, the whole
// memory against the reference, sums that wrap, arguments out of range.

#include <gtest/gtest.h>
#include <tqipl/filter.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

#include "frame/memory_manager.h"
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
using Form = void (*)(int, int, int, unsigned char*, int, unsigned char*);
using RadiusForm = void (*)(int, int, int, unsigned char*, int, unsigned char*, int);
using InPlaceForm = void (*)(int, int, int, unsigned char*);
using InPlaceRadiusForm = void (*)(int, int, int, unsigned char*, int);

constexpr Form kGauss3x3 = IPL_Gauss3x3_8u_C1R;
constexpr InPlaceForm kGauss3x3InPlace = IPL_Gauss3x3_8u_C1R;
constexpr RadiusForm kGauss = IPL_Gauss_8u_C1R, kAverage = IPL_Average_8u_C1R;
constexpr InPlaceRadiusForm kGaussInPlace = IPL_Gauss_8u_C1R, kAverageInPlace = IPL_Average_8u_C1R;

bool Everywhere(int, int) { return true; }
bool Nowhere(int, int) { return false; }

template <class... Radius>
Image Filtered(void (*form)(int, int, int, unsigned char*, int, unsigned char*, Radius...),
               int width, int height, Image src, Radius... radius) {
    Image dst(src.size(), 99);
    form(width, height, width, src.data(), width, dst.data(), radius...);
    return dst;
}

// ---- Gauss 3 x 3 -----------------------------------------------------------------------------

TEST(Gauss3x3, AUniformImageIsKept) {
    for (int value = 0; value < 256; ++value) {
        const Image image(7 * 5, static_cast<uint8_t>(value));
        EXPECT_EQ(Filtered(kGauss3x3, 7, 5, image), image);
    }
}

TEST(Gauss3x3, WeightsAre4And2And1) {
    Image src(5 * 5, 0);
    src[12] = 16;
    EXPECT_EQ(Filtered(kGauss3x3, 5, 5, src), (Image{0, 0, 0, 0, 0,  //
                                                     0, 1, 2, 1, 0,  //
                                                     0, 2, 4, 2, 0,  //
                                                     0, 1, 2, 1, 0,  //
                                                     0, 0, 0, 0, 0}));
}

TEST(Gauss3x3, HalfAStepRoundsUp) {
    Image src(4 * 4, 0);
    src[5] = 2;  // 4 * 2 of 16 in its place, 2 * 2 beside it, 2 across
    EXPECT_EQ(Filtered(kGauss3x3, 4, 4, src), (Image{0, 0, 0, 0,  //
                                                     0, 1, 0, 0,  //
                                                     0, 0, 0, 0,  //
                                                     0, 0, 0, 0}));
    src[5] = 1;
    EXPECT_EQ(Filtered(kGauss3x3, 4, 4, src)[5], 0);
}

TEST(Gauss3x3, FirstAndLastRowAndColumnAreCopied) {
    Image src(16);
    for (int i = 0; i < 16; ++i) src[i] = static_cast<uint8_t>(i * i);
    const Image dst = Filtered(kGauss3x3, 4, 4, src);
    for (int i : {0, 1, 2, 3, 4, 7, 8, 11, 12, 13, 14, 15}) EXPECT_EQ(dst[i], src[i]) << i;
    // (4 * 25 + 2 * (1 + 81 + 16 + 36) + 0 + 4 + 64 + 100 + 8) >> 4
    EXPECT_EQ(dst[5], 34);
}

TEST(Gauss3x3, BelowFourTheDestinationGoesToTheSource) {
    for (auto [width, height] : {std::pair{3, 5}, {5, 3}, {1, 1}, {3, 3}, {1, 9}, {9, 2}}) {
        Image src(width * height, 10), dst(width * height, 20);
        IPL_Gauss3x3_8u_C1R(width, height, width, src.data(), width, dst.data());
        EXPECT_EQ(src, Image(src.size(), 20)) << width << " x " << height;
        EXPECT_EQ(dst, Image(src.size(), 20)) << width << " x " << height;
    }
}

TEST(Gauss3x3, EqualsTheReferenceAtAllSizesAndStrides) {
    BlockStage stage(2, 1024, 1);
    for (int width = 1; width <= 70; ++width)
        for (int height : {1, 2, 3, 4, 5, 8})
            for (const PlanePair& pair : tqtest::PlanePairsBothWays(width, height))
                ASSERT_TRUE(FilterEqualsReference(stage, pair, tqref::Gauss3x3, kGauss3x3)) << pair;
}

TEST(Gauss3x3, LongRowsEqualTheReference) {
    BlockStage stage(2, 16384, 15);
    for (int width : {1023, 1024, 1025, 1026, 1027, 1060, 2049, 2050, 2051, 3000})
        ASSERT_TRUE(FilterEqualsReference(stage, PlanePair{width, 5, width + 1, width},
                                          tqref::Gauss3x3, kGauss3x3))
            << width;
}

TEST(Gauss3x3, TheInPlaceFormEqualsTheReference) {
    BlockStage stage(1, 1024, 2);
    for (int width : {1, 2, 3, 4, 5, 16, 17, 40})
        for (int height : {1, 3, 4, 5, 9})
            for (int stride : {width, width + 1, width + 6, -width - 2}) {
                const bool filtered = width >= 4 && height >= 4;
                EXPECT_TRUE(InPlaceEqualsReference(stage, width, height, stride, tqref::Gauss3x3,
                                                   kGauss3x3InPlace,
                                                   filtered ? Everywhere : Nowhere))
                    << width << " x " << height << ", stride " << stride;
            }
}

// ---- Gauss of any radius ---------------------------------------------------------------------

TEST(Gauss, TheDivisorStaysWholeAtTheBorders) {
    // Radius 1: 1024, 621 and 377, together 5016. 200 * 3641 / 5016 = 145.2 along an edge, 200 *
    // 2643 / 5016 = 105.4 in a corner.
    EXPECT_EQ(Filtered(kGauss, 4, 3, Image(12, 200), 1), (Image{105, 145, 145, 105,  //
                                                                145, 200, 200, 145,  //
                                                                105, 145, 145, 105}));
}

TEST(Gauss, AnEdgeGetsALittleOverHalfAndACornerALittleOverAQuarter) {
    const int side = 41;
    const Image dst = Filtered(kGauss, side, side, Image(side * side, 200), 10);
    EXPECT_EQ(dst[20 * side + 20], 200);
    EXPECT_EQ(dst[10 * side + 10], 200);
    EXPECT_LT(dst[9 * side + 20], 200);
    for (int middle : {20, 20 * side, 20 * side + 40, 40 * side + 20}) {
        EXPECT_GT(dst[middle], 100);
        EXPECT_LT(dst[middle], 115);
    }
    for (int corner : {0, 40, 40 * side, 40 * side + 40}) {
        EXPECT_GT(dst[corner], 50);
        EXPECT_LT(dst[corner], 65);
    }
}

TEST(Gauss, MeansAreTruncated) {
    // 240 * 1024 / 5016 = 48.996, 240 * 621 / 5016 = 29.7, 240 * 377 / 5016 = 18.04.
    EXPECT_EQ(Filtered(kGauss, 3, 3, {0, 0, 0, 0, 240, 0, 0, 0, 0}, 1),
              (Image{18, 29, 18, 29, 48, 29, 18, 29, 18}));
}

TEST(Gauss, ARadiusOfZeroCopiesOneBlock) {
    Image src(20), dst(20, 99);
    for (int i = 0; i < 20; ++i) src[i] = static_cast<uint8_t>(i);
    IPL_Gauss_8u_C1R(3, 4, 5, src.data(), 4, dst.data(), 0);
    EXPECT_EQ(dst, (Image{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 99, 99, 99, 99, 99, 99, 99, 99}));
    dst.assign(20, 99);
    IPL_Average_8u_C1R(3, 4, 5, src.data(), 4, dst.data(), 0);
    EXPECT_EQ(dst, (Image{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 99, 99, 99, 99, 99, 99, 99, 99}));
}

TEST(Gauss, InPlaceARadiusOfZeroSpreadsTheBlockOverTheRows) {
    for (InPlaceRadiusForm form : {kGaussInPlace, kAverageInPlace}) {
        Image image = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
        form(3, 3, 4, image.data(), 0);
        EXPECT_EQ(image, (Image{0, 1, 2, 3, 3, 4, 5, 7, 6, 7, 8, 11}));
    }
}

TEST(Gauss, EqualsTheReferenceAtAllSizesAndStrides) {
    BlockStage stage(2, 2048, 3);
    for (int width : tqtest::kFilterWidths)
        for (int height : {1, 2, 3, 5, 8})
            for (int radius : {1, 2, 3, 5})
                for (const PlanePair& pair : tqtest::PlanePairsBothWays(width, height))
                    ASSERT_TRUE(FilterEqualsReference(stage, pair, tqref::Gauss, kGauss, radius))
                        << pair << ", radius " << radius;
}

TEST(Gauss, EqualsTheReferenceWithRadiiAboveTheImageAndOfZero) {
    BlockStage stage(2, 512, 4);
    for (int radius : {0, 4, 9, 40, 150})
        for (auto [width, height] : {std::pair{1, 1}, {3, 2}, {2, 7}, {9, 3}, {33, 1}, {1, 33}})
            for (const PlanePair& pair : tqtest::PlanePairs(width, height))
                ASSERT_TRUE(FilterEqualsReference(stage, pair, tqref::Gauss, kGauss, radius))
                    << pair << ", radius " << radius;
}

TEST(Gauss, TheInPlaceFormEqualsTheReference) {
    BlockStage stage(1, 1024, 5);
    for (int width : {1, 2, 7, 16, 31})
        for (int height : {1, 4, 9})
            for (int stride : {width, width + 1, width + 6})
                for (int radius : {0, 1, 4})
                    EXPECT_TRUE(InPlaceEqualsReference(stage, width, height, stride, tqref::Gauss,
                                                       kGaussInPlace, Everywhere, radius))
                        << width << " x " << height << ", stride " << stride << ", radius "
                        << radius;
}

// A bright image of side * side pixels against the reference, at every level.
void ExpectBrightImageEqualsReference(int side, int radius) {
    Settings settings;
    Image src(side * side), dst(src.size()), expected(src.size());
    for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<uint8_t>(255 - i % 5);
    tqref::Bytes from(src.data()), to(expected.data());
    tqref::Gauss(side, side, side, from, side, to, radius);
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        IPL_Gauss_8u_C1R(side, side, side, src.data(), side, dst.data(), radius);
        EXPECT_TRUE(dst == expected)
            << side << ", radius " << radius << ", level " << tq::IsaLevelName(level);
    }
}

TEST(Gauss, ASumThatWrapsEqualsTheReference) {
    // The weights of a whole window sum to 8.5 million at a radius of 53: 255 of each pass 2^31.
    for (int radius : {53, 54, 55, 56}) ExpectBrightImageEqualsReference(111, radius);
    // Here they pass it before the middle of the image is reached.
    ExpectBrightImageEqualsReference(96, 70);
}

TEST(Gauss, TheLowEightBitsOfANegativeSumsQuotientAreStored) {
    const int side = 113, radius = 56;
    const Image dst = Filtered(kGauss, side, side, Image(side * side, 255), radius);
    const int64_t divisor = tqref::GaussDivisor(tqref::SpaceWeights2D(radius));
    ASSERT_GT(255 * divisor, INT_MAX);
    const int64_t quotient = (255 * divisor - (int64_t{1} << 32)) / divisor;
    EXPECT_LT(quotient, 0);
    EXPECT_EQ(dst[56 * side + 56], quotient & 255);
    // No more than a quarter of the window and half of its axes: no wrap.
    EXPECT_GT(dst[0], 63);
    EXPECT_LT(dst[0], 68);
}

TEST(Gauss, ADivisorThatWrapsEqualsTheReference) {
    // The sum of all weights passes 2^31 at a radius of 846, and 2^32 at 1197.
    for (int radius : {846, 1196, 1197}) ExpectBrightImageEqualsReference(13, radius);
    // 169 weights of about 1024, and a divisor of about -3.1 million: the quotient is about -14.
    EXPECT_GT(Filtered(kGauss, 13, 13, Image(169, 255), 1196)[84], 236);
    // The divisor is about 4 million here.
    const int positive = Filtered(kGauss, 13, 13, Image(169, 255), 1197)[84];
    EXPECT_GT(positive, 5);
    EXPECT_LT(positive, 20);
}

// ---- Average ---------------------------------------------------------------------------------

TEST(Average, MeansAreTruncated) {
    const Image src = {1, 2, 3, 0,  //
                       4, 9, 5, 0,  //
                       6, 7, 7, 0,  //
                       0, 0, 0, 0};
    EXPECT_EQ(Filtered(kAverage, 4, 4, src, 1)[5], 4);  // 44 / 9 = 4.9
    EXPECT_EQ(Filtered(kAverage, 4, 4, Image(16, 255), 1)[5], 255);
}

TEST(Average, GapsInTheBorderKeepWhatTheDestinationHeld) {
    // Radius 1 in 6 x 5: rows 0 and 3 are copied; of rows 1 and 2, columns 1 to 4 filtered.
    EXPECT_EQ(Filtered(kAverage, 6, 5, Image(30, 7), 1), (Image{7,  7,  7,  7,  7,  7,   //
                                                                99, 7,  7,  7,  99, 99,  //
                                                                99, 7,  7,  7,  99, 99,  //
                                                                7,  7,  7,  7,  7,  7,   //
                                                                99, 99, 99, 99, 99, 99}));
    // Radius 2 in 7 x 6: rows 0, 1, 3 and 4 are copied; of row 2, columns 2 to 3 filtered.
    EXPECT_EQ(Filtered(kAverage, 7, 6, Image(42, 7), 2), (Image{7,  7,  7,  7,  7,  7,  7,   //
                                                                7,  7,  7,  7,  7,  7,  7,   //
                                                                99, 99, 7,  7,  99, 99, 99,  //
                                                                7,  7,  7,  7,  7,  7,  7,   //
                                                                7,  7,  7,  7,  7,  7,  7,   //
                                                                99, 99, 99, 99, 99, 99, 99}));
}

TEST(Average, WithoutAnInteriorOnlyRowsAreCopied) {
    EXPECT_EQ(Filtered(kAverage, 2, 3, Image(6, 7), 1), (Image{7, 7, 7, 7, 99, 99}));
    EXPECT_EQ(Filtered(kAverage, 2, 2, Image(4, 7), 1), (Image{7, 7, 99, 99}));
    EXPECT_EQ(Filtered(kAverage, 2, 1, Image(2, 7), 1), (Image{7, 7}));
    // Rows 0 to radius - 1 hold the last one too.
    EXPECT_EQ(Filtered(kAverage, 2, 3, Image(6, 7), 3), Image(6, 7));
    EXPECT_EQ(Filtered(kAverage, 2, 3, Image(6, 7), 2), (Image{7, 7, 7, 7, 99, 99}));
}

TEST(Average, EqualsTheReferenceAtAllSizesAndStrides) {
    BlockStage stage(2, 2048, 6);
    for (int width : tqtest::kFilterWidths)
        for (int height : {1, 2, 3, 4, 5, 7, 11})
            for (int radius : {0, 1, 2, 3, 5})
                for (const PlanePair& pair : tqtest::PlanePairs(width, height))
                    ASSERT_TRUE(
                        FilterEqualsReference(stage, pair, tqref::Average, kAverage, radius))
                        << pair << ", radius " << radius;
}

TEST(Average, EqualsTheReferenceWithLargeWindows) {
    BlockStage stage(2, 32768, 7);
    for (int radius : {6, 7, 8, 11, 20, 31, 62, 63, 64, 65})
        for (int width : {2 * radius + 1, 2 * radius + 2, 2 * radius + 3, 2 * radius + 19})
            for (int height : {2 * radius + 2, 2 * radius + 5})
                ASSERT_TRUE(FilterEqualsReference(stage, PlanePair{width, height, width + 1, width},
                                                  tqref::Average, kAverage, radius))
                    << width << " x " << height << ", radius " << radius;
}

TEST(Average, EveryQuotientOfSmallWindowsIsTruncated) {
    // A window of n pixels and every sum that it can have: one pixel more of 1 at each step.
    for (int radius : {1, 2, 3, 7, 8}) {
        const int side = 2 * radius + 1, area = side * side;
        for (int sum = 0; sum <= 255 * area; sum += radius < 3 ? 1 : 13) {
            Image src((side + 1) * (side + 1), 0);
            for (int i = 0; i < area; ++i)
                src[i / side * (side + 1) + i % side] =
                    static_cast<uint8_t>(sum / area + (i < sum % area));
            ASSERT_EQ(Filtered(kAverage, side + 1, side + 1, src, radius)[radius * (side + 2)],
                      sum / area)
                << radius << ", " << sum;
        }
    }
}

TEST(Average, FlatWindowsOfAnySizeGiveTheirValue) {
    for (int radius = 1; radius <= 66; ++radius)
        for (int value = 1; value < 256; ++value) {
            const int side = 2 * radius + 2;
            const Image src(side * side, static_cast<uint8_t>(value));
            ASSERT_EQ(Filtered(kAverage, side, side, src, radius)[radius * (side + 1)], value)
                << radius;
        }
}

TEST(Average, LargeWindowsOfWhiteDoNotLeaveTheirSums) {
    // 261 * 261 * 255 is beyond 2^24.
    const int side = 263, radius = 130;
    const Image dst = Filtered(kAverage, side, side, Image(side * side, 255), radius);
    EXPECT_EQ(dst[130 * side + 130], 255);
    EXPECT_EQ(dst[131 * side + 131], 255);
    EXPECT_EQ(dst[131 * side + 133], 99);
}

TEST(Average, RadiiAboveTheImageStayInside) {
    tqtest::ExpectRadiiAboveTheImageStayInside(tqref::Average, kAverage, 8);
}

TEST(Average, TheInPlaceFormEqualsTheReference) {
    tqtest::ExpectTheInPlaceFormEqualsTheReference(tqref::Average, kAverageInPlace, 9);
}

// ---- Arguments out of range ------------------------------------------------------------------

constexpr std::pair<int, int> kEmptySizes[] = {{0, 0},       {0, 5},          {5, 0},  {-1, 5},
                                               {5, -1},      {-5, -5},        {0, -3}, {INT_MIN, 2},
                                               {2, INT_MIN}, {-40000, -40000}};

TEST(Smooth, SizesBelowOneWriteNothing) {
    tqtest::Deadline deadline;
    BlockStage stage(2, 64, 10);
    stage.Model([](tqref::Bytes*) {});
    for (auto [width, height] : kEmptySizes) {
        const int w = width, h = height;
        EXPECT_TRUE(stage.Check([&](uint8_t* const* images) {
            IPL_Gauss3x3_8u_C1R(w, h, 6, images[0], 6, images[1]);
            for (int radius : {0, 1, 3}) {
                IPL_Gauss_8u_C1R(w, h, 6, images[0], 6, images[1], radius);
                IPL_Average_8u_C1R(w, h, 6, images[0], 6, images[1], radius);
            }
        })) << w
            << " x " << h;
    }
}

TEST(Smooth, InPlaceSizesBelowOneWriteNothing) {
    BlockStage stage(1, 64, 11);
    stage.Model([](tqref::Bytes*) {});
    for (auto [width, height] : {std::pair{0, 0}, {0, 5}, {5, 0}, {-1, 5}, {5, -1}, {-5, -5}}) {
        const int w = width, h = height;
        EXPECT_TRUE(stage.Check([&](uint8_t* const* images) {
            IPL_Gauss3x3_8u_C1R(w, h, 6, images[0]);
            for (int radius : {0, 1, 3}) {
                IPL_Gauss_8u_C1R(w, h, 6, images[0], radius);
                IPL_Average_8u_C1R(w, h, 6, images[0], radius);
            }
        })) << w
            << " x " << h;
    }
}

TEST(Average, BadArgumentsWriteNothing) {
    BlockStage stage(2, 64, 12);
    stage.Model([](tqref::Bytes*) {});
    EXPECT_TRUE(stage.Check([](uint8_t* const* images) {
        uint8_t *src = images[0], *dst = images[1];
        for (int radius : {0, 1}) {
            for (int stride : {0, -1, -6}) {
                IPL_Average_8u_C1R(5, 5, stride, src, 6, dst, radius);
                IPL_Average_8u_C1R(5, 5, 6, src, stride, dst, radius);
            }
            IPL_Average_8u_C1R(5, 5, 6, nullptr, 6, dst, radius);
            IPL_Average_8u_C1R(5, 5, 6, src, 6, nullptr, radius);
        }
        for (int radius : {-1, -2, INT_MIN}) IPL_Average_8u_C1R(5, 5, 6, src, 6, dst, radius);
    }));
}

TEST(Average, InPlaceBadArgumentsWriteNoMoreThanTheImage) {
    BlockStage stage(1, 256, 13);
    for (int radius : {-1, INT_MIN})
        EXPECT_TRUE(InPlaceEqualsReference(stage, 9, 5, 12, tqref::Average, kAverageInPlace,
                                           Nowhere, radius));
    EXPECT_TRUE(
        InPlaceEqualsReference(stage, 9, 5, -12, tqref::Average, kAverageInPlace, Nowhere, 2));
}

TEST(Gauss, ANegativeRadiusHasEmptyWindows) {
    tqtest::Deadline deadline;
    BlockStage stage(2, 64, 14);
    for (int radius : {-1, -2, -7, -46341, -INT_MAX, INT_MIN})
        EXPECT_TRUE(FilterEqualsReference(
            stage, PlanePair{5, 4, 7, 6},
            [](int width, int height, int srcStride, tqref::Bytes& src, int dstStride,
               tqref::Bytes& dst,
               int) { tqtest::FillPixels(width, height, srcStride, src, dstStride, dst, 0); },
            kGauss, radius))
            << radius;
}

TEST(Gauss, ARadiusWithoutMemoryForItsTableThrows) {
    tqtest::Deadline deadline;
    const uint64_t inUse = tq::SharedMemoryManager().m_nBytesInUse;
    Image image(16, 5), before = image;
    for (int radius : {11585, 23170, 32767, 32768, 46340, 46341, 65535, 1 << 30, INT_MAX}) {
        EXPECT_THROW(IPL_Gauss_8u_C1R(2, 2, 2, image.data(), 2, image.data() + 8, radius),
                     std::bad_alloc)
            << radius;
        EXPECT_THROW(IPL_Gauss_8u_C1R(2, 2, 2, image.data(), radius), std::bad_alloc) << radius;
    }
    EXPECT_EQ(image, before);
    EXPECT_EQ(tq::SharedMemoryManager().m_nBytesInUse, inUse);
    EXPECT_EQ(Filtered(kGauss, 3, 3, {0, 0, 0, 0, 240, 0, 0, 0, 0}, 1)[4], 48);
}

TEST(Smooth, BuffersGoBackToTheManager) {
    Image image(64 * 8, 100);
    const uint64_t inUse = tq::SharedMemoryManager().m_nBytesInUse;
    IPL_Gauss3x3_8u_C1R(64, 8, 64, image.data());
    for (int radius : {0, 2}) {
        IPL_Gauss_8u_C1R(64, 8, 64, image.data(), radius);
        IPL_Average_8u_C1R(64, 8, 64, image.data(), radius);
        IPL_Median_8u_C1R(64, 8, 64, image.data(), radius);
    }
    IPL_Median_8u_C1R(64, 8, 64, image.data(), -1);
    EXPECT_EQ(tq::SharedMemoryManager().m_nBytesInUse, inUse);
}

}  // namespace
