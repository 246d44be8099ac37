#pragma once

// Brings the library to where no thread works and nothing is kept for later calls.

#include <tqipl/thread.h>

#include <chrono>
#include <thread>

#include "frame/memory_manager.h"
#include "zoom/weights.h"

namespace tqtest {

// As Eventually, within a time that many such failures can be waited for.
template <class Condition> bool Soon(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

inline TQ_THREAD_STATS PoolStats() {
    TQ_THREAD_STATS stats;
    CTQIPLThreadPool::GetInstance()->GetThreadStats(&stats);
    return stats;
}

// A worker is idle a moment after its task has ended.
inline bool AllWorkersIdle() {
    return Soon([] { return PoolStats().m_nIdleThreads == PoolStats().m_nThreadCount; });
}
inline bool ReleaseWorkers() {
    return Soon([] {
        CTQIPLThreadPool::GetInstance()->ReleaseIdleThreads();
        return PoolStats().m_nThreadCount == 0;
    });
}

// What the library keeps for later calls goes, so that a call takes all its memory anew.
inline void DropCachedMemory() {
    g_IPL6CubicTablePool.Clear();
    CIPLMemoryAlloc& manager = tq::SharedMemoryManager();
    while (CIPLChainAtom* atom = manager.m_chainFree.PopTail()) {
        auto* buffer = static_cast<CIPLMemoryBuf*>(atom);
        manager.m_nBytesCached -= buffer->m_nSize;
        --manager.m_nBufferCount;
        buffer->ReleaseMemory();
        manager.m_chainEmpty.PushTail(buffer);
    }
}

}  // namespace tqtest
