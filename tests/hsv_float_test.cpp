// HSV in floats: values known by hand, every form against its reference, the floats at which a
// result changes, bands, tasks.

#include <gtest/gtest.h>
#include <tqipl/hsv.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

#include "color/hsv_float_tasks.h"
#include "reference/hsv_float_reference.h"
#include "support/allocation_counter.h"
#include "support/hsv_forms.h"
#include "support/settings.h"

namespace {

using tqtest::HsvContent;
using tqtest::HsvForm;
using tqtest::HsvImage;
using tqtest::Neighbour;
using tqtest::Settings;

using Bytes = std::vector<uint8_t>;
using Floats = std::vector<float>;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

constexpr tqtest::HsvImageKind kBgraIn = {HsvContent::kBytes, 4, false};
constexpr tqtest::HsvImageKind kBgraOut = {HsvContent::kBytes, 4, true};
constexpr tqtest::HsvImageKind kYuyvIn = {HsvContent::kBytes, 4, false};
constexpr tqtest::HsvImageKind kYuyvOut = {HsvContent::kBytes, 4, true};
constexpr tqtest::HsvImageKind kHueIn = {HsvContent::kHue, 1, false};
constexpr tqtest::HsvImageKind kSaturationIn = {HsvContent::kSaturation, 1, false};
constexpr tqtest::HsvImageKind kValueIn = {HsvContent::kValue, 1, false};
constexpr tqtest::HsvImageKind kAlphaIn = {HsvContent::kAlpha, 1, false};
constexpr tqtest::HsvImageKind kPlaneOut = {HsvContent::kFloats, 1, true};

constexpr tqtest::HsvImageKind kPlaneOfPairsOut = {HsvContent::kFloats, 2, true};
constexpr tqtest::HsvImageKind kHueOfPairsIn = {HsvContent::kHue, 2, false};
constexpr tqtest::HsvImageKind kRatioOfPairsIn = {HsvContent::kValue, 2, false};
constexpr tqtest::HsvImageKind kHsvOfPairsIn = {HsvContent::kHsv255, 6, false};
constexpr tqtest::HsvImageKind kHsvOfPairsOut = {HsvContent::kFloats, 6, true};
constexpr tqtest::HsvImageKind kPlaneSetIn = {HsvContent::kPlaneSet255, 0, false};
constexpr tqtest::HsvImageKind kPlaneSetOut = {HsvContent::kPlaneSet255, 0, true};

// A task's fields, its run, and its end through its base.
template <class Task, class Fill> int RunFilled(Fill fill) {
    auto task = std::make_unique<Task>();
    fill(*task);
    const std::unique_ptr<CTQIPLTaskBase> base = std::move(task);
    return base->Run();
}

template <class Task> void SetPlanes(Task& task, const HsvImage* planes) {
    task.m_nHStride = planes[0].stride;
    task.m_pH = planes[0].Floats();
    task.m_nSStride = planes[1].stride;
    task.m_pS = planes[1].Floats();
    task.m_nVStride = planes[2].stride;
    task.m_pV = planes[2].Floats();
}

template <class Task> int RunBytesToPlanes(int width, int height, const HsvImage* images) {
    return RunFilled<Task>([&](Task& task) {
        task.m_nWidth = width;
        task.m_nHeight = height;
        task.m_nSrcStride = images[0].stride;
        task.m_pSrc = images[0].Bytes();
        SetPlanes(task, images + 1);
    });
}

template <class Task> int RunPlanesToBytes(int width, int height, const HsvImage* images) {
    return RunFilled<Task>([&](Task& task) {
        task.m_nWidth = width;
        task.m_nHeight = height;
        SetPlanes(task, images);
        task.m_nDstStride = images[3].stride;
        task.m_pDst = images[3].Bytes();
    });
}

template <class Task> int RunYuyvToHsv(int width, int height, const HsvImage* images) {
    return RunFilled<Task>([&](Task& task) {
        task.m_nWidth = width;
        task.m_nHeight = height;
        task.m_nSrcStride = images[0].stride;
        task.m_pSrc = images[0].Bytes();
        task.m_nDstStride = images[1].stride;
        task.m_pDst = images[1].Floats();
    });
}

template <class Task> int RunHsvToYuyv(int width, int height, const HsvImage* images) {
    return RunFilled<Task>([&](Task& task) {
        task.m_nWidth = width;
        task.m_nHeight = height;
        task.m_nSrcStride = images[0].stride;
        task.m_pSrc = images[0].Floats();
        task.m_nDstStride = images[1].stride;
        task.m_pDst = images[1].Bytes();
    });
}

// The alpha plane is image 3 where there is one.
template <bool withAlpha> int RunHsvToBgra(int width, int height, const HsvImage* images) {
    return RunFilled<CZHSV2RGBA_Task>([&](CZHSV2RGBA_Task& task) {
        const HsvImage& dst = images[withAlpha ? 4 : 3];
        task.m_nWidth = width;
        task.m_nHeight = height;
        SetPlanes(task, images);
        task.m_nAlphaStride = withAlpha ? images[3].stride : 0;
        task.m_pAlpha = withAlpha ? images[3].Floats() : nullptr;
        task.m_nDstStride = dst.stride;
        task.m_pDst = dst.Bytes();
    });
}

using BgraToPlanes = void(int, int, int, unsigned char*, int, float*, int, float*, int, float*);
template <BgraToPlanes* form> void CallBgraToPlanes(int width, int height, const HsvImage* i) {
    form(width, height, i[0].stride, i[0].Bytes(), i[1].stride, i[1].Floats(), i[2].stride,
         i[2].Floats(), i[3].stride, i[3].Floats());
}

using PlanesToBgra = void(int, int, int, float*, int, float*, int, float*, int, unsigned char*);
template <PlanesToBgra* form> void CallPlanesToBgra(int width, int height, const HsvImage* i) {
    form(width, height, i[0].stride, i[0].Floats(), i[1].stride, i[1].Floats(), i[2].stride,
         i[2].Floats(), i[3].stride, i[3].Bytes());
}

using PlanesToBgraWithAlpha = void(int, int, int, float*, int, float*, int, float*, int, float*,
                                   int, unsigned char*);
template <PlanesToBgraWithAlpha* form>
void CallPlanesToBgra(int width, int height, const HsvImage* i) {
    form(width, height, i[0].stride, i[0].Floats(), i[1].stride, i[1].Floats(), i[2].stride,
         i[2].Floats(), i[3].stride, i[3].Floats(), i[4].stride, i[4].Bytes());
}

constexpr PlanesToBgra* kPlain = IPL_HSV2BGRA;
constexpr PlanesToBgra* kMultiThread = IPL_HSV2BGRA_MultiThread;
constexpr PlanesToBgraWithAlpha* kPlainWithAlpha = IPL_HSV2BGRA;
constexpr PlanesToBgraWithAlpha* kMultiThreadWithAlpha = IPL_HSV2BGRA_MultiThread;

const HsvForm kBgra2Hsv = {"IPL_BGRA2HSV",
                           1,
                           {kBgraIn, kPlaneOut, kPlaneOut, kPlaneOut},
                           CallBgraToPlanes<IPL_BGRA2HSV>,
                           CallBgraToPlanes<IPL_BGRA2HSV_MultiThread>,
                           RunBytesToPlanes<CZBGRA2HSV_Task>,
                           [](int width, int height, const HsvImage* i) {
                               tqref::Bgra2Hsv(width, height, i[0].stride, i[0].Bytes(),
                                               i[1].stride, i[1].Floats(), i[2].stride,
                                               i[2].Floats(), i[3].stride, i[3].Floats());
                           }};

const HsvForm kHsv2BgraWithAlpha = {"IPL_HSV2BGRA with alpha",
                                    1,
                                    {kHueIn, kSaturationIn, kValueIn, kAlphaIn, kBgraOut},
                                    CallPlanesToBgra<kPlainWithAlpha>,
                                    CallPlanesToBgra<kMultiThreadWithAlpha>,
                                    RunHsvToBgra<true>,
                                    [](int width, int height, const HsvImage* i) {
                                        tqref::Hsv2Bgra(width, height, i[0].stride, i[0].Floats(),
                                                        i[1].stride, i[1].Floats(), i[2].stride,
                                                        i[2].Floats(), i[3].stride, i[3].Floats(),
                                                        i[4].stride, i[4].Bytes());
                                    }};

const HsvForm kHsv2Bgra = {
    "IPL_HSV2BGRA without alpha",
    1,
    {kHueIn, kSaturationIn, kValueIn, kBgraOut},
    CallPlanesToBgra<kPlain>,
    CallPlanesToBgra<kMultiThread>,
    RunHsvToBgra<false>,
    [](int width, int height, const HsvImage* i) {
        tqref::Hsv2Bgra(width, height, i[0].stride, i[0].Floats(), i[1].stride, i[1].Floats(),
                        i[2].stride, i[2].Floats(), 0, nullptr, i[3].stride, i[3].Bytes());
    }};

const HsvForm kHsvToBgraByFloor = {"IPL_HSV_To_BGRA",
                                   1,
                                   {kHueIn, kSaturationIn, kValueIn, kBgraOut},
                                   CallPlanesToBgra<IPL_HSV_To_BGRA>,
                                   nullptr,
                                   nullptr,
                                   [](int width, int height, const HsvImage* i) {
                                       tqref::HsvToBgraByFloor(
                                           width, height, i[0].stride, i[0].Floats(), i[1].stride,
                                           i[1].Floats(), i[2].stride, i[2].Floats(), i[3].stride,
                                           i[3].Bytes());
                                   }};

using YuyvToHsv = void(int, int, int, unsigned char*, int, float*);
using YuyvToPlanes = void(int, int, int, unsigned char*, float*);
using HsvToYuyv = void(int, int, int, float*, int, unsigned char*);
using PlanesToYuyv = void(int, int, float*, int, unsigned char*);

template <const tqref::HsvYuvSet& set, YuyvToHsv* plain, YuyvToHsv* multiThread, class Task>
HsvForm ToHsvForm(const char* name) {
    return {name,
            2,
            {kYuyvIn, kHsvOfPairsOut},
            [](int width, int height, const HsvImage* i) {
                plain(width, height, i[0].stride, i[0].Bytes(), i[1].stride, i[1].Floats());
            },
            [](int width, int height, const HsvImage* i) {
                multiThread(width, height, i[0].stride, i[0].Bytes(), i[1].stride, i[1].Floats());
            },
            RunYuyvToHsv<Task>,
            [](int width, int height, const HsvImage* i) {
                tqref::Yuyv2Hsv(set, width, height, i[0].stride, i[0].Bytes(), i[1].stride,
                                i[1].Floats());
            }};
}

template <const tqref::HsvYuvSet& set, YuyvToPlanes* plain, YuyvToPlanes* multiThread>
HsvForm ToPlaneSetForm(const char* name) {
    return {name,
            2,
            {kYuyvIn, kPlaneSetOut},
            [](int width, int height, const HsvImage* i) {
                plain(width, height, i[0].stride, i[0].Bytes(), i[1].Floats());
            },
            [](int width, int height, const HsvImage* i) {
                multiThread(width, height, i[0].stride, i[0].Bytes(), i[1].Floats());
            },
            nullptr,
            [](int width, int height, const HsvImage* i) {
                tqref::Yuyv2HsvP(set, width, height, i[0].stride, i[0].Bytes(), i[1].Floats());
            }};
}

// The task of the plane set has three planes and strides of its own.
template <const tqref::HsvYuvSet& set, class Task> HsvForm ToPlanesTaskForm(const char* name) {
    return {
        name,
        2,
        {kYuyvIn, kPlaneOfPairsOut, kPlaneOfPairsOut, kPlaneOfPairsOut},
        [](int width, int height, const HsvImage* i) { RunBytesToPlanes<Task>(width, height, i); },
        nullptr,
        RunBytesToPlanes<Task>,
        [](int width, int height, const HsvImage* i) {
            tqref::Yuyv2HsvPlanes(set, width, height, i[0].stride, i[0].Bytes(), i[1].stride,
                                  i[1].Floats(), i[2].stride, i[2].Floats(), i[3].stride,
                                  i[3].Floats());
        }};
}

template <const tqref::HsvYuvSet& set, HsvToYuyv* plain, HsvToYuyv* multiThread, class Task>
HsvForm FromHsvForm(const char* name) {
    return {name,
            2,
            {kHsvOfPairsIn, kYuyvOut},
            [](int width, int height, const HsvImage* i) {
                plain(width, height, i[0].stride, i[0].Floats(), i[1].stride, i[1].Bytes());
            },
            [](int width, int height, const HsvImage* i) {
                multiThread(width, height, i[0].stride, i[0].Floats(), i[1].stride, i[1].Bytes());
            },
            RunHsvToYuyv<Task>,
            [](int width, int height, const HsvImage* i) {
                tqref::Hsv2Yuyv(set, width, height, i[0].stride, i[0].Floats(), i[1].stride,
                                i[1].Bytes());
            }};
}

template <const tqref::HsvYuvSet& set, PlanesToYuyv* plain, PlanesToYuyv* multiThread>
HsvForm FromPlaneSetForm(const char* name) {
    return {name,
            2,
            {kPlaneSetIn, kYuyvOut},
            [](int width, int height, const HsvImage* i) {
                plain(width, height, i[0].Floats(), i[1].stride, i[1].Bytes());
            },
            [](int width, int height, const HsvImage* i) {
                multiThread(width, height, i[0].Floats(), i[1].stride, i[1].Bytes());
            },
            nullptr,
            [](int width, int height, const HsvImage* i) {
                tqref::HsvP2Yuyv(set, width, height, i[0].Floats(), i[1].stride, i[1].Bytes());
            }};
}

template <const tqref::HsvYuvSet& set, class Task> HsvForm FromPlanesTaskForm(const char* name) {
    return {
        name,
        2,
        {kHueOfPairsIn, kRatioOfPairsIn, kRatioOfPairsIn, kYuyvOut},
        [](int width, int height, const HsvImage* i) { RunPlanesToBytes<Task>(width, height, i); },
        nullptr,
        RunPlanesToBytes<Task>,
        [](int width, int height, const HsvImage* i) {
            tqref::HsvPlanes2Yuyv(set, width, height, i[0].stride, i[0].Floats(), i[1].stride,
                                  i[1].Floats(), i[2].stride, i[2].Floats(), i[3].stride,
                                  i[3].Bytes());
        }};
}

const HsvForm kYuyv2Hsv601 =
    ToHsvForm<tqref::kHsv601, IPL_YUYV2HSV_601, IPL_YUYV2HSV_601_MultiThread, CZYUYV2HSVTask_601>(
        "IPL_YUYV2HSV_601");
const HsvForm kYuyv2Hsv709 =
    ToHsvForm<tqref::kHsv709, IPL_YUYV2HSV_709, IPL_YUYV2HSV_709_MultiThread, CZYUYV2HSVTask_709>(
        "IPL_YUYV2HSV_709");
const HsvForm kYuyv2HsvP601 =
    ToPlaneSetForm<tqref::kHsv601, IPL_YUYV2HSVP_601, IPL_YUYV2HSVP_601_MultiThread>(
        "IPL_YUYV2HSVP_601");
const HsvForm kYuyv2HsvP709 =
    ToPlaneSetForm<tqref::kHsv709, IPL_YUYV2HSVP_709, IPL_YUYV2HSVP_709_MultiThread>(
        "IPL_YUYV2HSVP_709");
const HsvForm kYuyv2HsvPTask601 =
    ToPlanesTaskForm<tqref::kHsv601, CZYUYV2HSVPTask_601>("CZYUYV2HSVPTask_601");
const HsvForm kYuyv2HsvPTask709 =
    ToPlanesTaskForm<tqref::kHsv709, CZYUYV2HSVPTask_709>("CZYUYV2HSVPTask_709");
const HsvForm kHsv2Yuyv601 =
    FromHsvForm<tqref::kHsv601, IPL_HSV2YUYV_601, IPL_HSV2YUYV_601_MultiThread, CZHSV2YUYVTask_601>(
        "IPL_HSV2YUYV_601");
const HsvForm kHsv2Yuyv709 =
    FromHsvForm<tqref::kHsv709, IPL_HSV2YUYV_709, IPL_HSV2YUYV_709_MultiThread, CZHSV2YUYVTask_709>(
        "IPL_HSV2YUYV_709");
const HsvForm kHsvP2Yuyv601 =
    FromPlaneSetForm<tqref::kHsv601, IPL_HSVP2YUYV_601, IPL_HSVP2YUYV_601_MultiThread>(
        "IPL_HSVP2YUYV_601");
const HsvForm kHsvP2Yuyv709 =
    FromPlaneSetForm<tqref::kHsv709, IPL_HSVP2YUYV_709, IPL_HSVP2YUYV_709_MultiThread>(
        "IPL_HSVP2YUYV_709");
const HsvForm kHsvP2YuyvTask601 =
    FromPlanesTaskForm<tqref::kHsv601, CZHSVP2YUYVTask_601>("CZHSVP2YUYVTask_601");
const HsvForm kHsvP2YuyvTask709 =
    FromPlanesTaskForm<tqref::kHsv709, CZHSVP2YUYVTask_709>("CZHSVP2YUYVTask_709");

const HsvForm* const kPixelForms[] = {&kBgra2Hsv, &kHsv2BgraWithAlpha, &kHsv2Bgra,
                                      &kHsvToBgraByFloor};
const HsvForm* const kMultiThreadPixelForms[] = {&kBgra2Hsv, &kHsv2BgraWithAlpha, &kHsv2Bgra};
const HsvForm* const kPairForms[] = {&kYuyv2Hsv601, &kYuyv2Hsv709, &kYuyv2HsvP601, &kYuyv2HsvP709,
                                     &kHsv2Yuyv601, &kHsv2Yuyv709, &kHsvP2Yuyv601, &kHsvP2Yuyv709};
const HsvForm* const kTasksOfPlanes[] = {&kYuyv2HsvPTask601, &kYuyv2HsvPTask709, &kHsvP2YuyvTask601,
                                         &kHsvP2YuyvTask709};

struct Hsv {
    float h, s, v;
};
// Bit by bit.
bool operator==(const Hsv& a, const Hsv& b) { return std::memcmp(&a, &b, sizeof a) == 0; }
void PrintTo(const Hsv& hsv, std::ostream* out) {
    *out << std::hexfloat << "{" << hsv.h << ", " << hsv.s << ", " << hsv.v << "}"
         << std::defaultfloat;
}

Hsv OfFloats(float r, float g, float b) {
    Hsv hsv = {-7, -7, -7};
    IPL_RGB2HSV_32f_32f(r, g, b, hsv.h, hsv.s, hsv.v);
    return hsv;
}

// The three forms for bytes agree.
Hsv OfBytes(int r, int g, int b) {
    Hsv hsv = {-7, -7, -7}, plane = {-7, -7, -7};
    const auto red = static_cast<uint8_t>(r), green = static_cast<uint8_t>(g);
    const auto blue = static_cast<uint8_t>(b);
    IPL_RGB2HSV_8u_32f(red, green, blue, hsv.h, hsv.s, hsv.v);
    uint8_t bgra[4] = {blue, green, red, 77};
    IPL_BGRA2HSV(1, 1, 4, bgra, 1, &plane.h, 1, &plane.s, 1, &plane.v);
    EXPECT_EQ(plane, hsv) << r << " " << g << " " << b;
    EXPECT_EQ(OfFloats(static_cast<float>(r), static_cast<float>(g), static_cast<float>(b)), hsv)
        << r << " " << g << " " << b;
    return hsv;
}

// Red, green and blue; 99 where nothing is stored. The pixel and both image forms agree.
Bytes ToRgb(float h, float s, float v) {
    uint8_t r = 99, g = 99, b = 99;
    IPL_HSV2RGB_32f_8u(h, s, v, r, g, b);
    uint8_t bgra[4] = {99, 99, 99, 99};
    IPL_HSV2BGRA(1, 1, 1, &h, 1, &s, 1, &v, 4, bgra);
    EXPECT_EQ(Bytes(bgra, bgra + 4), (Bytes{b, g, r, 99})) << h << " " << s << " " << v;
    uint8_t withAlpha[4] = {99, 99, 99, 99};
    float alpha = 0.5f;
    IPL_HSV2BGRA(1, 1, 1, &h, 1, &s, 1, &v, 1, &alpha, 4, withAlpha);
    EXPECT_EQ(Bytes(withAlpha, withAlpha + 4), (Bytes{b, g, r, 128})) << h << " " << s << " " << v;
    return {r, g, b};
}

Bytes ToRgbByFloor(float h, float s, float v) {
    uint8_t bgra[4] = {99, 99, 99, 99};
    IPL_HSV_To_BGRA(1, 1, 1, &h, 1, &s, 1, &v, 4, bgra);
    EXPECT_EQ(bgra[3], 99);
    return {bgra[2], bgra[1], bgra[0]};
}

// The four bytes of a pair; both layouts and both ways of calling agree.
Bytes ToYuyv(HsvToYuyv* interleaved, PlanesToYuyv* planes, Hsv left, Hsv right) {
    Floats pixels = {left.h, left.s, left.v, right.h, right.s, right.v};
    Floats planeSet = {left.h, right.h, left.s, right.s, left.v, right.v};
    Bytes yuyv(4, 99), fromPlanes(4, 99);
    interleaved(2, 1, 6, pixels.data(), 4, yuyv.data());
    planes(2, 1, planeSet.data(), 4, fromPlanes.data());
    EXPECT_EQ(fromPlanes, yuyv);
    return yuyv;
}
Bytes ToYuyv601(Hsv left, Hsv right) {
    return ToYuyv(IPL_HSV2YUYV_601, IPL_HSVP2YUYV_601, left, right);
}
Bytes ToYuyv709(Hsv left, Hsv right) {
    return ToYuyv(IPL_HSV2YUYV_709, IPL_HSVP2YUYV_709, left, right);
}

Hsv OfYuv(YuyvToHsv* interleaved, int y, int u, int v) {
    Bytes yuyv = {static_cast<uint8_t>(y), static_cast<uint8_t>(u), static_cast<uint8_t>(y),
                  static_cast<uint8_t>(v)};
    Floats hsv(6, -7);
    interleaved(2, 1, 4, yuyv.data(), 6, hsv.data());
    const Hsv left = {hsv[0], hsv[1], hsv[2]}, right = {hsv[3], hsv[4], hsv[5]};
    EXPECT_EQ(left, right);
    return left;
}

TEST(HsvFloat, PureColoursStandAtMultiplesOf60Degrees) {
    EXPECT_EQ(OfBytes(255, 0, 0), (Hsv{0, 1, 1}));
    EXPECT_EQ(OfBytes(255, 255, 0), (Hsv{60, 1, 1}));
    EXPECT_EQ(OfBytes(0, 255, 0), (Hsv{120, 1, 1}));
    EXPECT_EQ(OfBytes(0, 255, 255), (Hsv{180, 1, 1}));
    EXPECT_EQ(OfBytes(0, 0, 255), (Hsv{240, 1, 1}));
    EXPECT_EQ(OfBytes(255, 0, 255), (Hsv{300, 1, 1}));
}

TEST(HsvFloat, HueSaturationAndValueByHand) {
    // Spread 64 of 128: exact throughout. Red leads: 16 / 64 of a sector up, or down from 360.
    const float v = static_cast<float>(128 / 255.0);
    EXPECT_EQ(OfBytes(128, 80, 64), (Hsv{15, 0.5f, v}));
    EXPECT_EQ(OfBytes(128, 64, 80), (Hsv{345, 0.5f, v}));
    EXPECT_EQ(OfBytes(64, 128, 80), (Hsv{135, 0.5f, v}));
    EXPECT_EQ(OfBytes(80, 128, 64), (Hsv{105, 0.5f, v}));
    EXPECT_EQ(OfBytes(80, 64, 128), (Hsv{255, 0.5f, v}));
    EXPECT_EQ(OfBytes(64, 80, 128), (Hsv{225, 0.5f, v}));
}

TEST(HsvFloat, TiesGoToRedThenGreen) {
    // As green these would be 120 - 60 all the same; the sector's arithmetic shows in the last bit.
    for (int k = 1; k < 256; ++k)
        for (int low = 0; low < k; ++low) {
            const float inverse = 1.0f / static_cast<float>(k - low);
            const float whole = static_cast<float>(k - low) * inverse;
            ASSERT_EQ(OfBytes(k, k, low).h, whole * 60.0f) << k << " " << low;
            const float green = whole + 2.0f;
            ASSERT_EQ(OfBytes(low, k, k).h, green * 60.0f) << k << " " << low;
        }
}

TEST(HsvFloat, GreyHasNoHueAndNoSaturation) {
    for (int k = 0; k < 256; ++k)
        EXPECT_EQ(OfBytes(k, k, k), (Hsv{0, 0, static_cast<float>(k / 255.0)}));
    EXPECT_EQ(OfBytes(0, 0, 0), (Hsv{0, 0, 0}));
    EXPECT_EQ(OfBytes(255, 255, 255), (Hsv{0, 0, 1}));
}

TEST(HsvFloat, ASpreadBelowAMillionthIsGrey) {
    // The float nearest to 1e-6 is below it, the next one is not.
    ASSERT_LT(double{1e-6f}, 1e-6);
    const float above = Neighbour(1e-6f, 1);
    EXPECT_EQ(OfFloats(1e-6f, 0, 0), (Hsv{0, 0, static_cast<float>(double{1e-6f} / 255.0)}));
    EXPECT_EQ(OfFloats(0, 1e-6f, 0), (Hsv{0, 0, static_cast<float>(double{1e-6f} / 255.0)}));
    EXPECT_EQ(OfFloats(0, above, 0), (Hsv{120, 1, static_cast<float>(double{above} / 255.0)}));
}

TEST(HsvFloat, ATinyFallBelowRedIs360Degrees) {
    // -1e-5 / 255 * 60 is lost beside 360; nothing wraps it to 0.
    EXPECT_EQ(OfFloats(255, 0, 1e-5f), (Hsv{360, 1, 1}));
    // 0 is not above minus a denormal that became -0.
    EXPECT_EQ(OfFloats(255, 0, std::numeric_limits<float>::denorm_min()).h, 0.0f);
}

TEST(HsvFloat, FloatChannelsAreOnTheScaleOf255AndNotLimited) {
    EXPECT_EQ(OfFloats(510, 0, 0), (Hsv{0, 1, 2}));
    EXPECT_EQ(OfFloats(-255, -510, -510), (Hsv{0, -1, -1}));
    EXPECT_EQ(OfFloats(127.5f, 63.75f, 63.75f), (Hsv{0, 0.5f, 0.5f}));
}

TEST(HsvFloat, SourceAlphaHasNoInfluence) {
    for (int alpha = 0; alpha < 256; ++alpha) {
        uint8_t bgra[4] = {64, 80, 128, static_cast<uint8_t>(alpha)};
        Hsv hsv;
        IPL_BGRA2HSV(1, 1, 4, bgra, 1, &hsv.h, 1, &hsv.s, 1, &hsv.v);
        EXPECT_EQ(hsv, (Hsv{15, 0.5f, static_cast<float>(128 / 255.0)}));
    }
}

TEST(HsvFloat, SectorsOfTheInverse) {
    EXPECT_EQ(ToRgb(0, 1, 1), (Bytes{255, 0, 0}));
    EXPECT_EQ(ToRgb(60, 1, 1), (Bytes{255, 255, 0}));
    EXPECT_EQ(ToRgb(120, 1, 1), (Bytes{0, 255, 0}));
    EXPECT_EQ(ToRgb(180, 1, 1), (Bytes{0, 255, 255}));
    EXPECT_EQ(ToRgb(240, 1, 1), (Bytes{0, 0, 255}));
    EXPECT_EQ(ToRgb(300, 1, 1), (Bytes{255, 0, 255}));
    // A quarter into each: P 0.5, Q 0.875, T 0.625 of 200.
    const float v = 200.0f / 255;
    EXPECT_EQ(ToRgb(15, 0.5f, v), (Bytes{200, 125, 100}));
    EXPECT_EQ(ToRgb(75, 0.5f, v), (Bytes{175, 200, 100}));
    EXPECT_EQ(ToRgb(135, 0.5f, v), (Bytes{100, 200, 125}));
    EXPECT_EQ(ToRgb(195, 0.5f, v), (Bytes{100, 175, 200}));
    EXPECT_EQ(ToRgb(255, 0.5f, v), (Bytes{125, 100, 200}));
    EXPECT_EQ(ToRgb(315, 0.5f, v), (Bytes{200, 100, 175}));
}

TEST(HsvFloat, AHueOf360StoresNoColour) {
    EXPECT_EQ(ToRgb(360, 1, 1), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(360, 0.5f, 0.25f), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(400, 1, 1), (Bytes{99, 99, 99}));
    // The last float before it still is the last sector: Q is 0.01 and a little.
    EXPECT_EQ(ToRgb(359.99997f, 1, 1), (Bytes{255, 0, 0}));
    // Grey does not look at the hue.
    EXPECT_EQ(ToRgb(360, 0, 1), (Bytes{255, 255, 255}));
    EXPECT_EQ(ToRgb(kNan, 0, 1), (Bytes{255, 255, 255}));
}

TEST(HsvFloat, ANegativeHueAboveMinus60IsInTheFirstSector) {
    // f = -0.5: T = -127.5 and a hundredth, truncated to -127, of which the low byte is 129.
    EXPECT_EQ(ToRgb(-30, 1, 1), (Bytes{255, 129, 0}));
    EXPECT_EQ(ToRgb(-0.0f, 1, 1), (Bytes{255, 0, 0}));
    EXPECT_EQ(ToRgb(-60, 1, 1), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(-61, 1, 1), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(-400, 1, 1), (Bytes{99, 99, 99}));
}

TEST(HsvFloat, GreyOfTheInverseHasAHundredthAdded) {
    EXPECT_EQ(ToRgb(0, 0, 1), (Bytes{255, 255, 255}));
    EXPECT_EQ(ToRgb(0, 0, 0.2f), (Bytes{51, 51, 51}));
    EXPECT_EQ(ToRgb(0, 0, 0.5f), (Bytes{127, 127, 127}));
    EXPECT_EQ(ToRgb(0, 0, 99.995f / 255), (Bytes{100, 100, 100}));
    EXPECT_EQ(ToRgb(0, 0, 99.985f / 255), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(0, 0, 2), (Bytes{254, 254, 254}));            // 510.01
    EXPECT_EQ(ToRgb(0, 0, -1 / 255.0f), (Bytes{0, 0, 0}));        // -0.99
    EXPECT_EQ(ToRgb(0, 0, -2 / 255.0f), (Bytes{255, 255, 255}));  // -1.99
    EXPECT_EQ(ToRgb(0, -0.0f, 0.2f), (Bytes{51, 51, 51}));
}

TEST(HsvFloat, GreyIsASaturationWithinATenBillionth) {
    // The nearest float is above 1e-10 in double precision; the one below it is not. At V 2 the
    // largest channel of a colour is 510, the others are limited to 255.
    ASSERT_GT(double{1e-10f}, 1e-10);
    const float below = Neighbour(1e-10f, -1);
    ASSERT_LT(double{below}, 1e-10);
    EXPECT_EQ(ToRgb(0, 1e-10f, 2), (Bytes{254, 255, 255}));
    EXPECT_EQ(ToRgb(0, -1e-10f, 2), (Bytes{254, 255, 255}));
    EXPECT_EQ(ToRgb(0, below, 2), (Bytes{254, 254, 254}));
    EXPECT_EQ(ToRgb(0, -below, 2), (Bytes{254, 254, 254}));
    EXPECT_EQ(ToRgb(360, 1e-10f, 1), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(360, below, 1), (Bytes{255, 255, 255}));
}

TEST(HsvFloat, TheLargestChannelHasNeitherTheHundredthNorTheLimit) {
    // W just below 255; P and T are W and a hundredth, limited.
    EXPECT_EQ(ToRgb(0, 1e-9f, Neighbour(1, -1)), (Bytes{254, 255, 255}));
    EXPECT_EQ(ToRgb(0, 1e-9f, 99.995f / 255), (Bytes{99, 100, 100}));
    // W = 300.39: its low byte is 44. P = 270.4, T = 270.4 are limited.
    EXPECT_EQ(ToRgb(0, 0.1f, 1.178f), (Bytes{44, 255, 255}));
    EXPECT_EQ(ToRgb(0, 0.5f, 1.178f), (Bytes{44, 150, 150}));
    // No lower limit: P = T = -50, W = -100.
    EXPECT_EQ(ToRgb(0, 0.5f, -100.5f / 255), (Bytes{156, 206, 206}));
}

TEST(HsvFloat, WhatIsNoNumberGivesZeroOrNothing) {
    EXPECT_EQ(ToRgb(kNan, 1, 1), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(kInfinity, 1, 1), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(-kInfinity, 1, 1), (Bytes{99, 99, 99}));
    EXPECT_EQ(ToRgb(2.576980378e11f, 1, 1), (Bytes{99, 99, 99}));  // 2^32 sectors
    EXPECT_EQ(ToRgb(0, kNan, 1), (Bytes{255, 0, 0}));
    EXPECT_EQ(ToRgb(0, 0.5f, kNan), (Bytes{0, 0, 0}));
    EXPECT_EQ(ToRgb(0, 0, kNan), (Bytes{0, 0, 0}));
    EXPECT_EQ(ToRgb(0, 0.5f, kInfinity), (Bytes{0, 255, 255}));
    EXPECT_EQ(ToRgb(0, 0.5f, -kInfinity), (Bytes{0, 0, 0}));
    EXPECT_EQ(ToRgb(0, 0, 1e10f), (Bytes{0, 0, 0}));
}

TEST(HsvFloat, AlphaIsRoundedAndLimited) {
    const auto byteOf = [](float alpha) {
        float h = 0, s = 0, v = 0;
        uint8_t bgra[4] = {9, 9, 9, 9};
        IPL_HSV2BGRA(1, 1, 1, &h, 1, &s, 1, &v, 1, &alpha, 4, bgra);
        return int{bgra[3]};
    };
    EXPECT_EQ(byteOf(0), 0);
    EXPECT_EQ(byteOf(1), 255);
    EXPECT_EQ(byteOf(0.5f), 128);  // 127.5 and a half
    EXPECT_EQ(byteOf(0.4f), 102);
    EXPECT_EQ(byteOf(0.49f), 125);  // 124.95 and a half
    EXPECT_EQ(byteOf(0.1f), 26);    // 25.5 and a half
    EXPECT_EQ(byteOf(1.004f), 255);
    EXPECT_EQ(byteOf(2), 255);
    EXPECT_EQ(byteOf(-0.001f), 0);
    EXPECT_EQ(byteOf(-0.004f), 0);
    EXPECT_EQ(byteOf(-1), 0);
    EXPECT_EQ(byteOf(8e6f), 255);
    EXPECT_EQ(byteOf(-8e6f), 0);
    // Truncation comes first: what an int cannot hold is its most negative value.
    EXPECT_EQ(byteOf(1e10f), 0);
    EXPECT_EQ(byteOf(kInfinity), 0);
    EXPECT_EQ(byteOf(-kInfinity), 0);
    EXPECT_EQ(byteOf(kNan), 0);
}

TEST(HsvFloat, AlphaIsWrittenWhereNoColourIs) {
    Floats h = {360, 0, -60, 720}, s(4, 1), v(4, 1), alpha = {1, 0.5f, 0, 0.2f};
    const Bytes expected = {9, 9, 9, 255, 0, 0, 255, 128, 9, 9, 9, 0, 9, 9, 9, 51};
    for (unsigned processors : {1u, 2u}) {
        Settings settings;
        settings.UseProcessors(processors);
        Bytes plain(16, 9), multiThread(16, 9);
        IPL_HSV2BGRA(4, 1, 4, h.data(), 4, s.data(), 4, v.data(), 4, alpha.data(), 16,
                     plain.data());
        IPL_HSV2BGRA_MultiThread(4, 1, 4, h.data(), 4, s.data(), 4, v.data(), 4, alpha.data(), 16,
                                 multiThread.data());
        EXPECT_EQ(plain, expected);
        EXPECT_EQ(multiThread, expected);
    }
}

TEST(HsvFloat, WithoutAnAlphaPlaneByte3IsNotWritten) {
    for (uint8_t held : {0, 1, 99, 255})
        for (int width : {1, 3, 8, 17, 40}) {
            Floats h(width, 30), s(width, 1), v(width, 1);
            for (int x = 0; x < width; x += 3) s[x] = 0;
            for (auto* form : {kPlain, kMultiThread, &IPL_HSV_To_BGRA}) {
                Bytes dst(4 * width, held);
                form(width, 1, width, h.data(), width, s.data(), width, v.data(), 4 * width,
                     dst.data());
                for (int x = 0; x < width; ++x) {
                    ASSERT_EQ(dst[4 * x + 3], held);
                    ASSERT_EQ(dst[4 * x + 2], 255);
                }
            }
        }
}

TEST(HsvFloat, SectorsOfTheInverseByFloor) {
    // A quarter into each: L = 100, V - e = 175, e + L = 125.
    const float v = 200.4f / 255;
    EXPECT_EQ(ToRgbByFloor(15, 0.5f, v), (Bytes{200, 125, 100}));
    EXPECT_EQ(ToRgbByFloor(75, 0.5f, v), (Bytes{175, 200, 100}));
    EXPECT_EQ(ToRgbByFloor(135, 0.5f, v), (Bytes{100, 200, 125}));
    EXPECT_EQ(ToRgbByFloor(195, 0.5f, v), (Bytes{100, 175, 200}));
    EXPECT_EQ(ToRgbByFloor(255, 0.5f, v), (Bytes{125, 100, 200}));
    EXPECT_EQ(ToRgbByFloor(315, 0.5f, v), (Bytes{200, 100, 175}));
}

TEST(HsvFloat, EverySectorByFloorOutside0To4IsTheLast) {
    EXPECT_EQ(ToRgbByFloor(360, 1, 1), (Bytes{255, 0, 255}));
    EXPECT_EQ(ToRgbByFloor(-30, 1, 1), (Bytes{255, 0, 127}));  // floor is -1, so e is a half
    EXPECT_EQ(ToRgbByFloor(-60, 1, 1), (Bytes{255, 0, 255}));
    EXPECT_EQ(ToRgbByFloor(-90, 1, 1), (Bytes{255, 0, 127}));
    EXPECT_EQ(ToRgbByFloor(750, 1, 1), (Bytes{255, 0, 127}));
    EXPECT_EQ(ToRgbByFloor(-0.0f, 1, 1), (Bytes{255, 0, 0}));
    EXPECT_EQ(ToRgbByFloor(kNan, 1, 1), (Bytes{255, 0, 0}));
    EXPECT_EQ(ToRgbByFloor(-kInfinity, 1, 1), (Bytes{255, 0, 255}));
    EXPECT_EQ(ToRgbByFloor(kInfinity, 1, 1), (Bytes{255, 0, 0}));
}

TEST(HsvFloat, TheInverseByFloorIsTruncatedAndLimitedOnBothSides) {
    EXPECT_EQ(ToRgbByFloor(0, 0, 0.5f), (Bytes{127, 127, 127}));
    EXPECT_EQ(ToRgbByFloor(0, 0, 0.2f), (Bytes{51, 51, 51}));
    EXPECT_EQ(ToRgbByFloor(0, 0, 99.995f / 255), (Bytes{99, 99, 99}));  // no hundredth
    EXPECT_EQ(ToRgbByFloor(0, 0, 2), (Bytes{255, 255, 255}));
    EXPECT_EQ(ToRgbByFloor(0, 0, -2), (Bytes{0, 0, 0}));
    EXPECT_EQ(ToRgbByFloor(0, 0, kInfinity), (Bytes{255, 255, 255}));
    EXPECT_EQ(ToRgbByFloor(0, 0, -kInfinity), (Bytes{0, 0, 0}));
    EXPECT_EQ(ToRgbByFloor(0, 0, kNan), (Bytes{0, 0, 0}));
    EXPECT_EQ(ToRgbByFloor(kNan, -0.0f, 0.2f), (Bytes{51, 51, 51}));
    EXPECT_EQ(ToRgbByFloor(0, 2, 1), (Bytes{255, 0, 0}));       // L = -1
    EXPECT_EQ(ToRgbByFloor(0, -1, 1), (Bytes{255, 255, 255}));  // L = 2
    EXPECT_EQ(ToRgbByFloor(0, kNan, 1), (Bytes{255, 0, 0}));
}

TEST(HsvFloat, OnlyASaturationOfExactlyZeroIsGreyByFloor) {
    // S * V is infinity and L is no number; grey would be white.
    EXPECT_EQ(ToRgbByFloor(90, std::numeric_limits<float>::denorm_min(), kInfinity),
              (Bytes{0, 255, 0}));
    EXPECT_EQ(ToRgbByFloor(90, 0, kInfinity), (Bytes{255, 255, 255}));
}

TEST(HsvFloat, StudioGreysHaveNoHueAndNoSaturation) {
    for (auto [form, scale] :
         {std::pair<YuyvToHsv*, float>{IPL_YUYV2HSV_601, 1.164383f}, {IPL_YUYV2HSV_709, 1.1644f}})
        for (int y = 0; y < 256; ++y) {
            const float luma = static_cast<float>(y - 16) * scale;
            EXPECT_EQ(OfYuv(form, y, 128, 128), (Hsv{0, 0, luma})) << y;
        }
    EXPECT_LT(OfYuv(IPL_YUYV2HSV_601, 0, 128, 128).v, -18.6f);
    EXPECT_GT(OfYuv(IPL_YUYV2HSV_601, 255, 128, 128).v, 278.0f);
}

TEST(HsvFloat, YuyvToHsvByHand) {
    // Y 116, U 128 - 20, V 128 + 30: luma 116.4383, blue 116.4383 - 40.34464 = 76.09366,
    // green 116.4383 - (24.38904 - 7.83524) = 99.8845, red 116.4383 + 47.88081 = 164.31911.
    const Hsv hsv = OfYuv(IPL_YUYV2HSV_601, 116, 108, 158);
    EXPECT_NEAR(hsv.h, (99.8845 - 76.09366) * 60 / (164.31911 - 76.09366), 1e-3);
    EXPECT_NEAR(hsv.s, 1 - 76.09366 / 164.31911, 1e-5);
    EXPECT_NEAR(hsv.v, 164.31911, 1e-4);
    // In 709: luma 116.44, blue 74.188, green 116.44 - (15.975 - 4.258) = 104.723, red 170.23.
    const Hsv other = OfYuv(IPL_YUYV2HSV_709, 116, 108, 158);
    EXPECT_NEAR(other.h, (104.723 - 74.188) * 60 / (170.23 - 74.188), 1e-3);
    EXPECT_NEAR(other.s, 1 - 74.188 / 170.23, 1e-5);
    EXPECT_NEAR(other.v, 170.23, 1e-4);
    // U 128 + 20, V 128 + 30: blue 156.78294, green 84.2142, red 164.31911; below red from 360.
    EXPECT_NEAR(OfYuv(IPL_YUYV2HSV_601, 116, 148, 158).h,
                360 + (84.2142 - 156.78294) * 60 / (164.31911 - 84.2142), 1e-3);
    // U and V 128 - 30: blue 55.92134, green 152.5802, red 68.55749.
    EXPECT_NEAR(OfYuv(IPL_YUYV2HSV_601, 116, 98, 98).h,
                120 + (55.92134 - 68.55749) * 60 / (152.5802 - 55.92134), 1e-3);
    // U 128 + 40, V 128 - 10: blue 197.12758, green 108.8975, red 100.47803.
    EXPECT_NEAR(OfYuv(IPL_YUYV2HSV_601, 116, 168, 118).h,
                240 + (100.47803 - 108.8975) * 60 / (197.12758 - 100.47803), 1e-3);
}

TEST(HsvFloat, YuyvToHsvLimitsNothing) {
    // Y 0, U 128, V 255: luma -18.63, red 184.07, green -121.9: saturation above 1.
    EXPECT_GT(OfYuv(IPL_YUYV2HSV_601, 0, 128, 255).s, 1.5f);
    // Y 255: red 481, no limit at 255.
    EXPECT_NEAR(OfYuv(IPL_YUYV2HSV_601, 255, 128, 255).v, 239 * 1.164383 + 127 * 1.596027, 1e-3);
    // Y 0, U 127, V 128: all channels below 0, and so is the value.
    const Hsv dark = OfYuv(IPL_YUYV2HSV_601, 0, 127, 128);
    EXPECT_LT(dark.v, 0.0f);
    EXPECT_LT(dark.s, 0.0f);
}

TEST(HsvFloat, BothPixelsOfAPairShareItsChroma) {
    Bytes yuyv = {116, 108, 50, 158};
    for (YuyvToHsv* form : {IPL_YUYV2HSV_601, IPL_YUYV2HSV_709}) {
        Floats hsv(6);
        form(2, 1, 4, yuyv.data(), 6, hsv.data());
        EXPECT_EQ((Hsv{hsv[0], hsv[1], hsv[2]}), OfYuv(form, 116, 108, 158));
        EXPECT_EQ((Hsv{hsv[3], hsv[4], hsv[5]}), OfYuv(form, 50, 108, 158));
    }
}

TEST(HsvFloat, HsvToYuyvByHand) {
    // Red 255: Y 65.48 + 16.5, U 128.5 - 37.8, V 112.0 + 128.5, which is above 240.
    EXPECT_EQ(ToYuyv601({0, 1, 255}, {0, 1, 255}), (Bytes{81, 90, 81, 240}));
    EXPECT_EQ(ToYuyv709({0, 1, 255}, {0, 1, 255}), (Bytes{63, 102, 63, 240}));
    // 200, a quarter into a sector, half saturated: 200, 125, 100 in some order.
    EXPECT_EQ(ToYuyv601({15, 0.5f, 200}, {15, 0.5f, 200}), (Bytes{140, 106, 140, 163}));
    // R 125, G 100, B 200: Y 32.10 + 50.41 + 19.58 + 16.5; U 87.84 - 47.63 + 128.5;
    // V 54.90 - 36.78 - 14.29 + 128.5.
    EXPECT_EQ(ToYuyv601({255, 0.5f, 200}, {255, 0.5f, 200}), (Bytes{118, 168, 118, 132}));
}

TEST(HsvFloat, HsvToYuyvLimitsLumaTo235AndChromaTo240) {
    for (auto* form : {ToYuyv601, ToYuyv709}) {
        EXPECT_EQ(form({0, 0, 255}, {0, 0, 255}), (Bytes{235, 128, 235, 128}));
        EXPECT_EQ(form({0, 0, 0}, {0, 0, 0}), (Bytes{16, 128, 16, 128}));
        EXPECT_EQ(form({0, 0, 1000}, {0, 0, 1000}), (Bytes{235, 128, 235, 128}));
        EXPECT_EQ(form({0, 0, -100}, {0, 0, -100}), (Bytes{16, 128, 16, 128}));
        // Blue, yellow and red.
        EXPECT_EQ(form({240, 1, 5000}, {240, 1, 5000}), (Bytes{235, 240, 235, 16}));
        EXPECT_EQ(form({60, 1, 3000}, {60, 1, 3000})[1], 16);
        EXPECT_EQ(form({0, 1, 3000}, {0, 1, 3000})[3], 240);
    }
}

TEST(HsvFloat, AHueOf360IsBlackInYuyv) {
    for (auto* form : {ToYuyv601, ToYuyv709})
        for (float h :
             {360.0f, 400.0f, -60.0f, -100.0f, kNan, kInfinity, -kInfinity, 2.576980378e11f}) {
            const Hsv none = {h, 1, 255};
            EXPECT_EQ(form(none, none), (Bytes{16, 128, 16, 128})) << h;
            // There is no grey test: a saturation of 0 does not help.
            EXPECT_EQ(form({h, 0, 255}, {h, 0, 255}), (Bytes{16, 128, 16, 128})) << h;
        }
    // The last float before it is red.
    EXPECT_EQ(ToYuyv601({359.99997f, 1, 255}, {359.99997f, 1, 255}), (Bytes{81, 90, 81, 240}));
}

TEST(HsvFloat, ANegativeHueAboveMinus60IsInTheFirstSectorInYuyv) {
    // e = -127.5 is green: Y 65.48 - 64.28 + 16.5; U 128.5 + 37.10 - 37.80; V 112.0 + 46.89 +
    // 128.5, which is above 240.
    EXPECT_EQ(ToYuyv601({-30, 1, 255}, {-30, 1, 255}), (Bytes{17, 127, 17, 240}));
}

TEST(HsvFloat, ChromaOfAPairIsTheMeanOfTheLimitedBytes) {
    const Hsv red = {0, 1, 255}, black = {360, 1, 255}, dark = {-30, 1, 255};
    // U 90 and 128; V 240 and 128.
    EXPECT_EQ(ToYuyv601(red, black), (Bytes{81, 109, 16, 184}));
    EXPECT_EQ(ToYuyv601(black, red), (Bytes{16, 109, 81, 184}));
    // U 127 and 128: a tie goes up. V 287 counts as 240.
    EXPECT_EQ(ToYuyv601(dark, black), (Bytes{17, 128, 16, 184}));
}

TEST(HsvFloat, WhatIsNoNumberIsZeroInYuyv) {
    for (auto* form : {ToYuyv601, ToYuyv709}) {
        EXPECT_EQ(form({0, 0.5f, kNan}, {0, 0.5f, kNan}), (Bytes{0, 0, 0, 0}));
        EXPECT_EQ(form({90, kNan, 100}, {90, kNan, 100}), (Bytes{0, 0, 0, 0}));
        // The other pixel's chroma halves: (0 + 128 + 1) / 2.
        EXPECT_EQ(form({0, 0.5f, kNan}, {360, 1, 1}), (Bytes{0, 64, 16, 64}));
    }
}

TEST(HsvFloat, StridesOfFloatsCountFloatsAndOfBytesBytes) {
    for (unsigned processors : {1u, 2u, 3u}) {
        Settings settings;
        settings.UseProcessors(processors);
        // Three rows of one pixel, red, green, blue, 9 bytes apart; planes 2, 3 and 4 floats apart.
        Bytes bgra(2 * 9 + 4, 0);
        bgra[2] = bgra[9 + 1] = bgra[18] = 255;
        Floats h(6, -7), s(9, -7), v(12, -7);
        IPL_BGRA2HSV_MultiThread(1, 3, 9, bgra.data(), 2, h.data(), 3, s.data(), 4, v.data());
        EXPECT_EQ(h, (Floats{0, -7, 120, -7, 240, -7}));
        EXPECT_EQ(s, (Floats{1, -7, -7, 1, -7, -7, 1, -7, -7}));
        EXPECT_EQ(v, (Floats{1, -7, -7, -7, 1, -7, -7, -7, 1, -7, -7, -7}));
        Floats alpha = {1, -7, -7, -7, -7, 0.2f, -7, -7, -7, -7, 0};
        Bytes back(3 * 6, 9);
        IPL_HSV2BGRA_MultiThread(1, 3, 2, h.data(), 3, s.data(), 4, v.data(), 5, alpha.data(), 6,
                                 back.data());
        EXPECT_EQ(back, (Bytes{0, 0, 255, 255, 9, 9, 0, 255, 0, 51, 9, 9, 255, 0, 0, 0, 9, 9}));

        // Two rows of a grey pair, 6 bytes and 8 floats apart.
        Bytes yuyv = {16, 128, 16, 128, 9, 9, 116, 128, 116, 128};
        Floats hsv(16, -7);
        IPL_YUYV2HSV_709_MultiThread(2, 2, 6, yuyv.data(), 8, hsv.data());
        const float grey = 100 * 1.1644f;
        EXPECT_EQ(hsv, (Floats{0, 0, 0, 0, 0, 0, -7, -7, 0, 0, grey, 0, 0, grey, -7, -7}));
        Bytes again(10, 9);
        IPL_HSV2YUYV_709_MultiThread(2, 2, 8, hsv.data(), 6, again.data());
        // 116.44 * 0.8588 + 16.5 = 116.4987
        EXPECT_EQ(again, (Bytes{16, 128, 16, 128, 9, 9, 116, 128, 116, 128}));
    }
}

TEST(HsvFloat, APlaneSetIsThreeDensePlanesBehindOnePointer) {
    for (unsigned processors : {1u, 2u, 5u}) {
        Settings settings;
        settings.UseProcessors(processors);
        // Two rows of three pixels: the third of a row is left alone in every plane.
        Bytes yuyv = {116, 128, 66, 128, 9, 9, 17, 128, 116, 128};
        Floats plain(19, -7), multiThread(19, -7);
        IPL_YUYV2HSVP_709(3, 2, 6, yuyv.data(), plain.data());
        IPL_YUYV2HSVP_709_MultiThread(3, 2, 6, yuyv.data(), multiThread.data());
        const float a = 100 * 1.1644f, b = 50 * 1.1644f, c = 1.1644f;
        const Floats expected = {0, 0, -7, 0, 0, -7, 0, 0, -7, 0, 0, -7, a, b, -7, c, a, -7, -7};
        EXPECT_EQ(plain, expected);
        EXPECT_EQ(multiThread, expected);
        Bytes back(12, 9);
        IPL_HSVP2YUYV_709_MultiThread(3, 2, multiThread.data(), 6, back.data());
        EXPECT_EQ(back, (Bytes{116, 128, 66, 128, 9, 9, 17, 128, 116, 128, 9, 9}));
    }
}

TEST(HsvFloat, AnOddLastPixelIsLeftAlone) {
    for (int width = 1; width <= 35; width += 2) {
        Bytes yuyv(4 * width, 60);
        for (YuyvToHsv* form : {IPL_YUYV2HSV_601, IPL_YUYV2HSV_709, IPL_YUYV2HSV_601_MultiThread,
                                IPL_YUYV2HSV_709_MultiThread}) {
            Floats hsv(2 * 3 * width, -7);
            form(width, 2, 2 * width, yuyv.data(), 3 * width, hsv.data());
            for (int x = 0; x < 2 * width; ++x)
                for (int c = 0; c < 3; ++c)
                    ASSERT_EQ(hsv[3 * x + c] == -7, x % width == width - 1) << width;
        }
        Floats hsv(2 * 3 * width, 0.75f);
        for (HsvToYuyv* form : {IPL_HSV2YUYV_601, IPL_HSV2YUYV_709, IPL_HSV2YUYV_601_MultiThread,
                                IPL_HSV2YUYV_709_MultiThread}) {
            Bytes dst(2 * 2 * width, 99);
            form(width, 2, 3 * width, hsv.data(), 2 * width, dst.data());
            for (int i = 0; i < 4 * width; ++i)
                ASSERT_EQ(dst[i] == 99, i % (2 * width) >= 2 * (width - 1)) << width;
        }
    }
}

TEST(HsvFloat, SizesWithoutAPixelWriteNothing) {
    for (const HsvForm* form : kPixelForms) tqtest::ExpectEmptySizesWriteNothing(*form);
    for (const HsvForm* form : kPairForms) tqtest::ExpectEmptySizesWriteNothing(*form);
    for (const HsvForm* form : kTasksOfPlanes) tqtest::ExpectEmptySizesWriteNothing(*form);
}

TEST(HsvFloat, NoPointerIsUsedWhereThereIsNoPixel) {
    for (unsigned processors : {1u, 2u, 8u}) {
        Settings settings;
        settings.UseProcessors(processors);
        const HsvImage nothing[5] = {};
        for (auto [width, height] :
             {std::pair{5, 0}, {5, -1}, {0, 1}, {-1, 1}, {0, 9}, {-7, 9}, {-7, -9}}) {
            for (const HsvForm* form : kPixelForms) form->plain(width, height, nothing);
            for (const HsvForm* form : kPairForms) {
                form->plain(width, height, nothing);
                form->multiThread(width, height, nothing);
            }
        }
        // Half a pair is no pair.
        for (const HsvForm* form : kPairForms) {
            form->plain(1, 3, nothing);
            form->multiThread(1, 3, nothing);
        }
    }
}

// Each of the images in turn, and all, with a null pointer: nothing is written, no task is made.
void ExpectNullsDoNothing(const HsvForm& form, HsvForm::Function function) {
    for (int height : {1, 9, 24}) {
        const size_t count = form.images.size();
        std::vector<std::vector<uint32_t>> memory(count, std::vector<uint32_t>(4 * height));
        for (auto& words : memory)
            for (uint32_t& word : words) word = std::bit_cast<uint32_t>(0.25f);
        const auto before = memory;
        for (size_t null = 0; null <= count; ++null) {
            std::vector<HsvImage> images(count);
            for (size_t i = 0; i < count; ++i) {
                const bool isNull = null == count || i == null;
                images[i] = {form.images[i].ElementSize() == 1 ? 16 : 4,
                             isNull ? nullptr : reinterpret_cast<uint8_t*>(memory[i].data())};
            }
            EXPECT_EQ(tqtest::AllocationsOf([&] { function(4, height, images.data()); }), 0)
                << form.name << ", null " << null;
            EXPECT_EQ(memory, before) << form.name << ", null " << null;
        }
    }
}

TEST(HsvFloat, Bgra2HsvAndTheBgraMultiThreadFormsDoNothingWithANullPointer) {
    for (unsigned processors : {1u, 3u, 8u}) {
        Settings settings;
        settings.UseProcessors(processors);
        ExpectNullsDoNothing(kBgra2Hsv, kBgra2Hsv.plain);
        ExpectNullsDoNothing(kBgra2Hsv, kBgra2Hsv.multiThread);
        ExpectNullsDoNothing(kHsv2Bgra, kHsv2Bgra.multiThread);
        ExpectNullsDoNothing(kHsv2BgraWithAlpha, kHsv2BgraWithAlpha.multiThread);
    }
}

TEST(HsvFloat, ATaskWithoutAlphaLeavesByte3Alone) {
    float h = 0, s = 1, v = 1, alpha = 0.2f;
    uint8_t with[4] = {9, 9, 9, 9}, without[4] = {9, 9, 9, 9};
    const HsvImage images[] = {{1, reinterpret_cast<uint8_t*>(&h)},
                               {1, reinterpret_cast<uint8_t*>(&s)},
                               {1, reinterpret_cast<uint8_t*>(&v)},
                               {1, reinterpret_cast<uint8_t*>(&alpha)},
                               {4, with}};
    const HsvImage noAlpha[] = {images[0], images[1], images[2], {4, without}};
    EXPECT_EQ(RunHsvToBgra<true>(1, 1, images), 1);
    EXPECT_EQ(RunHsvToBgra<false>(1, 1, noAlpha), 1);
    EXPECT_EQ(Bytes(with, with + 4), (Bytes{0, 0, 255, 51}));
    EXPECT_EQ(Bytes(without, without + 4), (Bytes{0, 0, 255, 9}));
}

// Memory for one small call of a form.
struct SmallCall {
    std::vector<std::vector<float>> memory;
    std::vector<HsvImage> images;
    explicit SmallCall(const HsvForm& form) : memory(form.images.size(), Floats(256, 0.25f)) {
        for (size_t i = 0; i < memory.size(); ++i)
            images.push_back({form.images[i].ElementSize() == 1 ? 32 : 8,
                              reinterpret_cast<uint8_t*>(memory[i].data())});
    }
};

TEST(HsvFloat, WithOneProcessorOnlyThePairFormsMakeATask) {
    Settings settings;
    for (const HsvForm* form : kMultiThreadPixelForms) {
        SmallCall call(*form);
        const auto run = [&] { form->multiThread(2, 4, call.images.data()); };
        settings.UseProcessors(2);
        EXPECT_GT(tqtest::AllocationsOf(run), 0) << form->name;
        settings.UseProcessors(1);
        EXPECT_EQ(tqtest::AllocationsOf(run), 0) << form->name;
    }
    for (const HsvForm* form : kPairForms) {
        SmallCall call(*form);
        settings.UseProcessors(1);
        EXPECT_GT(tqtest::AllocationsOf([&] { form->multiThread(2, 4, call.images.data()); }), 0)
            << form->name;
    }
}

TEST(HsvFloat, RowsGoFromTheFirstToTheLast) {
    // All rows fall on the same destination: the last one stays.
    Bytes bgra = {0, 0, 255, 0, 0, 255, 0, 0};
    Hsv hsv;
    IPL_BGRA2HSV(1, 2, 4, bgra.data(), 0, &hsv.h, 0, &hsv.s, 0, &hsv.v);
    EXPECT_EQ(hsv, (Hsv{120, 1, 1}));
    Floats h = {0, 120}, one = {1, 1};
    Bytes dst(4, 9);
    IPL_HSV2BGRA(1, 2, 1, h.data(), 1, one.data(), 1, one.data(), 0, dst.data());
    EXPECT_EQ(dst, (Bytes{0, 255, 0, 9}));
}

TEST(HsvFloat, PixelFormsEqualTheReference) {
    for (const HsvForm* form : kPixelForms) tqtest::ExpectEqualsReference(*form);
}

TEST(HsvFloat, PairFormsEqualTheReference) {
    for (const HsvForm* form : kPairForms) tqtest::ExpectEqualsReference(*form);
}

TEST(HsvFloat, TasksWithThreePlanesEqualTheReference) {
    for (const HsvForm* form : kTasksOfPlanes) tqtest::ExpectEqualsReference(*form);
}

TEST(HsvFloat, MultiThreadEqualsPlainAtEveryProcessorCount) {
    for (const HsvForm* form : kMultiThreadPixelForms) tqtest::ExpectMultiThreadEqualsPlain(*form);
    for (const HsvForm* form : kPairForms) tqtest::ExpectMultiThreadEqualsPlain(*form);
}

TEST(HsvFloat, TasksDoThePlainFormsWork) {
    for (const HsvForm* form : kMultiThreadPixelForms) tqtest::ExpectTaskEqualsReference(*form);
    for (const HsvForm* form : kPairForms)
        if (form->runTask != nullptr) tqtest::ExpectTaskEqualsReference(*form);
    for (const HsvForm* form : kTasksOfPlanes) tqtest::ExpectTaskEqualsReference(*form);
}

// Equal bit by bit.
testing::AssertionResult Same(const Floats& actual, const Floats& expected) {
    if (std::memcmp(actual.data(), expected.data(), expected.size() * sizeof(float)) == 0)
        return testing::AssertionSuccess();
    size_t i = 0;
    while (std::bit_cast<uint32_t>(actual[i]) == std::bit_cast<uint32_t>(expected[i])) ++i;
    return testing::AssertionFailure()
           << "float " << i << " is " << std::hexfloat << actual[i] << ", not " << expected[i];
}

constexpr int kLongRow = 1 << 16;

TEST(HsvFloat, EveryColourEqualsTheReference) {
    Settings settings;
    Bytes bgra(4 * kLongRow);
    Floats h(kLongRow), s(kLongRow), v(kLongRow), expectedH(h), expectedS(s), expectedV(v);
    for (int red = 0; red < 256; ++red) {
        for (int i = 0; i < kLongRow; ++i) {
            bgra[4 * i] = static_cast<uint8_t>(i);
            bgra[4 * i + 1] = static_cast<uint8_t>(i >> 8);
            bgra[4 * i + 2] = static_cast<uint8_t>(red);
            bgra[4 * i + 3] = static_cast<uint8_t>(i * 7 + red);
        }
        tqref::Bgra2Hsv(kLongRow, 1, 0, bgra.data(), 0, expectedH.data(), 0, expectedS.data(), 0,
                        expectedV.data());
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
            settings.Use(level);
            h.assign(kLongRow, -7);
            s.assign(kLongRow, -7);
            v.assign(kLongRow, -7);
            IPL_BGRA2HSV(kLongRow, 1, 0, bgra.data(), 0, h.data(), 0, s.data(), 0, v.data());
            ASSERT_TRUE(Same(h, expectedH)) << "hue, red " << red;
            ASSERT_TRUE(Same(s, expectedS)) << "saturation, red " << red;
            ASSERT_TRUE(Same(v, expectedV)) << "value, red " << red;
        }
        for (int i = 0; i < kLongRow; ++i) {
            const uint8_t* in = bgra.data() + 4 * i;
            const Hsv expected = {expectedH[i], expectedS[i], expectedV[i]};
            Hsv hsv;
            IPL_RGB2HSV_8u_32f(in[2], in[1], in[0], hsv.h, hsv.s, hsv.v);
            ASSERT_EQ(hsv, expected) << red << " " << i;
            ASSERT_EQ(OfFloats(in[2], in[1], in[0]), expected) << red << " " << i;
        }
    }
}

