// The module as a host that links it sees it: one call of each kind across the boundary, and the
// layout of the records and classes that cross it.

#include <TQIPLBaseLibU.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace {

using IntArray = CTQArray<int, int>;
static_assert(offsetof(IntArray, m_pData) == 0);
static_assert(offsetof(IntArray, m_nSize) == 8);
static_assert(offsetof(IntArray, m_nMaxSize) == 16);
static_assert(offsetof(IntArray, m_nGrowBy) == 24);
static_assert(sizeof(IntArray) == 32);
static_assert(sizeof(IntArray().m_nSize) == 8);

static_assert(sizeof(TQ_RECT) == 16 && offsetof(TQ_RECT, top) == 4);
static_assert(offsetof(TQ_RECT, right) == 8 && offsetof(TQ_RECT, bottom) == 12);
static_assert(sizeof(TQ_THREAD_STATS) == 16 && offsetof(TQ_THREAD_STATS, m_nThreadCount) == 4);
static_assert(offsetof(TQ_THREAD_STATS, m_nBusyThreads) == 8);
static_assert(offsetof(TQ_THREAD_STATS, m_nIdleThreads) == 12);
static_assert(sizeof(TQ_COLOR_FORMAT) == 4 && sizeof(TQ_COLOR_MATRIX) == 4);
static_assert(sizeof(CTQIPLTaskBase) == 8 && sizeof(CTQIPLThreadPool) == 8);
static_assert(sizeof(CTQIPLThreadBase) == 16 && sizeof(CTQIPLThreadAuto) == 16);
static_assert(sizeof(CTQIPLMemoryAuto) == 40);

TEST(ModuleVersion, IsThatOfTheHeaders) {
    EXPECT_STREQ(TQ_GetVersion(), TQIPL_VERSION_STRING);
    EXPECT_EQ(std::string(TQ_GetVersion()), std::to_string(TQIPL_VERSION_MAJOR) + "." +
                                                std::to_string(TQIPL_VERSION_MINOR) + "." +
                                                std::to_string(TQIPL_VERSION_PATCH));
}

#if defined(_WIN32)
TEST(ModuleVersion, IsWhatTheSystemShows) {
    std::vector<unsigned char> resource(GetFileVersionInfoSizeA("TQIPLBaseLibU.dll", nullptr));
    ASSERT_FALSE(resource.empty());
    ASSERT_TRUE(GetFileVersionInfoA("TQIPLBaseLibU.dll", 0, static_cast<DWORD>(resource.size()),
                                    resource.data()));
    void* found = nullptr;
    UINT size = 0;
    ASSERT_TRUE(VerQueryValueA(resource.data(), "\\", &found, &size));
    ASSERT_EQ(size, sizeof(VS_FIXEDFILEINFO));
    const VS_FIXEDFILEINFO* fixed = static_cast<VS_FIXEDFILEINFO*>(found);
    const DWORD upper = TQIPL_VERSION_MAJOR << 16 | TQIPL_VERSION_MINOR;
    const DWORD lower = TQIPL_VERSION_PATCH << 16;
    EXPECT_EQ(fixed->dwFileVersionMS, upper);
    EXPECT_EQ(fixed->dwFileVersionLS, lower);
    EXPECT_EQ(fixed->dwProductVersionMS, upper);
    EXPECT_EQ(fixed->dwProductVersionLS, lower);
    for (const char* name : {"FileVersion", "ProductVersion"}) {
        const std::string path = std::string("\\StringFileInfo\\040904B0\\") + name;
        ASSERT_TRUE(VerQueryValueA(resource.data(), path.c_str(), &found, &size)) << name;
        EXPECT_STREQ(static_cast<char*>(found), TQIPL_VERSION_STRING) << name;
    }
}
#endif

template <class T> T FieldAt(const void* object, size_t offset) {
    T field;
    std::memcpy(&field, static_cast<const char*>(object) + offset, sizeof field);
    return field;
}

TEST(ModuleLayout, AutoBufferHoldsBufferSizeDescriptorManagerInThisOrder) {
    void* manager = IPL_GetMemoryManager();
    {
        CTQIPLMemoryAuto buffer(1234567, manager);
        ASSERT_EQ(buffer.IsNULL(), 0);
        EXPECT_EQ(FieldAt<unsigned char*>(&buffer, 8), buffer.Data());
        EXPECT_EQ(FieldAt<int>(&buffer, 16), 1234567);
        EXPECT_NE(FieldAt<void*>(&buffer, 24), nullptr);
        EXPECT_EQ(FieldAt<void*>(&buffer, 32), manager);
    }
    IPL_DeletMemoryManager(manager);
}

class CountingTask : public CTQIPLTaskBase {
public:
    int m_runs = 0;
    int Run() override { return ++m_runs; }
};

