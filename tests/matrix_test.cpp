// Matrix change between 601, 709 and 2020: values known by hand, every form against its reference,
// bands, tasks.

#include <gtest/gtest.h>
#include <tqipl/planes.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "color/matrix_tasks.h"
#include "reference/matrix_reference.h"
#include "support/allocation_counter.h"
#include "support/block_stage.h"
#include "support/image_stage.h"
#include "support/pixel_forms.h"
#include "support/settings.h"

namespace {

using Bytes = std::vector<uint8_t>;
using tqref::YuvMatrix;
using tqtest::BlockStage;
using tqtest::SameElements;
using tqtest::Settings;

using InPlace = void (*)(TQ_COLOR_FORMAT, int, int, int, unsigned char*);
using Between = void (*)(int, int, TQ_COLOR_FORMAT, int, unsigned char*, TQ_COLOR_FORMAT, int,
                         unsigned char*);
using Planar = void (*)(int, int, int, unsigned char*, int, unsigned char*, int, unsigned char*);

template <class Task>
int RunPackedTask(TQ_COLOR_FORMAT format, int width, int height, int stride, uint8_t* image) {
    auto task = std::make_unique<Task>();
    task->m_nFormat = format;
    task->m_nWidth = width;
    task->m_nHeight = height;
    task->m_nStride = stride;
    task->m_pImage = image;
    const std::unique_ptr<CTQIPLTaskBase> base = std::move(task);
    return base->Run();
}
template <class Task>
int RunPlanarTask(int width, int height, int strideY, uint8_t* y, int strideU, uint8_t* u,
                  int strideV, uint8_t* v) {
    auto task = std::make_unique<Task>();
    task->m_nWidth = width;
    task->m_nHeight = height;
    task->m_nYStride = strideY;
    task->m_nUStride = strideU;
    task->m_nVStride = strideV;
    task->m_pY = y;
    task->m_pU = u;
    task->m_pV = v;
    const std::unique_ptr<CTQIPLTaskBase> base = std::move(task);
    return base->Run();
}

struct Change {
    const char* name;
    const YuvMatrix* matrix;
    InPlace plain, multiThread;
    Planar planar, planarMultiThread;
    int (*packedTask)(TQ_COLOR_FORMAT, int, int, int, uint8_t*);
    int (*planarTask)(int, int, int, uint8_t*, int, uint8_t*, int, uint8_t*);
};
constexpr Change k601x709 = {"601x709",
                             &tqref::k601x709,
                             IPL_YUV601x709,
                             IPL_YUV601x709MultiThread,
                             IPL_YUVP_422_601x709,
                             IPL_YUVP_422_601x709MultiThread,
                             RunPackedTask<CYUV601To709Task>,
                             RunPlanarTask<CColor601x709Task_YUVP422>};
constexpr Change k709x601 = {"709x601",
                             &tqref::k709x601,
                             IPL_YUV709x601,
                             IPL_YUV709x601MultiThread,
                             IPL_YUVP_422_709x601,
                             IPL_YUVP_422_709x601MultiThread,
                             RunPackedTask<CYUV709To601Task>,
                             RunPlanarTask<CColor709x601Task_YUVP422>};
constexpr Change k2020x709 = {"2020x709",
                              &tqref::k2020x709,
                              IPL_YUV2020x709,
                              IPL_YUV2020x709MultiThread,
                              IPL_YUVP_422_2020x709,
                              IPL_YUVP_422_2020x709MultiThread,
                              RunPackedTask<CYUV2020To709Task>,
                              RunPlanarTask<CColor2020x709Task_YUVP422>};
constexpr Change k709x2020 = {"709x2020",
                              &tqref::k709x2020,
                              IPL_YUV709x2020,
                              IPL_YUV709x2020MultiThread,
                              IPL_YUVP_422_709x2020,
                              IPL_YUVP_422_709x2020MultiThread,
                              RunPackedTask<CYUV709To2020Task>,
                              RunPlanarTask<CColor709x2020Task_YUVP422>};
constexpr const Change* kChanges[] = {&k601x709, &k709x601, &k2020x709, &k709x2020};

struct TwoImages {
    const char* name;
    const YuvMatrix* matrix;
    Between function;
};
constexpr TwoImages kTwoImages[] = {{"601x709", &tqref::k601x709, IPL_YUV601x709},
                                    {"709x601", &tqref::k709x601, IPL_YUV709x601}};

constexpr TQ_COLOR_FORMAT kMatrixFormats[] = {TQ_COLOR_AYUV, TQ_COLOR_YUYV, TQ_COLOR_UYVY};

int RowBytes(TQ_COLOR_FORMAT format, int width) {
    return format == TQ_COLOR_AYUV ? 4 * width : (width + 1) / 2 * 4;
}

// One pixel of V, U, Y, alpha.
Bytes Ayuv(const Change& change, Bytes pixel) {
    change.plain(TQ_COLOR_AYUV, 1, 1, 4, pixel.data());
    return pixel;
}
Bytes Packed(const Change& change, TQ_COLOR_FORMAT format, Bytes pair) {
    change.plain(format, 2, 1, 4, pair.data());
    return pair;
}
// Y0, Y1, U, V.
Bytes PlanarPair(const Change& change, Bytes pair) {
    change.planar(2, 1, 2, &pair[0], 1, &pair[2], 1, &pair[3]);
    return pair;
}

TEST(Matrix, BlackStaysBlackInAllMatrices) {
    for (const Change* change : kChanges) {
        EXPECT_EQ(Ayuv(*change, {128, 128, 16, 7}), (Bytes{128, 128, 16, 7})) << change->name;
        EXPECT_EQ(Packed(*change, TQ_COLOR_YUYV, {16, 128, 16, 128}), (Bytes{16, 128, 16, 128}));
        EXPECT_EQ(Packed(*change, TQ_COLOR_UYVY, {128, 16, 128, 16}), (Bytes{128, 16, 128, 16}));
        EXPECT_EQ(PlanarPair(*change, {16, 16, 128, 128}), (Bytes{16, 16, 128, 128}));
    }
}

// Y 100, U 90, V 200: offsets 84, -38 and 72.
TEST(Matrix, OnePixelByHand) {
    // 299672 and a half of 4096: 73.66. -125070: -30.03. 290742: 71.48; all rounded down.
    EXPECT_EQ(Ayuv(k601x709, {200, 90, 100, 7}), (Bytes{199, 97, 89, 7}));
    // 386106: 94.76. -186294: -44.98. 301112: 74.01.
    EXPECT_EQ(Ayuv(k709x601, {200, 90, 100, 7}), (Bytes{202, 83, 110, 7}));
    // 313968: 77.15. -141280: -33.99. 295652: 72.68.
    EXPECT_EQ(Ayuv(k2020x709, {200, 90, 100, 7}), (Bytes{200, 94, 93, 7}));
    // 346648: 85.13. -154888: -37.31. 293164: 72.07.
    EXPECT_EQ(Ayuv(k709x2020, {200, 90, 100, 7}), (Bytes{200, 90, 101, 7}));
}

// Y1 is 51: offset 35. The mean of the lumas is 119 / 2 = 59.
TEST(Matrix, OnePairByHand) {
    // Luma of Y1: 98968 and a half: 24.66. U of the mean: -124970 and a half: -30.01.
    EXPECT_EQ(Packed(k601x709, TQ_COLOR_YUYV, {100, 90, 51, 200}), (Bytes{89, 97, 40, 199}));
    EXPECT_EQ(Packed(k601x709, TQ_COLOR_UYVY, {90, 100, 200, 51}), (Bytes{97, 89, 199, 40}));
    EXPECT_EQ(PlanarPair(k601x709, {100, 51, 90, 200}), (Bytes{89, 40, 97, 199}));
}

TEST(Matrix, TheBrightestColoursAreLimited) {
    // Luma 745152: 182.4. U 519140 and V 504112: 127.2 and 123.6 above the middle.
    EXPECT_EQ(Ayuv(k601x709, {240, 240, 235, 0}), (Bytes{240, 240, 198, 0}));
}

TEST(Matrix, FullRangeComesOutLimited) {
    for (const Change* change : kChanges) {
        EXPECT_EQ(Ayuv(*change, {128, 128, 0, 9})[2], 16) << change->name;
        EXPECT_EQ(Ayuv(*change, {128, 128, 15, 9})[2], 16) << change->name;
        EXPECT_EQ(Ayuv(*change, {128, 128, 17, 9})[2], 17) << change->name;
        EXPECT_EQ(Ayuv(*change, {128, 128, 234, 9})[2], 234) << change->name;
        EXPECT_EQ(Ayuv(*change, {128, 128, 236, 9})[2], 235) << change->name;
        EXPECT_EQ(Ayuv(*change, {128, 128, 255, 9})[2], 235) << change->name;
        EXPECT_EQ(Ayuv(*change, {128, 0, 100, 9})[1], 16) << change->name;
        EXPECT_EQ(Ayuv(*change, {128, 255, 100, 9})[1], 240) << change->name;
        EXPECT_EQ(Ayuv(*change, {0, 128, 100, 9})[0], 16) << change->name;
        EXPECT_EQ(Ayuv(*change, {255, 128, 100, 9})[0], 240) << change->name;
    }
}

TEST(Matrix, From709To2020VHasNoInfluenceOnLumaAndU) {
    for (int v = 0; v < 256; ++v) {
        const Bytes ayuv = Ayuv(k709x2020, {static_cast<uint8_t>(v), 90, 100, 7});
        EXPECT_EQ(ayuv[2], 101);
        EXPECT_EQ(ayuv[1], 90);
    }
    // Backwards it has: 341328 + 380 * 112, a half more: 94.2; and less 380 * 112: 73.4.
    EXPECT_EQ(Ayuv(k2020x709, {16, 90, 100, 7})[2], 110);
    EXPECT_EQ(Ayuv(k2020x709, {240, 90, 100, 7})[2], 89);
    // And Y has none on the chroma of the two matrices with 2020.
    for (const Change* change : {&k2020x709, &k709x2020})
        for (int y = 0; y < 256; ++y) {
            const Bytes ayuv = Ayuv(*change, {200, 90, static_cast<uint8_t>(y), 7});
            EXPECT_EQ(ayuv[0], 200);
            EXPECT_EQ(ayuv[1], change == &k2020x709 ? 94 : 90);
        }
}

TEST(Matrix, AlphaIsNotTouched) {
    for (const Change* change : kChanges)
        for (int alpha = 0; alpha < 256; ++alpha)
            EXPECT_EQ(Ayuv(*change, {1, 2, 3, static_cast<uint8_t>(alpha)})[3], alpha);
}

TEST(Matrix, TheMeanOfLumasIsTruncatedTowardsZero) {
    // Offsets 0 and -1, mean 0: U is -354306 and a half, -86.0005, so 128 - 87. A mean of -1 would
    // add 4 and give 42.
    EXPECT_EQ(Packed(k601x709, TQ_COLOR_YUYV, {16, 36, 15, 191})[1], 41);
    EXPECT_EQ(Packed(k601x709, TQ_COLOR_UYVY, {36, 16, 191, 15})[0], 41);
    EXPECT_EQ(PlanarPair(k601x709, {15, 16, 36, 191})[2], 41);
    // Offsets -2 and 0: a mean of -1.
    EXPECT_EQ(Packed(k601x709, TQ_COLOR_YUYV, {16, 36, 14, 191})[1], 42);
    EXPECT_EQ(Packed(k601x709, TQ_COLOR_UYVY, {36, 14, 191, 16})[0], 42);
    EXPECT_EQ(PlanarPair(k601x709, {14, 16, 36, 191})[2], 42);
}

TEST(Matrix, AnOddLastColumnStaysIn422AndAyuvConvertsIt) {
    for (const Change* change : kChanges)
        for (TQ_COLOR_FORMAT format : {TQ_COLOR_YUYV, TQ_COLOR_UYVY}) {
            Bytes image(8, 60);
            change->plain(format, 1, 2, 4, image.data());
            change->multiThread(format, 1, 2, 4, image.data());
            EXPECT_EQ(image, Bytes(8, 60)) << change->name;
            change->plain(format, 3, 1, 8, image.data());
            EXPECT_NE(Bytes(image.begin(), image.begin() + 4), Bytes(4, 60)) << change->name;
            EXPECT_EQ(Bytes(image.begin() + 4, image.end()), Bytes(4, 60)) << change->name;
            Bytes y(3, 60), u(2, 60), v(2, 60);
            change->planar(1, 1, 3, y.data(), 2, u.data(), 2, v.data());
            EXPECT_EQ(y, Bytes(3, 60));
            change->planar(3, 1, 3, y.data(), 2, u.data(), 2, v.data());
            EXPECT_EQ(y[2], 60);
            EXPECT_EQ(u[1], 60);
            EXPECT_EQ(v[1], 60);
            EXPECT_NE(y[0], 60);
        }
    EXPECT_EQ(Ayuv(k601x709, {200, 90, 100, 7}), (Bytes{199, 97, 89, 7}));
}

Bytes Two(Between function, TQ_COLOR_FORMAT srcFormat, Bytes src, TQ_COLOR_FORMAT dstFormat,
          size_t bytes, int width = 2) {
    Bytes dst(bytes, 99);
    function(width, 1, srcFormat, 0, src.data(), dstFormat, 0, dst.data());
    return dst;
}

TEST(Matrix, AyuvToAyuvBringsItsAlpha) {
    EXPECT_EQ(
        Two(IPL_YUV601x709, TQ_COLOR_AYUV, {200, 90, 100, 7, 240, 240, 235, 8}, TQ_COLOR_AYUV, 9),
        (Bytes{199, 97, 89, 7, 240, 240, 198, 8, 99}));
    EXPECT_EQ(Two(IPL_YUV709x601, TQ_COLOR_AYUV, {200, 90, 100, 7}, TQ_COLOR_AYUV, 5, 1),
              (Bytes{202, 83, 110, 7, 99}));
}

TEST(Matrix, AyuvToPairsAveragesChroma) {
    // U 80 and 100, V 190 and 211 (72.5 above the middle): the pair by hand above.
    const Bytes src = {190, 80, 100, 1, 211, 100, 51, 2};
    EXPECT_EQ(Two(IPL_YUV601x709, TQ_COLOR_AYUV, src, TQ_COLOR_YUYV, 5),
              (Bytes{89, 97, 40, 199, 99}));
    EXPECT_EQ(Two(IPL_YUV601x709, TQ_COLOR_AYUV, src, TQ_COLOR_UYVY, 5),
              (Bytes{97, 89, 199, 40, 99}));
    // Halves go towards the middle from below too: 127 and 128 are 0.
    EXPECT_EQ(
        Two(IPL_YUV601x709, TQ_COLOR_AYUV, {127, 127, 16, 0, 128, 128, 16, 0}, TQ_COLOR_YUYV, 4),
        (Bytes{16, 128, 16, 128}));
    EXPECT_EQ(
        Two(IPL_YUV709x601, TQ_COLOR_AYUV, {128, 129, 16, 0, 129, 128, 16, 0}, TQ_COLOR_UYVY, 4),
        (Bytes{128, 16, 128, 16}));
}

TEST(Matrix, PairsToAyuvGiveEachPixelTheChromaOfItsOwnLuma) {
    // Mean 59 gives U -30.01; Y0 alone -30.03; Y1: -140 - 158574 + 33840 and a half, -29.98.
    const Bytes expected = {199, 97, 89, 255, 199, 98, 40, 255, 99};
    EXPECT_EQ(Two(IPL_YUV601x709, TQ_COLOR_YUYV, {100, 90, 51, 200}, TQ_COLOR_AYUV, 9), expected);
    EXPECT_EQ(Two(IPL_YUV601x709, TQ_COLOR_UYVY, {90, 100, 200, 51}, TQ_COLOR_AYUV, 9), expected);
}

TEST(Matrix, UyvyToPairsIsAsInPlace) {
    EXPECT_EQ(Two(IPL_YUV601x709, TQ_COLOR_UYVY, {90, 100, 200, 51}, TQ_COLOR_UYVY, 5),
              (Bytes{97, 89, 199, 40, 99}));
    EXPECT_EQ(Two(IPL_YUV601x709, TQ_COLOR_UYVY, {90, 100, 200, 51}, TQ_COLOR_YUYV, 5),
              (Bytes{89, 97, 40, 199, 99}));
}

TEST(Matrix, YuyvToPairsDarkensTheFirstPixel) {
    for (const TwoImages& change : kTwoImages) {
        // Offsets 0 and 112.
        EXPECT_EQ(Two(change.function, TQ_COLOR_YUYV, {128, 128, 128, 128}, TQ_COLOR_YUYV, 4),
                  (Bytes{16, 128, 128, 128}))
            << change.name;
        EXPECT_EQ(Two(change.function, TQ_COLOR_YUYV, {128, 128, 128, 128}, TQ_COLOR_UYVY, 4),
                  (Bytes{128, 16, 128, 128}))
            << change.name;
        EXPECT_EQ(Two(change.function, TQ_COLOR_UYVY, {128, 128, 128, 128}, TQ_COLOR_YUYV, 4),
                  (Bytes{128, 128, 128, 128}))
            << change.name;
        EXPECT_EQ(Two(change.function, TQ_COLOR_YUYV, {228, 128, 28, 128}, TQ_COLOR_YUYV, 4),
                  (Bytes{116, 128, 28, 128}))
            << change.name;
    }
    // In place it is not darker.
    EXPECT_EQ(Packed(k601x709, TQ_COLOR_YUYV, {128, 128, 128, 128}), Bytes(4, 128));
    // The mean has the offset too: 15 - 128 + 16 + 112 - 16 = -1 from Y0 15 and Y1 128, so 0.
    EXPECT_EQ(Two(IPL_YUV601x709, TQ_COLOR_YUYV, {15, 36, 128, 191}, TQ_COLOR_YUYV, 4)[1], 41);
    // Y0 14: offsets -114 and 112, mean -1. With an offset of 16 it would be 55, and U 41.
    EXPECT_EQ(Two(IPL_YUV601x709, TQ_COLOR_YUYV, {14, 36, 128, 191}, TQ_COLOR_YUYV, 4)[1], 42);
}

TEST(Matrix, AnOddLastColumnOfTwoImagesStays) {
    for (TQ_COLOR_FORMAT from : kMatrixFormats)
        for (TQ_COLOR_FORMAT to : kMatrixFormats) {
            const Bytes one = Two(IPL_YUV601x709, from, Bytes(16, 60), to, 16, 1);
            const Bytes three = Two(IPL_YUV601x709, from, Bytes(16, 60), to, 16, 3);
            if (from == TQ_COLOR_AYUV && to == TQ_COLOR_AYUV) {
                EXPECT_NE(one[0], 99);
                EXPECT_EQ(Bytes(one.begin() + 4, one.end()), Bytes(12, 99));
                continue;
            }
            const int pair = to == TQ_COLOR_AYUV ? 8 : 4;
            EXPECT_EQ(one, Bytes(16, 99));
            EXPECT_NE(three[pair - 1], 99);
            EXPECT_EQ(Bytes(three.begin() + pair, three.end()), Bytes(16 - pair, 99));
        }
}

TEST(Matrix, OtherFormatsDoNothing) {
    Settings settings;
    BlockStage stage(2, 256, 1);
    stage.Model([](tqref::Bytes*) {});
    for (TQ_COLOR_FORMAT format : tqtest::kFormats) {
        const bool known = tqref::IsMatrixFormat(format);
        for (const Change* change : kChanges)
            for (unsigned processors : {1u, 2u, 8u}) {
                settings.UseProcessors(processors);
                if (known) continue;
                EXPECT_TRUE(stage.Check([&](uint8_t* const* image) {
                    change->plain(format, 4, 2, 16, image[0]);
                    change->multiThread(format, 4, 2, 16, image[0]);
                    change->packedTask(format, 4, 2, 16, image[0]);
                })) << change->name
                    << ", " << format;
            }
        for (const TwoImages& change : kTwoImages)
            for (TQ_COLOR_FORMAT other : tqtest::kFormats) {
                if (known && tqref::IsMatrixFormat(other)) continue;
                EXPECT_TRUE(stage.Check([&](uint8_t* const* image) {
                    change.function(4, 2, format, 16, image[0], other, 16, image[1]);
                })) << change.name
                    << ", " << format << " to " << other;
            }
    }
}

constexpr std::pair<int, int> kEmptySizes[] = {{0, 1},  {0, 9},  {4, 0},  {4, -1},
                                               {4, -9}, {-1, 1}, {-4, 3}, {-70, -2}};

TEST(Matrix, SizesBelowOneTouchNothing) {
    Settings settings;
    BlockStage stage(3, 256, 2);
    stage.Model([](tqref::Bytes*) {});
    for (auto size : kEmptySizes) {
        const int width = size.first, height = size.second;
        for (const Change* change : kChanges)
            for (unsigned processors : {1u, 2u, 8u}) {
                settings.UseProcessors(processors);
                EXPECT_TRUE(stage.Check([&, w = width, h = height](uint8_t* const* image) {
                    for (TQ_COLOR_FORMAT format : kMatrixFormats) {
                        change->plain(format, w, h, 16, image[0]);
                        change->multiThread(format, w, h, 16, image[0]);
                    }
                    for (Planar planar : {change->planar, change->planarMultiThread})
                        planar(w, h, 4, image[0], 2, image[1], 2, image[2]);
                })) << change->name
                    << ", " << width << " x " << height;
                if (height > 0) continue;
                for (TQ_COLOR_FORMAT format : kMatrixFormats) {
                    change->plain(format, width, height, 16, nullptr);
                    change->multiThread(format, width, height, 16, nullptr);
                }
                change->planar(width, height, 4, nullptr, 2, nullptr, 2, nullptr);
                change->planarMultiThread(width, height, 4, nullptr, 2, nullptr, 2, nullptr);
            }
        for (const TwoImages& change : kTwoImages)
            for (TQ_COLOR_FORMAT from : kMatrixFormats)
                for (TQ_COLOR_FORMAT to : kMatrixFormats)
                    EXPECT_TRUE(stage.Check([&, w = width, h = height](uint8_t* const* image) {
                        change.function(w, h, from, 16, image[0], to, 16, image[1]);
                    })) << change.name
                        << ", " << width << " x " << height;
    }
}

TEST(Matrix, InPlaceFormsEqualTheirReferenceAtEveryLevel) {
    Settings settings;
    BlockStage stage(1, 2048, 3);
    for (const Change* change : kChanges)
        for (TQ_COLOR_FORMAT format : kMatrixFormats)
            for (int width = 1; width <= 70; ++width)
                for (int height = 1; height <= 5; ++height) {
                    const int row = RowBytes(format, width) + (width + height) % 4;
                    const int stride = height % 2 == 0 ? row : -row;
                    stage.Model([&](tqref::Bytes* image) {
                        tqref::ChangeInPlace(*change->matrix, format, width, height, stride,
                                             image[0]);
                    });
                    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                        settings.Use(level);
                        ASSERT_TRUE(stage.Check([&](uint8_t* const* image) {
                            change->plain(format, width, height, stride, image[0]);
                        })) << change->name
                            << ", format " << format << ", " << width << " x " << height
                            << ", level " << tq::IsaLevelName(level);
                    }
                }
}

