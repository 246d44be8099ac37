#pragma once

// What the tests of V210 and V216 share: every form with its task and its reference, calls of one
// row, and groups and pairs with known values. A name without 216 is of V210.

#include <tqipl/deep.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "color/v210_v216_tasks.h"
#include "reference/v210_v216_reference.h"
#include "support/deep_plane_forms.h"
#include "support/pixel_forms.h"

namespace tqtest {

using Bytes = std::vector<uint8_t>;
using ByteForm = PixelForm<uint8_t>;
using LumForm = PixelForm<int>;

// The two forms without a MultiThread form and a task stand for them themselves.
inline int RunUyvy(int width, int height, int srcStride, uint8_t* src, int dstStride,
                   uint8_t* dst) {
    IPL_V210_To_UYVY(width, height, srcStride, src, dstStride, dst);
    return 1;
}
inline int RunYuyv(int width, int height, int srcStride, uint8_t* src, int dstStride,
                   uint8_t* dst) {
    IPL_V210_To_YUYV(width, height, srcStride, src, dstStride, dst);
    return 1;
}

inline constexpr ByteForm kToUyvy = {
    "IPL_V210_To_UYVY", IPL_V210_To_UYVY, IPL_V210_To_UYVY, RunUyvy, tqref::V210ToUyvy, 6, 16, 12};
inline constexpr ByteForm kToYuyv = {
    "IPL_V210_To_YUYV", IPL_V210_To_YUYV, IPL_V210_To_YUYV, RunYuyv, tqref::V210ToYuyv, 6, 16, 12};
inline constexpr ByteForm kToBgra601 = {"IPL_V210_To_BGRA_601",
                                        IPL_V210_To_BGRA_601,
                                        IPL_V210_To_BGRA_601MultiThread,
                                        RunTaskInMode<CZV210toBGRA_Task, 0>,
                                        tqref::V210ToBgra601,
                                        6,
                                        16,
                                        24};
inline constexpr ByteForm kToBgra709 = {"IPL_V210_To_BGRA_709",
                                        IPL_V210_To_BGRA_709,
                                        IPL_V210_To_BGRA_709MultiThread,
                                        RunTaskInMode<CZV210toBGRA_Task, 1>,
                                        tqref::V210ToBgra709,
                                        6,
                                        16,
                                        24};
inline constexpr ByteForm k216ToBgra601 = {"IPL_V216_To_BGRA_601",
                                           IPL_V216_To_BGRA_601,
                                           IPL_V216_To_BGRA_601MultiThread,
                                           RunTaskInMode<CZV216toBGRA_Task, 0>,
                                           tqref::V216ToBgra601,
                                           2,
                                           8,
                                           8};
inline constexpr ByteForm k216ToBgra709 = {"IPL_V216_To_BGRA_709",
                                           IPL_V216_To_BGRA_709,
                                           IPL_V216_To_BGRA_709MultiThread,
                                           RunTaskInMode<CZV216toBGRA_Task, 1>,
                                           tqref::V216ToBgra709,
                                           2,
                                           8,
                                           8};
inline constexpr LumForm kToLum = {"IPL_V210_To_Lum32",
                                   IPL_V210_To_Lum32,
                                   IPL_V210_To_Lum32MultiThread,
                                   RunTask<CZV210toLum32_Task>,
                                   tqref::V210ToLum32,
                                   6,
                                   16,
                                   6};
// Pixels, not pairs.
inline constexpr LumForm k216ToLum = {"IPL_V216_To_Lum32",
                                      IPL_V216_To_Lum32,
                                      IPL_V216_To_Lum32MultiThread,
                                      RunTask<CZV216toLum32_Task>,
                                      tqref::V216ToLum32,
                                      1,
                                      4,
                                      1};
inline constexpr const ByteForm* kByteForms[] = {&kToUyvy,    &kToYuyv,       &kToBgra601,
                                                 &kToBgra709, &k216ToBgra601, &k216ToBgra709};
inline constexpr const LumForm* kLumForms[] = {&kToLum, &k216ToLum};
inline constexpr const ByteForm* kThreadedByteForms[] = {&kToBgra601, &kToBgra709, &k216ToBgra601,
                                                         &k216ToBgra709};

inline constexpr DeepPlaneForm kToYuvp = {"IPL_V210_To_YUVP216",
                                          IPL_V210_To_YUVP216,
                                          IPL_V210_To_YUVP216MultiThread,
                                          RunTaskWithPlanes<CZV210toYUVP216_Task>,
                                          ReferenceToPlanes<tqref::V210ToYuvp216>,
                                          true,
                                          6,
                                          {16, 12, 6, 6}};
inline constexpr DeepPlaneForm kFromYuvp = {"IPL_YUVP216_To_V210",
                                            FromPlanes<IPL_YUVP216_To_V210>,
                                            FromPlanes<IPL_YUVP216_To_V210MultiThread>,
                                            RunTaskWithPlanes<CZYUVP216toV210_Task>,
                                            ReferenceFromPlanes<tqref::Yuvp216ToV210>,
                                            false,
                                            6,
                                            {16, 12, 6, 6}};
inline constexpr DeepPlaneForm k216ToYuvp = {"IPL_V216_To_YUVP216",
                                             IPL_V216_To_YUVP216,
                                             IPL_V216_To_YUVP216MultiThread,
                                             RunTaskWithPlanes<CZV216toYUVP216_Task>,
                                             ReferenceToPlanes<tqref::V216ToYuvp216>,
                                             true,
                                             2,
                                             {8, 4, 2, 2}};
inline constexpr DeepPlaneForm k216FromYuvp = {"IPL_YUVP216_To_V216",
                                               FromPlanes<IPL_YUVP216_To_V216>,
                                               FromPlanes<IPL_YUVP216_To_V216MultiThread>,
                                               RunTaskWithPlanes<CZYUVP216toV216_Task>,
                                               ReferenceFromPlanes<tqref::Yuvp216ToV216>,
                                               false,
                                               2,
                                               {8, 4, 2, 2}};
inline constexpr const DeepPlaneForm* kPlaneForms[] = {&kToYuvp, &kFromYuvp, &k216ToYuvp,
                                                       &k216FromYuvp};

// The whole groups of `src` in one row by a form without planes.
template <class Dst>
std::vector<Dst> Convert(const PixelForm<Dst>& form, Bytes src, Dst ground = 0x6E) {
    const int width = static_cast<int>(src.size()) / form.srcGroup * form.groupPixels;
    std::vector<Dst> dst(form.DstRow(width), ground);
    form.plain(width, 1, 0, src.data(), 0, dst.data());
    return dst;
}

struct Yuvp {
    Bytes y, u, v;
    bool operator==(const Yuvp&) const = default;
};
inline Yuvp ToYuvp(const DeepPlaneForm& form, Bytes src) {
    const int width = static_cast<int>(src.size()) / form.groupBytes[0] * form.groupPixels;
    Yuvp dst = {Bytes(2 * width, 0x6E), Bytes(width, 0x6E), Bytes(width, 0x6E)};
    PlaneArrays arrays({0, 0, 0}, {dst.y.data(), dst.u.data(), dst.v.data()});
    form.plain(width, 1, 0, src.data(), arrays.strides, arrays.planes);
    return dst;
}
inline Bytes FromYuvp(const DeepPlaneForm& form, Yuvp src) {
    const int width = static_cast<int>(src.y.size()) / 2;
    Bytes dst(static_cast<size_t>(width / form.groupPixels) * form.groupBytes[0], 0x6E);
    PlaneArrays arrays({0, 0, 0}, {src.y.data(), src.u.data(), src.v.data()});
    form.plain(width, 1, 0, dst.data(), arrays.strides, arrays.planes);
    return dst;
}

// Twelve fields, no two alike, as ten bits; in parentheses the upper eight:
//   U0 041 (10)  Y0 082 (20)  V0 0C3 (30)     Y1 104 (41)  U1 149 (52)  Y2 18E (63)
//   V1 1D3 (74)  Y3 214 (85)  U2 259 (96)     Y4 29E (A7)  V2 2E3 (B8)  Y5 324 (C9)
inline const std::vector<uint32_t> kWords = {0x0C320841, 0x18E52504, 0x259851D3, 0x324B8E9E};
// The same bytes in rising address order.
inline const Bytes kGroup = {0x41, 0x08, 0x32, 0x0C, 0x04, 0x25, 0xE5, 0x18,
                             0xD3, 0x51, 0x98, 0x25, 0x9E, 0x8E, 0x4B, 0x32};

// A pair of pixels in 8-bit samples.
struct Pair8 {
    uint32_t y0, y1, u, v;
};

inline constexpr Pair8 kPairs[3] = {{100, 50, 138, 118}, {16, 235, 128, 128}, {234, 20, 128, 128}};
// Luma 97.8 and 39.6; blue 20.17, red -15.96, green 4.21, in 709 21.13, -17.93 and 3.20. Black and
// white; 218 and 4 steps: 253.84 and 4.66.
inline const Bytes kPairs601 = {118, 102, 82,  255, 60,  44,  24,  255, 0, 0, 0, 255,
                                255, 255, 255, 255, 254, 254, 254, 255, 5, 5, 5, 255};
inline const Bytes kPairs709 = {119, 101, 80,  255, 61,  43,  22,  255, 0, 0, 0, 255,
                                255, 255, 255, 255, 254, 254, 254, 255, 5, 5, 5, 255};

// All values of each of the `samples` that make a group, the others at random, and then noise.
inline void EverySample(int samples, int groups, const std::vector<uint8_t*>& places) {
    for (int i = 0; i < groups; ++i)
        for (int sample = 0; sample < samples; ++sample) {
            const int value = i >> 16 == sample ? i : static_cast<int>(Noise(i * samples + sample));
            tqref::PutSample16(places[sample] + int64_t{i} * 2, value & 0xFFFF);
        }
}

// Groups of `samples` samples in a row, from planes of one sample each.
inline Bytes Interleaved(int samples, int groups) {
    std::vector<Bytes> parts(samples, Bytes(2 * groups));
    std::vector<uint8_t*> places;
    for (Bytes& part : parts) places.push_back(part.data());
    EverySample(samples, groups, places);
    Bytes all(static_cast<size_t>(2) * groups * samples);
    for (int i = 0; i < groups; ++i)
        for (int sample = 0; sample < samples; ++sample)
            std::memcpy(all.data() + 2 * (int64_t{i} * samples + sample), places[sample] + 2 * i,
                        2);
    return all;
}

// All 2^24 triples of 8-bit samples: V is the row, U and Y0 the place in it, and Y1 goes through
// all values in another order. The bits below are noise.
inline constexpr int kTriplePairs = 1 << 16;
inline Pair8 TripleOf(int i, int v) {
    return {static_cast<uint32_t>(i & 255), static_cast<uint32_t>(i * 167 + 91) & 255,
            static_cast<uint32_t>(i >> 8 & 255), static_cast<uint32_t>(v)};
}

}  // namespace tqtest
