#pragma once

// V210 and V216 written a second time, one group at a time and sharing nothing with color/.

#include <cstdint>

#include "reference/deep_samples.h"
#include "reference/packed422_to_argb_reference.h"

namespace tqref {

// Six pixels of V210 as samples of ten bits, and where each stands in the four words.
struct V210Group {
    int y[6], u[3], v[3];
};

struct V210Place {
    int word, shift;
};
inline constexpr V210Place kV210Y[6] = {{0, 10}, {1, 0}, {1, 20}, {2, 10}, {3, 0}, {3, 20}};
inline constexpr V210Place kV210U[3] = {{0, 0}, {1, 10}, {2, 20}};
inline constexpr V210Place kV210V[3] = {{0, 20}, {2, 0}, {3, 10}};

inline V210Group ReadV210(const uint8_t* bytes) {
    V210Group group;
    auto read = [bytes](V210Place place) {
        return TenBits(Word32(bytes + 4 * place.word), place.shift);
    };
    for (int i = 0; i < 6; ++i) group.y[i] = read(kV210Y[i]);
    for (int i = 0; i < 3; ++i) group.u[i] = read(kV210U[i]);
    for (int i = 0; i < 3; ++i) group.v[i] = read(kV210V[i]);
    return group;
}

inline void WriteV210(const V210Group& group, uint8_t* bytes) {
    uint32_t words[4] = {0, 0, 0, 0};
    auto add = [&words](V210Place place, int sample) {
        words[place.word] += static_cast<uint32_t>(sample) << place.shift;
    };
    for (int i = 0; i < 6; ++i) add(kV210Y[i], group.y[i]);
    for (int i = 0; i < 3; ++i) add(kV210U[i], group.u[i]);
    for (int i = 0; i < 3; ++i) add(kV210V[i], group.v[i]);
    for (int i = 0; i < 4; ++i) PutWord32(bytes + 4 * i, words[i]);
}

// Calls visit(row, group number, group) for the whole groups of each row.
template <class Visit>
void ForEachV210Group(int width, int height, int srcStride, const uint8_t* src, Visit visit) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t g = 0; g < width / 6; ++g)
            visit(row, g, ReadV210(src + row * srcStride + 16 * g));
}

inline uint8_t Upper8Of10(int sample) { return static_cast<uint8_t>(sample / 4); }

inline void V210ToUyvy(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                       uint8_t* dst) {
    ForEachV210Group(width, height, srcStride, src,
                     [=](int64_t row, int64_t g, const V210Group& group) {
                         uint8_t* out = dst + row * dstStride + 12 * g;
                         for (int pair = 0; pair < 3; ++pair, out += 4) {
                             out[0] = Upper8Of10(group.u[pair]);
                             out[1] = Upper8Of10(group.y[2 * pair]);
                             out[2] = Upper8Of10(group.v[pair]);
                             out[3] = Upper8Of10(group.y[2 * pair + 1]);
                         }
                     });
}

inline void V210ToYuyv(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                       uint8_t* dst) {
    ForEachV210Group(width, height, srcStride, src,
                     [=](int64_t row, int64_t g, const V210Group& group) {
                         uint8_t* out = dst + row * dstStride + 12 * g;
                         for (int pair = 0; pair < 3; ++pair, out += 4) {
                             out[0] = Upper8Of10(group.y[2 * pair]);
                             out[1] = Upper8Of10(group.u[pair]);
                             out[2] = Upper8Of10(group.y[2 * pair + 1]);
                             out[3] = Upper8Of10(group.v[pair]);
                         }
                     });
}

// The layout follows from width and height alone.
inline void V210ToYuvp422(int width, int height, int srcStride, const uint8_t* src, int /*ignored*/,
                          uint8_t* dst) {
    const int64_t pixels = int64_t{width} * height;
    ForEachV210Group(width, height, srcStride, src,
                     [=](int64_t row, int64_t g, const V210Group& group) {
                         uint8_t* y = dst + row * width + 6 * g;
                         uint8_t* u = dst + pixels + row * width / 2 + 3 * g;
                         uint8_t* v = u + pixels / 2;
                         for (int i = 0; i < 6; ++i) y[i] = Upper8Of10(group.y[i]);
                         for (int i = 0; i < 3; ++i) u[i] = Upper8Of10(group.u[i]);
                         for (int i = 0; i < 3; ++i) v[i] = Upper8Of10(group.v[i]);
                     });
}

inline void V210ToBgra(const YuvToRgbSet& set, int width, int height, int srcStride,
                       const uint8_t* src, int dstStride, uint8_t* dst) {
    ForEachV210Group(
        width, height, srcStride, src, [&](int64_t row, int64_t g, const V210Group& group) {
            uint8_t* out = dst + row * dstStride + 24 * g;
            for (int i = 0; i < 6; ++i)
                StudioRangePixel(set, Upper8Of10(group.y[i]), Upper8Of10(group.u[i / 2]),
                                 Upper8Of10(group.v[i / 2]), out + 4 * i);
        });
}

inline void V210ToBgra601(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                          uint8_t* dst) {
    V210ToBgra(k601ToRgb, width, height, srcStride, src, dstStride, dst);
}

