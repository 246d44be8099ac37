// The separable bilateral filter on several threads: pixels known by hand, the whole memory against
// the reference at every processor count, its tasks, arguments out of range.

#include <gtest/gtest.h>
#include <tqipl/buffer.h>
#include <tqipl/filter.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "filter/bilateral_tasks.h"
#include "frame/memory_manager.h"
#include "reference/bilateral_reference.h"
#include "support/deadline.h"
#include "support/filter_check.h"
#include "support/task_fields.h"

namespace {

using tqtest::BlockStage;
using tqtest::PlanePair;
using tqtest::Settings;
using Image = std::vector<uint8_t>;

// With this sigma every difference weighs 1024: what is left are the weights by distance.
constexpr int kFlatSigma = INT_MAX;

// Leaves buffers in the manager's cache that hold one value everywhere: the rows that the first
// pass leaves unwritten hold it then.
void LeaveInBuffers(uint32_t value) {
    constexpr int kBytes = 0x100000;  // gives the two mebibytes of all small scratch images
    unsigned char* buffers[4];
    for (unsigned char*& buffer : buffers) {
        buffer = IPL_Malloc(kBytes);
        for (int i = 0; i < 2 * kBytes; i += 4) std::memcpy(buffer + i, &value, 4);
    }
    for (unsigned char* buffer : buffers) IPL_Free(buffer);
}

// The defined rows of a dense image.
Image Filtered(int width, int height, Image src, int radius, int sigma) {
    Image dst(src.size(), 99);
    IPL_BilteralExMutiThread_8u_C1R(width, height, width, src.data(), width, dst.data(), radius,
                                    sigma);
    dst.resize(width * tqref::DefinedRows(height, radius));
    return dst;
}

// ---- Known pixels ----------------------------------------------------------------------------

TEST(BilateralMultiThread, TheLeftMarginIsShiftedAndTheRightOneReflected) {
    // Radius 2: weights 22, 7, 3. The padded row is 100 150 | 100 150 200 250 | 250 200.
    // 5200 / 42 = 123.8, 6600 / 42 = 157.1, 8250 / 42 = 196.4, 9700 / 42 = 230.95.
    Image src;
    for (int y = 0; y < 6; ++y) src.insert(src.end(), {100, 150, 200, 250});
    EXPECT_EQ(Filtered(4, 6, src, 2, kFlatSigma), (Image{124, 157, 196, 231, 124, 157, 196, 231}));
}

TEST(BilateralMultiThread, TheTopMarginIsReflected) {
    // Radius 1: weights 90 and 7. The first pass gives 100 | 100, 200, 150 and stops there.
    // (7 * 100 + 90 * 100 + 7 * 200) / 104 = 106.7, (7 * 100 + 90 * 200 + 7 * 150) / 104 = 189.9.
    EXPECT_EQ(Filtered(1, 4, {100, 200, 150, 120}, 1, kFlatSigma), (Image{107, 190}));
    // Radius 2: 200 100 | 100 200 ...: (3 * 200 + 7 * 100 + 22 * 100 + 7 * 200 + 3 * 150) / 42 =
    // 127.4.
    EXPECT_EQ(Filtered(2, 5, {100, 100, 200, 200, 150, 150, 120, 120, 60, 60}, 2, kFlatSigma),
              (Image{127, 127}));
}

TEST(BilateralMultiThread, WithARadiusAboveTheWidthTheMarginsGoOnWithTheirLastColumn) {
    // Radius 3: weights 15, 7, 4, 2. The padded row is 100 200 200 | 100 200 | 200 100 100.
    // (2 * 200 + 4 * 400 + 7 * 400 + 15 * 100) / 41 = 153.7 and (2 * 300 + 4 * 300 + 7 * 300 +
    // 15 * 200) / 41 = 168.3.
    Image src;
    for (int y = 0; y < 8; ++y) src.insert(src.end(), {100, 200});
    EXPECT_EQ(Filtered(2, 8, src, 3, kFlatSigma), (Image{154, 168, 154, 168}));
}

TEST(BilateralMultiThread, UniformImagesAreKeptWithinVideoRange) {
    for (auto [value, stored] : {std::pair{100, 100}, {10, 16}, {250, 235}, {0, 16}, {255, 235}})
        EXPECT_EQ(Filtered(9, 12, Image(108, static_cast<uint8_t>(value)), 3, 10),
                  Image(54, static_cast<uint8_t>(stored)))
            << value;
}

TEST(BilateralMultiThread, TheEdgesAreOthersThanThoseOfThePlainForm) {
    Image src(6 * 6, 50), plain(36), multi(36);
    for (int y = 0; y < 6; ++y) src[6 * y + 5] = 100;
    IPL_BilteralEx_8u_C1R(6, 6, 6, src.data(), 6, plain.data(), 1, kFlatSigma);
    IPL_BilteralExMutiThread_8u_C1R(6, 6, 6, src.data(), 6, multi.data(), 1, kFlatSigma);
    EXPECT_EQ(plain[5], 50);
    EXPECT_EQ(multi[5], 97);  // (7 * 50 + 97 * 100) / 104 = 96.6
    EXPECT_EQ(plain[3], 50);
    EXPECT_EQ(multi[3], 50);
}

// ---- The whole memory ------------------------------------------------------------------------

// Calls change(pixel) for the pixels that depend on unwritten memory.
template <class Change>
void ForEachOpenPixel(int width, int height, int stride, uint8_t* dst, int radius, Change change) {
    for (int y = tqref::DefinedRows(height, radius); y < height; ++y)
        for (int x = 0; x < width; ++x) change(dst[int64_t{y} * stride + x]);
}

// What the reference has there, if a result could be there.
void ForgetOpenPixel(uint8_t& pixel) {
    if (pixel >= 16 && pixel <= 235) pixel = 0;
}

void Model(BlockStage& stage, const PlanePair& pair, int radius, int sigma) {
    stage.Model([&](tqref::Bytes* images) {
        tqref::BilateralExMultiThread(pair.width, pair.height, pair.srcStride, images[0],
                                      pair.dstStride, images[1], radius, sigma, 0);
    });
}

void Filter(const PlanePair& pair, int radius, int sigma, uint8_t* const* images) {
    auto forEachOpenPixel = [&](auto change) {
        ForEachOpenPixel(pair.width, pair.height, pair.dstStride, images[1], radius, change);
    };
    constexpr uint8_t kNoResult = 255;
    forEachOpenPixel([](uint8_t& pixel) { pixel = kNoResult; });
    IPL_BilteralExMutiThread_8u_C1R(pair.width, pair.height, pair.srcStride, images[0],
                                    pair.dstStride, images[1], radius, sigma);
    forEachOpenPixel(ForgetOpenPixel);
}

TEST(BilateralMultiThread, EqualsTheReferenceAtAllSizesAndStrides) {
    LeaveInBuffers(0xDEADBEEF);
    Settings settings;
    BlockStage stage(2, 2048, 1);
    unsigned run = 0;
    for (int width : tqtest::kFilterWidths)
        for (int height : {9, 14})
            for (int radius : {1, 2, 3, 5}) {
                const std::vector<PlanePair> pairs = tqtest::PlanePairsBothWays(width, height);
                const PlanePair& pair = pairs[run % pairs.size()];
                settings.UseProcessors(1 + run++ % 16);
                Model(stage, pair, radius, 40 * radius);
                ASSERT_TRUE(tqtest::CheckAtEveryLevel(
                    stage,
                    [&](uint8_t* const* images) { Filter(pair, radius, 40 * radius, images); }))
                    << pair << ", radius " << radius << ", " << g_IPLProcessorCount
                    << " processors";
            }
}

TEST(BilateralMultiThread, EqualsTheReferenceAtEveryProcessorCount) {
    LeaveInBuffers(0xA5A5A5A5);
    Settings settings;
    BlockStage stage(2, 2048, 2);
    for (auto [width, height, radius] :
         {std::array{1, 1, 1}, {3, 20, 2}, {40, 3, 1}, {17, 18, 3}, {16, 16, 4}, {31, 33, 2}}) {
        const PlanePair pair{width, height, width + 4, width + 3};
        const int r = radius;
        Model(stage, pair, r, 70);
        for (unsigned processors = 1; processors <= 16; ++processors) {
            settings.UseProcessors(processors);
            EXPECT_TRUE(stage.Check([&](uint8_t* const* images) { Filter(pair, r, 70, images); }))
                << pair << ", " << processors << " processors";
        }
    }
}

TEST(BilateralMultiThread, UnwrittenRowsMayHoldAnything) {
    Settings settings;
    settings.UseProcessors(3);
    BlockStage stage(2, 1024, 3);
    const PlanePair pair{43, 15, 43, 45};
    for (uint32_t value : {0u, 1u, 128u, 255u, 256u, 0x7FFFFFFFu, 0x80000000u, 0x80000001u,
                           0xFFFFFFFFu, 0xFFFFFF00u, 0x55555555u, 0xAAAAAAAAu})
        for (int radius : {1, 3, 4, 6, 11}) {
            LeaveInBuffers(value);
            for (int sigma : {20, kFlatSigma}) {
                Model(stage, pair, radius, sigma);
                EXPECT_TRUE(stage.Check([&](uint8_t* const* images) {
                    Filter(pair, radius, sigma, images);
                })) << value
                    << ", radius " << radius;
            }
        }
}

TEST(BilateralMultiThread, RadiiAboveTheImageStayInside) {
    tqtest::Deadline deadline;
    Settings settings;
    BlockStage stage(2, 1024, 4);
    for (unsigned processors : {1u, 2u, 5u, 16u})
        for (auto [width, height] : {std::pair{1, 1}, {1, 12}, {12, 1}, {4, 5}, {3, 30}})
            for (int radius : {4, 5, 6, 12, 40, 200}) {
                settings.UseProcessors(processors);
                const PlanePair pair{width, height, width, width + 1};
                Model(stage, pair, radius, 50);
                EXPECT_TRUE(stage.Check([&](uint8_t* const* images) {
                    Filter(pair, radius, 50, images);
                })) << pair
                    << ", radius " << radius << ", " << processors << " processors";
            }
}

TEST(BilateralMultiThread, EqualsTheReferenceForAnySigma) {
    BlockStage stage(2, 1024, 5);
    const PlanePair pair{71, 13, 73, 72};
    for (int sigma : {1, 2, 5, 10, 30, 77, 150, 255, 1000, 46341, INT_MAX}) {
        Model(stage, pair, 3, sigma);
        EXPECT_TRUE(tqtest::CheckAtEveryLevel(stage, [&](uint8_t* const* images) {
            Filter(pair, 3, sigma, images);
        })) << sigma;
    }
}

TEST(BilateralMultiThread, EqualsTheReferenceForLargeRadii) {
    Settings settings;
    settings.UseProcessors(3);
    for (auto [width, height, radius, sigma] : {std::array{140, 70, 31, 60},
                                                {70, 135, 64, 60},
                                                {128, 258, 127, 60},
                                                {131, 259, 128, 60},
                                                {600, 9, 2, 15}}) {
        Image src = tqtest::ContrastNoise(width * height, radius), expected(src.size());
        tqref::Bytes from(src.data()), to(expected.data());
        tqref::BilateralExMultiThread(width, height, width, from, width, to, radius, sigma, 0);
        expected.resize(width * tqref::DefinedRows(height, radius));
        EXPECT_FALSE(expected.empty());
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
            settings.Use(level);
            EXPECT_TRUE(Filtered(width, height, src, radius, sigma) == expected)
                << width << " x " << height << ", radius " << radius << ", level "
                << tq::IsaLevelName(level);
        }
    }
}

