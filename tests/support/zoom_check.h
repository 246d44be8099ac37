#pragma once

// What the tests of every zoom method share: images in guarded memory, the comparison of a form
// with its reference, and the checks of what the methods do before their own steps.

#include <gtest/gtest.h>
#include <tqipl/thread.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/deadline.h"
#include "support/guarded_buffer.h"
#include "support/settings.h"

namespace tqtest {

using ZoomFunction = void (*)(int, int, int, unsigned char*, int, int, int, unsigned char*);
using ZoomReference = void (*)(int, int, int, const uint8_t*, int, int, int, uint8_t*);

struct ZoomForm {
    const char* name;
    ZoomFunction function;
    ZoomReference reference;
    int channels;
};

struct ZoomSizes {
    int srcWidth, srcHeight, dstWidth, dstHeight;
};

enum class Content { kHostile, kNoise };

inline void Fill(uint8_t* data, size_t bytes, Content content, uint32_t seed) {
    if (content == Content::kHostile) {
        FillHostile(data, bytes, seed);
        return;
    }
    // Small images of long runs would be of one colour only.
    uint32_t state = seed * 2654435761u + 77;
    for (size_t i = 0; i < bytes; ++i) {
        state = state * 1664525u + 1013904223u;
        data[i] = static_cast<uint8_t>(state >> 24);
    }
}

// How an image lies in its memory.
struct ImageLayout {
    GuardedBuffer::Side side = GuardedBuffer::kEnd;
    int padding = 0;        // bytes between the end of a row and the start of the next
    bool bottomUp = false;  // the first row is the last in memory, and the stride is negative
    int margin = 0;         // bytes between the image and the guard page
};

class GuardedImage {
public:
    GuardedImage(int rowBytes, int rows, ImageLayout layout)
        : m_buffer(Bytes(rowBytes, rows, layout), layout.side),
          m_stride(layout.bottomUp ? -(rowBytes + layout.padding) : rowBytes + layout.padding) {
        m_first = layout.side == GuardedBuffer::kStart ? static_cast<size_t>(layout.margin) : 0;
        if (layout.bottomUp) m_first += static_cast<size_t>(-m_stride) * (rows - 1);
    }
    int Stride() const { return m_stride; }
    uint8_t* First() { return m_buffer.data() + m_first; }
    uint8_t* Row(int row) { return First() + int64_t{row} * m_stride; }
    // The whole allocation, and where in it the first row begins.
    uint8_t* Memory() { return m_buffer.data(); }
    size_t Size() const { return m_buffer.size(); }
    size_t FirstOffset() const { return m_first; }
    std::vector<uint8_t> Copy() { return {Memory(), Memory() + Size()}; }

private:
    static size_t Bytes(int rowBytes, int rows, ImageLayout layout) {
        return static_cast<size_t>(rowBytes + layout.padding) * (rows - 1) + rowBytes +
               layout.margin;
    }
    GuardedBuffer m_buffer;
    int m_stride;
    size_t m_first;
};

struct ZoomLayout {
    ImageLayout src, dst;
};

// Ends and starts at the guard page, odd strides, starts at every alignment, images stored upside
// down. Even entries have an exact end or start on both sides.
inline const std::vector<ZoomLayout>& ZoomLayouts() {
    constexpr auto kEnd = GuardedBuffer::kEnd, kStart = GuardedBuffer::kStart;
    static const std::vector<ZoomLayout> layouts = {
        {{kEnd, 0, false, 0}, {kEnd, 0, false, 0}},  //
        {{kEnd, 3, false, 0}, {kEnd, 5, false, 1}},  //
        {{kStart, 0, false, 0}, {kStart, 7, false, 0}},
        {{kStart, 13, false, 1}, {kStart, 1, false, 3}},
        {{kEnd, 1, true, 0}, {kEnd, 3, false, 0}},
        {{kStart, 5, true, 2}, {kEnd, 0, true, 2}},
        {{kStart, 0, true, 0}, {kStart, 9, true, 0}},
        {{kEnd, 0, false, 3}, {kEnd, 11, true, 0}},
    };
    return layouts;
}

// The first difference between the destination's allocation and what it is to hold.
inline std::string FirstDifference(const uint8_t* actual, const std::vector<uint8_t>& expected,
                                   size_t firstOffset, int stride) {
    size_t at = 0;
    while (at < expected.size() && actual[at] == expected[at]) ++at;
    const int64_t fromFirst = static_cast<int64_t>(at) - static_cast<int64_t>(firstOffset);
    std::ostringstream text;
    text << "byte " << at << " of the allocation (" << fromFirst << " from the first row, stride "
         << stride << ") is " << int{actual[at]} << ", expected " << int{expected[at]};
    return text.str();
}

// One zoom with what the reference makes of it. The destination's whole allocation is compared.
class ZoomTrial {
public:
    ZoomTrial(const ZoomForm& form, const ZoomSizes& sizes, const ZoomLayout& layout,
              Content content, uint32_t seed)
        : m_form(form),
          m_sizes(sizes),
          m_src(sizes.srcWidth * form.channels, sizes.srcHeight, layout.src),
          m_dst(sizes.dstWidth * form.channels, sizes.dstHeight, layout.dst) {
        Fill(m_src.Memory(), m_src.Size(), content, seed);
        Fill(m_dst.Memory(), m_dst.Size(), Content::kNoise, seed + 1);
        m_srcBefore = m_src.Copy();
        m_dstBefore = m_dst.Copy();
        m_expected = m_dstBefore;
        form.reference(sizes.srcWidth, sizes.srcHeight, m_src.Stride(), m_src.First(),
                       sizes.dstWidth, sizes.dstHeight, m_dst.Stride(),
                       m_expected.data() + m_dst.FirstOffset());
    }
    ::testing::AssertionResult Run() {
        std::memcpy(m_dst.Memory(), m_dstBefore.data(), m_dst.Size());
        m_form.function(m_sizes.srcWidth, m_sizes.srcHeight, m_src.Stride(), m_src.First(),
                        m_sizes.dstWidth, m_sizes.dstHeight, m_dst.Stride(), m_dst.First());
        if (std::memcmp(m_dst.Memory(), m_expected.data(), m_dst.Size()) != 0)
            return Failure() << FirstDifference(m_dst.Memory(), m_expected, m_dst.FirstOffset(),
                                                m_dst.Stride());
        if (std::memcmp(m_src.Memory(), m_srcBefore.data(), m_src.Size()) != 0)
            return Failure() << "the source has been written to";
        return ::testing::AssertionSuccess();
    }

private:
    ::testing::AssertionResult Failure() const {
        return ::testing::AssertionFailure()
               << m_form.name << ", " << m_sizes.srcWidth << " x " << m_sizes.srcHeight << " to "
               << m_sizes.dstWidth << " x " << m_sizes.dstHeight << ", strides " << m_src.Stride()
               << " and " << m_dst.Stride() << ", level " << tq::IsaLevelName(tq::CurrentIsaLevel())
               << ": ";
    }

