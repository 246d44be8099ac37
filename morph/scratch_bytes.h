#pragma once

// Scratch memory of any size.

#include <tqipl/buffer.h>

#include <climits>
#include <cstdint>
#include <memory>

namespace tq {

// Bytes of the shared memory manager for the length of a scope; what is too large for the manager's
// size classes comes from the heap.
class ScratchBytes {
public:
    explicit ScratchBytes(int64_t size)
        : m_cached(size <= kMaxCached ? static_cast<int>(size) : 0, nullptr) {
        if (size > kMaxCached) m_large.reset(new unsigned char[static_cast<size_t>(size)]);
    }
    unsigned char* Data() { return m_large ? m_large.get() : m_cached.Data(); }

private:
    static constexpr int64_t kMaxCached = INT_MAX - 0x200000;

    CTQIPLMemoryAuto m_cached;
    std::unique_ptr<unsigned char[]> m_large;
};

}  // namespace tq
