// The luminance family: values known by hand, every form against its reference, bands, tasks.

#include <gtest/gtest.h>
#include <tqipl/luminance.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "color/luminance_tasks.h"
#include "frame/band.h"
#include "reference/luminance_reference.h"
#include "support/allocation_counter.h"
#include "support/pixel_forms.h"
#include "support/settings.h"

namespace {

using tqtest::PixelForm;
using tqtest::RunTask;
using tqtest::RunTaskInMode;
using tqtest::Settings;

constexpr PixelForm<uint8_t> kArgb = {"IPL_ARGB2LUM",
                                      IPL_ARGB2LUM,
                                      IPL_ARGB2LUM_MultiThread,
                                      RunTask<CZARGB2LUMTask>,
                                      tqref::Argb2Lum,
                                      1,
                                      4,
                                      1};
constexpr PixelForm<uint8_t> kBgr10 = {"IPL_BGR10b_To_Lum",
                                       IPL_BGR10b_To_Lum,
                                       IPL_BGR10b_To_Lum_MultiThread,
                                       RunTaskInMode<CZBGR2LUMTask, 0>,
                                       tqref::Bgr10ToLum,
                                       1,
                                       4,
                                       1};
constexpr PixelForm<uint8_t> kBgr16 = {"IPL_BGR16b_To_Lum",
                                       IPL_BGR16b_To_Lum,
                                       IPL_BGR16b_To_Lum_MultiThread,
                                       RunTaskInMode<CZBGR2LUMTask, 1>,
                                       tqref::Bgr16ToLum,
                                       1,
                                       6,
                                       1};
constexpr PixelForm<int> kBgra32 = {"IPL_BGRA_To_Lum32",
                                    IPL_BGRA_To_Lum32,
                                    IPL_BGRA_To_Lum32_MultiThread,
                                    RunTask<CZBGRA2Lum32>,
                                    tqref::BgraToLum32,
                                    1,
                                    4,
                                    1};
constexpr PixelForm<int> kBgr10Sum = {"IPL_BGR10b_To_Lum32",
                                      IPL_BGR10b_To_Lum32,
                                      IPL_BGR10b_To_Lum32_MultiThread,
                                      RunTaskInMode<CZBGR2LUM32, 0>,
                                      tqref::Bgr10ToLum32,
                                      1,
                                      4,
                                      1};
constexpr PixelForm<int> kBgr16Sum = {"IPL_BGR16b_To_Lum32",
                                      IPL_BGR16b_To_Lum32,
                                      IPL_BGR16b_To_Lum32_MultiThread,
                                      RunTaskInMode<CZBGR2LUM32, 1>,
                                      tqref::Bgr16ToLum32,
                                      1,
                                      6,
                                      1};
constexpr const PixelForm<uint8_t>* kByteForms[] = {&kArgb, &kBgr10, &kBgr16};
constexpr const PixelForm<int>* kSumForms[] = {&kBgra32, &kBgr10Sum, &kBgr16Sum};

// Calls check(form) for the six forms.
template <class Check> void ForEachForm(Check check) {
    for (const auto* form : kByteForms) check(*form);
    for (const auto* form : kSumForms) check(*form);
}

template <class Dst> Dst OnePixel(const PixelForm<Dst>& form, std::vector<uint8_t> pixel) {
    Dst dst = 99;
    form.plain(1, 1, 0, pixel.data(), 0, &dst);
    return dst;
}

// Bytes of a 10-bit word.
std::vector<uint8_t> Word(uint32_t word) {
    return {static_cast<uint8_t>(word), static_cast<uint8_t>(word >> 8),
            static_cast<uint8_t>(word >> 16), static_cast<uint8_t>(word >> 24)};
}
// The word of three 10-bit channels and the two bits below them.
uint32_t Bgr10(uint32_t blue, uint32_t green, uint32_t red, uint32_t lowBits) {
    return red << 22 | green << 12 | blue << 2 | lowBits;
}

TEST(Luminance, WhiteIs255AndItsSumIs255Times1024) {
    EXPECT_EQ(OnePixel(kArgb, {255, 255, 255, 0}), 255);
    EXPECT_EQ(OnePixel(kBgra32, {255, 255, 255, 0}), 255 * 1024);
    EXPECT_EQ(OnePixel(kBgr10, Word(0xFFFFFFFC)), 255);
    EXPECT_EQ(OnePixel(kBgr10Sum, Word(0xFFFFFFFC)), 1023 * 1024);
    EXPECT_EQ(OnePixel(kBgr16, {255, 255, 255, 255, 255, 255}), 255);
    EXPECT_EQ(OnePixel(kBgr16Sum, {255, 255, 255, 255, 255, 255}), 65535 * 1024);
}

TEST(Luminance, BlackIsZeroInEveryForm) {
    ForEachForm([](const auto& form) {
        EXPECT_EQ(OnePixel(form, {0, 0, 0, 0, 0, 0}), 0) << form.name;
    });
}

TEST(Luminance, OneOfBlueRoundsToZeroAndOneOfGreenToOne) {
    EXPECT_EQ(OnePixel(kArgb, {1, 0, 0, 0}), 0);
    EXPECT_EQ(OnePixel(kArgb, {0, 1, 0, 0}), 1);
    EXPECT_EQ(OnePixel(kArgb, {0, 0, 1, 0}), 0);  // 306 + 512 is below 1024
    EXPECT_EQ(OnePixel(kArgb, {0, 0, 2, 0}), 1);  // 612 + 512 is not
}

TEST(Luminance, HalfAStepRoundsUp) {
    EXPECT_EQ(OnePixel(kArgb, {4, 12, 0, 0}), 8);  // 468 + 7212 = 7680 = 7.5 * 1024
    EXPECT_EQ(OnePixel(kArgb, {1, 8, 9, 0}), 7);   // 117 + 4808 + 2754 = 7679
}

TEST(Luminance, WeightsBelongToBlueGreenRedInRisingAddressOrder) {
    EXPECT_EQ(OnePixel(kBgra32, {1, 0, 0, 0}), 117);
    EXPECT_EQ(OnePixel(kBgra32, {0, 1, 0, 0}), 601);
    EXPECT_EQ(OnePixel(kBgra32, {0, 0, 1, 0}), 306);
    EXPECT_EQ(OnePixel(kBgra32, {10, 20, 30, 0}), 1170 + 12020 + 9180);
    EXPECT_EQ(OnePixel(kArgb, {255, 0, 0, 0}), 29);   // 29835 + 512 = 29 * 1024 + 651
    EXPECT_EQ(OnePixel(kArgb, {0, 255, 0, 0}), 150);  // 153255 + 512 = 150 * 1024 + 167
    EXPECT_EQ(OnePixel(kArgb, {0, 0, 255, 0}), 76);   // 78030 + 512 = 76 * 1024 + 718
}

TEST(Luminance, AlphaHasNoInfluence) {
    for (int alpha = 0; alpha < 256; ++alpha) {
        EXPECT_EQ(OnePixel(kArgb, {1, 2, 3, static_cast<uint8_t>(alpha)}), 2);  // 2237 + 512
        EXPECT_EQ(OnePixel(kBgra32, {1, 2, 3, static_cast<uint8_t>(alpha)}), 2237);
    }
}

TEST(Luminance, ChannelsOfTheTenBitWordStandInTheirBits) {
    EXPECT_EQ(OnePixel(kBgr10Sum, Word(0x00000FFC)), 117 * 1023);
    EXPECT_EQ(OnePixel(kBgr10Sum, Word(0x003FF000)), 601 * 1023);
    EXPECT_EQ(OnePixel(kBgr10Sum, Word(0xFFC00000)), 306 * 1023);
    EXPECT_EQ(OnePixel(kBgr10, Word(0x00000FFC)), 29);
    EXPECT_EQ(OnePixel(kBgr10, Word(0x003FF000)), 150);
    EXPECT_EQ(OnePixel(kBgr10, Word(0xFFC00000)), 76);
    // The lowest bit that counts: blue bit 2 and bit 4, green 12 and 14, red 22 and 24.
    EXPECT_EQ(OnePixel(kBgr10Sum, Word(1u << 2)), 117);
    EXPECT_EQ(OnePixel(kBgr10Sum, Word(1u << 12)), 601);
    EXPECT_EQ(OnePixel(kBgr10Sum, Word(1u << 22)), 306);
    EXPECT_EQ(OnePixel(kBgr10, Word(5u << 4)), 1);  // 585 + 512
    EXPECT_EQ(OnePixel(kBgr10, Word(1u << 14)), 1);
    EXPECT_EQ(OnePixel(kBgr10, Word(2u << 24)), 1);
}

TEST(Luminance, TheTwoLowBitsOfATenBitWordHaveNoInfluence) {
    for (uint32_t lowBits = 0; lowBits < 4; ++lowBits) {
        EXPECT_EQ(OnePixel(kBgr10, Word(lowBits)), 0);
        EXPECT_EQ(OnePixel(kBgr10Sum, Word(lowBits)), 0);
        EXPECT_EQ(OnePixel(kBgr10Sum, Word(Bgr10(1, 2, 3, lowBits))), 2237);
    }
}

TEST(Luminance, ChannelsOfTheSixBytePixelAreLittleEndian) {
    EXPECT_EQ(OnePixel(kBgr16Sum, {1, 0, 0, 0, 0, 0}), 117);
    EXPECT_EQ(OnePixel(kBgr16Sum, {0, 1, 0, 0, 0, 0}), 117 * 256);
    EXPECT_EQ(OnePixel(kBgr16Sum, {0, 0, 1, 0, 0, 0}), 601);
    EXPECT_EQ(OnePixel(kBgr16Sum, {0, 0, 0, 1, 0, 0}), 601 * 256);
    EXPECT_EQ(OnePixel(kBgr16Sum, {0, 0, 0, 0, 1, 0}), 306);
    EXPECT_EQ(OnePixel(kBgr16Sum, {0, 0, 0, 0, 0, 1}), 306 * 256);
    EXPECT_EQ(OnePixel(kBgr16, {0, 255, 0, 0, 0, 0}), 29);
    EXPECT_EQ(OnePixel(kBgr16, {0, 0, 0, 255, 0, 0}), 150);
    EXPECT_EQ(OnePixel(kBgr16, {0, 0, 0, 0, 0, 255}), 76);
}

TEST(Luminance, ByteFormsCutTheChannelsBeforeTheSum) {
    // Uncut, 7 / 4 and 511 / 256 of each channel would round to 2.
    EXPECT_EQ(OnePixel(kBgr10, Word(Bgr10(7, 7, 7, 3))), 1);
    EXPECT_EQ(OnePixel(kBgr16, {255, 1, 255, 1, 255, 1}), 1);
    EXPECT_EQ(OnePixel(kBgr10, Word(Bgr10(3, 3, 3, 3))), 0);
    EXPECT_EQ(OnePixel(kBgr16, {255, 0, 255, 0, 255, 0}), 0);
}

TEST(Luminance, StridesAreBytesInTheByteForms) {
    for (const auto* form : kByteForms)
        for (unsigned processors : {1u, 2u, 3u}) {
            Settings settings;
            settings.UseProcessors(processors);
            // Three rows of one white pixel, 9 bytes apart, to bytes 3 apart.
            std::vector<uint8_t> src(2 * 9 + 6, 0);
            for (int y = 0; y < 3; ++y) std::memset(src.data() + 9 * y, 255, form->srcGroup);
            std::vector<uint8_t> dst(9, 7);
            const std::vector<uint8_t> expected = {255, 7, 7, 255, 7, 7, 255, 7, 7};
            form->plain(1, 3, 9, src.data(), 3, dst.data());
            EXPECT_EQ(dst, expected) << form->name;
            dst.assign(9, 7);
            form->multiThread(1, 3, 9, src.data(), 3, dst.data());
            EXPECT_EQ(dst, expected) << form->name << ", " << processors << " processors";
        }
}

TEST(Luminance, TheDestinationStrideOfASumFormCountsInts) {
    for (unsigned processors : {1u, 2u, 3u, 4u}) {
        Settings settings;
        settings.UseProcessors(processors);
        // The first pixels of four rows, 10 bytes apart: 1, 2, 3 and 4 of the blue channel.
        std::vector<uint8_t> bgra(36, 0), word(36, 0), six(36, 0);
        for (int y = 0; y < 4; ++y) {
            bgra[10 * y] = static_cast<uint8_t>(y + 1);
            word[10 * y] = static_cast<uint8_t>((y + 1) << 2);
            six[10 * y] = static_cast<uint8_t>(y + 1);
        }
        uint8_t* sources[] = {bgra.data(), word.data(), six.data()};
        const std::vector<int> expected = {117, 5, 5, 234, 5, 5, 351, 5, 5, 468, 5, 5};
        for (int i = 0; i < 3; ++i) {
            std::vector<int> dst(12, 5);
            kSumForms[i]->plain(1, 4, 10, sources[i], 3, dst.data());
            EXPECT_EQ(dst, expected) << kSumForms[i]->name;
            dst.assign(12, 5);
            kSumForms[i]->multiThread(1, 4, 10, sources[i], 3, dst.data());
            EXPECT_EQ(dst, expected) << kSumForms[i]->name << ", " << processors << " processors";
        }
    }
}

TEST(Luminance, ASumPlaneWithAStrideOfItsWidthIsDense) {
    std::vector<uint8_t> src = {1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 0};
    std::vector<int> dst(5, 9);
    IPL_BGRA_To_Lum32(2, 2, 8, src.data(), 2, dst.data());
    EXPECT_EQ(dst, (std::vector<int>{117, 234, 351, 468, 9}));
}

TEST(Luminance, RowsGoFromTheFirstToTheLast) {
    ForEachForm([](const auto& form) {
        // All rows fall on the same destination: the last one stays.
        std::vector<uint8_t> src(3 * form.srcGroup, 0);
        std::memset(src.data() + 2 * form.srcGroup, 255, form.srcGroup);
        auto last = OnePixel(form, {255, 255, 255, 255, 255, 255});
        decltype(last) dst = 5;
        form.plain(1, 3, form.srcGroup, src.data(), 0, &dst);
        EXPECT_EQ(dst, last) << form.name;
    });
}

TEST(Luminance, SizesBelowOneLeaveTheDestinationAlone) {
    ForEachForm([](const auto& form) { tqtest::ExpectEmptySizesWriteNothing(form); });
}

TEST(Luminance, NoPointerIsUsedWhereThereIsNoPixel) {
    ForEachForm([](const auto& form) { tqtest::ExpectNoPointerIsUsedWithoutAPixel(form); });
}

TEST(Luminance, LastBandTakesTheRest) {
    Settings settings;
    settings.UseProcessors(8);
    const tq::BandPlan even = tq::PlanBands(tq::kBandFormA, 1080);
    const tq::BandPlan rest = tq::PlanBands(tq::kBandFormA, 1085);
    EXPECT_EQ(even.count, 8);
    EXPECT_EQ(rest.count, 8);
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(even.Length(i), 135);
        EXPECT_EQ(rest.Length(i), 135);
    }
    EXPECT_EQ(even.Length(7), 135);
    EXPECT_EQ(rest.Length(7), 140);
    const tq::BandPlan few = tq::PlanBands(tq::kBandFormA, 5);
    EXPECT_EQ(few.count, 1);
    EXPECT_EQ(few.Length(0), 5);
    const tq::BandPlan none = tq::PlanBands(tq::kBandFormA, 0);
    EXPECT_EQ(none.count, 1);
    EXPECT_EQ(none.Length(0), 0);
}

