// The deep BGR formats: values known by hand, every form against its reference, arrays of planes,
// bands, tasks.

#include <gtest/gtest.h>
#include <tqipl/deep.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <thread>
#include <utility>
#include <vector>

#include "color/deep_bgr_tasks.h"
#include "reference/deep_bgr_reference.h"
#include "support/allocation_counter.h"
#include "support/deep_plane_forms.h"
#include "support/pixel_forms.h"
#include "support/settings.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Form = tqtest::PixelForm<uint8_t>;
using tqtest::BytesOfSamples;
using tqtest::BytesOfWords;
using tqtest::DeepPlaneForm;
using tqtest::FromPlanes;
using tqtest::Noise;
using tqtest::PlaneArrays;
using tqtest::ReferenceFromPlanes;
using tqtest::ReferenceToPlanes;
using tqtest::RunTaskInMode;
using tqtest::RunTaskWithPlanes;
using tqtest::Settings;

constexpr Form kTq10ToBgra = {"IPL_BGRTQ10b_To_BGRA",
                              IPL_BGRTQ10b_To_BGRA,
                              IPL_BGRTQ10b_To_BGRAMultiThread,
                              RunTaskInMode<CZBGRTQ10btoBGRA_Task, 0>,
                              tqref::BgrTq10ToBgra,
                              1,
                              4,
                              4};
constexpr Form kTq10ToTq16 = {"IPL_BGRTQ10b_To_BGRTQ16b",
                              IPL_BGRTQ10b_To_BGRTQ16b,
                              IPL_BGRTQ10b_To_BGRTQ16bMultiThread,
                              RunTaskInMode<CZBGRTQ10btoBGRA_Task, 1>,
                              tqref::BgrTq10ToBgrTq16,
                              1,
                              4,
                              6};
constexpr Form kTq16ToBgra = {"IPL_BGRTQ16b_To_BGRA",
                              IPL_BGRTQ16b_To_BGRA,
                              IPL_BGRTQ16b_To_BGRAMultiThread,
                              RunTaskInMode<CZBGRTQ16btoBGRA_Task, 0>,
                              tqref::BgrTq16ToBgra,
                              1,
                              6,
                              4};
constexpr Form kTq16ToTq10 = {"IPL_BGRTQ16b_To_BGRTQ10b",
                              IPL_BGRTQ16b_To_BGRTQ10b,
                              IPL_BGRTQ16b_To_BGRTQ10bMultiThread,
                              RunTaskInMode<CZBGRTQ16btoBGRA_Task, 1>,
                              tqref::BgrTq16ToBgrTq10,
                              1,
                              6,
                              4};
constexpr const Form* kPackedForms[] = {&kTq10ToBgra, &kTq10ToTq16, &kTq16ToBgra, &kTq16ToTq10};

constexpr DeepPlaneForm kBgr10ToBgra16 = {"IPL_BGR10b_To_BGRA16b",
                                          IPL_BGR10b_To_BGRA16b,
                                          IPL_BGR10b_To_BGRA16bMultiThread,
                                          RunTaskWithPlanes<CZBGR10b_To_BGRA16b_Task>,
                                          ReferenceToPlanes<tqref::Bgr10ToBgra16>,
                                          true,
                                          1,
                                          {4, 8, 2, 0}};
constexpr DeepPlaneForm kBgr16ToBgra16 = {"IPL_BGR16b_To_BGRA16b",
                                          IPL_BGR16b_To_BGRA16b,
                                          IPL_BGR16b_To_BGRA16bMultiThread,
                                          RunTaskWithPlanes<CZBGR16b_To_BGRA16b_Task>,
                                          ReferenceToPlanes<tqref::Bgr16ToBgra16>,
                                          true,
                                          1,
                                          {6, 8, 2, 0}};
constexpr DeepPlaneForm kBgra16ToBgr10 = {"IPL_BGRA16b_To_BGR10b",
                                          FromPlanes<IPL_BGRA16b_To_BGR10b>,
                                          FromPlanes<IPL_BGRA16b_To_BGR10bMultiThread>,
                                          RunTaskWithPlanes<CZBGRA16b_To_BGR10b_Task>,
                                          ReferenceFromPlanes<tqref::Bgra16ToBgr10>,
                                          false,
                                          1,
                                          {4, 8, 0, 0}};
constexpr DeepPlaneForm kBgra16ToBgr16 = {"IPL_BGRA16b_To_BGR16b",
                                          FromPlanes<IPL_BGRA16b_To_BGR16b>,
                                          FromPlanes<IPL_BGRA16b_To_BGR16bMultiThread>,
                                          RunTaskWithPlanes<CZBGRA16b_To_BGR16b_Task>,
                                          ReferenceFromPlanes<tqref::Bgra16ToBgr16>,
                                          false,
                                          1,
                                          {6, 8, 0, 0}};
constexpr const DeepPlaneForm* kPlaneForms[] = {&kBgr10ToBgra16, &kBgr16ToBgra16, &kBgra16ToBgr10,
                                                &kBgra16ToBgr16};

