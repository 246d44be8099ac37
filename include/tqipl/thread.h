#pragma once

#include <tqipl/array.h>
#include <tqipl/export.h>
#include <tqipl/types.h>

class CIPLThreadBase;
class CIPLThreadWorker;

// A piece of work for a pool or a thread wrapper. The host owns it: nothing in the library deletes
// a task that a host made. Run must not throw; its result is not read.
class CTQIPLTaskBase {
public:
    virtual ~CTQIPLTaskBase() {}
    virtual int Run() = 0;
};

// A pool of worker threads. Threads are made when work first needs them, at most the limit (128 at
// the start), kept, and reused. Any number of host threads may use one pool at once.
class TQIPL_API CTQIPLThreadPool {
public:
    CTQIPLThreadPool();
    CTQIPLThreadPool(const CTQIPLThreadPool&);
    CTQIPLThreadPool& operator=(const CTQIPLThreadPool&);
    virtual ~CTQIPLThreadPool();

    // The limit becomes the larger argument. Idle workers above minThreads are destroyed; up to
    // minThreads, worker records are made whose threads start at their first task. Returns 0.
    virtual int SetThreadLimits(unsigned int minThreads, unsigned int maxThreads) = 0;

    // Runs every task and returns 0 when all have finished. At most threadLimit of them run at once
    // (negative: as many as there are processors), and no more than the pool's limit; they start in
    // array order. With a limit below 2 they run one after the other on the calling thread; so
    // do those of a task that itself runs on this pool. Null entries are passed over.
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
// WaitForSingleObject on Windows; elsewhere it is waited for with TQ_WaitEvent.
//
// A copy stands for the same thread, which ends with the last of them.
class TQIPL_API CTQIPLThreadBase {
public:
    CTQIPLThreadBase();
    CTQIPLThreadBase(const CTQIPLThreadBase& other);
    CTQIPLThreadBase& operator=(const CTQIPLThreadBase& other);
    virtual ~CTQIPLThreadBase();
    void* SetTask(CTQIPLTaskBase* task);
    void* GetEvent();  // the done event; null before the first SetTask

private:
    CIPLThreadBase* m_pThread;
};

// The same with a worker borrowed from the global pool for the object's life. The constructor
// blocks while the pool's limit of workers is reached and none is idle (with a limit of 0, one is
// lent all the same). SetTask does not reset the event: a signal left from an earlier task meets
// the next wait; and a null task signals nothing. The destructor does not wait: wait for the event
// first.
class TQIPL_API CTQIPLThreadAuto {
public:
    CTQIPLThreadAuto();
    CTQIPLThreadAuto(const CTQIPLThreadAuto& other);
    CTQIPLThreadAuto& operator=(const CTQIPLThreadAuto& other);
    virtual ~CTQIPLThreadAuto();
    void* SetTask(CTQIPLTaskBase* task);
    void* GetEvent();  // the done event; null before the worker's thread has started

private:
    CIPLThreadWorker* m_pWorker;
};
