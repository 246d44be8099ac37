// The platform layer on Windows: a thin shell over the system's calls.

#include <process.h>
#include <windows.h>

#include <bit>
#include <cstddef>
#include <iterator>
#include <mutex>
#include <new>

#include "frame/platform.h"

namespace tq {

namespace {

CRITICAL_SECTION* Section(unsigned char* storage) {
    return reinterpret_cast<CRITICAL_SECTION*>(storage);
}

struct Start {
    HANDLE thread;
    void (*function)(void*);
    void* argument;
};

unsigned __stdcall Run(void* argument) {
    const Start start = *static_cast<Start*>(argument);
    start.function(start.argument);
    return 0;
}

// A thread of a module that FreeLibrary takes away would run in nothing, and cannot be joined
// while the loader's lock is held. So the module stays until the process ends.
void KeepModule() {
    static std::once_flag once;
    std::call_once(once, [] {
        HMODULE module;
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                           reinterpret_cast<LPCWSTR>(&Run), &module);
    });
}

void* OrThrow(HANDLE handle) {
    if (handle == nullptr) throw std::bad_alloc();
    return handle;
}

}  // namespace

CriticalSection::CriticalSection() {
    static_assert(sizeof(CRITICAL_SECTION) <= sizeof m_storage);
    InitializeCriticalSection(new (m_storage) CRITICAL_SECTION);
}

CriticalSection::~CriticalSection() { DeleteCriticalSection(Section(m_storage)); }
void CriticalSection::Enter() { EnterCriticalSection(Section(m_storage)); }
void CriticalSection::Leave() { LeaveCriticalSection(Section(m_storage)); }

Semaphore::Semaphore(int maximum)
    : m_state(OrThrow(CreateSemaphoreA(nullptr, 0, maximum, nullptr))) {}
Semaphore::~Semaphore() { CloseHandle(m_state); }
void Semaphore::Wait() { WaitForSingleObject(m_state, INFINITE); }
bool Semaphore::TryWait() { return WaitForSingleObject(m_state, 0) == WAIT_OBJECT_0; }
bool Semaphore::Release() { return ReleaseSemaphore(m_state, 1, nullptr) != 0; }

Event::Event() : m_state(OrThrow(CreateEventW(nullptr, FALSE, FALSE, nullptr))) {}
Event::~Event() { CloseHandle(m_state); }
void Event::Set() { SetEvent(m_state); }
void Event::Reset() { ResetEvent(m_state); }
bool Event::Wait(int milliseconds) {
    const DWORD limit = milliseconds < 0 ? INFINITE : static_cast<DWORD>(milliseconds);
    return WaitForSingleObject(m_state, limit) == WAIT_OBJECT_0;
}
void* Event::Handle() { return m_state; }

void Thread::Start(void (*function)(void*), void* argument) {
    KeepModule();
    auto* start = new tq::Start{nullptr, function, argument};
    unsigned int id = 0;
    // The thread reads its start record, which lives until the join.
    start->thread =
        reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, Run, start, CREATE_SUSPENDED, &id));
    if (start->thread == nullptr) {
        delete start;
        throw std::bad_alloc();
    }
    m_id = id;
    m_state = start;
    ResumeThread(start->thread);
}

void Thread::Join() {
    auto* start = static_cast<tq::Start*>(m_state);
    if (start == nullptr) return;
    WaitForSingleObject(start->thread, INFINITE);
    CloseHandle(start->thread);
    m_state = nullptr;
    delete start;
}

unsigned int CurrentThreadId() { return GetCurrentThreadId(); }

unsigned int SystemProcessorCount() {
    DWORD_PTR process = 0, system = 0;
    if (GetProcessAffinityMask(GetCurrentProcess(), &process, &system) && process != 0)
        return static_cast<unsigned int>(std::popcount(static_cast<unsigned long long>(process)));
    // No mask: the process runs on more than one group of 64 processors.
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return info.dwNumberOfProcessors;
}

void* SystemAllocatePages(size_t bytes) {
    return VirtualAlloc(nullptr, bytes, MEM_COMMIT, PAGE_READWRITE);
}

void FreePages(void* pages, size_t) {
    VirtualFree(pages, 0, MEM_DECOMMIT);
    VirtualFree(pages, 0, MEM_RELEASE);
}

void SystemDebugText(const char* text) {
    // ASCII is the same wide text in every locale. No memory is taken: lack of it is reported here.
    wchar_t wide[256];
    size_t length = 0;
    for (; text[length] != 0 && length + 1 < std::size(wide); ++length)
        wide[length] = static_cast<wchar_t>(text[length]);
    wide[length] = 0;
    OutputDebugStringW(wide);
}

}  // namespace tq
