// TFI zoom: the spread of a window, known values, sources of one row or column, the reference at
// every level, bands and band tasks.

#include <gtest/gtest.h>
#include <tqipl/zoom.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <type_traits>
#include <utility>
#include <vector>

#include "reference/zoom_tfi_reference.h"
#include "support/guarded_buffer.h"
#include "support/settings.h"
#include "support/task_fields.h"
#include "support/zoom_preamble.h"
#include "support/zoom_threads.h"
#include "zoom/tfi.h"
#include "zoom/zoom_tasks.h"

namespace {

using tqtest::Content;
using tqtest::GuardedBuffer;
using tqtest::GuardedImage;
using tqtest::ZoomForm;
using tqtest::ZoomPreamble;
using tqtest::ZoomSizes;

const ZoomForm kPlainC1 = {"IPL_ZoomTFI_8u_C1R", IPL_ZoomTFI_8u_C1R, tqref::ZoomTfiPlainC1, 1};
const ZoomForm kPlainC4 = {"IPL_ZoomTFI_8u_C4R", IPL_ZoomTFI_8u_C4R, tqref::ZoomTfiPlainC4, 4};
const ZoomForm kThreadedC1 = {"IPL_ZoomTFIMultiThread_8u_C1R", IPL_ZoomTFIMultiThread_8u_C1R,
                              tqref::ZoomTfiThreadedC1, 1};
const ZoomForm kThreadedC4 = {"IPL_ZoomTFIMultiThread_8u_C4R", IPL_ZoomTFIMultiThread_8u_C4R,
                              tqref::ZoomTfiThreadedC4, 4};
const std::vector<ZoomForm> kPlainForms = {kPlainC1, kPlainC4};
const std::vector<ZoomForm> kThreadedForms = {kThreadedC1, kThreadedC4};
const std::vector<ZoomForm> kForms = {kPlainC1, kPlainC4, kThreadedC1, kThreadedC4};

bool SameBits(float a, float b) { return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b); }

// ---- The spread of a window ---------------------------------------------------------------------

struct Spreads {
    float variance, deviation;
};

Spreads SpreadsOf(int width, int height, const std::vector<int>& bytes,
                  tqtest::ImageLayout layout) {
    GuardedImage window(width, height, layout);
    std::memset(window.Memory(), 0xA5, window.Size());
    for (int i = 0; i < width * height; ++i)
        window.Row(i / width)[i % width] = static_cast<uint8_t>(bytes[static_cast<size_t>(i)]);
    return {tq::IPL_TFIVariance(width, height, window.Stride(), window.First()),
            tq::IPL_TFIDeviation(width, height, window.Stride(), window.First())};
}

TEST(TfiSpread, AFlatWindowHasNone) {
    for (int value : {0, 1, 64, 127, 255}) {
        const Spreads spreads = SpreadsOf(2, 2, {value, value, value, value}, {});
        EXPECT_TRUE(SameBits(spreads.variance, 0.0f)) << value;
        EXPECT_TRUE(SameBits(spreads.deviation, 0.0f)) << value;
    }
    const Spreads single = SpreadsOf(1, 1, {77}, {});
    EXPECT_TRUE(SameBits(single.variance, 0.0f));
    EXPECT_TRUE(SameBits(single.deviation, 0.0f));
}

TEST(TfiSpread, TheVarianceIsExactAndTheDeviationOfWholeNumbers) {
    // The mean 63.75, and 63 in whole numbers: 48771 / 4 is 12192.
    const Spreads corner = SpreadsOf(2, 2, {0, 0, 0, 255}, {});
    EXPECT_EQ(corner.variance, 12192.1875f);
    EXPECT_EQ(corner.deviation, std::sqrt(12192.0f));
    const Spreads halves = SpreadsOf(2, 2, {0, 100, 0, 100}, {});
    EXPECT_EQ(halves.variance, 2500.0f);
    EXPECT_EQ(halves.deviation, 50.0f);
    // One step of one: too little for whole numbers.
    const Spreads little = SpreadsOf(2, 2, {9, 9, 9, 10}, {});
    EXPECT_EQ(little.variance, 0.1875f);
    EXPECT_EQ(little.deviation, 0.0f);
    // Mean 10 for 10.75: 0 + 0 + 0 + 9, and a quarter of it cut to 2.
    const Spreads cut = SpreadsOf(2, 2, {10, 10, 10, 13}, {});
    EXPECT_EQ(cut.variance, 1.6875f);
    EXPECT_EQ(cut.deviation, std::sqrt(2.0f));
    const Spreads row = SpreadsOf(3, 1, {0, 30, 60}, {});
    EXPECT_NEAR(row.variance, 600.0f, 1e-3f);
    EXPECT_EQ(row.deviation, std::sqrt(600.0f));
}

