#pragma once

// What the tests of the two corrected zooms share: their one task layout, the sizes at which they
// correct, and those at which they are another method.

#include <gtest/gtest.h>
#include <tqipl/thread.h>
#include <tqipl/zoom.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

#include "reference/zoom_correct_reference.h"
#include "support/guarded_buffer.h"
#include "support/settings.h"
#include "support/task_fields.h"
#include "support/zoom_check.h"

namespace tqtest {

// Exactly twice, a little more, much more; primes; one axis more than the other.
inline const std::vector<ZoomSizes>& CorrectedSizes() {
    static const std::vector<ZoomSizes> sizes = {
        {1, 1, 2, 2},      {1, 1, 7, 5},      {2, 2, 4, 4},     {2, 3, 5, 9},     {3, 3, 6, 6},
        {3, 9, 7, 19},     {9, 3, 19, 7},     {4, 4, 8, 8},     {4, 4, 17, 13},   {4, 9, 8, 20},
        {9, 4, 20, 8},     {5, 5, 10, 10},    {5, 5, 11, 12},   {6, 6, 12, 12},   {6, 6, 15, 18},
        {7, 11, 14, 22},   {13, 7, 31, 17},   {20, 14, 40, 28}, {20, 14, 41, 29}, {17, 19, 53, 41},
        {31, 9, 62, 101},  {9, 31, 101, 62},  {33, 8, 131, 17}, {64, 6, 129, 13}, {65, 7, 130, 14},
        {100, 5, 200, 10}, {128, 5, 257, 31}, {5, 60, 11, 121}};
    return sizes;
}

// An axis, or both, less than doubled; equal axes; reductions.
inline const std::vector<ZoomSizes>& DelegatedSizes() {
    static const std::vector<ZoomSizes> sizes = {
        {20, 14, 39, 28}, {20, 14, 40, 27}, {20, 14, 39, 27}, {20, 14, 20, 28}, {20, 14, 40, 14},
        {20, 14, 19, 90}, {20, 14, 90, 13}, {20, 14, 10, 7},  {6, 6, 11, 12},   {6, 6, 12, 11},
        {6, 6, 5, 30},    {6, 6, 30, 1},    {1, 1, 1, 2},     {1, 1, 2, 1},     {2, 1, 3, 2},
        {67, 9, 133, 18}, {67, 9, 134, 17}, {9, 67, 3, 200}};
    return sizes;
}

// Sizes without a plan at which every axis is at least doubled.
inline ::testing::AssertionResult DoubledSizesAtRandom(ZoomSweep& equals, int count, int greatest) {
    uint32_t state = 41;
    auto upTo = [&state](int limit) {
        state = state * 1664525u + 1013904223u;
        return 1 + static_cast<int>((state >> 8) % static_cast<uint32_t>(limit));
    };
    for (int i = 0; i < count; ++i) {
        const int width = upTo(greatest), height = upTo(12);
        const ZoomSizes sizes = {width, height, 2 * width + upTo(2 * greatest) - 1,
                                 2 * height + upTo(12) - 1};
        ::testing::AssertionResult result =
            equals(sizes, i % 2 == 0 ? Content::kNoise : Content::kHostile);
        if (!result) return result;
    }
    return ::testing::AssertionSuccess();
}

// From one pixel short of twice on to somewhat more.
inline void ExpectSmallDoubledSizesEqualReference(const std::vector<ZoomForm>& forms,
                                                  int greatestHeight) {
    for (const ZoomForm& form : forms) {
        ZoomSweep equals(form);
        for (int srcWidth = 1; srcWidth <= 9; ++srcWidth)
            for (int srcHeight = 1; srcHeight <= greatestHeight; ++srcHeight)
                for (int moreWidth = 0; moreWidth <= 3; ++moreWidth)
                    for (int moreHeight = 0; moreHeight <= 2; ++moreHeight) {
                        const ZoomSizes s = {srcWidth, srcHeight, 2 * srcWidth - 1 + moreWidth,
                                             2 * srcHeight - 1 + moreHeight};
                        ASSERT_TRUE(equals(s, Content::kNoise));
                        ASSERT_TRUE(equals(s, Content::kHostile));
                    }
    }
}

inline void ExpectEveryLayoutEqualsReference(const std::vector<ZoomForm>& forms) {
    for (const ZoomForm& form : forms) {
        ZoomSweep equals(form);
        for (const ZoomSizes& sizes : CorrectedSizes()) {
            ASSERT_TRUE(equals.InEveryLayout(sizes, Content::kNoise));
            ASSERT_TRUE(equals.InEveryLayout(sizes, Content::kHostile));
        }
        for (const ZoomSizes& sizes : ZoomSizesOfEveryKind())
            ASSERT_TRUE(equals(sizes, Content::kNoise));
    }
}

// 9 x 8 to 18 x 16 pixels: rows and columns before firstInside, and at positions from the last but
// two on, are those of the linear zoom; of the others more than `least` pixels are not.
inline void ExpectOnlyTheInsideDiffersFromLinear(const std::vector<ZoomForm>& forms,
                                                 int firstInside, int least) {
    for (const ZoomForm& form : forms) {
        const int n = form.channels;
        GuardedImage src(9 * n, 8, {}), dst(18 * n, 16, {}), linear(18 * n, 16, {});
        Fill(src.Memory(), src.Size(), Content::kNoise, 12);
        form.function(9, 8, src.Stride(), src.First(), 18, 16, dst.Stride(), dst.First());
        (n == 1 ? IPL_ZoomLinear_8u_C1R : IPL_ZoomLinear_8u_C4R)(
            9, 8, src.Stride(), src.First(), 18, 16, linear.Stride(), linear.First());
        int changed = 0;
        for (int j = 0; j < 16; ++j)
            for (int i = 0; i < 18; ++i) {
                const bool same = std::memcmp(dst.Row(j) + i * n, linear.Row(j) + i * n, n) == 0;
                const bool ring = j < firstInside || j >= 13 || i < firstInside || i >= 15;
                if (ring) {
                    EXPECT_TRUE(same) << form.name << ", row " << j << ", column " << i;
                }
                if (!same) ++changed;
            }
        EXPECT_GT(changed, least) << form.name;
    }
}

template <class Task> void ExpectCorrectTaskFieldsInOrder() {
    static_assert(std::is_base_of_v<CTQIPLTaskBase, Task>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcWidth), int>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcHeight), int>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pSrc), unsigned char*>);
    static_assert(std::is_same_v<decltype(Task::m_nLumStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pLum), unsigned char*>);
    static_assert(std::is_same_v<decltype(Task::m_nDstWidth), int>);
    static_assert(std::is_same_v<decltype(Task::m_nDstHeight), int>);
    static_assert(std::is_same_v<decltype(Task::m_nDstStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pDst), unsigned char*>);
    static_assert(std::is_same_v<decltype(Task::m_nRowBegin), int>);
    static_assert(std::is_same_v<decltype(Task::m_nRowEnd), int>);
    static_assert(sizeof(Task::m_nChannelMode) == 4);
    const Task task;
    const void* const fields[] = {&task,
                                  &task.m_nSrcWidth,
                                  &task.m_nSrcHeight,
                                  &task.m_nSrcStride,
                                  &task.m_pSrc,
                                  &task.m_nLumStride,
                                  &task.m_pLum,
                                  &task.m_nDstWidth,
                                  &task.m_nDstHeight,
                                  &task.m_nDstStride,
                                  &task.m_pDst,
                                  &task.m_nRowBegin,
                                  &task.m_nRowEnd,
                                  &task.m_nChannelMode};
    ExpectAddressesRise(fields);
}

