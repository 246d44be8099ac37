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
    {"Planar 4:2:2, V210 and V216",
     "The same samples in other places: in planes, three of ten bits in each 32-bit word, or "
     "with 16 bits each. The differences are those of the 4:2:2 frames above.",
     PlanarExhibits},
    {"Matrices",
     "A frame changed from one colour matrix to another without a picture in between, and what "
     "that does to colours when the reader does not know of it.",
     MatrixExhibits},
    {"Deep BGR", "Ten and sixteen bits a channel hold eight without loss.", DeepExhibits},
    {"Hue, saturation, value",
     "There and back in floats and in bytes. A byte has 255 steps for the circle of hues, so the "
     "byte forms come back close, not equal.",
     HsvExhibits},
    {"Planes", "Images taken apart into their samples, and built from them.", PlanesExhibits},
    {"Luminance", "The weighted sum of blue, green and red.", LuminanceExhibits},
    {"Masks",
     "The photograph's luminance in black and white, and what can be done with it: regions are "
     "smoothed, cleaned, found and grown.",
     MaskExhibits},
    {"Filters",
     "The luminance with noise, and what filters make of it. The decibels are the library's PSNR "
     "against the luminance without noise, which takes the root of the mean squared error once "
     "more than the usual measure; higher is closer, and equal planes have 118.",
     FilterExhibits},
    {"Wavelets and fields",
     "The 5/3 wavelet on the luminance: its four bands, its low-pass filter, and a progressive "
     "frame made into two fields that do not flicker.",
     WaveletExhibits},
    {"Zoom",
     "The middle of each result, pixel for pixel. Click a picture to see its pixels three times "
     "as large. First the photograph reduced to a quarter, and enlarged four times from there by "
     "each method made for it; the decibels are the library's PSNR of the luminance against the "
     "photograph. Then other sizes.",
     ZoomExhibits},
    {"Rectangles", "Copies, fills and flips by rectangle. The chequered ground is transparency.",
     RectangleExhibits},
};

}  // namespace

std::span<const Section> Sections() { return kSections; }

}  // namespace tqipl
