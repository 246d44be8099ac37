#pragma once

// A host thread of the soak test: it calls forms and uses pools, thread wrappers and buffers in an
// order of its own, and compares every result.

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <vector>

#include "support/calls/form_calls.h"

namespace soak {

// The same numbers for the same seed anywhere.
class Draw {
public:
    explicit Draw(uint32_t seed) : m_engine(seed) {}
    int Below(int limit) {
        return static_cast<int>(uint64_t{m_engine()} * static_cast<uint64_t>(limit) >> 32);
    }
    int Between(int least, int most) { return least + Below(most - least + 1); }
    uint32_t Seed() { return m_engine(); }

private:
    std::mt19937 m_engine;
};

// Threads that a host's own pool may have at most.
inline constexpr int kOwnPoolMost = 6;

// What went wrong first, and how much has been done.
class Report {
public:
    void Fail(const std::string& what);
    bool Failed() const { return m_failed; }
    std::string What() const { return m_what; }
    std::atomic<long> calls{0}, pools{0}, wrappers{0}, buffers{0};

private:
    std::mutex m_mutex;
    std::atomic<bool> m_failed{false};
    std::string m_what;
};

// One form with its images and the bytes that it gives when nothing else runs.
class Case {
public:
    Case(const tqtest::FormCall& form, const tqtest::CallShape& shape);
    // Calls and compares.
    void Run(Report& report);

private:
    const tqtest::FormCall& m_form;
    tqtest::CallFrame m_frame;
    tqtest::Call m_call;
    std::vector<uint8_t> m_expected;
};

class Host {
public:
    Host(uint32_t seed, Report& report) : m_draw(seed), m_report(report) {}
    void Add(std::unique_ptr<Case> one) { m_cases.push_back(std::move(one)); }
    // Works until `stop` holds or something fails.
    void Run(const std::atomic<bool>& stop);

private:
    void Step();
    Case& Any() {
        return *m_cases[static_cast<size_t>(m_draw.Below(static_cast<int>(m_cases.size())))];
    }
    void UseGlobalPool();
    void UseOwnPool();
    void UseOwnThread();
    void UseBorrowedWorker();
    void UseBuffers();
    void ThrowInTasks();

    Draw m_draw;
    Report& m_report;
    std::vector<std::unique_ptr<Case>> m_cases;
};

}  // namespace soak
