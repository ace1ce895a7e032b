#include "platform/geometry/making/LinePath.h"

#include "platform/cs/CoordSystem.h"
#include "platform/geometry/measures/Geodesics.h"
#include "platform/geometry/shapes/Curves.h"
#include "platform/geometry/shapes/Failure.h"

#include <algorithm>
#include <cmath>

namespace orvane::geometry {

namespace {

/// The way along a geodesic, at most its length, to where it is nearest to a position: the angle to it
/// changes its sign there. Halving, for the function has one sign change where the way is less than a quarter
/// of the Earth.
double footOn(const geod_geodesic& ellipsoid, const double* begin, const double* end, const double* position,
              double length) {
    geod_geodesicline line;
    geod_inverseline(&line, &ellipsoid, begin[1], begin[0], end[1], end[0], 0);
    const auto goesOn = [&](double along) {
        double latitude = 0.0;
        double longitude = 0.0;
        double ahead = 0.0;
        double towards = 0.0;
        geod_position(&line, along, &latitude, &longitude, &ahead);
        geod_inverse(&ellipsoid, latitude, longitude, position[1], position[0], nullptr, &towards, nullptr);
        return std::abs(std::remainder(towards - ahead, 360.0)) < 90.0;
    };
    if (!goesOn(0.0)) {
        return 0.0;
    }
    if (goesOn(length)) {
        return length;
    }
    double low = 0.0;
    double high = length;
    constexpr double precision = 1e-7; // metres
    while (high - low > precision) {
        const double middle = (low + high) / 2.0;
        if (middle <= low || middle >= high) {
            break;
        }
        (goesOn(middle) ? low : high) = middle;
    }
    return low;
}

} // namespace

bool LinePath::isLine(const Geometry& geometry) {
    if (const auto* collection = dynamic_cast<const GeometryCollection*>(&geometry)) {
        const auto& parts = collection->parts();
        return !geometry.isEmpty() && std::all_of(parts.begin(), parts.end(), [](const GeometryPtr& part) {
            return part->isEmpty() || isLine(*part);
        });
    }
    return !geometry.isEmpty() &&
           (geometry.type() == GeometryType::LineString || geometry.type() == GeometryType::CircularString ||
            geometry.type() == GeometryType::CompoundCurve);
}

LinePath::LinePath(const GeometryPtr& line) : system_(line->coordSystem()), dimensions_(line->dimensions()) {
    if (!isLine(*line)) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Нужна линия."));
    }
    onEarth_ = system_ && system_->isGeographic();
    if (onEarth_) {
        ellipsoid_ = ellipsoidOf(*system_);
        degrees_ = degreesPerUnit(*system_);
    }
    add(*linearized(line));
}

void LinePath::add(const Geometry& geometry) {
    if (const auto* collection = dynamic_cast<const GeometryCollection*>(&geometry)) {
        for (const GeometryPtr& part : collection->parts()) {
            add(*part);
        }
        return;
    }
    const CoordinateSequence& sequence = static_cast<const LineString&>(geometry).coordinates();
    const bool z = hasZ(dimensions_) && hasZ(sequence.dimensions());
    const bool m = hasM(dimensions_) && hasM(sequence.dimensions());
    for (std::size_t i = 0; i < sequence.size(); ++i) {
        const double* position = sequence.position(i);
        Vertex vertex{{position[0], position[1], 0.0, 0.0}, length_, i == 0};
        if (!std::isfinite(position[0]) || !std::isfinite(position[1]) ||
            (onEarth_ && !(std::abs(position[1] * degrees_) <= 90.0 + 1e-6))) {
            throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Координата геометрии не конечное число."));
        }
        if (z) {
            vertex.ordinates[2] = position[2];
        }
        if (m) {
            vertex.ordinates[mPosition()] = position[strideOf(sequence.dimensions()) - 1];
        }
        if (i > 0) {
            length_ += distance(vertices_.back().ordinates.data(), position);
            vertex.along = length_;
        }
        vertices_.push_back(vertex);
    }
}

double LinePath::distance(const double* a, const double* b) const {
    if (!onEarth_) {
        return std::hypot(b[0] - a[0], b[1] - a[1]);
    }
    double distance = 0.0;
    geod_inverse(&ellipsoid_, a[1] * degrees_, a[0] * degrees_, b[1] * degrees_, b[0] * degrees_, &distance,
                 nullptr, nullptr);
    return distance;
}

std::vector<double> LinePath::edgeLengths(bool withEmpty) const {
    std::vector<double> lengths;
    for (std::size_t i = 1; i < vertices_.size(); ++i) {
        const double length = vertices_[i].along - vertices_[i - 1].along;
        if (!vertices_[i].isFirst && (withEmpty || length > 0.0)) {
            lengths.push_back(length);
        }
    }
    return lengths;
}