TEST(ModulePool, RunsTheTasksOfAHost) {
    ASSERT_EQ(CTQIPLThreadPool::GetInstance(), CTQIPLThreadPool::GetInstance());
    EXPECT_GE(CTQIPLThreadPool::GetProcessorsNum(), 1u);
    CTQIPLThreadPool* own = Create_IPLThreadPool();
    for (CTQIPLThreadPool* pool : {CTQIPLThreadPool::GetInstance(), own}) {
        CountingTask tasks[5];
        CTQArray<CTQIPLTaskBase*, CTQIPLTaskBase*> array;
        for (CountingTask& task : tasks) array.Add(&task);
        EXPECT_EQ(pool->RunTasks(array, 3), 0);
        for (CountingTask& task : tasks) EXPECT_EQ(task.m_runs, 1);
        TQ_THREAD_STATS stats;
        EXPECT_EQ(pool->GetThreadStats(&stats), 0);
        EXPECT_EQ(stats.m_nMaxThreads, 128u);
        EXPECT_GE(stats.m_nThreadCount, 1u);
        EXPECT_EQ(pool->ReleaseIdleThreads(), 0);
        EXPECT_EQ(pool->SetThreadLimits(1, 128), 0);
    }
    Delete_IPLThreadPool(own);
    Delete_IPLThreadPool(nullptr);
}

struct HostFault {
    int number;
};

class FaultyTask : public CTQIPLTaskBase {
public:
    int Run() override { throw HostFault{4711}; }
};

TEST(ModulePool, HandsAHostWhatItsTaskThrew) {
    for (int limit : {1, 2}) {
        FaultyTask faulty;
        CTQArray<CTQIPLTaskBase*, CTQIPLTaskBase*> tasks;
        tasks.Add(&faulty);
        try {
            CTQIPLThreadPool::GetInstance()->RunTasks(tasks, limit);
            ADD_FAILURE();
        } catch (const HostFault& fault) {
            EXPECT_EQ(fault.number, 4711);
        }
    }
}

bool WaitDone(void* event) {
#if defined(_WIN32)
    return WaitForSingleObject(event, 10000) == WAIT_OBJECT_0;
#else
    return TQ_WaitEvent(event, 10000) == 1;
#endif
}

TEST(ModuleThreads, EventsOfBothWrappersAreWaitable) {
    CountingTask task;
    CTQIPLThreadBase own;
    EXPECT_TRUE(WaitDone(own.SetTask(&task)));
    CTQIPLThreadAuto borrowed;
    EXPECT_TRUE(WaitDone(borrowed.SetTask(&task)));
    EXPECT_EQ(task.m_runs, 2);
    EXPECT_NE(own.GetEvent(), borrowed.GetEvent());
}

TEST(ModuleMemory, BuffersComeAndGo) {
    unsigned char* buffer = IPL_Malloc(0x100000, 1);
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(buffer[0x1FFFFF], 0);
    buffer[5] = 77;
    IPL_Free(buffer);
    unsigned char* again = IPL_Malloc(0x1FFFFE);
    EXPECT_EQ(again, buffer);
    EXPECT_EQ(again[5], 77);
    IPL_Free(again);
    IPL_Free(nullptr);
}

TEST(ModuleImages, EveryFamilyAnswers) {
    std::vector<unsigned char> yuyv = {180, 128, 180, 128, 16, 128, 16, 128};
    std::vector<unsigned char> argb(16), back(8), plane(4), twice(8);
    IPL_YUYV2ARGB_709_MultiThread(4, 1, 8, yuyv.data(), 16, argb.data());
    EXPECT_EQ(argb, (std::vector<unsigned char>{191, 191, 191, 255, 191, 191, 191, 255, 0, 0, 0,
                                                255, 0, 0, 0, 255}));
    IPL_ARGB2YUYV_709_MultiThread(4, 1, 16, argb.data(), 8, back.data());
    EXPECT_EQ(back, yuyv);
    IPL_ARGB2LUM_MultiThread(4, 1, 16, argb.data(), 4, plane.data());
    EXPECT_EQ(plane, (std::vector<unsigned char>{191, 191, 0, 0}));
    IPL_ZoomLinearMultiThread_8u_C1R(4, 1, 4, plane.data(), 8, 1, 8, twice.data());
    EXPECT_EQ(twice, (std::vector<unsigned char>{191, 191, 191, 143, 47, 0, 0, 0}));
    TQ_RECT inner = {1, -5, 2, 9};
    IPL_FillMemoryOut_C1R(4, 1, 4, plane.data(), inner, 9);
    EXPECT_EQ(plane, (std::vector<unsigned char>{9, 191, 9, 9}));
    EXPECT_EQ(inner.top, 0);
    EXPECT_EQ(inner.bottom, 1);
    unsigned long format = TQ_COLOR_UYVY;
    EXPECT_EQ(IPL_PixelRatioEx(format), 2);
}

}  // namespace
