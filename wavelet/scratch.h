#pragma once

#include <tqipl/buffer.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <new>

namespace tq {

// The most that the memory manager hands out, and sizes as it takes them.
inline constexpr uint64_t kMostScratch = 0x7FD00000;

inline int ScratchSize(uint64_t bytes) {
    if (bytes > kMostScratch) throw std::bad_alloc();
    return static_cast<int>(bytes);
}

// `count` lines of `bytes` bytes of the shared manager. Each line is aligned, and as much as a
// vector may be read and written in front of it and behind it.
class ScratchLines {
public:
    ScratchLines(uint64_t count, uint64_t bytes)
        : m_stride(static_cast<ptrdiff_t>(Stride(bytes))),
          m_memory(ScratchSize(count * Stride(bytes) + kMargin), nullptr) {}

    template <class T> T* Line(ptrdiff_t i) {
        return reinterpret_cast<T*>(m_memory.Data() + kMargin + i * m_stride);
    }

private:
    static constexpr uint64_t kMargin = 64;
    static uint64_t Stride(uint64_t bytes) {
        if (bytes > kMostScratch) throw std::bad_alloc();
        return (bytes + kMargin - 1) / kMargin * kMargin + kMargin;
    }

    ptrdiff_t m_stride;
    CTQIPLMemoryAuto m_memory;
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
    StableSource(const RowBlock& src, const RowBlock& dst) : m_block(src) {
        if (!Overlap(src, dst)) return;
        if (src.rowBytes > kMostScratch / src.rows) throw std::bad_alloc();
        CTQIPLMemoryAuto(ScratchSize(src.rowBytes * src.rows), nullptr).Transfer(m_copy);
        for (size_t y = 0; y < src.rows; ++y)
            std::memcpy(m_copy.Data() + y * src.rowBytes,
                        src.first + static_cast<ptrdiff_t>(y) * src.stride, src.rowBytes);
        m_block.first = m_copy.Data();
        m_block.stride = static_cast<ptrdiff_t>(src.rowBytes);
    }
    const unsigned char* Row(ptrdiff_t y) const { return m_block.first + y * m_block.stride; }

private:
    RowBlock m_block;
    CTQIPLMemoryAuto m_copy;
};

}  // namespace tq
