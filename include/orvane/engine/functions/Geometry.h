#pragma once

#include <orvane/engine/Export.h>

#include <sqlite3.h>

/// The geometry functions of the dialect. A geometry argument is any value that toGeometry reads; where it
/// reads none (NULL, texts, numbers, unreadable blobs) the result is NULL, never an error. The user data is
/// the EngineCache. When exactly one of two geometries carries a coordinate system the other is taken to be
/// in it; when both carry different ones the second is reprojected to the first. Whatever the geometry
/// library raises becomes the statement's error, unless stated otherwise. Reentrant.
namespace orvane::engine {

/// Measures: geometry [, units]. Their meaning and the units are those of
/// platform/geometry/measures/Measures.h; without units, or with NULL, the text is empty. A failure is an
/// error with its text, -1 when it has none.
ORVANE_ENGINE_EXPORT void perimeter(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void sphericalPerimeter(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void cartesianPerimeter(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void objectLen(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void sphericalObjectLen(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void cartesianObjectLen(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void area(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void sphericalArea(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void cartesianArea(sqlite3_context* context, int count, sqlite3_value** values);

/// Distances: geometry, geometry [, units]. -1 for every failure: unknown units, an empty geometry, no
/// coordinate system for a spherical distance.
ORVANE_ENGINE_EXPORT void sphericalObjectDistance(sqlite3_context* context, int count,
                                                  sqlite3_value** values);
ORVANE_ENGINE_EXPORT void cartesianObjectDistance(sqlite3_context* context, int count,
                                                  sqlite3_value** values);

/// Distance: geometry, geometry [, units]; and whether it is at most a number: geometry, geometry, number [,
/// units]. On the ellipsoid where the first one's system is geographic, else in its plane; metres without
/// units. NULL where one is no geometry or empty. A failure is an error with its text.
ORVANE_ENGINE_EXPORT void objectDistance(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void withinDistance(sqlite3_context* context, int count, sqlite3_value** values);

/// What conditions on distances hand to scans: the centre, the distance, its units, a geometry::DistanceKind,
/// and whether the centre is the first operand of the measure. The result is a NearnessBlob.
ORVANE_ENGINE_EXPORT void nearness(sqlite3_context* context, int count, sqlite3_value** values);
/// Geometry, NearnessBlob: whether the distance may be as asked, wherever no scan has looked it up. 1, or
/// NULL for NULL.
ORVANE_ENGINE_EXPORT void isNear(sqlite3_context* context, int count, sqlite3_value** values);
/// Two geometries: whether they may share a position, wherever no scan has looked it up. 1, or NULL for NULL
/// and what is no blob.
ORVANE_ENGINE_EXPORT void mayMeet(sqlite3_context* context, int count, sqlite3_value** values);

/// Coordinates of the centroid; NULL for an empty geometry.
ORVANE_ENGINE_EXPORT void centroidX(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void centroidY(sqlite3_context* context, int count, sqlite3_value** values);

/// Relations: geometry, geometry; 1 or 0. An unreadable blob gives NULL. The containing geometry's system
/// counts where systems differ, for intersects the first one's. A geometry met again in the statement is
/// neither decoded nor prepared again.
ORVANE_ENGINE_EXPORT void containsCentroid(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void centroidWithin(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void intersects(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void disjoint(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void containsEntirely(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void entirelyWithin(sqlite3_context* context, int count, sqlite3_value** values);

ORVANE_ENGINE_EXPORT void covers(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void coveredBy(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void equals(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void touches(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void crosses(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void overlaps(sqlite3_context* context, int count, sqlite3_value** values);
/// geometry, geometry, pattern of nine: geometry::matches; NULL for a collection as well.
ORVANE_ENGINE_EXPORT void matchesPattern(sqlite3_context* context, int count, sqlite3_value** values);
/// geometry, geometry: geometry::relationMatrix; NULL for a collection as well. matrix, pattern: whether they
/// match.
ORVANE_ENGINE_EXPORT void relationMatrix(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void matrixMatches(sqlite3_context* context, int count, sqlite3_value** values);

/// Relations of the envelopes of two geometries in the system of the first; 1 or 0, NULL where one is no
/// geometry or the second has no place in that system. The first also takes two corners as four numbers in
/// place of the second geometry.
ORVANE_ENGINE_EXPORT void envelopesIntersect(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void envelopesDisjoint(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void envelopeContains(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void envelopeWithin(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void envelopesEqual(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void envelopesTouch(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void envelopesOverlap(sqlite3_context* context, int count, sqlite3_value** values);

/// The valid form of a geometry (geometry::normalizedGeometry), an engine blob.
ORVANE_ENGINE_EXPORT void makeGeoValid(sqlite3_context* context, int count, sqlite3_value** values);
/// A position on the geometry (geometry::PointOnSurface), a SpatiaLite blob; NULL for an empty geometry.
ORVANE_ENGINE_EXPORT void centroid(sqlite3_context* context, int count, sqlite3_value** values);
/// What the plug-ins' extensions find that resembles the geometry, else the geometry itself; an engine blob.
ORVANE_ENGINE_EXPORT void resemblance(sqlite3_context* context, int count, sqlite3_value** values);

/// geometry [, coordinate system]: the engine blob; a valid coordinate system is assigned without
/// reprojection.
ORVANE_ENGINE_EXPORT void toOrvGeo(sqlite3_context* context, int count, sqlite3_value** values);
/// geometry, target [, default]: reprojected, an engine blob or a SpatiaLite blob. The default is for a
/// geometry without coordinate system. NULL when the target is no coordinate system or a position has no
/// image in it.
ORVANE_ENGINE_EXPORT void transformToOrvGeo(sqlite3_context* context, int count, sqlite3_value** values);
ORVANE_ENGINE_EXPORT void transformToSLGeo(sqlite3_context* context, int count, sqlite3_value** values);
/// The same, the systems by EPSG codes or texts. NULL for NULL, and where a position has no image; a system
/// that is not known, and a geometry without one, are errors.
ORVANE_ENGINE_EXPORT void transform(sqlite3_context* context, int count, sqlite3_value** values);
/// The SpatiaLite blob of a geometry, curves approximated.
ORVANE_ENGINE_EXPORT void fromOrvGeo(sqlite3_context* context, int count, sqlite3_value** values);

/// The tagged string of the geometry's coordinate system; of what is no geometry, that of the table of this
/// name. NULL for none.
ORVANE_ENGINE_EXPORT void retrieveCS(sqlite3_context* context, int count, sqlite3_value** values);
/// The tagged string of the coordinate system of the table of this name; NULL for none.
ORVANE_ENGINE_EXPORT void retrieveTableCS(sqlite3_context* context, int count, sqlite3_value** values);

/// The aggregates of geometries. What is no geometry, and empty ones, are left out; NULL over none. The
/// result is in the coordinate system of the first geometry that has one: the others are reprojected to it,
/// an error where that cannot be, and those without a system are taken to be in it. Curves are made linear.
/// A SpatiaLite blob, an engine blob where the system has no EPSG code. Cancelled groups end at once.
struct ORVANE_ENGINE_EXPORT GeometryAggregate {
    static void step(sqlite3_context* context, int count, sqlite3_value** values);
};

/// The bounding box of all, of curves themselves: an area, or the line or point that it is.
struct ORVANE_ENGINE_EXPORT Extent {
    static void step(sqlite3_context* context, int count, sqlite3_value** values);
    static void final(sqlite3_context* context);
};

/// The multi-part geometry of all parts, or a collection when they are of different kinds; of one geometry,
/// that geometry. z and m are 0 where only others have them.
struct ORVANE_ENGINE_EXPORT Collect : GeometryAggregate {
    static void final(sqlite3_context* context);
};

/// The line through the positions of points and lines in the order of the rows; NULL over areas and fewer
/// than two positions.
struct ORVANE_ENGINE_EXPORT MakeLine : GeometryAggregate {
    static void final(sqlite3_context* context);
};

/// geometry::unionOf of the group.
struct ORVANE_ENGINE_EXPORT Union : GeometryAggregate {
    static void final(sqlite3_context* context);
};

/// geometry::polygonized of the group.
struct ORVANE_ENGINE_EXPORT Polygonize : GeometryAggregate {
    static void final(sqlite3_context* context);
};

} // namespace orvane::engine
