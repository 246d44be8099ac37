// The pool of six-tap tables as the zooms use it, and several threads in it at once.

#include <gtest/gtest.h>
#include <tqipl/zoom.h>

#include <atomic>
#include <chrono>
#include <set>
#include <thread>
#include <utility>
#include <vector>

#include "frame/platform.h"
#include "reference/zoom_cubic_reference.h"
#include "support/deadline.h"
#include "support/latch.h"
#include "support/settings.h"
#include "support/table_pool.h"
#include "support/zoom_check.h"
#include "zoom/weights.h"

namespace {

using tqtest::Content;
using tqtest::Counts;
using tqtest::HoldsItsWeights;
using tqtest::Key;
using tqtest::Keys;
using tqtest::kPoolLimit;
using tqtest::NthKey;

// ---- The pool of the process --------------------------------------------------------------------

using ZoomFunction = tqtest::ZoomFunction;
constexpr std::pair<ZoomFunction, int> kForms[] = {{IPL_Zoom6Cubic_8u_C1R, 1},
                                                   {IPL_Zoom6Cubic_8u_C4R, 4},
                                                   {IPL_Zoom6CubicMultiThread_8u_C1R, 1},
                                                   {IPL_Zoom6CubicMultiThread_8u_C4R, 4}};

void Zoom(std::pair<ZoomFunction, int> form, const tqtest::ZoomSizes& s) {
    std::vector<uint8_t> src(s.srcWidth * s.srcHeight * form.second);
    std::vector<uint8_t> dst(s.dstWidth * s.dstHeight * form.second);
    form.first(s.srcWidth, s.srcHeight, s.srcWidth * form.second, src.data(), s.dstWidth,
               s.dstHeight, s.dstWidth * form.second, dst.data());
}

TEST(SixCubicPool, AZoomLeavesIdleTablesOfTheAxesThatDiffer) {
    tqtest::Settings settings;
    settings.UseProcessors(3);
    for (const auto& form : kForms) {
        g_IPL6CubicTablePool.Clear();
        Zoom(form, {7, 5, 9, 5});
        EXPECT_EQ(Keys(g_IPL6CubicTablePool), (std::vector<Key>{{7, 9}}));
        Zoom(form, {5, 7, 5, 8});
        EXPECT_EQ(Keys(g_IPL6CubicTablePool), (std::vector<Key>{{7, 9}, {7, 8}}));
        Zoom(form, {10, 20, 30, 40});
        EXPECT_EQ(Keys(g_IPL6CubicTablePool),
                  (std::vector<Key>{{7, 9}, {7, 8}, {10, 30}, {20, 40}}));
        Zoom(form, {7, 7, 8, 9});
        EXPECT_EQ(g_IPL6CubicTablePool.m_arrTables.GetSize(), 4);
        EXPECT_EQ(Counts(g_IPL6CubicTablePool), (std::vector<int>{0, 0, 0, 0}));
    }
}

TEST(SixCubicPool, AxesOfTheSameLengthsShareATable) {
    tqtest::Settings settings;
    settings.UseProcessors(3);
    for (const auto& form : kForms) {
        g_IPL6CubicTablePool.Clear();
        Zoom(form, {12, 12, 17, 17});
        EXPECT_EQ(Keys(g_IPL6CubicTablePool), (std::vector<Key>{{12, 17}}));
        EXPECT_EQ(Counts(g_IPL6CubicTablePool), (std::vector<int>{0}));
    }
}

TEST(SixCubicPool, CopiesAndBadSizesTakeNoTable) {
    for (const auto& form : kForms) {
        g_IPL6CubicTablePool.Clear();
        Zoom(form, {5, 5, 5, 5});
        std::vector<uint8_t> bytes(100);
        for (auto [srcWidth, dstWidth] : {std::pair{0, 3}, {3, 0}, {0, 0}})
            form.first(srcWidth, 2, 16, bytes.data(), dstWidth, 3, 16, bytes.data());
        form.first(2, 2, 8, nullptr, 3, 3, 12, bytes.data());
        EXPECT_EQ(g_IPL6CubicTablePool.m_arrTables.GetSize(), 0);
    }
}

// ---- Threads ------------------------------------------------------------------------------------

TEST(SixCubicPool, ThreadsThatAskAtOnceGetOneTable) {
    tqtest::Deadline deadline;
    for (int round = 0; round < 20; ++round) {
        CZ6CubicTablePool pool;
        constexpr int kThreads = 8;
        tqtest::Latch start(kThreads);
        std::vector<CZ6CubicTable*> tables(kThreads);
        std::vector<std::thread> threads;
        for (int i = 0; i < kThreads; ++i)
            threads.emplace_back([&, i] {
                start.ArriveAndWait();
                tables[i] = pool.Acquire(90 + round, 300);
            });
        for (std::thread& thread : threads) thread.join();
        for (CZ6CubicTable* table : tables) ASSERT_EQ(table, tables[0]);
        ASSERT_EQ(Counts(pool), (std::vector<int>{kThreads}));
        ASSERT_TRUE(HoldsItsWeights(tables[0]));
    }
}

TEST(SixCubicPool, NoCountIsLostAmongThreads) {
    tqtest::Deadline deadline;
    CZ6CubicTablePool pool;
    CZ6CubicTable* table = pool.Acquire(5, 9);
    tqtest::Latch start(4);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            start.ArriveAndWait();
            for (int step = 0; step < 200000; ++step) {
                CZ6CubicTable* same = pool.Acquire(5, 9);
                ASSERT_EQ(same, table);
                pool.Release(same);
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(table->m_nRefCount, 1);
}

// More lengths than the pool holds, so that tables come and go while others are read.
TEST(SixCubicPool, TablesInUseStayWholeWhileOthersComeAndGo) {
    tqtest::Deadline deadline;
    CZ6CubicTablePool pool;
    constexpr int kThreads = 6, kKeys = 420, kSteps = 1000;
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&, i] {
            uint32_t state = static_cast<uint32_t>(i) * 7919u + 1;
            CZ6CubicTable* held = nullptr;
            for (int step = 0; step < kSteps; ++step) {
                state = state * 1664525u + 1013904223u;
                const Key key = NthKey(static_cast<int>((state >> 8) % kKeys));
                CZ6CubicTable* table = pool.Acquire(key.first, key.second);
                if (key != Key(table->m_nSrcLength, table->m_nDstLength)) ++wrong;
                if (!HoldsItsWeights(table)) ++wrong;
                if (held != nullptr) {
                    if (!HoldsItsWeights(held)) ++wrong;
                    pool.Release(held);
                }
                held = table;
            }
            pool.Release(held);
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
    const std::vector<Key> keys = Keys(pool);
    EXPECT_EQ(std::set<Key>(keys.begin(), keys.end()).size(), keys.size());
    // At most the tables that were in use at once came on top.
    EXPECT_GE(keys.size(), 301u);
    EXPECT_LE(keys.size(), 301u + 2 * kThreads);
    for (int count : Counts(pool)) ASSERT_EQ(count, 0);
}

tqtest::Latch* g_building;
tqtest::Latch* g_goOn;

// The lock is held while a table is made.
TEST(SixCubicPool, OtherThreadsWaitWhileATableIsMade) {
    tqtest::Deadline deadline;
    CZ6CubicTablePool pool;
    pool.Release(pool.Acquire(3, 4));
    tqtest::Latch building(1), goOn(1);
    g_building = &building;
    g_goOn = &goOn;
    tq::g_platformSeams.allocatePages = [](size_t bytes) {
        g_building->CountDown();
        g_goOn->Wait();
        return tq::SystemAllocatePages(bytes);
    };
    std::thread maker([&] { pool.Release(pool.Acquire(5, 6)); });
    building.Wait();
    std::atomic<bool> served{false};
    std::thread other([&] {
        pool.Release(pool.Acquire(3, 4));
        served = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(served);
    goOn.CountDown();
    maker.join();
    other.join();
    EXPECT_TRUE(served);
    tq::g_platformSeams.allocatePages = tq::SystemAllocatePages;
    EXPECT_EQ(Counts(pool), (std::vector<int>{0, 0}));
}

// Every form, with more lengths than the pool of the process holds.
TEST(SixCubicPool, ZoomsAtOnceKeepTheirTables) {
    tqtest::Settings settings;
    settings.UseProcessors(3);
    g_IPL6CubicTablePool.Clear();
    for (int i = 0; i < kPoolLimit; ++i)
        g_IPL6CubicTablePool.Release(g_IPL6CubicTablePool.Acquire(1 + i, 2));
    const tqtest::ZoomForm forms[] = {
        {"plain, one channel", IPL_Zoom6Cubic_8u_C1R, tqref::ZoomSixCubicC1, 1},
        {"plain, four channels", IPL_Zoom6Cubic_8u_C4R, tqref::ZoomSixCubicC4, 4},
        {"MultiThread, one channel", IPL_Zoom6CubicMultiThread_8u_C1R, tqref::ZoomSixCubicC1, 1},
        {"MultiThread, four channels", IPL_Zoom6CubicMultiThread_8u_C4R, tqref::ZoomSixCubicC4, 4}};
    std::vector<std::thread> threads;
    for (uint32_t seed = 0; seed < 4; ++seed)
        threads.emplace_back([&forms, seed] {
            for (int i = 0; i < 60; ++i) {
                const int n = static_cast<int>(seed) + 4 * i;
                tqtest::ZoomTrial trial(forms[seed], {20 + n % 50, 17, 21 + n, 23 + i},
                                        tqtest::ZoomLayouts()[seed], Content::kNoise, seed);
                EXPECT_TRUE(trial.Run());
            }
        });
    for (std::thread& thread : threads) thread.join();
    for (int count : Counts(g_IPL6CubicTablePool)) ASSERT_EQ(count, 0);
    EXPECT_GE(g_IPL6CubicTablePool.m_arrTables.GetSize(), kPoolLimit);
    g_IPL6CubicTablePool.Clear();
}

}  // namespace
