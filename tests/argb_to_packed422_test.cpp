// ARGB to packed 4:2:2: values known by hand, every form against its reference, bands, tasks.

#include <gtest/gtest.h>
#include <tqipl/color.h>

#include <cstdint>
#include <vector>

#include "color/argb_to_packed422_tasks.h"
#include "reference/argb_to_packed422_reference.h"
#include "support/allocation_counter.h"
#include "support/pixel_forms.h"
#include "support/settings.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Form = tqtest::PixelForm<uint8_t>;
using tqtest::RunTask;
using tqtest::Settings;

constexpr Form kYuyv601 = {"IPL_ARGB2YUYV_601",
                           IPL_ARGB2YUYV_601,
                           IPL_ARGB2YUYV_601_MultiThread,
                           RunTask<CZARGB2YUYVTask_601>,
                           tqref::Argb2Yuyv601,
                           2,
                           8,
                           4};
constexpr Form kYuyv709 = {"IPL_ARGB2YUYV_709",
                           IPL_ARGB2YUYV_709,
                           IPL_ARGB2YUYV_709_MultiThread,
                           RunTask<CZARGB2YUYVTask_709>,
                           tqref::Argb2Yuyv709,
                           2,
                           8,
                           4};
constexpr Form kUyvy601 = {"IPL_ARGB2UYVY_601",
                           IPL_ARGB2UYVY_601,
                           IPL_ARGB2UYVY_601_MultiThread,
                           RunTask<CZARGB2UYVYTask_601>,
                           tqref::Argb2Uyvy601,
                           2,
                           8,
                           4};
constexpr Form kUyvy709 = {"IPL_ARGB2UYVY_709",
                           IPL_ARGB2UYVY_709,
                           IPL_ARGB2UYVY_709_MultiThread,
                           RunTask<CZARGB2UYVYTask_709>,
                           tqref::Argb2Uyvy709,
                           2,
                           8,
                           4};
constexpr const Form* kForms[] = {&kYuyv601, &kYuyv709, &kUyvy601, &kUyvy709};

struct Rgb {
    uint8_t red, green, blue;
};
constexpr Rgb kBlack = {0, 0, 0}, kWhite = {255, 255, 255};
constexpr Rgb kRed = {255, 0, 0}, kGreen = {0, 255, 0}, kBlue = {0, 0, 255};

// The four bytes of one pair, over bytes of 99.
Bytes Pair(const Form& form, Rgb left, Rgb right, uint8_t alpha = 0) {
    Bytes src = {left.blue,  left.green,  left.red,  alpha,
                 right.blue, right.green, right.red, static_cast<uint8_t>(~alpha)};
    Bytes dst(4, 99);
    form.plain(2, 1, 0, src.data(), 0, dst.data());
    return dst;
}

TEST(ArgbToPacked422, WhiteIs235AndBlackIs16) {
    EXPECT_EQ(Pair(kYuyv601, kWhite, kWhite), (Bytes{235, 128, 235, 128}));
    EXPECT_EQ(Pair(kYuyv601, kBlack, kBlack), (Bytes{16, 128, 16, 128}));
    EXPECT_EQ(Pair(kYuyv709, kWhite, kWhite), (Bytes{235, 128, 235, 128}));
    EXPECT_EQ(Pair(kYuyv709, kBlack, kBlack), (Bytes{16, 128, 16, 128}));
    EXPECT_EQ(Pair(kYuyv601, kWhite, kBlack), (Bytes{235, 128, 16, 128}));
}

TEST(ArgbToPacked422, PrimariesOf601ByHand) {
    // Y 65.48, 128.55, 24.97 and 16.5; U -37.80, -74.20, 112.00 and V 112.00, -93.79, -18.21 and
    // 128.5.
    EXPECT_EQ(Pair(kYuyv601, kRed, kRed), (Bytes{81, 90, 81, 240}));
    EXPECT_EQ(Pair(kYuyv601, kGreen, kGreen), (Bytes{145, 54, 145, 34}));
    EXPECT_EQ(Pair(kYuyv601, kBlue, kBlue), (Bytes{41, 240, 41, 110}));
}

