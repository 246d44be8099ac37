#pragma once

#include <tqipl/buffer.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>

namespace tq {

// Memory for the length of a scope: of the shared manager up to the largest size that it gives, of
// the heap beyond. What it holds at first is left over. Throws std::bad_alloc.
class Scratch {
public:
    Scratch() = default;  // null
    explicit Scratch(int64_t bytes) : Scratch(1, bytes) {}
    // `rows` and `rowBytes` are 0 or more.
    Scratch(int64_t rows, int64_t rowBytes) {
        if (rows > 0 && rowBytes > std::numeric_limits<ptrdiff_t>::max() / rows)
            throw std::bad_alloc();
        const int64_t bytes = rows * rowBytes;
        if (bytes > kMostOfManager) {
            m_heap.reset(new unsigned char[static_cast<size_t>(bytes)]);
            m_data = m_heap.get();
        } else {
            CTQIPLMemoryAuto(static_cast<int>(bytes), nullptr).Transfer(m_buffer);
            m_data = m_buffer.Data();
        }
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    unsigned char* Data() const { return m_data; }

private:
    // The manager rounds up to the next mebibyte twice, and counts in ints.
    static constexpr int64_t kMostOfManager = INT32_MAX - 0x200000;

    CTQIPLMemoryAuto m_buffer;
    std::unique_ptr<unsigned char[]> m_heap;
    unsigned char* m_data = nullptr;
};

}  // namespace tq
