// CTQIPLThreadBase, a thread of its own, and CTQIPLThreadAuto, a worker of the global pool.

#include <tqipl/thread.h>

#include <atomic>
#include <memory>

#include "frame/module.h"
#include "frame/thread_pool.h"

// The thread behind a CTQIPLThreadBase and its copies, which count themselves here.
class CIPLThreadBase {
public:
    CIPLThreadBase() = default;
    virtual ~CIPLThreadBase() {
        m_bStop = true;
        if (m_events) m_events->wake.Set();
        m_thread.Join();
    }
    CIPLThreadBase(const CIPLThreadBase&) = delete;
    CIPLThreadBase& operator=(const CIPLThreadBase&) = delete;

    void* SetTask(CTQIPLTaskBase* task) {
        if (!m_thread.Started()) {
            if (!m_events) m_events = std::make_unique<Events>();
            m_thread.Start([](void* self) { static_cast<CIPLThreadBase*>(self)->Loop(); }, this);
            tq::EmitThreadLine(m_thread.Id());
        }
        m_pTask = task;
        m_events->done.Reset();
        m_events->wake.Set();
        return DoneHandle();
    }
    void* DoneHandle() { return m_events ? m_events->done.Handle() : nullptr; }

    void AddHolder() { ++m_nHolders; }
    void RemoveHolder() {
        if (--m_nHolders == 0) delete this;
    }

private:
    struct Events {
        tq::Event wake, done;
    };

    void Loop() {
        for (;;) {
            m_events->wake.Wait();
            if (m_bStop) return;
            if (CTQIPLTaskBase* task = m_pTask.exchange(nullptr)) tq::RunForWrapper(*task);
            m_events->done.Set();
        }
    }

    tq::Thread m_thread;
    std::unique_ptr<Events> m_events;
    std::atomic<CTQIPLTaskBase*> m_pTask{nullptr};
    std::atomic<bool> m_bStop{false};
    std::atomic<int> m_nHolders{1};
};

CTQIPLThreadBase::CTQIPLThreadBase() : m_pThread(new CIPLThreadBase) {}
CTQIPLThreadBase::CTQIPLThreadBase(const CTQIPLThreadBase& other) : m_pThread(other.m_pThread) {
    m_pThread->AddHolder();
}
CTQIPLThreadBase& CTQIPLThreadBase::operator=(const CTQIPLThreadBase& other) {
    other.m_pThread->AddHolder();
    m_pThread->RemoveHolder();
    m_pThread = other.m_pThread;
    return *this;
}
CTQIPLThreadBase::~CTQIPLThreadBase() { m_pThread->RemoveHolder(); }
void* CTQIPLThreadBase::SetTask(CTQIPLTaskBase* task) { return m_pThread->SetTask(task); }
void* CTQIPLThreadBase::GetEvent() { return m_pThread->DoneHandle(); }

CTQIPLThreadAuto::CTQIPLThreadAuto() : m_pWorker(g_IPLThreadPool.LendWorker()) {}
CTQIPLThreadAuto::CTQIPLThreadAuto(const CTQIPLThreadAuto& other) : m_pWorker(other.m_pWorker) {
    g_IPLThreadPool.ShareLentWorker(m_pWorker);
}
CTQIPLThreadAuto& CTQIPLThreadAuto::operator=(const CTQIPLThreadAuto& other) {
    g_IPLThreadPool.ShareLentWorker(other.m_pWorker);
    g_IPLThreadPool.ReturnLentWorker(m_pWorker);
    m_pWorker = other.m_pWorker;
    return *this;
}
CTQIPLThreadAuto::~CTQIPLThreadAuto() { g_IPLThreadPool.ReturnLentWorker(m_pWorker); }
void* CTQIPLThreadAuto::SetTask(CTQIPLTaskBase* task) {
    m_pWorker->StartThread();
    m_pWorker->Assign(task);
    return m_pWorker->DoneHandle();
}
void* CTQIPLThreadAuto::GetEvent() { return m_pWorker->DoneHandle(); }