TEST(Luminance, WithOneProcessorNoTaskIsMade) {
    ForEachForm([](const auto& form) {
        Settings settings;
        std::vector<uint8_t> src(16 * form.srcGroup, 200);
        auto pixel = OnePixel(form, {200, 200, 200, 200, 200, 200});
        std::vector<decltype(pixel)> dst(16, 5);
        auto run = [&] { form.multiThread(1, 16, form.srcGroup, src.data(), 1, dst.data()); };
        settings.UseProcessors(2);
        EXPECT_GT(tqtest::AllocationsOf(run), 0) << form.name;
        dst.assign(16, 5);
        settings.UseProcessors(1);
        EXPECT_EQ(tqtest::AllocationsOf(run), 0) << form.name;
        EXPECT_EQ(dst, std::vector<decltype(pixel)>(16, pixel)) << form.name;
    });
}

TEST(Luminance, ByteFormsEqualTheReference) {
    for (const auto* form : kByteForms) tqtest::ExpectEqualsReference(*form);
}

TEST(Luminance, SumFormsEqualTheReference) {
    for (const auto* form : kSumForms) tqtest::ExpectEqualsReference(*form);
}

// All 2^24 colours: red is the row, green and blue the place in it.
constexpr int kColoursInARow = 1 << 16;

