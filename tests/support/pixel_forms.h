#pragma once

// What the tests of pixel conversions share: a form with its reference, and its comparison over
// sizes, placements, instruction-set levels and processor counts. Always the whole memory that a
// form could reach is compared, not the image alone.

#include <gtest/gtest.h>
#include <tqipl/thread.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "support/guarded_buffer.h"
#include "support/settings.h"

namespace tqtest {

// A conversion with one source and one destination. A group is what is converted together: a
// pixel, or two where they share chroma. dst counts elements of Dst: of a byte form, bytes.
template <class Dst> struct PixelForm {
    using Function = void (*)(int width, int height, int srcStride, unsigned char* src,
                              int dstStride, Dst* dst);
    using Reference = void (*)(int width, int height, int srcStride, const uint8_t* src,
                               int dstStride, Dst* dst);
    using Task = int (*)(int width, int height, int srcStride, unsigned char* src, int dstStride,
                         Dst* dst);

    const char* name;
    Function plain;
    Function multiThread;
    Task runTask;
    Reference reference;
    int groupPixels;
    int srcGroup;
    int dstGroup;

    // What a form may read of a row: whole groups only.
    int SrcRow(int width) const { return width / groupPixels * srcGroup; }
    // A row of the destination image, with the place of an odd last pixel.
    int DstRow(int width) const { return (width + groupPixels - 1) / groupPixels * dstGroup; }
};

// Sets the six fields that every task with one source and one destination has.
template <class Task, class Dst>
void FillTask(Task& task, int width, int height, int srcStride, unsigned char* src, int dstStride,
              Dst* dst) {
    task.m_nWidth = width;
    task.m_nHeight = height;
    task.m_nSrcStride = srcStride;
    task.m_pSrc = src;
    task.m_nDstStride = dstStride;
    task.m_pDst = dst;
}

// Makes a task, runs it and deletes it through its base; what Run returned.
template <class Task, class Dst>
int RunTask(int width, int height, int srcStride, unsigned char* src, int dstStride, Dst* dst) {
    auto task = std::make_unique<Task>();
    FillTask(*task, width, height, srcStride, src, dstStride, dst);
    const std::unique_ptr<CTQIPLTaskBase> base = std::move(task);
    return base->Run();
}
template <class Task, int mode, class Dst>
int RunTaskInMode(int width, int height, int srcStride, unsigned char* src, int dstStride,
                  Dst* dst) {
    auto task = std::make_unique<Task>();
    FillTask(*task, width, height, srcStride, src, dstStride, dst);
    task->m_nMode = mode;
    const std::unique_ptr<CTQIPLTaskBase> base = std::move(task);
    return base->Run();
}

template <class Dst>
testing::AssertionResult SameElements(const Dst* actual, const Dst* expected, size_t count) {
    if (std::memcmp(actual, expected, count * sizeof(Dst)) == 0) return testing::AssertionSuccess();
    size_t i = 0;
    while (actual[i] == expected[i]) ++i;
    return testing::AssertionFailure() << "element " << i << " of " << count << " is "
                                       << int64_t{actual[i]} << ", not " << int64_t{expected[i]};
}

// A guarded buffer seen as elements.
template <class T> class Elements {
public:
    Elements(int count, GuardedBuffer::Side side)
        : m_buffer(count * sizeof(T), side), m_count(count) {}
    T* data() { return reinterpret_cast<T*>(m_buffer.data()); }
    int count() const { return m_count; }
    void Fill(uint32_t seed) { FillHostile(m_buffer.data(), m_buffer.size(), seed); }
    std::vector<T> Contents() { return std::vector<T>(data(), data() + m_count); }
    void Put(const std::vector<T>& contents) {
        std::memcpy(data(), contents.data(), contents.size() * sizeof(T));
    }

private:
    GuardedBuffer m_buffer;
    int m_count;
};

// Where an image's first row begins in a buffer, and the distance to the next row, in elements.
struct ImagePlace {
    int first;
    int stride;
};

// `gap` elements between the image and the guard, `padding` between two rows. Bottom-up, the first
// row is the last in memory.
inline ImagePlace PlaceImage(int count, GuardedBuffer::Side side, int gap, int rowLength,
                             int height, int padding, bool bottomUp) {
    const int stride = rowLength + padding;
    const int rows = height > 0 ? height : 1;
    const int length = stride * (rows - 1) + rowLength;
    const int begin = side == GuardedBuffer::kStart ? gap : count - gap - length;
    if (bottomUp) return {begin + stride * (rows - 1), -stride};
    return {begin, stride};
}

// Every level, widths 1 to 70, heights 1 to 5; images right behind and right before a guard and up
// to three elements from it; dense and padded rows; top-down and bottom-up.
template <class Dst> void ExpectEqualsReference(const PixelForm<Dst>& form) {
    SCOPED_TRACE(form.name);
    constexpr int kMaxWidth = 70, kMaxHeight = 5;
    constexpr int kSrcPadding[4] = {0, 5, 1, 3}, kDstPadding[4] = {0, 3, 7, 1};
    Settings settings;
    for (auto side : {GuardedBuffer::kEnd, GuardedBuffer::kStart}) {
        Elements<uint8_t> src((form.SrcRow(kMaxWidth) + 5) * kMaxHeight + 3, side);
        Elements<Dst> dst((form.DstRow(kMaxWidth) + 7) * kMaxHeight + 3, side);
        for (int width = 1; width <= kMaxWidth; ++width)
            for (int height = 1; height <= kMaxHeight; ++height) {
                src.Fill(width * 8 + height);
                dst.Fill(1000 + width * 8 + height);
                const std::vector<Dst> before = dst.Contents();
                for (int placement = 0; placement < 8; ++placement) {
                    const int gap = placement % 4;
                    const bool bottomUp = placement >= 4;
                    const ImagePlace in = PlaceImage(src.count(), side, gap, form.SrcRow(width),
                                                     height, kSrcPadding[gap], bottomUp);
                    const ImagePlace out =
                        PlaceImage(dst.count(), side, (4 - gap) % 4, form.DstRow(width), height,
                                   kDstPadding[gap], bottomUp && gap != 1);
                    std::vector<Dst> expected = before;
                    form.reference(width, height, in.stride, src.data() + in.first, out.stride,
                                   expected.data() + out.first);
                    for (tq::IsaLevel level : RunnableIsaLevels()) {
                        settings.Use(level);
                        dst.Put(before);
                        form.plain(width, height, in.stride, src.data() + in.first, out.stride,
                                   dst.data() + out.first);
                        ASSERT_TRUE(SameElements(dst.data(), expected.data(), expected.size()))
                            << width << " x " << height << ", side " << side << ", placement "
                            << placement << ", first row at " << out.first << ", stride "
                            << out.stride << ", level " << tq::IsaLevelName(level);
                    }
                }
            }
    }
}

// Long single rows, each filled by fill(row, groups of the source), at every level: for the inputs
// of which there are too many for one image.
template <class Dst, class Fill>
void ExpectLongRowsEqualReference(const PixelForm<Dst>& form, int rows, int groups, Fill fill) {
    SCOPED_TRACE(form.name);
    Settings settings;
    const int width = groups * form.groupPixels;
    std::vector<uint8_t> src(form.SrcRow(width));
    const std::vector<Dst> before(form.DstRow(width), static_cast<Dst>(0xA5));
    std::vector<Dst> expected = before, dst = before;
    for (int row = 0; row < rows; ++row) {
        fill(row, src.data());
        form.reference(width, 1, 0, src.data(), 0, expected.data());
        for (tq::IsaLevel level : RunnableIsaLevels()) {
            settings.Use(level);
            dst = before;
            form.plain(width, 1, 0, src.data(), 0, dst.data());
            ASSERT_TRUE(SameElements(dst.data(), expected.data(), expected.size()))
                << "row " << row << ", level " << tq::IsaLevelName(level);
        }
    }
}

// Every processor count from 1 to 16, heights around them and below 1, padded rows, top-down and
// bottom-up.
template <class Dst> void ExpectMultiThreadEqualsPlain(const PixelForm<Dst>& form) {
    SCOPED_TRACE(form.name);
    Settings settings;
    constexpr int kMaxHeight = 33;
    for (int width : {1, 19, 36})
        for (auto side : {GuardedBuffer::kEnd, GuardedBuffer::kStart}) {
            Elements<uint8_t> src((form.SrcRow(width) + 5) * kMaxHeight, side);
            Elements<Dst> dst((form.DstRow(width) + 3) * kMaxHeight, side);
            src.Fill(width);
            dst.Fill(1000 + width);
            const std::vector<Dst> before = dst.Contents();
            for (int height : {-3, 0, 1, 2, 5, 7, 8, 9, 15, 16, 17, 33}) {
                const bool bottomUp = height % 2 == 1;
                const ImagePlace in =
                    PlaceImage(src.count(), side, 0, form.SrcRow(width), height, 5, bottomUp);
                const ImagePlace out = PlaceImage(dst.count(), side, 0, form.DstRow(width), height,
                                                  3, bottomUp && height != 9);
                dst.Put(before);
                form.plain(width, height, in.stride, src.data() + in.first, out.stride,
                           dst.data() + out.first);
                const std::vector<Dst> plain = dst.Contents();
                for (unsigned processors = 1; processors <= 16; ++processors) {
                    settings.UseProcessors(processors);
                    dst.Put(before);
                    form.multiThread(width, height, in.stride, src.data() + in.first, out.stride,
                                     dst.data() + out.first);
                    ASSERT_TRUE(SameElements(dst.data(), plain.data(), plain.size()))
                        << width << " x " << height << ", " << processors << " processors";
                }
            }
        }
}

// A task with the six fields does the plain form's work, and Run returns 1.
template <class Dst> void ExpectTaskEqualsReference(const PixelForm<Dst>& form) {
    SCOPED_TRACE(form.name);
    const int width = 21, height = 3;
    std::vector<uint8_t> src((form.SrcRow(width) + 5) * height);
    FillHostile(src.data(), src.size(), 1);
    std::vector<Dst> dst((form.DstRow(width) + 3) * height, static_cast<Dst>(0xA5));
    std::vector<Dst> expected = dst;
    form.reference(width, height, form.SrcRow(width) + 5, src.data(), form.DstRow(width) + 3,
                   expected.data());
    EXPECT_EQ(form.runTask(width, height, form.SrcRow(width) + 5, src.data(),
                           form.DstRow(width) + 3, dst.data()),
              1);
    EXPECT_TRUE(SameElements(dst.data(), expected.data(), expected.size()));
}

// Sizes below 1, in the plain and in the MultiThread form, write nothing. A width without a whole
// group is such a size.
template <class Dst> void ExpectEmptySizesWriteNothing(const PixelForm<Dst>& form) {
    SCOPED_TRACE(form.name);
    Settings settings;
    Elements<uint8_t> src(64, GuardedBuffer::kEnd);
    Elements<Dst> dst(64, GuardedBuffer::kEnd);
    src.Fill(1);
    dst.Fill(2);
    const std::vector<Dst> before = dst.Contents();
    std::vector<std::pair<int, int>> sizes = {{0, 1}, {0, 3},  {-1, 1}, {-2, 3}, {-70, 2},
                                              {2, 0}, {2, -1}, {2, -9}, {0, 0},  {-5, -5}};
    if (form.groupPixels == 2) sizes.insert(sizes.end(), {{1, 1}, {1, 3}});
    for (auto [width, height] : sizes)
        for (unsigned processors : {1u, 2u, 8u}) {
            settings.UseProcessors(processors);
            form.plain(width, height, 16, src.data(), 16, dst.data());
            form.multiThread(width, height, 16, src.data(), 16, dst.data());
            EXPECT_TRUE(SameElements(dst.data(), before.data(), before.size()))
                << width << " x " << height << ", " << processors << " processors";
        }
}

// call(width, height) for sizes without a pixel, at several processor counts.
template <class Call> void ForSizesWithoutAPixel(Call call) {
    Settings settings;
    for (unsigned processors : {1u, 2u, 8u}) {
        settings.UseProcessors(processors);
        for (auto [width, height] : {std::pair{12, 0}, {12, -1}, {0, 1}, {-1, 1}, {0, 9}})
            call(width, height);
    }
}

template <class Dst> void ExpectNoPointerIsUsedWithoutAPixel(const PixelForm<Dst>& form) {
    ForSizesWithoutAPixel([&form](int width, int height) {
        form.plain(width, height, 0, nullptr, 0, nullptr);
        form.multiThread(width, height, 0, nullptr, 0, nullptr);
    });
}

// A task in a mode that it does not know writes nothing, and Run returns 1.
template <class Task, int mode, class Dst = uint8_t> void ExpectModeDoesNothing() {
    std::vector<uint8_t> src(2 * 64, 255);
    std::vector<Dst> dst(2 * 64, 7);
    EXPECT_EQ((RunTaskInMode<Task, mode>(6, 2, 64, src.data(), 64, dst.data())), 1) << mode;
    EXPECT_EQ(dst, std::vector<Dst>(2 * 64, 7)) << mode;
}

}  // namespace tqtest
