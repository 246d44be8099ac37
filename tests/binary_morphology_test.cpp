// Direct erosion, dilation and their compositions: pictures known by hand, bad arguments, bands,
// tasks, and the reference at every level.

#include <gtest/gtest.h>
#include <tqipl/buffer.h>
#include <tqipl/morph.h>

#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "morph/morph_tasks.h"
#include "reference/morphology_reference.h"
#include "support/morph_check.h"
#include "support/task_fields.h"

namespace {

using tqref::MorphStep;
using tqtest::Drawn;
using tqtest::MaskContent;
using tqtest::MaskSize;
using tqtest::MaskTrial;
using tqtest::Radii;
using tqtest::Settings;

constexpr MorphStep kErode = MorphStep::kErosion, kDilate = MorphStep::kDilation;
constexpr int kMost = std::numeric_limits<int>::max(), kLeast = std::numeric_limits<int>::min();

using Function = void (*)(int width, int height, int stride, unsigned char* image, int radiusY,
                          int radiusX);

struct Form {
    const char* name;
    Function plain, multiThread;
    std::vector<MorphStep> steps;
};

const std::vector<Form> kForms = {
    {"IPL_Erosion", IPL_Erosion, IPL_Erosion_MultiThread, {kErode}},
    {"IPL_Dilation", IPL_Dilation, IPL_Dilation_MultiThread, {kDilate}},
    {"IPL_Opening", IPL_Opening, IPL_Opening_MultiThread, {kErode, kDilate}},
    {"IPL_Closing", IPL_Closing, IPL_Closing_MultiThread, {kDilate, kErode}},
    {"IPL_DeNoise", IPL_DeNoise, IPL_DeNoise_MultiThread, {kErode, kDilate, kDilate, kErode}},
};
const Form &kErosion = kForms[0], &kDilation = kForms[1], &kOpening = kForms[2],
           &kClosing = kForms[3], &kDeNoise = kForms[4];

// ---- Values known by hand -----------------------------------------------------------------------

// Both forms, the second at several processor counts, on a dense image.
void ExpectMask(const Form& form, MaskSize size, const std::vector<uint8_t>& mask, Radii radii,
                const std::vector<uint8_t>& expected) {
    std::vector<uint8_t> image = mask;
    form.plain(size.width, size.height, size.width, image.data(), radii.y, radii.x);
    EXPECT_EQ(image, expected) << form.name;
    for (unsigned processors : {1u, 2u, 3u, 8u}) {
        Settings settings;
        settings.UseProcessors(processors);
        image = mask;
        form.multiThread(size.width, size.height, size.width, image.data(), radii.y, radii.x);
        EXPECT_EQ(image, expected) << form.name << ", " << processors << " processors";
    }
}

void ExpectPicture(const Form& form, Radii radii, const std::vector<std::string>& before,
                   const std::vector<std::string>& after) {
    ASSERT_EQ(before.size(), after.size());
    ExpectMask(form, {static_cast<int>(before[0].size()), static_cast<int>(before.size())},
               Drawn(before), radii, Drawn(after));
}

TEST(BinaryMorphology, WithBothRadii0ErosionTurnsEveryNonZeroByteInto255) {
    std::vector<uint8_t> mask(256), expected(256, 255);
    for (int i = 0; i < 256; ++i) mask[i] = static_cast<uint8_t>(i);
    expected[0] = 0;
    ExpectMask(kErosion, {16, 16}, mask, {0, 0}, expected);
}

TEST(BinaryMorphology, WithBothRadii0DilationKeepsOnlyThe255s) {
    std::vector<uint8_t> mask(256), expected(256, 0);
    for (int i = 0; i < 256; ++i) mask[i] = static_cast<uint8_t>(i);
    expected[255] = 255;
    ExpectMask(kDilation, {16, 16}, mask, {0, 0}, expected);
}

TEST(BinaryMorphology, APixelOf200AmidPixelsOf255SurvivesErosionAs255) {
    std::vector<uint8_t> mask(25, 255), expected(25, 0);
    mask[12] = 200;
    for (int i : {6, 7, 8, 11, 12, 13, 16, 17, 18}) expected[i] = 255;
    ExpectMask(kErosion, {5, 5}, mask, {1, 1}, expected);
}

TEST(BinaryMorphology, ALonePixelOf200IsNotDilated) {
    std::vector<uint8_t> mask(25, 0);
    mask[12] = 200;
    ExpectMask(kDilation, {5, 5}, mask, {1, 1}, std::vector<uint8_t>(25, 0));
}

TEST(BinaryMorphology, EveryValueBut0StandsErosionAndNoneBut255Spreads) {
    for (int value = 0; value < 256; ++value) {
        const std::vector<uint8_t> mask(25, static_cast<uint8_t>(value));
        std::vector<uint8_t> inner(25, 0);
        for (int i : {6, 7, 8, 11, 12, 13, 16, 17, 18}) inner[i] = 255;
        const std::vector<uint8_t> none(25, 0);
        ExpectMask(kErosion, {5, 5}, mask, {1, 1}, value != 0 ? inner : none);
        ExpectMask(kDilation, {5, 5}, mask, {1, 1}, value == 255 ? inner : none);
    }
}

const std::vector<std::string> kFull(10, "##########");
const std::vector<std::string> kFrame1 = {"..........", ".########.", ".########.", ".########.",
                                          ".########.", ".########.", ".########.", ".########.",
                                          ".########.", ".........."};
const std::vector<std::string> kFrame2 = {"..........", "..........", "..######..", "..######..",
                                          "..######..", "..######..", "..######..", "..######..",
                                          "..........", ".........."};

TEST(BinaryMorphology, AFullImageComesOutOfErosionAndDilationWithAClearedFrame) {
    ExpectPicture(kErosion, {1, 1}, kFull, kFrame1);
    ExpectPicture(kDilation, {1, 1}, kFull, kFrame1);
}

TEST(BinaryMorphology, OpeningOfAFullImageClearsTheFrameAndKeepsTheInside) {
    ExpectPicture(kOpening, {1, 1}, kFull, kFrame1);
}

// The second and fourth step of these are erosions, and meet the frame that the first one cleared.
TEST(BinaryMorphology, ClosingAndDenoiseOfAFullImageClearTwoFrames) {
    ExpectPicture(kClosing, {1, 1}, kFull, kFrame2);
    ExpectPicture(kDeNoise, {1, 1}, kFull, kFrame2);
}

TEST(BinaryMorphology, TheFirstRadiusIsTheVerticalOne) {
    ExpectPicture(kErosion, {1, 2}, std::vector<std::string>(5, "#######"),
                  {".......", "..###..", "..###..", "..###..", "......."});
    ExpectPicture(kErosion, {2, 1}, std::vector<std::string>(5, "#######"),
                  {".......", ".......", ".#####.", ".......", "......."});
}

TEST(BinaryMorphology, AHoleGrowsByTheRadii) {
    ExpectPicture(kErosion, {1, 2},
                  {"############", "############", "############", "#####.######", "############",
                   "############", "############"},
                  {"............", "..########..", "..#.....##..", "..#.....##..", "..#.....##..",
                   "..########..", "............"});
}

TEST(BinaryMorphology, ASpeckGrowsByTheRadii) {
    ExpectPicture(kDilation, {1, 2},
                  {"..........", "..........", "..........", ".....#....", "..........",
                   "..........", ".........."},
                  {"..........", "..........", "...#####..", "...#####..", "...#####..",
                   "..........", ".........."});
}

// They are read where they stand in a window, whatever becomes of their own place.
TEST(BinaryMorphology, PixelsOfTheMarginTakePartInWindows) {
    ExpectPicture(kErosion, {1, 1}, {".####", "#####", "#####", "#####"},
                  {".....", "..##.", ".###.", "....."});
    ExpectPicture(kDilation, {1, 1}, {"#....", ".....", ".....", "....#"},
                  {".....", ".#...", "...#.", "....."});
}

TEST(BinaryMorphology, OpeningRemovesASpeckAndClosingFillsAHole) {
    ExpectPicture(kOpening, {1, 1},
                  {"........", ".###....", ".###....", ".###..#.", "........", "........"},
                  {"........", ".###....", ".###....", ".###....", "........", "........"});
    ExpectPicture(
        kClosing, {1, 1},
        {".........", ".........", "..#####..", "..#.###..", "..#####..", ".........", "........."},
        {".........", ".........", "..#####..", "..#####..", "..#####..", ".........",
         "........."});
}

TEST(BinaryMorphology, TheMarginIsClearedWhateverItHeld) {
    for (const Form& form : kForms)
        for (int value : {1, 7, 128, 254, 255})
            for (unsigned processors : {1u, 2u, 3u, 4u}) {
                Settings settings;
                settings.UseProcessors(processors);
                for (Function function : {form.plain, form.multiThread}) {
                    tqtest::FillFreedBuffers(2);
                    std::vector<uint8_t> image(12 * 9, static_cast<uint8_t>(value));
                    function(12, 9, 12, image.data(), 2, 3);
                    for (int y = 0; y < 9; ++y)
                        for (int x = 0; x < 12; ++x)
                            if (y < 2 || y >= 7 || x < 3 || x >= 9) {
                                EXPECT_EQ(image[12 * y + x], 0)
                                    << form.name << ", " << value << ", row " << y << ", column "
                                    << x << ", " << processors << " processors";
                            }
                }
            }
}

TEST(BinaryMorphology, RadiiThatLeaveNoInnerRegionGiveAnAllZeroImage) {
    for (const Form& form : kForms)
        for (Radii radii : {Radii{3, 0},
                            {0, 4},
                            {3, 4},
                            {5, 0},
                            {6, 0},
                            {0, 7},
                            {0, 8},
                            {100, 1},
                            {1, 100},
                            {40000, 40000},
                            {kMost, 0},
                            {0, kMost},
                            {kMost, kMost},
                            {kMost - 1, 1}})
            ExpectMask(form, {7, 5}, std::vector<uint8_t>(35, 255), radii,
                       std::vector<uint8_t>(35, 0));
}

TEST(BinaryMorphology, TheLastRadiiThatLeaveAnInnerRegionLeaveOnePixel) {
    for (const Form& form : {kErosion, kDilation}) {
        std::vector<uint8_t> expected(35, 0);
        expected[17] = 255;
        ExpectMask(form, {7, 5}, std::vector<uint8_t>(35, 255), {2, 3}, expected);
    }
}

TEST(BinaryMorphology, BytesBehindAPaddedRowAreNotTouched) {
    for (const Form& form : kForms)
        for (unsigned processors : {1u, 2u, 5u}) {
            Settings settings;
            settings.UseProcessors(processors);
            for (Function function : {form.plain, form.multiThread}) {
                std::vector<uint8_t> image(9 * 7, 77);
                function(5, 7, 9, image.data(), 1, 1);
                for (int i = 0; i < 9 * 7; ++i)
                    if (i % 9 >= 5) {
                        EXPECT_EQ(image[i], 77)
                            << form.name << ", byte " << i << ", " << processors << " processors";
                    }
            }
        }
}

// ---- The reference ------------------------------------------------------------------------------

// Plain at every level, MultiThread at the counts given, the steps one after the other expected.
testing::AssertionResult EqualsReference(const Form& form, MaskSize size, Radii radii,
                                         MaskContent content, uint32_t seed,
                                         const std::vector<unsigned>& processorCounts) {
    MaskTrial trial(size, radii, content, seed);
    trial.Expect([&](int stride, uint8_t* image) {
        for (MorphStep step : form.steps)
            tqref::DirectMorph(step, size.width, size.height, stride, image, radii.y, radii.x);
    });
    Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        const testing::AssertionResult plain =
            trial.Run(form.name, [&](int stride, uint8_t* image) {
                form.plain(size.width, size.height, stride, image, radii.y, radii.x);
            });
        if (!plain)
            return testing::AssertionFailure()
                   << plain.message() << ", plain, " << tqtest::Describe(size, radii);
    }
    for (unsigned processors : processorCounts) {
        settings.UseProcessors(processors);
        const testing::AssertionResult threaded =
            trial.Run(form.name, [&](int stride, uint8_t* image) {
                form.multiThread(size.width, size.height, stride, image, radii.y, radii.x);
            });
        if (!threaded)
            return testing::AssertionFailure()
                   << threaded.message() << ", MultiThread, " << tqtest::Describe(size, radii);
    }
    return testing::AssertionSuccess();
}

