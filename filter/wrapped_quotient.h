#pragma once

#include <cstdint>

namespace tq {

// The quotient, signed and toward zero, of a sum that wraps in 32 bits. What wrapping makes
// possible does not trap: a divisor of 0 gives 0, and one of -1 the negation, which may wrap.
inline int WrappedQuotient(uint32_t sum, int divisor) {
    if (divisor == 0) return 0;
    if (divisor == -1) return static_cast<int>(0 - sum);
    return static_cast<int>(sum) / divisor;
}

}  // namespace tq
