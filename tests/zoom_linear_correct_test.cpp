// Linear correct zoom: the corrected place at single pixels, known values, the calls that are the
// linear zoom, the reference at every level, bands and band tasks.

#include <gtest/gtest.h>
#include <tqipl/zoom.h>

#include <array>
#include <bit>
#include <cmath>
#include <utility>
#include <vector>

#include "reference/zoom_correct_reference.h"
#include "support/correct_check.h"
#include "support/guarded_buffer.h"
#include "support/settings.h"
#include "support/zoom_preamble.h"
#include "support/zoom_threads.h"
#include "zoom/correct.h"
#include "zoom/zoom_tasks.h"

namespace {

using tqtest::Content;
using tqtest::GuardedBuffer;
using tqtest::ZoomForm;
using tqtest::ZoomPreamble;
using tqtest::ZoomSizes;

const ZoomForm kPlainC1 = {"IPL_ZoomLinearCorrect_8u_C1R", IPL_ZoomLinearCorrect_8u_C1R,
                           tqref::ZoomLinearCorrectC1, 1};
const ZoomForm kPlainC4 = {"IPL_ZoomLinearCorrect_8u_C4R", IPL_ZoomLinearCorrect_8u_C4R,
                           tqref::ZoomLinearCorrectC4, 4};
const ZoomForm kThreadedC1 = {"IPL_ZoomLinearCorrectMultiThread_8u_C1R",
                              IPL_ZoomLinearCorrectMultiThread_8u_C1R, tqref::ZoomLinearCorrectC1,
                              1};
const ZoomForm kThreadedC4 = {"IPL_ZoomLinearCorrectMultiThread_8u_C4R",
                              IPL_ZoomLinearCorrectMultiThread_8u_C4R, tqref::ZoomLinearCorrectC4,
                              4};
const std::vector<ZoomForm> kPlainForms = {kPlainC1, kPlainC4};
const std::vector<ZoomForm> kThreadedForms = {kThreadedC1, kThreadedC4};
const std::vector<ZoomForm> kForms = {kPlainC1, kPlainC4, kThreadedC1, kThreadedC4};

using Block = std::array<std::array<int, 4>, 4>;

// Each row in memory of its own that ends at a guard page.
class BlockRows {
public:
    BlockRows() = default;
    explicit BlockRows(const Block& block) { Set(block); }
    void Set(const Block& block) {
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c) m_rows[r].data()[c] = static_cast<uint8_t>(block[r][c]);
    }
    tqref::CorrectPlace Weights(float fx, float fy) {
        tqref::CorrectPlace place{-7.0f, -7.0f};
        tq::IPL_CorrectWeights(m_rows[0].data(), m_rows[1].data(), m_rows[2].data(),
                               m_rows[3].data(), fx, fy, &place.x, &place.y);
        return place;
    }
    int Pixel(float fx, float fy) {
        uint8_t bytes[3] = {0xA5, 0xA5, 0xA5};
        tq::IPL_CorrectPixel(m_rows[0].data(), m_rows[1].data(), m_rows[2].data(), m_rows[3].data(),
                             fx, fy, bytes + 1);
        EXPECT_EQ(bytes[0], 0xA5);
        EXPECT_EQ(bytes[2], 0xA5);
        return bytes[1];
    }

private:
    GuardedBuffer m_rows[4] = {GuardedBuffer(4), GuardedBuffer(4), GuardedBuffer(4),
                               GuardedBuffer(4)};
};

Block RowsOf(int a, int b, int c, int d) {
    const std::array<int, 4> row = {a, b, c, d};
    return {row, row, row, row};
}

Block Transposed(const Block& block) {
    Block result;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) result[r][c] = block[c][r];
    return result;
}

void ExpectPlace(const Block& block, float fx, float fy, double x, double y) {
    const tqref::CorrectPlace place = BlockRows(block).Weights(fx, fy);
    EXPECT_NEAR(place.x, x, 5e-5) << "x at " << fx << ", " << fy;
    EXPECT_NEAR(place.y, y, 5e-5) << "y at " << fx << ", " << fy;
}

// ---- The corrected place ------------------------------------------------------------------------

