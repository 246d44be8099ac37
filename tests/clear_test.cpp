// Clears, blacks, fills and flips in place: whole images, and inside and outside of rectangles.

#include <gtest/gtest.h>
#include <tqipl/image_memory.h>

#include <algorithm>
#include <climits>
#include <utility>
#include <vector>

#include "reference/image_memory_reference.h"
#include "support/image_stage.h"

namespace {

using Image = std::vector<unsigned char>;

constexpr uint8_t kOld = 0xEE;  // what an image holds before a call

// 1, 2, 3 and so on, round again after 251.
Image Numbered(size_t bytes) {
    Image image(bytes);
    for (size_t i = 0; i < bytes; ++i) image[i] = static_cast<uint8_t>(i % 251 + 1);
    return image;
}

// `count` times the four bytes of a pattern.
Image Times(size_t count, const Image& pattern) {
    Image image;
    for (size_t i = 0; i < count; ++i) image.insert(image.end(), pattern.begin(), pattern.end());
    return image;
}

Image operator+(Image a, const Image& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Image Old(size_t bytes) { return Image(bytes, kOld); }

const Image kAyuv{128, 128, 16, 0}, kYuyv{16, 128, 16, 128}, kUyvy{128, 16, 128, 16};
const Image kNone{0, 0, 0, 0}, kOpaque{0, 0, 0, 255};

// ---- Values known by hand ------------------------------------------------------------------

TEST(ZeroMemory, ABlockIsClearedExactly) {
    const uint8_t o = kOld;
    Image image = Old(6);
    IPL_ZeroMemory(image.data(), 5);
    EXPECT_EQ(image, (Image{0, 0, 0, 0, 0, o}));
}

TEST(ZeroMemory, RowsAreWidthAndFourWidthsLong) {
    Image bytes = Old(18), words = Old(18);
    IPL_ZeroMemory_C1R(2, 2, 9, bytes.data());
    IPL_ZeroMemory_C4R(2, 2, 9, words.data());
    EXPECT_EQ(bytes, Image(2, 0) + Old(7) + Image(2, 0) + Old(7));
    EXPECT_EQ(words, Image(8, 0) + Old(1) + Image(8, 0) + Old(1));
}

TEST(ZeroMemory, DenseImagesAreClearedWhole) {
    Image bytes = Old(10), words = Old(26);
    IPL_ZeroMemory_C1R(3, 3, 3, bytes.data());
    IPL_ZeroMemory_C4R(2, 3, 8, words.data());
    EXPECT_EQ(bytes, Image(9, 0) + Old(1));
    EXPECT_EQ(words, Image(24, 0) + Old(2));
}

TEST(ZeroMemory, NegativeStridesWalkUpwards) {
    const uint8_t o = kOld;
    Image image = Old(9);
    IPL_ZeroMemory_C1R(2, 3, -3, image.data() + 6);
    EXPECT_EQ(image, (Image{0, 0, o, 0, 0, o, 0, 0, o}));
}

TEST(ZeroMemory, ALinearAreaOfTenBytesTakesTwoWordsOfYuv) {
    const std::pair<TQ_COLOR_FORMAT, Image> formats[] = {{TQ_COLOR_AYUV, Times(2, kAyuv) + Old(2)},
                                                         {TQ_COLOR_YUYV, Times(2, kYuyv) + Old(2)},
                                                         {TQ_COLOR_UYVY, Times(2, kUyvy) + Old(2)},
                                                         {TQ_COLOR_ARGB, Image(10, 0)},
                                                         {TQ_COLOR_PACKED32, Image(10, 0)},
                                                         {TQ_COLOR_BGR24, Image(10, 0)},
                                                         {TQ_COLOR_YUVP_422, Image(10, 0)},
                                                         {TQ_COLOR_BGR10B, Image(10, 0)},
                                                         {TQ_COLOR_V216, Image(10, 0)},
                                                         {TQ_COLOR_V210, Image(10, 0)},
                                                         {TQ_COLOR_BGR16B, Image(10, 0)},
                                                         {TQ_COLOR_GRAY8, Image(10, 0)},
                                                         {TQ_COLOR_FORMAT(2), Image(10, 0)},
                                                         {TQ_COLOR_FORMAT(-1), Image(10, 0)}};
    for (const auto& [format, expected] : formats) {
        Image image = Old(12);
        IPL_ZeroMemory(format, image.data(), 10);
        EXPECT_EQ(image, expected + Old(2)) << format;
    }
}

TEST(ZeroMemory, ALinearAreaBelowOneWordOfYuvStaysAsItIs) {
    for (TQ_COLOR_FORMAT format : {TQ_COLOR_AYUV, TQ_COLOR_YUYV, TQ_COLOR_UYVY}) {
        Image image = Old(4);
        IPL_ZeroMemory(format, image.data(), 3);
        EXPECT_EQ(image, Old(4)) << format;
    }
}

TEST(ZeroMemory, SizesBelowOneClearNothing) {
    for (int size : {0, -1, -4, -10, INT_MIN}) {
        Image image = Old(16);
        IPL_ZeroMemory(image.data(), size);
        for (TQ_COLOR_FORMAT format : tqtest::kFormats) IPL_ZeroMemory(format, image.data(), size);
        EXPECT_EQ(image, Old(16)) << size;
    }
}

TEST(ZeroMemory, ByRowsEachFormatHasItsEmptyValue) {
    // Five pixels a row; rows of 24 bytes.
    const std::pair<TQ_COLOR_FORMAT, Image> rows[] = {
        {TQ_COLOR_ARGB, Image(20, 0) + Old(4)},      {TQ_COLOR_AYUV, Times(5, kAyuv) + Old(4)},
        {TQ_COLOR_YUYV, Times(2, kYuyv) + Old(16)},  {TQ_COLOR_UYVY, Times(2, kUyvy) + Old(16)},
        {TQ_COLOR_PACKED32, Image(5, 0) + Old(19)},  {TQ_COLOR_BGR24, Image(5, 0) + Old(19)},
        {TQ_COLOR_YUVP_422, Image(5, 0) + Old(19)},  {TQ_COLOR_BGR10B, Image(5, 0) + Old(19)},
        {TQ_COLOR_V216, Image(5, 0) + Old(19)},      {TQ_COLOR_V210, Image(5, 0) + Old(19)},
        {TQ_COLOR_BGR16B, Image(5, 0) + Old(19)},    {TQ_COLOR_GRAY8, Image(5, 0) + Old(19)},
        {TQ_COLOR_FORMAT(2), Image(5, 0) + Old(19)}, {TQ_COLOR_FORMAT(0), Image(5, 0) + Old(19)}};
    for (const auto& [format, row] : rows) {
        Image image = Old(72);
        IPL_ZeroMemory(format, 5, 2, 24, image.data());
        EXPECT_EQ(image, row + row + Old(24)) << format;
    }
}

TEST(BlackMemory, ByRowsEachFormatHasItsBlack) {
    const std::pair<TQ_COLOR_FORMAT, Image> rows[] = {
        {TQ_COLOR_ARGB, Times(5, kNone) + Old(4)},
        {TQ_COLOR_AYUV, Times(1, kAyuv) + Old(20)},
        {TQ_COLOR_YUYV, Times(2, kYuyv) + Old(16)},
        {TQ_COLOR_UYVY, Times(2, kUyvy) + Old(16)},
        {TQ_COLOR_PACKED32, Times(5, kOpaque) + Old(4)},
        {TQ_COLOR_BGR24, Times(5, kOpaque) + Old(4)},
        {TQ_COLOR_YUVP_422, Times(5, kOpaque) + Old(4)},
        {TQ_COLOR_BGR10B, Times(5, kOpaque) + Old(4)},
        {TQ_COLOR_V216, Times(5, kOpaque) + Old(4)},
        {TQ_COLOR_V210, Times(5, kOpaque) + Old(4)},
        {TQ_COLOR_BGR16B, Times(5, kOpaque) + Old(4)},
        {TQ_COLOR_GRAY8, Times(5, kOpaque) + Old(4)},
        {TQ_COLOR_FORMAT(2), Times(5, kOpaque) + Old(4)},
        {TQ_COLOR_FORMAT(0), Times(5, kOpaque) + Old(4)}};
    for (const auto& [format, row] : rows) {
        Image image = Old(72);
        IPL_BlackMemory(format, 5, 2, 24, image.data());
        EXPECT_EQ(image, row + row + Old(24)) << format;
    }
}

TEST(BlackMemory, AyuvGetsAQuarterOfTheRow) {
    Image image = Old(2 * 400);
    IPL_BlackMemory(TQ_COLOR_AYUV, 100, 2, 400, image.data());
    EXPECT_EQ(image, Times(25, kAyuv) + Old(300) + Times(25, kAyuv) + Old(300));
    image = Old(12);
    IPL_BlackMemory(TQ_COLOR_AYUV, 3, 1, 12, image.data());
    EXPECT_EQ(image, Old(12));
}

TEST(BlackMemory, ArgbIsTransparentAndPacked32Opaque) {
    Image argb = Old(8), packed = Old(8);
    IPL_BlackMemory(TQ_COLOR_ARGB, 2, 1, 8, argb.data());
    IPL_BlackMemory(TQ_COLOR_PACKED32, 2, 1, 8, packed.data());
    EXPECT_EQ(argb, (Image{0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(packed, (Image{0, 0, 0, 255, 0, 0, 0, 255}));
}

TEST(ZeroMemory, AnOddLastColumnOfPacked422StaysAsItIs) {
    for (TQ_COLOR_FORMAT format : {TQ_COLOR_YUYV, TQ_COLOR_UYVY}) {
        const Image& word = format == TQ_COLOR_YUYV ? kYuyv : kUyvy;
        Image zero = Old(12), black = Old(12);
        IPL_ZeroMemory(format, 3, 2, 6, zero.data());
        IPL_BlackMemory(format, 3, 2, 6, black.data());
        EXPECT_EQ(zero, word + Old(2) + word + Old(2));
        EXPECT_EQ(black, zero);
        zero = Old(8);
        IPL_ZeroMemory(format, 1, 2, 4, zero.data());
        EXPECT_EQ(zero, Old(8));
    }
}

TEST(ZeroMemoryIn, ClearsTheInside) {
    Image image = Old(2 * 16);
    TQ_RECT rect{1, 1, 3, 2};
    IPL_ZeroMemoryIn(TQ_COLOR_ARGB, 4, 2, 16, image.data(), rect);
    EXPECT_EQ(image, Old(16) + Old(4) + Image(8, 0) + Old(4));
    EXPECT_EQ(rect, (TQ_RECT{1, 1, 3, 2}));
}

TEST(ZeroMemoryIn, OffsetsAreFourBytesAPixelAndTwoInPacked422) {
    auto in = [](TQ_COLOR_FORMAT format) {
        Image image = Old(16);
        TQ_RECT rect{1, 0, 3, 1};
        IPL_ZeroMemoryIn(format, 4, 1, 16, image.data(), rect);
        return image;
    };
    EXPECT_EQ(in(TQ_COLOR_AYUV), Old(4) + Times(2, kAyuv) + Old(4));
    EXPECT_EQ(in(TQ_COLOR_YUYV), Old(2) + kYuyv + Old(10));
    EXPECT_EQ(in(TQ_COLOR_UYVY), Old(2) + kUyvy + Old(10));
    for (TQ_COLOR_FORMAT format :
         {TQ_COLOR_PACKED32, TQ_COLOR_GRAY8, TQ_COLOR_BGR16B, TQ_COLOR_V210, TQ_COLOR_FORMAT(2)})
        EXPECT_EQ(in(format), Old(4) + Image(2, 0) + Old(10)) << format;
}

TEST(BlackMemoryIn, WritesBlackInside) {
    auto in = [](TQ_COLOR_FORMAT format, TQ_RECT rect) {
        Image image = Old(40);
        IPL_BlackMemoryIn(format, 10, 1, 40, image.data(), rect);
        return image;
    };
    EXPECT_EQ(in(TQ_COLOR_ARGB, {1, 0, 3, 1}), Old(4) + Image(8, 0) + Old(28));
    EXPECT_EQ(in(TQ_COLOR_AYUV, {1, 0, 10, 1}), Old(4) + Times(2, kAyuv) + Old(28));
    EXPECT_EQ(in(TQ_COLOR_GRAY8, {1, 0, 3, 1}), Old(4) + Times(2, kOpaque) + Old(28));
    EXPECT_EQ(in(TQ_COLOR_YUYV, {1, 0, 6, 1}), Old(2) + Times(2, kYuyv) + Old(30));
}

using RectForm = void (*)(TQ_COLOR_FORMAT, int, int, int, unsigned char*, TQ_RECT&);

void FillIn1(TQ_COLOR_FORMAT, int w, int h, int stride, unsigned char* dst, TQ_RECT& rect) {
    IPL_FillMemoryIn_C1R(w, h, stride, dst, rect, 7);
}
void FillOut1(TQ_COLOR_FORMAT, int w, int h, int stride, unsigned char* dst, TQ_RECT& rect) {
    IPL_FillMemoryOut_C1R(w, h, stride, dst, rect, 7);
}
void FillIn4(TQ_COLOR_FORMAT, int w, int h, int stride, unsigned char* dst, TQ_RECT& rect) {
    IPL_FillMemoryIn_C4R(w, h, stride, dst, rect, 7);
}
void FillOut4(TQ_COLOR_FORMAT, int w, int h, int stride, unsigned char* dst, TQ_RECT& rect) {
    IPL_FillMemoryOut_C4R(w, h, stride, dst, rect, 7);
}

constexpr RectForm kRectForms[] = {
    IPL_ZeroMemoryIn, IPL_ZeroMemoryOut, IPL_BlackMemoryIn, IPL_BlackMemoryOut,
    FillIn1,          FillOut1,          FillIn4,           FillOut4};

TEST(RectangleClears, HandTheNormalisedRectangleBack) {
    const std::pair<TQ_RECT, TQ_RECT> rects[] = {
        {{1, 1, 3, 2}, {1, 1, 3, 2}},
        {{-5, -6, 100, 200}, {0, 0, 8, 4}},
        {{0, 0, 8, 4}, {0, 0, 8, 4}},
        {{6, 3, 2, 1}, {6, 3, 6, 3}},
        {{20, -3, 30, 2}, {8, 0, 8, 2}},
        {{-9, 2, -1, 9}, {0, 2, 0, 4}},
        {{5, 9, 7, 11}, {5, 4, 7, 4}},
        {{2, -9, 5, -1}, {2, 0, 5, 0}},
        {{3, 3, -4, -4}, {3, 3, 3, 3}},
        {{INT_MIN, INT_MIN, INT_MAX, INT_MAX}, {0, 0, 8, 4}},
        {{INT_MAX, INT_MAX, INT_MIN, INT_MIN}, {8, 4, 8, 4}}};
    for (RectForm form : kRectForms)
        for (TQ_COLOR_FORMAT format : tqtest::kFormats)
            for (const auto& [given, expected] : rects) {
                Image image = Old(4 * 40 + 40);
                TQ_RECT rect = given;
                form(format, 8, 4, 40, image.data(), rect);
                EXPECT_EQ(rect, expected) << testing::PrintToString(given) << " came back as "
                                          << testing::PrintToString(rect) << ", format " << format;
            }
}

TEST(BlackMemoryIn, ARectanglePastTheImageIsClampedAndHandedBack) {
    Image image = Old(3 * 16);
    TQ_RECT rect{2, 1, 9, 9};
    IPL_BlackMemoryIn(TQ_COLOR_PACKED32, 3, 2, 16, image.data(), rect);
    EXPECT_EQ(image, Old(16) + Old(8) + kOpaque + Old(4) + Old(16));
    EXPECT_EQ(rect, (TQ_RECT{2, 1, 3, 2}));
}

TEST(RectangleClears, AWholeRectangleClearsAllInsideAndNothingOutside) {
    for (TQ_COLOR_FORMAT format : tqtest::kFormats) {
        Image whole = Old(200), in = whole, out = whole, black = whole, blackIn = whole;
        TQ_RECT rect{-1, 0, 99, 4};
        IPL_ZeroMemory(format, 7, 4, 40, whole.data());
        IPL_ZeroMemoryIn(format, 7, 4, 40, in.data(), rect);
        IPL_BlackMemory(format, 7, 4, 40, black.data());
        IPL_BlackMemoryIn(format, 7, 4, 40, blackIn.data(), rect);
        IPL_ZeroMemoryOut(format, 7, 4, 40, out.data(), rect);
        IPL_BlackMemoryOut(format, 7, 4, 40, out.data(), rect);
        EXPECT_EQ(in, whole) << format;
        EXPECT_EQ(blackIn, black) << format;
        EXPECT_EQ(out, Old(200)) << format;
    }
}

TEST(ZeroMemoryOut, ClearsTheFourStrips) {
    Image image = Old(3 * 16);
    TQ_RECT rect{1, 1, 3, 2};
    IPL_ZeroMemoryOut(TQ_COLOR_ARGB, 4, 3, 16, image.data(), rect);
    EXPECT_EQ(image, Image(20, 0) + Old(8) + Image(20, 0));
}

TEST(ZeroMemoryOut, StripsOfOddWidthKeepTheirHoles) {
    // Columns 0 and 3 are half pairs; columns 1 and 2 are cleared above and below.
    Image image = Old(3 * 8);
    TQ_RECT rect{1, 1, 3, 2};
    IPL_ZeroMemoryOut(TQ_COLOR_YUYV, 4, 3, 8, image.data(), rect);
    EXPECT_EQ(image, Old(2) + kYuyv + Old(2) + Old(8) + Old(2) + kYuyv + Old(2));
}

TEST(BlackMemoryOut, AyuvStripsGetAQuarterOfTheirOwnWidth) {
    Image image = Old(2 * 52);
    TQ_RECT rect{5, 0, 9, 1};
    IPL_BlackMemoryOut(TQ_COLOR_AYUV, 13, 2, 52, image.data(), rect);
    const Image ends = kAyuv + Old(16) + Old(16) + kAyuv + Old(12);
    EXPECT_EQ(image, ends + kAyuv + Old(16) + kAyuv + Old(12) + kAyuv + Old(12));
}

TEST(BlackMemoryOut, StripsComeInOrderLeftRightAboveBelow) {
    const uint8_t o = kOld;
    // Rows of six bytes under strips that are four bytes a pixel wide: the last write stays.
    Image image = Old(28);
    TQ_RECT rect{1, 1, 2, 2};
    IPL_BlackMemoryOut(TQ_COLOR_GRAY8, 3, 3, 6, image.data(), rect);
    // Left at 0, 6 and 12, right at 8, 14 and 20, above at 4, below at 16.
    EXPECT_EQ(image, (Image{0, 0, 0, 255, 0, 0,   0, 255, 0, 0,   0, 255, 0, 0,
                            0, 0, 0, 0,   0, 255, 0, 0,   0, 255, o, o,   o, o}));
}

TEST(BlackMemory, RowsComeInOrderWhereTheyOverlap) {
    const uint8_t o = kOld;
    Image image = Old(12);
    IPL_BlackMemory(TQ_COLOR_GRAY8, 2, 2, 3, image.data());
    EXPECT_EQ(image, (Image{0, 0, 0, 0, 0, 0, 255, 0, 0, 0, 255, o}));
}

TEST(FillMemory, RowsAreWidthBytesOrWidthWords) {
    Image bytes = Old(2 * 10), words = Old(2 * 10);
    IPL_FillMemory_C1R(2, 2, 10, bytes.data(), 0x5A);
    IPL_FillMemory_C4R(2, 2, 10, words.data(), 0x44332211ul);
    EXPECT_EQ(bytes, Image(2, 0x5A) + Old(8) + Image(2, 0x5A) + Old(8));
    const Image row = Times(2, {0x11, 0x22, 0x33, 0x44}) + Old(2);
    EXPECT_EQ(words, row + row);
}

TEST(FillMemory, DenseImagesAreFilledWhole) {
    Image bytes = Old(10), words = Old(26);
    IPL_FillMemory_C1R(3, 3, 3, bytes.data(), 9);
    IPL_FillMemory_C4R(2, 3, 8, words.data(), 0xFFEEDDCCul);
    EXPECT_EQ(bytes, Image(9, 9) + Old(1));
    EXPECT_EQ(words, Times(6, {0xCC, 0xDD, 0xEE, 0xFF}) + Old(2));
}

TEST(FillMemory, OfALongerValueTheLowWordIsWritten) {
    const auto value = static_cast<unsigned long>(0x9988776644332211ull);
    Image whole = Old(8), in = Old(8), out = Old(8);
    TQ_RECT left{0, 0, 1, 1};
    IPL_FillMemory_C4R(1, 1, 4, whole.data(), value);
    IPL_FillMemoryIn_C4R(2, 1, 8, in.data(), left, value);
    IPL_FillMemoryOut_C4R(2, 1, 8, out.data(), left, value);
    const Image word{0x11, 0x22, 0x33, 0x44};
    EXPECT_EQ(whole, word + Old(4));
    EXPECT_EQ(in, word + Old(4));
    EXPECT_EQ(out, Old(4) + word);
}

TEST(FillMemory, RectanglesAreFilledInsideOrOutside) {
    auto fill = [](auto form, int pixelBytes, auto value, TQ_RECT rect) {
        Image image = Old(3 * 4 * pixelBytes);
        form(4, 3, 4 * pixelBytes, image.data(), rect, value);
        return image;
    };
    const TQ_RECT rect{1, 1, 3, 2};
    EXPECT_EQ(fill(IPL_FillMemoryIn_C1R, 1, 7, rect), Old(5) + Image(2, 7) + Old(5));
    EXPECT_EQ(fill(IPL_FillMemoryOut_C1R, 1, 7, rect), Image(5, 7) + Old(2) + Image(5, 7));
    const Image word{1, 2, 3, 4};
    EXPECT_EQ(fill(IPL_FillMemoryIn_C4R, 4, 0x04030201ul, rect),
              Old(20) + Times(2, word) + Old(20));
    EXPECT_EQ(fill(IPL_FillMemoryOut_C4R, 4, 0x04030201ul, rect),
              Times(5, word) + Old(8) + Times(5, word));
    // Over the whole image.
    const TQ_RECT all{-1, -1, 9, 9};
    EXPECT_EQ(fill(IPL_FillMemoryIn_C1R, 1, 7, all), Image(12, 7));
    EXPECT_EQ(fill(IPL_FillMemoryOut_C1R, 1, 7, all), Old(12));
    EXPECT_EQ(fill(IPL_FillMemoryIn_C4R, 4, 0x04030201ul, all), Times(12, word));
    EXPECT_EQ(fill(IPL_FillMemoryOut_C4R, 4, 0x04030201ul, all), Old(48));
}

TEST(FillMemory, OutsideAnEmptyRectangleLiesTheEntireImage) {
    for (TQ_RECT rect : {TQ_RECT{2, 1, 2, 1},
                         {2, 0, 2, 3},
                         {0, 1, 4, 1},
                         {3, 2, 1, 0},
                         {9, 0, 12, 3},
                         {-9, 0, -1, 3},
                         {0, -4, 4, -1},
                         {1, 3, 2, 9}}) {
        Image bytes = Old(12), words = Old(48), in = Old(48), zero = Old(48);
        TQ_RECT copy = rect;
        IPL_FillMemoryOut_C1R(4, 3, 4, bytes.data(), copy, 7);
        copy = rect;
        IPL_FillMemoryOut_C4R(4, 3, 16, words.data(), copy, 0x07070707ul);
        copy = rect;
        IPL_FillMemoryIn_C1R(4, 3, 16, in.data(), copy, 7);
        copy = rect;
        IPL_FillMemoryIn_C4R(4, 3, 16, in.data(), copy, 7);
        copy = rect;
        IPL_ZeroMemoryOut(TQ_COLOR_ARGB, 4, 3, 16, zero.data(), copy);
        EXPECT_EQ(bytes, Image(12, 7)) << testing::PrintToString(rect);
        EXPECT_EQ(words, Image(48, 7)) << testing::PrintToString(rect);
        EXPECT_EQ(in, Old(48)) << testing::PrintToString(rect);
        EXPECT_EQ(zero, Image(48, 0)) << testing::PrintToString(rect);
    }
}

TEST(InvertImage, RowsChangePlacesInPairs) {
    Image image = Numbered(4 * 3);
    IPL_InvertImage_C1R(2, 4, 3, image.data());
    EXPECT_EQ(image, (Image{10, 11, 3, 7, 8, 6, 4, 5, 9, 1, 2, 12}));
    image = Numbered(2 * 9);
    IPL_InvertImage_C4R(2, 2, 9, image.data());
    EXPECT_EQ(image, (Image{10, 11, 12, 13, 14, 15, 16, 17, 9, 1, 2, 3, 4, 5, 6, 7, 8, 18}));
}

TEST(InvertImage, TheMiddleRowOfAnOddHeightStays) {
    Image image{1, 2, 3, 4, 5, 6};
    IPL_InvertImage_C1R(2, 3, 2, image.data());
    EXPECT_EQ(image, (Image{5, 6, 3, 4, 1, 2}));
}

TEST(InvertImage, OneRowOrNoneChangesNothing) {
    for (int height : {1, 0, -1, -2, INT_MIN}) {
        Image image = Numbered(32);
        IPL_InvertImage_C1R(4, height, 8, image.data());
        IPL_InvertImage_C4R(4, height, 16, image.data());
        EXPECT_EQ(image, Numbered(32)) << height;
    }
}

TEST(Clears, SizesBelowOneWriteNothing) {
    for (auto [width, height] : {std::pair{0, 3},
                                 {3, 0},
                                 {0, 0},
                                 {-3, 3},
                                 {3, -3},
                                 {-3, -3},
                                 {-4, -2},
                                 {-1073741823, 2},  // four times as much wraps to 4
                                 {1, INT_MIN},
                                 {INT_MIN, 1}})
        for (int pixelBytes : {0, 1, 2, 4}) {
            const int stride = width > INT_MIN / 8 ? width * pixelBytes : 8;
            Image image = Numbered(64);
            IPL_ZeroMemory_C1R(width, height, stride, image.data());
            IPL_ZeroMemory_C4R(width, height, stride, image.data());
            IPL_FillMemory_C1R(width, height, stride, image.data(), 7);
            IPL_FillMemory_C4R(width, height, stride, image.data(), 7);
            IPL_InvertImage_C1R(width, height, stride, image.data());
            IPL_InvertImage_C4R(width, height, stride, image.data());
            for (TQ_COLOR_FORMAT format : tqtest::kFormats) {
                IPL_ZeroMemory(format, width, height, stride, image.data());
                IPL_BlackMemory(format, width, height, stride, image.data());
                for (RectForm form : kRectForms)
                    for (TQ_RECT rect : {TQ_RECT{0, 0, 2, 2}, {-9, -9, 9, 9}, {1, 1, 0, 0}})
                        form(format, width, height, stride, image.data(), rect);
            }
            ASSERT_EQ(image, Numbered(64)) << width << " x " << height;
        }
}

TEST(RectangleClears, AnImageOfNothingHandsAnEmptyRectangleBack) {
    for (RectForm form : kRectForms) {
        TQ_RECT rect{-1, -1, 5, 5};
        form(TQ_COLOR_ARGB, 0, 0, 0, nullptr, rect);
        EXPECT_EQ(rect, (TQ_RECT{0, 0, 0, 0}));
        rect = {-1, -1, 5, 5};
        form(TQ_COLOR_ARGB, 3, 0, 12, nullptr, rect);
        EXPECT_EQ(rect, (TQ_RECT{0, 0, 3, 0}));
    }
}

// ---- Every form against the reference ------------------------------------------------------

TEST(ZeroMemory, LinearAreasEqualTheReference) {
    tqtest::ImageStage stage(1);
    for (int size = -5; size <= 200; ++size) {
        ASSERT_TRUE(stage.Equal([&](auto&, auto& dst) { tqref::ZeroMemory(dst, size); },
                                [&](uint8_t*, uint8_t* dst) { IPL_ZeroMemory(dst, size); }))
            << size;
        for (TQ_COLOR_FORMAT format : tqtest::kFormats)
            ASSERT_TRUE(
                stage.Equal([&](auto&, auto& dst) { tqref::ZeroMemory(format, dst, size); },
                            [&](uint8_t*, uint8_t* dst) { IPL_ZeroMemory(format, dst, size); }))
                << format << ", " << size;
    }
}

// reference(width, height, stride, dst) against form(width, height, stride, dst), dense, padded,
// with rows that overlap, and upside down.
template <class Reference, class Form>
void ExpectImagesEqual(tqtest::ImageStage& stage, int pixelBytes, Reference reference, Form form) {
    for (int width = 0; width <= 40; ++width)
        for (int height = 0; height <= 5; ++height) {
            const int row = width * pixelBytes;
            for (int stride : {row, row + 1, row + 16, row - 1, width + 2, -row, -row - 3, 0})
                ASSERT_TRUE(
                    stage.Equal([&](auto&, auto& dst) { reference(width, height, stride, dst); },
                                [&](uint8_t*, uint8_t* dst) { form(width, height, stride, dst); }))
                    << width << " x " << height << ", stride " << stride;
        }
}

TEST(ZeroMemory, RowsEqualTheReference) {
    tqtest::ImageStage stage(2);
    for (int pixelBytes : {1, 4})
        ExpectImagesEqual(
            stage, pixelBytes,
            [=](int width, int height, int stride, tqref::Bytes& dst) {
                tqref::ZeroMemoryRows(width * pixelBytes, height, stride, dst);
            },
            pixelBytes == 1 ? IPL_ZeroMemory_C1R : IPL_ZeroMemory_C4R);
}

TEST(ZeroMemory, ByFormatEqualsTheReference) {
    tqtest::ImageStage stage(3);
    for (TQ_COLOR_FORMAT format : tqtest::kFormats) {
        SCOPED_TRACE(format);
        ExpectImagesEqual(
            stage, tqref::PixelRatio(format),
            [=](auto&&... image) { tqref::Clear(tqref::ZeroPaint, format, image...); },
            [=](auto... image) { IPL_ZeroMemory(format, image...); });
        if (HasFatalFailure()) return;
    }
}

TEST(BlackMemory, EqualsTheReference) {
    tqtest::ImageStage stage(4);
    for (TQ_COLOR_FORMAT format : tqtest::kFormats) {
        SCOPED_TRACE(format);
        ExpectImagesEqual(
            stage, tqref::PixelRatio(format),
            [=](auto&&... image) { tqref::Clear(tqref::BlackPaint, format, image...); },
            [=](auto... image) { IPL_BlackMemory(format, image...); });
        if (HasFatalFailure()) return;
    }
}

TEST(FillMemory, EqualsTheReference) {
    tqtest::ImageStage stage(5);
    for (uint32_t value : {0u, 0x44332211u, 0xFF8001FEu}) {
        const auto byte = static_cast<unsigned char>(value);
        ExpectImagesEqual(
            stage, 1, [=](auto&&... image) { tqref::FillMemory(1, image..., byte); },
            [=](auto... image) { IPL_FillMemory_C1R(image..., byte); });
        ExpectImagesEqual(
            stage, 4, [=](auto&&... image) { tqref::FillMemory(4, image..., value); },
            [=](auto... image) { IPL_FillMemory_C4R(image..., value); });
        if (HasFatalFailure()) return;
    }
}

TEST(InvertImage, EqualsTheReference) {
    tqtest::ImageStage stage(6);
    for (int pixelBytes : {1, 4})
        for (int width = 0; width <= 40; ++width)
            for (int height = 0; height <= 9; ++height) {
                const int row = width * pixelBytes;
                for (int stride : {row, row + 1, row + 16, -row, -row - 3})
                    ASSERT_TRUE(stage.Equal(
                        [&](auto&, auto& data) { tqref::InvertImage(row, height, stride, data); },
                        [&](uint8_t*, uint8_t* data) {
                            if (pixelBytes == 1)
                                IPL_InvertImage_C1R(width, height, stride, data);
                            else
                                IPL_InvertImage_C4R(width, height, stride, data);
                        }))
                        << width << " x " << height << ", stride " << stride;
            }
}

TEST(InvertImage, WideRowsEqualTheReference) {
    for (int width : {4095, 4096, 4097, 70001}) {
        Image image = Numbered(4 * size_t(width) * 3 + 5), expected = image;
        tqref::Bytes reference(expected.data());
        tqref::InvertImage(4 * int64_t{width}, 3, 4 * width + 1, reference);
        IPL_InvertImage_C4R(width, 3, 4 * width + 1, image.data());
        ASSERT_TRUE(image == expected) << width;
        tqref::InvertImage(width, 11, width + 2, reference);
        IPL_InvertImage_C1R(width, 11, width + 2, image.data());
        ASSERT_TRUE(image == expected) << width;
    }
}

// reference(width, height, stride, dst, rect) against form(width, height, stride, dst, rect): the
// same bytes and the same rectangle back. The strides are dense, padded, shorter than what the
// strips reach, or negative, in turn.
template <class Reference, class Form>
void ExpectRectanglesEqual(tqtest::ImageStage& stage, Reference reference, Form form) {
    unsigned turn = 0;
    for (int width = 1; width <= 40; ++width)
        for (int height = 1; height <= 5; ++height)
            for (TQ_RECT rect : tqtest::RectsAround(width, height)) {
                const int choices[] = {4 * width, 4 * width + 3, width,     2 * width + 1,
                                       width + 5, -4 * width,    -width - 2};
                const int stride = choices[turn++ % 7];
                TQ_RECT expected, back;
                bool sameBack = true;
                ASSERT_TRUE(stage.Equal(
                    [&](auto&, auto& dst) {
                        expected = rect;
                        reference(width, height, stride, dst, expected);
                    },
                    [&](uint8_t*, uint8_t* dst) {
                        back = rect;
                        form(width, height, stride, dst, back);
                        sameBack = sameBack && back == expected;
                    }))
                    << width << " x " << height << ", stride " << stride << ", rectangle "
                    << testing::PrintToString(rect);
                ASSERT_TRUE(sameBack) << testing::PrintToString(rect) << " came back as "
                                      << testing::PrintToString(back);
            }
}

TEST(RectangleClears, EqualTheReference) {
    tqtest::ImageStage stage(7);
    for (TQ_COLOR_FORMAT format : tqtest::kFormats) {
        SCOPED_TRACE(format);
        using namespace tqref;
        ExpectRectanglesEqual(
            stage, [=](auto&&... image) { ClearIn(ZeroPaint, format, image...); },
            [=](auto&&... image) { IPL_ZeroMemoryIn(format, image...); });
        ExpectRectanglesEqual(
            stage, [=](auto&&... image) { ClearOut(ZeroPaint, format, image...); },
            [=](auto&&... image) { IPL_ZeroMemoryOut(format, image...); });
        ExpectRectanglesEqual(
            stage, [=](auto&&... image) { ClearIn(BlackPaint, format, image...); },
            [=](auto&&... image) { IPL_BlackMemoryIn(format, image...); });
        ExpectRectanglesEqual(
            stage, [=](auto&&... image) { ClearOut(BlackPaint, format, image...); },
            [=](auto&&... image) { IPL_BlackMemoryOut(format, image...); });
        if (HasFatalFailure()) return;
    }
}

constexpr uint32_t kWord = 0x84C2A193;
constexpr unsigned char kByte = 0xA5;

TEST(RectangleFills, EqualTheReference) {
    tqtest::ImageStage stage(8);
    using namespace tqref;
    ExpectRectanglesEqual(
        stage, [](auto&&... image) { FillMemoryIn(1, image..., kByte); },
        [](auto&&... image) { IPL_FillMemoryIn_C1R(image..., kByte); });
    ExpectRectanglesEqual(
        stage, [](auto&&... image) { FillMemoryOut(1, image..., kByte); },
        [](auto&&... image) { IPL_FillMemoryOut_C1R(image..., kByte); });
    ExpectRectanglesEqual(
        stage, [](auto&&... image) { FillMemoryIn(4, image..., kWord); },
        [](auto&&... image) { IPL_FillMemoryIn_C4R(image..., kWord); });
    ExpectRectanglesEqual(
        stage, [](auto&&... image) { FillMemoryOut(4, image..., kWord); },
        [](auto&&... image) { IPL_FillMemoryOut_C4R(image..., kWord); });
}

}  // namespace
