// Zooms up and down by every method.

#include <TQIPLBaseLibU.h>

#include <algorithm>
#include <utility>

#include "demo/sections.h"
#include "luminance.h"
#include "zoom_methods.h"

namespace tqipl {

namespace {

constexpr int kFactor = 4;

struct Target {
    const char* id;
    const char* title;
    Size size;
    MadeFor direction;
};

std::vector<Target> Targets(Size from) {
    std::vector<Target> targets;
    const Size twice{from.width * 2, from.height * 2};
    if (!IsTooLarge(twice)) targets.push_back({"2x", "twice the size", twice, MadeFor::kEnlarging});
    targets.push_back({"half",
                       "half the size",
                       {std::max(from.width / 2, 1), std::max(from.height / 2, 1)},
                       MadeFor::kReducing});
    targets.push_back({"odd",
                       "an odd size",
                       {from.width * 5 / 7 | 1, from.height * 5 / 7 | 1},
                       MadeFor::kReducing});
    return targets;
}

// What a method leaves to another one has the other's picture.
bool HasOwnPicture(const ZoomMethod& method, MadeFor direction) {
    return method.madeFor == MadeFor::kAllSizes || method.madeFor == direction;
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

Picture Zoomed(const Picture& source, Size size, ZoomForm zoom) {
    Picture result(size, source.channels);
    Form(source, size, zoom)(result.bytes.data());
    return result;
}

Shown MeasureZoom(const Picture& source, Size size, const ZoomMethod& method) {
    Shown shown = MeasurePicture(size, source.channels, Form(source, size, method.colourPlain),
                                 Form(source, size, method.colourMultiThread));
    if (!shown.timing.sameBytes) shown.timing.notCompared = method.mayDiffer;
    return shown;
}

float LuminancePsnr(const Picture& first, const Picture& second) {
    return Psnr(LuminanceOf(first), LuminanceOf(second));
}

Size QuarterOf(Size size) { return {size.width / kFactor, size.height / kFactor}; }

// The part of a picture that is a whole number of times as large as its quarter.
Picture WholeQuarters(const Picture& source) {
    const Size quarter = QuarterOf(source.size);
    Picture part({quarter.width * kFactor, quarter.height * kFactor}, source.channels);
    IPL_Memcpy_C1R(part.Stride(), part.size.height, source.Stride(), source.Source(), part.Stride(),
                   part.bytes.data());
    return part;
}

Picture ReducedToQuarter(const Picture& picture) {
    return Zoomed(picture, QuarterOf(picture.size), FindZoomMethod("super").colourPlain);
}

Shown ShowQuarter(const Picture& source, const ZoomMethod& method) {
    const Picture original = WholeQuarters(source);
    Shown shown = MeasureZoom(original, QuarterOf(original.size), method);
    const ZoomMethod& back = FindZoomMethod("six-cubic");
    const Picture again = Zoomed(shown.picture, original.size, back.colourPlain);
    shown.remark = std::string("Enlarged again by ") + back.name + ": " +
                   Decibels(LuminancePsnr(again, original)) + ".";
    return shown;
}

Shown ShowEnlarged(const Picture& source, const ZoomMethod& method) {
    const Picture original = WholeQuarters(source);
    const Picture quarter = ReducedToQuarter(original);
    Shown shown = MeasureZoom(quarter, original.size, method);
    shown.remark = Decibels(LuminancePsnr(shown.picture, original));
    if (shown.timing.notCompared != nullptr) {
        const Picture other = Zoomed(quarter, original.size, method.colourMultiThread);
        shown.remark += ", MultiThread " + Decibels(LuminancePsnr(other, original));
    }
    shown.remark += ".";
    return shown;
}

Shown ShowOriginal(const Picture& source) {
    Shown shown;
    shown.timing.byHost = true;
    shown.timing.plainMs = TimeOf([&] { shown.picture = WholeQuarters(source); });
    return shown;
}

void AddFourTimes(const Picture& source, std::vector<Exhibit>& exhibits) {
    const Size quarter = QuarterOf(source.size);
    if (quarter.width < 1 || quarter.height < 1) return;
    const Size whole{quarter.width * kFactor, quarter.height * kFactor};
    for (const char* name : {"linear", "super"}) {
        const ZoomMethod& method = FindZoomMethod(name);
        Exhibit reduced;
        reduced.id = std::string("zoom-") + name + "-quarter";
        reduced.title = std::string(method.title) + ", a quarter of the size";
        reduced.caption = ToText(whole) + " to " + ToText(quarter) + ": " + method.character + ".";
        reduced.routine = method.routine;
        reduced.view = View::kDetail;
        reduced.make = [&source, &method] { return ShowQuarter(source, method); };
        exhibits.push_back(reduced);
    }
    Exhibit original;
    original.id = "zoom-original";
    original.title = "Before any zoom";
    original.caption = "What the next pictures would be if the quarter had kept everything.";
    original.view = View::kDetail;
    original.make = [&source] { return ShowOriginal(source); };
    exhibits.push_back(original);
    for (const ZoomMethod& method : ZoomMethods()) {
        if (!HasOwnPicture(method, MadeFor::kEnlarging)) continue;
        Exhibit enlarged;
        enlarged.id = std::string("zoom-") + method.name + "-4x";
        enlarged.title = std::string(method.title) + ", four times";
        enlarged.caption =
            "From the quarter by super back to " + ToText(whole) + ": " + method.character + ".";
        enlarged.routine = method.routine;
        enlarged.view = View::kDetail;
        enlarged.make = [&source, &method] { return ShowEnlarged(source, method); };
        exhibits.push_back(enlarged);
    }
}

}  // namespace

std::vector<Exhibit> ZoomExhibits(const Sample& sample) {
    const Picture& source = sample.colour;
    std::vector<Exhibit> exhibits;
    AddFourTimes(source, exhibits);
    for (const Target& target : Targets(source.size)) {
        for (const ZoomMethod& method : ZoomMethods()) {
            if (!HasOwnPicture(method, target.direction)) continue;
            Exhibit zoom;
            zoom.id = std::string("zoom-") + method.name + "-" + target.id;
            zoom.title = std::string(method.title) + ", " + target.title;
            zoom.caption =
                ToText(source.size) + " to " + ToText(target.size) + ": " + method.character + ".";
            zoom.routine = method.routine;
            zoom.view = View::kDetail;
            zoom.make = [&source, &method, size = target.size] {
                return MeasureZoom(source, size, method);
            };
            exhibits.push_back(zoom);
        }
    }
    return exhibits;
}

}  // namespace tqipl