TEST(TfiSpread, AnyWindowEqualsTheReference) {
    uint32_t state = 11;
    for (int i = 0; i < 4000; ++i) {
        const int width = 1 + i % 3 + (i % 17 == 0 ? 6 : 0), height = 1 + i / 3 % 3;
        std::vector<int> bytes;
        for (int k = 0; k < width * height; ++k) {
            state = state * 1664525u + 1013904223u;
            const int byte = static_cast<int>(state >> 24);
            bytes.push_back(i % 5 == 0 ? 100 + byte % 3 : byte);
        }
        const tqtest::ZoomLayout& layout = tqtest::ZoomLayouts()[i % tqtest::ZoomLayouts().size()];
        const Spreads spreads = SpreadsOf(width, height, bytes, layout.src);
        ASSERT_TRUE(SameBits(spreads.variance, tqref::TfiVariance(bytes)));
        ASSERT_TRUE(SameBits(spreads.deviation, tqref::TfiDeviation(bytes)));
    }
}

// ---- Values known by hand -----------------------------------------------------------------------

void ExpectTfi(const std::vector<ZoomForm>& forms, const ZoomSizes& sizes,
               const std::vector<int>& source, const std::vector<int>& expected) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        SCOPED_TRACE(tq::IsaLevelName(level));
        settings.Use(level);
        tqtest::ExpectZoom(forms, sizes, source, expected);
    }
}

// Bytes that are powers of two make every product exact; the mean of others may fall short of them
// by a rounding, which the truncation makes one.
TEST(ZoomTfi, AConstantImageStaysConstant) {
    for (const ZoomSizes& s :
         {ZoomSizes{2, 2, 9, 9}, {3, 5, 17, 4}, {9, 7, 31, 23}, {31, 23, 9, 7}, {8, 8, 8, 3}}) {
        const auto image = [](int width, int height, int value) {
            return std::vector<int>(static_cast<size_t>(width * height), value);
        };
        for (int value : {0, 1, 2, 64, 128})
            ExpectTfi(kForms, s, image(s.srcWidth, s.srcHeight, value),
                      image(s.dstWidth, s.dstHeight, value));
        for (int value : {3, 100, 127, 255})
            for (const ZoomForm& form : kForms)
                for (int byte : tqtest::ZoomBytes(
                         form, s, image(s.srcWidth * form.channels, s.srcHeight, value))) {
                    ASSERT_LE(byte, value) << form.name;
                    ASSERT_GE(byte, value - 1) << form.name;
                }
    }
}

TEST(ZoomTfi, HalfwayBetweenTwoIsTheirMean) {
    ExpectTfi(kForms, {2, 2, 3, 2}, {0, 128, 0, 128}, {0, 64, 128, 0, 64, 128});
    ExpectTfi(kForms, {2, 2, 2, 3}, {0, 0, 128, 128}, {0, 0, 64, 64, 128, 128});
    ExpectTfi(kForms, {2, 2, 3, 3}, {0, 128, 128, 0}, {0, 64, 128, 64, 64, 64, 128, 64, 0});
}

TEST(ZoomTfi, CornersCoincide) {
    for (const ZoomSizes& s : {ZoomSizes{5, 4, 9, 7}, {9, 7, 5, 4}, {7, 5, 7, 9}, {3, 3, 33, 17}})
        for (const ZoomForm& form : kForms) {
            std::vector<uint8_t> bytes(static_cast<size_t>(s.srcWidth * s.srcHeight));
            tqtest::Fill(bytes.data(), bytes.size(), Content::kNoise, 6);
            std::vector<int> source(bytes.begin(), bytes.end());
            source.front() = 16;
            source[static_cast<size_t>(s.srcWidth - 1)] = 128;
            source[source.size() - static_cast<size_t>(s.srcWidth)] = 4;
            source.back() = 64;
            if (form.channels == 4) source = tqtest::InFourChannels(source);
            const std::vector<int> result = tqtest::ZoomBytes(form, s, source);
            const int n = form.channels, right = (s.dstWidth - 1) * n;
            const int bottom = (s.dstHeight - 1) * s.dstWidth * n;
            for (int channel = 0; channel < n; ++channel) {
                EXPECT_EQ(result[channel], 16) << form.name;
                EXPECT_EQ(result[right + channel], 128) << form.name;
                EXPECT_EQ(result[bottom + channel], 4) << form.name;
                EXPECT_EQ(result[bottom + right + channel], 64) << form.name;
            }
        }
}

