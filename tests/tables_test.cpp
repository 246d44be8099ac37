#include "frame/tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numeric>

#include "frame/module.h"
#include "reference/tables_reference.h"

namespace {

const auto HueMid = &IPL_TabHueMid[kTableCentre];
const auto HueWrap = &IPL_TabHueWrap[kTableCentre];
const auto SoftWeight = &IPL_TabSoftWeight[kTableCentre];

TEST(Tables, AreFilledAtLoad) {
    ASSERT_GE(g_IPLProcessorCount, 1u);
    ASSERT_NE(IPL_TabValueQ, nullptr);
    ASSERT_NE(IPL_TabValueT, nullptr);
}

TEST(Tables, MatricesAreAsGiven) {
    EXPECT_EQ(IPL_MatrixYUV709x601[0][2], 804);
    EXPECT_EQ(IPL_MatrixYUV709x601[1][0], 4);
    EXPECT_EQ(IPL_MatrixYUV601x709[0][1], -484);
    EXPECT_EQ(IPL_MatrixYUV601x709[2][2], 4198);
    EXPECT_EQ(IPL_MatrixYUV2020x709[2][1], -46);
    EXPECT_EQ(IPL_MatrixYUV709x2020[0][2], 0);
    EXPECT_EQ(IPL_MatrixYUV709x2020[1][2], 0);
    EXPECT_EQ(IPL_MatrixYUV709x2020[2][2], 4096);
}

TEST(Tables, HuesOfEqualChannelsAreTheSectorsOwn) {
    for (int x = 1; x < 256; ++x) {
        EXPECT_EQ(HueMid[0][x], 85);
        EXPECT_EQ(HueWrap[0][x], 0);
    }
}

TEST(Tables, HueWrapTakesNegativeDifferencesRoundTheCircle) {
    EXPECT_EQ(HueWrap[-1][255], 255);
    // -43520 + 261120 = 217600; + 512; >> 10 is 213.
    EXPECT_EQ(HueWrap[-255][255], 213);
    EXPECT_EQ(HueWrap[255][255], 43);
    // -43520 + 512 = -43008, which is -42 * 1024.
    EXPECT_EQ(HueMid[-255][255], 43);
    EXPECT_EQ(HueMid[255][255], 128);
}

TEST(Tables, ColumnAndRowZeroStayZero) {
    for (int d = -255; d <= 255; ++d) {
        EXPECT_EQ(HueMid[d][0], 0);
        EXPECT_EQ(HueWrap[d][0], 0);
    }
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(IPL_TabSaturation[0][i], 0);
        EXPECT_EQ(IPL_TabSaturation[i][0], 0);
    }
}

TEST(Tables, Saturation) {
    EXPECT_EQ(IPL_TabSaturation[255][255], 255);
    EXPECT_EQ(IPL_TabSaturation[1][255], 1);
    EXPECT_EQ(IPL_TabSaturation[1][2], 128);  // 130560 + 512 = 131072
}

TEST(Tables, ValueP) {
    EXPECT_EQ(IPL_TabValueP[255][0], 255);
    EXPECT_EQ(IPL_TabValueP[255][255], 0);
    EXPECT_EQ(IPL_TabValueP[0][128], 0);
}

TEST(Tables, ValueFactors) {
    for (int h = 0; h < 256; ++h) {
        EXPECT_EQ(IPL_TabValueQ[0][h], 1024);
        EXPECT_EQ(IPL_TabValueT[0][h], 1024);
    }
    EXPECT_EQ(IPL_TabValueQ[255][255], 0);
    EXPECT_EQ(IPL_TabValueT[255][255], 1024);
    EXPECT_EQ(IPL_TabValueQ[255][0], 1024);
    EXPECT_EQ(IPL_TabValueT[255][0], 0);
    EXPECT_EQ(IPL_TabValueQ[255][85], 1024);  // 85 / 42.5 is 2: the sector's start
}

TEST(Tables, SoftWeights) {
    EXPECT_EQ(SoftWeight[0], 1.0f);
    EXPECT_EQ(SoftWeight[100], 0.5f);
    EXPECT_EQ(SoftWeight[-100], 0.5f);
    EXPECT_EQ(SoftWeight[255], static_cast<float>(1.0 / 3.55));
}

