// Progressive to interlaced: rows known by hand, every byte of memory against the reference,
// stripes of columns, tasks run by hand, sizes and modes that do nothing.

#include <gtest/gtest.h>
#include <tqipl/wavelet.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iterator>
#include <limits>
#include <ostream>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "reference/p2i_reference.h"
#include "support/allocation_counter.h"
#include "support/filter_check.h"
#include "support/guarded_buffer.h"
#include "support/wavelet_check.h"
#include "wavelet/p2i_tasks.h"

namespace {

using tqtest::AtEveryLevel;
using tqtest::BlockStage;
using tqtest::GuardedBuffer;
using tqtest::Noise;
using tqtest::Settings;

using P2iFunction = void (*)(unsigned, unsigned, unsigned, unsigned char*, unsigned, unsigned char*,
                             EVXR_P2I_MODE);
struct P2iForm {
    const char* name;
    P2iFunction plain, multiThread;
    unsigned kind;
    unsigned SampleBytes() const { return tqref::kP2iKinds[kind].sampleBytes; }
    unsigned Channels() const { return tqref::kP2iKinds[kind].channels; }
    unsigned PixelBytes() const { return SampleBytes() * Channels(); }
};
constexpr P2iForm kForms[] = {
    {"C1R", IPL_P2I_Wavelet53_C1R, IPL_P2I_Wavelet53_MultiThread_C1R, 0},
    {"C1R_16u", IPL_P2I_Wavelet53_C1R_16u, IPL_P2I_Wavelet53_MultiThread_C1R_16u, 1},
    {"C4R", IPL_P2I_Wavelet53_C4R, IPL_P2I_Wavelet53_MultiThread_C4R, 2},
    {"C3R_16u", IPL_P2I_Wavelet53_C3R_16u, IPL_P2I_Wavelet53_MultiThread_C3R_16u, 3}};
constexpr EVXR_P2I_MODE kTop = EVXR_P2I_TOP_FIELD, kBottom = EVXR_P2I_BOTTOM_FIELD,
                        kFrame = EVXR_P2I_FRAME;
constexpr EVXR_P2I_MODE kModes[] = {kTop, kBottom, kFrame};
const EVXR_P2I_MODE kBadModes[] = {static_cast<EVXR_P2I_MODE>(3), static_cast<EVXR_P2I_MODE>(-1),
                                   static_cast<EVXR_P2I_MODE>(4), static_cast<EVXR_P2I_MODE>(256),
                                   static_cast<EVXR_P2I_MODE>(std::numeric_limits<int>::min())};

static_assert(kTop == 0 && kBottom == 1 && kFrame == 2 && sizeof(EVXR_P2I_MODE) == 4);

constexpr int kUnwritten = 0xA5;

void PutSample(const P2iForm& form, uint8_t* at, int value) {
    const uint16_t sample = static_cast<uint16_t>(value);
    if (form.SampleBytes() == 1)
        *at = static_cast<uint8_t>(value);
    else
        std::memcpy(at, &sample, 2);
}
int GetSample(const P2iForm& form, const uint8_t* at) {
    uint16_t sample = *at;
    if (form.SampleBytes() == 2) std::memcpy(&sample, at, 2);
    return sample;
}

// The rows of an image of `width` pixels, each of one value in all of its samples. Two rows more
// than the frame's are there; what is not written stands as -1.
std::vector<int> OutputRows(const P2iForm& form, P2iFunction function, EVXR_P2I_MODE mode,
                            const std::vector<int>& rows, unsigned width) {
    const unsigned height = static_cast<unsigned>(rows.size());
    const unsigned samples = width * form.Channels(), stride = width * form.PixelBytes();
    std::vector<uint8_t> src(stride * height), dst(stride * (height + 2), kUnwritten);
    for (unsigned y = 0; y < height; ++y)
        for (unsigned i = 0; i < samples; ++i)
            PutSample(form, &src[y * stride + i * form.SampleBytes()], rows[y]);
    function(width, height, stride, src.data(), stride, dst.data(), mode);
    std::vector<int> out;
    for (unsigned y = 0; y < height + 2; ++y) {
        const uint8_t* row = &dst[y * stride];
        out.push_back(GetSample(form, row));
        for (unsigned i = 1; i < samples; ++i)
            EXPECT_EQ(GetSample(form, row + i * form.SampleBytes()), out[y])
                << form.name << ", row " << y << ", sample " << i;
    }
    const int unwritten = form.SampleBytes() == 1 ? kUnwritten : kUnwritten * 257;
    while (!out.empty() && out.back() == unwritten) out.pop_back();
    EXPECT_EQ(std::count(out.begin(), out.end(), unwritten), 0) << "a row left out amid others";
    return out;
}

// All forms of the kinds, plain and MultiThread, narrow and wide.
void ExpectRows(const std::vector<unsigned>& kinds, EVXR_P2I_MODE mode,
                const std::vector<int>& rows, const std::vector<int>& expected) {
    AtEveryLevel([&] {
        for (unsigned kind : kinds) {
            const P2iForm& form = kForms[kind];
            for (unsigned width : {1u, 37u}) {
                EXPECT_EQ(OutputRows(form, form.plain, mode, rows, width), expected) << form.name;
                EXPECT_EQ(OutputRows(form, form.multiThread, mode, rows, width), expected)
                    << form.name << ", MultiThread";
            }
        }
    });
}

const std::vector<unsigned> kAllKinds = {0, 1, 2, 3}, kBytes = {0, 2}, kFullRange = {2, 3};

// ---- Values known by hand -----------------------------------------------------------------------

// The fields of ramps of 0, 1, 2 and so on rows from 20 on. Eight times a ramp's step leaves each
// filtered row what it was.
void ExpectFieldsOfRamps(EVXR_P2I_MODE mode, const std::vector<std::vector<int>>& fields) {
    std::vector<int> ramp;
    for (const std::vector<int>& field : fields) {
        ExpectRows(kBytes, mode, ramp, field);
        ramp.push_back(20 + 10 * static_cast<int>(ramp.size()));
    }
}

TEST(P2i, TheTopFieldHasTheEvenRows) {
    const std::vector<int> five = {20, 40, 60, 80, 100}, four(five.begin(), five.end() - 1);
    ExpectFieldsOfRamps(
        kTop, {{}, {20}, {20}, {20, 40}, {20, 40}, {20, 40, 60}, {20, 40, 60}, four, four, five});
}

TEST(P2i, TheBottomFieldHasTheOddRowsAndTwiceTheLastOneWhenTheHeightIsOdd) {
    const std::vector<int> four = {30, 50, 70, 90}, three(four.begin(), four.end() - 1);
    ExpectFieldsOfRamps(kBottom,
                        {{}, {}, {30}, {30, 30}, {30, 50}, {30, 50}, three, three, four, four});
}

TEST(P2i, AFrameBelow3RowsIsNotMade) {
    for (size_t height : {0, 1, 2})
        ExpectRows(kAllKinds, kFrame, std::vector<int>(height, 5000), {});
}

// 240 is above the range: 235 tells a filtered row from a copy.
TEST(P2i, RowsAreCopiedAtTheEndsOfAFieldAndFilteredBetween) {
    const std::vector<std::vector<int>> top = {
        {240},           {240},           {240, 240},           {240, 240},
        {240, 235, 240}, {240, 235, 240}, {240, 235, 235, 240}, {240, 235, 235, 240}};
    const std::vector<std::vector<int>> bottom = {
        {},         {240},           {240, 240},      {240, 240},
        {240, 240}, {240, 235, 240}, {240, 235, 240}, {240, 235, 235, 240}};
    for (size_t height = 1; height <= 8; ++height) {
        ExpectRows({0}, kTop, std::vector<int>(height, 240), top[height - 1]);
        ExpectRows({0}, kBottom, std::vector<int>(height, 240), bottom[height - 1]);
    }
    for (size_t height : {4, 5, 8})
        ExpectRows({0}, kFrame, std::vector<int>(height, 240), std::vector<int>(height, 235));
}

TEST(P2i, AHeightOf4GivesTheTopFieldRows0And2Unfiltered) {
    ExpectRows(kBytes, kTop, {1, 250, 255, 3}, {1, 255});
    ExpectRows({1, 3}, kTop, {1, 60000, 65535, 3}, {1, 65535});
}

TEST(P2i, AHeightOf1080Gives540Lines) {
    // Filtered: 235. Copied: 240.
    std::vector<int> marked(540, 235), rows, top, bottom;
    marked.front() = marked.back() = 240;
    ExpectRows({0}, kTop, std::vector<int>(1080, 240), marked);
    ExpectRows({0}, kBottom, std::vector<int>(1080, 240), marked);
    for (int y = 0; y < 1080; ++y) rows.push_back(60 * y);
    for (int j = 0; j < 540; ++j) {
        top.push_back(120 * j);
        bottom.push_back(120 * j + 60);
    }
    ExpectRows({3}, kTop, rows, top);
    ExpectRows({3}, kBottom, rows, bottom);
}

TEST(P2i, AConstant100Stays100InAllModes) {
    for (size_t height : {5, 6, 9})
        for (EVXR_P2I_MODE mode : kModes) {
            const size_t lines = mode == kFrame ? height : (height + (mode == kTop)) / 2;
            ExpectRows(kBytes, mode, std::vector<int>(height, 100), std::vector<int>(lines, 100));
        }
}

TEST(P2i, TheTapsStandAroundEachRow) {
    ExpectRows(kFullRange, kTop, {0, 0, 0, 0, 80, 0, 0, 0, 0}, {0, 0, 60, 0, 0});
    ExpectRows(kFullRange, kTop, {0, 0, 0, 80, 0, 0, 0, 0, 0}, {0, 20, 20, 0, 0});
    ExpectRows(kFullRange, kTop, {80, 80, 80, 80, 0, 80, 80, 80, 80}, {80, 90, 20, 90, 80});
    ExpectRows(kFullRange, kBottom, {0, 0, 0, 0, 0, 80, 0, 0, 0, 0}, {0, 0, 60, 0, 0});
    ExpectRows(kFullRange, kBottom, {0, 0, 80, 0, 0, 0, 0, 0, 0, 0}, {0, 20, 0, 0, 0});
    ExpectRows(kFullRange, kBottom, {80, 80, 80, 80, 80, 0, 80, 80, 80, 80}, {80, 90, 20, 90, 80});
}

TEST(P2i, AFrameIsMirroredAtBothEnds) {
    ExpectRows(kFullRange, kFrame, {80, 0, 0, 0, 0, 0, 0}, {60, 20, 0, 0, 0, 0, 0});
    ExpectRows(kFullRange, kFrame, {0, 80, 0, 0, 0, 0, 0}, {40, 50, 20, 0, 0, 0, 0});
    ExpectRows(kFullRange, kFrame, {0, 0, 80, 0, 0, 0, 0}, {0, 20, 60, 20, 0, 0, 0});
    ExpectRows(kFullRange, kFrame, {80, 80, 0, 80, 80, 80, 80}, {100, 60, 20, 60, 90, 80, 80});
    ExpectRows(kFullRange, kFrame, {80, 80, 80, 0, 80, 80, 80}, {80, 90, 60, 20, 60, 90, 80});
    ExpectRows(kFullRange, kFrame, {0, 0, 0, 0, 80, 0, 0}, {0, 0, 0, 20, 60, 20, 0});
    ExpectRows(kFullRange, kFrame, {0, 0, 0, 0, 0, 80, 0}, {0, 0, 0, 0, 20, 50, 40});
    ExpectRows(kFullRange, kFrame, {0, 0, 0, 0, 0, 0, 80}, {0, 0, 0, 0, 0, 20, 60});
    // Four and five rows are hardly more than the ends.
    ExpectRows(kFullRange, kFrame, {0, 80, 0, 0}, {40, 50, 20, 0});
    ExpectRows(kFullRange, kFrame, {0, 0, 80, 0}, {0, 20, 50, 40});
    ExpectRows(kFullRange, kFrame, {0, 0, 80, 0, 0}, {0, 20, 60, 20, 0});
}

TEST(P2i, FieldsAreRoundedAndFramesAreNot) {
    ExpectRows(kFullRange, kTop, {0, 0, 1, 0, 0}, {0, 1, 0});  // 6 / 8
    ExpectRows(kFullRange, kFrame, {0, 0, 1, 0, 0}, {0, 0, 0, 0, 0});
    ExpectRows(kFullRange, kTop, {0, 2, 0, 0, 0}, {0, 1, 0});          // 4 / 8
    ExpectRows(kFullRange, kTop, {1, 2, 0, 0, 0}, {1, 0, 0});          // 3 / 8
    ExpectRows(kFullRange, kFrame, {0, 4, 0, 0, 0}, {2, 2, 1, 0, 0});  // 16, 20, 8, -4
    ExpectRows(kFullRange, kFrame, {0, 0, 3, 0, 0}, {0, 0, 2, 0, 0});  // 6, 18
    ExpectRows(kFullRange, kBottom, {0, 0, 0, 1, 0, 0}, {0, 1, 0});
    ExpectRows(kFullRange, kBottom, {0, 1, 2, 0, 0, 0}, {1, 0, 0});
}

TEST(P2i, FilteredRowsAreLimitedAndCopiesAreNot) {
    ExpectRows({0}, kTop, {3, 3, 3, 3, 3}, {3, 16, 3});
    ExpectRows({0}, kTop, {0, 13, 13, 13, 13}, {0, 16, 13});
    ExpectRows({0}, kFrame, {3, 3, 255, 3, 3}, {16, 66, 192, 66, 16});
    ExpectRows({1}, kTop, {100, 100, 100, 100, 100}, {100, 4096, 100});
    ExpectRows({1}, kTop, {65535, 65535, 65535, 65535, 65535}, {65535, 60160, 65535});
    ExpectRows({1}, kFrame, std::vector<int>(6, 4095), std::vector<int>(6, 4096));
    ExpectRows({1}, kFrame, std::vector<int>(6, 60161), std::vector<int>(6, 60160));
    ExpectRows({1}, kFrame, std::vector<int>(6, 4097), std::vector<int>(6, 4097));
    ExpectRows({2}, kFrame, {255, 255, 255, 0, 255, 255, 255}, {255, 255, 191, 63, 191, 255, 255});
    ExpectRows({3}, kFrame, {65535, 65535, 65535, 0, 65535, 65535, 65535},
               {65535, 65535, 49151, 16383, 49151, 65535, 65535});
    ExpectRows({2}, kTop, {0, 0, 0, 0, 255}, {0, 0, 255});
    ExpectRows({3}, kTop, {65535, 0, 0, 0, 65535}, {65535, 0, 65535});
}

TEST(P2i, ChannelsAreFilteredAlikeAndApart) {
    AtEveryLevel([] {
        for (P2iFunction function : {kForms[2].plain, kForms[2].multiThread}) {
            // One pixel; alpha last.
            std::vector<uint8_t> src = {0, 0, 80, 0, 0,  80, 0, 0, 0, 0, 0, 80,  //
                                        0, 0, 0,  0, 80, 0,  0, 0},
                                 dst(12, kUnwritten);
            function(1, 5, 4, src.data(), 4, dst.data(), kTop);
            EXPECT_EQ(dst, (std::vector<uint8_t>{0, 0, 80, 0, 0, 20, 0, 60, 80, 0, 0, 0}));
        }
        for (P2iFunction function : {kForms[3].plain, kForms[3].multiThread}) {
            std::vector<uint16_t> src = {0, 0, 800, 0, 8000, 0, 80, 0, 0, 0, 0, 0, 0, 0, 0},
                                  dst(9, 7);
            function(1, 5, 6, reinterpret_cast<uint8_t*>(src.data()), 6,
                     reinterpret_cast<uint8_t*>(dst.data()), kTop);
            EXPECT_EQ(dst, (std::vector<uint16_t>{0, 0, 800, 60, 2000, 0, 0, 0, 0}));
        }
    });
}

// ---- What does nothing --------------------------------------------------------------------------

TEST(P2i, OtherModesLeaveTheDestinationUntouched) {
    GuardedBuffer buffer(16);
    uint8_t* forbidden = buffer.data() + buffer.size();
    for (const P2iForm& form : kForms)
        for (P2iFunction function : {form.plain, form.multiThread})
            for (EVXR_P2I_MODE mode : kBadModes)
                for (unsigned height : {1u, 4u, 9u, 0xFFFFFFFFu})
                    function(16, height, 128, forbidden, 128, forbidden, mode);
}

TEST(P2i, SizesOf0AndNullPointersDoNothing) {
    GuardedBuffer buffer(16);
    uint8_t* forbidden = buffer.data() + buffer.size();
    for (const P2iForm& form : kForms)
        for (P2iFunction function : {form.plain, form.multiThread})
            for (EVXR_P2I_MODE mode : kModes) {
                function(0, 9, 128, forbidden, 128, forbidden, mode);
                function(9, 0, 128, forbidden, 128, forbidden, mode);
                function(0, 0, 128, forbidden, 128, forbidden, mode);
                function(9, 9, 128, nullptr, 128, forbidden, mode);
                function(9, 9, 128, forbidden, 128, nullptr, mode);
                function(9, 9, 128, nullptr, 128, nullptr, mode);
            }
}

// ---- Against the reference ----------------------------------------------------------------------

struct P2iSizes {
    unsigned width, height, srcStride, dstStride;
    EVXR_P2I_MODE mode;
};
std::ostream& operator<<(std::ostream& out, const P2iSizes& s) {
    return out << s.width << " x " << s.height << ", strides " << s.srcStride << " and "
               << s.dstStride << ", mode " << int{s.mode};
}

void Model(BlockStage& stage, const P2iForm& form, const P2iSizes& s) {
    stage.Model([&](tqref::Bytes* images) {
        tqref::P2i(tqref::kP2iKinds[form.kind], s.width, s.height, s.srcStride, images[0],
                   s.dstStride, images[1], s.mode);
    });
}

testing::AssertionResult EqualsReference(BlockStage& stage, const P2iForm& form,
                                         P2iFunction function, const P2iSizes& s) {
    Model(stage, form, s);
    return tqtest::CheckAtEveryLevel(stage, [&](uint8_t* const* images) {
        function(s.width, s.height, s.srcStride, images[0], s.dstStride, images[1], s.mode);
    });
}

// A bad mode among the others, dense and padded by odd numbers of bytes.
std::vector<P2iSizes> AllModesAndStrides(const P2iForm& form, unsigned width, unsigned height) {
    std::vector<P2iSizes> all;
    const unsigned rowBytes = width * form.PixelBytes();
    for (EVXR_P2I_MODE mode : {kTop, kBottom, kFrame, kBadModes[0]}) {
        all.push_back({width, height, rowBytes, rowBytes, mode});
        all.push_back({width, height, rowBytes + 5, rowBytes + 3, mode});
    }
    return all;
}

TEST(P2i, PlainFormsEqualTheReferenceAtAllSmallHeights) {
    BlockStage stage(2, 4096, 1);
    for (const P2iForm& form : kForms)
        for (unsigned width : {1u, 2u, 3u, 5u, 7u, 16u, 17u, 31u, 33u, 40u})
            for (unsigned height = 0; height <= 12; ++height)
                for (const P2iSizes& sizes : AllModesAndStrides(form, width, height))
                    ASSERT_TRUE(EqualsReference(stage, form, form.plain, sizes))
                        << form.name << ", " << sizes;
}

TEST(P2i, PlainFormsEqualTheReferenceAtAllWidths) {
    BlockStage stage(2, 8192, 3);
    for (const P2iForm& form : kForms)
        for (unsigned width = 1; width <= 100; ++width)
            for (const P2iSizes& sizes : AllModesAndStrides(form, width, 6 + width % 4))
                ASSERT_TRUE(EqualsReference(stage, form, form.plain, sizes))
                    << form.name << ", " << sizes;
}

TEST(P2i, AllFormsEqualTheReferenceAtLargerSizes) {
    BlockStage stage(2, 100000, 5);
    for (const P2iForm& form : kForms)
        for (P2iFunction function : {form.plain, form.multiThread})
            for (auto [width, height] :
                 {std::pair{701u, 20u}, {64u, 101u}, {3u, 1000u}, {1200u, 7u}, {97u, 150u}})
                for (const P2iSizes& sizes : AllModesAndStrides(form, width, height))
                    ASSERT_TRUE(EqualsReference(stage, form, function, sizes))
                        << form.name << ", " << sizes;
}

// The fourth row that its table would need is not there: on either side stands a page that faults.
TEST(P2i, AFrameOf3RowsStaysInsideItsRows) {
    BlockStage stage(2, 4096, 7);
    for (const P2iForm& form : kForms)
        for (P2iFunction function : {form.plain, form.multiThread})
            for (unsigned width = 1; width <= 70; ++width)
                for (unsigned padding : {0u, 9u}) {
                    const unsigned stride = width * form.PixelBytes() + padding;
                    ASSERT_TRUE(
                        EqualsReference(stage, form, function, {width, 3, stride, stride, kFrame}))
                        << form.name << ", width " << width;
                }
    ExpectRows(kFullRange, kFrame, {80, 0, 0}, {60, 20, 0});
    ExpectRows(kFullRange, kFrame, {0, 80, 0}, {40, 40, 40});
    ExpectRows(kFullRange, kFrame, {0, 0, 80}, {0, 20, 60});
}

// ---- Stripes ------------------------------------------------------------------------------------

TEST(P2i, MultiThreadFormsGiveThePlainFormsBytesAtAnyProcessorCount) {
    Settings settings;
    BlockStage stage(2, 8192, 9);
    for (const P2iForm& form : kForms)
        for (EVXR_P2I_MODE mode : kModes)
            for (unsigned width : {1u, 2u, 5u, 11u, 12u, 13u, 25u, 47u, 100u}) {
                const unsigned rowBytes = width * form.PixelBytes();
                const P2iSizes sizes = {width, 7 + width % 2, rowBytes + 1, rowBytes + 3, mode};
                Model(stage, form, sizes);
                for (unsigned processors = 1; processors <= 16; ++processors) {
                    settings.UseProcessors(processors);
                    ASSERT_TRUE(stage.CheckAtGuards([&](uint8_t* const* images) {
                        form.multiThread(sizes.width, sizes.height, sizes.srcStride, images[0],
                                         sizes.dstStride, images[1], sizes.mode);
                    })) << form.name
                        << ", " << sizes << ", " << processors << " processors";
                }
            }
}

// Allocations of a call, its tasks among them, when nothing has to be made that is kept.
long Allocations(const P2iForm& form, unsigned processors, unsigned width) {
    Settings settings;
    settings.UseProcessors(processors);
    const unsigned rowBytes = width * form.PixelBytes();
    std::vector<uint8_t> src(rowBytes * 8), dst(rowBytes * 4);
    long least = std::numeric_limits<long>::max();
    for (int i = 0; i < 20; ++i)
        least = std::min(least, tqtest::AllocationsOf([&] {
                             form.multiThread(width, 8, rowBytes, src.data(), rowBytes, dst.data(),
                                              kTop);
                         }));
    return least;
}

TEST(P2i, ThereAreNeverMoreThan12Tasks) {
    for (const P2iForm& form : kForms) {
        const long twelve = Allocations(form, 12, 240);
        EXPECT_GT(twelve, Allocations(form, 11, 240)) << form.name;
        for (unsigned processors : {13u, 16u, 24u, 100u})
            EXPECT_EQ(Allocations(form, processors, 240), twelve)
                << form.name << ", " << processors << " processors";
    }
}

TEST(P2i, AWidthBelowTheProcessorsIsOneTask) {
    for (const P2iForm& form : kForms) {
        const long one = Allocations(form, 8, 5);
        EXPECT_EQ(Allocations(form, 2, 1), one) << form.name;
        EXPECT_EQ(Allocations(form, 12, 11), one) << form.name;
        // Twelve tasks of one column, however many processors there are.
        EXPECT_EQ(Allocations(form, 16, 12), Allocations(form, 12, 12)) << form.name;
        EXPECT_GE(Allocations(form, 8, 8), one + 7) << form.name;
    }
}

TEST(P2i, SeveralHostThreadsMayCallAtOnce) {
    Settings settings;
    settings.UseProcessors(5);
    const std::vector<uint8_t> noise = Noise(60 * 6 * 40, 1);
    std::vector<std::vector<uint8_t>> expected, actual(4);
    for (const P2iForm& form : kForms) {
        std::vector<uint8_t> src = noise, dst(360 * 40);
        form.plain(60, 40, 360, src.data(), 360, dst.data(), kFrame);
        expected.push_back(dst);
    }
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&noise, &actual, i] {
            for (int round = 0; round < 10; ++round) {
                std::vector<uint8_t> src = noise, dst(360 * 40);
                kForms[i].multiThread(60, 40, 360, src.data(), 360, dst.data(), kFrame);
                actual[i] = dst;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(actual, expected);
}

// ---- The task -----------------------------------------------------------------------------------

TEST(P2iTask, HasItsFieldsInOrder) {
    static_assert(std::is_base_of_v<CTQIPLTaskBase, CZP2I_Task>);
    static_assert(std::is_same_v<decltype(CZP2I_Task::m_nMode), EVXR_P2I_MODE> &&
                  std::is_same_v<decltype(CZP2I_Task::m_nKind), unsigned int>);
    static_assert(sizeof(CZP2I_Task::m_nWidth) == 4 && sizeof(CZP2I_Task::m_nHeight) == 4 &&
                  sizeof(CZP2I_Task::m_nSrcStride) == 4 && sizeof(CZP2I_Task::m_nDstStride) == 4);
    const CZP2I_Task task;
    const void* const fields[] = {&task.m_nWidth, &task.m_nHeight,    &task.m_nSrcStride,
                                  &task.m_pSrc,   &task.m_nDstStride, &task.m_pDst,
                                  &task.m_nMode,  &task.m_nKind};
    EXPECT_TRUE(std::is_sorted(std::begin(fields), std::end(fields), std::less<const void*>()));
}

int RunTask(unsigned kind, const P2iSizes& s, uint8_t* src, uint8_t* dst) {
    CZP2I_Task task;
    task.m_nWidth = s.width;
    task.m_nHeight = s.height;
    task.m_nSrcStride = s.srcStride;
    task.m_pSrc = src;
    task.m_nDstStride = s.dstStride;
    task.m_pDst = dst;
    task.m_nMode = s.mode;
    task.m_nKind = kind;
    return task.Run();
}

TEST(P2iTask, Kinds0To3CallTheFourPlainForms) {
    BlockStage stage(2, 4096, 11);
    for (const P2iForm& form : kForms)
        for (unsigned width : {1u, 9u, 40u})
            for (unsigned height : {0u, 1u, 2u, 3u, 8u, 9u})
                for (const P2iSizes& sizes : AllModesAndStrides(form, width, height)) {
                    Model(stage, form, sizes);
                    ASSERT_TRUE(stage.CheckAtGuards([&](uint8_t* const* images) {
                        EXPECT_EQ(RunTask(form.kind, sizes, images[0], images[1]), 1);
                    })) << form.name
                        << ", " << sizes;
                }
}

TEST(P2iTask, OtherKindsDoNothing) {
    GuardedBuffer buffer(16);
    uint8_t* forbidden = buffer.data() + buffer.size();
    for (unsigned kind : {4u, 5u, 256u, 0x80000000u, 0xFFFFFFFFu})
        for (EVXR_P2I_MODE mode : kModes) RunTask(kind, {8, 8, 64, 64, mode}, forbidden, forbidden);
}

}  // namespace
