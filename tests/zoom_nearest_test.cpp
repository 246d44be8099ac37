// Nearest-neighbour zoom: known values, bad arguments, and the reference at every level.

#include <gtest/gtest.h>
#include <tqipl/zoom.h>

#include <cstring>
#include <thread>
#include <utility>
#include <vector>

#include "reference/zoom_reference.h"
#include "support/guarded_buffer.h"
#include "support/zoom_check.h"

namespace {

using tqtest::Content;
using tqtest::GuardedBuffer;
using tqtest::GuardedImage;
using tqtest::ZoomForm;
using tqtest::ZoomSizes;

const std::vector<ZoomForm> kForms = {
    {"IPL_ZoomNN_8u_C1R", IPL_ZoomNN_8u_C1R, tqref::ZoomNearestC1, 1},
    {"IPL_ZoomNN_8u_C4R", IPL_ZoomNN_8u_C4R, tqref::ZoomNearestC4, 4},
};

// ---- Values known by hand -----------------------------------------------------------------------

TEST(ZoomNearest, FourColumnsToTwoReadsColumns0And2) {
    tqtest::ExpectZoom(kForms, {4, 1, 2, 1}, {10, 20, 30, 40}, {10, 30});
}

TEST(ZoomNearest, TwoColumnsToFourReadsColumns0011) {
    tqtest::ExpectZoom(kForms, {2, 1, 4, 1}, {10, 20}, {10, 10, 20, 20});
}

TEST(ZoomNearest, ThreeRowsToTwoReadsRows0And1) {
    tqtest::ExpectZoom(kForms, {1, 3, 1, 2}, {10, 20, 30}, {10, 20});
}

TEST(ZoomNearest, TwoRowsToFourReadsRows0011) {
    tqtest::ExpectZoom(kForms, {1, 2, 1, 4}, {10, 20}, {10, 10, 20, 20});
}

TEST(ZoomNearest, AnyReductionToOnePixelReadsTheFirst) {
    tqtest::ExpectZoom(kForms, {3, 3, 1, 1}, {1, 2, 3, 4, 5, 6, 7, 8, 9}, {1});
}

TEST(ZoomNearest, BothAxesTakeTheirOwnPositions) {
    tqtest::ExpectZoom(kForms, {3, 2, 2, 3}, {1, 2, 3, 4, 5, 6}, {1, 2, 1, 2, 4, 5});
}

// 49 * (2.0 / 98) is a hair below 1 in double arithmetic: the position is index times ratio, not
// index times length over length.
TEST(ZoomNearest, APositionThatRoundsBelowAnIntegerReadsTheSampleBeforeIt) {
    std::vector<int> expected(98, 10);
    for (int i = 50; i < 98; ++i) expected[i] = 20;
    tqtest::ExpectZoom(kForms, {2, 1, 98, 1}, {10, 20}, expected);
    tqtest::ExpectZoom(kForms, {1, 2, 1, 98}, {10, 20}, expected);
}

TEST(ZoomNearest, FourChannelsMoveWholePixels) {
    EXPECT_EQ(tqtest::ZoomBytes(kForms[1], {3, 1, 2, 1}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}),
              (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(tqtest::ZoomBytes(kForms[1], {2, 1, 3, 1}, {1, 2, 3, 4, 5, 6, 7, 8}),
              (std::vector<int>{1, 2, 3, 4, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(ZoomNearest, EqualSizesGiveAnExactCopy) {
    for (const ZoomForm& form : kForms) tqtest::ExpectEqualSizesAreCopied(form);
}

// ---- Bad arguments ------------------------------------------------------------------------------

TEST(ZoomNearest, NullPointersWriteNothing) {
    for (const ZoomForm& form : kForms) tqtest::ExpectNullPointersWriteNothing(form);
}

TEST(ZoomNearest, DestinationSizesBelowOneWriteNothing) {
    for (const ZoomForm& form : kForms) tqtest::ExpectBadDestinationsWriteNothing(form);
}

// The source's memory ends with the first pixel of its last row.
TEST(ZoomNearest, ASourceWidthOf0TakesTheFirstColumn) {
    for (const ZoomForm& form : kForms) {
        const int channels = form.channels;
        GuardedImage src(channels, 2, {GuardedBuffer::kEnd, 5});
        GuardedImage dst(3 * channels, 4, {GuardedBuffer::kEnd, 2});
        tqtest::Fill(src.Memory(), src.Size(), Content::kNoise, 3);
        std::memset(dst.Memory(), 0xA5, dst.Size());
        form.function(0, 2, src.Stride(), src.First(), 3, 4, dst.Stride(), dst.First());
        for (int j = 0; j < 4; ++j) {
            for (int i = 0; i < 3 * channels; ++i)
                EXPECT_EQ(dst.Row(j)[i], src.Row(j / 2)[i % channels])
                    << form.name << ", row " << j << ", byte " << i;
            for (int i = 3 * channels; i < dst.Stride() && j < 3; ++i)
                EXPECT_EQ(dst.Row(j)[i], 0xA5) << form.name << ", padding of row " << j;
        }
    }
}

TEST(ZoomNearest, ASourceHeightOf0TakesTheFirstRow) {
    for (const ZoomForm& form : kForms) {
        const int channels = form.channels;
        GuardedImage src(2 * channels, 1, {});
        GuardedImage dst(4 * channels, 3, {GuardedBuffer::kEnd, 1});
        tqtest::Fill(src.Memory(), src.Size(), Content::kNoise, 4);
        std::memset(dst.Memory(), 0xA5, dst.Size());
        form.function(2, 0, 1000, src.First(), 4, 3, dst.Stride(), dst.First());
        for (int j = 0; j < 3; ++j)
            for (int i = 0; i < 4 * channels; ++i)
                EXPECT_EQ(dst.Row(j)[i], src.Row(0)[i / (2 * channels) * channels + i % channels])
                    << form.name << ", row " << j << ", byte " << i;
    }
}

TEST(ZoomNearest, ASourceOf0By0TakesTheFirstPixel) {
    for (const ZoomForm& form : kForms) {
        GuardedImage src(form.channels, 1, {});
        GuardedImage dst(2 * form.channels, 2, {});
        tqtest::Fill(src.Memory(), src.Size(), Content::kNoise, 4);
        form.function(0, 0, 1000, src.First(), 2, 2, dst.Stride(), dst.First());
        for (size_t i = 0; i < dst.Size(); ++i)
            EXPECT_EQ(dst.Memory()[i], src.Memory()[i % form.channels]) << form.name;
    }
}

// Left of the row and above the image there is nothing to read.
TEST(ZoomNearest, ANegativeSourceSizeLeavesTheDestinationAtZero) {
    for (const ZoomForm& form : kForms)
        for (auto [width, height] : {std::pair{-1, 2},
                                     {2, -1},
                                     {-3, -3},
                                     {-1, 0},
                                     {0, -1},
                                     {-2147483647 - 1, 2},
                                     {2, -2147483647 - 1}})
            tqtest::ExpectGivesBlack(form, width, height);
}

TEST(ZoomNearest, SmallAndBadSizesEqualTheReference) {
    for (const ZoomForm& form : kForms) tqtest::ExpectSmallAndBadSizesEqualReference(form);
}

// ---- The reference at every level ---------------------------------------------------------------

TEST(ZoomNearest, AllSmallWidthsEqualTheReference) {
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals(form);
        for (int srcWidth = 1; srcWidth <= 24; ++srcWidth)
            for (int dstWidth = 1; dstWidth <= 24; ++dstWidth) {
                for (auto [srcHeight, dstHeight] : {std::pair{1, 1}, {1, 3}, {3, 2}, {4, 4}})
                    ASSERT_TRUE(
                        equals({srcWidth, srcHeight, dstWidth, dstHeight}, Content::kNoise));
                if ((srcWidth + dstWidth) % 3 != 0) continue;
                ASSERT_TRUE(equals.InEveryLayout({srcWidth, 2, dstWidth, 3}, Content::kHostile));
            }
    }
}

TEST(ZoomNearest, WidthsOfEveryTailEqualTheReference) {
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals(form);
        for (int dstWidth = 1; dstWidth <= 70; ++dstWidth)
            for (int srcWidth : {1, 2, 3, 7, 16, 31, 35, 64, 97, 140})
                ASSERT_TRUE(equals({srcWidth, 3, dstWidth, 5}, Content::kHostile));
    }
}

TEST(ZoomNearest, AllSmallHeightsEqualTheReference) {
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals(form);
        for (int srcHeight = 1; srcHeight <= 9; ++srcHeight)
            for (int dstHeight = 1; dstHeight <= 13; ++dstHeight)
                ASSERT_TRUE(equals({5, srcHeight, 11, dstHeight}, Content::kNoise));
    }
}

TEST(ZoomNearest, EveryLayoutEqualsTheReference) {
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals(form);
        for (const ZoomSizes& sizes : {ZoomSizes{1, 1, 1, 1},
                                       {1, 1, 7, 7},
                                       {13, 7, 31, 11},
                                       {31, 11, 13, 7},
                                       {20, 20, 40, 40},
                                       {20, 20, 39, 39},
                                       {20, 20, 20, 33},
                                       {20, 20, 33, 20},
                                       {20, 20, 20, 20},
                                       {200, 200, 3, 3},
                                       {1000, 3, 7, 2},
                                       {2, 98, 98, 2}}) {
            ASSERT_TRUE(equals.InEveryLayout(sizes, Content::kNoise));
            ASSERT_TRUE(equals.InEveryLayout(sizes, Content::kHostile));
        }
    }
}

TEST(ZoomNearest, ASourceStrideOf0RepeatsOneRow) {
    for (const ZoomForm& form : kForms) tqtest::ExpectOneRowForAll(form, {5, 4, 9, 7});
}

TEST(ZoomNearest, SizesAtRandomEqualTheReference) {
    for (const ZoomForm& form : kForms)
        ASSERT_TRUE(tqtest::ZoomSweep(form).WithSizesAtRandom(1000, 300, 9));
}

// Positions are formed in double precision: none is off by one far to the right or far down.
TEST(ZoomNearest, VeryWideAndVeryTallImagesEqualTheReference) {
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals(form);
        for (const ZoomSizes& sizes : {ZoomSizes{70000, 1, 100000, 1},
                                       {100000, 1, 70000, 1},
                                       {300007, 1, 99991, 1},
                                       {1, 70000, 1, 100000}})
            ASSERT_TRUE(equals(sizes, Content::kNoise));
    }
}

TEST(ZoomNearest, VideoSizesEqualTheReference) {
    for (const ZoomForm& form : kForms)
        for (const ZoomSizes& sizes : {ZoomSizes{720, 486, 1920, 1080}, {1920, 1080, 1280, 720}})
            ASSERT_TRUE(tqtest::EqualsReference(form, sizes, tqtest::ZoomLayouts()[1],
                                                Content::kNoise, 1, {tq::DetectIsaLevel()}));
}

// ---- Several host threads -----------------------------------------------------------------------

TEST(ZoomNearest, SeveralThreadsZoomDifferentImagesAtOnce) {
    std::vector<std::thread> threads;
    for (unsigned seed = 1; seed <= 4; ++seed)
        threads.emplace_back([seed] {
            const ZoomForm& form = kForms[seed % 2];
            for (int i = 0; i < 20; ++i) {
                tqtest::ZoomTrial trial(form, {31, 17, 20 + i, 23}, tqtest::ZoomLayouts()[seed],
                                        Content::kNoise, seed);
                EXPECT_TRUE(trial.Run());
            }
        });
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
