#pragma once

// What the tests of conversions between a packed image and an array of planes share: a form with
// its reference, and its comparison over sizes, placements, levels, processor counts and arrays
// that are too short. Always the whole memory of the packed image and of each plane is compared.

#include <gtest/gtest.h>
#include <tqipl/array.h>
#include <tqipl/thread.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/allocation_counter.h"
#include "support/guarded_buffer.h"
#include "support/pixel_forms.h"
#include "support/settings.h"

namespace tqtest {

using Strides = CTQArray<int, int>;
using Planes = CTQArray<unsigned char*, unsigned char*>;
using StrideList = std::vector<int>;
using PlaneList = std::vector<uint8_t*>;

// The arrays as a form takes them, and whether it left them alone.
class PlaneArrays {
public:
    PlaneArrays() = default;
    PlaneArrays(const StrideList& strideList, const PlaneList& planeList)
        : m_strideList(strideList), m_planeList(planeList) {
        for (int stride : strideList) strides.Add(stride);
        for (uint8_t* plane : planeList) planes.Add(plane);
        m_storage = Storage();
    }
    bool Unchanged() const { return HasElements() && Storage() == m_storage; }

    Strides strides;
    Planes planes;

private:
    // The four fields of both arrays.
    std::vector<int64_t> Storage() const {
        return {reinterpret_cast<intptr_t>(strides.m_pData),
                strides.m_nSize,
                strides.m_nMaxSize,
                strides.m_nGrowBy,
                reinterpret_cast<intptr_t>(planes.m_pData),
                planes.m_nSize,
                planes.m_nMaxSize,
                planes.m_nGrowBy};
    }
    bool HasElements() const {
        const auto strideCount = static_cast<int64_t>(m_strideList.size());
        const auto planeCount = static_cast<int64_t>(m_planeList.size());
        return strides.m_nSize == strideCount && planes.m_nSize == planeCount &&
               std::equal(m_strideList.begin(), m_strideList.end(), strides.m_pData) &&
               std::equal(m_planeList.begin(), m_planeList.end(), planes.m_pData);
    }

    StrideList m_strideList;
    PlaneList m_planeList;
    std::vector<int64_t> m_storage = std::vector<int64_t>(8, 0);
};

// A conversion between a packed image and planes, in the argument order of those that write planes.
struct DeepPlaneForm {
    using Function = void (*)(int width, int height, int stride, unsigned char* packed,
                              Strides& strides, Planes& planes);
    using Reference = void (*)(int width, int height, int stride, uint8_t* packed,
                               const StrideList& strides, const PlaneList& planes);
    using Task = int (*)(int width, int height, int stride, unsigned char* packed,
                         const PlaneArrays& arrays);

    const char* name;
    Function plain;
    Function multiThread;
    Task runTask;
    Reference reference;
    bool writesPlanes;
    int groupPixels;
    int groupBytes[4];  // of the packed image, then of each plane; 0 where it is not reached

    // The bytes of a row. What is read has whole groups only; what is written has the place of the
    // pixels that are left over.
    int RowBytes(int image, int width) const {
        const bool written = (image != 0) == writesPlanes;
        const int groups = written ? (width + groupPixels - 1) / groupPixels : width / groupPixels;
        return groups * groupBytes[image];
    }
    int PlaneCount() const {
        int count = 0;
        while (count < 3 && groupBytes[count + 1] != 0) ++count;
        return count;
    }
};

template <void (*form)(int, int, Strides&, Planes&, int, unsigned char*)>
void FromPlanes(int width, int height, int stride, unsigned char* packed, Strides& strides,
                Planes& planes) {
    form(width, height, strides, planes, stride, packed);
}
template <void (*form)(int, int, int, const uint8_t*, const StrideList&, const PlaneList&)>
void ReferenceToPlanes(int width, int height, int stride, uint8_t* packed,
                       const StrideList& strides, const PlaneList& planes) {
    form(width, height, stride, packed, strides, planes);
}
template <void (*form)(int, int, const StrideList&, const PlaneList&, int, uint8_t*)>
void ReferenceFromPlanes(int width, int height, int stride, uint8_t* packed,
                         const StrideList& strides, const PlaneList& planes) {
    form(width, height, strides, planes, stride, packed);
}

// Makes a task whose arrays are copies, runs it and deletes it through its base.
template <class Task>
int RunTaskWithPlanes(int width, int height, int stride, unsigned char* packed,
                      const PlaneArrays& arrays) {
    auto task = std::make_unique<Task>();
    task->m_nWidth = width;
    task->m_nHeight = height;
    if constexpr (requires { task->m_pSrc; }) {
        task->m_nSrcStride = stride;
        task->m_pSrc = packed;
    } else {
        task->m_nDstStride = stride;
        task->m_pDst = packed;
    }
    for (int64_t i = 0; i < arrays.strides.GetSize(); ++i)
        task->m_strides.Add(arrays.strides.m_pData[i]);
    for (int64_t i = 0; i < arrays.planes.GetSize(); ++i)
        task->m_planes.Add(arrays.planes.m_pData[i]);
    const std::unique_ptr<CTQIPLTaskBase> base = std::move(task);
    return base->Run();
}

// The packed image and the planes of a form, each in a buffer of its own.
class DeepMemory {
public:
    using Contents = std::vector<std::vector<uint8_t>>;
    using Places = std::vector<ImagePlace>;