TEST(CorrectWeights, AConstantBlockLeavesThePlaceAlone) {
    for (int value : {0, 1, 127, 255}) {
        BlockRows rows(RowsOf(value, value, value, value));
        for (float fx : {0.0f, 0.125f, 0.3f, 0.5f, 0.9f, 1.0f})
            for (float fy : {0.0f, 0.25f, 0.5f, 0.7f, 1.0f}) {
                const tqref::CorrectPlace place = rows.Weights(fx, fy);
                EXPECT_NEAR(place.x, fx, 2e-7);
                EXPECT_NEAR(place.y, fy, 2e-7);
                EXPECT_EQ(rows.Pixel(fx, fy), value);
            }
    }
}

TEST(CorrectWeights, PlaceZeroStaysZeroAndGivesTheFirstPixel) {
    for (const Block& block :
         {Block{{{1, 2, 3, 4}, {50, 60, 170, 8}, {9, 100, 11, 12}, {130, 14, 15, 160}}},
          RowsOf(0, 255, 0, 255), Block{{{255, 0, 0, 0}, {0, 77, 0, 255}, {}, {0, 255, 255, 0}}}}) {
        BlockRows rows(block);
        const tqref::CorrectPlace place = rows.Weights(0.0f, 0.0f);
        EXPECT_EQ(place.x, 0.0f);
        EXPECT_EQ(place.y, 0.0f);
        EXPECT_EQ(rows.Pixel(0.0f, 0.0f), block[1][1]);
    }
}

TEST(CorrectWeights, PlaceOneStaysOneAndGivesTheLastPixel) {
    BlockRows rows(Block{{{1, 2, 3, 4}, {50, 60, 170, 8}, {9, 100, 11, 12}, {130, 14, 15, 160}}});
    const tqref::CorrectPlace place = rows.Weights(1.0f, 1.0f);
    EXPECT_EQ(place.x, 1.0f);
    EXPECT_EQ(place.y, 1.0f);
    EXPECT_EQ(rows.Pixel(1.0f, 1.0f), 11);
}

TEST(CorrectWeights, AStepInTheMiddleOfTheCellMovesNothing) {
    for (float f : {0.25f, 0.5f, 0.75f}) {
        ExpectPlace(RowsOf(0, 0, 255, 255), f, 0.5f, f, 0.5);
        ExpectPlace(Transposed(RowsOf(0, 0, 255, 255)), 0.5f, f, 0.5, f);
        EXPECT_EQ(BlockRows(RowsOf(0, 0, 200, 200)).Pixel(f, 0.5f), static_cast<int>(200 * f));
    }
}

// 63.75 on the scale of 255, and a weight of 1 / 3.55 for the side of the step.
TEST(CorrectWeights, AStepBehindTheCellPullsThePlaceAway) {
    ExpectPlace(RowsOf(0, 0, 0, 255), 0.5f, 0.5f, 0.0858369, 0.5);
    EXPECT_EQ(BlockRows(RowsOf(0, 0, 0, 255)).Pixel(0.5f, 0.5f), 0);
    ExpectPlace(RowsOf(255, 255, 255, 0), 0.5f, 0.5f, 0.0858369, 0.5);
    EXPECT_EQ(BlockRows(RowsOf(255, 255, 255, 0)).Pixel(0.5f, 0.5f), 255);
}

TEST(CorrectWeights, AStepBeforeTheCellPullsThePlaceForward) {
    ExpectPlace(RowsOf(0, 255, 255, 255), 0.5f, 0.5f, 1 - 0.0858369, 0.5);
    EXPECT_EQ(BlockRows(RowsOf(0, 255, 255, 255)).Pixel(0.5f, 0.5f), 255);
}

// Down the columns the weights are laid out the other way: the step above weighs the position.
TEST(CorrectWeights, StepsAboveAndBelowWeighTheOtherWayRound) {
    // 63.75 / (191.25 / 3.55 + 63.75), and 191.25 / 3.55 / (63.75 + 191.25 / 3.55).
    ExpectPlace(Transposed(RowsOf(0, 0, 0, 255)), 0.5f, 0.5f, 0.5, 0.541985);
    ExpectPlace(Transposed(RowsOf(0, 255, 255, 255)), 0.5f, 0.5f, 0.5, 0.458015);
}

TEST(CorrectWeights, TheTwoSidesMayBeCutAtDifferentPlaces) {
    Block block{};
    block[1][3] = 255;
    // 0.08584 at the top, 0.25 at the bottom.
    ExpectPlace(block, 0.5f, 0.5f, 0.1679185, 0.5);
    // By the bottom row, whose step is 0: 0.21978 at the top, 0.5 at the bottom.
    ExpectPlace(block, 0.5f, 0.75f, 0.4299451, 0.75);
}

