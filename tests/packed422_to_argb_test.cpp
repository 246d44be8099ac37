// Packed 4:2:2 and VUYT to ARGB: values known by hand, every form against its reference, bands,
// tasks.

#include <gtest/gtest.h>
#include <tqipl/color.h>

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "color/packed422_to_argb_tasks.h"
#include "reference/packed422_to_argb_reference.h"
#include "support/allocation_counter.h"
#include "support/pixel_forms.h"
#include "support/settings.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Form = tqtest::PixelForm<uint8_t>;
using tqtest::RunTask;
using tqtest::Settings;

constexpr Form kYuyvFull = {"IPL_YUYV422_To_ARGB444",
                            IPL_YUYV422_To_ARGB444,
                            IPL_YUYV422_To_ARGB444_MultiThread,
                            RunTask<CYUYV2ARGBTask>,
                            tqref::Yuyv422ToArgb,
                            2,
                            4,
                            8};
constexpr Form kUyvyFull = {"IPL_UYVY422_To_ARGB444",
                            IPL_UYVY422_To_ARGB444,
                            IPL_UYVY422_To_ARGB444_MultiThread,
                            RunTask<CUYVY2ARGBTask>,
                            tqref::Uyvy422ToArgb,
                            2,
                            4,
                            8};
constexpr Form kVuyt = {"IPL_VUYT444_To_ARGB444",
                        IPL_VUYT444_To_ARGB444,
                        IPL_VUYT444_To_ARGB444_MultiThread,
                        RunTask<CVUYT2ARGBTask>,
                        tqref::Vuyt444ToArgb,
                        1,
                        4,
                        4};
constexpr Form kYuyv601 = {"IPL_YUYV2ARGB_601",
                           IPL_YUYV2ARGB_601,
                           IPL_YUYV2ARGB_601_MultiThread,
                           RunTask<CZYUYV2ARGBTask_601>,
                           tqref::Yuyv2Argb601,
                           2,
                           4,
                           8};
constexpr Form kUyvy601 = {"IPL_UYVY2ARGB_601",
                           IPL_UYVY2ARGB_601,
                           IPL_UYVY2ARGB_601_MultiThread,
                           RunTask<CZUYVY2ARGBTask_601>,
                           tqref::Uyvy2Argb601,
                           2,
                           4,
                           8};
constexpr Form kYuyv709 = {"IPL_YUYV2ARGB_709",
                           IPL_YUYV2ARGB_709,
                           IPL_YUYV2ARGB_709_MultiThread,
                           RunTask<CZYUYV2ARGBTask_709>,
                           tqref::Yuyv2Argb709,
                           2,
                           4,
                           8};
constexpr Form kUyvy709 = {"IPL_UYVY2ARGB_709",
                           IPL_UYVY2ARGB_709,
                           IPL_UYVY2ARGB_709_MultiThread,
                           RunTask<CZUYVY2ARGBTask_709>,
                           tqref::Uyvy2Argb709,
                           2,
                           4,
                           8};
constexpr const Form* kForms[] = {&kYuyvFull, &kUyvyFull, &kVuyt,   &kYuyv601,
                                  &kUyvy601,  &kYuyv709,  &kUyvy709};
constexpr const Form* kFullRange[] = {&kYuyvFull, &kUyvyFull, &kVuyt};
constexpr const Form* kStudioRange[] = {&kYuyv601, &kUyvy601, &kYuyv709, &kUyvy709};
constexpr const Form* kUyvyForms[] = {&kUyvyFull, &kUyvy601, &kUyvy709};

bool IsUyvy(const Form& form) {
    for (const Form* uyvy : kUyvyForms)
        if (uyvy->plain == form.plain) return true;
    return false;
}

// One group of two pixels with the same chroma, in the form's layout.
Bytes Group(const Form& form, uint8_t y0, uint8_t y1, uint8_t u, uint8_t v) {
    if (form.groupPixels == 1) return {v, u, y0, 77, v, u, y1, 78};
    if (IsUyvy(form)) return {u, y0, v, y1};
    return {y0, u, y1, v};
}

