// HSV in floats, 4:2:2 images: values known by hand, forms of pairs against their references, every
// triple of Y, U and V.

#include <gtest/gtest.h>
#include <tqipl/hsv.h>

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "reference/hsv_float_reference.h"
#include "support/hsv_float_forms.h"
#include "support/hsv_forms.h"
#include "support/settings.h"

namespace {

using tqtest::Hsv;
using tqtest::HsvForm;
using tqtest::HsvToYuyv;
using tqtest::kPairForms;
using tqtest::kTasksOfPlanes;
using tqtest::PlanesToYuyv;
using tqtest::Same;
using tqtest::Settings;
using tqtest::YuyvToHsv;
using tqtest::YuyvToPlanes;

using Bytes = std::vector<uint8_t>;
using Floats = std::vector<float>;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

// The four bytes of a pair; both layouts and both ways of calling agree.
Bytes ToYuyv(HsvToYuyv* interleaved, PlanesToYuyv* planes, Hsv left, Hsv right) {
    Floats pixels = {left.h, left.s, left.v, right.h, right.s, right.v};
    Floats planeSet = {left.h, right.h, left.s, right.s, left.v, right.v};
    Bytes yuyv(4, 99), fromPlanes(4, 99);
    interleaved(2, 1, 6, pixels.data(), 4, yuyv.data());
    planes(2, 1, planeSet.data(), 4, fromPlanes.data());
    EXPECT_EQ(fromPlanes, yuyv);
    return yuyv;
}
Bytes ToYuyv601(Hsv left, Hsv right) {
    return ToYuyv(IPL_HSV2YUYV_601, IPL_HSVP2YUYV_601, left, right);
}
Bytes ToYuyv709(Hsv left, Hsv right) {
    return ToYuyv(IPL_HSV2YUYV_709, IPL_HSVP2YUYV_709, left, right);
}

Hsv OfYuv(YuyvToHsv* interleaved, int y, int u, int v) {
    Bytes yuyv = {static_cast<uint8_t>(y), static_cast<uint8_t>(u), static_cast<uint8_t>(y),
                  static_cast<uint8_t>(v)};
    Floats hsv(6, -7);
    interleaved(2, 1, 4, yuyv.data(), 6, hsv.data());
    const Hsv left = {hsv[0], hsv[1], hsv[2]}, right = {hsv[3], hsv[4], hsv[5]};
    EXPECT_EQ(left, right);
    return left;
}

TEST(HsvFloat, StudioGreysHaveNoHueAndNoSaturation) {
    for (auto [form, scale] :
         {std::pair<YuyvToHsv*, float>{IPL_YUYV2HSV_601, 1.164383f}, {IPL_YUYV2HSV_709, 1.1644f}})
        for (int y = 0; y < 256; ++y) {
            const float luma = static_cast<float>(y - 16) * scale;
            EXPECT_EQ(OfYuv(form, y, 128, 128), (Hsv{0, 0, luma})) << y;
        }
    EXPECT_LT(OfYuv(IPL_YUYV2HSV_601, 0, 128, 128).v, -18.6f);
    EXPECT_GT(OfYuv(IPL_YUYV2HSV_601, 255, 128, 128).v, 278.0f);
}

TEST(HsvFloat, YuyvToHsvByHand) {
    // Y 116, U 128 - 20, V 128 + 30: luma 116.4383, blue 116.4383 - 40.34464 = 76.09366,
    // green 116.4383 - (24.38904 - 7.83524) = 99.8845, red 116.4383 + 47.88081 = 164.31911.
    const Hsv hsv = OfYuv(IPL_YUYV2HSV_601, 116, 108, 158);
    EXPECT_NEAR(hsv.h, (99.8845 - 76.09366) * 60 / (164.31911 - 76.09366), 1e-3);
    EXPECT_NEAR(hsv.s, 1 - 76.09366 / 164.31911, 1e-5);
    EXPECT_NEAR(hsv.v, 164.31911, 1e-4);
    // In 709: luma 116.44, blue 74.188, green 116.44 - (15.975 - 4.258) = 104.723, red 170.23.
    const Hsv other = OfYuv(IPL_YUYV2HSV_709, 116, 108, 158);
    EXPECT_NEAR(other.h, (104.723 - 74.188) * 60 / (170.23 - 74.188), 1e-3);
    EXPECT_NEAR(other.s, 1 - 74.188 / 170.23, 1e-5);
    EXPECT_NEAR(other.v, 170.23, 1e-4);
    // U 128 + 20, V 128 + 30: blue 156.78294, green 84.2142, red 164.31911; below red from 360.
    EXPECT_NEAR(OfYuv(IPL_YUYV2HSV_601, 116, 148, 158).h,
                360 + (84.2142 - 156.78294) * 60 / (164.31911 - 84.2142), 1e-3);
    // U and V 128 - 30: blue 55.92134, green 152.5802, red 68.55749.
    EXPECT_NEAR(OfYuv(IPL_YUYV2HSV_601, 116, 98, 98).h,
                120 + (55.92134 - 68.55749) * 60 / (152.5802 - 55.92134), 1e-3);
    // U 128 + 40, V 128 - 10: blue 197.12758, green 108.8975, red 100.47803.
    EXPECT_NEAR(OfYuv(IPL_YUYV2HSV_601, 116, 168, 118).h,
                240 + (100.47803 - 108.8975) * 60 / (197.12758 - 100.47803), 1e-3);
}

TEST(HsvFloat, YuyvToHsvLimitsNothing) {
    // Y 0, U 128, V 255: luma -18.63, red 184.07, green -121.9: saturation above 1.
    EXPECT_GT(OfYuv(IPL_YUYV2HSV_601, 0, 128, 255).s, 1.5f);
    // Y 255: red 481, no limit at 255.
    EXPECT_NEAR(OfYuv(IPL_YUYV2HSV_601, 255, 128, 255).v, 239 * 1.164383 + 127 * 1.596027, 1e-3);
    // Y 0, U 127, V 128: all channels below 0, and so is the value.
    const Hsv dark = OfYuv(IPL_YUYV2HSV_601, 0, 127, 128);
    EXPECT_LT(dark.v, 0.0f);
    EXPECT_LT(dark.s, 0.0f);
}

TEST(HsvFloat, BothPixelsOfAPairShareItsChroma) {
    Bytes yuyv = {116, 108, 50, 158};
    for (YuyvToHsv* form : {IPL_YUYV2HSV_601, IPL_YUYV2HSV_709}) {
        Floats hsv(6);
        form(2, 1, 4, yuyv.data(), 6, hsv.data());
        EXPECT_EQ((Hsv{hsv[0], hsv[1], hsv[2]}), OfYuv(form, 116, 108, 158));
        EXPECT_EQ((Hsv{hsv[3], hsv[4], hsv[5]}), OfYuv(form, 50, 108, 158));
    }
}

TEST(HsvFloat, HsvToYuyvByHand) {
    // Red 255: Y 65.48 + 16.5, U 128.5 - 37.8, V 112.0 + 128.5, which is above 240.
    EXPECT_EQ(ToYuyv601({0, 1, 255}, {0, 1, 255}), (Bytes{81, 90, 81, 240}));
    EXPECT_EQ(ToYuyv709({0, 1, 255}, {0, 1, 255}), (Bytes{63, 102, 63, 240}));
    // 200, a quarter into a sector, half saturated: 200, 125, 100 in some order.
    EXPECT_EQ(ToYuyv601({15, 0.5f, 200}, {15, 0.5f, 200}), (Bytes{140, 106, 140, 163}));
    // R 125, G 100, B 200: Y 32.10 + 50.41 + 19.58 + 16.5; U 87.84 - 47.63 + 128.5;
    // V 54.90 - 36.78 - 14.29 + 128.5.
    EXPECT_EQ(ToYuyv601({255, 0.5f, 200}, {255, 0.5f, 200}), (Bytes{118, 168, 118, 132}));
}

TEST(HsvFloat, HsvToYuyvLimitsLumaTo235AndChromaTo240) {
    for (auto* form : {ToYuyv601, ToYuyv709}) {
        EXPECT_EQ(form({0, 0, 255}, {0, 0, 255}), (Bytes{235, 128, 235, 128}));
        EXPECT_EQ(form({0, 0, 0}, {0, 0, 0}), (Bytes{16, 128, 16, 128}));
        EXPECT_EQ(form({0, 0, 1000}, {0, 0, 1000}), (Bytes{235, 128, 235, 128}));
        EXPECT_EQ(form({0, 0, -100}, {0, 0, -100}), (Bytes{16, 128, 16, 128}));
        // Blue, yellow and red.
        EXPECT_EQ(form({240, 1, 5000}, {240, 1, 5000}), (Bytes{235, 240, 235, 16}));
        EXPECT_EQ(form({60, 1, 3000}, {60, 1, 3000})[1], 16);
        EXPECT_EQ(form({0, 1, 3000}, {0, 1, 3000})[3], 240);
    }
}

TEST(HsvFloat, AHueOf360IsBlackInYuyv) {
    for (auto* form : {ToYuyv601, ToYuyv709})
        for (float h :
             {360.0f, 400.0f, -60.0f, -100.0f, kNan, kInfinity, -kInfinity, 2.576980378e11f}) {
            const Hsv none = {h, 1, 255};
            EXPECT_EQ(form(none, none), (Bytes{16, 128, 16, 128})) << h;
            // There is no grey test: a saturation of 0 does not help.
            EXPECT_EQ(form({h, 0, 255}, {h, 0, 255}), (Bytes{16, 128, 16, 128})) << h;
        }
    // The last float before it is red.
    EXPECT_EQ(ToYuyv601({359.99997f, 1, 255}, {359.99997f, 1, 255}), (Bytes{81, 90, 81, 240}));
}

TEST(HsvFloat, ANegativeHueAboveMinus60IsInTheFirstSectorInYuyv) {
    // e = -127.5 is green: Y 65.48 - 64.28 + 16.5; U 128.5 + 37.10 - 37.80; V 112.0 + 46.89 +
    // 128.5, which is above 240.
    EXPECT_EQ(ToYuyv601({-30, 1, 255}, {-30, 1, 255}), (Bytes{17, 127, 17, 240}));
}

TEST(HsvFloat, ChromaOfAPairIsTheMeanOfTheLimitedBytes) {
    const Hsv red = {0, 1, 255}, black = {360, 1, 255}, dark = {-30, 1, 255};
    // U 90 and 128; V 240 and 128.
    EXPECT_EQ(ToYuyv601(red, black), (Bytes{81, 109, 16, 184}));
    EXPECT_EQ(ToYuyv601(black, red), (Bytes{16, 109, 81, 184}));
    // U 127 and 128: a tie goes up. V 287 counts as 240.
    EXPECT_EQ(ToYuyv601(dark, black), (Bytes{17, 128, 16, 184}));
}

TEST(HsvFloat, WhatIsNoNumberIsZeroInYuyv) {
    for (auto* form : {ToYuyv601, ToYuyv709}) {
        EXPECT_EQ(form({0, 0.5f, kNan}, {0, 0.5f, kNan}), (Bytes{0, 0, 0, 0}));
        EXPECT_EQ(form({90, kNan, 100}, {90, kNan, 100}), (Bytes{0, 0, 0, 0}));
        // The other pixel's chroma halves: (0 + 128 + 1) / 2.
        EXPECT_EQ(form({0, 0.5f, kNan}, {360, 1, 1}), (Bytes{0, 64, 16, 64}));
    }
}

TEST(HsvFloat, APlaneSetIsThreeDensePlanesBehindOnePointer) {
    for (unsigned processors : {1u, 2u, 5u}) {
        Settings settings;
        settings.UseProcessors(processors);
        // Two rows of three pixels: the third of a row is left alone in every plane.
        Bytes yuyv = {116, 128, 66, 128, 9, 9, 17, 128, 116, 128};
        Floats plain(19, -7), multiThread(19, -7);
        IPL_YUYV2HSVP_709(3, 2, 6, yuyv.data(), plain.data());
        IPL_YUYV2HSVP_709_MultiThread(3, 2, 6, yuyv.data(), multiThread.data());
        const float a = 100 * 1.1644f, b = 50 * 1.1644f, c = 1.1644f;
        const Floats expected = {0, 0, -7, 0, 0, -7, 0, 0, -7, 0, 0, -7, a, b, -7, c, a, -7, -7};
        EXPECT_EQ(plain, expected);
        EXPECT_EQ(multiThread, expected);
        Bytes back(12, 9);
        IPL_HSVP2YUYV_709_MultiThread(3, 2, multiThread.data(), 6, back.data());
        EXPECT_EQ(back, (Bytes{116, 128, 66, 128, 9, 9, 17, 128, 116, 128, 9, 9}));
    }
}

TEST(HsvFloat, AnOddLastPixelIsLeftAlone) {
    for (int width = 1; width <= 35; width += 2) {
        Bytes yuyv(4 * width, 60);
        for (YuyvToHsv* form : {IPL_YUYV2HSV_601, IPL_YUYV2HSV_709, IPL_YUYV2HSV_601_MultiThread,
                                IPL_YUYV2HSV_709_MultiThread}) {
            Floats hsv(2 * 3 * width, -7);
            form(width, 2, 2 * width, yuyv.data(), 3 * width, hsv.data());
            for (int x = 0; x < 2 * width; ++x)
                for (int c = 0; c < 3; ++c)
                    ASSERT_EQ(hsv[3 * x + c] == -7, x % width == width - 1) << width;
        }
        Floats hsv(2 * 3 * width, 0.75f);
        for (HsvToYuyv* form : {IPL_HSV2YUYV_601, IPL_HSV2YUYV_709, IPL_HSV2YUYV_601_MultiThread,
                                IPL_HSV2YUYV_709_MultiThread}) {
            Bytes dst(2 * 2 * width, 99);
            form(width, 2, 3 * width, hsv.data(), 2 * width, dst.data());
            for (int i = 0; i < 4 * width; ++i)
                ASSERT_EQ(dst[i] == 99, i % (2 * width) >= 2 * (width - 1)) << width;
        }
    }
}

TEST(HsvFloat, PairFormsEqualTheReference) {
    for (const HsvForm* form : kPairForms) tqtest::ExpectEqualsReference(*form);
}

TEST(HsvFloat, TasksWithThreePlanesEqualTheReference) {
    for (const HsvForm* form : kTasksOfPlanes) tqtest::ExpectEqualsReference(*form);
}

constexpr int kLongRow = 1 << 16;

// All triples of Y, U, V: V is the row, Y0 and U the place in it; Y1 goes through all values in
// another order.
void FillEveryTriple(int v, int pairs, uint8_t* yuyv) {
    for (int i = 0; i < pairs; ++i, yuyv += 4) {
        yuyv[0] = static_cast<uint8_t>(i);
        yuyv[1] = static_cast<uint8_t>(i >> 8);
        yuyv[2] = static_cast<uint8_t>(i * 167 + 91);
        yuyv[3] = static_cast<uint8_t>(v);
    }
}

void ExpectEveryTriple(const tqref::HsvYuvSet& set, YuyvToHsv* interleaved, YuyvToPlanes* planes) {
    Settings settings;
    constexpr int kWidth = 2 * kLongRow;
    Bytes yuyv(2 * kWidth);
    Floats expected(3 * kWidth), expectedPlanes(3 * kWidth), hsv(3 * kWidth);
    for (int v = 0; v < 256; ++v) {
        FillEveryTriple(v, kLongRow, yuyv.data());
        tqref::Yuyv2Hsv(set, kWidth, 1, 0, yuyv.data(), 0, expected.data());
        for (int x = 0; x < kWidth; ++x)
            for (int c = 0; c < 3; ++c) expectedPlanes[c * kWidth + x] = expected[3 * x + c];
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
            settings.Use(level);
            hsv.assign(3 * kWidth, -7);
            interleaved(kWidth, 1, 0, yuyv.data(), 0, hsv.data());
            ASSERT_TRUE(Same(hsv, expected)) << "V " << v << ", level " << tq::IsaLevelName(level);
            hsv.assign(3 * kWidth, -7);
            planes(kWidth, 1, 0, yuyv.data(), hsv.data());
            ASSERT_TRUE(Same(hsv, expectedPlanes))
                << "planes, V " << v << ", level " << tq::IsaLevelName(level);
        }
    }
}

TEST(HsvFloat, EveryTripleOf601EqualsTheReference) {
    ExpectEveryTriple(tqref::kHsv601, IPL_YUYV2HSV_601, IPL_YUYV2HSVP_601);
}

TEST(HsvFloat, EveryTripleOf709EqualsTheReference) {
    ExpectEveryTriple(tqref::kHsv709, IPL_YUYV2HSV_709, IPL_YUYV2HSVP_709);
}

}  // namespace
