// Copy-and-pad: an image into a larger frame whose border repeats the image's edge.

#include <gtest/gtest.h>
#include <tqipl/image_memory.h>

#include <tuple>
#include <utility>
#include <vector>

#include "reference/image_memory_reference.h"
#include "support/guarded_buffer.h"
#include "support/image_stage.h"
#include "support/settings.h"

namespace {

using Image = std::vector<unsigned char>;
using Form = void (*)(unsigned int, unsigned int, unsigned int, unsigned char*, unsigned int,
                      unsigned char*, unsigned int, unsigned int, unsigned int, unsigned int);

constexpr uint8_t kOld = 0xEE;  // what a frame holds before a call

constexpr Form kForms[] = {IPL_MemcpyAndPad_C1R, IPL_MemcpyAndPadMultiThread_C1R};

struct Pads {
    unsigned left, top, right, bottom;
};

// ---- Values known by hand ------------------------------------------------------------------

TEST(CopyAndPad, TwoByTwoWithEveryPaddingOneRepeatsTheCorners) {
    for (Form form : kForms) {
        Image src{1, 2, 3, 4}, dst(16, kOld);
        form(2, 2, 2, src.data(), 4, dst.data(), 1, 1, 1, 1);
        EXPECT_EQ(dst, (Image{1, 1, 2, 2,  //
                              1, 1, 2, 2,  //
                              3, 3, 4, 4,  //
                              3, 3, 4, 4}));
        EXPECT_EQ(src, (Image{1, 2, 3, 4}));
    }
}

TEST(CopyAndPad, WithoutPaddingItIsARowCopy) {
    const uint8_t o = kOld;
    for (Form form : kForms) {
        Image src{1, 2, 3, 9, 4, 5, 6, 9}, dst(10, kOld);
        form(3, 2, 4, src.data(), 5, dst.data(), 0, 0, 0, 0);
        EXPECT_EQ(dst, (Image{1, 2, 3, o, o, 4, 5, 6, o, o}));
    }
}

TEST(CopyAndPad, EachSideHasItsOwnPadding) {
    const uint8_t o = kOld;
    for (Form form : kForms) {
        Image src{1, 2, 3, 4, 5, 6}, dst(6 * 8, kOld);
        form(3, 2, 3, src.data(), 8, dst.data(), 1, 3, 2, 1);
        EXPECT_EQ(dst, (Image{1, 1, 2, 3, 3, 3, o, o,  //
                              1, 1, 2, 3, 3, 3, o, o,  //
                              1, 1, 2, 3, 3, 3, o, o,  //
                              1, 1, 2, 3, 3, 3, o, o,  //
                              4, 4, 5, 6, 6, 6, o, o,  //
                              4, 4, 5, 6, 6, 6, o, o}));
    }
}

TEST(CopyAndPad, OnePixelFillsTheFrame) {
    for (Form form : kForms) {
        Image src{7}, dst(7 * 6, kOld);
        form(1, 1, 1, src.data(), 6, dst.data(), 2, 3, 3, 3);
        EXPECT_EQ(dst, Image(42, 7));
    }
}

TEST(CopyAndPad, OneSideAtATime) {
    const std::pair<Pads, Image> cases[] = {{{2, 0, 0, 0}, {1, 1, 1, 2, 3, 3, 3, 4}},
                                            {{0, 0, 2, 0}, {1, 2, 2, 2, 3, 4, 4, 4}},
                                            {{0, 2, 0, 0}, {1, 2, 1, 2, 1, 2, 3, 4}},
                                            {{0, 0, 0, 2}, {1, 2, 3, 4, 3, 4, 3, 4}}};
    for (Form form : kForms)
        for (const auto& [pads, expected] : cases) {
            Image src{1, 2, 3, 4}, dst(8, kOld);
            form(2, 2, 2, src.data(), 2 + pads.left + pads.right, dst.data(), pads.left, pads.top,
                 pads.right, pads.bottom);
            EXPECT_EQ(dst, expected);
        }
}

TEST(CopyAndPad, AnImageWithoutColumnsPadsWithZero) {
    const uint8_t o = kOld;
    for (Form form : kForms) {
        Image dst(5 * 4, kOld);
        tqtest::GuardedBuffer nothing(0);
        form(0, 2, 1, nothing.data(), 4, dst.data(), 1, 1, 2, 2);
        EXPECT_EQ(dst, (Image{0, 0, 0, o, 0, 0, 0, o, 0, 0, 0, o, 0, 0, 0, o, 0, 0, 0, o}));
    }
}

TEST(CopyAndPad, AnImageWithoutRowsSpreadsTheRowThatStandsThere) {
    const struct {
        unsigned top, bottom;
        Image expected;
    } cases[] = {{1, 2, {3, 4, 3, 4, 3, 4}},
                 {0, 3, {1, 2, 1, 2, 1, 2}},
                 {3, 0, {5, 6, 5, 6, 5, 6}},
                 {2, 1, {5, 6, 5, 6, 5, 6}}};
    for (Form form : kForms)
        for (const auto& [top, bottom, expected] : cases)
            for (auto side : {tqtest::GuardedBuffer::kEnd, tqtest::GuardedBuffer::kStart}) {
                tqtest::GuardedBuffer dst(6, side), nothing(0);
                for (uint8_t i = 0; i < 6; ++i) dst.data()[i] = i + 1;
                form(2, 0, 2, nothing.data(), 2, dst.data(), 0, top, 0, bottom);
                EXPECT_EQ(Image(dst.data(), dst.data() + 6), expected)
                    << "top " << top << ", bottom " << bottom;
            }
}

TEST(CopyAndPad, AFrameOfNothingIsNotReached) {
    for (Form form : kForms)
        for (auto [width, height, left, top] :
             {std::tuple{0u, 0u, 0u, 0u}, {3u, 0u, 1u, 0u}, {0u, 3u, 0u, 2u}}) {
            tqtest::GuardedBuffer dst(0), nothing(0);
            form(width, height, 3, nothing.data(), 8, dst.data(), left, top, left, 0);
        }
}

// ---- Against the reference -----------------------------------------------------------------

constexpr Pads kPads[] = {{0, 0, 0, 0}, {1, 1, 1, 1},  {3, 0, 0, 0},  {0, 2, 0, 0}, {0, 0, 5, 0},
                          {0, 0, 0, 4}, {17, 3, 2, 1}, {1, 2, 16, 5}, {0, 1, 9, 0}, {33, 0, 0, 3}};

void ExpectEqualsReference(Form form, unsigned lastWidth) {
    tqtest::ImageStage stage(1);
    for (unsigned width = 0; width <= lastWidth; ++width)
        for (unsigned height = 0; height <= 5; ++height)
            for (const Pads& pads : kPads)
                for (unsigned more : {0, 1, 7}) {
                    const unsigned srcStride = width + more % 3;
                    const unsigned dstStride = pads.left + width + pads.right + more;
                    ASSERT_TRUE(stage.Equal(
                        [&](auto& src, auto& dst) {
                            tqref::MemcpyAndPad(width, height, srcStride, src, dstStride, dst,
                                                pads.left, pads.top, pads.right, pads.bottom);
                        },
                        [&](uint8_t* src, uint8_t* dst) {
                            form(width, height, srcStride, src, dstStride, dst, pads.left, pads.top,
                                 pads.right, pads.bottom);
                        }))
                        << width << " x " << height << ", strides " << srcStride << ", "
                        << dstStride << ", paddings " << pads.left << ", " << pads.top << ", "
                        << pads.right << ", " << pads.bottom;
                }
}

TEST(CopyAndPad, EqualsTheReference) { ExpectEqualsReference(IPL_MemcpyAndPad_C1R, 40); }

TEST(CopyAndPad, InBandsEqualsTheReference) {
    tqtest::Settings settings;
    for (unsigned processors : {1u, 3u, 16u}) {
        settings.UseProcessors(processors);
        ExpectEqualsReference(IPL_MemcpyAndPadMultiThread_C1R, 6);
        if (HasFatalFailure()) return;
    }
}

TEST(CopyAndPad, InBandsEqualsPlainAtEveryProcessorCount) {
    tqtest::Settings settings;
    const unsigned width = 23;
    for (unsigned height : {0u, 1u, 2u, 7u, 8u, 9u, 15u, 16u, 17u, 33u})
        for (const Pads& pads : {Pads{0, 0, 0, 0}, {2, 3, 4, 1}})
            for (unsigned more : {0u, 5u}) {
                const unsigned srcStride = width + more;
                const unsigned dstStride = pads.left + width + pads.right + more;
                const unsigned rows = pads.top + height + pads.bottom;
                tqtest::GuardedBuffer src(srcStride * height - (height != 0 ? more : 0));
                tqtest::GuardedBuffer dst(dstStride * rows - (rows != 0 ? more : 0));
                tqtest::FillHostile(src.data(), src.size(), height);
                auto run = [&](Form form) {
                    tqtest::FillHostile(dst.data(), dst.size(), height + 1000);
                    form(width, height, srcStride, src.data(), dstStride, dst.data(), pads.left,
                         pads.top, pads.right, pads.bottom);
                    return Image(dst.data(), dst.data() + dst.size());
                };
                const Image plain = run(IPL_MemcpyAndPad_C1R);
                for (unsigned processors = 1; processors <= 16; ++processors) {
                    settings.UseProcessors(processors);
                    ASSERT_EQ(run(IPL_MemcpyAndPadMultiThread_C1R), plain)
                        << processors << " processors, height " << height << ", padded by " << more;
                }
            }
}

}  // namespace
