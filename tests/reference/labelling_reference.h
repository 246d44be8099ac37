#pragma once

// Connected regions of a mask written a second time, and in two ways: by lists of runs that are
// walked from end to end, which settle what comes in which order, and by flooding, which knows a
// region as a set of pixels only. Both share nothing with morph/ and nothing with each other.

#include <tqipl/types.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace tqref {

struct Mask {
    int64_t width, height, stride;
    uint8_t* first;
    uint8_t& At(int64_t x, int64_t y) const { return first[y * stride + x]; }
};

// Which pixels regions are made of.
enum class RegionsOf { kNonzero, kZero };

// ---- Lists of runs --------------------------------------------------------------------------

struct ListRun {
    bool head = true;
    int64_t row, start, end;  // end is the last column
    ListRun* root = nullptr;  // of a root, null
    ListRun* next = nullptr;
};

inline ListRun* RootOf(ListRun* run) { return run->root == nullptr ? run : run->root; }

inline ListRun* LastOf(ListRun* run) {
    while (run->next != nullptr) run = run->next;
    return run;
}

// The run c joins the region of the run p above it.
inline void AttachRun(ListRun* c, ListRun* p) {
    c->head = false;
    LastOf(p)->next = c;
    c->root = RootOf(p);
}

// The root r and its list go behind the list of a.
inline void MergeList(ListRun* a, ListRun* r) {
    r->head = false;
    LastOf(a)->next = r;
    ListRun* root = RootOf(a);
    for (ListRun* run = r; run != nullptr; run = run->next) run->root = root;
}

// Rows that were labelled without a look at others.
struct RunBand {
    std::vector<std::unique_ptr<ListRun>> runs;
    int64_t topCount = 0, bottomCount = 0;  // runs of the first and of the last row
};

inline int64_t ScanRow(const Mask& mask, RegionsOf regions, int64_t y, RunBand& band) {
    int64_t count = 0;
    bool inRun = false;
    for (int64_t x = 0; x < mask.width; ++x) {
        const bool inside = (mask.At(x, y) == 0) == (regions == RegionsOf::kZero);
        if (inside && !inRun) {
            auto run = std::make_unique<ListRun>();
            run->row = y;
            run->start = run->end = x;
            band.runs.push_back(std::move(run));
            ++count;
        } else if (inside) {
            band.runs.back()->end = x;
        }
        inRun = inside;
    }
    return count;
}

// The last `count` runs are a row's, the `above` runs before them those of the row above.
inline void JoinRow(RunBand& band, int64_t above, int64_t count) {
    const size_t row = band.runs.size() - static_cast<size_t>(count);
    const size_t previous = row - static_cast<size_t>(above);
    for (size_t i = row; i < band.runs.size(); ++i) {
        ListRun* c = band.runs[i].get();
        int matches = 0;
        for (size_t j = previous; j < row; ++j) {
            ListRun* p = band.runs[j].get();
            if (p->end + 1 < c->start) continue;
            if (p->start > c->end + 1) break;
            if (matches == 0) {
                AttachRun(c, p);
            } else if (p->root == nullptr) {
                p->head = false;
                LastOf(c)->next = p;
                p->root = c->root;
            } else if (c->root != p->root) {
                MergeList(c, p->root);
            }
            ++matches;
        }
    }
}

inline RunBand LabelRows(const Mask& mask, RegionsOf regions, int64_t firstRow, int64_t endRow) {
    RunBand band;
    int64_t above = 0;
    for (int64_t y = firstRow; y < endRow; ++y) {
        const int64_t count = ScanRow(mask, regions, y, band);
        JoinRow(band, above, count);
        above = count;
        if (y == firstRow) band.topCount = count;
        if (y == endRow - 1) band.bottomCount = count;
    }
    return band;
}

// Regions that are one already stay as they are, however they became one.
inline void MergeSeam(RunBand& upper, RunBand& lower) {
    for (int64_t i = 0; i < lower.topCount; ++i) {
        ListRun* b = lower.runs[i].get();
        for (size_t j = upper.runs.size() - upper.bottomCount; j < upper.runs.size(); ++j) {
            ListRun* a = upper.runs[j].get();
            if (a->end + 1 < b->start) continue;
            if (a->start > b->end + 1) break;
            ListRun* r = RootOf(b);
            if (r != RootOf(a)) MergeList(a, r);
        }
    }
}

// `count` bands of height / count rows, the last with the rest, joined from the top down.
inline std::vector<RunBand> LabelBands(const Mask& mask, RegionsOf regions, int count) {
    std::vector<RunBand> bands;
    const int64_t rows = mask.height / count;
    for (int i = 0; i < count; ++i)
        bands.push_back(
            LabelRows(mask, regions, i * rows, i + 1 < count ? (i + 1) * rows : mask.height));
    for (int i = 0; i + 1 < count; ++i) MergeSeam(bands[i], bands[i + 1]);
    return bands;
}

inline int64_t AreaOf(const ListRun* root) {
    int64_t area = 0;
    for (const ListRun* run = root; run != nullptr; run = run->next)
        area += run->end - run->start + 1;
    return area;
}

inline TQ_RECT BoxOf(const ListRun* root) {
    TQ_RECT box = {INT_MAX, INT_MAX, -1, -1};
    for (const ListRun* run = root; run != nullptr; run = run->next) {
        box.left = std::min(box.left, static_cast<int>(run->start));
        box.top = std::min(box.top, static_cast<int>(run->row));
        box.right = std::max(box.right, static_cast<int>(run->end));
        box.bottom = std::max(box.bottom, static_cast<int>(run->row));
    }
    return box;
}