std::array<double, 4> LinePath::within(std::size_t end, double part) const {
    const auto& from = vertices_[end - 1].ordinates;
    const auto& to = vertices_[end].ordinates;
    if (part <= 0.0 || part >= 1.0) {
        return part <= 0.0 ? from : to;
    }
    std::array<double, 4> position{};
    for (std::size_t i = 0; i < 4; ++i) {
        position[i] = from[i] + part * (to[i] - from[i]);
    }
    if (onEarth_) {
        geod_geodesicline line;
        geod_inverseline(&line, &ellipsoid_, from[1] * degrees_, from[0] * degrees_, to[1] * degrees_,
                         to[0] * degrees_, 0);
        geod_position(&line, line.s13 * part, &position[1], &position[0], nullptr);
        position[0] /= degrees_;
        position[1] /= degrees_;
    }
    return position;
}

std::array<double, 4> LinePath::at(double along) const {
    const auto next =
        std::lower_bound(vertices_.begin(), vertices_.end(), along,
                         [](const Vertex& vertex, double place) { return vertex.along < place; });
    if (next == vertices_.end()) {
        return vertices_.back().ordinates;
    }
    if (next == vertices_.begin() || next->along == along) {
        return next->ordinates;
    }
    const double before = (next - 1)->along;
    return within(static_cast<std::size_t>(next - vertices_.begin()),
                  (along - before) / (next->along - before));
}

std::shared_ptr<Point> LinePath::pointOf(const std::array<double, 4>& position) const {
    auto point = std::make_shared<Point>(dimensions_, position.data());
    point->setCoordSystem(system_);
    return point;
}

std::shared_ptr<Point> LinePath::pointAt(double along) const {
    return pointOf(at(along));
}

double LinePath::nearestTo(const Point& position) const {
    double best = 0.0;
    double least = INFINITY;
    const double place[2] = {position.x(), position.y()};
    const auto note = [&](const double* here, double along) {
        if (const double apart = distance(here, place); apart < least) {
            least = apart;
            best = along;
        }
    };
    note(vertices_.front().ordinates.data(), 0.0);
    for (std::size_t i = 1; i < vertices_.size(); ++i) {
        const auto& from = vertices_[i - 1];
        const auto& to = vertices_[i];
        note(to.ordinates.data(), to.along);
        const double length = to.along - from.along;
        // The nearest place of an edge is no nearer than its begin less its length.
        if (to.isFirst || length <= 0.0 || distance(from.ordinates.data(), place) - length > least) {
            continue;
        }
        double part = 0.0;
        if (onEarth_) {
            const double ends[4] = {from.ordinates[0] * degrees_, from.ordinates[1] * degrees_,
                                    to.ordinates[0] * degrees_, to.ordinates[1] * degrees_};
            const double degrees[2] = {place[0] * degrees_, place[1] * degrees_};
            part = footOn(ellipsoid_, ends, ends + 2, degrees, length) / length;
        } else {
            const double x = to.ordinates[0] - from.ordinates[0];
            const double y = to.ordinates[1] - from.ordinates[1];
            part =
                ((place[0] - from.ordinates[0]) * x + (place[1] - from.ordinates[1]) * y) / (x * x + y * y);
        }
        if (part > 0.0 && part < 1.0) {
            note(within(i, part).data(), from.along + part * length);
        }
    }
    return best;
}

std::shared_ptr<LineString> LinePath::lineOf(const std::vector<std::array<double, 4>>& positions) const {
    const std::size_t stride = strideOf(dimensions_);
    auto line =
        std::make_shared<LineString>(CoordinateSequence(dimensions_, positions.size(), [&](double* target) {
            for (const auto& position : positions) {
                target = std::copy_n(position.begin(), stride, target);
            }
        }));
    line->setCoordSystem(system_);
    return line;
}

std::shared_ptr<Geometry> LinePath::gathered(std::vector<GeometryPtr> points,
                                             std::vector<GeometryPtr> lines) const {
    if (points.empty() && lines.empty()) {
        return nullptr;
    }
    GeometryType type = lines.empty() ? GeometryType::MultiPoint : GeometryType::MultiLineString;
    if (!points.empty() && !lines.empty()) {
        type = GeometryType::GeometryCollection;
    }
    points.insert(points.end(), lines.begin(), lines.end());
    auto all = std::make_shared<GeometryCollection>(type, dimensions_, std::move(points));
    all->setCoordSystem(system_);
    return all;
}

std::shared_ptr<Geometry> LinePath::between(double from, double to) const {
    if (from >= to) {
        return pointAt(from);
    }
    std::vector<GeometryPtr> lines;
    std::vector<std::array<double, 4>> positions{at(from)};
    const auto finish = [&] {
        if (positions.size() > 1) {
            lines.push_back(lineOf(positions));
        }
        positions.clear();
    };
    for (const Vertex& vertex : vertices_) {
        if (vertex.along > to || vertex.along < from) {
            continue;
        }
        if (vertex.isFirst) {
            finish();
        }
        if (vertex.along < to && (positions.empty() || vertex.along > from || vertex.isFirst)) {
            positions.push_back(vertex.ordinates);
        } else if (vertex.along == to && !positions.empty() && !vertex.isFirst) {
            break;
        }
    }
    if (!positions.empty()) {
        positions.push_back(at(to));
    }
    finish();
    return lines.size() == 1 ? lines.front()->clone() : gathered({}, std::move(lines));
}

