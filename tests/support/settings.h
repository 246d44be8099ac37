#pragma once

#include <vector>

#include "frame/isa.h"
#include "frame/module.h"

namespace tqtest {

// Every instruction-set level that this machine runs.
inline std::vector<tq::IsaLevel> RunnableIsaLevels() {
    std::vector<tq::IsaLevel> levels;
    for (size_t i = 0; i <= static_cast<size_t>(tq::DetectIsaLevel()); ++i)
        levels.push_back(static_cast<tq::IsaLevel>(i));
    return levels;
}

// Puts the level and the processor count back when a test ends.
class Settings {
public:
    ~Settings() {
        tq::SetIsaLevel(m_level);
        g_IPLProcessorCount = m_processors;
    }
    void Use(tq::IsaLevel level) { tq::SetIsaLevel(level); }
    void UseProcessors(unsigned count) { g_IPLProcessorCount = count; }

private:
    tq::IsaLevel m_level = tq::CurrentIsaLevel();
    unsigned m_processors = g_IPLProcessorCount;
};

}  // namespace tqtest
