// Threads that run one task at a time: one's own, and one borrowed from the global pool.

#include <gtest/gtest.h>
#include <tqipl/thread.h>

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "frame/platform.h"
#include "support/deadline.h"
#include "support/debug_lines.h"
#include "support/function_task.h"
#include "support/latch.h"
#include "support/wait_done.h"

namespace {

using tqtest::DebugLines;
using tqtest::Eventually;
using tqtest::FunctionTask;
using tqtest::WaitDone;

using Numbers = std::array<unsigned int, 4>;  // maximum, workers, busy, idle

Numbers Stats() {
    TQ_THREAD_STATS stats;
    CTQIPLThreadPool::GetInstance()->GetThreadStats(&stats);
    return {stats.m_nMaxThreads, stats.m_nThreadCount, stats.m_nBusyThreads, stats.m_nIdleThreads};
}

// Every test ends in time and finds the global pool without workers.
class Wrappers : public testing::Test {
protected:
    Wrappers() { Clear(); }
    ~Wrappers() override { Clear(); }
    void Clear() {
        m_pool.SetThreadLimits(0, 128);
        EXPECT_TRUE(Eventually([] { return Stats()[2] == 0; }));
        m_pool.ReleaseIdleThreads();
        EXPECT_EQ(Stats(), (Numbers{128, 0, 0, 0}));
    }

