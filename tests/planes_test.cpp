// Split and build of colour planes: bytes known by hand, every format against the reference, short
// arrays, bands, tasks.

#include <gtest/gtest.h>
#include <tqipl/planes.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "color/planes_tasks.h"
#include "reference/planes_reference.h"
#include "support/allocation_counter.h"
#include "support/block_stage.h"
#include "support/image_stage.h"
#include "support/settings.h"

namespace {

using Bytes = std::vector<uint8_t>;
using tqtest::BlockStage;
using tqtest::Settings;
using StrideArray = CTQArray<int, int>;
using PlaneArray = CTQArray<unsigned char*, unsigned char*>;

void FillArray(StrideArray& array, const std::vector<int>& strides) {
    for (int stride : strides) array.Add(stride);
}
void FillArray(PlaneArray& array, const std::vector<uint8_t*>& planes) {
    for (uint8_t* plane : planes) array.Add(plane);
}
template <class Array, class List> bool Holds(Array& array, const List& list) {
    if (array.GetSize() != static_cast<int64_t>(list.size())) return false;
    for (size_t i = 0; i < list.size(); ++i)
        if (array.m_pData[i] != list[i]) return false;
    return true;
}

enum Form { kPlain, kMultiThread };

void Call(tqref::PlaneWork work, Form form, TQ_COLOR_FORMAT format, int width, int height,
          int stride, uint8_t* image, StrideArray& strides, PlaneArray& planes) {
    if (work == tqref::kSplit)
        (form == kPlain ? IPL_SplitColor : IPL_SplitColorMultiThread)(format, width, height, stride,
                                                                      image, strides, planes);
    else
        (form == kPlain ? IPL_BuildColor : IPL_BuildColorMultiThread)(
            format, width, height, strides, planes, stride, image);
}

// Calls a form with these entries; that it leaves the caller's arrays alone is checked.
void CallWith(tqref::PlaneWork work, Form form, TQ_COLOR_FORMAT format, int width, int height,
              int stride, uint8_t* image, const std::vector<int>& strides,
              const std::vector<uint8_t*>& planes) {
    StrideArray strideArray;
    PlaneArray planeArray;
    FillArray(strideArray, strides);
    FillArray(planeArray, planes);
    const void *strideData = strideArray.m_pData, *planeData = planeArray.m_pData;
    Call(work, form, format, width, height, stride, image, strideArray, planeArray);
    EXPECT_EQ(strideArray.m_pData, strideData);
    EXPECT_EQ(planeArray.m_pData, planeData);
    EXPECT_TRUE(Holds(strideArray, strides));
    EXPECT_TRUE(Holds(planeArray, planes));
}

// The planes, each of `bytes` bytes, of a dense image.
std::vector<Bytes> Split(TQ_COLOR_FORMAT format, int width, int height, Bytes image, int stride,
                         const std::vector<int>& strides, size_t planeCount, size_t bytes,
                         Form form = kPlain) {
    std::vector<Bytes> planes(planeCount, Bytes(bytes, 99));
    std::vector<uint8_t*> pointers;
    for (Bytes& plane : planes) pointers.push_back(plane.data());
    CallWith(tqref::kSplit, form, format, width, height, stride, image.data(), strides, pointers);
    return planes;
}
Bytes Build(TQ_COLOR_FORMAT format, int width, int height, std::vector<Bytes> planes,
            const std::vector<int>& strides, int stride, size_t bytes, Form form = kPlain) {
    Bytes image(bytes, 99);
    std::vector<uint8_t*> pointers;
    for (Bytes& plane : planes) pointers.push_back(plane.data());
    CallWith(tqref::kBuild, form, format, width, height, stride, image.data(), strides, pointers);
    return image;
}

using Planes = std::vector<Bytes>;

TEST(Planes, ArgbAndBgr24FollowTheBytesInMemory) {
    for (Form form : {kPlain, kMultiThread}) {
        const Bytes argb = {1, 2, 3, 4, 5, 6, 7, 8};
        EXPECT_EQ(Split(TQ_COLOR_ARGB, 2, 1, argb, 8, {2, 2, 2, 2}, 4, 3, form),
                  (Planes{{1, 5, 99}, {2, 6, 99}, {3, 7, 99}, {4, 8, 99}}));
        EXPECT_EQ(Split(TQ_COLOR_ARGB, 2, 1, argb, 8, {2, 2, 2}, 3, 3, form),
                  (Planes{{1, 5, 99}, {2, 6, 99}, {3, 7, 99}}));
        EXPECT_EQ(Split(TQ_COLOR_BGR24, 2, 1, {1, 2, 3, 4, 5, 6}, 6, {2, 2, 2}, 3, 3, form),
                  (Planes{{1, 4, 99}, {2, 5, 99}, {3, 6, 99}}));
    }
}

TEST(Planes, AyuvGivesYThenUThenVThenAlpha) {
    for (Form form : {kPlain, kMultiThread}) {
        const Bytes vuya = {1, 2, 3, 4, 5, 6, 7, 8};
        EXPECT_EQ(Split(TQ_COLOR_AYUV, 2, 1, vuya, 8, {2, 2, 2, 2}, 4, 3, form),
                  (Planes{{3, 7, 99}, {2, 6, 99}, {1, 5, 99}, {4, 8, 99}}));
        EXPECT_EQ(Split(TQ_COLOR_AYUV, 2, 1, vuya, 8, {2, 2, 2}, 3, 3, form),
                  (Planes{{3, 7, 99}, {2, 6, 99}, {1, 5, 99}}));
    }
}

TEST(Planes, PackedPairsGiveTwoLumasAndOneOfEachChroma) {
    for (Form form : {kPlain, kMultiThread}) {
        const Bytes packed = {1, 2, 3, 4, 5, 6, 7, 8};
        EXPECT_EQ(Split(TQ_COLOR_YUYV, 4, 1, packed, 8, {4, 2, 2}, 3, 5, form),
                  (Planes{{1, 3, 5, 7, 99}, {2, 6, 99, 99, 99}, {4, 8, 99, 99, 99}}));
        EXPECT_EQ(Split(TQ_COLOR_UYVY, 4, 1, packed, 8, {4, 2, 2}, 3, 5, form),
                  (Planes{{2, 4, 6, 8, 99}, {1, 5, 99, 99, 99}, {3, 7, 99, 99, 99}}));
        // The last column of an odd width stays out.
        EXPECT_EQ(Split(TQ_COLOR_YUYV, 3, 1, packed, 8, {4, 2, 2}, 3, 3, form),
                  (Planes{{1, 3, 99}, {2, 99, 99}, {4, 99, 99}}));
    }
}

TEST(Planes, BuildPutsTheBytesBack) {
    for (Form form : {kPlain, kMultiThread}) {
        const Planes four = {{10, 11}, {20, 21}, {30, 31}, {40, 41}};
        const Planes three = {{10, 11}, {20, 21}, {30, 31}};
        EXPECT_EQ(Build(TQ_COLOR_ARGB, 2, 1, four, {2, 2, 2, 2}, 8, 9, form),
                  (Bytes{10, 20, 30, 40, 11, 21, 31, 41, 99}));
        EXPECT_EQ(Build(TQ_COLOR_AYUV, 2, 1, four, {2, 2, 2, 2}, 8, 9, form),
                  (Bytes{30, 20, 10, 40, 31, 21, 11, 41, 99}));
        // Opaque without a plane of alpha.
        EXPECT_EQ(Build(TQ_COLOR_ARGB, 2, 1, three, {2, 2, 2}, 8, 9, form),
                  (Bytes{10, 20, 30, 255, 11, 21, 31, 255, 99}));
        EXPECT_EQ(Build(TQ_COLOR_AYUV, 2, 1, three, {2, 2, 2}, 8, 9, form),
                  (Bytes{30, 20, 10, 255, 31, 21, 11, 255, 99}));
        EXPECT_EQ(Build(TQ_COLOR_BGR24, 2, 1, three, {2, 2, 2}, 6, 7, form),
                  (Bytes{10, 20, 30, 11, 21, 31, 99}));
        EXPECT_EQ(Build(TQ_COLOR_YUYV, 2, 1, three, {2, 1, 1}, 4, 5, form),
                  (Bytes{10, 20, 11, 30, 99}));
        EXPECT_EQ(Build(TQ_COLOR_UYVY, 2, 1, three, {2, 1, 1}, 4, 5, form),
                  (Bytes{20, 10, 30, 11, 99}));
        // The last column of an odd width is not written.
        EXPECT_EQ(Build(TQ_COLOR_YUYV, 3, 1, {{1, 2, 3}, {4, 5}, {6, 7}}, {3, 2, 2}, 8, 8, form),
                  (Bytes{1, 4, 2, 6, 99, 99, 99, 99}));
    }
}

TEST(Planes, EachPlaneHasAStrideOfItsOwn) {
    Settings settings;
    for (Form form : {kPlain, kMultiThread})
        for (unsigned processors : {1u, 2u, 3u}) {
            settings.UseProcessors(processors);
            // One pixel a row, rows 5 bytes apart.
            const Bytes argb = {1, 2, 3, 4, 0, 5, 6, 7, 8, 0, 9, 10, 11, 12};
            EXPECT_EQ(Split(TQ_COLOR_ARGB, 1, 3, argb, 5, {1, 2, 3, 1}, 4, 7, form),
                      (Planes{{1, 5, 9, 99, 99, 99, 99},
                              {2, 99, 6, 99, 10, 99, 99},
                              {3, 99, 99, 7, 99, 99, 11},
                              {4, 8, 12, 99, 99, 99, 99}}));
        }
}

// A host's mistake; its rows are written from the first to the last in every form.
TEST(Planes, OfRowsAtOnePlaceTheLastStays) {
    Settings settings;
    for (Form form : {kPlain, kMultiThread})
        for (unsigned processors : {1u, 2u, 3u, 16u}) {
            settings.UseProcessors(processors);
            const Bytes argb = {1, 2, 3, 4, 0, 5, 6, 7, 8, 0, 9, 10, 11, 12};
            EXPECT_EQ(Split(TQ_COLOR_ARGB, 1, 3, argb, 5, {1, 2, 3, 0}, 4, 7, form),
                      (Planes{{1, 5, 9, 99, 99, 99, 99},
                              {2, 99, 6, 99, 10, 99, 99},
                              {3, 99, 99, 7, 99, 99, 11},
                              {12, 99, 99, 99, 99, 99, 99}}));
            const Planes planes = {{1, 5, 9}, {2, 6, 10}, {3, 7, 11}, {4, 8, 12}};
            EXPECT_EQ(Build(TQ_COLOR_ARGB, 1, 3, planes, {1, 1, 1, 1}, 0, 6, form),
                      (Bytes{9, 10, 11, 12, 99, 99}));
            // The second luma of a row lies where the first of the next does.
            EXPECT_EQ(Split(TQ_COLOR_YUYV, 2, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, 4,
                            {1, 1, 0}, 3, 4, form),
                      (Planes{{1, 5, 9, 11}, {2, 6, 10, 99}, {12, 99, 99, 99}}));
        }

    // Rows of one value each, from 200 down to 137, so many that bands take their time.
    constexpr int kWidth = 20000, kStride = 4 * kWidth;
    Bytes rows;
    for (int value = 200; value >= 137; --value)
        rows.insert(rows.end(), kStride, static_cast<uint8_t>(value));
    settings.UseProcessors(16);
    for (int round = 0; round < 10; ++round) {
        EXPECT_EQ(
            Split(TQ_COLOR_ARGB, kWidth, 64, rows, kStride, {0, 0, 0, 0}, 4, kWidth, kMultiThread),
            Planes(4, Bytes(kWidth, 137)));
        EXPECT_EQ(Build(TQ_COLOR_ARGB, kWidth, 64, Planes(4, rows),
                        {kStride, kStride, kStride, kStride}, 0, kStride, kMultiThread),
                  Bytes(kStride, 137));
    }
}

TEST(Planes, ArgbAndAyuvNeedThreeOrFourStrides) {
    Settings settings;
    for (TQ_COLOR_FORMAT format : {TQ_COLOR_ARGB, TQ_COLOR_AYUV})
        for (size_t strides : {0, 1, 2, 5, 6})
            for (size_t planes : {3, 4, 5})
                for (unsigned processors : {1u, 2u, 8u})
                    for (Form form : {kPlain, kMultiThread}) {
                        settings.UseProcessors(processors);
                        EXPECT_EQ(Split(format, 2, 1, Bytes(8, 1), 8, std::vector<int>(strides, 2),
                                        planes, 3, form),
                                  Planes(planes, Bytes(3, 99)))
                            << strides;
                        EXPECT_EQ(Build(format, 2, 1, Planes(planes, Bytes(3, 1)),
                                        std::vector<int>(strides, 2), 8, 8, form),
                                  Bytes(8, 99))
                            << strides;
                    }
}

TEST(Planes, TheStridesCountDecidesAndNotThePlanes) {
    const Bytes argb = {1, 2, 3, 4};
    // Four planes and three strides: no alpha.
    EXPECT_EQ(Split(TQ_COLOR_ARGB, 1, 1, argb, 4, {1, 1, 1}, 4, 1), (Planes{{1}, {2}, {3}, {99}}));
    EXPECT_EQ(Build(TQ_COLOR_ARGB, 1, 1, {{1}, {2}, {3}, {4}}, {1, 1, 1}, 4, 4),
              (Bytes{1, 2, 3, 255}));
    // Three planes and four strides: alpha goes over the last plane, and comes from it.
    EXPECT_EQ(Split(TQ_COLOR_ARGB, 1, 1, argb, 4, {1, 1, 1, 1}, 3, 1), (Planes{{1}, {2}, {4}}));
    EXPECT_EQ(Build(TQ_COLOR_ARGB, 1, 1, {{1}, {2}, {3}}, {1, 1, 1, 1}, 4, 4), (Bytes{1, 2, 3, 3}));
}

TEST(Planes, BgrAndPairsTakeAnyNumberOfStrides) {
    Settings settings;
    for (Form form : {kPlain, kMultiThread})
        for (unsigned processors : {1u, 2u, 8u})
            for (size_t strides : {1, 2, 3, 4, 7}) {
                settings.UseProcessors(processors);
                EXPECT_EQ(Split(TQ_COLOR_BGR24, 1, 2, {1, 2, 3, 4, 5, 6}, 3,
                                std::vector<int>(strides, 1), 3, 2, form),
                          (Planes{{1, 4}, {2, 5}, {3, 6}}))
                    << strides;
                EXPECT_EQ(Split(TQ_COLOR_YUYV, 2, 2, {1, 2, 3, 4, 5, 6, 7, 8}, 4,
                                std::vector<int>(strides, 2), 3, 4, form),
                          (Planes{{1, 3, 5, 7}, {2, 99, 6, 99}, {4, 99, 8, 99}}))
                    << strides;
            }
}

TEST(Planes, AnEmptyArrayOfStridesGrowsInAPlainForm) {
    // All rows fall on the first: a stride of 0.
    for (TQ_COLOR_FORMAT format : {TQ_COLOR_BGR24, TQ_COLOR_YUYV, TQ_COLOR_UYVY})
        for (tqref::PlaneWork work : {tqref::kSplit, tqref::kBuild}) {
            Bytes image = {1, 2, 3, 4, 5, 6, 7, 8}, plane[3] = {{10, 11}, {20, 21}, {30, 31}};
            StrideArray strides;
            PlaneArray planes;
            FillArray(planes, {plane[0].data(), plane[1].data(), plane[2].data()});
            Call(work, kPlain, format, format == TQ_COLOR_BGR24 ? 1 : 2, 2, 4, image.data(),
                 strides, planes);
            EXPECT_TRUE(Holds(strides, std::vector<int>{0}));
            if (format == TQ_COLOR_BGR24 && work == tqref::kSplit) {
                EXPECT_EQ(plane[0], (Bytes{5, 11}));
                EXPECT_EQ(plane[1], (Bytes{6, 21}));
                EXPECT_EQ(plane[2], (Bytes{7, 31}));
            } else if (format == TQ_COLOR_BGR24) {
                EXPECT_EQ(image, (Bytes{10, 20, 30, 4, 10, 20, 30, 8}));
            } else if (format == TQ_COLOR_YUYV && work == tqref::kBuild) {
                EXPECT_EQ(image, (Bytes{10, 20, 11, 30, 10, 20, 11, 30}));
            }
        }
}

TEST(Planes, AnEmptyArrayOfStridesStaysEmptyInAMultiThreadForm) {
    Settings settings;
    for (unsigned processors : {1u, 2u, 3u, 8u}) {
        settings.UseProcessors(processors);
        Bytes image(8), plane[3] = {{10}, {20}, {30}};
        StrideArray strides;
        PlaneArray planes;
        FillArray(planes, {plane[0].data(), plane[1].data(), plane[2].data()});
        IPL_BuildColorMultiThread(TQ_COLOR_BGR24, 1, 2, strides, planes, 4, image.data());
        EXPECT_EQ(image, (Bytes{10, 20, 30, 0, 10, 20, 30, 0}));
        EXPECT_EQ(strides.m_pData, nullptr);
        EXPECT_EQ(strides.GetSize(), 0);
        // Nor is a plane array made.
        PlaneArray none;
        IPL_BuildColorMultiThread(TQ_COLOR_BGR24, 0, 0, strides, none, 4, image.data());
        EXPECT_EQ(none.m_pData, nullptr);
    }
}

TEST(Planes, OtherFormatsDoNothing) {
    Settings settings;
    for (TQ_COLOR_FORMAT format : tqtest::kFormats) {
        if (tqref::PlaneLayoutOf(format, 4).groupBytes != 0) continue;
        for (unsigned processors : {1u, 2u, 8u})
            for (Form form : {kPlain, kMultiThread})
                for (size_t strides : {3, 4}) {
                    settings.UseProcessors(processors);
                    EXPECT_EQ(Split(format, 2, 1, Bytes(8, 1), 8, std::vector<int>(strides, 2),
                                    strides, 3, form),
                              Planes(strides, Bytes(3, 99)))
                        << format;
                    EXPECT_EQ(Build(format, 2, 1, Planes(strides, Bytes(3, 1)),
                                    std::vector<int>(strides, 2), 8, 8, form),
                              Bytes(8, 99))
                        << format;
                }
    }
}

TEST(Planes, SizesBelowOneTouchNothing) {
    Settings settings;
    BlockStage stage(2, 256, 1);
    stage.Model([](tqref::Bytes*) {});
    for (TQ_COLOR_FORMAT format :
         {TQ_COLOR_ARGB, TQ_COLOR_BGR24, TQ_COLOR_AYUV, TQ_COLOR_YUYV, TQ_COLOR_UYVY})
        for (unsigned processors : {1u, 2u, 8u}) {
            settings.UseProcessors(processors);
            std::vector<std::pair<int, int>> sizes = {{0, 1},  {0, 9},  {4, 0},  {4, -1},
                                                      {4, -9}, {-1, 1}, {-4, 3}, {-70, -2}};
            if (format == TQ_COLOR_YUYV || format == TQ_COLOR_UYVY)
                sizes.insert(sizes.end(), {{1, 1}, {1, 9}});
            for (auto size : sizes) {
                const int width = size.first, height = size.second;
                for (Form form : {kPlain, kMultiThread})
                    for (tqref::PlaneWork work : {tqref::kSplit, tqref::kBuild})
                        EXPECT_TRUE(stage.Check([&](uint8_t* const* image) {
                            CallWith(work, form, format, width, height, 16, image[0], {8, 8, 8},
                                     {image[1], image[1], image[1]});
                        })) << format
                            << ", " << width << " x " << height;
            }
        }
}

TEST(Planes, NoPointerIsUsedWhereThereIsNoRow) {
    Settings settings;
    for (unsigned processors : {1u, 2u})
        for (Form form : {kPlain, kMultiThread})
            for (tqref::PlaneWork work : {tqref::kSplit, tqref::kBuild})
                for (int height : {0, -5}) {
                    settings.UseProcessors(processors);
                    CallWith(work, form, TQ_COLOR_ARGB, 4, height, 16, nullptr, {4, 4, 4},
                             {nullptr, nullptr, nullptr});
                }
}

TEST(Planes, ThereAndBackKeepsEveryByteButAlphaOfThreePlanes) {
    Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (TQ_COLOR_FORMAT format : {TQ_COLOR_ARGB, TQ_COLOR_AYUV})
            for (int count : {3, 4})
                for (int width : {1, 5, 40}) {
                    Bytes image(4 * width * 2), expected;
                    tqtest::FillHostile(image.data(), image.size(), width);
                    expected = image;
                    if (count == 3)
                        for (size_t i = 3; i < expected.size(); i += 4) expected[i] = 255;
                    const std::vector<int> strides(count, width);
                    const Planes planes =
                        Split(format, width, 2, image, 4 * width, strides, count, 2 * width);
                    EXPECT_EQ(Build(format, width, 2, planes, strides, 4 * width, expected.size()),
                              expected);
                }
    }
}

