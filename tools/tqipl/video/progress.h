#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "picture.h"

namespace tqipl {

// How far a video is, on the standard error. On a terminal one line that is written over, otherwise
// a line every ten seconds; and one at the end.
class VideoProgress {
public:
    explicit VideoProgress(bool quiet);
    VideoProgress(const VideoProgress&) = delete;
    VideoProgress& operator=(const VideoProgress&) = delete;
    // Leaves the line, so that what comes next is on its own.
    ~VideoProgress();

    // Of `length` bytes, where they are known, `read` are read.
    void Show(uint64_t frames, uint64_t read, std::optional<uint64_t> length);
    void Finish(uint64_t framesRead, uint64_t framesWritten, Size size);

private:
    using Clock = std::chrono::steady_clock;
    double Seconds() const;

    bool m_quiet;
    bool m_isTerminal;
    bool m_isWithinLine = false;
    Clock::time_point m_start;
    Clock::time_point m_last;
};

}  // namespace tqipl
