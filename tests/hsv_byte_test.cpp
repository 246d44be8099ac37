// HSV in bytes: values known by hand, every form against its reference, bands, tasks.

#include <gtest/gtest.h>
#include <tqipl/hsv.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "color/hsv_byte_tasks.h"
#include "reference/hsv_byte_reference.h"
#include "support/allocation_counter.h"
#include "support/hsv_forms.h"
#include "support/pixel_forms.h"
#include "support/settings.h"

namespace {

using tqtest::HsvContent;
using tqtest::HsvForm;
using tqtest::HsvImage;
using tqtest::Settings;

using Bytes = std::vector<uint8_t>;

// A task with a format and a matrix.
template <class Task, int format, int matrix>
int RunTaskOfFormat(int width, int height, int srcStride, unsigned char* src, int dstStride,
                    unsigned char* dst) {
    auto task = std::make_unique<Task>();
    tqtest::FillTask(*task, width, height, srcStride, src, dstStride, dst);
    task->m_nFormat = static_cast<TQ_COLOR_FORMAT>(format);
    task->m_nMatrix = static_cast<TQ_COLOR_MATRIX>(matrix);
    const std::unique_ptr<CTQIPLTaskBase> base = std::move(task);
    return base->Run();
}

using Function = void(int, int, int, unsigned char*, int, unsigned char*);
using WithMatrix = void(int, int, int, unsigned char*, int, unsigned char*, TQ_COLOR_MATRIX);
using RunFunction = int(int, int, int, unsigned char*, int, unsigned char*);
using Reference = void(int, int, int, const uint8_t*, int, uint8_t*);

template <WithMatrix* form, int matrix>
void WithThatMatrix(int width, int height, int srcStride, unsigned char* src, int dstStride,
                    unsigned char* dst) {
    form(width, height, srcStride, src, dstStride, dst, static_cast<TQ_COLOR_MATRIX>(matrix));
}

template <Function* function> void Call(int width, int height, const HsvImage* i) {
    function(width, height, i[0].stride, i[0].Bytes(), i[1].stride, i[1].Bytes());
}
template <RunFunction* function> int CallRun(int width, int height, const HsvImage* i) {
    return function(width, height, i[0].stride, i[0].Bytes(), i[1].stride, i[1].Bytes());
}
template <Reference* function> void CallReference(int width, int height, const HsvImage* i) {
    function(width, height, i[0].stride, i[0].Bytes(), i[1].stride, i[1].Bytes());
}

constexpr tqtest::HsvImageKind kBgraIn = {HsvContent::kBytes, 4, false};
constexpr tqtest::HsvImageKind kBgraOut = {HsvContent::kBytes, 4, true};
constexpr tqtest::HsvImageKind kHsvIn = {HsvContent::kBytes, 3, false};
constexpr tqtest::HsvImageKind kHsvOut = {HsvContent::kBytes, 3, true, 1};
constexpr tqtest::HsvImageKind kAlphaIn = {HsvContent::kBytes, 1, false};
constexpr tqtest::HsvImageKind kPackedIn = {HsvContent::kBytes, 4, false};
constexpr tqtest::HsvImageKind kPackedOut = {HsvContent::kBytes, 4, true};
constexpr tqtest::HsvImageKind kHsvPairIn = {HsvContent::kBytes, 6, false};
constexpr tqtest::HsvImageKind kHsvPairOut = {HsvContent::kBytes, 6, true};

const HsvForm kBgra2Hsv = {"IPL_BGRA2HSV_8u_C3R",
                           1,
                           {kBgraIn, kHsvOut},
                           Call<IPL_BGRA2HSV_8u_C3R>,
                           Call<IPL_BGRA2HSV_8u_C3R_MultiThread>,
                           CallRun<tqtest::RunTask<CZBGRA2HSV_Ex>>,
                           CallReference<tqref::Bgra2HsvBytes>};

const HsvForm kHsv2Bgra = {
    "IPL_HSV2BGRA_8u_C3R",
    1,
    {kHsvIn, kAlphaIn, kBgraOut},
    [](int width, int height, const HsvImage* i) {
        IPL_HSV2BGRA_8u_C3R(width, height, i[0].stride, i[0].Bytes(), i[1].stride, i[1].Bytes(),
                            i[2].stride, i[2].Bytes());
    },
    [](int width, int height, const HsvImage* i) {
        IPL_HSV2BGRA_8u_C3R_MultiThread(width, height, i[0].stride, i[0].Bytes(), i[1].stride,
                                        i[1].Bytes(), i[2].stride, i[2].Bytes());
    },
    [](int width, int height, const HsvImage* i) {
        auto task = std::make_unique<CZHSV2BGRA_Ex>();
        task->m_nWidth = width;
        task->m_nHeight = height;
        task->m_nSrcStride = i[0].stride;
        task->m_pSrc = i[0].Bytes();
        task->m_nAlphaStride = i[1].stride;
        task->m_pAlpha = i[1].Bytes();
        task->m_nDstStride = i[2].stride;
        task->m_pDst = i[2].Bytes();
        const std::unique_ptr<CTQIPLTaskBase> base = std::move(task);
        return base->Run();
    },
    [](int width, int height, const HsvImage* i) {
        tqref::HsvBytes2Bgra(width, height, i[0].stride, i[0].Bytes(), i[1].stride, i[1].Bytes(),
                             i[2].stride, i[2].Bytes());
    }};

const HsvForm kYuyv2Hsv = {"IPL_YUYV2HSV_8u_709",
                           2,
                           {kPackedIn, kHsvPairOut},
                           Call<IPL_YUYV2HSV_8u_709>,
                           Call<IPL_YUYV2HSV_8u_709_MultiThread>,
                           CallRun<tqtest::RunTaskInMode<CYUYV2HSV, 1>>,
                           CallReference<tqref::Yuyv2HsvBytes>};
const HsvForm kHsv2Yuyv = {"IPL_HSV2YUYV_8u_709",
                           2,
                           {kHsvPairIn, kPackedOut},
                           Call<IPL_HSV2YUYV_8u_709>,
                           Call<IPL_HSV2YUYV_8u_709_MultiThread>,
                           CallRun<tqtest::RunTaskInMode<CHSV2YUYV, 1>>,
                           CallReference<tqref::HsvBytes2Yuyv>};
const HsvForm kUyvy2Hsv = {"IPL_UYVY2HSV_8u",
                           2,
                           {kPackedIn, kHsvPairOut},
                           Call<WithThatMatrix<IPL_UYVY2HSV_8u, 0>>,
                           Call<WithThatMatrix<IPL_UYVY2HSV_8u_MultiThread, 2>>,
                           CallRun<RunTaskOfFormat<CYUV2HSV, TQ_COLOR_UYVY, 1>>,
                           CallReference<tqref::Uyvy2HsvBytes>};
const HsvForm kHsv2Uyvy = {"IPL_HSV2UYVY_8u",
                           2,
                           {kHsvPairIn, kPackedOut},
                           Call<WithThatMatrix<IPL_HSV2UYVY_8u, 0>>,
                           Call<WithThatMatrix<IPL_HSV2UYVY_8u_MultiThread, 2>>,
                           CallRun<RunTaskOfFormat<CHSV2YUV, TQ_COLOR_UYVY, 1>>,
                           CallReference<tqref::HsvBytes2Uyvy>};

const HsvForm* const kForms[] = {&kBgra2Hsv, &kHsv2Bgra, &kYuyv2Hsv,
                                 &kHsv2Yuyv, &kUyvy2Hsv, &kHsv2Uyvy};

Bytes OfRgb(int r, int g, int b) {
    uint8_t bgra[4] = {static_cast<uint8_t>(b), static_cast<uint8_t>(g), static_cast<uint8_t>(r),
                       77};
    uint8_t hsv[5] = {99, 99, 99, 99, 99};
    IPL_BGRA2HSV_8u_C3R(1, 1, 4, bgra, 3, hsv);
    EXPECT_EQ(hsv[3], 0);
    EXPECT_EQ(hsv[4], 99);
    return Bytes(hsv, hsv + 3);
}

// Red, green, blue.
Bytes ToRgb(int h, int s, int v) {
    uint8_t hsv[3] = {static_cast<uint8_t>(h), static_cast<uint8_t>(s), static_cast<uint8_t>(v)};
    uint8_t alpha = 55, bgra[4] = {99, 99, 99, 99};
    IPL_HSV2BGRA_8u_C3R(1, 1, 3, hsv, 1, &alpha, 4, bgra);
    EXPECT_EQ(bgra[3], 55);
    return {bgra[2], bgra[1], bgra[0]};
}

// Both layouts agree.
Bytes OfYuv(int y0, int u, int y1, int v) {
    const auto a = static_cast<uint8_t>(y0), b = static_cast<uint8_t>(y1);
    const auto cb = static_cast<uint8_t>(u), cr = static_cast<uint8_t>(v);
    Bytes yuyv = {a, cb, b, cr}, uyvy = {cb, a, cr, b}, first(6, 99), second(6, 99);
    IPL_YUYV2HSV_8u_709(2, 1, 4, yuyv.data(), 6, first.data());
    IPL_UYVY2HSV_8u(2, 1, 4, uyvy.data(), 6, second.data(), TQ_COLOR_MATRIX_709);
    EXPECT_EQ(first, second);
    return first;
}

// As YUYV; both layouts agree.
Bytes ToYuyv(Bytes pair) {
    Bytes yuyv(4, 99), uyvy(4, 99);
    IPL_HSV2YUYV_8u_709(2, 1, 6, pair.data(), 4, yuyv.data());
    IPL_HSV2UYVY_8u(2, 1, 6, pair.data(), 4, uyvy.data(), TQ_COLOR_MATRIX_709);
    EXPECT_EQ((Bytes{uyvy[1], uyvy[0], uyvy[3], uyvy[2]}), yuyv);
    return yuyv;
}

TEST(HsvByte, PureColoursStandAtThirdsOfTheCircle) {
    EXPECT_EQ(OfRgb(255, 0, 0), (Bytes{0, 255, 255}));
    EXPECT_EQ(OfRgb(0, 255, 0), (Bytes{85, 255, 255}));
    EXPECT_EQ(OfRgb(0, 0, 255), (Bytes{170, 255, 255}));
    // A sixth is 42.5: rounded up, and 85 less 42.5, which is 42.5 less a whole; 261120 - 43520.
    EXPECT_EQ(OfRgb(255, 255, 0), (Bytes{43, 255, 255}));
    EXPECT_EQ(OfRgb(0, 255, 255), (Bytes{128, 255, 255}));
    EXPECT_EQ(OfRgb(255, 0, 255), (Bytes{213, 255, 255}));
}

TEST(HsvByte, GreyHasNoHueAndNoSaturation) {
    for (int k = 0; k < 256; ++k) EXPECT_EQ(OfRgb(k, k, k), (Bytes{0, 0, static_cast<uint8_t>(k)}));
}

TEST(HsvByte, HueSaturationAndValueByHand) {
    // Blue leads by 39; red - green = -21: -21 * 43520 / 39 = -23433.8, + 512 is -22.4 steps, down
    // to -23; + 85 + 85. Saturation 39 * 255 / 119 = 83.57.
    EXPECT_EQ(OfRgb(80, 101, 119), (Bytes{147, 84, 119}));
    // Red leads by 100; green - blue = -50: 261120 - 21760 + 512 is 234.25 steps. 100 / 200.
    EXPECT_EQ(OfRgb(200, 100, 150), (Bytes{234, 128, 200}));
    // Upwards: 21760 + 512 is 21.75 steps.
    EXPECT_EQ(OfRgb(200, 150, 100), (Bytes{21, 128, 200}));
    // Green leads; blue - red = 50 and -50: 21 + 85, and -20.75 steps, down to -21.
    EXPECT_EQ(OfRgb(100, 200, 150), (Bytes{106, 128, 200}));
    EXPECT_EQ(OfRgb(150, 200, 100), (Bytes{64, 128, 200}));
}

TEST(HsvByte, TiesOfTwoChannelsStandBetweenThem) {
    // Whichever of the two is taken for the larger, the tables give the same.
    for (int k = 1; k < 256; ++k)
        for (int low = 0; low < k; ++low) {
            ASSERT_EQ(OfRgb(k, k, low)[0], 43) << k << " " << low;
            ASSERT_EQ(OfRgb(k, low, k)[0], 213) << k << " " << low;
            ASSERT_EQ(OfRgb(low, k, k)[0], 128) << k << " " << low;
        }
}

TEST(HsvByte, AHueCloseBelowRedStaysBelowTheCirclesEnd) {
    // -1 * 43520 / 255 + 261120 + 512 is 255.3 steps.
    EXPECT_EQ(OfRgb(255, 0, 1)[0], 255);
}

TEST(HsvByte, SourceAlphaHasNoInfluence) {
    for (int alpha = 0; alpha < 256; ++alpha) {
        Bytes bgra(4 * 20), hsv(61);
        for (int x = 0; x < 20; ++x) {
            const uint8_t pixel[4] = {119, 101, 80, static_cast<uint8_t>(alpha)};
            std::memcpy(bgra.data() + 4 * x, pixel, 4);
        }
        IPL_BGRA2HSV_8u_C3R(20, 1, 80, bgra.data(), 60, hsv.data());
        for (int x = 0; x < 20; ++x)
            EXPECT_EQ(Bytes(hsv.begin() + 3 * x, hsv.begin() + 3 * x + 3), (Bytes{147, 84, 119}));
    }
}

// Pixels of four colours in turn, and their hues: none of them 0 or what the tests fill with.
Bytes ColourfulBgra(int pixels) {
    constexpr uint8_t kColours[4][4] = {
        {119, 101, 80, 1}, {0, 255, 0, 2}, {150, 100, 200, 3}, {100, 150, 200, 4}};
    Bytes bgra;
    for (int i = 0; i < pixels; ++i)
        bgra.insert(bgra.end(), kColours[i * 7 % 4], kColours[i * 7 % 4] + 4);
    return bgra;
}
uint8_t ColourfulHue(int pixel) {
    constexpr uint8_t kHues[4] = {147, 85, 234, 21};
    return kHues[pixel * 7 % 4];
}

TEST(HsvByte, OneZeroByteStandsBehindEachRowAndNothingMore) {
    for (unsigned processors : {1u, 2u, 3u})
        for (auto* form : {IPL_BGRA2HSV_8u_C3R, IPL_BGRA2HSV_8u_C3R_MultiThread})
            for (int width = 1; width <= 40; ++width) {
                Settings settings;
                settings.UseProcessors(processors);
                Bytes bgra = ColourfulBgra(3 * width);
                const int stride = 3 * width + 4;
                Bytes hsv(3 * stride, 99);
                form(width, 3, 4 * width, bgra.data(), stride, hsv.data());
                for (int y = 0; y < 3; ++y) {
                    const uint8_t* row = hsv.data() + y * stride;
                    for (int x = 0; x < width; ++x)
                        ASSERT_EQ(row[3 * x], ColourfulHue(y * width + x)) << width;
                    ASSERT_EQ(Bytes(row + 3 * width, row + stride), (Bytes{0, 99, 99, 99}))
                        << width << ", " << processors << " processors";
                }
            }
}

TEST(HsvByte, DenseRowsKeepTheNextRowsFirstHue) {
    Settings settings;
    for (unsigned processors = 1; processors <= 16; ++processors)
        for (auto* form : {IPL_BGRA2HSV_8u_C3R, IPL_BGRA2HSV_8u_C3R_MultiThread})
            for (int width : {1, 2, 5, 16, 33})
                for (int height : {1, 2, 7, 8, 9, 16, 17, 33}) {
                    settings.UseProcessors(processors);
                    Bytes bgra = ColourfulBgra(width * height);
                    Bytes hsv(3 * width * height + 2, 99);
                    form(width, height, 4 * width, bgra.data(), 3 * width, hsv.data());
                    for (int i = 0; i < width * height; ++i)
                        ASSERT_EQ(hsv[3 * i], ColourfulHue(i))
                            << width << " x " << height << ", " << processors << " processors";
                    ASSERT_EQ(hsv[3 * width * height], 0);
                    ASSERT_EQ(hsv[3 * width * height + 1], 99);
                }
}

TEST(HsvByte, DenseRowsUpsideDownLoseTheirFirstHueToTheRowBelow) {
    // Rows are stored in order, so the zero behind row 1 comes after row 0's first pixel.
    Settings settings;
    for (unsigned processors = 1; processors <= 16; ++processors)
        for (auto* form : {IPL_BGRA2HSV_8u_C3R, IPL_BGRA2HSV_8u_C3R_MultiThread})
            for (int width : {1, 2, 5, 16, 33})
                for (int height : {1, 2, 7, 8, 9, 16, 17, 33}) {
                    settings.UseProcessors(processors);
                    Bytes bgra = ColourfulBgra(width * height);
                    Bytes hsv(3 * width * height + 2, 99);
                    form(width, height, 4 * width, bgra.data(), -3 * width,
                         hsv.data() + 3 * width * (height - 1));
                    for (int y = 0; y < height; ++y)
                        for (int x = 0; x < width; ++x) {
                            const bool lost = x == 0 && y + 1 < height;
                            ASSERT_EQ(hsv[3 * width * (height - 1 - y) + 3 * x],
                                      lost ? 0 : ColourfulHue(y * width + x))
                                << width << " x " << height << ", row " << y << ", " << processors
                                << " processors";
                        }
                    ASSERT_EQ(hsv[3 * width * height], 0);
                    ASSERT_EQ(hsv[3 * width * height + 1], 99);
                }
}

TEST(HsvByte, SectorsOfTheInverse) {
    // V 200, S 128: P = (1024 - 514.008) * 200 + 512 in 1024ths is 100. H 21 is 0.49412 of a
    // sector: t's factor is 1 - 0.50588 * 0.50196, 763.98 and a half in 1024ths; 764 * 200 is
    // 149.2.
    EXPECT_EQ(ToRgb(21, 128, 200), (Bytes{200, 149, 100}));
    // H 64: 0.50588 into the second: q's factor is the same. H 106: 0.49412 into the third.
    EXPECT_EQ(ToRgb(64, 128, 200), (Bytes{149, 200, 100}));
    EXPECT_EQ(ToRgb(106, 128, 200), (Bytes{100, 200, 149}));
    // H 149, 191 and 234: 0.50588 into the fourth, 0.49412 and 0.50588 into the last two.
    EXPECT_EQ(ToRgb(149, 128, 200), (Bytes{100, 149, 200}));
    EXPECT_EQ(ToRgb(191, 128, 200), (Bytes{149, 100, 200}));
    EXPECT_EQ(ToRgb(234, 128, 200), (Bytes{200, 100, 149}));
}

TEST(HsvByte, ASectorIsTwiceTheHueBy85) {
    // The last and the first hue of neighbouring sectors, at full saturation: the channel that does
    // not move is V.
    EXPECT_EQ(ToRgb(42, 255, 255)[0], 255);
    EXPECT_EQ(ToRgb(43, 255, 255)[1], 255);
    EXPECT_LT(ToRgb(42, 255, 255)[1], 255);
    EXPECT_LT(ToRgb(43, 255, 255)[0], 255);
    EXPECT_EQ(ToRgb(84, 255, 255)[2], 0);
    EXPECT_EQ(ToRgb(85, 255, 255), (Bytes{0, 255, 0}));
    EXPECT_EQ(ToRgb(86, 255, 255)[0], 0);
    EXPECT_EQ(ToRgb(127, 255, 255)[1], 255);
    EXPECT_EQ(ToRgb(128, 255, 255)[2], 255);
    EXPECT_EQ(ToRgb(170, 255, 255), (Bytes{0, 0, 255}));
    EXPECT_EQ(ToRgb(212, 255, 255)[2], 255);
    EXPECT_EQ(ToRgb(213, 255, 255)[0], 255);
    EXPECT_EQ(ToRgb(0, 255, 255), (Bytes{255, 0, 0}));
}

TEST(HsvByte, AHueOf255ClosesTheCircle) {
    EXPECT_EQ(ToRgb(255, 255, 255), (Bytes{255, 0, 0}));
    EXPECT_EQ(ToRgb(255, 255, 200), (Bytes{200, 0, 0}));
    // q's factor is 1 - 0.50196: 510 and a half; times 200 in 1024ths is 99.6.
    EXPECT_EQ(ToRgb(255, 128, 200), (Bytes{200, 100, 99}));
}

TEST(HsvByte, NoSaturationIsGreyWhateverTheHue) {
    for (int h = 0; h < 256; ++h)
        for (int v : {0, 1, 128, 254, 255})
            EXPECT_EQ(ToRgb(h, 0, v), Bytes(3, static_cast<uint8_t>(v))) << h;
}

TEST(HsvByte, NoValueIsBlack) {
    for (int h = 0; h < 256; ++h)
        for (int s = 0; s < 256; ++s) ASSERT_EQ(ToRgb(h, s, 0), Bytes(3, 0)) << h << " " << s;
}

TEST(HsvByte, AlphaIsCopiedForEveryPixel) {
    for (int width : {1, 7, 40}) {
        Bytes hsv(3 * width), alpha(width), bgra(4 * width, 99);
        for (int x = 0; x < width; ++x) {
            hsv[3 * x + 1] = static_cast<uint8_t>(x % 2 == 0 ? 0 : 200);
            hsv[3 * x + 2] = 77;
            alpha[x] = static_cast<uint8_t>(x * 37 + 5);
        }
        IPL_HSV2BGRA_8u_C3R(width, 1, 0, hsv.data(), 0, alpha.data(), 0, bgra.data());
        for (int x = 0; x < width; ++x) {
            EXPECT_EQ(bgra[4 * x + 3], alpha[x]);
            EXPECT_EQ(bgra[4 * x + 2], 77);
        }
    }
}

TEST(HsvByte, TheAlphaPlaneHasAStrideOfItsOwnAndIsNotTestedForNull) {
    for (unsigned processors : {1u, 2u, 4u}) {
        Settings settings;
        settings.UseProcessors(processors);
        Bytes hsv(4 * 5, 0), alpha = {1, 9, 2, 9, 3, 9, 4}, bgra(4 * 6, 99);
        IPL_HSV2BGRA_8u_C3R_MultiThread(1, 4, 5, hsv.data(), 2, alpha.data(), 6, bgra.data());
        for (int y = 0; y < 4; ++y)
            EXPECT_EQ(Bytes(bgra.begin() + 6 * y, bgra.begin() + 6 * y + 6),
                      (Bytes{0, 0, 0, static_cast<uint8_t>(y + 1), 99, 99}));
        // Upwards, from the last.
        IPL_HSV2BGRA_8u_C3R_MultiThread(1, 4, 5, hsv.data(), -2, alpha.data() + 6, 6, bgra.data());
        for (int y = 0; y < 4; ++y) EXPECT_EQ(bgra[6 * y + 3], 4 - y);
        // Without a pixel it is not read.
        for (int width : {0, -3}) {
            IPL_HSV2BGRA_8u_C3R(width, 4, 5, hsv.data(), 2, nullptr, 6, bgra.data());
            IPL_HSV2BGRA_8u_C3R_MultiThread(width, 4, 5, hsv.data(), 2, nullptr, 6, bgra.data());
        }
    }
}

TEST(HsvByte, StudioBlackWhiteAndGrey) {
    EXPECT_EQ(OfYuv(16, 128, 235, 128), (Bytes{0, 0, 0, 0, 0, 255}));
    EXPECT_EQ(OfYuv(0, 128, 255, 128), (Bytes{0, 0, 0, 0, 0, 255}));
    // (149 * 100 - 2320) / 128 = 98.28, (149 * 15 - 2320) / 128 = -0.66.
    EXPECT_EQ(OfYuv(100, 128, 15, 128), (Bytes{0, 0, 98, 0, 0, 0}));
    // 149 * 17 - 2320 = 213, 149 * 234 - 2320 = 32546 = 254.27 * 128.
    EXPECT_EQ(OfYuv(17, 128, 234, 128), (Bytes{0, 0, 1, 0, 0, 254}));
}

TEST(HsvByte, Packed422ToHsvByHand) {
    // u 10, v -10: red -17.4, down to -18; blue 21.6, 21; green 3782 / 1024, 3. Luma 98 and 40:
    // 80 101 119 and 22 43 61. The second leads by 39 too: 39 * 255 / 61 = 163.03.
    EXPECT_EQ(OfYuv(100, 138, 50, 118), (Bytes{147, 84, 119, 147, 163, 61}));
}

TEST(HsvByte, ChannelsAreLimitedBeforeTheirHue) {
    // Y 255: luma 278. v 127: red 506, green 278 - 68, blue 278, limited to 255 210 255, of which
    // the hue is 213. Saturation 45 * 255 / 255.
    EXPECT_EQ(OfYuv(255, 128, 255, 255), (Bytes{213, 45, 255, 213, 45, 255}));
    // Y 0: luma -19. u 127: blue 249, green -46 and red -19 are both 0.
    EXPECT_EQ(OfYuv(0, 255, 0, 128), (Bytes{170, 255, 249, 170, 255, 249}));
}

TEST(HsvByte, HsvToPacked422ByHand) {
    EXPECT_EQ(ToYuyv({0, 0, 255, 77, 0, 255}), (Bytes{235, 128, 235, 128}));
    EXPECT_EQ(ToYuyv({0, 0, 0, 9, 9, 0}), (Bytes{16, 128, 16, 128}));
    // 80 100 119 twice. Luma 62900 + 14960 + 7497 + 512 in 1024ths is 83; U 107100 - 69400 - 16480
    // + 1024 in 2048ths is 10; V 72000 - 81800 - 9758 + 1024 is -9.05, down to -10.
    EXPECT_EQ(ToYuyv({147, 84, 119, 147, 84, 119}), (Bytes{99, 138, 99, 118}));
    // Red: 187 * 255 + 512 in 1024ths is 47; -103 * 510 + 1024 is -25.1, 450 * 510 + 1024 is 112.6.
    EXPECT_EQ(ToYuyv({0, 255, 255, 0, 255, 255}), (Bytes{63, 102, 63, 240}));
}

TEST(HsvByte, ChromaComesFromTheSumsOfAPairsChannels) {
    // Red 255 beside black: sums of 255. -103 * 255 + 1024 in 2048ths is -12.3, down to -13;
    // 450 * 255 + 1024 is 56.53.
    EXPECT_EQ(ToYuyv({0, 255, 255, 0, 0, 0}), (Bytes{63, 115, 16, 184}));
    // Red 2 beside black: 450 * 2 + 1024 is below 2048. V of red 2 by itself would be 129, and its
    // mean with 128 would be 129 too.
    EXPECT_EQ(ToYuyv({0, 255, 2, 0, 255, 2}), (Bytes{16, 128, 16, 129}));
    EXPECT_EQ(ToYuyv({0, 255, 2, 0, 0, 0}), (Bytes{16, 128, 16, 128}));
    EXPECT_EQ(ToYuyv({0, 0, 0, 0, 255, 2}), (Bytes{16, 128, 16, 128}));
}

TEST(HsvByte, AnyMatrixGivesTheSameBytes) {
    Bytes src(4 * 21), hsv(6 * 21), packed(4 * 21);
    tqtest::FillHostile(src.data(), src.size(), 5);
    tqref::Uyvy2HsvBytes(42, 1, 0, src.data(), 0, hsv.data());
    tqref::HsvBytes2Uyvy(42, 1, 0, hsv.data(), 0, packed.data());
    std::vector<int> matrices = {std::numeric_limits<int>::min(), std::numeric_limits<int>::max(),
                                 1 << 30};
    for (int i = -9; i <= 300; ++i) matrices.push_back(i);
    Settings settings;
    settings.UseProcessors(2);
    for (int value : matrices) {
        const auto matrix = static_cast<TQ_COLOR_MATRIX>(value);
        for (auto* form : {IPL_UYVY2HSV_8u, IPL_UYVY2HSV_8u_MultiThread}) {
            Bytes dst(hsv.size(), 99);
            form(14, 3, 28, src.data(), 42, dst.data(), matrix);
            ASSERT_EQ(dst, hsv) << value;
        }
        for (auto* form : {IPL_HSV2UYVY_8u, IPL_HSV2UYVY_8u_MultiThread}) {
            Bytes dst(packed.size(), 99);
            form(14, 3, 42, hsv.data(), 28, dst.data(), matrix);
            ASSERT_EQ(dst, packed) << value;
        }
    }
}

TEST(HsvByte, AnOddLastPixelIsLeftAlone) {
    for (int width = 1; width <= 41; width += 2) {
        Bytes packed(2 * 2 * width, 60), hsv(2 * 3 * width, 60);
        for (auto* form : {IPL_YUYV2HSV_8u_709, IPL_YUYV2HSV_8u_709_MultiThread,
                           &WithThatMatrix<IPL_UYVY2HSV_8u, 1>,
                           &WithThatMatrix<IPL_UYVY2HSV_8u_MultiThread, 1>}) {
            Bytes dst(2 * 3 * width, 101);
            form(width, 2, 2 * width, packed.data(), 3 * width, dst.data());
            for (int i = 0; i < 6 * width; ++i)
                ASSERT_EQ(dst[i] == 101, i % (3 * width) >= 3 * (width - 1)) << width;
        }
        for (auto* form : {IPL_HSV2YUYV_8u_709, IPL_HSV2YUYV_8u_709_MultiThread,
                           &WithThatMatrix<IPL_HSV2UYVY_8u, 1>,
                           &WithThatMatrix<IPL_HSV2UYVY_8u_MultiThread, 1>}) {
            Bytes dst(2 * 2 * width, 201);
            form(width, 2, 3 * width, hsv.data(), 2 * width, dst.data());
            for (int i = 0; i < 4 * width; ++i)
                ASSERT_EQ(dst[i] == 201, i % (2 * width) >= 2 * (width - 1)) << width;
        }
    }
}

TEST(HsvByte, SizesWithoutAPixelWriteNothing) {
    for (const HsvForm* form : kForms) tqtest::ExpectEmptySizesWriteNothing(*form);
}

TEST(HsvByte, NoPointerIsUsedWhereThereIsNoPixel) {
    for (unsigned processors : {1u, 2u, 8u}) {
        Settings settings;
        settings.UseProcessors(processors);
        const HsvImage nothing[3] = {};
        for (const HsvForm* form : kForms)
            for (auto [width, height] : {std::pair{5, 0}, {5, -1}, {0, 1}, {-1, 1}, {0, 9}}) {
                form->plain(width, height, nothing);
                form->multiThread(width, height, nothing);
            }
    }
}

// A null source or destination, or both: nothing is written, no task is made.
void ExpectNullsDoNothing(const HsvForm& form, HsvForm::Function function) {
    for (int height : {1, 9, 24}) {
        const size_t count = form.images.size();
        std::vector<Bytes> memory(count, Bytes(16 * height, 60));
        const auto before = memory;
        for (int nulls = 1; nulls <= 3; ++nulls) {
            std::vector<HsvImage> images(count);
            for (size_t i = 0; i < count; ++i) images[i] = {16, memory[i].data()};
            if (nulls & 1) images.front().first = nullptr;
            if (nulls & 2) images.back().first = nullptr;
            EXPECT_EQ(tqtest::AllocationsOf([&] { function(4, height, images.data()); }), 0)
                << form.name << ", nulls " << nulls;
            EXPECT_EQ(memory, before) << form.name << ", nulls " << nulls;
        }
    }
}

TEST(HsvByte, ANullSourceOrDestinationDoesNothing) {
    for (unsigned processors : {1u, 3u, 8u}) {
        Settings settings;
        settings.UseProcessors(processors);
        for (const HsvForm* form : kForms) {
            ExpectNullsDoNothing(*form, form->multiThread);
            // IPL_BGRA2HSV_8u_C3R does not look.
            if (form != &kBgra2Hsv) ExpectNullsDoNothing(*form, form->plain);
        }
    }
}

TEST(HsvByte, WithOneProcessorNoTaskIsMade) {
    Settings settings;
    for (const HsvForm* form : kForms) {
        std::vector<Bytes> memory(form->images.size(), Bytes(16 * 16 + 1, 60));
        std::vector<HsvImage> images;
        for (Bytes& bytes : memory) images.push_back({16, bytes.data()});
        const auto run = [&] { form->multiThread(4, 16, images.data()); };
        settings.UseProcessors(2);
        EXPECT_GT(tqtest::AllocationsOf(run), 0) << form->name;
        settings.UseProcessors(1);
        EXPECT_EQ(tqtest::AllocationsOf(run), 0) << form->name;
    }
}

TEST(HsvByte, FormsEqualTheReference) {
    for (const HsvForm* form : kForms) tqtest::ExpectEqualsReference(*form);
}

TEST(HsvByte, MultiThreadEqualsPlainAtEveryProcessorCount) {
    for (const HsvForm* form : kForms) tqtest::ExpectMultiThreadEqualsPlain(*form);
}

TEST(HsvByte, TasksDoThePlainFormsWork) {
    for (const HsvForm* form : kForms) tqtest::ExpectTaskEqualsReference(*form);
}

// What a task makes of 21 by 3 pixels, behind what Run returned.
template <RunFunction* run> Bytes ResultOfTask() {
    Bytes src(6 * 21 * 3), dst(6 * 21 * 3, 99);
    tqtest::FillHostile(src.data(), src.size(), 9);
    const int returned = run(21, 3, 6 * 21, src.data(), 6 * 21, dst.data());
    dst.insert(dst.begin(), static_cast<uint8_t>(returned));
    return dst;
}

template <Reference* reference> Bytes ResultOfReference() {
    Bytes src(6 * 21 * 3), dst(6 * 21 * 3, 99);
    tqtest::FillHostile(src.data(), src.size(), 9);
    reference(21, 3, 6 * 21, src.data(), 6 * 21, dst.data());
    dst.insert(dst.begin(), 1);
    return dst;
}

template <class Task, int mode> void ExpectModeDoesNothing() {
    Bytes expected(6 * 21 * 3 + 1, 99);
    expected[0] = 1;
    EXPECT_EQ((ResultOfTask<tqtest::RunTaskInMode<Task, mode>>()), expected) << mode;
}

TEST(HsvByte, ATaskOfYuyvInAnyModeBut1DoesNothingAndReturns1) {
    ExpectModeDoesNothing<CYUYV2HSV, 0>();
    ExpectModeDoesNothing<CYUYV2HSV, 2>();
    ExpectModeDoesNothing<CYUYV2HSV, -1>();
    ExpectModeDoesNothing<CYUYV2HSV, 257>();
    ExpectModeDoesNothing<CHSV2YUYV, 0>();
    ExpectModeDoesNothing<CHSV2YUYV, 2>();
    ExpectModeDoesNothing<CHSV2YUYV, -1>();
    ExpectModeDoesNothing<CHSV2YUYV, 257>();
}

TEST(HsvByte, ATaskWithAFormatTakesYuyvForItsOwnAndUyvyForAnyOther) {
    const Bytes yuyv = ResultOfReference<tqref::Yuyv2HsvBytes>();
    const Bytes uyvy = ResultOfReference<tqref::Uyvy2HsvBytes>();
    ASSERT_NE(yuyv, uyvy);
    EXPECT_EQ((ResultOfTask<RunTaskOfFormat<CYUV2HSV, 64, 0>>()), yuyv);
    EXPECT_EQ((ResultOfTask<RunTaskOfFormat<CYUV2HSV, 64, -3>>()), yuyv);
    EXPECT_EQ((ResultOfTask<RunTaskOfFormat<CYUV2HSV, 128, 2>>()), uyvy);
    EXPECT_EQ((ResultOfTask<RunTaskOfFormat<CYUV2HSV, 0, 0>>()), uyvy);
    EXPECT_EQ((ResultOfTask<RunTaskOfFormat<CYUV2HSV, 65, 77>>()), uyvy);
    EXPECT_EQ((ResultOfTask<RunTaskOfFormat<CYUV2HSV, -1, 0>>()), uyvy);
    const Bytes toYuyv = ResultOfReference<tqref::HsvBytes2Yuyv>();
    const Bytes toUyvy = ResultOfReference<tqref::HsvBytes2Uyvy>();
    ASSERT_NE(toYuyv, toUyvy);
    EXPECT_EQ((ResultOfTask<RunTaskOfFormat<CHSV2YUV, 64, 0>>()), toYuyv);
    EXPECT_EQ((ResultOfTask<RunTaskOfFormat<CHSV2YUV, 64, -3>>()), toYuyv);
    EXPECT_EQ((ResultOfTask<RunTaskOfFormat<CHSV2YUV, 128, 2>>()), toUyvy);
    EXPECT_EQ((ResultOfTask<RunTaskOfFormat<CHSV2YUV, 0, 0>>()), toUyvy);
    EXPECT_EQ((ResultOfTask<RunTaskOfFormat<CHSV2YUV, 65, 77>>()), toUyvy);
    EXPECT_EQ((ResultOfTask<RunTaskOfFormat<CHSV2YUV, -1, 0>>()), toUyvy);
}

// Long single rows, filled by fill(row, src), at every level.
constexpr int kLongRow = 1 << 16;

template <class Fill>
void ExpectLongRows(Reference* reference, Function* plain, int width, int srcBytes, int dstBytes,
                    Fill fill) {
    Settings settings;
    Bytes src(srcBytes), dst, expected(dstBytes);
    for (int row = 0; row < 256; ++row) {
        fill(row, src.data());
        reference(width, 1, 0, src.data(), 0, expected.data());
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
            settings.Use(level);
            dst.assign(dstBytes, 0xA5);
            plain(width, 1, 0, src.data(), 0, dst.data());
            ASSERT_TRUE(tqtest::SameElements(dst.data(), expected.data(), expected.size()))
                << "row " << row << ", level " << tq::IsaLevelName(level);
        }
    }
}

