// Cutting images in bands and running the tasks.

#include "frame/band.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <new>
#include <numeric>
#include <thread>
#include <vector>

#include "frame/rows.h"
#include "support/deadline.h"
#include "support/settings.h"

namespace {

std::vector<int> Lengths(const tq::BandPlan& plan) {
    std::vector<int> lengths;
    for (int i = 0; i < plan.count; ++i) lengths.push_back(plan.Length(i));
    return lengths;
}

class Bands : public testing::Test {
protected:
    std::vector<int> Plan(unsigned int processors, tq::BandRule rule, int total) {
        m_settings.UseProcessors(processors);
        return Lengths(tq::PlanBands(rule, total));
    }

    tqtest::Deadline m_deadline;
    tqtest::Settings m_settings;
};

constexpr tq::BandRule kAllRules[] = {tq::kBandFormA, tq::kBandFormB, tq::kBandFormBUnsigned,
                                      tq::kBandFormC, tq::kBandFormPlanes};

TEST_F(Bands, HeightThatDividesGivesEqualBands) {
    for (const tq::BandRule& rule : kAllRules)
        EXPECT_EQ(Plan(8, rule, 1080), std::vector<int>(8, 135));
}

TEST_F(Bands, LastBandTakesTheRest) {
    for (const tq::BandRule& rule : kAllRules) {
        EXPECT_EQ(Plan(8, rule, 1085), (std::vector<int>{135, 135, 135, 135, 135, 135, 135, 140}));
        EXPECT_EQ(Plan(8, rule, 8), std::vector<int>(8, 1));
        EXPECT_EQ(Plan(8, rule, 15), (std::vector<int>{1, 1, 1, 1, 1, 1, 1, 8}));
        EXPECT_EQ(Plan(3, rule, 7), (std::vector<int>{2, 2, 3}));
        EXPECT_EQ(Plan(1, rule, 7), std::vector<int>{7});
    }
}

TEST_F(Bands, FewerRowsThanProcessorsAreOneBandInFormsAAndB) {
    for (const tq::BandRule& rule : {tq::kBandFormA, tq::kBandFormB, tq::kBandFormBUnsigned}) {
        EXPECT_EQ(Plan(8, rule, 5), std::vector<int>{5});
        EXPECT_EQ(Plan(8, rule, 7), std::vector<int>{7});
        EXPECT_EQ(Plan(8, rule, 0), std::vector<int>{0});
    }
}

TEST_F(Bands, FewerRowsThanProcessorsFallToTheLastBandWithoutCollapse) {
    for (const tq::BandRule& rule : {tq::kBandFormC, tq::kBandFormPlanes}) {
        EXPECT_EQ(Plan(8, rule, 5), (std::vector<int>{0, 0, 0, 0, 0, 0, 0, 5}));
        EXPECT_EQ(Plan(8, rule, 0), std::vector<int>(8, 0));
    }
}

TEST_F(Bands, NegativeTotalsGiveBandsWithoutWork) {
    for (unsigned int processors : {1u, 2u, 3u, 8u, 16u})
        for (const tq::BandRule& rule : kAllRules)
            for (int total : {-1, -5, -7, -8, -20, -1080, -2147483647 - 1})
                for (int length : Plan(processors, rule, total)) EXPECT_LE(length, 0) << total;
}

TEST_F(Bands, NegativeTotalIsOneBandWhereTheDivisionIsUnsigned) {
    EXPECT_EQ(Plan(8, tq::kBandFormBUnsigned, -5), std::vector<int>{-5});
    EXPECT_EQ(Plan(2, tq::kBandFormBUnsigned, -2147483647 - 1), std::vector<int>{-2147483647 - 1});
}

TEST_F(Bands, BandsOfAnyPlanAddUp) {
    for (unsigned int processors = 1; processors <= 16; ++processors)
        for (const tq::BandRule& rule : kAllRules)
            for (int total = 0; total <= 70; ++total) {
                const std::vector<int> lengths = Plan(processors, rule, total);
                EXPECT_EQ(std::accumulate(lengths.begin(), lengths.end(), 0), total);
                EXPECT_TRUE(lengths.size() == 1 || lengths.size() == processors);
                EXPECT_TRUE(std::is_sorted(lengths.begin(), lengths.end()));
                EXPECT_GE(lengths.front(), 0);
            }
}

TEST_F(Bands, OnlySomeFormsRunPlainAtOneProcessor) {
    m_settings.UseProcessors(1);
    EXPECT_TRUE(tq::RunsPlain(tq::kBandFormA));
    EXPECT_TRUE(tq::RunsPlain(tq::kBandFormPlanes));
    EXPECT_FALSE(tq::RunsPlain(tq::kBandFormB));
    EXPECT_FALSE(tq::RunsPlain(tq::kBandFormBUnsigned));
    EXPECT_FALSE(tq::RunsPlain(tq::kBandFormC));
    m_settings.UseProcessors(2);
    for (const tq::BandRule& rule : kAllRules) EXPECT_FALSE(tq::RunsPlain(rule));
}

TEST(Stripes, AreEqualButForTheLastOneWhichTakesTheRest) {
    const auto lengths = [](unsigned int whole, unsigned int parts) {
        const tq::Stripes stripes(whole, parts);
        std::vector<unsigned int> result;
        unsigned int first = 0;
        for (unsigned int i = 0; i < stripes.count; ++i) {
            EXPECT_EQ(stripes.First(i), first);
            result.push_back(stripes.Length(i));
            first += result.back();
        }
        return result;
    };
    using Lengths = std::vector<unsigned int>;
    EXPECT_EQ(lengths(12, 3), (Lengths{4, 4, 4}));
    EXPECT_EQ(lengths(14, 3), (Lengths{4, 4, 6}));
    EXPECT_EQ(lengths(3, 3), (Lengths{1, 1, 1}));
    EXPECT_EQ(lengths(2, 3), Lengths{2});
    EXPECT_EQ(lengths(0, 3), Lengths{0});
    EXPECT_EQ(lengths(7, 1), Lengths{7});
    EXPECT_EQ(lengths(0xFFFFFFFF, 2), (Lengths{0x7FFFFFFF, 0x80000000}));
}

TEST(AfterRows, MovesByRowsTimesStride) {
    unsigned char bytes[64];
    EXPECT_EQ(tq::AfterRows(bytes, 3, 10), bytes + 30);
    EXPECT_EQ(tq::AfterRows(bytes + 40, 3, -10), bytes + 10);
    int words[64];
    EXPECT_EQ(tq::AfterRows(words, 3, 10), words + 30);
}

TEST(AfterRows, DoesNotMoveNullOrWithoutRows) {
    unsigned char byte;
    unsigned char* const none = nullptr;
    EXPECT_EQ(tq::AfterRows(none, 3, 10), nullptr);
    EXPECT_EQ(tq::AfterRows(none, 0, 10), nullptr);
    EXPECT_EQ(tq::AfterRows(&byte, 0, 1000), &byte);
    EXPECT_EQ(tq::AfterRows(&byte, -1, 1000), &byte);
    EXPECT_EQ(tq::AfterRows(&byte, -2147483647 - 1, 1000), &byte);
}

TEST(ForEachRow, VisitsRowsInOrderAndStaysInTheImage) {
    const unsigned char src[20] = {};
    int dst[20] = {};
    std::vector<std::pair<ptrdiff_t, ptrdiff_t>> seen;
    tq::ForEachRow(3, 4, src, 6, dst, [&](const unsigned char* s, int* d) {
        seen.push_back({s - src, d - dst});
    });
    EXPECT_EQ(seen, (std::vector<std::pair<ptrdiff_t, ptrdiff_t>>{{0, 0}, {4, 6}, {8, 12}}));
    const auto none = [&](const unsigned char*, int*) { FAIL(); };
    tq::ForEachRow(0, 4, src, 6, dst, none);
    tq::ForEachRow(-3, 4, src, 6, dst, none);
}

// ---- Sets of tasks ------------------------------------------------------------

class CountedTask : public CTQIPLTaskBase {
public:
    explicit CountedTask(int number = 0) : m_nNumber(number) {}
    ~CountedTask() override { s_ended.push_back(m_nNumber); }
    int Run() override {
        ++m_nRuns;
        ++s_runs;
        return 1;
    }