    DeepMemory(const DeepPlaneForm& form, int maxWidth, int maxHeight, GuardedBuffer::Side side)
        : m_form(form), m_side(side) {
        for (int i = 0; i <= form.PlaneCount(); ++i)
            m_images.push_back(std::make_unique<Elements<uint8_t>>(
                (form.RowBytes(i, maxWidth) + kMostPadding) * maxHeight + 3, side));
    }
    Contents Fill(uint32_t seed) {
        Contents contents;
        for (auto& image : m_images) {
            image->Fill(seed++);
            contents.push_back(image->Contents());
        }
        return contents;
    }
    void Put(const Contents& contents) {
        for (size_t i = 0; i < m_images.size(); ++i) m_images[i]->Put(contents[i]);
    }
    Contents Take() {
        Contents contents;
        for (auto& image : m_images) contents.push_back(image->Contents());
        return contents;
    }

    // Eight placements: dense and padded rows, up to three bytes from the guard, top-down and
    // bottom-up, each image another way.
    Places PlacesFor(int width, int height, int placement) const {
        constexpr int kPadding[4] = {0, 5, 1, kMostPadding};
        Places places;
        for (int i = 0; i < static_cast<int>(m_images.size()); ++i) {
            const int gap = (placement * (2 * i + 1)) % 4;
            const bool bottomUp = placement >= 4 && (placement + i) % 3 != 0;
            places.push_back(PlaceImage(m_images[i]->count(), m_side, gap,
                                        m_form.RowBytes(i, width), height, kPadding[gap],
                                        bottomUp));
        }
        return places;
    }
    static StrideList StridesOf(const Places& places) {
        StrideList strides;
        for (size_t i = 1; i < places.size(); ++i) strides.push_back(places[i].stride);
        return strides;
    }
    PlaneList PlanesAt(const Places& places) {
        PlaneList planes;
        for (size_t i = 1; i < places.size(); ++i)
            planes.push_back(m_images[i]->data() + places[i].first);
        return planes;
    }

    void Run(DeepPlaneForm::Function function, int width, int height, const Places& places) {
        PlaneArrays arrays(StridesOf(places), PlanesAt(places));
        function(width, height, places[0].stride, m_images[0]->data() + places[0].first,
                 arrays.strides, arrays.planes);
        EXPECT_TRUE(arrays.Unchanged());
    }
    Contents Expected(int width, int height, const Places& places, Contents contents) const {
        PlaneList planes;
        for (size_t i = 1; i < places.size(); ++i)
            planes.push_back(contents[i].data() + places[i].first);
        m_form.reference(width, height, places[0].stride, contents[0].data() + places[0].first,
                         StridesOf(places), planes);
        return contents;
    }
    testing::AssertionResult Holds(const Contents& expected) {
        for (size_t i = 0; i < m_images.size(); ++i) {
            const testing::AssertionResult same =
                SameElements(m_images[i]->data(), expected[i].data(), expected[i].size());
            if (!same)
                return testing::AssertionFailure()
                       << "image " << i << " (0 is the packed one): " << same.message();
        }
        return testing::AssertionSuccess();
    }

private:
    static constexpr int kMostPadding = 7;

