#pragma once

#include <condition_variable>
#include <mutex>

namespace tqtest {

// Threads wait until it has been counted down to zero. The standard library's latch loses wake-ups
// in mingw-w64's GCC 12. It may be destroyed as soon as Wait has returned.
class Latch {
public:
    explicit Latch(int count) : m_count(count) {}
    Latch(const Latch&) = delete;
    Latch& operator=(const Latch&) = delete;

    void CountDown() {
        std::lock_guard lock(m_mutex);
        if (--m_count == 0) m_open.notify_all();
    }
    void Wait() {
        std::unique_lock lock(m_mutex);
        m_open.wait(lock, [this] { return m_count <= 0; });
    }
    void ArriveAndWait() {
        CountDown();
        Wait();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_open;
    int m_count;
};

}  // namespace tqtest
