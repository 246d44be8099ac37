// What erosion and dilation do when memory runs out.

#include <gtest/gtest.h>
#include <tqipl/buffer.h>
#include <tqipl/morph.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "frame/memory_manager.h"
#include "frame/platform.h"
#include "morph/morph_tasks.h"
#include "support/deadline.h"
#include "support/morph_check.h"
#include "support/replaced_new.h"
#include "support/settings.h"

#if TQTEST_REPLACES_NEW
namespace {

using tqtest::Deadline;
using tqtest::Settings;

using Bytes = std::vector<uint8_t>;

constexpr int kWidth = 300, kHeight = 64;
constexpr std::size_t kMebibyte = std::size_t{1} << 20;

struct Form {
    std::string name;
    // Buffers that a call takes before its first task: the images and rows that all tasks share.
    int sharedBuffers;
    std::function<void(uint8_t* src, uint8_t* dst)> call;  // those in place change dst
};

std::vector<Form> Forms() {
    const auto direct = [](auto function, int radiusY) {
        return
            [=](uint8_t*, uint8_t* image) { function(kWidth, kHeight, kWidth, image, radiusY, 2); };
    };
    const auto fast = [](void (*function)(int, int, int, unsigned char*, int, int), int radiusY) {
        return
            [=](uint8_t*, uint8_t* image) { function(kWidth, kHeight, kWidth, image, radiusY, 2); };
    };
    const auto fromTo =
        [](void (*function)(int, int, int, unsigned char*, int, unsigned char*, int, int)) {
            return [=](uint8_t* src, uint8_t* dst) {
                function(kWidth, kHeight, kWidth, src, kWidth, dst, 2, 2);
            };
        };
    const auto twice = [](void (*function)(int, int, int, unsigned char*, int, int, int, int)) {
        return
            [=](uint8_t*, uint8_t* image) { function(kWidth, kHeight, kWidth, image, 2, 2, 1, 3); };
    };
    const auto fromToTwice = [](void (*function)(int, int, int, unsigned char*, int, unsigned char*,
                                                 int, int, int, int)) {
        return [=](uint8_t* src, uint8_t* dst) {
            function(kWidth, kHeight, kWidth, src, kWidth, dst, 2, 2, 1, 3);
        };
    };
    // Bands of 16 rows share copies of their seams at a radius of 2, and the image at one of 9.
    return {
        {"IPL_Erosion", 0, direct(IPL_Erosion, 2)},
        {"IPL_Dilation", 0, direct(IPL_Dilation, 2)},
        {"IPL_Erosion_MultiThread", 1, direct(IPL_Erosion_MultiThread, 2)},
        {"IPL_Erosion_MultiThread, large radius", 1, direct(IPL_Erosion_MultiThread, 9)},
        {"IPL_Dilation_MultiThread", 1, direct(IPL_Dilation_MultiThread, 2)},
        {"IPL_Dilation_MultiThread, large radius", 1, direct(IPL_Dilation_MultiThread, 9)},
        {"IPL_Opening_MultiThread", 1, direct(IPL_Opening_MultiThread, 2)},
        {"IPL_Closing_MultiThread", 1, direct(IPL_Closing_MultiThread, 2)},
        {"IPL_DeNoise_MultiThread", 1, direct(IPL_DeNoise_MultiThread, 2)},
        {"IPL_FErosion", 0, fast(IPL_FErosion, 2)},
        {"IPL_FDilation", 0, fast(IPL_FDilation, 2)},
        {"IPL_FErosion_MultiThread", 1, fast(IPL_FErosion_MultiThread, 2)},
        {"IPL_FErosion_MultiThread, large radius", 1, fast(IPL_FErosion_MultiThread, 9)},
        {"IPL_FErosion_MultiThread, two images", 0, fromTo(IPL_FErosion_MultiThread)},
        {"IPL_FDilation_MultiThread", 1, fast(IPL_FDilation_MultiThread, 2)},
        {"IPL_FDilation_MultiThread, large radius", 1, fast(IPL_FDilation_MultiThread, 9)},
        {"IPL_FDilation_MultiThread, two images", 0, fromTo(IPL_FDilation_MultiThread)},
        {"IPL_FOpening_MultiThread", 1, twice(IPL_FOpening_MultiThread)},
        {"IPL_FOpening_MultiThread, two images", 1, fromToTwice(IPL_FOpening_MultiThread)},
        {"IPL_FClosing_MultiThread", 1, twice(IPL_FClosing_MultiThread)},
        {"IPL_FClosing_MultiThread, two images", 1, fromToTwice(IPL_FClosing_MultiThread)},
        {"IPL_FDeNoise_MultiThread", 1, fast(IPL_FDeNoise_MultiThread, 2)},
    };
}

// In a scope, the shared manager has so many buffers to give and no more.
class BuffersLeft {
public:
    explicit BuffersLeft(int count) : m_refuse(tqtest::RefuseArrays::From(kMebibyte)) {
        CIPLMemoryAlloc& manager = tq::SharedMemoryManager();
        while (manager.m_chainFree.m_nCount > 0) {
            const auto* cached = static_cast<CIPLMemoryBuf*>(manager.m_chainFree.m_pTail);
            m_held.push_back(IPL_Malloc(static_cast<int>(cached->m_nSize) - 1));
        }
        s_left = count;
        tq::g_platformSeams.allocatePages = Allocate;
    }
    ~BuffersLeft() {
        tq::g_platformSeams.allocatePages = tq::SystemAllocatePages;
        for (unsigned char* buffer : m_held) IPL_Free(buffer);
    }
    BuffersLeft(const BuffersLeft&) = delete;
    BuffersLeft& operator=(const BuffersLeft&) = delete;

private:
    static void* Allocate(size_t bytes) {
        return s_left-- > 0 ? tq::SystemAllocatePages(bytes) : nullptr;
    }
    static inline std::atomic<int> s_left{0};