// All of an image that is also its destination.
void ModelOverItself(BlockStage& stage, const PlanePair& pair, int radius, int sigma) {
    stage.Model([&](tqref::Bytes* images) {
        Image memory(pair.width * pair.height);
        tqref::Bytes filtered(memory.data());
        tqref::BilateralExMultiThread(pair.width, pair.height, pair.srcStride, images[0],
                                      pair.width, filtered, radius, sigma, 0);
        for (int y = 0; y < pair.height; ++y)
            for (int x = 0; x < pair.width; ++x)
                images[0][int64_t{y} * pair.srcStride + x] = memory[y * pair.width + x];
    });
}

TEST(BilateralMultiThread, SourceAndDestinationMayBeTheSameImage) {
    Settings settings;
    BlockStage stage(1, 1024, 6);
    for (unsigned processors : {1u, 3u, 8u})
        for (auto [width, height, stride, radius] :
             {std::array{17, 9, 20, 2}, {8, 12, 8, 4}, {33, 10, -35, 3}}) {
            settings.UseProcessors(processors);
            const PlanePair pair{width, height, stride, stride};
            const int r = radius;
            ModelOverItself(stage, pair, r, 50);
            EXPECT_TRUE(stage.Check([&](uint8_t* const* images) {
                IPL_BilteralExMutiThread_8u_C1R(pair.width, pair.height, pair.srcStride, images[0],
                                                pair.srcStride, images[0], r, 50);
                ForEachOpenPixel(pair.width, pair.height, pair.srcStride, images[0], r,
                                 ForgetOpenPixel);
            })) << pair;
        }
}