    const DeepPlaneForm& m_form;
    GuardedBuffer::Side m_side;
    std::vector<std::unique_ptr<Elements<uint8_t>>> m_images;
};

// Every level, widths 0 to 50, heights 1 to 5, eight placements on either side of a guard.
inline void ExpectEqualsReference(const DeepPlaneForm& form) {
    SCOPED_TRACE(form.name);
    constexpr int kMaxWidth = 50, kMaxHeight = 5;
    Settings settings;
    for (auto side : {GuardedBuffer::kEnd, GuardedBuffer::kStart}) {
        DeepMemory memory(form, kMaxWidth, kMaxHeight, side);
        for (int width = 0; width <= kMaxWidth; ++width)
            for (int height = 1; height <= kMaxHeight; ++height) {
                const DeepMemory::Contents before = memory.Fill(width * 8 + height);
                for (int placement = 0; placement < 8; ++placement) {
                    const DeepMemory::Places places = memory.PlacesFor(width, height, placement);
                    const DeepMemory::Contents expected =
                        memory.Expected(width, height, places, before);
                    for (tq::IsaLevel level : RunnableIsaLevels()) {
                        settings.Use(level);
                        memory.Put(before);
                        memory.Run(form.plain, width, height, places);
                        ASSERT_TRUE(memory.Holds(expected))
                            << width << " x " << height << ", side " << side << ", placement "
                            << placement << ", level " << tq::IsaLevelName(level);
                    }
                }
            }
    }
}

// One row of many groups, filled by fill(bytes of the packed image and of each plane), at every
// level.
template <class Fill>
void ExpectLongRowEqualsReference(const DeepPlaneForm& form, int groups, Fill fill) {
    SCOPED_TRACE(form.name);
    Settings settings;
    const int width = groups * form.groupPixels;
    DeepMemory::Contents before;
    for (int i = 0; i <= form.PlaneCount(); ++i)
        before.emplace_back(static_cast<size_t>(form.RowBytes(i, width)), uint8_t{0xA5});
    fill(before);
    auto planesOf = [](DeepMemory::Contents& contents) {
        PlaneList planes;
        for (size_t i = 1; i < contents.size(); ++i) planes.push_back(contents[i].data());
        return planes;
    };
    DeepMemory::Contents expected = before;
    form.reference(width, 1, 0, expected[0].data(), {0}, planesOf(expected));
    for (tq::IsaLevel level : RunnableIsaLevels()) {
        settings.Use(level);
        DeepMemory::Contents actual = before;
        PlaneArrays arrays({0}, planesOf(actual));
        form.plain(width, 1, 0, actual[0].data(), arrays.strides, arrays.planes);
        for (size_t i = 0; i < actual.size(); ++i)
            ASSERT_TRUE(SameElements(actual[i].data(), expected[i].data(), expected[i].size()))
                << "image " << i << ", level " << tq::IsaLevelName(level);
    }
}

// Every processor count from 1 to 16, heights around them and below 1, strides of either sign.
inline void ExpectMultiThreadEqualsPlain(const DeepPlaneForm& form) {
    SCOPED_TRACE(form.name);
    Settings settings;
    constexpr int kMaxHeight = 33;
    for (int width : {1, 19, 36})
        for (auto side : {GuardedBuffer::kEnd, GuardedBuffer::kStart}) {
            DeepMemory memory(form, width, kMaxHeight, side);
            const DeepMemory::Contents before = memory.Fill(width);
            for (int height : {-3, 0, 1, 2, 7, 8, 9, 15, 16, 17, 33}) {
                const DeepMemory::Places places = memory.PlacesFor(width, height, (height + 8) % 8);
                memory.Put(before);
                memory.Run(form.plain, width, height, places);
                const DeepMemory::Contents plain = memory.Take();
                for (unsigned processors = 1; processors <= 16; ++processors) {
                    settings.UseProcessors(processors);
                    memory.Put(before);
                    memory.Run(form.multiThread, width, height, places);
                    ASSERT_TRUE(memory.Holds(plain))
                        << width << " x " << height << ", " << processors << " processors";
                }
            }
        }
}

inline void ExpectTaskEqualsReference(const DeepPlaneForm& form) {
    SCOPED_TRACE(form.name);
    const int width = 21, height = 3;
    DeepMemory memory(form, width, height, GuardedBuffer::kEnd);
    const DeepMemory::Contents before = memory.Fill(1);
    const DeepMemory::Places places = memory.PlacesFor(width, height, 1);
    const DeepMemory::Contents expected = memory.Expected(width, height, places, before);
    memory.Put(before);
    static int result;
    static DeepPlaneForm::Task runTask;
    runTask = form.runTask;
    memory.Run(
        [](int w, int h, int stride, unsigned char* packed, Strides& strides, Planes& planes) {
            const PlaneArrays arrays({strides.m_pData, strides.m_pData + strides.GetSize()},
                                     {planes.m_pData, planes.m_pData + planes.GetSize()});
            result = runTask(w, h, stride, packed, arrays);
        },
        width, height, places);
    EXPECT_EQ(result, 1);
    EXPECT_TRUE(memory.Holds(expected));
}

// The fields of a task in their order, and that its arrays are its own and not references.
template <class Task> void ExpectTaskOwnsItsArrays() {
    static_assert(std::is_same_v<decltype(Task::m_strides), Strides>);
    static_assert(std::is_same_v<decltype(Task::m_planes), Planes>);
    Task task;
    auto at = [&task](const auto& field) {
        return reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&task);
    };
    std::vector<ptrdiff_t> places = {at(task.m_nWidth), at(task.m_nHeight)};
    if constexpr (requires { task.m_pSrc; }) {
        places.insert(places.end(), {at(task.m_nSrcStride), at(task.m_pSrc), at(task.m_strides),
                                     at(task.m_planes)});
    } else {
        places.insert(places.end(), {at(task.m_strides), at(task.m_planes), at(task.m_nDstStride),
                                     at(task.m_pDst)});
    }
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
}