inline void FillRegion(const Mask& mask, const ListRun* root, uint8_t value) {
    for (const ListRun* run = root; run != nullptr; run = run->next)
        for (int64_t x = run->start; x <= run->end; ++x) mask.At(x, run->row) = value;
}

// Regions of at most `minimum` pixels are cleared, the boxes of the others listed band by band.
inline std::vector<TQ_RECT> LabelInBands(const Mask& mask, int64_t minimum, int count) {
    std::vector<TQ_RECT> rects;
    for (const RunBand& band : LabelBands(mask, RegionsOf::kNonzero, count))
        for (const auto& run : band.runs) {
            if (!run->head) continue;
            if (AreaOf(run.get()) <= minimum)
                FillRegion(mask, run.get(), 0);
            else
                rects.push_back(BoxOf(run.get()));
        }
    return rects;
}

inline std::vector<TQ_RECT> Label(const Mask& mask, int64_t minimum) {
    return LabelInBands(mask, minimum, 1);
}

inline bool Within(const TQ_RECT& a, const TQ_RECT& b) {
    return a.left >= b.left && a.right <= b.right && a.top >= b.top && a.bottom <= b.bottom;
}

// Of boxes that lie in one another the outer one stays, in the place of the last that it met.
inline std::vector<TQ_RECT> ThinBoxes(std::vector<TQ_RECT> boxes) {
    std::vector<TQ_RECT> kept;
    for (size_t i = 0; i < boxes.size(); ++i) {
        const TQ_RECT box = boxes[i];
        bool dropped = false;
        for (size_t j = i + 1; j < boxes.size() && !dropped; ++j) {
            if (Within(box, boxes[j])) {
                dropped = true;
            } else if (Within(boxes[j], box)) {
                boxes[j] = box;
                dropped = true;
            }
        }
        if (!dropped) kept.push_back(box);
    }
    return kept;
}

// Regions of connect; boxes of what is nonzero of the image below them, more than `minimum` pixels.
inline std::vector<TQ_RECT> LabelUnder(const Mask& image, const Mask& connect, int64_t minimum) {
    std::vector<TQ_RECT> boxes;
    const RunBand band = LabelRows(connect, RegionsOf::kNonzero, 0, connect.height);
    for (const auto& root : band.runs) {
        if (!root->head) continue;
        TQ_RECT box = {INT_MAX, INT_MAX, -1, -1};
        int64_t count = 0;
        for (const ListRun* run = root.get(); run != nullptr; run = run->next)
            for (int64_t x = run->start; x <= run->end; ++x) {
                if (image.At(x, run->row) == 0) continue;
                ++count;
                box.left = std::min(box.left, static_cast<int>(x));
                box.top = std::min(box.top, static_cast<int>(run->row));
                box.right = std::max(box.right, static_cast<int>(x));
                box.bottom = std::max(box.bottom, static_cast<int>(run->row));
            }
        if (count > minimum) boxes.push_back(box);
    }
    return ThinBoxes(boxes);
}

// ---- Flooding -------------------------------------------------------------------------------

struct FloodRegion {
    TQ_RECT box;
    std::vector<std::pair<int64_t, int64_t>> pixels;  // x, y
    int64_t Area() const { return static_cast<int64_t>(pixels.size()); }
};

// All regions, each pixel reached from its eight neighbours.
inline std::vector<FloodRegion> Flood(const Mask& mask, RegionsOf regions) {
    std::vector<FloodRegion> found;
    if (mask.width < 1 || mask.height < 1) return found;
    const auto inside = [&](int64_t x, int64_t y) {
        return (mask.At(x, y) == 0) == (regions == RegionsOf::kZero);
    };
    std::vector<char> seen(static_cast<size_t>(mask.width * mask.height));
    for (int64_t y = 0; y < mask.height; ++y)
        for (int64_t x = 0; x < mask.width; ++x) {
            if (!inside(x, y) || seen[y * mask.width + x]) continue;
            FloodRegion region;
            region.pixels.emplace_back(x, y);
            seen[y * mask.width + x] = 1;
            for (size_t i = 0; i < region.pixels.size(); ++i) {
                const auto [px, py] = region.pixels[i];
                for (int64_t ny = py - 1; ny <= py + 1; ++ny)
                    for (int64_t nx = px - 1; nx <= px + 1; ++nx) {
                        if (nx < 0 || ny < 0 || nx >= mask.width || ny >= mask.height) continue;
                        char& mark = seen[ny * mask.width + nx];
                        if (mark || !inside(nx, ny)) continue;
                        mark = 1;
                        region.pixels.emplace_back(nx, ny);
                    }
            }
            region.box = {INT_MAX, INT_MAX, -1, -1};
            for (const auto& [px, py] : region.pixels) {
                region.box.left = std::min(region.box.left, static_cast<int>(px));
                region.box.top = std::min(region.box.top, static_cast<int>(py));
                region.box.right = std::max(region.box.right, static_cast<int>(px));
                region.box.bottom = std::max(region.box.bottom, static_cast<int>(py));
            }
            found.push_back(std::move(region));
        }
    return found;
}

// Regions of at most `threshold` pixels get the value.
inline void FloodFillSmall(const Mask& mask, RegionsOf regions, int64_t threshold, uint8_t value) {
    for (const FloodRegion& region : Flood(mask, regions))
        if (region.Area() <= threshold)
            for (const auto& [x, y] : region.pixels) mask.At(x, y) = value;
}

}  // namespace tqref
