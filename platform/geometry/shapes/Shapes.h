#pragma once

#include "platform/geometry/shapes/Geometry.h"

#include <array>
#include <vector>

namespace orvane::geometry {

/// A position. Empty when x and y are not-a-number.
class ORVANE_PLATFORM_EXPORT Point final : public GeometryKind<Point> {
public:
    explicit Point(Dimensions dimensions = Dimensions::XY);
    Point(double x, double y);
    /// Reads strideOf(dimensions) doubles.
    Point(Dimensions dimensions, const double* ordinates);

    double x() const { return ordinates_[0]; }
    double y() const { return ordinates_[1]; }
    /// x, y, then z and m where there are any.
    const double* ordinates() const { return ordinates_.data(); }

    bool isEmpty() const override;
    Envelope envelope() const override;
    std::uint64_t weight() const override { return 1; }
    bool equals(const Geometry& other) const override;
    std::shared_ptr<Geometry> mapped(const PositionMap& map) const override;

private:
    std::array<double, 4> ordinates_;
};

/// A line of straight segments.
class ORVANE_PLATFORM_EXPORT LineString final : public GeometryKind<LineString> {
public:
    explicit LineString(CoordinateSequence coordinates);

    const CoordinateSequence& coordinates() const { return coordinates_; }

    bool isEmpty() const override { return coordinates_.isEmpty(); }
    Envelope envelope() const override { return coordinates_.envelope(); }
    std::uint64_t weight() const override { return 1 + coordinates_.size(); }
    bool equals(const Geometry& other) const override;
    std::shared_ptr<Geometry> mapped(const PositionMap& map) const override;

private:
    CoordinateSequence coordinates_;
};

/// An area bounded by rings of straight segments: the shell, then holes. Rings should be closed, in either
/// direction.
class ORVANE_PLATFORM_EXPORT Polygon final : public GeometryKind<Polygon> {
public:
    Polygon(Dimensions dimensions, std::vector<CoordinateSequence> rings);

    const std::vector<CoordinateSequence>& rings() const { return rings_; }

    bool isEmpty() const override;
    Envelope envelope() const override;
    std::uint64_t weight() const override;
    bool equals(const Geometry& other) const override;
    std::shared_ptr<Geometry> mapped(const PositionMap& map) const override;

private:
    std::vector<CoordinateSequence> rings_;
};

/// Parts of one geometry: MultiPoint, MultiLineString, MultiPolygon, MultiCurve, MultiSurface, or
/// GeometryCollection of anything.
class ORVANE_PLATFORM_EXPORT GeometryCollection final : public GeometryKind<GeometryCollection> {
public:
    /// Throws std::invalid_argument for another type, a null part, or one that the type does not take.
    GeometryCollection(GeometryType type, Dimensions dimensions, std::vector<GeometryPtr> parts);

    const std::vector<GeometryPtr>& parts() const { return parts_; }
    static bool takes(GeometryType collection, GeometryType part);

    bool isEmpty() const override;
    Envelope envelope() const override;
    std::uint64_t weight() const override { return weight_; }
    bool equals(const Geometry& other) const override;
    std::shared_ptr<Geometry> mapped(const PositionMap& map) const override;

private:
    void saveShape(serialization::TrackingOutputArchive& archive) const override;

    std::vector<GeometryPtr> parts_;
    std::uint64_t weight_ = 1;
};

} // namespace orvane::geometry