// Same bits, or both no number: of that the bits are not fixed.
bool SameNumber(float a, float b) {
    return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b) ||
           (std::isnan(a) && std::isnan(b));
}

TEST(HsvFloat, FloatColoursEqualTheReference) {
    uint32_t state = 1;
    const auto next = [&state] { return state = state * 1664525u + 1013904223u, state >> 8; };
    const auto channel = [&]() -> float {
        const float unit = static_cast<float>(next()) / 16777216.0f;
        switch (next() % 8) {
            case 0:
                return static_cast<float>(next() % 256);
            case 1:
                return static_cast<float>(next() % 3) * 100;
            case 2:
                return unit * 600 - 200;
            case 3:
                return unit * 4e-6f;
            case 4:
                return Neighbour(200, static_cast<int>(next() % 9) - 4);
            case 5: {
                const float any = std::bit_cast<float>(next() << 16 ^ next());
                return std::isnan(any) ? unit : any;
            }
            default:
                return unit * 255;
        }
    };
    for (int i = 0; i < 4000000; ++i) {
        // + 0 makes of -0 the other zero: which of two zeros is the larger is not fixed.
        const float r = channel() + 0.0f, g = channel() + 0.0f, b = channel() + 0.0f;
        const tqref::HsvPixel expected = tqref::RgbToHsv(r, g, b);
        const Hsv hsv = OfFloats(r, g, b);
        ASSERT_TRUE(SameNumber(hsv.h, expected.h) && SameNumber(hsv.s, expected.s) &&
                    SameNumber(hsv.v, expected.v))
            << std::hexfloat << r << " " << g << " " << b << ": " << testing::PrintToString(hsv);
    }
}

