// Filters, the deinterlacer and the PSNR. The radius stands behind the name.

#include <tqipl/filter.h>

#include <cstring>
#include <string>
#include <type_traits>

#include "bench/families.h"
#include "bench/support/frame_form.h"
#include "bench/support/on_bytes.h"
#include "reference/bilateral_reference.h"
#include "reference/deinterlace_reference.h"
#include "reference/psnr_reference.h"
#include "reference/smooth_reference.h"

namespace tqbench {

namespace {

using tqref::Bytes;

constexpr int kSigma = 30;
constexpr Size kSmall = kSizes[1];  // of what the references take long for

std::string WithRadius(const char* name, int radius) {
    return name + std::string(":r") + std::to_string(radius);
}

// Forms and references with the same arguments behind those of the images.
template <class... Parameters>
void Add(const std::string& name, Size size,
         void (*form)(int, int, int, unsigned char*, int, unsigned char*, Parameters...),
         void (*reference)(int, int, int, Bytes&, int, Bytes&, Parameters...),
         std::type_identity_t<Parameters>... parameters) {
    const int w = size.width, h = size.height;
    AddFrameForm(
        name, "", size, size.Pixels(), size.Pixels(),
        [=](uint8_t* src, uint8_t* dst) { form(w, h, w, src, w, dst, parameters...); }, {},
        OnBytes([=](Bytes& src, Bytes& dst) { reference(w, h, w, src, w, dst, parameters...); }));
}

// The rows that are not defined are cleared, by the form and by the reference.
void AddBilateralThreads(Size size, int radius) {
    const int w = size.width, h = size.height;
    const int64_t defined = int64_t{w} * tqref::DefinedRows(h, radius);
    AddFrameForm(
        "", WithRadius("IPL_BilteralExMutiThread_8u_C1R", radius), size, size.Pixels(),
        size.Pixels(),
        [=](uint8_t* src, uint8_t* dst) {
            IPL_BilteralExMutiThread_8u_C1R(w, h, w, src, w, dst, radius, kSigma);
            std::memset(dst + defined, 0, static_cast<size_t>(size.Pixels() - defined));
        },
        [=](uint8_t* src, uint8_t* dst) {
            IPL_BilteralExMutiThread_8u_C1R(w, h, w, src, w, dst, radius, kSigma);
            std::memset(dst + defined, 0, static_cast<size_t>(size.Pixels() - defined));
        },
        OnBytes([=](Bytes& src, Bytes& dst) {
            tqref::BilateralExMultiThread(w, h, w, src, w, dst, radius, kSigma, 0);
        }));
}

void AddDeinterlace(Size size) {
    const int w = size.width, fieldRows = size.height / 2;
    const int64_t fieldBytes = int64_t{w} * fieldRows;
    AddFrameForm(
        "IPL_Deinterlace_8u_C1R", "", size, 2 * fieldBytes, 4 * fieldBytes,
        [=](uint8_t* src, uint8_t* dst) {
            IPL_Deinterlace_8u_C1R(w, fieldRows, w, src, w, src + fieldBytes, w, dst, w,
                                   dst + 2 * fieldBytes);
        },
        {},
        [=](uint8_t* src, uint8_t* dst) {
            Bytes field0(src), field1(src + fieldBytes), frame0(dst), frame1(dst + 2 * fieldBytes);
            tqref::Deinterlace(w, fieldRows, w, field0, w, field1, w, frame0, w, frame1);
        });
}

// The results go to dst.
void AddPsnr(Size size) {
    const int w = size.width, h = size.height;
    AddFrameForm(
        "IPL_GetPSNR_8u_C1R", "", size, 2 * size.Pixels(), sizeof(float),
        [=](uint8_t* src, uint8_t* dst) {
            const float psnr = IPL_GetPSNR_8u_C1R(w, h, w, src, w, src + size.Pixels());
            std::memcpy(dst, &psnr, sizeof psnr);
        },
        {},
        [=](uint8_t* src, uint8_t* dst) {
            Bytes first(src), second(src + size.Pixels());
            const float psnr = tqref::Psnr(w, h, w, first, w, second);
            std::memcpy(dst, &psnr, sizeof psnr);
        });
    AddFrameForm(
        "IPL_GetPSNR_YUYV", "", size, 4 * size.Pixels(), sizeof(tqref::YuvPsnr),
        [=](uint8_t* src, uint8_t* dst) {
            tqref::YuvPsnr psnr;
            IPL_GetPSNR_YUYV(w, h, 2 * w, src, 2 * w, src + 2 * size.Pixels(), psnr.y, psnr.u,
                             psnr.v);
            std::memcpy(dst, &psnr, sizeof psnr);
        },
        {},
        [=](uint8_t* src, uint8_t* dst) {
            Bytes first(src), second(src + 2 * size.Pixels());
            const tqref::YuvPsnr psnr = tqref::PsnrYuyv(w, h, 2 * w, first, 2 * w, second);
            std::memcpy(dst, &psnr, sizeof psnr);
        });
}

}  // namespace

void AddFilter() {
    for (const Size size : kSizes) {
        Add(WithRadius("IPL_Bilteral_8u_C1R", 3), size, IPL_Bilteral_8u_C1R, tqref::Bilateral, 3,
            kSigma);
        for (const int radius : {2, 7}) {
            Add(WithRadius("IPL_BilteralEx_8u_C1R", radius), size, IPL_BilteralEx_8u_C1R,
                tqref::BilateralEx, radius, kSigma);
            AddBilateralThreads(size, radius);
        }
        Add("IPL_Gauss3x3_8u_C1R", size, IPL_Gauss3x3_8u_C1R, tqref::Gauss3x3);
        Add(WithRadius("IPL_Gauss_8u_C1R", 2), size, IPL_Gauss_8u_C1R, tqref::Gauss, 2);
        Add(WithRadius("IPL_Average_8u_C1R", 2), size, IPL_Average_8u_C1R, tqref::Average, 2);
        for (const int radius : {1, 2})
            Add(WithRadius("IPL_Median_8u_C1R", radius), size, IPL_Median_8u_C1R, tqref::Median,
                radius);
        Add("IPL_Median3x3_8u_C1R", size, IPL_Median3x3_8u_C1R, tqref::Median3x3);
        AddDeinterlace(size);
        AddPsnr(size);
    }
    Add(WithRadius("IPL_Bilteral_8u_C1R", 7), kSmall, IPL_Bilteral_8u_C1R, tqref::Bilateral, 7,
        kSigma);
    Add(WithRadius("IPL_Gauss_8u_C1R", 7), kSmall, IPL_Gauss_8u_C1R, tqref::Gauss, 7);
    Add(WithRadius("IPL_Average_8u_C1R", 7), kSmall, IPL_Average_8u_C1R, tqref::Average, 7);
    Add(WithRadius("IPL_Median_8u_C1R", 7), kSmall, IPL_Median_8u_C1R, tqref::Median, 7);
}

}  // namespace tqbench
