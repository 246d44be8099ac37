#pragma once

#include <string>

// What the timings depend on.

namespace tqipl {

std::string Version();         // that of the headers this host was built with
std::string ModuleVersion();   // that of the module it runs with
unsigned int Processors();     // those that the library divides its work by
std::string LevelInUse();      // the instruction-set level that the library takes here
std::string MachineSummary();  // processors and level in a few words

}  // namespace tqipl
