// Planar 4:2:2 and ARGB: values and places known by hand, every form against its reference, bands,
// tasks.

#include <gtest/gtest.h>
#include <tqipl/color.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "color/planar422_tasks.h"
#include "reference/planar422_reference.h"
#include "support/allocation_counter.h"
#include "support/block_stage.h"
#include "support/pixel_forms.h"
#include "support/settings.h"

namespace {

using Bytes = std::vector<uint8_t>;
using tqtest::BlockStage;
using tqtest::SameElements;
using tqtest::Settings;

// A form with its arguments in one order, whichever side is planar; the stride is ARGB's.
using Function = void (*)(int width, int height, int stride, uint8_t* planar, uint8_t* argb);
template <auto form>
void FromPlanar(int width, int height, int stride, uint8_t* planar, uint8_t* argb) {
    form(width, height, planar, stride, argb);
}
template <auto form>
void ToPlanar(int width, int height, int stride, uint8_t* planar, uint8_t* argb) {
    form(width, height, stride, argb, planar);
}

using Reference = void (*)(int width, int height, int stride, tqref::Bytes& planar,
                           tqref::Bytes& argb);
template <tqref::YuvToArgbPixel pixel, tqref::Planar422Layout (*layoutOf)(int, int)>
void FromReference(int width, int height, int stride, tqref::Bytes& planar, tqref::Bytes& argb) {
    tqref::YuvpToArgb<pixel, layoutOf>(width, height, planar, stride, argb);
}
template <const tqref::RgbToYuvSet& set, tqref::Planar422Layout (*layoutOf)(int, int)>
void ToReference(int width, int height, int stride, tqref::Bytes& planar, tqref::Bytes& argb) {
    tqref::ArgbToYuvp<set, layoutOf>(width, height, stride, argb, planar);
}

struct Form {
    const char* name;
    bool toArgb;
    Function plain, multiThread;
    Reference plainReference, multiThreadReference;
};

constexpr Form kFull = {"IPL_YUVP_422_To_ARGB444",
                        true,
                        FromPlanar<IPL_YUVP_422_To_ARGB444>,
                        FromPlanar<IPL_YUVP_422_To_ARGB444_MultiThread>,
                        FromReference<tqref::FullRangePixel, tqref::RowsApart>,
                        FromReference<tqref::FullRangePixel, tqref::RowsApart>};
constexpr Form kTo601 = {"IPL_YUVP422_To_ARGB_601",
                         true,
                         FromPlanar<IPL_YUVP422_To_ARGB_601>,
                         FromPlanar<IPL_YUVP422_To_ARGB_601_MultiThread>,
                         FromReference<tqref::Studio601Pixel, tqref::RowsRunOn>,
                         FromReference<tqref::Studio601Pixel, tqref::RowsApart>};
constexpr Form kTo709 = {"IPL_YUVP422_To_ARGB_709",
                         true,
                         FromPlanar<IPL_YUVP422_To_ARGB_709>,
                         FromPlanar<IPL_YUVP422_To_ARGB_709_MultiThread>,
                         FromReference<tqref::Studio709Pixel, tqref::RowsRunOn>,
                         FromReference<tqref::Studio709Pixel, tqref::RowsApart>};
constexpr Form kFrom601 = {"IPL_ARGB_To_YUVP422_601",
                           false,
                           ToPlanar<IPL_ARGB_To_YUVP422_601>,
                           ToPlanar<IPL_ARGB_To_YUVP422_601_MultiThread>,
                           ToReference<tqref::k601FromRgb, tqref::RowsRunOn>,
                           ToReference<tqref::k601FromRgb, tqref::RowsApart>};
constexpr Form kFrom709 = {"IPL_ARGB_To_YUVP422_709",
                           false,
                           ToPlanar<IPL_ARGB_To_YUVP422_709>,
                           ToPlanar<IPL_ARGB_To_YUVP422_709_MultiThread>,
                           ToReference<tqref::k709FromRgb, tqref::RowsRunOn>,
                           ToReference<tqref::k709FromRgb, tqref::RowsApart>};
constexpr const Form* kForms[] = {&kFull, &kTo601, &kTo709, &kFrom601, &kFrom709};
constexpr const Form* kStudioToArgb[] = {&kTo601, &kTo709};
constexpr const Form* kFromArgb[] = {&kFrom601, &kFrom709};

// The ARGB rows of an image, without padding.
Bytes ToArgb(Function function, int width, int height, Bytes planar) {
    Bytes argb(4 * width * height, 99);
    function(width, height, 4 * width, planar.data(), argb.data());
    return argb;
}
// The first `bytes` of a planar image.
Bytes ToYuvp(Function function, int width, int height, Bytes argb, int bytes) {
    Bytes planar(bytes, 99);
    function(width, height, 4 * width, planar.data(), argb.data());
    return planar;
}

// One pair of pixels.
TEST(Planar422, ToArgbByHand) {
    // Y0 100, Y1 50, U 138 (10 from the middle), V 118 (-10).
    const Bytes planar = {100, 50, 138, 118};
    // Blue 17.72, red -14.02, green 7.1414 - 3.4413 = 3.7001, added to 100 and 50, truncated.
    const Bytes full = {117, 103, 85, 255, 67, 53, 35, 255};
    // Luma 97.808 and 39.589; blue 20.172, red -15.960, green 4.212; and a half.
    const Bytes of601 = {118, 102, 82, 255, 60, 44, 24, 255};
    // Luma 97.8096 and 39.5896; blue 21.126, red -17.93, green 3.196; and a half.
    const Bytes of709 = {119, 101, 80, 255, 61, 43, 22, 255};
    for (auto [form, expected] : {std::pair{&kFull, full}, {&kTo601, of601}, {&kTo709, of709}}) {
        EXPECT_EQ(ToArgb(form->plain, 2, 1, planar), expected) << form->name;
        EXPECT_EQ(ToArgb(form->multiThread, 2, 1, planar), expected) << form->name;
    }
}

TEST(Planar422, FromArgbByHand) {
    // Blue, green, red 10, 20, 30 and 200, 100, 50.
    const Bytes argb = {10, 20, 30, 1, 200, 100, 50, 2};
    // Y 35.27 and 99.33; U 122.6 and 179.8, V 133.6 and 99.4: the bytes are averaged, upwards.
    const Bytes of601 = {35, 99, 151, 116};
    // Y 34.88 and 99.45; U 123.1 and 177.5, V 133.3 and 102.5.
    const Bytes of709 = {34, 99, 150, 118};
    for (auto [form, expected] : {std::pair{&kFrom601, of601}, {&kFrom709, of709}}) {
        EXPECT_EQ(ToYuvp(form->plain, 2, 1, argb, 4), expected) << form->name;
        EXPECT_EQ(ToYuvp(form->multiThread, 2, 1, argb, 4), expected) << form->name;
    }
}

TEST(Planar422, AnAverageOfChromaThatEndsInAHalfGoesUp) {
    // V 133 and, of a grey, 128. U 122 and 128 need no rounding.
    const Bytes argb = {10, 20, 30, 0, 50, 50, 50, 0};
    EXPECT_EQ(ToYuvp(kFrom601.plain, 2, 1, argb, 4), (Bytes{35, 59, 125, 131}));
}

TEST(Planar422, WhiteAndBlackInStudioRange) {
    const Bytes argb = {255, 255, 255, 0, 0, 0, 0, 255};
    for (const Form* form : kFromArgb)
        EXPECT_EQ(ToYuvp(form->plain, 2, 1, argb, 4), (Bytes{235, 16, 128, 128})) << form->name;
    for (const Form* form : kStudioToArgb)
        EXPECT_EQ(ToArgb(form->plain, 2, 1, {235, 16, 128, 128}),
                  (Bytes{255, 255, 255, 255, 0, 0, 0, 255}))
            << form->name;
}

TEST(Planar422, TheFullRangeIsTruncatedAndLimited) {
    // U 150: blue 216 + 38.984, green 216 - 7.571. The other luma is 255: blue and no more.
    EXPECT_EQ(ToArgb(kFull.plain, 2, 1, {216, 255, 150, 128}),
              (Bytes{254, 208, 216, 255, 255, 247, 255, 255}));
    // U and V 0: green gets 135.46; the others lose 226 and 179.
    EXPECT_EQ(ToArgb(kFull.plain, 2, 1, {200, 50, 0, 0}), (Bytes{0, 255, 20, 255, 0, 185, 0, 255}));
}

// Where the planes stand is seen from greys in full range: a grey pixel is its luma.
TEST(Planar422, PlanesOfAnEvenWidthFollowOneAnother) {
    // 4 x 2: Y at 0, U at 8, V at 12.
    const Bytes planar = {10, 20, 30, 40, 50, 60, 70, 80, 128, 128, 128, 138, 128, 128, 128, 118};
    Bytes expected;
    for (uint8_t grey : {10, 20, 30, 40, 50, 60})
        expected.insert(expected.end(), {grey, grey, grey, 255});
    // The last pair, 70 and 80, has U 138 and V 118: plus 17.72, 3.7 and -14.02.
    expected.insert(expected.end(), {87, 73, 55, 255, 97, 83, 65, 255});
    EXPECT_EQ(ToArgb(kFull.plain, 4, 2, planar), expected);
    EXPECT_EQ(ToArgb(kFull.multiThread, 4, 2, planar), expected);
}

Bytes GreyImage(const std::vector<int>& greys) {
    Bytes argb;
    for (int grey : greys)
        for (int value : {grey, grey, grey, 7}) argb.push_back(static_cast<uint8_t>(value));
    return argb;
}

TEST(Planar422, AnEvenWidthIsWrittenPlaneByPlane) {
    // Black, white and 50 (Y 42.94 + 16.5 = 59); the last pair is coloured as by hand above.
    Bytes argb = GreyImage({0, 255, 255, 0, 50, 0, 0, 0});
    const Bytes pair = {10, 20, 30, 1, 200, 100, 50, 2};
    std::copy(pair.begin(), pair.end(), argb.end() - 8);
    const Bytes expected = {16,  235, 235, 16,  59,  16,  35,  99, 128,
                            128, 128, 151, 128, 128, 128, 116, 99};
    EXPECT_EQ(ToYuvp(kFrom601.plain, 4, 2, argb, 17), expected);
    EXPECT_EQ(ToYuvp(kFrom601.multiThread, 4, 2, argb, 17), expected);
}

// 3 x 2, bytes 0 to 5 luma, U at 6 and 7.
TEST(Planar422, AnOddWidthIsReadWithRowsApartInFullRange) {
    // V right behind U, at 8 and 9. The second row begins at byte 3.
    const Bytes planar = {10, 20, 99, 30, 40, 99, 128, 128, 128, 128, 0, 0};
    for (Function function : {kFull.plain, kFull.multiThread}) {
        Bytes expected = {10, 10, 10, 255, 20, 20, 20, 255, 99, 99, 99, 99,
                          30, 30, 30, 255, 40, 40, 40, 255, 99, 99, 99, 99};
        EXPECT_EQ(ToArgb(function, 3, 2, planar), expected);
    }
}

TEST(Planar422, AnOddWidthIsReadWithRowsThatRunOnInPlainStudioRange) {
    for (const Form* form : kStudioToArgb) {
        // The second row begins at byte 2, V at 6 + 6 / 2 = 9; byte 8 is a gap.
        const Bytes runOn = {16, 235, 235, 16, 1, 2, 128, 128, 77, 128, 128, 0};
        const Bytes expected = {0,   0,   0,   255, 255, 255, 255, 255, 99, 99, 99, 99,
                                255, 255, 255, 255, 0,   0,   0,   255, 99, 99, 99, 99};
        EXPECT_EQ(ToArgb(form->plain, 3, 2, runOn), expected) << form->name;
        // In bands it begins at byte 3, V at 8.
        const Bytes apart = {16, 235, 1, 235, 16, 2, 128, 128, 128, 128, 0, 0};
        EXPECT_EQ(ToArgb(form->multiThread, 3, 2, apart), expected) << form->name;
    }
}

TEST(Planar422, AnOddWidthIsWrittenWithRowsThatRunOnInThePlainForms) {
    const Bytes argb = GreyImage({0, 255, 50, 255, 0, 50});
    for (const Form* form : kFromArgb) {
        // The gap at 8 and the two bytes behind the lumas keep what they held.
        EXPECT_EQ(ToYuvp(form->plain, 3, 2, argb, 12),
                  (Bytes{16, 235, 235, 16, 99, 99, 128, 128, 99, 128, 128, 99}))
            << form->name;
        EXPECT_EQ(ToYuvp(form->multiThread, 3, 2, argb, 12),
                  (Bytes{16, 235, 99, 235, 16, 99, 128, 128, 128, 128, 99, 99}))
            << form->name;
    }
}

TEST(Planar422, TheGapBeforeVOfAnOddWidthIsHalfTheHeight) {
    // 5 x 7: U at 35 with 14 bytes, V at 35 + 35 / 2 = 52: three bytes are left alone.
    const Bytes argb = GreyImage(std::vector<int>(35, 0));
    for (const Form* form : kFromArgb) {
        Bytes expected(28, 16);
        expected.resize(35, 99);
        expected.resize(49, 128);
        expected.resize(52, 99);
        expected.resize(66, 128);
        expected.resize(70, 99);
        EXPECT_EQ(ToYuvp(form->plain, 5, 7, argb, 70), expected) << form->name;
        // In bands: four lumas in five bytes, V right behind U.
        Bytes apart;
        for (int row = 0; row < 7; ++row) apart.insert(apart.end(), {16, 16, 16, 16, 99});
        apart.resize(63, 128);
        apart.resize(70, 99);
        EXPECT_EQ(ToYuvp(form->multiThread, 5, 7, argb, 70), apart) << form->name;
    }
}

TEST(Planar422, AlphaIs255ToArgbAndHasNoInfluenceFromArgb) {
    for (const Form* form : {&kFull, &kTo601, &kTo709}) {
        const Bytes argb = ToArgb(form->plain, 40, 1, Bytes(80, 90));
        for (int x = 0; x < 40; ++x) EXPECT_EQ(argb[4 * x + 3], 255) << form->name;
    }
    for (const Form* form : kFromArgb)
        for (int alpha = 0; alpha < 256; ++alpha) {
            const auto a = static_cast<uint8_t>(alpha), b = static_cast<uint8_t>(255 - alpha);
            EXPECT_EQ(ToYuvp(form->plain, 2, 1, {10, 20, 30, a, 200, 100, 50, b}, 4),
                      ToYuvp(form->plain, 2, 1, {10, 20, 30, 0, 200, 100, 50, 0}, 4))
                << form->name;
        }
}

TEST(Planar422, EvenWidthsGiveTheSameBytesInBands) {
    Settings settings;
    settings.UseProcessors(4);
    for (const Form* form : kForms)
        for (int width = 2; width <= 40; width += 2)
            for (int height : {1, 4, 11}) {
                Bytes planar(2 * width * height), argb(4 * width * height);
                tqtest::FillHostile(planar.data(), planar.size(), width);
                tqtest::FillHostile(argb.data(), argb.size(), height);
                Bytes planar2 = planar, argb2 = argb;
                form->plain(width, height, 4 * width, planar.data(), argb.data());
                form->multiThread(width, height, 4 * width, planar2.data(), argb2.data());
                EXPECT_EQ(planar, planar2) << form->name << ", " << width << " x " << height;
                EXPECT_EQ(argb, argb2) << form->name << ", " << width << " x " << height;
            }
}

TEST(Planar422, SizesWithoutAPairTouchNothing) {
    Settings settings;
    // Nothing at all may be read: both images stand right behind their memory.
    BlockStage stage(2, 256, 3);
    stage.Model([](tqref::Bytes*) {});
    for (const Form* form : kForms)
        for (auto size : {std::pair{0, 1},
                          {0, 0},
                          {4, 0},
                          {4, -1},
                          {4, -9},
                          {-1, 1},
                          {-4, 3},
                          {-70, -2},
                          {1, 1},
                          {1, 3},
                          {1, 20},
                          {0, 20}}) {
            const int width = size.first, height = size.second;
            for (unsigned processors : {1u, 2u, 8u}) {
                settings.UseProcessors(processors);
                for (Function function : {form->plain, form->multiThread})
                    EXPECT_TRUE(stage.Check([&](uint8_t* const* image) {
                        function(width, height, 16, image[0], image[1]);
                    })) << form->name
                        << ", " << width << " x " << height << ", " << processors << " processors";
            }
        }
}

TEST(Planar422, NoPointerIsUsedWhereThereIsNoRow) {
    Settings settings;
    for (const Form* form : kForms)
        for (unsigned processors : {1u, 2u, 8u}) {
            settings.UseProcessors(processors);
            for (int height : {0, -1, -9}) {
                form->plain(4, height, 16, nullptr, nullptr);
                form->multiThread(4, height, 16, nullptr, nullptr);
            }
        }
}

TEST(Planar422, ANullPointerDoesNothing) {
    Settings settings;
    Bytes planar(8 * 20, 50), argb(16 * 20, 60);
    const Bytes planarBefore = planar, argbBefore = argb;
    for (const Form* form : kForms)
        for (unsigned processors : {1u, 3u, 8u})
            for (int height : {1, 5, 9, 20}) {
                settings.UseProcessors(processors);
                auto callEach = [&](Function function) {
                    function(4, height, 16, nullptr, argb.data());
                    function(4, height, 16, planar.data(), nullptr);
                    function(4, height, 16, nullptr, nullptr);
                };
                // The full-range form does not look at pointers.
                if (form != &kFull) callEach(form->plain);
                callEach(form->multiThread);
                EXPECT_EQ(planar, planarBefore) << form->name;
                EXPECT_EQ(argb, argbBefore) << form->name;
            }
}

TEST(Planar422, FormsFromArgbMakeNoTaskForBadArguments) {
    Settings settings;
    Bytes planar(8 * 20, 50), argb(16 * 20, 60);
    for (const Form* form : kFromArgb)
        for (unsigned processors : {1u, 2u, 8u}) {
            settings.UseProcessors(processors);
            EXPECT_EQ(tqtest::AllocationsOf([&] {
                          form->multiThread(0, 20, 16, planar.data(), argb.data());
                          form->multiThread(4, 0, 16, planar.data(), argb.data());
                          form->multiThread(4, 20, 16, nullptr, argb.data());
                          form->multiThread(4, 20, 16, planar.data(), nullptr);
                      }),
                      0)
                << form->name;
        }
}

TEST(Planar422, OneProcessorHasATaskTooAndThePlainFormsHaveNone) {
    Settings settings;
    settings.UseProcessors(1);
    for (const Form* form : kForms) {
        Bytes planar(8, 60), argb(16, 99);
        EXPECT_GT(
            tqtest::AllocationsOf([&] { form->multiThread(4, 1, 16, planar.data(), argb.data()); }),
            0)
            << form->name;
        EXPECT_EQ(tqtest::AllocationsOf([&] { form->plain(4, 1, 16, planar.data(), argb.data()); }),
                  0)
            << form->name;
    }
}

TEST(Planar422, EveryFormEqualsItsReference) {
    Settings settings;
    for (const Form* form : kForms) {
        SCOPED_TRACE(form->name);
        BlockStage stage(2, 2048, 11);
        for (int width = 1; width <= 70; ++width)
            for (int height = 1; height <= 5; ++height)
                for (int stride : {4 * width, 4 * width + 3, -4 * width - 1}) {
                    stage.Model([&](tqref::Bytes* image) {
                        form->plainReference(width, height, stride, image[0], image[1]);
                    });
                    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                        settings.Use(level);
                        ASSERT_TRUE(stage.Check([&](uint8_t* const* image) {
                            form->plain(width, height, stride, image[0], image[1]);
                        })) << width
                            << " x " << height << ", stride " << stride << ", level "
                            << tq::IsaLevelName(level);
                    }
                }
    }
}

