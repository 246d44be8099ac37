// The 5/3 transform, its inverse and the low-pass filter: values known by hand, every byte of
// memory against the reference, reconstruction, sums that wrap, sizes too small.

#include "wavelet/wavelet53.h"

#include <gtest/gtest.h>
#include <tqipl/wavelet.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "reference/wavelet53_reference.h"
#include "support/filter_check.h"
#include "support/wavelet_check.h"

namespace {

using tqtest::AtEveryLevel;
using tqtest::BlockStage;
using tqtest::Noise;
using tqtest::PlanePair;
using tqtest::Settings;
using tqtest::Transposed;
using Ints = std::vector<int>;
using Image = std::vector<uint8_t>;

constexpr int kLeast = std::numeric_limits<int>::min(), kMost = std::numeric_limits<int>::max();

static_assert(std::has_virtual_destructor_v<CZDWT53> && sizeof(CZDWT53) == sizeof(void*),
              "a class without data");

Ints Forward(int width, int height, Image image, int background = -77777) {
    Ints values(int64_t{width} * height, background);
    IPL_FwdWavelet_53_C1(width, height, width, image.data(), width, values.data());
    return values;
}

Image Inverse(int width, int height, Ints values, uint8_t background = 99) {
    Image image(int64_t{width} * height, background);
    IPL_InvWavelet_53_C1(width, height, width, values.data(), width, image.data());
    return image;
}

// Random, hostile, all black and white, checked at several pitches.
std::vector<Image> Pictures(int width, int height, uint32_t seed) {
    const int64_t size = int64_t{width} * height;
    Image hostile(size), fine(size), columns(size), rows(size);
    tqtest::FillHostile(hostile.data(), hostile.size(), seed);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            fine[y * width + x] = (x + y) % 2 == 0 ? 0 : 255;
            columns[y * width + x] = x % 2 == 0 ? 255 : 0;
            rows[y * width + x] = y % 3 == 0 ? 255 : 0;
        }
    return {Noise(size, seed), hostile, fine, columns, rows, Image(size, 0), Image(size, 255)};
}

// ---- The transform ------------------------------------------------------------------------------

// One row is transformed along the row only.
TEST(Wavelet53, ALineHasItsLowBandThenItsHighBandAndIsPeriodic) {
    AtEveryLevel([] {
        EXPECT_EQ(Forward(4, 1, {10, 20, 30, 40}), (Ints{120, 280, 0, 160}));
        EXPECT_EQ(Forward(8, 1, {1, 0, 0, 0, 0, 0, 0, 0}), (Ints{6, -1, 0, -1, -4, 0, 0, -4}));
        EXPECT_EQ(Forward(8, 1, {0, 1, 0, 0, 0, 0, 0, 0}), (Ints{2, 2, 0, 0, 8, 0, 0, 0}));
        EXPECT_EQ(Forward(8, 1, {0, 0, 1, 0, 0, 0, 0, 0}), (Ints{-1, 6, -1, 0, -4, -4, 0, 0}));
        EXPECT_EQ(Forward(8, 1, {0, 0, 0, 1, 0, 0, 0, 0}), (Ints{0, 2, 2, 0, 0, 8, 0, 0}));
        EXPECT_EQ(Forward(8, 1, {0, 0, 0, 0, 0, 0, 1, 0}), (Ints{-1, 0, -1, 6, 0, 0, -4, -4}));
        EXPECT_EQ(Forward(8, 1, {0, 0, 0, 0, 0, 0, 0, 1}), (Ints{2, 0, 0, 2, 0, 0, 0, 8}));
    });
}

TEST(Wavelet53, ColumnsAreTransformedLikeRows) {
    AtEveryLevel([] {
        // Columns alike, so that the rows give 8 times the value in the low band and nothing else.
        Image image;
        for (uint8_t value : {10, 20, 30, 40}) image.insert(image.end(), 4, value);
        EXPECT_EQ(Forward(4, 4, image), (Ints{960, 960, 0, 0,    //
                                              2240, 2240, 0, 0,  //
                                              0, 0, 0, 0,        //
                                              1280, 1280, 0, 0}));
        for (auto [width, height] : {std::pair{4, 6}, {8, 12}, {34, 18}, {66, 40}}) {
            const Image noise = Noise(width * height, width);
            const Image transposed = Transposed(width, height, noise);
            EXPECT_EQ(Forward(height, width, transposed),
                      Transposed(width, height, Forward(width, height, noise)))
                << width << " x " << height;
        }
    });
}