constexpr TQ_COLOR_FORMAT kPlaneFormats[] = {TQ_COLOR_ARGB, TQ_COLOR_BGR24, TQ_COLOR_AYUV,
                                             TQ_COLOR_YUYV, TQ_COLOR_UYVY};

// Planes in blocks of their own, one behind the other in the reference's eyes.
struct SeparateBlocks {
    static constexpr int64_t kApart = int64_t{1} << 32;
    tqref::Bytes* blocks;
    uint8_t& operator[](int64_t offset) {
        const int64_t block = (offset + kApart / 2) / kApart;
        return blocks[block][offset - block * kApart];
    }
};

struct Case {
    tqref::PlaneWork work;
    TQ_COLOR_FORMAT format;
    int count;
};
std::vector<Case> Cases() {
    std::vector<Case> cases;
    for (tqref::PlaneWork work : {tqref::kSplit, tqref::kBuild})
        for (TQ_COLOR_FORMAT format : kPlaneFormats)
            for (int count : {3, 4}) cases.push_back({work, format, count});
    return cases;
}

// Some paddings, some of them upwards.
std::vector<int> PlaneStrides(int count, int width, int variant) {
    std::vector<int> strides;
    for (int i = 0; i < count; ++i) {
        const int stride = width + (variant + i) % 4;
        strides.push_back((variant * 5 + i * 3) % 4 == 1 ? -stride : stride);
    }
    return strides;
}

