#include "platform/core/SqliteException.h"

#include <sqlite3.h>

namespace orvane::err {

SqliteException::SqliteException(sqlite3* database, const QString& message)
    : std::runtime_error(message.toStdString()) {
    if (database) {
        sqliteMessage_ = QString::fromUtf8(sqlite3_errmsg(database));
        code_ = sqlite3_extended_errcode(database);
    }
}

SqliteException::~SqliteException() = default;

} // namespace orvane::err
