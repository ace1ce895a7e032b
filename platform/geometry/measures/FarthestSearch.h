#pragma once

#include "platform/geometry/measures/PieceTree.h"

namespace orvane::geometry {

/// The longest way between ends of pieces in two trees. `measure(a, b)` is that between two positions,
/// `bound(chord)` no less than it for positions so far apart in space.
template<typename Measure, typename Bound>
class FarthestSearch {
public:
    FarthestSearch(const PieceTree& a, const PieceTree& b, Measure measure, Bound bound)
        : treeA_(a), treeB_(b), measure_(measure), bound_(bound) {}

    double run() {
        search(0, 0);
        return best_;
    }

private:
    static double farthest(const Box& a, const Box& b) {
        Box both = a;
        both.add(b.least, 0.0);
        both.add(b.most, 0.0);
        return both.size();
    }

    void search(std::size_t indexA, std::size_t indexB) {
        const PieceTree::Node& a = treeA_.node(indexA);
        const PieceTree::Node& b = treeB_.node(indexB);
        if (bound_(farthest(a.box, b.box)) <= best_) {
            return;
        }
        if (a.children == 0 && b.children == 0) {
            for (std::size_t i = a.first; i < a.last; ++i) {
                for (std::size_t j = b.first; j < b.last; ++j) {
                    compare(treeA_.piece(i), treeB_.piece(j));
                }
            }
        } else if (b.children == 0 || (a.children != 0 && a.box.size() > b.box.size())) {
            const std::size_t first = farthest(treeA_.node(a.children).box, b.box) >=
                                              farthest(treeA_.node(a.children + 1).box, b.box)
                                          ? 0
                                          : 1;
            search(a.children + first, indexB);
            search(a.children + 1 - first, indexB);
        } else {
            const std::size_t first = farthest(treeB_.node(b.children).box, a.box) >=
                                              farthest(treeB_.node(b.children + 1).box, a.box)
                                          ? 0
                                          : 1;
            search(indexA, b.children + first);
            search(indexA, b.children + 1 - first);
        }
    }

    void compare(const Piece& a, const Piece& b) {
        for (const Position* from : {&a.begin, &a.end}) {
            for (const Position* to : {&b.begin, &b.end}) {
                if (bound_(norm(to->vector - from->vector)) > best_) {
                    best_ = std::max(best_, measure_(*from, *to));
                }
            }
        }
    }

    const PieceTree& treeA_;
    const PieceTree& treeB_;
    Measure measure_;
    Bound bound_;
    double best_ = 0.0;
};

} // namespace orvane::geometry
