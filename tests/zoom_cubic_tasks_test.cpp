// The tasks of the cubic zooms: their fields, bands run by hand against the reference, tables of
// any shape, channel modes that there are not.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

#include "reference/zoom_cubic_reference.h"
#include "support/guarded_buffer.h"
#include "support/settings.h"
#include "support/zoom_check.h"
#include "zoom/zoom_tasks.h"

namespace {

using tqref::TapRecord;
using tqtest::Content;
using tqtest::GuardedBuffer;
using tqtest::GuardedImage;
using tqtest::ImageLayout;
using tqtest::ZoomSizes;

// ---- Fields -------------------------------------------------------------------------------------

class FieldOrder {
public:
    template <class Field> FieldOrder& operator<<(const Field& field) {
        const uintptr_t address = reinterpret_cast<uintptr_t>(&field);
        EXPECT_LT(m_last, address) << "field " << m_count;
        m_last = address;
        ++m_count;
        return *this;
    }

private:
    uintptr_t m_last = 0;
    int m_count = 0;
};

TEST(CubicTasks, TheRowTaskHasItsFieldsInOrder) {
    using Task = CZCubicXTask;
    static_assert(std::is_base_of_v<CTQIPLTaskBase, Task>);
    static_assert(std::is_same_v<decltype(Task::m_pSrc), unsigned char*> &&
                  std::is_same_v<decltype(Task::m_pIntermediate), int*> &&
                  std::is_same_v<decltype(Task::m_pDst), unsigned char*> &&
                  std::is_convertible_v<int*, decltype(Task::m_pWeights)>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcWidth), int> &&
                  std::is_same_v<decltype(Task::m_nSrcStride), int> &&
                  std::is_same_v<decltype(Task::m_nDstWidth), int> &&
                  std::is_same_v<decltype(Task::m_nDstStride), int> &&
                  std::is_same_v<decltype(Task::m_nRowBegin), int> &&
                  std::is_same_v<decltype(Task::m_nRowEnd), int>);
    static_assert(sizeof(Task::m_nChannelMode) == 4 && sizeof(Task::m_bToIntermediate) == 4);
    Task task;
    FieldOrder() << task.m_nSrcWidth << task.m_nSrcStride << task.m_pSrc << task.m_nDstWidth
                 << task.m_nDstStride << task.m_pIntermediate << task.m_pDst << task.m_nRowBegin
                 << task.m_nRowEnd << task.m_pWeights << task.m_nChannelMode
                 << task.m_bToIntermediate;
}

TEST(CubicTasks, TheColumnTaskHasItsFieldsInOrder) {
    using Task = CZCubicYTask;
    static_assert(std::is_base_of_v<CTQIPLTaskBase, Task>);
    static_assert(std::is_same_v<decltype(Task::m_pSrc), unsigned char*> &&
                  std::is_same_v<decltype(Task::m_pIntermediate), int*> &&
                  std::is_same_v<decltype(Task::m_pDst), unsigned char*> &&
                  std::is_convertible_v<int*, decltype(Task::m_pWeights)>);
    static_assert(std::is_same_v<decltype(Task::m_nSrcHeight), int> &&
                  std::is_same_v<decltype(Task::m_nSrcStride), int> &&
                  std::is_same_v<decltype(Task::m_nDstHeight), int> &&
                  std::is_same_v<decltype(Task::m_nDstStride), int> &&
                  std::is_same_v<decltype(Task::m_nColBegin), int> &&
                  std::is_same_v<decltype(Task::m_nColEnd), int>);
    static_assert(sizeof(Task::m_nChannelMode) == 4 && sizeof(Task::m_bFromIntermediate) == 4);
    Task task;
    FieldOrder() << task.m_nSrcHeight << task.m_nSrcStride << task.m_pIntermediate << task.m_pSrc
                 << task.m_bFromIntermediate << task.m_nDstHeight << task.m_nDstStride
                 << task.m_pDst << task.m_nColBegin << task.m_nColEnd << task.m_pWeights
                 << task.m_nChannelMode;
}

