#pragma once

// Images whose rows lie so far apart that their offsets need more than 32 bits. Only pages that are
// touched cost memory.

#if defined(__linux__)
#define TQTEST_HAS_SPARSE_IMAGES 1

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace tqtest {

// Rows of `width` bytes a mebibyte apart, or upside down a mebibyte apart. Nothing may be touched
// for four gibibytes before and behind them, where offsets end up that are formed in 32 bits.
class SparseImage {
public:
    SparseImage(int width, int height, bool upsideDown)
        : m_width(static_cast<size_t>(width)),
          m_height(static_cast<size_t>(height)),
          m_upsideDown(upsideDown) {
        const size_t bytes = m_height * kRowDistance;
        m_mapped = bytes + 2 * kGuard;
        void* mapped =
            mmap(nullptr, m_mapped, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (mapped == MAP_FAILED) std::abort();
        m_base = static_cast<uint8_t*>(mapped);
        if (mprotect(m_base + kGuard, bytes, PROT_READ | PROT_WRITE) != 0) std::abort();
        // Large pages would fill the space between the rows. A system without them refuses.
        madvise(m_base + kGuard, bytes, MADV_NOHUGEPAGE);
    }
    ~SparseImage() { munmap(m_base, m_mapped); }
    SparseImage(const SparseImage&) = delete;
    SparseImage& operator=(const SparseImage&) = delete;

    int Stride() const { return m_upsideDown ? -int{kRowDistance} : int{kRowDistance}; }
    uint8_t* Row(size_t y) const {
        return m_base + kGuard + (m_upsideDown ? m_height - 1 - y : y) * kRowDistance;
    }
    uint8_t* First() const { return Row(0); }

    void Set(const std::vector<uint8_t>& dense) {
        for (size_t y = 0; y < m_height; ++y) {
            std::memcpy(Row(y), dense.data() + y * m_width, m_width);
            std::memset(Row(y) + m_width, kBehind, kWatched);
        }
    }
    std::vector<uint8_t> Dense() const {
        std::vector<uint8_t> dense(m_width * m_height);
        for (size_t y = 0; y < m_height; ++y)
            std::memcpy(dense.data() + y * m_width, Row(y), m_width);
        return dense;
    }
    // The bytes behind the rows are as Set left them.
    bool KeptBehindRows() const {
        for (size_t y = 0; y < m_height; ++y)
            for (size_t i = 0; i < kWatched; ++i)
                if (Row(y)[m_width + i] != kBehind) return false;
        return true;
    }

private:
    static constexpr uint32_t kRowDistance = 1u << 20;
    static constexpr size_t kGuard = size_t{4} << 30;
    static constexpr uint8_t kBehind = 77;
    static constexpr size_t kWatched = 64;

    size_t m_width, m_height;
    bool m_upsideDown;
    size_t m_mapped;
    uint8_t* m_base;
};

}  // namespace tqtest

#else
#define TQTEST_HAS_SPARSE_IMAGES 0
#endif
