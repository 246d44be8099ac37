// V210 and V216: values known by hand, every form against its reference, arrays of planes, bands,
// tasks.

#include <gtest/gtest.h>
#include <tqipl/color.h>
#include <tqipl/deep.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "color/v210_v216_tasks.h"
#include "reference/v210_v216_reference.h"
#include "support/allocation_counter.h"
#include "support/deep_plane_forms.h"
#include "support/pixel_forms.h"
#include "support/settings.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Ints = std::vector<int>;
using ByteForm = tqtest::PixelForm<uint8_t>;
using LumForm = tqtest::PixelForm<int>;
using tqtest::BytesOfSamples;
using tqtest::BytesOfWords;
using tqtest::DeepPlaneForm;
using tqtest::FromPlanes;
using tqtest::Noise;
using tqtest::PlaneArrays;
using tqtest::ReferenceFromPlanes;
using tqtest::ReferenceToPlanes;
using tqtest::RunTask;
using tqtest::RunTaskInMode;
using tqtest::RunTaskWithPlanes;
using tqtest::Settings;

// The two forms without a MultiThread form and a task stand for them themselves.
int RunUyvy(int width, int height, int srcStride, uint8_t* src, int dstStride, uint8_t* dst) {
    IPL_V210_To_UYVY(width, height, srcStride, src, dstStride, dst);
    return 1;
}
int RunYuyv(int width, int height, int srcStride, uint8_t* src, int dstStride, uint8_t* dst) {
    IPL_V210_To_YUYV(width, height, srcStride, src, dstStride, dst);
    return 1;
}

constexpr ByteForm kToUyvy = {
    "IPL_V210_To_UYVY", IPL_V210_To_UYVY, IPL_V210_To_UYVY, RunUyvy, tqref::V210ToUyvy, 6, 16, 12};
constexpr ByteForm kToYuyv = {
    "IPL_V210_To_YUYV", IPL_V210_To_YUYV, IPL_V210_To_YUYV, RunYuyv, tqref::V210ToYuyv, 6, 16, 12};
constexpr ByteForm kToBgra601 = {"IPL_V210_To_BGRA_601",
                                 IPL_V210_To_BGRA_601,
                                 IPL_V210_To_BGRA_601MultiThread,
                                 RunTaskInMode<CZV210toBGRA_Task, 0>,
                                 tqref::V210ToBgra601,
                                 6,
                                 16,
                                 24};
constexpr ByteForm kToBgra709 = {"IPL_V210_To_BGRA_709",
                                 IPL_V210_To_BGRA_709,
                                 IPL_V210_To_BGRA_709MultiThread,
                                 RunTaskInMode<CZV210toBGRA_Task, 1>,
                                 tqref::V210ToBgra709,
                                 6,
                                 16,
                                 24};
constexpr ByteForm k216ToBgra601 = {"IPL_V216_To_BGRA_601",
                                    IPL_V216_To_BGRA_601,
                                    IPL_V216_To_BGRA_601MultiThread,
                                    RunTaskInMode<CZV216toBGRA_Task, 0>,
                                    tqref::V216ToBgra601,
                                    2,
                                    8,
                                    8};
constexpr ByteForm k216ToBgra709 = {"IPL_V216_To_BGRA_709",
                                    IPL_V216_To_BGRA_709,
                                    IPL_V216_To_BGRA_709MultiThread,
                                    RunTaskInMode<CZV216toBGRA_Task, 1>,
                                    tqref::V216ToBgra709,
                                    2,
                                    8,
                                    8};
constexpr LumForm kToLum = {"IPL_V210_To_Lum32",
                            IPL_V210_To_Lum32,
                            IPL_V210_To_Lum32MultiThread,
                            RunTask<CZV210toLum32_Task>,
                            tqref::V210ToLum32,
                            6,
                            16,
                            6};
