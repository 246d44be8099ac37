// Labelling of one image measured in another, and the thinning of boxes that lie in one another.

#include <gtest/gtest.h>
#include <tqipl/labelling.h>

#include <climits>
#include <cstdint>
#include <utility>
#include <vector>

#include "morph/boxes.h"
#include "reference/labelling_reference.h"
#include "support/deadline.h"
#include "support/labelling_forms.h"
#include "support/mask_pictures.h"
#include "support/settings.h"

namespace {

using tqtest::FilledArray;
using tqtest::Picture;
using tqtest::PlacedPicture;
using tqtest::Placement;
using tqtest::RectArray;
using tqtest::RectList;
using tqtest::Rects;

RectList LabelUnder(const Picture& image, const Picture& connect, int minimum) {
    Picture under = image, regions = connect;
    RectArray rects;
    IPL_FCCLabelingEx(image.width, image.height, image.width, under.pixels.data(),
                      regions.pixels.data(), &rects, minimum);
    EXPECT_EQ(under, image);
    EXPECT_EQ(regions, connect);
    return Rects(rects);
}

TEST(LabellingEx, BoundsWhatLiesUnderARegion) {
    const Picture connect = {"#####...", "#####...", "#####.##", ".......#"};
    const Picture image = {"..o.....", ".o......", "......o.", "#######o"};
    EXPECT_EQ(LabelUnder(image, connect, 0), (RectList{{1, 0, 2, 1}, {6, 2, 7, 3}}));
    EXPECT_EQ(LabelUnder(image, connect, 1), (RectList{{1, 0, 2, 1}, {6, 2, 7, 3}}));
    EXPECT_EQ(LabelUnder(image, connect, 2), RectList{});
    EXPECT_EQ(LabelUnder(connect, connect, 3), (RectList{{0, 0, 4, 2}}));
}

TEST(LabellingEx, ARegionWithNothingUnderItYieldsNothing) {
    const Picture connect = {"##.##", "##.##"};
    Picture image(5, 2);
    for (int minimum : {0, 1, INT_MAX})
        EXPECT_EQ(LabelUnder(image, connect, minimum), RectList{}) << minimum;
    image.At(4, 1) = 1;
    EXPECT_EQ(LabelUnder(image, connect, 0), (RectList{{4, 1, 4, 1}}));
}

TEST(LabellingEx, ANegativeMinimumKeepsARectangleOfNothing) {
    const TQ_RECT nothing = {0x7FFFFFFF, 0x7FFFFFFF, -1, -1};
    const Picture one = {"##", "##"};
    for (int minimum : {-1, INT_MIN})
        EXPECT_EQ(LabelUnder(Picture(2, 2), one, minimum), RectList{nothing}) << minimum;
    // It lies within every other, and others of its kind within it.
    const Picture two = {"#.#", "#.#"};
    EXPECT_EQ(LabelUnder(Picture(3, 2), two, -1), RectList{nothing});
    EXPECT_EQ(LabelUnder({"..#", "..."}, two, -1), (RectList{{2, 0, 2, 0}}));
    EXPECT_EQ(LabelUnder({"#..", "..."}, two, -1), (RectList{{0, 0, 0, 0}}));
}

TEST(LabellingEx, TheOuterRectangleTakesTheSlotOfTheLastThatItContained) {
    const Picture picture = {
        "#####....",  // a frame,
        "#...#.#..",  // a dot to its right,
        "#.#.#....",  // a dot in it,
        "#...#..#.",  // a dot to its right,
        "#####....",
    };
    EXPECT_EQ(LabelUnder(picture, picture, 0),
              (RectList{{6, 1, 6, 1}, {0, 0, 4, 4}, {7, 3, 7, 3}}));
    const Picture twoInside = {
        "#######....",  //
        "#.....#.#..",  // a dot to the right,
        "#.#...#....",  // one inside,
        "#.....#.#..",  // one to the right,
        "#...#.#....",  // one inside,
        "#.....#..#.",  // one to the right
        "#######....",
    };
    EXPECT_EQ(LabelUnder(twoInside, twoInside, 0),
              (RectList{{8, 1, 8, 1}, {8, 3, 8, 3}, {0, 0, 6, 6}, {9, 5, 9, 5}}));
}

TEST(LabellingEx, ARectangleWithinALaterOneIsDropped) {
    // The left arm's root stays, and is made after the dot.
    const Picture picture = {
        "......#.",  //
        "..#...#.",  //
        "#.....#.",  //
        "#######.",
    };
    EXPECT_EQ(LabelUnder(picture, picture, 0), (RectList{{0, 0, 6, 3}}));
    // A box below is no box around.
    const Picture below = {"..#.#..", ".......", "#.....#", "#######"};
    EXPECT_EQ(LabelUnder(below, below, 0), (RectList{{2, 0, 2, 0}, {4, 0, 4, 0}, {0, 2, 6, 3}}));
}

TEST(LabellingEx, OfTwoEqualRectanglesTheEarlierGoes) {
    // The diagonal, and what goes around it, each with two opposite corners of one box under it.
    const Picture connect = {
        "#..####..",  //
        ".#....#.#",  //
        "..#...#..",  //
        "#..#..#..",  //
        "#.....#..",  //
        "#######..",
    };
    const Picture image = {
        "#..#.....",  //
        "........#",  //
        ".........",  //
        "#..#.....",  //
        ".........",  //
        ".........",
    };
    EXPECT_EQ(LabelUnder(image, connect, 0), (RectList{{8, 1, 8, 1}, {0, 0, 3, 3}}));
}

TEST(LabellingEx, RowsOfTheRegionsLieAWidthApart) {
    // Rows of the image 5 bytes apart, of the regions 3.
    uint8_t image[] = {1, 0, 0, 9, 9, 0, 0, 1};
    uint8_t connect[] = {1, 0, 1, 0, 0, 1};
    RectArray rects;
    IPL_FCCLabelingEx(3, 2, 5, image, connect, &rects, 0);
    EXPECT_EQ(Rects(rects), (RectList{{0, 0, 0, 0}, {2, 1, 2, 1}}));
    // The image bottom-up, the regions still top-down.
    IPL_FCCLabelingEx(3, 2, -5, image + 5, connect, &rects, 0);
    EXPECT_EQ(Rects(rects), (RectList{{2, 0, 2, 0}}));
}

TEST(LabellingEx, BadArgumentsEmptyTheArrayFirst) {
    struct Arguments {
        int width, height, stride;
        bool hasImage, hasConnect;
    };
    for (const Arguments& arguments : {Arguments{0, 2, 2, true, true},
                                       {2, 0, 2, true, true},
                                       {2, 2, 0, true, true},
                                       {2, 2, 2, false, true},
                                       {2, 2, 2, true, false},
                                       {2, 2, 2, false, false},
                                       {-1, 2, 2, true, true},
                                       {2, -1, 2, true, true},
                                       {INT_MIN, 2, 2, true, true},
                                       {2, INT_MIN, 2, true, true},
                                       {INT_MIN, INT_MIN, INT_MIN, true, true}}) {
        Picture image(2, 2, 200), connect(2, 2, 100);
        FilledArray rects;
        IPL_FCCLabelingEx(arguments.width, arguments.height, arguments.stride,
                          arguments.hasImage ? image.pixels.data() : nullptr,
                          arguments.hasConnect ? connect.pixels.data() : nullptr, rects.Get(), -1);
        EXPECT_TRUE(rects.EmptyWithItsStep())
            << arguments.width << " x " << arguments.height << ", " << arguments.stride;
        EXPECT_EQ(image, Picture(2, 2, 200));
        EXPECT_EQ(connect, Picture(2, 2, 100));
    }
}

TEST(LabellingEx, WithoutAnArrayNothingIsDone) {
    Picture image(2, 2, 200), connect(2, 2, 100);
    for (int minimum : {-1, 0, 100})
        IPL_FCCLabelingEx(2, 2, 2, image.pixels.data(), connect.pixels.data(), nullptr, minimum);
    EXPECT_EQ(image, Picture(2, 2, 200));
    EXPECT_EQ(connect, Picture(2, 2, 100));
}

TEST(LabellingEx, EqualsTheReference) {
    uint32_t seed = 0;
    for (auto [width, height] : {std::pair{1, 1}, {5, 4}, {16, 12}, {40, 30}})
        for (const Picture& pattern : tqtest::Patterns(width, height, ++seed))
            for (int percent : {2, 10, 40, 100}) {
                ++seed;
                Picture connect = tqtest::VaryValues(pattern, seed);
                const Picture noise = tqtest::NoisePicture(width, height, percent, seed);
                const Picture image = tqtest::VaryValues(noise, seed + 1);
                for (Placement placement : tqtest::kPlacements)
                    for (int minimum : {-1, 0, 1, 3}) {
                        Picture model = image;
                        const RectList expected =
                            tqref::LabelUnder(model.View(), connect.View(), minimum);
                        PlacedPicture placed(image, placement, seed);
                        PlacedPicture regions(connect,
                                              placement == Placement::kAtStart ? Placement::kAtStart
                                                                               : Placement::kAtEnd,
                                              seed);
                        RectArray rects;
                        rects.SetSize(2);
                        IPL_FCCLabelingEx(width, height, placed.Stride(), placed.First(),
                                          regions.First(), &rects, minimum);
                        ASSERT_EQ(Rects(rects), expected)
                            << "minimum " << minimum << "\n"
                            << testing::PrintToString(image) << testing::PrintToString(connect);
                        ASSERT_TRUE(placed.Shows(image));
                        ASSERT_TRUE(regions.Shows(connect));
                    }
            }
}

TEST(LabellingEx, LongRunsAreMeasuredAlikeAtEveryLevel) {
    tqtest::Settings settings;
    uint32_t seed = 0;
    for (int width = 1; width <= 300; ++width)
        for (int nonzero : {0, 1, 2, 40}) {
            ++seed;
            Picture connect = tqtest::NoisePicture(width, 2, 98, seed);
            Picture image(width, 2);
            tqtest::Noise noise(seed);
            for (int i = 0; i < nonzero; ++i)
                image.At(noise.Below(width), noise.Below(2)) =
                    static_cast<uint8_t>(1 << noise.Below(8));
            const RectList expected = tqref::LabelUnder(image.View(), connect.View(), 1);
            for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                settings.Use(level);
                for (Placement placement : {Placement::kAtEnd, Placement::kAtStart}) {
                    PlacedPicture placed(image, placement, seed), regions(connect, placement, seed);
                    RectArray rects;
                    IPL_FCCLabelingEx(width, 2, placed.Stride(), placed.First(), regions.First(),
                                      &rects, 1);
                    ASSERT_EQ(Rects(rects), expected) << width << ", " << tq::IsaLevelName(level);
                }
            }
        }
}

