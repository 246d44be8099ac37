// The separable bilateral filter on one thread: pixels known by hand, the whole memory against the
// reference with the right border's reads beyond the row, arguments out of range.

#include <gtest/gtest.h>
#include <tqipl/filter.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

#include "frame/memory_manager.h"
#include "reference/bilateral_reference.h"
#include "support/deadline.h"
#include "support/filter_check.h"

namespace {

using tqtest::BlockStage;
using tqtest::FilterEqualsReference;
using tqtest::PlanePair;
using Image = std::vector<uint8_t>;

constexpr void (*kSeparable)(int, int, int, unsigned char*, int, unsigned char*, int,
                             int) = IPL_BilteralEx_8u_C1R;
constexpr void (*kSeparableInPlace)(int, int, int, unsigned char*, int,
                                    int) = IPL_BilteralEx_8u_C1R;

// With this sigma every difference weighs 1024: what is left are the weights by distance.
constexpr int kFlatSigma = INT_MAX;

// An image whose memory ends with its last row's stride, to a dense one.
Image Filtered(int width, int height, int stride, Image src, int radius, int sigma) {
    tqtest::GuardedBuffer memory(src.size());
    std::copy(src.begin(), src.end(), memory.data());
    Image dst(width * height, 99);
    IPL_BilteralEx_8u_C1R(width, height, stride, memory.data(), width, dst.data(), radius, sigma);
    return dst;
}

// ---- Known pixels ----------------------------------------------------------------------------

TEST(BilateralSeparable, UniformImagesAreKeptWithinVideoRange) {
    for (auto [value, stored] :
         {std::pair{100, 100}, {10, 16}, {250, 235}, {0, 16}, {255, 235}, {16, 16}, {235, 235}})
        for (int radius : {1, 2, 3, 5, 8})
            EXPECT_EQ(Filtered(9, 6, 9, Image(54, static_cast<uint8_t>(value)), radius, 10),
                      Image(54, static_cast<uint8_t>(stored)))
                << value << ", " << radius;
}

TEST(BilateralSeparable, ARadiusOf1WeighsTheCentre90AndItsNeighbours7) {
    // A difference of 10 weighs 621 with a sigma of 10. First column: (100 * 90 * 1024 +
    // 110 * 7 * 621) / 96507 = 100.45, rounded to 100. The last column's window is its left
    // neighbour.
    EXPECT_EQ(Filtered(4, 1, 4, {100, 110, 120, 130}, 1, 10), (Image{100, 110, 120, 120}));
    // (100 * 97 + 200 * 7) / 104 = 106.73; (100 * 7 + 200 * 90 + 100 * 7) / 104 = 186.54.
    EXPECT_EQ(Filtered(4, 1, 4, {100, 100, 200, 100}, 1, kFlatSigma), (Image{100, 107, 187, 200}));
}

TEST(BilateralSeparable, TheVerticalWindowIsClippedAtBothEnds) {
    // The second column is its left neighbour. (100 * 90 + 200 * 7) / 97 = 107.2 at both ends, and
    // (100 * 7 + 200 * 90 + 100 * 7) / 104 = 186.5 between them.
    const Image columns = {100, 100, 200, 200, 100, 100};
    EXPECT_EQ(Filtered(2, 3, 2, columns, 1, kFlatSigma), (Image{107, 107, 187, 187, 107, 107}));
}

TEST(BilateralSeparable, TheFirstOfTheLastColumnsLeavesItsCentreOut) {
    // Radius 2: weights 22, 7, 3. At x = 2 of 4 the window is dx = -2 and -1, at x = 3 it is -2 to
    // 0: (3 * 40 + 7 * 80) / 10 = 68; (3 * 80 + 7 * 200 + 22 * 60) / 32 = 92.5, rounded up. The
    // columns before: (22 * 40 + 7 * 80 + 3 * 200) / 32 = 63.75 and (7 * 40 + 22 * 80 + 7 * 200 +
    // 3 * 60) / 39 = 92.8.
    EXPECT_EQ(Filtered(4, 1, 4, {40, 80, 200, 60}, 2, kFlatSigma), (Image{64, 93, 68, 93}));
}

TEST(BilateralSeparable, FromARadiusOf3OnTheLastColumnsReadBeyondTheRow) {
    // Radius 3: weights 15, 7, 4, 2. At x = 3 of 4 the window is dx = -3 to 1:
    // (28 * 100 + 7 * 200) / 35 = 120. Spare bytes of the stride are part of it, also in the last
    // row.
    EXPECT_EQ(Filtered(4, 2, 5, {100, 100, 100, 100, 200, 100, 100, 100, 100, 200}, 3, kFlatSigma),
              (Image{100, 100, 100, 120, 100, 100, 100, 120}));
}

TEST(BilateralSeparable, BehindTheLastStrideByteNothingTakesPart) {
    // Dense rows, radius 3. At x = 3 row 0 reads the next row's first pixel: 4200 / 35 = 120. Row 1
    // has nothing there: (2 * 200 + 26 * 100) / 28 = 107.1. The other windows are dx = 0 to 3, -1,
    // and -2 to 0, which makes the rows of the first pass 100, 100, 100, 120 and 154, 200, 115,
    // 107. The second pass: (15 * top + 7 * bottom) / 22 and (7 * top + 15 * bottom) / 22.
    EXPECT_EQ(Filtered(4, 2, 4, {100, 100, 100, 100, 200, 100, 100, 100}, 3, kFlatSigma),
              (Image{117, 132, 105, 116, 137, 168, 110, 111}));
}

TEST(BilateralSeparable, WithANegativeStrideTheRowAboveFollowsInMemory) {
    // The image of the test before, upside down: row 0 is the last one in memory.
    Image memory = {100, 100, 100, 100, 200, 100, 100, 100}, dst(8);
    tqtest::GuardedBuffer src(memory.size());
    std::copy(memory.begin(), memory.end(), src.data());
    IPL_BilteralEx_8u_C1R(4, 2, -4, src.data() + 4, 4, dst.data(), 3, kFlatSigma);
    EXPECT_EQ(dst, (Image{137, 168, 110, 111, 117, 132, 105, 116}));
}

TEST(BilateralSeparable, AnEmptyWindowGivesZero) {
    // Radius = width: column 0 has no window.
    EXPECT_EQ(Filtered(1, 3, 1, {100, 150, 200}, 1, 10), (Image{16, 16, 16}));
    EXPECT_EQ(Filtered(3, 2, 3, Image(6, 100), 3, kFlatSigma), (Image{16, 100, 100, 16, 100, 100}));
}

TEST(BilateralSeparable, ARadiusAboveTheWidthKeepsTheLiteralRightEnd) {
    // Radius 4: weights 12, 7, 4, 3, 2. Of a width of 2, column 0 has the window dx = 0 to 1 and
    // column 1 has -1 to 2: the spare byte behind it, and one that lies beyond the memory.
    // (7 * 100 + 12 * 100 + 7 * 200) / 26 = 126.9.
    EXPECT_EQ(Filtered(2, 1, 3, {100, 100, 200}, 4, kFlatSigma), (Image{100, 127}));
}

// ---- The whole memory ------------------------------------------------------------------------

TEST(BilateralSeparable, EqualsTheReferenceAtAllSizesAndStrides) {
    BlockStage stage(2, 2048, 1);
    for (int width : tqtest::kFilterWidths)
        for (int height : {1, 2, 3, 5, 9})
            for (int radius : {1, 2, 3, 4, 5, 6})
                for (const PlanePair& pair : tqtest::PlanePairs(width, height))
                    ASSERT_TRUE(FilterEqualsReference(stage, pair, tqref::BilateralEx, kSeparable,
                                                      radius, 40 * radius))
                        << pair << ", radius " << radius;
}

TEST(BilateralSeparable, EqualsTheReferenceWithRadiiAboveTheImage) {
    BlockStage stage(2, 1024, 2);
    for (int radius : {7, 8, 13, 40, 300, 5000})
        for (auto [width, height] :
             {std::pair{1, 1}, {1, 9}, {2, 3}, {5, 4}, {7, 7}, {8, 1}, {12, 6}, {13, 2}, {33, 3}})
            for (const PlanePair& pair : tqtest::PlanePairs(width, height))
                for (int sigma : {25, kFlatSigma})
                    ASSERT_TRUE(FilterEqualsReference(stage, pair, tqref::BilateralEx, kSeparable,
                                                      radius, sigma))
                        << pair << ", radius " << radius;
}

TEST(BilateralSeparable, RowsFromTheBottomUpEqualTheReference) {
    BlockStage stage(2, 1024, 3);
    for (int width : {1, 4, 9, 21})
        for (int height : {1, 3, 6})
            for (const PlanePair& pair : {PlanePair{width, height, -width - 5, width + 3},
                                          PlanePair{width, height, width + 1, -width - 2},
                                          PlanePair{width, height, -width, -width}})
                for (int radius : {1, 2, 3, 4, 6, 9, 40})
                    ASSERT_TRUE(FilterEqualsReference(stage, pair, tqref::BilateralEx, kSeparable,
                                                      radius, 60))
                        << pair << ", radius " << radius;
}

TEST(BilateralSeparable, EqualsTheReferenceForAnySigma) {
    BlockStage stage(2, 1024, 4);
    const PlanePair pair{75, 9, 77, 76};
    for (int sigma : {1, 2, 5, 10, 30, 77, 150, 255, 1000, 46341, INT_MAX, INT_MIN, -1, -30})
        for (int radius : {2, 4})
            EXPECT_TRUE(
                FilterEqualsReference(stage, pair, tqref::BilateralEx, kSeparable, radius, sigma))
                << sigma;
}

// Images of many differences, at every level. Rows have spare bytes.
void ExpectNoiseEqualsReference(int width, int height, int radius, int sigma) {
    tqtest::Settings settings;
    const int stride = width + 3;
    Image src = tqtest::ContrastNoise(stride * height, radius * 1000 + sigma);
    Image expected(width * height);
    tqref::Bytes from(src.data()), to(expected.data());
    tqref::BilateralEx(width, height, stride, from, width, to, radius, sigma);
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        EXPECT_TRUE(Filtered(width, height, stride, src, radius, sigma) == expected)
            << width << " x " << height << ", radius " << radius << ", sigma " << sigma
            << ", level " << tq::IsaLevelName(level);
    }
}

