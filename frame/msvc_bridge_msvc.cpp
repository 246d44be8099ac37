// The half of the bridge to hosts of Microsoft's compiler that is compiled as such a host is: the
// exported classes, and the functions that take or give their objects, under the names and in the
// form that the host expects. There is no runtime of Microsoft's here: exceptions are thrown, which
// takes no more than the system has, and none is caught by its type.

#include <tqipl/buffer.h>
#include <tqipl/thread.h>

#include <cstring>
#include <new>

#include "frame/msvc_bridge.h"

// Type information begins with a table of a class of Microsoft's runtime, which nobody looks into.
asm(".section .rdata,\"dr\"\n"
    ".p2align 3\n"
    ".globl \"??_7type_info@@6B@\"\n"
    "\"??_7type_info@@6B@\":\n"
    ".quad 0\n");

// For what the compiler makes of virtual destructors; nothing here is made by the global new.
void operator delete(void* storage) noexcept { TQ_FreeArray(storage); }

extern "C" __declspec(dllimport) void RaiseException(unsigned long code, unsigned long flags,
                                                     unsigned long count,
                                                     const uintptr_t* arguments);

namespace {

// What Microsoft's compiler says of a thrown object. Addresses count from the start of the module
// that threw it.
struct ThrowInfo {
    unsigned int attributes;
    int destroy;
    int compatibility;
    int types;  // of a count, and that many addresses of ThrownType, the object's own type first
};

struct ThrownType {
    unsigned int properties;
    int typeInformation;
    int displacements[3];
    int bytes;
    int copy;
};
constexpr unsigned int kSimpleType = 1, kHasVirtualBase = 4;

struct SystemRecord {
    unsigned int code;
    unsigned int flags;
    SystemRecord* next;
    void* address;
    unsigned int count;
    uintptr_t arguments[15];
};
struct SystemPointers {
    SystemRecord* record;
    void* context;
};

constexpr unsigned int kCppException = 0xE06D7363, kNonContinuable = 1;
constexpr uintptr_t kFirstMagic = 0x19930520, kLastMagic = 0x19930522;
constexpr int kContinueSearch = 0, kRunHandler = 1;
constexpr int kMostObjectBytes = 1024;

const ThrownType& TypeOf(const unsigned char* module, const ThrowInfo& info) {
    const int* types = reinterpret_cast<const int*>(module + info.types);
    return *reinterpret_cast<const ThrownType*>(module + types[1]);
}

template <class Function> Function* At(const unsigned char* module, int offset) {
    return reinterpret_cast<Function*>(reinterpret_cast<uintptr_t>(module) +
                                       static_cast<uintptr_t>(offset));
}

// The copy constructor is the host's and may throw, too.
bool CopyObject(const unsigned char* module, const ThrowInfo& info, void* to, void* from) {
    const ThrownType& type = TypeOf(module, info);
    if (type.bytes < 0 || type.bytes > kMostObjectBytes) return false;
    if ((type.properties & kSimpleType) != 0 || type.copy == 0) {
        std::memcpy(to, from, static_cast<size_t>(type.bytes));
        return true;
    }
    __try {
        if ((type.properties & kHasVirtualBase) != 0)
            At<void(void*, void*, int)>(module, type.copy)(to, from, 1);
        else
            At<void(void*, void*)>(module, type.copy)(to, from);
    } __except (kRunHandler) {
        return false;
    }
    return true;
}

void DestroyObject(const unsigned char* module, const ThrowInfo& info, void* object) {
    if (info.destroy != 0) At<void(void*) noexcept>(module, info.destroy)(object);
}

}  // namespace

struct HostException {
    const unsigned char* module;
    const ThrowInfo* info;
    alignas(16) unsigned char object[kMostObjectBytes];
};

