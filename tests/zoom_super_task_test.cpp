// The task of the super zoom: its fields, bands run by hand against the reference, channel modes
// that there are not.

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include "reference/zoom_super_reference.h"
#include "support/settings.h"
#include "support/zoom_check.h"
#include "zoom/zoom_tasks.h"

namespace {

using tqtest::Content;
using tqtest::GuardedImage;
using tqtest::ZoomSizes;

template <class A, class B> bool Precedes(const A& a, const B& b) {
    return reinterpret_cast<uintptr_t>(&a) < reinterpret_cast<uintptr_t>(&b);
}

TEST(SuperTask, HasItsFieldsInOrder) {
    using Task = CZoomSuperTask;
    static_assert(std::is_base_of_v<CTQIPLTaskBase, Task>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcWidth), int> &&
                  std::is_same_v<decltype(Task::m_nSrcHeight), int> &&
                  std::is_same_v<decltype(Task::m_nSrcStride), int> &&
                  std::is_same_v<decltype(Task::m_pSrc), unsigned char*> &&
                  std::is_same_v<decltype(Task::m_nDstWidth), int> &&
                  std::is_same_v<decltype(Task::m_nDstHeight), int> &&
                  std::is_same_v<decltype(Task::m_nDstStride), int> &&
                  std::is_same_v<decltype(Task::m_pDst), unsigned char*> &&
                  std::is_same_v<decltype(Task::m_nRowBegin), int> &&
                  std::is_same_v<decltype(Task::m_nRowEnd), int> &&
                  sizeof(Task::m_nChannelMode) == 4);
    const Task task;
    EXPECT_TRUE(Precedes(task.m_nSrcWidth, task.m_nSrcHeight));
    EXPECT_TRUE(Precedes(task.m_nSrcHeight, task.m_nSrcStride));
    EXPECT_TRUE(Precedes(task.m_nSrcStride, task.m_pSrc));
    EXPECT_TRUE(Precedes(task.m_pSrc, task.m_nDstWidth));
    EXPECT_TRUE(Precedes(task.m_nDstWidth, task.m_nDstHeight));
    EXPECT_TRUE(Precedes(task.m_nDstHeight, task.m_nDstStride));
    EXPECT_TRUE(Precedes(task.m_nDstStride, task.m_pDst));
    EXPECT_TRUE(Precedes(task.m_pDst, task.m_nRowBegin));
    EXPECT_TRUE(Precedes(task.m_nRowBegin, task.m_nRowEnd));
    EXPECT_TRUE(Precedes(task.m_nRowEnd, task.m_nChannelMode));
}

// Every band of every destination, with nothing else of the destination touched. The lower edge is
// a sum in both modes.
TEST(SuperTask, WritesItsRowsAndReturns1) {
    tqtest::Settings settings;
    uint32_t seed = 0;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (int channels : {1, 4})
            for (const ZoomSizes& s : {ZoomSizes{3, 8, 2, 7},
                                       {21, 7, 9, 4},
                                       {9, 9, 9, 5},
                                       {40, 5, 37, 5},
                                       {12, 12, 6, 4},
                                       {1, 3, 1, 1}})
                for (int begin = 0; begin <= s.dstHeight; ++begin)
                    for (int end = 0; end <= s.dstHeight; ++end) {
                        const std::vector<tqtest::ZoomLayout>& layouts = tqtest::ZoomLayouts();
                        const tqtest::ZoomLayout& layout = layouts[++seed % layouts.size()];
                        GuardedImage src(s.srcWidth * channels, s.srcHeight, layout.src);
                        GuardedImage dst(s.dstWidth * channels, s.dstHeight, layout.dst);
                        tqtest::Fill(src.Memory(), src.Size(), Content::kNoise, seed);
                        tqtest::Fill(dst.Memory(), dst.Size(), Content::kNoise, seed + 1);
                        std::vector<uint8_t> expected = dst.Copy();
                        tqref::ZoomSuperRows(channels, tqref::SuperBottom::kTopPlusScale,
                                             {s.srcWidth, s.srcHeight, src.Stride(), src.First()},
                                             {s.dstWidth, s.dstHeight, dst.Stride(),
                                              expected.data() + dst.FirstOffset()},
                                             begin, end);
                        CZoomSuperTask task;
                        task.m_nSrcWidth = s.srcWidth;
                        task.m_nSrcHeight = s.srcHeight;
                        task.m_nSrcStride = src.Stride();
                        task.m_pSrc = src.First();
                        task.m_nDstWidth = s.dstWidth;
                        task.m_nDstHeight = s.dstHeight;
                        task.m_nDstStride = dst.Stride();
                        task.m_pDst = dst.First();
                        task.m_nRowBegin = begin;
                        task.m_nRowEnd = end;
                        task.m_nChannelMode = channels == 4 ? 1 : 0;
                        CTQIPLTaskBase& base = task;
                        ASSERT_EQ(base.Run(), 1);
                        ASSERT_EQ(dst.Copy(), expected)
                            << channels << " channels, " << s.srcWidth << " x " << s.srcHeight
                            << " to " << s.dstWidth << " x " << s.dstHeight << ", rows " << begin
                            << " to " << end << ", level " << tq::IsaLevelName(level);
                    }
    }
}

TEST(SuperTask, OtherChannelModesDoNothingAndReturn1) {
    tqtest::Forbidden forbidden;
    for (int mode : {2, 3, 4, -1, 256, std::numeric_limits<int>::min()}) {
        CZoomSuperTask task;
        task.m_nSrcWidth = task.m_nSrcHeight = task.m_nSrcStride = 8;
        task.m_nDstWidth = task.m_nDstHeight = task.m_nDstStride = 4;
        task.m_pSrc = task.m_pDst = forbidden.Pointer();
        task.m_nRowEnd = 4;
        task.m_nChannelMode = mode;
        EXPECT_EQ(task.Run(), 1);
    }
}

}  // namespace
