#pragma once

// The thread pool: one dispatcher thread that hands queued tasks to workers, and the workers.

#include <tqipl/array.h>
#include <tqipl/thread.h>

#include <atomic>
#include <exception>
#include <list>
#include <memory>
#include <mutex>
#include <utility>

#include "frame/platform.h"

class CTQIPLThreadPoolRedner;

namespace tq {

// What the tasks of one call share with their caller.
class TaskCall {
public:
    explicit TaskCall(int count) : m_done(count) {}

    // Runs a task, unless one of the call has thrown before. What it throws is kept if it is the
    // first. Whoever runs a task, or passes it over, calls Finish afterwards.
    void Run(CTQIPLTaskBase& task) noexcept;
    void Finish() { m_done.Release(); }

    // For the caller: waits for one more task to finish, and throws what was kept once all have.
    void Wait() { m_done.Wait(); }
    bool Failed() const { return m_failed; }
    void Rethrow();

private:
    Semaphore m_done;
    std::atomic<bool> m_failed{false};
    std::exception_ptr m_first;  // written by the task that sets m_failed
};

// Runs a task of a thread wrapper, where nobody waits who could be given an exception: a line on
// the debug channel says what it threw.
void RunForWrapper(CTQIPLTaskBase& task) noexcept;

// "thread %d newly create..." for a thread that has just started.
void EmitThreadLine(unsigned int threadId);

}  // namespace tq

// Ties one task to its call. Whoever runs the task keeps the call alive through its Finish, when
// the caller may already have returned.
class CIPLTaskEx {
public:
    CIPLTaskEx(CTQIPLTaskBase* task, std::shared_ptr<tq::TaskCall> call)
        : m_pTask(task), m_pCall(std::move(call)) {}
    virtual ~CIPLTaskEx() {}

    CTQIPLTaskBase* m_pTask;
    std::shared_ptr<tq::TaskCall> m_pCall;
};

// One pool thread. It takes work from two slots: m_pTaskEx, which the dispatcher fills, and
// m_pTask, which a thread wrapper fills that has borrowed the worker.
class CIPLThreadWorker {
public:
    explicit CIPLThreadWorker(CTQIPLThreadPoolRedner* pool) : m_pPool(pool) {}
    virtual ~CIPLThreadWorker();  // waits for a running task
    CIPLThreadWorker(const CIPLThreadWorker&) = delete;
    CIPLThreadWorker& operator=(const CIPLThreadWorker&) = delete;

    void StartThread();  // once; throws std::bad_alloc if the system has no thread
    void Assign(CIPLTaskEx* taskEx);
    void Assign(CTQIPLTaskBase* task);
    bool IsThisThreadInPoolTask() const;
    void* DoneHandle() { return m_bStarted ? m_events->done.Handle() : nullptr; }

    int m_nLent = 0;  // thread wrappers that hold this worker; under the pool's worker lock
    // This worker's entry of the pool's idle queue while it is not there: made with the worker, so
    // that to give one back takes no memory.
    std::list<CIPLThreadWorker*> m_entry{this};

private:
    void Loop();

    struct Events {
        tq::Event wake, done;
    };

    CTQIPLThreadPoolRedner* m_pPool;
    tq::Thread m_thread;
    std::unique_ptr<Events> m_events;
    std::atomic<CIPLTaskEx*> m_pTaskEx{nullptr};
    std::atomic<CTQIPLTaskBase*> m_pTask{nullptr};
    std::atomic<unsigned int> m_nPoolTaskThread{0};  // this thread's id while a pool task runs
    std::mutex m_startLock;
    std::atomic<bool> m_bStarted{false};
    std::atomic<bool> m_bStop{false};
};

// The one concrete pool. Nothing of the system is held until the first use. The worker lock and
// the task lock are never held together, and neither across a wait.
class CTQIPLThreadPoolRedner final : public CTQIPLThreadPool {
public:
    CTQIPLThreadPoolRedner() = default;
    ~CTQIPLThreadPoolRedner() override;

    int SetThreadLimits(unsigned int minThreads, unsigned int maxThreads) override;
    int RunTasks(CTQArray<CTQIPLTaskBase*, CTQIPLTaskBase*>& tasks, int threadLimit) override;
    int GetThreadStats(TQ_THREAD_STATS* stats) override;
    int ReleaseIdleThreads() override;

    // A worker for a thread wrapper: an idle one, or a new one below the limit; otherwise waits.
    CIPLThreadWorker* LendWorker() { return RequestWorker(true); }
    void ShareLentWorker(CIPLThreadWorker* worker);
    void ReturnLentWorker(CIPLThreadWorker* worker);  // to the idle queue by its last holder
    void ReturnWorker(CIPLThreadWorker* worker);

private:
    // What the system gives; exists from the first use on.
    struct Running {
        tq::CriticalSection workers, tasks;
        tq::Semaphore tasksQueued{0x7FFFFFFF};  // one for each entry of m_dequeTasks
        tq::Semaphore workersIdle{0x7FFFFFFF};  // one for each entry of m_dequeIdle, or more
        tq::Thread dispatcher;
    };

    // Workers that the pool has let go; they end with this, which is to be outside the lock.
    struct Released {
        ~Released();
        std::list<CIPLThreadWorker*> workers;
    };

    void Start();
    void Dispatch();
    void Feed(std::list<CIPLTaskEx*>& wrapped);  // the first of them
    bool IsThisThreadInPoolTask();
    CIPLThreadWorker* StartedWorker();
    CIPLThreadWorker* RequestWorker(bool lend);
    bool MayCreateWorker(bool lend) const;
    CIPLThreadWorker* CreateWorker();
    void PushIdle(CIPLThreadWorker* worker);
    CIPLThreadWorker* TakeIdle();
    bool ReleaseNewestIdle(Released& released);
    void WakeWaiting();

    CTQArray<CIPLThreadWorker*, CIPLThreadWorker*> m_arrWorkers;
    // Entries come from and go to other lists: nothing that moves a worker or a task can fail.
    std::list<CIPLThreadWorker*> m_dequeIdle;
    std::list<CIPLTaskEx*> m_dequeTasks;
    std::mutex m_startLock;
    std::unique_ptr<Running> m_running;
    std::atomic<bool> m_bStarted{false};
    std::atomic<bool> m_bStop{false};
    std::atomic<unsigned int> m_nMaxThreads{128};
    std::atomic<unsigned int> m_nThreadCount{0};
    std::atomic<unsigned int> m_nIdleThreads{0};  // the length of m_dequeIdle
    unsigned int m_nLentThreads = 0;              // under the worker lock, as is the next
    unsigned int m_nWaiting = 0;                  // requests that wait for an idle worker
};
