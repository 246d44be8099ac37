// The cache of large buffers.

#include "frame/memory_manager.h"

#include <gtest/gtest.h>
#include <tqipl/buffer.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <set>
#include <thread>
#include <vector>

#include "support/deadline.h"
#include "support/latch.h"
#include "support/replaced_new.h"

namespace {

constexpr uint64_t kMebibyte = 0x100000;
constexpr int kBlock = 300;

// What a chain holds, from the head; looks that it is whole.
std::vector<CIPLMemoryBuf*> Content(const CIPLStorageChain& chain) {
    std::vector<CIPLMemoryBuf*> content;
    const CIPLChainAtom* previous = nullptr;
    for (CIPLChainAtom* atom = chain.m_pHead; atom; atom = atom->m_pNext) {
        EXPECT_EQ(atom->m_pPrev, previous);
        EXPECT_EQ(atom->m_pChain, &chain);
        previous = atom;
        content.push_back(static_cast<CIPLMemoryBuf*>(atom));
        if (content.size() > 10 * kBlock) {
            ADD_FAILURE() << "the chain is a ring";
            break;
        }
    }
    EXPECT_EQ(chain.m_pTail, previous);
    EXPECT_EQ(chain.m_nCount, static_cast<int>(content.size()));
    return content;
}

// Every descriptor is where it belongs and every count is the sum of what it counts. `out` are the
// descriptors that are out with their holders.
void ExpectWhole(const CIPLMemoryAlloc& manager, const std::vector<CIPLMemoryBuf*>& out = {}) {
    const auto cached = Content(manager.m_chainFree);
    const auto used = Content(manager.m_chainUsed);
    const auto empty = Content(manager.m_chainEmpty);
    uint64_t bytesCached = 0, bytesInUse = 0;
    for (const CIPLMemoryBuf* buffer : cached) {
        EXPECT_NE(buffer->m_pData, nullptr);
        bytesCached += buffer->m_nSize;
    }
    for (const auto& held : {used, out})
        for (const CIPLMemoryBuf* buffer : held) {
            EXPECT_NE(buffer->m_pData, nullptr);
            bytesInUse += buffer->m_nSize;
        }
    for (const CIPLMemoryBuf* buffer : empty) {
        EXPECT_EQ(buffer->m_pData, nullptr);
        EXPECT_EQ(buffer->m_nSize, 0u);
    }
    for (const CIPLMemoryBuf* buffer : out) EXPECT_EQ(buffer->m_pChain, nullptr);
    EXPECT_EQ(manager.m_nBytesCached, bytesCached);
    EXPECT_EQ(manager.m_nBytesInUse, bytesInUse);
    EXPECT_EQ(manager.m_nBufferCount, cached.size() + used.size() + out.size());
    std::set<CIPLMemoryBuf*> all;
    for (const auto& part : {cached, used, empty, out}) all.insert(part.begin(), part.end());
    EXPECT_EQ(all.size(), static_cast<size_t>(manager.m_arrBlocks.m_nSize * kBlock));
}

// The system's pages, counted, and refused where a test wants it.
class Pages {
public:
    explicit Pages(bool refuse = false) {
        s_refuse = refuse;
        s_requests.clear();
        tq::g_platformSeams.allocatePages = Allocate;
    }
    ~Pages() { tq::g_platformSeams.allocatePages = tq::SystemAllocatePages; }
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;
    const std::vector<size_t>& Requests() const { return s_requests; }

private:
    static void* Allocate(size_t bytes) {
        s_requests.push_back(bytes);
        return s_refuse ? nullptr : tq::SystemAllocatePages(bytes);
    }
    static inline bool s_refuse;
    static inline std::vector<size_t> s_requests;
};

unsigned char g_foreign;  // an address that is no buffer's

void AgeBy(CIPLMemoryAlloc& manager, int frees) {
    for (int i = 0; i < frees; ++i) ASSERT_FALSE(manager.FreeRaw(&g_foreign));
}

// First in this file, so that the shared manager is not there yet.
TEST(SharedManager, FirstUseMayComeFromSeveralThreadsAtOnce) {
    tqtest::Deadline deadline;
    tqtest::Latch together(4);
    std::array<CIPLMemoryAlloc*, 4> seen{};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&, i] {
            together.ArriveAndWait();
            if (i % 2) IPL_Free(IPL_Malloc(5));
            seen[i] = &tq::SharedMemoryManager();
        });
    for (std::thread& thread : threads) thread.join();
    for (CIPLMemoryAlloc* manager : seen) EXPECT_EQ(manager, &tq::SharedMemoryManager());
    ExpectWhole(tq::SharedMemoryManager());
}

// ---- Chains -------------------------------------------------------------------

