#pragma once

// Bounded waiting for tests whose failure would be a hang.

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace tqtest {

inline constexpr std::chrono::seconds kPatience{60};

// Ends the program if it lives too long: threads that wait for ever cannot be joined.
class Deadline {
public:
    Deadline() : m_watch([this] { Watch(); }) {}
    ~Deadline() {
        {
            std::lock_guard lock(m_mutex);
            m_over = true;
        }
        m_changed.notify_one();
        m_watch.join();
    }
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

private:
    void Watch() {
        std::unique_lock lock(m_mutex);
        if (m_changed.wait_for(lock, kPatience, [this] { return m_over; })) return;
        std::fputs("the test hangs\n", stderr);
        std::_Exit(1);
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_over = false;
    std::thread m_watch;
};

// Asks until the condition holds; false when that takes too long.
template <class Condition> bool Eventually(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

}  // namespace tqtest