// Its eight bytes of ARGB.
Bytes Convert(const Form& form, uint8_t y0, uint8_t y1, uint8_t u, uint8_t v) {
    Bytes src = Group(form, y0, y1, u, v), dst(8, 99);
    form.plain(2, 1, 0, src.data(), 0, dst.data());
    return dst;
}
// Blue, green and red of one pixel.
Bytes Colour(const Form& form, uint8_t y, uint8_t u, uint8_t v) {
    const Bytes both = Convert(form, y, y, u, v);
    EXPECT_EQ(Bytes(both.begin(), both.begin() + 4), Bytes(both.begin() + 4, both.end()));
    return Bytes(both.begin(), both.begin() + 3);
}

// Y0 100, Y1 50, U 138 (10 from the middle), V 118 (-10).
TEST(Packed422ToArgb, FullRangeByHand) {
    // Blue 17.72, red -14.02, green -(-7.1414 + 3.4413) = 3.7001, added to 100 and 50, truncated.
    const Bytes expected = {117, 103, 85, 255, 67, 53, 35, 255};
    for (const Form* form : kFullRange)
        EXPECT_EQ(Convert(*form, 100, 50, 138, 118), expected) << form->name;
}

TEST(Packed422ToArgb, StudioRange601ByHand) {
    // Luma 97.808 and 39.589; blue 20.172, red -15.960, green 4.212; and a half.
    const Bytes expected = {118, 102, 82, 255, 60, 44, 24, 255};
    EXPECT_EQ(Convert(kYuyv601, 100, 50, 138, 118), expected);
    EXPECT_EQ(Convert(kUyvy601, 100, 50, 138, 118), expected);
}

TEST(Packed422ToArgb, StudioRange709ByHand) {
    // Luma 97.8096 and 39.5896; blue 21.126, red -17.93, green 3.196; and a half.
    const Bytes expected = {119, 101, 80, 255, 61, 43, 22, 255};
    EXPECT_EQ(Convert(kYuyv709, 100, 50, 138, 118), expected);
    EXPECT_EQ(Convert(kUyvy709, 100, 50, 138, 118), expected);
}

TEST(Packed422ToArgb, LayoutsInRisingAddressOrder) {
    Bytes yuyv = {100, 138, 50, 118}, uyvy = {138, 100, 118, 50}, vuyt = {118, 138, 100, 0};
    Bytes first(8), second(8), third(4);
    IPL_YUYV422_To_ARGB444(2, 1, 4, yuyv.data(), 8, first.data());
    IPL_UYVY422_To_ARGB444(2, 1, 4, uyvy.data(), 8, second.data());
    IPL_VUYT444_To_ARGB444(1, 1, 4, vuyt.data(), 4, third.data());
    EXPECT_EQ(first, (Bytes{117, 103, 85, 255, 67, 53, 35, 255}));
    EXPECT_EQ(second, first);
    EXPECT_EQ(third, (Bytes{117, 103, 85, 255}));
}

TEST(Packed422ToArgb, StudioBlackIs0AndStudioWhiteIs255) {
    for (const Form* form : kStudioRange) {
        EXPECT_EQ(Colour(*form, 16, 128, 128), (Bytes{0, 0, 0})) << form->name;
        EXPECT_EQ(Colour(*form, 235, 128, 128), (Bytes{255, 255, 255})) << form->name;
        EXPECT_EQ(Colour(*form, 0, 128, 128), (Bytes{0, 0, 0})) << form->name;
        EXPECT_EQ(Colour(*form, 255, 128, 128), (Bytes{255, 255, 255})) << form->name;
        // 218 steps of luma are 253.84: still below white.
        EXPECT_EQ(Colour(*form, 234, 128, 128), (Bytes{254, 254, 254})) << form->name;
    }
}

