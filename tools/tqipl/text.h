#pragma once

#include <cstddef>
#include <string>

// Small pieces of text that several commands print.

namespace tqipl {

std::string Milliseconds(double milliseconds);  // "12.3 ms", three digits that matter
std::string Count(size_t count, const char* singular, const char* plural);  // "3 pictures"
std::string OneLine(std::string text);  // control characters, line ends included, become spaces

}  // namespace tqipl