TEST(Planar422, BandsEqualTheReferenceAtEveryProcessorCount) {
    Settings settings;
    for (const Form* form : kForms) {
        SCOPED_TRACE(form->name);
        BlockStage stage(2, 8192, 12);
        for (int width : {1, 19, 36})
            for (int height : {-3, 0, 1, 2, 7, 8, 9, 16, 17, 33}) {
                const int stride = height % 2 == 1 ? -4 * width - 5 : 4 * width + 3;
                stage.Model([&](tqref::Bytes* image) {
                    form->multiThreadReference(width, height, stride, image[0], image[1]);
                });
                for (unsigned processors = 1; processors <= 16; ++processors) {
                    settings.UseProcessors(processors);
                    ASSERT_TRUE(stage.CheckAtGuards([&](uint8_t* const* image) {
                        form->multiThread(width, height, stride, image[0], image[1]);
                    })) << width
                        << " x " << height << ", " << processors << " processors";
                }
            }
    }
}

// One row of every pair that `fill` makes, at every level.
template <class Fill> void ExpectLongRows(const Form& form, int rows, Fill fill) {
    SCOPED_TRACE(form.name);
    Settings settings;
    constexpr int kWidth = 1 << 17;
    Bytes src(form.toArgb ? 2 * kWidth : 4 * kWidth), dst(form.toArgb ? 4 * kWidth : 2 * kWidth);
    Bytes expected(dst.size());
    tqref::Bytes source(src.data()), result(expected.data());
    for (int row = 0; row < rows; ++row) {
        fill(row, src.data());
        form.plainReference(kWidth, 1, 0, form.toArgb ? source : result,
                            form.toArgb ? result : source);
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
            settings.Use(level);
            std::fill(dst.begin(), dst.end(), uint8_t{0xA5});
            form.plain(kWidth, 1, 0, form.toArgb ? src.data() : dst.data(),
                       form.toArgb ? dst.data() : src.data());
            ASSERT_TRUE(SameElements(dst.data(), expected.data(), expected.size()))
                << "row " << row << ", level " << tq::IsaLevelName(level);
        }
    }
}

