// The growable array that crosses the interface.

#include <gtest/gtest.h>
#include <tqipl/array.h>
#include <tqipl/types.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "support/replaced_new.h"

namespace {

using Ints = CTQArray<int, int>;
using Pointers = CTQArray<unsigned char*, unsigned char*>;
using Rects = CTQArray<TQ_RECT, TQ_RECT&>;

static_assert(offsetof(Ints, m_pData) == 0);
static_assert(offsetof(Ints, m_nSize) == 8);
static_assert(offsetof(Ints, m_nMaxSize) == 16);
static_assert(offsetof(Ints, m_nGrowBy) == 24);
static_assert(sizeof(Ints) == 32);
static_assert(sizeof(TQ_RECT) == 16 && offsetof(TQ_RECT, left) == 0 &&
              offsetof(TQ_RECT, top) == 4 && offsetof(TQ_RECT, right) == 8 &&
              offsetof(TQ_RECT, bottom) == 12);

void Fill(Ints& array, int count) {
    array.SetSize(count);
    for (int i = 0; i < count; ++i) array.m_pData[i] = i + 1;
}

std::vector<int> Elements(const Ints& array) {
    return {array.m_pData, array.m_pData + array.m_nSize};
}

bool operator==(const TQ_RECT& a, const TQ_RECT& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

TEST(Array, StartsWithAllFieldsZero) {
    const Ints array;
    EXPECT_EQ(array.m_pData, nullptr);
    EXPECT_EQ(array.m_nSize, 0);
    EXPECT_EQ(array.m_nMaxSize, 0);
    EXPECT_EQ(array.m_nGrowBy, 0);
    EXPECT_EQ(array.GetSize(), 0);
}

TEST(Array, AppendingGrowsByFourAndThenByAnEighth) {
    Ints array;
    std::vector<int64_t> capacities;
    for (int i = 0; i < 100; ++i) {
        array.Add(i);
        if (capacities.empty() || capacities.back() != array.m_nMaxSize)
            capacities.push_back(array.m_nMaxSize);
    }
    EXPECT_EQ(capacities, (std::vector<int64_t>{1, 5, 9, 13, 17, 21, 25, 29, 33, 37, 41, 46, 51, 57,
                                                64, 72, 81, 91, 102}));
    for (int i = 0; i < 100; ++i) EXPECT_EQ(array.m_pData[i], i);
}

// Size, and the capacity after one more element.
TEST(Array, StepIsAnEighthOfTheSizeHeldBetween4And1024) {
    for (auto [size, capacity] : {std::array<int64_t, 2>{1, 5},
                                  {31, 35},
                                  {39, 43},
                                  {40, 45},
                                  {47, 52},
                                  {48, 54},
                                  {800, 900},
                                  {8184, 9207},
                                  {8191, 9214},
                                  {8192, 9216},
                                  {8200, 9224},
                                  {100000, 101024}}) {
        Ints array;
        array.SetSize(size);
        EXPECT_EQ(array.m_nMaxSize, size);
        array.Add(7);
        EXPECT_EQ(array.m_nMaxSize, capacity) << size;
        EXPECT_EQ(array.m_nSize, size + 1);
        EXPECT_EQ(array.m_pData[size], 7);
    }
}

TEST(Array, StepComesFromTheSizeAndNotFromTheCapacity) {
    Ints array;
    array.SetSize(80);
    array.SetSize(8);
    array.SetSize(81);
    EXPECT_EQ(array.m_nMaxSize, 84);
}

TEST(Array, CapacityIsAtLeastTheNewSize) {
    Ints array;
    array.SetSize(1);
    array.SetSize(100);
    EXPECT_EQ(array.m_nMaxSize, 100);
    array.SetSize(112);  // 100 + 100 / 8
    EXPECT_EQ(array.m_nMaxSize, 112);
    array.SetSize(113);
    EXPECT_EQ(array.m_nMaxSize, 126);
}

TEST(Array, FixedStepIsUsedFromTheFirstAllocationOn) {
    Ints array;
    array.m_nGrowBy = 10;
    array.SetSize(3);
    EXPECT_EQ(array.m_nMaxSize, 10);
    EXPECT_EQ(array.m_nSize, 3);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(array.m_pData[i], 0) << i;
    array.SetSize(10);
    EXPECT_EQ(array.m_nMaxSize, 10);
    array.Add(1);
    EXPECT_EQ(array.m_nMaxSize, 20);
    array.SetSize(50);
    EXPECT_EQ(array.m_nMaxSize, 50);
    array.SetSize(0);
    EXPECT_EQ(array.m_nGrowBy, 10);
    array.SetSize(25);
    EXPECT_EQ(array.m_nMaxSize, 25);
}

TEST(Array, FixedStepMayBeSmallerThanTheAutomaticOne) {
    Ints array;
    array.m_nGrowBy = 1;
    for (int i = 0; i < 50; ++i) {
        array.Add(i);
        EXPECT_EQ(array.m_nMaxSize, i + 1);
    }
}

TEST(Array, NegativeStepDoesNoHarm) {
    Ints array;
    array.m_nGrowBy = -5;
    array.SetSize(3);
    EXPECT_EQ(array.m_nMaxSize, 3);
    array.Add(4);
    EXPECT_EQ(array.m_nMaxSize, 4);
    EXPECT_EQ(Elements(array), (std::vector<int>{0, 0, 0, 4}));
}

TEST(Array, SizeZeroFreesTheStorage) {
    Ints array;
    array.SetSize(5);
    array.SetSize(0);
    EXPECT_EQ(array.m_pData, nullptr);
    EXPECT_EQ(array.m_nSize, 0);
    EXPECT_EQ(array.m_nMaxSize, 0);
    array.SetSize(0);
    array.Add(3);
    EXPECT_EQ(array.m_nMaxSize, 1);
}

TEST(Array, SmallerSizeKeepsCapacityAndBytes) {
    Ints array;
    Fill(array, 6);
    const int* storage = array.m_pData;
    array.SetSize(2);
    EXPECT_EQ(array.m_pData, storage);
    EXPECT_EQ(array.m_nMaxSize, 6);
    EXPECT_EQ(array.m_nSize, 2);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(array.m_pData[i], i + 1);
}

TEST(Array, GrowingInsideTheCapacityZeroesWhatItShows) {
    Ints array;
    Fill(array, 6);
    array.SetSize(2);
    array.SetSize(4);
    EXPECT_EQ(array.m_nMaxSize, 6);
    EXPECT_EQ(Elements(array), (std::vector<int>{1, 2, 0, 0}));
    EXPECT_EQ(array.m_pData[4], 5);
    EXPECT_EQ(array.m_pData[5], 6);
}

TEST(Array, ReallocationCopiesAndZeroes) {
    Ints array;
    Fill(array, 3);
    array.SetSize(5);
    ASSERT_EQ(array.m_nMaxSize, 7);
    EXPECT_EQ(Elements(array), (std::vector<int>{1, 2, 3, 0, 0}));
    array.SetSize(7);
    EXPECT_EQ(Elements(array), (std::vector<int>{1, 2, 3, 0, 0, 0, 0}));
}

// A size that was lowered first: only the elements in use are copied.
TEST(Array, ReallocationAfterShrinkingZeroesAllNewElements) {
    Ints array;
    Fill(array, 6);
    array.SetSize(2);
    array.SetSize(8);
    EXPECT_EQ(Elements(array), (std::vector<int>{1, 2, 0, 0, 0, 0, 0, 0}));
}

TEST(Array, NegativeSizesLeaveItAsItIs) {
    Ints array;
    array.SetSize(-1);
    EXPECT_EQ(array.m_pData, nullptr);
    EXPECT_EQ(array.m_nSize, 0);
    Fill(array, 3);
    for (int64_t size : {int64_t{-1}, int64_t{-3}, INT64_MIN}) {
        array.SetSize(size);
        EXPECT_EQ(Elements(array), (std::vector<int>{1, 2, 3}));
        EXPECT_EQ(array.m_nMaxSize, 3);
    }
}

TEST(Array, AccessIsClamped) {
    Ints array;
    Fill(array, 3);
    EXPECT_EQ(array.GetAt(-5), 1);
    EXPECT_EQ(array.GetAt(0), 1);
    EXPECT_EQ(array.GetAt(1), 2);
    EXPECT_EQ(array.GetAt(2), 3);
    EXPECT_EQ(array.GetAt(3), 3);
    EXPECT_EQ(array.GetAt(7), 3);
    EXPECT_EQ(array.GetAt(INT64_MAX), 3);
    EXPECT_EQ(array.GetAt(INT64_MIN), 1);
    EXPECT_EQ(array.GetSize(), 3);
    EXPECT_EQ(&array.GetAt(7), array.m_pData + 2);
}

TEST(Array, AccessToAnEmptyArrayMakesOneZeroElement) {
    for (int64_t index : {int64_t{0}, int64_t{-5}, int64_t{7}}) {
        Ints array;
        EXPECT_EQ(array.GetAt(index), 0);
        EXPECT_EQ(array.GetSize(), 1);
        array.GetAt(index) = 9;
        EXPECT_EQ(array.m_pData[0], 9);
    }
}

TEST(Array, AccessToAnEmptiedArrayZeroesTheOldElement) {
    Ints array;
    Fill(array, 1);
    array.RemoveAt(0);
    EXPECT_EQ(array.m_nMaxSize, 1);
    EXPECT_EQ(array.GetAt(0), 0);
    EXPECT_EQ(array.GetSize(), 1);
}

TEST(Array, RemovalClosesTheGapAndKeepsTheCapacity) {
    Ints array;
    Fill(array, 5);
    array.RemoveAt(1);
    EXPECT_EQ(Elements(array), (std::vector<int>{1, 3, 4, 5}));
    array.RemoveAt(0);
    EXPECT_EQ(Elements(array), (std::vector<int>{3, 4, 5}));
    array.RemoveAt(2);
    EXPECT_EQ(Elements(array), (std::vector<int>{3, 4}));
    EXPECT_EQ(array.m_nMaxSize, 5);
    array.RemoveAt(1);
    array.RemoveAt(0);
    EXPECT_EQ(array.m_nSize, 0);
    EXPECT_EQ(array.m_nMaxSize, 5);
    EXPECT_NE(array.m_pData, nullptr);
}

TEST(Array, RemovalOutsideDoesNothing) {
    Ints array;
    array.RemoveAt(0);
    EXPECT_EQ(array.m_nSize, 0);
    Fill(array, 3);
    for (int64_t index : {int64_t{-1}, int64_t{3}, INT64_MIN, INT64_MAX}) {
        array.RemoveAt(index);
        EXPECT_EQ(Elements(array), (std::vector<int>{1, 2, 3}));
    }
}

TEST(Array, ElementOfTheArrayItselfCanBeAdded) {
    Rects array;
    TQ_RECT first{1, 2, 3, 4};
    array.Add(first);
    ASSERT_EQ(array.m_nMaxSize, array.m_nSize);  // the next one moves the storage
    array.Add(array.GetAt(0));
    EXPECT_TRUE(array.GetAt(1) == first);
    while (array.m_nSize < 200) array.Add(array.GetAt(array.m_nSize - 1));
    for (int i = 0; i < 200; ++i) EXPECT_TRUE(array.GetAt(i) == first) << i;
}

TEST(Array, RectanglesAreKeptAsTheyAre) {
    Rects array;
    TQ_RECT turned{10, 20, 3, 4};  // right below left, bottom below top
    array.Add(turned);
    TQ_RECT other{5, 6, 7, 8};
    array.Add(other);
    const TQ_RECT copy = array.GetAt(0);
    EXPECT_TRUE(copy == turned);
    EXPECT_TRUE(array.GetAt(0) == turned);
    EXPECT_TRUE(array.GetAt(1) == other);
    EXPECT_TRUE(turned == (TQ_RECT{10, 20, 3, 4}));
    array.SetSize(4);
    EXPECT_TRUE(array.GetAt(3) == (TQ_RECT{0, 0, 0, 0}));
    array.RemoveAt(0);
    EXPECT_TRUE(array.GetAt(0) == other);
}

TEST(Array, PointersAreNotOwned) {
    unsigned char pixel = 9;
    {
        Pointers planes;
        planes.Add(&pixel);
        planes.SetSize(3);
        EXPECT_EQ(planes.GetAt(0), &pixel);
        EXPECT_EQ(planes.GetAt(2), nullptr);
    }
    EXPECT_EQ(pixel, 9);
}

#if TQTEST_REPLACES_NEW

TEST(Array, SizeZeroGivesTheStorageBackOnce) {
    Ints array;
    array.SetSize(5);
    const long released = tqtest::g_arraysReleased;
    array.SetSize(0);
    EXPECT_EQ(tqtest::g_arraysReleased, released + 1);
    array.SetSize(0);
    EXPECT_EQ(tqtest::g_arraysReleased, released + 1);
}

TEST(Array, FirstAllocationZeroesTheWholeCapacityAndALaterOneUpToTheSize) {
    Ints array;
    array.m_nGrowBy = 6;
    array.SetSize(2);
    EXPECT_EQ(std::count(array.m_pData, array.m_pData + 6, 0), 6);
    array.SetSize(7);
    ASSERT_EQ(array.m_nMaxSize, 12);
    EXPECT_EQ(std::count(array.m_pData, array.m_pData + 7, 0), 7);
    const auto* rest = reinterpret_cast<const unsigned char*>(array.m_pData + 7);
    EXPECT_EQ(std::count(rest, rest + 5 * sizeof(int), tqtest::kFreshByte), 5 * 4);
}

TEST(Array, StorageComesFromTheArrayOperators) {
    const long made = tqtest::g_arraysMade, released = tqtest::g_arraysReleased;
    {
        Ints array;
        EXPECT_EQ(tqtest::g_arraysMade, made);
        array.SetSize(4);
        EXPECT_EQ(tqtest::g_arraysMade, made + 1);
        array.SetSize(5);
        EXPECT_EQ(tqtest::g_arraysMade, made + 2);
        EXPECT_EQ(tqtest::g_arraysReleased, released + 1);
        array.SetSize(8);  // inside the capacity
        EXPECT_EQ(tqtest::g_arraysMade, made + 2);
    }
    EXPECT_EQ(tqtest::g_arraysMade, made + 2);
    EXPECT_EQ(tqtest::g_arraysReleased, released + 2);
}

TEST(Array, StorageThatTheOtherSideMadeIsGrownAndFreed) {
    const long made = tqtest::g_arraysMade, released = tqtest::g_arraysReleased;
    {
        Ints array;
        array.m_pData = static_cast<int*>(::operator new[](2 * sizeof(int)));
        array.m_pData[0] = 11;
        array.m_pData[1] = 12;
        array.m_nSize = array.m_nMaxSize = 2;
        array.Add(13);
        EXPECT_EQ(Elements(array), (std::vector<int>{11, 12, 13}));
    }
    EXPECT_EQ(tqtest::g_arraysMade - made, 2);
    EXPECT_EQ(tqtest::g_arraysReleased - released, 2);
}

TEST(Array, FailureOfTheFirstAllocationLeavesItEmpty) {
    Ints array;
    array.m_nGrowBy = 3;
    {
        const auto refuse = tqtest::RefuseArrays::Number(1);
        EXPECT_THROW(array.SetSize(2), std::bad_alloc);
    }
    EXPECT_EQ(array.m_pData, nullptr);
    EXPECT_EQ(array.m_nSize, 0);
    EXPECT_EQ(array.m_nMaxSize, 0);
    EXPECT_EQ(array.m_nGrowBy, 3);
}

TEST(Array, FailureToGrowLeavesItUnchanged) {
    Ints array;
    Fill(array, 3);
    int* const storage = array.m_pData;
    const auto unchanged = [&] {
        return array.m_pData == storage && array.m_nMaxSize == 3 &&
               Elements(array) == std::vector<int>{1, 2, 3};
    };
    {
        const auto refuse = tqtest::RefuseArrays::Number(1);
        EXPECT_THROW(array.SetSize(4), std::bad_alloc);
    }
    EXPECT_TRUE(unchanged());
    {
        const auto refuse = tqtest::RefuseArrays::Number(1);
        EXPECT_THROW(array.Add(4), std::bad_alloc);
    }
    EXPECT_TRUE(unchanged());
    array.Add(4);
    EXPECT_EQ(Elements(array), (std::vector<int>{1, 2, 3, 4}));
}

// Byte counts that do not fit are no small allocations.
TEST(Array, SizesBeyondAllMemoryFailAndChangeNothing) {
    for (int64_t size : {INT64_MAX, INT64_MAX / 4 + 1, INT64_MAX / 4, INT64_MAX / 16 + 1,
                         int64_t{1} << 62, int64_t{1} << 60}) {
        Rects rects;
        EXPECT_THROW(rects.SetSize(size), std::bad_alloc) << size;
        EXPECT_EQ(rects.m_pData, nullptr);
        Ints array;
        Fill(array, 2);
        EXPECT_THROW(array.SetSize(size), std::bad_alloc) << size;
        EXPECT_EQ(Elements(array), (std::vector<int>{1, 2}));
        EXPECT_EQ(array.m_nMaxSize, 2);
    }
}

#endif

}  // namespace
