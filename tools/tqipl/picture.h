#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tqipl {

// How the pixels of a picture lie in memory, and what a PNG file of it holds.
enum class Channels {
    kGrey,         // one byte a pixel; a grey file
    kColour,       // blue, green, red, 255; an RGB file
    kColourAlpha,  // blue, green, red, alpha; an RGBA file
};

struct Size {
    int width = 0;
    int height = 0;
};

// A picture with dense rows.
struct Picture {
    Picture() = default;
    // Zero bytes. Throws HostError for a size that CheckSize refuses.
    Picture(Size pictureSize, Channels pictureChannels);

    int PixelBytes() const { return channels == Channels::kGrey ? 1 : 4; }
    int Stride() const { return size.width * PixelBytes(); }
    bool IsGrey() const { return channels == Channels::kGrey; }
    // For the library's sources, which are not const in its interface but only read.
    unsigned char* Source() const { return const_cast<unsigned char*>(bytes.data()); }

    Size size;
    Channels channels = Channels::kColour;
    std::vector<uint8_t> bytes;
};

// A picture of this size would be too much for the library's signed 32-bit row offsets or for the
// memory of a common machine.
bool IsTooLarge(Size size);

// Throws HostError for a size that is too large or has a side below 1.
void CheckSize(Size size);

// "640x480". Throws UsageError for anything else, HostError as CheckSize does.
Size ParseSize(const std::string& text);

std::string ToText(Size size);

// A grey picture as blue, green, red, 255; any other as it is.
Picture ToColour(const Picture& picture);

}  // namespace tqipl
