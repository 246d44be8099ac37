// PSNR: values known by hand, every bit against the reference, long sums, sizes without a pixel.

#include <gtest/gtest.h>
#include <tqipl/filter.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "reference/psnr_reference.h"
#include "support/filter_check.h"

namespace {

using tqref::YuvPsnr;
using tqtest::BlockStage;
using tqtest::Settings;
using Image = std::vector<uint8_t>;

constexpr float kCeiling = 118.1308f;  // 10 * log10(65025 / 0.0000001)
constexpr float kDigits = 0.00006f;

YuvPsnr PsnrYuyv(int width, int height, int stride1, uint8_t* image1, int stride2,
                 uint8_t* image2) {
    YuvPsnr psnr{-1, -2, -3};
    IPL_GetPSNR_YUYV(width, height, stride1, image1, stride2, image2, psnr.y, psnr.u, psnr.v);
    return psnr;
}

// Both not a number, or the same bits.
testing::AssertionResult SameFloat(const char* what, float actual, float expected) {
    if (std::isnan(actual) && std::isnan(expected)) return testing::AssertionSuccess();
    if (std::memcmp(&actual, &expected, sizeof(float)) == 0) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << what << " is " << std::hexfloat << actual << ", not " << expected;
}

testing::AssertionResult SamePsnr(const YuvPsnr& actual, const YuvPsnr& expected) {
    testing::AssertionResult result = SameFloat("Y", actual.y, expected.y);
    if (result) result = SameFloat("U", actual.u, expected.u);
    if (result) result = SameFloat("V", actual.v, expected.v);
    return result;
}

TEST(Psnr, EqualImagesReachTheCeiling) {
    Image image = {0, 1, 2, 3, 100, 200, 254, 255};
    EXPECT_NEAR(IPL_GetPSNR_8u_C1R(8, 1, 8, image.data(), 8, image.data()), kCeiling, kDigits);
    const YuvPsnr psnr = PsnrYuyv(4, 1, 8, image.data(), 8, image.data());
    EXPECT_NEAR(psnr.y, kCeiling, kDigits);
    EXPECT_NEAR(psnr.u, kCeiling, kDigits);
    EXPECT_NEAR(psnr.v, kCeiling, kDigits);
}

TEST(Psnr, TheDenominatorIsTheRootOfTheMeanSquare) {
    Image black(48, 0);
    const std::pair<int, float> known[] = {
        {1, 48.1308f}, {2, 45.1205f}, {10, 38.1308f}, {100, 28.1308f}, {255, 24.0654f}};
    for (auto [difference, decibels] : known) {
        Image grey(48, static_cast<uint8_t>(difference));
        EXPECT_NEAR(IPL_GetPSNR_8u_C1R(12, 4, 12, black.data(), 12, grey.data()), decibels, kDigits)
            << difference;
        EXPECT_NEAR(IPL_GetPSNR_8u_C1R(12, 4, 12, grey.data(), 12, black.data()), decibels, kDigits)
            << difference;
        const YuvPsnr psnr = PsnrYuyv(6, 4, 12, black.data(), 12, grey.data());
        EXPECT_NEAR(psnr.y, decibels, kDigits) << difference;
        EXPECT_NEAR(psnr.u, decibels, kDigits) << difference;
        EXPECT_NEAR(psnr.v, decibels, kDigits) << difference;
    }
}

TEST(Psnr, YStandsInBytes0And2UInByte1VInByte3) {
    Image black(16, 0);
    // One pair in four differs by 4: the root of the mean is 2, or 1.4142 for one of eight of Y.
    const float kOneInFour = 45.1205f, kOneInEight = 46.6257f;
    for (int byte = 0; byte < 4; ++byte) {
        Image other = black;
        other[8 + byte] = 4;
        const YuvPsnr psnr = PsnrYuyv(8, 1, 16, black.data(), 16, other.data());
        EXPECT_NEAR(psnr.y, byte % 2 == 0 ? kOneInEight : kCeiling, kDigits) << byte;
        EXPECT_NEAR(psnr.u, byte == 1 ? kOneInFour : kCeiling, kDigits) << byte;
        EXPECT_NEAR(psnr.v, byte == 3 ? kOneInFour : kCeiling, kDigits) << byte;
    }
}

TEST(Psnr, AnOddLastColumnCountsForYAndIsNotRead) {
    // Three pixels: one pair, and two bytes that differ most and are not looked at.
    Image black(6, 0), other = {2, 2, 2, 2, 255, 255};
    const YuvPsnr psnr = PsnrYuyv(3, 1, 6, black.data(), 6, other.data());
    EXPECT_NEAR(psnr.y, 46.0009f, kDigits);  // a sum of 8 over 3
    EXPECT_NEAR(psnr.u, 46.0009f, kDigits);  // a sum of 4 over 1.5
    EXPECT_NEAR(psnr.v, 46.0009f, kDigits);
}

TEST(Psnr, EqualsTheReferenceBitForBit) {
    BlockStage stage(2, 1024, 1);
    for (int width = 1; width <= 70; ++width)
        for (int height : {1, 2, 3, 5})
            for (const tqtest::PlanePair& pair : tqtest::PlanePairsBothWays(width, height)) {
                // The grounds of the stage differ: so do the sums.
                std::vector<float> expected;
                size_t run = 0;
                stage.Model([&](tqref::Bytes* images) {
                    expected.push_back(tqref::Psnr(pair.width, pair.height, pair.srcStride,
                                                   images[0], pair.dstStride, images[1]));
                });
                ASSERT_TRUE(tqtest::CheckAtEveryLevel(stage, [&](uint8_t* const* images) {
                    const float psnr = IPL_GetPSNR_8u_C1R(pair.width, pair.height, pair.srcStride,
                                                          images[0], pair.dstStride, images[1]);
                    ASSERT_TRUE(SameFloat("PSNR", psnr, expected[run++ % 2])) << pair;
                })) << pair;
            }
}

TEST(Psnr, YuyvEqualsTheReferenceBitForBit) {
    BlockStage stage(2, 1024, 2);
    for (int width = 1; width <= 70; ++width)
        for (int height : {1, 2, 5}) {
            for (tqtest::PlanePair pair : tqtest::PlanePairsBothWays(2 * width, height)) {
                pair.width = width;
                std::vector<YuvPsnr> expected;
                size_t run = 0;
                stage.Model([&](tqref::Bytes* images) {
                    expected.push_back(tqref::PsnrYuyv(pair.width, pair.height, pair.srcStride,
                                                       images[0], pair.dstStride, images[1]));
                });
                ASSERT_TRUE(tqtest::CheckAtEveryLevel(stage, [&](uint8_t* const* images) {
                    const YuvPsnr psnr = PsnrYuyv(pair.width, pair.height, pair.srcStride,
                                                  images[0], pair.dstStride, images[1]);
                    ASSERT_TRUE(SamePsnr(psnr, expected[run++ % 2])) << pair;
                })) << pair;
            }
        }
}

// Sums beyond 2^24, where the order of addition decides.

uint32_t Noise(uint32_t i) {
    i *= 2654435761u;
    i ^= i >> 15;
    i *= 2246822519u;
    return i ^ i >> 13;
}

Image NoiseImage(size_t bytes, uint32_t seed) {
    Image image(bytes);
    for (size_t i = 0; i < bytes; ++i)
        image[i] = static_cast<uint8_t>(Noise(static_cast<uint32_t>(i) + seed));
    return image;
}

void ExpectLongSumsEqualTheReference(int width, int height, int stride1, Image& image1, int stride2,
                                     Image& image2) {
    tqref::Bytes bytes1(image1.data()), bytes2(image2.data());
    const float expected = tqref::Psnr(width, height, stride1, bytes1, stride2, bytes2);
    const YuvPsnr expectedYuv =
        tqref::PsnrYuyv(width / 2, height, stride1, bytes1, stride2, bytes2);
    Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        EXPECT_TRUE(SameFloat(
            "PSNR",
            IPL_GetPSNR_8u_C1R(width, height, stride1, image1.data(), stride2, image2.data()),
            expected))
            << width << " x " << height << ", level " << tq::IsaLevelName(level);
        EXPECT_TRUE(
            SamePsnr(PsnrYuyv(width / 2, height, stride1, image1.data(), stride2, image2.data()),
                     expectedYuv))
            << width << " x " << height << ", level " << tq::IsaLevelName(level);
    }
}

