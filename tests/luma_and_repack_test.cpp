// Luma of packed 4:2:2, and RGB to BGRA and back: values known by hand, every form against its
// reference, bands, tasks.

#include <gtest/gtest.h>
#include <tqipl/color.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "color/luma_and_repack_tasks.h"
#include "reference/luma_and_repack_reference.h"
#include "support/allocation_counter.h"
#include "support/block_stage.h"
#include "support/pixel_forms.h"
#include "support/settings.h"

namespace {

using Bytes = std::vector<uint8_t>;
using tqtest::BlockStage;
using tqtest::RunTaskInMode;
using tqtest::Settings;

using LumaFunction = void (*)(int, int, int, unsigned char*, int, unsigned char*, int);

struct LumaForm {
    const char* name;
    LumaFunction function;
    int mode;
    int lumaByte;
    void (*reference)(unsigned processors, int width, int height, int srcStride, tqref::Bytes& src,
                      int dstStride, tqref::Bytes& dst, int half);
};
constexpr LumaForm kYuyv = {"IPL_YUYV_To_YMultiThread", IPL_YUYV_To_YMultiThread, 0,
                            tqref::kYuyvLuma, tqref::LumaOfPacked422<tqref::kYuyvLuma>};
constexpr LumaForm kUyvy = {"IPL_UYVY_To_YMultiThread", IPL_UYVY_To_YMultiThread, 1,
                            tqref::kUyvyLuma, tqref::LumaOfPacked422<tqref::kUyvyLuma>};
constexpr const LumaForm* kLumaForms[] = {&kYuyv, &kUyvy};

// Lumas 1, 2, 3 and so on, and chroma 200 and more, in the form's layout.
Bytes Packed422(const LumaForm& form, int lumas) {
    Bytes src;
    for (int i = 0; i < lumas; ++i) {
        const auto luma = static_cast<uint8_t>(i + 1), chroma = static_cast<uint8_t>(200 + i);
        src.insert(src.end(),
                   {form.lumaByte == 0 ? luma : chroma, form.lumaByte == 0 ? chroma : luma});
    }
    return src;
}

// Lumas of a dense image, in rows of a byte more than its width.
Bytes Luma(const LumaForm& form, int width, int height, int half) {
    Bytes src = Packed422(form, width * height), dst((width + 1) * height, 99);
    form.function(width, height, 2 * width, src.data(), width + 1, dst.data(), half);
    return dst;
}

TEST(LumaAndRepack, FullSizeTakesEveryLuma) {
    Settings settings;
    settings.UseProcessors(2);
    for (const LumaForm* form : kLumaForms) {
        EXPECT_EQ(Luma(*form, 4, 2, 0), (Bytes{1, 2, 3, 4, 99, 5, 6, 7, 8, 99})) << form->name;
        // Of an odd last pixel too.
        EXPECT_EQ(Luma(*form, 3, 2, 0), (Bytes{1, 2, 3, 99, 4, 5, 6, 99})) << form->name;
        EXPECT_EQ(Luma(*form, 1, 2, 0), (Bytes{1, 99, 2, 99})) << form->name;
    }
}

TEST(LumaAndRepack, BytesOfAPairStandInTheOrderOfTheFormat) {
    Settings settings;
    for (unsigned processors : {1u, 2u}) {
        settings.UseProcessors(processors);
        Bytes src = {10, 20, 30, 40, 50, 60, 70, 80}, dst(3, 99);
        IPL_YUYV_To_YMultiThread(4, 2, 8, src.data(), 9, dst.data(), 1);
        EXPECT_EQ(dst, (Bytes{10, 50, 99}));
        IPL_UYVY_To_YMultiThread(4, 2, 8, src.data(), 9, dst.data(), 1);
        EXPECT_EQ(dst, (Bytes{20, 60, 99}));
    }
}

TEST(LumaAndRepack, HalfSizeTakesTheFirstLumaOfPairsOfEverySecondRow) {
    Settings settings;
    for (unsigned processors : {1u, 2u, 3u})
        for (int half : {1, 2, -1, 256, INT32_MIN}) {
            settings.UseProcessors(processors);
            for (const LumaForm* form : kLumaForms) {
                // 4 x 4: rows begin with 1, 5, 9 and 13; rows of the destination do not double.
                EXPECT_EQ(Luma(*form, 4, 4, half), (Bytes{1,  3,  99, 99, 99, 9,  11, 99, 99, 99,
                                                          99, 99, 99, 99, 99, 99, 99, 99, 99, 99}))
                    << form->name << ", half " << half;
                // 4 x 3: the last row is not used.
                EXPECT_EQ(Luma(*form, 4, 3, half),
                          (Bytes{1, 3, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99}))
                    << form->name << ", half " << half;
                // 5 x 2: the last pixel is ignored.
                EXPECT_EQ(Luma(*form, 5, 2, half),
                          (Bytes{1, 3, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99}))
                    << form->name << ", half " << half;
                EXPECT_EQ(Luma(*form, 1, 2, half), (Bytes{99, 99, 99, 99})) << form->name;
                EXPECT_EQ(Luma(*form, 4, 1, half), Bytes(5, 99)) << form->name;
            }
        }
}

TEST(LumaAndRepack, OneProcessorGivesHalfTheWidthAtFullSizeToo) {
    Settings settings;
    settings.UseProcessors(1);
    for (const LumaForm* form : kLumaForms) {
        // Every row, the first luma of every pair.
        EXPECT_EQ(Luma(*form, 4, 3, 0),
                  (Bytes{1, 3, 99, 99, 99, 5, 7, 99, 99, 99, 9, 11, 99, 99, 99}))
            << form->name;
        EXPECT_EQ(Luma(*form, 5, 1, 0), (Bytes{1, 3, 99, 99, 99, 99})) << form->name;
        EXPECT_EQ(Luma(*form, 1, 1, 0), (Bytes{99, 99})) << form->name;
        Bytes src = Packed422(*form, 16), dst(16);
        EXPECT_EQ(
            tqtest::AllocationsOf([&] { form->function(4, 4, 8, src.data(), 4, dst.data(), 0); }),
            0)
            << form->name;
    }
}

TEST(LumaAndRepack, LumaOfSizesBelowOneTouchesNothing) {
    Settings settings;
    BlockStage stage(2, 256, 1);
    stage.Model([](tqref::Bytes*) {});
    for (const LumaForm* form : kLumaForms)
        for (unsigned processors : {1u, 2u, 8u}) {
            settings.UseProcessors(processors);
            for (int half : {0, 1})
                for (auto size : {std::pair{0, 1},
                                  {0, 20},
                                  {4, 0},
                                  {4, -1},
                                  {4, -9},
                                  {-1, 1},
                                  {-4, 3},
                                  {-70, -2}}) {
                    const int width = size.first, height = size.second;
                    EXPECT_TRUE(stage.Check([&](uint8_t* const* image) {
                        form->function(width, height, 16, image[0], 16, image[1], half);
                    })) << form->name
                        << ", " << width << " x " << height << ", " << processors << " processors";
                    if (height < 1) form->function(width, height, 16, nullptr, 16, nullptr, half);
                }
            // One row, or one column, has no half.
            for (auto size : {std::pair{4, 1}, {1, 2}, {1, 20}, {1, 1}}) {
                const int width = size.first, height = size.second;
                EXPECT_TRUE(stage.Check([&](uint8_t* const* image) {
                    form->function(width, height, 16, image[0], 16, image[1], 1);
                })) << form->name;
            }
        }
}

// Every level and processor count, full and half, padded and bottom-up rows.
void ExpectLumaEqualsReference(const std::vector<int>& widths, const std::vector<int>& heights,
                               const std::vector<unsigned>& processorCounts, bool everyLevel,
                               int room) {
    Settings settings;
    std::vector<tq::IsaLevel> levels = tqtest::RunnableIsaLevels();
    if (!everyLevel) levels = {levels.back()};
    BlockStage stage(2, room, 2);
    for (const LumaForm* form : kLumaForms)
        for (int width : widths)
            for (int height : heights)
                for (int half : {0, 1})
                    for (auto strides : {std::pair{2 * width, width},
                                         {2 * width + 3, -width - 1},
                                         {-2 * width - 1, width + 2}}) {
                        const int srcStride = strides.first, dstStride = strides.second;
                        for (unsigned processors : processorCounts) {
                            settings.UseProcessors(processors);
                            stage.Model([&](tqref::Bytes* image) {
                                form->reference(processors, width, height, srcStride, image[0],
                                                dstStride, image[1], half);
                            });
                            for (tq::IsaLevel level : levels) {
                                settings.Use(level);
                                auto call = [&](uint8_t* const* image) {
                                    form->function(width, height, srcStride, image[0], dstStride,
                                                   image[1], half);
                                };
                                ASSERT_TRUE(everyLevel ? stage.Check(call)
                                                       : stage.CheckAtGuards(call))
                                    << form->name << ", " << width << " x " << height << ", half "
                                    << half << ", strides " << srcStride << " and " << dstStride
                                    << ", " << processors << " processors, level "
                                    << tq::IsaLevelName(level);
                            }
                        }
                    }
}

TEST(LumaAndRepack, LumaEqualsTheReferenceAtEveryLevel) {
    std::vector<int> widths;
    for (int width = 1; width <= 70; ++width) widths.push_back(width);
    ExpectLumaEqualsReference(widths, {1, 2, 3, 4, 5}, {1, 2}, true, 2048);
}

TEST(LumaAndRepack, LumaEqualsTheReferenceAtEveryProcessorCount) {
    std::vector<unsigned> processors;
    for (unsigned count = 1; count <= 16; ++count) processors.push_back(count);
    ExpectLumaEqualsReference({1, 19, 36}, {0, 1, 2, 7, 8, 9, 16, 17, 33}, processors, false, 6144);
}

using Function = void (*)(int, int, int, unsigned char*, int, unsigned char*);

TEST(LumaAndRepack, RgbToBgraSwapsAndWritesAnAlphaOf0) {
    Settings settings;
    for (unsigned processors : {1u, 2u, 3u}) {
        settings.UseProcessors(processors);
        for (Function function : {IPL_RGB2BGRA, IPL_RGB2BGRA_MultiThread}) {
            Bytes src = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, dst(18, 99);
            function(2, 2, 6, src.data(), 9, dst.data());
            EXPECT_EQ(dst, (Bytes{3, 2, 1, 0, 6, 5, 4, 0, 99, 9, 8, 7, 0, 12, 11, 10, 0, 99}));
        }
    }
}

TEST(LumaAndRepack, BgraToRgbSwapsAndWritesAZeroBehindEachRow) {
    Settings settings;
    for (unsigned processors : {1u, 2u, 3u}) {
        settings.UseProcessors(processors);
        for (Function function : {IPL_BGRA2RGB, IPL_BGRA2RGB_MultiThread}) {
            Bytes src = {3, 2, 1, 9}, dst(5, 99);
            function(1, 1, 4, src.data(), 3, dst.data());
            EXPECT_EQ(dst, (Bytes{1, 2, 3, 0, 99}));
            // Padded rows: one zero behind each, and the rest of the padding stays.
            src = {3, 2, 1, 9, 6, 5, 4, 9, 13, 12, 11, 9, 16, 15, 14, 9};
            dst.assign(16, 99);
            function(2, 2, 8, src.data(), 8, dst.data());
            EXPECT_EQ(dst, (Bytes{1, 2, 3, 4, 5, 6, 0, 99, 11, 12, 13, 14, 15, 16, 0, 99}));
        }
    }
}

TEST(LumaAndRepack, DenseRowsOfRgbStandBehindEachOther) {
    Settings settings;
    for (unsigned processors : {1u, 2u, 3u, 4u}) {
        settings.UseProcessors(processors);
        for (Function function : {IPL_BGRA2RGB, IPL_BGRA2RGB_MultiThread}) {
            Bytes src = {3, 2, 1, 9, 6, 5, 4, 9, 13, 12, 11, 9, 16, 15, 14, 9}, dst(14, 99);
            function(1, 4, 4, src.data(), 3, dst.data());
            EXPECT_EQ(dst, (Bytes{1, 2, 3, 4, 5, 6, 11, 12, 13, 14, 15, 16, 0, 99}));
        }
    }
}

TEST(LumaAndRepack, DenseRowsOfRgbThatGoUpLoseTheirFirstByte) {
    // Each row's zero falls on the row before, which is written already; between bands too.
    Settings settings;
    for (unsigned processors : {1u, 2u, 3u, 4u}) {
        settings.UseProcessors(processors);
        for (Function function : {IPL_BGRA2RGB, IPL_BGRA2RGB_MultiThread}) {
            Bytes src = {3, 2, 1, 9, 6, 5, 4, 9, 13, 12, 11, 9, 16, 15, 14, 9}, dst(14, 99);
            function(1, 4, 4, src.data(), -3, dst.data() + 9);
            EXPECT_EQ(dst, (Bytes{14, 15, 16, 0, 12, 13, 0, 5, 6, 0, 2, 3, 0, 99}));
        }
    }
}

TEST(LumaAndRepack, ThereAndBackKeepsTheThreeBytes) {
    for (int width = 1; width <= 40; ++width) {
        Bytes rgb(3 * width), bgra(4 * width, 99), back(3 * width + 2, 99);
        tqtest::FillHostile(rgb.data(), rgb.size(), width);
        IPL_RGB2BGRA(width, 1, 0, rgb.data(), 0, bgra.data());
        for (int x = 0; x < width; ++x) EXPECT_EQ(bgra[4 * x + 3], 0);
        IPL_BGRA2RGB(width, 1, 0, bgra.data(), 0, back.data());
        rgb.insert(rgb.end(), {0, 99});
        EXPECT_EQ(back, rgb) << width;
    }
}

TEST(LumaAndRepack, AlphaHasNoInfluenceOnRgb) {
    for (int alpha = 0; alpha < 256; ++alpha) {
        Bytes src = {3, 2, 1, static_cast<uint8_t>(alpha)}, dst(4, 99);
        IPL_BGRA2RGB(1, 1, 4, src.data(), 3, dst.data());
        EXPECT_EQ(dst, (Bytes{1, 2, 3, 0}));
    }
}

struct Repack {
    const char* name;
    Function plain, multiThread;
    int srcPixel, dstPixel;
    int mode;
    void (*reference)(int, int, int64_t, tqref::Bytes&, int64_t, tqref::Bytes&);
};
constexpr Repack kToBgra = {"IPL_RGB2BGRA",  IPL_RGB2BGRA, IPL_RGB2BGRA_MultiThread, 3, 4, 1,
                            tqref::RgbToBgra};
constexpr Repack kToRgb = {"IPL_BGRA2RGB",  IPL_BGRA2RGB, IPL_BGRA2RGB_MultiThread, 4, 3, 0,
                           tqref::BgraToRgb};
constexpr const Repack* kRepacks[] = {&kToBgra, &kToRgb};

// Dense rows that go down and up, and rows with room for the zero, and with more.
std::vector<std::pair<int, int>> RepackStrides(const Repack& form, int width) {
    const int src = form.srcPixel * width, dst = form.dstPixel * width;
    return {{src, dst},       {src + 1, -dst},     {src + 5, dst + 1}, {src, dst + 4},
            {-src, -dst - 1}, {-src - 3, dst + 2}, {0, dst + 3},       {src + 2, -dst - 7}};
}

TEST(LumaAndRepack, RepackingEqualsTheReferenceAtEveryLevel) {
    Settings settings;
    for (const Repack* form : kRepacks) {
        BlockStage stage(2, 2048, 3);
        for (int width = 1; width <= 70; ++width)
            for (int height = 1; height <= 5; ++height)
                for (auto strides : RepackStrides(*form, width)) {
                    const int srcStride = strides.first, dstStride = strides.second;
                    stage.Model([&](tqref::Bytes* image) {
                        form->reference(width, height, srcStride, image[0], dstStride, image[1]);
                    });
                    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                        settings.Use(level);
                        ASSERT_TRUE(stage.Check([&](uint8_t* const* image) {
                            form->plain(width, height, srcStride, image[0], dstStride, image[1]);
                        })) << form->name
                            << ", " << width << " x " << height << ", strides " << srcStride
                            << " and " << dstStride << ", level " << tq::IsaLevelName(level);
                    }
                }
    }
}

