// Erosion and dilation of images that lie in memory in unusual ways: rows far apart, rows that
// overlap, and one image given as source and destination.

#include <gtest/gtest.h>
#include <tqipl/morph.h>

#include <cstdint>
#include <vector>

#include "reference/morphology_reference.h"
#include "support/morph_check.h"
#include "support/sparse_image.h"

namespace {

using tqref::MorphStep;
using tqtest::MaskContent;
using tqtest::MaskSize;
using tqtest::Radii;
using tqtest::Settings;

using Bytes = std::vector<uint8_t>;

constexpr MorphStep kErode = MorphStep::kErosion, kDilate = MorphStep::kDilation;

// ---- The forms under one signature --------------------------------------------------------------

using InPlace = void (*)(int width, int height, int stride, unsigned char* image, int radiusY,
                         int radiusX);
using TwoImages = void (*)(int width, int height, int srcStride, unsigned char* src, int dstStride,
                           unsigned char* dst, int radiusY, int radiusX);

// Compositions have the same radii in both steps.
template <void (*form)(int, int, int, unsigned char*, int, int, int, int)>
void Twice(int width, int height, int stride, unsigned char* image, int radiusY, int radiusX) {
    form(width, height, stride, image, radiusY, radiusX, radiusY, radiusX);
}
template <void (*form)(int, int, int, unsigned char*, int, unsigned char*, int, int, int, int)>
void TwoImagesTwice(int width, int height, int srcStride, unsigned char* src, int dstStride,
                    unsigned char* dst, int radiusY, int radiusX) {
    form(width, height, srcStride, src, dstStride, dst, radiusY, radiusX, radiusY, radiusX);
}

struct FastForm {
    const char* name;
    InPlace plain, multiThread;
    TwoImages twoImages;  // null: there is none
    std::vector<MorphStep> steps;
};

const std::vector<FastForm> kFastForms = {
    {"IPL_FErosion", IPL_FErosion, IPL_FErosion_MultiThread, IPL_FErosion_MultiThread, {kErode}},
    {"IPL_FDilation",
     IPL_FDilation,
     IPL_FDilation_MultiThread,
     IPL_FDilation_MultiThread,
     {kDilate}},
    {"IPL_FOpening",
     Twice<IPL_FOpening>,
     Twice<IPL_FOpening_MultiThread>,
     TwoImagesTwice<IPL_FOpening_MultiThread>,
     {kErode, kDilate}},
    {"IPL_FClosing",
     Twice<IPL_FClosing>,
     Twice<IPL_FClosing_MultiThread>,
     TwoImagesTwice<IPL_FClosing_MultiThread>,
     {kDilate, kErode}},
    {"IPL_FDeNoise",
     IPL_FDeNoise,
     IPL_FDeNoise_MultiThread,
     nullptr,
     {kErode, kDilate, kDilate, kErode}},
};

// ---- Rows far apart -----------------------------------------------------------------------------

#if TQTEST_HAS_SPARSE_IMAGES

struct DirectForm {
    const char* name;
    InPlace plain, multiThread;
};
constexpr DirectForm kDirectForms[] = {
    {"IPL_Erosion", IPL_Erosion, IPL_Erosion_MultiThread},
    {"IPL_Dilation", IPL_Dilation, IPL_Dilation_MultiThread},
    {"IPL_Opening", IPL_Opening, IPL_Opening_MultiThread},
    {"IPL_Closing", IPL_Closing, IPL_Closing_MultiThread},
    {"IPL_DeNoise", IPL_DeNoise, IPL_DeNoise_MultiThread},
};

Bytes Mask(MaskSize size, Radii radii, MaskContent content) {
    Bytes mask(static_cast<size_t>(size.width) * static_cast<size_t>(size.height));
    tqtest::FillMask(mask.data(), mask.size(), content, tqtest::RarityFor(size, radii), 11);
    return mask;
}

// The last rows lie more than two gibibytes behind the first, or before it.
class FarImages {
public:
    explicit FarImages(MaskSize size) : m_size(size) {}

