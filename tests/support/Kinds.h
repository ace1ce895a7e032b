#pragma once

#include "platform/geometry/forms/TextFormats.h"
#include "platform/geometry/shapes/Curves.h"

#include <string>
#include <vector>

namespace orvane::tests {

inline std::string toWkt(const geometry::Geometry& geometry) {
    std::string text;
    geometry::appendWkt(geometry, text);
    return text;
}

inline geometry::CoordinateSequence positions(geometry::Dimensions dimensions, std::size_t count,
                                              double start) {
    return geometry::CoordinateSequence(dimensions, count, [&](double* target) {
        for (std::size_t i = 0; i < count * strideOf(dimensions); ++i) {
            target[i] = start + static_cast<double>(i * i % 17) * 0.37;
        }
    });
}

/// A closed ring of five positions.
inline geometry::CoordinateSequence ring(geometry::Dimensions dimensions, double x, double y, double size) {
    const double corners[5][2] = {{x, y}, {x + size, y}, {x + size, y + size}, {x, y + size}, {x, y}};
    return geometry::CoordinateSequence(dimensions, 5, [&](double* target) {
        for (const auto& corner : corners) {
            *target++ = corner[0];
            *target++ = corner[1];
            for (std::size_t i = 2; i < strideOf(dimensions); ++i) {
                *target++ = corner[0] * 10 + corner[1];
            }
        }
    });
}

/// A geometry of every linear kind, and empty ones.
inline std::vector<geometry::GeometryPtr> linearKinds(geometry::Dimensions dimensions) {
    using namespace geometry;
    const double ordinates[4] = {-1.5, 2.25, 3e10, -0.0};
    const GeometryPtr point = std::make_shared<Point>(dimensions, ordinates);
    const GeometryPtr line = std::make_shared<LineString>(positions(dimensions, 7, -3));
    const GeometryPtr polygon = std::make_shared<Polygon>(
        dimensions,
        std::vector{ring(dimensions, 0, 0, 10), ring(dimensions, 2, 2, 3), ring(dimensions, 6, 6, 1)});
    const auto collection = [&](GeometryType type, std::vector<GeometryPtr> parts) {
        return std::make_shared<GeometryCollection>(type, dimensions, std::move(parts));
    };
    return {point,
            line,
            polygon,
            collection(GeometryType::MultiPoint, {point, point}),
            collection(GeometryType::MultiLineString, {line}),
            collection(GeometryType::MultiPolygon, {polygon, polygon}),
            collection(GeometryType::GeometryCollection, {point, line, polygon}),
            std::make_shared<Point>(dimensions),
            std::make_shared<LineString>(CoordinateSequence(dimensions)),
            std::make_shared<Polygon>(dimensions, std::vector<CoordinateSequence>()),
            collection(GeometryType::MultiPolygon, {}),
            collection(GeometryType::GeometryCollection, {})};
}

/// Arcs, a compound curve, a curve polygon, and collections of curves.
inline std::vector<geometry::GeometryPtr> curvedKinds(geometry::Dimensions dimensions) {
    using namespace geometry;
    const GeometryPtr arcs = std::make_shared<CircularString>(positions(dimensions, 5, 1));
    const GeometryPtr line = std::make_shared<LineString>(positions(dimensions, 2, 1));
    const GeometryPtr compound = std::make_shared<CompoundCurve>(dimensions, std::vector{line, arcs});
    const GeometryPtr surface =
        std::make_shared<CurvePolygon>(dimensions, std::vector<GeometryPtr>{compound, arcs, line});
    const auto collection = [&](GeometryType type, std::vector<GeometryPtr> parts) {
        return std::make_shared<GeometryCollection>(type, dimensions, std::move(parts));
    };
    return {arcs,
            compound,
            surface,
            collection(GeometryType::MultiCurve, {arcs, line, compound}),
            collection(GeometryType::MultiSurface, {surface}),
            collection(GeometryType::GeometryCollection, {collection(GeometryType::MultiCurve, {arcs})})};
}

/// Both.
inline std::vector<geometry::GeometryPtr> allKinds(geometry::Dimensions dimensions) {
    std::vector<geometry::GeometryPtr> all = linearKinds(dimensions);
    for (const geometry::GeometryPtr& curve : curvedKinds(dimensions)) {
        all.push_back(curve);
    }
    return all;
}

} // namespace orvane::tests