TEST(Packed422ToArgb, FullRangeBlackIs0AndWhiteIs255) {
    for (const Form* form : kFullRange) {
        for (int y = 0; y < 256; ++y) {
            const auto grey = static_cast<uint8_t>(y);
            EXPECT_EQ(Colour(*form, grey, 128, 128), Bytes(3, grey)) << form->name;
        }
    }
}

TEST(Packed422ToArgb, FullRangeIsTruncatedAndStudioRangeIsRounded) {
    for (const Form* form : kFullRange) {
        // U 150: blue 22 * 1.772 = 38.984, so 254.984; green 22 * 0.34413 = 7.571, so 208.43.
        EXPECT_EQ(Colour(*form, 216, 150, 128), (Bytes{254, 208, 216})) << form->name;
        // V 123: red -7.01, so 2.99; green 3.5707, so 13.57.
        EXPECT_EQ(Colour(*form, 10, 128, 123), (Bytes{10, 13, 2})) << form->name;
    }
    for (const Form* form : kStudioRange) {
        // Luma of 3, 4 and 5 steps: 3.49, 4.66, 5.82.
        EXPECT_EQ(Colour(*form, 19, 128, 128), (Bytes{3, 3, 3})) << form->name;
        EXPECT_EQ(Colour(*form, 20, 128, 128), (Bytes{5, 5, 5})) << form->name;
        EXPECT_EQ(Colour(*form, 21, 128, 128), (Bytes{6, 6, 6})) << form->name;
    }
}

TEST(Packed422ToArgb, FullRangeIsLimitedTo0And255) {
    for (const Form* form : kFullRange) {
        // U 129: blue 254 + 1.772 = 255.772. U 127: 1 - 1.772.
        EXPECT_EQ(Colour(*form, 254, 129, 128)[0], 255) << form->name;
        EXPECT_EQ(Colour(*form, 1, 127, 128)[0], 0) << form->name;
        // U 0 and V 0: green gets 128 * 1.05827 = 135.46; the others lose 226 and 179.
        EXPECT_EQ(Colour(*form, 200, 0, 0), (Bytes{0, 255, 20})) << form->name;
        EXPECT_EQ(Colour(*form, 50, 0, 0), (Bytes{0, 185, 0})) << form->name;
        // U 255 and V 255: green loses 127 * 1.05827 = 134.4; the others gain 225.04 and 178.05.
        EXPECT_EQ(Colour(*form, 20, 255, 255), (Bytes{245, 0, 198})) << form->name;
        EXPECT_EQ(Colour(*form, 90, 255, 255), (Bytes{255, 0, 255})) << form->name;
    }
}

TEST(Packed422ToArgb, StudioRangeIsLimitedTo0And255) {
    // Luma 128.08. U 0 and V 0: blue -258 and red -204, green 154.2, in 709 -270, -230 and 95.4.
    // U 255 and V 255: blue 256 and red 203, green -153.0, in 709 268, 228 and -94.7.
    for (const Form* form : {&kYuyv601, &kUyvy601}) {
        EXPECT_EQ(Colour(*form, 126, 0, 0), (Bytes{0, 255, 0})) << form->name;
        EXPECT_EQ(Colour(*form, 126, 255, 255), (Bytes{255, 0, 255})) << form->name;
    }
    for (const Form* form : {&kYuyv709, &kUyvy709}) {
        EXPECT_EQ(Colour(*form, 126, 0, 0), (Bytes{0, 223, 0})) << form->name;
        EXPECT_EQ(Colour(*form, 126, 255, 255), (Bytes{255, 33, 255})) << form->name;
        // Luma 86.17 and 167.67.
        EXPECT_EQ(Colour(*form, 90, 255, 255), (Bytes{255, 0, 255})) << form->name;
        EXPECT_EQ(Colour(*form, 160, 0, 0), (Bytes{0, 255, 0})) << form->name;
    }
}

