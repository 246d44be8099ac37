// A host of Microsoft's compiler with its runtime: exceptions that its tasks throw through the
// module, exceptions of the module's classes, and type information.
#include <cstring>
#include <new>

#include "classes_host.h"

namespace host {
namespace {

long long g_troubles = 0;

class Trouble {
public:
    explicit Trouble(int code) : m_code(code) { Add(&g_troubles, 1); }
    Trouble(const Trouble& other) : m_code(other.m_code) { Add(&g_troubles, 1); }
    Trouble& operator=(const Trouble&) = delete;
    virtual ~Trouble() { Add(&g_troubles, -1); }
    virtual int Code() const { return m_code; }

private:
    int m_code;
};

class BigTrouble : public Trouble {
public:
    BigTrouble() : Trouble(50) { std::memset(m_payload, 3, sizeof m_payload); }
    int Code() const override { return Trouble::Code() + m_payload[799]; }

private:
    char m_payload[800];
};

struct TooBigTrouble {
    char payload[1100];
};

struct UncopyableTrouble {
    UncopyableTrouble() {}
    UncopyableTrouble(const UncopyableTrouble&) { throw 9; }
};

enum class What { kNothing, kTrouble, kBigTrouble, kTooBig, kUncopyable, kNumber, kAgain };

class ThrowTask : public CTQIPLTaskBase {
public:
    int Run() override {
        const Trouble local(0);  // is destroyed on the way out
        Add(&m_runs, 1);
        switch (m_what) {
            case What::kNothing:
                break;
            case What::kTrouble:
                throw Trouble(41);
            case What::kBigTrouble:
                throw BigTrouble();
            case What::kTooBig:
                throw TooBigTrouble();
            case What::kUncopyable:
                throw UncopyableTrouble();
            case What::kNumber:
                throw 12345;
            case What::kAgain:
                try {
                    throw Trouble(42);
                } catch (const Trouble&) {
                    throw;
                }
        }
        return 0;
    }

