#include "platform/geometry/forms/TextFormats.h"

#include "platform/geometry/shapes/Curves.h"

#include <charconv>
#include <cmath>

namespace orvane::geometry {

namespace {

GeometryPtr borrowed(const Geometry& geometry) {
    return GeometryPtr(std::shared_ptr<void>(), &geometry);
}

/// The shortest text that reads back as the same double; plain digits for the magnitudes of coordinates.
void appendNumber(double value, std::string& out) {
    char buffer[32];
    const double magnitude = std::abs(value);
    const bool plain = magnitude == 0.0 || (magnitude >= 1e-7 && magnitude < 1e16);
    const auto end =
        plain ? std::to_chars(buffer, std::end(buffer), value == 0.0 ? 0.0 : value, std::chars_format::fixed)
              : std::to_chars(buffer, std::end(buffer), value);
    out.append(buffer, end.ptr);
}

class WktWriter {
public:
    explicit WktWriter(std::string& out) : out_(out) {}

    void write(const Geometry& geometry) {
        out_ += keyword(geometry.type());
        constexpr const char* suffixes[] = {"", " Z", " M", " ZM"};
        out_ += suffixes[static_cast<std::size_t>(geometry.dimensions())];
        writeBody(geometry);
    }

private:
    static const char* keyword(GeometryType type) {
        switch (type) {
        case GeometryType::Point: return "POINT";
        case GeometryType::LineString: return "LINESTRING";
        case GeometryType::Polygon: return "POLYGON";
        case GeometryType::MultiPoint: return "MULTIPOINT";
        case GeometryType::MultiLineString: return "MULTILINESTRING";
        case GeometryType::MultiPolygon: return "MULTIPOLYGON";
        case GeometryType::CircularString: return "CIRCULARSTRING";
        case GeometryType::CompoundCurve: return "COMPOUNDCURVE";
        case GeometryType::CurvePolygon: return "CURVEPOLYGON";
        case GeometryType::MultiCurve: return "MULTICURVE";
        case GeometryType::MultiSurface: return "MULTISURFACE";
        default: return "GEOMETRYCOLLECTION";
        }
    }

    /// The list in parentheses; " EMPTY" when `size` is 0.
    template<typename WriteItem>
    void writeList(std::size_t size, const WriteItem& writeItem) {
        if (size == 0) {
            out_ += " EMPTY";
            return;
        }
        out_ += '(';
        for (std::size_t i = 0; i < size; ++i) {
            if (i > 0) {
                out_ += ',';
            }
            writeItem(i);
        }
        out_ += ')';
    }

    void writePosition(const double* position, std::size_t stride) {
        for (std::size_t i = 0; i < stride; ++i) {
            if (i > 0) {
                out_ += ' ';
            }
            appendNumber(position[i], out_);
        }
    }

    void writePositions(const CoordinateSequence& positions) {
        writeList(positions.size(),
                  [&](std::size_t i) { writePosition(positions.position(i), positions.stride()); });
    }

    /// Parts without their keyword where the kind of the whole tells it.
    void writeParts(const std::vector<GeometryPtr>& parts, GeometryType plainKind) {
        writeList(parts.size(), [&](std::size_t i) {
            const Geometry& part = *parts[i];
            if (part.type() != plainKind) {
                write(part);
                return;
            }
            const std::size_t before = out_.size();
            writeBody(part);
            if (out_[before] == ' ') { // a nested EMPTY stands without a blank
                out_.erase(before, 1);
            }
        });
    }

    void writeBody(const Geometry& geometry) {
        switch (geometry.type()) {
        case GeometryType::Point: {
            const auto& point = static_cast<const Point&>(geometry);
            writeList(point.isEmpty() ? 0 : 1,
                      [&](std::size_t) { writePosition(point.ordinates(), strideOf(point.dimensions())); });
            break;
        }
        case GeometryType::LineString:
            writePositions(static_cast<const LineString&>(geometry).coordinates());
            break;
        case GeometryType::CircularString:
            writePositions(static_cast<const CircularString&>(geometry).coordinates());
            break;
        case GeometryType::Polygon: {
            const auto& rings = static_cast<const Polygon&>(geometry).rings();
            writeList(rings.size(), [&](std::size_t i) {
                if (rings[i].isEmpty()) {
                    out_ += "EMPTY";
                } else {
                    writePositions(rings[i]);
                }
            });
            break;
        }
        case GeometryType::CompoundCurve:
            writeParts(static_cast<const CompoundCurve&>(geometry).parts(), GeometryType::LineString);
            break;
        case GeometryType::CurvePolygon:
            writeParts(static_cast<const CurvePolygon&>(geometry).rings(), GeometryType::LineString);
            break;
        default:
            writeParts(static_cast<const GeometryCollection&>(geometry).parts(), plainPart(geometry.type()));
        }
    }

