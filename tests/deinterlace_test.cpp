// The deinterlacer: rows known by hand, the whole memory against the reference, sizes below two.

#include <gtest/gtest.h>
#include <tqipl/filter.h>

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "reference/deinterlace_reference.h"
#include "support/filter_check.h"

namespace {

using tqtest::BlockStage;
using Rows = std::vector<uint8_t>;

struct Frames {
    Rows first, second;
};

// Fields and frames one pixel wide.
Frames DeinterlaceRows(Rows field0, Rows field1) {
    const int height = static_cast<int>(field0.size());
    Frames frames{Rows(2 * height, 99), Rows(2 * height, 99)};
    IPL_Deinterlace_8u_C1R(1, height, 1, field0.data(), 1, field1.data(), 1, frames.first.data(), 1,
                           frames.second.data());
    return frames;
}

TEST(Deinterlace, EachFrameKeepsTheRowsOfItsFieldAndInterpolatesTheOthers) {
    const Frames frames = DeinterlaceRows({10, 20, 40, 80}, {100, 110, 130, 200});
    EXPECT_EQ(frames.first, (Rows{10, 15, 20, 30, 40, 60, 80, 80}));
    EXPECT_EQ(frames.second, (Rows{100, 100, 105, 110, 120, 130, 165, 200}));
}

TEST(Deinterlace, AFieldOfTwoRowsHasTheFirstAndTheLastLineOfTheTableOnly) {
    const Frames frames = DeinterlaceRows({10, 20}, {100, 200});
    EXPECT_EQ(frames.first, (Rows{10, 15, 20, 20}));
    EXPECT_EQ(frames.second, (Rows{100, 100, 150, 200}));
}

TEST(Deinterlace, AFieldOfThreeRowsHasEachLineOfTheTable) {
    const Frames frames = DeinterlaceRows({0, 100, 7}, {50, 60, 255});
    EXPECT_EQ(frames.first, (Rows{0, 50, 100, 54, 7, 7}));
    EXPECT_EQ(frames.second, (Rows{50, 50, 55, 60, 158, 255}));
}

TEST(Deinterlace, TheMeanRoundsUp) {
    EXPECT_EQ(DeinterlaceRows({10, 11}, {0, 0}).first, (Rows{10, 11, 11, 11}));
    EXPECT_EQ(DeinterlaceRows({0, 0}, {11, 10}).second, (Rows{11, 11, 11, 10}));
    EXPECT_EQ(DeinterlaceRows({254, 255}, {0, 0}).first, (Rows{254, 255, 255, 255}));
    EXPECT_EQ(DeinterlaceRows({0, 1}, {0, 0}).first, (Rows{0, 1, 1, 1}));
}

TEST(Deinterlace, TheMeanOfAnyTwoBytesIsExact) {
    // Row a of the first field beside the value b, in column b.
    Rows field0(2 * 256), field1(2 * 256), frame0(4 * 256), frame1(4 * 256);
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            field0[b] = field1[b] = static_cast<uint8_t>(a);
            field0[256 + b] = field1[256 + b] = static_cast<uint8_t>(b);
        }
        IPL_Deinterlace_8u_C1R(256, 2, 256, field0.data(), 256, field1.data(), 256, frame0.data(),
                               256, frame1.data());
        for (int b = 0; b < 256; ++b) {
            ASSERT_EQ(frame0[256 + b], (a + b + 1) / 2) << a << ", " << b;
            ASSERT_EQ(frame1[512 + b], (a + b + 1) / 2) << a << ", " << b;
        }
    }
}

TEST(Deinterlace, EachFrameComesFromOneFieldOnly) {
    const Frames dark = DeinterlaceRows({1, 2, 3, 4}, {0, 0, 0, 0});
    const Frames bright = DeinterlaceRows({1, 2, 3, 4}, {255, 254, 253, 252});
    EXPECT_EQ(dark.first, bright.first);
    EXPECT_EQ(DeinterlaceRows({9, 9, 9, 9}, {1, 2, 3, 4}).second,
              DeinterlaceRows({0, 0, 0, 0}, {1, 2, 3, 4}).second);
}

struct Sizes {
    int width, height;
    int strides[4];
};

template <class Reference> void Model(BlockStage& stage, const Sizes& sizes, Reference reference) {
    const int* strides = sizes.strides;
    stage.Model([&](tqref::Bytes* images) {
        reference(sizes.width, sizes.height, strides[0], images[0], strides[1], images[1],
                  strides[2], images[2], strides[3], images[3]);
    });
}