// All triples of Y, U, V: V is the row, Y0 and U the place in it; Y1 goes through all values in
// another order.
void FillEveryTriple(int v, int pairs, uint8_t* yuyv) {
    for (int i = 0; i < pairs; ++i, yuyv += 4) {
        yuyv[0] = static_cast<uint8_t>(i);
        yuyv[1] = static_cast<uint8_t>(i >> 8);
        yuyv[2] = static_cast<uint8_t>(i * 167 + 91);
        yuyv[3] = static_cast<uint8_t>(v);
    }
}

void ExpectEveryTriple(const tqref::HsvYuvSet& set, YuyvToHsv* interleaved, YuyvToPlanes* planes) {
    Settings settings;
    constexpr int kWidth = 2 * kLongRow;
    Bytes yuyv(2 * kWidth);
    Floats expected(3 * kWidth), expectedPlanes(3 * kWidth), hsv(3 * kWidth);
    for (int v = 0; v < 256; ++v) {
        FillEveryTriple(v, kLongRow, yuyv.data());
        tqref::Yuyv2Hsv(set, kWidth, 1, 0, yuyv.data(), 0, expected.data());
        for (int x = 0; x < kWidth; ++x)
            for (int c = 0; c < 3; ++c) expectedPlanes[c * kWidth + x] = expected[3 * x + c];
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
            settings.Use(level);
            hsv.assign(3 * kWidth, -7);
            interleaved(kWidth, 1, 0, yuyv.data(), 0, hsv.data());
            ASSERT_TRUE(Same(hsv, expected)) << "V " << v << ", level " << tq::IsaLevelName(level);
            hsv.assign(3 * kWidth, -7);
            planes(kWidth, 1, 0, yuyv.data(), hsv.data());
            ASSERT_TRUE(Same(hsv, expectedPlanes))
                << "planes, V " << v << ", level " << tq::IsaLevelName(level);
        }
    }
}

