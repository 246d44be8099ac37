// Lists of bounding boxes: appending, and the thinning of nested ones.

#include "morph/boxes.h"

#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>
#include <utility>

namespace tq {
namespace {

bool IsWithin(const TQ_RECT& inner, const TQ_RECT& outer) {
    return inner.left >= outer.left && inner.right <= outer.right && inner.top >= outer.top &&
           inner.bottom <= outer.bottom;
}

bool AreNested(const TQ_RECT& a, const TQ_RECT& b) { return IsWithin(a, b) || IsWithin(b, a); }

bool IsInsideOut(const TQ_RECT& box) { return box.left > box.right; }

struct Range {
    int low = INT_MAX;
    int high = INT_MIN;

    void Include(const Range& other) {
        low = std::min(low, other.low);
        high = std::max(high, other.high);
    }
    bool Meets(int first, int last) const { return low <= last && high >= first; }
};

// What is known of a group of boxes; nothing is nested with a group without any.
struct Bounds {
    Range left, top, right, bottom;

    Bounds() = default;
    explicit Bounds(const TQ_RECT& box)
        : left{box.left, box.left},
          top{box.top, box.top},
          right{box.right, box.right},
          bottom{box.bottom, box.bottom} {
        // It lies within any other box, so that its group must never be passed over.
        if (IsInsideOut(box)) left = top = right = bottom = {INT_MIN, INT_MAX};
    }

    void Include(const Bounds& other) {
        left.Include(other.left);
        top.Include(other.top);
        right.Include(other.right);
        bottom.Include(other.bottom);
    }

    // Whether one of the boxes may be nested with this one.
    bool MayNest(const TQ_RECT& box) const {
        const bool oneMayContain = left.low <= box.left && right.high >= box.right &&
                                   top.low <= box.top && bottom.high >= box.bottom;
        const bool oneMayBeWithin =
            left.Meets(box.left, box.right) && right.Meets(box.left, box.right) &&
            top.Meets(box.top, box.bottom) && bottom.Meets(box.top, box.bottom);
        return oneMayContain || oneMayBeWithin;
    }
};

constexpr size_t kNoTurn = SIZE_MAX;

// Boxes in a tree of groups of neighbours, each with the turn that it waits for. Regions are found
// by rows, so that a group is a small area and most are passed over. Held against one another one
// by one, the half a million regions of a noisy mask would take minutes.
class BoxTree {
public:
    BoxTree(const std::vector<TQ_RECT>& boxes, std::vector<size_t> turns)
        : m_boxes(boxes),
          m_turns(std::move(turns)),
          m_leafCount(std::bit_ceil(boxes.size() / kLeafBoxes + 1)),
          m_nodes(2 * m_leafCount) {
        for (size_t i = 0; i < boxes.size(); ++i) {
            Node& leaf = m_nodes[LeafOf(i)];
            leaf.bounds.Include(Bounds(boxes[i]));
            leaf.firstTurn = std::min(leaf.firstTurn, m_turns[i]);
        }
        for (size_t node = m_leafCount - 1; node != 0; --node) {
            m_nodes[node] = m_nodes[2 * node];
            m_nodes[node].bounds.Include(m_nodes[2 * node + 1].bounds);
            m_nodes[node].firstTurn =
                std::min(m_nodes[node].firstTurn, m_nodes[2 * node + 1].firstTurn);
        }
    }

    size_t Turn(size_t box) const { return m_turns[box]; }

    void SetTurn(size_t box, size_t turn) {
        m_turns[box] = turn;
        size_t node = LeafOf(box);
        const auto first = m_turns.begin() + static_cast<ptrdiff_t>(FirstOf(node));
        const auto end = m_turns.begin() + static_cast<ptrdiff_t>(EndOf(node));
        m_nodes[node].firstTurn = *std::min_element(first, end);
        while ((node /= 2) != 0)
            m_nodes[node].firstTurn =
                std::min(m_nodes[2 * node].firstTurn, m_nodes[2 * node + 1].firstTurn);
    }

    // Of the boxes that are nested with this one, that of the first turn; or kNone.
    size_t FirstNested(const TQ_RECT& box) const {
        Nested found;
        Search(1, box, found);
        return found.box;
    }

    static constexpr size_t kNone = SIZE_MAX;

private:
    struct Node {
        Bounds bounds;
        size_t firstTurn = kNoTurn;
    };
    struct Nested {
        size_t box = kNone;
        size_t turn = kNoTurn;
    };
    static constexpr size_t kLeafBoxes = 16;

    size_t LeafOf(size_t box) const { return m_leafCount + box / kLeafBoxes; }
    size_t FirstOf(size_t leaf) const { return (leaf - m_leafCount) * kLeafBoxes; }
    size_t EndOf(size_t leaf) const { return std::min(FirstOf(leaf) + kLeafBoxes, m_boxes.size()); }

    void Search(size_t node, const TQ_RECT& box, Nested& found) const {
        if (m_nodes[node].firstTurn >= found.turn || !m_nodes[node].bounds.MayNest(box)) return;
        if (node < m_leafCount) {
            Search(2 * node, box, found);
            Search(2 * node + 1, box, found);
            return;
        }
        for (size_t i = FirstOf(node); i < EndOf(node); ++i)
            if (m_turns[i] < found.turn && AreNested(box, m_boxes[i])) found = {i, m_turns[i]};
    }

    const std::vector<TQ_RECT>& m_boxes;
    std::vector<size_t> m_turns;
    size_t m_leafCount;         // a power of two
    std::vector<Node> m_nodes;  // node n has the nodes 2n and 2n + 1; the leaves come last
};

}  // namespace

// In one step: by CTQArray::Add alone the time of a long list grows with the square of its length.
void Append(CTQArray<TQ_RECT, TQ_RECT&>& rects, const TQ_RECT* added, size_t count) {
    if (count == 0) return;
    const int64_t size = rects.GetSize();
    rects.SetSize(size + static_cast<int64_t>(count));
    std::memcpy(rects.m_pData + size, added, count * sizeof *added);
}

std::vector<TQ_RECT> ThinNestedBoxes(const std::vector<TQ_RECT>& boxes) {
    // Those inside out are kept apart, behind the others.
    std::vector<TQ_RECT> sorted;
    std::vector<size_t> turns;
    std::vector<size_t> boxOfTurn(boxes.size());
    for (const bool insideOut : {false, true}) {
        for (size_t i = 0; i < boxes.size(); ++i) {
            if (IsInsideOut(boxes[i]) != insideOut) continue;
            boxOfTurn[i] = sorted.size();
            sorted.push_back(boxes[i]);
            turns.push_back(i);
        }
    }
    BoxTree tree(sorted, std::move(turns));
    std::vector<TQ_RECT> kept;
    for (size_t turn = 0; turn < boxes.size(); ++turn) {
        const size_t box = boxOfTurn[turn];
        tree.SetTurn(box, kNoTurn);
        const size_t nested = tree.FirstNested(sorted[box]);
        if (nested == BoxTree::kNone) {
            kept.push_back(sorted[box]);
        } else if (!IsWithin(sorted[box], sorted[nested])) {
            const size_t later = tree.Turn(nested);
            tree.SetTurn(nested, kNoTurn);
            tree.SetTurn(box, later);
            boxOfTurn[later] = box;
        }
    }
    return kept;
}

}  // namespace tq