    tqtest::Deadline m_deadline;
    CTQIPLThreadPool& m_pool = *CTQIPLThreadPool::GetInstance();
};

// A task that says when it runs and ends when it is told to.
struct HeldTask : CTQIPLTaskBase {
    int Run() override {
        begun.CountDown();
        goOn.Wait();
        finished = true;
        return 1;
    }
    tqtest::Latch begun{1}, goOn{1};
    std::atomic<bool> finished{false};
};

// ---- What both have -----------------------------------------------------------

template <class Wrapper> class EachWrapper : public Wrappers {};
using Kinds = testing::Types<CTQIPLThreadBase, CTQIPLThreadAuto>;
TYPED_TEST_SUITE(EachWrapper, Kinds);

TYPED_TEST(EachWrapper, RunsATaskOnAnotherThreadAndSignals) {
    unsigned int id = 0;
    FunctionTask task([&] { id = tq::CurrentThreadId(); });
    TypeParam wrapper;
    void* const event = wrapper.SetTask(&task);
    ASSERT_NE(event, nullptr);
    EXPECT_TRUE(WaitDone(event));
    EXPECT_NE(id, 0u);
    EXPECT_NE(id, tq::CurrentThreadId());
}

TYPED_TEST(EachWrapper, OneWaitTakesTheSignal) {
    FunctionTask task([] {});
    TypeParam wrapper;
    void* const event = wrapper.SetTask(&task);
    EXPECT_TRUE(WaitDone(event));
    EXPECT_FALSE(WaitDone(event, 0));
    EXPECT_FALSE(WaitDone(event, 1));
    wrapper.SetTask(&task);
    EXPECT_TRUE(WaitDone(event, 50000));
    EXPECT_FALSE(WaitDone(event, 0));
}

TYPED_TEST(EachWrapper, EventIsNullBeforeTheThreadStartsAndThenAlwaysTheSame) {
    FunctionTask task([] {});
    TypeParam wrapper;
    EXPECT_EQ(wrapper.GetEvent(), nullptr);
    void* const event = wrapper.SetTask(&task);
    EXPECT_EQ(wrapper.GetEvent(), event);
    EXPECT_TRUE(WaitDone(wrapper.GetEvent()));
    EXPECT_EQ(wrapper.SetTask(&task), event);
    EXPECT_TRUE(WaitDone(event));
    EXPECT_EQ(wrapper.GetEvent(), event);
}

TYPED_TEST(EachWrapper, EventIsUnsetWhileTheTaskRuns) {
    HeldTask task;
    TypeParam wrapper;
    void* const event = wrapper.SetTask(&task);
    task.begun.Wait();
    EXPECT_FALSE(WaitDone(event, 0));
    task.goOn.CountDown();
    EXPECT_TRUE(WaitDone(event));
    EXPECT_TRUE(task.finished);
}

TYPED_TEST(EachWrapper, TasksFollowEachOtherOnOneThreadWithOneLine) {
    DebugLines lines;
    std::vector<unsigned int> ids;
    FunctionTask task([&] { ids.push_back(tq::CurrentThreadId()); });
    TypeParam wrapper;
    EXPECT_EQ(lines.Count(), 0u);
    for (int i = 0; i < 500; ++i) ASSERT_TRUE(WaitDone(wrapper.SetTask(&task)));
    ASSERT_EQ(ids.size(), 500u);
    EXPECT_EQ(std::set<unsigned int>(ids.begin(), ids.end()).size(), 1u);
    EXPECT_EQ(lines.Lines(), std::vector<std::string>{DebugLines::Of(ids[0])});
}

// Whoever waited for a task may give the next at once: none is lost to the end of the last.
TYPED_TEST(EachWrapper, EveryTaskRunsOnce) {
    TypeParam wrapper;
    for (int i = 0; i < 500; ++i) {
        int runs = 0;
        FunctionTask task([&] { ++runs; });
        ASSERT_TRUE(WaitDone(wrapper.SetTask(&task)));
        ASSERT_EQ(runs, 1);
    }
}

TYPED_TEST(EachWrapper, WrapperWithoutATaskEnds) {
    DebugLines lines;
    { TypeParam wrapper; }
    EXPECT_EQ(lines.Count(), 0u);
}

TYPED_TEST(EachWrapper, CopyStandsForTheSameThread) {
    std::vector<unsigned int> ids;
    FunctionTask task([&] { ids.push_back(tq::CurrentThreadId()); });
    auto first = std::make_unique<TypeParam>();
    auto second = std::make_unique<TypeParam>(*first);
    void* const event = first->SetTask(&task);
    EXPECT_EQ(second->GetEvent(), event);
    EXPECT_TRUE(WaitDone(event));
    first.reset();
    EXPECT_EQ(second->SetTask(&task), event);
    EXPECT_TRUE(WaitDone(event));
    TypeParam third(*second);
    second.reset();
    third.SetTask(&task);
    EXPECT_TRUE(WaitDone(event));
    ASSERT_EQ(ids.size(), 3u);
    EXPECT_EQ(std::set<unsigned int>(ids.begin(), ids.end()).size(), 1u);
}

TYPED_TEST(EachWrapper, AssignmentTakesTheOthersThread) {
    FunctionTask task([] {});
    TypeParam first, second;
    void* const event = first.SetTask(&task);
    EXPECT_TRUE(WaitDone(event));
    EXPECT_TRUE(WaitDone(second.SetTask(&task)));
    EXPECT_NE(second.GetEvent(), event);
    TypeParam& result = (second = first);
    EXPECT_EQ(&result, &second);
    EXPECT_EQ(second.GetEvent(), event);
    EXPECT_EQ(second.SetTask(&task), event);
    EXPECT_TRUE(WaitDone(first.GetEvent()));
    TypeParam& self = second;
    second = self;
    EXPECT_TRUE(WaitDone(second.SetTask(&task)));
}

TYPED_TEST(EachWrapper, ManyWorkAtOnce) {
    DebugLines lines;
    constexpr int kCount = 12;
    tqtest::Latch all(kCount);
    std::mutex mutex;
    std::set<std::string> expected;
    FunctionTask task([&] {
        {
            std::lock_guard lock(mutex);
            expected.insert(DebugLines::Of(tq::CurrentThreadId()));
        }
        all.ArriveAndWait();
    });
    std::array<TypeParam, kCount> wrappers;
    for (TypeParam& wrapper : wrappers) wrapper.SetTask(&task);
    for (TypeParam& wrapper : wrappers) EXPECT_TRUE(WaitDone(wrapper.GetEvent()));
    const std::vector<std::string> seen = lines.Lines();
    EXPECT_EQ(seen.size(), size_t{kCount});
    EXPECT_EQ(std::set<std::string>(seen.begin(), seen.end()), expected);
}

TYPED_TEST(EachWrapper, EachServesAThreadOfTheHost) {
    std::atomic<int> ran{0};
    std::vector<std::thread> hosts;
    for (int i = 0; i < 4; ++i)
        hosts.emplace_back([&] {
            for (int round = 0; round < 20; ++round) {
                TypeParam wrapper;
                FunctionTask task([&] { ++ran; });
                for (int k = 0; k < 5; ++k) EXPECT_TRUE(WaitDone(wrapper.SetTask(&task)));
            }
        });
    for (std::thread& host : hosts) host.join();
    EXPECT_EQ(ran, 400);
}

TYPED_TEST(EachWrapper, TaskMayRunTasksOnTheGlobalPool) {
    std::atomic<int> ran{0};
    FunctionTask task([&] {
        tqtest::Latch both(2);
        tqtest::TaskList tasks(6, [&](int i) {
            if (i < 2) both.ArriveAndWait();
            ++ran;
        });
        CTQIPLThreadPool::GetInstance()->RunTasks(tasks.Array(), 2);
    });
    TypeParam wrapper;
    EXPECT_TRUE(WaitDone(wrapper.SetTask(&task)));
    EXPECT_EQ(ran, 6);
}

TYPED_TEST(EachWrapper, TaskThatThrowsSignalsAndOneLineSaysWhat) {
    TypeParam wrapper;
    FunctionTask good([] {});
    EXPECT_TRUE(WaitDone(wrapper.SetTask(&good)));
    const Numbers before = Stats();
    DebugLines lines;
    FunctionTask memory([] { throw std::bad_alloc(); });
    EXPECT_TRUE(WaitDone(wrapper.SetTask(&memory)));
    FunctionTask error([] { throw std::runtime_error("row 77\nis \xE9 late"); });
    EXPECT_TRUE(WaitDone(wrapper.SetTask(&error)));
    FunctionTask number([] { throw 5; });
    EXPECT_TRUE(WaitDone(wrapper.SetTask(&number)));
    FunctionTask lengthy([] { throw std::runtime_error(std::string(5000, 'x')); });
    EXPECT_TRUE(WaitDone(wrapper.SetTask(&lengthy)));
    EXPECT_FALSE(WaitDone(wrapper.GetEvent(), 0));

    const std::string begin = "a thread wrapper's task threw: ";
    const std::vector<std::string> seen = lines.Lines();
    ASSERT_EQ(seen.size(), 4u);
    EXPECT_EQ(seen[0], begin + "std::bad_alloc\n");
    EXPECT_EQ(seen[1], begin + "row 77?is ? late\n");
    EXPECT_EQ(seen[2], begin + "not a std::exception\n");
    EXPECT_EQ(seen[3], begin + std::string(seen[3].size() - begin.size() - 1, 'x') + "\n");
    EXPECT_LT(seen[3].size(), 256u);

    int runs = 0;
    FunctionTask next([&] { ++runs; });
    EXPECT_TRUE(WaitDone(wrapper.SetTask(&next)));
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(Stats(), before);
}

TYPED_TEST(EachWrapper, CallInATaskHandsOnWhatItsTasksThrow) {
    std::atomic<int> caught{0};
    FunctionTask task([&] {
        tqtest::TaskList tasks(4, [](int i) {
            if (i == 2) throw i;
        });
        try {
            CTQIPLThreadPool::GetInstance()->RunTasks(tasks.Array(), 2);
        } catch (int number) {
            caught = number;
        }
    });
    TypeParam wrapper;
    EXPECT_TRUE(WaitDone(wrapper.SetTask(&task)));
    EXPECT_EQ(caught, 2);
}

// ---- A thread of its own ------------------------------------------------------

TEST_F(Wrappers, OwnThreadStaysOutOfThePool) {
    FunctionTask task([] {});
    CTQIPLThreadBase wrapper;
    EXPECT_TRUE(WaitDone(wrapper.SetTask(&task)));
    EXPECT_EQ(Stats(), (Numbers{128, 0, 0, 0}));
}

TEST_F(Wrappers, NullTaskStillSignals) {
    CTQIPLThreadBase wrapper;
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(WaitDone(wrapper.SetTask(nullptr)));
        EXPECT_FALSE(WaitDone(wrapper.GetEvent(), 0));
    }
    int runs = 0;
    FunctionTask task([&] { ++runs; });
    EXPECT_TRUE(WaitDone(wrapper.SetTask(&task)));
    EXPECT_TRUE(WaitDone(wrapper.SetTask(nullptr)));
    EXPECT_EQ(runs, 1);
}

