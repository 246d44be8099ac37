// Storage of the arrays that cross the interface.

#include <tqipl/array.h>

void* TQ_AllocateArray(uint64_t bytes) noexcept {
    try {
        return ::operator new[](bytes);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void TQ_FreeArray(void* storage) noexcept { ::operator delete[](storage); }