TEST(HsvFloat, EveryTripleOf601EqualsTheReference) {
    ExpectEveryTriple(tqref::kHsv601, IPL_YUYV2HSV_601, IPL_YUYV2HSVP_601);
}

TEST(HsvFloat, EveryTripleOf709EqualsTheReference) {
    ExpectEveryTriple(tqref::kHsv709, IPL_YUYV2HSV_709, IPL_YUYV2HSVP_709);
}

// Hues, saturations and values of many pixels, for the inverses.
struct Points {
    Floats h, s, v;
    void Add(float hue, float saturation, float value) {
        h.push_back(hue);
        s.push_back(saturation);
        v.push_back(value);
    }
    int Count() const { return static_cast<int>(h.size()); }
    void Clear() {
        h.clear();
        s.clear();
        v.clear();
    }
};

testing::AssertionResult SamePixels(const char* form, tq::IsaLevel level, const Points& points,
                                    const Bytes& actual, const Bytes& expected, int pixelBytes) {
    if (actual == expected) return testing::AssertionSuccess();
    size_t i = 0;
    while (actual[i] == expected[i]) ++i;
    const size_t at = i / pixelBytes;
    return testing::AssertionFailure()
           << form << " at level " << tq::IsaLevelName(level) << ": byte " << i % pixelBytes
           << " of point " << at << " of " << points.Count() << " is " << int{actual[i]} << ", not "
           << int{expected[i]} << std::hexfloat << ": H " << points.h[at] << ", S " << points.s[at]
           << ", V " << points.v[at];
}