    int m_nNumber;
    int m_nRuns = 0;
    static inline std::atomic<int> s_runs{0};
    static inline std::vector<int> s_ended;
};

TEST(TaskSet, RunsAsOftenAsAskedAndDeletesInOrder) {
    tqtest::Deadline deadline;
    tqtest::Settings settings;
    for (unsigned int processors : {1u, 2u, 4u}) {
        settings.UseProcessors(processors);
        CountedTask::s_ended.clear();
        CountedTask::s_runs = 0;
        {
            tq::TaskSet<CountedTask> tasks;
            for (int i = 0; i < 6; ++i) {
                CountedTask& task = tasks.Add();
                task.m_nNumber = i;
                EXPECT_EQ(&tasks.At(i), &task);
            }
            EXPECT_EQ(CountedTask::s_runs, 0);
            tasks.Run();
            EXPECT_EQ(CountedTask::s_runs, 6);
            tasks.Run();
            for (int i = 0; i < 6; ++i) EXPECT_EQ(tasks.At(i).m_nRuns, 2);
            EXPECT_TRUE(CountedTask::s_ended.empty());
        }
        EXPECT_EQ(CountedTask::s_ended, (std::vector<int>{0, 1, 2, 3, 4, 5}));
    }
}

TEST(TaskSet, EmptySetDoesNothing) {
    CountedTask::s_ended.clear();
    {
        tq::TaskSet<CountedTask> tasks;
        tasks.Run();
    }
    EXPECT_TRUE(CountedTask::s_ended.empty());
}

// A task that may throw, and counts those that are there.
class FaultyTask : public CTQIPLTaskBase {
public:
    FaultyTask() { ++s_living; }
    ~FaultyTask() override { --s_living; }
    int Run() override {
        ++s_runs;
        if (m_nNumber == 2) throw std::bad_alloc();
        if (m_nNumber == 3) throw m_nNumber;
        return 1;
    }

