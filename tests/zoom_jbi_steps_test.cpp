// JBI zoom at single values: the exponential and its tables, the variance of a window.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>

#include "frame/tables.h"
#include "reference/zoom_jbi_reference.h"
#include "support/guarded_buffer.h"
#include "support/settings.h"
#include "zoom/jbi.h"

namespace {

using tqtest::GuardedBuffer;

bool SameBits(float a, float b) { return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b); }

// ---- The exponential ----------------------------------------------------------------------------

TEST(JbiExponential, TablesBeginAndEndAsTheyShould) {
    EXPECT_EQ(IPL_ExpFine[0], 0.9999961853f);
    EXPECT_EQ(IPL_ExpFine[2047], 0.98450017f);
    EXPECT_EQ(IPL_ExpCoarse[0], 1.0f);
    EXPECT_EQ(IPL_ExpCoarse[1], 0.98449641f);
    EXPECT_EQ(IPL_ExpCoarse[4096], 1.6038109e-28f);
    static_assert(std::size(IPL_ExpFine) == 2048 && std::size(IPL_ExpCoarse) == 4097);
}

TEST(JbiExponential, EveryEntryIsTheExactValueRoundedOnce) {
    for (int j = 0; j < 2048; ++j)
        ASSERT_TRUE(SameBits(IPL_ExpFine[j], tqref::ExpFineEntry(j))) << j;
    for (int k = 0; k < 4097; ++k)
        ASSERT_TRUE(SameBits(IPL_ExpCoarse[k], tqref::ExpCoarseEntry(k))) << k;
}

TEST(JbiExponential, ZeroGivesTheFirstEntryAndNotOne) {
    EXPECT_EQ(tq::FastExponential(0.0f), 0.99999618f);
    EXPECT_EQ(tq::FastExponential(-0.0f), 0.99999618f);
    EXPECT_EQ(tq::FastExponential(-std::numeric_limits<float>::denorm_min()), 0.99999618f);
}

// 1/131072 is a step of the fine table and 1/64 one of the coarse table.
TEST(JbiExponential, EntriesChangeAtTheirSteps) {
    EXPECT_EQ(tq::FastExponential(std::nextafter(-1.0f / 131072, 0.0f)), IPL_ExpFine[0]);
    EXPECT_EQ(tq::FastExponential(-1.0f / 131072), IPL_ExpFine[1]);
    EXPECT_EQ(tq::FastExponential(std::nextafter(-1.0f / 64, 0.0f)), IPL_ExpFine[2047]);
    EXPECT_EQ(tq::FastExponential(-1.0f / 64), IPL_ExpFine[0] * IPL_ExpCoarse[1]);
    EXPECT_EQ(tq::FastExponential(-1.0f), IPL_ExpFine[0] * IPL_ExpCoarse[64]);
}

// 4097 / 64 is the first that the tables do not have.
TEST(JbiExponential, TheRuntimeTakesOverBehindTheTables) {
    const float last = std::nextafter(-64.015625f, 0.0f);
    EXPECT_EQ(tq::FastExponential(last), IPL_ExpFine[2047] * IPL_ExpCoarse[4096]);
    EXPECT_EQ(tq::FastExponential(-64.015625f), static_cast<float>(std::exp(-64.015625)));
    EXPECT_NE(tq::FastExponential(-64.015625f), IPL_ExpFine[0] * IPL_ExpCoarse[4096]);
}

TEST(JbiExponential, DenormalResultsAreKept) {
    EXPECT_EQ(tq::FastExponential(-100.0f), static_cast<float>(std::exp(-100.0)));
    EXPECT_GT(tq::FastExponential(-100.0f), 0.0f);
    EXPECT_LT(tq::FastExponential(-100.0f), std::numeric_limits<float>::min());
}

TEST(JbiExponential, GreatArgumentsVanishAndNaNStays) {
    for (float e : {-104.0f, -16383.999f, -16384.0f, -16385.0f, -1e9f, -1e30f,
                    -std::numeric_limits<float>::max(), -std::numeric_limits<float>::infinity()})
        EXPECT_TRUE(SameBits(tq::FastExponential(e), 0.0f)) << e;
    EXPECT_TRUE(std::isnan(tq::FastExponential(std::numeric_limits<float>::quiet_NaN())));
}

void ExpectExponentials(uint32_t firstBits, uint32_t lastBits, uint32_t step) {
    for (uint32_t bits = firstBits; bits <= lastBits; bits += step) {
        const float e = std::bit_cast<float>(bits);
        const float actual = tq::FastExponential(e), expected = tqref::JbiExponential(e);
        ASSERT_TRUE(SameBits(actual, expected)) << e << ": " << actual << ", not " << expected;
    }
}

uint32_t BitsOf(float e) { return std::bit_cast<uint32_t>(e); }

