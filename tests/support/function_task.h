#pragma once

// Tasks for a pool or a thread wrapper, made from lambdas.

#include <tqipl/thread.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tqtest {

class FunctionTask : public CTQIPLTaskBase {
public:
    explicit FunctionTask(std::function<void()> body) : m_body(std::move(body)) {}
    int Run() override {
        m_body();
        return 1;
    }

private:
    std::function<void()> m_body;
};

// An array of tasks with their owner.
class TaskList {
public:
    TaskList() = default;
    // `count` tasks that call body(0), body(1) and so on.
    TaskList(int count, const std::function<void(int)>& body) {
        for (int i = 0; i < count; ++i) Add([body, i] { body(i); });
    }
    void Add(std::function<void()> body) {
        m_owned.push_back(std::make_unique<FunctionTask>(std::move(body)));
        m_array.Add(m_owned.back().get());
    }
    void AddNull() { m_array.Add(nullptr); }
    CTQArray<CTQIPLTaskBase*, CTQIPLTaskBase*>& Array() { return m_array; }

private:
    std::vector<std::unique_ptr<FunctionTask>> m_owned;
    CTQArray<CTQIPLTaskBase*, CTQIPLTaskBase*> m_array;
};

}  // namespace tqtest
