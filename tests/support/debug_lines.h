#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "frame/platform.h"

namespace tqtest {

// Catches what goes to the debug channel while it lives. One at a time, and no thread may start
// while it comes or goes.
class DebugLines {
public:
    DebugLines() {
        s_lines.clear();
        tq::g_platformSeams.debugText = Catch;
    }
    ~DebugLines() { tq::g_platformSeams.debugText = tq::SystemDebugText; }
    DebugLines(const DebugLines&) = delete;
    DebugLines& operator=(const DebugLines&) = delete;

    std::vector<std::string> Lines() const {
        std::lock_guard lock(s_mutex);
        return s_lines;
    }
    size_t Count() const { return Lines().size(); }

    static std::string Of(unsigned int threadId) {
        return "thread " + std::to_string(static_cast<int>(threadId)) +
               " newly create----------------------------------\n";
    }

private:
    static void Catch(const char* text) {
        std::lock_guard lock(s_mutex);
        s_lines.push_back(text);
    }

    static inline std::mutex s_mutex;
    static inline std::vector<std::string> s_lines;
};

}  // namespace tqtest