    What m_what = What::kNothing;
    long long m_runs = 0;
};

// What RunTasks throws when one of ten tasks does: a code, -1 for std::bad_exception, -2 for
// std::bad_alloc, 0 for nothing.
int Thrown(CTQIPLThreadPool* pool, int limit, What what) {
    ThrowTask made[10];
    Tasks tasks;
    for (ThrowTask& task : made) tasks.Add(&task);
    made[4].m_what = what;
    int thrown = 0;
    try {
        CheckEqual(pool->RunTasks(tasks, limit), 0, "the result of RunTasks");
    } catch (const Trouble& trouble) {
        thrown = trouble.Code();
    } catch (int number) {
        thrown = number;
    } catch (const std::bad_exception& exception) {
        Check(exception.what()[4] == 'e', "the text of std::bad_exception");
        thrown = -1;
    } catch (const std::bad_alloc&) {
        thrown = -2;
    }
    long long runs = 0;
    for (const ThrowTask& task : made) {
        Check(task.m_runs <= 1, "no task runs twice");
        runs += task.m_runs;
    }
    CheckEqual(made[4].m_runs, 1, "the task that throws runs");
    if (what == What::kNothing) CheckEqual(runs, 10, "all tasks run");
    // On one thread nothing begins after it.
    if (what != What::kNothing && limit < 2) CheckEqual(runs, 5, "the tasks up to it run");
    return thrown;
}

void CheckTasksThatThrow(CTQIPLThreadPool* pool) {
    const int limits[] = {4, 1, 2};
    for (int limit : limits) {
        CheckEqual(Thrown(pool, limit, What::kNothing), 0, "nothing is thrown");
        CheckEqual(Thrown(pool, limit, What::kTrouble), 41, "an object");
        CheckEqual(Thrown(pool, limit, What::kBigTrouble), 53, "an object, caught as its base");
        CheckEqual(Thrown(pool, limit, What::kNumber), 12345, "a number");
        CheckEqual(Thrown(pool, limit, What::kTooBig), -1, "an object that is too big");
        CheckEqual(Thrown(pool, limit, What::kUncopyable), -1, "an object that cannot be copied");
        CheckEqual(Thrown(pool, limit, What::kAgain), 42, "an object that is thrown again");
        CheckEqual(Read(&g_troubles), 0, "thrown objects are destroyed");
    }
}

class NestedThrowTask : public CTQIPLTaskBase {
public:
    int Run() override {
        m_inner = Thrown(CTQIPLThreadPool::GetInstance(), 3, What::kTrouble);
        throw m_inner + 1;
    }
    int m_inner = 0;
};

void CheckNestedThrows() {
    NestedThrowTask made[2];
    Tasks tasks;
    for (NestedThrowTask& task : made) tasks.Add(&task);
    int thrown = 0;
    try {
        CTQIPLThreadPool::GetInstance()->RunTasks(tasks, 2);
    } catch (int number) {
        thrown = number;
    }
    CheckEqual(thrown, 42, "an exception of a task in a task");
    CheckEqual(made[0].m_inner, 41, "an exception inside a task");
    CheckEqual(Read(&g_troubles), 0, "thrown objects are destroyed");
}

template <class Wrapper> void CheckWrapperTasksThatThrow() {
    Wrapper wrapper;
    for (int i = 0; i < 20; ++i) {
        ThrowTask task;
        task.m_what = i % 2 == 0 ? What::kTrouble : What::kNumber;
        CheckEqual(WaitForSingleObject(wrapper.SetTask(&task), kTenSeconds), kInTime,
                   "a task that throws sets the event");
        CheckEqual(task.m_runs, 1, "a task that throws runs once");
    }
    CheckEqual(Read(&g_troubles), 0, "thrown objects are destroyed");
}

void CheckNothingIsLeft() {
    CTQIPLThreadPool* pool = CTQIPLThreadPool::GetInstance();
    Thrown(pool, 2, What::kTrouble);
    Sleep(50);
    const long long before = BusyBlocks();
    for (int i = 0; i < 300; ++i) CheckEqual(Thrown(pool, 2, What::kTrouble), 41, "many throws");
    Check(FallsTo(before + 50), "exceptions leave no memory behind");
}

template <class Work> bool ThrowsBadAlloc(Work work) {
    const Trouble local(0);
    try {
        const Trouble inner(0);
        work();
    } catch (const std::bad_alloc& exception) {
        return exception.what()[0] == 'b' && exception.what()[4] == 'a';
    }
    return false;
}

void CheckMemoryFailures() {
    const size_t tooMuch = size_t(1) << 60;
    Check(ThrowsBadAlloc([] { CTQArray<int, int>().SetSize(int64_t(1) << 58); }), "an array");
    Check(ThrowsBadAlloc([] { CTQArray<int, int>().SetSize(INT64_MAX); }), "an array of all");
    Check(ThrowsBadAlloc([&] { CTQIPLMemoryAuto::operator new[](tooMuch); }), "new of a class");
    Check(CTQIPLMemoryAuto::operator new[](tooMuch, std::nothrow) == nullptr, "new without throw");

    // An array that claims to be longer than memory is.
    AddTask task;
    Tasks tasks;
    tasks.Add(&task);
    Check(ThrowsBadAlloc([&] {
              tasks.m_nSize = int64_t(1) << 40;
              CTQIPLThreadPool::GetInstance()->RunTasks(tasks, 2);
          }),
          "RunTasks");
    tasks.m_nSize = 1;
    CheckEqual(Read(&g_troubles), 0, "objects of the host are destroyed");
}

// A function of the library that has no memory for a picture of this size.
void FilterTooMuch() {
    static unsigned char image[1];
    IPL_Median_8u_C1R(0x7FFFFFF0, 0x7FFFFFF0, 0x7FFFFFF0, image, 1);
}

class FilterTask : public CTQIPLTaskBase {
public:
    int Run() override {
        FilterTooMuch();
        return 0;
    }
};

void CheckExceptionsOfFunctions() {
    Check(ThrowsBadAlloc(FilterTooMuch), "a function of the library");
    FilterTask task;
    Tasks tasks;
    tasks.Add(&task);
    tasks.Add(&task);
    for (int limit = 1; limit < 3; ++limit)
        Check(ThrowsBadAlloc([&] { CTQIPLThreadPool::GetInstance()->RunTasks(tasks, limit); }),
              "a function of the library in a task");
    for (int i = 0; i < 100; ++i) ThrowsBadAlloc(FilterTooMuch);
    const long long before = BusyBlocks();
    for (int i = 0; i < 100; ++i) ThrowsBadAlloc(FilterTooMuch);
    Check(FallsTo(before), "exceptions of functions leave no memory behind");
}

class Named : public CTQIPLThreadBase {};

void CheckTypeInformation() {
    CTQIPLThreadBase* base = new CTQIPLThreadBase;
    CTQIPLThreadBase* named = new Named;
    Check(dynamic_cast<Named*>(base) == nullptr, "an object of the module is of its class");
    Check(dynamic_cast<Named*>(named) == named, "a derived object is of the derived class");
    Check(dynamic_cast<void*>(base) == base, "an object of the module is whole");
    delete base;
    delete named;
    CTQIPLThreadPool* pool = CTQIPLThreadPool::GetInstance();
    Check(dynamic_cast<void*>(pool) == pool, "a pool is whole");
}

}  // namespace
}  // namespace host

int HostMain() {
    using namespace host;
    CTQIPLThreadPool* own = Create_IPLThreadPool();
    CheckTasksThatThrow(own);
    Delete_IPLThreadPool(own);
    CheckTasksThatThrow(CTQIPLThreadPool::GetInstance());
    CheckNestedThrows();
    CheckWrapperTasksThatThrow<CTQIPLThreadBase>();
    CheckWrapperTasksThatThrow<CTQIPLThreadAuto>();
    CheckNothingIsLeft();
    CheckMemoryFailures();
    CheckExceptionsOfFunctions();
    CheckTypeInformation();
    PrintNumber(FailureCount());
    Print(" failures\n");
    return FailureCount() == 0 ? 0 : 1;
}
