#pragma once

// Images in guarded memory, what a reference makes of them, and the comparison of all of that
// memory with what the library makes of it. What differs is printed, and the program stops.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "fuzz_input.h"
#include "reference/image_memory_reference.h"
#include "support/guarded_buffer.h"

namespace tqfuzz {

[[noreturn]] inline void Fail(const std::string& what) {
    std::fprintf(stderr, "Level %s, %u processors: %s\n", tq::IsaLevelName(tq::CurrentIsaLevel()),
                 g_IPLProcessorCount, what.c_str());
    std::fflush(nullptr);
    std::abort();
}
inline void Require(bool holds, const char* what) {
    if (!holds) Fail(what);
}

// What an image of a form may be besides rows of bytes behind one another.
struct ImageKind {
    int unit = 1;          // bytes of an element: what strides and starts are multiples of
    bool bottomUp = true;  // may have a negative stride
    bool oneRow = false;   // all rows may be the same: for sources only
    int slack = -1;        // not negative: what the reference touches, up to so far outside the
                           // rows, is all that is there
};

class Image {
public:
    // Rows of rowBytes in a layout that the input gives.
    Image(Input& input, size_t slot, int rowBytes, int rows, ImageKind kind)
        : m_slot(slot), m_byReach(kind.slack >= 0), m_bytes(nullptr) {
        rowBytes = std::max(rowBytes, 0);
        const uint8_t placement = input.Byte();
        const int padding = placement % 4 == 0 ? 0 : input.Byte() % 24 * kind.unit;
        m_atEnd = (placement & 4) == 0;
        m_gap = (placement >> 3 & 3) == 0 ? 0 : input.Byte() % (32 / kind.unit) * kind.unit;
        const int row = (rowBytes + kind.unit - 1) / kind.unit * kind.unit;
        m_stride = row + padding;
        if (kind.oneRow && placement % 32 == 31) m_stride = 0;
        if (kind.bottomUp && (placement & 0xC0) == 0x40) m_stride = -m_stride;
        const int64_t last = rows > 0 && rowBytes > 0 ? int64_t{m_stride} * (rows - 1) : 0;
        m_begin = std::min<int64_t>(last, 0);
        m_end = rows > 0 ? std::max<int64_t>(last, 0) + rowBytes : 0;
        const int64_t slack = kMargin + (std::max(kind.slack, 0) + 63) / 64 * 64;
        m_origin = slack - (m_begin - 63) / 64 * 64;
        m_before.resize(static_cast<size_t>(m_origin + m_end + slack));
        m_modelBegin = -m_origin;
        m_modelEnd = m_end + slack;
        input.Fill(m_before.data(), m_before.size(), input.Byte() + 256 * (placement >> 3));
        if (m_modelEnd - m_modelBegin > static_cast<int64_t>(kRoom)) Fail("an image is too large");
    }

    int Stride() const { return m_stride; }
    int Stride(int unit) const { return m_stride / unit; }
    // The first row, as the reference and as the library get it.
    uint8_t* Model() { return m_model.data() + m_origin; }
    tqref::Bytes& ModelBytes() { return m_bytes; }
    uint8_t* Data() { return m_data; }
    template <class T> T* ModelAs() { return reinterpret_cast<T*>(Model()); }
    template <class T> T* DataAs() { return reinterpret_cast<T*>(Data()); }

    // Makes floats of the whole memory, for images whose unit is 4: kindAt(element) says of which
    // kind, counted from the first row.
    template <class KindAt> void MakeFloats(KindAt kindAt) {
        for (size_t i = m_origin % 4; i + 4 <= m_before.size(); i += 4) {
            uint32_t bits;
            std::memcpy(&bits, &m_before[i], 4);
            const float value = FloatFor(bits, kindAt((static_cast<int64_t>(i) - m_origin) / 4));
            std::memcpy(&m_before[i], &value, 4);
        }
    }
    // change(byte) for every byte.
    template <class Change> void Map(Change change) {
        for (uint8_t& byte : m_before) byte = change(byte);
    }

private:
    friend class Stage;
    static constexpr int64_t kMargin = 64;
    static constexpr size_t kRoom = size_t{1} << 20;