constexpr Radii kSomeRadii[] = {{0, 0}, {1, 1}, {0, 2}, {3, 0}, {1, 3}, {2, 1}, {4, 2}, {1, 7}};

TEST(BinaryMorphology, EveryWidthEqualsTheReference) {
    uint32_t seed = 0;
    for (const Form& form : kForms)
        for (int width = 1; width <= 70; ++width)
            for (Radii radii : kSomeRadii) {
                ++seed;
                for (MaskContent content : tqtest::kMaskContents) {
                    if (form.steps.size() > 1 && content != tqtest::kMaskContents[seed % 5])
                        continue;
                    const MaskSize size = {width, 1 + static_cast<int>(seed % 13)};
                    ASSERT_TRUE(EqualsReference(form, size, radii, content, seed, {3}));
                }
            }
}

TEST(BinaryMorphology, ImagesOfUpToFiveBySixEqualTheReferenceAtEveryRadius) {
    uint32_t seed = 1000;
    for (const Form& form : kForms)
        for (int width = 1; width <= 6; ++width)
            for (int height = 1; height <= 5; ++height)
                for (int radiusY = 0; radiusY <= 6; ++radiusY)
                    for (int radiusX = 0; radiusX <= 7; ++radiusX) {
                        ++seed;
                        ASSERT_TRUE(EqualsReference(form, {width, height}, {radiusY, radiusX},
                                                    tqtest::kMaskContents[seed % 5], seed,
                                                    {1 + seed % 16}));
                    }
}