inline void V210ToBgra709(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                          uint8_t* dst) {
    V210ToBgra(k709ToRgb, width, height, srcStride, src, dstStride, dst);
}

// Where one plane serves for several, the samples of plane 0 come first in a group.
inline void V210ToYuvp216(int width, int height, int srcStride, const uint8_t* src,
                          const StrideList& strides, const PlaneList& planes) {
    ForEachV210Group(width, height, srcStride, src,
                     [&](int64_t row, int64_t g, const V210Group& group) {
                         uint8_t* y = PlaneRow(strides, planes, 0, row) + 12 * g;
                         uint8_t* u = PlaneRow(strides, planes, 1, row) + 6 * g;
                         uint8_t* v = PlaneRow(strides, planes, 2, row) + 6 * g;
                         for (int i = 0; i < 6; ++i) PutSample16(y + 2 * i, 64 * group.y[i]);
                         for (int i = 0; i < 3; ++i) PutSample16(u + 2 * i, 64 * group.u[i]);
                         for (int i = 0; i < 3; ++i) PutSample16(v + 2 * i, 64 * group.v[i]);
                     });
}

inline void Yuvp216ToV210(int width, int height, const StrideList& strides, const PlaneList& planes,
                          int dstStride, uint8_t* dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t g = 0; g < width / 6; ++g) {
            const uint8_t* y = PlaneRow(strides, planes, 0, row) + 12 * g;
            const uint8_t* u = PlaneRow(strides, planes, 1, row) + 6 * g;
            const uint8_t* v = PlaneRow(strides, planes, 2, row) + 6 * g;
            V210Group group;
            for (int i = 0; i < 6; ++i) group.y[i] = Sample16(y + 2 * i) / 64;
            for (int i = 0; i < 3; ++i) group.u[i] = Sample16(u + 2 * i) / 64;
            for (int i = 0; i < 3; ++i) group.v[i] = Sample16(v + 2 * i) / 64;
            WriteV210(group, dst + row * dstStride + 16 * g);
        }
}

// dstStride counts ints.
inline void V210ToLum32(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                        int* dst) {
    ForEachV210Group(width, height, srcStride, src,
                     [=](int64_t row, int64_t g, const V210Group& group) {
                         for (int i = 0; i < 6; ++i) dst[row * dstStride + 6 * g + i] = group.y[i];
                     });
}

// Two pixels of V216: four samples.
struct V216Pair {
    int u, y0, v, y1;
};

inline V216Pair ReadV216(const uint8_t* bytes) {
    return {Sample16(bytes), Sample16(bytes + 2), Sample16(bytes + 4), Sample16(bytes + 6)};
}

inline void V216ToBgra(const YuvToRgbSet& set, int width, int height, int srcStride,
                       const uint8_t* src, int dstStride, uint8_t* dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t p = 0; p < width / 2; ++p) {
            const V216Pair pair = ReadV216(src + row * srcStride + 8 * p);
            uint8_t* out = dst + row * dstStride + 8 * p;
            StudioRangePixel(set, pair.y0 / 256, pair.u / 256, pair.v / 256, out);
            StudioRangePixel(set, pair.y1 / 256, pair.u / 256, pair.v / 256, out + 4);
        }
}

inline void V216ToBgra601(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                          uint8_t* dst) {
    V216ToBgra(k601ToRgb, width, height, srcStride, src, dstStride, dst);
}

inline void V216ToBgra709(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                          uint8_t* dst) {
    V216ToBgra(k709ToRgb, width, height, srcStride, src, dstStride, dst);
}

inline void V216ToYuvp216(int width, int height, int srcStride, const uint8_t* src,
                          const StrideList& strides, const PlaneList& planes) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t p = 0; p < width / 2; ++p) {
            const V216Pair pair = ReadV216(src + row * srcStride + 8 * p);
            uint8_t* y = PlaneRow(strides, planes, 0, row) + 4 * p;
            PutSample16(y, pair.y0);
            PutSample16(y + 2, pair.y1);
            PutSample16(PlaneRow(strides, planes, 1, row) + 2 * p, pair.u);
            PutSample16(PlaneRow(strides, planes, 2, row) + 2 * p, pair.v);
        }
}

inline void Yuvp216ToV216(int width, int height, const StrideList& strides, const PlaneList& planes,
                          int dstStride, uint8_t* dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t p = 0; p < width / 2; ++p) {
            const uint8_t* y = PlaneRow(strides, planes, 0, row) + 4 * p;
            uint8_t* out = dst + row * dstStride + 8 * p;
            PutSample16(out, Sample16(PlaneRow(strides, planes, 1, row) + 2 * p));
            PutSample16(out + 2, Sample16(y));
            PutSample16(out + 4, Sample16(PlaneRow(strides, planes, 2, row) + 2 * p));
            PutSample16(out + 6, Sample16(y + 2));
        }
}

// Pixels, not pairs: an odd width has its last luma too. dstStride counts ints.
inline void V216ToLum32(int width, int height, int srcStride, const uint8_t* src, int dstStride,
                        int* dst) {
    for (int64_t row = 0; row < height; ++row)
        for (int64_t x = 0; x < width; ++x)
            dst[row * dstStride + x] = Sample16(src + row * srcStride + 2 * (2 * x + 1));
}

}  // namespace tqref