TEST(BilateralSeparable, EqualsTheReferenceForEveryDifference) {
    for (int sigma = 1; sigma <= 90; ++sigma) ExpectNoiseEqualsReference(67, 19, 2, sigma);
    for (int sigma : {100, 127, 128, 150, 255, 256, 500})
        ExpectNoiseEqualsReference(67, 19, 3, sigma);
}

TEST(BilateralSeparable, EqualsTheReferenceForLargeRadii) {
    for (int radius : {15, 16, 31, 32, 64, 100, 125, 126, 127, 128, 129, 130})
        for (auto [width, height] :
             {std::pair{5, 6}, {100, 3}, {127, 2}, {128, 4}, {129, 1}, {280, 5}, {3, 270}})
            ExpectNoiseEqualsReference(width, height, radius, 60);
    ExpectNoiseEqualsReference(600, 5, 3, 25);
}

TEST(BilateralSeparable, TheInPlaceFormEqualsTheReference) {
    BlockStage stage(1, 1024, 5);
    auto everywhere = [](int, int) { return true; };
    for (int width : {1, 2, 7, 16, 31})
        for (int height : {1, 4, 9})
            for (int stride : {width, width + 1, width + 6})
                for (auto [radius, sigma] : {std::pair{1, 20}, {2, -30}, {4, 70}, {9, 50}})
                    EXPECT_TRUE(tqtest::InPlaceEqualsReference(
                        stage, width, height, stride, tqref::BilateralEx, kSeparableInPlace,
                        everywhere, radius, sigma))
                        << width << " x " << height << ", stride " << stride << ", radius "
                        << radius;
}

