#pragma once

// What holds for every form of every zoom method but nearest neighbour before the method's own
// steps. A test program includes this once and names its forms:
//
//     INSTANTIATE_TEST_SUITE_P(ZoomLinear, ZoomPreamble, testing::ValuesIn(kForms),
//                              tqtest::ZoomFormName);

#include "support/zoom_check.h"

namespace tqtest {

inline std::string ZoomFormName(const testing::TestParamInfo<ZoomForm>& form) {
    return form.param.name;
}

class ZoomPreamble : public testing::TestWithParam<ZoomForm> {};

TEST_P(ZoomPreamble, NullPointersWriteNothing) { ExpectNullPointersWriteNothing(GetParam()); }

TEST_P(ZoomPreamble, EqualSizesAreCopied) { ExpectEqualSizesAreCopied(GetParam()); }

TEST_P(ZoomPreamble, EqualSizesInPlaceChangeNothing) {
    const ZoomForm& form = GetParam();
    GuardedImage image(7 * form.channels, 5, {GuardedBuffer::kEnd, 3});
    Fill(image.Memory(), image.Size(), Content::kNoise, 8);
    const std::vector<uint8_t> before = image.Copy();
    form.function(7, 5, image.Stride(), image.First(), 7, 5, image.Stride(), image.First());
    EXPECT_EQ(image.Copy(), before);
}

TEST_P(ZoomPreamble, SourceSizesBelowOneGiveBlack) {
    for (auto [width, height] :
         {std::pair{0, 3}, {5, 0}, {0, 0}, {-1, 3}, {5, -1}, {-2, -2}, {-2147483647 - 1, 3}})
        ExpectGivesBlack(GetParam(), width, height);
}

TEST_P(ZoomPreamble, DestinationSizesBelowOneWriteNothing) {
    ExpectBadDestinationsWriteNothing(GetParam());
}

TEST_P(ZoomPreamble, SmallAndBadSizesEqualTheReference) {
    ExpectSmallAndBadSizesEqualReference(GetParam());
}

TEST_P(ZoomPreamble, ASourceStrideOf0RepeatsOneRow) {
    for (const ZoomSizes& sizes :
         {ZoomSizes{5, 4, 9, 7}, {5, 4, 9, 4}, {5, 4, 2, 3}, {9, 8, 21, 17}})
        ExpectOneRowForAll(GetParam(), sizes);
}

}  // namespace tqtest
