// Copies, clears, fills, flips and copy-and-pad of images and of rectangles in them.

#include <tqipl/image_memory.h>
#include <tqipl/types.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "fuzz_check.h"
#include "reference/image_memory_reference.h"

namespace {

using tqfuzz::Image;
using tqfuzz::ImageKind;
using tqfuzz::Input;
using tqfuzz::Stage;

constexpr TQ_COLOR_FORMAT kFormats[] = {
    TQ_COLOR_ARGB,      TQ_COLOR_BGR24,     TQ_COLOR_AYUV,      TQ_COLOR_YUYV,
    TQ_COLOR_UYVY,      TQ_COLOR_PACKED32,  TQ_COLOR_YUVP_422,  TQ_COLOR_BGR10B,
    TQ_COLOR_V216,      TQ_COLOR_V210,      TQ_COLOR_BGR16B,    TQ_COLOR_GRAY8,
    TQ_COLOR_FORMAT(0), TQ_COLOR_FORMAT(2), TQ_COLOR_FORMAT(-1)};

struct Size {
    int width, height;
};
Size AnySize(Input& input) { return {input.Int(-2, 60), input.Int(-2, 20)}; }

TQ_RECT AnyRect(Input& input) {
    const int left = input.WildInt(-8, 64), top = input.WildInt(-8, 24);
    const int right = input.WildInt(-8, 64), bottom = input.WildInt(-8, 24);
    return {left, top, right, bottom};
}
bool operator==(const TQ_RECT& a, const TQ_RECT& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

std::string Text(const TQ_RECT& rect) {
    return std::to_string(rect.left) + " " + std::to_string(rect.top) + " " +
           std::to_string(rect.right) + " " + std::to_string(rect.bottom);
}

// The longest row that any routine makes of a format; rectangles begin four bytes a pixel from the
// left whatever the format is, and end behind the row.
int RowBytes(TQ_COLOR_FORMAT format, int width) {
    if (width < 1) return 0;
    return std::max(4 * width, static_cast<int>(tqref::CopiedRowBytes(format, width)));
}
int SlackOf(Size size) { return 4 * std::max(size.width, 0) * std::max(size.height, 0) + 1024; }

// ---- Two images ---------------------------------------------------------------------------------

using Rows = void (*)(int, int, int, unsigned char*, int, unsigned char*);
struct RowForm {
    const char* name;
    Rows plain, multiThread;
    int pixelBytes;
    bool inverted;
};
constexpr RowForm kRowForms[] = {
    {"IPL_Memcpy_C1R", IPL_Memcpy_C1R, IPL_MemcpyMultiThread_C1R, 1, false},
    {"IPL_Memcpy_C1R_16u", IPL_Memcpy_C1R_16u, IPL_MemcpyMultiThread_C1R_16u, 2, false},
    {"IPL_Memcpy_C4R", IPL_Memcpy_C4R, IPL_MemcpyMultiThread_C4R, 4, false},
    {"IPL_MemcpyInvert_CR1", IPL_MemcpyInvert_CR1, nullptr, 1, true},
    {"IPL_MemcpyInvert_CR4", IPL_MemcpyInvert_CR4, nullptr, 4, true}};

void CheckRows(Input& input, const RowForm& form) {
    const Size size = AnySize(input);
    Stage stage(input);
    const ImageKind kind = {.oneRow = true, .slack = 0};
    Image& src = stage.Add(form.pixelBytes * size.width, size.height, kind);
    Image& dst = stage.Add(form.pixelBytes * size.width, size.height, {.slack = 0});
    stage.Expect([&] {
        (form.inverted ? tqref::MemcpyRowsInverted : tqref::MemcpyRows)(
            int64_t{form.pixelBytes} * size.width, size.height, src.Stride(), src.ModelBytes(),
            dst.Stride(), dst.ModelBytes());
    });
    for (Rows function : {form.plain, form.multiThread})
        if (function != nullptr)
            stage.Check(form.name, size.width, size.height, [&] {
                function(size.width, size.height, src.Stride(), src.Data(), dst.Stride(),
                         dst.Data());
            });
}

void CheckCopyByFormat(Input& input) {
    const TQ_COLOR_FORMAT format = input.Pick(kFormats);
    const Size size = AnySize(input);
    const int width = size.width, height = size.height;
    const TQ_RECT rect = AnyRect(input);
    const int clearRest = input.Int(-1, 1);
    Stage stage(input);
    const ImageKind kind = {.slack = SlackOf(size)};
    Image& src = stage.Add(RowBytes(format, width), height, kind);
    Image& dst = stage.Add(RowBytes(format, width), height, kind);
    const auto check = [&](const char* name, auto reference, auto... forms) {
        stage.Expect([&] {
            if (width < 0 || height < 0) return;
            reference(format, width, height, src.Stride(), src.ModelBytes(), dst.Stride(),
                      dst.ModelBytes());
        });
        const auto run = [&](auto form) {
            stage.Check(name, width, height, [&] {
                form(format, width, height, src.Stride(), src.Data(), dst.Stride(), dst.Data());
            });
        };
        (run(forms), ...);
    };
    using Whole = void (*)(TQ_COLOR_FORMAT, int, int, int, unsigned char*, int, unsigned char*);
    using WholeReference =
        void (*)(TQ_COLOR_FORMAT, int, int, int, tqref::Bytes&, int, tqref::Bytes&);
    const auto with = [&](auto form) {
        return [&, form](TQ_COLOR_FORMAT f, int w, int h, int srcStride, auto&& from, int dstStride,
                         auto&& to) {
            form(f, w, h, srcStride, from, dstStride, to, rect, clearRest);
        };
    };
    using Cut =
        void (*)(TQ_COLOR_FORMAT, int, int, int, unsigned char*, int, unsigned char*, TQ_RECT, int);
    switch (input.Byte() % 4) {
        case 0:
            check("IPL_Memcpy by format", WholeReference(tqref::Memcpy), Whole(IPL_Memcpy),
                  Whole(IPL_MemcpyMultiThread));
            break;
        case 1:
            check("IPL_MemcpyInvert", tqref::MemcpyInvert, IPL_MemcpyInvert);
            break;
        case 2:
            check("IPL_MemcpyIn", with(tqref::MemcpyIn), with(Cut(IPL_MemcpyIn)));
            break;
        default:
            check("IPL_MemcpyOut", with(tqref::MemcpyOut), with(Cut(IPL_MemcpyOut)));
    }
}

// ---- One image ----------------------------------------------------------------------------------

// reference(image, rect) and form(first byte, rect); the rectangle comes back.
template <class Reference, class Form>
void CheckOne(Input& input, const char* name, int rowBytes, Size size, Reference makeReference,
              Form makeForm) {
    Stage stage(input);
    const TQ_RECT rect = AnyRect(input);
    Image& image = stage.Add(rowBytes, size.height, {.slack = SlackOf(size)});
    TQ_RECT expected = rect;
    // A size below 0 does nothing; there is no rectangle within it.
    const bool possible = size.width >= 0 && size.height >= 0;
    stage.Expect([&] {
        if (possible) makeReference(image.Stride(), image.ModelBytes(), expected);
    });
    stage.Check(name, size.width, size.height, [&] {
        TQ_RECT actual = rect;
        makeForm(image.Stride(), image.Data(), actual);
        if (possible && !(actual == expected))
            tqfuzz::Fail(name + (": of " + Text(rect) + " in ") + std::to_string(size.width) +
                         " x " + std::to_string(size.height) + " comes " + Text(actual) +
                         " and not " + Text(expected));
    });
}

void CheckClear(Input& input) {
    const TQ_COLOR_FORMAT format = input.Pick(kFormats);
    const Size size = AnySize(input);
    const int width = size.width, height = size.height, rowBytes = RowBytes(format, width);
    const auto rule = input.Flag() ? tqref::BlackPaint : tqref::ZeroPaint;
    const bool black = rule == tqref::BlackPaint;
    using Whole = void (*)(TQ_COLOR_FORMAT, int, int, int, unsigned char*);
    switch (input.Byte() % 3) {
        case 0:
            CheckOne(
                input, "IPL_ZeroMemory or IPL_BlackMemory by format", rowBytes, size,
                [&](int stride, tqref::Bytes& dst, TQ_RECT&) {
                    tqref::Clear(rule, format, width, height, stride, dst);
                },
                [&](int stride, uint8_t* dst, TQ_RECT&) {
                    (black ? Whole(IPL_BlackMemory) : Whole(IPL_ZeroMemory))(format, width, height,
                                                                             stride, dst);
                });
            break;
        case 1:
            CheckOne(
                input, "IPL_ZeroMemoryIn or IPL_BlackMemoryIn", rowBytes, size,
                [&](int stride, tqref::Bytes& dst, TQ_RECT& rect) {
                    tqref::ClearIn(rule, format, width, height, stride, dst, rect);
                },
                [&](int stride, uint8_t* dst, TQ_RECT& rect) {
                    (black ? IPL_BlackMemoryIn : IPL_ZeroMemoryIn)(format, width, height, stride,
                                                                   dst, rect);
                });
            break;
        default:
            CheckOne(
                input, "IPL_ZeroMemoryOut or IPL_BlackMemoryOut", rowBytes, size,
                [&](int stride, tqref::Bytes& dst, TQ_RECT& rect) {
                    tqref::ClearOut(rule, format, width, height, stride, dst, rect);
                },
                [&](int stride, uint8_t* dst, TQ_RECT& rect) {
                    (black ? IPL_BlackMemoryOut : IPL_ZeroMemoryOut)(format, width, height, stride,
                                                                     dst, rect);
                });
    }
}

void CheckFill(Input& input) {
    const int ratio = input.Flag() ? 4 : 1;
    const Size size = AnySize(input);
    const int width = size.width, height = size.height;
    const uint32_t word = input.Word(), value = ratio == 1 ? word & 255 : word;
    const auto byte = static_cast<uint8_t>(value);
    switch (input.Byte() % 5) {
        case 0:
            CheckOne(
                input, "IPL_FillMemory", ratio * width, size,
                [&](int stride, tqref::Bytes& dst, TQ_RECT&) {
                    tqref::FillMemory(ratio, width, height, stride, dst, value);
                },
                [&](int stride, uint8_t* dst, TQ_RECT&) {
                    if (ratio == 1)
                        IPL_FillMemory_C1R(width, height, stride, dst, byte);
                    else
                        IPL_FillMemory_C4R(width, height, stride, dst, value);
                });
            break;
        case 1:
            CheckOne(
                input, "IPL_FillMemoryIn", ratio * width, size,
                [&](int stride, tqref::Bytes& dst, TQ_RECT& rect) {
                    tqref::FillMemoryIn(ratio, width, height, stride, dst, rect, value);
                },
                [&](int stride, uint8_t* dst, TQ_RECT& rect) {
                    if (ratio == 1)
                        IPL_FillMemoryIn_C1R(width, height, stride, dst, rect, byte);
                    else
                        IPL_FillMemoryIn_C4R(width, height, stride, dst, rect, value);
                });
            break;
        case 2:
            CheckOne(
                input, "IPL_FillMemoryOut", ratio * width, size,
                [&](int stride, tqref::Bytes& dst, TQ_RECT& rect) {
                    tqref::FillMemoryOut(ratio, width, height, stride, dst, rect, value);
                },
                [&](int stride, uint8_t* dst, TQ_RECT& rect) {
                    if (ratio == 1)
                        IPL_FillMemoryOut_C1R(width, height, stride, dst, rect, byte);
                    else
                        IPL_FillMemoryOut_C4R(width, height, stride, dst, rect, value);
                });
            break;
        case 3:
            CheckOne(
                input, "IPL_ZeroMemory by rows", ratio * width, size,
                [&](int stride, tqref::Bytes& dst, TQ_RECT&) {
                    tqref::ZeroMemoryRows(int64_t{ratio} * width, height, stride, dst);
                },
                [&](int stride, uint8_t* dst, TQ_RECT&) {
                    (ratio == 1 ? IPL_ZeroMemory_C1R : IPL_ZeroMemory_C4R)(width, height, stride,
                                                                           dst);
                });
            break;
        default:
            CheckOne(
                input, "IPL_InvertImage", ratio * width, size,
                [&](int stride, tqref::Bytes& dst, TQ_RECT&) {
                    tqref::InvertImage(int64_t{ratio} * width, height, stride, dst);
                },
                [&](int stride, uint8_t* dst, TQ_RECT&) {
                    (ratio == 1 ? IPL_InvertImage_C1R : IPL_InvertImage_C4R)(width, height, stride,
                                                                             dst);
                });
    }
}

void CheckBlock(Input& input) {
    const TQ_COLOR_FORMAT format = input.Pick(kFormats);
    const int bytes = input.Int(-3, 250);
    Stage stage(input);
    Image& src = stage.Add(bytes, 1, {.slack = 0});
    Image& dst = stage.Add(bytes, 1, {.slack = 0});
    stage.Expect([&] { tqref::Memcpy(dst.ModelBytes(), src.ModelBytes(), bytes); });
    stage.Check("IPL_Memcpy", bytes, 1, [&] { IPL_Memcpy(dst.Data(), src.Data(), bytes); });
    stage.Expect([&] { tqref::ZeroMemory(dst.ModelBytes(), bytes); });
    stage.Check("IPL_ZeroMemory", bytes, 1, [&] { IPL_ZeroMemory(dst.Data(), bytes); });
    stage.Expect([&] { tqref::ZeroMemory(format, dst.ModelBytes(), bytes); });
    stage.Check("IPL_ZeroMemory of a block by format", bytes, 1,
                [&] { IPL_ZeroMemory(format, dst.Data(), bytes); });
}

void CheckPad(Input& input) {
    const int width = input.Int(0, 40), height = input.Int(0, 20);
    const int left = input.Int(0, 20), top = input.Int(0, 9);
    const int right = input.Int(0, 20), bottom = input.Int(0, 9);
    Stage stage(input);
    const ImageKind kind = {.bottomUp = false, .slack = 0};
    Image& src = stage.Add(width, height, kind);
    Image& dst = stage.Add(left + width + right, top + height + bottom, kind);
    stage.Expect([&] {
        tqref::MemcpyAndPad(width, height, src.Stride(), src.ModelBytes(), dst.Stride(),
                            dst.ModelBytes(), left, top, right, bottom);
    });
    for (auto form : {IPL_MemcpyAndPad_C1R, IPL_MemcpyAndPadMultiThread_C1R})
        stage.Check("IPL_MemcpyAndPad_C1R", width, height, [&] {
            form(width, height, src.Stride(), src.Data(), dst.Stride(), dst.Data(), left, top,
                 right, bottom);
        });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    tqfuzz::UseMachine(input);
    switch (input.Byte() % 8) {
        case 0:
            CheckRows(input, input.Pick(kRowForms));
            break;
        case 1:
            CheckBlock(input);
            break;
        case 2:
            CheckPad(input);
            break;
        case 3:
            CheckClear(input);
            break;
        case 4:
            CheckFill(input);
            break;
        default:
            CheckCopyByFormat(input);
    }
    return 0;
}
