#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>

#include "frame/scratch.h"

namespace tq {

// `count` lines of `bytes` bytes. Each line is aligned, and as much as a vector may be read and
// written in front of it and behind it.
class ScratchLines {
public:
    ScratchLines(int64_t count, int64_t bytes)
        : m_stride(static_cast<ptrdiff_t>(Stride(bytes))),
          m_memory(count * Stride(bytes) + kMargin) {}

    template <class T> T* Line(ptrdiff_t i) {
        return reinterpret_cast<T*>(m_memory.Data() + kMargin + i * m_stride);
    }

private:
    static constexpr int64_t kMargin = 64;
    static int64_t Stride(int64_t bytes) {
        return (bytes + kMargin - 1) / kMargin * kMargin + kMargin;
    }

    ptrdiff_t m_stride;
    Scratch m_memory;
};

// Rows of an image in memory.
struct RowBlock {
    const unsigned char* first;
    ptrdiff_t stride;  // in bytes
    size_t rowBytes, rows;
};

inline bool Overlap(const RowBlock& a, const RowBlock& b) {
    const auto low = [](const RowBlock& block) {
        return block.first +
               (block.stride < 0 ? block.stride * static_cast<ptrdiff_t>(block.rows - 1) : 0);
    };
    const auto bytes = [](const RowBlock& block) {
        const size_t step = static_cast<size_t>(block.stride < 0 ? -block.stride : block.stride);
        return step * (block.rows - 1) + block.rowBytes;
    };
    const std::less<const unsigned char*> before;
    return before(low(a), low(b) + bytes(b)) && before(low(b), low(a) + bytes(a));
}

// An image to read while another is written: where they overlap, a copy.
class StableSource {
public:
    StableSource(const RowBlock& src, const RowBlock& dst)
        : m_block(src),
          m_copy(Overlap(src, dst)
                     ? Scratch(static_cast<int64_t>(src.rows), static_cast<int64_t>(src.rowBytes))
                     : Scratch()) {
        if (m_copy.Data() == nullptr) return;
        for (size_t y = 0; y < src.rows; ++y)
            std::memcpy(m_copy.Data() + y * src.rowBytes,
                        src.first + static_cast<ptrdiff_t>(y) * src.stride, src.rowBytes);
        m_block.first = m_copy.Data();
        m_block.stride = static_cast<ptrdiff_t>(src.rowBytes);
    }
    const unsigned char* Row(ptrdiff_t y) const { return m_block.first + y * m_block.stride; }

private:
    RowBlock m_block;
    Scratch m_copy;
};

}  // namespace tq
