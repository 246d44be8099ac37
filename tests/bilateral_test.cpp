// The direct bilateral filter and the weight tables: entries and pixels known by hand, the whole
// memory against the reference, sums that wrap, arguments out of range, host threads at once.

#include <gtest/gtest.h>
#include <tqipl/filter.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdint>
#include <new>
#include <thread>
#include <utility>
#include <vector>

#include "filter/filter_tables.h"
#include "frame/memory_manager.h"
#include "reference/bilateral_reference.h"
#include "reference/smooth_reference.h"
#include "support/deadline.h"
#include "support/filter_check.h"
#include "support/latch.h"

namespace {

using tqtest::BlockStage;
using tqtest::FilterEqualsReference;
using tqtest::PlanePair;
using tqtest::Settings;
using Image = std::vector<uint8_t>;
using Weights = std::vector<int>;
using Form = void (*)(int, int, int, unsigned char*, int, unsigned char*, int, int);
using InPlaceForm = void (*)(int, int, int, unsigned char*, int, int);

constexpr Form kDirect = IPL_Bilteral_8u_C1R;
constexpr InPlaceForm kDirectInPlace = IPL_Bilteral_8u_C1R;

bool Everywhere(int, int) { return true; }

// A dense image through the direct form.
Image Filtered(int width, int height, Image src, int radius, int sigma) {
    Image dst(src.size(), 99);
    IPL_Bilteral_8u_C1R(width, height, width, src.data(), width, dst.data(), radius, sigma);
    return dst;
}

// ---- Tables ----------------------------------------------------------------------------------

TEST(FilterTables, WeightsByDistanceInALineAreThoseKnownByHand) {
    const std::vector<Weights> known = {{90, 7},
                                        {22, 7, 3},
                                        {15, 7, 4, 2},
                                        {12, 7, 4, 3, 2},
                                        {11, 7, 5, 3, 2, 2},
                                        {10, 7, 5, 4, 3, 2, 1},
                                        {9, 7, 5, 4, 3, 2, 2, 1}};
    for (int radius = 1; radius <= 7; ++radius) {
        const CZFilterTables tables = CZFilterTables::ForSeparableBilateral(radius, 10);
        EXPECT_EQ(tables.m_nRadius1D, radius);
        const int* line = tables.IPL_BilateralSpaceTable1D.get();
        EXPECT_EQ(Weights(line, line + radius + 1), known[radius - 1]) << radius;
        EXPECT_EQ(tqref::SpaceWeights1D(radius), known[radius - 1]) << radius;
    }
}

TEST(FilterTables, WeightsByDistanceInThePlaneAreThoseKnownByHand) {
    const CZFilterTables one = CZFilterTables::ForDirectBilateral(1, 10);
    EXPECT_EQ(one.m_nRadius2D, 1);
    const int* plane = one.IPL_BilateralSpaceTable2D.get();
    EXPECT_EQ(Weights(plane, plane + 9), (Weights{377, 621, 377, 621, 1024, 621, 377, 621, 377}));
    const CZFilterTables two = CZFilterTables::ForGauss(2);
    EXPECT_EQ(two.m_nRadius2D, 2);
    plane = two.IPL_BilateralSpaceTable2D.get();
    EXPECT_EQ(Weights(plane, plane + 25), (Weights{377, 548, 621,  548, 377,  //
                                                   548, 797, 904,  797, 548,  //
                                                   621, 904, 1024, 904, 621,  //
                                                   548, 797, 904,  797, 548,  //
                                                   377, 548, 621,  548, 377}));
}

TEST(FilterTables, WeightsByDifferenceAreThoseKnownByHand) {
    const CZFilterTables direct = CZFilterTables::ForDirectBilateral(1, 10);
    const CZFilterTables separable = CZFilterTables::ForSeparableBilateral(1, 10);
    struct {
        int difference, hundredths, parts;
    } const known[] = {{0, 100, 1024}, {1, 100, 1019}, {2, 98, 1004}, {3, 96, 979},
                       {5, 88, 904},   {10, 61, 621},  {20, 14, 139}, {30, 1, 11},
                       {40, 0, 0},     {100, 0, 0},    {255, 0, 0}};
    for (const auto& entry : known) {
        EXPECT_EQ(direct.IPL_BilateralRangeTable100[entry.difference], entry.hundredths)
            << entry.difference;
        EXPECT_EQ(separable.IPL_BilateralRangeTable1024[entry.difference], entry.parts)
            << entry.difference;
    }
    const CZFilterTables wide = CZFilterTables::ForDirectBilateral(1, 50);
    EXPECT_EQ(wide.IPL_BilateralRangeTable100[30], 84);
    EXPECT_EQ(wide.IPL_BilateralRangeTable100[100], 14);
    EXPECT_EQ(CZFilterTables::ForSeparableBilateral(1, 50).IPL_BilateralRangeTable1024[100], 139);
}

TEST(FilterTables, EveryEntryEqualsTheFormula) {
    // Among them are radii and sigmas at which double precision would give other entries.
    std::vector<int> radii = {54, 64, 68, 82, 89, 99, 105, 125};
    for (int radius = 1; radius <= 24; ++radius) radii.push_back(radius);
    for (int radius : radii) {
        const Weights plane = tqref::SpaceWeights2D(radius);
        const CZFilterTables gauss = CZFilterTables::ForGauss(radius);
        const int* first = gauss.IPL_BilateralSpaceTable2D.get();
        EXPECT_EQ(Weights(first, first + plane.size()), plane) << radius;
    }
    for (int radius : {6647, 9098, 10503, 14359, 15498, 15529, 17282}) radii.push_back(radius);
    for (int radius : radii) {
        const Weights line = tqref::SpaceWeights1D(radius);
        const CZFilterTables separable = CZFilterTables::ForSeparableBilateral(radius, 1);
        const int* first = separable.IPL_BilateralSpaceTable1D.get();
        EXPECT_EQ(Weights(first, first + line.size()), line) << radius;
    }
    for (int sigma : {1,    2,     3,     7,     12,    25,    33,      60,      99,  128,  200,
                      255,  256,   261,   293,   300,   301,   389,     734,     778, 1000, 2896,
                      5793, 32767, 32768, 46340, 46341, 65536, INT_MAX, INT_MIN, -1,  -10,  -255}) {
        const CZFilterTables direct = CZFilterTables::ForDirectBilateral(1, sigma);
        const CZFilterTables separable = CZFilterTables::ForSeparableBilateral(1, sigma);
        const int *hundredths = direct.IPL_BilateralRangeTable100,
                  *parts = separable.IPL_BilateralRangeTable1024;
        EXPECT_EQ(Weights(hundredths, hundredths + 256), tqref::RangeWeights(sigma, 100)) << sigma;
        EXPECT_EQ(Weights(parts, parts + 256), tqref::RangeWeights(sigma, 1024)) << sigma;
    }
}

TEST(FilterTables, TheRangeKeyStaysZero) {
    EXPECT_EQ(CZFilterTables::ForDirectBilateral(1, 10).m_nRangeKey, 0);
    EXPECT_EQ(CZFilterTables::ForSeparableBilateral(2, 20).m_nRangeKey, 0);
    EXPECT_EQ(CZFilterTables::ForGauss(3).m_nRangeKey, 0);
}

TEST(FilterTables, TablesByDistanceAreKeptUntilTheRadiusChanges) {
    const CZFilterTables first = CZFilterTables::ForDirectBilateral(3, 10);
    const CZFilterTables second = CZFilterTables::ForGauss(3);
    EXPECT_EQ(first.IPL_BilateralSpaceTable2D, second.IPL_BilateralSpaceTable2D);
    const CZFilterTables line = CZFilterTables::ForSeparableBilateral(3, 10);
    EXPECT_EQ(line.IPL_BilateralSpaceTable1D,
              CZFilterTables::ForSeparableBilateral(3, 20).IPL_BilateralSpaceTable1D);
    const CZFilterTables other = CZFilterTables::ForGauss(4);
    EXPECT_NE(first.IPL_BilateralSpaceTable2D, other.IPL_BilateralSpaceTable2D);
    // Whoever holds the old tables reads what they were.
    const int* plane = first.IPL_BilateralSpaceTable2D.get();
    EXPECT_EQ(Weights(plane, plane + 49), tqref::SpaceWeights2D(3));
    EXPECT_EQ(first.m_nRadius2D, 3);
}

// ---- Known pixels ----------------------------------------------------------------------------

TEST(Bilateral, MeansAreTruncated) {
    // With a radius of 1 the weights by distance are 1024 and 621, with a sigma of 1 those by
    // difference 100, 61 and 14.
    // 10: (10 * 102400 + 11 * 37881) / 140281 = 10.27
    // 11: (10 * 37881 + 11 * 102400 + 13 * 8694) / 148975 = 10.86
    // 13: (11 * 8694 + 13 * 102400) / 111094 = 12.84
    EXPECT_EQ(Filtered(3, 1, {10, 11, 13}, 1, 1), (Image{10, 10, 12}));
    EXPECT_EQ(Filtered(1, 3, {10, 11, 13}, 1, 1), (Image{10, 10, 12}));
}

TEST(Bilateral, DiagonalNeighboursWeighLess) {
    // A difference of 10 weighs 61 with a sigma of 10: (100 * 102400 + 110 * 621 * 61) / 140281 =
    // 102.70 and (110 * 102400 + 100 * 621 * 61) / 140281 = 107.30 beside each other.
    EXPECT_EQ(Filtered(2, 1, {100, 110}, 1, 10), (Image{102, 107}));
    // (100 * 102400 + 110 * 377 * 61) / 125397 = 101.83 and 108.17 across. 255 is too far to count.
    EXPECT_EQ(Filtered(2, 2, {100, 255, 255, 110}, 1, 10), (Image{101, 255, 255, 108}));
}

TEST(Bilateral, AStepBeyondTheRangeStaysSharp) {
    EXPECT_EQ(Filtered(4, 1, {20, 20, 200, 200}, 2, 10), (Image{20, 20, 200, 200}));
}

TEST(Bilateral, AUniformImageIsKept) {
    for (int value : {0, 1, 100, 250, 255})
        for (int radius : {1, 2, 4}) {
            const Image image(9 * 7, static_cast<uint8_t>(value));
            EXPECT_EQ(Filtered(9, 7, image, radius, 10), image) << value << ", " << radius;
        }
}

TEST(Bilateral, ARadiusOrSigmaOfZeroCopies) {
    BlockStage stage(2, 512, 1);
    for (int width : {1, 5, 17})
        for (const PlanePair& pair : tqtest::PlanePairsBothWays(width, 6))
            for (auto [radius, sigma] : {std::pair{0, 10}, {3, 0}, {0, 0}, {-3, 0}, {0, -5}}) {
                EXPECT_TRUE(
                    FilterEqualsReference(stage, pair, tqref::Bilateral, kDirect, radius, sigma))
                    << pair << ", " << radius << ", " << sigma;
            }
}

TEST(Bilateral, ARadiusOrSigmaOfZeroLeavesTheImageInPlaceAsItWas) {
    for (auto [radius, sigma] : {std::pair{0, 10}, {3, 0}, {0, 0}}) {
        Image image = {1, 2, 3, 4, 5, 6, 7, 8}, before = image;
        IPL_Bilteral_8u_C1R(3, 2, 4, image.data(), radius, sigma);
        EXPECT_EQ(image, before);
    }
}

// ---- The whole memory ------------------------------------------------------------------------

TEST(Bilateral, EqualsTheReferenceAtAllSizesAndStrides) {
    BlockStage stage(2, 2048, 2);
    for (int width : tqtest::kFilterWidths)
        for (int height : {1, 2, 3, 5, 8})
            for (auto [radius, sigma] : {std::pair{1, 20}, {2, 90}, {3, 40}, {5, 300}})
                for (const PlanePair& pair : tqtest::PlanePairsBothWays(width, height))
                    ASSERT_TRUE(FilterEqualsReference(stage, pair, tqref::Bilateral, kDirect,
                                                      radius, sigma))
                        << pair << ", radius " << radius << ", sigma " << sigma;
}

TEST(Bilateral, EqualsTheReferenceWithRadiiAboveTheImage) {
    BlockStage stage(2, 512, 3);
    for (int radius : {4, 9, 40, 150})
        for (auto [width, height] : {std::pair{1, 1}, {3, 2}, {2, 7}, {9, 3}, {33, 1}, {1, 33}})
            for (const PlanePair& pair : tqtest::PlanePairs(width, height))
                ASSERT_TRUE(
                    FilterEqualsReference(stage, pair, tqref::Bilateral, kDirect, radius, 60))
                    << pair << ", radius " << radius;
}

TEST(Bilateral, EqualsTheReferenceForAnySigma) {
    BlockStage stage(2, 1024, 4);
    const PlanePair pair{75, 9, 77, 76};
    for (int sigma : {1, 2, 5, 10, 30, 77, 150, 255, 1000, 46341, INT_MAX, INT_MIN, -1, -30})
        for (int radius : {1, 2, 4})
            EXPECT_TRUE(
                FilterEqualsReference(stage, pair, tqref::Bilateral, kDirect, radius, sigma))
                << sigma << ", radius " << radius;
}

// Dense images of many differences, at every level.
void ExpectNoiseEqualsReference(int width, int height, int radius, int sigma) {
    Settings settings;
    Image src = tqtest::ContrastNoise(width * height, radius * 1000 + sigma);
    Image expected(src.size());
    tqref::Bytes from(src.data()), to(expected.data());
    tqref::Bilateral(width, height, width, from, width, to, radius, sigma);
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        EXPECT_TRUE(Filtered(width, height, src, radius, sigma) == expected)
            << width << " x " << height << ", radius " << radius << ", sigma " << sigma
            << ", level " << tq::IsaLevelName(level);
    }
}

