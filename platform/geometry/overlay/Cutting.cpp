#include "platform/geometry/overlay/Cutting.h"

#include "platform/geometry/overlay/GeosOperation.h"
#include "platform/geometry/overlay/Parts.h"
#include "platform/geometry/shapes/Curves.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

namespace orvane::geometry {

namespace {

using Place = std::pair<double, double>;

double squareDistance(double x, double y, const Place& place) {
    return (x - place.first) * (x - place.first) + (y - place.second) * (y - place.second);
}

/// Where between its ends, 0 to 1, a segment is nearest to a position.
double nearestOn(const double* a, const double* b, const Place& place) {
    const double dx = b[0] - a[0];
    const double dy = b[1] - a[1];
    const double square = dx * dx + dy * dy;
    return square == 0.0
               ? 0.0
               : std::clamp(((place.first - a[0]) * dx + (place.second - a[1]) * dy) / square, 0.0, 1.0);
}

double toleranceOf(const Envelope& envelope) {
    constexpr double relative = 1e-10;
    return relative * std::max({std::abs(envelope.minX), std::abs(envelope.minY), std::abs(envelope.maxX),
                                std::abs(envelope.maxY)});
}

/// Takes the positions of a line into pieces. Cuts have to be told in its order.
class LineCutter {
public:
    explicit LineCutter(const CoordinateSequence& line) : line_(line) {}

    void cut(std::size_t segment, double at, const Place& place) {
        appendUpTo(segment);
        std::vector<double> position(line_.stride());
        const double* const a = line_.position(segment);
        const double* const b = line_.position(segment + 1);
        for (std::size_t i = 0; i < position.size(); ++i) {
            position[i] = a[i] + at * (b[i] - a[i]);
        }
        if (at > 0.0 && at < 1.0) {
            position[0] = place.first;
            position[1] = place.second;
        }
        append(position.data());
        end();
        append(position.data());
    }
    std::vector<CoordinateSequence> pieces() {
        appendUpTo(line_.size() - 1);
        end();
        return std::move(pieces_);
    }

private:
    /// Without a position that stands twice.
    void append(const double* position) {
        const std::size_t stride = line_.stride();
        if (piece_.size() < stride ||
            !std::equal(position, position + 2, piece_.end() - std::ptrdiff_t(stride))) {
            piece_.insert(piece_.end(), position, position + stride);
        }
    }
    void appendUpTo(std::size_t last) {
        for (; next_ <= last; ++next_) {
            append(line_.position(next_));
        }
    }
    void end() {
        if (piece_.size() >= 2 * line_.stride()) {
            pieces_.emplace_back(line_.dimensions(), piece_);
        }
        piece_.clear();
    }

    const CoordinateSequence& line_;
    std::size_t next_ = 0;
    std::vector<double> piece_;
    std::vector<CoordinateSequence> pieces_;
};

/// Places in the order of x.
std::vector<CoordinateSequence> cutLine(const CoordinateSequence& line, const std::vector<Place>& places,
                                        const work::Cancellation& cancellation) {
    const double tolerance = toleranceOf(line.envelope());
    const std::span<const double> values = line.values();
    for (std::size_t i = 0; i < values.size(); i += line.stride()) {
        if (!std::isfinite(values[i]) || !std::isfinite(values[i + 1])) {
            throwNotFinite();
        }
    }
    LineCutter cutter(line);
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        cancellation.check();
        const double* const a = line.position(i);
        const double* const b = line.position(i + 1);
        const auto less = [](const Place& place, double x) { return place.first < x; };
        std::vector<std::pair<double, Place>> cuts;
        for (auto place =
                 std::lower_bound(places.begin(), places.end(), std::min(a[0], b[0]) - tolerance, less);
             place != places.end() && place->first <= std::max(a[0], b[0]) + tolerance; ++place) {
            const double at = nearestOn(a, b, *place);
            if (squareDistance(a[0] + at * (b[0] - a[0]), a[1] + at * (b[1] - a[1]), *place) >
                tolerance * tolerance) {
                continue;
            }
            if (squareDistance(a[0], a[1], *place) <= tolerance * tolerance) {
                cuts.emplace_back(0.0, *place);
            } else if (squareDistance(b[0], b[1], *place) > tolerance * tolerance) {
                cuts.emplace_back(at, *place);
            } // the end is the begin of the next segment, or that of the line
        }
        std::sort(cuts.begin(), cuts.end());
        for (const auto& [at, place] : cuts) {
            cutter.cut(i, at, place);
        }
    }
    return cutter.pieces();
}

/// The positions of a sequence that bound it, or all of one point.
void addEnds(const GEOSGeometry* form, std::vector<Place>& places) {
    const GEOSContextHandle_t context = geosContext();
    const GEOSCoordSequence* sequence = GEOSGeom_getCoordSeq_r(context, form);
    unsigned size = 0;
    GEOSCoordSeq_getSize_r(context, sequence, &size);
    for (const unsigned index : {0U, size - 1}) {
        Place place;
        GEOSCoordSeq_getXY_r(context, sequence, index, &place.first, &place.second);
        places.push_back(place);
    }
}

/// What cuts: its points, the lines and borders in it, and where these have their left side.
class Blade {
public:
    explicit Blade(const Geometry& geometry)
        : form_(finiteForm(geometry)), lines_(lineWorkOf(form_.get())),
          hasLines_(GEOSisEmpty_r(geosContext(), lines_.get()) == 0) {
        for (const GEOSGeometry* point : partsOf(form_.get(), 0)) {
            addEnds(point, points_);
        }
        for (const GEOSGeometry* line : partsOf(lines_.get(), 1)) {
            borders_.push_back(static_cast<const LineString&>(*fromGeos(line)).coordinates());
        }
    }

