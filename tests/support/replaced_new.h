#pragma once

// Replaces the array allocation operators of the program; included by one file of it. Arrays are
// counted, filled with a pattern, and refused on demand.

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

#include "support/replaces_new.h"

#if TQTEST_REPLACES_NEW

namespace tqtest {

inline constexpr unsigned char kFreshByte = 0xA5;

inline std::atomic<long> g_arraysMade{0};
inline std::atomic<long> g_arraysReleased{0};
// Arrays of this many bytes or more are refused.
inline constexpr std::size_t kMostBytes = std::size_t{1} << 30;
inline std::atomic<std::size_t> g_refuseFrom{kMostBytes};
// n: the nth array from now is refused. 0: none is.
inline std::atomic<int> g_refuseNumber{0};

// Refuses arrays in a scope.
class RefuseArrays {
public:
    static RefuseArrays From(std::size_t bytes) { return RefuseArrays(bytes, 0); }
    static RefuseArrays Number(int number) { return RefuseArrays(kMostBytes, number); }
    ~RefuseArrays() {
        g_refuseFrom = kMostBytes;
        g_refuseNumber = 0;
    }
    RefuseArrays(const RefuseArrays&) = delete;
    RefuseArrays& operator=(const RefuseArrays&) = delete;

private:
    RefuseArrays(std::size_t from, int number) {
        g_refuseFrom = from;
        g_refuseNumber = number;
    }
};

}  // namespace tqtest

void* operator new[](std::size_t bytes) {
    if (bytes >= tqtest::g_refuseFrom) throw std::bad_alloc();
    if (tqtest::g_refuseNumber > 0 && --tqtest::g_refuseNumber == 0) throw std::bad_alloc();
    void* storage = std::malloc(bytes == 0 ? 1 : bytes);
    if (storage == nullptr) throw std::bad_alloc();
    std::memset(storage, tqtest::kFreshByte, bytes);
    ++tqtest::g_arraysMade;
    return storage;
}

// Not inlined: a compiler that sees through it takes free for the wrong counterpart of new[].
__attribute__((noinline)) void operator delete[](void* storage) noexcept {
    if (storage == nullptr) return;
    ++tqtest::g_arraysReleased;
    std::free(storage);
}

void operator delete[](void* storage, std::size_t) noexcept { operator delete[](storage); }

#endif