TEST(BilateralSeparable, SourceAndDestinationMayBeTheSameImage) {
    BlockStage stage(1, 1024, 6);
    for (auto [width, height, stride, radius] :
         {std::array{17, 9, 20, 2}, {8, 5, 8, 4}, {33, 4, 35, 6}, {5, 5, 5, 7}}) {
        const int w = width, h = height, s = stride, r = radius;
        stage.Model([&](tqref::Bytes* images) {
            Image memory(h * s), dst(h * s);
            for (int i = 0; i < h * s; ++i) memory[i] = images[0][i];
            tqref::Bytes from(memory.data()), to(dst.data());
            tqref::BilateralEx(w, h, s, from, s, to, r, 50);
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) images[0][y * s + x] = dst[y * s + x];
        });
        EXPECT_TRUE(tqtest::CheckAtEveryLevel(stage,
                                              [&](uint8_t* const* images) {
                                                  IPL_BilteralEx_8u_C1R(w, h, s, images[0], s,
                                                                        images[0], r, 50);
                                              }))
            << w << " x " << h << ", radius " << r;
    }
}

// ---- Arguments out of range ------------------------------------------------------------------

TEST(BilateralSeparable, AZeroAmongTheArgumentsWritesNothing) {
    BlockStage stage(2, 64, 7);
    stage.Model([](tqref::Bytes*) {});
    EXPECT_TRUE(stage.Check([](uint8_t* const* images) {
        uint8_t *src = images[0], *dst = images[1];
        IPL_BilteralEx_8u_C1R(0, 4, 8, src, 8, dst, 2, 10);
        IPL_BilteralEx_8u_C1R(4, 0, 8, src, 8, dst, 2, 10);
        IPL_BilteralEx_8u_C1R(4, 4, 0, src, 8, dst, 2, 10);
        IPL_BilteralEx_8u_C1R(4, 4, 8, nullptr, 8, dst, 2, 10);
        IPL_BilteralEx_8u_C1R(4, 4, 8, src, 0, dst, 2, 10);
        IPL_BilteralEx_8u_C1R(4, 4, 8, src, 8, nullptr, 2, 10);
        IPL_BilteralEx_8u_C1R(4, 4, 8, src, 8, dst, 0, 10);
        IPL_BilteralEx_8u_C1R(4, 4, 8, src, 8, dst, 2, 0);
        IPL_BilteralEx_8u_C1R(4, 4, 8, src, 8, dst, 0, 0);
    }));
}

