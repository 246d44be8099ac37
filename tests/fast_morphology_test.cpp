// Fast erosion, dilation and their compositions: pictures known by hand, thin bands, bad arguments,
// tasks, and the reference at every level.

#include <gtest/gtest.h>
#include <tqipl/morph.h>

#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "morph/morph_tasks.h"
#include "reference/morphology_reference.h"
#include "support/morph_check.h"
#include "support/task_fields.h"

namespace {

using tqref::MorphStep;
using tqtest::Drawn;
using tqtest::MaskContent;
using tqtest::MaskPairTrial;
using tqtest::MaskSize;
using tqtest::MaskTrial;
using tqtest::Radii;
using tqtest::Settings;

constexpr MorphStep kErode = MorphStep::kErosion, kDilate = MorphStep::kDilation;
constexpr int kMost = std::numeric_limits<int>::max(), kLeast = std::numeric_limits<int>::min();

// The radii of the first step and of the second. Forms with one pair take the first.
struct RadiiPairs {
    Radii first, second;
};

std::string Describe(MaskSize size, RadiiPairs radii) {
    return tqtest::Describe(size, radii.first) + ", then " + std::to_string(radii.second.y) +
           " and " + std::to_string(radii.second.x);
}

// ---- The forms under one signature --------------------------------------------------------------

using InPlace = void (*)(MaskSize size, int stride, unsigned char* image, RadiiPairs radii);
using TwoImages = void (*)(MaskSize size, int srcStride, unsigned char* src, int dstStride,
                           unsigned char* dst, RadiiPairs radii);

struct Step {
    MorphStep step;
    bool second;  // which radii
};

struct Form {
    const char* name;
    InPlace plain, multiThread;
    TwoImages twoImages;  // null: there is none
    std::vector<Step> steps;
};

template <void (*form)(int, int, int, unsigned char*, int, int)>
void WithOnePair(MaskSize s, int stride, unsigned char* image, RadiiPairs r) {
    form(s.width, s.height, stride, image, r.first.y, r.first.x);
}
template <void (*form)(int, int, int, unsigned char*, int, int, int, int)>
void WithTwoPairs(MaskSize s, int stride, unsigned char* image, RadiiPairs r) {
    form(s.width, s.height, stride, image, r.first.y, r.first.x, r.second.y, r.second.x);
}
template <void (*form)(int, int, int, unsigned char*, int, unsigned char*, int, int)>
void TwoImagesWithOnePair(MaskSize s, int srcStride, unsigned char* src, int dstStride,
                          unsigned char* dst, RadiiPairs r) {
    form(s.width, s.height, srcStride, src, dstStride, dst, r.first.y, r.first.x);
}
template <void (*form)(int, int, int, unsigned char*, int, unsigned char*, int, int, int, int)>
void TwoImagesWithTwoPairs(MaskSize s, int srcStride, unsigned char* src, int dstStride,
                           unsigned char* dst, RadiiPairs r) {
    form(s.width, s.height, srcStride, src, dstStride, dst, r.first.y, r.first.x, r.second.y,
         r.second.x);
}

const std::vector<Form> kForms = {
    {"IPL_FErosion",
     WithOnePair<IPL_FErosion>,
     WithOnePair<IPL_FErosion_MultiThread>,
     TwoImagesWithOnePair<IPL_FErosion_MultiThread>,
     {{kErode, false}}},
    {"IPL_FDilation",
     WithOnePair<IPL_FDilation>,
     WithOnePair<IPL_FDilation_MultiThread>,
     TwoImagesWithOnePair<IPL_FDilation_MultiThread>,
     {{kDilate, false}}},
    {"IPL_FOpening",
     WithTwoPairs<IPL_FOpening>,
     WithTwoPairs<IPL_FOpening_MultiThread>,
     TwoImagesWithTwoPairs<IPL_FOpening_MultiThread>,
     {{kErode, false}, {kDilate, true}}},
    {"IPL_FClosing",
     WithTwoPairs<IPL_FClosing>,
     WithTwoPairs<IPL_FClosing_MultiThread>,
     TwoImagesWithTwoPairs<IPL_FClosing_MultiThread>,
     {{kDilate, false}, {kErode, true}}},
    {"IPL_FDeNoise",
     WithOnePair<IPL_FDeNoise>,
     WithOnePair<IPL_FDeNoise_MultiThread>,
     nullptr,
     {{kErode, false}, {kDilate, false}, {kDilate, false}, {kErode, false}}},
};
const Form &kErosion = kForms[0], &kDilation = kForms[1], &kOpening = kForms[2],
           &kClosing = kForms[3], &kDeNoise = kForms[4];

// ---- Values known by hand -----------------------------------------------------------------------

using Bytes = std::vector<uint8_t>;

Bytes PlainOf(const Form& form, MaskSize size, RadiiPairs radii, const Bytes& mask) {
    Bytes image = mask;
    form.plain(size, size.width, image.data(), radii);
    return image;
}

// The two MultiThread forms give the same.
Bytes ThreadedOf(const Form& form, unsigned processors, MaskSize size, RadiiPairs radii,
                 const Bytes& mask) {
    Settings settings;
    settings.UseProcessors(processors);
    Bytes image = mask;
    form.multiThread(size, size.width, image.data(), radii);
    if (form.twoImages != nullptr) {
        Bytes src = mask, dst(mask.size(), 99);
        form.twoImages(size, size.width, src.data(), size.width, dst.data(), radii);
        EXPECT_EQ(dst, image) << form.name << ", " << processors << " processors, two images";
        EXPECT_EQ(src, mask) << form.name << ", " << processors << " processors, source";
    }
    return image;
}

// Plain, and in bands that are all thicker than radiusY or cover the image.
void ExpectMask(const Form& form, MaskSize size, RadiiPairs radii, const Bytes& mask,
                const Bytes& expected) {
    EXPECT_EQ(PlainOf(form, size, radii, mask), expected) << form.name << Describe(size, radii);
    for (unsigned processors : {1u, static_cast<unsigned>(size.height) + 1})
        EXPECT_EQ(ThreadedOf(form, processors, size, radii, mask), expected)
            << form.name << ", " << processors << " processors, " << Describe(size, radii);
}

void ExpectPicture(const Form& form, RadiiPairs radii, const std::vector<std::string>& before,
                   const std::vector<std::string>& after) {
    ASSERT_EQ(before.size(), after.size());
    ExpectMask(form, {static_cast<int>(before[0].size()), static_cast<int>(before.size())}, radii,
               Drawn(before), Drawn(after));
}

TEST(FastMorphology, AFullImageStaysFullAtAnyRadius) {
    for (const Form& form : kForms)
        for (Radii radii : {Radii{0, 0}, {1, 1}, {2, 3}, {9, 11}, {10, 12}, {11, 13}, {500, 500}})
            for (uint8_t value : {uint8_t{1}, uint8_t{255}}) {
                const Bytes mask(120, value), full(120, 255);
                ExpectMask(form, {12, 10}, {radii, radii}, mask, full);
                for (unsigned processors : {2u, 3u, 10u})
                    EXPECT_EQ(ThreadedOf(form, processors, {12, 10}, {radii, radii}, mask), full);
            }
}

TEST(FastMorphology, AnEmptyImageStaysEmptyAtAnyRadius) {
    for (const Form& form : kForms)
        for (Radii radii : {Radii{0, 0}, {1, 1}, {2, 3}, {9, 11}, {10, 12}, {11, 13}, {500, 500}}) {
            const Bytes mask(120, 0);
            ExpectMask(form, {12, 10}, {radii, radii}, mask, mask);
            for (unsigned processors : {2u, 3u, 10u})
                EXPECT_EQ(ThreadedOf(form, processors, {12, 10}, {radii, radii}, mask), mask);
        }
}

TEST(FastMorphology, ASetPixelInACornerGrowsIntoAClippedRectangle) {
    ExpectPicture(kDilation, {{1, 2}, {}}, {"#.....", "......", "......", "......"},
                  {"###...", "###...", "......", "......"});
    ExpectPicture(kDilation, {{2, 1}, {}}, {".....#", "......", "......", "......"},
                  {"....##", "....##", "....##", "......"});
    ExpectPicture(kDilation, {{1, 3}, {}}, {"......", "......", "......", "#....."},
                  {"......", "......", "####..", "####.."});
    ExpectPicture(kDilation, {{0, 1}, {}}, {"......", "......", "......", ".....#"},
                  {"......", "......", "......", "....##"});
}

TEST(FastMorphology, AHoleInACornerGrowsIntoAClippedRectangle) {
    ExpectPicture(kErosion, {{1, 2}, {}}, {".#####", "######", "######", "######"},
                  {"...###", "...###", "######", "######"});
    ExpectPicture(kErosion, {{2, 0}, {}}, {"######", "######", "######", "#####."},
                  {"######", "#####.", "#####.", "#####."});
}

TEST(FastMorphology, TheFirstRadiusIsTheVerticalOne) {
    ExpectPicture(kDilation, {{1, 2}, {}},
                  {".........", ".........", "....a....", ".........", "........."},
                  {".........", "..#####..", "..#####..", "..#####..", "........."});
    ExpectPicture(kErosion, {{2, 1}, {}},
                  {"#######", "###z###", "###.###", "#######", "#######", "#######"},
                  {"##...##", "##...##", "##...##", "##...##", "##...##", "#######"});
}

TEST(FastMorphology, EveryValueBut0CountsAsSet) {
    for (int value = 0; value < 256; ++value) {
        const uint8_t byte = static_cast<uint8_t>(value);
        const uint8_t set = value != 0 ? 255 : 0;
        Bytes speck(9, 0);
        speck[4] = byte;
        EXPECT_EQ(PlainOf(kErosion, {3, 3}, {{1, 1}, {}}, Bytes(9, byte)), Bytes(9, set));
        EXPECT_EQ(PlainOf(kDilation, {3, 3}, {{1, 1}, {}}, speck), Bytes(9, set));
        EXPECT_EQ(ThreadedOf(kErosion, 2, {3, 3}, {{0, 1}, {}}, Bytes(9, byte)), Bytes(9, set));
        EXPECT_EQ(ThreadedOf(kDilation, 4, {3, 3}, {{1, 1}, {}}, speck), Bytes(9, set));
        for (const Form& form : kForms)
            EXPECT_EQ(PlainOf(form, {1, 1}, {{1, 2}, {3, 4}}, {byte}), Bytes{set}) << form.name;
    }
}

TEST(FastMorphology, WithBothRadii0EveryNonZeroByteBecomes255) {
    Bytes mask(256), expected(256, 255);
    for (int i = 0; i < 256; ++i) mask[i] = static_cast<uint8_t>(i);
    expected[0] = 0;
    for (const Form& form : kForms) {
        ExpectMask(form, {16, 16}, {}, mask, expected);
        for (unsigned processors : {2u, 7u, 16u})
            EXPECT_EQ(ThreadedOf(form, processors, {16, 16}, {}, mask), expected);
    }
}

TEST(FastMorphology, RadiiOfTheSidesTakeInTheWholeImage) {
    Bytes hole(35, 3), speck(35, 0);
    hole[34] = 0;
    speck[0] = 3;
    for (Radii radii : {Radii{4, 6}, {5, 7}, {6, 8}, {1000, 1000}, {kMost, kMost}}) {
        ExpectMask(kErosion, {7, 5}, {radii, {}}, hole, Bytes(35, 0));
        ExpectMask(kDilation, {7, 5}, {radii, {}}, speck, Bytes(35, 255));
    }
    Bytes row(35, 0);
    for (int x = 0; x < 7; ++x) row[x] = 255;
    ExpectMask(kDilation, {7, 5}, {{0, kMost}, {}}, speck, row);
    Bytes column(35, 0);
    for (int y = 0; y < 5; ++y) column[7 * y] = 255;
    ExpectMask(kDilation, {7, 5}, {{kMost, 0}, {}}, speck, column);
}

TEST(FastMorphology, OpeningRemovesASpeckAndClosingFillsAHole) {
    ExpectPicture(kOpening, {{1, 1}, {1, 1}}, {"##....", "##..#.", ".....#", "...###"},
                  {"##....", "##....", "......", "......"});
    ExpectPicture(kClosing, {{1, 1}, {1, 1}}, {"#.....", "......", "..###.", "..#.#.", "..####"},
                  {"#.....", "......", "..####", "..####", "..####"});
}

// The two steps have their own radii, in the order of the steps.
TEST(FastMorphology, TheSecondStepHasTheSecondRadii) {
    ExpectPicture(kOpening, {{1, 0}, {0, 1}},
                  {".......", "...#...", "...#...", "...#...", "......."},
                  {".......", ".......", "..###..", ".......", "......."});
    ExpectPicture(kClosing, {{0, 1}, {1, 0}},
                  {".......", "...#...", "...#...", "...#...", "......."},
                  {".......", ".......", "..###..", ".......", "......."});
}

// Of the first picture erosion leaves three pixels in the last row.
TEST(FastMorphology, DenoiseRemovesSpecksAndFillsHoles) {
    ExpectPicture(
        kDeNoise, {{1, 1}, {}},
        {"#.......", "........", "..#####.", "..#####.", "..##.##.", "..#####.", "..#####."},
        {"........", "........", "........", "........", "........", "..######", "..######"});
    ExpectPicture(kDeNoise, {{1, 1}, {}},
                  {"........", ".#......", "........", "...#####", "...#####", "...#####",
                   "...#.###", "...#####"},
                  {"........", "........", "........", "...#####", "...#####", "...#####",
                   ".....###", ".....###"});
}

TEST(FastMorphology, AStepWithRadii0AddsNothing) {
    uint32_t seed = 0;
    for (Radii radii : {Radii{1, 1}, {2, 0}, {0, 3}, {4, 5}})
        for (unsigned processors : {1u, 2u, 4u, 9u}) {
            const MaskSize size = {25, 18};
            Bytes mask(25 * 18);
            tqtest::FillMask(mask.data(), mask.size(), MaskContent::kHoles,
                             tqtest::RarityFor(size, radii), ++seed);
            EXPECT_EQ(PlainOf(kOpening, size, {radii, {0, 0}}, mask),
                      PlainOf(kErosion, size, {radii, {}}, mask));
            EXPECT_EQ(ThreadedOf(kOpening, processors, size, {radii, {0, 0}}, mask),
                      ThreadedOf(kErosion, processors, size, {radii, {}}, mask));
            EXPECT_EQ(ThreadedOf(kClosing, processors, size, {{0, 0}, radii}, mask),
                      ThreadedOf(kErosion, processors, size, {radii, {}}, mask));
            tqtest::FillMask(mask.data(), mask.size(), MaskContent::kSpecks,
                             tqtest::RarityFor(size, radii), ++seed);
            EXPECT_EQ(PlainOf(kClosing, size, {radii, {0, 0}}, mask),
                      PlainOf(kDilation, size, {radii, {}}, mask));
            EXPECT_EQ(ThreadedOf(kClosing, processors, size, {radii, {0, 0}}, mask),
                      ThreadedOf(kDilation, processors, size, {radii, {}}, mask));
            EXPECT_EQ(ThreadedOf(kOpening, processors, size, {{0, 0}, radii}, mask),
                      ThreadedOf(kDilation, processors, size, {radii, {}}, mask));
        }
}

TEST(FastMorphology, BytesBehindAPaddedRowAreNotTouched) {
    for (const Form& form : kForms)
        for (unsigned processors : {1u, 2u, 5u, 9u}) {
            Settings settings;
            settings.UseProcessors(processors);
            auto expectPadding = [&](const Bytes& image) {
                for (int i = 0; i < 9 * 7; ++i)
                    if (i % 9 >= 5) {
                        EXPECT_EQ(image[i], 77)
                            << form.name << ", byte " << i << ", " << processors << " processors";
                    }
            };
            for (InPlace function : {form.plain, form.multiThread}) {
                Bytes image(9 * 7, 77);
                function({5, 7}, 9, image.data(), {{2, 1}, {1, 3}});
                expectPadding(image);
            }
            if (form.twoImages == nullptr) continue;
            Bytes src(6 * 7, 0), dst(9 * 7, 77);
            form.twoImages({5, 7}, 6, src.data(), 9, dst.data(), {{2, 1}, {1, 3}});
            expectPadding(dst);
            EXPECT_EQ(src, Bytes(6 * 7, 0)) << form.name;
        }
}

// ---- Thin bands ---------------------------------------------------------------------------------

// One column of pixels.
void ExpectColumn(const Form& form, unsigned processors, int radiusY, const std::string& before,
                  const std::string& after) {
    const MaskSize size = {1, static_cast<int>(before.size())};
    EXPECT_EQ(ThreadedOf(form, processors, size, {{radiusY, 0}, {}}, Drawn({before})),
              Drawn({after}))
        << form.name << ", " << processors << " processors, radius " << radiusY;
}

// Each band of one row leaves out the row behind it.
TEST(FastMorphology, BandsOfOneRowDoNotSeeTheRowBelowAtRadius1) {
    ExpectColumn(kErosion, 4, 1, "##.#", "##..");
    ExpectColumn(kErosion, 1, 1, "##.#", "#...");
    ExpectColumn(kDilation, 4, 1, "..i.", "..##");
    ExpectColumn(kDilation, 1, 1, "..i.", ".###");
}

// Bands of two rows leave out the first row behind them at radius 2, but not the second.
TEST(FastMorphology, BandsOfTwoRowsDoNotSeeTheFirstRowBelowAtRadius2) {
    ExpectColumn(kErosion, 4, 2, "##.#####", "##...###");
    ExpectColumn(kErosion, 4, 2, "###.####", "#.....##");
    ExpectColumn(kDilation, 4, 2, "..#.....", "..###...");
    ExpectColumn(kDilation, 4, 2, "...#....", ".#####..");
}

// At radius 3 they leave out two rows, so that a row sees one that is farther off.
TEST(FastMorphology, BandsOfTwoRowsDoNotSeeTwoRowsBelowAtRadius3) {
    ExpectColumn(kErosion, 4, 3, "####.###", "#.##....");
    ExpectColumn(kDilation, 4, 3, "....#...", ".#..####");
}

TEST(FastMorphology, BandsOfMoreRowsThanTheRadiusSeeAll) {
    ExpectColumn(kErosion, 4, 1, "##.#####", "#...####");
    ExpectColumn(kDilation, 4, 1, "..#.....", ".###....");
    ExpectColumn(kErosion, 2, 3, "####.###", "#.......");
}

TEST(FastMorphology, TheLastBandSeesAllHoweverThin) {
    ExpectColumn(kErosion, 2, 3, "###.#", "##...");
    ExpectColumn(kDilation, 2, 3, "..#..", "..###");
    ExpectColumn(kDilation, 2, 1, "...", "...");
    ExpectColumn(kDilation, 2, 1, ".#.", ".##");
}

TEST(FastMorphology, WithFewerRowsThanProcessorsOneBandSeesAll) {
    ExpectColumn(kErosion, 4, 1, "#.#", "...");
    ExpectColumn(kErosion, 16, 2, "###.#", "#....");
    ExpectColumn(kDilation, 16, 2, "...#.", ".####");
}

// Opening with a thin first step and a second that is not, on bands of two rows.
TEST(FastMorphology, EachStepHasTheBandsOfItsOwnRadius) {
    const MaskSize size = {1, 8};
    EXPECT_EQ(ThreadedOf(kOpening, 4, size, {{2, 0}, {1, 0}}, Drawn({"##.#####"})),
              Drawn({"###.####"}));
    EXPECT_EQ(ThreadedOf(kOpening, 4, size, {{1, 0}, {2, 0}}, Drawn({"##.#####"})),
              Drawn({"########"}));
    EXPECT_EQ(ThreadedOf(kClosing, 4, size, {{2, 0}, {1, 0}}, Drawn({"..#....."})),
              Drawn({"...#...."}));
    EXPECT_EQ(ThreadedOf(kClosing, 4, size, {{1, 0}, {2, 0}}, Drawn({"..#....."})),
              Drawn({"........"}));
}

// ---- The reference ------------------------------------------------------------------------------

// In place, in as many bands as processors.
void Reference(const Form& form, int processors, MaskSize size, int stride, uint8_t* image,
               RadiiPairs radii, size_t firstStep = 0) {
    for (size_t i = firstStep; i < form.steps.size(); ++i) {
        const Radii r = form.steps[i].second ? radii.second : radii.first;
        tqref::FastMorphInPlace(form.steps[i].step, processors, size.width, size.height, stride,
                                image, r.y, r.x);
    }
}

testing::AssertionResult PlainEqualsReference(const Form& form, MaskSize size, RadiiPairs radii,
                                              MaskContent content, uint32_t seed) {
    MaskTrial trial(size, radii.first, content, seed);
    trial.Expect(
        [&](int stride, uint8_t* image) { Reference(form, 1, size, stride, image, radii); });
    Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        const testing::AssertionResult result = trial.Run(
            form.name, [&](int stride, uint8_t* image) { form.plain(size, stride, image, radii); });
        if (!result)
            return testing::AssertionFailure()
                   << result.message() << ", plain, " << Describe(size, radii);
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult ThreadedEqualsReference(const Form& form, MaskSize size, RadiiPairs radii,
                                                 MaskContent content, uint32_t seed,
                                                 const std::vector<unsigned>& processorCounts) {
    MaskTrial trial(size, radii.first, content, seed);
    MaskPairTrial pair(size, radii.first, content, seed);
    Settings settings;
    for (unsigned processors : processorCounts) {
        settings.UseProcessors(processors);
        const int bands = static_cast<int>(processors);
        trial.Expect([&](int stride, uint8_t* image) {
            Reference(form, bands, size, stride, image, radii);
        });
        const testing::AssertionResult inPlace = trial.Run(
            form.name,
            [&](int stride, uint8_t* image) { form.multiThread(size, stride, image, radii); });
        if (!inPlace)
            return testing::AssertionFailure()
                   << inPlace.message() << ", in place, " << Describe(size, radii);
        if (form.twoImages == nullptr) continue;
        pair.Expect([&](int srcStride, const uint8_t* src, int dstStride, uint8_t* dst) {
            tqref::FastMorph(form.steps[0].step, bands, size.width, size.height, srcStride, src,
                             dstStride, dst, radii.first.y, radii.first.x);
            Reference(form, bands, size, dstStride, dst, radii, 1);
        });
        const testing::AssertionResult twoImages =
            pair.Run(form.name, [&](int srcStride, uint8_t* src, int dstStride, uint8_t* dst) {
                form.twoImages(size, srcStride, src, dstStride, dst, radii);
            });
        if (!twoImages)
            return testing::AssertionFailure()
                   << twoImages.message() << ", two images, " << Describe(size, radii);
    }
    return testing::AssertionSuccess();
}

constexpr RadiiPairs kSomeRadii[] = {{{0, 0}, {1, 1}}, {{1, 1}, {0, 0}}, {{0, 2}, {2, 0}},
                                     {{3, 0}, {1, 2}}, {{1, 3}, {2, 2}}, {{2, 1}, {2, 1}},
                                     {{4, 2}, {1, 3}}, {{1, 7}, {3, 5}}, {{15, 40}, {3, 80}}};

TEST(FastMorphology, EveryWidthEqualsTheReference) {
    uint32_t seed = 0;
    for (const Form& form : kForms)
        for (int width = 1; width <= 70; ++width)
            for (RadiiPairs radii : kSomeRadii) {
                ++seed;
                for (MaskContent content : tqtest::kMaskContents) {
                    if (form.steps.size() > 1 && content != tqtest::kMaskContents[seed % 5])
                        continue;
                    const MaskSize size = {width, 1 + static_cast<int>(seed % 13)};
                    ASSERT_TRUE(PlainEqualsReference(form, size, radii, content, seed));
                }
            }
}

TEST(FastMorphology, ImagesOfUpToFiveBySixEqualTheReferenceAtEveryRadius) {
    uint32_t seed = 1000;
    for (const Form& form : kForms)
        for (int width = 1; width <= 6; ++width)
            for (int height = 1; height <= 5; ++height)
                for (int radiusY = 0; radiusY <= 6; ++radiusY)
                    for (int radiusX = 0; radiusX <= 7; ++radiusX) {
                        ++seed;
                        const RadiiPairs radii = {{radiusY, radiusX},
                                                  {radiusX * 5 % 7, radiusY * 3 % 8}};
                        const MaskContent content = tqtest::kMaskContents[seed % 5];
                        ASSERT_TRUE(
                            PlainEqualsReference(form, {width, height}, radii, content, seed));
                        ASSERT_TRUE(ThreadedEqualsReference(form, {width, height}, radii, content,
                                                            seed, {1 + seed % 6}));
                    }
}

TEST(FastMorphology, LargeRadiiEqualTheReference) {
    uint32_t seed = 2000;
    for (const Form& form : kForms)
        for (RadiiPairs radii : {RadiiPairs{{10, 12}, {5, 30}},
                                 {{40, 1}, {3, 3}},
                                 {{1, 25}, {31, 0}},
                                 {{14, 52}, {14, 53}},
                                 {{31, 54}, {2, 2}},
                                 {{300, 300}, {0, 1}}})
            for (MaskContent content : tqtest::kMaskContents) {
                const MaskSize size = {53, 31};
                ASSERT_TRUE(PlainEqualsReference(form, size, radii, content, ++seed));
                ASSERT_TRUE(
                    ThreadedEqualsReference(form, size, radii, content, seed, {1 + seed % 7}));
            }
}

TEST(FastMorphology, RadiiUpToTheLargestNumberEqualTheReference) {
    uint32_t seed = 2500;
    for (const Form& form : kForms)
        for (RadiiPairs radii : {RadiiPairs{{kMost, 1}, {1, kMost}},
                                 {{1, kMost}, {kMost, 1}},
                                 {{kMost, kMost}, {0, 1}},
                                 {{1 << 30, 1 << 30}, {1, 0}},
                                 {{kMost / 2, 2}, {kMost - 1, 3}},
                                 {{2, 70000}, {70000, 2}}})
            for (MaskSize size : {MaskSize{1, 1}, {1, 9}, {13, 1}, {24, 11}}) {
                const MaskContent content = tqtest::kMaskContents[++seed % 5];
                ASSERT_TRUE(PlainEqualsReference(form, size, radii, content, seed));
                ASSERT_TRUE(
                    ThreadedEqualsReference(form, size, radii, content, seed, {1, 2, 3, 5, 16}));
            }
}

// Bands thinner than the radius, as thick, and thicker.
TEST(FastMorphology, EveryProcessorCountEqualsTheReference) {
    std::vector<unsigned> counts;
    for (unsigned processors = 1; processors <= 16; ++processors) counts.push_back(processors);
    uint32_t seed = 3000;
    for (const Form& form : kForms)
        for (int height = 1; height <= 40; ++height)
            for (RadiiPairs radii : {RadiiPairs{{0, 0}, {2, 0}},
                                     {{1, 2}, {3, 1}},
                                     {{2, 1}, {1, 1}},
                                     {{3, 0}, {5, 2}},
                                     {{5, 1}, {0, 3}},
                                     {{9, 1}, {2, 1}},
                                     {{17, 3}, {6, 0}},
                                     {{45, 2}, {1, 4}}}) {
                ++seed;
                if (form.steps.size() > 1 ? seed % 7 != 0 : (seed + height) % 2 != 0) continue;
                const MaskContent content = tqtest::kMaskContents[seed % 5];
                const int width = 7 + static_cast<int>(seed % 19);
                ASSERT_TRUE(
                    ThreadedEqualsReference(form, {width, height}, radii, content, seed, counts));
            }
}

TEST(FastMorphology, WhereEveryBandHasMoreRowsThanTheRadiusTheBytesAreThoseOfThePlainForm) {
    uint32_t seed = 3500;
    int compared = 0;
    for (const Form& form : kForms)
        for (int height = 1; height <= 40; height += 3)
            for (int processors = 1; processors <= 16; ++processors)
                for (int radiusY : {0, 1, 3, 7}) {
                    const int band = height / processors;
                    if (band != 0 && band <= radiusY) continue;
                    const MaskSize size = {17, height};
                    const RadiiPairs radii = {{radiusY, 2}, {radiusY / 2, 1}};
                    Bytes mask(17 * static_cast<size_t>(height));
                    tqtest::FillMask(mask.data(), mask.size(), tqtest::kMaskContents[seed % 5],
                                     tqtest::RarityFor(size, radii.first), seed);
                    ++seed;
                    ++compared;
                    ASSERT_EQ(
                        ThreadedOf(form, static_cast<unsigned>(processors), size, radii, mask),
                        PlainOf(form, size, radii, mask))
                        << form.name << ", " << processors << " processors, "
                        << Describe(size, radii);
                }
    EXPECT_GT(compared, 500);
}

// Windows that end in any bit of a word and reach over several, in rows that do so too.
TEST(FastMorphology, EveryHorizontalRadiusEqualsTheReference) {
    uint32_t seed = 3600;
    for (int radiusX = 0; radiusX <= 135; ++radiusX)
        for (int width : {1, 17, 63, 64, 65, 128, 131, 256, 257, 300}) {
            const MaskContent content = tqtest::kMaskContents[++seed % 5];
            for (const Form* form : {&kErosion, &kDilation})
                ASSERT_TRUE(PlainEqualsReference(*form, {width, 1 + radiusX % 2},
                                                 {{radiusX % 3, radiusX}, {}}, content, seed));
        }
}

TEST(FastMorphology, EveryVerticalRadiusEqualsTheReference) {
    uint32_t seed = 3700;
    for (int radiusY = 0; radiusY <= 70; ++radiusY)
        for (int height : {1, 2, 30, 61}) {
            const MaskContent content = tqtest::kMaskContents[++seed % 5];
            for (const Form* form : {&kErosion, &kDilation}) {
                const MaskSize size = {9, height};
                const RadiiPairs radii = {{radiusY, radiusY % 3}, {}};
                ASSERT_TRUE(PlainEqualsReference(*form, size, radii, content, seed));
                ASSERT_TRUE(ThreadedEqualsReference(*form, size, radii, content, seed, {2, 4}));
            }
        }
}

// A window is the columns' window over the rows' window, which a large image can afford.
void LargeReference(MorphStep step, int processors, MaskSize size, int stride, uint8_t* image,
                    Radii radii) {
    tqref::FastMorphInPlace(step, processors, size.width, size.height, stride, image, radii.y, 0);
    tqref::FastMorphInPlace(step, 1, size.width, size.height, stride, image, 0, radii.x);
}

TEST(FastMorphology, ALargeImageEqualsTheReference) {
    constexpr MaskSize kSize = {403, 251};
    Settings settings;
    uint32_t seed = 3800;
    for (const Form* form : {&kErosion, &kDilation})
        for (Radii radii : {Radii{5, 5}, {25, 25}, {100, 100}, {3, 200}}) {
            const MaskContent content =
                form == &kErosion ? MaskContent::kHoles : MaskContent::kSpecks;
            MaskTrial trial(kSize, radii, content, ++seed);
            const MorphStep step = form->steps[0].step;
            trial.Expect([&](int stride, uint8_t* image) {
                LargeReference(step, 1, kSize, stride, image, radii);
            });
            for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                settings.Use(level);
                ASSERT_TRUE(trial.Run(form->name, [&](int stride, uint8_t* image) {
                    form->plain(kSize, stride, image, {radii, {}});
                })) << Describe(kSize, {radii, {}});
            }
            for (int processors : {2, 16}) {
                settings.UseProcessors(static_cast<unsigned>(processors));
                trial.Expect([&](int stride, uint8_t* image) {
                    LargeReference(step, processors, kSize, stride, image, radii);
                });
                ASSERT_TRUE(trial.Run(form->name, [&](int stride, uint8_t* image) {
                    form->multiThread(kSize, stride, image, {radii, {}});
                })) << Describe(kSize, {radii, {}});
            }
        }
}

TEST(FastMorphology, MemoryUsedBeforeLeavesNoTrace) {
    uint32_t seed = 4000;
    for (const Form& form : kForms)
        for (RadiiPairs radii :
             {RadiiPairs{{1, 1}, {2, 3}}, {{2, 3}, {1, 1}}, {{6, 0}, {0, 2}}, {{20, 40}, {1, 0}}})
            for (MaskContent content : tqtest::kMaskContents) {
                const MaskSize size = {33, 14};
                tqtest::FillFreedBuffers(6);
                ASSERT_TRUE(PlainEqualsReference(form, size, radii, content, ++seed));
                for (unsigned processors : {1u, 2u, 5u}) {
                    tqtest::FillFreedBuffers(18);
                    ASSERT_TRUE(
                        ThreadedEqualsReference(form, size, radii, content, seed, {processors}));
                }
            }
}

TEST(FastMorphology, BuffersGoBackToTheSharedManager) {
    constexpr MaskSize kSize = {1024, 900};
    Settings settings;
    settings.UseProcessors(2);
    Bytes image(size_t{1024} * 900, 255), dst(size_t{1024} * 900);
    const std::set<unsigned char*> before = tqtest::FreeBuffers();
    for (const Form& form : kForms) {
        for (InPlace function : {form.plain, form.multiThread}) {
            for (int i = 0; i < 5; ++i) function(kSize, 1024, image.data(), {{1, 2}, {2, 1}});
            EXPECT_EQ(tqtest::FreeBuffers(), before) << form.name;
        }
        if (form.twoImages == nullptr) continue;
        for (int i = 0; i < 5; ++i)
            form.twoImages(kSize, 1024, image.data(), 1024, dst.data(), {{1, 2}, {2, 1}});
        EXPECT_EQ(tqtest::FreeBuffers(), before) << form.name << ", two images";
    }
}

TEST(FastMorphology, ASourceStrideOf0RepeatsOneRow) {
    Settings settings;
    for (const Form& form : kForms) {
        if (form.twoImages == nullptr) continue;
        Bytes row(23), rows, dst(23 * 9, 9);
        tqtest::FillMask(row.data(), row.size(), MaskContent::kNoise, 2, 17);
        for (int y = 0; y < 9; ++y) rows.insert(rows.end(), row.begin(), row.end());
        for (unsigned processors : {1u, 3u, 9u}) {
            settings.UseProcessors(processors);
            form.twoImages({23, 9}, 0, row.data(), 23, dst.data(), {{2, 1}, {1, 2}});
            EXPECT_EQ(dst, ThreadedOf(form, processors, {23, 9}, {{2, 1}, {1, 2}}, rows))
                << form.name << ", " << processors << " processors";
        }
    }
}

// They go through an image of their own.
TEST(FastMorphology, CompositionsOfTwoImagesMayWorkOnOne) {
    Settings settings;
    for (const Form* form : {&kOpening, &kClosing})
        for (unsigned processors : {1u, 2u, 4u, 9u}) {
            settings.UseProcessors(processors);
            Bytes mask(31 * 19);
            tqtest::FillMask(mask.data(), mask.size(), MaskContent::kNoise, 2, processors);
            Bytes image = mask;
            form->twoImages({29, 19}, 31, image.data(), 31, image.data(), {{1, 0}, {1, 2}});
            form->multiThread({29, 19}, 31, mask.data(), {{1, 0}, {1, 2}});
            EXPECT_EQ(image, mask) << form->name << ", " << processors << " processors";
        }
}

// ---- Bad arguments ------------------------------------------------------------------------------

TEST(FastMorphology, SizesBelowOneTouchNothing) {
    tqtest::Forbidden forbidden;
    for (const Form& form : kForms)
        for (unsigned processors : {1u, 2u, 8u}) {
            Settings settings;
            settings.UseProcessors(processors);
            for (auto [width, height] : {std::pair{0, 5},
                                         {5, 0},
                                         {0, 0},
                                         {-1, 5},
                                         {5, -1},
                                         {-3, -7},
                                         {0, -9},
                                         {kLeast, 5},
                                         {5, kLeast},
                                         {kLeast, kLeast}})
                for (Radii radii : {Radii{0, 0}, {1, 2}, {20, 20}, {kMost, kMost}})
                    for (unsigned char* pointer : {static_cast<unsigned char*>(forbidden.Pointer()),
                                                   static_cast<unsigned char*>(nullptr)}) {
                        const MaskSize size = {width, height};
                        form.plain(size, 16, pointer, {radii, radii});
                        form.multiThread(size, 16, pointer, {radii, radii});
                        if (form.twoImages != nullptr)
                            form.twoImages(size, 16, pointer, 16, pointer, {radii, radii});
                    }
        }
}

// Their windows hold no pixel: all of none are set, and not any.
TEST(FastMorphology, ANegativeRadiusMakesErosionFillAndDilationClear) {
    for (Radii radii : {Radii{-1, 0}, {0, -1}, {-1, -1}, {kLeast, kLeast}}) {
        ExpectMask(kErosion, {3, 2}, {radii, {}}, {0, 1, 200, 255, 0, 7}, Bytes(6, 255));
        ExpectMask(kDilation, {3, 2}, {radii, {}}, {0, 1, 200, 255, 0, 7}, Bytes(6, 0));
    }
}

TEST(FastMorphology, NegativeRadiiEqualTheReference) {
    uint32_t seed = 5000;
    for (const Form& form : kForms)
        for (Radii radii : tqtest::kNegativeRadii)
            for (MaskSize size : {MaskSize{6, 5}, {1, 1}, {23, 9}}) {
                const RadiiPairs pairs = {radii, seed % 2 == 0 ? Radii{1, 1} : Radii{radii.x, 1}};
                const MaskContent content = tqtest::kMaskContents[++seed % 5];
                ASSERT_TRUE(PlainEqualsReference(form, size, pairs, content, seed));
                ASSERT_TRUE(
                    ThreadedEqualsReference(form, size, pairs, content, seed, {1, 2, 5, 16}));
            }
}

// ---- Tasks --------------------------------------------------------------------------------------

template <class Task> void ExpectFieldsInOrder() {
    static_assert(std::is_base_of_v<CTQIPLTaskBase, Task>);
    static_assert(std::is_same_v<decltype(Task::m_nWidth), int>);
    static_assert(std::is_same_v<decltype(Task::m_nHeight), int>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pSrc), unsigned char*>);
    static_assert(std::is_same_v<decltype(Task::m_nDstStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pDst), unsigned char*>);
    static_assert(std::is_same_v<decltype(Task::m_nFirstRow), int>);
    static_assert(std::is_same_v<decltype(Task::m_nRows), int>);
    static_assert(std::is_same_v<decltype(Task::m_nRadiusY), int>);
    static_assert(std::is_same_v<decltype(Task::m_nRadiusX), int>);
    const Task task;
    const void* const fields[] = {
        &task,         &task.m_nWidth,     &task.m_nHeight, &task.m_nSrcStride,
        &task.m_pSrc,  &task.m_nDstStride, &task.m_pDst,    &task.m_nFirstRow,
        &task.m_nRows, &task.m_nRadiusY,   &task.m_nRadiusX};
    tqtest::ExpectAddressesRise(fields);
}