// An axis of equal lengths takes every sample wholly: powers of two, the other axis halfway too.
TEST(ZoomTfi, AnEqualAxisIsTakenAsItStands) {
    ExpectTfi(kForms, {4, 3, 4, 2}, {1, 16, 64, 8, 9, 250, 3, 111, 32, 2, 128, 4},
              {1, 16, 64, 8, 32, 2, 128, 4});
    ExpectTfi(kForms, {3, 4, 2, 4}, {1, 77, 16, 64, 5, 8, 32, 99, 2, 128, 250, 4},
              {1, 16, 64, 8, 32, 2, 128, 4});
}

// The same picture by the two measures of spread; positions are whole or halves. The samples
// themselves, at even rows and columns, may fall short by a rounding.
TEST(ZoomTfi, PlainAndMultiThreadDifferAsTheirSpreadsDo) {
    const std::vector<int> source = {16,  200, 35,  32,   //
                                     60,  8,   180, 120,  //
                                     240, 70,  33,  150,  //
                                     128, 20,  95,  64};
    const std::vector<int> plain = {16,  141, 200, 159, 35,  33,  32,   //
                                    29,  98,  127, 128, 130, 110, 93,   //
                                    60,  20,  8,   95,  180, 146, 120,  //
                                    140, 62,  42,  75,  116, 128, 135,  //
                                    240, 100, 70,  55,  33,  109, 150,  //
                                    181, 56,  36,  52,  75,  91,  104,  //
                                    128, 31,  20,  51,  95,  79,  64};
    const std::vector<int> threaded = {16,  169, 200, 180, 35,  33,  32,   //
                                       28,  101, 146, 145, 154, 117, 99,   //
                                       60,  19,  8,   97,  180, 145, 120,  //
                                       127, 47,  42,  64,  130, 137, 135,  //
                                       240, 76,  70,  56,  33,  129, 150,  //
                                       179, 42,  33,  50,  79,  91,  102,  //
                                       128, 25,  20,  47,  95,  79,  64};
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels())
        for (const ZoomForm& form : kForms) {
            settings.Use(level);
            const bool isPlain =
                form.function == kPlainC1.function || form.function == kPlainC4.function;
            const std::vector<int>& expected = isPlain ? plain : threaded;
            const std::vector<int> result = tqtest::ZoomBytes(
                form, {4, 4, 7, 7}, form.channels == 4 ? tqtest::InFourChannels(source) : source);
            for (int i = 0; i < 49; ++i)
                for (int channel = 0; channel < form.channels; ++channel) {
                    const int byte = result[i * form.channels + channel];
                    const bool sample = i / 7 % 2 == 0 && i % 7 % 2 == 0;
                    if (sample && byte == expected[i] - 1) continue;
                    EXPECT_EQ(byte, expected[i]) << form.name << ", row " << i / 7 << ", column "
                                                 << i % 7 << ", " << tq::IsaLevelName(level);
                }
        }
}

// One processor is no other: a MultiThread form measures by whole numbers even then.
TEST(ZoomTfi, OneProcessorKeepsTheMultiThreadFormsOwnSpread) {
    tqtest::Settings settings;
    settings.UseProcessors(1);
    const std::vector<int> source = {16, 200, 35, 60, 8, 180, 240, 70, 33};
    const ZoomSizes s = {3, 3, 11, 9};
    EXPECT_NE(tqtest::ZoomBytes(kPlainC1, s, source), tqtest::ZoomBytes(kThreadedC1, s, source));
}

TEST(ZoomTfi, EachChannelIsFilteredByItself) {
    for (auto [c4, c1] : {std::pair{&kPlainC4, &kPlainC1}, {&kThreadedC4, &kThreadedC1}}) {
        const ZoomSizes s = {6, 5, 14, 12};
        std::vector<uint8_t> bytes(6 * 5 * 4);
        tqtest::Fill(bytes.data(), bytes.size(), Content::kNoise, 16);
        const std::vector<int> source(bytes.begin(), bytes.end());
        const std::vector<int> result = tqtest::ZoomBytes(*c4, s, source);
        for (int channel = 0; channel < 4; ++channel) {
            std::vector<int> plane, expected;
            for (size_t i = 0; i < 6 * 5; ++i) plane.push_back(source[4 * i + channel]);
            for (size_t i = 0; i < 14 * 12; ++i) expected.push_back(result[4 * i + channel]);
            EXPECT_EQ(tqtest::ZoomBytes(*c1, s, plane), expected) << c4->name << channel;
        }
    }
}

