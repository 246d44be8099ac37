// Labelling: rectangles known by hand, every form against lists of runs and against flooding, time.

#include <gtest/gtest.h>
#include <tqipl/labelling.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <ctime>
#include <utility>
#include <vector>

#include "reference/labelling_reference.h"
#include "support/deadline.h"
#include "support/labelling_forms.h"
#include "support/mask_pictures.h"
#include "support/settings.h"

namespace {

using tqtest::Deadline;
using tqtest::EqualsLists;
using tqtest::FilledArray;
using tqtest::kLabelForms;
using tqtest::kPlainForms;
using tqtest::LabelForm;
using tqtest::LabelPicture;
using tqtest::Picture;
using tqtest::PlacedPicture;
using tqtest::Placement;
using tqtest::RectArray;
using tqtest::RectList;
using tqtest::Rects;
using tqtest::Settings;
using tqtest::Sorted;

// ---- Values known by hand -------------------------------------------------------------------

TEST(Labelling, AMaskOfZerosYieldsNothingAndStays) {
    for (const LabelForm& form : kLabelForms)
        for (int minimum : {-1, 0, 1, 100}) {
            Picture picture(7, 5);
            EXPECT_TRUE(LabelPicture(form, picture, minimum).empty()) << form.name;
            EXPECT_EQ(picture, Picture(7, 5)) << form.name;
        }
}

TEST(Labelling, ASinglePixelHasItsOwnColumnAndRowOnAllSides) {
    Settings settings;
    settings.UseProcessors(2);
    for (const LabelForm& form : kLabelForms)
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 5; ++x) {
                Picture picture(5, 4), before;
                picture.At(x, y) = 1;
                before = picture;
                EXPECT_EQ(LabelPicture(form, picture, 0), (RectList{{x, y, x, y}})) << form.name;
                EXPECT_EQ(picture, before) << form.name;
            }
}

TEST(Labelling, AFullMaskIsOneRegion) {
    Settings settings;
    settings.UseProcessors(3);
    for (const LabelForm& form : kLabelForms) {
        Picture picture(6, 7, 9);
        EXPECT_EQ(LabelPicture(form, picture, 41), (RectList{{0, 0, 5, 6}})) << form.name;
        EXPECT_EQ(picture, Picture(6, 7, 9)) << form.name;
        EXPECT_EQ(LabelPicture(form, picture, 42), RectList{}) << form.name;
        EXPECT_EQ(picture, Picture(6, 7)) << form.name;
    }
}

TEST(Labelling, ARegionOfExactlyTheMinimumIsCleared) {
    const Picture before = {"##...#", "#....#", ".....#", "......", "#.####"};
    Settings settings;
    settings.UseProcessors(2);
    for (const LabelForm& form : kLabelForms) {
        Picture picture = before;
        const RectList all = {{0, 0, 1, 1}, {5, 0, 5, 2}, {0, 4, 0, 4}, {2, 4, 5, 4}};
        for (int minimum : {INT_MIN, -1, 0}) {
            EXPECT_EQ(LabelPicture(form, picture, minimum), all) << form.name;
            EXPECT_EQ(picture, before) << form.name;
        }
        EXPECT_EQ(LabelPicture(form, picture, 1),
                  (RectList{{0, 0, 1, 1}, {5, 0, 5, 2}, {2, 4, 5, 4}}))
            << form.name;
        EXPECT_EQ(picture, (Picture{"##...#", "#....#", ".....#", "......", "..####"}))
            << form.name;
        EXPECT_EQ(LabelPicture(form, picture, 2).size(), 3u) << form.name;
        EXPECT_EQ(LabelPicture(form, picture, 3), (RectList{{2, 4, 5, 4}})) << form.name;
        EXPECT_EQ(picture, (Picture{"......", "......", "......", "......", "..####"}))
            << form.name;
        EXPECT_EQ(LabelPicture(form, picture, INT_MAX), RectList{}) << form.name;
        EXPECT_EQ(picture, Picture(6, 5)) << form.name;
    }
}

