#pragma once

#include "host/maps/shapes/FlatShape.h"

#include <vector>

namespace orvane::maps {

/// Cuts rings and lines to a rectangle. Keeps its memory.
class Clipping {
public:
    /// The part of a ring within the box (Sutherland and Hodgman): one ring, which runs along the box where
    /// it was cut. Nothing when less than three positions are left.
    void addRing(const double* ordinates, std::uint32_t count, const geometry::Envelope& box, PartKind kind,
                 FlatShape& out);
    /// Whether the segment between two positions is to be left out.
    using IsSeam = bool (*)(const double* from, const double* to);
    /// The parts of a line within the box, as many lines as it has pieces there.
    static void addLine(const double* ordinates, std::uint32_t count, bool isClosed,
                        const geometry::Envelope& box, PartKind kind, IsSeam isSeam, FlatShape& out);

private:
    void cut(int axis, double bound, bool isUpper);

    std::vector<double> ring_;
    std::vector<double> cut_;
};

} // namespace orvane::maps