// The pixels of `src` in one row by a form without planes.
Bytes Convert(const Form& form, Bytes src, uint8_t ground = 0xEE) {
    const int width = static_cast<int>(src.size()) / form.srcGroup;
    Bytes dst(static_cast<size_t>(width) * form.dstGroup, ground);
    form.plain(width, 1, 0, src.data(), 0, dst.data());
    return dst;
}

// What the pixels of `src` give in the two planes.
struct Bgra16 {
    Bytes samples, luminance;
    bool operator==(const Bgra16&) const = default;
};
Bgra16 ToBgra16(const DeepPlaneForm& form, Bytes src) {
    const int width = static_cast<int>(src.size()) / form.groupBytes[0];
    Bgra16 dst = {Bytes(8 * width, 0xEE), Bytes(2 * width, 0xEE)};
    PlaneArrays arrays({0, 0}, {dst.samples.data(), dst.luminance.data()});
    form.plain(width, 1, 0, src.data(), arrays.strides, arrays.planes);
    return dst;
}
int Luminance(const DeepPlaneForm& form, const Bytes& pixel) {
    const Bytes luminance = ToBgra16(form, pixel).luminance;
    return luminance[0] + 256 * luminance[1];
}
Bytes FromBgra16(const DeepPlaneForm& form, Bytes samples) {
    const int width = static_cast<int>(samples.size()) / 8;
    Bytes dst(static_cast<size_t>(width) * form.groupBytes[0], 0xEE);
    PlaneArrays arrays({0}, {samples.data()});
    form.plain(width, 1, 0, dst.data(), arrays.strides, arrays.planes);
    return dst;
}
Bytes Bgr10Pixel(uint32_t blue, uint32_t green, uint32_t red) {
    return BytesOfWords({blue << 20 | green << 10 | red});
}

// In BGRTQ10b, blue 0x123 (8 bits: 0x48), green 0x2A5 (0xA9), red 0x3C7 (0xF1) and both low bits:
// 0xF1C00000 + 0x002A5000 + 0x0000048C + 3.
constexpr uint32_t kTqWord = 0xF1EA548F;
// In BGR10b, blue 0x3C7, green 0x2A5, red 0x123: 0x3C700000 + 0x000A9400 + 0x00000123.
constexpr uint32_t kWord = 0x3C7A9523;

TEST(DeepBgr, ChannelsOfTheHighAlignedWordStandInTheirBits) {
    EXPECT_EQ(Convert(kTq10ToBgra, BytesOfWords({kTqWord})), (Bytes{0x48, 0xA9, 0xF1, 0xEE}));
    EXPECT_EQ(Convert(kTq10ToTq16, BytesOfWords({kTqWord})),
              (Bytes{0xC0, 0x48, 0x40, 0xA9, 0xC0, 0xF1}));
    EXPECT_EQ(Convert(kTq16ToTq10, BytesOfSamples({0x48C0, 0xA940, 0xF1C0})),
              BytesOfWords({0xF1EA548C}));
    // The same bytes in rising address order.
    EXPECT_EQ(Convert(kTq16ToTq10, {0xC0, 0x48, 0x40, 0xA9, 0xC0, 0xF1}),
              (Bytes{0x8C, 0x54, 0xEA, 0xF1}));
    // Each alone.
    EXPECT_EQ(Convert(kTq10ToBgra, BytesOfWords({0x00000FFC, 0x003FF000, 0xFFC00000})),
              (Bytes{255, 0, 0, 0xEE, 0, 255, 0, 0xEE, 0, 0, 255, 0xEE}));
    EXPECT_EQ(Convert(kTq10ToTq16, BytesOfWords({0x00000FFC, 0x003FF000, 0xFFC00000})),
              BytesOfSamples({0xFFC0, 0, 0, 0, 0xFFC0, 0, 0, 0, 0xFFC0}));
    EXPECT_EQ(Convert(kTq16ToTq10, BytesOfSamples({0xFFFF, 0, 0, 0, 0xFFFF, 0, 0, 0, 0xFFFF})),
              BytesOfWords({0x00000FFC, 0x003FF000, 0xFFC00000}));
}

TEST(DeepBgr, ChannelsOfTheLowAlignedWordStandInTheirBits) {
    const Bgra16 planes = ToBgra16(kBgr10ToBgra16, BytesOfWords({kWord}));
    EXPECT_EQ(planes.samples, BytesOfSamples({0xF1C0, 0xA940, 0x48C0, 0x3FC0}));
    EXPECT_EQ(planes.samples, (Bytes{0xC0, 0xF1, 0x40, 0xA9, 0xC0, 0x48, 0xC0, 0x3F}));
    EXPECT_EQ(FromBgra16(kBgra16ToBgr10, BytesOfSamples({0xF1C0, 0xA940, 0x48C0, 0x3FC0})),
              (Bytes{0x23, 0x95, 0x7A, 0x3C}));
    // Each alone.
    EXPECT_EQ(ToBgra16(kBgr10ToBgra16, BytesOfWords({0x3FF00000, 0x000FFC00, 0x000003FF})).samples,
              BytesOfSamples({0xFFC0, 0, 0, 0x3FC0, 0, 0xFFC0, 0, 0x3FC0, 0, 0, 0xFFC0, 0x3FC0}));
    EXPECT_EQ(FromBgra16(kBgra16ToBgr10,
                         BytesOfSamples({0xFFFF, 0, 0, 0, 0, 0xFFFF, 0, 0, 0, 0, 0xFFFF, 0})),
              BytesOfWords({0x3FF00000, 0x000FFC00, 0x000003FF}));
}