TEST(BinaryMorphology, LargeRadiiEqualTheReference) {
    uint32_t seed = 2000;
    for (const Form& form : kForms)
        for (Radii radii : {Radii{10, 12}, {12, 1}, {1, 25}, {19, 20}, {20, 0}, {0, 31}})
            for (MaskContent content : tqtest::kMaskContents)
                ASSERT_TRUE(EqualsReference(form, {83, 41}, radii, content, ++seed, {2, 7}));
}

// Windows that end in any bit of a word and reach over several, in inner regions that do so too.
TEST(BinaryMorphology, EveryHorizontalRadiusEqualsTheReference) {
    uint32_t seed = 2200;
    for (int radiusX = 0; radiusX <= 135; ++radiusX)
        for (int inner : {0, 1, 17, 63, 64, 65, 131, 257}) {
            const MaskContent content = tqtest::kMaskContents[++seed % 5];
            const MaskSize size = {2 * radiusX + inner + (inner == 0), 3};
            for (const Form& form : {kErosion, kDilation})
                ASSERT_TRUE(
                    EqualsReference(form, size, {radiusX % 2, radiusX}, content, seed, {2}));
        }
}

TEST(BinaryMorphology, EveryVerticalRadiusEqualsTheReference) {
    uint32_t seed = 2400;
    for (int radiusY = 0; radiusY <= 70; ++radiusY)
        for (int inner : {0, 1, 8, 31}) {
            const MaskContent content = tqtest::kMaskContents[++seed % 5];
            const MaskSize size = {9, 2 * radiusY + inner + (inner == 0)};
            for (const Form& form : {kErosion, kDilation})
                ASSERT_TRUE(
                    EqualsReference(form, size, {radiusY, radiusY % 3}, content, seed, {2, 5}));
        }
}

