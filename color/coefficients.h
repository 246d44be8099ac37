#pragma once

// The single-precision coefficients of the colour conversions; no other file defines any. They are
// part of the contract to the last bit: a value that departs from a published matrix in its last
// digits is meant to.

#include <array>
#include <bit>
#include <cstdint>

namespace tq {

// What chroma, less 128, adds to blue and red and takes from green.
struct ChromaToBgr {
    float uToBlue, uToGreen, vToGreen, vToRed;
};

// Luma, less 16, is multiplied by lumaScale.
struct StudioToBgr {
    float lumaScale;
    ChromaToBgr chroma;
};

// To studio-range luma and chroma. chromaMain is U from blue and V from red; the other chroma
// coefficients are magnitudes that are subtracted.
struct BgrToStudio {
    float yFromRed, yFromGreen, yFromBlue;
    float uFromRed, uFromGreen, chromaMain, vFromGreen, vFromBlue;
};

// ITU-R BT.601 with luma taken as it stands.
constexpr ChromaToBgr kFullRangeToBgr = {1.772f, 0.34413f, 0.71414f, 1.402f};

// ITU-R BT.601 to six decimals.
constexpr StudioToBgr kStudio601ToBgr = {1.164383f, {2.017232f, 0.391762f, 0.812968f, 1.596027f}};
constexpr BgrToStudio kBgrToStudio601 = {0.256788f, 0.504129f, 0.097906f, 0.148223f,
                                         0.290993f, 0.439216f, 0.367788f, 0.071427f};

// The library's own four-digit rounding of ITU-R BT.709.
constexpr StudioToBgr kStudio709ToBgr = {1.1644f, {2.1126f, 0.2129f, 0.5325f, 1.793f}};
constexpr BgrToStudio kBgrToStudio709 = {0.1825f, 0.6144f, 0.0619f, 0.1006f,
                                         0.3386f, 0.4392f, 0.399f,  0.0402f};

static_assert(std::bit_cast<std::array<uint32_t, 4>>(kFullRangeToBgr) ==
              std::array<uint32_t, 4>{0x3FE2D0E5, 0x3EB031CF, 0x3F36D1E1, 0x3FB374BC});
static_assert(std::bit_cast<std::array<uint32_t, 5>>(kStudio601ToBgr) ==
              std::array<uint32_t, 5>{0x3F950A81, 0x40011A54, 0x3EC89507, 0x3F501EAC, 0x3FCC4A9D});
static_assert(std::bit_cast<std::array<uint32_t, 5>>(kStudio709ToBgr) ==
              std::array<uint32_t, 5>{0x3F950B0F, 0x400734D7, 0x3E5A0275, 0x3F0851EC, 0x3FE58106});
static_assert(std::bit_cast<std::array<uint32_t, 8>>(kBgrToStudio601) ==
              std::array<uint32_t, 8>{0x3E8379B7, 0x3F010E99, 0x3DC882F1, 0x3E17C7C5, 0x3E94FD09,
                                      0x3EE0E0EB, 0x3EBC4EB5, 0x3D924852});
static_assert(std::bit_cast<std::array<uint32_t, 8>>(kBgrToStudio709) ==
              std::array<uint32_t, 8>{0x3E3AE148, 0x3F1D4952, 0x3D7D8ADB, 0x3DCE075F, 0x3EAD5CFB,
                                      0x3EE0DED3, 0x3ECC49BA, 0x3D24A8C1});

}  // namespace tq