TEST(DeepBgr, TheTwoTenBitLayoutsAreNotInterchangeable) {
    const Bytes word = BytesOfWords({0x000003FF});
    EXPECT_EQ(ToBgra16(kBgr10ToBgra16, word).samples, BytesOfSamples({0, 0, 0xFFC0, 0x3FC0}));
    // 255 of 1023.
    EXPECT_EQ(Convert(kTq10ToTq16, word), BytesOfSamples({255 * 64, 0, 0}));
    EXPECT_EQ(Convert(kTq10ToBgra, word), (Bytes{63, 0, 0, 0xEE}));
}

TEST(DeepBgr, SixBytePixelsAreBlueGreenRedInLittleEndian) {
    const Bytes pixel = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66};
    EXPECT_EQ(Convert(kTq16ToBgra, pixel), (Bytes{0x22, 0x44, 0x66, 0xEE}));
    EXPECT_EQ(ToBgra16(kBgr16ToBgra16, pixel).samples,
              (Bytes{0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0xFF, 0x00}));
    EXPECT_EQ(FromBgra16(kBgra16ToBgr16, {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88}), pixel);
}

TEST(DeepBgr, LowBitsAreDroppedAndNeverRounded) {
    // 255 of the low eight bits, 3 of the low two, 63 of the low six.
    EXPECT_EQ(Convert(kTq16ToBgra, BytesOfSamples({0x01FF, 0x00FF, 0xFEFF})),
              (Bytes{1, 0, 0xFE, 0xEE}));
    EXPECT_EQ(Convert(kTq10ToBgra, BytesOfWords({7u << 22 | 3u << 12 | 1019u << 2})),
              (Bytes{254, 0, 1, 0xEE}));
    EXPECT_EQ(Convert(kTq16ToTq10, BytesOfSamples({63, 127, 0xFFBF})),
              BytesOfWords({1022u << 22 | 1u << 12}));
    EXPECT_EQ(FromBgra16(kBgra16ToBgr10, BytesOfSamples({63, 127, 0xFFBF, 0xFFFF})),
              Bgr10Pixel(0, 1, 1022));
    // The word of the first test, with noise in the bits that fall.
    EXPECT_EQ(Convert(kTq16ToTq10, BytesOfSamples({0x48FF, 0xA97F, 0xF1C5})),
              BytesOfWords({0xF1EA548C}));
    EXPECT_EQ(FromBgra16(kBgra16ToBgr10, BytesOfSamples({0xF1FF, 0xA97F, 0x48C5, 0x1234})),
              BytesOfWords({kWord}));
}

TEST(DeepBgr, FullTenBitsBecome0xFFC0) {
    EXPECT_EQ(Convert(kTq10ToTq16, BytesOfWords({0xFFFFFFFC})),
              BytesOfSamples({0xFFC0, 0xFFC0, 0xFFC0}));
    EXPECT_EQ(ToBgra16(kBgr10ToBgra16, BytesOfWords({0x3FFFFFFF})),
              (Bgra16{BytesOfSamples({0xFFC0, 0xFFC0, 0xFFC0, 0x3FC0}), BytesOfSamples({255})}));
}

TEST(DeepBgr, SpareBitsAreZeroWhenWrittenAndIgnoredWhenRead) {
    const Bytes full = BytesOfSamples({0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF});
    EXPECT_EQ(Convert(kTq16ToTq10, Bytes(full.begin(), full.begin() + 6)),
              BytesOfWords({0xFFFFFFFC}));
    EXPECT_EQ(FromBgra16(kBgra16ToBgr10, full), BytesOfWords({0x3FFFFFFF}));
    for (uint32_t spare = 0; spare < 4; ++spare) {
        const Bytes high = BytesOfWords({(kTqWord & ~3u) | spare});
        EXPECT_EQ(Convert(kTq10ToBgra, high), (Bytes{0x48, 0xA9, 0xF1, 0xEE})) << spare;
        EXPECT_EQ(Convert(kTq10ToTq16, high), BytesOfSamples({0x48C0, 0xA940, 0xF1C0})) << spare;
        EXPECT_EQ(ToBgra16(kBgr10ToBgra16, BytesOfWords({kWord | spare << 30})),
                  ToBgra16(kBgr10ToBgra16, BytesOfWords({kWord})))
            << spare;
        EXPECT_EQ(Luminance(kBgr10ToBgra16, BytesOfWords({spare << 30})), 0) << spare;
    }
}

