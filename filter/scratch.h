#pragma once

#include <tqipl/buffer.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>

namespace tq {

// Memory for the length of a scope: of the shared manager, or, since that counts in ints, of the
// heap if it is larger. What it holds at first is left over. Throws std::bad_alloc.
class Scratch {
public:
    // `rows` and `rowBytes` are 0 or more.
    Scratch(int64_t rows, int64_t rowBytes) {
        if (rows > 0 && rowBytes > std::numeric_limits<ptrdiff_t>::max() / rows)
            throw std::bad_alloc();
        const int64_t bytes = rows * rowBytes;
        if (bytes > INT32_MAX) {
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
    CTQIPLMemoryAuto m_buffer;
    std::unique_ptr<unsigned char[]> m_heap;
    unsigned char* m_data;
};

}  // namespace tq
