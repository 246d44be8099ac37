// Masks beside the picture: made of its luma, cleaned, and put to use.

#include <TQIPLBaseLibU.h>

#include <algorithm>
#include <cstring>

#include "machine.h"
#include "video/operations.h"

namespace tqipl {

namespace {

constexpr FrameFormat kFormats[] = {FrameFormat::kYuvp422, FrameFormat::kYuvp444,
                                    FrameFormat::kGray8, FrameFormat::kArgb};

size_t PixelCount(Size size) {
    return static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
}

OperationPointer MakeThreshold(Arguments& arguments, Stream& stream) {
    const bool above = arguments.Choice({"above", "below"}) == "above";
    const int level = arguments.Number("the level", 0, 255);
    stream.hasMask = true;
    return ForEachFrame(
        [=, size = stream.size, isArgb = stream.format == FrameFormat::kArgb](Frame& frame) {
            frame.mask.resize(PixelCount(size));
            if (isArgb)
                IPL_ARGB2LUM_MultiThread(size.width, size.height, size.width * 4,
                                         frame.bytes.data(), size.width, frame.mask.data());
            else
                IPL_MemcpyMultiThread_C1R(size.width, size.height, size.width, frame.bytes.data(),
                                          size.width, frame.mask.data());
            for (uint8_t& value : frame.mask)
                value = (above ? value > level : value < level) ? 255 : 0;
        });
}

OperationPointer MakeRemoveSpecks(Arguments& arguments, Stream& stream) {
    const int most = arguments.Number("the number of pixels", 1, INT32_MAX);
    return ForEachFrame([most, size = stream.size](Frame& frame) {
        IPL_FCCLabelingDeNoise(size.width, size.height, size.width, frame.mask.data(), most);
    });
}

OperationPointer MakeFillHoles(Arguments& arguments, Stream& stream) {
    const auto most =
        static_cast<unsigned int>(arguments.Number("the number of pixels", 1, INT32_MAX));
    // With one processor the form on several threads leaves the mask as it is.
    const auto form =
        Processors() < 2 ? IPL_FCCLabelingDeNoiseEx2 : IPL_FCCLabelingDeNoiseEx2_MultiThread;
    return ForEachFrame([most, form, size = stream.size](Frame& frame) {
        const auto width = static_cast<unsigned int>(size.width);
        form(width, static_cast<unsigned int>(size.height), width, frame.mask.data(), most);
    });
}

using OneStep = void (*)(int width, int height, int stride, unsigned char* image, int radiusY,
                         int radiusX);
using TwoSteps = void (*)(int width, int height, int stride, unsigned char* image, int radiusY1,
                          int radiusX1, int radiusY2, int radiusX2);

template <TwoSteps form>
void Both(int width, int height, int stride, unsigned char* image, int radiusY, int radiusX) {
    form(width, height, stride, image, radiusY, radiusX, radiusY, radiusX);
}

template <OneStep plain, OneStep multiThread>
OperationPointer MakeMorphology(Arguments& arguments, Stream& stream) {
    constexpr int kMost = 1024;
    const int radiusY = arguments.Number("the radius", 0, kMost);
    const int radiusX =
        arguments.IsEmpty() ? radiusY : arguments.Number("the radius along rows", 0, kMost);
    // Bands of few rows see less than the plain form.
    const int rows = stream.size.height / static_cast<int>(Processors());
    const OneStep form = rows > radiusY ? multiThread : plain;
    return ForEachFrame([=, size = stream.size](Frame& frame) {
        form(size.width, size.height, size.width, frame.mask.data(), radiusY, radiusX);
    });
}

// Black is 16 in Y and 128 in U and V, and 0 in red, green and blue. A pair of pixels loses its
// chroma if both are outside the mask.
OperationPointer MakeKey(Arguments&, Stream& stream) {
    stream.hasMask = false;
    const bool isArgb = stream.format == FrameFormat::kArgb;
    return ForEachFrame([isArgb, planes = PlanesOf(stream.format, stream.size),
                         shares = KindOf(stream.format).sharesChroma](Frame& frame) {
        const std::vector<uint8_t>& mask = frame.mask;
        unsigned char* bytes = frame.bytes.data();
        if (isArgb) {
            for (size_t i = 0; i < mask.size(); ++i)
                if (mask[i] == 0) std::memset(bytes + i * 4, 0, 3);
            return;
        }
        for (size_t i = 0; i < mask.size(); ++i)
            if (mask[i] == 0) bytes[i] = 16;
        for (size_t plane = 1; plane < planes.size(); ++plane) {
            unsigned char* chroma = bytes + planes[plane].offset;
            if (shares) {
                for (size_t i = 0; i < mask.size() / 2; ++i)
                    if (mask[2 * i] == 0 && mask[2 * i + 1] == 0) chroma[i] = 128;
            } else {
                for (size_t i = 0; i < mask.size(); ++i)
                    if (mask[i] == 0) chroma[i] = 128;
            }
        }
    });
}

OperationPointer MakeMask(Arguments&, Stream& stream) {
    stream.hasMask = false;
    stream.format = FrameFormat::kGray8;
    return ForEachFrame([size = stream.size](Frame& frame) {
        frame.Fit(FrameFormat::kGray8, size);
        std::copy(frame.mask.begin(), frame.mask.end(), frame.bytes.begin());
    });
}

constexpr OperationKind kOperations[] = {
    {"threshold=LEVEL[:above|below]",
     "makes a mask of the pixels whose luma is above or below the level", MaskRule::kRefuses,
     kFormats, MakeThreshold},
    {"remove-specks=PIXELS",
     "clears regions of the mask with at most so many pixels, by labelling",
     MaskRule::kNeeds,
     {},
     MakeRemoveSpecks},
    {"fill-holes=PIXELS",
     "sets gaps in the mask with at most so many pixels, by labelling",
     MaskRule::kNeeds,
     {},
     MakeFillHoles},
    {"erosion=RADIUS[:ALONG]",
     "erodes the mask; the radius along rows may be another",
     MaskRule::kNeeds,
     {},
     MakeMorphology<IPL_FErosion, IPL_FErosion_MultiThread>},
    {"dilation=RADIUS[:ALONG]",
     "dilates the mask",
     MaskRule::kNeeds,
     {},
     MakeMorphology<IPL_FDilation, IPL_FDilation_MultiThread>},
    {"opening=RADIUS[:ALONG]",
     "erosion, then dilation of the mask",
     MaskRule::kNeeds,
     {},
     MakeMorphology<Both<IPL_FOpening>, Both<IPL_FOpening_MultiThread>>},
    {"closing=RADIUS[:ALONG]",
     "dilation, then erosion of the mask",
     MaskRule::kNeeds,
     {},
     MakeMorphology<Both<IPL_FClosing>, Both<IPL_FClosing_MultiThread>>},
    {"denoise=RADIUS[:ALONG]",
     "opening, then closing of the mask",
     MaskRule::kNeeds,
     {},
     MakeMorphology<IPL_FDeNoise, IPL_FDeNoise_MultiThread>},
    {"key", "makes black what is outside the mask", MaskRule::kNeeds, kFormats, MakeKey},
    {"mask", "puts the mask in the place of the picture, as gray8", MaskRule::kNeeds, {}, MakeMask},
};

}  // namespace

std::span<const OperationKind> MaskOperations() { return kOperations; }

}  // namespace tqipl
