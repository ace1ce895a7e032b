#include "platform/geometry/making/RoundShapes.h"

#include <cmath>
#include <numbers>
#include <vector>

namespace orvane::geometry {

namespace {

constexpr double turn = 360.0;

void appendAt(const RoundShape& shape, double angle, std::vector<double>& positions) {
    const double radians = angle * std::numbers::pi / 180.0;
    positions.push_back(shape.x + shape.radiusX * std::cos(radians));
    positions.push_back(shape.y + shape.radiusY * std::sin(radians));
}

std::vector<double> arcPositions(const RoundShape& shape, double begin, double end) {
    const double first = std::fmod(begin, turn);
    const double whole = std::fmod(end - begin, turn);
    const double span = whole < 0.0 ? whole + turn : whole;
    std::vector<double> positions;
    for (int i = 0; i * shape.step < span; ++i) {
        appendAt(shape, first + i * shape.step, positions);
    }
    appendAt(shape, first + span, positions);
    return positions;
}

CoordinateSequence sequenceOf(const std::vector<double>& positions) {
    return CoordinateSequence(Dimensions::XY, positions);
}

std::shared_ptr<Geometry> areaOf(std::vector<double> ring) {
    ring.insert(ring.end(), {ring[0], ring[1]});
    return std::make_shared<Polygon>(Dimensions::XY, std::vector{sequenceOf(ring)});
}

} // namespace

std::shared_ptr<Geometry> ellipse(const RoundShape& shape) {
    std::vector<double> positions;
    for (int i = 0; i * shape.step < turn; ++i) {
        appendAt(shape, i * shape.step, positions);
    }
    positions.insert(positions.end(), {positions[0], positions[1]});
    return std::make_shared<LineString>(sequenceOf(positions));
}

std::shared_ptr<Geometry> arc(const RoundShape& shape, double begin, double end) {
    std::vector<double> positions = arcPositions(shape, begin, end);
    if (positions.size() == 2) {
        positions.insert(positions.end(), {positions[0], positions[1]}); // an arc of no length
    }
    return std::make_shared<LineString>(sequenceOf(positions));
}

std::shared_ptr<Geometry> sector(const RoundShape& shape, double begin, double end) {
    std::vector<double> ring{shape.x, shape.y};
    const std::vector<double> outer = arcPositions(shape, begin, end);
    ring.insert(ring.end(), outer.begin(), outer.end());
    return areaOf(std::move(ring));
}

std::shared_ptr<Geometry> stripe(const RoundShape& inner, const RoundShape& outer, double begin, double end) {
    std::vector<double> ring = arcPositions(inner, begin, end);
    const std::vector<double> back = arcPositions(outer, begin, end);
    for (std::size_t i = back.size(); i > 0; i -= 2) {
        ring.insert(ring.end(), {back[i - 2], back[i - 1]});
    }
    return areaOf(std::move(ring));
}

} // namespace orvane::geometry