TEST(Bilateral, EqualsTheReferenceForEveryDifference) {
    for (int sigma = 1; sigma <= 90; ++sigma) ExpectNoiseEqualsReference(67, 19, 2, sigma);
    for (int sigma : {100, 127, 128, 150, 255, 256, 500})
        ExpectNoiseEqualsReference(67, 19, 3, sigma);
}

TEST(Bilateral, EqualsTheReferenceForLargeRadii) {
    for (int radius : {15, 16, 31, 32, 62, 63, 64, 65}) {
        ExpectNoiseEqualsReference(150, 7, radius, 60);
        ExpectNoiseEqualsReference(9, 150, radius, 60);
    }
    ExpectNoiseEqualsReference(600, 5, 3, 25);
}

TEST(Bilateral, ANegativeSigmaActsAsItsMagnitude) {
    const Image image = {10, 20, 30, 45, 60, 80, 15, 25, 35};
    EXPECT_EQ(Filtered(3, 3, image, 1, -20), Filtered(3, 3, image, 1, 20));
    EXPECT_NE(Filtered(3, 3, image, 1, 20), image);
}

TEST(Bilateral, TheInPlaceFormEqualsTheReference) {
    BlockStage stage(1, 1024, 5);
    for (int width : {1, 2, 7, 16, 31})
        for (int height : {1, 4, 9})
            for (int stride : {width, width + 1, width + 6, -width - 2})
                for (auto [radius, sigma] : {std::pair{1, 20}, {4, 70}, {0, 9}, {2, 0}})
                    EXPECT_TRUE(tqtest::InPlaceEqualsReference(stage, width, height, stride,
                                                               tqref::Bilateral, kDirectInPlace,
                                                               Everywhere, radius, sigma))
                        << width << " x " << height << ", stride " << stride << ", radius "
                        << radius;
}

