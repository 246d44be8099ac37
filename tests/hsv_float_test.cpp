// HSV in floats, pixels and BGRA images: values known by hand, forms without a pair against their
// references, every colour.

#include <gtest/gtest.h>
#include <tqipl/hsv.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <ios>
#include <limits>
#include <vector>

#include "reference/hsv_float_reference.h"
#include "support/allocation_counter.h"
#include "support/hsv_float_forms.h"
#include "support/hsv_forms.h"
#include "support/settings.h"

namespace {

using tqtest::Hsv;
using tqtest::HsvForm;
using tqtest::HsvImage;
using tqtest::kBgra2Hsv;
using tqtest::kHsv2Bgra;
using tqtest::kHsv2BgraWithAlpha;
using tqtest::kMultiThread;
using tqtest::kPixelForms;
using tqtest::kPlain;
using tqtest::Neighbour;
using tqtest::RunHsvToBgra;
using tqtest::Same;
using tqtest::Settings;

using Bytes = std::vector<uint8_t>;
using Floats = std::vector<float>;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

Hsv OfFloats(float r, float g, float b) {
    Hsv hsv = {-7, -7, -7};
    IPL_RGB2HSV_32f_32f(r, g, b, hsv.h, hsv.s, hsv.v);
    return hsv;
}

// The three forms for bytes agree.
Hsv OfBytes(int r, int g, int b) {
    Hsv hsv = {-7, -7, -7}, plane = {-7, -7, -7};
    const auto red = static_cast<uint8_t>(r), green = static_cast<uint8_t>(g);
    const auto blue = static_cast<uint8_t>(b);
    IPL_RGB2HSV_8u_32f(red, green, blue, hsv.h, hsv.s, hsv.v);
    uint8_t bgra[4] = {blue, green, red, 77};
    IPL_BGRA2HSV(1, 1, 4, bgra, 1, &plane.h, 1, &plane.s, 1, &plane.v);
    EXPECT_EQ(plane, hsv) << r << " " << g << " " << b;
    EXPECT_EQ(OfFloats(static_cast<float>(r), static_cast<float>(g), static_cast<float>(b)), hsv)
        << r << " " << g << " " << b;
    return hsv;
}

// Red, green and blue; 99 where nothing is stored. The pixel and both image forms agree.
Bytes ToRgb(float h, float s, float v) {
    uint8_t r = 99, g = 99, b = 99;
    IPL_HSV2RGB_32f_8u(h, s, v, r, g, b);
    uint8_t bgra[4] = {99, 99, 99, 99};
    IPL_HSV2BGRA(1, 1, 1, &h, 1, &s, 1, &v, 4, bgra);
    EXPECT_EQ(Bytes(bgra, bgra + 4), (Bytes{b, g, r, 99})) << h << " " << s << " " << v;
    uint8_t withAlpha[4] = {99, 99, 99, 99};
    float alpha = 0.5f;
    IPL_HSV2BGRA(1, 1, 1, &h, 1, &s, 1, &v, 1, &alpha, 4, withAlpha);
    EXPECT_EQ(Bytes(withAlpha, withAlpha + 4), (Bytes{b, g, r, 128})) << h << " " << s << " " << v;
    return {r, g, b};
}

Bytes ToRgbByFloor(float h, float s, float v) {
    uint8_t bgra[4] = {99, 99, 99, 99};
    IPL_HSV_To_BGRA(1, 1, 1, &h, 1, &s, 1, &v, 4, bgra);
    EXPECT_EQ(bgra[3], 99);
    return {bgra[2], bgra[1], bgra[0]};
}

TEST(HsvFloat, PureColoursStandAtMultiplesOf60Degrees) {
    EXPECT_EQ(OfBytes(255, 0, 0), (Hsv{0, 1, 1}));
    EXPECT_EQ(OfBytes(255, 255, 0), (Hsv{60, 1, 1}));
    EXPECT_EQ(OfBytes(0, 255, 0), (Hsv{120, 1, 1}));
    EXPECT_EQ(OfBytes(0, 255, 255), (Hsv{180, 1, 1}));
    EXPECT_EQ(OfBytes(0, 0, 255), (Hsv{240, 1, 1}));
    EXPECT_EQ(OfBytes(255, 0, 255), (Hsv{300, 1, 1}));
}

TEST(HsvFloat, HueSaturationAndValueByHand) {
    // Spread 64 of 128: exact throughout. Red leads: 16 / 64 of a sector up, or down from 360.
    const float v = static_cast<float>(128 / 255.0);
    EXPECT_EQ(OfBytes(128, 80, 64), (Hsv{15, 0.5f, v}));
    EXPECT_EQ(OfBytes(128, 64, 80), (Hsv{345, 0.5f, v}));
    EXPECT_EQ(OfBytes(64, 128, 80), (Hsv{135, 0.5f, v}));
    EXPECT_EQ(OfBytes(80, 128, 64), (Hsv{105, 0.5f, v}));
    EXPECT_EQ(OfBytes(80, 64, 128), (Hsv{255, 0.5f, v}));
    EXPECT_EQ(OfBytes(64, 80, 128), (Hsv{225, 0.5f, v}));
}

TEST(HsvFloat, TiesGoToRedThenGreen) {
    // As green these would be 120 - 60 all the same; the sector's arithmetic shows in the last bit.
    for (int k = 1; k < 256; ++k)
        for (int low = 0; low < k; ++low) {
            const float inverse = 1.0f / static_cast<float>(k - low);
            const float whole = static_cast<float>(k - low) * inverse;
            ASSERT_EQ(OfBytes(k, k, low).h, whole * 60.0f) << k << " " << low;
            const float green = whole + 2.0f;
            ASSERT_EQ(OfBytes(low, k, k).h, green * 60.0f) << k << " " << low;
        }
}

TEST(HsvFloat, GreyHasNoHueAndNoSaturation) {
    for (int k = 0; k < 256; ++k)
        EXPECT_EQ(OfBytes(k, k, k), (Hsv{0, 0, static_cast<float>(k / 255.0)}));
    EXPECT_EQ(OfBytes(0, 0, 0), (Hsv{0, 0, 0}));
    EXPECT_EQ(OfBytes(255, 255, 255), (Hsv{0, 0, 1}));
}

TEST(HsvFloat, ASpreadBelowAMillionthIsGrey) {
    // The float nearest to 1e-6 is below it, the next one is not.
    ASSERT_LT(double{1e-6f}, 1e-6);
    const float above = Neighbour(1e-6f, 1);
    EXPECT_EQ(OfFloats(1e-6f, 0, 0), (Hsv{0, 0, static_cast<float>(double{1e-6f} / 255.0)}));
    EXPECT_EQ(OfFloats(0, 1e-6f, 0), (Hsv{0, 0, static_cast<float>(double{1e-6f} / 255.0)}));
    EXPECT_EQ(OfFloats(0, above, 0), (Hsv{120, 1, static_cast<float>(double{above} / 255.0)}));
}

TEST(HsvFloat, ATinyFallBelowRedIs360Degrees) {
    // -1e-5 / 255 * 60 is lost beside 360; nothing wraps it to 0.
    EXPECT_EQ(OfFloats(255, 0, 1e-5f), (Hsv{360, 1, 1}));
    // 0 is not above minus a denormal that became -0.
    EXPECT_EQ(OfFloats(255, 0, std::numeric_limits<float>::denorm_min()).h, 0.0f);
}

TEST(HsvFloat, FloatChannelsAreOnTheScaleOf255AndNotLimited) {
    EXPECT_EQ(OfFloats(510, 0, 0), (Hsv{0, 1, 2}));
    EXPECT_EQ(OfFloats(-255, -510, -510), (Hsv{0, -1, -1}));
    EXPECT_EQ(OfFloats(127.5f, 63.75f, 63.75f), (Hsv{0, 0.5f, 0.5f}));
}

TEST(HsvFloat, SourceAlphaHasNoInfluence) {
    for (int alpha = 0; alpha < 256; ++alpha) {
        uint8_t bgra[4] = {64, 80, 128, static_cast<uint8_t>(alpha)};
        Hsv hsv;
        IPL_BGRA2HSV(1, 1, 4, bgra, 1, &hsv.h, 1, &hsv.s, 1, &hsv.v);
        EXPECT_EQ(hsv, (Hsv{15, 0.5f, static_cast<float>(128 / 255.0)}));
    }
}

TEST(HsvFloat, SectorsOfTheInverse) {
    EXPECT_EQ(ToRgb(0, 1, 1), (Bytes{255, 0, 0}));
    EXPECT_EQ(ToRgb(60, 1, 1), (Bytes{255, 255, 0}));
    EXPECT_EQ(ToRgb(120, 1, 1), (Bytes{0, 255, 0}));
    EXPECT_EQ(ToRgb(180, 1, 1), (Bytes{0, 255, 255}));
    EXPECT_EQ(ToRgb(240, 1, 1), (Bytes{0, 0, 255}));
    EXPECT_EQ(ToRgb(300, 1, 1), (Bytes{255, 0, 255}));
    // A quarter into each: P 0.5, Q 0.875, T 0.625 of 200.
    const float v = 200.0f / 255;
    EXPECT_EQ(ToRgb(15, 0.5f, v), (Bytes{200, 125, 100}));
    EXPECT_EQ(ToRgb(75, 0.5f, v), (Bytes{175, 200, 100}));
    EXPECT_EQ(ToRgb(135, 0.5f, v), (Bytes{100, 200, 125}));
    EXPECT_EQ(ToRgb(195, 0.5f, v), (Bytes{100, 175, 200}));
    EXPECT_EQ(ToRgb(255, 0.5f, v), (Bytes{125, 100, 200}));
    EXPECT_EQ(ToRgb(315, 0.5f, v), (Bytes{200, 100, 175}));
}

TEST(HsvFloat, AHueOf360StoresNoColour) {
    EXPECT_EQ(ToRgb(360, 1, 1), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(360, 0.5f, 0.25f), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(400, 1, 1), (Bytes{99, 99, 99}));
    // The last float before it still is the last sector: Q is 0.01 and a little.
    EXPECT_EQ(ToRgb(359.99997f, 1, 1), (Bytes{255, 0, 0}));
    // Grey does not look at the hue.
    EXPECT_EQ(ToRgb(360, 0, 1), (Bytes{255, 255, 255}));
    EXPECT_EQ(ToRgb(kNan, 0, 1), (Bytes{255, 255, 255}));
}

TEST(HsvFloat, ANegativeHueAboveMinus60IsInTheFirstSector) {
    // f = -0.5: T = -127.5 and a hundredth, truncated to -127, of which the low byte is 129.
    EXPECT_EQ(ToRgb(-30, 1, 1), (Bytes{255, 129, 0}));
    EXPECT_EQ(ToRgb(-0.0f, 1, 1), (Bytes{255, 0, 0}));
    EXPECT_EQ(ToRgb(-60, 1, 1), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(-61, 1, 1), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(-400, 1, 1), (Bytes{99, 99, 99}));
}

TEST(HsvFloat, GreyOfTheInverseHasAHundredthAdded) {
    EXPECT_EQ(ToRgb(0, 0, 1), (Bytes{255, 255, 255}));
    EXPECT_EQ(ToRgb(0, 0, 0.2f), (Bytes{51, 51, 51}));
    EXPECT_EQ(ToRgb(0, 0, 0.5f), (Bytes{127, 127, 127}));
    EXPECT_EQ(ToRgb(0, 0, 99.995f / 255), (Bytes{100, 100, 100}));
    EXPECT_EQ(ToRgb(0, 0, 99.985f / 255), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(0, 0, 2), (Bytes{254, 254, 254}));            // 510.01
    EXPECT_EQ(ToRgb(0, 0, -1 / 255.0f), (Bytes{0, 0, 0}));        // -0.99
    EXPECT_EQ(ToRgb(0, 0, -2 / 255.0f), (Bytes{255, 255, 255}));  // -1.99
    EXPECT_EQ(ToRgb(0, -0.0f, 0.2f), (Bytes{51, 51, 51}));
}

TEST(HsvFloat, GreyIsASaturationWithinATenBillionth) {
    // The nearest float is above 1e-10 in double precision; the one below it is not. At V 2 the
    // largest channel of a colour is 510, the others are limited to 255.
    ASSERT_GT(double{1e-10f}, 1e-10);
    const float below = Neighbour(1e-10f, -1);
    ASSERT_LT(double{below}, 1e-10);
    EXPECT_EQ(ToRgb(0, 1e-10f, 2), (Bytes{254, 255, 255}));
    EXPECT_EQ(ToRgb(0, -1e-10f, 2), (Bytes{254, 255, 255}));
    EXPECT_EQ(ToRgb(0, below, 2), (Bytes{254, 254, 254}));
    EXPECT_EQ(ToRgb(0, -below, 2), (Bytes{254, 254, 254}));
    EXPECT_EQ(ToRgb(360, 1e-10f, 1), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(360, below, 1), (Bytes{255, 255, 255}));
}

TEST(HsvFloat, TheLargestChannelHasNeitherTheHundredthNorTheLimit) {
    // W just below 255; P and T are W and a hundredth, limited.
    EXPECT_EQ(ToRgb(0, 1e-9f, Neighbour(1, -1)), (Bytes{254, 255, 255}));
    EXPECT_EQ(ToRgb(0, 1e-9f, 99.995f / 255), (Bytes{99, 100, 100}));
    // W = 300.39: its low byte is 44. P = 270.4, T = 270.4 are limited.
    EXPECT_EQ(ToRgb(0, 0.1f, 1.178f), (Bytes{44, 255, 255}));
    EXPECT_EQ(ToRgb(0, 0.5f, 1.178f), (Bytes{44, 150, 150}));
    // No lower limit: P = T = -50, W = -100.
    EXPECT_EQ(ToRgb(0, 0.5f, -100.5f / 255), (Bytes{156, 206, 206}));
}

TEST(HsvFloat, WhatIsNoNumberGivesZeroOrNothing) {
    EXPECT_EQ(ToRgb(kNan, 1, 1), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(kInfinity, 1, 1), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(-kInfinity, 1, 1), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(2.576980378e11f, 1, 1), (Bytes{99, 99, 99}));  // 2^32 sectors
    EXPECT_EQ(ToRgb(0, kNan, 1), (Bytes{255, 0, 0}));
    EXPECT_EQ(ToRgb(0, 0.5f, kNan), (Bytes{0, 0, 0}));
    EXPECT_EQ(ToRgb(0, 0, kNan), (Bytes{0, 0, 0}));
    EXPECT_EQ(ToRgb(0, 0.5f, kInfinity), (Bytes{0, 255, 255}));
    EXPECT_EQ(ToRgb(0, 0.5f, -kInfinity), (Bytes{0, 0, 0}));
    EXPECT_EQ(ToRgb(0, 0, 1e10f), (Bytes{0, 0, 0}));
}

TEST(HsvFloat, AlphaIsRoundedAndLimited) {
    const auto byteOf = [](float alpha) {
        float h = 0, s = 0, v = 0;
        uint8_t bgra[4] = {9, 9, 9, 9};
        IPL_HSV2BGRA(1, 1, 1, &h, 1, &s, 1, &v, 1, &alpha, 4, bgra);
        return int{bgra[3]};
    };
    EXPECT_EQ(byteOf(0), 0);
    EXPECT_EQ(byteOf(1), 255);
    EXPECT_EQ(byteOf(0.5f), 128);  // 127.5 and a half
    EXPECT_EQ(byteOf(0.4f), 102);
    EXPECT_EQ(byteOf(0.49f), 125);  // 124.95 and a half
    EXPECT_EQ(byteOf(0.1f), 26);    // 25.5 and a half
    EXPECT_EQ(byteOf(1.004f), 255);
    EXPECT_EQ(byteOf(2), 255);
    EXPECT_EQ(byteOf(-0.001f), 0);
    EXPECT_EQ(byteOf(-0.004f), 0);
    EXPECT_EQ(byteOf(-1), 0);
    EXPECT_EQ(byteOf(8e6f), 255);
    EXPECT_EQ(byteOf(-8e6f), 0);
    // Truncation comes first: what an int cannot hold is its most negative value.
    EXPECT_EQ(byteOf(1e10f), 0);
    EXPECT_EQ(byteOf(kInfinity), 0);
    EXPECT_EQ(byteOf(-kInfinity), 0);
    EXPECT_EQ(byteOf(kNan), 0);
}

TEST(HsvFloat, AlphaIsWrittenWhereNoColourIs) {
    Floats h = {360, 0, -60, 720}, s(4, 1), v(4, 1), alpha = {1, 0.5f, 0, 0.2f};
    const Bytes expected = {9, 9, 9, 255, 0, 0, 255, 128, 9, 9, 9, 0, 9, 9, 9, 51};
    for (unsigned processors : {1u, 2u}) {
        Settings settings;
        settings.UseProcessors(processors);
        Bytes plain(16, 9), multiThread(16, 9);
        IPL_HSV2BGRA(4, 1, 4, h.data(), 4, s.data(), 4, v.data(), 4, alpha.data(), 16,
                     plain.data());
        IPL_HSV2BGRA_MultiThread(4, 1, 4, h.data(), 4, s.data(), 4, v.data(), 4, alpha.data(), 16,
                                 multiThread.data());
        EXPECT_EQ(plain, expected);
        EXPECT_EQ(multiThread, expected);
    }
}

TEST(HsvFloat, WithoutAnAlphaPlaneByte3IsNotWritten) {
    for (uint8_t held : {0, 1, 99, 255})
        for (int width : {1, 3, 8, 17, 40}) {
            Floats h(width, 30), s(width, 1), v(width, 1);
            for (int x = 0; x < width; x += 3) s[x] = 0;
            for (auto* form : {kPlain, kMultiThread, &IPL_HSV_To_BGRA}) {
                Bytes dst(4 * width, held);
                form(width, 1, width, h.data(), width, s.data(), width, v.data(), 4 * width,
                     dst.data());
                for (int x = 0; x < width; ++x) {
                    ASSERT_EQ(dst[4 * x + 3], held);
                    ASSERT_EQ(dst[4 * x + 2], 255);
                }
            }
        }
}

TEST(HsvFloat, SectorsOfTheInverseByFloor) {
    // A quarter into each: L = 100, V - e = 175, e + L = 125.
    const float v = 200.4f / 255;
    EXPECT_EQ(ToRgbByFloor(15, 0.5f, v), (Bytes{200, 125, 100}));
    EXPECT_EQ(ToRgbByFloor(75, 0.5f, v), (Bytes{175, 200, 100}));
    EXPECT_EQ(ToRgbByFloor(135, 0.5f, v), (Bytes{100, 200, 125}));
    EXPECT_EQ(ToRgbByFloor(195, 0.5f, v), (Bytes{100, 175, 200}));
    EXPECT_EQ(ToRgbByFloor(255, 0.5f, v), (Bytes{125, 100, 200}));
    EXPECT_EQ(ToRgbByFloor(315, 0.5f, v), (Bytes{200, 100, 175}));
}

TEST(HsvFloat, EverySectorByFloorOutside0To4IsTheLast) {
    EXPECT_EQ(ToRgbByFloor(360, 1, 1), (Bytes{255, 0, 255}));
    EXPECT_EQ(ToRgbByFloor(-30, 1, 1), (Bytes{255, 0, 127}));  // floor is -1, so e is a half
    EXPECT_EQ(ToRgbByFloor(-60, 1, 1), (Bytes{255, 0, 255}));
    EXPECT_EQ(ToRgbByFloor(-90, 1, 1), (Bytes{255, 0, 127}));
    EXPECT_EQ(ToRgbByFloor(750, 1, 1), (Bytes{255, 0, 127}));
    EXPECT_EQ(ToRgbByFloor(-0.0f, 1, 1), (Bytes{255, 0, 0}));
    EXPECT_EQ(ToRgbByFloor(kNan, 1, 1), (Bytes{255, 0, 0}));
    EXPECT_EQ(ToRgbByFloor(-kInfinity, 1, 1), (Bytes{255, 0, 255}));
    EXPECT_EQ(ToRgbByFloor(kInfinity, 1, 1), (Bytes{255, 0, 0}));
}

TEST(HsvFloat, TheInverseByFloorIsTruncatedAndLimitedOnBothSides) {
    EXPECT_EQ(ToRgbByFloor(0, 0, 0.5f), (Bytes{127, 127, 127}));
    EXPECT_EQ(ToRgbByFloor(0, 0, 0.2f), (Bytes{51, 51, 51}));
    EXPECT_EQ(ToRgbByFloor(0, 0, 99.995f / 255), (Bytes{99, 99, 99}));  // no hundredth
    EXPECT_EQ(ToRgbByFloor(0, 0, 2), (Bytes{255, 255, 255}));
    EXPECT_EQ(ToRgbByFloor(0, 0, -2), (Bytes{0, 0, 0}));
    EXPECT_EQ(ToRgbByFloor(0, 0, kInfinity), (Bytes{255, 255, 255}));
    EXPECT_EQ(ToRgbByFloor(0, 0, -kInfinity), (Bytes{0, 0, 0}));
    EXPECT_EQ(ToRgbByFloor(0, 0, kNan), (Bytes{0, 0, 0}));
    EXPECT_EQ(ToRgbByFloor(kNan, -0.0f, 0.2f), (Bytes{51, 51, 51}));
    EXPECT_EQ(ToRgbByFloor(0, 2, 1), (Bytes{255, 0, 0}));       // L = -1
    EXPECT_EQ(ToRgbByFloor(0, -1, 1), (Bytes{255, 255, 255}));  // L = 2
    EXPECT_EQ(ToRgbByFloor(0, kNan, 1), (Bytes{255, 0, 0}));
}

TEST(HsvFloat, OnlyASaturationOfExactlyZeroIsGreyByFloor) {
    // S * V is infinity and L is no number; grey would be white.
    EXPECT_EQ(ToRgbByFloor(90, std::numeric_limits<float>::denorm_min(), kInfinity),
              (Bytes{0, 255, 0}));
    EXPECT_EQ(ToRgbByFloor(90, 0, kInfinity), (Bytes{255, 255, 255}));
}

// Each of the images in turn, and all, with a null pointer: nothing is written, no task is made.
void ExpectNullsDoNothing(const HsvForm& form, HsvForm::Function function) {
    for (int height : {1, 9, 24}) {
        const size_t count = form.images.size();
        std::vector<std::vector<uint32_t>> memory(count, std::vector<uint32_t>(4 * height));
        for (auto& words : memory)
            for (uint32_t& word : words) word = std::bit_cast<uint32_t>(0.25f);
        const auto before = memory;
        for (size_t null = 0; null <= count; ++null) {
            std::vector<HsvImage> images(count);
            for (size_t i = 0; i < count; ++i) {
                const bool isNull = null == count || i == null;
                images[i] = {form.images[i].ElementSize() == 1 ? 16 : 4,
                             isNull ? nullptr : reinterpret_cast<uint8_t*>(memory[i].data())};
            }
            EXPECT_EQ(tqtest::AllocationsOf([&] { function(4, height, images.data()); }), 0)
                << form.name << ", null " << null;
            EXPECT_EQ(memory, before) << form.name << ", null " << null;
        }
    }
}

TEST(HsvFloat, Bgra2HsvAndTheBgraMultiThreadFormsDoNothingWithANullPointer) {
    for (unsigned processors : {1u, 3u, 8u}) {
        Settings settings;
        settings.UseProcessors(processors);
        ExpectNullsDoNothing(kBgra2Hsv, kBgra2Hsv.plain);
        ExpectNullsDoNothing(kBgra2Hsv, kBgra2Hsv.multiThread);
        ExpectNullsDoNothing(kHsv2Bgra, kHsv2Bgra.multiThread);
        ExpectNullsDoNothing(kHsv2BgraWithAlpha, kHsv2BgraWithAlpha.multiThread);
    }
}

TEST(HsvFloat, ATaskWithoutAlphaLeavesByte3Alone) {
    float h = 0, s = 1, v = 1, alpha = 0.2f;
    uint8_t with[4] = {9, 9, 9, 9}, without[4] = {9, 9, 9, 9};
    const HsvImage images[] = {{1, reinterpret_cast<uint8_t*>(&h)},
                               {1, reinterpret_cast<uint8_t*>(&s)},
                               {1, reinterpret_cast<uint8_t*>(&v)},
                               {1, reinterpret_cast<uint8_t*>(&alpha)},
                               {4, with}};
    const HsvImage noAlpha[] = {images[0], images[1], images[2], {4, without}};
    EXPECT_EQ(RunHsvToBgra<true>(1, 1, images), 1);
    EXPECT_EQ(RunHsvToBgra<false>(1, 1, noAlpha), 1);
    EXPECT_EQ(Bytes(with, with + 4), (Bytes{0, 0, 255, 51}));
    EXPECT_EQ(Bytes(without, without + 4), (Bytes{0, 0, 255, 9}));
}

TEST(HsvFloat, RowsGoFromTheFirstToTheLast) {
    // All rows fall on the same destination: the last one stays.
    Bytes bgra = {0, 0, 255, 0, 0, 255, 0, 0};
    Hsv hsv;
    IPL_BGRA2HSV(1, 2, 4, bgra.data(), 0, &hsv.h, 0, &hsv.s, 0, &hsv.v);
    EXPECT_EQ(hsv, (Hsv{120, 1, 1}));
    Floats h = {0, 120}, one = {1, 1};
    Bytes dst(4, 9);
    IPL_HSV2BGRA(1, 2, 1, h.data(), 1, one.data(), 1, one.data(), 0, dst.data());
    EXPECT_EQ(dst, (Bytes{0, 255, 0, 9}));
}

TEST(HsvFloat, PixelFormsEqualTheReference) {
    for (const HsvForm* form : kPixelForms) tqtest::ExpectEqualsReference(*form);
}

constexpr int kLongRow = 1 << 16;

TEST(HsvFloat, EveryColourEqualsTheReference) {
    Settings settings;
    Bytes bgra(4 * kLongRow);
    Floats h(kLongRow), s(kLongRow), v(kLongRow), expectedH(h), expectedS(s), expectedV(v);
    for (int red = 0; red < 256; ++red) {
        for (int i = 0; i < kLongRow; ++i) {
            bgra[4 * i] = static_cast<uint8_t>(i);
            bgra[4 * i + 1] = static_cast<uint8_t>(i >> 8);
            bgra[4 * i + 2] = static_cast<uint8_t>(red);
            bgra[4 * i + 3] = static_cast<uint8_t>(i * 7 + red);
        }
        tqref::Bgra2Hsv(kLongRow, 1, 0, bgra.data(), 0, expectedH.data(), 0, expectedS.data(), 0,
                        expectedV.data());
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
            settings.Use(level);
            h.assign(kLongRow, -7);
            s.assign(kLongRow, -7);
            v.assign(kLongRow, -7);
            IPL_BGRA2HSV(kLongRow, 1, 0, bgra.data(), 0, h.data(), 0, s.data(), 0, v.data());
            ASSERT_TRUE(Same(h, expectedH)) << "hue, red " << red;
            ASSERT_TRUE(Same(s, expectedS)) << "saturation, red " << red;
            ASSERT_TRUE(Same(v, expectedV)) << "value, red " << red;
        }
        for (int i = 0; i < kLongRow; ++i) {
            const uint8_t* in = bgra.data() + 4 * i;
            const Hsv expected = {expectedH[i], expectedS[i], expectedV[i]};
            Hsv hsv;
            IPL_RGB2HSV_8u_32f(in[2], in[1], in[0], hsv.h, hsv.s, hsv.v);
            ASSERT_EQ(hsv, expected) << red << " " << i;
            ASSERT_EQ(OfFloats(in[2], in[1], in[0]), expected) << red << " " << i;
        }
    }
}

