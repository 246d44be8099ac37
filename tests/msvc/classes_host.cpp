// A host of Microsoft's compiler that uses the exported classes, and derives from them. In this
// file the buffers and arrays, and the program.
#include "classes_host.h"

#include <cstring>

// What Microsoft's compiler makes elements of an array by.
extern "C" __declspec(dllimport) void MakeMemoryAuto(void* place) asm(
    "??_FCTQIPLMemoryAuto@@QEAAXXZ");

namespace host {

namespace {

// Set in the destructor, which the base's virtual one is to reach.
class OwnMemory : public CTQIPLMemoryAuto {
public:
    OwnMemory(int size, long long* gone) : CTQIPLMemoryAuto(size, nullptr), m_gone(gone) {}
    ~OwnMemory() override { Add(m_gone, 1); }

private:
    long long* m_gone;
};

using Destroy = void* (*)(void* object, unsigned int how);
Destroy FirstEntry(void* object) { return **static_cast<Destroy**>(object); }

void CheckMemoryAuto() {
    CTQIPLMemoryAuto empty;
    CheckEqual(empty.IsNULL(), 1, "an empty buffer is null");
    Check(empty.Data() == nullptr, "an empty buffer has no data");

    void* manager = IPL_GetMemoryManager();
    Check(manager != nullptr, "a manager is made");
    unsigned char* data;
    {
        CTQIPLMemoryAuto buffer(3000000, manager);
        CheckEqual(buffer.IsNULL(), 0, "a buffer is not null");
        data = buffer.Data();
        std::memset(data, 0x5A, 3000000);
        CheckEqual(data[2999999], 0x5A, "the last byte of a buffer");

        CTQIPLMemoryAuto copy(buffer);
        Check(copy.Data() == data, "a copy shares the buffer");
        CTQIPLMemoryAuto assigned;
        assigned = buffer;
        Check(assigned.Data() == data, "an assigned one shares the buffer");
        CTQIPLMemoryAuto target;
        copy.Transfer(target);
        Check(target.Data() == data && copy.IsNULL() == 1, "a buffer is transferred");
        // Of those that share it only one may give it back: the others pass it to memory that
        // nobody destroys.
        alignas(CTQIPLMemoryAuto) static unsigned char dropped[2][sizeof(CTQIPLMemoryAuto)];
        target.Transfer(*new (dropped[0]) CTQIPLMemoryAuto);
        assigned.Transfer(*new (dropped[1]) CTQIPLMemoryAuto);
        Check(target.IsNULL() == 1 && assigned.IsNULL() == 1, "buffers are passed on");
        buffer.Release();
        CheckEqual(buffer.IsNULL(), 1, "a released buffer is null");
    }
    {
        CTQIPLMemoryAuto again(3000000, manager);
        Check(again.Data() == data, "the manager gives the same buffer again");
    }
    IPL_DeletMemoryManager(manager);
    IPL_DeletMemoryManager(nullptr);

    unsigned char* buffer = IPL_Malloc(100, 1);
    CheckEqual(buffer[0] + buffer[99], 0, "a buffer of zeros");
    IPL_Free(buffer);
    buffer = IPL_Malloc(5000000);
    buffer[4999999] = 1;
    IPL_Free(buffer);
}

void CheckMemoryAutoDeletion() {
    const long long before = BusyBlocks(), beforeHost = LiveBlocks();
    long long gone = 0;
    CTQIPLMemoryAuto* base = new OwnMemory(100, &gone);
    Check(base->Data() != nullptr, "a derived buffer has data");
    delete base;
    CheckEqual(gone, 1, "deletion of a derived buffer reaches its destructor");

    delete new CTQIPLMemoryAuto(100, nullptr);
    delete new (std::nothrow) CTQIPLMemoryAuto;
    CTQIPLMemoryAuto* none = nullptr;
    delete none;
    CheckEqual(LiveBlocks(), beforeHost, "objects of exported classes are the module's memory");

    CTQIPLMemoryAuto* three = new CTQIPLMemoryAuto[3];
    CheckEqual(three[2].IsNULL(), 1, "elements of an array are made");
    delete[] three;

    // As Microsoft's compiler does it: the count before the elements, and one call for all.
    auto* storage = static_cast<unsigned char*>(
        CTQIPLMemoryAuto::operator new[](8 + 3 * sizeof(CTQIPLMemoryAuto)));
    const long long count = 3;
    std::memcpy(storage, &count, 8);
    three = reinterpret_cast<CTQIPLMemoryAuto*>(storage + 8);
    for (int i = 0; i < 3; ++i) {
        MakeMemoryAuto(three + i);
        CTQIPLMemoryAuto(100 + i * 2000000, nullptr).Transfer(three[i]);
        CheckEqual(three[i].IsNULL(), 0, "an element holds a buffer");
    }
    unsigned char* last = three[2].Data();
    FirstEntry(three)(three, 3);
    {
        CTQIPLMemoryAuto again(4000100, nullptr);
        Check(again.Data() == last, "the elements gave their buffers back");
    }
    // A second round: the cache has what it keeps.
    const long long after = BusyBlocks();
    Check(after - before < 20, "deletion gives memory back");
    for (int i = 0; i < 100; ++i) {
        delete new CTQIPLMemoryAuto(100, nullptr);
        delete[] new CTQIPLMemoryAuto[3];
    }
    Check(FallsTo(after), "nothing is left of deleted objects");

    alignas(CTQIPLMemoryAuto) unsigned char place[sizeof(CTQIPLMemoryAuto)];
    CTQIPLMemoryAuto* placed = new (place) CTQIPLMemoryAuto(100, nullptr);
    Check(placed->Data() != nullptr, "an object in the host's own memory");
    placed->~CTQIPLMemoryAuto();
}

// The host and the module take turns.
void CheckArrays() {
    const long long beforeHost = LiveBlocks();
    {
        CTQArray<TQ_RECT, TQ_RECT&> rects;
        for (int round = 0; round < 50; ++round) {
            TQ_RECT rect{round, 1, 2, 3};
            for (int i = 0; i < 100; ++i) rects.Add(rect);
            CheckEqual(rects.GetSize(), round == 0 ? 100 : 102, "the host's rectangles");

            unsigned char mask[8 * 2] = {};
            mask[1] = mask[2] = mask[8 + 6] = 1;
            IPL_FCCLabeling(8, 2, 8, mask, &rects, 0);
            CheckEqual(rects.GetSize(), 2, "the library's rectangles");
            const TQ_RECT first = rects.GetAt(0), second = rects.GetAt(1);
            Check(first.left == 1 && first.top == 0 && first.right == 2 && first.bottom == 0,
                  "the first rectangle");
            Check(second.left == 6 && second.top == 1 && second.right == 6 && second.bottom == 1,
                  "the second rectangle");
        }
    }
    CheckEqual(LiveBlocks(), beforeHost, "arrays take the module's memory");
}

}  // namespace

void CheckBuffers() {
    CheckMemoryAuto();
    CheckMemoryAutoDeletion();
    CheckArrays();
}

}  // namespace host

int HostMain() {
    host::CheckPools();
    host::CheckWrappers();
    host::CheckBuffers();
    host::PrintNumber(host::FailureCount());
    host::Print(" failures\n");
    return host::FailureCount() == 0 ? 0 : 1;
}
