// Labelling and denoising of masks that lie in memory in unusual ways: rows that overlap, and rows
// far apart.

#include <gtest/gtest.h>
#include <tqipl/labelling.h>

#include <cstdint>
#include <vector>

#include "reference/labelling_reference.h"
#include "support/deadline.h"
#include "support/labelling_forms.h"
#include "support/mask_pictures.h"
#include "support/settings.h"
#include "support/sparse_image.h"

namespace {

using tqtest::Deadline;
using tqtest::kLabelForms;
using tqtest::LabelForm;
using tqtest::Noise;
using tqtest::RectArray;
using tqtest::RectList;
using tqtest::Rects;
using tqtest::Settings;

using Bytes = std::vector<uint8_t>;
using HoleForm = void (*)(unsigned int width, unsigned int height, unsigned int stride,
                          unsigned char* mask, unsigned int threshold);

constexpr HoleForm kHoleForms[] = {IPL_FCCLabelingDeNoiseEx, IPL_FCCLabelingDeNoiseEx_MultiThread,
                                   IPL_FCCLabelingDeNoiseEx2,
                                   IPL_FCCLabelingDeNoiseEx2_MultiThread};

// One byte in four is set.
Bytes SomeBytes(size_t count, uint32_t seed) {
    Noise noise(seed);
    Bytes bytes(count);
    for (uint8_t& byte : bytes) byte = noise.Below(4) == 0 ? 255 : 0;
    return bytes;
}

// ---- Rows that overlap --------------------------------------------------------------------------

constexpr int kWidth = 13, kHeight = 17, kRoom = kWidth * kHeight;

TEST(LabellingLayout, RowsThatOverlapAreLabelledBeforeAnyIsCleared) {
    Settings settings;
    Deadline deadline;
    uint32_t seed = 0;
    for (int stride : {1, 2, 5, kWidth - 1, -1, -2, -5, 1 - kWidth})
        for (int processors : {2, 3, 4, 8, 17, 20})
            for (int minimum : {0, 3, 9, 60}) {
                const Bytes before = SomeBytes(2 * kRoom, ++seed);
                Bytes expected = before;
                const tqref::Mask mask = {kWidth, kHeight, stride, expected.data() + kRoom};
                settings.UseProcessors(static_cast<unsigned>(processors));
                const RectList rects = tqref::LabelInBands(mask, minimum, processors);
                for (const LabelForm& form : kLabelForms) {
                    Bytes image = before;
                    RectArray listed;
                    form.function(kWidth, kHeight, stride, image.data() + kRoom, &listed, minimum);
                    ASSERT_EQ(image, expected) << form.name << ", stride " << stride << ", "
                                               << processors << " processors";
                    if (form.inBands) {
                        ASSERT_EQ(Rects(listed), rects) << "stride " << stride;
                    }
                }
            }
}

TEST(LabellingLayout, HolesInRowsThatOverlapAreFoundBeforeAnyIsFilled) {
    Settings settings;
    Deadline deadline;
    uint32_t seed = 100;
    for (int stride : {1, 2, 5, kWidth - 1})
        for (int processors : {2, 3, 4, 8, 17, 20})
            for (unsigned threshold : {0u, 3u, 9u, 60u}) {
                Bytes before = SomeBytes(2 * kRoom, ++seed);
                for (uint8_t& byte : before) byte ^= 255;
                Bytes expected = before;
                tqref::FloodFillSmall({kWidth, kHeight, stride, expected.data() + kRoom},
                                      tqref::RegionsOf::kZero, threshold, 255);
                settings.UseProcessors(static_cast<unsigned>(processors));
                for (HoleForm form : kHoleForms) {
                    Bytes image = before;
                    form(kWidth, kHeight, static_cast<unsigned>(stride), image.data() + kRoom,
                         threshold);
                    ASSERT_EQ(image, expected)
                        << "stride " << stride << ", " << processors << " processors";
                }
            }
}

// ---- Rows far apart -----------------------------------------------------------------------------

#if TQTEST_HAS_SPARSE_IMAGES

constexpr int kFarWidth = 16, kFarHeight = 2900;

// The last rows lie more than two gibibytes behind the first.
TEST(LabellingLayout, RowsBeyondTwoGibibytesAreReached) {
    Settings settings;
    settings.UseProcessors(3);
    const Bytes mask = SomeBytes(size_t{kFarWidth} * kFarHeight, 7);
    for (const LabelForm& form : kLabelForms)
        for (bool upsideDown : {false, true}) {
            Bytes expected = mask;
            RectArray expectedRects, rects;
            form.function(kFarWidth, kFarHeight, kFarWidth, expected.data(), &expectedRects, 4);
            tqtest::SparseImage image(kFarWidth, kFarHeight, upsideDown);
            image.Set(mask);
            form.function(kFarWidth, kFarHeight, image.Stride(), image.First(), &rects, 4);
            EXPECT_EQ(image.Dense() == expected, true) << form.name;
            EXPECT_EQ(Rects(rects) == Rects(expectedRects), true) << form.name;
            EXPECT_TRUE(image.KeptBehindRows()) << form.name;
        }
}

TEST(LabellingLayout, HolesBeyondTwoGibibytesAreFilledAndGrown) {
    Settings settings;
    settings.UseProcessors(3);
    Bytes mask = SomeBytes(size_t{kFarWidth} * kFarHeight, 8);
    for (uint8_t& byte : mask) byte ^= 255;
    tqtest::SparseImage image(kFarWidth, kFarHeight, false);
    const unsigned stride = static_cast<unsigned>(image.Stride());
    for (HoleForm form : kHoleForms) {
        Bytes expected = mask;
        form(kFarWidth, kFarHeight, kFarWidth, expected.data(), 4);
        image.Set(mask);
        form(kFarWidth, kFarHeight, stride, image.First(), 4);
        EXPECT_EQ(image.Dense() == expected, true);
        EXPECT_TRUE(image.KeptBehindRows());
    }
    const Bytes guide = SomeBytes(mask.size(), 9);
    tqtest::SparseImage guideImage(kFarWidth, kFarHeight, false);
    guideImage.Set(guide);
    for (auto form : {IPL_FCCDeNoiseAndGrowth, IPL_FCCDeNoiseAndGrowth2,
                      IPL_FCCDeNoiseAndGrowth2_MultiThread}) {
        Bytes expected = mask, denseGuide = guide;
        form(kFarWidth, kFarHeight, kFarWidth, denseGuide.data(), kFarWidth, expected.data(), 4);
        image.Set(mask);
        form(kFarWidth, kFarHeight, stride, guideImage.First(), stride, image.First(), 4);
        EXPECT_EQ(image.Dense() == expected, true);
        EXPECT_TRUE(image.KeptBehindRows());
        EXPECT_EQ(guideImage.Dense() == guide, true);
    }
}

#endif

}  // namespace
