#pragma once

// The operating system as the library sees it: the same meanings on Windows and on POSIX, written
// in platform_win32.cpp and platform_posix.cpp. Objects that the system cannot give raise
// std::bad_alloc from their constructors.

#include <cstddef>

namespace tq {

// A recursive lock.
class CriticalSection {
public:
    CriticalSection();
    ~CriticalSection();
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;
    void Enter();
    void Leave();

private:
    alignas(16) unsigned char m_storage[64];
};

class Lock {
public:
    explicit Lock(CriticalSection& section) : m_section(section) { m_section.Enter(); }
    ~Lock() { m_section.Leave(); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    CriticalSection& m_section;
};

// A counting semaphore that starts at zero.
class Semaphore {
public:
    explicit Semaphore(int maximum);
    ~Semaphore();
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;
    void Wait();
    bool TryWait();
    bool Release();  // false, and no change, at the maximum

private:
    void* m_state;
};

// An auto-reset event that starts unset: one wait takes the signal.
class Event {
public:
    Event();
    ~Event();
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;
    void Set();
    void Reset();
    void Wait() { Wait(-1); }
    bool Wait(int milliseconds);  // negative: no limit; false when the time ran out
    // What hosts get: the HANDLE on Windows, this object elsewhere.
    void* Handle();

private:
    void* m_state;
};

// A joinable thread. The first one that starts keeps the module in the process on Windows, where
// a join while the module is unloaded would wait for the loader's lock for ever.
class Thread {
public:
    Thread() = default;
    ~Thread() { Join(); }
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;
    void Start(void (*function)(void*), void* argument);  // throws std::bad_alloc on failure
    void Join();                                          // harmless if it never started
    bool Started() const { return m_state != nullptr; }
    unsigned int Id() const { return m_id; }

private:
    void* m_state = nullptr;
    unsigned int m_id = 0;
};

unsigned int CurrentThreadId();

// Processors that this process may run on; 0 if the system does not say.
unsigned int ProcessorCount();

// Zero-filled, page-granular memory, or null.
void* AllocatePages(size_t bytes);
void FreePages(void* pages, size_t bytes);

// One line of ASCII, of at most 255 characters, on the debug channel: OutputDebugStringW on
// Windows, syslog at debug priority elsewhere. Cannot fail.
void EmitDebugText(const char* text);

// What the system does behind the functions above, each named in the seam below.
unsigned int SystemProcessorCount();
void* SystemAllocatePages(size_t bytes);
void SystemDebugText(const char* text);

// Where tests put their own answers for the system's: debug lines that they can read, pages that
// are not to be had, a machine with no processor. Nothing else writes here.
struct PlatformSeams {
    unsigned int (*processorCount)() = SystemProcessorCount;
    void* (*allocatePages)(size_t bytes) = SystemAllocatePages;
    void (*debugText)(const char* text) = SystemDebugText;
};
extern PlatformSeams g_platformSeams;

}  // namespace tq