std::shared_ptr<Geometry> LinePath::everyStep(double step, double unit) const {
    constexpr double most = 2'000'000;
    if (!(step > 0.0) || length_ / step > most) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Результат был бы слишком велик."));
    }
    const Dimensions dimensions = makeDimensions(hasZ(dimensions_), true);
    std::vector<GeometryPtr> points;
    for (std::size_t i = 1; static_cast<double>(i) * step <= length_ * (1.0 + 1e-12); ++i) {
        const double along = static_cast<double>(i) * step;
        std::array<double, 4> position = at(along);
        position[hasZ(dimensions_) ? 3 : 2] = along / unit;
        points.push_back(std::make_shared<Point>(dimensions, position.data()));
    }
    if (points.empty()) {
        return nullptr;
    }
    auto all = std::make_shared<GeometryCollection>(GeometryType::MultiPoint, dimensions, std::move(points));
    all->setCoordSystem(system_);
    return all;
}

void LinePath::requireM() const {
    if (!hasM(dimensions_)) {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "У геометрии нет значений m."));
    }
}

std::shared_ptr<Geometry> LinePath::whereM(double value) const {
    return whereMBetween(value, value);
}

std::shared_ptr<Geometry> LinePath::whereMBetween(double least, double most) const {
    requireM();
    const std::size_t m = mPosition();
    std::vector<GeometryPtr> points;
    std::vector<GeometryPtr> lines;
    std::vector<std::array<double, 4>> part;
    const auto add = [&part](const std::array<double, 4>& position) {
        if (part.empty() || part.back() != position) {
            part.push_back(position);
        }
    };
    const auto finish = [&] {
        if (part.size() == 1) {
            points.push_back(pointOf(part.front()));
        } else if (!part.empty()) {
            lines.push_back(lineOf(part));
        }
        part.clear();
    };
    for (std::size_t i = 0; i < vertices_.size(); ++i) {
        if (vertices_[i].isFirst) {
            finish();
        } else {
            const double from = vertices_[i - 1].ordinates[m];
            const double to = vertices_[i].ordinates[m];
            const auto note = [&](double bound) {
                if ((from < bound && bound < to) || (to < bound && bound < from)) {
                    std::array<double, 4> position = within(i, (bound - from) / (to - from));
                    position[m] = bound;
                    add(position);
                }
            };
            note(from < to ? least : most);
            note(from < to ? most : least);
        }
        const double here = vertices_[i].ordinates[m];
        if (here >= least && here <= most) {
            add(vertices_[i].ordinates);
        } else {
            finish();
        }
    }
    finish();
    return gathered(std::move(points), std::move(lines));
}

double LinePath::mNearestTo(const Point& position) const {
    requireM();
    return at(nearestTo(position))[mPosition()];
}

bool LinePath::isTrajectory() const {
    if (!hasM(dimensions_) || vertices_.size() < 2) {
        return false;
    }
    for (std::size_t i = 1; i < vertices_.size(); ++i) {
        if (vertices_[i].isFirst ||
            !(vertices_[i].ordinates[mPosition()] > vertices_[i - 1].ordinates[mPosition()])) {
            return false;
        }
    }
    return true;
}

std::shared_ptr<Point> LinePath::firstWhereM(double value) const {
    const auto found = whereM(value);
    if (!found) {
        return nullptr;
    }
    const GeometryPtr& first = static_cast<const GeometryCollection&>(*found).parts().front();
    return first->type() == GeometryType::Point ? std::static_pointer_cast<Point>(first->clone())
                                                : LinePath(first).pointAt(0.0);
}

std::pair<double, double> LinePath::climbs() const {
    double up = 0.0;
    double down = 0.0;
    for (std::size_t i = 1; i < vertices_.size() && hasZ(dimensions_); ++i) {
        if (!vertices_[i].isFirst) {
            const double rise = vertices_[i].ordinates[2] - vertices_[i - 1].ordinates[2];
            (rise > 0.0 ? up : down) += std::abs(rise);
        }
    }
    return {up, down};
}

double LinePath::straightened(std::size_t extra) const {
    double sum = 0.0;
    std::array<double, 4> before = at(0.0);
    for (std::size_t i = 1; i <= extra + 1; ++i) {
        const auto here = at(length_ * static_cast<double>(i) / static_cast<double>(extra + 1));
        sum += distance(before.data(), here.data());
        before = here;
    }
    return sum;
}

} // namespace orvane::geometry
