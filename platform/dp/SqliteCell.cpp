#include "platform/dp/SqliteCell.h"

#include <sqlite3.h>

namespace orvane::dp {

namespace {

/// The one place that chooses SQLite's call for a cell.
template<class Taker>
auto handOver(const Cell& cell, Taker taker) {
    // An empty view may carry a null pointer, which SQLite would take for NULL.
    const auto view = [&cell] { return cell.view().empty() ? std::string_view("") : cell.view(); };
    switch (cell.type()) {
    case CellType::Null: return taker.null();
    case CellType::Integer: return taker.integer(cell.integer());
    case CellType::Real: return taker.real(cell.real());
    case CellType::Text: return taker.text(view());
    case CellType::Bytes:
    case CellType::Wkb: break;
    }
    return taker.bytes(view());
}

struct Result {
    sqlite3_context* context;

    void null() const { sqlite3_result_null(context); }
    void integer(std::int64_t value) const { sqlite3_result_int64(context, value); }
    void real(double value) const { sqlite3_result_double(context, value); }
    void text(std::string_view utf8) const {
        sqlite3_result_text64(context, utf8.data(), utf8.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    void bytes(std::string_view bytes) const {
        sqlite3_result_blob64(context, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
    }
};

struct Parameter {
    sqlite3_stmt* statement;
    int number;
    sqlite3_destructor_type destructor;

    int null() const { return sqlite3_bind_null(statement, number); }
    int integer(std::int64_t value) const { return sqlite3_bind_int64(statement, number, value); }
    int real(double value) const { return sqlite3_bind_double(statement, number, value); }
    int text(std::string_view utf8) const {
        return sqlite3_bind_text64(statement, number, utf8.data(), utf8.size(), destructor, SQLITE_UTF8);
    }
    int bytes(std::string_view bytes) const {
        return sqlite3_bind_blob64(statement, number, bytes.data(), bytes.size(), destructor);
    }
};

} // namespace

void setResult(sqlite3_context* context, const Cell& cell) {
    handOver(cell, Result{context});
}

int bindCell(sqlite3_stmt* statement, int parameter, const Cell& cell, Binding binding) {
    return handOver(
        cell, Parameter{statement, parameter, binding == Binding::Copied ? SQLITE_TRANSIENT : SQLITE_STATIC});
}

} // namespace orvane::dp
