// tqipl zoom: a PNG file scaled by one of the library's methods.

#include <iostream>
#include <optional>
#include <string>

#include "commands.h"
#include "luminance.h"
#include "machine.h"
#include "picture.h"
#include "png_file.h"
#include "stopwatch.h"
#include "text.h"
#include "zoom_methods.h"

namespace tqipl {

namespace {

// The method's form for a picture of these channels.
class Scaler {
public:
    Scaler(const ZoomMethod& method, bool isGrey, bool wantsPlain) {
        const ZoomForm multiThread = isGrey ? method.greyMultiThread : method.colourMultiThread;
        m_isPlain = wantsPlain || multiThread == nullptr;
        m_zoom = !m_isPlain ? multiThread : isGrey ? method.greyPlain : method.colourPlain;
    }

    bool IsPlain() const { return m_isPlain; }

    void Scale(const Picture& source, Picture& result) const {
        m_zoom(source.size.width, source.size.height, source.Stride(), source.Source(),
               result.size.width, result.size.height, result.Stride(), result.bytes.data());
    }

private:
    ZoomForm m_zoom;
    bool m_isPlain;
};

// How close the result is to a picture. If that has another size the result is scaled to it first.
std::string Comparison(const Picture& result, const Picture& other, const Scaler& scaler) {
    std::string scaledTo;
    Picture same = result;
    if (result.size.width != other.size.width || result.size.height != other.size.height) {
        same = Picture(other.size, result.channels);
        scaler.Scale(result, same);
        scaledTo = " after scaling to " + ToText(other.size);
    }
    return Decibels(Psnr(LuminanceOf(other), LuminanceOf(same))) + scaledTo;
}

}  // namespace

void RunZoom(const ZoomOptions& options) {
    const ZoomMethod& method = FindZoomMethod(options.method);
    const Size size = ParseSize(options.size);
    const Picture source = ReadPng(options.input);
    std::optional<Picture> other;
    if (!options.compare.empty()) other = ReadPng(options.compare);

    Picture result(size, source.channels);
    const Scaler scaler(method, source.IsGrey(), options.single);
    const double taken = TimeOf([&] { scaler.Scale(source, result); });

    WritePng(options.output, result);
    std::cout << options.output << ": " << ToText(source.size) << " to " << ToText(size) << ", "
              << method.name << ", " << (scaler.IsPlain() ? "plain form" : "MultiThread form")
              << ", " << Milliseconds(taken) << " (" << MachineSummary() << ")\n";
    if (other)
        std::cout << "PSNR of the luminance against " << options.compare << ": "
                  << Comparison(result, *other, scaler) << "\n";
}

}  // namespace tqipl
