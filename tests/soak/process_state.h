#pragma once

namespace soak {

// What the system says of this process. All are 0 where it does not say.
struct ProcessState {
    long residentKib;
    long heapKib;  // what is allocated of the heap
    int threads;
    int files;
};
ProcessState ReadProcessState();

// Before any thread starts: lets the C library keep little memory that is not in use, where that
// can be told it; and gives what it keeps back to the system.
void KeepHeapSmall();
void TrimHeap();

}  // namespace soak