TEST(Wavelet53, AConstantImageHas8TimesItsValueAlongRowsAnd64TimesInTheLowBand) {
    AtEveryLevel([] {
        for (uint8_t value : {1, 100, 255}) {
            EXPECT_EQ(Forward(4, 1, Image(4, value)), (Ints{8 * value, 8 * value, 0, 0}));
            for (auto [width, height] : {std::pair{4, 4}, {6, 4}, {4, 10}, {70, 12}}) {
                const Ints values = Forward(width, height, Image(width * height, value));
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x)
                        ASSERT_EQ(values[y * width + x],
                                  x < width / 2 && y < height / 2 ? 64 * value : 0)
                            << width << " x " << height << " at " << x << ", " << y;
            }
        }
    });
}

TEST(Wavelet53, AnOddWidthLeavesTheLastElementOfEachRowUnwritten) {
    AtEveryLevel([] {
        for (int width : {5, 7, 21, 35, 67})
            for (int height : {4, 5, 10}) {
                const Image image = Noise(width * height, width);
                const Ints values = Forward(width, height, image);
                for (int y = 0; y < height; ++y)
                    ASSERT_EQ(values[y * width + width - 1], -77777) << width << ", row " << y;
                // Nor does the last sample count.
                Image other = image;
                for (int y = 0; y < height; ++y) other[y * width + width - 1] ^= 0xFF;
                ASSERT_EQ(Forward(width, height, other), values) << width;
            }
    });
}

TEST(Wavelet53, AnOddHeightLeavesTheValuesOfTheRowPassInTheLastRow) {
    AtEveryLevel([] {
        for (int height : {5, 7, 13}) {
            const Image image = Noise(10 * height, height);
            const Ints values = Forward(10, height, image);
            const Ints last = Forward(
                10, 1, Image(image.begin() + 10 * (height - 1), image.begin() + 10 * height));
            EXPECT_EQ(Ints(values.begin() + 10 * (height - 1), values.end()), last);
            // The rows above are those of the image without it.
            const Ints above =
                Forward(10, height - 1, Image(image.begin(), image.begin() + 10 * (height - 1)));
            EXPECT_EQ(Ints(values.begin(), values.begin() + 10 * (height - 1)), above);
        }
    });
}

// Coefficients that nothing else adds to.
TEST(Wavelet53, OneCoefficientSpreadsOverTheRowsAndColumnsOfItsTaps) {
    AtEveryLevel([] {
        Ints low(16), lastLow(16), high(16), lastHigh(16), negative(16);
        low[0] = lastLow[5] = high[2] = lastHigh[7] = 640;
        negative[2] = -640;
        EXPECT_EQ(Inverse(4, 4, low), (Image{10, 5, 0, 5,  //
                                             5, 3, 0, 3,   //
                                             0, 0, 0, 0,   //
                                             5, 3, 0, 3}));
        EXPECT_EQ(Inverse(4, 4, lastLow), (Image{0, 0, 0, 0,   //
                                                 0, 3, 5, 3,   //
                                                 0, 5, 10, 5,  //
                                                 0, 3, 5, 3}));
        EXPECT_EQ(Inverse(4, 4, high), (Image{0, 8, 0, 0,  //
                                              0, 4, 0, 0,  //
                                              0, 0, 0, 0,  //
                                              0, 4, 0, 0}));
        EXPECT_EQ(Inverse(4, 4, lastHigh), (Image{0, 0, 0, 0,  //
                                                  0, 0, 0, 4,  //
                                                  0, 0, 0, 8,  //
                                                  0, 0, 0, 4}));
        EXPECT_EQ(Inverse(4, 4, negative), (Image{3, 0, 3, 3,  //
                                                  1, 0, 1, 1,  //
                                                  0, 0, 0, 0,  //
                                                  1, 0, 1, 1}));
    });
}

