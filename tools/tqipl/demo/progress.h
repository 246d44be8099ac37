#pragma once

#include <cstddef>
#include <string>

namespace tqipl {

// The progress of a long command on the standard output: a bar on a terminal, a line for each
// finished piece elsewhere.
class Progress {
public:
    explicit Progress(size_t total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();  // takes the bar away

    void Begin(const std::string& what);
    void End(const std::string& line);

private:
    void ClearBar();

    size_t m_total;
    size_t m_done = 0;
    bool m_terminal;
    bool m_barShown = false;
};

}  // namespace tqipl
