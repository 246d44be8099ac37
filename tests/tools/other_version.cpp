// Put before the module when the host starts, it answers as a module of another version would.

#include <tqipl/version.h>

const char* TQ_GetVersion() { return "0.1.2"; }