TEST(Chain, KeepsItsOrderAndCount) {
    CIPLStorageChain chain;
    CIPLMemoryBuf a, b, c;
    EXPECT_TRUE(Content(chain).empty());
    EXPECT_EQ(chain.PopTail(), nullptr);
    chain.PushTail(&b);
    chain.PushHead(&a);
    chain.PushTail(&c);
    EXPECT_EQ(Content(chain), (std::vector<CIPLMemoryBuf*>{&a, &b, &c}));
    chain.Unlink(&b);
    EXPECT_EQ(Content(chain), (std::vector<CIPLMemoryBuf*>{&a, &c}));
    EXPECT_EQ(b.m_pPrev, nullptr);
    EXPECT_EQ(b.m_pNext, nullptr);
    EXPECT_EQ(b.m_pChain, nullptr);
    chain.PushHead(&b);
    EXPECT_EQ(Content(chain), (std::vector<CIPLMemoryBuf*>{&b, &a, &c}));
    EXPECT_EQ(chain.PopTail(), &c);
    chain.Unlink(&b);
    EXPECT_EQ(Content(chain), std::vector<CIPLMemoryBuf*>{&a});
    chain.Unlink(&a);  // the only one
    EXPECT_TRUE(Content(chain).empty());
    EXPECT_EQ(chain.m_pHead, nullptr);
    chain.PushHead(&c);
    EXPECT_EQ(chain.PopTail(), &c);
    EXPECT_TRUE(Content(chain).empty());
}

// ---- Sizes --------------------------------------------------------------------

TEST(MemoryManager, SizesRoundToTheNextMebibyteAbove) {
    for (auto [size, rounded] : {std::pair<int, unsigned int>{0, 0x100000},
                                 {1, 0x100000},
                                 {0xFFFFF, 0x100000},
                                 {0x100000, 0x200000},
                                 {0x100001, 0x200000},
                                 {0x1FFFFF, 0x200000},
                                 {0x200000, 0x300000},
                                 {1920 * 1080 * 4, 0x800000},
                                 {INT_MAX, 0x80000000},
                                 {-1, 0x100000},
                                 {-0xFFFFF, 0x100000},
                                 {-0x100000, 0},
                                 {-0x1FFFFF, 0},
                                 {-0x200000, 0xFFF00000},
                                 {INT_MIN, 0x80100000}})
        EXPECT_EQ(CIPLMemoryAlloc::RoundedSize(size), rounded) << size;
}

TEST(MemoryManager, BuffersHaveTheirClassSize) {
    Pages pages;
    CIPLMemoryAlloc manager;
    for (auto [size, mebibytes] :
         {std::pair<int, uint64_t>{0, 1}, {0xFFFFF, 1}, {-1, 1}, {0x100000, 2}, {0x300000, 4}}) {
        const uint64_t before = manager.m_nBytesInUse;
        unsigned char* buffer = manager.AllocRaw(size, false);
        ASSERT_NE(buffer, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(buffer) % 4096, 0u);
        EXPECT_EQ(manager.m_nBytesInUse - before, mebibytes * kMebibyte);
        EXPECT_EQ(pages.Requests().back(), mebibytes * kMebibyte);
        buffer[0] = buffer[mebibytes * kMebibyte - 1] = 1;
    }
    ExpectWhole(manager);
}

TEST(MemoryManager, SizesThatRoundToNothingGiveNull) {
    Pages pages;
    CIPLMemoryAlloc manager;
    for (int size : {-0x100000, -0x180000, -0x1FFFFF}) {
        EXPECT_EQ(manager.AllocRaw(size, false), nullptr);
        EXPECT_EQ(manager.AllocRaw(size, true), nullptr);
        EXPECT_EQ(manager.AllocBuf(size), nullptr);
        EXPECT_EQ(IPL_Malloc(size), nullptr);
        EXPECT_EQ(IPL_Malloc(size, 1), nullptr);
    }
    EXPECT_TRUE(pages.Requests().empty());
    EXPECT_EQ(manager.m_nBufferCount, 0u);
    EXPECT_EQ(manager.m_chainEmpty.m_nCount, kBlock);
    ExpectWhole(manager);
}

// ---- Reuse --------------------------------------------------------------------

TEST(MemoryManager, FreedBufferServesTheNextRequestOfItsClassWithItsContents) {
    CIPLMemoryAlloc manager;
    unsigned char* buffer = manager.AllocRaw(100, false);
    std::memset(buffer, 0x5A, kMebibyte);
    EXPECT_TRUE(manager.FreeRaw(buffer));
    ExpectWhole(manager);
    EXPECT_EQ(manager.AllocRaw(0xFFFFF, false), buffer);
    EXPECT_TRUE(std::all_of(buffer, buffer + kMebibyte, [](unsigned char b) { return b == 0x5A; }));
    ExpectWhole(manager);
}