// One band, set up by its documented fields only. The luminance plane has padding of its own, which
// is at odds with the source; the task is to go by the plane as it finds it.
template <class Task>
void ExpectCorrectBand(tqref::CorrectRows rows, int channels, const ZoomSizes& s, int begin,
                       int end) {
    GuardedImage src(s.srcWidth * channels, s.srcHeight, {GuardedBuffer::kEnd, 1});
    GuardedImage lum(s.srcWidth, s.srcHeight, {GuardedBuffer::kEnd, 2});
    GuardedImage dst(s.dstWidth * channels, s.dstHeight, {GuardedBuffer::kEnd, 3});
    Fill(src.Memory(), src.Size(), Content::kNoise, static_cast<uint32_t>(begin));
    Fill(lum.Memory(), lum.Size(), Content::kNoise, static_cast<uint32_t>(20 + begin));
    Fill(dst.Memory(), dst.Size(), Content::kNoise, static_cast<uint32_t>(50 + end));
    std::vector<uint8_t> expected = dst.Copy();
    const tqref::ZoomSource source{s.srcWidth, s.srcHeight, src.Stride(), src.First()};
    const tqref::ZoomSource plane{s.srcWidth, s.srcHeight, lum.Stride(), lum.First()};
    rows(channels, source, channels == 1 ? source : plane,
         {s.dstWidth, s.dstHeight, dst.Stride(), expected.data()}, begin, end);
    Task task;
    task.m_nSrcWidth = s.srcWidth;
    task.m_nSrcHeight = s.srcHeight;
    task.m_nSrcStride = src.Stride();
    task.m_pSrc = src.First();
    task.m_nLumStride = channels == 1 ? 0 : lum.Stride();
    task.m_pLum = channels == 1 ? nullptr : lum.First();
    task.m_nDstWidth = s.dstWidth;
    task.m_nDstHeight = s.dstHeight;
    task.m_nDstStride = dst.Stride();
    task.m_pDst = dst.First();
    task.m_nRowBegin = begin;
    task.m_nRowEnd = end;
    task.m_nChannelMode = channels == 1 ? 0 : 1;
    CTQIPLTaskBase& base = task;
    ASSERT_EQ(base.Run(), 1);
    ASSERT_EQ(dst.Copy(), expected)
        << channels << " channels, " << s.srcWidth << " x " << s.srcHeight << " to " << s.dstWidth
        << " x " << s.dstHeight << ", rows " << begin << " to " << end << ", level "
        << tq::IsaLevelName(tq::CurrentIsaLevel());
}

