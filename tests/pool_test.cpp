// The thread pool.

#include <gtest/gtest.h>
#include <tqipl/thread.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <new>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "frame/platform.h"
#include "frame/thread_pool.h"
#include "support/deadline.h"
#include "support/debug_lines.h"
#include "support/function_task.h"
#include "support/latch.h"
#include "support/pool_stage.h"
#include "support/settings.h"
#include "support/wait_done.h"

namespace {

using tqtest::DebugLines;
using tqtest::Eventually;
using tqtest::FunctionTask;
using tqtest::Held;
using tqtest::Numbers;
using tqtest::StatsOf;
using tqtest::TaskList;

class Pool : public tqtest::PoolTest {};

// How many tasks run at once.
class Flight {
public:
    void Enter() {
        const int now = ++m_now;
        int most = m_most;
        while (now > most && !m_most.compare_exchange_weak(most, now)) {
        }
    }
    void Leave() { --m_now; }
    int Most() const { return m_most; }

private:
    std::atomic<int> m_now{0}, m_most{0};
};

TEST_F(Pool, HasALimitOf128AndNoThreadsWhenNew) { EXPECT_EQ(Stats(), (Numbers{128, 0, 0, 0})); }

TEST_F(Pool, ReportsTheProcessorCount) {
    EXPECT_EQ(CTQIPLThreadPool::GetProcessorsNum(), g_IPLProcessorCount);
}

TEST_F(Pool, EmptyArrayChangesNothing) {
    DebugLines lines;
    TaskList none;
    for (int limit : {-1, 0, 1, 2, 100}) EXPECT_EQ(Run(none, limit), 0);
    EXPECT_EQ(none.Array().GetSize(), 0);
    EXPECT_EQ(Stats(), (Numbers{128, 0, 0, 0}));
    EXPECT_EQ(lines.Count(), 0u);
}

TEST_F(Pool, ArrayOfNullsChangesNothing) {
    TaskList tasks;
    for (int i = 0; i < 5; ++i) tasks.AddNull();
    for (int limit : {-1, 0, 1, 2, 100}) EXPECT_EQ(Run(tasks, limit), 0);
    EXPECT_EQ(Stats(), (Numbers{128, 0, 0, 0}));
}

TEST_F(Pool, NullsAmongTasksArePassedOver) {
    for (int limit : {1, 2, 8}) {
        std::atomic<int> ran{0};
        TaskList tasks;
        tasks.AddNull();
        for (int i = 0; i < 6; ++i) {
            tasks.Add([&] { ++ran; });
            tasks.AddNull();
        }
        EXPECT_EQ(Run(tasks, limit), 0);
        EXPECT_EQ(ran, 6) << limit;
    }
}

TEST_F(Pool, TasksAreOnlyBorrowed) {
    TaskList tasks(3, [](int) {});
    EXPECT_EQ(Run(tasks, 3), 0);
    EXPECT_EQ(tasks.Array().GetSize(), 3);
    EXPECT_EQ(Run(tasks, 3), 0);  // they live and run again
}

// ---- On the calling thread ----------------------------------------------------

class SerialPool : public Pool {
protected:
    // Runs five tasks and looks that they ran here and in order.
    void ExpectSerial(int limit) {
        const Numbers before = Stats();
        std::vector<int> order;
        const std::thread::id here = std::this_thread::get_id();
        bool elsewhere = false;
        TaskList tasks(5, [&](int i) {
            order.push_back(i);
            elsewhere |= std::this_thread::get_id() != here;
        });
        EXPECT_EQ(Run(tasks, limit), 0);
        EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4})) << limit;
        EXPECT_FALSE(elsewhere) << limit;
        EXPECT_EQ(Stats(), before);
        EXPECT_EQ(m_lines.Count(), 0u);
    }

    DebugLines m_lines;
};

TEST_F(SerialPool, RunsWithALimitOf0Or1) {
    ExpectSerial(0);
    ExpectSerial(1);
    EXPECT_EQ(Stats(), (Numbers{128, 0, 0, 0}));
}