// Pixels, not pairs.
constexpr LumForm k216ToLum = {"IPL_V216_To_Lum32",
                               IPL_V216_To_Lum32,
                               IPL_V216_To_Lum32MultiThread,
                               RunTask<CZV216toLum32_Task>,
                               tqref::V216ToLum32,
                               1,
                               4,
                               1};
constexpr const ByteForm* kByteForms[] = {&kToUyvy,    &kToYuyv,       &kToBgra601,
                                          &kToBgra709, &k216ToBgra601, &k216ToBgra709};
constexpr const LumForm* kLumForms[] = {&kToLum, &k216ToLum};
constexpr const ByteForm* kThreadedByteForms[] = {&kToBgra601, &kToBgra709, &k216ToBgra601,
                                                  &k216ToBgra709};

constexpr DeepPlaneForm kToYuvp = {"IPL_V210_To_YUVP216",
                                   IPL_V210_To_YUVP216,
                                   IPL_V210_To_YUVP216MultiThread,
                                   RunTaskWithPlanes<CZV210toYUVP216_Task>,
                                   ReferenceToPlanes<tqref::V210ToYuvp216>,
                                   true,
                                   6,
                                   {16, 12, 6, 6}};
constexpr DeepPlaneForm kFromYuvp = {"IPL_YUVP216_To_V210",
                                     FromPlanes<IPL_YUVP216_To_V210>,
                                     FromPlanes<IPL_YUVP216_To_V210MultiThread>,
                                     RunTaskWithPlanes<CZYUVP216toV210_Task>,
                                     ReferenceFromPlanes<tqref::Yuvp216ToV210>,
                                     false,
                                     6,
                                     {16, 12, 6, 6}};
constexpr DeepPlaneForm k216ToYuvp = {"IPL_V216_To_YUVP216",
                                      IPL_V216_To_YUVP216,
                                      IPL_V216_To_YUVP216MultiThread,
                                      RunTaskWithPlanes<CZV216toYUVP216_Task>,
                                      ReferenceToPlanes<tqref::V216ToYuvp216>,
                                      true,
                                      2,
                                      {8, 4, 2, 2}};
constexpr DeepPlaneForm k216FromYuvp = {"IPL_YUVP216_To_V216",
                                        FromPlanes<IPL_YUVP216_To_V216>,
                                        FromPlanes<IPL_YUVP216_To_V216MultiThread>,
                                        RunTaskWithPlanes<CZYUVP216toV216_Task>,
                                        ReferenceFromPlanes<tqref::Yuvp216ToV216>,
                                        false,
                                        2,
                                        {8, 4, 2, 2}};
constexpr const DeepPlaneForm* kPlaneForms[] = {&kToYuvp, &kFromYuvp, &k216ToYuvp, &k216FromYuvp};

// The whole groups of `src` in one row by a form without planes.
template <class Dst>
std::vector<Dst> Convert(const tqtest::PixelForm<Dst>& form, Bytes src, Dst ground = 0x6E) {
    const int width = static_cast<int>(src.size()) / form.srcGroup * form.groupPixels;
    std::vector<Dst> dst(form.DstRow(width), ground);
    form.plain(width, 1, 0, src.data(), 0, dst.data());
    return dst;
}

struct Yuvp {
    Bytes y, u, v;
    bool operator==(const Yuvp&) const = default;
};
Yuvp ToYuvp(const DeepPlaneForm& form, Bytes src) {
    const int width = static_cast<int>(src.size()) / form.groupBytes[0] * form.groupPixels;
    Yuvp dst = {Bytes(2 * width, 0x6E), Bytes(width, 0x6E), Bytes(width, 0x6E)};
    PlaneArrays arrays({0, 0, 0}, {dst.y.data(), dst.u.data(), dst.v.data()});
    form.plain(width, 1, 0, src.data(), arrays.strides, arrays.planes);
    return dst;
}
Bytes FromYuvp(const DeepPlaneForm& form, Yuvp src) {
    const int width = static_cast<int>(src.y.size()) / 2;
    Bytes dst(static_cast<size_t>(width / form.groupPixels) * form.groupBytes[0], 0x6E);
    PlaneArrays arrays({0, 0, 0}, {src.y.data(), src.u.data(), src.v.data()});
    form.plain(width, 1, 0, dst.data(), arrays.strides, arrays.planes);
    return dst;
}