// ---- Sums that wrap --------------------------------------------------------------------------

uint8_t CentreOfFlatImage(int value, int radius) {
    const int side = 2 * radius + 1;
    const Image flat(side * side, static_cast<uint8_t>(value));
    return Filtered(side, side, flat, radius, 10)[flat.size() / 2];
}

TEST(Bilateral, TheSumOfABrightFlatImageWraps) {
    // The weights of a whole window are 8559600 at a radius of 5, 12072800 at a radius of 6.
    EXPECT_EQ(CentreOfFlatImage(250, 5), 250);
    EXPECT_EQ(CentreOfFlatImage(251, 5), 6);   // (251 * 8559600 - 2^32) / 8559600 = -250.8
    EXPECT_EQ(CentreOfFlatImage(255, 5), 10);  // -246.8
    EXPECT_EQ(CentreOfFlatImage(177, 6), 177);
    EXPECT_EQ(CentreOfFlatImage(178, 6), 79);   // (178 * 12072800 - 2^32) / 12072800 = -177.8
    EXPECT_EQ(CentreOfFlatImage(255, 6), 156);  // -100.8
    EXPECT_EQ(CentreOfFlatImage(255, 4), 255);
}

TEST(Bilateral, WrappedSumsEqualTheReference) {
    Settings settings;
    struct {
        int width, height, radius;
    } const sizes[] = {{30, 17, 5}, {23, 30, 6}, {75, 21, 9}, {37, 37, 18}, {50, 50, 60}};
    for (const auto& size : sizes)
        for (int low : {255, 240, 170}) {
            Image src(size.width * size.height), dst(src.size()), expected(src.size());
            for (size_t i = 0; i < src.size(); ++i)
                src[i] = static_cast<uint8_t>(low + static_cast<int>(i * 7 % (256 - low)));
            tqref::Bytes from(src.data()), to(expected.data());
            tqref::Bilateral(size.width, size.height, size.width, from, size.width, to, size.radius,
                             50);
            for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                settings.Use(level);
                IPL_Bilteral_8u_C1R(size.width, size.height, size.width, src.data(), size.width,
                                    dst.data(), size.radius, 50);
                EXPECT_EQ(dst, expected) << size.radius << ", " << low;
            }
        }
}

