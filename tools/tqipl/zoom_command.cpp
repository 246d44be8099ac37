// tqipl zoom: a PNG file scaled by one of the library's methods.

#include <iostream>

#include "commands.h"
#include "machine.h"
#include "picture.h"
#include "png_file.h"
#include "stopwatch.h"
#include "text.h"
#include "zoom_methods.h"

namespace tqipl {

void RunZoom(const ZoomOptions& options) {
    const ZoomMethod& method = FindZoomMethod(options.method);
    const Size size = ParseSize(options.size);
    const Picture source = ReadPng(options.input);
    Picture result(size, source.channels);

    const ZoomForm plain = source.IsGrey() ? method.greyPlain : method.colourPlain;
    const ZoomForm multiThread =
        source.IsGrey() ? method.greyMultiThread : method.colourMultiThread;
    const bool single = options.single || multiThread == nullptr;
    const ZoomForm zoom = single ? plain : multiThread;
    const double taken = TimeOf([&] {
        zoom(source.size.width, source.size.height, source.Stride(), source.Source(), size.width,
             size.height, result.Stride(), result.bytes.data());
    });

    WritePng(options.output, result);
    std::cout << options.output << ": " << ToText(source.size) << " to " << ToText(size) << ", "
              << method.name << ", " << (single ? "plain form" : "MultiThread form") << ", "
              << Milliseconds(taken) << " (" << MachineSummary() << ")\n";
}

}  // namespace tqipl
