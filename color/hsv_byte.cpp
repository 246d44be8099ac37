// HSV in bytes: plain forms, band tasks, MultiThread forms. Divisions are looked up in the tables
// filled at load.

#include <tqipl/hsv.h>

#include <algorithm>

#include "color/hsv_byte_tasks.h"
#include "frame/band.h"
#include "frame/rows.h"
#include "frame/tables.h"

namespace {

// Hue, saturation and value. Red goes before green on a tie for the largest channel.
void StoreHsv(int r, int g, int b, unsigned char* dst) {
    const int largest = std::max(std::max(r, g), b), smallest = std::min(std::min(r, g), b);
    const int d = largest - smallest;
    int h = 0, s = 0;
    if (d != 0) {
        if (r == largest)
            h = IPL_TabHueWrap[kTableCentre + g - b][d];
        else if (g == largest)
            h = IPL_TabHueMid[kTableCentre + b - r][d];
        else
            h = IPL_TabHueMid[kTableCentre + r - g][d] + 85;
        s = IPL_TabSaturation[d][largest];
    }
    dst[0] = static_cast<unsigned char>(h);
    dst[1] = static_cast<unsigned char>(s);
    dst[2] = static_cast<unsigned char>(largest);
}

struct Rgb {
    int r, g, b;
};

// By sixth of the circle, which of V, P, Q and T red, green and blue are. 255 begins a seventh
// sector, which is the end of the sixth.
constexpr unsigned char kSectors[7][3] = {{0, 3, 1}, {2, 0, 1}, {1, 0, 3}, {1, 2, 0},
                                          {3, 1, 0}, {0, 1, 2}, {0, 1, 2}};

Rgb FromHsv(const unsigned char* hsv) {
    const int h = hsv[0], s = hsv[1], v = hsv[2];
    if (s == 0) return {v, v, v};
    const int p = IPL_TabValueP[v][s];
    const int q = (IPL_TabValueQ[s][h] * v) >> 10;
    const int t = (IPL_TabValueT[s][h] * v) >> 10;
    const int levels[4] = {v, p, q, t};
    const unsigned char* order = kSectors[2 * h / 85];
    return {levels[order[0]], levels[order[1]], levels[order[2]]};
}

// Where a layout has its bytes.
struct Yuyv {
    static constexpr int kY0 = 0, kU = 1, kY1 = 2, kV = 3;
};
struct Uyvy {
    static constexpr int kU = 0, kY0 = 1, kV = 2, kY1 = 3;
};

int Limit(int value) { return std::clamp(value, 0, 255); }

template <class Layout> void PairToHsv(const unsigned char* src, unsigned char* dst) {
    const int u = src[Layout::kU] - 128, v = src[Layout::kV] - 128;
    const int red = (459 * v + 128) >> 8;
    const int blue = (541 * u + 128) >> 8;
    const int green = (-218 * u - 545 * v + 512) >> 10;
    const auto pixel = [&](int luma, unsigned char* to) {
        const int y = (149 * luma - 2320) >> 7;
        StoreHsv(Limit(y + red), Limit(y + green), Limit(y + blue), to);
    };
    pixel(src[Layout::kY0], dst);
    pixel(src[Layout::kY1], dst + 3);
}

template <class Layout> void HsvToPair(const unsigned char* src, unsigned char* dst) {
    const Rgb left = FromHsv(src), right = FromHsv(src + 3);
    const auto luma = [](Rgb c) {
        return static_cast<unsigned char>(((629 * c.g + 187 * c.r + 63 * c.b + 512) >> 10) + 16);
    };
    const int r = left.r + right.r, g = left.g + right.g, b = left.b + right.b;
    dst[Layout::kY0] = luma(left);
    dst[Layout::kY1] = luma(right);
    dst[Layout::kU] =
        static_cast<unsigned char>(((450 * b - 347 * g - 103 * r + 1024) >> 11) + 128);
    dst[Layout::kV] = static_cast<unsigned char>(((450 * r - 409 * g - 41 * b + 1024) >> 11) + 128);
}

bool IsNull(const unsigned char* src, const unsigned char* dst) {
    return src == nullptr || dst == nullptr;
}

// The plain forms of 4:2:2.
template <class Layout>
void PairsToHsv(int width, int height, int srcStride, unsigned char* src, int dstStride,
                unsigned char* dst) {
    if (IsNull(src, dst)) return;
    const ptrdiff_t pairs = width >> 1;
    tq::ForEachRow(height, srcStride, src, dstStride, dst,
                   [pairs](const unsigned char* from, unsigned char* to) {
                       for (ptrdiff_t i = 0; i < pairs; ++i)
                           PairToHsv<Layout>(from + 4 * i, to + 6 * i);
                   });
}

template <class Layout>
void HsvToPairs(int width, int height, int srcStride, unsigned char* src, int dstStride,
                unsigned char* dst) {
    if (IsNull(src, dst)) return;
    const ptrdiff_t pairs = width >> 1;
    tq::ForEachRow(height, srcStride, src, dstStride, dst,
                   [pairs](const unsigned char* from, unsigned char* to) {
                       for (ptrdiff_t i = 0; i < pairs; ++i)
                           HsvToPair<Layout>(from + 6 * i, to + 4 * i);
                   });
}

// The rows of a band of IPL_BGRA2HSV_8u_C3R, with a zero behind each: hosts depend on it. With
// dense rows that zero meets the first byte of the row that lies there in memory, and of the two
// writes the one that comes first in row order is lost. Where that row is another band's, its owner
// makes the byte what it is after both.
void BgraToHsv(int width, int height, int srcStride, const unsigned char* src, int dstStride,
               unsigned char* dst, bool bandBefore, bool bandAfter) {
    if (width < 1 || height < 1) return;
    const ptrdiff_t rowBytes = 3 * static_cast<ptrdiff_t>(width);
    const bool nextLiesBehind = dstStride == rowBytes && bandAfter;
    const bool previousLiesBehind = dstStride == -rowBytes && bandBefore;
    const bool liesBehindNext = dstStride == -rowBytes && bandAfter;
    int y = 0;
    tq::ForEachRow(height, srcStride, src, dstStride, dst,
                   [&](const unsigned char* from, unsigned char* to) {
                       for (ptrdiff_t x = 0; x < width; ++x, from += 4)
                           StoreHsv(from[2], from[1], from[0], to + 3 * x);
                       const bool isFirst = y == 0, isLast = ++y == height;
                       if (!(isFirst && previousLiesBehind) && !(isLast && nextLiesBehind))
                           to[rowBytes] = 0;
                       if (isLast && liesBehindNext) to[0] = 0;
                   });
}

}  // namespace

