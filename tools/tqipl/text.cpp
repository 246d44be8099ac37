// Small pieces of text that several commands print.

#include "text.h"

#include <cstdio>

namespace tqipl {

std::string Milliseconds(double milliseconds) {
    const int decimals = milliseconds < 1 ? 3 : milliseconds < 10 ? 2 : milliseconds < 100 ? 1 : 0;
    char text[64];
    std::snprintf(text, sizeof text, "%.*f ms", decimals, milliseconds);
    return text;
}

std::string Count(size_t count, const char* singular, const char* plural) {
    return std::to_string(count) + " " + (count == 1 ? singular : plural);
}

std::string OneLine(std::string text) {
    for (char& c : text)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = ' ';
    return text;
}

}  // namespace tqipl
