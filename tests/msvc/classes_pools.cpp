// Pools of the library at work for a host of Microsoft's compiler.
#include "classes_host.h"

namespace host {
namespace {

void CheckStats(CTQIPLThreadPool* pool, unsigned int most, unsigned int count, unsigned int idle,
                const char* what) {
    TQ_THREAD_STATS stats = {1000, 1000, 1000, 1000};
    CheckEqual(pool->GetThreadStats(&stats), 0, what);
    CheckEqual(stats.m_nMaxThreads, most, what);
    CheckEqual(stats.m_nThreadCount, count, what);
    CheckEqual(stats.m_nBusyThreads, count - idle, what);
    CheckEqual(stats.m_nIdleThreads, idle, what);
}

void CheckLimits() {
    CTQIPLThreadPool* global = CTQIPLThreadPool::GetInstance();
    Check(global != nullptr && global == CTQIPLThreadPool::GetInstance(), "one global pool");
    const unsigned int processors = CTQIPLThreadPool::GetProcessorsNum();
    Check(processors >= 1 && processors <= 4096, "the number of processors");
    CheckStats(global, 128, 0, 0, "an unused global pool");

    CTQIPLThreadPool* own = Create_IPLThreadPool();
    Check(own != nullptr && own != global, "a pool of its own");
    CheckStats(own, 128, 0, 0, "an unused own pool");
    CheckEqual(own->SetThreadLimits(3, 5), 0, "limits");
    CheckStats(own, 5, 3, 3, "three workers of five");
    CheckEqual(own->SetThreadLimits(1, 2), 0, "lower limits");
    CheckStats(own, 2, 1, 1, "one worker of two");
    CheckEqual(own->ReleaseIdleThreads(), 0, "release");
    CheckStats(own, 2, 0, 0, "no worker");
    CheckStats(global, 128, 0, 0, "the global pool beside another");
    Delete_IPLThreadPool(own);
    Delete_IPLThreadPool(nullptr);

    own = Create_IPLThreadPool();
    own->SetThreadLimits(2, 2);
    delete own;
}

// Each third entry of the array is null.
void Fill(Tasks& tasks, AddTask* made, int count, long long* sum) {
    for (int i = 0; i < count; ++i) {
        made[i] = AddTask(sum, i + 1);
        tasks.Add(&made[i]);
        if (i % 2 == 1) tasks.Add(nullptr);
    }
}

void CheckHundredTasks(CTQIPLThreadPool* pool, int limit, const char* what) {
    long long sum = 0;
    AddTask made[100];
    Tasks tasks;
    Fill(tasks, made, 100, &sum);
    CheckEqual(pool->RunTasks(tasks, limit), 0, what);
    CheckEqual(Read(&sum), 5050, what);
    CheckEqual(tasks.GetSize(), 150, what);
    Check(tasks.GetAt(0) == &made[0] && tasks.GetAt(2) == nullptr, "the array is as it was");
    for (const AddTask& task : made)
        Check((task.m_thread == GetCurrentThreadId()) == (limit < 2) && task.m_thread != 0, what);
}

// Waits until as many of its kind are at work.
class MeetTask : public CTQIPLTaskBase {
public:
    int Run() override {
        Add(m_here, 1);
        for (int i = 0; i < 10000 && Read(m_here) < m_expected; ++i) Sleep(1);
        m_met = Read(m_here) >= m_expected;
        return 0;
    }

    long long* m_here = nullptr;
    long long m_expected = 0;
    bool m_met = false;
};

void CheckTasksMeet(CTQIPLThreadPool* pool) {
    long long here = 0;
    MeetTask made[3];
    Tasks tasks;
    for (MeetTask& task : made) {
        task.m_here = &here;
        task.m_expected = 3;
        tasks.Add(&task);
    }
    pool->RunTasks(tasks, 3);
    for (const MeetTask& task : made) Check(task.m_met, "three tasks at once");
}

class NestTask : public CTQIPLTaskBase {
public:
    int Run() override {
        Tasks tasks;
        for (AddTask& task : m_inner) {
            task = AddTask(&m_sum, 3);
            tasks.Add(&task);
        }
        m_thread = GetCurrentThreadId();
        return m_pool->RunTasks(tasks, 4);
    }

    CTQIPLThreadPool* m_pool = nullptr;
    AddTask m_inner[10];
    long long m_sum = 0;
    unsigned long m_thread = 0;
};

void CheckNesting(CTQIPLThreadPool* pool) {
    NestTask made[4];
    Tasks tasks;
    for (NestTask& task : made) {
        task.m_pool = pool;
        tasks.Add(&task);
    }
    pool->RunTasks(tasks, 2);
    for (const NestTask& task : made) {
        CheckEqual(task.m_sum, 30, "inner tasks");
        for (const AddTask& inner : task.m_inner)
            CheckEqual(inner.m_thread, task.m_thread, "inner tasks stay on their thread");
    }
}

unsigned long WorkOnGlobalPool(void* argument) {
    CTQIPLThreadPool* pool = CTQIPLThreadPool::GetInstance();
    for (int round = 0; round < 100; ++round) {
        long long sum = 0;
        AddTask made[8];
        Tasks tasks;
        Fill(tasks, made, 8, &sum);
        pool->RunTasks(tasks, 3);
        if (Read(&sum) == 36) Add(static_cast<long long*>(argument), 1);
    }
    return pool == CTQIPLThreadPool::GetInstance() ? 5 : 6;
}

void CheckTwoHostThreads() {
    long long good = 0;
    void* threads[2];
    for (void*& thread : threads)
        thread = CreateThread(nullptr, 0, WorkOnGlobalPool, &good, 0, nullptr);
    for (void* thread : threads) {
        CheckEqual(WaitForSingleObject(thread, 60000), kInTime, "a host thread ends");
        CloseHandle(thread);
    }
    CheckEqual(Read(&good), 200, "two host threads use one pool");
}

void CheckNothingIsLeft(CTQIPLThreadPool* pool) {
    const auto run = [&] {
        long long sum = 0;
        AddTask made[8];
        Tasks tasks;
        Fill(tasks, made, 8, &sum);
        pool->RunTasks(tasks, 2);
    };
    run();
    const long long before = BusyBlocks();
    for (int i = 0; i < 500; ++i) run();
    Check(FallsTo(before + 50), "calls leave no memory behind");
}

}  // namespace

void CheckPools() {
    CheckLimits();
    CTQIPLThreadPool* own = Create_IPLThreadPool();
    CTQIPLThreadPool* const pools[] = {CTQIPLThreadPool::GetInstance(), own};
    for (CTQIPLThreadPool* pool : pools) {
        CheckHundredTasks(pool, 4, "a hundred tasks on four threads");
        CheckHundredTasks(pool, 100, "a hundred tasks on a hundred threads");
        CheckHundredTasks(pool, 1, "a hundred tasks on one thread");
        CheckHundredTasks(pool, 0, "a hundred tasks at a limit of none");
        CheckTasksMeet(pool);
        CheckNesting(pool);
        CheckNothingIsLeft(pool);
        Tasks none;
        CheckEqual(pool->RunTasks(none, 4), 0, "no tasks");
    }
    Delete_IPLThreadPool(own);
    CheckTwoHostThreads();
}

}  // namespace host