// Paddings of the three planes, some of them upwards.
struct PlanarStrides {
    int y, u, v;
};
PlanarStrides StridesFor(int width, int variant) {
    const int y = width + variant % 3, u = width / 2 + variant % 4, v = width / 2 + variant % 2;
    return {variant % 2 == 0 ? y : -y, variant % 3 == 0 ? u : -u, variant % 5 == 0 ? -v : v};
}

TEST(Matrix, PlanarFormsEqualTheirReferenceAtEveryLevel) {
    Settings settings;
    BlockStage stage(3, 1024, 4);
    for (const Change* change : kChanges)
        for (int width = 1; width <= 70; ++width)
            for (int height = 1; height <= 5; ++height) {
                const PlanarStrides stride = StridesFor(width, width + height);
                stage.Model([&](tqref::Bytes* image) {
                    tqref::ChangePlanes(*change->matrix, width, height, stride.y, image[0],
                                        stride.u, image[1], stride.v, image[2]);
                });
                for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                    settings.Use(level);
                    ASSERT_TRUE(stage.Check([&](uint8_t* const* image) {
                        change->planar(width, height, stride.y, image[0], stride.u, image[1],
                                       stride.v, image[2]);
                    })) << change->name
                        << ", " << width << " x " << height << ", level "
                        << tq::IsaLevelName(level);
                }
            }
}

