// Labelling in bands: the order of rectangles, seams, the tasks, and the joining of runs.

#include <gtest/gtest.h>
#include <tqipl/labelling.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "morph/labelling_tasks.h"
#include "morph/runs.h"
#include "reference/labelling_reference.h"
#include "support/deadline.h"
#include "support/labelling_forms.h"
#include "support/mask_pictures.h"
#include "support/settings.h"

namespace {

using tqtest::Deadline;
using tqtest::EqualsLists;
using tqtest::FilledArray;
using tqtest::kBands;
using tqtest::kLists;
using tqtest::kPlainForms;
using tqtest::LabelForm;
using tqtest::LabelPicture;
using tqtest::OnPoolThread;
using tqtest::Picture;
using tqtest::RectArray;
using tqtest::RectList;
using tqtest::Rects;
using tqtest::Settings;

RectList LabelInBands(unsigned processors, Picture picture, int minimum = 0) {
    Settings settings;
    settings.UseProcessors(processors);
    return LabelPicture(kBands, picture, minimum);
}

TEST(LabellingBands, AtOneProcessorNothingIsListedAndNothingCleared) {
    Settings settings;
    settings.UseProcessors(1);
    for (const Picture& pattern : tqtest::Patterns(20, 9, 5))
        for (int minimum : {-1, 0, 1, 1000}) {
            Picture picture = pattern;
            FilledArray rects;
            IPL_FCCLabeling_MultiThread(20, 9, 20, picture.pixels.data(), rects.Get(), minimum);
            EXPECT_TRUE(rects.EmptyWithItsStep());
            EXPECT_EQ(picture, pattern);
        }
}

TEST(LabellingBands, ARunOfUpperRootsUnderWhichOneLowerRegionHangsTwiceIsOneRegion) {
    Deadline deadline;
    EXPECT_EQ(LabelInBands(2, {"###", "#.#", "###"}), (RectList{{0, 0, 2, 2}}));
    EXPECT_EQ(LabelInBands(3, {"###", "#.#", "###"}), (RectList{{0, 0, 2, 2}}));
    EXPECT_EQ(LabelInBands(2, {"#######", "#.#.#.#", "#######"}), (RectList{{0, 0, 6, 2}}));
    // The roots begin in the last row of a band of two.
    EXPECT_EQ(LabelInBands(2, {".......", ".#####.", "#..#..#", ".##.##."}),
              (RectList{{0, 1, 6, 3}}));
    // Two such regions side by side, and one within the other.
    EXPECT_EQ(LabelInBands(2, {"###.###", "#.#.#.#", "###.###"}),
              (RectList{{0, 0, 2, 2}, {4, 0, 6, 2}}));
    EXPECT_EQ(LabelInBands(
                  2, {"#######", "#.....#", "#.###.#", "#.#.#.#", "#.###.#", "#.....#", "#######"}),
              (RectList{{0, 0, 6, 6}, {2, 2, 4, 4}}));
    // At corners only.
    EXPECT_EQ(LabelInBands(2, {".##.", "#..#", ".##."}), (RectList{{0, 0, 3, 2}}));
    // At both seams of three bands.
    EXPECT_EQ(LabelInBands(3, {"###", "#.#", "###", "#.#", "###"}), (RectList{{0, 0, 2, 4}}));
}

TEST(LabellingBands, SuchARegionIsClearedWhole) {
    Deadline deadline;
    Settings settings;
    for (unsigned processors : {2u, 3u}) {
        settings.UseProcessors(processors);
        Picture picture = {"###...", "#.#..#", "###..."};
        RectArray rects;
        IPL_FCCLabeling_MultiThread(6, 3, 6, picture.pixels.data(), &rects, 8);
        EXPECT_EQ(rects.m_nSize, 0);
        EXPECT_EQ(picture, Picture(6, 3));
    }
}

TEST(LabellingBands, ARegionCanEndUnderARootOfALowerBand) {
    // The third row's run comes under the first row's root, and with it under the second row's run
    // at column 5. Dots in the first two bands show where the region stands in the list.
    const Picture picture = {"###........#...",  //
                             "###..##......#.",  //
                             "...##.........."};
    EXPECT_EQ(LabelInBands(3, picture), (RectList{{11, 0, 11, 0}, {0, 0, 6, 2}, {13, 1, 13, 1}}));
    EXPECT_EQ(LabelInBands(2, picture), (RectList{{0, 0, 6, 2}, {11, 0, 11, 0}, {13, 1, 13, 1}}));
    EXPECT_EQ(LabelInBands(3, {"###......", "###..##..", "...##...."}), (RectList{{0, 0, 6, 2}}));

    Settings settings;
    settings.UseProcessors(3);
    Picture cleared = picture;
    EXPECT_EQ(LabelPicture(kBands, cleared, 10), RectList{});
    EXPECT_EQ(cleared, Picture(15, 3));
}

TEST(LabellingBands, TheLastUpperRegionThatALowerOneMeetsKeepsItsRoot) {
    // The plain forms keep the left root, so that the dot comes second.
    const Picture picture = {"#.#.#", "#...#", "#####"};
    EXPECT_EQ(LabelInBands(2, picture), (RectList{{2, 0, 2, 0}, {0, 0, 4, 2}}));
    for (const LabelForm& form : kPlainForms) {
        Picture plain = picture;
        EXPECT_EQ(LabelPicture(form, plain, 0), (RectList{{0, 0, 4, 2}, {2, 0, 2, 0}}))
            << form.name;
    }
}

TEST(LabellingBands, UpperRunsOfOneRegionMeetALowerRunOnce) {
    EXPECT_EQ(LabelInBands(2, {"###", "#.#", "###", "..."}), (RectList{{0, 0, 2, 2}}));
    EXPECT_EQ(LabelInBands(2, {"#####", "#.#.#", "#####", "....."}), (RectList{{0, 0, 4, 2}}));
}

TEST(LabellingBands, RectanglesComeBandByBand) {
    // The right arm's root is of the first band, the left arm's of the second: the right arm loses
    // its root without bands and keeps it with them.
    const Picture picture = {"....#.#", "....#..", "#...#..", "#####.."};
    for (const LabelForm& form : kPlainForms) {
        Picture plain = picture;
        EXPECT_EQ(LabelPicture(form, plain, 0), (RectList{{6, 0, 6, 0}, {0, 0, 4, 3}}))
            << form.name;
    }
    EXPECT_EQ(LabelInBands(2, picture), (RectList{{0, 0, 4, 3}, {6, 0, 6, 0}}));
    // Two regions that both begin in the second row, the first of a band or not.
    const Picture split = {".....", "#...#", "#...#", "#####"};
    EXPECT_EQ(LabelInBands(2, split), (RectList{{0, 1, 4, 3}}));
    EXPECT_EQ(LabelInBands(4, split), (RectList{{0, 1, 4, 3}}));
}

TEST(LabellingBands, FewerRowsThanProcessorsGoToTheLastBand) {
    Settings settings;
    for (int processors = 2; processors <= 16; ++processors)
        for (int height = 1; height < processors; ++height)
            for (const Picture& pattern : tqtest::Patterns(11, height, 3)) {
                settings.UseProcessors(static_cast<unsigned>(processors));
                Picture inBands = pattern, plain = pattern;
                ASSERT_EQ(LabelPicture(kBands, inBands, 2), LabelPicture(kLists, plain, 2))
                    << processors << " processors\n"
                    << testing::PrintToString(pattern);
                ASSERT_EQ(inBands, plain);
            }
}

TEST(LabellingBands, HostThreadsLabelTheirOwnMasksAtOnce) {
    Settings settings;
    settings.UseProcessors(7);
    Deadline deadline;
    std::atomic<int> wrong{0};
    std::vector<std::thread> hosts;
    for (uint32_t host = 0; host < 6; ++host)
        hosts.emplace_back([host, &wrong] {
            for (const Picture& pattern : tqtest::Patterns(60, 45, host))
                for (int minimum : {0, 5}) {
                    Picture expected = pattern, actual = pattern;
                    const RectList rects = tqref::LabelInBands(expected.View(), minimum, 7);
                    if (LabelPicture(kBands, actual, minimum) != rects || !(actual == expected))
                        ++wrong;
                }
        });
    for (std::thread& host : hosts) host.join();
    EXPECT_EQ(wrong, 0);
}

// Every `step`th mask of a size.
void ExpectSmallMasksEqualTheLists(int width, int height, uint32_t step,
                                   const std::vector<int>& processorCounts) {
    Settings settings;
    Deadline deadline;
    OnPoolThread([&] {
        for (uint32_t bits = 0; bits < 1u << (width * height); bits += step) {
            const Picture picture = tqtest::SmallPicture(width, height, bits);
            const int minimum = bits % 3 == 0 ? static_cast<int>(bits % 7) : 0;
            for (int processors : processorCounts) {
                settings.UseProcessors(static_cast<unsigned>(processors));
                ASSERT_TRUE(EqualsLists(kBands, processors, picture, minimum));
            }
        }
    });
}

TEST(LabellingBands, EqualTheListsForEveryMaskOfFourRows) {
    ExpectSmallMasksEqualTheLists(4, 4, 1, {2, 3, 4});
}

TEST(LabellingBands, EqualTheListsForEveryMaskOfThreeRows) {
    ExpectSmallMasksEqualTheLists(5, 3, 1, {2, 3});
    ExpectSmallMasksEqualTheLists(6, 3, 7, {2, 3});
    ExpectSmallMasksEqualTheLists(9, 3, 2503, {2, 3});
}

TEST(LabellingBands, EqualTheListsForEveryMaskOfFiveRows) {
    ExpectSmallMasksEqualTheLists(3, 5, 1, {2, 3, 5});
    ExpectSmallMasksEqualTheLists(5, 5, 601, {2, 3, 5});
}

TEST(LabellingBands, EqualTheListsAtEveryProcessorCount) {
    Settings settings;
    Deadline deadline;
    uint32_t seed = 0;
    for (auto [width, height] :
         {std::pair{23, 1}, {23, 2}, {19, 5}, {12, 15}, {12, 16}, {9, 17}, {40, 31}, {17, 50}})
        for (const Picture& pattern : tqtest::Patterns(width, height, ++seed * 77)) {
            const Picture picture = tqtest::VaryValues(pattern, ++seed);
            for (int processors = 1; processors <= 16; ++processors) {
                settings.UseProcessors(static_cast<unsigned>(processors));
                ASSERT_TRUE(EqualsLists(kBands, processors, picture,
                                        processors % 2 == 0 ? 0 : static_cast<int>(seed % 9)));
            }
        }
}

// The runs in their order.
std::vector<FCC_RUN*> RunsOf(tq::RunVector& runs) {
    std::vector<FCC_RUN*> pointers;
    for (FCC_RUN& run : runs) pointers.push_back(&run);
    return pointers;
}

// ---- Tasks ----------------------------------------------------------------------------------

static_assert(std::is_base_of_v<CTQIPLTaskBase, CZFCCLabeing_Task>);
static_assert(std::is_same_v<decltype(CZFCCLabeing_Task::m_bLabel), int>);
static_assert(std::is_same_v<decltype(CZFCCLabeing_Task::m_nWidth), int>);
static_assert(std::is_same_v<decltype(CZFCCLabeing_Task::m_nFirstRow), int>);
static_assert(std::is_same_v<decltype(CZFCCLabeing_Task::m_nEndRow), int>);
static_assert(std::is_same_v<decltype(CZFCCLabeing_Task::m_nStride), int>);
static_assert(std::is_same_v<decltype(CZFCCLabeing_Task::m_pBand), unsigned char*>);
static_assert(std::is_same_v<decltype(CZFCCLabeing_Task::m_rects), CTQArray<TQ_RECT, TQ_RECT&>>);
static_assert(std::is_same_v<decltype(CZFCCLabeing_Task::m_nMinimumSize), int>);
static_assert(std::is_same_v<decltype(CZFCCLabeing_Task::m_nTopCount), int>);
static_assert(std::is_same_v<decltype(CZFCCLabeing_Task::m_nBottomCount), int>);

TEST(LabelingTask, HasItsFieldsInOrder) {
    const CZFCCLabeing_Task task;
    const void* fields[] = {&task.m_bLabel,       &task.m_nWidth,       &task.m_nFirstRow,
                            &task.m_nEndRow,      &task.m_nStride,      &task.m_pBand,
                            &task.m_rects,        &task.m_nMinimumSize, &task.m_nTopCount,
                            &task.m_nBottomCount, &task.m_runs};
    EXPECT_TRUE(std::is_sorted(std::begin(fields), std::end(fields), std::less<>()));
    EXPECT_NE(task.m_bLabel, 0);
}

std::unique_ptr<CZFCCLabeing_Task> BandTask(Picture& picture, int firstRow, int endRow,
                                            int minimum) {
    auto task = std::make_unique<CZFCCLabeing_Task>();
    task->m_nWidth = picture.width;
    task->m_nFirstRow = firstRow;
    task->m_nEndRow = endRow;
    task->m_nStride = picture.width;
    task->m_pBand = picture.pixels.data() + static_cast<size_t>(firstRow) * picture.width;
    task->m_nMinimumSize = minimum;
    return task;
}

TEST(LabelingTask, CountsRowsOfTheWholeImageAndTheRunsOfItsEdges) {
    Picture picture = {"#####", "#.#.#", "..#..", ".#.#."};
    const auto task = BandTask(picture, 1, 4, 0);
    EXPECT_EQ(task->Run(), 1);
    EXPECT_EQ(task->m_nTopCount, 3);
    EXPECT_EQ(task->m_nBottomCount, 2);
    EXPECT_EQ(task->m_rects.m_nSize, 0);
    const int expected[][3] = {{1, 0, 0}, {1, 2, 2}, {1, 4, 4}, {2, 2, 2}, {3, 1, 1}, {3, 3, 3}};
    const std::vector<FCC_RUN*> runs = RunsOf(task->m_runs);
    ASSERT_EQ(runs.size(), 6u);
    for (int i = 0; i < 6; ++i) {
        const FCC_RUN& run = *runs[i];
        EXPECT_EQ(run.nRow, expected[i][0]);
        EXPECT_EQ(run.nStart, expected[i][1]);
        EXPECT_EQ(run.nEnd, expected[i][2]);
        EXPECT_EQ(run.bHead, i < 3);
    }

    const auto row = BandTask(picture, 1, 2, 0);
    row->Run();
    EXPECT_EQ(row->m_nTopCount, 3);
    EXPECT_EQ(row->m_nBottomCount, 3);
    Picture gap = {"##.##", ".....", "....."};
    const auto open = BandTask(gap, 0, 3, 0);
    open->Run();
    EXPECT_EQ(open->m_nTopCount, 2);
    EXPECT_EQ(open->m_nBottomCount, 0);
}

TEST(LabelingTask, LabelsAsLongAsItsFlagIsUp) {
    Picture picture = {"##.#"}, before = picture;
    const auto task = BandTask(picture, 0, 1, 1);
    for (int flag : {1, -1, 7}) {
        task->m_bLabel = flag;
        EXPECT_EQ(task->Run(), 1);
        EXPECT_EQ(task->m_bLabel, flag);
        EXPECT_EQ(task->m_rects.m_nSize, 0);
        EXPECT_EQ(picture, before);
    }
    task->m_bLabel = 0;
    EXPECT_EQ(task->Run(), 1);
    EXPECT_EQ(Rects(task->m_rects), (RectList{{0, 0, 1, 0}}));
    EXPECT_EQ(picture, (Picture{"##.."}));
}

TEST(LabelingTask, WithoutRowsDoesNothing) {
    Picture picture(9, 5, 255);
    for (int endRow : {3, 2, -5}) {
        CZFCCLabeing_Task task;
        task.m_pBand = picture.pixels.data() + 3 * 9;
        task.m_nWidth = 9;
        task.m_nFirstRow = 3;
        task.m_nEndRow = endRow;
        task.m_nStride = 9;
        EXPECT_EQ(task.Run(), 1);
        EXPECT_EQ(task.m_nTopCount, 0);
        EXPECT_EQ(task.m_nBottomCount, 0);
        EXPECT_TRUE(RunsOf(task.m_runs).empty());
        task.m_bLabel = 0;
        EXPECT_EQ(task.Run(), 1);
        EXPECT_EQ(task.m_rects.m_nSize, 0);
    }
}

TEST(LabelingTask, FinishesRunsOfOtherBandsBelowAndAbove) {
    // The root ends up in the middle band; its runs lie in all three.
    Picture picture = {"###......", "###..##..", "...##...."};
    std::vector<std::unique_ptr<CZFCCLabeing_Task>> tasks;
    for (int i = 0; i < 3; ++i) {
        tasks.push_back(BandTask(picture, i, i + 1, 10));
        tasks[i]->Run();
    }
    IPL_FCCSeamMerge(*tasks[0], *tasks[1]);
    EXPECT_EQ(tasks[0]->m_bLabel, 0);
    EXPECT_EQ(tasks[1]->m_bLabel, 0);
    EXPECT_NE(tasks[2]->m_bLabel, 0);
    IPL_FCCSeamMerge(*tasks[1], *tasks[2]);
    EXPECT_EQ(tasks[2]->m_bLabel, 0);
    const Picture before = picture;
    tasks[0]->Run();
    tasks[2]->Run();
    EXPECT_EQ(picture, before);
    tasks[1]->Run();
    EXPECT_EQ(picture, Picture(9, 3));
    for (const auto& task : tasks) EXPECT_EQ(task->m_rects.m_nSize, 0);
}

// ---- Runs -----------------------------------------------------------------------------------

static_assert(offsetof(FCC_RUN, bHead) == 0 && offsetof(FCC_RUN, nRow) == 4 &&
              offsetof(FCC_RUN, nStart) == 8 && offsetof(FCC_RUN, nEnd) == 12 &&
              offsetof(FCC_RUN, pRoot) == 16 && offsetof(FCC_RUN, pNext) == 24 &&
              offsetof(FCC_RUN, pTail) == 32 && offsetof(FCC_RUN, nArea) == 40);
static_assert(std::is_same_v<decltype(FCC_RUN::bHead), int32_t> &&
              std::is_same_v<decltype(FCC_RUN::nArea), uint32_t>);

TEST(Run, IsARootAndNotFilledAtFirst) {
    const FCC_RUN run;
    EXPECT_EQ(run.bHead, 1);
    EXPECT_EQ(run.nRow, -1);
    EXPECT_EQ(run.nStart, -1);
    EXPECT_EQ(run.nEnd, -1);
    EXPECT_EQ(run.pRoot, nullptr);
    EXPECT_EQ(run.pNext, nullptr);
    EXPECT_EQ(run.pTail, nullptr);
    EXPECT_EQ(run.nArea, 0u);
}

using RunPointers = std::vector<const FCC_RUN*>;

RunPointers ListOf(const FCC_RUN* root) {
    RunPointers list;
    for (; root != nullptr && list.size() < 1000; root = root->pNext) list.push_back(root);
    return list;
}

class JoinRuns : public testing::Test {
protected:
    JoinRuns() {
        for (uint32_t i = 0; i < 8; ++i) m_runs[i].nArea = 1u << i;
    }
    FCC_RUN* At(int i) { return &m_runs[i]; }
    // The runs in this order are one region, the first of them its root.
    void ExpectList(const std::vector<int>& members) {
        RunPointers expected;
        for (int i : members) {
            expected.push_back(At(i));
            EXPECT_EQ(At(i)->bHead, i == members[0]) << i;
            EXPECT_EQ(IPL_FCCFindRoot(At(i)), At(members[0])) << i;
        }
        EXPECT_EQ(ListOf(At(members[0])), expected);
        EXPECT_EQ(At(members[0])->pRoot, nullptr);
    }
    void ExpectRegion(const std::vector<int>& members) {
        ExpectList(members);
        uint32_t area = 0;
        for (int i : members) area += 1u << i;
        EXPECT_EQ(At(members[0])->nArea, area);
    }

