// The pool of six-tap tables: keys and counts, the limit and who goes first, memory of both kinds
// and none at all.

#include <gtest/gtest.h>
#include <tqipl/zoom.h>

#include <algorithm>
#include <atomic>
#include <new>
#include <set>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "frame/platform.h"
#include "reference/zoom_cubic_reference.h"
#include "support/deadline.h"
#include "support/replaced_new.h"
#include "support/settings.h"
#include "support/table_pool.h"
#include "support/zoom_check.h"
#include "zoom/weights.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>

#include <cerrno>
#endif

namespace {

using tqtest::Content;
using tqtest::Counts;
using tqtest::HoldsItsWeights;
using tqtest::Key;
using tqtest::Keys;
using tqtest::kPoolLimit;
using tqtest::NthKey;

// Fills an empty pool with the first `count` keys, all in use.
void AcquireFirst(CZ6CubicTablePool& pool, int count) {
    for (int i = 0; i < count; ++i) pool.Acquire(NthKey(i).first, NthKey(i).second);
}

std::vector<Key> FirstKeys(int count) {
    std::vector<Key> keys;
    for (int i = 0; i < count; ++i) keys.push_back(NthKey(i));
    return keys;
}

void ReleaseAll(CZ6CubicTablePool& pool) {
    for (int64_t i = 0; i < pool.m_arrTables.GetSize(); ++i)
        while (pool.m_arrTables.GetAt(i)->m_nRefCount > 0) pool.Release(pool.m_arrTables.GetAt(i));
}

// ---- Classes ------------------------------------------------------------------------------------

template <class A, class B> bool Precedes(const A& a, const B& b) {
    return reinterpret_cast<uintptr_t>(&a) < reinterpret_cast<uintptr_t>(&b);
}

TEST(SixCubicTable, HasItsFieldsInOrder) {
    using Table = CZ6CubicTable;
    static_assert(std::is_same_v<decltype(Table::m_pWeightData), int*> &&
                  std::is_same_v<decltype(Table::m_nRefCount), int> &&
                  sizeof(Table::m_bVirtualAlloc) == 4 &&
                  std::is_same_v<std::remove_const_t<decltype(Table::m_nSrcLength)>, int> &&
                  std::is_same_v<std::remove_const_t<decltype(Table::m_nDstLength)>, int>);
    static_assert(std::has_virtual_destructor_v<Table>);
    const Table table(4, 8);
    EXPECT_TRUE(Precedes(table.m_pWeightData, table.m_nRefCount));
    EXPECT_TRUE(Precedes(table.m_nRefCount, table.m_bVirtualAlloc));
    EXPECT_TRUE(Precedes(table.m_bVirtualAlloc, table.m_nSrcLength));
    EXPECT_TRUE(Precedes(table.m_nSrcLength, table.m_nDstLength));
}

TEST(SixCubicTable, BeginsWithoutUsersAndInPages) {
    const CZ6CubicTable table(8, 16);
    EXPECT_EQ(table.m_nRefCount, 0);
    EXPECT_EQ(table.m_bVirtualAlloc, 1);
    EXPECT_EQ(table.m_nSrcLength, 8);
    EXPECT_EQ(table.m_nDstLength, 16);
    EXPECT_TRUE(HoldsItsWeights(&table));
}

TEST(SixCubicTable, OfNoDestinationHasNoWeights) {
    for (int dstLength : {0, -1, -1000}) {
        const CZ6CubicTable table(4, dstLength);
        EXPECT_EQ(table.m_pWeightData, nullptr);
    }
}

TEST(SixCubicPool, HasItsFieldsInOrder) {
    using Pool = CZ6CubicTablePool;
    static_assert(
        std::is_same_v<decltype(Pool::m_arrTables), CTQArray<CZ6CubicTable*, CZ6CubicTable*>>);
    static_assert(std::has_virtual_destructor_v<Pool>);
    Pool pool;
    EXPECT_TRUE(Precedes(pool.m_arrTables, pool.m_cs));
    EXPECT_EQ(pool.m_arrTables.GetSize(), 0);
}

// ---- Keys and counts ----------------------------------------------------------------------------

TEST(SixCubicPool, GivesTheSameTableForTheSameLengths) {
    CZ6CubicTablePool pool;
    CZ6CubicTable* table = pool.Acquire(640, 1280);
    EXPECT_EQ(table->m_nRefCount, 1);
    EXPECT_TRUE(HoldsItsWeights(table));
    EXPECT_EQ(pool.Acquire(640, 1280), table);
    EXPECT_EQ(table->m_nRefCount, 2);
    EXPECT_EQ(Keys(pool), (std::vector<Key>{{640, 1280}}));
    pool.Release(table);
    EXPECT_EQ(table->m_nRefCount, 1);
    pool.Release(table);
    EXPECT_EQ(table->m_nRefCount, 0);
    EXPECT_EQ(pool.Acquire(640, 1280), table);
    EXPECT_EQ(table->m_nRefCount, 1);
}

TEST(SixCubicPool, LengthsAreAnOrderedPair) {
    CZ6CubicTablePool pool;
    CZ6CubicTable* up = pool.Acquire(640, 1280);
    CZ6CubicTable* down = pool.Acquire(1280, 640);
    EXPECT_NE(up, down);
    EXPECT_NE(pool.Acquire(640, 1281), up);
    EXPECT_NE(pool.Acquire(641, 1280), up);
    EXPECT_EQ(Keys(pool), (std::vector<Key>{{640, 1280}, {1280, 640}, {640, 1281}, {641, 1280}}));
    EXPECT_TRUE(HoldsItsWeights(up));
    EXPECT_TRUE(HoldsItsWeights(down));
    EXPECT_EQ(Counts(pool), (std::vector<int>{1, 1, 1, 1}));
}

TEST(SixCubicPool, TablesStayInTheOrderOfTheirMaking) {
    CZ6CubicTablePool pool;
    for (int i : {5, 2, 9, 2, 7, 5}) pool.Release(pool.Acquire(i, i + 1));
    EXPECT_EQ(Keys(pool), (std::vector<Key>{{5, 6}, {2, 3}, {9, 10}, {7, 8}}));
}

TEST(SixCubicPool, ClearDeletesTablesInUseToo) {
    CZ6CubicTablePool pool;
    pool.Acquire(3, 5);
    pool.Release(pool.Acquire(5, 3));
    pool.Clear();
    EXPECT_EQ(pool.m_arrTables.GetSize(), 0);
    pool.Clear();
    CZ6CubicTable* table = pool.Acquire(5, 3);
    EXPECT_EQ(table->m_nRefCount, 1);
    EXPECT_TRUE(HoldsItsWeights(table));
    EXPECT_EQ(Keys(pool), (std::vector<Key>{{5, 3}}));
}

// ---- The limit ----------------------------------------------------------------------------------

TEST(SixCubicPool, Holds301IdleTables) {
    CZ6CubicTablePool pool;
    for (int i = 0; i < kPoolLimit; ++i) {
        pool.Release(pool.Acquire(NthKey(i).first, NthKey(i).second));
        ASSERT_EQ(pool.m_arrTables.GetSize(), i + 1);
    }
    EXPECT_EQ(Keys(pool), FirstKeys(kPoolLimit));
}

TEST(SixCubicPool, TheOldestIdleTableGoesWhenOneMoreIsMade) {
    CZ6CubicTablePool pool;
    AcquireFirst(pool, kPoolLimit);
    ReleaseAll(pool);
    // Use does not make it younger.
    pool.Release(pool.Acquire(NthKey(0).first, NthKey(0).second));
    CZ6CubicTable* table = pool.Acquire(1000, 2);
    EXPECT_TRUE(HoldsItsWeights(table));
    std::vector<Key> expected = FirstKeys(kPoolLimit);
    expected.erase(expected.begin());
    expected.emplace_back(1000, 2);
    EXPECT_EQ(Keys(pool), expected);
    // The one that is gone is made anew, in place of the next.
    pool.Acquire(NthKey(0).first, NthKey(0).second);
    expected.erase(expected.begin());
    expected.push_back(NthKey(0));
    EXPECT_EQ(Keys(pool), expected);
}

TEST(SixCubicPool, ATableThatIsThereCostsNoOther) {
    CZ6CubicTablePool pool;
    AcquireFirst(pool, kPoolLimit);
    ReleaseAll(pool);
    for (int i = kPoolLimit - 1; i >= 0; --i)
        pool.Release(pool.Acquire(NthKey(i).first, NthKey(i).second));
    EXPECT_EQ(Keys(pool), FirstKeys(kPoolLimit));
}

TEST(SixCubicPool, TablesInUseArePassedOver) {
    CZ6CubicTablePool pool;
    AcquireFirst(pool, kPoolLimit);
    for (int i : {2, 3, 7, 300}) pool.Release(pool.m_arrTables.GetAt(i));
    std::vector<Key> expected = FirstKeys(kPoolLimit);
    int made = 0;
    for (int gone : {2, 3, 7, 300}) {
        pool.Acquire(1000, ++made);
        expected.erase(std::find(expected.begin(), expected.end(), NthKey(gone)));
        expected.emplace_back(1000, made);
        ASSERT_EQ(Keys(pool), expected);
    }
    for (int count : Counts(pool)) ASSERT_EQ(count, 1);
}

TEST(SixCubicPool, GrowsBeyondItsLimitWhenAllAreInUse) {
    CZ6CubicTablePool pool;
    AcquireFirst(pool, 302);
    EXPECT_EQ(Keys(pool), FirstKeys(302));
    AcquireFirst(pool, 1);  // one that is there
    EXPECT_EQ(Keys(pool), FirstKeys(302));
    pool.Acquire(1000, 1);
    EXPECT_EQ(pool.m_arrTables.GetSize(), 303);
    for (int64_t i = 0; i < 303; ++i) ASSERT_TRUE(HoldsItsWeights(pool.m_arrTables.GetAt(i)));
}

TEST(SixCubicPool, EachMissEvictsOneAtMost) {
    CZ6CubicTablePool pool;
    AcquireFirst(pool, 310);
    ReleaseAll(pool);
    pool.Release(pool.Acquire(1000, 1));
    EXPECT_EQ(pool.m_arrTables.GetSize(), 310);
    pool.Release(pool.Acquire(1000, 2));
    EXPECT_EQ(pool.m_arrTables.GetSize(), 310);
    EXPECT_EQ(Keys(pool).front(), NthKey(2));
}

// ---- Memory -------------------------------------------------------------------------------------

std::vector<void*> g_pages;
std::vector<size_t> g_pageBytes;
bool g_havePages;

// What the pool asks of the system.
class SeenPages {
public:
    SeenPages() {
        g_pages.clear();
        g_pageBytes.clear();
        g_havePages = true;
        tq::g_platformSeams.allocatePages = [](size_t bytes) -> void* {
            g_pageBytes.push_back(bytes);
            void* pages = g_havePages ? tq::SystemAllocatePages(bytes) : nullptr;
            if (pages != nullptr) g_pages.push_back(pages);
            return pages;
        };
    }
    ~SeenPages() { tq::g_platformSeams.allocatePages = tq::SystemAllocatePages; }
};

bool IsMapped(void* pages) {
#if defined(_WIN32)
    MEMORY_BASIC_INFORMATION info;
    return VirtualQuery(pages, &info, sizeof info) == sizeof info && info.State == MEM_COMMIT;
#else
    return msync(pages, 1, MS_ASYNC) == 0 || errno != ENOMEM;
#endif
}

TEST(SixCubicPool, WeightsTake32BytesAnIndexInPages) {
    SeenPages seen;
    {
        const CZ6CubicTable table(70, 5000);
        EXPECT_EQ(g_pageBytes, (std::vector<size_t>{160000}));
        ASSERT_EQ(g_pages.size(), 1u);
        EXPECT_EQ(static_cast<void*>(table.m_pWeightData), g_pages[0]);
        EXPECT_TRUE(IsMapped(g_pages[0]));
    }
    EXPECT_FALSE(IsMapped(g_pages[0]));
}

TEST(SixCubicPool, PagesGoBackByEvictionByClearAndAtTheEnd) {
    SeenPages seen;
    {
        CZ6CubicTablePool pool;
        for (int i = 0; i < kPoolLimit; ++i)
            pool.Release(pool.Acquire(NthKey(i).first, NthKey(i).second));
        ASSERT_EQ(g_pages.size(), 301u);
        pool.Clear();
        EXPECT_EQ(std::count_if(g_pages.begin(), g_pages.end(), IsMapped), 0);
        g_pages.clear();
        pool.Acquire(20, 30);
        // One is in use throughout; the addresses of the others may serve again.
        for (int i = 0; i < 1000; ++i) pool.Release(pool.Acquire(1000 + i, 3));
        const std::set<void*> addresses(g_pages.begin(), g_pages.end());
        EXPECT_EQ(std::count_if(addresses.begin(), addresses.end(), IsMapped), kPoolLimit);
    }
    EXPECT_EQ(std::count_if(g_pages.begin(), g_pages.end(), IsMapped), 0);
}

TEST(SixCubicPool, WithoutPagesTheWeightsComeFromTheHeap) {
    SeenPages seen;
    CZ6CubicTablePool pool;
    g_havePages = false;
    CZ6CubicTable* heap = pool.Acquire(7, 31);
    EXPECT_EQ(g_pageBytes, (std::vector<size_t>{31 * 32}));
    EXPECT_EQ(heap->m_bVirtualAlloc, 0);
    EXPECT_TRUE(HoldsItsWeights(heap));
    g_havePages = true;
    CZ6CubicTable* paged = pool.Acquire(31, 7);
    EXPECT_EQ(paged->m_bVirtualAlloc, 1);
    EXPECT_TRUE(HoldsItsWeights(paged));
    EXPECT_EQ(pool.Acquire(7, 31), heap);
    // Both kinds go back together.
    pool.Clear();
    EXPECT_EQ(std::count_if(g_pages.begin(), g_pages.end(), IsMapped), 0);
}

// Tables from the heap zoom like those in pages.
TEST(SixCubicPool, AZoomWithoutPagesEqualsTheReference) {
    g_IPL6CubicTablePool.Clear();
    const tqtest::ZoomForm form = {"IPL_Zoom6Cubic_8u_C1R", IPL_Zoom6Cubic_8u_C1R,
                                   tqref::ZoomSixCubicC1, 1};
    {
        SeenPages seen;
        g_havePages = false;
        EXPECT_TRUE(tqtest::EqualsReference(form, {31, 17, 63, 9}, tqtest::ZoomLayouts()[1],
                                            Content::kNoise, 1, {tq::CurrentIsaLevel()}));
        ASSERT_EQ(g_IPL6CubicTablePool.m_arrTables.GetSize(), 2);
        EXPECT_EQ(g_IPL6CubicTablePool.m_arrTables.GetAt(0)->m_bVirtualAlloc, 0);
    }
    g_IPL6CubicTablePool.Clear();
}

#if TQTEST_REPLACES_NEW

// Any other thread than the pool's owner can use it.
bool IsUnlocked(CZ6CubicTablePool& pool) {
    std::atomic<bool> done{false};
    std::thread other([&] {
        pool.Release(pool.Acquire(3, 4));
        done = true;
    });
    const bool came = tqtest::Eventually([&] { return done.load(); });
    if (!came) std::abort();  // the thread cannot be joined
    other.join();
    return came;
}

TEST(SixCubicPool, WeightsOnTheHeapAreZeroBehindTheRecordsAndAreReleased) {
    SeenPages seen;
    g_havePages = false;
    const long made = tqtest::g_arraysMade, released = tqtest::g_arraysReleased;
    {
        CZ6CubicTablePool pool;
        const CZ6CubicTable* table = pool.Acquire(2, 5);
        // Five records of two weights; the rest of the 40 integers.
        for (int i = 20; i < 40; ++i) EXPECT_EQ(table->m_pWeightData[i], 0) << i;
        for (int i = 0; i < 400; ++i) pool.Release(pool.Acquire(1 + i, 3));
        EXPECT_GE(tqtest::g_arraysMade - made, 401);
    }
    EXPECT_EQ(tqtest::g_arraysMade - made, tqtest::g_arraysReleased - released);
}

TEST(SixCubicPool, WithoutAnyMemoryAcquireThrowsAndThePoolStaysWhole) {
    SeenPages seen;
    CZ6CubicTablePool pool;
    CZ6CubicTable* first = pool.Acquire(6, 7);
    g_havePages = false;
    int thrown = 0;
    {
        const auto refuse = tqtest::RefuseArrays::From(1);
        try {
            pool.Acquire(7, 6);
        } catch (const std::bad_alloc&) {
            ++thrown;
        }
    }
    EXPECT_EQ(thrown, 1);
    EXPECT_EQ(Keys(pool), (std::vector<Key>{{6, 7}}));
    EXPECT_TRUE(IsUnlocked(pool));
    EXPECT_EQ(pool.Acquire(6, 7), first);
    EXPECT_EQ(first->m_nRefCount, 2);
    CZ6CubicTable* second = pool.Acquire(7, 6);
    EXPECT_EQ(second->m_nRefCount, 1);
    EXPECT_TRUE(HoldsItsWeights(second));
}

// Whichever array is refused, of weights or of tables.
TEST(SixCubicPool, WhereTheArrayCannotGrowNothingIsLost) {
    SeenPages seen;
    for (bool havePages : {true, false}) {
        g_havePages = havePages;
        const long made = tqtest::g_arraysMade, released = tqtest::g_arraysReleased;
        {
            CZ6CubicTablePool pool;
            for (int i = 0; i < 40; ++i) {
                const Key key = NthKey(i);
                for (int number : {1, 2}) {
                    const auto refuse = tqtest::RefuseArrays::Number(number);
                    const int64_t before = pool.m_arrTables.GetSize();
                    try {
                        pool.Release(pool.Acquire(key.first, key.second));
                    } catch (const std::bad_alloc&) {
                        ASSERT_EQ(pool.m_arrTables.GetSize(), before);
                    }
                }
                pool.Release(pool.Acquire(key.first, key.second));
                ASSERT_EQ(Keys(pool), FirstKeys(i + 1));
            }
            EXPECT_TRUE(IsUnlocked(pool));
        }
        EXPECT_EQ(tqtest::g_arraysMade - made, tqtest::g_arraysReleased - released);
        EXPECT_EQ(std::count_if(g_pages.begin(), g_pages.end(), IsMapped), 0);
    }
}

#endif

}  // namespace
