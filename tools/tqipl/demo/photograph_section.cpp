// The photographs as they are.

#include "demo/sections.h"

namespace tqipl {

std::vector<Exhibit> PhotographExhibits(const Sample& sample) {
    Exhibit original;
    original.id = "original";
    original.title = "Original";
    original.caption = "As the file holds it. The time is that of reading the PNG file.";
    original.make = [&sample] {
        Shown shown{sample.picture, {}, {}};
        shown.timing.plainMs = sample.decodeMs;
        shown.timing.byHost = true;
        return shown;
    };
    return {original};
}

}  // namespace tqipl
