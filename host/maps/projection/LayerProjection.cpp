#include "host/maps/projection/LayerProjection.h"

#include "host/maps/projection/Antimeridian.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace orvane::maps {

namespace {

constexpr double almost = 1e-9; ///< degrees that rounding takes away

constexpr double near = 5e-5; ///< degrees within which data mean the antimeridian, or a pole: a few metres

bool isOnAntimeridian(double longitude) {
    return std::abs(std::remainder(longitude - 180, 360.0)) < near;
}

/// Where data are cut, not where things end: along the antimeridian, and along the poles.
bool isSeam(const double* from, const double* to) {
    return (isOnAntimeridian(from[0]) && isOnAntimeridian(to[0]) && std::abs(from[0] - to[0]) < 180) ||
           (std::abs(from[1]) > 90 - near && std::abs(to[1]) > 90 - near);
}

/// Pixels around the picture up to which shapes are drawn: more than any line is wide.
constexpr double guard = 64;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::maps)
};

} // namespace

PlaneProjection::PlaneProjection(std::shared_ptr<const cs::CoordSystem> layer,
                                 std::shared_ptr<const cs::CoordSystem> map)
    : layer_(std::move(layer)), map_(std::move(map)) {
    isMapGeographic_ = map_ && map_->isGeographic();
    isDirect_ = !layer_ || !map_ || (!isMapGeographic_ && layer_->equals(*map_));
    if (isDirect_) {
        return;
    }
    plane_ = planeOf(*map_);
    degrees_ = layer_;
    if (!layer_->isGeographic()) {
        degrees_ = cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326);
        toDegrees_ = cs::Transformer::between(*layer_, *degrees_);
        toLayer_ = cs::Transformer::between(*degrees_, *layer_);
    }
    fromDegrees_ = cs::Transformer::between(*degrees_, *map_);
    back_ = cs::Transformer::between(*map_, *degrees_);
    if (!fromDegrees_ || !back_ || (!layer_->isGeographic() && !(toDegrees_ && toLayer_))) {
        throw std::runtime_error(Texts::tr("координаты не переводятся из системы «%0» в систему «%1»")
                                     .arg(layer_->name(), map_->name())
                                     .toStdString());
    }
}

void PlaneProjection::toDegrees(double* ordinates, std::size_t count) const {
    if (toDegrees_ && count != 0) {
        toDegrees_->transform(ordinates, count, 2, false);
    }
}

void PlaneProjection::fromDegrees(double* ordinates, std::size_t count) const {
    if (count == 0 || (isMapGeographic_ && degrees_->equals(*map_))) {
        return;
    }
    if (!isMapGeographic_) {
        fromDegrees_->transform(ordinates, count, 2, false);
        return;
    }
    for (std::size_t i = 0; i < 2 * count;
         i += 2) { // longitudes may be beyond the antimeridian, and stay there
        const double before = ordinates[i];
        fromDegrees_->transform(ordinates + i, 1, 2, false);
        ordinates[i] += 360 * std::round((before - ordinates[i]) / 360);
    }
}

void PlaneProjection::backToDegrees(double* ordinates, std::size_t count) const {
    if (count != 0 && !(isMapGeographic_ && degrees_->equals(*map_))) {
        back_->transform(ordinates, count, 2, false);
    }
}

std::optional<QPointF> PlaneProjection::toPlane(QPointF position) const {
    double ordinates[2] = {position.x(), position.y()};
    if (!isDirect_) {
        toDegrees(ordinates, 1);
        const double fromCentre = std::abs(std::remainder(ordinates[0] - plane_.centralMeridian, 360.0));
        if (ordinates[1] < plane_.south - almost || ordinates[1] > plane_.north + almost ||
            fromCentre > plane_.halfWidth + almost) {
            return std::nullopt;
        }
        fromDegrees(ordinates, 1);
    }
    if (!std::isfinite(ordinates[0]) || !std::isfinite(ordinates[1])) {
        return std::nullopt;
    }
    return QPointF(ordinates[0], ordinates[1]);
}

std::optional<QPointF> PlaneProjection::toLayer(QPointF position) const {
    double ordinates[2] = {position.x(), position.y()};
    if (!isDirect_) {
        backToDegrees(ordinates, 1);
        const double longitude = ordinates[0];
        const bool isOnGlobe = std::isfinite(longitude) && std::abs(ordinates[1]) <= 90;
        if (!isOnGlobe) {
            return std::nullopt;
        }
        // Beyond the outline projections give the longitude of the other side.
        double there[2] = {ordinates[0], ordinates[1]};
        fromDegrees(there, 1);
        const double size = std::max({std::abs(position.x()), std::abs(position.y()), 1.0});
        if (!(std::abs(there[0] - position.x()) + std::abs(there[1] - position.y()) < 1e-5 * size)) {
            return std::nullopt;
        }
        if (toLayer_) {
            toLayer_->transform(ordinates, 1, 2, false);
        }
    }
    if (!std::isfinite(ordinates[0]) || !std::isfinite(ordinates[1])) {
        return std::nullopt;
    }
    return QPointF(ordinates[0], ordinates[1]);
}

