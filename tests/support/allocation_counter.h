#pragma once

// Counts the allocations of a test program. Defines the program's operator new and operator
// delete: one source of a program may include it.

#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TQ_SANITIZER_ALLOCATES
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TQ_SANITIZER_ALLOCATES
#endif
#endif

namespace tqtest {

inline constinit thread_local long g_allocations = 0;

// The allocations that this thread makes while `work` runs. Pool threads have their own.
template <class Work> long AllocationsOf(Work work) {
    const long before = g_allocations;
    work();
    return g_allocations - before;
}

}  // namespace tqtest

#if defined(TQ_SANITIZER_ALLOCATES)
// These sanitizers bring operators of their own, and a hook. GCC has it without its header.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*, size_t),
                                                         void (*)(const volatile void*));

namespace tqtest {

inline const int g_hooked = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, size_t) { ++g_allocations; }, [](const volatile void*) {});

}  // namespace tqtest
#else
// Not inlined: GCC would see std::free called on what operator new gave.
[[gnu::noinline]] void* operator new(size_t bytes) {
    ++tqtest::g_allocations;
    if (void* memory = std::malloc(bytes != 0 ? bytes : 1)) return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept { std::free(memory); }
#endif
