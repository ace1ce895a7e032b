#pragma once

#include "platform/dp/Table.h"
#include "platform/geometry/shapes/Coordinates.h"
#include "platform/work/Cancellation.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orvane::shell {

/// What a table holds, counted row by row.
struct TableInfo {
    struct Column {
        QString name;
        QString type;
        std::int64_t values = 0; ///< that are not NULL
    };

    QString name;
    QString source; ///< the file, as the user named it
    std::int64_t rows = 0;
    QString system;                        ///< of the geometries; empty for none
    std::map<QString, std::int64_t> kinds; ///< of the geometries, with their numbers
    geometry::Envelope extent;
    std::vector<Column> columns; ///< the geometry as "obj"

    /// Reads the whole table. Throws std::runtime_error when that fails, work::Cancelled.
    static TableInfo of(dp::Table& table, QString source, const work::Cancellation& cancellation);
    /// An object of JSON on one line.
    std::string toJson() const;
};

/// What a column holds, in the words of SQL.
QString typeName(const dp::AttributeDefinition& attribute);

/// The kinds of the geometries that the first hundred rows have; empty for a table without geometries.
QStringList firstGeometryKinds(dp::Table& table);

} // namespace orvane::shell
