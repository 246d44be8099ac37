// Calls of a function by its type, on the same contents for every build; the bytes that it leaves
// are printed as one line "name hash".
#pragma once

#include <TQIPLBaseLibU.h>

#include "runtime.h"

namespace host {

using Byte = unsigned char;
using Word = unsigned int;
using Strides = CTQArray<int, int>;
using Planes = CTQArray<Byte*, Byte*>;
using Rects = CTQArray<TQ_RECT, TQ_RECT&>;

// Of every image. A row has room for 48 pixels of eight bytes.
const int kWidth = 48, kHeight = 20, kStride = 384;
const int kImageBytes = 1 << 15;

// Four images, written anew before each call: as bytes and ints in whole, as floats from the start.
struct Frame {
    alignas(16) Byte bytes[4][kImageBytes];
    float floats[4][kImageBytes / 4];
    int ints[kImageBytes / 4];
};
Frame& Images();

enum class Content { kPicture, kMask };

// Fills the images; then Print prints the name and a hash of all that they hold.
class Line {
public:
    explicit Line(const char* name, Content content = Content::kPicture);
    ~Line();
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    void Add(const void* data, size_t size);
    // Of this image only the first `rows` rows take part, without `edge` columns on either side:
    // what else a routine leaves there is not defined.
    void OnlyInside(int image, int edge, int rows);

private:
    const char* m_name;
    uint64_t m_hash;
    bool m_skipped[4] = {};
};

inline void Run(const char* name, void (*form)(int, int, int, Byte*, int, Byte*)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0], kStride, Images().bytes[1]);
}
inline void Run(const char* name, void (*form)(int, int, Byte*, int, Byte*)) {
    Line line(name);
    form(kWidth, kHeight, Images().bytes[0], kStride, Images().bytes[1]);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, Byte*)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0], Images().bytes[1]);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, int, Byte*, int)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0], kStride, Images().bytes[1], 2);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, int, Byte*, int, int)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0], kStride, Images().bytes[1], 2, 3);
}
inline void Run(const char* name,
                void (*form)(int, int, int, Byte*, int, Byte*, int, int, int, int)) {
    Line line(name, Content::kMask);
    form(kWidth, kHeight, kStride, Images().bytes[0], kStride, Images().bytes[1], 1, 2, 2, 1);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0]);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, Byte)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0], 0xC3);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, unsigned long)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0], 0x81234567ul);
}
inline void Run(const char* name, void (*form)(Byte*, Byte*, int)) {
    Line line(name);
    form(Images().bytes[0], Images().bytes[1], 1001);
}
inline void Run(const char* name, void (*form)(Byte*, int)) {
    Line line(name);
    form(Images().bytes[0], 1001);
}
inline void Run(const char* name, void (*form)(TQ_COLOR_FORMAT, Byte*, int)) {
    Line line(name);
    form(TQ_COLOR_AYUV, Images().bytes[0], 1001);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, int)) {
    Line line(name, Content::kMask);
    form(kWidth, kHeight, kStride, Images().bytes[0], 3);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, int, int)) {
    Line line(name, Content::kMask);
    form(kWidth, kHeight, kStride, Images().bytes[0], 1, 2);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, int, int, int, int)) {
    Line line(name, Content::kMask);
    form(kWidth, kHeight, kStride, Images().bytes[0], 1, 2, 2, 1);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, int, int*)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0], kStride, Images().ints);
}
inline void Run(const char* name, void (*form)(int, int, int, int*, int, Byte*)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().ints, kStride, Images().bytes[0]);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, int, Byte*, int, Byte*)) {
    Line line(name);
    Frame& f = Images();
    form(kWidth, kHeight, kStride, f.bytes[0], kStride, f.bytes[1], kStride, f.bytes[2]);
}
inline void Run(const char* name,
                void (*form)(int, int, int, Byte*, int, Byte*, int, Byte*, int, Byte*)) {
    Line line(name);
    Frame& f = Images();
    form(kWidth, kHeight, kStride, f.bytes[0], kStride, f.bytes[1], kStride, f.bytes[2], kStride,
         f.bytes[3]);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, int, Byte*, TQ_COLOR_MATRIX)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0], kStride, Images().bytes[1],
         TQ_COLOR_MATRIX_709);
}