TEST(Matrix, TwoImageFormsEqualTheirReferenceAtEveryLevel) {
    Settings settings;
    BlockStage stage(2, 2048, 5);
    for (const TwoImages& change : kTwoImages)
        for (TQ_COLOR_FORMAT from : kMatrixFormats)
            for (TQ_COLOR_FORMAT to : kMatrixFormats)
                for (int width = 1; width <= 40; ++width)
                    for (int height = 1; height <= 5; ++height) {
                        const int srcRow = RowBytes(from, width) + width % 3;
                        const int dstRow = RowBytes(to, width) + (width + height) % 4;
                        const int srcStride = height % 2 == 0 ? srcRow : -srcRow;
                        const int dstStride = height % 3 == 0 ? -dstRow : dstRow;
                        stage.Model([&](tqref::Bytes* image) {
                            tqref::ChangeBetween(*change.matrix, width, height, from, srcStride,
                                                 image[0], to, dstStride, image[1]);
                        });
                        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                            settings.Use(level);
                            ASSERT_TRUE(stage.Check([&](uint8_t* const* image) {
                                change.function(width, height, from, srcStride, image[0], to,
                                                dstStride, image[1]);
                            })) << change.name
                                << ", " << from << " to " << to << ", " << width << " x " << height
                                << ", level " << tq::IsaLevelName(level);
                        }
                    }
}

