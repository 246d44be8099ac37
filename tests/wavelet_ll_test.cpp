// The low band as a half-size image: values known by hand, every byte of memory against the
// reference, bands and stripes, sizes too small.

#include <gtest/gtest.h>
#include <tqipl/wavelet.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <ostream>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "reference/wavelet_ll_reference.h"
#include "support/allocation_counter.h"
#include "support/filter_check.h"
#include "support/guarded_buffer.h"
#include "support/wavelet_check.h"

namespace {

using tqref::Samples16;
using tqref::Samples8;
using tqtest::AtEveryLevel;
using tqtest::BlockStage;
using tqtest::GuardedBuffer;
using tqtest::Noise;
using tqtest::Settings;
using tqtest::Transposed;

template <class Samples> struct LlForm {
    using Sample = typename Samples::Sample;
    const char* name;
    void (*function)(unsigned, unsigned, unsigned, unsigned char*, unsigned, unsigned char*, Sample,
                     Sample);
};
constexpr LlForm<Samples8> kForms8[] = {
    {"IPL_WaveletLL_53_C1", IPL_WaveletLL_53_C1},
    {"IPL_WaveletLL_53_C1_MultiThread", IPL_WaveletLL_53_C1_MultiThread}};
constexpr LlForm<Samples16> kForms16[] = {
    {"IPL_WaveletLL_53_C1_16u", IPL_WaveletLL_53_C1_16u},
    {"IPL_WaveletLL_53_C1_16u_MultiThread", IPL_WaveletLL_53_C1_16u_MultiThread}};

// work(form) for both forms of both kinds.
template <class Work> void ForEachForm(Work work) {
    for (const auto& form : kForms8) work(form);
    for (const auto& form : kForms16) work(form);
}
template <class Work> void ForBothMultiThreadForms(Work work) {
    work(kForms8[1]);
    work(kForms16[1]);
}

template <class Samples>
std::vector<int> LowBand(const LlForm<Samples>& form, unsigned width, unsigned height,
                         const std::vector<int>& image, typename Samples::Sample low,
                         typename Samples::Sample high, int background = 99) {
    using Sample = typename Samples::Sample;
    std::vector<Sample> src(image.begin(), image.end());
    std::vector<Sample> dst((width >> 1) * (height >> 1), static_cast<Sample>(background));
    form.function(width, height, width * sizeof(Sample), reinterpret_cast<uint8_t*>(src.data()),
                  (width >> 1) * sizeof(Sample), reinterpret_cast<uint8_t*>(dst.data()), low, high);
    return {dst.begin(), dst.end()};
}

template <class Samples>
std::vector<int> LowBand(const LlForm<Samples>& form, unsigned width, unsigned height,
                         const std::vector<int>& image) {
    return LowBand(form, width, height, image, 0,
                   std::numeric_limits<typename Samples::Sample>::max());
}

// A line as the rows of an image of like rows, and as the columns of one of like columns.
void ExpectLine(const std::vector<int>& line, const std::vector<int>& expected) {
    const int n = static_cast<int>(line.size()), m = static_cast<int>(expected.size());
    AtEveryLevel([&] {
        ForEachForm([&](const auto& form) {
            for (int times : {4, 5, 12, 70}) {
                std::vector<int> rows, expectedRows;
                for (int i = 0; i < times; ++i) rows.insert(rows.end(), line.begin(), line.end());
                for (int i = 0; i < times / 2; ++i)
                    expectedRows.insert(expectedRows.end(), expected.begin(), expected.end());
                EXPECT_EQ(LowBand(form, n, times, rows), expectedRows)
                    << form.name << ", " << times;
                EXPECT_EQ(LowBand(form, times, n, Transposed(n, times, rows)),
                          Transposed(m, times / 2, expectedRows))
                    << form.name << ", " << times;
            }
        });
    });
}

// ---- Values known by hand -----------------------------------------------------------------------

TEST(WaveletLl, AConstantImageOf100GivesAHalfSizeImageOf100) {
    AtEveryLevel([] {
        ForEachForm([](const auto& form) {
            for (auto [width, height] : {std::pair{4, 4}, {5, 4}, {4, 5}, {37, 9}, {70, 30}})
                EXPECT_EQ(LowBand(form, width, height, std::vector<int>(width * height, 100)),
                          std::vector<int>((width / 2) * (height / 2), 100))
                    << form.name << ", " << width << " x " << height;
        });
    });
}

TEST(WaveletLl, TheTapsStandAroundTheEvenSamplesAndAreMirrored) {
    ExpectLine({200, 0, 0, 0, 0, 0, 0, 0}, {150, 0, 0, 0});
    ExpectLine({0, 200, 0, 0, 0, 0, 0, 0}, {100, 50, 0, 0});
    ExpectLine({0, 0, 200, 0, 0, 0, 0, 0}, {0, 150, 0, 0});
    ExpectLine({0, 0, 0, 200, 0, 0, 0, 0}, {0, 50, 50, 0});
    ExpectLine({0, 0, 0, 0, 0, 100, 0, 0}, {0, 0, 25, 25});
    ExpectLine({0, 0, 0, 0, 0, 0, 100, 0}, {0, 0, 0, 63});
    ExpectLine({0, 0, 0, 0, 0, 0, 0, 100}, {0, 0, 0, 25});
    // Taps that take away.
    ExpectLine({200, 200, 200, 0, 200, 200, 200, 200}, {200, 150, 150, 200});
    ExpectLine({100, 100, 0, 100, 100, 100, 100, 100}, {125, 25, 113, 100});
    ExpectLine({100, 100, 100, 100, 0, 100, 100, 100}, {100, 113, 25, 113});
    ExpectLine({0, 100, 100, 100, 100, 100, 100, 100}, {25, 113, 100, 100});
}

TEST(WaveletLl, FourSamplesAreTheTwoEnds) {
    ExpectLine({100, 0, 0, 0}, {75, 0});
    ExpectLine({0, 100, 0, 0}, {50, 25});
    ExpectLine({0, 0, 100, 0}, {0, 63});
    ExpectLine({0, 0, 0, 100}, {0, 25});
}

TEST(WaveletLl, TheLastValueOfAnOddLengthStandsAtTheLastSampleButOne) {
    ExpectLine({0, 0, 0, 0, 0, 0, 0, 0, 100}, {0, 0, 0, 25});
    ExpectLine({0, 0, 0, 0, 0, 0, 0, 100, 0}, {0, 0, 0, 63});
    ExpectLine({0, 0, 0, 0, 0, 0, 100, 0, 0}, {0, 0, 0, 25});
    ExpectLine({0, 0, 0, 0, 0, 100, 0, 0, 0}, {0, 0, 25, 0});
    ExpectLine({0, 0, 0, 0, 100, 0, 0, 0, 0}, {0, 0, 75, 0});
    ExpectLine({100, 100, 100, 100, 100, 0, 100, 100, 100}, {100, 100, 75, 113});
    ExpectLine({0, 0, 0, 0, 100}, {0, 25});
    ExpectLine({0, 0, 0, 100, 0}, {0, 63});
}

TEST(WaveletLl, TheSumOfBothDirectionsIsRoundedOnce) {
    // Rows alike: 64ths of 8 times 12, 11, 10 and 4 and 3.
    ExpectLine({2, 0, 0, 0, 0, 0, 0, 0}, {2, 0, 0, 0});
    ExpectLine({1, 1, 0, 0, 0, 0, 0, 0}, {1, 0, 0, 0});
    ExpectLine({0, 1, 0, 0, 0, 0, 0, 0}, {1, 0, 0, 0});
    ExpectLine({0, 0, 0, 2, 0, 0, 0, 0}, {0, 1, 1, 0});
    ExpectLine({0, 0, 0, 2, 1, 0, 0, 0}, {0, 0, 1, 0});
    AtEveryLevel([] {
        ForEachForm([](const auto& form) {
            // The taps 6, 4, -2 in both directions at the corner: 36 * v + 24 * v and so on.
            std::vector<int> image(64);
            image[0] = 1;
            EXPECT_EQ(LowBand(form, 8, 8, image)[0], 1) << form.name;  // 36
            image[0] = 0;
            image[1] = 1;
            EXPECT_EQ(LowBand(form, 8, 8, image)[0], 0) << form.name;  // 24
            image[9] = 1;
            EXPECT_EQ(LowBand(form, 8, 8, image)[0], 1) << form.name;  // 24 + 16
            image[2] = image[10] = 1;
            EXPECT_EQ(LowBand(form, 8, 8, image)[0], 0) << form.name;  // 24 + 16 - 12 - 8
        });
    });
}

TEST(WaveletLl, SixteenBitsKeepTheirFullRange) {
    AtEveryLevel([] {
        for (const auto& form : kForms16) {
            EXPECT_EQ(LowBand(form, 36, 8, std::vector<int>(36 * 8, 65535)),
                      std::vector<int>(18 * 4, 65535));
            std::vector<int> image(64);
            image[2 * 8 + 2] = 65535;
            // 36 sixty-fourths, and 4, 2 and 1 diagonally.
            EXPECT_EQ(LowBand(form, 8, 8, image), (std::vector<int>{4096, 0, 2048, 0,  //
                                                                    0, 36863, 0, 0,    //
                                                                    2048, 0, 1024, 0,  //
                                                                    0, 0, 0, 0}))
                << form.name;
        }
    });
}

TEST(WaveletLl, EqualLimitsGiveAConstantImage) {
    AtEveryLevel([] {
        const std::vector<uint8_t> noise = Noise(40 * 11, 1);
        const std::vector<int> image(noise.begin(), noise.end());
        ForEachForm([&](const auto& form) {
            for (int value : {0, 77, 255})
                EXPECT_EQ(LowBand(form, 40, 11, image, value, value),
                          std::vector<int>(20 * 5, value))
                    << form.name;
        });
    });
}

TEST(WaveletLl, ResultsAreLimitedToWhatTheCallerPicks) {
    AtEveryLevel([] {
        ForEachForm([](const auto& form) {
            const std::pair<int, int> known[] = {{0, 16},    {15, 16},   {16, 16},   {17, 17},
                                                 {234, 234}, {235, 235}, {236, 235}, {255, 235}};
            for (auto [value, expected] : known)
                EXPECT_EQ(LowBand(form, 38, 4, std::vector<int>(38 * 4, value), 16, 235),
                          std::vector<int>(19 * 2, expected))
                    << form.name << ", " << value;
        });
    });
}

// Below 200 a result becomes 200; only what is not below is measured against 100.
TEST(WaveletLl, OfCrossedLimitsTheLowOneComesFirst) {
    AtEveryLevel([] {
        ForEachForm([](const auto& form) {
            for (auto [value, expected] :
                 {std::pair{50, 200}, {100, 200}, {150, 200}, {199, 200}, {200, 100}, {255, 100}})
                EXPECT_EQ(LowBand(form, 38, 4, std::vector<int>(38 * 4, value), 200, 100),
                          std::vector<int>(19 * 2, expected))
                    << form.name << ", " << value;
        });
        for (const auto& form : kForms16)
            for (auto [value, expected] : {std::pair{49999, 50000}, {50000, 30000}, {29999, 50000}})
                EXPECT_EQ(LowBand(form, 6, 4, std::vector<int>(24, value), 50000, 30000),
                          std::vector<int>(6, expected))
                    << form.name << ", " << value;
    });
}

// ---- Against the reference ----------------------------------------------------------------------

struct LlSizes {
    unsigned width, height, srcStride, dstStride;
};
std::ostream& operator<<(std::ostream& out, const LlSizes& s) {
    return out << s.width << " x " << s.height << ", strides " << s.srcStride << " and "
               << s.dstStride;
}

// Dense and padded, by odd numbers of bytes too.
template <class Samples> std::vector<LlSizes> AllStrides(unsigned width, unsigned height) {
    const unsigned src = width * Samples::kBytes, dst = (width >> 1) * Samples::kBytes;
    return {{width, height, src, dst}, {width, height, src + 5, dst + 3}};
}

template <class Samples>
testing::AssertionResult EqualsReference(BlockStage& stage, const LlForm<Samples>& form,
                                         const LlSizes& s, typename Samples::Sample low,
                                         typename Samples::Sample high) {
    stage.Model([&](tqref::Bytes* images) {
        tqref::WaveletLl<Samples>(s.width, s.height, s.srcStride, images[0], s.dstStride, images[1],
                                  low, high);
    });
    return tqtest::CheckAtEveryLevel(stage, [&](uint8_t* const* images) {
        form.function(s.width, s.height, s.srcStride, images[0], s.dstStride, images[1], low, high);
    });
}

template <class Samples>
void ExpectEqualsReference(const LlForm<Samples>& form, unsigned maxWidth,
                           const std::vector<unsigned>& heights) {
    using Sample = typename Samples::Sample;
    constexpr Sample kMost = std::numeric_limits<Sample>::max();
    const std::pair<Sample, Sample> limits[] = {
        {0, kMost}, {kMost / 16, kMost / 16 * 15}, {0, kMost}, {kMost / 3 * 2, kMost / 3}};
    BlockStage stage(2, 4096, 1);
    int turn = 0;
    for (unsigned width = 0; width <= maxWidth; ++width)
        for (unsigned height : heights)
            for (const LlSizes& sizes : AllStrides<Samples>(width, height)) {
                const auto [low, high] = limits[turn++ % 4];
                ASSERT_TRUE(EqualsReference(stage, form, sizes, low, high))
                    << form.name << ", " << sizes << ", limits " << low << " and " << high;
            }
}

TEST(WaveletLl, PlainFormsEqualTheReferenceAtAllSizes) {
    const std::vector<unsigned> heights = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 17};
    ExpectEqualsReference(kForms8[0], 70, heights);
    ExpectEqualsReference(kForms16[0], 70, heights);
}