// The lines from (0.08584, 0) to (0.25, 1) and from (0, 0.54198) to (1, 0.25).
TEST(CorrectWeights, ThePlaceIsWhereTwoLinesCross) {
    Block block{};
    block[1][3] = 255;
    block[3][1] = 255;
    ExpectPlace(block, 0.5f, 0.5f, 0.1668148, 0.4932773);
}

TEST(CorrectWeights, TheNearerColumnAndRowGiveTheDifferences) {
    // Only the right column of the cell has a step above it.
    Block right{};
    right[0][2] = 255;
    const float above = std::nextafter(0.5f, 1.0f);
    ExpectPlace(right, 0.5f, 0.5f, 0.5, 0.3598901);
    ExpectPlace(right, above, 0.5f, 0.5, 0.6040076);
    // Only the lower row of the cell has a step left of it.
    Block lower{};
    lower[2][0] = 255;
    ExpectPlace(lower, 0.5f, 0.5f, 0.6401099, 0.5);
    ExpectPlace(lower, 0.5f, above, 0.8320817, 0.5);
}

bool SameBits(float a, float b) { return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b); }

void ExpectBlockEqualsReference(BlockRows& rows, const Block& block,
                                const std::vector<float>& fractions) {
    rows.Set(block);
    tqref::CorrectBlock plain;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) plain.p[r][c] = block[r][c];
    for (float fx : fractions)
        for (float fy : fractions) {
            const tqref::CorrectPlace expected = tqref::CorrectWeights(plain, fx, fy);
            const tqref::CorrectPlace actual = rows.Weights(fx, fy);
            ASSERT_TRUE(SameBits(actual.x, expected.x) && SameBits(actual.y, expected.y))
                << fx << ", " << fy << ": " << actual.x << ", " << actual.y << " and not "
                << expected.x << ", " << expected.y;
            ASSERT_EQ(rows.Pixel(fx, fy), tqref::CorrectPixel(plain, fx, fy)) << fx << ", " << fy;
        }
}

TEST(CorrectWeights, ManyBlocksEqualTheReference) {
    const std::vector<float> fractions = {0.0f,
                                          1e-30f,
                                          0.001f,
                                          0.125f,
                                          1.0f / 3,
                                          std::nextafter(0.5f, 0.0f),
                                          0.5f,
                                          std::nextafter(0.5f, 1.0f),
                                          0.6f,
                                          0.75f,
                                          std::nextafter(1.0f, 0.0f),
                                          1.0f};
    BlockRows rows;
    uint32_t state = 1;
    const auto next = [&state] {
        state = state * 1664525u + 1013904223u;
        return static_cast<int>(state >> 24);
    };
    for (int i = 0; i < 10000; ++i) {
        Block block;
        for (auto& row : block)
            for (int& byte : row) {
                byte = next();
                if (i % 3 == 1) byte = byte < 128 ? 0 : 255;
                if (i % 3 == 2) byte = 100 + byte % 4;
            }
        ASSERT_NO_FATAL_FAILURE(ExpectBlockEqualsReference(rows, block, fractions));
    }
}

TEST(CorrectWeights, BlocksOfExtremesEqualTheReference) {
    BlockRows rows;
    for (unsigned bits = 0; bits < 65536; ++bits) {
        Block block;
        for (int i = 0; i < 16; ++i) block[i / 4][i % 4] = bits >> i & 1 ? 255 : 0;
        ASSERT_NO_FATAL_FAILURE(ExpectBlockEqualsReference(rows, block, {0.4f, 0.9f})) << bits;
    }
}

// ---- Values known by hand -----------------------------------------------------------------------

