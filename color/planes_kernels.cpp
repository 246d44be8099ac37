// Row kernels of splitting images into planes and building them again. Compiled once per
// instruction-set level, with TQ_ISA naming the level's namespace.

#include "color/planes_kernels.h"

#include "color/pair_formulas.h"
#include "frame/simd.h"

namespace {

using Planes = uint8_t* const (&)[4];
using ConstPlanes = const uint8_t* const (&)[4];

// A layout: the number of its planes, the packed bytes of an element (a pixel or a pair), and the
// samples that an element gives to plane k; element i by itself; and many elements from i on.

// Four bytes a pixel: planes 0 and 2 are bytes kFirst and kThird, plane 1 is byte 1; byte 3 is
// plane 3 or, without one, 255.
template <int kFirst, int kThird, bool kAlpha> struct FourBytes {
    static constexpr int kPlanes = kAlpha ? 4 : 3;
    static constexpr ptrdiff_t kBytes = 4;
    static constexpr ptrdiff_t Samples(int) { return 1; }

    static void SplitOne(const uint8_t* src, Planes planes, ptrdiff_t i) {
        planes[0][i] = src[4 * i + kFirst];
        planes[1][i] = src[4 * i + 1];
        planes[2][i] = src[4 * i + kThird];
        if constexpr (kAlpha) planes[3][i] = src[4 * i + 3];
    }
    static void BuildOne(ConstPlanes planes, uint8_t* dst, ptrdiff_t i) {
        dst[4 * i + kFirst] = planes[0][i];
        dst[4 * i + 1] = planes[1][i];
        dst[4 * i + kThird] = planes[2][i];
        if constexpr (kAlpha)
            dst[4 * i + 3] = planes[3][i];
        else
            dst[4 * i + 3] = 255;
    }

    static constexpr ptrdiff_t kSplitStep = kVectorBytes;
    static void SplitStep(const uint8_t* src, Planes planes, ptrdiff_t i) {
        U16v w[4];
        for (int k = 0; k < 4; ++k) w[k] = Load<U16v>(src + 4 * i + kVectorBytes * k);
        const U16v even[2] = {(U16v)EvenBytes(w[0], w[1]), (U16v)EvenBytes(w[2], w[3])};
        const U16v odd[2] = {(U16v)OddBytes(w[0], w[1]), (U16v)OddBytes(w[2], w[3])};
        const U8v byte0 = EvenBytes(even[0], even[1]), byte2 = OddBytes(even[0], even[1]);
        Store(planes[0] + i, kFirst == 0 ? byte0 : byte2);
        Store(planes[1] + i, EvenBytes(odd[0], odd[1]));
        Store(planes[2] + i, kThird == 0 ? byte0 : byte2);
        if constexpr (kAlpha) Store(planes[3] + i, OddBytes(odd[0], odd[1]));
    }

    static constexpr ptrdiff_t kBuildStep = 16;
    static void BuildStep(ConstPlanes planes, uint8_t* dst, ptrdiff_t i) {
        const U8x16 byte0 = Load<U8x16>(planes[kFirst] + i), byte1 = Load<U8x16>(planes[1] + i);
        const U8x16 byte2 = Load<U8x16>(planes[kThird] + i);
        const U8x16 byte3 = kAlpha ? Load<U8x16>(planes[kPlanes - 1] + i) : ~U8x16{};
        StoreFours(dst + 4 * i, AlternateFirst(byte0, byte1), AlternateFirst(byte2, byte3));
        StoreFours(dst + 4 * i + 32, AlternateSecond(byte0, byte1), AlternateSecond(byte2, byte3));
    }

private:
    static void StoreFours(uint8_t* to, U8x16 lower, U8x16 upper) {
        const U16x8 a = (U16x8)lower, b = (U16x8)upper;
        Store(to, __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11));
        Store(to + 16, __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15));
    }
};

struct ThreeBytes {
    static constexpr int kPlanes = 3;
    static constexpr ptrdiff_t kBytes = 3;
    static constexpr ptrdiff_t Samples(int) { return 1; }

