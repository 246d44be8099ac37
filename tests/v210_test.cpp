// V210: values known by hand, pixels behind the last whole group, the block of planes, every field
// and every triple against the references.

#include <gtest/gtest.h>
#include <tqipl/color.h>
#include <tqipl/deep.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "reference/v210_v216_reference.h"
#include "support/deep_plane_forms.h"
#include "support/guarded_buffer.h"
#include "support/pixel_forms.h"
#include "support/settings.h"
#include "support/v210_v216_forms.h"

namespace {

using tqtest::ByteForm;
using tqtest::Bytes;
using tqtest::BytesOfSamples;
using tqtest::BytesOfWords;
using tqtest::Convert;
using tqtest::FromYuvp;
using tqtest::Interleaved;
using tqtest::kFromYuvp;
using tqtest::kGroup;
using tqtest::kPairs;
using tqtest::kPairs601;
using tqtest::kPairs709;
using tqtest::kToBgra601;
using tqtest::kToBgra709;
using tqtest::kToLum;
using tqtest::kToUyvy;
using tqtest::kToYuvp;
using tqtest::kToYuyv;
using tqtest::kTriplePairs;
using tqtest::kWords;
using tqtest::Noise;
using tqtest::Pair8;
using tqtest::PlaneArrays;
using tqtest::Settings;
using tqtest::ToYuvp;
using tqtest::TripleOf;
using tqtest::Yuvp;

using Ints = std::vector<int>;

TEST(V210, FieldsStandInTheirWords) {
    EXPECT_EQ(BytesOfWords(kWords), kGroup);
    EXPECT_EQ(Convert(kToLum, kGroup), (Ints{0x082, 0x104, 0x18E, 0x214, 0x29E, 0x324}));
    const Yuvp planes = ToYuvp(kToYuvp, kGroup);
    EXPECT_EQ(planes.y, BytesOfSamples({0x2080, 0x4100, 0x6380, 0x8500, 0xA780, 0xC900}));
    EXPECT_EQ(planes.u, BytesOfSamples({0x1040, 0x5240, 0x9640}));
    EXPECT_EQ(planes.v, BytesOfSamples({0x30C0, 0x74C0, 0xB8C0}));
    EXPECT_EQ(FromYuvp(kFromYuvp, planes), kGroup);
}

TEST(V210, EachFieldAloneIsWrittenToItsWord) {
    struct {
        char plane;
        int index, word, shift;
    } const fields[] = {{'U', 0, 0, 0},  {'Y', 0, 0, 10}, {'V', 0, 0, 20}, {'Y', 1, 1, 0},
                        {'U', 1, 1, 10}, {'Y', 2, 1, 20}, {'V', 1, 2, 0},  {'Y', 3, 2, 10},
                        {'U', 2, 2, 20}, {'Y', 4, 3, 0},  {'V', 2, 3, 10}, {'Y', 5, 3, 20}};
    for (const auto& field : fields) {
        Yuvp planes = {Bytes(12, 0), Bytes(6, 0), Bytes(6, 0)};
        Bytes& plane = field.plane == 'Y' ? planes.y : field.plane == 'U' ? planes.u : planes.v;
        plane[2 * field.index] = 0xC0;
        plane[2 * field.index + 1] = 0xFF;
        std::vector<uint32_t> words(4, 0);
        words[field.word] = 1023u << field.shift;
        EXPECT_EQ(FromYuvp(kFromYuvp, planes), BytesOfWords(words)) << field.plane << field.index;
        EXPECT_EQ(ToYuvp(kToYuvp, BytesOfWords(words)), planes) << field.plane << field.index;
    }
}

TEST(V210, ToUyvyInTheOrderOfTheFields) {
    EXPECT_EQ(Convert(kToUyvy, kGroup),
              (Bytes{0x10, 0x20, 0x30, 0x41, 0x52, 0x63, 0x74, 0x85, 0x96, 0xA7, 0xB8, 0xC9}));
}

TEST(V210, ToYuyvWithLumaFirst) {
    EXPECT_EQ(Convert(kToYuyv, kGroup),
              (Bytes{0x20, 0x10, 0x41, 0x30, 0x63, 0x52, 0x85, 0x74, 0xA7, 0x96, 0xC9, 0xB8}));
}

TEST(V210, ToThreePlanesOf8Bits) {
    Bytes src = kGroup, dst(12, 0x6E);
    IPL_V210_To_YUVP422(6, 1, 16, src.data(), 6, dst.data());
    EXPECT_EQ(dst, (Bytes{0x20, 0x41, 0x63, 0x85, 0xA7, 0xC9, 0x10, 0x52, 0x96, 0x30, 0x74, 0xB8}));
}

TEST(V210, LowBitsAreDroppedWithoutRounding) {
    for (uint32_t ten : {0u, 3u, 4u, 7u, 0x1FFu, 0x200u, 0x3FBu, 0x3FFu}) {
        const Bytes group = BytesOfWords(std::vector<uint32_t>(4, ten << 20 | ten << 10 | ten));
        const auto eight = static_cast<uint8_t>(ten >> 2);
        EXPECT_EQ(Convert(kToUyvy, group), Bytes(12, eight)) << ten;
        EXPECT_EQ(Convert(kToYuyv, group), Bytes(12, eight)) << ten;
        EXPECT_EQ(Convert(kToLum, group), Ints(6, static_cast<int>(ten))) << ten;
    }
    EXPECT_EQ(FromYuvp(kFromYuvp, {BytesOfSamples({63, 64, 127, 128, 0xFFBF, 0xFFC0}),
                                   BytesOfSamples({63, 64, 0xFFFF}), Bytes(6, 0)}),
              BytesOfWords({0, 1 | 1 << 10 | 1 << 20, 2 << 10 | 1023u << 20, 1022 | 1023u << 20}));
}

TEST(V210, Sample1023Becomes0xFFC0And0xFFFFBecomes1023) {
    const Bytes full = BytesOfWords(std::vector<uint32_t>(4, 0x3FFFFFFF));
    const Yuvp most = {BytesOfSamples(Ints(6, 0xFFC0)), BytesOfSamples(Ints(3, 0xFFC0)),
                       BytesOfSamples(Ints(3, 0xFFC0))};
    EXPECT_EQ(ToYuvp(kToYuvp, full), most);
    EXPECT_EQ(FromYuvp(kFromYuvp, most), full);
    EXPECT_EQ(FromYuvp(kFromYuvp, {Bytes(12, 0xFF), Bytes(6, 0xFF), Bytes(6, 0xFF)}), full);
}

TEST(V210, TheTwoHighestBitsAreZeroWhenWrittenAndIgnoredWhenRead) {
    // Written: the test above has 0x3FFFFFFF of ones. Read:
    for (uint32_t high = 1; high < 4; ++high) {
        std::vector<uint32_t> words = kWords;
        for (uint32_t& word : words) word |= high << 30;
        const Bytes group = BytesOfWords(words);
        for (const ByteForm* form : {&kToUyvy, &kToYuyv, &kToBgra601, &kToBgra709}) {
            EXPECT_EQ(Convert(*form, group), Convert(*form, kGroup)) << form->name;
        }
        EXPECT_EQ(Convert(kToLum, group), Convert(kToLum, kGroup));
        EXPECT_EQ(ToYuvp(kToYuvp, group), ToYuvp(kToYuvp, kGroup));
        EXPECT_EQ(FromYuvp(kFromYuvp, ToYuvp(kToYuvp, group)), kGroup);
        Bytes src = group, dst(12, 0x6E);
        IPL_V210_To_YUVP422(6, 1, 16, src.data(), 6, dst.data());
        EXPECT_EQ(dst[0], 0x20);
        EXPECT_EQ(dst[5], 0xC9);
        EXPECT_EQ(dst[8], 0x96);
        EXPECT_EQ(dst[9], 0x30);
    }
}

// A group of three pairs, from 8-bit samples and the same two low bits in every field.
Bytes GroupOf(const Pair8 (&pairs)[3], uint32_t low) {
    auto ten = [low](uint32_t eight) { return eight << 2 | low; };
    auto word = [ten](uint32_t a, uint32_t b, uint32_t c) {
        return ten(a) | ten(b) << 10 | ten(c) << 20;
    };
    return BytesOfWords(
        {word(pairs[0].u, pairs[0].y0, pairs[0].v), word(pairs[0].y1, pairs[1].u, pairs[1].y0),
         word(pairs[1].v, pairs[1].y1, pairs[2].u), word(pairs[2].y0, pairs[2].v, pairs[2].y1)});
}

TEST(V210, ToBgraAsStudioRangePairs) {
    EXPECT_EQ(Convert(kToBgra601, GroupOf(kPairs, 0)), kPairs601);
    EXPECT_EQ(Convert(kToBgra709, GroupOf(kPairs, 0)), kPairs709);
}

TEST(V210, TheTwoLowBitsPlayNoPartInBgra) {
    for (uint32_t low = 1; low < 4; ++low) {
        EXPECT_EQ(Convert(kToBgra601, GroupOf(kPairs, low)), kPairs601) << low;
        EXPECT_EQ(Convert(kToBgra709, GroupOf(kPairs, low)), kPairs709) << low;
    }
    Bytes words(16 * 400);
    tqtest::FillHostile(words.data(), words.size(), 3);
    Bytes cut = words;
    for (size_t i = 0; i < cut.size(); i += 4)
        tqref::PutWord32(cut.data() + i, tqref::Word32(cut.data() + i) & 0x3FCFF3FC);
    EXPECT_EQ(Convert(kToBgra601, words), Convert(kToBgra601, cut));
    EXPECT_EQ(Convert(kToBgra709, words), Convert(kToBgra709, cut));
}

TEST(V210, ToBgraIsToUyvyAndThatToArgb) {
    Settings settings;
    Bytes words(16 * 1000);
    tqtest::FillHostile(words.data(), words.size(), 4);
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        Bytes uyvy = Convert(kToUyvy, words), argb(24 * 1000);
        IPL_UYVY2ARGB_601(6000, 1, 0, uyvy.data(), 0, argb.data());
        EXPECT_EQ(Convert(kToBgra601, words), argb);
        IPL_UYVY2ARGB_709(6000, 1, 0, uyvy.data(), 0, argb.data());
        EXPECT_EQ(Convert(kToBgra709, words), argb);
    }
}

