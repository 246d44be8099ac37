#pragma once

// The bytes of forms at fixed sizes and contents, as hashes. They are the same for every compiler,
// system, instruction-set level and processor count; a change here is a change of what hosts get.
// Run with TQIPL_PRINT_GOLDEN set to print the tables anew.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/guarded_buffer.h"
#include "support/settings.h"

namespace tqtest {

// Defined by each program: its hashes by name.
extern const std::map<std::string, uint64_t> kGolden;

inline uint64_t Hash(const std::vector<uint8_t>& bytes) {  // FNV-1a
    uint64_t hash = 0xCBF29CE484222325;
    for (uint8_t byte : bytes) hash = (hash ^ byte) * 0x100000001B3;
    return hash;
}

inline std::vector<uint8_t> Hostile(size_t bytes, uint32_t seed) {
    std::vector<uint8_t> data(bytes);
    FillHostile(data.data(), bytes, seed);
    return data;
}

// Runs a case at every level and at processor counts with and without bands.
inline void ExpectGolden(const std::string& name, const std::function<std::vector<uint8_t>()>& run,
                         const std::vector<unsigned>& processorCounts = {1, 3, 8}) {
    Settings settings;
    if (std::getenv("TQIPL_PRINT_GOLDEN")) {
        settings.UseProcessors(processorCounts.front());
        std::printf("{\"%s\", 0x%016llx},\n", name.c_str(),
                    static_cast<unsigned long long>(Hash(run())));
        return;
    }
    const auto golden = kGolden.find(name);
    ASSERT_NE(golden, kGolden.end()) << name;
    for (tq::IsaLevel level : RunnableIsaLevels())
        for (unsigned processors : processorCounts) {
            settings.Use(level);
            settings.UseProcessors(processors);
            EXPECT_EQ(Hash(run()), golden->second)
                << name << ", " << tq::IsaLevelName(level) << ", " << processors << " processors";
        }
}

struct Size {
    int width, height;
};

}  // namespace tqtest
