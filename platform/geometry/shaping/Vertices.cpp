#include "platform/geometry/shaping/Vertices.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/measures/Geodesics.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/geometry/shapes/Failure.h"
#include "platform/geometry/shaping/Sequences.h"
#include "platform/work/Cancellation.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

namespace orvane::geometry {

namespace {

/// Writes positions between those of sequences.
class Densifier {
public:
    /// How many equal pieces a length is to be cut into. Throws std::runtime_error for too many in all.
    std::size_t pieces(double length, double longest) {
        const double count = std::max(1.0, std::ceil(length / longest * (1 - 1e-12)));
        made_ += count - 1;
        if (!(made_ <= mostNewPositions)) {
            throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Результат был бы слишком велик."));
        }
        cancellation_.check();
        return static_cast<std::size_t>(count);
    }

private:
    const work::Cancellation cancellation_;
    double made_ = 0;
};

/// Appends the position `part` of the way, 0 to 1, from a to b; x and y may be told.
void appendBetween(const double* a, const double* b, double part, std::size_t stride,
                   std::vector<double>& values) {
    for (std::size_t i = 0; i < stride; ++i) {
        values.push_back(a[i] + part * (b[i] - a[i]));
    }
}

double squareDistance(const double* a, const double* b) {
    return (a[0] - b[0]) * (a[0] - b[0]) + (a[1] - b[1]) * (a[1] - b[1]);
}

CoordinateSequence segmentized(const CoordinateSequence& positions, double longest, Densifier& densifier) {
    std::vector<double> values;
    const std::size_t stride = positions.stride();
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const double* const b = positions.position(i);
        if (i > 0) {
            const double* const a = positions.position(i - 1);
            const std::size_t count = densifier.pieces(std::hypot(b[0] - a[0], b[1] - a[1]), longest);
            for (std::size_t part = 1; part < count; ++part) {
                appendBetween(a, b, double(part) / double(count), stride, values);
            }
        }
        values.insert(values.end(), b, b + stride);
    }
    return CoordinateSequence(positions.dimensions(), values);
}

CoordinateSequence segmentizedOn(const geod_geodesic& ellipsoid, const CoordinateSequence& positions,
                                 double longest, Densifier& densifier) {
    std::vector<double> values;
    const std::size_t stride = positions.stride();
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const double* const b = positions.position(i);
        if (i > 0) {
            const double* const a = positions.position(i - 1);
            geod_geodesicline line;
            geod_inverseline(&line, &ellipsoid, a[1], a[0], b[1], b[0], 0);
            const std::size_t count = densifier.pieces(line.s13, longest);
            for (std::size_t part = 1; part < count; ++part) {
                const double share = double(part) / double(count);
                appendBetween(a, b, share, stride, values);
                double* const made = values.data() + values.size() - stride;
                geod_position(&line, line.s13 * share, made + 1, made, nullptr);
            }
        }
        values.insert(values.end(), b, b + stride);
    }
    return CoordinateSequence(positions.dimensions(), values);
}

/// Points that are kept, by the square of the plane in which they lie.
class KeptPoints {
public:
    explicit KeptPoints(double tolerance) : tolerance_(tolerance) {}

    bool add(double x, double y) {
        const double size = tolerance_ > 0.0 ? tolerance_ : 1.0;
        const double column = tolerance_ > 0.0 ? std::floor(x / size) : x;
        const double row = tolerance_ > 0.0 ? std::floor(y / size) : y;
        const int reach = tolerance_ > 0.0 ? 1 : 0;
        const double place[] = {x, y};
        for (int i = -reach; i <= reach; ++i) {
            for (int j = -reach; j <= reach; ++j) {
                const auto near = points_.equal_range({column + i, row + j});
                for (auto point = near.first; point != near.second; ++point) {
                    const double kept[] = {point->second.first, point->second.second};
                    if (squareDistance(place, kept) <= tolerance_ * tolerance_) {
                        return false;
                    }
                }
            }
        }
        points_.insert({{column, row}, {x, y}});
        return true;
    }

private:
    double tolerance_;
    std::multimap<std::pair<double, double>, std::pair<double, double>> points_;
};

