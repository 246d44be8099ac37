// HSV in floats: single pixels, plain forms, band tasks, MultiThread forms.

#include <tqipl/hsv.h>

#include <algorithm>

#include "color/hsv_float_kernels.h"
#include "color/hsv_float_tasks.h"
#include "frame/band.h"
#include "frame/exact_math.h"
#include "frame/isa.h"
#include "frame/rows.h"

namespace {

constexpr const tq::HsvFloatKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(hsvFloatKernels);

template <class T> T* RowAt(T* first, int y, int stride) {
    return first + static_cast<ptrdiff_t>(y) * stride;
}

// Three planes, each with its stride in floats.
struct HsvPlanes {
    int hStride;
    float* h;
    int sStride;
    float* s;
    int vStride;
    float* v;

    HsvPlanes Row(int y) const {
        return {hStride, RowAt(h, y, hStride), sStride, RowAt(s, y, sStride),
                vStride, RowAt(v, y, vStride)};
    }
    HsvPlanes After(int rows) const {
        return {hStride, tq::AfterRows(h, rows, hStride), sStride, tq::AfterRows(s, rows, sStride),
                vStride, tq::AfterRows(v, rows, vStride)};
    }
    bool HasNull() const { return h == nullptr || s == nullptr || v == nullptr; }
};

// Dense planes one behind the other. Their size is a 32-bit product.
HsvPlanes PlanesAt(float* base, int width, int height) {
    if (base == nullptr || width < 1 || height < 1) return {width, base, width, base, width, base};
    const ptrdiff_t size = tq::Mul32(width, height);
    return {width, base, width, base + size, width, base + 2 * size};
}

template <class Task> HsvPlanes PlanesOf(const Task& task) {
    return {task.m_nHStride, task.m_pH, task.m_nSStride, task.m_pS, task.m_nVStride, task.m_pV};
}

template <class Task> void SetPlanes(Task& task, const HsvPlanes& planes) {
    task.m_nHStride = planes.hStride;
    task.m_pH = planes.h;
    task.m_nSStride = planes.sStride;
    task.m_pS = planes.s;
    task.m_nVStride = planes.vStride;
    task.m_pV = planes.v;
}

// The row loops. Counts below 1 have no kernel call.
void FromYuyv(void (*row)(const uint8_t*, float*, ptrdiff_t), int width, int height, int srcStride,
              const unsigned char* src, int dstStride, float* dst) {
    const int pairs = width / 2;
    if (pairs < 1) return;
    tq::ForEachRow(height, srcStride, src, dstStride, dst,
                   [&](const unsigned char* from, float* to) { row(from, to, pairs); });
}

void ToYuyv(void (*row)(const float*, uint8_t*, ptrdiff_t), int width, int height, int srcStride,
            const float* src, int dstStride, unsigned char* dst) {
    const int pairs = width / 2;
    if (pairs < 1) return;
    tq::ForEachRow(height, srcStride, src, dstStride, dst,
                   [&](const float* from, unsigned char* to) { row(from, to, pairs); });
}

void PlanesFromBytes(void (*row)(const uint8_t*, float*, float*, float*, ptrdiff_t), int count,
                     int height, int srcStride, const unsigned char* src, const HsvPlanes& planes) {
    if (count < 1) return;
    for (int y = 0; y < height; ++y) {
        const HsvPlanes to = planes.Row(y);
        row(RowAt(src, y, srcStride), to.h, to.s, to.v, count);
    }
}

void PlanesToBytes(void (*row)(const float*, const float*, const float*, uint8_t*, ptrdiff_t),
                   int count, int height, const HsvPlanes& planes, int dstStride,
                   unsigned char* dst) {
    if (count < 1) return;
    for (int y = 0; y < height; ++y) {
        const HsvPlanes from = planes.Row(y);
        row(from.h, from.s, from.v, RowAt(dst, y, dstStride), count);
    }
}

// The MultiThread forms, once their arguments are checked.
template <class Task>
void RunFromBytes(tq::BandRule rule, int width, int height, int srcStride, unsigned char* src,
                  HsvPlanes planes) {
    const tq::BandPlan plan = tq::PlanBands(rule, height);
    tq::TaskSet<Task> tasks;
    for (int i = 0; i < plan.count; ++i) {
        Task& task = tasks.Add();
        task.m_nWidth = width;
        task.m_nHeight = plan.Length(i);
        task.m_nSrcStride = srcStride;
        task.m_pSrc = src;
        SetPlanes(task, planes);
        if (i + 1 < plan.count) {
            src = tq::AfterRows(src, task.m_nHeight, srcStride);
            planes = planes.After(task.m_nHeight);
        }
    }
    tasks.Run();
}

template <class Task>
void RunImageToBytes(int width, int height, int srcStride, float* src, int dstStride,
                     unsigned char* dst) {
    const tq::BandPlan plan = tq::PlanBands(tq::kBandFormC, height);
    tq::TaskSet<Task> tasks;
    for (int i = 0; i < plan.count; ++i) {
        Task& task = tasks.Add();
        task.m_nWidth = width;
        task.m_nHeight = plan.Length(i);
        task.m_nSrcStride = srcStride;
        task.m_pSrc = src;
        task.m_nDstStride = dstStride;
        task.m_pDst = dst;
        if (i + 1 < plan.count) {
            src = tq::AfterRows(src, task.m_nHeight, srcStride);
            dst = tq::AfterRows(dst, task.m_nHeight, dstStride);
        }
    }
    tasks.Run();
}

// `each` sets what the task has beyond planes and destination, and moves it past the band.
template <class Task, class Each>
void RunPlanesToBytes(tq::BandRule rule, int width, int height, HsvPlanes planes, int dstStride,
                      unsigned char* dst, Each each) {
    const tq::BandPlan plan = tq::PlanBands(rule, height);
    tq::TaskSet<Task> tasks;
    for (int i = 0; i < plan.count; ++i) {
        Task& task = tasks.Add();
        task.m_nWidth = width;
        task.m_nHeight = plan.Length(i);
        SetPlanes(task, planes);
        task.m_nDstStride = dstStride;
        task.m_pDst = dst;
        each(task, i + 1 < plan.count);
        if (i + 1 < plan.count) {
            planes = planes.After(task.m_nHeight);
            dst = tq::AfterRows(dst, task.m_nHeight, dstStride);
        }
    }
    tasks.Run();
}

template <class Task>
void RunPlanesToYuyv(int width, int height, float* planes, int dstStride, unsigned char* dst) {
    RunPlanesToBytes<Task>(tq::kBandFormC, width, height, PlanesAt(planes, width, height),
                           dstStride, dst, [](Task&, bool) {});
}

}  // namespace

