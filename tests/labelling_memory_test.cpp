// What labelling, denoising and growth do when memory runs out.

#include <gtest/gtest.h>
#include <tqipl/labelling.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "support/deadline.h"
#include "support/mask_pictures.h"
#include "support/settings.h"

// Clang's thread sanitizer links operators of its own beside which no others can stand.
#define TQTEST_REPLACES_NEW 1
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#undef TQTEST_REPLACES_NEW
#define TQTEST_REPLACES_NEW 0
#endif
#endif

#if TQTEST_REPLACES_NEW
namespace {

// Blocks that this thread took and did not give back.
thread_local long g_blocksOfThread = 0;
// Large blocks in use: of runs, and not what the pool's threads take and give back at any time.
std::atomic<long> g_largeBlocks{0};
constexpr std::size_t kLargeBytes = 2048;

// Blocks of this many bytes or more are refused.
constexpr std::size_t kMostBytes = std::size_t{1} << 40;
std::atomic<std::size_t> g_refuseFrom{kMostBytes};
// n: the nth block from now is refused, and all behind it. Below 1: none is.
std::atomic<int> g_left{0};
std::atomic<bool> g_counting{false};

// Before each block, its size.
constexpr std::size_t kHead = 16;

bool IsRefused(std::size_t bytes) {
    if (bytes >= g_refuseFrom) return true;
    return g_counting && --g_left < 1;
}

}  // namespace

// Not inlined: a compiler that sees through them takes free for the wrong counterpart of new.
__attribute__((noinline)) void* operator new(std::size_t bytes) {
    if (IsRefused(bytes)) throw std::bad_alloc();
    auto* memory = static_cast<std::size_t*>(std::malloc(bytes + kHead));
    if (memory == nullptr) throw std::bad_alloc();
    *memory = bytes;
    ++g_blocksOfThread;
    if (bytes >= kLargeBytes) ++g_largeBlocks;
    return reinterpret_cast<char*>(memory) + kHead;
}
__attribute__((noinline)) void operator delete(void* block) noexcept {
    if (block == nullptr) return;
    auto* memory = reinterpret_cast<std::size_t*>(static_cast<char*>(block) - kHead);
    --g_blocksOfThread;
    if (*memory >= kLargeBytes) --g_largeBlocks;
    std::free(memory);
}
void operator delete(void* block, std::size_t) noexcept { operator delete(block); }
void* operator new[](std::size_t bytes) { return operator new(bytes); }
void operator delete[](void* block) noexcept { operator delete(block); }
void operator delete[](void* block, std::size_t) noexcept { operator delete(block); }

