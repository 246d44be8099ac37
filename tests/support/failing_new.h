#pragma once

// Replaces every allocation operator of the program; included by one file of it. Allocations that
// live are counted, and on demand one of those to come is refused, or every one from some on, on
// whatever thread they are. The pages that the library takes of the system count as allocations
// too while a refusal is in force.

#include "support/replaces_new.h"

#if TQTEST_REPLACES_NEW

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>
#if defined(_WIN32)
#include <malloc.h>
#endif

#include "frame/platform.h"

namespace tqtest {

inline std::atomic<long> g_liveAllocations{0};

// Counts the allocations of a scope from 1 on, and refuses those from `first` to `last`. One scope
// at a time.
class RefuseAllocations {
public:
    static constexpr long kNone = std::numeric_limits<long>::max();

    RefuseAllocations(long first, long last) {
        s_number = 0;
        s_first = first;
        s_last = last;
        tq::g_platformSeams.allocatePages = AllocatePages;
        s_inForce = true;
    }
    ~RefuseAllocations() {
        s_inForce = false;
        tq::g_platformSeams.allocatePages = tq::SystemAllocatePages;
    }
    RefuseAllocations(const RefuseAllocations&) = delete;
    RefuseAllocations& operator=(const RefuseAllocations&) = delete;

    // Allocations asked for so far, those refused included.
    long Count() const { return s_number; }

    static bool RefusesNext() {
        if (!s_inForce) return false;
        const long number = ++s_number;
        return number >= s_first && number <= s_last;
    }

private:
    static void* AllocatePages(size_t bytes) {
        return RefusesNext() ? nullptr : tq::SystemAllocatePages(bytes);
    }

    static inline std::atomic<bool> s_inForce{false};
    static inline std::atomic<long> s_number{0}, s_first{0}, s_last{0};
};

inline void* Allocate(std::size_t bytes) noexcept {
    if (RefuseAllocations::RefusesNext()) return nullptr;
    void* storage = std::malloc(bytes == 0 ? 1 : bytes);
    if (storage != nullptr) ++g_liveAllocations;
    return storage;
}
inline void* AllocateAligned(std::size_t bytes, std::align_val_t alignment) noexcept {
    if (RefuseAllocations::RefusesNext()) return nullptr;
    const auto unit = static_cast<std::size_t>(alignment);
    const std::size_t rounded = (bytes / unit + 1) * unit;
#if defined(_WIN32)
    void* storage = _aligned_malloc(rounded, unit);
#else
    void* storage = std::aligned_alloc(unit, rounded);
#endif
    if (storage != nullptr) ++g_liveAllocations;
    return storage;
}
inline void* OrThrow(void* storage) {
    if (storage == nullptr) throw std::bad_alloc();
    return storage;
}
// Not inlined: a compiler that sees through it takes free for the wrong counterpart of new.
__attribute__((noinline)) inline void Release(void* storage) noexcept {
    if (storage == nullptr) return;
    --g_liveAllocations;
    std::free(storage);
}
__attribute__((noinline)) inline void ReleaseAligned(void* storage) noexcept {
    if (storage == nullptr) return;
    --g_liveAllocations;
#if defined(_WIN32)
    _aligned_free(storage);
#else
    std::free(storage);
#endif
}

}  // namespace tqtest

#define TQTEST_REPLACE_NEW(suffix)                                                                 \
    void* operator new suffix(std::size_t bytes) {                                                 \
        return tqtest::OrThrow(tqtest::Allocate(bytes));                                           \
    }                                                                                              \
    void* operator new suffix(std::size_t bytes, const std::nothrow_t&) noexcept {                 \
        return tqtest::Allocate(bytes);                                                            \
    }                                                                                              \
    void* operator new suffix(std::size_t bytes, std::align_val_t alignment) {                     \
        return tqtest::OrThrow(tqtest::AllocateAligned(bytes, alignment));                         \
    }                                                                                              \
    void* operator new suffix(std::size_t bytes, std::align_val_t alignment,                       \
                              const std::nothrow_t&) noexcept {                                    \
        return tqtest::AllocateAligned(bytes, alignment);                                          \
    }                                                                                              \
    void operator delete suffix(void* storage) noexcept { tqtest::Release(storage); }              \
    void operator delete suffix(void* storage, std::size_t) noexcept { tqtest::Release(storage); } \
    void operator delete suffix(void* storage, const std::nothrow_t&) noexcept {                   \
        tqtest::Release(storage);                                                                  \
    }                                                                                              \
    void operator delete suffix(void* storage, std::align_val_t) noexcept {                        \
        tqtest::ReleaseAligned(storage);                                                           \
    }                                                                                              \
    void operator delete suffix(void* storage, std::size_t, std::align_val_t) noexcept {           \
        tqtest::ReleaseAligned(storage);                                                           \
    }                                                                                              \
    void operator delete suffix(void* storage, std::align_val_t, const std::nothrow_t&) noexcept { \
        tqtest::ReleaseAligned(storage);                                                           \
    }
// Once for single objects and once for arrays.
TQTEST_REPLACE_NEW()
TQTEST_REPLACE_NEW([])
#undef TQTEST_REPLACE_NEW

#endif