// The last width % 6 pixels: 1920 has none, 1280 has two.
TEST(V210, ThePixelsBehindTheLastWholeGroupAreLeftAlone) {
    Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels())
        for (int width : {1, 5, 6, 7, 11, 12, 13, 59, 60, 64, 1280, 1920}) {
            settings.Use(level);
            SCOPED_TRACE(width);
            const int groups = width / 6;
            // A last group that is only partly used, full of ones.
            Bytes src(static_cast<size_t>(width / 6 + 1) * 16, 0xFF);
            auto check = [&](const Bytes& dst, int written, uint8_t value) {
                EXPECT_EQ(dst, [&] {
                    Bytes expected(dst.size(), 0x6E);
                    std::memset(expected.data(), value, written);
                    return expected;
                }());
            };
            for (const ByteForm* form : {&kToUyvy, &kToYuyv}) {
                Bytes dst(2 * width, 0x6E);
                form->plain(width, 1, 0, src.data(), 0, dst.data());
                check(dst, 12 * groups, 255);
            }
            for (const ByteForm* form : {&kToBgra601, &kToBgra709}) {
                Bytes dst(4 * width, 0x6E);
                form->plain(width, 1, 0, src.data(), 0, dst.data());
                for (int x = 0; x < width; ++x)
                    ASSERT_EQ(dst[4 * x + 3], x < 6 * groups ? 255 : 0x6E) << x;
                for (int i = 24 * groups; i < 4 * width; ++i) ASSERT_EQ(dst[i], 0x6E) << i;
            }
            Ints lum(width, -5), expectedLum(width, -5);
            for (int x = 0; x < 6 * groups; ++x) expectedLum[x] = 1023;
            IPL_V210_To_Lum32(width, 1, 0, src.data(), 0, lum.data());
            EXPECT_EQ(lum, expectedLum);
            Bytes block(2 * width, 0x6E), expectedBlock = block;
            for (int x = 0; x < 6 * groups; ++x) expectedBlock[x] = 255;
            for (int x = 0; x < 3 * groups; ++x)
                expectedBlock[width + x] = expectedBlock[width + width / 2 + x] = 255;
            IPL_V210_To_YUVP422(width, 1, 0, src.data(), width, block.data());
            EXPECT_EQ(block, expectedBlock);
            Bytes y(2 * width, 0x6E), u(width + 1, 0x6E), v = u;
            PlaneArrays arrays({0, 0, 0}, {y.data(), u.data(), v.data()});
            IPL_V210_To_YUVP216(width, 1, 0, src.data(), arrays.strides, arrays.planes);
            for (int i = 0; i < 2 * width; ++i)
                ASSERT_EQ(y[i], i >= 12 * groups ? 0x6E : i % 2 ? 0xFF : 0xC0) << i;
            for (int i = 0; i <= width; ++i) {
                ASSERT_EQ(u[i], i >= 6 * groups ? 0x6E : i % 2 ? 0xFF : 0xC0) << i;
                ASSERT_EQ(v[i], u[i]) << i;
            }
            // Back: the group of the trailing samples is not written, not even with zeros.
            Bytes back(16 * (groups + 1), 0x6E);
            IPL_YUVP216_To_V210(width, 1, arrays.strides, arrays.planes, 0, back.data());
            Bytes expectedBack(back.size(), 0x6E);
            for (int word = 0; word < 4 * groups; ++word)
                tqref::PutWord32(expectedBack.data() + 4 * word, 0x3FFFFFFF);
            EXPECT_EQ(back, expectedBack);
        }
}