TEST(Psnr, LongSumsAreAddedInPixelOrder) {
    for (auto [width, height] : {std::pair{1023, 513}, {1600, 300}, {4093, 64}, {257, 1001}}) {
        Image noise1 = NoiseImage(int64_t{width} * height, 1);
        Image noise2 = NoiseImage(int64_t{width} * height, 77);
        ExpectLongSumsEqualTheReference(width, height, width, noise1, width, noise2);
    }
}

TEST(Psnr, TheSumMeets2To24AtAnyPlaceOfARow) {
    // 258 squares of 65025 stay below 2^24, and 259 do not. What follows them is odd.
    for (int lead = 0; lead < 40; ++lead) {
        const int width = 2048;
        Image black(width, 0), other(width, 255);
        for (int x = 0; x < lead; ++x) other[x] = static_cast<uint8_t>(x % 3);
        for (int x = 300; x < width; ++x) other[x] = static_cast<uint8_t>(1 + x % 7);
        ExpectLongSumsEqualTheReference(width, 1, width, black, width, other);
    }
}

TEST(Psnr, SmallSquaresVanishInALargeSum) {
    // Beyond 2^25 = 516.01 * 65025 a square of 1 is less than half a step of the sum.
    Image black(70000, 0), other(70000, 1);
    for (int x = 0; x < 600; ++x) other[x] = 255;
    const float actual = IPL_GetPSNR_8u_C1R(70000, 1, 70000, black.data(), 70000, other.data());
    // 600 * 65025 is all that stays of the sum; the exact one is larger by 69400.
    EXPECT_NEAR(actual, 10 * std::log10(65025 / std::sqrt(600.0 * 65025 / 70000)), 0.0005);
    ExpectLongSumsEqualTheReference(70000, 1, 70000, black, 70000, other);
}