// The inverses to BGRA and the pixel routine.
void ExpectBgraOf(Points& points) {
    Settings settings;
    const int count = points.Count();
    float *h = points.h.data(), *s = points.s.data(), *v = points.v.data();
    Bytes expected(4 * count, 99), expectedByFloor(4 * count, 99), dst;
    tqref::Hsv2Bgra(count, 1, 0, h, 0, s, 0, v, 0, nullptr, 0, expected.data());
    tqref::HsvToBgraByFloor(count, 1, 0, h, 0, s, 0, v, 0, expectedByFloor.data());
    Bytes expectedWithAlpha = expected;
    for (int i = 0; i < count; ++i) expectedWithAlpha[4 * i + 3] = tqref::AlphaByte(s[i]);
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        dst.assign(4 * count, 99);
        IPL_HSV2BGRA(count, 1, 0, h, 0, s, 0, v, 0, dst.data());
        ASSERT_TRUE(SamePixels("IPL_HSV2BGRA", level, points, dst, expected, 4));
        dst.assign(4 * count, 99);
        IPL_HSV2BGRA(count, 1, 0, h, 0, s, 0, v, 0, s, 0, dst.data());
        ASSERT_TRUE(SamePixels("with alpha", level, points, dst, expectedWithAlpha, 4));
        dst.assign(4 * count, 99);
        IPL_HSV_To_BGRA(count, 1, 0, h, 0, s, 0, v, 0, dst.data());
        ASSERT_TRUE(SamePixels("IPL_HSV_To_BGRA", level, points, dst, expectedByFloor, 4));
    }
    dst.assign(4 * count, 99);
    for (int i = 0; i < count; ++i)
        IPL_HSV2RGB_32f_8u(h[i], s[i], v[i], dst[4 * i + 2], dst[4 * i + 1], dst[4 * i]);
    ASSERT_TRUE(SamePixels("IPL_HSV2RGB_32f_8u", tq::CurrentIsaLevel(), points, dst, expected, 4));
}

