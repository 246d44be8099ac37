#pragma once

// Fields and softened frames of progressive frames written a second time, one sample at a time and
// sharing nothing with wavelet/. Production must equal it, byte for byte, at every level and
// processor count.

#include <cstdint>
#include <cstring>

#include "reference/image_memory_reference.h"

namespace tqref {

// The four kinds, by their numbers.
struct P2iKind {
    int sampleBytes, channels, low, high;
};
inline constexpr P2iKind kP2iKinds[] = {
    {1, 1, 16, 235}, {2, 1, 4096, 60160}, {1, 4, 0, 255}, {2, 3, 0, 65535}};

// One column of one channel, from its offset on in both images.
class P2iColumn {
public:
    P2iColumn(const P2iKind& kind, int64_t offset, int64_t srcStride, Bytes& src, int64_t dstStride,
              Bytes& dst)
        : m_kind(kind),
          m_offset(offset),
          m_srcStride(srcStride),
          m_dstStride(dstStride),
          m_src(src),
          m_dst(dst) {}

    int r(int64_t row) {
        const int64_t at = row * m_srcStride + m_offset;
        if (m_kind.sampleBytes == 1) return m_src[at];
        const uint8_t bytes[2] = {m_src[at], m_src[at + 1]};
        uint16_t value;
        std::memcpy(&value, bytes, 2);
        return value;
    }
    int F(int64_t i) { return (3 * r(i) + r(i - 1) + r(i + 1)) * 2 - r(i - 2) - r(i + 2); }

    void Copy(int64_t line, int64_t row) { Store(line, r(row)); }
    void Filtered(int64_t line, int value) {
        Store(line, value < m_kind.low ? m_kind.low : value > m_kind.high ? m_kind.high : value);
    }

private:
    void Store(int64_t line, int value) {
        const int64_t at = line * m_dstStride + m_offset;
        if (m_kind.sampleBytes == 1) {
            m_dst[at] = static_cast<uint8_t>(value);
            return;
        }
        const uint16_t sample = static_cast<uint16_t>(value);
        uint8_t bytes[2];
        std::memcpy(bytes, &sample, 2);
        m_dst[at] = bytes[0];
        m_dst[at + 1] = bytes[1];
    }

    const P2iKind& m_kind;
    int64_t m_offset, m_srcStride, m_dstStride;
    Bytes& m_src;
    Bytes& m_dst;
};

inline void P2iTopField(P2iColumn& column, int64_t height) {
    column.Copy(0, 0);
    int64_t line = 1;
    if (height >= 5)
        for (int64_t j = 1; j <= ((height - 5) >> 1) + 1; ++j)
            column.Filtered(line++, (column.F(2 * j) + 4) >> 3);
    if (height < 3) return;
    column.Copy(line, height % 2 == 0 ? height - 2 : height - 1);
}

inline void P2iBottomField(P2iColumn& column, int64_t height) {
    if (height < 2) return;
    column.Copy(0, 1);
    int64_t line = 1;
    if (height >= 6)
        for (int64_t j = 1; j <= ((height - 6) >> 1) + 1; ++j)
            column.Filtered(line++, (column.F(2 * j + 1) + 4) >> 3);
    if (height % 2 == 0) {
        if (height >= 4) column.Copy(line, height - 1);
    } else {
        column.Copy(line, height - 2);
    }
}

inline void P2iFrame(P2iColumn& column, int64_t height) {
    if (height < 3) return;
    const auto r = [&](int64_t row) { return column.r(row); };
    const int64_t h = height;
    column.Filtered(0, ((3 * r(0) + 2 * r(1) - r(2)) * 2) >> 3);
    if (h == 3) {
        // The one middle row mirrored on both sides: two rows away from it there is itself.
        column.Filtered(1, ((3 * r(1) + r(0) + r(2)) * 2 - r(1) - r(1)) >> 3);
    } else {
        column.Filtered(1, ((r(0) + r(2)) * 2 - r(3) + 5 * r(1)) >> 3);
        for (int64_t i = 2; i <= h - 3; ++i) column.Filtered(i, column.F(i) >> 3);
        column.Filtered(h - 2, ((r(h - 3) + r(h - 1)) * 2 - r(h - 4) + 5 * r(h - 2)) >> 3);
    }
    column.Filtered(h - 1, ((3 * r(h - 1) + 2 * r(h - 2) - r(h - 3)) * 2) >> 3);
}

inline void P2i(const P2iKind& kind, unsigned width, unsigned height, unsigned srcStride,
                Bytes& src, unsigned dstStride, Bytes& dst, int mode) {
    const int64_t samples = int64_t{width} * kind.channels;
    if (height == 0) return;
    for (int64_t x = 0; x < samples; ++x) {
        P2iColumn column(kind, x * kind.sampleBytes, srcStride, src, dstStride, dst);
        if (mode == 0) P2iTopField(column, height);
        if (mode == 1) P2iBottomField(column, height);
        if (mode == 2) P2iFrame(column, height);
    }
}

}  // namespace tqref
