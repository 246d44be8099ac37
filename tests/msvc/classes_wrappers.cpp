// Thread wrappers of the library in a host of Microsoft's compiler.
#include "classes_host.h"

namespace host {
namespace {

template <class Wrapper> class OwnWrapper : public Wrapper {
public:
    explicit OwnWrapper(long long* gone) : m_gone(gone) {}
    ~OwnWrapper() override { Add(m_gone, 1); }

private:
    long long* m_gone;
};

template <class Wrapper> void RunOnce(Wrapper& wrapper, AddTask& task, const char* what) {
    void* event = wrapper.SetTask(&task);
    Check(event != nullptr && event == wrapper.GetEvent(), what);
    CheckEqual(WaitForSingleObject(event, kTenSeconds), kInTime, what);
    CheckEqual(WaitForSingleObject(event, 0), kTimeOut, "one wait takes the signal");
}

template <class Wrapper> void CheckTasksAndCopies() {
    long long sum = 0;
    AddTask first(&sum, 1), second(&sum, 10), third(&sum, 100), fourth(&sum, 1000);
    Wrapper other;
    {
        Wrapper wrapper;
        RunOnce(wrapper, first, "the first task");
        CheckEqual(Read(&sum), 1, "the first task ran");
        Check(first.m_thread != 0 && first.m_thread != GetCurrentThreadId(), "on a thread");

        Wrapper copy(wrapper);
        Check(copy.GetEvent() == wrapper.GetEvent(), "a copy has the event");
        RunOnce(copy, second, "a copy's task");
        CheckEqual(second.m_thread, first.m_thread, "a copy has the thread");
        other = copy;
        const Wrapper& self = other;
        other = self;
    }
    RunOnce(other, third, "an assigned one's task");
    CheckEqual(third.m_thread, first.m_thread, "an assigned one has the thread");
    RunOnce(other, fourth, "another task");
    CheckEqual(Read(&sum), 1111, "all tasks ran");
}

template <class Wrapper> void CheckDeletion() {
    long long gone = 0, sum = 0;
    const long long beforeHost = LiveBlocks();
    for (int i = 0; i < 3; ++i) {
        AddTask task(&sum, 1);
        Wrapper* wrapper = new OwnWrapper<Wrapper>(&gone);
        RunOnce(*wrapper, task, "a derived wrapper");
        delete wrapper;
        wrapper = new Wrapper;
        RunOnce(*wrapper, task, "a wrapper on the heap");
        delete wrapper;
        delete[] new Wrapper[2];
    }
    CheckEqual(gone, 3, "deletion of a derived wrapper reaches its destructor");
    CheckEqual(Read(&sum), 6, "tasks of wrappers on the heap");
    CheckEqual(LiveBlocks(), beforeHost, "objects of exported classes are the module's memory");
}

template <class Wrapper> void UseOften(int times, bool wait) {
    long long sum = 0;
    AddTask task(&sum, 1);
    Wrapper wrapper;
    for (int i = 0; i < times; ++i) {
        void* event = wrapper.SetTask(&task);
        if (wait) CheckEqual(WaitForSingleObject(event, kTenSeconds), kInTime, "a task of many");
    }
    if (wait) {
        CheckEqual(Read(&sum), times, "many tasks");
        return;
    }
    // Some were pushed out by the next; the last one never is.
    long long last = 0;
    AddTask lastTask(&last, 1);
    wrapper.SetTask(&lastTask);
    for (int i = 0; i < 10000 && Read(&last) == 0; ++i) Sleep(1);
    CheckEqual(Read(&last), 1, "the last task");
    const long long seen = Read(&sum);
    Check(seen >= 0 && seen <= times, "tasks for which nobody waited");
}

template <class Wrapper> void CheckNothingIsLeft() {
    UseOften<Wrapper>(10, true);
    UseOften<Wrapper>(10, false);
    const long long before = BusyBlocks();
    UseOften<Wrapper>(5000, true);
    Check(FallsTo(before), "tasks leave no memory behind");
    for (int i = 0; i < 20; ++i) UseOften<Wrapper>(200, false);
    Check(FallsTo(before), "tasks for which nobody waited leave no memory behind");
}

// Ends all threads of the global pool: those that come back a moment late, too.
void EndWorkers(CTQIPLThreadPool* pool) {
    TQ_THREAD_STATS stats{};
    for (int i = 0; i < 1000; ++i) {
        pool->ReleaseIdleThreads();
        pool->GetThreadStats(&stats);
        if (stats.m_nThreadCount == 0) return;
        Sleep(10);
    }
    CheckEqual(stats.m_nThreadCount, 0, "all workers end");
}

void CheckNullTasks() {
    CTQIPLThreadBase wrapper;
    Check(wrapper.GetEvent() == nullptr, "no event before the first task");
    void* event = wrapper.SetTask(nullptr);
    CheckEqual(WaitForSingleObject(event, kTenSeconds), kInTime, "a null task sets the event");

    EndWorkers(CTQIPLThreadPool::GetInstance());  // a worker has no signal of an earlier holder
    CTQIPLThreadAuto lent;
    event = lent.SetTask(nullptr);
    Check(event != nullptr, "a null task gives the event");
    lent.SetTask(nullptr);
    CheckEqual(WaitForSingleObject(event, 50), kTimeOut,
               "a null task of a lent worker signals nothing");
}

void CheckLending() {
    CTQIPLThreadPool* pool = CTQIPLThreadPool::GetInstance();
    EndWorkers(pool);
    TQ_THREAD_STATS stats;
    {
        CTQIPLThreadAuto one, two;
        CTQIPLThreadAuto copy(one);
        pool->GetThreadStats(&stats);
        CheckEqual(stats.m_nThreadCount, 2, "two workers");
        CheckEqual(stats.m_nBusyThreads, 2, "two workers are lent");
        copy = two;
        pool->GetThreadStats(&stats);
        CheckEqual(stats.m_nBusyThreads, 2, "both are still held");
    }
    pool->GetThreadStats(&stats);
    CheckEqual(stats.m_nBusyThreads, 0, "no worker is lent");
    CheckEqual(stats.m_nIdleThreads, 2, "two workers are back");
}

}  // namespace

void CheckWrappers() {
    CheckTasksAndCopies<CTQIPLThreadBase>();
    CheckTasksAndCopies<CTQIPLThreadAuto>();
    CheckDeletion<CTQIPLThreadBase>();
    CheckDeletion<CTQIPLThreadAuto>();
    CheckNothingIsLeft<CTQIPLThreadBase>();
    CheckNothingIsLeft<CTQIPLThreadAuto>();
    CheckNullTasks();
    CheckLending();
}

}  // namespace host