TEST(V210, At1280AndAt1920) {
    struct {
        int width, bgra;
    } const sizes[] = {{1280, 5112}, {1920, 7680}};
    for (const auto& size : sizes) {
        Bytes src((size.width + 47) / 48 * 128, 0xFF), bgra(4 * size.width, 0x6E);
        IPL_V210_To_BGRA_601(size.width, 1, 0, src.data(), 0, bgra.data());
        EXPECT_EQ(bgra[size.bgra - 1], 255);
        for (int i = size.bgra; i < 4 * size.width; ++i) EXPECT_EQ(bgra[i], 0x6E) << i;
        Bytes uyvy(2 * size.width, 0x6E);
        IPL_V210_To_UYVY(size.width, 1, 0, src.data(), 0, uyvy.data());
        EXPECT_EQ(uyvy[size.bgra / 2 - 1], 255);
        for (int i = size.bgra / 2; i < 2 * size.width; ++i) EXPECT_EQ(uyvy[i], 0x6E) << i;
    }
}

// 7 x 3: Y rows at 0, 7 and 14; U at 21, its rows at 0, 3 and 7; V at 21 + 10, its rows alike.
TEST(V210, TheBlockOfPlanesWithAnOddWidth) {
    Bytes src;
    for (uint32_t row = 0; row < 3; ++row) {
        const uint32_t base = 0x10 * (row + 1);
        const Pair8 pairs[3] = {{base, base + 1, base + 6, base + 9},
                                {base + 2, base + 3, base + 7, base + 10},
                                {base + 4, base + 5, base + 8, base + 11}};
        const Bytes group = GroupOf(pairs, 3);
        src.insert(src.end(), group.begin(), group.end());
        src.insert(src.end(), 5, 0xFF);
    }
    const Bytes expected = {
        0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x6E,  // Y, row 0
        0x20, 0x21, 0x22, 0x23, 0x24, 0x25, 0x6E, 0x30, 0x31, 0x32, 0x33, 0x34,
        0x35, 0x6E, 0x16, 0x17, 0x18, 0x26, 0x27, 0x28, 0x6E, 0x36, 0x37, 0x38,  // U, from 21
        0x19, 0x1A, 0x1B, 0x29, 0x2A, 0x2B, 0x6E, 0x39, 0x3A, 0x3B,              // V, from 31
        0x6E};
    for (int ignored : {0, 1, 7, -7, 640, INT_MAX, INT_MIN}) {
        Bytes dst(42, 0x6E);
        IPL_V210_To_YUVP422(7, 3, 21, src.data(), ignored, dst.data());
        EXPECT_EQ(dst, expected) << ignored;
    }
}

