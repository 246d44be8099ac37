// Row kernels of the luminance family. Compiled once per instruction-set level, with
// TQ_ISA naming the level's namespace.

#include "color/luminance_kernels.h"

#include "frame/simd.h"

namespace {

// Weights in 1024ths; they sum to 1024, so a byte result needs no clamp.
constexpr int kBlue = 117, kGreen = 601, kRed = 306;
constexpr uint32_t kHalf = 512;

// A format: its bytes a pixel, and the sums of the kLanes32 pixels at src.
struct Bgra {
    static constexpr ptrdiff_t kBytes = 4;
    static U32v Sums(const uint8_t* src) {
        const U32v w = Load<U32v>(src);
        const U32v alphaGreen = (U32v)((U16v)w >> 8);
        return WeightedHalves(w & 0x00FF00FF, kBlue, kRed) + WeightedHalves(alphaGreen, kGreen, 0);
    }
};
struct Bgr10 {
    static constexpr ptrdiff_t kBytes = 4;
    static U32v Sums(const uint8_t* src) {
        const U32v w = Load<U32v>(src);
        const U32v redBlue = ((w >> 6) & 0x03FF0000) | ((w >> 2) & 0x3FF);
        return WeightedHalves(redBlue, kBlue, kRed) + WeightedHalves((w >> 12) & 0x3FF, kGreen, 0);
    }
};
struct Bgr10Upper8 {
    static constexpr ptrdiff_t kBytes = 4;
    static U32v Sums(const uint8_t* src) {
        const U32v w = Load<U32v>(src);
        const U32v redBlue = ((w >> 8) & 0x00FF0000) | ((w >> 4) & 0xFF);
        return WeightedHalves(redBlue, kBlue, kRed) + WeightedHalves((w >> 14) & 0xFF, kGreen, 0);
    }
};
struct Bgr16 {
    static constexpr ptrdiff_t kBytes = 6;
    static U32v Sums(const uint8_t* src) {
        // The products are signed: 0x8000 is taken from each channel, and 1024 of them put back.
        const Triples t = LoadTriples(src);
        return (U32v)WeightedTriples({t.a ^ 0x8000, t.b ^ 0x8000}, kBlue, kGreen, kRed) +
               (0x8000 << 10);
    }
};
struct Bgr16Upper8 {
    static constexpr ptrdiff_t kBytes = 6;
    static U32v Sums(const uint8_t* src) {
        const Triples t = LoadTriples(src);
        return (U32v)WeightedTriples({t.a >> 8, t.b >> 8}, kBlue, kGreen, kRed);
    }
};

template <class Format> void ToByte(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    InSteps<kVectorBytes, Format::kBytes, 1>(src, dst, count, [](const uint8_t* from, uint8_t* to) {
        U32v byte[4];
        for (int k = 0; k < 4; ++k)
            byte[k] = (Format::Sums(from + Format::kBytes * k * kLanes32) + kHalf) >> 10;
        Store(to, PackBytes(byte[0], byte[1], byte[2], byte[3]));
    });
}

template <class Format> void ToSum(const uint8_t* src, int* dst, ptrdiff_t count) {
    InSteps<kLanes32, Format::kBytes, 4>(
        src, reinterpret_cast<uint8_t*>(dst), count,
        [](const uint8_t* from, uint8_t* to) { Store(to, Format::Sums(from)); });
}

}  // namespace

namespace tq::TQ_ISA {
const LuminanceKernels luminanceKernels = {
    ToByte<Bgra>, ToByte<Bgr10Upper8>, ToByte<Bgr16Upper8>, ToSum<Bgra>, ToSum<Bgr10>, ToSum<Bgr16>,
};
}  // namespace tq::TQ_ISA