TEST(MemoryManager, ZeroClearsTheWholeClass) {
    CIPLMemoryAlloc manager;
    unsigned char* buffer = manager.AllocRaw(100, true);
    EXPECT_TRUE(std::all_of(buffer, buffer + kMebibyte, [](unsigned char b) { return b == 0; }));
    std::memset(buffer, 0x5A, kMebibyte);
    manager.FreeRaw(buffer);
    EXPECT_EQ(manager.AllocRaw(1, true), buffer);
    EXPECT_TRUE(std::all_of(buffer, buffer + kMebibyte, [](unsigned char b) { return b == 0; }));
}

TEST(MemoryManager, OnlyAnExactFitIsReused) {
    Pages pages;
    CIPLMemoryAlloc manager;
    unsigned char* large = manager.AllocRaw(0x200000, false);
    manager.FreeRaw(large);
    unsigned char* small = manager.AllocRaw(0x100000, false);
    EXPECT_NE(small, large);
    EXPECT_EQ(pages.Requests(), (std::vector<size_t>{0x300000, 0x200000}));
    unsigned char* larger = manager.AllocRaw(0x300000, false);
    EXPECT_NE(larger, large);
    EXPECT_EQ(manager.m_nBytesCached, 3 * kMebibyte);
    EXPECT_EQ(manager.AllocRaw(0x2FFFFF, false), large);
    EXPECT_EQ(manager.m_nBytesCached, 0u);
    ExpectWhole(manager);
}

TEST(MemoryManager, BufferFreedLastIsReusedFirst) {
    CIPLMemoryAlloc manager;
    unsigned char* a = manager.AllocRaw(1, false);
    unsigned char* b = manager.AllocRaw(1, false);
    unsigned char* other = manager.AllocRaw(0x100000, false);
    unsigned char* c = manager.AllocRaw(1, false);
    for (unsigned char* buffer : {b, a, other, c}) manager.FreeRaw(buffer);
    EXPECT_EQ(manager.AllocRaw(1, false), c);
    EXPECT_EQ(manager.AllocRaw(1, false), a);
    EXPECT_EQ(manager.AllocRaw(1, false), b);
    EXPECT_EQ(manager.m_nBytesCached, 2 * kMebibyte);
    ExpectWhole(manager);
}

TEST(MemoryManager, ChainsAreInTheOrderOfUse) {
    CIPLMemoryAlloc manager;
    unsigned char* a = manager.AllocRaw(1, false);
    unsigned char* b = manager.AllocRaw(1, false);
    ASSERT_EQ(Content(manager.m_chainUsed).size(), 2u);
    EXPECT_EQ(Content(manager.m_chainUsed)[0]->m_pData, b);
    EXPECT_EQ(Content(manager.m_chainUsed)[1]->m_pData, a);
    manager.FreeRaw(b);
    manager.FreeRaw(a);
    ASSERT_EQ(Content(manager.m_chainFree).size(), 2u);
    EXPECT_EQ(Content(manager.m_chainFree)[0]->m_pData, b);
    EXPECT_EQ(Content(manager.m_chainFree)[1]->m_pData, a);
}

TEST(MemoryManager, RawAndHeldBuffersShareTheCache) {
    CIPLMemoryAlloc manager;
    CIPLMemoryBuf* held = manager.AllocBuf(1);
    ASSERT_NE(held, nullptr);
    unsigned char* data = held->m_pData;
    EXPECT_EQ(manager.m_chainUsed.m_nCount, 0);
    EXPECT_EQ(manager.m_nBytesInUse, kMebibyte);
    ExpectWhole(manager, {held});
    EXPECT_FALSE(manager.FreeRaw(data));  // not one of AllocRaw
    ExpectWhole(manager, {held});
    manager.FreeBuf(held);
    ExpectWhole(manager);
    EXPECT_EQ(manager.AllocRaw(1, false), data);
    EXPECT_TRUE(manager.FreeRaw(data));
    held = manager.AllocBuf(1);
    EXPECT_EQ(held->m_pData, data);
    ExpectWhole(manager, {held});
}

TEST(MemoryManager, CountersFollowEachStep) {
    CIPLMemoryAlloc manager;
    const auto expect = [&](unsigned int buffers, uint64_t inUse, uint64_t cached) {
        EXPECT_EQ(manager.m_nBufferCount, buffers);
        EXPECT_EQ(manager.m_nBytesInUse, inUse * kMebibyte);
        EXPECT_EQ(manager.m_nBytesCached, cached * kMebibyte);
    };
    expect(0, 0, 0);
    unsigned char* a = manager.AllocRaw(0, false);
    expect(1, 1, 0);
    unsigned char* b = manager.AllocRaw(0x100000, false);
    expect(2, 3, 0);
    CIPLMemoryBuf* c = manager.AllocBuf(0x200000);
    expect(3, 6, 0);
    manager.FreeRaw(a);
    expect(3, 5, 1);
    manager.FreeBuf(c);
    expect(3, 2, 4);
    a = manager.AllocRaw(0, false);
    expect(3, 3, 3);
    manager.FreeRaw(b);
    manager.FreeRaw(a);
    expect(3, 0, 6);
    AgeBy(manager, 1510);
    expect(0, 0, 0);
    ExpectWhole(manager);
}

