// What the timings depend on.

#include "machine.h"

#include <TQIPLBaseLibU.h>

#include "frame/isa.h"
#include "text.h"

namespace tqipl {

std::string Version() { return TQIPL_VERSION_STRING; }

std::string ModuleVersion() { return TQ_GetVersion(); }

unsigned int Processors() { return CTQIPLThreadPool::GetProcessorsNum(); }

std::string LevelInUse() { return tq::IsaLevelName(tq::DetectIsaLevel()); }

std::string MachineSummary() {
    return Count(Processors(), "processor", "processors") + ", level " + LevelInUse();
}

}  // namespace tqipl
