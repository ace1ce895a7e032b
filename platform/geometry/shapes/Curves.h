#pragma once

#include "platform/geometry/shapes/Shapes.h"

#include <QSizeF>

#include <vector>

namespace orvane::geometry {

/// A curve that is not made of straight segments only.
class ORVANE_PLATFORM_EXPORT ApproximableCurve : public Geometry {
public:
    /// The line that stays within a distance of the curve: the smaller side of `tolerance`, in units of the
    /// coordinates. An invalid or empty size means one ten-thousandth of the radius of each arc. No arc gets
    /// more than 65,536 segments. Ends of arcs are kept exactly, z and m are interpolated, the coordinate
    /// system stays.
    virtual std::shared_ptr<const Geometry> approximateGeometry(QSizeF tolerance) const = 0;
    std::shared_ptr<Geometry> mapped(const PositionMap& map) const final;

protected:
    using Geometry::Geometry;
};

/// A surface whose border is such a curve.
class ORVANE_PLATFORM_EXPORT ApproximableSurface : public Geometry {
public:
    /// As ApproximableCurve::approximateGeometry.
    virtual std::shared_ptr<const Geometry> approximateGeometry(QSizeF tolerance) const = 0;
    std::shared_ptr<Geometry> mapped(const PositionMap& map) const final;

protected:
    using Geometry::Geometry;
};

/// Circular arcs, each through three positions: begin, any on the arc, end, which begins the next. Three on
/// one straight line are a straight segment; an end that equals the begin makes a full circle, the middle
/// being opposite.
class ORVANE_PLATFORM_EXPORT CircularString final : public GeometryKind<CircularString, ApproximableCurve> {
public:
    /// Throws std::invalid_argument for an even number of positions, and for one.
    explicit CircularString(CoordinateSequence coordinates);

    const CoordinateSequence& coordinates() const { return coordinates_; }

    std::shared_ptr<const Geometry> approximateGeometry(QSizeF tolerance) const override;
    bool isEmpty() const override { return coordinates_.isEmpty(); }
    Envelope envelope() const override;
    std::uint64_t weight() const override { return 1 + coordinates_.size(); }
    bool equals(const Geometry& other) const override;

private:
    CoordinateSequence coordinates_;
};

/// Lines and circular strings, each beginning where the one before ends.
class ORVANE_PLATFORM_EXPORT CompoundCurve final : public GeometryKind<CompoundCurve, ApproximableCurve> {
public:
    /// Throws std::invalid_argument for a part of another kind, and for null.
    CompoundCurve(Dimensions dimensions, std::vector<GeometryPtr> parts);

    const std::vector<GeometryPtr>& parts() const { return parts_; }

    std::shared_ptr<const Geometry> approximateGeometry(QSizeF tolerance) const override;
    bool isEmpty() const override;
    Envelope envelope() const override;
    std::uint64_t weight() const override;
    bool equals(const Geometry& other) const override;

private:
    std::vector<GeometryPtr> parts_;
};

/// A polygon whose rings are lines, circular strings or compound curves: the shell, then holes.
class ORVANE_PLATFORM_EXPORT CurvePolygon final : public GeometryKind<CurvePolygon, ApproximableSurface> {
public:
    /// Throws std::invalid_argument for a ring of another kind, and for null.
    CurvePolygon(Dimensions dimensions, std::vector<GeometryPtr> rings);

    const std::vector<GeometryPtr>& rings() const { return rings_; }

    std::shared_ptr<const Geometry> approximateGeometry(QSizeF tolerance) const override;
    bool isEmpty() const override;
    Envelope envelope() const override;
    std::uint64_t weight() const override;
    bool equals(const Geometry& other) const override;

private:
    std::vector<GeometryPtr> rings_;
};

/// The area inside an ellipse.
class ORVANE_PLATFORM_EXPORT Ellipse final : public GeometryKind<Ellipse, ApproximableSurface> {
public:
    /// The first semi-axis is turned by `rotation` degrees, anticlockwise from east. Throws
    /// std::invalid_argument for semi-axes that are not positive and finite.
    Ellipse(double centreX, double centreY, double semiAxisA, double semiAxisB, double rotation = 0.0);

    double centreX() const { return centreX_; }
    double centreY() const { return centreY_; }
    double semiAxisA() const { return semiAxisA_; }
    double semiAxisB() const { return semiAxisB_; }
    double rotation() const { return rotation_; }
    bool isCircle() const { return semiAxisA_ == semiAxisB_; }

    std::shared_ptr<const Geometry> approximateGeometry(QSizeF tolerance) const override;
    bool isEmpty() const override { return false; }
    Envelope envelope() const override;
    std::uint64_t weight() const override { return 1; }
    bool equals(const Geometry& other) const override;

private:
    void saveShape(serialization::TrackingOutputArchive& archive) const override;

    double centreX_, centreY_, semiAxisA_, semiAxisB_, rotation_;
};

/// A rectangle along the axes whose corners are quarters of an ellipse; with radii of 0 a plain rectangle.
class ORVANE_PLATFORM_EXPORT RoundedRectangle final
    : public GeometryKind<RoundedRectangle, ApproximableSurface> {
public:
    /// Radii are cut to half the sides. Throws std::invalid_argument for an empty or infinite rectangle and
    /// for negative radii.
    RoundedRectangle(const Envelope& rectangle, double radiusX, double radiusY);

    const Envelope& rectangle() const { return rectangle_; }
    double radiusX() const { return radiusX_; }
    double radiusY() const { return radiusY_; }

    std::shared_ptr<const Geometry> approximateGeometry(QSizeF tolerance) const override;
    bool isEmpty() const override { return false; }
    Envelope envelope() const override { return rectangle_; }
    std::uint64_t weight() const override { return 1; }
    bool equals(const Geometry& other) const override;

private:
    void saveShape(serialization::TrackingOutputArchive& archive) const override;

    Envelope rectangle_;
    double radiusX_, radiusY_;
};

/// The geometry with every curve in it approximated (ApproximableCurve::approximateGeometry): the same
/// pointer when there is none, null for null.
ORVANE_PLATFORM_EXPORT GeometryPtr linearized(const GeometryPtr& geometry, QSizeF tolerance = QSizeF());
/// Whether a curve is anywhere in it.
ORVANE_PLATFORM_EXPORT bool isCurved(const Geometry& geometry);
/// The same shape in the kinds of well-known binary: circles and rectangles rounded in circles become curve
/// polygons, other ellipses are approximated. The same pointer when there is nothing to do.
ORVANE_PLATFORM_EXPORT GeometryPtr inStandardKinds(const GeometryPtr& geometry);

} // namespace orvane::geometry
