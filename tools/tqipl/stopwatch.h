#pragma once

#include <chrono>

namespace tqipl {

// Runs work and returns the milliseconds that it took.
template <class Work> double TimeOf(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - start;
    return taken.count();
}

}  // namespace tqipl
