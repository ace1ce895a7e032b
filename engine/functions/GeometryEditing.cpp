#include <orvane/engine/functions/GeometryEditing.h>

#include "GeometryCall.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/editing/Access.h"
#include "platform/geometry/editing/Editing.h"
#include <orvane/engine/GeometryConversions.h>

#include "engine/geometry/GaiaPtr.h"

#include <algorithm>
#include <cmath>

namespace orvane::engine {

namespace {

using geometry::Dimensions;
using geometry::GeometryType;

constexpr const char* lineExpected = QT_TRANSLATE_NOOP("orvane::geometry", "нужна линия из прямых отрезков");
constexpr const char* pointExpected = QT_TRANSLATE_NOOP("orvane::geometry", "нужна точка");
constexpr const char* noSuchPlace = QT_TRANSLATE_NOOP("orvane::geometry", "у линии нет такого положения");

/// The line whose positions a function changes.
class EditedLine {
public:
    explicit EditedLine(const GeometryCall& call) : EditedLine(call, call.geometry(0)) {}
    /// With a point, in the system and the ordinates of the line.
    EditedLine(const GeometryCall& call, int point) : EditedLine(call, call.geometries(0, point), point) {}

    std::size_t size() const { return values_.size() / stride(); }

    /// Of so many positions the one that an argument counts from 0.
    std::size_t place(int argument, std::size_t count) const {
        const std::int64_t asked = call_.integer(argument);
        if (asked < 0 || asked >= static_cast<std::int64_t>(count)) {
            call_.reject(argument, noSuchPlace);
        }
        return static_cast<std::size_t>(asked);
    }
    GeometryPtr inserted(std::size_t place) {
        values_.insert(at(place), point_.begin(), point_.end());
        return result();
    }
    GeometryPtr replaced(std::size_t place) {
        if (place >= size()) {
            call_.reject(0, noSuchPlace);
        }
        std::copy(point_.begin(), point_.end(), at(place));
        return result();
    }
    GeometryPtr removed(std::size_t place) {
        if (size() <= 2) {
            call_.reject(0,
                         QT_TRANSLATE_NOOP("orvane::geometry", "у линии осталось бы меньше двух положений"));
        }
        values_.erase(at(place), at(place + 1));
        return result();
    }

private:
    EditedLine(const GeometryCall& call, const GeometryPair& pair, int point) : EditedLine(call, pair.first) {
        const geometry::Geometry& only = geometry::onlyPart(*pair.second);
        if (only.type() != GeometryType::Point || only.isEmpty()) {
            call.reject(point, pointExpected);
        }
        const GeometryPtr fitting = geometry::withDimensions(only.clone(), line_->dimensions());
        const double* ordinates = static_cast<const geometry::Point&>(*fitting).ordinates();
        point_.assign(ordinates, ordinates + stride());
    }
    EditedLine(const GeometryCall& call, GeometryPtr geometry) : call_(call), line_(std::move(geometry)) {
        const geometry::Geometry& only = geometry::onlyPart(*line_);
        if (only.type() != GeometryType::LineString) {
            call.reject(0, lineExpected);
        }
        const std::span<const double> values =
            static_cast<const geometry::LineString&>(only).coordinates().values();
        values_.assign(values.begin(), values.end());
    }

    std::size_t stride() const { return strideOf(line_->dimensions()); }
    std::vector<double>::iterator at(std::size_t place) {
        return values_.begin() + static_cast<std::ptrdiff_t>(place * stride());
    }
    GeometryPtr result() const {
        return withCoordSystem(std::make_shared<geometry::LineString>(
                                   geometry::CoordinateSequence(line_->dimensions(), values_)),
                               line_->coordSystem());
    }

    const GeometryCall& call_;
    GeometryPtr line_;
    std::vector<double> values_;
    std::vector<double> point_;
};

GeometryPtr cast(const GeometryCall& call, GeometryType type) {
    return geometry::castTo(call.geometry(0), type);
}

GeometryPtr castOrdinates(const GeometryCall& call, Dimensions dimensions, double z, double m) {
    return geometry::withDimensions(call.geometry(0), dimensions, z, m);
}

GeometryPtr moved(const GeometryCall& call, const geometry::AffineMap& map) {
    return geometry::moved(call.geometry(0), map);
}

} // namespace

void setSrid(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("SetSRID", 2, context, count, values,
             [](const GeometryCall& call) { return withCoordSystem(call.geometry(0), call.coordSystem(1)); });
}

void addPoint(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("AddPoint", 2, context, count, values, [](const GeometryCall& call) {
        EditedLine line(call, 1);
        const bool atEnd = call.integer(2, -1) == -1;
        return line.inserted(atEnd ? line.size() : line.place(2, line.size() + 1));
    });
}

void setPoint(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("SetPoint", 3, context, count, values, [](const GeometryCall& call) {
        EditedLine line(call, 2);
        return line.replaced(line.place(1, line.size()));
    });
}

void setStartPoint(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("SetStartPoint", 2, context, count, values,
             [](const GeometryCall& call) { return EditedLine(call, 1).replaced(0); });
}

void setEndPoint(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("SetEndPoint", 2, context, count, values, [](const GeometryCall& call) {
        EditedLine line(call, 1);
        return line.replaced(line.size() - 1);
    });
}

void removePoint(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("RemovePoint", 2, context, count, values, [](const GeometryCall& call) {
        EditedLine line(call);
        return line.removed(line.place(1, line.size()));
    });
}

void castToPoint(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CastToPoint", 1, context, count, values,
             [](const GeometryCall& call) { return cast(call, GeometryType::Point); });
}