// Block 0 is the image, 1 to 4 are the planes.
void ModelSeparatePlanes(BlockStage& stage, const Case& form, int width, int height, int stride,
                         const std::vector<int>& strides) {
    stage.Model([&](tqref::Bytes* blocks) {
        SeparateBlocks memory{blocks + 1};
        std::vector<int64_t> planes;
        for (int i = 0; i < form.count; ++i) planes.push_back(i * SeparateBlocks::kApart);
        tqref::PlanesInBands(form.work, 1, form.format, width, height, stride, blocks[0], strides,
                             planes, memory);
    });
}

// form(uint8_t* const* blocks) for the stage.
auto WithSeparatePlanes(const Case& form, Form kind, int width, int height, int stride,
                        const std::vector<int>& strides) {
    return [=](uint8_t* const* blocks) {
        CallWith(form.work, kind, form.format, width, height, stride, blocks[0], strides,
                 {blocks + 1, blocks + 1 + form.count});
    };
}

int ImageStride(const Case& form, int width, int variant) {
    const int pixel = form.format == TQ_COLOR_BGR24 ? 3 : form.format < TQ_COLOR_YUYV ? 4 : 2;
    const int stride = pixel * width + variant % 3;
    return variant % 2 == 1 ? -stride : stride;
}

TEST(Planes, EveryFormEqualsItsReference) {
    Settings settings;
    BlockStage stage(5, 2048, 2);
    for (const Case& form : Cases())
        for (int width = 1; width <= 70; ++width)
            for (int height = 1; height <= 5; ++height) {
                const int variant = width + 3 * height, stride = ImageStride(form, width, variant);
                const std::vector<int> strides = PlaneStrides(form.count, width, variant);
                ModelSeparatePlanes(stage, form, width, height, stride, strides);
                for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                    settings.Use(level);
                    ASSERT_TRUE(stage.Check(
                        WithSeparatePlanes(form, kPlain, width, height, stride, strides)))
                        << (form.work == tqref::kSplit ? "split " : "build ") << form.format
                        << " and " << form.count << " planes, " << width << " x " << height
                        << ", level " << tq::IsaLevelName(level);
                }
            }
}