TEST(Packed422ToArgb, BothPixelsOfAPairHaveItsChromaAndNoOther) {
    // A neutral pair between two coloured ones stays neutral.
    for (const Form* form : kForms) {
        Bytes src;
        for (auto [u, v] : {std::pair<uint8_t, uint8_t>{255, 1}, {128, 128}, {0, 255}}) {
            const Bytes group = Group(*form, 128, 128, u, v);
            src.insert(src.end(), group.begin(), group.end());
        }
        Bytes dst(24);
        form->plain(6, 1, 0, src.data(), 0, dst.data());
        for (int x : {2, 3}) {
            EXPECT_EQ(dst[4 * x], dst[4 * x + 1]) << form->name;
            EXPECT_EQ(dst[4 * x], dst[4 * x + 2]) << form->name;
        }
        for (int x : {0, 1, 4, 5}) EXPECT_NE(dst[4 * x], dst[4 * x + 1]) << form->name;
    }
}

TEST(Packed422ToArgb, AnOddLastPixelKeepsItsContents) {
    for (const Form* form : kForms) {
        if (form->groupPixels == 1) continue;
        for (int width = 1; width <= 69; width += 2) {
            Bytes src(2 * 2 * width, 60), dst(2 * 4 * width, 99);
            form->plain(width, 2, 2 * width, src.data(), 4 * width, dst.data());
            for (int y : {0, 1}) {
                const uint8_t* row = dst.data() + 4 * width * y;
                if (width > 1) {
                    EXPECT_EQ(row[4 * width - 5], 255) << form->name << ", width " << width;
                }
                EXPECT_EQ(Bytes(row + 4 * width - 4, row + 4 * width), Bytes(4, 99))
                    << form->name << ", width " << width;
            }
        }
    }
}

TEST(Packed422ToArgb, AWidthOf1WritesNothingIn422) {
    for (const Form* form : kForms) {
        if (form->groupPixels == 1) continue;
        Bytes src(8, 60), dst(16, 99);
        form->plain(1, 2, 4, src.data(), 8, dst.data());
        form->multiThread(1, 2, 4, src.data(), 8, dst.data());
        EXPECT_EQ(dst, Bytes(16, 99)) << form->name;
    }
}

TEST(Packed422ToArgb, AVuytImageHasNoPairs) {
    for (int width : {1, 3, 5, 33}) {
        Bytes src, dst(4 * width + 4, 99), expected;
        for (int x = 0; x < width; ++x) {
            const auto grey = static_cast<uint8_t>(10 + x);
            src.insert(src.end(), {128, 128, grey, 0});
            expected.insert(expected.end(), {grey, grey, grey, 255});
        }
        expected.insert(expected.end(), {99, 99, 99, 99});
        IPL_VUYT444_To_ARGB444(width, 1, 0, src.data(), 0, dst.data());
        EXPECT_EQ(dst, expected) << width;
    }
}

TEST(Packed422ToArgb, TheByteTHasNoInfluence) {
    for (int t = 0; t < 256; ++t) {
        Bytes src = {118, 138, 100, static_cast<uint8_t>(t)}, dst(4, 7);
        IPL_VUYT444_To_ARGB444(1, 1, 4, src.data(), 4, dst.data());
        EXPECT_EQ(dst, (Bytes{117, 103, 85, 255})) << t;
    }
}

TEST(Packed422ToArgb, AlphaIs255) {
    for (const Form* form : kForms)
        for (uint8_t held : {0, 1, 128, 255}) {
            Bytes src(4 * 40, 33), dst(4 * 40, held);
            form->plain(40, 1, 0, src.data(), 0, dst.data());
            for (int x = 0; x < 40; ++x) EXPECT_EQ(dst[4 * x + 3], 255) << form->name;
        }
}

TEST(Packed422ToArgb, SizesBelowOneWriteNothing) {
    for (const Form* form : kForms) tqtest::ExpectEmptySizesWriteNothing(*form);
}

