// The thread pool.

#include "frame/thread_pool.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <vector>

#include "frame/module.h"

using tq::Lock;

namespace tq {

void TaskCall::Run(CTQIPLTaskBase& task) noexcept {
    if (m_failed) return;
    try {
        task.Run();
    } catch (...) {
        if (!m_failed.exchange(true)) m_first = std::current_exception();
    }
}

// The exception leaves the record, which a worker may be the last to hold.
void TaskCall::Rethrow() {
    if (m_first) std::rethrow_exception(std::exchange(m_first, nullptr));
}

void RunForWrapper(CTQIPLTaskBase& task) noexcept {
    const auto report = [](const char* what) {
        char text[200];
        std::snprintf(text, sizeof text - 1, "a thread wrapper's task threw: %s", what);
        for (char* c = text; *c != 0; ++c)
            if (*c < ' ' || *c > '~') *c = '?';
        EmitDebugText(std::strcat(text, "\n"));
    };
    try {
        task.Run();
    } catch (const std::exception& exception) {
        report(exception.what());
    } catch (...) {
        report("not a std::exception");
    }
}

void EmitThreadLine(unsigned int threadId) {
    char text[80];
    std::snprintf(text, sizeof text, "thread %d newly create----------------------------------\n",
                  static_cast<int>(threadId));
    EmitDebugText(text);
}

}  // namespace tq

CIPLThreadWorker::~CIPLThreadWorker() {
    m_bStop = true;
    if (m_events) m_events->wake.Set();
    m_thread.Join();
}

void CIPLThreadWorker::StartThread() {
    std::lock_guard lock(m_startLock);
    if (m_bStarted) return;
    if (!m_events) m_events = std::make_unique<Events>();
    m_thread.Start([](void* worker) { static_cast<CIPLThreadWorker*>(worker)->Loop(); }, this);
    m_bStarted = true;
    tq::EmitThreadLine(m_thread.Id());
}

void CIPLThreadWorker::Assign(CIPLTaskEx* taskEx) {
    m_pTaskEx = taskEx;
    m_events->wake.Set();
}

void CIPLThreadWorker::Assign(CTQIPLTaskBase* task) {
    m_pTask = task;
    m_events->wake.Set();
}

bool CIPLThreadWorker::IsThisThreadInPoolTask() const {
    return m_nPoolTaskThread == tq::CurrentThreadId();
}

// Each slot is emptied before its task runs, so that whoever waits for the task may fill the slot
// again at once, and a worker returned too early loses no work of either kind.
void CIPLThreadWorker::Loop() {
    for (;;) {
        m_events->wake.Wait();
        if (m_bStop) return;
        if (CIPLTaskEx* taskEx = m_pTaskEx.exchange(nullptr)) {
            const std::shared_ptr<tq::TaskCall> call = taskEx->m_pCall;
            m_nPoolTaskThread = tq::CurrentThreadId();
            call->Run(*taskEx->m_pTask);
            m_nPoolTaskThread = 0;
            call->Finish();  // from here on the caller may return and taskEx be gone
            m_pPool->ReturnWorker(this);
        }
        if (CTQIPLTaskBase* task = m_pTask.exchange(nullptr)) {
            tq::RunForWrapper(*task);
            m_events->done.Set();
        }
    }
}

CTQIPLThreadPoolRedner::~CTQIPLThreadPoolRedner() {
    if (!m_bStarted) return;
    m_bStop = true;
    m_running->tasksQueued.Release();
    m_running->dispatcher.Join();
    ReleaseIdleThreads();
    for (int64_t i = 0; i < m_arrWorkers.GetSize(); ++i) delete m_arrWorkers.GetAt(i);
}

// A start that fails may be tried again, which call_once does not allow with every runtime.
void CTQIPLThreadPoolRedner::Start() {
    if (m_bStarted) return;
    std::lock_guard lock(m_startLock);
    if (m_bStarted) return;
    m_running = std::make_unique<Running>();
    m_running->dispatcher.Start(
        [](void* pool) { static_cast<CTQIPLThreadPoolRedner*>(pool)->Dispatch(); }, this);
    m_bStarted = true;
}