void Deinterlace(const Sizes& sizes, uint8_t* const* images) {
    const int* strides = sizes.strides;
    IPL_Deinterlace_8u_C1R(sizes.width, sizes.height, strides[0], images[0], strides[1], images[1],
                           strides[2], images[2], strides[3], images[3]);
}

TEST(Deinterlace, EqualsTheReferenceAtAllSizesAndStrides) {
    BlockStage stage(4, 2048, 1);
    for (int width = 1; width <= 70; ++width)
        for (int height : {2, 3, 4, 7}) {
            const int w = width;
            const Sizes all[] = {{w, height, {w, w, w, w}},
                                 {w, height, {w + 1, w + 2, w + 3, w + 4}},
                                 {w, height, {2 * w, 2 * w, w, w}},
                                 {w, height, {-w, w + 7, w, -w - 1}},
                                 {w, height, {w + 3, -w - 3, -w, w + 9}}};
            for (const Sizes& sizes : all) {
                Model(stage, sizes, tqref::Deinterlace);
                ASSERT_TRUE(tqtest::CheckAtEveryLevel(
                    stage, [&](uint8_t* const* images) { Deinterlace(sizes, images); }))
                    << width << " x " << height << ", first stride " << sizes.strides[0];
            }
        }
}

TEST(Deinterlace, TheFieldsMayBeTheRowsOfOneInterlacedFrame) {
    const int width = 37, height = 6;
    BlockStage stage(3, 2048, 2);
    auto fields = [&](auto& interlaced) { return std::pair{&interlaced[0], &interlaced[width]}; };
    stage.Model([&](tqref::Bytes* images) {
        auto [field0, field1] = fields(images[0]);
        // What a field's last row stands in ends the frame.
        static_cast<void>(images[0][2 * width * height - 1]);
        tqref::Bytes even(field0), odd(field1);
        tqref::Deinterlace(width, height, 2 * width, even, 2 * width, odd, width, images[1], width,
                           images[2]);
    });
    EXPECT_TRUE(tqtest::CheckAtEveryLevel(stage, [&](uint8_t* const* images) {
        auto [field0, field1] = fields(images[0]);
        IPL_Deinterlace_8u_C1R(width, height, 2 * width, field0, 2 * width, field1, width,
                               images[1], width, images[2]);
    }));
}

// The row before the only one of the second field does not exist: row 0 of the second frame, which
// would be its mean, is the only one that is open.
TEST(Deinterlace, AFieldOfOneRowIsReadAndWrittenInsideItsMemory) {
    BlockStage stage(4, 512, 3);
    for (int width : {1, 5, 16, 33, 64}) {
        const Sizes sizes{width, 1, {width, width, width + 2, width + 3}};
        Model(stage, sizes,
              [](int w, int, int, tqref::Bytes& field0, int, tqref::Bytes& field1, int stride0,
                 tqref::Bytes& frame0, int stride1, tqref::Bytes& frame1) {
                  for (int x = 0; x < w; ++x) {
                      frame0[x] = frame0[stride0 + x] = field0[x];
                      frame1[x] = 0;
                      frame1[stride1 + x] = field1[x];
                  }
              });
        EXPECT_TRUE(tqtest::CheckAtEveryLevel(stage, [&](uint8_t* const* images) {
            Deinterlace(sizes, images);
            for (int x = 0; x < width; ++x) images[3][x] = 0;
        })) << width;
    }
}

TEST(Deinterlace, SizesBelowOneWriteNothing) {
    constexpr int kLeast = std::numeric_limits<int>::min();
    BlockStage stage(4, 64, 4);
    const std::pair<int, int> all[] = {{0, 0},  {0, 1},  {0, 2},  {0, 5},      {-1, 2},
                                       {-9, 3}, {4, 0},  {4, -1}, {4, -7},     {kLeast, 2},
                                       {-1, 1}, {-3, 0}, {0, -2}, {4, kLeast}, {kLeast, kLeast}};
    for (auto [width, height] : all) {
        const Sizes sizes{width, height, {4, 4, 4, 4}};
        stage.Model([](tqref::Bytes*) {});
        EXPECT_TRUE(tqtest::CheckAtEveryLevel(
            stage, [&](uint8_t* const* images) { Deinterlace(sizes, images); }))
            << width << " x " << height;
    }
}

}  // namespace