TEST(Matrix, OneImageAsBothWithEqualFormatsEqualsTheReference) {
    Settings settings;
    BlockStage stage(1, 2048, 6);
    for (const TwoImages& change : kTwoImages)
        for (TQ_COLOR_FORMAT from : kMatrixFormats)
            for (TQ_COLOR_FORMAT to : kMatrixFormats) {
                // Pairs may be turned in place too, step by step.
                if ((from == TQ_COLOR_AYUV) != (to == TQ_COLOR_AYUV)) continue;
                for (int width = 1; width <= 40; ++width)
                    for (int height : {1, 3}) {
                        const int stride = RowBytes(from, width) + width % 3;
                        stage.Model([&](tqref::Bytes* image) {
                            tqref::ChangeBetween(*change.matrix, width, height, from, stride,
                                                 image[0], to, stride, image[0]);
                        });
                        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                            settings.Use(level);
                            ASSERT_TRUE(stage.Check([&](uint8_t* const* image) {
                                change.function(width, height, from, stride, image[0], to, stride,
                                                image[0]);
                            })) << change.name
                                << ", " << from << " to " << to << ", " << width << " x " << height
                                << ", level " << tq::IsaLevelName(level);
                        }
                    }
            }
}

TEST(Matrix, BandsEqualTheReferenceAtEveryProcessorCount) {
    Settings settings;
    BlockStage packed(1, 6144, 7), planar(3, 2048, 8);
    for (const Change* change : kChanges)
        for (int width : {1, 19, 36})
            for (int height : {-3, 0, 1, 2, 7, 8, 9, 16, 17, 33}) {
                for (TQ_COLOR_FORMAT format : kMatrixFormats) {
                    const int row = RowBytes(format, width) + 3;
                    const int stride = height % 2 == 0 ? row : -row;
                    packed.Model([&](tqref::Bytes* image) {
                        tqref::ChangeInPlace(*change->matrix, format, width, height, stride,
                                             image[0]);
                    });
                    for (unsigned processors = 1; processors <= 16; ++processors) {
                        settings.UseProcessors(processors);
                        ASSERT_TRUE(packed.CheckAtGuards([&](uint8_t* const* image) {
                            change->multiThread(format, width, height, stride, image[0]);
                        })) << change->name
                            << ", format " << format << ", " << width << " x " << height << ", "
                            << processors << " processors";
                    }
                }
                const PlanarStrides stride = StridesFor(width, width + height + 3);
                planar.Model([&](tqref::Bytes* image) {
                    tqref::ChangePlanes(*change->matrix, width, height, stride.y, image[0],
                                        stride.u, image[1], stride.v, image[2]);
                });
                for (unsigned processors = 1; processors <= 16; ++processors) {
                    settings.UseProcessors(processors);
                    ASSERT_TRUE(planar.CheckAtGuards([&](uint8_t* const* image) {
                        change->planarMultiThread(width, height, stride.y, image[0], stride.u,
                                                  image[1], stride.v, image[2]);
                    })) << change->name
                        << ", planar, " << width << " x " << height << ", " << processors
                        << " processors";
                }
            }
}

