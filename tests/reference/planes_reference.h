#pragma once

// Packed images to planes and back written a second time: one byte at a time and sharing nothing
// with color/. An image or a plane is anything that [] indexes by bytes from its first one.

#include <tqipl/types.h>

#include <cstdint>
#include <vector>

namespace tqref {

// Which byte of a group goes to which place of which plane, in order. Rows of 4:2:2 hold a group
// for two pixels.
struct PlaneSample {
    int byteOfGroup;
    int plane;
    int perGroup;  // samples that the plane has for a group
    int index;     // which of them
};
struct PlaneLayout {
    int groupBytes = 0;  // 0: the format has none
    int groupPixels = 1;
    bool opaque = false;  // a build writes 255 to the last byte of each group
    std::vector<PlaneSample> samples;
};

inline PlaneLayout PlaneLayoutOf(TQ_COLOR_FORMAT format, int64_t strideCount) {
    switch (format) {
        case TQ_COLOR_ARGB:
            if (strideCount == 3) return {4, 1, true, {{0, 0, 1, 0}, {1, 1, 1, 0}, {2, 2, 1, 0}}};
            if (strideCount == 4)
                return {4, 1, false, {{0, 0, 1, 0}, {1, 1, 1, 0}, {2, 2, 1, 0}, {3, 3, 1, 0}}};
            return {};
        case TQ_COLOR_BGR24:
            return {3, 1, false, {{0, 0, 1, 0}, {1, 1, 1, 0}, {2, 2, 1, 0}}};
        case TQ_COLOR_AYUV:
            if (strideCount == 3) return {4, 1, true, {{2, 0, 1, 0}, {1, 1, 1, 0}, {0, 2, 1, 0}}};
            if (strideCount == 4)
                return {4, 1, false, {{2, 0, 1, 0}, {1, 1, 1, 0}, {0, 2, 1, 0}, {3, 3, 1, 0}}};
            return {};
        case TQ_COLOR_YUYV:
            return {4, 2, false, {{0, 0, 2, 0}, {2, 0, 2, 1}, {1, 1, 1, 0}, {3, 2, 1, 0}}};
        case TQ_COLOR_UYVY:
            return {4, 2, false, {{1, 0, 2, 0}, {3, 0, 2, 1}, {0, 1, 1, 0}, {2, 2, 1, 0}}};
        default:
            return {};
    }
}

// An entry past the end is the last one; an empty list has zeros.
template <class T> T Clamped(const std::vector<T>& list, int64_t index) {
    const auto size = static_cast<int64_t>(list.size());
    if (size == 0) return T{};
    return list[index < size ? index : size - 1];
}

// planes[i] is where plane i begins in memory that all planes share.
template <class Image, class Memory>
void SplitRows(const PlaneLayout& layout, int width, int64_t rows, int64_t stride, int64_t first,
               Image& image, const std::vector<int>& strides, const std::vector<int64_t>& planes,
               Memory& memory) {
    if (layout.groupBytes == 0) return;
    for (int64_t row = 0; row < rows; ++row)
        for (int64_t group = 0; group < width / layout.groupPixels; ++group) {
            const int64_t from = first + row * stride + group * layout.groupBytes;
            std::vector<uint8_t> bytes;
            for (int64_t i = 0; i < layout.groupBytes; ++i) bytes.push_back(image[from + i]);
            for (const PlaneSample& sample : layout.samples)
                memory[Clamped(planes, sample.plane) + Clamped(strides, sample.plane) * row +
                       group * sample.perGroup + sample.index] = bytes[sample.byteOfGroup];
        }
}

template <class Image, class Memory>
void BuildRows(const PlaneLayout& layout, int width, int64_t rows, int64_t stride, int64_t first,
               Image& image, const std::vector<int>& strides, const std::vector<int64_t>& planes,
               Memory& memory) {
    if (layout.groupBytes == 0) return;
    for (int64_t row = 0; row < rows; ++row)
        for (int64_t group = 0; group < width / layout.groupPixels; ++group) {
            const int64_t to = first + row * stride + group * layout.groupBytes;
            for (const PlaneSample& sample : layout.samples)
                image[to + sample.byteOfGroup] =
                    memory[Clamped(planes, sample.plane) + Clamped(strides, sample.plane) * row +
                           group * sample.perGroup + sample.index];
            if (layout.opaque) image[to + 3] = 255;
        }
}

enum PlaneWork { kSplit, kBuild };

// With fewer than two processors one band is the plain form. Each band has the plane positions of
// its first row; a position moves on by the stride of the same index, clamped, so a short list of
// planes moves once for each entry that it has.
template <class Image, class Memory>
void PlanesInBands(PlaneWork work, unsigned processors, TQ_COLOR_FORMAT format, int width,
                   int height, int64_t stride, Image& image, const std::vector<int>& strides,
                   std::vector<int64_t> planes, Memory& memory) {
    const PlaneLayout layout = PlaneLayoutOf(format, static_cast<int64_t>(strides.size()));
    const int count = processors < 2 ? 1 : static_cast<int>(processors), length = height / count;
    for (int64_t band = 0, row = 0; band < count; ++band) {
        const int64_t rows = band + 1 < count ? length : height - row;
        if (work == kSplit)
            SplitRows(layout, width, rows, stride, row * stride, image, strides, planes, memory);
        else
            BuildRows(layout, width, rows, stride, row * stride, image, strides, planes, memory);
        for (size_t i = 0; i < planes.size(); ++i)
            planes[i] += Clamped(strides, static_cast<int64_t>(i)) * rows;
        row += rows;
    }
}

}  // namespace tqref