TEST(DeepBgr, AlphaOfBgraKeepsItsContents) {
    for (const Form* form : {&kTq10ToBgra, &kTq16ToBgra})
        for (int width = 1; width <= 70; ++width) {
            Bytes src(static_cast<size_t>(width) * form->srcGroup, 0xFF);
            const Bytes dst = Convert(*form, src, 0x7F);
            for (int x = 0; x < width; ++x) {
                EXPECT_EQ(Bytes(dst.begin() + 4 * x, dst.begin() + 4 * x + 4),
                          (Bytes{255, 255, 255, 0x7F}))
                    << form->name << ", pixel " << x << " of " << width;
            }
        }
}

// Behind the last red byte there may be nothing at all.
TEST(DeepBgr, TheLastAlphaOfBgraIsNotTouched) {
    Settings settings;
    for (const Form* form : {&kTq10ToBgra, &kTq16ToBgra})
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels())
            for (int width = 1; width <= 40; ++width) {
                settings.Use(level);
                Bytes src(static_cast<size_t>(width) * form->srcGroup);
                tqtest::FillHostile(src.data(), src.size(), width);
                tqtest::GuardedBuffer dst(static_cast<size_t>(width) * 4 - 1);
                std::memset(dst.data(), 0x7F, dst.size());
                Bytes expected(dst.size() + 1, 0x7F);
                form->reference(width, 1, 0, src.data(), 0, expected.data());
                form->plain(width, 1, 0, src.data(), 0, dst.data());
                EXPECT_TRUE(tqtest::SameElements(dst.data(), expected.data(), dst.size()))
                    << form->name << ", width " << width;
            }
}

// Alpha may belong to another thread meanwhile: not even what was there is written back.
TEST(DeepBgr, AlphaOfBgraMayChangeDuringTheConversion) {
    constexpr int kWidth = 256;
    Settings settings;
    for (const Form* form : {&kTq10ToBgra, &kTq16ToBgra})
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
            settings.Use(level);
            Bytes src(static_cast<size_t>(kWidth) * form->srcGroup, 0x55), dst(4 * kWidth, 0);
            std::atomic<bool> over{false};
            long lost = 0, rounds = 0;
            std::thread writer([&] {
                volatile uint8_t* alpha = dst.data() + 3;
                for (; !over || rounds < 2; ++rounds)
                    for (uint8_t pass : {1, 2}) {
                        for (int x = 0; x < kWidth; ++x) alpha[4 * x] = pass;
                        for (int x = 0; x < kWidth; ++x) lost += alpha[4 * x] != pass;
                    }
            });
            for (int i = 0; i < 4000; ++i) form->plain(kWidth, 1, 0, src.data(), 0, dst.data());
            over = true;
            writer.join();
            EXPECT_EQ(lost, 0) << form->name << ", level " << tq::IsaLevelName(level);
        }
}

TEST(DeepBgr, TheTwoAlphasOfBgra16Differ) {
    for (int width = 1; width <= 70; ++width) {
        const Bytes ten = ToBgra16(kBgr10ToBgra16, Bytes(4 * width, 0xFF)).samples;
        const Bytes sixteen = ToBgra16(kBgr16ToBgra16, Bytes(6 * width, 0xFF)).samples;
        for (int x = 0; x < width; ++x) {
            EXPECT_EQ(ten[8 * x + 6] + 256 * ten[8 * x + 7], 0x3FC0) << x << " of " << width;
            EXPECT_EQ(sixteen[8 * x + 6] + 256 * sixteen[8 * x + 7], 255) << x << " of " << width;
        }
    }
}

TEST(DeepBgr, LuminanceWeighsSixteenBitSamples) {
    auto of16 = [](int blue, int green, int red) {
        return Luminance(kBgr16ToBgra16, BytesOfSamples({blue, green, red}));
    };
    EXPECT_EQ(of16(0, 0, 0), 0);      // 512
    EXPECT_EQ(of16(4, 0, 0), 0);      // 468 + 512 = 980
    EXPECT_EQ(of16(5, 0, 0), 1);      // 585 + 512 = 1097
    EXPECT_EQ(of16(0, 1, 0), 1);      // 601 + 512 = 1113
    EXPECT_EQ(of16(0, 0, 1), 0);      // 306 + 512 = 818
    EXPECT_EQ(of16(0, 0, 2), 1);      // 612 + 512 = 1124
    EXPECT_EQ(of16(10, 20, 30), 22);  // 1170 + 12020 + 9180 + 512 = 22882 = 22.3 * 1024
    EXPECT_EQ(of16(100, 0, 0), 11);   // 11700 + 512 = 11.9 * 1024
    EXPECT_EQ(of16(0, 100, 0), 59);   // 60100 + 512 = 59.2 * 1024
    EXPECT_EQ(of16(0, 0, 100), 30);   // 30600 + 512 = 30.4 * 1024
    auto of10 = [](uint32_t blue, uint32_t green, uint32_t red) {
        return Luminance(kBgr10ToBgra16, Bgr10Pixel(blue, green, red));
    };
    EXPECT_EQ(of10(0, 0, 0), 0);
    EXPECT_EQ(of10(1, 0, 0), 7);    // 117 * 64 + 512 = 8000
    EXPECT_EQ(of10(0, 1, 0), 38);   // 601 * 64 + 512 = 38976
    EXPECT_EQ(of10(0, 0, 1), 19);   // 306 * 64 + 512 = 20096
    EXPECT_EQ(of10(1, 2, 3), 140);  // 2237 * 64 + 512 = 143680 = 140.3 * 1024
    EXPECT_EQ(of10(3, 3, 3), 192);
}

