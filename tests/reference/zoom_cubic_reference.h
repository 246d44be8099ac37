#pragma once

// The cubic and the six-tap zoom written a second time: one record for each destination index of an
// axis, then one sum for each sample. Each float operation stands on its own and is rounded on its
// own: compile with -ffp-contract=off.

#include <cmath>
#include <cstdint>
#include <vector>

#include "reference/zoom_reference.h"

namespace tqref {

// The source samples from first to last, with a weight for each; none if first is beyond last.
struct TapRecord {
    int first, last;
    std::vector<int> weights;
};

// ---- Kernels ------------------------------------------------------------------------------------

// In single precision throughout.
inline float CubicKernel(float t) {
    const float a = std::fabs(t);
    if (a < 1.0f) {
        const float square = (a * 11.0f) * a;
        const float cube = ((a * 6.0f) * a) * a;
        const float withSquare = 5.0f - square;
        const float sum = withSquare + cube;
        return sum / 5.0f;
    }
    if (a < 2.0f) {
        const float linear = a * 27.0f;
        const float square = (a * 16.0f) * a;
        const float cube = ((a * 3.0f) * a) * a;
        const float withLinear = 14.0f - linear;
        const float withSquare = withLinear + square;
        const float sum = withSquare - cube;
        return sum / 5.0f;
    }
    if (a < 3.0f) {
        const float linear = a * 21.0f;
        const float square = (a * 8.0f) * a;
        const float cube = (a * a) * a;
        const float withLinear = linear - 18.0f;
        const float withSquare = withLinear - square;
        const float sum = withSquare + cube;
        return sum / 5.0f;
    }
    return 0.0f;
}

// The same function: powers and sums in double precision, but for the square and the linear term.
inline float SixTapKernel(float t) {
    const float a = std::fabs(t);
    const float square = a * a;
    const double a2 = static_cast<double>(square);
    const double a3 = static_cast<double>(a) * a2;
    if (a < 1.0f) {
        const double sum = (5.0 - a2 * 11.0) + a3 * 6.0;
        return static_cast<float>(sum / 5.0);
    }
    if (a < 2.0f) {
        const float product = a * 27.0f;
        const float linear = 14.0f - product;
        const double sum = (static_cast<double>(linear) + a2 * 16.0) - a3 * 3.0;
        return static_cast<float>(sum / 5.0);
    }
    if (a < 3.0f) {
        const float product = a * 21.0f;
        const float linear = product - 18.0f;
        const double sum = (static_cast<double>(linear) - a2 * 8.0) + a3;
        return static_cast<float>(sum / 5.0);
    }
    return 0.0f;
}

// ---- Records ------------------------------------------------------------------------------------

// The weights of the samples around position x, in 1024ths cut toward zero and not corrected to any
// sum.
inline TapRecord MakeTapRecord(float (*kernel)(float), float x, int first, int last) {
    std::vector<float> values;
    float sum = 0.0f;
    for (int k = first; k <= last; ++k) {
        const float distance = x - static_cast<float>(k);
        const float value = kernel(distance);
        values.push_back(value);
        sum = sum + value;
    }
    TapRecord record{first, last, {}};
    for (const float value : values) {
        const float part = value / sum;
        const float scaled = part * 1024.0f;
        record.weights.push_back(static_cast<int>(scaled));
    }
    return record;
}

inline std::vector<TapRecord> CubicRecords(int srcLength, int dstLength) {
    const float s = static_cast<float>(srcLength) / static_cast<float>(dstLength);
    const double half = static_cast<double>(s) * 0.5;
    const float o = static_cast<float>(half - 0.5);
    std::vector<TapRecord> records;
    for (int i = 0; i < dstLength; ++i) {
        const float product = static_cast<float>(i) * s;
        const float x = product + o;
        const int c = static_cast<int>(x);
        const int first = c - 1 < 0 ? 0 : c - 1;
        const int last = c + 2 > srcLength - 1 ? srcLength - 1 : c + 2;
        records.push_back(MakeTapRecord(CubicKernel, x, first, last));
    }
    return records;
}

inline std::vector<TapRecord> SixTapRecords(int srcLength, int dstLength) {
    const float r = static_cast<float>(dstLength) / static_cast<float>(srcLength);
    const double half = 0.5 / static_cast<double>(r);
    const float o = static_cast<float>(half - 0.5);
    std::vector<TapRecord> records;
    for (int i = 0; i < dstLength; ++i) {
        const float quotient = static_cast<float>(i) / r;
        const float x = quotient + o;
        const int c = static_cast<int>(x);
        const float difference = x - static_cast<float>(c);
        const float d = std::fabs(difference);
        const int first = c - 2 < 0 ? 0 : c - 2;
        int last = static_cast<double>(d) < 1e-10 ? c + 2 : c + 3;
        if (last > srcLength - 1) last = srcLength - 1;
        records.push_back(MakeTapRecord(SixTapKernel, x, first, last));
    }
    return records;
}

// As the library stores them: first, last, weights, and the next record right behind.
inline std::vector<int> PackTapRecords(const std::vector<TapRecord>& records) {
    std::vector<int> packed;
    for (const TapRecord& record : records) {
        packed.push_back(record.first);
        packed.push_back(record.last);
        packed.insert(packed.end(), record.weights.begin(), record.weights.end());
    }
    return packed;
}

// ---- Passes -------------------------------------------------------------------------------------

// sample(k) is the kth sample of the row or column. 32-bit integers that wrap around.
template <class Sample> int TapSum(const TapRecord& record, Sample sample) {
    uint32_t sum = 0;
    for (int k = record.first; k <= record.last; ++k) {
        const uint32_t weight = static_cast<uint32_t>(record.weights[k - record.first]);
        sum += static_cast<uint32_t>(sample(k)) * weight;
    }
    return static_cast<int32_t>(sum);
}

inline uint8_t ClampToByte(int value) {
    return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

inline int AddWrapping(int a, int b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

// From 1024ths, and from 1048576ths. Right shifts of negative values are arithmetic.
inline uint8_t FinishOnePass(int sum) { return ClampToByte(AddWrapping(sum, 512) >> 10); }
inline uint8_t FinishTwoPasses(int sum) { return ClampToByte(AddWrapping(sum, 524288) >> 20); }

// Rows of 32-bit sums, which take the place of bytes between two passes.
struct SumPlane {
    int stride;  // in 32-bit values
    int* first;
    int& At(int row, int column, int channels, int channel) const {
        return first[int64_t{row} * stride + int64_t{column} * channels + channel];
    }
};

inline int RowSum(int channels, const ZoomSource& src, const TapRecord& record, int row,
                  int channel) {
    return TapSum(record, [&](int k) { return src.Sample(row, k, channels, channel); });
}

// Rows rowBegin to rowEnd - 1, as many pixels in each as there are records.
inline void TapsAlongRows(int channels, const ZoomSource& src, const ZoomTarget& dst,
                          const std::vector<TapRecord>& records, int rowBegin, int rowEnd) {
    for (int row = rowBegin; row < rowEnd; ++row)
        for (int i = 0; i < static_cast<int>(records.size()); ++i)
            for (int channel = 0; channel < channels; ++channel)
                dst.Sample(row, i, channels, channel) =
                    FinishOnePass(RowSum(channels, src, records[i], row, channel));
}

inline void TapsAlongRowsUnrounded(int channels, const ZoomSource& src, const SumPlane& dst,
                                   const std::vector<TapRecord>& records, int rowBegin,
                                   int rowEnd) {
    for (int row = rowBegin; row < rowEnd; ++row)
        for (int i = 0; i < static_cast<int>(records.size()); ++i)
            for (int channel = 0; channel < channels; ++channel)
                dst.At(row, i, channels, channel) = RowSum(channels, src, records[i], row, channel);
}

// Columns columnBegin to columnEnd - 1, as many pixels in each as there are records.
inline void TapsAlongColumns(int channels, const ZoomSource& src, const ZoomTarget& dst,
                             const std::vector<TapRecord>& records, int columnBegin,
                             int columnEnd) {
    for (int column = columnBegin; column < columnEnd; ++column)
        for (int channel = 0; channel < channels; ++channel)
            for (int j = 0; j < static_cast<int>(records.size()); ++j)
                dst.Sample(j, column, channels, channel) = FinishOnePass(TapSum(
                    records[j], [&](int k) { return src.Sample(k, column, channels, channel); }));
}

inline void TapsAlongColumnsOfSums(int channels, const SumPlane& src, const ZoomTarget& dst,
                                   const std::vector<TapRecord>& records, int columnBegin,
                                   int columnEnd) {
    for (int column = columnBegin; column < columnEnd; ++column)
        for (int channel = 0; channel < channels; ++channel)
            for (int j = 0; j < static_cast<int>(records.size()); ++j)
                dst.Sample(j, column, channels, channel) = FinishTwoPasses(TapSum(
                    records[j], [&](int k) { return src.At(k, column, channels, channel); }));
}

// ---- Methods ------------------------------------------------------------------------------------

using TapRecords = std::vector<TapRecord> (*)(int srcLength, int dstLength);

inline void ZoomByTaps(TapRecords makeRecords, int channels, const ZoomSource& src,
                       const ZoomTarget& dst) {
    if (ZoomPreamble(channels, src, dst)) return;
    if (src.height == dst.height) {
        TapsAlongRows(channels, src, dst, makeRecords(src.width, dst.width), 0, src.height);
    } else if (src.width == dst.width) {
        TapsAlongColumns(channels, src, dst, makeRecords(src.height, dst.height), 0, dst.width);
    } else {
        const int rowLength = dst.width * channels;
        std::vector<int> sums(static_cast<size_t>(rowLength) * static_cast<size_t>(src.height));
        const SumPlane plane{rowLength, sums.data()};
        TapsAlongRowsUnrounded(channels, src, plane, makeRecords(src.width, dst.width), 0,
                               src.height);
        TapsAlongColumnsOfSums(channels, plane, dst, makeRecords(src.height, dst.height), 0,
                               dst.width);
    }
}

// The cubic zoom where every form honours srcStride: four channels, and both MultiThread forms.
inline void ZoomCubic(int channels, const ZoomSource& src, const ZoomTarget& dst) {
    ZoomByTaps(CubicRecords, channels, src, dst);
}

// The plain one-channel form takes the rows for packed where the widths are equal.
inline void ZoomCubicPackedColumns(int channels, const ZoomSource& src, const ZoomTarget& dst) {
    ZoomSource read = src;
    if (src.width == dst.width && src.height != dst.height) read.stride = dst.width;
    ZoomByTaps(CubicRecords, channels, read, dst);
}

inline void ZoomSixCubic(int channels, const ZoomSource& src, const ZoomTarget& dst) {
    ZoomByTaps(SixTapRecords, channels, src, dst);
}

inline constexpr auto ZoomCubicPlainC1 = ZoomForm<ZoomCubicPackedColumns, 1>;
inline constexpr auto ZoomCubicC1 = ZoomForm<ZoomCubic, 1>;
inline constexpr auto ZoomCubicC4 = ZoomForm<ZoomCubic, 4>;
inline constexpr auto ZoomSixCubicC1 = ZoomForm<ZoomSixCubic, 1>;
inline constexpr auto ZoomSixCubicC4 = ZoomForm<ZoomSixCubic, 4>;

}  // namespace tqref