LayerProjection::LayerProjection(std::shared_ptr<const cs::CoordSystem> layer,
                                 std::shared_ptr<const cs::CoordSystem> map, const View& view)
    : projection_(layer, map), view_(view), visible_(geometry::Envelope::everything()) {
    if (projection_.isDirect()) {
        const QRectF rect = view_.rect().adjusted(-guard, -guard, guard, guard);
        window_ = {rect.left(), rect.top(), rect.right(), rect.bottom()};
        const QPointF lower = view_.toPlane(rect.bottomLeft());
        const QPointF upper = view_.toPlane(rect.topRight());
        visible_ = {lower.x(), lower.y(), upper.x(), upper.y()};
        tolerance_ = 0.3 * view_.unitsPerPixel();
        return;
    }
    findVisible();
    grid_ = ProjectionGrid(window_);
    if (projection_.isLayerGeographic() && window_.maxX - window_.minX < 180 && window_.minX >= -180 &&
        window_.maxX <= 180) {
        visible_ = window_;
    }
    step_ = std::max(window_.maxX - window_.minX, window_.maxY - window_.minY) / 100;
    if (!projection_.isLayerGeographic()) {
        constexpr double metresPerDegree = 111000;
        layerStep_ = step_ * metresPerDegree / layer->unitFactor();
    }
    findTolerance();
}

/// The rectangle of degrees that the view shows.
void LayerProjection::findVisible() {
    const MapPlane& plane = projection_.plane();
    const double centre = projection_.isMapGeographic() ? view_.centre().x() : plane.centralMeridian;
    // Not quite to where the globe is cut: rounding would put that on the other side.
    const double halfWidth = std::min(plane.halfWidth, 180 - 1e-7);
    window_ = {centre - halfWidth, plane.south, centre + halfWidth, plane.north};
    geometry::Envelope seen;
    if (projection_.isMapGeographic()) {
        seen = view_.extent();
    } else {
        constexpr int steps = 24;
        std::array<double, 2 * (steps + 1)> before{};
        double margin = 0;
        for (int row = 0; row <= steps; ++row) {
            std::array<double, 2 * (steps + 1)> line{};
            for (int column = 0; column <= steps; ++column) {
                const QPointF position = view_.toPlane(
                    {view_.size().width() * column / steps, view_.size().height() * row / steps});
                double degrees[2] = {position.x(), position.y()};
                projection_.backToDegrees(degrees, 1);
                double there[2] = {degrees[0], degrees[1]};
                projection_.fromDegrees(there, 1);
                const double error = std::abs(there[0] - position.x()) + std::abs(there[1] - position.y());
                if (!(error < view_.unitsPerPixel())) {
                    return; // beyond the globe: all of it may be seen
                }
                const auto at = static_cast<std::size_t>(2 * column);
                line[at] = centre + std::remainder(degrees[0] - centre, 360.0);
                line[at + 1] = degrees[1];
                seen.add(line[at], line[at + 1]);
                for (const auto* neighbour :
                     {column > 0 ? &line[at - 2] : nullptr, row > 0 ? &before[at] : nullptr}) {
                    if (neighbour) {
                        margin = std::max({margin, std::abs(neighbour[0] - line[at]),
                                           std::abs(neighbour[1] - line[at + 1])});
                    }
                }
            }
            before = line;
        }
        if (margin > 45) {
            return; // a pole, or the meridian along which the globe is cut
        }
        seen = {seen.minX - margin, seen.minY - margin, seen.maxX + margin, seen.maxY + margin};
    }
    const geometry::Envelope window{std::max(window_.minX, seen.minX), std::max(window_.minY, seen.minY),
                                    std::min(window_.maxX, seen.maxX), std::min(window_.maxY, seen.maxY)};
    window_ = window.isEmpty() ? geometry::Envelope{0, 0, 0, 0} : window;
}

