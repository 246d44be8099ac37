#pragma once

// What the tests of the average and of the median share: both go over a square window, and leave
// the same bytes of an image alone.

#include <gtest/gtest.h>

#include <climits>
#include <utility>

#include "reference/smooth_reference.h"
#include "support/deadline.h"
#include "support/filter_check.h"

namespace tqtest {

template <class Reference, class Form>
void ExpectRadiiAboveTheImageStayInside(Reference reference, Form form, uint32_t seed) {
    Deadline deadline;
    BlockStage stage(2, 512, seed);
    for (int radius :
         {4, 5, 6, 100, 23170, 32767, 32768, 46340, 46341, 65535, 1 << 30, INT_MAX - 1, INT_MAX})
        for (auto [width, height] : {std::pair{1, 1}, {3, 2}, {2, 7}, {9, 5}, {33, 1}, {1, 33}})
            for (const PlanePair& pair : PlanePairs(width, height))
                ASSERT_TRUE(FilterEqualsReference(stage, pair, reference, form, radius))
                    << pair << ", radius " << radius;
}

template <class Reference, class Form>
void ExpectTheInPlaceFormEqualsTheReference(Reference reference, Form form, uint32_t seed) {
    BlockStage stage(1, 1024, seed);
    for (int width : {1, 2, 7, 16, 31})
        for (int height : {1, 4, 9})
            for (int stride : {width, width + 1, width + 6})
                for (int radius : {0, 1, 2, 4, 20}) {
                    auto defined = [=](int x, int y) {
                        return radius == 0 ||
                               tqref::SmoothPixelAt(x, y, width, height, radius) != tqref::kKept;
                    };
                    EXPECT_TRUE(InPlaceEqualsReference(stage, width, height, stride, reference,
                                                       form, defined, radius))
                        << width << " x " << height << ", stride " << stride << ", radius "
                        << radius;
                }
}

}  // namespace tqtest
