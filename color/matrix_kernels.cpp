// Row kernels of the change of colour matrix. Compiled once per instruction-set level, with TQ_ISA
// naming the level's namespace.

#include "color/matrix_kernels.h"

#include "color/pair_formulas.h"
#include "frame/simd.h"

namespace {

using Matrix = tq::MatrixKernels::Matrix;

// The arithmetic is that of integers: factors in 4096ths are below 2^13, samples below 2^8, so
// every product and sum stays below 2^24, where floats are exact. They multiply faster at every
// level.
constexpr float kOne = 4096.0f, kHalf = 2048.0f;

class Change {
public:
    explicit Change(Matrix matrix) {
        for (int i = 0; i < 3; ++i)
            for (int k = 0; k < 3; ++k) m_factor[i][k] = F32v{} + static_cast<float>(matrix[i][k]);
    }

    // New samples, of luma less 16 and chroma less 128.
    U32v Y(F32v y, F32v u, F32v v) const { return Sample<16, 235>(m_factor[0], y, u, v); }
    // U in the low and V in the high half.
    U32v Uv(F32v y, F32v u, F32v v) const {
        return Sample<128, 240>(m_factor[1], y, u, v) | Sample<128, 240>(m_factor[2], y, u, v)
                                                            << 16;
    }

private:
    // The sum, rounded down from 4096ths, plus kOffset, limited to 16 and kHighest. Limiting before
    // rounding keeps everything positive.
    template <int kOffset, int kHighest>
    static U32v Sample(const F32v (&factor)[3], F32v y, F32v u, F32v v) {
        constexpr float low = 16 * kOne, high = kHighest * kOne + (kOne - 1);
        F32v sum = factor[0] * y + factor[1] * u + factor[2] * v + (kHalf + kOffset * kOne);
        sum = sum < low ? F32v{} + low : sum;
        sum = sum > high ? F32v{} + high : sum;
        return (U32v)Truncate(sum) >> 12;
    }