TEST(BilateralMultiThread, TheInPlaceFormEqualsTheReference) {
    Settings settings;
    BlockStage stage(1, 1024, 7);
    for (unsigned processors : {1u, 4u, 16u})
        for (int width : {1, 2, 7, 31})
            for (int height : {1, 4, 13})
                for (int stride : {width, width + 6, -width - 2})
                    for (int radius : {1, 2, 5}) {
                        settings.UseProcessors(processors);
                        const PlanePair pair{width, height, stride, stride};
                        ModelOverItself(stage, pair, radius, 60);
                        EXPECT_TRUE(stage.Check([&](uint8_t* const* images) {
                            IPL_BilteralExMutiThread_8u_C1R(width, height, stride, images[0],
                                                            radius, 60);
                            ForEachOpenPixel(width, height, stride, images[0], radius,
                                             ForgetOpenPixel);
                        })) << pair
                            << ", radius " << radius;
                    }
}

// ---- Tasks -----------------------------------------------------------------------------------

template <class Task, class Src, class Dst> void ExpectFieldsInOrder() {
    static_assert(std::is_base_of_v<CTQIPLTaskBase, Task>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcWidth), int>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcHeight), int>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pSrc), Src*>);
    static_assert(std::is_same_v<decltype(Task::m_nDstWidth), int>);
    static_assert(std::is_same_v<decltype(Task::m_nDstHeight), int>);
    static_assert(std::is_same_v<decltype(Task::m_nDstStride), int>);
    static_assert(std::is_same_v<decltype(Task::m_pDst), Dst*>);
    const Task task;
    const void* const fields[] = {
        &task,        &task.m_nSrcWidth, &task.m_nSrcHeight, &task.m_nSrcStride,
        &task.m_pSrc, &task.m_nDstWidth, &task.m_nDstHeight, &task.m_nDstStride,
        &task.m_pDst};
    tqtest::ExpectAddressesRise(fields);
}

