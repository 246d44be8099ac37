// tqipl info: what this host and this machine are.

#include <iostream>

#include "commands.h"
#include "machine.h"

namespace tqipl {

void RunInfo() {
    std::cout << "version:    " << Version() << "\n"
              << "processors: " << Processors() << "\n"
              << "level:      " << LevelInUse() << "\n";
}

}  // namespace tqipl
