// JBI zoom: known values, the calls that are the super zoom, the reference at every level, bands.

#include <gtest/gtest.h>
#include <tqipl/zoom.h>

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "reference/zoom_jbi_reference.h"
#include "support/guarded_buffer.h"
#include "support/settings.h"
#include "support/zoom_preamble.h"
#include "support/zoom_threads.h"

namespace {

using tqtest::Content;
using tqtest::GuardedBuffer;
using tqtest::GuardedImage;
using tqtest::ZoomForm;
using tqtest::ZoomPreamble;
using tqtest::ZoomSizes;

// What is left to the six-tap and the super zoom is left to the library's own, which have tests of
// their own.
void SixTap(const tqref::ZoomSource& src, const tqref::ZoomTarget& dst) {
    IPL_Zoom6Cubic_8u_C1R(src.width, src.height, src.stride, const_cast<uint8_t*>(src.first),
                          dst.width, dst.height, dst.stride, dst.first);
}

template <int channels, tqtest::ZoomFunction super>
void Reference(int srcWidth, int srcHeight, int srcStride, const uint8_t* src, int dstWidth,
               int dstHeight, int dstStride, uint8_t* dst) {
    if (!tqref::ZoomJbi(channels, {srcWidth, srcHeight, srcStride, src},
                        {dstWidth, dstHeight, dstStride, dst}, SixTap))
        super(srcWidth, srcHeight, srcStride, const_cast<uint8_t*>(src), dstWidth, dstHeight,
              dstStride, dst);
}

const ZoomForm kPlainC1 = {"IPL_ZoomJBI_8u_C1R", IPL_ZoomJBI_8u_C1R,
                           Reference<1, IPL_ZoomSuper_8u_C1R>, 1};
const ZoomForm kPlainC4 = {"IPL_ZoomJBI_8u_C4R", IPL_ZoomJBI_8u_C4R,
                           Reference<4, IPL_ZoomSuper_8u_C4R>, 4};
const ZoomForm kThreadedC1 = {"IPL_ZoomJBIMultiThread_8u_C1R", IPL_ZoomJBIMultiThread_8u_C1R,
                              Reference<1, IPL_ZoomSuperMultiThread_8u_C1R>, 1};
const ZoomForm kThreadedC4 = {"IPL_ZoomJBIMultiThread_8u_C4R", IPL_ZoomJBIMultiThread_8u_C4R,
                              Reference<4, IPL_ZoomSuperMultiThread_8u_C4R>, 4};
const std::vector<ZoomForm> kPlainForms = {kPlainC1, kPlainC4};
const std::vector<ZoomForm> kThreadedForms = {kThreadedC1, kThreadedC4};
const std::vector<ZoomForm> kForms = {kPlainC1, kPlainC4, kThreadedC1, kThreadedC4};

// ---- Values known by hand -----------------------------------------------------------------------

// The weighted mean of equal bytes may fall short of them by a rounding, which the truncation makes
// one.
TEST(ZoomJbi, AConstantImageStaysWithinOne) {
    for (int value : {0, 1, 100, 127, 128, 255})
        for (const ZoomSizes& s : {ZoomSizes{1, 1, 9, 9}, {6, 5, 7, 6}, {9, 7, 31, 23}})
            for (const ZoomForm& form : kForms) {
                const std::vector<int> source(s.srcWidth * s.srcHeight * form.channels, value);
                for (int byte : tqtest::ZoomBytes(form, s, source)) {
                    ASSERT_LE(byte, value) << form.name;
                    ASSERT_GE(byte, value - 1) << form.name;
                }
            }
}

// 4 rows and columns have no window. Pixel (1, 1) is at 0.25, 0.25 among columns and rows 0 to 2,
// with a quarter of the square of the distance: the corner weighs 0.42465 on each axis. At (3, 3),
// at 1.25, all four columns and rows count, with 4/25: 0.23633 for column 0.
TEST(ZoomJbi, FourRowsAndColumnsAreWeighedByDistanceAlone) {
    std::vector<int> source(16);
    source[0] = 200;
    for (const ZoomForm& form : kForms) {
        const bool four = form.channels == 4;
        const std::vector<int> result =
            tqtest::ZoomBytes(form, {4, 4, 8, 8}, four ? tqtest::InFourChannels(source) : source);
        const auto pixel = [&](int x, int y) { return result[(y * 8 + x) * form.channels]; };
        EXPECT_EQ(pixel(1, 1), 36) << form.name;
        EXPECT_EQ(pixel(3, 3), 11) << form.name;
        EXPECT_EQ(pixel(6, 6), 0) << form.name;
    }
}

TEST(ZoomJbi, TwoRowsOfOneChannelAreThoseOfTheEstimate) {
    for (const ZoomSizes& s :
         {ZoomSizes{7, 1, 15, 2}, {1, 7, 2, 15}, {1, 1, 2, 2}, {9, 1, 10, 2}, {1, 9, 2, 10}})
        for (const ZoomForm& form : {kPlainC1, kThreadedC1})
            tqtest::ExpectSameZoom(form, IPL_ZoomCubicCorrect_8u_C1R, s);
}

TEST(ZoomJbi, TheFrameOfOneChannelIsThatOfTheEstimate) {
    for (const ZoomSizes& s : {ZoomSizes{9, 7, 20, 15}, {9, 7, 11, 9}, {3, 3, 4, 4}})
        for (const ZoomForm& form : {kPlainC1, kThreadedC1}) {
            GuardedImage src(s.srcWidth, s.srcHeight, {GuardedBuffer::kEnd, 3});
            GuardedImage dst(s.dstWidth, s.dstHeight, {GuardedBuffer::kEnd, 2});
            GuardedImage guide(s.dstWidth, s.dstHeight, {});
            tqtest::Fill(src.Memory(), src.Size(), Content::kNoise, 4);
            form.function(s.srcWidth, s.srcHeight, src.Stride(), src.First(), s.dstWidth,
                          s.dstHeight, dst.Stride(), dst.First());
            IPL_ZoomCubicCorrect_8u_C1R(s.srcWidth, s.srcHeight, src.Stride(), src.First(),
                                        s.dstWidth, s.dstHeight, guide.Stride(), guide.First());
            for (int y = 0; y < s.dstHeight; ++y)
                for (int x = 0; x < s.dstWidth; ++x)
                    if (y == 0 || y == s.dstHeight - 1 || x == 0 || x == s.dstWidth - 1) {
                        EXPECT_EQ(dst.Row(y)[x], guide.Row(y)[x]) << form.name << x << ", " << y;
                    }
        }
}

// The top row is a linear zoom of the source's top row alone, and so on.
TEST(ZoomJbi, TheFrameOfFourChannelsIsALinearZoomOfTheSourcesFrame) {
    for (const ZoomSizes& s : {ZoomSizes{9, 7, 20, 15}, {9, 7, 11, 9}, {3, 3, 4, 4}, {1, 1, 5, 4}})
        for (const ZoomForm& form : {kPlainC4, kThreadedC4}) {
            GuardedImage src(s.srcWidth * 4, s.srcHeight, {GuardedBuffer::kEnd, 3});
            GuardedImage dst(s.dstWidth * 4, s.dstHeight, {GuardedBuffer::kEnd, 2});
            tqtest::Fill(src.Memory(), src.Size(), Content::kNoise, 4);
            form.function(s.srcWidth, s.srcHeight, src.Stride(), src.First(), s.dstWidth,
                          s.dstHeight, dst.Stride(), dst.First());
            for (int end : {0, 1}) {
                std::vector<uint8_t> row(s.dstWidth * 4), column(s.dstHeight * 4);
                const int srcRow = end * (s.srcHeight - 1), dstRow = end * (s.dstHeight - 1);
                IPL_ZoomLinear_8u_C4R(s.srcWidth, 1, src.Stride(), src.Row(srcRow), s.dstWidth, 1,
                                      s.dstWidth * 4, row.data());
                EXPECT_EQ(std::memcmp(dst.Row(dstRow), row.data(), row.size()), 0) << form.name;
                IPL_ZoomLinear_8u_C4R(1, s.srcHeight, src.Stride(),
                                      src.First() + end * (s.srcWidth - 1) * 4, 1, s.dstHeight, 4,
                                      column.data());
                for (int y = 0; y < s.dstHeight; ++y)
                    EXPECT_EQ(std::memcmp(dst.Row(y) + end * (s.dstWidth - 1) * 4,
                                          column.data() + 4 * y, 4),
                              0)
                        << form.name << ", row " << y;
            }
        }
}

// ---- The calls that are the super zoom ----------------------------------------------------------

TEST(ZoomJbi, ACallThatDoesNotEnlargeBothAxesIsTheSuperZoomOfTheSameForm) {
    const std::vector<ZoomSizes> sizes = {
        {20, 14, 20, 28}, {20, 14, 40, 14}, {20, 14, 19, 28}, {20, 14, 40, 13}, {20, 14, 10, 7},
        {20, 14, 20, 13}, {20, 14, 19, 14}, {1, 1, 1, 2},     {1, 1, 2, 1},     {1, 9, 1, 4},
        {67, 9, 33, 8},   {3, 8, 2, 7},     {9, 67, 3, 200}};
    const auto expect = tqtest::ExpectSameZoomAtEveryLevelAndProcessorCount;
    expect(kPlainC1, IPL_ZoomSuper_8u_C1R, sizes);
    expect(kPlainC4, IPL_ZoomSuper_8u_C4R, sizes);
    expect(kThreadedC1, IPL_ZoomSuperMultiThread_8u_C1R, sizes);
    expect(kThreadedC4, IPL_ZoomSuperMultiThread_8u_C4R, sizes);
}

TEST(ZoomJbi, OneEqualAxisFallsOnToTheSixTapZoom) {
    for (const ZoomSizes& s : {ZoomSizes{20, 14, 20, 28},
                               {20, 14, 40, 14},
                               {20, 14, 19, 28},
                               {20, 14, 21, 13},
                               {1, 5, 1, 9}}) {
        tqtest::ExpectSameZoom(kPlainC1, IPL_Zoom6Cubic_8u_C1R, s);
        tqtest::ExpectSameZoom(kPlainC4, IPL_Zoom6Cubic_8u_C4R, s);
        tqtest::ExpectSameZoom(kThreadedC1, IPL_Zoom6CubicMultiThread_8u_C1R, s);
        tqtest::ExpectSameZoom(kThreadedC4, IPL_Zoom6CubicMultiThread_8u_C4R, s);
    }
}

// The two four-channel super zooms differ here.
TEST(ZoomJbi, FourChannelsAreHandedToTheFormThatWasCalled) {
    const std::vector<int> source(3 * 8 * 4, 100);
    const std::vector<int> plain = tqtest::ZoomBytes(kPlainC4, {3, 8, 2, 7}, source);
    const std::vector<int> threaded = tqtest::ZoomBytes(kThreadedC4, {3, 8, 2, 7}, source);
    EXPECT_EQ(plain[5 * 2 * 4], 100);
    EXPECT_EQ(threaded[5 * 2 * 4], 99);
}

// ---- What comes before the method ---------------------------------------------------------------

INSTANTIATE_TEST_SUITE_P(ZoomJbi, ZoomPreamble, testing::ValuesIn(kForms), tqtest::ZoomFormName);

// ---- The reference at every level ---------------------------------------------------------------

TEST(ZoomJbi, SmallSizesEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (int srcWidth = 1; srcWidth <= 7; ++srcWidth)
            for (int srcHeight = 1; srcHeight <= 7; ++srcHeight)
                for (int moreWidth : {1, 2, 5, 9})
                    for (int moreHeight : {1, 3, 8}) {
                        const ZoomSizes s = {srcWidth, srcHeight, srcWidth + moreWidth,
                                             srcHeight + moreHeight};
                        ASSERT_TRUE(equals(s, Content::kNoise));
                        ASSERT_TRUE(equals(s, Content::kHostile));
                    }
    }
}

