#pragma once

// What the tests of the six-tap table pool look at.

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "reference/zoom_cubic_reference.h"
#include "zoom/weights.h"

namespace tqtest {

// Source and destination length.
using Key = std::pair<int, int>;

// Tables that the pool holds before it lets one go.
inline constexpr int kPoolLimit = 301;

inline std::vector<Key> Keys(CZ6CubicTablePool& pool) {
    std::vector<Key> keys;
    for (int64_t i = 0; i < pool.m_arrTables.GetSize(); ++i) {
        const CZ6CubicTable* table = pool.m_arrTables.GetAt(i);
        keys.emplace_back(table->m_nSrcLength, table->m_nDstLength);
    }
    return keys;
}

inline std::vector<int> Counts(CZ6CubicTablePool& pool) {
    std::vector<int> counts;
    for (int64_t i = 0; i < pool.m_arrTables.GetSize(); ++i)
        counts.push_back(pool.m_arrTables.GetAt(i)->m_nRefCount);
    return counts;
}

inline testing::AssertionResult HoldsItsWeights(const CZ6CubicTable* table) {
    const std::vector<int> expected =
        tqref::PackTapRecords(tqref::SixTapRecords(table->m_nSrcLength, table->m_nDstLength));
    if (std::equal(expected.begin(), expected.end(), table->m_pWeightData))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "weights of " << table->m_nSrcLength << " to " << table->m_nDstLength;
}

// Key number i, one like no other: small tables.
inline Key NthKey(int i) { return {1 + i / 20, 1 + i % 20}; }

}  // namespace tqtest