// ---- Stage --------------------------------------------------------------------------------------

class Random {
public:
    explicit Random(uint32_t seed) : m_state(seed * 2654435761u + 12345) {}
    uint32_t Next() {
        m_state = m_state * 1664525u + 1013904223u;
        return m_state >> 8;
    }
    int Between(int least, int greatest) {
        return least + static_cast<int>(Next() % static_cast<uint32_t>(greatest - least + 1));
    }

private:
    uint32_t m_state;
};

// A packed table with a guard page right behind its last weight.
class GuardedTable {
public:
    explicit GuardedTable(const std::vector<TapRecord>& records)
        : m_packed(tqref::PackTapRecords(records)), m_buffer(m_packed.size() * sizeof(int)) {
        std::memcpy(m_buffer.data(), m_packed.data(), m_buffer.size());
    }
    int* First() { return reinterpret_cast<int*>(m_buffer.data()); }

private:
    std::vector<int> m_packed;
    GuardedBuffer m_buffer;
};

// 32-bit sums in guarded memory; padding in values.
class GuardedSums {
public:
    GuardedSums(int rowLength, int rows, int padding, bool bottomUp)
        : m_image(rowLength * 4, rows, {GuardedBuffer::kEnd, padding * 4, bottomUp, 0}) {}
    int Stride() const { return m_image.Stride() / 4; }
    int* First() { return reinterpret_cast<int*>(m_image.First()); }
    GuardedImage& Image() { return m_image; }

private:
    GuardedImage m_image;
};

// In the image's copy, where the first row begins.
int* FirstIn(std::vector<uint8_t>& copy, GuardedSums& sums) {
    return reinterpret_cast<int*>(copy.data() + sums.Image().FirstOffset());
}

int ChannelMode(int channels) { return channels == 4 ? 1 : 0; }

// A row task's run on rows begin to end - 1, of bytes or of sums, with all of the destination.
void ExpectRowTask(int channels, bool toSums, int srcWidth, int srcHeight,
                   const std::vector<TapRecord>& records, int begin, int end, uint32_t seed) {
    const int dstWidth = static_cast<int>(records.size());
    const bool bottomUp = seed % 3 == 1;
    const ImageLayout srcLayout{GuardedBuffer::kEnd, static_cast<int>(seed % 4), seed % 5 == 2, 0};
    GuardedImage src(srcWidth * channels, srcHeight, srcLayout);
    tqtest::Fill(src.Memory(), src.Size(), Content::kNoise, seed);
    GuardedImage bytes(dstWidth * channels, srcHeight, {GuardedBuffer::kEnd, 3, bottomUp, 0});
    GuardedSums sums(dstWidth * channels, srcHeight, 2, bottomUp);
    GuardedImage& dst = toSums ? sums.Image() : bytes;
    tqtest::Fill(dst.Memory(), dst.Size(), Content::kNoise, seed + 1);
    std::vector<uint8_t> expected = dst.Copy();
    const tqref::ZoomSource source{srcWidth, srcHeight, src.Stride(), src.First()};
    if (toSums)
        tqref::TapsAlongRowsUnrounded(channels, source, {sums.Stride(), FirstIn(expected, sums)},
                                      records, begin, end);
    else
        tqref::TapsAlongRows(
            channels, source,
            {dstWidth, srcHeight, dst.Stride(), expected.data() + dst.FirstOffset()}, records,
            begin, end);
    GuardedTable table(records);
    CZCubicXTask task;
    task.m_nSrcWidth = -7;
    task.m_nSrcStride = src.Stride();
    task.m_pSrc = src.First();
    task.m_nDstWidth = dstWidth;
    task.m_nDstStride = toSums ? sums.Stride() : dst.Stride();
    task.m_pIntermediate = toSums ? sums.First() : nullptr;
    task.m_pDst = toSums ? nullptr : dst.First();
    task.m_nRowBegin = begin;
    task.m_nRowEnd = end;
    task.m_pWeights = table.First();
    task.m_nChannelMode = ChannelMode(channels);
    task.m_bToIntermediate = toSums ? 1 : 0;
    CTQIPLTaskBase& base = task;
    ASSERT_EQ(base.Run(), 1);
    ASSERT_EQ(dst.Copy(), expected)
        << channels << " channels to " << (toSums ? "sums" : "bytes") << ", " << srcWidth << " to "
        << dstWidth << " columns, rows " << begin << " to " << end << " of " << srcHeight
        << ", level " << tq::IsaLevelName(tq::CurrentIsaLevel());
}