// A constant low band of L and nothing else gives 64 * L before the gain is divided out.
Image InverseOfConstantLowBand(int width, int height, int value) {
    Ints values(width * height);
    for (int y = 0; y < height / 2; ++y)
        for (int x = 0; x < width / 2; ++x) values[y * width + x] = value;
    return Inverse(width, height, values);
}

TEST(Wavelet53, TheGainIsDividedOutRoundedAndLimited) {
    AtEveryLevel([] {
        const std::pair<int, uint8_t> known[] = {{0, 0},
                                                 {31, 0},
                                                 {32, 1},
                                                 {95, 1},
                                                 {96, 2},
                                                 {64 * 255 - 33, 254},
                                                 {64 * 255, 255},
                                                 {64 * 255 + 31, 255},
                                                 {64 * 255 + 32, 255},
                                                 {100000, 255},
                                                 {-1, 0},
                                                 {-96, 0},
                                                 {-6400, 0}};
        for (auto [value, expected] : known)
            for (auto [width, height] : {std::pair{4, 4}, {38, 6}})
                EXPECT_EQ(InverseOfConstantLowBand(width, height, value),
                          Image(width * height, expected))
                    << value;
    });
}

// 64 * L and the 2048 that is added.
TEST(Wavelet53, SumsOfTheInverseWrap) {
    AtEveryLevel([] {
        const std::pair<int, uint8_t> known[] = {{(1 << 25) - 33, 255},
                                                 {(1 << 25) - 32, 0},
                                                 {(1 << 25) - 1, 0},
                                                 {1 << 25, 0},
                                                 {(1 << 26) - 64, 0},
                                                 {1 << 26, 0},
                                                 {(1 << 26) + 64, 1},
                                                 {-(1 << 26) + 7 * 64, 7},
                                                 {-(1 << 25) - 1, 0},
                                                 {-(1 << 25) - 33, 255},
                                                 {kLeast, 0},
                                                 {kLeast + 9 * 64, 9},
                                                 {(1 << 30) + 200 * 64, 200},
                                                 {kMost, 0}};
        for (auto [value, expected] : known)
            for (auto [width, height] : {std::pair{4, 4}, {38, 6}})
                EXPECT_EQ(InverseOfConstantLowBand(width, height, value),
                          Image(width * height, expected))
                    << value;
    });
}

TEST(Wavelet53, AnOddSizeLeavesTheLastColumnAndRowOfTheInverseUnwritten) {
    AtEveryLevel([] {
        for (int width : {5, 8, 35})
            for (int height : {5, 6, 11}) {
                Ints values(width * height, 640);
                for (uint8_t background : {0x12, 0xED}) {
                    const Image image = Inverse(width, height, values, background);
                    for (int y = 0; y < height; ++y)
                        for (int x = 0; x < width; ++x)
                            if (x == (width & ~1) || y == (height & ~1)) {
                                ASSERT_EQ(image[y * width + x], background) << x << ", " << y;
                            }
                }
            }
    });
}

TEST(Wavelet53, TheInverseGivesBackEveryImageOfEvenSize) {
    AtEveryLevel([] {
        uint32_t seed = 0;
        for (int width = 2; width <= 20; width += 2)
            for (int height = 2; height <= 20; height += 2)
                for (const Image& image : Pictures(width, height, ++seed))
                    ASSERT_EQ(Inverse(width, height, Forward(width, height, image)), image)
                        << width << " x " << height;
        for (auto [width, height] : {std::pair{130, 34}, {64, 64}, {6, 300}, {300, 6}, {222, 110}})
            for (const Image& image : Pictures(width, height, ++seed))
                ASSERT_EQ(Inverse(width, height, Forward(width, height, image)), image)
                    << width << " x " << height;
    });
}

// ---- Against the reference ----------------------------------------------------------------------