TEST_F(Wrappers, SetTaskTakesALeftSignalAway) {
    FunctionTask first([] {});
    CTQIPLThreadBase wrapper;
    void* const event = wrapper.SetTask(&first);
    EXPECT_TRUE(WaitDone(event));
    tqtest::SignalDone(event);
    HeldTask second;
    wrapper.SetTask(&second);
    EXPECT_FALSE(WaitDone(event, 0));
    second.goOn.CountDown();
    EXPECT_TRUE(WaitDone(event));
    EXPECT_TRUE(second.finished);
}

TEST_F(Wrappers, EndWaitsForTheRunningTask) {
    for (int round = 0; round < 20; ++round) {
        HeldTask task;
        std::thread helper([&] {
            task.begun.Wait();
            for (int i = 0; i < 20; ++i) std::this_thread::yield();
            task.goOn.CountDown();
        });
        {
            CTQIPLThreadBase wrapper;
            wrapper.SetTask(&task);
            task.begun.Wait();
        }
        EXPECT_TRUE(task.finished);
        helper.join();
    }
}

TEST_F(Wrappers, OnlyTheLastCopyEndsTheThread) {
    HeldTask task;
    auto first = std::make_unique<CTQIPLThreadBase>();
    void* const event = first->SetTask(&task);
    task.begun.Wait();
    {
        CTQIPLThreadBase second(*first);
        first.reset();  // does not wait for the task
        EXPECT_FALSE(task.finished);
        task.goOn.CountDown();
        EXPECT_TRUE(WaitDone(event));
    }
    EXPECT_TRUE(task.finished);
}

