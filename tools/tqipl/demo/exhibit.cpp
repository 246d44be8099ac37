// Timing of the two forms of a routine, and the comparison of their results.

#include "demo/exhibit.h"

#include <algorithm>
#include <cstddef>

namespace tqipl {

namespace {

// Long routines run less often than kMaxRuns.
constexpr double kEnoughMs = 1000;

// Not a value that a routine would leave by chance, so that a byte that one form does not write
// shows as a difference.
constexpr uint8_t kPlainNoise = 0xA5;
constexpr uint8_t kMultiThreadNoise = 0x5A;

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace

Measured Measure(size_t resultBytes, const TimedForm& plain, const TimedForm& multiThread) {
    Measured measured;
    measured.bytes.resize(resultBytes);
    std::vector<uint8_t> other(multiThread ? resultBytes : 0);
    std::vector<double> plainMs;
    std::vector<double> multiThreadMs;
    double spentMs = 0;
    for (int run = 0; run < kMaxRuns && (run < kMinRuns || spentMs < kEnoughMs); ++run) {
        std::fill(measured.bytes.begin(), measured.bytes.end(), kPlainNoise);
        spentMs += plainMs.emplace_back(plain(measured.bytes.data()));
        if (!multiThread) continue;
        std::fill(other.begin(), other.end(), kMultiThreadNoise);
        spentMs += multiThreadMs.emplace_back(multiThread(other.data()));
        if (other != measured.bytes) measured.timing.sameBytes = false;
    }
    measured.timing.plainMs = Median(plainMs);
    if (multiThread) measured.timing.multiThreadMs = Median(multiThreadMs);
    return measured;
}

Shown MeasurePicture(Size size, Channels channels, const TimedForm& plain,
                     const TimedForm& multiThread) {
    Shown shown{Picture(size, channels), {}, {}};
    Measured measured = Measure(shown.picture.bytes.size(), plain, multiThread);
    shown.picture.bytes = std::move(measured.bytes);
    shown.timing = measured.timing;
    return shown;
}

}  // namespace tqipl