    static tqtest::GuardedBuffer& Room(size_t slot, bool atEnd) {
        using tqtest::GuardedBuffer;
        static std::vector<std::unique_ptr<GuardedBuffer>> rooms[2];
        auto& list = rooms[atEnd];
        while (list.size() <= slot)
            list.push_back(std::make_unique<GuardedBuffer>(
                kRoom, atEnd ? GuardedBuffer::kEnd : GuardedBuffer::kStart));
        return *list[slot];
    }

    void StartModel() {
        m_model = m_before;
        m_bytes = tqref::Bytes(Model());
    }
    void EndModel() {
        if (!m_byReach) return;
        m_begin = m_bytes.Begin();
        m_end = m_bytes.End();
        if (m_begin < m_modelBegin || m_end > m_modelEnd)
            Fail("the reference reaches from " + std::to_string(m_begin) + " to " +
                 std::to_string(m_end) + " in an image from " + std::to_string(m_modelBegin) +
                 " to " + std::to_string(m_modelEnd));
    }
    // On one side the image ends at the guard, up to a gap; on the other side all of the model is
    // there.
    void Place() {
        tqtest::GuardedBuffer& room = Room(m_slot, m_atEnd);
        if (m_atEnd) {
            m_from = m_modelBegin;
            m_to = std::min(m_end + m_gap, m_modelEnd);
            m_data = room.data() + room.size() - m_to;
        } else {
            m_from = std::max(m_begin - m_gap, m_modelBegin);
            m_to = m_modelEnd;
            m_data = room.data() - m_from;
        }
        std::memcpy(m_data + m_from, m_before.data() + m_origin + m_from,
                    static_cast<size_t>(m_to - m_from));
    }
    bool Same() const {
        return std::memcmp(m_data + m_from, m_model.data() + m_origin + m_from,
                           static_cast<size_t>(m_to - m_from)) == 0;
    }
    std::string Difference() const {
        int64_t at = m_from;
        while (m_data[at] == m_model[m_origin + at]) ++at;
        return "byte " + std::to_string(at) + " from the first, stride " +
               std::to_string(m_stride) + ", is " + std::to_string(m_data[at]) + " and not " +
               std::to_string(m_model[static_cast<size_t>(m_origin + at)]);
    }

    size_t m_slot;
    bool m_byReach, m_atEnd;
    int m_stride, m_gap;
    // Counted from the first row's first byte: what is used, the model, and what is compared.
    int64_t m_begin, m_end, m_modelBegin, m_modelEnd, m_from = 0, m_to = 0;
    int64_t m_origin;
    std::vector<uint8_t> m_before, m_model;
    tqref::Bytes m_bytes;
    uint8_t* m_data = nullptr;
};

class Stage {
public:
    explicit Stage(Input& input) : m_input(input) {}

    Image& Add(int rowBytes, int rows, ImageKind kind = {}) {
        m_images.push_back(std::make_unique<Image>(m_input, m_images.size(), rowBytes, rows, kind));
        return *m_images.back();
    }
    // What the model becomes.
    template <class Reference> void Expect(Reference reference) {
        for (auto& image : m_images) image->StartModel();
        reference();
        for (auto& image : m_images) image->EndModel();
    }
    // Calls the form on fresh memory, which then holds what the model holds.
    template <class Form> void Check(const char* name, int width, int height, Form form) {
        Run(form);
        for (size_t i = 0; i < m_images.size(); ++i)
            if (!m_images[i]->Same())
                Fail(name + (", " + std::to_string(width)) + " x " + std::to_string(height) +
                     ", image " + std::to_string(i) + ": " + m_images[i]->Difference());
    }
    template <class Form> void Run(Form form) {
        for (auto& image : m_images) image->Place();
        form();
    }

private:
    Input& m_input;
    std::vector<std::unique_ptr<Image>> m_images;
};

}  // namespace tqfuzz

// What every fuzzer defines.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