TEST(ArgbToPacked422, PrimariesOf709ByHand) {
    // Y 46.54, 156.67, 15.78 and 16.5; U -25.65, -86.34, 112.00 and V 112.00, -101.75, -10.25 and
    // 128.5.
    EXPECT_EQ(Pair(kYuyv709, kRed, kRed), (Bytes{63, 102, 63, 240}));
    EXPECT_EQ(Pair(kYuyv709, kGreen, kGreen), (Bytes{173, 42, 173, 26}));
    EXPECT_EQ(Pair(kYuyv709, kBlue, kBlue), (Bytes{32, 240, 32, 118}));
}

TEST(ArgbToPacked422, LayoutsOfAPairByHand) {
    // Red and blue: U (90 + 240 + 1) / 2 and V (240 + 110 + 1) / 2 in 601; (102 + 240 + 1) / 2 and
    // (240 + 118 + 1) / 2 in 709.
    EXPECT_EQ(Pair(kYuyv601, kRed, kBlue), (Bytes{81, 165, 41, 175}));
    EXPECT_EQ(Pair(kYuyv709, kRed, kBlue), (Bytes{63, 171, 32, 179}));
    EXPECT_EQ(Pair(kUyvy709, kRed, kBlue), (Bytes{171, 63, 179, 32}));
    // The store order of its own: U, V, the old byte, Y1.
    EXPECT_EQ(Pair(kUyvy601, kRed, kBlue), (Bytes{165, 175, 99, 41}));
    EXPECT_EQ(Pair(kUyvy601, kBlue, kRed), (Bytes{165, 175, 99, 81}));
}

TEST(ArgbToPacked422, ThirdByteOfUyvy601KeepsWhatItHeld) {
    for (uint8_t held : {0, 1, 128, 255})
        for (int width = 2; width <= 70; ++width) {
            Bytes src(4 * width, 200), dst(2 * width, held);
            IPL_ARGB2UYVY_601(width, 1, 0, src.data(), 0, dst.data());
            for (int pair = 0; pair < width / 2; ++pair) {
                // Grey 200: 171.76 and 16.5.
                const uint8_t* group = dst.data() + 4 * pair;
                EXPECT_EQ(Bytes(group, group + 4), (Bytes{128, 128, held, 188}))
                    << "width " << width << ", pair " << pair;
            }
        }
}

TEST(ArgbToPacked422, EveryByteOfTheOtherFormsIsWritten) {
    for (const Form* form : {&kYuyv601, &kYuyv709, &kUyvy709})
        for (uint8_t held : {0, 255}) {
            Bytes src(4 * 22, 200), dst(2 * 22, held);
            form->plain(22, 1, 0, src.data(), 0, dst.data());
            for (int i = 0; i < 44; ++i) EXPECT_NE(dst[i], held) << form->name;
        }
}

TEST(ArgbToPacked422, ATieOfTheChromaGoesUp) {
    // U of red alone: 128.5 - 190 * 0.148223 = 100.34, and 101.08 for 185.
    EXPECT_EQ(Pair(kYuyv601, {190, 0, 0}, {190, 0, 0})[1], 100);
    EXPECT_EQ(Pair(kYuyv601, {185, 0, 0}, {185, 0, 0})[1], 101);
    EXPECT_EQ(Pair(kYuyv601, {190, 0, 0}, {185, 0, 0})[1], 101);
    EXPECT_EQ(Pair(kYuyv601, {185, 0, 0}, {190, 0, 0})[1], 101);
    // V of green alone: 128.5 - 76 * 0.367788 = 100.55, and 101.28 for 74.
    EXPECT_EQ(Pair(kYuyv601, {0, 76, 0}, {0, 76, 0})[3], 100);
    EXPECT_EQ(Pair(kYuyv601, {0, 74, 0}, {0, 74, 0})[3], 101);
    EXPECT_EQ(Pair(kYuyv601, {0, 76, 0}, {0, 74, 0})[3], 101);
    EXPECT_EQ(Pair(kYuyv601, {0, 74, 0}, {0, 76, 0})[3], 101);
}