// V is the row, U and Y0 the place in it; Y1 goes through all values in another order.
TEST(Planar422, ToArgbEqualsTheReferenceForEveryTriple) {
    for (const Form* form : {&kFull, &kTo601, &kTo709})
        ExpectLongRows(*form, 256, [](int v, uint8_t* src) {
            uint8_t *u = src + (1 << 17), *planeV = u + (1 << 16);
            for (int i = 0; i < 1 << 16; ++i) {
                src[2 * i] = static_cast<uint8_t>(i);
                src[2 * i + 1] = static_cast<uint8_t>(i * 167 + 91);
                u[i] = static_cast<uint8_t>(i >> 8);
                planeV[i] = static_cast<uint8_t>(v);
            }
        });
}

// Every colour once, with partners of all kinds.
TEST(Planar422, FromArgbEqualsTheReferenceForEveryColour) {
    for (const Form* form : kFromArgb)
        ExpectLongRows(*form, 128, [](int row, uint8_t* src) {
            for (uint32_t i = 0; i < 1 << 16; ++i) {
                const uint32_t left = static_cast<uint32_t>(row) << 17 | i << 1;
                const uint32_t right = (left * 40503u + 1u) | 1u;
                for (int k = 0; k < 4; ++k) {
                    src[8 * i + k] = static_cast<uint8_t>(left >> 8 * k);
                    src[8 * i + 4 + k] = static_cast<uint8_t>(right >> 8 * k);
                }
            }
        });
}

