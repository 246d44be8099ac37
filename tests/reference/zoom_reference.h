#pragma once

// The zoom family written a second time, one sample at a time from its formulas and sharing
// nothing with zoom/. Production must equal it, byte for byte, at every level. Each float operation
// stands on its own and is rounded on its own: compile with -ffp-contract=off.

#include <cfloat>
#include <cstdint>

namespace tqref {

static_assert(FLT_EVAL_METHOD == 0, "single precision is not evaluated in single precision");

struct ZoomSource {
    int width, height, stride;
    const uint8_t* first;
    int Sample(int row, int column, int channels, int channel) const {
        return first[int64_t{row} * stride + int64_t{column} * channels + channel];
    }
};

struct ZoomTarget {
    int width, height, stride;
    uint8_t* first;
    uint8_t& Sample(int row, int column, int channels, int channel) const {
        return first[int64_t{row} * stride + int64_t{column} * channels + channel];
    }
};

inline void ZoomClear(int channels, const ZoomTarget& dst) {
    for (int j = 0; j < dst.height; ++j)
        for (int i = 0; i < dst.width; ++i)
            for (int channel = 0; channel < channels; ++channel)
                dst.Sample(j, i, channels, channel) = 0;
}

// What every method but nearest neighbour does before its own steps; true if nothing is left to do.
inline bool ZoomPreamble(int channels, const ZoomSource& src, const ZoomTarget& dst) {
    if (src.first == nullptr || dst.first == nullptr) return true;
    if (src.width == dst.width && src.height == dst.height) {
        for (int j = 0; j < dst.height; ++j)
            for (int i = 0; i < dst.width; ++i)
                for (int channel = 0; channel < channels; ++channel)
                    dst.Sample(j, i, channels, channel) =
                        static_cast<uint8_t>(src.Sample(j, i, channels, channel));
        return true;
    }
    if (src.width < 1 || src.height < 1 || dst.width < 1 || dst.height < 1) {
        ZoomClear(channels, dst);
        return true;
    }
    return false;
}

inline void ZoomNearest(int channels, const ZoomSource& src, const ZoomTarget& dst) {
    if (src.first == nullptr || dst.first == nullptr) return;
    if (src.width < 1 || src.height < 1) ZoomClear(channels, dst);
    if (dst.width < 1 || dst.height < 1) return;
    // Positions left of or above a source of negative size do not exist: what was cleared stays.
    if (src.width < 0 || src.height < 0) return;
    const double sx = static_cast<double>(src.width) / static_cast<double>(dst.width);
    const double sy = static_cast<double>(src.height) / static_cast<double>(dst.height);
    for (int j = 0; j < dst.height; ++j)
        for (int i = 0; i < dst.width; ++i) {
            const double y = j * sy, x = i * sx;
            const int row = static_cast<int>(y), column = static_cast<int>(x);
            for (int channel = 0; channel < channels; ++channel)
                dst.Sample(j, i, channels, channel) =
                    static_cast<uint8_t>(src.Sample(row, column, channels, channel));
        }
}

// The step from one destination index to the next in source positions, and the position of index 0.
struct LinearAxis {
    float step, offset;
    int last;  // the greatest source index

    LinearAxis(int srcLength, int dstLength) {
        step = static_cast<float>(srcLength) / static_cast<float>(dstLength);
        const double half = static_cast<double>(step) * 0.5;
        offset = static_cast<float>(half - 0.5);
        last = srcLength - 1;
    }
    void Locate(int i, int& index, float& fraction) const {
        const float product = static_cast<float>(i) * step;
        float position = product + offset;
        const float greatest = static_cast<float>(last);
        if (0.0f > position) position = 0.0f;
        if (position > greatest) position = greatest;
        index = static_cast<int>(position);
        fraction = position - static_cast<float>(index);
    }
};

// v before its truncation.
inline float LinearValue(int a, int b, int c, int d, float fx, float fy) {
    const int k = d - b - c + a;
    const float area = fx * fy;
    const float both = static_cast<float>(k) * area;
    const float down = static_cast<float>(c - a) * fy;
    const float right = static_cast<float>(b - a) * fx;
    const float bothAndDown = both + down;
    const float withRight = bothAndDown + right;
    return withRight + static_cast<float>(a);
}

// Rows rowBegin to rowEnd - 1, without the preamble.
inline void ZoomLinearRows(int channels, const ZoomSource& src, const ZoomTarget& dst, int rowBegin,
                           int rowEnd) {
    const LinearAxis across(src.width, dst.width), along(src.height, dst.height);
    for (int j = rowBegin; j < rowEnd; ++j) {
        int iy;
        float fy;
        along.Locate(j, iy, fy);
        const int below = iy >= src.height - 1 ? iy : iy + 1;
        for (int i = 0; i < dst.width; ++i) {
            int ix;
            float fx;
            across.Locate(i, ix, fx);
            for (int channel = 0; channel < channels; ++channel) {
                const int a = src.Sample(iy, ix, channels, channel);
                const int c = src.Sample(below, ix, channels, channel);
                const bool inside = ix < src.width - 1;
                const int b = inside ? src.Sample(iy, ix + 1, channels, channel) : a;
                const int d = inside ? src.Sample(below, ix + 1, channels, channel) : c;
                const int v = static_cast<int>(LinearValue(a, b, c, d, fx, fy));
                dst.Sample(j, i, channels, channel) = static_cast<uint8_t>(v & 255);
            }
        }
    }
}

inline void ZoomLinear(int channels, const ZoomSource& src, const ZoomTarget& dst) {
    if (ZoomPreamble(channels, src, dst)) return;
    ZoomLinearRows(channels, src, dst, 0, dst.height);
}

// The methods with the arguments of the library's forms.
template <void (*method)(int, const ZoomSource&, const ZoomTarget&), int channels>
void ZoomForm(int srcWidth, int srcHeight, int srcStride, const uint8_t* src, int dstWidth,
              int dstHeight, int dstStride, uint8_t* dst) {
    method(channels, ZoomSource{srcWidth, srcHeight, srcStride, src},
           ZoomTarget{dstWidth, dstHeight, dstStride, dst});
}

inline constexpr auto ZoomNearestC1 = ZoomForm<ZoomNearest, 1>;
inline constexpr auto ZoomNearestC4 = ZoomForm<ZoomNearest, 4>;
inline constexpr auto ZoomLinearC1 = ZoomForm<ZoomLinear, 1>;
inline constexpr auto ZoomLinearC4 = ZoomForm<ZoomLinear, 4>;

}  // namespace tqref
