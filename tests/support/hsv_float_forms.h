#pragma once

// What the tests of HSV in floats share: every form with its task and its reference, of BGRA and of
// 4:2:2, and the comparison of floats bit by bit.

#include <gtest/gtest.h>
#include <tqipl/hsv.h>
#include <tqipl/thread.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ios>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

#include "color/hsv_float_tasks.h"
#include "reference/hsv_float_reference.h"
#include "support/hsv_forms.h"

namespace tqtest {

inline constexpr HsvImageKind kBgraIn = {HsvContent::kBytes, 4, false};
inline constexpr HsvImageKind kBgraOut = {HsvContent::kBytes, 4, true};
inline constexpr HsvImageKind kYuyvIn = {HsvContent::kBytes, 4, false};
inline constexpr HsvImageKind kYuyvOut = {HsvContent::kBytes, 4, true};
inline constexpr HsvImageKind kHueIn = {HsvContent::kHue, 1, false};
inline constexpr HsvImageKind kSaturationIn = {HsvContent::kSaturation, 1, false};
inline constexpr HsvImageKind kValueIn = {HsvContent::kValue, 1, false};
inline constexpr HsvImageKind kAlphaIn = {HsvContent::kAlpha, 1, false};
inline constexpr HsvImageKind kPlaneOut = {HsvContent::kFloats, 1, true};

inline constexpr HsvImageKind kPlaneOfPairsOut = {HsvContent::kFloats, 2, true};
inline constexpr HsvImageKind kHueOfPairsIn = {HsvContent::kHue, 2, false};
inline constexpr HsvImageKind kRatioOfPairsIn = {HsvContent::kValue, 2, false};
inline constexpr HsvImageKind kHsvOfPairsIn = {HsvContent::kHsv255, 6, false};
inline constexpr HsvImageKind kHsvOfPairsOut = {HsvContent::kFloats, 6, true};
inline constexpr HsvImageKind kPlaneSetIn = {HsvContent::kPlaneSet255, 0, false};
inline constexpr HsvImageKind kPlaneSetOut = {HsvContent::kPlaneSet255, 0, true};

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

inline constexpr PlanesToBgra* kPlain = IPL_HSV2BGRA;
inline constexpr PlanesToBgra* kMultiThread = IPL_HSV2BGRA_MultiThread;
inline constexpr PlanesToBgraWithAlpha* kPlainWithAlpha = IPL_HSV2BGRA;
inline constexpr PlanesToBgraWithAlpha* kMultiThreadWithAlpha = IPL_HSV2BGRA_MultiThread;

inline const HsvForm kBgra2Hsv = {"IPL_BGRA2HSV",
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

inline const HsvForm kHsv2BgraWithAlpha = {
    "IPL_HSV2BGRA with alpha",
    1,
    {kHueIn, kSaturationIn, kValueIn, kAlphaIn, kBgraOut},
    CallPlanesToBgra<kPlainWithAlpha>,
    CallPlanesToBgra<kMultiThreadWithAlpha>,
    RunHsvToBgra<true>,
    [](int width, int height, const HsvImage* i) {
        tqref::Hsv2Bgra(width, height, i[0].stride, i[0].Floats(), i[1].stride, i[1].Floats(),
                        i[2].stride, i[2].Floats(), i[3].stride, i[3].Floats(), i[4].stride,
                        i[4].Bytes());
    }};

inline const HsvForm kHsv2Bgra = {
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

inline const HsvForm kHsvToBgraByFloor = {"IPL_HSV_To_BGRA",
                                          1,
                                          {kHueIn, kSaturationIn, kValueIn, kBgraOut},
                                          CallPlanesToBgra<IPL_HSV_To_BGRA>,
                                          nullptr,
                                          nullptr,
                                          [](int width, int height, const HsvImage* i) {
                                              tqref::HsvToBgraByFloor(
                                                  width, height, i[0].stride, i[0].Floats(),
                                                  i[1].stride, i[1].Floats(), i[2].stride,
                                                  i[2].Floats(), i[3].stride, i[3].Bytes());
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

inline const HsvForm kYuyv2Hsv601 =
    ToHsvForm<tqref::kHsv601, IPL_YUYV2HSV_601, IPL_YUYV2HSV_601_MultiThread, CZYUYV2HSVTask_601>(
        "IPL_YUYV2HSV_601");
inline const HsvForm kYuyv2Hsv709 =
    ToHsvForm<tqref::kHsv709, IPL_YUYV2HSV_709, IPL_YUYV2HSV_709_MultiThread, CZYUYV2HSVTask_709>(
        "IPL_YUYV2HSV_709");
inline const HsvForm kYuyv2HsvP601 =
    ToPlaneSetForm<tqref::kHsv601, IPL_YUYV2HSVP_601, IPL_YUYV2HSVP_601_MultiThread>(
        "IPL_YUYV2HSVP_601");
inline const HsvForm kYuyv2HsvP709 =
    ToPlaneSetForm<tqref::kHsv709, IPL_YUYV2HSVP_709, IPL_YUYV2HSVP_709_MultiThread>(
        "IPL_YUYV2HSVP_709");
inline const HsvForm kYuyv2HsvPTask601 =
    ToPlanesTaskForm<tqref::kHsv601, CZYUYV2HSVPTask_601>("CZYUYV2HSVPTask_601");
inline const HsvForm kYuyv2HsvPTask709 =
    ToPlanesTaskForm<tqref::kHsv709, CZYUYV2HSVPTask_709>("CZYUYV2HSVPTask_709");
inline const HsvForm kHsv2Yuyv601 =
    FromHsvForm<tqref::kHsv601, IPL_HSV2YUYV_601, IPL_HSV2YUYV_601_MultiThread, CZHSV2YUYVTask_601>(
        "IPL_HSV2YUYV_601");
inline const HsvForm kHsv2Yuyv709 =
    FromHsvForm<tqref::kHsv709, IPL_HSV2YUYV_709, IPL_HSV2YUYV_709_MultiThread, CZHSV2YUYVTask_709>(
        "IPL_HSV2YUYV_709");
inline const HsvForm kHsvP2Yuyv601 =
    FromPlaneSetForm<tqref::kHsv601, IPL_HSVP2YUYV_601, IPL_HSVP2YUYV_601_MultiThread>(
        "IPL_HSVP2YUYV_601");
inline const HsvForm kHsvP2Yuyv709 =
    FromPlaneSetForm<tqref::kHsv709, IPL_HSVP2YUYV_709, IPL_HSVP2YUYV_709_MultiThread>(
        "IPL_HSVP2YUYV_709");
inline const HsvForm kHsvP2YuyvTask601 =
    FromPlanesTaskForm<tqref::kHsv601, CZHSVP2YUYVTask_601>("CZHSVP2YUYVTask_601");
inline const HsvForm kHsvP2YuyvTask709 =
    FromPlanesTaskForm<tqref::kHsv709, CZHSVP2YUYVTask_709>("CZHSVP2YUYVTask_709");

inline const HsvForm* const kPixelForms[] = {&kBgra2Hsv, &kHsv2BgraWithAlpha, &kHsv2Bgra,
                                             &kHsvToBgraByFloor};
inline const HsvForm* const kMultiThreadPixelForms[] = {&kBgra2Hsv, &kHsv2BgraWithAlpha,
                                                        &kHsv2Bgra};
inline const HsvForm* const kPairForms[] = {&kYuyv2Hsv601,  &kYuyv2Hsv709, &kYuyv2HsvP601,
                                            &kYuyv2HsvP709, &kHsv2Yuyv601, &kHsv2Yuyv709,
                                            &kHsvP2Yuyv601, &kHsvP2Yuyv709};
inline const HsvForm* const kTasksOfPlanes[] = {&kYuyv2HsvPTask601, &kYuyv2HsvPTask709,
                                                &kHsvP2YuyvTask601, &kHsvP2YuyvTask709};

struct Hsv {
    float h, s, v;
};
// Bit by bit.
inline bool operator==(const Hsv& a, const Hsv& b) { return std::memcmp(&a, &b, sizeof a) == 0; }
inline void PrintTo(const Hsv& hsv, std::ostream* out) {
    *out << std::hexfloat << "{" << hsv.h << ", " << hsv.s << ", " << hsv.v << "}"
         << std::defaultfloat;
}

// Equal bit by bit.
inline testing::AssertionResult Same(const std::vector<float>& actual,
                                     const std::vector<float>& expected) {
    if (std::memcmp(actual.data(), expected.data(), expected.size() * sizeof(float)) == 0)
        return testing::AssertionSuccess();
    size_t i = 0;
    while (std::bit_cast<uint32_t>(actual[i]) == std::bit_cast<uint32_t>(expected[i])) ++i;
    return testing::AssertionFailure()
           << "float " << i << " is " << std::hexfloat << actual[i] << ", not " << expected[i];
}

}  // namespace tqtest