TEST(ZoomJbi, WidthsOfEveryTailEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (int dstWidth = 6; dstWidth <= 70; ++dstWidth)
            for (int srcWidth : {5, 6, 7, 11, 16, 31, 33, 64}) {
                if (srcWidth >= dstWidth) continue;
                ASSERT_TRUE(equals({srcWidth, 5, dstWidth, 8}, Content::kNoise));
            }
    }
}

const std::vector<ZoomSizes>& EnlargedSizes() {
    static const std::vector<ZoomSizes> sizes = {
        {1, 1, 2, 2},     {1, 1, 3, 3},     {2, 2, 3, 3},     {4, 4, 5, 5},     {4, 9, 11, 21},
        {9, 4, 21, 11},   {5, 5, 6, 6},     {5, 5, 10, 10},   {5, 5, 9, 11},    {6, 6, 11, 12},
        {6, 6, 12, 12},   {13, 7, 31, 17},  {20, 14, 21, 15}, {20, 14, 40, 28}, {20, 14, 39, 28},
        {20, 14, 40, 27}, {20, 14, 41, 29}, {17, 19, 53, 41}, {31, 9, 62, 101}, {9, 31, 101, 62},
        {67, 6, 131, 13}, {64, 5, 65, 6}};
    return sizes;
}

