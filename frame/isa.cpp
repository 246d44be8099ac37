// Instruction-set levels: what this processor runs, and the level in force.

#include "frame/isa.h"

#include <atomic>

namespace tq {

namespace {

// Constant-initialised: a kernel that runs before the module's start-up takes the base level.
std::atomic<IsaLevel> g_level{IsaLevel::kBase};

}  // namespace

IsaLevel DetectIsaLevel() {
#if defined(__x86_64__)
    __builtin_cpu_init();  // this runs in a static initialiser, before the runtime's own
    if (__builtin_cpu_supports("avx2")) return IsaLevel::kAvx2;
    if (__builtin_cpu_supports("sse4.1")) return IsaLevel::kSse41;
#endif
    return IsaLevel::kBase;
}

const char* IsaLevelName(IsaLevel level) {
#if defined(__x86_64__)
    if (level == IsaLevel::kAvx2) return "AVX2";
    if (level == IsaLevel::kSse41) return "SSE4.1";
    return "base (SSE2)";
#else
    (void)level;
    return "base";
#endif
}

IsaLevel CurrentIsaLevel() { return g_level.load(std::memory_order_relaxed); }

void SetIsaLevel(IsaLevel level) { g_level.store(level, std::memory_order_relaxed); }

}  // namespace tq
