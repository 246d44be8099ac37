// Copies, clears, fills, flips and copy-and-pad. None has kernels of its own: one row for each
// form, not one for each level. Rectangles are the middle quarter of the image.

#include <tqipl/image_memory.h>

#include <string>

#include "bench/families.h"
#include "bench/support/rows.h"
#include "reference/image_memory_reference.h"

namespace tqbench {

namespace {

using tqref::Bytes;

// A form as it reads in the report: its name, and its pixel format where it takes one.
struct Format {
    const char* suffix;
    TQ_COLOR_FORMAT value;
};
constexpr Format kArgb = {":ARGB", TQ_COLOR_ARGB};
constexpr Format kAyuv = {":AYUV", TQ_COLOR_AYUV};
constexpr Format kYuyv = {":YUYV", TQ_COLOR_YUYV};
constexpr Format kYuvp422 = {":YUVP_422", TQ_COLOR_YUVP_422};
constexpr Format kV210 = {":V210", TQ_COLOR_V210};
constexpr Format kBgr16b = {":BGR16B", TQ_COLOR_BGR16B};
constexpr Format kGray8 = {":GRAY8", TQ_COLOR_GRAY8};

int RowBytes(TQ_COLOR_FORMAT format, int width) {
    if (format == TQ_COLOR_YUVP_422) return 2 * width;
    return static_cast<int>(tqref::CopiedRowBytes(format, width));
}

// plain and multiThread take (src, dst), reference takes them as Bytes.
template <class Plain, class MultiThread, class Reference>
void Add(const std::string& name, const std::string& multiThreadName, Size size, int64_t srcBytes,
         int64_t dstBytes, Plain plain, MultiThread multiThread, Reference reference) {
    AddForm({.name = name,
             .multiThreadName = multiThreadName,
             .size = ToString(size),
             .srcSize = size,
             .dstSize = size,
             .srcBytes = srcBytes,
             .dstBytes = dstBytes,
             .hasKernels = false,
             .plain = plain,
             .multiThread = multiThread,
             .reference = [=](uint8_t* src, uint8_t* dst) {
                 Bytes srcBytesOf(src), dstBytesOf(dst);
                 reference(srcBytesOf, dstBytesOf);
             }});
}

template <class Plain, class Reference>
void Add(const std::string& name, Size size, int64_t srcBytes, int64_t dstBytes, Plain plain,
         Reference reference) {
    Add(name, "", size, srcBytes, dstBytes, plain, Call(), reference);
}

void AddCopies(Size size) {
    const int w = size.width, h = size.height;
    const int64_t pixels = size.Pixels();

    Add(
        "IPL_Memcpy:block", size, 4 * pixels, 4 * pixels,
        [=](uint8_t* src, uint8_t* dst) { IPL_Memcpy(dst, src, 4 * w * h); },
        [=](Bytes& src, Bytes& dst) { tqref::Memcpy(dst, src, 4 * w * h); });

    using RowForm = void (*)(int, int, int, unsigned char*, int, unsigned char*);
    const struct {
        const char *name, *multiThreadName;
        RowForm plain, multiThread;
        int pixelBytes;
    } copies[] = {
        {"IPL_Memcpy_C1R", "IPL_MemcpyMultiThread_C1R", IPL_Memcpy_C1R, IPL_MemcpyMultiThread_C1R,
         1},
        {"IPL_Memcpy_C1R_16u", "IPL_MemcpyMultiThread_C1R_16u", IPL_Memcpy_C1R_16u,
         IPL_MemcpyMultiThread_C1R_16u, 2},
        {"IPL_Memcpy_C4R", "IPL_MemcpyMultiThread_C4R", IPL_Memcpy_C4R, IPL_MemcpyMultiThread_C4R,
         4},
    };
    for (const auto& copy : copies) {
        const int row = w * copy.pixelBytes;
        auto on = [=](RowForm form) {
            return [=](uint8_t* src, uint8_t* dst) { form(w, h, row, src, row, dst); };
        };
        Add(copy.name, copy.multiThreadName, size, int64_t{row} * h, int64_t{row} * h,
            on(copy.plain), on(copy.multiThread),
            [=](Bytes& src, Bytes& dst) { tqref::MemcpyRows(row, h, row, src, row, dst); });
    }

    for (const Format& format : {kArgb, kYuyv, kYuvp422, kV210, kBgr16b, kGray8}) {
        const TQ_COLOR_FORMAT value = format.value;
        const int row = RowBytes(value, w);
        Add(
            std::string("IPL_Memcpy") + format.suffix,
            std::string("IPL_MemcpyMultiThread") + format.suffix, size, int64_t{row} * h,
            int64_t{row} * h,
            [=](uint8_t* src, uint8_t* dst) { IPL_Memcpy(value, w, h, row, src, row, dst); },
            [=](uint8_t* src, uint8_t* dst) {
                IPL_MemcpyMultiThread(value, w, h, row, src, row, dst);
            },
            [=](Bytes& src, Bytes& dst) { tqref::Memcpy(value, w, h, row, src, row, dst); });
    }
}

void AddFlips(Size size) {
    const int w = size.width, h = size.height;

    const struct {
        const char* name;
        void (*form)(int, int, int, unsigned char*, int, unsigned char*);
        int pixelBytes;
    } flips[] = {{"IPL_MemcpyInvert_CR1", IPL_MemcpyInvert_CR1, 1},
                 {"IPL_MemcpyInvert_CR4", IPL_MemcpyInvert_CR4, 4}};
    for (const auto& flip : flips) {
        const int row = w * flip.pixelBytes;
        Add(
            flip.name, size, int64_t{row} * h, int64_t{row} * h,
            [=](uint8_t* src, uint8_t* dst) { flip.form(w, h, row, src, row, dst); },
            [=](Bytes& src, Bytes& dst) { tqref::MemcpyRowsInverted(row, h, row, src, row, dst); });
    }

    for (const Format& format : {kArgb, kYuyv, kGray8}) {
        const TQ_COLOR_FORMAT value = format.value;
        const int row = RowBytes(value, w);
        Add(
            std::string("IPL_MemcpyInvert") + format.suffix, size, int64_t{row} * h,
            int64_t{row} * h,
            [=](uint8_t* src, uint8_t* dst) { IPL_MemcpyInvert(value, w, h, row, src, row, dst); },
            [=](Bytes& src, Bytes& dst) { tqref::MemcpyInvert(value, w, h, row, src, row, dst); });
    }

    // In place: what is written is read as well.
    const struct {
        const char* name;
        void (*form)(int, int, int, unsigned char*);
        int pixelBytes;
    } inPlace[] = {{"IPL_InvertImage_C1R", IPL_InvertImage_C1R, 1},
                   {"IPL_InvertImage_C4R", IPL_InvertImage_C4R, 4}};
    for (const auto& flip : inPlace) {
        const int row = w * flip.pixelBytes;
        Add(
            flip.name, size, int64_t{row} * h, int64_t{row} * h,
            [=](uint8_t*, uint8_t* dst) { flip.form(w, h, row, dst); },
            [=](Bytes&, Bytes& dst) { tqref::InvertImage(row, h, row, dst); });
    }
}

TQ_RECT Middle(Size size) {
    return {size.width / 4, size.height / 4, size.width * 3 / 4, size.height * 3 / 4};
}

int64_t PixelsOf(TQ_RECT rect) {
    return int64_t{rect.right - rect.left} * (rect.bottom - rect.top);
}

void AddRectangleCopies(Size size) {
    const int w = size.width, h = size.height;
    const TQ_RECT rect = Middle(size);
    const int64_t all = size.Pixels(), inside = PixelsOf(rect), outside = all - inside;

    Add(
        "IPL_MemcpyIn", size, 4 * inside, 4 * all,
        [=](uint8_t* src, uint8_t* dst) { IPL_MemcpyIn(w, h, 4 * w, src, 4 * w, dst, rect, 1); },
        [=](Bytes& src, Bytes& dst) {
            tqref::MemcpyIn(TQ_COLOR_ARGB, w, h, 4 * w, src, 4 * w, dst, rect, 1);
        });
    Add(
        "IPL_MemcpyOut", size, 4 * outside, 4 * all,
        [=](uint8_t* src, uint8_t* dst) { IPL_MemcpyOut(w, h, 4 * w, src, 4 * w, dst, rect, 1); },
        [=](Bytes& src, Bytes& dst) {
            tqref::MemcpyOut(TQ_COLOR_ARGB, w, h, 4 * w, src, 4 * w, dst, rect, 1);
        });
    Add(
        "IPL_MemcpyIn:YUYV", size, 2 * inside, 2 * all,
        [=](uint8_t* src, uint8_t* dst) {
            IPL_MemcpyIn(TQ_COLOR_YUYV, w, h, 2 * w, src, 2 * w, dst, rect, 1);
        },
        [=](Bytes& src, Bytes& dst) {
            tqref::MemcpyIn(TQ_COLOR_YUYV, w, h, 2 * w, src, 2 * w, dst, rect, 1);
        });
    Add(
        "IPL_MemcpyOut:YUYV", size, 2 * outside, 2 * all,
        [=](uint8_t* src, uint8_t* dst) {
            IPL_MemcpyOut(TQ_COLOR_YUYV, w, h, 2 * w, src, 2 * w, dst, rect, 1);
        },
        [=](Bytes& src, Bytes& dst) {
            tqref::MemcpyOut(TQ_COLOR_YUYV, w, h, 2 * w, src, 2 * w, dst, rect, 1);
        });
}

void AddClears(Size size) {
    const int w = size.width, h = size.height;
    const int64_t all = size.Pixels();

    Add(
        "IPL_ZeroMemory:block", size, 0, 4 * all,
        [=](uint8_t*, uint8_t* dst) { IPL_ZeroMemory(dst, 4 * w * h); },
        [=](Bytes&, Bytes& dst) { tqref::ZeroMemory(dst, 4 * w * h); });
    Add(
        "IPL_ZeroMemory_C1R", size, 0, all,
        [=](uint8_t*, uint8_t* dst) { IPL_ZeroMemory_C1R(w, h, w, dst); },
        [=](Bytes&, Bytes& dst) { tqref::ZeroMemoryRows(w, h, w, dst); });
    Add(
        "IPL_ZeroMemory_C4R", size, 0, 4 * all,
        [=](uint8_t*, uint8_t* dst) { IPL_ZeroMemory_C4R(w, h, 4 * w, dst); },
        [=](Bytes&, Bytes& dst) { tqref::ZeroMemoryRows(4 * w, h, 4 * w, dst); });
    Add(
        "IPL_ZeroMemory:YUYV_block", size, 0, 2 * all,
        [=](uint8_t*, uint8_t* dst) { IPL_ZeroMemory(TQ_COLOR_YUYV, dst, 2 * w * h); },
        [=](Bytes&, Bytes& dst) { tqref::ZeroMemory(TQ_COLOR_YUYV, dst, 2 * w * h); });

    const struct {
        const char* name;
        void (*form)(TQ_COLOR_FORMAT, int, int, int, unsigned char*);
        void (*inside)(TQ_COLOR_FORMAT, int, int, int, unsigned char*, TQ_RECT&);
        void (*outside)(TQ_COLOR_FORMAT, int, int, int, unsigned char*, TQ_RECT&);
        tqref::PaintRule rule;
    } clears[] = {
        {"IPL_ZeroMemory", IPL_ZeroMemory, IPL_ZeroMemoryIn, IPL_ZeroMemoryOut, tqref::ZeroPaint},
        {"IPL_BlackMemory", IPL_BlackMemory, IPL_BlackMemoryIn, IPL_BlackMemoryOut,
         tqref::BlackPaint},
    };
    for (const auto& clear : clears)
        for (const Format& format : {kArgb, kAyuv, kYuyv, kGray8}) {
            const TQ_COLOR_FORMAT value = format.value;
            const int row = w * tqref::PixelRatio(value);
            const TQ_RECT middle = Middle(size);
            // What a clear writes is not the format's row size for every format.
            const int64_t written = clear.rule(value, w).rowBytes * h;
            const int64_t writtenInside = clear.rule(value, middle.right - middle.left).rowBytes *
                                          (middle.bottom - middle.top);
            auto with = [=](auto form) {
                return [=](uint8_t*, uint8_t* dst) {
                    TQ_RECT rect = middle;
                    form(value, w, h, row, dst, rect);
                };
            };
            Add(
                std::string(clear.name) + format.suffix, size, 0, written,
                [=](uint8_t*, uint8_t* dst) { clear.form(value, w, h, row, dst); },
                [=](Bytes&, Bytes& dst) { tqref::Clear(clear.rule, value, w, h, row, dst); });
            Add(std::string(clear.name) + "In" + format.suffix, size, 0, writtenInside,
                with(clear.inside), [=](Bytes&, Bytes& dst) {
                    TQ_RECT rect = middle;
                    tqref::ClearIn(clear.rule, value, w, h, row, dst, rect);
                });
            Add(std::string(clear.name) + "Out" + format.suffix, size, 0, written - writtenInside,
                with(clear.outside), [=](Bytes&, Bytes& dst) {
                    TQ_RECT rect = middle;
                    tqref::ClearOut(clear.rule, value, w, h, row, dst, rect);
                });
        }
}

// The fills of one pixel size; Value is how the forms take the constant.
template <class Value> struct Fills {
    const char *name, *insideName, *outsideName;
    void (*whole)(int, int, int, unsigned char*, Value);
    void (*inside)(int, int, int, unsigned char*, TQ_RECT&, Value);
    void (*outside)(int, int, int, unsigned char*, TQ_RECT&, Value);
    int pixelBytes;
    Value value;
};

template <class Value> void AddFills(Size size, const Fills<Value>& fills) {
    const int w = size.width, h = size.height;
    const int ratio = fills.pixelBytes, row = w * ratio;
    const TQ_RECT middle = Middle(size);
    const auto value = static_cast<uint32_t>(fills.value);
    const int64_t all = size.Pixels() * ratio, inside = PixelsOf(middle) * ratio;
    auto with = [=](auto form) {
        return [=, value = fills.value](uint8_t*, uint8_t* dst) {
            TQ_RECT rect = middle;
            form(w, h, row, dst, rect, value);
        };
    };
    Add(
        fills.name, size, 0, all,
        [=](uint8_t*, uint8_t* dst) { fills.whole(w, h, row, dst, fills.value); },
        [=](Bytes&, Bytes& dst) { tqref::FillMemory(ratio, w, h, row, dst, value); });
    Add(fills.insideName, size, 0, inside, with(fills.inside), [=](Bytes&, Bytes& dst) {
        TQ_RECT rect = middle;
        tqref::FillMemoryIn(ratio, w, h, row, dst, rect, value);
    });
    Add(fills.outsideName, size, 0, all - inside, with(fills.outside), [=](Bytes&, Bytes& dst) {
        TQ_RECT rect = middle;
        tqref::FillMemoryOut(ratio, w, h, row, dst, rect, value);
    });
}

void AddPads(Size size) {
    const unsigned w = static_cast<unsigned>(size.width), h = static_cast<unsigned>(size.height);
    constexpr unsigned kPad = 16;
    const unsigned frameRow = w + 2 * kPad;
    auto on = [=](auto form) {
        return [=](uint8_t* src, uint8_t* dst) {
            form(w, h, w, src, frameRow, dst, kPad, kPad, kPad, kPad);
        };
    };
    Add("IPL_MemcpyAndPad_C1R", "IPL_MemcpyAndPadMultiThread_C1R", size, size.Pixels(),
        int64_t{frameRow} * (h + 2 * kPad), on(IPL_MemcpyAndPad_C1R),
        on(IPL_MemcpyAndPadMultiThread_C1R), [=](Bytes& src, Bytes& dst) {
            tqref::MemcpyAndPad(w, h, w, src, frameRow, dst, kPad, kPad, kPad, kPad);
        });
}

}  // namespace

void AddImageMemory() {
    for (const Size size : kSizes) {
        AddCopies(size);
        AddFlips(size);
        AddRectangleCopies(size);
        AddClears(size);
        AddFills<unsigned char>(
            size, {"IPL_FillMemory_C1R", "IPL_FillMemoryIn_C1R", "IPL_FillMemoryOut_C1R",
                   IPL_FillMemory_C1R, IPL_FillMemoryIn_C1R, IPL_FillMemoryOut_C1R, 1, 0x5A});
        AddFills<unsigned long>(
            size, {"IPL_FillMemory_C4R", "IPL_FillMemoryIn_C4R", "IPL_FillMemoryOut_C4R",
                   IPL_FillMemory_C4R, IPL_FillMemoryIn_C4R, IPL_FillMemoryOut_C4R, 4, 0x12345678});
        AddPads(size);
    }
}

}  // namespace tqbench