TEST(DeepBgr, LuminanceIsLimitedTo255) {
    auto of16 = [](int blue, int green, int red) {
        return Luminance(kBgr16ToBgra16, BytesOfSamples({blue, green, red}));
    };
    EXPECT_EQ(of16(0, 1023, 0), 255);  // 614823 + 512 = 600.9 * 1024
    for (int grey = 0; grey <= 255; ++grey) EXPECT_EQ(of16(grey, grey, grey), grey);
    for (int grey : {256, 257, 511, 512, 1023, 32767, 32768, 65280, 65535}) {
        EXPECT_EQ(of16(grey, grey, grey), 255) << grey;
    }
    EXPECT_EQ(of16(65535, 65535, 65535), 255);
    EXPECT_EQ(of16(65535, 0, 0), 255);
    EXPECT_EQ(of16(0, 65535, 0), 255);
    EXPECT_EQ(of16(0, 0, 65535), 255);
    EXPECT_EQ(of16(2236, 0, 0), 255);  // 261612 + 512 = 255.98 * 1024
    EXPECT_EQ(of16(2227, 0, 0), 254);  // 260559 + 512 = 254.95 * 1024
    EXPECT_EQ(of16(2228, 0, 0), 255);  // 260676 + 512 = 255.07 * 1024
    auto of10 = [](uint32_t grey) {
        return Luminance(kBgr10ToBgra16, Bgr10Pixel(grey, grey, grey));
    };
    EXPECT_EQ(of10(3), 192);
    for (uint32_t grey : {4u, 5u, 8u, 512u, 1023u}) EXPECT_EQ(of10(grey), 255) << grey;
}

TEST(DeepBgr, BackFromBgra16AlphaAndPlane1AreIgnored) {
    // A plane 1 that must not be followed, with a stride of its own.
    tqtest::GuardedBuffer page(16);
    uint8_t* forbidden = page.data() + page.size() + 4096;
    Settings settings;
    for (const DeepPlaneForm* form : {&kBgra16ToBgr10, &kBgra16ToBgr16})
        for (unsigned processors : {1u, 2u, 3u})
            for (int alpha : {0, 255, 0x3FC0, 0xFFFF}) {
                settings.UseProcessors(processors);
                const Bytes pixel = BytesOfSamples({0xF1C0, 0xA940, 0x48C0, alpha});
                Bytes samples = pixel;
                for (int row = 1; row < 4; ++row)
                    samples.insert(samples.end(), pixel.begin(), pixel.end());
                Bytes expected, dst(4 * form->groupBytes[0], 0xEE);
                for (int row = 0; row < 4; ++row) {
                    const Bytes one = form == &kBgra16ToBgr10
                                          ? BytesOfWords({kWord})
                                          : BytesOfSamples({0xF1C0, 0xA940, 0x48C0});
                    expected.insert(expected.end(), one.begin(), one.end());
                }
                PlaneArrays arrays({8, 1 << 20}, {samples.data(), forbidden});
                form->multiThread(1, 4, form->groupBytes[0], dst.data(), arrays.strides,
                                  arrays.planes);
                EXPECT_EQ(dst, expected) << form->name << ", alpha " << alpha;
            }
}

TEST(DeepBgr, TenBitsThroughSixteenAndBackAreUnchanged) {
    Bytes high, low;
    for (uint32_t i = 0; i < 5000; ++i) {
        const Bytes word = BytesOfWords({Noise(i)});
        high.insert(high.end(), word.begin(), word.end());
    }
    low = high;
    for (size_t i = 0; i < high.size(); i += 4) {
        high[i] &= 0xFC;
        low[i + 3] &= 0x3F;
    }
    EXPECT_EQ(Convert(kTq16ToTq10, Convert(kTq10ToTq16, high)), high);
    EXPECT_EQ(FromBgra16(kBgra16ToBgr10, ToBgra16(kBgr10ToBgra16, low).samples), low);
}

