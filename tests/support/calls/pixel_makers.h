#pragma once

// Makers of calls that several families share.

#include "support/calls/form_calls.h"

namespace tqtest {

// Rows of V210, whose bytes do not go by the pixel.
inline constexpr int kV210 = 0;
inline int RowOf(int width, int pixelBytes) {
    return pixelBytes == kV210 ? (width + 47) / 48 * 128 : width * pixelBytes;
}

// One source and one destination; the elements of a destination's pixel are bytes, ints or floats,
// and some more may be written behind each of its rows.
inline auto PixelMaker(int srcBytes, int dstElements, int behind = 0) {
    return [=]<class Dst>(void (*form)(int, int, int, unsigned char*, int, Dst*)) {
        return [=](CallFrame& f) -> Call {
            const int w = f.Width(), h = f.Height();
            const auto src = f.Image(RowOf(w, srcBytes), h);
            const auto dst = f.Image<Dst>(RowOf(w, dstElements) + behind, h);
            return [=] { form(w, h, src.stride, src.first, dst.stride, dst.first); };
        };
    };
}

}  // namespace tqtest

#define TQ_CALL(table, form, maker) table.Add(#form, form, maker)
#define TQ_CALL_OF(table, Type, form, maker) table.Add(#form, static_cast<Type*>(form), maker)
#define TQ_PAIR(table, form, suffix, maker) \
    table.AddPair(#form, form, #form #suffix, form##suffix, maker)
