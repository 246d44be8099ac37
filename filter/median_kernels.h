#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/isa.h"

namespace tq {

// Radii up to which medians are found by comparing, and up to which the counts of a histogram of a
// window fit 16 and 32 bits.
inline constexpr int kMaxNetworkRadius = 5;
inline constexpr int kMaxRadius16 = 127;
inline constexpr int kMaxRadius32 = 32767;

// Histograms of `columns` columns of 2 * radius + 1 pixels. Of each, 16 counts at coarse + 16 *
// column, one for each sixteen values; and in the plane of the k-th sixteen, at fine + 16 * (k *
// columns + column), one for each of these values.
template <class Count> struct ColumnHistograms {
    ptrdiff_t columns;
    Count* coarse;
    Count* fine;
};

template <class Count> struct HistogramKernels {
    // The histograms gain the pixels of a row, or gain those of one and lose those of another.
    void (*gain)(const ColumnHistograms<Count>& histograms, const uint8_t* gained);
    void (*move)(const ColumnHistograms<Count>& histograms, const uint8_t* gained,
                 const uint8_t* lost);
    // The medians of all windows of 2 * radius + 1 columns, 1 or more.
    void (*row)(const ColumnHistograms<Count>& histograms, int radius, uint8_t* dst);
};

struct MedianKernels {
    // `count` medians, 1 or more, of squares of which the first begins at src: of radius 1, 2, ...
    // Nothing but the squares' pixels is read.
    void (*network[kMaxNetworkRadius])(const uint8_t* src, ptrdiff_t stride, uint8_t* dst,
                                       ptrdiff_t count);
    HistogramKernels<uint16_t> upToRadius16;
    HistogramKernels<uint16_t> upToRadius32;
    HistogramKernels<uint32_t> anyRadius;
};

TQ_DECLARE_KERNELS(MedianKernels, medianKernels)

}  // namespace tq