// ---- Sources of one row or column ---------------------------------------------------------------

// The nearest sample stands in for the missing one, at every position: nothing turns black.
TEST(ZoomTfi, ASourceOfOnePixelGivesItEverywhere) {
    for (int value : {1, 64, 128})
        for (auto [width, height] : {std::pair{2, 2}, {1, 2}, {2, 1}, {3, 5}, {8, 7}, {1, 9}})
            ExpectTfi(kForms, {1, 1, width, height}, {value},
                      std::vector<int>(static_cast<size_t>(width * height), value));
}

TEST(ZoomTfi, ASourceOfOneColumnIsConstantAlongEachRow) {
    ExpectTfi(kForms, {1, 2, 5, 3}, {0, 128},
              {0, 0, 0, 0, 0,       //
               64, 64, 64, 64, 64,  //
               128, 128, 128, 128, 128});
}

TEST(ZoomTfi, ASourceOfOneRowIsConstantDownEachColumn) {
    ExpectTfi(kForms, {2, 1, 3, 4}, {0, 128}, {0, 64, 128, 0, 64, 128, 0, 64, 128, 0, 64, 128});
}

// A destination of one column is at position 0 whatever the source's width is.
TEST(ZoomTfi, ADestinationOfOneColumnOrRowIsTheFirst) {
    ExpectTfi(kForms, {4, 2, 1, 2}, {16, 200, 3, 90, 64, 7, 180, 33}, {16, 64});
    ExpectTfi(kForms, {2, 4, 2, 1}, {16, 64, 200, 3, 90, 7, 180, 33}, {16, 64});
    ExpectTfi(kForms, {3, 3, 1, 1}, {32, 200, 3, 90, 64, 7, 180, 33, 9}, {32});
}

// Exact at the start as well as at the end: what lies before the image is not read.
TEST(ZoomTfi, SourcesOfOneRowOrColumnReadNothingOutside) {
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals(form);
        for (const ZoomSizes& s : {ZoomSizes{1, 1, 2, 2},
                                   {1, 1, 7, 5},
                                   {1, 5, 4, 9},
                                   {1, 5, 1, 3},
                                   {1, 2, 2, 1},
                                   {5, 1, 9, 4},
                                   {5, 1, 3, 1},
                                   {2, 1, 1, 2},
                                   {1, 40, 17, 20},
                                   {40, 1, 20, 17},
                                   {1, 9, 64, 9},
                                   {100, 1, 131, 3}})
            ASSERT_TRUE(equals.InEveryLayout(s, Content::kNoise));
    }
}

// ---- What comes before the method ---------------------------------------------------------------

INSTANTIATE_TEST_SUITE_P(ZoomTfi, ZoomPreamble, testing::ValuesIn(kForms), tqtest::ZoomFormName);

// ---- The reference at every level ---------------------------------------------------------------

TEST(ZoomTfi, AllSmallSizesEqualTheReference) {
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals(form);
        ASSERT_TRUE(equals.AllSizesUpTo(form.channels == 1 ? 5 : 4));
    }
}

TEST(ZoomTfi, WidthsOfEveryTailEqualTheReference) {
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals(form);
        for (int dstWidth = 1; dstWidth <= 70; ++dstWidth)
            for (int srcWidth : {2, 5, 16, 33, 70})
                ASSERT_TRUE(equals({srcWidth, 3, dstWidth, 4},
                                   srcWidth % 2 == 0 ? Content::kNoise : Content::kHostile));
    }
}

TEST(ZoomTfi, EveryLayoutEqualsTheReference) {
    for (const ZoomForm& form : kForms) {
        tqtest::ZoomSweep equals(form);
        for (const ZoomSizes& sizes : tqtest::ZoomSizesOfEveryKind()) {
            ASSERT_TRUE(equals.InEveryLayout(sizes, Content::kNoise));
            ASSERT_TRUE(equals(sizes, Content::kHostile));
        }
    }
}

