// The operating system as the library sees it.

#include "frame/platform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "support/deadline.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <sched.h>
#include <syslog.h>
#include <tqipl/wait_event.h>
#include <unistd.h>
#endif

namespace {

TEST(Semaphore, CountsReleasesAndWaits) {
    tq::Semaphore semaphore(5);
    EXPECT_FALSE(semaphore.TryWait());
    EXPECT_TRUE(semaphore.Release());
    EXPECT_TRUE(semaphore.Release());
    EXPECT_TRUE(semaphore.TryWait());
    semaphore.Wait();
    EXPECT_FALSE(semaphore.TryWait());
}

TEST(Semaphore, RefusesMoreThanItsMaximum) {
    tq::Semaphore semaphore(2);
    EXPECT_TRUE(semaphore.Release());
    EXPECT_TRUE(semaphore.Release());
    EXPECT_FALSE(semaphore.Release());
    EXPECT_TRUE(semaphore.TryWait());
    EXPECT_TRUE(semaphore.TryWait());
    EXPECT_FALSE(semaphore.TryWait());
    EXPECT_TRUE(semaphore.Release());
    EXPECT_TRUE(semaphore.TryWait());
}

TEST(Semaphore, EachReleaseLetsOneWaiterPass) {
    tqtest::Deadline deadline;
    tq::Semaphore semaphore(0x7FFFFFFF);
    std::atomic<int> passed{0};
    std::vector<std::thread> waiters;
    for (int i = 0; i < 4; ++i)
        waiters.emplace_back([&] {
            for (int round = 0; round < 100; ++round) {
                semaphore.Wait();
                ++passed;
            }
        });
    for (int i = 0; i < 399; ++i) semaphore.Release();
    EXPECT_TRUE(tqtest::Eventually([&] { return passed == 399; }));
    EXPECT_FALSE(semaphore.TryWait());
    semaphore.Release();
    for (std::thread& waiter : waiters) waiter.join();
    EXPECT_EQ(passed, 400);
}

TEST(Event, StartsUnset) {
    tq::Event event;
    EXPECT_FALSE(event.Wait(0));
    EXPECT_FALSE(event.Wait(1));
}

TEST(Event, OneWaitTakesTheSignal) {
    tq::Event event;
    event.Set();
    EXPECT_TRUE(event.Wait(0));
    EXPECT_FALSE(event.Wait(0));
    event.Set();
    event.Wait();
    EXPECT_FALSE(event.Wait(0));
}

TEST(Event, SignalsDoNotAddUp) {
    tq::Event event;
    event.Set();
    event.Set();
    event.Set();
    EXPECT_TRUE(event.Wait(0));
    EXPECT_FALSE(event.Wait(0));
}

TEST(Event, ResetTakesTheSignalBack) {
    tq::Event event;
    event.Reset();
    EXPECT_FALSE(event.Wait(0));
    event.Set();
    event.Reset();
    EXPECT_FALSE(event.Wait(0));
    event.Set();
    EXPECT_TRUE(event.Wait(0));
}

TEST(Event, LimitedAndUnlimitedWaitsSeeASignalFromAnotherThread) {
    tqtest::Deadline deadline;
    for (int limit : {-1, -2147483647 - 1, 50000, 2147483647}) {
        tq::Event event;
        std::thread setter([&] { event.Set(); });
        EXPECT_TRUE(event.Wait(limit)) << limit;
        setter.join();
        EXPECT_FALSE(event.Wait(0));
    }
}

TEST(Event, WaitIsNotShorterThanItsLimit) {
    tq::Event event;
    for (int limit : {1, 20}) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(event.Wait(limit));
#if !defined(_WIN32)  // the tick of that system may cut a wait short
        EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(limit));
#else
        (void)start;
#endif
    }
}

TEST(Event, OneSignalWakesOneWaiter) {
    tqtest::Deadline deadline;
    tq::Event event;
    std::atomic<int> woken{0};
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i)
        waiters.emplace_back([&] {
            event.Wait();
            ++woken;
        });
    for (int i = 1; i <= 3; ++i) {
        event.Set();
        EXPECT_TRUE(tqtest::Eventually([&] { return woken == i; }));
        EXPECT_FALSE(event.Wait(0));
    }
    for (std::thread& waiter : waiters) waiter.join();
}

