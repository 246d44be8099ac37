#pragma once

#include <tqipl/export.h>

#if !defined(_WIN32)
// Waits for an event that SetTask or GetEvent of a thread wrapper returned, and takes its signal.
// milliseconds is the limit; negative for none, 0 to look only. Returns 1 if the event was
// signalled, 0 if the time ran out or event is null. On Windows the event is a handle and
// WaitForSingleObject does this.
TQIPL_API int TQ_WaitEvent(void* event, int milliseconds);
#endif
