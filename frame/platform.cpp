// What of the platform layer is the same on every system.

#include "frame/platform.h"

namespace tq {

constinit PlatformSeams g_platformSeams;

unsigned int ProcessorCount() { return g_platformSeams.processorCount(); }
void* AllocatePages(size_t bytes) { return g_platformSeams.allocatePages(bytes); }
void EmitDebugText(const char* text) { g_platformSeams.debugText(text); }

}  // namespace tq
