#pragma once

// What the tests of the thread pool work with.

#include <gtest/gtest.h>
#include <tqipl/thread.h>

#include <array>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include "support/deadline.h"
#include "support/function_task.h"
#include "support/latch.h"

#if defined(__GLIBC__)
#include <pthread.h>
#endif

namespace tqtest {

using Numbers = std::array<unsigned int, 4>;  // maximum, workers, busy, idle

inline Numbers StatsOf(CTQIPLThreadPool& pool) {
    TQ_THREAD_STATS stats{77, 77, 77, 77};
    EXPECT_EQ(pool.GetThreadStats(&stats), 0);
    return {stats.m_nMaxThreads, stats.m_nThreadCount, stats.m_nBusyThreads, stats.m_nIdleThreads};
}

// Every test has a pool and ends in time.
class PoolTest : public testing::Test {
protected:
    PoolTest() : m_owner(Create_IPLThreadPool(), Delete_IPLThreadPool), m_pool(*m_owner) {}

    int Run(TaskList& tasks, int limit) { return m_pool.RunTasks(tasks.Array(), limit); }
    int Run(std::function<void()> body, int limit) {
        TaskList tasks;
        tasks.Add(std::move(body));
        return Run(tasks, limit);
    }
    Numbers Stats() { return StatsOf(m_pool); }
    // A worker is back a little after its call has returned.
    bool AllIdle() {
        return Eventually([this] { return Stats()[2] == 0; });
    }

    Deadline m_deadline;
    std::unique_ptr<CTQIPLThreadPool, void (*)(CTQIPLThreadPool*)> m_owner;
    CTQIPLThreadPool& m_pool;
};

// Holds workers of a pool: one task for each, which ends when this is told to.
class Held {
public:
    Held(CTQIPLThreadPool& pool, int count) : m_begun(count) {
        TaskList* tasks = &m_tasks;
        for (int i = 0; i < count; ++i)
            tasks->Add([this] {
                m_begun.CountDown();
                m_goOn.Wait();
            });
        m_caller = std::thread([&pool, tasks, count] { pool.RunTasks(tasks->Array(), count + 1); });
        m_begun.Wait();
    }
    ~Held() { Release(); }
    void Release() {
        if (!m_caller.joinable()) return;
        m_goOn.CountDown();
        m_caller.join();
    }

private:
    Latch m_begun;
    Latch m_goOn{1};
    TaskList m_tasks;
    std::thread m_caller;
};

#if defined(__GLIBC__)
// No address space has room for the stacks of threads that start while this lives.
class NoThreads {
public:
    NoThreads() {
        pthread_getattr_default_np(&m_before);
        pthread_attr_t attributes;
        pthread_getattr_default_np(&attributes);
        pthread_attr_setstacksize(&attributes, size_t{1} << 47);
        EXPECT_EQ(pthread_setattr_default_np(&attributes), 0);
        pthread_attr_destroy(&attributes);
    }
    ~NoThreads() {
        pthread_setattr_default_np(&m_before);
        pthread_attr_destroy(&m_before);
    }

private:
    pthread_attr_t m_before;
};
#endif

}  // namespace tqtest