// A window is the columns' window over the rows' window, which a large image can afford.
void LargeReference(MorphStep step, MaskSize size, int stride, uint8_t* image, Radii radii) {
    tqref::DirectMorph(step, size.width, size.height, stride, image, radii.y, 0);
    tqref::DirectMorph(step, size.width, size.height, stride, image, 0, radii.x);
}

TEST(BinaryMorphology, ALargeImageEqualsTheReference) {
    constexpr MaskSize kSize = {403, 251};
    uint32_t seed = 2600;
    Settings settings;
    for (const Form& form : {kErosion, kDilation})
        for (Radii radii : {Radii{1, 1}, {5, 5}, {25, 25}, {100, 100}, {3, 190}, {120, 2}}) {
            const bool erodes = form.steps[0] == kErode;
            MaskTrial trial(kSize, radii, erodes ? MaskContent::kHoles : MaskContent::kBright,
                            ++seed);
            trial.Expect([&](int stride, uint8_t* image) {
                LargeReference(form.steps[0], kSize, stride, image, radii);
            });
            ASSERT_TRUE(trial.Run(form.name, [&](int stride, uint8_t* image) {
                form.plain(kSize.width, kSize.height, stride, image, radii.y, radii.x);
            })) << tqtest::Describe(kSize, radii);
            for (unsigned processors : {1u, 2u, 3u, 7u, 16u}) {
                settings.UseProcessors(processors);
                ASSERT_TRUE(trial.Run(form.name, [&](int stride, uint8_t* image) {
                    form.multiThread(kSize.width, kSize.height, stride, image, radii.y, radii.x);
                })) << tqtest::Describe(kSize, radii);
            }
        }
}