// A column task's run on columns begin to end - 1, of bytes or of sums to 2047 * 255.
void ExpectColumnTask(int channels, bool fromSums, int width, int srcHeight,
                      const std::vector<TapRecord>& records, int begin, int end, uint32_t seed) {
    const int dstHeight = static_cast<int>(records.size());
    const bool bottomUp = seed % 3 == 1;
    GuardedImage bytes(width * channels, srcHeight,
                       {GuardedBuffer::kEnd, static_cast<int>(seed % 4), bottomUp, 0});
    tqtest::Fill(bytes.Memory(), bytes.Size(), Content::kNoise, seed);
    GuardedSums sums(width * channels, srcHeight, static_cast<int>(seed % 4), bottomUp);
    Random random(seed);
    std::vector<int> values(sums.Image().Size() / 4);
    for (int& value : values) value = random.Between(-521985, 521985);
    std::memcpy(sums.Image().Memory(), values.data(), sums.Image().Size());
    GuardedImage dst(width * channels, dstHeight, {GuardedBuffer::kEnd, 3, seed % 5 == 2, 0});
    tqtest::Fill(dst.Memory(), dst.Size(), Content::kNoise, seed + 1);
    std::vector<uint8_t> expected = dst.Copy();
    const tqref::ZoomTarget target{width, dstHeight, dst.Stride(),
                                   expected.data() + dst.FirstOffset()};
    if (fromSums)
        tqref::TapsAlongColumnsOfSums(channels, {sums.Stride(), sums.First()}, target, records,
                                      begin, end);
    else
        tqref::TapsAlongColumns(channels, {width, srcHeight, bytes.Stride(), bytes.First()}, target,
                                records, begin, end);
    GuardedTable table(records);
    CZCubicYTask task;
    task.m_nSrcHeight = srcHeight;
    task.m_nSrcStride = fromSums ? sums.Stride() : bytes.Stride();
    task.m_pIntermediate = fromSums ? sums.First() : nullptr;
    task.m_pSrc = fromSums ? nullptr : bytes.First();
    task.m_bFromIntermediate = fromSums ? 1 : 0;
    task.m_nDstHeight = dstHeight;
    task.m_nDstStride = dst.Stride();
    task.m_pDst = dst.First();
    task.m_nColBegin = begin;
    task.m_nColEnd = end;
    task.m_pWeights = table.First();
    task.m_nChannelMode = ChannelMode(channels);
    CTQIPLTaskBase& base = task;
    ASSERT_EQ(base.Run(), 1);
    ASSERT_EQ(dst.Copy(), expected)
        << channels << " channels from " << (fromSums ? "sums" : "bytes") << ", " << srcHeight
        << " to " << dstHeight << " rows, columns " << begin << " to " << end << " of " << width
        << ", level " << tq::IsaLevelName(tq::CurrentIsaLevel());
}

template <class Body> void AtEveryLevelAndInBothModes(Body body) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (int channels : {1, 4})
            for (bool sums : {false, true}) {
                body(channels, sums);
                if (testing::Test::HasFatalFailure()) return;
            }
    }
}

// ---- Bands --------------------------------------------------------------------------------------