// Blocks with room on all sides, for arrays that are too short or too long: planes that are not
// there fall on the last one, at every level, and the later write stands.
class ShortArrayTrial {
public:
    ShortArrayTrial(const DeepPlaneForm& form, StrideList strides, size_t planeCount)
        : m_form(form), m_strides(std::move(strides)), m_planeCount(planeCount) {
        for (uint32_t i = 0; i < 5; ++i) {
            m_before.emplace_back(2 * kRoom);
            FillHostile(m_before.back().data(), m_before.back().size(), 100 + i);
        }
    }
    // As the bands of `processors` processors do it: each plane that is there moves once a row, by
    // its own stride.
    DeepMemory::Contents Expected(int width, int height, int stride, unsigned processors) const {
        DeepMemory::Contents contents = m_before;
        const int rows = height / static_cast<int>(processors);
        const int bands = rows == 0 ? 1 : static_cast<int>(processors);
        for (int band = 0; band < bands; ++band) {
            const int64_t first = int64_t{band} * rows;
            const int count = band + 1 < bands ? rows : height - static_cast<int>(first);
            PlaneList planes = PlanesOf(contents);
            for (size_t k = 0; k < planes.size(); ++k)
                planes[k] += first * m_strides[std::min(k, m_strides.size() - 1)];
            m_form.reference(width, count, stride, contents[0].data() + kRoom + first * stride,
                             m_strides, planes);
        }
        return contents;
    }
    testing::AssertionResult Run(DeepPlaneForm::Function function, int width, int height,
                                 int stride, const DeepMemory::Contents& expected) const {
        DeepMemory::Contents actual = m_before;
        PlaneArrays arrays(m_strides, PlanesOf(actual));
        function(width, height, stride, actual[0].data() + kRoom, arrays.strides, arrays.planes);
        for (size_t i = 0; i < actual.size(); ++i) {
            const testing::AssertionResult same =
                SameElements(actual[i].data(), expected[i].data(), expected[i].size());
            if (!same)
                return testing::AssertionFailure() << "image " << i << ": " << same.message();
        }
        if (!arrays.Unchanged()) return testing::AssertionFailure() << "the arrays have changed";
        return testing::AssertionSuccess();
    }

private:
    static constexpr int kRoom = 6144;

