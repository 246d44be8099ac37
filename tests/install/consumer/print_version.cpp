// Prints the version of the headers and that of the module.

#include <TQIPLBaseLibU.h>

#include <cstdio>

int main() {
    std::printf("%s %s\n", TQIPL_VERSION_STRING, TQ_GetVersion());
    return 0;
}
