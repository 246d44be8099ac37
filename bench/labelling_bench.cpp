// Connected regions. Items are horizontal runs, those of the set pixels or of the others, whichever
// a form looks for: the time follows their number, whatever the mask.

#include <tqipl/labelling.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "bench/families.h"
#include "bench/support/rows.h"
#include "frame/module.h"
#include "reference/labelling_reference.h"
#include "reference/seed_growth_reference.h"

namespace tqbench {

namespace {

constexpr Size kQuarter = {1920, 1080};
constexpr Size kWhole = {3840, 2160};
constexpr Size kReferenceSize = {240, 135};  // where the references walk lists in a fair time

using Pixels = std::vector<uint8_t>;
using MakeMask = Pixels (*)(Size size);

// Each pixel is set or not, alike often if `parts` is 2.
template <unsigned parts> Pixels MakeNoise(Size size) {
    Pixels mask(static_cast<size_t>(size.Pixels()));
    uint32_t state = 1;
    for (uint8_t& pixel : mask) {
        state = state * 1664525u + 1013904223u;
        pixel = (state >> 16) % parts == 0 ? 255 : 0;
    }
    return mask;
}

// One region: every other column is set, and the last row, which joins them.
Pixels MakeComb(Size size) {
    Pixels mask(static_cast<size_t>(size.Pixels()));
    for (size_t i = 0; i < mask.size(); i += 2) mask[i] = 255;
    std::fill(mask.end() - size.width, mask.end(), uint8_t{255});
    return mask;
}

int64_t CountRuns(const Pixels& mask, Size size, tqref::RegionsOf regions) {
    int64_t runs = 0;
    for (size_t i = 0; i < mask.size(); ++i) {
        const auto inside = [&](size_t at) {
            return (mask[at] == 0) == (regions == tqref::RegionsOf::kZero);
        };
        const bool rowBegins = i % static_cast<size_t>(size.width) == 0;
        if (inside(i) && (rowBegins || !inside(i - 1))) ++runs;
    }
    return runs;
}

tqref::Mask AsMask(Pixels& pixels, Size size) {
    return {size.width, size.height, size.width, pixels.data()};
}

using Label = decltype(&IPL_FCCLabeling);
using Rects = std::vector<TQ_RECT>;

Rects RectsOf(Label label, Pixels& mask, Size size) {
    CTQArray<TQ_RECT, TQ_RECT&> array;
    label(size.width, size.height, size.width, mask.data(), &array, 0);
    return {array.m_pData, array.m_pData + array.GetSize()};
}

Rects Sorted(Rects rects) {
    const auto key = [](const TQ_RECT& r) { return std::tuple(r.top, r.left, r.bottom, r.right); };
    std::sort(rects.begin(), rects.end(),
              [&](const TQ_RECT& a, const TQ_RECT& b) { return key(a) < key(b); });
    return rects;
}

bool Equal(const Rects& a, const Rects& b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(TQ_RECT)) == 0);
}

// A small mask against the lists of the reference, the large one against IPL_FCCLabeling2. The
// MultiThread form has another order.
std::string CheckLabelling(Label label, bool threaded, MakeMask make, Pixels& mask, Size size) {
    const auto ordered = [=](Rects rects) { return threaded ? Sorted(std::move(rects)) : rects; };
    Pixels small = make(kReferenceSize);
    const Rects expected = ordered(tqref::Label(AsMask(small, kReferenceSize), 0));
    if (!Equal(ordered(RectsOf(label, small, kReferenceSize)), expected))
        return "other rectangles than the reference's";
    if (!Equal(ordered(RectsOf(label, mask, size)), ordered(RectsOf(IPL_FCCLabeling2, mask, size))))
        return "other rectangles than those of IPL_FCCLabeling2";
    return "";
}

// No region is small, so that every call finds the same mask.
void AddLabel(const char* name, Label label, bool threaded, const char* kind, MakeMask make,
              Pixels& mask, Size size) {
    AddRow({.name = std::string(name) + ":" + kind + "/" + ToString(size),
            .items = CountRuns(mask, size, tqref::RegionsOf::kNonzero),
            .bytes = size.Pixels(),
            .threaded = threaded,
            .check = [=, &mask] { return CheckLabelling(label, threaded, make, mask, size); },
            .prepare = {},
            .call =
                [=, &mask] {
                    CTQArray<TQ_RECT, TQ_RECT&> rects;
                    label(size.width, size.height, size.width, mask.data(), &rects, 0);
                }});
}

constexpr int kThreshold = 8;

// change(size, mask) works in place, reference(mask) does the same.
struct Change {
    const char* name;
    bool threaded;
    tqref::RegionsOf regions;
    void (*change)(Size size, uint8_t* mask);
    void (*reference)(const tqref::Mask& mask);
};

// The guide of growth, at any size: three quarters are free to grow in.
uint8_t* Guide(Size size) {
    static Pixels large, small;
    Pixels& guide = size.width == kReferenceSize.width ? small : large;
    if (guide.size() < static_cast<size_t>(size.Pixels())) guide = MakeNoise<4>(size);
    return guide.data();
}

template <auto function> void ByUnsigned(Size size, uint8_t* mask) {
    const auto width = static_cast<unsigned>(size.width);
    function(width, static_cast<unsigned>(size.height), width, mask, kThreshold);
}