TEST(BilateralTasks, FieldsStandInOrder) {
    ExpectFieldsInOrder<CDoBilateralFilterHTask, unsigned char, int>();
    ExpectFieldsInOrder<CDoBilateralFilterVTask, int, unsigned char>();
}

// The sizes of the destination follow from those of the source, and are not read.
template <class Task, class Src, class Dst>
int RunTask(const CZFilterTables& tables, int srcWidth, int srcHeight, int srcStride, Src* src,
            int columns, int dstStride, Dst* dst) {
    auto task = std::make_unique<Task>();
    task->m_nSrcWidth = srcWidth;
    task->m_nSrcHeight = srcHeight;
    task->m_nSrcStride = srcStride;
    task->m_pSrc = src;
    task->m_nDstWidth = task->m_nDstHeight = -1;
    task->m_nDstStride = dstStride;
    task->m_pDst = dst;
    task->m_pTables = &tables;
    std::vector<unsigned char> scratch(
        Task::ScratchBytes(std::max(columns, 0), tables.m_nRadius1D));
    task->m_pScratch = scratch.data();
    const std::unique_ptr<CTQIPLTaskBase> base = std::move(task);
    return base->Run();
}

TEST(BilateralTasks, TheHorizontalTaskFiltersRowsOfAPaddedImage) {
    Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels())
        for (int radius : {1, 2, 3, 5})
            for (int width : {1, 4, 9, 40}) {
                settings.Use(level);
                const int height = 3, padded = width + 2 * radius;
                const int srcStride = padded + 2, dstStride = padded + 1;
                const CZFilterTables tables = CZFilterTables::ForSeparableBilateral(radius, 60);
                Image src(srcStride * height);
                tqtest::FillHostile(src.data(), src.size(), width);
                std::vector<int> dst(dstStride * height, -7), expected = dst;
                tqref::Mean1D mean(radius, 60);
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x) {
                        mean.Start(src[y * srcStride + x + radius]);
                        for (int dx = -radius; dx <= radius; ++dx)
                            mean.Tap(dx, src[y * srcStride + x + radius + dx]);
                        expected[y * dstStride + x] = mean.Result();
                    }
                EXPECT_EQ(
                    RunTask<CDoBilateralFilterHTask>(tables, padded, height, srcStride, src.data(),
                                                     width, dstStride, dst.data()),
                    1);
                EXPECT_EQ(dst, expected) << radius << ", " << width;
            }
}