    // The form makes of the far rows what it makes of dense ones.
    void ExpectEqualsDense(const char* name, InPlace form, Radii radii, MaskContent content) {
        const Bytes mask = Mask(m_size, radii, content);
        Bytes expected = mask;
        form(m_size.width, m_size.height, m_size.width, expected.data(), radii.y, radii.x);
        for (tqtest::SparseImage* image : {&m_down, &m_up}) {
            image->Set(mask);
            form(m_size.width, m_size.height, image->Stride(), image->First(), radii.y, radii.x);
            EXPECT_EQ(image->Dense() == expected, true)
                << name << ", " << g_IPLProcessorCount << " processors, "
                << tqtest::Describe(m_size, radii) << ", stride " << image->Stride();
            EXPECT_TRUE(image->KeptBehindRows()) << name;
        }
    }

private:
    MaskSize m_size;
    tqtest::SparseImage m_down{m_size.width, m_size.height, false};
    tqtest::SparseImage m_up{m_size.width, m_size.height, true};
};

TEST(MorphologyLayout, DirectFormsReachRowsBeyondTwoGibibytes) {
    Settings settings;
    FarImages images({16, 2900});
    for (const DirectForm& form : kDirectForms)
        for (Radii radii : {Radii{1, 1}, {0, 2}, {1000, 0}}) {
            images.ExpectEqualsDense(form.name, form.plain, radii, MaskContent::kHoles);
            for (unsigned processors : {2u, 3u}) {
                settings.UseProcessors(processors);
                images.ExpectEqualsDense(form.name, form.multiThread, radii, MaskContent::kBright);
            }
        }
}

TEST(MorphologyLayout, FastFormsReachRowsBeyondTwoGibibytes) {
    Settings settings;
    FarImages images({16, 5000});
    for (const FastForm& form : kFastForms)
        for (Radii radii : {Radii{1, 1}, {1000, 1}}) {
            images.ExpectEqualsDense(form.name, form.plain, radii, MaskContent::kHoles);
            for (unsigned processors : {1u, 2u}) {
                settings.UseProcessors(processors);
                images.ExpectEqualsDense(form.name, form.multiThread, radii, MaskContent::kSpecks);
            }
        }
}

TEST(MorphologyLayout, FastFormsOfTwoImagesReachRowsBeyondTwoGibibytes) {
    constexpr MaskSize kSize = {16, 5000};
    Settings settings;
    settings.UseProcessors(2);
    tqtest::SparseImage src(kSize.width, kSize.height, false);
    tqtest::SparseImage dst(kSize.width, kSize.height, true);
    for (const FastForm& form : kFastForms)
        for (Radii radii : {Radii{1, 1}, {1000, 1}}) {
            if (form.twoImages == nullptr) continue;
            const Bytes mask = Mask(kSize, radii, MaskContent::kSpecks);
            Bytes expected = mask;
            form.multiThread(kSize.width, kSize.height, kSize.width, expected.data(), radii.y,
                             radii.x);
            src.Set(mask);
            dst.Set(Bytes(mask.size(), 9));
            form.twoImages(kSize.width, kSize.height, src.Stride(), src.First(), dst.Stride(),
                           dst.First(), radii.y, radii.x);
            EXPECT_EQ(dst.Dense() == expected, true)
                << form.name << ", " << tqtest::Describe(kSize, radii);
            EXPECT_TRUE(dst.KeptBehindRows()) << form.name;
            EXPECT_EQ(src.Dense() == mask, true) << form.name;
        }
}

#endif

// ---- Rows that overlap --------------------------------------------------------------------------

constexpr MaskSize kSmall = {11, 9};
constexpr int kRoom = kSmall.width * kSmall.height;  // before and behind the first pixel
constexpr int kOverlappingStrides[] = {0, 1, 5, kSmall.width - 1, -1, -5, 1 - kSmall.width};
constexpr Radii kSomeRadii[] = {{0, 0}, {1, 1}, {2, 1}, {0, 3}, {8, 2}, {30, 30}};

// Each step reads the whole image before it writes, and writes row by row.
void Reference(const FastForm& form, int processors, int stride, uint8_t* image, Radii radii) {
    for (MorphStep step : form.steps)
        tqref::FastMorphInPlace(step, processors, kSmall.width, kSmall.height, stride, image,
                                radii.y, radii.x);
}

// All steps but the last go to dense memory.
void TwoImageReference(const FastForm& form, int processors, int srcStride, const uint8_t* src,
                       int dstStride, uint8_t* dst, Radii radii) {
    Bytes dense(kRoom);
    const uint8_t* from = src;
    int fromStride = srcStride;
    for (size_t i = 0; i + 1 < form.steps.size(); ++i) {
        tqref::FastMorph(form.steps[i], processors, kSmall.width, kSmall.height, fromStride, from,
                         kSmall.width, dense.data(), radii.y, radii.x);
        from = dense.data();
        fromStride = kSmall.width;
    }
    tqref::FastMorph(form.steps.back(), processors, kSmall.width, kSmall.height, fromStride, from,
                     dstStride, dst, radii.y, radii.x);
}

TEST(MorphologyLayout, WithOneProcessorRowsThatOverlapAreReadBeforeAnyIsWritten) {
    Settings settings;
    settings.UseProcessors(1);
    Bytes image = {0, 255, 255, 0};
    IPL_FErosion_MultiThread(2, 2, 1, image.data(), 0, 1);
    EXPECT_EQ(image, (Bytes{0, 255, 255, 0}));
    image = {255, 0, 0, 255};
    IPL_FDilation_MultiThread(2, 2, 1, image.data(), 0, 1);
    EXPECT_EQ(image, (Bytes{255, 0, 0, 255}));
}

TEST(MorphologyLayout, FastFormsOfRowsThatOverlapEqualTheReference) {
    Settings settings;
    uint32_t seed = 100;
    for (const FastForm& form : kFastForms)
        for (int stride : kOverlappingStrides)
            for (Radii radii : kSomeRadii)
                for (int processors : {1, 2, 3, 4, 9, 16})
                    for (MaskContent content : {MaskContent::kHoles, MaskContent::kSpecks}) {
                        Bytes before(2 * kRoom);
                        tqtest::FillMask(before.data(), before.size(), content, 20, ++seed);
                        Bytes expected = before, image = before;
                        Reference(form, processors, stride, expected.data() + kRoom, radii);
                        settings.UseProcessors(static_cast<unsigned>(processors));
                        form.multiThread(kSmall.width, kSmall.height, stride, image.data() + kRoom,
                                         radii.y, radii.x);
                        ASSERT_EQ(image, expected)
                            << form.name << ", stride " << stride << ", " << processors
                            << " processors, " << tqtest::Describe(kSmall, radii);
                    }
}

TEST(MorphologyLayout, RowsOfTwoImagesThatOverlapEqualTheReference) {
    Settings settings;
    uint32_t seed = 200;
    for (const FastForm& form : kFastForms)
        for (int stride : kOverlappingStrides)
            for (Radii radii : kSomeRadii)
                for (int processors : {1, 2, 3, 4, 9, 16}) {
                    if (form.twoImages == nullptr) continue;
                    Bytes src(2 * kRoom);
                    tqtest::FillMask(src.data(), src.size(), MaskContent::kSpecks, 20, ++seed);
                    const Bytes srcBefore = src;
                    Bytes expected(2 * kRoom, 99), dst = expected;
                    const int srcStride = -stride;
                    TwoImageReference(form, processors, srcStride, src.data() + kRoom, stride,
                                      expected.data() + kRoom, radii);
                    settings.UseProcessors(static_cast<unsigned>(processors));
                    form.twoImages(kSmall.width, kSmall.height, srcStride, src.data() + kRoom,
                                   stride, dst.data() + kRoom, radii.y, radii.x);
                    ASSERT_EQ(dst, expected)
                        << form.name << ", stride " << stride << ", " << processors
                        << " processors, " << tqtest::Describe(kSmall, radii);
                    ASSERT_EQ(src, srcBefore) << form.name;
                }
}

// ---- One image as source and destination --------------------------------------------------------

TEST(MorphologyLayout, FastFormsOfTwoImagesMayWorkOnOne) {
    Settings settings;
    uint32_t seed = 300;
    for (const FastForm& form : kFastForms)
        for (int stride : {kSmall.width, kSmall.width + 3, -kSmall.width, -kSmall.width - 1})
            for (Radii radii : kSomeRadii)
                for (int processors : {1, 2, 3, 4, 9, 16})
                    for (MaskContent content : tqtest::kMaskContents) {
                        if (form.twoImages == nullptr) continue;
                        Bytes before(4 * kRoom);
                        tqtest::FillMask(before.data(), before.size(), content, 20, ++seed);
                        Bytes expected = before, image = before;
                        Reference(form, processors, stride, expected.data() + 2 * kRoom, radii);
                        settings.UseProcessors(static_cast<unsigned>(processors));
                        unsigned char* first = image.data() + 2 * kRoom;
                        form.twoImages(kSmall.width, kSmall.height, stride, first, stride, first,
                                       radii.y, radii.x);
                        ASSERT_EQ(image, expected)
                            << form.name << ", stride " << stride << ", " << processors
                            << " processors, " << tqtest::Describe(kSmall, radii);
                    }
}

}  // namespace