// At a radius of about 90 whole windows weigh 2^31 and more; here it is about 2^32 for some pixels,
// which leaves small divisors of either sign.
TEST(Bilateral, AQuotientAbove255IsStoredAs255) {
    const int side = 206, radius = 1000;
    Image src(side * side);
    uint32_t state = 1;
    for (uint8_t& pixel : src) {
        state = state * 1664525u + 1013904223u;
        pixel = static_cast<uint8_t>(state >> 24);
    }
    tqref::Bytes from(src.data());
    tqref::Numbers image(side, side, side, from);
    const Weights space = tqref::SpaceWeights2D(radius), range(256, 100);
    const Image dst = Filtered(side, side, src, radius, INT_MAX);
    int limited = 0;
    for (int i = 0; i < side * side; i += 101) {
        const int x = i % side, y = i / side;
        const int expected = tqref::BilateralPixel(x, y, side, side, image, radius, space, range);
        ASSERT_EQ(dst[i], expected) << x << ", " << y;
        limited += expected == 255;
    }
    EXPECT_GT(limited, 5);
}

// ---- Arguments out of range ------------------------------------------------------------------

TEST(Bilateral, SizesBelowOneWriteNothing) {
    BlockStage stage(2, 64, 6);
    for (auto [width, height] : {std::pair{0, 3},
                                 {3, 0},
                                 {-1, 3},
                                 {3, -1},
                                 {-5, -5},
                                 {0, 0},
                                 {INT_MIN, 2},
                                 {2, INT_MIN},
                                 {-40000, -40000}})
        for (auto [radius, sigma] : {std::pair{2, 10}, {0, 10}, {2, 0}, {-1, 10}})
            EXPECT_TRUE(FilterEqualsReference(stage, PlanePair{width, height, 4, 4},
                                              tqref::Bilateral, kDirect, radius, sigma))
                << width << " x " << height << ", " << radius << ", " << sigma;
}

