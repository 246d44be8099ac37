#pragma once

// The bytes of one input of a fuzzer as numbers, choices and pictures, and the machine that they
// ask for. Where the bytes have run out, zeros follow.

#include <bit>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "frame/isa.h"
#include "frame/module.h"
#include "support/guarded_buffer.h"

namespace tqfuzz {

class Input {
public:
    Input(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}

    size_t Left() const { return m_size; }
    uint8_t Byte() {
        if (m_size == 0) return 0;
        --m_size;
        return *m_data++;
    }
    uint32_t Word() {
        uint32_t word = 0;
        for (int i = 0; i < 4; ++i) word = word << 8 | Byte();
        return word;
    }
    bool Flag() { return Byte() % 2 != 0; }
    // From least to most, at most 256 values.
    int Int(int least, int most) { return least + Byte() % (most - least + 1); }
    template <class T, size_t count> const T& Pick(const T (&list)[count]) {
        static_assert(count <= 256);
        return list[Byte() % count];
    }
    // Mostly from least to most; now and then a value at the ends of what an int holds, or any.
    int WildInt(int least, int most) {
        static constexpr int kWild[] = {INT_MIN, INT_MIN + 1, INT_MAX, INT_MAX - 1, -1, 1 << 30};
        const uint8_t kind = Byte();
        if (kind < 240) return Int(least, most);
        return kind < 252 ? Pick(kWild) : static_cast<int>(Word());
    }

    // Fills memory from what is left, which stays for the next picture too: runs and noise, the
    // bytes themselves over and over, or both mixed.
    void Fill(uint8_t* memory, size_t bytes, uint32_t seed) const {
        tqtest::FillHostile(memory, bytes, seed);
        if (m_size == 0 || seed % 4 == 0) return;
        for (size_t i = 0; i < bytes; ++i) {
            const uint8_t byte = m_data[i % m_size];
            memory[i] = seed % 4 == 1 ? static_cast<uint8_t>(memory[i] ^ byte) : byte;
        }
    }

private:
    const uint8_t* m_data;
    size_t m_size;
};

// Sets the instruction-set level, of those that this machine runs, and 1 to 16 processors.
inline void UseMachine(Input& input) {
    const int level = input.Byte() % 3, best = static_cast<int>(tq::DetectIsaLevel());
    tq::SetIsaLevel(static_cast<tq::IsaLevel>(level < best ? level : best));
    g_IPLProcessorCount = static_cast<unsigned>(input.Int(1, 16));
}

enum class FloatKind { kHue, kRatio, kByte };  // in degrees, from 0 to 1, from 0 to 255

// What any four bytes stand for in an image of floats: hues, ratios of a largest value, borders of
// both, values that no picture has.
inline float FloatFor(uint32_t bits, FloatKind kind) {
    const bool hue = kind == FloatKind::kHue;
    const float largest = kind == FloatKind::kByte ? 255.0f : 1.0f;
    using Limits = std::numeric_limits<float>;
    static const float kSpecial[] = {0.0f,
                                     -0.0f,
                                     Limits::quiet_NaN(),
                                     Limits::infinity(),
                                     -Limits::infinity(),
                                     Limits::denorm_min(),
                                     Limits::max(),
                                     -Limits::max(),
                                     1.0f,
                                     2147483520.0f,
                                     2147483648.0f,
                                     -2147483904.0f,
                                     4294967296.0f,
                                     359.99997f,
                                     360.0f,
                                     1e-10f};
    const uint32_t value = bits >> 4;
    const float unit = static_cast<float>(value) / 268435456.0f;
    switch (bits % 16) {
        case 0:
            return std::bit_cast<float>(bits);
        case 1:
            return kSpecial[value % 16];
        case 2:
            return unit * 600 - 120;
        case 3: {
            const float border = static_cast<float>(value % 7) * 60;
            return value % 2 == 0 ? border : std::nextafter(border, value % 4 == 1 ? 1e9f : -1e9f);
        }
        case 4:
            return hue ? static_cast<float>(value % 361)
                       : (static_cast<float>(value % 256) + 0.5f) / 255 * largest;
        case 5:
            return hue ? 0.0f : static_cast<float>(value % 256) / 255 * largest;
        default:
            return hue ? unit * 360 : unit * largest;
    }
}

}  // namespace tqfuzz