// The inverses to YUYV: each point twice, so that no average hides a chroma byte, and in the
// planes each next to its neighbour.
void ExpectYuyvOf(Points& points) {
    Settings settings;
    if (points.Count() % 2 == 1) points.Add(0, 0, 0);
    const int count = points.Count();
    Floats twice, planes = points.h;
    for (int i = 0; i < count; ++i)
        for (int side = 0; side < 2; ++side)
            twice.insert(twice.end(), {points.h[i], points.s[i], points.v[i]});
    planes.insert(planes.end(), points.s.begin(), points.s.end());
    planes.insert(planes.end(), points.v.begin(), points.v.end());
    struct Family {
        const tqref::HsvYuvSet& set;
        HsvToYuyv* fromHsv;
        PlanesToYuyv* fromPlanes;
    };
    for (const Family& family : {Family{tqref::kHsv601, IPL_HSV2YUYV_601, IPL_HSVP2YUYV_601},
                                 Family{tqref::kHsv709, IPL_HSV2YUYV_709, IPL_HSVP2YUYV_709}}) {
        Bytes expected(4 * count, 99), expectedOfPlanes(2 * count, 99), dst;
        tqref::Hsv2Yuyv(family.set, 2 * count, 1, 0, twice.data(), 0, expected.data());
        tqref::HsvP2Yuyv(family.set, count, 1, planes.data(), 0, expectedOfPlanes.data());
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
            settings.Use(level);
            dst.assign(4 * count, 99);
            family.fromHsv(2 * count, 1, 0, twice.data(), 0, dst.data());
            ASSERT_TRUE(SamePixels("interleaved", level, points, dst, expected, 4));
            dst.assign(2 * count, 99);
            family.fromPlanes(count, 1, planes.data(), 0, dst.data());
            ASSERT_TRUE(SamePixels("planes", level, points, dst, expectedOfPlanes, 2));
        }
    }
}

