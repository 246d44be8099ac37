// Split and build of colour planes, changes of the colour matrix.

#include <tqipl/planes.h>
#include <tqipl/types.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "fuzz_check.h"
#include "reference/matrix_reference.h"
#include "reference/planes_reference.h"

namespace {

using tqfuzz::Image;
using tqfuzz::Input;
using tqfuzz::Stage;

constexpr TQ_COLOR_FORMAT kFormats[] = {TQ_COLOR_ARGB,     TQ_COLOR_BGR24, TQ_COLOR_AYUV,
                                        TQ_COLOR_YUYV,     TQ_COLOR_UYVY,  TQ_COLOR_GRAY8,
                                        TQ_COLOR_FORMAT(0)};

// Planes in memory of their own, one behind the other in the reference's eyes.
struct SeparatePlanes {
    static constexpr int64_t kApart = int64_t{1} << 32;
    const std::vector<Image*>& planes;
    uint8_t& operator[](int64_t offset) {
        const int64_t plane = (offset + kApart / 2) / kApart;
        return planes[plane]->ModelBytes()[offset - plane * kApart];
    }
};

void CheckPlanes(Input& input, tqref::PlaneWork work) {
    const TQ_COLOR_FORMAT format = input.Pick(kFormats);
    const int width = input.Int(-2, 70), height = input.Int(-2, 24);
    const int strideCount = input.Int(1, 5);
    const bool alpha = strideCount == 4 && (format == TQ_COLOR_ARGB || format == TQ_COLOR_AYUV);
    // A plane that serves for several is only read.
    const int planeCount = work == tqref::kSplit ? (alpha ? 4 : 3) : input.Int(1, 4);
    const int pixel = format == TQ_COLOR_BGR24 ? 3 : format < TQ_COLOR_YUYV ? 4 : 2;
    Stage stage(input);
    Image& image = stage.Add(pixel * width, height, {.slack = 0});
    std::vector<Image*> planes;
    std::vector<int> strides;
    for (int i = 0; i < planeCount; ++i)
        planes.push_back(&stage.Add(width, height, {.slack = 4096}));
    for (int i = 0; i < strideCount; ++i)
        strides.push_back(planes[std::min(i, planeCount - 1)]->Stride());
    const auto call = [&](auto split, auto build) {
        CTQArray<int, int> strideArray;
        CTQArray<unsigned char*, unsigned char*> planeArray;
        for (int stride : strides) strideArray.Add(stride);
        for (Image* plane : planes) planeArray.Add(plane->Data());
        if (work == tqref::kSplit)
            split(format, width, height, image.Stride(), image.Data(), strideArray, planeArray);
        else
            build(format, width, height, strideArray, planeArray, image.Stride(), image.Data());
        tqfuzz::Require(strideArray.GetSize() == strideCount &&
                            std::equal(strides.begin(), strides.end(), strideArray.m_pData) &&
                            planeArray.GetSize() == planeCount,
                        "a caller's array has changed");
    };
    const auto expect = [&](unsigned processors) {
        stage.Expect([&] {
            SeparatePlanes memory{planes};
            std::vector<int64_t> places;
            for (int i = 0; i < planeCount; ++i) places.push_back(i * SeparatePlanes::kApart);
            tqref::PlanesInBands(work, processors, format, width, height, image.Stride(),
                                 image.ModelBytes(), strides, places, memory);
        });
    };
    expect(1);
    stage.Check("IPL_SplitColor or IPL_BuildColor", width, height,
                [&] { call(IPL_SplitColor, IPL_BuildColor); });
    expect(g_IPLProcessorCount);
    stage.Check("IPL_SplitColorMultiThread or IPL_BuildColorMultiThread", width, height,
                [&] { call(IPL_SplitColorMultiThread, IPL_BuildColorMultiThread); });
}

using InPlace = void (*)(TQ_COLOR_FORMAT, int, int, int, unsigned char*);
using Planar = void (*)(int, int, int, unsigned char*, int, unsigned char*, int, unsigned char*);
using Between = void (*)(int, int, TQ_COLOR_FORMAT, int, unsigned char*, TQ_COLOR_FORMAT, int,
                         unsigned char*);
struct Change {
    const tqref::YuvMatrix* matrix;
    InPlace inPlace, inPlaceMultiThread;
    Planar planar, planarMultiThread;
    Between between;  // or null
};
constexpr Change kChanges[] = {
    {&tqref::k601x709, IPL_YUV601x709, IPL_YUV601x709MultiThread, IPL_YUVP_422_601x709,
     IPL_YUVP_422_601x709MultiThread, IPL_YUV601x709},
    {&tqref::k709x601, IPL_YUV709x601, IPL_YUV709x601MultiThread, IPL_YUVP_422_709x601,
     IPL_YUVP_422_709x601MultiThread, IPL_YUV709x601},
    {&tqref::k2020x709, IPL_YUV2020x709, IPL_YUV2020x709MultiThread, IPL_YUVP_422_2020x709,
     IPL_YUVP_422_2020x709MultiThread, nullptr},
    {&tqref::k709x2020, IPL_YUV709x2020, IPL_YUV709x2020MultiThread, IPL_YUVP_422_709x2020,
     IPL_YUVP_422_709x2020MultiThread, nullptr}};

int RowBytes(TQ_COLOR_FORMAT format, int width) {
    return (format == TQ_COLOR_YUYV || format == TQ_COLOR_UYVY ? 2 : 4) * width;
}

void CheckInPlace(Input& input, const Change& change) {
    const TQ_COLOR_FORMAT format = input.Pick(kFormats);
    const int width = input.Int(-2, 70), height = input.Int(-2, 24);
    Stage stage(input);
    Image& image = stage.Add(RowBytes(format, width), height, {.slack = 0});
    stage.Expect([&] {
        tqref::ChangeInPlace(*change.matrix, format, width, height, image.Stride(),
                             image.ModelBytes());
    });
    for (InPlace form : {change.inPlace, change.inPlaceMultiThread})
        stage.Check("a change of the matrix in place", width, height,
                    [&] { form(format, width, height, image.Stride(), image.Data()); });
}

void CheckBetween(Input& input, const Change& change) {
    if (change.between == nullptr) return;
    const TQ_COLOR_FORMAT from = input.Pick(kFormats), to = input.Pick(kFormats);
    const int width = input.Int(-2, 70), height = input.Int(-2, 24);
    Stage stage(input);
    Image& src = stage.Add(RowBytes(from, width), height, {.slack = 0});
    Image& dst = stage.Add(RowBytes(to, width), height, {.slack = 0});
    stage.Expect([&] {
        tqref::ChangeBetween(*change.matrix, width, height, from, src.Stride(), src.ModelBytes(),
                             to, dst.Stride(), dst.ModelBytes());
    });
    stage.Check("a change of the matrix between images", width, height, [&] {
        change.between(width, height, from, src.Stride(), src.Data(), to, dst.Stride(), dst.Data());
    });
}

void CheckPlanar(Input& input, const Change& change) {
    const int width = input.Int(-2, 70), height = input.Int(-2, 24);
    Stage stage(input);
    Image& y = stage.Add(width, height, {.slack = 0});
    Image& u = stage.Add(width / 2, height, {.slack = 0});
    Image& v = stage.Add(width / 2, height, {.slack = 0});
    stage.Expect([&] {
        tqref::ChangePlanes(*change.matrix, width, height, y.Stride(), y.ModelBytes(), u.Stride(),
                            u.ModelBytes(), v.Stride(), v.ModelBytes());
    });
    for (Planar form : {change.planar, change.planarMultiThread})
        stage.Check("a change of the matrix of planes", width, height, [&] {
            form(width, height, y.Stride(), y.Data(), u.Stride(), u.Data(), v.Stride(), v.Data());
        });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    tqfuzz::UseMachine(input);
    switch (input.Byte() % 5) {
        case 0:
            CheckPlanes(input, tqref::kSplit);
            break;
        case 1:
            CheckPlanes(input, tqref::kBuild);
            break;
        case 2:
            CheckInPlace(input, input.Pick(kChanges));
            break;
        case 3:
            CheckBetween(input, input.Pick(kChanges));
            break;
        default:
            CheckPlanar(input, input.Pick(kChanges));
    }
    return 0;
}
