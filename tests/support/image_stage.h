#pragma once

// Runs an image routine and its reference on equal memory and compares all of that memory, with the
// images standing against pages that fault and at misaligned addresses.

#include <gtest/gtest.h>
#include <tqipl/types.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <ostream>
#include <utility>
#include <vector>

#include "reference/image_memory_reference.h"
#include "support/guarded_buffer.h"

// Where GoogleTest finds them.
inline bool operator==(const TQ_RECT& a, const TQ_RECT& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}
inline void PrintTo(const TQ_RECT& rect, std::ostream* out) {
    *out << "{" << rect.left << ", " << rect.top << ", " << rect.right << ", " << rect.bottom
         << "}";
}

namespace tqtest {

// Every pixel format, and values that are none.
inline constexpr TQ_COLOR_FORMAT kFormats[] = {
    TQ_COLOR_ARGB,      TQ_COLOR_BGR24,     TQ_COLOR_AYUV,       TQ_COLOR_YUYV,
    TQ_COLOR_UYVY,      TQ_COLOR_PACKED32,  TQ_COLOR_YUVP_422,   TQ_COLOR_BGR10B,
    TQ_COLOR_V216,      TQ_COLOR_V210,      TQ_COLOR_BGR16B,     TQ_COLOR_GRAY8,
    TQ_COLOR_FORMAT(0), TQ_COLOR_FORMAT(2), TQ_COLOR_FORMAT(-1), TQ_COLOR_FORMAT(65)};

struct Strides {
    int src, dst;
};

// Dense, padded on either side or both, upside down on either side, one source row for all.
inline std::vector<Strides> StridesAround(int rowBytes) {
    return {{rowBytes, rowBytes},          {rowBytes + 5, rowBytes + 3},
            {rowBytes, rowBytes + 7},      {rowBytes + 2, rowBytes},
            {-rowBytes - 5, rowBytes + 3}, {rowBytes + 1, -rowBytes - 2},
            {-rowBytes, -rowBytes - 16},   {0, rowBytes + 1}};
}

// Rectangles that cover an image, lie in it, cross each of its edges, lie outside on each side, are
// empty in one or both directions, or are inverted.
inline std::vector<TQ_RECT> RectsAround(int width, int height) {
    constexpr int kLeast = std::numeric_limits<int>::min(), kMost = std::numeric_limits<int>::max();
    const int w = width, h = height, midX = w / 2, midY = h / 2;
    return {{0, 0, w, h},
            {-3, -2, w + 5, h + 1},
            {kLeast, kLeast, kMost, kMost},
            {1, 1, w - 1, h - 1},
            {0, 0, midX, h},
            {midX, 0, w, h},
            {0, midY, w, h},
            {0, 0, w, midY},
            {w / 3, 0, w - w / 3, midY + 1},
            {w / 4, h / 3, w / 4 + 3, h / 3 + 2},
            {-4, -1, midX + 1, 2},
            {midX, midY, w + 9, h + 9},
            {w + 2, 0, w + 5, h},
            {-9, 0, -1, h},
            {1, -5, 3, -1},
            {1, h, 3, h + 2},
            {midX, midY, midX, midY},
            {midX, 0, midX, h},
            {0, midY, w, midY},
            {w - 1, h - 1, 1, 0},
            {midX + 1, 0, midX - 1, h},
            {kMost, 0, kLeast, h}};
}

class ImageStage {
public:
    explicit ImageStage(uint32_t seed) : m_src(3 * kRoom), m_inside(2 * kRoom) {
        FillHostile(m_src.data(), m_src.size(), seed);
        m_grounds[0].resize(3 * kRoom);
        FillHostile(m_grounds[0].data(), m_grounds[0].size(), seed + 1);
        // Whatever is written differs from one of the two grounds.
        for (uint8_t byte : m_grounds[0]) m_grounds[1].push_back(static_cast<uint8_t>(~byte));
    }

    // reference(Bytes& src, Bytes& dst) and form(uint8_t* src, uint8_t* dst) get the images' first
    // bytes. Nothing but what the reference reads and writes is there to be reached.
    template <class Reference, class Form>
    testing::AssertionResult Equal(Reference reference, Form form) {
        m_misalignment = (m_misalignment + 5) % 32;
        for (const std::vector<uint8_t>& ground : m_grounds) {
            m_expected = ground;
            tqref::Bytes src(m_src.data() + kOrigin), dst(m_expected.data() + kOrigin);
            reference(src, dst);
            for (const tqref::Bytes& image : {src, dst})
                if (image.Begin() < -kRoom / 2 || image.End() > kRoom / 2)
                    return testing::AssertionFailure() << "the image does not fit the stage";
            const std::pair<const char*, testing::AssertionResult> runs[] = {
                {"at the end of its memory", Run(ground, {m_srcEnd.data(), kRoom - src.End()},
                                                 {m_dstEnd.data(), kRoom - dst.End()}, form)},
                {"at the start of its memory", Run(ground, {m_srcStart.data(), -src.Begin()},
                                                   {m_dstStart.data(), -dst.Begin()}, form)},
                {"amid its memory",
                 Run(ground, {m_inside.data(), kRoom / 2 + m_misalignment % 7},
                     {m_inside.data() + kRoom, kRoom / 2 + m_misalignment}, form)}};
            for (const auto& [place, result] : runs)
                if (!result)
                    return testing::AssertionFailure() << place << ", " << result.message();
        }
        return testing::AssertionSuccess();
    }

private:
    static constexpr int64_t kRoom = 4096;
    static constexpr int64_t kOrigin = 3 * kRoom / 2;  // of the image in the models

    // kRoom bytes, and where in them the image's first byte stands.
    struct Block {
        uint8_t* data;
        int64_t first;
    };

    static testing::AssertionResult SameBytes(const char* what, Block block,
                                              const std::vector<uint8_t>& model) {
        const uint8_t* expected = model.data() + kOrigin - block.first;
        if (std::memcmp(block.data, expected, kRoom) == 0) return testing::AssertionSuccess();
        int64_t i = 0;
        while (block.data[i] == expected[i]) ++i;
        return testing::AssertionFailure() << what << " byte " << i - block.first << " is "
                                           << int{block.data[i]} << " and not " << int{expected[i]};
    }

    template <class Form>
    testing::AssertionResult Run(const std::vector<uint8_t>& ground, Block src, Block dst,
                                 Form form) {
        std::memcpy(src.data, m_src.data() + kOrigin - src.first, kRoom);
        std::memcpy(dst.data, ground.data() + kOrigin - dst.first, kRoom);
        form(src.data + src.first, dst.data + dst.first);
        const testing::AssertionResult source = SameBytes("source", src, m_src);
        return source ? SameBytes("destination", dst, m_expected) : source;
    }

    std::vector<uint8_t> m_src, m_grounds[2], m_expected, m_inside;
    GuardedBuffer m_srcEnd{kRoom, GuardedBuffer::kEnd}, m_dstEnd{kRoom, GuardedBuffer::kEnd};
    GuardedBuffer m_srcStart{kRoom, GuardedBuffer::kStart},
        m_dstStart{kRoom, GuardedBuffer::kStart};
    int m_misalignment = 0;
};

}  // namespace tqtest
