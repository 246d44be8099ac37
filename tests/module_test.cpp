// The module's process-wide objects.

#include "frame/module.h"

#include <gtest/gtest.h>
#include <tqipl/thread.h>

#include "frame/isa.h"
#include "frame/platform.h"
#include "frame/thread_pool.h"
#include "support/settings.h"

namespace {

class Module : public testing::Test {
protected:
    ~Module() override { tq::g_platformSeams.processorCount = tq::SystemProcessorCount; }

    // What the start-up makes of a system that reports this many.
    template <unsigned int kReported> static unsigned int CountAtLoad() {
        tq::g_platformSeams.processorCount = [] { return kReported; };
        const CTQIPLBaseLibInit init;
        return g_IPLProcessorCount;
    }

    tqtest::Settings m_settings;
};

TEST_F(Module, ProcessorCountIsReadAtLoad) {
    EXPECT_GE(g_IPLProcessorCount, 1u);
    EXPECT_EQ(g_IPLProcessorCount, tq::SystemProcessorCount());
    EXPECT_EQ(CTQIPLThreadPool::GetProcessorsNum(), g_IPLProcessorCount);
}

TEST_F(Module, SystemThatReportsNoProcessorCountsAsOne) {
    EXPECT_EQ(CountAtLoad<0>(), 1u);
    EXPECT_EQ(CTQIPLThreadPool::GetProcessorsNum(), 1u);
}

TEST_F(Module, OtherReportsAreTakenAsTheyAre) {
    EXPECT_EQ(CountAtLoad<1>(), 1u);
    EXPECT_EQ(CountAtLoad<7>(), 7u);
    EXPECT_EQ(CountAtLoad<192>(), 192u);
    EXPECT_EQ(CTQIPLThreadPool::GetProcessorsNum(), 192u);
}

TEST_F(Module, StartUpTakesTheHighestRunnableLevel) {
    m_settings.Use(tq::IsaLevel::kBase);
    const CTQIPLBaseLibInit init;
    EXPECT_EQ(tq::CurrentIsaLevel(), tq::DetectIsaLevel());
}

TEST_F(Module, GlobalPoolIsTheSameObjectEveryTime) {
    CTQIPLThreadPool* const global = &g_IPLThreadPool;
    EXPECT_EQ(CTQIPLThreadPool::GetInstance(), global);
    EXPECT_EQ(CTQIPLThreadPool::GetInstance(), global);
}

TEST_F(Module, NoThreadExistsAfterLoad) {
    TQ_THREAD_STATS stats{9, 9, 9, 9};
    EXPECT_EQ(CTQIPLThreadPool::GetInstance()->GetThreadStats(&stats), 0);
    EXPECT_EQ(stats.m_nMaxThreads, 128u);
    EXPECT_EQ(stats.m_nThreadCount, 0u);
    EXPECT_EQ(stats.m_nBusyThreads, 0u);
    EXPECT_EQ(stats.m_nIdleThreads, 0u);
}

}  // namespace