    static void SplitOne(const uint8_t* src, Planes planes, ptrdiff_t i) {
        for (int k = 0; k < 3; ++k) planes[k][i] = src[3 * i + k];
    }
    static void BuildOne(ConstPlanes planes, uint8_t* dst, ptrdiff_t i) {
        for (int k = 0; k < 3; ++k) dst[3 * i + k] = planes[k][i];
    }

    static constexpr ptrdiff_t kSplitStep = kHasByteShuffle ? 16 : 0;
    static void SplitStep(const uint8_t* src, Planes planes, ptrdiff_t i) {
        constexpr U8x16 order = {0, 3, 6, 9, 1, 4, 7, 10, 2, 5, 8, 11, 0, 0, 0, 0};
        // Four pixels each; the load of the last four starts early, so as not to pass them.
        const uint8_t* from = src + 3 * i;
        const U32x4 a = (U32x4)ShuffleBytes(Load<U8x16>(from), order);
        const U32x4 b = (U32x4)ShuffleBytes(Load<U8x16>(from + 12), order);
        const U32x4 c = (U32x4)ShuffleBytes(Load<U8x16>(from + 24), order);
        const U32x4 d = (U32x4)ShuffleBytes(Load<U8x16>(from + 32), order + 4);
        const U32x4 ab = __builtin_shufflevector(a, b, 0, 4, 1, 5);
        const U32x4 cd = __builtin_shufflevector(c, d, 0, 4, 1, 5);
        const U32x4 lastAb = __builtin_shufflevector(a, b, 2, 6, 3, 7);
        const U32x4 lastCd = __builtin_shufflevector(c, d, 2, 6, 3, 7);
        Store(planes[0] + i, __builtin_shufflevector(ab, cd, 0, 1, 4, 5));
        Store(planes[1] + i, __builtin_shufflevector(ab, cd, 2, 3, 6, 7));
        Store(planes[2] + i, __builtin_shufflevector(lastAb, lastCd, 0, 1, 4, 5));
    }

    static constexpr ptrdiff_t kBuildStep = kHasByteShuffle ? 16 : 0;
    static void BuildStep(ConstPlanes planes, uint8_t* dst, ptrdiff_t i) {
        const U8x16 byte0 = Load<U8x16>(planes[0] + i), byte1 = Load<U8x16>(planes[1] + i);
        const U8x16 byte2 = Load<U8x16>(planes[2] + i);
        uint8_t* to = dst + 3 * i;
        StoreThrees(to, AlternateFirst(byte0, byte1), AlternateFirst(byte2, byte2), 16);
        StoreThrees(to + 24, AlternateSecond(byte0, byte1), AlternateSecond(byte2, byte2), 12);
    }

private:
    // Eight pixels, of which the last four are stored in lastBytes bytes.
    static void StoreThrees(uint8_t* to, U8x16 lower, U8x16 upper, size_t lastBytes) {
        constexpr U8x16 order = {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 0, 0, 0, 0};
        const U16x8 a = (U16x8)lower, b = (U16x8)upper;
        const U16x8 first = __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
        const U16x8 last = __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
        const U8x16 packed = ShuffleBytes((U8x16)last, order);
        Store(to, ShuffleBytes((U8x16)first, order));
        std::memcpy(to + 12, &packed, lastBytes);
    }
};

