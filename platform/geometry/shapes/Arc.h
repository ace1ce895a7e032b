#pragma once

#include "platform/geometry/shapes/Coordinates.h"

#include <QSizeF>

#include <optional>
#include <vector>

namespace orvane::geometry {

/// A part of a circle. Angles in radians, anticlockwise from east; a positive sweep goes anticlockwise.
struct Arc {
    double centreX, centreY, radius, startAngle, sweep;

    /// The arc from `begin` over `middle` to `end`; a full circle when begin and end are the same position.
    /// None when the three lie on one straight line.
    static std::optional<Arc> through(const double* begin, const double* middle, const double* end);

    double length() const;
    /// Area between the arc and its chord, positive for a positive sweep.
    double segmentArea() const;
    void addTo(Envelope& envelope) const;
};

/// Segments for a sweep so that chords stay within the tolerance of a circle; see ApproximableCurve.
std::size_t segmentCount(double sweep, double radius, QSizeF tolerance);

/// Appends the approximation of the arcs of a circular string to `out`, without its first position.
ORVANE_PLATFORM_EXPORT void appendArcs(const CoordinateSequence& arcs, QSizeF tolerance,
                                       std::vector<double>& out);

} // namespace orvane::geometry