// Windows that are the whole picture: spreads from 0 to the greatest, corners alike and not.
TEST(ZoomTfi, CornersOfManyKindsEqualTheReference) {
    tqtest::Settings settings;
    const int kinds[] = {0, 1, 3, 100, 127, 254, 255};
    for (const ZoomForm& form : {kPlainC1, kThreadedC1})
        for (int corners = 0; corners < 7 * 7 * 7 * 7; ++corners) {
            uint8_t src[4];
            for (int i = 0, rest = corners; i < 4; ++i, rest /= 7)
                src[i] = static_cast<uint8_t>(kinds[rest % 7]);
            std::vector<uint8_t> expected(9 * 6), actual(expected.size());
            form.reference(2, 2, 2, src, 9, 6, 9, expected.data());
            for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                settings.Use(level);
                form.function(2, 2, 2, src, 9, 6, 9, actual.data());
                ASSERT_EQ(actual, expected)
                    << form.name << ", corners " << corners << ", " << tq::IsaLevelName(level);
            }
        }
}

// Neighbouring bytes that differ little or not at all: spreads of 0 and just above it.
TEST(ZoomTfi, QuietPicturesEqualTheReference) {
    tqtest::Settings settings;
    for (const ZoomForm& form : kForms)
        for (int range : {2, 3, 5, 20}) {
            const int n = form.channels;
            std::vector<uint8_t> src(static_cast<size_t>(23 * 17 * n));
            tqtest::Fill(src.data(), src.size(), Content::kNoise, static_cast<uint32_t>(range));
            for (uint8_t& byte : src) byte = static_cast<uint8_t>(byte < 64 ? byte % range : 200);
            std::vector<uint8_t> expected(static_cast<size_t>(61 * 40 * n)), actual = expected;
            form.reference(23, 17, 23 * n, src.data(), 61, 40, 61 * n, expected.data());
            for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                settings.Use(level);
                form.function(23, 17, 23 * n, src.data(), 61, 40, 61 * n, actual.data());
                ASSERT_EQ(actual, expected) << form.name << ", " << tq::IsaLevelName(level);
            }
        }
}

TEST(ZoomTfi, SizesAtRandomEqualTheReference) {
    for (const ZoomForm& form : kForms)
        ASSERT_TRUE(tqtest::ZoomSweep(form).WithSizesAtRandom(150, 90, 12));
}

TEST(ZoomTfi, VeryWideAndVeryTallImagesEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(2);
    for (const ZoomForm& form : kForms)
        for (const ZoomSizes& sizes :
             {ZoomSizes{30011, 2, 20011, 3}, {2, 30011, 3, 20011}, {9001, 3, 20011, 2}})
            ASSERT_TRUE(tqtest::EqualsReference(form, sizes, tqtest::ZoomLayouts()[1],
                                                Content::kNoise, 1, {tq::DetectIsaLevel()}));
}

TEST(ZoomTfi, VideoSizesEqualTheReference) {
    tqtest::Settings settings;
    settings.UseProcessors(4);
    ASSERT_TRUE(tqtest::EqualsReference(kPlainC1, {720, 486, 1920, 1080}, tqtest::ZoomLayouts()[1],
                                        Content::kNoise, 1, {tq::DetectIsaLevel()}));
    ASSERT_TRUE(tqtest::EqualsReference(kThreadedC1, {1920, 1080, 1280, 720},
                                        tqtest::ZoomLayouts()[3], Content::kNoise, 1,
                                        {tq::DetectIsaLevel()}));
    for (const ZoomForm& form : {kPlainC4, kThreadedC4})
        ASSERT_TRUE(tqtest::EqualsReference(form, {480, 270, 960, 540}, tqtest::ZoomLayouts()[1],
                                            Content::kNoise, 1, {tq::DetectIsaLevel()}));
}

// ---- Bands --------------------------------------------------------------------------------------

// Fewer rows than processors leave all bands but the last one empty.
TEST(ZoomTfi, EveryFormEqualsItsReferenceAtEveryProcessorCount) {
    for (const ZoomForm& form : kForms)
        for (const ZoomSizes& s : {ZoomSizes{5, 4, 9, 1},
                                   {5, 4, 9, 2},
                                   {5, 4, 9, 3},
                                   {7, 3, 6, 8},
                                   {5, 9, 8, 15},
                                   {5, 9, 8, 17},
                                   {5, 9, 8, 33}})
            ASSERT_NO_FATAL_FAILURE(tqtest::ExpectReferenceAtEveryProcessorCount(form, s));
}

