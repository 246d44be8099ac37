// tqipl info: what this host and this machine are.

#include <iostream>

#include "commands.h"
#include "machine.h"

namespace tqipl {

void RunInfo() {
    std::cout << "version:    " << Version() << "\n"
              << "module:     " << ModuleVersion() << "\n"
              << "processors: " << Processors() << "\n"
              << "level:      " << LevelInUse() << "\n";
    if (ModuleVersion() != Version())
        std::cerr << "tqipl: warning: built with the headers of version " << Version()
                  << ", but running with a module of version " << ModuleVersion() << "\n";
}

}  // namespace tqipl