TEST(LumaAndRepack, RepackingInBandsEqualsTheReferenceAtEveryProcessorCount) {
    Settings settings;
    for (const Repack* form : kRepacks) {
        BlockStage stage(2, 8192, 4);
        for (int width : {1, 19, 36})
            for (int height : {-3, 0, 1, 2, 7, 8, 9, 16, 17, 33})
                for (auto strides : RepackStrides(*form, width)) {
                    const int srcStride = strides.first, dstStride = strides.second;
                    stage.Model([&](tqref::Bytes* image) {
                        form->reference(width, height, srcStride, image[0], dstStride, image[1]);
                    });
                    for (unsigned processors = 1; processors <= 16; ++processors) {
                        settings.UseProcessors(processors);
                        ASSERT_TRUE(stage.CheckAtGuards([&](uint8_t* const* image) {
                            form->multiThread(width, height, srcStride, image[0], dstStride,
                                              image[1]);
                        })) << form->name
                            << ", " << width << " x " << height << ", strides " << srcStride
                            << " and " << dstStride << ", " << processors << " processors";
                    }
                }
    }
}

TEST(LumaAndRepack, DenseRowsInBandsEqualThePlainForm) {
    Settings settings;
    for (int width : {1, 5, 33})
        for (int height : {1, 2, 7, 16, 33})
            for (bool bottomUp : {false, true}) {
                const int row = 3 * width, stride = bottomUp ? -row : row;
                const int first = bottomUp ? row * (height - 1) : 0;
                Bytes src(4 * width * height), plain(row * height + 2, 99);
                tqtest::FillHostile(src.data(), src.size(), width);
                IPL_BGRA2RGB(width, height, 4 * width, src.data(), stride, plain.data() + first);
                EXPECT_EQ(plain[plain.size() - 2], 0);
                EXPECT_EQ(plain.back(), 99);
                for (unsigned processors = 1; processors <= 16; ++processors) {
                    settings.UseProcessors(processors);
                    Bytes dst(plain.size(), 99);
                    IPL_BGRA2RGB_MultiThread(width, height, 4 * width, src.data(), stride,
                                             dst.data() + first);
                    EXPECT_EQ(dst, plain) << width << " x " << height << ", " << processors;
                }
            }
}