#if defined(_WIN32)
TEST(Event, HandleIsOneThatTheSystemWaitsFor) {
    tq::Event event;
    EXPECT_EQ(WaitForSingleObject(event.Handle(), 0), WAIT_TIMEOUT);
    event.Set();
    EXPECT_EQ(WaitForSingleObject(event.Handle(), 0), WAIT_OBJECT_0);
    EXPECT_FALSE(event.Wait(0));
    SetEvent(event.Handle());
    EXPECT_TRUE(event.Wait(0));
}
#else
TEST(Event, HandleIsOneThatHostsWaitFor) {
    tqtest::Deadline deadline;
    tq::Event event;
    EXPECT_EQ(TQ_WaitEvent(event.Handle(), 0), 0);
    EXPECT_EQ(TQ_WaitEvent(event.Handle(), 1), 0);
    for (int limit : {0, 1, 50000, -1}) {
        event.Set();
        EXPECT_EQ(TQ_WaitEvent(event.Handle(), limit), 1) << limit;
        EXPECT_FALSE(event.Wait(0));
    }
}

TEST(Event, NullHandleIsNotWaitedFor) {
    EXPECT_EQ(TQ_WaitEvent(nullptr, -1), 0);
    EXPECT_EQ(TQ_WaitEvent(nullptr, 0), 0);
}
#endif

TEST(CriticalSection, IsRecursive) {
    tq::CriticalSection section;
    tq::Lock outer(section);
    tq::Lock inner(section);
    section.Enter();
    section.Leave();
}

TEST(CriticalSection, KeepsThreadsApart) {
    tqtest::Deadline deadline;
    tq::CriticalSection section;
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 2000; ++round) {
                tq::Lock lock(section);
                ++count;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(count, 8000);
}

TEST(Thread, RunsItsFunctionWithTheArgumentAndKnowsItsId) {
    struct Seen {
        unsigned int id = 0;
        int calls = 0;
    } seen;
    tq::Thread thread;
    EXPECT_FALSE(thread.Started());
    thread.Start(
        [](void* argument) {
            auto* seen = static_cast<Seen*>(argument);
            seen->id = tq::CurrentThreadId();
            ++seen->calls;
        },
        &seen);
    EXPECT_TRUE(thread.Started());
    const unsigned int id = thread.Id();
    thread.Join();
    EXPECT_FALSE(thread.Started());
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.id, id);
    EXPECT_NE(id, 0u);
    EXPECT_NE(id, tq::CurrentThreadId());
}

TEST(Thread, JoinIsHarmlessBeforeTheStartAndTwice) {
    tq::Thread thread;
    thread.Join();
    std::atomic<bool> ran{false};
    thread.Start([](void* ran) { *static_cast<std::atomic<bool>*>(ran) = true; }, &ran);
    thread.Join();
    EXPECT_TRUE(ran);
    thread.Join();
}

TEST(Thread, EndWaitsForTheFunction) {
    tqtest::Deadline deadline;
    struct Work {
        tq::Event begun, goOn;
        bool done = false;
    } work;
    std::thread helper([&] {
        work.begun.Wait();
        work.goOn.Set();
    });
    {
        tq::Thread thread;
        thread.Start(
            [](void* argument) {
                auto* work = static_cast<Work*>(argument);
                work->begun.Set();
                work->goOn.Wait();
                work->done = true;
            },
            &work);
    }
    EXPECT_TRUE(work.done);
    helper.join();
}

TEST(ProcessorCount, IsAtLeastOne) {
    EXPECT_GE(tq::SystemProcessorCount(), 1u);
    EXPECT_EQ(tq::ProcessorCount(), tq::SystemProcessorCount());
}

TEST(ProcessorCount, ComesFromTheSeam) {
    tq::g_platformSeams.processorCount = [] { return 0u; };
    EXPECT_EQ(tq::ProcessorCount(), 0u);
    tq::g_platformSeams.processorCount = [] { return 64u; };
    EXPECT_EQ(tq::ProcessorCount(), 64u);
    tq::g_platformSeams.processorCount = tq::SystemProcessorCount;
}