TEST(Planes, BandsEqualTheReferenceAtEveryProcessorCount) {
    Settings settings;
    BlockStage stage(5, 6144, 3);
    for (const Case& form : Cases())
        for (int width : {1, 19, 36})
            for (int height : {-3, 0, 1, 2, 7, 8, 9, 16, 17, 33}) {
                const int variant = width + 3 * height + 9,
                          stride = ImageStride(form, width, variant);
                const std::vector<int> strides = PlaneStrides(form.count, width, variant);
                ModelSeparatePlanes(stage, form, width, height, stride, strides);
                for (unsigned processors = 1; processors <= 16; ++processors) {
                    settings.UseProcessors(processors);
                    ASSERT_TRUE(stage.CheckAtGuards(
                        WithSeparatePlanes(form, kMultiThread, width, height, stride, strides)))
                        << (form.work == tqref::kSplit ? "split " : "build ") << form.format
                        << " and " << form.count << " planes, " << width << " x " << height << ", "
                        << processors << " processors";
                }
            }
}

// One block holds all planes; the arrays have 1 to 4 entries each.
void ExpectShortArrays(Form kind, const std::vector<int>& widths, const std::vector<int>& heights,
                       const std::vector<unsigned>& processorCounts) {
    Settings settings;
    BlockStage stage(2, 8192, 4);
    for (const Case& form : Cases()) {
        const bool any = form.format != TQ_COLOR_ARGB && form.format != TQ_COLOR_AYUV;
        for (int strideCount = any ? 1 : form.count; strideCount <= form.count; ++strideCount)
            for (int planeCount = 1; planeCount <= 4; ++planeCount)
                for (int width : widths)
                    for (int height : heights) {
                        // Rows of all planes leave room for each other: bands write places of
                        // their own.
                        const int rowBytes = 4 * width + 4;
                        std::vector<int> strides(strideCount, rowBytes);
                        // What is only read may meet: a short list of planes moves from band to
                        // band by the stride of its own index.
                        for (int i = 0; form.work == tqref::kBuild && i < strideCount; ++i)
                            strides[i] += 3 * i;
                        std::vector<int64_t> offsets;
                        for (int i = 0; i < planeCount; ++i)
                            offsets.push_back((width + 1) * ((i + width) % 4));
                        const int stride = 4 * width + 1;
                        for (unsigned processors : processorCounts) {
                            settings.UseProcessors(processors);
                            stage.Model([&](tqref::Bytes* blocks) {
                                tqref::PlanesInBands(form.work, kind == kPlain ? 1 : processors,
                                                     form.format, width, height, stride, blocks[0],
                                                     strides, offsets, blocks[1]);
                            });
                            for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
                                settings.Use(level);
                                ASSERT_TRUE(stage.Check([&](uint8_t* const* blocks) {
                                    std::vector<uint8_t*> planes;
                                    for (int64_t offset : offsets)
                                        planes.push_back(blocks[1] + offset);
                                    CallWith(form.work, kind, form.format, width, height, stride,
                                             blocks[0], strides, planes);
                                })) << (form.work == tqref::kSplit ? "split " : "build ")
                                    << form.format << ", " << strideCount << " strides and "
                                    << planeCount << " planes, " << width << " x " << height << ", "
                                    << processors << " processors, level "
                                    << tq::IsaLevelName(level);
                            }
                        }
                    }
    }
}