TEST(LabellingEx, AFullImageIsCountedWhole) {
    tqtest::Settings settings;
    for (int width : {1, 15, 16, 17, 31, 32, 33, 255, 256, 257, 4095, 4096, 8193, 70000})
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
            settings.Use(level);
            const Picture full(width, 2, 255);
            EXPECT_EQ(LabelUnder(full, full, 2 * width - 1), (RectList{{0, 0, width - 1, 1}}));
            EXPECT_EQ(LabelUnder(full, full, 2 * width), RectList{}) << width;
        }
}

TEST(LabellingEx, ThinningEqualsTheReferenceForManySmallRegions) {
    // Boxes of sparse pixels under large regions lie in one another in every way.
    for (uint32_t seed = 1; seed <= 400; ++seed) {
        Picture connect = tqtest::NoisePicture(14, 12, 35 + static_cast<int>(seed % 20), seed);
        Picture image = tqtest::NoisePicture(14, 12, 30, seed + 1000);
        for (int minimum : {-1, 0}) {
            const RectList expected = tqref::LabelUnder(image.View(), connect.View(), minimum);
            ASSERT_EQ(LabelUnder(image, connect, minimum), expected)
                << testing::PrintToString(image) << testing::PrintToString(connect);
        }
    }
}

TEST(LabellingEx, ThousandsOfBoxesAreThinnedAsOneByOne) {
    for (uint32_t seed = 1; seed <= 6; ++seed) {
        // Broken diagonals: long thin regions with boxes that overlap and hold others.
        tqtest::Noise noise(seed);
        Picture connect = tqtest::Draw(150, 130, [&](int x, int y) {
            return (x + (seed % 2 == 0 ? y : 130 - y)) % 3 == 0 && noise.Below(12) != 0;
        });
        Picture image = tqtest::NoisePicture(150, 130, 10 + 30 * static_cast<int>(seed % 3), seed);
        for (int minimum : {-1, 0, 2}) {
            const RectList expected = tqref::LabelUnder(image.View(), connect.View(), minimum);
            ASSERT_TRUE(LabelUnder(image, connect, minimum) == expected) << seed << ", " << minimum;
        }
        const RectList dots = tqref::LabelUnder(image.View(), image.View(), 0);
        ASSERT_TRUE(LabelUnder(image, image, 0) == dots) << seed;
    }
}