    const ZoomForm& m_form;
    ZoomSizes m_sizes;
    GuardedImage m_src, m_dst;
    std::vector<uint8_t> m_srcBefore, m_dstBefore, m_expected;
};

inline ::testing::AssertionResult EqualsReference(const ZoomForm& form, const ZoomSizes& sizes,
                                                  const ZoomLayout& layout, Content content,
                                                  uint32_t seed,
                                                  const std::vector<tq::IsaLevel>& levels) {
    ZoomTrial trial(form, sizes, layout, content, seed);
    Settings settings;
    for (tq::IsaLevel level : levels) {
        settings.Use(level);
        ::testing::AssertionResult result = trial.Run();
        if (!result) return result;
    }
    return ::testing::AssertionSuccess();
}

// The same for sizes, layouts and contents in turn, at every level of this machine.
class ZoomSweep {
public:
    // Whether a form can be asked for these sizes in this layout.
    using Suits = bool (*)(const ZoomSizes&, const ZoomLayout&);

    explicit ZoomSweep(const ZoomForm& form, Suits suits = nullptr)
        : m_form(form), m_suits(suits) {}
    ::testing::AssertionResult operator()(const ZoomSizes& sizes, Content content) {
        const std::vector<ZoomLayout>& layouts = ZoomLayouts();
        ++m_count;
        if (m_suits != nullptr)
            while (!m_suits(sizes, layouts[m_count % layouts.size()])) ++m_count;
        return EqualsReference(m_form, sizes, layouts[m_count % layouts.size()], content, m_count,
                               m_levels);
    }
    ::testing::AssertionResult InEveryLayout(const ZoomSizes& sizes, Content content) {
        for (size_t i = 0; i < ZoomLayouts().size(); ++i) {
            ::testing::AssertionResult result = (*this)(sizes, content);
            if (!result) return result;
        }
        return ::testing::AssertionSuccess();
    }

