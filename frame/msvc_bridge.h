#pragma once

// The bridge to hosts of Microsoft's compiler, whose classes have other virtual tables and whose
// exceptions are thrown and caught in another way than those of the compiler that builds the
// module. Both compilers agree on functions of C, and by these the two halves of the bridge call
// each other: msvc_bridge_msvc.cpp, which is compiled as the host is and has the exported classes
// as the host knows them, and msvc_bridge_mingw.cpp, which is compiled as the module is.
//
// No exception crosses from one half to the other, but for that of HostThrow.

#include <tqipl/types.h>

#include <cstdint>

struct BridgePool;     // a CTQIPLThreadPool of the module
struct BridgeThread;   // the thread wrapper of the module behind one of the host and its copies
struct HostTask;       // a CTQIPLTaskBase of the host
struct HostException;  // a copy of what a task of the host threw

enum class BridgeResult : int {
    kDone,
    kNoMemory,
    kTaskThrew,
    kFailed,
};

extern "C" {

// In the half that is compiled as the module is.

// The global pool as the host sees it: the same object each time.
void* BridgeGetInstance() noexcept;
unsigned int BridgeProcessorCount() noexcept;
BridgePool* BridgeMakePool() noexcept;  // null if there is no memory
void BridgeDeletePool(BridgePool* pool) noexcept;
BridgeResult BridgeSetThreadLimits(BridgePool* pool, unsigned int minThreads,
                                   unsigned int maxThreads) noexcept;
// Null entries are passed over. kTaskThrew comes with what a task threw, which the caller owns, or
// with null if it could not be copied.
BridgeResult BridgeRunTasks(BridgePool* pool, HostTask* const* tasks, int64_t count,
                            int threadLimit, HostException** thrown) noexcept;
void BridgeGetThreadStats(BridgePool* pool, TQ_THREAD_STATS* stats) noexcept;
BridgeResult BridgeReleaseIdleThreads(BridgePool* pool) noexcept;

BridgeThread* BridgeMakeThread() noexcept;  // a CTQIPLThreadBase; null if there is no memory
BridgeThread* BridgeLendWorker() noexcept;  // a CTQIPLThreadAuto; null if there is no memory
void BridgeAddHolder(BridgeThread* thread) noexcept;
void BridgeRemoveHolder(BridgeThread* thread) noexcept;  // the last one ends it
BridgeResult BridgeSetTask(BridgeThread* thread, HostTask* task, void** event) noexcept;
void* BridgeGetEvent(BridgeThread* thread) noexcept;

// For a CTQIPLMemoryAuto of the host, whose fields lie as in the module's.
BridgeResult BridgeFillMemoryAuto(void* object, int size, void* manager) noexcept;
void BridgeReleaseMemoryAuto(void* object) noexcept;
void BridgeTransferMemoryAuto(void* object, void* target) noexcept;

// In the half that is compiled as the host is.

// Makes a pool of the host in the storage, which has room for kHostPoolBytes.
void* HostPoolAt(void* storage, BridgePool* pool) noexcept;
// Ends a C++ exception of the task; a structured one, such as an access violation, goes on.
BridgeResult HostRunTask(HostTask* task, HostException** thrown);
void HostDropException(HostException* exception) noexcept;
// Throws std::bad_alloc of the host for kNoMemory, otherwise std::bad_exception. A caller in the
// other half must have nothing left to clean up: its frame is left as it is.
[[noreturn]] void HostThrow(BridgeResult result);
}

inline constexpr int kHostPoolBytes = 16;