// ---- Pointers that are no buffer ----------------------------------------------

TEST(MemoryManager, InteriorPointerLeavesTheBufferOut) {
    CIPLMemoryAlloc manager;
    unsigned char* buffer = manager.AllocRaw(100, false);
    buffer[7] = 77;
    for (ptrdiff_t offset : {1, 7, 4096, 0xFFFFF})
        EXPECT_FALSE(manager.FreeRaw(buffer + offset)) << offset;
    EXPECT_EQ(manager.m_chainUsed.m_nCount, 1);
    EXPECT_EQ(buffer[7], 77);
    EXPECT_NE(manager.AllocRaw(100, false), buffer);
    EXPECT_TRUE(manager.FreeRaw(buffer));
    ExpectWhole(manager);
}

TEST(MemoryManager, ForeignAndFreedPointersDoNothing) {
    CIPLMemoryAlloc manager;
    EXPECT_FALSE(manager.FreeRaw(&g_foreign));
    unsigned char* buffer = manager.AllocRaw(100, false);
    EXPECT_FALSE(manager.FreeRaw(&g_foreign));
    EXPECT_TRUE(manager.FreeRaw(buffer));
    EXPECT_FALSE(manager.FreeRaw(buffer));
    EXPECT_FALSE(manager.FreeRaw(buffer));
    EXPECT_EQ(manager.m_chainFree.m_nCount, 1);
    ExpectWhole(manager);
    EXPECT_EQ(manager.AllocRaw(100, false), buffer);
    EXPECT_NE(manager.AllocRaw(100, false), buffer);
}

TEST(MemoryManager, ExportedFunctionsUseTheSharedManager) {
    CIPLMemoryAlloc& shared = tq::SharedMemoryManager();
    const uint64_t before = shared.m_nBytesInUse;
    unsigned char* zeroed = IPL_Malloc(0x100000, 1);
    EXPECT_EQ(shared.m_nBytesInUse - before, 2 * kMebibyte);
    EXPECT_TRUE(
        std::all_of(zeroed, zeroed + 2 * kMebibyte, [](unsigned char b) { return b == 0; }));
    std::memset(zeroed, 0x3C, 0x100001);
    IPL_Free(zeroed);
    EXPECT_EQ(shared.m_nBytesInUse, before);
    EXPECT_EQ(IPL_Malloc(0x100000), zeroed);
    EXPECT_EQ(zeroed[0x100000], 0x3C);
    IPL_Free(zeroed);
    EXPECT_EQ(IPL_Malloc(0x1FFFFF, 0), zeroed);
    EXPECT_EQ(zeroed[0], 0x3C);
    IPL_Free(zeroed + 1);
    EXPECT_EQ(shared.m_nBytesInUse - before, 2 * kMebibyte);
    IPL_Free(zeroed);
    EXPECT_EQ(IPL_Malloc(0x1FFFFF, -1), zeroed);
    EXPECT_EQ(zeroed[0], 0);
    IPL_Free(zeroed);
    IPL_Free(zeroed);
    IPL_Free(&g_foreign);
    ExpectWhole(shared);
}

TEST(MemoryManager, PrivateAndSharedManagersShareNothing) {
    auto* manager = static_cast<CIPLMemoryAlloc*>(IPL_GetMemoryManager());
    ASSERT_NE(manager, nullptr);
    CIPLMemoryAlloc& shared = tq::SharedMemoryManager();
    EXPECT_NE(manager, &shared);
    const uint64_t before = shared.m_nBytesInUse;
    unsigned char* own = manager->AllocRaw(1, false);
    unsigned char* common = IPL_Malloc(1);
    EXPECT_FALSE(manager->FreeRaw(common));
    IPL_Free(own);
    EXPECT_EQ(manager->m_nBytesInUse, kMebibyte);
    EXPECT_EQ(shared.m_nBytesInUse - before, kMebibyte);
    EXPECT_TRUE(manager->FreeRaw(own));
    unsigned char* second = IPL_Malloc(1);
    EXPECT_NE(second, own);
    IPL_Free(common);
    IPL_Free(second);
    ExpectWhole(*manager);
    ExpectWhole(shared);
    IPL_DeletMemoryManager(manager);
    IPL_DeletMemoryManager(nullptr);
}

// ---- Ageing -------------------------------------------------------------------