    int m_nNumber = 0;
    static inline std::atomic<int> s_living{0}, s_runs{0};
};

TEST(TaskSet, HandsOnWhatATaskThrowsAndDeletesAll) {
    tqtest::Deadline deadline;
    tqtest::Settings settings;
    for (unsigned int processors : {1u, 2u, 4u}) {
        settings.UseProcessors(processors);
        for (int stride : {10, 9}) {  // rows of their own, and rows that share bytes
            tq::TaskSet<FaultyTask> tasks;
            for (int i = 0; i < 6; ++i) tasks.Add().m_nNumber = i == 4 ? 2 : 0;
            EXPECT_THROW(tasks.RunOnRows(10, stride), std::bad_alloc);
            EXPECT_EQ(FaultyTask::s_living, 6);
            tasks.At(4).m_nNumber = 3;
            EXPECT_THROW(tasks.RunOnRows(10, stride), int);
            tasks.At(4).m_nNumber = 0;
            FaultyTask::s_runs = 0;
            tasks.RunOnRows(10, stride);
            EXPECT_EQ(FaultyTask::s_runs, 6);
        }
        EXPECT_EQ(FaultyTask::s_living, 0);
    }
}

// ---- A whole form -------------------------------------------------------------

// A plain form for the tests: each value is 3 times the source plus the width.
template <class Dst>
void Plain(int width, int height, int srcStride, unsigned char* src, int dstStride, Dst* dst) {
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            dst[y * dstStride + x] = static_cast<Dst>(3 * src[y * srcStride + x] + width);
}

struct Seen {
    int height, mode;
    unsigned char* src;
    void* dst;
};
std::mutex g_seenMutex;
std::vector<Seen> g_seen;
std::atomic<int> g_tasksAlive{0}, g_tasksMade{0};

template <class Dst> class BandTask : public tq::PixelBandTask<Dst> {
public:
    BandTask() {
        ++g_tasksAlive;
        ++g_tasksMade;
    }
    ~BandTask() override { --g_tasksAlive; }
    int Run() override {
        {
            std::lock_guard lock(g_seenMutex);
            g_seen.push_back({this->m_nHeight, m_nMode, this->m_pSrc, this->m_pDst});
        }
        Plain<Dst>(this->m_nWidth, this->m_nHeight, this->m_nSrcStride, this->m_pSrc,
                   this->m_nDstStride, this->m_pDst);
        return 1;
    }

    int m_nMode = 0;
};

class PixelBands : public Bands {
protected:
    PixelBands() {
        g_seen.clear();
        g_tasksMade = 0;
    }
    ~PixelBands() override { EXPECT_EQ(g_tasksAlive, 0); }

