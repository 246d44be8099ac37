// The progress of a long command on the standard output.

#include "demo/progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>

namespace tqipl {

namespace {

constexpr size_t kBarCells = 24;

size_t TerminalColumns() {
    winsize window{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) != 0 || window.ws_col == 0) return 80;
    return window.ws_col;
}

}  // namespace

Progress::Progress(size_t total) : m_total(total), m_terminal(isatty(STDOUT_FILENO) != 0) {}

Progress::~Progress() { ClearBar(); }

void Progress::ClearBar() {
    if (m_barShown) std::cout << "\r\x1B[K" << std::flush;
    m_barShown = false;
}

void Progress::Begin(const std::string& what) {
    if (!m_terminal) return;
    const size_t cells = m_total == 0 ? kBarCells : kBarCells * m_done / m_total;
    std::string line = "[";
    line.append(cells, '#').append(kBarCells - cells, '.').append("] ");
    line += std::to_string(m_done) + "/" + std::to_string(m_total) + " " + what;
    line.resize(std::min(line.size(), TerminalColumns() - 1));
    std::cout << "\r\x1B[K" << line << std::flush;
    m_barShown = true;
}

void Progress::End(const std::string& line) {
    ++m_done;
    if (!m_terminal) std::cout << m_done << "/" << m_total << " " << line << std::endl;
}

}  // namespace tqipl