// Sets the fields of the planes and of ARGB, whichever direction the task has.
template <class Task> void FillPlanes(Task& task, int width, int height, uint8_t* const* planes) {
    task.m_nWidth = width;
    task.m_nHeight = height;
    task.m_nYStride = width + 3;
    task.m_pY = planes[0];
    task.m_nUStride = width / 2 + 1;
    task.m_pU = planes[1];
    task.m_nVStride = -width / 2 - 2;
    task.m_pV = planes[2];
}
int RunFullTask(int width, int height, uint8_t* const* image) {
    auto task = std::make_unique<CYUVP_4222ARGBTask>();
    FillPlanes(*task, width, height, image);
    task->m_nDstStride = 4 * width + 5;
    task->m_pDst = image[3];
    const std::unique_ptr<CTQIPLTaskBase> base = std::move(task);
    return base->Run();
}
int RunToArgbTask(int mode, int width, int height, uint8_t* const* image) {
    auto task = std::make_unique<CZYUVP422_To_ARGBTask>();
    FillPlanes(*task, width, height, image);
    task->m_nDstStride = 4 * width + 5;
    task->m_pDst = image[3];
    task->m_nMode = mode;
    const std::unique_ptr<CTQIPLTaskBase> base = std::move(task);
    return base->Run();
}
int RunFromArgbTask(int mode, int width, int height, uint8_t* const* image) {
    auto task = std::make_unique<CZARGB_To_YUVP422Task>();
    FillPlanes(*task, width, height, image);
    task->m_nSrcStride = 4 * width + 5;
    task->m_pSrc = image[3];
    task->m_nMode = mode;
    const std::unique_ptr<CTQIPLTaskBase> base = std::move(task);
    return base->Run();
}

