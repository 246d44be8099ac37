// Erosion and dilation against OpenCV's with rectangular kernels.

#include <gtest/gtest.h>
#include <tqipl/morph.h>

#include <cstdint>
#include <cstring>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "support/morph_check.h"
#include "support/settings.h"

namespace {

using tqtest::MaskContent;
using tqtest::MaskSize;
using tqtest::Radii;
using tqtest::Settings;

using Bytes = std::vector<uint8_t>;

cv::Mat Kernel(Radii radii) {
    return cv::getStructuringElement(cv::MORPH_RECT, {2 * radii.x + 1, 2 * radii.y + 1});
}

// The border that takes no part is OpenCV's default.
Bytes Peer(int operation, MaskSize size, Radii radii, const cv::Mat& mask) {
    cv::setNumThreads(1);
    Bytes result(static_cast<size_t>(size.width) * static_cast<size_t>(size.height));
    cv::Mat to(size.height, size.width, CV_8U, result.data());
    cv::morphologyEx(mask, to, operation, Kernel(radii), {-1, -1}, 1, cv::BORDER_CONSTANT,
                     cv::morphologyDefaultBorderValue());
    EXPECT_EQ(to.data, result.data()) << "the result stands elsewhere";
    return result;
}

using Function = void (*)(int, int, int, unsigned char*, int, int);

template <void (*form)(int, int, int, unsigned char*, int, int, int, int)>
void WithEqualPairs(int width, int height, int stride, unsigned char* image, int radiusY,
                    int radiusX) {
    form(width, height, stride, image, radiusY, radiusX, radiusY, radiusX);
}

struct Form {
    const char* name;
    Function plain, multiThread;
    int operation;
};

const Form kFastForms[] = {
    {"IPL_FErosion", IPL_FErosion, IPL_FErosion_MultiThread, cv::MORPH_ERODE},
    {"IPL_FDilation", IPL_FDilation, IPL_FDilation_MultiThread, cv::MORPH_DILATE},
    {"IPL_FOpening", WithEqualPairs<IPL_FOpening>, WithEqualPairs<IPL_FOpening_MultiThread>,
     cv::MORPH_OPEN},
    {"IPL_FClosing", WithEqualPairs<IPL_FClosing>, WithEqualPairs<IPL_FClosing_MultiThread>,
     cv::MORPH_CLOSE},
};
const Form kDirectForms[] = {
    {"IPL_Erosion", IPL_Erosion, IPL_Erosion_MultiThread, cv::MORPH_ERODE},
    {"IPL_Dilation", IPL_Dilation, IPL_Dilation_MultiThread, cv::MORPH_DILATE},
};

Bytes ResultOf(Function form, MaskSize size, Radii radii, Bytes mask) {
    form(size.width, size.height, size.width, mask.data(), radii.y, radii.x);
    return mask;
}

Bytes MaskOf(MaskSize size, Radii radii, MaskContent content, uint32_t seed) {
    Bytes mask(static_cast<size_t>(size.width) * static_cast<size_t>(size.height));
    tqtest::FillMask(mask.data(), mask.size(), content, tqtest::RarityFor(size, radii), seed);
    return mask;
}

// A band of radiusY rows or fewer leaves rows out, unless it is the only one.
bool HasThinBand(MaskSize size, Radii radii, int processors) {
    const int band = size.height / processors;
    return band != 0 && band <= radii.y;
}

void ExpectFastFormsEqualThePeer(MaskSize size, Radii radii, MaskContent content, uint32_t seed) {
    const Bytes mask = MaskOf(size, radii, content, seed);
    const cv::Mat set =
        cv::Mat(size.height, size.width, CV_8U, const_cast<uint8_t*>(mask.data())) != 0;
    for (const Form& form : kFastForms) {
        const Bytes expected = Peer(form.operation, size, radii, set);
        ASSERT_EQ(ResultOf(form.plain, size, radii, mask), expected)
            << form.name << ", " << tqtest::Describe(size, radii);
        const int processors = 1 + static_cast<int>(seed % 8);
        if (HasThinBand(size, radii, processors)) continue;
        Settings settings;
        settings.UseProcessors(static_cast<unsigned>(processors));
        ASSERT_EQ(ResultOf(form.multiThread, size, radii, mask), expected)
            << form.name << ", " << processors << " processors, " << tqtest::Describe(size, radii);
    }
}

TEST(MorphologyAgainstOpenCv, FastFormsAgreeAtRadiiUpTo7OnOddSizes) {
    uint32_t seed = 0;
    for (int width : {1, 2, 3, 5, 9, 17, 33, 67})
        for (int height : {1, 2, 3, 7, 15, 37})
            for (int radiusY = 0; radiusY <= 7; ++radiusY)
                for (int radiusX = 0; radiusX <= 7; ++radiusX) {
                    ++seed;
                    ExpectFastFormsEqualThePeer({width, height}, {radiusY, radiusX},
                                                tqtest::kMaskContents[seed % 5], seed);
                    if (HasFatalFailure()) return;
                }
}

TEST(MorphologyAgainstOpenCv, FastFormsAgreeAtRadiiAboveTheSides) {
    uint32_t seed = 10000;
    for (Radii radii : {Radii{20, 3}, {3, 20}, {31, 33}, {40, 41}, {60, 0}, {0, 70}})
        for (MaskSize size : {MaskSize{1, 1}, {5, 40}, {41, 4}, {33, 31}, {32, 32}})
            for (MaskContent content : tqtest::kMaskContents) {
                ExpectFastFormsEqualThePeer(size, radii, content, ++seed);
                if (HasFatalFailure()) return;
            }
}

TEST(MorphologyAgainstOpenCv, FastFormsAgreeOnALargeImage) {
    uint32_t seed = 20000;
    for (Radii radii : {Radii{1, 1}, {5, 5}, {25, 25}, {60, 90}})
        for (MaskContent content : {MaskContent::kHoles, MaskContent::kSpecks}) {
            ExpectFastFormsEqualThePeer({641, 479}, radii, content, ++seed);
            if (HasFatalFailure()) return;
        }
}

// In the inner region no window crosses the edge. Of a dilation only the 255s are the mask.
TEST(MorphologyAgainstOpenCv, DirectFormsAgreeInTheInnerRegion) {
    uint32_t seed = 30000;
    for (int width : {1, 4, 9, 17, 40, 67})
        for (int height : {1, 3, 8, 15, 37})
            for (Radii radii : {Radii{0, 0}, {1, 1}, {2, 5}, {7, 3}, {4, 0}, {0, 6}})
                for (MaskContent content : tqtest::kMaskContents) {
                    const MaskSize size = {width, height};
                    const Bytes mask = MaskOf(size, radii, content, ++seed);
                    const cv::Mat bytes(height, width, CV_8U, const_cast<uint8_t*>(mask.data()));
                    for (const Form& form : kDirectForms) {
                        const bool erodes = form.operation == cv::MORPH_ERODE;
                        const cv::Mat set = erodes ? bytes != 0 : bytes == 255;
                        Bytes expected = Peer(form.operation, size, radii, set);
                        for (int y = 0; y < height; ++y)
                            for (int x = 0; x < width; ++x)
                                if (y < radii.y || y >= height - radii.y || x < radii.x ||
                                    x >= width - radii.x)
                                    expected[y * width + x] = 0;
                        ASSERT_EQ(ResultOf(form.plain, size, radii, mask), expected)
                            << form.name << ", " << tqtest::Describe(size, radii);
                        Settings settings;
                        settings.UseProcessors(1 + seed % 8);
                        ASSERT_EQ(ResultOf(form.multiThread, size, radii, mask), expected)
                            << form.name << ", " << 1 + seed % 8 << " processors, "
                            << tqtest::Describe(size, radii);
                    }
                }
}

}  // namespace
