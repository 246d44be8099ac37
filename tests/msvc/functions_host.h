// What the checks of functions_host share.
#pragma once

#include <TQIPLBaseLibU.h>

#include <cstring>

#include "runtime.h"

namespace host {

using Byte = unsigned char;

template <class T, size_t kCount>
void Expect(const T* actual, const T (&expected)[kCount], const char* what) {
    for (size_t i = 0; i < kCount; ++i) {
        if (!CheckEqual(static_cast<int64_t>(actual[i]), static_cast<int64_t>(expected[i]), what))
            return;
    }
}

inline void ExpectAll(const Byte* actual, size_t count, Byte expected, const char* what) {
    for (size_t i = 0; i < count; ++i) {
        if (!CheckEqual(actual[i], expected, what)) return;
    }
}

inline void ExpectSame(const void* left, const void* right, size_t size, const char* what) {
    Check(std::memcmp(left, right, size) == 0, what);
}

inline void ExpectNear(float actual, float expected, const char* what) {
    const float difference = actual - expected;
    Check(difference < 0.01f && difference > -0.01f, what);
}

// A picture of noise, and room for what comes of it, cleared to 1 with the picture.
const int kWidth = 36, kHeight = 24, kPixels = kWidth * kHeight;
extern Byte g_picture[kPixels * 4], g_left[kPixels * 24], g_right[kPixels * 24];
void MakePicture();

// The families' checks.
void Buffers();
void ImageMemory();
void Luminance();
void Packed422();
void Planar422();
void Hsv();
void Deep();
void Planes();
void Matrices();
void Zooms();
void Morphology();
void Labelling();
void Growth();
void Filters();
void Psnr();
void Wavelets();
void ProgressiveToInterlaced();
void Version();

}  // namespace host
