#pragma once

#include "platform/Export.h"
#include "platform/dp/Cursor.h"

#include <QString>
#include <QVariant>

#include <memory>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace orvane::dp {

/// A prepared statement of a SqliteDatabaseAccess: bind, step through the rows with next, read columns.
/// Columns count from 0, parameters from 1. Bound texts are copied, but for bindView. Failures are
/// err::SqliteException. Has to be destroyed before its database.
class ORVANE_PLATFORM_EXPORT SqliteStatement {
public:
    /// Whether the statement is kept for many executions.
    enum class Use { Once, Repeated };

    /// The text as bind takes it; valid as long as the text.
    static std::u16string_view view(const QString& text) {
        return {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<std::size_t>(text.size())};
    }

    /// `operation` names the unit of work in error messages.
    SqliteStatement(sqlite3* database, const QString& sql, const QString& operation, Use use = Use::Once);
    ~SqliteStatement();
    SqliteStatement(SqliteStatement&&) noexcept;
    SqliteStatement& operator=(SqliteStatement&&) noexcept;

    void bindNull(int parameter);
    void bind(int parameter, qint64 value);
    void bind(int parameter, double value);
    void bind(int parameter, std::u16string_view text);
    void bind(int parameter, std::string_view utf8);
    void bind(int parameter, const Cell& cell);
    /// Without a copy: what the cell shows has to stay until the statement has run or is bound anew.
    void bindView(int parameter, const Cell& cell);

    /// Moves to the next row; false at the end.
    bool next();
    /// Runs the statement to its end and makes it ready for the next execution, also when it fails;
    /// parameters keep their values.
    void run();
    /// Ends the execution, so that parameters can be bound again.
    void reset();

    bool isNull(int column) const;
    qint64 integer(int column) const;
    double real(int column) const;
    QString text(int column) const;
    /// Integer (qlonglong), real, text or bytes; NULL is an invalid variant.
    QVariant value(int column) const;

private:
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };

    void check(int code) const;

    std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
    QString operation_;
};

} // namespace orvane::dp
