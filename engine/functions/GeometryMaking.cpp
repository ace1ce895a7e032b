#include <orvane/engine/functions/GeometryMaking.h>

#include "GeometryCall.h"
#include "PreparedArgument.h"
#include "platform/geometry/making/Buffer.h"

#include <new>
#include <string>
#include <utility>

namespace orvane::engine {

namespace {

bool isNumber(sqlite3_value* value) {
    const int type = sqlite3_value_type(value);
    return type == SQLITE_INTEGER || type == SQLITE_FLOAT;
}

/// The buffer that a statement made last: a join asks for that of one object for every object that it is
/// compared with.
class LastBuffer {
public:
    static constexpr int numberInStatement = -20262;

    template<typename Make>
    GeometryPtr get(const GeometryCall& call, const Make& make) {
        std::string key;
        for (int i = 0; i < call.count(); ++i) {
            const int type = sqlite3_value_type(call.value(i));
            const bool isReal = type == SQLITE_FLOAT;
            const double number = isReal ? sqlite3_value_double(call.value(i)) : 0.0;
            const auto* bytes = isReal ? reinterpret_cast<const char*>(&number)
                                       : static_cast<const char*>(sqlite3_value_blob(call.value(i)));
            const auto size =
                isReal ? sizeof number : static_cast<std::size_t>(sqlite3_value_bytes(call.value(i)));
            key += static_cast<char>(type);
            key.append(reinterpret_cast<const char*>(&size), sizeof size);
            key.append(bytes ? bytes : "", bytes ? size : 0);
        }
        if (!result_ || key != key_) {
            result_ = make();
            key_ = std::move(key);
        }
        return result_;
    }

private:
    std::string key_;
    GeometryPtr result_;
};

GeometryPtr makeBuffer(const GeometryCall& call) {
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
}

} // namespace

void buffer(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("Buffer", 2, context, count, values, [context](const GeometryCall& call) {
        return ofStatement<LastBuffer>(context).get(call, [&call] { return makeBuffer(call); });
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
