#pragma once

// The cache of large buffers behind IPL_Malloc and CTQIPLMemoryAuto.

#include <tqipl/array.h>

#include <cstdint>

#include "frame/platform.h"

class CIPLStorageChain;

// An entry of a doubly linked chain.
class CIPLChainAtom {
public:
    virtual ~CIPLChainAtom() { m_pPrev = m_pNext = nullptr; }

    CIPLChainAtom* m_pPrev = nullptr;
    CIPLChainAtom* m_pNext = nullptr;
    CIPLStorageChain* m_pChain = nullptr;  // the chain that it is on
};

// A chain of atoms, which it does not own.
class CIPLStorageChain {
public:
    virtual ~CIPLStorageChain() {}
    void PushHead(CIPLChainAtom* atom);
    void PushTail(CIPLChainAtom* atom);
    CIPLChainAtom* PopTail();  // null if empty
    void Unlink(CIPLChainAtom* atom);

    CIPLChainAtom* m_pHead = nullptr;
    CIPLChainAtom* m_pTail = nullptr;
    int m_nCount = 0;
};

// The descriptor of one buffer. It is on one of the manager's three chains, or out with a
// CTQIPLMemoryAuto and on none.
class CIPLMemoryBuf final : public CIPLChainAtom {
public:
    ~CIPLMemoryBuf() override { ReleaseMemory(); }

    // Memory of exactly `size` bytes, the same as before if the size is; null for 0. If there is
    // none to be had std::bad_alloc leaves, and the descriptor holds nothing.
    unsigned char* Resize(unsigned int size, bool zero);
    void ReleaseMemory();

    unsigned char* m_pData = nullptr;
    bool m_bVirtual = false;  // pages of the system, not of the heap
    unsigned int m_nSize = 0;
    unsigned int m_nAge = 0;  // frees seen while cached
};

class CIPLMemoryAlloc {
public:
    CIPLMemoryAlloc() = default;
    virtual ~CIPLMemoryAlloc();
    CIPLMemoryAlloc(const CIPLMemoryAlloc&) = delete;
    CIPLMemoryAlloc& operator=(const CIPLMemoryAlloc&) = delete;

    unsigned char* AllocRaw(int size, bool zero);
    bool FreeRaw(unsigned char* pointer);  // false if the pointer is not of this manager
    CIPLMemoryBuf* AllocBuf(int size);     // null if the size rounds to 0
    void FreeBuf(CIPLMemoryBuf* buffer);

    // The next multiple of a mebibyte above `size`, in unsigned 32 bits: 0x100000 gives 0x200000.
    static unsigned int RoundedSize(int size);

    CIPLStorageChain m_chainFree;   // cached, the one freed first at the head
    CIPLStorageChain m_chainUsed;   // out through AllocRaw, the newest at the head
    CIPLStorageChain m_chainEmpty;  // without memory
    CTQArray<CIPLMemoryBuf*, CIPLMemoryBuf*> m_arrBlocks;  // arrays of kBlock descriptors
    unsigned int m_nBufferCount = 0;                       // descriptors that hold memory
    uint64_t m_nBytesInUse = 0;
    uint64_t m_nBytesCached = 0;

private:
    static constexpr unsigned int kUnit = 0x100000;
    static constexpr int kBlock = 300;
    static constexpr unsigned int kRetireAge = 1501;

    CIPLMemoryBuf* Take(int size, bool zero);
    CIPLMemoryBuf* TakeEmpty();
    void Cache(CIPLMemoryBuf* buffer);
    void AgeCache();

    tq::CriticalSection m_cs;
};

namespace tq {

// The manager behind IPL_Malloc. Made at the first call, by one thread however many call.
CIPLMemoryAlloc& SharedMemoryManager();

}  // namespace tq