// Twelve fields, no two alike, as ten bits; in parentheses the upper eight:
//   U0 041 (10)  Y0 082 (20)  V0 0C3 (30)     Y1 104 (41)  U1 149 (52)  Y2 18E (63)
//   V1 1D3 (74)  Y3 214 (85)  U2 259 (96)     Y4 29E (A7)  V2 2E3 (B8)  Y5 324 (C9)
const std::vector<uint32_t> kWords = {0x0C320841, 0x18E52504, 0x259851D3, 0x324B8E9E};
// The same bytes in rising address order.
const Bytes kGroup = {0x41, 0x08, 0x32, 0x0C, 0x04, 0x25, 0xE5, 0x18,
                      0xD3, 0x51, 0x98, 0x25, 0x9E, 0x8E, 0x4B, 0x32};

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
struct Pair8 {
    uint32_t y0, y1, u, v;
};
Bytes GroupOf(const Pair8 (&pairs)[3], uint32_t low) {
    auto ten = [low](uint32_t eight) { return eight << 2 | low; };
    auto word = [ten](uint32_t a, uint32_t b, uint32_t c) {
        return ten(a) | ten(b) << 10 | ten(c) << 20;
    };
    return BytesOfWords(
        {word(pairs[0].u, pairs[0].y0, pairs[0].v), word(pairs[0].y1, pairs[1].u, pairs[1].y0),
         word(pairs[1].v, pairs[1].y1, pairs[2].u), word(pairs[2].y0, pairs[2].v, pairs[2].y1)});
}
constexpr Pair8 kPairs[3] = {{100, 50, 138, 118}, {16, 235, 128, 128}, {234, 20, 128, 128}};
// Luma 97.8 and 39.6; blue 20.17, red -15.96, green 4.21, in 709 21.13, -17.93 and 3.20. Black and
// white; 218 and 4 steps: 253.84 and 4.66.
const Bytes kPairs601 = {118, 102, 82,  255, 60,  44,  24,  255, 0, 0, 0, 255,
                         255, 255, 255, 255, 254, 254, 254, 255, 5, 5, 5, 255};
const Bytes kPairs709 = {119, 101, 80,  255, 61,  43,  22,  255, 0, 0, 0, 255,
                         255, 255, 255, 255, 254, 254, 254, 255, 5, 5, 5, 255};

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

// U 0x2211, Y0 0x4433, V 0x6655, Y1 0x8877.
const Bytes kV216Pair = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};

TEST(V216, SamplesStandInTheirOrder) {
    EXPECT_EQ(ToYuvp(k216ToYuvp, kV216Pair),
              (Yuvp{{0x33, 0x44, 0x77, 0x88}, {0x11, 0x22}, {0x55, 0x66}}));
    EXPECT_EQ(FromYuvp(k216FromYuvp, {{0x33, 0x44, 0x77, 0x88}, {0x11, 0x22}, {0x55, 0x66}}),
              kV216Pair);
    Bytes src = kV216Pair;
    Ints lum(3, -1);
    IPL_V216_To_Lum32(2, 1, 0, src.data(), 0, lum.data());
    EXPECT_EQ(lum, (Ints{0x4433, 0x8877, -1}));
}

TEST(V216, SamplesMoveUnchangedThroughPlanesAndBack) {
    Bytes pairs(8 * 5000);
    tqtest::FillHostile(pairs.data(), pairs.size(), 5);
    EXPECT_EQ(FromYuvp(k216FromYuvp, ToYuvp(k216ToYuvp, pairs)), pairs);
    EXPECT_EQ(ToYuvp(k216ToYuvp, Bytes(8, 0xFF)), (Yuvp{Bytes(4, 0xFF), {255, 255}, {255, 255}}));
}

