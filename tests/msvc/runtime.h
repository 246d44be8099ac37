// What a test host built for Microsoft's compiler has around it: no C runtime, a way to print, and
// checks that are counted.
#pragma once

#include <cstddef>
#include <cstdint>

// A host defines it: 0 is good.
int HostMain();

namespace host {

void Print(const char* text);
void PrintNumber(int64_t number);

// Prints what does not hold, and counts it. Tells whether it holds.
bool Check(bool holds, const char* what);
bool CheckEqual(int64_t actual, int64_t expected, const char* what);
int FailureCount();

// Blocks that operator new of this host gave and that were not freed.
int64_t LiveBlocks();

}  // namespace host
