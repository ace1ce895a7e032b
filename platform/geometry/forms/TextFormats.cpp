#include "platform/geometry/forms/TextFormats.h"

#include "platform/geometry/shapes/Curves.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

namespace orvane::geometry {

namespace {

GeometryPtr borrowed(const Geometry& geometry) {
    return GeometryPtr(std::shared_ptr<void>(), &geometry);
}

const char* keyword(GeometryType type) {
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

class WktWriter {
public:
    WktWriter(std::string& out, const WktStyle& style) : out_(out), style_(style) {}

    void write(const Geometry& geometry) {
        if (style_.extended) {
            out_ += keyword(geometry.type());
            out_ += geometry.dimensions() == Dimensions::XYM ? "M" : "";
        } else {
            out_ += wktKind(geometry.type(), geometry.dimensions());
        }
        writeBody(geometry);
    }

private:
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
                out_ += style_.spaced ? ", " : ",";
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
            appendNumber(position[i], style_.digits, out_);
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
            if (style_.barePoints && part.type() == GeometryType::Point && !part.isEmpty()) {
                writePosition(static_cast<const Point&>(part).ordinates(), strideOf(part.dimensions()));
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
    const WktStyle& style_;
};

class GeoJsonWriter {
public:
    GeoJsonWriter(std::string& out, const GeoJsonStyle& style) : out_(out), style_(style) {}

    void writeWhole(const Geometry& geometry) {
        out_ += "{\"type\":\"";
        out_ += typeName(geometry.type());
        out_ += '"';
        if (!style_.crs.empty()) {
            out_ += ",\"crs\":{\"type\":\"name\",\"properties\":{\"name\":\"" + style_.crs + "\"}}";
        }
        if (const Envelope box = geometry.envelope(); style_.envelope && !box.isEmpty()) {
            out_ += ",\"bbox\":";
            const double corners[] = {box.minX, box.minY, box.maxX, box.maxY};
            writeList(4, [&](std::size_t i) { writeNumber(corners[i]); });
        }
        writeContent(geometry);
    }

    void write(const Geometry& geometry) {
        out_ += "{\"type\":\"";
        out_ += typeName(geometry.type());
        out_ += '"';
        writeContent(geometry);
    }

private:
    void writeContent(const Geometry& geometry) {
        if (geometry.type() == GeometryType::GeometryCollection) {
            out_ += ",\"geometries\":";
            const auto& parts = static_cast<const GeometryCollection&>(geometry).parts();
            writeList(parts.size(), [&](std::size_t i) { write(*parts[i]); });
        } else {
            out_ += ",\"coordinates\":";
            writeCoordinates(geometry);
        }
        out_ += '}';
    }

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
        writeList(hasZ(dimensions) ? 3 : 2, [&](std::size_t i) { writeNumber(position[i]); });
    }

    void writeNumber(double number) {
        if (std::isfinite(number)) {
            appendNumber(number, style_.digits, out_);
        } else {
            out_ += "null";
        }
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
    const GeoJsonStyle& style_;
};

} // namespace

std::string wktKind(GeometryType type, Dimensions dimensions) {
    constexpr const char* suffixes[] = {"", " Z", " M", " ZM"};
    return std::string(keyword(type)) + suffixes[static_cast<std::size_t>(dimensions)];
}

void appendNumber(double value, int digits, std::string& out) {
    constexpr std::size_t longestWhole = 310; // of a double in plain digits
    constexpr int mostDigits = 20;
    char buffer[longestWhole + mostDigits];
    if (digits >= 0) {
        const auto end = std::to_chars(buffer, std::end(buffer), value, std::chars_format::fixed,
                                       std::min(digits, mostDigits));
        std::string_view text(buffer, static_cast<std::size_t>(end.ptr - buffer));
        if (text.find('.') != text.npos) {
            text = text.substr(0, text.find_last_not_of('0') + 1);
            text = text.back() == '.' ? text.substr(0, text.size() - 1) : text;
        }
        out += text == "-0" ? "0" : text;
        return;
    }
    const double magnitude = std::abs(value);
    const bool plain = magnitude == 0.0 || (magnitude >= 1e-7 && magnitude < 1e16);
    const auto end =
        plain ? std::to_chars(buffer, std::end(buffer), value == 0.0 ? 0.0 : value, std::chars_format::fixed)
              : std::to_chars(buffer, std::end(buffer), value);
    out.append(buffer, end.ptr);
}

void appendWkt(const Geometry& geometry, std::string& out, const WktStyle& style) {
    const GeometryPtr standard = inStandardKinds(borrowed(geometry));
    WktWriter(out, style).write(*standard);
}

void appendGeoJson(const Geometry& geometry, std::string& out, const GeoJsonStyle& style) {
    const GeometryPtr linear = linearized(borrowed(geometry));
    GeoJsonWriter(out, style).writeWhole(*linear);
}

} // namespace orvane::geometry
