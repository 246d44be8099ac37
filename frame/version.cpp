// The version that hosts read at run time.

#include <tqipl/version.h>

const char* TQ_GetVersion() { return TQIPL_VERSION_STRING; }