TEST(LumaAndRepack, RepackingEqualsTheReferenceForEveryColour) {
    Settings settings;
    constexpr int kWidth = 1 << 16;
    for (const Repack* form : kRepacks) {
        Bytes src(form->srcPixel * kWidth), dst(form->dstPixel * kWidth + 8, 99), expected = dst;
        tqref::Bytes source(src.data()), result(expected.data());
        for (int row = 0; row < 256; ++row) {
            for (int i = 0; i < kWidth; ++i) {
                uint8_t* pixel = src.data() + form->srcPixel * i;
                pixel[0] = static_cast<uint8_t>(i);
                pixel[1] = static_cast<uint8_t>(i >> 8);
                pixel[2] = static_cast<uint8_t>(row);
                if (form->srcPixel == 4) pixel[3] = static_cast<uint8_t>(i * 7 + row);
            }
            form->reference(kWidth, 1, 0, source, 0, result);
            for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                settings.Use(level);
                std::fill(dst.begin(), dst.end(), uint8_t{99});
                form->plain(kWidth, 1, 0, src.data(), 0, dst.data());
                ASSERT_TRUE(tqtest::SameElements(dst.data(), expected.data(), expected.size()))
                    << form->name << ", row " << row << ", level " << tq::IsaLevelName(level);
            }
        }
    }
}