TEST(HsvByte, EveryColourEqualsTheReference) {
    ExpectLongRows(tqref::Bgra2HsvBytes, IPL_BGRA2HSV_8u_C3R, kLongRow, 4 * kLongRow,
                   3 * kLongRow + 1, [](int red, uint8_t* src) {
                       for (int i = 0; i < kLongRow; ++i, src += 4) {
                           src[0] = static_cast<uint8_t>(i);
                           src[1] = static_cast<uint8_t>(i >> 8);
                           src[2] = static_cast<uint8_t>(red);
                           src[3] = static_cast<uint8_t>(i * 7 + red);
                       }
                   });
}

TEST(HsvByte, EveryTripleOfYuvEqualsTheReference) {
    const auto fill = [](int v, uint8_t* src, auto order) {
        for (int i = 0; i < kLongRow; ++i, src += 4) {
            src[order.y0] = static_cast<uint8_t>(i);
            src[order.u] = static_cast<uint8_t>(i >> 8);
            src[order.y1] = static_cast<uint8_t>(i * 167 + 91);
            src[order.v] = static_cast<uint8_t>(v);
        }
    };
    ExpectLongRows(tqref::Yuyv2HsvBytes, IPL_YUYV2HSV_8u_709, 2 * kLongRow, 4 * kLongRow,
                   6 * kLongRow, [&](int v, uint8_t* src) { fill(v, src, tqref::kHsvYuyv); });
    ExpectLongRows(tqref::Uyvy2HsvBytes, WithThatMatrix<IPL_UYVY2HSV_8u, 0>, 2 * kLongRow,
                   4 * kLongRow, 6 * kLongRow,
                   [&](int v, uint8_t* src) { fill(v, src, tqref::kHsvUyvy); });
}

