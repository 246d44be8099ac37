// How much memory of the heap a host and the module use.
#include "classes_host.h"

extern "C" {
__declspec(dllimport) unsigned long GetProcessHeaps(unsigned long most, void** heaps);
__declspec(dllimport) int HeapLock(void* heap);
__declspec(dllimport) int HeapUnlock(void* heap);
struct HeapEntry {
    void* data;
    unsigned long size;
    unsigned char overhead, region;
    unsigned short flags;
    void* rest[4];
};
__declspec(dllimport) int HeapWalk(void* heap, HeapEntry* entry);
}

namespace host {

long long BusyBlocks() {
    void* heaps[64];
    unsigned long count = GetProcessHeaps(64, heaps);
    if (!Check(count > 0 && count <= 64, "heaps of the process")) return 0;
    long long blocks = 0;
    const unsigned short kBusy = 4;
    for (unsigned long i = 0; i < count; ++i) {
        HeapLock(heaps[i]);
        HeapEntry entry{};
        while (HeapWalk(heaps[i], &entry)) {
            if ((entry.flags & kBusy) != 0) ++blocks;
        }
        HeapUnlock(heaps[i]);
    }
    return blocks;
}

bool FallsTo(long long expected) {
    for (int i = 0; i < 1000; ++i) {
        if (BusyBlocks() <= expected) return true;
        Sleep(10);
    }
    return CheckEqual(BusyBlocks(), expected, "busy blocks");
}

}  // namespace host