/// The least of what a pixel covers, at some places of the view.
void LayerProjection::findTolerance() {
    double least = std::numeric_limits<double>::infinity();
    constexpr int steps = 4;
    for (int i = 0; i <= steps * steps + 2 * steps; ++i) {
        const QPointF pixel(view_.size().width() * (i % (steps + 1)) / steps,
                            view_.size().height() * (i / (steps + 1)) / steps);
        const auto here = toLayer(pixel);
        for (const QPointF step : {QPointF(1, 0), QPointF(0, 1)}) {
            const auto there = here ? toLayer(pixel + step) : std::nullopt;
            const double distance = there ? std::hypot(there->x() - here->x(), there->y() - here->y()) : 0.0;
            least = distance > 0 ? std::min(least, distance) : least;
        }
    }
    tolerance_ = std::isfinite(least) ? 0.3 * least : 0;
}

std::optional<QPointF> LayerProjection::toPixel(QPointF position) const {
    const auto plane = projection_.toPlane(position);
    return plane ? std::optional(view_.toPixel(*plane)) : std::nullopt;
}

std::optional<QPointF> LayerProjection::toLayer(QPointF pixel) const {
    return projection_.toLayer(view_.toPlane(pixel));
}

void LayerProjection::toPixels(FlatShape& shape) {
    cut_.clear();
    if (projection_.isDirect()) {
        addDirect(shape);
        std::swap(shape, cut_);
        return;
    }
    toDegrees(shape);
    for (const FlatShape::Part& part : shape.parts) {
        addUnrolled(shape, part);
    }
    shape.clear();
    addDense(cut_, step_, shape);
    project(shape);
}

void LayerProjection::addDirect(const FlatShape& shape) {
    const double scale = 1 / view_.unitsPerPixel();
    const QPointF origin = view_.toPlane({0, 0});
    for (const FlatShape::Part& part : shape.parts) {
        dense_.clear();
        geometry::Envelope envelope;
        for (std::uint32_t i = part.begin; i < part.begin + part.count; ++i) {
            const double x = (shape.position(i)[0] - origin.x()) * scale;
            const double y = (origin.y() - shape.position(i)[1]) * scale;
            envelope.add(x, y);
            dense_.add(x, y);
        }
        if (!window_.intersects(envelope)) {
            continue;
        }
        if (window_.contains(envelope)) {
            const std::uint32_t begin = cut_.size();
            cut_.ordinates.insert(cut_.ordinates.end(), dense_.ordinates.begin(), dense_.ordinates.end());
            cut_.endPart(part.kind, begin);
        } else if (part.kind == PartKind::Ring) {
            // Far enough out of sight that the border along the cut does not show.
            clipping_.addRing(dense_.ordinates.data(), dense_.size(), window_, PartKind::Ring, cut_);
        } else if (part.kind == PartKind::Line) {
            Clipping::addLine(dense_.ordinates.data(), dense_.size(), false, window_, PartKind::Line, nullptr,
                              cut_);
        }
    }
}

void LayerProjection::toDegrees(FlatShape& shape) {
    if (projection_.isLayerGeographic()) {
        return;
    }
    dense_.clear();
    addDense(shape, layerStep_, dense_);
    projection_.toDegrees(dense_.ordinates.data(), dense_.size());
    std::swap(shape, dense_);
}

void LayerProjection::addUnrolled(const FlatShape& shape, const FlatShape::Part& part) {
    if (part.kind == PartKind::Point || part.kind == PartKind::Speck) {
        addPoint(shape.position(part.begin), part.kind);
        return;
    }
    unrolled_.clear();
    double turns = 0; // in degrees
    double latitudes = 0;
    const auto add = [&](const double* position) {
        if (!unrolled_.empty()) {
            const double step = position[0] + turns - unrolled_[unrolled_.size() - 2];
            turns -= isOverAntimeridian(step) ? std::copysign(360.0, step) : 0.0;
        }
        unrolled_.insert(unrolled_.end(), {position[0] + turns, position[1]});
        latitudes += position[1];
    };
    for (std::uint32_t i = part.begin; i < part.begin + part.count; ++i) {
        constexpr double farthest = 3600; // turns that are counted; beyond are no longitudes
        if (std::abs(shape.position(i)[0]) <= farthest && std::isfinite(shape.position(i)[1])) {
            add(shape.position(i));
        }
    }
    if (unrolled_.size() < 4) {
        return;
    }
    if (part.kind == PartKind::Ring) {
        const double first[2] = {unrolled_[0], unrolled_[1]};
        add(first);
        const double end = unrolled_[unrolled_.size() - 2];
        if (std::abs(end - first[0]) < 180) {
            unrolled_.resize(unrolled_.size() - 2); // closed without saying so
        } else {
            const double pole = latitudes > 0 ? 90 : -90; // which it goes around
            unrolled_.insert(unrolled_.end(), {end, pole, first[0], pole});
        }
    }
    addShifted(part.kind);
}

