// Buffers for the length of a scope.

#include <gtest/gtest.h>
#include <tqipl/buffer.h>

#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

#include "frame/memory_manager.h"
#include "support/deadline.h"
#include "support/replaced_new.h"

namespace {

constexpr uint64_t kMebibyte = 0x100000;

// An explicit instantiation may name private members, and hands them out here.
template <class Tag, typename Tag::Type kMember> struct Expose {
    friend typename Tag::Type Reach(Tag) { return kMember; }
};
struct SetTag {
    using Type = unsigned char* (CTQIPLMemoryAuto::*)(int);
    friend Type Reach(SetTag);
};
struct SizeTag {
    using Type = int CTQIPLMemoryAuto::*;
    friend Type Reach(SizeTag);
};
struct MemoryTag {
    using Type = CIPLMemoryBuf* CTQIPLMemoryAuto::*;
    friend Type Reach(MemoryTag);
};
struct ManagerTag {
    using Type = void* CTQIPLMemoryAuto::*;
    friend Type Reach(ManagerTag);
};
template struct Expose<SetTag, &CTQIPLMemoryAuto::Set>;
template struct Expose<SizeTag, &CTQIPLMemoryAuto::m_nSize>;
template struct Expose<MemoryTag, &CTQIPLMemoryAuto::m_pMemory>;
template struct Expose<ManagerTag, &CTQIPLMemoryAuto::m_pManager>;

unsigned char* Set(CTQIPLMemoryAuto& buffer, int size) { return (buffer.*Reach(SetTag{}))(size); }
int SizeOf(CTQIPLMemoryAuto& buffer) { return buffer.*Reach(SizeTag{}); }
CIPLMemoryBuf* MemoryOf(CTQIPLMemoryAuto& buffer) { return buffer.*Reach(MemoryTag{}); }
void* ManagerOf(CTQIPLMemoryAuto& buffer) { return buffer.*Reach(ManagerTag{}); }

class MemoryAuto : public testing::Test {
protected:
    ~MemoryAuto() override { IPL_DeletMemoryManager(m_own); }
    uint64_t InUse() const { return m_own->m_nBytesInUse / kMebibyte; }
    uint64_t Cached() const { return m_own->m_nBytesCached / kMebibyte; }