TEST(Packed422ToArgb, FullRangeFormsLookAtNoPointerWhereThereIsNoRow) {
    for (const Form* form : kFullRange)
        for (unsigned processors : {1u, 2u, 8u}) {
            Settings settings;
            settings.UseProcessors(processors);
            for (int height : {0, -1, -9}) {
                form->plain(4, height, 8, nullptr, 16, nullptr);
                form->multiThread(4, height, 8, nullptr, 16, nullptr);
            }
        }
}

TEST(Packed422ToArgb, StudioRangeFormsDoNothingWithANullPointer) {
    for (const Form* form : kStudioRange)
        for (unsigned processors : {1u, 3u, 8u}) {
            Settings settings;
            settings.UseProcessors(processors);
            for (int height : {1, 5, 9, 24}) {
                Bytes src(8 * height, 60), dst(16 * height, 99);
                const Bytes before = dst;
                // Not even a task is made.
                const long allocations = tqtest::AllocationsOf([&] {
                    form->plain(4, height, 8, nullptr, 16, dst.data());
                    form->multiThread(4, height, 8, nullptr, 16, dst.data());
                    form->plain(4, height, 8, src.data(), 16, nullptr);
                    form->multiThread(4, height, 8, src.data(), 16, nullptr);
                    form->plain(4, height, 8, nullptr, 16, nullptr);
                    form->multiThread(4, height, 8, nullptr, 16, nullptr);
                });
                EXPECT_EQ(allocations, 0) << form->name << ", height " << height;
                EXPECT_EQ(dst, before) << form->name << ", height " << height;
            }
        }
}

TEST(Packed422ToArgb, OneProcessorHasATaskToo) {
    Settings settings;
    settings.UseProcessors(1);
    for (const Form* form : kForms) {
        Bytes src(16, 60), dst(32, 99);
        EXPECT_GT(
            tqtest::AllocationsOf([&] { form->multiThread(4, 1, 8, src.data(), 16, dst.data()); }),
            0)
            << form->name;
    }
}

TEST(Packed422ToArgb, EveryFormEqualsItsReference) {
    for (const Form* form : kForms) tqtest::ExpectEqualsReference(*form);
}

// All 2^24 triples, in the left pixel and in the right: V is the row, U and Y0 the place in it, and
// Y1 goes through all values in another order.
void ExpectEveryTriple(const Form& form) {
    tqtest::ExpectLongRowsEqualReference(form, 256, 1 << 16, [&](int v, uint8_t* src) {
        const bool uyvy = IsUyvy(form);
        for (int i = 0; i < 1 << 16; ++i, src += 4) {
            const auto y0 = static_cast<uint8_t>(i), u = static_cast<uint8_t>(i >> 8);
            const auto y1 = static_cast<uint8_t>(i * 167 + 91);
            const uint8_t yuyv[4] = {y0, u, y1, static_cast<uint8_t>(v)};
            if (form.groupPixels == 1) {
                const uint8_t vuyt[4] = {yuyv[3], u, y0, y1};
                std::memcpy(src, vuyt, 4);
            } else if (uyvy) {
                const uint8_t swapped[4] = {u, y0, yuyv[3], y1};
                std::memcpy(src, swapped, 4);
            } else {
                std::memcpy(src, yuyv, 4);
            }
        }
    });
}

TEST(Packed422ToArgb, FullRangeEqualsTheReferenceForEveryTriple) {
    for (const Form* form : kFullRange) ExpectEveryTriple(*form);
}

TEST(Packed422ToArgb, StudioRangeEqualsTheReferenceForEveryTriple) {
    for (const Form* form : kStudioRange) ExpectEveryTriple(*form);
}

TEST(Packed422ToArgb, MultiThreadEqualsPlainAtEveryProcessorCount) {
    for (const Form* form : kForms) tqtest::ExpectMultiThreadEqualsPlain(*form);
}

TEST(Packed422ToArgb, TasksDoThePlainFormsWork) {
    for (const Form* form : kForms) tqtest::ExpectTaskEqualsReference(*form);
}

}  // namespace
