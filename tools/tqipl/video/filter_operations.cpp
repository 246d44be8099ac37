// Filters of single channels.

#include <TQIPLBaseLibU.h>

#include <algorithm>

#include "planes.h"
#include "video/operations.h"

namespace tqipl {

namespace {

constexpr FrameFormat kFormats[] = {FrameFormat::kYuvp422, FrameFormat::kYuvp444,
                                    FrameFormat::kGray8, FrameFormat::kArgb};

// filter(width, height, src, dst) on dense planes, for Y, U and V, or blue, green and red. What a
// filter leaves unwritten keeps the source's values.
template <class Filter> OperationPointer FilterPlanes(Stream& stream, bool all, Filter filter) {
    const Size size = stream.size;
    const bool isArgb = stream.format == FrameFormat::kArgb;
    std::vector<PlaneShape> planes = PlanesOf(stream.format, size);
    if (isArgb) {
        const size_t bytes = static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
        planes.clear();
        for (size_t i = 0; i < 3; ++i)
            planes.push_back({size.width, size.height, size.width, i * bytes});
    } else if (!all) {
        planes.resize(1);
    }
    return ForEachFrame(
        [=, split = std::vector<uint8_t>(), result = std::vector<uint8_t>()](Frame& frame) mutable {
            std::vector<uint8_t>& source = isArgb ? split : frame.bytes;
            source.resize(frame.bytes.size());
            Planes before;
            if (isArgb) {
                unsigned char* next = split.data();
                for (int i = 0; i < 4; ++i) next = before.Add(next, size.width, size.height);
                IPL_SplitColorMultiThread(TQ_COLOR_ARGB, size.width, size.height, size.width * 4,
                                          frame.bytes.data(), before.strides, before.pointers);
            }
            result = source;
            for (const PlaneShape& plane : planes)
                filter(plane.width, plane.height, source.data() + plane.offset,
                       result.data() + plane.offset);
            if (!isArgb) return std::swap(frame.bytes, result);
            Planes after;
            unsigned char* next = result.data();
            for (int i = 0; i < 4; ++i) next = after.Add(next, size.width, size.height);
            IPL_BuildColorMultiThread(TQ_COLOR_ARGB, size.width, size.height, after.strides,
                                      after.pointers, size.width * 4, frame.bytes.data());
        });
}

bool TakeAll(Arguments& arguments) { return arguments.Choice({"all", "luma"}) == "all"; }

// The form on several threads goes on below the image into memory that nothing wrote. With 2 *
// radius rows more, which repeat the last one, that reaches no row of the picture.
class BilateralOnThreads {
public:
    BilateralOnThreads(int radius, int sigma) : m_radius(radius), m_sigma(sigma) {}