#if defined(__linux__)
TEST(ProcessorCount, CountsOnlyTheProcessorsThatThisMayRunOn) {
    const unsigned int before = tq::SystemProcessorCount();
    unsigned int pinned = 0;
    std::thread([&] {  // the set belongs to the thread
        cpu_set_t allowed, one;
        ASSERT_EQ(sched_getaffinity(0, sizeof allowed, &allowed), 0);
        CPU_ZERO(&one);
        for (int cpu = 0; CPU_COUNT(&one) == 0; ++cpu)
            if (CPU_ISSET(cpu, &allowed)) CPU_SET(cpu, &one);
        ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
        pinned = tq::SystemProcessorCount();
    })
        .join();
    EXPECT_EQ(pinned, 1u);
    EXPECT_EQ(tq::SystemProcessorCount(), before);
}
#endif

TEST(Pages, AreZeroWritableAndAlignedToAPage) {
    for (size_t bytes : {size_t{1}, size_t{4096}, size_t{0x100000}, size_t{0x300000}}) {
        auto* pages = static_cast<uint8_t*>(tq::AllocatePages(bytes));
        ASSERT_NE(pages, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(pages) % 4096, 0u);
        EXPECT_TRUE(std::all_of(pages, pages + bytes, [](uint8_t byte) { return byte == 0; }));
        std::fill(pages, pages + bytes, 0xFF);
        tq::FreePages(pages, bytes);
    }
}

TEST(Pages, OfMoreThanTheAddressSpaceAreNull) {
    EXPECT_EQ(tq::AllocatePages(size_t{1} << 62), nullptr);
}

TEST(Pages, ComeFromTheSeam) {
    tq::g_platformSeams.allocatePages = [](size_t) -> void* { return nullptr; };
    EXPECT_EQ(tq::AllocatePages(4096), nullptr);
    tq::g_platformSeams.allocatePages = tq::SystemAllocatePages;
}

TEST(DebugText, GoesToTheSeam) {
    static std::string seen;
    seen.clear();
    tq::g_platformSeams.debugText = [](const char* text) { seen += text; };
    tq::EmitDebugText("one\n");
    tq::EmitDebugText("two %d\n");
    tq::g_platformSeams.debugText = tq::SystemDebugText;
    EXPECT_EQ(seen, "one\ntwo %d\n");
}

#if defined(_WIN32)
std::optional<std::wstring> g_debugString;

// The channel raises an exception with the length and the text, wide or, by older systems, narrow.
LONG CALLBACK CatchDebugString(EXCEPTION_POINTERS* raised) {
    constexpr DWORD kWide = 0x4001000A, kNarrow = 0x40010006;
    const EXCEPTION_RECORD& record = *raised->ExceptionRecord;
    if (record.ExceptionCode != kWide && record.ExceptionCode != kNarrow)
        return EXCEPTION_CONTINUE_SEARCH;
    if (record.ExceptionCode == kWide) {
        g_debugString = reinterpret_cast<const wchar_t*>(record.ExceptionInformation[1]);
    } else {
        const std::string narrow(reinterpret_cast<const char*>(record.ExceptionInformation[1]));
        g_debugString = std::wstring(narrow.begin(), narrow.end());
    }
    return EXCEPTION_CONTINUE_EXECUTION;
}

TEST(DebugText, GoesToTheSystemsDebugChannel) {
    void* const handler = AddVectoredExceptionHandler(1, CatchDebugString);
    tq::SystemDebugText("thread 7 newly create 100%d\n");
    RemoveVectoredExceptionHandler(handler);
    ASSERT_TRUE(g_debugString.has_value());
    EXPECT_EQ(*g_debugString, L"thread 7 newly create 100%d\n");
}
#else
struct SyslogLine {
    int priority;
    std::string text;
};
std::vector<SyslogLine> g_syslogLines;

TEST(DebugText, GoesToSyslogAtDebugPriorityWithoutBeingAFormat) {
    g_syslogLines.clear();
    tq::SystemDebugText("thread 7 newly create 100%d\n");
    ASSERT_EQ(g_syslogLines.size(), 1u);
    EXPECT_EQ(LOG_PRI(g_syslogLines[0].priority), LOG_DEBUG);
    EXPECT_EQ(g_syslogLines[0].text, "thread 7 newly create 100%d\n");
}
#endif

}  // namespace

#if !defined(_WIN32)
// Stands in for the system's in this program.
extern "C" void syslog(int priority, const char* format, ...) {
    char text[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    g_syslogLines.push_back({priority, text});
}
#endif