void IPL_RGB2HSV_32f_32f(float r, float g, float b, float& h, float& s, float& v) {
    const float largest = std::max({r, g, b}), smallest = std::min({r, g, b});
    v = static_cast<float>(static_cast<double>(largest) / 255.0);
    const float d = largest - smallest;
    if (static_cast<double>(d) < 1e-6) {
        s = 0.0f;
        h = 0.0f;
        return;
    }
    const float inverse = 1.0f / d;
    float t;
    if (r == largest)
        t = (g - b) * inverse;
    else if (g == largest)
        t = (b - r) * inverse + 2.0f;
    else
        t = (r - g) * inverse + 4.0f;
    h = t * 60.0f;
    if (0.0f > h) h = h + 360.0f;
    s = d / largest;
}

// All of a byte's values and differences are exact as floats, and of differences only 0 is below
// 1e-6.
void IPL_RGB2HSV_8u_32f(unsigned char r, unsigned char g, unsigned char b, float& h, float& s,
                        float& v) {
    IPL_RGB2HSV_32f_32f(r, g, b, h, s, v);
}

void IPL_HSV2RGB_32f_8u(float h, float s, float v, unsigned char& r, unsigned char& g,
                        unsigned char& b) {
    const float w = v * 255.0f;
    if (s >= -1e-10 && s <= 1e-10) {
        const int32_t grey = tq::TruncateToInt32(static_cast<double>(w) + 0.01);
        r = g = b = static_cast<uint8_t>(grey);
        return;
    }
    const float x = h / 60.0f;
    const int32_t i = tq::TruncateToInt32(x);
    const float f = x - static_cast<float>(i);
    const auto addHundredthAndLimit = [](float value) {
        const float sum = static_cast<float>(static_cast<double>(value) + 0.01);
        return tq::TruncateToByte(sum > 255.0f ? 255.0f : sum);
    };
    const uint8_t p = addHundredthAndLimit((1.0f - s) * w);
    const uint8_t q = addHundredthAndLimit((1.0f - f * s) * w);
    const uint8_t t = addHundredthAndLimit((1.0f - (1.0f - f) * s) * w);
    // The largest channel has neither the hundredth nor the limit: kept on purpose.
    const uint8_t top = tq::TruncateToByte(w);
    const auto store = [&](uint8_t red, uint8_t green, uint8_t blue) {
        r = red;
        g = green;
        b = blue;
    };
    switch (i) {
        case 0:
            store(top, t, p);
            break;
        case 1:
            store(q, top, p);
            break;
        case 2:
            store(p, top, t);
            break;
        case 3:
            store(p, q, top);
            break;
        case 4:
            store(t, p, top);
            break;
        case 5:
            store(top, p, q);
            break;
        default:
            break;
    }
}

