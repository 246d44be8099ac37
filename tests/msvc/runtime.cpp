// The part of a C runtime that a host of Microsoft's compiler needs, on KERNEL32 alone.
#include "runtime.h"

#include <cstring>
#include <new>

extern "C" {
__declspec(dllimport) void* __stdcall GetProcessHeap();
__declspec(dllimport) void* __stdcall HeapAlloc(void* heap, unsigned long flags, size_t size);
__declspec(dllimport) int __stdcall HeapFree(void* heap, unsigned long flags, void* memory);
__declspec(dllimport) void* __stdcall GetStdHandle(unsigned long which);
__declspec(dllimport) int __stdcall WriteFile(void* file, const void* data, unsigned long size,
                                              unsigned long* written, void* overlapped);
__declspec(dllimport) __declspec(noreturn) void __stdcall ExitProcess(unsigned int code);

int _fltused = 1;

[[noreturn]] void HostEntry() { ExitProcess(static_cast<unsigned int>(HostMain())); }

[[noreturn]] void _purecall() { ExitProcess(97); }
#if !defined(TQ_HOST_HAS_VCRUNTIME)
// No test lets an exception get this far.
[[noreturn]] void _CxxThrowException(void*, void*) { ExitProcess(99); }
[[noreturn]] int __CxxFrameHandler3() { ExitProcess(98); }
[[noreturn]] void __std_terminate() { ExitProcess(96); }
#endif

void* memcpy(void* to, const void* from, size_t size) { return memmove(to, from, size); }

void* memmove(void* to, const void* from, size_t size) {
    volatile unsigned char* target = static_cast<unsigned char*>(to);
    const unsigned char* source = static_cast<const unsigned char*>(from);
    if (to < from) {
        for (size_t i = 0; i < size; ++i) target[i] = source[i];
    } else {
        for (size_t i = size; i > 0; --i) target[i - 1] = source[i - 1];
    }
    return to;
}

void* memset(void* to, int value, size_t size) {
    volatile unsigned char* target = static_cast<unsigned char*>(to);
    for (size_t i = 0; i < size; ++i) target[i] = static_cast<unsigned char>(value);
    return to;
}

int memcmp(const void* left, const void* right, size_t size) {
    const unsigned char* a = static_cast<const unsigned char*>(left);
    const unsigned char* b = static_cast<const unsigned char*>(right);
    for (size_t i = 0; i < size; ++i) {
        if (a[i] != b[i]) return a[i] - b[i];
    }
    return 0;
}

size_t strlen(const char* text) {
    size_t length = 0;
    while (*static_cast<const volatile char*>(text + length) != 0) ++length;
    return length;
}
}

// Large frames touch every page of the stack on their way down; rax holds the size.
__asm__(
    ".globl __chkstk\n"
    "__chkstk:\n"
    "    pushq %rcx\n"
    "    pushq %rax\n"
    "    leaq 24(%rsp), %rcx\n"
    "1:  cmpq $4096, %rax\n"
    "    jb 2f\n"
    "    subq $4096, %rcx\n"
    "    testq %rcx, (%rcx)\n"
    "    subq $4096, %rax\n"
    "    jmp 1b\n"
    "2:  subq %rax, %rcx\n"
    "    testq %rcx, (%rcx)\n"
    "    popq %rax\n"
    "    popq %rcx\n"
    "    ret\n");

// The virtual table of type_info, to which the type information of every class points.
extern const void* const kTypeInfoTable[2] __asm__("??_7type_info@@6B@");
const void* const kTypeInfoTable[2] = {};

namespace {

long long liveBlocks = 0;

void* Allocate(size_t size) {
    void* memory = HeapAlloc(GetProcessHeap(), 0, size == 0 ? 1 : size);
    if (memory != nullptr) __atomic_add_fetch(&liveBlocks, 1, __ATOMIC_SEQ_CST);
    return memory;
}

void* AllocateOrEnd(size_t size) {
    void* memory = Allocate(size);
    if (memory == nullptr) ExitProcess(95);
    return memory;
}

void Free(void* memory) {
    if (memory == nullptr) return;
    __atomic_sub_fetch(&liveBlocks, 1, __ATOMIC_SEQ_CST);
    HeapFree(GetProcessHeap(), 0, memory);
}

int failureCount = 0;

}  // namespace

namespace std {
const nothrow_t nothrow{};
}

void* operator new(size_t size) { return AllocateOrEnd(size); }
void* operator new[](size_t size) { return AllocateOrEnd(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* memory) noexcept { Free(memory); }
void operator delete[](void* memory) noexcept { Free(memory); }
void operator delete(void* memory, size_t) noexcept { Free(memory); }
void operator delete[](void* memory, size_t) noexcept { Free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { Free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { Free(memory); }

namespace host {

void Print(const char* text) {
    const unsigned long kStandardOutput = static_cast<unsigned long>(-11);
    unsigned long written = 0;
    WriteFile(GetStdHandle(kStandardOutput), text, static_cast<unsigned long>(std::strlen(text)),
              &written, nullptr);
}

void PrintNumber(int64_t number) {
    char digits[24];
    char* first = digits + sizeof digits - 1;
    *first = 0;
    uint64_t rest = number < 0 ? 0 - static_cast<uint64_t>(number) : static_cast<uint64_t>(number);
    do {
        *--first = static_cast<char>('0' + rest % 10);
        rest /= 10;
    } while (rest != 0);
    if (number < 0) *--first = '-';
    Print(first);
}

bool Check(bool holds, const char* what) {
    if (!holds) {
        ++failureCount;
        Print("FAILED: ");
        Print(what);
        Print("\n");
    }
    return holds;
}

bool CheckEqual(int64_t actual, int64_t expected, const char* what) {
    if (Check(actual == expected, what)) return true;
    Print("  is ");
    PrintNumber(actual);
    Print(", must be ");
    PrintNumber(expected);
    Print("\n");
    return false;
}

int FailureCount() { return failureCount; }

int64_t LiveBlocks() { return __atomic_load_n(&liveBlocks, __ATOMIC_SEQ_CST); }

}  // namespace host
