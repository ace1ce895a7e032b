#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::geometry {
class Geometry;
}
namespace orvane::engine {
class EngineCache;
}

namespace orvane::shell {

/// One value of a result. Text and bytes stay valid until the statement is stepped.
struct ResultValue {
    enum Kind : std::uint8_t { Null, Integer, Real, Text, Geometry, Bytes };

    Kind kind = Null;
    std::int64_t integer = 0;
    double real = 0;
    std::string_view view; ///< UTF-8 text or bytes, also those of a geometry
    std::shared_ptr<const geometry::Geometry> geometry;
};

/// The current row of a running statement, read through SQLite's typed column access.
class ResultRow {
public:
    /// Neither is owned; without a cache every blob is bytes.
    ResultRow(sqlite3_stmt* statement, engine::EngineCache* cache);

    int size() const { return size_; }
    /// A blob that the engine can decode as a geometry is one.
    ResultValue value(int column) const;

private:
    sqlite3_stmt* statement_;
    engine::EngineCache* cache_;
    int size_;
};

} // namespace orvane::shell