TEST(LumaAndRepack, RepackingSizesBelowOneTouchesNothing) {
    Settings settings;
    BlockStage stage(2, 256, 5);
    stage.Model([](tqref::Bytes*) {});
    for (const Repack* form : kRepacks)
        for (unsigned processors : {1u, 2u, 8u}) {
            settings.UseProcessors(processors);
            // Not even the zero of an empty row is written.
            for (auto size : {std::pair{0, 1},
                              {0, 20},
                              {4, 0},
                              {4, -1},
                              {4, -9},
                              {-1, 1},
                              {-4, 3},
                              {-70, -2}}) {
                const int width = size.first, height = size.second;
                for (Function function : {form->plain, form->multiThread}) {
                    EXPECT_TRUE(stage.Check([&](uint8_t* const* image) {
                        function(width, height, 16, image[0], 16, image[1]);
                    })) << form->name
                        << ", " << width << " x " << height << ", " << processors << " processors";
                    if (height < 1) function(width, height, 16, nullptr, 16, nullptr);
                }
            }
        }
}

TEST(LumaAndRepack, RepackingInBandsDoesNothingWithANullPointer) {
    Settings settings;
    Bytes image(400, 99);
    for (const Repack* form : kRepacks)
        for (unsigned processors : {1u, 2u, 8u})
            for (int height : {1, 5, 20}) {
                settings.UseProcessors(processors);
                EXPECT_EQ(tqtest::AllocationsOf([&] {
                              form->multiThread(4, height, 16, nullptr, 16, image.data());
                              form->multiThread(4, height, 16, image.data(), 16, nullptr);
                              form->multiThread(4, height, 16, nullptr, 16, nullptr);
                          }),
                          0)
                    << form->name;
                EXPECT_EQ(image, Bytes(400, 99)) << form->name;
            }
}

