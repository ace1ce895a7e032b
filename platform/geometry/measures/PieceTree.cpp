#include "platform/geometry/measures/PieceTree.h"

#include <utility>

namespace orvane::geometry {

PieceTree::PieceTree(std::vector<Piece> pieces) : pieces_(std::move(pieces)) {
    nodes_.emplace_back();
    build(0, 0, pieces_.size());
}

void PieceTree::build(std::size_t index, std::size_t first, std::size_t last) {
    constexpr std::size_t fewPieces = 4;
    Node node{{}, first, last};
    for (std::size_t i = first; i < last; ++i) {
        node.box.add(pieces_[i].begin.vector, pieces_[i].sagitta);
        node.box.add(pieces_[i].end.vector, pieces_[i].sagitta);
    }
    if (last - first > fewPieces) {
        const Vector sides = node.box.most - node.box.least;
        const auto axis =
            static_cast<std::size_t>(std::max_element(sides.begin(), sides.end()) - sides.begin());
        const std::size_t middle = first + (last - first) / 2;
        const auto at = [this](std::size_t i) { return pieces_.begin() + static_cast<std::ptrdiff_t>(i); };
        std::nth_element(at(first), at(middle), at(last), [axis](const Piece& a, const Piece& b) {
            return a.begin.vector[axis] + a.end.vector[axis] < b.begin.vector[axis] + b.end.vector[axis];
        });
        node.children = nodes_.size();
        nodes_.resize(nodes_.size() + 2);
        build(node.children, first, middle);
        build(node.children + 1, middle, last);
    }
    nodes_[index] = node;
}

/// How far along a chord, 0 to 1, it is nearest to a position.
double nearestOn(const Piece& piece, const Vector& position) {
    const Vector chord = piece.end.vector - piece.begin.vector;
    const double square = dot(chord, chord);
    return square > 0.0 ? std::clamp(dot(position - piece.begin.vector, chord) / square, 0.0, 1.0) : 0.0;
}

Vector onChord(const Piece& piece, double part) {
    return piece.begin.vector + part * (piece.end.vector - piece.begin.vector);
}

ChordsApart chordsApart(const Piece& a, const Piece& b) {
    const Vector chordA = a.end.vector - a.begin.vector;
    const Vector chordB = b.end.vector - b.begin.vector;
    const Vector between = b.begin.vector - a.begin.vector;
    const double aa = dot(chordA, chordA), bb = dot(chordB, chordB), ab = dot(chordA, chordB);
    const double determinant = aa * bb - ab * ab;
    double partA =
        determinant > 0.0
            ? std::clamp((dot(between, chordA) * bb - dot(between, chordB) * ab) / determinant, 0.0, 1.0)
            : 0.0;
    const double partB = nearestOn(b, onChord(a, partA));
    partA = nearestOn(a, onChord(b, partB));
    return {partA, partB, norm(onChord(b, partB) - onChord(a, partA))};
}

} // namespace orvane::geometry