TEST(Labelling, RunsThatTouchAtACornerAreOneRegion) {
    Settings settings;
    for (unsigned processors : {1u, 2u})
        for (const LabelForm& form : kLabelForms) {
            if (processors == 1 && form.inBands) continue;
            settings.UseProcessors(processors);
            Picture right = {"...##...", ".....#.."};
            EXPECT_EQ(LabelPicture(form, right, 0), (RectList{{3, 0, 5, 1}})) << form.name;
            Picture left = {"...##...", "..#....."};
            EXPECT_EQ(LabelPicture(form, left, 0), (RectList{{2, 0, 4, 1}})) << form.name;
            Picture farRight = {"...##...", "......#."};
            EXPECT_EQ(LabelPicture(form, farRight, 0), (RectList{{3, 0, 4, 0}, {6, 1, 6, 1}}))
                << form.name;
            Picture farLeft = {"...##...", ".#......"};
            EXPECT_EQ(LabelPicture(form, farLeft, 0), (RectList{{3, 0, 4, 0}, {1, 1, 1, 1}}))
                << form.name;
        }
}

TEST(Labelling, ARunEndsWithItsRow) {
    // Dense rows: the last pixel of one stands right before the first of the next.
    const Picture before = {"....#", ".....", "....#", "#....", "....#"};
    Settings settings;
    settings.UseProcessors(5);
    for (const LabelForm& form : kLabelForms) {
        Picture picture = before;
        EXPECT_EQ(LabelPicture(form, picture, 0),
                  (RectList{{4, 0, 4, 0}, {4, 2, 4, 2}, {0, 3, 0, 3}, {4, 4, 4, 4}}))
            << form.name;
    }
}

TEST(Labelling, WhereTwoArmsMeetTheLeftOneKeepsTheRoot) {
    // The right arm was there first. Were its root kept, the region would come before the bar.
    for (const LabelForm& form : kPlainForms) {
        Picture picture = {"....#..#.", "#...#..#.", "#####..#."};
        EXPECT_EQ(LabelPicture(form, picture, 0), (RectList{{7, 0, 7, 2}, {0, 0, 4, 2}}))
            << form.name;
        Picture u = {"#..#.#", "#..#.#", "####.."};
        EXPECT_EQ(LabelPicture(form, u, 4), (RectList{{0, 0, 3, 2}})) << form.name;
        EXPECT_EQ(u, (Picture{"#..#..", "#..#..", "####.."})) << form.name;
    }
}

TEST(Labelling, ALaterRunsRootTakesInEarlierRoots) {
    // Regions in the order of their first runs: a, b, d, c, e, f. The last row begins below c,
    // whose root takes in f and e, each a single column that ends here, and d.
    for (const LabelForm& form : kPlainForms) {
        Picture picture = {
            ".......#...",  // a
            "....#.....#",  // b, d
            ".#.....#..#",  // c, e
            ".#..#..#..#",  // f
            ".##########",
        };
        EXPECT_EQ(LabelPicture(form, picture, 0),
                  (RectList{{7, 0, 7, 0}, {4, 1, 4, 1}, {1, 1, 10, 4}}))
            << form.name;
    }
}

TEST(Labelling, AnyValueButZeroBelongsToARegionAndIsKept) {
    Settings settings;
    settings.UseProcessors(2);
    for (const LabelForm& form : kLabelForms) {
        Picture picture(4, 2);
        picture.pixels = {1, 127, 128, 0, 0, 0, 0, 254};
        const Picture before = picture;
        // 254 touches 128 at a corner.
        EXPECT_EQ(LabelPicture(form, picture, 3), (RectList{{0, 0, 3, 1}})) << form.name;
        EXPECT_EQ(picture, before) << form.name;
        picture.pixels = {1, 127, 0, 0, 0, 0, 0, 254};
        EXPECT_EQ(LabelPicture(form, picture, 1), (RectList{{0, 0, 1, 0}})) << form.name;
        EXPECT_EQ(picture.pixels, (std::vector<uint8_t>{1, 127, 0, 0, 0, 0, 0, 0})) << form.name;
    }
}

TEST(Labelling, WhatTheArrayHeldBeforeIsDropped) {
    Settings settings;
    settings.UseProcessors(2);
    for (const LabelForm& form : kLabelForms) {
        RectArray rects;
        rects.m_nGrowBy = 9;
        rects.SetSize(20);
        Picture picture = {"##", "##"};
        form.function(2, 2, 2, picture.pixels.data(), &rects, 0);
        EXPECT_EQ(Rects(rects), (RectList{{0, 0, 1, 1}})) << form.name;
        EXPECT_EQ(rects.m_nGrowBy, 9) << form.name;
        EXPECT_LT(rects.m_nMaxSize, 20) << form.name;
        form.function(2, 2, 2, picture.pixels.data(), &rects, 4);
        EXPECT_EQ(rects.m_pData, nullptr) << form.name;
        EXPECT_EQ(rects.m_nSize, 0) << form.name;
        EXPECT_EQ(rects.m_nMaxSize, 0) << form.name;
    }
}

