// Pictures of what a way there and back changes.

#include "demo/difference.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace tqipl {

Shown ShowDifference(const Picture& before, Picture after) {
    Shown shown{std::move(after), {}, {}};
    const Size size = shown.picture.size;
    int largest = 0;
    int64_t sum = 0;
    shown.timing.byHost = true;
    shown.timing.plainMs = TimeOf([&] {
        for (int y = 0; y < size.height; ++y) {
            const uint8_t* expected =
                before.bytes.data() + static_cast<size_t>(y) * static_cast<size_t>(before.Stride());
            uint8_t* row = shown.picture.bytes.data() +
                           static_cast<size_t>(y) * static_cast<size_t>(size.width) * 4;
            for (int i = 0; i < size.width * 4; ++i) {
                if (i % 4 == 3) continue;
                const int difference = std::abs(expected[i] - row[i]);
                largest = std::max(largest, difference);
                sum += difference;
                row[i] = static_cast<uint8_t>(std::min(difference * kAmplification, 255));
            }
        }
    });
    const double samples = double(size.width) * size.height * 3;
    char remark[100];
    std::snprintf(remark, sizeof remark, "On average %.2f of 255, at most %d.",
                  static_cast<double>(sum) / samples, largest);
    shown.remark = remark;
    return shown;
}

}  // namespace tqipl
