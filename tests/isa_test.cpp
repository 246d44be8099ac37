// Instruction-set levels.

#include "frame/isa.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "support/settings.h"

namespace {

TEST(Isa, HighestRunnableLevelIsInForceFromLoad) {
    EXPECT_EQ(tq::CurrentIsaLevel(), tq::DetectIsaLevel());
}

TEST(Isa, DetectedLevelIsWhatTheProcessorHas) {
#if defined(__x86_64__)
    const tq::IsaLevel expected = __builtin_cpu_supports("avx2")     ? tq::IsaLevel::kAvx2
                                  : __builtin_cpu_supports("sse4.1") ? tq::IsaLevel::kSse41
                                                                     : tq::IsaLevel::kBase;
    EXPECT_EQ(tq::DetectIsaLevel(), expected);
#else
    EXPECT_EQ(tq::DetectIsaLevel(), tq::IsaLevel::kBase);
#endif
}

TEST(Isa, LevelsRiseFromTheBase) {
    EXPECT_EQ(static_cast<size_t>(tq::IsaLevel::kBase), 0u);
#if defined(__x86_64__)
    EXPECT_EQ(static_cast<size_t>(tq::IsaLevel::kSse41), 1u);
    EXPECT_EQ(static_cast<size_t>(tq::IsaLevel::kAvx2), 2u);
#endif
    EXPECT_LT(static_cast<size_t>(tq::DetectIsaLevel()), tq::kIsaLevelCount);
}

TEST(Isa, EveryLevelHasItsName) {
    std::set<std::string> names;
    for (size_t i = 0; i < tq::kIsaLevelCount; ++i)
        names.insert(tq::IsaLevelName(static_cast<tq::IsaLevel>(i)));
    EXPECT_EQ(names.size(), tq::kIsaLevelCount);
    EXPECT_EQ(names.count(""), 0u);
}

TEST(Isa, KernelsFollowTheLevelInForce) {
    struct Kernels {
        int level;
    };
    static Kernels tables[tq::kIsaLevelCount];
    const Kernels* byLevel[tq::kIsaLevelCount];
    for (size_t i = 0; i < tq::kIsaLevelCount; ++i) {
        tables[i].level = static_cast<int>(i);
        byLevel[i] = &tables[i];
    }
    const Kernels* const(&table)[tq::kIsaLevelCount] = byLevel;
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        EXPECT_EQ(tq::CurrentIsaLevel(), level);
        EXPECT_EQ(tq::SelectKernels(table).level, static_cast<int>(level));
    }
}

}  // namespace
