// Images taken apart into planes and put together again, and changes of the colour matrix.

#include <tqipl/planes.h>

#include <string>

#include "bench/families.h"
#include "bench/support/frame_form.h"
#include "bench/support/plane_arrays.h"
#include "reference/matrix_reference.h"
#include "reference/planes_reference.h"

namespace tqbench {

namespace {

struct Format {
    const char* suffix;
    TQ_COLOR_FORMAT value;
    int pixelBytes;
    int planes;
};

constexpr Format kFormats[] = {
    {":ARGB_3", TQ_COLOR_ARGB, 4, 3}, {":ARGB_4", TQ_COLOR_ARGB, 4, 4},
    {":BGR24", TQ_COLOR_BGR24, 3, 3}, {":AYUV_3", TQ_COLOR_AYUV, 4, 3},
    {":AYUV_4", TQ_COLOR_AYUV, 4, 4}, {":YUYV", TQ_COLOR_YUYV, 2, 3},
    {":UYVY", TQ_COLOR_UYVY, 2, 3},
};

PlaneArrays PlanesOf(const Format& format, uint8_t* block, Size size) {
    const int w = size.width, h = size.height;
    if (format.pixelBytes == 2) return {block, h, {w, w / 2, w / 2}};
    if (format.planes == 3) return {block, h, {w, w, w}};
    return {block, h, {w, w, w, w}};
}

void AddSplitAndBuild(const Format& format, Size size) {
    const int w = size.width, h = size.height, row = w * format.pixelBytes;
    const int64_t packed = int64_t{row} * h;
    const int64_t planar = format.pixelBytes == 2 ? packed : size.Pixels() * format.planes;

    const auto split = [=](auto form) {
        return [=](uint8_t* src, uint8_t* dst) {
            PlaneArrays to = PlanesOf(format, dst, size);
            form(format.value, w, h, row, src, to.strides, to.planes);
        };
    };
    AddFrameForm(std::string("IPL_SplitColor") + format.suffix,
                 std::string("IPL_SplitColorMultiThread") + format.suffix, size, packed, planar,
                 split(IPL_SplitColor), split(IPL_SplitColorMultiThread),
                 [=](uint8_t* src, uint8_t* dst) {
                     const PlaneArrays to = PlanesOf(format, dst, size);
                     tqref::PlanesInBands(tqref::kSplit, 1, format.value, w, h, row, src,
                                          to.strideList, to.offsets, dst);
                 });

    const auto build = [=](auto form) {
        return [=](uint8_t* src, uint8_t* dst) {
            PlaneArrays from = PlanesOf(format, src, size);
            form(format.value, w, h, from.strides, from.planes, row, dst);
        };
    };
    AddFrameForm(std::string("IPL_BuildColor") + format.suffix,
                 std::string("IPL_BuildColorMultiThread") + format.suffix, size, planar, packed,
                 build(IPL_BuildColor), build(IPL_BuildColorMultiThread),
                 [=](uint8_t* src, uint8_t* dst) {
                     const PlaneArrays from = PlanesOf(format, src, size);
                     tqref::PlanesInBands(tqref::kBuild, 1, format.value, w, h, row, dst,
                                          from.strideList, from.offsets, src);
                 });
}

using InPlace = void (*)(TQ_COLOR_FORMAT, int, int, int, unsigned char*);
using Planar = void (*)(int, int, int, unsigned char*, int, unsigned char*, int, unsigned char*);

constexpr Format kMatrixFormats[] = {
    {":AYUV", TQ_COLOR_AYUV, 4, 0},
    {":YUYV", TQ_COLOR_YUYV, 2, 0},
    {":UYVY", TQ_COLOR_UYVY, 2, 0},
};

// In place: what is written is read as well.
void AddMatrix(const std::string& way, const tqref::YuvMatrix& matrix, InPlace plain,
               InPlace multiThread, Planar planarPlain, Planar planarMultiThread, Size size) {
    const int w = size.width, h = size.height;
    for (const Format& format : kMatrixFormats) {
        const int row = w * format.pixelBytes;
        const auto on = [=, &format](InPlace form) {
            return [=, &format](uint8_t*, uint8_t* dst) { form(format.value, w, h, row, dst); };
        };
        AddFrameForm("IPL_YUV" + way + format.suffix,
                     "IPL_YUV" + way + "MultiThread" + format.suffix, size, int64_t{row} * h,
                     int64_t{row} * h, on(plain), on(multiThread),
                     [=, &format, &matrix](uint8_t*, uint8_t* dst) {
                         tqref::ChangeInPlace(matrix, format.value, w, h, row, dst);
                     });
    }
    const auto planar = [=](Planar form) {
        return [=](uint8_t*, uint8_t* dst) {
            uint8_t *u = dst + size.Pixels(), *v = u + size.Pixels() / 2;
            form(w, h, w, dst, w / 2, u, w / 2, v);
        };
    };
    AddFrameForm("IPL_YUVP_422_" + way, "IPL_YUVP_422_" + way + "MultiThread", size,
                 2 * size.Pixels(), 2 * size.Pixels(), planar(planarPlain),
                 planar(planarMultiThread), [=, &matrix](uint8_t*, uint8_t* dst) {
                     uint8_t *u = dst + size.Pixels(), *v = u + size.Pixels() / 2;
                     tqref::ChangePlanes(matrix, w, h, w, dst, w / 2, u, w / 2, v);
                 });
}

using Between = void (*)(int, int, TQ_COLOR_FORMAT, int, unsigned char*, TQ_COLOR_FORMAT, int,
                         unsigned char*);

void AddMatrixBetween(const std::string& way, const tqref::YuvMatrix& matrix, Between form,
                      Size size) {
    const int w = size.width, h = size.height;
    for (const Format& from : kMatrixFormats)
        for (const Format& to : kMatrixFormats) {
            const int srcRow = w * from.pixelBytes, dstRow = w * to.pixelBytes;
            AddFrameForm(
                "IPL_YUV" + way + from.suffix + "_to_" + (to.suffix + 1), "", size,
                int64_t{srcRow} * h, int64_t{dstRow} * h,
                [=, &from, &to](uint8_t* src, uint8_t* dst) {
                    form(w, h, from.value, srcRow, src, to.value, dstRow, dst);
                },
                Call(),
                [=, &from, &to, &matrix](uint8_t* src, uint8_t* dst) {
                    tqref::ChangeBetween(matrix, w, h, from.value, srcRow, src, to.value, dstRow,
                                         dst);
                });
        }
}

}  // namespace

void AddPlanes() {
    for (const Size size : kSizes) {
        for (const Format& format : kFormats) AddSplitAndBuild(format, size);
        AddMatrix("601x709", tqref::k601x709, IPL_YUV601x709, IPL_YUV601x709MultiThread,
                  IPL_YUVP_422_601x709, IPL_YUVP_422_601x709MultiThread, size);
        AddMatrix("709x601", tqref::k709x601, IPL_YUV709x601, IPL_YUV709x601MultiThread,
                  IPL_YUVP_422_709x601, IPL_YUVP_422_709x601MultiThread, size);
        AddMatrix("2020x709", tqref::k2020x709, IPL_YUV2020x709, IPL_YUV2020x709MultiThread,
                  IPL_YUVP_422_2020x709, IPL_YUVP_422_2020x709MultiThread, size);
        AddMatrix("709x2020", tqref::k709x2020, IPL_YUV709x2020, IPL_YUV709x2020MultiThread,
                  IPL_YUVP_422_709x2020, IPL_YUVP_422_709x2020MultiThread, size);
        AddMatrixBetween("601x709", tqref::k601x709, IPL_YUV601x709, size);
        AddMatrixBetween("709x601", tqref::k709x601, IPL_YUV709x601, size);
    }
}

}  // namespace tqbench