TEST(V210, TheBlockOfPlanesStaysPackedWhateverTheIgnoredArgument) {
    Bytes src(2 * 32, 0xFF), dst(48, 0x6E);
    IPL_V210_To_YUVP422(12, 2, 32, src.data(), 100, dst.data());
    EXPECT_EQ(dst, Bytes(48, 255));
}

TEST(V210, TheBlockOfPlanesEqualsTheReference) {
    Settings settings;
    for (auto side : {tqtest::GuardedBuffer::kEnd, tqtest::GuardedBuffer::kStart})
        for (int width = 1; width <= 50; ++width)
            for (int height = 1; height <= 5; ++height)
                for (int gap = 0; gap < 4; ++gap) {
                    const int srcRow = width / 6 * 16, count = 2 * width * height + gap;
                    tqtest::Elements<uint8_t> src((srcRow + 7) * height + 3, side);
                    tqtest::Elements<uint8_t> dst(count, side);
                    src.Fill(width * 8 + height);
                    dst.Fill(1000 + width * 8 + height);
                    const Bytes before = dst.Contents();
                    const auto in = tqtest::PlaceImage(src.count(), side, (gap + 2) % 4, srcRow,
                                                       height, 2 * gap + 1, gap >= 2);
                    const int first = side == tqtest::GuardedBuffer::kStart ? gap : 0;
                    Bytes expected = before;
                    tqref::V210ToYuvp422(width, height, in.stride, src.data() + in.first, 0,
                                         expected.data() + first);
                    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                        settings.Use(level);
                        dst.Put(before);
                        IPL_V210_To_YUVP422(width, height, in.stride, src.data() + in.first, gap,
                                            dst.data() + first);
                        ASSERT_TRUE(
                            tqtest::SameElements(dst.data(), expected.data(), expected.size()))
                            << width << " x " << height << ", side " << side << ", gap " << gap
                            << ", level " << tq::IsaLevelName(level);
                    }
                }
}

