#pragma once

// The version of the library, in the semantic scheme: a host built against one version runs with
// every later module of the same major version. The build reads the numbers from here.

// The version of these headers, in numbers and as text.
#define TQIPL_VERSION_MAJOR 1
#define TQIPL_VERSION_MINOR 0
#define TQIPL_VERSION_PATCH 0
#define TQIPL_VERSION_STRING "1.0.0"

#if !defined(RC_INVOKED)  // resource compilers read the version only
#include <tqipl/export.h>

// The version of the module that runs, as text of the same form. It is TQIPL_VERSION_STRING if the
// module was built with the headers that the host was built with. The text lasts as long as the
// module is loaded.
TQIPL_API const char* TQ_GetVersion();
#endif