void ExpectLinearCorrect(const ZoomSizes& sizes, const std::vector<int>& source,
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

// Only the cell of column 1 and row 1 has a whole block around it: destination rows and columns 3
// and 4. There the places 0.25 and 0.75 become 0.05815 and 0.40663.
TEST(ZoomLinearCorrect, TheRingOfCellsIsBilinearAndTheMiddleIsCorrected) {
    const std::vector<int> bilinear = {0, 0, 0, 25, 75, 138, 216, 255};
    const std::vector<int> corrected = {0, 0, 0, 5, 40, 138, 216, 255};
    std::vector<int> expected;
    for (int j = 0; j < 8; ++j) {
        const std::vector<int>& row = j == 3 || j == 4 ? corrected : bilinear;
        expected.insert(expected.end(), row.begin(), row.end());
    }
    ExpectLinearCorrect({4, 4, 8, 8}, Repeated({0, 0, 100, 255}, 4), expected);
}

// 204 * (1 - 0.40663) and so on: the same from the other side.
TEST(ZoomLinearCorrect, DarkAndBrightSidesAreAlike) {
    const std::vector<int> result =
        tqtest::ZoomBytes(kPlainC1, {4, 4, 8, 8}, Repeated({255, 255, 155, 0}, 4));
    EXPECT_EQ(result[3 * 8 + 3], 249);
    EXPECT_EQ(result[3 * 8 + 4], 214);
    EXPECT_EQ(result[4 * 8 + 4], 214);
    EXPECT_EQ(result[2 * 8 + 3], 230);
    EXPECT_EQ(result[5 * 8 + 4], 180);
}

TEST(ZoomLinearCorrect, AConstantImageStaysConstant) {
    for (int value : {0, 1, 127, 254, 255})
        for (const ZoomSizes& s : {ZoomSizes{1, 1, 9, 9}, {4, 4, 8, 8}, {7, 6, 31, 23}})
            ExpectLinearCorrect(s, std::vector<int>(s.srcWidth * s.srcHeight, value),
                                std::vector<int>(s.dstWidth * s.dstHeight, value));
}

// The blue channel is the step of the test above, at 117 1024ths of the luminance: 0, 0, 11, 29.
// The place 0.75 becomes 0.70343 and 0.25 becomes 0.20817, for all channels.
TEST(ZoomLinearCorrect, TheLuminanceMovesAllFourChannels) {
    std::vector<int> source;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column) {
            const int blue[] = {0, 0, 100, 255}, alpha[] = {0, 0, 200, 200};
            source.insert(source.end(), {blue[column], 0, 0, alpha[column]});
        }
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (const ZoomForm& form : {kPlainC4, kThreadedC4}) {
            const std::vector<int> result = tqtest::ZoomBytes(form, {4, 4, 8, 8}, source);
            const auto pixel = [&result](int row, int column) {
                const auto first = result.begin() + (row * 8 + column) * 4;
                return std::vector<int>(first, first + 4);
            };
            for (int row : {3, 4}) {
                EXPECT_EQ(pixel(row, 3), (std::vector<int>{20, 0, 0, 41})) << form.name;
                EXPECT_EQ(pixel(row, 4), (std::vector<int>{70, 0, 0, 140})) << form.name;
            }
            for (int row : {2, 5}) {
                EXPECT_EQ(pixel(row, 3), (std::vector<int>{25, 0, 0, 50})) << form.name;
                EXPECT_EQ(pixel(row, 4), (std::vector<int>{75, 0, 0, 150})) << form.name;
            }
        }
    }
}

// ---- The calls that are the linear zoom ---------------------------------------------------------

TEST(ZoomLinearCorrect, LessThanTwiceOnAnyAxisIsTheLinearZoomOfTheSameForm) {
    const auto expect = tqtest::ExpectSameZoomAtEveryLevelAndProcessorCount;
    const std::vector<ZoomSizes>& sizes = tqtest::DelegatedSizes();
    expect(kPlainC1, IPL_ZoomLinear_8u_C1R, sizes);
    expect(kPlainC4, IPL_ZoomLinear_8u_C4R, sizes);
    expect(kThreadedC1, IPL_ZoomLinearMultiThread_8u_C1R, sizes);
    expect(kThreadedC4, IPL_ZoomLinearMultiThread_8u_C4R, sizes);
}

TEST(ZoomLinearCorrect, ThreeColumnsOrRowsAreTheLinearZoomThroughout) {
    const std::vector<ZoomSizes> sizes = {{3, 3, 6, 6},   {3, 20, 7, 51}, {20, 3, 51, 7},
                                          {2, 20, 9, 40}, {20, 2, 40, 9}, {1, 9, 3, 30},
                                          {9, 1, 30, 3},  {3, 3, 60, 70}};
    for (const ZoomSizes& s : sizes) {
        tqtest::ExpectSameZoom(kPlainC1, IPL_ZoomLinear_8u_C1R, s);
        tqtest::ExpectSameZoom(kPlainC4, IPL_ZoomLinear_8u_C4R, s);
    }
}

