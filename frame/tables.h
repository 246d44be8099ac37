#pragma once

// Tables that are filled once at load and only read afterwards. Tables by a signed difference are
// reached from their middle row: IPL_TabHueMid[kTableCentre + d][x].

inline constexpr int kTableCentre = 255;

// Matrices between 601, 709 and 2020 in 4096ths: rows for Y, U, V of factors for Y, U, V.
extern const int IPL_MatrixYUV709x601[3][3];
extern const int IPL_MatrixYUV601x709[3][3];
extern const int IPL_MatrixYUV2020x709[3][3];
extern const int IPL_MatrixYUV709x2020[3][3];

// Hue of a colour whose largest channel is green (and, plus 85, blue), or red: by the difference d
// of the two other channels and the spread x between largest and smallest. Column 0 is not used.
extern int IPL_TabHueMid[511][256];
extern int IPL_TabHueWrap[511][256];

// Saturation by the spread m and the largest channel x. Row and column 0 are not used.
extern int IPL_TabSaturation[256][256];

// Value times (1 - saturation), by value and saturation.
extern int IPL_TabValueP[256][256];

// Factors, in 1024ths, of a falling and a rising channel, by saturation and hue. On the heap: the
// module frees them when it is unloaded.
extern int (*IPL_TabValueQ)[256];
extern int (*IPL_TabValueT)[256];

// 1 / (1 + |d| / 100), by kTableCentre + d.
extern float IPL_TabSoftWeight[511];

// Five taps of the six-tap kernel at 256 positions between two samples, in 1024ths.
extern int IPL_TabFiveTap[256][5];

// exp(-(j + 0.5) / 131072) and exp(-k / 64), each rounded to single precision once.
extern float IPL_ExpFine[2048];
extern float IPL_ExpCoarse[4097];

namespace tq {

void FillTables();
void FreeHeapTables();

}  // namespace tq