void EveryBgra(int red, uint8_t* src) {
    for (int i = 0; i < kColoursInARow; ++i, src += 4) {
        src[0] = static_cast<uint8_t>(i);
        src[1] = static_cast<uint8_t>(i >> 8);
        src[2] = static_cast<uint8_t>(red);
        src[3] = static_cast<uint8_t>(i * 7 + red);
    }
}

TEST(Luminance, ArgbFormsEqualTheReferenceForEveryColour) {
    tqtest::ExpectLongRowsEqualReference(kArgb, 256, kColoursInARow, EveryBgra);
    tqtest::ExpectLongRowsEqualReference(kBgra32, 256, kColoursInARow, EveryBgra);
}

// Noise in the bits that do not count.
uint32_t Noise(uint32_t i) {
    i *= 2654435761u;
    i ^= i >> 15;
    i *= 2246822519u;
    return i ^ i >> 13;
}

TEST(Luminance, DeepByteFormsEqualTheReferenceForEveryColour) {
    tqtest::ExpectLongRowsEqualReference(kBgr10, 256, kColoursInARow, [](int red, uint8_t* src) {
        for (int i = 0; i < kColoursInARow; ++i, src += 4) {
            const uint32_t noise = Noise(i << 8 | red);
            const uint32_t blue = (i & 255) << 2 | (noise & 3);
            const uint32_t green = (i >> 8) << 2 | (noise >> 2 & 3);
            const uint32_t word = Bgr10(blue, green, red << 2 | (noise >> 4 & 3), noise >> 6 & 3);
            std::memcpy(src, Word(word).data(), 4);
        }
    });
    tqtest::ExpectLongRowsEqualReference(kBgr16, 256, kColoursInARow, [](int red, uint8_t* src) {
        for (int i = 0; i < kColoursInARow; ++i, src += 6) {
            const uint32_t noise = Noise(i << 8 | red);
            src[0] = static_cast<uint8_t>(noise);
            src[1] = static_cast<uint8_t>(i);
            src[2] = static_cast<uint8_t>(noise >> 8);
            src[3] = static_cast<uint8_t>(i >> 8);
            src[4] = static_cast<uint8_t>(noise >> 16);
            src[5] = static_cast<uint8_t>(red);
        }
    });
}