TEST(ZoomJbi, EveryLayoutEqualsTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        for (const ZoomSizes& sizes : EnlargedSizes()) {
            ASSERT_TRUE(equals.InEveryLayout(sizes, Content::kNoise));
            ASSERT_TRUE(equals.InEveryLayout(sizes, Content::kHostile));
        }
        for (const ZoomSizes& sizes : tqtest::ZoomSizesOfEveryKind())
            ASSERT_TRUE(equals(sizes, Content::kNoise));
    }
}

// Flat areas, soft slopes and edges, so that every kind of window and of gradient is met.
std::vector<uint8_t> Picture(int width, int height, int channels) {
    std::vector<uint8_t> bytes;
    uint32_t state = 3;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int channel = 0; channel < channels; ++channel) {
                state = state * 1664525u + 1013904223u;
                int value = 60 + 20 * channel;
                if (x > width / 3) value += 3 * x - width;
                if (y > height / 2) value = 255 - value / 2;
                if ((x - width / 2) * (x - width / 2) + y * y < height * height / 9) value = 17;
                if (x > 2 * width / 3 && y < height / 2) value += static_cast<int>(state >> 27);
                bytes.push_back(static_cast<uint8_t>(std::min(std::max(value, 0), 255)));
            }
    return bytes;
}

