#pragma once

#include "platform/Export.h"
#include "platform/geometry/shapes/Shapes.h"

#include <geodesic.h>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace orvane::geometry {

/// A line, or several one behind the other, measured along: by geodesics in metres where the system is
/// geographic, else in units of the plane. z and m change evenly along each edge. Curves are approximated.
class ORVANE_PLATFORM_EXPORT LinePath {
public:
    /// Throws std::runtime_error for what is no line or has none, and for coordinates that are not finite.
    explicit LinePath(const GeometryPtr& line);
    /// Whether it is made of lines, at least one of them not empty.
    static bool isLine(const Geometry& geometry);

    double length() const { return length_; }
    const std::shared_ptr<cs::CoordSystem>& coordSystem() const { return system_; }
    Dimensions dimensions() const { return dimensions_; }
    /// Of each edge, in their order; edges without length only when asked for.
    std::vector<double> edgeLengths(bool withEmpty) const;

    /// x, y, then z and m where there are any, so far along; at an end beyond it.
    std::array<double, 4> at(double along) const;
    std::shared_ptr<Point> pointAt(double along) const;
    /// How far along the position is that is nearest to another.
    double nearestTo(const Point& position) const;
    /// The part between two places, one point when they are the same: a line, or several.
    std::shared_ptr<Geometry> between(double from, double to) const;
    /// Points every `step` metres or units, without the begin, with the way so far over `unit` as m. Throws
    /// std::runtime_error for more than two million.
    std::shared_ptr<Geometry> everyStep(double step, double unit) const;

    /// Where m has a value, and the parts where it lies between two; null where nothing has. Throw
    /// std::runtime_error without m.
    std::shared_ptr<Geometry> whereM(double value) const;
    std::shared_ptr<Geometry> whereMBetween(double least, double most) const;
    /// m at the position that is nearest to another. Throws std::runtime_error without m.
    double mNearestTo(const Point& position) const;
    /// Whether the line is one, with m that grows from vertex to vertex.
    bool isTrajectory() const;
    /// The first position with this m; null where there is none. Throws std::runtime_error without m.
    std::shared_ptr<Point> firstWhereM(double value) const;

    /// From begin to end, straight between `extra` places at even ways along.
    double straightened(std::size_t extra) const;
    /// How much z rises, and how much it falls, from begin to end.
    std::pair<double, double> climbs() const;

private:
    struct Vertex {
        std::array<double, 4> ordinates;
        double along;
        bool isFirst; ///< of a part
    };

    void add(const Geometry& geometry);
    double distance(const double* a, const double* b) const;
    /// So much of the way from one vertex to the next, 0 to 1.
    std::array<double, 4> within(std::size_t end, double part) const;
    void requireM() const;
    std::size_t mPosition() const { return hasZ(dimensions_) ? 3 : 2; }
    std::shared_ptr<LineString> lineOf(const std::vector<std::array<double, 4>>& positions) const;
    std::shared_ptr<Point> pointOf(const std::array<double, 4>& position) const;
    std::shared_ptr<Geometry> gathered(std::vector<GeometryPtr> points, std::vector<GeometryPtr> lines) const;

    std::shared_ptr<cs::CoordSystem> system_;
    bool onEarth_ = false;
    geod_geodesic ellipsoid_{};
    double degrees_ = 1.0; ///< in one unit of the coordinates
    Dimensions dimensions_ = Dimensions::XY;
    std::vector<Vertex> vertices_;
    double length_ = 0.0;
};

} // namespace orvane::geometry
