#pragma once

// Masks for the tests of labelling: pictures drawn with characters, patterns that are hard on the
// joining of runs, and their placement in memory that shows every byte touched.

#include <gtest/gtest.h>
#include <tqipl/array.h>
#include <tqipl/thread.h>
#include <tqipl/types.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "reference/labelling_reference.h"
#include "support/function_task.h"
#include "support/guarded_buffer.h"

// Where GoogleTest finds them.
inline bool operator==(const TQ_RECT& a, const TQ_RECT& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}
inline void PrintTo(const TQ_RECT& rect, std::ostream* out) {
    *out << "{" << rect.left << ", " << rect.top << ", " << rect.right << ", " << rect.bottom
         << "}";
}

namespace tqtest {

using RectArray = CTQArray<TQ_RECT, TQ_RECT&>;

inline std::vector<TQ_RECT> Rects(RectArray& array) {
    return std::vector<TQ_RECT>(array.m_pData, array.m_pData + array.m_nSize);
}

// One byte a pixel, dense.
struct Picture {
    int width = 0, height = 0;
    std::vector<uint8_t> pixels;

    Picture() = default;
    Picture(int w, int h, uint8_t value = 0)
        : width(w), height(h), pixels(static_cast<size_t>(w) * static_cast<size_t>(h), value) {}
    // Rows of characters: '#' is 255, '.' is 0, any other stands for its own code.
    Picture(std::initializer_list<const char*> rows)
        : Picture(static_cast<int>(std::strlen(*rows.begin())), static_cast<int>(rows.size())) {
        size_t i = 0;
        for (const char* row : rows)
            for (; *row != '\0'; ++row)
                pixels[i++] = *row == '#' ? 255 : *row == '.' ? 0 : static_cast<uint8_t>(*row);
    }

    uint8_t& At(int x, int y) { return pixels[static_cast<size_t>(y) * width + x]; }
    uint8_t At(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x]; }
    tqref::Mask View() { return {width, height, width, pixels.data()}; }
    bool operator==(const Picture& other) const {
        return width == other.width && height == other.height && pixels == other.pixels;
    }
};

inline void PrintTo(const Picture& picture, std::ostream* out) {
    *out << picture.width << " x " << picture.height << "\n";
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const uint8_t value = picture.At(x, y);
            *out << (value == 0 ? '.' : value == 255 ? '#' : 'o');
        }
        *out << '\n';
    }
}

class Noise {
public:
    explicit Noise(uint32_t seed) : m_state(seed * 2654435761u + 1) { Next(); }
    uint32_t Next() {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 17;
        m_state ^= m_state << 5;
        return m_state;
    }
    int Below(int count) { return static_cast<int>(Next() % static_cast<uint32_t>(count)); }

private:
    uint32_t m_state;
};