TEST_F(SerialPool, RunsWithAMaximumOf1WhateverTheLimit) {
    m_pool.SetThreadLimits(0, 1);
    for (int limit : {-1, 0, 1, 2, 8, 1000}) ExpectSerial(limit);
    m_pool.SetThreadLimits(1, 0);
    EXPECT_EQ(Stats(), (Numbers{1, 1, 0, 1}));
    for (int limit : {-1, 2, 8}) ExpectSerial(limit);
}

TEST_F(SerialPool, RunsWithAMaximumOf0) {
    EXPECT_EQ(m_pool.SetThreadLimits(0, 0), 0);
    EXPECT_EQ(Stats(), (Numbers{0, 0, 0, 0}));
    for (int limit : {-1, 2, 8}) ExpectSerial(limit);
}

TEST_F(SerialPool, RunsWithOneProcessorAndALimitOfMinus1) {
    tqtest::Settings settings;
    settings.UseProcessors(1);
    ExpectSerial(-1);
    ExpectSerial(-2147483647 - 1);
}

// ---- Limits and order ---------------------------------------------------------

TEST_F(Pool, RunsFiveTasksWithALimitOfTwo) {
    Flight flight;
    tqtest::Latch pair(2);
    std::atomic<int> finished{0};
    TaskList tasks(5, [&](int i) {
        flight.Enter();
        if (i < 2) pair.ArriveAndWait();  // the first two are at work together
        flight.Leave();
        ++finished;
    });
    EXPECT_EQ(Run(tasks, 2), 0);
    EXPECT_EQ(finished, 5);
    EXPECT_EQ(flight.Most(), 2);
}

TEST_F(Pool, FeedsATaskOnlyWhenAnEarlierOneHasFinished) {
    for (int limit : {2, 3, 4, 7}) {
        Flight flight;
        std::atomic<int> finished{0}, early{0};
        TaskList tasks(40, [&](int i) {
            if (finished < i + 1 - limit) ++early;
            flight.Enter();
            std::this_thread::yield();
            flight.Leave();
            ++finished;
        });
        EXPECT_EQ(Run(tasks, limit), 0);
        EXPECT_EQ(finished, 40);
        EXPECT_EQ(early, 0);
        EXPECT_LE(flight.Most(), limit);
    }
}

TEST_F(Pool, HoldsBackWhatIsBeyondTheLimit) {
    tqtest::Latch begun(2), goOn(1);
    std::atomic<int> started{0};
    TaskList tasks(5, [&](int i) {
        ++started;
        if (i >= 2) return;
        begun.CountDown();
        goOn.Wait();
    });
    std::thread caller([&] { Run(tasks, 2); });
    begun.Wait();
    for (int i = 0; i < 1000; ++i) std::this_thread::yield();
    EXPECT_EQ(started, 2);
    EXPECT_EQ(Stats(), (Numbers{128, 2, 2, 0}));
    goOn.CountDown();
    caller.join();
    EXPECT_EQ(started, 5);
}