void IPL_BGRA2HSV(int width, int height, int srcStride, unsigned char* src, int hStride, float* h,
                  int sStride, float* s, int vStride, float* v) {
    const HsvPlanes planes = {hStride, h, sStride, s, vStride, v};
    if (src == nullptr || planes.HasNull()) return;
    PlanesFromBytes(tq::SelectKernels(kKernels).fromBgra, width, height, srcStride, src, planes);
}

void IPL_HSV2BGRA(int width, int height, int hStride, float* h, int sStride, float* s, int vStride,
                  float* v, int alphaStride, float* alpha, int dstStride, unsigned char* dst) {
    if (width < 1) return;
    const auto row = tq::SelectKernels(kKernels).toBgra;
    for (int y = 0; y < height; ++y)
        row(RowAt(h, y, hStride), RowAt(s, y, sStride), RowAt(v, y, vStride),
            RowAt(alpha, y, alphaStride), RowAt(dst, y, dstStride), width);
}

void IPL_HSV2BGRA(int width, int height, int hStride, float* h, int sStride, float* s, int vStride,
                  float* v, int dstStride, unsigned char* dst) {
    PlanesToBytes(tq::SelectKernels(kKernels).toBgr, width, height,
                  {hStride, h, sStride, s, vStride, v}, dstStride, dst);
}

void IPL_HSV_To_BGRA(int width, int height, int hStride, float* h, int sStride, float* s,
                     int vStride, float* v, int dstStride, unsigned char* dst) {
    PlanesToBytes(tq::SelectKernels(kKernels).toLimitedBgr, width, height,
                  {hStride, h, sStride, s, vStride, v}, dstStride, dst);
}

void IPL_YUYV2HSV_601(int width, int height, int srcStride, unsigned char* src, int dstStride,
                      float* dst) {
    FromYuyv(tq::SelectKernels(kKernels).fromYuyv601, width, height, srcStride, src, dstStride,
             dst);
}

void IPL_YUYV2HSV_709(int width, int height, int srcStride, unsigned char* src, int dstStride,
                      float* dst) {
    FromYuyv(tq::SelectKernels(kKernels).fromYuyv709, width, height, srcStride, src, dstStride,
             dst);
}

void IPL_YUYV2HSVP_601(int width, int height, int srcStride, unsigned char* src, float* planes) {
    PlanesFromBytes(tq::SelectKernels(kKernels).planesFromYuyv601, width / 2, height, srcStride,
                    src, PlanesAt(planes, width, height));
}

void IPL_YUYV2HSVP_709(int width, int height, int srcStride, unsigned char* src, float* planes) {
    PlanesFromBytes(tq::SelectKernels(kKernels).planesFromYuyv709, width / 2, height, srcStride,
                    src, PlanesAt(planes, width, height));
}

