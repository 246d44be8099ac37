#pragma once

#include <tqipl/export.h>

class CIPLMemoryBuf;

// Large buffers from a cache. Freed buffers are kept and handed out again to requests of the same
// size class, so that work on equal frames reaches the system only at the start. A size class is
// (size / 0x100000 + 1) mebibytes: a buffer is always at least a byte longer than asked for. A
// cached buffer goes back to the system after 1501 further frees. Any thread may call at any time.

// A buffer of at least `size` bytes from the shared manager, aligned to 16 bytes at least (to a
// page, unless the system had no pages left and the heap gave the memory). A buffer that was used
// before holds what was left in it, unless `zero` is not 0. A size of -1048576 to -2097151
// falls in the empty class and gives null. Throws std::bad_alloc when memory is exhausted.
TQIPL_API unsigned char* IPL_Malloc(int size);
TQIPL_API unsigned char* IPL_Malloc(int size, int zero);

// Gives a buffer back. Only the address that IPL_Malloc returned is known; null, any other
// pointer, or one freed already does no harm.
TQIPL_API void IPL_Free(unsigned char* pointer);

// A manager of its own for CTQIPLMemoryAuto, and its end, which releases all its memory, buffers
// still out included. A null manager is ignored. The name of the second is the interface: it lacks
// a letter, as some others do, and hosts link against it as it stands.
TQIPL_API void* IPL_GetMemoryManager();
TQIPL_API void IPL_DeletMemoryManager(void* manager);

// A buffer that goes back to its manager at the end of a scope.
//
// A copy shares the buffer without counting: of two such objects only one may release it.
class TQIPL_API CTQIPLMemoryAuto {
public:
    TQIPL_MODULE_NEW
    // Holds nothing. A null manager stands for the shared one.
    explicit CTQIPLMemoryAuto(void* manager = nullptr);
    // Holds a buffer of at least `size` bytes. Throws std::bad_alloc when memory is exhausted.
    CTQIPLMemoryAuto(int size, void* manager);
    // Copies the fields: both objects hold the same buffer.
    CTQIPLMemoryAuto(const CTQIPLMemoryAuto& other);
    // Copies the fields, and does not release what this object held.
    CTQIPLMemoryAuto& operator=(const CTQIPLMemoryAuto& other);
    // Gives the buffer back.
    virtual ~CTQIPLMemoryAuto();

    int IsNULL();           // 1 if no buffer is held, else 0
    unsigned char* Data();  // the buffer, or null
    // Gives the buffer back now. The object forgets its manager too.
    void Release();
    // Moves the buffer into target, which does not release what it held.
    void Transfer(CTQIPLMemoryAuto& target);

private:
    unsigned char* Set(int size);

    unsigned char* m_pBuf;
    int m_nSize;
    CIPLMemoryBuf* m_pMemory;
    void* m_pManager;
};
