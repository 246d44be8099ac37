// CTQIPLMemoryAuto: a buffer of the memory manager for the length of a scope.

#include <tqipl/buffer.h>

#include "frame/memory_manager.h"

namespace {

CIPLMemoryAlloc& ManagerOf(void* manager) {
    return manager ? *static_cast<CIPLMemoryAlloc*>(manager) : tq::SharedMemoryManager();
}

}  // namespace

CTQIPLMemoryAuto::CTQIPLMemoryAuto(void* manager)
    : m_pBuf(nullptr), m_nSize(0), m_pMemory(nullptr), m_pManager(manager) {}

CTQIPLMemoryAuto::CTQIPLMemoryAuto(int size, void* manager) : CTQIPLMemoryAuto(manager) {
    Set(size);
}

CTQIPLMemoryAuto::CTQIPLMemoryAuto(const CTQIPLMemoryAuto& other) = default;
CTQIPLMemoryAuto& CTQIPLMemoryAuto::operator=(const CTQIPLMemoryAuto& other) = default;
CTQIPLMemoryAuto::~CTQIPLMemoryAuto() { Release(); }

int CTQIPLMemoryAuto::IsNULL() { return m_pBuf == nullptr; }
unsigned char* CTQIPLMemoryAuto::Data() { return m_pBuf; }

void CTQIPLMemoryAuto::Release() {
    if (m_pMemory) ManagerOf(m_pManager).FreeBuf(m_pMemory);
    m_pMemory = nullptr;
    m_pBuf = nullptr;
    m_pManager = nullptr;
}

void CTQIPLMemoryAuto::Transfer(CTQIPLMemoryAuto& target) {
    if (&target == this) return;
    target.m_pBuf = m_pBuf;
    target.m_nSize = m_nSize;
    target.m_pMemory = m_pMemory;
    target.m_pManager = m_pManager;
    m_pBuf = nullptr;
    m_nSize = 0;
    m_pMemory = nullptr;
    m_pManager = nullptr;
}

// The manager rounds the rounded size again, so a buffer is a mebibyte larger than its class says,
// and a second Set keeps it only for a size a class above the first. Kept on purpose: the sizes
// that the cache holds, and so what it reuses, follow from it.
unsigned char* CTQIPLMemoryAuto::Set(int size) {
    m_nSize = size;
    const unsigned int rounded = CIPLMemoryAlloc::RoundedSize(size);
    if (m_pMemory && m_pMemory->m_nSize == rounded) return m_pBuf;
    CIPLMemoryAlloc& manager = ManagerOf(m_pManager);
    if (m_pMemory) {
        manager.FreeBuf(m_pMemory);
        m_pMemory = nullptr;
        m_pBuf = nullptr;
    }
    m_pMemory = manager.AllocBuf(static_cast<int>(rounded));
    m_pBuf = m_pMemory ? m_pMemory->m_pData : nullptr;
    return m_pBuf;
}