TEST(WaveletLl, MultiThreadFormsEqualTheReferenceAtSmallSizes) {
    ExpectEqualsReference(kForms8[1], 12, {0, 1, 2, 3, 4, 5, 6, 7, 17});
    ExpectEqualsReference(kForms16[1], 12, {0, 1, 2, 3, 4, 5, 6, 7, 17});
}

TEST(WaveletLl, AllFormsEqualTheReferenceAtLargerSizes) {
    ForEachForm([](const auto& form) {
        using Form = std::decay_t<decltype(form)>;
        BlockStage stage(2, 70000, 5);
        for (auto [width, height] : {std::pair{511u, 60u}, {256u, 65u}, {31u, 500u}, {1200u, 5u}})
            for (unsigned padding : {0u, 7u}) {
                const unsigned bytes = sizeof(typename Form::Sample);
                const LlSizes sizes = {width, height, width * bytes + padding,
                                       width / 2 * bytes + padding};
                ASSERT_TRUE(EqualsReference(stage, form, sizes, 0,
                                            std::numeric_limits<typename Form::Sample>::max()))
                    << form.name << ", " << sizes;
            }
    });
}

// Seams of bands and of stripes, more processors than rows or columns.
TEST(WaveletLl, MultiThreadFormsGiveThePlainFormsBytesAtAnyProcessorCount) {
    Settings settings;
    ForBothMultiThreadForms([&](const auto& form) {
        using Sample = typename std::decay_t<decltype(form)>::Sample;
        constexpr Sample kMost = std::numeric_limits<Sample>::max();
        BlockStage stage(2, 8192, 9);
        for (unsigned width : {2u, 3u, 4u, 9u, 31u, 33u, 70u})
            for (unsigned height : {2u, 3u, 4u, 5u, 16u, 17u, 35u}) {
                const LlSizes sizes = {width, height, width * 2 + 3, width + 1};
                for (unsigned processors = 1; processors <= 16; ++processors) {
                    settings.UseProcessors(processors);
                    if (processors == 1)
                        stage.Model([&](tqref::Bytes* images) {
                            tqref::WaveletLl<
                                std::conditional_t<sizeof(Sample) == 1, Samples8, Samples16>>(
                                width, height, sizes.srcStride, images[0], sizes.dstStride,
                                images[1], kMost / 16, kMost / 16 * 15);
                        });
                    ASSERT_TRUE(stage.CheckAtGuards([&](uint8_t* const* images) {
                        form.function(width, height, sizes.srcStride, images[0], sizes.dstStride,
                                      images[1], kMost / 16, kMost / 16 * 15);
                    })) << form.name
                        << ", " << sizes << ", " << processors << " processors";
                }
            }
    });
}

