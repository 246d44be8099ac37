// The half of the bridge to hosts of Microsoft's compiler that is compiled as the module is: tasks
// of the host, and what the classes of the other half stand for.

#include <tqipl/buffer.h>
#include <tqipl/thread.h>

#include <atomic>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "frame/msvc_bridge.h"

namespace {

// What a task of the host threw, on its way through the module.
class ExceptionOfHost : public std::exception {
public:
    explicit ExceptionOfHost(HostException* thrown) : m_thrown(std::make_shared<Thrown>(thrown)) {}
    const char* what() const noexcept override { return "an exception of the host"; }
    HostException* Take() const { return std::exchange(m_thrown->exception, nullptr); }

private:
    struct Thrown {
        explicit Thrown(HostException* thrown) : exception(thrown) {}
        ~Thrown() { HostDropException(exception); }
        Thrown(const Thrown&) = delete;
        Thrown& operator=(const Thrown&) = delete;
        HostException* exception;
    };
    std::shared_ptr<Thrown> m_thrown;
};

void RunTaskOfHost(HostTask* task) {
    HostException* thrown = nullptr;
    if (HostRunTask(task, &thrown) != BridgeResult::kDone) throw ExceptionOfHost(thrown);
}

template <class Work> BridgeResult Guarded(Work work, HostException** thrown = nullptr) noexcept {
    try {
        work();
        return BridgeResult::kDone;
    } catch (const ExceptionOfHost& exception) {
        if (thrown != nullptr) *thrown = exception.Take();
        return BridgeResult::kTaskThrew;
    } catch (const std::bad_alloc&) {
        return BridgeResult::kNoMemory;
    } catch (...) {
        return BridgeResult::kFailed;
    }
}

class PoolTask : public CTQIPLTaskBase {
public:
    explicit PoolTask(HostTask* task) : m_task(task) {}
    int Run() override {
        RunTaskOfHost(m_task);
        return 0;
    }

private:
    HostTask* m_task;
};

// A task that was handed to a thread wrapper. The wrapper keeps the newest, and each keeps those
// handed over before: once one runs, the older ones have run, or never will, since the wrapper has
// one thread and one place for a task. So nobody needs to know what became of a task for which
// nobody waited.
class HandedTask : public CTQIPLTaskBase {
public:
    HandedTask(HostTask* task, HandedTask* older) : m_task(task), m_older(older) {}

    int Run() override {
        const struct Parting {
            ~Parting() { handed->Part(); }
            HandedTask* handed;
        } parting{this};
        DeleteAll(std::exchange(m_older, nullptr));
        RunTaskOfHost(m_task);
        return 0;
    }

    // Called by the thread when the task has run, and by the wrapper when it ends before its
    // thread does: the later one deletes.
    void Part() {
        if (m_parted.exchange(true)) delete this;
    }

    void ForgetOlder() { m_older = nullptr; }

    static void DeleteAll(HandedTask* newest) {
        while (newest != nullptr) delete std::exchange(newest, newest->m_older);
    }

private:
    HostTask* m_task;
    HandedTask* m_older;
    std::atomic<bool> m_parted{false};
};

alignas(16) unsigned char g_hostPool[kHostPoolBytes];

}  // namespace

struct BridgeThread {
    BridgeThread() = default;
    virtual ~BridgeThread() = default;
    BridgeThread(const BridgeThread&) = delete;
    BridgeThread& operator=(const BridgeThread&) = delete;

    void* SetTask(HostTask* task) {
        std::lock_guard lock(m_lock);
        if (task == nullptr) return Hand(nullptr);
        auto handed = std::make_unique<HandedTask>(task, m_newest);
        void* event;
        try {
            event = Hand(handed.get());
        } catch (...) {
            handed->ForgetOlder();
            throw;
        }
        m_newest = handed.release();
        return event;
    }
    virtual void* GetEvent() = 0;

    void AddHolder() { ++m_holders; }
    void RemoveHolder() {
        if (--m_holders == 0) delete this;
    }

protected:
    HandedTask* m_newest = nullptr;

private:
    virtual void* Hand(CTQIPLTaskBase* task) = 0;

    std::mutex m_lock;
    std::atomic<int> m_holders{1};
};

