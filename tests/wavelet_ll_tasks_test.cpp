// The tasks of the low band: their fields, each mode run by hand against the reference, other
// modes.

#include "wavelet/wavelet_ll_tasks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <tuple>
#include <type_traits>
#include <vector>

#include "reference/wavelet_ll_reference.h"
#include "support/guarded_buffer.h"
#include "support/wavelet_check.h"

namespace {

using tqref::Samples16;
using tqref::Samples8;
using tqtest::AtEveryLevel;
using tqtest::GuardedBuffer;
using tqtest::Noise;

template <class A, class B> bool Precedes(const A& a, const B& b) {
    return reinterpret_cast<uintptr_t>(&a) < reinterpret_cast<uintptr_t>(&b);
}

TEST(WaveletLlTask, HasItsFieldsInOrder) {
    static_assert(std::is_base_of_v<CTQIPLTaskBase, CZDWT53_LL>);
    static_assert(std::is_same_v<decltype(CZDWT53_LL::m_nLow8), unsigned char> &&
                  std::is_same_v<decltype(CZDWT53_LL::m_nHigh8), unsigned char> &&
                  std::is_same_v<decltype(CZDWT53_LL::m_nLow16), unsigned short> &&
                  std::is_same_v<decltype(CZDWT53_LL::m_nHigh16), unsigned short>);
    static_assert(sizeof(CZDWT53_LL::m_nWidth) == 4 && sizeof(CZDWT53_LL::m_nHeight) == 4 &&
                  sizeof(CZDWT53_LL::m_nSrcStride) == 4 && sizeof(CZDWT53_LL::m_nDstStride) == 4 &&
                  sizeof(CZDWT53_LL::m_nMode) == 4);
    CZDWT53_LL task;
    EXPECT_TRUE(Precedes(task.m_nWidth, task.m_nHeight));
    EXPECT_TRUE(Precedes(task.m_nHeight, task.m_nSrcStride));
    EXPECT_TRUE(Precedes(task.m_nSrcStride, task.m_pSrc));
    EXPECT_TRUE(Precedes(task.m_pSrc, task.m_nDstStride));
    EXPECT_TRUE(Precedes(task.m_nDstStride, task.m_pRows));
    EXPECT_TRUE(Precedes(task.m_pRows, task.m_pCols));
    EXPECT_TRUE(Precedes(task.m_pCols, task.m_pDst));
    EXPECT_TRUE(Precedes(task.m_pDst, task.m_nLow8));
    EXPECT_TRUE(Precedes(task.m_nLow8, task.m_nHigh8));
    EXPECT_TRUE(Precedes(task.m_nHigh8, task.m_nLow16));
    EXPECT_TRUE(Precedes(task.m_nLow16, task.m_nHigh16));
    EXPECT_TRUE(Precedes(task.m_nHigh16, task.m_nMode));
    EXPECT_EQ(task.m_nLow8, 0);
    EXPECT_EQ(task.m_nHigh8, 255);
}

// Row results: 16-bit where samples are bytes and 32-bit where they are 16-bit.
template <class Samples> struct Value;
template <> struct Value<Samples8> {
    using Type = int16_t;
    static constexpr int kRowMode = 1, kColumnMode = 2;
};
template <> struct Value<Samples16> {
    using Type = int32_t;
    static constexpr int kRowMode = 3, kColumnMode = 4;
};

template <class Samples> void ExpectRowTaskFillsDenseRows() {
    using Type = typename Value<Samples>::Type;
    using Sample = typename Samples::Sample;
    for (unsigned width : {0u, 1u, 2u, 3u, 4u, 5u, 8u, 37u, 70u})
        for (unsigned height : {0u, 1u, 5u}) {
            const unsigned stride = width * sizeof(Sample) + 3;
            const size_t count = size_t{width / 2} * height;
            GuardedBuffer src(height == 0 ? 0 : stride * (height - 1) + width * sizeof(Sample));
            GuardedBuffer rows(count * sizeof(Type));
            tqtest::FillHostile(src.data(), src.size(), width);
            std::vector<Type> expected;
            tqref::Bytes image(src.data());
            for (unsigned y = 0; y < height; ++y) {
                std::vector<int> line(width);
                for (unsigned x = 0; x < width; ++x)
                    line[x] = Samples::Load(image, y * stride + x * sizeof(Sample));
                for (int value : tqref::LowBandRow(line))
                    expected.push_back(static_cast<Type>(value));
            }
            CZDWT53_LL task;
            task.m_nWidth = width;
            task.m_nHeight = height;
            task.m_nSrcStride = stride;
            task.m_pSrc = src.data();
            task.m_pRows = rows.data();
            task.m_nMode = Value<Samples>::kRowMode;
            EXPECT_EQ(task.Run(), 1);
            std::vector<Type> actual(count);
            if (count != 0) std::memcpy(actual.data(), rows.data(), rows.size());
            ASSERT_EQ(actual, expected) << width << " x " << height;
        }
}

TEST(WaveletLlTask, Modes1And3FillDenseRows) {
    AtEveryLevel([] {
        ExpectRowTaskFillsDenseRows<Samples8>();
        ExpectRowTaskFillsDenseRows<Samples16>();
    });
}

// Columns `first` to `first + width - 1` of dense rows of `columns` values.
template <class Samples>
void ExpectColumnTaskFillsItsStripe(unsigned columns, unsigned first, unsigned width,
                                    unsigned height) {
    using Type = typename Value<Samples>::Type;
    using Sample = typename Samples::Sample;
    constexpr int kBytes = static_cast<int>(sizeof(Sample));
    const int most = std::numeric_limits<Sample>::max(), low = most / 16, high = most / 16 * 14;
    std::vector<Type> values(size_t{columns} * height);
    const std::vector<uint8_t> noise = Noise(values.size() + 1, columns + height);
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<Type>((noise[i] * 12 - 510) * (most / 255));
    const std::vector<Type> before = values;
    const int64_t stride = columns * kBytes + 1;
    GuardedBuffer dst(stride * (height / 2) + 1);
    std::memset(dst.data(), 0xA5, dst.size());
    std::vector<uint8_t> expected(dst.data(), dst.data() + dst.size());
    tqref::Bytes model(expected.data());
    for (unsigned x = first; x < first + width; ++x) {
        std::vector<int> column(height);
        for (unsigned y = 0; y < height; ++y) column[y] = values[y * columns + x];
        const std::vector<int> out = tqref::LowBandColumn(column);
        for (size_t y = 0; y < out.size(); ++y)
            Samples::Store(model, y * stride + x * kBytes, tqref::Limited(out[y], low, high));
    }
    CZDWT53_LL task;
    task.m_nWidth = width;
    task.m_nHeight = height;
    task.m_nSrcStride = columns;
    task.m_pCols = values.data() + first;
    task.m_nDstStride = static_cast<unsigned>(stride);
    task.m_pDst = dst.data() + first * kBytes;
    // The limits of the other kind of sample play no part.
    if (kBytes == 1) {
        task.m_nLow8 = static_cast<unsigned char>(low);
        task.m_nHigh8 = static_cast<unsigned char>(high);
        task.m_nLow16 = task.m_nHigh16 = 7;
    } else {
        task.m_nLow8 = task.m_nHigh8 = 7;
        task.m_nLow16 = static_cast<unsigned short>(low);
        task.m_nHigh16 = static_cast<unsigned short>(high);
    }
    task.m_nMode = Value<Samples>::kColumnMode;
    EXPECT_EQ(task.Run(), 1);
    EXPECT_EQ(values, before);
    ASSERT_EQ(std::vector<uint8_t>(dst.data(), dst.data() + dst.size()), expected)
        << "columns " << first << " to " << first + width << " of " << columns << ", height "
        << height;
}

TEST(WaveletLlTask, Modes2And4FillTheirStripeOfColumns) {
    AtEveryLevel([] {
        for (unsigned height : {0u, 1u, 2u, 3u, 4u, 5u, 8u, 21u})
            for (auto [columns, first, width] : {std::tuple{1u, 0u, 1u},
                                                 {9u, 2u, 5u},
                                                 {35u, 0u, 35u},
                                                 {70u, 3u, 33u},
                                                 {70u, 37u, 33u},
                                                 {12u, 4u, 0u}}) {
                ExpectColumnTaskFillsItsStripe<Samples8>(columns, first, width, height);
                ExpectColumnTaskFillsItsStripe<Samples16>(columns, first, width, height);
            }
    });
}

TEST(WaveletLlTask, OtherModesDoNothing) {
    std::vector<uint8_t> src(64, 50), dst(64, 60);
    std::vector<int> rows(64, 70);
    for (int mode : {0, 5, -1, 100, std::numeric_limits<int>::min()}) {
        CZDWT53_LL task;
        task.m_nWidth = task.m_nHeight = 4;
        task.m_nSrcStride = task.m_nDstStride = 4;
        task.m_pSrc = src.data();
        task.m_pRows = rows.data();
        task.m_pCols = rows.data();
        task.m_pDst = dst.data();
        task.m_nMode = mode;
        task.Run();
        EXPECT_EQ(src, std::vector<uint8_t>(64, 50)) << mode;
        EXPECT_EQ(dst, std::vector<uint8_t>(64, 60)) << mode;
        EXPECT_EQ(rows, std::vector<int>(64, 70)) << mode;
    }
}

}  // namespace