TEST(Tables, FiveTapsSumToOne) {
    for (const auto& row : IPL_TabFiveTap)
        EXPECT_EQ(std::accumulate(std::begin(row), std::end(row), 0), 1024);
    // Hardly moved: nearly all weight on the middle tap. Hardly before the next sample: on tap 3.
    EXPECT_EQ(std::max_element(IPL_TabFiveTap[0], IPL_TabFiveTap[0] + 5) - IPL_TabFiveTap[0], 2);
    EXPECT_EQ(std::max_element(IPL_TabFiveTap[255], IPL_TabFiveTap[255] + 5) - IPL_TabFiveTap[255],
              3);
}

// Every entry again, in double precision: single precision may move a truncated entry by one.
TEST(Tables, EveryEntryIsNearItsExactValue) {
    for (int d = -255; d <= 255; ++d)
        for (int x = 1; x < 256; ++x) {
            const double hue = d * 42.5 / x;
            ASSERT_LE(std::abs(HueMid[d][x] - std::floor(hue + 85.5)), 1.0) << d << " " << x;
            const double wrapped = d < 0 ? hue + 255 : hue;
            ASSERT_LE(std::abs(HueWrap[d][x] - std::floor(wrapped + 0.5)), 1.0) << d << " " << x;
        }
    for (int a = 1; a < 256; ++a)
        for (int b = 0; b < 256; ++b) {
            if (b > 0) {
                ASSERT_LE(std::abs(IPL_TabSaturation[a][b] - std::floor(a * 255.0 / b + 0.5)), 1.0);
            }
            ASSERT_LE(std::abs(IPL_TabValueP[a][b] - std::floor((1 - b / 255.0) * a + 0.5)), 1.0);
            const double sector = b / 42.5;
            const double f = b == 255 ? 1.0 : sector - std::floor(sector), s = a / 255.0;
            ASSERT_LE(std::abs(IPL_TabValueQ[a][b] - std::floor((1 - s * f) * 1024 + 0.5)), 1.0);
            ASSERT_LE(std::abs(IPL_TabValueT[a][b] - std::floor((1 - (1 - f) * s) * 1024 + 0.5)),
                      1.0);
        }
}

// Every entry again, by the same steps.
TEST(Tables, EveryEntryEqualsTheReference) {
    for (int d = -255; d <= 255; ++d) {
        for (int x = 0; x < 256; ++x) {
            ASSERT_EQ(HueMid[d][x], tqref::HueMidEntry(d, x)) << d << " " << x;
            ASSERT_EQ(HueWrap[d][x], tqref::HueWrapEntry(d, x)) << d << " " << x;
        }
        ASSERT_EQ(std::bit_cast<uint32_t>(SoftWeight[d]),
                  std::bit_cast<uint32_t>(tqref::SoftWeightEntry(d)))
            << d;
    }
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b) {
            ASSERT_EQ(IPL_TabSaturation[a][b], tqref::SaturationEntry(a, b)) << a << " " << b;
            ASSERT_EQ(IPL_TabValueP[a][b], tqref::ValuePEntry(a, b)) << a << " " << b;
            ASSERT_EQ(IPL_TabValueQ[a][b], tqref::ValueQEntry(a, b)) << a << " " << b;
            ASSERT_EQ(IPL_TabValueT[a][b], tqref::ValueTEntry(a, b)) << a << " " << b;
        }
    for (int r = 0; r < 256; ++r) {
        int taps[5];
        tqref::FiveTapRow(r, taps);
        for (int i = 0; i < 5; ++i) ASSERT_EQ(IPL_TabFiveTap[r][i], taps[i]) << r << " " << i;
    }
}

TEST(Tables, EveryMatrixEqualsTheReference) {
    EXPECT_EQ(std::memcmp(IPL_MatrixYUV709x601, tqref::k709x601, sizeof tqref::k709x601), 0);
    EXPECT_EQ(std::memcmp(IPL_MatrixYUV601x709, tqref::k601x709, sizeof tqref::k601x709), 0);
    EXPECT_EQ(std::memcmp(IPL_MatrixYUV2020x709, tqref::k2020x709, sizeof tqref::k2020x709), 0);
    EXPECT_EQ(std::memcmp(IPL_MatrixYUV709x2020, tqref::k709x2020, sizeof tqref::k709x2020), 0);
}

}  // namespace