namespace {

// Looks at an exception that leaves a task: a C++ exception ends here, and a copy of it is kept if
// there can be one. Anything else, such as an access violation, goes on to whoever handles it.
int Keep(const SystemPointers* pointers, HostException** kept) {
    const SystemRecord& record = *pointers->record;
    if (record.code != kCppException || record.count < 4 || record.arguments[0] < kFirstMagic ||
        record.arguments[0] > kLastMagic)
        return kContinueSearch;
    void* object = reinterpret_cast<void*>(record.arguments[1]);
    const ThrowInfo* info = reinterpret_cast<const ThrowInfo*>(record.arguments[2]);
    const unsigned char* module = reinterpret_cast<const unsigned char*>(record.arguments[3]);
    if (info == nullptr)
        return kRunHandler;  // thrown again, of which only the host's runtime knows
    if (auto* made = static_cast<HostException*>(TQ_AllocateArray(sizeof(HostException)))) {
        if (CopyObject(module, *info, made->object, object)) {
            made->module = module;
            made->info = info;
            *kept = made;
        } else {
            TQ_FreeArray(made);
        }
    }
    DestroyObject(module, *info, object);
    return kRunHandler;
}

// Throws a copy that lies on the stack, as the host's runtime expects of a thrown object.
[[noreturn]] void ThrowAgain(HostException* exception) {
    alignas(16) unsigned char object[kMostObjectBytes];
    const unsigned char* module = exception->module;
    const ThrowInfo* info = exception->info;
    const bool copied = CopyObject(module, *info, object, exception->object);
    HostDropException(exception);
    if (!copied) throw std::bad_exception();
    const uintptr_t arguments[] = {kFirstMagic, reinterpret_cast<uintptr_t>(object),
                                   reinterpret_cast<uintptr_t>(info),
                                   reinterpret_cast<uintptr_t>(module)};
    for (;;) RaiseException(kCppException, kNonContinuable, 4, arguments);
}

void ThrowUnlessDone(BridgeResult result, HostException* thrown = nullptr) {
    if (result == BridgeResult::kDone) return;
    if (thrown == nullptr) HostThrow(result);
    ThrowAgain(thrown);
}

template <class Pointer> Pointer OrThrow(Pointer pointer) {
    if (pointer == nullptr) throw std::bad_alloc();
    return pointer;
}

// A pool of the module for the host.
class HostPool final : public CTQIPLThreadPool {
public:
    explicit HostPool(BridgePool* pool) : m_pool(pool) {}
    HostPool(const HostPool&) = delete;
    HostPool& operator=(const HostPool&) = delete;
    ~HostPool() override { BridgeDeletePool(m_pool); }

    int SetThreadLimits(unsigned int minThreads, unsigned int maxThreads) override {
        ThrowUnlessDone(BridgeSetThreadLimits(m_pool, minThreads, maxThreads));
        return 0;
    }
    int RunTasks(CTQArray<CTQIPLTaskBase*, CTQIPLTaskBase*>& tasks, int threadLimit) override {
        HostException* thrown = nullptr;
        const BridgeResult result =
            BridgeRunTasks(m_pool, reinterpret_cast<HostTask* const*>(tasks.m_pData),
                           tasks.GetSize(), threadLimit, &thrown);
        ThrowUnlessDone(result, thrown);
        return 0;
    }
    int GetThreadStats(TQ_THREAD_STATS* stats) override {
        BridgeGetThreadStats(m_pool, stats);
        return 0;
    }
    int ReleaseIdleThreads() override {
        ThrowUnlessDone(BridgeReleaseIdleThreads(m_pool));
        return 0;
    }

    static void* operator new(size_t, void* place) noexcept { return place; }
    static void operator delete(void* storage) noexcept { TQ_FreeArray(storage); }

private:
    BridgePool* m_pool;
};
static_assert(sizeof(HostPool) == kHostPoolBytes);

// The entry of a virtual table that destroys an object and, if asked to, frees it. Microsoft's
// compiler asks it to destroy arrays, too, which Clang does not expect of it; so the objects get a
// table of their own with the entry below.
constexpr unsigned int kFree = 1, kIsArray = 2, kFreeByHost = 4;

template <class Object> void* Destroy(Object* object, unsigned int how) {
    void* storage = object;
    if ((how & kIsArray) != 0) {
        size_t count;
        storage = reinterpret_cast<unsigned char*>(object) - sizeof count;
        std::memcpy(&count, storage, sizeof count);
        while (count > 0) object[--count].Object::~Object();
    } else {
        object->Object::~Object();
    }
    // Memory that ::new of the host gave is unknown here, and stays.
    if ((how & (kFree | kFreeByHost)) == kFree) TQ_FreeArray(storage);
    return storage;
}

template <class Object> void UseOwnTable(Object* object) {
    static struct {
        const void* typeInformation;
        void* (*destroy)(Object*, unsigned int);
    } table{nullptr, Destroy<Object>};
    const void* const* compilers;
    std::memcpy(&compilers, static_cast<void*>(object), sizeof compilers);
    // Every object of the class writes the same here.
    __atomic_store_n(&table.typeInformation, compilers[-1], __ATOMIC_RELAXED);
    const void* own = &table.destroy;
    std::memcpy(static_cast<void*>(object), &own, sizeof own);
}

BridgeThread* BridgeOf(CIPLThreadBase* thread) { return reinterpret_cast<BridgeThread*>(thread); }
BridgeThread* BridgeOf(CIPLThreadWorker* worker) { return reinterpret_cast<BridgeThread*>(worker); }

void* SetTaskOf(BridgeThread* thread, CTQIPLTaskBase* task) {
    void* event = nullptr;
    ThrowUnlessDone(BridgeSetTask(thread, reinterpret_cast<HostTask*>(task), &event));
    return event;
}

}  // namespace