TEST(Labelling, BadArgumentsEmptyTheArrayFirst) {
    Settings settings;
    struct Arguments {
        int width, height, stride;
        bool hasMask;
    };
    const Arguments bad[] = {{0, 2, 2, true},
                             {2, 0, 2, true},
                             {2, 2, 0, true},
                             {2, 2, 2, false},
                             {0, 0, 0, false},
                             {-1, 2, 2, true},
                             {2, -1, 2, true},
                             {-2, -2, -2, true},
                             {INT_MIN, 2, 2, true},
                             {2, INT_MIN, 2, true},
                             {INT_MIN, INT_MIN, INT_MIN, true},
                             {INT_MAX, 0, INT_MAX, true},
                             {0, INT_MAX, 1, true},
                             {INT_MIN, 0, 1, false}};
    for (unsigned processors : {1u, 2u, 16u})
        for (const LabelForm& form : kLabelForms)
            for (const Arguments& arguments : bad) {
                settings.UseProcessors(processors);
                Picture picture(2, 2, 200);
                FilledArray rects;
                form.function(arguments.width, arguments.height, arguments.stride,
                              arguments.hasMask ? picture.pixels.data() : nullptr, rects.Get(), 0);
                EXPECT_TRUE(rects.EmptyWithItsStep())
                    << form.name << ", " << arguments.width << " x " << arguments.height << ", "
                    << arguments.stride;
                EXPECT_EQ(picture, Picture(2, 2, 200)) << form.name;
            }
}

TEST(Labelling, WithoutAnArrayTheMaskStays) {
    Settings settings;
    for (unsigned processors : {1u, 2u, 16u})
        for (const LabelForm& form : kLabelForms)
            for (int minimum : {0, 4, 100}) {
                settings.UseProcessors(processors);
                Picture picture(4, 3, 200);
                form.function(4, 3, 4, picture.pixels.data(), nullptr, minimum);
                EXPECT_EQ(picture, Picture(4, 3, 200)) << form.name << ", minimum " << minimum;
            }
}

TEST(Labelling, TheStrideOfASingleRowDoesNotCount) {
    Settings settings;
    for (unsigned processors : {2u, 5u})
        for (const LabelForm& form : kLabelForms)
            for (int stride : {1, -1, INT_MAX, INT_MIN}) {
                settings.UseProcessors(processors);
                Picture picture = {"##.#"};
                RectArray rects;
                form.function(4, 1, stride, picture.pixels.data(), &rects, 1);
                EXPECT_EQ(Rects(rects), (RectList{{0, 0, 1, 0}})) << form.name << ", " << stride;
                EXPECT_EQ(picture, (Picture{"##.."})) << form.name << ", " << stride;
            }
}

// ---- Every form against the references ------------------------------------------------------

TEST(Labelling, PlainFormsEqualTheListsForEverySmallMask) {
    for (auto [width, height] : {std::pair{4, 4}, {3, 5}, {5, 3}, {8, 2}, {2, 8}, {15, 1}})
        for (uint32_t bits = 0; bits < 1u << (width * height); ++bits) {
            const Picture picture = tqtest::SmallPicture(width, height, bits);
            const int minimum = static_cast<int>(bits * 2654435761u >> 20) % 8 - 1;
            for (const LabelForm& form : kPlainForms) {
                ASSERT_TRUE(EqualsLists(form, 1, picture, 0));
                ASSERT_TRUE(EqualsLists(form, 1, picture, minimum));
            }
        }
}

// The boxes that are to be listed, in any order, and the mask that is to be left.
RectList FloodLabel(Picture& picture, int minimum) {
    RectList boxes;
    for (const tqref::FloodRegion& region :
         tqref::Flood(picture.View(), tqref::RegionsOf::kNonzero))
        if (region.Area() > minimum) boxes.push_back(region.box);
    tqref::FloodFillSmall(picture.View(), tqref::RegionsOf::kNonzero, minimum, 0);
    return Sorted(boxes);
}