    tqtest::RefuseArrays m_refuse;
    std::vector<unsigned char*> m_held;
};

Bytes Mask() {
    Bytes mask(size_t{kWidth} * kHeight);
    tqtest::FillMask(mask.data(), mask.size(), tqtest::MaskContent::kNoise, 2, 5);
    return mask;
}

// Whether the call leaves with std::bad_alloc if there are so many buffers.
bool RunsOut(const Form& form, int buffers, Bytes& src, Bytes& dst) {
    BuffersLeft left(buffers);
    try {
        form.call(src.data(), dst.data());
    } catch (const std::bad_alloc&) {
        return true;
    }
    return false;
}

TEST(MorphologyMemory, WhereverItRunsOutTheCallerIsToldAndNothingIsLost) {
    Settings settings;
    Deadline deadline;
    settings.UseProcessors(4);
    const Bytes mask = Mask();
    for (const Form& form : Forms()) {
        Bytes src = mask, expected = mask;
        form.call(src.data(), expected.data());
        const uint64_t before = tq::SharedMemoryManager().m_nBytesInUse;
        for (int buffers = 0; buffers <= 8; ++buffers) {
            Bytes dst = mask;
            const bool ranOut = RunsOut(form, buffers, src, dst);
            // The first task of all has nothing left to work with.
            if (buffers <= form.sharedBuffers) {
                EXPECT_TRUE(ranOut) << form.name << ", " << buffers;
            }
            // Each task gives its buffer back, so that no more are in use at a time.
            if (buffers >= form.sharedBuffers + 4) {
                EXPECT_FALSE(ranOut) << form.name << ", " << buffers;
            }
            if (!ranOut) {
                EXPECT_EQ(dst == expected, true) << form.name << ", " << buffers;
            }
            EXPECT_EQ(src == mask, true) << form.name << ", " << buffers;
            EXPECT_EQ(tq::SharedMemoryManager().m_nBytesInUse, before)
                << form.name << ", " << buffers;
            Bytes again = mask;
            form.call(src.data(), again.data());
            EXPECT_EQ(again == expected, true) << form.name << ", after " << buffers;
        }
    }
}

template <class Task> void ExpectToldAndNothingWritten(Task& task) {
    task.m_nWidth = kWidth;
    task.m_nHeight = kHeight;
    task.m_nSrcStride = task.m_nDstStride = kWidth;
    task.m_nRadiusY = task.m_nRadiusX = 1;
    Bytes src = Mask(), dst = src;
    task.m_pSrc = src.data();
    task.m_pDst = dst.data();
    BuffersLeft none(0);
    EXPECT_THROW(task.Run(), std::bad_alloc);
    EXPECT_EQ(dst == src, true);
}

TEST(MorphologyMemory, TasksOfAHostThrow) {
    CMorph_ErosionTask erosion;
    erosion.m_bFirst = erosion.m_bLast = 1;
    ExpectToldAndNothingWritten(erosion);
    CMorph_DilationTask dilation;
    dilation.m_bFirst = dilation.m_bLast = 1;
    ExpectToldAndNothingWritten(dilation);
    CZFErosion_Task fastErosion;
    fastErosion.m_nRows = kHeight;
    ExpectToldAndNothingWritten(fastErosion);
    CZFDilation_Task fastDilation;
    fastDilation.m_nRows = kHeight;
    ExpectToldAndNothingWritten(fastDilation);
}

}  // namespace
#endif