// Images of ints keep their alignment: they stand at the guard pages only.
template <class Form> testing::AssertionResult CheckAtGuards(BlockStage& stage, Form form) {
    Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        const testing::AssertionResult result = stage.CheckAtGuards(form);
        if (!result)
            return testing::AssertionFailure()
                   << "level " << tq::IsaLevelName(level) << ", " << result.message();
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult ForwardEqualsReference(BlockStage& stage, const PlanePair& pair) {
    stage.Model([&](tqref::Bytes* images) {
        tqref::FwdWavelet53(pair.width, pair.height, pair.srcStride, images[0], pair.dstStride,
                            images[1]);
    });
    return CheckAtGuards(stage, [&](uint8_t* const* images) {
        IPL_FwdWavelet_53_C1(pair.width, pair.height, pair.srcStride, images[0], pair.dstStride,
                             reinterpret_cast<int*>(images[1]));
    });
}

testing::AssertionResult InverseEqualsReference(BlockStage& stage, const PlanePair& pair) {
    stage.Model([&](tqref::Bytes* images) {
        tqref::InvWavelet53(pair.width, pair.height, pair.srcStride, images[0], pair.dstStride,
                            images[1]);
    });
    return CheckAtGuards(stage, [&](uint8_t* const* images) {
        IPL_InvWavelet_53_C1(pair.width, pair.height, pair.srcStride,
                             reinterpret_cast<int*>(images[0]), pair.dstStride, images[1]);
    });
}

TEST(Wavelet53, BothDirectionsEqualTheReferenceAtAllSizesFrom4To20) {
    BlockStage stage(2, 2560, 1);
    for (int width = 4; width <= 20; ++width)
        for (int height = 4; height <= 20; ++height)
            for (const PlanePair& pair : tqtest::PlanePairsBothWays(width, height)) {
                ASSERT_TRUE(ForwardEqualsReference(stage, pair)) << "forward " << pair;
                ASSERT_TRUE(InverseEqualsReference(stage, pair)) << "inverse " << pair;
            }
}

TEST(Wavelet53, BothDirectionsEqualTheReferenceAtLargerSizes) {
    BlockStage stage(2, 81920, 3);
    for (auto [width, height] : {std::pair{64, 64},
                                 {65, 33},
                                 {66, 35},
                                 {127, 30},
                                 {128, 5},
                                 {129, 6},
                                 {255, 8},
                                 {7, 200},
                                 {31, 101},
                                 {1023, 4},
                                 {1030, 7},
                                 {4, 1001}}) {
        const PlanePair pairs[] = {{width, height, width, width},
                                   {width, height, width + 13, width + 3}};
        for (const PlanePair& pair : pairs) {
            ASSERT_TRUE(ForwardEqualsReference(stage, pair)) << "forward " << pair;
            ASSERT_TRUE(InverseEqualsReference(stage, pair)) << "inverse " << pair;
        }
    }
}

// The reference touches nothing but whole pairs, so that nothing else is there to be reached.
TEST(Wavelet53, SizesBelow4DoNotReachOutside) {
    BlockStage stage(2, 1024, 5);
    const int small[] = {kLeast, -4, -1, 0, 1, 2, 3};
    for (int a : small)
        for (int b : {kLeast, -5, -2, -1, 0, 1, 2, 3, 4, 5, 8, 9})
            for (auto [width, height] : {std::pair{a, b}, {b, a}}) {
                const PlanePair pairs[] = {{width, height, 9, 9}, {width, height, 12, 11}};
                for (const PlanePair& pair : pairs) {
                    ASSERT_TRUE(ForwardEqualsReference(stage, pair)) << "forward " << pair;
                    ASSERT_TRUE(InverseEqualsReference(stage, pair)) << "inverse " << pair;
                }
            }
}

testing::AssertionResult InverseOfValuesEqualsReference(int width, int height, const Ints& values) {
    std::vector<uint8_t> bytes(values.size() * 4);
    std::memcpy(bytes.data(), values.data(), bytes.size());
    tqref::Bytes src(bytes.data());
    Image expected(int64_t{width} * height, 99);
    tqref::Bytes dst(expected.data());
    tqref::InvWavelet53(width, height, width, src, width, dst);
    Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        const Image actual = Inverse(width, height, values);
        for (size_t i = 0; i < actual.size(); ++i)
            if (actual[i] != expected[i])
                return testing::AssertionFailure()
                       << "level " << tq::IsaLevelName(level) << ", byte " << i << " is "
                       << int{actual[i]} << " and not " << int{expected[i]};
    }
    return testing::AssertionSuccess();
}