// Every band of every destination, with nothing else of the destination touched. A task corrects at
// any ratio: it is the form around it that hands the others on.
template <class Task> void ExpectCorrectTaskWritesItsRows(tqref::CorrectRows rows, int channels) {
    Settings settings;
    for (tq::IsaLevel level : RunnableIsaLevels()) {
        settings.Use(level);
        for (const ZoomSizes& s :
             {ZoomSizes{9, 6, 21, 13}, {7, 7, 15, 14}, {3, 9, 8, 18}, {40, 5, 81, 10}})
            for (int begin = 0; begin <= s.dstHeight; ++begin)
                for (int end = begin; end <= s.dstHeight; ++end)
                    ASSERT_NO_FATAL_FAILURE(ExpectCorrectBand<Task>(rows, channels, s, begin, end));
        ASSERT_NO_FATAL_FAILURE(ExpectCorrectBand<Task>(rows, channels, {9, 6, 13, 10}, 0, 10));
        ASSERT_NO_FATAL_FAILURE(ExpectCorrectBand<Task>(rows, channels, {9, 6, 9, 6}, 1, 6));
    }
}

// No pointer may be followed.
template <class Task> void ExpectBadChannelModesReturn1() {
    Forbidden forbidden;
    for (int mode : {2, 3, -1, INT_MAX, INT_MIN}) {
        Task task;
        task.m_nSrcWidth = 9;
        task.m_nSrcHeight = 9;
        task.m_nSrcStride = 36;
        task.m_pSrc = forbidden.Pointer();
        task.m_nLumStride = 9;
        task.m_pLum = forbidden.Pointer();
        task.m_nDstWidth = 18;
        task.m_nDstHeight = 18;
        task.m_nDstStride = 72;
        task.m_pDst = forbidden.Pointer();
        task.m_nRowBegin = 0;
        task.m_nRowEnd = 18;
        task.m_nChannelMode = mode;
        EXPECT_EQ(task.Run(), 1) << mode;
    }
}

}  // namespace tqtest