namespace {

using tqtest::Deadline;
using tqtest::Picture;
using tqtest::RectArray;
using tqtest::Settings;

constexpr int kWidth = 300, kHeight = 200;

struct Form {
    std::string name;
    bool inBands;
    std::function<void(uint8_t* mask, uint8_t* other)> call;
};

std::vector<Form> Forms() {
    const auto labelling = [](auto function) {
        return [function](uint8_t* mask, uint8_t*) {
            RectArray rects;
            function(kWidth, kHeight, kWidth, mask, &rects, 2);
        };
    };
    const auto holes = [](auto function) {
        return [function](uint8_t* mask, uint8_t*) { function(kWidth, kHeight, kWidth, mask, 2); };
    };
    const auto guided = [](auto function) {
        return [function](uint8_t* mask, uint8_t* guide) {
            function(kWidth, kHeight, kWidth, guide, kWidth, mask, 2);
        };
    };
    return {
        {"IPL_FCCLabeling", false, labelling(IPL_FCCLabeling)},
        {"IPL_FCCLabeling2", false, labelling(IPL_FCCLabeling2)},
        {"IPL_FCCLabeling_MultiThread", true, labelling(IPL_FCCLabeling_MultiThread)},
        {"IPL_FCCLabelingEx", false,
         [](uint8_t* mask, uint8_t* connect) {
             RectArray rects;
             IPL_FCCLabelingEx(kWidth, kHeight, kWidth, mask, connect, &rects, 2);
         }},
        {"IPL_FCCLabelingDeNoise", false, holes(IPL_FCCLabelingDeNoise)},
        {"IPL_FCCLabelingDeNoiseEx", false, holes(IPL_FCCLabelingDeNoiseEx)},
        {"IPL_FCCLabelingDeNoiseEx_MultiThread", true, holes(IPL_FCCLabelingDeNoiseEx_MultiThread)},
        {"IPL_FCCLabelingDeNoiseEx2", false, holes(IPL_FCCLabelingDeNoiseEx2)},
        {"IPL_FCCLabelingDeNoiseEx2_MultiThread", true,
         holes(IPL_FCCLabelingDeNoiseEx2_MultiThread)},
        {"IPL_FCCDeNoiseAndGrowth", false, guided(IPL_FCCDeNoiseAndGrowth)},
        {"IPL_FCCDeNoiseAndGrowth2", false, guided(IPL_FCCDeNoiseAndGrowth2)},
        {"IPL_FCCDeNoiseAndGrowth2_MultiThread", true,
         guided(IPL_FCCDeNoiseAndGrowth2_MultiThread)}};
}

// Whether the call leaves with std::bad_alloc.
bool RunsOut(const Form& form, Picture& mask, Picture& other) {
    try {
        form.call(mask.pixels.data(), other.pixels.data());
    } catch (const std::bad_alloc&) {
        return true;
    }
    return false;
}

TEST(LabellingMemory, WhereverItRunsOutNothingIsLost) {
    const Picture noise = tqtest::NoisePicture(kWidth, kHeight, 50, 1);
    for (const Form& form : Forms()) {
        if (form.inBands) continue;
        Picture mask = noise, other = noise;
        ASSERT_FALSE(RunsOut(form, mask, other)) << form.name;
        int blocks = 0;
        for (bool refused = true; refused; ++blocks) {
            ASSERT_LT(blocks, 1000) << form.name;
            mask = noise;
            const long before = g_blocksOfThread;
            g_left = blocks + 1;
            g_counting = true;
            refused = RunsOut(form, mask, other);
            g_counting = false;
            ASSERT_EQ(g_blocksOfThread, before) << form.name << ", block " << blocks;
        }
        EXPECT_GT(blocks, 2) << form.name;
    }
}

TEST(LabellingMemory, BandsThatRunOutTellTheCallerAndLoseNothing) {
    Settings settings;
    Deadline deadline;
    settings.UseProcessors(4);
    const Picture noise = tqtest::NoisePicture(kWidth, kHeight, 50, 1);
    for (const Form& form : Forms()) {
        if (!form.inBands) continue;
        Picture mask = noise, other = noise;
        ASSERT_FALSE(RunsOut(form, mask, other)) << form.name;
        const Picture expected = mask;
        for (int run = 0; run < 3; ++run) {
            mask = noise;
            const long before = g_largeBlocks;
            // Far above what threads and tasks need, far below what the runs of a band do.
            g_refuseFrom = 20000;
            const bool refused = RunsOut(form, mask, other);
            g_refuseFrom = kMostBytes;
            EXPECT_TRUE(refused) << form.name;
            EXPECT_EQ(g_largeBlocks, before) << form.name;
            mask = noise;
            EXPECT_FALSE(RunsOut(form, mask, other)) << form.name;
            EXPECT_EQ(mask, expected) << form.name;
        }
    }
}

TEST(LabellingMemory, CallsThatEndWellLoseNothing) {
    Settings settings;
    settings.UseProcessors(5);
    for (const Form& form : Forms()) {
        Picture mask = tqtest::NoisePicture(kWidth, kHeight, 30, 2), other = mask;
        form.call(mask.pixels.data(), other.pixels.data());
        const long before = g_largeBlocks;
        form.call(mask.pixels.data(), other.pixels.data());
        EXPECT_EQ(g_largeBlocks, before) << form.name;
    }
}

}  // namespace
#endif
