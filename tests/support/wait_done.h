#pragma once

// The done event of a thread wrapper as a host sees it.

#if defined(_WIN32)
#include <windows.h>
#else
#include <tqipl/wait_event.h>

#include "frame/platform.h"
#endif

namespace tqtest {

// Waits for the event and takes its signal; false when the time ran out. Negative: no limit.
inline bool WaitDone(void* event, int milliseconds = -1) {
#if defined(_WIN32)
    const DWORD limit = milliseconds < 0 ? INFINITE : static_cast<DWORD>(milliseconds);
    return WaitForSingleObject(event, limit) == WAIT_OBJECT_0;
#else
    return TQ_WaitEvent(event, milliseconds) == 1;
#endif
}

// Leaves a signal in the event, as a task does for which nobody waits.
inline void SignalDone(void* event) {
#if defined(_WIN32)
    SetEvent(event);
#else
    static_cast<tq::Event*>(event)->Set();
#endif
}

}  // namespace tqtest