std::shared_ptr<Geometry> withoutRepeatedPoints(const Geometry& linear, double tolerance) {
    if (linear.type() == GeometryType::MultiPoint) {
        KeptPoints kept(tolerance);
        return withSequences(linear, [&](const CoordinateSequence& position, Role) {
            return kept.add(position.x(0), position.y(0)) ? position
                                                          : CoordinateSequence(position.dimensions());
        });
    }
    if (const auto* collection = dynamic_cast<const GeometryCollection*>(&linear)) {
        std::vector<GeometryPtr> parts;
        for (const GeometryPtr& part : collection->parts()) {
            parts.push_back(withoutRepeatedPoints(*part, tolerance));
        }
        auto result =
            std::make_shared<GeometryCollection>(linear.type(), linear.dimensions(), std::move(parts));
        result->setCoordSystem(linear.coordSystem());
        return result;
    }
    return withSequences(linear, [tolerance](const CoordinateSequence& positions, Role role) {
        CoordinateSequence rest = withoutRepetition(positions, tolerance);
        const std::size_t least = role == Role::Position ? 1 : role == Role::Line ? 2 : 4;
        return rest.size() < least ? positions : rest;
    });
}

} // namespace

std::shared_ptr<Geometry> segmentized(const GeometryPtr& geometry, double longest) {
    Densifier densifier;
    return withSequences(*linearized(geometry), [&](const CoordinateSequence& positions, Role) {
        return segmentized(positions, longest, densifier);
    });
}

std::shared_ptr<Geometry> geodesicallySegmentized(const Geometry& geometry, double longest) {
    const GeographicShape shape = onEllipsoid(geometry);
    Densifier densifier;
    return fromDegrees(withSequences(*shape.geometry,
                                     [&](const CoordinateSequence& positions, Role) {
                                         return segmentizedOn(shape.ellipsoid, positions, longest, densifier);
                                     }),
                       geometry.coordSystem());
}

CoordinateSequence withoutRepetition(const CoordinateSequence& positions, double tolerance) {
    std::vector<double> values;
    const std::size_t stride = positions.stride();
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const double* const position = positions.position(i);
        if (!values.empty() &&
            squareDistance(values.data() + values.size() - stride, position) <= tolerance * tolerance) {
            if (i + 1 < positions.size() || values.size() == stride) {
                continue;
            }
            values.resize(values.size() - stride); // for the end, which stays
        }
        values.insert(values.end(), position, position + stride);
    }
    return CoordinateSequence(positions.dimensions(), values);
}

std::shared_ptr<Geometry> withoutRepeatedPoints(const GeometryPtr& geometry, double tolerance) {
    return withoutRepeatedPoints(*linearized(geometry), tolerance);
}

std::shared_ptr<Geometry> snappedToGrid(const GeometryPtr& geometry, const Grid& grid) {
    const auto onGrid = [&](double value, std::size_t axis) {
        const double step = grid.step[axis];
        return step > 0.0 ? std::nearbyint((value - grid.origin[axis]) / step) * step + grid.origin[axis]
                          : value;
    };
    return withSequences(*linearized(geometry), [&](const CoordinateSequence& positions, Role role) {
        const Dimensions dimensions = positions.dimensions();
        const std::size_t stride = positions.stride();
        const CoordinateSequence rounded(dimensions, positions.size(), [&](double* target) {
            for (std::size_t i = 0; i < positions.size() * stride; ++i) {
                const std::size_t ordinate = i % stride;
                const std::size_t axis = ordinate == 2 && !hasZ(dimensions) ? 3 : ordinate;
                target[i] = onGrid(positions.data()[i], axis);
            }
        });
        const CoordinateSequence rest = withoutRepetition(rounded, 0.0);
        const std::size_t least = role == Role::Position ? 1 : role == Role::Line ? 2 : 4;
        return rest.size() < least ? CoordinateSequence(dimensions) : rest;
    });
}

} // namespace orvane::geometry