TEST(Bilateral, SizesBelowOneLeaveTheImageInPlaceAlone) {
    BlockStage stage(1, 64, 7);
    stage.Model([](tqref::Bytes*) {});
    for (const auto& size : {std::pair{0, 3}, {3, 0}, {-1, 3}, {3, -1}, {-5, -5}})
        for (int radius : {0, 2})
            EXPECT_TRUE(stage.Check([&](uint8_t* const* images) {
                IPL_Bilteral_8u_C1R(size.first, size.second, 4, images[0], radius, 10);
            })) << size.first
                << " x " << size.second << ", " << radius;
}

TEST(Bilateral, ANegativeRadiusHasEmptyWindows) {
    tqtest::Deadline deadline;
    BlockStage stage(2, 64, 8);
    const PlanePair pair{5, 4, 7, 6};
    for (int radius : {-1, -2, -7, -46341, -INT_MAX, INT_MIN})
        EXPECT_TRUE(FilterEqualsReference(
            stage, pair,
            [](int width, int height, int srcStride, tqref::Bytes& src, int dstStride,
               tqref::Bytes& dst, int,
               int) { tqtest::FillPixels(width, height, srcStride, src, dstStride, dst, 0); },
            kDirect, radius, 10))
            << radius;
}

TEST(Bilateral, ARadiusWithoutMemoryForItsTableThrows) {
    tqtest::Deadline deadline;
    const uint64_t inUse = tq::SharedMemoryManager().m_nBytesInUse;
    Image image(16, 5), before = image;
    for (int radius : {11585, 23170, 32767, 32768, 46340, 46341, 65535, 1 << 30, INT_MAX}) {
        EXPECT_THROW(IPL_Bilteral_8u_C1R(2, 2, 2, image.data(), 2, image.data() + 8, radius, 10),
                     std::bad_alloc)
            << radius;
        EXPECT_THROW(IPL_Bilteral_8u_C1R(2, 2, 2, image.data(), radius, 10), std::bad_alloc)
            << radius;
    }
    EXPECT_EQ(image, before);
    EXPECT_EQ(tq::SharedMemoryManager().m_nBytesInUse, inUse);
    // What was refused is not taken for made.
    EXPECT_EQ(Filtered(3, 1, {10, 11, 13}, 1, 1), (Image{10, 10, 12}));
}