int CTQIPLThreadPoolRedner::RunTasks(CTQArray<CTQIPLTaskBase*, CTQIPLTaskBase*>& tasks,
                                     int threadLimit) {
    std::vector<CTQIPLTaskBase*> work;
    for (int64_t i = 0; i < tasks.GetSize(); ++i)
        if (CTQIPLTaskBase* task = tasks.GetAt(i)) work.push_back(task);
    if (work.empty()) return 0;

    Start();
    const unsigned int wanted =
        threadLimit < 0 ? g_IPLProcessorCount : static_cast<unsigned int>(threadLimit);
    const unsigned int limit = std::min<unsigned int>(wanted, m_nMaxThreads);
    // A pool task that waited for other pool tasks could wait for ever once all workers do so.
    if (limit < 2 || IsThisThreadInPoolTask()) {
        for (CTQIPLTaskBase* task : work) task->Run();
        return 0;
    }

    // All memory is taken before the first task is fed: from there on nothing but a task can fail.
    const size_t count = work.size();
    const size_t batch = std::min<size_t>(limit, count);
    const auto call =
        std::make_shared<tq::TaskCall>(static_cast<int>(std::min<size_t>(count, 0x7FFFFFFF)));
    std::vector<CIPLTaskEx> wrappers;
    std::list<CIPLTaskEx*> wrapped;
    wrappers.reserve(count);
    for (CTQIPLTaskBase* task : work) wrapped.push_back(&wrappers.emplace_back(task, call));

    size_t fed = 0, finished = 0;
    for (; fed < batch; ++fed) Feed(wrapped);
    for (; fed < count; ++fed) {
        call->Wait();
        ++finished;
        if (call->Failed()) break;
        Feed(wrapped);
    }
    for (; finished < fed; ++finished) call->Wait();
    call->Rethrow();
    return 0;
}

int CTQIPLThreadPoolRedner::SetThreadLimits(unsigned int minThreads, unsigned int maxThreads) {
    Start();
    Released released;
    Lock lock(m_running->workers);
    const int excess = static_cast<int>(m_nThreadCount - minThreads);
    for (int i = 0; i < excess; ++i)
        if (!ReleaseNewestIdle(released)) break;
    int made = 0;
    try {
        for (int i = excess; i < 0; ++i, ++made) PushIdle(CreateWorker());
    } catch (...) {
        for (; made > 0; --made) ReleaseNewestIdle(released);
        throw;
    }
    for (; made > 0; --made) m_running->workersIdle.Release();
    m_nMaxThreads = std::max(minThreads, maxThreads);
    WakeWaiting();
    return 0;
}

int CTQIPLThreadPoolRedner::GetThreadStats(TQ_THREAD_STATS* stats) {
    const unsigned int idle = m_nIdleThreads, count = m_nThreadCount;
    stats->m_nMaxThreads = m_nMaxThreads;
    stats->m_nThreadCount = count;
    stats->m_nBusyThreads = count > idle ? count - idle : 0;
    stats->m_nIdleThreads = idle;
    return 0;
}

int CTQIPLThreadPoolRedner::ReleaseIdleThreads() {
    if (!m_bStarted) return 0;
    Released released;
    Lock lock(m_running->workers);
    while (ReleaseNewestIdle(released)) {
    }
    WakeWaiting();
    return 0;
}

void CTQIPLThreadPoolRedner::ShareLentWorker(CIPLThreadWorker* worker) {
    Lock lock(m_running->workers);
    ++worker->m_nLent;
}

void CTQIPLThreadPoolRedner::ReturnLentWorker(CIPLThreadWorker* worker) {
    {
        Lock lock(m_running->workers);
        if (--worker->m_nLent > 0) return;
        --m_nLentThreads;
        PushIdle(worker);
    }
    m_running->workersIdle.Release();
}

void CTQIPLThreadPoolRedner::ReturnWorker(CIPLThreadWorker* worker) {
    {
        Lock lock(m_running->workers);
        PushIdle(worker);
    }
    m_running->workersIdle.Release();
}

void CTQIPLThreadPoolRedner::Dispatch() {
    for (;;) {
        m_running->tasksQueued.Wait();
        if (m_bStop) return;
        CIPLTaskEx* taskEx;
        {
            Lock lock(m_running->tasks);
            taskEx = m_dequeTasks.front();
            m_dequeTasks.pop_front();
        }
        if (CIPLThreadWorker* worker = StartedWorker()) {
            worker->Assign(taskEx);
            continue;
        }
        // The caller still gets its work done.
        const std::shared_ptr<tq::TaskCall> call = taskEx->m_pCall;
        call->Run(*taskEx->m_pTask);
        call->Finish();
    }
}

// Null if there is no memory or no thread to be had.
CIPLThreadWorker* CTQIPLThreadPoolRedner::StartedWorker() {
    CIPLThreadWorker* worker = nullptr;
    try {
        worker = RequestWorker(false);
        worker->StartThread();
        return worker;
    } catch (...) {
        if (worker != nullptr) ReturnWorker(worker);
        return nullptr;
    }
}

