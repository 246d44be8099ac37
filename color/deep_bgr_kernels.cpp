// Row kernels of the deep BGR formats. Compiled once per instruction-set level, with TQ_ISA naming
// the level's namespace.

#include "color/deep_bgr_kernels.h"

#include "frame/simd.h"

namespace {

// Luminance weights in 1024ths.
constexpr int kBlue = 117, kGreen = 601, kRed = 306;

// The two alphas differ, and stay so: hosts depend on it.
constexpr uint32_t kAlphaFrom10 = 0x3FC0, kAlphaFrom16 = 255;

// A format: its bytes a pixel, and the upper eight bits of blue, green and red of the kLanes32
// pixels at src, in the low three bytes of each lane.
struct Tq10 {
    static constexpr ptrdiff_t kBytes = 4;
    static U32v UpperBytes(const uint8_t* src) {
        const U32v w = Load<U32v>(src);
        return ((w >> 4) & 0xFF) | ((w >> 6) & 0xFF00) | ((w >> 8) & 0xFF0000);
    }
};
struct Tq16 {
    static constexpr ptrdiff_t kBytes = 6;
    static U32v UpperBytes(const uint8_t* src) {
        const TripleWords t = WordsOf(LoadTriples(src));
        return ((t.firstTwo >> 8) & 0xFF) | ((t.firstTwo >> 16) & 0xFF00) |
               ((t.third << 8) & 0xFF0000);
    }
};

// Three bytes: the alpha byte behind them belongs to the host.
inline void StoreBgr(uint8_t* dst, uint32_t pixel) {
    Store(dst, static_cast<uint16_t>(pixel));
    Store(dst + 2, static_cast<uint8_t>(pixel >> 16));
}

template <class Format> void ToBgra(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    ptrdiff_t i = 0;
    for (; i + kLanes32 <= count; i += kLanes32) {
        uint64_t pairs[kLanes32 / 2];
        Store(pairs, Format::UpperBytes(src + Format::kBytes * i));
        for (int k = 0; k < kLanes32 / 2; ++k) {
            StoreBgr(dst + 4 * i + 8 * k, static_cast<uint32_t>(pairs[k]));
            StoreBgr(dst + 4 * i + 8 * k + 4, static_cast<uint32_t>(pairs[k] >> 32));
        }
    }
    if (i >= count) return;
    uint8_t in[Format::kBytes * kLanes32] = {};
    std::memcpy(in, src + Format::kBytes * i, static_cast<size_t>(Format::kBytes * (count - i)));
    uint32_t last[kLanes32];
    Store(last, Format::UpperBytes(in));
    for (ptrdiff_t k = 0; i + k < count; ++k) StoreBgr(dst + 4 * (i + k), last[k]);
}

void Tq10ToTq16(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    InSteps<kLanes32, 4, 6>(src, dst, count, [](const uint8_t* from, uint8_t* to) {
        const U32v w = Load<U32v>(from);
        StoreTriples(to, {((w << 4) & 0xFFC0) | ((w << 10) & 0xFFC00000), (w >> 16) & 0xFFC0});
    });
}

void Tq16ToTq10(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    InSteps<kLanes32, 6, 4>(src, dst, count, [](const uint8_t* from, uint8_t* to) {
        const TripleWords t = WordsOf(LoadTriples(from));
        Store(to, ((t.firstTwo >> 4) & 0xFFC) | ((t.firstTwo >> 10) & 0x3FF000) |
                      ((t.third << 16) & 0xFFC00000));
    });
}

// kLanes32 pixels of BGRA16b: samples in the halves of 32-bit lanes, and the luminance.
struct Bgra16 {
    U32v blueGreen, redAlpha, luminance;
};

// A format: its bytes a pixel, and kLanes32 pixels at src. The luminance is not yet limited.
struct Bgr10 {
    static constexpr ptrdiff_t kBytes = 4;
    static Bgra16 Pixels(const uint8_t* src) {
        const U32v w = Load<U32v>(src);
        // (64 * sum + 512) >> 10 with the sum of the ten-bit fields, each below 0x8000 as a half.
        const U32v sum = WeightedHalves((w & 0x3FF) | ((w >> 4) & 0x03FF0000), kRed, kBlue) +
                         WeightedHalves((w >> 10) & 0x3FF, kGreen, 0);
        return {((w >> 14) & 0xFFC0) | ((w << 12) & 0xFFC00000),
                ((w << 6) & 0xFFC0) | kAlphaFrom10 << 16, (sum + 8) >> 4};
    }
};
struct Bgr16 {
    static constexpr ptrdiff_t kBytes = 6;
    static Bgra16 Pixels(const uint8_t* src) {
        const Triples t = LoadTriples(src);
        // The products are signed: 0x8000 is taken from each sample, and 1024 of them put back.
        const U32v sum = (U32v)WeightedTriples({t.a ^ 0x8000, t.b ^ 0x8000}, kBlue, kGreen, kRed) +
                         (0x8000 << 10);
        const TripleWords words = WordsOf(t);
        return {words.firstTwo, words.third | kAlphaFrom16 << 16, (sum + 512) >> 10};
    }
};

// On the 16-bit scale 255 is almost black: the limit makes the plane a mark of all that is lighter.
// Kept on purpose: hosts depend on it.
inline U32v Limit(U32v luminance) {
    const I32v v = (I32v)luminance;
    return (U32v)(v < 255 ? v : I32v{} + 255);
}

template <class Format>
void StepToBgra16(const uint8_t* src, uint8_t* samples, uint8_t* luminance) {
    const Bgra16 first = Format::Pixels(src);
    const Bgra16 second = Format::Pixels(src + Format::kBytes * kLanes32);
    StoreEvenOdd(samples, first.blueGreen, first.redAlpha);
    StoreEvenOdd(samples + 8 * kLanes32, second.blueGreen, second.redAlpha);
    Store(luminance, LowHalves(Limit(first.luminance), Limit(second.luminance)));
}

template <class Format>
void ToBgra16(const uint8_t* src, uint8_t* samples, uint8_t* luminance, ptrdiff_t count) {
    constexpr ptrdiff_t kStep = kLanes16;
    ptrdiff_t i = 0;
    for (; i + kStep <= count; i += kStep)
        StepToBgra16<Format>(src + Format::kBytes * i, samples + 8 * i, luminance + 2 * i);
    if (i >= count) return;
    const size_t rest = static_cast<size_t>(count - i);
    uint8_t in[Format::kBytes * kStep] = {};
    uint8_t outSamples[8 * kStep];
    uint8_t outLuminance[2 * kStep];
    std::memcpy(in, src + Format::kBytes * i, Format::kBytes * rest);
    StepToBgra16<Format>(in, outSamples, outLuminance);
    std::memcpy(samples + 8 * i, outSamples, 8 * rest);
    std::memcpy(luminance + 2 * i, outLuminance, 2 * rest);
}

void Bgra16ToBgr10(const uint8_t* samples, uint8_t* dst, ptrdiff_t count) {
    InSteps<kLanes32, 8, 4>(samples, dst, count, [](const uint8_t* from, uint8_t* to) {
        U32v blueGreen, redAlpha;
        LoadEvenOdd(from, blueGreen, redAlpha);
        Store(to, ((blueGreen << 14) & 0x3FF00000) | ((blueGreen >> 12) & 0xFFC00) |
                      ((redAlpha >> 6) & 0x3FF));
    });
}

void Bgra16ToBgr16(const uint8_t* samples, uint8_t* dst, ptrdiff_t count) {
    InSteps<kLanes32, 8, 6>(samples, dst, count, [](const uint8_t* from, uint8_t* to) {
        U32v blueGreen, redAlpha;
        LoadEvenOdd(from, blueGreen, redAlpha);
        StoreTriples(to, {blueGreen, redAlpha});
    });
}

}  // namespace

namespace tq::TQ_ISA {
const DeepBgrKernels deepBgrKernels = {
    ToBgra<Tq10>,    Tq10ToTq16,      ToBgra<Tq16>,  Tq16ToTq10,
    ToBgra16<Bgr10>, ToBgra16<Bgr16>, Bgra16ToBgr10, Bgra16ToBgr16,
};
}  // namespace tq::TQ_ISA
