#pragma once

#include "host/postgres/description/ValueKind.h"
#include "platform/dp/TableSchema.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace orvane::postgres {

struct ColumnDescription {
    std::string name; ///< in the database, UTF-8
    std::string type; ///< as the database writes it, for casts
    ValueKind kind = ValueKind::Text;
    bool isIndexed = false;       ///< an index begins with it
    bool isGenerated = false;     ///< computed by the server: cannot be written
    int srid = 0;                 ///< of the geometries, 0 when unknown
    bool hasMixedSystems = false; ///< geometries of other systems are not kept out
    bool isMulti = false;         ///< takes only geometries of several parts
};

/// What tells one row of a table from the others.
enum class RowKey : std::uint8_t {
    Integer, ///< one key column of integers
    Values,  ///< key columns of other types, or several
    Place,   ///< where the row lies in the table, until it is changed
    Number,  ///< its number as the rows are read
};

/// One table, view or materialised view.
struct TableDescription {
    std::uint32_t oid = 0;
    std::string schemaName;
    std::string name;
    char kind = 'r'; ///< of pg_class
    RowKey key = RowKey::Number;
    std::vector<int> keyColumns;            ///< positions in `columns`
    std::vector<ColumnDescription> columns; ///< one for each attribute of the schema
    std::shared_ptr<const dp::TableSchema> schema;
    std::string postgis; ///< schema of PostGIS, quoted, with a dot; empty where it is not installed
    bool isWritable = false;
    bool isSampled = false;   ///< rows can be drawn at random
    bool isElsewhere = false; ///< its rows may change without the server's noticing

    /// With its schema, quoted.
    std::string sqlName() const;
};

} // namespace orvane::postgres
