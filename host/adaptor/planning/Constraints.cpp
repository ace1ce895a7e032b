#include "host/adaptor/planning/Constraints.h"

#include <cstddef>

namespace orvane::adaptor {

namespace {

/// The value as a cell that shows it.
dp::Cell cellOf(sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER: return dp::Cell::ofInteger(sqlite3_value_int64(value));
    case SQLITE_FLOAT: return dp::Cell::ofReal(sqlite3_value_double(value));
    case SQLITE_TEXT: {
        const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
        return dp::Cell::ofText({text, static_cast<std::size_t>(sqlite3_value_bytes(value))});
    }
    default: return {};
    }
}

} // namespace

std::optional<dp::Comparison> Constraints::comparison(int i) const {
    using dp::Comparison;
    switch (operation(i)) {
    case SQLITE_INDEX_CONSTRAINT_EQ: return Comparison::Equal;
    case SQLITE_INDEX_CONSTRAINT_GT: return Comparison::Greater;
    case SQLITE_INDEX_CONSTRAINT_LE: return Comparison::LessOrEqual;
    case SQLITE_INDEX_CONSTRAINT_LT: return Comparison::Less;
    case SQLITE_INDEX_CONSTRAINT_GE: return Comparison::GreaterOrEqual;
    case SQLITE_INDEX_CONSTRAINT_NE: return Comparison::NotEqual;
    case SQLITE_INDEX_CONSTRAINT_IS: return Comparison::Is;
    case SQLITE_INDEX_CONSTRAINT_ISNOT: return Comparison::IsNot;
    case SQLITE_INDEX_CONSTRAINT_ISNULL: return Comparison::IsNull;
    case SQLITE_INDEX_CONSTRAINT_ISNOTNULL: return Comparison::IsNotNull;
    case SQLITE_INDEX_CONSTRAINT_LIKE: return Comparison::Like;
    case SQLITE_INDEX_CONSTRAINT_GLOB: return Comparison::Glob;
    default: return std::nullopt;
    }
}

std::optional<dp::TextCollation> Constraints::collation(int i) const {
    const char* const name = sqlite3_vtab_collation(&info_, i);
    if (sqlite3_stricmp(name, "BINARY") == 0) {
        return dp::TextCollation::Binary;
    }
    if (sqlite3_stricmp(name, "NOCASE") == 0) {
        return dp::TextCollation::NoCase;
    }
    if (sqlite3_stricmp(name, "Locale") == 0) {
        return dp::TextCollation::Locale;
    }
    return std::nullopt;
}

const char* Constraints::operatorText(int i) const {
    if (isList(i)) {
        return "In";
    }
    switch (operation(i)) {
    case SQLITE_INDEX_CONSTRAINT_EQ: return "=";
    case SQLITE_INDEX_CONSTRAINT_GT: return ">";
    case SQLITE_INDEX_CONSTRAINT_LE: return "<=";
    case SQLITE_INDEX_CONSTRAINT_LT: return "<";
    case SQLITE_INDEX_CONSTRAINT_GE: return ">=";
    case SQLITE_INDEX_CONSTRAINT_NE: return "<>";
    case SQLITE_INDEX_CONSTRAINT_IS: return "Is";
    case SQLITE_INDEX_CONSTRAINT_ISNOT: return "Is Not";
    case SQLITE_INDEX_CONSTRAINT_ISNULL: return "Is Null";
    case SQLITE_INDEX_CONSTRAINT_ISNOTNULL: return "Is Not Null";
    case SQLITE_INDEX_CONSTRAINT_LIKE: return "Like";
    case SQLITE_INDEX_CONSTRAINT_GLOB: return "Glob";
    default: return "?";
    }
}

std::optional<dp::Cell> Constraints::constantOperand(int i) const {
    sqlite3_value* operand = nullptr;
    return sqlite3_vtab_rhs_value(&info_, i, &operand) == SQLITE_OK ? std::optional(cellOf(operand))
                                                                    : std::nullopt;
}

} // namespace orvane::adaptor