    PlaneList PlanesOf(DeepMemory::Contents& contents) const {
        PlaneList planes;
        for (size_t i = 1; i <= m_planeCount; ++i) planes.push_back(contents[i].data() + kRoom);
        return planes;
    }

    const DeepPlaneForm& m_form;
    StrideList m_strides;
    size_t m_planeCount;
    DeepMemory::Contents m_before;
};

// `all` is cut to one, two and more strides; each with one to four planes.
inline void ExpectArraysOfAnyLength(const DeepPlaneForm& form, const StrideList& all) {
    SCOPED_TRACE(form.name);
    Settings settings;
    for (size_t strideCount = 1; strideCount <= all.size(); ++strideCount)
        for (size_t planeCount = 1; planeCount <= 4; ++planeCount) {
            const ShortArrayTrial trial(
                form, {all.begin(), all.begin() + static_cast<ptrdiff_t>(strideCount)}, planeCount);
            for (int width : {1, 2, 6, 13, 26})
                for (int height : {1, 2, 7, 16, 19}) {
                    const int stride = all[0] > 0 ? 220 : -220;
                    const auto plain = trial.Expected(width, height, stride, 1);
                    for (tq::IsaLevel level : RunnableIsaLevels()) {
                        settings.Use(level);
                        ASSERT_TRUE(trial.Run(form.plain, width, height, stride, plain))
                            << strideCount << " strides, " << planeCount << " planes, " << width
                            << " x " << height << ", level " << tq::IsaLevelName(level);
                    }
                    for (unsigned processors : {1u, 2u, 3u, 7u, 16u}) {
                        settings.UseProcessors(processors);
                        const auto banded = trial.Expected(width, height, stride, processors);
                        ASSERT_TRUE(trial.Run(form.multiThread, width, height, stride, banded))
                            << strideCount << " strides, " << planeCount << " planes, " << width
                            << " x " << height << ", " << processors << " processors";
                    }
                }
        }
}

// A plain form reads through the accessor that grows an empty array to one zero element; without
// a row it reads nothing.
inline void ExpectAPlainFormGrowsEmptyArrays(const DeepPlaneForm& form) {
    SCOPED_TRACE(form.name);
    std::vector<uint8_t> packed(64, 7);
    for (int height : {0, -1}) {
        PlaneArrays arrays;
        form.plain(6, height, 0, packed.data(), arrays.strides, arrays.planes);
        EXPECT_TRUE(arrays.Unchanged()) << height;
    }
    // Rows without a group of pixels, where a null plane is not followed.
    for (int height : {1, 3}) {
        PlaneArrays arrays;
        form.plain(0, height, 0, packed.data(), arrays.strides, arrays.planes);
        ASSERT_EQ(arrays.strides.GetSize(), 1);
        ASSERT_EQ(arrays.planes.GetSize(), 1);
        EXPECT_EQ(arrays.strides.GetAt(0), 0);
        EXPECT_EQ(arrays.planes.GetAt(0), nullptr);
    }
    EXPECT_EQ(packed, std::vector<uint8_t>(64, 7));
}

inline void ExpectAMultiThreadFormDoesNotGrowEmptyArrays(const DeepPlaneForm& form) {
    SCOPED_TRACE(form.name);
    Settings settings;
    std::vector<uint8_t> packed(64, 7);
    for (unsigned processors = 1; processors <= 16; ++processors)
        for (int height : {-1, 0, 1, 2, 16, 17}) {
            settings.UseProcessors(processors);
            PlaneArrays arrays;
            form.multiThread(0, height, 0, packed.data(), arrays.strides, arrays.planes);
            EXPECT_TRUE(arrays.Unchanged()) << processors << " processors, height " << height;
        }
    EXPECT_EQ(packed, std::vector<uint8_t>(64, 7));
}

