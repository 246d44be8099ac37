// V216: values known by hand, every sample and every triple. And what V210 and V216 have alike:
// every form against its reference, arrays of planes, bands, tasks.

#include <gtest/gtest.h>
#include <tqipl/deep.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "color/v210_v216_tasks.h"
#include "reference/v210_v216_reference.h"
#include "support/allocation_counter.h"
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
using tqtest::DeepPlaneForm;
using tqtest::FromYuvp;
using tqtest::Interleaved;
using tqtest::k216FromYuvp;
using tqtest::k216ToBgra601;
using tqtest::k216ToBgra709;
using tqtest::k216ToLum;
using tqtest::k216ToYuvp;
using tqtest::kByteForms;
using tqtest::kGroup;
using tqtest::kLumForms;
using tqtest::kPairs;
using tqtest::kPairs601;
using tqtest::kPairs709;
using tqtest::kPlaneForms;
using tqtest::kThreadedByteForms;
using tqtest::kToBgra601;
using tqtest::kToBgra709;
using tqtest::kToUyvy;
using tqtest::kToYuyv;
using tqtest::kTriplePairs;
using tqtest::LumForm;
using tqtest::Noise;
using tqtest::Pair8;
using tqtest::PlaneArrays;
using tqtest::Settings;
using tqtest::ToYuvp;
using tqtest::TripleOf;
using tqtest::Yuvp;

using Ints = std::vector<int>;

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
    for (const ByteForm* form : kByteForms) tqtest::ExpectNoPointerIsUsedWithoutAPixel(*form);
    for (const LumForm* form : kLumForms) tqtest::ExpectNoPointerIsUsedWithoutAPixel(*form);
    tqtest::ForSizesWithoutAPixel([](int width, int height) {
        for (const DeepPlaneForm* form : kPlaneForms) {
            PlaneArrays arrays({0, 0, 0}, {nullptr, nullptr, nullptr});
            form->plain(width, height, 0, nullptr, arrays.strides, arrays.planes);
            form->multiThread(width, height, 0, nullptr, arrays.strides, arrays.planes);
        }
    });
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

TEST(V210V216, ATaskInAnUnknownModeDoesNothingAndReturns1) {
    tqtest::ExpectModeDoesNothing<CZV210toBGRA_Task, 2>();
    tqtest::ExpectModeDoesNothing<CZV210toBGRA_Task, -1>();
    tqtest::ExpectModeDoesNothing<CZV210toBGRA_Task, 256>();
    tqtest::ExpectModeDoesNothing<CZV216toBGRA_Task, 2>();
    tqtest::ExpectModeDoesNothing<CZV216toBGRA_Task, -1>();
    tqtest::ExpectModeDoesNothing<CZV216toBGRA_Task, 256>();
}

}  // namespace