TEST(BilateralSeparable, SizesBelowZeroWriteNothing) {
    tqtest::Deadline deadline;
    BlockStage stage(2, 64, 8);
    stage.Model([](tqref::Bytes*) {});
    for (const auto& size : {std::pair{-1, 3},
                             {3, -1},
                             {-5, -5},
                             {INT_MIN, 2},
                             {2, INT_MIN},
                             {-40000, -40000},
                             {INT_MIN, INT_MIN}})
        EXPECT_TRUE(stage.Check([&](uint8_t* const* images) {
            IPL_BilteralEx_8u_C1R(size.first, size.second, 8, images[0], 8, images[1], 2, 10);
        })) << size.first
            << " x " << size.second;
}

TEST(BilateralSeparable, InPlaceARadiusOrSigmaOfZeroWritesNoMoreThanTheImage) {
    BlockStage stage(1, 256, 9);
    auto nowhere = [](int, int) { return false; };
    for (int stride : {9, 12, -13})
        for (auto [radius, sigma] : {std::pair{0, 10}, {2, 0}, {0, 0}})
            EXPECT_TRUE(tqtest::InPlaceEqualsReference(stage, 9, 5, stride, tqref::BilateralEx,
                                                       kSeparableInPlace, nowhere, radius, sigma))
                << stride;
}