// The first task holds one of two places until the last has run, so that the rest pass one by one.
TEST_F(Pool, StartsTasksInArrayOrder) {
    tqtest::Latch lastRan(1);
    std::vector<int> order;
    TaskList tasks(20, [&](int i) {
        if (i == 0) {
            lastRan.Wait();
            return;
        }
        order.push_back(i);
        if (i == 19) lastRan.CountDown();
    });
    EXPECT_EQ(Run(tasks, 2), 0);
    ASSERT_EQ(order.size(), 19u);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST_F(Pool, NegativeLimitIsTheProcessorCount) {
    tqtest::Settings settings;
    settings.UseProcessors(3);
    for (int limit : {-1, -5}) {
        Flight flight;
        tqtest::Latch three(3);
        TaskList tasks(12, [&](int i) {
            flight.Enter();
            if (i < 3) three.ArriveAndWait();
            flight.Leave();
        });
        EXPECT_EQ(Run(tasks, limit), 0);
        EXPECT_EQ(flight.Most(), 3) << limit;
    }
}

TEST_F(Pool, MaximumBoundsTheLimit) {
    m_pool.SetThreadLimits(0, 3);
    Flight flight;
    tqtest::Latch three(3);
    TaskList tasks(12, [&](int i) {
        flight.Enter();
        if (i < 3) three.ArriveAndWait();
        flight.Leave();
    });
    EXPECT_EQ(Run(tasks, 100), 0);
    EXPECT_EQ(flight.Most(), 3);
    EXPECT_LE(Stats()[1], 3u);
}

TEST_F(Pool, FewerTasksThanTheLimitAllRunAtOnce) {
    tqtest::Latch four(4);
    TaskList tasks(4, [&](int) { four.ArriveAndWait(); });
    EXPECT_EQ(Run(tasks, 1000), 0);
    ASSERT_TRUE(AllIdle());
    EXPECT_EQ(Stats(), (Numbers{128, 4, 0, 4}));
}

TEST_F(Pool, LargerArgumentIsTheMaximum) {
    EXPECT_EQ(m_pool.SetThreadLimits(4, 2), 0);
    EXPECT_EQ(Stats(), (Numbers{4, 4, 0, 4}));
    EXPECT_EQ(m_pool.SetThreadLimits(0, 0), 0);
    EXPECT_EQ(Stats(), (Numbers{0, 0, 0, 0}));
    EXPECT_EQ(m_pool.SetThreadLimits(2, 9), 0);
    EXPECT_EQ(Stats(), (Numbers{9, 2, 0, 2}));
}

// ---- Workers and their threads ------------------------------------------------

TEST_F(Pool, MinimumMakesRecordsWhoseThreadsStartAtTheirFirstTask) {
    DebugLines lines;
    EXPECT_EQ(m_pool.SetThreadLimits(4, 8), 0);
    EXPECT_EQ(Stats(), (Numbers{8, 4, 0, 4}));
    EXPECT_EQ(lines.Count(), 0u);

    unsigned int id = 0;
    Run([&] { id = tq::CurrentThreadId(); }, 2);
    EXPECT_EQ(lines.Lines(), std::vector<std::string>{DebugLines::Of(id)});
    ASSERT_TRUE(AllIdle());
    EXPECT_EQ(Stats(), (Numbers{8, 4, 0, 4}));

    EXPECT_EQ(m_pool.SetThreadLimits(4, 8), 0);  // as many as wanted: nothing happens
    EXPECT_EQ(Stats(), (Numbers{8, 4, 0, 4}));
}

TEST_F(Pool, DebugLineIsExact) {
    DebugLines lines;
    tq::EmitThreadLine(4711);
    EXPECT_EQ(lines.Lines(), std::vector<std::string>{
                                 "thread 4711 newly create----------------------------------\n"});
    EXPECT_EQ(DebugLines::Of(4711), lines.Lines()[0]);
}

TEST_F(Pool, EachThreadEmitsOneLineWithItsId) {
    DebugLines lines;
    tqtest::Latch four(4);
    std::mutex mutex;
    std::set<std::string> expected;
    TaskList tasks(4, [&](int) {
        {
            std::lock_guard lock(mutex);
            expected.insert(DebugLines::Of(tq::CurrentThreadId()));
        }
        four.ArriveAndWait();
    });
    Run(tasks, 4);
    std::vector<std::string> seen = lines.Lines();
    EXPECT_EQ(seen.size(), 4u);
    EXPECT_EQ(std::set<std::string>(seen.begin(), seen.end()), expected);
}

TEST_F(Pool, IdleWorkersAreReusedOldestFirst) {
    m_pool.SetThreadLimits(3, 3);
    std::array<unsigned int, 7> ids{};
    for (unsigned int& id : ids) {
        Run([&] { id = tq::CurrentThreadId(); }, 2);
        ASSERT_TRUE(AllIdle());
    }
    EXPECT_EQ(std::set<unsigned int>(ids.begin(), ids.end()).size(), 3u);
    for (size_t i = 3; i < ids.size(); ++i) EXPECT_EQ(ids[i], ids[i - 3]);
}

TEST_F(Pool, ThreadsAreKeptAndNoMoreAreMadeThanTheMaximum) {
    DebugLines lines;
    m_pool.SetThreadLimits(0, 2);
    for (int round = 0; round < 100; ++round) {
        TaskList tasks(4, [](int) {});
        Run(tasks, 2);
    }
    EXPECT_LE(lines.Count(), 2u);
    EXPECT_LE(Stats()[1], 2u);
}

TEST_F(Pool, ReleaseOfAPoolThatNeverStartedDoesNothing) {
    EXPECT_EQ(m_pool.ReleaseIdleThreads(), 0);
    EXPECT_EQ(Stats(), (Numbers{128, 0, 0, 0}));
}

TEST_F(Pool, ReleaseEndsIdleThreadsAndThePoolGoesOn) {
    DebugLines lines;
    for (size_t round = 1; round <= 3; ++round) {
        tqtest::Latch three(3);
        TaskList tasks(3, [&](int) { three.ArriveAndWait(); });
        Run(tasks, 3);
        EXPECT_EQ(lines.Count(), 3 * round);
        ASSERT_TRUE(AllIdle());
        EXPECT_EQ(m_pool.ReleaseIdleThreads(), 0);
        EXPECT_EQ(Stats(), (Numbers{128, 0, 0, 0}));
    }
}

TEST_F(Pool, ReleaseTakesRecordsWithoutThreadsToo) {
    m_pool.SetThreadLimits(5, 5);
    EXPECT_EQ(m_pool.ReleaseIdleThreads(), 0);
    EXPECT_EQ(Stats(), (Numbers{5, 0, 0, 0}));
}

TEST_F(Pool, BusyWorkersAreLeftAlone) {
    m_pool.SetThreadLimits(5, 5);
    Held held(m_pool, 2);
    EXPECT_EQ(Stats(), (Numbers{5, 5, 2, 3}));
    EXPECT_EQ(m_pool.ReleaseIdleThreads(), 0);
    EXPECT_EQ(Stats(), (Numbers{5, 2, 2, 0}));
    EXPECT_EQ(m_pool.SetThreadLimits(0, 5), 0);
    EXPECT_EQ(Stats(), (Numbers{5, 2, 2, 0}));
    EXPECT_EQ(m_pool.SetThreadLimits(1, 5), 0);
    EXPECT_EQ(Stats(), (Numbers{5, 2, 2, 0}));
    EXPECT_EQ(m_pool.SetThreadLimits(4, 5), 0);
    EXPECT_EQ(Stats(), (Numbers{5, 4, 2, 2}));
    held.Release();
    ASSERT_TRUE(AllIdle());
    EXPECT_EQ(Stats(), (Numbers{5, 4, 0, 4}));
    EXPECT_EQ(m_pool.SetThreadLimits(0, 5), 0);
    EXPECT_EQ(Stats(), (Numbers{5, 0, 0, 0}));
}

TEST_F(Pool, LoweringStopsAtTheMinimum) {
    m_pool.SetThreadLimits(6, 6);
    Held held(m_pool, 1);
    EXPECT_EQ(m_pool.SetThreadLimits(3, 6), 0);
    EXPECT_EQ(Stats(), (Numbers{6, 3, 1, 2}));
}

// The one freed last goes first: here the only one that has a thread yet.
TEST_F(Pool, LoweringTakesTheWorkerFreedLast) {
    DebugLines lines;
    m_pool.SetThreadLimits(4, 4);
    Run([] {}, 2);
    ASSERT_TRUE(AllIdle());
    EXPECT_EQ(lines.Count(), 1u);
    m_pool.SetThreadLimits(3, 4);
    for (int i = 0; i < 3; ++i) {
        Run([] {}, 2);
        ASSERT_TRUE(AllIdle());
    }
    EXPECT_EQ(lines.Count(), 4u);
}

// Differences are signed: a minimum above the signed range is not a request for workers.
TEST_F(Pool, MinimumBeyondTheSignedRangeMakesNothing) {
    EXPECT_EQ(m_pool.SetThreadLimits(0xFFFFFFFF, 0), 0);
    EXPECT_EQ(Stats(), (Numbers{0xFFFFFFFF, 0, 0, 0}));
}

// ---- Counts left in the semaphore ---------------------------------------------

TEST_F(Pool, CountsLeftByReleasedWorkersDoNotLetARequestPass) {
    m_pool.SetThreadLimits(4, 4);
    m_pool.ReleaseIdleThreads();
    m_pool.SetThreadLimits(4, 4);
    m_pool.SetThreadLimits(0, 2);
    EXPECT_EQ(Stats(), (Numbers{2, 0, 0, 0}));

    Flight flight;
    tqtest::Latch begun(2), goOn(1);
    TaskList first(2, [&](int) {
        flight.Enter();
        begun.CountDown();
        goOn.Wait();
        flight.Leave();
    });
    TaskList second(6, [&](int) {
        flight.Enter();
        std::this_thread::yield();
        flight.Leave();
    });
    std::thread firstCaller([&] { Run(first, 2); });
    begun.Wait();
    std::thread secondCaller([&] { Run(second, 2); });  // no worker for it yet
    for (int i = 0; i < 1000; ++i) std::this_thread::yield();
    EXPECT_EQ(Stats(), (Numbers{2, 2, 2, 0}));
    goOn.CountDown();
    firstCaller.join();
    secondCaller.join();
    EXPECT_EQ(flight.Most(), 2);
    ASSERT_TRUE(AllIdle());
    EXPECT_EQ(Stats(), (Numbers{2, 2, 0, 2}));
}

TEST_F(Pool, LimitsThatChangeDuringCallsLoseNoTask) {
    std::atomic<bool> over{false};
    std::thread changer([&] {
        for (unsigned int i = 0; !over; ++i) {
            m_pool.SetThreadLimits(i % 4, i % 5);
            if (i % 3 == 0) m_pool.ReleaseIdleThreads();
            TQ_THREAD_STATS stats;
            m_pool.GetThreadStats(&stats);
            EXPECT_LE(stats.m_nBusyThreads, stats.m_nThreadCount);
        }
    });
    std::atomic<int> ran{0};
    for (int round = 0; round < 200; ++round) {
        TaskList tasks(5, [&](int) { ++ran; });
        Run(tasks, 4);
    }
    over = true;
    changer.join();
    EXPECT_EQ(ran, 1000);
}

TEST_F(Pool, RaisingTheMaximumServesARequestThatWaits) {
    for (int round = 0; round < 20; ++round) {
        ASSERT_TRUE(AllIdle());
        m_pool.SetThreadLimits(0, 2);
        Held held(m_pool, 2);
        std::atomic<int> ran{0};
        TaskList tasks(3, [&](int) { ++ran; });
        std::thread caller([&] { Run(tasks, 2); });
        std::this_thread::sleep_for(std::chrono::microseconds(50 * round));
        EXPECT_EQ(ran, 0);  // both workers are held
        m_pool.SetThreadLimits(0, 4);
        caller.join();
        EXPECT_EQ(ran, 3);
        held.Release();
    }
}

// ---- Several callers ----------------------------------------------------------

TEST_F(Pool, FirstUseMayComeFromSeveralThreadsAtOnce) {
    for (int round = 0; round < 10; ++round) {
        std::unique_ptr<CTQIPLThreadPool> pool(Create_IPLThreadPool());
        tqtest::Latch together(4);
        std::atomic<int> ran{0};
        std::vector<std::thread> callers;
        for (int i = 0; i < 4; ++i)
            callers.emplace_back([&, i] {
                TaskList tasks(3, [&](int) { ++ran; });
                together.ArriveAndWait();
                if (i == 3) pool->SetThreadLimits(2, 64);
                pool->RunTasks(tasks.Array(), 3);
            });
        for (std::thread& caller : callers) caller.join();
        EXPECT_EQ(ran, 12);
    }
}

TEST_F(Pool, SeveralCallersFromSeveralPools) {
    std::array<std::unique_ptr<CTQIPLThreadPool>, 3> pools;
    for (auto& pool : pools) pool.reset(Create_IPLThreadPool());
    pools[1]->SetThreadLimits(0, 2);
    std::atomic<int> ran{0};
    std::vector<std::thread> callers;
    for (auto& pool : pools)
        for (int i = 0; i < 3; ++i)
            callers.emplace_back([&ran, &pool = *pool] {
                for (int round = 0; round < 60; ++round) {
                    Flight flight;
                    int own[7] = {};
                    TaskList tasks(7, [&](int i) {
                        flight.Enter();
                        own[i] = i + 1;
                        ++ran;
                        flight.Leave();
                    });
                    pool.RunTasks(tasks.Array(), 3);
                    for (int i = 0; i < 7; ++i) EXPECT_EQ(own[i], i + 1);
                    EXPECT_LE(flight.Most(), 3);
                }
            });
    for (std::thread& caller : callers) caller.join();
    EXPECT_EQ(ran, 3 * 3 * 60 * 7);
    EXPECT_LE(StatsOf(*pools[1])[1], 2u);
}

TEST_F(Pool, SecondPoolHasWorkersOfItsOwn) {
    const Numbers global = StatsOf(*CTQIPLThreadPool::GetInstance());
    std::unique_ptr<CTQIPLThreadPool> other(Create_IPLThreadPool());
    EXPECT_NE(other.get(), &m_pool);
    m_pool.SetThreadLimits(3, 7);
    Held held(m_pool, 2);
    EXPECT_EQ(StatsOf(*other), (Numbers{128, 0, 0, 0}));
    std::atomic<int> ran{0};
    TaskList tasks(4, [&](int) { ++ran; });
    other->RunTasks(tasks.Array(), 2);  // does not wait for the held workers of the first
    EXPECT_EQ(ran, 4);
    EXPECT_EQ(Stats(), (Numbers{7, 3, 2, 1}));
    EXPECT_EQ(StatsOf(*CTQIPLThreadPool::GetInstance()), global);
}

TEST_F(Pool, CopyTakesNothingOver) {
    std::unique_ptr<CTQIPLThreadPool> other(Create_IPLThreadPool());
    m_pool.SetThreadLimits(2, 5);
    *other = m_pool;
    EXPECT_EQ(StatsOf(*other), (Numbers{128, 0, 0, 0}));
    m_pool = *other;
    EXPECT_EQ(Stats(), (Numbers{5, 2, 0, 2}));
}

// ---- Calls from tasks ---------------------------------------------------------

TEST_F(Pool, TaskMayRunTasksOnItsOwnPool) {
    std::atomic<int> ran{0}, elsewhere{0};
    TaskList outer(6, [&](int) {
        const std::thread::id here = std::this_thread::get_id();
        TaskList inner(5, [&](int) {
            ++ran;
            if (std::this_thread::get_id() != here) ++elsewhere;
        });
        m_pool.RunTasks(inner.Array(), 5);
    });
    EXPECT_EQ(Run(outer, 3), 0);
    EXPECT_EQ(ran, 30);
    EXPECT_EQ(elsewhere, 0);
}

TEST_F(Pool, TasksThatHoldAllWorkersMayRunTasks) {
    m_pool.SetThreadLimits(0, 2);
    for (int round = 0; round < 20; ++round) {
        tqtest::Latch both(2);
        std::atomic<int> ran{0};
        TaskList outer(2, [&](int) {
            both.ArriveAndWait();
            TaskList inner(4, [&](int) {
                TaskList innermost(3, [&](int) { ++ran; });
                m_pool.RunTasks(innermost.Array(), -1);
            });
            m_pool.RunTasks(inner.Array(), 2);
        });
        Run(outer, 2);
        EXPECT_EQ(ran, 24);
    }
    EXPECT_LE(Stats()[1], 2u);
}

TEST_F(Pool, TaskMayRunTasksOnAnotherPoolAtOnce) {
    std::unique_ptr<CTQIPLThreadPool> other(Create_IPLThreadPool());
    std::atomic<int> ran{0};
    TaskList outer(2, [&](int) {
        tqtest::Latch both(2);
        TaskList inner(2, [&](int) {
            both.ArriveAndWait();
            ++ran;
        });
        other->RunTasks(inner.Array(), 2);
    });
    Run(outer, 2);
    EXPECT_EQ(ran, 4);
}

TEST_F(Pool, ThreadThatRanATaskIsNoPoolThreadAfterwards) {
    tqtest::Latch both(2);
    TaskList first(2, [](int) {});
    Run(first, 2);
    TaskList second(2, [&](int) { both.ArriveAndWait(); });  // needs two threads
    Run(second, 2);
}

// ---- Thread wrappers that hold workers ----------------------------------------

class GlobalPool : public testing::Test {
protected:
    GlobalPool() { Clear(); }
    ~GlobalPool() override { Clear(); }
    void Clear() {
        m_pool.SetThreadLimits(0, 128);
        EXPECT_TRUE(Eventually([this] { return StatsOf(m_pool)[2] == 0; }));
        m_pool.ReleaseIdleThreads();
        EXPECT_EQ(StatsOf(m_pool), (Numbers{128, 0, 0, 0}));
    }

    tqtest::Deadline m_deadline;
    CTQIPLThreadPool& m_pool = *CTQIPLThreadPool::GetInstance();
};

TEST_F(GlobalPool, TasksRunWhileWrappersHoldAllWorkers) {
    m_pool.SetThreadLimits(0, 2);
    CTQIPLThreadAuto first, second;
    EXPECT_EQ(StatsOf(m_pool), (Numbers{2, 2, 2, 0}));
    for (int round = 0; round < 10; ++round) {
        std::atomic<int> ran{0};
        TaskList tasks(5, [&](int) { ++ran; });
        EXPECT_EQ(m_pool.RunTasks(tasks.Array(), 2), 0);
        EXPECT_EQ(ran, 5);
    }
}

// The dispatcher and a wrapper wait for the same worker, and the wrapper gets it.
TEST_F(GlobalPool, TasksRunWhenAWrapperTakesTheWorkerTheyWaitFor) {
    m_pool.SetThreadLimits(0, 2);
    for (int round = 0; round < 30; ++round) {
        CTQIPLThreadAuto first;
        tqtest::Latch begun(1), goOn(1), tasksRan(1);
        TaskList held;
        held.Add([&] {
            begun.CountDown();
            goOn.Wait();
        });
        std::thread heldCaller([&] { m_pool.RunTasks(held.Array(), 2); });
        begun.Wait();
        std::thread wrapper([&] {
            CTQIPLThreadAuto second;
            tasksRan.Wait();
        });
        for (int i = 0; i < 50 * (round % 5); ++i) std::this_thread::yield();
        std::atomic<int> ran{0};
        TaskList tasks(3, [&](int) { ++ran; });
        std::thread caller([&] {
            m_pool.RunTasks(tasks.Array(), 2);
            tasksRan.CountDown();
        });
        for (int i = 0; i < 50 * (round % 3); ++i) std::this_thread::yield();
        goOn.CountDown();
        caller.join();
        EXPECT_EQ(ran, 3);
        heldCaller.join();
        wrapper.join();
    }
}

TEST_F(GlobalPool, IsNotTouchedByEmptyArrays) {
    TaskList none;
    EXPECT_EQ(m_pool.RunTasks(none.Array(), -1), 0);
    EXPECT_EQ(StatsOf(m_pool), (Numbers{128, 0, 0, 0}));
}

// ---- Life and end -------------------------------------------------------------

TEST(PoolLife, NullIsIgnored) { Delete_IPLThreadPool(nullptr); }

TEST(PoolLife, PoolsComeAndGo) {
    tqtest::Deadline deadline;
    for (int round = 0; round < 40; ++round) {
        CTQIPLThreadPool* pool = Create_IPLThreadPool();
        ASSERT_NE(pool, nullptr);
        std::atomic<int> ran{0};
        TaskList tasks(8, [&](int) { ++ran; });
        if (round % 4 == 1) pool->SetThreadLimits(3, 6);  // records without threads
        if (round % 4 != 3) {
            pool->RunTasks(tasks.Array(), 4);
            EXPECT_EQ(ran, 8);
        }
        Delete_IPLThreadPool(pool);  // with workers on their way back to the idle queue
    }
}

TEST(PoolLife, CallersOfManyShortCallsOutliveNothing) {
    tqtest::Deadline deadline;
    std::unique_ptr<CTQIPLThreadPool> pool(Create_IPLThreadPool());
    std::vector<std::thread> callers;
    for (int i = 0; i < 3; ++i)
        callers.emplace_back([&] {
            for (int round = 0; round < 300; ++round) {
                int sum[2] = {};
                TaskList tasks(2, [&](int i) { sum[i] = 1; });
                pool->RunTasks(tasks.Array(), 2);
                EXPECT_EQ(sum[0] + sum[1], 2);
            }
        });
    for (std::thread& caller : callers) caller.join();
}

// ---- A system that has no more threads ----------------------------------------

#if defined(__GLIBC__)
TEST_F(Pool, TasksRunWhenTheSystemHasNoMoreThreads) {
    std::atomic<int> ran{0}, nested{0};
    m_pool.SetThreadLimits(2, 8);  // the dispatcher is there, the workers have no threads
    {
        tqtest::NoThreads noThreads;
        TaskList tasks(6, [&](int) {
            ++ran;
            TaskList inner(3, [&](int) { ++nested; });
            m_pool.RunTasks(inner.Array(), 3);
        });
        EXPECT_EQ(Run(tasks, 4), 0);
    }
    EXPECT_EQ(ran, 6);
    EXPECT_EQ(nested, 18);
    ASSERT_TRUE(AllIdle());

    DebugLines lines;
    tqtest::Latch two(2);
    TaskList tasks(2, [&](int) { two.ArriveAndWait(); });
    Run(tasks, 2);
    EXPECT_EQ(lines.Count(), 2u);
}

TEST_F(Pool, StartThatFailsMayBeTriedAgain) {
    TaskList none, tasks(2, [](int) {});
    {
        tqtest::NoThreads noThreads;
        EXPECT_EQ(Run(none, 2), 0);
        EXPECT_THROW(Run(tasks, 2), std::bad_alloc);
        EXPECT_THROW(Run(tasks, 2), std::bad_alloc);
        EXPECT_THROW(m_pool.SetThreadLimits(1, 4), std::bad_alloc);
    }
    tqtest::Latch two(2);
    TaskList together(2, [&](int) { two.ArriveAndWait(); });
    EXPECT_EQ(Run(together, 2), 0);
}

TEST_F(GlobalPool, WrapperThatGetsNoThreadMayTryAgain) {
    m_pool.SetThreadLimits(0, 128);  // the dispatcher is there
    std::atomic<int> ran{0};
    FunctionTask task([&] { ++ran; });
    CTQIPLThreadAuto borrowed;
    CTQIPLThreadBase own;
    {
        tqtest::NoThreads noThreads;
        EXPECT_THROW(borrowed.SetTask(&task), std::bad_alloc);
        EXPECT_THROW(own.SetTask(&task), std::bad_alloc);
    }
    EXPECT_TRUE(tqtest::WaitDone(borrowed.SetTask(&task)));
    EXPECT_TRUE(tqtest::WaitDone(own.SetTask(&task)));
    EXPECT_EQ(ran, 2);
}
#endif

}  // namespace
