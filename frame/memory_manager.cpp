// The cache of large buffers.

#include "frame/memory_manager.h"

#include <tqipl/buffer.h>

#include <cstring>
#include <memory>
#include <new>

using tq::Lock;

void CIPLStorageChain::PushHead(CIPLChainAtom* atom) {
    atom->m_pPrev = nullptr;
    atom->m_pNext = m_pHead;
    (m_pHead ? m_pHead->m_pPrev : m_pTail) = atom;
    m_pHead = atom;
    atom->m_pChain = this;
    ++m_nCount;
}

void CIPLStorageChain::PushTail(CIPLChainAtom* atom) {
    atom->m_pNext = nullptr;
    atom->m_pPrev = m_pTail;
    (m_pTail ? m_pTail->m_pNext : m_pHead) = atom;
    m_pTail = atom;
    atom->m_pChain = this;
    ++m_nCount;
}

CIPLChainAtom* CIPLStorageChain::PopTail() {
    CIPLChainAtom* atom = m_pTail;
    if (atom) Unlink(atom);
    return atom;
}

void CIPLStorageChain::Unlink(CIPLChainAtom* atom) {
    (atom->m_pPrev ? atom->m_pPrev->m_pNext : m_pHead) = atom->m_pNext;
    (atom->m_pNext ? atom->m_pNext->m_pPrev : m_pTail) = atom->m_pPrev;
    atom->m_pPrev = atom->m_pNext = nullptr;
    atom->m_pChain = nullptr;
    --m_nCount;
}

unsigned char* CIPLMemoryBuf::Resize(unsigned int size, bool zero) {
    if (size == m_nSize) {
        if (zero && m_pData) std::memset(m_pData, 0, m_nSize);
        return m_pData;
    }
    ReleaseMemory();
    if (size == 0) return nullptr;
    m_pData = static_cast<unsigned char*>(tq::AllocatePages(size));
    m_bVirtual = m_pData != nullptr;
    if (!m_bVirtual) {
        m_pData = static_cast<unsigned char*>(::operator new[](size));
        if (zero) std::memset(m_pData, 0, size);
    }
    m_nSize = size;
    return m_pData;
}

void CIPLMemoryBuf::ReleaseMemory() {
    if (m_bVirtual)
        tq::FreePages(m_pData, m_nSize);
    else
        ::operator delete[](m_pData);
    m_bVirtual = false;
    m_pData = nullptr;
    m_nSize = 0;
}

CIPLMemoryAlloc::~CIPLMemoryAlloc() {
    Lock lock(m_cs);
    // Buffers that are still out are released with the rest.
    for (int64_t i = 0; i < m_arrBlocks.GetSize(); ++i) delete[] m_arrBlocks.GetAt(i);
}

unsigned int CIPLMemoryAlloc::RoundedSize(int size) {
    return static_cast<unsigned int>(size / static_cast<int>(kUnit) + 1) * kUnit;
}

unsigned char* CIPLMemoryAlloc::AllocRaw(int size, bool zero) {
    Lock lock(m_cs);
    CIPLMemoryBuf* buffer = Take(size, zero);
    if (buffer == nullptr) return nullptr;
    m_chainUsed.PushHead(buffer);
    return buffer->m_pData;
}

CIPLMemoryBuf* CIPLMemoryAlloc::AllocBuf(int size) {
    Lock lock(m_cs);
    return Take(size, false);
}

bool CIPLMemoryAlloc::FreeRaw(unsigned char* pointer) {
    if (pointer == nullptr) return false;
    Lock lock(m_cs);
    CIPLMemoryBuf* buffer = static_cast<CIPLMemoryBuf*>(m_chainUsed.m_pHead);
    while (buffer && buffer->m_pData != pointer)
        buffer = static_cast<CIPLMemoryBuf*>(buffer->m_pNext);
    if (buffer) m_chainUsed.Unlink(buffer);
    AgeCache();
    if (buffer == nullptr) return false;
    Cache(buffer);
    return true;
}

