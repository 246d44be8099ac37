// Confirmation by a guide and growth under a guide: masks known by hand, references, bands, tasks.

#include <gtest/gtest.h>
#include <tqipl/labelling.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "morph/labelling_tasks.h"
#include "reference/labelling_reference.h"
#include "reference/seed_growth_reference.h"
#include "support/deadline.h"
#include "support/latch.h"
#include "support/mask_pictures.h"
#include "support/settings.h"

namespace {

using tqtest::Deadline;
using tqtest::Noise;
using tqtest::OnPoolThread;
using tqtest::Picture;
using tqtest::PlacedPicture;
using tqtest::Placement;
using tqtest::Settings;

struct Form {
    const char* name;
    void (*function)(unsigned int width, unsigned int height, unsigned int guideStride,
                     unsigned char* guide, unsigned int maskStride, unsigned char* mask,
                     unsigned int threshold);
    void (*reference)(const tqref::Mask& guide, const tqref::Mask& mask, int64_t threshold);
};
constexpr Form kConfirm = {"IPL_FCCDeNoiseAndGrowth", IPL_FCCDeNoiseAndGrowth,
                           tqref::KeepConfirmed};
constexpr Form kGrow = {"IPL_FCCDeNoiseAndGrowth2", IPL_FCCDeNoiseAndGrowth2,
                        tqref::FillSmallAndGrow};
constexpr Form kGrowBands = {"IPL_FCCDeNoiseAndGrowth2_MultiThread",
                             IPL_FCCDeNoiseAndGrowth2_MultiThread, tqref::FillSmallAndGrow};
constexpr Form kForms[] = {kConfirm, kGrow, kGrowBands};
constexpr Form kGrowing[] = {kGrow, kGrowBands};

Picture Clean(const Form& form, Picture guide, Picture mask, unsigned threshold) {
    const Picture before = guide;
    const auto width = static_cast<unsigned>(mask.width);
    form.function(width, static_cast<unsigned>(mask.height), width, guide.pixels.data(), width,
                  mask.pixels.data(), threshold);
    EXPECT_EQ(guide, before) << form.name;
    return mask;
}

Picture Modelled(const Form& form, Picture guide, Picture mask, unsigned threshold) {
    form.reference(guide.View(), mask.View(), threshold);
    return mask;
}

// ---- Confirmation ---------------------------------------------------------------------------

TEST(Confirmation, KeepsARegionUnderALargeRegionOfTheGuide) {
    const Picture mask = {"..###", "..#..", "###.."};
    const Picture guide = {".####", "..###", "#####"};
    EXPECT_EQ(Clean(kConfirm, guide, mask, 2), (Picture{"..###", "..###", "#####"}));
    EXPECT_EQ(Clean(kConfirm, guide, mask, 0), (Picture{"..###", "..###", "#####"}));
}

TEST(Confirmation, OnlyTheRootRunOfTheGuideCounts) {
    const Picture guide = {"#..##", "#..##", "#...."};
    const Picture without = {"#####", "#####", "#...."};
    EXPECT_EQ(Clean(kConfirm, guide, without, 3), Picture(5, 3, 255));
    // The guide's second run lies on the mask's, its root run on nothing.
    const Picture second = {"#####", "#..##", "#...."};
    EXPECT_EQ(Clean(kConfirm, guide, second, 3), Picture(5, 3, 255));
    const Picture first = {"##.##", "##.##", "#...."};
    EXPECT_EQ(Clean(kConfirm, guide, first, 3), first);
}

TEST(Confirmation, TheRootOfTheGuideIsTheOneThatTheLeftArmKeeps) {
    // The arm on the right was first, but the root is the left one's run in the second row.
    const Picture guide = {"####.", ".###.", "....."};
    const Picture right = {"####.", "####.", "#####"};
    EXPECT_EQ(Clean(kConfirm, guide, right, 0), Picture(5, 3, 255));
    const Picture left = {"#####", ".####", "#####"};
    EXPECT_EQ(Clean(kConfirm, guide, left, 0), left);
}

TEST(Confirmation, RunsThatLieSideBySideTouch) {
    const Picture guide = {"##..##"};
    EXPECT_EQ(Clean(kConfirm, guide, {".#####"}, 0), Picture(6, 1, 255));
    EXPECT_EQ(Clean(kConfirm, guide, {"#.####"}, 0), (Picture{"#.####"}));
    EXPECT_EQ(Clean(kConfirm, guide, {"####.#"}, 0), (Picture{"####.#"}));
    EXPECT_EQ(Clean(kConfirm, guide, {"#####."}, 0), Picture(6, 1, 255));
    // Rows above and below do not.
    const Picture low = {"######", "##..##", "######"};
    EXPECT_EQ(Clean(kConfirm, low, {"##..##", "######", "######"}, 0), Picture(6, 3, 255));
    EXPECT_EQ(Clean(kConfirm, low, {"######", "######", "##..##"}, 0), Picture(6, 3, 255));
    EXPECT_EQ(Clean(kConfirm, low, {"######", "###..#", "###..#"}, 0),
              (Picture{"######", "###..#", "###..#"}));
}

TEST(Confirmation, AnyRunOfTheMasksRegionCanBeTouched) {
    const Picture guide = {"#####", "#####", "...##"};
    const Picture mask = {"##..#", "#.###", ".####"};
    EXPECT_EQ(Clean(kConfirm, guide, mask, 2), mask);
}

TEST(Confirmation, EachGuideRegionConfirmsOneRegionAtMost) {
    EXPECT_EQ(Clean(kConfirm, {"....."}, {".#.#."}, 4), (Picture{".####"}));
    EXPECT_EQ(Clean(kConfirm, {".....", "#####", "....."}, {".#.#.", "#####", ".#.#."}, 4),
              (Picture{".####", "#####", ".####"}));
}

TEST(Confirmation, AConfirmedRegionLeavesTheNextOneToTheNextGuideRegion) {
    // The guide's second run lies beside the mask's first one too.
    EXPECT_EQ(Clean(kConfirm, {"..#..#"}, {"...#.#"}, 0), (Picture{"...#.#"}));
    EXPECT_EQ(Clean(kConfirm, {"..####"}, {"...#.#"}, 0), (Picture{"...###"}));
}

TEST(Confirmation, AThresholdOfTheLargestGuideRegionConfirmsNothing) {
    const Picture guide = {"..#..", "..#.."};
    const Picture mask = {".....", "##.##"};
    EXPECT_EQ(Clean(kConfirm, guide, mask, 3), mask);
    for (unsigned threshold : {4u, 5u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_EQ(Clean(kConfirm, guide, mask, threshold), Picture(5, 2, 255)) << threshold;
}

TEST(Confirmation, MaskRegionsOfAnySizeAreKept) {
    EXPECT_EQ(Clean(kConfirm, {"....."}, {"##.##"}, 4), (Picture{"##.##"}));
}

TEST(Confirmation, OtherValuesAreBackgroundAndKept) {
    Picture mask(5, 1), guide(5, 1), expected(5, 1);
    mask.pixels = {0, 7, 0, 254, 0};
    guide.pixels = {9, 9, 9, 1, 0};
    expected.pixels = {255, 7, 255, 254, 0};
    EXPECT_EQ(Clean(kConfirm, guide, mask, 0), expected);
    guide.pixels = {9, 9, 0, 0, 0};
    expected.pixels = {255, 7, 0, 254, 255};
    EXPECT_EQ(Clean(kConfirm, guide, mask, 2), expected);
}

TEST(Confirmation, EqualsTheReferenceForEverySmallPair) {
    // All pairs of masks of two rows of four.
    for (uint32_t bits = 0; bits < 1u << 16; ++bits) {
        const Picture guide = tqtest::SmallPicture(4, 2, bits & 255);
        const Picture mask = tqtest::SmallPicture(4, 2, bits >> 8);
        const unsigned threshold = bits * 2654435761u >> 30;
        ASSERT_EQ(Clean(kConfirm, guide, mask, threshold),
                  Modelled(kConfirm, guide, mask, threshold))
            << threshold << "\n"
            << testing::PrintToString(guide) << testing::PrintToString(mask);
    }
}

// ---- Growth ---------------------------------------------------------------------------------

// The growing forms, the one in bands at several processor counts.
void ExpectGrown(const Picture& guide, const Picture& mask, unsigned threshold,
                 const Picture& expected) {
    EXPECT_EQ(Clean(kGrow, guide, mask, threshold), expected);
    Settings settings;
    for (unsigned processors : {2u, 3u, 8u}) {
        settings.UseProcessors(processors);
        EXPECT_EQ(Clean(kGrowBands, guide, mask, threshold), expected) << processors;
    }
}

TEST(Growth, SpreadsToAllEightNeighboursWhereTheGuideIsZero) {
    const Picture mask = {"#####", "#####", "##.##", "#####", "#####"};
    ExpectGrown({"#####", "#...#", "#.#.#", "#...#", "#####"}, mask, 0,
                {"#####", "#...#", "#...#", "#...#", "#####"});
    for (int y = 1; y <= 3; ++y)
        for (int x = 1; x <= 3; ++x) {
            Picture guide(5, 5, 255), expected = mask;
            guide.At(x, y) = expected.At(x, y) = 0;
            ExpectGrown(guide, mask, 0, expected);
        }
}

TEST(Growth, RunsOnAsFarAsTheGuideGoes) {
    ExpectGrown({"#########", "#.......#", "#######.#", "#.....#.#", "#.###.#.#", "#.#...#.#",
                 "#.#####.#", "#.......#", "#########"},
                {"#########", "#.#######", "#########", "#########", "#########", "#########",
                 "#########", "#########", "#########"},
                0,
                {"#########", "#.......#", "#######.#", "#.....#.#", "#.###.#.#", "#.#...#.#",
                 "#.#####.#", "#.......#", "#########"});
}

TEST(Growth, OnlyTheEndsOfARunAreSeeds) {
    const Picture mask = {"#######", "#######", "#.....#", "#######", "#######"};
    ExpectGrown({"#######", "###.###", "#######", "#######", "#######"}, mask, 0, mask);
    ExpectGrown({"#######", "#######", "#######", "###.###", "#######"}, mask, 0, mask);
    // Around from an end it is reached.
    ExpectGrown({"#######", "##..###", "#######", "#######", "#######"}, mask, 0,
                {"#######", "##..###", "#.....#", "#######", "#######"});
    ExpectGrown({"#######", "###..##", "#######", "#######", "#######"}, mask, 0,
                {"#######", "###..##", "#.....#", "#######", "#######"});
}

TEST(Growth, EveryRunOfARegionHasSeeds) {
    const Picture mask = {"######", "##.###", "##.###", "##.###", "######"};
    ExpectGrown({"######", "#.####", "######", "###.##", "######"}, mask, 0,
                {"######", "#..###", "##.###", "##..##", "######"});
}

TEST(Growth, NothingGrowsFromTheBorder) {
    const Picture zeros(5, 4);
    for (const Picture& mask :
         {Picture{".####", "#####", "#####", "#####"}, Picture{"..###", "#####", "#####", "#####"},
          Picture{"#####", ".####", ".####", "#####"}, Picture{"#####", "####.", "####.", "#####"},
          Picture{"#####", "#####", "#####", "#...#"}, Picture{".....", "#####", "#####", "#####"}})
        ExpectGrown(zeros, mask, 0, mask);
    // A run from the border inward has one seed that grows.
    ExpectGrown({"#####", "#####", "##.##", "#####"}, {"#####", "..###", "#####", "#####"}, 0,
                {"#####", "..###", "##.##", "#####"});
}

TEST(Growth, PixelsOnTheBorderArePaintedButDoNotSpread) {
    ExpectGrown({"##....", "######", "######", "######"}, {"######", "#.####", "######", "######"},
                0, {"##.###", "#.####", "######", "######"});
    ExpectGrown({"######", ".#####", ".#####", ".#####", "######"},
                {"######", "######", "#.####", "######", "######"}, 0,
                {"######", ".#####", "..####", ".#####", "######"});
    // All around: inner pixels spread, border pixels only end it.
    ExpectGrown(Picture(6, 4), {"######", "#.####", "######", "######"}, 0, Picture(6, 4));
    ExpectGrown({"...", "...", "..."}, {"###", "#.#", "###"}, 0, Picture(3, 3));
    ExpectGrown({"....", "#.##", "####"}, {"####", "#.##", "####"}, 0, {"...#", "#.##", "####"});
}

TEST(Growth, ImagesBelowThreeRowsOrColumnsOnlyLoseSmallRegions) {
    ExpectGrown(Picture(6, 2), {"..##.#", "######"}, 1, {"..####", "######"});
    ExpectGrown(Picture(2, 5), {"#.", "#.", "##", "##", ".#"}, 1, {"#.", "#.", "##", "##", "##"});
    ExpectGrown(Picture(1, 1), Picture(1, 1), 0, Picture(1, 1));
    ExpectGrown(Picture(1, 1), Picture(1, 1), 1, Picture(1, 1, 255));
    ExpectGrown(Picture(1, 1), Picture(1, 1, 255), 0, Picture(1, 1, 255));
    ExpectGrown(Picture(5, 1), {".##.."}, 1, {"###.."});
}

TEST(Growth, SmallRegionsAreFilledAndCanBeGrownOver) {
    // The single pixel is filled, and painted again from the pair.
    ExpectGrown({"#######", "#.....#", "#######"}, {"#######", "#..##.#", "#######"}, 1,
                {"#######", "#.....#", "#######"});
    ExpectGrown({"#######", "#...#.#", "#######"}, {"#######", "#..##.#", "#######"}, 1,
                {"#######", "#...###", "#######"});
    ExpectGrown({"#######", "#.....#", "#######"}, {"#######", "#..##.#", "#######"}, 2,
                Picture(7, 3, 255));
}

TEST(Growth, TheThresholdIsUnsigned) {
    const Picture mask = {"####", "#..#", "####"};
    ExpectGrown(Picture(4, 3, 255), mask, 0, mask);
    ExpectGrown(Picture(4, 3, 255), mask, 1, mask);
    for (unsigned threshold : {2u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        ExpectGrown(Picture(4, 3), mask, threshold, Picture(4, 3, 255));
}

TEST(Growth, OtherMaskValuesDoNotGrowAndOtherGuideValuesDoNotGuide) {
    Picture mask(5, 3, 255), guide(5, 3), expected;
    mask.pixels = {255, 254, 255, 1, 255, 255, 0, 128, 255, 255, 255, 255, 255, 255, 255};
    guide.pixels = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 254, 255, 255};
    expected = mask;
    // From (1, 1): (0, 0), (2, 0), (0, 1) and (0, 2); (2, 1) and (2, 2) stop the rest.
    expected.pixels = {0, 254, 0, 1, 255, 0, 0, 128, 255, 255, 0, 255, 255, 255, 255};
    ExpectGrown(guide, mask, 0, expected);
}

TEST(Growth, AtOneProcessorTheBandsLeaveTheMask) {
    Settings settings;
    settings.UseProcessors(1);
    for (const Picture& mask : tqtest::Patterns(20, 9, 5))
        for (unsigned threshold : {0u, 1u, 9u, UINT_MAX})
            EXPECT_EQ(Clean(kGrowBands, Picture(20, 9), mask, threshold), mask);
}

// ---- Every form -----------------------------------------------------------------------------

TEST(GuidedForms, BadArgumentsLeaveTheMask) {
    Settings settings;
    const Picture before = {"#.#", "#.#", "###"};
    for (unsigned processors : {1u, 2u, 9u})
        for (const Form& form : kForms) {
            settings.UseProcessors(processors);
            Picture mask = before, guide(3, 3, 255);
            uint8_t* m = mask.pixels.data();
            uint8_t* g = guide.pixels.data();
            form.function(0, 3, 3, g, 3, m, 9);
            form.function(3, 0, 3, g, 3, m, 9);
            form.function(3, 3, 3, nullptr, 3, m, 9);
            form.function(3, 3, 3, g, 3, nullptr, 9);
            form.function(0, 0, 0, nullptr, 0, nullptr, 0);
            form.function(0x80000000u, 3, 3, g, 3, m, 9);
            form.function(3, 0x80000000u, 3, g, 3, m, 9);
            form.function(UINT_MAX, UINT_MAX, 3, g, 3, m, 9);
            EXPECT_EQ(mask, before) << form.name;
        }
}

TEST(GuidedForms, StridesOfZeroAreNotLookedAt) {
    Settings settings;
    settings.UseProcessors(2);
    // One row of the guide stands for all.
    Picture mask = {"######", "#.####", "######", "######"}, guide = {"##..##"};
    for (const Form& form : kGrowing) {
        Picture grown = mask;
        form.function(6, 4, 0, guide.pixels.data(), 6, grown.pixels.data(), 0);
        EXPECT_EQ(grown, (Picture{"##..##", "#...##", "##..##", "##..##"})) << form.name;
    }
    Picture kept = {"##.###", ".#####"};
    IPL_FCCDeNoiseAndGrowth(6, 2, 0, guide.pixels.data(), 6, kept.pixels.data(), 3);
    EXPECT_EQ(kept, (Picture{"##.###", "######"}));
    Picture single = {"#.#.##"};
    IPL_FCCDeNoiseAndGrowth(6, 1, 0, guide.pixels.data(), 0, single.pixels.data(), 1);
    EXPECT_EQ(single, (Picture{"#.####"}));
    for (const Form& form : kGrowing) {
        Picture row = {"#..#.#"};
        form.function(6, 1, 0, guide.pixels.data(), 0, row.pixels.data(), 1);
        EXPECT_EQ(row, (Picture{"#..###"})) << form.name;
    }
}

// A guide that leaves room to grow, and a mask.
struct Pair {
    Picture guide, mask;
};
std::vector<Pair> Pairs(int width, int height, uint32_t seed) {
    std::vector<Pair> pairs;
    for (int guidePercent : {5, 30, 55, 80})
        for (int maskPercent : {40, 80, 97}) {
            seed += 17;
            pairs.push_back({tqtest::NoisePicture(width, height, guidePercent, seed),
                             tqtest::NoisePicture(width, height, maskPercent, seed + 1)});
        }
    const std::vector<Picture> patterns = tqtest::Patterns(width, height, seed);
    for (size_t i = 0; i < patterns.size(); ++i) {
        pairs.push_back({patterns[i], patterns[(i * 7 + 3) % patterns.size()]});
        pairs.push_back({patterns[i], tqtest::NoisePicture(width, height, 96, seed)});
    }
    // Some pixels of neither kind.
    Noise noise(seed);
    for (size_t i = 0; i < pairs.size(); i += 2)
        for (Picture* picture : {&pairs[i].guide, &pairs[i].mask})
            for (uint8_t& pixel : picture->pixels)
                if (noise.Below(20) == 0) pixel = static_cast<uint8_t>(1 + noise.Below(254));
    return pairs;
}

TEST(GuidedForms, EqualTheReferencesAtEveryProcessorCount) {
    Settings settings;
    Deadline deadline;
    uint32_t seed = 0;
    for (auto [width, height] :
         {std::pair{1, 1}, {2, 9}, {9, 2}, {3, 3}, {14, 16}, {33, 17}, {60, 41}})
        for (const Pair& pair : Pairs(width, height, ++seed * 999)) {
            const unsigned threshold = ++seed % 7;
            ASSERT_EQ(Clean(kConfirm, pair.guide, pair.mask, threshold),
                      Modelled(kConfirm, pair.guide, pair.mask, threshold))
                << threshold << "\n"
                << testing::PrintToString(pair.guide) << testing::PrintToString(pair.mask);
            const Picture grown = Modelled(kGrow, pair.guide, pair.mask, threshold);
            ASSERT_EQ(Clean(kGrow, pair.guide, pair.mask, threshold), grown)
                << threshold << "\n"
                << testing::PrintToString(pair.guide) << testing::PrintToString(pair.mask);
            for (unsigned processors = 1; processors <= 16; ++processors) {
                settings.UseProcessors(processors);
                ASSERT_EQ(Clean(kGrowBands, pair.guide, pair.mask, threshold),
                          processors == 1 ? pair.mask : grown)
                    << processors << " processors, " << threshold << "\n"
                    << testing::PrintToString(pair.guide) << testing::PrintToString(pair.mask);
            }
        }
}

TEST(GuidedForms, TouchNothingButTheMasksPixels) {
    Settings settings;
    uint32_t seed = 0;
    for (auto [width, height] : {std::pair{1, 1}, {3, 3}, {17, 9}, {40, 21}})
        for (const Pair& pair : Pairs(width, height, ++seed * 777))
            for (Placement placement : tqtest::kTopDownPlacements)
                for (const Form& form : kForms) {
                    settings.UseProcessors(2 + ++seed % 7);
                    settings.Use(
                        tqtest::RunnableIsaLevels()[seed / 7 % tqtest::RunnableIsaLevels().size()]);
                    const unsigned threshold = seed % 5;
                    PlacedPicture guide(pair.guide, placement, seed + 3);
                    PlacedPicture mask(pair.mask, placement, seed);
                    form.function(static_cast<unsigned>(width), static_cast<unsigned>(height),
                                  static_cast<unsigned>(guide.Stride()), guide.First(),
                                  static_cast<unsigned>(mask.Stride()), mask.First(), threshold);
                    ASSERT_TRUE(mask.Shows(Modelled(form, pair.guide, pair.mask, threshold)))
                        << form.name;
                    ASSERT_TRUE(guide.Shows(pair.guide)) << form.name;
                }
}

TEST(GuidedForms, HostThreadsCleanTheirOwnMasksAtOnce) {
    Settings settings;
    settings.UseProcessors(5);
    Deadline deadline;
    std::atomic<int> wrong{0};
    std::vector<std::thread> hosts;
    for (uint32_t host = 0; host < 6; ++host)
        hosts.emplace_back([host, &wrong] {
            for (const Pair& pair : Pairs(50, 45, host * 100 + 1))
                for (const Form& form : kForms)
                    if (!(Clean(form, pair.guide, pair.mask, 3) ==
                          Modelled(form, pair.guide, pair.mask, 3)))
                        ++wrong;
        });
    for (std::thread& host : hosts) host.join();
    EXPECT_EQ(wrong, 0);
}

TEST(GuidedForms, BandsGrowIntoOneAnotherWithoutARace) {
    // Every band paints far into the others' rows, at the same time.
    Settings settings;
    Deadline deadline;
    const int width = 300, height = 240;
    const Picture guide = tqtest::NoisePicture(width, height, 20, 4);
    Picture mask(width, height, 255);
    for (int y = 1; y < height; y += 16)
        for (int x = 1; x + 1 < width; x += 30) mask.At(x, y) = 0;
    const Picture expected = Modelled(kGrow, guide, mask, 0);
    EXPECT_EQ(Clean(kGrow, guide, mask, 0), expected);
    for (int run = 0; run < 5; ++run)
        for (unsigned processors : {2u, 4u, 15u}) {
            settings.UseProcessors(processors);
            ASSERT_EQ(Clean(kGrowBands, guide, mask, 0), expected) << processors;
        }
}

TEST(GuidedForms, TakeALargeImageInTheirStride) {
    Settings settings;
    settings.UseProcessors(4);
    Deadline deadline;
    const int width = 1920, height = 1080;
    const Picture guide(width, height);
    Picture comb = tqtest::CombPicture(width, height, true);
    for (uint8_t& pixel : comb.pixels) pixel = pixel == 0 ? 255 : 0;
    EXPECT_EQ(Clean(kConfirm, guide, comb, 0), comb);
    EXPECT_EQ(Clean(kGrow, guide, comb, 0), Picture(width, height));
    EXPECT_EQ(Clean(kGrowBands, guide, comb, 0), Picture(width, height));
    Picture dot(width, height, 255);
    dot.At(width / 2, height / 2) = 0;
    EXPECT_EQ(Clean(kGrow, guide, dot, 0), Picture(width, height));
    EXPECT_EQ(Clean(kGrowBands, guide, dot, 0), Picture(width, height));
}

TEST(GuidedForms, ManyRegionsAreConfirmedSoon) {
    // Were each region of the guide to pass all those above that it does not touch, it would take
    // minutes.
    Deadline deadline;
    Picture dots(2400, 1600, 255);
    for (int y = 0; y < dots.height; y += 2)
        for (int x = 0; x < dots.width; x += 2) dots.At(x, y) = 0;
    Picture lower = dots;
    std::fill(lower.pixels.begin(), lower.pixels.begin() + 2400 * 800, uint8_t{255});
    EXPECT_EQ(Clean(kConfirm, lower, dots, 0), lower);
    EXPECT_EQ(Clean(kConfirm, dots, dots, 1), Picture(2400, 1600, 255));
}

// ---- Tasks ----------------------------------------------------------------------------------

static_assert(std::is_base_of_v<CTQIPLTaskBase, CZSeedGrowth_Task>);
static_assert(std::is_same_v<decltype(CZSeedGrowth_Task::m_nWidth), int>);
static_assert(std::is_same_v<decltype(CZSeedGrowth_Task::m_nHeight), int>);
static_assert(std::is_same_v<decltype(CZSeedGrowth_Task::m_nGuideStride), unsigned int>);
static_assert(std::is_same_v<decltype(CZSeedGrowth_Task::m_pGuide), unsigned char*>);
static_assert(std::is_same_v<decltype(CZSeedGrowth_Task::m_nMaskStride), unsigned int>);
static_assert(std::is_same_v<decltype(CZSeedGrowth_Task::m_pMask), unsigned char*>);
static_assert(std::is_same_v<decltype(CZSeedGrowth_Task::m_pSeeds), std::vector<tq::Seed>*>);
static_assert(sizeof(tq::Seed) == 8 && std::is_same_v<decltype(tq::Seed::x), int> &&
              std::is_same_v<decltype(tq::Seed::y), int>);

std::vector<std::pair<int, int>> SeedsOf(const CZFCCDeNoiseEx2_Task& task) {
    std::vector<std::pair<int, int>> seeds;
    for (const tq::Seed& seed : task.m_seeds) seeds.emplace_back(seed.x, seed.y);
    return seeds;
}

TEST(SeedCollection, TakesBothEndsOfEveryRunThatIsLeft) {
    Picture picture = {
        "##...##",  //
        "##.#.#.",  // the pixel at the end touches no other,
        "#######",  //
        ".##....",  // nor does this one
        "#######",
    };
    CZFCCDeNoiseEx2_Task task;
    task.m_nWidth = task.m_nStride = 7;
    task.m_nRows = 5;
    task.m_pImage = picture.pixels.data();
    task.m_nThreshold = 1;
    task.Run();
    task.m_bLabel = 0;
    task.Run();
    EXPECT_TRUE(task.m_seeds.empty());
    EXPECT_EQ(picture, (Picture{"##...##", "##.#.##", "#######", "###....", "#######"}));
    for (int mode : {1, -1}) {
        task.m_seeds.clear();
        task.m_nMode = mode;
        EXPECT_EQ(task.Run(), 1);
        EXPECT_EQ(SeedsOf(task),
                  (std::vector<std::pair<int, int>>{
                      {2, 0}, {4, 0}, {2, 1}, {2, 1}, {4, 1}, {4, 1}, {3, 3}, {6, 3}}));
    }
}

TEST(SeedCollection, IsOfTheBandsOwnRunsWhoeverHoldsTheRoot) {
    Picture picture = {"#.#", "#.#", "#.#", "#.#"};
    std::vector<std::unique_ptr<CZFCCDeNoiseEx2_Task>> tasks;
    for (unsigned i = 0; i < 2; ++i) {
        tasks.push_back(std::make_unique<CZFCCDeNoiseEx2_Task>());
        tasks[i]->m_nWidth = tasks[i]->m_nStride = 3;
        tasks[i]->m_nRows = 2;
        tasks[i]->m_nFirstRow = 2 * i;
        tasks[i]->m_pImage = picture.pixels.data();
        tasks[i]->m_nThreshold = 3;
        tasks[i]->Run();
    }
    IPL_FCCSeamMerge(*tasks[0], *tasks[1]);
    for (int mode : {0, 1})
        for (const auto& task : tasks) {
            task->m_nMode = mode;
            task->Run();
        }
    EXPECT_EQ(SeedsOf(*tasks[0]),
              (std::vector<std::pair<int, int>>{{1, 0}, {1, 0}, {1, 1}, {1, 1}}));
    EXPECT_EQ(SeedsOf(*tasks[1]),
              (std::vector<std::pair<int, int>>{{1, 2}, {1, 2}, {1, 3}, {1, 3}}));
}

class GrowthTask {
public:
    GrowthTask(Picture& guide, Picture& mask, std::vector<tq::Seed> seeds)
        : m_seeds(std::move(seeds)) {
        m_task.m_nWidth = mask.width;
        m_task.m_nHeight = mask.height;
        m_task.m_nGuideStride = static_cast<unsigned>(guide.width);
        m_task.m_pGuide = guide.pixels.data();
        m_task.m_nMaskStride = static_cast<unsigned>(mask.width);
        m_task.m_pMask = mask.pixels.data();
        m_task.m_pSeeds = &m_seeds;
    }
    CZSeedGrowth_Task& Task() { return m_task; }
    bool StackIsEmpty() const { return m_seeds.empty(); }

private:
    std::vector<tq::Seed> m_seeds;
    CZSeedGrowth_Task m_task;
};

TEST(SeedGrowthTask, HasItsFieldsInOrder) {
    const CZSeedGrowth_Task task;
    const void* fields[] = {&task.m_nWidth, &task.m_nHeight,     &task.m_nGuideStride,
                            &task.m_pGuide, &task.m_nMaskStride, &task.m_pMask,
                            &task.m_pSeeds};
    EXPECT_TRUE(std::is_sorted(std::begin(fields), std::end(fields), std::less<>()));
}

TEST(SeedGrowthTask, GrowsFromItsSeedsAndEmptiesTheirStack) {
    Picture guide(7, 5), mask(7, 5, 255);
    for (int y = 0; y < 5; ++y) guide.At(3, y) = 1;
    GrowthTask growth(guide, mask, {{5, 2}});
    EXPECT_EQ(growth.Task().Run(), 1);
    EXPECT_TRUE(growth.StackIsEmpty());
    // The seed's own pixel is painted by a neighbour, as any other.
    EXPECT_EQ(mask, (Picture{"####...", "####...", "####...", "####...", "####..."}));
    EXPECT_EQ(growth.Task().Run(), 1);

    // Without a neighbour to grow to, the seed's own pixel is not written.
    Picture dot = {"####", "##.#", "####"}, ground(4, 3, 255);
    GrowthTask still(dot, ground, {{2, 1}});
    still.Task().Run();
    EXPECT_EQ(ground, Picture(4, 3, 255));
}

TEST(SeedGrowthTask, SeedsOnTheBorderOrOutsideAreDropped) {
    Picture guide(5, 4);
    for (auto [x, y] : {std::pair{0, 1},
                        {4, 1},
                        {2, 0},
                        {2, 3},
                        {0, 0},
                        {4, 3},
                        {-1, 1},
                        {5, 1},
                        {2, -1},
                        {2, 4},
                        {INT_MIN, INT_MIN},
                        {INT_MAX, INT_MAX},
                        {INT_MAX, 1},
                        {1, INT_MAX},
                        {INT_MIN, 1},
                        {1, INT_MIN}}) {
        Picture mask(5, 4, 255);
        GrowthTask growth(guide, mask, {{x, y}});
        EXPECT_EQ(growth.Task().Run(), 1);
        EXPECT_TRUE(growth.StackIsEmpty());
        EXPECT_EQ(mask, Picture(5, 4, 255)) << x << ", " << y;
    }
}

TEST(SeedGrowthTask, SizesThatHaveNoInsideGrowNothing) {
    for (auto [width, height] :
         {std::pair{2, 5}, {5, 2}, {0, 5}, {5, 0}, {-5, 5}, {5, -5}, {INT_MIN, 5}, {5, INT_MIN}}) {
        Picture guide(5, 5), mask(5, 5, 255);
        GrowthTask growth(guide, mask, {{1, 1}, {2, 2}, {3, 3}});
        growth.Task().m_nWidth = width;
        growth.Task().m_nHeight = height;
        EXPECT_EQ(growth.Task().Run(), 1);
        EXPECT_TRUE(growth.StackIsEmpty());
        EXPECT_EQ(mask, Picture(5, 5, 255)) << width << " x " << height;
    }
}

TEST(SeedGrowthTask, SeveralWorkOnOneMask) {
    Deadline deadline;
    Picture guide = tqtest::NoisePicture(200, 150, 30, 8);
    std::vector<tqref::Seeds> seeds(4);
    Noise noise(3);
    for (tqref::Seeds& part : seeds)
        for (int i = 0; i < 60; ++i) part.emplace_back(noise.Below(200), noise.Below(150));
    Picture expected(200, 150, 255);
    tqref::Seeds all;
    for (const tqref::Seeds& part : seeds) all.insert(all.end(), part.begin(), part.end());
    tqref::Grow(guide.View(), expected.View(), all);

    for (int run = 0; run < 20; ++run) {
        Picture mask(200, 150, 255);
        std::vector<std::unique_ptr<GrowthTask>> tasks;
        for (const tqref::Seeds& part : seeds) {
            std::vector<tq::Seed> stack;
            for (auto [x, y] : part) stack.push_back({x, y});
            tasks.push_back(std::make_unique<GrowthTask>(guide, mask, stack));
        }
        tqtest::Latch start(4);
        std::vector<std::thread> threads;
        for (const auto& task : tasks)
            threads.emplace_back([&start, &task] {
                start.ArriveAndWait();
                task->Task().Run();
            });
        for (std::thread& thread : threads) thread.join();
        ASSERT_EQ(mask, expected);
        for (const auto& task : tasks) EXPECT_TRUE(task->StackIsEmpty());
    }
}

}  // namespace