TEST(ArgbToPacked422, BytesAreAveragedAndNotFloats) {
    // 100.34 and 101.08: the mean of the floats, 100.71, would give 100.
    EXPECT_EQ(Pair(kUyvy601, {190, 0, 0}, {185, 0, 0})[0], 101);
    // 709, U of green alone: 128.5 - 84 * 0.3386 = 100.06, and 101.07 for 81; the mean is 100.57.
    EXPECT_EQ(Pair(kYuyv709, {0, 84, 0}, {0, 84, 0})[1], 100);
    EXPECT_EQ(Pair(kYuyv709, {0, 81, 0}, {0, 81, 0})[1], 101);
    EXPECT_EQ(Pair(kYuyv709, {0, 84, 0}, {0, 81, 0})[1], 101);
    EXPECT_EQ(Pair(kUyvy709, {0, 84, 0}, {0, 81, 0})[0], 101);
}

TEST(ArgbToPacked422, NoTapReachesOutsideThePair) {
    // A black pair between coloured ones.
    for (const Form* form : kForms) {
        Bytes src(6 * 4, 0), alone(2 * 4, 0), dst(12, 99), dstAlone(4, 99);
        src[0] = src[4] = 255;
        src[4 * 4 + 2] = src[5 * 4 + 2] = 255;
        form->plain(6, 1, 0, src.data(), 0, dst.data());
        form->plain(2, 1, 0, alone.data(), 0, dstAlone.data());
        EXPECT_EQ(Bytes(dst.begin() + 4, dst.begin() + 8), dstAlone) << form->name;
    }
}

TEST(ArgbToPacked422, AlphaHasNoInfluence) {
    for (const Form* form : kForms)
        for (int alpha = 0; alpha < 256; ++alpha)
            EXPECT_EQ(Pair(*form, {10, 200, 30}, {90, 5, 60}, static_cast<uint8_t>(alpha)),
                      Pair(*form, {10, 200, 30}, {90, 5, 60}))
                << form->name << ", alpha " << alpha;
}

TEST(ArgbToPacked422, AnOddLastPixelIsIgnored) {
    for (const Form* form : kForms)
        for (int width = 3; width <= 69; width += 2) {
            // The last pixel is red, all others grey: no chroma is made of it.
            Bytes src(4 * width, 200), dst(2 * width, 99);
            src[4 * width - 4] = src[4 * width - 3] = 0;
            form->plain(width, 1, 0, src.data(), 0, dst.data());
            EXPECT_EQ(dst[2 * width - 2], 99) << form->name << ", width " << width;
            EXPECT_EQ(dst[2 * width - 1], 99) << form->name << ", width " << width;
            Bytes whole(2 * (width - 1), 99);
            form->plain(width - 1, 1, 0, src.data(), 0, whole.data());
            EXPECT_EQ(Bytes(dst.begin(), dst.end() - 2), whole) << form->name;
        }
}

TEST(ArgbToPacked422, SizesBelowOneAndAWidthOf1WriteNothing) {
    for (const Form* form : kForms) tqtest::ExpectEmptySizesWriteNothing(*form);
}