void IPL_BGRA2HSV_8u_C3R(int width, int height, int srcStride, unsigned char* src, int dstStride,
                         unsigned char* dst) {
    BgraToHsv(width, height, srcStride, src, dstStride, dst, false, false);
}

void IPL_HSV2BGRA_8u_C3R(int width, int height, int srcStride, unsigned char* src, int alphaStride,
                         unsigned char* alpha, int dstStride, unsigned char* dst) {
    if (IsNull(src, dst)) return;
    for (int y = 0; y < height; ++y) {
        const unsigned char* from = src + static_cast<ptrdiff_t>(y) * srcStride;
        const unsigned char* alphas = alpha + static_cast<ptrdiff_t>(y) * alphaStride;
        unsigned char* to = dst + static_cast<ptrdiff_t>(y) * dstStride;
        for (ptrdiff_t x = 0; x < width; ++x) {
            const Rgb rgb = FromHsv(from + 3 * x);
            to[4 * x] = static_cast<unsigned char>(rgb.b);
            to[4 * x + 1] = static_cast<unsigned char>(rgb.g);
            to[4 * x + 2] = static_cast<unsigned char>(rgb.r);
            to[4 * x + 3] = alphas[x];
        }
    }
}

void IPL_YUYV2HSV_8u_709(int width, int height, int srcStride, unsigned char* src, int dstStride,
                         unsigned char* dst) {
    PairsToHsv<Yuyv>(width, height, srcStride, src, dstStride, dst);
}

void IPL_HSV2YUYV_8u_709(int width, int height, int srcStride, unsigned char* src, int dstStride,
                         unsigned char* dst) {
    HsvToPairs<Yuyv>(width, height, srcStride, src, dstStride, dst);
}

void IPL_UYVY2HSV_8u(int width, int height, int srcStride, unsigned char* src, int dstStride,
                     unsigned char* dst, TQ_COLOR_MATRIX) {
    PairsToHsv<Uyvy>(width, height, srcStride, src, dstStride, dst);
}

void IPL_HSV2UYVY_8u(int width, int height, int srcStride, unsigned char* src, int dstStride,
                     unsigned char* dst, TQ_COLOR_MATRIX) {
    HsvToPairs<Uyvy>(width, height, srcStride, src, dstStride, dst);
}

int CZBGRA2HSV_Ex::Run() {
    BgraToHsv(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst, m_bBandBefore,
              m_bBandAfter);
    return 1;
}

