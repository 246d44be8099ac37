#pragma once

// The module's process-wide objects. module.cpp defines them in one file, so that they come in
// this order at load and go in reverse at unload: start-up record, global pool, and the pool of
// six-tap tables, which zoom/weights.h declares. The shared memory manager comes at its first use
// and goes before them.

class CTQIPLThreadPoolRedner;

// Runs at load, before any routine can: sets the instruction-set level and the processor count,
// and fills the tables.
class CTQIPLBaseLibInit {
public:
    CTQIPLBaseLibInit();
    virtual ~CTQIPLBaseLibInit();
};

extern CTQIPLBaseLibInit g_IPLBaseLibInit;
extern unsigned int g_IPLProcessorCount;  // at least 1
extern CTQIPLThreadPoolRedner g_IPLThreadPool;