void* HostPoolAt(void* storage, BridgePool* pool) noexcept { return new (storage) HostPool(pool); }

BridgeResult HostRunTask(HostTask* task, HostException** thrown) {
    __try {
        reinterpret_cast<CTQIPLTaskBase*>(task)->Run();
    } __except (Keep(static_cast<SystemPointers*>(_exception_info()), thrown)) {
        return BridgeResult::kTaskThrew;
    }
    return BridgeResult::kDone;
}

void HostDropException(HostException* exception) noexcept {
    if (exception == nullptr) return;
    DestroyObject(exception->module, *exception->info, exception->object);
    TQ_FreeArray(exception);
}

void HostThrow(BridgeResult result) {
    if (result == BridgeResult::kNoMemory) throw std::bad_alloc();
    throw std::bad_exception();
}

CTQIPLThreadPool::CTQIPLThreadPool() {}
CTQIPLThreadPool::CTQIPLThreadPool(const CTQIPLThreadPool&) {}
CTQIPLThreadPool& CTQIPLThreadPool::operator=(const CTQIPLThreadPool&) { return *this; }
CTQIPLThreadPool::~CTQIPLThreadPool() {}

CTQIPLThreadPool* CTQIPLThreadPool::GetInstance() {
    return static_cast<CTQIPLThreadPool*>(BridgeGetInstance());
}
unsigned int CTQIPLThreadPool::GetProcessorsNum() { return BridgeProcessorCount(); }

CTQIPLThreadPool* Create_IPLThreadPool() {
    void* storage = TQ_AllocateArray(sizeof(HostPool));
    BridgePool* pool = storage != nullptr ? BridgeMakePool() : nullptr;
    if (pool != nullptr) return new (storage) HostPool(pool);
    TQ_FreeArray(storage);
    return nullptr;
}
void Delete_IPLThreadPool(CTQIPLThreadPool* pool) { delete pool; }

CTQIPLThreadBase::CTQIPLThreadBase()
    : m_pThread(reinterpret_cast<CIPLThreadBase*>(OrThrow(BridgeMakeThread()))) {
    UseOwnTable(this);
}
CTQIPLThreadBase::CTQIPLThreadBase(const CTQIPLThreadBase& other) : m_pThread(other.m_pThread) {
    UseOwnTable(this);
    BridgeAddHolder(BridgeOf(m_pThread));
}
CTQIPLThreadBase& CTQIPLThreadBase::operator=(const CTQIPLThreadBase& other) {
    BridgeAddHolder(BridgeOf(other.m_pThread));
    BridgeRemoveHolder(BridgeOf(m_pThread));
    m_pThread = other.m_pThread;
    return *this;
}
CTQIPLThreadBase::~CTQIPLThreadBase() { BridgeRemoveHolder(BridgeOf(m_pThread)); }
void* CTQIPLThreadBase::SetTask(CTQIPLTaskBase* task) {
    return SetTaskOf(BridgeOf(m_pThread), task);
}
void* CTQIPLThreadBase::GetEvent() { return BridgeGetEvent(BridgeOf(m_pThread)); }

