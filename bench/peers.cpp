// The same work done by other libraries, where they have an equivalent: their rows stand behind the
// form's own. Rounding differs between libraries, so a peer's picture is compared with ours by its
// mean difference: that shows the same work, not the same bytes.

#include <libyuv.h>

#include <algorithm>
#include <cstdlib>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <string>

#include "bench/support/rows.h"
#include "frame/module.h"

namespace tqbench {

namespace {

cv::Mat Image(Size size, int type, uint8_t* data) {
    return cv::Mat(size.height, size.width, type, data);
}

void OpenCvConvert(const Form& form, uint8_t* src, int srcType, uint8_t* dst, int dstType,
                   int code) {
    cv::Mat to = Image(form.dstSize, dstType, dst);
    cv::cvtColor(Image(form.srcSize, srcType, src), to, code);
}

void OpenCvResize(const Form& form, uint8_t* src, uint8_t* dst, int type, int method) {
    cv::Mat to = Image(form.dstSize, type, dst);
    cv::resize(Image(form.srcSize, type, src), to, to.size(), 0, 0, method);
}

// A mask in place, with a square of 2 * radius + 1 pixels; what lies outside takes no part.
template <int operation, int radius> void OpenCvMorph(const Form& form, uint8_t*, uint8_t* dst) {
    cv::Mat mask = Image(form.dstSize, CV_8UC1, dst);
    const cv::Size side(2 * radius + 1, 2 * radius + 1);
    cv::morphologyEx(mask, mask, operation, cv::getStructuringElement(cv::MORPH_RECT, side));
}

// filter(from, to) on one byte a pixel.
template <class Filter>
void OpenCvFilter(const Form& form, uint8_t* src, uint8_t* dst, Filter filter) {
    cv::Mat to = Image(form.dstSize, CV_8UC1, dst);
    filter(Image(form.srcSize, CV_8UC1, src), to);
}

template <int radius> void OpenCvBilateral(const Form& form, uint8_t* src, uint8_t* dst) {
    OpenCvFilter(form, src, dst, [](const cv::Mat& from, cv::Mat& to) {
        cv::bilateralFilter(from, to, 2 * radius + 1, 30, radius);
    });
}

template <int radius> void OpenCvGauss(const Form& form, uint8_t* src, uint8_t* dst) {
    OpenCvFilter(form, src, dst, [](const cv::Mat& from, cv::Mat& to) {
        cv::GaussianBlur(from, to, {2 * radius + 1, 2 * radius + 1}, radius);
    });
}

template <int radius> void OpenCvBlur(const Form& form, uint8_t* src, uint8_t* dst) {
    OpenCvFilter(form, src, dst, [](const cv::Mat& from, cv::Mat& to) {
        cv::blur(from, to, {2 * radius + 1, 2 * radius + 1});
    });
}

template <int radius> void OpenCvMedian(const Form& form, uint8_t* src, uint8_t* dst) {
    OpenCvFilter(form, src, dst, [](const cv::Mat& from, cv::Mat& to) {
        cv::medianBlur(from, to, 2 * radius + 1);
    });
}

// The super zoom is the six-tap one where it enlarges.
int OpenCvSuper(const Form& form) {
    return form.dstSize.width > form.srcSize.width ? cv::INTER_LANCZOS4 : cv::INTER_AREA;
}

using PeerCall = void (*)(const Form& form, uint8_t* src, uint8_t* dst);

struct Peer {
    const char* form;
    const char* library;
    bool hasThreads;
    PeerCall call;
};

constexpr const char* kOpenCv = "opencv";
constexpr const char* kLibyuv = "libyuv";

const Peer kPeers[] = {
    {"IPL_ARGB2LUM", kOpenCv, true,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvConvert(form, src, CV_8UC4, dst, CV_8UC1, cv::COLOR_BGRA2GRAY);
     }},
    {"IPL_ARGB2LUM", kLibyuv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         const auto [w, h] = form.srcSize;
         libyuv::ARGBToJ400(src, 4 * w, dst, w, w, h);
     }},
    {"IPL_YUYV2ARGB_601", kOpenCv, true,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvConvert(form, src, CV_8UC2, dst, CV_8UC4, cv::COLOR_YUV2BGRA_YUYV);
     }},
    {"IPL_YUYV2ARGB_601", kLibyuv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         const auto [w, h] = form.srcSize;
         libyuv::YUY2ToARGB(src, 2 * w, dst, 4 * w, w, h);
     }},
    {"IPL_UYVY2ARGB_601", kOpenCv, true,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvConvert(form, src, CV_8UC2, dst, CV_8UC4, cv::COLOR_YUV2BGRA_UYVY);
     }},
    {"IPL_UYVY2ARGB_601", kLibyuv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         const auto [w, h] = form.srcSize;
         libyuv::UYVYToARGB(src, 2 * w, dst, 4 * w, w, h);
     }},
    {"IPL_ARGB2YUYV_601", kLibyuv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         const auto [w, h] = form.srcSize;
         libyuv::ARGBToYUY2(src, 4 * w, dst, 2 * w, w, h);
     }},
    {"IPL_YUVP422_To_ARGB_601", kLibyuv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         const auto [w, h] = form.srcSize;
         const uint8_t *u = src + w * h, *v = u + w / 2 * h;
         libyuv::I422ToARGB(src, w, u, w / 2, v, w / 2, dst, 4 * w, w, h);
     }},
    {"IPL_ARGB_To_YUVP422_601", kLibyuv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         const auto [w, h] = form.srcSize;
         uint8_t *u = dst + w * h, *v = u + w / 2 * h;
         libyuv::ARGBToI422(src, 4 * w, dst, w, u, w / 2, v, w / 2, w, h);
     }},
    {"IPL_BGRA2RGB", kOpenCv, true,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvConvert(form, src, CV_8UC4, dst, CV_8UC3, cv::COLOR_BGRA2RGB);
     }},
    {"IPL_BGRA2RGB", kLibyuv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         const auto [w, h] = form.srcSize;
         libyuv::ARGBToRAW(src, 4 * w, dst, 3 * w, w, h);
     }},
    {"IPL_BGRA2HSV_8u_C3R", kOpenCv, true,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvConvert(form, src, CV_8UC4, dst, CV_8UC3, cv::COLOR_BGR2HSV_FULL);
     }},
    {"IPL_SplitColor:ARGB_4", kLibyuv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         const auto [w, h] = form.srcSize;
         libyuv::SplitARGBPlane(src, 4 * w, dst + 2 * w * h, w, dst + w * h, w, dst, w,
                                dst + 3 * w * h, w, w, h);
     }},
    {"IPL_BuildColor:ARGB_4", kLibyuv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         const auto [w, h] = form.srcSize;
         libyuv::MergeARGBPlane(src + 2 * w * h, w, src + w * h, w, src, w, src + 3 * w * h, w, dst,
                                4 * w, w, h);
     }},
    {"IPL_SplitColor:YUYV", kLibyuv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         const auto [w, h] = form.srcSize;
         uint8_t *u = dst + w * h, *v = u + w / 2 * h;
         libyuv::YUY2ToI422(src, 2 * w, dst, w, u, w / 2, v, w / 2, w, h);
     }},
    {"IPL_BuildColor:YUYV", kLibyuv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         const auto [w, h] = form.srcSize;
         const uint8_t *u = src + w * h, *v = u + w / 2 * h;
         libyuv::I422ToYUY2(src, w, u, w / 2, v, w / 2, dst, 2 * w, w, h);
     }},
    {"IPL_ZoomNN_8u_C1R", kOpenCv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvResize(form, src, dst, CV_8UC1, cv::INTER_NEAREST);
     }},
    {"IPL_ZoomNN_8u_C4R", kOpenCv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvResize(form, src, dst, CV_8UC4, cv::INTER_NEAREST);
     }},
    {"IPL_ZoomLinear_8u_C1R", kOpenCv, true,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvResize(form, src, dst, CV_8UC1, cv::INTER_LINEAR);
     }},
    {"IPL_ZoomLinear_8u_C4R", kOpenCv, true,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvResize(form, src, dst, CV_8UC4, cv::INTER_LINEAR);
     }},
    {"IPL_ZoomCubic_8u_C1R", kOpenCv, true,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvResize(form, src, dst, CV_8UC1, cv::INTER_CUBIC);
     }},
    {"IPL_ZoomCubic_8u_C4R", kOpenCv, true,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvResize(form, src, dst, CV_8UC4, cv::INTER_CUBIC);
     }},
    {"IPL_Zoom6Cubic_8u_C1R", kOpenCv, true,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvResize(form, src, dst, CV_8UC1, cv::INTER_LANCZOS4);
     }},
    {"IPL_Zoom6Cubic_8u_C4R", kOpenCv, true,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvResize(form, src, dst, CV_8UC4, cv::INTER_LANCZOS4);
     }},
    {"IPL_ZoomSuper_8u_C1R", kOpenCv, true,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvResize(form, src, dst, CV_8UC1, OpenCvSuper(form));
     }},
    {"IPL_ZoomSuper_8u_C4R", kOpenCv, true,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvResize(form, src, dst, CV_8UC4, OpenCvSuper(form));
     }},
    {"IPL_ZoomLinear_8u_C1R", kLibyuv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         const auto [w, h] = form.srcSize;
         libyuv::ScalePlane(src, w, w, h, dst, form.dstSize.width, form.dstSize.width,
                            form.dstSize.height, libyuv::kFilterBilinear);
     }},
    {"IPL_ZoomLinear_8u_C4R", kLibyuv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         const auto [w, h] = form.srcSize;
         libyuv::ARGBScale(src, 4 * w, w, h, dst, 4 * form.dstSize.width, form.dstSize.width,
                           form.dstSize.height, libyuv::kFilterBilinear);
     }},
    {"IPL_FErosion:r1", kOpenCv, true, OpenCvMorph<cv::MORPH_ERODE, 1>},
    {"IPL_FErosion:r5", kOpenCv, true, OpenCvMorph<cv::MORPH_ERODE, 5>},
    {"IPL_FErosion:r25", kOpenCv, true, OpenCvMorph<cv::MORPH_ERODE, 25>},
    {"IPL_FErosion:r100", kOpenCv, true, OpenCvMorph<cv::MORPH_ERODE, 100>},
    {"IPL_FDilation:r1", kOpenCv, true, OpenCvMorph<cv::MORPH_DILATE, 1>},
    {"IPL_FDilation:r5", kOpenCv, true, OpenCvMorph<cv::MORPH_DILATE, 5>},
    {"IPL_FDilation:r25", kOpenCv, true, OpenCvMorph<cv::MORPH_DILATE, 25>},
    {"IPL_FDilation:r100", kOpenCv, true, OpenCvMorph<cv::MORPH_DILATE, 100>},
    {"IPL_FOpening:r5", kOpenCv, true, OpenCvMorph<cv::MORPH_OPEN, 5>},
    {"IPL_FClosing:r5", kOpenCv, true, OpenCvMorph<cv::MORPH_CLOSE, 5>},
    {"IPL_Bilteral_8u_C1R:r3", kOpenCv, true, OpenCvBilateral<3>},
    {"IPL_Gauss3x3_8u_C1R", kOpenCv, true,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         OpenCvFilter(form, src, dst, [](const cv::Mat& from, cv::Mat& to) {
             cv::GaussianBlur(from, to, {3, 3}, 0);
         });
     }},
    {"IPL_Gauss_8u_C1R:r2", kOpenCv, true, OpenCvGauss<2>},
    {"IPL_Gauss_8u_C1R:r7", kOpenCv, true, OpenCvGauss<7>},
    {"IPL_Average_8u_C1R:r2", kOpenCv, true, OpenCvBlur<2>},
    {"IPL_Average_8u_C1R:r7", kOpenCv, true, OpenCvBlur<7>},
    {"IPL_Median_8u_C1R:r1", kOpenCv, true, OpenCvMedian<1>},
    {"IPL_Median_8u_C1R:r2", kOpenCv, true, OpenCvMedian<2>},
    {"IPL_Median_8u_C1R:r7", kOpenCv, true, OpenCvMedian<7>},
    {"IPL_MemcpyInvert_CR4", kOpenCv, false,
     [](const Form& form, uint8_t* src, uint8_t* dst) {
         cv::Mat to = Image(form.dstSize, CV_8UC4, dst);
         cv::flip(Image(form.srcSize, CV_8UC4, src), to, 0);
     }},
};