// All 2^24 pixels: V is the row.
constexpr int kColoursInARow = 1 << 16;
void EveryAyuv(int v, uint8_t* pixel) {
    for (int i = 0; i < kColoursInARow; ++i, pixel += 4) {
        pixel[0] = static_cast<uint8_t>(v);
        pixel[1] = static_cast<uint8_t>(i >> 8);
        pixel[2] = static_cast<uint8_t>(i);
        pixel[3] = static_cast<uint8_t>(i * 7 + v);
    }
}

TEST(Matrix, AyuvEqualsTheReferenceForEveryPixel) {
    Settings settings;
    Bytes source(4 * kColoursInARow);
    for (int v = 0; v < 256; ++v) {
        EveryAyuv(v, source.data());
        for (const Change* change : kChanges) {
            Bytes expected = source;
            tqref::ChangeInPlace(*change->matrix, TQ_COLOR_AYUV, kColoursInARow, 1, 0, expected);
            for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                settings.Use(level);
                Bytes image = source;
                change->plain(TQ_COLOR_AYUV, kColoursInARow, 1, 0, image.data());
                ASSERT_TRUE(SameElements(image.data(), expected.data(), expected.size()))
                    << change->name << ", V " << v << ", level " << tq::IsaLevelName(level);
            }
        }
    }
}

