// Zooms up and down by every method.

#include <algorithm>

#include "demo/sections.h"
#include "zoom_methods.h"

namespace tqipl {

namespace {

struct Target {
    const char* id;
    const char* title;
    Size size;
};

std::vector<Target> Targets(Size from) {
    std::vector<Target> targets;
    const Size twice{from.width * 2, from.height * 2};
    if (!IsTooLarge(twice)) targets.push_back({"2x", "twice the size", twice});
    targets.push_back(
        {"half", "half the size", {std::max(from.width / 2, 1), std::max(from.height / 2, 1)}});
    targets.push_back({"odd", "an odd size", {from.width * 5 / 7 | 1, from.height * 5 / 7 | 1}});
    return targets;
}

TimedForm Form(const Picture& source, Size size, ZoomForm zoom) {
    if (zoom == nullptr) return {};
    return [&source, size, zoom](unsigned char* result) {
        return TimeOf([&] {
            zoom(source.size.width, source.size.height, source.Stride(), source.Source(),
                 size.width, size.height, size.width * 4, result);
        });
    };
}

}  // namespace

std::vector<Exhibit> ZoomExhibits(const Sample& sample) {
    const Picture& source = sample.colour;
    std::vector<Exhibit> exhibits;
    for (const Target& target : Targets(source.size)) {
        for (const ZoomMethod& method : ZoomMethods()) {
            Exhibit zoom;
            zoom.id = std::string("zoom-") + method.name + "-" + target.id;
            zoom.title = std::string(method.title) + ", " + target.title;
            zoom.caption =
                ToText(source.size) + " to " + ToText(target.size) + ": " + method.character + ".";
            zoom.routine = method.routine;
            zoom.view = View::kDetail;
            zoom.make = [&source, &method, size = target.size] {
                return MeasurePicture(size, source.channels, Form(source, size, method.colourPlain),
                                      Form(source, size, method.colourMultiThread));
            };
            exhibits.push_back(zoom);
        }
    }
    return exhibits;
}

}  // namespace tqipl