namespace {

class OwnThread final : public BridgeThread {
public:
    ~OwnThread() override {
        m_wrapper.reset();  // no task runs from here on
        HandedTask::DeleteAll(m_newest);
    }
    void* GetEvent() override { return m_wrapper->GetEvent(); }

private:
    void* Hand(CTQIPLTaskBase* task) override { return m_wrapper->SetTask(task); }
    std::unique_ptr<CTQIPLThreadBase> m_wrapper = std::make_unique<CTQIPLThreadBase>();
};

class LentWorker final : public BridgeThread {
public:
    ~LentWorker() override {
        if (m_newest != nullptr) m_newest->Part();
    }
    void* GetEvent() override { return m_wrapper.GetEvent(); }

private:
    void* Hand(CTQIPLTaskBase* task) override { return m_wrapper.SetTask(task); }
    CTQIPLThreadAuto m_wrapper;
};

template <class Kind> BridgeThread* MadeOrNull() noexcept {
    BridgeThread* made = nullptr;
    Guarded([&] { made = new Kind; });
    return made;
}

CTQIPLThreadPool& PoolOf(BridgePool* pool) { return *reinterpret_cast<CTQIPLThreadPool*>(pool); }
BridgePool* BridgeOf(CTQIPLThreadPool* pool) { return reinterpret_cast<BridgePool*>(pool); }

}  // namespace

void* BridgeGetInstance() noexcept {
    static void* const instance = HostPoolAt(g_hostPool, BridgeOf(CTQIPLThreadPool::GetInstance()));
    return instance;
}

unsigned int BridgeProcessorCount() noexcept { return CTQIPLThreadPool::GetProcessorsNum(); }

BridgePool* BridgeMakePool() noexcept { return BridgeOf(Create_IPLThreadPool()); }
void BridgeDeletePool(BridgePool* pool) noexcept { Delete_IPLThreadPool(&PoolOf(pool)); }

BridgeResult BridgeSetThreadLimits(BridgePool* pool, unsigned int minThreads,
                                   unsigned int maxThreads) noexcept {
    return Guarded([&] { PoolOf(pool).SetThreadLimits(minThreads, maxThreads); });
}

BridgeResult BridgeRunTasks(BridgePool* pool, HostTask* const* tasks, int64_t count,
                            int threadLimit, HostException** thrown) noexcept {
    return Guarded(
        [&] {
            std::vector<PoolTask> made;
            CTQArray<CTQIPLTaskBase*, CTQIPLTaskBase*> entries;
            made.reserve(static_cast<size_t>(count));
            entries.SetSize(count);
            for (int64_t i = 0; i < count; ++i)
                if (tasks[i] != nullptr) entries.GetAt(i) = &made.emplace_back(tasks[i]);
            PoolOf(pool).RunTasks(entries, threadLimit);
        },
        thrown);
}

void BridgeGetThreadStats(BridgePool* pool, TQ_THREAD_STATS* stats) noexcept {
    PoolOf(pool).GetThreadStats(stats);
}

BridgeResult BridgeReleaseIdleThreads(BridgePool* pool) noexcept {
    return Guarded([&] { PoolOf(pool).ReleaseIdleThreads(); });
}

BridgeThread* BridgeMakeThread() noexcept { return MadeOrNull<OwnThread>(); }
BridgeThread* BridgeLendWorker() noexcept { return MadeOrNull<LentWorker>(); }
void BridgeAddHolder(BridgeThread* thread) noexcept { thread->AddHolder(); }
void BridgeRemoveHolder(BridgeThread* thread) noexcept { thread->RemoveHolder(); }
BridgeResult BridgeSetTask(BridgeThread* thread, HostTask* task, void** event) noexcept {
    return Guarded([&] { *event = thread->SetTask(task); });
}
void* BridgeGetEvent(BridgeThread* thread) noexcept { return thread->GetEvent(); }

BridgeResult BridgeFillMemoryAuto(void* object, int size, void* manager) noexcept {
    return Guarded([&] {
        CTQIPLMemoryAuto filled(size, manager);
        filled.Transfer(*static_cast<CTQIPLMemoryAuto*>(object));
    });
}
void BridgeReleaseMemoryAuto(void* object) noexcept {
    static_cast<CTQIPLMemoryAuto*>(object)->Release();
}
void BridgeTransferMemoryAuto(void* object, void* target) noexcept {
    static_cast<CTQIPLMemoryAuto*>(object)->Transfer(*static_cast<CTQIPLMemoryAuto*>(target));
}
