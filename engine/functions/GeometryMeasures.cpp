#include <orvane/engine/functions/Geometry.h>

#include "Barrier.h"
#include "GeometryArguments.h"
#include "platform/geometry/measures/Measures.h"
#include "platform/geometry/relations/Relations.h"
#include <orvane/engine/GeometryConversions.h>
#include <orvane/engine/functions/Converters.h>

#include <new>

namespace orvane::engine {

namespace {

/// A number asks for metres, as with SpatiaLite, where it asks for the ellipsoid.
QString unitsArgument(int count, sqlite3_value** values, int position) {
    return count > position && sqlite3_value_numeric_type(values[position]) == SQLITE_TEXT
               ? toQString(values[position])
               : QString();
}

void measure(sqlite3_context* context, int count, sqlite3_value** values,
             double (*core)(const geometry::Geometry&, const QString&)) {
    barrier(context, [&] {
        const GeometryPtr geometry = toGeometry(context, values[0], true);
        if (!geometry) {
            return;
        }
        QString error;
        double value = 0.0;
        try {
            value = core(*geometry, unitsArgument(count, values, 1));
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& failure) {
            error = QString::fromUtf8(failure.what());
            value = -1.0;
        } catch (...) {
            error = QStringLiteral("Unexpected error");
        }
        if (error.isEmpty()) {
            sqlite3_result_double(context, value);
        } else {
            sqlite3_result_error(context, error.toUtf8().constData(), -1);
        }
    });
}

void centroidOrdinate(sqlite3_context* context, sqlite3_value* value,
                      double (geometry::Point::*ordinate)() const) {
    barrier(context, [&] {
        const GeometryPtr geometry = toGeometry(context, value, true);
        const auto centre = geometry ? geometry::centroid(*geometry) : nullptr;
        if (centre) {
            sqlite3_result_double(context, (centre.get()->*ordinate)());
        }
    });
}

} // namespace

void perimeter(sqlite3_context* context, int count, sqlite3_value** values) {
    measure(context, count, values, geometry::perimeter);
}

void sphericalPerimeter(sqlite3_context* context, int count, sqlite3_value** values) {
    measure(context, count, values, geometry::sphericalPerimeter);
}

void cartesianPerimeter(sqlite3_context* context, int count, sqlite3_value** values) {
    measure(context, count, values, geometry::cartesianPerimeter);
}

void objectLen(sqlite3_context* context, int count, sqlite3_value** values) {
    measure(context, count, values, geometry::length);
}

void sphericalObjectLen(sqlite3_context* context, int count, sqlite3_value** values) {
    measure(context, count, values, geometry::sphericalLength);
}

void cartesianObjectLen(sqlite3_context* context, int count, sqlite3_value** values) {
    measure(context, count, values, geometry::cartesianLength);
}

void area(sqlite3_context* context, int count, sqlite3_value** values) {
    measure(context, count, values, geometry::area);
}

void sphericalArea(sqlite3_context* context, int count, sqlite3_value** values) {
    measure(context, count, values, geometry::sphericalArea);
}

void cartesianArea(sqlite3_context* context, int count, sqlite3_value** values) {
    measure(context, count, values, geometry::cartesianArea);
}

void centroidX(sqlite3_context* context, int, sqlite3_value** values) {
    centroidOrdinate(context, values[0], &geometry::Point::x);
}

void centroidY(sqlite3_context* context, int, sqlite3_value** values) {
    centroidOrdinate(context, values[0], &geometry::Point::y);
}

} // namespace orvane::engine