template <auto function> void UnderGuide(Size size, uint8_t* mask) {
    const auto width = static_cast<unsigned>(size.width);
    function(width, static_cast<unsigned>(size.height), width, Guide(size), width, mask,
             kThreshold);
}

void FillHoles(const tqref::Mask& mask) {
    tqref::FloodFillSmall(mask, tqref::RegionsOf::kZero, kThreshold, 255);
}

tqref::Mask GuideMask() {
    return {kReferenceSize.width, kReferenceSize.height, kReferenceSize.width,
            Guide(kReferenceSize)};
}

void GrowByReference(const tqref::Mask& mask) {
    tqref::FillSmallAndGrow(GuideMask(), mask, kThreshold);
}

const Change kChanges[] = {
    {"IPL_FCCLabelingDeNoise", false, tqref::RegionsOf::kNonzero,
     [](Size size, uint8_t* mask) {
         IPL_FCCLabelingDeNoise(size.width, size.height, size.width, mask, kThreshold);
     },
     [](const tqref::Mask& mask) {
         tqref::FloodFillSmall(mask, tqref::RegionsOf::kNonzero, kThreshold, 0);
     }},
    {"IPL_FCCLabelingDeNoiseEx", false, tqref::RegionsOf::kZero,
     ByUnsigned<IPL_FCCLabelingDeNoiseEx>, FillHoles},
    {"IPL_FCCLabelingDeNoiseEx_MultiThread", true, tqref::RegionsOf::kZero,
     ByUnsigned<IPL_FCCLabelingDeNoiseEx_MultiThread>, FillHoles},
    {"IPL_FCCLabelingDeNoiseEx2", false, tqref::RegionsOf::kZero,
     ByUnsigned<IPL_FCCLabelingDeNoiseEx2>, FillHoles},
    {"IPL_FCCLabelingDeNoiseEx2_MultiThread", true, tqref::RegionsOf::kZero,
     ByUnsigned<IPL_FCCLabelingDeNoiseEx2_MultiThread>, FillHoles},
    {"IPL_FCCDeNoiseAndGrowth", false, tqref::RegionsOf::kZero, UnderGuide<IPL_FCCDeNoiseAndGrowth>,
     [](const tqref::Mask& mask) { tqref::KeepConfirmed(GuideMask(), mask, kThreshold); }},
    {"IPL_FCCDeNoiseAndGrowth2", false, tqref::RegionsOf::kZero,
     UnderGuide<IPL_FCCDeNoiseAndGrowth2>, GrowByReference},
    {"IPL_FCCDeNoiseAndGrowth2_MultiThread", true, tqref::RegionsOf::kZero,
     UnderGuide<IPL_FCCDeNoiseAndGrowth2_MultiThread>, GrowByReference},
};

std::string CheckChange(const Change& change, MakeMask make) {
    Pixels actual = make(kReferenceSize), expected = actual;
    change.change(kReferenceSize, actual.data());
    change.reference(AsMask(expected, kReferenceSize));
    return actual == expected ? "" : "another mask than the reference's";
}

// A call begins with a copy of the mask, which is part of its time.
void AddChange(const Change& change, const char* kind, MakeMask make, Pixels& mask, Size size) {
    AddRow({.name = std::string(change.name) + ":" + kind + "/" + ToString(size),
            .items = CountRuns(mask, size, change.regions),
            .bytes = 2 * size.Pixels(),
            .threaded = change.threaded,
            .check = [=, &change] { return CheckChange(change, make); },
            .prepare = [=] { Guide(size); },
            .call =
                [=, &change, &mask] {
                    std::memcpy(GetFrames().dst, mask.data(), mask.size());
                    change.change(size, GetFrames().dst);
                }});
}

struct Kind {
    const char* name;
    MakeMask make;
    Pixels quarter = make(kQuarter);
    Pixels whole = make(kWhole);
};

}  // namespace

void AddLabelling() {
    static Kind kinds[] = {{"noise", MakeNoise<2>}, {"specks", MakeNoise<8>}, {"comb", MakeComb}};
    // With one processor the MultiThread forms clean and list nothing.
    const bool threads = g_IPLProcessorCount > 1;
    for (Kind& kind : kinds)
        for (Pixels* mask : {&kind.quarter, &kind.whole}) {
            const Size size = mask == &kind.quarter ? kQuarter : kWhole;
            AddLabel("IPL_FCCLabeling", IPL_FCCLabeling, false, kind.name, kind.make, *mask, size);
            AddLabel("IPL_FCCLabeling2", IPL_FCCLabeling2, false, kind.name, kind.make, *mask,
                     size);
            if (threads)
                AddLabel("IPL_FCCLabeling_MultiThread", IPL_FCCLabeling_MultiThread, true,
                         kind.name, kind.make, *mask, size);
            AddLabellingPeers(kind.name, size, mask->data(),
                              CountRuns(*mask, size, tqref::RegionsOf::kNonzero),
                              [=] { return RectsOf(IPL_FCCLabeling, *mask, size).size(); });
        }
    for (const Change& change : kChanges) {
        if (change.threaded && !threads) continue;
        AddChange(change, kinds[0].name, kinds[0].make, kinds[0].quarter, kQuarter);
        AddChange(change, kinds[0].name, kinds[0].make, kinds[0].whole, kWhole);
    }
}

}  // namespace tqbench