TEST(DeepBgr, SixteenBitsThroughTenAndBackLoseTheLowSix) {
    Bytes samples(6 * 5000);
    tqtest::FillHostile(samples.data(), samples.size(), 9);
    Bytes cut = samples;
    for (size_t i = 0; i < cut.size(); i += 2) cut[i] &= 0xC0;
    EXPECT_EQ(Convert(kTq10ToTq16, Convert(kTq16ToTq10, samples)), cut);
    // Through the two planes nothing is lost.
    EXPECT_EQ(FromBgra16(kBgra16ToBgr16, ToBgra16(kBgr16ToBgra16, samples).samples), samples);
}

TEST(DeepBgr, StridesAreBytes) {
    Settings settings;
    for (unsigned processors : {1u, 2u, 3u}) {
        settings.UseProcessors(processors);
        // Three white pixels, 9 bytes apart, to places 13 bytes apart.
        for (const Form* form : kPackedForms) {
            Bytes src(27, 0), dst(39, 7), expected = dst;
            const Bytes white = Convert(*form, Bytes(form->srcGroup, 0xFF), 7);
            for (int y = 0; y < 3; ++y) {
                std::memset(src.data() + 9 * y, 0xFF, form->srcGroup);
                std::memcpy(expected.data() + 13 * y, white.data(), white.size());
            }
            form->multiThread(1, 3, 9, src.data(), 13, dst.data());
            EXPECT_EQ(dst, expected) << form->name;
        }
        // One pixel a row: planes with rows of 11 and 5 bytes.
        Bytes src(3 * 7, 0xFF), samples(33, 7), luminance(15, 7);
        Bytes expectedSamples = samples, expectedLuminance = luminance;
        for (int y = 0; y < 3; ++y) {
            std::memset(expectedSamples.data() + 11 * y, 0xFF, 7);
            expectedSamples[11 * y + 7] = 0;
            expectedLuminance[5 * y] = 0xFF;
            expectedLuminance[5 * y + 1] = 0;
        }
        PlaneArrays arrays({11, 5}, {samples.data(), luminance.data()});
        IPL_BGR16b_To_BGRA16bMultiThread(1, 3, 7, src.data(), arrays.strides, arrays.planes);
        EXPECT_EQ(samples, expectedSamples);
        EXPECT_EQ(luminance, expectedLuminance);
        Bytes back(24, 7), expectedBack = back;
        for (int y = 0; y < 3; ++y) std::memset(expectedBack.data() + 8 * y, 0xFF, 6);
        IPL_BGRA16b_To_BGR16bMultiThread(1, 3, arrays.strides, arrays.planes, 8, back.data());
        EXPECT_EQ(back, expectedBack);
    }
}

// With one element in each array both planes are one: the luminance is written after the samples
// of its pixel, and the samples of the next pixels before it.
TEST(DeepBgr, WithOnePlaneTheLuminanceStays) {
    Bytes src = BytesOfSamples({1, 2, 3, 4, 5, 6, 700, 800, 900});
    Bytes plane(26, 0xEE);
    PlaneArrays arrays({0}, {plane.data()});
    IPL_BGR16b_To_BGRA16b(3, 1, 0, src.data(), arrays.strides, arrays.planes);
    // 117 + 1202 + 918 + 512 = 2.7 * 1024; 468 + 3005 + 1836 + 512 = 5.7 * 1024; the limit.
    Bytes expected = BytesOfSamples({2, 5, 255, 255, 4, 5, 6, 255, 700, 800, 900, 255});
    expected.insert(expected.end(), {0xEE, 0xEE});
    EXPECT_EQ(plane, expected);
    EXPECT_TRUE(arrays.Unchanged());
}

// The second row of the luminance lies where the second stride says, on the one plane there is.
TEST(DeepBgr, WithOnePlaneAndTwoStridesEachUseHasItsOwn) {
    Bytes src = BytesOfSamples({1, 2, 3, 4, 5, 6});
    Bytes plane(32, 0xEE);
    PlaneArrays arrays({20, 10}, {plane.data()});
    IPL_BGR16b_To_BGRA16b(1, 2, 6, src.data(), arrays.strides, arrays.planes);
    Bytes expected(32, 0xEE);
    const Bytes first = BytesOfSamples({2, 2, 3, 255}), second = BytesOfSamples({4, 5, 6, 255});
    std::memcpy(expected.data(), first.data(), 8);
    std::memcpy(expected.data() + 20, second.data(), 8);
    expected[10] = 5;
    expected[11] = 0;
    EXPECT_EQ(plane, expected);
}

// Two bands of one row: the one plane moves by the first stride, for both uses.
TEST(DeepBgr, BandsMoveAPlaneThatServesTwiceOnce) {
    Settings settings;
    settings.UseProcessors(2);
    Bytes src = BytesOfSamples({1, 2, 3, 4, 5, 6});
    Bytes plane(32, 0xEE);
    PlaneArrays arrays({20, 10}, {plane.data()});
    IPL_BGR16b_To_BGRA16bMultiThread(1, 2, 6, src.data(), arrays.strides, arrays.planes);
    Bytes expected(32, 0xEE);
    const Bytes first = BytesOfSamples({2, 2, 3, 255}), second = BytesOfSamples({5, 5, 6, 255});
    std::memcpy(expected.data(), first.data(), 8);
    std::memcpy(expected.data() + 20, second.data(), 8);
    EXPECT_EQ(plane, expected);
    EXPECT_TRUE(arrays.Unchanged());
}

