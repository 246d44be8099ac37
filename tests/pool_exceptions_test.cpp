// What tasks throw: their caller gets it, and the pool is as good as before.

#include <gtest/gtest.h>
#include <tqipl/thread.h>

#include <atomic>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/deadline.h"
#include "support/function_task.h"
#include "support/latch.h"
#include "support/pool_stage.h"
#include "support/replaced_new.h"

namespace {

using tqtest::Eventually;
using tqtest::Held;
using tqtest::Numbers;
using tqtest::TaskList;

// An exception of a host's own, with a share of something that must not be lost.
struct Fault {
    int number;
    std::shared_ptr<int> share;
};

class PoolExceptions : public tqtest::PoolTest {
protected:
    // The number of the fault that leaves the call; -1 if none does.
    int FaultOf(TaskList& tasks, int limit) { return FaultOf(m_pool, tasks, limit); }
    static int FaultOf(CTQIPLThreadPool& pool, TaskList& tasks, int limit) {
        try {
            EXPECT_EQ(pool.RunTasks(tasks.Array(), limit), 0);
        } catch (const Fault& fault) {
            return fault.number;
        }
        return -1;
    }

    // Nothing is lost: all workers come back, and as many tasks as there were run at once.
    void ExpectAsGoodAsBefore(unsigned int workers) {
        ASSERT_TRUE(AllIdle());
        EXPECT_EQ(Stats(), (Numbers{128, workers, 0, workers}));
        EXPECT_EQ(m_share.use_count(), 1);
        const int count = static_cast<int>(workers) + 2;
        tqtest::Latch all(count);
        std::atomic<int> ran{0};
        TaskList tasks(count, [&](int) {
            all.ArriveAndWait();
            ++ran;
        });
        EXPECT_EQ(Run(tasks, count), 0);
        EXPECT_EQ(ran, count);
        ASSERT_TRUE(AllIdle());
        EXPECT_EQ(Stats(), (Numbers{128, workers + 2, 0, workers + 2}));
    }

    // A task that has thrown gives its worker back afterwards.
    bool OneIsBusy() {
        return Eventually([this] { return Stats()[2] == 1; });
    }

    Fault FaultNumber(int number) { return {number, m_share}; }

