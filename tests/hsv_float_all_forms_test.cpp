// HSV in floats, BGRA and 4:2:2 together: strides, sizes without a pixel, bands, tasks, and the
// inverses at the floats at which a result changes.

#include <gtest/gtest.h>
#include <tqipl/hsv.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <ios>
#include <utility>
#include <vector>

#include "reference/hsv_float_reference.h"
#include "support/allocation_counter.h"
#include "support/hsv_float_forms.h"
#include "support/hsv_forms.h"
#include "support/settings.h"

namespace {

using tqtest::HsvForm;
using tqtest::HsvImage;
using tqtest::HsvToYuyv;
using tqtest::kMultiThreadPixelForms;
using tqtest::kPairForms;
using tqtest::kPixelForms;
using tqtest::kTasksOfPlanes;
using tqtest::PlanesToYuyv;
using tqtest::Settings;

using Bytes = std::vector<uint8_t>;
using Floats = std::vector<float>;

TEST(HsvFloat, StridesOfFloatsCountFloatsAndOfBytesBytes) {
    for (unsigned processors : {1u, 2u, 3u}) {
        Settings settings;
        settings.UseProcessors(processors);
        // Three rows of one pixel, red, green, blue, 9 bytes apart; planes 2, 3 and 4 floats apart.
        Bytes bgra(2 * 9 + 4, 0);
        bgra[2] = bgra[9 + 1] = bgra[18] = 255;
        Floats h(6, -7), s(9, -7), v(12, -7);
        IPL_BGRA2HSV_MultiThread(1, 3, 9, bgra.data(), 2, h.data(), 3, s.data(), 4, v.data());
        EXPECT_EQ(h, (Floats{0, -7, 120, -7, 240, -7}));
        EXPECT_EQ(s, (Floats{1, -7, -7, 1, -7, -7, 1, -7, -7}));
        EXPECT_EQ(v, (Floats{1, -7, -7, -7, 1, -7, -7, -7, 1, -7, -7, -7}));
        Floats alpha = {1, -7, -7, -7, -7, 0.2f, -7, -7, -7, -7, 0};
        Bytes back(3 * 6, 9);
        IPL_HSV2BGRA_MultiThread(1, 3, 2, h.data(), 3, s.data(), 4, v.data(), 5, alpha.data(), 6,
                                 back.data());
        EXPECT_EQ(back, (Bytes{0, 0, 255, 255, 9, 9, 0, 255, 0, 51, 9, 9, 255, 0, 0, 0, 9, 9}));

        // Two rows of a grey pair, 6 bytes and 8 floats apart.
        Bytes yuyv = {16, 128, 16, 128, 9, 9, 116, 128, 116, 128};
        Floats hsv(16, -7);
        IPL_YUYV2HSV_709_MultiThread(2, 2, 6, yuyv.data(), 8, hsv.data());
        const float grey = 100 * 1.1644f;
        EXPECT_EQ(hsv, (Floats{0, 0, 0, 0, 0, 0, -7, -7, 0, 0, grey, 0, 0, grey, -7, -7}));
        Bytes again(10, 9);
        IPL_HSV2YUYV_709_MultiThread(2, 2, 8, hsv.data(), 6, again.data());
        // 116.44 * 0.8588 + 16.5 = 116.4987
        EXPECT_EQ(again, (Bytes{16, 128, 16, 128, 9, 9, 116, 128, 116, 128}));
    }
}

TEST(HsvFloat, SizesWithoutAPixelWriteNothing) {
    for (const HsvForm* form : kPixelForms) tqtest::ExpectEmptySizesWriteNothing(*form);
    for (const HsvForm* form : kPairForms) tqtest::ExpectEmptySizesWriteNothing(*form);
    for (const HsvForm* form : kTasksOfPlanes) tqtest::ExpectEmptySizesWriteNothing(*form);
}

TEST(HsvFloat, NoPointerIsUsedWhereThereIsNoPixel) {
    for (unsigned processors : {1u, 2u, 8u}) {
        Settings settings;
        settings.UseProcessors(processors);
        const HsvImage nothing[5] = {};
        for (auto [width, height] :
             {std::pair{5, 0}, {5, -1}, {0, 1}, {-1, 1}, {0, 9}, {-7, 9}, {-7, -9}}) {
            for (const HsvForm* form : kPixelForms) form->plain(width, height, nothing);
            for (const HsvForm* form : kPairForms) {
                form->plain(width, height, nothing);
                form->multiThread(width, height, nothing);
            }
        }
        // Half a pair is no pair.
        for (const HsvForm* form : kPairForms) {
            form->plain(1, 3, nothing);
            form->multiThread(1, 3, nothing);
        }
    }
}

// Memory for one small call of a form.
struct SmallCall {
    std::vector<std::vector<float>> memory;
    std::vector<HsvImage> images;
    explicit SmallCall(const HsvForm& form) : memory(form.images.size(), Floats(256, 0.25f)) {
        for (size_t i = 0; i < memory.size(); ++i)
            images.push_back({form.images[i].ElementSize() == 1 ? 32 : 8,
                              reinterpret_cast<uint8_t*>(memory[i].data())});
    }
};

TEST(HsvFloat, WithOneProcessorOnlyThePairFormsMakeATask) {
    Settings settings;
    for (const HsvForm* form : kMultiThreadPixelForms) {
        SmallCall call(*form);
        const auto run = [&] { form->multiThread(2, 4, call.images.data()); };
        settings.UseProcessors(2);
        EXPECT_GT(tqtest::AllocationsOf(run), 0) << form->name;
        settings.UseProcessors(1);
        EXPECT_EQ(tqtest::AllocationsOf(run), 0) << form->name;
    }
    for (const HsvForm* form : kPairForms) {
        SmallCall call(*form);
        settings.UseProcessors(1);
        EXPECT_GT(tqtest::AllocationsOf([&] { form->multiThread(2, 4, call.images.data()); }), 0)
            << form->name;
    }
}

TEST(HsvFloat, MultiThreadEqualsPlainAtEveryProcessorCount) {
    for (const HsvForm* form : kMultiThreadPixelForms) tqtest::ExpectMultiThreadEqualsPlain(*form);
    for (const HsvForm* form : kPairForms) tqtest::ExpectMultiThreadEqualsPlain(*form);
}

TEST(HsvFloat, TasksDoThePlainFormsWork) {
    for (const HsvForm* form : kMultiThreadPixelForms) tqtest::ExpectTaskEqualsReference(*form);
    for (const HsvForm* form : kPairForms)
        if (form->runTask != nullptr) tqtest::ExpectTaskEqualsReference(*form);
    for (const HsvForm* form : kTasksOfPlanes) tqtest::ExpectTaskEqualsReference(*form);
}

// Hues, saturations and values of many pixels, for the inverses.
struct Points {
    Floats h, s, v;
    void Add(float hue, float saturation, float value) {
        h.push_back(hue);
        s.push_back(saturation);
        v.push_back(value);
    }
    int Count() const { return static_cast<int>(h.size()); }
    void Clear() {
        h.clear();
        s.clear();
        v.clear();
    }
};

testing::AssertionResult SamePixels(const char* form, tq::IsaLevel level, const Points& points,
                                    const Bytes& actual, const Bytes& expected, int pixelBytes) {
    if (actual == expected) return testing::AssertionSuccess();
    size_t i = 0;
    while (actual[i] == expected[i]) ++i;
    const size_t at = i / pixelBytes;
    return testing::AssertionFailure()
           << form << " at level " << tq::IsaLevelName(level) << ": byte " << i % pixelBytes
           << " of point " << at << " of " << points.Count() << " is " << int{actual[i]} << ", not "
           << int{expected[i]} << std::hexfloat << ": H " << points.h[at] << ", S " << points.s[at]
           << ", V " << points.v[at];
}

// The inverses to BGRA and the pixel routine.
void ExpectBgraOf(Points& points) {
    Settings settings;
    const int count = points.Count();
    float *h = points.h.data(), *s = points.s.data(), *v = points.v.data();
    Bytes expected(4 * count, 99), expectedByFloor(4 * count, 99), dst;
    tqref::Hsv2Bgra(count, 1, 0, h, 0, s, 0, v, 0, nullptr, 0, expected.data());
    tqref::HsvToBgraByFloor(count, 1, 0, h, 0, s, 0, v, 0, expectedByFloor.data());
    Bytes expectedWithAlpha = expected;
    for (int i = 0; i < count; ++i) expectedWithAlpha[4 * i + 3] = tqref::AlphaByte(s[i]);
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        dst.assign(4 * count, 99);
        IPL_HSV2BGRA(count, 1, 0, h, 0, s, 0, v, 0, dst.data());
        ASSERT_TRUE(SamePixels("IPL_HSV2BGRA", level, points, dst, expected, 4));
        dst.assign(4 * count, 99);
        IPL_HSV2BGRA(count, 1, 0, h, 0, s, 0, v, 0, s, 0, dst.data());
        ASSERT_TRUE(SamePixels("with alpha", level, points, dst, expectedWithAlpha, 4));
        dst.assign(4 * count, 99);
        IPL_HSV_To_BGRA(count, 1, 0, h, 0, s, 0, v, 0, dst.data());
        ASSERT_TRUE(SamePixels("IPL_HSV_To_BGRA", level, points, dst, expectedByFloor, 4));
    }
    dst.assign(4 * count, 99);
    for (int i = 0; i < count; ++i)
        IPL_HSV2RGB_32f_8u(h[i], s[i], v[i], dst[4 * i + 2], dst[4 * i + 1], dst[4 * i]);
    ASSERT_TRUE(SamePixels("IPL_HSV2RGB_32f_8u", tq::CurrentIsaLevel(), points, dst, expected, 4));
}