// Every U and every sum of two lumas, with a part of all V that is another one for each of them:
// what the chroma of a pair depends on. The lumas of a sum differ from pair to pair.
constexpr int kSums = 511;
Bytes DensePairs(int part, int parts) {
    Bytes pairs;
    for (int sum = 0; sum < kSums; ++sum)
        for (int u = 0; u < 256; ++u) {
            const int v = (part + (sum * 37 + u * 11) % parts + parts * ((sum ^ u) % 8)) & 255;
            const int least = sum < 256 ? 0 : sum - 255, most = sum < 256 ? sum : 255;
            const int y0 = least + (u * 29 + part) % (most - least + 1);
            for (int value : {y0, u, sum - y0, v}) pairs.push_back(static_cast<uint8_t>(value));
        }
    return pairs;
}

TEST(Matrix, PairsEqualTheReferenceForEverySumOfLumasAndEveryU) {
    Settings settings;
    constexpr int kParts = 32, kPairs = kSums * 256;
    for (int part = 0; part < kParts; ++part) {
        const Bytes yuyv = DensePairs(part, kParts);
        Bytes uyvy(yuyv.size()), y(2 * kPairs), u(kPairs), v(kPairs);
        for (int i = 0; i < kPairs; ++i) {
            const uint8_t* pair = &yuyv[4 * i];
            for (int k = 0; k < 4; ++k) uyvy[4 * i + k] = pair[k ^ 1];
            y[2 * i] = pair[0];
            y[2 * i + 1] = pair[2];
            u[i] = pair[1];
            v[i] = pair[3];
        }
        for (const Change* change : kChanges) {
            Bytes expected = yuyv;
            tqref::ChangeInPlace(*change->matrix, TQ_COLOR_YUYV, 2 * kPairs, 1, 0, expected);
            for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                settings.Use(level);
                Bytes inYuyv = yuyv, inUyvy = uyvy, inY = y, inU = u, inV = v;
                change->plain(TQ_COLOR_YUYV, 2 * kPairs, 1, 0, inYuyv.data());
                ASSERT_TRUE(SameElements(inYuyv.data(), expected.data(), expected.size()))
                    << change->name << ", level " << tq::IsaLevelName(level);
                change->plain(TQ_COLOR_UYVY, 2 * kPairs, 1, 0, inUyvy.data());
                change->planar(2 * kPairs, 1, 0, inY.data(), 0, inU.data(), 0, inV.data());
                for (int i = 0; i < kPairs; ++i) {
                    const uint8_t* pair = &expected[4 * i];
                    for (int k = 0; k < 4; ++k) ASSERT_EQ(inUyvy[4 * i + k], pair[k ^ 1]) << i;
                    ASSERT_TRUE(inY[2 * i] == pair[0] && inY[2 * i + 1] == pair[2] &&
                                inU[i] == pair[1] && inV[i] == pair[3])
                        << change->name << ", planar pair " << i;
                }
            }
        }
    }
}