// ---- A borrowed one -----------------------------------------------------------

TEST_F(Wrappers, BorrowedWorkerIsOutOfThePoolForTheWrappersLife) {
    {
        CTQIPLThreadAuto first;
        EXPECT_EQ(Stats(), (Numbers{128, 1, 1, 0}));
        {
            CTQIPLThreadAuto second;
            EXPECT_EQ(Stats(), (Numbers{128, 2, 2, 0}));
        }
        EXPECT_EQ(Stats(), (Numbers{128, 2, 1, 1}));
        m_pool.ReleaseIdleThreads();
        EXPECT_EQ(Stats(), (Numbers{128, 1, 1, 0}));
    }
    EXPECT_EQ(Stats(), (Numbers{128, 1, 0, 1}));
}

TEST_F(Wrappers, BorrowedWorkerIsTheOneIdleLongest) {
    m_pool.SetThreadLimits(3, 3);
    std::array<unsigned int, 6> ids{};
    for (unsigned int& id : ids) {
        FunctionTask task([&] { id = tq::CurrentThreadId(); });
        CTQIPLThreadAuto wrapper;
        EXPECT_TRUE(WaitDone(wrapper.SetTask(&task)));
    }
    EXPECT_EQ(std::set<unsigned int>(ids.begin(), ids.end()).size(), 3u);
    for (size_t i = 3; i < ids.size(); ++i) EXPECT_EQ(ids[i], ids[i - 3]);
    EXPECT_EQ(Stats(), (Numbers{3, 3, 0, 3}));
}