TEST(V210, ThroughTheBlockOfPlanesSizesBelowOneWriteNothing) {
    Bytes src(64, 0xFF), dst(64, 0x6E);
    for (auto [width, height] :
         {std::pair{6, 0}, {6, -1}, {0, 2}, {1, 2}, {5, 2}, {-6, 2}, {-13, 2}, {-6, -2}, {0, 0}}) {
        IPL_V210_To_YUVP422(width, height, 16, src.data(), 6, dst.data());
        EXPECT_EQ(dst, Bytes(64, 0x6E)) << width << " x " << height;
    }
    IPL_V210_To_YUVP422(6, 0, 16, nullptr, 6, nullptr);
    IPL_V210_To_YUVP422(6, -1, 16, nullptr, 6, nullptr);
    IPL_V210_To_YUVP422(5, 1, 0, nullptr, 6, nullptr);
}

TEST(V210, ThroughPlanesAndBackTheFieldsAreIdentical) {
    Bytes words(16 * 5000);
    for (size_t i = 0; i < words.size(); i += 4)
        tqref::PutWord32(words.data() + i, Noise(static_cast<uint32_t>(i)) & 0x3FFFFFFF);
    EXPECT_EQ(FromYuvp(kFromYuvp, ToYuvp(kToYuvp, words)), words);
}

TEST(V210, ThroughV210AndBackPlanesLoseTheLowSixBits) {
    Yuvp planes = {Bytes(12 * 1000), Bytes(6 * 1000), Bytes(6 * 1000)};
    Yuvp cut;
    for (Bytes Yuvp::*plane : {&Yuvp::y, &Yuvp::u, &Yuvp::v}) {
        Bytes& bytes = planes.*plane;
        tqtest::FillHostile(bytes.data(), bytes.size(), 7);
        cut.*plane = bytes;
        for (size_t i = 0; i < bytes.size(); i += 2) (cut.*plane)[i] &= 0xC0;
    }
    EXPECT_EQ(ToYuvp(kToYuvp, FromYuvp(kFromYuvp, planes)), cut);
}

// Two strides and three planes: the second is V's too.
TEST(V210V216, ThreePlanesWithTwoStridesRepeatTheSecond) {
    Settings settings;
    for (unsigned processors : {1u, 2u}) {
        settings.UseProcessors(processors);
        Bytes src = kGroup;
        src.insert(src.end(), kGroup.begin(), kGroup.end());
        Bytes y(26, 0x6E), u(14, 0x6E), v(14, 0x6E);
        PlaneArrays arrays({14, 8}, {y.data(), u.data(), v.data()});
        IPL_V210_To_YUVP216MultiThread(6, 2, 16, src.data(), arrays.strides, arrays.planes);
        EXPECT_EQ(v, (Bytes{0xC0, 0x30, 0xC0, 0x74, 0xC0, 0xB8, 0x6E, 0x6E,  //
                            0xC0, 0x30, 0xC0, 0x74, 0xC0, 0xB8}));
        EXPECT_EQ(u, (Bytes{0x40, 0x10, 0x40, 0x52, 0x40, 0x96, 0x6E, 0x6E,  //
                            0x40, 0x10, 0x40, 0x52, 0x40, 0x96}));
        EXPECT_EQ(y[14], 0x80);
        EXPECT_EQ(y[15], 0x20);
        EXPECT_TRUE(arrays.Unchanged());
    }
}

