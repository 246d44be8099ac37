// The runtime of a test host built with mingw-w64.
#include <cstdio>

#include "runtime.h"

namespace host {

void Print(const char* text) { std::fputs(text, stdout); }

}  // namespace host

int main() { return HostMain(); }
