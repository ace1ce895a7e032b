#include "platform/geometry/making/GlobeFigure.h"

#include "platform/geometry/shapes/Failure.h"
#include "platform/geometry/shapes/Shapes.h"

#include <cmath>
#include <span>

namespace orvane::geometry {

namespace {

constexpr std::size_t mostPositions = 2'000'000;

class Tracks {
public:
    Tracks(const GeographicShape& shape, double longest) : shape_(shape), longest_(longest) {}

    Track track(const CoordinateSequence& sequence, bool isRing) {
        Track made{{}, isRing};
        for (std::size_t i = 0; i < sequence.size(); ++i) {
            append(made, positionAt(shape_, sequence.x(i), sequence.y(i)));
        }
        if (isRing && !made.positions.empty()) {
            append(made, made.positions.front());
        }
        return made;
    }

private:
    void append(Track& track, const Position& end) {
        if (!track.positions.empty()) {
            const Position begin = track.positions.back();
            if (begin.vector == end.vector) {
                return;
            }
            appendBetween(track, begin, end);
        }
        note(1);
        track.positions.push_back(end);
    }

    void appendBetween(Track& track, const Position& begin, const Position& end) {
        if (norm(end.vector - begin.vector) < longest_ * 0.99) {
            return;
        }
        geod_geodesicline line;
        const bool isFromPole = std::abs(begin.latitude) == 90.0; // which has every longitude
        geod_inverseline(&line, &shape_.ellipsoid, begin.latitude,
                         isFromPole ? end.longitude : begin.longitude, end.latitude, end.longitude, 0);
        const auto count = static_cast<std::size_t>(std::ceil(line.s13 / longest_));
        note(count);
        double before = 0.0;
        for (std::size_t i = 1; i < count; ++i) {
            double latitude = 0.0;
            double longitude = 0.0;
            const double along = line.s13 * static_cast<double>(i) / static_cast<double>(count);
            appendPole(track, line, before, along);
            geod_position(&line, along, &latitude, &longitude, nullptr);
            track.positions.push_back(positionAt(shape_, longitude, latitude));
            before = along;
        }
        appendPole(track, line, before, line.s13);
    }

    /// Over a pole the longitude jumps by half a turn: the map needs to know where.
    void appendPole(Track& track, const geod_geodesicline& line, double from, double to) const {
        if (std::abs(line.salp1) > 1e-12 && std::abs(std::abs(line.azi1) - 180.0) > 1e-10) {
            return;
        }
        double latitudes[3];
        double longitudes[3];
        const double along[3] = {from, (from + to) / 2.0, to};
        for (int i = 0; i < 3; ++i) {
            geod_position(&line, along[i], latitudes + i, longitudes + i, nullptr);
        }
        if (std::abs(std::remainder(longitudes[2] - longitudes[0], 360.0)) > 90.0 &&
            std::abs(latitudes[0]) < 90.0 && std::abs(latitudes[2]) < 90.0) {
            track.positions.push_back(positionAt(shape_, longitudes[0], std::copysign(90.0, latitudes[1])));
        }
    }

    void note(std::size_t count) {
        positions_ += count;
        if (positions_ > mostPositions) {
            throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Результат был бы слишком велик."));
        }
    }

    const GeographicShape& shape_;
    const double longest_;
    std::size_t positions_ = 0;
};

void gather(const Geometry& geometry, Tracks& tracks, Figure& figure) {
    switch (geometry.type()) {
    case GeometryType::Point:
        if (!geometry.isEmpty()) {
            const auto& point = static_cast<const Point&>(geometry);
            figure.tracks.push_back(
                tracks.track(CoordinateSequence(Dimensions::XY, std::span(point.ordinates(), 2)), false));
        }
        break;
    case GeometryType::LineString:
        if (!geometry.isEmpty()) {
            figure.tracks.push_back(
                tracks.track(static_cast<const LineString&>(geometry).coordinates(), false));
        }
        break;
    case GeometryType::Polygon: {
        std::vector<Track> area;
        for (const CoordinateSequence& ring : static_cast<const Polygon&>(geometry).rings()) {
            if (!ring.isEmpty()) {
                area.push_back(tracks.track(ring, true));
            }
        }
        if (!area.empty()) {
            figure.areas.push_back(std::move(area));
        }
        break;
    }
    default:
        for (const GeometryPtr& part : static_cast<const GeometryCollection&>(geometry).parts()) {
            gather(*part, tracks, figure);
        }
    }
}

} // namespace

Figure figureOf(const GeographicShape& shape, double longest) {
    Tracks tracks(shape, longest);
    Figure figure;
    gather(*shape.geometry, tracks, figure);
    return figure;
}

} // namespace orvane::geometry
