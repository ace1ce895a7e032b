#pragma once

#include "platform/geometry/shapes/Coordinates.h"

#include <cstdint>
#include <vector>

namespace orvane::maps {

/// What is drawn of a part of a shape.
enum class PartKind : std::uint8_t {
    Point,  ///< one position
    Speck,  ///< one position that stands for a line or an area smaller than a pixel
    Line,   ///< stroked
    Ring,   ///< filled with the other rings of the shape, odd-even, and stroked; closed without saying so
    Area,   ///< a ring that is only filled: part of its border is where it was cut
    Border, ///< a line that is stroked as the border of an area
};

/// A shape as drawing needs it: x and y of all positions in a row, and which of them belong together. Made to
/// be used again for the next feature without taking memory.
struct FlatShape {
    struct Part {
        PartKind kind;
        std::uint32_t begin; ///< of its positions
        std::uint32_t count;
    };

    std::vector<double> ordinates; ///< x, y, x, y, ...
    std::vector<Part> parts;

    void clear() {
        ordinates.clear();
        parts.clear();
    }
    bool isEmpty() const { return parts.empty(); }
    std::uint32_t size() const { return static_cast<std::uint32_t>(ordinates.size() / 2); }
    const double* position(std::uint32_t index) const { return ordinates.data() + std::size_t{2} * index; }
    double* position(std::uint32_t index) { return ordinates.data() + std::size_t{2} * index; }
    void add(double x, double y) {
        ordinates.push_back(x);
        ordinates.push_back(y);
    }
    /// Makes a part of all positions from `begin` on.
    void endPart(PartKind kind, std::uint32_t begin) { parts.push_back({kind, begin, size() - begin}); }
    void truncate(std::uint32_t count) { ordinates.resize(std::size_t{2} * count); }

    geometry::Envelope envelopeOf(const Part& part) const {
        geometry::Envelope envelope;
        for (std::uint32_t i = part.begin; i < part.begin + part.count; ++i) {
            envelope.add(position(i)[0], position(i)[1]);
        }
        return envelope;
    }
    geometry::Envelope envelope() const {
        geometry::Envelope envelope;
        for (std::size_t i = 0; i + 1 < ordinates.size(); i += 2) {
            envelope.add(ordinates[i], ordinates[i + 1]);
        }
        return envelope;
    }
};

} // namespace orvane::maps