TEST_F(Wrappers, CopiesOfABorrowedWorkerReturnItOnce) {
    auto first = std::make_unique<CTQIPLThreadAuto>();
    auto second = std::make_unique<CTQIPLThreadAuto>(*first);
    EXPECT_EQ(Stats(), (Numbers{128, 1, 1, 0}));
    first.reset();
    EXPECT_EQ(Stats(), (Numbers{128, 1, 1, 0}));
    {
        CTQIPLThreadAuto third;
        EXPECT_EQ(Stats(), (Numbers{128, 2, 2, 0}));
        third = *second;
        EXPECT_EQ(Stats(), (Numbers{128, 2, 1, 1}));
    }
    second.reset();
    EXPECT_EQ(Stats(), (Numbers{128, 2, 0, 2}));
}

TEST_F(Wrappers, LeftSignalMeetsTheNextWait) {
    FunctionTask first([] {});
    CTQIPLThreadAuto wrapper;
    void* const event = wrapper.SetTask(&first);
    EXPECT_TRUE(WaitDone(event));
    tqtest::SignalDone(event);
    HeldTask second;
    wrapper.SetTask(&second);
    second.begun.Wait();
    EXPECT_TRUE(WaitDone(event, 0));
    EXPECT_FALSE(second.finished);
    EXPECT_FALSE(WaitDone(event, 0));
    second.goOn.CountDown();
    EXPECT_TRUE(WaitDone(event));
    EXPECT_TRUE(second.finished);
}

TEST_F(Wrappers, SignalLeftByOneBorrowerMeetsTheNext) {
    m_pool.SetThreadLimits(1, 1);
    FunctionTask task([] {});
    {
        CTQIPLThreadAuto wrapper;
        EXPECT_TRUE(WaitDone(wrapper.SetTask(&task)));
        tqtest::SignalDone(wrapper.GetEvent());
    }
    CTQIPLThreadAuto next;
    ASSERT_NE(next.GetEvent(), nullptr);
    EXPECT_TRUE(WaitDone(next.GetEvent(), 0));
}

TEST_F(Wrappers, EndOfABorrowerDoesNotWait) {
    HeldTask task;
    void* event;
    {
        CTQIPLThreadAuto wrapper;
        event = wrapper.SetTask(&task);
        task.begun.Wait();
    }
    EXPECT_FALSE(task.finished);
    EXPECT_EQ(Stats(), (Numbers{128, 1, 0, 1}));  // at work and idle
    task.goOn.CountDown();
    EXPECT_TRUE(WaitDone(event));
    EXPECT_TRUE(task.finished);
}

TEST_F(Wrappers, WorkerThatIsReturnedTooEarlyStillDoesBoth) {
    m_pool.SetThreadLimits(1, 2);
    HeldTask task;
    void* event;
    {
        CTQIPLThreadAuto wrapper;
        event = wrapper.SetTask(&task);
        task.begun.Wait();
    }
    std::atomic<int> ran{0};
    tqtest::TaskList tasks(1, [&](int) { ++ran; });
    std::thread caller([&] { m_pool.RunTasks(tasks.Array(), 2); });
    EXPECT_TRUE(Eventually([] { return Stats()[3] == 0; }));  // the pool has taken it
    EXPECT_EQ(ran, 0);
    task.goOn.CountDown();
    caller.join();
    EXPECT_EQ(ran, 1);
    EXPECT_TRUE(WaitDone(event));
    EXPECT_TRUE(task.finished);
}

TEST_F(Wrappers, NullTaskOfABorrowedWorkerSignalsNothing) {
    FunctionTask first([] {});
    CTQIPLThreadAuto wrapper;
    void* const event = wrapper.SetTask(&first);
    EXPECT_TRUE(WaitDone(event));
    EXPECT_EQ(wrapper.SetTask(nullptr), event);
    EXPECT_FALSE(WaitDone(event, 20));
    HeldTask second;
    wrapper.SetTask(&second);
    second.begun.Wait();
    EXPECT_FALSE(WaitDone(event, 0));
    second.goOn.CountDown();
    EXPECT_TRUE(WaitDone(event));
}