using Result = std::array<int, 9>;

// What the inverses to BGRA give, with whether the first stores.
Result BgraResult(float h, float s, float v) {
    tqref::RgbBytes rgb = {0, 0, 0};
    const bool stored = tqref::HsvToRgb(h, s, v, &rgb);
    const tqref::RgbBytes byFloor = tqref::HsvToRgbByFloor(h, s, v);
    return {stored, rgb.r, rgb.g, rgb.b, byFloor.r, byFloor.g, byFloor.b, 0, 0};
}

Result YuyvResult(float h, float s, float v) {
    const tqref::YuvBytes a = tqref::HsvToYuv(tqref::kHsv601, h, s, v);
    const tqref::YuvBytes b = tqref::HsvToYuv(tqref::kHsv709, h, s, v);
    return {a.y, a.u, a.v, b.y, b.u, b.v, 0, 0, 0};
}

// Between neighbours of `grid` at which some byte of result(x) differs, finds for each such byte
// two neighbouring floats at which it changes, and calls add(x) for these and three on either side.
template <class ResultOf, class Add>
void FindChanges(const Floats& grid, ResultOf result, Add add) {
    Result before = result(grid[0]);
    for (size_t i = 1; i < grid.size(); ++i) {
        const Result after = result(grid[i]);
        for (size_t byte = 0; byte < before.size(); ++byte) {
            if (before[byte] == after[byte]) continue;
            int64_t low = tqtest::FloatKey(grid[i - 1]), high = tqtest::FloatKey(grid[i]);
            while (high - low > 1) {
                const int64_t middle = low + (high - low) / 2;
                const bool same = result(tqtest::FloatOfKey(middle))[byte] == before[byte];
                (same ? low : high) = middle;
            }
            for (int64_t key = low - 3; key <= high + 3; ++key) add(tqtest::FloatOfKey(key));
        }
        before = after;
    }
}

