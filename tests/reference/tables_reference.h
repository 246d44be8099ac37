#pragma once

// The start-up tables computed a second time, one entry at a time and sharing nothing with frame/.
// Single precision, one statement for each operation: truncated entries depend on the order.

#include <cstdint>

namespace tqref {

// Toward zero: every value here fits.
inline int32_t TruncatedToInt(float x) { return static_cast<int32_t>(x); }

// Hue by the difference d of two channels and the spread x from 1 to 255: 42.5 steps to a sector,
// in 1024ths before the shift.
inline int HueMidEntry(int d, int x) {
    if (x == 0) return 0;
    const float scaled = static_cast<float>(d) * 43520.0f;
    const float hue = scaled / static_cast<float>(x);
    const float rounded = hue + 512.0f;
    return (TruncatedToInt(rounded) >> 10) + 85;
}

inline int HueWrapEntry(int d, int x) {
    if (x == 0) return 0;
    const float scaled = static_cast<float>(d) * 43520.0f;
    float hue = scaled / static_cast<float>(x);
    if (d < 0) hue = hue + 261120.0f;
    const float rounded = hue + 512.0f;
    return TruncatedToInt(rounded) >> 10;
}

// The product is an integer that may not fit the 24 bits of a float: its conversion rounds.
inline int SaturationEntry(int m, int x) {
    if (m == 0 || x == 0) return 0;
    const int product = m * 261120;
    const float scaled = static_cast<float>(product);
    const float saturation = scaled / static_cast<float>(x);
    const float rounded = saturation + 512.0f;
    return TruncatedToInt(rounded) >> 10;
}

inline int ValuePEntry(int v, int c) {
    const float saturation = static_cast<float>(c) / 255.0f;
    const float scaled = saturation * 1024.0f;
    const float rest = 1024.0f - scaled;
    const float value = rest * static_cast<float>(v);
    const float rounded = value + 512.0f;
    return TruncatedToInt(rounded) >> 10;
}

// How far hue h stands in its sector. The circle's end closes the last sector.
inline float SectorFraction(int h) {
    if (h == 255) return 1.0f;
    const float sector = static_cast<float>(h) / 42.5f;
    const int32_t whole = TruncatedToInt(sector);
    return sector - static_cast<float>(whole);
}

inline int ValueQEntry(int s, int h) {
    const float saturation = static_cast<float>(s) / 255.0f;
    const float fall = saturation * SectorFraction(h);
    const float rest = 1.0f - fall;
    const float scaled = rest * 1024.0f;
    const float rounded = scaled + 0.5f;
    return TruncatedToInt(rounded);
}

inline int ValueTEntry(int s, int h) {
    const float saturation = static_cast<float>(s) / 255.0f;
    const float remaining = 1.0f - SectorFraction(h);
    const float fall = remaining * saturation;
    const float rest = 1.0f - fall;
    const float scaled = rest * 1024.0f;
    const float rounded = scaled + 0.5f;
    return TruncatedToInt(rounded);
}

// In double precision, rounded once.
inline float SoftWeightEntry(int d) {
    if (d == 0) return 1.0f;
    const double distance = d < 0 ? -d : d;
    const double scaled = distance * 0.01;
    const double divisor = scaled + 1.0;
    const double weight = 1.0 / divisor;
    return static_cast<float>(weight);
}

inline float FiveTapKernel(float t) {
    if (t < 1.0f) {
        const float eleven = t * 11.0f;
        const float square = eleven * t;
        const float six = t * 6.0f;
        const float sixSquare = six * t;
        const float cube = sixSquare * t;
        const float falling = 5.0f - square;
        const float sum = falling + cube;
        return sum * 0.2f;
    }
    if (t < 2.0f) {
        const float linear = t * 27.0f;
        const float sixteen = t * 16.0f;
        const float square = sixteen * t;
        const float three = t * 3.0f;
        const float threeSquare = three * t;
        const float cube = threeSquare * t;
        const float falling = 14.0f - linear;
        const float rising = falling + square;
        const float sum = rising - cube;
        return sum * 0.2f;
    }
    if (t < 3.0f) {
        const float linear = t * 21.0f;
        const float eight = t * 8.0f;
        const float square = eight * t;
        const float one = t * t;
        const float cube = one * t;
        const float rising = linear - 18.0f;
        const float falling = rising - square;
        const float sum = falling + cube;
        return sum * 0.2f;
    }
    return 0.0f;
}

// Five taps in 1024ths. What truncation loses goes to the tap nearest the position.
inline void FiveTapRow(int r, int (&taps)[5]) {
    const float odd = static_cast<float>(2 * r + 1);
    const float t = odd * 0.001953125f;
    const float a = FiveTapKernel(t + 2.0f);
    const float b = FiveTapKernel(t + 1.0f);
    const float c = FiveTapKernel(t);
    const float d = FiveTapKernel(1.0f - t);
    const float e = FiveTapKernel(2.0f - t);
    float sum = a + 0.0f;
    sum = sum + b;
    sum = sum + c;
    sum = sum + d;
    sum = sum + e;
    const auto tap = [sum](float weight) {
        const float share = weight / sum;
        const float scaled = share * 1024.0f;
        return TruncatedToInt(scaled);
    };
    taps[0] = tap(a);
    taps[1] = tap(b);
    taps[4] = tap(e);
    if (t <= 0.5f) {
        taps[3] = tap(d);
        taps[2] = 1024 - taps[4] - taps[3] - taps[1] - taps[0];
    } else {
        taps[2] = tap(c);
        taps[3] = 1024 - taps[2] - taps[4] - taps[1] - taps[0];
    }
}

// Rows for Y, U, V of factors for Y, U, V, in 4096ths.
inline constexpr int k709x601[3][3] = {{4096, 417, 804}, {4, 4053, -453}, {0, -292, 4028}};
inline constexpr int k601x709[3][3] = {{4096, -484, -872}, {-4, 4173, 470}, {0, 303, 4198}};
inline constexpr int k2020x709[3][3] = {{4096, 72, -380}, {0, 4112, 208}, {0, -46, 4082}};
inline constexpr int k709x2020[3][3] = {{4096, -68, 0}, {0, 4076, 0}, {0, 46, 4096}};

}  // namespace tqref
