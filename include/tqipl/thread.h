#pragma once

#include <tqipl/array.h>
#include <tqipl/export.h>
#include <tqipl/types.h>

class CIPLThreadBase;
class CIPLThreadWorker;

// Work on other threads: tasks, the pool that the MultiThread forms use, and single threads.

// A piece of work for a pool or a thread wrapper. The host owns it: nothing in the library deletes
// a task that a host made. Run's result is not read. Run may throw: RunTasks hands the exception to
// its caller, a thread wrapper writes a line about it.
class CTQIPLTaskBase {
public:
    // Virtual, so that an owner may delete a task by this class.
    virtual ~CTQIPLTaskBase() {}
    // Does the work, on a thread that the pool or the wrapper chooses.
    virtual int Run() = 0;
};

// A pool of worker threads. Threads are made when work first needs them, at most the limit (128 at
// the start), kept, and reused. Any number of host threads may use one pool at once.
class TQIPL_API CTQIPLThreadPool {
public:
    // The class is an interface without state of its own: nothing is made, copied or ended here.
    // Pools come from GetInstance and Create_IPLThreadPool.
    CTQIPLThreadPool();
    CTQIPLThreadPool(const CTQIPLThreadPool&);
    CTQIPLThreadPool& operator=(const CTQIPLThreadPool&);
    virtual ~CTQIPLThreadPool();

    // The limit becomes the larger argument. Idle workers above minThreads are destroyed; up to
    // minThreads, worker records are made whose threads start at their first task. Returns 0.
    // Throws std::bad_alloc, and changes nothing, when memory or threads are exhausted.
    virtual int SetThreadLimits(unsigned int minThreads, unsigned int maxThreads) = 0;

    // Runs every task and returns 0 when all have finished. At most threadLimit of them run at once
    // (negative: as many as there are processors), and no more than the pool's limit; they start in
    // array order. With a limit below 2 they run one after the other on the calling thread; so
    // do those of a task that itself runs on this pool. Null entries are passed over.
    //
    // If a task throws, tasks of the call that have not begun are left out, those under way finish,
    // and then RunTasks throws what the task threw: of several exceptions the first. Otherwise it
    // throws only std::bad_alloc, before any task has begun, when memory is exhausted or the system
    // has no thread for the pool. The pool can be used as before in all cases.
    virtual int RunTasks(CTQArray<CTQIPLTaskBase*, CTQIPLTaskBase*>& tasks, int threadLimit) = 0;

    // Fills *stats without stopping anybody: the four numbers may be of different moments.
    // Returns 0.
    virtual int GetThreadStats(TQ_THREAD_STATS* stats) = 0;

    // Ends the threads of all idle workers. Returns 0.
    virtual int ReleaseIdleThreads() = 0;

    // The pool that all MultiThread forms use.
    static CTQIPLThreadPool* GetInstance();

    // The number of processors that this process may run on, read at load; at least 1.
    static unsigned int GetProcessorsNum();
};

// A new pool of its own, which shares only the processor count with others; and its end, which
// waits for its threads. No work may be in flight. A null pool is ignored.
TQIPL_API CTQIPLThreadPool* Create_IPLThreadPool();
TQIPL_API void Delete_IPLThreadPool(CTQIPLThreadPool* pool);

// One thread of its own that runs one task at a time. The thread starts at the first SetTask and
// ends with the object, after the task it may be running.
//
// SetTask hands over a task (null: nothing to run, the event is set all the same) and returns the
// done event, which SetTask first resets. Wait for it before the next SetTask: nothing is queued.
// The event belongs to the object; one wait takes its signal. It is a HANDLE for
// WaitForSingleObject on Windows; elsewhere it is waited for with TQ_WaitEvent. SetTask throws
// std::bad_alloc, and takes no task, if there is no memory or no thread for it.
//
// If a task throws, the event is set all the same, and a line on the debug channel, that of
// OutputDebugString on Windows and of syslog elsewhere, says what it threw. Nobody else is told:
// a task whose host wants to know catches its exceptions itself.
//
// A copy stands for the same thread, which ends with the last of them.
class TQIPL_API CTQIPLThreadBase {
public:
    TQIPL_MODULE_NEW
    // Starts no thread yet. Throws std::bad_alloc when memory is exhausted.
    CTQIPLThreadBase();
    // Stands for the same thread as other.
    CTQIPLThreadBase(const CTQIPLThreadBase& other);
    // Lets go of the thread it stood for, and stands for that of other.
    CTQIPLThreadBase& operator=(const CTQIPLThreadBase& other);
    // The last object of a thread waits for its task and ends the thread.
    virtual ~CTQIPLThreadBase();
    // Hands a task, or null, to the thread and returns the done event.
    void* SetTask(CTQIPLTaskBase* task);
    void* GetEvent();  // the done event; null before the first SetTask

private:
    CIPLThreadBase* m_pThread;
};

// The same with a worker borrowed from the global pool for the object's life. The constructor
// blocks while the pool's limit of workers is reached and none is idle (with a limit of 0, one is
// lent all the same), and throws std::bad_alloc when memory is exhausted. SetTask does not reset
// the event: a signal left from an earlier task meets the next wait; and a null task signals
// nothing. The destructor does not wait: wait for the event first.
class TQIPL_API CTQIPLThreadAuto {
public:
    TQIPL_MODULE_NEW
    // Borrows a worker.
    CTQIPLThreadAuto();
    // Stands for the same worker as other.
    CTQIPLThreadAuto(const CTQIPLThreadAuto& other);
    // Lets go of the worker it stood for, and stands for that of other.
    CTQIPLThreadAuto& operator=(const CTQIPLThreadAuto& other);
    // The last object of a worker gives it back to the pool, without waiting for its task.
    virtual ~CTQIPLThreadAuto();
    // Hands a task to the worker and returns the done event.
    void* SetTask(CTQIPLTaskBase* task);
    void* GetEvent();  // the done event; null before the worker's thread has started

private:
    CIPLThreadWorker* m_pWorker;
};
