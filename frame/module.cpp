// The module's process-wide objects, in their order.

#include "frame/module.h"

#include "frame/isa.h"
#include "frame/platform.h"
#include "frame/tables.h"
#include "frame/thread_pool.h"
#include "zoom/weights.h"

unsigned int g_IPLProcessorCount = 1;

CTQIPLBaseLibInit::CTQIPLBaseLibInit() {
    tq::SetIsaLevel(tq::DetectIsaLevel());
    const unsigned int processors = tq::ProcessorCount();
    g_IPLProcessorCount = processors == 0 ? 1 : processors;
    tq::FillTables();
}

CTQIPLBaseLibInit::~CTQIPLBaseLibInit() {}

CTQIPLBaseLibInit g_IPLBaseLibInit;
CTQIPLThreadPoolRedner g_IPLThreadPool;
CZ6CubicTablePool g_IPL6CubicTablePool;