Floats Grid(float first, float last, int steps) {
    Floats grid;
    for (int i = 0; i <= steps; ++i)
        grid.push_back(first + (last - first) * static_cast<float>(i) / static_cast<float>(steps));
    return grid;
}

// The changes along each of the three axes through a grid of the two others. The grids are
// uneven, so that products are not exact.
template <class ResultOf, class Expect>
void ExpectAtChanges(float valueScale, ResultOf result, Expect expect) {
    const Floats hues = Grid(-65.3f, 365.9f, 37), saturations = Grid(-0.13f, 1.17f, 14);
    const Floats values = Grid(-0.11f * valueScale, 1.21f * valueScale, 14);
    const Floats fineHues = Grid(-64, 364, 428);
    const Floats fineSaturations = Grid(-0.2f, 1.2f, 280);
    const Floats fineValues = Grid(-0.2f * valueScale, 1.2f * valueScale, 280);
    Points points;
    int64_t total = 0;
    const auto check = [&] {
        total += points.Count();
        ASSERT_NO_FATAL_FAILURE(expect(points));
        points.Clear();
    };
    for (float s : saturations) {
        for (float v : values)
            FindChanges(
                fineHues, [=](float h) { return result(h, s, v); },
                [&](float h) { points.Add(h, s, v); });
        ASSERT_NO_FATAL_FAILURE(check());
    }
    for (float h : hues) {
        for (float v : values)
            FindChanges(
                fineSaturations, [=](float s) { return result(h, s, v); },
                [&](float s) { points.Add(h, s, v); });
        for (float s : saturations)
            FindChanges(
                fineValues, [=](float v) { return result(h, s, v); },
                [&](float v) { points.Add(h, s, v); });
        ASSERT_NO_FATAL_FAILURE(check());
    }
    EXPECT_GT(total, 2000000);
}

TEST(HsvFloat, InversesToBgraEqualTheReferenceWhereAByteChanges) {
    ExpectAtChanges(1.0f, BgraResult, ExpectBgraOf);
}

TEST(HsvFloat, InversesToYuyvEqualTheReferenceWhereAByteChanges) {
    ExpectAtChanges(255.0f, YuyvResult, ExpectYuyvOf);
}

TEST(HsvFloat, InversesEqualTheReferenceOverADenseGrid) {
    Points ofOne, of255;
    for (int h = -130; h <= 730; ++h) {
        for (int s = 0; s <= 40; ++s)
            for (int v = 0; v <= 40; ++v) {
                const float hue = static_cast<float>(h) * 0.5f;
                const float ratio = static_cast<float>(s) / 40, value = static_cast<float>(v) / 40;
                ofOne.Add(hue, ratio, value);
                of255.Add(hue, ratio, value * 255);
            }
        if (h % 64 != 0 && h != 730) continue;
        ASSERT_NO_FATAL_FAILURE(ExpectBgraOf(ofOne));
        ASSERT_NO_FATAL_FAILURE(ExpectYuyvOf(of255));
        ofOne.Clear();
        of255.Clear();
    }
}

TEST(HsvFloat, InversesEqualTheReferenceForByteValues) {
    for (int h = 0; h <= 360; h += 3) {
        Points ofOne, of255;
        for (int s = 0; s < 256; s += 5)
            for (int v = 0; v < 256; ++v) {
                const float hue = static_cast<float>(h), ratio = static_cast<float>(s) / 255;
                const float value = static_cast<float>(v);
                ofOne.Add(hue, ratio, static_cast<float>(v / 255.0));
                of255.Add(hue, ratio, value);
            }
        ASSERT_NO_FATAL_FAILURE(ExpectBgraOf(ofOne));
        ASSERT_NO_FATAL_FAILURE(ExpectYuyvOf(of255));
    }
}

TEST(HsvFloat, InversesEqualTheReferenceForSpecialFloats) {
    const Floats specials = tqtest::SpecialFloats();
    for (float h : specials) {
        Points points;
        for (float s : specials)
            for (float v : specials) points.Add(h, s, v);
        ASSERT_NO_FATAL_FAILURE(ExpectBgraOf(points));
        ASSERT_NO_FATAL_FAILURE(ExpectYuyvOf(points));
    }
}

TEST(HsvFloat, AlphaEqualsTheReferenceWhereItsByteChanges) {
    Points points;
    const Floats grid = Grid(-0.5f, 1.5f, 2000);
    for (float start : tqtest::SpecialFloats()) points.Add(360, start, 1);
    FindChanges(
        grid, [](float alpha) { return Result{tqref::AlphaByte(alpha)}; },
        [&](float alpha) { points.Add(360, alpha, 1); });
    EXPECT_GT(points.Count(), 255 * 8);
    // The saturation serves as alpha.
    ExpectBgraOf(points);
}

}  // namespace