TEST(Planes, ShortArraysRepeatTheirLastEntry) {
    std::vector<int> widths;
    for (int width = 1; width <= 40; ++width) widths.push_back(width);
    ExpectShortArrays(kPlain, widths, {3}, {2});
}

TEST(Planes, ShortArraysRepeatTheirLastEntryInBands) {
    ExpectShortArrays(kMultiThread, {1, 18, 37}, {1, 9}, {1, 2, 5});
}

TEST(Planes, ShortArraysByHand) {
    // One plane: of each pixel its last byte stays; of pairs V over U over Y.
    EXPECT_EQ(Split(TQ_COLOR_BGR24, 2, 1, {1, 2, 3, 4, 5, 6}, 6, {2}, 1, 3), (Planes{{3, 6, 99}}));
    EXPECT_EQ(Split(TQ_COLOR_ARGB, 2, 1, {1, 2, 3, 4, 5, 6, 7, 8}, 8, {2, 2, 2, 2}, 1, 3),
              (Planes{{4, 8, 99}}));
    // Lumas 1, 3, 5, 7; then of the second pair U and V over the byte of the first pair's Y1.
    EXPECT_EQ(Split(TQ_COLOR_YUYV, 4, 1, {1, 2, 3, 4, 5, 6, 7, 8}, 8, {4}, 1, 5),
              (Planes{{4, 8, 5, 7, 99}}));
    // Two planes: the chroma shares one.
    EXPECT_EQ(Split(TQ_COLOR_YUYV, 4, 1, {1, 2, 3, 4, 5, 6, 7, 8}, 8, {4, 2}, 2, 5),
              (Planes{{1, 3, 5, 7, 99}, {4, 8, 99, 99, 99}}));
    EXPECT_EQ(Build(TQ_COLOR_UYVY, 2, 1, {{1, 2}, {3, 4}}, {2, 2}, 4, 4), (Bytes{3, 1, 3, 2}));
}

