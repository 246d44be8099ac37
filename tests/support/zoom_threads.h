#pragma once

// Several host threads that zoom at once.

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "support/settings.h"
#include "support/zoom_check.h"

namespace tqtest {

// A thread for each of the first four forms. Each zooms images of its own, from `smallest` on to
// ever wider ones, and compares them with the reference.
inline void ExpectSeveralThreadsZoomAtOnce(const std::vector<ZoomForm>& forms,
                                           const ZoomSizes& smallest) {
    Settings settings;
    settings.UseProcessors(4);
    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < 4; ++seed)
        threads.emplace_back([&forms, &smallest, seed] {
            ZoomSizes sizes = smallest;
            for (int i = 0; i < 20; ++i, ++sizes.dstWidth) {
                ZoomTrial trial(forms.at(seed), sizes, ZoomLayouts()[seed], Content::kNoise, seed);
                EXPECT_TRUE(trial.Run());
            }
        });
    for (std::thread& thread : threads) thread.join();
}

}  // namespace tqtest