    void operator()(int width, int height, unsigned char* src, unsigned char* dst) {
        const int padded = height + 2 * m_radius;
        const size_t bytes = static_cast<size_t>(width) * static_cast<size_t>(padded);
        m_source.resize(bytes);
        m_result.resize(bytes);
        const auto stride = static_cast<unsigned int>(width);
        IPL_MemcpyAndPadMultiThread_C1R(stride, static_cast<unsigned int>(height), stride, src,
                                        stride, m_source.data(), 0, 0, 0,
                                        static_cast<unsigned int>(2 * m_radius));
        IPL_BilteralExMutiThread_8u_C1R(width, padded, width, m_source.data(), width,
                                        m_result.data(), m_radius, m_sigma);
        std::copy_n(m_result.data(), static_cast<size_t>(width) * static_cast<size_t>(height), dst);
    }

private:
    int m_radius;
    int m_sigma;
    std::vector<uint8_t> m_source;
    std::vector<uint8_t> m_result;
};

OperationPointer MakeBilateral(Arguments& arguments, Stream& stream) {
    const std::string form = arguments.Choice({"threads", "separable", "direct"});
    const bool all = arguments.Choice({"luma", "all"}) == "all";
    // From radius 5 on the sums of the direct form do not fit in 32 bits.
    const int radius = arguments.Number("the radius", 1, form == "direct" ? 4 : 64);
    const int sigma = arguments.Number("sigma", 1, 255);
    if (form == "threads") return FilterPlanes(stream, all, BilateralOnThreads(radius, sigma));
    const bool isDirect = form == "direct";
    return FilterPlanes(
        stream, all, [=](int width, int height, unsigned char* src, unsigned char* dst) {
            if (isDirect)
                IPL_Bilteral_8u_C1R(width, height, width, src, width, dst, radius, sigma);
            else
                IPL_BilteralEx_8u_C1R(width, height, width, src, width, dst, radius, sigma);
        });
}

// From a radius of about 50 on the sums do not fit in 32 bits.
OperationPointer MakeGauss(Arguments& arguments, Stream& stream) {
    const bool all = TakeAll(arguments);
    const int radius = arguments.Number("the radius", 1, 32);
    return FilterPlanes(stream, all,
                        [radius](int width, int height, unsigned char* src, unsigned char* dst) {
                            IPL_Gauss_8u_C1R(width, height, width, src, width, dst, radius);
                        });
}

OperationPointer MakeGauss3x3(Arguments& arguments, Stream& stream) {
    return FilterPlanes(stream, TakeAll(arguments),
                        [](int width, int height, unsigned char* src, unsigned char* dst) {
                            IPL_Gauss3x3_8u_C1R(width, height, width, src, width, dst);
                        });
}

OperationPointer MakeAverage(Arguments& arguments, Stream& stream) {
    const bool all = TakeAll(arguments);
    const int radius = arguments.Number("the radius", 1, 64);
    return FilterPlanes(stream, all,
                        [radius](int width, int height, unsigned char* src, unsigned char* dst) {
                            IPL_Average_8u_C1R(width, height, width, src, width, dst, radius);
                        });
}

OperationPointer MakeMedian(Arguments& arguments, Stream& stream) {
    const bool all = TakeAll(arguments);
    const int radius = arguments.Number("the radius", 1, 64);
    return FilterPlanes(stream, all,
                        [radius](int width, int height, unsigned char* src, unsigned char* dst) {
                            IPL_Median_8u_C1R(width, height, width, src, width, dst, radius);
                        });
}

OperationPointer MakeMedian3x3(Arguments& arguments, Stream& stream) {
    return FilterPlanes(stream, TakeAll(arguments),
                        [](int width, int height, unsigned char* src, unsigned char* dst) {
                            IPL_Median3x3_8u_C1R(width, height, width, src, width, dst);
                        });
}

OperationPointer MakeLowPass(Arguments& arguments, Stream& stream) {
    return FilterPlanes(stream, arguments.Choice({"luma", "all"}) == "all",
                        [](int width, int height, unsigned char*, unsigned char* dst) {
                            const auto stride = static_cast<unsigned int>(width);
                            IPL_WaveletFilter_53_C1(stride, static_cast<unsigned int>(height),
                                                    stride, dst);
                        });
}

constexpr OperationKind kOperations[] = {
    {"bilateral=RADIUS:SIGMA[:threads|separable|direct][:luma|all]",
     "less noise, edges stay; sigma is in grey levels", MaskRule::kLeaves, kFormats, MakeBilateral},
    {"gauss=RADIUS[:all|luma]", "Gauss of any radius, darker at the picture's edges",
     MaskRule::kLeaves, kFormats, MakeGauss},
    {"gauss3x3[=all|luma]", "Gauss of three by three pixels", MaskRule::kLeaves, kFormats,
     MakeGauss3x3},
    {"average=RADIUS[:all|luma]", "the mean of a square", MaskRule::kLeaves, kFormats, MakeAverage},
    {"median=RADIUS[:all|luma]", "the median of a square", MaskRule::kLeaves, kFormats, MakeMedian},
    {"median3x3[=all|luma]", "the median of three by three pixels", MaskRule::kLeaves, kFormats,
     MakeMedian3x3},
    {"lowpass[=luma|all]", "the low-pass of the 5/3 wavelet", MaskRule::kLeaves, kFormats,
     MakeLowPass},
};

}  // namespace

std::span<const OperationKind> FilterOperations() { return kOperations; }

}  // namespace tqipl