template <class Inside> Picture Draw(int width, int height, Inside inside) {
    Picture picture(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (inside(x, y)) picture.At(x, y) = 255;
    return picture;
}

// Nonzero pixels get values of every kind, so that none of them counts for more than another.
inline Picture VaryValues(Picture picture, uint32_t seed) {
    Noise noise(seed);
    for (uint8_t& pixel : picture.pixels)
        if (pixel != 0) pixel = static_cast<uint8_t>(1 + noise.Below(255));
    return picture;
}

inline Picture NoisePicture(int width, int height, int percent, uint32_t seed) {
    Noise noise(seed);
    return Draw(width, height, [&](int, int) { return noise.Below(100) < percent; });
}

// Teeth that hang from one row, or stand on one.
inline Picture CombPicture(int width, int height, bool spineAbove) {
    const int spine = spineAbove ? 0 : height - 1;
    return Draw(width, height, [=](int x, int y) { return y == spine || x % 2 == 0; });
}

// Teeth that hang from the top, and islands between them that are joined to the teeth from left to
// right: every island becomes the root in its turn.
inline Picture IslandPicture(int width, int height) {
    return Draw(width, height, [=](int x, int y) {
        return y == 0 || x % 4 == 2 || (y % 4 == 1 && y > 1 && x % 4 == 0) ||
               (y % 4 == 2 && y > 2 && x % 4 != 3);
    });
}

inline Picture SpiralPicture(int width, int height) {
    Picture picture(width, height);
    int left = 0, top = 0, right = width - 1, bottom = height - 1;
    int x = 0, y = 0;
    while (left <= right && top <= bottom) {
        for (; x <= right; ++x) picture.At(x, y) = 255;
        for (x = right; y <= bottom; ++y) picture.At(x, y) = 255;
        for (y = bottom; x >= left; --x) picture.At(x, y) = 255;
        top += 2;
        for (x = left; y >= top; --y) picture.At(x, y) = 255;
        y = top;
        left += 2;
        right -= 2;
        bottom -= 2;
        x = left - 1;
        if (x > right || y > bottom) break;
    }
    return picture;
}

inline Picture FramesPicture(int width, int height) {
    return Draw(width, height, [=](int x, int y) {
        return std::min(std::min(x, y), std::min(width - 1 - x, height - 1 - y)) % 2 == 0;
    });
}

// Every pattern at one size.
inline std::vector<Picture> Patterns(int width, int height, uint32_t seed) {
    std::vector<Picture> pictures;
    for (int percent : {0, 10, 30, 50, 70, 90, 100})
        pictures.push_back(NoisePicture(width, height, percent, seed + percent));
    pictures.push_back(Draw(width, height, [](int x, int y) { return (x + y) % 2 == 0; }));
    pictures.push_back(Draw(width, height, [](int x, int y) { return x % 2 == 0 && y % 2 == 0; }));
    pictures.push_back(Draw(width, height, [](int, int y) { return y % 2 == 0; }));
    pictures.push_back(Draw(width, height, [](int x, int) { return x % 2 == 0; }));
    pictures.push_back(Draw(width, height, [](int x, int y) { return (x + y) % 4 < 2; }));
    pictures.push_back(Draw(width, height, [=](int x, int y) { return (x + 3 * y) % 5 < 2; }));
    pictures.push_back(Draw(width, height, [=](int x, int y) {
        return (x + y) % 6 == 0 || (x - y + 6 * height) % 6 == 0;
    }));
    pictures.push_back(CombPicture(width, height, true));
    pictures.push_back(CombPicture(width, height, false));
    pictures.push_back(IslandPicture(width, height));
    pictures.push_back(SpiralPicture(width, height));
    pictures.push_back(FramesPicture(width, height));
    Noise noise(seed);
    Picture boxes(width, height);
    for (int i = 0; i < 12; ++i) {
        const int x = noise.Below(width), y = noise.Below(height);
        const int right = std::min(width, x + 1 + noise.Below(6));
        const int bottom = std::min(height, y + 1 + noise.Below(6));
        for (int by = y; by < bottom; ++by)
            for (int bx = x; bx < right; ++bx) boxes.At(bx, by) = i % 3 == 2 ? 0 : 255;
    }
    pictures.push_back(boxes);
    return pictures;
}

// All masks of a size, one bit a pixel.
inline Picture SmallPicture(int width, int height, uint32_t bits) {
    return Draw(width, height, [=](int x, int y) { return (bits >> (y * width + x) & 1) != 0; });
}

// Right before a page that faults, right behind one, with noise between the rows, and with noise
// between rows that go upward in memory.
enum class Placement { kAtEnd, kAtStart, kPadded, kBottomUp };
inline constexpr Placement kPlacements[] = {Placement::kAtEnd, Placement::kAtStart,
                                            Placement::kPadded, Placement::kBottomUp};
inline constexpr Placement kTopDownPlacements[] = {Placement::kAtEnd, Placement::kAtStart,
                                                   Placement::kPadded};

// A picture in memory, and what stands around it.
class PlacedPicture {
public:
    PlacedPicture(const Picture& picture, Placement placement, uint32_t seed)
        : m_width(picture.width), m_height(picture.height) {
        const bool dense = placement == Placement::kAtEnd || placement == Placement::kAtStart;
        const int distance = dense ? m_width : m_width + 1 + static_cast<int>(seed % 7);
        const size_t bytes = static_cast<size_t>(distance) * (m_height - 1) + m_width;
        m_buffer = std::make_unique<GuardedBuffer>(
            bytes, placement == Placement::kAtStart ? GuardedBuffer::kStart : GuardedBuffer::kEnd);
        FillHostile(m_buffer->data(), bytes, seed);
        m_stride = placement == Placement::kBottomUp ? -distance : distance;
        m_first = placement == Placement::kBottomUp
                      ? static_cast<size_t>(distance) * static_cast<size_t>(m_height - 1)
                      : 0;
        Copy(picture, m_buffer->data() + m_first);
        m_ground.assign(m_buffer->data(), m_buffer->data() + bytes);
    }

    int Stride() const { return m_stride; }
    uint8_t* First() { return m_buffer->data() + m_first; }

    // The image is `expected` and all around it is as it was.
    testing::AssertionResult Shows(const Picture& expected) {
        std::vector<uint8_t> whole = m_ground;
        Copy(expected, whole.data() + m_first);
        const auto at = std::mismatch(whole.begin(), whole.end(), m_buffer->data());
        if (at.first == whole.end()) return testing::AssertionSuccess();
        return testing::AssertionFailure()
               << "byte " << at.first - whole.begin() - static_cast<int64_t>(m_first) << " is "
               << int{*at.second} << " and not " << int{*at.first} << " in\n"
               << testing::PrintToString(expected);
    }

private:
    void Copy(const Picture& picture, uint8_t* first) const {
        for (int y = 0; y < m_height; ++y)
            std::memcpy(first + int64_t{y} * m_stride,
                        picture.pixels.data() + static_cast<size_t>(y) * m_width,
                        static_cast<size_t>(m_width));
    }

    int m_width, m_height, m_stride = 0;
    size_t m_first = 0;
    std::unique_ptr<GuardedBuffer> m_buffer;
    std::vector<uint8_t> m_ground;
};

// Runs the body on a thread of the global pool, where bands run one after the other without a
// change of thread: many small calls take little time.
inline void OnPoolThread(const std::function<void()>& body) {
    TaskList two;
    two.Add(body);
    two.Add([] {});
    CTQIPLThreadPool::GetInstance()->RunTasks(two.Array(), 2);
}

}  // namespace tqtest