// Same bits, or both no number: of that the bits are not fixed.
bool SameNumber(float a, float b) {
    return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b) ||
           (std::isnan(a) && std::isnan(b));
}

TEST(HsvFloat, FloatColoursEqualTheReference) {
    uint32_t state = 1;
    const auto next = [&state] { return state = state * 1664525u + 1013904223u, state >> 8; };
    const auto channel = [&]() -> float {
        const float unit = static_cast<float>(next()) / 16777216.0f;
        switch (next() % 8) {
            case 0:
                return static_cast<float>(next() % 256);
            case 1:
                return static_cast<float>(next() % 3) * 100;
            case 2:
                return unit * 600 - 200;
            case 3:
                return unit * 4e-6f;
            case 4:
                return Neighbour(200, static_cast<int>(next() % 9) - 4);
            case 5: {
                const float any = std::bit_cast<float>(next() << 16 ^ next());
                return std::isnan(any) ? unit : any;
            }
            default:
                return unit * 255;
        }
    };
    for (int i = 0; i < 4000000; ++i) {
        // + 0 makes of -0 the other zero: which of two zeros is the larger is not fixed.
        const float r = channel() + 0.0f, g = channel() + 0.0f, b = channel() + 0.0f;
        const tqref::HsvPixel expected = tqref::RgbToHsv(r, g, b);
        const Hsv hsv = OfFloats(r, g, b);
        ASSERT_TRUE(SameNumber(hsv.h, expected.h) && SameNumber(hsv.s, expected.s) &&
                    SameNumber(hsv.v, expected.v))
            << std::hexfloat << r << " " << g << " " << b << ": " << testing::PrintToString(hsv);
    }
}

}  // namespace
