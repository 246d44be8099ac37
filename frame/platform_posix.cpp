// The platform layer on POSIX threads, with the meanings of the Windows primitives.

#include <pthread.h>
#include <sched.h>
#include <sys/mman.h>
#include <syslog.h>
#include <time.h>
#include <unistd.h>
#if defined(__linux__)
#include <sys/syscall.h>
#endif

#include <tqipl/wait_event.h>

#include <cstdint>
#include <new>

#include "frame/platform.h"

namespace tq {

namespace {

pthread_mutex_t* Mutex(unsigned char* storage) {
    return reinterpret_cast<pthread_mutex_t*>(storage);
}

// A count from 0 to a maximum that threads wait for.
class Counter {
public:
    explicit Counter(int maximum) : m_maximum(maximum) {
        pthread_condattr_t attributes;
        pthread_condattr_init(&attributes);
        pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
        pthread_cond_init(&m_raised, &attributes);
        pthread_condattr_destroy(&attributes);
    }
    ~Counter() {
        pthread_cond_destroy(&m_raised);
        pthread_mutex_destroy(&m_mutex);
    }

    bool Raise() {
        pthread_mutex_lock(&m_mutex);
        const bool room = m_count < m_maximum;
        if (room) {
            ++m_count;
            pthread_cond_signal(&m_raised);
        }
        pthread_mutex_unlock(&m_mutex);
        return room;
    }

    bool Take(int milliseconds) {
        timespec until{};
        if (milliseconds > 0) {
            clock_gettime(CLOCK_MONOTONIC, &until);
            until.tv_sec += milliseconds / 1000;
            until.tv_nsec += milliseconds % 1000 * 1000000L;
            if (until.tv_nsec >= 1000000000L) {
                until.tv_nsec -= 1000000000L;
                ++until.tv_sec;
            }
        }
        pthread_mutex_lock(&m_mutex);
        int timedOut = milliseconds == 0;
        while (m_count == 0 && !timedOut) {
            if (milliseconds < 0)
                pthread_cond_wait(&m_raised, &m_mutex);
            else
                timedOut = pthread_cond_timedwait(&m_raised, &m_mutex, &until) != 0;
        }
        const bool taken = m_count > 0;
        if (taken) --m_count;
        pthread_mutex_unlock(&m_mutex);
        return taken;
    }

    void Clear() {
        pthread_mutex_lock(&m_mutex);
        m_count = 0;
        pthread_mutex_unlock(&m_mutex);
    }

private:
    pthread_mutex_t m_mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t m_raised;
    int m_count = 0;
    const int m_maximum;
};

struct Start {
    pthread_t thread;
    void (*function)(void*);
    void* argument;
    unsigned int id;
    Counter started{1};
};

void* Run(void* argument) {
    Start& start = *static_cast<Start*>(argument);
    void (*const function)(void*) = start.function;
    void* const functionArgument = start.argument;
    start.id = CurrentThreadId();
    start.started.Raise();
    function(functionArgument);
    return nullptr;
}

}  // namespace

CriticalSection::CriticalSection() {
    static_assert(sizeof(pthread_mutex_t) <= sizeof m_storage);
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(new (m_storage) pthread_mutex_t, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

CriticalSection::~CriticalSection() { pthread_mutex_destroy(Mutex(m_storage)); }
void CriticalSection::Enter() { pthread_mutex_lock(Mutex(m_storage)); }
void CriticalSection::Leave() { pthread_mutex_unlock(Mutex(m_storage)); }

Semaphore::Semaphore(int maximum) : m_state(new Counter(maximum)) {}
Semaphore::~Semaphore() { delete static_cast<Counter*>(m_state); }
void Semaphore::Wait() { static_cast<Counter*>(m_state)->Take(-1); }
bool Semaphore::TryWait() { return static_cast<Counter*>(m_state)->Take(0); }
bool Semaphore::Release() { return static_cast<Counter*>(m_state)->Raise(); }

Event::Event() : m_state(new Counter(1)) {}
Event::~Event() { delete static_cast<Counter*>(m_state); }
void Event::Set() { static_cast<Counter*>(m_state)->Raise(); }
void Event::Reset() { static_cast<Counter*>(m_state)->Clear(); }
bool Event::Wait(int milliseconds) { return static_cast<Counter*>(m_state)->Take(milliseconds); }
void* Event::Handle() { return this; }

void Thread::Start(void (*function)(void*), void* argument) {
    auto* start = new tq::Start;
    start->function = function;
    start->argument = argument;
    if (pthread_create(&start->thread, nullptr, Run, start) != 0) {
        delete start;
        throw std::bad_alloc();
    }
    start->started.Take(-1);
    m_id = start->id;
    m_state = start;
}

void Thread::Join() {
    auto* start = static_cast<tq::Start*>(m_state);
    if (start == nullptr) return;
    pthread_join(start->thread, nullptr);
    m_state = nullptr;
    delete start;
}

unsigned int CurrentThreadId() {
#if defined(__linux__)
    return static_cast<unsigned int>(syscall(SYS_gettid));
#else
    return static_cast<unsigned int>(reinterpret_cast<uintptr_t>(pthread_self()));
#endif
}

unsigned int SystemProcessorCount() {
#if defined(__linux__)
    // The kernel refuses a set smaller than its own, so the set grows until it fits.
    for (int processors = CPU_SETSIZE; processors <= 1 << 20; processors *= 2) {
        cpu_set_t* set = CPU_ALLOC(processors);
        if (set == nullptr) break;
        const size_t bytes = CPU_ALLOC_SIZE(processors);
        const bool known = sched_getaffinity(0, bytes, set) == 0;
        const int count = known ? CPU_COUNT_S(bytes, set) : 0;
        CPU_FREE(set);
        if (known) return static_cast<unsigned int>(count);
    }
#endif
    const long online = sysconf(_SC_NPROCESSORS_ONLN);
    return online > 0 ? static_cast<unsigned int>(online) : 0;
}

void* SystemAllocatePages(size_t bytes) {
    void* pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}

void FreePages(void* pages, size_t bytes) { munmap(pages, bytes); }

void SystemDebugText(const char* text) { syslog(LOG_USER | LOG_DEBUG, "%s", text); }

}  // namespace tq

int TQ_WaitEvent(void* event, int milliseconds) {
    if (event == nullptr) return 0;
    return static_cast<tq::Event*>(event)->Wait(milliseconds) ? 1 : 0;
}
