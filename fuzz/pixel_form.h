#pragma once

// Conversions with one source and one destination, whose strides the destination's elements count.

#include <cstdint>

#include "fuzz_check.h"

namespace tqfuzz {

// A group is what is converted together: a pixel, or some that share chroma.
template <class Dst> struct PixelForm {
    const char* name;
    void (*plain)(int, int, int, unsigned char*, int, Dst*);
    void (*multiThread)(int, int, int, unsigned char*, int, Dst*);  // or null
    void (*reference)(int, int, int, const uint8_t*, int, Dst*);
    int groupPixels, srcGroup, dstGroup;
};

template <class Dst> void CheckPixelForm(Input& input, const PixelForm<Dst>& form) {
    constexpr int kUnit = sizeof(Dst);
    const int width = input.Int(-3, 100), height = input.Int(-2, 34);
    const int groups = width / form.groupPixels;
    Stage stage(input);
    Image& src = stage.Add(groups * form.srcGroup, height, {.oneRow = true});
    Image& dst =
        stage.Add((width + form.groupPixels - 1) / form.groupPixels * form.dstGroup * kUnit, height,
                  {.unit = kUnit});
    stage.Expect([&] {
        form.reference(width, height, src.Stride(), src.Model(), dst.Stride(kUnit),
                       dst.template ModelAs<Dst>());
    });
    for (auto function : {form.plain, form.multiThread})
        if (function != nullptr)
            stage.Check(form.name, width, height, [&] {
                function(width, height, src.Stride(), src.Data(), dst.Stride(kUnit),
                         dst.template DataAs<Dst>());
            });
}

}  // namespace tqfuzz