TEST(ArgbToPacked422, ANullPointerDoesNothing) {
    for (const Form* form : kForms)
        for (unsigned processors : {1u, 3u, 8u}) {
            Settings settings;
            settings.UseProcessors(processors);
            for (int height : {1, 5, 9, 24}) {
                Bytes src(16 * height, 60), dst(8 * height, 99);
                const Bytes before = dst;
                // Not even a task is made.
                const long allocations = tqtest::AllocationsOf([&] {
                    form->plain(4, height, 16, nullptr, 8, dst.data());
                    form->multiThread(4, height, 16, nullptr, 8, dst.data());
                    form->plain(4, height, 16, src.data(), 8, nullptr);
                    form->multiThread(4, height, 16, src.data(), 8, nullptr);
                    form->plain(4, height, 16, nullptr, 8, nullptr);
                    form->multiThread(4, height, 16, nullptr, 8, nullptr);
                });
                EXPECT_EQ(allocations, 0) << form->name << ", height " << height;
                EXPECT_EQ(dst, before) << form->name << ", height " << height;
            }
        }
}

TEST(ArgbToPacked422, OneProcessorHasATaskToo) {
    Settings settings;
    settings.UseProcessors(1);
    for (const Form* form : kForms) {
        Bytes src(16, 60), dst(8, 99);
        EXPECT_GT(
            tqtest::AllocationsOf([&] { form->multiThread(4, 1, 16, src.data(), 8, dst.data()); }),
            0)
            << form->name;
    }
}

TEST(ArgbToPacked422, EveryFormEqualsItsReference) {
    for (const Form* form : kForms) tqtest::ExpectEqualsReference(*form);
}

void StoreColour(uint8_t* argb, uint32_t colour, uint8_t alpha) {
    argb[0] = static_cast<uint8_t>(colour);
    argb[1] = static_cast<uint8_t>(colour >> 8);
    argb[2] = static_cast<uint8_t>(colour >> 16);
    argb[3] = alpha;
}

// All 2^24 colours in both pixels of a pair, so that each channel's byte is seen as it is.
TEST(ArgbToPacked422, EqualPairsOfEveryColourEqualTheReference) {
    for (const Form* form : kForms)
        tqtest::ExpectLongRowsEqualReference(*form, 256, 1 << 16, [](int row, uint8_t* src) {
            for (uint32_t i = 0; i < 1 << 16; ++i, src += 8) {
                const uint32_t colour = static_cast<uint32_t>(row) << 16 | i;
                StoreColour(src, colour, static_cast<uint8_t>(i * 5));
                StoreColour(src + 4, colour, static_cast<uint8_t>(i * 3));
            }
        });
}

// All 2^24 colours on the left and on the right, each beside a far one.
TEST(ArgbToPacked422, UnequalPairsOfEveryColourEqualTheReference) {
    for (const Form* form : kForms)
        tqtest::ExpectLongRowsEqualReference(*form, 256, 1 << 16, [](int row, uint8_t* src) {
            for (uint32_t i = 0; i < 1 << 16; ++i, src += 8) {
                const uint32_t left = static_cast<uint32_t>(row) << 16 | i;
                StoreColour(src, left, static_cast<uint8_t>(i * 5));
                StoreColour(src + 4, left * 0x9E3779B1u + 0x5A5A5A, static_cast<uint8_t>(i * 3));
            }
        });
}

// Near colours, whose chroma is equal or ties.
TEST(ArgbToPacked422, PairsOfNearColoursEqualTheReference) {
    for (const Form* form : kForms)
        tqtest::ExpectLongRowsEqualReference(*form, 16, 1 << 16, [](int row, uint8_t* src) {
            for (uint32_t i = 0; i < 1 << 16; ++i, src += 8) {
                const uint32_t left = static_cast<uint32_t>(row * 17) << 16 | i;
                StoreColour(src, left, static_cast<uint8_t>(i * 5));
                StoreColour(src + 4, left + 0x000103, static_cast<uint8_t>(i * 3));
            }
        });
}

TEST(ArgbToPacked422, MultiThreadEqualsPlainAtEveryProcessorCount) {
    for (const Form* form : kForms) tqtest::ExpectMultiThreadEqualsPlain(*form);
}

TEST(ArgbToPacked422, TasksDoThePlainFormsWork) {
    for (const Form* form : kForms) tqtest::ExpectTaskEqualsReference(*form);
}

}  // namespace