    F32v m_factor[3][3];
};

inline I32v Less(U32v byte, uint32_t offset) { return (I32v)(byte - offset); }

// Half of v, toward zero.
inline I32v Half(I32v v) { return (v + (I32v)((U32v)v >> 31)) >> 1; }

// The words of pairs, from samples less their offsets. Chroma is made with the mean of the lumas.
template <class Layout>
inline U32v NewPairs(const Change& change, I32v y0, I32v y1, I32v u, I32v v) {
    const F32v us = ToFloat(u), vs = ToFloat(v);
    return Layout::Words(change.Y(ToFloat(y0), us, vs), change.Y(ToFloat(y1), us, vs),
                         change.Uv(ToFloat(Half(y0 + y1)), us, vs));
}

inline U32v NewPixels(const Change& change, I32v y, I32v u, I32v v) {
    const F32v ys = ToFloat(y), us = ToFloat(u), vs = ToFloat(v);
    const U32v uv = change.Uv(ys, us, vs);
    return Vuyt::Words(change.Y(ys, us, vs), uv & 0xFFFF, uv >> 16);
}

template <class From, class To, uint32_t kFirstOffset = 16>
inline U32v PairsToPairs(const Change& change, U32v w) {
    return NewPairs<To>(change, Less(From::Y0(w), kFirstOffset), Less(From::Y1(w), 16),
                        Less(From::U(w), 128), Less(From::V(w), 128));
}

template <class From, class To, uint32_t kFirstOffset = 16>
void FromPairsToPairs(Matrix matrix, const uint8_t* src, uint8_t* dst, ptrdiff_t pairs) {
    const Change change(matrix);
    InSteps<kLanes32, 4, 4>(src, dst, pairs, [&](const uint8_t* from, uint8_t* to) {
        Store(to, PairsToPairs<From, To, kFirstOffset>(change, Load<U32v>(from)));
    });
}

void FromPixelsToPixels(Matrix matrix, const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    const Change change(matrix);
    InSteps<kLanes32, 4, 4>(src, dst, count, [&](const uint8_t* from, uint8_t* to) {
        const U32v w = Load<U32v>(from);
        Store(to, NewPixels(change, Less(Vuyt::Y(w), 16), Less(Vuyt::U(w), 128),
                            Less(Vuyt::V(w), 128)) |
                      Vuyt::T(w));
    });
}

// Alpha is not even read, so that a host may change it meanwhile.
void PixelsInPlace(Matrix matrix, uint8_t* pixels, ptrdiff_t count) {
    const Change change(matrix);
    for (; count > 0; count -= kLanes32, pixels += 4 * kLanes32) {
        const ptrdiff_t step = count < kLanes32 ? count : kLanes32;
        uint32_t words[kLanes32] = {};
        for (ptrdiff_t i = 0; i < step; ++i)
            words[i] = Load<uint16_t>(pixels + 4 * i) | uint32_t{pixels[4 * i + 2]} << 16;
        const U32v w = Load<U32v>(words);
        Store(words, NewPixels(change, Less(Vuyt::Y(w), 16), Less(Vuyt::U(w), 128),
                               Less(Vuyt::V(w), 128)));
        for (ptrdiff_t i = 0; i < step; ++i) {
            Store(pixels + 4 * i, static_cast<uint16_t>(words[i]));
            pixels[4 * i + 2] = static_cast<uint8_t>(words[i] >> 16);
        }
    }
}

template <class To>
void FromPixelsToPairs(Matrix matrix, const uint8_t* src, uint8_t* dst, ptrdiff_t pairs) {
    const Change change(matrix);
    InSteps<kLanes32, 8, 4>(src, dst, pairs, [&](const uint8_t* from, uint8_t* to) {
        U32v left, right;
        LoadEvenOdd(from, left, right);
        const I32v u = Half(Less(Vuyt::U(left) + Vuyt::U(right), 256));
        const I32v v = Half(Less(Vuyt::V(left) + Vuyt::V(right), 256));
        Store(to, NewPairs<To>(change, Less(Vuyt::Y(left), 16), Less(Vuyt::Y(right), 16), u, v));
    });
}

// Each pixel's chroma is made with its own luma.
template <class From>
void FromPairsToPixels(Matrix matrix, const uint8_t* src, uint8_t* dst, ptrdiff_t pairs) {
    const Change change(matrix);
    InSteps<kLanes32, 4, 8>(src, dst, pairs, [&](const uint8_t* from, uint8_t* to) {
        const U32v w = Load<U32v>(from);
        const I32v u = Less(From::U(w), 128), v = Less(From::V(w), 128);
        StoreEvenOdd(to, NewPixels(change, Less(From::Y0(w), 16), u, v) | 0xFF000000,
                     NewPixels(change, Less(From::Y1(w), 16), u, v) | 0xFF000000);
    });
}

inline void PlanesStep(const Change& change, uint8_t* y, uint8_t* u, uint8_t* v) {
    PairWords words = LoadPairs<Yuyv>(y, u, v);
    for (U32v& w : words.w) w = PairsToPairs<Yuyv, Yuyv>(change, w);
    StorePairs<Yuyv>(words, y, u, v);
}

void Planes(Matrix matrix, uint8_t* y, uint8_t* u, uint8_t* v, ptrdiff_t pairs) {
    const Change change(matrix);
    ptrdiff_t i = 0;
    for (; i + kPairStep <= pairs; i += kPairStep) PlanesStep(change, y + 2 * i, u + i, v + i);
    if (i >= pairs) return;
    const size_t left = static_cast<size_t>(pairs - i);
    uint8_t lastY[2 * kPairStep] = {}, lastU[kPairStep] = {}, lastV[kPairStep] = {};
    std::memcpy(lastY, y + 2 * i, 2 * left);
    std::memcpy(lastU, u + i, left);
    std::memcpy(lastV, v + i, left);
    PlanesStep(change, lastY, lastU, lastV);
    std::memcpy(y + 2 * i, lastY, 2 * left);
    std::memcpy(u + i, lastU, left);
    std::memcpy(v + i, lastV, left);
}

}  // namespace

namespace tq::TQ_ISA {
const MatrixKernels matrixKernels = {
    FromPixelsToPixels,
    FromPixelsToPairs<Yuyv>,
    FromPixelsToPairs<Uyvy>,
    FromPairsToPixels<Yuyv>,
    FromPairsToPixels<Uyvy>,
    FromPairsToPairs<Yuyv, Yuyv>,
    FromPairsToPairs<Uyvy, Uyvy>,
    FromPairsToPairs<Uyvy, Yuyv>,
    FromPairsToPairs<Yuyv, Yuyv, 128>,
    FromPairsToPairs<Yuyv, Uyvy, 128>,
    PixelsInPlace,
    Planes,
};
}  // namespace tq::TQ_ISA