TEST(ZoomJbi, APictureEqualsTheReference) {
    tqtest::Settings settings;
    for (const ZoomForm& form : kPlainForms) {
        const int n = form.channels;
        std::vector<uint8_t> src = Picture(60, 44, n);
        for (auto [width, height] : {std::pair{61, 45}, {97, 60}, {120, 88}, {181, 133}}) {
            std::vector<uint8_t> expected(width * height * n), actual(expected.size());
            form.reference(60, 44, 60 * n, src.data(), width, height, width * n, expected.data());
            for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                settings.Use(level);
                form.function(60, 44, 60 * n, src.data(), width, height, width * n, actual.data());
                ASSERT_EQ(actual, expected) << form.name << ", " << tq::IsaLevelName(level);
            }
        }
    }
}

TEST(ZoomJbi, SizesAtRandomEqualTheReference) {
    for (const ZoomForm& form : kPlainForms) {
        tqtest::ZoomSweep equals(form);
        uint32_t state = 7;
        const auto upTo = [&state](int greatest) {
            state = state * 1664525u + 1013904223u;
            return 1 + static_cast<int>((state >> 8) % static_cast<uint32_t>(greatest));
        };
        for (int i = 0; i < 150; ++i) {
            const int width = upTo(40), height = upTo(14);
            const ZoomSizes s = {width, height, width + upTo(60), height + upTo(20)};
            ASSERT_TRUE(equals(s, i % 2 == 0 ? Content::kNoise : Content::kHostile));
        }
    }
}

TEST(ZoomJbi, VeryWideAndVeryTallImagesEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(2);
    for (const ZoomForm& form : kForms)
        for (const ZoomSizes& sizes : {ZoomSizes{8009, 5, 8011, 6}, {5, 8009, 6, 8011}})
            ASSERT_TRUE(tqtest::EqualsReference(form, sizes, tqtest::ZoomLayouts()[1],
                                                Content::kNoise, 1, {tq::DetectIsaLevel()}));
}

TEST(ZoomJbi, VideoSizesEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(4);
    for (const ZoomForm& form : {kPlainC1, kThreadedC1})
        ASSERT_TRUE(tqtest::EqualsReference(form, {320, 180, 480, 270}, tqtest::ZoomLayouts()[1],
                                            Content::kNoise, 1, {tq::DetectIsaLevel()}));
    ASSERT_TRUE(tqtest::EqualsReference(kThreadedC4, {720, 486, 1920, 1080},
                                        tqtest::ZoomLayouts()[1], Content::kNoise, 1,
                                        {tq::DetectIsaLevel()}));
}

// ---- Bands --------------------------------------------------------------------------------------

TEST(ZoomJbi, MultiThreadEqualsPlainAtEveryProcessorCount) {
    for (const ZoomSizes& s : {ZoomSizes{9, 6, 21, 13},
                               {7, 1, 15, 2},
                               {7, 2, 15, 3},
                               {7, 4, 15, 18},
                               {7, 5, 15, 11},
                               {9, 12, 14, 17},
                               {8, 20, 17, 45},
                               {6, 37, 7, 38}}) {
        tqtest::ExpectThreadedEqualsPlain(kPlainC1, kThreadedC1, s);
        tqtest::ExpectThreadedEqualsPlain(kPlainC4, kThreadedC4, s);
    }
}

TEST(ZoomJbi, MultiThreadEqualsTheReferenceAtEveryProcessorCount) {
    for (const ZoomForm& form : kThreadedForms)
        for (const ZoomSizes& s : {ZoomSizes{11, 7, 25, 15}, {6, 12, 8, 21}})
            tqtest::ExpectReferenceAtEveryProcessorCount(form, s);
}

TEST(ZoomJbi, SeveralThreadsZoomDifferentImagesAtOnce) {
    tqtest::ExpectSeveralThreadsZoomAtOnce(kForms, {13, 9, 20, 23});
}

}  // namespace
