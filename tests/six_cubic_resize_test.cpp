// The plain one-channel six-tap zoom step by step: each pass in every layout, and the passes that
// sizes need.

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>
#include <utility>
#include <vector>

#include "reference/zoom_cubic_reference.h"
#include "support/guarded_buffer.h"
#include "support/settings.h"
#include "support/zoom_check.h"
#include "zoom/weights.h"

namespace {

using tqtest::Content;
using tqtest::GuardedBuffer;
using tqtest::GuardedImage;
using tqtest::ZoomForm;
using tqtest::ZoomSizes;

static_assert(std::is_polymorphic_v<CZ6CubicResize> &&
              std::has_virtual_destructor_v<CZ6CubicResize> &&
              sizeof(CZ6CubicResize) == sizeof(void*));

// Sizes of 1 or more, not both equal.
void ResizeByClass(int srcWidth, int srcHeight, int srcStride, unsigned char* src, int dstWidth,
                   int dstHeight, int dstStride, unsigned char* dst) {
    CZ6CubicResize().Resize(srcWidth, srcHeight, srcStride, src, dstWidth, dstHeight, dstStride,
                            dst);
}
const ZoomForm kResize = {"CZ6CubicResize::Resize", ResizeByClass, tqref::ZoomSixCubicC1, 1};

// 32-bit sums in guarded memory, of which the pixels are part.
struct Sums {
    Sums(int width, int height, int padding, bool bottomUp)
        : image(width * 4, height, {GuardedBuffer::kEnd, padding * 4, bottomUp, 0}) {}
    int Stride() const { return image.Stride() / 4; }
    int* First() { return reinterpret_cast<int*>(image.First()); }
    GuardedImage image;
};

class CubicResizeSteps : public testing::Test {
protected:
    // At every level, in every layout: lengths of the axis that is scaled, and the other one.
    template <class Body> void ForAll(Body body) {
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
            m_settings.Use(level);
            for (const tqtest::ZoomLayout& layout : tqtest::ZoomLayouts())
                for (auto [from, to] :
                     {std::pair{7, 13}, {13, 7}, {1, 5}, {5, 1}, {2, 4}, {20, 39}, {6, 6}})
                    for (int other : {1, 3, 21}) {
                        body(from, to, other, layout);
                        if (HasFatalFailure()) return;
                    }
        }
    }

    CZ6CubicResize m_resize;

private:
    tqtest::Settings m_settings;
};

TEST_F(CubicResizeSteps, ResizeXScalesTheRows) {
    ForAll([this](int from, int to, int height, const tqtest::ZoomLayout& layout) {
        GuardedImage src(from, height, layout.src), dst(to, height, layout.dst);
        tqtest::Fill(src.Memory(), src.Size(), Content::kNoise, from);
        std::vector<uint8_t> expected = dst.Copy();
        tqref::TapsAlongRows(1, {from, height, src.Stride(), src.First()},
                             {to, height, dst.Stride(), expected.data() + dst.FirstOffset()},
                             tqref::SixTapRecords(from, to), 0, height);
        m_resize.ResizeX(from, to, height, src.Stride(), src.First(), dst.Stride(), dst.First());
        ASSERT_EQ(dst.Copy(), expected) << from << " to " << to;
    });
}

TEST_F(CubicResizeSteps, ResizeYScalesTheColumns) {
    ForAll([this](int from, int to, int width, const tqtest::ZoomLayout& layout) {
        GuardedImage src(width, from, layout.src), dst(width, to, layout.dst);
        tqtest::Fill(src.Memory(), src.Size(), Content::kNoise, from);
        std::vector<uint8_t> expected = dst.Copy();
        tqref::TapsAlongColumns(1, {width, from, src.Stride(), src.First()},
                                {width, to, dst.Stride(), expected.data() + dst.FirstOffset()},
                                tqref::SixTapRecords(from, to), 0, width);
        m_resize.ResizeY(from, to, width, src.Stride(), src.First(), dst.Stride(), dst.First());
        ASSERT_EQ(dst.Copy(), expected) << from << " to " << to;
    });
}

TEST_F(CubicResizeSteps, ResizeXToIntermediateKeepsTheSums) {
    ForAll([this](int from, int to, int height, const tqtest::ZoomLayout& layout) {
        GuardedImage src(from, height, layout.src);
        Sums dst(to, height, layout.dst.padding, layout.dst.bottomUp);
        tqtest::Fill(src.Memory(), src.Size(), Content::kNoise, from);
        tqtest::Fill(dst.image.Memory(), dst.image.Size(), Content::kNoise, to);
        std::vector<uint8_t> expected = dst.image.Copy();
        int* first = reinterpret_cast<int*>(expected.data() + dst.image.FirstOffset());
        tqref::TapsAlongRowsUnrounded(1, {from, height, src.Stride(), src.First()},
                                      {dst.Stride(), first}, tqref::SixTapRecords(from, to), 0,
                                      height);
        m_resize.ResizeXToIntermediate(from, src.Stride(), src.First(), to, height, dst.Stride(),
                                       dst.First());
        ASSERT_EQ(dst.image.Copy(), expected) << from << " to " << to;
    });
}

TEST_F(CubicResizeSteps, ResizeYFromIntermediateRoundsOnce) {
    ForAll([this](int from, int to, int width, const tqtest::ZoomLayout& layout) {
        Sums src(width, from, layout.src.padding, layout.src.bottomUp);
        GuardedImage dst(width, to, layout.dst);
        uint32_t state = 5;
        for (size_t i = 0; i < src.image.Size() / 4; ++i) {
            state = state * 1664525u + 1013904223u;
            const int sum = static_cast<int>(state >> 8) % 400000 - 60000;
            std::memcpy(src.image.Memory() + 4 * i, &sum, 4);
        }
        std::vector<uint8_t> expected = dst.Copy();
        tqref::TapsAlongColumnsOfSums(
            1, {src.Stride(), src.First()},
            {width, to, dst.Stride(), expected.data() + dst.FirstOffset()},
            tqref::SixTapRecords(from, to), 0, width);
        m_resize.ResizeYFromIntermediate(from, width, src.First(), src.Stride(), to, dst.Stride(),
                                         dst.First());
        ASSERT_EQ(dst.Copy(), expected) << from << " to " << to;
    });
}

TEST_F(CubicResizeSteps, ResizeTakesTheStepsThatTheSizesNeed) {
    ForAll([](int from, int to, int other, const tqtest::ZoomLayout& layout) {
        if (from == to) return;
        for (const ZoomSizes& sizes :
             {ZoomSizes{from, other, to, other}, {other, from, other, to}, {from, to, to, from}})
            ASSERT_TRUE(tqtest::EqualsReference(kResize, sizes, layout, Content::kNoise, from,
                                                {tq::CurrentIsaLevel()}));
    });
}

TEST(CubicResize, SizesOfEveryKindEqualTheReference) {
    tqtest::ZoomSweep equals(kResize);
    for (const ZoomSizes& sizes : tqtest::ZoomSizesOfEveryKind()) {
        ASSERT_TRUE(equals.InEveryLayout(sizes, Content::kNoise));
        ASSERT_TRUE(equals(sizes, Content::kHostile));
    }
}

TEST(CubicResize, TakesNoWorkersOfThePool) {
    tqtest::Settings settings;
    settings.UseProcessors(4);
    EXPECT_EQ(tqtest::WorkersAfter(kResize, {20, 20, 40, 40}), 0u);
}

}  // namespace