TEST(Wavelet53, TheInverseOfAnyIntsEqualsTheReference) {
    constexpr int kValues[] = {kLeast, kMost,   kLeast + 1, kMost - 1, 0,       1,
                               -1,     1 << 30, 1 << 29,    1 << 26,   1 << 25, -(1 << 25)};
    uint32_t state = 7;
    auto next = [&state] { return state = state * 1664525u + 1013904223u, state >> 8; };
    for (auto [width, height] : {std::pair{4, 4}, {5, 6}, {6, 9}, {18, 7}, {35, 12}, {66, 10}})
        for (int round = 0; round < 20; ++round) {
            Ints values(width * height);
            for (int& value : values)
                value = round < 8 ? kValues[next() % (2 + round)]
                                  : static_cast<int>(next() << 8 | (next() & 0xFF));
            ASSERT_TRUE(InverseOfValuesEqualsReference(width, height, values))
                << width << " x " << height << ", round " << round;
        }
    for (int value : kValues)
        ASSERT_TRUE(InverseOfValuesEqualsReference(34, 6, Ints(34 * 6, value))) << value;
}

// Results of all bytes and both limits, and close to the halves between bytes.
TEST(Wavelet53, TheInverseOfChangedCoefficientsEqualsTheReference) {
    uint32_t seed = 100;
    for (auto [width, height] : {std::pair{4, 4}, {7, 10}, {18, 9}, {36, 14}, {65, 12}})
        for (int range : {2, 40, 700, 5000})
            for (const Image& image : Pictures(width, height, ++seed)) {
                Ints values = Forward(width, height, image, 0);
                const Image noise = Noise(values.size(), seed);
                for (size_t i = 0; i < values.size(); ++i)
                    values[i] += (noise[i] - 128) * range / 128;
                ASSERT_TRUE(InverseOfValuesEqualsReference(width, height, values))
                    << width << " x " << height << ", range " << range;
            }
}

TEST(Wavelet53, TheInverseMayOverlapItsSource) {
    AtEveryLevel([] {
        for (auto [width, height] : {std::pair{4, 4}, {18, 9}, {66, 12}, {35, 11}}) {
            const Image noise = Noise(width * height, width);
            const Ints values = Forward(width, height, noise, 5);
            const Image expected = Inverse(width, height, values);
            for (auto [offset, stride] : {std::pair{0, width},
                                          {0, 4 * width},
                                          {3 * width, width},
                                          {1, 4 * width - 1},
                                          {4 * width, width}}) {
                std::vector<int> memory(width * (height + 2));
                std::memcpy(memory.data(), values.data(), values.size() * 4);
                uint8_t* dst = reinterpret_cast<uint8_t*>(memory.data()) + offset;
                IPL_InvWavelet_53_C1(width, height, width, memory.data(), stride, dst);
                for (int y = 0; y < (height & ~1); ++y)
                    ASSERT_EQ(std::memcmp(dst + y * stride, &expected[y * width], width & ~1), 0)
                        << width << " x " << height << ", offset " << offset << ", row " << y;
            }
        }
    });
}

TEST(Wavelet53, TheClassGivesWhatTheRoutinesGive) {
    for (auto [width, height] : {std::pair{4, 4}, {35, 10}, {66, 13}}) {
        const Image image = Noise(width * height, 3);
        const CZDWT53 transform;
        Ints values(width * height, 8);
        transform.ForwardImage(width, height, width, image.data(), width, values.data());
        EXPECT_EQ(values, Forward(width, height, image, 8));
        Image back(width * height, 9);
        transform.InverseImage(width, height, width, values.data(), width, back.data());
        EXPECT_EQ(back, Inverse(width, height, values, 9));
    }
}

TEST(Wavelet53, SeveralThreadsTransformAtOnce) {
    std::vector<std::thread> threads;
    std::vector<int> differences(4);
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([i, &differences] {
            for (int round = 0; round < 20; ++round) {
                const int width = 30 + 2 * i, height = 20 + 2 * round;
                const Image image = Noise(width * height, i);
                differences[i] += Inverse(width, height, Forward(width, height, image)) != image;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(differences, std::vector<int>(4));
}

}  // namespace
