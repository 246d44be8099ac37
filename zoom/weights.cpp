// Weight tables of the cubic zooms, and the pool of the six-tap ones.

#include "zoom/weights.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "frame/exact_math.h"

namespace {

constexpr int64_t kSixTapRecord = 8;  // integers that a record takes at most
constexpr int64_t kFourTapRecord = 6;
constexpr int64_t kMostIdleTables = 300;

// Together below this in magnitude. Those of all positions that single precision can tell apart
// are; beyond, where a sum of taps may be anything, a record is of zeros.
constexpr int64_t kMostWeight = 2048;

// The record of the samples from `first` to `last`; returns its end.
int* WriteRecord(int64_t first, int64_t last, float position, float (*kernel)(float), int* record) {
    *record++ = static_cast<int>(first);
    *record++ = static_cast<int>(last);
    float weights[kSixTapRecord];
    float sum = 0.0f;
    for (int64_t k = first; k <= last; ++k) {
        const float weight = kernel(position - static_cast<float>(k));
        weights[k - first] = weight;
        sum += weight;
    }
    int64_t together = 0;
    for (int64_t k = first; k <= last; ++k) {
        record[k - first] = tq::TruncateToInt32((weights[k - first] / sum) * 1024.0f);
        together += std::abs(int64_t{record[k - first]});
    }
    const int64_t taps = std::max(int64_t{0}, last - first + 1);
    if (together >= kMostWeight) std::fill_n(record, taps, 0);
    return record + taps;
}

void FillSixTaps(int srcLength, int dstLength, int* record) {
    const float ratio = static_cast<float>(dstLength) / static_cast<float>(srcLength);
    const float offset = static_cast<float>(0.5 / static_cast<double>(ratio) - 0.5);
    for (int i = 0; i < dstLength; ++i) {
        const float position = static_cast<float>(i) / ratio + offset;
        const auto sample = static_cast<int64_t>(position);
        const float distance = std::fabs(position - static_cast<float>(sample));
        const int64_t first = std::max(sample - 2, int64_t{0});
        const int64_t last =
            std::min(static_cast<double>(distance) < 1e-10 ? sample + 2 : sample + 3,
                     int64_t{srcLength} - 1);
        record = WriteRecord(first, last, position, tq::IPL_SixTapKernel, record);
    }
}

}  // namespace

namespace tq {

float IPL_CubicKernel(float t) {
    const float a = std::fabs(t);
    if (a < 1.0f) return ((5.0f - (a * 11.0f) * a) + ((a * 6.0f) * a) * a) / 5.0f;
    if (a < 2.0f) return (((14.0f - a * 27.0f) + (a * 16.0f) * a) - ((a * 3.0f) * a) * a) / 5.0f;
    if (a < 3.0f) return (((a * 21.0f - 18.0f) - (a * 8.0f) * a) + (a * a) * a) / 5.0f;
    return 0.0f;
}

float IPL_SixTapKernel(float t) {
    const float a = std::fabs(t);
    const double a2 = static_cast<double>(a * a);
    const double a3 = static_cast<double>(a) * a2;
    if (a < 1.0f) return static_cast<float>(((5.0 - a2 * 11.0) + a3 * 6.0) / 5.0);
    if (a < 2.0f)
        return static_cast<float>(
            ((static_cast<double>(14.0f - a * 27.0f) + a2 * 16.0) - a3 * 3.0) / 5.0);
    if (a < 3.0f)
        return static_cast<float>(((static_cast<double>(a * 21.0f - 18.0f) - a2 * 8.0) + a3) / 5.0);
    return 0.0f;
}

int* IPL_CubicWeightTable(int srcLength, int dstLength) {
    const float scale = static_cast<float>(srcLength) / static_cast<float>(dstLength);
    const float offset = static_cast<float>(static_cast<double>(scale) * 0.5 - 0.5);
    auto table = std::make_unique<int[]>(static_cast<size_t>(kFourTapRecord * dstLength));
    int* record = table.get();
    for (int i = 0; i < dstLength; ++i) {
        const float position = static_cast<float>(i) * scale + offset;
        const auto sample = static_cast<int64_t>(position);
        record = WriteRecord(std::max(sample - 1, int64_t{0}),
                             std::min(sample + 2, int64_t{srcLength} - 1), position,
                             IPL_CubicKernel, record);
    }
    return table.release();
}

}  // namespace tq

CZ6CubicTable::CZ6CubicTable(int srcLength, int dstLength)
    : m_nSrcLength(srcLength), m_nDstLength(dstLength) {
    if (dstLength < 1) return;
    const size_t integers = static_cast<size_t>(kSixTapRecord * dstLength);
    m_pWeightData = static_cast<int*>(tq::AllocatePages(integers * sizeof(int)));
    m_bVirtualAlloc = m_pWeightData != nullptr;
    if (!m_bVirtualAlloc) m_pWeightData = new int[integers]();
    FillSixTaps(srcLength, dstLength, m_pWeightData);
}

CZ6CubicTable::~CZ6CubicTable() {
    if (m_bVirtualAlloc)
        tq::FreePages(m_pWeightData,
                      static_cast<size_t>(kSixTapRecord * m_nDstLength) * sizeof(int));
    else
        delete[] m_pWeightData;
}

CZ6CubicTablePool::~CZ6CubicTablePool() { Clear(); }

CZ6CubicTable* CZ6CubicTablePool::Acquire(int srcLength, int dstLength) {
    const tq::Lock lock(m_cs);
    for (int64_t i = 0; i < m_arrTables.GetSize(); ++i) {
        CZ6CubicTable* table = m_arrTables.GetAt(i);
        if (table->m_nSrcLength != srcLength || table->m_nDstLength != dstLength) continue;
        ++table->m_nRefCount;
        return table;
    }
    if (m_arrTables.GetSize() > kMostIdleTables)
        for (int64_t i = 0; i < m_arrTables.GetSize(); ++i) {
            if (m_arrTables.GetAt(i)->m_nRefCount != 0) continue;
            delete m_arrTables.GetAt(i);
            m_arrTables.RemoveAt(i);
            break;
        }
    // Under the lock: another thread that wants this table is to find it.
    auto table = std::make_unique<CZ6CubicTable>(srcLength, dstLength);
    m_arrTables.Add(table.get());
    ++table->m_nRefCount;
    return table.release();
}

void CZ6CubicTablePool::Release(CZ6CubicTable* table) {
    const tq::Lock lock(m_cs);
    --table->m_nRefCount;
}

void CZ6CubicTablePool::Clear() {
    const tq::Lock lock(m_cs);
    for (int64_t i = 0; i < m_arrTables.GetSize(); ++i) delete m_arrTables.GetAt(i);
    m_arrTables.SetSize(0);
}