TEST(HsvByte, EveryHsvToBgraEqualsTheReference) {
    static uint8_t alpha[kLongRow];
    tqtest::FillHostile(alpha, sizeof alpha, 3);
    ExpectLongRows(
        [](int width, int height, int, const uint8_t* src, int, uint8_t* dst) {
            tqref::HsvBytes2Bgra(width, height, 0, src, 0, alpha, 0, dst);
        },
        [](int width, int height, int, unsigned char* src, int, unsigned char* dst) {
            IPL_HSV2BGRA_8u_C3R(width, height, 0, src, 0, alpha, 0, dst);
        },
        kLongRow, 3 * kLongRow, 4 * kLongRow,
        [](int v, uint8_t* src) {
            for (int i = 0; i < kLongRow; ++i, src += 3) {
                src[0] = static_cast<uint8_t>(i);
                src[1] = static_cast<uint8_t>(i >> 8);
                src[2] = static_cast<uint8_t>(v);
            }
        });
}

TEST(HsvByte, EveryHsvToPacked422EqualsTheReference) {
    // Each left pixel once, beside one of another order.
    const auto fill = [](int v, uint8_t* src) {
        for (int i = 0; i < kLongRow; ++i, src += 6) {
            const unsigned j = i * 40503u + v * 977u + 12345u;
            src[0] = static_cast<uint8_t>(i);
            src[1] = static_cast<uint8_t>(i >> 8);
            src[2] = static_cast<uint8_t>(v);
            src[3] = static_cast<uint8_t>(j);
            src[4] = static_cast<uint8_t>(j >> 8);
            src[5] = static_cast<uint8_t>(v * 167 + 91);
        }
    };
    ExpectLongRows(tqref::HsvBytes2Yuyv, IPL_HSV2YUYV_8u_709, 2 * kLongRow, 6 * kLongRow,
                   4 * kLongRow, fill);
    ExpectLongRows(tqref::HsvBytes2Uyvy, WithThatMatrix<IPL_HSV2UYVY_8u, 0>, 2 * kLongRow,
                   6 * kLongRow, 4 * kLongRow, fill);
}

}  // namespace
