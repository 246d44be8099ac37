// Conversions and products that are defined for every input.

#include "frame/exact_math.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

TEST(ExactMath, FloatsAreCutTowardZero) {
    EXPECT_EQ(tq::TruncateToInt32(0.0f), 0);
    EXPECT_EQ(tq::TruncateToInt32(-0.0f), 0);
    EXPECT_EQ(tq::TruncateToInt32(0.999f), 0);
    EXPECT_EQ(tq::TruncateToInt32(-0.999f), 0);
    EXPECT_EQ(tq::TruncateToInt32(1.5f), 1);
    EXPECT_EQ(tq::TruncateToInt32(-1.5f), -1);
    EXPECT_EQ(tq::TruncateToInt32(255.99998f), 255);
    EXPECT_EQ(tq::TruncateToInt32(std::numeric_limits<float>::denorm_min()), 0);
}

TEST(ExactMath, FloatsAtTheEndsOfTheRangeAreExact) {
    EXPECT_EQ(tq::TruncateToInt32(2147483520.0f), 2147483520);
    EXPECT_EQ(tq::TruncateToInt32(-2147483648.0f), INT32_MIN);
}

TEST(ExactMath, FloatsThatNoIntHoldsBecomeTheMostNegative) {
    for (float value : {2147483648.0f, -2147483904.0f, 3e9f, -3e9f, 1e38f, -1e38f, kInfinity,
                        -kInfinity, kNan, -kNan})
        EXPECT_EQ(tq::TruncateToInt32(value), INT32_MIN) << value;
}

TEST(ExactMath, DoublesAreCutTowardZero) {
    EXPECT_EQ(tq::TruncateToInt32(0.9999999), 0);
    EXPECT_EQ(tq::TruncateToInt32(-0.9999999), 0);
    EXPECT_EQ(tq::TruncateToInt32(-7.25), -7);
    EXPECT_EQ(tq::TruncateToInt32(2147483647.0), INT32_MAX);
    EXPECT_EQ(tq::TruncateToInt32(2147483647.75), INT32_MAX);
    EXPECT_EQ(tq::TruncateToInt32(-2147483648.0), INT32_MIN);
    EXPECT_EQ(tq::TruncateToInt32(-2147483648.75), INT32_MIN);
    EXPECT_EQ(tq::TruncateToInt32(-2147483647.75), -2147483647);
}

TEST(ExactMath, DoublesThatNoIntHoldsBecomeTheMostNegative) {
    for (double value : {2147483648.0, -2147483649.0, 1e300, -1e300, double{kInfinity},
                         -double{kInfinity}, double{kNan}})
        EXPECT_EQ(tq::TruncateToInt32(value), INT32_MIN) << value;
}

TEST(ExactMath, BytesAreTheLowEightBits) {
    EXPECT_EQ(tq::TruncateToByte(0.0f), 0);
    EXPECT_EQ(tq::TruncateToByte(254.9f), 254);
    EXPECT_EQ(tq::TruncateToByte(255.0f), 255);
    EXPECT_EQ(tq::TruncateToByte(256.0f), 0);
    EXPECT_EQ(tq::TruncateToByte(511.5f), 255);
    EXPECT_EQ(tq::TruncateToByte(-0.5f), 0);
    EXPECT_EQ(tq::TruncateToByte(-1.0f), 255);
    EXPECT_EQ(tq::TruncateToByte(-257.0f), 255);
    EXPECT_EQ(tq::TruncateToByte(2147483648.0f), 0);
    EXPECT_EQ(tq::TruncateToByte(kNan), 0);
    EXPECT_EQ(tq::TruncateToByte(-kInfinity), 0);
}

TEST(ExactMath, ProductsWrapIn32Bits) {
    EXPECT_EQ(tq::Mul32(1080, 7680), 8294400);
    EXPECT_EQ(tq::Mul32(-3, 5), -15);
    EXPECT_EQ(tq::Mul32(-3, -5), 15);
    EXPECT_EQ(tq::Mul32(0, INT32_MIN), 0);
    EXPECT_EQ(tq::Mul32(65536, 65536), 0);
    EXPECT_EQ(tq::Mul32(65536, 32768), INT32_MIN);
    EXPECT_EQ(tq::Mul32(INT32_MIN, -1), INT32_MIN);
    EXPECT_EQ(tq::Mul32(INT32_MAX, INT32_MAX), 1);
    EXPECT_EQ(tq::Mul32(INT32_MAX, 2), -2);
    EXPECT_EQ(tq::Mul32(46341, 46341), -2147479015);
}

}  // namespace
