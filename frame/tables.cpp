// The tables filled at load. All in single precision, in exactly this order: the results are
// truncated, and another order would change entries.

#include "frame/tables.h"

#include <cmath>

#include "frame/exact_math.h"

const int IPL_MatrixYUV709x601[3][3] = {{4096, 417, 804}, {4, 4053, -453}, {0, -292, 4028}};
const int IPL_MatrixYUV601x709[3][3] = {{4096, -484, -872}, {-4, 4173, 470}, {0, 303, 4198}};
const int IPL_MatrixYUV2020x709[3][3] = {{4096, 72, -380}, {0, 4112, 208}, {0, -46, 4082}};
// V has no part in the new luma or U: not the inverse of the matrix above, and kept so.
const int IPL_MatrixYUV709x2020[3][3] = {{4096, -68, 0}, {0, 4076, 0}, {0, 46, 4096}};

int IPL_TabHueMid[511][256];
int IPL_TabHueWrap[511][256];
int IPL_TabSaturation[256][256];
int IPL_TabValueP[256][256];
int (*IPL_TabValueQ)[256];
int (*IPL_TabValueT)[256];
float IPL_TabSoftWeight[511];
int IPL_TabFiveTap[256][5];
float IPL_ExpFine[2048];
float IPL_ExpCoarse[4097];

namespace tq {

namespace {

constexpr float kSixthOfCircle = 43520.0f;  // 42.5 in 1024ths: the circle is 255 long
constexpr float kWholeCircle = 261120.0f;   // 255 in 1024ths
constexpr float kHalf = 512.0f;

void FillHueTables() {
    for (int d = -255; d <= 255; ++d)
        for (int x = 1; x < 256; ++x) {
            const float hue = (static_cast<float>(d) * kSixthOfCircle) / static_cast<float>(x);
            IPL_TabHueMid[kTableCentre + d][x] = (TruncateToInt32(hue + kHalf) >> 10) + 85;
        }
    for (int d = -255; d <= 255; ++d)
        for (int x = 1; x < 256; ++x) {
            float hue = (static_cast<float>(d) * kSixthOfCircle) / static_cast<float>(x);
            if (d < 0) hue = hue + kWholeCircle;
            IPL_TabHueWrap[kTableCentre + d][x] = TruncateToInt32(hue + kHalf) >> 10;
        }
}

void FillSaturationTable() {
    for (int m = 1; m < 256; ++m)
        for (int x = 1; x < 256; ++x)
            IPL_TabSaturation[m][x] =
                TruncateToInt32(static_cast<float>(m * 261120) / static_cast<float>(x) + kHalf) >>
                10;
}

void FillValueTables() {
    for (int v = 0; v < 256; ++v)
        for (int c = 0; c < 256; ++c) {
            const float rest = 1024.0f - (static_cast<float>(c) / 255.0f) * 1024.0f;
            IPL_TabValueP[v][c] = TruncateToInt32(rest * static_cast<float>(v) + kHalf) >> 10;
        }
    if (IPL_TabValueQ == nullptr) IPL_TabValueQ = new int[256][256];
    if (IPL_TabValueT == nullptr) IPL_TabValueT = new int[256][256];
    for (int s = 0; s < 256; ++s)
        for (int h = 0; h < 256; ++h) {
            const float saturation = static_cast<float>(s) / 255.0f;
            const float sector = static_cast<float>(h) / 42.5f;
            // The end of the circle is the end of its last sector, not the start of a seventh.
            const float f = h == 255 ? 1.0f : sector - static_cast<float>(TruncateToInt32(sector));
            IPL_TabValueQ[s][h] = TruncateToInt32((1.0f - saturation * f) * 1024.0f + 0.5f);
            IPL_TabValueT[s][h] =
                TruncateToInt32((1.0f - (1.0f - f) * saturation) * 1024.0f + 0.5f);
        }
}

void FillSoftWeights() {
    IPL_TabSoftWeight[kTableCentre] = 1.0f;
    for (int i = 1; i < 256; ++i)
        IPL_TabSoftWeight[kTableCentre + i] = IPL_TabSoftWeight[kTableCentre - i] =
            static_cast<float>(1.0 / (i * 0.01 + 1.0));
}

// The six-tap cubic kernel at t >= 0.
float IPL_SixCubicKernel(float t) {
    if (t < 1.0f) return (5.0f - (t * 11.0f) * t + ((t * 6.0f) * t) * t) * 0.2f;
    if (t < 2.0f) return (14.0f - t * 27.0f + (t * 16.0f) * t - ((t * 3.0f) * t) * t) * 0.2f;
    if (t < 3.0f) return (t * 21.0f - 18.0f - (t * 8.0f) * t + (t * t) * t) * 0.2f;
    return 0.0f;
}

// Each row sums to 1024: the tap nearest to the sample takes what truncation leaves.
void FillFiveTaps() {
    for (int r = 0; r < 256; ++r) {
        const float t = static_cast<float>(2 * r + 1) * 0.001953125f;
        const float a = IPL_SixCubicKernel(t + 2.0f), b = IPL_SixCubicKernel(t + 1.0f);
        const float c = IPL_SixCubicKernel(t), d = IPL_SixCubicKernel(1.0f - t);
        const float e = IPL_SixCubicKernel(2.0f - t);
        const float sum = a + 0.0f + b + c + d + e;
        const auto tap = [sum](float weight) { return TruncateToInt32((weight / sum) * 1024.0f); };
        int* row = IPL_TabFiveTap[r];
        row[0] = tap(a);
        row[1] = tap(b);
        row[4] = tap(e);
        if (t <= 0.5f) {
            row[3] = tap(d);
            row[2] = 1024 - row[4] - row[3] - row[1] - row[0];
        } else {
            row[2] = tap(c);
            row[3] = 1024 - row[2] - row[4] - row[1] - row[0];
        }
    }
}

// These are narrowed from double precision: a last bit moves bytes of flat areas.
void FillExponentials() {
    for (int j = 0; j < 2048; ++j)
        IPL_ExpFine[j] = static_cast<float>(std::exp(-(j + 0.5) / 131072.0));
    for (int k = 0; k <= 4096; ++k) IPL_ExpCoarse[k] = static_cast<float>(std::exp(-k / 64.0));
}

}  // namespace

void FillTables() {
    FillHueTables();
    FillSaturationTable();
    FillValueTables();
    FillSoftWeights();
    FillFiveTaps();
    FillExponentials();
}

void FreeHeapTables() {
    delete[] IPL_TabValueQ;
    delete[] IPL_TabValueT;
}

}  // namespace tq
