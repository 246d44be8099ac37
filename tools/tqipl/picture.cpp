// Pictures in memory and their sizes.

#include "picture.h"

#include <charconv>

#include "host_error.h"

namespace tqipl {

namespace {

constexpr int kMaxSide = 32768;
constexpr int64_t kMaxPixels = int64_t{1} << 27;

// Digits only, as many as there are. A number beyond int comes back as INT_MAX: too large anyway.
bool ParseSide(const std::string& text, int& side) {
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) return false;
    if (std::from_chars(text.data(), text.data() + text.size(), side).ec != std::errc{})
        side = INT32_MAX;
    return true;
}

}  // namespace

Picture::Picture(Size pictureSize, Channels pictureChannels)
    : size(pictureSize), channels(pictureChannels) {
    CheckSize(size);
    bytes.resize(static_cast<size_t>(Stride()) * static_cast<size_t>(size.height));
}

bool IsTooLarge(Size size) {
    return size.width > kMaxSide || size.height > kMaxSide ||
           int64_t{size.width} * size.height > kMaxPixels;
}

void CheckSize(Size size) {
    if (size.width < 1 || size.height < 1)
        throw HostError("size " + ToText(size) + ": both sides must be at least 1");
    if (IsTooLarge(size))
        throw HostError("size " + ToText(size) + ": at most " + std::to_string(kMaxSide) +
                        " pixels a side and " + std::to_string(kMaxPixels) + " in all");
}

Size ParseSize(const std::string& text) {
    const size_t cross = text.find('x');
    Size size;
    if (cross == std::string::npos || !ParseSide(text.substr(0, cross), size.width) ||
        !ParseSide(text.substr(cross + 1), size.height))
        throw UsageError("size '" + text + "': write it as WIDTHxHEIGHT, for example 640x480");
    CheckSize(size);
    return size;
}

std::string ToText(Size size) {
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

Picture ToColour(const Picture& picture) {
    if (!picture.IsGrey()) return picture;
    Picture colour(picture.size, Channels::kColour);
    for (size_t i = 0; i < picture.bytes.size(); ++i) {
        uint8_t* pixel = &colour.bytes[i * 4];
        pixel[0] = pixel[1] = pixel[2] = picture.bytes[i];
        pixel[3] = 255;
    }
    return colour;
}

}  // namespace tqipl