TEST(Matrix, TwoImageFormsEqualTheReferenceForDensePairs) {
    Settings settings;
    constexpr int kParts = 8, kPairs = kSums * 256;
    for (int part = 0; part < kParts; ++part) {
        const Bytes pairs = DensePairs(part, kParts);
        for (const TwoImages& change : kTwoImages)
            for (TQ_COLOR_FORMAT from : kMatrixFormats)
                for (TQ_COLOR_FORMAT to : kMatrixFormats) {
                    // As AYUV the same bytes are half as many pairs.
                    const int width = from == TQ_COLOR_AYUV ? kPairs : 2 * kPairs;
                    Bytes expected(to == TQ_COLOR_AYUV ? 4 * width : 2 * width, 99), dst = expected;
                    Bytes src = pairs;
                    tqref::ChangeBetween(*change.matrix, width, 1, from, 0, src, to, 0, expected);
                    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                        settings.Use(level);
                        std::fill(dst.begin(), dst.end(), uint8_t{99});
                        change.function(width, 1, from, 0, src.data(), to, 0, dst.data());
                        ASSERT_TRUE(SameElements(dst.data(), expected.data(), expected.size()))
                            << change.name << ", " << from << " to " << to << ", level "
                            << tq::IsaLevelName(level);
                    }
                }
    }
}

