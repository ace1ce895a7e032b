#pragma once

#include <QString>

#include <optional>
#include <string>

namespace orvane::postgres {

/// A database as the user names it.
struct ServerAddress {
    std::string connection; ///< for libpq: a URI, or words "key=value"; may hold a password
    QString title;          ///< database, host and port: all that is ever shown
    QString table;          ///< the only table wanted, empty for all
};

/// Whether a source names a database of PostgreSQL's: "postgresql://...", "postgres://...", "PG:...".
bool isServerAddress(const QString& source);

/// Throws std::runtime_error where libpq cannot read the address; the text does not repeat it.
ServerAddress parseServerAddress(const QString& source);

} // namespace orvane::postgres
