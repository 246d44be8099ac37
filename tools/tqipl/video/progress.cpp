// The progress of a video on the standard error.

#include "video/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "text.h"

namespace tqipl {

namespace {

std::string Speed(uint64_t frames, double seconds) {
    char text[64];
    std::snprintf(text, sizeof text, "%.1f frames/s",
                  static_cast<double>(frames) / std::max(seconds, 1e-6));
    return text;
}

}  // namespace

VideoProgress::VideoProgress(bool quiet)
    : m_quiet(quiet),
      m_isTerminal(isatty(STDERR_FILENO) != 0),
      m_start(Clock::now()),
      m_last(m_start) {}

VideoProgress::~VideoProgress() {
    if (m_isWithinLine) std::fputc('\n', stderr);
}

double VideoProgress::Seconds() const {
    return std::chrono::duration<double>(Clock::now() - m_start).count();
}

void VideoProgress::Show(uint64_t frames, uint64_t read, std::optional<uint64_t> length) {
    if (m_quiet) return;
    const Clock::time_point now = Clock::now();
    if (now - m_last < std::chrono::milliseconds(m_isTerminal ? 200 : 10000)) return;
    m_last = now;
    std::string line =
        Count(static_cast<size_t>(frames), "frame", "frames") + ", " + Speed(frames, Seconds());
    if (length && *length > 0)
        line += ", " + std::to_string(std::min<uint64_t>(read * 100 / *length, 100)) + " %";
    if (m_isTerminal)
        std::fprintf(stderr, "\r%s\033[K", line.c_str());
    else
        std::fprintf(stderr, "%s\n", line.c_str());
    std::fflush(stderr);
    m_isWithinLine = m_isTerminal;
}

void VideoProgress::Finish(uint64_t framesRead, uint64_t framesWritten, Size size) {
    if (m_quiet) return;
    const double seconds = Seconds();
    std::string line = Count(static_cast<size_t>(framesRead), "frame", "frames") + " read, " +
                       std::to_string(framesWritten) + " written, " + ToText(size) + ", " +
                       Speed(framesRead, seconds) + ", " + Milliseconds(seconds * 1000);
    if (m_isWithinLine) line = "\r" + line + "\033[K";
    std::fprintf(stderr, "%s\n", line.c_str());
    m_isWithinLine = false;
}

}  // namespace tqipl