int CZHSV2BGRA_Ex::Run() {
    IPL_HSV2BGRA_8u_C3R(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nAlphaStride, m_pAlpha,
                        m_nDstStride, m_pDst);
    return 1;
}

int CYUYV2HSV::Run() {
    if (m_nMode == 1)
        IPL_YUYV2HSV_8u_709(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CHSV2YUYV::Run() {
    if (m_nMode == 1)
        IPL_HSV2YUYV_8u_709(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CYUV2HSV::Run() {
    if (m_nFormat == TQ_COLOR_YUYV)
        IPL_YUYV2HSV_8u_709(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    else
        IPL_UYVY2HSV_8u(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst, m_nMatrix);
    return 1;
}

int CHSV2YUV::Run() {
    if (m_nFormat == TQ_COLOR_YUYV)
        IPL_HSV2YUYV_8u_709(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    else
        IPL_HSV2UYVY_8u(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst, m_nMatrix);
    return 1;
}

void IPL_BGRA2HSV_8u_C3R_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                     int dstStride, unsigned char* dst) {
    if (IsNull(src, dst)) return;
    int rest = height;
    tq::RunPixelBands<CZBGRA2HSV_Ex>(tq::kBandFormA, IPL_BGRA2HSV_8u_C3R, width, height, srcStride,
                                     src, dstStride, dst, [&](CZBGRA2HSV_Ex& task) {
                                         task.m_bBandBefore = rest < height;
                                         rest -= task.m_nHeight;
                                         task.m_bBandAfter = rest > 0;
                                     });
}

void IPL_HSV2BGRA_8u_C3R_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                     int alphaStride, unsigned char* alpha, int dstStride,
                                     unsigned char* dst) {
    if (IsNull(src, dst)) return;
    if (tq::RunsPlain(tq::kBandFormA)) {
        IPL_HSV2BGRA_8u_C3R(width, height, srcStride, src, alphaStride, alpha, dstStride, dst);
        return;
    }
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormA, height);
    tq::TaskSet<CZHSV2BGRA_Ex> tasks;
    for (int i = 0; i < plan.count; ++i) {
        CZHSV2BGRA_Ex& task = tasks.Add();
        task.m_nWidth = width;
        task.m_nHeight = plan.Length(i);
        task.m_nSrcStride = srcStride;
        task.m_pSrc = src;
        task.m_nAlphaStride = alphaStride;
        task.m_pAlpha = alpha;
        task.m_nDstStride = dstStride;
        task.m_pDst = dst;
        if (i + 1 < plan.count) {
            src = tq::AfterRows(src, task.m_nHeight, srcStride);
            alpha = tq::AfterRows(alpha, task.m_nHeight, alphaStride);
            dst = tq::AfterRows(dst, task.m_nHeight, dstStride);
        }
    }
    tasks.Run();
}

void IPL_YUYV2HSV_8u_709_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                     int dstStride, unsigned char* dst) {
    if (IsNull(src, dst)) return;
    tq::RunPixelBands<CYUYV2HSV>(tq::kBandFormA, IPL_YUYV2HSV_8u_709, width, height, srcStride, src,
                                 dstStride, dst, [](CYUYV2HSV& task) { task.m_nMode = 1; });
}

void IPL_HSV2YUYV_8u_709_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                     int dstStride, unsigned char* dst) {
    if (IsNull(src, dst)) return;
    tq::RunPixelBands<CHSV2YUYV>(tq::kBandFormA, IPL_HSV2YUYV_8u_709, width, height, srcStride, src,
                                 dstStride, dst, [](CHSV2YUYV& task) { task.m_nMode = 1; });
}

void IPL_UYVY2HSV_8u_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, unsigned char* dst, TQ_COLOR_MATRIX matrix) {
    if (IsNull(src, dst)) return;
    tq::RunPixelBands<CYUV2HSV>(tq::kBandFormA, PairsToHsv<Uyvy>, width, height, srcStride, src,
                                dstStride, dst, [matrix](CYUV2HSV& task) {
                                    task.m_nFormat = TQ_COLOR_UYVY;
                                    task.m_nMatrix = matrix;
                                });
}

void IPL_HSV2UYVY_8u_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                 int dstStride, unsigned char* dst, TQ_COLOR_MATRIX matrix) {
    if (IsNull(src, dst)) return;
    tq::RunPixelBands<CHSV2YUV>(tq::kBandFormA, HsvToPairs<Uyvy>, width, height, srcStride, src,
                                dstStride, dst, [matrix](CHSV2YUV& task) {
                                    task.m_nFormat = TQ_COLOR_UYVY;
                                    task.m_nMatrix = matrix;
                                });
}
