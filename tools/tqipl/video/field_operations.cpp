// Operations between frames and fields.

#include <TQIPLBaseLibU.h>

#include "host_error.h"
#include "video/frame_conversion.h"
#include "video/operations.h"

namespace tqipl {

namespace {

constexpr FrameFormat kOfBytes[] = {FrameFormat::kUyvy,    FrameFormat::kYuyv,
                                    FrameFormat::kYuvp422, FrameFormat::kYuvp444,
                                    FrameFormat::kGray8,   FrameFormat::kArgb};
// Planar 4:2:2 is packed for it: the form for four bytes limits chroma to no luma's range.
constexpr FrameFormat kSoftened[] = {FrameFormat::kUyvy,    FrameFormat::kYuyv,
                                     FrameFormat::kYuvp444, FrameFormat::kGray8,
                                     FrameFormat::kArgb,    FrameFormat::kYuvp216};

void CheckHeight(const std::string& name, const Stream& stream, int least) {
    if (stream.size.height < least || stream.size.height % 2 != 0)
        throw UsageError(name + " takes an even height of at least " + std::to_string(least) +
                         ", not " + std::to_string(stream.size.height));
}

// Fields to frames, each by the one routine for bytes: rows are not mixed along, so that packed
// rows are as good as planes.
class Deinterlace : public Operation {
public:
    Deinterlace(const Stream& stream, bool bottomFirst, bool both)
        : m_format(stream.format),
          m_size(stream.size),
          m_planes(PlanesOf(stream.format, stream.size)),
          m_bottomFirst(bottomFirst),
          m_both(both) {}

    void Take(Frame& frame, const Emit& emit) override {
        m_top.Fit(m_format, m_size);
        m_bottom.Fit(m_format, m_size);
        for (const PlaneShape& plane : m_planes) {
            unsigned char* field = frame.bytes.data() + plane.offset;
            IPL_Deinterlace_8u_C1R(plane.rowBytes, plane.height / 2, plane.rowBytes * 2, field,
                                   plane.rowBytes * 2, field + plane.rowBytes, plane.rowBytes,
                                   m_top.bytes.data() + plane.offset, plane.rowBytes,
                                   m_bottom.bytes.data() + plane.offset);
        }
        frame.parameters.clear();
        for (const bool bottom : {m_bottomFirst, !m_bottomFirst}) {
            std::swap(frame.bytes, (bottom ? m_bottom : m_top).bytes);
            emit(frame);
            if (!m_both) return;
            frame.Fit(m_format, m_size);
        }
    }

private:
    FrameFormat m_format;
    Size m_size;
    std::vector<PlaneShape> m_planes;
    bool m_bottomFirst;
    bool m_both;
    Frame m_top;
    Frame m_bottom;
};

OperationPointer MakeDeinterlace(Arguments& arguments, Stream& stream) {
    const bool both = arguments.Choice({"double", "single"}) == "double";
    const std::string order = arguments.Choice({"", "top", "bottom"});
    CheckHeight("deinterlace", stream, 4);
    if (stream.interlace == 'p' && order.empty())
        throw UsageError(
            "deinterlace: the frames are progressive, says the stream; say which "
            "field is first, as in --op deinterlace=top, if they are not");
    if (both) stream.rate = Reduced(stream.rate.over * 2, stream.rate.under);
    const bool bottomFirst = order.empty() ? stream.interlace == 'b' : order == "bottom";
    stream.interlace = 'p';
    return std::make_unique<Deinterlace>(stream, bottomFirst, both);
}

// The progressive-to-interlaced form for a frame format.
class Softener {
public:
    explicit Softener(const Stream& stream)
        : m_format(stream.format),
          m_size(stream.size),
          m_planes(PlanesOf(stream.format, stream.size)) {}