TEST(WaveletLl, WidthsAndHeightsBelow2TouchNothing) {
    Settings settings;
    GuardedBuffer buffer(16);
    uint8_t* forbidden = buffer.data() + buffer.size();
    for (unsigned processors : {1u, 4u, 16u}) {
        settings.UseProcessors(processors);
        ForEachForm([&](const auto& form) {
            for (unsigned small : {0u, 1u})
                for (unsigned other : {0u, 1u, 2u, 5u, 40u}) {
                    form.function(small, other, 80, forbidden, 80, forbidden, 0, 255);
                    form.function(other, small, 80, forbidden, 80, forbidden, 0, 255);
                }
        });
    }
}

TEST(WaveletLl, TheResultMayOverlapTheSource) {
    Settings settings;
    settings.UseProcessors(5);
    AtEveryLevel([] {
        ForEachForm([](const auto& form) {
            const unsigned width = 45, height = 34, stride = 90;
            const std::vector<uint8_t> noise = Noise(stride * height, 4);
            std::vector<uint8_t> src = noise, expected(stride * height);
            form.function(width, height, stride, src.data(), 44, expected.data(), 0, 255);
            const unsigned rowBytes =
                width / 2 * sizeof(typename std::decay_t<decltype(form)>::Sample);
            for (auto [offset, dstStride] :
                 {std::pair{0u, stride}, {0u, 44u}, {4 * stride + 2, 88u}, {stride / 2, stride}}) {
                std::vector<uint8_t> memory = noise;
                form.function(width, height, stride, memory.data(), dstStride,
                              memory.data() + offset, 0, 255);
                for (unsigned y = 0; y < height / 2; ++y)
                    ASSERT_EQ(
                        std::memcmp(&memory[offset + y * dstStride], &expected[y * 44], rowBytes),
                        0)
                        << form.name << ", offset " << offset << ", row " << y;
            }
        });
    });
}