// Zooms: larger, and smaller.
inline void Run(const char* name, void (*form)(int, int, int, Byte*, int, int, int, Byte*)) {
    Line line(name);
    Frame& f = Images();
    form(20, 16, kStride, f.bytes[0], 47, 37, kStride, f.bytes[1]);
    form(48, 32, kStride, f.bytes[0], 21, 13, kStride, f.bytes[2]);
}

// HSV in floats.
inline void Run(const char* name,
                void (*form)(int, int, int, Byte*, int, float*, int, float*, int, float*)) {
    Line line(name);
    Frame& f = Images();
    form(kWidth, kHeight, kStride, f.bytes[0], kStride, f.floats[0], kStride, f.floats[1], kStride,
         f.floats[2]);
}
inline void Run(const char* name,
                void (*form)(int, int, int, float*, int, float*, int, float*, int, Byte*)) {
    Line line(name);
    Frame& f = Images();
    form(kWidth, kHeight, kStride, f.floats[0], kStride, f.floats[1], kStride, f.floats[2], kStride,
         f.bytes[0]);
}
inline void Run(const char* name, void (*form)(int, int, int, float*, int, float*, int, float*, int,
                                               float*, int, Byte*)) {
    Line line(name);
    Frame& f = Images();
    form(kWidth, kHeight, kStride, f.floats[0], kStride, f.floats[1], kStride, f.floats[2], kStride,
         f.floats[3], kStride, f.bytes[0]);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, int, float*)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0], kStride, Images().floats[0]);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, float*)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0], Images().floats[0]);
}
inline void Run(const char* name, void (*form)(int, int, int, float*, int, Byte*)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().floats[0], kStride, Images().bytes[0]);
}
inline void Run(const char* name, void (*form)(int, int, float*, int, Byte*)) {
    Line line(name);
    form(kWidth, kHeight, Images().floats[0], kStride, Images().bytes[0]);
}

// Planes behind arrays.
struct PlaneArrays {
    PlaneArrays() {
        for (int i = 1; i < 4; ++i) {
            strides.Add(kStride);
            planes.Add(Images().bytes[i]);
        }
    }
    Strides strides;
    Planes planes;
};
inline void Run(const char* name, void (*form)(int, int, int, Byte*, Strides&, Planes&)) {
    Line line(name);
    PlaneArrays arrays;
    form(kWidth, kHeight, kStride, Images().bytes[0], arrays.strides, arrays.planes);
}
inline void Run(const char* name, void (*form)(int, int, Strides&, Planes&, int, Byte*)) {
    Line line(name);
    PlaneArrays arrays;
    form(kWidth, kHeight, arrays.strides, arrays.planes, kStride, Images().bytes[0]);
}
inline void Run(const char* name,
                void (*form)(TQ_COLOR_FORMAT, int, int, int, Byte*, Strides&, Planes&)) {
    Line line(name);
    PlaneArrays arrays;
    form(TQ_COLOR_ARGB, kWidth, kHeight, kStride, Images().bytes[0], arrays.strides, arrays.planes);
}
inline void Run(const char* name,
                void (*form)(TQ_COLOR_FORMAT, int, int, Strides&, Planes&, int, Byte*)) {
    Line line(name);
    PlaneArrays arrays;
    form(TQ_COLOR_ARGB, kWidth, kHeight, arrays.strides, arrays.planes, kStride, Images().bytes[0]);
}

