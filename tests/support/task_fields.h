#pragma once

// The order in which a task's public fields stand in memory.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

namespace tqtest {

// Each address is above the one before it. The first is that of the task itself.
template <size_t count> void ExpectAddressesRise(const void* const (&fields)[count]) {
    for (size_t i = 1; i < count; ++i)
        EXPECT_LT(reinterpret_cast<uintptr_t>(fields[i - 1]),
                  reinterpret_cast<uintptr_t>(fields[i]))
            << "field " << i;
}

}  // namespace tqtest