void LayerProjection::addPoint(const double* position, PartKind kind) {
    const double longitude = position[0] - 360 * std::floor((position[0] - window_.minX) / 360);
    if (longitude <= window_.maxX && position[1] >= window_.minY && position[1] <= window_.maxY) {
        const std::uint32_t begin = cut_.size();
        cut_.add(longitude, position[1]);
        cut_.endPart(kind, begin);
    }
}

/// Adds the unrolled part wherever its turns around the globe meet the window.
void LayerProjection::addShifted(PartKind kind) {
    const auto count = static_cast<std::uint32_t>(unrolled_.size() / 2);
    geometry::Envelope envelope;
    bool hasSeams = false;
    for (std::uint32_t i = 0; i < count; ++i) {
        const double* position = &unrolled_[std::size_t{2} * i];
        const double* next = &unrolled_[std::size_t{2} * ((i + 1) % count)];
        envelope.add(position[0], position[1]);
        hasSeams = hasSeams || (kind == PartKind::Ring && isSeam(position, next));
    }
    // What only touches the window from outside is left to the turn that is within it.
    const double touch = envelope.maxX - envelope.minX > almost ? almost : 0;
    double shift = 360 * std::ceil((window_.minX + touch - envelope.maxX) / 360);
    for (double done = 0; envelope.minX + shift <= window_.maxX - touch; shift += 360) {
        for (std::size_t i = 0; i < unrolled_.size(); i += 2) {
            unrolled_[i] += shift - done;
        }
        done = shift;
        const geometry::Envelope here{envelope.minX + shift, envelope.minY, envelope.maxX + shift,
                                      envelope.maxY};
        if (!window_.intersects(here)) {
            continue;
        }
        if (window_.contains(here) && !hasSeams) {
            const std::uint32_t begin = cut_.size();
            cut_.ordinates.insert(cut_.ordinates.end(), unrolled_.begin(), unrolled_.end());
            cut_.endPart(kind, begin);
        } else if (kind == PartKind::Ring) {
            clipping_.addRing(unrolled_.data(), count, window_, PartKind::Area, cut_);
            Clipping::addLine(unrolled_.data(), count, true, window_, PartKind::Border, isSeam, cut_);
        } else {
            Clipping::addLine(unrolled_.data(), count, false, window_, kind, nullptr, cut_);
        }
    }
}

/// Divides segments that are longer than a step.
void LayerProjection::addDense(const FlatShape& from, double step, FlatShape& to) const {
    constexpr double most = 4096; // of a segment
    for (const FlatShape::Part& part : from.parts) {
        const std::uint32_t begin = to.size();
        const bool isRing = part.kind == PartKind::Ring || part.kind == PartKind::Area;
        const bool hasSegments = part.count > 1;
        for (std::uint32_t i = 0; i < part.count; ++i) {
            const double* position = from.position(part.begin + i);
            to.add(position[0], position[1]);
            if (!hasSegments || (i + 1 == part.count && !isRing)) {
                continue;
            }
            const double* next = from.position(part.begin + (i + 1) % part.count);
            const double dx = next[0] - position[0];
            const double dy = next[1] - position[1];
            const double length = std::max(std::abs(dx), std::abs(dy));
            if (length > step && step > 0) {
                const double pieces = std::ceil(std::min(length / step, most));
                for (double k = 1; k < pieces; ++k) {
                    to.add(position[0] + dx * k / pieces, position[1] + dy * k / pieces);
                }
            }
        }
        to.endPart(part.kind, begin);
    }
}

/// Degrees to pixels; what has no place is left out.
void LayerProjection::project(FlatShape& shape) {
    grid_.toPixels(projection_, view_, shape.ordinates.data(), shape.size());
    std::uint32_t kept = 0;
    for (FlatShape::Part& part : shape.parts) {
        const std::uint32_t begin = kept;
        for (std::uint32_t i = part.begin; i < part.begin + part.count; ++i) {
            const double x = shape.position(i)[0];
            const double y = shape.position(i)[1];
            constexpr double farthest = 1e7; // beyond which painters count wrongly
            if (std::abs(x) < farthest && std::abs(y) < farthest) {
                double* target = shape.position(kept++);
                target[0] = x;
                target[1] = y;
            }
        }
        part.begin = begin;
        part.count = kept - begin;
    }
    shape.truncate(kept);
    std::erase_if(shape.parts, [](const FlatShape::Part& part) { return part.count == 0; });
}

} // namespace orvane::maps
