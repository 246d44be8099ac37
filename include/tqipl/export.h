#pragma once

#include <cstddef>
#include <new>

// What marks the module's names for a host's compiler.

// TQIPL_API marks what the module exports. TQIPL_STATIC is defined by a host that links the
// library's objects instead of the module; TQIPL_BUILDING by the library's own build, which on
// Windows exports by a list of names.
#if defined(_WIN32)
#if defined(TQIPL_STATIC) || defined(TQIPL_BUILDING)
#define TQIPL_API
#else
#define TQIPL_API __declspec(dllimport)
#endif
#else
#define TQIPL_API __attribute__((visibility("default")))
#endif

// With Microsoft's compiler it is the module that deletes an object of an exported class, by its
// virtual destructor, whichever runtime the host has. So new takes the memory from the module too.
#if defined(_MSC_VER) && !defined(TQIPL_STATIC)
#define TQIPL_MODULE_NEW                                                            \
    static void* operator new(std::size_t bytes);                                   \
    static void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept;   \
    static void* operator new(std::size_t bytes, void* place) noexcept;             \
    static void* operator new[](std::size_t bytes);                                 \
    static void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept; \
    static void* operator new[](std::size_t bytes, void* place) noexcept;           \
    static void operator delete(void* storage) noexcept;                            \
    static void operator delete(void* storage, const std::nothrow_t&) noexcept;     \
    static void operator delete(void* storage, void* place) noexcept;               \
    static void operator delete[](void* storage) noexcept;                          \
    static void operator delete[](void* storage, const std::nothrow_t&) noexcept;   \
    static void operator delete[](void* storage, void* place) noexcept;
#else
#define TQIPL_MODULE_NEW
#endif
