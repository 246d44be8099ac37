// Every form, from several threads at once, for minutes: random sizes, placements, formats and
// processor counts, while pools come and go, limits change and idle threads are released. Each
// result is compared, and memory, threads and open files are watched.
//
//     soak_test [seconds [seed]]
//
// Work is done in phases, each of which follows from its seed alone, up to the order in which
// threads meet. Within a phase the processor count stays. A failure names the seed that begins with
// the phase in which it happened.

#include <tqipl/thread.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <random>
#include <set>
#include <thread>

#include "frame/module.h"
#include "frame/platform.h"
#include "host.h"
#include "process_state.h"
#include "support/deadline.h"
#include "support/idle_library.h"
#include "support/settings.h"

namespace {

using namespace soak;
using Clock = std::chrono::steady_clock;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#elif defined(__has_feature)
constexpr bool kSanitized = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
constexpr bool kSanitized = false;
#endif

constexpr int kMostHosts = 5;
constexpr int kGlobalPoolMost = 24;
constexpr std::chrono::milliseconds kPhase{1500};
constexpr int kAgain = 30;  // seconds for another run after a failure
// The sanitizers keep freed memory and a thread of their own.
constexpr int kSanitizerThreads = kSanitized ? 1 : 0;
constexpr long kMostGrowthKib = kSanitized ? 512 * 1024 : 8 * 1024;
constexpr long kMostHeapGrowthKib = 1024;
// Hosts, each with a thread and a pool of its own; who meddles; the pool, with a worker more for
// each that is lent; and the main thread.
constexpr int kMostThreads =
    kMostHosts * (3 + kOwnPoolMost) + 1 + kGlobalPoolMost + 1 + kMostHosts + 1 + kSanitizerThreads;
// The main thread and the pool's dispatcher.
constexpr int kThreadsAtRest = 2 + kSanitizerThreads;

tqtest::CallShape AnyShape(Draw& draw) {
    const int kind = draw.Below(20);
    const int most = kind < 14 ? 80 : kind < 19 ? 300 : 700;
    tqtest::CallShape shape;
    shape.width = draw.Between(12, most);
    shape.height = draw.Between(12, std::max(12, most * 2 / 3));
    shape.zoomedWidth = draw.Between(1, shape.width * 5 / 2);
    shape.zoomedHeight = draw.Between(1, shape.height * 5 / 2);
    shape.seed = draw.Seed();
    return shape;
}

// Changes limits and releases idle threads while forms run.
void Meddle(uint32_t seed, Report& report, const std::atomic<bool>& stop) {
    CTQIPLThreadPool* pool = CTQIPLThreadPool::GetInstance();
    Draw draw(seed);
    while (!stop) {
        switch (draw.Below(4)) {
            case 0:
                pool->SetThreadLimits(static_cast<unsigned>(draw.Between(0, 4)),
                                      static_cast<unsigned>(draw.Between(1, kGlobalPoolMost)));
                break;
            case 1:
                pool->ReleaseIdleThreads();
                break;
            default:
                TQ_THREAD_STATS stats;
                pool->GetThreadStats(&stats);
                if (stats.m_nThreadCount > kGlobalPoolMost + kMostHosts)
                    report.Fail("the global pool has more threads than its limit");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(draw.Between(0, 20)));
    }
}

// Ends the program when threads do not come to an end.
class Watchdog {
public:
    explicit Watchdog(uint32_t seed) : m_watch([this, seed] { Watch(seed); }) {}
    ~Watchdog() {
        m_over = true;
        m_watch.join();
    }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    void Watch(uint32_t seed) {
        if (tqtest::Eventually([this] {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
                return m_over.load();
            }))
            return;
        std::printf("FAILED: threads hang\nagain with: soak_test %d %u\n", kAgain, seed);
        std::fflush(stdout);
        std::_Exit(1);
    }

    std::atomic<bool> m_over{false};
    std::thread m_watch;
};

class Soak {
public:
    explicit Soak(uint32_t seed) : m_seed(seed) {}