template <class Layout> struct Pairs {
    static constexpr int kPlanes = 3;
    static constexpr ptrdiff_t kBytes = 4;
    static constexpr ptrdiff_t Samples(int k) { return k == 0 ? 2 : 1; }
    static constexpr ptrdiff_t kLuma = Layout::kLumaFirst ? 0 : 1, kChroma = 1 - kLuma;

    static void SplitOne(const uint8_t* src, Planes planes, ptrdiff_t i) {
        planes[0][2 * i] = src[4 * i + kLuma];
        planes[0][2 * i + 1] = src[4 * i + kLuma + 2];
        planes[1][i] = src[4 * i + kChroma];
        planes[2][i] = src[4 * i + kChroma + 2];
    }
    static void BuildOne(ConstPlanes planes, uint8_t* dst, ptrdiff_t i) {
        dst[4 * i + kLuma] = planes[0][2 * i];
        dst[4 * i + kLuma + 2] = planes[0][2 * i + 1];
        dst[4 * i + kChroma] = planes[1][i];
        dst[4 * i + kChroma + 2] = planes[2][i];
    }

    static constexpr ptrdiff_t kSplitStep = kPairStep, kBuildStep = kPairStep;
    static void SplitStep(const uint8_t* src, Planes planes, ptrdiff_t i) {
        PairWords words;
        for (ptrdiff_t k = 0; k < kPairVectors; ++k)
            words.w[k] = Load<U32v>(src + 4 * i + kVectorBytes * k);
        StorePairs<Layout>(words, planes[0] + 2 * i, planes[1] + i, planes[2] + i);
    }
    static void BuildStep(ConstPlanes planes, uint8_t* dst, ptrdiff_t i) {
        const PairWords words = LoadPairs<Layout>(planes[0] + 2 * i, planes[1] + i, planes[2] + i);
        for (ptrdiff_t k = 0; k < kPairVectors; ++k)
            Store(dst + 4 * i + kVectorBytes * k, words.w[k]);
    }
};

inline bool Apart(const uint8_t* a, ptrdiff_t aBytes, const uint8_t* b, ptrdiff_t bBytes) {
    const uintptr_t first = reinterpret_cast<uintptr_t>(a), second = reinterpret_cast<uintptr_t>(b);
    return first + static_cast<uintptr_t>(aBytes) <= second ||
           second + static_cast<uintptr_t>(bBytes) <= first;
}

// Whether steps give the bytes that single elements give. They do if planes coincide, too: later
// planes win either way.
template <class Layout> bool MaySplitInSteps(const uint8_t* src, Planes planes, ptrdiff_t count) {
    for (int k = 0; k < Layout::kPlanes; ++k) {
        const ptrdiff_t bytes = Layout::Samples(k) * count;
        if (!Apart(src, Layout::kBytes * count, planes[k], bytes)) return false;
        for (int l = 0; l < k; ++l)
            if (planes[l] != planes[k] &&
                !Apart(planes[l], Layout::Samples(l) * count, planes[k], bytes))
                return false;
    }
    return true;
}
template <class Layout>
bool MayBuildInSteps(ConstPlanes planes, const uint8_t* dst, ptrdiff_t count) {
    for (int k = 0; k < Layout::kPlanes; ++k)
        if (!Apart(dst, Layout::kBytes * count, planes[k], Layout::Samples(k) * count))
            return false;
    return true;
}

template <class Layout> void Split(const uint8_t* src, Planes planes, ptrdiff_t count) {
    ptrdiff_t i = 0;
    if (Layout::kSplitStep != 0 && MaySplitInSteps<Layout>(src, planes, count))
        for (; i + Layout::kSplitStep <= count; i += Layout::kSplitStep)
            Layout::SplitStep(src, planes, i);
    for (; i < count; ++i) Layout::SplitOne(src, planes, i);
}

template <class Layout> void Build(ConstPlanes planes, uint8_t* dst, ptrdiff_t count) {
    ptrdiff_t i = 0;
    if (Layout::kBuildStep != 0 && MayBuildInSteps<Layout>(planes, dst, count))
        for (; i + Layout::kBuildStep <= count; i += Layout::kBuildStep)
            Layout::BuildStep(planes, dst, i);
    for (; i < count; ++i) Layout::BuildOne(planes, dst, i);
}

using Argb3 = FourBytes<0, 2, false>;
using Argb4 = FourBytes<0, 2, true>;
using Ayuv3 = FourBytes<2, 0, false>;
using Ayuv4 = FourBytes<2, 0, true>;

}  // namespace

namespace tq::TQ_ISA {
const PlanesKernels planesKernels = {
    {Split<Argb3>, Build<Argb3>},
    {Split<Argb4>, Build<Argb4>},
    {Split<ThreeBytes>, Build<ThreeBytes>},
    {Split<Ayuv3>, Build<Ayuv3>},
    {Split<Ayuv4>, Build<Ayuv4>},
    {Split<Pairs<Yuyv>>, Build<Pairs<Yuyv>>},
    {Split<Pairs<Uyvy>>, Build<Pairs<Uyvy>>},
};
}  // namespace tq::TQ_ISA
