#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "picture.h"
#include "stopwatch.h"

namespace tqipl {

// A photograph that the routines work on.
struct Sample {
    std::string name;  // of its file, without the ending
    Picture picture;   // as the file holds it
    Picture colour;    // the same with four bytes a pixel
    double decodeMs = 0;
};

// Milliseconds that something took; medians where it ran several times.
struct Timing {
    double plainMs = 0;
    std::optional<double> multiThreadMs;  // none: there is no MultiThread form
    bool sameBytes = true;                // both forms gave the same result
    const char* notCompared = nullptr;    // why the forms' results need not be equal
    bool byHost = false;                  // plainMs is the host's work, not the library's
    bool onlyMultiThread = false;         // plainMs is that of a form without a plain one
};

// What an exhibit came out as.
struct Shown {
    Picture picture;
    Timing timing;
    std::string remark;  // what is known only now; goes behind the caption
};

enum class View {
    kWhole,   // the sheet shows the whole picture, reduced
    kDetail,  // the sheet shows the middle, pixel for pixel
};

// One picture of the demo.
struct Exhibit {
    std::string id;  // its file is <photograph>-<id>.png
    std::string title;
    std::string caption;
    std::string routine;  // the library's routines behind it; empty if it is the host's work
    View view = View::kWhole;
    std::function<Shown()> make;
};

// Computes a result and returns the milliseconds spent in the library. The result is noise when it
// is called.
using TimedForm = std::function<double(unsigned char* result)>;

struct Measured {
    std::vector<uint8_t> bytes;  // the plain form's result
    Timing timing;
};

// Runs both forms several times in turn and compares their results, kMinRuns to kMaxRuns runs
// each. multiThread may be empty.
inline constexpr int kMinRuns = 3;
inline constexpr int kMaxRuns = 9;
Measured Measure(size_t resultBytes, const TimedForm& plain, const TimedForm& multiThread);

// The same for forms whose result is a whole picture.
Shown MeasurePicture(Size size, Channels channels, const TimedForm& plain,
                     const TimedForm& multiThread);

}  // namespace tqipl