    // Every pair of sizes from 1 x 1 to greatest x greatest.
    ::testing::AssertionResult AllSizesUpTo(int greatest) {
        for (int srcWidth = 1; srcWidth <= greatest; ++srcWidth)
            for (int srcHeight = 1; srcHeight <= greatest; ++srcHeight)
                for (int dstWidth = 1; dstWidth <= greatest; ++dstWidth)
                    for (int dstHeight = 1; dstHeight <= greatest; ++dstHeight) {
                        const Content content =
                            (srcHeight + dstHeight) % 2 == 0 ? Content::kNoise : Content::kHostile;
                        ::testing::AssertionResult result =
                            (*this)({srcWidth, srcHeight, dstWidth, dstHeight}, content);
                        if (!result) return result;
                    }
        return ::testing::AssertionSuccess();
    }

    // Sizes without a plan, the same in every run.
    ::testing::AssertionResult WithSizesAtRandom(int count, int greatestWidth, int greatestHeight) {
        uint32_t state = 20;
        auto upTo = [&state](int greatest) {
            state = state * 1664525u + 1013904223u;
            return 1 + static_cast<int>((state >> 8) % static_cast<uint32_t>(greatest));
        };
        for (int i = 0; i < count; ++i) {
            ZoomSizes sizes;
            sizes.srcWidth = upTo(greatestWidth);
            sizes.srcHeight = upTo(greatestHeight);
            sizes.dstWidth = upTo(greatestWidth);
            sizes.dstHeight = upTo(greatestHeight);
            const Content content = i % 2 == 0 ? Content::kNoise : Content::kHostile;
            ::testing::AssertionResult result = (*this)(sizes, content);
            if (!result) return result;
        }
        return ::testing::AssertionSuccess();
    }

private:
    const ZoomForm& m_form;
    Suits m_suits;
    uint32_t m_count = 0;
    std::vector<tq::IsaLevel> m_levels = RunnableIsaLevels();
};

// Enlargement, reduction, both at once, exactly twice, just under it and just over it, halves, one
// equal axis, sources of a few pixels, primes, strong reductions.
inline const std::vector<ZoomSizes>& ZoomSizesOfEveryKind() {
    static const std::vector<ZoomSizes> sizes = {
        {20, 13, 47, 29}, {47, 29, 20, 13}, {20, 29, 47, 13}, {47, 13, 20, 29},  //
        {20, 14, 40, 28}, {20, 14, 39, 27}, {20, 14, 41, 29}, {40, 28, 20, 14},  //
        {39, 27, 20, 14}, {41, 29, 20, 14}, {20, 14, 40, 27}, {20, 14, 39, 28},  //
        {21, 15, 33, 15}, {33, 15, 21, 15}, {21, 15, 21, 33}, {21, 33, 21, 15},  //
        {20, 20, 20, 19}, {20, 20, 19, 20}, {19, 20, 20, 20}, {20, 20, 21, 21},  //
        {1, 1, 23, 9},    {1, 7, 9, 7},     {7, 1, 7, 9},     {2, 2, 53, 3},     //
        {3, 2, 37, 17},   {4, 3, 33, 16},   {5, 5, 31, 31},   {23, 9, 1, 1},     //
        {13, 7, 31, 11},  {31, 11, 13, 7},  {53, 5, 97, 3},   {97, 3, 53, 5},    //
        {200, 3, 3, 200}, {3, 200, 200, 3}, {211, 200, 3, 5}, {1000, 2, 7, 1},   //
        {70, 3, 69, 2},   {69, 2, 70, 3},   {64, 4, 65, 5},   {129, 2, 128, 1},  //
        {257, 1, 511, 2}, {5, 131, 3, 97},  {67, 1, 67, 6},   {67, 6, 67, 1},
    };
    return sizes;
}

// A form at 1 to 16 processors against its reference, in every layout that suits it.
inline void ExpectReferenceAtEveryProcessorCount(const ZoomForm& form, const ZoomSizes& sizes,
                                                 ZoomSweep::Suits suits = nullptr) {
    Settings settings;
    for (const ZoomLayout& layout : ZoomLayouts()) {
        if (suits != nullptr && !suits(sizes, layout)) continue;
        ZoomTrial trial(form, sizes, layout, Content::kNoise, sizes.dstHeight);
        for (unsigned processors = 1; processors <= 16; ++processors) {
            settings.UseProcessors(processors);
            ASSERT_TRUE(trial.Run()) << processors << " processors";
        }
    }
}

// Workers of the pool after one zoom that found none.
inline unsigned WorkersAfter(const ZoomForm& form, const ZoomSizes& sizes) {
    CTQIPLThreadPool* pool = CTQIPLThreadPool::GetInstance();
    auto workers = [pool] {
        TQ_THREAD_STATS stats;
        pool->GetThreadStats(&stats);
        return stats.m_nThreadCount;
    };
    // A worker is idle a moment after its task has ended.
    EXPECT_TRUE(Eventually([&] {
        pool->ReleaseIdleThreads();
        return workers() == 0;
    }));
    ZoomTrial trial(form, sizes, ZoomLayouts()[0], Content::kNoise, 1);
    EXPECT_TRUE(trial.Run());
    return workers();
}

// A MultiThread form at 1 to 16 processors against the plain form's bytes.
inline void ExpectThreadedEqualsPlain(const ZoomForm& plain, const ZoomForm& threaded,
                                      const ZoomSizes& sizes) {
    GuardedImage src(sizes.srcWidth * plain.channels, sizes.srcHeight, {GuardedBuffer::kEnd, 3});
    // Exact at both ends in turn: a band that begins or ends a row off meets a guard page.
    for (GuardedBuffer::Side side : {GuardedBuffer::kEnd, GuardedBuffer::kStart}) {
        GuardedImage dst(sizes.dstWidth * plain.channels, sizes.dstHeight, {side, 5});
        Fill(src.Memory(), src.Size(), Content::kNoise, sizes.dstHeight);
        Fill(dst.Memory(), dst.Size(), Content::kNoise, 1000 + sizes.dstHeight);
        const std::vector<uint8_t> before = dst.Copy();
        plain.function(sizes.srcWidth, sizes.srcHeight, src.Stride(), src.First(), sizes.dstWidth,
                       sizes.dstHeight, dst.Stride(), dst.First());
        const std::vector<uint8_t> expected = dst.Copy();
        Settings settings;
        for (unsigned processors = 1; processors <= 16; ++processors) {
            settings.UseProcessors(processors);
            std::memcpy(dst.Memory(), before.data(), dst.Size());
            threaded.function(sizes.srcWidth, sizes.srcHeight, src.Stride(), src.First(),
                              sizes.dstWidth, sizes.dstHeight, dst.Stride(), dst.First());
            ASSERT_EQ(std::memcmp(dst.Memory(), expected.data(), dst.Size()), 0)
                << threaded.name << ", " << processors << " processors, " << sizes.srcWidth << " x "
                << sizes.srcHeight << " to " << sizes.dstWidth << " x " << sizes.dstHeight << ": "
                << FirstDifference(dst.Memory(), expected, dst.FirstOffset(), dst.Stride());
        }
    }
}

// A pointer that is not null and must not be followed, in either direction.
class Forbidden {
public:
    uint8_t* Pointer() { return m_buffer.data() + m_buffer.size() + 4096; }

private:
    GuardedBuffer m_buffer{16};
};

inline void ExpectNullPointersWriteNothing(const ZoomForm& form) {
    for (const ZoomSizes& s : {ZoomSizes{2, 2, 3, 3},
                               {2, 2, 2, 2},
                               {0, 2, 3, 3},
                               {2, 0, 3, 3},
                               {2, 2, 0, 3},
                               {-1, -1, 3, 3}}) {
        std::vector<uint8_t> image(3 * 3 * 4, 0xA5);
        form.function(s.srcWidth, s.srcHeight, 12, nullptr, s.dstWidth, s.dstHeight, 12,
                      image.data());
        form.function(s.srcWidth, s.srcHeight, 12, image.data(), s.dstWidth, s.dstHeight, 12,
                      nullptr);
        form.function(s.srcWidth, s.srcHeight, 12, nullptr, s.dstWidth, s.dstHeight, 12, nullptr);
        EXPECT_EQ(image, std::vector<uint8_t>(3 * 3 * 4, 0xA5))
            << form.name << ", " << s.srcWidth << " x " << s.srcHeight << " to " << s.dstWidth
            << " x " << s.dstHeight;
    }
}

// With positive, zero and negative widths: a negative one moves nothing.
inline void ExpectEqualSizesAreCopied(const ZoomForm& form) {
    const int width = 3, height = 4, rowBytes = width * form.channels;
    GuardedImage src(rowBytes, height, {GuardedBuffer::kEnd, 2});
    GuardedImage dst(rowBytes, height, {GuardedBuffer::kEnd, 5});
    Fill(src.Memory(), src.Size(), Content::kNoise, 1);
    std::memset(dst.Memory(), 0xA5, dst.Size());
    form.function(width, height, src.Stride(), src.First(), width, height, dst.Stride(),
                  dst.First());
    for (int j = 0; j < height; ++j) {
        for (int i = 0; i < rowBytes; ++i)
            EXPECT_EQ(dst.Row(j)[i], src.Row(j)[i]) << form.name << ", row " << j << ", byte " << i;
        for (int i = rowBytes; i < dst.Stride() && j + 1 < height; ++i)
            EXPECT_EQ(dst.Row(j)[i], 0xA5) << form.name << ", padding of row " << j;
    }
    const std::vector<uint8_t> before = dst.Copy();
    Forbidden forbidden;
    for (auto [w, h] : {std::pair{3, 0}, {3, -1}, {0, 4}, {0, 0}, {-3, 4}, {-3, -4}})
        form.function(w, h, src.Stride(), forbidden.Pointer(), w, h, dst.Stride(), dst.First());
    EXPECT_EQ(dst.Copy(), before) << form.name;
}

// The source has a width or a height below 1, so nothing of it may be read; every byte of the rows
// becomes zero, alpha included, and no byte beside them.
inline void ExpectGivesBlack(const ZoomForm& form, int srcWidth, int srcHeight) {
    const int width = 5, height = 3, rowBytes = width * form.channels;
    GuardedImage dst(rowBytes, height, {GuardedBuffer::kEnd, 6});
    std::memset(dst.Memory(), 0xA5, dst.Size());
    Forbidden forbidden;
    form.function(srcWidth, srcHeight, 64, forbidden.Pointer(), width, height, dst.Stride(),
                  dst.First());
    for (int j = 0; j < height; ++j) {
        for (int i = 0; i < rowBytes; ++i)
            EXPECT_EQ(dst.Row(j)[i], 0) << form.name << ", " << srcWidth << " x " << srcHeight
                                        << ", row " << j << ", byte " << i;
        for (int i = rowBytes; i < dst.Stride() && j + 1 < height; ++i)
            EXPECT_EQ(dst.Row(j)[i], 0xA5) << form.name << ", padding of row " << j;
    }
}

// Neither pointer may be followed: there is nothing to write, whatever the source is.
inline void ExpectBadDestinationsWriteNothing(const ZoomForm& form) {
    Forbidden forbidden;
    for (auto [srcWidth, srcHeight] : {std::pair{4, 4}, {0, 4}, {4, 0}, {-1, 4}, {4, -1}, {-2, -2}})
        for (auto [dstWidth, dstHeight] :
             {std::pair{0, 3}, {3, 0}, {0, 0}, {-1, 3}, {3, -1}, {-3, -3}, {-2147483647 - 1, 3}})
            form.function(srcWidth, srcHeight, 16, forbidden.Pointer(), dstWidth, dstHeight, 16,
                          forbidden.Pointer());
}

// Every combination of sizes below, at and above 0 against the reference.
inline void ExpectSmallAndBadSizesEqualReference(const ZoomForm& form) {
    const int sizes[] = {-2, -1, 0, 1, 3};
    const int stride = 3 * form.channels + 1;
    std::vector<uint8_t> src(3 * stride), before(3 * stride);
    Fill(src.data(), src.size(), Content::kNoise, 5);
    Fill(before.data(), before.size(), Content::kNoise, 6);
    for (int srcWidth : sizes)
        for (int srcHeight : sizes)
            for (int dstWidth : sizes)
                for (int dstHeight : sizes) {
                    std::vector<uint8_t> actual = before, expected = before;
                    form.function(srcWidth, srcHeight, stride, src.data(), dstWidth, dstHeight,
                                  stride, actual.data());
                    form.reference(srcWidth, srcHeight, stride, src.data(), dstWidth, dstHeight,
                                   stride, expected.data());
                    ASSERT_EQ(actual, expected)
                        << form.name << ", " << srcWidth << " x " << srcHeight << " to " << dstWidth
                        << " x " << dstHeight;
                }
}

// One row stands for all: a source stride of 0 is as good as any.
inline void ExpectOneRowForAll(const ZoomForm& form, const ZoomSizes& sizes) {
    GuardedImage src(sizes.srcWidth * form.channels, 1, {});
    GuardedImage dst(sizes.dstWidth * form.channels, sizes.dstHeight, {});
    GuardedImage expected(sizes.dstWidth * form.channels, sizes.dstHeight, {});
    Fill(src.Memory(), src.Size(), Content::kNoise, 9);
    form.function(sizes.srcWidth, sizes.srcHeight, 0, src.First(), sizes.dstWidth, sizes.dstHeight,
                  dst.Stride(), dst.First());
    form.reference(sizes.srcWidth, sizes.srcHeight, 0, src.First(), sizes.dstWidth, sizes.dstHeight,
                   expected.Stride(), expected.First());
    EXPECT_EQ(dst.Copy(), expected.Copy()) << form.name;
}

// One image of one row, or of several, from bytes to bytes; strides as short as they can be.
inline std::vector<int> ZoomBytes(const ZoomForm& form, const ZoomSizes& sizes,
                                  const std::vector<int>& source) {
    GuardedImage src(sizes.srcWidth * form.channels, sizes.srcHeight, {});
    GuardedImage dst(sizes.dstWidth * form.channels, sizes.dstHeight, {});
    if (source.size() != src.Size()) {
        ADD_FAILURE() << "source of " << source.size() << " bytes for " << src.Size();
        return {};
    }
    for (size_t i = 0; i < source.size(); ++i) src.Memory()[i] = static_cast<uint8_t>(source[i]);
    std::memset(dst.Memory(), 0xA5, dst.Size());
    form.function(sizes.srcWidth, sizes.srcHeight, src.Stride(), src.First(), sizes.dstWidth,
                  sizes.dstHeight, dst.Stride(), dst.First());
    return {dst.Memory(), dst.Memory() + dst.Size()};
}

// The one-channel image in each of four channels, as it stands.
inline std::vector<int> InFourChannels(const std::vector<int>& bytes) {
    std::vector<int> pixels;
    for (int byte : bytes) pixels.insert(pixels.end(), 4, byte);
    return pixels;
}

// The same zoom by one channel and by four, each of which bears the bytes.
inline void ExpectZoom(const std::vector<ZoomForm>& forms, const ZoomSizes& sizes,
                       const std::vector<int>& source, const std::vector<int>& expected) {
    for (const ZoomForm& form : forms) {
        const bool four = form.channels == 4;
        EXPECT_EQ(ZoomBytes(form, sizes, four ? InFourChannels(source) : source),
                  four ? InFourChannels(expected) : expected)
            << form.name;
    }
}

// One channel or four, in guarded memory, through two functions: the same bytes, padding and all.
inline void ExpectSameZoom(const ZoomForm& form, ZoomFunction other, const ZoomSizes& s) {
    for (const ZoomLayout& layout : ZoomLayouts()) {
        GuardedImage src(s.srcWidth * form.channels, s.srcHeight, layout.src);
        GuardedImage dst(s.dstWidth * form.channels, s.dstHeight, layout.dst);
        Fill(src.Memory(), src.Size(), Content::kNoise, 3);
        Fill(dst.Memory(), dst.Size(), Content::kNoise, 4);
        const std::vector<uint8_t> before = dst.Copy();
        other(s.srcWidth, s.srcHeight, src.Stride(), src.First(), s.dstWidth, s.dstHeight,
              dst.Stride(), dst.First());
        const std::vector<uint8_t> expected = dst.Copy();
        std::memcpy(dst.Memory(), before.data(), before.size());
        form.function(s.srcWidth, s.srcHeight, src.Stride(), src.First(), s.dstWidth, s.dstHeight,
                      dst.Stride(), dst.First());
        ASSERT_EQ(std::memcmp(dst.Memory(), expected.data(), expected.size()), 0)
            << form.name << ", " << s.srcWidth << " x " << s.srcHeight << " to " << s.dstWidth
            << " x " << s.dstHeight << ": "
            << FirstDifference(dst.Memory(), expected, dst.FirstOffset(), dst.Stride());
    }
}

inline void ExpectSameZoomAtEveryLevelAndProcessorCount(const ZoomForm& form, ZoomFunction other,
                                                        const std::vector<ZoomSizes>& sizes) {
    Settings settings;
    for (tq::IsaLevel level : RunnableIsaLevels())
        for (unsigned processors : {1u, 3u, 16u}) {
            settings.Use(level);
            settings.UseProcessors(processors);
            for (const ZoomSizes& s : sizes) ExpectSameZoom(form, other, s);
        }
}

}  // namespace tqtest