TEST(DeepBgr, WithOneStrideBothPlanesHaveIt) {
    Bytes src = BytesOfSamples({1, 2, 3, 4, 5, 6});
    Bytes samples(20, 0xEE), luminance(20, 0xEE);
    PlaneArrays arrays({12}, {samples.data(), luminance.data()});
    IPL_BGR16b_To_BGRA16b(1, 2, 6, src.data(), arrays.strides, arrays.planes);
    Bytes expectedSamples(20, 0xEE), expectedLuminance(20, 0xEE);
    const Bytes first = BytesOfSamples({1, 2, 3, 255}), second = BytesOfSamples({4, 5, 6, 255});
    std::memcpy(expectedSamples.data(), first.data(), 8);
    std::memcpy(expectedSamples.data() + 12, second.data(), 8);
    expectedLuminance[0] = 2;
    expectedLuminance[1] = 0;
    expectedLuminance[12] = 5;
    expectedLuminance[13] = 0;
    EXPECT_EQ(samples, expectedSamples);
    EXPECT_EQ(luminance, expectedLuminance);
}

TEST(DeepBgr, ArraysOfAnyLengthEqualTheReference) {
    for (const DeepPlaneForm* form : kPlaneForms) {
        tqtest::ExpectArraysOfAnyLength(*form, {300, 260, 250});
        tqtest::ExpectArraysOfAnyLength(*form, {-300, -260, -250});
    }
}

TEST(DeepBgr, EmptyArraysGrowInAPlainFormOnly) {
    for (const DeepPlaneForm* form : kPlaneForms) {
        tqtest::ExpectAPlainFormGrowsEmptyArrays(*form);
        tqtest::ExpectAMultiThreadFormDoesNotGrowEmptyArrays(*form);
        tqtest::ExpectNoStrideIsAStrideOfZero(*form);
    }
}

TEST(DeepBgr, SizesBelowOneWriteNothing) {
    for (const Form* form : kPackedForms) tqtest::ExpectEmptySizesWriteNothing(*form);
    for (const DeepPlaneForm* form : kPlaneForms) tqtest::ExpectEmptySizesWriteNothing(*form);
}

TEST(DeepBgr, NoPointerIsUsedWhereThereIsNoPixel) {
    for (const Form* form : kPackedForms) tqtest::ExpectNoPointerIsUsedWithoutAPixel(*form);
    tqtest::ForSizesWithoutAPixel([](int width, int height) {
        for (const DeepPlaneForm* form : kPlaneForms) {
            PlaneArrays arrays({0, 0}, {nullptr, nullptr});
            form->plain(width, height, 0, nullptr, arrays.strides, arrays.planes);
            form->multiThread(width, height, 0, nullptr, arrays.strides, arrays.planes);
        }
    });
}

TEST(DeepBgr, RowsGoFromTheFirstToTheLast) {
    // All rows fall on the same destination: the last one stays.
    for (const Form* form : kPackedForms) {
        Bytes src(3 * form->srcGroup, 0);
        std::memset(src.data() + 2 * form->srcGroup, 0xFF, form->srcGroup);
        Bytes dst(form->dstGroup, 0xEE);
        form->plain(1, 3, form->srcGroup, src.data(), 0, dst.data());
        EXPECT_EQ(dst, Convert(*form, Bytes(form->srcGroup, 0xFF))) << form->name;
    }
}

TEST(DeepBgr, OnlyTasksAreAllocated) {
    Settings settings;
    for (const Form* form : kPackedForms) {
        Bytes src(16 * form->srcGroup, 200), dst(16 * form->dstGroup, 5);
        auto allocations = [&](Form::Function function) {
            return tqtest::AllocationsOf(
                [&] { function(1, 16, form->srcGroup, src.data(), form->dstGroup, dst.data()); });
        };
        settings.UseProcessors(2);
        EXPECT_GT(allocations(form->multiThread), 0) << form->name;
        EXPECT_EQ(allocations(form->plain), 0) << form->name;
        settings.UseProcessors(1);
        EXPECT_EQ(allocations(form->multiThread), 0) << form->name;
    }
    for (const DeepPlaneForm* form : kPlaneForms) tqtest::ExpectAllocationsInTasksOnly(*form);
}

TEST(DeepBgr, PackedFormsEqualTheirReferences) {
    for (const Form* form : kPackedForms) tqtest::ExpectEqualsReference(*form);
}

TEST(DeepBgr, PlaneFormsEqualTheirReferences) {
    for (const DeepPlaneForm* form : kPlaneForms) tqtest::ExpectEqualsReference(*form);
}