// In steps of a byte's value. Rounding stays below it; a picture that is a pixel off exceeds it.
constexpr double kSameWork = 2;

std::string CheckPeer(const Form& form, PeerCall peer) {
    const Frames& frames = GetFrames();
    // What a form leaves unwritten at the borders is compared too, and should look like the rest.
    std::copy_n(frames.picture, form.dstBytes, frames.expected);
    std::fill_n(frames.dst, form.dstBytes, 0);
    if (form.fill) {
        form.fill(frames.expected);
        form.fill(frames.dst);
    }
    form.plain(frames.picture, frames.expected);
    peer(form, frames.picture, frames.dst);
    int64_t sum = 0;
    for (int64_t i = 0; i < form.dstBytes; ++i) sum += std::abs(frames.dst[i] - frames.expected[i]);
    const double mean = static_cast<double>(sum) / static_cast<double>(form.dstBytes);
    return mean <= kSameWork ? "" : "mean difference " + std::to_string(mean);
}

void AddPeerRow(const Form& form, const Peer& peer, bool threaded) {
    const int threads = threaded ? static_cast<int>(g_IPLProcessorCount) : 1;
    AddRow({.name = (threaded ? form.multiThreadName : form.name) + "/" + form.size + "/" +
                    peer.library,
            .items = form.dstSize.Pixels(),
            .bytes = form.srcBytes + form.dstBytes,
            .threaded = threaded,
            .check = [=] { return CheckPeer(form, peer.call); },
            .prepare =
                [=] {
                    cv::setNumThreads(threads);
                    if (form.fill) form.fill(GetFrames().dst);
                },
            .call = [=] { peer.call(form, GetFrames().picture, GetFrames().dst); }});
}

}  // namespace