    const GEOSGeometry* lines() const { return lines_.get(); }
    bool hasLines() const { return hasLines_; }

    /// Where a line is to be cut, in the order of x.
    std::vector<Place> placesOn(const Geometry& line) const {
        std::vector<Place> places = points_;
        if (hasLines_) {
            const GeosPtr form = finiteForm(line);
            const GeosPtr shared = checked(GEOSIntersection_r(geosContext(), form.get(), lines_.get()));
            for (const int dimension : {0, 1}) {
                for (const GEOSGeometry* part : partsOf(shared.get(), dimension)) {
                    addEnds(part, places);
                }
            }
        }
        std::sort(places.begin(), places.end());
        places.erase(std::unique(places.begin(), places.end()), places.end());
        return places;
    }

    /// Of the line of the blade that is nearest; at a bend of it the normals of both segments together tell
    /// the side (J. A. Baerentzen and H. Aanaes, Signed distance computation using the angle weighted
    /// pseudonormal, 2005).
    bool hasOnLeft(const Place& place) const {
        double nearest = std::numeric_limits<double>::infinity();
        double side = 0.0;
        for (const CoordinateSequence& positions : borders_) {
            for (std::size_t i = 0; i + 1 < positions.size(); ++i) {
                const double* const a = positions.position(i);
                const double* const b = positions.position(i + 1);
                const double at = nearestOn(a, b, place);
                const double x = a[0] + at * (b[0] - a[0]);
                const double y = a[1] + at * (b[1] - a[1]);
                const double distance = squareDistance(x, y, place);
                const double length = std::hypot(b[0] - a[0], b[1] - a[1]);
                if (length == 0.0 || distance > nearest * (1 + 1e-12)) {
                    continue;
                }
                const double own =
                    ((b[0] - a[0]) * (place.second - y) - (b[1] - a[1]) * (place.first - x)) / length;
                side = distance < nearest * (1 - 1e-12) ? own : side + own;
                nearest = std::min(nearest, distance);
            }
        }
        return side > 0.0;
    }

private:
    GeosPtr form_;
    GeosPtr lines_;
    bool hasLines_;
    std::vector<Place> points_;
    std::vector<CoordinateSequence> borders_;
};

/// A position inside a piece, not on its ends or its border.
Place insideOf(const Geometry& piece) {
    if (piece.type() == GeometryType::LineString) {
        const CoordinateSequence& line = static_cast<const LineString&>(piece).coordinates();
        const std::size_t middle = (line.size() - 1) / 2;
        return {(line.x(middle) + line.x(middle + 1)) / 2, (line.y(middle) + line.y(middle + 1)) / 2};
    }
    Place place;
    const GeosPtr form = finiteForm(piece);
    const GeosPtr point = checked(GEOSPointOnSurface_r(geosContext(), form.get()));
    GEOSGeomGetX_r(geosContext(), point.get(), &place.first);
    GEOSGeomGetY_r(geosContext(), point.get(), &place.second);
    return place;
}

/// The faces between the border of an area and the blade that lie in the area; none where it is not cut.
std::vector<GeosPtr> facesOf(const GEOSGeometry* area, const GEOSGeometry* blade) {
    const GEOSContextHandle_t context = geosContext();
    std::vector<GeosPtr> borders;
    borders.push_back(checked(GEOSBoundary_r(context, area)));
    borders.push_back(checked(GEOSIntersection_r(context, area, blade)));
    const GeosPtr noded = united(std::move(borders));
    const GEOSGeometry* const lines[] = {noded.get()};
    const GeosPtr all = checked(GEOSPolygonize_r(context, lines, 1));
    const GeosPreparedPtr prepared(GEOSPrepare_r(context, area));
    std::vector<GeosPtr> faces;
    for (const GEOSGeometry* face : partsOf(all.get(), 2)) {
        const GeosPtr inside = checked(GEOSPointOnSurface_r(context, face));
        if (GEOSPreparedIntersects_r(context, prepared.get(), inside.get()) == 1) {
            faces.push_back(copyOf(face));
        }
    }
    return faces;
}

std::vector<GeometryPtr> piecesOfArea(const GeometryPtr& area, const Blade& blade) {
    const GeosPtr form = finiteForm(*area);
    if (!blade.hasLines() || GEOSIntersects_r(geosContext(), form.get(), blade.lines()) == 0) {
        return {area};
    }
    std::vector<GeosPtr> faces;
    try {
        faces = facesOf(form.get(), blade.lines());
    } catch (const std::runtime_error&) { // of an area that is not valid
        work::Cancellation().check();
        const GeosPtr valid = checked(GEOSMakeValid_r(geosContext(), form.get()));
        std::vector<GeosPtr> areas;
        for (const GEOSGeometry* part : partsOf(valid.get(), 2)) {
            areas.push_back(copyOf(part));
        }
        faces = facesOf(collectionOf(GEOS_MULTIPOLYGON, std::move(areas)).get(), blade.lines());
    }
    if (faces.size() < 2) {
        return {area};
    }
    std::vector<GeometryPtr> pieces;
    for (const GeosPtr& face : faces) {
        pieces.push_back(fromGeos(face.get()));
    }
    return pieces;
}

std::vector<GeometryPtr> piecesOfLine(const GeometryPtr& line, const std::vector<Place>& places,
                                      const work::Cancellation& cancellation) {
    std::vector<GeometryPtr> pieces;
    for (CoordinateSequence& piece :
         cutLine(static_cast<const LineString&>(*line).coordinates(), places, cancellation)) {
        pieces.push_back(std::make_shared<LineString>(std::move(piece)));
    }
    return pieces.size() < 2 ? std::vector{line} : pieces;
}

bool isOn(Side side, bool isLeft) {
    return side == Side::Both || (side == Side::Left) == isLeft;
}

void appendPointGroups(std::vector<GeometryPtr> points, std::size_t most, std::vector<GeometryPtr>& out) {
    std::sort(points.begin(), points.end(), [](const GeometryPtr& a, const GeometryPtr& b) {
        const auto& first = static_cast<const Point&>(*a);
        const auto& second = static_cast<const Point&>(*b);
        return std::pair(first.x(), first.y()) < std::pair(second.x(), second.y());
    });
    for (std::size_t begin = 0; begin < points.size(); begin += most) {
        const std::size_t end = std::min(points.size(), begin + most);
        out.push_back(gathered(points[begin]->dimensions(), {points.begin() + std::ptrdiff_t(begin),
                                                             points.begin() + std::ptrdiff_t(end)}));
    }
}

void appendLinePieces(const CoordinateSequence& line, std::size_t most, std::vector<GeometryPtr>& out) {
    for (std::size_t begin = 0; begin + 1 < line.size(); begin += most - 1) {
        const std::size_t count = std::min(most, line.size() - begin);
        out.push_back(std::make_shared<LineString>(
            CoordinateSequence(line.dimensions(), std::span(line.position(begin), count * line.stride()))));
    }
}

void appendAreaPieces(GeosPtr area, std::size_t most, int depth, std::vector<GeometryPtr>& out) {
    constexpr int deepest = 50;
    const GEOSContextHandle_t context = geosContext();
    if (out.size() > mostParts) {
        throwTooManyParts();
    }
    if (static_cast<std::size_t>(GEOSGetNumCoordinates_r(context, area.get())) <= most || depth == deepest) {
        out.push_back(fromGeos(area.get()));
        return;
    }
    double minX = 0.0, minY = 0.0, maxX = 0.0, maxY = 0.0;
    GEOSGeom_getExtent_r(context, area.get(), &minX, &minY, &maxX, &maxY);
    const bool isWide = maxX - minX > maxY - minY;
    const double middle = isWide ? (minX + maxX) / 2 : (minY + maxY) / 2;
    for (const bool isFirst : {true, false}) {
        const GeosPtr half = checked(GEOSGeom_createRectangle_r(
            context, isWide && !isFirst ? middle : minX, !isWide && !isFirst ? middle : minY,
            isWide && isFirst ? middle : maxX, !isWide && isFirst ? middle : maxY));
        const GeosPtr piece = checked(GEOSIntersection_r(context, area.get(), half.get()));
        for (const GEOSGeometry* part : partsOf(piece.get(), 2)) {
            appendAreaPieces(copyOf(part), most, depth + 1, out);
        }
    }
}

} // namespace