// Every value of one channel with these of the other two, and words of noise.
TEST(Luminance, TenBitSumsEqualTheReferenceForEveryValueOfEachChannel) {
    constexpr uint32_t kOthers[] = {0, 1, 2, 255, 256, 511, 512, 768, 1022, 1023};
    tqtest::ExpectLongRowsEqualReference(kBgr10Sum, 300, 1024, [&](int row, uint8_t* src) {
        const uint32_t a = kOthers[row / 10 % 10], b = kOthers[row % 10];
        for (uint32_t i = 0; i < 1024; ++i, src += 4) {
            const uint32_t word = row < 100   ? Bgr10(i, a, b, i & 3)
                                  : row < 200 ? Bgr10(a, i, b, i & 3)
                                              : Bgr10(a, b, i, i & 3);
            std::memcpy(src, Word(word).data(), 4);
        }
    });
    tqtest::ExpectLongRowsEqualReference(kBgr10Sum, 64, 1 << 16, [](int row, uint8_t* src) {
        for (uint32_t i = 0; i < 1 << 16; ++i, src += 4)
            std::memcpy(src, Word(Noise(row << 16 | i)).data(), 4);
    });
}

TEST(Luminance, SixteenBitSumsEqualTheReferenceForEveryValueOfEachChannel) {
    constexpr uint32_t kOthers[] = {0, 1, 255, 256, 32767, 32768, 65534, 65535};
    auto store = [](uint8_t* src, uint32_t blue, uint32_t green, uint32_t red) {
        for (uint32_t channel : {blue, green, red}) {
            *src++ = static_cast<uint8_t>(channel);
            *src++ = static_cast<uint8_t>(channel >> 8);
        }
    };
    tqtest::ExpectLongRowsEqualReference(kBgr16Sum, 192, 1 << 16, [&](int row, uint8_t* src) {
        const uint32_t a = kOthers[row / 8 % 8], b = kOthers[row % 8];
        for (uint32_t i = 0; i < 1 << 16; ++i, src += 6) {
            if (row < 64)
                store(src, i, a, b);
            else if (row < 128)
                store(src, a, i, b);
            else
                store(src, a, b, i);
        }
    });
    tqtest::ExpectLongRowsEqualReference(kBgr16Sum, 64, 1 << 16, [&](int row, uint8_t* src) {
        for (uint32_t i = 0; i < 1 << 16; ++i, src += 6) {
            const uint32_t noise = Noise(row << 16 | i);
            store(src, noise & 65535, noise >> 16, Noise(noise) & 65535);
        }
    });
}