// All of an image is read before any of it is written, and written row by row.
TEST(BinaryMorphology, RowsThatOverlapInMemoryEqualTheReference) {
    constexpr int kWidth = 11, kHeight = 9, kRoom = kWidth * kHeight;
    uint32_t seed = 2700;
    for (const Form& form : kForms)
        for (int stride : {0, 1, 5, kWidth - 1, -1, -5, 1 - kWidth})
            for (Radii radii : {Radii{0, 0}, {1, 1}, {2, 1}, {0, 3}})
                for (MaskContent content : tqtest::kMaskContents) {
                    std::vector<uint8_t> before(2 * kRoom);
                    tqtest::FillMask(before.data(), before.size(), content, 20, ++seed);
                    std::vector<uint8_t> expected = before;
                    for (MorphStep step : form.steps)
                        tqref::DirectMorph(step, kWidth, kHeight, stride, expected.data() + kRoom,
                                           radii.y, radii.x);
                    Settings settings;
                    settings.UseProcessors(1 + seed % 5);
                    for (Function function : {form.plain, form.multiThread}) {
                        std::vector<uint8_t> image = before;
                        function(kWidth, kHeight, stride, image.data() + kRoom, radii.y, radii.x);
                        ASSERT_EQ(image, expected) << form.name << ", stride " << stride << ", "
                                                   << tqtest::Describe({kWidth, kHeight}, radii);
                    }
                }
}

// From one row in each band, and none, to many: the seams leave no trace, and no row is read that
// the image does not have.
TEST(BinaryMorphology, EveryProcessorCountGivesThePlainImage) {
    std::vector<unsigned> counts;
    for (unsigned processors = 1; processors <= 16; ++processors) counts.push_back(processors);
    uint32_t seed = 3000;
    for (const Form& form : kForms)
        for (int height = 1; height <= 40; ++height)
            for (Radii radii : {Radii{0, 0}, {1, 2}, {2, 1}, {3, 0}, {5, 1}, {9, 1}, {17, 3}}) {
                ++seed;
                if (form.steps.size() > 1 && seed % 5 != 0) continue;
                const MaskContent content = tqtest::kMaskContents[seed % 5];
                const int width = 7 + static_cast<int>(seed % 19);
                ASSERT_TRUE(EqualsReference(form, {width, height}, radii, content, seed, counts));
            }
}

TEST(BinaryMorphology, MemoryUsedBeforeLeavesNoTrace) {
    Settings settings;
    uint32_t seed = 4000;
    for (const Form& form : kForms)
        for (Radii radii : {Radii{1, 1}, {2, 3}, {6, 0}, {0, 9}})
            for (unsigned processors : {1u, 2u, 5u}) {
                const MaskSize size = {33, 14};
                MaskTrial trial(size, radii, MaskContent::kNoise, ++seed);
                trial.Expect([&](int stride, uint8_t* image) {
                    for (MorphStep step : form.steps)
                        tqref::DirectMorph(step, size.width, size.height, stride, image, radii.y,
                                           radii.x);
                });
                settings.UseProcessors(processors);
                for (Function function : {form.plain, form.multiThread}) {
                    tqtest::FillFreedBuffers(18);
                    ASSERT_TRUE(trial.Run(form.name, [&](int stride, uint8_t* image) {
                        function(size.width, size.height, stride, image, radii.y, radii.x);
                    }));
                }
            }
}

TEST(BinaryMorphology, ScratchImagesGoBackToTheSharedManager) {
    constexpr int kWidth = 1024, kHeight = 900;
    Settings settings;
    settings.UseProcessors(2);
    std::vector<uint8_t> image(size_t{kWidth} * kHeight, 255);
    const std::set<unsigned char*> before = tqtest::FreeBuffers();
    for (const Form& form : kForms)
        for (Function function : {form.plain, form.multiThread}) {
            for (int i = 0; i < 5; ++i) function(kWidth, kHeight, kWidth, image.data(), 1, 1);
            EXPECT_EQ(tqtest::FreeBuffers(), before) << form.name;
        }
}

