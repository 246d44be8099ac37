#pragma once

// Confirmation by a guide and growth under a guide written a second time. Growth goes outward in
// rings from all seeds at once, where the library works off stacks.

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "reference/labelling_reference.h"

namespace tqref {

using Seeds = std::vector<std::pair<int, int>>;  // x, y

// A zero region of the mask stays where the root run of a large zero region of the guide touches a
// run of it in the same row. Each such root run keeps one region, the first in order of roots.
inline void KeepConfirmed(const Mask& guide, const Mask& mask, int64_t threshold) {
    const RunBand ofMask = LabelRows(mask, RegionsOf::kZero, 0, mask.height);
    const RunBand ofGuide = LabelRows(guide, RegionsOf::kZero, 0, guide.height);
    std::vector<const ListRun*> candidates;
    for (const auto& run : ofMask.runs)
        if (run->head) candidates.push_back(run.get());
    for (const auto& root : ofGuide.runs) {
        if (!root->head || AreaOf(root.get()) <= threshold) continue;
        const auto confirmed =
            std::find_if(candidates.begin(), candidates.end(), [&](const ListRun* candidate) {
                for (const ListRun* q = candidate; q != nullptr; q = q->next)
                    if (q->row == root->row && q->end + 1 >= root->start &&
                        root->end + 1 >= q->start)
                        return true;
                return false;
            });
        if (confirmed != candidates.end()) candidates.erase(confirmed);
    }
    for (const ListRun* candidate : candidates) FillRegion(mask, candidate, 255);
}

// Zero regions of at most `threshold` pixels get 255; both ends of each run of the others are
// seeds, region by region in order of their roots.
inline Seeds FillSmallAndSeed(const Mask& mask, int64_t threshold) {
    Seeds seeds;
    for (const auto& root : LabelRows(mask, RegionsOf::kZero, 0, mask.height).runs) {
        if (!root->head) continue;
        if (AreaOf(root.get()) <= threshold) {
            FillRegion(mask, root.get(), 255);
            continue;
        }
        for (const ListRun* run = root.get(); run != nullptr; run = run->next) {
            seeds.emplace_back(run->start, run->row);
            seeds.emplace_back(run->end, run->row);
        }
    }
    return seeds;
}

// A pixel is painted if it is 255, the guide is 0, and a seed or a painted pixel is its neighbour.
// Pixels on the image's border paint nothing.
inline void Grow(const Mask& guide, const Mask& mask, const Seeds& seeds) {
    Seeds ring = seeds;
    while (!ring.empty()) {
        Seeds next;
        for (const auto& [x, y] : ring) {
            if (x < 1 || y < 1 || x >= mask.width - 1 || y >= mask.height - 1) continue;
            for (int ny = y - 1; ny <= y + 1; ++ny)
                for (int nx = x - 1; nx <= x + 1; ++nx) {
                    if (nx == x && ny == y) continue;
                    if (mask.At(nx, ny) != 255 || guide.At(nx, ny) != 0) continue;
                    mask.At(nx, ny) = 0;
                    next.emplace_back(nx, ny);
                }
        }
        ring = next;
    }
}

inline void FillSmallAndGrow(const Mask& guide, const Mask& mask, int64_t threshold) {
    const Seeds seeds = FillSmallAndSeed(mask, threshold);
    Grow(guide, mask, seeds);
}

}  // namespace tqref