// The inverses to YUYV: each point twice, so that no average hides a chroma byte, and in the
// planes each next to its neighbour.
void ExpectYuyvOf(Points& points) {
    Settings settings;
    if (points.Count() % 2 == 1) points.Add(0, 0, 0);
    const int count = points.Count();
    Floats twice, planes = points.h;
    for (int i = 0; i < count; ++i)
        for (int side = 0; side < 2; ++side)
            twice.insert(twice.end(), {points.h[i], points.s[i], points.v[i]});
    planes.insert(planes.end(), points.s.begin(), points.s.end());
    planes.insert(planes.end(), points.v.begin(), points.v.end());
    struct Family {
        const tqref::HsvYuvSet& set;
        HsvToYuyv* fromHsv;
        PlanesToYuyv* fromPlanes;
    };
    for (const Family& family : {Family{tqref::kHsv601, IPL_HSV2YUYV_601, IPL_HSVP2YUYV_601},
                                 Family{tqref::kHsv709, IPL_HSV2YUYV_709, IPL_HSVP2YUYV_709}}) {
        Bytes expected(4 * count, 99), expectedOfPlanes(2 * count, 99), dst;
        tqref::Hsv2Yuyv(family.set, 2 * count, 1, 0, twice.data(), 0, expected.data());
        tqref::HsvP2Yuyv(family.set, count, 1, planes.data(), 0, expectedOfPlanes.data());
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
            settings.Use(level);
            dst.assign(4 * count, 99);
            family.fromHsv(2 * count, 1, 0, twice.data(), 0, dst.data());
            ASSERT_TRUE(SamePixels("interleaved", level, points, dst, expected, 4));
            dst.assign(2 * count, 99);
            family.fromPlanes(count, 1, planes.data(), 0, dst.data());
            ASSERT_TRUE(SamePixels("planes", level, points, dst, expectedOfPlanes, 2));
        }
    }
}