// ---- Bad arguments ------------------------------------------------------------------------------

TEST(BinaryMorphology, SizesBelowOneTouchNothing) {
    tqtest::Forbidden forbidden;
    for (const Form& form : kForms)
        for (unsigned processors : {1u, 2u, 8u}) {
            Settings settings;
            settings.UseProcessors(processors);
            for (auto [width, height] : {std::pair{0, 5},
                                         {5, 0},
                                         {0, 0},
                                         {-1, 5},
                                         {5, -1},
                                         {-3, -7},
                                         {0, -9},
                                         {kLeast, 5},
                                         {5, kLeast},
                                         {kLeast, kLeast}})
                for (Radii radii : {Radii{0, 0}, {1, 2}, {20, 20}, {kMost, kMost}})
                    for (Function function : {form.plain, form.multiThread}) {
                        function(width, height, 16, forbidden.Pointer(), radii.y, radii.x);
                        function(width, height, 16, nullptr, radii.y, radii.x);
                    }
        }
}

// Such a radius has no margin and an empty window.
TEST(BinaryMorphology, ANegativeRadiusMakesErosionSetWhatIsNotZeroAndDilationClear) {
    for (Radii radii : {Radii{-1, 0}, {0, -1}, {-1, -1}, {kLeast, kLeast}}) {
        ExpectMask(kErosion, {3, 2}, {0, 1, 200, 255, 0, 7}, radii, {0, 255, 255, 255, 0, 255});
        ExpectMask(kDilation, {3, 2}, {0, 1, 200, 255, 0, 7}, radii, {0, 0, 0, 0, 0, 0});
    }
}

TEST(BinaryMorphology, NegativeRadiiEqualTheReference) {
    uint32_t seed = 5000;
    for (const Form& form : kForms)
        for (Radii radii : tqtest::kNegativeRadii)
            for (MaskSize size : {MaskSize{6, 5}, {1, 1}, {23, 9}}) {
                ++seed;
                ASSERT_TRUE(EqualsReference(form, size, radii, tqtest::kMaskContents[seed % 5],
                                            seed, {1, 2, 5, 16}));
            }
}

// ---- Tasks --------------------------------------------------------------------------------------

template <class Task> void ExpectFieldsInOrder() {
    static_assert(std::is_base_of_v<CTQIPLTaskBase, Task>);
    static_assert(std::is_same_v<decltype(Task::m_nWidth), int>);
    static_assert(std::is_same_v<decltype(Task::m_nHeight), int>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pSrc), unsigned char*>);
    static_assert(std::is_same_v<decltype(Task::m_nDstStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pDst), unsigned char*>);
    static_assert(sizeof(Task::m_bFirst) == 4 && sizeof(Task::m_bLast) == 4);
    static_assert(std::is_same_v<decltype(Task::m_nRadiusY), int>);
    static_assert(std::is_same_v<decltype(Task::m_nRadiusX), int>);
    const Task task;
    const void* const fields[] = {
        &task,         &task.m_nWidth,     &task.m_nHeight, &task.m_nSrcStride,
        &task.m_pSrc,  &task.m_nDstStride, &task.m_pDst,    &task.m_bFirst,
        &task.m_bLast, &task.m_nRadiusY,   &task.m_nRadiusX};
    tqtest::ExpectAddressesRise(fields);
}

TEST(BinaryMorphology, TaskFieldsStandInOrder) {
    ExpectFieldsInOrder<CMorph_ErosionTask>();
    ExpectFieldsInOrder<CMorph_DilationTask>();
}

// A band of an image: its first row, its number of rows, and its place among the bands.
struct BandCase {
    int begin, rows;
    bool first, last;
};