TEST(BilateralTasks, TheVerticalTaskFiltersColumnsOfNumbers) {
    Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels())
        for (int radius : {1, 2, 3, 5})
            for (int width : {1, 4, 9, 40}) {
                settings.Use(level);
                const int height = 7, padded = height + 2 * radius;
                const int srcStride = width + 2, dstStride = width + 1;
                const CZFilterTables tables = CZFilterTables::ForSeparableBilateral(radius, 60);
                Image bytes(srcStride * padded), dst(dstStride * height, 7);
                tqtest::FillHostile(bytes.data(), bytes.size(), width);
                std::vector<int> src(bytes.begin(), bytes.end());
                Image expected = dst;
                tqref::Mean1D mean(radius, 60);
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x) {
                        mean.Start(src[(y + radius) * srcStride + x]);
                        for (int dy = -radius; dy <= radius; ++dy)
                            mean.Tap(dy, src[(y + radius + dy) * srcStride + x]);
                        expected[y * dstStride + x] = mean.VideoResult();
                    }
                EXPECT_EQ(
                    RunTask<CDoBilateralFilterVTask>(tables, width, padded, srcStride, src.data(),
                                                     width, dstStride, dst.data()),
                    1);
                EXPECT_EQ(dst, expected) << radius << ", " << width;
            }
}

TEST(BilateralTasks, ABandWithoutRowsOrColumnsWritesNothing) {
    const CZFilterTables tables = CZFilterTables::ForSeparableBilateral(2, 60);
    Image bytes(64, 9);
    std::vector<int> numbers(64, 9);
    const std::vector<int> numbersBefore = numbers;
    const Image bytesBefore = bytes;
    for (int rows : {0, -1}) {
        EXPECT_EQ(RunTask<CDoBilateralFilterHTask>(tables, 8, rows, 8, bytes.data(), 4, 8,
                                                   numbers.data()),
                  1);
        EXPECT_EQ(numbers, numbersBefore);
    }
    for (int columns : {0, -1}) {
        EXPECT_EQ(RunTask<CDoBilateralFilterVTask>(tables, columns, 8, 8, numbers.data(), columns,
                                                   8, bytes.data()),
                  1);
        EXPECT_EQ(bytes, bytesBefore);
    }
}

// ---- Arguments out of range ------------------------------------------------------------------