TEST(Labelling, PlainFormsFindTheRegionsOfAFloodInEverySmallMask) {
    for (auto [width, height] : {std::pair{4, 4}, {3, 5}, {5, 3}})
        for (uint32_t bits = 0; bits < 1u << (width * height); ++bits) {
            const Picture picture = tqtest::SmallPicture(width, height, bits);
            const int minimum = static_cast<int>(bits % 5);
            Picture expected = picture;
            const RectList boxes = FloodLabel(expected, minimum);
            for (const LabelForm& form : kPlainForms) {
                Picture actual = picture;
                ASSERT_EQ(Sorted(LabelPicture(form, actual, minimum)), boxes)
                    << form.name << "\n"
                    << testing::PrintToString(picture);
                ASSERT_EQ(actual, expected) << form.name;
            }
        }
}

TEST(Labelling, EveryFormEqualsTheReferencesForEveryPattern) {
    Settings settings;
    Deadline deadline;
    uint32_t seed = 0;
    for (auto [width, height] : {std::pair{1, 1},
                                 {1, 20},
                                 {20, 1},
                                 {2, 33},
                                 {7, 16},
                                 {16, 7},
                                 {31, 24},
                                 {33, 17},
                                 {64, 40},
                                 {70, 33}})
        for (const Picture& pattern : tqtest::Patterns(width, height, ++seed * 100)) {
            const Picture picture = tqtest::VaryValues(pattern, ++seed);
            for (int minimum : {-5, 0, 1, 6}) {
                for (const LabelForm& form : kPlainForms)
                    ASSERT_TRUE(EqualsLists(form, 1, picture, minimum));
                Picture left = picture;
                const RectList boxes = FloodLabel(left, minimum);
                const unsigned processors = 1 + seed % 16;
                for (const LabelForm& form : kLabelForms) {
                    settings.UseProcessors(std::max(2u, processors));
                    Picture actual = picture;
                    ASSERT_EQ(Sorted(LabelPicture(form, actual, minimum)), boxes) << form.name;
                    ASSERT_EQ(actual, left) << form.name;
                }
            }
        }
}

TEST(Labelling, NothingButTheClearedPixelsIsTouched) {
    Settings settings;
    uint32_t seed = 0;
    for (auto [width, height] : {std::pair{1, 1}, {3, 2}, {16, 9}, {37, 21}})
        for (const Picture& pattern : tqtest::Patterns(width, height, ++seed))
            for (Placement placement : tqtest::kPlacements)
                for (const LabelForm& form : kLabelForms) {
                    const int processors = 2 + static_cast<int>(++seed % 6);
                    settings.UseProcessors(static_cast<unsigned>(processors));
                    const Picture picture = tqtest::VaryValues(pattern, seed);
                    const int minimum = static_cast<int>(seed % 8);
                    Picture expected = picture;
                    const RectList boxes =
                        tqtest::ExpectedLabels(form, processors, expected, minimum);
                    PlacedPicture placed(picture, placement, seed);
                    RectArray rects;
                    form.function(width, height, placed.Stride(), placed.First(), &rects, minimum);
                    ASSERT_TRUE(placed.Shows(expected)) << form.name << ", " << processors;
                    ASSERT_EQ(Rects(rects), boxes) << form.name << ", " << processors;
                }
}

// Rows of every length around a vector's and around powers of two, at every level.
TEST(Labelling, LongRowsEqualTheListsAtEveryLevel) {
    Settings settings;
    settings.UseProcessors(2);
    std::vector<int> widths;
    for (int width = 1; width <= 140; ++width) widths.push_back(width);
    for (int power = 256; power <= 8192; power *= 2)
        for (int near : {-1, 0, 1, 33}) widths.push_back(power + near);
    uint32_t seed = 0;
    for (int width : widths)
        for (int percent : {3, 50, 97}) {
            if (width > 1100 && percent == 50) continue;  // the lists' walks take their time
            const Picture picture = tqtest::VaryValues(
                tqtest::NoisePicture(width, 3, percent, static_cast<uint32_t>(width)), ++seed);
            const Placement placement = tqtest::kPlacements[seed % 4];
            const int minimum = static_cast<int>(seed % 5);
            for (const LabelForm& form : kLabelForms) {
                Picture expected = picture;
                const RectList boxes = tqtest::ExpectedLabels(form, 2, expected, minimum);
                for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                    settings.Use(level);
                    PlacedPicture placed(picture, placement, seed);
                    RectArray rects;
                    form.function(width, 3, placed.Stride(), placed.First(), &rects, minimum);
                    ASSERT_EQ(Rects(rects), boxes)
                        << form.name << ", " << width << ", " << tq::IsaLevelName(level);
                    ASSERT_TRUE(placed.Shows(expected)) << form.name << ", " << width;
                }
            }
        }
}