TEST(MemoryManager, CachedBufferLivesThrough1501FreesAndGoesWithTheNext) {
    CIPLMemoryAlloc manager;
    unsigned char* buffer = manager.AllocRaw(1, false);
    manager.FreeRaw(buffer);
    EXPECT_EQ(Content(manager.m_chainFree)[0]->m_nAge, 0u);
    AgeBy(manager, 1501);
    EXPECT_EQ(manager.m_chainFree.m_nCount, 1);
    EXPECT_EQ(manager.m_nBytesCached, kMebibyte);
    EXPECT_EQ(Content(manager.m_chainFree)[0]->m_nAge, 1501u);
    AgeBy(manager, 1);
    EXPECT_EQ(manager.m_chainFree.m_nCount, 0);
    EXPECT_EQ(manager.m_chainEmpty.m_nCount, kBlock);
    EXPECT_EQ(manager.m_nBytesCached, 0u);
    EXPECT_EQ(manager.m_nBufferCount, 0u);
    ExpectWhole(manager);
}

TEST(MemoryManager, BufferThatStillLivesAfter1501FreesIsReused) {
    Pages pages;
    CIPLMemoryAlloc manager;
    unsigned char* buffer = manager.AllocRaw(1, false);
    buffer[9] = 9;
    manager.FreeRaw(buffer);
    AgeBy(manager, 1501);
    EXPECT_EQ(manager.AllocRaw(1, false), buffer);
    EXPECT_EQ(buffer[9], 9);
    EXPECT_EQ(pages.Requests().size(), 1u);
    manager.FreeRaw(buffer);  // its age starts again
    AgeBy(manager, 1501);
    EXPECT_EQ(manager.m_chainFree.m_nCount, 1);
    AgeBy(manager, 1);
    EXPECT_EQ(manager.m_chainFree.m_nCount, 0);
    manager.AllocRaw(1, false);
    EXPECT_EQ(pages.Requests().size(), 2u);
}

TEST(MemoryManager, FreesOfOtherBuffersAge) {
    CIPLMemoryAlloc manager;
    unsigned char* old = manager.AllocRaw(0x100000, false);
    manager.FreeRaw(old);
    for (int i = 0; i < 1501; ++i) manager.FreeRaw(manager.AllocRaw(1, false));
    EXPECT_EQ(manager.m_nBytesCached, 3 * kMebibyte);
    manager.FreeRaw(manager.AllocRaw(1, false));
    EXPECT_EQ(manager.m_nBytesCached, kMebibyte);
    EXPECT_EQ(manager.m_nBufferCount, 1u);
    ExpectWhole(manager);
}

TEST(MemoryManager, FreesOfHeldBuffersAgeAndNullDoesNot) {
    CIPLMemoryAlloc manager;
    manager.FreeRaw(manager.AllocRaw(0x100000, false));
    for (int i = 0; i < 1501; ++i) {
        manager.FreeBuf(manager.AllocBuf(1));
        manager.FreeBuf(nullptr);
        EXPECT_FALSE(manager.FreeRaw(nullptr));
    }
    EXPECT_EQ(manager.m_nBytesCached, 3 * kMebibyte);
    manager.FreeBuf(manager.AllocBuf(1));
    EXPECT_EQ(manager.m_nBytesCached, kMebibyte);
    ExpectWhole(manager);
}

TEST(MemoryManager, AllocationsDoNotAge) {
    CIPLMemoryAlloc manager;
    manager.FreeRaw(manager.AllocRaw(1, false));
    for (int i = 0; i < 40; ++i) manager.AllocRaw(0x100000, false);
    EXPECT_EQ(Content(manager.m_chainFree)[0]->m_nAge, 0u);
}

TEST(MemoryManager, EachBufferAgesFromItsOwnFree) {
    CIPLMemoryAlloc manager;
    unsigned char* a = manager.AllocRaw(1, false);
    unsigned char* b = manager.AllocRaw(1, false);
    unsigned char* c = manager.AllocRaw(1, false);
    manager.FreeRaw(a);  // ages a: 0
    manager.FreeRaw(b);  // 1, 0
    AgeBy(manager, 100);
    manager.FreeRaw(c);  // 102, 101, 0
    const auto cached = Content(manager.m_chainFree);
    ASSERT_EQ(cached.size(), 3u);
    EXPECT_EQ(cached[0]->m_nAge, 102u);
    EXPECT_EQ(cached[1]->m_nAge, 101u);
    EXPECT_EQ(cached[2]->m_nAge, 0u);
    AgeBy(manager, 1399);
    EXPECT_EQ(manager.m_chainFree.m_nCount, 3);  // 1501, 1500, 1399
    AgeBy(manager, 1);
    EXPECT_EQ(manager.m_chainFree.m_nCount, 2);  // 1501, 1400
    AgeBy(manager, 1);
    EXPECT_EQ(manager.m_chainFree.m_nCount, 1);  // 1401
    ExpectWhole(manager);
}