TEST(Bilateral, BuffersGoBackToTheManager) {
    Image image(64 * 8, 100);
    const uint64_t inUse = tq::SharedMemoryManager().m_nBytesInUse;
    IPL_Bilteral_8u_C1R(64, 8, 64, image.data(), 2, 10);
    IPL_BilteralEx_8u_C1R(64, 8, 64, image.data(), 2, 10);
    IPL_BilteralEx_8u_C1R(64, 8, 64, image.data(), 0, 10);
    IPL_BilteralExMutiThread_8u_C1R(64, 8, 64, image.data(), 2, 10);
    IPL_BilteralExMutiThread_8u_C1R(64, 8, 64, image.data(), 2, 0);
    EXPECT_EQ(tq::SharedMemoryManager().m_nBytesInUse, inUse);
}

// ---- Host threads ----------------------------------------------------------------------------

// The defined rows of a form's result.
struct Work {
    const char* name;
    int radius, sigma, rows;
    void (*filter)(const Work& work, uint8_t* src, uint8_t* dst);
    void (*reference)(const Work& work, tqref::Bytes& src, tqref::Bytes& dst);
};
constexpr int kWidth = 33, kHeight = 29;

void Direct(const Work& work, uint8_t* src, uint8_t* dst) {
    IPL_Bilteral_8u_C1R(kWidth, kHeight, kWidth, src, kWidth, dst, work.radius, work.sigma);
}
void Separable(const Work& work, uint8_t* src, uint8_t* dst) {
    IPL_BilteralEx_8u_C1R(kWidth, kHeight, kWidth, src, kWidth, dst, work.radius, work.sigma);
}
void MultiThread(const Work& work, uint8_t* src, uint8_t* dst) {
    IPL_BilteralExMutiThread_8u_C1R(kWidth, kHeight, kWidth, src, kWidth, dst, work.radius,
                                    work.sigma);
}
void Gauss(const Work& work, uint8_t* src, uint8_t* dst) {
    IPL_Gauss_8u_C1R(kWidth, kHeight, kWidth, src, kWidth, dst, work.radius);
}
void DirectReference(const Work& work, tqref::Bytes& src, tqref::Bytes& dst) {
    tqref::Bilateral(kWidth, kHeight, kWidth, src, kWidth, dst, work.radius, work.sigma);
}
void SeparableReference(const Work& work, tqref::Bytes& src, tqref::Bytes& dst) {
    tqref::BilateralEx(kWidth, kHeight, kWidth, src, kWidth, dst, work.radius, work.sigma);
}
void MultiThreadReference(const Work& work, tqref::Bytes& src, tqref::Bytes& dst) {
    tqref::BilateralExMultiThread(kWidth, kHeight, kWidth, src, kWidth, dst, work.radius,
                                  work.sigma, 16);
}
void GaussReference(const Work& work, tqref::Bytes& src, tqref::Bytes& dst) {
    tqref::Gauss(kWidth, kHeight, kWidth, src, kWidth, dst, work.radius);
}

