#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Shapes.h"

#include <memory>
#include <optional>
#include <string>

namespace orvane::geometry {

// Relations in the plane of the coordinates. They are those of the parts, whatever a collection holds; the
// order of the two, and what was asked before, make no difference. When both geometries carry coordinate
// systems that differ, the second is brought to the system of the first before; when that is not possible
// they have no relation. An empty geometry, and one with a coordinate that is not finite, has no relation to
// anything. Curves are approximated. The prepared form of a geometry is kept with it. Any thread may call
// these functions, also with the same geometry. They throw std::runtime_error when GEOS fails on geometries
// that could not be repaired.

enum class Relation {
    Intersects, ///< the two share a position, borders included
    Contains,   ///< nothing of b is outside a, and their interiors meet
    Covers,     ///< nothing of b is outside a
    Equals,     ///< nothing of either is outside the other
    Touches,    ///< they share positions of a border only
    Crosses,    ///< interiors meet in less than the larger of them, and something of the smaller is outside
    Overlaps    ///< of one dimension, which what they share has too, and each has something outside the other
};

/// Whether a stands in the relation to b.
ORVANE_PLATFORM_EXPORT bool relates(Relation relation, const Geometry& a, const Geometry& b);
/// Whether the relation cannot hold between geometries of these envelopes.
ORVANE_PLATFORM_EXPORT bool isRuledOut(Relation relation, const Envelope& a, const Envelope& b);
/// Whether the matrix of the dimensionally extended nine-intersection model (ISO 19125-1) matches the
/// pattern; none where one of the two is empty, not finite or a collection of several kinds, and for what
/// is no pattern.
ORVANE_PLATFORM_EXPORT std::optional<bool> matches(const Geometry& a, const Geometry& b,
                                                   const std::string& pattern);

/// The matrix itself, nine of 0, 1, 2 and F; none as above.
ORVANE_PLATFORM_EXPORT std::optional<std::string> relationMatrix(const Geometry& a, const Geometry& b);
/// Whether a matrix matches a pattern; none for what is neither.
ORVANE_PLATFORM_EXPORT std::optional<bool> matches(const std::string& matrix, const std::string& pattern);

/// The two share a position, borders included.
ORVANE_PLATFORM_EXPORT bool Intersects(const Geometry& a, const Geometry& b);
/// Nothing of b is outside a, and their interiors meet: what lies on the border of a only is not contained.
ORVANE_PLATFORM_EXPORT bool Contains(const Geometry& a, const Geometry& b);
/// a contains the centroid of b; a position on the border is not contained.
ORVANE_PLATFORM_EXPORT bool ContainsCentroid(const Geometry& a, const Geometry& b);

/// The first two for a position in the system of a, without a geometry object for it.
ORVANE_PLATFORM_EXPORT bool intersectsPosition(const Geometry& a, double x, double y);
ORVANE_PLATFORM_EXPORT bool containsPosition(const Geometry& a, double x, double y);

/// The shortest way between the two in units of the coordinates, whatever their systems; 0 when they
/// intersect. Throws std::runtime_error when a coordinate is not finite.
ORVANE_PLATFORM_EXPORT double planarDistance(const Geometry& a, const Geometry& b);

/// The centre of mass of the parts of the highest dimension, in the plane of the coordinates, z and m left
/// out. Null for an empty geometry and for coordinates that are not finite.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Point> centroid(const Geometry& geometry);
/// A position that certainly lies on the geometry, inside where it has an inside. Null as for centroid.
ORVANE_PLATFORM_EXPORT std::shared_ptr<Point> PointOnSurface(const Geometry& geometry);

/// The geometry without self-intersections, open rings or rings that cross each other: the same pointer when
/// it is valid, else made valid from its line work, which keeps every vertex; curves have become linear then
/// and m is lost. Throws std::runtime_error when a coordinate is not finite.
ORVANE_PLATFORM_EXPORT std::shared_ptr<const Geometry>
normalizedGeometry(const std::shared_ptr<const Geometry>& geometry);

} // namespace orvane::geometry
