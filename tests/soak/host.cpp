// What the host threads of the soak test do.

#include "host.h"

#include <tqipl/buffer.h>
#include <tqipl/thread.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <stdexcept>

#include "frame/isa.h"
#include "frame/module.h"
#include "support/function_task.h"
#include "support/wait_done.h"

namespace soak {

using tqtest::CallShape;
using tqtest::TaskList;

void Report::Fail(const std::string& what) {
    std::lock_guard lock(m_mutex);
    if (m_failed) return;
    m_what = what;
    m_failed = true;
}

Case::Case(const tqtest::FormCall& form, const CallShape& shape)
    : m_form(form), m_frame(shape), m_call(form.prepare(m_frame)) {
    const tqtest::FormCall& like = tqtest::AllFormCalls()[form.like];
    tqtest::CallFrame frame(shape);
    const tqtest::Call call = like.prepare(frame);
    frame.Refill();
    call();
    m_expected = frame.Contents();
}

void Case::Run(Report& report) {
    m_frame.Refill();
    m_call();
    ++report.calls;
    const std::vector<uint8_t> actual = m_frame.Contents();
    if (actual == m_expected) return;
    const auto at =
        std::mismatch(actual.begin(), actual.end(), m_expected.begin(), m_expected.end());
    const CallShape& shape = m_frame.Shape();
    report.Fail(m_form.name + " of " + std::to_string(shape.width) + " x " +
                std::to_string(shape.height) + " (to " + std::to_string(shape.zoomedWidth) + " x " +
                std::to_string(shape.zoomedHeight) + "), seed " + std::to_string(shape.seed) +
                ", " + std::to_string(g_IPLProcessorCount) + " processors, level " +
                tq::IsaLevelName(tq::CurrentIsaLevel()) + ": byte " +
                std::to_string(at.first - actual.begin()) + " of " +
                std::to_string(m_expected.size()) + " differs");
}

void Host::Run(const std::atomic<bool>& stop) {
    try {
        while (!stop && !m_report.Failed()) Step();
    } catch (const std::exception& exception) {
        m_report.Fail(std::string("an exception left: ") + exception.what());
    }
}

void Host::Step() {
    switch (m_draw.Below(24)) {
        case 0:
            return UseGlobalPool();
        case 1:
            return UseOwnPool();
        case 2:
            return UseOwnThread();
        case 3:
            return UseBorrowedWorker();
        case 4:
        case 5:
            return UseBuffers();
        case 6:
            return ThrowInTasks();
        default:
            return Any().Run(m_report);
    }
}

// All cases of this host at once, in tasks.
void Host::UseGlobalPool() {
    TaskList tasks(static_cast<int>(m_cases.size()),
                   [&](int i) { m_cases[static_cast<size_t>(i)]->Run(m_report); });
    CTQIPLThreadPool::GetInstance()->RunTasks(tasks.Array(), m_draw.Between(-1, 5));
    ++m_report.pools;
}

void Host::UseOwnPool() {
    CTQIPLThreadPool* pool = Create_IPLThreadPool();
    if (pool == nullptr) throw std::bad_alloc();
    const int most = m_draw.Between(1, kOwnPoolMost);
    pool->SetThreadLimits(static_cast<unsigned>(m_draw.Between(0, most)),
                          static_cast<unsigned>(most));
    for (int round = 0; round < 2; ++round) {
        std::vector<int> runs(static_cast<size_t>(m_draw.Between(1, 40)));
        TaskList tasks(static_cast<int>(runs.size()), [&](int i) {
            const auto number = static_cast<size_t>(i);
            ++runs[number];
            if (number < m_cases.size()) m_cases[number]->Run(m_report);
        });
        pool->RunTasks(tasks.Array(), m_draw.Between(-1, 9));
        if (std::count(runs.begin(), runs.end(), 1) != static_cast<std::ptrdiff_t>(runs.size()))
            m_report.Fail("a task did not run once");
        TQ_THREAD_STATS stats;
        pool->GetThreadStats(&stats);
        if (stats.m_nMaxThreads != static_cast<unsigned>(most) ||
            stats.m_nThreadCount > static_cast<unsigned>(most))
            m_report.Fail("a pool has more threads than its limit");
        if (m_draw.Below(2) == 0) pool->ReleaseIdleThreads();
    }
    Delete_IPLThreadPool(pool);
    ++m_report.pools;
}

void Host::UseOwnThread() {
    CTQIPLThreadBase thread;
    const CTQIPLThreadBase copy(thread);
    for (int round = 0; round < 3; ++round) {
        TaskList task(1, [&](int) { Any().Run(m_report); });
        if (!tqtest::WaitDone(thread.SetTask(task.Array().GetAt(0))))
            m_report.Fail("a thread's task does not end");
    }
    ++m_report.wrappers;
}

void Host::UseBorrowedWorker() {
    CTQIPLThreadAuto worker;
    for (int round = 0; round < 3; ++round) {
        TaskList task(1, [&](int) { Any().Run(m_report); });
        if (!tqtest::WaitDone(worker.SetTask(task.Array().GetAt(0))))
            m_report.Fail("a borrowed worker's task does not end");
    }
    ++m_report.wrappers;
}

// Buffers of the shared manager and of one of this call's own hold what is written to them.
void Host::UseBuffers() {
    void* const own = m_draw.Below(3) == 0 ? IPL_GetMemoryManager() : nullptr;
    {
        struct Held {
            CTQIPLMemoryAuto buffer;
            int last;  // its last byte
            uint8_t value;
        };
        std::vector<std::unique_ptr<Held>> held;
        for (int i = m_draw.Between(1, 5); i > 0; --i) {
            held.push_back(std::make_unique<Held>());
            Held& one = *held.back();
            one.last = m_draw.Between(1, 3 << 20);
            one.value = static_cast<uint8_t>(m_draw.Below(256));
            CTQIPLMemoryAuto(one.last + 1, own).Transfer(one.buffer);
            one.buffer.Data()[0] = one.buffer.Data()[one.last] = one.value;
        }
        const int size = m_draw.Between(1, 2 << 20);
        unsigned char* zeros = IPL_Malloc(size, 1);
        if (zeros[0] != 0 || zeros[size / 2] != 0 || zeros[size - 1] != 0)
            m_report.Fail("memory that was to be zero is not");
        std::memset(zeros, 0xEE, static_cast<size_t>(std::min(size, 5000)));
        Any().Run(m_report);
        for (const auto& one : held)
            if (one->buffer.Data()[0] != one->value || one->buffer.Data()[one->last] != one->value)
                m_report.Fail("a buffer does not hold what was written to it");
        IPL_Free(zeros);
    }
    IPL_DeletMemoryManager(own);
    ++m_report.buffers;
}

void Host::ThrowInTasks() {
    const int count = m_draw.Between(1, 9), thrower = m_draw.Below(count);
    TaskList tasks(count, [&](int i) {
        if (i == thrower) throw std::runtime_error("expected");
        if (static_cast<size_t>(i) < m_cases.size()) m_cases[static_cast<size_t>(i)]->Run(m_report);
    });
    try {
        CTQIPLThreadPool::GetInstance()->RunTasks(tasks.Array(), m_draw.Between(-1, 5));
        m_report.Fail("an exception of a task did not reach the caller");
    } catch (const std::runtime_error& exception) {
        if (std::strcmp(exception.what(), "expected") != 0) throw;
    }
    ++m_report.pools;
}

}  // namespace soak