void AddPeerRows(const Form& form) {
    for (const Peer& peer : kPeers) {
        if (form.name != peer.form) continue;
        AddPeerRow(form, peer, false);
        if (peer.hasThreads && !form.multiThreadName.empty()) AddPeerRow(form, peer, true);
    }
}

void AddLabellingPeers(const std::string& kind, Size size, uint8_t* mask, int64_t runs,
                       const std::function<size_t()>& countRegions) {
    for (const bool threaded : {false, true}) {
        const int threads = threaded ? static_cast<int>(g_IPLProcessorCount) : 1;
        const auto label = [=]() -> int {
            cv::Mat labels, stats, centroids;
            return cv::connectedComponentsWithStats(Image(size, CV_8UC1, mask), labels, stats,
                                                    centroids, 8);
        };
        AddRow({.name = std::string("IPL_FCCLabeling") + (threaded ? "_MultiThread:" : ":") + kind +
                        "/" + ToString(size) + "/" + kOpenCv,
                .items = runs,
                .bytes = size.Pixels(),
                .threaded = threaded,
                .check =
                    [=] {
                        const int found = label() - 1;  // without the background
                        return static_cast<size_t>(found) == countRegions()
                                   ? std::string()
                                   : std::to_string(found) + " regions";
                    },
                .prepare = [=] { cv::setNumThreads(threads); },
                .call = [=] { label(); }});
    }
}

}  // namespace tqbench