TEST(LumaAndRepack, OneProcessorHasNoTask) {
    Settings settings;
    for (const Repack* form : kRepacks) {
        Bytes src(64, 1), dst(80, 2);
        auto run = [&] { form->multiThread(4, 4, 16, src.data(), 16, dst.data()); };
        settings.UseProcessors(2);
        EXPECT_GT(tqtest::AllocationsOf(run), 0) << form->name;
        settings.UseProcessors(1);
        EXPECT_EQ(tqtest::AllocationsOf(run), 0) << form->name;
    }
}

int RunLumaTask(int mode, int half, int width, int height, int srcStride, uint8_t* src,
                int dstStride, uint8_t* dst) {
    auto task = std::make_unique<CZYUV2Y_Task>();
    tqtest::FillTask(*task, width, height, srcStride, src, dstStride, dst);
    task->m_nMode = mode;
    task->m_bHalf = half;
    const std::unique_ptr<CTQIPLTaskBase> base = std::move(task);
    return base->Run();
}

// The height and the stride are as the task has them: the wrapper has halved and doubled.
TEST(LumaAndRepack, LumaTasksDoTheRowWork) {
    Settings settings;
    for (unsigned processors : {1u, 2u}) {
        settings.UseProcessors(processors);
        for (const LumaForm* form : kLumaForms)
            for (int half : {0, 1, -5}) {
                BlockStage stage(2, 512, 6);
                stage.Model([&](tqref::Bytes* image) {
                    tqref::LumaRows(form->lumaByte, half != 0, 21, 3, 47, image[0], 22, image[1]);
                });
                EXPECT_TRUE(stage.Check([&](uint8_t* const* image) {
                    EXPECT_EQ(RunLumaTask(form->mode, half, 21, 3, 47, image[0], 22, image[1]), 1);
                })) << form->name
                    << ", half " << half;
            }
    }
}

