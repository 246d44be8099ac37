#pragma once

// A zoom with its reference, and sizes to try it at.

#include <algorithm>
#include <cstdint>

#include "fuzz_check.h"

namespace tqfuzz {

struct ZoomForm {
    const char* name;
    void (*form)(int, int, int, unsigned char*, int, int, int, unsigned char*);
    void (*reference)(int, int, int, const uint8_t*, int, int, int, uint8_t*);
    int channels;
};

struct ZoomSizes {
    int srcWidth, srcHeight, dstWidth, dstHeight;
};

// Each side of the source may also be that of the destination, and sides may be empty.
inline ZoomSizes SizesAtRandom(Input& input) {
    const int dstWidth = input.Int(-1, 72), dstHeight = input.Int(-1, 24);
    const uint8_t kind = input.Byte();
    const int srcWidth = kind % 8 == 0 ? dstWidth : input.Int(-1, kind % 8 == 1 ? 200 : 70);
    const int srcHeight = kind / 8 % 8 == 0 ? dstHeight : input.Int(-1, 24);
    return {srcWidth, srcHeight, dstWidth, dstHeight};
}

inline void CheckZoom(Input& input, const ZoomForm& form, const ZoomSizes& s,
                      ImageKind srcKind = {}) {
    Stage stage(input);
    // A source without columns or rows may still be asked for its first.
    const int columns = s.srcWidth == 0 ? 1 : s.srcWidth, rows = s.srcHeight == 0 ? 1 : s.srcHeight;
    Image& src = stage.Add(columns * form.channels, rows, srcKind);
    Image& dst = stage.Add(s.dstWidth * form.channels, s.dstHeight);
    stage.Expect([&] {
        form.reference(s.srcWidth, s.srcHeight, src.Stride(), src.Model(), s.dstWidth, s.dstHeight,
                       dst.Stride(), dst.Model());
    });
    stage.Check(form.name, s.dstWidth, s.dstHeight, [&] {
        form.form(s.srcWidth, s.srcHeight, src.Stride(), src.Data(), s.dstWidth, s.dstHeight,
                  dst.Stride(), dst.Data());
    });
}

}  // namespace tqfuzz