TEST(Bilateral, HostThreadsMayFilterAtTheSameTimeWithOtherParameters) {
    tqtest::Deadline deadline;
    Settings settings;
    settings.UseProcessors(3);
    const Work works[8] = {
        {"direct", 1, 15, kHeight, Direct, DirectReference},
        {"direct", 4, 60, kHeight, Direct, DirectReference},
        {"Gauss", 2, 0, kHeight, Gauss, GaussReference},
        {"Gauss", 5, 0, kHeight, Gauss, GaussReference},
        {"separable", 2, 30, kHeight, Separable, SeparableReference},
        {"separable", 6, 90, kHeight, Separable, SeparableReference},
        {"multi-threaded", 1, 45, kHeight - 2, MultiThread, MultiThreadReference},
        {"multi-threaded", 3, 120, kHeight - 6, MultiThread, MultiThreadReference}};
    std::atomic<int> wrong[8] = {};
    tqtest::Latch start(8);
    std::vector<std::thread> hosts;
    for (int host = 0; host < 8; ++host)
        hosts.emplace_back([&, host] {
            const Work& work = works[host];
            Image src(kWidth * kHeight), expected(src.size()), dst(src.size());
            tqtest::FillHostile(src.data(), src.size(), host);
            for (uint8_t& pixel : src) pixel = static_cast<uint8_t>(16 + pixel / 2);
            tqref::Bytes from(src.data()), to(expected.data());
            work.reference(work, from, to);
            start.ArriveAndWait();
            for (int i = 0; i < 30; ++i) {
                dst.assign(dst.size(), 0);
                work.filter(work, src.data(), dst.data());
                wrong[host] +=
                    !std::equal(dst.begin(), dst.begin() + kWidth * work.rows, expected.begin());
            }
        });
    for (std::thread& host : hosts) host.join();
    for (int host = 0; host < 8; ++host)
        EXPECT_EQ(wrong[host], 0) << works[host].name << ", radius " << works[host].radius;
}

}  // namespace