// All values of each of the word's three fields, the others and the spare bits at random, and then
// random words.
constexpr int kWords = 3 * 1024 + (1 << 18);
uint32_t WordOf(int i, int lowestField) {
    const uint32_t noise = Noise(i);
    if (i >= 3 * 1024) return noise;
    const int shift = lowestField + 10 * (i / 1024);
    return (noise & ~(1023u << shift)) | static_cast<uint32_t>(i % 1024) << shift;
}
void EveryWord(uint8_t* words, int lowestField) {
    for (int i = 0; i < kWords; ++i, words += 4) tqref::PutWord32(words, WordOf(i, lowestField));
}

// All values of each of a pixel's samples, the others at random; then small ones, among which the
// luminance meets its limit.
constexpr int kSamplePixels = 5 << 16;
void EverySample(uint8_t* pixels, int samplesOfAPixel) {
    for (int i = 0; i < kSamplePixels; ++i)
        for (int sample = 0; sample < samplesOfAPixel; ++sample, pixels += 2) {
            const uint32_t noise = Noise(i * 4 + sample);
            int value = noise & 0xFFFF;
            if (i >> 16 == sample) value = i & 0xFFFF;
            if (i >> 16 == 4) value = noise % (sample == 0 ? 2400 : sample == 1 ? 480 : 900);
            tqref::PutSample16(pixels, value);
        }
}

TEST(DeepBgr, EveryFieldOfAWordEqualsTheReference) {
    for (const Form* form : {&kTq10ToBgra, &kTq10ToTq16})
        tqtest::ExpectLongRowsEqualReference(*form, 1, kWords,
                                             [](int, uint8_t* src) { EveryWord(src, 2); });
    tqtest::ExpectLongRowEqualsReference(kBgr10ToBgra16, kWords,
                                         [](auto& images) { EveryWord(images[0].data(), 0); });
}

TEST(DeepBgr, EverySampleEqualsTheReference) {
    for (const Form* form : {&kTq16ToBgra, &kTq16ToTq10})
        tqtest::ExpectLongRowsEqualReference(*form, 1, kSamplePixels,
                                             [](int, uint8_t* src) { EverySample(src, 3); });
    tqtest::ExpectLongRowEqualsReference(kBgr16ToBgra16, kSamplePixels,
                                         [](auto& images) { EverySample(images[0].data(), 3); });
    for (const DeepPlaneForm* form : {&kBgra16ToBgr10, &kBgra16ToBgr16})
        tqtest::ExpectLongRowEqualsReference(
            *form, kSamplePixels, [](auto& images) { EverySample(images[1].data(), 4); });
}

// Every grey, and of each channel every value alone: where the limit is met, nothing else is there.
TEST(DeepBgr, LuminanceOfOneChannelEqualsTheReferenceForEverySample) {
    for (int channel = 0; channel < 4; ++channel)
        tqtest::ExpectLongRowEqualsReference(kBgr16ToBgra16, 1 << 16, [channel](auto& images) {
            for (int value = 0; value < 1 << 16; ++value)
                for (int sample = 0; sample < 3; ++sample)
                    tqref::PutSample16(images[0].data() + 6 * value + 2 * sample,
                                       channel == 3 || channel == sample ? value : 0);
        });
}

TEST(DeepBgr, MultiThreadEqualsPlainAtEveryProcessorCount) {
    for (const Form* form : kPackedForms) tqtest::ExpectMultiThreadEqualsPlain(*form);
    for (const DeepPlaneForm* form : kPlaneForms) tqtest::ExpectMultiThreadEqualsPlain(*form);
}

TEST(DeepBgr, TasksDoThePlainFormsWork) {
    for (const Form* form : kPackedForms) tqtest::ExpectTaskEqualsReference(*form);
    for (const DeepPlaneForm* form : kPlaneForms) tqtest::ExpectTaskEqualsReference(*form);
}

TEST(DeepBgr, TasksOwnTheirArrays) {
    tqtest::ExpectTaskOwnsItsArrays<CZBGR10b_To_BGRA16b_Task>();
    tqtest::ExpectTaskOwnsItsArrays<CZBGR16b_To_BGRA16b_Task>();
    tqtest::ExpectTaskOwnsItsArrays<CZBGRA16b_To_BGR10b_Task>();
    tqtest::ExpectTaskOwnsItsArrays<CZBGRA16b_To_BGR16b_Task>();
}

TEST(DeepBgr, ATaskInAnUnknownModeDoesNothingAndReturns1) {
    tqtest::ExpectModeDoesNothing<CZBGRTQ10btoBGRA_Task, 2>();
    tqtest::ExpectModeDoesNothing<CZBGRTQ10btoBGRA_Task, -1>();
    tqtest::ExpectModeDoesNothing<CZBGRTQ10btoBGRA_Task, 256>();
    tqtest::ExpectModeDoesNothing<CZBGRTQ16btoBGRA_Task, 2>();
    tqtest::ExpectModeDoesNothing<CZBGRTQ16btoBGRA_Task, -1>();
    tqtest::ExpectModeDoesNothing<CZBGRTQ16btoBGRA_Task, 256>();
}

}  // namespace
