#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// A table of weights by difference, as the kernels read it: sixteen differences to a chunk, low and
// high bytes apart, each chunk XORed with the one before it (not so the first, and the ninth). All
// weights from 16 * chunks - 1 on are 0, unless chunks is 16. At least 1 chunk.
struct BilateralRange {
    uint8_t low[16][16];
    uint8_t high[16][16];
    int chunks;
    int atZero;  // the weight of no difference
};

// Two taps at opposite places of the window with one weight by distance. `first` and `second` are
// where the taps of column 0 are. `column` is the distance in columns of second, and that of first
// negated.
struct BilateralPair {
    const uint8_t* first;
    const uint8_t* second;
    int weight;
    int column;
};

// One row of a bilateral filter. Of the centre row and of all taps, kBilateralSlack bytes past
// column width - 1 are readable.
//
// A tap that has no opposite is paired with the centre, for which weight is taken from the centre
// weight: it stands in the sums as that many hundredths or 1024ths of the value itself.
struct BilateralRow {
    const uint8_t* centre;
    int centreWeight;  // by distance, less that of the pairs with the centre
    const BilateralPair* pairs;
    int pairCount;
    const BilateralRange* range;
    // Columns fullBegin to fullEnd - 1 have all taps. At the others those take part whose distance
    // in columns is within firstTap to lastTap, which have kBilateralSlack readable places past
    // width too; in the separable form this goes for the centre as well.
    ptrdiff_t fullBegin, fullEnd;
    const int8_t* firstTap;
    const int8_t* lastTap;
    ptrdiff_t width;  // 1 or more
};
inline constexpr ptrdiff_t kBilateralSlack = 32;

// Radii up to which sums of weights stay in 32 signed bits (direct), and all results in a byte
// (separable) and distances in an int8_t.
inline constexpr int kBilateralDirectRadius = 63;
inline constexpr int kBilateralSeparableRadius = 127;

// A row of results, exactly width bytes of it: in hundredths and with an even number of pairs; or
// in 1024ths and rounded, as it is and limited to 16 to 235. All null at a level that gains nothing
// over the plain form.
struct BilateralKernels {
    void (*direct)(const BilateralRow& row, uint8_t* dst);
    void (*separable)(const BilateralRow& row, uint8_t* dst);
    void (*separableLimited)(const BilateralRow& row, uint8_t* dst);
};

TQ_DECLARE_KERNELS(BilateralKernels, bilateralKernels)

}  // namespace tq
