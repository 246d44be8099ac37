#pragma once

// Conversions and sums whose results are defined for every input, the same on every processor.

#include <cstdint>

namespace tq {

// Toward zero; NaN and what an int cannot hold become the most negative int.
inline int32_t TruncateToInt32(float value) {
    if (value >= -2147483648.0f && value < 2147483648.0f) return static_cast<int32_t>(value);
    return INT32_MIN;
}
inline int32_t TruncateToInt32(double value) {
    if (value > -2147483649.0 && value < 2147483648.0) return static_cast<int32_t>(value);
    return INT32_MIN;
}

// The low eight bits of that.
inline uint8_t TruncateToByte(float value) { return static_cast<uint8_t>(TruncateToInt32(value)); }

// A 32-bit product that wraps, as row offsets do, without undefined behaviour.
inline int Mul32(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) * static_cast<unsigned>(b));
}

}  // namespace tq