TEST_F(Wrappers, WorkerOfATaskThatThrewGoesBackToThePool) {
    DebugLines lines;
    m_pool.SetThreadLimits(0, 1);
    FunctionTask task([] { throw 1; });
    for (int i = 0; i < 3; ++i) {
        CTQIPLThreadAuto wrapper;
        EXPECT_TRUE(WaitDone(wrapper.SetTask(&task)));
        EXPECT_EQ(Stats(), (Numbers{1, 1, 1, 0}));
    }
    EXPECT_EQ(Stats(), (Numbers{1, 1, 0, 1}));
    EXPECT_EQ(lines.Count(), 4u);  // one thread, three tasks
}

// A worker that a pool task has left with an exception is in no pool task afterwards: a call from
// it uses the pool.
TEST_F(Wrappers, WorkerWhosePoolTaskThrewRunsTasksOnThePool) {
    tqtest::TaskList faulty(1, [](int) { throw 1; });
    EXPECT_THROW(m_pool.RunTasks(faulty.Array(), 2), int);
    ASSERT_TRUE(Eventually([] { return Stats()[2] == 0; }));
    CTQIPLThreadAuto wrapper;
    EXPECT_EQ(Stats(), (Numbers{128, 1, 1, 0}));
    FunctionTask task([this] {
        tqtest::Latch both(2);
        tqtest::TaskList tasks(2, [&](int) { both.ArriveAndWait(); });
        m_pool.RunTasks(tasks.Array(), 2);
    });
    EXPECT_TRUE(WaitDone(wrapper.SetTask(&task)));
}

TEST_F(Wrappers, BorrowerWaitsWhenAllWorkersAreOut) {
    m_pool.SetThreadLimits(0, 2);
    auto first = std::make_unique<CTQIPLThreadAuto>();
    CTQIPLThreadAuto second;
    std::atomic<bool> constructed{false};
    std::thread host([&] {
        CTQIPLThreadAuto third;
        constructed = true;
        FunctionTask task([] {});
        EXPECT_TRUE(WaitDone(third.SetTask(&task)));
    });
    for (int i = 0; i < 1000; ++i) std::this_thread::yield();
    EXPECT_FALSE(constructed);
    EXPECT_EQ(Stats(), (Numbers{2, 2, 2, 0}));
    first.reset();
    host.join();
    EXPECT_TRUE(constructed);
    EXPECT_EQ(Stats(), (Numbers{2, 2, 1, 1}));
}

TEST_F(Wrappers, BorrowerThatWaitsIsServedByAHigherMaximum) {
    m_pool.SetThreadLimits(0, 1);
    CTQIPLThreadAuto first;
    std::thread host([] {
        CTQIPLThreadAuto second;
        FunctionTask task([] {});
        EXPECT_TRUE(WaitDone(second.SetTask(&task)));
    });
    for (int i = 0; i < 200; ++i) std::this_thread::yield();
    m_pool.SetThreadLimits(0, 2);
    host.join();
}

TEST_F(Wrappers, BorrowerGetsAWorkerAtALimitOf0) {
    m_pool.SetThreadLimits(0, 0);
    EXPECT_EQ(Stats(), (Numbers{0, 0, 0, 0}));
    for (int round = 0; round < 3; ++round) {
        int runs = 0;
        FunctionTask task([&] { ++runs; });
        CTQIPLThreadAuto wrapper;
        EXPECT_TRUE(WaitDone(wrapper.SetTask(&task)));
        EXPECT_EQ(runs, 1);
        EXPECT_EQ(Stats(), (Numbers{0, 1, 1, 0}));
    }
}

#if !defined(_WIN32)
TEST_F(Wrappers, WaitForNoEventReturnsAtOnce) {
    EXPECT_EQ(TQ_WaitEvent(nullptr, -1), 0);
    EXPECT_EQ(TQ_WaitEvent(nullptr, 1000000), 0);
}
#endif

}  // namespace