TEST(BilateralSeparable, InPlaceSizesBelowOneWriteNothing) {
    BlockStage stage(1, 64, 10);
    stage.Model([](tqref::Bytes*) {});
    for (const auto& size : {std::pair{0, 3}, {3, 0}, {-1, 3}, {3, -1}, {-5, -5}})
        for (int radius : {0, 2})
            EXPECT_TRUE(stage.Check([&](uint8_t* const* images) {
                IPL_BilteralEx_8u_C1R(size.first, size.second, 4, images[0], radius, 10);
            })) << size.first
                << " x " << size.second << ", " << radius;
}

TEST(BilateralSeparable, ANegativeRadiusHasEmptyWindows) {
    tqtest::Deadline deadline;
    BlockStage stage(2, 64, 11);
    for (int radius : {-1, -2, -7, -46341, -INT_MAX, INT_MIN})
        EXPECT_TRUE(FilterEqualsReference(
            stage, PlanePair{5, 4, 7, 6},
            [](int width, int height, int srcStride, tqref::Bytes& src, int dstStride,
               tqref::Bytes& dst, int,
               int) { tqtest::FillPixels(width, height, srcStride, src, dstStride, dst, 16); },
            kSeparable, radius, 10))
            << radius;
}

TEST(BilateralSeparable, ALargeRadiusNeitherHangsNorLeavesTheImage) {
    tqtest::Deadline deadline;
    BlockStage stage(2, 256, 12);
    for (int radius : {23170, 32767, 32768, 46340, 46341, 65535, 65536, 1000000})
        EXPECT_TRUE(FilterEqualsReference(stage, PlanePair{6, 3, 8, 7}, tqref::BilateralEx,
                                          kSeparable, radius, 30))
            << radius;
}

TEST(BilateralSeparable, ARadiusWithoutMemoryForItsTableThrows) {
    tqtest::Deadline deadline;
    const uint64_t inUse = tq::SharedMemoryManager().m_nBytesInUse;
    Image image(16, 50), before = image;
    for (int radius : {1 << 28, 1 << 29, 1 << 30, INT_MAX - 1, INT_MAX}) {
        EXPECT_THROW(IPL_BilteralEx_8u_C1R(2, 2, 2, image.data(), 2, image.data() + 8, radius, 10),
                     std::bad_alloc)
            << radius;
        EXPECT_THROW(IPL_BilteralEx_8u_C1R(2, 2, 2, image.data(), radius, 10), std::bad_alloc)
            << radius;
    }
    EXPECT_EQ(image, before);
    EXPECT_EQ(tq::SharedMemoryManager().m_nBytesInUse, inUse);
    EXPECT_EQ(Filtered(4, 1, 4, {100, 110, 120, 130}, 1, 10), (Image{100, 110, 120, 120}));
}

// The first pass gives values outside a byte then, and their differences lie outside the table.
TEST(BilateralSeparable, SumsThatWrapLeaveThePixelsOpenAndStayInside) {
    const int width = 3300, height = 3;
    tqtest::GuardedBuffer src(width * height), dst(width * height);
    for (int i = 0; i < width * height; ++i)
        src.data()[i] = static_cast<uint8_t>(i % 3 == 0 ? 200 : 255);
    const Image before(src.data(), src.data() + src.size());
    for (int radius : {1300, 1550, 2500})
        for (int sigma : {40, kFlatSigma}) {
            IPL_BilteralEx_8u_C1R(width, height, width, src.data(), width, dst.data(), radius,
                                  sigma);
            EXPECT_EQ(Image(src.data(), src.data() + src.size()), before);
            EXPECT_TRUE(std::all_of(dst.data(), dst.data() + dst.size(),
                                    [](uint8_t pixel) { return pixel >= 16 && pixel <= 235; }));
        }
}

}  // namespace