// A short plane array moves once for each entry that it has, by the stride of the same index: a
// plane that falls on entry 0 goes by its own stride within a band only.
TEST(Planes, UnequalStridesOfAShortPlaneArrayMeetBandByBand) {
    Settings settings;
    settings.UseProcessors(2);
    // 1 x 4, two bands of two rows. Plane 0 goes 4 bytes a row, planes 1 and 2 one byte.
    Bytes image = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, plane(16, 99);
    CallWith(tqref::kSplit, kMultiThread, TQ_COLOR_BGR24, 1, 4, 3, image.data(), {4, 1, 1},
             {plane.data()});
    // Band 0 at 0: rows at 0 and 4, then 0 and 1. Band 1 at 8: rows at 8 and 12, then 8 and 9.
    EXPECT_EQ(plane, (Bytes{3, 6, 99, 99, 4, 99, 99, 99, 9, 12, 99, 99, 10, 99, 99, 99}));
    // The plain form goes by one byte all the way.
    plane.assign(16, 99);
    CallWith(tqref::kSplit, kPlain, TQ_COLOR_BGR24, 1, 4, 3, image.data(), {4, 1, 1},
             {plane.data()});
    EXPECT_EQ(plane, (Bytes{3, 6, 9, 12, 4, 99, 99, 99, 7, 99, 99, 99, 10, 99, 99, 99}));
}