TEST(BilateralMultiThread, ArgumentsOutOfRangeWriteNothing) {
    Settings settings;
    BlockStage stage(2, 64, 8);
    stage.Model([](tqref::Bytes*) {});
    for (unsigned processors : {1u, 3u}) {
        settings.UseProcessors(processors);
        EXPECT_TRUE(stage.Check([](uint8_t* const* images) {
            uint8_t *src = images[0], *dst = images[1];
            for (int size : {0, -1, -40000, INT_MIN}) {
                IPL_BilteralExMutiThread_8u_C1R(size, 4, 8, src, 8, dst, 2, 10);
                IPL_BilteralExMutiThread_8u_C1R(4, size, 8, src, 8, dst, 2, 10);
                IPL_BilteralExMutiThread_8u_C1R(size, size, 8, src, 8, dst, 2, 10);
                IPL_BilteralExMutiThread_8u_C1R(4, 4, 8, src, 8, dst, size, 10);
                IPL_BilteralExMutiThread_8u_C1R(4, 4, 8, src, 8, dst, 2, size);
            }
            IPL_BilteralExMutiThread_8u_C1R(4, 4, 0, src, 8, dst, 2, 10);
            IPL_BilteralExMutiThread_8u_C1R(4, 4, 8, nullptr, 8, dst, 2, 10);
            IPL_BilteralExMutiThread_8u_C1R(4, 4, 8, src, 0, dst, 2, 10);
            IPL_BilteralExMutiThread_8u_C1R(4, 4, 8, src, 8, nullptr, 2, 10);
        }));
    }
}

TEST(BilateralMultiThread, InPlaceARadiusOrSigmaBelowOneWritesNoMoreThanTheImage) {
    BlockStage stage(1, 256, 9);
    auto nowhere = [](int, int) { return false; };
    auto nothing = [](int, int, int, tqref::Bytes&, int, tqref::Bytes&, int, int) {};
    constexpr void (*form)(int, int, int, unsigned char*, int, int) =
        IPL_BilteralExMutiThread_8u_C1R;
    for (int stride : {9, 12, -13})
        for (auto [radius, sigma] : {std::pair{0, 10}, {2, 0}, {-1, 10}, {2, -10}, {INT_MIN, 0}})
            EXPECT_TRUE(tqtest::InPlaceEqualsReference(stage, 9, 5, stride, nothing, form, nowhere,
                                                       radius, sigma))
                << stride;
}

TEST(BilateralMultiThread, ARadiusWithoutMemoryForItsTableThrows) {
    tqtest::Deadline deadline;
    const uint64_t inUse = tq::SharedMemoryManager().m_nBytesInUse;
    Image image(16, 50), before = image;
    for (int radius : {1 << 28, 1 << 29, 1 << 30, INT_MAX - 1, INT_MAX}) {
        EXPECT_THROW(
            IPL_BilteralExMutiThread_8u_C1R(2, 2, 2, image.data(), 2, image.data() + 8, radius, 10),
            std::bad_alloc)
            << radius;
        EXPECT_THROW(IPL_BilteralExMutiThread_8u_C1R(2, 2, 2, image.data(), radius, 10),
                     std::bad_alloc)
            << radius;
    }
    EXPECT_EQ(image, before);
    EXPECT_EQ(tq::SharedMemoryManager().m_nBytesInUse, inUse);
}

// Its scratch image takes more than 2^31 or 2^32 bytes, which a system may give while most of them
// are not used.
TEST(BilateralMultiThread, ALargeRadiusEndsOneWayOrTheOther) {
    tqtest::Deadline deadline;
    const uint64_t inUse = tq::SharedMemoryManager().m_nBytesInUse;
    for (int radius : {11585, 16384}) {
        Image image(16, 255);
        try {
            IPL_BilteralExMutiThread_8u_C1R(2, 2, 2, image.data(), 2, image.data() + 8, radius, 10);
            for (int i = 8; i < 12; ++i) EXPECT_LE(image[i], 235) << radius;
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(image, Image(16, 255)) << radius;
        }
        EXPECT_EQ(image[7], 255);
        EXPECT_EQ(image[12], 255);
    }
    EXPECT_EQ(tq::SharedMemoryManager().m_nBytesInUse, inUse);
}

}  // namespace