    std::shared_ptr<int> m_share = std::make_shared<int>(0);
};

TEST_F(PoolExceptions, LackOfMemoryInATaskReachesTheCaller) {
    EXPECT_THROW(Run([] { throw std::bad_alloc(); }, 2), std::bad_alloc);
    ExpectAsGoodAsBefore(1);
}

TEST_F(PoolExceptions, ExceptionOfAnyTypeReachesTheCallerWhole) {
    try {
        Run([] { throw std::out_of_range("row 77"); }, 2);
        ADD_FAILURE();
    } catch (const std::out_of_range& error) {
        EXPECT_EQ(error.what(), std::string("row 77"));
    }
    try {
        Run([] { throw 4711; }, 2);
        ADD_FAILURE();
    } catch (int number) {
        EXPECT_EQ(number, 4711);
    }
    try {
        Run([this] { throw FaultNumber(5); }, 2);
        ADD_FAILURE();
    } catch (const Fault& fault) {
        EXPECT_EQ(fault.number, 5);
        EXPECT_EQ(fault.share, m_share);
        EXPECT_EQ(m_share.use_count(), 2);
    }
    ASSERT_TRUE(AllIdle());
    ExpectAsGoodAsBefore(Stats()[1]);
}

TEST_F(PoolExceptions, TaskThatThrowsIsOnlyBorrowedAndRunsAgain) {
    std::atomic<int> runs{0};
    TaskList tasks(1, [&](int) {
        if (++runs < 3) throw FaultNumber(runs);
    });
    EXPECT_EQ(FaultOf(tasks, 2), 1);
    EXPECT_EQ(FaultOf(tasks, 2), 2);
    EXPECT_EQ(FaultOf(tasks, 2), -1);
    EXPECT_EQ(runs, 3);
}

TEST_F(PoolExceptions, CallerWaitsForTheTasksUnderWay) {
    tqtest::Latch both(2);
    std::atomic<bool> finished{false};
    TaskList tasks(2, [&](int i) {
        both.ArriveAndWait();
        if (i == 1) throw FaultNumber(1);
        EXPECT_TRUE(OneIsBusy());
        finished = true;
    });
    EXPECT_EQ(FaultOf(tasks, 2), 1);
    EXPECT_TRUE(finished);
    ExpectAsGoodAsBefore(2);
}

TEST_F(PoolExceptions, FirstOfSeveralCounts) {
    for (int first : {0, 1}) {
        m_pool.ReleaseIdleThreads();
        tqtest::Latch both(2);
        TaskList tasks(2, [&](int i) {
            both.ArriveAndWait();
            if (i != first) {
                EXPECT_TRUE(OneIsBusy());
            }
            throw FaultNumber(i);
        });
        EXPECT_EQ(FaultOf(tasks, 2), first);
        EXPECT_EQ(m_share.use_count(), 1);
        ASSERT_TRUE(AllIdle());
    }
    ExpectAsGoodAsBefore(2);
}

TEST_F(PoolExceptions, OneOfManyAtOnceReachesTheCaller) {
    constexpr int kCount = 6;
    for (int round = 0; round < 50; ++round) {
        tqtest::Latch all(kCount);
        TaskList tasks(kCount, [&](int i) {
            all.ArriveAndWait();
            throw FaultNumber(i);
        });
        const int number = FaultOf(tasks, kCount);
        EXPECT_GE(number, 0);
        EXPECT_LT(number, kCount);
        EXPECT_EQ(m_share.use_count(), 1);
    }
    ASSERT_TRUE(AllIdle());
    ExpectAsGoodAsBefore(Stats()[1]);
}

TEST_F(PoolExceptions, NoFurtherTaskIsFed) {
    tqtest::Latch both(2);
    std::atomic<int> ran{0};
    TaskList tasks(20, [&](int i) {
        ++ran;
        both.ArriveAndWait();
        if (i == 0) throw FaultNumber(0);
        EXPECT_TRUE(OneIsBusy());
    });
    EXPECT_EQ(FaultOf(tasks, 2), 0);
    EXPECT_EQ(ran, 2);
    ExpectAsGoodAsBefore(2);
}

TEST_F(PoolExceptions, LastTaskOfManyReachesTheCaller) {
    for (int limit : {1, 2, 3, 20}) {
        std::atomic<int> ran{0};
        TaskList tasks(20, [&](int i) {
            ++ran;
            if (i < 19) return;
            EXPECT_TRUE(Eventually([&] { return ran == 20; }));
            throw FaultNumber(19);
        });
        EXPECT_EQ(FaultOf(tasks, limit), 19);
        EXPECT_EQ(ran, 20);
    }
    ASSERT_TRUE(AllIdle());
    ExpectAsGoodAsBefore(Stats()[1]);
}

// One worker is left: it takes the tasks in turn.
TEST_F(PoolExceptions, TasksThatWaitForAWorkerAreLeftOut) {
    m_pool.SetThreadLimits(0, 3);
    Held held(m_pool, 2);
    std::atomic<int> ran{0};
    TaskList tasks(3, [&](int i) {
        ++ran;
        throw FaultNumber(i);
    });
    EXPECT_EQ(FaultOf(tasks, 3), 0);
    EXPECT_EQ(ran, 1);
    EXPECT_TRUE(Eventually([this] { return Stats()[2] == 2; }));
    held.Release();
    m_pool.SetThreadLimits(0, 128);
    ASSERT_TRUE(AllIdle());
    m_pool.ReleaseIdleThreads();
    ExpectAsGoodAsBefore(0);
}

TEST_F(PoolExceptions, TasksOnTheCallersThreadEndAtTheOneThatThrows) {
    for (int limit : {0, 1}) {
        std::vector<int> order;
        TaskList tasks(6, [&](int i) {
            order.push_back(i);
            if (i == 3) throw FaultNumber(3);
        });
        EXPECT_EQ(FaultOf(tasks, limit), 3);
        EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3}));
    }
    ExpectAsGoodAsBefore(0);
}

TEST_F(PoolExceptions, CallInATaskHandsOnWhatItsTasksThrow) {
    std::atomic<int> inners{0};
    TaskList outer(1, [&](int) {
        TaskList inner(4, [&](int i) {
            ++inners;
            if (i == 1) throw FaultNumber(11);
        });
        m_pool.RunTasks(inner.Array(), 4);
    });
    EXPECT_EQ(FaultOf(outer, 2), 11);
    EXPECT_EQ(inners, 2);
    ExpectAsGoodAsBefore(1);
}

TEST_F(PoolExceptions, TaskMayCatchWhatACallOfItsOwnThrows) {
    std::atomic<int> caught{0};
    TaskList outer(3, [&](int) {
        TaskList inner(4, [&](int i) { throw FaultNumber(i); });
        if (FaultOf(inner, 4) == 0) ++caught;
    });
    EXPECT_EQ(FaultOf(outer, 3), -1);
    EXPECT_EQ(caught, 3);
    ASSERT_TRUE(AllIdle());
    ExpectAsGoodAsBefore(Stats()[1]);
}