std::shared_ptr<Geometry> split(const GeometryPtr& geometry, const Geometry& blade, Side side) {
    const work::Cancellation cancellation;
    const Blade edge(blade);
    std::vector<GeometryPtr> wanted;
    forEachPart(linearized(geometry), [&](const GeometryPtr& part) {
        cancellation.check();
        if (part->isEmpty()) {
            return;
        }
        const bool isLine = part->type() == GeometryType::LineString;
        const std::vector<GeometryPtr> pieces =
            isLine                                ? piecesOfLine(part, edge.placesOn(*part), cancellation)
            : part->type() == GeometryType::Point ? std::vector{part}
                                                  : piecesOfArea(part, edge);
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            if (side == Side::Both ||
                isOn(side, edge.hasLines() ? edge.hasOnLeft(insideOf(*pieces[i])) : i % 2 == 0)) {
                wanted.push_back(pieces[i]);
            }
        }
    });
    std::shared_ptr<Geometry> result = gathered(geometry->dimensions(), std::move(wanted));
    result->setCoordSystem(geometry->coordSystem());
    return result;
}

std::shared_ptr<Geometry> cutAtPoints(const GeometryPtr& lines, const Geometry& points) {
    const work::Cancellation cancellation;
    std::vector<Place> places;
    const GeosPtr form = finiteForm(points);
    for (const GEOSGeometry* point : partsOf(form.get(), 0)) {
        addEnds(point, places);
    }
    std::sort(places.begin(), places.end());
    std::vector<GeometryPtr> pieces;
    forEachPart(linearized(lines), [&](const GeometryPtr& part) {
        if (part->type() == GeometryType::LineString && !part->isEmpty()) {
            const auto made = piecesOfLine(part, places, cancellation);
            pieces.insert(pieces.end(), made.begin(), made.end());
        }
    });
    std::shared_ptr<Geometry> result = multiOf(1, lines->dimensions(), std::move(pieces));
    result->setCoordSystem(lines->coordSystem());
    return result;
}

