// The list of what the demo shows, in the order of the sheet.

#include "demo/sections.h"

namespace tqipl {

namespace {

constexpr Section kSections[] = {
    {"The photograph", "What everything below starts from.", PhotographExhibits},
    {"Packed 4:2:2",
     "ARGB to a studio-range video frame and back. Two neighbours share their chroma, so hard "
     "colour edges lose a little; the difference pictures show where.",
     Packed422Exhibits},
    {"Luminance", "The weighted sum of blue, green and red.", LuminanceExhibits},
    {"Zoom",
     "The middle of each result, pixel for pixel. Click a picture to see its pixels three times "
     "as large.",
     ZoomExhibits},
    {"Rectangles", "Copies, fills and flips by rectangle. The chequered ground is transparency.",
     RectangleExhibits},
};

}  // namespace

std::span<const Section> Sections() { return kSections; }

}  // namespace tqipl