    CIPLMemoryAlloc* m_own = static_cast<CIPLMemoryAlloc*>(IPL_GetMemoryManager());
    CIPLMemoryAlloc& m_shared = tq::SharedMemoryManager();
};

static_assert(sizeof(CTQIPLMemoryAuto) == sizeof(void*) + 8 + 8 + 8 + 8);
static_assert(std::is_same_v<
              decltype(std::declval<CTQIPLMemoryAuto&>() = std::declval<const CTQIPLMemoryAuto&>()),
              CTQIPLMemoryAuto&>);

TEST_F(MemoryAuto, DefaultHoldsNothing) {
    const uint64_t inUse = m_shared.m_nBytesInUse;
    const int cached = m_shared.m_chainFree.m_nCount;
    {
        CTQIPLMemoryAuto buffer;
        EXPECT_EQ(buffer.IsNULL(), 1);
        EXPECT_EQ(buffer.Data(), nullptr);
        EXPECT_EQ(SizeOf(buffer), 0);
        EXPECT_EQ(MemoryOf(buffer), nullptr);
        EXPECT_EQ(ManagerOf(buffer), nullptr);
    }
    EXPECT_EQ(m_shared.m_nBytesInUse, inUse);
    EXPECT_EQ(m_shared.m_chainFree.m_nCount, cached);
}

TEST_F(MemoryAuto, ManagerAloneAllocatesNothing) {
    CTQIPLMemoryAuto buffer(m_own);
    EXPECT_EQ(buffer.IsNULL(), 1);
    EXPECT_EQ(ManagerOf(buffer), m_own);
    EXPECT_EQ(m_own->m_nBufferCount, 0u);
}

TEST_F(MemoryAuto, OneByteTakesTwoMebibytes) {
    CTQIPLMemoryAuto buffer(1, m_own);
    EXPECT_EQ(buffer.IsNULL(), 0);
    ASSERT_NE(buffer.Data(), nullptr);
    EXPECT_EQ(buffer.Data(), MemoryOf(buffer)->m_pData);
    EXPECT_EQ(MemoryOf(buffer)->m_nSize, 2 * kMebibyte);
    EXPECT_EQ(SizeOf(buffer), 1);
    EXPECT_EQ(InUse(), 2u);
    EXPECT_EQ(m_own->m_chainUsed.m_nCount, 0);
    buffer.Data()[0] = buffer.Data()[2 * kMebibyte - 1] = 1;
}

TEST_F(MemoryAuto, EverySizeTakesAMebibyteMoreThanItsClass) {
    for (auto [size, mebibytes] : {std::pair<int, uint64_t>{0, 2},
                                   {0xFFFFF, 2},
                                   {0x100000, 3},
                                   {0x1FFFFF, 3},
                                   {0x500000, 7},
                                   {-1, 2},
                                   {-0x100000, 1},
                                   {-0x1FFFFF, 1}}) {
        CTQIPLMemoryAuto buffer(size, m_own);
        EXPECT_EQ(buffer.IsNULL(), 0);
        EXPECT_EQ(MemoryOf(buffer)->m_nSize, mebibytes * kMebibyte) << size;
        EXPECT_EQ(SizeOf(buffer), size);
    }
}

// The rounded size is taken as signed when it is rounded again.
TEST_F(MemoryAuto, SizesThatRoundToNothingAtLastHoldNothing) {
    for (int size : {-0x200000, -0x2FFFFF}) {
        CTQIPLMemoryAuto buffer(size, m_own);
        EXPECT_EQ(buffer.IsNULL(), 1);
        EXPECT_EQ(buffer.Data(), nullptr);
        EXPECT_EQ(SizeOf(buffer), size);
        EXPECT_EQ(ManagerOf(buffer), m_own);
    }
    EXPECT_EQ(m_own->m_nBufferCount, 0u);
}

TEST_F(MemoryAuto, NullManagerIsTheSharedOne) {
    const uint64_t inUse = m_shared.m_nBytesInUse;
    {
        CTQIPLMemoryAuto buffer(1, nullptr);
        EXPECT_EQ(m_shared.m_nBytesInUse, inUse + 2 * kMebibyte);
        EXPECT_EQ(ManagerOf(buffer), nullptr);
    }
    EXPECT_EQ(m_shared.m_nBytesInUse, inUse);
}

TEST_F(MemoryAuto, EndGivesTheBufferToTheCache) {
    unsigned char* data;
    {
        CTQIPLMemoryAuto buffer(1, m_own);
        data = buffer.Data();
        data[3] = 33;
    }
    EXPECT_EQ(InUse(), 0u);
    EXPECT_EQ(Cached(), 2u);
    CTQIPLMemoryAuto next(2, m_own);
    EXPECT_EQ(next.Data(), data);
    EXPECT_EQ(data[3], 33);
    EXPECT_EQ(Cached(), 0u);
}

TEST_F(MemoryAuto, ReleaseGivesTheBufferBackOnceAndForgetsTheManager) {
    CTQIPLMemoryAuto buffer(5, m_own);
    buffer.Release();
    EXPECT_EQ(buffer.IsNULL(), 1);
    EXPECT_EQ(MemoryOf(buffer), nullptr);
    EXPECT_EQ(ManagerOf(buffer), nullptr);
    EXPECT_EQ(SizeOf(buffer), 5);  // stays
    EXPECT_EQ(Cached(), 2u);
    buffer.Release();
    EXPECT_EQ(m_own->m_chainFree.m_nCount, 1);
}

TEST_F(MemoryAuto, ReleaseOfNothingForgetsTheManagerTooAndAgesNothing) {
    { CTQIPLMemoryAuto(1, m_own); }
    CTQIPLMemoryAuto buffer(m_own);
    buffer.Release();
    EXPECT_EQ(ManagerOf(buffer), nullptr);
    EXPECT_EQ(static_cast<CIPLMemoryBuf*>(m_own->m_chainFree.m_pHead)->m_nAge, 0u);
}

TEST_F(MemoryAuto, ReleasedObjectIsUsedAgainWithTheSharedManager) {
    CTQIPLMemoryAuto buffer(1, m_own);
    buffer.Release();
    const uint64_t inUse = m_shared.m_nBytesInUse;
    EXPECT_NE(Set(buffer, 1), nullptr);
    EXPECT_EQ(InUse(), 0u);
    EXPECT_EQ(m_shared.m_nBytesInUse, inUse + 2 * kMebibyte);
}

TEST_F(MemoryAuto, TransferMovesTheBuffer) {
    {
        CTQIPLMemoryAuto target;
        unsigned char* data;
        {
            CTQIPLMemoryAuto source(7, m_own);
            data = source.Data();
            CIPLMemoryBuf* const memory = MemoryOf(source);
            source.Transfer(target);
            EXPECT_EQ(source.IsNULL(), 1);
            EXPECT_EQ(source.Data(), nullptr);
            EXPECT_EQ(SizeOf(source), 0);
            EXPECT_EQ(MemoryOf(source), nullptr);
            EXPECT_EQ(ManagerOf(source), nullptr);
            EXPECT_EQ(MemoryOf(target), memory);
        }
        EXPECT_EQ(InUse(), 2u);
        EXPECT_EQ(target.IsNULL(), 0);
        EXPECT_EQ(target.Data(), data);
        EXPECT_EQ(SizeOf(target), 7);
        EXPECT_EQ(ManagerOf(target), m_own);
    }
    EXPECT_EQ(InUse(), 0u);
    EXPECT_EQ(m_own->m_chainFree.m_nCount, 1);  // given back once
}

TEST_F(MemoryAuto, TransferDoesNotReleaseWhatTheTargetHeld) {
    CTQIPLMemoryAuto source(1, m_own), target(0x100000, m_own);
    CTQIPLMemoryAuto keeper(target);
    source.Transfer(target);
    EXPECT_EQ(InUse(), 2u + 3u);
    EXPECT_EQ(Cached(), 0u);
    target.Release();
    keeper.Release();
    EXPECT_EQ(Cached(), 5u);
}

TEST_F(MemoryAuto, TransferOfNothingEmptiesTheTarget) {
    CTQIPLMemoryAuto source, target(m_own);
    source.Transfer(target);
    EXPECT_EQ(target.IsNULL(), 1);
    EXPECT_EQ(ManagerOf(target), nullptr);
}

TEST_F(MemoryAuto, TransferToItselfKeepsTheBuffer) {
    CTQIPLMemoryAuto buffer(1, m_own);
    unsigned char* const data = buffer.Data();
    buffer.Transfer(buffer);
    EXPECT_EQ(buffer.Data(), data);
    buffer.Release();
    EXPECT_EQ(Cached(), 2u);
}

TEST_F(MemoryAuto, CopySharesAllFields) {
    CTQIPLMemoryAuto first(9, m_own);
    CTQIPLMemoryAuto second(first);
    EXPECT_EQ(second.Data(), first.Data());
    EXPECT_EQ(SizeOf(second), 9);
    EXPECT_EQ(MemoryOf(second), MemoryOf(first));
    EXPECT_EQ(ManagerOf(second), m_own);
    EXPECT_EQ(InUse(), 2u);
    CTQIPLMemoryAuto nothing;
    second.Transfer(nothing);
    EXPECT_EQ(InUse(), 2u);
    CTQIPLMemoryAuto none;
    none.Transfer(nothing);  // only `first` is left to release
}

TEST_F(MemoryAuto, AssignmentCopiesWithoutReleasing) {
    CTQIPLMemoryAuto first(1, m_own), second(0x100000, m_own), keeper(second);
    CTQIPLMemoryAuto& result = (second = first);
    EXPECT_EQ(&result, &second);
    EXPECT_EQ(second.Data(), first.Data());
    EXPECT_EQ(MemoryOf(second), MemoryOf(first));
    EXPECT_EQ(SizeOf(second), 1);
    EXPECT_EQ(InUse(), 5u);
    CTQIPLMemoryAuto& self = first;
    first = self;
    EXPECT_EQ(InUse(), 5u);
    second = CTQIPLMemoryAuto();
    EXPECT_EQ(second.IsNULL(), 1);
    EXPECT_EQ(InUse(), 5u);
}

TEST_F(MemoryAuto, SecondReleaseThroughACopyLeavesTheChainsWhole) {
    tqtest::Deadline deadline;
    {
        CTQIPLMemoryAuto first(1, m_own);
        CTQIPLMemoryAuto second(first);
    }
    EXPECT_EQ(InUse(), 0u);
    EXPECT_EQ(Cached(), 2u);
    EXPECT_EQ(m_own->m_chainFree.m_nCount, 1);
    EXPECT_EQ(m_own->m_chainFree.m_pHead, m_own->m_chainFree.m_pTail);
    EXPECT_EQ(m_own->m_chainFree.m_pHead->m_pNext, nullptr);
    CTQIPLMemoryAuto third(1, m_own), fourth(1, m_own);
    EXPECT_NE(third.Data(), fourth.Data());
    EXPECT_EQ(InUse(), 4u);
    EXPECT_EQ(Cached(), 0u);
}

// ---- Set ----------------------------------------------------------------------

TEST_F(MemoryAuto, SetOnAnEmptyObjectAllocates) {
    CTQIPLMemoryAuto buffer(m_own);
    unsigned char* data = Set(buffer, 1);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(buffer.Data(), data);
    EXPECT_EQ(SizeOf(buffer), 1);
    EXPECT_EQ(InUse(), 2u);
}

// What is held is a mebibyte above the class asked for, so that the same size again goes through
// the cache.
TEST_F(MemoryAuto, SetOfTheSameSizeGoesThroughTheCache) {
    CTQIPLMemoryAuto buffer(1, m_own);
    { CTQIPLMemoryAuto other(0x100000, m_own); }  // a cached buffer that ages
    const auto* const old = static_cast<CIPLMemoryBuf*>(m_own->m_chainFree.m_pHead);
    unsigned char* const data = buffer.Data();
    data[0] = 11;
    EXPECT_EQ(old->m_nAge, 0u);
    EXPECT_EQ(Set(buffer, 1), data);
    EXPECT_EQ(data[0], 11);
    EXPECT_EQ(old->m_nAge, 1u);  // the buffer was freed and taken again
    EXPECT_EQ(InUse(), 2u);
    EXPECT_EQ(m_own->m_nBufferCount, 2u);
}

TEST_F(MemoryAuto, SetOfASizeOneClassAboveKeepsTheBuffer) {
    CTQIPLMemoryAuto buffer(1, m_own);
    { CTQIPLMemoryAuto other(0x200000, m_own); }
    const auto* const old = static_cast<CIPLMemoryBuf*>(m_own->m_chainFree.m_pHead);
    unsigned char* const data = buffer.Data();
    CIPLMemoryBuf* const memory = MemoryOf(buffer);
    data[0] = 11;
    for (int size : {0x100000, 0x1FFFFF}) {
        EXPECT_EQ(Set(buffer, size), data);
        EXPECT_EQ(MemoryOf(buffer), memory);
        EXPECT_EQ(memory->m_nSize, 2 * kMebibyte);
        EXPECT_EQ(SizeOf(buffer), size);
        EXPECT_EQ(data[0], 11);
        EXPECT_EQ(old->m_nAge, 0u);  // nothing was freed
    }
}

TEST_F(MemoryAuto, SetOfAnotherSizeGivesTheOldBufferBack) {
    CTQIPLMemoryAuto buffer(1, m_own);
    unsigned char* const data = buffer.Data();
    EXPECT_NE(Set(buffer, 0x400000), data);
    EXPECT_EQ(MemoryOf(buffer)->m_nSize, 6 * kMebibyte);
    EXPECT_EQ(InUse(), 6u);
    EXPECT_EQ(Cached(), 2u);
    EXPECT_EQ(Set(buffer, 1), data);
    EXPECT_EQ(InUse(), 2u);
    EXPECT_EQ(Cached(), 6u);
}

TEST_F(MemoryAuto, SetToNothingGivesTheOldBufferBack) {
    CTQIPLMemoryAuto buffer(1, m_own);
    EXPECT_EQ(Set(buffer, -0x200000), nullptr);
    EXPECT_EQ(buffer.IsNULL(), 1);
    EXPECT_EQ(MemoryOf(buffer), nullptr);
    EXPECT_EQ(InUse(), 0u);
    EXPECT_EQ(Cached(), 2u);
}

// ---- Memory that is not to be had ---------------------------------------------

#if TQTEST_REPLACES_NEW

class ExhaustedMemoryAuto : public MemoryAuto {
protected:
    ExhaustedMemoryAuto() {
        m_own->FreeRaw(m_own->AllocRaw(0x400000, false));  // descriptors are there
        tq::g_platformSeams.allocatePages = [](size_t) -> void* { return nullptr; };
    }
    ~ExhaustedMemoryAuto() override { tq::g_platformSeams.allocatePages = tq::SystemAllocatePages; }
};

TEST_F(ExhaustedMemoryAuto, ConstructionThrowsAndHoldsNothing) {
    const auto refuse = tqtest::RefuseArrays::From(kMebibyte);
    EXPECT_THROW(CTQIPLMemoryAuto(1, m_own), std::bad_alloc);
    EXPECT_EQ(InUse(), 0u);
    EXPECT_EQ(Cached(), 5u);
}

TEST_F(ExhaustedMemoryAuto, SetThrowsAndTheOldBufferIsBack) {
    CTQIPLMemoryAuto buffer(1, m_own);  // from the heap
    {
        const auto refuse = tqtest::RefuseArrays::From(kMebibyte);
        EXPECT_THROW(Set(buffer, 0x600000), std::bad_alloc);
    }
    EXPECT_EQ(buffer.IsNULL(), 1);
    EXPECT_EQ(MemoryOf(buffer), nullptr);
    EXPECT_EQ(InUse(), 0u);
    EXPECT_EQ(Cached(), 7u);
    EXPECT_NE(Set(buffer, 1), nullptr);
}

#endif

}  // namespace