    int Run(std::chrono::seconds length) {
        const auto begin = Clock::now();
        auto line = begin + std::chrono::seconds(10);
        const auto warm = begin + length / 4;
        bool isWarm = false;
        tqtest::Settings settings;
        for (; Clock::now() < begin + length && !m_report.Failed(); ++m_phases) {
            Phase(m_seed + static_cast<uint32_t>(m_phases), settings);
            Rest();
            if (!isWarm && Clock::now() > warm) {
                m_warm = m_now;
                isWarm = true;
            }
            if (isWarm) CheckGrowth();
            if (Clock::now() > line) {
                line += std::chrono::seconds(10);
                Print(begin);
            }
        }
        Print(begin);
        if (m_report.Failed()) {
            std::printf("FAILED: %s\nagain with: soak_test %d %u\n", m_report.What().c_str(),
                        kAgain, m_seed + static_cast<uint32_t>(m_phases - 1));
            return 1;
        }
        if (m_now.residentKib == 0)
            std::printf("ok; memory, threads and files are not watched on this system\n");
        else
            std::printf(
                "ok: grown by %ld KiB of at most %ld since warm, at most %d threads of %d\n",
                m_mostResidentKib - m_warm.residentKib, kMostGrowthKib, m_mostThreads,
                kMostThreads);
        return 0;
    }

private:
    // Nothing runs when this begins, nor when it ends.
    void Phase(uint32_t seed, tqtest::Settings& settings) {
        Draw draw(seed);
        const std::vector<tq::IsaLevel> levels = tqtest::RunnableIsaLevels();
        settings.UseProcessors(static_cast<unsigned>(draw.Between(1, 16)));
        settings.Use(levels[static_cast<size_t>(draw.Below(static_cast<int>(levels.size())))]);
        CTQIPLThreadPool::GetInstance()->SetThreadLimits(0, kGlobalPoolMost);

        std::vector<std::unique_ptr<Host>> hosts;
        const int count = draw.Between(2, kMostHosts);
        for (int i = 0; i < count; ++i) {
            hosts.push_back(std::make_unique<Host>(draw.Seed(), m_report));
            for (int k = 0; k < 8; ++k) hosts.back()->Add(AnyCase(draw));
        }
        std::atomic<bool> stop{false};
        std::vector<std::thread> threads;
        for (auto& host : hosts) threads.emplace_back([&host, &stop] { host->Run(stop); });
        threads.emplace_back(
            [&, meddlerSeed = draw.Seed()] { Meddle(meddlerSeed, m_report, stop); });
        for (const auto end = Clock::now() + kPhase; Clock::now() < end && !m_report.Failed();) {
            const int now = ReadProcessState().threads;
            m_mostThreads = std::max(m_mostThreads, now);
            if (now > kMostThreads) m_report.Fail(std::to_string(now) + " threads at once");
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        stop = true;
        const Watchdog watchdog(seed);
        for (std::thread& thread : threads) thread.join();
    }

    std::unique_ptr<Case> AnyCase(Draw& draw) {
        const std::vector<tqtest::FormCall>& forms = tqtest::AllFormCalls();
        const size_t number = static_cast<size_t>(draw.Below(static_cast<int>(forms.size())));
        m_used.insert(number);
        return std::make_unique<Case>(forms[number], AnyShape(draw));
    }

    // All that the library keeps for later goes, and then it holds nothing.
    void Rest() {
        if (!tqtest::AllWorkersIdle() || !tqtest::ReleaseWorkers())
            m_report.Fail("workers are left at work");
        tqtest::DropCachedMemory();
        if (tq::SharedMemoryManager().m_nBytesInUse != 0)
            m_report.Fail("bytes of the memory manager are left in use");
        TrimHeap();
        // The system strikes threads off its list a moment after their end.
        const bool atRest = tqtest::Soon([this] {
            m_now = ReadProcessState();
            return m_now.threads <= kThreadsAtRest;
        });
        if (!atRest) m_report.Fail(std::to_string(m_now.threads) + " threads are left");
    }

    void CheckGrowth() {
        m_mostResidentKib = std::max(m_mostResidentKib, m_now.residentKib);
        if (m_now.residentKib > m_warm.residentKib + kMostGrowthKib)
            m_report.Fail("resident memory has grown from " + std::to_string(m_warm.residentKib) +
                          " to " + std::to_string(m_now.residentKib) + " KiB");
        if (m_now.heapKib > m_warm.heapKib + kMostHeapGrowthKib)
            m_report.Fail("the heap has grown from " + std::to_string(m_warm.heapKib) + " to " +
                          std::to_string(m_now.heapKib) + " KiB");
        if (m_now.files > m_warm.files)
            m_report.Fail(std::to_string(m_now.files - m_warm.files) + " files are left open");
    }

    void Print(Clock::time_point begin) const {
        const auto seconds =
            std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - begin).count();
        std::printf(
            "%4lld s: %d phases, %ld calls of %zu forms of %zu, %ld uses of pools, %ld of "
            "thread wrappers, %ld of buffers; %ld KiB, %ld of them on the heap, %d threads at "
            "rest, %d files\n",
            static_cast<long long>(seconds), m_phases, m_report.calls.load(), m_used.size(),
            tqtest::AllFormCalls().size(), m_report.pools.load(), m_report.wrappers.load(),
            m_report.buffers.load(), m_now.residentKib, m_now.heapKib, m_now.threads, m_now.files);
        std::fflush(stdout);
    }

    const uint32_t m_seed;
    Report m_report;
    int m_phases = 0;
    int m_mostThreads = 0;
    long m_mostResidentKib = 0;
    ProcessState m_now{}, m_warm{};
    std::set<size_t> m_used;
};

}  // namespace

int main(int argc, char** argv) {
    KeepHeapSmall();
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 180;
    if (seconds < 1 || argc > 3) {
        std::fputs("usage: soak_test [seconds [seed]]\n", stderr);
        return 2;
    }
    const uint32_t seed = argc > 2 ? static_cast<uint32_t>(std::strtoul(argv[2], nullptr, 10))
                                   : std::random_device()();
    std::printf("%d seconds, seed %u\n", seconds, seed);
    // A line for each thread would fill the system's log.
    tq::g_platformSeams.debugText = [](const char*) {};
    return Soak(seed).Run(std::chrono::seconds(seconds));
}
