#pragma once

#include "platform/dp/Cursor.h"
#include "platform/dp/ScanRequest.h"

#include <sqlite3.h>

#include <optional>

namespace orvane::adaptor {

/// What SQLite tells xBestIndex of the conditions on a scan, in the words of the tables, by their positions.
class Constraints {
public:
    explicit Constraints(sqlite3_index_info& info) : info_(info) {}

    int count() const { return info_.nConstraint; }
    /// The column of the virtual table; negative for the row number.
    int column(int i) const { return raw(i).iColumn; }
    /// Whether its operand is known when the scan starts.
    bool isUsable(int i) const { return raw(i).usable != 0; }
    /// Of SQLite's.
    unsigned char operation(int i) const { return raw(i).op; }
    bool isLimit(int i) const { return operation(i) == SQLITE_INDEX_CONSTRAINT_LIMIT; }
    bool isOffset(int i) const { return operation(i) == SQLITE_INDEX_CONSTRAINT_OFFSET; }
    bool isFunction(int i) const { return operation(i) >= SQLITE_INDEX_CONSTRAINT_FUNCTION; }

    /// Nothing for what is no comparison, or one that no table answers.
    std::optional<dp::Comparison> comparison(int i) const;
    /// As the user writes it.
    const char* operatorText(int i) const;
    /// Nothing for one that only its SQL function knows.
    std::optional<dp::TextCollation> collation(int i) const;
    /// Whether the operand is a list that can be handed over whole.
    bool isList(int i) const { return sqlite3_vtab_in(&info_, i, -1) != 0; }
    /// Has the list handed over whole; false where there is none.
    bool takeList(int i) const { return sqlite3_vtab_in(&info_, i, 1) != 0; }
    /// What the column is compared with, if that is known by now. NULL for bytes, too.
    std::optional<dp::Cell> constantOperand(int i) const;

private:
    const sqlite3_index_info::sqlite3_index_constraint& raw(int i) const { return info_.aConstraint[i]; }

    sqlite3_index_info& info_;
};

} // namespace orvane::adaptor