TEST(ZoomTfi, TaskFieldsStandInOrder) {
    using Task = CZoomTFITask_8u_C1R;
    static_assert(std::is_base_of_v<CTQIPLTaskBase, Task>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcWidth), int>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcHeight), int>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pSrc), unsigned char*>);
    static_assert(std::is_same_v<decltype(Task::m_nDstWidth), int>);
    static_assert(std::is_same_v<decltype(Task::m_nDstHeight), int>);
    static_assert(std::is_same_v<decltype(Task::m_nDstStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pDst), unsigned char*>);
    static_assert(std::is_same_v<decltype(Task::m_nRowBegin), int>);
    static_assert(std::is_same_v<decltype(Task::m_nRowEnd), int>);
    const Task task;
    const void* const fields[] = {
        &task,        &task.m_nSrcWidth, &task.m_nSrcHeight, &task.m_nSrcStride,
        &task.m_pSrc, &task.m_nDstWidth, &task.m_nDstHeight, &task.m_nDstStride,
        &task.m_pDst, &task.m_nRowBegin, &task.m_nRowEnd};
    tqtest::ExpectAddressesRise(fields);
}

// Every band, with nothing else of the destination touched, and by the deviation.
void ExpectTaskBand(const ZoomSizes& s, int begin, int end) {
    GuardedImage src(s.srcWidth, s.srcHeight, {GuardedBuffer::kStart, 1});
    GuardedImage dst(s.dstWidth, s.dstHeight, {GuardedBuffer::kEnd, 3});
    tqtest::Fill(src.Memory(), src.Size(), Content::kNoise, static_cast<uint32_t>(begin));
    tqtest::Fill(dst.Memory(), dst.Size(), Content::kNoise, static_cast<uint32_t>(50 + end));
    std::vector<uint8_t> expected = dst.Copy();
    tqref::TfiRows(1, {s.srcWidth, s.srcHeight, src.Stride(), src.First()},
                   {s.dstWidth, s.dstHeight, dst.Stride(), expected.data()}, tqref::TfiDeviation,
                   begin, end);
    CZoomTFITask_8u_C1R task;
    task.m_nSrcWidth = s.srcWidth;
    task.m_nSrcHeight = s.srcHeight;
    task.m_nSrcStride = src.Stride();
    task.m_pSrc = src.First();
    task.m_nDstWidth = s.dstWidth;
    task.m_nDstHeight = s.dstHeight;
    task.m_nDstStride = dst.Stride();
    task.m_pDst = dst.First();
    task.m_nRowBegin = begin;
    task.m_nRowEnd = end;
    CTQIPLTaskBase& base = task;
    ASSERT_EQ(base.Run(), 1);
    ASSERT_EQ(dst.Copy(), expected) << s.srcWidth << " x " << s.srcHeight << " to " << s.dstWidth
                                    << " x " << s.dstHeight << ", rows " << begin << " to " << end
                                    << ", level " << tq::IsaLevelName(tq::CurrentIsaLevel());
}

TEST(ZoomTfi, ATaskWritesItsRowsAndReturns1) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (const ZoomSizes& s : {ZoomSizes{9, 4, 21, 7},
                                   {21, 7, 9, 4},
                                   {5, 5, 5, 5},
                                   {2, 2, 3, 2},
                                   {1, 1, 3, 3},
                                   {3, 9, 8, 1},
                                   {33, 3, 40, 9}})
            for (int begin = 0; begin <= s.dstHeight; ++begin)
                for (int end = begin; end <= s.dstHeight; ++end)
                    ASSERT_NO_FATAL_FAILURE(ExpectTaskBand(s, begin, end));
    }
}

// What the kernels' bound of their error rests on (zoom/tfi_kernels.h).
TEST(ZoomTfi, TheRuntimesExponentialIsAsNearAsTheKernelsAssume) {
    for (int i = 0; i <= 46 * 8192; ++i) {
        const float exponent = static_cast<float>(i) / -8192.0f;
        const double exact = std::exp(static_cast<double>(exponent));
        ASSERT_LE(std::fabs(std::exp(exponent) - exact), exact * 0x1p-19) << exponent;
    }
}

TEST(ZoomTfi, SeveralThreadsZoomDifferentImagesAtOnce) {
    tqtest::ExpectSeveralThreadsZoomAtOnce(kForms, {13, 9, 20, 23});
}

}  // namespace
