// Row kernels of HSV in floats. Compiled once per instruction-set level, with TQ_ISA naming the
// level's namespace.

#include "color/hsv_float_kernels.h"

#include "color/coefficients.h"
#include "frame/simd.h"

namespace {

using tq::BgrToStudio;
using tq::StudioToBgr;

struct Hsv {
    F32v h, s, v;
};
template <class V> struct Rgb { V r, g, b; };

inline F32v Splat(float value) { return F32v{} + value; }
inline F32v Greater(F32v a, F32v b) { return a > b ? a : b; }
inline F32v Lesser(F32v a, F32v b) { return a > b ? b : a; }

// The low byte of what truncation to 32 bits gives: 0 for NaN and for what 32 bits cannot hold.
inline U32v LowByte(F32v v) {
    const I32v fits = (v >= -2147483648.0f) & (v < 2147483648.0f);
    return (U32v)Truncate(fits ? v : F32v{}) & 0xFF;
}

// What there is of an incomplete last step.
inline void Copy(void* to, const void* from, ptrdiff_t bytes) {
    std::memcpy(to, from, static_cast<size_t>(bytes));
}
inline F32v LoadPart(const float* from, ptrdiff_t count) {
    F32v v = {};
    Copy(&v, from, 4 * count);
    return v;
}

// Three floats a pixel in memory, a vector of each channel in hand: four pixels at a time.
using F32x4 = float __attribute__((vector_size(16)));
inline void StoreFloatTriples(uint8_t* to, const Hsv& pixels) {
    for (ptrdiff_t i = 0; i < kLanes32; i += 4, to += 48) {
        const F32x4 h = Load<F32x4>(reinterpret_cast<const float*>(&pixels.h) + i);
        const F32x4 s = Load<F32x4>(reinterpret_cast<const float*>(&pixels.s) + i);
        const F32x4 v = Load<F32x4>(reinterpret_cast<const float*>(&pixels.v) + i);
        const F32x4 hsLow = __builtin_shufflevector(h, s, 0, 4, 1, 5);
        const F32x4 svMid = __builtin_shufflevector(s, v, 1, 5, 2, 6);
        const F32x4 hsHigh = __builtin_shufflevector(h, s, 2, 6, 3, 7);
        Store(to, __builtin_shufflevector(hsLow, v, 0, 1, 4, 2));
        Store(to + 16, __builtin_shufflevector(svMid, hsHigh, 0, 1, 4, 2));
        Store(to + 32, __builtin_shufflevector(v, hsHigh, 2, 6, 7, 3));
    }
}
inline Hsv LoadFloatTriples(const uint8_t* from) {
    Hsv pixels;
    for (ptrdiff_t i = 0; i < kLanes32; i += 4, from += 48) {
        const F32x4 a = Load<F32x4>(from), b = Load<F32x4>(from + 16);
        const F32x4 c = Load<F32x4>(from + 32);
        const F32x4 h = __builtin_shufflevector(a, b, 0, 3, 6, 6);
        const F32x4 s = __builtin_shufflevector(a, b, 1, 4, 7, 7);
        const F32x4 v = __builtin_shufflevector(b, c, 1, 4, 7, 7);
        Store(reinterpret_cast<float*>(&pixels.h) + i, __builtin_shufflevector(h, c, 0, 1, 2, 5));
        Store(reinterpret_cast<float*>(&pixels.s) + i, __builtin_shufflevector(s, c, 0, 1, 2, 6));
        Store(reinterpret_cast<float*>(&pixels.v) + i, __builtin_shufflevector(a, v, 2, 4, 5, 6));
    }
    return pixels;
}

// The quotient is defined in double precision and narrowed; for bytes that is the float quotient.
constexpr bool ByteQuotientsAreFloatQuotients() {
    for (int m = 0; m < 256; ++m)
        if (static_cast<float>(m / 255.0) != static_cast<float>(m) / 255.0f) return false;
    return true;
}
static_assert(ByteQuotientsAreFloatQuotients());

// Channels are bytes, so differences are exact, and a difference below 1e-6 is 0. Lanes whose
// division makes no sense are not selected.
inline Hsv FromBgraWords(U32v words) {
    const auto channel = [](U32v w) { return ToFloat((I32v)(w & 0xFF)); };
    const F32v b = channel(words), g = channel(words >> 8), r = channel(words >> 16);
    const F32v largest = Greater(Greater(r, g), b);
    const F32v d = largest - Lesser(Lesser(r, g), b);
    const F32v inverse = 1.0f / d;
    const I32v isRed = r == largest, isGreen = g == largest;
    const F32v difference = isRed ? g - b : isGreen ? b - r : r - g;
    const F32v offset = isRed ? F32v{} : isGreen ? Splat(2.0f) : Splat(4.0f);
    F32v h = (difference * inverse + offset) * 60.0f;
    h = 0.0f > h ? h + 360.0f : h;
    const I32v grey = d == 0.0f;
    return {grey ? F32v{} : h, grey ? F32v{} : d / largest, largest / 255.0f};
}

void FromBgra(const uint8_t* src, float* h, float* s, float* v, ptrdiff_t count) {
    ptrdiff_t i = 0;
    for (; i + kLanes32 <= count; i += kLanes32) {
        const Hsv hsv = FromBgraWords(Load<U32v>(src + 4 * i));
        Store(h + i, hsv.h);
        Store(s + i, hsv.s);
        Store(v + i, hsv.v);
    }
    if (i >= count) return;
    U32v words = {};
    Copy(&words, src + 4 * i, 4 * (count - i));
    const Hsv hsv = FromBgraWords(words);
    Copy(h + i, &hsv.h, 4 * (count - i));
    Copy(s + i, &hsv.s, 4 * (count - i));
    Copy(v + i, &hsv.v, 4 * (count - i));
}

// The sixth of the circle that a hue truncates to, and the rest. Only 0 to 5 are valid, and a hue
// between -60 and 0 is in 0 with a negative rest; elsewhere index and fraction mean nothing.
struct Sector {
    I32v valid, index;
    F32v fraction;
};
inline Sector SectorOf(F32v h) {
    const F32v x = h / 60.0f;
    const I32v valid = (x > -1.0f) & (x < 6.0f);
    const I32v index = Truncate(valid ? x : F32v{});
    return {valid, index, x - ToFloat(index)};
}
inline I32v IsOdd(I32v index) { return (index & 1) != 0; }

// Which channel is the largest, the smallest and the one between.
template <class V> inline Rgb<V> BySector(I32v index, V top, V bottom, V middle) {
    const auto in = [&](int one, int other) { return (index == one) | (index == other); };
    return {in(0, 5) ? top : (in(1, 4) ? middle : bottom),
            in(1, 2) ? top : (in(0, 3) ? middle : bottom),
            in(3, 4) ? top : (in(2, 5) ? middle : bottom)};
}

// A hundredth more, added in double precision; and what is above 255 is 255.
inline F32v AddHundredthAndLimit(F32v v) {
    float sums[kLanes32];
    Store(sums, v);
    for (float& sum : sums) sum = static_cast<float>(static_cast<double>(sum) + 0.01);
    const F32v sum = Load<F32v>(sums);
    return sum > 255.0f ? Splat(255.0f) : sum;
}

// The low byte of truncating v + 0.01 without narrowing. The sum fits 32 bits if v does.
inline U32v GreyByte(F32v v) {
    const I32v fits = (v >= -2147483648.0f) & (v < 2147483648.0f);
    float values[kLanes32];
    int32_t results[kLanes32];
    Store(values, fits ? v : F32v{});
    for (ptrdiff_t i = 0; i < kLanes32; ++i)
        results[i] = static_cast<int32_t>(static_cast<double>(values[i]) + 0.01);
    return Load<U32v>(results) & 0xFF;
}

// Within 1e-10 of 0, both ends included and compared in double precision: no float lies between
// 1e-10 and its nearest float, which is above it.
constexpr float kAboveGrey = 1e-10f;
static_assert(static_cast<double>(kAboveGrey) > 1e-10);

// Blue, green and red in the low three bytes, 0 above; and the lanes that have a colour.
struct Colours {
    U32v words;
    I32v exist;
};
inline Colours ColoursOf(const Hsv& hsv) {
    const F32v w = hsv.v * 255.0f;
    const I32v grey = (hsv.s > -kAboveGrey) & (hsv.s < kAboveGrey);
    const Sector sector = SectorOf(hsv.h);
    const F32v edge = IsOdd(sector.index) ? sector.fraction : 1.0f - sector.fraction;
    const F32v p = (1.0f - hsv.s) * w;
    const F32v middle = (1.0f - edge * hsv.s) * w;
    // The largest channel has neither the hundredth nor the limit: kept on purpose.
    const Rgb<U32v> rgb = BySector(sector.index, LowByte(w), LowByte(AddHundredthAndLimit(p)),
                                   LowByte(AddHundredthAndLimit(middle)));
    const U32v colour = rgb.b | rgb.g << 8 | rgb.r << 16;
    return {grey ? GreyByte(w) * 0x010101 : colour, grey | sector.valid};
}

// The other inverse, whose sector is the floor and whose last sector takes all that is not 0 to 4,
// with the floor as 32 bits give it: the most negative int for NaN and what they cannot hold.
inline Colours LimitedColoursOf(const Hsv& hsv) {
    const F32v x = hsv.h / 60.0f;
    const I32v fits = (x >= -2147483648.0f) & (x < 2147483648.0f);
    const F32v truncated = ToFloat(Truncate(fits ? x : F32v{}));
    const F32v floor = truncated > x ? truncated - 1.0f : truncated;
    const F32v c = hsv.s * hsv.v;
    const F32v e = (x - (fits ? floor : Splat(-2147483648.0f))) * c;
    const F32v bottom = hsv.v - c;
    const I32v inside = (x >= 0.0f) & (x < 5.0f);
    const I32v index = inside ? Truncate(inside ? x : F32v{}) : I32v{} + 5;
    const F32v middle = IsOdd(index) ? hsv.v - e : e + bottom;
    const Rgb<F32v> rgb = BySector(index, hsv.v, bottom, middle);
    const I32v grey = hsv.s == 0.0f;
    const auto limit = [&](F32v channel) {
        const F32v v = (grey ? hsv.v : channel) * 255.0f;
        const F32v limited = 0.0f > v ? F32v{} : (v > 255.0f ? Splat(255.0f) : v);
        return (U32v)Truncate(v == v ? limited : F32v{});
    };
    return {limit(rgb.b) | limit(rgb.g) << 8 | limit(rgb.r) << 16, I32v{} - 1};
}

// alpha * 255 rounded. What truncation to 32 bits turns negative is 0, too large values included.
inline U32v AlphaByte(F32v alpha) {
    const F32v a = alpha * 255.0f + 0.5f;
    const I32v positive = (a > 0.0f) & (a < 2147483648.0f);
    const F32v limited = a > 255.0f ? Splat(255.0f) : a;
    return (U32v)Truncate(positive ? limited : F32v{});
}

inline void WriteBgr(uint8_t* dst, const Colours& colours, ptrdiff_t count) {
    uint32_t words[kLanes32];
    int32_t exist[kLanes32];
    Store(words, colours.words);
    Store(exist, colours.exist);
    for (ptrdiff_t i = 0; i < count; ++i) {
        if (exist[i] == 0) continue;
        Store(dst + 4 * i, static_cast<uint16_t>(words[i]));
        dst[4 * i + 2] = static_cast<uint8_t>(words[i] >> 16);
    }
}

inline void WriteBgra(uint8_t* dst, const Colours& colours, U32v alpha, ptrdiff_t count) {
    uint32_t words[kLanes32];
    int32_t exist[kLanes32];
    Store(words, colours.words | alpha << 24);
    Store(exist, colours.exist);
    for (ptrdiff_t i = 0; i < count; ++i) {
        if (exist[i] != 0)
            Store(dst + 4 * i, words[i]);
        else
            dst[4 * i + 3] = static_cast<uint8_t>(words[i] >> 24);
    }
}

template <class Convert>
inline void WriteBgrRow(const float* h, const float* s, const float* v, uint8_t* dst,
                        ptrdiff_t count, Convert convert) {
    ptrdiff_t i = 0;
    for (; i + kLanes32 <= count; i += kLanes32)
        WriteBgr(dst + 4 * i, convert({Load<F32v>(h + i), Load<F32v>(s + i), Load<F32v>(v + i)}),
                 kLanes32);
    const ptrdiff_t rest = count - i;
    if (rest > 0)
        WriteBgr(dst + 4 * i,
                 convert({LoadPart(h + i, rest), LoadPart(s + i, rest), LoadPart(v + i, rest)}),
                 rest);
}

void ToBgr(const float* h, const float* s, const float* v, uint8_t* dst, ptrdiff_t count) {
    WriteBgrRow(h, s, v, dst, count, [](const Hsv& hsv) { return ColoursOf(hsv); });
}

void ToLimitedBgr(const float* h, const float* s, const float* v, uint8_t* dst, ptrdiff_t count) {
    WriteBgrRow(h, s, v, dst, count, [](const Hsv& hsv) { return LimitedColoursOf(hsv); });
}

void ToBgra(const float* h, const float* s, const float* v, const float* alpha, uint8_t* dst,
            ptrdiff_t count) {
    ptrdiff_t i = 0;
    for (; i + kLanes32 <= count; i += kLanes32)
        WriteBgra(dst + 4 * i, ColoursOf({Load<F32v>(h + i), Load<F32v>(s + i), Load<F32v>(v + i)}),
                  AlphaByte(Load<F32v>(alpha + i)), kLanes32);
    const ptrdiff_t rest = count - i;
    if (rest > 0)
        WriteBgra(dst + 4 * i,
                  ColoursOf({LoadPart(h + i, rest), LoadPart(s + i, rest), LoadPart(v + i, rest)}),
                  AlphaByte(LoadPart(alpha + i, rest)), rest);
}

// Pairs: a step has kPixels pixels, of which the left ones are at even places.
constexpr ptrdiff_t kPixels = 2 * kLanes32;

// Of studio-range luma, scaled, and what chroma adds to it. The channels are not limited.
inline Hsv FromSums(F32v luma, F32v blue, F32v green, F32v red) {
    const F32v b = blue + luma, g = luma - green, r = red + luma;
    const F32v largest = Greater(Greater(r, g), b);
    const F32v smallest = Lesser(Lesser(r, g), b);
    const F32v d = largest - smallest;
    const I32v isRed = r == largest, isGreen = g == largest;
    const F32v difference = isRed ? g - b : isGreen ? b - r : r - g;
    const F32v offset = isRed     ? (g < b ? Splat(360.0f) : F32v{})
                        : isGreen ? Splat(120.0f)
                                  : Splat(240.0f);
    const F32v h = difference * 60.0f / d + offset;
    const F32v s = 1.0f - smallest / largest;
    return {largest == smallest ? F32v{} : h, largest != 0.0f ? s : F32v{}, largest};
}

struct HsvPairs {
    Hsv left, right;
};
template <const StudioToBgr& kSet> inline HsvPairs FromYuyvWords(U32v words) {
    const auto less = [](U32v byte, uint32_t offset) { return ToFloat((I32v)(byte - offset)); };
    const F32v u = less((words >> 8) & 0xFF, 128), v = less(words >> 24, 128);
    const F32v blue = u * kSet.chroma.uToBlue, red = v * kSet.chroma.vToRed;
    const F32v green = v * kSet.chroma.vToGreen + u * kSet.chroma.uToGreen;
    return {FromSums(less(words & 0xFF, 16) * kSet.lumaScale, blue, green, red),
            FromSums(less((words >> 16) & 0xFF, 16) * kSet.lumaScale, blue, green, red)};
}

inline void StorePairs(float* to, F32v left, F32v right) {
    StoreEvenOdd(to, (U32v)left, (U32v)right);
}

template <const StudioToBgr& kSet>
inline void PlanesStep(const uint8_t* src, float* h, float* s, float* v) {
    const HsvPairs pairs = FromYuyvWords<kSet>(Load<U32v>(src));
    StorePairs(h, pairs.left.h, pairs.right.h);
    StorePairs(s, pairs.left.s, pairs.right.s);
    StorePairs(v, pairs.left.v, pairs.right.v);
}

template <const StudioToBgr& kSet>
void PlanesFromYuyv(const uint8_t* src, float* h, float* s, float* v, ptrdiff_t pairs) {
    ptrdiff_t i = 0;
    for (; i + kLanes32 <= pairs; i += kLanes32)
        PlanesStep<kSet>(src + 4 * i, h + 2 * i, s + 2 * i, v + 2 * i);
    if (i >= pairs) return;
    uint8_t last[4 * kLanes32] = {};
    Copy(last, src + 4 * i, 4 * (pairs - i));
    float planes[3][kPixels];
    PlanesStep<kSet>(last, planes[0], planes[1], planes[2]);
    Copy(h + 2 * i, planes[0], 8 * (pairs - i));
    Copy(s + 2 * i, planes[1], 8 * (pairs - i));
    Copy(v + 2 * i, planes[2], 8 * (pairs - i));
}

template <const StudioToBgr& kSet> void FromYuyv(const uint8_t* src, float* dst, ptrdiff_t pairs) {
    const auto step = [](const uint8_t* from, uint8_t* to) {
        float planes[3][kPixels];
        PlanesStep<kSet>(from, planes[0], planes[1], planes[2]);
        for (ptrdiff_t i = 0; i < kPixels; i += kLanes32)
            StoreFloatTriples(to + 12 * i, {Load<F32v>(planes[0] + i), Load<F32v>(planes[1] + i),
                                            Load<F32v>(planes[2] + i)});
    };
    InSteps<kLanes32, 4, 24>(src, reinterpret_cast<uint8_t*>(dst), pairs, step);
}

// The low byte of a value limited to `low` to `high`; NaN passes the limits and gives 0.
inline U32v LimitedByte(F32v value, float low, float high) {
    const F32v limited = value < low ? Splat(low) : value > high ? Splat(high) : value;
    return (U32v)Truncate(value == value ? limited : F32v{});
}

// Luma of kLanes32 pixels, and their U in the low and V in the high half of uv.
struct Studio {
    U32v y, uv;
};
template <const BgrToStudio& kSet> inline Studio ToStudio(const Hsv& hsv) {
    const Sector sector = SectorOf(hsv.h);
    const F32v c = hsv.v * hsv.s;
    const F32v bottom = hsv.v - c;
    const F32v e = sector.fraction * c;
    const F32v middle = IsOdd(sector.index) ? hsv.v - e : bottom + e;
    const Rgb<F32v> rgb = BySector(sector.index, hsv.v, bottom, middle);
    const F32v r = sector.valid ? rgb.r : F32v{};
    const F32v g = sector.valid ? rgb.g : F32v{};
    const F32v b = sector.valid ? rgb.b : F32v{};
    const F32v y = ((r * kSet.yFromRed + g * kSet.yFromGreen) + b * kSet.yFromBlue) + 0.5f + 16.0f;
    const F32v u =
        (b * kSet.chromaMain - (g * kSet.uFromGreen + r * kSet.uFromRed)) + 0.5f + 128.0f;
    const F32v v =
        ((r * kSet.chromaMain - g * kSet.vFromGreen) - b * kSet.vFromBlue) + 0.5f + 128.0f;
    return {LimitedByte(y, 16.0f, 235.0f),
            LimitedByte(u, 16.0f, 240.0f) | LimitedByte(v, 16.0f, 240.0f) << 16};
}

// first and second are the pixels of kLanes32 pairs in the order of memory.
template <const BgrToStudio& kSet> inline U32v YuyvWords(const Hsv& first, const Hsv& second) {
    const Studio a = ToStudio<kSet>(first), b = ToStudio<kSet>(second);
    U32v y[2] = {a.y, b.y}, uv[2] = {a.uv, b.uv};
    U32v y0, y1, uvLeft, uvRight;
    LoadEvenOdd(y, y0, y1);
    LoadEvenOdd(uv, uvLeft, uvRight);
    // The mean of the chroma bytes, a tie upwards.
    const U32v mean = (U32v)(((U16v)uvLeft + (U16v)uvRight + 1) >> 1);
    return y0 | y1 << 16 | mean << 8;
}

template <const BgrToStudio& kSet> void ToYuyv(const float* src, uint8_t* dst, ptrdiff_t pairs) {
    const auto step = [](const uint8_t* from, uint8_t* to) {
        const Hsv first = LoadFloatTriples(from);
        Store(to, YuyvWords<kSet>(first, LoadFloatTriples(from + 12 * kLanes32)));
    };
    InSteps<kLanes32, 24, 4>(reinterpret_cast<const uint8_t*>(src), dst, pairs, step);
}

template <const BgrToStudio& kSet>
void PlanesToYuyv(const float* h, const float* s, const float* v, uint8_t* dst, ptrdiff_t pairs) {
    const auto words = [](const float* hs, const float* ss, const float* vs) {
        return YuyvWords<kSet>(
            {Load<F32v>(hs), Load<F32v>(ss), Load<F32v>(vs)},
            {Load<F32v>(hs + kLanes32), Load<F32v>(ss + kLanes32), Load<F32v>(vs + kLanes32)});
    };
    ptrdiff_t i = 0;
    for (; i + kLanes32 <= pairs; i += kLanes32)
        Store(dst + 4 * i, words(h + 2 * i, s + 2 * i, v + 2 * i));
    if (i >= pairs) return;
    float last[3][kPixels] = {};
    Copy(last[0], h + 2 * i, 8 * (pairs - i));
    Copy(last[1], s + 2 * i, 8 * (pairs - i));
    Copy(last[2], v + 2 * i, 8 * (pairs - i));
    const U32v result = words(last[0], last[1], last[2]);
    Copy(dst + 4 * i, &result, 4 * (pairs - i));
}

}  // namespace

namespace tq::TQ_ISA {
const HsvFloatKernels hsvFloatKernels = {
    FromBgra,
    ToBgr,
    ToBgra,
    ToLimitedBgr,
    FromYuyv<kStudio601ToBgr>,
    FromYuyv<kStudio709ToBgr>,
    ToYuyv<kBgrToStudio601>,
    ToYuyv<kBgrToStudio709>,
    PlanesFromYuyv<kStudio601ToBgr>,
    PlanesFromYuyv<kStudio709ToBgr>,
    PlanesToYuyv<kBgrToStudio601>,
    PlanesToYuyv<kBgrToStudio709>,
};
}  // namespace tq::TQ_ISA
