// Refused allocations in the pool, the thread wrappers, the memory managers and arrays; and that
// the tests of refused allocations notice what they are there for.

#include "support/allocation_failure.h"

#if TQTEST_REPLACES_NEW

#include <tqipl/buffer.h>

#include <array>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "support/function_task.h"
#include "support/pool_stage.h"
#include "support/wait_done.h"

namespace {

using tqtest::ExpectEveryAllocationMayFail;
using tqtest::FailureTrial;
using Bytes = std::vector<uint8_t>;

struct PoolEnd {
    void operator()(CTQIPLThreadPool* pool) const { Delete_IPLThreadPool(pool); }
};
using OwnPool = std::unique_ptr<CTQIPLThreadPool, PoolEnd>;
OwnPool MakePool() {
    OwnPool pool(Create_IPLThreadPool());
    if (pool == nullptr) throw std::bad_alloc();
    return pool;
}

struct ManagerEnd {
    void operator()(void* manager) const { IPL_DeletMemoryManager(manager); }
};
using OwnManager = std::unique_ptr<void, ManagerEnd>;
OwnManager MakeManager() {
    OwnManager manager(IPL_GetMemoryManager());
    if (manager == nullptr) throw std::bad_alloc();
    return manager;
}

// Tasks that note that they have run.
class Notes {
public:
    Notes() : m_tasks(kCount, [this](int i) { m_runs[i] += 1; }) {}
    void Clear() { m_runs.fill(0); }
    tqtest::TaskList& Tasks() { return m_tasks; }
    CTQIPLTaskBase* First() { return m_tasks.Array().GetAt(0); }
    Bytes Runs() const { return Bytes(m_runs.begin(), m_runs.end()); }

private:
    static constexpr int kCount = 7;
    std::array<uint8_t, kCount> m_runs{};
    tqtest::TaskList m_tasks;
};

void ExpectTasksRun(const char* name, Notes& notes, const std::function<void()>& call) {
    ExpectEveryAllocationMayFail(
        {name, [&] { notes.Clear(); }, call, [&] { return notes.Runs(); }});
}

TEST(AllocationFailure, LeavesPoolsWhole) {
    Notes notes;
    ExpectTasksRun("global pool", notes,
                   [&] { CTQIPLThreadPool::GetInstance()->RunTasks(notes.Tasks().Array(), 4); });
    ExpectTasksRun("own pool", notes, [&] {
        const OwnPool pool = MakePool();
        pool->RunTasks(notes.Tasks().Array(), 4);
    });
    ExpectTasksRun("limits", notes, [&] {
        const OwnPool pool = MakePool();
        pool->SetThreadLimits(3, 5);
        pool->RunTasks(notes.Tasks().Array(), 4);
        pool->SetThreadLimits(1, 2);
        pool->ReleaseIdleThreads();
        pool->RunTasks(notes.Tasks().Array(), 4);
    });
}

TEST(AllocationFailure, ChangesNoLimitsOfAPool) {
    const OwnPool pool = MakePool();
    TQ_THREAD_STATS before;
    pool->SetThreadLimits(2, 3);
    pool->GetThreadStats(&before);
    int refused = 0;
    for (long number = 1;; ++number) {
        tqtest::RefuseAllocations refuse(number, number);
        try {
            pool->SetThreadLimits(6, 9);
            if (refuse.Count() < number) break;
        } catch (const std::bad_alloc&) {
            ++refused;
        }
        TQ_THREAD_STATS after;
        pool->GetThreadStats(&after);
        ASSERT_EQ(after.m_nMaxThreads, before.m_nMaxThreads);
        ASSERT_EQ(after.m_nThreadCount, before.m_nThreadCount);
        ASSERT_EQ(after.m_nIdleThreads, before.m_nIdleThreads);
    }
    EXPECT_GT(refused, 3);
}

TEST(AllocationFailure, LeavesThreadWrappersWhole) {
    Notes notes;
    ExpectTasksRun("thread of its own", notes, [&] {
        CTQIPLThreadBase thread;
        CTQIPLThreadBase copy(thread);
        tqtest::WaitDone(thread.SetTask(notes.First()));
        tqtest::WaitDone(copy.SetTask(notes.First()));
    });
    ExpectTasksRun("borrowed worker", notes, [&] {
        CTQIPLThreadAuto thread;
        CTQIPLThreadAuto copy(thread);
        tqtest::WaitDone(thread.SetTask(notes.First()));
        tqtest::WaitDone(copy.SetTask(notes.First()));
    });
}

void ExpectBytes(const char* name, const std::function<Bytes()>& call, bool mayFail = true) {
    Bytes result;
    const FailureTrial trial = {name, [&] { result = Bytes(); }, [&] { result = call(); },
                                [&] { return result; }};
    ExpectEveryAllocationMayFail(trial, mayFail ? 1 : 0);
}

TEST(AllocationFailure, LeavesMemoryManagersWhole) {
    ExpectBytes("shared manager", [] {
        unsigned char* first = IPL_Malloc(100, 1);
        unsigned char* second = nullptr;
        try {
            second = IPL_Malloc(3 << 20, 1);
        } catch (...) {
            IPL_Free(first);
            throw;
        }
        const uint8_t sum = first[0] | first[99] | second[0] | second[(3 << 20) - 1];
        IPL_Free(first);
        IPL_Free(second);
        if (sum != 0) throw std::logic_error("memory that was to be zero");
        return Bytes();
    });
    ExpectBytes("manager of its own", [] {
        const OwnManager manager = MakeManager();
        // More than the manager has descriptors for at first.
        std::array<CTQIPLMemoryAuto, 3> kept{CTQIPLMemoryAuto(1, manager.get()),
                                             CTQIPLMemoryAuto(2 << 20, manager.get()),
                                             CTQIPLMemoryAuto(manager.get())};
        for (CTQIPLMemoryAuto& buffer : kept)
            if (buffer.IsNULL() == 0) buffer.Data()[0] = 7;
        CTQIPLMemoryAuto moved(manager.get());
        kept[1].Transfer(moved);
        if (moved.Data()[0] != 7) throw std::logic_error("another buffer");
        return Bytes();
    });
    ExpectBytes("descriptors", [] {
        const OwnManager manager = MakeManager();
        auto& allocator = *static_cast<CIPLMemoryAlloc*>(manager.get());
        for (int i = 0; i < 303; ++i) allocator.AllocBuf(1);
        return Bytes();
    });
}

TEST(AllocationFailure, LeavesArraysAsTheyWere) {
    ExpectBytes("array", [] {
        CTQArray<int, int> array;
        for (int i = 0; i < 60; ++i) {
            try {
                array.Add(i);
            } catch (const std::bad_alloc&) {
                bool whole = array.GetSize() == i;
                for (int k = 0; k < i; ++k) whole = whole && array.m_pData[k] == k;
                if (!whole) throw std::logic_error("a changed array");
                throw;
            }
        }
        return Bytes();
    });
}

#if defined(__GLIBC__)
// The pool's first thread is there; then the system has no more.
TEST(ThreadFailure, LeavesEveryFormWhole) {
    Notes notes;
    CTQIPLThreadPool::GetInstance()->RunTasks(notes.Tasks().Array(), 4);
    tqtest::Settings settings;
    for (const tqtest::FormCall& form : tqtest::AllFormCalls()) {
        if (!form.IsThreaded()) continue;
        for (unsigned processors : {3u, 8u}) {
            settings.UseProcessors(processors);
            tqtest::CallFrame frame({});
            const tqtest::Call call = form.prepare(frame);
            frame.Refill();
            call();
            const Bytes expected = frame.Contents();
            ASSERT_TRUE(tqtest::ReleaseWorkers());
            {
                const tqtest::NoThreads noThreads;
                frame.Refill();
                call();
            }
            EXPECT_EQ(frame.Contents() == expected, true) << form.name << ", " << processors;
            EXPECT_TRUE(tqtest::NothingIsHeld());
        }
    }
}
#endif

// Where a compiler cannot do without it.
void TakeMemory() {
    static void* volatile memory;
    memory = ::operator new(5);
    ::operator delete(memory);
}

testing::AssertionResult Check(const std::function<void()>& call, const Bytes& result = {1}) {
    const FailureTrial trial = {"", [] {}, call, [&result] { return result; }};
    return tqtest::AllocationFailure(trial).Check();
}

TEST(AllocationFailureCheck, AcceptsACallThatHoldsNothing) {
    EXPECT_TRUE(Check(TakeMemory));
    EXPECT_TRUE(Check([] {}));
}

TEST(AllocationFailureCheck, NoticesALeak) {
    void* leaked = nullptr;
    EXPECT_FALSE(Check([&] {
        void* const memory = ::operator new(1);
        try {
            TakeMemory();
        } catch (...) {
            leaked = memory;
            throw;
        }
        ::operator delete(memory);
    }));
    EXPECT_NE(leaked, nullptr);
    ::operator delete(leaked);
}

TEST(AllocationFailureCheck, NoticesAnotherException) {
    EXPECT_FALSE(Check([] {
        try {
            TakeMemory();
        } catch (const std::bad_alloc&) {
            throw std::runtime_error("no memory");
        }
    }));
}

TEST(AllocationFailureCheck, NoticesOtherBytes) {
    Bytes result = {1};
    EXPECT_FALSE(Check(
        [&] {
            result[0] = 1;
            try {
                TakeMemory();
            } catch (const std::bad_alloc&) {
                result[0] = 2;
            }
        },
        result));
}

TEST(AllocationFailureCheck, NoticesABufferThatIsOut) {
    unsigned char* kept = nullptr;
    EXPECT_FALSE(Check([&] {
        IPL_Free(kept);
        kept = IPL_Malloc(10);
        TakeMemory();
        IPL_Free(kept);
        kept = nullptr;
    }));
    IPL_Free(kept);
}

TEST(AllocationFailureCheck, NoticesAnAllocationOnAnotherThread) {
    bool refused = false;
    EXPECT_TRUE(Check([&] {
        std::thread([&] {
            try {
                TakeMemory();
            } catch (const std::bad_alloc&) {
                refused = true;
            }
        }).join();
    }));
    EXPECT_TRUE(refused);
}

}  // namespace

#endif