void CIPLMemoryAlloc::FreeBuf(CIPLMemoryBuf* buffer) {
    if (buffer == nullptr) return;
    Lock lock(m_cs);
    AgeCache();
    if (buffer->m_pChain) return;  // given back already, through another copy of its holder
    Cache(buffer);
}

// A descriptor with memory of the size class, on no chain; null if the size rounds to 0. Only an
// exact fit is reused, the newest first.
CIPLMemoryBuf* CIPLMemoryAlloc::Take(int size, bool zero) {
    const unsigned int rounded = RoundedSize(size);
    CIPLMemoryBuf* buffer = static_cast<CIPLMemoryBuf*>(m_chainFree.m_pTail);
    while (buffer && buffer->m_nSize != rounded)
        buffer = static_cast<CIPLMemoryBuf*>(buffer->m_pPrev);
    if (buffer) {
        if (zero) std::memset(buffer->m_pData, 0, buffer->m_nSize);
        m_chainFree.Unlink(buffer);
        m_nBytesCached -= buffer->m_nSize;
    } else {
        buffer = TakeEmpty();
        unsigned char* data;
        try {
            data = buffer->Resize(rounded, zero);
        } catch (...) {
            m_chainEmpty.PushTail(buffer);
            throw;
        }
        if (data == nullptr) {
            m_chainEmpty.PushTail(buffer);
            return nullptr;
        }
        ++m_nBufferCount;
    }
    buffer->m_nAge = 0;
    m_nBytesInUse += buffer->m_nSize;
    return buffer;
}

CIPLMemoryBuf* CIPLMemoryAlloc::TakeEmpty() {
    if (CIPLChainAtom* atom = m_chainEmpty.PopTail()) return static_cast<CIPLMemoryBuf*>(atom);
    auto block = std::make_unique<CIPLMemoryBuf[]>(kBlock);
    m_arrBlocks.Add(block.get());
    CIPLMemoryBuf* descriptors = block.release();
    for (int i = 1; i < kBlock; ++i) m_chainEmpty.PushTail(&descriptors[i]);
    return descriptors;
}

void CIPLMemoryAlloc::Cache(CIPLMemoryBuf* buffer) {
    m_nBytesInUse -= buffer->m_nSize;
    m_chainFree.PushTail(buffer);
    m_nBytesCached += buffer->m_nSize;
}

// Every free ages what is cached. The chain is in order of release, so the retired are at its head.
void CIPLMemoryAlloc::AgeCache() {
    CIPLMemoryBuf* buffer = static_cast<CIPLMemoryBuf*>(m_chainFree.m_pHead);
    while (buffer && buffer->m_nAge >= kRetireAge) {
        CIPLMemoryBuf* next = static_cast<CIPLMemoryBuf*>(buffer->m_pNext);
        m_chainFree.Unlink(buffer);
        --m_nBufferCount;
        m_nBytesCached -= buffer->m_nSize;
        buffer->ReleaseMemory();
        m_chainEmpty.PushTail(buffer);
        buffer = next;
    }
    for (; buffer; buffer = static_cast<CIPLMemoryBuf*>(buffer->m_pNext)) ++buffer->m_nAge;
}

CIPLMemoryAlloc& tq::SharedMemoryManager() {
    static CIPLMemoryAlloc g_IPLMemoryManager;
    return g_IPLMemoryManager;
}

unsigned char* IPL_Malloc(int size) { return tq::SharedMemoryManager().AllocRaw(size, false); }
unsigned char* IPL_Malloc(int size, int zero) {
    return tq::SharedMemoryManager().AllocRaw(size, zero != 0);
}
void IPL_Free(unsigned char* pointer) { tq::SharedMemoryManager().FreeRaw(pointer); }

void* IPL_GetMemoryManager() { return new (std::nothrow) CIPLMemoryAlloc; }
void IPL_DeletMemoryManager(void* manager) { delete static_cast<CIPLMemoryAlloc*>(manager); }