TEST(Planar422, TasksGoByTheirThreePlanesAndStrides) {
    BlockStage stage(4, 1024, 5);
    for (int width : {1, 2, 9, 21, 34})
        for (int height : {1, 3}) {
            auto toArgb = [&](tqref::YuvToArgbPixel pixel) {
                stage.Model([&](tqref::Bytes* image) {
                    tqref::ThreePlanesToArgb(pixel, width, height, width + 3, image[0],
                                             width / 2 + 1, image[1], -width / 2 - 2, image[2],
                                             4 * width + 5, image[3]);
                });
            };
            auto fromArgb = [&](const tqref::RgbToYuvSet& set) {
                stage.Model([&](tqref::Bytes* image) {
                    tqref::ArgbToThreePlanes(set, width, height, 4 * width + 5, image[3], width + 3,
                                             image[0], width / 2 + 1, image[1], -width / 2 - 2,
                                             image[2]);
                });
            };
            toArgb(tqref::FullRangePixel);
            EXPECT_TRUE(stage.Check(
                [&](uint8_t* const* image) { EXPECT_EQ(RunFullTask(width, height, image), 1); }));
            for (int mode : {0, 1}) {
                toArgb(mode == 0 ? tqref::Studio601Pixel : tqref::Studio709Pixel);
                EXPECT_TRUE(stage.Check([&](uint8_t* const* image) {
                    EXPECT_EQ(RunToArgbTask(mode, width, height, image), 1);
                })) << width;
                fromArgb(mode == 0 ? tqref::k601FromRgb : tqref::k709FromRgb);
                EXPECT_TRUE(stage.Check([&](uint8_t* const* image) {
                    EXPECT_EQ(RunFromArgbTask(mode, width, height, image), 1);
                })) << width;
            }
        }
}

TEST(Planar422, ATaskInAnUnknownModeDoesNothingAndReturns1) {
    BlockStage stage(4, 256, 6);
    stage.Model([](tqref::Bytes*) {});
    for (int mode : {2, 3, -1, 256})
        EXPECT_TRUE(stage.Check([&](uint8_t* const* image) {
            EXPECT_EQ(RunToArgbTask(mode, 4, 2, image), 1);
            EXPECT_EQ(RunFromArgbTask(mode, 4, 2, image), 1);
        })) << mode;
}

}  // namespace