// One pass returns all that are old enough.
TEST(MemoryManager, SeveralBuffersGoInOnePass) {
    CIPLMemoryAlloc manager;
    std::vector<unsigned char*> buffers;
    for (int i = 0; i < 3; ++i) buffers.push_back(manager.AllocRaw(1, false));
    CIPLMemoryBuf* held = manager.AllocBuf(1);
    for (unsigned char* buffer : buffers) manager.FreeRaw(buffer);
    AgeBy(manager, 1499);  // 1501, 1500, 1499
    for (CIPLMemoryBuf* buffer : Content(manager.m_chainFree)) buffer->m_nAge = 1501;
    manager.FreeBuf(held);
    EXPECT_EQ(manager.m_chainFree.m_nCount, 1);
    EXPECT_EQ(Content(manager.m_chainFree)[0], held);
    EXPECT_EQ(held->m_nAge, 0u);
    EXPECT_EQ(manager.m_nBufferCount, 1u);
    ExpectWhole(manager);
}

TEST(MemoryManager, FreeOfTheSharedManagerAgesButForNull) {
    CIPLMemoryAlloc& shared = tq::SharedMemoryManager();
    IPL_Free(IPL_Malloc(0x900000));
    const auto bytes = shared.m_nBytesCached;
    for (int i = 0; i < 1501; ++i) IPL_Free(&g_foreign);
    for (int i = 0; i < 10; ++i) IPL_Free(nullptr);
    EXPECT_LE(10 * kMebibyte, shared.m_nBytesCached);
    EXPECT_LE(shared.m_nBytesCached, bytes);
    IPL_Free(&g_foreign);
    EXPECT_EQ(shared.m_nBytesCached, 0u);
    ExpectWhole(shared);
}

// ---- Blocks of descriptors ----------------------------------------------------

TEST(MemoryManager, The301stLiveBufferMakesASecondBlock) {
    CIPLMemoryAlloc manager;
    EXPECT_EQ(manager.m_arrBlocks.m_nSize, 0);
    std::vector<unsigned char*> buffers;
    for (int i = 1; i <= 300; ++i) {
        buffers.push_back(manager.AllocRaw(0, false));
        ASSERT_EQ(manager.m_arrBlocks.m_nSize, 1);
        ASSERT_EQ(manager.m_chainEmpty.m_nCount, 300 - i);
    }
    buffers.push_back(manager.AllocRaw(0, false));
    EXPECT_EQ(manager.m_arrBlocks.m_nSize, 2);
    EXPECT_EQ(manager.m_chainEmpty.m_nCount, 299);
    EXPECT_EQ(std::set<unsigned char*>(buffers.begin(), buffers.end()).size(), 301u);
    ExpectWhole(manager);
    for (unsigned char* buffer : buffers) EXPECT_TRUE(manager.FreeRaw(buffer));
    EXPECT_EQ(manager.m_arrBlocks.m_nSize, 2);  // blocks stay
    EXPECT_EQ(manager.m_nBytesCached, 301 * kMebibyte);
    ExpectWhole(manager);
}

TEST(MemoryManager, DescriptorsAreUsedFromTheTailOfTheEmptyChain) {
    CIPLMemoryAlloc manager;
    CIPLMemoryBuf* first = manager.AllocBuf(1);
    ASSERT_EQ(manager.m_arrBlocks.m_nSize, 1);
    CIPLMemoryBuf* const block = manager.m_arrBlocks.m_pData[0];
    EXPECT_EQ(first, block);
    EXPECT_EQ(manager.AllocBuf(1), block + 299);
    EXPECT_EQ(manager.AllocBuf(1), block + 298);
    EXPECT_EQ(Content(manager.m_chainEmpty).front(), block + 1);
}

TEST(MemoryManager, ResizeToTheSameSizeKeepsTheMemory) {
    Pages pages;
    CIPLMemoryBuf buffer;
    EXPECT_EQ(buffer.Resize(0, false), nullptr);
    EXPECT_EQ(buffer.Resize(0, true), nullptr);
    unsigned char* data = buffer.Resize(0x100000, false);
    data[5] = 55;
    EXPECT_EQ(buffer.Resize(0x100000, false), data);
    EXPECT_EQ(data[5], 55);
    EXPECT_EQ(buffer.Resize(0x100000, true), data);
    EXPECT_EQ(data[5], 0);
    EXPECT_EQ(pages.Requests().size(), 1u);
    EXPECT_EQ(buffer.Resize(0, false), nullptr);
    EXPECT_EQ(buffer.m_pData, nullptr);
    EXPECT_EQ(buffer.m_nSize, 0u);
    EXPECT_FALSE(buffer.m_bVirtual);
}

// ---- Freed twice, and the end -------------------------------------------------

TEST(MemoryManager, SecondFreeOfAHeldBufferLeavesTheChainsWhole) {
    tqtest::Deadline deadline;
    CIPLMemoryAlloc manager;
    CIPLMemoryBuf* held = manager.AllocBuf(1);
    CIPLMemoryBuf* other = manager.AllocBuf(1);
    manager.FreeBuf(held);
    manager.FreeBuf(held);
    EXPECT_EQ(manager.m_chainFree.m_nCount, 1);
    EXPECT_EQ(manager.m_nBytesInUse, kMebibyte);
    EXPECT_EQ(manager.m_nBytesCached, kMebibyte);
    ExpectWhole(manager, {other});
    unsigned char* raw =
        manager.AllocRaw(1, false);  // the same descriptor, now with another holder
    EXPECT_EQ(raw, held->m_pData);
    manager.FreeBuf(held);
    EXPECT_EQ(manager.m_chainUsed.m_nCount, 1);
    ExpectWhole(manager, {other});
}