using Result = std::array<int, 9>;

// What the inverses to BGRA give, with whether the first stores.
Result BgraResult(float h, float s, float v) {
    tqref::RgbBytes rgb = {0, 0, 0};
    const bool stored = tqref::HsvToRgb(h, s, v, &rgb);
    const tqref::RgbBytes byFloor = tqref::HsvToRgbByFloor(h, s, v);
    return {stored, rgb.r, rgb.g, rgb.b, byFloor.r, byFloor.g, byFloor.b, 0, 0};
}

Result YuyvResult(float h, float s, float v) {
    const tqref::YuvBytes a = tqref::HsvToYuv(tqref::kHsv601, h, s, v);
    const tqref::YuvBytes b = tqref::HsvToYuv(tqref::kHsv709, h, s, v);
    return {a.y, a.u, a.v, b.y, b.u, b.v, 0, 0, 0};
}

// Between neighbours of `grid` at which some byte of result(x) differs, finds for each such byte
// two neighbouring floats at which it changes, and calls add(x) for these and three on either side.
template <class ResultOf, class Add>
void FindChanges(const Floats& grid, ResultOf result, Add add) {
    Result before = result(grid[0]);
    for (size_t i = 1; i < grid.size(); ++i) {
        const Result after = result(grid[i]);
        for (size_t byte = 0; byte < before.size(); ++byte) {
            if (before[byte] == after[byte]) continue;
            int64_t low = tqtest::FloatKey(grid[i - 1]), high = tqtest::FloatKey(grid[i]);
            while (high - low > 1) {
                const int64_t middle = low + (high - low) / 2;
                const bool same = result(tqtest::FloatOfKey(middle))[byte] == before[byte];
                (same ? low : high) = middle;
            }
            for (int64_t key = low - 3; key <= high + 3; ++key) add(tqtest::FloatOfKey(key));
        }
        before = after;
    }
}

Floats Grid(float first, float last, int steps) {
    Floats grid;
    for (int i = 0; i <= steps; ++i)
        grid.push_back(first + (last - first) * static_cast<float>(i) / static_cast<float>(steps));
    return grid;
}