Bytes V216Of(const Pair8 (&pairs)[3], int low) {
    Ints samples;
    for (const Pair8& pair : pairs)
        for (uint32_t eight : {pair.u, pair.y0, pair.v, pair.y1})
            samples.push_back(static_cast<int>(eight) * 256 + low);
    return BytesOfSamples(samples);
}

TEST(V216, ToBgraFromTheHighBytes) {
    for (int low : {0, 1, 127, 128, 255}) {
        EXPECT_EQ(Convert(k216ToBgra601, V216Of(kPairs, low)), kPairs601) << low;
        EXPECT_EQ(Convert(k216ToBgra709, V216Of(kPairs, low)), kPairs709) << low;
    }
}

TEST(V216, AnOddLastPixelIsLeftAlone) {
    for (int width = 1; width <= 69; width += 2) {
        SCOPED_TRACE(width);
        Bytes src(4 * width + 4, 0xFF);
        for (const ByteForm* form : {&k216ToBgra601, &k216ToBgra709}) {
            Bytes dst(4 * width, 0x6E);
            form->plain(width, 1, 0, src.data(), 0, dst.data());
            if (width > 1) {
                EXPECT_EQ(dst[4 * width - 5], 255) << form->name;
            }
            EXPECT_EQ(Bytes(dst.end() - 4, dst.end()), Bytes(4, 0x6E)) << form->name;
        }
        Bytes y(2 * width, 0x6E), u(width + 1, 0x6E), v = u;
        PlaneArrays arrays({0, 0, 0}, {y.data(), u.data(), v.data()});
        IPL_V216_To_YUVP216(width, 1, 0, src.data(), arrays.strides, arrays.planes);
        Bytes expectedY(2 * width - 2, 0xFF), expectedU(width - 1, 0xFF);
        expectedY.insert(expectedY.end(), 2, 0x6E);
        expectedU.insert(expectedU.end(), 2, 0x6E);
        EXPECT_EQ(y, expectedY);
        EXPECT_EQ(u, expectedU);
        EXPECT_EQ(v, expectedU);
        Bytes back(4 * width + 4, 0x6E), expectedBack(4 * width - 4, 0xFF);
        expectedBack.insert(expectedBack.end(), 8, 0x6E);
        IPL_YUVP216_To_V216(width, 1, arrays.strides, arrays.planes, 0, back.data());
        EXPECT_EQ(back, expectedBack);
    }
}

TEST(V216, LumTakesTheLastLumaOfAnOddWidthToo) {
    Settings settings;
    Bytes src;
    for (int x = 0; x < 70; ++x) {
        const Bytes sample = BytesOfSamples({0xFFFF, 300 * x + 7});
        src.insert(src.end(), sample.begin(), sample.end());
    }
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels())
        for (int width = 1; width <= 69; width += 2) {
            settings.Use(level);
            Ints dst(width + 1, -1), expected;
            for (int x = 0; x < width; ++x) expected.push_back(300 * x + 7);
            expected.push_back(-1);
            IPL_V216_To_Lum32(width, 1, 0, src.data(), 0, dst.data());
            EXPECT_EQ(dst, expected) << width;
        }
}

TEST(V216, LumRunsTo65535) {
    Bytes src(8, 0xFF);
    EXPECT_EQ(Convert(k216ToLum, src), (Ints{65535, 65535}));
    EXPECT_EQ(Convert(k216ToLum, BytesOfSamples({0, 32768, 0, 1})), (Ints{32768, 1}));
}