// With two planes V is written over U; read back, U and V are one.
TEST(V210V216, WithTwoPlanesTheSecondIsUAndV) {
    Bytes src = kGroup, y(12, 0x6E), chroma(8, 0x6E);
    PlaneArrays arrays({0}, {y.data(), chroma.data()});
    IPL_V210_To_YUVP216(6, 1, 0, src.data(), arrays.strides, arrays.planes);
    Bytes expected = BytesOfSamples({0x30C0, 0x74C0, 0xB8C0});
    expected.insert(expected.end(), {0x6E, 0x6E});
    EXPECT_EQ(chroma, expected);
    Bytes back(16);
    IPL_YUVP216_To_V210(6, 1, arrays.strides, arrays.planes, 0, back.data());
    // U0 0C3, U1 1D3, U2 2E3.
    EXPECT_EQ(back,
              BytesOfWords({0x0C300000 | 0x082 << 10 | 0x0C3, 0x18E00000 | 0x1D3 << 10 | 0x104,
                            0x2E300000 | 0x214 << 10 | 0x1D3, 0x32400000 | 0x2E3 << 10 | 0x29E}));
}

// All values of each of the twelve fields, the others and the two highest bits at random, and then
// random words.
constexpr int kFieldGroups = 12 * 1024 + (1 << 16);
void EveryField(int, uint8_t* src) {
    for (int i = 0; i < kFieldGroups; ++i, src += 16)
        for (int word = 0; word < 4; ++word) {
            uint32_t bits = Noise(4 * i + word);
            const int field = i / 1024;
            if (field / 3 == word) {
                const int shift = 10 * (field % 3);
                bits = (bits & ~(1023u << shift)) | static_cast<uint32_t>(i % 1024) << shift;
            }
            tqref::PutWord32(src + 4 * word, bits);
        }
}

TEST(V210, EveryFieldEqualsTheReference) {
    for (const ByteForm* form : {&kToUyvy, &kToYuyv, &kToBgra601, &kToBgra709})
        tqtest::ExpectLongRowsEqualReference(*form, 1, kFieldGroups, EveryField);
    tqtest::ExpectLongRowsEqualReference(kToLum, 1, kFieldGroups, EveryField);
    tqtest::ExpectLongRowEqualsReference(kToYuvp, kFieldGroups,
                                         [](auto& images) { EveryField(0, images[0].data()); });
    Settings settings;
    const int width = 6 * kFieldGroups;
    Bytes src(16 * kFieldGroups), expected(2 * width, 0x6E);
    EveryField(0, src.data());
    tqref::V210ToYuvp422(width, 1, 0, src.data(), 0, expected.data());
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        Bytes dst(2 * width, 0x6E);
        IPL_V210_To_YUVP422(width, 1, 0, src.data(), 0, dst.data());
        EXPECT_TRUE(tqtest::SameElements(dst.data(), expected.data(), dst.size()));
    }
}

TEST(V210, EverySampleOfThePlanesEqualsTheReference) {
    constexpr int kGroups = 13 << 16;
    const Bytes samples = Interleaved(12, kGroups);
    tqtest::ExpectLongRowEqualsReference(kFromYuvp, kGroups, [&](auto& images) {
        for (int64_t i = 0; i < kGroups; ++i) {
            std::memcpy(images[1].data() + 12 * i, samples.data() + 24 * i, 12);
            std::memcpy(images[2].data() + 6 * i, samples.data() + 24 * i + 12, 6);
            std::memcpy(images[3].data() + 6 * i, samples.data() + 24 * i + 18, 6);
        }
    });
}

TEST(V210, BgraEqualsTheReferenceForEveryTriple) {
    for (const ByteForm* form : {&kToBgra601, &kToBgra709})
        tqtest::ExpectLongRowsEqualReference(
            *form, 256, kTriplePairs / 3 + 1, [](int v, uint8_t* src) {
                for (int i = 0; i < kTriplePairs + 2; i += 3, src += 16) {
                    const Pair8 a = TripleOf(i, v), b = TripleOf(i + 1, v), c = TripleOf(i + 2, v);
                    const uint32_t noise = Noise(i << 8 | v);
                    auto word = [noise](uint32_t low, uint32_t mid, uint32_t high) {
                        return low << 2 | mid << 12 | high << 22 | (noise & 0xC0300C03);
                    };
                    tqref::PutWord32(src, word(a.u, a.y0, a.v));
                    tqref::PutWord32(src + 4, word(a.y1, b.u, b.y0));
                    tqref::PutWord32(src + 8, word(b.v, b.y1, c.u));
                    tqref::PutWord32(src + 12, word(c.y0, c.v, c.y1));
                }
            });
}

}  // namespace