    FCC_RUN m_runs[8];
};

TEST_F(JoinRuns, TheRootIsFoundThroughAnyNumberOfLinks) {
    for (int i = 0; i < 7; ++i) At(i)->pRoot = At(i + 1);
    EXPECT_EQ(IPL_FCCFindRoot(At(7)), At(7));
    for (int i : {3, 0, 6, 0, 1}) EXPECT_EQ(IPL_FCCFindRoot(At(i)), At(7)) << i;
}

TEST_F(JoinRuns, AnAttachedRunGoesBehindTheWholeRegion) {
    IPL_FCCAttachRun(At(3), At(1));
    ExpectRegion({1, 3});
    IPL_FCCAttachRun(At(0), At(3));
    ExpectRegion({1, 3, 0});
    IPL_FCCAttachRun(At(5), At(1));
    ExpectRegion({1, 3, 0, 5});
}

TEST_F(JoinRuns, AMergedListGoesBehindTheOtherAsAWhole) {
    IPL_FCCAttachRun(At(1), At(0));
    IPL_FCCAttachRun(At(3), At(2));
    IPL_FCCAttachRun(At(4), At(2));
    IPL_FCCMergeList(At(1), At(2));
    ExpectList({0, 1, 2, 3, 4});
    IPL_FCCMergeList(At(5), At(0));
    ExpectList({5, 0, 1, 2, 3, 4});
    IPL_FCCMergeList(At(4), At(6));
    ExpectList({5, 0, 1, 2, 3, 4, 6});
    IPL_FCCAttachRun(At(7), At(3));
    ExpectList({5, 0, 1, 2, 3, 4, 6, 7});
}

TEST_F(JoinRuns, AUnionKeepsTheFirstRootAndDoesNothingWithinARegion) {
    IPL_FCCUnion(At(4), At(2));
    ExpectRegion({4, 2});
    IPL_FCCUnion(At(2), At(4));
    IPL_FCCUnion(At(4), At(2));
    IPL_FCCUnion(At(2), At(2));
    ExpectRegion({4, 2});
    IPL_FCCAttachRun(At(0), At(6));
    IPL_FCCUnion(At(0), At(2));
    ExpectRegion({6, 0, 4, 2});
    IPL_FCCUnion(At(1), At(0));
    ExpectRegion({1, 6, 0, 4, 2});
    IPL_FCCUnion(At(2), At(6));
    ExpectRegion({1, 6, 0, 4, 2});
    IPL_FCCUnion(At(3), At(5));
    IPL_FCCUnion(At(2), At(5));
    ExpectRegion({1, 6, 0, 4, 2, 3, 5});
}

// The runs, the roots and the lists of bands against the reference.
testing::AssertionResult SameLists(const std::vector<tq::RunVector*>& bands,
                                   const std::vector<tqref::RunBand>& expected) {
    std::map<const FCC_RUN*, const tqref::ListRun*> pairs;
    std::vector<FCC_RUN*> all;
    for (size_t i = 0; i < bands.size(); ++i) {
        const std::vector<FCC_RUN*> runs = RunsOf(*bands[i]);
        if (runs.size() != expected[i].runs.size())
            return testing::AssertionFailure() << runs.size() << " runs in band " << i;
        for (size_t j = 0; j < runs.size(); ++j) {
            const tqref::ListRun& other = *expected[i].runs[j];
            if (runs[j]->nRow != other.row || runs[j]->nStart != other.start ||
                runs[j]->nEnd != other.end)
                return testing::AssertionFailure() << "run " << j << " of band " << i;
            pairs[runs[j]] = &other;
            all.push_back(runs[j]);
        }
    }
    for (FCC_RUN* run : all) {
        const tqref::ListRun* other = pairs.at(run);
        const auto failure = [&] {
            return testing::AssertionFailure()
                   << "row " << other->row << ", column " << other->start << ": ";
        };
        if (run->bHead != (other->head ? 1 : 0)) return failure() << "head";
        const tqref::ListRun* root = other->root == nullptr ? other : other->root;
        if (pairs.at(IPL_FCCFindRoot(run)) != root) return failure() << "root";
        const tqref::ListRun* next = run->pNext == nullptr ? nullptr : pairs.at(run->pNext);
        if (next != other->next) return failure() << "next";
        if (other->head && run->nArea != tqref::AreaOf(other)) return failure() << "area";
    }
    return testing::AssertionSuccess();
}

TEST(Runs, AreListedInTheOrderOfTheReferenceThroughAllSeams) {
    uint32_t seed = 0;
    for (auto [width, height] : {std::pair{9, 7}, {24, 16}, {50, 33}})
        for (const Picture& pattern : tqtest::Patterns(width, height, ++seed * 31))
            for (int count = 1; count <= 16; ++count) {
                Picture picture = pattern;
                std::vector<std::unique_ptr<CZFCCLabeing_Task>> tasks;
                std::vector<tq::RunVector*> runs;
                const int rows = height / count;
                for (int i = 0; i < count; ++i) {
                    const int end = i + 1 < count ? (i + 1) * rows : height;
                    tasks.push_back(BandTask(picture, i * rows, end, 3));
                    tasks[i]->Run();
                    runs.push_back(&tasks[i]->m_runs);
                }
                for (int i = 0; i + 1 < count; ++i) IPL_FCCSeamMerge(*tasks[i], *tasks[i + 1]);
                const std::vector<tqref::RunBand> expected =
                    tqref::LabelBands(picture.View(), tqref::RegionsOf::kNonzero, count);
                ASSERT_TRUE(SameLists(runs, expected)) << count << " bands\n"
                                                       << testing::PrintToString(pattern);
                for (int i = 0; i < count; ++i) {
                    ASSERT_EQ(tasks[i]->m_nTopCount, expected[i].topCount) << i;
                    ASSERT_EQ(tasks[i]->m_nBottomCount, expected[i].bottomCount) << i;
                }
            }
}

TEST(Runs, OfZerosAreListedInTheOrderOfTheReference) {
    for (const Picture& pattern : tqtest::Patterns(40, 25, 9)) {
        Picture picture = pattern;
        const tq::MaskRows rows = {picture.pixels.data() + 3 * 40, 40, 40, 3, 25};
        tq::RunVector runs;
        runs.BeginRow();
        runs.Add(1, 2, 3);  // is dropped
        const tq::EdgeRowCounts counts = tq::LabelRows(rows, tq::RunPixels::kZero, runs);
        std::vector<tqref::RunBand> expected;
        expected.push_back(tqref::LabelRows(picture.View(), tqref::RegionsOf::kZero, 3, 25));
        ASSERT_TRUE(SameLists({&runs}, expected)) << testing::PrintToString(pattern);
        ASSERT_EQ(counts.top, expected[0].topCount);
        ASSERT_EQ(counts.bottom, expected[0].bottomCount);
    }
}

}  // namespace