TEST(V210V216, TheDestinationStrideOfLumCountsInts) {
    Settings settings;
    for (unsigned processors : {1u, 2u, 3u, 4u}) {
        settings.UseProcessors(processors);
        Bytes words, pairs;
        Ints expected210, expected216;
        for (int row = 0; row < 4; ++row) {
            const int luma = 100 + row;
            const Bytes group = BytesOfWords({static_cast<uint32_t>(luma) << 10, 0, 0, 0});
            words.insert(words.end(), group.begin(), group.end());
            words.insert(words.end(), 3, 0xFF);
            expected210.insert(expected210.end(), {luma, 0, 0, 0, 0, 0, -1, -1});
            const Bytes pair = BytesOfSamples({0xFFFF, luma});
            pairs.insert(pairs.end(), pair.begin(), pair.end());
            pairs.push_back(0xFF);
            expected216.insert(expected216.end(), {luma, -1, -1});
        }
        Ints dst(32, -1);
        IPL_V210_To_Lum32(6, 4, 19, words.data(), 8, dst.data());
        EXPECT_EQ(dst, expected210);
        dst.assign(32, -1);
        IPL_V210_To_Lum32MultiThread(6, 4, 19, words.data(), 8, dst.data());
        EXPECT_EQ(dst, expected210) << processors << " processors";
        dst.assign(12, -1);
        IPL_V216_To_Lum32(1, 4, 5, pairs.data(), 3, dst.data());
        EXPECT_EQ(dst, expected216);
        dst.assign(12, -1);
        IPL_V216_To_Lum32MultiThread(1, 4, 5, pairs.data(), 3, dst.data());
        EXPECT_EQ(dst, expected216) << processors << " processors";
    }
}