TEST(Matrix, OneProcessorHasATaskTooAndThePlainFormsHaveNone) {
    Settings settings;
    settings.UseProcessors(1);
    for (const Change* change : kChanges) {
        Bytes image(64, 60);
        EXPECT_GT(tqtest::AllocationsOf(
                      [&] { change->multiThread(TQ_COLOR_AYUV, 4, 2, 16, image.data()); }),
                  0)
            << change->name;
        EXPECT_GT(tqtest::AllocationsOf([&] {
                      change->planarMultiThread(4, 2, 4, image.data(), 2, image.data() + 16, 2,
                                                image.data() + 32);
                  }),
                  0)
            << change->name;
        EXPECT_EQ(tqtest::AllocationsOf([&] {
                      change->plain(TQ_COLOR_AYUV, 4, 2, 16, image.data());
                      change->planar(4, 2, 4, image.data(), 2, image.data() + 16, 2,
                                     image.data() + 32);
                  }),
                  0)
            << change->name;
    }
}

TEST(Matrix, TasksDoThePlainFormsWork) {
    BlockStage stage(3, 512, 9);
    for (const Change* change : kChanges) {
        for (TQ_COLOR_FORMAT format : kMatrixFormats) {
            stage.Model([&](tqref::Bytes* image) {
                tqref::ChangeInPlace(*change->matrix, format, 21, 3, 91, image[0]);
            });
            EXPECT_TRUE(stage.Check([&](uint8_t* const* image) {
                EXPECT_EQ(change->packedTask(format, 21, 3, 91, image[0]), 1);
            })) << change->name;
        }
        stage.Model([&](tqref::Bytes* image) {
            tqref::ChangePlanes(*change->matrix, 21, 3, 23, image[0], -12, image[1], 14, image[2]);
        });
        EXPECT_TRUE(stage.Check([&](uint8_t* const* image) {
            EXPECT_EQ(change->planarTask(21, 3, 23, image[0], -12, image[1], 14, image[2]), 1);
        })) << change->name;
    }
}

// A host's other thread counts alpha up while the pixels change: no count is lost.
TEST(Matrix, AyuvInPlaceDoesNotStoreAlphaNotEvenAsItWas) {
    tqtest::Settings settings;
    constexpr int kWidth = 37;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        std::vector<uint8_t> image(4 * kWidth, 100);
        std::atomic<bool> stop{false};
        int lost = 0;
        std::thread host([&] {
            uint8_t value = 100;
            while (!stop) {
                for (int x = 0; x < kWidth; ++x) {
                    std::atomic_ref<uint8_t> alpha(image[4 * x + 3]);
                    lost += alpha.load(std::memory_order_relaxed) != value;
                    alpha.store(static_cast<uint8_t>(value + 1), std::memory_order_relaxed);
                }
                ++value;
            }
        });
        for (int round = 0; round < 20000; ++round)
            IPL_YUV601x709(TQ_COLOR_AYUV, kWidth, 1, 4 * kWidth, image.data());
        stop = true;
        host.join();
        EXPECT_EQ(lost, 0) << tq::IsaLevelName(level);
    }
}

}  // namespace