// On an image of 21 x 16. All windows lie in it.
template <class Task> void ExpectTaskEqualsReference(MorphStep step) {
    constexpr int kWidth = 21, kHeight = 16;
    Settings settings;
    uint32_t seed = 0;
    for (Radii radii : {Radii{0, 0}, {1, 1}, {2, 3}, {3, 10}, {3, 11}, {0, 2}, {3, 0}})
        for (BandCase band : {BandCase{0, 16, true, true},
                              BandCase{0, 5, true, false},
                              {0, 3, true, false},
                              {0, 2, true, false},
                              {0, 0, true, false},
                              {5, 5, false, false},
                              {3, 1, false, false},
                              {12, 1, false, false},
                              {5, 0, false, false},
                              {10, 6, false, true},
                              {13, 3, false, true},
                              {13, 2, false, true},
                              {4, 9, true, true}})
            for (MaskContent content : tqtest::kMaskContents)
                for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                    settings.Use(level);
                    tqtest::GuardedImage src(kWidth, kHeight, tqtest::MaskLayout(++seed));
                    tqtest::GuardedImage dst(kWidth, kHeight, tqtest::MaskLayout(seed / 4));
                    tqtest::FillMask(src.Memory(), src.Size(), content,
                                     tqtest::RarityFor({kWidth, kHeight}, radii), seed);
                    tqtest::FillMask(dst.Memory(), dst.Size(), MaskContent::kNoise, 2, seed + 1);
                    // A task writes into a cleared image, but only into its own rows.
                    for (int y = 0; y < band.rows; ++y)
                        std::memset(dst.Row(band.begin + y), 0, kWidth);
                    const std::vector<uint8_t> srcBefore = src.Copy();
                    std::vector<uint8_t> expected = dst.Copy();
                    tqref::DirectBand(step, kWidth, band.rows, src.Stride(), src.Row(band.begin),
                                      dst.Stride(),
                                      expected.data() + (dst.Row(band.begin) - dst.Memory()),
                                      band.first, band.last, radii.y, radii.x);
                    Task task;
                    task.m_nWidth = kWidth;
                    task.m_nHeight = band.rows;
                    task.m_nSrcStride = src.Stride();
                    task.m_pSrc = src.Row(band.begin);
                    task.m_nDstStride = dst.Stride();
                    task.m_pDst = dst.Row(band.begin);
                    task.m_bFirst = band.first;
                    task.m_bLast = band.last;
                    task.m_nRadiusY = radii.y;
                    task.m_nRadiusX = radii.x;
                    CTQIPLTaskBase& base = task;
                    ASSERT_EQ(base.Run(), 1);
                    ASSERT_TRUE(tqtest::SameMemory("destination", dst, expected))
                        << "rows " << band.begin << " to " << band.begin + band.rows << ", "
                        << tqtest::Describe({kWidth, kHeight}, radii);
                    ASSERT_TRUE(tqtest::SameMemory("source", src, srcBefore));
                }
}

TEST(BinaryMorphology, AnErosionTaskWritesItsRowsAndReturns1) {
    ExpectTaskEqualsReference<CMorph_ErosionTask>(kErode);
}

TEST(BinaryMorphology, ADilationTaskWritesItsRowsAndReturns1) {
    ExpectTaskEqualsReference<CMorph_DilationTask>(kDilate);
}

// ---- Several host threads -----------------------------------------------------------------------

TEST(BinaryMorphology, SeveralThreadsWorkOnDifferentImagesAtOnce) {
    Settings settings;
    settings.UseProcessors(4);
    std::vector<std::thread> hosts;
    int wrong[4] = {};
    for (int host = 0; host < 4; ++host)
        hosts.emplace_back([host, &wrong] {
            for (uint32_t i = 0; i < 25; ++i) {
                const Form& form = kForms[(host + i) % kForms.size()];
                const MaskSize size = {40 + host, 30};
                const Radii radii = {1 + static_cast<int>(i % 3), 2};
                MaskTrial trial(size, radii, tqtest::kMaskContents[i % 5], 100 * host + i);
                trial.Expect([&](int stride, uint8_t* image) {
                    for (MorphStep step : form.steps)
                        tqref::DirectMorph(step, size.width, size.height, stride, image, radii.y,
                                           radii.x);
                });
                for (Function function : {form.plain, form.multiThread})
                    if (!trial.Run(form.name, [&](int stride, uint8_t* image) {
                            function(size.width, size.height, stride, image, radii.y, radii.x);
                        }))
                        ++wrong[host];
            }
        });
    for (std::thread& thread : hosts) thread.join();
    for (int host = 0; host < 4; ++host) EXPECT_EQ(wrong[host], 0) << "host " << host;
}

}  // namespace
