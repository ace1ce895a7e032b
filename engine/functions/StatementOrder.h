#pragma once

#include "platform/dp/ValueOrder.h"
#include <orvane/engine/LocaleOrder.h>

#include <sqlite3.h>

#include <memory>

namespace orvane::engine {

/// A view of the value, valid as long as SQLite keeps it.
inline dp::Cell cellOf(sqlite3_value* value) {
    const auto view = [value](const void* begin) {
        return std::string_view(static_cast<const char*>(begin),
                                begin ? static_cast<std::size_t>(sqlite3_value_bytes(value)) : 0);
    };
    switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER: return dp::Cell::ofInteger(sqlite3_value_int64(value));
    case SQLITE_FLOAT: return dp::Cell::ofReal(sqlite3_value_double(value));
    case SQLITE_TEXT: return dp::Cell::ofText(view(sqlite3_value_text(value)));
    case SQLITE_BLOB: return dp::Cell::ofBytes(view(sqlite3_value_blob(value)));
    default: return {};
    }
}

/// The order that values have in a statement, as Order By has it: numbers, texts under Locale, bytes. An
/// object of the statement (ofStatement), since the default locale may change between two.
class StatementOrder {
public:
    static constexpr int numberInStatement = -20264;

    const std::shared_ptr<const LocaleOrder>& locale() const { return locale_; }
    /// Negative, zero or positive; neither value is NULL.
    int compare(const dp::Cell& a, const dp::Cell& b) const {
        const int rankOfA = rank(a);
        const int rankOfB = rank(b);
        if (rankOfA != rankOfB) {
            return rankOfA - rankOfB;
        }
        return rankOfA == 0                     ? dp::compareNumbers(a, b)
               : a.type() == dp::CellType::Text ? locale_->compare(a.view(), b.view())
                                                : a.view().compare(b.view());
    }

private:
    static int rank(const dp::Cell& cell) {
        return dp::isNumber(cell) ? 0 : cell.type() == dp::CellType::Text ? 1 : 2;
    }

    std::shared_ptr<const LocaleOrder> locale_ = LocaleOrder::current();
};

} // namespace orvane::engine