TEST(WaveletLl, SeveralHostThreadsMayCallAtOnce) {
    Settings settings;
    settings.UseProcessors(3);
    ForBothMultiThreadForms([](const auto& form) {
        std::vector<std::vector<int>> images, expected, actual(4);
        for (int i = 0; i < 4; ++i) {
            const std::vector<uint8_t> noise = Noise(40 * 30, i);
            images.emplace_back(noise.begin(), noise.end());
            expected.push_back(LowBand(form, 40, 30, images[i], 10, 240));
        }
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&, i] {
                for (int round = 0; round < 10; ++round)
                    actual[i] = LowBand(form, 40, 30, images[i], 10, 240);
            });
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(actual, expected) << form.name;
    });
}

// Allocations of a call, its tasks among them, when nothing has to be made that is kept.
template <class Work> long LeastAllocations(Work work) {
    long least = std::numeric_limits<long>::max();
    for (int i = 0; i < 20; ++i) least = std::min(least, tqtest::AllocationsOf(work));
    return least;
}

TEST(WaveletLl, FewerRowsThanProcessorsAreOneRowTaskAndOneColumnTask) {
    Settings settings;
    ForBothMultiThreadForms([&](const auto& form) {
        std::vector<uint8_t> src(128 * 16), dst(128 * 16);
        const auto allocations = [&](unsigned processors, unsigned width, unsigned height) {
            settings.UseProcessors(processors);
            return LeastAllocations(
                [&] { form.function(width, height, 128, src.data(), 128, dst.data(), 0, 255); });
        };
        const long oneAndOne = allocations(4, 64, 3);
        EXPECT_EQ(allocations(3, 64, 2), oneAndOne) << form.name;
        EXPECT_EQ(allocations(16, 64, 15), oneAndOne) << form.name;
        const long fourAndFour = allocations(4, 64, 16);
        EXPECT_GE(fourAndFour, oneAndOne + 6) << form.name;
        EXPECT_EQ(allocations(4, 64, 4), fourAndFour) << form.name;
        // Three columns of results for four processors: four row tasks, one column task.
        const long fourAndOne = allocations(4, 6, 16);
        EXPECT_LT(fourAndOne, fourAndFour) << form.name;
        EXPECT_GT(fourAndOne, oneAndOne) << form.name;
    });
}

}  // namespace