    static TQ_THREAD_STATS GlobalStats() {
        TQ_THREAD_STATS stats;
        CTQIPLThreadPool::GetInstance()->GetThreadStats(&stats);
        return stats;
    }
};

std::thread::id g_plainThread;
int g_plainCalls = 0;

void NotedPlain(int width, int height, int srcStride, unsigned char* src, int dstStride,
                unsigned char* dst) {
    g_plainThread = std::this_thread::get_id();
    ++g_plainCalls;
    Plain(width, height, srcStride, src, dstStride, dst);
}

TEST_F(PixelBands, OneProcessorTouchesNoPoolInFormA) {
    m_settings.UseProcessors(1);
    for (const tq::BandRule& rule : {tq::kBandFormA, tq::kBandFormPlanes}) {
        const TQ_THREAD_STATS before = GlobalStats();
        g_plainCalls = 0;
        unsigned char src[12] = {1, 2, 3, 4}, dst[12] = {};
        tq::RunPixelBands<BandTask<unsigned char>>(rule, NotedPlain, 3, 4, 3, src, 3, dst);
        EXPECT_EQ(g_plainCalls, 1);
        EXPECT_EQ(g_plainThread, std::this_thread::get_id());
        EXPECT_EQ(g_tasksMade, 0);
        EXPECT_EQ(dst[1], 9);
        const TQ_THREAD_STATS after = GlobalStats();
        EXPECT_EQ(after.m_nMaxThreads, before.m_nMaxThreads);
        EXPECT_EQ(after.m_nThreadCount, before.m_nThreadCount);
        EXPECT_EQ(after.m_nBusyThreads, before.m_nBusyThreads);
        EXPECT_EQ(after.m_nIdleThreads, before.m_nIdleThreads);
    }
}

TEST_F(PixelBands, OneProcessorIsOneTaskInFormsBAndC) {
    m_settings.UseProcessors(1);
    for (const tq::BandRule& rule : {tq::kBandFormB, tq::kBandFormBUnsigned, tq::kBandFormC}) {
        g_plainCalls = g_tasksMade = 0;
        unsigned char src[12] = {1, 2, 3, 4}, dst[12] = {};
        tq::RunPixelBands<BandTask<unsigned char>>(rule, NotedPlain, 3, 4, 3, src, 3, dst);
        EXPECT_EQ(g_plainCalls, 0);
        EXPECT_EQ(g_tasksMade, 1);
        EXPECT_EQ(dst[1], 9);
    }
}

TEST_F(PixelBands, SeveralProcessorsRunTasksAndNotThePlainForm) {
    m_settings.UseProcessors(2);
    for (const tq::BandRule& rule : kAllRules) {
        g_plainCalls = g_tasksMade = 0;
        unsigned char src[12] = {}, dst[12] = {};
        tq::RunPixelBands<BandTask<unsigned char>>(rule, NotedPlain, 3, 4, 3, src, 3, dst);
        EXPECT_EQ(g_plainCalls, 0);
        EXPECT_EQ(g_tasksMade, 2);
    }
}

template <class Dst> void ExpectEqualsPlain(tqtest::Settings& settings) {
    for (unsigned int processors = 1; processors <= 16; ++processors)
        for (const tq::BandRule& rule : kAllRules)
            for (int height : {0, 1, 2, 5, 15, 16, 17, 33}) {
                settings.UseProcessors(processors);
                const int width = 7, srcStride = 9, dstStride = 11;
                std::vector<unsigned char> src(srcStride * height + 1);
                std::iota(src.begin(), src.end(), static_cast<unsigned char>(height));
                std::vector<Dst> plain(dstStride * height + 1, Dst{99});
                std::vector<Dst> banded = plain;
                Plain(width, height, srcStride, src.data(), dstStride, plain.data());
                tq::RunPixelBands<BandTask<Dst>>(rule, Plain<Dst>, width, height, srcStride,
                                                 src.data(), dstStride, banded.data());
                ASSERT_EQ(banded, plain) << processors << " processors, height " << height;
            }
}

TEST_F(PixelBands, EqualPlainAtEveryProcessorCount) {
    ExpectEqualsPlain<unsigned char>(m_settings);
}

TEST_F(PixelBands, DestinationStrideCountsElements) { ExpectEqualsPlain<int>(m_settings); }

TEST_F(PixelBands, BandsFollowEachOtherInTheImage) {
    m_settings.UseProcessors(4);
    std::vector<unsigned char> src(18 * 10);
    std::vector<int> dst(18 * 5);
    tq::RunPixelBands<BandTask<int>>(tq::kBandFormA, Plain<int>, 3, 18, 10, src.data(), 5,
                                     dst.data());
    ASSERT_EQ(g_seen.size(), 4u);
    std::sort(g_seen.begin(), g_seen.end(),
              [](const Seen& a, const Seen& b) { return a.src < b.src; });
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(g_seen[i].height, i < 3 ? 4 : 6);
        EXPECT_EQ(g_seen[i].src, src.data() + 40 * i);
        EXPECT_EQ(g_seen[i].dst, dst.data() + 20 * i);
    }
}

