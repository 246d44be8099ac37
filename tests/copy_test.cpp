// Image copies: whole, by format, flipped, inside and outside of rectangles, in bands.

#include <gtest/gtest.h>
#include <tqipl/image_memory.h>
#include <tqipl/thread.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <functional>
#include <numeric>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "memory/copy_tasks.h"
#include "reference/image_memory_reference.h"
#include "support/guarded_buffer.h"
#include "support/image_stage.h"
#include "support/settings.h"

namespace {

using Image = std::vector<unsigned char>;
using Pixels = std::vector<uint32_t>;

constexpr uint8_t kOld = 0xEE;  // what a destination holds before a call

// 1, 2, 3 and so on, round again before kOld.
Image Numbered(size_t bytes) {
    Image image(bytes);
    for (size_t i = 0; i < bytes; ++i) image[i] = static_cast<uint8_t>(i % (kOld - 1) + 1);
    return image;
}

Pixels NumberedPixels(size_t count) {
    Pixels pixels(count);
    std::iota(pixels.begin(), pixels.end(), 1u);
    return pixels;
}

unsigned char* BytesOf(Pixels& pixels) { return reinterpret_cast<unsigned char*>(pixels.data()); }

// How many bytes from the start on equal src, when all behind them are as they were.
size_t CopiedPrefix(const Image& src, const Image& dst) {
    size_t count = 0;
    while (count < dst.size() && dst[count] != kOld) ++count;
    EXPECT_TRUE(std::equal(dst.begin(), dst.begin() + count, src.begin()));
    EXPECT_EQ(std::count(dst.begin() + count, dst.end(), kOld), int64_t(dst.size() - count));
    return count;
}

// ---- Formats -------------------------------------------------------------------------------

static_assert(TQ_COLOR_ARGB == 1 && TQ_COLOR_BGR24 == 4 && TQ_COLOR_AYUV == 32);
static_assert(TQ_COLOR_YUYV == 64 && TQ_COLOR_UYVY == 128 && TQ_COLOR_PACKED32 == 256);
static_assert(TQ_COLOR_YUVP_422 == 512 && TQ_COLOR_BGR10B == 0x4000 && TQ_COLOR_V216 == 0x20000);
static_assert(TQ_COLOR_V210 == 0x40000 && TQ_COLOR_BGR16B == 0x200000);
static_assert(TQ_COLOR_GRAY8 == 0x20000000);

TEST(PixelRatio, IsTwoForThePacked422FormatsAndFourForEveryOtherValue) {
    for (TQ_COLOR_FORMAT format : tqtest::kFormats) {
        const int expected = format == TQ_COLOR_YUYV || format == TQ_COLOR_UYVY ? 2 : 4;
        unsigned long number = static_cast<unsigned long>(format);
        TQ_COLOR_FORMAT named = format;
        EXPECT_EQ(IPL_PixelRatio(format), expected) << format;
        EXPECT_EQ(IPL_PixelRatio(number), expected) << format;
        EXPECT_EQ(IPL_PixelRatioEx(named), expected) << format;
        EXPECT_EQ(IPL_PixelRatioEx(number), expected) << format;
        EXPECT_EQ(named, format);
        EXPECT_EQ(number, static_cast<unsigned long>(format));
    }
    EXPECT_EQ(IPL_PixelRatio(64ul), 2);
    EXPECT_EQ(IPL_PixelRatio(128ul), 2);
    EXPECT_EQ(IPL_PixelRatio(192ul), 4);
}

// ---- Values known by hand ------------------------------------------------------------------

TEST(Memcpy, BlockTakesTheDestinationFirst) {
    unsigned char src[4] = {1, 2, 3, 4}, dst[4] = {9, 9, 9, 9};
    IPL_Memcpy(dst, src, 3);
    EXPECT_EQ(Image(dst, dst + 4), (Image{1, 2, 3, 9}));
    EXPECT_EQ(Image(src, src + 4), (Image{1, 2, 3, 4}));
}

TEST(Memcpy, BlockOfASizeBelowOneCopiesNothing) {
    unsigned char src[4] = {1, 2, 3, 4}, dst[4] = {9, 9, 9, 9};
    for (int size : {0, -1, -4, INT_MIN}) {
        IPL_Memcpy(dst, src, size);
        EXPECT_EQ(Image(dst, dst + 4), (Image{9, 9, 9, 9})) << size;
    }
}

TEST(Memcpy, RowsAreWidthTwoWidthsAndFourWidthsLong) {
    Image src = Numbered(2 * 20);
    Image bytes(2 * 10, kOld), shorts = bytes, words = bytes;
    IPL_Memcpy_C1R(2, 2, 20, src.data(), 10, bytes.data());
    IPL_Memcpy_C1R_16u(2, 2, 20, src.data(), 10, shorts.data());
    IPL_Memcpy_C4R(2, 2, 20, src.data(), 10, words.data());
    const uint8_t o = kOld;
    EXPECT_EQ(bytes, (Image{1, 2, o, o, o, o, o, o, o, o, 21, 22, o, o, o, o, o, o, o, o}));
    EXPECT_EQ(shorts, (Image{1, 2, 3, 4, o, o, o, o, o, o, 21, 22, 23, 24, o, o, o, o, o, o}));
    EXPECT_EQ(words, (Image{1, 2, 3, 4, 5, 6, 7, 8, o, o, 21, 22, 23, 24, 25, 26, 27, 28, o, o}));
}

TEST(Memcpy, DenseImagesEqualTheirRowsOneByOne) {
    Image src = Numbered(12 * 5), dense(12 * 5, kOld), rows = dense;
    IPL_Memcpy_C4R(3, 5, 12, src.data(), 12, dense.data());
    for (int y = 0; y < 5; ++y)
        IPL_Memcpy_C4R(3, 1, 100, src.data() + 12 * y, 200, rows.data() + 12 * y);
    EXPECT_EQ(dense, src);
    EXPECT_EQ(rows, src);
}

TEST(Memcpy, OneDenseStrideOfTwoStillMeansRows) {
    Image src = Numbered(8), dst(8, kOld);
    IPL_Memcpy_C1R(2, 2, 2, src.data(), 4, dst.data());
    EXPECT_EQ(dst, (Image{1, 2, kOld, kOld, 3, 4, kOld, kOld}));
    dst.assign(8, kOld);
    IPL_Memcpy_C1R(2, 2, 4, src.data(), 2, dst.data());
    EXPECT_EQ(dst, (Image{1, 2, 5, 6, kOld, kOld, kOld, kOld}));
}

TEST(Memcpy, RowsComeInOrderWhereTheDestinationOverlapsItself) {
    Image src = Numbered(9), dst(7, kOld);
    IPL_Memcpy_C1R(3, 3, 3, src.data(), 1, dst.data());
    EXPECT_EQ(dst, (Image{1, 4, 7, 8, 9, kOld, kOld}));
}

TEST(Memcpy, NegativeStridesWalkUpwards) {
    Image src = Numbered(6), dst(6, kOld);
    IPL_Memcpy_C1R(2, 3, -2, src.data() + 4, 2, dst.data());
    EXPECT_EQ(dst, (Image{5, 6, 3, 4, 1, 2}));
}

TEST(Memcpy, FormatsCopyTheRowBytesOfTheirStorage) {
    const std::pair<TQ_COLOR_FORMAT, size_t> rowOfFive[] = {
        {TQ_COLOR_ARGB, 20},     {TQ_COLOR_AYUV, 20},     {TQ_COLOR_PACKED32, 20},
        {TQ_COLOR_BGR10B, 20},   {TQ_COLOR_YUYV, 8},      {TQ_COLOR_UYVY, 8},
        {TQ_COLOR_V216, 20},     {TQ_COLOR_V210, 128},    {TQ_COLOR_BGR16B, 30},
        {TQ_COLOR_GRAY8, 5},     {TQ_COLOR_YUVP_422, 10}, {TQ_COLOR_BGR24, 0},
        {TQ_COLOR_FORMAT(0), 0}, {TQ_COLOR_FORMAT(2), 0}, {TQ_COLOR_FORMAT(-1), 0}};
    for (auto [format, rowBytes] : rowOfFive) {
        Image src = Numbered(200), plain(200, kOld), threaded = plain;
        IPL_Memcpy(format, 5, 1, 200, src.data(), 200, plain.data());
        IPL_MemcpyMultiThread(format, 5, 1, 200, src.data(), 200, threaded.data());
        EXPECT_EQ(CopiedPrefix(src, plain), rowBytes) << format;
        EXPECT_EQ(CopiedPrefix(src, threaded), rowBytes) << format;
    }
}

TEST(Memcpy, V210RowsAre128BytesForEachStartedGroupOf48) {
    const std::pair<int, size_t> rows[] = {{1, 128},     {47, 128},    {48, 128},   {49, 256},
                                           {1919, 5120}, {1920, 5120}, {1921, 5248}};
    for (auto [width, rowBytes] : rows) {
        Image src = Numbered(5300), plain(5300, kOld), threaded = plain;
        IPL_Memcpy(TQ_COLOR_V210, width, 1, 6000, src.data(), 6000, plain.data());
        IPL_MemcpyMultiThread(TQ_COLOR_V210, width, 1, 6000, src.data(), 6000, threaded.data());
        EXPECT_EQ(CopiedPrefix(src, plain), rowBytes) << width;
        EXPECT_EQ(CopiedPrefix(src, threaded), rowBytes) << width;
    }
}

TEST(Memcpy, V210RowsKeepTheirPaddingInBothForms) {
    Image src = Numbered(2 * 150), plain(2 * 140, kOld), threaded = plain;
    Image expected = plain;
    std::copy_n(src.begin(), 128, expected.begin());
    std::copy_n(src.begin() + 150, 128, expected.begin() + 140);
    IPL_Memcpy(TQ_COLOR_V210, 48, 2, 150, src.data(), 140, plain.data());
    IPL_MemcpyMultiThread(TQ_COLOR_V210, 48, 2, 150, src.data(), 140, threaded.data());
    EXPECT_EQ(plain, expected);
    EXPECT_EQ(threaded, expected);
}

TEST(Memcpy, Yuvp422IsOneBlockWhateverTheStrides) {
    for (int stride : {4, 8, 100, 0, -5}) {
        Image src = Numbered(40), plain(40, kOld), threaded = plain;
        IPL_Memcpy(TQ_COLOR_YUVP_422, 4, 3, stride, src.data(), stride + 1, plain.data());
        IPL_MemcpyMultiThread(TQ_COLOR_YUVP_422, 4, 3, stride, src.data(), stride + 1,
                              threaded.data());
        EXPECT_EQ(CopiedPrefix(src, plain), 24u) << stride;
        EXPECT_EQ(CopiedPrefix(src, threaded), 24u) << stride;
    }
}

TEST(Memcpy, AnOddLastColumnOfPacked422IsNotCopied) {
    for (TQ_COLOR_FORMAT format : {TQ_COLOR_YUYV, TQ_COLOR_UYVY}) {
        Image src = Numbered(12), dst(12, kOld);
        IPL_Memcpy(format, 3, 2, 6, src.data(), 6, dst.data());
        EXPECT_EQ(dst, (Image{1, 2, 3, 4, kOld, kOld, 7, 8, 9, 10, kOld, kOld}));
        dst.assign(12, kOld);
        IPL_Memcpy(format, 1, 2, 2, src.data(), 2, dst.data());
        EXPECT_EQ(dst, Image(12, kOld));
    }
}

TEST(Memcpy, Bgr24AndUnknownFormatsLeaveTheDestinationAlone) {
    for (int value : {int{TQ_COLOR_BGR24}, 0, 2, 3, 8, 65, -1, INT_MIN}) {
        const auto format = static_cast<TQ_COLOR_FORMAT>(value);
        Image src = Numbered(64), dst(64, kOld);
        IPL_Memcpy(format, 4, 4, 12, src.data(), 12, dst.data());
        IPL_MemcpyMultiThread(format, 4, 4, 12, src.data(), 12, dst.data());
        IPL_MemcpyInvert(format, 4, 4, 12, src.data(), 12, dst.data());
        EXPECT_EQ(dst, Image(64, kOld)) << value;
    }
}

TEST(Memcpy, ByFormatANullImageDoesNothing) {
    for (TQ_COLOR_FORMAT format : tqtest::kFormats) {
        Image image(400, kOld);
        IPL_Memcpy(format, 4, 2, 200, nullptr, 200, image.data());
        IPL_Memcpy(format, 4, 2, 200, image.data(), 200, nullptr);
        IPL_Memcpy(format, 4, 2, 200, nullptr, 200, nullptr);
        IPL_MemcpyMultiThread(format, 4, 2, 200, nullptr, 200, image.data());
        IPL_MemcpyMultiThread(format, 4, 2, 200, image.data(), 200, nullptr);
        IPL_MemcpyMultiThread(format, 4, 2, 200, nullptr, 200, nullptr);
        EXPECT_EQ(image, Image(400, kOld)) << format;
    }
}

TEST(MemcpyInvert, RowsComeInReverseOrder) {
    Image src = Numbered(3 * 8), bytes(3 * 9, kOld), words = bytes;
    IPL_MemcpyInvert_CR1(2, 3, 8, src.data(), 9, bytes.data());
    IPL_MemcpyInvert_CR4(2, 3, 8, src.data(), 9, words.data());
    const uint8_t o = kOld;
    EXPECT_EQ(bytes, (Image{17, 18, o, o, o, o, o, o, o, 9, 10, o, o, o,
                            o,  o,  o, o, 1, 2, o, o, o, o, o,  o, o}));
    EXPECT_EQ(words, (Image{17, 18, 19, 20, 21, 22, 23, 24, o, 9, 10, 11, 12, 13,
                            14, 15, 16, o,  1,  2,  3,  4,  5, 6, 7,  8,  o}));
}

TEST(MemcpyInvert, DenseImagesAreReversedToo) {
    Image src{1, 2, 3, 4, 5, 6}, dst(6, kOld);
    IPL_MemcpyInvert_CR1(2, 3, 2, src.data(), 2, dst.data());
    EXPECT_EQ(dst, (Image{5, 6, 3, 4, 1, 2}));
    IPL_MemcpyInvert_CR1(6, 1, 6, src.data(), 6, dst.data());
    EXPECT_EQ(dst, src);
}

TEST(MemcpyInvert, FormatsHaveRowsOfFourTwoOrOneBytesAPixelOrNone) {
    const std::pair<TQ_COLOR_FORMAT, size_t> rowOfFive[] = {
        {TQ_COLOR_ARGB, 20},    {TQ_COLOR_AYUV, 20}, {TQ_COLOR_PACKED32, 20}, {TQ_COLOR_YUYV, 8},
        {TQ_COLOR_UYVY, 8},     {TQ_COLOR_GRAY8, 5}, {TQ_COLOR_YUVP_422, 8},  {TQ_COLOR_BGR10B, 0},
        {TQ_COLOR_V216, 0},     {TQ_COLOR_V210, 0},  {TQ_COLOR_BGR16B, 0},    {TQ_COLOR_BGR24, 0},
        {TQ_COLOR_FORMAT(0), 0}};
    for (auto [format, rowBytes] : rowOfFive) {
        Image src = Numbered(400), dst(400, kOld), expected = dst;
        IPL_MemcpyInvert(format, 5, 2, 150, src.data(), 200, dst.data());
        std::copy_n(src.begin() + 150, rowBytes, expected.begin());
        std::copy_n(src.begin(), rowBytes, expected.begin() + 200);
        EXPECT_EQ(dst, expected) << format;
    }
}

TEST(Memcpy, SizesBelowOneCopyNothing) {
    unsigned char src[64] = {}, dst[64];
    std::fill(std::begin(dst), std::end(dst), kOld);
    const Image untouched(dst, dst + 64);
    for (auto [width, height] : {std::pair{0, 3},
                                 {3, 0},
                                 {0, 0},
                                 {-3, 3},
                                 {3, -3},
                                 {-3, -3},
                                 {-48, -2},
                                 {-100, 1},
                                 {1, INT_MIN},
                                 {INT_MIN, 1},
                                 {-1, INT_MIN}})
        for (int perPixel : {0, 1, 2, 4, 6}) {
            // Dense by the routine's own row size, too.
            const int stride = width > INT_MIN / 8 ? width * perPixel : 0;
            IPL_Memcpy_C1R(width, height, stride, src, stride, dst);
            IPL_Memcpy_C1R_16u(width, height, stride, src, stride, dst);
            IPL_Memcpy_C4R(width, height, stride, src, stride, dst);
            IPL_MemcpyInvert_CR1(width, height, stride, src, stride, dst);
            IPL_MemcpyInvert_CR4(width, height, stride, src, stride, dst);
            IPL_MemcpyMultiThread_C1R(width, height, stride, src, stride, dst);
            IPL_MemcpyMultiThread_C1R_16u(width, height, stride, src, stride, dst);
            IPL_MemcpyMultiThread_C4R(width, height, stride, src, stride, dst);
            for (TQ_COLOR_FORMAT format : tqtest::kFormats) {
                IPL_Memcpy(format, width, height, stride, src, stride, dst);
                IPL_MemcpyInvert(format, width, height, stride, src, stride, dst);
                IPL_MemcpyMultiThread(format, width, height, stride, src, stride, dst);
                for (TQ_RECT rect : {TQ_RECT{0, 0, 2, 2}, {-9, -9, 9, 9}, {1, 1, 0, 0}})
                    for (int clearRest : {0, 1}) {
                        IPL_MemcpyIn(format, width, height, stride, src, stride, dst, rect,
                                     clearRest);
                        IPL_MemcpyOut(format, width, height, stride, src, stride, dst, rect,
                                      clearRest);
                    }
            }
            ASSERT_EQ(Image(dst, dst + 64), untouched) << width << " x " << height;
        }
}

TEST(Memcpy, NegativeSizesCopyNothingWhereTheirRowBytesWrapToPositive) {
    // Times 4, times 6, and a V210 row in 32 bits: 4, 4 and 128; twice the height: 2.
    for (auto [width, height] : {std::pair{-1073741823, 1},
                                 {-715827882, 1},
                                 {-1610612735, 1},
                                 {3, -2147483647},
                                 {-1, -2147483647}})
        for (TQ_COLOR_FORMAT format : tqtest::kFormats) {
            Image src = Numbered(256), dst(256, kOld);
            IPL_Memcpy(format, width, height, 4, src.data(), 4, dst.data());
            IPL_MemcpyMultiThread(format, width, height, 4, src.data(), 4, dst.data());
            if (width < 0) IPL_MemcpyInvert(format, width, 1, 4, src.data(), 4, dst.data());
            if (width < 0) IPL_MemcpyMultiThread_C4R(width, 1, 4, src.data(), 4, dst.data());
            if (height < 0) IPL_MemcpyMultiThread_C1R(3, height, 3, src.data(), 3, dst.data());
            for (int clearRest : {0, 1}) {
                IPL_MemcpyIn(format, width, height, 4, src.data(), 4, dst.data(), {-9, -9, 9, 9},
                             clearRest);
                IPL_MemcpyOut(format, width, height, 4, src.data(), 4, dst.data(), {-9, -9, 0, 0},
                              clearRest);
            }
            EXPECT_EQ(dst, Image(256, kOld)) << width << " x " << height << ", format " << format;
        }
}

TEST(Memcpy, AnImageCopiedOntoItselfStaysAsItIs) {
    for (TQ_COLOR_FORMAT format : tqtest::kFormats)
        for (int stride : {128, 131}) {
            // A row of V210 reaches past the image from where the rectangle starts.
            const Image image = Numbered(5 * stride);
            Image same = image;
            IPL_Memcpy(format, 20, 3, stride, same.data(), stride, same.data());
            IPL_MemcpyMultiThread(format, 20, 3, stride, same.data(), stride, same.data());
            IPL_MemcpyIn(format, 20, 3, stride, same.data(), stride, same.data(), {5, 1, 9, 2}, 0);
            IPL_MemcpyOut(format, 20, 3, stride, same.data(), stride, same.data(), {5, 1, 9, 2}, 0);
            EXPECT_EQ(same, image) << format;
        }
}

// ---- Rectangles by hand --------------------------------------------------------------------

constexpr uint32_t kOldPixel = 0xEEEEEEEE;

// A 4 by 3 image of numbered ARGB pixels through the forms with and without a format.
Pixels In(TQ_RECT rect, int clearRest) {
    Pixels src = NumberedPixels(12), dst(12, kOldPixel), unnamed = dst;
    IPL_MemcpyIn(TQ_COLOR_ARGB, 4, 3, 16, BytesOf(src), 16, BytesOf(dst), rect, clearRest);
    IPL_MemcpyIn(4, 3, 16, BytesOf(src), 16, BytesOf(unnamed), rect, clearRest);
    EXPECT_EQ(unnamed, dst);
    return dst;
}

Pixels Out(TQ_RECT rect, int clearRest) {
    Pixels src = NumberedPixels(12), dst(12, kOldPixel), unnamed = dst;
    IPL_MemcpyOut(TQ_COLOR_ARGB, 4, 3, 16, BytesOf(src), 16, BytesOf(dst), rect, clearRest);
    IPL_MemcpyOut(4, 3, 16, BytesOf(src), 16, BytesOf(unnamed), rect, clearRest);
    EXPECT_EQ(unnamed, dst);
    return dst;
}

TEST(MemcpyIn, CopiesTheInsideAndClearsTheRestOnRequest) {
    const uint32_t o = kOldPixel;
    EXPECT_EQ(In({1, 1, 3, 2}, 0), (Pixels{o, o, o, o, o, 6, 7, o, o, o, o, o}));
    EXPECT_EQ(In({1, 1, 3, 2}, 1), (Pixels{0, 0, 0, 0, 0, 6, 7, 0, 0, 0, 0, 0}));
    EXPECT_EQ(In({1, 1, 3, 2}, -1), (Pixels{0, 0, 0, 0, 0, 6, 7, 0, 0, 0, 0, 0}));
    EXPECT_EQ(In({0, 0, 2, 3}, 1), (Pixels{1, 2, 0, 0, 5, 6, 0, 0, 9, 10, 0, 0}));
}

TEST(MemcpyIn, NegativeCoordinatesCountAsZero) {
    const uint32_t o = kOldPixel;
    EXPECT_EQ(In({-7, -2, 2, 2}, 0), (Pixels{1, 2, o, o, 5, 6, o, o, o, o, o, o}));
    EXPECT_EQ(In({INT_MIN, INT_MIN, 1, 1}, 0), (Pixels{1, o, o, o, o, o, o, o, o, o, o, o}));
}

TEST(MemcpyIn, CoordinatesPastTheImageCountAsItsSize) {
    const uint32_t o = kOldPixel;
    EXPECT_EQ(In({3, 1, 99, 99}, 0), (Pixels{o, o, o, o, o, o, o, 8, o, o, o, 12}));
    EXPECT_EQ(In({INT_MAX, 0, INT_MAX, 3}, 0), Pixels(12, o));
}

TEST(MemcpyIn, ARectangleOverTheWholeImageCopiesItAndClearsNothing) {
    for (TQ_RECT rect : {TQ_RECT{0, 0, 4, 3}, {-1, -1, 5, 4}, {INT_MIN, INT_MIN, INT_MAX, INT_MAX}})
        for (int clearRest : {0, 1}) EXPECT_EQ(In(rect, clearRest), NumberedPixels(12));
    // Row ends stay, and an odd last column is as IPL_Memcpy leaves it.
    Image src = Numbered(12), dst(12, kOld);
    IPL_MemcpyIn(TQ_COLOR_YUYV, 3, 2, 6, src.data(), 6, dst.data(), {0, 0, 3, 2}, 1);
    EXPECT_EQ(dst, (Image{1, 2, 3, 4, kOld, kOld, 7, 8, 9, 10, kOld, kOld}));
}

TEST(MemcpyIn, AnInvertedRectangleCopiesNothingAndClearsTheStripsBesideIt) {
    EXPECT_EQ(In({3, 0, 1, 3}, 0), Pixels(12, kOldPixel));
    EXPECT_EQ(In({3, 0, 1, 3}, 1), Pixels(12, 0));
    EXPECT_EQ(In({1, 2, 3, 1}, 0), Pixels(12, kOldPixel));
    EXPECT_EQ(In({1, 2, 3, 1}, 1), Pixels(12, 0));
    // Three and one column of YUYV: one pair at the left, none at the right.
    Image src = Numbered(8), dst(8, kOld);
    IPL_MemcpyIn(TQ_COLOR_YUYV, 4, 1, 8, src.data(), 8, dst.data(), {3, 0, 1, 1}, 1);
    EXPECT_EQ(dst, (Image{16, 128, 16, 128, kOld, kOld, kOld, kOld}));
}

TEST(MemcpyIn, NothingButTheImageIsCleared) {
    Image src = Numbered(2 * 11), dst(2 * 11, kOld);
    IPL_MemcpyIn(2, 2, 11, src.data(), 11, dst.data(), {1, 1, 2, 2}, 1);
    const uint8_t o = kOld;
    EXPECT_EQ(dst, (Image{0, 0, 0, 0, 0, 0, 0, 0, o, o, o, 0, 0, 0, 0, 16, 17, 18, 19, o, o, o}));
}

TEST(MemcpyIn, OffsetsAreFourBytesAPixelInFormatsOfAnotherSize) {
    Image src = Numbered(200);
    auto touched = [&](TQ_COLOR_FORMAT format, TQ_RECT rect) {
        Image dst(200, kOld);
        IPL_MemcpyIn(format, 48, 1, 200, src.data(), 200, dst.data(), rect, 0);
        size_t begin = 0, end = 200;
        while (begin < end && dst[begin] == kOld) ++begin;
        while (end > begin && dst[end - 1] == kOld) --end;
        EXPECT_TRUE(std::equal(dst.begin() + begin, dst.begin() + end, src.begin() + begin));
        return std::pair{begin, end};
    };
    EXPECT_EQ(touched(TQ_COLOR_GRAY8, {3, 0, 8, 1}), (std::pair<size_t, size_t>{12, 17}));
    EXPECT_EQ(touched(TQ_COLOR_V210, {6, 0, 12, 1}), (std::pair<size_t, size_t>{24, 152}));
    EXPECT_EQ(touched(TQ_COLOR_BGR16B, {2, 0, 4, 1}), (std::pair<size_t, size_t>{8, 20}));
    EXPECT_EQ(touched(TQ_COLOR_V216, {2, 0, 4, 1}), (std::pair<size_t, size_t>{8, 16}));
    EXPECT_EQ(touched(TQ_COLOR_YUVP_422, {5, 0, 9, 1}), (std::pair<size_t, size_t>{20, 28}));
    EXPECT_EQ(touched(TQ_COLOR_YUYV, {5, 0, 9, 1}), (std::pair<size_t, size_t>{10, 18}));
    EXPECT_EQ(touched(TQ_COLOR_UYVY, {5, 0, 10, 1}), (std::pair<size_t, size_t>{10, 18}));
}

TEST(MemcpyIn, Yuvp422CopiesABlockFromTheRectanglesFirstByteOn) {
    Image src = Numbered(40), dst(40, kOld), expected = dst;
    IPL_MemcpyIn(TQ_COLOR_YUVP_422, 4, 4, 8, src.data(), 10, dst.data(), {1, 1, 3, 3}, 0);
    std::copy_n(src.begin() + 12, 8, expected.begin() + 14);
    EXPECT_EQ(dst, expected);
}

TEST(MemcpyIn, AnOddLeftCutsAChromaPair) {
    Image src = Numbered(12), dst(12, kOld);
    IPL_MemcpyIn(TQ_COLOR_UYVY, 6, 1, 12, src.data(), 12, dst.data(), {1, 0, 4, 1}, 0);
    const uint8_t o = kOld;
    EXPECT_EQ(dst, (Image{o, o, 3, 4, 5, 6, o, o, o, o, o, o}));
}

TEST(MemcpyIn, TheRestIsClearedAsZeroMemoryClearsTheFormat) {
    auto in = [](TQ_COLOR_FORMAT format, TQ_RECT rect) {
        Image src = Numbered(16), dst(16, kOld);
        IPL_MemcpyIn(format, 4, 1, 16, src.data(), 16, dst.data(), rect, 1);
        return dst;
    };
    const uint8_t o = kOld;
    EXPECT_EQ(in(TQ_COLOR_AYUV, {1, 0, 3, 1}),
              (Image{128, 128, 16, 0, 5, 6, 7, 8, 9, 10, 11, 12, 128, 128, 16, 0}));
    EXPECT_EQ(in(TQ_COLOR_YUYV, {2, 0, 4, 1}),
              (Image{16, 128, 16, 128, 5, 6, 7, 8, o, o, o, o, o, o, o, o}));
    EXPECT_EQ(in(TQ_COLOR_UYVY, {0, 0, 2, 1}),
              (Image{1, 2, 3, 4, 128, 16, 128, 16, o, o, o, o, o, o, o, o}));
    // One byte a pixel of the width in every other format.
    EXPECT_EQ(in(TQ_COLOR_PACKED32, {1, 0, 2, 1}),
              (Image{0, o, o, o, 5, 6, 7, 8, 0, 0, o, o, o, o, o, o}));
    EXPECT_EQ(in(TQ_COLOR_FORMAT(2), {1, 0, 2, 1}),
              (Image{0, o, o, o, o, o, o, o, 0, 0, o, o, o, o, o, o}));
    EXPECT_EQ(in(TQ_COLOR_GRAY8, {1, 0, 2, 1}),
              (Image{0, o, o, o, 5, o, o, o, 0, 0, o, o, o, o, o, o}));
}

TEST(MemcpyIn, TheRestIsClearedBeforeTheInsideIsCopied) {
    Image src = Numbered(64), dst(20, kOld);
    IPL_MemcpyIn(TQ_COLOR_GRAY8, 4, 3, 16, src.data(), 4, dst.data(), {1, 0, 2, 3}, 1);
    const uint8_t o = kOld;
    EXPECT_EQ(dst, (Image{0, o, o, o, 5, o, o, o, 21, 0, o, o, 37, 0, o, o, 0, 0, o, o}));
}

TEST(MemcpyIn, ANullSourceIsNotReachedWhereNothingIsCopied) {
    Pixels dst(4, kOldPixel);
    IPL_MemcpyIn(TQ_COLOR_ARGB, 2, 2, 8, nullptr, 8, BytesOf(dst), {1, 0, 1, 2}, 1);
    EXPECT_EQ(dst, Pixels(4, 0));
    dst.assign(4, kOldPixel);
    IPL_MemcpyIn(TQ_COLOR_ARGB, 2, 2, 8, nullptr, 8, BytesOf(dst), {0, 0, 2, 2}, 1);
    EXPECT_EQ(dst, Pixels(4, kOldPixel));
}

TEST(MemcpyOut, CopiesTheOutsideAndClearsTheInsideOnRequest) {
    const uint32_t o = kOldPixel;
    EXPECT_EQ(Out({1, 1, 3, 2}, 0), (Pixels{1, 2, 3, 4, 5, o, o, 8, 9, 10, 11, 12}));
    EXPECT_EQ(Out({1, 1, 3, 2}, 1), (Pixels{1, 2, 3, 4, 5, 0, 0, 8, 9, 10, 11, 12}));
    EXPECT_EQ(Out({1, 1, 3, 2}, -1), (Pixels{1, 2, 3, 4, 5, 0, 0, 8, 9, 10, 11, 12}));
    EXPECT_EQ(Out({-2, 1, 9, 2}, 0), (Pixels{1, 2, 3, 4, o, o, o, o, 9, 10, 11, 12}));
}

TEST(MemcpyOut, ARectangleOverTheWholeImageCopiesNothing) {
    for (TQ_RECT rect : {TQ_RECT{0, 0, 4, 3}, {-1, -1, 5, 4}}) {
        EXPECT_EQ(Out(rect, 0), Pixels(12, kOldPixel));
        EXPECT_EQ(Out(rect, 1), Pixels(12, 0));
    }
    Pixels dst(4, kOldPixel);
    IPL_MemcpyOut(TQ_COLOR_ARGB, 2, 2, 8, nullptr, 8, BytesOf(dst), {0, 0, 2, 2}, 1);
    EXPECT_EQ(dst, Pixels(4, 0));
}

TEST(MemcpyOut, ARectangleOutsideTheImageCopiesAllOfIt) {
    for (TQ_RECT rect : {TQ_RECT{4, 0, 9, 3},
                         {-9, 0, 0, 3},
                         {1, -9, 3, -1},
                         {1, 3, 3, 9},
                         {2, 2, 1, 1},
                         {INT_MAX, INT_MAX, INT_MIN, INT_MIN}})
        for (int clearRest : {0, 1}) EXPECT_EQ(Out(rect, clearRest), NumberedPixels(12));
}

TEST(MemcpyOut, AnOutsideRectangleStillCutsPacked422IntoStrips) {
    // Odd strips left and right have no pair; the one below has columns 1 and 2.
    Image src = Numbered(8), dst(8, kOld);
    IPL_MemcpyOut(TQ_COLOR_YUYV, 4, 1, 8, src.data(), 8, dst.data(), {1, -5, 3, -1}, 0);
    EXPECT_EQ(dst, (Image{kOld, kOld, 3, 4, 5, 6, kOld, kOld}));
}

TEST(MemcpyOut, StripsComeInOrderLeftRightAboveBelow) {
    Image src = Numbered(64), dst(20, kOld);
    const uint8_t o = kOld;
    IPL_MemcpyOut(TQ_COLOR_GRAY8, 4, 3, 16, src.data(), 4, dst.data(), {1, 0, 2, 3}, 0);
    EXPECT_EQ(dst, (Image{1, o, o, o, 17, o, o, o, 9, 10, o, o, 25, 26, o, o, 41, 42, o, o}));
    dst.assign(20, kOld);
    IPL_MemcpyOut(TQ_COLOR_GRAY8, 4, 3, 16, src.data(), 4, dst.data(), {1, 1, 2, 2}, 0);
    EXPECT_EQ(dst, (Image{1, o, o, o, 5, o, o, o, 9, 10, o, o, 37, 26, o, o, 41, 42, o, o}));
}

TEST(MemcpyOut, TheInsideIsClearedAfterTheStripsAreCopied) {
    Image src = Numbered(64), dst(20, kOld);
    const uint8_t o = kOld;
    IPL_MemcpyOut(TQ_COLOR_GRAY8, 4, 3, 16, src.data(), 4, dst.data(), {1, 0, 2, 3}, 1);
    EXPECT_EQ(dst, (Image{1, o, o, o, 0, o, o, o, 0, 10, o, o, 0, 26, o, o, 41, 42, o, o}));
}

TEST(MemcpyOut, TheInsideIsClearedAsZeroMemoryClearsTheFormat) {
    auto out = [](TQ_COLOR_FORMAT format) {
        Image src = Numbered(16), dst(16, kOld);
        IPL_MemcpyOut(format, 4, 1, 16, src.data(), 16, dst.data(), {1, 0, 3, 1}, 1);
        return dst;
    };
    const uint8_t o = kOld;
    EXPECT_EQ(out(TQ_COLOR_AYUV),
              (Image{1, 2, 3, 4, 128, 128, 16, 0, 128, 128, 16, 0, 13, 14, 15, 16}));
    EXPECT_EQ(out(TQ_COLOR_YUYV), (Image{o, o, 16, 128, 16, 128, o, o, o, o, o, o, o, o, o, o}));
    EXPECT_EQ(out(TQ_COLOR_BGR10B), (Image{1, 2, 3, 4, 0, 0, o, o, o, o, o, o, 13, 14, 15, 16}));
    EXPECT_EQ(out(TQ_COLOR_FORMAT(2)), (Image{o, o, o, o, 0, 0, o, o, o, o, o, o, o, o, o, o}));
}

TEST(MemcpyIn, InPlaceItClearsTheRestAndKeepsTheInside) {
    Pixels image = NumberedPixels(12);
    IPL_MemcpyIn(4, 3, 16, BytesOf(image), 16, BytesOf(image), {1, 1, 3, 2}, 1);
    EXPECT_EQ(image, (Pixels{0, 0, 0, 0, 0, 6, 7, 0, 0, 0, 0, 0}));
    image = NumberedPixels(12);
    IPL_MemcpyOut(4, 3, 16, BytesOf(image), 16, BytesOf(image), {1, 1, 3, 2}, 1);
    EXPECT_EQ(image, (Pixels{1, 2, 3, 4, 5, 0, 0, 8, 9, 10, 11, 12}));
}

// ---- Every form against the reference ------------------------------------------------------

using RowForm = void (*)(int, int, int, unsigned char*, int, unsigned char*);
using RowReference = void (*)(int64_t, int, int, tqref::Bytes&, int, tqref::Bytes&);

struct RowCopy {
    const char* name;
    RowForm form;
    RowReference reference;
    int pixelBytes;
};

constexpr RowCopy kRowCopies[] = {
    {"IPL_Memcpy_C1R", IPL_Memcpy_C1R, tqref::MemcpyRows, 1},
    {"IPL_Memcpy_C1R_16u", IPL_Memcpy_C1R_16u, tqref::MemcpyRows, 2},
    {"IPL_Memcpy_C4R", IPL_Memcpy_C4R, tqref::MemcpyRows, 4},
    {"IPL_MemcpyInvert_CR1", IPL_MemcpyInvert_CR1, tqref::MemcpyRowsInverted, 1},
    {"IPL_MemcpyInvert_CR4", IPL_MemcpyInvert_CR4, tqref::MemcpyRowsInverted, 4}};

TEST(Memcpy, BlocksEqualTheReference) {
    tqtest::ImageStage stage(1);
    for (int size = -3; size <= 300; ++size)
        ASSERT_TRUE(stage.Equal([&](auto& src, auto& dst) { tqref::Memcpy(dst, src, size); },
                                [&](uint8_t* src, uint8_t* dst) { IPL_Memcpy(dst, src, size); }))
            << size;
}

TEST(Memcpy, RowCopiesEqualTheReference) {
    tqtest::ImageStage stage(2);
    for (const RowCopy& copy : kRowCopies)
        for (int width = 0; width <= 40; ++width)
            for (int height = 0; height <= 5; ++height)
                for (tqtest::Strides strides : tqtest::StridesAround(width * copy.pixelBytes))
                    ASSERT_TRUE(stage.Equal(
                        [&](auto& src, auto& dst) {
                            copy.reference(width * copy.pixelBytes, height, strides.src, src,
                                           strides.dst, dst);
                        },
                        [&](uint8_t* src, uint8_t* dst) {
                            copy.form(width, height, strides.src, src, strides.dst, dst);
                        }))
                        << copy.name << ", " << width << " x " << height << ", strides "
                        << strides.src << ", " << strides.dst;
}

template <class Reference, class Form>
void ExpectFormatsEqual(uint32_t seed, Reference reference, Form form) {
    tqtest::ImageStage stage(seed);
    for (TQ_COLOR_FORMAT format : tqtest::kFormats)
        for (int width = 1; width <= 40; ++width)
            for (int height = 1; height <= 5; ++height) {
                const int rowBytes = static_cast<int>(tqref::CopiedRowBytes(format, width));
                for (tqtest::Strides strides :
                     tqtest::StridesAround(rowBytes != 0 ? rowBytes : 4 * width))
                    ASSERT_TRUE(stage.Equal(
                        [&](auto& src, auto& dst) {
                            reference(format, width, height, strides.src, src, strides.dst, dst);
                        },
                        [&](uint8_t* src, uint8_t* dst) {
                            form(format, width, height, strides.src, src, strides.dst, dst);
                        }))
                        << "format " << format << ", " << width << " x " << height << ", strides "
                        << strides.src << ", " << strides.dst;
            }
}

TEST(Memcpy, ByFormatEqualsTheReference) {
    ExpectFormatsEqual(
        3, [](auto&&... args) { tqref::Memcpy(args...); },
        [](auto... args) { IPL_Memcpy(args...); });
}

TEST(MemcpyInvert, ByFormatEqualsTheReference) {
    ExpectFormatsEqual(4, tqref::MemcpyInvert, IPL_MemcpyInvert);
}

// The strides are dense, padded, shorter than what the strips reach, or negative, in turn.
template <class Reference, class Form>
void ExpectRectanglesEqual(uint32_t seed, Reference reference, Form form) {
    tqtest::ImageStage stage(seed);
    unsigned turn = 0;
    for (TQ_COLOR_FORMAT format : tqtest::kFormats)
        for (int width = 1; width <= 40; ++width)
            for (int height = 1; height <= 5; ++height)
                for (TQ_RECT rect : tqtest::RectsAround(width, height))
                    for (int clearRest : {0, 1}) {
                        const int row = static_cast<int>(tqref::CopiedRowBytes(format, width));
                        const tqtest::Strides choices[] = {
                            {row, row},         {row + 5, row + 3},         {4 * width, 4 * width},
                            {row + 5, width},   {4 * width + 3, width + 1}, {-row - 4, row + 1},
                            {row + 1, -row - 8}};
                        const tqtest::Strides strides = choices[turn++ % 7];
                        ASSERT_TRUE(stage.Equal(
                            [&](auto& src, auto& dst) {
                                reference(format, width, height, strides.src, src, strides.dst, dst,
                                          rect, clearRest);
                            },
                            [&](uint8_t* src, uint8_t* dst) {
                                form(format, width, height, strides.src, src, strides.dst, dst,
                                     rect, clearRest);
                            }))
                            << "format " << format << ", " << width << " x " << height
                            << ", strides " << strides.src << ", " << strides.dst << ", rectangle "
                            << testing::PrintToString(rect) << ", clearRest " << clearRest;
                    }
}

TEST(MemcpyIn, EqualsTheReference) {
    ExpectRectanglesEqual(5, tqref::MemcpyIn, [](auto... args) { IPL_MemcpyIn(args...); });
}

TEST(MemcpyOut, EqualsTheReference) {
    ExpectRectanglesEqual(6, tqref::MemcpyOut, [](auto... args) { IPL_MemcpyOut(args...); });
}

TEST(MemcpyIn, WithoutAFormatEqualsTheReferenceOfArgb) {
    tqtest::ImageStage stage(7);
    for (int width = 1; width <= 20; ++width)
        for (int height = 1; height <= 4; ++height)
            for (TQ_RECT rect : tqtest::RectsAround(width, height))
                for (int clearRest : {0, 1}) {
                    const int srcStride = 4 * width + 1, dstStride = 4 * width + 6;
                    ASSERT_TRUE(stage.Equal(
                        [&](auto& src, auto& dst) {
                            tqref::MemcpyIn(TQ_COLOR_ARGB, width, height, srcStride, src, dstStride,
                                            dst, rect, clearRest);
                        },
                        [&](uint8_t* src, uint8_t* dst) {
                            IPL_MemcpyIn(width, height, srcStride, src, dstStride, dst, rect,
                                         clearRest);
                        }))
                        << width << " x " << height << testing::PrintToString(rect) << clearRest;
                    ASSERT_TRUE(stage.Equal(
                        [&](auto& src, auto& dst) {
                            tqref::MemcpyOut(TQ_COLOR_ARGB, width, height, srcStride, src,
                                             dstStride, dst, rect, clearRest);
                        },
                        [&](uint8_t* src, uint8_t* dst) {
                            IPL_MemcpyOut(width, height, srcStride, src, dstStride, dst, rect,
                                          clearRest);
                        }))
                        << width << " x " << height << testing::PrintToString(rect) << clearRest;
                }
}

// ---- Bands ---------------------------------------------------------------------------------

// One copy in bands at every processor count. The images end where their memory ends.
template <class Plain, class MultiThread>
void ExpectBandsEqual(int height, int srcStride, int dstStride, int64_t rowBytes,
                      int64_t blockBytes, Plain plain, MultiThread multiThread) {
    tqtest::Settings settings;
    const int64_t rows = std::max(height, 1);
    auto bytes = [&](int stride) {
        return std::max(std::abs(int64_t{stride}) * (rows - 1) + rowBytes, blockBytes);
    };
    auto first = [&](tqtest::GuardedBuffer& buffer, int stride) {
        return buffer.data() + (stride < 0 ? -int64_t{stride} * (rows - 1) : 0);
    };
    tqtest::GuardedBuffer src(bytes(srcStride)), dst(bytes(dstStride));
    tqtest::FillHostile(src.data(), src.size(), height + 1);
    auto refill = [&] { tqtest::FillHostile(dst.data(), dst.size(), height + 1000); };
    auto all = [&] { return Image(dst.data(), dst.data() + dst.size()); };
    refill();
    plain(srcStride, first(src, srcStride), dstStride, first(dst, dstStride));
    const Image expected = all();
    for (unsigned processors = 1; processors <= 16; ++processors) {
        settings.UseProcessors(processors);
        refill();
        multiThread(srcStride, first(src, srcStride), dstStride, first(dst, dstStride));
        ASSERT_EQ(all() == expected, true) << processors << " processors, height " << height
                                           << ", strides " << srcStride << ", " << dstStride;
    }
}

constexpr int kBandHeights[] = {-17, -1, 0, 1, 2, 7, 8, 9, 15, 16, 17, 33};

TEST(MemcpyMultiThread, EqualsPlainAtEveryProcessorCount) {
    const struct {
        RowForm plain, multiThread;
        int pixelBytes;
    } forms[] = {{IPL_Memcpy_C1R, IPL_MemcpyMultiThread_C1R, 1},
                 {IPL_Memcpy_C1R_16u, IPL_MemcpyMultiThread_C1R_16u, 2},
                 {IPL_Memcpy_C4R, IPL_MemcpyMultiThread_C4R, 4}};
    const int width = 19;
    for (const auto& form : forms)
        for (int height : kBandHeights) {
            const int row = width * form.pixelBytes;
            for (auto [srcStride, dstStride] : {tqtest::Strides{row, row},
                                                {row + 5, row + 3},
                                                {row, row + 1},
                                                {-row - 2, row + 4}})
                ExpectBandsEqual(
                    height, srcStride, dstStride, row, 0,
                    [&](auto... images) { form.plain(width, height, images...); },
                    [&](auto... images) { form.multiThread(width, height, images...); });
            if (HasFatalFailure()) return;
        }
}

TEST(MemcpyMultiThread, ByFormatEqualsPlainAtEveryProcessorCount) {
    const int width = 19;
    for (TQ_COLOR_FORMAT format : tqtest::kFormats)
        for (int height : kBandHeights) {
            const int row = static_cast<int>(tqref::CopiedRowBytes(format, width));
            const int64_t block = format == TQ_COLOR_YUVP_422 ? 2 * width * height : 0;
            for (auto [srcStride, dstStride] : {tqtest::Strides{row, row}, {row + 5, row + 3}})
                ExpectBandsEqual(
                    height, srcStride, dstStride, row, block,
                    [&](auto... images) { IPL_Memcpy(format, width, height, images...); },
                    [&](auto... images) {
                        IPL_MemcpyMultiThread(format, width, height, images...);
                    });
            if (HasFatalFailure()) return;
        }
}

// Waits until the pool's workers have come to rest, and ends them.
void EmptyPool() {
    CTQIPLThreadPool* pool = CTQIPLThreadPool::GetInstance();
    TQ_THREAD_STATS stats{};
    for (int tries = 0; tries < 5000; ++tries) {
        pool->ReleaseIdleThreads();
        pool->GetThreadStats(&stats);
        if (stats.m_nThreadCount == 0) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    FAIL() << stats.m_nThreadCount << " workers do not come to rest";
}

unsigned WorkersUsed(unsigned processors, int height) {
    tqtest::Settings settings;
    settings.UseProcessors(processors);
    EmptyPool();
    Image src(4 * 64 * 64), dst(src.size());
    IPL_MemcpyMultiThread_C4R(64, height, 256, src.data(), 256, dst.data());
    TQ_THREAD_STATS stats{};
    CTQIPLThreadPool::GetInstance()->GetThreadStats(&stats);
    return stats.m_nThreadCount;
}

TEST(MemcpyMultiThread, AHeightBelowTheProcessorCountMakesOneTask) {
    for (int run = 0; run < 10; ++run) EXPECT_EQ(WorkersUsed(16, 15), 1u);
}

TEST(MemcpyMultiThread, OneProcessorRunsItsTaskOnTheCallersThread) {
    EXPECT_EQ(WorkersUsed(1, 64), 0u);
}

static_assert(std::is_base_of_v<CTQIPLTaskBase, CZMemoryTask>);

TEST(MemoryTask, HasItsFieldsInOrder) {
    const CZMemoryTask task;
    const void* fields[] = {&task.m_nWidth,     &task.m_nHeight, &task.m_nSrcStride, &task.m_pSrc,
                            &task.m_nDstStride, &task.m_pDst,    &task.m_nMode};
    EXPECT_TRUE(std::is_sorted(std::begin(fields), std::end(fields), std::less<>()));
}

TEST(MemoryTask, ModesAreOneFourAndTwoBytesAPixelAndOthersDoNothing) {
    for (auto [mode, pixelBytes] : {std::pair{0, 1},
                                    {1, 4},
                                    {2, 2},
                                    {3, 0},
                                    {4, 0},
                                    {-1, 0},
                                    {16, 0},
                                    {INT_MAX, 0},
                                    {INT_MIN, 0}})
        for (int stride : {3 * pixelBytes, 3 * pixelBytes + 2}) {
            Image src = Numbered(64), dst(64, kOld), expected = dst;
            for (int y = 0; y < 4; ++y)
                std::copy_n(src.begin() + y * stride, 3 * pixelBytes,
                            expected.begin() + y * stride);
            CZMemoryTask task;
            task.m_nWidth = 3;
            task.m_nHeight = 4;
            task.m_nSrcStride = task.m_nDstStride = stride;
            task.m_pSrc = src.data();
            task.m_pDst = dst.data();
            task.m_nMode = mode;
            EXPECT_EQ(task.Run(), 1);
            EXPECT_EQ(dst, expected) << "mode " << mode << ", stride " << stride;
        }
}

TEST(MemoryTask, SizesBelowOneDoNothing) {
    for (int mode : {0, 1, 2})
        for (auto [width, height] : {std::pair{0, 3}, {3, 0}, {-3, 3}, {3, -3}, {-3, -3}}) {
            Image src = Numbered(64), dst(64, kOld);
            CZMemoryTask task;
            task.m_nWidth = width;
            task.m_nHeight = height;
            task.m_nSrcStride = task.m_nDstStride = width * (mode == 0 ? 1 : mode == 1 ? 4 : 2);
            task.m_pSrc = src.data();
            task.m_pDst = dst.data();
            task.m_nMode = mode;
            EXPECT_EQ(task.Run(), 1);
            EXPECT_EQ(dst, Image(64, kOld)) << width << " x " << height;
        }
}

}  // namespace