TEST(JbiExponential, AnyArgumentEqualsTheReference) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        SCOPED_TRACE(tq::IsaLevelName(level));
        settings.Use(level);
        // From -0 through the denormals, all of the tables, and to the greatest.
        ASSERT_NO_FATAL_FAILURE(ExpectExponentials(BitsOf(-0.0f), BitsOf(-0.0f) + 2000, 1));
        ASSERT_NO_FATAL_FAILURE(ExpectExponentials(BitsOf(-0.0f), BitsOf(-65.0f), 3001));
        ASSERT_NO_FATAL_FAILURE(ExpectExponentials(BitsOf(-1e-6f), BitsOf(-65.0f), 997));
        ASSERT_NO_FATAL_FAILURE(
            ExpectExponentials(BitsOf(-64.0f), BitsOf(-std::numeric_limits<float>::max()), 20011));
        ASSERT_NO_FATAL_FAILURE(ExpectExponentials(BitsOf(-16383.9f), BitsOf(-16384.1f), 1));
        for (int n = 0; n <= 8400000; n += n < 5000 ? 1 : 509) {
            const float e = static_cast<float>(-n / 131072.0);
            ASSERT_TRUE(SameBits(tq::FastExponential(e), tqref::JbiExponential(e))) << e;
        }
    }
}

// Every argument from the end of the tables to where nothing is left.
TEST(JbiExponential, EveryArgumentBehindTheTablesEqualsTheReference) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        SCOPED_TRACE(tq::IsaLevelName(level));
        settings.Use(level);
        ASSERT_NO_FATAL_FAILURE(ExpectExponentials(BitsOf(-63.9f), BitsOf(-104.5f), 1));
    }
}

// ---- The variance of a window -------------------------------------------------------------------

// Five rows of five bytes, each right before a page that faults.
class Window {
public:
    uint8_t& operator()(int row, int column) { return m_rows[row].data()[column]; }
    float Sigma() {
        int sum = 0;
        for (GuardedBuffer& row : m_rows)
            for (int c = 0; c < 5; ++c) sum += row.data()[c];
        float out[3] = {-7.0f, -7.0f, -7.0f};
        tq::IPL_JBISigma(m_rows[0].data(), m_rows[1].data(), m_rows[2].data(), m_rows[3].data(),
                         m_rows[4].data(), out + 1, sum);
        EXPECT_EQ(out[0], -7.0f);
        EXPECT_EQ(out[2], -7.0f);
        return out[1];
    }
    float Reference() {
        uint8_t packed[25];
        for (int i = 0; i < 25; ++i) packed[i] = (*this)(i / 5, i % 5);
        return tqref::JbiSigma({5, 5, 5, packed}, 0, 0);
    }

private:
    GuardedBuffer m_rows[5] = {GuardedBuffer(5), GuardedBuffer(5), GuardedBuffer(5),
                               GuardedBuffer(5), GuardedBuffer(5)};
};

TEST(JbiSigma, IsZeroWhereTheWindowIsFlat) {
    Window window;
    for (int value = 0; value < 256; ++value) {
        for (int i = 0; i < 25; ++i) window(i / 5, i % 5) = static_cast<uint8_t>(value);
        ASSERT_TRUE(SameBits(window.Sigma(), 0.0f)) << value;
    }
}

TEST(JbiSigma, IsHalfTheVariance) {
    Window window;
    window(3, 1) = 255;  // mean 10.2; 24 * 10.2^2 + 244.8^2 = 62424
    EXPECT_NEAR(window.Sigma(), 62424 / 50.0, 1e-3);
    for (int i = 0; i < 25; ++i) window(i / 5, i % 5) = static_cast<uint8_t>(100 + i % 2);
    EXPECT_NEAR(window.Sigma(), (13 * 0.48 * 0.48 + 12 * 0.52 * 0.52) / 50, 1e-6);
}

TEST(JbiSigma, ManyWindowsEqualTheReference) {
    Window window;
    uint32_t state = 5;
    for (int i = 0; i < 40000; ++i) {
        for (int k = 0; k < 25; ++k) {
            state = state * 1664525u + 1013904223u;
            int byte = static_cast<int>(state >> 24);
            if (i % 4 == 1) byte = byte < 128 ? 0 : 255;
            if (i % 4 == 2) byte = 200 + byte % 3;
            if (i % 4 == 3 && k > 0) byte = window(0, 0);
            window(k / 5, k % 5) = static_cast<uint8_t>(byte);
        }
        if (i % 4 == 3) ++window(i / 4 % 5, i / 20 % 5);
        const float actual = window.Sigma(), expected = window.Reference();
        ASSERT_TRUE(SameBits(actual, expected)) << actual << ", not " << expected;
    }
}

}  // namespace
