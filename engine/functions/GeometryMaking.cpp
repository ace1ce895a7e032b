#include <orvane/engine/functions/GeometryMaking.h>

#include "GeometryCall.h"
#include "platform/geometry/making/Buffer.h"

namespace orvane::engine {

namespace {

bool isNumber(sqlite3_value* value) {
    const int type = sqlite3_value_type(value);
    return type == SQLITE_INTEGER || type == SQLITE_FLOAT;
}

} // namespace

void buffer(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("Buffer", 2, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr geometry = call.geometry(0);
        const double distance = call.number(1);
        QString units;
        geometry::BufferOptions options;
        bool hasSegments = false;
        for (int position = 2; position < call.count(); ++position) {
            if (!call.isGiven(position)) {
                continue;
            }
            if (isNumber(call.value(position))) {
                options.quadrantSegments = geometry::quadrantSegments(call.number(position));
                hasSegments = true;
            } else if (const QString text = call.text(position);
                       position > 2 || text.contains(QLatin1Char('='))) {
                const int segments = options.quadrantSegments;
                options = geometry::bufferOptions(text);
                if (hasSegments && !text.contains(QLatin1String("quad_segs"), Qt::CaseInsensitive)) {
                    options.quadrantSegments = segments;
                }
            } else {
                units = text;
            }
        }
        return geometry::buffer(*geometry, distance, units, options);
    });
}

void singleSidedBuffer(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("SingleSidedBuffer", 3, context, count, values, [](const GeometryCall& call) {
        using Side = geometry::BufferOptions::Side;
        geometry::BufferOptions options;
        options.side = call.integer(2) != 0 ? Side::Left : Side::Right;
        return geometry::buffer(*call.geometry(0), call.number(1), call.text(3), options);
    });
}

} // namespace orvane::engine
