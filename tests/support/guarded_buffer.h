#pragma once

#include <cstddef>
#include <cstdint>

namespace tqtest {

// Memory whose last byte stands right before a page that faults on any access: a read or a write
// past the end stops the test, in every build type and under Wine. With kStart the first byte
// stands right behind such a page instead.
class GuardedBuffer {
public:
    enum Side { kEnd, kStart };
    explicit GuardedBuffer(size_t bytes, Side side = kEnd);
    ~GuardedBuffer();
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;
    uint8_t* data() { return m_data; }
    size_t size() const { return m_bytes; }

private:
    uint8_t* m_base;
    uint8_t* m_data;
    size_t m_bytes;
    size_t m_mapped;
};

// Pixels that reach the corners of a kernel's arithmetic more often than uniform noise: runs of
// zeros, of ones, of alternating extremes, and noise. The same bytes for the same seed anywhere.
void FillHostile(uint8_t* data, size_t bytes, uint32_t seed);

}  // namespace tqtest
