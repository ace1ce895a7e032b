#pragma once

#include "platform/Export.h"

#include <QString>

#include <stdexcept>

struct sqlite3;

namespace orvane::err {

/// A failure of work on a database. what() is the message in UTF-8; what SQLite itself had to say is kept
/// beside it.
class ORVANE_PLATFORM_EXPORT SqliteException : public std::runtime_error {
public:
    /// Takes SQLite's text and code of the last failure on the connection, which may be null.
    SqliteException(sqlite3* database, const QString& message);
    ~SqliteException() override;

    QString message() const { return QString::fromUtf8(what()); }
    /// SQLite's own text, e.g. "no such table: roads"; empty without a connection.
    const QString& sqliteMessage() const { return sqliteMessage_; }
    /// SQLite's extended result code; 0 without a connection.
    int code() const { return code_; }

private:
    QString sqliteMessage_;
    int code_ = 0;
};

} // namespace orvane::err
