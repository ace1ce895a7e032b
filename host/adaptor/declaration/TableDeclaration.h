#pragma once

#include "platform/dp/Cursor.h"
#include "platform/dp/ScanRequest.h"
#include "platform/dp/TableSchema.h"

#include <string>
#include <vector>

namespace orvane::adaptor {

/// How a table's schema appears as the columns of its virtual table: the plain attributes under their names,
/// then the geometry column and the style column under their fixed names. A table without geometry or style
/// has these two all the same, always NULL and hidden, so that a query may name them but `*` does not show
/// them. Four more hidden ones give the rows in the order of a distance, and by a relation to those of
/// another table (engine/ColumnNames.h).
class TableDeclaration {
public:
    enum class Kind : std::uint8_t { Number, Text, Other, Geometry, Style, Origin, Distance, Operand };

    struct Column {
        int attribute = -1; ///< position in the schema, -1 for a column that the table does not have
        Kind kind = Kind::Other;
        dp::TextCollation collation = dp::TextCollation::Binary; ///< unless a query says otherwise
        bool unique = false;

        bool isLocaleText() const { return kind == Kind::Text && collation == dp::TextCollation::Locale; }
        /// Whether SQLite compares the column with a value of the type as both are: numbers or texts.
        bool comparesAsIs(dp::CellType type) const {
            return kind == Kind::Text ? type == dp::CellType::Text
                                      : kind == Kind::Number &&
                                            (type == dp::CellType::Integer || type == dp::CellType::Real);
        }
    };

    explicit TableDeclaration(const dp::TableSchema& schema);

    /// The statement for sqlite3_declare_vtab.
    const std::string& sql() const { return sql_; }
    const std::vector<Column>& columns() const { return columns_; }
    int geometryColumn() const { return static_cast<int>(columns_.size()) - 6; }
    int originColumn() const { return geometryColumn() + 2; }
    int distanceColumn() const { return geometryColumn() + 3; }
    int firstOperandColumn() const { return geometryColumn() + 4; }
    int secondOperandColumn() const { return geometryColumn() + 5; }

private:
    std::string sql_;
    std::vector<Column> columns_;
};

} // namespace orvane::adaptor