TEST_F(PixelBands, HeightOf0IsOneTaskWithoutRowsInFormA) {
    m_settings.UseProcessors(8);
    unsigned char src[4] = {}, dst[4] = {5, 5, 5, 5};
    tq::RunPixelBands<BandTask<unsigned char>>(tq::kBandFormA, Plain<unsigned char>, 2, 0, 2, src,
                                               2, dst);
    ASSERT_EQ(g_seen.size(), 1u);
    EXPECT_EQ(g_seen[0].height, 0);
    EXPECT_EQ(std::vector<int>(dst, dst + 4), std::vector<int>(4, 5));
}

TEST_F(PixelBands, FewRowsMakeEightTasksInFormC) {
    m_settings.UseProcessors(8);
    unsigned char src[5] = {1, 2, 3, 4, 5}, dst[5] = {};
    tq::RunPixelBands<BandTask<unsigned char>>(tq::kBandFormC, Plain<unsigned char>, 1, 5, 1, src,
                                               1, dst);
    ASSERT_EQ(g_seen.size(), 8u);
    std::vector<int> heights;
    for (const Seen& seen : g_seen) {
        heights.push_back(seen.height);
        EXPECT_EQ(seen.src, src);
        EXPECT_EQ(seen.dst, dst);
    }
    std::sort(heights.begin(), heights.end());
    EXPECT_EQ(heights, (std::vector<int>{0, 0, 0, 0, 0, 0, 0, 5}));
    EXPECT_EQ(std::vector<int>(dst, dst + 5), (std::vector<int>{4, 7, 10, 13, 16}));
}

TEST_F(PixelBands, NegativeHeightsWriteNothing) {
    for (unsigned int processors : {1u, 2u, 8u})
        for (const tq::BandRule& rule : kAllRules)
            for (int height : {-1, -5, -20, -2147483647 - 1}) {
                m_settings.UseProcessors(processors);
                unsigned char src[4] = {}, dst[4] = {5, 5, 5, 5};
                tq::RunPixelBands<BandTask<unsigned char>>(rule, Plain<unsigned char>, 2, height,
                                                           1000, src, 1000, dst);
                EXPECT_EQ(std::vector<int>(dst, dst + 4), std::vector<int>(4, 5));
            }
    for (const Seen& seen : g_seen) EXPECT_LE(seen.height, 0);
}

TEST_F(PixelBands, NullPointersStayNullInEveryBand) {
    m_settings.UseProcessors(4);
    tq::RunPixelBands<BandTask<unsigned char>>(tq::kBandFormC, Plain<unsigned char>, 0, 40, 10,
                                               nullptr, 20, static_cast<unsigned char*>(nullptr));
    ASSERT_EQ(g_seen.size(), 4u);
    for (const Seen& seen : g_seen) {
        EXPECT_EQ(seen.src, nullptr);
        EXPECT_EQ(seen.dst, nullptr);
        EXPECT_EQ(seen.height, 10);
    }
}

TEST_F(PixelBands, FurtherFieldsAreSetInEveryTask) {
    for (unsigned int processors : {2u, 5u}) {
        m_settings.UseProcessors(processors);
        g_seen.clear();
        std::vector<unsigned char> src(100), dst(100);
        tq::RunPixelBands<BandTask<unsigned char>>(
            tq::kBandFormA, Plain<unsigned char>, 10, 10, 10, src.data(), 10, dst.data(),
            [](BandTask<unsigned char>& task) { task.m_nMode = 7; });
        EXPECT_EQ(g_seen.size(), processors);
        for (const Seen& seen : g_seen) EXPECT_EQ(seen.mode, 7);
    }
}

}  // namespace