TEST(Luminance, MultiThreadEqualsPlainAtEveryProcessorCount) {
    ForEachForm([](const auto& form) { tqtest::ExpectMultiThreadEqualsPlain(form); });
}

TEST(Luminance, HostThreadsMayConvertAtTheSameTime) {
    Settings settings;
    settings.UseProcessors(3);
    std::vector<std::thread> hosts;
    int wrong[4] = {};
    for (int host = 0; host < 4; ++host)
        hosts.emplace_back([host, &wrong] {
            const int width = 40 + host, height = 21;
            std::vector<uint8_t> src(4 * width * height), expected(width * height);
            tqtest::FillHostile(src.data(), src.size(), host);
            tqref::Argb2Lum(width, height, 4 * width, src.data(), width, expected.data());
            for (int i = 0; i < 50; ++i) {
                std::vector<uint8_t> dst(width * height, 1);
                IPL_ARGB2LUM_MultiThread(width, height, 4 * width, src.data(), width, dst.data());
                wrong[host] += dst != expected;
            }
        });
    for (std::thread& host : hosts) host.join();
    for (int host = 0; host < 4; ++host) EXPECT_EQ(wrong[host], 0) << "host " << host;
}

// The same address and the same row distance in bytes: each pixel is read before its place is
// written, from left to right.
template <class Dst> void ExpectInPlaceEqualsReference(const PixelForm<Dst>& form) {
    SCOPED_TRACE(form.name);
    Settings settings;
    for (int width = 1; width <= 150; ++width)
        for (int height : {1, 3, 4}) {
            const int ints = (form.SrcRow(width) + 3) / 4 + width % 3;
            const int bytes = 4 * ints;
            tqtest::Elements<int> image(ints * height, tqtest::GuardedBuffer::kEnd);
            image.Fill(width);
            const std::vector<int> before = image.Contents();
            std::vector<int> expected = before;
            const int dstStride = bytes / static_cast<int>(sizeof(Dst));
            form.reference(width, height, bytes, reinterpret_cast<const uint8_t*>(before.data()),
                           dstStride, reinterpret_cast<Dst*>(expected.data()));
            auto* src = reinterpret_cast<uint8_t*>(image.data());
            auto* dst = reinterpret_cast<Dst*>(image.data());
            for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                settings.Use(level);
                image.Put(before);
                form.plain(width, height, bytes, src, dstStride, dst);
                ASSERT_TRUE(tqtest::SameElements(image.data(), expected.data(), expected.size()))
                    << width << " x " << height << ", level " << tq::IsaLevelName(level);
            }
            settings.UseProcessors(3);
            image.Put(before);
            form.multiThread(width, height, bytes, src, dstStride, dst);
            ASSERT_TRUE(tqtest::SameElements(image.data(), expected.data(), expected.size()))
                << width << " x " << height << ", three processors";
        }
}

TEST(Luminance, AnImageConvertedInPlaceEqualsTheReference) {
    ForEachForm([](const auto& form) { ExpectInPlaceEqualsReference(form); });
}

TEST(Luminance, TasksDoThePlainFormsWork) {
    ForEachForm([](const auto& form) { tqtest::ExpectTaskEqualsReference(form); });
}

TEST(Luminance, ATaskInAnUnknownModeDoesNothingAndReturns1) {
    tqtest::ExpectModeDoesNothing<CZBGR2LUMTask, 2, uint8_t>();
    tqtest::ExpectModeDoesNothing<CZBGR2LUMTask, 3, uint8_t>();
    tqtest::ExpectModeDoesNothing<CZBGR2LUMTask, -1, uint8_t>();
    tqtest::ExpectModeDoesNothing<CZBGR2LUMTask, 256, uint8_t>();
    tqtest::ExpectModeDoesNothing<CZBGR2LUM32, 2, int>();
    tqtest::ExpectModeDoesNothing<CZBGR2LUM32, 3, int>();
    tqtest::ExpectModeDoesNothing<CZBGR2LUM32, -1, int>();
    tqtest::ExpectModeDoesNothing<CZBGR2LUM32, 256, int>();
}

}  // namespace
