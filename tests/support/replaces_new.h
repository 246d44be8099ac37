#pragma once

// Whether a test program may replace the allocation operators. Clang's thread sanitizer links
// operators of its own beside which no others can stand: in that build TQTEST_REPLACES_NEW is 0,
// and what needs the replaced ones is not part of the program.

#define TQTEST_REPLACES_NEW 1
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#undef TQTEST_REPLACES_NEW
#define TQTEST_REPLACES_NEW 0
#endif
#endif