TEST(Labelling, ARowHoldsAnyNumberOfRuns) {
    Settings settings;
    settings.UseProcessors(2);
    for (int width : {1001, 4095, 4099, 30001, 70001}) {
        Picture columns(width, 4);
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < width; x += 2) columns.At(x, y) = 255;
        columns.At(5, 0) = 255;  // joins two
        RectList expected;
        for (int x = 0; x < width; x += 2)
            if (x != 6) expected.push_back({x, 0, x == 4 ? 6 : x, 3});
        for (const LabelForm& form : kLabelForms) {
            Picture picture = columns;
            ASSERT_TRUE(LabelPicture(form, picture, 3) == expected) << form.name << ", " << width;
            ASSERT_TRUE(LabelPicture(form, picture, 4) == (RectList{{4, 0, 6, 3}})) << form.name;
        }
    }
}

// ---- Time -----------------------------------------------------------------------------------

double SecondsOf(const LabelForm& form, const Picture& picture, size_t* count) {
    double best = 1e9;
    for (int run = 0; run < 2; ++run) {
        Picture copy = picture;
        const std::clock_t begin = std::clock();
        *count = LabelPicture(form, copy, 3).size();
        best = std::min(best, static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
    }
    return best;
}

// A list that is walked to its end for each run makes 16 times the runs 256 times the work, and at
// this size, minutes of it.
void ExpectTimeFollowsRuns(Picture (*draw)(int width, int height), bool single) {
    Settings settings;
    settings.UseProcessors(4);
    const Picture small = draw(480, 270), large = draw(1920, 1080);
    for (const LabelForm& form : kLabelForms) {
        Deadline deadline;
        size_t smallCount = 0, largeCount = 0;
        const double smallTime = SecondsOf(form, small, &smallCount);
        const double largeTime = SecondsOf(form, large, &largeCount);
        EXPECT_LT(largeTime, 100 * std::max(smallTime, 0.001)) << form.name;
        if (single) {
            EXPECT_EQ(smallCount, 1u) << form.name;
            EXPECT_EQ(largeCount, 1u) << form.name;
        } else {
            EXPECT_GT(smallCount, 10u) << form.name;
            EXPECT_GT(largeCount, smallCount) << form.name;
        }
    }
}

TEST(LabellingTime, FollowsTheRunsOfNoise) {
    ExpectTimeFollowsRuns(
        [](int width, int height) { return tqtest::NoisePicture(width, height, 40, 1); }, false);
}

TEST(LabellingTime, FollowsTheRunsOfACombThatHangs) {
    ExpectTimeFollowsRuns(
        [](int width, int height) { return tqtest::CombPicture(width, height, true); }, true);
}

TEST(LabellingTime, FollowsTheRunsOfACombThatStands) {
    ExpectTimeFollowsRuns(
        [](int width, int height) { return tqtest::CombPicture(width, height, false); }, true);
}

TEST(LabellingTime, RootsThatPassFromIslandToIslandAreFoundSoon) {
    Settings settings;
    settings.UseProcessors(4);
    const Picture islands = tqtest::IslandPicture(1920, 1080);
    for (const LabelForm& form : kLabelForms) {
        Deadline deadline;
        Picture copy = islands;
        EXPECT_EQ(LabelPicture(form, copy, 3).size(), 1u) << form.name;
    }
}

TEST(LabellingTime, MasksOfManyPixelsAreLabelledSoon) {
    Settings settings;
    settings.UseProcessors(4);
    for (const LabelForm& form : kLabelForms) {
        Deadline deadline;
        Picture comb = tqtest::CombPicture(3840, 2160, true);
        EXPECT_EQ(LabelPicture(form, comb, 0), (RectList{{0, 0, 3839, 2159}})) << form.name;
        Picture noise = tqtest::NoisePicture(3840, 2160, 50, 3);
        EXPECT_FALSE(LabelPicture(form, noise, 3).empty()) << form.name;
    }
}

}  // namespace