std::shared_ptr<Geometry> snapped(const Geometry& geometry, const Geometry& other, double tolerance) {
    const GeosPtr target = finiteForm(other);
    return computedFrom(geometry, [&](const GEOSGeometry* form) {
        return GEOSSnap_r(geosContext(), form, target.get(), tolerance);
    });
}

std::shared_ptr<Geometry> subdivided(const GeometryPtr& geometry, std::size_t mostPositions) {
    const work::Cancellation cancellation;
    std::vector<GeometryPtr> points;
    std::vector<GeometryPtr> pieces;
    forEachPart(linearized(geometry), [&](const GeometryPtr& part) {
        cancellation.check();
        if (part->isEmpty()) {
            return;
        }
        if (part->type() == GeometryType::Point) {
            points.push_back(part);
        } else if (part->type() == GeometryType::LineString) {
            appendLinePieces(static_cast<const LineString&>(*part).coordinates(), mostPositions, pieces);
        } else if (part->weight() <= mostPositions) {
            pieces.push_back(part);
        } else {
            GeosPtr form = finiteForm(*part);
            if (GEOSisValid_r(geosContext(), form.get()) == 0) {
                form = checked(GEOSMakeValid_r(geosContext(), form.get()));
            }
            for (const GEOSGeometry* area : partsOf(form.get(), 2)) {
                appendAreaPieces(copyOf(area), mostPositions, 0, pieces);
            }
        }
    });
    appendPointGroups(std::move(points), mostPositions, pieces);
    std::shared_ptr<Geometry> all = gathered(geometry->dimensions(), std::move(pieces));
    all->setCoordSystem(geometry->coordSystem());
    return all;
}

} // namespace orvane::geometry