    // All rows, or every second one; these go to the same places in dst.
    void Run(EVXR_P2I_MODE mode, unsigned char* src, unsigned char* dst) {
        if (m_format == FrameFormat::kYuvp444) {
            m_packed.Fit(FrameFormat::kArgb, m_size);
            m_result.Fit(FrameFormat::kArgb, m_size);
            PackVuyt(m_size, src, m_packed.bytes.data());
            Rows(IPL_P2I_Wavelet53_MultiThread_C4R, m_size.width, m_size.width * 4, mode,
                 m_packed.bytes.data(), m_result.bytes.data());
            UnpackVuyt(m_size, m_result.bytes.data(), dst);
            return;
        }
        for (const PlaneShape& plane : m_planes) {
            const auto run = [&](auto form, int width) {
                Rows(form, width, plane.rowBytes, mode, src + plane.offset, dst + plane.offset);
            };
            if (m_format == FrameFormat::kGray8)
                run(IPL_P2I_Wavelet53_MultiThread_C1R, plane.width);
            else if (m_format == FrameFormat::kYuvp216)
                run(IPL_P2I_Wavelet53_MultiThread_C1R_16u, plane.width);
            else  // four bytes are a pixel, or a pair of pixels
                run(IPL_P2I_Wavelet53_MultiThread_C4R, plane.rowBytes / 4);
        }
    }

private:
    template <class Form>
    void Rows(Form form, int width, int rowBytes, EVXR_P2I_MODE mode, unsigned char* src,
              unsigned char* dst) const {
        const auto stride = static_cast<unsigned int>(rowBytes);
        form(static_cast<unsigned int>(width), static_cast<unsigned int>(m_size.height), stride,
             src, mode == EVXR_P2I_FRAME ? stride : stride * 2,
             mode == EVXR_P2I_BOTTOM_FIELD ? dst + rowBytes : dst, mode);
    }

    FrameFormat m_format;
    Size m_size;
    std::vector<PlaneShape> m_planes;
    Frame m_packed;
    Frame m_result;
};

// Two frames to the two fields of one.
class Interlace : public Operation {
public:
    Interlace(const Stream& stream, bool bottomFirst)
        : m_format(stream.format),
          m_size(stream.size),
          m_softener(stream),
          m_first(bottomFirst ? EVXR_P2I_BOTTOM_FIELD : EVXR_P2I_TOP_FIELD),
          m_second(bottomFirst ? EVXR_P2I_TOP_FIELD : EVXR_P2I_BOTTOM_FIELD) {}

    void Take(Frame& frame, const Emit& emit) override {
        if (!m_isHeld) {
            m_isHeld = true;
            std::swap(m_held.bytes, frame.bytes);
            return;
        }
        Weave(m_held, frame, emit);
        std::swap(m_held.bytes, frame.bytes);
        m_isHeld = false;
    }

    // Of an odd number of frames the last one gives both fields.
    void Finish(const Emit& emit) override {
        if (m_isHeld) Weave(m_held, m_held, emit);
    }

private:
    void Weave(Frame& first, Frame& second, const Emit& emit) {
        m_woven.Fit(m_format, m_size);
        m_softener.Run(m_first, first.bytes.data(), m_woven.bytes.data());
        m_softener.Run(m_second, second.bytes.data(), m_woven.bytes.data());
        emit(m_woven);
    }

    FrameFormat m_format;
    Size m_size;
    Softener m_softener;
    EVXR_P2I_MODE m_first;
    EVXR_P2I_MODE m_second;
    bool m_isHeld = false;
    Frame m_held;
    Frame m_woven;
};

OperationPointer MakeInterlace(Arguments& arguments, Stream& stream) {
    const bool bottomFirst = arguments.Choice({"top", "bottom"}) == "bottom";
    CheckHeight("p2i", stream, 4);
    if (stream.interlace == 't' || stream.interlace == 'b')
        throw UsageError(
            "p2i makes interlaced frames of progressive ones, and these are "
            "interlaced; put --op deinterlace before it");
    stream.rate = Reduced(stream.rate.over, stream.rate.under * 2);
    stream.interlace = bottomFirst ? 'b' : 't';
    return std::make_unique<Interlace>(stream, bottomFirst);
}

OperationPointer MakeSoften(Arguments&, Stream& stream) {
    if (stream.size.height < 3)
        throw UsageError("soften takes a height of at least 3, not " +
                         std::to_string(stream.size.height));
    return ForEachFrame([format = stream.format, size = stream.size, softener = Softener(stream),
                         result = Frame()](Frame& frame) mutable {
        result.Fit(format, size);
        softener.Run(EVXR_P2I_FRAME, frame.bytes.data(), result.bytes.data());
        std::swap(frame.bytes, result.bytes);
    });
}

constexpr OperationKind kOperations[] = {
    {"deinterlace[=double|single][:top|bottom]",
     "a frame of each field, or of the first one; the order of fields where the stream does not "
     "say it",
     MaskRule::kRefuses, kOfBytes, MakeDeinterlace},
    {"p2i[=top|bottom]",
     "progressive to interlaced: one field of each frame, two frames to one, softened against "
     "flicker; which field is first",
     MaskRule::kRefuses, kSoftened, MakeInterlace},
    {"soften", "the same softening of whole frames", MaskRule::kLeaves, kSoftened, MakeSoften},
};

}  // namespace

std::span<const OperationKind> FieldOperations() { return kOperations; }

}  // namespace tqipl
