// The corrected zooms at a single pixel: a 4 x 4 picture, of whose only cell one place is asked
// for, through the kernels that whole rows go through.

#include "zoom/correct.h"

#include <cstddef>
#include <cstdint>

#include "frame/tables.h"
#include "zoom/correct_kernels.h"

namespace tq {

namespace {

constexpr const CorrectKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(correctKernels);
constexpr const float* kSoftWeights = IPL_TabSoftWeight + kTableCentre;

// Room for what belongs to one column.
constexpr ptrdiff_t kRoom = 1 + kCorrectPadding;

struct Row {
    float position[kRoom] = {}, behind[kRoom] = {}, before[kRoom] = {}, fraction[kRoom] = {};
    CorrectRow Pointers() { return {position, behind, before, fraction}; }
};

uint16_t Pair(const unsigned char* row) { return static_cast<uint16_t>(row[1] | row[2] << 8); }

}  // namespace

void IPL_CorrectWeights(const unsigned char* row0, const unsigned char* row1,
                        const unsigned char* row2, const unsigned char* row3, float fx, float fy,
                        float* outX, float* outY) {
    constexpr ptrdiff_t kColumns = 4;
    constexpr int32_t kCell = 1;
    constexpr ptrdiff_t kSourceRoom = kColumns + kCorrectPadding;
    const CorrectKernels& kernels = SelectKernels(kKernels);

    int32_t half[kRoom];
    float fraction[kRoom];
    for (ptrdiff_t i = 0; i < kRoom; ++i) {
        half[i] = 2 * kCell + !(fx <= 0.5f);
        fraction[i] = fx;
    }
    const CorrectColumns column = {1, kColumns, half, fraction};

    Row upper, lower;
    float weights[kSourceRoom] = {}, trends[kSourceRoom] = {};
    kernels.along(column, row1, kSoftWeights, weights, trends, upper.Pointers());
    kernels.along(column, row2, kSoftWeights, weights, trends, lower.Pointers());
    const bool lowerHalf = !(fy <= 0.5f);
    float mixed[kRoom] = {};
    kernels.mix((lowerHalf ? lower : upper).Pointers(), (lowerHalf ? upper : lower).Pointers(), 1,
                mixed);

    float above[kSourceRoom] = {}, below[kSourceRoom] = {};
    const unsigned char* const rows[] = {row0, row1, row2, row3};
    kernels.across(row0, row1, kColumns, kSoftWeights, above);
    kernels.across(row2, row3, kColumns, kSoftWeights, below);
    kernels.trends(rows, kColumns, trends);
    float positions[kSourceRoom] = {}, fractions[kSourceRoom] = {};
    float left[2 * kSourceRoom] = {}, right[2 * kSourceRoom] = {};
    kernels.halves(above, below, trends, kColumns, fy, positions, fractions, left, right);

    float x[kRoom], y[kRoom];
    kernels.cross(column, lowerHalf ? mixed : upper.fraction, lowerHalf ? lower.fraction : mixed,
                  left, right, x, y);
    *outX = x[0];
    *outY = y[0];
}

void IPL_CorrectPixel(const unsigned char* row0, const unsigned char* row1,
                      const unsigned char* row2, const unsigned char* row3, float fx, float fy,
                      unsigned char* dst) {
    float x[kRoom] = {}, y[kRoom] = {};
    IPL_CorrectWeights(row0, row1, row2, row3, fx, fy, x, y);
    uint16_t upper[kRoom] = {Pair(row1)}, lower[kRoom] = {Pair(row2)};
    const CorrectPlaces place = {x, y, dst};
    SelectKernels(kKernels).blendOneChannel(upper, lower, 1, &place, 1);
}

}  // namespace tq
