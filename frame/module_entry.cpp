// The module's entry routine. It does nothing at load, where the static initialisers do all work;
// at unload, which runs before the exit list, it frees the two tables that are on the heap.

#include "frame/tables.h"

#if defined(_WIN32)
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_DETACH) tq::FreeHeapTables();
    return TRUE;
}
#else
namespace {

[[gnu::destructor]] void Unload() { tq::FreeHeapTables(); }

}  // namespace
#endif
