// The low-pass filter of the 5/3 wavelet in place: values known by hand, every byte of memory
// against the reference, rows that stay, sizes too small.

#include <gtest/gtest.h>
#include <tqipl/wavelet.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "reference/wavelet53_reference.h"
#include "support/filter_check.h"
#include "support/guarded_buffer.h"
#include "support/wavelet_check.h"

namespace {

using tqtest::AtEveryLevel;
using tqtest::BlockStage;
using tqtest::GuardedBuffer;
using tqtest::Noise;
using Image = std::vector<uint8_t>;

Image Filtered(unsigned width, unsigned height, Image image) {
    IPL_WaveletFilter_53_C1(width, height, width, image.data());
    return image;
}

// What one inner row becomes in an image of such rows.
Image FilteredRow(const Image& row) {
    Image image;
    for (int y = 0; y < 7; ++y) image.insert(image.end(), row.begin(), row.end());
    const unsigned width = static_cast<unsigned>(row.size());
    image = Filtered(width, 7, image);
    for (int y : {0, 1, 5, 6})
        EXPECT_EQ(Image(image.begin() + y * width, image.begin() + (y + 1) * width), row) << y;
    for (int y : {3, 4})
        EXPECT_EQ(std::memcmp(&image[y * width], &image[2 * width], width), 0) << y;
    return Image(image.begin() + 2 * width, image.begin() + 3 * width);
}

TEST(WaveletFilter, AConstantImageOf100Stays) {
    AtEveryLevel([] {
        for (unsigned width = 4; width < 40; ++width)
            for (unsigned height : {4, 5, 6, 9})
                ASSERT_EQ(Filtered(width, height, Image(width * height, 100)),
                          Image(width * height, 100))
                    << width << " x " << height;
    });
}

TEST(WaveletFilter, AConstantImageOf10Becomes0InTheInnerRowsOnly) {
    AtEveryLevel([] {
        Image expected(9 * 8, 10);
        std::fill(expected.begin() + 18, expected.end() - 18, uint8_t{0});
        EXPECT_EQ(Filtered(9, 8, Image(9 * 8, 10)), expected);
    });
}

TEST(WaveletFilter, LowResultsBecome0AndHighOnes235) {
    AtEveryLevel([] {
        const std::pair<uint8_t, uint8_t> known[] = {
            {0, 0}, {15, 0}, {16, 16}, {17, 17}, {234, 234}, {235, 235}, {236, 235}, {255, 235}};
        for (auto [value, expected] : known)
            for (size_t width : {4, 5, 6, 37})
                EXPECT_EQ(FilteredRow(Image(width, value)), Image(width, expected)) << int{value};
    });
}

TEST(WaveletFilter, OnePixelSpreadsOverItsNeighbours) {
    AtEveryLevel([] {
        Image image(81), expected(81);
        image[4 * 9 + 4] = 255;
        expected[4 * 9 + 4] = 143;
        for (int i : {3 * 9 + 4, 5 * 9 + 4, 4 * 9 + 3, 4 * 9 + 5}) expected[i] = 48;
        for (int i : {3 * 9 + 3, 3 * 9 + 5, 5 * 9 + 3, 5 * 9 + 5}) expected[i] = 16;
        EXPECT_EQ(Filtered(9, 9, image), expected);
    });
}

TEST(WaveletFilter, RowsAreMirroredAtBothEnds) {
    AtEveryLevel([] {
        EXPECT_EQ(FilteredRow({200, 0, 0, 0, 0, 0, 0, 0}), (Image{150, 50, 0, 0, 0, 0, 0, 0}));
        EXPECT_EQ(FilteredRow({0, 200, 0, 0, 0, 0, 0, 0}), (Image{100, 125, 50, 0, 0, 0, 0, 0}));
        EXPECT_EQ(FilteredRow({0, 0, 200, 0, 0, 0, 0, 0}), (Image{0, 50, 150, 50, 0, 0, 0, 0}));
        EXPECT_EQ(FilteredRow({0, 0, 0, 0, 0, 200, 0, 0}), (Image{0, 0, 0, 0, 50, 150, 50, 0}));
        EXPECT_EQ(FilteredRow({0, 0, 0, 0, 0, 0, 200, 0}), (Image{0, 0, 0, 0, 0, 50, 125, 100}));
        EXPECT_EQ(FilteredRow({0, 0, 0, 0, 0, 0, 0, 200}), (Image{0, 0, 0, 0, 0, 0, 50, 150}));
    });
}

TEST(WaveletFilter, FourAndFiveColumnsHaveTheirEndsOnly) {
    AtEveryLevel([] {
        EXPECT_EQ(FilteredRow({200, 0, 0, 0}), (Image{150, 50, 0, 0}));
        EXPECT_EQ(FilteredRow({0, 200, 0, 0}), (Image{100, 125, 50, 0}));
        EXPECT_EQ(FilteredRow({0, 0, 200, 0}), (Image{0, 50, 125, 100}));
        EXPECT_EQ(FilteredRow({0, 0, 0, 200}), (Image{0, 0, 50, 150}));
        EXPECT_EQ(FilteredRow({200, 0, 0, 0, 0}), (Image{150, 50, 0, 0, 0}));
        EXPECT_EQ(FilteredRow({0, 0, 200, 0, 0}), (Image{0, 50, 150, 50, 0}));
        EXPECT_EQ(FilteredRow({0, 0, 0, 200, 0}), (Image{0, 0, 50, 125, 100}));
    });
}

TEST(WaveletFilter, TheFirstAndTheLastTwoRowsStay) {
    AtEveryLevel([] {
        for (unsigned width : {4, 5, 17, 64})
            for (unsigned height = 0; height <= 9; ++height) {
                const Image image = Noise(width * height, height);
                const Image filtered = Filtered(width, height, image);
                for (unsigned y = 0; y < height; ++y) {
                    const bool same =
                        std::memcmp(&image[y * width], &filtered[y * width], width) == 0;
                    EXPECT_EQ(same, y < 2 || y + 2 >= height)
                        << width << " x " << height << ", row " << y;
                }
            }
    });
}

void ExpectFilterEqualsReference(BlockStage& stage, unsigned width, unsigned height,
                                 unsigned stride) {
    stage.Model(
        [&](tqref::Bytes* images) { tqref::WaveletFilter53(width, height, stride, images[0]); });
    ASSERT_TRUE(tqtest::CheckAtEveryLevel(
        stage,
        [&](uint8_t* const* images) { IPL_WaveletFilter_53_C1(width, height, stride, images[0]); }))
        << width << " x " << height << ", stride " << stride;
}

TEST(WaveletFilter, EqualsTheReferenceAtAllSizes) {
    BlockStage stage(1, 2048, 11);
    for (unsigned width = 0; width <= 70; ++width)
        for (unsigned height : {0, 1, 2, 3, 4, 5, 6, 7, 9, 14})
            for (unsigned padding : {0, 5})
                ExpectFilterEqualsReference(stage, width, height, width + padding);
    for (unsigned seed = 0; seed < 8; ++seed) {
        BlockStage large(1, 40000, 20 + seed);
        ExpectFilterEqualsReference(large, 500 + seed, 40 + seed, 510 + 3 * seed);
        ExpectFilterEqualsReference(large, 5 + seed, 500 + seed, 32 + seed);
    }
}

TEST(WaveletFilter, WidthsBelow4AndHeightsOf0TouchNothing) {
    GuardedBuffer buffer(16);
    uint8_t* forbidden = buffer.data() + buffer.size();
    for (unsigned width : {0u, 1u, 2u, 3u})
        for (unsigned height : {0u, 1u, 5u, 6u, 100u, 0xFFFFFFFFu})
            IPL_WaveletFilter_53_C1(width, height, 16, forbidden);
    for (unsigned width : {4u, 5u, 100u, 0xFFFFFFFFu})
        IPL_WaveletFilter_53_C1(width, 0, 16, forbidden);
}

TEST(WaveletBSpline, ChangesNothing) {
    Image image = Noise(64 * 64, 1);
    const Image before = image;
    IPL_Wavelet_BSpline_C1(64, 64, 64, image.data());
    EXPECT_EQ(image, before);
    IPL_Wavelet_BSpline_C1(0xFFFFFFFF, 0xFFFFFFFF, 0, nullptr);
    IPL_Wavelet_BSpline_C1(0, 0, 0, image.data());
    EXPECT_EQ(image, before);
}

}  // namespace
