#include "host/shell/output/ResultRow.h"

#include <orvane/engine/EngineCache.h>

namespace orvane::shell {

namespace {

/// The shortest geometry blob, an FGF or WKB point, takes more; every kind starts with a small byte: a
/// section tag of the engine's blob (0 to 7), SpatiaLite's mark (0), the byte order of WKB (0 or 1), the low
/// byte of an FGF type (1 to 13). Most other blobs end their way here.
bool mayBeGeometry(std::string_view bytes) {
    return bytes.size() >= 5 && static_cast<unsigned char>(bytes.front()) <= 13;
}

} // namespace

ResultRow::ResultRow(sqlite3_stmt* statement, engine::EngineCache* cache)
    : statement_(statement), cache_(cache), size_(sqlite3_column_count(statement)) {}

ResultValue ResultRow::value(int column) const {
    ResultValue value;
    switch (sqlite3_column_type(statement_, column)) {
    case SQLITE_INTEGER:
        value.kind = ResultValue::Integer;
        value.integer = sqlite3_column_int64(statement_, column);
        break;
    case SQLITE_FLOAT:
        value.kind = ResultValue::Real;
        value.real = sqlite3_column_double(statement_, column);
        break;
    case SQLITE_TEXT: {
        value.kind = ResultValue::Text;
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
        if (text) {
            value.view = {text, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
        }
        break;
    }
    case SQLITE_BLOB: {
        const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement_, column));
        value.view = {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
        if (cache_ && mayBeGeometry(value.view)) {
            value.geometry =
                cache_->geometryInfo(bytes, static_cast<unsigned int>(value.view.size()), false).geometry();
        }
        value.kind = value.geometry ? ResultValue::Geometry : ResultValue::Bytes;
        break;
    }
    default: break;
    }
    return value;
}

} // namespace orvane::shell
