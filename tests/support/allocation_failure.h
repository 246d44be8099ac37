#pragma once

// Makes a call again and again, each time with another allocation refused: of each such call comes
// the result that there is with memory enough, or std::bad_alloc; nothing leaks, and the next call
// has its result.

#include "support/failing_new.h"

#if TQTEST_REPLACES_NEW

#include <gtest/gtest.h>
#include <tqipl/thread.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "support/calls/form_calls.h"
#include "support/deadline.h"
#include "support/idle_library.h"
#include "support/settings.h"

namespace tqtest {

struct FailureTrial {
    std::string name;
    std::function<void()> reset;  // all as it is before a call
    std::function<void()> call;
    std::function<std::vector<uint8_t>()> result;
};

inline testing::AssertionResult NothingIsHeld() {
    if (!AllWorkersIdle())
        return testing::AssertionFailure() << PoolStats().m_nIdleThreads << " workers of "
                                           << PoolStats().m_nThreadCount << " are idle";
    if (tq::SharedMemoryManager().m_nBytesInUse != 0)
        return testing::AssertionFailure()
               << tq::SharedMemoryManager().m_nBytesInUse << " bytes of the manager are out";
    for (int64_t i = 0; i < g_IPL6CubicTablePool.m_arrTables.GetSize(); ++i)
        if (g_IPL6CubicTablePool.m_arrTables.GetAt(i)->m_nRefCount != 0)
            return testing::AssertionFailure() << "a table of weights has a user left";
    return testing::AssertionSuccess();
}

class AllocationFailure {
public:
    explicit AllocationFailure(const FailureTrial& trial) : m_trial(trial) {}

    // Without anything refused, with one allocation, and with all from one on; each for every
    // number that the call reaches.
    testing::AssertionResult Check() {
        testing::AssertionResult result = Run(RefuseAllocations::kNone, RefuseAllocations::kNone);
        if (!result) return result;
        if (m_threw) return testing::AssertionFailure() << "std::bad_alloc with nothing refused";
        m_expected = m_trial.result();
        result = SucceedsAgain();
        if (!result) return result;
        for (bool all : {false, true}) {
            if (!Settle()) return testing::AssertionFailure() << "workers do not go";
            const long live = g_liveAllocations;
            result = RefuseEachInTurn(all);
            if (!result) return result;
            if (!Settle()) return testing::AssertionFailure() << "workers do not go";
            if (!Soon([live] { return g_liveAllocations == live; }))
                return testing::AssertionFailure()
                       << (all ? "all refused from some on" : "one refused") << ", "
                       << g_liveAllocations - live << " allocations are left over";
        }
        return testing::AssertionSuccess();
    }

    // Calls that ended in std::bad_alloc.
    int Failures() const { return m_failures; }
    // Allocations of a call with no worker ready and nothing cached.
    long Allocations() const { return m_allocations; }

private:
    testing::AssertionResult RefuseEachInTurn(bool all) {
        for (long number = 1;; ++number) {
            // Workers are made within the calls of one kind, and stand ready in the other.
            if (!all && !ReleaseWorkers())
                return testing::AssertionFailure() << "workers do not go";
            DropCachedMemory();
            testing::AssertionResult result = Run(number, all ? RefuseAllocations::kNone : number);
            if (result && m_count < number) {
                if (!all) m_allocations = m_count;
                return result;
            }
            if (m_threw) ++m_failures;
            if (result) result = SucceedsAgain();
            if (!result)
                return result << ", after allocation " << number
                              << (all ? " and all later ones were refused" : " was refused");
        }
    }

    // False with any outcome but the expected result and std::bad_alloc.
    testing::AssertionResult Run(long first, long last) {
        m_trial.reset();
        m_threw = false;
        const char* otherwise = nullptr;
        {
            RefuseAllocations refuse(first, last);
            try {
                m_trial.call();
            } catch (const std::bad_alloc&) {
                m_threw = true;
            } catch (...) {
                otherwise = "something else than std::bad_alloc left";
            }
            m_count = refuse.Count();
        }
        if (otherwise != nullptr) return testing::AssertionFailure() << otherwise;
        if (!m_threw && !m_expected.empty() && m_trial.result() != m_expected)
            return testing::AssertionFailure() << "the call came to an end with other bytes";
        return NothingIsHeld();
    }
    testing::AssertionResult SucceedsAgain() {
        const testing::AssertionResult result =
            Run(RefuseAllocations::kNone, RefuseAllocations::kNone);
        if (!result || !m_threw) return result;
        return testing::AssertionFailure() << "std::bad_alloc with nothing refused";
    }
    static bool Settle() {
        const bool settled = ReleaseWorkers();
        DropCachedMemory();
        return settled;
    }

    const FailureTrial& m_trial;
    std::vector<uint8_t> m_expected;
    bool m_threw = false;
    long m_count = 0, m_allocations = 0;
    int m_failures = 0;
};

inline void ExpectEveryAllocationMayFail(const FailureTrial& trial, long leastAllocations = 1) {
    SCOPED_TRACE(trial.name);
    Deadline deadline;
    AllocationFailure failure(trial);
    EXPECT_TRUE(failure.Check());
    EXPECT_GE(failure.Allocations(), leastAllocations);
    EXPECT_EQ(failure.Failures() > 0, failure.Allocations() > 0);
}

// Plain forms once, others at processor counts with and without bands, which take a task each.
inline void ExpectEveryAllocationMayFail(const FormCalls& table, const CallShape& shape = {}) {
    Settings settings;
    for (const FormCall& form : table.All())
        for (unsigned processors : {1u, 3u, 8u}) {
            if (processors != 1 && !form.IsThreaded()) continue;
            settings.UseProcessors(processors);
            CallFrame frame(shape);
            const FailureTrial trial = {
                form.name + ", " + std::to_string(processors) + " processors",
                [&] { frame.Refill(); }, form.prepare(frame), [&] { return frame.Contents(); }};
            ExpectEveryAllocationMayFail(trial,
                                         processors == 1 ? 0 : static_cast<long>(processors));
        }
}

}  // namespace tqtest

#endif