// Formats and rectangles.
inline void Run(const char* name, void (*form)(TQ_COLOR_FORMAT, int, int, int, Byte*)) {
    Line line(name);
    form(TQ_COLOR_UYVY, kWidth, kHeight, kStride, Images().bytes[0]);
    form(TQ_COLOR_AYUV, kWidth, kHeight, kStride, Images().bytes[1]);
}
inline void Run(const char* name, void (*form)(TQ_COLOR_FORMAT, int, int, int, Byte*, int, Byte*)) {
    Line line(name);
    Frame& f = Images();
    form(TQ_COLOR_UYVY, kWidth, kHeight, kStride, f.bytes[0], kStride, f.bytes[1]);
    form(TQ_COLOR_GRAY8, kWidth, kHeight, kStride, f.bytes[0], kStride, f.bytes[2]);
}
inline void Run(const char* name,
                void (*form)(int, int, TQ_COLOR_FORMAT, int, Byte*, TQ_COLOR_FORMAT, int, Byte*)) {
    Line line(name);
    form(kWidth, kHeight, TQ_COLOR_UYVY, kStride, Images().bytes[0], TQ_COLOR_AYUV, kStride,
         Images().bytes[1]);
}
inline void Run(const char* name,
                void (*form)(TQ_COLOR_FORMAT, int, int, int, Byte*, int, Byte*, TQ_RECT, int)) {
    Line line(name);
    form(TQ_COLOR_UYVY, kWidth, kHeight, kStride, Images().bytes[0], kStride, Images().bytes[1],
         TQ_RECT{4, 3, 30, 99}, 1);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, int, Byte*, TQ_RECT, int)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0], kStride, Images().bytes[1],
         TQ_RECT{-4, 3, 30, 11}, 0);
}
template <class... Values>
void RunIn(const char* name, void (*form)(int, int, int, Byte*, TQ_RECT&, Values...),
           Values... values) {
    Line line(name);
    TQ_RECT rect = {4, -3, 30, 99};
    form(kWidth, kHeight, kStride, Images().bytes[0], rect, values...);
    line.Add(&rect, sizeof rect);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, TQ_RECT&, Byte)) {
    RunIn<Byte>(name, form, 0xA5);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, TQ_RECT&, unsigned long)) {
    RunIn<unsigned long>(name, form, 0x81234567ul);
}
inline void Run(const char* name, void (*form)(TQ_COLOR_FORMAT, int, int, int, Byte*, TQ_RECT&)) {
    Line line(name);
    TQ_RECT rect = {4, -3, 30, 99};
    form(TQ_COLOR_UYVY, kWidth, kHeight, kStride, Images().bytes[0], rect);
    line.Add(&rect, sizeof rect);
}

// Labelling.
inline void AddRects(Line& line, Rects& rects) {
    line.Add(&rects.m_nSize, sizeof rects.m_nSize);
    line.Add(rects.m_pData, static_cast<size_t>(rects.GetSize()) * sizeof(TQ_RECT));
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, Rects*, int)) {
    Line line(name, Content::kMask);
    Rects rects;
    form(kWidth, kHeight, kStride, Images().bytes[0], &rects, 4);
    AddRects(line, rects);
}
inline void Run(const char* name, void (*form)(int, int, int, Byte*, Byte*, Rects*, int)) {
    Line line(name, Content::kMask);
    Rects rects;
    form(kWidth, kHeight, kStride, Images().bytes[0], Images().bytes[1], &rects, 4);
    AddRects(line, rects);
}
inline void Run(const char* name, void (*form)(Word, Word, Word, Byte*, Word)) {
    Line line(name, Content::kMask);
    form(kWidth, kHeight, kStride, Images().bytes[0], 3);
}
inline void Run(const char* name, void (*form)(Word, Word, Word, Byte*, Word, Byte*, Word)) {
    Line line(name, Content::kMask);
    form(kWidth, kHeight, kStride, Images().bytes[0], kStride, Images().bytes[1], 3);
}

// Wavelets and padding.
inline void Run(const char* name, void (*form)(Word, Word, Word, Byte*)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0]);
}
inline void Run(const char* name, void (*form)(Word, Word, Word, Byte*, Word, Byte*, Byte, Byte)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0], kStride, Images().bytes[1], 40, 200);
}
inline void Run(const char* name, void (*form)(Word, Word, Word, Byte*, Word, Byte*, unsigned short,
                                               unsigned short)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0], kStride, Images().bytes[1], 10000, 50000);
}
inline void Run(const char* name,
                void (*form)(Word, Word, Word, Byte*, Word, Byte*, EVXR_P2I_MODE)) {
    Line line(name);
    Frame& f = Images();
    form(kWidth, kHeight, kStride, f.bytes[0], kStride, f.bytes[1], EVXR_P2I_BOTTOM_FIELD);
    form(kWidth, kHeight, kStride, f.bytes[0], kStride, f.bytes[2], EVXR_P2I_FRAME);
}
inline void Run(const char* name,
                void (*form)(Word, Word, Word, Byte*, Word, Byte*, Word, Word, Word, Word)) {
    Line line(name);
    form(kWidth, kHeight, kStride, Images().bytes[0], kStride, Images().bytes[1], 1, 2, 3, 4);
}

}  // namespace host
