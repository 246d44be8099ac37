// What the checks of the exported classes share.
#pragma once

#include <TQIPLBaseLibU.h>

#include "runtime.h"

extern "C" {
__declspec(dllimport) void* CreateThread(void* security, size_t stack,
                                         unsigned long (*function)(void*), void* argument,
                                         unsigned long flags, unsigned long* id);
__declspec(dllimport) unsigned long WaitForSingleObject(void* handle, unsigned long milliseconds);
__declspec(dllimport) int CloseHandle(void* handle);
__declspec(dllimport) unsigned long GetCurrentThreadId();
__declspec(dllimport) void Sleep(unsigned long milliseconds);
}

namespace host {

using Tasks = CTQArray<CTQIPLTaskBase*, CTQIPLTaskBase*>;

const unsigned long kInTime = 0, kTimeOut = 0x102, kTenSeconds = 10000;

inline long long Add(long long* sum, long long value) {
    return __atomic_add_fetch(sum, value, __ATOMIC_SEQ_CST);
}
inline long long Read(const long long* sum) { return __atomic_load_n(sum, __ATOMIC_SEQ_CST); }

// Adds a number to a sum, and remembers its thread.
class AddTask : public CTQIPLTaskBase {
public:
    AddTask() {}
    AddTask(long long* sum, long long value) : m_sum(sum), m_value(value) {}
    int Run() override {
        m_thread = GetCurrentThreadId();
        Add(m_sum, m_value);
        return 7;
    }

    long long* m_sum = nullptr;
    long long m_value = 0;
    unsigned long m_thread = 0;
};

// Busy blocks of all heaps of the process, the module's included.
long long BusyBlocks();
// Waits until there are no more than these: what is done elsewhere takes a moment.
bool FallsTo(long long expected);

void CheckPools();
void CheckWrappers();
void CheckBuffers();

}  // namespace host