TEST(LabellingEx, NestedBoxesAreThinnedAsOneByOne) {
    for (uint32_t seed = 1; seed <= 600; ++seed) {
        tqtest::Noise noise(seed);
        const int count = seed <= 40 ? static_cast<int>(seed - 1) : noise.Below(700);
        const int room = 2 + noise.Below(60), size = 1 + noise.Below(1 + noise.Below(30));
        const bool byRow = noise.Below(2) == 0;
        RectList boxes;
        for (int i = 0; i < count; ++i) {
            const int left = noise.Below(room), top = byRow ? i / 3 : noise.Below(room);
            boxes.push_back({left, top, left + noise.Below(size), top + noise.Below(size)});
            if (noise.Below(40) == 0) boxes.back() = {INT_MAX, INT_MAX, -1, -1};
        }
        ASSERT_EQ(tq::ThinNestedBoxes(boxes), tqref::ThinBoxes(boxes)) << seed;
    }
}

TEST(LabellingEx, ManyRegionsAreMeasuredSoon) {
    // Were each box held against each, it would take minutes.
    tqtest::Deadline deadline;
    const Picture dots =
        tqtest::Draw(2800, 2100, [](int x, int y) { return x % 3 == 0 && y % 3 == 0; });
    const RectList boxes = LabelUnder(dots, dots, 0);
    ASSERT_EQ(boxes.size(), 934u * 700u);
    EXPECT_EQ(boxes.back(), (TQ_RECT{2799, 2097, 2799, 2097}));
    const Picture noise = tqtest::NoisePicture(1920, 1080, 10, 1);
    EXPECT_GT(LabelUnder(noise, noise, 0).size(), 1000u);
}

}  // namespace
