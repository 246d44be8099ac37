#pragma once

// TQIPL_API marks what the module exports. TQIPL_STATIC is defined by a host that links the
// library's objects instead of the module; TQIPL_BUILDING by the library's own build, which on
// Windows exports by a list of names.
#if defined(_WIN32)
#if defined(TQIPL_STATIC) || defined(TQIPL_BUILDING)
#define TQIPL_API
#else
#define TQIPL_API __declspec(dllimport)
#endif
#else
#define TQIPL_API __attribute__((visibility("default")))
#endif