void CTQIPLThreadPoolRedner::Feed(std::list<CIPLTaskEx*>& wrapped) {
    {
        Lock lock(m_running->tasks);
        m_dequeTasks.splice(m_dequeTasks.end(), wrapped, wrapped.begin());
    }
    m_running->tasksQueued.Release();
}

bool CTQIPLThreadPoolRedner::IsThisThreadInPoolTask() {
    if (m_running->dispatcher.Id() == tq::CurrentThreadId()) return true;
    Lock lock(m_running->workers);
    for (int64_t i = 0; i < m_arrWorkers.GetSize(); ++i)
        if (m_arrWorkers.GetAt(i)->IsThisThreadInPoolTask()) return true;
    return false;
}

// The semaphore may count more than the queue holds, since workers also leave the queue without
// it; so the queue is looked at again, under the lock, after each wait.
CIPLThreadWorker* CTQIPLThreadPoolRedner::RequestWorker(bool lend) {
    Start();
    for (bool waited = false;; waited = true) {
        {
            Lock lock(m_running->workers);
            if (waited) --m_nWaiting;
            CIPLThreadWorker* worker = TakeIdle();
            if (worker != nullptr && !waited) m_running->workersIdle.TryWait();
            if (worker == nullptr && MayCreateWorker(lend)) worker = CreateWorker();
            if (worker != nullptr) {
                if (lend) {
                    worker->m_nLent = 1;
                    ++m_nLentThreads;
                    WakeWaiting();  // queued tasks may now have a worker of their own
                }
                return worker;
            }
            ++m_nWaiting;
        }
        m_running->workersIdle.Wait();
    }
}

// At a limit of 0 there is one worker all the same, for a wrapper that would else wait for ever.
// For the same reason queued tasks get a worker of their own when wrappers hold all there are.
bool CTQIPLThreadPoolRedner::MayCreateWorker(bool lend) const {
    const unsigned int limit = std::max(1u, m_nMaxThreads.load());
    return m_nThreadCount < limit || (!lend && m_nLentThreads >= m_nThreadCount);
}

CIPLThreadWorker* CTQIPLThreadPoolRedner::CreateWorker() {
    auto worker = std::make_unique<CIPLThreadWorker>(this);
    m_arrWorkers.Add(worker.get());
    ++m_nThreadCount;
    return worker.release();
}

void CTQIPLThreadPoolRedner::PushIdle(CIPLThreadWorker* worker) {
    m_dequeIdle.splice(m_dequeIdle.end(), worker->m_entry);
    ++m_nIdleThreads;
}

// The one freed first, or null.
CIPLThreadWorker* CTQIPLThreadPoolRedner::TakeIdle() {
    if (m_dequeIdle.empty()) return nullptr;
    CIPLThreadWorker* worker = m_dequeIdle.front();
    worker->m_entry.splice(worker->m_entry.end(), m_dequeIdle, m_dequeIdle.begin());
    --m_nIdleThreads;
    return worker;
}

bool CTQIPLThreadPoolRedner::ReleaseNewestIdle(Released& released) {
    if (m_dequeIdle.empty()) return false;
    released.workers.splice(released.workers.end(), m_dequeIdle, std::prev(m_dequeIdle.end()));
    --m_nIdleThreads;
    for (int64_t i = m_arrWorkers.GetSize() - 1; i >= 0; --i) {
        if (m_arrWorkers.GetAt(i) != released.workers.back()) continue;
        m_arrWorkers.RemoveAt(i);
        --m_nThreadCount;
        break;
    }
    return true;
}

CTQIPLThreadPoolRedner::Released::~Released() {
    for (CIPLThreadWorker* worker : workers) delete worker;
}

void CTQIPLThreadPoolRedner::WakeWaiting() {
    for (unsigned int i = 0; i < m_nWaiting; ++i) m_running->workersIdle.Release();
}

CTQIPLThreadPool::CTQIPLThreadPool() {}
CTQIPLThreadPool::CTQIPLThreadPool(const CTQIPLThreadPool&) {}
CTQIPLThreadPool& CTQIPLThreadPool::operator=(const CTQIPLThreadPool&) { return *this; }
CTQIPLThreadPool::~CTQIPLThreadPool() {}

CTQIPLThreadPool* CTQIPLThreadPool::GetInstance() { return &g_IPLThreadPool; }
unsigned int CTQIPLThreadPool::GetProcessorsNum() { return g_IPLProcessorCount; }

CTQIPLThreadPool* Create_IPLThreadPool() { return new (std::nothrow) CTQIPLThreadPoolRedner; }
void Delete_IPLThreadPool(CTQIPLThreadPool* pool) { delete pool; }