TEST(FastMorphology, TaskFieldsStandInOrder) {
    ExpectFieldsInOrder<CZFErosion_Task>();
    ExpectFieldsInOrder<CZFDilation_Task>();
}

// Every band of an image of 19 x 11, also such as no processor count makes.
template <class Task> void ExpectTaskEqualsReference(MorphStep step) {
    constexpr int kWidth = 19, kHeight = 11;
    Settings settings;
    uint32_t seed = 0;
    for (Radii radii : {Radii{0, 0}, {1, 1}, {2, 3}, {4, 0}, {6, 25}, {12, 2}})
        for (int firstRow = 0; firstRow < kHeight; ++firstRow)
            for (int rows = 0; rows <= kHeight - firstRow; ++rows)
                for (MaskContent content : {MaskContent::kHoles, MaskContent::kSpecks}) {
                    tqtest::GuardedImage src(kWidth, kHeight, tqtest::MaskLayout(++seed));
                    tqtest::GuardedImage dst(kWidth, kHeight, tqtest::MaskLayout(seed / 4));
                    tqtest::FillMask(src.Memory(), src.Size(), content,
                                     tqtest::RarityFor({kWidth, kHeight}, radii), seed);
                    tqtest::FillMask(dst.Memory(), dst.Size(), MaskContent::kNoise, 2, seed + 1);
                    const Bytes srcBefore = src.Copy();
                    Bytes expected = dst.Copy();
                    tqref::FastBand(step, kWidth, kHeight, src.Stride(), src.First(), dst.Stride(),
                                    expected.data() + (dst.Row(firstRow) - dst.Memory()), firstRow,
                                    rows, radii.y, radii.x);
                    Task task;
                    task.m_nWidth = kWidth;
                    task.m_nHeight = kHeight;
                    task.m_nSrcStride = src.Stride();
                    task.m_pSrc = src.First();
                    task.m_nDstStride = dst.Stride();
                    task.m_pDst = dst.Row(firstRow);
                    task.m_nFirstRow = firstRow;
                    task.m_nRows = rows;
                    task.m_nRadiusY = radii.y;
                    task.m_nRadiusX = radii.x;
                    CTQIPLTaskBase& base = task;
                    ASSERT_EQ(base.Run(), 1);
                    ASSERT_TRUE(tqtest::SameMemory("destination", dst, expected))
                        << "rows " << firstRow << " to " << firstRow + rows << ", "
                        << tqtest::Describe({kWidth, kHeight}, radii);
                    ASSERT_TRUE(tqtest::SameMemory("source", src, srcBefore));
                }
}