TEST(Planes, LargeRowsEqualTheReference) {
    Settings settings;
    constexpr int kWidth = 4099;
    for (const Case& form : Cases()) {
        Bytes image(4 * kWidth), memory(4 * kWidth);
        tqtest::FillHostile(image.data(), image.size(), 1);
        tqtest::FillHostile(memory.data(), memory.size(), 2);
        Bytes expectedImage = image, expectedMemory = memory;
        const std::vector<int> strides(form.count, 0);
        std::vector<int64_t> offsets;
        for (int i = 0; i < form.count; ++i) offsets.push_back(int64_t{i} * kWidth);
        tqref::PlanesInBands(form.work, 1, form.format, kWidth, 1, 0, expectedImage, strides,
                             offsets, expectedMemory);
        const Bytes imageBefore = image, memoryBefore = memory;
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
            settings.Use(level);
            image = imageBefore;
            memory = memoryBefore;
            std::vector<uint8_t*> planes;
            for (int64_t offset : offsets) planes.push_back(memory.data() + offset);
            CallWith(form.work, kPlain, form.format, kWidth, 1, 0, image.data(), strides, planes);
            EXPECT_EQ(image == expectedImage, true) << form.format;
            EXPECT_EQ(memory == expectedMemory, true) << form.format;
        }
    }
}