// The changes along each of the three axes through a grid of the two others. The grids are
// uneven, so that products are not exact.
template <class ResultOf, class Expect>
void ExpectAtChanges(float valueScale, ResultOf result, Expect expect) {
    const Floats hues = Grid(-65.3f, 365.9f, 37), saturations = Grid(-0.13f, 1.17f, 14);
    const Floats values = Grid(-0.11f * valueScale, 1.21f * valueScale, 14);
    const Floats fineHues = Grid(-64, 364, 428);
    const Floats fineSaturations = Grid(-0.2f, 1.2f, 280);
    const Floats fineValues = Grid(-0.2f * valueScale, 1.2f * valueScale, 280);
    Points points;
    int64_t total = 0;
    const auto check = [&] {
        total += points.Count();
        ASSERT_NO_FATAL_FAILURE(expect(points));
        points.Clear();
    };
    for (float s : saturations) {
        for (float v : values)
            FindChanges(
                fineHues, [=](float h) { return result(h, s, v); },
                [&](float h) { points.Add(h, s, v); });
        ASSERT_NO_FATAL_FAILURE(check());
    }
    for (float h : hues) {
        for (float v : values)
            FindChanges(
                fineSaturations, [=](float s) { return result(h, s, v); },
                [&](float s) { points.Add(h, s, v); });
        for (float s : saturations)
            FindChanges(
                fineValues, [=](float v) { return result(h, s, v); },
                [&](float v) { points.Add(h, s, v); });
        ASSERT_NO_FATAL_FAILURE(check());
    }
    EXPECT_GT(total, 2000000);
}

TEST(HsvFloat, InversesToBgraEqualTheReferenceWhereAByteChanges) {
    ExpectAtChanges(1.0f, BgraResult, ExpectBgraOf);
}

TEST(HsvFloat, InversesToYuyvEqualTheReferenceWhereAByteChanges) {
    ExpectAtChanges(255.0f, YuyvResult, ExpectYuyvOf);
}

TEST(HsvFloat, InversesEqualTheReferenceOverADenseGrid) {
    Points ofOne, of255;
    for (int h = -130; h <= 730; ++h) {
        for (int s = 0; s <= 40; ++s)
            for (int v = 0; v <= 40; ++v) {
                const float hue = static_cast<float>(h) * 0.5f;
                const float ratio = static_cast<float>(s) / 40, value = static_cast<float>(v) / 40;
                ofOne.Add(hue, ratio, value);
                of255.Add(hue, ratio, value * 255);
            }
        if (h % 64 != 0 && h != 730) continue;
        ASSERT_NO_FATAL_FAILURE(ExpectBgraOf(ofOne));
        ASSERT_NO_FATAL_FAILURE(ExpectYuyvOf(of255));
        ofOne.Clear();
        of255.Clear();
    }
}

TEST(HsvFloat, InversesEqualTheReferenceForByteValues) {
    for (int h = 0; h <= 360; h += 3) {
        Points ofOne, of255;
        for (int s = 0; s < 256; s += 5)
            for (int v = 0; v < 256; ++v) {
                const float hue = static_cast<float>(h), ratio = static_cast<float>(s) / 255;
                const float value = static_cast<float>(v);
                ofOne.Add(hue, ratio, static_cast<float>(v / 255.0));
                of255.Add(hue, ratio, value);
            }
        ASSERT_NO_FATAL_FAILURE(ExpectBgraOf(ofOne));
        ASSERT_NO_FATAL_FAILURE(ExpectYuyvOf(of255));
    }
}

TEST(HsvFloat, InversesEqualTheReferenceForSpecialFloats) {
    const Floats specials = tqtest::SpecialFloats();
    for (float h : specials) {
        Points points;
        for (float s : specials)
            for (float v : specials) points.Add(h, s, v);
        ASSERT_NO_FATAL_FAILURE(ExpectBgraOf(points));
        ASSERT_NO_FATAL_FAILURE(ExpectYuyvOf(points));
    }
}

TEST(HsvFloat, AlphaEqualsTheReferenceWhereItsByteChanges) {
    Points points;
    const Floats grid = Grid(-0.5f, 1.5f, 2000);
    for (float start : tqtest::SpecialFloats()) points.Add(360, start, 1);
    FindChanges(
        grid, [](float alpha) { return Result{tqref::AlphaByte(alpha)}; },
        [&](float alpha) { points.Add(360, alpha, 1); });
    EXPECT_GT(points.Count(), 255 * 8);
    // The saturation serves as alpha.
    ExpectBgraOf(points);
}

}  // namespace
