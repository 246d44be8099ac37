// The contents on which functions are called, and the hash of what they leave.
#include "call_forms.h"

namespace host {

namespace {

Frame frame;

// The upper bits of a linear congruence: the same numbers in every build.
class Numbers {
public:
    explicit Numbers(Word seed) : m_state(seed * 2654435761u + 1) {}
    Word Below(Word limit) {
        m_state = m_state * 1664525u + 1013904223u;
        return (m_state >> 8) % limit;
    }

private:
    Word m_state;
};

// Blocks of set pixels with holes and specks.
Byte MaskAt(Numbers& numbers, int x, int y) {
    const bool inBlock = ((x / 9) * 5 + (y / 6) * 3) % 4 < 2;
    const bool flip = numbers.Below(23) == 0;
    return inBlock != flip ? 255 : 0;
}

void FillImages(Content content) {
    for (int image = 0; image < 4; ++image) {
        Numbers numbers(static_cast<Word>(image) + 1);
        for (int i = 0; i < kImageBytes; ++i) {
            frame.bytes[image][i] = content == Content::kPicture
                                        ? static_cast<Byte>(numbers.Below(256))
                                        : MaskAt(numbers, i % kStride + image, i / kStride);
        }
        // Degrees in the first, parts of 1 in the others; both are exact.
        const Word limit = image == 0 ? 360 * 256 : 257;
        for (float& value : frame.floats[image])
            value = static_cast<float>(numbers.Below(limit)) / 256.0f;
    }
    Numbers numbers(5);
    for (int& value : frame.ints) value = static_cast<int>(numbers.Below(40000)) - 8000;
}

}  // namespace

Frame& Images() { return frame; }

Line::Line(const char* name, Content content) : m_name(name), m_hash(14695981039346656037ull) {
    FillImages(content);
}

Line::~Line() {
    for (int image = 0; image < 4; ++image) {
        if (!m_skipped[image]) Add(frame.bytes[image], sizeof frame.bytes[image]);
    }
    Add(frame.floats, sizeof frame.floats);
    Add(frame.ints, sizeof frame.ints);
    char digits[20] = " 0000000000000000\n";
    for (int i = 0; i < 16; ++i) digits[16 - i] = "0123456789abcdef"[m_hash >> (4 * i) & 15];
    Print(m_name);
    Print(digits);
}

void Line::Add(const void* data, size_t size) {
    const Byte* bytes = static_cast<const Byte*>(data);
    for (size_t i = 0; i < size; ++i) m_hash = (m_hash ^ bytes[i]) * 1099511628211ull;
}

void Line::OnlyInside(int image, int edge, int rows) {
    m_skipped[image] = true;
    for (int y = 0; y < rows; ++y)
        Add(frame.bytes[image] + y * kStride + edge, static_cast<size_t>(kWidth - 2 * edge));
}

}  // namespace host
