// Resident memory, threads and open files of this process.

#include "process_state.h"

#if defined(__linux__)
#include <malloc.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#endif

namespace soak {

#if defined(__linux__)

ProcessState ReadProcessState() {
    ProcessState state{};
    std::ifstream status("/proc/self/status");
    for (std::string key; status >> key;) {
        if (key == "VmRSS:") status >> state.residentKib;
        if (key == "Threads:") status >> state.threads;
    }
    status.close();
    // One of them is that of the listing itself.
    const std::filesystem::directory_iterator listing("/proc/self/fd");
#if defined(__GLIBC__)
    const struct mallinfo2 heap = mallinfo2();
    state.heapKib = static_cast<long>((heap.uordblks + heap.hblkhd) / 1024);
#endif
    state.files = static_cast<int>(std::distance(begin(listing), end(listing))) - 1;
    return state;
}

// An arena for each thread would keep its last block for as long as the process lives.
void KeepHeapSmall() {
#if defined(__GLIBC__)
    mallopt(M_ARENA_MAX, 1);
#endif
}

void TrimHeap() {
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

#else

ProcessState ReadProcessState() { return {}; }
void KeepHeapSmall() {}
void TrimHeap() {}

#endif

}  // namespace soak
