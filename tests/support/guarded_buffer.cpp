#include "support/guarded_buffer.h"

#include <cstdlib>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace tqtest {

constexpr size_t kPage = 65536;

GuardedBuffer::GuardedBuffer(size_t bytes, Side side) : m_bytes(bytes) {
    const size_t usable = (bytes + kPage - 1) / kPage * kPage;
    m_mapped = usable + 2 * kPage;
#if defined(_WIN32)
    m_base = static_cast<uint8_t*>(VirtualAlloc(nullptr, m_mapped, MEM_COMMIT, PAGE_READWRITE));
    if (m_base == nullptr) std::abort();
    DWORD old;
    VirtualProtect(m_base, kPage, PAGE_NOACCESS, &old);
    VirtualProtect(m_base + kPage + usable, kPage, PAGE_NOACCESS, &old);
#else
    void* mapped =
        mmap(nullptr, m_mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) std::abort();
    m_base = static_cast<uint8_t*>(mapped);
    mprotect(m_base, kPage, PROT_NONE);
    mprotect(m_base + kPage + usable, kPage, PROT_NONE);
#endif
    m_data = side == kEnd ? m_base + kPage + usable - bytes : m_base + kPage;
}

GuardedBuffer::~GuardedBuffer() {
#if defined(_WIN32)
    VirtualFree(m_base, 0, MEM_RELEASE);
#else
    munmap(m_base, m_mapped);
#endif
}

void FillHostile(uint8_t* data, size_t bytes, uint32_t seed) {
    uint32_t state = seed * 2654435761u + 1;
    auto next = [&state] { return state = state * 1664525u + 1013904223u, state >> 16; };
    for (size_t i = 0; i < bytes;) {
        const uint32_t pattern = next() & 3;
        for (size_t run = 1 + next() % 61; run != 0 && i < bytes; --run, ++i)
            data[i] = static_cast<uint8_t>(pattern == 0   ? 0
                                           : pattern == 1 ? 255
                                           : pattern == 2 ? (i & 1 ? 255 : 0)
                                                          : next());
    }
}

}  // namespace tqtest
