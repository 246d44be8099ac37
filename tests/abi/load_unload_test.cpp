// The module loaded and let go at run time, before and after its threads have started. Every case
// ends or the test's time limit stops it: a module that joins its threads at the wrong moment
// hangs.

#include <gtest/gtest.h>

#include <vector>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

class Module {
public:
#if defined(_WIN32)
    Module() : m_handle(LoadLibraryA(TQIPL_MODULE)) {}
    bool Close() { return FreeLibrary(m_handle) != 0; }
    static bool IsLoaded() { return GetModuleHandleA(TQIPL_MODULE) != nullptr; }
    void* Find(const char* name) { return reinterpret_cast<void*>(GetProcAddress(m_handle, name)); }

private:
    HMODULE m_handle;
#else
    Module() : m_handle(dlopen(TQIPL_MODULE, RTLD_NOW | RTLD_LOCAL)) {}
    bool Close() { return dlclose(m_handle) == 0; }
    static bool IsLoaded() {
        void* handle = dlopen(TQIPL_MODULE, RTLD_NOW | RTLD_NOLOAD);
        if (handle != nullptr) dlclose(handle);
        return handle != nullptr;
    }
    void* Find(const char* name) { return dlsym(m_handle, name); }

private:
    void* m_handle;
#endif
public:
    template <class Function> Function* Get(const char* name) {
        return reinterpret_cast<Function*>(Find(name));
    }
};

using Convert = void(int, int, int, unsigned char*, int, unsigned char*);

// Pool threads start even on one processor in this form.
void RunOnPool(Module& module) {
    auto* convert = module.Get<Convert>("_Z29IPL_YUYV2ARGB_601_MultiThreadiiiPhiS_");
    ASSERT_NE(convert, nullptr);
    std::vector<unsigned char> yuyv(64 * 64 * 2, 128), argb(64 * 64 * 4);
    convert(64, 64, 128, yuyv.data(), 256, argb.data());
    EXPECT_EQ(argb[3], 255);
}

// Without threads a module goes when it is let go. The order of the tests matters on Windows,
// where the module stays once a thread has started.
TEST(Module1, GoesWhenNothingWasCalled) {
    Module module;
    ASSERT_TRUE(Module::IsLoaded());
    EXPECT_TRUE(module.Close());
    EXPECT_FALSE(Module::IsLoaded());
}

TEST(Module1, GoesAfterPlainCallsAndBuffers) {
    for (int round = 0; round < 3; ++round) {
        Module module;
        auto* allocate = module.Get<unsigned char*(int)>("_Z10IPL_Malloci");
        auto* release = module.Get<void(unsigned char*)>("_Z8IPL_FreePh");
        ASSERT_NE(allocate, nullptr);
        ASSERT_NE(release, nullptr);
        unsigned char* kept = allocate(100);
        release(allocate(200));
        EXPECT_NE(kept, nullptr);
        EXPECT_TRUE(module.Close());
        EXPECT_FALSE(Module::IsLoaded());
    }
}

TEST(Module2, LetsGoAfterThreadsHaveRun) {
    for (int round = 0; round < 3; ++round) {
        Module module;
        RunOnPool(module);
        EXPECT_TRUE(module.Close());
#if defined(_WIN32)
        EXPECT_TRUE(Module::IsLoaded());
#else
        EXPECT_FALSE(Module::IsLoaded());
#endif
    }
}

TEST(Module3, EndsWithTheProcessWhileThreadsWait) {
    Module module;
    RunOnPool(module);
}

}  // namespace