TEST(Psnr, ASumOfLargeSquaresGrowsByItsOwnSteps) {
    // Rows over the same memory: 4099 * 4099 pixels are more than 2^24, and round as a float.
    const int width = 4099, height = 4099;
    Image black(width, 0), white(width, 255);
    ExpectLongSumsEqualTheReference(width, height, 0, black, 0, white);
    Image noise = NoiseImage(width, 5);
    ExpectLongSumsEqualTheReference(width, height, 0, black, 0, noise);
}

TEST(Psnr, ASumOf2To41GrowsNoMore) {
    // From there on half a step is 65536. 255 * 255 is less, and 2^41 / 65025 = 33817735 pixels.
    Image black(6007, 0), white(6007, 255);
    ExpectLongSumsEqualTheReference(6007, 6007, 0, black, 0, white);
}

// Differences whose squares end in exactly half a step of the sum, or near it, and small ones.
Image HardImage(size_t bytes, uint32_t seed) {
    constexpr uint8_t kDifferences[] = {0, 1, 2, 3, 4, 6, 8, 12, 16, 24, 32, 48, 64, 96, 128, 192};
    Image image = NoiseImage(bytes, seed);
    for (size_t i = 0; i < bytes; ++i)
        if (image[i] % 4 != 0) image[i] = kDifferences[image[i] >> 4];
    return image;
}

TEST(Psnr, EveryAdditionRoundsAtEverySizeOfTheSum) {
    for (int power = 23; power <= 34; ++power)
        for (int turn = 0; turn < 6; ++turn) {
            // The sum of the lead has the size. What follows stands anywhere in a vector.
            const int lead = static_cast<int>((int64_t{1} << power) / 65025) + 1 + 7 * turn;
            const int width = lead + 5000;
            Image black(width, 0), other = HardImage(width, power * 8 + turn);
            for (int x = 0; x < lead; ++x) other[x] = 255;
            ExpectLongSumsEqualTheReference(width, 1, width, black, width, other);
            Image inverse(width);
            for (int x = 0; x < width; ++x) inverse[x] = static_cast<uint8_t>(255 - other[x]);
            Image white(width, 255);
            ExpectLongSumsEqualTheReference(width, 1, width, inverse, width, white);
        }
}

TEST(Psnr, ACountOfZeroGivesNotANumber) {
    Image image(16, 7);
    for (auto [width, height] : {std::pair{0, 0}, {0, 3}, {4, 0}, {0, -1}, {-2, 0}}) {
        EXPECT_TRUE(std::isnan(IPL_GetPSNR_8u_C1R(width, height, 4, image.data(), 4, image.data())))
            << width << " x " << height;
        const YuvPsnr psnr = PsnrYuyv(width, height, 4, image.data(), 4, image.data());
        EXPECT_TRUE(std::isnan(psnr.y) && std::isnan(psnr.u) && std::isnan(psnr.v))
            << width << " x " << height;
    }
}

TEST(Psnr, SizesBelowZeroReadNothing) {
    constexpr int kLeast = std::numeric_limits<int>::min();
    // The sum is 0, and so is its mean, of whatever sign.
    for (auto [width, height] : {std::pair{4, -1}, {-4, 1}, {-3, -5}, {kLeast, 3}, {1, kLeast}}) {
        EXPECT_NEAR(IPL_GetPSNR_8u_C1R(width, height, 4, nullptr, 4, nullptr), kCeiling, kDigits)
            << width << " x " << height;
        const YuvPsnr psnr = PsnrYuyv(width, height, 4, nullptr, 4, nullptr);
        EXPECT_NEAR(psnr.y, kCeiling, kDigits) << width << " x " << height;
        EXPECT_NEAR(psnr.u, kCeiling, kDigits) << width << " x " << height;
        EXPECT_NEAR(psnr.v, kCeiling, kDigits) << width << " x " << height;
    }
}

TEST(Psnr, TheCountIsA32BitProduct) {
    // 65536 * 65536 wraps to 0.
    EXPECT_TRUE(std::isnan(IPL_GetPSNR_8u_C1R(65536, -65536, 0, nullptr, 0, nullptr)));
    const YuvPsnr psnr = PsnrYuyv(65536, -65536, 0, nullptr, 0, nullptr);
    EXPECT_TRUE(std::isnan(psnr.y) && std::isnan(psnr.u) && std::isnan(psnr.v));
}

TEST(Psnr, APairOfOnePixelIsNotRead) {
    // One pixel has no pair: the sums are 0, and the count is not.
    const YuvPsnr psnr = PsnrYuyv(1, 1, 2, nullptr, 2, nullptr);
    EXPECT_NEAR(psnr.y, kCeiling, kDigits);
    EXPECT_NEAR(psnr.u, kCeiling, kDigits);
    EXPECT_NEAR(psnr.v, kCeiling, kDigits);
}

}  // namespace
