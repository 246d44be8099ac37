// Operations that change the size of frames or turn them over.

#include <TQIPLBaseLibU.h>

#include <algorithm>

#include "host_error.h"
#include "video/operations.h"
#include "zoom_methods.h"

namespace tqipl {

namespace {

constexpr FrameFormat kPlanarOrArgb[] = {FrameFormat::kYuvp422, FrameFormat::kYuvp444,
                                         FrameFormat::kGray8, FrameFormat::kArgb};
constexpr FrameFormat kPlanarOfBytes[] = {FrameFormat::kYuvp422, FrameFormat::kYuvp444,
                                          FrameFormat::kGray8};
constexpr FrameFormat kPlanar[] = {FrameFormat::kYuvp422, FrameFormat::kYuvp444,
                                   FrameFormat::kGray8, FrameFormat::kYuvp216};
constexpr FrameFormat kCroppable[] = {FrameFormat::kYuvp422, FrameFormat::kYuvp444,
                                      FrameFormat::kGray8, FrameFormat::kArgb,
                                      FrameFormat::kYuvp216};

// change(source plane, source, result plane, result) for each plane of frames that get another
// size.
template <class Change> OperationPointer Resize(Stream& stream, Size to, Change change) {
    const std::vector<PlaneShape> before = PlanesOf(stream.format, stream.size);
    const std::vector<PlaneShape> after = PlanesOf(stream.format, to);
    const FrameFormat format = stream.format;
    stream.size = to;
    return ForEachFrame([=, result = Frame()](Frame& frame) mutable {
        result.Fit(format, to);
        for (size_t i = 0; i < before.size(); ++i)
            change(before[i], frame.bytes.data() + before[i].offset, after[i],
                   result.bytes.data() + after[i].offset);
        std::swap(frame.bytes, result.bytes);
    });
}

// The shape of a pixel with which the whole picture keeps its shape on the screen.
void KeepDisplayAspect(Stream& stream, Size to) {
    if (stream.aspect.IsKnown())
        stream.aspect = Reduced(stream.aspect.over * stream.size.width * to.height,
                                stream.aspect.under * stream.size.height * to.width);
}

OperationPointer MakeZoom(Arguments& arguments, Stream& stream) {
    const Size to = arguments.ReadSize();
    const ZoomMethod& method = FindZoomMethod(arguments.Text("the method"));
    CheckFrameWidth(stream.format, to);
    KeepDisplayAspect(stream, to);
    const bool isColour = stream.format == FrameFormat::kArgb;
    const ZoomForm plain = isColour ? method.colourPlain : method.greyPlain;
    const ZoomForm multiThread = isColour ? method.colourMultiThread : method.greyMultiThread;
    const ZoomForm zoom = multiThread != nullptr ? multiThread : plain;
    return Resize(stream, to,
                  [zoom](const PlaneShape& from, unsigned char* src, const PlaneShape& into,
                         unsigned char* dst) {
                      zoom(from.width, from.height, from.rowBytes, src, into.width, into.height,
                           into.rowBytes, dst);
                  });
}

OperationPointer MakeHalf(Arguments&, Stream& stream) {
    const int group = KindOf(stream.format).sharesChroma ? 4 : 2;
    if (stream.size.width % group != 0 || stream.size.height % 2 != 0)
        throw UsageError("half of " + std::string(NameOf(stream)) +
                         " takes a width that is a multiple of " + std::to_string(group) +
                         " and an even height, not " + ToText(stream.size));
    const Size to{stream.size.width / 2, stream.size.height / 2};
    KeepDisplayAspect(stream, to);
    const bool isDeep = stream.format == FrameFormat::kYuvp216;
    return Resize(stream, to,
                  [isDeep](const PlaneShape& from, unsigned char* src, const PlaneShape& into,
                           unsigned char* dst) {
                      const auto width = static_cast<unsigned int>(from.width);
                      const auto height = static_cast<unsigned int>(from.height);
                      const auto srcStride = static_cast<unsigned int>(from.rowBytes);
                      const auto dstStride = static_cast<unsigned int>(into.rowBytes);
                      if (isDeep)
                          IPL_WaveletLL_53_C1_16u_MultiThread(width, height, srcStride, src,
                                                              dstStride, dst, 0, 65535);
                      else
                          IPL_WaveletLL_53_C1_MultiThread(width, height, srcStride, src, dstStride,
                                                          dst, 0, 255);
                  });
}

// Rows that were of one field are of the other one.
void SwapFields(Stream& stream) {
    if (stream.interlace == 't')
        stream.interlace = 'b';
    else if (stream.interlace == 'b')
        stream.interlace = 't';
}

// How many columns of the frame make one of the plane.
int Columns(Size size, const PlaneShape& plane) { return size.width / plane.width; }

void CheckPairs(const std::string& name, const Stream& stream, int left, int width) {
    if (KindOf(stream.format).sharesChroma && (left % 2 != 0 || width % 2 != 0))
        throw UsageError(name + ": pixels of " + NameOf(stream) +
                         " share their chroma by twos: columns must be even");
}

OperationPointer MakeCrop(Arguments& arguments, Stream& stream) {
    const Size to = arguments.ReadSize();
    const Size from = stream.size;
    const int left = arguments.Number("the left column", 0, from.width - 1);
    const int top = arguments.Number("the top row", 0, from.height - 1);
    if (left > from.width - to.width || top > from.height - to.height)
        throw UsageError("crop: " + ToText(to) + " from column " + std::to_string(left) +
                         " and row " + std::to_string(top) + " is not inside " + ToText(from));
    CheckPairs("crop", stream, left, to.width);
    if (top % 2 != 0) SwapFields(stream);
    return Resize(stream, to,
                  [=](const PlaneShape& shape, unsigned char* src, const PlaneShape& into,
                      unsigned char* dst) {
                      // 1 or 4 in 8-bit frames, 2 in those of 16 bits.
                      const int pixelBytes = shape.rowBytes / shape.width;
                      src += static_cast<size_t>(top) * static_cast<size_t>(shape.rowBytes) +
                             static_cast<size_t>(left / Columns(from, shape) * pixelBytes);
                      IPL_MemcpyMultiThread_C1R(into.rowBytes, into.height, shape.rowBytes, src,
                                                into.rowBytes, dst);
                  });
}

OperationPointer MakePad(Arguments& arguments, Stream& stream) {
    constexpr int kMost = 32768;
    const Size from = stream.size;
    const int left = arguments.Number("the left border", 0, kMost);
    const int top = arguments.Number("the top border", 0, kMost);
    const int right = arguments.Number("the right border", 0, kMost);
    const int bottom = arguments.Number("the bottom border", 0, kMost);
    const Size to{from.width + left + right, from.height + top + bottom};
    CheckSize(to);
    CheckPairs("pad", stream, left, to.width);
    if (top % 2 != 0) SwapFields(stream);
    return Resize(
        stream, to,
        [=](const PlaneShape& shape, unsigned char* src, const PlaneShape& into,
            unsigned char* dst) {
            const int columns = Columns(from, shape);
            IPL_MemcpyAndPadMultiThread_C1R(
                static_cast<unsigned int>(shape.width), static_cast<unsigned int>(shape.height),
                static_cast<unsigned int>(shape.rowBytes), src,
                static_cast<unsigned int>(into.rowBytes), dst,
                static_cast<unsigned int>(left / columns), static_cast<unsigned int>(top),
                static_cast<unsigned int>(right / columns), static_cast<unsigned int>(bottom));
        });
}

OperationPointer MakeFlip(Arguments&, Stream& stream) {
    // With an even number of rows the last one, which comes first, is of the other field.
    if (stream.size.height % 2 == 0) SwapFields(stream);
    const std::vector<PlaneShape> planes = PlanesOf(stream.format, stream.size);
    return ForEachFrame([planes](Frame& frame) {
        for (const PlaneShape& plane : planes)
            IPL_InvertImage_C1R(plane.rowBytes, plane.height, plane.rowBytes,
                                frame.bytes.data() + plane.offset);
    });
}

constexpr OperationKind kOperations[] = {
    {"zoom=WIDTHxHEIGHT:METHOD", "scaled; the methods are those of tqipl zoom", MaskRule::kRefuses,
     kPlanarOrArgb, MakeZoom},
    {"half", "half as wide and high, by the 5/3 wavelet's low band", MaskRule::kRefuses, kPlanar,
     MakeHalf},
    {"crop=WIDTHxHEIGHT:LEFT:TOP", "a part of the picture", MaskRule::kRefuses, kCroppable,
     MakeCrop},
    {"pad=LEFT:TOP:RIGHT:BOTTOM", "borders that repeat the picture's edges", MaskRule::kRefuses,
     kPlanarOfBytes, MakePad},
    {"flip", "upside down", MaskRule::kRefuses, {}, MakeFlip},
};

}  // namespace

std::span<const OperationKind> GeometryOperations() { return kOperations; }

}  // namespace tqipl