TEST(MemoryManager, SecondFreeThatRetiresTheBufferLeavesTheChainsWhole) {
    tqtest::Deadline deadline;
    CIPLMemoryAlloc manager;
    CIPLMemoryBuf* held = manager.AllocBuf(1);
    manager.FreeBuf(held);
    AgeBy(manager, 1501);
    manager.FreeBuf(held);
    EXPECT_EQ(manager.m_chainFree.m_nCount, 0);
    EXPECT_EQ(manager.m_chainEmpty.m_nCount, kBlock);
    ExpectWhole(manager);
}

TEST(MemoryManager, EndOfAnUnusedManagerDoesNothing) {
    IPL_DeletMemoryManager(IPL_GetMemoryManager());
}

TEST(MemoryManager, SeveralThreadsGetBuffersOfTheirOwn) {
    tqtest::Deadline deadline;
    CIPLMemoryAlloc manager;
    std::vector<std::thread> threads;
    for (int t = 1; t <= 4; ++t)
        threads.emplace_back([&manager, t] {
            for (int round = 0; round < 300; ++round) {
                const int size = static_cast<int>((t + round) % 3 * kMebibyte);
                unsigned char* raw = manager.AllocRaw(size, round % 16 == 0);
                CIPLMemoryBuf* held = manager.AllocBuf(size);
                for (unsigned char* data : {raw, held->m_pData}) data[0] = data[size] = t;
                manager.FreeRaw(raw + 1);
                for (unsigned char* data : {raw, held->m_pData}) {
                    EXPECT_EQ(data[0], t);
                    EXPECT_EQ(data[size], t);
                }
                EXPECT_TRUE(manager.FreeRaw(raw));
                manager.FreeBuf(held);
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(manager.m_nBytesInUse, 0u);
    EXPECT_LE(manager.m_nBufferCount, 4u * 2 * 3);
    ExpectWhole(manager);
}

// ---- Memory that is not to be had ---------------------------------------------

#if TQTEST_REPLACES_NEW

// Another thread gets in; one that does not would wait for ever.
void ExpectLockIsFree(CIPLMemoryAlloc& manager) {
    tqtest::Deadline deadline;
    std::thread([&] { manager.FreeRaw(&g_foreign); }).join();
}

TEST(MemoryManager, HugeSizesAreAskedForWholeAndFailCleanly) {
    Pages pages(true);
    CIPLMemoryAlloc manager;
    for (auto [size, bytes] : {std::pair<int, size_t>{INT_MAX, 0x80000000},
                               {INT_MIN, 0x80100000},
                               {-0x200000, 0xFFF00000}}) {
        EXPECT_THROW(manager.AllocRaw(size, false), std::bad_alloc);
        EXPECT_EQ(pages.Requests().back(), bytes);
        ExpectWhole(manager);
    }
    EXPECT_EQ(manager.m_nBufferCount, 0u);
}

TEST(MemoryManager, HeapServesWhenPagesAreNotToBeHad) {
    Pages pages(true);
    CIPLMemoryAlloc manager;
    const long made = tqtest::g_arraysMade;
    unsigned char* plain = manager.AllocRaw(1, false);
    EXPECT_EQ(plain[0], tqtest::kFreshByte);  // not cleared
    EXPECT_FALSE(Content(manager.m_chainUsed)[0]->m_bVirtual);
    unsigned char* zeroed = manager.AllocRaw(1, true);
    EXPECT_TRUE(std::all_of(zeroed, zeroed + kMebibyte, [](unsigned char b) { return b == 0; }));
    EXPECT_EQ(tqtest::g_arraysMade - made, 4);  // a block, the list of blocks, two buffers
    ExpectWhole(manager);

    const long released = tqtest::g_arraysReleased;
    manager.FreeRaw(plain);
    EXPECT_EQ(manager.AllocRaw(2, false), plain);
    manager.FreeRaw(plain);
    manager.FreeRaw(zeroed);
    EXPECT_EQ(tqtest::g_arraysReleased, released);
    AgeBy(manager, 1502);
    EXPECT_EQ(tqtest::g_arraysReleased - released, 2);
    ExpectWhole(manager);
}

TEST(MemoryManager, DescriptorChangesBetweenHeapAndPages) {
    CIPLMemoryBuf buffer;
    const long made = tqtest::g_arraysMade, released = tqtest::g_arraysReleased;
    {
        Pages pages(true);
        EXPECT_NE(buffer.Resize(0x100000, false), nullptr);
        EXPECT_FALSE(buffer.m_bVirtual);
    }
    EXPECT_NE(buffer.Resize(0x200000, false), nullptr);
    EXPECT_TRUE(buffer.m_bVirtual);
    EXPECT_EQ(tqtest::g_arraysMade - made, 1);
    EXPECT_EQ(tqtest::g_arraysReleased - released, 1);
    EXPECT_EQ(buffer.m_nSize, 0x200000u);
}

TEST(MemoryManager, FailureOfABufferLeavesEverythingWhole) {
    Pages pages(true);
    CIPLMemoryAlloc manager;
    unsigned char* live = manager.AllocRaw(1, false);
    unsigned char* cached = manager.AllocRaw(1, false);
    manager.FreeRaw(cached);
    const int empty = manager.m_chainEmpty.m_nCount;
    {
        const auto refuse = tqtest::RefuseArrays::From(kMebibyte);
        EXPECT_THROW(manager.AllocRaw(0x100000, false), std::bad_alloc);
        EXPECT_THROW(manager.AllocRaw(0x100000, true), std::bad_alloc);
        EXPECT_THROW(manager.AllocBuf(0x100000), std::bad_alloc);
        EXPECT_EQ(manager.m_chainEmpty.m_nCount, empty);
        EXPECT_EQ(manager.m_nBufferCount, 2u);
        EXPECT_EQ(manager.m_nBytesInUse, kMebibyte);
        EXPECT_EQ(manager.m_nBytesCached, kMebibyte);
        ExpectWhole(manager);
        ExpectLockIsFree(manager);
        EXPECT_EQ(manager.AllocRaw(5, false), cached);  // what is cached still serves
    }
    EXPECT_NE(manager.AllocRaw(0x100000, false), nullptr);
    EXPECT_TRUE(manager.FreeRaw(live));
    ExpectWhole(manager);
}

TEST(MemoryManager, FailureOfADescriptorBlockLeavesEverythingWhole) {
    CIPLMemoryAlloc manager;
    for (int number : {1, 2}) {  // the block, and its place in the list of blocks
        const long made = tqtest::g_arraysMade, released = tqtest::g_arraysReleased;
        {
            const auto refuse = tqtest::RefuseArrays::Number(number);
            EXPECT_THROW(manager.AllocRaw(1, false), std::bad_alloc);
        }
        EXPECT_EQ(tqtest::g_arraysMade - made, tqtest::g_arraysReleased - released);
        EXPECT_EQ(manager.m_arrBlocks.m_nSize, 0);
        EXPECT_EQ(manager.m_chainEmpty.m_nCount, 0);
        ExpectWhole(manager);
        ExpectLockIsFree(manager);
    }
    EXPECT_NE(manager.AllocRaw(1, false), nullptr);
    ExpectWhole(manager);
}

TEST(MemoryManager, FailureOfALaterBlockKeepsTheFirst) {
    CIPLMemoryAlloc manager;
    for (int i = 0; i < kBlock; ++i) manager.AllocRaw(0, false);
    for (int number : {1, 2}) {
        const auto refuse = tqtest::RefuseArrays::Number(number);
        EXPECT_THROW(manager.AllocBuf(0), std::bad_alloc);
        ExpectWhole(manager);
    }
    EXPECT_EQ(manager.m_arrBlocks.m_nSize, 1);
    EXPECT_NE(manager.AllocRaw(0, false), nullptr);
    EXPECT_EQ(manager.m_arrBlocks.m_nSize, 2);
}

TEST(MemoryManager, ExportedAllocationThrowsWhenMemoryIsExhausted) {
    Pages pages(true);
    IPL_Free(IPL_Malloc(1));
    const auto refuse = tqtest::RefuseArrays::From(kMebibyte);
    EXPECT_THROW(IPL_Malloc(0x5000000), std::bad_alloc);
    EXPECT_THROW(IPL_Malloc(0x5000000, 1), std::bad_alloc);
    ExpectWhole(tq::SharedMemoryManager());
}

// The sanitizers look that nothing leaks; the operators count the heap's part.
TEST(MemoryManager, EndReleasesCachedUsedAndHeldBuffers) {
    const long live = tqtest::g_arraysMade - tqtest::g_arraysReleased;
    for (bool refuse : {false, true}) {
        Pages pages(refuse);
        void* manager = IPL_GetMemoryManager();
        auto* alloc = static_cast<CIPLMemoryAlloc*>(manager);
        alloc->FreeRaw(alloc->AllocRaw(1, false));
        alloc->AllocRaw(0x100000, false);
        alloc->AllocBuf(0x200000);
        for (int i = 0; i < 300; ++i) alloc->AllocRaw(1, false);
        IPL_DeletMemoryManager(manager);
        EXPECT_EQ(tqtest::g_arraysMade - tqtest::g_arraysReleased, live);
    }
}

#endif

}  // namespace