TEST(CubicTasks, TheRowTaskWritesItsRowsAndReturns1) {
    AtEveryLevelAndInBothModes([](int channels, bool toSums) {
        uint32_t seed = 0;
        for (auto [srcWidth, dstWidth] : {std::pair{9, 21}, {21, 9}, {1, 3}, {5, 5}, {40, 70}})
            for (int begin = 0; begin <= 5; ++begin)
                for (int end = begin; end <= 5; ++end)
                    for (tqref::TapRecords make : {tqref::CubicRecords, tqref::SixTapRecords})
                        ASSERT_NO_FATAL_FAILURE(ExpectRowTask(channels, toSums, srcWidth, 5,
                                                              make(srcWidth, dstWidth), begin, end,
                                                              ++seed));
    });
}

TEST(CubicTasks, TheColumnTaskWritesItsColumnsAndReturns1) {
    AtEveryLevelAndInBothModes([](int channels, bool fromSums) {
        uint32_t seed = 0;
        for (auto [srcHeight, dstHeight] : {std::pair{5, 12}, {12, 5}, {1, 3}, {4, 4}})
            for (int begin : {0, 1, 2, 5, 16, 36, 37})
                for (int end : {0, 1, 3, 8, 17, 36, 37})
                    for (tqref::TapRecords make : {tqref::CubicRecords, tqref::SixTapRecords})
                        ASSERT_NO_FATAL_FAILURE(ExpectColumnTask(channels, fromSums, 37, srcHeight,
                                                                 make(srcHeight, dstHeight), begin,
                                                                 end, ++seed));
    });
}

// 100 * 1145 - 158 * 10 + 36 * 3 and so on: 1024ths, nothing added, nothing held in a range.
TEST(CubicTasks, TheRowTaskKeepsExactSumsForASecondPass) {
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        int weights[] = {0, 2, 1145, -158, 36, 2, 3, -164, 1188, 1, 1, -1};
        uint8_t src[] = {100, 10, 3, 255};
        int sums[] = {-1, -1, -1, -1};
        CZCubicXTask task;
        task.m_nSrcStride = 4;
        task.m_pSrc = src;
        task.m_nDstWidth = 3;
        task.m_nDstStride = 3;
        task.m_pIntermediate = sums;
        task.m_nRowEnd = 1;
        task.m_pWeights = weights;
        task.m_bToIntermediate = 1;
        EXPECT_EQ(task.Run(), 1);
        EXPECT_EQ(sums[0], 113028);
        EXPECT_EQ(sums[1], 302448);
        EXPECT_EQ(sums[2], -10);
        EXPECT_EQ(sums[3], -1);
    }
}

// The halfway values between two bytes, and those next to them; by a weight of 1024.
TEST(CubicTasks, TheColumnTaskRoundsSumsFrom1048576ths) {
    const int cases[12] = {511,  512,    1535,   1536,   -1,     -512,
                           -513, 260607, 260608, 262143, 521985, -521985};
    const int rounded[12] = {0, 1, 1, 2, 0, 0, 0, 254, 255, 255, 255, 0};
    std::vector<int> sums, expected;
    for (int i = 0; i < 60; ++i) {
        sums.push_back(cases[i % 12]);
        expected.push_back(rounded[i % 12]);
    }
    int weights[] = {0, 0, 1024};
    tqtest::Settings settings;
    for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) {
        settings.Use(level);
        for (int channels : {1, 4}) {
            std::vector<uint8_t> dst(60);
            CZCubicYTask task;
            task.m_nSrcHeight = 1;
            task.m_nSrcStride = 60;
            task.m_pIntermediate = sums.data();
            task.m_bFromIntermediate = 1;
            task.m_nDstHeight = 1;
            task.m_nDstStride = 60;
            task.m_pDst = dst.data();
            task.m_nColEnd = 60 / channels;
            task.m_pWeights = weights;
            task.m_nChannelMode = ChannelMode(channels);
            EXPECT_EQ(task.Run(), 1);
            EXPECT_EQ(std::vector<int>(dst.begin(), dst.end()), expected);
        }
    }
}

// ---- Tables of any shape ------------------------------------------------------------------------