CTQIPLThreadAuto::CTQIPLThreadAuto()
    : m_pWorker(reinterpret_cast<CIPLThreadWorker*>(OrThrow(BridgeLendWorker()))) {
    UseOwnTable(this);
}
CTQIPLThreadAuto::CTQIPLThreadAuto(const CTQIPLThreadAuto& other) : m_pWorker(other.m_pWorker) {
    UseOwnTable(this);
    BridgeAddHolder(BridgeOf(m_pWorker));
}
CTQIPLThreadAuto& CTQIPLThreadAuto::operator=(const CTQIPLThreadAuto& other) {
    BridgeAddHolder(BridgeOf(other.m_pWorker));
    BridgeRemoveHolder(BridgeOf(m_pWorker));
    m_pWorker = other.m_pWorker;
    return *this;
}
CTQIPLThreadAuto::~CTQIPLThreadAuto() { BridgeRemoveHolder(BridgeOf(m_pWorker)); }
void* CTQIPLThreadAuto::SetTask(CTQIPLTaskBase* task) {
    return SetTaskOf(BridgeOf(m_pWorker), task);
}
void* CTQIPLThreadAuto::GetEvent() { return BridgeGetEvent(BridgeOf(m_pWorker)); }

CTQIPLMemoryAuto::CTQIPLMemoryAuto(void* manager)
    : m_pBuf(nullptr), m_nSize(0), m_pMemory(nullptr), m_pManager(manager) {
    UseOwnTable(this);
}
CTQIPLMemoryAuto::CTQIPLMemoryAuto(int size, void* manager)
    : m_pBuf(nullptr), m_nSize(0), m_pMemory(nullptr), m_pManager(manager) {
    UseOwnTable(this);
    ThrowUnlessDone(BridgeFillMemoryAuto(this, size, manager));
}
CTQIPLMemoryAuto::CTQIPLMemoryAuto(const CTQIPLMemoryAuto& other)
    : m_pBuf(other.m_pBuf),
      m_nSize(other.m_nSize),
      m_pMemory(other.m_pMemory),
      m_pManager(other.m_pManager) {
    UseOwnTable(this);
}
CTQIPLMemoryAuto& CTQIPLMemoryAuto::operator=(const CTQIPLMemoryAuto& other) = default;
CTQIPLMemoryAuto::~CTQIPLMemoryAuto() { Release(); }
int CTQIPLMemoryAuto::IsNULL() { return m_pBuf == nullptr; }
unsigned char* CTQIPLMemoryAuto::Data() { return m_pBuf; }
void CTQIPLMemoryAuto::Release() { BridgeReleaseMemoryAuto(this); }
void CTQIPLMemoryAuto::Transfer(CTQIPLMemoryAuto& target) {
    BridgeTransferMemoryAuto(this, &target);
}

// What Microsoft's compiler makes elements of an array by.
extern "C" void MakeMemoryAuto(CTQIPLMemoryAuto* place) asm("??_FCTQIPLMemoryAuto@@QEAAXXZ");
void MakeMemoryAuto(CTQIPLMemoryAuto* place) { new (place) CTQIPLMemoryAuto; }

#define TQ_DEFINE_MODULE_NEW(Class)                                                        \
    void* Class::operator new(size_t bytes) { return OrThrow(TQ_AllocateArray(bytes)); }   \
    void* Class::operator new(size_t bytes, const std::nothrow_t&) noexcept {              \
        return TQ_AllocateArray(bytes);                                                    \
    }                                                                                      \
    void* Class::operator new(size_t, void* place) noexcept { return place; }              \
    void* Class::operator new[](size_t bytes) { return OrThrow(TQ_AllocateArray(bytes)); } \
    void* Class::operator new[](size_t bytes, const std::nothrow_t&) noexcept {            \
        return TQ_AllocateArray(bytes);                                                    \
    }                                                                                      \
    void* Class::operator new[](size_t, void* place) noexcept { return place; }            \
    void Class::operator delete(void* storage) noexcept { TQ_FreeArray(storage); }         \
    void Class::operator delete(void* storage, const std::nothrow_t&) noexcept {           \
        TQ_FreeArray(storage);                                                             \
    }                                                                                      \
    void Class::operator delete(void*, void*) noexcept {}                                  \
    void Class::operator delete[](void* storage) noexcept { TQ_FreeArray(storage); }       \
    void Class::operator delete[](void* storage, const std::nothrow_t&) noexcept {         \
        TQ_FreeArray(storage);                                                             \
    }                                                                                      \
    void Class::operator delete[](void*, void*) noexcept {}

TQ_DEFINE_MODULE_NEW(CTQIPLThreadBase)
TQ_DEFINE_MODULE_NEW(CTQIPLThreadAuto)
TQ_DEFINE_MODULE_NEW(CTQIPLMemoryAuto)
