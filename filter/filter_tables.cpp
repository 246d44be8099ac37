// Weight tables of the bilateral filter and of Gauss. Weights are truncated: every step is in
// single precision, in exactly this order, since another would change some of them.

#include "filter/filter_tables.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <new>

#include "frame/exact_math.h"
#include "frame/platform.h"

namespace {

// The library's object keeps the tables by distance; those by difference stay empty here.
struct SharedTables {
    tq::CriticalSection lock;
    CZFilterTables tables;
};

SharedTables& Shared() {
    static SharedTables g_filterTables;
    return g_filterTables;
}

std::shared_ptr<int[]> NewTable(int64_t entries) {
    if (entries > INT32_MAX / int64_t{sizeof(int)}) throw std::bad_alloc();
    return std::shared_ptr<int[]>(new int[static_cast<size_t>(entries)]);
}

int Rounded(float weight) { return tq::TruncateToInt32(weight + 0.5f); }

void FillRangeTable(int sigma, float scale, int (&table)[256]) {
    const float s = static_cast<float>(sigma);
    const float divisor = 2.0f * s * s;
    for (int d = 0; d < 256; ++d)
        table[d] = Rounded(std::exp(-static_cast<float>(d * d) / divisor) * scale);
}

}  // namespace

void CZFilterTables::MakeSure() { Shared(); }

CZFilterTables CZFilterTables::ForGauss(int radius) {
    SharedTables& shared = Shared();
    const tq::Lock lock(shared.lock);
    shared.tables.NeedSpaceTable2D(radius);
    return shared.tables;
}

CZFilterTables CZFilterTables::ForDirectBilateral(int radius, int sigma) {
    CZFilterTables tables = ForGauss(radius);
    tables.NeedRangeTable100(sigma);
    return tables;
}

CZFilterTables CZFilterTables::ForSeparableBilateral(int radius, int sigma) {
    CZFilterTables tables;
    {
        SharedTables& shared = Shared();
        const tq::Lock lock(shared.lock);
        shared.tables.NeedSpaceTable1D(radius);
        tables = shared.tables;
    }
    tables.NeedRangeTable1024(sigma);
    return tables;
}

void CZFilterTables::NeedSpaceTable2D(int radius) {
    if (IPL_BilateralSpaceTable2D && m_nRadius2D == radius) return;
    const int64_t side = 2 * int64_t{radius} + 1;
    // side is limited first: its square fits 64 bits.
    std::shared_ptr<int[]> table = NewTable(side > INT32_MAX ? side : side * side);
    const float r = static_cast<float>(radius);
    const float divisor = 2.0f * r * r;
    for (int dy = -radius; dy <= 0; ++dy) {
        int* top = &table[(dy + radius) * side + radius];
        int* bottom = &table[(radius - dy) * side + radius];
        for (int dx = -radius; dx <= 0; ++dx) {
            const float x = static_cast<float>(dx);
            const float y = static_cast<float>(dy);
            top[dx] = top[-dx] = bottom[dx] = bottom[-dx] =
                Rounded(std::exp(-(x * x + y * y) / divisor) * 1024.0f);
        }
    }
    IPL_BilateralSpaceTable2D = table;
    m_nRadius2D = radius;
}

// The exponent is positive and there is no scale: kept so on purpose, the separable forms are
// defined with these weights and not with a Gaussian.
void CZFilterTables::NeedSpaceTable1D(int radius) {
    if (IPL_BilateralSpaceTable1D && m_nRadius1D == radius) return;
    const int64_t entries = 2 * int64_t{radius} + 1;
    std::shared_ptr<int[]> table = NewTable(entries);
    const float r = static_cast<float>(radius);
    const float divisor = 2.0f * r * r;
    for (int64_t k = 0; k < entries; ++k) {
        const float distance = static_cast<float>(entries - k);
        table[k] = tq::TruncateToInt32(std::exp(distance * distance / divisor));
    }
    IPL_BilateralSpaceTable1D = table;
    m_nRadius1D = radius;
}

void CZFilterTables::NeedRangeTable100(int sigma) {
    if (sigma != m_nRangeKey) FillRangeTable(sigma, 100.0f, IPL_BilateralRangeTable100);
}

void CZFilterTables::NeedRangeTable1024(int sigma) {
    if (sigma != m_nRangeKey) FillRangeTable(sigma, 1024.0f, IPL_BilateralRangeTable1024);
}