// Records that go back and forth over the source, of no taps to six. A record's weights are 2047
// together at most.
std::vector<TapRecord> RecordsAtRandom(Random& random, int srcLength, int count) {
    std::vector<TapRecord> records;
    for (int i = 0; i < count; ++i) {
        TapRecord record{random.Between(0, srcLength - 1), 0, {}};
        record.last = std::min(srcLength - 1, record.first + random.Between(-1, 5));
        int left = 2047;
        for (int k = record.first; k <= record.last; ++k) {
            record.weights.push_back(random.Between(-left, left));
            left -= std::abs(record.weights.back());
        }
        records.push_back(record);
    }
    return records;
}

// Weights and sums beyond those that the zooms' own tables make.
TEST(CubicTasks, AnyTableIsReadRecordByRecord) {
    AtEveryLevelAndInBothModes([](int channels, bool sums) {
        Random random(7);
        for (uint32_t trial = 0; trial < 60; ++trial) {
            const int length = random.Between(1, 20), count = random.Between(1, 40);
            const std::vector<TapRecord> records = RecordsAtRandom(random, length, count);
            ASSERT_NO_FATAL_FAILURE(ExpectRowTask(channels, sums, length, 3, records, 0, 3, trial));
            ASSERT_NO_FATAL_FAILURE(
                ExpectColumnTask(channels, sums, 21, length, records, 1, 20, trial));
        }
    });
}

TEST(CubicTasks, ARecordWithoutWeightsGivesZero) {
    AtEveryLevelAndInBothModes([](int channels, bool sums) {
        const std::vector<TapRecord> records = {
            {0, -1, {}}, {3, 3, {1024}}, {9, 2, {}}, {0, 1, {512, 512}}, {1000000, -1000000, {}}};
        ASSERT_NO_FATAL_FAILURE(ExpectRowTask(channels, sums, 4, 2, records, 0, 2, 1));
        ASSERT_NO_FATAL_FAILURE(ExpectColumnTask(channels, sums, 40, 4, records, 0, 40, 1));
    });
}

// ---- What there is not --------------------------------------------------------------------------

TEST(CubicTasks, OtherChannelModesDoNothingAndReturn1) {
    tqtest::Forbidden forbidden;
    uint8_t* bytes = forbidden.Pointer();
    int* integers = reinterpret_cast<int*>(bytes);
    for (int mode : {2, 3, 4, -1, 256, std::numeric_limits<int>::min()})
        for (int sums : {0, 1}) {
            CZCubicXTask rows;
            rows.m_nSrcWidth = rows.m_nSrcStride = rows.m_nDstWidth = rows.m_nDstStride = 8;
            rows.m_pSrc = rows.m_pDst = bytes;
            rows.m_pIntermediate = integers;
            rows.m_nRowEnd = 8;
            rows.m_pWeights = integers;
            rows.m_nChannelMode = mode;
            rows.m_bToIntermediate = sums;
            EXPECT_EQ(rows.Run(), 1);
            CZCubicYTask columns;
            columns.m_nSrcHeight = columns.m_nDstHeight = columns.m_nColEnd = 8;
            columns.m_nSrcStride = columns.m_nDstStride = 8;
            columns.m_pIntermediate = integers;
            columns.m_pSrc = columns.m_pDst = bytes;
            columns.m_bFromIntermediate = sums;
            columns.m_pWeights = integers;
            columns.m_nChannelMode = mode;
            EXPECT_EQ(columns.Run(), 1);
        }
}

TEST(CubicTasks, EmptyBandsWriteNothing) {
    AtEveryLevelAndInBothModes([](int channels, bool sums) {
        const std::vector<TapRecord> records = tqref::CubicRecords(4, 9);
        for (auto [begin, end] : {std::pair{0, 0}, {2, 1}, {4, 0}, {4, 4}}) {
            ASSERT_NO_FATAL_FAILURE(ExpectRowTask(channels, sums, 4, 4, records, begin, end, 3));
            ASSERT_NO_FATAL_FAILURE(ExpectColumnTask(channels, sums, 9, 4, records, begin, end, 3));
        }
    });
}

}  // namespace
