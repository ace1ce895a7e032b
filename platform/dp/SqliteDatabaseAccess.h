#pragma once

#include "platform/dp/SqliteStatement.h"

#include <QStringList>

namespace orvane::dp {

/// One connection to an SQLite database file of the application's own. Temporary tables are kept in a
/// nameless file beside the database, not in memory, with a page cache of at most 32 MiB; SQLite removes that
/// file by itself. Failures are err::SqliteException whose text names the operation and the statement. Used
/// from one thread at a time.
class ORVANE_PLATFORM_EXPORT SqliteDatabaseAccess {
public:
    /// Statements between its making and close() take effect together. One that is not closed, because a
    /// statement in between raised, is undone when it goes out of scope. May be nested.
    class ORVANE_PLATFORM_EXPORT UnitOfWork {
    public:
        ~UnitOfWork();
        UnitOfWork(const UnitOfWork&) = delete;
        UnitOfWork& operator=(const UnitOfWork&) = delete;

        void close();

    private:
        friend class SqliteDatabaseAccess;
        explicit UnitOfWork(SqliteDatabaseAccess& access) : access_(access) {}

        SqliteDatabaseAccess& access_;
        bool isOpen_ = true;
    };

    /// Opens the database of that path and makes the file when it does not exist.
    explicit SqliteDatabaseAccess(const QString& path);
    ~SqliteDatabaseAccess();
    SqliteDatabaseAccess(const SqliteDatabaseAccess&) = delete;
    SqliteDatabaseAccess& operator=(const SqliteDatabaseAccess&) = delete;

    sqlite3* handle() const { return database_.get(); }

    /// Opens a unit of work under the name of an operation.
    [[nodiscard]] UnitOfWork open(const QString& operation);
    /// Runs one statement to its end.
    void exec(const QString& sql);
    /// Prepares a query; its rows come with SqliteStatement::next.
    SqliteStatement query(const QString& sql, SqliteStatement::Use use = SqliteStatement::Use::Once);

private:
    struct Closer {
        void operator()(sqlite3* database) const;
    };

    QString operation() const { return operations_.isEmpty() ? QString() : operations_.last(); }

    std::unique_ptr<sqlite3, Closer> database_;
    QStringList operations_; ///< of the open units of work, outermost first
};

} // namespace orvane::dp
