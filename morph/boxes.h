#pragma once

// Lists of bounding boxes. All four fields of a box are inclusive.

#include <tqipl/array.h>
#include <tqipl/types.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace tq {

// Extends a box to columns left to right of a row.
inline void Include(TQ_RECT& box, int left, int right, int row) {
    box.left = std::min(box.left, left);
    box.right = std::max(box.right, right);
    box.top = std::min(box.top, row);
    box.bottom = std::max(box.bottom, row);
}

void Append(CTQArray<TQ_RECT, TQ_RECT&>& rects, const TQ_RECT* added, size_t count);

// The boxes that are left when those that lie within one another are thinned. Each in turn is held
// against those whose turn is to come, up to the first that it lies within, where it is dropped, or
// that lies within it, whose turn it takes over. Of two equal boxes the later stays. A box may be
// inside out, with left and top INT_MAX and right and bottom -1: it lies within any other.
std::vector<TQ_RECT> ThinNestedBoxes(const std::vector<TQ_RECT>& boxes);

}  // namespace tq