void IPL_HSV2YUYV_601(int width, int height, int srcStride, float* src, int dstStride,
                      unsigned char* dst) {
    ToYuyv(tq::SelectKernels(kKernels).toYuyv601, width, height, srcStride, src, dstStride, dst);
}

void IPL_HSV2YUYV_709(int width, int height, int srcStride, float* src, int dstStride,
                      unsigned char* dst) {
    ToYuyv(tq::SelectKernels(kKernels).toYuyv709, width, height, srcStride, src, dstStride, dst);
}

void IPL_HSVP2YUYV_601(int width, int height, float* planes, int dstStride, unsigned char* dst) {
    PlanesToBytes(tq::SelectKernels(kKernels).planesToYuyv601, width / 2, height,
                  PlanesAt(planes, width, height), dstStride, dst);
}

void IPL_HSVP2YUYV_709(int width, int height, float* planes, int dstStride, unsigned char* dst) {
    PlanesToBytes(tq::SelectKernels(kKernels).planesToYuyv709, width / 2, height,
                  PlanesAt(planes, width, height), dstStride, dst);
}

int CZYUYV2HSVTask_601::Run() {
    IPL_YUYV2HSV_601(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZYUYV2HSVTask_709::Run() {
    IPL_YUYV2HSV_709(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZHSV2YUYVTask_601::Run() {
    IPL_HSV2YUYV_601(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

int CZHSV2YUYVTask_709::Run() {
    IPL_HSV2YUYV_709(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nDstStride, m_pDst);
    return 1;
}

// A band of planes behind one pointer is not itself such a block: the plane tasks go around the
// single-pointer forms.
int CZYUYV2HSVPTask_601::Run() {
    PlanesFromBytes(tq::SelectKernels(kKernels).planesFromYuyv601, m_nWidth / 2, m_nHeight,
                    m_nSrcStride, m_pSrc, PlanesOf(*this));
    return 1;
}

int CZYUYV2HSVPTask_709::Run() {
    PlanesFromBytes(tq::SelectKernels(kKernels).planesFromYuyv709, m_nWidth / 2, m_nHeight,
                    m_nSrcStride, m_pSrc, PlanesOf(*this));
    return 1;
}

int CZHSVP2YUYVTask_601::Run() {
    PlanesToBytes(tq::SelectKernels(kKernels).planesToYuyv601, m_nWidth / 2, m_nHeight,
                  PlanesOf(*this), m_nDstStride, m_pDst);
    return 1;
}

int CZHSVP2YUYVTask_709::Run() {
    PlanesToBytes(tq::SelectKernels(kKernels).planesToYuyv709, m_nWidth / 2, m_nHeight,
                  PlanesOf(*this), m_nDstStride, m_pDst);
    return 1;
}

int CZBGRA2HSV_Task::Run() {
    IPL_BGRA2HSV(m_nWidth, m_nHeight, m_nSrcStride, m_pSrc, m_nHStride, m_pH, m_nSStride, m_pS,
                 m_nVStride, m_pV);
    return 1;
}

int CZHSV2RGBA_Task::Run() {
    if (m_pAlpha != nullptr)
        IPL_HSV2BGRA(m_nWidth, m_nHeight, m_nHStride, m_pH, m_nSStride, m_pS, m_nVStride, m_pV,
                     m_nAlphaStride, m_pAlpha, m_nDstStride, m_pDst);
    else
        IPL_HSV2BGRA(m_nWidth, m_nHeight, m_nHStride, m_pH, m_nSStride, m_pS, m_nVStride, m_pV,
                     m_nDstStride, m_pDst);
    return 1;
}

void IPL_BGRA2HSV_MultiThread(int width, int height, int srcStride, unsigned char* src, int hStride,
                              float* h, int sStride, float* s, int vStride, float* v) {
    const HsvPlanes planes = {hStride, h, sStride, s, vStride, v};
    if (src == nullptr || planes.HasNull()) return;
    if (tq::RunsPlain(tq::kBandFormA)) {
        IPL_BGRA2HSV(width, height, srcStride, src, hStride, h, sStride, s, vStride, v);
        return;
    }
    RunFromBytes<CZBGRA2HSV_Task>(tq::kBandFormA, width, height, srcStride, src, planes);
}

void IPL_HSV2BGRA_MultiThread(int width, int height, int hStride, float* h, int sStride, float* s,
                              int vStride, float* v, int alphaStride, float* alpha, int dstStride,
                              unsigned char* dst) {
    const HsvPlanes planes = {hStride, h, sStride, s, vStride, v};
    if (planes.HasNull() || alpha == nullptr || dst == nullptr) return;
    if (tq::RunsPlain(tq::kBandFormA)) {
        IPL_HSV2BGRA(width, height, hStride, h, sStride, s, vStride, v, alphaStride, alpha,
                     dstStride, dst);
        return;
    }
    RunPlanesToBytes<CZHSV2RGBA_Task>(tq::kBandFormA, width, height, planes, dstStride, dst,
                                      [&](CZHSV2RGBA_Task& task, bool hasNext) {
                                          task.m_nAlphaStride = alphaStride;
                                          task.m_pAlpha = alpha;
                                          if (hasNext)
                                              alpha =
                                                  tq::AfterRows(alpha, task.m_nHeight, alphaStride);
                                      });
}

void IPL_HSV2BGRA_MultiThread(int width, int height, int hStride, float* h, int sStride, float* s,
                              int vStride, float* v, int dstStride, unsigned char* dst) {
    const HsvPlanes planes = {hStride, h, sStride, s, vStride, v};
    if (planes.HasNull() || dst == nullptr) return;
    if (tq::RunsPlain(tq::kBandFormA)) {
        IPL_HSV2BGRA(width, height, hStride, h, sStride, s, vStride, v, dstStride, dst);
        return;
    }
    RunPlanesToBytes<CZHSV2RGBA_Task>(tq::kBandFormA, width, height, planes, dstStride, dst,
                                      [](CZHSV2RGBA_Task&, bool) {});
}

void IPL_YUYV2HSV_601_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                  int dstStride, float* dst) {
    tq::RunPixelBands<CZYUYV2HSVTask_601>(tq::kBandFormC, IPL_YUYV2HSV_601, width, height,
                                          srcStride, src, dstStride, dst);
}

void IPL_YUYV2HSV_709_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                  int dstStride, float* dst) {
    tq::RunPixelBands<CZYUYV2HSVTask_709>(tq::kBandFormC, IPL_YUYV2HSV_709, width, height,
                                          srcStride, src, dstStride, dst);
}

void IPL_YUYV2HSVP_601_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                   float* planes) {
    RunFromBytes<CZYUYV2HSVPTask_601>(tq::kBandFormC, width, height, srcStride, src,
                                      PlanesAt(planes, width, height));
}

void IPL_YUYV2HSVP_709_MultiThread(int width, int height, int srcStride, unsigned char* src,
                                   float* planes) {
    RunFromBytes<CZYUYV2HSVPTask_709>(tq::kBandFormC, width, height, srcStride, src,
                                      PlanesAt(planes, width, height));
}

void IPL_HSV2YUYV_601_MultiThread(int width, int height, int srcStride, float* src, int dstStride,
                                  unsigned char* dst) {
    RunImageToBytes<CZHSV2YUYVTask_601>(width, height, srcStride, src, dstStride, dst);
}

void IPL_HSV2YUYV_709_MultiThread(int width, int height, int srcStride, float* src, int dstStride,
                                  unsigned char* dst) {
    RunImageToBytes<CZHSV2YUYVTask_709>(width, height, srcStride, src, dstStride, dst);
}

void IPL_HSVP2YUYV_601_MultiThread(int width, int height, float* planes, int dstStride,
                                   unsigned char* dst) {
    RunPlanesToYuyv<CZHSVP2YUYVTask_601>(width, height, planes, dstStride, dst);
}

void IPL_HSVP2YUYV_709_MultiThread(int width, int height, float* planes, int dstStride,
                                   unsigned char* dst) {
    RunPlanesToYuyv<CZHSVP2YUYVTask_709>(width, height, planes, dstStride, dst);
}
