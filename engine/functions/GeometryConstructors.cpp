#include <orvane/engine/functions/GeometryConstructors.h>

#include "GeometryCall.h"
#include "engine/geometry/SpatialiteLayout.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/making/RoundShapes.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace orvane::engine {

namespace {

using geometry::Dimensions;
using geometry::Envelope;
using geometry::RoundShape;

GeometryPtr inSystem(std::shared_ptr<geometry::Geometry> made, const GeometryCall& call, int position) {
    if (auto system = call.coordSystem(position)) {
        made->setCoordSystem(std::move(system));
    }
    return made;
}

/// The SpatiaLite blob of a point, without an object for it: a table of positions has a million of them.
class PointBlob {
public:
    PointBlob(Dimensions dimensions, const double* ordinates, std::int32_t srid) {
        append(spatialite::startMark);
        append(char{1}); // little-endian
        append(srid);
        for (int i = 0; i < 4; ++i) {
            append(ordinates[i % 2]);
        }
        append(spatialite::envelopeMark);
        append(static_cast<std::uint32_t>(spatialite::Point) +
               1000U * static_cast<std::uint32_t>(dimensions));
        for (std::size_t i = 0; i < geometry::strideOf(dimensions); ++i) {
            append(ordinates[i]);
        }
        append(spatialite::endMark);
    }
    QByteArray bytes() const { return QByteArray::fromRawData(bytes_.data(), static_cast<int>(size_)); }

private:
    template<typename Value>
    void append(Value value) {
        qToLittleEndian(value, bytes_.data() + size_);
        size_ += sizeof value;
    }

    std::array<char, 80> bytes_;
    std::size_t size_ = 0;
};

void point(const char* name, Dimensions dimensions, sqlite3_context* context, int count,
           sqlite3_value** values) {
    const int stride = static_cast<int>(geometry::strideOf(dimensions));
    barrier(context, [&] {
        const GeometryCall call(name, context, count, values);
        if (call.hasNull(stride)) {
            return;
        }
        std::array<double, 4> ordinates{};
        for (int i = 0; i < stride; ++i) {
            ordinates[static_cast<std::size_t>(i)] = call.number(i);
        }
        const auto system = call.coordSystem(stride);
        if (!system || system->epsg() != 0) {
            call.give(PointBlob(dimensions, ordinates.data(), system ? system->epsg() : 0).bytes());
        } else {
            const auto made = std::make_shared<geometry::Point>(dimensions, ordinates.data());
            made->setCoordSystem(system);
            call.give(GeometryPtr(made));
        }
    });
}

std::shared_ptr<geometry::Geometry> rectangle(const Envelope& sides) {
    const double corners[] = {sides.minX, sides.minY, sides.maxX, sides.minY, sides.maxX,
                              sides.maxY, sides.minX, sides.maxY, sides.minX, sides.minY};
    return std::make_shared<geometry::Polygon>(
        Dimensions::XY, std::vector{geometry::CoordinateSequence(Dimensions::XY, corners)});
}

double angle(const GeometryCall& call, int position) {
    constexpr double largest = 1e6;
    const double degrees = call.number(position);
    if (std::abs(degrees) > largest) {
        call.reject(position,
                    QT_TRANSLATE_NOOP("orvane::geometry", "нужен угол не больше миллиона градусов"));
    }
    return degrees;
}

/// x, y, one or two radii, and, so many arguments behind, the system and the step.
RoundShape roundShape(const GeometryCall& call, int radii, int system) {
    RoundShape shape{call.number(0), call.number(1), call.positive(2), call.positive(1 + radii)};
    shape.step = call.number(system + 1, shape.step);
    if (!(shape.step >= RoundShape::leastStep && shape.step <= RoundShape::mostStep)) {
        call.reject(system + 1, QT_TRANSLATE_NOOP("orvane::geometry", "нужно число от 0.001 до 120"));
    }
    return shape;
}

using ArcMaker = std::shared_ptr<geometry::Geometry>(const RoundShape& shape, double begin, double end);

/// With angles behind the radii.
void ofArc(const char* name, int radii, ArcMaker* make, sqlite3_context* context, int count,
           sqlite3_value** values) {
    const int system = 4 + radii;
    evaluate(name, system, context, count, values, [=](const GeometryCall& call) {
        return inSystem(make(roundShape(call, radii, system), angle(call, 2 + radii), angle(call, 3 + radii)),
                        call, system);
    });
}

void ofEllipse(const char* name, int radii, sqlite3_context* context, int count, sqlite3_value** values) {
    const int system = 2 + radii;
    evaluate(name, system, context, count, values, [=](const GeometryCall& call) {
        return inSystem(geometry::ellipse(roundShape(call, radii, system)), call, system);
    });
}

} // namespace

void makePoint(sqlite3_context* context, int count, sqlite3_value** values) {
    point("MakePoint", Dimensions::XY, context, count, values);
}

void makePointZ(sqlite3_context* context, int count, sqlite3_value** values) {
    point("MakePointZ", Dimensions::XYZ, context, count, values);
}

void makePointM(sqlite3_context* context, int count, sqlite3_value** values) {
    point("MakePointM", Dimensions::XYM, context, count, values);
}

void makePointZM(sqlite3_context* context, int count, sqlite3_value** values) {
    point("MakePointZM", Dimensions::XYZM, context, count, values);
}

void buildMbr(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("BuildMbr", 4, context, count, values, [](const GeometryCall& call) {
        Envelope sides;
        sides.add(call.number(0), call.number(1));
        sides.add(call.number(2), call.number(3));
        return inSystem(rectangle(sides), call, 4);
    });
}

void buildCircleMbr(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("BuildCircleMbr", 3, context, count, values, [](const GeometryCall& call) {
        const double x = call.number(0);
        const double y = call.number(1);
        const double radius = call.positive(2);
        return inSystem(rectangle({x - radius, y - radius, x + radius, y + radius}), call, 3);
    });
}

void makeCircle(sqlite3_context* context, int count, sqlite3_value** values) {
    ofEllipse("MakeCircle", 1, context, count, values);
}

void makeEllipse(sqlite3_context* context, int count, sqlite3_value** values) {
    ofEllipse("MakeEllipse", 2, context, count, values);
}

void makeArc(sqlite3_context* context, int count, sqlite3_value** values) {
    ofArc("MakeArc", 1, geometry::arc, context, count, values);
}

void makeEllipticArc(sqlite3_context* context, int count, sqlite3_value** values) {
    ofArc("MakeEllipticArc", 2, geometry::arc, context, count, values);
}

void makeCircularSector(sqlite3_context* context, int count, sqlite3_value** values) {
    ofArc("MakeCircularSector", 1, geometry::sector, context, count, values);
}

void makeEllipticSector(sqlite3_context* context, int count, sqlite3_value** values) {
    ofArc("MakeEllipticSector", 2, geometry::sector, context, count, values);
}

void makeCircularStripe(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("MakeCircularStripe", 6, context, count, values, [](const GeometryCall& call) {
        const RoundShape both = roundShape(call, 2, 6);
        RoundShape inner = both;
        RoundShape outer = both;
        inner.radiusY = both.radiusX;
        outer.radiusX = both.radiusY;
        return inSystem(geometry::stripe(inner, outer, angle(call, 4), angle(call, 5)), call, 6);
    });
}

} // namespace orvane::engine
