// Ratios of whole numbers as streams have them.

#include "video/stream.h"

#include <charconv>
#include <numeric>

namespace tqipl {

namespace {

bool ParseWhole(const std::string& text, int64_t& number) {
    if (text.empty() || text.size() > 10 ||
        text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number <= INT32_MAX;
}

}  // namespace

Ratio Reduced(int64_t over, int64_t under) {
    const int64_t divisor = std::gcd(over, under);
    if (divisor == 0) return {};
    const Ratio ratio{over / divisor, under / divisor};
    return ratio.over > INT32_MAX || ratio.under > INT32_MAX ? Ratio() : ratio;
}

bool ParseRatio(const std::string& text, Ratio& ratio) {
    const size_t parting = text.find_first_of(":/");
    ratio.under = 1;
    return ParseWhole(text.substr(0, parting), ratio.over) &&
           (parting == std::string::npos || ParseWhole(text.substr(parting + 1), ratio.under));
}

}  // namespace tqipl