TEST(FastMorphology, AnErosionTaskWritesItsRowsAndReturns1) {
    ExpectTaskEqualsReference<CZFErosion_Task>(kErode);
}

TEST(FastMorphology, ADilationTaskWritesItsRowsAndReturns1) {
    ExpectTaskEqualsReference<CZFDilation_Task>(kDilate);
}

// ---- Several host threads -----------------------------------------------------------------------

TEST(FastMorphology, SeveralThreadsWorkOnDifferentImagesAtOnce) {
    Settings settings;
    settings.UseProcessors(4);
    std::vector<std::thread> hosts;
    int wrong[4] = {};
    for (int host = 0; host < 4; ++host)
        hosts.emplace_back([host, &wrong] {
            for (uint32_t i = 0; i < 25; ++i) {
                const Form& form = kForms[(host + i) % kForms.size()];
                const MaskSize size = {40 + host, 30};
                const RadiiPairs radii = {{1 + static_cast<int>(i % 9), 2}, {3, 1}};
                MaskTrial trial(size, radii.first, tqtest::kMaskContents[i % 5], 100 * host + i);
                for (int processors : {1, 4}) {
                    trial.Expect([&](int stride, uint8_t* image) {
                        Reference(form, processors, size, stride, image, radii);
                    });
                    const InPlace function = processors == 1 ? form.plain : form.multiThread;
                    if (!trial.Run(form.name, [&](int stride, uint8_t* image) {
                            function(size, stride, image, radii);
                        }))
                        ++wrong[host];
                }
            }
        });
    for (std::thread& thread : hosts) thread.join();
    for (int host = 0; host < 4; ++host) EXPECT_EQ(wrong[host], 0) << "host " << host;
}

}  // namespace