// Without a stride all rows fall on the first one, and the last of them stays.
inline void ExpectNoStrideIsAStrideOfZero(const DeepPlaneForm& form) {
    SCOPED_TRACE(form.name);
    const int width = 12, height = 3;
    std::vector<std::vector<uint8_t>> before;
    for (int i = 0; i <= form.PlaneCount(); ++i) {
        before.emplace_back(height * 128);
        FillHostile(before.back().data(), before.back().size(), 50 + i);
    }
    auto expected = before, actual = before;
    PlaneList planes, expectedPlanes;
    for (size_t i = 1; i < actual.size(); ++i) {
        planes.push_back(actual[i].data());
        expectedPlanes.push_back(expected[i].data());
    }
    form.reference(width, height, 128, expected[0].data(), {}, expectedPlanes);
    PlaneArrays arrays({}, planes);
    form.plain(width, height, 128, actual[0].data(), arrays.strides, arrays.planes);
    EXPECT_EQ(actual, expected);
    ASSERT_EQ(arrays.strides.GetSize(), 1);
    EXPECT_EQ(arrays.strides.GetAt(0), 0);
}

inline void ExpectEmptySizesWriteNothing(const DeepPlaneForm& form) {
    SCOPED_TRACE(form.name);
    Settings settings;
    std::vector<std::pair<int, int>> sizes = {{0, 1},  {0, 3},   {-1, 1},  {-6, 2}, {-70, 3},
                                              {12, 0}, {12, -1}, {12, -9}, {0, 0},  {-5, -5}};
    for (int width = 1; width < form.groupPixels; ++width) sizes.emplace_back(width, 2);
    std::vector<std::vector<uint8_t>> images(4, std::vector<uint8_t>(256, 0x5A));
    for (auto [width, height] : sizes)
        for (unsigned processors : {1u, 2u, 8u}) {
            settings.UseProcessors(processors);
            PlaneArrays arrays({64, 32, 32},
                               {images[1].data(), images[2].data(), images[3].data()});
            form.plain(width, height, 64, images[0].data(), arrays.strides, arrays.planes);
            form.multiThread(width, height, 64, images[0].data(), arrays.strides, arrays.planes);
            EXPECT_TRUE(arrays.Unchanged());
            for (const auto& image : images)
                EXPECT_EQ(image, std::vector<uint8_t>(256, 0x5A))
                    << width << " x " << height << ", " << processors << " processors";
        }
}

// A plain form allocates nothing. A MultiThread form at one processor makes no task: there is
// nothing but the copies of the two arrays, for which the caller's stay as they are.
inline void ExpectAllocationsInTasksOnly(const DeepPlaneForm& form) {
    SCOPED_TRACE(form.name);
    Settings settings;
    std::vector<std::vector<uint8_t>> images(4, std::vector<uint8_t>(16 * 256, 0x5A));
    PlaneArrays arrays({256, 256, 256}, {images[1].data(), images[2].data(), images[3].data()});
    auto run = [&](DeepPlaneForm::Function function) {
        return AllocationsOf(
            [&] { function(30, 16, 256, images[0].data(), arrays.strides, arrays.planes); });
    };
    settings.UseProcessors(2);
    EXPECT_GT(run(form.multiThread), 2);
    for (tq::IsaLevel level : RunnableIsaLevels()) {
        settings.Use(level);
        EXPECT_EQ(run(form.plain), 0);
    }
    settings.UseProcessors(1);
    EXPECT_LE(run(form.multiThread), 2);
}

// Bytes of little-endian words and samples, and samples of bytes.
inline std::vector<uint8_t> BytesOfWords(const std::vector<uint32_t>& words) {
    std::vector<uint8_t> bytes;
    for (uint32_t word : words)
        for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<uint8_t>(word >> 8 * i));
    return bytes;
}
inline std::vector<uint8_t> BytesOfSamples(const std::vector<int>& samples) {
    std::vector<uint8_t> bytes;
    for (int sample : samples) {
        bytes.push_back(static_cast<uint8_t>(sample));
        bytes.push_back(static_cast<uint8_t>(sample >> 8));
    }
    return bytes;
}

// The same noise for the same number anywhere.
inline uint32_t Noise(uint32_t i) {
    i *= 2654435761u;
    i ^= i >> 15;
    i *= 2246822519u;
    return i ^ i >> 13;
}

}  // namespace tqtest
