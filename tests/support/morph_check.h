#pragma once

// What the tests of direct and fast morphology share: masks for every radius, masks drawn in the
// test, and the comparison of a whole allocation with what the reference makes of it.

#include <gtest/gtest.h>
#include <tqipl/buffer.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "support/guarded_buffer.h"
#include "support/settings.h"
#include "support/zoom_check.h"

namespace tqtest {

struct MaskSize {
    int width, height;
};

struct Radii {
    int y, x;
};

// At least one of the two is negative.
inline constexpr Radii kNegativeRadii[] = {{-1, 0},
                                           {0, -1},
                                           {-1, -1},
                                           {-9, 2},
                                           {3, -5},
                                           {INT_MIN, 1},
                                           {1, INT_MIN},
                                           {INT_MIN, INT_MIN},
                                           {-INT_MAX, -INT_MAX},
                                           {-1, INT_MAX},
                                           {INT_MAX, -1},
                                           {INT_MIN, INT_MAX}};

inline std::string Describe(MaskSize size, Radii radii) {
    return std::to_string(size.width) + " x " + std::to_string(size.height) + ", radii " +
           std::to_string(radii.y) + " and " + std::to_string(radii.x);
}

// ---- Masks --------------------------------------------------------------------------------------

// '.' is 0, '#' is 255, 'a' to 'z' are 1 to 26.
inline std::vector<uint8_t> Drawn(const std::vector<std::string>& rows) {
    std::vector<uint8_t> mask;
    for (const std::string& row : rows)
        for (char c : row)
            mask.push_back(c == '.' ? 0 : c == '#' ? 255 : static_cast<uint8_t>(c - 'a' + 1));
    return mask;
}

// Zeros amid non-zero bytes; non-zero bytes amid zeros; 255s amid lower bytes; half of it zero;
// long runs.
enum class MaskContent { kHoles, kSpecks, kBright, kNoise, kHostile };
inline constexpr MaskContent kMaskContents[] = {MaskContent::kHoles, MaskContent::kSpecks,
                                                MaskContent::kBright, MaskContent::kNoise,
                                                MaskContent::kHostile};

// One byte in `rarity` is a hole, a speck or a 255.
inline void FillMask(uint8_t* data, size_t bytes, MaskContent content, int64_t rarity,
                     uint32_t seed) {
    if (content == MaskContent::kHostile) {
        FillHostile(data, bytes, seed);
        return;
    }
    uint32_t state = seed * 2654435761u + 12345;
    auto below = [&state](uint32_t limit) {
        state = state * 1664525u + 1013904223u;
        return static_cast<uint32_t>((uint64_t{state} * limit) >> 32);
    };
    for (size_t i = 0; i < bytes; ++i) {
        const bool rare = below(static_cast<uint32_t>(rarity)) == 0;
        switch (content) {
            case MaskContent::kHoles:
                data[i] = static_cast<uint8_t>(rare ? 0 : 1 + below(255));
                break;
            case MaskContent::kSpecks:
                data[i] = static_cast<uint8_t>(!rare ? 0 : below(2) == 0 ? 255 : 1 + below(254));
                break;
            case MaskContent::kBright:
                data[i] = static_cast<uint8_t>(rare ? 255 : below(255));
                break;
            default:
                data[i] = static_cast<uint8_t>(below(2) == 0 ? 0 : below(256));
        }
    }
}

// So rare that a good part of the windows has one and another part has none.
inline int64_t RarityFor(MaskSize size, Radii radii) {
    const int64_t rows = std::clamp<int64_t>(2 * int64_t{radii.y} + 1, 1, size.height);
    const int64_t columns = std::clamp<int64_t>(2 * int64_t{radii.x} + 1, 1, size.width);
    return std::max<int64_t>(rows * columns, 2);
}

// Ends and starts at the guard page, padded rows, starts at several alignments, images stored
// upside down.
inline ImageLayout MaskLayout(uint32_t number) {
    constexpr auto kEnd = GuardedBuffer::kEnd, kStart = GuardedBuffer::kStart;
    static constexpr ImageLayout kLayouts[] = {
        {kEnd, 0, false, 0},    {kStart, 0, false, 0}, {kEnd, 3, false, 0}, {kStart, 13, false, 1},
        {kStart, 5, false, 0},  {kEnd, 1, true, 0},    {kEnd, 0, true, 2},  {kStart, 7, true, 0},
        {kStart, 16, false, 3}, {kEnd, 32, false, 5}};
    return kLayouts[number % std::size(kLayouts)];
}

// Memory that the shared manager hands out next, for requests of up to a mebibyte, holds ones and
// not what an earlier call left there.
inline void FillFreedBuffers(int count) {
    constexpr int kBytes = 1000000;
    std::vector<unsigned char*> buffers;
    for (int i = 0; i < count; ++i) buffers.push_back(IPL_Malloc(kBytes));
    for (unsigned char* buffer : buffers) {
        std::memset(buffer, 0xFF, kBytes);
        IPL_Free(buffer);
    }
}

// Four buffers of each of the classes of one to four mebibytes, as the shared manager hands them
// out when nobody holds one: the same ones again, unless something took one and kept it.
inline std::set<unsigned char*> FreeBuffers() {
    std::set<unsigned char*> buffers;
    for (int mebibytes = 0; mebibytes < 4; ++mebibytes)
        for (int i = 0; i < 4; ++i) buffers.insert(IPL_Malloc(mebibytes << 20));
    for (unsigned char* buffer : buffers) IPL_Free(buffer);
    return buffers;
}

// ---- Comparison ---------------------------------------------------------------------------------

inline testing::AssertionResult SameMemory(const char* what, GuardedImage& image,
                                           const std::vector<uint8_t>& expected) {
    if (std::memcmp(image.Memory(), expected.data(), expected.size()) == 0)
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << what << ": "
           << FirstDifference(image.Memory(), expected, image.FirstOffset(), image.Stride())
           << ", level " << tq::IsaLevelName(tq::CurrentIsaLevel()) << ", " << g_IPLProcessorCount
           << " processors";
}

// A mask that forms change in place.
class MaskTrial {
public:
    MaskTrial(MaskSize size, Radii radii, MaskContent content, uint32_t seed)
        : m_image(size.width, size.height, MaskLayout(seed)) {
        FillMask(m_image.Memory(), m_image.Size(), content, RarityFor(size, radii), seed);
        m_before = m_image.Copy();
    }
    // reference(stride, image): what the next forms are to make of the mask.
    template <class Reference> void Expect(Reference reference) {
        m_expected = m_before;
        reference(m_image.Stride(), m_expected.data() + m_image.FirstOffset());
    }
    // form(stride, image)
    template <class Form> testing::AssertionResult Run(const char* name, Form form) {
        std::memcpy(m_image.Memory(), m_before.data(), m_before.size());
        form(m_image.Stride(), m_image.First());
        return SameMemory(name, m_image, m_expected);
    }

private:
    GuardedImage m_image;
    std::vector<uint8_t> m_before, m_expected;
};

// A mask that stays as it is, and another image that forms write.
class MaskPairTrial {
public:
    MaskPairTrial(MaskSize size, Radii radii, MaskContent content, uint32_t seed)
        : m_src(size.width, size.height, MaskLayout(seed)),
          m_dst(size.width, size.height, MaskLayout(seed / 3 + 7)) {
        FillMask(m_src.Memory(), m_src.Size(), content, RarityFor(size, radii), seed);
        FillMask(m_dst.Memory(), m_dst.Size(), MaskContent::kNoise, 2, seed + 1);
        m_srcBefore = m_src.Copy();
        m_dstBefore = m_dst.Copy();
    }
    // reference(srcStride, src, dstStride, dst)
    template <class Reference> void Expect(Reference reference) {
        m_expected = m_dstBefore;
        reference(m_src.Stride(), m_src.First(), m_dst.Stride(),
                  m_expected.data() + m_dst.FirstOffset());
    }
    template <class Form> testing::AssertionResult Run(const char* name, Form form) {
        std::memcpy(m_dst.Memory(), m_dstBefore.data(), m_dstBefore.size());
        form(m_src.Stride(), m_src.First(), m_dst.Stride(), m_dst.First());
        const testing::AssertionResult source = SameMemory(name, m_src, m_srcBefore);
        if (!source) return testing::AssertionFailure() << "the source: " << source.message();
        return SameMemory(name, m_dst, m_expected);
    }

private:
    GuardedImage m_src, m_dst;
    std::vector<uint8_t> m_srcBefore, m_dstBefore, m_expected;
};

}  // namespace tqtest
