#include "platform/dp/SqliteStatement.h"

#include "platform/core/SqliteException.h"
#include "platform/dp/SqliteCell.h"

#include <QScopeGuard>

#include <sqlite3.h>

#include <utility>

namespace orvane::dp {

namespace {

/// A bulk insert can be megabytes long; the beginning says which statement it was.
constexpr int quotedStatementLength = 500;

[[noreturn]] void raise(sqlite3* database, const QString& operation, const QString& sql) {
    QString message = operation.isEmpty() ? QString() : operation + QLatin1String(": ");
    message += sql.size() > quotedStatementLength ? sql.left(quotedStatementLength) + QChar(0x2026) : sql;
    message += QLatin1String(": ") + QString::fromUtf8(sqlite3_errmsg(database));
    throw err::SqliteException(database, message);
}

} // namespace

void SqliteStatement::Finalizer::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

SqliteStatement::SqliteStatement(sqlite3* database, const QString& sql, const QString& operation, Use use)
    : operation_(operation) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare16_v3(
        database, sql.utf16(), -1, use == Use::Repeated ? SQLITE_PREPARE_PERSISTENT : 0, &statement, nullptr);
    statement_.reset(statement);
    if (code != SQLITE_OK) {
        raise(database, operation_, sql);
    }
}

SqliteStatement::~SqliteStatement() = default;
SqliteStatement::SqliteStatement(SqliteStatement&&) noexcept = default;
SqliteStatement& SqliteStatement::operator=(SqliteStatement&&) noexcept = default;

void SqliteStatement::bindNull(int parameter) {
    bind(parameter, Cell());
}

void SqliteStatement::bind(int parameter, qint64 value) {
    bind(parameter, Cell::ofInteger(value));
}

void SqliteStatement::bind(int parameter, double value) {
    bind(parameter, Cell::ofReal(value));
}

void SqliteStatement::bind(int parameter, std::u16string_view text) {
    // An empty view may carry a null pointer, which would bind NULL.
    const void* data = text.empty() ? u"" : text.data();
    check(sqlite3_bind_text64(statement_.get(), parameter, static_cast<const char*>(data),
                              text.size() * sizeof(char16_t), SQLITE_TRANSIENT, SQLITE_UTF16));
}

void SqliteStatement::bind(int parameter, std::string_view utf8) {
    bind(parameter, Cell::ofText(utf8));
}

void SqliteStatement::bind(int parameter, const Cell& cell) {
    check(bindCell(statement_.get(), parameter, cell, Binding::Copied));
}

void SqliteStatement::bindView(int parameter, const Cell& cell) {
    check(bindCell(statement_.get(), parameter, cell, Binding::Viewed));
}

bool SqliteStatement::next() {
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW) {
        return true;
    }
    check(code == SQLITE_DONE ? SQLITE_OK : code);
    return false;
}

void SqliteStatement::run() {
    const auto resetAtEnd = qScopeGuard([this] { reset(); });
    while (next()) {
    }
}

void SqliteStatement::reset() {
    // The code repeats the failure that next has raised already.
    sqlite3_reset(statement_.get());
}

bool SqliteStatement::isNull(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

qint64 SqliteStatement::integer(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

double SqliteStatement::real(int column) const {
    return sqlite3_column_double(statement_.get(), column);
}

QString SqliteStatement::text(int column) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
    return QString::fromUtf8(text, sqlite3_column_bytes(statement_.get(), column));
}

QVariant SqliteStatement::value(int column) const {
    switch (sqlite3_column_type(statement_.get(), column)) {
    case SQLITE_INTEGER: return integer(column);
    case SQLITE_FLOAT: return real(column);
    case SQLITE_TEXT: return text(column);
    case SQLITE_BLOB: {
        const void* bytes = sqlite3_column_blob(statement_.get(), column);
        return QByteArray(static_cast<const char*>(bytes), sqlite3_column_bytes(statement_.get(), column));
    }
    default: return {};
    }
}

void SqliteStatement::check(int code) const {
    if (code != SQLITE_OK) {
        raise(sqlite3_db_handle(statement_.get()), operation_,
              QString::fromUtf8(sqlite3_sql(statement_.get())));
    }
}

} // namespace orvane::dp
