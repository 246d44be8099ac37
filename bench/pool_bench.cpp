// What the frame costs beside the pixels: handing out tasks, and getting buffers.

#include <tqipl/buffer.h>
#include <tqipl/thread.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <new>
#include <thread>
#include <vector>

#include "bench/families.h"
#include "bench/support/rows.h"

namespace tqbench {

namespace {

using TaskArray = CTQArray<CTQIPLTaskBase*, CTQIPLTaskBase*>;

class EmptyTask : public CTQIPLTaskBase {
public:
    int Run() override { return 1; }
};

class CountingTask : public CTQIPLTaskBase {
public:
    std::atomic<int> runs{0};
    int Run() override { return ++runs; }
};

template <class Task> struct Tasks {
    explicit Tasks(int count) : tasks(count) {
        for (Task& task : tasks) array.Add(&task);
    }
    std::vector<Task> tasks;
    TaskArray array;
};

std::string CheckRunTasks(int count, int threadLimit) {
    Tasks<CountingTask> tasks(count);
    CTQIPLThreadPool::GetInstance()->RunTasks(tasks.array, threadLimit);
    for (const CountingTask& task : tasks.tasks)
        if (task.runs != 1) return "a task ran " + std::to_string(task.runs) + " times";
    return "";
}

void AddRunTasks(int count, int threadLimit, const char* limitName) {
    const auto tasks = std::make_shared<Tasks<EmptyTask>>(count);
    AddRow({.name = "RunTasks/" + std::to_string(count) + "_empty_tasks/" + limitName,
            .items = count,
            .bytes = 0,
            .threaded = true,
            .check = [=] { return CheckRunTasks(count, threadLimit); },
            .prepare = {},
            .call = [=] { CTQIPLThreadPool::GetInstance()->RunTasks(tasks->array, threadLimit); }});
}

// The same work without a pool.
void AddThreads(int count) {
    AddRow({.name = "std::thread/" + std::to_string(count) + "_empty_tasks/one_thread_each",
            .items = count,
            .bytes = 0,
            .threaded = true,
            .check = {},
            .prepare = {},
            .call = [=] {
                std::vector<std::thread> threads;
                for (int i = 0; i < count; ++i) threads.emplace_back([] { EmptyTask().Run(); });
                for (std::thread& thread : threads) thread.join();
            }});
}

// One way to get a frame's memory and to give it back.
struct BufferWay {
    const char* name;
    bool cleared;
    // Takes a buffer of `size` bytes, hands it to `use`, gives it back.
    void (*take)(int size, void (*use)(uint8_t* buffer, int size));
};

const BufferWay kBufferWays[] = {
    {"CTQIPLMemoryAuto", false,
     [](int size, void (*use)(uint8_t*, int)) {
         CTQIPLMemoryAuto buffer(size, nullptr);
         use(buffer.Data(), size);
     }},
    {"CTQIPLMemoryAuto_and_clear", true,
     [](int size, void (*use)(uint8_t*, int)) {
         CTQIPLMemoryAuto buffer(size, nullptr);
         std::memset(buffer.Data(), 0, static_cast<size_t>(size));
         use(buffer.Data(), size);
     }},
    {"IPL_Malloc_and_zero", true,
     [](int size, void (*use)(uint8_t*, int)) {
         unsigned char* buffer = IPL_Malloc(size, 1);
         use(buffer, size);
         IPL_Free(buffer);
     }},
    {"operator_new_and_clear", true,
     [](int size, void (*use)(uint8_t*, int)) {
         void* buffer = ::operator new(static_cast<size_t>(size));
         std::memset(buffer, 0, static_cast<size_t>(size));
         use(static_cast<uint8_t*>(buffer), size);
         ::operator delete(buffer);
     }},
};

bool g_wasClear;

// Buffers can be written to their last byte, and the cleared ones come clear a second time.
std::string CheckBuffer(const BufferWay& way, int size) {
    for (int turn = 0; turn < 2; ++turn) {
        way.take(size, [](uint8_t* buffer, int bytes) {
            g_wasClear = std::all_of(buffer, buffer + bytes, [](uint8_t b) { return b == 0; });
            std::memset(buffer, 0xEE, static_cast<size_t>(bytes));
        });
        if (way.cleared && !g_wasClear) return "the buffer is not clear";
    }
    return "";
}

uint8_t* volatile g_buffer;

void AddBuffers(Size size) {
    const int bytes = static_cast<int>(size.Pixels() * 4);
    for (const BufferWay& way : kBufferWays)
        AddRow({.name = std::string(way.name) + "/" + ToString(size),
                .items = 1,
                .bytes = way.cleared ? bytes : 0,
                .threaded = false,
                .check = [=] { return CheckBuffer(way, bytes); },
                .prepare = {},
                .call = [=] { way.take(bytes, [](uint8_t* buffer, int) { g_buffer = buffer; }); }});
}

}  // namespace

void AddPool() {
    for (int count : {1, 2, 8, 64}) {
        AddRunTasks(count, -1, "pool");
        AddRunTasks(count, 1, "serial");
        AddThreads(count);
    }
    for (const Size size : kSizes) AddBuffers(size);
}

}  // namespace tqbench
