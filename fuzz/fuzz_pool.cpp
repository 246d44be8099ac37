// Sequences of calls: arrays, the memory manager, thread pools and thread wrappers.

#include <tqipl/array.h>
#include <tqipl/buffer.h>
#include <tqipl/thread.h>
#include <tqipl/types.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "fuzz_check.h"
#include "support/function_task.h"
#include "support/wait_done.h"

namespace {

using tqfuzz::Input;
using tqfuzz::Require;

// ---- Arrays against std::vector -----------------------------------------------------------------

void CheckArray(Input& input) {
    CTQArray<int, int> array;
    std::vector<int> model;
    array.m_nGrowBy = input.Int(0, 9);
    while (input.Left() != 0) {
        const uint8_t call = input.Byte() % 5;
        const int64_t number = input.WildInt(-3, 40);
        const auto size = static_cast<int64_t>(model.size());
        switch (call) {
            case 0:
                array.SetSize(std::min<int64_t>(number, 5000));
                if (number >= 0) model.resize(static_cast<size_t>(std::min<int64_t>(number, 5000)));
                break;
            case 1:
                array.RemoveAt(number);
                if (number >= 0 && number < size) model.erase(model.begin() + number);
                break;
            case 2: {
                if (model.empty()) model.push_back(0);
                const int64_t last = static_cast<int64_t>(model.size()) - 1;
                int& element = array.GetAt(number);
                int& expected = model[static_cast<size_t>(std::clamp<int64_t>(number, 0, last))];
                Require(element == expected, "GetAt gives another element");
                element = expected = static_cast<int>(number ^ 0x5A5A);
                break;
            }
            default:
                array.Add(static_cast<int>(number));
                model.push_back(static_cast<int>(number));
        }
        Require(array.GetSize() == static_cast<int64_t>(model.size()) &&
                    std::equal(model.begin(), model.end(), array.m_pData),
                "the array holds something else");
        Require(array.m_nMaxSize >= array.m_nSize && (array.m_pData != nullptr || model.empty()),
                "the array's capacity is too small");
    }
}

// ---- Buffers ------------------------------------------------------------------------------------

// Both ends of every buffer that is out are written and stay as they are until it goes back.
void CheckBuffers(Input& input) {
    struct Buffer {
        unsigned char* data;
        int size;
        uint8_t mark;
    };
    std::vector<Buffer> out;
    const auto intact = [](const Buffer& buffer) {
        return buffer.data[0] == buffer.mark && buffer.data[buffer.size] == buffer.mark;
    };
    uint8_t mark = 0;
    for (int calls = 0; calls < 60 && input.Left() != 0; ++calls) {
        const uint8_t call = input.Byte();
        if (call % 3 != 0 && out.size() < 12) {
            // A buffer is a byte longer than asked for at least.
            const int size = input.Int(0, 3) * 0x80000 + input.Int(0, 200);
            const bool zero = call % 16 == 1;
            unsigned char* data = zero ? IPL_Malloc(size, 1) : IPL_Malloc(size);
            Require(data != nullptr, "no buffer");
            Require(reinterpret_cast<uintptr_t>(data) % 16 == 0, "a buffer is not aligned");
            if (zero)
                Require(std::all_of(data, data + size, [](uint8_t byte) { return byte == 0; }),
                        "a zeroed buffer is not zero");
            for (const Buffer& other : out)
                Require(data + size < other.data || data > other.data + other.size,
                        "two buffers overlap");
            data[0] = data[size] = ++mark;
            out.push_back({data, size, mark});
        } else if (!out.empty()) {
            const size_t i = input.Byte() % out.size();
            Require(intact(out[i]), "a buffer was written by somebody else");
            IPL_Free(out[i].data);
            // Once more, and what never was a buffer, does no harm.
            if (call % 4 == 0) IPL_Free(out[i].data);
            if (call % 4 == 1) IPL_Free(&mark);
            if (call % 4 == 2) IPL_Free(nullptr);
            out.erase(out.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
    for (const Buffer& buffer : out) {
        Require(intact(buffer), "a buffer was written by somebody else");
        IPL_Free(buffer.data);
    }
}

// Holders of buffers from a manager of their own; only one of those that share a buffer gives it
// back.
void CheckHolders(Input& input) {
    void* manager = input.Flag() ? IPL_GetMemoryManager() : nullptr;
    {
        std::vector<std::unique_ptr<CTQIPLMemoryAuto>> holders;
        for (int i = 0; i < 4; ++i)
            holders.push_back(std::make_unique<CTQIPLMemoryAuto>(input.Int(0, 200), manager));
        for (int calls = 0; calls < 40 && input.Left() != 0; ++calls) {
            const uint8_t call = input.Byte();
            auto& holder = holders[call % 4];
            auto& other = holders[call / 4 % 4];
            switch (call / 16 % 3) {
                case 0:
                    holder->Release();
                    Require(holder->IsNULL() == 1 && holder->Data() == nullptr,
                            "a buffer is held after its release");
                    break;
                case 1:
                    // A target that holds a buffer would lose it.
                    if (other != holder && other->IsNULL() == 1) {
                        unsigned char* data = holder->Data();
                        holder->Transfer(*other);
                        Require(other->Data() == data && holder->Data() == nullptr,
                                "a buffer was not moved");
                    }
                    break;
                default:
                    holder = std::make_unique<CTQIPLMemoryAuto>(input.Int(0, 200), manager);
                    Require(holder->IsNULL() == 0, "no buffer");
                    holder->Data()[0] = call;
            }
        }
    }
    if (manager != nullptr) IPL_DeletMemoryManager(manager);
}

// ---- Threads ------------------------------------------------------------------------------------

// Every task runs once, whatever the limits; idle workers may go at any time.
void CheckPools(Input& input) {
    CTQIPLThreadPool* pool =
        input.Flag() ? Create_IPLThreadPool() : CTQIPLThreadPool::GetInstance();
    unsigned limit = 128;
    const bool own = pool != CTQIPLThreadPool::GetInstance();
    for (int calls = 0; calls < 12 && input.Left() != 0; ++calls) {
        const uint8_t call = input.Byte();
        if (call % 4 == 0) {
            Require(pool->ReleaseIdleThreads() == 0, "ReleaseIdleThreads");
        } else if (call % 4 == 1 && own) {
            const auto least = static_cast<unsigned>(input.Int(0, 4));
            const auto most = static_cast<unsigned>(input.Int(0, 8));
            Require(pool->SetThreadLimits(least, most) == 0, "SetThreadLimits");
            limit = std::max(least, most);
        } else {
            const int count = input.Int(0, 20), threads = input.Int(-1, 20);
            const bool nested = call % 8 == 7;
            std::vector<std::atomic<int>> runs(static_cast<size_t>(count));
            std::atomic<int> atOnce{0}, most{0};
            tqtest::TaskList tasks;
            for (int i = 0; i < count; ++i) {
                if (call % 16 == 2) tasks.AddNull();
                tasks.Add([&, i] {
                    const int current = ++atOnce;
                    int seen = most;
                    while (seen < current && !most.compare_exchange_weak(seen, current)) {
                    }
                    if (nested) {
                        tqtest::TaskList inner(2, [&](int) { ++runs[i]; });
                        pool->RunTasks(inner.Array(), 2);
                    } else {
                        ++runs[i];
                    }
                    --atOnce;
                });
            }
            Require(pool->RunTasks(tasks.Array(), threads) == 0, "RunTasks");
            for (const std::atomic<int>& run : runs)
                Require(run == (nested ? 2 : 1), "a task did not run once");
            const int allowed = threads < 0 ? static_cast<int>(g_IPLProcessorCount) : threads;
            Require(most <= std::max(1, std::min(allowed, static_cast<int>(limit))),
                    "too many tasks at once");
        }
        TQ_THREAD_STATS stats;
        Require(pool->GetThreadStats(&stats) == 0, "GetThreadStats");
        if (own) Require(stats.m_nMaxThreads == limit, "the limit is another");
    }
    if (own) Delete_IPLThreadPool(pool);
}

template <class Wrapper> void CheckWrapper(Input& input) {
    int runs = 0;
    tqtest::FunctionTask task([&] { ++runs; });
    Wrapper wrapper;
    const int count = input.Int(0, 4);
    for (int i = 1; i <= count; ++i) {
        void* event = wrapper.SetTask(&task);
        Require(event != nullptr && event == wrapper.GetEvent(), "the event is another");
        Require(tqtest::WaitDone(event), "no event");
        Require(runs == i, "a task did not run once");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    tqfuzz::UseMachine(input);
    switch (input.Byte() % 8) {
        case 0:
            CheckBuffers(input);
            break;
        case 1:
            CheckHolders(input);
            break;
        case 2:
        case 3:
            CheckPools(input);
            break;
        case 4:
            CheckWrapper<CTQIPLThreadBase>(input);
            break;
        case 5:
            CheckWrapper<CTQIPLThreadAuto>(input);
            break;
        default:
            CheckArray(input);
    }
    return 0;
}
