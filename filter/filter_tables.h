#pragma once

#include <memory>

// Weight tables of the bilateral filter and of Gauss. All in single precision. Weights by distance
// stand for one radius and are kept from call to call until the radius changes; weights by
// difference are made in each call.
//
// The library keeps one such object, which comes into being at the first call of a filter and goes
// at the end of the process. A filter works with its own copy for the length of the call. Copies
// share the tables by distance, which are never written again once they are made, so that filters
// of any parameters may run at once.
class CZFilterTables {
public:
    // The tables of one call: by distance in the plane and by difference in hundredths; by distance
    // in a line and by difference in 1024ths; by distance in the plane alone. Radii are above 0 and
    // sigmas not 0. Throw std::bad_alloc, also for a table of 2^31 bytes or more.
    static CZFilterTables ForDirectBilateral(int radius, int sigma);
    static CZFilterTables ForSeparableBilateral(int radius, int sigma);
    static CZFilterTables ForGauss(int radius);

    // Makes the library's object if there is none. Every filter calls it, also those without
    // tables.
    static void MakeSure();

    int m_nRadius2D = 0;
    // Stays 0, and so differs from any sigma: tables by difference are never taken for made.
    int m_nRangeKey = 0;
    // (2r+1) * (2r+1) weights in 1024ths, row by row from dx = dy = -r.
    std::shared_ptr<const int[]> IPL_BilateralSpaceTable2D;
    int IPL_BilateralRangeTable100[256] = {};
    int m_nRadius1D = 0;
    // 2r+1 weights, of which those at 0 to r, by distance, are used.
    std::shared_ptr<const int[]> IPL_BilateralSpaceTable1D;
    int IPL_BilateralRangeTable1024[256] = {};

private:
    void NeedSpaceTable2D(int radius);
    void NeedSpaceTable1D(int radius);
    void NeedRangeTable100(int sigma);
    void NeedRangeTable1024(int sigma);
};
