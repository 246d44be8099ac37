#pragma once

#include <cstddef>

namespace tq {

// Instruction-set levels that kernels are compiled for, lowest first. Every level gives the same
// bytes; only the time differs.
#if defined(__x86_64__)
enum class IsaLevel { kBase, kSse41, kAvx2 };
inline constexpr size_t kIsaLevelCount = 3;
#else
enum class IsaLevel { kBase };
inline constexpr size_t kIsaLevelCount = 1;
#endif

// The highest level that this processor and operating system run.
IsaLevel DetectIsaLevel();

const char* IsaLevelName(IsaLevel level);

// The level in force: set once at load, and by tests to a level not above DetectIsaLevel().
IsaLevel CurrentIsaLevel();
void SetIsaLevel(IsaLevel level);

// A family's kernels for the level in force.
template <class Kernels>
const Kernels& SelectKernels(const Kernels* const (&byLevel)[kIsaLevelCount]) {
    return *byLevel[static_cast<size_t>(CurrentIsaLevel())];
}

}  // namespace tq

// TQ_DECLARE_KERNELS(Kernels, name), in namespace tq, declares a family's kernel table at every
// level; TQ_KERNELS_BY_LEVEL(name) lists their addresses, lowest level first. A new level is
// added here, in isa.cpp and in cmake/kernels.cmake, and nowhere else.
#if defined(__x86_64__)
#define TQ_DECLARE_KERNELS(Kernels, name) \
    namespace isa_base {                  \
    extern const Kernels name;            \
    }                                     \
    namespace isa_sse41 {                 \
    extern const Kernels name;            \
    }                                     \
    namespace isa_avx2 {                  \
    extern const Kernels name;            \
    }
#define TQ_KERNELS_BY_LEVEL(name) \
    { &tq::isa_base::name, &tq::isa_sse41::name, &tq::isa_avx2::name }
#else
#define TQ_DECLARE_KERNELS(Kernels, name) \
    namespace isa_base {                  \
    extern const Kernels name;            \
    }
#define TQ_KERNELS_BY_LEVEL(name) \
    { &tq::isa_base::name }
#endif
