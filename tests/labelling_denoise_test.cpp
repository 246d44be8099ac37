// Removal of small regions: masks known by hand, every form against flooding, bands, tasks, time.

#include <gtest/gtest.h>
#include <tqipl/labelling.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdint>
#include <ctime>
#include <functional>
#include <iterator>
#include <memory>
#include <set>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "morph/labelling_tasks.h"
#include "reference/labelling_reference.h"
#include "support/deadline.h"
#include "support/mask_pictures.h"
#include "support/settings.h"

namespace {

using tqtest::Deadline;
using tqtest::OnPoolThread;
using tqtest::Picture;
using tqtest::PlacedPicture;
using tqtest::Placement;
using tqtest::Settings;

// The forms that fill holes.
struct HoleForm {
    const char* name;
    void (*function)(unsigned int width, unsigned int height, unsigned int stride,
                     unsigned char* mask, unsigned int threshold);
    bool inBands;
};
constexpr HoleForm kEx = {"IPL_FCCLabelingDeNoiseEx", IPL_FCCLabelingDeNoiseEx, false};
constexpr HoleForm kEx2 = {"IPL_FCCLabelingDeNoiseEx2", IPL_FCCLabelingDeNoiseEx2, false};
constexpr HoleForm kExBands = {"IPL_FCCLabelingDeNoiseEx_MultiThread",
                               IPL_FCCLabelingDeNoiseEx_MultiThread, true};
constexpr HoleForm kEx2Bands = {"IPL_FCCLabelingDeNoiseEx2_MultiThread",
                                IPL_FCCLabelingDeNoiseEx2_MultiThread, true};
constexpr HoleForm kHoleForms[] = {kEx, kEx2, kExBands, kEx2Bands};
constexpr HoleForm kHoleBands[] = {kExBands, kEx2Bands};

Picture FillHoles(const HoleForm& form, Picture picture, unsigned threshold) {
    form.function(static_cast<unsigned>(picture.width), static_cast<unsigned>(picture.height),
                  static_cast<unsigned>(picture.width), picture.pixels.data(), threshold);
    return picture;
}

Picture ClearSpecks(Picture picture, int threshold) {
    IPL_FCCLabelingDeNoise(picture.width, picture.height, picture.width, picture.pixels.data(),
                           threshold);
    return picture;
}

Picture FloodHoles(Picture picture, int64_t threshold) {
    tqref::FloodFillSmall(picture.View(), tqref::RegionsOf::kZero, threshold, 255);
    return picture;
}
Picture FloodSpecks(Picture picture, int64_t threshold) {
    tqref::FloodFillSmall(picture.View(), tqref::RegionsOf::kNonzero, threshold, 0);
    return picture;
}

// Zero and nonzero in each other's place.
Picture Inverted(Picture picture) {
    for (uint8_t& pixel : picture.pixels) pixel = pixel == 0 ? 255 : 0;
    return picture;
}

// ---- Values known by hand -------------------------------------------------------------------

TEST(Denoise, AMaskWithoutHolesStays) {
    Settings settings;
    settings.UseProcessors(3);
    for (const HoleForm& form : kHoleForms)
        for (unsigned threshold : {0u, 1u, 100u, UINT_MAX}) {
            const Picture full = tqtest::VaryValues(Picture(7, 5, 255), 1);
            EXPECT_EQ(FillHoles(form, full, threshold), full) << form.name;
        }
    EXPECT_EQ(ClearSpecks(Picture(7, 5), INT_MAX), Picture(7, 5));
}

TEST(Denoise, AMaskOfZerosIsOneHole) {
    Settings settings;
    settings.UseProcessors(3);
    for (const HoleForm& form : kHoleForms) {
        EXPECT_EQ(FillHoles(form, Picture(7, 5), 34), Picture(7, 5)) << form.name;
        EXPECT_EQ(FillHoles(form, Picture(7, 5), 35), Picture(7, 5, 255)) << form.name;
    }
    EXPECT_EQ(ClearSpecks(Picture(7, 5, 9), 34), Picture(7, 5, 9));
    EXPECT_EQ(ClearSpecks(Picture(7, 5, 9), 35), Picture(7, 5));
}

TEST(Denoise, PixelsThatTouchAtACornerBelongTogether) {
    Settings settings;
    settings.UseProcessors(2);
    const Picture holes = {"####", "#.##", "##.#", "####"};
    for (const HoleForm& form : kHoleForms) {
        EXPECT_EQ(FillHoles(form, holes, 1), holes) << form.name;
        EXPECT_EQ(FillHoles(form, holes, 2), Picture(4, 4, 255)) << form.name;
    }
    const Picture specks = {"....", "..#.", ".#..", "...."};
    EXPECT_EQ(ClearSpecks(specks, 1), specks);
    EXPECT_EQ(ClearSpecks(specks, 2), Picture(4, 4));
}

TEST(Denoise, ARegionAtTheBorderIsLikeAnyOther) {
    Settings settings;
    settings.UseProcessors(2);
    const Picture holes = {".##.", "####", "####", "..#."};
    for (const HoleForm& form : kHoleForms) {
        EXPECT_EQ(FillHoles(form, holes, 1), (Picture{"####", "####", "####", "..##"}))
            << form.name;
        EXPECT_EQ(FillHoles(form, holes, 2), Picture(4, 4, 255)) << form.name;
    }
    const Picture specks = {"#..#", "....", "....", "##.#"};
    EXPECT_EQ(ClearSpecks(specks, 1), (Picture{"....", "....", "....", "##.."}));
}

TEST(Denoise, OtherValuesAreNoHolesAndAreKept) {
    Settings settings;
    settings.UseProcessors(2);
    Picture holes(3, 2), filled(3, 2);
    holes.pixels = {1, 0, 254, 128, 127, 3};
    filled.pixels = {1, 255, 254, 128, 127, 3};
    for (const HoleForm& form : kHoleForms) EXPECT_EQ(FillHoles(form, holes, 1), filled);
    Picture specks(5, 1), cleared(5, 1);
    specks.pixels = {1, 0, 2, 254, 0};
    cleared.pixels = {0, 0, 2, 254, 0};
    EXPECT_EQ(ClearSpecks(specks, 1), cleared);
}

TEST(Denoise, HolesAreComparedUnsignedAndSpecksSigned) {
    Settings settings;
    settings.UseProcessors(2);
    const Picture holes = {"#..#", "####"};
    for (const HoleForm& form : kHoleForms) {
        EXPECT_EQ(FillHoles(form, holes, 0), holes) << form.name;
        for (unsigned threshold : {2u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
            EXPECT_EQ(FillHoles(form, holes, threshold), Picture(4, 2, 255))
                << form.name << ", " << threshold;
    }
    const Picture specks = {".##.", "...."};
    for (int threshold : {INT_MIN, -1, 0, 1}) EXPECT_EQ(ClearSpecks(specks, threshold), specks);
    for (int threshold : {2, INT_MAX}) EXPECT_EQ(ClearSpecks(specks, threshold), Picture(4, 2));
}

TEST(Denoise, BadArgumentsLeaveTheMask) {
    Settings settings;
    const Picture before = {"#.", ".#"};
    for (unsigned processors : {1u, 2u, 9u})
        for (const HoleForm& form : kHoleForms) {
            settings.UseProcessors(processors);
            Picture picture = before;
            uint8_t* mask = picture.pixels.data();
            form.function(0, 2, 2, mask, 9);
            form.function(2, 0, 2, mask, 9);
            form.function(2, 2, 0, mask, 9);
            form.function(2, 2, 2, nullptr, 9);
            form.function(0, 0, 0, nullptr, 9);
            form.function(0x80000000u, 2, 2, mask, 9);
            form.function(2, 0x80000000u, 2, mask, 9);
            form.function(UINT_MAX, UINT_MAX, UINT_MAX, mask, 9);
            EXPECT_EQ(picture, before) << form.name;
        }
    Picture picture = before;
    uint8_t* mask = picture.pixels.data();
    IPL_FCCLabelingDeNoise(0, 2, 2, mask, 9);
    IPL_FCCLabelingDeNoise(2, 0, 2, mask, 9);
    IPL_FCCLabelingDeNoise(2, 2, 0, mask, 9);
    IPL_FCCLabelingDeNoise(2, 2, 2, nullptr, 9);
    IPL_FCCLabelingDeNoise(2, 2, 2, mask, 0);
    IPL_FCCLabelingDeNoise(-1, 2, 2, mask, 9);
    IPL_FCCLabelingDeNoise(2, -1, 2, mask, 9);
    IPL_FCCLabelingDeNoise(INT_MIN, INT_MIN, INT_MIN, mask, 9);
    EXPECT_EQ(picture, before);
}

TEST(Denoise, TheStrideOfASingleRowDoesNotCount) {
    Settings settings;
    settings.UseProcessors(4);
    for (const HoleForm& form : kHoleForms)
        for (unsigned stride : {1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
            Picture picture = {"..#.#"};
            form.function(5, 1, stride, picture.pixels.data(), 1);
            EXPECT_EQ(picture, (Picture{"..###"})) << form.name;
        }
    for (int stride : {1, -1, INT_MAX, INT_MIN}) {
        Picture picture = {"##.#."};
        IPL_FCCLabelingDeNoise(5, 1, stride, picture.pixels.data(), 1);
        EXPECT_EQ(picture, (Picture{"##..."}));
    }
}

// ---- Every form against flooding ------------------------------------------------------------

// Thresholds on both sides of every region's area.
std::set<unsigned> ThresholdsAround(Picture picture, tqref::RegionsOf regions) {
    std::set<unsigned> thresholds = {0, 1, 0x7FFFFFFF};
    for (const tqref::FloodRegion& region : tqref::Flood(picture.View(), regions)) {
        thresholds.insert(static_cast<unsigned>(region.Area()));
        thresholds.insert(static_cast<unsigned>(region.Area() - 1));
    }
    return thresholds;
}

TEST(Denoise, PlainFormsEqualAFloodForEverySmallMask) {
    for (auto [width, height] : {std::pair{4, 4}, {3, 5}, {5, 3}, {8, 2}, {2, 8}})
        for (uint32_t bits = 0; bits < 1u << (width * height); ++bits) {
            const Picture picture = tqtest::SmallPicture(width, height, bits);
            const unsigned threshold = bits * 2654435761u >> 29;
            const Picture holes = FloodHoles(picture, threshold);
            ASSERT_EQ(FillHoles(kEx, picture, threshold), holes) << threshold;
            ASSERT_EQ(FillHoles(kEx2, picture, threshold), holes) << threshold;
            ASSERT_EQ(ClearSpecks(picture, static_cast<int>(threshold)),
                      FloodSpecks(picture, threshold))
                << threshold;
        }
}

TEST(Denoise, BandsEqualAFloodForEverySmallMask) {
    Settings settings;
    Deadline deadline;
    OnPoolThread([&] {
        for (auto [width, height] : {std::pair{4, 4}, {5, 3}, {3, 5}})
            for (uint32_t bits = 0; bits < 1u << (width * height); ++bits) {
                const Picture picture = tqtest::SmallPicture(width, height, bits);
                const unsigned threshold = bits * 2654435761u >> 29;
                const Picture holes = FloodHoles(picture, threshold);
                for (unsigned processors : {2u, 3u}) {
                    settings.UseProcessors(processors);
                    for (const HoleForm& form : kHoleBands)
                        ASSERT_EQ(FillHoles(form, picture, threshold), holes)
                            << form.name << ", " << processors << ", " << threshold << " of\n"
                            << testing::PrintToString(picture);
                }
            }
    });
}

TEST(Denoise, EveryFormEqualsAFloodAtThresholdsAroundEveryArea) {
    Settings settings;
    Deadline deadline;
    uint32_t seed = 0;
    for (auto [width, height] : {std::pair{1, 1}, {1, 9}, {9, 1}, {16, 7}, {33, 20}, {50, 35}})
        for (const Picture& pattern : tqtest::Patterns(width, height, ++seed * 13)) {
            const Picture picture = tqtest::VaryValues(pattern, ++seed);
            for (unsigned threshold : ThresholdsAround(picture, tqref::RegionsOf::kZero)) {
                settings.UseProcessors(2 + ++seed % 15);
                const Picture expected = FloodHoles(picture, threshold);
                for (const HoleForm& form : kHoleForms)
                    ASSERT_EQ(FillHoles(form, picture, threshold), expected)
                        << form.name << ", " << threshold << " of\n"
                        << testing::PrintToString(picture);
            }
            for (unsigned threshold : ThresholdsAround(picture, tqref::RegionsOf::kNonzero))
                ASSERT_EQ(ClearSpecks(picture, static_cast<int>(threshold)),
                          FloodSpecks(picture, threshold))
                    << threshold;
        }
}

TEST(Denoise, NothingButTheFilledPixelsIsTouched) {
    Settings settings;
    uint32_t seed = 0;
    for (auto [width, height] : {std::pair{1, 1}, {3, 2}, {17, 9}, {40, 21}})
        for (const Picture& pattern : tqtest::Patterns(width, height, ++seed)) {
            const Picture picture = tqtest::VaryValues(pattern, ++seed);
            const unsigned threshold = 1 + seed % 9;
            settings.UseProcessors(2 + seed % 7);
            for (Placement placement : tqtest::kTopDownPlacements)
                for (const HoleForm& form : kHoleForms) {
                    PlacedPicture placed(picture, placement, ++seed);
                    form.function(static_cast<unsigned>(width), static_cast<unsigned>(height),
                                  static_cast<unsigned>(placed.Stride()), placed.First(),
                                  threshold);
                    ASSERT_TRUE(placed.Shows(FloodHoles(picture, threshold))) << form.name;
                }
            for (Placement placement : tqtest::kPlacements) {
                PlacedPicture placed(picture, placement, ++seed);
                IPL_FCCLabelingDeNoise(width, height, placed.Stride(), placed.First(),
                                       static_cast<int>(threshold));
                ASSERT_TRUE(placed.Shows(FloodSpecks(picture, threshold)));
            }
        }
}

TEST(Denoise, LongRowsEqualAFloodAtEveryLevel) {
    Settings settings;
    settings.UseProcessors(2);
    uint32_t seed = 0;
    std::vector<int> widths;
    for (int width = 1; width <= 100; ++width) widths.push_back(width);
    for (int width : {255, 256, 257, 1023, 1025, 4095, 4096, 4097, 9000}) widths.push_back(width);
    for (int width : widths)
        for (int percent : {4, 50, 96}) {
            const Picture noise =
                tqtest::NoisePicture(width, 3, percent, static_cast<uint32_t>(width));
            const Picture picture = tqtest::VaryValues(noise, ++seed);
            const unsigned threshold = seed % 40;
            const Picture holes = FloodHoles(picture, threshold);
            const Picture specks = FloodSpecks(picture, threshold);
            const Placement placement = tqtest::kTopDownPlacements[seed % 3];
            for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                settings.Use(level);
                for (const HoleForm& form : kHoleForms) {
                    PlacedPicture placed(picture, placement, seed);
                    form.function(static_cast<unsigned>(width), 3,
                                  static_cast<unsigned>(placed.Stride()), placed.First(),
                                  threshold);
                    ASSERT_TRUE(placed.Shows(holes)) << form.name << ", " << width;
                }
                PlacedPicture placed(picture, placement, seed);
                IPL_FCCLabelingDeNoise(width, 3, placed.Stride(), placed.First(),
                                       static_cast<int>(threshold));
                ASSERT_TRUE(placed.Shows(specks)) << width;
            }
        }
}

// ---- Bands ----------------------------------------------------------------------------------

TEST(DenoiseBands, AtOneProcessorTheMaskStays) {
    Settings settings;
    settings.UseProcessors(1);
    for (const Picture& picture : tqtest::Patterns(20, 9, 5))
        for (const HoleForm& form : kHoleBands)
            for (unsigned threshold : {0u, 1u, 9u, UINT_MAX})
                EXPECT_EQ(FillHoles(form, picture, threshold), picture) << form.name;
}

TEST(DenoiseBands, EqualAFloodAtEveryProcessorCount) {
    Settings settings;
    Deadline deadline;
    uint32_t seed = 0;
    for (auto [width, height] : {std::pair{23, 1}, {19, 5}, {12, 16}, {9, 17}, {40, 31}, {17, 50}})
        for (const Picture& pattern : tqtest::Patterns(width, height, ++seed * 7)) {
            const Picture picture = tqtest::VaryValues(pattern, ++seed);
            for (unsigned processors = 2; processors <= 16; ++processors) {
                settings.UseProcessors(processors);
                const unsigned threshold = 1 + ++seed % 30;
                for (const HoleForm& form : kHoleBands)
                    ASSERT_EQ(FillHoles(form, picture, threshold), FloodHoles(picture, threshold))
                        << form.name << ", " << processors << ", " << threshold << " of\n"
                        << testing::PrintToString(picture);
            }
        }
}

TEST(DenoiseBands, AnUpperRootThatOneLowerHoleTouchesTwiceIsOneHole) {
    Settings settings;
    Deadline deadline;
    const struct {
        Picture specks;
        unsigned processors, area;
    } cases[] = {{{"###", "#.#", "###"}, 2, 8},
                 {{"###", "#.#", "###"}, 3, 8},
                 {{"#######", "#.#.#.#", "#######"}, 2, 18},
                 {{".......", ".#####.", "#..#..#", ".##.##."}, 2, 12},
                 {{".##.", "#..#", ".##."}, 2, 6},
                 {{"###", "#.#", "###", "#.#", "###"}, 3, 13},
                 {{"###......", "###..##..", "...##...."}, 3, 10},
                 {{"#..#", "#..#", "####"}, 2, 8}};
    for (const auto& one : cases)
        for (const HoleForm& form : kHoleBands) {
            settings.UseProcessors(one.processors);
            // A frame of nonzero pixels would move the seams: the ground is nonzero as it is.
            const Picture holes = Inverted(one.specks);
            EXPECT_EQ(FillHoles(form, holes, one.area - 1), holes) << form.name;
            EXPECT_EQ(FillHoles(form, holes, one.area), Picture(holes.width, holes.height, 255))
                << form.name;
        }
}

TEST(DenoiseBands, HostThreadsCleanTheirOwnMasksAtOnce) {
    Settings settings;
    settings.UseProcessors(5);
    Deadline deadline;
    std::atomic<int> wrong{0};
    std::vector<std::thread> hosts;
    for (uint32_t host = 0; host < 6; ++host)
        hosts.emplace_back([host, &wrong] {
            for (const Picture& picture : tqtest::Patterns(60, 45, host))
                for (const HoleForm& form : kHoleForms)
                    if (!(FillHoles(form, picture, 12) == FloodHoles(picture, 12))) ++wrong;
        });
    for (std::thread& host : hosts) host.join();
    EXPECT_EQ(wrong, 0);
}

// ---- Tasks ----------------------------------------------------------------------------------

static_assert(std::is_base_of_v<CTQIPLTaskBase, CZFCCDeNoiseEx_Task> &&
              std::is_base_of_v<CTQIPLTaskBase, CZFCCDeNoiseEx2_Task>);

template <class Task> constexpr bool HasCommonFieldTypes() {
    return std::is_same_v<decltype(Task::m_bLabel), int> &&
           std::is_same_v<decltype(Task::m_nWidth), unsigned int> &&
           std::is_same_v<decltype(Task::m_nFirstRow), unsigned int> &&
           std::is_same_v<decltype(Task::m_nStride), unsigned int> &&
           std::is_same_v<decltype(Task::m_nThreshold), unsigned int> &&
           std::is_same_v<decltype(Task::m_nTopCount), int> &&
           std::is_same_v<decltype(Task::m_nBottomCount), int>;
}
static_assert(HasCommonFieldTypes<CZFCCDeNoiseEx_Task>());
static_assert(std::is_same_v<decltype(CZFCCDeNoiseEx_Task::m_nEndRow), unsigned int>);
static_assert(std::is_same_v<decltype(CZFCCDeNoiseEx_Task::m_pBand), unsigned char*>);
static_assert(HasCommonFieldTypes<CZFCCDeNoiseEx2_Task>());
static_assert(std::is_same_v<decltype(CZFCCDeNoiseEx2_Task::m_nMode), int>);
static_assert(std::is_same_v<decltype(CZFCCDeNoiseEx2_Task::m_nRows), unsigned int>);
static_assert(std::is_same_v<decltype(CZFCCDeNoiseEx2_Task::m_pImage), unsigned char*>);

template <class... Fields> bool InOrder(const Fields&... fields) {
    const void* places[] = {&fields...};
    return std::is_sorted(std::begin(places), std::end(places), std::less<>());
}

TEST(DenoiseTask, HasItsFieldsInOrder) {
    const CZFCCDeNoiseEx_Task ex;
    EXPECT_TRUE(InOrder(ex.m_bLabel, ex.m_nWidth, ex.m_nFirstRow, ex.m_nEndRow, ex.m_nStride,
                        ex.m_pBand, ex.m_nThreshold, ex.m_nTopCount, ex.m_nBottomCount, ex.m_runs));
    EXPECT_EQ(ex.m_bLabel, 1);
    const CZFCCDeNoiseEx2_Task ex2;
    EXPECT_TRUE(InOrder(ex2.m_bLabel, ex2.m_nMode, ex2.m_nWidth, ex2.m_nRows, ex2.m_nFirstRow,
                        ex2.m_nStride, ex2.m_pImage, ex2.m_nThreshold, ex2.m_nTopCount,
                        ex2.m_nBottomCount, ex2.m_runs, ex2.m_seeds));
    EXPECT_EQ(ex2.m_bLabel, 1);
    EXPECT_EQ(ex2.m_nMode, 0);
}

std::unique_ptr<CZFCCDeNoiseEx_Task> ExTask(Picture& picture, unsigned firstRow, unsigned endRow,
                                            unsigned threshold) {
    auto task = std::make_unique<CZFCCDeNoiseEx_Task>();
    task->m_nWidth = static_cast<unsigned>(picture.width);
    task->m_nFirstRow = firstRow;
    task->m_nEndRow = endRow;
    task->m_nStride = task->m_nWidth;
    task->m_pBand = picture.pixels.data() + size_t{firstRow} * task->m_nWidth;
    task->m_nThreshold = threshold;
    return task;
}

std::unique_ptr<CZFCCDeNoiseEx2_Task> Ex2Task(Picture& picture, unsigned firstRow, unsigned rows,
                                              unsigned threshold) {
    auto task = std::make_unique<CZFCCDeNoiseEx2_Task>();
    task->m_nWidth = static_cast<unsigned>(picture.width);
    task->m_nRows = rows;
    task->m_nFirstRow = firstRow;
    task->m_nStride = task->m_nWidth;
    task->m_pImage = picture.pixels.data();
    task->m_nThreshold = threshold;
    return task;
}

// Labels the last three of four rows, then fills.
template <class Task> void ExpectLabelsThenFills(Task& task, const Picture& picture) {
    const Picture before = picture;
    for (int flag : {1, -1, 5}) {
        task.m_bLabel = flag;
        EXPECT_EQ(task.Run(), 1);
        EXPECT_EQ(task.m_nTopCount, 2);
        EXPECT_EQ(task.m_nBottomCount, 1);
        EXPECT_EQ(task.m_bLabel, flag);
        EXPECT_EQ(picture, before);
    }
    EXPECT_EQ((*task.m_runs.begin()).nRow, 1);
    task.m_bLabel = 0;
    EXPECT_EQ(task.Run(), 1);
    EXPECT_EQ(picture, (Picture{"#.#.#", "#.###", "#.###", "#####"}));
}

TEST(DenoiseTask, LabelsAsLongAsItsFlagIsUpAndThenFills) {
    const Picture before = {"#.#.#", "#.#.#", "#.###", "####."};
    Picture picture = before;
    const auto ex = ExTask(picture, 1, 4, 1);
    ExpectLabelsThenFills(*ex, picture);
    picture = before;
    const auto ex2 = Ex2Task(picture, 1, 3, 1);
    ExpectLabelsThenFills(*ex2, picture);
}

TEST(DenoiseTask, WithoutRowsDoesNothing) {
    Picture picture(9, 5);
    for (unsigned endRow : {3u, 2u, 0u}) {
        CZFCCDeNoiseEx_Task task;
        task.m_pBand = picture.pixels.data() + 3 * 9;
        task.m_nWidth = task.m_nStride = 9;
        task.m_nFirstRow = 3;
        task.m_nEndRow = endRow;
        EXPECT_EQ(task.Run(), 1);
        EXPECT_EQ(task.m_nTopCount + task.m_nBottomCount, 0);
        EXPECT_TRUE(task.m_runs.begin() == task.m_runs.end());
        task.m_bLabel = 0;
        EXPECT_EQ(task.Run(), 1);
    }
    CZFCCDeNoiseEx2_Task task;
    task.m_pImage = picture.pixels.data();
    task.m_nWidth = task.m_nStride = 9;
    task.m_nFirstRow = 3;
    EXPECT_EQ(task.Run(), 1);
    EXPECT_EQ(task.m_nTopCount + task.m_nBottomCount, 0);
    EXPECT_TRUE(task.m_runs.begin() == task.m_runs.end());
    for (int mode : {0, 1}) {
        task.m_bLabel = 0;
        task.m_nMode = mode;
        EXPECT_EQ(task.Run(), 1);
        EXPECT_TRUE(task.m_seeds.empty());
    }
    EXPECT_EQ(picture, Picture(9, 5));
}

TEST(DenoiseTask, SeamsJoinHolesOfNeighbours) {
    for (unsigned threshold : {9u, 10u}) {
        const Picture before = Inverted({"###......", "###..##..", "...##...."});
        Picture picture = before;
        std::vector<std::unique_ptr<CZFCCDeNoiseEx_Task>> ex;
        for (unsigned i = 0; i < 3; ++i) ex.push_back(ExTask(picture, i, i + 1, threshold));
        for (const auto& task : ex) task->Run();
        IPL_FCCSeamMerge(*ex[0], *ex[1]);
        IPL_FCCSeamMerge(*ex[1], *ex[2]);
        for (const auto& task : ex) EXPECT_EQ(task->m_bLabel, 0);
        for (const auto& task : ex) task->Run();
        EXPECT_EQ(picture, threshold == 9 ? before : Picture(9, 3, 255));

        picture = before;
        std::vector<std::unique_ptr<CZFCCDeNoiseEx2_Task>> ex2;
        for (unsigned i = 0; i < 3; ++i) ex2.push_back(Ex2Task(picture, i, 1, threshold));
        for (const auto& task : ex2) task->Run();
        IPL_FCCSeamMerge(*ex2[0], *ex2[1]);
        IPL_FCCSeamMerge(*ex2[1], *ex2[2]);
        for (const auto& task : ex2) EXPECT_EQ(task->m_bLabel, 0);
        for (const auto& task : ex2) task->Run();
        EXPECT_EQ(picture, threshold == 9 ? before : Picture(9, 3, 255));
    }
}

// ---- Time -----------------------------------------------------------------------------------

double SecondsOf(const std::function<void()>& work) {
    double best = 1e9;
    for (int run = 0; run < 2; ++run) {
        const std::clock_t begin = std::clock();
        work();
        best = std::min(best, static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
    }
    return best;
}

// A list that is walked to its end for each run makes 16 times the runs 256 times the work, and at
// this size, minutes of it.
void ExpectTimeFollowsRuns(Picture (*draw)(int width, int height)) {
    Settings settings;
    settings.UseProcessors(4);
    const Picture small = draw(480, 270), large = draw(1920, 1080);
    const auto expectInTime = [](const char* name, auto form, auto smallMask, auto largeMask) {
        Deadline deadline;
        const double smallTime = SecondsOf([&] { form(smallMask); });
        const double largeTime = SecondsOf([&] { form(largeMask); });
        EXPECT_LT(largeTime, 100 * std::max(smallTime, 0.001)) << name;
    };
    for (const HoleForm& form : kHoleForms)
        expectInTime(
            form.name, [&](const Picture& mask) { FillHoles(form, mask, 3); }, small, large);
    expectInTime(
        "IPL_FCCLabelingDeNoise", [](const Picture& mask) { ClearSpecks(mask, 3); },
        Inverted(small), Inverted(large));
}

TEST(DenoiseTime, FollowsTheRunsOfNoise) {
    ExpectTimeFollowsRuns(
        [](int width, int height) { return tqtest::NoisePicture(width, height, 60, 1); });
}

TEST(DenoiseTime, FollowsTheRunsOfACombOfHoles) {
    ExpectTimeFollowsRuns(
        [](int width, int height) { return Inverted(tqtest::CombPicture(width, height, true)); });
}

}  // namespace
