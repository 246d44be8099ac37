#pragma once

// The images and arrays of one call, which may be made again and again on the same contents.

#include <tqipl/array.h>
#include <tqipl/types.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "support/guarded_buffer.h"

namespace tqtest {

// What a call works on. The seed draws contents, placements, row padding and parameters.
struct CallShape {
    int width = 24, height = 20;
    int zoomedWidth = 41, zoomedHeight = 31;
    uint32_t seed = 1;
};

template <class T> struct CallImage {
    T* first;
    int stride;  // in elements
};

// Every image stands in memory of its own, against a page that faults. Frames of equal shapes that
// are asked for the same things in the same order hold the same.
class CallFrame {
public:
    explicit CallFrame(const CallShape& shape) : m_shape(shape), m_state(shape.seed * 2654435761u) {
        for (int i = 0; i < 4; ++i) Below(2);
    }
    CallFrame(const CallFrame&) = delete;
    CallFrame& operator=(const CallFrame&) = delete;

    int Width() const { return m_shape.width; }
    int EvenWidth() const { return m_shape.width & ~1; }
    int Height() const { return m_shape.height; }
    const CallShape& Shape() const { return m_shape; }

    // 0 to limit - 1.
    int Below(int limit) {
        m_state = m_state * 1664525u + 1013904223u;
        return static_cast<int>(uint64_t{m_state} * static_cast<uint64_t>(limit) >> 32);
    }
    template <class T> T OneOf(std::initializer_list<T> values) {
        return values.begin()[Below(static_cast<int>(values.size()))];
    }

    // Rows of `row` elements with padding between them, or upside down.
    template <class T = uint8_t> CallImage<T> Image(int row, int rows) {
        const CallImage<T> image = TopDown<T>(row, rows);
        if (Below(3) != 0) return image;
        return {image.first + int64_t{image.stride} * (rows - 1), -image.stride};
    }
    template <class T = uint8_t> CallImage<T> TopDown(int row, int rows) {
        const int stride = row + OneOf({0, 0, 1, 3, 8, 13});
        return {Block<T>(int64_t{stride} * (rows - 1) + row), stride};
    }
    // The same with the padding of the last row.
    CallImage<uint8_t> WholeRows(int row, int rows) {
        const int stride = row + OneOf({0, 0, 1, 3, 8, 13});
        return {Block<uint8_t>(int64_t{stride} * rows), stride};
    }
    template <class T = uint8_t> T* Block(int64_t elements) {
        const auto side = Below(2) == 0 ? GuardedBuffer::kEnd : GuardedBuffer::kStart;
        m_buffers.push_back(std::make_unique<GuardedBuffer>(elements * sizeof(T), side));
        std::vector<uint8_t>& before = m_before.emplace_back(elements * sizeof(T));
        FillHostile(before.data(), before.size(), m_shape.seed + 31 * m_before.size());
        return reinterpret_cast<T*>(m_buffers.back()->data());
    }

    CTQArray<TQ_RECT, TQ_RECT&>& Rects() { return m_rects; }
    CTQArray<int, int>& Strides() { return m_strides; }
    CTQArray<unsigned char*, unsigned char*>& Planes() { return m_planes; }
    void AddPlane(CallImage<uint8_t> plane) {
        m_strides.Add(plane.stride);
        m_planes.Add(plane.first);
    }
    float* Values() { return m_values; }

    // Bytes that a call may leave as it likes.
    void Ignore(uint8_t* first, int64_t bytes) {
        if (bytes > 0) m_ignored.push_back({first, bytes});
    }

    // All as it is before a call.
    void Refill() {
        for (size_t i = 0; i < m_buffers.size(); ++i)
            std::memcpy(m_buffers[i]->data(), m_before[i].data(), m_before[i].size());
        m_rects.SetSize(0);
        std::fill(std::begin(m_values), std::end(m_values), 0.0f);
    }

    // All that a call can have changed.
    std::vector<uint8_t> Contents() {
        for (const Range& range : m_ignored)
            std::memset(range.first, 0, static_cast<size_t>(range.bytes));
        std::vector<uint8_t> contents;
        for (const auto& buffer : m_buffers)
            contents.insert(contents.end(), buffer->data(), buffer->data() + buffer->size());
        Append(contents, m_rects.m_pData, static_cast<size_t>(m_rects.m_nSize) * sizeof(TQ_RECT));
        Append(contents, m_values, sizeof m_values);
        return contents;
    }

private:
    struct Range {
        uint8_t* first;
        int64_t bytes;
    };
    static void Append(std::vector<uint8_t>& contents, const void* data, size_t bytes) {
        if (bytes == 0) return;
        contents.resize(contents.size() + bytes);
        std::memcpy(contents.data() + contents.size() - bytes, data, bytes);
    }

    CallShape m_shape;
    uint32_t m_state;
    std::vector<std::unique_ptr<GuardedBuffer>> m_buffers;
    std::vector<std::vector<uint8_t>> m_before;
    std::vector<Range> m_ignored;
    CTQArray<TQ_RECT, TQ_RECT&> m_rects;
    CTQArray<int, int> m_strides;
    CTQArray<unsigned char*, unsigned char*> m_planes;
    float m_values[4] = {};
};

}  // namespace tqtest
