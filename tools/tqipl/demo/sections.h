#pragma once

#include <span>
#include <vector>

#include "demo/exhibit.h"

namespace tqipl {

// A group of exhibits that every photograph gets. A new family of routines is one function here and
// one line in sections.cpp.
struct Section {
    const char* title;
    const char* introduction;
    // The exhibits keep a reference to the sample. A photograph that is too small or too large for
    // an exhibit goes without it.
    std::vector<Exhibit> (*exhibits)(const Sample& sample);
};

std::span<const Section> Sections();

std::vector<Exhibit> PhotographExhibits(const Sample& sample);
std::vector<Exhibit> Packed422Exhibits(const Sample& sample);
std::vector<Exhibit> PlanarExhibits(const Sample& sample);
std::vector<Exhibit> MatrixExhibits(const Sample& sample);
std::vector<Exhibit> DeepExhibits(const Sample& sample);
std::vector<Exhibit> HsvExhibits(const Sample& sample);
std::vector<Exhibit> PlanesExhibits(const Sample& sample);
std::vector<Exhibit> LuminanceExhibits(const Sample& sample);
std::vector<Exhibit> MaskExhibits(const Sample& sample);
std::vector<Exhibit> FilterExhibits(const Sample& sample);
std::vector<Exhibit> WaveletExhibits(const Sample& sample);
std::vector<Exhibit> ZoomExhibits(const Sample& sample);
std::vector<Exhibit> RectangleExhibits(const Sample& sample);

}  // namespace tqipl