void castToLineString(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CastToLinestring", 1, context, count, values,
             [](const GeometryCall& call) { return cast(call, GeometryType::LineString); });
}

void castToPolygon(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CastToPolygon", 1, context, count, values,
             [](const GeometryCall& call) { return cast(call, GeometryType::Polygon); });
}

void castToMultiPoint(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CastToMultiPoint", 1, context, count, values,
             [](const GeometryCall& call) { return cast(call, GeometryType::MultiPoint); });
}

void castToMultiLineString(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CastToMultiLinestring", 1, context, count, values,
             [](const GeometryCall& call) { return cast(call, GeometryType::MultiLineString); });
}

void castToMultiPolygon(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CastToMultiPolygon", 1, context, count, values,
             [](const GeometryCall& call) { return cast(call, GeometryType::MultiPolygon); });
}

void castToCollection(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CastToGeometryCollection", 1, context, count, values,
             [](const GeometryCall& call) { return cast(call, GeometryType::GeometryCollection); });
}

void castToMulti(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CastToMulti", 1, context, count, values,
             [](const GeometryCall& call) { return geometry::castToMulti(call.geometry(0)); });
}

void castToSingle(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CastToSingle", 1, context, count, values,
             [](const GeometryCall& call) { return geometry::castToSingle(call.geometry(0)); });
}

void castToXy(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CastToXY", 1, context, count, values,
             [](const GeometryCall& call) { return castOrdinates(call, Dimensions::XY, 0.0, 0.0); });
}

void castToXyz(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CastToXYZ", 1, context, count, values, [](const GeometryCall& call) {
        return castOrdinates(call, Dimensions::XYZ, call.number(1, 0.0), 0.0);
    });
}

void castToXym(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CastToXYM", 1, context, count, values, [](const GeometryCall& call) {
        return castOrdinates(call, Dimensions::XYM, 0.0, call.number(1, 0.0));
    });
}

void castToXyzm(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CastToXYZM", 1, context, count, values, [](const GeometryCall& call) {
        return castOrdinates(call, Dimensions::XYZM, call.number(1, 0.0), call.number(2, 0.0));
    });
}

void swapCoordinates(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("SwapCoordinates", 1, context, count, values, [](const GeometryCall& call) {
        return geometry::withPositions(
            call.geometry(0), [](double* position, Dimensions) { std::swap(position[0], position[1]); });
    });
}

void shiftCoordinates(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ShiftCoordinates", 3, context, count, values, [](const GeometryCall& call) {
        return moved(call, geometry::AffineMap::translation(call.number(1), call.number(2), 0.0));
    });
}

void translate(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_Translate", 4, context, count, values, [](const GeometryCall& call) {
        return moved(call, geometry::AffineMap::translation(call.number(1), call.number(2), call.number(3)));
    });
}

void scaleCoordinates(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ScaleCoordinates", 2, context, count, values, [](const GeometryCall& call) {
        const double factor = call.number(1);
        return moved(call, geometry::AffineMap::scaling(factor, call.number(2, factor), 1.0));
    });
}

void rotateCoordinates(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("RotateCoordinates", 2, context, count, values, [](const GeometryCall& call) {
        return moved(call, geometry::AffineMap::rotation(geometry::AffineMap::Axis::Z, -call.number(1)));
    });
}

void reflectCoordinates(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ReflectCoordinates", 3, context, count, values, [](const GeometryCall& call) {
        return moved(call, geometry::AffineMap::scaling(call.integer(1) != 0 ? -1.0 : 1.0,
                                                        call.integer(2) != 0 ? -1.0 : 1.0, 1.0));
    });
}

void shiftLongitude(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ST_Shift_Longitude", 1, context, count, values, [](const GeometryCall& call) {
        return geometry::withLinearPositions(call.geometry(0), [](double* position, Dimensions) {
            position[0] += position[0] < 0.0 ? 360.0 : 0.0;
        });
    });
}

void normalizeLonLat(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("NormalizeLonLat", 1, context, count, values,
             [](const GeometryCall& call) { return geometry::withNormalLongitudes(call.geometry(0)); });
}

void compressGeometry(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("CompressGeometry", 1, context, count, values, [](const GeometryCall& call) {
        const QByteArray blob = toGaia(call.geometry(0), &call.cache());
        const GaiaPtr collection(
            toGaia(reinterpret_cast<const unsigned char*>(blob.constData()), blob.size()));
        if (!collection) {
            return blob;
        }
        const GaiaBytes compressed(collection, gaiaToCompressedBlobWkb);
        return QByteArray(compressed.view().data(), static_cast<int>(compressed.view().size()));
    });
}

void uncompressGeometry(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("UncompressGeometry", 1, context, count, values,
             [](const GeometryCall& call) { return call.geometry(0); });
}

} // namespace orvane::engine