// Positions below 1 are the ring.
TEST(ZoomLinearCorrect, ExactlyTwiceIsCorrectedInsideTheRing) {
    tqtest::ExpectOnlyTheInsideDiffersFromLinear(kForms, 3, 60);
}

// ---- What comes before the method ---------------------------------------------------------------

INSTANTIATE_TEST_SUITE_P(ZoomLinearCorrect, ZoomPreamble, testing::ValuesIn(kForms),
                         tqtest::ZoomFormName);

// ---- The reference at every level ---------------------------------------------------------------

TEST(ZoomLinearCorrect, SmallSizesEqualTheReference) {
    tqtest::ExpectSmallDoubledSizesEqualReference(kPlainForms, 6);
}

TEST(ZoomLinearCorrect, WidthsOfEveryTailEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (int dstWidth = 8; dstWidth <= 80; ++dstWidth)
            for (int srcWidth : {4, 5, 6, 7, 11, 16, 23, 32, 33, 40}) {
                if (2 * srcWidth > dstWidth) continue;
                ASSERT_TRUE(equals({srcWidth, 5, dstWidth, 11}, Content::kNoise));
                ASSERT_TRUE(equals({srcWidth, 4, dstWidth, 8}, Content::kHostile));
            }
    }
}

TEST(ZoomLinearCorrect, EveryLayoutEqualsTheReference) {
    tqtest::ExpectEveryLayoutEqualsReference(kPlainForms);
}

TEST(ZoomLinearCorrect, SizesAtRandomEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        ASSERT_TRUE(tqtest::DoubledSizesAtRandom(equals, 600, 60));
    }
}

TEST(ZoomLinearCorrect, VeryWideAndVeryTallImagesEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(2);
    for (const ZoomForm& form : kForms)
        for (const ZoomSizes& sizes : {ZoomSizes{30011, 4, 60023, 8}, {4, 30011, 8, 60023}})
            ASSERT_TRUE(tqtest::EqualsReference(form, sizes, tqtest::ZoomLayouts()[1],
                                                Content::kNoise, 1, {tq::DetectIsaLevel()}));
}

TEST(ZoomLinearCorrect, VideoSizesEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(4);
    for (const ZoomForm& form : {kThreadedC1, kThreadedC4})
        for (const ZoomSizes& sizes : {ZoomSizes{720, 486, 1920, 1080}, {480, 270, 960, 540}})
            ASSERT_TRUE(tqtest::EqualsReference(form, sizes, tqtest::ZoomLayouts()[1],
                                                Content::kNoise, 1, {tq::DetectIsaLevel()}));
    ASSERT_TRUE(tqtest::EqualsReference(kPlainC4, {720, 486, 1920, 1080}, tqtest::ZoomLayouts()[3],
                                        Content::kHostile, 1, {tq::DetectIsaLevel()}));
}

// ---- Bands --------------------------------------------------------------------------------------

TEST(ZoomLinearCorrect, MultiThreadEqualsPlainAtEveryProcessorCount) {
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

TEST(ZoomLinearCorrect, MultiThreadEqualsTheReferenceAtEveryProcessorCount) {
    for (const ZoomForm& form : kThreadedForms)
        for (const ZoomSizes& s : {ZoomSizes{11, 7, 25, 15}, {6, 12, 13, 33}})
            tqtest::ExpectReferenceAtEveryProcessorCount(form, s);
}

TEST(ZoomLinearCorrect, TaskFieldsStandInOrder) {
    tqtest::ExpectCorrectTaskFieldsInOrder<CZLinearCorrectTask>();
}

TEST(ZoomLinearCorrect, ATaskOfOneChannelWritesItsRowsAndReturns1) {
    tqtest::ExpectCorrectTaskWritesItsRows<CZLinearCorrectTask>(tqref::LinearCorrectRows, 1);
}

TEST(ZoomLinearCorrect, ATaskOfFourChannelsGoesByItsPlaneAndReturns1) {
    tqtest::ExpectCorrectTaskWritesItsRows<CZLinearCorrectTask>(tqref::LinearCorrectRows, 4);
}

TEST(ZoomLinearCorrect, ATaskOfAnotherChannelModeDoesNothingAndReturns1) {
    tqtest::ExpectBadChannelModesReturn1<CZLinearCorrectTask>();
}

TEST(ZoomLinearCorrect, SeveralThreadsZoomDifferentImagesAtOnce) {
    tqtest::ExpectSeveralThreadsZoomAtOnce(kForms, {13, 9, 30, 23});
}

}  // namespace