TEST(LumaAndRepack, RepackTasksDoThePlainFormsWork) {
    for (const Repack* form : kRepacks) {
        BlockStage stage(2, 512, 7);
        stage.Model(
            [&](tqref::Bytes* image) { form->reference(21, 3, 90, image[0], 89, image[1]); });
        EXPECT_TRUE(stage.Check([&](uint8_t* const* image) {
            EXPECT_EQ(form->mode == 0
                          ? (RunTaskInMode<CZBGRA2RGB_Task, 0>(21, 3, 90, image[0], 89, image[1]))
                          : (RunTaskInMode<CZBGRA2RGB_Task, 1>(21, 3, 90, image[0], 89, image[1])),
                      1);
        })) << form->name;
    }
}

TEST(LumaAndRepack, ATaskInAnUnknownModeDoesNothingAndReturns1) {
    BlockStage stage(2, 256, 8);
    stage.Model([](tqref::Bytes*) {});
    EXPECT_TRUE(stage.Check([](uint8_t* const* image) {
        for (int mode : {2, 3, -1, 256}) {
            EXPECT_EQ(RunLumaTask(mode, 0, 4, 2, 8, image[0], 8, image[1]), 1);
            EXPECT_EQ(RunLumaTask(mode, 1, 4, 2, 8, image[0], 8, image[1]), 1);
        }
        EXPECT_EQ((RunTaskInMode<CZBGRA2RGB_Task, 2>(4, 2, 16, image[0], 16, image[1])), 1);
        EXPECT_EQ((RunTaskInMode<CZBGRA2RGB_Task, -1>(4, 2, 16, image[0], 16, image[1])), 1);
        EXPECT_EQ((RunTaskInMode<CZBGRA2RGB_Task, 256>(4, 2, 16, image[0], 16, image[1])), 1);
    }));
}

}  // namespace