TEST_F(PoolExceptions, CallOnAnotherPoolHandsOnWhatItsTasksThrow) {
    std::unique_ptr<CTQIPLThreadPool> other(Create_IPLThreadPool());
    TaskList outer(1, [&](int) {
        TaskList inner(2, [&](int i) {
            if (i == 1) throw FaultNumber(21);
        });
        other->RunTasks(inner.Array(), 2);
    });
    EXPECT_EQ(FaultOf(outer, 2), 21);
    ExpectAsGoodAsBefore(1);
}

TEST_F(PoolExceptions, EachCallerGetsOnlyItsOwn) {
    m_pool.SetThreadLimits(0, 6);
    std::vector<std::thread> callers;
    for (int caller = 0; caller < 6; ++caller)
        callers.emplace_back([this, caller] {
            const bool throws = caller % 2 == 0;
            for (int round = 0; round < 100; ++round) {
                std::atomic<int> ran{0};
                TaskList tasks(7, [&](int i) {
                    ++ran;
                    if (throws && i == round % 7) throw FaultNumber(caller * 1000 + round);
                });
                EXPECT_EQ(FaultOf(tasks, 3), throws ? caller * 1000 + round : -1);
                if (!throws) {
                    EXPECT_EQ(ran, 7);
                }
            }
        });
    for (std::thread& caller : callers) caller.join();
    ASSERT_TRUE(AllIdle());
    EXPECT_LE(Stats()[1], 6u);
    m_pool.SetThreadLimits(0, 128);
    m_pool.ReleaseIdleThreads();
    ExpectAsGoodAsBefore(0);
}

TEST_F(PoolExceptions, PoolEndsWithWorkersOnTheirWayBack) {
    for (int round = 0; round < 40; ++round) {
        CTQIPLThreadPool* pool = Create_IPLThreadPool();
        TaskList tasks(8, [&](int i) { throw FaultNumber(i); });
        EXPECT_GE(FaultOf(*pool, tasks, 4), 0);
        Delete_IPLThreadPool(pool);
    }
    EXPECT_EQ(m_share.use_count(), 1);
}

#if defined(__GLIBC__)
// The dispatcher runs the tasks.
TEST_F(PoolExceptions, ReachTheCallerWhenTheSystemHasNoMoreThreads) {
    m_pool.SetThreadLimits(1, 8);
    std::vector<int> order;
    TaskList tasks(6, [&](int i) {
        order.push_back(i);
        if (i == 2) throw FaultNumber(2);
    });
    {
        tqtest::NoThreads noThreads;
        EXPECT_EQ(FaultOf(tasks, 2), 2);
        EXPECT_EQ(FaultOf(tasks, 6), 2);
    }
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 0, 1, 2}));
    ASSERT_TRUE(AllIdle());
    m_pool.SetThreadLimits(0, 128);
    ExpectAsGoodAsBefore(0);
}
#endif

#if TQTEST_REPLACES_NEW
TEST_F(PoolExceptions, ReachTheCallerWhenThereIsNoMemoryForAWorker) {
    m_pool.SetThreadLimits(0, 128);
    const std::thread::id here = std::this_thread::get_id();
    TaskList tasks(1, [&](int) {
        EXPECT_NE(std::this_thread::get_id(), here);
        throw FaultNumber(9);
    });
    {
        // The first array of the call is the list of workers.
        const auto refuse = tqtest::RefuseArrays::Number(1);
        EXPECT_EQ(FaultOf(tasks, 2), 9);
        EXPECT_EQ(tqtest::g_refuseNumber, 0);
        EXPECT_EQ(Stats(), (Numbers{128, 0, 0, 0}));
    }
    ExpectAsGoodAsBefore(0);
}

TEST_F(PoolExceptions, LimitsThatFindNoMemoryChangeNothing) {
    m_pool.SetThreadLimits(2, 128);
    for (int number : {1, 2}) {  // the list of workers grows more than once
        const auto refuse = tqtest::RefuseArrays::Number(number);
        EXPECT_THROW(m_pool.SetThreadLimits(40, 50), std::bad_alloc);
        EXPECT_EQ(tqtest::g_refuseNumber, 0);
        EXPECT_EQ(Stats(), (Numbers{128, 2, 0, 2}));
    }
    ExpectAsGoodAsBefore(2);
    EXPECT_EQ(m_pool.SetThreadLimits(40, 50), 0);
    EXPECT_EQ(Stats(), (Numbers{50, 40, 0, 40}));
}
#endif

}  // namespace