    static GeometryType plainPart(GeometryType collection) {
        switch (collection) {
        case GeometryType::MultiPoint: return GeometryType::Point;
        case GeometryType::MultiLineString:
        case GeometryType::MultiCurve: return GeometryType::LineString;
        case GeometryType::MultiPolygon:
        case GeometryType::MultiSurface: return GeometryType::Polygon;
        default: return GeometryType::GeometryCollection == collection ? GeometryType::Ellipse : collection;
        }
    }

    std::string& out_;
};

class GeoJsonWriter {
public:
    explicit GeoJsonWriter(std::string& out) : out_(out) {}

    void write(const Geometry& geometry) {
        out_ += "{\"type\":\"";
        out_ += typeName(geometry.type());
        if (geometry.type() == GeometryType::GeometryCollection) {
            out_ += "\",\"geometries\":";
            const auto& parts = static_cast<const GeometryCollection&>(geometry).parts();
            writeList(parts.size(), [&](std::size_t i) { write(*parts[i]); });
        } else {
            out_ += "\",\"coordinates\":";
            writeCoordinates(geometry);
        }
        out_ += '}';
    }

private:
    static const char* typeName(GeometryType type) {
        switch (type) {
        case GeometryType::Point: return "Point";
        case GeometryType::LineString: return "LineString";
        case GeometryType::Polygon: return "Polygon";
        case GeometryType::MultiPoint: return "MultiPoint";
        case GeometryType::MultiLineString: return "MultiLineString";
        case GeometryType::MultiPolygon: return "MultiPolygon";
        default: return "GeometryCollection";
        }
    }

    template<typename WriteItem>
    void writeList(std::size_t size, const WriteItem& writeItem) {
        out_ += '[';
        for (std::size_t i = 0; i < size; ++i) {
            if (i > 0) {
                out_ += ',';
            }
            writeItem(i);
        }
        out_ += ']';
    }

    void writePosition(const double* position, Dimensions dimensions) {
        writeList(hasZ(dimensions) ? 3 : 2, [&](std::size_t i) {
            if (std::isfinite(position[i])) {
                appendNumber(position[i], out_);
            } else {
                out_ += "null";
            }
        });
    }

    void writePositions(const CoordinateSequence& positions) {
        writeList(positions.size(),
                  [&](std::size_t i) { writePosition(positions.position(i), positions.dimensions()); });
    }

    void writeCoordinates(const Geometry& geometry) {
        switch (geometry.type()) {
        case GeometryType::Point: {
            const auto& point = static_cast<const Point&>(geometry);
            if (point.isEmpty()) {
                out_ += "[]";
            } else {
                writePosition(point.ordinates(), point.dimensions());
            }
            break;
        }
        case GeometryType::LineString:
            writePositions(static_cast<const LineString&>(geometry).coordinates());
            break;
        case GeometryType::Polygon: {
            const auto& rings = static_cast<const Polygon&>(geometry).rings();
            writeList(rings.size(), [&](std::size_t i) { writePositions(rings[i]); });
            break;
        }
        default: {
            const auto& parts = static_cast<const GeometryCollection&>(geometry).parts();
            writeList(parts.size(), [&](std::size_t i) { writeCoordinates(*parts[i]); });
        }
        }
    }

    std::string& out_;
};

} // namespace

void appendWkt(const Geometry& geometry, std::string& out) {
    const GeometryPtr standard = inStandardKinds(borrowed(geometry));
    WktWriter(out).write(*standard);
}

void appendGeoJson(const Geometry& geometry, std::string& out) {
    const GeometryPtr linear = linearized(borrowed(geometry));
    GeoJsonWriter(out).write(*linear);
}

} // namespace orvane::geometry