TEST(Planes, OneProcessorHasNoTask) {
    Settings settings;
    StrideArray strides;
    PlaneArray planes;
    Bytes image(16 * 4), plane(64);
    FillArray(strides, {4, 4, 4});
    FillArray(planes, {plane.data(), plane.data() + 16, plane.data() + 32});
    for (tqref::PlaneWork work : {tqref::kSplit, tqref::kBuild}) {
        auto run = [&] {
            Call(work, kMultiThread, TQ_COLOR_ARGB, 4, 4, 16, image.data(), strides, planes);
        };
        settings.UseProcessors(2);
        EXPECT_GT(tqtest::AllocationsOf(run), 4);
        settings.UseProcessors(1);
        // Copies of the two arrays at most.
        EXPECT_LE(tqtest::AllocationsOf(run), 2);
    }
}

template <class Member>
void FillMember(Member& member, int width, int height, int stride, uint8_t* image,
                const std::vector<int>& strides, const std::vector<uint8_t*>& planes) {
    member.m_nFormat = TQ_COLOR_ARGB;
    member.m_nWidth = width;
    member.m_nHeight = height;
    member.m_nStride = stride;
    member.m_pImage = image;
    FillArray(member.m_strides, strides);
    FillArray(member.m_planes, planes);
}

// Image 0 is split to planes 1 to 4; image 5 is built from them.
int RunFunImageTask(int mode, uint8_t* const* blocks) {
    auto task = std::make_unique<CFunImageTask>();
    task->m_nMode = mode;
    const std::vector<int> strides = {22, 21, 23, 25};
    const std::vector<uint8_t*> planes(blocks + 1, blocks + 5);
    FillMember(task->m_split, 21, 3, 90, blocks[0], strides, planes);
    FillMember(task->m_build, 20, 2, -80, blocks[5], strides, planes);
    const std::unique_ptr<CTQIPLTaskBase> base = std::move(task);
    return base->Run();
}

TEST(Planes, ATaskSplitsOrBuildsByItsMode) {
    BlockStage stage(6, 512, 5);
    for (int mode : {0, 1}) {
        stage.Model([&](tqref::Bytes* blocks) {
            SeparateBlocks memory{blocks + 1};
            const int64_t apart = SeparateBlocks::kApart;
            const std::vector<int64_t> planes = {0, apart, 2 * apart, 3 * apart};
            if (mode == 0)
                tqref::PlanesInBands(tqref::kSplit, 1, TQ_COLOR_ARGB, 21, 3, 90, blocks[0],
                                     {22, 21, 23, 25}, planes, memory);
            else
                tqref::PlanesInBands(tqref::kBuild, 1, TQ_COLOR_ARGB, 20, 2, -80, blocks[5],
                                     {22, 21, 23, 25}, planes, memory);
        });
        EXPECT_TRUE(stage.Check([&](uint8_t* const* blocks) {
            EXPECT_EQ(RunFunImageTask(mode, blocks), 1);
        })) << mode;
    }
    stage.Model([](tqref::Bytes*) {});
    for (int mode : {2, -1, 256})
        EXPECT_TRUE(stage.Check([&](uint8_t* const* blocks) { RunFunImageTask(mode, blocks); }))
            << mode;
}

// A task with one member empty, as the forms make it.
TEST(Planes, TheOtherMemberOfATaskStaysEmpty) {
    Bytes image = {1, 2, 3, 4}, planes(4);
    auto task = std::make_unique<CFunImageTask>();
    FillMember(task->m_split, 1, 1, 4, image.data(), {1, 1, 1, 1},
               {&planes[0], &planes[1], &planes[2], &planes[3]});
    EXPECT_EQ(task->m_build.m_strides.GetSize(), 0);
    EXPECT_EQ(task->Run(), 1);
    EXPECT_EQ(planes, image);
}

}  // namespace