TEST(V210V216, PlaneStridesAreBytesAndEachPlaneHasItsOwn) {
    Settings settings;
    for (unsigned processors : {1u, 2u, 3u}) {
        settings.UseProcessors(processors);
        Bytes src(3 * 9), y(3 * 7, 0x6E), u(3 * 5, 0x6E), v(3 * 3, 0x6E);
        Bytes expectedY = y, expectedU = u, expectedV = v;
        for (int row = 0; row < 3; ++row) {
            auto value = static_cast<uint8_t>(16 * (row + 1));
            for (int i = 0; i < 8; ++i) src[9 * row + i] = static_cast<uint8_t>(value + i);
            expectedU[5 * row] = value;
            expectedU[5 * row + 1] = static_cast<uint8_t>(value + 1);
            expectedY[7 * row] = static_cast<uint8_t>(value + 2);
            expectedY[7 * row + 1] = static_cast<uint8_t>(value + 3);
            expectedV[3 * row] = static_cast<uint8_t>(value + 4);
            expectedV[3 * row + 1] = static_cast<uint8_t>(value + 5);
            expectedY[7 * row + 2] = static_cast<uint8_t>(value + 6);
            expectedY[7 * row + 3] = static_cast<uint8_t>(value + 7);
        }
        PlaneArrays arrays({7, 5, 3}, {y.data(), u.data(), v.data()});
        IPL_V216_To_YUVP216MultiThread(2, 3, 9, src.data(), arrays.strides, arrays.planes);
        EXPECT_EQ(y, expectedY);
        EXPECT_EQ(u, expectedU);
        EXPECT_EQ(v, expectedV);
        Bytes back(27, 0), expectedBack = src;
        IPL_YUVP216_To_V216MultiThread(2, 3, arrays.strides, arrays.planes, 9, back.data());
        EXPECT_EQ(back, expectedBack);
        EXPECT_TRUE(arrays.Unchanged());
    }
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

// One plane for all: its luma first, then U and V of the same group over it.
TEST(V210V216, WithOnePlaneChromaStaysOverLuma) {
    Bytes src = kGroup, plane(14, 0x6E);
    PlaneArrays arrays({0}, {plane.data()});
    IPL_V210_To_YUVP216(6, 1, 0, src.data(), arrays.strides, arrays.planes);
    Bytes expected = BytesOfSamples({0x30C0, 0x74C0, 0xB8C0, 0x8500, 0xA780, 0xC900});
    expected.insert(expected.end(), {0x6E, 0x6E});
    EXPECT_EQ(plane, expected);
    // Two pairs of V216: V of the second pair falls on Y1 of the first.
    Bytes pairs = BytesOfSamples({1, 2, 3, 4, 5, 6, 7, 8}), pairPlane(10, 0x6E);
    PlaneArrays one({0}, {pairPlane.data()});
    IPL_V216_To_YUVP216(4, 1, 0, pairs.data(), one.strides, one.planes);
    expected = BytesOfSamples({3, 7, 6, 8});
    expected.insert(expected.end(), {0x6E, 0x6E});
    EXPECT_EQ(pairPlane, expected);
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

TEST(V210V216, ArraysOfAnyLengthEqualTheReference) {
    for (const DeepPlaneForm* form : kPlaneForms) {
        tqtest::ExpectArraysOfAnyLength(*form, {300, 260, 250});
        tqtest::ExpectArraysOfAnyLength(*form, {-300, -260, -250});
    }
}

TEST(V210V216, EmptyArraysGrowInAPlainFormOnly) {
    for (const DeepPlaneForm* form : kPlaneForms) {
        tqtest::ExpectAPlainFormGrowsEmptyArrays(*form);
        tqtest::ExpectAMultiThreadFormDoesNotGrowEmptyArrays(*form);
        tqtest::ExpectNoStrideIsAStrideOfZero(*form);
    }
}

TEST(V210V216, SizesWithoutAGroupWriteNothing) {
    for (const ByteForm* form : kByteForms) tqtest::ExpectEmptySizesWriteNothing(*form);
    for (const LumForm* form : kLumForms) tqtest::ExpectEmptySizesWriteNothing(*form);
    for (const DeepPlaneForm* form : kPlaneForms) tqtest::ExpectEmptySizesWriteNothing(*form);
    Bytes src(64, 0xFF), dst(256, 0x6E);
    Ints lum(64, -1);
    for (int width = 1; width < 6; ++width) {
        for (const ByteForm* form : {&kToUyvy, &kToYuyv, &kToBgra601, &kToBgra709}) {
            form->plain(width, 3, 16, src.data(), 24, dst.data());
            form->multiThread(width, 3, 16, src.data(), 24, dst.data());
        }
        IPL_V210_To_Lum32(width, 3, 16, src.data(), 6, lum.data());
        IPL_V210_To_Lum32MultiThread(width, 3, 16, src.data(), 6, lum.data());
    }
    EXPECT_EQ(dst, Bytes(256, 0x6E));
    EXPECT_EQ(lum, Ints(64, -1));
}

TEST(V210V216, NoPointerIsUsedWhereThereIsNoGroup) {
    Settings settings;
    for (unsigned processors : {1u, 2u, 8u})
        for (auto [width, height] : {std::pair{12, 0}, {12, -1}, {0, 1}, {-1, 1}, {0, 9}}) {
            settings.UseProcessors(processors);
            for (const ByteForm* form : kByteForms) {
                form->plain(width, height, 0, nullptr, 0, nullptr);
                form->multiThread(width, height, 0, nullptr, 0, nullptr);
            }
            for (const LumForm* form : kLumForms) {
                form->plain(width, height, 0, nullptr, 0, nullptr);
                form->multiThread(width, height, 0, nullptr, 0, nullptr);
            }
            for (const DeepPlaneForm* form : kPlaneForms) {
                PlaneArrays arrays({0, 0, 0}, {nullptr, nullptr, nullptr});
                form->plain(width, height, 0, nullptr, arrays.strides, arrays.planes);
                form->multiThread(width, height, 0, nullptr, arrays.strides, arrays.planes);
            }
        }
}

TEST(V210V216, RowsGoFromTheFirstToTheLast) {
    // All rows fall on the same destination: the last one stays.
    auto check = [](const auto& form) {
        Bytes src(3 * form.srcGroup, 0);
        std::memset(src.data() + 2 * form.srcGroup, 0xFF, form.srcGroup);
        auto expected = Convert(form, Bytes(form.srcGroup, 0xFF));
        auto dst = expected;
        form.plain(form.groupPixels, 3, form.srcGroup, src.data(), 0, dst.data());
        EXPECT_EQ(dst, expected) << form.name;
    };
    for (const ByteForm* form : kByteForms) check(*form);
    for (const LumForm* form : kLumForms) check(*form);
}

TEST(V210V216, OnlyTasksAreAllocated) {
    Settings settings;
    auto check = [&settings](const auto& form, bool threaded) {
        Bytes src(16 * 64, 200);
        decltype(Convert(form, src)) dst(16 * 64, 5);
        auto allocations = [&](auto function) {
            return tqtest::AllocationsOf([&] { function(12, 16, 64, src.data(), 64, dst.data()); });
        };
        EXPECT_EQ(allocations(form.plain), 0) << form.name;
        if (!threaded) return;
        settings.UseProcessors(2);
        EXPECT_GT(allocations(form.multiThread), 0) << form.name;
        settings.UseProcessors(1);
        EXPECT_EQ(allocations(form.multiThread), 0) << form.name;
    };
    check(kToUyvy, false);
    check(kToYuyv, false);
    for (const ByteForm* form : kThreadedByteForms) check(*form, true);
    for (const LumForm* form : kLumForms) check(*form, true);
    for (const DeepPlaneForm* form : kPlaneForms) tqtest::ExpectAllocationsInTasksOnly(*form);
}

TEST(V210V216, PackedFormsEqualTheirReferences) {
    for (const ByteForm* form : kByteForms) tqtest::ExpectEqualsReference(*form);
    for (const LumForm* form : kLumForms) tqtest::ExpectEqualsReference(*form);
}

TEST(V210V216, PlaneFormsEqualTheirReferences) {
    for (const DeepPlaneForm* form : kPlaneForms) tqtest::ExpectEqualsReference(*form);
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

// All values of each of the `samples` that make a group, the others at random, and then noise.
void EverySample(int samples, int groups, const std::vector<uint8_t*>& places) {
    for (int i = 0; i < groups; ++i)
        for (int sample = 0; sample < samples; ++sample) {
            const int value = i >> 16 == sample ? i : static_cast<int>(Noise(i * samples + sample));
            tqref::PutSample16(places[sample] + int64_t{i} * 2, value & 0xFFFF);
        }
}

// Groups of `samples` samples in a row, from planes of one sample each.
Bytes Interleaved(int samples, int groups) {
    std::vector<Bytes> parts(samples, Bytes(2 * groups));
    std::vector<uint8_t*> places;
    for (Bytes& part : parts) places.push_back(part.data());
    EverySample(samples, groups, places);
    Bytes all(static_cast<size_t>(2) * groups * samples);
    for (int i = 0; i < groups; ++i)
        for (int sample = 0; sample < samples; ++sample)
            std::memcpy(all.data() + 2 * (int64_t{i} * samples + sample), places[sample] + 2 * i,
                        2);
    return all;
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

TEST(V216, EverySampleEqualsTheReference) {
    constexpr int kPairCount = 5 << 16;
    const Bytes pairs = Interleaved(4, kPairCount);
    auto copy = [&pairs](int, uint8_t* src) { std::memcpy(src, pairs.data(), pairs.size()); };
    tqtest::ExpectLongRowsEqualReference(k216ToBgra601, 1, kPairCount, copy);
    tqtest::ExpectLongRowsEqualReference(k216ToBgra709, 1, kPairCount, copy);
    tqtest::ExpectLongRowsEqualReference(k216ToLum, 1, 2 * kPairCount, copy);
    tqtest::ExpectLongRowEqualsReference(k216ToYuvp, kPairCount,
                                         [&](auto& images) { copy(0, images[0].data()); });
    tqtest::ExpectLongRowEqualsReference(k216FromYuvp, kPairCount, [&](auto& images) {
        for (int64_t i = 0; i < kPairCount; ++i) {
            std::memcpy(images[1].data() + 4 * i, pairs.data() + 8 * i, 4);
            std::memcpy(images[2].data() + 2 * i, pairs.data() + 8 * i + 4, 2);
            std::memcpy(images[3].data() + 2 * i, pairs.data() + 8 * i + 6, 2);
        }
    });
}

// All 2^24 triples of 8-bit samples: V is the row, U and Y0 the place in it, and Y1 goes through
// all values in another order. The bits below are noise.
constexpr int kTriplePairs = 1 << 16;
Pair8 TripleOf(int i, int v) {
    return {static_cast<uint32_t>(i & 255), static_cast<uint32_t>(i * 167 + 91) & 255,
            static_cast<uint32_t>(i >> 8 & 255), static_cast<uint32_t>(v)};
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

TEST(V216, BgraEqualsTheReferenceForEveryTriple) {
    for (const ByteForm* form : {&k216ToBgra601, &k216ToBgra709})
        tqtest::ExpectLongRowsEqualReference(*form, 256, kTriplePairs, [](int v, uint8_t* src) {
            for (int i = 0; i < kTriplePairs; ++i, src += 8) {
                const Pair8 pair = TripleOf(i, v);
                const uint32_t noise = Noise(i << 8 | v);
                tqref::PutWord32(src, pair.u << 8 | pair.y0 << 24 | (noise & 0x00FF00FF));
                tqref::PutWord32(src + 4, pair.v << 8 | pair.y1 << 24 | (noise >> 8 & 0x00FF00FF));
            }
        });
}

TEST(V210V216, MultiThreadEqualsPlainAtEveryProcessorCount) {
    for (const ByteForm* form : kThreadedByteForms) tqtest::ExpectMultiThreadEqualsPlain(*form);
    for (const LumForm* form : kLumForms) tqtest::ExpectMultiThreadEqualsPlain(*form);
    for (const DeepPlaneForm* form : kPlaneForms) tqtest::ExpectMultiThreadEqualsPlain(*form);
}

TEST(V210V216, TasksDoThePlainFormsWork) {
    for (const ByteForm* form : kThreadedByteForms) tqtest::ExpectTaskEqualsReference(*form);
    for (const LumForm* form : kLumForms) tqtest::ExpectTaskEqualsReference(*form);
    for (const DeepPlaneForm* form : kPlaneForms) tqtest::ExpectTaskEqualsReference(*form);
}

TEST(V210V216, TasksOwnTheirArrays) {
    tqtest::ExpectTaskOwnsItsArrays<CZV210toYUVP216_Task>();
    tqtest::ExpectTaskOwnsItsArrays<CZV216toYUVP216_Task>();
    tqtest::ExpectTaskOwnsItsArrays<CZYUVP216toV210_Task>();
    tqtest::ExpectTaskOwnsItsArrays<CZYUVP216toV216_Task>();
}

template <class Task, int mode> void ExpectModeDoesNothing() {
    Bytes src(2 * 24, 255), dst(2 * 24, 7);
    EXPECT_EQ((RunTaskInMode<Task, mode>(6, 2, 24, src.data(), 24, dst.data())), 1) << mode;
    EXPECT_EQ(dst, Bytes(2 * 24, 7)) << mode;
}

TEST(V210V216, ATaskInAnUnknownModeDoesNothingAndReturns1) {
    ExpectModeDoesNothing<CZV210toBGRA_Task, 2>();
    ExpectModeDoesNothing<CZV210toBGRA_Task, -1>();
    ExpectModeDoesNothing<CZV210toBGRA_Task, 256>();
    ExpectModeDoesNothing<CZV216toBGRA_Task, 2>();
    ExpectModeDoesNothing<CZV216toBGRA_Task, -1>();
    ExpectModeDoesNothing<CZV216toBGRA_Task, 256>();
}

}  // namespace
